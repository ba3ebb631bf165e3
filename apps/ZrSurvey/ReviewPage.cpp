#include "apps/ZrSurvey/ReviewPage.h"

ReviewPage::ReviewPage(SurveyView& view)
    : SurveyPage(view, tr("Review"))
{
}

void ReviewPage::Place() { }

void ReviewPage::OpenLog(const QString& /*path*/) { }
