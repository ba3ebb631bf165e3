// Position, extent and height of targets: by hand, by GeographicLib, and what is refused.

#include "SonarLine.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarMeasure.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace sonarline;

namespace {

constexpr double altitude = 10.0;

/// A line of 40 pings, half a metre apart, 400 samples of 0.1 m, the sonar 10 m up; ping 39 has no port side.
class Scene
{
public:
    explicit Scene(ZrGeoPoint start = {51.0, 1.0}, double heading = 40.0)
    {
        plan.start = start;
        plan.heading = heading;
        plan.pings = 40;
        plan.step = 0.5;
        plan.samples = 400;
        plan.slantRange = 40.0;
        plan.altitude = altitude;
        std::vector<Ping> pings = Straight(plan);
        pings[39].sides[sidePort].clear();
        const QString path = m_folder.filePath(QStringLiteral("line.log"));
        if (!Write(path, pings) || !log.Open(path))
            qFatal("the log of the scene cannot be written");
        track = std::make_unique<ZrSonarTrack>(log.Pings(), ZrSonarTrackSettings());
        Use(RecordedBottom(log));
    }

    void Use(const ZrBottomLine& bottom)
    {
        geo = std::make_unique<ZrSonarGeo>(log.Pings(), *track, bottom);
        measure = std::make_unique<ZrSonarMeasure>(*geo);
    }

    Plan plan;
    ZrSonarLog log;
    std::unique_ptr<ZrSonarTrack> track;
    std::unique_ptr<ZrSonarGeo> geo;
    std::unique_ptr<ZrSonarMeasure> measure;

private:
    QTemporaryDir m_folder;
};

/// The sample whose middle lies at a slant range.
double SampleAt(double slant)
{
    return slant / 0.1 - 0.5;
}

bool IsNear(double value, double expected, double within)
{
    if (std::fabs(value - expected) <= within)
        return true;
    qWarning("%.12g instead of %.12g", value, expected);
    return false;
}

} // namespace

class tst_ZrSonarMeasure : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placeTellsAll();
    void placeKeepsTheRest();
    void placeWithoutAltitude();
    void extentIsAGeodesic_data();
    void extentIsAGeodesic();
    void extentAlongAndAcross();
    void extentOfASpotWithItselfIsNothing();
    void heightByHand();
    void heightOfWhatStandsThere_data();
    void heightOfWhatStandsThere();
    void stepIsOneSample();
    void refusals_data();
    void refusals();
    void refusalsOfPlaces();
    void errorGoesAway();
};

void tst_ZrSonarMeasure::placeTellsAll()
{
    Scene scene;
    ZrSonarTarget target;
    QVERIFY2(scene.measure->Place({12, sideStarboard, 199.5}, target), qPrintable(scene.measure->Error()));
    QCOMPARE(scene.measure->Error(), QString());
    QCOMPARE(target.spot.ping, std::size_t(12));
    QCOMPARE(target.time, startTime + 3.0);
    QVERIFY(IsNear(target.slantRange, 20.0, 1e-9));
    QVERIFY(IsNear(target.groundRange, std::sqrt(300.0), 1e-9));
    QCOMPARE(target.altitude, 10.0);
    const ZrGeoPoint expected = Away(Away(scene.plan.start, 40.0, 6.0), 130.0, std::sqrt(300.0));
    QVERIFY(Apart(target.position, expected) < 0.002);
    QVERIFY(std::isnan(target.length) && std::isnan(target.width) && std::isnan(target.height));
}

void tst_ZrSonarMeasure::placeKeepsTheRest()
{
    Scene scene;
    ZrSonarTarget target;
    target.name = QStringLiteral("Anker ö");
    target.height = 1.5;
    QVERIFY(scene.measure->Place({0, sidePort, 200.0}, target));
    QCOMPARE(target.name, QStringLiteral("Anker ö"));
    QCOMPARE(target.height, 1.5);
}

