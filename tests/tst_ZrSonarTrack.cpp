// Places, ways and courses are held against geodesics on the ellipsoid by GeographicLib.

#include "SonarTrackPings.h"

#include <QtTest/QtTest>

#include <GeographicLib/Geodesic.hpp>
#include <cmath>
#include <random>

namespace {

using GeographicLib::Geodesic;
using track_test::AngleBetween;
using track_test::Ping;
using track_test::Pings;
using track_test::Smoothing;
using track_test::start;

constexpr double centimetre = 0.01;

ZrGeoPoint Reached(ZrGeoPoint from, double azimuth, double metres)
{
    ZrGeoPoint to;
    Geodesic::WGS84().Direct(from.lat, from.lng, azimuth, metres, to.lat, to.lng);
    return to;
}

double Between(ZrGeoPoint a, ZrGeoPoint b)
{
    double metres = 0.0;
    Geodesic::WGS84().Inverse(a.lat, a.lng, b.lat, b.lng, metres);
    return metres;
}

/// Pings along a geodesic, at 1.5 m/s every 0.1 s.
Pings Line(ZrGeoPoint from, double azimuth, int count, double heading = std::nan(""), double step = 0.15)
{
    Pings pings;
    for (int i = 0; i < count; ++i)
        pings.push_back(Ping(start + i * 0.1, Reached(from, azimuth, i * step), heading));
    return pings;
}

ZrSonarTrackSettings ByCourse()
{
    ZrSonarTrackSettings settings;
    settings.heading = ZrSonarTrackSettings::headingCourse;
    return settings;
}

} // namespace

class tst_ZrSonarTrack : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void noPings();
    void places_data();
    void places();
    void waysAndSpeeds();
    void courses_data();
    void courses();
    void courseWhereNoHeadingIsRecorded();
    void courseOfAStandingVehicle();
    void offsetTurnsRecordedHeadings();
    void antimeridian();
    void pingsWithoutPosition();
    void nothingHasAPosition();
    void wildPositionsDoNotMoveTheFrame();
    void rangesThatAreNoNumbers();
    void nearAPole_data();
    void nearAPole();
    void smoothingKeepsAStraightLine();
    void smoothingEvensSteps();
    void smoothingIsTheMeanOfTheWindow_data();
    void smoothingIsTheMeanOfTheWindow();
    void headingsAreAveragedAcrossNorth();
    void smoothingLeavesOutWhatIsUnknown();
    void nothingIsAveragedAcrossAClockSetBack();
    void timesSlightlyOutOfOrder();
    void absurdTimes();
    void oddSmoothing_data();
    void oddSmoothing();
    void longWindowsOverManyPings();
    void manyPingsAtOneTime();
};

void tst_ZrSonarTrack::noPings()
{
    for (const double smoothing : {0.0, 10.0}) {
        const ZrSonarTrack track({}, Smoothing(smoothing));
        QCOMPARE(track.Count(), std::size_t(0));
        QCOMPARE(track.Length(), 0.0);
    }
}

void tst_ZrSonarTrack::places_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<double>("course");
    QTest::addColumn<double>("step"); // metres from ping to ping
    QTest::newRow("mid latitude, north") << 44.6 << -63.5 << 0.0 << 0.15;
    QTest::newRow("mid latitude, crab") << 44.6 << -63.5 << 210.0 << 0.15;
    QTest::newRow("equator") << 0.0 << 9.0 << 90.0 << 0.15;
    QTest::newRow("south") << -35.2 << 150.0 << 123.0 << 0.15;
    QTest::newRow("high north") << 78.2 << 15.0 << 300.0 << 0.15;
    QTest::newRow("high south") << -77.8 << 166.7 << 80.0 << 0.15;
    QTest::newRow("40 km to the east") << 55.0 << 3.0 << 90.0 << 200.0;
    QTest::newRow("40 km to the north") << 55.0 << 3.0 << 0.0 << 200.0;
    QTest::newRow("antimeridian") << -17.0 << 179.9999 << 70.0 << 0.15;
}

