#include "ZrKit/map/ZrMapInput.h"

#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrTheme.h"

#include <QMouseEvent>
#include <QTouchEvent>
#include <QWheelEvent>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

/// No finger of a touch screen has it.
constexpr int mouseId = -1;

/// Eighths of a degree for each notch of a wheel.
constexpr double notch = 120.0;

double Bearing(const QPointF& pixel, const ZrMapView& view)
{
    return qRadiansToDegrees(std::atan2(view.Height() / 2.0 - pixel.y(), pixel.x() - view.Width() / 2.0));
}

} // namespace

ZrMapInput::ZrMapInput()
{
    m_clock.start();
}

double ZrMapInput::Seconds() const
{
    return static_cast<double>(m_clock.nsecsElapsed()) * 1e-9;
}

ZrMapGesture::eEvent ZrMapInput::Handle(ZrMapView& view, QEvent* event, double pixelFactor)
{
    const auto scaled = static_cast<double>(ZrTheme::DpF(static_cast<float>(TapDistance)));
    m_gesture.m_tapDistance = std::max(scaled, TapDistance) * pixelFactor;
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
        return Touch(view, *static_cast<QTouchEvent*>(event), pixelFactor);
    case QEvent::TouchCancel:
        m_gesture.Cancel();
        event->accept();
        return ZrMapGesture::nothing;
    case QEvent::Wheel: {
        const auto* wheel = static_cast<QWheelEvent*>(event);
        event->accept();
        return m_gesture.Wheel(view, wheel->position() * pixelFactor, wheel->angleDelta().y() / notch);
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        return Mouse(view, event, pixelFactor);
    default:
        event->ignore();
        return ZrMapGesture::nothing;
    }
}

ZrMapGesture::eEvent ZrMapInput::Touch(ZrMapView& view, QTouchEvent& event, double pixelFactor)
{
    ZrMapGesture::eEvent last = ZrMapGesture::nothing;
    const double seconds = Seconds();
    const auto touchPoints = event.touchPoints();
    for (const QTouchEvent::TouchPoint& point : touchPoints) {
        const QPointF pixel = point.pos() * pixelFactor;
        ZrMapGesture::eEvent what = ZrMapGesture::nothing;
        if (point.state() == Qt::TouchPointPressed)
            what = m_gesture.Press(point.id(), pixel, seconds);
        else if (point.state() == Qt::TouchPointMoved)
            what = m_gesture.Move(view, point.id(), pixel, seconds);
        else if (point.state() == Qt::TouchPointReleased)
            what = m_gesture.Release(view, point.id(), pixel, seconds);
        if (what != ZrMapGesture::nothing)
            last = what;
    }
    event.accept();
    return last;
}

ZrMapGesture::eEvent ZrMapInput::Mouse(ZrMapView& view, QEvent* event, double pixelFactor)
{
    auto* const mouse = static_cast<QMouseEvent*>(event);
    const QPointF pixel = mouse->localPos() * pixelFactor;
    const bool isMine = mouse->source() == Qt::MouseEventNotSynthesized;
    const bool isButton = mouse->button() == Qt::LeftButton || mouse->button() == Qt::MiddleButton;
    event->setAccepted(isMine && (event->type() == QEvent::MouseMove || isButton));
    if (!event->isAccepted())
        return ZrMapGesture::nothing;
    switch (event->type()) {
    case QEvent::MouseMove:
        if (m_isTurning) {
            view.SetRotation(view.Rotation() + Bearing(pixel, view) - Bearing(m_turnFrom, view));
            m_turnFrom = pixel;
            return ZrMapGesture::moved;
        }
        return m_gesture.Move(view, mouseId, pixel, Seconds());
    case QEvent::MouseButtonRelease:
        if (m_isTurning) {
            m_isTurning = false;
            return ZrMapGesture::nothing;
        }
        return m_gesture.Release(view, mouseId, pixel, Seconds());
    default:
        if (mouse->modifiers().testFlag(Qt::ShiftModifier) && m_gesture.m_canTurn) {
            m_isTurning = true;
            m_turnFrom = pixel;
            return ZrMapGesture::nothing;
        }
        return m_gesture.Press(mouseId, pixel, Seconds());
    }
}

ZrMapGesture::eEvent ZrMapInput::Tick(ZrMapView& view)
{
    return m_gesture.Tick(view, Seconds());
}

void ZrMapInput::Cancel()
{
    m_gesture.Cancel();
    m_isTurning = false;
}
