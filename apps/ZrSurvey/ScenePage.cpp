#include "apps/ZrSurvey/ScenePage.h"

#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpt.h"
#include "apps/ZrSurvey/ScenePanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

/// The resources of a static library do not register themselves. Qt wants this outside of namespaces.
static void InitSurveyResources()
{
    Q_INIT_RESOURCE(survey);
}

namespace {

constexpr float nearDistance = 25.0F; ///< of the camera, metres

/// Of the floor's grid at least, metres.
constexpr float floorSpacing = 2.5F;

/// The floor is made anew when so many soundings more have come, in parts of those that it has.
constexpr double floorGrowth = 0.05;

constexpr double shortestStep = 1.0; ///< metres between samples of the plan's way
constexpr double mostSamples = 20000.0;

QString Degrees(double value)
{
    return std::isfinite(value) ? QString::number(value, 'f', 1) : QString();
}

} // namespace

ScenePage::ScenePage(SurveyView& view)
    : SurveyPage(view, tr("3D"))
    , m_panel(new ScenePanel(this, m_scene))
    , m_follow(AddButton(QStringLiteral("follow"), tr("Follow the vehicle (F)"), &ScenePage::ToggleFollow))
    , m_exaggerate(AddButton(QStringLiteral("bottom"), tr("Exaggerate heights (X)"), &ScenePage::Exaggerate))
    , m_heading(new ZrValueTile(this, tr("Heading")))
    , m_pitch(new ZrValueTile(this, tr("Pitch")))
    , m_roll(new ZrValueTile(this, tr("Roll")))
    , m_depth(new ZrValueTile(this, tr("Depth")))
    , m_altitude(new ZrValueTile(this, tr("Altitude")))
    , m_tiles({m_heading, m_pitch, m_roll, m_depth, m_altitude})
{
    m_hasBackground = false;
    AddButton(QStringLiteral("orbit"), tr("Look from behind (Home)"), &ScenePage::ResetView);
    m_follow->checkable = true;
    m_follow->on = true;
    connect(m_panel, &ScenePanel::Changed, this, &SurveyPage::Changed);
    connect(m_panel, &ScenePanel::Panned, this, [this] {
        m_follow->on = false;
        m_follow->update();
    });
    for (const SurveyVehicle* vehicle : {&view.Model().vehicle, &view.Model().reviewed}) {
        connect(vehicle, &SurveyVehicle::Changed, this, [this, vehicle] {
            if (vehicle == &Vehicle())
                OnVehicle();
        });
    }
    connect(&view.Model().plan, &ZrPlanDocument::Changed, this, &ScenePage::UpdatePlan);
    m_scene.m_camera.SetDistance(nearDistance);
}

ZrBtn* ScenePage::AddButton(const QString& icon, const QString& hint, void (ScenePage::*action)())
{
    auto* button = new ZrBtn(this, ZrBtn::typeStd);
    button->setObjectName(icon);
    button->img = QImage(QStringLiteral(":/icons/%1.png").arg(icon));
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    connect(button, &ZrBtn::Clicked, this, action);
    m_buttons.append(button);
    return button;
}

void ScenePage::LoadMesh()
{
    if (std::exchange(m_isMeshLoaded, true))
        return;
    InitSurveyResources();
    ZglObject::LoadObj(QStringLiteral(":/survey/vessel.obj"), m_scene.m_mesh);
    m_scene.m_meshImage = QImage(QStringLiteral(":/survey/vessel.png"));
}

void ScenePage::zr_initializeGL()
{
    m_scene.OnCreate();
}

void ScenePage::zr_paintGL()
{
    LoadMesh();
    m_scene.Render();
}

const SurveyVehicle& ScenePage::Vehicle() const
{
    const SurveyModel& model = View().Model();
    return model.isReviewLast && !model.reviewed.Source().isEmpty() ? model.reviewed : model.vehicle;
}

void ScenePage::OnPageOpen()
{
    if (m_vehicle != &Vehicle()) {
        m_vehicle = &Vehicle();
        m_revision = -1;
    }
    // The page is not visible yet.
    ShowVehicle();
    UpdatePlan();
}

