#pragma once

#include "apps/ZrSurvey/SurveyPage.h"

class ScenePage : public SurveyPage
{
    Q_OBJECT

public:
    explicit ScenePage(SurveyView& view);

protected:
    void Place() override;
};
