#include "ZrUtil/ZrRadio.h"

#include "ZrUtil/ZrCtrlAccess.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

// Design pixels.
constexpr float edge = 8.0F; ///< beside ring and text
constexpr float between = 12.0F; ///< ring and text

} // namespace

ZrRadio::ZrRadio(QWidget* parent)
    : QWidget(parent)
    , itemHeight(QFontMetrics(ZrTheme::font).height() * 3 / 2)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::TabFocus);
    ZrCtrlAccess::Install();
}

int ZrRadio::GetSel(const QPoint& p)
{
    if (!rect().contains(p) || itemHeight <= 0)
        return -1;
    // The division truncates toward zero: the quarter above the first choice belongs to it.
    const int i = (p.y() - itemHeight / 4) / itemHeight;
    return i < items.size() ? i : -1;
}

void ZrRadio::SetSel(int i)
{
    const bool isOther = sel != i;
    sel = i;
    update();
    if (isOther)
        ZrCtrlAccess::TellSelected(this);
}

void ZrRadio::Select(int i)
{
    if (i == sel)
        return;
    sel = i;
    update();
    ZrCtrlAccess::TellSelected(this);
    Q_EMIT SelChanged(sel);
}

void ZrRadio::mousePressEvent(QMouseEvent* event)
{
    Select(GetSel(event->pos()));
}

void ZrRadio::mouseMoveEvent(QMouseEvent* event)
{
    const int over = GetSel(event->pos());
    if (over == hot)
        return;
    hot = over;
    update();
}

void ZrRadio::leaveEvent(QEvent* /*event*/)
{
    if (hot == -1)
        return;
    hot = -1;
    update();
}

void ZrRadio::focusInEvent(QFocusEvent* event)
{
    m_showsFocus = ZrCtrlLook::ShowsFocus(event->reason(), m_showsFocus);
    QWidget::focusInEvent(event);
}

void ZrRadio::keyPressEvent(QKeyEvent* event)
{
    if (!m_showsFocus && hasFocus())
        update();
    m_showsFocus = true;
    const int last = items.size() - 1;
    // The owner may have set anything.
    const int from = std::clamp(sel, -1, last + 1);
    int target = from;
    switch (event->key()) {
    case Qt::Key_Up:
        target = std::max(from - 1, 0);
        break;
    case Qt::Key_Down:
        target = std::min(from + 1, last);
        break;
    case Qt::Key_Home:
        target = 0;
        break;
    case Qt::Key_End:
        target = last;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    if (last >= 0)
        Select(target);
}

int ZrRadio::FocusItem() const
{
    return std::clamp(sel, 0, std::max(items.size() - 1, 0));
}

void ZrRadio::UseTouchHeight()
{
    itemHeight = std::max(itemHeight, ZrCtrlLook::smallestTarget);
    updateGeometry();
    update();
}

QRect ZrRadio::ItemRect(int i) const
{
    return {0, itemHeight / 4 + i * itemHeight, width(), itemHeight};
}

QSize ZrRadio::sizeHint() const
{
    const QFontMetrics metrics(ZrTheme::font);
    int widest = 0;
    for (const QString& item : items)
        widest = std::max(widest, metrics.horizontalAdvance(item));
    const int around = metrics.height() + ZrTheme::DpI(2 * edge + between);
    const QSize size(around + widest + 1, itemHeight * items.size() + itemHeight / 2);
    return size.expandedTo(minimumSizeHint());
}

QSize ZrRadio::minimumSizeHint() const
{
    const QSize all(itemHeight * 3, itemHeight * items.size() + itemHeight / 2);
    return all.expandedTo({ZrCtrlLook::smallestTarget, ZrCtrlLook::smallestTarget});
}

void ZrRadio::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setFont(ZrTheme::font);
    for (int i = 0; i < items.size(); ++i)
        PaintItem(painter, i);
}

void ZrRadio::PaintItem(QPainter& painter, int i)
{
    ZrCtrlState state;
    state.enabled = isEnabled();
    state.hovered = i == hot;
    state.on = i == sel;
    state.focused = hasFocus() && m_showsFocus && i == FocusItem();
    ZrCtrlLook look = ZrCtrlLook::Of(state);
    const QRectF item = ItemRect(i);
    look.PaintFocus(painter, item, ZrTheme::rxy);
    look.focus = QColor();

    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const QFontMetrics metrics(ZrTheme::font);
    // An even number of device pixels, so that ring and dot have the same middle.
    const double pixel = ZrCtrlLook::WholeLine(painter, 0.0);
    const double side
        = 2 * ZrCtrlLook::WholeLine(painter, std::min(metrics.height() * 0.55, item.height() / 2));
    const double start = ZrCtrlLook::Dp(edge);
    QRectF ring(isMirrored ? width() - side - start : start, item.center().y() - side / 2, side, side);
    ring.moveTop(std::round(ring.top() / pixel) * pixel);
    ring.moveLeft(std::round(ring.left() / pixel) * pixel);
    look.PaintFrame(painter, ring, side / 2);
    if (i == sel) {
        const double inset = std::max(look.outlineWidth + 2 * pixel, std::round(side * 0.27 / pixel) * pixel);
        painter.setPen(Qt::NoPen);
        painter.setBrush(look.mark);
        painter.drawEllipse(ring.adjusted(inset, inset, -inset, -inset));
    }

    const double before = start + side + ZrCtrlLook::Dp(between);
    const double room = width() - before - start;
    if (room < 1.0)
        return;
    const QRectF textRect(isMirrored ? width() - before - room : before, item.top(), room, item.height());
    painter.setPen(look.text);
    ZrCtrlLook::PaintText(painter, textRect, items[i], isMirrored ? Qt::AlignRight : Qt::AlignLeft);
}
