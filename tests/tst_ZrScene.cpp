// What a scene is made of: camera, pose, sea floor.

#include "ZrKit/scene/ZrSceneCamera.h"
#include "ZrKit/scene/ZrSceneFloor.h"
#include "ZrKit/scene/ZrScenePose.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

bool IsNear(const QVector3D& a, const QVector3D& b, float tolerance = 1e-4F)
{
    return (a - b).length() <= tolerance;
}

std::vector<QVector3D> Soundings(int side, float step, float height)
{
    std::vector<QVector3D> soundings;
    for (int x = 0; x < side; ++x) {
        for (int y = 0; y < side; ++y)
            soundings.emplace_back(float(x) * step, float(y) * step, height);
    }
    return soundings;
}

} // namespace

class tst_ZrScene : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eyeIsWhereTheAnglesSay();
    void targetIsInTheMiddle();
    void anglesAreClamped();
    void zoomIsClamped();
    void panMovesWithTheFinger();
    void cameraIgnoresNonsense();
    void poseAtRest();
    void poseTurns_data();
    void poseTurns();
    void poseIgnoresNonsense();
    void flatFloor();
    void slopeHasItsNormal();
    void holesStay();
    void gridIsBounded();
    void floorOfOne();
    void floorOfNothing_data();
    void floorOfNothing();
    void heightOutside();
};

void tst_ZrScene::eyeIsWhereTheAnglesSay()
{
    ZrSceneCamera camera;
    camera.SetTarget({10, 20, -5});
    camera.SetDistance(100);
    camera.SetAngles(90, 0);
    QVERIFY(IsNear(camera.Eye(), {110, 20, -5}, 1e-3F));
    camera.SetAngles(0, 0);
    QVERIFY(IsNear(camera.Eye(), {10, 120, -5}, 1e-3F));
    camera.SetAngles(180, 30);
    QVERIFY(IsNear(camera.Eye(), {10, 20 - 86.6025F, 45}, 1e-2F));
}

void tst_ZrScene::targetIsInTheMiddle()
{
    ZrSceneCamera camera;
    camera.SetTarget({10, 20, -5});
    camera.SetAngles(77, 33);
    const QVector3D at = camera.Matrix(800, 600) * camera.Target();
    QVERIFY(std::abs(at.x()) < 1e-4F && std::abs(at.y()) < 1e-4F);
    QVERIFY(at.z() > -1.0F && at.z() < 1.0F);
    // Up is up, and what is to the right of the eye's way is to the right.
    QVERIFY((camera.Matrix(800, 600) * (camera.Target() + QVector3D(0, 0, 5))).y() > 0.0F);
    camera.SetAngles(180, 20); // seen from the south: east is to the right
    QVERIFY((camera.Matrix(800, 600) * (camera.Target() + QVector3D(5, 0, 0))).x() > 0.0F);
    camera.Matrix(0, 0);
}

void tst_ZrScene::anglesAreClamped()
{
    ZrSceneCamera camera;
    camera.SetAngles(-90, 500);
    QCOMPARE(camera.Azimuth(), 270.0F);
    QCOMPARE(camera.Elevation(), ZrSceneCamera::LargestElevation);
    camera.Orbit(100, -1000);
    QCOMPARE(camera.Azimuth(), 10.0F);
    QCOMPARE(camera.Elevation(), ZrSceneCamera::LeastElevation);
    camera.SetAngles(-1e-9F, 0);
    QCOMPARE(camera.Azimuth(), 0.0F);
}

void tst_ZrScene::zoomIsClamped()
{
    ZrSceneCamera camera;
    camera.SetDistance(60);
    camera.Zoom(2);
    QCOMPARE(camera.Distance(), 30.0F);
    camera.Zoom(1e9F);
    QCOMPARE(camera.Distance(), ZrSceneCamera::NearestDistance);
    camera.Zoom(1e-9F);
    QCOMPARE(camera.Distance(), ZrSceneCamera::FarthestDistance);
}

