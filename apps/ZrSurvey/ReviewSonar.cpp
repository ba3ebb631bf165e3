#include "apps/ZrSurvey/ReviewSonar.h"

#include "ZrKit/map/ZrWaterfallOverlay.h"
#include "ZrKit/map/ZrWaterfallPalettes.h"
#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/ReviewBottom.h"
#include "apps/ZrSurvey/ReviewLook.h"
#include "apps/ZrSurvey/ReviewMeasure.h"
#include "apps/ZrSurvey/ReviewText.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyPage.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// Over the picture, which is dark by day too; not the theme's, which may be dark as well.
const QColor cursorColour(255, 255, 255);
const QColor eventColour(255, 190, 40);
const QColor shade(0, 0, 0, 150);
const QColor edge(0, 0, 0);

} // namespace

ReviewSonar::ReviewSonar(SurveyPage& page)
    : m_page(page)
    , m_panel(new ZrWaterfallPanel(&page))
    , m_measure(new ReviewMeasure(&page, *m_panel))
    , m_bottom(new ReviewBottom(&page, page.View(), *m_panel))
    , m_look(new ReviewLook(&page, page.View().Model().settings))
{
    m_panel->m_overlay
        = [this](QPainter& painter, const ZrWaterfallLayout& layout) { PaintOverlay(painter, layout); };
    m_panel->m_layer.m_isSmooth = true;
    connect(m_panel, &ZrWaterfallPanel::Changed, &page, &SurveyPage::Changed);
    connect(m_panel, &ZrWaterfallPanel::ScrubBegan, this, &ReviewSonar::ScrubBegan);
    connect(m_panel, &ZrWaterfallPanel::Scrubbed, this, [this](double ping) {
        if (m_recording)
            Q_EMIT Scrubbed(m_recording->TimeOfPing(ping));
    });
    connect(m_panel, &ZrWaterfallPanel::Tapped, this, [this](const ZrWaterfallPoint& point) {
        if (!m_recording || m_measure->IsOn() || m_bottom->IsOn() || !point.IsValid())
            return;
        Q_EMIT ScrubBegan();
        Q_EMIT Scrubbed(m_recording->TimeOfPing(point.ping));
    });
    connect(m_look, &ReviewLook::Changed, this, [this] {
        m_page.View().SettingsEdited(); // which comes back here
    });
    connect(m_measure, &ReviewMeasure::OnChanged, this, [this] {
        if (m_measure->IsOn())
            m_bottom->SetOn(false);
        m_panel->m_isPointing = m_measure->IsOn() || m_bottom->IsOn();
        Q_EMIT ToolChanged();
    });
    connect(m_bottom, &ReviewBottom::OnChanged, this, [this] {
        if (m_bottom->IsOn()) {
            m_measure->SetOn(false);
            m_look->hide();
        }
        m_panel->m_isPointing = m_measure->IsOn() || m_bottom->IsOn();
        ShowSettings();
        Q_EMIT ToolChanged();
    });
    connect(m_bottom, &ReviewBottom::LineChanged, this, [this](qint64 first, qint64 end) {
        if (m_loader)
            m_loader->Renew(first, end);
        m_measure->Clear();
        Q_EMIT BottomChanged();
    });
}

ReviewSonar::~ReviewSonar()
{
    // The panel may live longer.
    m_panel->SetLoader(nullptr);
    m_panel->m_overlay = nullptr;
}

void ReviewSonar::Create()
{
    m_panel->Surface().OnCreate();
    m_hasPalettes = false;
}

void ReviewSonar::Render(bool isWhole)
{
    if (m_loader && !std::exchange(m_hasPalettes, true))
        ZrWaterfallPalettes::Load(m_panel->Surface());
    if (isWhole)
        m_panel->Surface().Render();
}

void ReviewSonar::Show(const std::shared_ptr<ZrSurveyRecording>& recording)
{
    m_bottom->Show(nullptr);
    m_panel->SetLoader(nullptr);
    m_loader.reset();
    m_recording = recording.get();
    if (recording && recording->HasSonar()) {
        recording->Waterfall()->SetBlanking(m_page.View().Model().settings.blanking);
        m_loader = std::make_unique<ZrWaterfallLoader>(recording->Waterfall());
        m_panel->SetLoader(m_loader.get());
    }
    m_measure->Show(m_recording);
    m_bottom->Show(recording);
    m_look->hide();
    ShowSettings();
}

void ReviewSonar::SetCursor(double steady)
{
    if (m_recording && m_recording->HasSonar())
        m_panel->SetCursor(m_recording->PingAt(steady));
}

void ReviewSonar::ShowEvents()
{
    m_targets = m_recording ? m_recording->Targets() : std::vector<ZrSonarTarget>();
    m_panel->update();
}

