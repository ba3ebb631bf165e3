#pragma once

// Collects the debug log. For programs of one source file: it defines the library's function.

#include "ZrDebugLog/ZrDebugLog.h"

#include <QString>
#include <QStringList>

namespace log_lines {

inline QStringList s_lines;

/// What is logged while it lives.
class Capture
{
public:
    Capture()
    {
        s_lines.clear();
        zr_debug_log_level = 2;
        zr_debug_log_to_dbg = 1;
    }

    ~Capture()
    {
        zr_debug_log_level = -1;
        zr_debug_log_to_dbg = 0;
    }

    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    QStringList All() const { return s_lines; }

    int Count(const QString& text) const { return s_lines.filter(text).size(); } ///< of the lines with it
};

} // namespace log_lines

// Takes the place of the library's.
void zr_debug_log_modern(int /*level*/, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* /*category*/, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* message)
{
    log_lines::s_lines << QString::fromUtf8(message);
}
