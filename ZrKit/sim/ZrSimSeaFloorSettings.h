#pragma once

#include "ZrUtil/ZrTypes.h"

/// What a simulated sea floor looks like. A plain value; metres.
struct ZrSimSeaFloorSettings
{
    u64 seed = 1; ///< another one is another place
    double depth = 25.0; ///< mean depth of water, 0 to 11,000
    double relief = 1.5; ///< hills and hollows, up and down from the mean
    double reliefLength = 300.0; ///< from one hill to the next, about; 1 or more
    double rippleHeight = 0.05; ///< of sand ripples, from trough to crest; 0 for none
    double rippleLength = 1.2; ///< from crest to crest; 0.05 or more
    double rockHeight = 0.7; ///< of the highest rocks; 0 for none
    bool patches = true; ///< sand and mud, and rocks here and there; false: sand everywhere
};
