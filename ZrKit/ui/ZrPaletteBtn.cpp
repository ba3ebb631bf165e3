#include "ZrKit/ui/ZrPaletteBtn.h"

#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QPainter>

#include <algorithm>

ZrPaletteBtn::ZrPaletteBtn(QWidget* parent, const QString& palette)
    : ZrBtn(parent, typeStd)
    , m_palette(palette)
{
    text = ZrSonarPalette::Title(palette);
    if (!text.isEmpty())
        text[0] = text[0].toUpper(); // palettes of others come as they are named
    checkable = false;
    setAccessibleName(text);
}

QSize ZrPaletteBtn::sizeHint() const
{
    return {std::max(ZrTheme::DpI(96), ZrCtrlLook::smallestTarget),
        std::max(ZrTheme::DpI(72), ZrCtrlLook::smallestTarget)};
}

/// The upper part inside the frame.
QRectF ZrPaletteBtn::Swatch() const
{
    const double margin = std::max(ZrTheme::DpI(8), 5);
    return {margin, margin, std::max(width() - 2 * margin, 1.0), std::max(height() * 0.45 - margin, 1.0)};
}

QRectF ZrPaletteBtn::ContentRect() const
{
    const QRectF swatch = Swatch();
    // Above the bar of the one that is chosen; the name may be a little wider than the colours.
    const double beside = swatch.x() / 2.0;
    return {beside, swatch.bottom(), width() - 2.0 * beside, height() - swatch.bottom() - swatch.y()};
}

void ZrPaletteBtn::LoadColours()
{
    ZrSonarPalette colours;
    colours.Load(m_palette);
    m_colours = QImage(256, 1, QImage::Format_RGB32);
    for (int i = 0; i < m_colours.width(); ++i)
        m_colours.setPixel(i, 0, colours.Colour(i));
}

void ZrPaletteBtn::paintEvent(QPaintEvent* event)
{
    if (m_colours.isNull())
        LoadColours();
    ZrBtn::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF swatch = ZrCtrlLook::Snapped(painter, Swatch());
    painter.drawImage(swatch, m_colours);
    // The brightest thing on the screen would take the eyes their night sight.
    if (ZrColourScheme::Current() == ZrColourScheme::night)
        painter.fillRect(swatch, QColor(30, 0, 0, 150));
    // A palette that ends in the colour of the button would have no end.
    painter.setPen(ZrTheme::ctrlOutlineCol);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(swatch.adjusted(0, 0, -1, -1));
}
