#pragma once

#include "ZrKit/planning/ZrLocalFrame.h"

#include <vector>

/// What is run of one survey line: its pieces along the heading of the pattern, each a polyline of two points
/// or more, none of them repeated.
struct ZrSurveyLane
{
    double across = 0.0; ///< metres to the right of the heading, from wherever
    std::vector<std::vector<ZrLocalPoint>> pieces;
};