void tst_ZrSonarMeasure::placeWithoutAltitude()
{
    Scene scene;
    scene.Use(ZrBottomLine());
    ZrSonarTarget target;
    QVERIFY(scene.measure->Place({0, sidePort, 199.5}, target));
    QVERIFY(std::isnan(target.altitude));
    QVERIFY(IsNear(target.groundRange, 20.0, 1e-9));
}

void tst_ZrSonarMeasure::extentIsAGeodesic_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<double>("heading");
    QTest::newRow("north") << 51.0 << 1.0 << 40.0;
    QTest::newRow("west") << 48.4 << -68.8 << 270.0;
    QTest::newRow("south") << -43.5 << 172.7 << 359.5;
    QTest::newRow("antimeridian") << -17.0 << 179.99999 << 90.0;
    QTest::newRow("arctic") << 80.0 << 15.0 << 200.0;
}

void tst_ZrSonarMeasure::extentIsAGeodesic()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(double, heading);
    Scene scene({lat, lng}, heading);
    const std::vector<std::pair<ZrSonarSpot, ZrSonarSpot>> pairs = {
        {{0, sidePort, 200.0}, {30, sidePort, 210.0}},
        {{5, sidePort, 150.0}, {6, sideStarboard, 399.0}},
        {{38, sideStarboard, 120.0}, {2, sidePort, 120.0}},
    };
    for (const auto& pair : pairs) {
        ZrSonarMeasure::Extent extent;
        QVERIFY(scene.measure->Between(pair.first, pair.second, extent));
        const ZrGeoPoint from = scene.geo->Position(pair.first);
        const ZrGeoPoint to = scene.geo->Position(pair.second);
        QVERIFY(IsNear(extent.distance, Apart(from, to), 0.001));
        QVERIFY(IsNear(std::remainder(extent.bearing - Bearing(from, to), 360.0), 0.0, 0.02));
        QVERIFY(IsNear(std::hypot(extent.length, extent.width), extent.distance, 1e-6));
        QVERIFY(extent.bearing >= 0.0 && extent.bearing < 360.0);
    }
}

void tst_ZrSonarMeasure::extentAlongAndAcross()
{
    Scene scene;
    ZrSonarMeasure::Extent extent;
    // The same range ten pings on: 5 m along the track.
    QVERIFY(scene.measure->Between({10, sidePort, 250.0}, {20, sidePort, 250.0}, extent));
    QVERIFY(IsNear(extent.length, 5.0, 0.001));
    QVERIFY(IsNear(extent.width, 0.0, 0.001));
    QVERIFY(IsNear(extent.bearing, 40.0, 0.02));
    // Across both sides of one ping.
    QVERIFY(
        scene.measure->Between({10, sidePort, SampleAt(20.0)}, {10, sideStarboard, SampleAt(26.0)}, extent));
    QVERIFY(IsNear(extent.length, 0.0, 1e-6));
    QVERIFY(IsNear(extent.width, std::sqrt(300.0) + 24.0, 1e-6));
    QVERIFY(IsNear(extent.bearing, 130.0, 0.02));
}

void tst_ZrSonarMeasure::extentOfASpotWithItselfIsNothing()
{
    Scene scene;
    ZrSonarMeasure::Extent extent;
    QVERIFY(scene.measure->Between({10, sidePort, 250.0}, {10, sidePort, 250.0}, extent));
    QCOMPARE(extent.distance, 0.0);
    QVERIFY(std::isfinite(extent.bearing));
}

void tst_ZrSonarMeasure::heightByHand()
{
    Scene scene;
    ZrSonarMeasure::Shadow shadow;
    QVERIFY(scene.measure->Height({3, sidePort, SampleAt(20.0)}, SampleAt(25.0), shadow));
    QVERIFY(IsNear(shadow.height, 2.0, 1e-9)); // 10 x 5 / 25
    QVERIFY(IsNear(shadow.length, 22.912878474779 - 17.320508075689, 1e-9)); // roots of 525 and 300
    QVERIFY(IsNear(shadow.flatHeight, 10.0 * 5.592370399090 / 22.912878474779, 1e-9));
    QVERIFY(IsNear(shadow.step, 10.0 * 0.1 / 25.0, 1e-9));
}

