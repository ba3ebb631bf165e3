#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QImage>
#include <QPainterPath>
#include <QRect>

#include <vector>

/// Distances to the edge of a filled outline, one byte each, from which a shader draws it sharp at any size
/// and angle, and with a halo of any width up to the spread.
///
/// A pixel of distance d, positive inside, is 127.5 + 127.5 · d / spread, clamped. Distances are those of an
/// outline drawn `Oversampling` times as large, exact to about a tenth of a pixel. The transform is that of
/// Felzenszwalb and Huttenlocher, "Distance transforms of sampled functions" (2012). Any thread.
class ZR_KIT_EXPORT ZrDistanceField
{
public:
    static constexpr int Oversampling = 4;
    static constexpr int LargestSide = 1024; ///< pixels of a field

    /// The field of the pixels in \p box, in the coordinates of \p path; `Format_Alpha8`. Null when the box
    /// is empty or too large, or the spread is not above 0.
    static QImage Make(const QPainterPath& path, const QRect& box, double spread);

    /// For each pixel of \p mask, `Format_Alpha8`, row by row: the square of its distance in pixels to the
    /// next one that is at least half covered, 0 for such a one; above 10^11 when there is none.
    static std::vector<float> SquaresToInk(const QImage& mask);
};
