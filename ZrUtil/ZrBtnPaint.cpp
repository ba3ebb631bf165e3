#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace {

constexpr float iconSide = 36.0F; ///< design pixels
constexpr float margin = 10.0F; ///< around the content, design pixels
constexpr float beside = 4.0F; ///< left free beside the text of a tool, design pixels
constexpr float between = 10.0F; ///< icon and text, design pixels
constexpr float above = 4.0F; ///< how far a tool's content stands above the middle, design pixels
constexpr int leastBadgeText = 14; ///< pixels: what can be read

QFont BadgeFont()
{
    QFont font(ZrTheme::fontSmall);
    font.setPixelSize(std::max(font.pixelSize(), leastBadgeText));
    return font;
}

} // namespace

QSize ZrBtn::sizeHint() const
{
    const QFontMetrics metrics(font);
    const bool hasIcon = !img.isNull();
    const int textWidth = text.isEmpty() ? 0 : metrics.horizontalAdvance(text);
    const int around = 2 * ZrTheme::DpI(margin) + ZrTheme::DpI(12);
    QSize size(ZrTheme::DpI(64), ZrTheme::DpI(64));
    if (type == typeTool) {
        size = {std::max(ZrTheme::DpI(80), textWidth + around), ZrTheme::DpI(80)};
    } else if (type != typeRound) {
        const int iconWidth = hasIcon ? ZrTheme::DpI(iconSide) + ZrTheme::DpI(between) : 0;
        size.setWidth(std::max(ZrTheme::DpI(80), iconWidth + textWidth + around));
    }
    return size.expandedTo(minimumSizeHint());
}

QSize ZrBtn::minimumSizeHint() const
{
    return {ZrCtrlLook::smallestTarget, ZrCtrlLook::smallestTarget};
}

QRectF ZrBtn::ContentRect() const
{
    const double edge = ZrCtrlLook::Dp(margin);
    return QRectF(rect()).adjusted(edge, edge, -edge, -edge);
}

/// Icon and text beside or above each other, together in the middle.
void ZrBtn::PlaceContent()
{
    const QRectF inside = ContentRect();
    imgRect = QRectF();
    textRect = inside;
    if (img.isNull())
        return;
    const double side = std::min({inside.width(), inside.height(), ZrCtrlLook::Dp(iconSide)});
    if (text.isEmpty() || type == typeRound) {
        const double large = std::min({inside.width(), inside.height(), ZrCtrlLook::Dp(iconSide * 1.25F)});
        imgRect = QRectF(0, 0, large, large);
        imgRect.moveCenter(inside.center());
        textRect = QRectF();
        return;
    }
    const QFontMetricsF metrics(font);
    const double gap = ZrCtrlLook::Dp(between);
    if (type == typeTool) {
        // Letters that reach below the line stay off the bar of a tool that is on.
        const double up = ZrCtrlLook::Dp(above);
        const double textHeight = metrics.lineSpacing() * std::max(lines, 1);
        const double high = std::max(0.0, std::min(side, inside.height() - textHeight));
        const double top = std::max(0.0, inside.center().y() - up - (high + textHeight) / 2);
        imgRect = QRectF(inside.center().x() - high / 2, top, high, high);
        const double free = ZrCtrlLook::Dp(beside);
        textRect = QRectF(free, imgRect.bottom(), width() - 2 * free, textHeight);
        return;
    }
    const double room = inside.width() - side - gap;
    const double textWidth = std::min(room, metrics.horizontalAdvance(text) + 1);
    const double start = inside.left() + (room - textWidth) / 2;
    imgRect = QRectF(start, inside.center().y() - side / 2, side, side);
    textRect = QRectF(imgRect.right() + gap, inside.top(), textWidth, inside.height());
    if (layoutDirection() == Qt::RightToLeft) {
        const double axis = 2 * inside.center().x();
        imgRect.moveLeft(axis - imgRect.right());
        textRect.moveLeft(axis - textRect.right());
    }
}

