#include "apps/ZrSurvey/PlanListPanel.h"

#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <cmath>

PlanListPanel::PlanListPanel(
    SurveyView& view, QWidget* parent, const std::function<const ZrRoutePath&()>& path)
    : PlanPanel(view, parent)
    , m_path(path)
    , m_list(new ZrTouchList(this))
{
    m_list->m_empty = tr("Add a waypoint or draw an area");
    connect(m_list, &ZrTouchList::Chosen, this, &PlanListPanel::Chosen);
    connect(m_list, &ZrTouchList::CurrentChanged, this, &PlanListPanel::Chosen);
    m_buttons = {
        AddButton(QStringLiteral("up"), QString(), tr("Earlier on the route (Ctrl+Up)"),
            [this] { Q_EMIT MoveWanted(-1); }),
        AddButton(QStringLiteral("down"), QString(), tr("Later on the route (Ctrl+Down)"),
            [this] { Q_EMIT MoveWanted(1); }),
        AddButton(QStringLiteral("reverse"), QString(), tr("Reverse the route (Ctrl+R)"),
            [this] { Q_EMIT ReverseWanted(); }),
        AddButton(QStringLiteral("delete"), QString(), tr("Delete the waypoint (Del)"),
            [this] { Q_EMIT DeleteWanted(); }),
    };
}

ZrListItem PlanListPanel::Row(int waypoint) const
{
    ZrListItem item;
    const ZrWpts& route = View().Model().plan.Route();
    const ZrWpt* wpt = route.GetAt(route.FindIndex(waypoint));
    if (!wpt)
        return item;
    item.title = wpt->Name();
    item.data = wpt->uuid;
    const std::vector<ZrRouteLeg>& legs = m_path().Legs();
    if (waypoint > 0 && static_cast<std::size_t>(waypoint) <= legs.size()) {
        const double length = legs[static_cast<std::size_t>(waypoint) - 1].length;
        if (std::isfinite(length))
            item.detail = ZrUnits::GetLengthString(length, 1, false) + QLatin1Char(' ')
                + ZrUnits::GetLengthUnits(length);
    }
    return item;
}

void PlanListPanel::Show(int current)
{
    const int count = View().Model().plan.Route().GetCount();
    m_list->SetRows(count, [this](int row) { return Row(row); });
    if (m_list->Current() != current)
        m_list->SetCurrent(current);
    m_buttons[0]->setEnabled(current > 0);
    m_buttons[1]->setEnabled(current >= 0 && current + 1 < count);
    m_buttons[2]->setEnabled(count > 1);
    m_buttons[3]->setEnabled(current >= 0);
}

void PlanListPanel::Restyle()
{
    m_list->Restyle();
    PlanPanel::Restyle();
}

void PlanListPanel::Place()
{
    const int tall = std::max(ZrTheme::DpI(64), 44);
    const int y = height() - tall - Margin();
    PlaceRow(m_buttons, y, 64);
    m_list->setGeometry(0, 0, width(), y - Gap());
}
