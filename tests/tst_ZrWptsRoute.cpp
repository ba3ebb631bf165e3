#include "RouteChecks.h"
#include "ZrUtil/ZrUtil.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double metresPerDegree = 6.371e6 * pi / 180.0; // on the sphere of the ranges

double Radians(double degrees)
{
    return degrees * pi / 180.0;
}

QVector<double> Speeds(const ZrWpts& route)
{
    QVector<double> speeds;
    for (const ZrWpt* wpt : Items(route))
        speeds.append(wpt->speed);
    return speeds;
}

/// Waypoints on the equator, one degree apart, each with a kind of speed and a speed of its own.
void FillSpeeds(ZrWpts& route, const QVector<int>& types, const QVector<double>& speeds)
{
    for (int i = 0; i < types.size(); ++i) {
        ZrWpt* wpt = AppendLL(route, 0.0, i);
        wpt->spdType = types[i];
        wpt->speed = speeds[i];
    }
}

/// The way 0,0 → 100,0 → 100,100 → 200,100: a turn to the left, one to the right, of the radii given.
void FillSteps(ZrWpts& route, double first, double second)
{
    AppendGrid(route, {0, 0});
    AppendGrid(route, {100, 0}, first);
    AppendGrid(route, {100, 100}, second);
    AppendGrid(route, {200, 100});
}

} // namespace

class tst_ZrWptsRoute : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { ResetRouteState(); }

    void cleanup() { ResetRouteState(); }

    void gridOfTheFirstZone();
    void gridOfTheSouth();
    void gridOfNothing();
    void gridKeepsTheRestOfTheProjection();
    void routeSpeed_data();
    void routeSpeed();
    void speeds_data();
    void speeds();
    void speedsFollowThePresets();
    void distances();
    void distancesOverTurns_data();
    void distancesOverTurns();
    void distancesOverOneLeftTurn();
    void distancesBesideATurnThatStayed();
    void distancesNotForced();
    void distancesNotForcedOverTurns();
    void distancesForced();
    void distancesOfNothing();
    void recalcIsRepeatable();
    void range();
    void rangeOfAClosedRoute();
    void duration_data();
    void duration();
    void durationWithoutSpeed();
    void durationOfAnEmptyRoute();
    void durationIgnoresTheSpeedTypeOfTheRoute();
    void segment_data();
    void segment();
    void segmentOfFarNorth_data();
    void segmentOfFarNorth();
    void segmentOfEmpty();
    void segmentSkipsCoincident();
    void segmentMovesTheZone();
    void segmentOfNoPosition();
    void reverse();
    void reverseOfFew();
    void reverseTurnsTheOtherWay();
};

void tst_ZrWptsRoute::gridOfTheFirstZone()
{
    ZrWpts route;
    AppendLL(route, 50.0, -0.5); // zone 30
    AppendLL(route, 50.0, 0.5); // zone 31, computed in 30 all the same
    route.CalcXY();
    QCOMPARE(ZrUnits::utm.lngOrigin, Radians(-3.0));
    for (const ZrWpt* wpt : Items(route)) {
        double east = 0.0;
        double north = 0.0;
        ZrProj zone;
        zone.SetupUTM(50.0, -0.5);
        ZrUnits::LLToEN(ZrSphd(), zone, wpt->lat, wpt->lng, east, north);
        QCOMPARE(wpt->x, east);
        QCOMPARE(wpt->y, north);
        QVERIFY(wpt->x > 600000.0);
    }
    // The order decides.
    route.Reverse();
    QCOMPARE(ZrUnits::utm.lngOrigin, Radians(3.0));
    QVERIFY(At(route, 0)->x < 400000.0);
    QVERIFY(At(route, 1)->x < 300000.0);
}

void tst_ZrWptsRoute::gridOfTheSouth()
{
    ZrWpts route;
    AppendLL(route, -0.001, 9.0);
    AppendLL(route, 0.001, 9.0);
    route.CalcXY();
    QCOMPARE(ZrUnits::utm.falseNorth, 1e7);
    QVERIFY(At(route, 0)->y < 1e7);
    QVERIFY(At(route, 1)->y > 1e7);
    QVERIFY(Near(At(route, 0)->x, 500000.0, 1e-6));
}

