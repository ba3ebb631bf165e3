#pragma once

#include <limits>

/// A place on the way of a vehicle; what is not known is NaN. A plain value.
struct ZrScenePlace
{
    double lat = std::numeric_limits<double>::quiet_NaN(); ///< degrees
    double lng = std::numeric_limits<double>::quiet_NaN();
    double depth = std::numeric_limits<double>::quiet_NaN(); ///< metres, down
    double altitude = std::numeric_limits<double>::quiet_NaN(); ///< metres above the sea floor
};
