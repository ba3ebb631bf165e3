#include "ZrKit/ui/ZrTimeBar.h"

#include "ZrKit/review/ZrPlotDecimator.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrUtil/ZrTheme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTouchEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double zoomStep = 1.25; ///< for each notch of the wheel
constexpr double notch = 120.0; ///< eighths of a degree
constexpr double panStep = 0.1; ///< of the visible part
constexpr double revealMargin = 0.1;
constexpr int dragDistance = 8; ///< pixels within which a press on a flag stays one
constexpr double least = 22.0; ///< pixels that a finger misses a handle or a flag by at most
constexpr double attraction = 6.0; ///< pixels from which an event draws the cursor

QColor Faded(QColor colour, double alpha)
{
    colour.setAlphaF(alpha);
    return colour;
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
    m_line = ZrTimeLine();
    m_line.SetLog(std::move(log));
    m_events.clear();
    m_currentEvent = -1;
    m_range[0] = m_range[1] = m_cursor = std::numeric_limits<double>::quiet_NaN();
    m_grab = grabNothing;
    Viewed();
}

void ZrTimeBar::SetProfile(const ZrPlotSeries* profile)
{
    m_profile = profile;
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
    QFont font = ZrTheme::font;
    font.setPixelSize(std::max(ZrTheme::DpI(15), 11));
    return font;
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
    return m_line.Snap(at, axis.width(), m_events, attraction);
}

// -- Input

void ZrTimeBar::Press(const QPointF& pos)
{
    m_grab = grabNothing;
    if (!m_line.Log())
        return;
    m_pressed = pos;
    const double reach = std::max(least, static_cast<double>(ZrTheme::DpF(22)));
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
    if (m_grab == grabEvent && (pos - m_pressed).manhattanLength() > dragDistance) {
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

// -- Painting

void ZrTimeBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), ZrTheme::toolBack);
    const QRect axis = Axis();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Faded(ZrTheme::ctrlOutlineCol, 0.18));
    painter.drawRoundedRect(axis, ZrTheme::DpI(4), ZrTheme::DpI(4));
    painter.setFont(SmallFont());
    if (!m_line.Log()) {
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(axis, Qt::AlignCenter, tr("No recording"));
        return;
    }
    PaintProfile(painter, axis);
    PaintCuts(painter, axis);
    PaintRange(painter, axis);
    PaintTicks(painter, axis);
    PaintEvents(painter, axis);
    PaintCursor(painter, axis);
}

void ZrTimeBar::PaintProfile(QPainter& painter, const QRect& axis)
{
    if (!m_profile || m_profile->Count() == 0)
        return;
    const ZrPlotSeries::Extent extent = m_profile->ExtentOf(0, m_profile->Count());
    if (!extent.IsKnown())
        return;
    ZrPlotDecimator decimator;
    decimator.mostStep = m_line.LongestStep();
    const std::vector<double> columns = m_line.Columns(axis.width());
    const double low = std::min(static_cast<double>(extent.min), 0.0);
    const double span = std::max(static_cast<double>(extent.max) - low, 1e-3);
    const double height = axis.height() - ZrTheme::DpF(6);
    QPainterPath path;
    QPointF last;
    const auto close = [&] {
        if (path.elementCount() == 0)
            return;
        path.lineTo(last.x(), axis.y());
        path.closeSubpath();
        painter.fillPath(path, Faded(ZrTheme::ctrlHighlightCol, 0.28));
        path = QPainterPath();
    };
    for (const ZrPlotDecimator::Point& point : decimator.Decimate(*m_profile, columns)) {
        if (std::isnan(point.y)) {
            close();
            continue;
        }
        const QPointF at(axis.x() + static_cast<double>(point.x),
            axis.y() + (static_cast<double>(point.y) - low) / span * height);
        if (path.elementCount() == 0)
            path.moveTo(at.x(), axis.y());
        path.lineTo(at);
        last = at;
    }
    close();
}

void ZrTimeBar::PaintCuts(QPainter& painter, const QRect& axis)
{
    int taken = axis.x();
    for (const ZrTimeLine::Cut& cut : m_line.Cuts(axis.width())) {
        const int x = axis.x() + qRound(cut.fraction * axis.width());
        painter.fillRect(QRect(x - 1, axis.y(), 3, axis.height()), ZrTheme::toolBack);
        painter.setPen(QPen(ZrTheme::warnCol, 1, Qt::DashLine));
        painter.drawLine(x, axis.y(), x, axis.bottom());
        const QString text = ZrTimeText::Elapsed(cut.seconds);
        const int width = painter.fontMetrics().horizontalAdvance(text);
        const int left = x + ZrTheme::DpI(4);
        if (left < taken || left + width > axis.right())
            continue;
        painter.setPen(ZrTheme::warnCol);
        painter.drawText(QRect(left, axis.y(), width, axis.height()), Qt::AlignLeft | Qt::AlignVCenter, text);
        taken = left + width + ZrTheme::DpI(8);
    }
}

