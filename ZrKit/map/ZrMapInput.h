#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapGesture.h"

#include <QElapsedTimer>

class QEvent;
class QTouchEvent;
class ZrMapView;

/// Hands the touch, mouse and wheel events of a widget to a `ZrMapGesture`.
///
/// \code
/// bool event(QEvent* e) override // of a page with Qt::WA_AcceptTouchEvents
/// {
///     const auto what = m_input.Handle(m_view, e, devicePixelRatioF());
///     if (what == ZrMapGesture::tap)
///         Select(m_view.ToWorld(m_input.m_gesture.Where()));
///     return e->isAccepted() || ZrPage::event(e);
/// }
/// \endcode
///
/// Events that it uses are accepted. Of a mouse the left button pans, the middle one too; with Shift held the
/// mouse turns the map about the middle of the view. Mouse events that Qt makes of touches are left alone.
/// GUI thread only.
class ZR_KIT_EXPORT ZrMapInput
{
public:
    ZrMapGesture m_gesture;

    /// Design pixels that a finger may move and still tap; never less than so many pixels of the widget.
    static constexpr double TapDistance = 10.0;

    ZrMapInput();

    /// \param pixelFactor device pixels for each pixel of the widget, `QWidget::devicePixelRatioF`
    /// \returns the last thing that came of the event
    ZrMapGesture::eEvent Handle(ZrMapView& view, QEvent* event, double pixelFactor);

    /// For each frame: lets the map coast on. `moved` asks for another frame.
    ZrMapGesture::eEvent Tick(ZrMapView& view);

    /// Fingers and mouse are taken away; nothing comes of what they had begun.
    void Cancel();

private:
    ZrMapGesture::eEvent Touch(ZrMapView& view, QTouchEvent& event, double pixelFactor);
    ZrMapGesture::eEvent Mouse(ZrMapView& view, QEvent* event, double pixelFactor);
    double Seconds() const;

    QElapsedTimer m_clock;
    bool m_isTurning = false; ///< by mouse and Shift
    QPointF m_turnFrom;
};
