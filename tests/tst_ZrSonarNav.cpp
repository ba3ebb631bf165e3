#include "ZrKit/sonar/ZrSonarNav.h"

#include <QtTest/QtTest>

#include <cmath>
#include <random>
#include <thread>

namespace {

ZrNavRecord At(double lat, double lng)
{
    ZrNavRecord nav;
    nav.latitude = lat;
    nav.longitude = lng;
    return nav;
}

ZrNavRecord Heading(double degrees)
{
    ZrNavRecord nav;
    nav.heading = static_cast<float>(degrees);
    return nav;
}

ZrNavRecord Roll(double degrees)
{
    ZrNavRecord nav;
    nav.roll = static_cast<float>(degrees);
    return nav;
}

ZrNavRecord Whole(double value)
{
    const auto narrow = static_cast<float>(value);
    ZrNavRecord nav = At(value, value);
    nav.heading = nav.pitch = nav.roll = nav.depth = nav.altitude = narrow;
    return nav;
}

bool Near(double a, double b, double within = 1e-9)
{
    return std::fabs(a - b) <= within;
}

bool Same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool Same(const ZrSonarPose& a, const ZrSonarPose& b)
{
    return Same(a.position.lat, b.position.lat) && Same(a.position.lng, b.position.lng)
        && Same(a.heading, b.heading) && Same(a.pitch, b.pitch) && Same(a.roll, b.roll)
        && Same(a.depth, b.depth) && Same(a.altitude, b.altitude) && Same(a.gap, b.gap);
}

bool IsNothing(const ZrSonarPose& pose)
{
    return Same(pose, ZrSonarPose());
}

} // namespace

class tst_ZrSonarNav : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void nothingIsKnown();
    void valuesAreInterpolated();
    void endsAreHeld();
    void anglesGoTheShorterWay_data();
    void anglesGoTheShorterWay();
    void rollsTurnOver();
    void antimeridian();
    void orderDoesNotMatter();
    void lastOfOneTimeCounts();
    void missingValuesAreBridged();
    void unusableValues_data();
    void unusableValues();
    void limitsAreInRange();
    void unusablePositions_data();
    void unusablePositions();
    void oddTimes();
    void furtherRecords();
    void placesDoNotMatter();
    void severalThreads();
};

void tst_ZrSonarNav::nothingIsKnown()
{
    ZrSonarNav nav;
    QVERIFY(IsNothing(nav.At(0.0)));
    nav.Prepare();
    QVERIFY(IsNothing(nav.At(1e9)));
    nav.Add(5.0, ZrNavRecord()); // knows nothing
    nav.Prepare();
    QVERIFY(IsNothing(nav.At(5.0)));
}

void tst_ZrSonarNav::valuesAreInterpolated()
{
    ZrNavRecord first = At(44.0, -63.0);
    first.heading = 10.0F;
    first.pitch = -4.0F;
    first.roll = 2.0F;
    first.depth = 10.0F;
    first.altitude = 6.0F;
    ZrNavRecord second = At(44.1, -63.2);
    second.heading = 20.0F;
    second.pitch = 4.0F;
    second.roll = -6.0F;
    second.depth = 14.0F;
    second.altitude = 2.0F;
    ZrSonarNav nav;
    nav.Add(100.0, first);
    nav.Add(104.0, second);
    nav.Prepare();
    const ZrSonarPose pose = nav.At(101.0);
    QVERIFY(Near(pose.position.lat, 44.025));
    QVERIFY(Near(pose.position.lng, -63.05));
    QVERIFY(Near(pose.heading, 12.5));
    QVERIFY(Near(pose.pitch, -2.0));
    QVERIFY(Near(pose.roll, 0.0));
    QVERIFY(Near(pose.depth, 11.0));
    QVERIFY(Near(pose.altitude, 5.0));
    QCOMPARE(pose.gap, 4.0);
    const ZrSonarPose exact = nav.At(100.0);
    QCOMPARE(exact.position, (ZrGeoPoint{44.0, -63.0}));
    QCOMPARE(exact.heading, 10.0);
    QCOMPARE(exact.altitude, 6.0);
    QCOMPARE(exact.gap, 0.0);
    QCOMPARE(nav.At(104.0).gap, 0.0);
    QCOMPARE(nav.At(104.0).position, (ZrGeoPoint{44.1, -63.2}));
}

