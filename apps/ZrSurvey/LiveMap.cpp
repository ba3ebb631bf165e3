#include "apps/ZrSurvey/LiveMap.h"

#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpts.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int arrowImage = 1; // of the surface's markers
constexpr int waypointImage = 3;
constexpr double firstScale = 0.5; // metres per pixel, while there is nothing but the vehicle

constexpr double shortestStep = 1.0; // metres between samples of the plan's way, so that turns are round
constexpr double mostSamples = 20000.0;

constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();

} // namespace

LiveMap::LiveMap()
{
    m_layers = {&m_grid, &m_planLine, &m_waypoints, &m_trail, &m_names, &m_vehicle};
    m_planLine.m_width = 2.0F;
    m_trail.m_width = 3.5F;
    m_names.SetDeclutter(true);
    OnColours();
}

void LiveMap::OnColours()
{
    m_planLine.m_colour = ZrTheme::route;
    m_trail.m_colour = QColor();
    m_trail.m_casing = ZrTheme::formBack;
    m_vehicle.m_halo = ZrTheme::formBack;
    m_waypoints.m_halo = ZrTheme::formBack;
    ShowPlan();
}

/// Chooses the zone of the map: that of the plan until the vehicle is in another one, and then that of where
/// its trail begins.
bool LiveMap::Locate(double lat, double lng)
{
    if (!std::isfinite(lat) || !std::isfinite(lng) || (m_projection && m_trail.m_track.Count() > 0))
        return m_projection != nullptr;
    const ZrGridBatch there = ZrGridBatch::UtmAt(lat, lng);
    const auto isSame = [](const ZrProj& a, const ZrProj& b) {
        return a.lngOrigin == b.lngOrigin && a.falseNorth == b.falseNorth;
    };
    if (m_projection && isSame(m_projection->Projection(), there.Projection()))
        return true;
    m_projection = std::make_unique<ZrGridBatch>(there);
    m_grid.SetProjection(ZrUnits::wgs84, m_projection->Projection());
    m_camera.SetCentre(ToWorld(lat, lng));
    m_camera.SetScale(firstScale);
    ShowPlan();
    return true;
}

QPointF LiveMap::ToWorld(double lat, double lng) const
{
    double east = notKnown;
    double north = notKnown;
    if (std::isfinite(lat) && std::isfinite(lng))
        m_projection->ToGrid({&lat, 1}, {&lng, 1}, {&east, 1}, {&north, 1});
    return {east, north};
}

void LiveMap::SetPlan(const ZrWpts& route)
{
    m_planPlaces.clear();
    m_planPoints.clear();
    const ZrRoutePath path(route);
    const double step = std::max(shortestStep, path.Length() / mostSamples);
    for (const ZrPathSample& sample : path.Sample(step)) {
        const bool isKnown = sample.position.IsValid();
        m_planPlaces.emplace_back(
            isKnown ? sample.position.lng : notKnown, isKnown ? sample.position.lat : notKnown);
    }
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *route.GetNext(pos);
        m_planPoints.emplace_back(QPointF(wpt.lng, wpt.lat), wpt.name);
    }
    if (!m_planPoints.empty())
        Locate(m_planPoints.front().first.y(), m_planPoints.front().first.x());
    ShowPlan();
    if (!m_isFitted)
        FitAll();
}

void LiveMap::ShowPlan()
{
    m_planLine.m_track.Clear();
    std::vector<ZrMapMarker> markers;
    std::vector<ZrMapLabel> labels;
    if (m_projection) {
        for (const QPointF& place : m_planPlaces) {
            const QPointF at = ToWorld(place.y(), place.x());
            m_planLine.m_track.Append(at.x(), at.y());
        }
        for (const auto& [place, name] : m_planPoints) {
            ZrMapMarker marker;
            marker.position = ToWorld(place.y(), place.x());
            marker.image = waypointImage;
            marker.size = 6.0;
            marker.colour = ZrTheme::route;
            markers.push_back(marker);
            ZrMapLabel label;
            label.text = name;
            label.position = marker.position;
            label.offset = {10.0, 0.0};
            label.alignY = ZrMapLabel::alignMiddle;
            label.size = ZrLegible::Design(14.0F);
            labels.push_back(label);
        }
    }
    m_waypoints.SetMarkers(std::move(markers));
    m_names.SetLabels(std::move(labels));
}

void LiveMap::Append(const std::vector<QPointF>& places)
{
    for (const QPointF& place : places) {
        if (!Locate(place.y(), place.x()))
            continue;
        const QPointF at = ToWorld(place.y(), place.x());
        m_trail.m_track.Append(at.x(), at.y());
    }
}

void LiveMap::ClearTrail()
{
    m_trail.m_track.Clear();
    m_vehicle.SetMarkers({});
}

void LiveMap::SetVehicle(double lat, double lng, double heading, bool isFresh)
{
    if (!Locate(lat, lng) || !std::isfinite(lat))
        return;
    ZrMapMarker marker;
    marker.position = ToWorld(lat, lng);
    // Without a heading it points nowhere.
    marker.image = std::isfinite(heading) ? arrowImage : waypointImage;
    const double convergence = ZrUnits::Convergence(ZrUnits::wgs84, m_projection->Projection(), lat, lng);
    marker.angle = std::isfinite(heading) ? convergence - heading : 0.0;
    marker.isTurning = true;
    marker.size = 18.0;
    marker.colour = isFresh ? ZrTheme::vehicle : ZrTheme::ctrlOutlineCol;
    m_vehicle.SetMarkers({marker});
    if (m_isFollowing)
        m_camera.SetCentre(marker.position);
}

void LiveMap::OnResize(int width, int height)
{
    ZrMapSurface::OnResize(width, height);
    if (!m_isFitted)
        FitAll();
}

void LiveMap::FitAll()
{
    QRectF all = m_planLine.m_track.Bounds();
    const QRectF trail = m_trail.m_track.Bounds();
    if (all.isNull())
        all = trail;
    else if (!trail.isNull())
        all |= trail;
    if (all.isNull() || m_camera.IsEmpty())
        return;
    const double margin = 48.0 * ZrTheme::dp * m_pixelFactor;
    // A page that was not shown yet has a few pixels only.
    m_isFitted = std::min(m_camera.Width(), m_camera.Height()) > 4.0 * margin;
    m_camera.Fit(all, margin);
}
