// Fingers, mouse and wheel on a map.

#include "TouchOn.h"
#include "ZrKit/map/ZrMapGesture.h"
#include "ZrKit/map/ZrMapInput.h"
#include "ZrKit/map/ZrMapView.h"

#include <QMouseEvent>
#include <QTouchEvent>
#include <QWheelEvent>
#include <QWidget>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

using Event = ZrMapGesture::eEvent;

ZrMapView View()
{
    ZrMapView view;
    view.SetSize(800, 600);
    view.SetCentre({512345, 4812345});
    view.SetScale(0.5);
    return view;
}

bool IsNear(const QPointF& a, const QPointF& b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= 1e-4;
}

/// A widget with a map that notes what its events became.
class MapWidget : public QWidget
{
public:
    ZrMapView view = View();
    ZrMapInput input;
    QVector<int> events;

    MapWidget()
    {
        setAttribute(Qt::WA_AcceptTouchEvents);
        resize(800, 600);
    }

protected:
    bool event(QEvent* e) override
    {
        const Event what = input.Handle(view, e, 1.0);
        if (what != ZrMapGesture::nothing)
            events.append(what);
        return e->isAccepted() || QWidget::event(e);
    }
};

void SendMouse(QWidget& widget, QEvent::Type type, const QPointF& at, Qt::MouseButton button,
    Qt::KeyboardModifiers modifiers = Qt::NoModifier,
    Qt::MouseEventSource source = Qt::MouseEventNotSynthesized)
{
    QMouseEvent event(type, at, at, at, button, button, modifiers, source);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

class tst_ZrMapGesture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void panIsOneToOne();
    void smallMovementIsATap();
    void tapDistanceIsMadeUp();
    void movementBackIsNoTap();
    void doubleTap();
    void tapsFarApartAreTwo();
    void tapsLateAreTwo();
    void thirdTapStartsAnew();
    void longPress();
    void secondFingerIsNoTap();
    void pinchHoldsBothFingers();
    void pinchBelowThresholdDoesNotTurn();
    void turnSetsInWithoutAJump();
    void turningCanBeOff();
    void fingersOnOneSpot();
    void thirdFingerIsIgnored();
    void fingerLeftGoesOnPanning();
    void coastsAfterRelease();
    void coastingEnds();
    void slowFingerDoesNotCoast();
    void fingerAtRestDoesNotCoast();
    void touchStopsCoasting();
    void wheelZoomsAboutThePointer();
    void cancelLeavesNothing();
    void unknownFingerIsIgnored();
    void ignoresNonsense();
    void touchEvents();
    void mouseEvents();
    void mouseTurnsWithShift();
    void synthesizedMouseIsLeftAlone();
    void rightButtonIsLeftAlone();
    void wheelEvents();
    void pixelFactor();
};

void tst_ZrMapGesture::panIsOneToOne()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    const QPointF held = view.ToWorld({100, 100});
    QCOMPARE(gesture.Press(1, {100, 100}, 0), ZrMapGesture::nothing);
    QCOMPARE(gesture.Move(view, 1, {150, 120}, 0.1), ZrMapGesture::moved);
    QVERIFY(IsNear(view.ToPixel(held), {150, 120}));
    QCOMPARE(gesture.Move(view, 1, {151, 120}, 5), ZrMapGesture::moved);
    QVERIFY(IsNear(view.ToPixel(held), {151, 120}));
}

void tst_ZrMapGesture::smallMovementIsATap()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    QCOMPARE(gesture.Move(view, 1, {106, 108}, 0.1), ZrMapGesture::nothing);
    QCOMPARE(gesture.Release(view, 1, {106, 108}, 0.2), ZrMapGesture::tap);
    QCOMPARE(gesture.Where(), QPointF(100, 100));
    QCOMPARE(view.Centre(), View().Centre());
    QVERIFY(!gesture.IsBusy());
}

void tst_ZrMapGesture::tapDistanceIsMadeUp()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    const QPointF held = view.ToWorld({100, 100});
    gesture.Press(1, {100, 100}, 0);
    gesture.Move(view, 1, {105, 100}, 0.1);
    gesture.Move(view, 1, {111, 100}, 0.2);
    QVERIFY(IsNear(view.ToPixel(held), {111, 100}));
}

