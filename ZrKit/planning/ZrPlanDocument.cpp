#include "ZrKit/planning/ZrPlanDocument.h"

#include "ZrKit/planning/ZrPlanReader.h"
#include "ZrKit/planning/ZrRouteSettings.h"
#include "ZrUtil/ZrWpt.h"

#include <QFileInfo>
#include <QTimer>

#include <cmath>
#include <utility>

ZrPlanDocument::ZrPlanDocument(const QString& draftPath, QObject* parent)
    : QObject(parent)
    , m_history(m_route)
    , m_draft(draftPath)
    , m_draftTimer(new QTimer(this))
{
    m_route.linked = true;
    m_history.Reset();
    m_draftTimer->setSingleShot(true);
    connect(&m_draft, &ZrFileKeeper::Done, this, &ZrPlanDocument::OnDraftDone);
    connect(m_draftTimer, &QTimer::timeout, this, [this] {
        if (m_isDraftDue)
            WriteDraft();
    });
}

ZrPlanDocument::~ZrPlanDocument()
{
    FlushDraft();
}

void ZrPlanDocument::SetAreas(std::vector<ZrArea> areas)
{
    m_areas = std::move(areas);
    m_areasEdited = true;
    Edited();
}

void ZrPlanDocument::SetNoGo(std::vector<ZrArea> areas)
{
    m_noGo = std::move(areas);
    m_areasEdited = true;
    Edited();
}

void ZrPlanDocument::SetMargin(double metres)
{
    if (!std::isfinite(metres) || metres == m_margin)
        return;
    m_margin = metres;
    m_areasEdited = true;
    Edited();
}

void ZrPlanDocument::Edited()
{
    Forget();
    ++m_edits;
    if (!m_isDraftDue)
        m_draftWait.start();
    m_isDraftDue = true;
    if (!m_draftTimer->isActive() || m_draftWait.elapsed() >= DraftMostMilliseconds)
        WriteDraft();
    m_draftTimer->start(DraftMilliseconds);
    Q_EMIT Changed();
}

void ZrPlanDocument::Forget()
{
    m_pathway.reset();
    m_findings.reset();
}

const ZrRoutePath& ZrPlanDocument::Path()
{
    if (!m_pathway)
        m_pathway = std::make_unique<ZrRoutePath>(m_route);
    return *m_pathway;
}

const std::vector<ZrRouteFinding>& ZrPlanDocument::Findings()
{
    if (!m_findings) {
        ZrRouteCheck::Options options;
        options.noGo = m_noGo;
        options.margin = m_margin;
        m_findings = std::make_unique<std::vector<ZrRouteFinding>>(ZrRouteCheck::Run(m_route, options));
    }
    return *m_findings;
}

int ZrPlanDocument::LineCount() const
{
    int count = 0;
    for (ZrListPos* pos = m_route.GetHeadPos(); pos;)
        count += m_route.GetNext(pos)->name.endsWith(QLatin1String(" S")) ? 1 : 0;
    return count;
}

QString ZrPlanDocument::Name() const
{
    return m_path.isEmpty() ? tr("New plan") : QFileInfo(m_path).completeBaseName();
}

bool ZrPlanDocument::IsDirty() const
{
    return m_areasEdited || !m_history.IsClean();
}

void ZrPlanDocument::SetPath(const QString& path)
{
    m_path = path;
    m_history.SetClean();
    m_areasEdited = false;
    DiscardDraft();
    Q_EMIT Changed();
}

void ZrPlanDocument::New()
{
    m_route = ZrWpts();
    m_route.linked = true;
    m_history.Reset();
    m_areas.clear();
    m_noGo.clear();
    m_margin = 0.0;
    ++m_edits;
    ++m_plan;
    Forget();
    SetPath(QString());
}

bool ZrPlanDocument::Open(const QString& path)
{
    ZrPlanReader reader;
    const bool isLoaded = reader.Load(path);
    m_warnings = reader.Warnings();
    return isLoaded ? Take(reader) : Fail(reader.Error());
}

bool ZrPlanDocument::Take(ZrPlanReader& reader)
{
    m_error.clear();
    ZrPlanState state;
    const bool isFinished = reader.Finish(state);
    m_warnings = reader.Warnings();
    if (!isFinished)
        return Fail(reader.Error());
    Put(state);
    if (reader.m_isDraft) {
        // What was not saved then is not saved now.
        m_path = state.path;
        m_areasEdited = true;
        Q_EMIT Changed();
    } else {
        SetPath(state.path);
    }
    return true;
}

/// All but the file.
void ZrPlanDocument::Put(const ZrPlanState& state)
{
    m_route = state.route;
    m_history.Reset();
    m_areas = state.areas;
    m_noGo = state.noGo;
    m_margin = state.margin;
    ++m_edits;
    ++m_plan;
    Forget();
}

ZrPlanState ZrPlanDocument::State() const
{
    ZrPlanState state;
    state.route = m_route;
    state.head = ZrRouteSettings::Head(m_route);
    state.areas = m_areas;
    state.noGo = m_noGo;
    state.margin = m_margin;
    state.path = m_path;
    state.edits = m_edits;
    state.plan = m_plan;
    return state;
}

void ZrPlanDocument::Restore(const ZrPlanState& state)
{
    ZrRouteSettings::ReadPresets(state.head);
    Put(state);
    m_path = state.path;
    m_areasEdited = true;
    WriteDraft();
    Q_EMIT Changed();
}

void ZrPlanDocument::SetSaved(const QString& path, const ZrPlanState& state)
{
    if (state.plan != m_plan)
        return;
    if (state.edits == m_edits) {
        SetPath(path);
        return;
    }
    m_path = path;
    m_areasEdited = true;
    Q_EMIT Changed();
}

bool ZrPlanDocument::Save(const QString& path)
{
    const ZrPlanState state = State();
    m_error.clear();
    m_warnings.clear();
    if (!state.Save(path, m_error, m_warnings))
        return false;
    SetSaved(path, state);
    return true;
}

bool ZrPlanDocument::Export(const QString& path)
{
    m_error.clear();
    m_warnings.clear();
    return State().Export(path, m_error, m_warnings);
}

bool ZrPlanDocument::HasDraft() const
{
    return !m_draft.Path().isEmpty() && m_draft.IsThere();
}

bool ZrPlanDocument::RestoreDraft()
{
    m_error.clear();
    if (!HasDraft())
        return Fail(tr("There is no draft"));
    m_draft.Finish();
    ZrPlanReader reader;
    return reader.LoadDraft(m_draft.Path()) ? Take(reader) : Fail(reader.Error());
}

void ZrPlanDocument::DiscardDraft()
{
    m_isDraftDue = false;
    if (HasDraft())
        m_draft.Remove();
}

void ZrPlanDocument::FlushDraft()
{
    if (m_isDraftDue)
        WriteDraft();
    m_draft.Finish();
}

void ZrPlanDocument::WriteDraft()
{
    m_isDraftDue = false;
    if (m_draft.Path().isEmpty())
        return;
    m_draft.Write([state = std::make_shared<const ZrPlanState>(State())] { return state->ToDraft(); });
}

void ZrPlanDocument::OnDraftDone(const QString& error)
{
    const bool isWritten = error.isEmpty();
    if (!isWritten && !m_hasDraftFailed)
        Q_EMIT DraftFailed(error);
    m_hasDraftFailed = !isWritten;
}

bool ZrPlanDocument::Fail(const QString& error)
{
    m_error = error;
    return false;
}
