// Fingers, mouse, wheel and keys on a scene, and the camera that follows the vehicle.

#include "ZrKit/scene/ZrScenePanel.h"
#include "ZrKit/scene/ZrSceneSurface.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QTouchEvent>
#include <QWheelEvent>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

float Turned(float from, float to)
{
    return std::fmod(to - from + 540.0F, 360.0F) - 180.0F;
}

} // namespace

class tst_ZrScenePanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void oneFingerTurns();
    void twoFingersMoveAndZoom();
    void mouse();
    void wheel();
    void follows();
    void exaggeration();
    void fromBehind();
    void showsAll();
    void keys_data();
    void keys();
    void otherKeys();

private:
    ZrSceneCamera& Camera() { return m_scene->m_camera; }

    void Send(QEvent::Type type, const QVector<std::pair<QPointF, QPointF>>& fingers)
    {
        static QTouchDevice device;
        device.setType(QTouchDevice::TouchScreen);
        QList<QTouchEvent::TouchPoint> points;
        for (const auto& finger : fingers) {
            QTouchEvent::TouchPoint point(points.size());
            point.setState(type == QEvent::TouchBegin ? Qt::TouchPointPressed : Qt::TouchPointMoved);
            point.setLastPos(finger.first);
            point.setPos(finger.second);
            points.append(point);
        }
        QTouchEvent event(type, &device, Qt::NoModifier, Qt::TouchPointMoved, points);
        QCoreApplication::sendEvent(m_panel, &event);
        QVERIFY(event.isAccepted());
    }

    void Drag(const QPoint& by, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const QPoint from(400, 300);
        QMouseEvent press(QEvent::MouseButtonPress, from, button, button, modifiers);
        QMouseEvent move(QEvent::MouseMove, from + by, Qt::NoButton, button, modifiers);
        QMouseEvent release(QEvent::MouseButtonRelease, from + by, button, Qt::NoButton, modifiers);
        for (QMouseEvent* event : {&press, &move, &release})
            QCoreApplication::sendEvent(m_panel, event);
    }

    std::unique_ptr<ZrSceneSurface> m_scene;
    std::unique_ptr<QWidget> m_window;
    ZrScenePanel* m_panel = nullptr;
};

void tst_ZrScenePanel::init()
{
    m_window.reset();
    m_scene = std::make_unique<ZrSceneSurface>();
    m_window = std::make_unique<QWidget>();
    m_window->resize(800, 600);
    m_panel = new ZrScenePanel(m_window.get(), *m_scene);
    m_panel->resize(800, 600);
    m_scene->m_hasVehicle = true;
    m_scene->m_pose.position = {10.0F, 20.0F, -5.0F};
    m_panel->PoseChanged();
}

void tst_ZrScenePanel::oneFingerTurns()
{
    QSignalSpy changed(m_panel, &ZrScenePanel::Changed);
    const float azimuth = Camera().Azimuth();
    const QVector3D target = Camera().Target();
    Send(QEvent::TouchBegin, {{{400, 300}, {400, 300}}});
    Send(QEvent::TouchUpdate, {{{400, 300}, {480, 300}}});
    // A tenth of the width.
    QVERIFY(std::fabs(std::fabs(Turned(azimuth, Camera().Azimuth())) - 27.0F) < 0.01F);
    QCOMPARE(Camera().Target(), target);
    QVERIFY(m_panel->Follows());
    QVERIFY(!changed.isEmpty());
}

void tst_ZrScenePanel::twoFingersMoveAndZoom()
{
    QSignalSpy follows(m_panel, &ZrScenePanel::FollowsChanged);
    const float distance = Camera().Distance();
    const QVector3D target = Camera().Target();
    Send(QEvent::TouchBegin, {{{350, 300}, {350, 300}}, {{450, 300}, {450, 300}}});
    m_panel->SetFollows(true);
    Camera().SetTarget(target);
    follows.clear();
    // Twice as far apart, about the same middle.
    Send(QEvent::TouchUpdate, {{{350, 300}, {300, 300}}, {{450, 300}, {500, 300}}});
    QVERIFY2(std::fabs(Camera().Distance() - distance / 2.0F) < 0.01F,
        qPrintable(QString::number(Camera().Distance())));
    QVERIFY((Camera().Target() - target).length() < 1e-4F);
    Send(QEvent::TouchUpdate, {{{300, 300}, {340, 320}}, {{500, 300}, {540, 320}}});
    QVERIFY(std::fabs(Camera().Distance() - distance / 2.0F) < 0.01F);
    QVERIFY((Camera().Target() - target).length() > 0.5F);
    QVERIFY(!m_panel->Follows());
    QCOMPARE(follows.size(), 1);
    // On top of each other they do not zoom.
    Send(QEvent::TouchUpdate, {{{300, 300}, {300, 300}}, {{301, 300}, {303, 300}}});
    QVERIFY(std::fabs(Camera().Distance() - distance / 2.0F) < 0.01F);
    Send(QEvent::TouchUpdate, {{{1, 1}, {2, 2}}, {{9, 9}, {8, 8}}, {{5, 5}, {50, 50}}});
    QVERIFY(std::fabs(Camera().Distance() - distance / 2.0F) < 0.01F);
}

