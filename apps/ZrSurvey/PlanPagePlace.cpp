// Where the parts of the page "Plan" stand, and what of them is shown.

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/PlanFiles.h"
#include "apps/ZrSurvey/PlanListPanel.h"
#include "apps/ZrSurvey/PlanMarginPanel.h"
#include "apps/ZrSurvey/PlanPage.h"
#include "apps/ZrSurvey/PlanPatternPanel.h"
#include "apps/ZrSurvey/PlanPointPanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace {

constexpr float sideWidth = 368.0F; ///< design pixels
constexpr float toolSide = 72.0F;
constexpr float tabHeight = 72.0F;
constexpr float barHeight = 64.0F;
constexpr float tileHeight = 88.0F;
constexpr float textButton = 128.0F; ///< with an icon and a short text
constexpr float hintWidth = 168.0F;
constexpr float crossSize = 26.0F;

int Side(float design)
{
    return std::max(ZrTheme::DpI(design), 44);
}

} // namespace

int PlanPage::BandRight() const
{
    return m_bandButtons.isEmpty() ? SurveyPage::BandRight() : m_bandButtons.front()->x() - Gap();
}

int PlanPage::BandLeft() const
{
    return std::max(SurveyPage::BandLeft(), BandRight());
}

void PlanPage::Place()
{
    const QRect area = Content();
    const int side = std::min(ZrTheme::DpI(sideWidth), area.width() / 2);
    const QRect map = area.adjusted(0, 0, -side, 0);
    m_sideRect = QRect(map.right() + 1, area.y(), side, area.height());
    m_map.m_pixelFactor = qRound(devicePixelRatioF());
    m_panel->setGeometry(map);
    const int y0 = 2 * Gap();
    const int tool = Side(toolSide);
    int y = map.y() + y0;
    for (ZrBtn* button : qAsConst(m_tools)) {
        button->setGeometry(map.x() + y0, y, tool, tool);
        button->Changed();
        y += tool + Gap() / 2;
    }
    PlaceBand();
    PlaceTiles(map);
    PlaceSide(m_sideRect);
    PlaceBar(map);
    PlaceFurniture(map);
}

void PlanPage::PlaceBand()
{
    const int side = std::max(ZrTheme::DpI(56), 44);
    int x = SurveyPage::BandRight() - Gap();
    for (int i = m_bandButtons.size() - 1; i >= 0; --i) {
        x -= side;
        m_bandButtons[i]->setGeometry(x, (ZrTheme::DpI(BandHeight) - side) / 2, side, side);
        m_bandButtons[i]->Changed();
        x -= Gap() / 2;
    }
}

void PlanPage::PlaceTiles(const QRect& map)
{
    const QVector<QWidget*> tiles{m_length, m_duration, m_lines, m_count, m_check};
    const int height = ZrTheme::DpI(tileHeight);
    const QRect tools = m_tools.back()->geometry();
    // Where the tools reach down to them they stand beside the tools.
    const bool isBeside = tools.bottom() + Gap() > map.bottom() - height - 2 * Gap();
    const int left = (isBeside ? tools.right() + 1 - map.x() : Gap()) + Gap();
    const int count = tiles.size();
    const int room = map.width() - left - 2 * Gap() - (count - 1) * Gap();
    const int width = std::min(ZrTheme::DpI(168), room / count);
    int x = map.x() + left;
    for (QWidget* tile : tiles) {
        tile->setGeometry(x, map.bottom() - height - 2 * Gap(), width, height);
        x += width + Gap();
    }
}

void PlanPage::PlaceFurniture(const QRect& map)
{
    const int left = m_tools.front()->geometry().right() + 1 - map.x() + Gap();
    const int top = m_barRect.isEmpty() ? 0 : m_barRect.bottom() + 1 - map.y();
    const int bottom = map.bottom() - m_length->y() + Gap();
    m_grid.SetMargins(QMarginsF(left, top, 0.0, bottom) * devicePixelRatioF());
}