void tst_ZrSonarTrack::places()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(double, course);
    QFETCH(double, step);
    Pings pings = Line({lat, lng}, course, 200, 0.0, step);
    for (std::size_t i = 0; i < pings.size(); ++i)
        pings[i].pose.heading = static_cast<double>(i * 37 % 360); // in all directions
    const ZrSonarTrack track(pings, {});
    QCOMPARE(track.Count(), pings.size());
    for (std::size_t i = 0; i < pings.size(); ++i) {
        const ZrGeoPoint at = pings[i].pose.position;
        QVERIFY2(Between(track.Position(i), at) < 1e-4,
            qPrintable(QString::number(Between(track.Position(i), at))));
        QCOMPARE(track.Heading(i), pings[i].pose.heading);
        for (const double range : {0.0, 0.5, 30.0, 150.0, 400.0}) {
            const ZrGeoPoint port = Reached(at, pings[i].pose.heading - 90.0, range);
            const ZrGeoPoint starboard = Reached(at, pings[i].pose.heading + 90.0, range);
            QVERIFY2(Between(track.Locate(i, sidePort, range), port) < centimetre,
                qPrintable(QString::number(Between(track.Locate(i, sidePort, range), port))));
            QVERIFY(Between(track.Locate(i, sideStarboard, range), starboard) < centimetre);
            const ZrLocalPoint local = track.LocateLocal(i, sidePort, range);
            QVERIFY(Between(track.Frame().ToGeo(local), port) < centimetre);
            QVERIFY(
                std::fabs(std::hypot(local.x - track.Point(i).x, local.y - track.Point(i).y) - range) < 1e-6);
        }
    }
}

void tst_ZrSonarTrack::waysAndSpeeds()
{
    // A corner in the middle.
    Pings pings = Line({44.6, -63.5}, 30.0, 300);
    const Pings second = Line(pings.back().pose.position, 140.0, 300, std::nan(""), 0.3);
    for (std::size_t i = 1; i < second.size(); ++i) {
        pings.push_back(second[i]);
        pings.back().time = second[i].time + 29.9;
    }
    const ZrSonarTrack track(pings, {});
    double way = 0.0;
    for (std::size_t i = 1; i < pings.size(); ++i) {
        way += Between(pings[i - 1].pose.position, pings[i].pose.position);
        QVERIFY2(std::fabs(track.Distance(i) - way) < 1e-4 + way * 1e-6,
            qPrintable(QString::number(track.Distance(i) - way)));
    }
    QCOMPARE(track.Distance(0), 0.0);
    QCOMPARE(track.Length(), track.Distance(pings.size() - 1));
    QVERIFY(std::fabs(track.Length() - (299 * 0.15 + 299 * 0.3)) < centimetre);
    QVERIFY(std::fabs(track.Speed(100) - 1.5) < 1e-4);
    QVERIFY(std::fabs(track.Speed(0) - 1.5) < 1e-4);
    QVERIFY(std::fabs(track.Speed(500) - 3.0) < 1e-4);
    QVERIFY(std::fabs(track.Speed(597) - 3.0) < 1e-4);
}

void tst_ZrSonarTrack::courses_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("azimuth");
    for (const double lat : {0.0, 44.6, -60.0, 75.0}) {
        for (const double azimuth : {0.0, 45.0, 90.0, 179.5, 270.0, 359.9})
            QTest::addRow("%g at %g", azimuth, lat) << lat << azimuth;
    }
}

void tst_ZrSonarTrack::courses()
{
    QFETCH(double, lat);
    QFETCH(double, azimuth);
    // 6 km long: the meridians at its ends are not parallel.
    const Pings pings = Line({lat, 10.0}, azimuth, 600, 5.0, 10.0);
    const ZrSonarTrack track(pings, ByCourse());
    for (std::size_t i = 0; i < pings.size(); ++i) {
        const ZrGeoPoint from = pings[i < 20 ? 0 : i - 20].pose.position;
        const ZrGeoPoint to = pings[std::min(i + 20, pings.size() - 1)].pose.position;
        double there = 0.0;
        double back = 0.0;
        Geodesic::WGS84().Inverse(from.lat, from.lng, to.lat, to.lng, there, back);
        // Half-way, but for the ends.
        const double expected = i >= 20 && i + 20 < pings.size() ? there + (back - there) / 2.0 : there;
        QVERIFY2(AngleBetween(track.Heading(i), expected) < 0.01,
            qPrintable(QStringLiteral("%1 %2 %3").arg(i).arg(track.Heading(i)).arg(expected)));
        QVERIFY(track.Heading(i) >= 0.0 && track.Heading(i) < 360.0);
    }
}

