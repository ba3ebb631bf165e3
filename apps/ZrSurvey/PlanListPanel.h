#pragma once

#include "apps/ZrSurvey/PlanPanel.h"

class ZrRoutePath;
class ZrTouchList;
struct ZrListItem;

/// The waypoints in their order, with the legs to them.
class PlanListPanel : public PlanPanel
{
    Q_OBJECT

public:
    /// \param path called for the lengths of the legs when rows are painted
    PlanListPanel(SurveyView& view, QWidget* parent, const std::function<const ZrRoutePath&()>& path);

    void Show(int current); ///< the plan as it is now

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
    ZrListItem Row(int waypoint) const;

    std::function<const ZrRoutePath&()> m_path;
    ZrTouchList* m_list;
    QVector<ZrBtn*> m_buttons;
};
