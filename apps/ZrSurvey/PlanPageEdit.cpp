// What the user does to the plan on the page "Plan".

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/PlanFiles.h"
#include "apps/ZrSurvey/PlanPage.h"
#include "apps/ZrSurvey/PlanPatternPanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace {

/// About a finger's tip, design pixels.
constexpr float touchRadius = 32.0F;

/// Of the head of a pin, pixels: what it points to is touched beside it.
double PinRadius()
{
    return static_cast<double>(std::max(ZrTheme::DpF(22.0F), 22.0F));
}

} // namespace

ZrPlanDocument& PlanPage::Plan() const
{
    return View().Model().plan;
}

ZrWpt* PlanPage::Waypoint(int index) const
{
    const ZrWpts& route = Plan().Route();
    return index < 0 ? nullptr : route.GetAt(route.FindIndex(index));
}

int PlanPage::IndexOf(const QUuid& waypoint) const
{
    int index = 0;
    for (ZrListPos* pos = waypoint.isNull() ? nullptr : Plan().Route().GetHeadPos(); pos; ++index) {
        if (Plan().Route().GetNext(pos)->uuid == waypoint)
            return index;
    }
    return -1;
}

const std::vector<ZrArea>& PlanPage::AreasOf(bool isNoGo) const
{
    return isNoGo ? Plan().NoGo() : Plan().Areas();
}

double PlanPage::TouchRadius() const
{
    return static_cast<double>(ZrTheme::DpF(touchRadius)) * devicePixelRatioF();
}

QPointF PlanPage::Crosshair() const
{
    return m_map.m_camera.Centre();
}

void PlanPage::CentreOn(ZrGeoPoint place)
{
    if (!place.IsValid())
        return;
    m_map.m_camera.SetCentre(m_chart.ToWorld(place));
    m_panel->Moved();
}

void PlanPage::OpenPlan(const QString& path)
{
    m_files->Open(path);
}

void PlanPage::Zoom(double factor)
{
    ZrMapView& camera = m_map.m_camera;
    camera.ZoomAbout({camera.Width() / 2.0, camera.Height() / 2.0}, factor);
    m_panel->Moved();
}

void PlanPage::SavePlan(bool asksForFile)
{
    // What is an area already is saved with the plan.
    if (m_mode == modeArea && m_drawing.Ring().size() >= 3)
        SetMode(modeBrowse);
    if (asksForFile)
        m_files->ShowSaveAs();
    else
        m_files->Save();
}

void PlanPage::SetMode(eMode mode)
{
    if (m_mode == modeArea && mode != modeArea)
        FinishArea();
    m_drawing.Clear();
    m_editedArea = -1;
    m_isEditedNoGo = false;
    m_keepClear->on = false;
    m_mode = mode;
    m_isPreview = false;
    m_patternPlan = -1;
    m_chart.SetFaint(mode == modePattern);
    if (mode != modeBrowse) {
        LeaveLeg();
        m_area = -1;
    }
    ShowSide(m_side);
    Refresh();
}

void PlanPage::Select(int waypoint, int leg, int area, bool isNoGo)
{
    const ZrWpt* wpt = Waypoint(waypoint);
    m_selectedId = wpt ? wpt->uuid : QUuid();
    m_selected = wpt ? waypoint : -1;
    m_legEnds = leg < 0 ? ZrLegEnds() : ZrLegEnds::Of(Path().Legs(), WayIds(), leg);
    m_area = area;
    m_isNoGo = isNoGo;
    const auto& areas = AreasOf(isNoGo);
    const bool isArea = area >= 0 && area < static_cast<int>(areas.size());
    m_selectedArea = isArea ? areas[static_cast<std::size_t>(area)] : ZrArea();
    MatchSelection();
    m_chart.SetSelected(m_selected, m_leg);
    ShowState();
}

void PlanPage::LeaveLeg()
{
    m_legEnds = {};
    m_leg = -1;
}

void PlanPage::OnTapped(const QPointF& world, const QPointF& pixel)
{
    Refresh();
    const ZrMapView& camera = m_map.m_camera;
    if (m_grid.NorthArrowRect(camera, m_map.m_pixelFactor).contains(pixel)) {
        m_map.m_camera.SetRotation(0.0);
        m_panel->Moved();
        return;
    }
    if (m_mode == modeAdd || m_mode == modeArea) {
        AddHere(world);
        return;
    }
    if (m_mode == modePattern)
        return;
    const ZrPlanChart::Pin pin = m_chart.PinAt(camera, pixel, PinRadius() * devicePixelRatioF());
    if (!pin.findings.empty()) {
        ChoosePin(pin);
        return;
    }
    const int waypoint = m_chart.WaypointAt(camera, pixel, TouchRadius());
    if (waypoint >= 0) {
        Select(waypoint);
        return;
    }
    QPointF foot;
    const int leg = m_chart.LegAt(camera, pixel, TouchRadius() / 2.0, &foot);
    if (leg >= 0) {
        m_legFoot = m_chart.ToGeo(foot);
        Select(-1, leg);
        return;
    }
    const int noGo = m_chart.AreaAt(world, true);
    Select(-1, -1, noGo >= 0 ? noGo : m_chart.AreaAt(world, false), noGo >= 0);
}

