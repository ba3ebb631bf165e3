#include "apps/ZrSurvey/PlanPage.h"

PlanPage::PlanPage(SurveyView& view)
    : SurveyPage(view, tr("Plan"))
{
}

void PlanPage::Place() { }

bool PlanPage::OpenPlan(const QString& /*path*/)
{
    return false;
}
