#include "apps/ZrSurvey/ReviewMap.h"

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/survey/ZrTargetEvent.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/SurveyPage.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int arrowImage = 1;
constexpr int circleImage = 3;
constexpr int pinImage = 7;
constexpr float fitMargin = 48.0F; ///< design pixels
constexpr float tapReach = 32.0F; ///< likewise, from which a place of the track is hit
constexpr float pinReach = 24.0F; ///< and an event
constexpr double leastReach = 22.0; ///< pixels of the widget: half of what a finger needs

ZrMapMarker Marker(const QPointF& position, int image, double size, const QColor& colour)
{
    ZrMapMarker marker;
    marker.position = position;
    marker.image = image;
    marker.size = size;
    marker.colour = colour;
    return marker;
}

} // namespace

ReviewMap::ReviewMap(SurveyPage& page)
    : m_page(page)
    , m_panel(new ZrMapPanel(&page, m_map))
{
    m_panel->setAccessibleName(tr("Map"));
    m_map.m_layers = {&m_grid, &m_plan, &m_track, &m_waypoints, &m_events, &m_vehicle};
    connect(m_panel, &ZrMapPanel::Changed, &page, &SurveyPage::Changed);
    connect(m_panel, &ZrMapPanel::Tapped, this, &ReviewMap::OnTapped);
    connect(m_panel, &ZrMapPanel::CameraMoved, this, [this] {
        if (m_follows)
            SetFollows(false);
    });
    Restyle();
}

ReviewMap::~ReviewMap()
{
    // It refers to the surface.
    delete m_panel;
}

void ReviewMap::Create()
{
    m_map.OnCreate();
}

void ReviewMap::Render()
{
    if (!m_isFitted && m_hasPlace && !m_map.m_camera.IsEmpty())
        FitAll();
    m_map.m_pixelFactor = qRound(m_panel->devicePixelRatioF());
    m_map.Render();
}

void ReviewMap::Restyle()
{
    m_track.m_casing = ZrTheme::formBack;
    m_track.m_futureColour = ZrTheme::bodyCol;
    m_plan.m_colour = ZrTheme::route;
    m_plan.m_width = 2.0F;
    m_plan.m_casing = QColor();
    for (ZrMarkerLayer* layer : {&m_waypoints, &m_events, &m_vehicle})
        layer->m_halo = ZrTheme::formBack;
    if (m_recording) {
        ShowEvents();
        ShowVehicle();
    }
}

QPointF ReviewMap::ToWorld(double lat, double lng) const
{
    QPointF world(std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN());
    if (m_hasPlace && std::isfinite(lat) && std::isfinite(lng)) {
        double east = 0.0;
        double north = 0.0;
        ZrUnits::LLToEN(ZrUnits::wgs84, m_projection, lat, lng, east, north);
        world = QPointF(east, north);
    }
    return world;
}

QPointF ReviewMap::Vehicle() const
{
    return m_vehicle.Markers().empty() ? ToWorld(std::nan(""), 0.0) : m_vehicle.Markers().front().position;
}

QPointF ReviewMap::PixelOf(const ZrGeoPoint& at) const
{
    return m_map.m_camera.ToPixel(WorldOf(at)) / m_panel->devicePixelRatioF();
}

void ReviewMap::Show(ZrSurveyRecording* recording)
{
    m_recording = recording;
    m_track.m_track.Clear();
    m_plan.m_track.Clear();
    m_waypoints.SetMarkers({});
    m_events.SetMarkers({});
    m_vehicle.SetMarkers({});
    m_track.m_cursor = -1;
    m_hasPlace = m_isFitted = false;
    m_grid.ClearProjection();
    if (!recording) {
        m_page.Changed();
        return;
    }
    for (const ZrSurveySeries::Position& at : recording->Series().track) {
        if (!m_hasPlace && std::isfinite(at.latitude) && std::isfinite(at.longitude)) {
            m_hasPlace = true;
            m_projection.SetupUTM(at.latitude, at.longitude);
            m_grid.SetProjection(ZrUnits::wgs84, m_projection);
        }
        const QPointF world = ToWorld(at.latitude, at.longitude);
        m_track.m_track.Append(world.x(), world.y());
    }
    std::vector<ZrMapMarker> waypoints;
    for (const ZrGeoPoint& point : recording->Plan()) {
        const QPointF world = ToWorld(point.lat, point.lng);
        m_plan.m_track.Append(world.x(), world.y());
        waypoints.push_back(Marker(world, circleImage, 6.0, ZrTheme::waypoint));
    }
    m_waypoints.SetMarkers(std::move(waypoints));
    ShowEvents();
    m_page.Changed();
}

