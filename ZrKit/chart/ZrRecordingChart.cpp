#include "ZrKit/chart/ZrRecordingChart.h"

#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/survey/ZrTargetEvent.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t batch = 4096; ///< positions between two looks at the wish to end

/// Images of `ZrGlSurface::m_markers`.
enum eImage : int
{
    imageArrow = 1,
    imageCircle = 3,
    imagePin = 7
};

ZrMapMarker Marker(const QPointF& position, int image, double size, const QColor& colour)
{
    ZrMapMarker marker;
    marker.position = position;
    marker.image = image;
    marker.size = size;
    marker.colour = colour;
    return marker;
}

QPointF Project(const std::optional<ZrGridBatch>& grid, const ZrGeoPoint& at)
{
    QPointF world(unknown, unknown);
    if (grid && at.IsValid())
        grid->ToGrid({&at.lat, 1}, {&at.lng, 1}, {&world.rx(), 1}, {&world.ry(), 1});
    return world;
}

} // namespace

ZrRecordingChart::ZrRecordingChart(QObject* parent)
    : QObject(parent)
{
    connect(&m_worker, &ZrWorker::Finished, this, &ZrRecordingChart::OnFinished);
    Restyle();
}

ZrRecordingChart::~ZrRecordingChart() = default;

QVector<ZrMapLayer*> ZrRecordingChart::Layers()
{
    return {&m_plan, &m_track, &m_waypointLayer, &m_events, &m_vehicle};
}

void ZrRecordingChart::SetRecording(std::shared_ptr<const ZrSurveyRecording> recording)
{
    m_recording = std::move(recording);
    Clear();
    if (m_worker.IsWorking()) {
        // Its end begins with the one set last.
        m_result.reset();
        m_worker.Cancel();
    } else if (m_recording) {
        Start();
    }
    Q_EMIT Changed();
}

void ZrRecordingChart::Clear()
{
    m_grid.reset();
    m_waypoints.clear();
    m_track.m_track.Clear();
    m_track.m_cursor = -1;
    m_plan.m_track.Clear();
    for (ZrMarkerLayer* layer : {&m_waypointLayer, &m_events, &m_vehicle})
        layer->SetMarkers({});
}

void ZrRecordingChart::Start()
{
    m_result = std::make_shared<Result>();
    m_worker.Start([recording = m_recording, result = m_result](
                       IZrProgress& /*progress*/) { Build(*recording, *result); },
        [result = m_result] { result->cancel = true; });
}

void ZrRecordingChart::Build(const ZrSurveyRecording& recording, Result& result)
{
    const std::vector<ZrSurveySeries::Position>& way = recording.Series().track;
    const std::vector<ZrGeoPoint>& plan = recording.Plan();
    const auto first = std::find_if(way.begin(), way.end(), [](const ZrSurveySeries::Position& at) {
        return ZrGeoPoint{at.latitude, at.longitude}.IsValid();
    });
    const auto planned
        = std::find_if(plan.begin(), plan.end(), [](const ZrGeoPoint& at) { return at.IsValid(); });
    if (first != way.end())
        result.grid = ZrGridBatch::UtmAt(first->latitude, first->longitude);
    else if (planned != plan.end())
        result.grid = ZrGridBatch::UtmAt(planned->lat, planned->lng);
    if (!result.grid)
        return;
    result.way.Reserve(static_cast<i64>(way.size()));
    for (std::size_t i = 0; i < way.size(); ++i) {
        if (i % batch == 0 && result.cancel)
            return;
        const QPointF world = Project(result.grid, {way[i].latitude, way[i].longitude});
        result.way.Append(world.x(), world.y());
    }
    for (const ZrGeoPoint& point : plan)
        result.waypoints.push_back(Project(result.grid, point));
    for (const std::vector<ZrGeoPoint>& leg : recording.PlanWay()) {
        for (const ZrGeoPoint& point : leg) {
            const QPointF world = Project(result.grid, point);
            result.plan.Append(world.x(), world.y());
        }
        // A leg that is not known leaves a break.
        if (leg.empty())
            result.plan.Append(unknown, unknown);
    }
}

void ZrRecordingChart::OnFinished()
{
    const std::shared_ptr<Result> result = std::move(m_result);
    if (!result || result->cancel) {
        if (m_recording)
            Start();
        return;
    }
    m_grid = std::move(result->grid);
    m_track.m_track.Replace(std::move(result->way));
    m_plan.m_track.Replace(std::move(result->plan));
    m_waypoints = std::move(result->waypoints);
    ShowWaypoints();
    ShowEvents();
    ShowVehicle();
    Q_EMIT Built();
    Q_EMIT Changed();
}

