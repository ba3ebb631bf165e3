#include "apps/ZrSurvey/PlanPage.h"

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/PlanFiles.h"
#include "apps/ZrSurvey/PlanListPanel.h"
#include "apps/ZrSurvey/PlanMarginPanel.h"
#include "apps/ZrSurvey/PlanPatternPanel.h"
#include "apps/ZrSurvey/PlanPointPanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace {

/// Routes of more waypoints are measured in the thread of the review alone.
constexpr int mostAtOnce = 2000;

/// From which on work with a file is told.
constexpr int busyMs = 300;

/// Right of a plan that is shown whole, design pixels: most names have room in it and the border.
constexpr float nameRoom = 64.0F;

/// Metres per pixel at which an empty plan begins.
constexpr double firstScale = 1.0;

QString Units()
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(ZrUnits::shortLengthUnit, ZrUnits::longLengthUnit, ZrUnits::speedUnit)
        .arg(static_cast<int>(ZrUnits::GetGeoStyle()));
}

} // namespace

PlanPage::PlanPage(SurveyView& view)
    : SurveyPage(view, tr("Plan"))
    , m_drawing(m_chart)
    , m_review(view.Model().plan)
    , m_panel(new ZrMapPanel(this, m_map))
    , m_files(new PlanFiles(view, this))
    , m_list(new PlanListPanel(view, this, [this]() -> const ZrRoutePath& { return Path(); }))
    , m_point(new PlanPointPanel(view, this))
    , m_pattern(new PlanPatternPanel(view, this))
    , m_margin(new PlanMarginPanel(view, this))
    , m_checks(new ZrTouchList(this))
    , m_more(new ZrChoicePanel(&view, tr("Plan")))
    , m_length(new ZrValueTile(this, tr("Length")))
    , m_duration(new ZrValueTile(this, tr("Duration")))
    , m_lines(new ZrValueTile(this, tr("Lines")))
    , m_count(new ZrValueTile(this, tr("Waypoints")))
    , m_check(new ZrValueTile(this, tr("Checks")))
    , m_later(new QTimer(this))
    , m_busy(new QTimer(this))
{
    m_hasBackground = false;
    m_more->hide();
    m_later->setSingleShot(true);
    m_busy->setSingleShot(true);
    m_busy->setInterval(busyMs);
    m_map.m_layers = m_chart.Layers();
    m_map.m_layers.prepend(&m_grid);
    // Names are read over all that is drawn.
    ZrMapLayer* const names = m_map.m_layers.takeLast();
    m_map.m_layers += m_drawing.Layers();
    m_map.m_layers += {names, &m_grid.Marks()};
    m_grid.KeepClearOf(&m_chart.Names());
    m_grid.KeepClearOf({&m_chart.Marks()}, {});
    m_map.m_camera.SetScale(firstScale);
    AddBand();
    AddTools();
    AddBar();
    AddSide();
    Connect();
    m_files->RestoreDraft();
    ShowSide(sideList);
    SetMode(modeBrowse);
    TakeSketch();
}

PlanPage::~PlanPage() = default;

ZrBtn* PlanPage::AddButton(int type, const QString& icon, const QString& name, const QString& text,
    const QString& hint, const std::function<void()>& run)
{
    auto* button = new ZrBtn(this, static_cast<ZrBtn::eType>(type));
    if (!icon.isEmpty())
        button->img = QImage(QStringLiteral(":/icons/%1.png").arg(icon));
    button->setObjectName(name);
    button->text = text;
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    connect(button, &ZrBtn::Clicked, this, run);
    return button;
}

void PlanPage::AddBand()
{
    const auto add = [this](const char* icon, const QString& hint, const std::function<void()>& run) {
        const QString name = QString::fromLatin1(icon);
        ZrBtn* button = AddButton(ZrBtn::typeTool, name, name, QString(), hint, run);
        m_bandButtons.append(button);
        return button;
    };
    m_undo = add("undo", tr("Undo (Ctrl+Z)"), [this] { Undo(); });
    m_redo = add("redo", tr("Redo (Ctrl+Shift+Z)"), [this] { Redo(); });
    add("open", tr("Open a plan (Ctrl+O)"), [this] { m_files->ShowOpen(); });
    add("save", tr("Save the plan (Ctrl+S)"), [this] { SavePlan(false); });
    add("more", tr("New, save as, export, unsaved plans (M)"), [this] { ShowMore(); });
}