void ReviewSonar::ShowSettings()
{
    const SurveySettings& settings = m_page.View().Model().settings;
    ZrWaterfallPalettes::SetLook(m_panel->m_layer, settings.palette, settings.gain, settings.contrast);
    // The line is drawn where the echoes came from.
    m_panel->m_view.slantCorrected = settings.slant && !m_bottom->IsOn();
    if (m_loader && m_recording->Waterfall()->Blanking() != settings.blanking) {
        m_recording->Waterfall()->SetBlanking(settings.blanking);
        m_loader->Renew(0, static_cast<i64>(m_recording->Pings().size()));
    }
    m_panel->Refresh();
}

void ReviewSonar::Place(const QRect& area, const QRect& panes, bool isVisible)
{
    m_panel->setVisible(isVisible);
    m_panel->setGeometry(area);
    // Over all of the plots: what it changes is to be seen.
    m_look->Place(panes, panes.bottom() - area.bottom() - m_page.Gap() + 1);
    if (!isVisible)
        m_look->hide();
    m_look->raise();
    QRect free = area;
    if (m_look->isVisibleTo(&m_page))
        free.setBottom(std::min(area.bottom(), m_look->y() - 1));
    m_measure->Place(free, m_look->isVisibleTo(&m_page) ? m_look->y() : panes.bottom() + 1);
    m_measure->setVisible(isVisible && m_measure->IsOn());
    m_measure->Restyle();
    m_bottom->Place(free);
    m_bottom->setVisible(isVisible && m_bottom->IsOn());
}

void ReviewSonar::PaintOverlay(QPainter& painter, const ZrWaterfallLayout& layout)
{
    if (!m_recording || !m_recording->HasSonar())
        return;
    const double unit = static_cast<double>(ZrTheme::dp) * m_panel->devicePixelRatioF();
    // The brightest thing on the screen would take the eyes their night sight.
    if (ZrColourScheme::Current() == ZrColourScheme::night)
        painter.fillRect(QRect(QPoint(), layout.View().rect.size()), QColor(30, 0, 0, 150));
    if (m_page.View().Model().settings.bottom || m_bottom->IsOn())
        m_bottom->Paint(painter, layout);
    QFont font = ZrTheme::font;
    font.setPixelSize(qRound(ZrLegible::Px(14) * m_panel->devicePixelRatioF()));
    ZrWaterfallOverlay::PaintScale(painter, layout, font, ZrColourScheme::OverPicture(QColor(235, 240, 245)));
    const double width = m_panel->width() * m_panel->devicePixelRatioF();
    PaintEvents(painter, layout);
    double y = m_panel->YOf(m_panel->Cursor());
    if (!std::isnan(y)) {
        // All of the line, also at the first and the last ping.
        const double half = 2.0 * unit;
        y = std::clamp(y, half, std::max(layout.View().rect.height() - half, half));
        painter.setPen(QPen(shade, 2.0 * half));
        painter.drawLine(QPointF(0.0, y), QPointF(width, y));
        painter.setPen(QPen(ZrColourScheme::OverPicture(cursorColour), std::max(1.5 * unit, 1.0)));
        painter.drawLine(QPointF(0.0, y), QPointF(width, y));
    }
    m_measure->PaintMarks(painter);
}

/// Flags at the left edge; targets where they are.
void ReviewSonar::PaintEvents(QPainter& painter, const ZrWaterfallLayout& layout)
{
    const double unit = static_cast<double>(ZrTheme::dp) * m_panel->devicePixelRatioF();
    const QColor ink = review::mark_ink(eventColour);
    const ZrEventList& events = m_recording->Events();
    for (std::size_t i = 0; i < events.Count(); ++i) {
        const double y = m_panel->YOf(m_recording->PingAt(m_recording->TimeOf(events.At(i))));
        if (std::isnan(y))
            continue;
        const QPointF flag[]
            = {{28.0 * unit, y - 6.0 * unit}, {38.0 * unit, y}, {28.0 * unit, y + 6.0 * unit}};
        // The dark edge is what shows on the bright end of a palette.
        for (const QPen& pen : {QPen(edge, 6.0 * unit), QPen(ink, 2.0 * unit)}) {
            painter.setPen(pen);
            painter.setBrush(pen.color());
            painter.drawLine(QPointF(0.0, y), QPointF(28.0 * unit, y));
            painter.drawPolygon(flag, 3);
        }
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    for (const ZrSonarTarget& target : m_targets) {
        const QPointF at
            = layout.ToPixel(static_cast<double>(target.spot.ping), target.spot.side, target.slantRange);
        if (std::isnan(at.x()))
            continue;
        const double radius = 9.0 * unit;
        painter.setPen(QPen(edge, 6.0 * unit));
        painter.drawEllipse(at, radius, radius);
        painter.setPen(QPen(ink, 2.0 * unit));
        painter.drawEllipse(at, radius, radius);
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
}