void tst_ZrWptsRoute::gridOfNothing()
{
    ZrUnits::CalcUTM(-10.0, 100.0);
    const double origin = ZrUnits::utm.lngOrigin;
    ZrWpts route;
    route.CalcXY();
    route.Recalc(true);
    QCOMPARE(ZrUnits::utm.lngOrigin, origin);
    QCOMPARE(ZrUnits::utm.falseNorth, 1e7);
}

void tst_ZrWptsRoute::gridKeepsTheRestOfTheProjection()
{
    ZrUnits::utm.scaleFactor = 1.0;
    ZrUnits::utm.falseEast = 1000.0;
    ZrWpts route;
    AppendLL(route, 0.0, 3.0);
    route.CalcXY();
    QVERIFY(Near(route.GetHead()->x, 1000.0, 1e-6));
    QCOMPARE(ZrUnits::utm.scaleFactor, 1.0);
}

void tst_ZrWptsRoute::routeSpeed_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("speed");
    QTest::newRow("own") << 0 << 0.625;
    QTest::newRow("slow") << 1 << 0.25;
    QTest::newRow("medium") << 2 << 0.5;
    QTest::newRow("fast") << 3 << 1.0;
    QTest::newRow("4") << 4 << 0.625;
    QTest::newRow("-1") << -1 << 0.625;
}

void tst_ZrWptsRoute::routeSpeed()
{
    QFETCH(int, type);
    QFETCH(double, speed);
    ZrWpts route;
    AppendLL(route, 0.0, 0.0);
    route.speedType = type;
    route.speed = 0.625;
    route.Recalc(false);
    QCOMPARE(route.speed, speed);
    QCOMPARE(route.GetHead()->speed, speed);
    // Without a waypoint as well.
    ZrWpts empty;
    empty.speedType = type;
    empty.speed = 0.625;
    empty.Recalc(true);
    QCOMPARE(empty.speed, speed);
}

void tst_ZrWptsRoute::speeds_data()
{
    QTest::addColumn<QVector<int>>("types");
    QTest::addColumn<QVector<double>>("before");
    QTest::addColumn<QVector<double>>("after"); // the route has 0.75
    QTest::newRow("all inherit") << QVector<int>{0, 0, 0} << QVector<double>{9, 9, 9}
                                 << QVector<double>{0.75, 0.75, 0.75};
    QTest::newRow("presets are inherited")
        << QVector<int>{0, 1, 0, 2, 0, 3, 0} << QVector<double>{9, 9, 9, 9, 9, 9, 9}
        << QVector<double>{0.75, 9, 0.25, 9, 0.5, 9, 1.0};
    QTest::newRow("an own speed is inherited")
        << QVector<int>{4, 0, 100, 0} << QVector<double>{2, 9, 3, 9} << QVector<double>{2, 2, 3, 3};
    QTest::newRow("of a negative type, too")
        << QVector<int>{0, -1, 0} << QVector<double>{9, 4, 9} << QVector<double>{0.75, 4, 4};
    QTest::newRow("even when it is 0 or less")
        << QVector<int>{4, 0, 5, 0} << QVector<double>{0, 9, -2, 9} << QVector<double>{0, 0, -2, -2};
}

void tst_ZrWptsRoute::speeds()
{
    QFETCH(QVector<int>, types);
    QFETCH(QVector<double>, before);
    ZrWpts route;
    route.speed = 0.75;
    FillSpeeds(route, types, before);
    route.Recalc(true);
    QTEST(Speeds(route), "after");
    QCOMPARE(route.speed, 0.75);
}

void tst_ZrWptsRoute::speedsFollowThePresets()
{
    ZrWpts::s_msSlow = 0.125F;
    ZrWpts::s_msMedium = 1.5F;
    ZrWpts::s_msFast = 6.0F;
    ZrWpts route;
    route.speedType = 2;
    FillSpeeds(route, {0, 1, 0, 3, 0}, {9, 9, 9, 9, 9});
    route.Recalc(true);
    QCOMPARE(Speeds(route), QVector<double>({1.5, 9, 0.125, 9, 6}));
}

void tst_ZrWptsRoute::distances()
{
    ZrWpts route;
    AppendGrid(route, {0, 0});
    AppendGrid(route, {300, 400});
    AppendGrid(route, {300, 400});
    AppendGrid(route, {300, -600});
    for (ZrWpt* wpt : Items(route))
        wpt->q = 77.0;
    route.Recalc(true);
    QCOMPARE(At(route, 0)->q, 0.0);
    QVERIFY(Near(At(route, 1)->q, 500.0, 1e-3));
    QVERIFY(Near(At(route, 2)->q, 500.0, 1e-3));
    QVERIFY(Near(At(route, 3)->q, 1500.0, 1e-3));
}

