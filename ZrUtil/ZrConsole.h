#pragma once

#include "ZrUtil/ZrConsoleMsg.h"
#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrRingBuf.h"

#include <QString>

#include <mutex>
#include <unordered_map>

/// Process-wide message console: debug echo, a history of console messages, a table of status messages.
///
/// All of it is static, exists from the moment the library is loaded, and is the same for the program and
/// every plugin. Format strings follow QString::vasprintf: `%s` takes UTF-8, a null format gives an empty
/// text.
///
/// Every function may be called from any thread. The text is formatted, and the echo written, before a lock
/// is taken, so a Qt message handler may itself call this class. The two locks are never held together.
/// Readers hold the matching lock while they copy entries out:
///
/// \code
/// ZrConsole::Console(5, "Ping rate %d Hz", rate);
///
/// const std::lock_guard<std::mutex> guard(ZrConsole::consoleLock);
/// for (int i = 0; i < ZrConsole::console.count; ++i)
///     lines.append(ZrConsole::console.at(i).text);
/// \endcode
class ZR_UTIL_EXPORT ZrConsole
{
public:
    ZrConsole() = default;
    ZrConsole(const ZrConsole&) = default;
    ZrConsole(ZrConsole&&) = default;

    /// There is nothing to assign: all state is static.
    ZrConsole& operator=(const ZrConsole&) noexcept { return *this; }

    /// There is nothing to assign: all state is static.
    ZrConsole& operator=(ZrConsole&&) noexcept { return *this; }

    /// Appends a message to the history; while `debug` is on, a message of \p id 0 is also echoed to the Qt
    /// debug stream. The oldest message gives way when the history is full.
    static void Console(int id, const char* fmt, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);

    /// Echoes a message of any \p id to the Qt debug stream while `debug` is on; stores nothing. With `debug`
    /// off not even the text is formatted.
    static void Debug(int id, const char* fmt, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);

    /// Replaces the status message of \p key and counts how often the key was posted (held at the largest
    /// int).
    static void Status(int key, const char* fmt, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);

    /// The formatted text; no side effect.
    static QString Format(const char* fmt, ...) Q_ATTRIBUTE_FORMAT_PRINTF(1, 2);

    /// Switches the echo of Console() and Debug(). Not guarded: set it before other threads use the console.
    static bool debug;

    static zr::ZrRingBuf<ZrConsoleMsg, 1000> console; ///< the last 1,000 console messages, oldest first
    static std::mutex consoleLock; ///< guards `console`

    static std::unordered_map<int, ZrConsoleMsg> status; ///< the latest status message of each key
    static std::mutex statusLock; ///< guards `status`
};
