#include "ZrUtil/ZrConsole.h"

#include <QDateTime>
#include <QDebug>

#include <cstdarg>
#include <limits>
#include <utility>

bool ZrConsole::debug = true;
zr::ZrRingBuf<ZrConsoleMsg, 1000> ZrConsole::console;
std::mutex ZrConsole::consoleLock;
std::unordered_map<int, ZrConsoleMsg> ZrConsole::status;
std::mutex ZrConsole::statusLock;

namespace {

/// Seconds since 1970-01-01 UTC. The millisecond count is read directly: building a QDateTime for it costs
/// far more than all else a message costs.
double Now()
{
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

} // namespace

void ZrConsole::Console(int id, const char* fmt, ...)
{
    ZrConsoleMsg msg;
    msg.id = id;
    msg.time = Now();
    va_list args;
    va_start(args, fmt);
    msg.text = QString::vasprintf(fmt, args);
    va_end(args);

    if (debug && id == 0)
        qDebug() << "Console " << id << ": " << msg.text;

    const std::lock_guard<std::mutex> guard(consoleLock);
    console.push(std::move(msg));
}

void ZrConsole::Debug(int id, const char* fmt, ...)
{
    if (!debug)
        return;
    va_list args;
    va_start(args, fmt);
    const QString text = QString::vasprintf(fmt, args);
    va_end(args);
    qDebug() << "Debug " << id << ": " << text;
}

void ZrConsole::Status(int key, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    QString text = QString::vasprintf(fmt, args);
    va_end(args);

    const std::lock_guard<std::mutex> guard(statusLock);
    ZrConsoleMsg& entry = status[key];
    if (entry.count < std::numeric_limits<int>::max())
        ++entry.count;
    entry.id = key;
    // Read under the lock: unless the clock is set back, the times of one key follow the order of its posts.
    entry.time = Now();
    // The replaced text is freed with `text`, after the lock is released.
    entry.text.swap(text);
}

QString ZrConsole::Format(const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    QString text = QString::vasprintf(fmt, args);
    va_end(args);
    return text;
}