void tst_ZrSonarTrack::courseWhereNoHeadingIsRecorded()
{
    Pings pings = Line({44.6, -63.5}, 300.0, 100, 10.0);
    for (std::size_t i = 30; i < 60; ++i)
        pings[i].pose.heading = std::nan("");
    const ZrSonarTrack track(pings, {});
    QCOMPARE(track.Heading(29), 10.0);
    QVERIFY(AngleBetween(track.Heading(30), 300.0) < 0.01);
    QVERIFY(AngleBetween(track.Heading(59), 300.0) < 0.01);
    QCOMPARE(track.Heading(60), 10.0);
}

void tst_ZrSonarTrack::courseOfAStandingVehicle()
{
    // 0.49 m in the 4 seconds that a course is taken over are no way.
    const ZrSonarTrack drifting(Line({44.6, -63.5}, 300.0, 100, std::nan(""), 0.49 / 40), {});
    const ZrSonarTrack moving(Line({44.6, -63.5}, 300.0, 100, std::nan(""), 0.51 / 40), {});
    QVERIFY(std::isnan(drifting.Heading(50)));
    QVERIFY(!drifting.Locate(50, sidePort, 10.0).IsValid());
    QVERIFY(std::isnan(drifting.LocateLocal(50, sidePort, 10.0).x));
    QVERIFY(AngleBetween(moving.Heading(50), 300.0) < 0.01);
    QVERIFY(std::fabs(drifting.Speed(50) - 0.1225) < 1e-4);
    // A recorded heading needs no way.
    const ZrSonarTrack standing(Line({44.6, -63.5}, 0.0, 10, 77.0, 0.0), {});
    QCOMPARE(standing.Heading(5), 77.0);
    QCOMPARE(standing.Speed(5), 0.0);
    QCOMPARE(standing.Length(), 0.0);
}

void tst_ZrSonarTrack::offsetTurnsRecordedHeadings()
{
    ZrSonarTrackSettings settings;
    settings.headingOffset = 20.0;
    const Pings pings = Line({44.6, -63.5}, 0.0, 100, 350.0);
    QVERIFY(AngleBetween(ZrSonarTrack(pings, settings).Heading(50), 10.0) < 1e-9);
    settings.headingOffset = -360.0 * 3 - 350.0;
    QVERIFY(AngleBetween(ZrSonarTrack(pings, settings).Heading(50), 0.0) < 1e-9);
    settings.heading = ZrSonarTrackSettings::headingCourse;
    QVERIFY(AngleBetween(ZrSonarTrack(pings, settings).Heading(50), 0.0) < 0.01);
    // One that is no number leaves the course.
    settings.heading = ZrSonarTrackSettings::headingRecorded;
    settings.headingOffset = std::nan("");
    QVERIFY(AngleBetween(ZrSonarTrack(pings, settings).Heading(50), 0.0) < 0.01);
}

void tst_ZrSonarTrack::antimeridian()
{
    const Pings pings = Line({-17.0, 179.9995}, 90.0, 1000);
    QVERIFY(pings.back().pose.position.lng < 0.0);
    const ZrSonarTrack track(pings, Smoothing(3.0));
    QVERIFY(std::fabs(track.Length() - 999 * 0.15) < centimetre);
    for (std::size_t i = 0; i < pings.size(); ++i) {
        QVERIFY(track.Position(i).IsValid());
        QVERIFY(Between(track.Position(i), pings[i].pose.position) < centimetre);
        QVERIFY(AngleBetween(track.Heading(i), 90.0) < 0.01);
    }
}

void tst_ZrSonarTrack::pingsWithoutPosition()
{
    Pings pings = Line({44.6, -63.5}, 60.0, 100);
    for (std::size_t i = 40; i < 50; ++i)
        pings[i].pose.position = ZrGeoPoint();
    pings[0].pose.position = ZrGeoPoint();
    pings[45].pose.heading = 123.0;
    pings[46].pose.position = ZrGeoPoint{91.0, 0.0};
    for (const double smoothing : {0.0, 2.0}) {
        const ZrSonarTrack track(pings, Smoothing(smoothing));
        QCOMPARE(track.Distance(0), 0.0);
        QCOMPARE(track.Distance(1), 0.0);
        for (std::size_t i = 40; i < 50; ++i) {
            QVERIFY(std::isnan(track.Point(i).x) && std::isnan(track.Point(i).y));
            QVERIFY(!track.Position(i).IsValid());
            QVERIFY(!track.Locate(i, sidePort, 10.0).IsValid());
            QCOMPARE(track.Distance(i), track.Distance(39));
            QVERIFY(std::isnan(track.Speed(i)));
            if (i != 45)
                QVERIFY(std::isnan(track.Heading(i)));
        }
        // Averaged, it is drawn to the courses around it.
        QVERIFY(smoothing == 0.0 ? track.Heading(45) == 123.0 : track.Heading(45) < 123.0);
        // The way goes on behind them; courses and speeds reach across.
        QVERIFY(std::fabs(track.Length() - 98 * 0.15) < centimetre);
        QVERIFY(AngleBetween(track.Heading(smoothing == 0.0 ? 39 : 30), 60.0) < 0.01);
        QVERIFY(std::fabs(track.Speed(39) - 1.5) < 0.01);
    }
}

