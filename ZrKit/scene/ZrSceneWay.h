#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/geo/ZrGridBatch.h"
#include "ZrKit/review/ZrWorker.h"
#include "ZrKit/scene/ZrSceneFloor.h"
#include "ZrKit/scene/ZrScenePlace.h"
#include "ZrUtil/ZrSpan.h"

#include <QObject>
#include <QPointF>
#include <QVector3D>

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

class ZrSceneSurface;

/// The way of a vehicle in a scene: its trail, and the sea floor that its soundings make.
///
/// \code
/// ZrSceneWay way(scene);
/// connect(&way, &ZrSceneWay::Changed, this, [this] { update(); });
/// way.Append(places); // of a recording at once, of the vehicle itself as they come
/// scene.m_pose.position = way.ToScene(lat, lng, depth);
/// \endcode
///
/// The origin of the scene is the first known position, on the grid of its UTM zone. Up to `AtOnce` places
/// that come together are projected at once; more of them, and every sea floor, are made in a worker, and
/// shown when they are done. The floor is made anew when the soundings have grown by `FloorGrowth`. `Clear`
/// ends the work under way, and nothing of it is shown.
///
/// GUI thread only. The scene must outlive the object.
class ZR_KIT_EXPORT ZrSceneWay : public QObject
{
    Q_OBJECT

public:
    static constexpr std::size_t AtOnce = 64; ///< places
    static constexpr float FloorSpacing = 2.5F; ///< of the floor's grid at least, metres
    static constexpr double FloorGrowth = 0.05; ///< parts of the soundings that the floor was made of

    explicit ZrSceneWay(ZrSceneSurface& scene, QObject* parent = nullptr);
    ~ZrSceneWay() override;

    void Clear(); ///< of the origin too: the next way may be anywhere
    void Append(zr::span<const ZrScenePlace> places); ///< those without a position count, and are not shown

    std::size_t Count() const { return m_count; } ///< places appended since `Clear`

    /// More places than `AtOnce` are not shown yet, or not the floor that they make.
    bool IsBuilding() const { return m_isLong; }

    bool IsWorking() const { return m_worker.IsWorking(); } ///< also for a floor made anew

    bool HasOrigin() const { return m_grid.has_value(); }

    /// Metres of the scene; NaN without an origin or a position, at the surface without a depth.
    QVector3D ToScene(double lat, double lng, double depth) const;

Q_SIGNALS:
    void OriginChanged(); ///< it is known now
    void Changed(); ///< a frame is wanted

private:
    /// What the worker gets and makes.
    struct Work
    {
        std::vector<ZrScenePlace> places;
        std::optional<ZrGridBatch> grid;
        QPointF origin;
        std::vector<QVector3D> soundings;
        std::size_t floorCount = 0;
        std::vector<QVector3D> trail;
        std::optional<ZrSceneFloor> floor;
        std::atomic<bool> cancel{false};
    };

    static QVector3D Project(const ZrGridBatch& grid, const QPointF& origin, const ZrScenePlace& place);
    static void Take(const ZrScenePlace& place, Work& work);
    static void Run(Work& work);
    static bool IsFloorDue(std::size_t soundings, std::size_t floorCount);
    void Start();
    void Apply(Work& work);
    void OnFinished();

    ZrSceneSurface& m_scene;
    std::optional<ZrGridBatch> m_grid;
    QPointF m_origin; ///< of the scene on the grid
    std::vector<QVector3D> m_soundings; ///< with the worker while it works
    std::size_t m_floorCount = 0; ///< soundings that the floor was made of
    std::size_t m_count = 0;
    std::vector<ZrScenePlace> m_pending;
    bool m_isLong = false;
    std::shared_ptr<Work> m_work; ///< under way; null when it is to be ignored
    ZrWorker m_worker; ///< last: it ends before what it works on goes
};
