#pragma once

#include "ZrKit/ZrKitExport.h"

class ZrGlSurface;
class ZrWaterfallLayer;

/// Lets a `ZrWaterfallLayer` show the palettes of `ZrSonarPalette` and be set in the terms of a person.
///
/// \code
/// surface.OnCreate();
/// ZrWaterfallPalettes::Load(surface); // context current
/// ZrWaterfallPalettes::SetLook(layer, palette, gainDecibels, contrast);
/// \endcode
struct ZR_KIT_EXPORT ZrWaterfallPalettes
{
    /// Puts them in place of the palettes of \p surface, in the order of `ZrSonarPalette::Names`.
    static void Load(ZrGlSurface& surface);

    /// \param palette index in `ZrSonarPalette::Names`
    /// \param gain decibels, 0 as recorded
    /// \param contrast above 0, 1 as recorded: so many times as far from the middle grey
    static void SetLook(ZrWaterfallLayer& layer, int palette, double gain, double contrast);
};
