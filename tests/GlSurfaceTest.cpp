#include "GlSurfaceTest.h"

// Takes the place of the library's function.
void zr_debug_log_modern(int level, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* category, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* message)
{
    gl::s_lines.push_back({level, QString::fromUtf8(category), QString::fromUtf8(message)});
}
