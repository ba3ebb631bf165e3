#pragma once

#include "ZrKit/planning/ZrPlanDocument.h"
#include "apps/ZrSurvey/SurveyFeed.h"
#include "apps/ZrSurvey/SurveyPlayer.h"
#include "apps/ZrSurvey/SurveyRecording.h"
#include "apps/ZrSurvey/SurveySettings.h"
#include "apps/ZrSurvey/SurveyVehicle.h"
#include "apps/ZrSurvey/UnsavedEvents.h"

/// What the pages share.
struct SurveyModel
{
    /// \param dataDir folder for what outlives the program besides the settings; empty to keep nothing
    explicit SurveyModel(const QString& dataDir)
        : plan(dataDir.isEmpty() ? QString() : dataDir + QStringLiteral("/plan-draft.json"),
            dataDir.isEmpty() ? QString() : dataDir + QStringLiteral("/plans"))
    {
    }

    SurveySettings settings;
    ZrPlanDocument plan;
    SurveyVehicle vehicle; ///< live
    SurveyVehicle reviewed; ///< at the cursor of the review
    bool isReviewLast = false; ///< of "Record" and "Review" the latter was looked at last: 3D shows that
    SurveyPlayer player; ///< of what is reviewed
    SurveyRecording recording;
    SurveyFeed feed;
    UnsavedEvents unsaved;
};
