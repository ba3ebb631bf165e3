#include "ZrKit/planning/ZrPlanDocument.h"

#include "ZrKit/planning/ZrPlanReader.h"
#include "ZrKit/planning/ZrRouteSettings.h"
#include "ZrUtil/ZrWpt.h"

#include <QTimer>

#include <cmath>
#include <utility>

ZrPlanDocument::ZrPlanDocument(const QString& draftPath, QObject* parent)
    : ZrPlanDocument(draftPath, QString(), parent)
{
}

ZrPlanDocument::ZrPlanDocument(const QString& draftPath, const QString& keptFolder, QObject* parent)
    : QObject(parent)
    , m_history(m_route, m_areas)
    , m_draft(draftPath)
    , m_kept(keptFolder.isEmpty() ? nullptr : std::make_unique<ZrPlanDrafts>(keptFolder))
    , m_draftTimer(new QTimer(this))
{
    m_route.linked = true;
    m_history.Reset();
    m_isForeign = HasDraft();
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

void ZrPlanDocument::ChangeAreas(const QString& name, const std::function<void(ZrPlanAreas&)>& edit)
{
    if (m_history.ChangeAreas(name, edit))
        Edited();
}

void ZrPlanDocument::SetAreas(std::vector<ZrArea> areas)
{
    ChangeAreas(tr("Change areas"), [&areas](ZrPlanAreas& all) { all.areas = std::move(areas); });
}

void ZrPlanDocument::SetNoGo(std::vector<ZrArea> areas)
{
    ChangeAreas(tr("Change no-go areas"), [&areas](ZrPlanAreas& all) { all.noGo = std::move(areas); });
}

void ZrPlanDocument::SetMargin(double metres)
{
    if (std::isfinite(metres))
        ChangeAreas(
            tr("Change distance to no-go areas"), [metres](ZrPlanAreas& all) { all.margin = metres; });
}

bool ZrPlanDocument::Undo()
{
    if (!m_history.Undo())
        return false;
    Edited();
    return true;
}

bool ZrPlanDocument::Redo()
{
    if (!m_history.Redo())
        return false;
    Edited();
    return true;
}

void ZrPlanDocument::SetSketch(const ZrPlanSketch& sketch)
{
    if (sketch == m_sketch)
        return;
    m_sketch = sketch;
    MatchDraft();
}

bool ZrPlanDocument::FinishSketch()
{
    const ZrPlanSketch sketch = std::exchange(m_sketch, ZrPlanSketch());
    const int revision = m_revision;
    const auto finish = [this, &sketch](ZrPlanAreas& all) {
        auto& from = sketch.isEditedNoGo ? all.noGo : all.areas;
        auto& to = sketch.isNoGo ? all.noGo : all.areas;
        const bool isKnown = sketch.edited >= 0 && sketch.edited < static_cast<int>(from.size());
        if (isKnown && &from == &to) {
            from[static_cast<std::size_t>(sketch.edited)].ring = sketch.ring;
            return;
        }
        ZrArea area;
        if (isKnown) {
            area = from[static_cast<std::size_t>(sketch.edited)];
            from.erase(from.begin() + sketch.edited);
        }
        area.ring = sketch.ring;
        if (area.name.isEmpty())
            area.name = (sketch.isNoGo ? tr("Keep clear %1") : tr("Area %1")).arg(to.size() + 1);
        to.push_back(std::move(area));
    };
    const bool isArea = sketch.ring.size() >= 3;
    if (isArea)
        ChangeAreas(sketch.edited >= 0 ? tr("Change area") : tr("Draw area"), finish);
    if (revision == m_revision && !sketch.IsEmpty())
        MatchDraft();
    return isArea;
}

void ZrPlanDocument::DeleteArea(int index, bool isNoGo)
{
    const std::vector<ZrArea>& of = isNoGo ? m_areas.noGo : m_areas.areas;
    if (index < 0 || index >= static_cast<int>(of.size()))
        return;
    ChangeAreas(
        tr("Delete %1").arg(of[static_cast<std::size_t>(index)].name), [index, isNoGo](ZrPlanAreas& all) {
            auto& from = isNoGo ? all.noGo : all.areas;
            from.erase(from.begin() + index);
        });
}

void ZrPlanDocument::Edited()
{
    Forget();
    ++m_revision;
    MatchDraft();
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
        options.noGo = m_areas.noGo;
        options.margin = m_areas.margin;
        m_findings = std::make_unique<std::vector<ZrRouteFinding>>(ZrRouteCheck::Run(m_route, options));
    }
    return *m_findings;
}

int ZrPlanDocument::LinesOf(const ZrWpts& route)
{
    int count = 0;
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        count += route.GetNext(pos)->name.endsWith(QLatin1String(" S")) ? 1 : 0;
    return count;
}

