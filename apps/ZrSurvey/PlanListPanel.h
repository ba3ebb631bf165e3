#pragma once

#include "apps/ZrSurvey/PlanPanel.h"

class ZrRoutePath;
class ZrTouchList;

/// The waypoints in their order, with the legs to them.
class PlanListPanel : public PlanPanel
{
    Q_OBJECT

public:
    PlanListPanel(SurveyView& view, QWidget* parent);

    /// The plan as it is now, with the lengths of \p path.
    void Show(int current, const ZrRoutePath& path);

    ZrTouchList* List() const { return m_list; }

    void Restyle() override;

Q_SIGNALS:
    void Chosen(int waypoint);
    void MoveWanted(int by); ///< of the current one along the route
    void DeleteWanted();
    void ReverseWanted();

protected:
    void Place() override;

private:
    ZrTouchList* m_list;
    QVector<ZrBtn*> m_buttons;
};
