#include "ZrKit/ui/ZrTimeBar.h"

#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"

#include <QMouseEvent>
#include <QTouchEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double zoomStep = 1.25; ///< for each notch of the wheel
constexpr double notch = 120.0; ///< eighths of a degree
constexpr double panStep = 0.1; ///< of the visible part
constexpr double revealMargin = 0.1;
constexpr double dragDistance = 8.0; ///< pixels within which a press on a flag stays one
constexpr double least = 22.0; ///< pixels that a finger misses a handle or a flag by at most
constexpr double attraction = 6.0; ///< pixels from which an event draws the cursor

/// For fingers these are pixels of the widget at least, and more where everything is drawn larger.
double Reach(double pixels)
{
    return std::max(static_cast<double>(ZrTheme::DpF(static_cast<float>(pixels))), pixels);
}

} // namespace

ZrTimeBar::ZrTimeBar(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    setCursor(Qt::PointingHandCursor);
    setAccessibleName(tr("Time line"));
    setToolTip(tr("Drag to scrub, pinch or turn the wheel to zoom, Shift and wheel to move along"));
}

QSize ZrTimeBar::sizeHint() const
{
    return {ZrTheme::DpI(640), ZrTheme::DpI(Height)};
}

void ZrTimeBar::SetLog(std::shared_ptr<const ZrSteadyTime> log)
{
    const bool isCut = m_line.AreGapsCut();
    m_line = ZrTimeLine();
    m_line.SetLog(std::move(log));
    m_line.SetGapsCut(isCut);
    m_events.clear();
    m_currentEvent = -1;
    m_range[0] = m_range[1] = m_cursor = std::numeric_limits<double>::quiet_NaN();
    m_grab = grabNothing;
    Viewed();
}

void ZrTimeBar::SetProfile(const ZrPlotSeries* profile)
{
    m_profile = profile;
    m_picture = ZrKeptPicture();
    update();
}

void ZrTimeBar::SetCursor(double steady)
{
    if (steady == m_cursor || (std::isnan(steady) && std::isnan(m_cursor)))
        return;
    m_cursor = steady;
    update();
}

void ZrTimeBar::SetEvents(std::vector<double> steady)
{
    m_events = std::move(steady);
    m_currentEvent = -1;
    update();
}

void ZrTimeBar::SetCurrentEvent(int event)
{
    if (event == m_currentEvent)
        return;
    m_currentEvent = event;
    update();
}

void ZrTimeBar::SetRange(double a, double b)
{
    m_range[0] = a;
    m_range[1] = b;
    update();
}

void ZrTimeBar::Viewed()
{
    update();
    Q_EMIT ViewChanged();
}

void ZrTimeBar::SetGapsCut(bool cut)
{
    if (cut == m_line.AreGapsCut())
        return;
    m_line.SetGapsCut(cut);
    Viewed();
}

void ZrTimeBar::ShowAll()
{
    m_line.ShowAll();
    Viewed();
}

void ZrTimeBar::Zoom(double factor, double fraction)
{
    m_line.Zoom(factor, fraction);
    Viewed();
}

void ZrTimeBar::Pan(double share)
{
    m_line.Pan(share);
    Viewed();
}

void ZrTimeBar::ShowRange(double a, double b)
{
    m_line.Show(a, b);
    Viewed();
}

void ZrTimeBar::Reveal(double steady)
{
    const double before = m_line.VisibleBegin();
    m_line.Reveal(steady, revealMargin);
    if (m_line.VisibleBegin() != before)
        Viewed();
}

void ZrTimeBar::Restyle()
{
    update();
}

void ZrTimeBar::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange)
        update();
    QWidget::changeEvent(event);
}

int ZrTimeBar::Margin() const
{
    return ZrTheme::DpI(16);
}

QFont ZrTimeBar::SmallFont() const
{
    return ZrLegible::Font(15);
}

QRect ZrTimeBar::Axis() const
{
    const int labels = QFontMetrics(SmallFont()).height() + ZrTheme::DpI(8);
    const int flags = ZrTheme::DpI(20);
    return rect().adjusted(Margin(), flags, -Margin(), -labels);
}

QRect ZrTimeBar::Flags() const
{
    const QRect axis = Axis();
    return {axis.x(), 0, axis.width(), axis.y()};
}

double ZrTimeBar::XOf(double steady) const
{
    const QRect axis = Axis();
    return axis.x() + m_line.Fraction(steady) * axis.width();
}

double ZrTimeBar::HandleX(int end) const
{
    return std::isnan(m_range[end]) ? -1e9 : XOf(m_range[end]);
}

double ZrTimeBar::TimeAt(double x) const
{
    const QRect axis = Axis();
    const double at = std::clamp(x - axis.x(), 0.0, static_cast<double>(axis.width()));
    return m_line.Snap(at, axis.width(), m_events, Reach(attraction));
}

