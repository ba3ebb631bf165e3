#pragma once

// What a thread itself costs.

#include <ctime>

namespace long_log {

/// Milliseconds that the calling thread has had a processor: what others do with the machine is no part of
/// it.
inline double ThreadMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

} // namespace long_log
