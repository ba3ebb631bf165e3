// Fingers, mouse, wheel and keys on the map of a page, and where on the page it is.

#include "TouchOn.h"
#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrMapSurface.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QTimer>
#include <QTouchEvent>
#include <QWheelEvent>
#include <QtTest>

#include <cmath>
#include <memory>

namespace {

/// A panel on a screen with a ratio of its own.
class Panel : public ZrMapPanel
{
public:
    double ratio = 1.0;

    using ZrMapPanel::ZrMapPanel;

protected:
    int metric(PaintDeviceMetric what) const override
    {
        if (what == PdmDevicePixelRatioScaled)
            return qRound(ratio * devicePixelRatioFScale());
        return what == PdmDevicePixelRatio ? static_cast<int>(ratio) : ZrMapPanel::metric(what);
    }
};

bool IsNear(const QPointF& a, const QPointF& b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= 1e-4;
}

void SendMouse(QWidget& widget, QEvent::Type type, const QPointF& at, Qt::MouseButton button = Qt::LeftButton,
    Qt::MouseButtons buttons = Qt::LeftButton, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
    Qt::MouseEventSource source = Qt::MouseEventNotSynthesized)
{
    QMouseEvent event(type, at, at, at, button, buttons, modifiers, source);
    QCoreApplication::sendEvent(&widget, &event);
}

void Press(QWidget& widget, const QPointF& at)
{
    SendMouse(widget, QEvent::MouseButtonPress, at);
}

void Move(QWidget& widget, const QPointF& at)
{
    SendMouse(widget, QEvent::MouseMove, at, Qt::NoButton);
}

void Release(QWidget& widget, const QPointF& at)
{
    SendMouse(widget, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
}

} // namespace

class tst_ZrMapPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void match_data();
    void match();
    void matchSideBySide();
    void movedPanelTellsItsViewport();
    void fingerPans();
    void pinchZooms();
    void wheelZooms();
    void wheelWithoutNotches();
    void shiftTurns();
    void hiddenTurnIsOver();
    void keys_data();
    void keys();
    void otherKeysGoOn();
    void taps_data();
    void taps();
    void mouseTaps();
    void longPress();
    void hovered();
    void synthesizedMouseDoesNothing();
    void claimedFinger();
    void claimedMouse();
    void claimRefused();
    void claimIsNotAskedForOthers();
    void otherButtonKeepsTheDrag();
    void secondFingerCancels();
    void twoFingersAtOnceAreNotClaimed();
    void touchCancelCancels();
    void touchCancelOfAPan();
    void hideCancels();
    void claimMayRemoveItself();
    void framesOnlyWhileCoasting();
    void takesTheFocus();

private:
    QVector<int> Drags() const;

    QTouchDevice* m_device = nullptr;
    std::unique_ptr<QWidget> m_page;
    std::unique_ptr<ZrMapSurface> m_map;
    Panel* m_panel = nullptr;
    std::unique_ptr<QSignalSpy> m_dragged;
    std::unique_ptr<QSignalSpy> m_moved;
    std::unique_ptr<QSignalSpy> m_changed;
};

void tst_ZrMapPanel::initTestCase()
{
    m_device = QTest::createTouchDevice();
}

void tst_ZrMapPanel::init()
{
    m_page = std::make_unique<QWidget>();
    m_map = std::make_unique<ZrMapSurface>();
    m_page->resize(900, 700);
    m_panel = new Panel(m_page.get(), *m_map);
    m_panel->setGeometry(100, 50, 600, 400);
    m_map->m_camera.SetCentre({512345, 4812345});
    m_map->m_camera.SetScale(0.5);
    m_page->show();
    m_dragged = std::make_unique<QSignalSpy>(m_panel, &ZrMapPanel::Dragged);
    m_moved = std::make_unique<QSignalSpy>(m_panel, &ZrMapPanel::CameraMoved);
    m_changed = std::make_unique<QSignalSpy>(m_panel, &ZrMapPanel::Changed);
}

