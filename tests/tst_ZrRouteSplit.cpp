// Routes made of one: together they must run the path of the whole, and none longer than the endurance.

#include "PathChecks.h"
#include "ZrKit/planning/ZrRouteCheck.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/planning/ZrRouteSplit.h"
#include "ZrUtil/ZrUnits.h"

#include <QElapsedTimer>
#include <QtTest/QtTest>

#include <cmath>
#include <random>
#include <set>

namespace {

ZrRouteSplit::Options Limit(double metres, bool cutLegs = true)
{
    ZrRouteSplit::Options options;
    options.maxMetres = metres;
    options.cutLegs = cutLegs;
    return options;
}

std::vector<double> Lengths(const ZrRouteSplit::Result& result)
{
    std::vector<double> lengths;
    for (const auto& route : result.routes)
        lengths.push_back(ZrRoutePath(*route).Length());
    return lengths;
}

double Sum(const std::vector<double>& values)
{
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return sum;
}

} // namespace

class tst_ZrRouteSplit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withinALeg();
    void atWaypoints();
    void enoughForAll();
    void byTime();
    void bothLimits();
    void reserve();
    void turnsAreNotCut();
    void noSlivers();
    void closedRoute();
    void returnToStart();
    void returnByTime();
    void projectionOfTheProcessStays();
    void anyRoute_data();
    void anyRoute();
    void largeRoute();
};

void tst_ZrRouteSplit::withinALeg()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {200, 100}});
    const auto result = ZrRouteSplit::Split(route, Limit(140.0));
    QVERIFY2(result.IsOk(), qPrintable(result.error));
    QCOMPARE(result.routes.size(), std::size_t{3});
    const auto lengths = Lengths(result);
    QVERIFY(Near(lengths[0], 140.0, 1e-3) && Near(lengths[1], 140.0, 1e-3) && Near(lengths[2], 20.0, 1e-3));
    const auto first = Wpts(*result.routes[0]);
    QCOMPARE(first.size(), std::size_t{3});
    QVERIFY(IsAt(*first[0], 0, 0) && IsAt(*first[1], 0, 100) && IsAt(*first[2], 40, 100));
    const auto second = Wpts(*result.routes[1]);
    QCOMPARE(second.size(), std::size_t{2});
    QVERIFY(IsAt(*second[0], 40, 100) && IsAt(*second[1], 180, 100));
    QVERIFY(IsAt(*result.routes[2]->GetTail(), 200, 100));
    // The point between is the same one in both.
    QCOMPARE(second[0]->uuid, first[2]->uuid);
    QCOMPARE(first[0]->pseudo, QStringLiteral("Start Mission"));
    QCOMPARE(first[1]->pseudo, QStringLiteral("Wpt: 1"));
    QCOMPARE(second[1]->pseudo, QStringLiteral("Finish Mission"));
}

void tst_ZrRouteSplit::atWaypoints()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 150}, {0, 270}, {0, 280}});
    const auto result = ZrRouteSplit::Split(route, Limit(155.0, false));
    QVERIFY2(result.IsOk(), qPrintable(result.error));
    QCOMPARE(result.routes.size(), std::size_t{2});
    QVERIFY(Near(Lengths(result)[0], 150.0, 1e-3));
    QVERIFY(Near(Lengths(result)[1], 130.0, 1e-3));
    QCOMPARE(result.routes[0]->GetTail()->uuid, WptAt(route, 2)->uuid);
    QCOMPARE(result.routes[1]->GetHead()->uuid, WptAt(route, 2)->uuid);
    // With the whole leg between two of them needed there is no way on.
    const auto tooLong = ZrRouteSplit::Split(route, Limit(110.0, false));
    QVERIFY(tooLong.routes.empty());
    QCOMPARE(tooLong.error,
        QStringLiteral(
            "The endurance does not suffice for the leg from Wpt: 2 to Wpt: 3, 150.0 m after the start."));
}

