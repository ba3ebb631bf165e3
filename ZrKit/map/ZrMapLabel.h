#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QColor>
#include <QPointF>
#include <QString>

#include <limits>

/// A text on a map: what `ZrLabelLayer` draws. A plain value.
struct ZR_KIT_EXPORT ZrMapLabel
{
    /// Which part of the text is at its position.
    enum eAlignX : int
    {
        alignLeft = 0,
        alignCentre = 1,
        alignRight = 2
    };

    enum eAlignY : int
    {
        alignTop = 0,
        alignMiddle = 1,
        alignBottom = 2
    };

    static constexpr int AlwaysShown = std::numeric_limits<int>::max(); ///< a `priority`: never left out

    QString text;
    QPointF position; ///< world, metres; on the screen: pixels from the upper left corner of the view
    bool isOnScreen = false;
    QPointF offset; ///< from the position, design pixels to the right and down; not turned
    eAlignX alignX = alignLeft;
    eAlignY alignY = alignBottom;
    double angle = 0.0; ///< degrees counter-clockwise, of the text about its position and offset
    bool isTurning = false; ///< with the map, the offset too; not for a position on the screen
    float size = 0.0F; ///< of the font, design pixels; 0: that of `ZrTheme::font`
    QColor colour; ///< invalid: `ZrTheme::ctrlCol`
    QColor halo; ///< invalid: `ZrTheme::formBack`; transparent: none
    float haloWidth = 1.5F; ///< design pixels
    int priority = 0; ///< where labels overlap, the higher one is drawn, of equals the first

    bool operator==(const ZrMapLabel& b) const
    {
        return text == b.text && position == b.position && isOnScreen == b.isOnScreen && offset == b.offset
            && alignX == b.alignX && alignY == b.alignY && angle == b.angle && isTurning == b.isTurning
            && size == b.size && colour == b.colour && halo == b.halo && haloWidth == b.haloWidth
            && priority == b.priority;
    }

    bool operator!=(const ZrMapLabel& b) const { return !(*this == b); }
};