void tst_ZrMapPanel::cleanup()
{
    m_dragged.reset();
    m_moved.reset();
    m_changed.reset();
    m_page.reset();
    m_map.reset();
}

QVector<int> tst_ZrMapPanel::Drags() const
{
    QVector<int> drags;
    for (const QList<QVariant>& drag : qAsConst(*m_dragged))
        drags.append(drag[0].toInt());
    return drags;
}

void tst_ZrMapPanel::match_data()
{
    QTest::addColumn<double>("ratio");
    QTest::addColumn<QRect>("geometry");
    QTest::addColumn<QRect>("viewport");
    QTest::newRow("1") << 1.0 << QRect(100, 50, 600, 400) << QRect(100, 250, 600, 400);
    QTest::newRow("1.5") << 1.5 << QRect(100, 50, 600, 400) << QRect(150, 375, 900, 600);
    QTest::newRow("2") << 2.0 << QRect(100, 50, 600, 400) << QRect(200, 500, 1200, 800);
    QTest::newRow("1.5, odd") << 1.5 << QRect(1, 2, 3, 697) << QRect(2, 2, 4, 1045);
    QTest::newRow("whole page") << 1.0 << QRect(0, 0, 900, 700) << QRect(0, 0, 900, 700);
    QTest::newRow("beyond the page") << 1.0 << QRect(-10, 650, 100, 100) << QRect(-10, -50, 100, 100);
    QTest::newRow("nothing") << 2.0 << QRect(10, 20, 0, 0) << QRect(20, 1360, 0, 0);
}

void tst_ZrMapPanel::match()
{
    QFETCH(double, ratio);
    QFETCH(QRect, geometry);
    m_panel->ratio = ratio;
    m_panel->setGeometry(geometry);
    m_changed->clear();
    m_panel->Match();
    QTEST(m_map->m_viewport, "viewport");
    QCOMPARE(m_map->m_camera.Width(), m_map->m_viewport.width());
    QCOMPARE(m_map->m_camera.Height(), m_map->m_viewport.height());
    QCOMPARE(m_changed->count(), 1);
}

void tst_ZrMapPanel::matchSideBySide()
{
    ZrMapSurface other;
    auto* const right = new Panel(m_page.get(), other);
    for (const double ratio : {1.25, 1.5, 1.75, 2.625}) {
        m_panel->ratio = ratio;
        right->ratio = ratio;
        for (int width = 1; width < 40; ++width) {
            m_panel->setGeometry(1, 0, width, 100 + width);
            right->setGeometry(1 + width, 100 + width, 33, 600 - width);
            m_panel->Match();
            right->Match();
            QCOMPARE(m_map->m_viewport.x() + m_map->m_viewport.width(), other.m_viewport.x());
            QCOMPARE(other.m_viewport.y() + other.m_viewport.height(), m_map->m_viewport.y());
        }
    }
}

void tst_ZrMapPanel::movedPanelTellsItsViewport()
{
    QCOMPARE(m_map->m_viewport, QRect(100, 250, 600, 400));
    m_panel->move(10, 20);
    QCOMPARE(m_map->m_viewport, QRect(10, 280, 600, 400));
    QVERIFY(m_changed->count() >= 1);
    m_changed->clear();
    m_panel->resize(300, 200);
    QCOMPARE(m_map->m_viewport, QRect(10, 480, 300, 200));
    QCOMPARE(m_map->m_camera.Width(), 300);
    QVERIFY(m_changed->count() >= 1);
    QCOMPARE(m_moved->count(), 0);
}

void tst_ZrMapPanel::fingerPans()
{
    m_panel->ratio = 2.0;
    m_panel->Match();
    const QPointF held = m_map->m_camera.ToWorld({400, 300});
    auto sequence = TouchOn(m_panel, m_device, false);
    sequence.press(0, QPoint{200, 150}, m_panel).commit();
    sequence.move(0, QPoint{260, 170}, m_panel).commit();
    QVERIFY(IsNear(m_map->m_camera.ToPixel(held), {520, 340}));
    QCOMPARE(m_moved->count(), 1);
    QCOMPARE(m_changed->count(), 2); // with that of Match
    sequence.release(0, QPoint{260, 170}, m_panel).commit();
    QCOMPARE(m_dragged->count(), 0);
}

