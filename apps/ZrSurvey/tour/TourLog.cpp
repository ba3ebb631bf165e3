#include "apps/ZrSurvey/tour/TourLog.h"

#include "ZrDebugLog/ZrDebugLog.h"

#include <QDir>
#include <QFile>
#include <QMutex>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace {

QMutex mutex;
QStringList messages;
QtMessageHandler before = nullptr;

/// Surfaces without a picture behind them say so.
bool IsUsual(const QString& line)
{
    return line.endsWith(QLatin1String("Background image load failed:"));
}

void Handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtWarningMsg || type == QtCriticalMsg) {
        const QMutexLocker lock(&mutex);
        if (!TourLog::IsOfTheMachine(text))
            messages.append(text);
    }
    if (before)
        before(type, context, text);
}

} // namespace

bool TourLog::IsOfTheMachine(const QString& text)
{
    static const char* const texts[] = {
        "QStandardPaths: XDG_RUNTIME_DIR not set, defaulting to '[^']*'",
        "QStandardPaths: wrong permissions on runtime directory [^,]*, [0-7]+ instead of [0-7]+",
        "QStandardPaths: runtime directory '[^']*' is not owned by UID [0-9]+, but .*",
        "Qt: Session management error: .*",
        "This plugin does not support propagateSizeHints\\(\\)",
        "QDBusConnection: session D-Bus connection created before QCoreApplication\\. .*",
        "QXcbConnection: XCB error: [0-9]+ \\(BadWindow\\), .*",
        "QInotifyFileSystemWatcherEngine::addPaths: inotify_add_watch failed: No space left on device",
    };
    return std::any_of(std::begin(texts), std::end(texts), [&text](const char* whole) {
        return QRegularExpression(QRegularExpression::anchoredPattern(QString::fromLatin1(whole)))
            .match(text)
            .hasMatch();
    });
}

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