void tst_ZrScenePanel::mouse()
{
    const float azimuth = Camera().Azimuth();
    Drag({80, 0}, Qt::LeftButton);
    QVERIFY(std::fabs(std::fabs(Turned(azimuth, Camera().Azimuth())) - 27.0F) < 0.01F);
    QVERIFY(m_panel->Follows());
    for (const auto modifiers :
        {Qt::KeyboardModifiers(Qt::NoModifier), Qt::KeyboardModifiers(Qt::ShiftModifier)}) {
        m_panel->SetFollows(true);
        const QVector3D target = Camera().Target();
        const float before = Camera().Azimuth();
        Drag({80, 0}, modifiers ? Qt::LeftButton : Qt::RightButton, modifiers);
        QVERIFY(Camera().Target() != target);
        QCOMPARE(Camera().Azimuth(), before);
        QVERIFY(!m_panel->Follows());
    }
}

void tst_ZrScenePanel::wheel()
{
    const float distance = Camera().Distance();
    for (const int notch : {120, -120}) {
        QWheelEvent event(QPointF(10, 10), QPointF(10, 10), QPoint(), QPoint(0, notch), Qt::NoButton,
            Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_panel, &event);
        QVERIFY(event.isAccepted());
        const float wanted = notch > 0 ? distance / ZrScenePanel::KeyZoom : distance;
        QVERIFY(std::fabs(Camera().Distance() - wanted) < 0.01F);
    }
}

void tst_ZrScenePanel::follows()
{
    QCOMPARE(Camera().Target(), QVector3D(10.0F, 20.0F, -5.0F));
    m_scene->m_pose.position = {30.0F, 0.0F, -6.0F};
    m_panel->PoseChanged();
    QCOMPARE(Camera().Target(), QVector3D(30.0F, 0.0F, -6.0F));
    m_panel->SetFollows(false);
    m_scene->m_pose.position = {40.0F, 0.0F, -6.0F};
    m_panel->PoseChanged();
    QCOMPARE(Camera().Target(), QVector3D(30.0F, 0.0F, -6.0F));
    QSignalSpy follows(m_panel, &ZrScenePanel::FollowsChanged);
    m_panel->SetFollows(true);
    m_panel->SetFollows(true);
    QCOMPARE(follows.size(), 1);
    QCOMPARE(Camera().Target(), QVector3D(40.0F, 0.0F, -6.0F));
    // There is nothing to go with.
    m_scene->m_hasVehicle = false;
    m_scene->m_pose.position = {50.0F, 0.0F, -6.0F};
    m_panel->PoseChanged();
    QCOMPARE(Camera().Target(), QVector3D(40.0F, 0.0F, -6.0F));
}