void tst_ZrMapPanel::pinchZooms()
{
    const QPointF first = m_map->m_camera.ToWorld({200, 200});
    const QPointF second = m_map->m_camera.ToWorld({300, 200});
    auto sequence = TouchOn(m_panel, m_device, false);
    sequence.press(0, QPoint{200, 200}, m_panel).commit();
    sequence.stationary(0).press(1, QPoint{300, 200}, m_panel).commit();
    sequence.stationary(0).move(1, QPoint{400, 200}, m_panel).commit();
    QCOMPARE(m_map->m_camera.Scale(), 0.25);
    QVERIFY(IsNear(m_map->m_camera.ToPixel(first), {200, 200}));
    QVERIFY(IsNear(m_map->m_camera.ToPixel(second), {400, 200}));
    QSignalSpy tapped(m_panel, &ZrMapPanel::Tapped);
    sequence.release(0, QPoint{200, 200}, m_panel).release(1, QPoint{400, 200}, m_panel).commit();
    QCOMPARE(tapped.count(), 0);
    QVERIFY(m_moved->count() >= 1);
}

void tst_ZrMapPanel::wheelZooms()
{
    m_panel->ratio = 1.5;
    m_panel->Match();
    const QPointF held = m_map->m_camera.ToWorld({300, 150});
    QWheelEvent event(
        {200, 100}, {200, 100}, {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(m_panel, &event);
    QCOMPARE(m_map->m_camera.Scale(), 0.5 / 1.25);
    QVERIFY(IsNear(m_map->m_camera.ToPixel(held), {300, 150}));
    QCOMPARE(m_moved->count(), 1);
}

void tst_ZrMapPanel::wheelWithoutNotches()
{
    QWheelEvent event(
        {200, 100}, {200, 100}, {}, {120, 0}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(m_panel, &event);
    QCOMPARE(m_map->m_camera.Scale(), 0.5);
    QCOMPARE(m_moved->count(), 0);
}

void tst_ZrMapPanel::shiftTurns()
{
    QSignalSpy hovered(m_panel, &ZrMapPanel::Hovered);
    SendMouse(
        *m_panel, QEvent::MouseButtonPress, {500, 200}, Qt::LeftButton, Qt::LeftButton, Qt::ShiftModifier);
    SendMouse(*m_panel, QEvent::MouseMove, {300, 0}, Qt::NoButton, Qt::LeftButton, Qt::ShiftModifier);
    QVERIFY(std::abs(m_map->m_camera.Rotation() - 90.0) < 1e-9);
    QCOMPARE(m_map->m_camera.Centre(), QPointF(512345, 4812345));
    QCOMPARE(m_moved->count(), 1);
    QCOMPARE(hovered.count(), 0);
    Release(*m_panel, {300, 0});
    SendMouse(*m_panel, QEvent::MouseMove, {500, 200}, Qt::NoButton, Qt::NoButton);
    QVERIFY(std::abs(m_map->m_camera.Rotation() - 90.0) < 1e-9);
    QCOMPARE(hovered.count(), 1);
}

/// The button is lifted where the panel does not hear of it.
void tst_ZrMapPanel::hiddenTurnIsOver()
{
    SendMouse(
        *m_panel, QEvent::MouseButtonPress, {500, 200}, Qt::LeftButton, Qt::LeftButton, Qt::ShiftModifier);
    m_panel->hide();
    m_panel->show();
    SendMouse(*m_panel, QEvent::MouseMove, {300, 0}, Qt::NoButton, Qt::NoButton);
    QCOMPARE(m_map->m_camera.Rotation(), 0.0);
    QCOMPARE(m_moved->count(), 0);
}

void tst_ZrMapPanel::keys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QPointF>("from"); // pixel
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<double>("scale");
    QTest::newRow("left") << int(Qt::Key_Left) << QPointF(300, 200) << QPointF(375, 200) << 0.5;
    QTest::newRow("right") << int(Qt::Key_Right) << QPointF(300, 200) << QPointF(225, 200) << 0.5;
    QTest::newRow("up") << int(Qt::Key_Up) << QPointF(300, 200) << QPointF(300, 250) << 0.5;
    QTest::newRow("down") << int(Qt::Key_Down) << QPointF(300, 200) << QPointF(300, 150) << 0.5;
    QTest::newRow("plus") << int(Qt::Key_Plus) << QPointF(300, 200) << QPointF(300, 200) << 0.4;
    QTest::newRow("equal") << int(Qt::Key_Equal) << QPointF(300, 200) << QPointF(300, 200) << 0.4;
    QTest::newRow("minus") << int(Qt::Key_Minus) << QPointF(300, 200) << QPointF(300, 200) << 0.625;
    QTest::newRow("north") << int(Qt::Key_N) << QPointF(300, 200) << QPointF(300, 200) << 0.5;
}

void tst_ZrMapPanel::keys()
{
    QFETCH(int, key);
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(double, scale);
    m_map->m_camera.SetRotation(30);
    const QPointF held = m_map->m_camera.ToWorld(from);
    QTest::keyClick(m_panel, static_cast<Qt::Key>(key));
    QVERIFY(IsNear(m_map->m_camera.ToPixel(held), to));
    QVERIFY(std::abs(m_map->m_camera.Scale() - scale) < 1e-12);
    QCOMPARE(m_map->m_camera.Rotation(), key == Qt::Key_N ? 0.0 : 30.0);
    QCOMPARE(m_moved->count(), 1);
    QCOMPARE(m_changed->count(), 1);
}

void tst_ZrMapPanel::otherKeysGoOn()
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_R, Qt::NoModifier);
    event.setAccepted(true);
    QCoreApplication::sendEvent(m_panel, &event);
    QVERIFY(!event.isAccepted());
    QCOMPARE(m_moved->count(), 0);
}

