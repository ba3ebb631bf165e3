#include "apps/ZrSurvey/SurveyImport.h"

#include "ZrKit/ui/ZrWorkPanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFileInfo>

SurveyImport::SurveyImport(SurveyView& view)
    : QObject(&view)
    , m_view(view)
    , m_work(new ZrWorkPanel(&view))
{
    connect(&m_task, &ZrImportTask::Finished, this, &SurveyImport::OnFinished);
}

void SurveyImport::Start(const QString& path)
{
    if (m_task.IsWorking())
        return;
    const ZrImportTask::Place place = ZrImportTask::PlaceFor(path, m_view.Model().settings.recordDir);
    if (!place.HasPresent()) {
        Run(path, place.log);
        return;
    }
    m_view.OpenLog(place.present);
    m_view.Tell(tr("%1 was imported before").arg(QFileInfo(path).fileName()), tr("Import again"),
        [this, path, log = place.log] { Run(path, log); });
}

void SurveyImport::Run(const QString& path, const QString& log)
{
    if (m_task.IsWorking())
        return;
    m_work->Begin(m_task.Worker(), tr("Importing %1").arg(QFileInfo(path).fileName()));
    if (m_task.Start(path, log))
        return;
    m_work->End();
    m_view.Warn(tr("%1 cannot be imported. %2").arg(QFileInfo(path).fileName(), m_task.Error()));
}

void SurveyImport::OnFinished(int result)
{
    const QString name = QFileInfo(m_task.Path()).fileName();
    if (result == ZrImportTask::cancelled) {
        m_view.Tell(tr("%1 was not imported").arg(name));
        return;
    }
    if (result == ZrImportTask::failed) {
        m_view.Warn(tr("%1 cannot be imported. %2").arg(name, m_task.Error()));
        return;
    }
    m_view.set_last_path(QFileInfo(m_task.Path()).absolutePath());
    m_view.OpenLog(m_task.Log());
    if (m_task.FlawCount() > 0)
        m_view.Warn(tr("%1 was imported; flaws of the file: %2. %3")
                        .arg(name)
                        .arg(m_task.FlawCount())
                        .arg(m_task.FlawText()));
}
