#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"

class ZglObject;

/// What a mesh holds, in figures.
///
/// Lengths are in the units of the model, which a file does not name. Sums are of doubles. Points and
/// directions that are not finite count as values, but take no part in box, area and lengths. A plain value.
struct ZR_KIT_EXPORT ZrMeshFacts
{
    u64 triangles = 0;
    u64 positions = 0; ///< different ones among the corners
    u64 texCoords = 0; ///< different ones
    u64 normals = 0; ///< different ones
    u64 notFinite = 0; ///< corners with a position, a texture coordinate or a normal that is not finite

    /// Bounding box: lowest and highest x, y and z; NaN without a finite position.
    double low[3];
    double high[3];

    double area = 0.0; ///< of the surface: the sum over the triangles, square units

    /// Triangles without an extent: their height is at most a millionth of their longest side, which is what
    /// positions of binary32 leave of three points on one line. Those that are not finite are not among them.
    u64 degenerate = 0;

    u64 notUnit = 0; ///< different normals whose length is not 1 to a thousandth
    double shortestNormal; ///< length; NaN without a finite normal
    double longestNormal; ///< length; NaN without a finite normal

    /// Figures of nothing.
    ZrMeshFacts();

    /// Figures of \p mesh, whose arrays must be in step, as after loading.
    explicit ZrMeshFacts(const ZglObject& mesh);
};
