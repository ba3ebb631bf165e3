#pragma once

#include "ZrKit/planning/ZrSurveySettings.h"

/// How a corridor along a guide line is to be covered. The heading of the pattern is the way along the guide;
/// its near end is where the guide begins.
struct ZrSurveyCorridorSettings : ZrSurveySettings
{
    double lineSpacing = 50.0; ///< metres from line to line, 0.01 or more
    int linesLeft = 1; ///< lines to the left of the guide, 0 to 1,000
    int linesRight = 1; ///< lines to the right of the guide, 0 to 1,000
    bool centreLine = true; ///< whether the guide itself is a line
};
