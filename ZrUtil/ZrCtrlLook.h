#pragma once

#include "ZrUtil/ZrExport.h"

#include <QColor>
#include <QRectF>
#include <QString>

class QImage;
class QPainter;

/// What a control has to show besides its value.
struct ZrCtrlState
{
    bool enabled = true;
    bool hovered = false; ///< the pointer is over it
    bool pressed = false; ///< a finger or a button is down on it
    bool on = false; ///< toggled, checked or selected
    bool focused = false; ///< keys go to it
};

/// How the touch widgets paint a control in a given state, from the colours of `ZrTheme`; for controls of
/// applications that are to look alike.
///
/// No two states differ by colour alone: a hovered outline is wider, a pressed one wider still while the
/// content moves down, one that is on carries a bar, a disabled outline is dashed, and focus adds a second,
/// inner line. With the standard style of the theme text has a contrast of at least 4.5 to 1 against `fill`;
/// mark and focus line have one of 3 to 1 against it, and the outline one of 3 to 1 against `fill` and
/// against black forms.
///
/// Lines cover whole device pixels at every scale and device pixel ratio, so they stay crisp. Sizes are real
/// pixels. GUI thread only.
struct ZR_UTIL_EXPORT ZrCtrlLook
{
    /// The smallest side of something that a finger is to hit, real pixels.
    static constexpr int smallestTarget = 44;

    QColor fill; ///< opaque
    QColor outline;
    QColor text;
    QColor mark; ///< of check marks, selected dots, the bar of a control that is on
    double outlineWidth = 2.0;
    bool dashed = false; ///< the outline is
    int shift = 0; ///< how far the content moves down
    QColor focus; ///< of the inner line; invalid without focus
    bool bar = false; ///< the control is on: `PaintBar` belongs to it, where no other mark tells

    /// The look of \p state in the current theme.
    static ZrCtrlLook Of(const ZrCtrlState& state);

    /// Paints fill, outline and focus line of a control that covers \p rect, all inside it, with corners of
    /// \p radius.
    void PaintFrame(QPainter& painter, const QRectF& rect, double radius) const;

    /// Paints the focus line alone, along the inside of \p rect; nothing without focus.
    void PaintFocus(QPainter& painter, const QRectF& rect, double radius) const;

    /// Paints the bar of a control that is on along the lower edge of \p rect.
    void PaintBar(QPainter& painter, const QRectF& rect) const;

    /// Paints \p icon, an alpha mask, in \p colour as large as fits into \p rect, in its middle.
    /// Scaled icons are kept, so painting one again costs little.
    static void PaintIcon(QPainter& painter, const QRectF& rect, const QImage& icon, const QColor& colour);

    /// Writes \p text into \p rect in one line with the painter's font and pen: at its left or right edge or
    /// in its middle, as \p side says, whatever the layout direction. A text that is too long ends in an
    /// ellipsis.
    static void PaintText(QPainter& painter, const QRectF& rect, const QString& text, Qt::Alignment side);

    /// Whether a control that got the focus for \p reason is to look focused: a window that opens gives its
    /// first control the focus, which nobody at a touch screen wants to see. \p before: whether it looked so
    /// when it last had the focus.
    static bool ShowsFocus(Qt::FocusReason reason, bool before);

    /// \p share of \p over mixed into \p under; both taken as opaque.
    static QColor Mixed(const QColor& under, const QColor& over, double share);

    /// Design to real pixels without rounding; 0 while the scale of the theme is not finite.
    static double Dp(float designPixels);

    /// \p rect with its edges moved to the nearest edges of device pixels.
    static QRectF Snapped(const QPainter& painter, const QRectF& rect);

    /// The width of a line nearest to \p width that is a whole number of device pixels, at least one.
    static double WholeLine(const QPainter& painter, double width);
};
