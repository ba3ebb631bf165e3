// Areas on the page "Plan": drawn, edited and deleted.

#include "ZrUtil/ZrBtn.h"
#include "apps/ZrSurvey/PlanPage.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

void PlanPage::KeepSketch()
{
    ZrPlanSketch sketch;
    sketch.ring = m_drawing.Ring();
    sketch.isNoGo = m_keepClear->on;
    sketch.edited = m_editedArea;
    sketch.isEditedNoGo = m_editedArea >= 0 && m_isEditedNoGo;
    Plan().SetSketch(sketch);
}

void PlanPage::TakeSketch()
{
    const ZrPlanSketch sketch = Plan().Sketch();
    if (sketch.IsEmpty())
        return;
    SetMode(modeArea);
    const auto& areas = AreasOf(sketch.isEditedNoGo);
    m_editedArea = sketch.edited < static_cast<int>(areas.size()) ? sketch.edited : -1;
    m_isEditedNoGo = sketch.isEditedNoGo;
    m_keepClear->on = sketch.isNoGo;
    m_drawing.SetRing(sketch.ring);
    ShowState();
}

void PlanPage::RemoveLastCorner()
{
    m_drawing.RemoveLast();
    KeepSketch();
    ShowState();
}

bool PlanPage::UndoCorner()
{
    if (m_mode != modeArea)
        return false;
    if (m_drawing.CanUndo())
        m_drawing.Undo();
    else if (m_editedArea < 0 && !m_drawing.Ring().empty())
        m_drawing.RemoveLast(); // drawn before the program was started
    else
        return false;
    KeepSketch();
    ShowState();
    return true;
}

bool PlanPage::RedoCorner()
{
    if (m_mode != modeArea || !m_drawing.CanRedo())
        return false;
    m_drawing.Redo();
    KeepSketch();
    ShowState();
    return true;
}

/// The areas may be others afterwards, so that its index is no longer good.
void PlanPage::LeaveCorners()
{
    if (m_mode == modeArea && m_editedArea >= 0)
        SetMode(modeBrowse);
}

/// What has been drawn becomes an area of the plan.
void PlanPage::FinishArea()
{
    KeepSketch();
    const ZrPlanSketch sketch = Plan().Sketch();
    if (Plan().FinishSketch() || sketch.IsEmpty())
        return;
    const int revision = Plan().Revision();
    View().Tell(tr("An area has three corners or more"), tr("Undo"), [this, sketch, revision] {
        if (revision != Plan().Revision() || m_mode == modeArea)
            return;
        Plan().SetSketch(sketch);
        TakeSketch();
    });
}

void PlanPage::ShowNoGo()
{
    KeepSketch();
    m_drawing.Build(m_keepClear->on);
    m_keepClear->update();
    Changed();
}

void PlanPage::EditArea()
{
    const bool isNoGo = m_isNoGo;
    const int index = m_area;
    const auto& areas = AreasOf(isNoGo);
    if (index < 0 || index >= static_cast<int>(areas.size()))
        return;
    const std::vector<ZrGeoPoint> ring = areas[static_cast<std::size_t>(index)].ring;
    SetMode(modeArea);
    m_editedArea = index;
    m_isEditedNoGo = isNoGo;
    m_keepClear->on = isNoGo;
    m_drawing.SetRing(ring);
    ShowState();
}

void PlanPage::DeleteArea()
{
    const auto& areas = AreasOf(m_isNoGo);
    if (m_area < 0 || m_area >= static_cast<int>(areas.size()))
        return;
    const QString name = areas[static_cast<std::size_t>(m_area)].name;
    Plan().DeleteArea(m_area, m_isNoGo);
    Select(-1);
    TellUndo(tr("%1 deleted").arg(name));
}
