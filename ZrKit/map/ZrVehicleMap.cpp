#include "ZrKit/map/ZrVehicleMap.h"

#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <cmath>
#include <limits>

namespace {

constexpr int arrowImage = 1; // of the surface's markers
constexpr int dotImage = 3;
constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();

bool IsKnown(double lat, double lng)
{
    return std::isfinite(lat) && std::isfinite(lng);
}

} // namespace

ZrVehicleMap::ZrVehicleMap(ZrMapView& camera)
    : m_camera(camera)
{
    m_trail.m_width = 3.5F;
    OnColours();
}

void ZrVehicleMap::OnColours()
{
    m_trail.m_colour = QColor();
    m_trail.m_casing = ZrTheme::formBack;
    m_vehicle.m_halo = ZrTheme::formBack;
}

bool ZrVehicleMap::Locate(double lat, double lng)
{
    if (!IsKnown(lat, lng) || (m_grid && m_trail.m_track.Count() > 0))
        return m_grid != nullptr;
    const ZrGridBatch there = ZrGridBatch::UtmAt(lat, lng);
    const auto isSame = [](const ZrProj& a, const ZrProj& b) {
        return a.lngOrigin == b.lngOrigin && a.falseNorth == b.falseNorth;
    };
    if (m_grid && isSame(m_grid->Projection(), there.Projection()))
        return true;
    m_grid = std::make_unique<ZrGridBatch>(there);
    m_vehicle.SetMarkers({});
    m_camera.SetCentre(ToWorld(lat, lng));
    m_camera.SetScale(FirstScale);
    if (m_zoneChanged)
        m_zoneChanged();
    return true;
}

QPointF ZrVehicleMap::ToWorld(double lat, double lng) const
{
    double east = notKnown;
    double north = notKnown;
    if (m_grid && IsKnown(lat, lng))
        m_grid->ToGrid({&lat, 1}, {&lng, 1}, {&east, 1}, {&north, 1});
    return {east, north};
}

void ZrVehicleMap::Append(const std::vector<QPointF>& places)
{
    for (const QPointF& place : places) {
        if (!IsKnown(place.y(), place.x()) || !Locate(place.y(), place.x()))
            continue;
        const QPointF at = ToWorld(place.y(), place.x());
        m_trail.m_track.Append(at.x(), at.y());
    }
}

void ZrVehicleMap::Clear()
{
    m_trail.m_track.Clear();
    m_vehicle.SetMarkers({});
}

void ZrVehicleMap::SetVehicle(double lat, double lng, double heading, bool isFresh)
{
    if (!IsKnown(lat, lng) || !Locate(lat, lng))
        return;
    ZrMapMarker marker;
    marker.position = ToWorld(lat, lng);
    marker.image = dotImage;
    if (std::isfinite(heading)) {
        marker.image = arrowImage;
        const double convergence = ZrUnits::Convergence(ZrUnits::wgs84, m_grid->Projection(), lat, lng);
        marker.angle = (std::isfinite(convergence) ? convergence : 0.0) - heading; // counter-clockwise
    }
    marker.isTurning = true;
    marker.size = Size;
    marker.colour = isFresh ? ZrTheme::vehicle : ZrTheme::ctrlOutlineCol;
    m_vehicle.SetMarkers({marker});
    if (m_isFollowing)
        m_camera.SetCentre(marker.position);
}

bool ZrVehicleMap::IsCentred() const
{
    if (m_vehicle.Markers().empty())
        return false;
    const QPointF away = m_vehicle.Markers().front().position - m_camera.Centre();
    return std::hypot(away.x(), away.y()) <= m_camera.Scale();
}
