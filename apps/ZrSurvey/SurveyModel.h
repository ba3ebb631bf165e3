#pragma once

#include "apps/ZrSurvey/SurveySettings.h"

/// What the pages share.
struct SurveyModel
{
    SurveySettings settings;
};
