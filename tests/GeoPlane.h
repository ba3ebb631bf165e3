#pragma once

// A plane that touches the earth, for tests that measure in metres what was planned in degrees. It goes by
// way of geocentric coordinates and shares no formula with the projections of the library.

#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/planning/ZrLocalFrame.h"

#include <array>
#include <cmath>
#include <vector>

using Plane = std::vector<ZrLocalPoint>;

constexpr double geoPi = 3.141592653589793;

/// Geocentric coordinates of a place on the WGS 84 ellipsoid, metres.
inline std::array<double, 3> Geocentric(ZrGeoPoint p)
{
    constexpr double a = 6378137.0;
    constexpr double f = 1.0 / 298.257223563;
    constexpr double e2 = f * (2.0 - f);
    const double lat = p.lat / 180.0 * geoPi;
    const double lng = p.lng / 180.0 * geoPi;
    const double nu = a / std::sqrt(1.0 - e2 * std::sin(lat) * std::sin(lat));
    return {nu * std::cos(lat) * std::cos(lng), nu * std::cos(lat) * std::sin(lng),
        nu * (1.0 - e2) * std::sin(lat)};
}

/// Metres along the ground: the chord with what an arc is longer. Good to 1e-7 of lengths up to 100 km.
inline double GroundDistance(ZrGeoPoint p, ZrGeoPoint q)
{
    const std::array<double, 3> a = Geocentric(p);
    const std::array<double, 3> b = Geocentric(q);
    const double chord = std::hypot(b[0] - a[0], b[1] - a[1], b[2] - a[2]);
    return chord + chord * chord * chord / (24.0 * 6371000.0 * 6371000.0);
}

/// Metres east (x) and north (y) of a place on the plane that touches the earth there. Within 5 km lengths
/// are true to 3e-7.
class GeoPlane
{
public:
    explicit GeoPlane(ZrGeoPoint origin)
        : m_origin(origin)
        , m_centre(Geocentric(origin))
    {
    }

    ZrLocalPoint To(ZrGeoPoint p) const
    {
        const std::array<double, 3> at = Geocentric(p);
        const double dx = at[0] - m_centre[0];
        const double dy = at[1] - m_centre[1];
        const double dz = at[2] - m_centre[2];
        const double lat = m_origin.lat / 180.0 * geoPi;
        const double lng = m_origin.lng / 180.0 * geoPi;
        const double outward = dx * std::cos(lng) + dy * std::sin(lng);
        return {dy * std::cos(lng) - dx * std::sin(lng), dz * std::cos(lat) - outward * std::sin(lat)};
    }

    /// The inverse, by Newton's method.
    ZrGeoPoint From(ZrLocalPoint wanted) const
    {
        constexpr double step = 1e-6; // degrees
        ZrGeoPoint p = m_origin;
        for (int i = 0; i < 20; ++i) {
            const ZrLocalPoint at = To(p);
            const ZrLocalPoint north = To({p.lat + step, p.lng});
            const ZrLocalPoint east = To({p.lat, p.lng + step});
            const double a = (north.x - at.x) / step;
            const double b = (east.x - at.x) / step;
            const double c = (north.y - at.y) / step;
            const double d = (east.y - at.y) / step;
            const double x = wanted.x - at.x;
            const double y = wanted.y - at.y;
            const double det = a * d - b * c;
            p.lat += (x * d - b * y) / det;
            p.lng += (a * y - x * c) / det;
        }
        p.lng = std::remainder(p.lng, 360.0);
        return p;
    }

    Plane To(const std::vector<ZrGeoPoint>& points) const
    {
        Plane all;
        for (const ZrGeoPoint& p : points)
            all.push_back(To(p));
        return all;
    }

    std::vector<ZrGeoPoint> From(const Plane& points) const
    {
        std::vector<ZrGeoPoint> all;
        for (const ZrLocalPoint& p : points)
            all.push_back(From(p));
        return all;
    }

private:
    ZrGeoPoint m_origin;
    std::array<double, 3> m_centre;
};

/// Metres between two points of the plane.
inline double Apart(ZrLocalPoint a, ZrLocalPoint b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

/// Metres from a point to a straight line between two others.
inline double ToSegment(ZrLocalPoint p, ZrLocalPoint a, ZrLocalPoint b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double squared = dx * dx + dy * dy;
    double share = squared > 0.0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / squared : 0.0;
    share = std::fmin(std::fmax(share, 0.0), 1.0);
    return std::hypot(p.x - a.x - share * dx, p.y - a.y - share * dy);
}

/// Metres from a point to a polyline.
inline double ToPolyline(ZrLocalPoint p, const Plane& line)
{
    double nearest = Apart(p, line.front());
    for (std::size_t i = 1; i < line.size(); ++i)
        nearest = std::fmin(nearest, ToSegment(p, line[i - 1], line[i]));
    return nearest;
}

/// Metres from a point to the edge of a ring.
inline double ToEdge(ZrLocalPoint p, const Plane& ring)
{
    return std::fmin(ToPolyline(p, ring), ToSegment(p, ring.back(), ring.front()));
}

/// Whether a point lies within a ring: the angles under which its edges are seen make a full turn.
inline bool IsWithin(ZrLocalPoint p, const Plane& ring)
{
    double turned = 0.0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const ZrLocalPoint a = ring[i];
        const ZrLocalPoint b = ring[(i + 1) % ring.size()];
        const double ax = a.x - p.x;
        const double ay = a.y - p.y;
        const double bx = b.x - p.x;
        const double by = b.y - p.y;
        turned += std::atan2(ax * by - ay * bx, ax * bx + ay * by);
    }
    return std::fabs(turned) > geoPi;
}
