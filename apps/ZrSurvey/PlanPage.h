#pragma once

#include "apps/ZrSurvey/SurveyPage.h"

class PlanPage : public SurveyPage
{
    Q_OBJECT

public:
    explicit PlanPage(SurveyView& view);
    bool OpenPlan(const QString& path); ///< false, after a message, when it cannot be read

protected:
    void Place() override;
};
