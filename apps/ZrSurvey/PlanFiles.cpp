#include "apps/ZrSurvey/PlanFiles.h"

#include "ZrKit/planning/ZrAreaFile.h"
#include "ZrKit/planning/ZrPlanReview.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFileInfo>

#include <utility>

namespace {

/// Every form that plans are read from; the first one keeps areas as well.
const QStringList allForms{QStringLiteral("json"), QStringLiteral("gpx"), QStringLiteral("kml"),
    QStringLiteral("geojson"), QStringLiteral("xml"), QStringLiteral("txt")};

} // namespace

PlanFiles::PlanFiles(SurveyView& view, ZrPlanReview& review, QObject* parent)
    : QObject(parent)
    , m_view(view)
    , m_review(review)
    , m_panel(new ZrFilePanel(&view, QString()))
{
    m_panel->hide();
    connect(m_panel, &ZrFilePanel::FileChosen, this, &PlanFiles::Take);
    connect(&view.Model().plan, &ZrPlanDocument::DraftFailed, this, [this](const QString& error) {
        m_view.Warn(tr("The draft of the plan cannot be kept. %1").arg(error));
    });
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
    ZrPlanDocument& plan = m_view.Model().plan;
    switch (m_task) {
    case taskOpen:
        Open(path);
        break;
    case taskSave:
        SaveTo(path);
        break;
    case taskExport:
        if (!plan.Export(path))
            m_view.Warn(plan.Error());
        else if (!plan.Warnings().isEmpty())
            m_view.Tell(plan.Warnings().front());
        else
            m_view.Tell(tr("Exported to %1").arg(QFileInfo(path).fileName()));
        break;
    case taskAreas:
        ReadAreas(path);
        break;
    }
}

bool PlanFiles::SaveTo(const QString& path)
{
    ZrPlanDocument& plan = m_view.Model().plan;
    const bool hasAreas = !plan.Areas().empty() || !plan.NoGo().empty();
    if (!plan.Save(path)) {
        m_view.Warn(plan.Error());
        return false;
    }
    if (!plan.Warnings().isEmpty())
        m_view.Tell(plan.Warnings().front());
    else if (hasAreas && QFileInfo(path).suffix().toLower() != allForms.front())
        m_view.Tell(tr("Saved; areas are kept in plans of the form .json alone"));
    else
        m_view.Tell(tr("Saved as %1").arg(QFileInfo(path).fileName()));
    return true;
}

void PlanFiles::ReadAreas(const QString& path)
{
    ZrAreaFile file;
    std::vector<ZrArea> areas;
    m_review.Wait();
    if (!file.Read(path, areas)) {
        m_view.Warn(file.Error());
        return;
    }
    ZrPlanDocument& plan = m_view.Model().plan;
    const std::vector<ZrArea> before = plan.Areas();
    std::vector<ZrArea> all = before;
    const int count = static_cast<int>(areas.size());
    all.insert(all.end(), areas.begin(), areas.end());
    plan.SetAreas(std::move(all));
    m_view.Tell(tr("Areas read: %1").arg(count), tr("Undo"), [&plan, before] { plan.SetAreas(before); });
    Q_EMIT Opened();
}

/// Offers to bring back what was not saved.
void PlanFiles::TellLost(const QString& text, const QByteArray& state, bool wasDirty)
{
    if (!wasDirty) {
        m_view.Tell(text);
        return;
    }
    m_view.Tell(tr("%1; the one before was not saved").arg(text), tr("Undo"), [this, state] {
        m_review.Wait();
        m_view.Model().plan.SetState(state);
        Q_EMIT Opened();
    });
}

void PlanFiles::New()
{
    ZrPlanDocument& plan = m_view.Model().plan;
    const bool wasDirty = plan.IsDirty();
    const QByteArray before = wasDirty ? plan.State() : QByteArray();
    plan.New();
    TellLost(tr("New plan"), before, wasDirty);
    Q_EMIT Opened();
}

bool PlanFiles::Open(const QString& path)
{
    ZrPlanDocument& plan = m_view.Model().plan;
    const bool wasDirty = plan.IsDirty();
    const QByteArray before = wasDirty ? plan.State() : QByteArray();
    m_review.Wait();
    if (!plan.Open(path)) {
        m_view.Warn(plan.Error());
        return false;
    }
    const QString name = QFileInfo(path).fileName();
    if (wasDirty || plan.Warnings().isEmpty())
        TellLost(tr("%1 opened").arg(name), before, wasDirty);
    else
        m_view.Tell(plan.Warnings().front());
    Q_EMIT Opened();
    return true;
}

void PlanFiles::RestoreDraft()
{
    ZrPlanDocument& plan = m_view.Model().plan;
    if (!plan.HasDraft())
        return;
    m_review.Wait();
    m_hasRestored = plan.RestoreDraft();
    if (!m_hasRestored)
        m_draftProblem = plan.Error();
}

void PlanFiles::TellDraft()
{
    if (!m_draftProblem.isEmpty())
        m_view.Warn(tr("The draft of a plan cannot be read. %1").arg(m_draftProblem));
    else if (m_hasRestored && m_view.Model().plan.IsDirty())
        m_view.Tell(tr("This plan was not saved the last time"), tr("Discard"), [this] { New(); });
    m_draftProblem.clear();
    m_hasRestored = false;
}
