#include "ZrUtil/ZrCtrlLook.h"

#include "ZrUtil/ZrTheme.h"

#include <QCache>
#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace {

QRectF Inset(const QRectF& rect, double by)
{
    return rect.adjusted(by, by, -by, -by);
}

/// Device pixels for each pixel of the painter.
double DeviceScale(const QPainter& painter)
{
    const QTransform device = painter.deviceTransform();
    const double scale = std::hypot(device.m11(), device.m12());
    return scale > 0.0 && std::isfinite(scale) ? scale : 1.0;
}

/// What a scaled icon was made from.
struct IconKey
{
    qint64 image;
    QSize size; ///< device pixels
    QRgb colour;
    double scale;

    bool operator==(const IconKey& other) const
    {
        return image == other.image && size == other.size && colour == other.colour && scale == other.scale;
    }
};

uint qHash(const IconKey& key, uint seed = 0)
{
    return ::qHash(key.image, seed) ^ ::qHash(key.size.width() * 8191 + key.size.height(), seed)
        ^ ::qHash(key.colour, seed) ^ ::qHash(key.scale, seed);
}

constexpr int keptIcons = 8 * 1024 * 1024; ///< bytes of the scaled icons that are kept

/// \p icon in \p colour, \p size device pixels large. Kept: most icons are painted again as they were.
QImage ScaledIcon(const QImage& icon, const QColor& colour, const QSize& size, double scale)
{
    static QCache<IconKey, QImage> kept(keptIcons);
    const IconKey key{icon.cacheKey(), size, colour.rgba(), scale};
    if (const QImage* before = kept.object(key))
        return *before;
    // Smooth scaling averages over all pixels; the painter itself drops lines of an icon much larger than
    // its place.
    QImage shown
        = ZrTheme::ColourImg(icon, colour).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    shown.setDevicePixelRatio(scale);
    const qint64 cost = shown.sizeInBytes();
    if (cost <= keptIcons)
        kept.insert(key, new QImage(shown), static_cast<int>(cost));
    return shown;
}

} // namespace

QColor ZrCtrlLook::Mixed(const QColor& under, const QColor& over, double share)
{
    const auto mix = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return {mix(under.red(), over.red()), mix(under.green(), over.green()), mix(under.blue(), over.blue())};
}

bool ZrCtrlLook::ShowsFocus(Qt::FocusReason reason, bool before)
{
    const bool isByWindow = reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
    return isByWindow ? before : true;
}

double ZrCtrlLook::Dp(float designPixels)
{
    const double real = static_cast<double>(ZrTheme::DpF(designPixels));
    return std::isfinite(real) ? real : 0.0;
}

QRectF ZrCtrlLook::Snapped(const QPainter& painter, const QRectF& rect)
{
    const QTransform device = painter.deviceTransform();
    if (device.type() > QTransform::TxScale)
        return rect;
    const QRectF there = device.mapRect(rect);
    const QPointF topLeft(std::round(there.left()), std::round(there.top()));
    const QPointF bottomRight(std::round(there.right()), std::round(there.bottom()));
    return device.inverted().mapRect(QRectF(topLeft, bottomRight));
}

double ZrCtrlLook::WholeLine(const QPainter& painter, double width)
{
    const double scale = DeviceScale(painter);
    return std::max(1.0, std::round(width * scale)) / scale;
}

