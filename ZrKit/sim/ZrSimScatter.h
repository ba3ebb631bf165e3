#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sim/ZrSimTarget.h"
#include "ZrUtil/ZrTypes.h"

#include <vector>

class ZrRoutePath;

/// Lays targets where a survey will see them.
class ZR_KIT_EXPORT ZrSimScatter
{
public:
    /// \p count targets beside the straights of \p path, evenly spread along them, port and starboard in
    /// turn, from a quarter to two thirds of \p range metres away. Cylinders and blocks, each sixth one a
    /// wreck; sizes and directions belong to \p seed. None when the path has no straight.
    static std::vector<ZrSimTarget> Along(const ZrRoutePath& path, int count, double range, u64 seed);
};
