#include "ZrKit/planning/ZrLocalFrame.h"

#include "ZrUtil/ZrUnits.h"

#include <algorithm>

namespace {

/// The same longitude within −180 ... 180.
double Wrapped(double lng)
{
    return std::remainder(lng, 360.0);
}

} // namespace

ZrLocalFrame::ZrLocalFrame(ZrGeoPoint origin)
    : m_origin(origin)
{
    // The origin is the zero meridian of the projection: what is projected is the difference in longitude.
    m_proj.latOrigin = 0.0;
    m_proj.lngOrigin = 0.0;
    m_proj.falseEast = 0.0;
    m_proj.falseNorth = 0.0;
    m_proj.scaleFactor = 1.0;
    double east = 0.0;
    double north = 0.0;
    ZrUnits::LLToEN(ZrSphd(), m_proj, origin.lat, 0.0, east, north);
    m_proj.falseNorth = -north;
}

ZrLocalFrame ZrLocalFrame::Around(const std::vector<ZrGeoPoint>& points)
{
    const auto first
        = std::find_if(points.begin(), points.end(), [](const ZrGeoPoint& p) { return p.IsValid(); });
    if (first == points.end())
        return ZrLocalFrame({0.0, 0.0});
    double south = first->lat;
    double north = first->lat;
    double west = 0.0; // relative to the first point
    double east = 0.0;
    for (const ZrGeoPoint& point : points) {
        if (!point.IsValid())
            continue;
        const double lng = Wrapped(point.lng - first->lng);
        south = std::min(south, point.lat);
        north = std::max(north, point.lat);
        west = std::min(west, lng);
        east = std::max(east, lng);
    }
    return ZrLocalFrame({(south + north) / 2.0, Wrapped(first->lng + (west + east) / 2.0)});
}

ZrLocalPoint ZrLocalFrame::ToLocal(ZrGeoPoint point) const
{
    ZrLocalPoint local;
    ZrUnits::LLToEN(ZrSphd(), m_proj, point.lat, Wrapped(point.lng - m_origin.lng), local.x, local.y);
    return local;
}

ZrGeoPoint ZrLocalFrame::ToGeo(ZrLocalPoint point) const
{
    ZrGeoPoint geo;
    ZrUnits::EN2LL(ZrSphd(), m_proj, point.x, point.y, geo.lat, geo.lng);
    geo.lng = Wrapped(m_origin.lng + geo.lng);
    return geo;
}
