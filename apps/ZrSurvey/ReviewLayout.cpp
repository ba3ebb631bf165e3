// Where things are on the page "Review", and what it paints itself.

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrKit/ui/ZrPlotPanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/ReviewEvents.h"
#include "apps/ZrSurvey/ReviewExport.h"
#include "apps/ZrSurvey/ReviewMap.h"
#include "apps/ZrSurvey/ReviewMeasure.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/ReviewText.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace {

/// Shares of the page's height and width.
constexpr double plotsShare = 0.38;
constexpr double mapShare = 0.46;

/// What frames may draw: see `ReviewPage::zr_paintGL`.
enum eReady : int
{
    mapReady = 1,
    palettesReady,
    sonarReady,
    allDrawn
};

int HeaderHeight()
{
    return std::max(ZrTheme::DpI(48), 44);
}

} // namespace

void ReviewPage::zr_initializeGL()
{
    m_map->Create();
    m_sonar->Create();
    m_ready = 0;
}

bool ReviewPage::IsDrawn() const
{
    return m_ready >= allDrawn;
}

void ReviewPage::zr_paintGL()
{
    if (!m_recording)
        return;
    // What is drawn for the first time makes its programs, textures and palettes, which takes as long as many
    // frames: one thing comes with each of the first ones, beginning with the widgets over both panes.
    if (m_map->Panel().isVisible())
        m_map->Render(m_ready >= mapReady);
    if (m_sonar->Panel().isVisible() && m_ready >= palettesReady)
        m_sonar->Render(m_ready >= sonarReady);
    // Not at once: events come in between.
    if (m_ready < sonarReady)
        QTimer::singleShot(0, this, &SurveyPage::Changed);
    m_ready = std::min<int>(m_ready + 1, allDrawn);
}

void ReviewPage::showEvent(QShowEvent* event)
{
    SurveyPage::showEvent(event);
    View().Model().isReviewLast = true;
    m_sonar->ShowSettings();
    ShowState();
}

void ReviewPage::OnColours()
{
    m_map->Restyle();
    m_transport->Restyle();
    m_events->Restyle();
    m_export->Restyle();
    m_sonar->Measure().Restyle();
    const QFont small = ZrLegible::Font(13);
    for (ZrBtn* button : {m_open, m_list, m_exportBtn}) {
        button->font = small;
        button->Changed();
    }
    ShowPlots();
    m_bar->Restyle();
    SurveyPage::OnColours();
}

/// The transport and the time line.
int ReviewPage::FreeBelow() const
{
    return height() - m_bar->y();
}

int ReviewPage::FreeRight() const
{
    return m_events->isVisibleTo(this) ? m_events->width() : 0;
}

int ReviewPage::BandLeft() const
{
    return m_open->x() - Gap();
}

QRect ReviewPage::HeaderOf(const QRect& pane) const
{
    return {pane.x(), pane.y(), pane.width(), HeaderHeight()};
}

void ReviewPage::Place()
{
    const int gap = Gap();
    const QRect area = Content();
    int x = BandRight();
    const int tool = std::max(ZrTheme::DpI(80), 52);
    for (ZrBtn* button : {m_exportBtn, m_list, m_open}) {
        x -= tool;
        button->setGeometry(x, ZrTheme::DpI(8), tool, ZrTheme::DpI(BandHeight) - ZrTheme::DpI(16));
        x -= gap;
    }
    const int transport = std::max(ZrTheme::DpI(72), 52);
    const int bar = std::max(ZrTheme::DpI(ZrTimeBar::Height), 64);
    const int bottom = area.bottom() + 1 - gap;
    m_transport->setGeometry(area.x(), bottom - transport, area.width(), transport);
    // Beside the time line, in its colour.
    const int gapsSide = std::max(ZrTheme::DpI(56), 44);
    m_bar->setGeometry(area.x(), bottom - transport - bar, area.width() - gapsSide - gap, bar);
    m_gaps->setGeometry(m_bar->geometry().right() + 1, m_bar->y() + (bar - gapsSide) / 2, gapsSide, gapsSide);
    const bool hasLog = m_recording != nullptr;
    const QRect upper(area.x(), area.y(), area.width(), m_bar->y() - area.y());
    m_firstOpen->setGeometry(upper.center().x() - ZrTheme::DpI(160), upper.center().y(), ZrTheme::DpI(320),
        std::max(ZrTheme::DpI(72), 52));
    const bool hasEvents = hasLog && m_events->isVisibleTo(this);
    const int list = hasEvents ? std::max(ZrTheme::DpI(340), 240) : 0;
    m_events->setGeometry(area.right() + 1 - list, upper.y() + gap / 2, list, upper.height() - gap / 2);
    const QRect panes = upper.adjusted(0, gap / 2, hasEvents ? -list - gap : 0, -gap / 2);

    const bool hasSonar = hasLog && m_recording->HasSonar();
    const bool hasPlots = hasLog && m_recording->Series().Count() > 0;
    const bool isMap = hasLog && (m_pane == paneAll || m_pane == paneMap);
    const bool isSonar = hasSonar && (m_pane == paneAll || m_pane == paneSonar);
    const bool isPlots = hasPlots && (m_pane == paneAll || m_pane == panePlots);
    QRect top = panes;
    QRect plots = panes;
    if (isPlots && m_pane == paneAll) {
        plots.setTop(panes.bottom() + 1 - qRound(panes.height() * plotsShare));
        top.setBottom(plots.top() - gap);
    }
    QRect map = top;
    QRect sonar = top;
    if (isMap && isSonar) {
        map.setWidth(qRound(top.width() * mapShare));
        sonar.setLeft(map.right() + 1 + gap);
    }
    m_mapHeader = isMap ? HeaderOf(map) : QRect();
    m_sonarHeader = isSonar ? HeaderOf(sonar) : QRect();
    m_plotsHeader = QRect();
    m_map->Panel().setVisible(isMap);
    m_map->Panel().setGeometry(map.adjusted(0, HeaderHeight(), 0, 0));
    m_sonar->Place(sonar.adjusted(0, HeaderHeight(), 0, 0), isSonar);
    m_plots->setVisible(isPlots);
    const int side = HeaderHeight();
    m_plots->setGeometry(plots.adjusted(0, 0, -side - gap, 0));
    m_plotsLarge->setGeometry(plots.right() + 1 - side, plots.y(), side, side);
    m_plotsLarge->setVisible(isPlots);
    const auto row = [side](const QRect& header, bool isShown, std::initializer_list<ZrBtn*> buttons) {
        int at = header.right() + 1 - side;
        for (ZrBtn* button : buttons) {
            button->setVisible(isShown);
            button->setGeometry(at, header.y(), side, side);
            at -= side;
        }
    };
    row(m_mapHeader, isMap, {m_mapLarge, m_follow, m_fit});
    row(m_sonarHeader, isSonar, {m_sonarLarge, m_measure, m_correct, m_bottom, m_slant, m_look});
    m_list->setEnabled(hasLog);
    m_list->on = hasEvents;
    m_list->Changed();
    update();
}

