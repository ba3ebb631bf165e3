#pragma once

#include <cmath>
#include <limits>

/// Where the vehicle was at one moment of a track. A plain value; what is not known is NaN.
struct ZrTrackPoint
{
    double time = std::numeric_limits<double>::quiet_NaN(); ///< seconds since 1970-01-01 UTC
    double latitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees, north positive
    double longitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees, east positive
    double depth = std::numeric_limits<double>::quiet_NaN(); ///< metres below the surface, positive down
    double altitude = std::numeric_limits<double>::quiet_NaN(); ///< metres above the seabed
    double heading = std::numeric_limits<double>::quiet_NaN(); ///< degrees clockwise from true north
    double pitch = std::numeric_limits<double>::quiet_NaN(); ///< degrees, bow up positive
    double roll = std::numeric_limits<double>::quiet_NaN(); ///< degrees, starboard down positive

    /// Whether there is a position on the earth: a latitude within ±90 and a longitude within ±360 degrees.
    bool HasPosition() const { return std::fabs(latitude) <= 90.0 && std::fabs(longitude) <= 360.0; }
};