void tst_ZrRouteSplit::enoughForAll()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {200, 100}}, 10.0);
    const double length = ZrRoutePath(route).Length();
    for (const double limit : {length, 1e9}) {
        const auto result = ZrRouteSplit::Split(route, Limit(limit));
        QVERIFY2(result.IsOk(), qPrintable(result.error));
        QCOMPARE(result.routes.size(), std::size_t{1});
        QCOMPARE(result.routes[0]->GetCount(), 3);
        QVERIFY(Near(Lengths(result)[0], length, 1e-6));
        QCOMPARE(WptAt(*result.routes[0], 1)->r, 10.0);
    }
}

void tst_ZrRouteSplit::byTime()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}, {0, 300}});
    WptAt(route, 1)->spdType = 1; // 400 s
    WptAt(route, 2)->spdType = 3; // 100 s
    ZrRouteSplit::Options options;
    options.maxSeconds = 400.0;
    const auto result = ZrRouteSplit::Split(route, options);
    QVERIFY2(result.IsOk(), qPrintable(result.error));
    // 200 s and half of the slow leg; the other half and all of the fast one.
    QCOMPARE(result.routes.size(), std::size_t{2});
    QVERIFY(IsAt(*result.routes[0]->GetTail(), 0, 150));
    QVERIFY(Near(ZrRoutePath(*result.routes[0]).Duration(), 400.0, 1e-2));
    QVERIFY(Near(ZrRoutePath(*result.routes[1]).Duration(), 300.0, 1e-2));
}

void tst_ZrRouteSplit::bothLimits()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 300}, {0, 600}});
    WptAt(route, 1)->spdType = 3;
    ZrRouteSplit::Options options = Limit(200.0);
    options.maxSeconds = 300.0; // 150 m at 0.5 m/s, 300 m at 1 m/s
    const auto lengths = Lengths(ZrRouteSplit::Split(route, options));
    QCOMPARE(lengths.size(), std::size_t{4});
    QVERIFY(Near(lengths[0], 150.0, 1e-3) && Near(lengths[1], 150.0, 1e-3));
    QVERIFY(Near(lengths[2], 200.0, 1e-3) && Near(lengths[3], 100.0, 1e-3));
}

void tst_ZrRouteSplit::reserve()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 300}});
    ZrRouteSplit::Options options = Limit(200.0);
    options.reserve = 0.25;
    const auto lengths = Lengths(ZrRouteSplit::Split(route, options));
    QCOMPARE(lengths.size(), std::size_t{2});
    QVERIFY(Near(lengths[0], 150.0, 1e-3) && Near(lengths[1], 150.0, 1e-3));
}

void tst_ZrRouteSplit::turnsAreNotCut()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}}, 20.0);
    const double whole = ZrRoutePath(route).Length();
    // 85 m would end 5 m into the arc of 31.4 m.
    for (const double limit : {85.0, 100.0, 111.0}) {
        const auto result = ZrRouteSplit::Split(route, Limit(limit));
        QVERIFY2(result.IsOk(), qPrintable(result.error));
        QCOMPARE(
            result.routes.size(), limit < 111.4 && whole - 80.0 > limit ? std::size_t{3} : std::size_t{2});
        QVERIFY(IsAt(*result.routes[0]->GetTail(), 0, 80));
        QVERIFY(Near(Sum(Lengths(result)), whole, 1e-5));
        QCOMPARE(WptAt(*result.routes[1], 1)->uuid, WptAt(route, 1)->uuid);
        QCOMPARE(WptAt(*result.routes[1], 1)->r, 20.0);
        QVERIFY(ZrRouteCheck::Run(*result.routes[1]).empty());
    }
    // At its end: 111.5 m.
    const auto result = ZrRouteSplit::Split(route, Limit(111.5));
    QVERIFY(IsAt(*result.routes[0]->GetTail(), 20, 100));
    QVERIFY(Near(Sum(Lengths(result)), whole, 1e-5));
    // At waypoints the arc is left out, and both sides of it are run to the corner.
    const auto corner = ZrRouteSplit::Split(route, Limit(105.0, false));
    QVERIFY2(corner.IsOk(), qPrintable(corner.error));
    QVERIFY(Near(Lengths(corner)[0], 100.0, 1e-3) && Near(Lengths(corner)[1], 100.0, 1e-3));
    QVERIFY(!ZrRouteSplit::Split(route, Limit(99.0, false)).IsOk());
    QCOMPARE(corner.routes[0]->GetTail()->r, 0.0);
    QCOMPARE(corner.routes[1]->GetHead()->r, 0.0);
}