// -- Input

void ZrTimeBar::Press(const QPointF& pos)
{
    m_grab = grabNothing;
    if (!m_line.Log())
        return;
    m_pressed = pos;
    const double reach = Reach(least);
    const QRect axis = Axis();
    // Handles and flags are in the upper half; below it a finger always takes the time.
    if (pos.y() < axis.center().y()) {
        const double toA = std::fabs(HandleX(0) - pos.x());
        const double toB = std::fabs(HandleX(1) - pos.x());
        const std::size_t event = m_line.HitTest(pos.x() - axis.x(), axis.width(), m_events, reach);
        const double toEvent
            = event < m_events.size() ? std::fabs(XOf(m_events[event]) - pos.x()) : 2.0 * reach;
        if (toEvent <= std::min(toA, toB) && toEvent <= reach) {
            m_grab = grabEvent;
            m_grabbedEvent = static_cast<int>(event);
            return;
        }
        if (std::min(toA, toB) <= reach) {
            m_grab = toA < toB ? grabA : grabB;
            return;
        }
    }
    m_grab = grabTime;
    Q_EMIT ScrubBegan();
    Q_EMIT Scrubbed(TimeAt(pos.x()));
}

void ZrTimeBar::Move(const QPointF& pos)
{
    if (m_grab == grabEvent && (pos - m_pressed).manhattanLength() > Reach(dragDistance)) {
        m_grab = grabTime;
        Q_EMIT ScrubBegan();
    }
    if (m_grab == grabTime) {
        Q_EMIT Scrubbed(TimeAt(pos.x()));
    } else if (m_grab == grabA || m_grab == grabB) {
        m_range[m_grab == grabA ? 0 : 1] = TimeAt(pos.x());
        update();
        Q_EMIT RangeChanged(m_range[0], m_range[1]);
    }
}

void ZrTimeBar::Release()
{
    const eGrab grab = m_grab;
    m_grab = grabNothing;
    if (grab == grabTime)
        Q_EMIT ScrubEnded();
    else if (grab == grabEvent && m_grabbedEvent < static_cast<int>(m_events.size()))
        Q_EMIT EventTapped(m_grabbedEvent);
}

bool ZrTimeBar::Touch(const QTouchEvent& event)
{
    const auto points = event.touchPoints();
    if (event.type() == QEvent::TouchCancel) {
        m_isPinching = false;
        Release();
        return true;
    }
    if (points.size() >= 2) {
        if (m_grab == grabTime)
            Q_EMIT ScrubEnded();
        m_grab = grabNothing;
        m_isPinching = true;
        const QRect axis = Axis();
        const auto span
            = [](const QPointF& a, const QPointF& b) { return std::max(std::fabs(a.x() - b.x()), 10.0); };
        const double middle = (points[0].pos().x() + points[1].pos().x()) / 2.0;
        const double before = (points[0].lastPos().x() + points[1].lastPos().x()) / 2.0;
        m_line.Pan((before - middle) / axis.width());
        m_line.Zoom(span(points[0].pos(), points[1].pos()) / span(points[0].lastPos(), points[1].lastPos()),
            (middle - axis.x()) / axis.width());
        Viewed();
    } else if (points.size() == 1 && !m_isPinching) {
        if (event.type() == QEvent::TouchBegin)
            Press(points[0].pos());
        else if (points[0].state() == Qt::TouchPointMoved)
            Move(points[0].pos());
    }
    if (event.type() == QEvent::TouchEnd) {
        if (!m_isPinching)
            Release();
        m_isPinching = false;
    }
    return true;
}

bool ZrTimeBar::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        event->accept();
        return Touch(static_cast<const QTouchEvent&>(*event));
    default:
        return QWidget::event(event);
    }
}

void ZrTimeBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && event->source() == Qt::MouseEventNotSynthesized)
        Press(event->localPos());
}

void ZrTimeBar::mouseMoveEvent(QMouseEvent* event)
{
    if (event->source() == Qt::MouseEventNotSynthesized)
        Move(event->localPos());
}

void ZrTimeBar::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && event->source() == Qt::MouseEventNotSynthesized)
        Release();
}

void ZrTimeBar::wheelEvent(QWheelEvent* event)
{
    event->accept();
    const QPoint turned = event->angleDelta();
    const double notches = (turned.y() != 0 ? turned.y() : turned.x()) / notch;
    const QRect axis = Axis();
    if (event->modifiers() & Qt::ShiftModifier)
        Pan(-notches * panStep);
    else
        Zoom(std::pow(zoomStep, notches), (event->position().x() - axis.x()) / axis.width());
}