void PlanPage::PlaceSide(const QRect& side)
{
    const int tab = Side(tabHeight);
    const int count = m_tabs.size();
    for (int i = 0; i < count; ++i) {
        m_tabs[i]->setGeometry(side.x() + i * side.width() / count, side.y(), side.width() / count, tab);
        m_tabs[i]->Changed();
    }
    const QRect below = side.adjusted(0, tab + Gap(), 0, 0);
    m_list->setGeometry(below);
    m_point->setGeometry(below);
    const int margin = m_margin->Height();
    m_margin->setGeometry(below.x(), below.y(), below.width(), margin);
    m_checks->setGeometry(below.adjusted(0, margin, 0, 0));
    m_pattern->setGeometry(side);
}

/// The buttons of the mode and their hint, side by side at the upper edge of the map.
void PlanPage::PlaceBar(const QRect& map)
{
    const int tall = Side(barHeight);
    const int left = map.x() + Side(toolSide) + 4 * Gap();
    const int right = map.right() - 2 * Gap();
    QVector<ZrBtn*> shown;
    for (ZrBtn* button : qAsConst(m_bar)) {
        if (!button->isHidden())
            shown.append(button);
    }
    m_hintRect = QRect();
    m_barRect = QRect();
    if (shown.isEmpty())
        return;
    const int count = shown.size();
    // What the buttons need comes first: the hint goes below them where it has no room beside them.
    const int rest = right - left - count * (ZrTheme::DpI(textButton) + Gap()) - 2 * Gap();
    const bool isBelow = !m_hint.isEmpty() && rest < ZrTheme::DpI(hintWidth);
    const int hint = m_hint.isEmpty() || isBelow ? 0 : ZrTheme::DpI(hintWidth);
    const int wide = std::min(ZrTheme::DpI(164), (right - left - hint - (count + 2) * Gap()) / count);
    const int width = hint + count * (wide + Gap()) + 2 * Gap();
    const int y = map.y() + 2 * Gap();
    m_barRect = QRect(left, y - Gap() / 2, width, tall + Gap());
    m_hintRect = QRect(left + 2 * Gap(), y, hint, tall);
    if (isBelow) {
        const int line = QFontMetrics(ZrTheme::font).height() + Gap();
        m_barRect.setHeight(tall + Gap() + line);
        m_hintRect = QRect(left + 2 * Gap(), y + tall, width - 4 * Gap(), line);
    }
    int x = left + Gap() + hint + (hint > 0 ? Gap() : 0);
    for (ZrBtn* button : qAsConst(shown)) {
        button->setGeometry(x, y, wide, tall);
        button->Changed();
        x += wide + Gap();
    }
}

