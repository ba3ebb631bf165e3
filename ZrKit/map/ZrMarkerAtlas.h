#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QImage>
#include <QRectF>

#include <vector>

/// The shapes of all marker images side by side, for markers of different images in one draw.
///
/// An image of 512 × 512 alphas: cells of 128 with the image in the middle 96, so that a halo has room and
/// neighbours do not run into each other. Cells of images that cannot be read are empty. Thread-safe as
/// `QImage` is.
class ZR_KIT_EXPORT ZrMarkerAtlas
{
public:
    static constexpr int Side = 512; ///< pixels
    static constexpr int Cell = 128;
    static constexpr int ImageSide = 96;
    static constexpr int Border = (Cell - ImageSide) / 2;
    static constexpr int CellCount = (Side / Cell) * (Side / Cell);

    /// Loads the images of `ZrGlSurface::m_markers` from the resources.
    ZrMarkerAtlas();

    /// The alphas, a byte each, and after them the images half as large down to one pixel.
    const std::vector<QImage>& Levels() const { return m_levels; }

    bool HasImage(int index) const; ///< false for indices without a cell

    /// The cell of an image in texture coordinates, its row 0 at the top; null for indices without a cell.
    static QRectF CellOf(int index);

private:
    std::vector<QImage> m_levels;
    std::vector<bool> m_hasImage;
};
