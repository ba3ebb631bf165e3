#pragma once

#include "apps/ZrSurvey/SurveyForm.h"

/// How sonar is displayed.
class FormSonar : public SurveyForm
{
    Q_OBJECT

public:
    explicit FormSonar(SurveyView& view);

    bool IsLive() const override { return true; }
};