void tst_ZrScene::panMovesWithTheFinger()
{
    ZrSceneCamera camera;
    camera.SetAngles(180, 30);
    camera.SetTarget({0, 0, 0});
    camera.Pan(0.1F, 0);
    QVERIFY(camera.Target().x() < 0.0F);
    QVERIFY(std::abs(camera.Target().y()) < 1e-3F);
    camera.SetTarget({0, 0, 0});
    camera.Pan(0, 0.1F);
    QVERIFY(camera.Target().y() > 0.0F);
    QCOMPARE(camera.Target().z(), 0.0F);
}

void tst_ZrScene::cameraIgnoresNonsense()
{
    ZrSceneCamera camera;
    const QVector3D eye = camera.Eye();
    for (const float bad : {notANumber, infinite, -infinite}) {
        camera.SetTarget({bad, 0, 0});
        camera.SetDistance(bad);
        camera.SetAngles(bad, 0);
        camera.SetAngles(0, bad);
        camera.Orbit(bad, 0);
        camera.Pan(bad, 0);
    }
    camera.Zoom(notANumber);
    camera.Zoom(0);
    camera.Zoom(-1);
    QCOMPARE(camera.Eye(), eye);
}

void tst_ZrScene::poseAtRest()
{
    ZrScenePose pose;
    pose.position = {1, 2, 3};
    const QMatrix4x4 m = pose.Matrix();
    QVERIFY(IsNear(m * QVector3D(0, 0, 0), {1, 2, 3}));
    QVERIFY(IsNear(m.mapVector({1, 0, 0}), {0, 1, 0})); // ahead is north
    QVERIFY(IsNear(m.mapVector({0, 1, 0}), {0, 0, 1})); // the mast is up
    QVERIFY(IsNear(m.mapVector({0, 0, 1}), {1, 0, 0})); // starboard is east
}

void tst_ZrScene::poseTurns_data()
{
    QTest::addColumn<float>("heading");
    QTest::addColumn<float>("pitch");
    QTest::addColumn<float>("roll");
    QTest::addColumn<QVector3D>("ahead");
    QTest::addColumn<QVector3D>("mast");
    const float h = std::sqrt(0.5F);
    QTest::newRow("east") << 90.0F << 0.0F << 0.0F << QVector3D(1, 0, 0) << QVector3D(0, 0, 1);
    QTest::newRow("bow up") << 0.0F << 45.0F << 0.0F << QVector3D(0, h, h) << QVector3D(0, -h, h);
    QTest::newRow("starboard down") << 0.0F << 0.0F << 45.0F << QVector3D(0, 1, 0) << QVector3D(h, 0, h);
    QTest::newRow("south, bow down") << 180.0F << -90.0F << 0.0F << QVector3D(0, 0, -1)
                                     << QVector3D(0, -1, 0);
}

void tst_ZrScene::poseTurns()
{
    QFETCH(float, heading);
    QFETCH(float, pitch);
    QFETCH(float, roll);
    QFETCH(QVector3D, ahead);
    QFETCH(QVector3D, mast);
    ZrScenePose pose;
    pose.heading = heading;
    pose.pitch = pitch;
    pose.roll = roll;
    const QMatrix4x4 m = pose.Matrix();
    QVERIFY(IsNear(m.mapVector({1, 0, 0}), ahead));
    QVERIFY(IsNear(m.mapVector({0, 1, 0}), mast));
    QVERIFY(std::abs(m.determinant() - 1.0) < 1e-4);
}

void tst_ZrScene::poseIgnoresNonsense()
{
    ZrScenePose pose;
    pose.heading = notANumber;
    pose.pitch = infinite;
    pose.roll = -infinite;
    QCOMPARE(pose.Matrix(), ZrScenePose().Matrix());
}

void tst_ZrScene::flatFloor()
{
    ZrSceneFloor floor;
    floor.Build(Soundings(20, 1.0F, -12.0F), 1.0F);
    QVERIFY(!floor.IsEmpty());
    QCOMPARE(floor.Lowest(), -12.0F);
    QCOMPARE(floor.Highest(), -12.0F);
    QCOMPARE(floor.HeightAt(7.3F, 4.8F), -12.0F);
    QCOMPARE(floor.Positions().size(), floor.Normals().size());
    for (const unsigned short i : floor.Indices())
        QVERIFY(IsNear(floor.Normals()[i], {0, 0, 1}));
    QVERIFY(floor.Indices().size() % 3 == 0);
    floor.Clear();
    QVERIFY(floor.IsEmpty());
}

