#include "ZrKit/geo/ZrGridBatch.h"

#include "ZrUtil/ZrUnits.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double radians = 0.017453292519943295;
constexpr double degrees = 57.29577951308232;

/// The third flattening n up to which the series are good; that of the earth is 0.0017.
constexpr double largestN = 0.003;

/// The largest error of the start that one correction mends, radians.
constexpr double largestError = 1e-8;

} // namespace

ZrGridBatch::ZrGridBatch(const ZrSphd& spheroid, const ZrProj& proj)
    : m_spheroid(spheroid)
    , m_proj(proj)
    , m_axis(spheroid.semiMinor * proj.scaleFactor)
    , m_radius(spheroid.semiMajor * proj.scaleFactor)
    , m_perRadius(1.0 / m_radius)
    , m_e2(spheroid.eccentricitySqr)
    , m_per1e2(1.0 / (1.0 - m_e2))
{
    const double n = (spheroid.semiMajor - spheroid.semiMinor) / (spheroid.semiMajor + spheroid.semiMinor);
    const double n2 = n * n;
    const double n3 = n2 * n;
    // sin k(φ − φ0) cos k(φ + φ0) is half of sin 2kφ − sin 2kφ0: the part of the origin is worked out once.
    m_arc0 = 1.0 + n + 1.25 * n2 + 1.25 * n3;
    m_arc2 = 0.5 * (3.0 * n + 3.0 * n2 + 2.625 * n3);
    m_arc4 = 0.5 * (1.875 * n2 + 1.875 * n3);
    m_arc6 = 0.5 * 1.4583333333333333 * n3;
    m_perArc0 = 1.0 / m_arc0;
    const double origin = proj.latOrigin;
    m_originArc = m_arc0 * origin + ArcPart({std::sin(origin), std::cos(origin)});
    m_isEarthLike = std::fabs(n) <= largestN;
    // Inverse of the arc to n³: off by less than 2e-11 radians on the earth.
    m_start2 = 1.5 * n - 27.0 / 32.0 * n3;
    m_start4 = 21.0 / 16.0 * n2;
    m_start6 = 151.0 / 96.0 * n3;
}

ZrGridBatch ZrGridBatch::UtmAt(double lat, double lng)
{
    ZrProj proj;
    proj.SetupUTM(lat, lng);
    return ZrGridBatch(ZrSphd(), proj);
}

ZrGridBatch ZrGridBatch::UtmZone(int zone, bool south)
{
    return UtmAt(south ? -1.0 : 1.0, 6.0 * zone - 183.0);
}

/// What the arc has beside its linear part, over the polar radius.
double ZrGridBatch::ArcPart(const Angle& at) const
{
    const double sin2 = 2.0 * at.sin * at.cos;
    const double cos2 = (at.cos - at.sin) * (at.cos + at.sin);
    const double sin4 = 2.0 * sin2 * cos2;
    const double sin6 = sin2 * (3.0 - 4.0 * sin2 * sin2);
    return -m_arc2 * sin2 + m_arc4 * sin4 - m_arc6 * sin6;
}

void ZrGridBatch::ToGridOne(double lat, double lng, double& east, double& north) const
{
    const double phi = lat * radians;
    const Angle at{std::sin(phi), std::cos(phi)};
    const double s = at.sin;
    const double c = at.cos;
    const double t = c == 0.0 ? 100000.0 : s / c;
    const double t2 = t * t;
    const double w = 1.0 - m_e2 * s * s;
    const double nu = m_radius / std::sqrt(w);
    const double ratio = w * m_per1e2; // ν/ρ
    const double eta2 = ratio - 1.0;
    const double p = lng * radians - m_proj.lngOrigin;
    const double p2 = p * p;
    const double c2 = c * c;
    const double arc = m_axis * (m_arc0 * phi + ArcPart(at) - m_originArc);
    const double k = nu * c * p;
    const double q = c2 * p2;
    north = (m_proj.falseNorth + arc)
        + k * s * p
            * (0.5 + q / 24.0 * (5.0 - t2 + 9.0 * eta2) + q * q / 720.0 * (61.0 - 58.0 * t2 + t2 * t2));
    east = m_proj.falseEast
        + k
            * (1.0 + q / 6.0 * (ratio - t2)
                + q * q / 120.0 * (5.0 - 18.0 * t2 + t2 * t2 + 14.0 * eta2 - 58.0 * t2 * eta2));
}

