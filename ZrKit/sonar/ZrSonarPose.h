#pragma once

#include "ZrKit/planning/ZrGeoPoint.h"

#include <limits>

/// Where the vehicle was and how it lay at the moment of a ping. A plain value; what is not known is NaN.
struct ZrSonarPose
{
    ZrGeoPoint position; ///< of the vehicle
    double heading = std::numeric_limits<double>::quiet_NaN(); ///< degrees from true north, 0 to 360
    double pitch = std::numeric_limits<double>::quiet_NaN(); ///< degrees, bow up positive
    double roll = std::numeric_limits<double>::quiet_NaN(); ///< degrees, starboard down positive
    double depth = std::numeric_limits<double>::quiet_NaN(); ///< metres below the surface
    double altitude = std::numeric_limits<double>::quiet_NaN(); ///< metres above the seabed, as recorded

    /// Seconds between the two fixes that the position lies between, or to the one it is taken from; 0 when
    /// a fix has the time of the ping. What lies minutes from a fix is a guess.
    double gap = std::numeric_limits<double>::infinity();
};
