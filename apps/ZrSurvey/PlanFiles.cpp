#include "apps/ZrSurvey/PlanFiles.h"

#include "ZrKit/planning/ZrAreaFile.h"
#include "ZrKit/planning/ZrPlanReader.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "apps/ZrSurvey/HomeState.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QDateTime>
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
    , m_worker(std::make_unique<ZrWorker>())
    , m_panel(new ZrFilePanel(&view, QString()))
    , m_kept(new ZrChoicePanel(&view, tr("Unsaved plans")))
{
    m_panel->hide();
    m_kept->hide();
    connect(m_panel, &ZrFilePanel::FileChosen, this, &PlanFiles::Take);
    connect(&view.Model().plan, &ZrPlanDocument::DraftFailed, this, [this](const QString& error) {
        m_view.Warn(tr("The draft of the plan cannot be kept. %1").arg(error));
    });
    connect(m_worker.get(), &ZrWorker::Finished, this, &PlanFiles::OnFinished);
}

PlanFiles::~PlanFiles()
{
    const int begun = m_worker->IsWorking() ? 1 : 0;
    // Waits for what is under way: of two plans that go to one file the later one stays.
    m_worker.reset();
    for (int i = begun; i < m_jobs.size(); ++i)
        m_jobs[i].work();
}

void PlanFiles::Run(const std::function<void()>& work, const std::function<void()>& then)
{
    m_jobs.enqueue({work, then});
    StartNext();
}

void PlanFiles::StartNext()
{
    if (!m_worker->IsWorking() && !m_jobs.isEmpty())
        m_worker->Start([work = m_jobs.head().work](IZrProgress& /*progress*/) { work(); }, {});
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
    m_kept->Restyle();
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

/// The plan as it is now, on its way into a file.
struct PlanFiles::Writing
{
    ZrPlanState plan;
    bool isDone = false;
    QString error;
    QStringList warnings;
    QStringList notHeld;
};

/// \param work in the worker's thread
/// \param then when it is done; a failure is told
void PlanFiles::Write(
    const std::function<void(Writing&)>& work, const std::function<void(const Writing&)>& then)
{
    auto writing = std::make_shared<Writing>();
    writing->plan = m_view.Model().plan.State();
    Run([work, writing] { work(*writing); },
        [this, then, writing] {
            if (writing->isDone)
                then(*writing);
            else
                m_view.Warn(writing->error);
        });
}

void PlanFiles::Export(const QString& path)
{
    const auto write = [path](Writing& out) { out.isDone = out.plan.Export(path, out.error, out.warnings); };
    Write(write, [this, path](const Writing& out) {
        m_view.Tell(out.warnings.isEmpty() ? tr("Exported to %1").arg(QFileInfo(path).fileName())
                                           : out.warnings.front());
    });
}

void PlanFiles::SaveTo(const QString& path)
{
    const auto write = [path](Writing& out) {
        out.isDone = out.plan.Save(path, out.error, out.warnings);
        if (out.isDone)
            out.notHeld = out.plan.NotHeld(path);
    };
    Write(write, [this, path](const Writing& out) {
        const bool isPlan = m_view.Model().plan.SetSaved(path, out.plan, out.notHeld);
        TellSaved(path, isPlan, out.notHeld, out.warnings);
    });
}

/// \param isPlan it is the plan that is open now, and not one before it
void PlanFiles::TellSaved(
    const QString& path, bool isPlan, const QStringList& notHeld, const QStringList& warnings)
{
    const QString name = QFileInfo(path).fileName();
    if (!notHeld.isEmpty()) {
        const QString text = tr("%1 does not hold: %2. A plan of the form .json holds everything")
                                 .arg(name, notHeld.join(QLatin1String(", ")));
        if (isPlan)
            m_view.Tell(text, tr("Save as"), [this] { ShowSaveAs(); });
        else
            m_view.Tell(text);
    } else if (isPlan && !m_view.Model().plan.Sketch().IsEmpty()) {
        m_view.Tell(tr("Saved as %1, without the area that is being drawn").arg(name));
    } else if (!warnings.isEmpty()) {
        m_view.Tell(warnings.front());
    } else {
        m_view.Tell(tr("Saved as %1").arg(name));
    }
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
            m_view.Model().plan.ChangeAreas(tr("Read areas"), [&areas](ZrPlanAreas& all) {
                all.areas.insert(all.areas.end(), areas.begin(), areas.end());
            });
            Q_EMIT Opened();
            Q_EMIT AreasRead(static_cast<int>(areas.size()));
        });
}

bool PlanFiles::HasKept() const
{
    const ZrPlanDrafts* kept = m_view.Model().plan.Kept();
    return kept && !kept->IsEmpty();
}

void PlanFiles::ShowKept()
{
    const ZrPlanDrafts* kept = m_view.Model().plan.Kept();
    if (!kept)
        return;
    auto entries = std::make_shared<std::vector<ZrPlanDrafts::Entry>>();
    Run([entries, folder = kept->Folder()] { *entries = ZrPlanDrafts(folder).List(); },
        [this, entries] { ChooseKept(*entries); });
}

