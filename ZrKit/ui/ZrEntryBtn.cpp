#include "ZrKit/ui/ZrEntryBtn.h"

#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QPainter>

#include <algorithm>

ZrEntryBtn::ZrEntryBtn(QWidget* parent, const QString& title, const QString& hint)
    : ZrBtn(parent, typeStd)
    , m_title(title)
    , m_hint(hint)
{
    setAccessibleName(title);
    setAccessibleDescription(hint);
}

QSize ZrEntryBtn::sizeHint() const
{
    return {ZrTheme::DpI(280), std::max(ZrTheme::DpI(96), ZrCtrlLook::smallestTarget)};
}

void ZrEntryBtn::paintEvent(QPaintEvent* event)
{
    ZrBtn::paintEvent(event);
    QPainter painter(this);
    const double margin = ZrTheme::DpI(24);
    const double side = std::min(height() * 0.6, ZrCtrlLook::Dp(44.0F));
    const QRectF sign(margin, (height() - side) / 2.0, side, side);
    ZrCtrlLook::PaintIcon(painter, sign, icon, ZrTheme::ctrlCheckCol);
    const double left = sign.right() + margin;
    // No text is smaller than is read at arm's length.
    QFont title = ZrTheme::fontLarge;
    title.setPixelSize(std::max(title.pixelSize(), 16));
    QFont hint = ZrTheme::font;
    hint.setPixelSize(std::max(hint.pixelSize(), 14));
    const double titleHeight = QFontMetricsF(title).height();
    const double hintHeight = QFontMetricsF(hint).height();
    const bool hasHint = !m_hint.isEmpty() && titleHeight + hintHeight <= height();
    double y = (height() - titleHeight - (hasHint ? hintHeight : 0.0)) / 2.0;
    const double room = std::max(width() - left - margin / 2.0, 1.0);
    painter.setFont(title);
    painter.setPen(ZrTheme::ctrlCol);
    ZrCtrlLook::PaintText(painter, QRectF(left, y, room, titleHeight), m_title, Qt::AlignLeft);
    if (!hasHint)
        return;
    y += titleHeight;
    painter.setFont(hint);
    painter.setPen(ZrTheme::bodyCol);
    ZrCtrlLook::PaintText(painter, QRectF(left, y, room, hintHeight), m_hint, Qt::AlignLeft);
}
