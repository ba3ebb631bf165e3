#include "apps/ZrSurvey/ScenePage.h"

ScenePage::ScenePage(SurveyView& view)
    : SurveyPage(view, tr("3D"))
{
}

void ScenePage::Place() { }
