#pragma once

#include "ZrUtil/ZrExport.h"

namespace zr {
class ZrSetModule;
}

/// Reference spheroid: the figure of the Earth that positions refer to.
///
/// The four values are stored independently, none is derived from another. The conversions of `ZrUnits` use
/// the two axes and the eccentricity; the flattening is carried along. The defaults are those of WGS 84,
/// rounded to the digits shown.
class ZR_UTIL_EXPORT ZrSphd
{
public:
    double semiMajor = 6378137.0; ///< equatorial radius a, metres
    double semiMinor = 6356752.314; ///< polar radius b, metres
    double eccentricitySqr = 0.006694380023; ///< first eccentricity squared e², dimensionless
    double flattening = 298.2572; ///< inverse flattening 1/f, dimensionless

    /// Binds "semi-major", "semi-minor", "flattening" and "eccentricity sqr".
    void serialise(zr::ZrSetModule& module);
};
