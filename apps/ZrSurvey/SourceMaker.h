#pragma once

#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrUtil/ZrWpts.h"

class SurveySettings;

/// Makes the source that the settings name. The user-interface thread; what it gives runs on any.
class SourceMaker
{
public:
    /// \param plan that the simulated vehicle runs; one of its own while there are fewer than two waypoints
    static ZrRecordingSession::MakeSource Make(const SurveySettings& settings, const ZrWpts& plan);

    /// What the plan of a recording is: \p plan, or that which the simulated vehicle runs.
    static ZrWpts PlanOf(const SurveySettings& settings, const ZrWpts& plan);

    /// What a source depends on: another text means that another one is to be opened.
    static QString Key(const SurveySettings& settings);
};
