#include "ZrKit/map/ZrMapPanel.h"

#include "ZrKit/map/ZrMapSurface.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimer>
#include <QTouchEvent>

namespace {

constexpr int frameMs = 16;
constexpr int mouse = -1;

/// A key moves the map by this part of the view.
constexpr double keyPan = 0.125;

} // namespace

ZrMapPanel::ZrMapPanel(QWidget* parent, ZrMapSurface& map)
    : ZrSfHolder(parent)
    , m_map(map)
    , m_frames(new QTimer(this))
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    setFocusPolicy(Qt::ClickFocus);
    m_frames->setTimerType(Qt::PreciseTimer);
    m_frames->setInterval(frameMs);
    connect(m_frames, &QTimer::timeout, this, &ZrMapPanel::OnFrame);
    SetSurface(&map);
}

void ZrMapPanel::Match()
{
    const double ratio = devicePixelRatioF();
    const int below = parentWidget() ? parentWidget()->height() - y() - height() : 0;
    // From edge to edge: of panels side by side none leaves a pixel free or covers one of the other's.
    const QPoint from(qRound(x() * ratio), qRound(below * ratio));
    const QPoint to(qRound((x() + width()) * ratio), qRound((below + height()) * ratio));
    const QRect viewport(from.x(), from.y(), to.x() - from.x(), to.y() - from.y());
    m_map.ZrglSetViewport(viewport);
    m_map.OnResize(viewport.width(), viewport.height());
    Q_EMIT Changed();
}

void ZrMapPanel::moveEvent(QMoveEvent* /*event*/)
{
    Match();
}

void ZrMapPanel::resizeEvent(QResizeEvent* /*event*/)
{
    Match();
}

void ZrMapPanel::hideEvent(QHideEvent* event)
{
    m_frames->stop();
    if (m_isDragging)
        Drag(dragCancel, m_last);
    m_isSpoilt = false;
    m_input.Cancel();
    ZrSfHolder::hideEvent(event);
}

void ZrMapPanel::Moved()
{
    Q_EMIT CameraMoved();
    Q_EMIT Changed();
}

void ZrMapPanel::Tell(ZrMapGesture::eEvent what)
{
    const QPointF pixel = m_input.m_gesture.Where();
    const QPointF world = m_map.m_camera.ToWorld(pixel);
    switch (what) {
    case ZrMapGesture::moved:
        Moved();
        break;
    case ZrMapGesture::tap:
        Q_EMIT Tapped(world, pixel);
        break;
    case ZrMapGesture::doubleTap:
        Q_EMIT DoubleTapped(world, pixel);
        break;
    case ZrMapGesture::longPress:
        Q_EMIT LongPressed(world, pixel);
        break;
    case ZrMapGesture::nothing:
        break;
    }
}

void ZrMapPanel::OnFrame()
{
    Tell(m_input.Tick(m_map.m_camera));
    if (!m_input.m_gesture.IsBusy())
        m_frames->stop();
}

void ZrMapPanel::Drag(eDrag drag, const QPointF& pixel)
{
    m_isDragging = drag == dragBegin || drag == dragMove;
    m_last = pixel;
    Q_EMIT Dragged(drag, m_map.m_camera.ToWorld(pixel), pixel);
}

bool ZrMapPanel::BeginClaim(const QPointF& pixel)
{
    if (m_input.m_gesture.FingerCount() > 0 || !m_claim || !m_claim(pixel))
        return false;
    Drag(dragBegin, pixel);
    return true;
}