void tst_ZrMapGesture::movementBackIsNoTap()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    gesture.Move(view, 1, {130, 100}, 0.1);
    gesture.Move(view, 1, {100, 100}, 0.2);
    QVERIFY(gesture.Release(view, 1, {100, 100}, 5) != ZrMapGesture::tap);
}

void tst_ZrMapGesture::doubleTap()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    QCOMPARE(gesture.Release(view, 1, {100, 100}, 0.1), ZrMapGesture::tap);
    gesture.Press(2, {110, 100}, 0.3);
    QCOMPARE(gesture.Release(view, 2, {110, 100}, 0.4), ZrMapGesture::doubleTap);
    QCOMPARE(gesture.Where(), QPointF(110, 100));
}

void tst_ZrMapGesture::tapsFarApartAreTwo()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    gesture.Release(view, 1, {100, 100}, 0.1);
    gesture.Press(1, {150, 100}, 0.3);
    QCOMPARE(gesture.Release(view, 1, {150, 100}, 0.4), ZrMapGesture::tap);
}

void tst_ZrMapGesture::tapsLateAreTwo()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    gesture.Release(view, 1, {100, 100}, 0.1);
    gesture.Press(1, {100, 100}, 0.45);
    QCOMPARE(gesture.Release(view, 1, {100, 100}, 0.6), ZrMapGesture::tap);
}

void tst_ZrMapGesture::thirdTapStartsAnew()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    QVector<int> events;
    for (int i = 0; i < 4; ++i) {
        gesture.Press(1, {100, 100}, i * 0.2);
        events.append(gesture.Release(view, 1, {100, 100}, i * 0.2 + 0.1));
    }
    QCOMPARE(events,
        QVector<int>(
            {ZrMapGesture::tap, ZrMapGesture::doubleTap, ZrMapGesture::tap, ZrMapGesture::doubleTap}));
}

void tst_ZrMapGesture::longPress()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    QVERIFY(gesture.IsBusy());
    QCOMPARE(gesture.Tick(view, 0.69), ZrMapGesture::nothing);
    QCOMPARE(gesture.Tick(view, 0.7), ZrMapGesture::longPress);
    QCOMPARE(gesture.Where(), QPointF(100, 100));
    QCOMPARE(gesture.Tick(view, 2), ZrMapGesture::nothing);
    QCOMPARE(gesture.Release(view, 1, {100, 100}, 3), ZrMapGesture::nothing);
}

void tst_ZrMapGesture::secondFingerIsNoTap()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    gesture.Press(2, {300, 100}, 0.05);
    QCOMPARE(gesture.Tick(view, 2), ZrMapGesture::nothing);
    QCOMPARE(gesture.Release(view, 2, {300, 100}, 2.1), ZrMapGesture::nothing);
    QCOMPARE(gesture.Release(view, 1, {100, 100}, 2.2), ZrMapGesture::nothing);
    QCOMPARE(view.Centre(), View().Centre());
}

void tst_ZrMapGesture::pinchHoldsBothFingers()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    const QPointF a = view.ToWorld({300, 300});
    const QPointF b = view.ToWorld({500, 300});
    gesture.Press(1, {300, 300}, 0);
    gesture.Press(2, {500, 300}, 0);
    gesture.Move(view, 1, {200, 320}, 0.1);
    gesture.Move(view, 2, {600, 320}, 0.1);
    QVERIFY(IsNear((view.ToPixel(a) + view.ToPixel(b)) / 2, {400, 320}));
    QVERIFY(std::abs(view.Scale() - 0.25) < 1e-9);
}

void tst_ZrMapGesture::pinchBelowThresholdDoesNotTurn()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {300, 300}, 0);
    gesture.Press(2, {500, 300}, 0);
    gesture.Move(view, 2, {500, 260}, 0.1); // 11.3 degrees
    QCOMPARE(view.Rotation(), 0.0);
}

