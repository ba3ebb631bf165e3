#pragma once

#include "ZrKit/planning/ZrGeoPoint.h"

#include <limits>

/// What the sensors of a simulated vehicle tell. A plain value; NaN where one has nothing to say.
struct ZrSimReading
{
    double time = 0.0; ///< seconds since the start
    ZrGeoPoint position;
    bool isPositionHeld = false; ///< the position is that of the reading before, or not known at all
    double heading = std::numeric_limits<double>::quiet_NaN(); ///< degrees from true north, 0 to 360
    double course = std::numeric_limits<double>::quiet_NaN(); ///< degrees from true north, 0 to 360
    double groundSpeed = std::numeric_limits<double>::quiet_NaN(); ///< m/s
    double waterSpeed = std::numeric_limits<double>::quiet_NaN(); ///< m/s
    double depth = std::numeric_limits<double>::quiet_NaN(); ///< metres below the surface
    double altitude = std::numeric_limits<double>::quiet_NaN(); ///< metres above the floor
    double pitch = std::numeric_limits<double>::quiet_NaN(); ///< degrees, bow up positive
    double roll = std::numeric_limits<double>::quiet_NaN(); ///< degrees, starboard down positive
};
