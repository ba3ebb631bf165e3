#include "ZrKit/import/ZrImportTask.h"

#include "ZrKit/import/ZrImportSession.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <utility>

ZrImportTask::ZrImportTask(QObject* parent)
    : QObject(parent)
{
    connect(&m_worker, &ZrWorker::Finished, this, &ZrImportTask::OnFinished);
}

ZrImportTask::~ZrImportTask() = default;

QStringList ZrImportTask::Suffixes()
{
    return {QStringLiteral("xtf"), QStringLiteral("csv"), QStringLiteral("txt"), QStringLiteral("nmea")};
}

bool ZrImportTask::IsForeign(const QString& path)
{
    QString error;
    return ZrImporter::Create(path, QStringLiteral("auto"), {}, &error) != nullptr;
}

ZrImportTask::Place ZrImportTask::PlaceFor(const QString& path, const QString& folder)
{
    const QDir dir(folder);
    const QFileInfo source(path);
    const QString stem = source.completeBaseName();
    const auto named = [&dir](const QString& name) { return dir.filePath(name + QStringLiteral(".log")); };
    Place place;
    const QString first = named(stem);
    place.log = first;
    for (int number = 2; QFileInfo::exists(place.log); ++number)
        place.log = named(QStringLiteral("%1-%2").arg(stem).arg(number));
    if (place.log != first && QFileInfo(first).lastModified() >= source.lastModified())
        place.present = first;
    return place;
}

bool ZrImportTask::Start(const QString& path, const QString& log)
{
    if (m_worker.IsWorking()) {
        m_error = tr("Another import is under way.");
        return false;
    }
    const QString folder = QFileInfo(log).path();
    if (!QDir().mkpath(folder)) {
        m_error = tr("The folder %1 cannot be made.").arg(folder);
        return false;
    }
    m_path = path;
    m_log = log;
    m_error.clear();
    m_flawCount = 0;
    m_flawText.clear();
    m_session = std::make_shared<ZrImportSession>();
    return m_worker.Start(
        [session = m_session, path, log](IZrProgress& progress) { session->Run({path}, log, &progress); },
        [session = m_session] { session->cancel = true; });
}

void ZrImportTask::OnFinished()
{
    const std::shared_ptr<ZrImportSession> session = std::move(m_session);
    m_error = session->Error();
    for (const ZrImportReport& report : session->Reports()) {
        m_flawCount += report.issueCount;
        if (m_flawText.isEmpty() && !report.issues.isEmpty())
            m_flawText = report.issues.front().text;
    }
    if (m_error.isEmpty() && QFileInfo::exists(m_log))
        Q_EMIT Finished(done);
    else
        Q_EMIT Finished(m_worker.IsCancelled() ? cancelled : failed);
}