void PlanPage::ShowState()
{
    ZrRouteHistory& history = Plan().History();
    const bool isDrawing = m_mode == modeArea && !m_drawing.Ring().empty();
    const bool hasCorner = isDrawing && (m_drawing.CanUndo() || m_editedArea < 0);
    const bool hasNextCorner = m_mode == modeArea && m_drawing.CanRedo();
    const QString corner = tr("Corner");
    m_undo->setEnabled(hasCorner || history.CanUndo());
    m_redo->setEnabled(hasNextCorner || history.CanRedo());
    m_undo->setToolTip(tr("Undo %1 (Ctrl+Z)").arg(hasCorner ? corner : history.UndoName()).simplified());
    m_redo->setToolTip(
        tr("Redo %1 (Ctrl+Shift+Z)").arg(hasNextCorner ? corner : history.RedoName()).simplified());
    if (m_files->IsBusy() && !m_busy->isActive())
        SetSubtitle(tr("%1 • reading or writing …").arg(Plan().Name()));
    else
        SetSubtitle(Plan().IsDirty() ? tr("%1 • not saved").arg(Plan().Name()) : Plan().Name());
    m_list->Show(m_selected);
    m_point->Show(Waypoint(m_selected), m_chart.Grid());
    m_addTool->on = m_mode == modeAdd;
    m_areaTool->on = m_mode == modeArea;
    m_patternTool->on = m_mode == modePattern;
    for (ZrBtn* tool : qAsConst(m_tools))
        tool->update();

    const bool isBrowsing = m_mode == modeBrowse;
    m_insert->setVisible(isBrowsing && HasLeg());
    m_linesOver->setVisible(isBrowsing && m_area >= 0 && !m_isNoGo);
    m_corners->setVisible(isBrowsing && m_area >= 0);
    m_deleteArea->setVisible(isBrowsing && m_area >= 0);
    m_keepClear->setVisible(m_mode == modeArea);
    m_removeLast->setVisible(m_mode == modeArea);
    m_removeLast->setEnabled(!m_drawing.Ring().empty());
    m_addHere->setVisible(m_mode == modeAdd || m_mode == modeArea);
    m_done->setVisible(m_mode == modeAdd || m_mode == modeArea);
    m_hint.clear();
    if (m_mode == modeAdd) {
        m_hint = m_selected >= 0 ? tr("Tap to add behind %1").arg(Waypoint(m_selected)->Name())
                                 : tr("Tap to add a waypoint");
    } else if (m_mode == modeArea) {
        m_hint = m_drawing.Ring().size() < 3 ? tr("Tap three corners or more") : tr("Tap or drag corners");
    } else if (isBrowsing && m_leg >= 0) {
        const auto& legs = Path().Legs();
        const double length = static_cast<std::size_t>(m_leg) < legs.size()
            ? legs[static_cast<std::size_t>(m_leg)].length
            : 0.0;
        m_hint = tr("Leg of %1 %2")
                     .arg(ZrUnits::GetLengthString(length, 1, false), ZrUnits::GetLengthUnits(length));
    } else if (isBrowsing && m_area >= 0) {
        const auto& areas = AreasOf(m_isNoGo);
        const auto index = static_cast<std::size_t>(m_area);
        m_hint = index < areas.size() ? areas[index].name : QString();
    }
    m_drawing.Build(m_keepClear->on);
    PlaceBar(m_panel->geometry());
    PlaceFurniture(m_panel->geometry());
    Changed();
}

void PlanPage::paintEvent(QPaintEvent* event)
{
    SurveyPage::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(m_sideRect, ZrTheme::formBack);
    painter.setPen(QPen(ZrTheme::formBdr, 1));
    painter.drawLine(m_sideRect.topLeft(), m_sideRect.bottomLeft());
    if (!m_barRect.isEmpty()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ZrTheme::toolBack);
        painter.drawRoundedRect(m_barRect, ZrTheme::rxy, ZrTheme::rxy);
        painter.setPen(ZrTheme::ctrlCol);
        painter.setFont(ZrTheme::font);
        painter.drawText(m_hintRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, m_hint);
    }
    if (m_mode == modeAdd || m_mode == modeArea) {
        const QPointF centre = m_panel->geometry().center();
        const double size = static_cast<double>(ZrTheme::DpF(crossSize));
        const auto cross = [&](const QColor& colour, double width) {
            painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::FlatCap));
            painter.drawLine(centre - QPointF(size, 0.0), centre - QPointF(size / 4.0, 0.0));
            painter.drawLine(centre + QPointF(size / 4.0, 0.0), centre + QPointF(size, 0.0));
            painter.drawLine(centre - QPointF(0.0, size), centre - QPointF(0.0, size / 4.0));
            painter.drawLine(centre + QPointF(0.0, size / 4.0), centre + QPointF(0.0, size));
        };
        cross(ZrTheme::sea, static_cast<double>(ZrTheme::DpF(6)));
        cross(ZrTheme::ctrlCol, static_cast<double>(ZrTheme::DpF(2.5F)));
    }
}

/// What the plan comes to.
int PlanPage::FreeBelow() const
{
    return height() - m_length->y();
}