QString ZrPlanDocument::Name() const
{
    return ZrPlanDrafts::NameOf(m_path);
}

bool ZrPlanDocument::IsEmpty() const
{
    return m_route.IsEmpty() && m_areas.IsEmpty() && m_sketch.IsEmpty();
}

bool ZrPlanDocument::IsDirty() const
{
    return m_isLoose || !m_sketch.IsEmpty() || !m_history.IsClean();
}

bool ZrPlanDocument::New()
{
    m_error.clear();
    if (!KeepUnsaved())
        return false;
    ZrPlanState empty;
    empty.route.linked = true;
    Put(empty);
    m_path.clear();
    m_isLoose = false;
    RemoveDraft();
    Q_EMIT Changed();
    return true;
}

bool ZrPlanDocument::Open(const QString& path)
{
    ZrPlanReader reader;
    reader.Load(path);
    return Take(reader);
}

bool ZrPlanDocument::Take(ZrPlanReader& reader)
{
    m_error.clear();
    m_warnings = reader.Warnings();
    const QString moved = reader.m_isDraft && reader.m_path == m_foreignPath
        ? std::exchange(m_foreignPath, QString())
        : QString();
    // It is there as it was read, and need not be written.
    const bool isDrafted
        = reader.m_isDraft && reader.m_path == m_draft.Path() && std::exchange(m_isForeign, false);
    if (!std::exchange(reader.m_isLoaded, false)) {
        if (isDrafted)
            PutAside();
        return Fail(
            reader.Error().isEmpty() ? tr("%1: nothing was read").arg(reader.m_path) : reader.Error());
    }
    if (!KeepUnsaved(reader.m_path)) {
        m_isForeign = isDrafted;
        m_foreignPath = moved.isEmpty() ? m_foreignPath : moved;
        reader.m_isLoaded = true;
        return false;
    }
    ZrPlanState& state = reader.m_state;
    ZrRouteSettings::ReadPresets(state.head);
    state.route.UpdatePseudo();
    state.route.Recalc(true);
    if (!reader.m_isDraft) {
        Put(state);
        m_path = state.path;
        m_isLoose = false;
        RemoveDraft();
        Q_EMIT Changed();
    } else if (isDrafted) {
        // What was not saved then is not saved now.
        Put(state);
        m_path = state.path;
        m_isLoose = true;
        m_written = std::make_shared<const QByteArray>(reader.m_bytes);
        Q_EMIT Changed();
    } else {
        PutUnsaved(state, reader.m_path);
    }
    return true;
}

/// All but the file; whatever was kept stays there.
void ZrPlanDocument::Put(const ZrPlanState& state)
{
    m_route = state.route;
    m_areas = state.areas;
    m_sketch = state.sketch;
    m_history.Reset();
    m_notHeld.clear();
    m_written.reset();
    m_returned.clear();
    ++m_revision;
    ++m_plan;
    Forget();
}

/// \param kept where the plan was kept; a path of anything else, or none, is none of that
void ZrPlanDocument::PutUnsaved(const ZrPlanState& state, const QString& kept)
{
    Put(state);
    m_path = state.path;
    m_isLoose = true;
    m_returned = kept;
    WriteDraft();
    Q_EMIT Changed();
}

ZrPlanState ZrPlanDocument::State() const
{
    ZrPlanState state;
    state.route = m_route;
    state.head = ZrRouteSettings::Head(m_route);
    state.areas = m_areas;
    state.sketch = m_sketch;
    state.path = m_path;
    state.revision = m_revision;
    state.plan = m_plan;
    return state;
}

bool ZrPlanDocument::Restore(const ZrPlanState& state, const QString& kept)
{
    m_error.clear();
    if (!KeepUnsaved(kept))
        return false;
    ZrRouteSettings::ReadPresets(state.head);
    PutUnsaved(state, kept);
    return true;
}

bool ZrPlanDocument::SetSaved(const QString& path, const ZrPlanState& state, const QStringList& notHeld)
{
    if (state.plan != m_plan)
        return false;
    m_path = path;
    m_notHeld = notHeld;
    const bool isWhole = notHeld.isEmpty() && state.revision == m_revision;
    m_isLoose = !isWhole;
    if (isWhole)
        m_history.SetClean();
    if (IsDirty())
        WriteDraft();
    else
        RemoveDraft();
    Q_EMIT Changed();
    return true;
}

bool ZrPlanDocument::Save(const QString& path)
{
    const ZrPlanState state = State();
    m_error.clear();
    m_warnings.clear();
    return state.Save(path, m_error, m_warnings) && SetSaved(path, state, state.NotHeld(path));
}

bool ZrPlanDocument::Export(const QString& path)
{
    m_error.clear();
    m_warnings.clear();
    return State().Export(path, m_error, m_warnings);
}

bool ZrPlanDocument::Fail(const QString& error)
{
    m_error = error;
    return false;
}