void tst_ZrMapGesture::turnSetsInWithoutAJump()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {300, 300}, 0);
    gesture.Press(2, {500, 300}, 0);
    gesture.Move(view, 2, {500, 250}, 0.1); // 14 degrees counter-clockwise
    QCOMPARE(view.Rotation(), 0.0);
    const double before = std::atan2(50, 200);
    gesture.Move(view, 2, {500, 200}, 0.2);
    const double after = std::atan2(100, 200);
    QVERIFY(std::abs(view.Rotation() - qRadiansToDegrees(after - before)) < 1e-6);
}

void tst_ZrMapGesture::turningCanBeOff()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.m_canTurn = false;
    gesture.Press(1, {300, 300}, 0);
    gesture.Press(2, {500, 300}, 0);
    gesture.Move(view, 2, {400, 100}, 0.1);
    gesture.Move(view, 2, {300, 100}, 0.2);
    QCOMPARE(view.Rotation(), 0.0);
}

void tst_ZrMapGesture::fingersOnOneSpot()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {300, 300}, 0);
    gesture.Press(2, {300, 300}, 0);
    gesture.Move(view, 2, {301, 300}, 0.1);
    QCOMPARE(view.Scale(), 0.5);
    gesture.Move(view, 2, {400, 300}, 0.2);
    QCOMPARE(view.Scale(), 0.5);
    gesture.Move(view, 2, {500, 300}, 0.3);
    QCOMPARE(view.Scale(), 0.25);
}

void tst_ZrMapGesture::thirdFingerIsIgnored()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {300, 300}, 0);
    gesture.Press(2, {500, 300}, 0);
    gesture.Press(3, {600, 300}, 0);
    QCOMPARE(gesture.Move(view, 3, {700, 500}, 0.1), ZrMapGesture::nothing);
    QCOMPARE(view.Centre(), View().Centre());
}

void tst_ZrMapGesture::fingerLeftGoesOnPanning()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {300, 300}, 0);
    gesture.Press(2, {500, 300}, 0);
    gesture.Move(view, 2, {600, 300}, 0.1);
    gesture.Release(view, 1, {300, 300}, 0.2);
    const QPointF held = view.ToWorld({600, 300});
    gesture.Move(view, 2, {610, 320}, 0.3);
    QVERIFY(IsNear(view.ToPixel(held), {610, 320}));
}

void tst_ZrMapGesture::coastsAfterRelease()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    const QPointF held = view.ToWorld({100, 100});
    gesture.Press(1, {100, 100}, 0);
    for (int i = 1; i <= 10; ++i)
        gesture.Move(view, 1, {100.0 + 20 * i, 100}, i * 0.02);
    gesture.Release(view, 1, {300, 100}, 0.2);
    QVERIFY(gesture.IsCoasting());
    // Not while the finger was down.
    QVERIFY(IsNear(view.ToPixel(held), {300, 100}));
    QCOMPARE(gesture.Tick(view, 0.2 + 0.01), ZrMapGesture::moved);
    // It leaves the finger with about its speed, 1000 pixels per second.
    const double first = view.ToPixel(held).x() - 300;
    QVERIFY2(first > 9 && first < 12, qPrintable(QString::number(first)));
    double before = first;
    double step = first;
    for (int i = 2; i < 70; ++i) {
        gesture.Tick(view, 0.2 + 0.01 * i);
        const double now = view.ToPixel(held).x() - 300;
        QVERIFY(now - before <= step + 1e-6);
        step = now - before;
        before = now;
    }
}

void tst_ZrMapGesture::coastingEnds()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    gesture.Move(view, 1, {200, 100}, 0.05);
    gesture.Release(view, 1, {200, 100}, 0.05);
    QCOMPARE(gesture.Tick(view, 60), ZrMapGesture::moved);
    QVERIFY(!gesture.IsBusy());
    const QPointF centre = view.Centre();
    QCOMPARE(gesture.Tick(view, 61), ZrMapGesture::nothing);
    QCOMPARE(view.Centre(), centre);
}

void tst_ZrMapGesture::slowFingerDoesNotCoast()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    for (int i = 1; i <= 40; ++i)
        gesture.Move(view, 1, {100.0 + i, 100}, i * 0.05);
    gesture.Release(view, 1, {140, 100}, 2.02);
    QVERIFY(!gesture.IsCoasting());
}