/// The text broken into at most `lines` lines; the last one may be too long.
QStringList ZrBtn::ShownLines() const
{
    QStringList shown;
    QTextLayout layout(text, font);
    layout.beginLayout();
    while (shown.size() + 1 < lines) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(textRect.width());
        shown += text.mid(line.textStart(), line.textLength()).trimmed();
    }
    const QTextLine rest = layout.createLine();
    if (rest.isValid())
        shown += text.mid(rest.textStart());
    layout.endLayout();
    return shown;
}

void ZrBtn::paintEvent(QPaintEvent* /*event*/)
{
    ZrCtrlState state;
    state.enabled = isEnabled();
    state.hovered = hover == 1;
    state.pressed = hover == 2;
    state.on = on;
    state.focused = hasFocus() && m_showsFocus;
    ZrCtrlLook look = ZrCtrlLook::Of(state);
    if (type == typeAccent && state.enabled && !state.pressed)
        look.fill = ZrTheme::ctrlActiveCol;
    QPainter painter(this);
    QRectF frame = rect();
    double radius = ZrTheme::rxy;
    if (type == typeRound) {
        const double side = std::min(width(), height());
        frame = QRectF(0, 0, side, side);
        frame.moveCenter(QRectF(rect()).center());
        radius = side / 2;
    }
    const bool hasFrame = type != typeTool || state.hovered || state.pressed || state.on || state.focused;
    if (hasFrame)
        look.PaintFrame(painter, frame, radius);
    // On a disc the bar stays off the rim.
    const double rim = type == typeRound ? frame.width() * 0.06 : 0.0;
    if (look.bar)
        look.PaintBar(painter, frame.adjusted(rim * 3, 0, -rim * 3, -rim));
    PaintContent(painter, look);
    if (badge != 0)
        PaintBadge(painter);
}

void ZrBtn::PaintContent(QPainter& painter, const ZrCtrlLook& look)
{
    painter.translate(0, look.shift);
    const QImage& icon = on && !imgOn.isNull() ? imgOn : img;
    if (!imgRect.isEmpty())
        ZrCtrlLook::PaintIcon(painter, imgRect, icon, look.text);
    if (!text.isEmpty() && !textRect.isEmpty()) {
        painter.setFont(font);
        painter.setPen(look.text);
        const QStringList shown = ShownLines();
        const double high = QFontMetricsF(font).lineSpacing();
        double top = textRect.center().y() - high * shown.size() / 2;
        for (const QString& line : shown) {
            const QRectF place(textRect.left(), top, textRect.width(), high);
            ZrCtrlLook::PaintText(painter, place, line, Qt::AlignHCenter);
            top += high;
        }
    }
    painter.translate(0, -look.shift);
}

void ZrBtn::PaintBadge(QPainter& painter)
{
    const QString number = badge > 99 ? QStringLiteral("99+") : QString::number(badge);
    const QFont small = BadgeFont();
    const QFontMetricsF metrics(small);
    const double high = metrics.height() + ZrCtrlLook::Dp(4.0F);
    const double wide = std::max(high, metrics.horizontalAdvance(number) + ZrCtrlLook::Dp(12.0F));
    const double edge = ZrCtrlLook::Dp(6.0F);
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const QRectF place(isMirrored ? edge : width() - wide - edge, edge, wide, high);
    const QRectF disc = ZrCtrlLook::Snapped(painter, place);
    QColor behind = ZrTheme::formBack;
    behind.setAlpha(255);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(behind, ZrCtrlLook::WholeLine(painter, ZrCtrlLook::Dp(2.0F))));
    painter.setBrush(isEnabled() ? ZrTheme::ctrlCol : ZrTheme::bodyCol);
    painter.drawRoundedRect(disc, disc.height() / 2, disc.height() / 2);
    painter.setFont(small);
    painter.setPen(behind);
    ZrCtrlLook::PaintText(painter, disc, number, Qt::AlignHCenter);
}