void tst_ZrSonarTrack::nothingHasAPosition()
{
    Pings pings;
    for (int i = 0; i < 50; ++i)
        pings.push_back(Ping(start + i, ZrGeoPoint(), 10.0));
    const ZrSonarTrack track(pings, Smoothing(5.0));
    QCOMPARE(track.Count(), std::size_t(50));
    QCOMPARE(track.Length(), 0.0);
    QVERIFY(AngleBetween(track.Heading(20), 10.0) < 1e-9);
    QVERIFY(std::isnan(track.Speed(20)));
    QVERIFY(!track.Locate(20, sideStarboard, 1.0).IsValid());
    QVERIFY(std::isnan(ZrSonarTrack(pings, ByCourse()).Heading(20)));
}

void tst_ZrSonarTrack::wildPositionsDoNotMoveTheFrame()
{
    Pings pings = Line({44.6, -63.5}, 0.0, 100);
    pings[10].pose.position = ZrGeoPoint{-80.0, 100.0};
    pings[20].pose.position = ZrGeoPoint{89.9, -62.0};
    const ZrSonarTrack track(pings, {});
    QVERIFY(Between(track.Frame().Origin(), pings[50].pose.position) < 20.0);
    QVERIFY(Between(track.Locate(60, sidePort, 50.0), Reached(pings[60].pose.position, -90.0, 50.0)) < 0.02);
    QVERIFY(std::isfinite(track.Length()));
    // Half round the earth, and averaged: nothing is left of it in the pings behind it.
    pings[10].pose.position = ZrGeoPoint{-44.6, 116.5};
    pings[20].pose.position = ZrGeoPoint{0.1, 26.5};
    const ZrSonarTrack smooth(pings, Smoothing(1.0));
    QVERIFY(Between(smooth.Position(60), pings[60].pose.position) < centimetre);
}

void tst_ZrSonarTrack::nearAPole_data()
{
    QTest::addColumn<double>("lat");
    for (const double lat : {88.9, -88.9, 89.1, -89.1, 89.99999, -90.0})
        QTest::addRow("%g", lat) << lat;
}

/// Where the frame leads astray nothing is told rather than something wrong.
void tst_ZrSonarTrack::nearAPole()
{
    QFETCH(double, lat);
    const Pings pings = Line({lat, 20.0}, lat < 0.0 ? 0.0 : 180.0, 20);
    const ZrSonarTrack track(pings, {});
    const ZrGeoPoint at = track.Locate(3, sidePort, 30.0);
    QCOMPARE(at.IsValid(), std::fabs(lat) < 89.0);
    QCOMPARE(track.Position(3).IsValid(), std::fabs(lat) < 89.0);
    if (at.IsValid())
        QVERIFY(Between(at, Reached(pings[3].pose.position, lat < 0.0 ? -90.0 : 90.0, 30.0)) < 0.02);
}

void tst_ZrSonarTrack::rangesThatAreNoNumbers()
{
    const ZrSonarTrack track(Line({44.6, -63.5}, 0.0, 10, 0.0), {});
    for (const double range : {std::nan(""), std::numeric_limits<double>::infinity()})
        QVERIFY(!track.Locate(5, sidePort, range).IsValid());
    // Behind the sonar is the other side.
    QVERIFY(Between(track.Locate(5, sidePort, -20.0), track.Locate(5, sideStarboard, 20.0)) < 1e-6);
}

void tst_ZrSonarTrack::smoothingKeepsAStraightLine()
{
    const Pings pings = Line({44.6, -63.5}, 77.0, 300, 77.0);
    for (const double seconds : {0.05, 0.5, 5.0, 1000.0}) {
        const ZrSonarTrack track(pings, Smoothing(seconds));
        for (std::size_t i = 0; i < pings.size(); ++i) {
            QVERIFY(Between(track.Position(i), pings[i].pose.position) < 1e-4);
            QVERIFY(AngleBetween(track.Heading(i), 77.0) < 1e-9);
        }
        QVERIFY(std::fabs(track.Length() - 299 * 0.15) < 1e-3);
    }
}

