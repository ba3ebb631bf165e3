#pragma once

#include "ZrUtil/ZrExport.h"

#include <functional>

namespace zr {

/// Runs \p fn on a new detached thread and returns at once.
///
/// The caller cannot wait for the function or join its thread, so \p fn owns, or shares, all it touches. A
/// thread still running when `main` returns is cut off; what must be finished belongs in a ZrThread. An empty
/// \p fn starts no thread. Throws std::system_error when the thread cannot be created; an exception that
/// leaves \p fn ends the process. May be called from any thread.
///
/// Write the call qualified: a bare `async` with a std::function also finds the standard one.
ZR_UTIL_EXPORT void async(std::function<void()> fn);

} // namespace zr