void tst_ZrSonarNav::endsAreHeld()
{
    ZrSonarNav nav;
    nav.Add(100.0, Whole(10.0));
    nav.Add(110.0, Whole(20.0));
    nav.Prepare();
    const ZrSonarPose before = nav.At(70.0);
    QCOMPARE(before.position, (ZrGeoPoint{10.0, 10.0}));
    QCOMPARE(before.heading, 10.0);
    QCOMPARE(before.roll, 10.0);
    QCOMPARE(before.depth, 10.0);
    QCOMPARE(before.gap, 30.0);
    const ZrSonarPose behind = nav.At(112.5);
    QCOMPARE(behind.position, (ZrGeoPoint{20.0, 20.0}));
    QCOMPARE(behind.heading, 20.0);
    QCOMPARE(behind.altitude, 20.0);
    QCOMPARE(behind.gap, 2.5);
}

void tst_ZrSonarNav::anglesGoTheShorterWay_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addColumn<double>("quarter"); // of the way
    QTest::newRow("through north") << 350.0 << 10.0 << 355.0;
    QTest::newRow("through north, to the left") << 10.0 << 350.0 << 5.0;
    QTest::newRow("ends on north") << 356.0 << 4.0 << 358.0;
    QTest::newRow("crosses") << 359.0 << 3.0 << 0.0;
    QTest::newRow("through south") << 170.0 << 190.0 << 175.0;
    QTest::newRow("360 is 0") << 360.0 << 0.0 << 0.0;
    QTest::newRow("negative") << -10.0 << 10.0 << 355.0;
    QTest::newRow("far") << 0.0 << 179.0 << 44.75;
    QTest::newRow("far, to the left") << 0.0 << 181.0 << 315.25;
}

void tst_ZrSonarNav::anglesGoTheShorterWay()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(double, quarter);
    ZrSonarNav nav;
    nav.Add(0.0, Heading(from));
    nav.Add(4.0, Heading(to));
    nav.Prepare();
    QVERIFY2(Near(nav.At(1.0).heading, quarter), qPrintable(QString::number(nav.At(1.0).heading)));
    for (const double time : {-1.0, 0.0, 0.5, 2.0, 4.0, 9.0}) {
        const double heading = nav.At(time).heading;
        QVERIFY(heading >= 0.0 && heading < 360.0);
    }
}

void tst_ZrSonarNav::rollsTurnOver()
{
    ZrSonarNav nav;
    nav.Add(0.0, Roll(178.0));
    nav.Add(4.0, Roll(-178.0));
    nav.Prepare();
    QVERIFY(Near(nav.At(1.0).roll, 179.0));
    QVERIFY(Near(nav.At(3.0).roll, -179.0));
}

void tst_ZrSonarNav::antimeridian()
{
    ZrSonarNav nav;
    nav.Add(0.0, At(-17.0, 179.99));
    nav.Add(4.0, At(-17.0, -179.97));
    nav.Prepare();
    QVERIFY(Near(nav.At(0.5).position.lng, 179.995));
    QVERIFY(Near(nav.At(2.0).position.lng, -179.99));
    QVERIFY(nav.At(1.0).position.IsValid());
    QVERIFY(Near(std::fabs(nav.At(1.0).position.lng), 180.0));
}

void tst_ZrSonarNav::orderDoesNotMatter()
{
    ZrSonarNav nav;
    for (const double time : {5.0, 1.0, 9.0, 3.0, 7.0})
        nav.Add(time, Whole(time));
    nav.Prepare();
    for (const double time : {1.0, 2.0, 4.5, 8.0, 9.0}) {
        QVERIFY(Near(nav.At(time).depth, time));
        QVERIFY(Near(nav.At(time).position.lat, time));
    }
}

void tst_ZrSonarNav::lastOfOneTimeCounts()
{
    ZrSonarNav nav;
    nav.Add(1.0, Whole(1.0));
    nav.Add(2.0, Whole(40.0));
    nav.Add(0.0, Whole(0.5));
    nav.Add(2.0, Whole(50.0));
    nav.Add(2.0, Heading(7.0)); // says nothing else
    nav.Prepare();
    QCOMPARE(nav.At(2.0).position.lat, 50.0);
    QCOMPARE(nav.At(2.0).depth, 50.0);
    QCOMPARE(nav.At(2.0).heading, 7.0);
    QVERIFY(Near(nav.At(1.5).depth, 25.5));
}

