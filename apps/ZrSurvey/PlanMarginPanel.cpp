#include "apps/ZrSurvey/PlanMarginPanel.h"

#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <algorithm>

namespace {

constexpr double largestMargin = 10000.0; ///< metres

} // namespace

PlanMarginPanel::PlanMarginPanel(SurveyView& view, QWidget* parent)
    : PlanPanel(view, parent)
    , m_margin(AddField(tr("Distance to no-go areas"), ZrInput::kindShortLength,
          [this](double value) { View().Model().plan.SetMargin(value); }))
{
    m_margin->setObjectName(QStringLiteral("margin"));
    m_margin->setToolTip(tr("The way is to keep so far from areas to keep clear of"));
    m_margin->SetRange(0.0, largestMargin);
}

void PlanMarginPanel::Show()
{
    const double margin = View().Model().plan.Margin();
    if (!m_margin->hasFocus() || !m_margin->isModified())
        m_margin->SetValue(margin);
    update();
}

int PlanMarginPanel::Height() const
{
    return ZrTheme::DpI(24) + std::max(ZrTheme::DpI(56), 44) + 2 * Gap();
}

void PlanMarginPanel::Place()
{
    PlaceFields({m_margin}, Gap(), true);
}