ZrCtrlLook ZrCtrlLook::Of(const ZrCtrlState& state)
{
    // Whole numbers: the widths of two states differ on every screen.
    const int line = std::max(1, ZrTheme::DpI(2));
    const int more = std::max(1, ZrTheme::DpI(1));
    ZrCtrlLook look;
    look.fill = Mixed(ZrTheme::formBack, ZrTheme::toolBack, 0.5);
    look.outline = ZrTheme::ctrlOutlineCol;
    look.outlineWidth = line;
    look.bar = state.on;
    if (!state.enabled) {
        look.text = Mixed(look.fill, ZrTheme::bodyCol, 0.72);
        look.mark = look.text;
        look.dashed = true;
        look.outlineWidth = std::max(1.0, line / 2.0);
        return look;
    }
    look.text = ZrTheme::ctrlCol;
    look.mark = ZrTheme::ctrlCheckCol;
    look.mark.setAlpha(255);
    if (state.on || state.pressed) {
        look.fill = ZrTheme::ctrlActiveCol;
        look.fill.setAlpha(255);
    }
    if (state.on)
        look.outline = look.mark;
    else if (state.hovered)
        look.outline = ZrTheme::ctrlHighlightCol;
    if (state.hovered)
        look.outlineWidth = line + more;
    if (state.pressed) {
        // Seen around the finger that covers the control.
        look.fill = Mixed(look.fill, ZrTheme::lighten, ZrTheme::lighten.alphaF());
        look.outline = ZrTheme::ctrlCol;
        look.outlineWidth = line + 2 * more;
        look.shift = std::max(1, ZrTheme::DpI(2));
    }
    if (state.focused)
        look.focus = ZrTheme::ctrlCol;
    return look;
}

void ZrCtrlLook::PaintFrame(QPainter& painter, const QRectF& rect, double radius) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF outer = Snapped(painter, rect);
    const double line = WholeLine(painter, outlineWidth);
    QPen pen(outline, line);
    if (dashed) {
        pen.setDashPattern({3.0, 3.0});
        pen.setCapStyle(Qt::FlatCap);
    }
    painter.setPen(pen);
    painter.setBrush(fill);
    const double corner = std::max(0.0, radius - line / 2);
    painter.drawRoundedRect(Inset(outer, line / 2), corner, corner);
    // Two lines and what lies between stay apart at small scales too.
    const double gap = line + WholeLine(painter, std::max(2.0, Dp(1.5F)));
    PaintFocus(painter, Inset(outer, gap), std::max(0.0, radius - gap));
}

void ZrCtrlLook::PaintFocus(QPainter& painter, const QRectF& rect, double radius) const
{
    if (!focus.isValid())
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = WholeLine(painter, std::max(2.0, Dp(1.5F)));
    painter.setPen(QPen(focus, line));
    painter.setBrush(Qt::NoBrush);
    const double corner = std::max(0.0, radius - line / 2);
    painter.drawRoundedRect(Inset(Snapped(painter, rect), line / 2), corner, corner);
}

void ZrCtrlLook::PaintBar(QPainter& painter, const QRectF& rect) const
{
    const double height = WholeLine(painter, std::max(2.0, Dp(4.0F)));
    const double width = std::min(rect.width() / 2, std::max(rect.width() / 4, Dp(48.0F)));
    const double below = WholeLine(painter, std::max(outlineWidth + Dp(2.0F), Dp(6.0F)));
    const QRectF at(rect.center().x() - width / 2, rect.bottom() - below - height, width, height);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(mark);
    painter.drawRoundedRect(Snapped(painter, at), height / 2, height / 2);
}

void ZrCtrlLook::PaintIcon(QPainter& painter, const QRectF& rect, const QImage& icon, const QColor& colour)
{
    const double scale = DeviceScale(painter);
    const QSize size = icon.size().scaled((rect.size() * scale).toSize(), Qt::KeepAspectRatio);
    if (icon.isNull() || size.isEmpty())
        return;
    QRectF at(QPointF(), QSizeF(size) / scale);
    at.moveCenter(rect.center());
    painter.drawImage(Snapped(painter, at), ScaledIcon(icon, colour, size, scale));
}

void ZrCtrlLook::PaintText(QPainter& painter, const QRectF& rect, const QString& text, Qt::Alignment side)
{
    QTextOption option(side | Qt::AlignVCenter);
    option.setWrapMode(QTextOption::NoWrap);
    // The text decides, not the language of the application: digits and names stay in order.
    option.setTextDirection(Qt::LayoutDirectionAuto);
    const QFontMetricsF metrics(painter.font());
    painter.drawText(rect, metrics.elidedText(text, Qt::ElideRight, rect.width()), option);
}
