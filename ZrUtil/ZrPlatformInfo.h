#pragma once

#include "ZrUtil/ZrExport.h"

namespace zr {

class ZrSetModule;

/// Facts about the machine that wrote a settings file, for whoever reads the file later.
class ZR_UTIL_EXPORT ZrPlatformInfo
{
public:
    /// Stores the strings "qt abi", "cpu arch", "hostname", "os" and "os version" of this machine; does
    /// nothing when loading.
    static void serialise(ZrSetModule& module);
};

} // namespace zr
