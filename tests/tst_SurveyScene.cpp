// The page "3D": the vehicle as the others tell of it, and the fingers that turn the camera.

#include "SurveyWindow.h"
#include "ZrKit/scene/ZrDepthLegend.h"
#include "ZrKit/scene/ZrScenePanel.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "apps/ZrSurvey/ScenePage.h"

#include <QSignalSpy>
#include <QWheelEvent>

#include <cmath>
#include <limits>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

SurveyVehicle::Pose PoseAt(double lat, double lng)
{
    SurveyVehicle::Pose pose;
    pose.lat = lat;
    pose.lng = lng;
    pose.depth = 12.5;
    pose.altitude = 8.0;
    pose.heading = 123.4;
    pose.pitch = -5.0;
    pose.roll = 7.5;
    return pose;
}

} // namespace

class tst_SurveyScene : public SurveyWindow
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void cleanup() { Close(); }

    void empty();
    void valuesAreShown();
    void unknownValues();
    void poseReachesTheScene();
    void wayBecomesTrailAndFloor();
    void liveAndReviewedApart();
    void sameFixIsNoNewPlace();
    void orbitByDrag();
    void zoomByWheel();
    void panEndsFollowing();
    void follow();
    void keys();
    void pictureTurns();
    void idlePageDrawsNothing();
    void units();
    void legend();
    void everySize();

private:
    ScenePage& Page() { return *static_cast<ScenePage*>(m_view->GetPage(S("Scene"))); }

    static QString S(const char* text) { return QString::fromUtf8(text); }

    ZrScenePanel& Panel() { return *Page().findChild<ZrScenePanel*>(); }

    SurveyVehicle& Vehicle() { return m_view->Model().vehicle; }

    ZrValueTile& Tile(const char* caption)
    {
        for (ZrValueTile* tile : Page().findChildren<ZrValueTile*>()) {
            if (tile->accessibleName().startsWith(QLatin1String(caption)))
                return *tile;
        }
        qFatal("no tile %s", caption);
    }

    ZrBtn& Button(const char* hint)
    {
        for (ZrBtn* button : Page().findChildren<ZrBtn*>()) {
            if (button->toolTip().startsWith(QLatin1String(hint)))
                return *button;
        }
        qFatal("no button %s", hint);
    }

    void Drag(const QPoint& from, const QPoint& to, Qt::MouseButton button)
    {
        QTest::mousePress(&Panel(), button, Qt::NoModifier, from);
        for (const QPoint& at : {(from + to) / 2, to}) {
            QMouseEvent move(
                QEvent::MouseMove, at, Panel().mapToGlobal(at), Qt::NoButton, button, Qt::NoModifier);
            QCoreApplication::sendEvent(&Panel(), &move);
        }
        QTest::mouseRelease(&Panel(), button, Qt::NoModifier, to);
    }
};

void tst_SurveyScene::init()
{
    Open();
    m_view->Show(S("Scene"));
    QTRY_VERIFY(Page().isVisible());
    Settle();
}

void tst_SurveyScene::empty()
{
    QVERIFY(!Page().Scene().m_hasVehicle);
    QVERIFY(Page().Scene().Trail().empty());
    QVERIFY(Page().Scene().Floor().IsEmpty());
    for (const char* caption : {"Heading", "Pitch", "Roll", "Depth", "Altitude"})
        QCOMPARE(Tile(caption).Value(), QString());
    // Everything may be touched all the same.
    Drag(QPoint(300, 300), QPoint(400, 300), Qt::LeftButton);
    for (const int key : {Qt::Key_F, Qt::Key_X, Qt::Key_Home, Qt::Key_Plus, Qt::Key_Minus})
        QTest::keyClick(m_view.get(), static_cast<Qt::Key>(key));
    QVERIFY(!m_view->grab().isNull());
}