void PlanPage::AddTools()
{
    const auto add = [this](const char* icon, const QString& hint, const std::function<void()>& run) {
        const QString name = QString::fromLatin1(icon);
        ZrBtn* button = AddButton(ZrBtn::typeStd, name, QStringLiteral("tool_") + name, QString(), hint, run);
        m_tools.append(button);
        return button;
    };
    m_addTool
        = add("add", tr("Add waypoints (A)"), [this] { SetMode(m_mode == modeAdd ? modeBrowse : modeAdd); });
    m_areaTool = add(
        "area", tr("Draw an area (D)"), [this] { SetMode(m_mode == modeArea ? modeBrowse : modeArea); });
    m_patternTool = add("pattern", tr("Survey lines over an area (P)"), [this] { StartPattern(); });
    add("fit", tr("Show the whole plan (F)"), [this] { Fit(); });
    add("zoom_in", tr("Closer (+)"), [this] { Zoom(1.5); });
    add("zoom_out", tr("Farther (-)"), [this] { Zoom(1.0 / 1.5); });
}

void PlanPage::AddBar()
{
    const auto add = [this](const char* icon, const char* name, const QString& text, const QString& hint,
                         const std::function<void()>& run, int type = ZrBtn::typeStd) {
        ZrBtn* button
            = AddButton(type, QString::fromLatin1(icon), QString::fromLatin1(name), text, hint, run);
        m_bar.append(button);
        return button;
    };
    m_insert
        = add("add", "insert", tr("Insert"), tr("Insert a waypoint here (Ins)"), [this] { InsertIntoLeg(); });
    m_linesOver = add(
        "pattern", "lines", tr("Lines"), tr("Survey lines over this area (P)"), [this] { StartPattern(); });
    m_corners = add("edit", "corners", tr("Corners"), tr("Move the corners (C)"), [this] { EditArea(); });
    m_deleteArea
        = add("delete", "delete_area", tr("Delete"), tr("Delete this area (Del)"), [this] { DeleteArea(); });
    m_keepClear = add("warning", "keep_clear", tr("No-go"), tr("The way must stay out of this area (G)"),
        [this] { ShowNoGo(); });
    m_keepClear->checkable = true;
    m_removeLast = add("undo", "remove_last", tr("Last"), tr("Remove the last corner (Backspace)"),
        [this] { RemoveLastCorner(); });
    m_addHere = add(
        "target", "add_here", tr("Add"), tr("Add at the cross (Ins)"), [this] { AddHere(Crosshair()); });
    m_done = add(
        "check", "done", tr("Done"), tr("Done (Esc)"), [this] { SetMode(modeBrowse); }, ZrBtn::typeAccent);
}

void PlanPage::AddSide()
{
    const auto add = [this](const char* icon, const QString& text, const QString& hint, eSide side) {
        ZrBtn* button = AddButton(ZrBtn::typeTool, QString::fromLatin1(icon),
            QStringLiteral("tab_") + QString::fromLatin1(icon), text, hint, [this, side] { ShowSide(side); });
        m_tabs.append(button);
    };
    add("list", tr("Route"), tr("The waypoints in their order (1)"), sideList);
    add("target", tr("Waypoint"), tr("What the selected waypoint is (2)"), sidePoint);
    add("warning", tr("Checks"), tr("What there is to say about the plan (3)"), sideChecks);
}

void PlanPage::Connect()
{
    connect(m_later, &QTimer::timeout, this, &PlanPage::Refresh);
    connect(&Plan(), &ZrPlanDocument::Changed, this, &PlanPage::Later);
    connect(&m_review, &ZrPlanReview::Ready, this, &PlanPage::Later);
    connect(m_files, &PlanFiles::Opened, this, [this] {
        Select(-1);
        // What was being drawn belonged to the plan before.
        m_mode = modeBrowse;
        SetMode(modeBrowse);
        TakeSketch();
        m_isFitDue = true;
        m_isCameraDue = false;
        Later();
    });
    connect(m_files, &PlanFiles::Restored, this, &PlanPage::TakeSketch);
    connect(m_busy, &QTimer::timeout, this, &PlanPage::ShowState);
    connect(m_files, &PlanFiles::BusyChanged, this, [this] {
        if (m_files->IsBusy())
            m_busy->start();
        else
            m_busy->stop();
        Later();
    });
    connect(m_files, &PlanFiles::AreasRead, this,
        [this](int count) { TellUndo(tr("Areas read: %1").arg(count)); });
    connect(m_panel, &ZrMapPanel::Changed, this, &SurveyPage::Changed);
    connect(m_panel, &ZrMapPanel::CameraMoved, this, &PlanPage::KeepCamera);
    connect(m_panel, &ZrMapPanel::Tapped, this, &PlanPage::OnTapped);
    connect(m_panel, &ZrMapPanel::DoubleTapped, this, [this](const QPointF& world) {
        if (m_mode == modeBrowse)
            AddHere(world);
    });
    connect(m_panel, &ZrMapPanel::Dragged, this, &PlanPage::OnDragged);
    m_panel->m_claim = [this](const QPointF& pixel) { return Claims(pixel); };
    connect(m_list, &PlanListPanel::Chosen, this, [this](int row) {
        Select(row);
        if (const ZrWpt* wpt = Waypoint(row))
            CentreOn({wpt->lat, wpt->lng});
    });
    connect(m_list, &PlanListPanel::MoveWanted, this, &PlanPage::MoveSelected);
    connect(m_list, &PlanListPanel::ReverseWanted, this, &PlanPage::Reverse);
    connect(m_list, &PlanListPanel::DeleteWanted, this, &PlanPage::DeleteSelected);
    connect(m_pattern, &PlanPatternPanel::Planned, this, &PlanPage::ShowPattern);
    connect(m_pattern, &PlanPatternPanel::Applied, this, &PlanPage::ApplyPattern);
    connect(m_pattern, &PlanPatternPanel::CancelWanted, this, [this] { SetMode(modeBrowse); });
    connect(m_checks, &ZrTouchList::Chosen, this, &PlanPage::ChooseFinding);
    connect(m_check, &ZrValueTile::Clicked, this, [this] { ShowSide(sideChecks); });
}