/// A finger takes the selected waypoint along, or a corner that is being drawn; on anything else it moves the
/// map, so that no pan moves a mark.
bool PlanPage::Claims(const QPointF& pixel)
{
    if (m_mode == modeArea) {
        m_corner = m_drawing.CornerAt(m_map.m_camera, pixel, TouchRadius());
        if (m_corner < 0)
            return false;
        m_dragStart = m_drawing.Ring()[static_cast<std::size_t>(m_corner)];
    } else if (m_mode == modeBrowse) {
        Refresh();
        const ZrWpt* wpt = Waypoint(m_selected);
        if (!wpt)
            return false;
        const QPointF way = m_map.m_camera.ToPixel(m_chart.ToWorld({wpt->lat, wpt->lng})) - pixel;
        if (std::hypot(way.x(), way.y()) > TouchRadius())
            return false;
        m_dragStart = {wpt->lat, wpt->lng};
    } else {
        return false;
    }
    m_grab = m_chart.ToWorld(m_dragStart) - m_map.m_camera.ToWorld(pixel);
    return true;
}

void PlanPage::OnDragged(int drag, const QPointF& world)
{
    if (drag == ZrMapPanel::dragBegin)
        return;
    const bool isBack = drag == ZrMapPanel::dragCancel;
    const ZrGeoPoint to = isBack ? m_dragStart : m_chart.ToGeo(world + m_grab);
    if (m_mode == modeArea) {
        if (drag != ZrMapPanel::dragEnd)
            m_drawing.Move(m_corner, to);
        if (drag != ZrMapPanel::dragMove)
            m_drawing.CloseMove();
        KeepSketch();
        if (drag == ZrMapPanel::dragMove) {
            m_drawing.Build(m_keepClear->on);
            Changed();
        } else {
            ShowState();
        }
        return;
    }
    ZrWpt* wpt = Waypoint(m_selected);
    if (!wpt)
        return;
    ZrRouteHistory& history = Plan().History();
    if (drag != ZrMapPanel::dragEnd)
        history.Move(wpt, to.lat, to.lng);
    if (drag != ZrMapPanel::dragMove)
        history.CloseMove();
    Plan().Edited();
}

/// \param before index of the waypoint that it goes before; that of none for the end
void PlanPage::AddWaypoint(const QPointF& world, int before)
{
    const ZrGeoPoint place = m_chart.ToGeo(world);
    if (!place.IsValid())
        return;
    ZrWpts& route = Plan().Route();
    const int count = route.GetCount();
    const ZrWpt* added = nullptr;
    if (before < 0 || before >= count) {
        added = Plan().History().Add(place.lat, place.lng, eZrWptBlue, ZrWpts::eAddTail);
    } else {
        auto wpt = std::make_unique<ZrWpt>();
        wpt->lat = place.lat;
        wpt->lng = place.lng;
        wpt->colour = Waypoint(before)->colour;
        added = wpt.release();
        route.InsertBefore(route.FindIndex(before), added);
        route.Recalc(true);
        route.UpdatePseudo();
        Plan().History().Record(tr("Insert waypoint"));
    }
    m_selectedId = added->uuid;
    LeaveLeg();
    m_area = -1;
    Plan().Edited();
    Refresh();
}

void PlanPage::AddHere(const QPointF& world)
{
    if (m_mode == modeArea) {
        m_drawing.Add(world);
        KeepSketch();
        ShowState();
        return;
    }
    const int count = Plan().Route().GetCount();
    AddWaypoint(world, m_selected >= 0 ? m_selected + 1 : count);
}

void PlanPage::InsertIntoLeg()
{
    Refresh();
    const int place = m_legEnds.PlaceIn(Plan().Route());
    // It may have moved since it was tapped.
    if (place >= 0)
        AddWaypoint(m_chart.FootOnLeg(m_leg, m_chart.ToWorld(m_legFoot)), place);
}

void PlanPage::TellUndo(const QString& text)
{
    const int revision = Plan().Revision();
    View().Tell(text, tr("Undo"), [this, revision] {
        LeaveCorners();
        if (revision != Plan().Revision())
            View().Tell(tr("The plan was edited since; Ctrl+Z takes back step by step"));
        else
            Plan().Undo();
        Refresh();
    });
}

void PlanPage::DeleteSelected()
{
    ZrWpt* wpt = Waypoint(m_selected);
    if (!wpt)
        return;
    const QString name = wpt->Name();
    const ZrWpt* next = Waypoint(m_selected + 1);
    m_selectedId = next ? next->uuid : QUuid();
    Plan().History().Delete(wpt);
    Plan().Edited();
    Refresh();
    TellUndo(tr("%1 deleted").arg(name));
}

