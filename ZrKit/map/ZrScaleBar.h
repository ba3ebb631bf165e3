#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>

/// A round length in the user's units for the scale bar of a map. A plain value; computed on the
/// user-interface thread, to which `ZrUnits` belongs.
struct ZR_KIT_EXPORT ZrScaleBar
{
    double metres = 0.0; ///< 0: there is none
    double pixels = 0.0; ///< its length on the map
    int parts = 4; ///< into which it divides in round lengths
    QString text; ///< with the unit: "500m", "2mi"

    /// The longest bar of at most \p mostPixels on a map of \p metresPerPixel: in the long unit from 1 of it
    /// on, in the tiny one below 1 short unit. A unit whose scale is not above 0 counts as metres.
    static ZrScaleBar Of(double metresPerPixel, double mostPixels);
};
