#include "ZrUtil/ZrDragWidget.h"

#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

ZrDragWidget::ZrDragWidget(QWidget* parent)
    : QWidget(parent)
{
    setMouseTracking(true);
}

void ZrDragWidget::mousePressEvent(QMouseEvent* event)
{
    if (!grip.contains(event->pos())) {
        QWidget::mousePressEvent(event);
        return;
    }
    pressPos = event->globalPos();
    startGeom = geometry();
    dragging = true;
    raise();
}

void ZrDragWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (!dragging) {
        QWidget::mouseMoveEvent(event);
        return;
    }
    QRect moved = startGeom.translated(event->globalPos() - pressPos);
    const QWidget* parent = isWindow() ? nullptr : parentWidget();
    if (parent) {
        // The right and bottom coordinates are the inclusive ones: they may reach the parent's size.
        if (moved.right() > parent->width())
            moved.translate(parent->width() - moved.right(), 0);
        if (moved.bottom() > parent->height())
            moved.translate(0, parent->height() - moved.bottom());
        if (moved.left() < 0)
            moved.translate(-moved.left(), 0);
        if (moved.top() < 0)
            moved.translate(0, -moved.top());
    }
    setGeometry(moved);
}

void ZrDragWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (!dragging)
        QWidget::mouseReleaseEvent(event);
    dragging = false;
}

void ZrDragWidget::hideEvent(QHideEvent* event)
{
    dragging = false;
    QWidget::hideEvent(event);
}

bool ZrDragWidget::event(QEvent* event)
{
    if (event->type() == QEvent::WindowBlocked)
        dragging = false;
    return QWidget::event(event);
}

void ZrDragWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    ZrCtrlLook panel;
    panel.fill = ZrTheme::formBack;
    panel.outline = ZrTheme::formBdr;
    panel.outlineWidth = ZrCtrlLook::Dp(2.0F);
    panel.PaintFrame(painter, rect(), ZrTheme::rxy);
    if (grip.isEmpty())
        return;
    // Two rows of dots, along the longer side of the grip.
    const double dot = ZrCtrlLook::WholeLine(painter, std::max(2.0, ZrCtrlLook::Dp(4.0F)));
    const bool isWide = grip.width() >= grip.height();
    const QPointF middle = QRectF(grip).center();
    painter.setPen(Qt::NoPen);
    painter.setBrush(ZrTheme::ctrlOutlineCol);
    for (int along = -2; along <= 2; ++along) {
        for (const int across : {-1, 1}) {
            const QPointF way(along * dot * 2, across * dot);
            QRectF place(0, 0, dot, dot);
            place.moveCenter(middle + (isWide ? way : QPointF(way.y(), way.x())));
            painter.drawEllipse(ZrCtrlLook::Snapped(painter, place));
        }
    }
}