void tst_ZrMapPanel::taps_data()
{
    QTest::addColumn<double>("ratio");
    QTest::newRow("1") << 1.0;
    QTest::newRow("1.5") << 1.5;
    QTest::newRow("2") << 2.0;
}

void tst_ZrMapPanel::taps()
{
    QFETCH(double, ratio);
    m_panel->ratio = ratio;
    m_panel->Match();
    m_map->m_camera.SetRotation(20);
    QSignalSpy tapped(m_panel, &ZrMapPanel::Tapped);
    QSignalSpy doubleTapped(m_panel, &ZrMapPanel::DoubleTapped);
    const QPointF pixel = QPointF(120, 80) * ratio;
    auto sequence = TouchOn(m_panel, m_device, false);
    sequence.press(0, QPoint{120, 80}, m_panel).commit();
    sequence.release(0, QPoint{120, 80}, m_panel).commit();
    QCOMPARE(tapped.count(), 1);
    QCOMPARE(tapped[0][0].toPointF(), m_map->m_camera.ToWorld(pixel));
    QCOMPARE(tapped[0][1].toPointF(), pixel);
    QCOMPARE(doubleTapped.count(), 0);
    sequence.press(0, QPoint{120, 80}, m_panel).commit();
    sequence.release(0, QPoint{120, 80}, m_panel).commit();
    // Late on a machine that is busy it is a tap of its own.
    QCOMPARE(tapped.count() + doubleTapped.count(), 2);
    if (doubleTapped.count() == 1) {
        QCOMPARE(doubleTapped[0][0].toPointF(), m_map->m_camera.ToWorld(pixel));
        QCOMPARE(doubleTapped[0][1].toPointF(), pixel);
    }
    QCOMPARE(m_moved->count(), 0);
}