void tst_ZrSonarNav::missingValuesAreBridged()
{
    ZrSonarNav nav;
    nav.Add(0.0, Whole(10.0));
    nav.Add(1.0, At(11.0, 11.0));
    nav.Add(2.0, Heading(12.0));
    nav.Add(4.0, Whole(14.0));
    nav.Prepare();
    QVERIFY(Near(nav.At(1.0).depth, 11.0));
    QVERIFY(Near(nav.At(1.0).heading, 11.0));
    QVERIFY(Near(nav.At(2.0).position.lat, 12.0));
    QCOMPARE(nav.At(2.0).gap, 3.0);
    QCOMPARE(nav.At(1.0).gap, 0.0);
}

void tst_ZrSonarNav::unusableValues_data()
{
    QTest::addColumn<float>("heading");
    QTest::addColumn<float>("pitch");
    QTest::addColumn<float>("roll");
    QTest::addColumn<float>("depth");
    QTest::addColumn<float>("altitude");
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("nan") << nan << nan << nan << nan << nan;
    QTest::newRow("infinite") << inf << inf << inf << inf << inf;
    QTest::newRow("minus infinite") << -inf << -inf << -inf << -inf << -inf;
    QTest::newRow("absurd") << 1e30F << 1e30F << 1e30F << 1e30F << 1e30F;
    QTest::newRow("just too high") << 360.1F << 90.1F << 180.1F << 12000.1F << 12000.1F;
    QTest::newRow("just too low") << -360.1F << -90.1F << -180.1F << -1000.1F << 0.0F;
    QTest::newRow("no echo") << nan << nan << nan << nan << -1.0F;
}

void tst_ZrSonarNav::unusableValues()
{
    QFETCH(float, heading);
    QFETCH(float, pitch);
    QFETCH(float, roll);
    QFETCH(float, depth);
    QFETCH(float, altitude);
    ZrNavRecord bad = At(10.0, 10.0);
    bad.heading = heading;
    bad.pitch = pitch;
    bad.roll = roll;
    bad.depth = depth;
    bad.altitude = altitude;
    ZrSonarNav nav;
    nav.Add(0.0, Whole(10.0));
    nav.Add(1.0, bad);
    nav.Add(2.0, Whole(10.0));
    nav.Prepare();
    for (const double time : {0.5, 1.0, 1.5}) {
        const ZrSonarPose pose = nav.At(time);
        for (const double value : {pose.heading, pose.pitch, pose.roll, pose.depth, pose.altitude})
            QVERIFY(Near(value, 10.0));
    }
}

void tst_ZrSonarNav::limitsAreInRange()
{
    ZrNavRecord record;
    record.heading = -360.0F;
    record.pitch = -90.0F;
    record.roll = 180.0F;
    record.depth = -1000.0F;
    record.altitude = 12000.0F;
    ZrSonarNav nav;
    nav.Add(0.0, record);
    nav.Prepare();
    const ZrSonarPose pose = nav.At(0.0);
    QCOMPARE(pose.heading, 0.0);
    QCOMPARE(pose.pitch, -90.0);
    QCOMPARE(pose.roll, 180.0);
    QCOMPARE(pose.depth, -1000.0);
    QCOMPARE(pose.altitude, 12000.0);
}

void tst_ZrSonarNav::unusablePositions_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<u32>("flags");
    const double nan = std::nan("");
    const double inf = std::numeric_limits<double>::infinity();
    QTest::newRow("repeated") << 50.0 << 50.0 << u32(1);
    QTest::newRow("repeated, with other flags") << 50.0 << 50.0 << u32(0xFFFFFFFF);
    QTest::newRow("0, 0") << 0.0 << 0.0 << u32(0);
    QTest::newRow("-0, -0") << -0.0 << -0.0 << u32(0);
    QTest::newRow("latitude nan") << nan << 10.0 << u32(0);
    QTest::newRow("longitude nan") << 10.0 << nan << u32(0);
    QTest::newRow("infinite") << 10.0 << inf << u32(0);
    QTest::newRow("beyond the pole") << 90.1 << 10.0 << u32(0);
    QTest::newRow("beyond the antimeridian") << 10.0 << -180.1 << u32(0);
}