void ZrTimeBar::PaintRange(QPainter& painter, const QRect& axis)
{
    painter.setClipRect(rect().adjusted(0, 0, 0, 0));
    const auto clampX
        = [&axis](double x) { return std::clamp(x, static_cast<double>(axis.left()), axis.right() + 1.0); };
    if (!std::isnan(m_range[0]) && !std::isnan(m_range[1])) {
        const double from = clampX(std::min(HandleX(0), HandleX(1)));
        const double to = clampX(std::max(HandleX(0), HandleX(1)));
        painter.fillRect(QRectF(from, axis.y(), to - from, axis.height()), Faded(ZrTheme::goodCol, 0.25));
    }
    for (int end = 0; end < 2; ++end) {
        const double x = HandleX(end);
        if (x < axis.left() - 1 || x > axis.right() + 1)
            continue;
        painter.setPen(QPen(ZrTheme::goodCol, ZrTheme::DpI(2)));
        painter.drawLine(QPointF(x, axis.y()), QPointF(x, axis.bottom()));
        const double side = ZrTheme::DpF(18);
        const QRectF box(end == 0 ? x - side : x, axis.y() - side, side, side);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ZrTheme::goodCol);
        painter.drawRect(box);
        painter.setPen(ZrTheme::goodCol.lightness() > 127 ? Qt::black : Qt::white);
        painter.drawText(box, Qt::AlignCenter, end == 0 ? QStringLiteral("A") : QStringLiteral("B"));
    }
}

void ZrTimeBar::PaintTicks(QPainter& painter, const QRect& axis)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const auto measure = [&metrics](const QString& text) { return metrics.horizontalAdvance(text); };
    const int top = axis.bottom() + 1;
    for (const ZrTimeLine::Tick& tick : m_line.Ticks(axis.width(), measure)) {
        const int x = axis.x() + qRound(tick.fraction * axis.width());
        const bool isLong = !tick.label.isEmpty();
        painter.setPen(QPen(ZrTheme::ctrlOutlineCol, 1));
        painter.drawLine(x, top - ZrTheme::DpI(isLong ? 8 : 4), x, top + ZrTheme::DpI(isLong ? 4 : 0));
        if (!isLong)
            continue;
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(QRect(axis.x() + tick.labelLeft, top + ZrTheme::DpI(2),
                             metrics.horizontalAdvance(tick.label) + 2, metrics.height()),
            Qt::AlignLeft | Qt::AlignVCenter, tick.label);
    }
}

void ZrTimeBar::PaintEvents(QPainter& painter, const QRect& axis)
{
    const double pole = ZrTheme::DpF(16);
    const double flag = ZrTheme::DpF(10);
    const auto paint = [&](std::size_t i, const QColor& colour) {
        const double x = XOf(m_events[i]);
        if (x < axis.left() - 1 || x > axis.right() + 1)
            return;
        painter.setPen(QPen(colour, std::max(ZrTheme::DpI(2), 1)));
        painter.drawLine(QPointF(x, axis.y() - pole), QPointF(x, axis.bottom()));
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        const QPointF corners[]
            = {{x, axis.y() - pole}, {x + flag, axis.y() - pole + flag / 2.0}, {x, axis.y() - pole + flag}};
        painter.drawPolygon(corners, 3);
    };
    for (std::size_t i = 0; i < m_events.size(); ++i) {
        if (static_cast<int>(i) != m_currentEvent)
            paint(i, ZrTheme::warnCol);
    }
    if (m_currentEvent >= 0 && m_currentEvent < static_cast<int>(m_events.size()))
        paint(static_cast<std::size_t>(m_currentEvent), ZrTheme::ctrlCol);
}

void ZrTimeBar::PaintCursor(QPainter& painter, const QRect& axis)
{
    const double x = XOf(m_cursor);
    if (!(x >= axis.left() - 1 && x <= axis.right() + 1))
        return;
    const double half = ZrTheme::DpF(7);
    painter.setPen(QPen(ZrTheme::toolBack, ZrTheme::DpI(5)));
    painter.drawLine(QPointF(x, axis.y()), QPointF(x, axis.bottom()));
    painter.setPen(QPen(ZrTheme::ctrlCol, std::max(ZrTheme::DpI(2), 1)));
    painter.drawLine(QPointF(x, axis.y()), QPointF(x, axis.bottom()));
    painter.setPen(QPen(ZrTheme::toolBack, 1));
    painter.setBrush(ZrTheme::ctrlCol);
    painter.drawEllipse(QPointF(x, axis.bottom() - half), half, half);
}
