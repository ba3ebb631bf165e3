#pragma once

#include "ZrDebugLog/ZrDebugLogExport.h"

#include <stdint.h>

/// \file
/// The debug log: one line of text per message, written to a file, to the debug output, or to both.
///
/// The interface is plain C (C99 or C++), so that any part of an application can report through it and so
/// that an application may supply its own shared library of this name with the same functions and variables;
/// `ZrUtil` uses nothing else. Texts are UTF-8. Nothing throws, and a null pointer is accepted wherever one
/// is passed.
///
/// A line looks like this, the message being the rest of it:
///
///     Warning  | 2024-05-01 12:34:56.789+0000 | ZrUtil-ZrTheme | ZrTheme.cpp:71 | void f() | No file
///
/// The time is local time with its distance from UTC. Missing texts are shown as "-". Line feeds and carriage
/// returns are written as `\n` and `\r`, other control characters except the tabulator as `\x` and two
/// hexadecimal digits, so a message is always exactly one line.
///
/// The file is called `ZrDebugLog_<date>_<time>_<process id>.log`. It is created in the base path, together
/// with the folder, by the first message that is meant for it. A message that cannot be written to the file
/// goes to the debug output instead, whatever `zr_debug_log_to_dbg` says; a file that could not be opened is
/// tried again only after the base path has been set. The debug output is the standard error stream, under
/// Windows the output of the debugger.
///
/// Every function may be called from any thread, before `main` and while static objects are being destroyed,
/// but not from a signal handler.

#ifdef __cplusplus
extern "C" {
#endif

/// The levels. Callers emit a message of level L only when `zr_debug_log_level` >= L, so a higher number is
/// more talkative.
enum
{
    ZR_DEBUG_LOG_CRITICAL = 0, ///< the application cannot go on; see `zr_debug_terminate_on_critical`
    ZR_DEBUG_LOG_ERROR = 1, ///< an operation failed and something the user asked for is not there
    ZR_DEBUG_LOG_WARNING = 2, ///< a failure that is worked round, such as a missing style sheet
    ZR_DEBUG_LOG_INFO = 3, ///< milestones of ordinary operation
    ZR_DEBUG_LOG_DEBUG = 4, ///< details for developers
    ZR_DEBUG_LOG_TRACE = 5 ///< everything, also in inner loops
};

/// Bytes in a caller's buffer for a path, the terminating zero included.
enum
{
    ZR_DEBUG_LOG_PATH_SIZE = 260
};

/// \name Switches
/// Read at every message. They are plain variables: assign to them before the threads that log are started.
/// Later on change them through `zr_debug_log_write_switch`, and read them through
/// `zr_debug_log_read_switch`.
/// @{

/// The most talkative level that call sites emit. Default: `ZR_DEBUG_LOG_WARNING`.
extern ZR_DEBUG_LOG_EXPORT int zr_debug_log_level;

/// Messages of this level and of lower numbers are flushed to the file at once; others wait in the buffer of
/// the file, until it is full, the file is closed, or the program ends. Default: `ZR_DEBUG_LOG_WARNING`.
extern ZR_DEBUG_LOG_EXPORT int zr_debug_log_flush_level;

/// Not 0: messages are written to the file. Default: 0.
extern ZR_DEBUG_LOG_EXPORT int zr_debug_log_to_file;

/// Not 0: messages are written to the debug output. Default: 1.
extern ZR_DEBUG_LOG_EXPORT int zr_debug_log_to_dbg;

/// Not 0: a message of level `ZR_DEBUG_LOG_CRITICAL` ends the process by `std::terminate`, after it has been
/// written and flushed. Default: 0.
extern ZR_DEBUG_LOG_EXPORT int zr_debug_terminate_on_critical;

/// @}

/// The value of a switch, also while another thread is changing it.
static inline int zr_debug_log_read_switch(const int* variable)
{
#if defined(__GNUC__)
    return __atomic_load_n(variable, __ATOMIC_RELAXED);
#else
    return *(const volatile int*)variable;
#endif
}

/// Changes a switch, also while other threads are logging.
static inline void zr_debug_log_write_switch(int* variable, int value)
{
#if defined(__GNUC__)
    __atomic_store_n(variable, value, __ATOMIC_RELAXED);
#else
    *(volatile int*)variable = value;
#endif
}

/// Writes one message to the outputs that are switched on.
///
/// The level is not compared with `zr_debug_log_level`: the caller has done so before it made up the message.
/// \param level          what is shown, flushed and perhaps ends the process; any number is accepted
/// \param source_file    path of the emitting source file
/// \param source_line    line in it
/// \param function       full signature of the emitting function
/// \param category       library name, hyphen, class name, for instance "ZrUtil-ZrTheme"
/// \param reserved       0
/// \param steady_time_ns nanoseconds of the steady clock, from which the time of day in the line is computed;
///                       a time not above 0 or in the future stands for the moment of the call
/// \param message        the text
ZR_DEBUG_LOG_EXPORT void zr_debug_log_modern(int level, const char* source_file, int source_line,
    const char* function, const char* category, int reserved, int64_t steady_time_ns, const char* message);

/// Display name of a level: "Critical", "Error", "Warning", "Info", "Debug", "Trace"; "Unknown" for other
/// numbers. The text lives as long as the library.
ZR_DEBUG_LOG_EXPORT const char* zr_debug_log_level_to_string(int level);

/// Fills \p buffer, which holds `ZR_DEBUG_LOG_PATH_SIZE` bytes, with the folder of the log files. A longer
/// path is cut between two characters; the text is always terminated.
ZR_DEBUG_LOG_EXPORT void zr_debug_log_get_base_path(char* buffer);

/// Fills \p buffer like `zr_debug_log_get_base_path`, with the path of the open log file; empty while none is
/// open.
ZR_DEBUG_LOG_EXPORT void zr_debug_log_get_cur_path(char* buffer);

/// Sets the folder of the log files, relative to the current directory if it is not absolute. Null or an
/// empty text brings back the default: the folder "ZrDebugLog" in the folder for temporary files.
///
/// An open file of another folder is closed; the next message for the file opens one in this folder.
ZR_DEBUG_LOG_EXPORT void zr_debug_log_set_base_path(const char* path);

#ifdef __cplusplus
}
#endif
