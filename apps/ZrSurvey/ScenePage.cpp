#include "apps/ZrSurvey/ScenePage.h"

#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/scene/ZrDepthLegend.h"
#include "ZrKit/scene/ZrScenePanel.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrNumberText.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpt.h"
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

constexpr float nearDistance = 18.0F; ///< of the camera, metres

} // namespace

ScenePage::ScenePage(SurveyView& view)
    : SurveyPage(view, tr("3D"))
    , m_panel(new ZrScenePanel(this, m_scene))
    , m_legend(new ZrDepthLegend(this, tr("Sea floor")))
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
    m_play = AddButton(QStringLiteral("play"), tr("Play and pause (Space)"), &ScenePage::PlayOrPause);
    m_play->hide();
    connect(&view.Model().player, &SurveyPlayer::Changed, this, &ScenePage::ShowPlayer);
    m_follow->checkable = true;
    m_follow->on = true;
    connect(m_panel, &ZrScenePanel::Changed, this, &SurveyPage::Changed);
    connect(m_panel, &ZrScenePanel::FollowsChanged, this, [this] {
        m_follow->on = m_panel->Follows();
        m_follow->update();
    });
    connect(&m_way, &ZrSceneWay::Changed, this, [this] {
        // Until there is a vehicle to be followed.
        if (m_panel->Follows() && !m_scene.m_hasVehicle)
            m_panel->ShowAll();
        UpdateLegend();
        if (isVisible())
            Changed();
    });
    connect(&m_way, &ZrSceneWay::OriginChanged, this, [this] {
        UpdatePlan();
        OnVehicle();
    });
    for (const SurveyVehicle* vehicle : {&view.Model().vehicle, &view.Model().reviewed}) {
        connect(vehicle, &SurveyVehicle::Changed, this, [this, vehicle] {
            if (vehicle == &Vehicle())
                OnVehicle();
        });
    }
    connect(&view.Model().plan, &ZrPlanDocument::Changed, this, &ScenePage::UpdatePlan);
    connect(&view, &SurveyView::SettingsChanged, this, [this] {
        UpdateTiles();
        m_legend->Restyle();
        UpdateLegend();
        if (isVisible())
            Changed();
    });
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

bool ScenePage::ShowsReview() const
{
    return &Vehicle() == &View().Model().reviewed;
}

void ScenePage::showEvent(QShowEvent* event)
{
    SurveyPage::showEvent(event);
    ShowPlayer();
}

void ScenePage::ShowPlayer()
{
    const SurveyPlayer& player = View().Model().player;
    m_play->setVisible(ShowsReview() && player.HasRecording());
    if (m_play->on != player.IsPlaying()) {
        m_play->on = player.IsPlaying();
        m_play->img
            = QImage(m_play->on ? QStringLiteral(":/icons/pause.png") : QStringLiteral(":/icons/play.png"));
        m_play->Changed();
    }
    if (player.IsPlaying() && isVisible())
        Animate();
}

void ScenePage::PlayOrPause()
{
    if (ShowsReview())
        View().Model().player.Toggle();
}

/// The cursor is that of all pages, and its vehicle comes back by `OnVehicle`.
bool ScenePage::OnFrame(double seconds)
{
    SurveyPlayer& player = View().Model().player;
    if (player.IsPlaying())
        player.Advance(seconds);
    return player.IsPlaying();
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
    m_scene.m_hasVehicle = m_way.HasOrigin() && std::isfinite(pose.lat) && std::isfinite(pose.lng);
    if (m_scene.m_hasVehicle) {
        m_scene.m_pose.position = m_way.ToScene(pose.lat, pose.lng, pose.depth);
        m_scene.m_pose.heading = static_cast<float>(pose.heading);
        m_scene.m_pose.pitch = static_cast<float>(pose.pitch);
        m_scene.m_pose.roll = static_cast<float>(pose.roll);
        m_panel->PoseChanged();
    }
    UpdateTiles();
    Changed();
}

void ScenePage::UpdateWay()
{
    const SurveyVehicle& vehicle = Vehicle();
    const std::vector<ZrScenePlace>& way = vehicle.Way();
    if (vehicle.WayRevision() != m_revision || way.size() < m_way.Count()) {
        m_revision = vehicle.WayRevision();
        m_way.Clear();
    }
    const std::size_t known = m_way.Count();
    if (way.size() > known)
        m_way.Append({way.data() + known, way.size() - known});
}

