#pragma once

#include "ZrKit/recording/ZrLiveValue.h"

#include <limits>

/// What is known of a vehicle at the moment, each value with the time it came. A plain value.
struct ZrLiveState
{
    ZrLiveValue latitude; ///< degrees, north positive; of the same moment as `longitude`
    ZrLiveValue longitude; ///< degrees, east positive
    ZrLiveValue fix; ///< quality of the last position fix, see `ZrFixRecord`; its age is that of the fix
    ZrLiveValue satellites;
    ZrLiveValue heading; ///< degrees true
    ZrLiveValue course; ///< degrees true, over ground
    ZrLiveValue speed; ///< m/s, over ground
    ZrLiveValue waterSpeed; ///< m/s, through the water
    ZrLiveValue depth; ///< metres below the surface
    ZrLiveValue altitude; ///< metres above the sea floor
    ZrLiveValue pitch; ///< degrees, bow up
    ZrLiveValue roll; ///< degrees, starboard down
    ZrLiveValue temperature; ///< degrees Celsius of the water
    double lastData
        = -std::numeric_limits<double>::infinity(); ///< when a record or a sound sentence came last
    double dataTime = 0.0; ///< seconds since the epoch that the newest record tells; 0 before the first
};
