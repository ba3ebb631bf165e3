#pragma once

#include "ZrUtil/ZrTypes.h"

#include <array>
#include <limits>
#include <vector>

/// One ping as a waterfall shows it: samples of 8 bits, ready for a palette, by `eSonarSide`. A plain value.
///
/// \code
/// gain.Apply(samples, side, ping.sides[side].slantRange, altitude);
/// contrast.Map(samples, line.samples[side]); // ZrSonarContrast
/// line.range[side] = ping.sides[side].slantRange;
/// \endcode
///
/// Sample i covers the slant ranges from i to i + 1 sample lengths, as in `ZrSonarPing`. A side without
/// samples, or with a range that is not finite and above 0, shows nothing.
struct ZrWaterfallLine
{
    double time = 0.0; ///< seconds since the epoch
    double altitude = std::numeric_limits<double>::quiet_NaN(); ///< metres above the seabed; NaN not known
    double along = std::numeric_limits<double>::quiet_NaN(); ///< metres along the track; NaN not known
    std::array<double, 2> range{}; ///< slant range from the sonar to the end of the last sample, metres
    std::array<std::vector<u8>, 2> samples; ///< nearest first
};
