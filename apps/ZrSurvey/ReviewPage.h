#pragma once

#include "apps/ZrSurvey/SurveyPage.h"

class ReviewPage : public SurveyPage
{
    Q_OBJECT

public:
    explicit ReviewPage(SurveyView& view);
    void OpenLog(const QString& path);

protected:
    void Place() override;
};
