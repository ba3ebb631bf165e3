#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QColor>
#include <QFont>
#include <QPolygonF>
#include <QString>

#include <vector>

class QPainter;
class ZrWaterfallLayout;

/// What is painted over a waterfall: the line where the sea floor begins, and the ranges across.
///
/// \code
/// painter.scale(1.0 / ratio, 1.0 / ratio); // the layout counts device pixels
/// ZrWaterfallOverlay::PaintBottom(painter, layer.Layout(), 1.5 * ratio);
/// ZrWaterfallOverlay::PaintScale(painter, layer.Layout(), font);
/// \endcode
///
/// All lengths are pixels of the layout, its upper left corner the painter's origin. The colours are those of
/// marks over echoes and not the theme's: the picture is dark by day too. The layer must have been painted.
struct ZR_KIT_EXPORT ZrWaterfallOverlay
{
    /// The bottom line of both sides as polylines, from the newest line on: where the altitude of each line
    /// is, broken where none is known. Nothing in a slant-corrected picture, whose bottom line is the middle.
    static std::vector<QPolygonF> Bottom(const ZrWaterfallLayout& layout);

    static void PaintBottom(QPainter& painter, const ZrWaterfallLayout& layout, double penWidth);

    /// Ranges to both sides along the lower edge, in the short length unit of `ZrUnits`, on a band of
    /// `ScaleHeight`. Nothing while there is no line.
    /// \param font of the numbers, its size in pixels of the layout
    static void PaintScale(QPainter& painter, const ZrWaterfallLayout& layout, const QFont& font,
        const QColor& colour = QColor(235, 240, 245));

    /// A range of `PaintScale`.
    struct Mark
    {
        double x = 0.0; ///< pixels of the layout
        QString text; ///< empty where there is no room for it
    };

    /// What `PaintScale` marks: the unit in the middle, and to each side that is shown one range at least,
    /// however narrow the steps must be for it, unless there is no room for a number at all.
    static std::vector<Mark> Scale(const ZrWaterfallLayout& layout, const QFont& font);

    static int ScaleHeight(const QFont& font);
};
