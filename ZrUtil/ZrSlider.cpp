#include "ZrUtil/ZrSlider.h"

#include "ZrUtil/ZrCtrlAccess.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr u32 hoverNone = 0;
constexpr u32 hoverOver = 1;
constexpr u32 hoverDragged = 2;
constexpr float around = 6.0F; ///< the handle: room for its focus line, design pixels

double HandleSide()
{
    return std::max(24.0, ZrCtrlLook::Dp(36.0F));
}

} // namespace

ZrSlider::ZrSlider(QWidget* parent)
    : QWidget(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::TabFocus);
    ZrCtrlAccess::Install();
}

double ZrSlider::Allowed(double value) const
{
    const double inside = std::clamp(value, m_min, m_max);
    if (m_step <= 0.0 || inside == m_max)
        return inside;
    const double steps = (inside - m_min) / m_step;
    // Steps too small to be counted are none.
    return std::isfinite(steps) ? std::min(m_min + std::round(steps) * m_step, m_max) : inside;
}

void ZrSlider::SetRange(double lo, double hi)
{
    if (!std::isfinite(lo) || !std::isfinite(hi) || !std::isfinite(hi - lo) || lo > hi)
        return;
    if (lo == m_min && hi == m_max)
        return;
    m_min = lo;
    m_max = hi;
    update();
    SetValue(m_value);
}

void ZrSlider::SetStep(double step)
{
    if (!std::isfinite(step) || step < 0.0)
        return;
    m_step = step;
    SetValue(m_value);
}

void ZrSlider::SetValue(double value)
{
    if (std::isnan(value))
        return;
    const double allowed = Allowed(value);
    if (allowed == m_value)
        return;
    m_value = allowed;
    update();
    ZrCtrlAccess::TellValue(this, m_value);
    Q_EMIT ValueChanged(m_value);
}

void ZrSlider::StepBy(int count)
{
    const double step = m_step > 0.0 ? m_step : (m_max - m_min) / 100.0;
    SetValue(m_value + count * step);
}

QSize ZrSlider::sizeHint() const
{
    const QSize size(ZrTheme::DpI(280), ZrTheme::DpI(text.isEmpty() ? 52 : 76));
    return size.expandedTo(minimumSizeHint());
}

QSize ZrSlider::minimumSizeHint() const
{
    const int caption = text.isEmpty() ? 0 : QFontMetrics(ZrTheme::ctrlFont).height();
    const int high = static_cast<int>(std::ceil(HandleSide() + ZrCtrlLook::Dp(2 * around))) + caption;
    return {
        std::max(ZrTheme::DpI(120), ZrCtrlLook::smallestTarget), std::max(high, ZrCtrlLook::smallestTarget)};
}

/// The line that the middle of the handle moves on.
QRectF ZrSlider::Groove() const
{
    const double half = HandleSide() / 2 + ZrCtrlLook::Dp(around);
    const double icon = ZrCtrlLook::Dp(40.0F);
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const QImage& atLeft = isMirrored ? imgEnd : img;
    const QImage& atRight = isMirrored ? img : imgEnd;
    const double left = half + (atLeft.isNull() ? 0.0 : icon);
    const double right = width() - half - (atRight.isNull() ? 0.0 : icon);
    const double middle = text.isEmpty() ? height() / 2.0 : height() - half;
    return {left, middle, std::max(1.0, right - left), 0.0};
}

double ZrSlider::XOf(double value) const
{
    const QRectF groove = Groove();
    const double share = m_max > m_min ? (value - m_min) / (m_max - m_min) : 0.0;
    return layoutDirection() == Qt::RightToLeft ? groove.right() - share * groove.width()
                                                : groove.left() + share * groove.width();
}

double ZrSlider::ValueAt(double x) const
{
    const QRectF groove = Groove();
    const double way = layoutDirection() == Qt::RightToLeft ? groove.right() - x : x - groove.left();
    return m_min + way / groove.width() * (m_max - m_min);
}

QString ZrSlider::ValueText() const
{
    const QString number = QString::number(m_value, 'f', places);
    // Signs of angles stand at the number, units behind a space.
    static const QString signs = QStringLiteral("°′″'\"");
    const bool isClose = unit.isEmpty() || signs.contains(unit);
    return isClose ? number + unit : number + QLatin1Char(' ') + unit;
}

void ZrSlider::SetHover(u32 state)
{
    if (m_hover == state)
        return;
    m_hover = state;
    update();
}

void ZrSlider::mousePressEvent(QMouseEvent* event)
{
    const double x = event->localPos().x();
    const double handle = XOf(m_value);
    const bool isOnHandle = std::fabs(x - handle) <= HandleSide() / 2;
    m_grab = isOnHandle ? x - handle : 0.0;
    SetHover(hoverDragged);
    if (!isOnHandle)
        SetValue(ValueAt(x));
}

void ZrSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (m_hover == hoverDragged)
        SetValue(ValueAt(event->localPos().x() - m_grab));
    else
        SetHover(hoverOver);
}

void ZrSlider::mouseReleaseEvent(QMouseEvent* event)
{
    SetHover(rect().contains(event->pos()) ? hoverOver : hoverNone);
}

void ZrSlider::wheelEvent(QWheelEvent* event)
{
    // Fine wheels and touch pads send a step in many parts.
    m_turned += event->angleDelta().y();
    if (event->angleDelta().y() == 0)
        event->ignore();
    const int steps = m_turned / QWheelEvent::DefaultDeltasPerStep;
    m_turned -= steps * QWheelEvent::DefaultDeltasPerStep;
    if (steps != 0)
        StepBy(steps);
}