QVector3D ScenePage::ToScene(double lat, double lng, double depth) const
{
    double east = 0.0;
    double north = 0.0;
    m_grid->ToGrid({&lat, 1}, {&lng, 1}, {&east, 1}, {&north, 1});
    return {static_cast<float>(east - m_origin.x()), static_cast<float>(north - m_origin.y()),
        static_cast<float>(std::isfinite(depth) ? -depth : 0.0)};
}

void ScenePage::OnVehicle()
{
    // A recording has a long way, of which a sea floor is made: not for a page that nobody sees.
    if (isVisible())
        ShowVehicle();
}

void ScenePage::ShowVehicle()
{
    UpdateWay();
    const SurveyVehicle::Pose& pose = Vehicle().Current();
    m_scene.m_hasVehicle = m_grid && std::isfinite(pose.lat) && std::isfinite(pose.lng);
    if (m_scene.m_hasVehicle) {
        m_scene.m_pose.position = ToScene(pose.lat, pose.lng, pose.depth);
        m_scene.m_pose.heading = static_cast<float>(pose.heading);
        m_scene.m_pose.pitch = static_cast<float>(pose.pitch);
        m_scene.m_pose.roll = static_cast<float>(pose.roll);
        if (m_follow->on)
            Follow();
    }
    UpdateTiles();
    Changed();
}

void ScenePage::UpdateWay()
{
    const SurveyVehicle& vehicle = Vehicle();
    const auto& way = vehicle.Way();
    if (vehicle.WayRevision() != m_revision || way.size() < m_wayCount) {
        m_revision = vehicle.WayRevision();
        m_wayCount = 0;
        m_floorCount = 0;
        m_soundings.clear();
        m_scene.SetTrail({});
        m_scene.SetFloor({});
        m_grid.reset();
    }
    for (; m_wayCount < way.size(); ++m_wayCount) {
        const SurveyVehicle::Place& place = way[m_wayCount];
        if (!std::isfinite(place.lat) || !std::isfinite(place.lng))
            continue;
        if (!m_grid) {
            m_grid = std::make_unique<ZrGridBatch>(ZrGridBatch::UtmAt(place.lat, place.lng));
            m_origin = QPointF();
            double east = 0.0;
            double north = 0.0;
            m_grid->ToGrid({&place.lat, 1}, {&place.lng, 1}, {&east, 1}, {&north, 1});
            m_origin = {east, north};
            UpdatePlan();
        }
        const QVector3D at = ToScene(place.lat, place.lng, place.depth);
        m_scene.AddToTrail(at);
        if (std::isfinite(place.altitude))
            m_soundings.emplace_back(at.x(), at.y(), at.z() - static_cast<float>(place.altitude));
    }
    const auto wanted = static_cast<double>(m_floorCount) * (1.0 + floorGrowth) + 1.0;
    if (static_cast<double>(m_soundings.size()) < wanted)
        return;
    m_floorCount = m_soundings.size();
    ZrSceneFloor floor;
    floor.Build(m_soundings, floorSpacing);
    m_scene.SetFloor(std::move(floor));
}

void ScenePage::UpdatePlan()
{
    std::vector<QVector3D> line;
    if (m_grid) {
        const ZrRoutePath& path = View().Model().plan.Path();
        // Turns are round.
        const auto samples = path.Sample(std::max(shortestStep, path.Length() / mostSamples));
        for (const ZrPathSample& sample : samples) {
            if (sample.position.IsValid())
                line.push_back(ToScene(sample.position.lat, sample.position.lng, 0.0));
        }
    }
    m_scene.SetPlan(std::move(line));
    if (isVisible())
        Changed();
}

void ScenePage::UpdateTiles()
{
    const SurveyVehicle::Pose& pose = Vehicle().Current();
    const QString degree = QStringLiteral("°");
    m_heading->Set(Degrees(pose.heading), degree);
    m_pitch->Set(Degrees(pose.pitch), degree);
    m_roll->Set(Degrees(pose.roll), degree);
    const auto length = [](ZrValueTile* tile, double metres) {
        const bool isKnown = std::isfinite(metres);
        tile->Set(isKnown ? ZrUnits::GetShortLengthString(metres, 1, false) : QString(),
            ZrUnits::GetShortLengthUnits());
    };
    length(m_depth, pose.depth);
    length(m_altitude, pose.altitude);
    SetSubtitle(Vehicle().Source());
}

