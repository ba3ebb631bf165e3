// Speeds and durations of the legs of a path.

#include "PathChecks.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrUtil/ZrUtil.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double pi = 3.141592653589793;
const double NaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

class tst_ZrRouteSpeed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void speedOfTheLegs();
    void speedsOfTheRoute_data();
    void speedsOfTheRoute();
    void totalsBySpeed();
    void durationAgreesWithTheRoute();
};

void tst_ZrRouteSpeed::speedOfTheLegs()
{
    ZrWpts route;
    Lay(route,
        {{0, 0}, {0, 100}, {0, 200}, {0, 300}, {0, 400}, {0, 500}, {0, 600}, {0, 700}, {0, 800}, {0, 900}});
    const int types[] = {0, 1, 0, 2, 3, 7, 0, 4, -1, 3};
    const double own[] = {9, 9, 9, 9, 9, 2.0, 9, -1.0, 9, 9};
    for (int i = 0; i < 10; ++i) {
        WptAt(route, i)->spdType = types[i];
        WptAt(route, i)->speed = own[i];
    }
    route.speed = 0.8;
    const ZrRoutePath path(route);
    const double speeds[] = {0.8, 0.25, 0.25, 0.5, 1.0, 2.0, 2.0, 2.0, 2.0};
    const eRouteSpeed kinds[]
        = {eRouteSpeedInherited, eRouteSpeedSlow, eRouteSpeedInherited, eRouteSpeedMedium, eRouteSpeedFast,
            eRouteSpeedOwn, eRouteSpeedInherited, eRouteSpeedInherited, eRouteSpeedInherited};
    const eRouteSpeed sources[] = {eRouteSpeedInherited, eRouteSpeedSlow, eRouteSpeedSlow, eRouteSpeedMedium,
        eRouteSpeedFast, eRouteSpeedOwn, eRouteSpeedOwn, eRouteSpeedOwn, eRouteSpeedOwn};
    for (std::size_t i = 0; i < 9; ++i) {
        QCOMPARE(path.Legs()[i].speed, speeds[i]);
        QCOMPARE(path.Legs()[i].type, kinds[i]);
        QCOMPARE(path.Legs()[i].source, sources[i]);
        QVERIFY(Near(path.Legs()[i].duration, 100.0 / speeds[i], 1e-4));
    }
    // The leg that closes the route begins at the last waypoint.
    route.closed = true;
    QCOMPARE(ZrRoutePath(route).Legs()[9].speed, 1.0);
}

void tst_ZrRouteSpeed::speedsOfTheRoute_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("own");
    QTest::addColumn<double>("expected");
    QTest::newRow("own") << 0 << 0.7 << 0.7;
    QTest::newRow("slow") << 1 << 0.7 << 0.25;
    QTest::newRow("medium") << 2 << 0.7 << 0.5;
    QTest::newRow("fast") << 3 << 0.7 << 1.0;
    QTest::newRow("other type") << 4 << 0.7 << 0.7;
    QTest::newRow("zero") << 0 << 0.0 << NaN;
    QTest::newRow("negative") << 0 << -1.0 << NaN;
    QTest::newRow("not a number") << 0 << NaN << NaN;
    QTest::newRow("infinite") << 0 << std::numeric_limits<double>::infinity() << NaN;
}

void tst_ZrRouteSpeed::speedsOfTheRoute()
{
    QFETCH(int, type);
    QFETCH(double, own);
    QFETCH(double, expected);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}});
    route.speedType = type;
    route.speed = own;
    const ZrRoutePath path(route);
    if (std::isnan(expected)) {
        QVERIFY(std::isnan(path.Legs()[0].speed));
        QVERIFY(std::isnan(path.Duration()));
        // Legs with speeds of their own do without.
        WptAt(route, 0)->spdType = 3;
        QVERIFY(Near(ZrRoutePath(route).Duration(), 200.0, 1e-4));
    } else {
        QCOMPARE(path.Legs()[1].speed, expected);
        QVERIFY(Near(path.Duration(), 200.0 / expected, 1e-4));
    }
    QVERIFY(Near(path.Length(), 200.0, 1e-5));
}

void tst_ZrRouteSpeed::totalsBySpeed()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {200, 100}, {200, 400}, {600, 400}, {600, 900}, {600, 1500}}, 10.0);
    const int types[] = {0, 1, 2, 3, 9, 1, 0};
    for (int i = 0; i < 7; ++i)
        WptAt(route, i)->spdType = types[i];
    WptAt(route, 4)->speed = 2.0;
    const ZrRoutePath path(route);
    // Four right angles: each takes 10 m from both its legs and adds a quarter of a circle to the first.
    const double arc = 5.0 * pi;
    const auto matches = [&](eRouteSpeed type, double metres, double speed) {
        const ZrRoutePath::Totals totals = path.Total(type);
        return Near(totals.length, metres, 1e-4) && Near(totals.duration, metres / speed, 1e-3);
    };
    QVERIFY(matches(eRouteSpeedInherited, 90.0 + arc, 0.5));
    QVERIFY(Near(path.Total(eRouteSpeedSlow).length, 180.0 + arc + 600.0, 1e-4));
    QVERIFY(matches(eRouteSpeedSlow, 780.0 + arc, 0.25));
    QVERIFY(matches(eRouteSpeedMedium, 280.0 + arc, 0.5));
    QVERIFY(matches(eRouteSpeedFast, 380.0 + arc, 1.0));
    QVERIFY(matches(eRouteSpeedOwn, 490.0, 2.0));
    double length = 0.0;
    double duration = 0.0;
    for (int type = 0; type < 5; ++type) {
        length += path.Total(static_cast<eRouteSpeed>(type)).length;
        duration += path.Total(static_cast<eRouteSpeed>(type)).duration;
    }
    QVERIFY(Near(length, path.Length(), 1e-6));
    QVERIFY(Near(duration, path.Duration(), 1e-6));
}

void tst_ZrRouteSpeed::durationAgreesWithTheRoute()
{
    for (unsigned seed = 0; seed < 20; ++seed) {
        ZrWpts route;
        Wander(route, 30, seed);
        for (ZrListPos* pos = route.GetHeadPos(); pos;)
            route.GetNext(pos)->r = 0.0;
        const ZrRoutePath path(route);
        double expected = 0.0;
        for (std::size_t i = 0; i < path.Legs().size(); ++i) {
            const ZrWpt* a = WptAt(route, static_cast<int>(i));
            const ZrWpt* b = WptAt(route, static_cast<int>(i) + 1);
            expected += ZrUtil::LL2LLRng(a->lat, a->lng, b->lat, b->lng) / path.Legs()[i].speed;
        }
        QVERIFY(Near(route.CalcDuration(), expected, 1e-6));
        QVERIFY(Near(path.Duration(), expected, 0.005 * expected)); // sphere and ellipsoid
    }
}

QTEST_GUILESS_MAIN(tst_ZrRouteSpeed)
#include "tst_ZrRouteSpeed.moc"
