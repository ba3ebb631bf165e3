#include "ZrUtil/ZrCheck.h"

#include "ZrUtil/ZrCtrlAccess.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

#include <algorithm>

namespace {

// Design pixels.
constexpr float boxSide = 30.0F;
constexpr float edge = 8.0F; ///< left of the box and right of the text
constexpr float between = 12.0F; ///< box and text

} // namespace

ZrCheck::ZrCheck(QWidget* parent)
    : QWidget(parent)
    , get([this] { return m_value; })
    , set([this](bool on) { m_value = on; })
{
    setMouseTracking(true);
    setFocusPolicy(Qt::TabFocus);
    ZrCtrlAccess::Install();
}

bool ZrCheck::IsOn() const
{
    return get && get();
}

void ZrCheck::Toggle()
{
    const QPointer<ZrCheck> self(this);
    // The setter may replace or delete what it belongs to.
    const std::function<void(bool)> setter = set;
    if (setter)
        setter(!IsOn());
    if (!self)
        return;
    update();
    ZrCtrlAccess::TellChecked(this);
    Q_EMIT Toggled(IsOn());
}

void ZrCheck::SetHover(u32 state)
{
    if (hover == state)
        return;
    hover = state;
    update();
}

void ZrCheck::mousePressEvent(QMouseEvent* /*event*/)
{
    Toggle();
}

void ZrCheck::mouseMoveEvent(QMouseEvent* event)
{
    SetHover(rect().contains(event->pos()) ? 1 : 0);
}

void ZrCheck::leaveEvent(QEvent* /*event*/)
{
    SetHover(0);
}

void ZrCheck::focusInEvent(QFocusEvent* event)
{
    m_showsFocus = ZrCtrlLook::ShowsFocus(event->reason(), m_showsFocus);
    QWidget::focusInEvent(event);
}

void ZrCheck::keyPressEvent(QKeyEvent* event)
{
    if (!m_showsFocus && hasFocus())
        update();
    m_showsFocus = true;
    const bool isPress = event->key() == Qt::Key_Space || event->key() == Qt::Key_Select;
    if (!isPress)
        QWidget::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        Toggle();
}

QSize ZrCheck::sizeHint() const
{
    const int textWidth = text.isEmpty() ? 0 : QFontMetrics(ZrTheme::ctrlFont).horizontalAdvance(text) + 1;
    const int around = ZrTheme::DpI(2 * edge + boxSide + between);
    return QSize(around + textWidth, ZrTheme::DpI(52)).expandedTo(minimumSizeHint());
}

QSize ZrCheck::minimumSizeHint() const
{
    return {ZrCtrlLook::smallestTarget, ZrCtrlLook::smallestTarget};
}

void ZrCheck::paintEvent(QPaintEvent* /*event*/)
{
    ZrCtrlState state;
    state.enabled = isEnabled();
    state.hovered = hover != 0;
    state.on = IsOn();
    state.focused = hasFocus() && m_showsFocus;
    ZrCtrlLook look = ZrCtrlLook::Of(state);
    QPainter painter(this);
    look.PaintFocus(painter, rect(), ZrTheme::rxy);
    look.focus = QColor();

    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const double side = std::min(ZrCtrlLook::Dp(boxSide), static_cast<double>(std::min(width(), height())));
    // Without a text the box stands in the middle.
    const double start
        = text.isEmpty() ? (width() - side) / 2 : std::min(ZrCtrlLook::Dp(edge), (width() - side) / 2);
    const QRectF box(isMirrored ? width() - side - start : start, (height() - side) / 2, side, side);
    PaintBox(painter, box, look);

    const double before = start + side + ZrCtrlLook::Dp(between);
    const double room = width() - before - ZrCtrlLook::Dp(edge);
    if (text.isEmpty() || room < 1.0)
        return;
    const QRectF textRect(isMirrored ? width() - before - room : before, 0, room, height());
    painter.setFont(ZrTheme::ctrlFont);
    painter.setPen(look.text);
    ZrCtrlLook::PaintText(painter, textRect, text, isMirrored ? Qt::AlignRight : Qt::AlignLeft);
}

void ZrCheck::PaintBox(QPainter& painter, const QRectF& box, const ZrCtrlLook& look)
{
    look.PaintFrame(painter, box, ZrCtrlLook::Dp(5.0F));
    if (!look.bar)
        return;
    // A tick: told by its shape, not by its colour.
    const auto at = [&box](double x, double y) {
        return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
    };
    painter.setPen(QPen(look.mark, box.width() / 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF({at(0.24, 0.53), at(0.42, 0.71), at(0.77, 0.31)}));
}
