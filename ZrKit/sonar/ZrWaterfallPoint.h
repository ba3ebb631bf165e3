#pragma once

#include "ZrKit/sonar/ZrSonarSide.h"

#include <cmath>
#include <limits>

/// What lies at a pixel of a side-scan image. A plain value.
struct ZrWaterfallPoint
{
    /// Counted as in the log; the fraction tells how far it is to the next one, half a ping beyond the ends
    /// at most. NaN where the image shows nothing: outside, in a gap of the track, beyond the recorded range.
    double ping = std::numeric_limits<double>::quiet_NaN();
    eSonarSide side = sidePort;
    double slantRange = std::numeric_limits<double>::quiet_NaN(); ///< metres
    /// Metres; 0 in the water column, NaN without an altitude.
    double groundRange = std::numeric_limits<double>::quiet_NaN();

    bool IsValid() const { return !std::isnan(ping); }
};