void tst_SurveyScene::valuesAreShown()
{
    Vehicle().Set(PoseAt(48.0, -68.0), S("Boot äß"), true);
    QCOMPARE(Tile("Heading").Value(), S("123.4"));
    QCOMPARE(Tile("Heading").Unit(), S("°"));
    QCOMPARE(Tile("Pitch").Value(), S("-5.0"));
    QCOMPARE(Tile("Roll").Value(), S("7.5"));
    QCOMPARE(Tile("Depth").Value(), S("12.5"));
    QCOMPARE(Tile("Altitude").Value(), S("8.0"));
    SurveyVehicle::Pose pose = PoseAt(48.0, -68.0);
    pose.heading = 359.97;
    pose.pitch = -0.04;
    pose.roll = -0.0;
    Vehicle().Set(pose, S("Boot äß"), true);
    QCOMPARE(Tile("Heading").Value(), S("0.0"));
    QCOMPARE(Tile("Pitch").Value(), S("0.0"));
    QCOMPARE(Tile("Roll").Value(), S("0.0"));
}

void tst_SurveyScene::unknownValues()
{
    SurveyVehicle::Pose pose;
    Vehicle().Set(pose, S("boat"), true);
    QVERIFY(!Page().Scene().m_hasVehicle);
    pose.lat = 48.0;
    pose.lng = -68.0;
    pose.heading = unknown;
    pose.pitch = std::numeric_limits<double>::infinity();
    Vehicle().Set(pose, S("boat"), true);
    QVERIFY(Page().Scene().m_hasVehicle);
    QVERIFY(std::isfinite(Page().Scene().m_pose.position.z()));
    for (const char* caption : {"Heading", "Pitch", "Roll", "Depth", "Altitude"})
        QCOMPARE(Tile(caption).Value(), QString());
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    QVERIFY(std::isfinite(Page().Scene().m_camera.Azimuth()));
    QVERIFY(!m_view->grab().isNull());
}

/// Metres from where the way began, east, north and up.
void tst_SurveyScene::poseReachesTheScene()
{
    Vehicle().Set(PoseAt(48.0, -68.0), S("boat"), true);
    const ZrScenePose& pose = Page().Scene().m_pose;
    QVERIFY(pose.position.toVector2D().length() < 0.1F);
    QCOMPARE(pose.position.z(), -12.5F);
    QCOMPARE(pose.heading, 123.4F);
    QCOMPARE(pose.pitch, -5.0F);
    QCOMPARE(pose.roll, 7.5F);
    // A thousandth of a degree of latitude: 111.2 m on a meridian, of a grid that is turned and scaled a
    // little.
    Vehicle().Set(PoseAt(48.001, -68.0), S("boat"), true);
    QVERIFY2(std::fabs(pose.position.y() - 111.2F) < 0.5F, qPrintable(QString::number(pose.position.y())));
    QVERIFY(std::fabs(pose.position.x()) < 5.0F);
}

void tst_SurveyScene::wayBecomesTrailAndFloor()
{
    std::vector<ZrScenePlace> way;
    for (int i = 0; i < 200; ++i)
        way.push_back({48.0 + i * 1e-5, -68.0 + (i % 10) * 1e-5, 5.0, 10.0});
    way.push_back({unknown, unknown, 5.0, 10.0});
    Vehicle().SetWay(way);
    Vehicle().Set(PoseAt(48.001, -68.0), S("line.log"), false);
    // Of a long way a worker makes it.
    QVERIFY(Page().Way().IsBuilding());
    QVERIFY(Page().Scene().Trail().empty());
    QTRY_VERIFY(!Page().Way().IsWorking());
    QVERIFY(!Page().Way().IsBuilding());
    QCOMPARE(Page().Scene().Trail().size(), std::size_t(200));
    QVERIFY(Page().Scene().m_hasVehicle);
    QVERIFY(!Page().Scene().Floor().IsEmpty());
    QVERIFY(std::fabs(Page().Scene().Floor().Lowest() + 15.0F) < 0.01F);
    // Of another recording: nothing of the first is left.
    Vehicle().SetWay({{10.0, 20.0, 1.0, 2.0}, {10.0001, 20.0, 1.0, 2.0}});
    Vehicle().Set(PoseAt(10.0, 20.0), S("other.log"), false);
    QCOMPARE(Page().Scene().Trail().size(), std::size_t(2));
    QVERIFY(Page().Scene().Trail()[0].toVector2D().length() < 0.1F);
    Vehicle().Clear();
    QCOMPARE(Page().Scene().Trail().size(), std::size_t(0));
    QVERIFY(!Page().Scene().m_hasVehicle);
}