/// Handles the events of a finger that the page has claimed; false for all others.
bool ZrMapPanel::Claimed(QEvent& event)
{
    const double ratio = devicePixelRatioF();
    switch (event.type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd: {
        const auto points = static_cast<QTouchEvent&>(event).touchPoints();
        if (m_isSpoilt && event.type() != QEvent::TouchBegin) {
            m_isSpoilt = event.type() != QEvent::TouchEnd;
            event.accept();
            return true;
        }
        m_isSpoilt = false;
        if (!m_isDragging) {
            const bool isFirst = event.type() == QEvent::TouchBegin && points.size() == 1;
            if (!isFirst || !BeginClaim(points[0].pos() * ratio))
                return false;
            m_finger = points[0].id();
            event.accept();
            return true;
        }
        for (const QTouchEvent::TouchPoint& point : points) {
            if (point.id() != m_finger) {
                // A second finger never moves a mark. Until all are lifted nothing else comes of them.
                m_isSpoilt = event.type() != QEvent::TouchEnd;
                Drag(dragCancel, m_last);
                break;
            }
            if (point.state() == Qt::TouchPointMoved)
                Drag(dragMove, point.pos() * ratio);
            else if (point.state() == Qt::TouchPointReleased)
                Drag(dragEnd, point.pos() * ratio);
        }
        event.accept();
        return true;
    }
    case QEvent::TouchCancel:
        m_isSpoilt = false;
        if (!m_isDragging)
            return false;
        Drag(dragCancel, m_last);
        event.accept();
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        const auto& press = static_cast<QMouseEvent&>(event);
        const bool isMine = press.source() == Qt::MouseEventNotSynthesized && press.button() == Qt::LeftButton
            && press.modifiers() == Qt::NoModifier;
        if (m_isDragging || !isMine || !BeginClaim(press.localPos() * ratio))
            return m_isDragging;
        m_finger = mouse;
        event.accept();
        return true;
    }
    case QEvent::MouseMove:
        if (!m_isDragging || m_finger != mouse)
            return false;
        Drag(dragMove, static_cast<QMouseEvent&>(event).localPos() * ratio);
        event.accept();
        return true;
    case QEvent::MouseButtonRelease:
        if (!m_isDragging || m_finger != mouse)
            return false;
        // Another button does not let go of the mark.
        if (static_cast<QMouseEvent&>(event).button() == Qt::LeftButton)
            Drag(dragEnd, static_cast<QMouseEvent&>(event).localPos() * ratio);
        event.accept();
        return true;
    default:
        return false;
    }
}

bool ZrMapPanel::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
    case QEvent::Wheel:
        break;
    default:
        return ZrSfHolder::event(event);
    }
    if (Claimed(*event))
        return true;
    const double ratio = devicePixelRatioF();
    if (event->type() == QEvent::MouseMove && static_cast<QMouseEvent*>(event)->buttons() == Qt::NoButton) {
        const QPointF pixel = static_cast<QMouseEvent*>(event)->localPos() * ratio;
        Q_EMIT Hovered(m_map.m_camera.ToWorld(pixel), pixel);
    }
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::TouchBegin)
        setFocus(Qt::MouseFocusReason);
    Tell(m_input.Handle(m_map.m_camera, event, ratio));
    if (m_input.m_gesture.IsBusy() && !m_frames->isActive())
        m_frames->start();
    return event->isAccepted();
}

void ZrMapPanel::keyPressEvent(QKeyEvent* event)
{
    ZrMapView& camera = m_map.m_camera;
    const QPointF middle(camera.Width() / 2.0, camera.Height() / 2.0);
    switch (event->key()) {
    case Qt::Key_Left:
        camera.Pan({camera.Width() * keyPan, 0.0});
        break;
    case Qt::Key_Right:
        camera.Pan({-camera.Width() * keyPan, 0.0});
        break;
    case Qt::Key_Up:
        camera.Pan({0.0, camera.Height() * keyPan});
        break;
    case Qt::Key_Down:
        camera.Pan({0.0, -camera.Height() * keyPan});
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        camera.ZoomAbout(middle, ZrMapGesture::WheelFactor);
        break;
    case Qt::Key_Minus:
        camera.ZoomAbout(middle, 1.0 / ZrMapGesture::WheelFactor);
        break;
    case Qt::Key_N:
        camera.SetRotation(0.0);
        break;
    default:
        ZrSfHolder::keyPressEvent(event);
        return;
    }
    Moved();
}
