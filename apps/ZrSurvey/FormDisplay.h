#pragma once

#include "apps/ZrSurvey/SurveyForm.h"

/// Colours and the size of the window.
class FormDisplay : public SurveyForm
{
    Q_OBJECT

public:
    explicit FormDisplay(SurveyView& view);

    bool IsLive() const override { return true; }
};