void ReviewPage::PaintHeader(QPainter& painter, const QRect& header, const QString& text, int right)
{
    if (header.isEmpty())
        return;
    painter.fillRect(header, ZrTheme::toolBack);
    painter.setFont(review::body_font());
    painter.setPen(ZrTheme::ctrlCol);
    const QRect room(header.x() + 2 * Gap(), header.y(), right - header.x() - 3 * Gap(), header.height());
    painter.setFont(ZrLegible::Fitting(painter.font(), text, room.width()));
    const QFontMetrics metrics = painter.fontMetrics();
    // A position that is too long for one line stands in two; what does not fit even so is in the plots.
    QString lines = text;
    if (metrics.horizontalAdvance(text) > room.width())
        lines.replace(QLatin1String("  "), QLatin1String("\n"));
    if (room.contains(metrics.boundingRect(room, Qt::AlignLeft | Qt::AlignVCenter, lines)))
        painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter, lines);
}

void ReviewPage::paintEvent(QPaintEvent* event)
{
    SurveyPage::paintEvent(event);
    QPainter painter(this);
    // All but what OpenGL draws.
    QRegion around = Content();
    if (m_map->Panel().isVisible())
        around -= m_map->Panel().geometry();
    if (m_sonar->Panel().isVisible())
        around -= m_sonar->Panel().geometry();
    QColor back = ZrTheme::formMgr;
    back.setAlpha(255);
    for (const QRect& part : around)
        painter.fillRect(part, back);
    // The plots and their button are one sheet.
    if (m_plots->isVisible()) {
        QColor sheet = ZrTheme::formBack;
        sheet.setAlpha(255);
        painter.fillRect(QRect(m_plots->geometry().topRight(), m_plotsLarge->geometry().topRight())
                             .adjusted(1, 0, 0, m_plots->height() - 1),
            sheet);
    }
    painter.fillRect(
        QRect(m_bar->geometry().right() + 1, m_bar->y(), width() - m_bar->width(), m_bar->height()),
        ZrTheme::toolBack);
    if (!m_recording) {
        painter.setFont(ZrTheme::fontLarge);
        painter.setPen(ZrTheme::bodyCol);
        const QRect above(0, m_firstOpen->y() - ZrTheme::DpI(64), width(), ZrTheme::DpI(48));
        painter.drawText(above, Qt::AlignCenter, tr("No recording is open"));
        return;
    }
    if (m_map->Chart().IsBuilding()) {
        painter.setFont(review::body_font());
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(
            m_map->Panel().geometry(), Qt::AlignCenter | Qt::TextWordWrap, tr("The map is being made …"));
    }
    const ZrGeoPoint at = m_recording->PositionAt(m_clock.Time());
    PaintHeader(painter, m_mapHeader, review::position_text(at.lat, at.lng), m_fit->x());
    if (m_sonarHeader.isEmpty())
        return;
    const double ping = m_recording->PingAt(m_clock.Time());
    const auto line = static_cast<std::size_t>(std::lround(ping));
    const QString altitude = review::length_text(m_recording->Bottom().Altitude(line), 1);
    // Where there is no room for both the altitude is what matters.
    const int room = m_look->x() - m_sonarHeader.x() - 3 * Gap();
    const QString all
        = tr("Line %1 of %2, altitude %3").arg(line + 1).arg(m_recording->Pings().size()).arg(altitude);
    QFont smallest = ZrTheme::font;
    smallest.setPixelSize(ZrLegible::LeastText);
    const bool isRoom = QFontMetrics(smallest).horizontalAdvance(all) <= room;
    PaintHeader(painter, m_sonarHeader, isRoom ? all : altitude, m_look->x());
}
