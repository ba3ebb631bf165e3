#pragma once

#include "ZrKit/planning/ZrLocalFrame.h"

/// A place on the way, with the direction of travel there.
struct ZrSurveyPose
{
    ZrLocalPoint at;
    ZrLocalPoint ahead; ///< of length 1
};
