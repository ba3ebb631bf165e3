#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/export/ZrTrackPoint.h"
#include "ZrUtil/ZrSpan.h"

#include <cstddef>
#include <limits>
#include <vector>

/// Leaves out the points of a track that a line drawn through the others shows well enough.
///
/// \code
/// std::vector<ZrTrackPoint> few;
/// for (const std::size_t i : ZrTrackSimplify::Kept(points, 0.5))
///     few.push_back(points[i]);
/// \endcode
///
/// The method is that of Douglas and Peucker: between two points that are kept, the one farthest from their
/// line is kept too when it is farther than the tolerance, and so on for both halves. Lines are great circles
/// on the sphere of `ZrUtil::LL2LLRng`; distances are calculated with vectors from its centre, so that
/// neither the poles nor the antimeridian need care. Depths and times play no part.
///
/// Segments are those of `ZrTrackSegments`: their first and last points are always kept, and of a run of
/// points without position the first one, so that the result falls apart as the track does.
///
/// Memory is 24 bytes per point. For tracks as vehicles leave them the time grows little faster than their
/// length. Any thread.
class ZR_KIT_EXPORT ZrTrackSimplify
{
public:
    /// Indices of the points kept, increasing. Every point left out lies within \p tolerance metres of the
    /// line between its kept neighbours. A tolerance of 0 leaves out only points on the line; a negative one
    /// or NaN keeps all of them.
    static std::vector<std::size_t> Kept(zr::span<const ZrTrackPoint> points, double tolerance,
        double maxGap = std::numeric_limits<double>::infinity());

    /// Metres from \p point to the great-circle line between \p from and \p to, the shorter way around. NaN
    /// without positions.
    static double Distance(const ZrTrackPoint& point, const ZrTrackPoint& from, const ZrTrackPoint& to);
};