void PlanPage::MoveSelected(int by)
{
    ZrWpt* wpt = Waypoint(m_selected);
    if (!wpt || !Plan().History().Reorder(wpt, m_selected + by))
        return;
    Plan().Edited();
    Refresh();
}

void PlanPage::Reverse()
{
    if (Plan().Route().GetCount() < 2)
        return;
    Plan().History().Reverse();
    Plan().Edited();
    Refresh();
    TellUndo(tr("Route reversed"));
}

void PlanPage::Undo()
{
    if (UndoCorner())
        return;
    LeaveCorners();
    Plan().Undo();
    Refresh();
}

void PlanPage::Redo()
{
    if (RedoCorner())
        return;
    LeaveCorners();
    Plan().Redo();
    Refresh();
}

void PlanPage::StartPattern()
{
    if (m_mode == modePattern) {
        SetMode(modeBrowse);
        return;
    }
    // What is being drawn becomes the area.
    const bool wasDrawing = m_mode == modeArea && m_drawing.Ring().size() >= 3;
    const bool isStill = !m_keepClear->on && !m_isEditedNoGo; // where it was among the areas
    const int drawn = isStill ? m_editedArea : -1;
    const int selected = m_isNoGo ? -1 : m_area;
    const int chosen = wasDrawing ? drawn : selected;
    SetMode(modeBrowse);
    const auto& areas = Plan().Areas();
    if (areas.empty()) {
        SetMode(modeArea);
        View().Tell(tr("Draw the area first, then choose the lines"));
        return;
    }
    const int index = chosen >= 0 ? chosen : static_cast<int>(areas.size()) - 1;
    SetMode(modePattern);
    m_pattern->SetArea(areas[static_cast<std::size_t>(index)]);
}

void PlanPage::StartCorridor()
{
    std::vector<ZrGeoPoint> guide;
    for (ZrListPos* pos = Plan().Route().GetHeadPos(); pos;) {
        const ZrWpt& wpt = *Plan().Route().GetNext(pos);
        guide.push_back({wpt.lat, wpt.lng});
    }
    if (guide.size() < 2) {
        View().Tell(tr("A corridor runs along a route of two waypoints or more"));
        return;
    }
    SetMode(modePattern);
    m_pattern->SetGuide(guide);
}

int PlanPage::PatternPlace() const
{
    return m_selected >= 0 ? m_selected + 1 : Plan().Route().GetCount();
}

/// The lines of what is shown, in time: `PlanPatternPanel::Apply`.
void PlanPage::ApplyPattern()
{
    if (m_mode != modePattern)
        return;
    const std::vector<ZrWpt>& waypoints = m_pattern->Waypoints();
    const int lines = static_cast<int>(m_pattern->Plan().lines.size());
    const int count = Plan().Route().GetCount();
    if (count + static_cast<int>(waypoints.size()) > ZrSurveyPlanner::MostWaypoints) {
        View().Warn(tr("The plan would have more than %1 waypoints. Choose a larger spacing.")
                        .arg(ZrSurveyPlanner::MostWaypoints));
        return;
    }
    Plan().History().InsertPattern(waypoints, PatternPlace());
    m_selectedId = QUuid();
    Plan().Edited();
    SetMode(modeBrowse);
    TellUndo(tr("Lines added: %1").arg(lines));
}

void PlanPage::ShowMore()
{
    struct Entry
    {
        QString title;
        const char* icon;
        std::function<void()> run;
    };

    QVector<Entry> entries{
        {tr("New plan"), "file", [this] { m_files->New(); }},
        {tr("Save as"), "save", [this] { SavePlan(true); }},
        {tr("Export the route"), "export", [this] { m_files->ShowExport(); }},
        {tr("Read areas from a file"), "import", [this] { m_files->ShowAreas(); }},
        {tr("Lines along the route (corridor)"), "pattern", [this] { StartCorridor(); }},
        {Plan().Route().closed ? tr("Open the route") : tr("Close the route"), "loop",
            [this] {
                Plan().History().ChangeRoute(
                    tr("closing"), [](ZrWpts& route) { route.closed = !route.closed; });
                Plan().Edited();
            }},
    };
    if (m_files->HasKept())
        entries.append({tr("Unsaved plans"), "file", [this] { m_files->ShowKept(); }});
    QVector<ZrListItem> items;
    for (const Entry& entry : qAsConst(entries)) {
        ZrListItem item;
        item.title = entry.title;
        item.image = QImage(QStringLiteral(":/icons/%1.png").arg(QString::fromLatin1(entry.icon)));
        items.append(item);
    }
    m_more->SetItems(items, -1);
    m_more->disconnect(this);
    connect(m_more, &ZrChoicePanel::Chosen, this, [entries](int row) { entries[row].run(); });
    m_more->Open();
}
