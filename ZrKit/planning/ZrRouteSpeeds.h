#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrWpts.h"

/// The speed presets of all routes at one moment, m/s: for threads that measure a copy of a route while those
/// of the process may change.
struct ZrRouteSpeeds
{
    float slow = ZrWpts::s_msSlow;
    float medium = ZrWpts::s_msMedium;
    float fast = ZrWpts::s_msFast;
};
