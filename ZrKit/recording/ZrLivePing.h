#pragma once

#include "ZrKit/records/ZrPingRecord.h"

#include <limits>

/// One side of a ping as it came, for a live waterfall. A plain value.
struct ZrLivePing
{
    double time = 0.0; ///< seconds since the epoch
    double altitude = std::numeric_limits<double>::quiet_NaN(); ///< metres above the sea floor; NaN not known
    ZrPingRecord ping;
};