void tst_ZrSonarNav::unusablePositions()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(u32, flags);
    ZrNavRecord bad = Whole(33.0); // the rest is used
    bad.latitude = lat;
    bad.longitude = lng;
    bad.flags = flags;
    ZrSonarNav nav;
    nav.Add(0.0, At(10.0, 10.0));
    nav.Add(1.0, bad);
    nav.Add(2.0, At(10.0, 12.0));
    nav.Prepare();
    const ZrSonarPose pose = nav.At(1.0);
    QVERIFY(Near(pose.position.lat, 10.0));
    QVERIFY(Near(pose.position.lng, 11.0));
    QCOMPARE(pose.gap, 2.0);
    QCOMPARE(pose.depth, 33.0);
    // On one of the axes is a place like any other.
    ZrSonarNav axis;
    axis.Add(0.0, At(0.0, 10.0));
    axis.Add(1.0, At(10.0, 0.0));
    axis.Prepare();
    QCOMPARE(axis.At(0.0).position, (ZrGeoPoint{0.0, 10.0}));
    QCOMPARE(axis.At(1.0).position, (ZrGeoPoint{10.0, 0.0}));
}

void tst_ZrSonarNav::oddTimes()
{
    const double nan = std::nan("");
    const double inf = std::numeric_limits<double>::infinity();
    const double most = std::numeric_limits<double>::max();
    ZrSonarNav nav;
    for (const double time : {nan, inf, -inf})
        nav.Add(time, Whole(99.0));
    nav.Add(1.0, Whole(10.0));
    nav.Prepare();
    QCOMPARE(nav.At(1e9).depth, 10.0);
    for (const double time : {nan, inf, -inf})
        QVERIFY(IsNothing(nav.At(time)));
    // The differences of these are not finite.
    nav.Add(-most, Whole(20.0));
    nav.Add(most, Whole(30.0));
    nav.Prepare();
    QCOMPARE(nav.At(1.0).depth, 10.0);
    QVERIFY(Near(nav.At(2.0).depth, 10.0));
    ZrSonarNav wide;
    wide.Add(-most, Whole(20.0));
    wide.Add(most, Whole(30.0));
    wide.Prepare();
    QVERIFY(Near(wide.At(0.0).depth, 25.0));
    QVERIFY(Near(wide.At(0.0).position.lat, 25.0));
    QVERIFY(wide.At(0.0).gap > 1e300);
}

void tst_ZrSonarNav::furtherRecords()
{
    ZrSonarNav nav;
    nav.Add(0.0, Whole(10.0));
    nav.Add(10.0, Whole(20.0));
    nav.Prepare();
    QVERIFY(Near(nav.At(5.0).depth, 15.0));
    nav.Add(5.0, Whole(30.0));
    nav.Prepare();
    QCOMPARE(nav.At(5.0).depth, 30.0);
    QVERIFY(Near(nav.At(7.5).depth, 25.0));
}

void tst_ZrSonarNav::placesDoNotMatter()
{
    std::mt19937 random(5);
    ZrSonarNav nav;
    for (int i = 0; i < 500; ++i) {
        ZrNavRecord record = Whole(static_cast<double>(random() % 900) / 10.0);
        if (i % 3 == 0)
            record.depth = std::numeric_limits<float>::quiet_NaN();
        if (i % 7 != 0)
            record.flags = 1;
        nav.Add(static_cast<double>(random() % 1000), record);
    }
    nav.Prepare();
    ZrSonarNav::Place place;
    double time = -5.0;
    for (int i = 0; i < 20000; ++i) {
        // Small steps ahead, now and then anywhere.
        time = random() % 20 == 0 ? static_cast<double>(random() % 1100) - 50.0
                                  : time + static_cast<double>(random() % 30) / 10.0;
        QVERIFY2(Same(nav.At(time, place), nav.At(time)), qPrintable(QString::number(time)));
    }
    // A place of another navigation leads nowhere wrong.
    ZrSonarNav small;
    small.Add(1.0, Whole(1.0));
    small.Prepare();
    QVERIFY(Same(small.At(2.0, place), small.At(2.0)));
}

void tst_ZrSonarNav::severalThreads()
{
    ZrSonarNav nav;
    for (int i = 0; i < 80; ++i)
        nav.Add(i, Whole(i + 1.0));
    nav.Prepare();
    std::atomic<int> wrong{0};
    const auto ask = [&] {
        ZrSonarNav::Place place;
        for (int i = 0; i < 7900; ++i) {
            const double time = i / 100.0;
            if (!Near(nav.At(time, place).depth, time + 1.0) || !Near(nav.At(time).position.lat, time + 1.0))
                ++wrong;
        }
    };
    std::thread first(ask);
    std::thread second(ask);
    first.join();
    second.join();
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_ZrSonarNav)
#include "tst_ZrSonarNav.moc"
