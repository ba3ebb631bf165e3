#include "apps/ZrSurvey/SurveyImport.h"

#include "ZrKit/import/ZrImportSession.h"
#include "ZrKit/ui/ZrWorkPanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QDir>
#include <QFileInfo>

namespace {

/// Of several that may be wrong with a recording, one is told.
QString FlawText(const ZrImportSession& session)
{
    for (const ZrImportReport& report : session.Reports()) {
        if (!report.issues.isEmpty())
            return report.issues.front().text;
    }
    return {};
}

quint64 FlawCount(const ZrImportSession& session)
{
    quint64 count = 0;
    for (const ZrImportReport& report : session.Reports())
        count += report.issueCount;
    return count;
}

} // namespace

SurveyImport::SurveyImport(SurveyView& view)
    : QObject(&view)
    , m_view(view)
    , m_work(new ZrWorkPanel(&view))
{
    connect(&m_worker, &ZrWorker::Finished, this, &SurveyImport::OnFinished);
}

QStringList SurveyImport::Suffixes()
{
    return {QStringLiteral("xtf"), QStringLiteral("csv"), QStringLiteral("txt"), QStringLiteral("nmea")};
}

bool SurveyImport::IsForeign(const QString& path)
{
    QString error;
    return ZrImporter::Create(path, QStringLiteral("auto"), {}, &error) != nullptr;
}

void SurveyImport::Start(const QString& path)
{
    if (m_worker.IsWorking())
        return;
    const QDir folder(m_view.Model().settings.recordDir);
    const QFileInfo source(path);
    const QString stem = source.completeBaseName();
    const auto named = [&](const QString& name) { return folder.filePath(name + QStringLiteral(".log")); };
    QString log = named(stem);
    const QString present = log;
    for (int number = 2; QFileInfo::exists(log); ++number)
        log = named(QStringLiteral("%1-%2").arg(stem).arg(number));
    if (log != present && QFileInfo(present).lastModified() >= source.lastModified()) {
        m_view.OpenLog(present);
        m_view.Tell(tr("%1 was imported before").arg(source.fileName()), tr("Import again"),
            [this, path, log] { Run(path, log); });
        return;
    }
    Run(path, log);
}

void SurveyImport::Run(const QString& path, const QString& log)
{
    const QString folder = QFileInfo(log).path();
    if (!QDir().mkpath(folder)) {
        m_view.Warn(tr("The folder of recordings %1 cannot be made").arg(folder));
        return;
    }
    m_path = path;
    m_log = log;
    m_session = std::make_shared<ZrImportSession>();
    m_work->Begin(m_worker, tr("Importing %1").arg(QFileInfo(path).fileName()));
    m_worker.Start(
        [session = m_session, path, log](IZrProgress& progress) { session->Run({path}, log, &progress); },
        [session = m_session] { session->cancel = true; });
}

void SurveyImport::OnFinished()
{
    const std::shared_ptr<ZrImportSession> session = std::move(m_session);
    const QString name = QFileInfo(m_path).fileName();
    if (!QFileInfo::exists(m_log) || !session->Error().isEmpty()) {
        if (m_worker.IsCancelled())
            m_view.Tell(tr("%1 was not imported").arg(name));
        else
            m_view.Warn(tr("%1 cannot be imported. %2").arg(name, session->Error()));
        return;
    }
    m_view.set_last_path(QFileInfo(m_path).absolutePath());
    m_view.OpenLog(m_log);
    const quint64 flaws = FlawCount(*session);
    if (flaws > 0)
        m_view.Warn(
            tr("%1 was imported; flaws of the file: %2. %3").arg(name).arg(flaws).arg(FlawText(*session)));
}