void PlanPage::zr_initializeGL()
{
    m_map.OnCreate();
}

void PlanPage::zr_paintGL()
{
    // Units are changed by the forms, which stand before this page and have it painted.
    if (m_units != Units())
        Later();
    m_chart.Match(m_map.m_camera, m_map.m_pixelFactor);
    m_map.Render();
}

void PlanPage::OnPageOpen()
{
    Later();
    if (!m_isOpened)
        m_files->TellDraft();
    m_isOpened = true;
}

void PlanPage::OnColours()
{
    m_list->Restyle();
    m_point->Restyle();
    m_pattern->Restyle();
    m_margin->Restyle();
    m_checks->Restyle();
    m_more->Restyle();
    m_files->Restyle();
    m_drawing.Build(m_keepClear->on);
    m_isChartDue = true;
    SurveyPage::OnColours();
    Later();
}

void PlanPage::Later()
{
    m_later->start(0);
}

const ZrRoutePath& PlanPage::Path()
{
    static const ZrRoutePath none{ZrWpts()};
    if (Plan().Route().GetCount() <= mostAtOnce)
        return Plan().Path();
    return m_review.Path() ? *m_review.Path() : none;
}

std::vector<QUuid> PlanPage::WayIds() const
{
    return Plan().Route().GetCount() <= mostAtOnce ? ZrLegEnds::Ids(Plan().Route()) : m_review.Ids();
}

/// The map is in the zone of the plan.
void PlanPage::MatchOrigin()
{
    const SurveySettings& settings = View().Model().settings;
    ZrGeoPoint origin;
    if (const ZrWpt* first = Plan().Route().GetHead())
        origin = {first->lat, first->lng};
    else if (!Plan().Areas().empty())
        origin = Plan().Areas().front().ring.front();
    else if (m_isCameraDue && settings.planScale > 0.0)
        origin = {settings.planLat, settings.planLng};
    else if (!m_origin.IsValid())
        origin = {View().Model().vehicle.Current().lat, View().Model().vehicle.Current().lng};
    if (!origin.IsValid() && !m_origin.IsValid())
        origin = {View().Model().reviewed.Current().lat, View().Model().reviewed.Current().lng};
    if (!origin.IsValid() && !m_origin.IsValid()) {
        const QGeoCoordinate here = View().last_position().coordinate();
        origin = here.isValid() ? ZrGeoPoint{here.latitude(), here.longitude()} : ZrGeoPoint{0.0, 0.0};
    }
    if (!origin.IsValid() || origin == m_origin)
        return;
    const bool isFirst = !m_origin.IsValid();
    const ZrGeoPoint centre = isFirst ? origin : m_chart.ToGeo(m_map.m_camera.Centre());
    m_origin = origin;
    m_isChartDue = true;
    m_chart.SetOrigin(origin);
    m_grid.SetProjection(ZrUnits::wgs84, m_chart.Grid().Projection());
    m_map.m_camera.SetCentre(m_chart.ToWorld(centre));
}

/// Once the page is seen, where it was left before the last end of the program.
void PlanPage::RestoreCamera()
{
    if (!m_isCameraDue || !isVisible() || m_files->IsRestoring())
        return;
    m_isCameraDue = false;
    const SurveySettings& settings = View().Model().settings;
    if (!(settings.planScale > 0.0))
        return;
    m_isFitDue = false;
    m_map.m_camera.SetScale(settings.planScale);
    m_map.m_camera.SetRotation(settings.planRotation);
    m_map.m_camera.SetCentre(m_chart.ToWorld({settings.planLat, settings.planLng}));
}

void PlanPage::KeepCamera()
{
    const ZrMapView& camera = m_map.m_camera;
    const ZrGeoPoint centre = m_chart.ToGeo(camera.Centre());
    if (!centre.IsValid())
        return;
    SurveySettings& settings = View().Model().settings;
    settings.planLat = centre.lat;
    settings.planLng = centre.lng;
    settings.planScale = camera.Scale();
    settings.planRotation = camera.Rotation();
    View().SaveSoon();
}

