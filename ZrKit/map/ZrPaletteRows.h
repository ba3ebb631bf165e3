#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>

/// Where the palettes of sonar pictures lie among those of a drawing surface, so that a waterfall on the
/// screen has the colours of its picture in a file.
class ZR_KIT_EXPORT ZrPaletteRows
{
public:
    /// The row of the palette \p name, one of `ZrSonarPalette::Names`: for `ZrWaterfallLayer::m_palette`.
    /// -1 for any other name.
    static int Of(const QString& name);
};
