#pragma once

#include "apps/ZrSurvey/SurveyPage.h"

class RecordPage : public SurveyPage
{
    Q_OBJECT

public:
    explicit RecordPage(SurveyView& view);

protected:
    void Place() override;
};
