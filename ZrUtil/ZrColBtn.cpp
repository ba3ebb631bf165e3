#include "ZrUtil/ZrColBtn.h"

#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QColorDialog>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>

#include <algorithm>

namespace {

constexpr float swatchSide = 36.0F; ///< beside a text, design pixels
constexpr float between = 10.0F; ///< swatch and text, design pixels
constexpr double dimmed = 0.4; ///< share of the colour that is seen while the button is disabled

/// What shows through a colour that is not opaque.
void PaintChequer(QPainter& painter, const QRectF& area, const QPainterPath& shape)
{
    const double side = ZrCtrlLook::WholeLine(painter, std::max(2.0, ZrCtrlLook::Dp(6.0F)));
    painter.save();
    painter.setClipPath(shape);
    painter.fillRect(area, Qt::white);
    int row = 0;
    for (double y = area.top(); y < area.bottom(); y += side, ++row) {
        for (double x = area.left() + (row % 2) * side; x < area.right(); x += 2 * side)
            painter.fillRect(QRectF(x, y, side, side), QColor(80, 80, 80));
    }
    painter.restore();
}

} // namespace

ZrColBtn::ZrColBtn(QWidget* parent)
    : ZrBtn(parent, typeStd)
{
    connect(this, &ZrBtn::Pressed, this, &ZrColBtn::OnPressed);
}

void ZrColBtn::OnPressed()
{
    const QPointer<ZrColBtn> self(this);
    // On the heap: it goes with the button when a slot or another window deletes that meanwhile.
    const QPointer<QColorDialog> dialog = new QColorDialog(this);
    dialog->setWindowTitle(tr("Choose a colour"));
    dialog->setOption(QColorDialog::ShowAlphaChannel);
    dialog->setCurrentColor(colour ? *colour : QColor(Qt::white));
    const bool isAccepted = dialog->exec() == QDialog::Accepted;
    if (!self)
        return;
    const QColor chosen = isAccepted && dialog ? dialog->selectedColor() : QColor();
    delete dialog;
    // The release goes to the dialog and never arrives here.
    down = false;
    hover = 0;
    update();
    if (!chosen.isValid())
        return;
    if (colour)
        *colour = chosen;
    Q_EMIT ColourChanged(chosen);
}

QSize ZrColBtn::sizeHint() const
{
    const QSize size = ZrBtn::sizeHint();
    return text.isEmpty() ? size : size + QSize(ZrTheme::DpI(swatchSide + between), 0);
}

/// The whole button without a text, else a square before it.
QRectF ZrColBtn::SwatchRect() const
{
    const QRectF inside = ZrBtn::ContentRect();
    if (text.isEmpty() && img.isNull())
        return inside;
    const double side = std::min(ZrCtrlLook::Dp(swatchSide), inside.height());
    const double start = layoutDirection() == Qt::RightToLeft ? inside.right() - side : inside.left();
    return {start, inside.center().y() - side / 2, side, side};
}

QRectF ZrColBtn::ContentRect() const
{
    QRectF room = ZrBtn::ContentRect();
    const double taken = SwatchRect().width() + ZrCtrlLook::Dp(between);
    if (layoutDirection() == Qt::RightToLeft)
        room.setRight(room.right() - taken);
    else
        room.setLeft(room.left() + taken);
    return room;
}

void ZrColBtn::paintEvent(QPaintEvent* event)
{
    ZrBtn::paintEvent(event);
    if (!colour || !colour->isValid())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF swatch = ZrCtrlLook::Snapped(painter, SwatchRect());
    const double line = ZrCtrlLook::WholeLine(painter, ZrCtrlLook::Dp(1.0F));
    const double corner = ZrTheme::rxy / 2.0;
    QPainterPath shape;
    shape.addRoundedRect(swatch.adjusted(line / 2, line / 2, -line / 2, -line / 2), corner, corner);
    if (colour->alpha() < 255)
        PaintChequer(painter, swatch, shape);
    painter.fillPath(shape, *colour);
    if (!isEnabled()) {
        QColor veil = ZrCtrlLook::Of(ZrCtrlState()).fill;
        veil.setAlphaF(1.0 - dimmed);
        painter.fillPath(shape, veil);
    }
    // Seen on every colour: the outline is light, what lies around it dark.
    QPen pen(isEnabled() ? ZrTheme::ctrlCol : ZrTheme::ctrlOutlineCol, line);
    if (!isEnabled())
        pen.setDashPattern({3.0, 3.0});
    painter.setPen(pen);
    painter.drawPath(shape);
}
