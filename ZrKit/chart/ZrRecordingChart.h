#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/geo/ZrGridBatch.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/review/ZrWorker.h"

#include <QObject>
#include <QPointF>
#include <QRectF>

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

class ZrMapView;
class ZrSurveyRecording;

/// A recording on a map: the whole way of the vehicle, what lies behind the cursor set off from what is to
/// come, the plan with its true turns, the events, and the vehicle at the cursor; and what is under a finger.
///
/// \code
/// map.m_layers = chart.Layers();
/// connect(&chart, &ZrRecordingChart::Built, this, [this] { map.m_camera.Fit(chart.Bounds(), 48.0); });
/// chart.SetRecording(recording); // returns at once
/// chart.SetCursor(clock.Time());
/// const double time = chart.TimeAt(map.m_camera, pixel, 32.0, 24.0); // of what was tapped
/// \endcode
///
/// World positions are metres of the UTM zone of the first position of the way, or of the plan when there is
/// none. The way is projected in a worker: until `Built` there is neither a way nor an origin, and positions
/// are NaN. Another recording set meanwhile ends that work, and nothing of it is shown. Colours are those of
/// the theme when things are set. GUI thread only; the recording is used in it, and read in the worker.
class ZR_KIT_EXPORT ZrRecordingChart : public QObject
{
    Q_OBJECT

public:
    explicit ZrRecordingChart(QObject* parent = nullptr);
    ~ZrRecordingChart() override;

    QVector<ZrMapLayer*> Layers(); ///< in the order of drawing

    /// \name What texts of the map keep clear of, see `ZrGridLayer::KeepClearOf`
    /// @{
    std::vector<const ZrMarkerLayer*> Marks() const { return {&m_waypointLayer, &m_events, &m_vehicle}; }

    std::vector<const ZrTrackLayer*> Lines() const { return {&m_track, &m_plan}; }

    /// @}

    void SetRecording(std::shared_ptr<const ZrSurveyRecording> recording); ///< null for nothing

    bool IsBuilding() const { return m_worker.IsWorking(); }

    bool HasOrigin() const { return m_grid.has_value(); } ///< false for a recording without positions

    const ZrGridBatch& Grid() const { return *m_grid; } ///< only with an origin

    void ShowEvents(); ///< after a change of those of the recording
    void SetCursor(double steady);
    void Restyle(); ///< after a change of colours

    QPointF ToWorld(const ZrGeoPoint& at) const; ///< NaN where not known

    QPointF Vehicle() const; ///< where it is drawn, world; NaN where not known

    QRectF Bounds() const; ///< of way and plan, world; null without any

    const ZrTrackLod& Way() const { return m_track.m_track; }

    const ZrTrackLod& Plan() const { return m_plan.m_track; } ///< with the turns

    /// The event whose mark is nearest to \p pixel within \p reach pixels; -1 for none.
    int EventAt(const ZrMapView& view, const QPointF& pixel, double reach) const;

    /// Steady time of what is at \p pixel: an event within \p eventReach pixels, else the place of the way
    /// nearest to it within \p wayReach. NaN for nothing.
    double TimeAt(const ZrMapView& view, const QPointF& pixel, double wayReach, double eventReach) const;

Q_SIGNALS:
    void Built(); ///< the way is there, or it was found that there is none
    void Changed(); ///< a frame is wanted

private:
    /// What the worker makes.
    struct Result
    {
        std::optional<ZrGridBatch> grid;
        ZrTrackLod way;
        std::vector<QPointF> waypoints;
        ZrTrackLod plan;
        std::atomic<bool> cancel{false};
    };

    static void Build(const ZrSurveyRecording& recording, Result& result);
    void Clear();
    void Start();
    void OnFinished();
    void ShowWaypoints();
    void ShowVehicle();

    std::shared_ptr<const ZrSurveyRecording> m_recording;
    std::shared_ptr<Result> m_result; ///< being made; null when it is to be ignored
    std::optional<ZrGridBatch> m_grid;
    ZrTrackLayer m_plan;
    ZrTrackLayer m_track;
    ZrMarkerLayer m_waypointLayer;
    ZrMarkerLayer m_events;
    ZrMarkerLayer m_vehicle;
    std::vector<QPointF> m_waypoints;
    double m_cursor = 0.0;
    ZrWorker m_worker; ///< last: it ends before what it works on goes
};
