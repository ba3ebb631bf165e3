#pragma once

#include "ZrUtil/ZrTypes.h"

/// A simulated side-scan sonar. A plain value.
struct ZrSimSonarSettings
{
    static constexpr double MinRange = 1.0; ///< metres
    static constexpr double MaxRange = 1000.0;
    static constexpr int MinSamples = 16;
    static constexpr int MaxSamples = 16384;

    double range = 50.0; ///< slant range of the last sample, metres, `MinRange` to `MaxRange`
    int samples = 1024; ///< of one side, `MinSamples` to `MaxSamples`
    double rate = 0.0; ///< pings a second; 0, or more than the sound has time for: as many as it has
    double frequency = 455.0; ///< kHz
    double soundSpeed = 1500.0; ///< m/s, 1300 to 1700
    double tilt = 30.0; ///< degrees that the beams look down from the horizontal
    double beam = 40.0; ///< degrees across the track over which a beam falls to 1/e to either side
    double absorption = 0.01; ///< dB/m of the way out that the gain of the receiver does not make good
    double noise = 60.0; ///< amplitude of the water
    double gain = 9000.0; ///< amplitude of sand that faces the sonar
    int looks = 2; ///< echoes averaged in a sample: 1 for the strongest speckle; 0 for none at all
};