void tst_ZrMapPanel::mouseTaps()
{
    QSignalSpy tapped(m_panel, &ZrMapPanel::Tapped);
    Press(*m_panel, {10, 20});
    Release(*m_panel, {10, 20});
    QCOMPARE(tapped.count(), 1);
    QCOMPARE(tapped[0][1].toPointF(), QPointF(10, 20));
    SendMouse(*m_panel, QEvent::MouseButtonPress, {10, 20}, Qt::RightButton, Qt::RightButton);
    SendMouse(*m_panel, QEvent::MouseButtonRelease, {10, 20}, Qt::RightButton, Qt::NoButton);
    QCOMPARE(tapped.count(), 1);
}

void tst_ZrMapPanel::longPress()
{
    QSignalSpy held(m_panel, &ZrMapPanel::LongPressed);
    QSignalSpy tapped(m_panel, &ZrMapPanel::Tapped);
    m_panel->ratio = 2.0;
    m_panel->Match();
    m_changed->clear();
    auto sequence = TouchOn(m_panel, m_device, false);
    sequence.press(0, QPoint{120, 80}, m_panel).commit();
    QTRY_COMPARE(held.count(), 1);
    QCOMPARE(held[0][0].toPointF(), m_map->m_camera.ToWorld({240, 160}));
    QCOMPARE(held[0][1].toPointF(), QPointF(240, 160));
    sequence.release(0, QPoint{120, 80}, m_panel).commit();
    QCOMPARE(tapped.count(), 0);
    QCOMPARE(m_changed->count(), 0);
}

void tst_ZrMapPanel::hovered()
{
    QSignalSpy hovered(m_panel, &ZrMapPanel::Hovered);
    m_panel->ratio = 1.5;
    m_panel->Match();
    SendMouse(*m_panel, QEvent::MouseMove, {100, 60}, Qt::NoButton, Qt::NoButton);
    QCOMPARE(hovered.count(), 1);
    QCOMPARE(hovered[0][0].toPointF(), m_map->m_camera.ToWorld({150, 90}));
    QCOMPARE(hovered[0][1].toPointF(), QPointF(150, 90));
    Press(*m_panel, {100, 60});
    Move(*m_panel, {150, 60});
    Release(*m_panel, {150, 60});
    QCOMPARE(hovered.count(), 1);
}

void tst_ZrMapPanel::synthesizedMouseDoesNothing()
{
    m_panel->m_claim = [](const QPointF&) { return true; };
    QSignalSpy tapped(m_panel, &ZrMapPanel::Tapped);
    for (const auto source : {Qt::MouseEventSynthesizedByQt, Qt::MouseEventSynthesizedBySystem}) {
        SendMouse(*m_panel, QEvent::MouseButtonPress, {10, 20}, Qt::LeftButton, Qt::LeftButton, {}, source);
        SendMouse(*m_panel, QEvent::MouseMove, {60, 20}, Qt::NoButton, Qt::LeftButton, {}, source);
        SendMouse(*m_panel, QEvent::MouseButtonRelease, {60, 20}, Qt::LeftButton, Qt::NoButton, {}, source);
    }
    QCOMPARE(tapped.count(), 0);
    QCOMPARE(m_moved->count(), 0);
    QCOMPARE(m_dragged->count(), 0);
}

void tst_ZrMapPanel::claimedFinger()
{
    m_panel->ratio = 2.0;
    m_panel->Match();
    QVector<QPointF> asked;
    m_panel->m_claim = [&asked](const QPointF& pixel) {
        asked.append(pixel);
        return true;
    };
    auto sequence = TouchOn(m_panel, m_device, false);
    sequence.press(0, QPoint{100, 90}, m_panel).commit();
    QCOMPARE(asked, QVector<QPointF>({{200, 180}}));
    QCOMPARE(Drags(), QVector<int>({ZrMapPanel::dragBegin}));
    // A mark follows from the first pixel on, without a tap distance.
    sequence.move(0, QPoint{101, 90}, m_panel).commit();
    sequence.move(0, QPoint{150, 120}, m_panel).commit();
    sequence.release(0, QPoint{150, 120}, m_panel).commit();
    QCOMPARE(Drags(),
        QVector<int>(
            {ZrMapPanel::dragBegin, ZrMapPanel::dragMove, ZrMapPanel::dragMove, ZrMapPanel::dragEnd}));
    QCOMPARE((*m_dragged)[1][2].toPointF(), QPointF(202, 180));
    QCOMPARE((*m_dragged)[3][2].toPointF(), QPointF(300, 240));
    QCOMPARE((*m_dragged)[3][1].toPointF(), m_map->m_camera.ToWorld({300, 240}));
    QCOMPARE(m_moved->count(), 0);
    QCOMPARE(asked.size(), 1);
    QCOMPARE(m_map->m_camera.Centre(), QPointF(512345, 4812345));
}

