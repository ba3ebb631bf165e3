#pragma once

#include "ZrKit/sonar/ZrSonarPose.h"
#include "ZrKit/sonar/ZrSonarSide.h"
#include "ZrUtil/ZrTypes.h"

#include <limits>

/// What one side of a ping recorded, without its samples.
struct ZrSonarChannel
{
    u64 pos = 0; ///< position of the item in the log; 0 when this side has nothing for the ping
    double slantRange
        = std::numeric_limits<double>::quiet_NaN(); ///< metres from the sonar to the last sample
    u32 sampleCount = 0;
    float frequency = std::numeric_limits<float>::quiet_NaN(); ///< kHz, above 0; NaN when not known
    float soundSpeed = std::numeric_limits<float>::quiet_NaN(); ///< m/s, above 0; NaN when not known

    bool IsThere() const { return pos != 0; }

    /// Metres of slant range from one sample to the next; NaN without samples.
    double SampleLength() const
    {
        return sampleCount == 0 ? std::numeric_limits<double>::quiet_NaN() : slantRange / sampleCount;
    }
};

/// One ping of a side-scan sonar: a line of the image, with both its sides. A plain value.
///
/// Sample i of a channel covers the slant ranges from i to i + 1 sample lengths; its middle is what positions
/// are told for.
struct ZrSonarPing
{
    double time = 0.0; ///< seconds since the epoch
    u32 number = 0; ///< as the sonar counts
    u16 source = 0; ///< source identifier of its items: which sonar, where a log holds several
    ZrSonarPose pose; ///< of the vehicle at that time
    ZrSonarChannel sides[2]; ///< by `eSonarSide`
};
