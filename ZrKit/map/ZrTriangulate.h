#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QPointF>

#include <cstddef>
#include <vector>

/// Cuts a polygon into triangles, by ears. Any thread.
class ZR_KIT_EXPORT ZrTriangulate
{
public:
    static constexpr std::size_t MostCorners = 4000; ///< the time grows with their square

    /// Three indices of corners for each triangle, which turn counter-clockwise and have an area: n − 2
    /// triangles at most for a ring of n corners. The ring may be concave and turn either way. Empty for
    /// one that crosses itself, has an area of 0, a corner that is not finite, or more than `MostCorners`.
    static std::vector<std::size_t> Ring(const std::vector<QPointF>& corners);
};
