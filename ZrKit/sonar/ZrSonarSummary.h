#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarPings.h"

#include <cstddef>
#include <limits>
#include <set>
#include <vector>

class ZrSonarTrack;

/// The figures of a side-scan line: what was recorded, how fast, how far, over how much seabed.
///
/// A pause is a step between two pings of more than `longestStep`, or one by which times fall by more than a
/// second. Pauses part stretches; what is said about rates, ways and areas goes over the stretches alone.
/// Pings of several sonars (sources) are counted together.
///
/// What cannot be known is NaN. A plain value.
struct ZR_KIT_EXPORT ZrSonarSummary
{
    static constexpr double longestStep = 10.0; ///< seconds
    static constexpr double farFrom = 60.0; ///< seconds from which a position lies far from a fix

    /// The least and the greatest of some values.
    struct Range
    {
        double least = std::numeric_limits<double>::quiet_NaN();
        double most = std::numeric_limits<double>::quiet_NaN();

        void Add(double value); ///< ignored when not finite
    };

    struct Side
    {
        std::size_t pings = 0;
        Range samples; ///< number in a ping
        Range slantRange; ///< metres
        Range frequency; ///< kHz
        Range soundSpeed; ///< m/s
    };

    /// \p track is that of \p pings.
    ZrSonarSummary(const ZrSonarPings& pings, const ZrSonarTrack& track);

    std::size_t pings = 0;
    std::size_t pairs = 0; ///< pings with both sides
    std::set<u16> sources;
    Side sides[2]; ///< by `eSonarSide`

    Range time; ///< the earliest and the latest ping, seconds since the epoch
    std::size_t pauses = 0;
    double pauseTime = 0.0; ///< seconds in pauses, those where times fall not counted
    double rate = std::numeric_limits<double>::quiet_NaN(); ///< pings per second

    double length = 0.0; ///< metres over ground
    double speed = std::numeric_limits<double>::quiet_NaN(); ///< metres per second, the mean
    double spacing = std::numeric_limits<double>::quiet_NaN(); ///< metres from line to line, the mean

    Range altitude; ///< metres above the seabed, as recorded
    Range depth; ///< metres below the surface

    /// Square metres: each step of the way times the mean width of the swath at its ends. The swath is the
    /// ground range of each side that was recorded, over a flat seabed at the recorded altitude; the slant
    /// range where that is not known. Seabed that is seen twice counts twice.
    double area = std::numeric_limits<double>::quiet_NaN();

    std::size_t withoutPosition = 0; ///< pings
    std::size_t farFromFix = 0; ///< pings whose position is held or bridged over more than `farFrom` seconds
    std::size_t withoutAltitude = 0; ///< pings
};
