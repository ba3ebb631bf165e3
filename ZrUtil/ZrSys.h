#pragma once

#include "ZrUtil/ZrExport.h"

#include <QString>

/// Small operating-system helpers.
///
/// The environment functions hold the lock that Qt holds around its own environment calls, and so may be
/// called from any thread that shares this lock; code that calls the C library's `setenv` directly does not.
namespace sys {

/// Value of an environment variable; empty for an empty \p name and for a missing variable.
///
/// The name is converted to Latin-1. Each byte of the value becomes one character, so that every Latin-1
/// value written by set_env() reads back the same.
ZR_UTIL_EXPORT QString get_env(const QString& name);

/// Sets an environment variable of this process, and of those it starts later; returns whether that
/// succeeded.
///
/// False, with nothing changed, for an empty \p name and for one that contains '='. Both texts are converted
/// to Latin-1; characters outside it become '?'. An empty \p value leaves the variable set and empty, except
/// on Windows, where an empty variable does not exist and is removed.
ZR_UTIL_EXPORT bool set_env(const QString& name, const QString& value);

/// Removes an environment variable from this process. A missing variable stays missing; an empty \p name does
/// nothing.
ZR_UTIL_EXPORT void clear_env(const QString& name);

/// Name of the null device: "/dev/null", or "nul" on Windows. Static storage, never null.
ZR_UTIL_EXPORT const char* dev_null();

/// Whether a debugger is attached to this process at this moment. On Linux any tracer counts (a TracerPid
/// other than 0 in /proc/self/status). False where the system offers no such query.
ZR_UTIL_EXPORT bool is_debugger_attached();

} // namespace sys