void tst_ZrScene::slopeHasItsNormal()
{
    std::vector<QVector3D> soundings = Soundings(40, 0.5F, 0.0F);
    for (QVector3D& p : soundings)
        p.setZ(-10.0F + p.x());
    ZrSceneFloor floor;
    floor.Build(soundings, 0.5F);
    QVERIFY(std::abs(floor.HeightAt(10, 10) - 0.0F) < 0.05F);
    QVERIFY(std::abs(floor.HeightAt(5, 10) + 5.0F) < 0.05F);
    const float h = std::sqrt(0.5F);
    int count = 0;
    for (std::size_t i = 0; i < floor.Positions().size(); ++i) {
        const QVector3D p = floor.Positions()[i];
        if (p.x() < 5 || p.x() > 15 || p.y() < 5 || p.y() > 15)
            continue;
        ++count;
        QVERIFY(IsNear(floor.Normals()[i], {-h, 0, h}, 0.05F));
    }
    QVERIFY(count > 100);
}

void tst_ZrScene::holesStay()
{
    std::vector<QVector3D> soundings = Soundings(5, 1.0F, -3.0F);
    for (const QVector3D& p : Soundings(5, 1.0F, -8.0F))
        soundings.push_back(p + QVector3D(100, 0, 0));
    ZrSceneFloor floor;
    floor.Build(soundings, 1.0F);
    QVERIFY(std::isnan(floor.HeightAt(50, 2)));
    QCOMPARE(floor.HeightAt(2, 2), -3.0F);
    QCOMPARE(floor.HeightAt(102, 2), -8.0F);
    for (const unsigned short i : floor.Indices())
        QVERIFY(floor.Positions()[i].z() < -2.0F);
}

void tst_ZrScene::gridIsBounded()
{
    ZrSceneFloor floor;
    floor.Build({{0, 0, -1}, {100000, 50000, -2}}, 1.0F);
    QVERIFY(floor.Positions().size() <= std::size_t(ZrSceneFloor::MostNodes));
    QVERIFY(floor.Spacing() > 100.0F);
    QVERIFY(!floor.IsEmpty());
}

void tst_ZrScene::floorOfOne()
{
    ZrSceneFloor floor;
    floor.Build({{5, 6, -7}}, 2.0F);
    QCOMPARE(floor.HeightAt(5, 6), -7.0F);
    QVERIFY(!floor.IsEmpty());
}

void tst_ZrScene::floorOfNothing_data()
{
    QTest::addColumn<float>("x");
    QTest::addColumn<float>("spacing");
    QTest::newRow("not a number") << notANumber << 1.0F;
    QTest::newRow("infinite") << infinite << 1.0F;
    QTest::newRow("spacing 0") << 1.0F << 0.0F;
    QTest::newRow("spacing below 0") << 1.0F << -1.0F;
    QTest::newRow("spacing not a number") << 1.0F << notANumber;
    QTest::newRow("spacing infinite") << 1.0F << infinite;
}

void tst_ZrScene::floorOfNothing()
{
    QFETCH(float, x);
    QFETCH(float, spacing);
    ZrSceneFloor floor;
    floor.Build({{x, 0, 0}}, spacing);
    QVERIFY(floor.IsEmpty());
    QVERIFY(std::isnan(floor.HeightAt(0, 0)));
    floor.Build({}, 1.0F);
    QVERIFY(floor.IsEmpty());
}

void tst_ZrScene::heightOutside()
{
    ZrSceneFloor floor;
    floor.Build(Soundings(5, 1.0F, -3.0F), 1.0F);
    for (const float bad : {-1e9F, 1e9F, notANumber, infinite})
        QVERIFY(std::isnan(floor.HeightAt(bad, 2)));
}

QTEST_APPLESS_MAIN(tst_ZrScene)
#include "tst_ZrScene.moc"
