#include "ZrUtil/ZrSys.h"

#include <QByteArray>
#include <QFile>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace {

// What differs between the systems stands here and nowhere else.
#ifdef Q_OS_WIN

constexpr const char* nullDevice = "nul";

bool HasTracer()
{
    return IsDebuggerPresent() != 0;
}

#else

constexpr const char* nullDevice = "/dev/null";

bool HasTracer()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    static constexpr char field[] = "TracerPid:";
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        if (line.startsWith(field))
            return line.mid(int(sizeof field) - 1).trimmed().toLongLong() != 0;
    }
    return false;
}

#endif

} // namespace

namespace sys {

QString get_env(const QString& name)
{
    if (name.isEmpty())
        return QString();
    return QString::fromLatin1(qgetenv(name.toLatin1().constData()));
}

bool set_env(const QString& name, const QString& value)
{
    // A '=' would end the name early on systems that do not refuse it themselves.
    if (name.isEmpty() || name.contains(QLatin1Char('=')))
        return false;
    return qputenv(name.toLatin1().constData(), value.toLatin1());
}

void clear_env(const QString& name)
{
    qunsetenv(name.toLatin1().constData());
}

const char* dev_null()
{
    return nullDevice;
}

bool is_debugger_attached()
{
    return HasTracer();
}

} // namespace sys