/// What a source tells meanwhile does not disturb the recording that is looked at.
void tst_SurveyScene::liveAndReviewedApart()
{
    SurveyModel& model = m_view->Model();
    Vehicle().Set(PoseAt(48.0, -68.0), S("Boat"), true);
    SurveyVehicle::Pose reviewed = PoseAt(48.0, -68.0);
    reviewed.heading = 10.0;
    model.reviewed.Set(reviewed, S("a.log"), false);
    QCOMPARE(Tile("Heading").Value(), S("123.4"));
    model.isReviewLast = true;
    m_view->Show(S("Home"));
    m_view->Show(S("Scene"));
    QCOMPARE(Tile("Heading").Value(), S("10.0"));
    const std::size_t trail = Page().Scene().Trail().size();
    Vehicle().Set(PoseAt(48.001, -68.0), S("Boat"), true);
    QCOMPARE(Tile("Heading").Value(), S("10.0"));
    QCOMPARE(Page().Scene().Trail().size(), trail);
    model.isReviewLast = false;
    m_view->Show(S("Home"));
    m_view->Show(S("Scene"));
    QCOMPARE(Tile("Heading").Value(), S("123.4"));
    QTRY_COMPARE(Page().Scene().Trail().size(), std::size_t(2));
}

void tst_SurveyScene::sameFixIsNoNewPlace()
{
    Vehicle().Set(PoseAt(48.0, -68.0), S("Boat"), true);
    QVERIFY(Vehicle().HasNewFix());
    Vehicle().Set(PoseAt(48.0, -68.0), S("Boat"), true, false);
    QVERIFY(!Vehicle().HasNewFix());
    QCOMPARE(Vehicle().Way().size(), std::size_t(1));
}

void tst_SurveyScene::orbitByDrag()
{
    ZrSceneCamera& camera = Page().Scene().m_camera;
    const float azimuth = camera.Azimuth();
    const float elevation = camera.Elevation();
    const QVector3D target = camera.Target();
    const QPoint from(Panel().rect().center());
    Drag(from, from + QPoint(128, 0), Qt::LeftButton);
    // A tenth of the width of a page of 1280.
    const float turned = std::fmod(camera.Azimuth() - azimuth + 540.0F, 360.0F) - 180.0F;
    QVERIFY2(std::fabs(std::fabs(turned) - 27.0F) < 0.1F, qPrintable(QString::number(turned)));
    QCOMPARE(camera.Elevation(), elevation);
    Drag(from, from + QPoint(0, 40), Qt::LeftButton);
    QVERIFY(camera.Elevation() != elevation);
    // As far as it goes, not over the top.
    Drag(from, from + QPoint(0, 5000), Qt::LeftButton);
    QVERIFY(camera.Elevation() <= ZrSceneCamera::LargestElevation);
    QVERIFY(camera.Elevation() >= ZrSceneCamera::LeastElevation);
    QCOMPARE(camera.Target(), target);
    QVERIFY(Button("Follow").on);
}

void tst_SurveyScene::zoomByWheel()
{
    ZrSceneCamera& camera = Page().Scene().m_camera;
    const float before = camera.Distance();
    const QPoint at(Panel().rect().center());
    QWheelEvent wheel(at, Panel().mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
        Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&Panel(), &wheel);
    QVERIFY(std::fabs(camera.Distance() - before / 1.2F) < 0.01F);
}

void tst_SurveyScene::panEndsFollowing()
{
    Vehicle().Set(PoseAt(48.0, -68.0), S("boat"), true);
    QVERIFY(Button("Follow").on);
    const QVector3D target = Page().Scene().m_camera.Target();
    const QPoint from(Panel().rect().center());
    Drag(from, from + QPoint(100, 0), Qt::RightButton);
    QVERIFY(Page().Scene().m_camera.Target() != target);
    QVERIFY(!Button("Follow").on);
    const QVector3D moved = Page().Scene().m_camera.Target();
    Vehicle().Set(PoseAt(48.001, -68.0), S("boat"), true);
    QCOMPARE(Page().Scene().m_camera.Target(), moved);
}