void tst_ZrRouteSplit::noSlivers()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}});
    for (const double limit : {99.7, 100.0, 100.4}) {
        const auto result = ZrRouteSplit::Split(route, Limit(limit));
        QVERIFY2(result.IsOk(), qPrintable(result.error));
        for (const auto& part : result.routes)
            QVERIFY(ZrRoutePath(*part).Length() >= 0.999 && ZrRouteCheck::Run(*part).empty());
        QVERIFY(IsAt(*result.routes[0]->GetTail(), 0, limit < 100.0 ? 99 : 100));
        QCOMPARE(result.routes[0]->GetTail()->uuid == WptAt(route, 1)->uuid, limit >= 100.0);
    }
}

void tst_ZrRouteSplit::closedRoute()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 300}, {400, 300}});
    route.closed = true;
    route.GetTail()->r = 50.0; // the last waypoint never turns
    const auto result = ZrRouteSplit::Split(route, Limit(800.0));
    QVERIFY2(result.IsOk(), qPrintable(result.error));
    QCOMPARE(result.routes.size(), std::size_t{2});
    QVERIFY(!result.routes[0]->closed && !result.routes[1]->closed);
    QVERIFY(Near(Sum(Lengths(result)), 1200.0, 1e-3));
    QCOMPARE(result.routes[1]->GetTail()->uuid, route.GetHead()->uuid);
    QVERIFY(IsAt(*result.routes[1]->GetTail(), 0, 0));
}

void tst_ZrRouteSplit::returnToStart()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}});
    ZrRouteSplit::Options options = Limit(300.0);
    options.returnToStart = true;
    const auto result = ZrRouteSplit::Split(route, options);
    QVERIFY(result.routes.empty());
    QCOMPARE(result.error,
        QStringLiteral(
            "The endurance does not suffice for the leg from Wpt: 1 to Finish Mission, 150.0 m after the "
            "start, with the way there and back."));
    options.maxMetres = 380.0;
    const auto enough = ZrRouteSplit::Split(route, options);
    // Out 190 and back; then out 190, 10 m of the run, and 200 m back are too much for 380.
    QVERIFY(!enough.IsOk());
    options.maxMetres = 400.0;
    const auto one = ZrRouteSplit::Split(route, options);
    QVERIFY2(one.IsOk(), qPrintable(one.error));
    QCOMPARE(one.routes.size(), std::size_t{1});
    QVERIFY(Near(Lengths(one)[0], 400.0, 1e-3));

    // Away and back again: 3, 4, 5.
    ZrWpts loop;
    Lay(loop, {{0, 0}, {0, 300}, {400, 300}, {0, 0}});
    options.maxMetres = 1100.0;
    const auto parts = ZrRouteSplit::Split(loop, options);
    QVERIFY2(parts.IsOk(), qPrintable(parts.error));
    QCOMPARE(parts.routes.size(), std::size_t{2});
    const auto first = Wpts(*parts.routes[0]);
    QCOMPARE(first.size(), std::size_t{4});
    // x m east of the second waypoint: 300 + x + √(300² + x²) = 1100 for x = 343.75.
    QVERIFY(IsAt(*first[2], 343.75, 300));
    QVERIFY(Near(Lengths(parts)[0], 1100.0, 1e-3));
    QVERIFY(Near(Lengths(parts)[1], 456.25 + 56.25 + 500.0, 1e-3));
    const auto second = Wpts(*parts.routes[1]);
    QCOMPARE(second.size(), std::size_t{4}); // start, cut, corner, end at the start
    QVERIFY(IsAt(*second[0], 0, 0) && IsAt(*second[3], 0, 0));
    QCOMPARE(second[1]->uuid, first[2]->uuid);
    QCOMPARE(second[3]->uuid, loop.GetTail()->uuid);
    // The way there and back begins and ends at copies of the start.
    std::set<QUuid> starts{loop.GetHead()->uuid, loop.GetTail()->uuid, first[3]->uuid, second[0]->uuid};
    QCOMPARE(starts.size(), std::size_t{4});
    QCOMPARE(first[0]->uuid, loop.GetHead()->uuid);
}