void ReviewMap::ShowEvents()
{
    std::vector<ZrMapMarker> markers;
    const ZrEventList& events = m_recording->Events();
    for (std::size_t i = 0; i < events.Count(); ++i) {
        ZrGeoPoint at = m_recording->PositionAt(m_recording->TimeOf(events.At(i)));
        ZrSonarTarget target;
        if (ZrTargetEvent::ToTarget(events.At(i), target) && target.position.IsValid())
            at = target.position;
        markers.push_back(Marker(ToWorld(at.lat, at.lng), pinImage, 14.0, ZrTheme::warnCol));
    }
    m_events.SetMarkers(std::move(markers));
    m_page.Changed();
}

void ReviewMap::SetCursor(double steady)
{
    m_cursor = steady;
    ShowVehicle();
}

void ReviewMap::ShowVehicle()
{
    const ZrSurveySeries& series = m_recording->Series();
    const std::size_t row = series.times->RecordAt(m_cursor);
    const ZrGeoPoint at = m_recording->PositionAt(m_cursor);
    const QPointF world = ToWorld(at.lat, at.lng);
    m_track.m_cursor = row < series.Count() ? static_cast<i64>(row) : -1;
    const auto heading = static_cast<double>(series.heading.ValueAt(m_cursor));
    ZrMapMarker marker
        = Marker(world, std::isnan(heading) ? circleImage : arrowImage, 18.0, ZrTheme::vehicle);
    if (!std::isnan(heading) && m_hasPlace && std::isfinite(at.lat))
        marker.angle = ZrUnits::Convergence(ZrUnits::wgs84, m_projection, at.lat, at.lng) - heading;
    marker.isTurning = true;
    if (m_vehicle.Markers().size() == 1)
        m_vehicle.SetMarker(0, marker);
    else
        m_vehicle.SetMarkers({marker});
    if (m_follows && std::isfinite(world.x()))
        m_map.m_camera.SetCentre(world);
    m_page.Changed();
}

void ReviewMap::FitAll()
{
    m_isFitted = true;
    const QRectF bounds = m_track.m_track.Bounds().united(m_plan.m_track.Bounds());
    if (!bounds.isNull())
        m_map.m_camera.Fit(
            bounds, static_cast<double>(ZrTheme::DpF(fitMargin)) * m_panel->devicePixelRatioF());
    m_page.Changed();
}

void ReviewMap::SetFollows(bool follows)
{
    m_follows = follows;
    if (follows && m_recording)
        ShowVehicle();
    Q_EMIT FollowsChanged();
}

void ReviewMap::OnTapped(const QPointF& /*world*/, const QPointF& pixel)
{
    if (!m_recording)
        return;
    const double ratio = m_panel->devicePixelRatioF();
    const auto reach = [ratio](float design) {
        return std::max(static_cast<double>(ZrTheme::DpF(design)), leastReach) * ratio;
    };
    const int event = ZrMarkerLayer::Nearest(m_events.Markers(), m_map.m_camera, pixel, reach(pinReach));
    if (event >= 0) {
        Q_EMIT Scrubbed(m_recording->TimeOf(m_recording->Events().At(static_cast<std::size_t>(event))));
        return;
    }
    double best = reach(tapReach);
    i64 row = -1;
    const double scale = m_map.m_camera.Scale();
    const QPointF world = m_map.m_camera.ToWorld(pixel);
    for (i64 i = 0; i < m_track.m_track.Count(); ++i) {
        const QPointF at = m_track.m_track[i] - world;
        const double away = std::hypot(at.x(), at.y()) / scale;
        if (away < best) {
            best = away;
            row = i;
        }
    }
    if (row >= 0)
        Q_EMIT Scrubbed(m_recording->Series().times->Times()[static_cast<std::size_t>(row)]);
}