void PlanPage::Refresh()
{
    m_later->stop();
    m_units = Units();
    MatchOrigin();
    RestoreCamera();
    MatchSelection();
    MatchChart();
    MatchPattern();
    m_chart.SetSelected(m_selected, m_leg);
    if (m_isFitDue && isVisible() && !m_files->IsRestoring())
        Fit();
    ShowTotals();
    ShowChecks();
    ShowState();
}

/// Indices are those of the plan as it is: whatever came before what is selected, or took its place.
void PlanPage::MatchSelection()
{
    m_selected = IndexOf(m_selectedId);
    if (m_legEnds.PlaceIn(Plan().Route()) < 0)
        LeaveLeg();
    if (HasLeg())
        m_leg = m_legEnds.IndexIn(Path().Legs(), WayIds());
    if (m_area < 0)
        return;
    const auto& areas = AreasOf(m_isNoGo);
    const auto isIt = [this](const ZrArea& area) {
        return area.name == m_selectedArea.name && area.ring == m_selectedArea.ring;
    };
    if (m_area < static_cast<int>(areas.size()) && isIt(areas[static_cast<std::size_t>(m_area)]))
        return;
    const auto at = std::find_if(areas.begin(), areas.end(), isIt);
    m_area = at == areas.end() ? -1 : static_cast<int>(at - areas.begin());
}

void PlanPage::MatchPattern()
{
    const int revision = Plan().Revision();
    if (m_mode != modePattern || m_patternPlan == revision)
        return;
    m_patternPlan = revision;
    auto base = std::make_shared<ZrSurveyPreview::Base>();
    base->route = Plan().Route();
    base->index = PatternPlace();
    base->check.noGo = Plan().NoGo();
    base->check.margin = Plan().Margin();
    m_pattern->SetBase(std::move(base));
}

void PlanPage::MatchChart()
{
    const bool isDue = std::exchange(m_isChartDue, false);
    if (isDue && m_isPreview)
        m_drawing.SetPattern(m_pattern->Preview());
    const int plan = Plan().Revision();
    const int review = m_review.Seen();
    const bool isMeasuredHere = Plan().Route().GetCount() <= mostAtOnce;
    const int way = isMeasuredHere ? plan : -2 - review;
    if (std::exchange(m_chartPlan, plan) != plan || isDue) {
        m_chart.SetAreas(Plan().Areas(), Plan().NoGo());
        m_chart.SetWaypoints(Plan().Route());
    }
    if (std::exchange(m_chartWay, way) != way || isDue)
        m_chart.SetWay(Path());
    if (std::exchange(m_chartReview, review) != review || isDue)
        m_chart.SetFindings(m_review.Findings());
}

void PlanPage::Fit()
{
    m_isFitDue = false;
    const QRectF bounds = m_chart.Bounds();
    if (!bounds.isNull() || !Plan().Route().IsEmpty() || !Plan().Areas().empty())
        FitTo(bounds);
}

void PlanPage::FitTo(const QRectF& bounds)
{
    // The tools to the left and the tiles below cover a part of the map; names stand to the right of their
    // waypoints.
    const double ratio = devicePixelRatioF();
    const double left = m_tools.front()->geometry().right() * ratio;
    const double right = static_cast<double>(ZrTheme::DpF(nameRoom)) * ratio;
    const double below = (m_panel->geometry().bottom() - m_length->y()) * ratio
        + static_cast<double>(ZrTheme::DpF(56.0F)) * ratio;
    ZrMapView& camera = m_map.m_camera;
    ZrMapView free = camera;
    free.SetSize(qRound(camera.Width() - left - right), qRound(camera.Height() - below));
    free.Fit(bounds, static_cast<double>(ZrTheme::DpF(56.0F)) * ratio);
    camera.SetScale(free.Scale());
    camera.SetCentre(free.Centre());
    camera.Pan({(left - right) / 2.0, -below / 2.0});
    m_panel->Moved();
}

void PlanPage::ShowSide(eSide side)
{
    m_side = side;
    for (int i = 0; i < m_tabs.size(); ++i) {
        m_tabs[i]->on = i == side;
        m_tabs[i]->update();
    }
    const bool isPattern = m_mode == modePattern;
    m_list->setVisible(!isPattern && side == sideList);
    m_point->setVisible(!isPattern && side == sidePoint);
    m_checks->setVisible(!isPattern && side == sideChecks);
    m_margin->setVisible(!isPattern && side == sideChecks);
    m_pattern->setVisible(isPattern);
    for (ZrBtn* tab : qAsConst(m_tabs))
        tab->setVisible(!isPattern);
    update();
}
