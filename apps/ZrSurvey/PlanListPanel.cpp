#include "apps/ZrSurvey/PlanListPanel.h"

#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <cmath>

PlanListPanel::PlanListPanel(SurveyView& view, QWidget* parent)
    : PlanPanel(view, parent)
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

void PlanListPanel::Show(int current, const ZrRoutePath& path)
{
    ZrPlanDocument& plan = View().Model().plan;
    QVector<ZrListItem> items;
    int index = 0;
    for (ZrListPos* pos = plan.Route().GetHeadPos(); pos; ++index) {
        const ZrWpt& wpt = *plan.Route().GetNext(pos);
        ZrListItem item;
        item.title = wpt.Name();
        if (index > 0 && static_cast<std::size_t>(index) <= path.Legs().size()) {
            const ZrRouteLeg& leg = path.Legs()[static_cast<std::size_t>(index) - 1];
            if (std::isfinite(leg.length))
                item.detail = ZrUnits::GetLengthString(leg.length, 1, false) + QLatin1Char(' ')
                    + ZrUnits::GetLengthUnits(leg.length);
        }
        items.append(item);
    }
    m_list->SetItems(items);
    if (m_list->Current() != current)
        m_list->SetCurrent(current);
    m_buttons[0]->setEnabled(current > 0);
    m_buttons[1]->setEnabled(current >= 0 && current + 1 < items.size());
    m_buttons[2]->setEnabled(items.size() > 1);
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
