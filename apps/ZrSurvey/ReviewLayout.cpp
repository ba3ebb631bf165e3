// Where things are on the page "Review", and what it paints itself.

#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrKit/ui/ZrPlotPanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/ReviewBottom.h"
#include "apps/ZrSurvey/ReviewEvents.h"
#include "apps/ZrSurvey/ReviewExport.h"
#include "apps/ZrSurvey/ReviewLook.h"
#include "apps/ZrSurvey/ReviewMap.h"
#include "apps/ZrSurvey/ReviewMeasure.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/ReviewText.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <algorithm>
#include <cmath>

namespace {

/// Shares of the page's height and width.
constexpr double plotsShare = 0.38;
constexpr double mapShare = 0.46;
constexpr int sonarTools = 6; ///< buttons above the waterfall

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

/// What a header may tell: parts, and what stands between them in one line.
struct Way
{
    QStringList parts;
    QString between;
};

/// The text of a header as it has room.
struct Heading
{
    QFont font;
    QStringList lines;
    bool isWhole = true;

    /// \p parts in one line, with \p between them, or the last of them in a second one; elided where that is
    /// too much as well.
    Heading(const QStringList& parts, const QString& between, const QSize& room)
        : font(ZrLegible::Fitting(review::body_font(), parts.join(between), room.width()))
        , lines(parts.join(between))
    {
        if (Fits(room))
            return;
        if (parts.size() > 1) {
            lines = QStringList{QStringList(parts.mid(0, parts.size() - 1)).join(between), parts.last()};
            font = review::body_font();
        }
        while (!Fits(room) && font.pixelSize() > ZrLegible::LeastText)
            font.setPixelSize(font.pixelSize() - 1);
        isWhole = Fits(room);
        const QFontMetrics metrics(font);
        for (QString& line : lines)
            line = metrics.elidedText(line, Qt::ElideRight, room.width());
    }

    bool Fits(const QSize& room) const
    {
        const QFontMetrics metrics(font);
        return lines.size() * metrics.height() <= room.height()
            && std::all_of(lines.begin(), lines.end(),
                [&](const QString& line) { return metrics.horizontalAdvance(line) <= room.width(); });
    }

    void Paint(QPainter& painter, const QRect& room) const
    {
        painter.setFont(font);
        painter.setPen(ZrTheme::ctrlCol);
        const int high = painter.fontMetrics().height();
        int y = room.y() + (room.height() - lines.size() * high) / 2;
        for (const QString& line : lines) {
            painter.drawText(room.x(), y + painter.fontMetrics().ascent(), line);
            y += high;
        }
    }
};

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

/// The transport, the time line and what lies above it: messages leave the scales of map and waterfall in
/// sight, where these reach down to them, and the panels of the waterfall's look and bottom line.
int ReviewPage::FreeBelow() const
{
    const bool isLook = m_sonar->Look().isVisibleTo(this);
    const int free = height() - (isLook ? m_sonar->Look().y() : m_bar->y());
    if (!isLook && m_plots->isVisibleTo(this))
        return free;
    const ReviewBottom& tool = m_sonar->Bottom();
    const int used = tool.isVisibleTo(this) ? height() - tool.y() : 0;
    return std::max(free + ZrTheme::DpI(ZrGridLayer::ScaleRoom), used);
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
        // Beside the tools of the waterfall its bottom is told.
        QFont least = ZrTheme::font;
        least.setPixelSize(ZrLegible::LeastText);
        const QFontMetrics metrics(least);
        const int told = std::max(
            metrics.horizontalAdvance(tr("Bottom")), metrics.horizontalAdvance(QStringLiteral("888.8 ft")));
        const int tools = sonarTools * HeaderHeight() + told + 2 * gap;
        map.setWidth(std::min(qRound(top.width() * mapShare), top.width() - gap - tools));
        sonar.setLeft(map.right() + 1 + gap);
    }
    m_mapHeader = isMap ? HeaderOf(map) : QRect();
    m_sonarHeader = isSonar ? HeaderOf(sonar) : QRect();
    m_plotsHeader = QRect();
    m_map->Panel().setVisible(isMap);
    m_map->Panel().setGeometry(map.adjusted(0, HeaderHeight(), 0, 0));
    m_sonar->Place(sonar.adjusted(0, HeaderHeight(), 0, 0), panes, isSonar);
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
    View().PlaceToast();
    update();
}

/// Where the vehicle was, and which line of the waterfall that is.
void ReviewPage::PaintHeaders(QPainter& painter)
{
    // The first way that has room, with less around it if need be; the last one is shortened.
    const auto paint = [&](const QRect& header, int right, const QVector<Way>& ways) {
        painter.fillRect(header, ZrTheme::toolBack);
        for (const Way& way : ways) {
            for (const int gap : {2 * Gap(), Gap()}) {
                const QRect room(
                    header.x() + gap, header.y(), right - header.x() - gap - gap / 2, header.height());
                const Heading heading(way.parts, way.between, room.size());
                if (!heading.isWhole && (&way != &ways.last() || gap != Gap()))
                    continue;
                heading.Paint(painter, room);
                return;
            }
        }
    };
    if (!m_mapHeader.isEmpty()) {
        const ZrGeoPoint at = m_recording->PositionAt(m_clock.Time());
        QStringList position = ZrPositionShown::Parts(at.lat, at.lng);
        if (position.isEmpty())
            position << review::position_text(at.lat, at.lng);
        paint(m_mapHeader, m_fit->x(), {{position, QStringLiteral("  ")}});
    }
    if (m_sonarHeader.isEmpty())
        return;
    const auto line = static_cast<std::size_t>(std::lround(m_recording->PingAt(m_clock.Time())));
    // That of the bottom line: the plot beside it has what the vehicle measured. Where there is no room for
    // both it is what matters.
    const QString altitude = review::length_text(m_recording->Bottom().Altitude(line), 1);
    paint(m_sonarHeader, m_look->x(),
        {{{tr("Line %1 of %2").arg(line + 1).arg(m_recording->Pings().size()),
              tr("bottom at %1").arg(altitude)},
             QStringLiteral(", ")},
            {{tr("Bottom"), altitude}, QStringLiteral(" ")}});
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
    PaintHeaders(painter);
}
