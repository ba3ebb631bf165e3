#include "apps/ZrSurvey/ScenePanel.h"

#include "ZrKit/scene/ZrSceneSurface.h"

#include <QLineF>
#include <QMouseEvent>
#include <QTouchEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

/// A finger over the whole width turns the camera so far, degrees.
constexpr float orbitWidth = 270.0F;

/// Fingers closer than this, pixels, do not zoom.
constexpr double leastSpread = 8.0;

} // namespace

ScenePanel::ScenePanel(QWidget* parent, ZrSceneSurface& scene)
    : ZrSfHolder(parent)
    , m_scene(scene)
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    SetSurface(&scene);
}

void ScenePanel::Match()
{
    const double ratio = devicePixelRatioF();
    const int below = parentWidget() ? parentWidget()->height() - y() - height() : 0;
    m_scene.ZrglSetViewport(
        qRound(x() * ratio), qRound(below * ratio), qRound(width() * ratio), qRound(height() * ratio));
    m_scene.OnResize(qRound(width() * ratio), qRound(height() * ratio));
    Q_EMIT Changed();
}

void ScenePanel::moveEvent(QMoveEvent* /*event*/)
{
    Match();
}

void ScenePanel::resizeEvent(QResizeEvent* /*event*/)
{
    Match();
}

void ScenePanel::Orbit(const QPointF& way)
{
    const float perPixel = orbitWidth / static_cast<float>(std::max(width(), 1));
    m_scene.m_camera.Orbit(static_cast<float>(way.x()) * perPixel, static_cast<float>(way.y()) * perPixel);
    Q_EMIT Changed();
}

void ScenePanel::Pan(const QPointF& way)
{
    const auto height = static_cast<float>(std::max(this->height(), 1));
    m_scene.m_camera.Pan(static_cast<float>(way.x()) / height, static_cast<float>(way.y()) / height);
    Q_EMIT Panned();
    Q_EMIT Changed();
}

bool ScenePanel::event(QEvent* event)
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

void ScenePanel::Touch(QTouchEvent& event)
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

void ScenePanel::mousePressEvent(QMouseEvent* event)
{
    event->setAccepted(event->source() == Qt::MouseEventNotSynthesized);
    m_last = event->localPos();
}

void ScenePanel::mouseMoveEvent(QMouseEvent* event)
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

void ScenePanel::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
}

void ScenePanel::wheelEvent(QWheelEvent* event)
{
    m_scene.m_camera.Zoom(std::pow(1.2F, static_cast<float>(event->angleDelta().y()) / 120.0F));
    event->accept();
    Q_EMIT Changed();
}