void tst_ZrMapGesture::fingerAtRestDoesNotCoast()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    gesture.Move(view, 1, {300, 100}, 0.05);
    gesture.Release(view, 1, {300, 100}, 0.5);
    QVERIFY(!gesture.IsCoasting());
}

void tst_ZrMapGesture::touchStopsCoasting()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    gesture.Move(view, 1, {200, 100}, 0.05);
    gesture.Release(view, 1, {200, 100}, 0.05);
    gesture.Tick(view, 0.1);
    gesture.Press(1, {400, 400}, 0.1);
    const QPointF centre = view.Centre();
    QVERIFY(!gesture.IsCoasting());
    gesture.Tick(view, 0.2);
    QCOMPARE(view.Centre(), centre);
}

void tst_ZrMapGesture::wheelZoomsAboutThePointer()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    const QPointF held = view.ToWorld({700, 50});
    QCOMPARE(gesture.Wheel(view, {700, 50}, 2), ZrMapGesture::moved);
    QCOMPARE(view.Scale(), 0.5 / (1.25 * 1.25));
    QVERIFY(IsNear(view.ToPixel(held), {700, 50}));
    gesture.Wheel(view, {700, 50}, -2);
    QVERIFY(std::abs(view.Scale() - 0.5) < 1e-12);
    QCOMPARE(gesture.Wheel(view, {700, 50}, 0), ZrMapGesture::nothing);
    QCOMPARE(gesture.Wheel(view, {700, 50}, std::numeric_limits<double>::quiet_NaN()), ZrMapGesture::nothing);
}

void tst_ZrMapGesture::cancelLeavesNothing()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    gesture.Press(1, {100, 100}, 0);
    gesture.Cancel();
    QCOMPARE(gesture.FingerCount(), 0);
    QVERIFY(!gesture.IsBusy());
    QCOMPARE(gesture.Release(view, 1, {100, 100}, 0.1), ZrMapGesture::nothing);
}

void tst_ZrMapGesture::unknownFingerIsIgnored()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    QCOMPARE(gesture.Move(view, 9, {100, 100}, 0), ZrMapGesture::nothing);
    QCOMPARE(gesture.Release(view, 9, {100, 100}, 0), ZrMapGesture::nothing);
    QCOMPARE(view.Centre(), View().Centre());
}

void tst_ZrMapGesture::ignoresNonsense()
{
    ZrMapView view = View();
    ZrMapGesture gesture;
    const double bad = std::numeric_limits<double>::quiet_NaN();
    gesture.Press(1, {bad, 0}, 0);
    QCOMPARE(gesture.FingerCount(), 0);
    gesture.Press(1, {100, 100}, 0);
    gesture.Move(view, 1, {bad, 0}, 0);
    gesture.Release(view, 1, {bad, 0}, 0);
    QCOMPARE(view.Centre(), View().Centre());
    QCOMPARE(gesture.FingerCount(), 0);
}

void tst_ZrMapGesture::touchEvents()
{
    MapWidget map;
    map.show();
    auto* device = QTest::createTouchDevice();
    const QPointF held = map.view.ToWorld({300, 300});
    auto sequence = TouchOn(&map, device, false);
    sequence.press(0, QPoint{300, 300}, &map).commit();
    sequence.move(0, QPoint{340, 310}, &map).commit();
    QVERIFY(IsNear(map.view.ToPixel(held), {340, 310}));
    sequence.stationary(0).press(1, QPoint{540, 310}, &map).commit();
    sequence.stationary(0).move(1, QPoint{740, 310}, &map).commit();
    QVERIFY(std::abs(map.view.Scale() - 0.25) < 1e-9);
    sequence.release(0, QPoint{340, 310}, &map).release(1, QPoint{740, 310}, &map).commit();
    QCOMPARE(map.input.m_gesture.FingerCount(), 0);
    QVERIFY(!map.events.contains(ZrMapGesture::tap));
    sequence.press(0, QPoint{100, 100}, &map).commit();
    sequence.release(0, QPoint{100, 100}, &map).commit();
    QCOMPARE(map.events.last(), int(ZrMapGesture::tap));
    sequence.press(0, QPoint{100, 100}, &map).commit();
    QTouchEvent cancel(QEvent::TouchCancel, device);
    QCoreApplication::sendEvent(&map, &cancel);
    QCOMPARE(map.input.m_gesture.FingerCount(), 0);
}

