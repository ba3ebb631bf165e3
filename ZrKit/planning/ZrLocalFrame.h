#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrUtil/ZrProj.h"

#include <vector>

/// A point of a local frame, metres.
struct ZrLocalPoint
{
    double x = 0.0; ///< metres east
    double y = 0.0; ///< metres north
};

/// Plane coordinates around a place, for geometry in metres: a Transverse Mercator projection whose central
/// meridian goes through the origin, at scale 1.
///
/// Lengths are true to 1e-6 within 9 km east or west of the origin, to 1e-4 within 90 km, or within 10
/// degrees of longitude where that is less. The antimeridian is no seam, since longitudes are taken relative
/// to the origin. Not meant for latitudes beyond 89 degrees.
///
/// Does not touch the projection of the process: any thread, any time.
class ZR_KIT_EXPORT ZrLocalFrame
{
public:
    explicit ZrLocalFrame(ZrGeoPoint origin);

    /// Around the middle of the points: of their latitudes, and of their longitudes the shorter way round.
    /// Points that are not valid take no part; without any the origin is 0, 0.
    static ZrLocalFrame Around(const std::vector<ZrGeoPoint>& points);

    ZrGeoPoint Origin() const { return m_origin; }

    ZrLocalPoint ToLocal(ZrGeoPoint point) const;

    /// The longitude is within −180 ... 180.
    ZrGeoPoint ToGeo(ZrLocalPoint point) const;

private:
    ZrGeoPoint m_origin;
    ZrProj m_proj;
};
