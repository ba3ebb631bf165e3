#pragma once

#include "ZrKit/ZrKitExport.h"

class ZrMapView;

/// What the map shaders take instead of doubles: scale and scaled origin of a view, each in two floats, and
/// what their arithmetic leaves at the middle of the view.
///
/// A vertex is x ordinal, y ordinal, x decimal, y decimal, from `Split`. The shader's result is in map pixels
/// of the view: for points in view right to 0.1 pixel at 0.01 m per pixel and more, whatever the scale, with
/// grid coordinates up to ten thousand kilometres. A plain value.
struct ZR_KIT_EXPORT ZrMapSplit
{
    /// Ordinals are multiples of this, metres: they have few bits, and so has the first part of the scale,
    /// for the large terms of the shader to be exact.
    static constexpr double Step = 1024.0;

    float scale = 0.0F; ///< "uScale"; pixels per metre
    float scaleD = 0.0F; ///< "uScaleD"
    float originX = 0.0F; ///< "uOriginX"; pixels
    float originXd = 0.0F; ///< "uOriginXd"
    float originY = 0.0F; ///< "uOriginY"
    float originYd = 0.0F; ///< "uOriginYd"
    float offX = 0.0F; ///< "uOffX"
    float offY = 0.0F; ///< "uOffY"

    ZrMapSplit() = default;
    explicit ZrMapSplit(const ZrMapView& view);

    /// Writes the four floats of a world position.
    static void Split(double x, double y, float* vertex);

    /// What the shader computes of a vertex: map pixels.
    void Project(const float* vertex, float& x, float& y) const;
};
