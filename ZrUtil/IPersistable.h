#pragma once

#include "ZrUtil/ZrExport.h"

namespace zr {

class ZrSetModule;

/// What an object implements to have its settings loaded and stored.
///
/// The interface has this one virtual function and no virtual destructor: it is implemented, never owned.
class ZR_UTIL_EXPORT IPersistable
{
public:
    /// Binds every value of the object to its key in \p module: reads them when the module is loading, writes
    /// them when it is storing. The object holds its defaults when it is called to load.
    virtual void settings(ZrSetModule& module) = 0;

protected:
    IPersistable() = default;
    IPersistable(const IPersistable&) = default;
    IPersistable(IPersistable&&) = default;
    IPersistable& operator=(const IPersistable&) = default;
    IPersistable& operator=(IPersistable&&) = default;
    ~IPersistable() = default;
};

} // namespace zr
