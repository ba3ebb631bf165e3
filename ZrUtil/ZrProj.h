#pragma once

#include "ZrUtil/ZrExport.h"

namespace zr {
class ZrSetModule;
}

/// Parameters of a Transverse Mercator projection. The defaults are those of UTM zone 30 north.
class ZR_UTIL_EXPORT ZrProj
{
public:
    double latOrigin = 0.0; ///< latitude origin φ0, radians
    double lngOrigin = -0.0523598775598; ///< longitude origin λ0, the central meridian, radians
    double falseEast = 500000.0; ///< false easting E0, metres
    double falseNorth = 0.0; ///< false northing N0, metres
    double scaleFactor = 0.9996; ///< scale F0 on the central meridian, dimensionless

    /// Sets the longitude origin and the false northing to those of the UTM zone that holds the position, in
    /// degrees; nothing else changes. The false northing is 10,000,000 m for a negative latitude, else 0.
    ///
    /// Zones are 6 degrees wide everywhere: the exceptions around Norway and Svalbard are not made.
    /// Longitudes from 180 on start again at zone 1; below −180 the central meridian runs on (−183 for −181).
    /// A longitude that is not finite gives a longitude origin of NaN.
    void SetupUTM(double lat, double lng);

    /// Binds "latitude origin", "longitude origin" (both radians), "false easting", "false northing" and
    /// "scale factor".
    void serialise(zr::ZrSetModule& module);
};
