#pragma once

#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrSurveyCorridorSettings.h"
#include "ZrKit/planning/ZrSurveyPatternSettings.h"
#include "ZrKit/planning/ZrSurveyPlan.h"
#include "apps/ZrSurvey/PlanPanel.h"

class QTimer;
class ZrSlider;
class ZrWpt;

/// Survey lines over an area, or along a guide, before they become part of the plan.
class PlanPatternPanel : public PlanPanel
{
    Q_OBJECT

public:
    PlanPatternPanel(SurveyView& view, QWidget* parent);

    void SetArea(const ZrArea& area); ///< plans lines over it
    void SetGuide(const std::vector<ZrGeoPoint>& guide); ///< plans lines along it

    const ZrSurveyPlan& Plan() const { return m_plan; } ///< empty when there is a problem

    QString Problem() const { return m_problem; }

    void Settle(); ///< plans what was given last, at once

    /// The waypoints as a route has them.
    std::vector<ZrWpt> Waypoints() const;

    void Restyle() override;

Q_SIGNALS:
    void Planned(); ///< the plan is another one
    void ApplyWanted();
    void CancelWanted();

protected:
    void Place() override;
    void paintEvent(QPaintEvent* event) override;

private:
    void Later(); ///< plans soon: a slider gives many values
    void Make();
    void ShowChoices();

    ZrArea m_area;
    std::vector<ZrGeoPoint> m_guide;
    bool m_isCorridor = false;
    ZrSurveyPatternSettings m_settings;
    int m_linesBeside = 2;
    ZrSurveyPlan m_plan;
    QString m_problem;
    QTimer* m_timer;
    ZrInput* m_spacing;
    ZrInput* m_radius;
    ZrInput* m_overshoot;
    ZrInput* m_speed;
    ZrInput* m_beside;
    ZrSlider* m_heading;
    ZrBtn* m_along;
    ZrBtn* m_order;
    ZrBtn* m_entry;
    ZrBtn* m_apply;
    ZrBtn* m_cancel;
    QRect m_textRect;
};