void tst_SurveyScene::follow()
{
    Vehicle().Set(PoseAt(48.0, -68.0), S("boat"), true);
    Vehicle().Set(PoseAt(48.001, -68.0), S("boat"), true);
    const ZrSceneSurface& scene = Page().Scene();
    QVERIFY((scene.m_camera.Target() - scene.m_pose.position).length() < 0.01F);
    Click(&Button("Follow"));
    QVERIFY(!Button("Follow").on);
    Vehicle().Set(PoseAt(48.002, -68.0), S("boat"), true);
    QVERIFY((scene.m_camera.Target() - scene.m_pose.position).length() > 50.0F);
    Click(&Button("Follow"));
    QVERIFY((scene.m_camera.Target() - scene.m_pose.position).length() < 0.01F);
    // Below another page nothing moves; back on it all is as it is now.
    m_view->Show(S("Home"));
    Vehicle().Set(PoseAt(48.003, -68.0), S("boat"), true);
    m_view->Show(S("Scene"));
    QVERIFY((scene.m_camera.Target() - scene.m_pose.position).length() < 0.01F);
    QVERIFY(scene.m_pose.position.y() > 300.0F);
}

void tst_SurveyScene::keys()
{
    Vehicle().Set(PoseAt(48.0, -68.0), S("boat"), true);
    ZrSceneSurface& scene = Page().Scene();
    const float distance = scene.m_camera.Distance();
    QTest::keyClick(m_view.get(), Qt::Key_Plus);
    QVERIFY(scene.m_camera.Distance() < distance);
    QTest::keyClick(m_view.get(), Qt::Key_Minus);
    QVERIFY(std::fabs(scene.m_camera.Distance() - distance) < 0.01F);
    // As keyboards with + above =, and those with a block of numbers, send them.
    for (const auto& plus : {std::make_pair(Qt::Key_Plus, Qt::KeyboardModifiers(Qt::ShiftModifier)),
             std::make_pair(Qt::Key_Equal, Qt::KeyboardModifiers()),
             std::make_pair(Qt::Key_Plus, Qt::KeyboardModifiers(Qt::KeypadModifier))}) {
        QTest::keyClick(m_view.get(), plus.first, plus.second);
        QVERIFY(scene.m_camera.Distance() < 0.9F * distance);
        QTest::keyClick(m_view.get(), Qt::Key_Minus, plus.second & Qt::KeypadModifier);
        QVERIFY(std::fabs(scene.m_camera.Distance() - distance) < 0.01F);
    }
    QTest::keyClick(m_view.get(), Qt::Key_Plus, Qt::ControlModifier);
    QVERIFY(std::fabs(scene.m_camera.Distance() - distance) < 0.01F);
    const float azimuth = scene.m_camera.Azimuth();
    QTest::keyClick(m_view.get(), Qt::Key_Right);
    QVERIFY(scene.m_camera.Azimuth() != azimuth);
    QTest::keyClick(m_view.get(), Qt::Key_F);
    QVERIFY(!Button("Follow").on);
    for (const float wanted : {3.0F, 6.0F, 1.0F}) {
        QTest::keyClick(m_view.get(), Qt::Key_X);
        QCOMPARE(scene.m_exaggeration, wanted);
        QCOMPARE(Button("Exaggerate").on, wanted > 1.0F);
    }
    // Behind the vehicle, whatever its heading.
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    QVERIFY(Button("Follow").on);
    const float behind = std::fmod(scene.m_camera.Azimuth() - 123.4F + 360.0F, 360.0F);
    QVERIFY2(behind > 90.0F && behind < 270.0F, qPrintable(QString::number(behind)));
}

void tst_SurveyScene::pictureTurns()
{
    Vehicle().Set(PoseAt(48.0, -68.0), S("boat"), true);
    Settle();
    const QImage before = m_view->grabFramebuffer();
    const QPoint from(Panel().rect().center());
    Drag(from, from + QPoint(200, 30), Qt::LeftButton);
    Settle();
    const QImage after = m_view->grabFramebuffer();
    int different = 0;
    for (int y = 100; y < before.height() - 120; y += 2) {
        for (int x = 0; x < before.width(); x += 2)
            different += before.pixel(x, y) != after.pixel(x, y) ? 1 : 0;
    }
    QVERIFY2(different > 2000, qPrintable(QString::number(different)));
}