void ZrSlider::leaveEvent(QEvent* /*event*/)
{
    if (m_hover == hoverOver)
        SetHover(hoverNone);
}

void ZrSlider::changeEvent(QEvent* event)
{
    // The release of a drag does not come to a disabled widget.
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        SetHover(hoverNone);
    QWidget::changeEvent(event);
}

void ZrSlider::hideEvent(QHideEvent* event)
{
    SetHover(hoverNone);
    QWidget::hideEvent(event);
}

void ZrSlider::focusInEvent(QFocusEvent* event)
{
    m_showsFocus = ZrCtrlLook::ShowsFocus(event->reason(), m_showsFocus);
    QWidget::focusInEvent(event);
}

void ZrSlider::keyPressEvent(QKeyEvent* event)
{
    if (!m_showsFocus && hasFocus())
        update();
    m_showsFocus = true;
    const int toRight = layoutDirection() == Qt::RightToLeft ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        StepBy(-toRight);
        break;
    case Qt::Key_Right:
        StepBy(toRight);
        break;
    case Qt::Key_Down:
        StepBy(-1);
        break;
    case Qt::Key_Up:
        StepBy(1);
        break;
    case Qt::Key_PageDown:
        StepBy(-10);
        break;
    case Qt::Key_PageUp:
        StepBy(10);
        break;
    case Qt::Key_Home:
        SetValue(m_min);
        break;
    case Qt::Key_End:
        SetValue(m_max);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void ZrSlider::paintEvent(QPaintEvent* /*event*/)
{
    ZrCtrlState state;
    state.enabled = isEnabled();
    state.hovered = m_hover == hoverOver;
    state.pressed = m_hover == hoverDragged;
    state.focused = hasFocus() && m_showsFocus;
    ZrCtrlLook look = ZrCtrlLook::Of(state);
    QPainter painter(this);
    PaintGroove(painter, look);
    PaintHandle(painter, look);
    PaintIcons(painter, look);
    PaintCaption(painter, look);
}

void ZrSlider::PaintGroove(QPainter& painter, const ZrCtrlLook& look)
{
    const QRectF groove = Groove();
    const double half = ZrCtrlLook::Dp(4.0F);
    const QRectF all = ZrCtrlLook::Snapped(painter, groove.adjusted(-half, -half, half, half));
    const double round = all.height() / 2;
    ZrCtrlLook rail = ZrCtrlLook::Of(ZrCtrlState());
    rail.outlineWidth = ZrCtrlLook::Dp(1.5F);
    rail.dashed = look.dashed;
    rail.PaintFrame(painter, all, round);
    QRectF done = all;
    if (layoutDirection() == Qt::RightToLeft)
        done.setLeft(XOf(m_value));
    else
        done.setRight(XOf(m_value));
    painter.setPen(Qt::NoPen);
    painter.setBrush(look.mark);
    painter.drawRoundedRect(done, round, round);
}

void ZrSlider::PaintHandle(QPainter& painter, const ZrCtrlLook& look)
{
    const double side = HandleSide();
    QRectF handle(0, 0, side, side);
    handle.moveCenter({XOf(m_value), Groove().top()});
    const double ring = ZrCtrlLook::Dp(around - 1.0F);
    look.PaintFocus(painter, handle.adjusted(-ring, -ring, ring, ring), side / 2 + ring);
    ZrCtrlLook knob = look;
    knob.focus = QColor();
    knob.PaintFrame(painter, handle, side / 2);
    // Ridges: what is to be moved sideways.
    const QRectF at = ZrCtrlLook::Snapped(painter, handle);
    const double line = ZrCtrlLook::WholeLine(painter, ZrCtrlLook::Dp(2.0F));
    const double high = std::round(side * 0.34);
    for (const int i : {-1, 0, 1}) {
        const QRectF ridge(at.center().x() + i * 2 * line - line / 2, at.center().y() - high / 2, line, high);
        painter.fillRect(ZrCtrlLook::Snapped(painter, ridge), look.text);
    }
}

void ZrSlider::PaintIcons(QPainter& painter, const ZrCtrlLook& look)
{
    const double side = ZrCtrlLook::Dp(28.0F);
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const double top = Groove().top() - side / 2;
    ZrCtrlLook::PaintIcon(painter, QRectF(0, top, side, side), isMirrored ? imgEnd : img, look.text);
    ZrCtrlLook::PaintIcon(
        painter, QRectF(width() - side, top, side, side), isMirrored ? img : imgEnd, look.text);
}

void ZrSlider::PaintCaption(QPainter& painter, const ZrCtrlLook& look)
{
    const QRectF caption(0, 0, width(), Groove().top() - HandleSide() / 2);
    const QFontMetricsF metrics(ZrTheme::ctrlFont);
    if (text.isEmpty() || caption.height() < metrics.height() / 2)
        return;
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const QString value = ValueText();
    const double room = caption.width() - metrics.horizontalAdvance(value) - ZrCtrlLook::Dp(12.0F);
    painter.setFont(ZrTheme::ctrlFont);
    painter.setPen(look.text);
    QRectF name = caption;
    if (isMirrored)
        name.setLeft(caption.right() - room);
    else
        name.setRight(caption.left() + room);
    ZrCtrlLook::PaintText(painter, name, text, isMirrored ? Qt::AlignRight : Qt::AlignLeft);
    ZrCtrlLook::PaintText(painter, caption, value, isMirrored ? Qt::AlignLeft : Qt::AlignRight);
}