void ScenePage::ToggleFollow()
{
    if (m_follow->on)
        Follow();
    Changed();
}

void ScenePage::Follow()
{
    QVector3D target = m_scene.m_pose.position;
    target.setZ(target.z() * m_scene.m_exaggeration);
    m_scene.m_camera.SetTarget(target);
}

void ScenePage::Exaggerate()
{
    const float before = m_scene.m_exaggeration;
    m_scene.m_exaggeration = before < 2.0F ? 3.0F : before < 5.0F ? 6.0F : 1.0F;
    // As far away as what was in view has grown: the floor stays there.
    m_scene.m_camera.SetDistance(m_scene.m_camera.Distance() * m_scene.m_exaggeration / before);
    m_exaggerate->on = m_scene.m_exaggeration > 1.0F;
    m_exaggerate->text = m_exaggerate->on ? QStringLiteral("× %1").arg(m_scene.m_exaggeration) : QString();
    // A square has room for one of them.
    m_exaggerate->img = m_exaggerate->on ? QImage() : QImage(QStringLiteral(":/icons/bottom.png"));
    m_exaggerate->Changed();
    if (m_follow->on)
        Follow();
    Changed();
}

void ScenePage::ResetView()
{
    m_follow->on = true;
    m_follow->update();
    const float heading = std::isfinite(m_scene.m_pose.heading) ? m_scene.m_pose.heading : 0.0F;
    m_scene.m_camera.SetDistance(nearDistance * m_scene.m_exaggeration);
    m_scene.m_camera.SetAngles(heading + 215.0F, 22.0F);
    Follow();
    Changed();
}

bool ScenePage::OnKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (modifiers != Qt::NoModifier)
        return false;
    switch (key) {
    case Qt::Key_F:
        m_follow->on = !m_follow->on;
        ToggleFollow();
        return true;
    case Qt::Key_X:
        Exaggerate();
        return true;
    case Qt::Key_Home:
        ResetView();
        return true;
    case Qt::Key_Plus:
    case Qt::Key_Minus:
        m_scene.m_camera.Zoom(key == Qt::Key_Plus ? 1.2F : 1.0F / 1.2F);
        Changed();
        return true;
    default:
        return false;
    }
}

void ScenePage::OnColours()
{
    SurveyPage::OnColours();
    UpdateTiles();
}

void ScenePage::Place()
{
    const QRect area = Content();
    m_panel->setGeometry(area);
    const int side = std::max(ZrTheme::DpI(72), 44);
    int y = area.y() + 2 * Gap();
    for (ZrBtn* button : qAsConst(m_buttons)) {
        button->setGeometry(area.right() - side - 2 * Gap(), y, side, side);
        button->Changed();
        y += side + Gap();
    }
    const int width = std::min(ZrTheme::DpI(180), (area.width() - 6 * 2 * Gap()) / m_tiles.size());
    int x = area.x() + 2 * Gap();
    const int height = ZrTheme::DpI(88);
    for (ZrValueTile* tile : qAsConst(m_tiles)) {
        tile->setGeometry(x, area.bottom() - height - 2 * Gap(), width, height);
        x += width + Gap();
    }
}

void ScenePage::paintEvent(QPaintEvent* event)
{
    SurveyPage::paintEvent(event);
    if (m_scene.m_hasVehicle)
        return;
    QPainter painter(this);
    painter.setFont(ZrTheme::fontLarge);
    painter.setPen(ZrTheme::ctrlCol);
    painter.drawText(Content(), Qt::AlignCenter,
        tr("No vehicle yet. Start a source on the page Record, or open a recording."));
}

/// How the vehicle lies.
int ScenePage::FreeBelow() const
{
    return height() - m_heading->y();
}
