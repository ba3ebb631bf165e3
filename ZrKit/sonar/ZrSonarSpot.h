#pragma once

#include "ZrKit/sonar/ZrSonarSide.h"

#include <cstddef>

/// A place in the image of a side-scan line. A plain value.
struct ZrSonarSpot
{
    std::size_t ping = 0; ///< line, from 0
    eSonarSide side = sidePort;
    double sample = 0.0; ///< from 0, nearest first; whole numbers are the middles of samples
};