void PlanFiles::ChooseKept(const std::vector<ZrPlanDrafts::Entry>& entries)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    QVector<ZrListItem> items;
    QStringList paths;
    for (const ZrPlanDrafts::Entry& entry : entries) {
        ZrListItem item;
        item.title = entry.name;
        const qint64 seconds = entry.kept.secsTo(now);
        if (entry.kept.isValid())
            item.subtitle = seconds < 60
                ? tr("A moment ago")
                : tr("%1 ago").arg(HomeState::DurationText(static_cast<double>(seconds)));
        if (!entry.content.isEmpty())
            item.subtitle += (item.subtitle.isEmpty() ? QString() : QStringLiteral(" • ")) + entry.content;
        item.image = QImage(QStringLiteral(":/icons/file.png"));
        items.append(item);
        paths.append(entry.path);
    }
    m_kept->SetItems(items, -1);
    m_kept->disconnect(this);
    connect(m_kept, &ZrChoicePanel::Chosen, this, [this, paths](int row) { RestoreKept(paths[row]); });
    m_kept->Open();
}

void PlanFiles::RestoreKept(const QString& path)
{
    auto reader = std::make_shared<ZrPlanReader>();
    Run([reader, path] { reader->LoadDraft(path); },
        [this, reader] {
            ZrPlanDocument& plan = m_view.Model().plan;
            const auto before = Unsaved();
            if (!plan.Take(*reader)) {
                m_view.Warn(plan.Error());
                return;
            }
            Q_EMIT Opened();
            TellLost(tr("%1 is back").arg(plan.Name()), before);
        });
}

/// The plan as it is now; null when it is saved.
std::shared_ptr<const ZrPlanState> PlanFiles::Unsaved() const
{
    const ZrPlanDocument& plan = m_view.Model().plan;
    return plan.IsDirty() ? std::make_shared<const ZrPlanState>(plan.State()) : nullptr;
}

/// Offers to bring back what was not saved.
/// \param before the plan that was there; null when it was saved
void PlanFiles::TellLost(const QString& text, const std::shared_ptr<const ZrPlanState>& before)
{
    if (!before) {
        m_view.Tell(text);
        return;
    }
    const QString kept = m_view.Model().plan.KeptPath();
    const QString told = kept.isEmpty() ? tr("%1; the one before was not saved").arg(text)
                                        : tr("%1; the one before was not saved and is under More").arg(text);
    m_view.Tell(told, tr("Undo"), [this, before, kept] {
        ZrPlanDocument& plan = m_view.Model().plan;
        if (!plan.Restore(*before, kept))
            m_view.Warn(plan.Error());
        Q_EMIT Opened();
    });
}

void PlanFiles::New()
{
    ZrPlanDocument& plan = m_view.Model().plan;
    const auto before = Unsaved();
    if (!plan.New()) {
        m_view.Warn(plan.Error());
        return;
    }
    Q_EMIT Opened();
    TellLost(tr("New plan"), before);
}

void PlanFiles::Open(const QString& path)
{
    auto reader = std::make_shared<ZrPlanReader>();
    Run([reader, path] { reader->Load(path); },
        [this, reader, path] {
            ZrPlanDocument& plan = m_view.Model().plan;
            const auto before = Unsaved();
            if (!plan.Take(*reader)) {
                m_view.Warn(plan.Error());
                return;
            }
            Q_EMIT Opened();
            if (!before && !plan.Warnings().isEmpty())
                m_view.Tell(plan.Warnings().front());
            else
                TellLost(tr("%1 opened").arg(QFileInfo(path).fileName()), before);
        });
}

void PlanFiles::RestoreDraft()
{
    const QString path = m_view.Model().plan.ForeignPath();
    if (path.isEmpty())
        return;
    m_isRestoring = true;
    ReadDraft(path);
}

void PlanFiles::ReadDraft(const QString& path)
{
    auto reader = std::make_shared<ZrPlanReader>();
    // Before what was asked for meanwhile: a file that is opened stays open.
    m_jobs.prepend({[reader, path] { reader->LoadDraft(path); },
        [this, reader, path] {
            // An edit may have needed its place, before it was read or after.
            const QString now = m_view.Model().plan.ForeignPath();
            if (now == path)
                TakeDraft(*reader);
            else if (!now.isEmpty())
                ReadDraft(now);
            else
                EndRestoring();
        }});
    StartNext();
}

void PlanFiles::TakeDraft(ZrPlanReader& reader)
{
    m_isRestoring = false;
    const auto before = Unsaved(); // it was edited while the draft was read
    m_hasRestored = m_view.Model().plan.Take(reader);
    if (!m_hasRestored)
        TellUnread(reader.Error());
    else if (before)
        Q_EMIT Opened();
    else
        Q_EMIT Restored();
    if (m_hasRestored && before)
        TellLost(tr("The draft was restored"), before);
    EndRestoring();
}

void PlanFiles::EndRestoring()
{
    m_isRestoring = false;
    if (std::exchange(m_isTellingDue, false))
        TellDraft();
}

/// \param error of the reader; empty when the plan that is there could not be kept
void PlanFiles::TellUnread(const QString& error)
{
    const ZrPlanDocument& plan = m_view.Model().plan;
    m_draftProblem = error.isEmpty()
        ? plan.Error()
        : tr("The draft of a plan cannot be read. %1.").arg(error) + QLatin1Char(' ')
            + (plan.AsidePath().isEmpty() ? tr("It cannot be set aside, so that no draft is kept now.")
                                          : tr("It is kept as %1.").arg(plan.AsidePath()));
    // Whether or not the page is opened this time.
    m_view.Warn(m_draftProblem);
}

void PlanFiles::TellDraft()
{
    if (m_isRestoring) {
        m_isTellingDue = true;
        return;
    }
    if (!m_draftProblem.isEmpty())
        m_view.Warn(m_draftProblem);
    else if (m_hasRestored && m_view.Model().plan.IsDirty())
        m_view.Tell(tr("This plan was not saved the last time"), tr("Discard"), [this] { New(); });
    m_draftProblem.clear();
    m_hasRestored = false;
}
