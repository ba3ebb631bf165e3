#include "apps/ZrSurvey/PlanFiles.h"

#include "ZrKit/planning/ZrAreaFile.h"
#include "ZrKit/planning/ZrPlanReader.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFileInfo>

#include <memory>
#include <utility>

namespace {

/// Every form that plans are read from; the first one keeps areas as well.
const QStringList allForms{QStringLiteral("json"), QStringLiteral("gpx"), QStringLiteral("kml"),
    QStringLiteral("geojson"), QStringLiteral("xml"), QStringLiteral("txt")};

} // namespace

PlanFiles::PlanFiles(SurveyView& view, QObject* parent)
    : QObject(parent)
    , m_view(view)
    , m_panel(new ZrFilePanel(&view, QString()))
{
    m_panel->hide();
    connect(m_panel, &ZrFilePanel::FileChosen, this, &PlanFiles::Take);
    connect(&view.Model().plan, &ZrPlanDocument::DraftFailed, this, [this](const QString& error) {
        m_view.Warn(tr("The draft of the plan cannot be kept. %1").arg(error));
    });
    connect(&m_worker, &ZrWorker::Finished, this, &PlanFiles::OnFinished);
}

PlanFiles::~PlanFiles()
{
    // That which is under way ends with the worker.
    for (int i = m_worker.IsWorking() ? 1 : 0; i < m_jobs.size(); ++i)
        m_jobs[i].work();
}

void PlanFiles::Run(const std::function<void()>& work, const std::function<void()>& then)
{
    m_jobs.enqueue({work, then});
    StartNext();
}

void PlanFiles::StartNext()
{
    if (!m_worker.IsWorking() && !m_jobs.isEmpty())
        m_worker.Start([work = m_jobs.head().work](IZrProgress& /*progress*/) { work(); }, {});
    Q_EMIT BusyChanged();
}

void PlanFiles::OnFinished()
{
    const Job job = m_jobs.dequeue();
    job.then();
    StartNext();
}

void PlanFiles::Restyle()
{
    m_panel->Restyle();
}

void PlanFiles::Show(eTask task, const QString& title, bool isSaving, const QStringList& suffixes)
{
    m_task = task;
    m_panel->SetPurpose(title);
    m_panel->SetMode(isSaving ? ZrFilePanel::saveFile : ZrFilePanel::openFile);
    m_panel->SetSuffixes(suffixes);
    m_panel->SetFolder(m_view.last_path());
    if (isSaving)
        m_panel->SetFileName(m_view.Model().plan.Name());
    m_panel->Open();
}

void PlanFiles::ShowOpen()
{
    Show(taskOpen, tr("Open a plan"), false, allForms);
}

void PlanFiles::ShowSaveAs()
{
    Show(taskSave, tr("Save the plan"), true, allForms);
}

void PlanFiles::ShowExport()
{
    QStringList forms = allForms;
    forms.move(0, forms.size() - 1);
    Show(taskExport, tr("Export the route"), true, forms);
}

void PlanFiles::ShowAreas()
{
    Show(taskAreas, tr("Read survey areas"), false, allForms);
}

void PlanFiles::Save()
{
    const QString path = m_view.Model().plan.FilePath();
    if (path.isEmpty())
        ShowSaveAs();
    else
        SaveTo(path);
}

void PlanFiles::Take(const QString& path)
{
    m_view.set_last_path(QFileInfo(path).absolutePath());
    switch (m_task) {
    case taskOpen:
        Open(path);
        break;
    case taskSave:
        SaveTo(path);
        break;
    case taskExport:
        Export(path);
        break;
    case taskAreas:
        ReadAreas(path);
        break;
    }
}

void PlanFiles::Export(const QString& path)
{
    struct Export
    {
        ZrPlanState plan;
        bool isDone = false;
        QString error;
        QStringList warnings;
    };

    auto job = std::make_shared<Export>();
    job->plan = m_view.Model().plan.State();
    Run([job, path] { job->isDone = job->plan.Export(path, job->error, job->warnings); },
        [this, job, path] {
            if (!job->isDone)
                m_view.Warn(job->error);
            else if (!job->warnings.isEmpty())
                m_view.Tell(job->warnings.front());
            else
                m_view.Tell(tr("Exported to %1").arg(QFileInfo(path).fileName()));
        });
}