void tst_ZrRouteSplit::returnByTime()
{
    // Out fast, then slowly; the way back is at the speed that holds where it begins.
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 1000}, {200, 1000}});
    WptAt(route, 0)->spdType = 3;
    WptAt(route, 1)->spdType = 1;
    WptAt(route, 2)->spdType = 3;
    ZrRouteSplit::Options options;
    options.returnToStart = true;
    const double out = 1000.0 + 200.0 / 0.25;
    const double back = std::hypot(200.0, 1000.0);
    options.maxSeconds = out + back + 1.0;
    auto result = ZrRouteSplit::Split(route, options);
    QVERIFY2(result.IsOk(), qPrintable(result.error));
    QCOMPARE(result.routes.size(), std::size_t{1});
    QVERIFY(Near(ZrRoutePath(*result.routes[0]).Duration(), out + back, 0.1));
    // Broken off on the slow leg it would come back slowly, so it turns round before.
    options.maxSeconds = out + back - 1.0;
    result = ZrRouteSplit::Split(route, options);
    QVERIFY(!result.IsOk());
}

void tst_ZrRouteSplit::projectionOfTheProcessStays()
{
    ZrUnits::CalcUTM(10.0, 100.0);
    const double before = ZrUnits::utm.lngOrigin;
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}}, 10.0);
    ZrRouteSplit::Split(route, Limit(50.0));
    ZrRouteSplit::Resume(route, 1);
    QCOMPARE(ZrUnits::utm.lngOrigin, before);
}

void tst_ZrRouteSplit::anyRoute_data()
{
    QTest::addColumn<bool>("cutLegs");
    QTest::addColumn<bool>("returnToStart");
    QTest::addColumn<bool>("byTime");
    for (const bool cutLegs : {false, true})
        for (const bool returns : {false, true})
            for (const bool byTime : {false, true})
                QTest::newRow(qPrintable(QStringLiteral("%1%2%3").arg(cutLegs).arg(returns).arg(byTime)))
                    << cutLegs << returns << byTime;
}

