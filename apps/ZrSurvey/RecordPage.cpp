#include "apps/ZrSurvey/RecordPage.h"

RecordPage::RecordPage(SurveyView& view)
    : SurveyPage(view, tr("Record"))
{
}

void RecordPage::Place() { }