void ScenePage::UpdatePlan()
{
    std::vector<QVector3D> line;
    if (m_way.HasOrigin()) {
        for (const auto& leg : View().Model().plan.Path().LegLines()) {
            for (const ZrGeoPoint& place : leg)
                line.push_back(m_way.ToScene(place.lat, place.lng, 0.0));
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
    m_heading->Set(ZrNumberText::Heading(pose.heading, 1), degree);
    m_pitch->Set(ZrNumberText::Of(pose.pitch, 1), degree);
    m_roll->Set(ZrNumberText::Of(pose.roll, 1), degree);
    const auto length = [](ZrValueTile* tile, double metres) {
        const bool isKnown = std::isfinite(metres);
        tile->Set(isKnown ? ZrUnits::GetShortLengthString(metres, 1, false) : QString(),
            ZrUnits::GetShortLengthUnits());
    };
    length(m_depth, pose.depth);
    length(m_altitude, pose.altitude);
    SetSubtitle(Vehicle().Source());
}

/// The depths of the floor's colours, and lines on it where the numbers of the legend are.
void ScenePage::UpdateLegend()
{
    const bool hasFloor = !m_scene.Floor().IsEmpty();
    if (hasFloor)
        m_legend->SetRange(static_cast<double>(m_scene.Shallowest()), static_cast<double>(m_scene.Deepest()));
    m_scene.m_contourStep = static_cast<float>(m_legend->Step());
    m_legend->setVisible(hasFloor);
    PlaceLegend();
}

void ScenePage::PlaceLegend()
{
    const QRect area = Content();
    const QSize size = m_legend->sizeHint();
    const int most = m_heading->y() - area.y() - 4 * Gap();
    m_legend->setGeometry(
        area.x() + 2 * Gap(), area.y() + 2 * Gap(), size.width(), std::min(size.height(), most));
}

void ScenePage::ToggleFollow()
{
    m_panel->SetFollows(m_follow->on);
}

void ScenePage::Exaggerate()
{
    const float before = m_scene.m_exaggeration;
    m_panel->SetExaggeration(before < 2.0F ? 3.0F : before < 5.0F ? 6.0F : 1.0F);
    m_exaggerate->on = m_scene.m_exaggeration > 1.0F;
    m_exaggerate->text = m_exaggerate->on ? QStringLiteral("× %1").arg(m_scene.m_exaggeration) : QString();
    // A square has room for one of them.
    m_exaggerate->img = m_exaggerate->on ? QImage() : QImage(QStringLiteral(":/icons/bottom.png"));
    m_exaggerate->Changed();
}

void ScenePage::ResetView()
{
    m_panel->LookFromBehind(nearDistance);
}

bool ScenePage::OnKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (m_panel->OnKey(key, modifiers))
        return true;
    if (modifiers != Qt::NoModifier)
        return false;
    switch (key) {
    case Qt::Key_F:
        m_panel->SetFollows(!m_panel->Follows());
        return true;
    case Qt::Key_Space:
        if (!ShowsReview())
            return false;
        PlayOrPause();
        return true;
    case Qt::Key_X:
        Exaggerate();
        return true;
    case Qt::Key_Home:
        ResetView();
        return true;
    default:
        return false;
    }
}

void ScenePage::OnColours()
{
    // At night nothing white is shown.
    m_scene.m_meshColour = ZrColourScheme::OverPicture(Qt::white);
    m_legend->Restyle();
    SurveyPage::OnColours();
    UpdateTiles();
    UpdateLegend();
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
    PlaceLegend();
}

void ScenePage::paintEvent(QPaintEvent* event)
{
    SurveyPage::paintEvent(event);
    const QString hint = Hint();
    if (hint.isEmpty())
        return;
    QPainter painter(this);
    painter.setFont(ZrTheme::fontLarge);
    painter.setPen(ZrTheme::ctrlCol);
    // Above what there is to be seen.
    const QRect room = Content().adjusted(2 * Gap(), 3 * Gap(), -m_follow->width() - 4 * Gap(), 0);
    painter.drawText(m_scene.Trail().empty() ? Content() : room,
        Qt::AlignHCenter | (m_scene.Trail().empty() ? Qt::AlignVCenter : Qt::AlignTop) | Qt::TextWordWrap,
        hint);
}

QString ScenePage::Hint() const
{
    if (m_way.IsBuilding())
        return tr("The way and the sea floor are being made …");
    if (m_scene.m_hasVehicle)
        return {};
    return m_way.HasOrigin() ? tr("The position of the vehicle is not known at the cursor.")
                             : tr("No vehicle yet. Start a source on the page Record, or open a recording.");
}

/// How the vehicle lies.
int ScenePage::FreeBelow() const
{
    return height() - m_heading->y();
}