void tst_ZrSonarTrack::smoothingEvensSteps()
{
    // The receiver repeats its position for a second, and rounds it.
    Pings pings = Line({44.6, -63.5}, 90.0, 600);
    const Pings truth = pings;
    for (std::size_t i = 0; i < pings.size(); ++i)
        pings[i].pose.position = truth[i / 10 * 10].pose.position;
    const ZrSonarTrack raw(pings, {});
    const ZrSonarTrack smooth(pings, Smoothing(2.0));
    double rawStep = 0.0;
    double smoothStep = 0.0;
    for (std::size_t i = 100; i < 500; ++i) {
        rawStep = std::max(rawStep, raw.Distance(i) - raw.Distance(i - 1));
        smoothStep = std::max(smoothStep, smooth.Distance(i) - smooth.Distance(i - 1));
    }
    QVERIFY(rawStep > 1.4);
    QVERIFY2(smoothStep < 0.25, qPrintable(QString::number(smoothStep)));
}

void tst_ZrSonarTrack::smoothingIsTheMeanOfTheWindow_data()
{
    QTest::addColumn<double>("seconds");
    for (const double seconds : {0.5, 1.0, 4.0, 30.0})
        QTest::addRow("%g s", seconds) << seconds;
}

/// Against the plain reading of the rule: as many pings before as behind, all within half the time.
void tst_ZrSonarTrack::smoothingIsTheMeanOfTheWindow()
{
    QFETCH(double, seconds);
    std::mt19937 random(9);
    const auto uniform = [&random] { return static_cast<double>(random() % 1000) / 1000.0; };
    Pings pings;
    double time = start;
    for (int i = 0; i < 7000; ++i) { // more than are made at a time
        // Now and then the sonar rests.
        time += random() % 25 == 0 ? 3.0 * uniform() : 0.02 + 0.2 * uniform();
        pings.push_back(Ping(time, {44.6 + uniform() * 1e-4, -63.5 + uniform() * 1e-4}, uniform() * 360.0));
    }
    const ZrSonarTrack raw(pings, {});
    const ZrSonarTrack track(pings, Smoothing(seconds));
    const double half = seconds / 2.0 + 1e-6; // what times are rounded to
    for (std::size_t i = 0; i < pings.size(); ++i) {
        std::size_t reach = 0;
        while (reach < i && i + reach + 1 < pings.size() && pings[i].time - pings[i - reach - 1].time <= half
            && pings[i + reach + 1].time - pings[i].time <= half)
            ++reach;
        double x = 0.0;
        double y = 0.0;
        double east = 0.0;
        double north = 0.0;
        for (std::size_t k = i - reach; k <= i + reach; ++k) {
            x += raw.Point(k).x;
            y += raw.Point(k).y;
            east += std::sin(qDegreesToRadians(pings[k].pose.heading));
            north += std::cos(qDegreesToRadians(pings[k].pose.heading));
        }
        const double count = static_cast<double>(2 * reach + 1);
        QVERIFY(std::hypot(track.Point(i).x - x / count, track.Point(i).y - y / count) < 1e-6);
        QVERIFY(AngleBetween(track.Heading(i), qRadiansToDegrees(std::atan2(east, north))) < 1e-6);
    }
}

void tst_ZrSonarTrack::headingsAreAveragedAcrossNorth()
{
    Pings pings = Line({44.6, -63.5}, 0.0, 101);
    for (std::size_t i = 0; i < pings.size(); ++i)
        pings[i].pose.heading = i % 2 == 0 ? 358.0 : 2.0;
    const ZrSonarTrack track(pings, Smoothing(4.0));
    for (std::size_t i = 20; i < 80; ++i) {
        QVERIFY(AngleBetween(track.Heading(i), 0.0) < 0.1);
        QVERIFY(track.Heading(i) >= 0.0 && track.Heading(i) < 360.0);
    }
}

void tst_ZrSonarTrack::smoothingLeavesOutWhatIsUnknown()
{
    Pings pings = Line({44.6, -63.5}, 0.0, 101, 10.0);
    for (std::size_t i = 41; i < 60; i += 2)
        pings[i].pose.position = ZrGeoPoint();
    const ZrSonarTrack track(pings, Smoothing(1.0));
    QVERIFY(Between(track.Position(50), pings[50].pose.position) < 1e-4);
    QVERIFY(!track.Position(51).IsValid());
}