void ZrGridBatch::ToLatLngOne(double east, double north, double& lat, double& lng) const
{
    // The latitude of the same arc: start, and one correction by what the arc of the start is off.
    const double target = (north - m_proj.falseNorth) / m_axis + m_originArc;
    const double mu = target * m_perArc0;
    const Angle rectified{std::sin(mu), std::cos(mu)};
    const double sin2 = 2.0 * rectified.sin * rectified.cos;
    const double cos2 = (rectified.cos - rectified.sin) * (rectified.cos + rectified.sin);
    const double turn
        = m_start2 * sin2 + m_start4 * 2.0 * sin2 * cos2 + m_start6 * sin2 * (3.0 - 4.0 * sin2 * sin2);
    const double turn2 = turn * turn;
    const double turnSin = turn * (1.0 - turn2 / 6.0 * (1.0 - turn2 / 20.0));
    const double turnCos = 1.0 - turn2 / 2.0 * (1.0 - turn2 / 12.0 * (1.0 - turn2 / 30.0));
    const Angle start{
        rectified.sin * turnCos + rectified.cos * turnSin, rectified.cos * turnCos - rectified.sin * turnSin};
    const double slope = m_arc0 - 2.0 * m_arc2 * (start.cos - start.sin) * (start.cos + start.sin);
    const double error = (target - m_arc0 * (mu + turn) - ArcPart(start)) / slope;
    if (!(m_isEarthLike && std::fabs(error) < largestError)) { // or a northing beyond all sense
        ZrUnits::EN2LL(m_spheroid, m_proj, east, north, lat, lng);
        return;
    }
    const double phi = mu + turn + error;
    const double s = start.sin + start.cos * error;
    const double c = start.cos - start.sin * error;

    const double sec = c == 0.0 ? 1e11 : 1.0 / c;
    const double t = c == 0.0 ? 100000.0 : s * sec;
    const double t2 = t * t;
    const double t4 = t2 * t2;
    const double w = 1.0 - m_e2 * s * s;
    const double ratio = w * m_per1e2; // ν/ρ
    const double eta2 = ratio - 1.0;
    const double u = (east - m_proj.falseEast) * std::sqrt(w) * m_perRadius; // dE/ν
    const double u2 = u * u;
    const double u4 = u2 * u2;
    const double north2 = 0.5 - u2 / 24.0 * (5.0 + 3.0 * t2 + eta2 - 9.0 * t2 * eta2)
        + u4 / 720.0 * (61.0 + 90.0 * t2 + 45.0 * t4);
    const double east1 = 1.0 - u2 / 6.0 * (ratio + 2.0 * t2)
        + u4 / 120.0 * (5.0 + 28.0 * t2 + 24.0 * t4)
        // 622, as `ZrUnits::EN2LL` has it.
        - u4 * u2 / 5040.0 * (61.0 + 622.0 * t2 + 1320.0 * t4 + 720.0 * t4 * t2);
    lat = (phi - t * ratio * u2 * north2) * degrees;
    lng = (m_proj.lngOrigin + sec * u * east1) * degrees;
}

std::size_t ZrGridBatch::ToGrid(zr::span<const double> lats, zr::span<const double> lngs,
    zr::span<double> easts, zr::span<double> norths) const
{
    const std::size_t count = std::min({lats.size(), lngs.size(), easts.size(), norths.size()});
    for (std::size_t i = 0; i < count; ++i) {
        double east;
        double north;
        ToGridOne(lats[i], lngs[i], east, north);
        easts[i] = east;
        norths[i] = north;
    }
    return count;
}

std::size_t ZrGridBatch::ToLatLng(zr::span<const double> easts, zr::span<const double> norths,
    zr::span<double> lats, zr::span<double> lngs) const
{
    const std::size_t count = std::min({easts.size(), norths.size(), lats.size(), lngs.size()});
    for (std::size_t i = 0; i < count; ++i) {
        double lat;
        double lng;
        ToLatLngOne(easts[i], norths[i], lat, lng);
        lats[i] = lat;
        lngs[i] = lng;
    }
    return count;
}
