#include "ZrUtil/ZrProgress.h"

#include "ZrUtil/ZrCtrlAccess.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QPainter>

#include <algorithm>

ZrProgress::ZrProgress(QWidget* parent)
    : QWidget(parent)
    , text(tr("Progress..."))
{
    setMouseTracking(true);
    ZrCtrlAccess::Install();
}

void ZrProgress::Start()
{
    percent = 0;
    update();
    show();
    raise();
    ZrCtrlAccess::TellValue(this, percent);
}

void ZrProgress::Stop()
{
    hide();
}

void ZrProgress::UpdateProgress(int p)
{
    if (p == percent)
        return;
    percent = p;
    repaint();
    ZrCtrlAccess::TellValue(this, percent);
}

int ZrProgress::GetProgress()
{
    return percent;
}

void ZrProgress::OnPercentDone(int p)
{
    UpdateProgress(p);
}

QSize ZrProgress::sizeHint() const
{
    return {ZrTheme::DpI(420), ZrTheme::DpI(120)};
}

void ZrProgress::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    ZrCtrlLook panel;
    panel.fill = ZrTheme::formBack;
    panel.outline = ZrTheme::formBdr;
    panel.outlineWidth = ZrCtrlLook::Dp(2.0F);
    panel.PaintFrame(painter, rect(), ZrTheme::rxy);

    const double margin = ZrCtrlLook::Dp(20.0F);
    const QRectF inside = QRectF(rect()).adjusted(margin, margin, -margin, -margin);
    const double barHeight = ZrCtrlLook::Dp(20.0F);
    PaintText(painter, inside.adjusted(0, 0, 0, -barHeight - margin / 2));
    PaintBar(painter, QRectF(inside.left(), inside.bottom() - barHeight, inside.width(), barHeight));
}

void ZrProgress::PaintText(QPainter& painter, const QRectF& rect)
{
    const QFontMetricsF metrics(ZrTheme::bodyFont);
    const double numberWidth = metrics.horizontalAdvance(QStringLiteral("100 %  "));
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    QRectF textRect = rect;
    if (isMirrored)
        textRect.setLeft(rect.left() + numberWidth);
    else
        textRect.setRight(rect.right() - numberWidth);
    painter.setFont(ZrTheme::bodyFont);
    painter.setPen(ZrTheme::bodyText);
    ZrCtrlLook::PaintText(painter, textRect, text, isMirrored ? Qt::AlignRight : Qt::AlignLeft);
    painter.setPen(ZrTheme::titleText);
    const QString number = QStringLiteral("%1 %").arg(percent);
    ZrCtrlLook::PaintText(painter, rect, number, isMirrored ? Qt::AlignLeft : Qt::AlignRight);
}

void ZrProgress::PaintBar(QPainter& painter, const QRectF& rect)
{
    ZrCtrlLook groove = ZrCtrlLook::Of(ZrCtrlState());
    groove.PaintFrame(painter, rect, rect.height() / 2);
    const double share = std::clamp(percent, 0, 100) / 100.0;
    const double inset = 2 * ZrCtrlLook::WholeLine(painter, groove.outlineWidth);
    QRectF done = ZrCtrlLook::Snapped(painter, rect).adjusted(inset, inset, -inset, -inset);
    if (share <= 0.0 || done.isEmpty())
        return;
    // Round ends need their height; less would not look like a part of the bar.
    const double width = std::max(done.height(), done.width() * share);
    if (layoutDirection() == Qt::RightToLeft)
        done.setLeft(done.right() - width);
    else
        done.setWidth(width);
    painter.setPen(Qt::NoPen);
    painter.setBrush(groove.mark);
    painter.drawRoundedRect(done, done.height() / 2, done.height() / 2);
}