void tst_ZrScenePanel::exaggeration()
{
    const float distance = Camera().Distance();
    m_panel->SetExaggeration(3.0F);
    QCOMPARE(m_scene->m_exaggeration, 3.0F);
    QVERIFY(std::fabs(Camera().Distance() - 3.0F * distance) < 0.01F);
    QCOMPARE(Camera().Target().z(), -15.0F);
    for (const float none :
        {0.0F, -1.0F, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        m_panel->SetExaggeration(none);
        QCOMPARE(m_scene->m_exaggeration, 3.0F);
    }
    m_panel->SetExaggeration(1.0F);
    QVERIFY(std::fabs(Camera().Distance() - distance) < 0.01F);
}

void tst_ZrScenePanel::fromBehind()
{
    m_panel->SetFollows(false);
    m_panel->SetExaggeration(2.0F);
    for (const float heading : {0.0F, 123.0F, std::numeric_limits<float>::quiet_NaN()}) {
        m_scene->m_pose.heading = heading;
        m_panel->LookFromBehind(25.0F);
        QVERIFY(m_panel->Follows());
        QCOMPARE(Camera().Distance(), 50.0F);
        QCOMPARE(Camera().Target(), QVector3D(10.0F, 20.0F, -10.0F));
        const float off = std::fabs(Turned(std::isnan(heading) ? 0.0F : heading, Camera().Azimuth()));
        QVERIFY2(off > 90.0F, qPrintable(QString::number(off)));
    }
}

/// Every place of it is in the picture, wherever the camera stood.
void tst_ZrScenePanel::showsAll()
{
    const QVector3D before = Camera().Target();
    m_panel->ShowAll();
    QCOMPARE(Camera().Target(), before);
    const std::vector<QVector3D> trail{{-300, 0, -5}, {500, 900, -40}, {0, 100, 0}};
    m_scene->SetTrail(trail);
    m_panel->SetExaggeration(3.0F);
    m_panel->ShowAll();
    QVERIFY((Camera().Target() - QVector3D(100, 450, -60)).length() < 0.01F);
    for (QVector3D p : trail) {
        p.setZ(3.0F * p.z());
        const QVector3D at = Camera().Matrix(600, 600).map(p);
        QVERIFY2(std::fabs(at.x()) <= 1.0F && std::fabs(at.y()) <= 1.0F,
            qPrintable(QStringLiteral("%1 %2").arg(double(at.x())).arg(double(at.y()))));
    }
}

void tst_ZrScenePanel::keys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<float>("zoom");
    const int shift = static_cast<int>(Qt::ShiftModifier);
    const int keypad = static_cast<int>(Qt::KeypadModifier);
    QTest::newRow("+") << int(Qt::Key_Plus) << 0 << 1.2F;
    QTest::newRow("+ above =") << int(Qt::Key_Plus) << shift << 1.2F;
    QTest::newRow("=") << int(Qt::Key_Equal) << 0 << 1.2F;
    QTest::newRow("= with shift") << int(Qt::Key_Equal) << shift << 1.2F;
    QTest::newRow("+ of the block") << int(Qt::Key_Plus) << keypad << 1.2F;
    QTest::newRow("-") << int(Qt::Key_Minus) << 0 << 1.0F / 1.2F;
    QTest::newRow("- of the block") << int(Qt::Key_Minus) << keypad << 1.0F / 1.2F;
}

void tst_ZrScenePanel::keys()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(float, zoom);
    const float distance = Camera().Distance();
    QVERIFY(m_panel->OnKey(key, Qt::KeyboardModifiers(modifiers)));
    QVERIFY(std::fabs(Camera().Distance() - distance / zoom) < 0.01F);
}

void tst_ZrScenePanel::otherKeys()
{
    const float distance = Camera().Distance();
    const float azimuth = Camera().Azimuth();
    const float elevation = Camera().Elevation();
    QVERIFY(!m_panel->OnKey(Qt::Key_Plus, Qt::ControlModifier));
    QVERIFY(!m_panel->OnKey(Qt::Key_Minus, Qt::AltModifier));
    QVERIFY(!m_panel->OnKey(Qt::Key_Left, Qt::ShiftModifier));
    QVERIFY(!m_panel->OnKey(Qt::Key_A, Qt::NoModifier));
    QCOMPARE(Camera().Distance(), distance);
    QCOMPARE(Camera().Azimuth(), azimuth);
    QVERIFY(m_panel->OnKey(Qt::Key_Left, Qt::NoModifier));
    QVERIFY(std::fabs(std::fabs(Turned(azimuth, Camera().Azimuth())) - ZrScenePanel::KeyTurn) < 0.01F);
    QVERIFY(m_panel->OnKey(Qt::Key_Right, Qt::NoModifier));
    QVERIFY(std::fabs(Turned(azimuth, Camera().Azimuth())) < 0.01F);
    QVERIFY(m_panel->OnKey(Qt::Key_Up, Qt::NoModifier));
    QVERIFY(Camera().Elevation() > elevation);
    QVERIFY(m_panel->OnKey(Qt::Key_Down, Qt::NoModifier));
    QVERIFY(std::fabs(Camera().Elevation() - elevation) < 0.01F);
}

QTEST_MAIN(tst_ZrScenePanel)
#include "tst_ZrScenePanel.moc"