void tst_SurveyScene::idlePageDrawsNothing()
{
    Vehicle().Set(PoseAt(48.0, -68.0), S("boat"), true);
    QTest::qWait(100);
    Settle();
    QSignalSpy frames(m_view.get(), &SurveyView::FramePainted);
    ZrPaintCounter page(Page());
    QTest::qWait(300);
    QCOMPARE(frames.size(), 0);
    QCOMPARE(page.Take(), 0);
    SurveyVehicle::Pose pose = PoseAt(48.0, -68.0);
    pose.roll = 20.0;
    Vehicle().Set(pose, S("boat"), true);
    QTRY_VERIFY(frames.size() > 0);
}

void tst_SurveyScene::units()
{
    Vehicle().Set(PoseAt(48.0, -68.0), S("boat"), true);
    const QString metres = Tile("Depth").Unit();
    ZrUnits::SetToImperial();
    m_view->SettingsEdited();
    QVERIFY(Tile("Depth").Unit() != metres);
    QCOMPARE(Tile("Depth").Value(), S("41.0"));
}

/// What the colours of the sea floor mean, in the units in force; none without a floor.
void tst_SurveyScene::legend()
{
    auto* legend = Page().findChild<ZrDepthLegend*>();
    QVERIFY(!legend->isVisible());
    std::vector<ZrScenePlace> way;
    for (int i = 0; i < 200; ++i)
        way.push_back({48.0 + i * 1e-5, -68.0, 4.0, 16.0 + i * 0.05});
    Vehicle().SetWay(std::move(way));
    Vehicle().Set(PoseAt(48.001, -68.0), S("line.log"), false);
    QTRY_VERIFY(legend->isVisible());
    QVERIFY(legend->Shallow() > 19.5 && legend->Shallow() < 21.0);
    QVERIFY(legend->Deep() > 29.0 && legend->Deep() < 30.5);
    QCOMPARE(Page().Scene().m_contourStep, float(legend->Step()));
    const QString metres = legend->Labels().first().text;
    ZrUnits::SetToImperial();
    m_view->SettingsEdited();
    QVERIFY(legend->Labels().first().text != metres);
    QVERIFY(std::fabs(
                Page().Scene().m_contourStep * 3.28084F - std::round(Page().Scene().m_contourStep * 3.28084F))
        < 0.01F);
    for (const QSize& size : {QSize(900, 600), QSize(1280, 800), QSize(2560, 1440)}) {
        m_view->resize(size);
        QTRY_COMPARE(Page().size(), size);
        QVERIFY(Page().rect().contains(legend->geometry()));
        for (const QWidget* child : Page().findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (child->isVisible() && child != legend && child != &Panel())
                QVERIFY2(
                    !child->geometry().intersects(legend->geometry()), qPrintable(child->accessibleName()));
        }
    }
}

void tst_SurveyScene::everySize()
{
    Vehicle().Set(PoseAt(48.0, -68.0), S("boat"), true);
    for (const QSize& size : {QSize(900, 600), QSize(1280, 800), QSize(1920, 1080), QSize(2560, 1440)}) {
        m_view->resize(size);
        QTRY_COMPARE(Page().size(), size);
        Settle();
        QVector<QWidget*> shown;
        for (QWidget* child : Page().findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (!child->isVisible() || child == &Panel())
                continue;
            QVERIFY2(Page().rect().contains(child->geometry()), qPrintable(child->accessibleName()));
            for (const QWidget* other : qAsConst(shown))
                QVERIFY2(!other->geometry().intersects(child->geometry()),
                    qPrintable(child->accessibleName() + S(" over ") + other->accessibleName()));
            shown.append(child);
            if (qobject_cast<ZrBtn*>(child))
                QVERIFY(child->width() >= 44 && child->height() >= 44);
        }
        QVERIFY(shown.size() >= 10);
    }
}

GL_TEST_MAIN(tst_SurveyScene)
#include "tst_SurveyScene.moc"