void tst_ZrMapPanel::claimedMouse()
{
    m_panel->m_claim = [](const QPointF& pixel) { return pixel.x() < 200; };
    QSignalSpy tapped(m_panel, &ZrMapPanel::Tapped);
    Press(*m_panel, {100, 90});
    Move(*m_panel, {300, 90});
    Release(*m_panel, {300, 90});
    QCOMPARE(Drags(), QVector<int>({ZrMapPanel::dragBegin, ZrMapPanel::dragMove, ZrMapPanel::dragEnd}));
    QCOMPARE((*m_dragged)[2][2].toPointF(), QPointF(300, 90));
    // The second press of a double click is one like any other.
    m_dragged->clear();
    SendMouse(*m_panel, QEvent::MouseButtonDblClick, {100, 90});
    Release(*m_panel, {100, 90});
    QCOMPARE(Drags(), QVector<int>({ZrMapPanel::dragBegin, ZrMapPanel::dragEnd}));
    QCOMPARE(tapped.count(), 0);
    QCOMPARE(m_moved->count(), 0);
}

void tst_ZrMapPanel::claimRefused()
{
    m_panel->m_claim = [](const QPointF&) { return false; };
    const QPointF held = m_map->m_camera.ToWorld({300, 90});
    Press(*m_panel, {300, 90});
    Move(*m_panel, {350, 90});
    QVERIFY(IsNear(m_map->m_camera.ToPixel(held), {350, 90}));
    QCOMPARE(m_dragged->count(), 0);
    Release(*m_panel, {350, 90});
}

void tst_ZrMapPanel::claimIsNotAskedForOthers()
{
    int asked = 0;
    m_panel->m_claim = [&asked](const QPointF&) {
        ++asked;
        return true;
    };
    SendMouse(*m_panel, QEvent::MouseButtonPress, {10, 10}, Qt::MiddleButton, Qt::MiddleButton);
    SendMouse(*m_panel, QEvent::MouseButtonRelease, {10, 10}, Qt::MiddleButton, Qt::NoButton);
    SendMouse(*m_panel, QEvent::MouseButtonPress, {10, 10}, Qt::RightButton, Qt::RightButton);
    SendMouse(*m_panel, QEvent::MouseButtonRelease, {10, 10}, Qt::RightButton, Qt::NoButton);
    SendMouse(
        *m_panel, QEvent::MouseButtonPress, {10, 10}, Qt::LeftButton, Qt::LeftButton, Qt::ShiftModifier);
    Release(*m_panel, {10, 10});
    QCOMPARE(asked, 0);
    QCOMPARE(m_dragged->count(), 0);
}

