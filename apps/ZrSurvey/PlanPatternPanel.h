#pragma once

#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrSurveyCorridorSettings.h"
#include "ZrKit/planning/ZrSurveyPatternSettings.h"
#include "ZrKit/planning/ZrSurveyPlanner.h"
#include "apps/ZrSurvey/PlanPanel.h"

#include <QTimer>

#include <memory>
#include <vector>

class ZrSlider;

/// Survey lines over an area, or along a guide, before they become part of the plan.
///
/// They are planned in a thread of their own; what is shown meanwhile are the lines of before, with a word of
/// that.
class PlanPatternPanel : public PlanPanel
{
    Q_OBJECT

public:
    PlanPatternPanel(SurveyView& view, QWidget* parent);

    /// The plan that the lines are for; plans them anew.
    void SetBase(std::shared_ptr<const ZrSurveyPreview::Base> base);

    void SetArea(const ZrArea& area); ///< plans lines over it
    void SetGuide(const std::vector<ZrGeoPoint>& guide); ///< plans lines along it

    const ZrSurveyPlan& Plan() const { return m_planner.Plan(); } ///< empty when there is a problem

    const ZrSurveyPreview& Preview() const { return m_planner.Preview(); } ///< of the plan with the lines

    QString Problem() const { return m_planner.Error(); }

    /// Whether the plan is that of the parameters that are shown.
    bool IsCurrent() const { return !m_timer->isActive() && m_planner.IsCurrent(); }

    /// Has `Applied` told of the lines of exactly the parameters that are shown: at once if they are planned,
    /// else when they are, unless a parameter is changed before.
    void Apply();

    /// The waypoints as a route has them.
    const std::vector<ZrWpt>& Waypoints() const { return m_planner.Waypoints(); }

    void Restyle() override;

Q_SIGNALS:
    void Planned(); ///< the plan is another one
    void Applied(); ///< the lines are wanted in the plan
    void CancelWanted();

protected:
    void Place() override;
    void paintEvent(QPaintEvent* event) override;

private:
    void Later(); ///< plans soon: a slider gives many values
    void Make();
    void OnReady();
    void ShowState();
    void ShowChoices();

    ZrArea m_area;
    std::vector<ZrGeoPoint> m_guide;
    bool m_isCorridor = false;
    ZrSurveyPatternSettings m_settings;
    int m_linesBeside = 2;
    ZrSurveyPlanner m_planner;
    QTimer* m_timer;
    QTimer* m_sign; ///< until the work is worth a word
    bool m_isApplyDue = false; ///< as soon as the lines are planned
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