void tst_ZrSonarTrack::nothingIsAveragedAcrossAClockSetBack()
{
    // Two lines a kilometre apart; in between the clock is set back to where it was.
    Pings pings = Line({44.6, -63.5}, 0.0, 100);
    const Pings second = Line({44.61, -63.5}, 90.0, 100);
    pings.insert(pings.end(), second.begin(), second.end());
    const ZrSonarTrack track(pings, Smoothing(6.0));
    for (std::size_t i = 0; i < pings.size(); ++i) {
        QVERIFY(Between(track.Position(i), pings[i].pose.position) < 1e-3);
        QVERIFY(AngleBetween(track.Heading(i), i < 100 ? 0.0 : 90.0) < 0.01);
        QVERIFY(std::fabs(track.Speed(i) - 1.5) < 0.01);
    }
}

void tst_ZrSonarTrack::timesSlightlyOutOfOrder()
{
    Pings pings = Line({44.6, -63.5}, 0.0, 200);
    for (std::size_t i = 0; i + 1 < pings.size(); i += 2)
        std::swap(pings[i].time, pings[i + 1].time);
    const ZrSonarTrack track(pings, Smoothing(4.0));
    for (std::size_t i = 0; i < pings.size(); ++i) {
        QVERIFY(Between(track.Position(i), pings[i].pose.position) < 0.2);
        QVERIFY(AngleBetween(track.Heading(i), 0.0) < 0.01);
        QVERIFY(std::fabs(track.Speed(i) - 1.5) < 0.2);
    }
}

void tst_ZrSonarTrack::absurdTimes()
{
    const double inf = std::numeric_limits<double>::infinity();
    for (const double bad : {1e300, -1e300, inf, -inf, std::nan(""), 0.0, 1e12}) {
        for (const std::size_t where : {std::size_t(0), std::size_t(50), std::size_t(99)}) {
            Pings pings = Line({44.6, -63.5}, 30.0, 100);
            pings[where].time = bad;
            const ZrSonarTrack track(pings, Smoothing(2.0));
            // The pings beside it are none the worse.
            for (const std::size_t i : {std::size_t(10), std::size_t(30), std::size_t(70), std::size_t(90)}) {
                QVERIFY(Between(track.Position(i), pings[i].pose.position) < 1e-3);
                QVERIFY(AngleBetween(track.Heading(i), 30.0) < 0.01);
                QVERIFY2(std::fabs(track.Speed(i) - 1.5) < 0.1, qPrintable(QString::number(track.Speed(i))));
            }
        }
    }
}

void tst_ZrSonarTrack::oddSmoothing_data()
{
    QTest::addColumn<double>("seconds");
    QTest::newRow("nan") << std::nan("");
    QTest::newRow("negative") << -5.0;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
    QTest::newRow("largest") << std::numeric_limits<double>::max();
    QTest::newRow("smallest") << 5e-324;
}

void tst_ZrSonarTrack::oddSmoothing()
{
    QFETCH(double, seconds);
    const Pings pings = Line({44.6, -63.5}, 30.0, 100);
    const ZrSonarTrack track(pings, Smoothing(seconds));
    for (std::size_t i = 0; i < pings.size(); ++i)
        QVERIFY(Between(track.Position(i), pings[i].pose.position) < 1e-3);
}

/// Ends at all only when the time taken does not grow with the window.
void tst_ZrSonarTrack::longWindowsOverManyPings()
{
    Pings pings;
    for (int i = 0; i < 400000; ++i)
        pings.push_back(Ping(start + i * 0.1, {44.6 + i * 1e-6, -63.5}, 90.0));
    const ZrSonarTrack track(pings, Smoothing(1e6));
    QVERIFY(Between(track.Position(200000), pings[200000].pose.position) < 1.0);
    QVERIFY(AngleBetween(track.Heading(200000), 90.0) < 1e-6);
}

/// Likewise.
void tst_ZrSonarTrack::manyPingsAtOneTime()
{
    Pings pings;
    for (int i = 0; i < 400000; ++i)
        pings.push_back(Ping(start, {44.6, -63.5 + i * 1e-6}));
    const ZrSonarTrack track(pings, Smoothing(1.0));
    QVERIFY(AngleBetween(track.Heading(200000), 90.0) < 0.1);
    QVERIFY(std::isnan(track.Speed(200000)));
}

QTEST_GUILESS_MAIN(tst_ZrSonarTrack)
#include "tst_ZrSonarTrack.moc"