void tst_ZrMapPanel::otherButtonKeepsTheDrag()
{
    m_panel->m_claim = [](const QPointF&) { return true; };
    Press(*m_panel, {100, 90});
    SendMouse(
        *m_panel, QEvent::MouseButtonPress, {100, 90}, Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    SendMouse(*m_panel, QEvent::MouseButtonRelease, {100, 90}, Qt::RightButton, Qt::LeftButton);
    QCOMPARE(Drags(), QVector<int>({ZrMapPanel::dragBegin}));
    Move(*m_panel, {120, 90});
    Release(*m_panel, {120, 90});
    QCOMPARE(Drags(), QVector<int>({ZrMapPanel::dragBegin, ZrMapPanel::dragMove, ZrMapPanel::dragEnd}));
}

void tst_ZrMapPanel::secondFingerCancels()
{
    m_panel->m_claim = [](const QPointF&) { return true; };
    QSignalSpy tapped(m_panel, &ZrMapPanel::Tapped);
    auto sequence = TouchOn(m_panel, m_device, false);
    sequence.press(0, QPoint{100, 90}, m_panel).commit();
    sequence.move(0, QPoint{130, 90}, m_panel).commit();
    sequence.stationary(0).press(1, QPoint{300, 90}, m_panel).commit();
    const QVector<int> cancelled({ZrMapPanel::dragBegin, ZrMapPanel::dragMove, ZrMapPanel::dragCancel});
    QCOMPARE(Drags(), cancelled);
    // What is left of the touch neither drags nor moves the map, nor taps.
    sequence.move(0, QPoint{200, 90}, m_panel).stationary(1).commit();
    sequence.stationary(0).release(1, QPoint{300, 90}, m_panel).commit();
    sequence.stationary(0).press(2, QPoint{400, 90}, m_panel).commit();
    sequence.stationary(0).release(2, QPoint{400, 90}, m_panel).commit();
    sequence.release(0, QPoint{200, 90}, m_panel).commit();
    QCOMPARE(Drags(), cancelled);
    QCOMPARE(m_moved->count(), 0);
    QCOMPARE(tapped.count(), 0);
    // The next one drags again.
    sequence.press(0, QPoint{100, 90}, m_panel).commit();
    sequence.release(0, QPoint{100, 90}, m_panel).commit();
    QCOMPARE(Drags(), cancelled + QVector<int>({ZrMapPanel::dragBegin, ZrMapPanel::dragEnd}));
}

void tst_ZrMapPanel::twoFingersAtOnceAreNotClaimed()
{
    int asked = 0;
    m_panel->m_claim = [&asked](const QPointF&) {
        ++asked;
        return true;
    };
    auto sequence = TouchOn(m_panel, m_device, false);
    sequence.press(0, QPoint{200, 200}, m_panel).press(1, QPoint{300, 200}, m_panel).commit();
    sequence.stationary(0).move(1, QPoint{400, 200}, m_panel).commit();
    QCOMPARE(m_map->m_camera.Scale(), 0.25);
    sequence.release(0, QPoint{200, 200}, m_panel).release(1, QPoint{400, 200}, m_panel).commit();
    QCOMPARE(asked, 0);
}

void tst_ZrMapPanel::touchCancelCancels()
{
    m_panel->m_claim = [](const QPointF&) { return true; };
    auto sequence = TouchOn(m_panel, m_device, false);
    sequence.press(0, QPoint{100, 90}, m_panel).commit();
    sequence.move(0, QPoint{130, 90}, m_panel).commit();
    QTouchEvent cancel(QEvent::TouchCancel, m_device);
    QCoreApplication::sendEvent(m_panel, &cancel);
    QVERIFY(cancel.isAccepted());
    QCOMPARE(Drags(), QVector<int>({ZrMapPanel::dragBegin, ZrMapPanel::dragMove, ZrMapPanel::dragCancel}));
    QCOMPARE(m_dragged->last()[2].toPointF(), QPointF(130, 90));
    QCoreApplication::sendEvent(m_panel, &cancel);
    QCOMPARE(m_dragged->count(), 3);
    sequence.release(0, QPoint{130, 90}, m_panel).commit();
    QCOMPARE(m_dragged->count(), 3);
}

void tst_ZrMapPanel::touchCancelOfAPan()
{
    QSignalSpy tapped(m_panel, &ZrMapPanel::Tapped);
    auto sequence = TouchOn(m_panel, m_device, false);
    sequence.press(0, QPoint{100, 90}, m_panel).commit();
    QTouchEvent cancel(QEvent::TouchCancel, m_device);
    QCoreApplication::sendEvent(m_panel, &cancel);
    QVERIFY(cancel.isAccepted());
    QCOMPARE(m_panel->m_input.m_gesture.FingerCount(), 0);
    sequence.release(0, QPoint{100, 90}, m_panel).commit();
    QCOMPARE(tapped.count(), 0);
}

void tst_ZrMapPanel::hideCancels()
{
    m_panel->m_claim = [](const QPointF&) { return true; };
    Press(*m_panel, {100, 90});
    Move(*m_panel, {130, 90});
    m_page->hide();
    QCOMPARE(Drags(), QVector<int>({ZrMapPanel::dragBegin, ZrMapPanel::dragMove, ZrMapPanel::dragCancel}));
    m_page->show();
    Move(*m_panel, {140, 90});
    Release(*m_panel, {140, 90});
    QCOMPARE(m_dragged->count(), 3);
    QCOMPARE(m_moved->count(), 0);
    // A finger that pans is forgotten too, and no long press comes of it.
    m_panel->m_claim = nullptr;
    Press(*m_panel, {100, 90});
    QVERIFY(m_panel->m_input.m_gesture.IsBusy());
    m_page->hide();
    QVERIFY(!m_panel->m_input.m_gesture.IsBusy());
    QCOMPARE(m_panel->m_input.m_gesture.FingerCount(), 0);
    QVERIFY(!m_panel->findChild<QTimer*>()->isActive());
}

void tst_ZrMapPanel::claimMayRemoveItself()
{
    m_panel->m_claim = [](const QPointF&) { return true; };
    connect(m_panel, &ZrMapPanel::Dragged, m_panel, [this](int drag) {
        if (drag == ZrMapPanel::dragMove)
            m_panel->hide();
    });
    Press(*m_panel, {100, 90});
    Move(*m_panel, {130, 90});
    QCOMPARE(Drags(), QVector<int>({ZrMapPanel::dragBegin, ZrMapPanel::dragMove, ZrMapPanel::dragCancel}));
}

void tst_ZrMapPanel::framesOnlyWhileCoasting()
{
    auto* const frames = m_panel->findChild<QTimer*>();
    QVERIFY(!frames->isActive());
    const ZrMapGesture& gesture = m_panel->m_input.m_gesture;
    // A finger that rests before it is lifted, as on a busy machine, does not make the map coast.
    for (int i = 0; i < 50 && !gesture.IsCoasting(); ++i) {
        Press(*m_panel, {100, 90});
        Move(*m_panel, {400, 90});
        Release(*m_panel, {400, 90});
    }
    QVERIFY(gesture.IsCoasting());
    QVERIFY(frames->isActive());
    m_changed->clear();
    QTRY_VERIFY(!gesture.IsCoasting());
    QVERIFY(m_changed->count() > 0);
    QVERIFY(!frames->isActive());
    // Nor after a tap.
    m_changed->clear();
    Press(*m_panel, {100, 90});
    QVERIFY(frames->isActive());
    Release(*m_panel, {100, 90});
    QTRY_VERIFY(!frames->isActive());
    QCOMPARE(m_changed->count(), 0);
}

void tst_ZrMapPanel::takesTheFocus()
{
    m_page->activateWindow();
    auto* const other = new QWidget(m_page.get());
    other->setFocusPolicy(Qt::StrongFocus);
    other->show();
    other->setFocus();
    QVERIFY(!m_panel->hasFocus());
    Press(*m_panel, {100, 90});
    QCOMPARE(m_page->focusWidget(), m_panel);
    Release(*m_panel, {100, 90});
    other->setFocus();
    auto sequence = TouchOn(m_panel, m_device, false);
    sequence.press(0, QPoint{100, 90}, m_panel).commit();
    QCOMPARE(m_page->focusWidget(), m_panel);
    sequence.release(0, QPoint{100, 90}, m_panel).commit();
}

QTEST_MAIN(tst_ZrMapPanel)
#include "tst_ZrMapPanel.moc"