void tst_ZrRouteSplit::anyRoute()
{
    QFETCH(bool, cutLegs);
    QFETCH(bool, returnToStart);
    QFETCH(bool, byTime);
    std::mt19937 random(5);
    const auto unit = [&] { return static_cast<double>(random()) / 4294967295.0; };
    int done = 0;
    int fitting = 0;
    for (int round = 0; round < 60; ++round) {
        ZrWpts route;
        std::vector<std::pair<double, double>> metres;
        for (int i = 0; i < 40; ++i)
            metres.emplace_back(unit() * 500.0, unit() * 500.0);
        Lay(route, metres, round % 2 == 0 ? 2.0 : 8.0);
        route.closed = round % 3 == 0;
        for (ZrWpt* wpt : Wpts(route)) {
            wpt->spdType = static_cast<int>(unit() * 5.0);
            wpt->speed = 0.3 + unit();
        }
        ZrRouteSplit::Options options;
        options.cutLegs = cutLegs;
        options.returnToStart = returnToStart;
        options.reserve = 0.1;
        (byTime ? options.maxSeconds : options.maxMetres) = (byTime ? 12000.0 : 2500.0) * (0.8 + unit());
        const auto result = ZrRouteSplit::Split(route, options);
        if (!result.IsOk())
            continue;
        ++done;
        double length = 0.0;
        std::vector<QUuid> order;
        const std::vector<ZrWpt*> original = Wpts(route);
        std::set<QUuid> known;
        for (const ZrWpt* wpt : original)
            known.insert(wpt->uuid);
        for (const auto& part : result.routes) {
            const ZrRoutePath path(*part);
            length += path.Length();
            const double used = byTime ? path.Duration() : path.Length();
            const double limit = 0.9 * (byTime ? options.maxSeconds : options.maxMetres);
            QVERIFY2(
                used <= limit * (1.0 + 1e-7), qPrintable(QStringLiteral("%1 of %2").arg(used).arg(limit)));
            for (const ZrWpt* wpt : Wpts(*part)) {
                if (known.count(wpt->uuid) && (order.empty() || order.back() != wpt->uuid))
                    order.push_back(wpt->uuid);
            }
            if (returnToStart) {
                QCOMPARE(part->GetHead()->lat, original.front()->lat);
                QCOMPARE(part->GetTail()->lat, original.front()->lat);
            }
            // Used up: the next one would not have fitted.
            if (!returnToStart && cutLegs && part != result.routes.back())
                QVERIFY(used > 0.9 * limit);
        }
        // Every waypoint in its order.
        std::vector<QUuid> expected;
        for (const ZrWpt* wpt : original)
            expected.push_back(wpt->uuid);
        if (route.closed)
            expected.push_back(original.front()->uuid);
        QCOMPARE(order, expected);
        // The same path again, but where a turn fits that the leg which was cut had no room for.
        const ZrRoutePath whole(route);
        const bool allFit = std::all_of(whole.Turns().begin(), whole.Turns().end(),
            [](const ZrRouteTurn& turn) { return turn.state <= ZrRouteTurn::eTurns; });
        if (cutLegs && !returnToStart) {
            QVERIFY(allFit ? Near(length, whole.Length(), 1e-3) : length < whole.Length() + 1e-3);
            fitting += allFit ? 1 : 0;
        }
    }
    QVERIFY2(done >= 30, qPrintable(QString::number(done)));
    QVERIFY2(fitting >= 5 || !cutLegs || returnToStart, qPrintable(QString::number(fitting)));
}

void tst_ZrRouteSplit::largeRoute()
{
    ZrWpts route;
    std::vector<std::pair<double, double>> metres;
    for (int i = 0; i < 10000; ++i)
        metres.emplace_back((i / 2) * 20.0, (i + i / 2) % 2 == 0 ? 0.0 : 100.0);
    Lay(route, metres, 10.0);
    QElapsedTimer timer;
    timer.start();
    const auto result = ZrRouteSplit::Split(route, Limit(5000.0));
    const auto elapsed = timer.elapsed();
    QVERIFY2(result.IsOk(), qPrintable(result.error));
    QVERIFY2(elapsed < 5000, qPrintable(QString::number(elapsed)));
    const double length = ZrRoutePath(route).Length();
    QVERIFY(Near(Sum(Lengths(result)), length, 1e-6 * length));
    // All full but the last one, up to an arc of 15.7 m that is not cut.
    QVERIFY(Near(static_cast<double>(result.routes.size()), length / 5000.0, 2.0));
    qInfo("%lld ms, %zu routes", elapsed, result.routes.size());
}

QTEST_GUILESS_MAIN(tst_ZrRouteSplit)
#include "tst_ZrRouteSplit.moc"