void tst_ZrWptsRoute::distancesOverTurns_data()
{
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("second");
    QTest::newRow("both") << 10.0 << 20.0;
    QTest::newRow("first") << 10.0 << 0.0;
    QTest::newRow("second") << 0.0 << 20.0;
    QTest::newRow("negative radius") << -10.0 << -20.0;
    QTest::newRow("circles that meet") << 50.0 << 50.0;
    QTest::newRow("circles that overlap") << 70.0 << 60.0;
    QTest::newRow("none") << 0.0 << 0.0;
}

/// The arc of the right turn counts with its sign.
void tst_ZrWptsRoute::distancesOverTurns()
{
    QFETCH(double, first);
    QFETCH(double, second);
    ZrWpts route;
    FillSteps(route, first, second);
    route.Recalc(true);
    const double a = std::fabs(first);
    const double b = std::fabs(second);
    const double tp1 = 100.0 - a;
    const double tp2 = tp1 + a * pi / 2;
    const double tp3 = tp2 + std::fabs(100.0 - a - b);
    const double tp4 = tp3 - b * pi / 2;
    QCOMPARE(At(route, 0)->q, 0.0);
    QVERIFY(Near(At(route, 1)->q, tp2, 1e-3));
    QVERIFY(Near(At(route, 1)->tp1Q, a > 0.0 ? tp1 : 0.0, 1e-3));
    QVERIFY(Near(At(route, 1)->tp2Q, a > 0.0 ? tp2 : 0.0, 1e-3));
    QVERIFY(Near(At(route, 2)->q, tp4, 1e-3));
    QVERIFY(Near(At(route, 2)->tp1Q, b > 0.0 ? tp3 : 0.0, 1e-3));
    QVERIFY(Near(At(route, 2)->tp2Q, b > 0.0 ? tp4 : 0.0, 1e-3));
    QVERIFY(Near(At(route, 3)->q, tp4 + 100.0 - b, 1e-3));
}

void tst_ZrWptsRoute::distancesOverOneLeftTurn()
{
    ZrWpts route;
    AppendGrid(route, {0, 0});
    AppendGrid(route, {100, 0}, 10.0);
    AppendGrid(route, {100, 100});
    route.Recalc(true);
    QVERIFY(Near(At(route, 1)->tp1Q, 90.0, 1e-3));
    QVERIFY(Near(At(route, 1)->q, 105.70796, 1e-3));
    QVERIFY(Near(At(route, 2)->q, 195.70796, 1e-3));
}

/// Where the path doubles back, or a leg has no length, the former turn stays, but the way does not go over
/// it.
void tst_ZrWptsRoute::distancesBesideATurnThatStayed()
{
    for (const double last : {50.0, 50.001}) {
        // On the central meridian the legs run along the grid, and their directions are exact.
        ZrWpts route;
        AppendLL(route, 50.0, -3.0);
        ZrWpt* wpt = AppendLL(route, 50.001, -3.0);
        wpt->r = 10.0;
        SetTurn(*wpt, staleTurn);
        ZrWpt* end = AppendLL(route, last, -3.0);
        route.Recalc(true);
        const double leg = wpt->y - route.GetHead()->y;
        QVERIFY(leg > 111.0 && leg < 112.0);
        QCOMPARE(Turn(*wpt), staleTurn);
        QCOMPARE(wpt->q, leg);
        QCOMPARE(end->q, last == 50.0 ? 2.0 * leg : leg);
    }
}

void tst_ZrWptsRoute::distancesNotForced()
{
    ZrWpts route;
    for (int i = 0; i < 5; ++i)
        AppendGrid(route, {100.0 * i, 0});
    At(route, 2)->q = 1000.0;
    route.Recalc(false);
    QCOMPARE(At(route, 0)->q, 0.0);
    QVERIFY(Near(At(route, 1)->q, 100.0, 1e-3));
    QCOMPARE(At(route, 2)->q, 1000.0);
    QVERIFY(Near(At(route, 3)->q, 1100.0, 1e-3));
    QVERIFY(Near(At(route, 4)->q, 1200.0, 1e-3));

    // What was filled is kept the next time, though the waypoints have moved.
    const double filled = At(route, 3)->q;
    At(route, 3)->lat += 0.1;
    At(route, 4)->q = 0.0;
    route.Recalc(false);
    QCOMPARE(At(route, 3)->q, filled);
    QVERIFY(At(route, 4)->q > filled + 10000.0);

    // At the first waypoint, too; a negative distance is one.
    At(route, 0)->q = -50.0;
    At(route, 1)->q = 0.0;
    route.Recalc(false);
    QCOMPARE(At(route, 0)->q, -50.0);
    QVERIFY(Near(At(route, 1)->q, 50.0, 1e-3));
}

