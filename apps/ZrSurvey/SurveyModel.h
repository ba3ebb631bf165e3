#pragma once

#include "ZrKit/planning/ZrPlanDocument.h"
#include "apps/ZrSurvey/SurveyFeed.h"
#include "apps/ZrSurvey/SurveyRecording.h"
#include "apps/ZrSurvey/SurveySettings.h"
#include "apps/ZrSurvey/SurveyVehicle.h"

/// What the pages share.
struct SurveyModel
{
    /// \param dataDir folder for what outlives the program besides the settings; empty to keep nothing
    explicit SurveyModel(const QString& dataDir)
        : plan(dataDir.isEmpty() ? QString() : dataDir + QStringLiteral("/plan-draft.json"))
    {
    }

    SurveySettings settings;
    ZrPlanDocument plan;
    SurveyVehicle vehicle;
    SurveyRecording recording;
    SurveyFeed feed;
};