void tst_ZrMapGesture::mouseEvents()
{
    MapWidget map;
    const QPointF held = map.view.ToWorld({300, 300});
    SendMouse(map, QEvent::MouseMove, {10, 10}, Qt::NoButton);
    QVERIFY(map.events.isEmpty());
    SendMouse(map, QEvent::MouseButtonPress, {300, 300}, Qt::LeftButton);
    SendMouse(map, QEvent::MouseMove, {350, 300}, Qt::LeftButton);
    SendMouse(map, QEvent::MouseButtonRelease, {350, 300}, Qt::LeftButton);
    QVERIFY(IsNear(map.view.ToPixel(held), {350, 300}));
    map.events.clear();
    SendMouse(map, QEvent::MouseButtonPress, {300, 300}, Qt::LeftButton);
    SendMouse(map, QEvent::MouseButtonRelease, {300, 300}, Qt::LeftButton);
    SendMouse(map, QEvent::MouseButtonDblClick, {300, 300}, Qt::LeftButton);
    SendMouse(map, QEvent::MouseButtonRelease, {300, 300}, Qt::LeftButton);
    QCOMPARE(map.events, QVector<int>({ZrMapGesture::tap, ZrMapGesture::doubleTap}));
}

void tst_ZrMapGesture::mouseTurnsWithShift()
{
    MapWidget map;
    SendMouse(map, QEvent::MouseButtonPress, {600, 300}, Qt::LeftButton, Qt::ShiftModifier);
    SendMouse(map, QEvent::MouseMove, {400, 100}, Qt::LeftButton, Qt::ShiftModifier);
    SendMouse(map, QEvent::MouseButtonRelease, {400, 100}, Qt::LeftButton, Qt::ShiftModifier);
    QVERIFY(std::abs(map.view.Rotation() - 90) < 1e-9);
    QCOMPARE(map.view.Centre(), View().Centre());
    SendMouse(map, QEvent::MouseMove, {600, 300}, Qt::NoButton);
    QVERIFY(std::abs(map.view.Rotation() - 90) < 1e-9);
}

void tst_ZrMapGesture::synthesizedMouseIsLeftAlone()
{
    MapWidget map;
    for (const auto source : {Qt::MouseEventSynthesizedByQt, Qt::MouseEventSynthesizedBySystem}) {
        SendMouse(map, QEvent::MouseButtonPress, {300, 300}, Qt::LeftButton, Qt::NoModifier, source);
        SendMouse(map, QEvent::MouseMove, {400, 300}, Qt::LeftButton, Qt::NoModifier, source);
        SendMouse(map, QEvent::MouseButtonRelease, {400, 300}, Qt::LeftButton, Qt::NoModifier, source);
    }
    QVERIFY(map.events.isEmpty());
    QCOMPARE(map.view.Centre(), View().Centre());
}

void tst_ZrMapGesture::rightButtonIsLeftAlone()
{
    MapWidget map;
    SendMouse(map, QEvent::MouseButtonPress, {300, 300}, Qt::RightButton);
    SendMouse(map, QEvent::MouseButtonRelease, {300, 300}, Qt::RightButton);
    QVERIFY(map.events.isEmpty());
    QCOMPARE(map.input.m_gesture.FingerCount(), 0);
}

void tst_ZrMapGesture::wheelEvents()
{
    MapWidget map;
    const QPointF held = map.view.ToWorld({700, 50});
    QWheelEvent event(
        {700, 50}, {700, 50}, {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&map, &event);
    QCOMPARE(map.view.Scale(), 0.5 / 1.25);
    QVERIFY(IsNear(map.view.ToPixel(held), {700, 50}));
}

void tst_ZrMapGesture::pixelFactor()
{
    ZrMapView view = View();
    ZrMapInput input;
    QWheelEvent event(
        {350, 25}, {350, 25}, {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    const QPointF held = view.ToWorld({700, 50});
    input.Handle(view, &event, 2.0);
    QVERIFY(IsNear(view.ToPixel(held), {700, 50}));
}

QTEST_MAIN(tst_ZrMapGesture)
#include "tst_ZrMapGesture.moc"