void PlanFiles::SaveTo(const QString& path)
{
    struct Save
    {
        ZrPlanState plan;
        bool isDone = false;
        QString error;
        QStringList warnings;
    };

    auto job = std::make_shared<Save>();
    job->plan = m_view.Model().plan.State();
    Run([job, path] { job->isDone = job->plan.Save(path, job->error, job->warnings); },
        [this, job, path] {
            if (!job->isDone) {
                m_view.Warn(job->error);
                return;
            }
            m_view.Model().plan.SetSaved(path, job->plan);
            const bool hasAreas = !job->plan.areas.empty() || !job->plan.noGo.empty();
            if (!job->warnings.isEmpty())
                m_view.Tell(job->warnings.front());
            else if (hasAreas && QFileInfo(path).suffix().toLower() != allForms.front())
                m_view.Tell(tr("Saved; areas are kept in plans of the form .json alone"));
            else
                m_view.Tell(tr("Saved as %1").arg(QFileInfo(path).fileName()));
        });
}

void PlanFiles::ReadAreas(const QString& path)
{
    auto file = std::make_shared<ZrAreaFile>();
    auto isLoaded = std::make_shared<bool>(false);
    Run([file, isLoaded, path] { *isLoaded = file->Load(path); },
        [this, file, isLoaded] {
            std::vector<ZrArea> areas;
            if (!*isLoaded || !file->Finish(areas)) {
                m_view.Warn(file->Error());
                return;
            }
            ZrPlanDocument& plan = m_view.Model().plan;
            const std::vector<ZrArea> before = plan.Areas();
            std::vector<ZrArea> all = before;
            const int count = static_cast<int>(areas.size());
            all.insert(all.end(), areas.begin(), areas.end());
            plan.SetAreas(std::move(all));
            m_view.Tell(
                tr("Areas read: %1").arg(count), tr("Undo"), [&plan, before] { plan.SetAreas(before); });
            Q_EMIT Opened();
        });
}

/// Offers to bring back what was not saved.
void PlanFiles::TellLost(const QString& text, const ZrPlanState& state, bool wasDirty)
{
    if (!wasDirty) {
        m_view.Tell(text);
        return;
    }
    m_view.Tell(tr("%1; the one before was not saved").arg(text), tr("Undo"), [this, state] {
        m_view.Model().plan.Restore(state);
        Q_EMIT Opened();
    });
}

void PlanFiles::New()
{
    ZrPlanDocument& plan = m_view.Model().plan;
    const bool wasDirty = plan.IsDirty();
    const ZrPlanState before = wasDirty ? plan.State() : ZrPlanState();
    plan.New();
    TellLost(tr("New plan"), before, wasDirty);
    Q_EMIT Opened();
}

void PlanFiles::Open(const QString& path)
{
    auto reader = std::make_shared<ZrPlanReader>();
    Run([reader, path] { reader->Load(path); },
        [this, reader, path] {
            if (!reader->Error().isEmpty()) {
                m_view.Warn(reader->Error());
                return;
            }
            ZrPlanDocument& plan = m_view.Model().plan;
            const bool wasDirty = plan.IsDirty();
            const ZrPlanState before = wasDirty ? plan.State() : ZrPlanState();
            if (!plan.Take(*reader)) {
                m_view.Warn(plan.Error());
                return;
            }
            const QString name = QFileInfo(path).fileName();
            if (wasDirty || plan.Warnings().isEmpty())
                TellLost(tr("%1 opened").arg(name), before, wasDirty);
            else
                m_view.Tell(plan.Warnings().front());
            Q_EMIT Opened();
        });
}

void PlanFiles::RestoreDraft()
{
    ZrPlanDocument& plan = m_view.Model().plan;
    if (!plan.HasDraft())
        return;
    m_isRestoring = true;
    auto reader = std::make_shared<ZrPlanReader>();
    Run([reader, path = plan.DraftPath()] { reader->LoadDraft(path); },
        [this, reader, &plan] {
            m_isRestoring = false;
            m_draftProblem = reader->Error();
            const bool wasDirty = plan.IsDirty(); // it was edited while the draft was read
            const ZrPlanState before = wasDirty ? plan.State() : ZrPlanState();
            if (m_draftProblem.isEmpty()) {
                m_hasRestored = plan.Take(*reader);
                m_draftProblem = plan.Error();
            }
            if (m_hasRestored && wasDirty)
                TellLost(tr("The draft was restored"), before, true);
            if (std::exchange(m_isTellingDue, false))
                TellDraft();
        });
}

void PlanFiles::TellDraft()
{
    if (m_isRestoring) {
        m_isTellingDue = true;
        return;
    }
    if (!m_draftProblem.isEmpty())
        m_view.Warn(tr("The draft of a plan cannot be read. %1").arg(m_draftProblem));
    else if (m_hasRestored && m_view.Model().plan.IsDirty())
        m_view.Tell(tr("This plan was not saved the last time"), tr("Discard"), [this] { New(); });
    m_draftProblem.clear();
    m_hasRestored = false;
}
