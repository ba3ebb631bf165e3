#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/geo/ZrGridBatch.h"
#include "ZrKit/planning/ZrGeoPoint.h"

/// Where the pixels of a mosaic lie: a picture with north up in the metres of a UTM grid (WGS 84).
///
/// Columns and rows are counted from the upper left corner of the picture in pixels and parts of them: the
/// middle of its first pixel is at 0.5, 0.5. A plain value.
struct ZR_KIT_EXPORT ZrMosaicFrame
{
    int zone = 31; ///< of UTM, 1 to 60
    bool south = false; ///< hemisphere of the grid
    double west = 0.0; ///< easting of the left edge, metres
    double north = 0.0; ///< northing of the upper edge, metres
    double resolution = 1.0; ///< metres of grid for a pixel
    int width = 0; ///< pixels
    int height = 0; ///< pixels

    double East(double column) const { return west + column * resolution; }

    double North(double row) const { return north - row * resolution; }

    /// The grid's number in the EPSG register: 32601 to 32660, south 32701 to 32760.
    int Epsg() const { return (south ? 32700 : 32600) + zone; }

    /// Longitude of the grid's central meridian, degrees.
    double CentralMeridian() const { return 6.0 * zone - 183.0; }

    ZrGridBatch Grid() const { return ZrGridBatch::UtmZone(zone, south); }

    /// The position of a place in the picture.
    ZrGeoPoint Position(double column, double row) const;

    /// The place of a position, also outside the picture. False, and nothing is set, when it is not valid.
    bool Find(ZrGeoPoint at, double& column, double& row) const;

    /// The frame of a zone that holds \p at, without a picture.
    static ZrMosaicFrame ZoneAt(ZrGeoPoint at);
};
