#pragma once

#include <QColor>
#include <QPointF>

/// A marker of a `ZrMarkerLayer`. A plain value.
struct ZrMapMarker
{
    QPointF position; ///< world; a marker whose numbers are not all finite is not drawn
    QPointF offset; ///< design pixels from there to its middle, to the right and up; turns with the map where
                    ///< `isTurning`, never by `angle`
    double angle = 0.0; ///< degrees counter-clockwise: a heading is drawn at its negative
    double size = 12.0; ///< half its side, design pixels; above 0
    QColor colour = QColor(255, 255, 255); ///< of its shape
    int image = 0; ///< index of `ZrGlSurface::m_markers`; nothing is drawn of others
    bool isTurning = false; ///< turns with the map; otherwise it stays upright on the screen
};
