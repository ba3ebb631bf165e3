#pragma once

#include "ZrUtil/ZrExport.h"

namespace zr {

class ZrSetModule;

/// What an object implements beside `IPersistable` when some of its settings depend on others that have been
/// loaded by then.
class ZR_UTIL_EXPORT IPersistableLinked
{
public:
    virtual ~IPersistableLinked() = default;

    /// Called once after everything has been loaded, with a loading module on the root of the settings; not
    /// called when they are stored.
    virtual void post_cfg_load(ZrSetModule& module) = 0;
};

} // namespace zr
