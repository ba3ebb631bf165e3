#pragma once

// Pings and settings for the tests of tracks.

#include "ZrKit/sonar/ZrSonarTrack.h"

#include <cmath>
#include <vector>

namespace track_test {

using Pings = std::vector<ZrSonarPing>;

constexpr double start = 1614780309.0; ///< 2021-03-03T14:05:09Z

inline ZrSonarPing Ping(double time, ZrGeoPoint at, double heading = std::nan(""))
{
    ZrSonarPing ping;
    ping.time = time;
    ping.pose.position = at;
    ping.pose.heading = heading;
    return ping;
}

inline double AngleBetween(double a, double b)
{
    return std::fabs(std::remainder(a - b, 360.0));
}

inline ZrSonarTrackSettings Smoothing(double seconds)
{
    ZrSonarTrackSettings settings;
    settings.smoothing = seconds;
    return settings;
}

} // namespace track_test