void ZrRecordingChart::Restyle()
{
    m_track.m_width = 4.0F;
    m_track.m_casing = ZrTheme::formBack;
    m_track.m_futureColour = ZrColourScheme::TrackAhead();
    m_plan.m_colour = ZrTheme::route;
    m_plan.m_width = 2.5F;
    m_plan.m_casing = ZrTheme::formBack;
    for (ZrMarkerLayer* layer : {&m_waypointLayer, &m_events, &m_vehicle})
        layer->m_halo = ZrTheme::formBack;
    ShowWaypoints();
    ShowEvents();
    ShowVehicle();
}

void ZrRecordingChart::ShowWaypoints()
{
    std::vector<ZrMapMarker> markers;
    markers.reserve(m_waypoints.size());
    for (const QPointF& world : m_waypoints)
        markers.push_back(Marker(world, imageCircle, 6.0, ZrTheme::waypoint));
    m_waypointLayer.SetMarkers(std::move(markers));
}

void ZrRecordingChart::ShowEvents()
{
    if (!m_recording || !m_grid)
        return;
    std::vector<ZrMapMarker> markers;
    const ZrEventList& events = m_recording->Events();
    for (std::size_t i = 0; i < events.Count(); ++i) {
        ZrGeoPoint at = m_recording->PositionAt(m_recording->TimeOf(events.At(i)));
        ZrSonarTarget target;
        if (ZrTargetEvent::ToTarget(events.At(i), target) && target.position.IsValid())
            at = target.position;
        markers.push_back(Marker(ToWorld(at), imagePin, 14.0, ZrTheme::warnCol));
    }
    m_events.SetMarkers(std::move(markers));
    Q_EMIT Changed();
}

void ZrRecordingChart::SetCursor(double steady)
{
    m_cursor = steady;
    ShowVehicle();
}

void ZrRecordingChart::ShowVehicle()
{
    if (!m_recording || !m_grid)
        return;
    const ZrSurveySeries& series = m_recording->Series();
    if (series.Count() == 0)
        return;
    const std::size_t row = series.times->RecordAt(m_cursor);
    const ZrGeoPoint at = m_recording->PositionAt(m_cursor);
    const QPointF world = ToWorld(at);
    m_track.m_cursor = row < series.Count() ? static_cast<i64>(row) : -1;
    const auto heading = static_cast<double>(series.heading.ValueAt(m_cursor));
    const bool hasHeading = std::isfinite(heading);
    ZrMapMarker marker = Marker(world, hasHeading ? imageArrow : imageCircle, 18.0, ZrTheme::vehicle);
    if (hasHeading && std::isfinite(world.x())) {
        marker.angle = ZrUnits::Convergence(ZrUnits::wgs84, m_grid->Projection(), at.lat, at.lng) - heading;
    }
    marker.isTurning = true;
    if (m_vehicle.Markers().size() == 1)
        m_vehicle.SetMarker(0, marker);
    else
        m_vehicle.SetMarkers({marker});
    Q_EMIT Changed();
}

QPointF ZrRecordingChart::ToWorld(const ZrGeoPoint& at) const
{
    return Project(m_grid, at);
}

QPointF ZrRecordingChart::Vehicle() const
{
    return m_vehicle.Markers().empty() ? QPointF(unknown, unknown) : m_vehicle.Markers().front().position;
}

QRectF ZrRecordingChart::Bounds() const
{
    return m_track.m_track.Bounds().united(m_plan.m_track.Bounds());
}

int ZrRecordingChart::EventAt(const ZrMapView& view, const QPointF& pixel, double reach) const
{
    return ZrMarkerLayer::Nearest(m_events.Markers(), view, pixel, reach);
}

double ZrRecordingChart::TimeAt(
    const ZrMapView& view, const QPointF& pixel, double wayReach, double eventReach) const
{
    if (!m_recording)
        return unknown;
    const int event = EventAt(view, pixel, eventReach);
    if (event >= 0)
        return m_recording->TimeOf(m_recording->Events().At(static_cast<std::size_t>(event)));
    const i64 row = m_track.m_track.Nearest(view.ToWorld(pixel), wayReach * view.Scale());
    return row < 0 ? unknown : m_recording->Series().times->Times()[static_cast<std::size_t>(row)];
}
