#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrLocalFrame.h"

/// A straight or an arc of a `ZrRoutePath`, in the plane of the path's frame.
struct ZR_KIT_EXPORT ZrPathPiece
{
    int leg = 0; ///< index of the leg that it belongs to
    bool isArc = false;
    ZrLocalPoint from;
    ZrLocalPoint to;
    ZrLocalPoint centre; ///< of an arc
    double radius = 0.0; ///< of an arc, metres of the plane
    double start
        = 0.0; ///< of an arc: direction from the centre to `from`, radians counter-clockwise from east
    double sweep = 0.0; ///< of an arc: angle from `from` to `to`, radians, positive counter-clockwise
    double length = 0.0; ///< metres on the earth
    double q = 0.0; ///< length of the path before it, metres on the earth

    /// The point at a fraction of the length, 0 at `from` and 1 at `to`.
    ZrLocalPoint At(double fraction) const;

    /// The part between two fractions.
    ZrPathPiece Part(double first, double last) const;
};
