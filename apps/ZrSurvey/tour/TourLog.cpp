#include "apps/ZrSurvey/tour/TourLog.h"

#include "ZrDebugLog/ZrDebugLog.h"

#include <QDir>
#include <QFile>
#include <QMutex>

#include <cstdio>

namespace {

QMutex mutex;
QStringList messages;
QtMessageHandler before = nullptr;

/// Of the machine, not of the program: no folder for the session, no window manager, no bus.
bool IsOfTheMachine(const QString& text)
{
    for (const char* part : {"XDG_RUNTIME_DIR", "session management", "Session management",
             "propagateSizeHints", "QDBusConnection", "QXcbConnection", "Could not connect", "libpng",
             "inotify", "GeoClue", "QGeoPositionInfo", "positioning"}) {
        if (text.contains(QLatin1String(part)))
            return true;
    }
    return false;
}

/// Surfaces without a picture behind them say so.
bool IsUsual(const QString& line)
{
    return line.endsWith(QLatin1String("Background image load failed:"));
}

void Handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtWarningMsg || type == QtCriticalMsg) {
        const QMutexLocker lock(&mutex);
        if (!IsOfTheMachine(text))
            messages.append(text);
    }
    if (before)
        before(type, context, text);
}

} // namespace

TourLog::~TourLog()
{
    if (m_isStarted)
        qInstallMessageHandler(before);
}

void TourLog::Start(const QString& folder)
{
    m_folder = folder;
    m_isStarted = true;
    before = qInstallMessageHandler(Handle);
    zr_debug_log_set_base_path(QFile::encodeName(folder).constData());
    zr_debug_log_write_switch(&zr_debug_log_to_file, 1);
}

QStringList TourLog::Take()
{
    QStringList taken;
    {
        const QMutexLocker lock(&mutex);
        taken.swap(messages);
    }
    qint64 count = 0;
    const QDir dir(m_folder);
    const auto files = dir.entryList(QDir::Files, QDir::Name);
    for (const QString& name : files) {
        QFile file(dir.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        while (!file.atEnd()) {
            const QString line = QString::fromUtf8(file.readLine()).trimmed();
            if (line.isEmpty() || ++count <= m_read || IsUsual(line))
                continue;
            taken.append(line);
        }
    }
    m_read = count;
    return taken;
}