void tst_ZrWptsRoute::distancesNotForcedOverTurns()
{
    ZrWpts route;
    FillSteps(route, 10.0, 20.0);
    At(route, 1)->q = 1000.0;
    route.Recalc(false);
    const double arc = 10.0 * pi / 2;
    QCOMPARE(At(route, 1)->q, 1000.0);
    QCOMPARE(At(route, 1)->tp2Q, 1000.0);
    QVERIFY(Near(At(route, 1)->tp1Q, 1000.0 - arc, 1e-6));
    QVERIFY(Near(At(route, 2)->tp1Q, 1070.0, 1e-3));
    QVERIFY(Near(At(route, 2)->q, 1070.0 - 20.0 * pi / 2, 1e-3));
    QCOMPARE(At(route, 2)->tp2Q, At(route, 2)->q);
}

void tst_ZrWptsRoute::distancesForced()
{
    ZrWpts route;
    FillSteps(route, 0.0, 0.0);
    for (ZrWpt* wpt : Items(route))
        wpt->q = NAN;
    route.Recalc(false);
    QVERIFY(std::isnan(At(route, 3)->q));
    route.Recalc(true);
    QCOMPARE(At(route, 0)->q, 0.0);
    QVERIFY(Near(At(route, 3)->q, 300.0, 1e-3));
}

void tst_ZrWptsRoute::distancesOfNothing()
{
    ZrWpts route;
    for (const bool force : {true, false})
        route.Recalc(force);
    QVERIFY(route.IsEmpty());
    ZrWpt* wpt = AppendGrid(route, {0, 0});
    wpt->q = 5.0;
    route.Recalc(false);
    QCOMPARE(wpt->q, 5.0);
    route.Recalc(true);
    QCOMPARE(wpt->q, 0.0);
}

void tst_ZrWptsRoute::recalcIsRepeatable()
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> metres(-3000.0, 3000.0);
    ZrWpts route;
    for (int i = 0; i < 100; ++i)
        AppendGrid(route, {metres(random), metres(random)}, metres(random) / 20.0);
    route.Recalc(true);
    const ZrWpts once(route);
    route.Recalc(true);
    for (int i = 0; i < 100; ++i) {
        QCOMPARE(Turn(*At(route, i)), Turn(*At(once, i)));
        QCOMPARE(At(route, i)->q, At(once, i)->q);
    }
}

void tst_ZrWptsRoute::range()
{
    ZrWpts route;
    QCOMPARE(route.CalcRange(), 0.0);
    AppendLL(route, 0.0, 0.0);
    QCOMPARE(route.CalcRange(), 0.0);
    AppendLL(route, 0.0, 1.0);
    QVERIFY(Near(route.CalcRange(), 111194.93, 0.005));
    AppendLL(route, 2.0, 1.0);
    QVERIFY(Near(route.CalcRange(), 3.0 * metresPerDegree, 1e-6));
    // Legs of the list as it stands: neither turns nor what was computed before count.
    At(route, 1)->r = 500.0;
    route.Recalc(true);
    QVERIFY(Near(route.CalcRange(), 3.0 * metresPerDegree, 1e-6));
    // The short way over the antimeridian.
    ZrWpts across;
    AppendLL(across, 0.0, 179.5);
    AppendLL(across, 0.0, -179.5);
    QVERIFY(Near(across.CalcRange(), metresPerDegree, 1e-6));
}

/// The leg back to the start is not in the list.
void tst_ZrWptsRoute::rangeOfAClosedRoute()
{
    ZrWpts route;
    for (const double lng : {0.0, 1.0, 2.0})
        AppendLL(route, 0.0, lng);
    route.linked = true;
    route.closed = true;
    route.Recalc(true);
    QVERIFY(Near(route.CalcRange(), 2.0 * metresPerDegree, 1e-6));
    QVERIFY(Near(route.CalcDuration(), 2.0 * metresPerDegree / 0.5, 1e-6));
}

