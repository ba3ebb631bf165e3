#pragma once

#include <QString>

/// One message of the console history or of the status table (see ZrConsole).
///
/// A plain value: copy it out under the lock of the container it lies in, then use it without one.
struct ZrConsoleMsg
{
    int id = -1; ///< key or code chosen by the caller
    int count = 0; ///< status: how many times this key has been posted; console: 0
    double time = 0.0; ///< posting time, seconds since 1970-01-01 UTC, millisecond resolution
    QString text; ///< the formatted message
};
