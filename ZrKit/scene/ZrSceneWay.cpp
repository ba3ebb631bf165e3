#include "ZrKit/scene/ZrSceneWay.h"

#include "ZrKit/scene/ZrSceneSurface.h"

#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr std::size_t batch = 4096; ///< places between two looks at the wish to end

bool HasPosition(double lat, double lng)
{
    return std::fabs(lat) <= 90.0 && std::isfinite(lng);
}

QPointF ToGrid(const ZrGridBatch& grid, double lat, double lng)
{
    QPointF at;
    grid.ToGrid({&lat, 1}, {&lng, 1}, {&at.rx(), 1}, {&at.ry(), 1});
    return at;
}

} // namespace

ZrSceneWay::ZrSceneWay(ZrSceneSurface& scene, QObject* parent)
    : QObject(parent)
    , m_scene(scene)
{
    connect(&m_worker, &ZrWorker::Finished, this, &ZrSceneWay::OnFinished);
}

ZrSceneWay::~ZrSceneWay() = default;

QVector3D ZrSceneWay::Project(const ZrGridBatch& grid, const QPointF& origin, const ZrScenePlace& place)
{
    const QPointF at = ToGrid(grid, place.lat, place.lng) - origin;
    return {static_cast<float>(at.x()), static_cast<float>(at.y()),
        static_cast<float>(std::isfinite(place.depth) ? -place.depth : 0.0)};
}

QVector3D ZrSceneWay::ToScene(double lat, double lng, double depth) const
{
    constexpr float unknown = std::numeric_limits<float>::quiet_NaN();
    if (!m_grid || !HasPosition(lat, lng))
        return {unknown, unknown, unknown};
    return Project(*m_grid, m_origin, {lat, lng, depth, 0.0});
}

void ZrSceneWay::Clear()
{
    m_pending.clear();
    m_soundings.clear();
    m_grid.reset();
    m_count = 0;
    m_floorCount = 0;
    m_isLong = false;
    if (m_worker.IsWorking()) {
        m_work.reset();
        m_worker.Cancel();
    }
    m_scene.SetTrail({});
    m_scene.SetFloor({});
    Q_EMIT Changed();
}

void ZrSceneWay::Append(zr::span<const ZrScenePlace> places)
{
    m_count += places.size();
    m_pending.insert(m_pending.end(), places.begin(), places.end());
    if (m_pending.size() > AtOnce)
        m_isLong = true;
    if (!m_worker.IsWorking())
        Start();
}

bool ZrSceneWay::IsFloorDue(std::size_t soundings, std::size_t floorCount)
{
    return static_cast<double>(soundings) >= static_cast<double>(floorCount) * (1.0 + FloorGrowth) + 1.0;
}

void ZrSceneWay::Take(const ZrScenePlace& place, Work& work)
{
    if (!HasPosition(place.lat, place.lng))
        return;
    if (!work.grid) {
        work.grid = ZrGridBatch::UtmAt(place.lat, place.lng);
        work.origin = ToGrid(*work.grid, place.lat, place.lng);
    }
    const QVector3D at = Project(*work.grid, work.origin, place);
    work.trail.push_back(at);
    if (std::isfinite(place.altitude))
        work.soundings.emplace_back(at.x(), at.y(), at.z() - static_cast<float>(place.altitude));
}

void ZrSceneWay::Run(Work& work)
{
    for (std::size_t i = 0; i < work.places.size(); ++i) {
        if (i % batch == 0 && work.cancel)
            return;
        Take(work.places[i], work);
    }
    // More than the scene keeps of a trail is not for the GUI thread to throw away.
    if (work.trail.size() > ZrSceneSurface::MostTrail)
        work.trail.erase(work.trail.begin(), work.trail.end() - ZrSceneSurface::MostTrail);
    if (work.cancel || !IsFloorDue(work.soundings.size(), work.floorCount))
        return;
    work.floorCount = work.soundings.size();
    work.floor.emplace();
    work.floor->Build(work.soundings, FloorSpacing);
}

void ZrSceneWay::Start()
{
    auto work = std::make_shared<Work>();
    work->grid = m_grid;
    work->origin = m_origin;
    work->soundings = std::move(m_soundings);
    work->floorCount = m_floorCount;
    work->places = std::exchange(m_pending, {});
    if (!m_isLong) {
        for (const ZrScenePlace& place : std::exchange(work->places, {}))
            Take(place, *work);
        const bool isFloorDue = IsFloorDue(work->soundings.size(), work->floorCount);
        Apply(*work);
        // A receiver may have begun with other work.
        if (!isFloorDue || m_worker.IsWorking())
            return;
        work = std::make_shared<Work>();
        work->grid = m_grid;
        work->soundings = std::move(m_soundings);
        work->floorCount = m_floorCount;
    }
    m_work = work;
    m_worker.Start([work](IZrProgress& /*progress*/) { Run(*work); }, [work] { work->cancel = true; });
}

void ZrSceneWay::Apply(Work& work)
{
    const bool isNew = !m_grid && work.grid;
    if (isNew) {
        m_grid = std::move(work.grid);
        m_origin = work.origin;
    }
    m_soundings = std::move(work.soundings);
    m_floorCount = work.floorCount;
    if (m_scene.Trail().empty()) {
        m_scene.SetTrail(std::move(work.trail));
    } else {
        for (const QVector3D& at : work.trail)
            m_scene.AddToTrail(at);
    }
    if (work.floor)
        m_scene.SetFloor(std::move(*work.floor));
    if (isNew)
        Q_EMIT OriginChanged();
    Q_EMIT Changed();
}

void ZrSceneWay::OnFinished()
{
    const std::shared_ptr<Work> work = std::exchange(m_work, nullptr);
    if (work) {
        m_isLong = m_pending.size() > AtOnce;
        Apply(*work);
    }
    // A receiver may have begun with another way.
    if (!m_pending.empty() && !m_worker.IsWorking())
        Start();
}
