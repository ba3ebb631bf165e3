#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QColor>

#include <array>

/// The colours of depths: from the shallowest to the deepest always darker, so that they tell more from less
/// without a legend, and in grey.
///
/// By day and at dusk from sand to deep blue, at night in shades of red; those of the scheme in force (see
/// `ZrColourScheme`). GUI thread only.
class ZR_KIT_EXPORT ZrDepthColours
{
public:
    static constexpr int Count = 5;

    /// Evenly from the shallowest to the deepest, with straight lines between.
    static std::array<QColor, Count> Stops();

    static QColor At(double share); ///< 0 the shallowest, 1 the deepest; others are clamped
};
