#include "apps/ZrSurvey/ReviewTransport.h"

#include "ZrKit/review/ZrPlayClock.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QHash>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int narrowest = 44; ///< of a button, pixels
constexpr float wanted = 60.0F; ///< likewise, design pixels, for its caption
constexpr float around = 10.0F; ///< what a button keeps free on either side of it, design pixels
constexpr float beside = 4.0F; ///< likewise, of a text below an icon

const QImage& Icon(const QString& name)
{
    static QHash<QString, QImage> icons;
    auto found = icons.find(name);
    if (found == icons.end())
        found = icons.insert(name, QImage(QStringLiteral(":/icons/%1.png").arg(name)));
    return *found;
}

QString RateText(double rate)
{
    const QString sign = rate < 0.0 ? QStringLiteral("−") : QString();
    return sign + QString::number(std::fabs(rate)) + QStringLiteral("×");
}

} // namespace

ReviewTransport::ReviewTransport(QWidget* parent)
    : QWidget(parent)
    , m_buttons(actCount, nullptr)
{
    Add(previousEvent, "step_back", tr("Event"), tr("Previous event (Shift+E)"));
    Add(secondBack, "step_back", tr("1 s"), tr("A second back (Shift+Left)"));
    Add(recordBack, "step_back", tr("Rec."), tr("A record back (Left)"));
    Add(playBack, "play_back", QString(), tr("Play backward (Shift+Space)"));
    Add(play, "play", QString(), tr("Play and pause (Space)"));
    Add(recordForward, "step_forward", tr("Rec."), tr("A record on (Right)"));
    Add(secondForward, "step_forward", tr("1 s"), tr("A second on (Shift+Right)"));
    Add(nextEvent, "step_forward", tr("Event"), tr("Next event (Ctrl+E)"));
    Add(slower, "slower", QString(), tr("Slower (−)"));
    Add(faster, "faster", QString(), tr("Faster (+)"));
    Add(setA, "", tr("A"), tr("The range begins here (A)"));
    Add(setB, "", tr("B"), tr("The range ends here (B)"));
    Add(loop, "loop", QString(), tr("Repeat the range from A to B (L)"));
    Add(addEvent, "event", tr("Event"), tr("Add an event here (E)"));
    Add(typeTime, "", QString(), tr("Go to a time (T)"));
    for (int act = 0; act < actCount; ++act)
        m_buttons[act]->setObjectName(QStringLiteral("act%1").arg(act));
}

void ReviewTransport::Add(int act, const char* icon, const QString& text, const QString& hint)
{
    auto* button = new ZrBtn(this, act == play ? ZrBtn::typeAccent : ZrBtn::typeTool);
    if (*icon != '\0')
        button->img = Icon(QString::fromLatin1(icon));
    button->text = text;
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    if (act == typeTime)
        button->lines = 2;
    connect(button, &ZrBtn::Clicked, this, [this, act] { Q_EMIT Wanted(act); });
    m_buttons[act] = button;
}

void ReviewTransport::Restyle()
{
    Place();
    update();
}

void ReviewTransport::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Place();
}

/// The clock at the left, playing in the middle, the range at the right. Where room is short the gaps go
/// first, then the clock: a button stays as wide as a finger.
void ReviewTransport::Place()
{
    const int count = actCount - 1;
    int gap = ZrTheme::DpI(8);
    int margin = ZrTheme::DpI(16);
    int rate = ZrTheme::DpI(64);
    int clock = ZrTheme::DpI(176);
    const auto room = [&] { return (width() - 2 * margin - clock - rate - gap * (count + 3)) / count; };
    if (room() < ZrTheme::DpI(wanted))
        gap = 2;
    if (room() < ZrTheme::DpI(wanted)) {
        margin = 4;
        rate = std::max(ZrTheme::DpI(48), narrowest);
        clock = std::min(clock, std::max(ZrTheme::DpI(136), 132));
    }
    const int side = std::clamp(room(), narrowest, std::max(ZrTheme::DpI(80), narrowest));
    const int high = height();
    m_buttons[typeTime]->setGeometry(margin, 0, clock, high);
    const int range = 4 * (side + gap);
    int x = width() - margin - range + gap;
    for (const int act : {setA, setB, loop, addEvent}) {
        m_buttons[act]->setGeometry(x, 0, side, high);
        x += side + gap;
    }
    const int middle = 10 * side + rate + 10 * gap;
    const int from = margin + clock + gap;
    const int to = width() - margin - range;
    x = std::max(from, from + (to - from - middle) / 2);
    for (const int act : {previousEvent, secondBack, recordBack, playBack, play, recordForward, secondForward,
             nextEvent, slower}) {
        m_buttons[act]->setGeometry(x, 0, side, high);
        x += side + gap;
    }
    m_rateRect = QRect(x - gap, 0, rate + gap, high);
    x += rate;
    m_buttons[faster]->setGeometry(x, 0, side, high);
    PlaceText(side, clock);
}

/// Text as large as there is room for.
void ReviewTransport::PlaceText(int side, int clock)
{
    const auto fit = [](QFont font, const QString& text, int room) {
        const int is = QFontMetrics(font).horizontalAdvance(text);
        if (is > room)
            font.setPixelSize(std::max(font.pixelSize() * room / is, ZrLegible::LeastText));
        return font;
    };
    QFont small = ZrLegible::Font(13);
    for (const int act :
        {previousEvent, secondBack, recordBack, recordForward, secondForward, nextEvent, addEvent})
        small = fit(small, m_buttons[act]->text, side - 2 * ZrTheme::DpI(beside));
    for (int act = 0; act < actCount; ++act) {
        m_buttons[act]->font = act == setA || act == setB ? ZrTheme::fontLarge : small;
        m_buttons[act]->Changed();
    }
    QFont large = ZrLegible::Font(20);
    large.setBold(true);
    m_buttons[typeTime]->font = fit(large, QStringLiteral("00:00:00.000"), clock - 2 * ZrTheme::DpI(around));
    m_rateFont = ZrTheme::font;
    m_rateFont.setBold(true);
    m_rateFont = fit(m_rateFont, QStringLiteral("−0.25×"), m_rateRect.width());
}

void ReviewTransport::SetTime(const QString& time, const QString& date)
{
    ZrBtn& button = *m_buttons[typeTime];
    const QString text = date.isEmpty() ? time : date + QLatin1Char('\n') + time;
    if (button.text == text)
        return;
    button.text = text;
    button.Changed();
}

void ReviewTransport::SetState(const ZrPlayClock& clock, bool hasLog)
{
    const bool isForward = clock.Rate() > 0.0;
    const auto show = [this](int act, const char* icon, bool on) {
        ZrBtn& button = *m_buttons[act];
        const QImage& image = Icon(QString::fromLatin1(icon));
        if (button.img == image && button.on == on)
            return;
        button.img = image;
        button.on = on;
        button.Changed();
    };
    show(play, clock.IsPlaying() && isForward ? "pause" : "play", clock.IsPlaying() && isForward);
    show(playBack, clock.IsPlaying() && !isForward ? "pause" : "play_back", clock.IsPlaying() && !isForward);
    show(loop, "loop", clock.HasLoop());
    for (ZrBtn* button : qAsConst(m_buttons))
        button->setEnabled(hasLog);
    const QString rate = RateText(clock.Rate());
    if (rate != m_rate) {
        m_rate = rate;
        update();
    }
}

void ReviewTransport::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), ZrTheme::toolBack);
    painter.setFont(m_rateFont);
    painter.setPen(ZrTheme::ctrlCol);
    painter.drawText(m_rateRect, Qt::AlignCenter, m_rate);
}
