#pragma once

#include "ZrKit/planning/ZrLocalFrame.h"

#include <cstddef>

/// A ping of one side on the grid of a mosaic, metres. A plain value.
struct ZrMosaicPing
{
    std::size_t index = 0; ///< in its log
    ZrLocalPoint at; ///< beneath the sonar
    ZrLocalPoint ray; ///< outwards, for one metre of ground range
    double reach = 0.0; ///< ground range of the end of the last sample
    bool joined = false; ///< to the next one: no gap between them
};