void tst_ZrWptsRoute::duration_data()
{
    QTest::addColumn<QVector<int>>("types");
    QTest::addColumn<QVector<double>>("speeds");
    QTest::addColumn<QVector<double>>("legs"); // the speed on each leg; the route has 0.8
    const auto row = [](const char* name, QVector<int> types, QVector<double> speeds, QVector<double> legs) {
        QTest::newRow(name) << types << speeds << legs;
    };
    row("one waypoint", {1}, {9}, {});
    row("the route's", {0, 0, 0}, {9, 9, 9}, {0.8, 0.8});
    row("presets are carried on", {1, 0, 2, 0, 3, 0, 0}, {9, 9, 9, 9, 9, 9, 9}, {0.25, 0.25, 0.5, 0.5, 1, 1});
    row("the last waypoint's does not count", {0, 3}, {9, 9}, {0.8});
    row("an own speed above type 3", {4, 0, 99, 0}, {2, 9, 4, 9}, {2, 2, 4});
    row("not when it is 0 or less", {4, 5, 6, 0}, {0, -1, 2, 9}, {0.8, 0.8, 2});
    row("nor when it is no number", {4, 0, 0}, {NAN, 9, 9}, {0.8, 0.8});
    row("not of a negative type", {-1, 2, -7, 0}, {2, 9, 3, 9}, {0.8, 0.5, 0.5});
}

void tst_ZrWptsRoute::duration()
{
    QFETCH(QVector<int>, types);
    QFETCH(QVector<double>, speeds);
    QFETCH(QVector<double>, legs);
    ZrWpts route;
    route.speed = 0.8;
    FillSpeeds(route, types, speeds);
    double expected = 0.0;
    for (const double speed : legs)
        expected += metresPerDegree / speed;
    QVERIFY(Near(route.CalcDuration(), expected, 1e-6));
}

void tst_ZrWptsRoute::durationWithoutSpeed()
{
    for (const double speed : {0.0, -0.0, -0.5, double(-INFINITY)}) {
        ZrWpts route;
        route.speed = speed;
        QCOMPARE(route.CalcDuration(), -1.0);
        FillSpeeds(route, {4, 3, 4}, {2, 2, 2});
        QCOMPARE(route.CalcDuration(), -1.0);
    }
}

void tst_ZrWptsRoute::durationOfAnEmptyRoute()
{
    const ZrWpts route;
    QCOMPARE(route.CalcDuration(), 0.0);
}

/// Only a recalculation brings the speed of the route to its kind.
void tst_ZrWptsRoute::durationIgnoresTheSpeedTypeOfTheRoute()
{
    ZrWpts route;
    FillSpeeds(route, {0, 0}, {0, 0});
    route.speedType = 3;
    QVERIFY(Near(route.CalcDuration(), metresPerDegree / 0.5, 1e-6));
    route.Recalc(true);
    QVERIFY(Near(route.CalcDuration(), metresPerDegree / 1.0, 1e-6));
}

void tst_ZrWptsRoute::segment_data()
{
    QTest::addColumn<QVector<double>>("points"); // east, north of each waypoint in metres
    QTest::addColumn<QVector<double>>("position");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("from"); // index, -1 for none
    QTest::addColumn<int>("to");
    const auto row
        = [](const char* name, QVector<double> points, QVector<double> position, int result, int from,
              int to) { QTest::newRow(name) << points << position << result << from << to; };
    const QVector<double> one{0, 0};
    const QVector<double> leg{0, 0, 100, 0};
    const QVector<double> corner{0, 0, 100, 0, 100, 100};
    row("one waypoint", one, {30, 30}, 0, -1, 0);
    row("one waypoint, there", one, {0, 0}, 0, -1, 0);
    row("coincident waypoints", {0, 0, 0, 0, 0, 0}, {30, 0}, 0, -1, 0);
    row("before the first", leg, {-20, 5}, -1, 0, 1);
    row("at the first", leg, {0, 0}, -1, 0, 1);
    row("behind the first", leg, {20, 5}, 0, 0, 1);
    row("before the last", leg, {80, 5}, 0, 0, 1);
    row("at the last", leg, {100, 0}, 1, 0, 1);
    row("beyond the last", leg, {120, -5}, 1, 0, 1);
    row("end of a corner, before", corner, {102, 90}, 0, 1, 2);
    row("end of a corner, beyond", corner, {102, 110}, 1, 1, 2);
    row("only on the first leg", corner, {90, -5}, 0, 0, 1);
    row("only on the second leg", corner, {105, 5}, 0, 1, 2);
    row("outside, nearer to the first leg", corner, {103, -10}, 0, 0, 1);
    row("outside, nearer to the second leg", corner, {110, -3}, 0, 1, 2);
    row("inside, nearer to the first leg", corner, {90, 2}, 0, 0, 1);
    row("inside, nearer to the second leg", corner, {98, 10}, 0, 1, 2);
}