void tst_ZrSonarMeasure::heightOfWhatStandsThere_data()
{
    QTest::addColumn<double>("height");
    QTest::addColumn<double>("away");
    for (const double height : {0.1, 1.0, 3.0, 7.0}) {
        for (const double away : {5.0, 9.5, 11.0})
            QTest::addRow("%g m high, %g m away", height, away) << height << away;
    }
}

/// A post is put on the seabed, its echo and the end of its shadow are found by rays, and its height again.
void tst_ZrSonarMeasure::heightOfWhatStandsThere()
{
    QFETCH(double, height);
    QFETCH(double, away);
    const double top = std::hypot(away, altitude - height);
    const double shadowGround = away * altitude / (altitude - height);
    const double end = std::hypot(shadowGround, altitude);
    Scene scene;
    ZrSonarMeasure::Shadow shadow;
    if (top < altitude) { // the echo comes before that of the seabed
        QVERIFY(!scene.measure->Height({3, sideStarboard, SampleAt(top)}, SampleAt(end), shadow));
        QVERIFY(scene.measure->Error().contains(QStringLiteral("water column")));
        return;
    }
    QVERIFY2(scene.measure->Height({3, sideStarboard, SampleAt(top)}, SampleAt(end), shadow),
        qPrintable(scene.measure->Error()));
    QVERIFY(IsNear(shadow.height, height, 1e-9));
    QVERIFY(shadow.flatHeight > height);
}

void tst_ZrSonarMeasure::stepIsOneSample()
{
    Scene scene;
    ZrSonarMeasure::Shadow shadow;
    ZrSonarMeasure::Shadow other;
    QVERIFY(scene.measure->Height({3, sidePort, 150.0}, 250.0, shadow));
    QVERIFY(scene.measure->Height({3, sidePort, 149.0}, 250.0, other));
    QVERIFY(IsNear(other.height - shadow.height, shadow.step, 1e-9));
    QVERIFY(scene.measure->Height({3, sidePort, 150.0}, 251.0, other));
    QVERIFY(other.height - shadow.height > 0.0 && other.height - shadow.height < shadow.step);
}

void tst_ZrSonarMeasure::refusals_data()
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    QTest::addColumn<int>("ping");
    QTest::addColumn<int>("side");
    QTest::addColumn<double>("sample");
    QTest::addColumn<double>("end");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, int ping, int side, double sample, double end, const char* error) {
        QTest::newRow(name) << ping << side << sample << end << QString::fromUtf8(error);
    };
    row("no such line", 40, 0, 150.0, 200.0, "There is no line 40; the last one is 39");
    row("no port side", 39, 0, 150.0, 200.0, "Line 39 has no port side");
    row("NaN", 3, 0, unknown, 200.0, "The sample is not a number");
    row("NaN at the end", 3, 0, 150.0, unknown, "The sample is not a number");
    row("infinite", 3, 0, 150.0, inf, "The sample is not a number");
    row("beyond the samples", 3, 0, 150.0, 400.0, "Line 3 has no sample 400; the last one is 399");
    row("before the samples", 3, 0, -1.0, 200.0, "Line 3 has no sample -1; the last one is 399");
    row("in the water", 3, 1, 50.0, 200.0,
        "Sample 50 of line 3 lies in the water column: at 5.05 m, the seabed begins at 10.00 m");
    row("end in the water", 3, 1, 150.0, 98.0,
        "Sample 98 of line 3 lies in the water column: at 9.85 m, the seabed begins at 10.00 m");
    row("end before the beginning", 3, 1, 200.0, 150.0,
        "The shadow ends at sample 150, which does not lie behind its beginning at sample 200");
    row("no shadow", 3, 1, 200.0, 200.0,
        "The shadow ends at sample 200, which does not lie behind its beginning at sample 200");
}

