#pragma once

#include "apps/ZrSurvey/PlanPanel.h"

/// How far the way has to keep from areas to keep clear of; above the checks, which look at it.
class PlanMarginPanel : public PlanPanel
{
    Q_OBJECT

public:
    PlanMarginPanel(SurveyView& view, QWidget* parent);

    void Show(); ///< the plan's as it is now

    int Height() const; ///< that it needs, real pixels

protected:
    void Place() override;

private:
    ZrInput* m_margin;
};
