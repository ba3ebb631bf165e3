#include "ZrKit/scene/ZrScenePanel.h"

#include "ZrKit/scene/ZrSceneSurface.h"

#include <QLineF>
#include <QMouseEvent>
#include <QTouchEvent>
#include <QWheelEvent>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

/// Fingers closer than this, pixels, do not zoom.
constexpr double leastSpread = 8.0;

/// Where the camera stands that looks from behind, degrees from the heading and above the horizon.
constexpr float behind = 215.0F;
constexpr float above = 22.0F;

} // namespace

ZrScenePanel::ZrScenePanel(QWidget* parent, ZrSceneSurface& scene)
    : ZrSfHolder(parent)
    , m_scene(scene)
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    SetSurface(&scene);
}

void ZrScenePanel::Match()
{
    const double ratio = devicePixelRatioF();
    const int below = parentWidget() ? parentWidget()->height() - y() - height() : 0;
    m_scene.ZrglSetViewport(
        qRound(x() * ratio), qRound(below * ratio), qRound(width() * ratio), qRound(height() * ratio));
    m_scene.OnResize(qRound(width() * ratio), qRound(height() * ratio));
    Q_EMIT Changed();
}

void ZrScenePanel::moveEvent(QMoveEvent* /*event*/)
{
    Match();
}

void ZrScenePanel::resizeEvent(QResizeEvent* /*event*/)
{
    Match();
}

void ZrScenePanel::SetFollows(bool follows)
{
    const bool isNew = follows != m_follows;
    m_follows = follows;
    PoseChanged();
    if (isNew)
        Q_EMIT FollowsChanged();
}

void ZrScenePanel::PoseChanged()
{
    QVector3D target = m_scene.m_pose.position;
    target.setZ(target.z() * m_scene.m_exaggeration);
    if (m_follows && m_scene.m_hasVehicle)
        m_scene.m_camera.SetTarget(target);
    Q_EMIT Changed();
}

void ZrScenePanel::SetExaggeration(float factor)
{
    if (!(factor > 0.0F) || !std::isfinite(factor))
        return;
    const float before = m_scene.m_exaggeration;
    m_scene.m_exaggeration = factor;
    m_scene.m_camera.SetDistance(m_scene.m_camera.Distance() * factor / before);
    PoseChanged();
}

void ZrScenePanel::LookFromBehind(float distance)
{
    const float heading = std::isfinite(m_scene.m_pose.heading) ? m_scene.m_pose.heading : 0.0F;
    m_scene.m_camera.SetDistance(distance * m_scene.m_exaggeration);
    m_scene.m_camera.SetAngles(heading + behind, above);
    SetFollows(true);
}

void ZrScenePanel::ShowAll()
{
    const std::vector<QVector3D>& trail = m_scene.Trail();
    if (trail.empty())
        return;
    QVector3D low = trail.front();
    QVector3D high = low;
    const auto add = [&](const QVector3D& p) {
        for (int i = 0; i < 3; ++i) {
            low[i] = std::min(low[i], p[i]);
            high[i] = std::max(high[i], p[i]);
        }
    };
    for (const QVector3D& p : trail)
        add(p);
    if (!m_scene.Floor().IsEmpty())
        low.setZ(std::min(low.z(), m_scene.Floor().Lowest()));
    const QVector3D stretch(1.0F, 1.0F, m_scene.m_exaggeration);
    const float radius = ((high - low) * stretch).length() / 2.0F;
    const float half = ZrSceneCamera::FieldOfView / 2.0F * static_cast<float>(M_PI) / 180.0F;
    m_scene.m_camera.SetTarget((low + high) * stretch / 2.0F);
    m_scene.m_camera.SetDistance(radius / std::sin(half));
    Q_EMIT Changed();
}

bool ZrScenePanel::OnKey(int key, Qt::KeyboardModifiers modifiers)
{
    // A plus is typed with Shift on some keyboards, and on its own block on others.
    if (modifiers & ~(Qt::ShiftModifier | Qt::KeypadModifier))
        return false;
    const bool isShift = modifiers & Qt::ShiftModifier;
    const auto turn = [&](float azimuth, float elevation) {
        if (!isShift) {
            m_scene.m_camera.Orbit(azimuth, elevation);
            Q_EMIT Changed();
        }
        return !isShift;
    };
    switch (key) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        Zoom(KeyZoom);
        return true;
    case Qt::Key_Minus:
        Zoom(1.0F / KeyZoom);
        return true;
    case Qt::Key_Left:
        return turn(-KeyTurn, 0.0F);
    case Qt::Key_Right:
        return turn(KeyTurn, 0.0F);
    case Qt::Key_Up:
        return turn(0.0F, KeyTurn);
    case Qt::Key_Down:
        return turn(0.0F, -KeyTurn);
    default:
        return false;
    }
}

void ZrScenePanel::Orbit(const QPointF& way)
{
    const float perPixel = OrbitWidth / static_cast<float>(std::max(width(), 1));
    m_scene.m_camera.Orbit(static_cast<float>(way.x()) * perPixel, static_cast<float>(way.y()) * perPixel);
    Q_EMIT Changed();
}

void ZrScenePanel::Pan(const QPointF& way)
{
    const auto height = static_cast<float>(std::max(this->height(), 1));
    m_scene.m_camera.Pan(static_cast<float>(way.x()) / height, static_cast<float>(way.y()) / height);
    SetFollows(false);
}

void ZrScenePanel::Zoom(float factor)
{
    m_scene.m_camera.Zoom(factor);
    Q_EMIT Changed();
}

bool ZrScenePanel::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
        Touch(*static_cast<QTouchEvent*>(event));
        event->accept();
        return true;
    default:
        return ZrSfHolder::event(event);
    }
}

void ZrScenePanel::Touch(QTouchEvent& event)
{
    const auto points = event.touchPoints();
    if (points.size() == 1) {
        Orbit(points[0].pos() - points[0].lastPos());
        return;
    }
    if (points.size() != 2)
        return;
    const QLineF before(points[0].lastPos(), points[1].lastPos());
    const QLineF now(points[0].pos(), points[1].pos());
    if (before.length() >= leastSpread && now.length() >= leastSpread)
        m_scene.m_camera.Zoom(static_cast<float>(now.length() / before.length()));
    Pan(now.center() - before.center());
}

void ZrScenePanel::mousePressEvent(QMouseEvent* event)
{
    event->setAccepted(event->source() == Qt::MouseEventNotSynthesized);
    m_last = event->localPos();
}

void ZrScenePanel::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() == Qt::NoButton || event->source() != Qt::MouseEventNotSynthesized)
        return;
    const QPointF way = event->localPos() - m_last;
    m_last = event->localPos();
    if (event->buttons().testFlag(Qt::LeftButton) && event->modifiers() != Qt::ShiftModifier)
        Orbit(way);
    else
        Pan(way);
}

void ZrScenePanel::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
}

void ZrScenePanel::wheelEvent(QWheelEvent* event)
{
    Zoom(std::pow(KeyZoom, static_cast<float>(event->angleDelta().y()) / 120.0F));
    event->accept();
}