void tst_ZrSonarMeasure::refusals()
{
    QFETCH(int, ping);
    QFETCH(int, side);
    QFETCH(double, sample);
    QFETCH(double, end);
    QFETCH(QString, error);
    Scene scene;
    ZrSonarMeasure::Shadow shadow;
    shadow.height = -7.0;
    const ZrSonarSpot spot{static_cast<std::size_t>(ping), static_cast<eSonarSide>(side), sample};
    QVERIFY(!scene.measure->Height(spot, end, shadow));
    QCOMPARE(scene.measure->Error(), error);
    QCOMPARE(shadow.height, -7.0);
}

void tst_ZrSonarMeasure::refusalsOfPlaces()
{
    Scene scene;
    ZrSonarTarget target;
    target.time = 1.0;
    QVERIFY(!scene.measure->Place({99, sidePort, 150.0}, target));
    QVERIFY(!scene.measure->Place({3, sidePort, 1.0}, target));
    QVERIFY(scene.measure->Error().contains(QStringLiteral("water column")));
    QCOMPARE(target.time, 1.0);
    ZrSonarMeasure::Extent extent;
    QVERIFY(!scene.measure->Between({3, sidePort, 150.0}, {3, sidePort, 400.0}, extent));
    QVERIFY(!scene.measure->Between({99, sidePort, 150.0}, {3, sidePort, 150.0}, extent));

    ZrSonarMeasure::Shadow shadow;
    scene.Use(ZrBottomLine());
    QVERIFY(!scene.measure->Height({3, sidePort, 150.0}, 200.0, shadow));
    QCOMPARE(scene.measure->Error(),
        QStringLiteral("The altitude of the sonar is not known, and without it no height"));
    ZrBottomLine ground;
    ground.SetFound(std::vector<double>(40, 0.0));
    scene.Use(ground);
    QVERIFY(!scene.measure->Height({3, sidePort, 150.0}, 200.0, shadow));
    QCOMPARE(scene.measure->Error(), QStringLiteral("The altitude of the sonar at line 3 is 0"));

    const std::vector<ZrSonarPing> none;
    const ZrSonarTrack empty(none, {});
    const ZrSonarGeo nothing(none, empty, ZrBottomLine());
    ZrSonarMeasure measure(nothing);
    QVERIFY(!measure.Place({0, sidePort, 0.0}, target));
    QCOMPARE(measure.Error(), QStringLiteral("There are no side-scan lines"));

    std::vector<ZrSonarPing> lost(scene.log.Pings().begin(), scene.log.Pings().end());
    for (ZrSonarPing& ping : lost)
        ping.pose = ZrSonarPose();
    const ZrSonarTrack nowhere(lost, {});
    const ZrSonarGeo placeless(lost, nowhere, RecordedBottom(scene.log));
    ZrSonarMeasure of(placeless);
    QVERIFY(!of.Place({3, sidePort, 150.0}, target));
    QCOMPARE(of.Error(), QStringLiteral("The position or the heading at line 3 is not known"));
    QVERIFY(of.Height({3, sidePort, 150.0}, 200.0, shadow)); // needs no place
}

void tst_ZrSonarMeasure::errorGoesAway()
{
    Scene scene;
    ZrSonarTarget target;
    QVERIFY(!scene.measure->Place({99, sidePort, 150.0}, target));
    QVERIFY(scene.measure->Place({9, sidePort, 150.0}, target));
    QCOMPARE(scene.measure->Error(), QString());
}

QTEST_GUILESS_MAIN(tst_ZrSonarMeasure)
#include "tst_ZrSonarMeasure.moc"
