#pragma once

#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>
#include <QLatin1String>
#include <QString>
#include <QStringView>

#include <fmt/core.h>

#include <chrono>
#include <string>

/// \file
/// Structured log lines with {fmt} messages, handed to the debug log.
///
/// Ordinary code uses the macro, which costs one to three loads of an `int` while its message is not wanted:
///
///     ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrUtil-ZrTheme", "Failed opening stylesheet \"{}\"", fileName);
///
/// All of it may be used from any thread.

namespace zr {

/// Whether a message of \p level is to be emitted: the level is within `zr_debug_log_level` and at least one
/// output of the debug log is switched on.
inline bool log_wanted(int level) noexcept
{
    return zr_debug_log_read_switch(&zr_debug_log_level) >= level
        && (zr_debug_log_read_switch(&zr_debug_log_to_file) != 0
            || zr_debug_log_read_switch(&zr_debug_log_to_dbg) != 0);
}

/// The steady clock in nanoseconds, the time stamp of a message.
inline i64 steady_ns() noexcept
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

namespace detail {

/// Where and when a message arose.
struct LogSite
{
    int level;
    const char* file;
    int line;
    const char* signature;
    const char* category;
    int reserved;
    i64 time;
};

/// Formats and emits; throws nothing.
ZR_UTIL_EXPORT void log_emit(const LogSite& site, const char* format, fmt::format_args args) noexcept;

// What {fmt} is given for a value: texts of Qt as UTF-8, a null text as "(null)", everything else as it is.

template <class T> const T& log_value(const T& value)
{
    return value;
}

inline std::string log_value(const QString& value)
{
    return value.toStdString();
}

inline std::string log_value(QStringView value)
{
    return value.toUtf8().toStdString();
}

inline std::string log_value(QLatin1String value)
{
    return QString(value).toStdString();
}

inline std::string log_value(const QByteArray& value)
{
    return value.toStdString();
}

inline const char* log_value(const char* value)
{
    return value ? value : "(null)";
}

inline const char* log_value(char* value)
{
    return value ? value : "(null)";
}

/// Gives the converted values a name, since the argument list refers to them.
template <class... Values> void log_values(const LogSite& site, const char* format, const Values&... values)
{
    log_emit(site, format, fmt::make_format_args(values...));
}

} // namespace detail
} // namespace zr

/// Formats a message with {fmt} and hands it to `zr_debug_log_modern`, whatever the switches say: the call
/// site asks `zr::log_wanted` first, or uses `ZR_LOG`, which does.
///
/// \param level     0 (critical) to 5 (trace)
/// \param file      path of the emitting source file
/// \param line      line in it
/// \param signature full signature of the emitting function
/// \param category  library name, hyphen, class name, for instance "ZrUtil-ZrTheme"
/// \param reserved  0
/// \param time      steady clock in nanoseconds, taken at the call site
/// \param format    {fmt} format string, UTF-8
/// \param args      the values. `QString`, `QStringView`, `QLatin1String` and `QByteArray` are passed as
/// UTF-8 text.
///
/// Give floating point values an explicit precision ("{:.3f}"): what a bare "{}" shows differs between the
/// versions of {fmt}. A format string that does not fit the values is emitted unformatted, with a note of the
/// error behind it. The message ends at a zero character.
template <class... Args>
void zrLogEmit(int level, const char* file, int line, const char* signature, const char* category,
    int reserved, i64 time, const char* format, const Args&... args)
{
    const zr::detail::LogSite site = {level, file, line, signature, category, reserved, time};
    zr::detail::log_values(site, format, zr::detail::log_value(args)...);
}

/// The full signature of the function it stands in.
#if defined(_MSC_VER) && !defined(__clang__)
#define ZR_FUNCTION_SIGNATURE __FUNCSIG__
#else
#define ZR_FUNCTION_SIGNATURE __PRETTY_FUNCTION__
#endif

/// `ZR_LOG(level, category, format, values...)` emits a message from here, now. Unless the message is wanted,
/// neither the clock is read nor any argument behind \p level evaluated. \p level is evaluated once.
#define ZR_LOG(level, category, ...)                                                                         \
    do {                                                                                                     \
        const int zrLogLevel = (level);                                                                      \
        if (zr::log_wanted(zrLogLevel))                                                                      \
            zrLogEmit(zrLogLevel, __FILE__, __LINE__, ZR_FUNCTION_SIGNATURE, (category), 0, zr::steady_ns(), \
                __VA_ARGS__);                                                                                \
    } while (false)
