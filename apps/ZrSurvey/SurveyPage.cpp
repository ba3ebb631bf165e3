#include "apps/ZrSurvey/SurveyPage.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFileInfo>
#include <QPainter>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int frameMs = 16;

/// A page that was not painted for so long goes on as if it had been, seconds.
constexpr double longestFrame = 0.25;

/// As large as the window's close button beside them.
int ButtonSide()
{
    return std::max(ZrTheme::DpI(48), 44);
}

ZrBtn* Tool(QWidget* parent, const QString& icon, const QString& name)
{
    auto* button = new ZrBtn(parent, ZrBtn::typeTool);
    button->setObjectName(QStringLiteral("band_") + QFileInfo(icon).baseName());
    button->img = QImage(icon);
    button->setToolTip(name);
    button->setAccessibleName(name);
    return button;
}

} // namespace

SurveyPage::SurveyPage(SurveyView& view, const QString& title)
    : ZrPage(&view)
    , m_back(Tool(this, QStringLiteral(":/icons/back.png"), tr("Back (Alt+Left)")))
    , m_settings(Tool(this, QStringLiteral(":/icons/settings.png"), tr("Settings (F10)")))
    , m_survey(view)
    , m_title(title)
    , m_frames(new QTimer(this))
{
    connect(m_back, &ZrBtn::Clicked, &view, [&view] { view.Back(); });
    connect(m_settings, &ZrBtn::Clicked, &view, [&view] { view.ToggleSettings(); });
    connect(m_frames, &QTimer::timeout, this, &SurveyPage::OnTick);
    m_frames->setTimerType(Qt::PreciseTimer);
    const SurveyRecording& recording = view.Model().recording;
    connect(&recording, &SurveyRecording::Changed, this, [this] { update(RecordingRect()); });
    connect(&recording, &SurveyRecording::Switched, this, &SurveyPage::OnColours);
}

void SurveyPage::SetTitle(const QString& title)
{
    m_title = title;
    update();
}

void SurveyPage::SetSubtitle(const QString& subtitle)
{
    if (subtitle == m_subtitle)
        return;
    m_subtitle = subtitle;
    update();
}

int SurveyPage::Gap() const
{
    return std::max(ZrTheme::DpI(8), 4);
}

QRect SurveyPage::Content() const
{
    return rect().adjusted(0, BandBottom(), 0, 0);
}

int SurveyPage::BandBottom() const
{
    return std::max(ZrTheme::DpI(BandHeight), ButtonSide() + 2 * ZrTheme::DpI(16));
}

int SurveyPage::BandLeft() const
{
    return ZrTheme::DpI(360);
}

int SurveyPage::BandRight() const
{
    const QRect recording = RecordingRect();
    return (recording.isEmpty() ? m_settings->x() : recording.x()) - Gap();
}

QRect SurveyPage::RecordingRect() const
{
    if (!View().Model().recording.IsOn())
        return {};
    const int wide = ZrTheme::DpI(128);
    return {m_settings->x() - 2 * Gap() - wide, 0, wide, BandBottom()};
}

/// A dot, which blinks for nobody, and the time.
void SurveyPage::PaintRecording(QPainter& painter) const
{
    const QRect area = RecordingRect();
    if (area.isEmpty())
        return;
    const int dot = ZrTheme::DpI(16);
    const QRect place(area.x(), area.center().y() - dot / 2, dot, dot);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ZrTheme::errorCol);
    painter.drawEllipse(place);
    painter.setFont(ZrTheme::fontLarge);
    painter.setPen(ZrTheme::titleCol);
    painter.drawText(area.adjusted(dot + Gap(), 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
        View().Model().recording.ElapsedText());
}

void SurveyPage::Changed()
{
    View().update();
    update();
}

void SurveyPage::Animate()
{
    if (m_frames->isActive())
        return;
    m_clock.start();
    m_frames->start(frameMs);
}

void SurveyPage::OnTick()
{
    const double seconds = std::min(static_cast<double>(m_clock.nsecsElapsed()) * 1e-9, longestFrame);
    m_clock.start();
    if (!isVisible() || !OnFrame(seconds))
        m_frames->stop();
}

bool SurveyPage::OnFrame(double /*seconds*/)
{
    return false;
}

void SurveyPage::showEvent(QShowEvent* event)
{
    ZrPage::showEvent(event);
    View().GiveFocus();
    if (!ShowsReview())
        View().Model().player.Pause();
}

void SurveyPage::hideEvent(QHideEvent* event)
{
    m_frames->stop();
    ZrPage::hideEvent(event);
}

void SurveyPage::OnColours()
{
    PlaceAll();
    Changed();
}

bool SurveyPage::OnKey(int /*key*/, Qt::KeyboardModifiers /*modifiers*/)
{
    return false;
}

void SurveyPage::resizeEvent(QResizeEvent* event)
{
    ZrPage::resizeEvent(event);
    PlaceAll();
}

void SurveyPage::PlaceAll()
{
    const int margin = ZrTheme::DpI(16);
    const int side = ButtonSide();
    m_back->setGeometry(margin, margin, side, side);
    // The window's close button is to the right of it.
    m_settings->setGeometry(width() - 2 * (side + margin), margin, side, side);
    Place();
}

void SurveyPage::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRect band(0, 0, width(), BandBottom());
    painter.fillRect(band, ZrTheme::toolBack);
    PaintRecording(painter);
    const int left = m_back->isVisible() ? m_back->geometry().right() + 2 * Gap() : 2 * Gap();
    const QRect text(left, 0, BandLeft() - left - Gap(), band.height());
    QFont font = ZrTheme::fontLarge;
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(ZrTheme::titleCol);
    const auto elided = [&painter, &text](const QString& line) {
        return painter.fontMetrics().elidedText(line, Qt::ElideMiddle, text.width());
    };
    if (m_subtitle.isEmpty()) {
        painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter, elided(m_title));
        return;
    }
    const int middle = band.height() * 9 / 16;
    painter.drawText(
        text.adjusted(0, 0, 0, middle - band.height()), Qt::AlignLeft | Qt::AlignBottom, elided(m_title));
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(text.adjusted(0, middle, 0, 0), Qt::AlignLeft | Qt::AlignTop, elided(m_subtitle));
}