void tst_ZrWptsRoute::segment()
{
    QFETCH(QVector<double>, points);
    QFETCH(QVector<double>, position);
    QFETCH(int, result);
    QFETCH(int, from);
    QFETCH(int, to);
    const double north = 100000.0; // near the equator, where degrees are about alike
    ZrWpts route;
    for (int i = 0; i < points.size(); i += 2)
        AppendGrid(route, {points[i], points[i + 1]}, 0.0, north);
    double lat = 0.0;
    double lng = 0.0;
    ZrUnits::EN2LL(ZrSphd(), ZrProj(), baseEast + position[0], north + position[1], lat, lng);
    auto* a = reinterpret_cast<ZrWpt*>(1);
    auto* b = reinterpret_cast<ZrWpt*>(1);
    QCOMPARE(route.LL2Segment(lat, lng, a, b), result);
    QCOMPARE(a ? route.GetIndex(a) : -1, from);
    QCOMPARE(b ? route.GetIndex(b) : -1, to);
}

void tst_ZrWptsRoute::segmentOfFarNorth_data()
{
    QTest::addColumn<QVector<double>>("before"); // first waypoint, in metres from the second
    QTest::addColumn<int>("to");
    QTest::newRow("foot on the first leg") << QVector<double>{-400, 100} << 1;
    QTest::newRow("feet outside, first leg") << QVector<double>{-200, 300} << 1;
    QTest::newRow("feet outside, second leg") << QVector<double>{0, -300} << 2;
}

/// In degrees the second waypoint is the nearest, although the foot point on the second leg is beyond its
/// end.
void tst_ZrWptsRoute::segmentOfFarNorth()
{
    QFETCH(QVector<double>, before);
    QFETCH(int, to);
    const double north = 8880000.0; // 80 degrees
    ZrWpts route;
    AppendGrid(route, {before[0], before[1]}, 0.0, north);
    AppendGrid(route, {0, 0}, 0.0, north);
    AppendGrid(route, {100, 10}, 0.0, north);
    double lat = 0.0;
    double lng = 0.0;
    ZrUnits::EN2LL(ZrSphd(), ZrProj(), baseEast, north + 1100.0, lat, lng);
    QCOMPARE(route.NearestTo(lat, lng), route.FindIndex(1));
    ZrWpt* a = nullptr;
    ZrWpt* b = nullptr;
    QCOMPARE(route.LL2Segment(lat, lng, a, b), 0);
    QCOMPARE(route.GetIndex(a), to - 1);
    QCOMPARE(route.GetIndex(b), to);
}

void tst_ZrWptsRoute::segmentOfEmpty()
{
    ZrUnits::CalcUTM(10.0, 100.0);
    const ZrWpts route;
    ZrWpt other;
    ZrWpt* from = &other;
    ZrWpt* to = &other;
    QCOMPARE(route.LL2Segment(1.0, 1.0, from, to), 0);
    QVERIFY(!from);
    QVERIFY(!to);
    QCOMPARE(ZrUnits::utm.lngOrigin, Radians(99.0));
}

/// The legs go to the next waypoints at other positions.
void tst_ZrWptsRoute::segmentSkipsCoincident()
{
    ZrWpts route;
    for (const double east : {0.0, 0.0, 100.0, 100.0, 100.0, 200.0, 200.0})
        AppendGrid(route, {east, 0}, 0.0, 100000.0);
    // The same degrees for the same metres: the inverse gives equal values for equal input.
    double lat = 0.0;
    double lng = 0.0;
    ZrWpt* from = nullptr;
    ZrWpt* to = nullptr;
    const auto segment = [&](double east) {
        ZrUnits::EN2LL(ZrSphd(), ZrProj(), baseEast + east, 100005.0, lat, lng);
        return route.LL2Segment(lat, lng, from, to);
    };
    QCOMPARE(segment(90.0), 0);
    QCOMPARE(route.GetIndex(from), 1);
    QCOMPARE(route.GetIndex(to), 2);
    QCOMPARE(segment(110.0), 0);
    QCOMPARE(route.GetIndex(from), 2);
    QCOMPARE(route.GetIndex(to), 5);
    QCOMPARE(segment(-10.0), -1);
    QCOMPARE(route.GetIndex(from), 0);
    QCOMPARE(route.GetIndex(to), 2);
    QCOMPARE(segment(210.0), 1);
    QCOMPARE(route.GetIndex(from), 4);
    QCOMPARE(route.GetIndex(to), 5);
}

void tst_ZrWptsRoute::segmentMovesTheZone()
{
    ZrWpts route;
    AppendLL(route, 50.0, -0.5);
    AppendLL(route, -50.0, 9.0);
    route.Recalc(true);
    QCOMPARE(ZrUnits::utm.lngOrigin, Radians(-3.0));
    ZrWpt* from = nullptr;
    ZrWpt* to = nullptr;
    route.LL2Segment(-49.0, -1.0, from, to);
    QCOMPARE(ZrUnits::utm.lngOrigin, Radians(9.0));
    QCOMPARE(ZrUnits::utm.falseNorth, 1e7);
    // The next recalculation goes back to that of the route.
    route.Recalc(true);
    QCOMPARE(ZrUnits::utm.lngOrigin, Radians(-3.0));
    QCOMPARE(ZrUnits::utm.falseNorth, 0.0);
}

void tst_ZrWptsRoute::segmentOfNoPosition()
{
    ZrWpts route;
    for (const double lat : {0.0, 1.0, 2.0})
        AppendLL(route, lat, 0.0);
    ZrWpt* from = nullptr;
    ZrWpt* to = nullptr;
    for (const double bad : {double(NAN), double(INFINITY), -1e308}) {
        const int result = route.LL2Segment(bad, bad, from, to);
        QVERIFY(result >= -1 && result <= 1);
        QVERIFY(from && to);
        QCOMPARE(route.GetIndex(to), route.GetIndex(from) + 1);
    }
}

void tst_ZrWptsRoute::reverse()
{
    ZrWpts route;
    route.linked = true;
    FillSteps(route, 0.0, 0.0);
    AppendGrid(route, {1200, 100});
    route.UpdatePseudo();
    route.Recalc(true);
    const QVector<ZrWpt*> before = Items(route);
    route.Reverse();
    const QVector<ZrWpt*> after = Items(route);
    for (int i = 0; i < 5; ++i)
        QCOMPARE(after[i], before[4 - i]);
    // Every distance is computed anew.
    const QVector<double> q{0, 1000, 1100, 1200, 1300};
    for (int i = 0; i < 5; ++i)
        QVERIFY(Near(after[i]->q, q[i], 1e-2));
    // The labels went along.
    QCOMPARE(after[0]->pseudo, QStringLiteral("Finish Mission"));
    QCOMPARE(after[4]->pseudo, QStringLiteral("Start Mission"));
}

void tst_ZrWptsRoute::reverseOfFew()
{
    ZrWpts route;
    route.Reverse();
    QVERIFY(route.IsEmpty());
    ZrWpt* wpt = AppendGrid(route, {0, 0});
    wpt->q = 5.0;
    route.Reverse();
    QCOMPARE(route.GetHead(), wpt);
    QCOMPARE(wpt->q, 0.0);
}

void tst_ZrWptsRoute::reverseTurnsTheOtherWay()
{
    ZrWpts route;
    FillSteps(route, 10.0, 20.0);
    route.Recalc(true);
    const ZrWpt was = *At(route, 1);
    route.Reverse();
    const ZrWpt& now = *At(route, 2);
    QCOMPARE(now.uuid, was.uuid);
    QVERIFY(Near(now.rit, -was.rit, 1e-6));
    QVERIFY(Near(now.tp1X, was.tp2X, 1e-6));
    QVERIFY(Near(now.tp1Y, was.tp2Y, 1e-6));
    QVERIFY(Near(now.tp2X, was.tp1X, 1e-6));
    QVERIFY(Near(now.ricX, was.ricX, 1e-6));
    QVERIFY(Near(now.ricY, was.ricY, 1e-6));
}

QTEST_GUILESS_MAIN(tst_ZrWptsRoute)
#include "tst_ZrWptsRoute.moc"
