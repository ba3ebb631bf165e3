// What waypoints and speeds become when a route is split, and what cannot be split.

#include "PathChecks.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/planning/ZrRouteSplit.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

const double NaN = std::numeric_limits<double>::quiet_NaN();
const double Infinity = std::numeric_limits<double>::infinity();

ZrRouteSplit::Options Limit(double metres, bool cutLegs = true)
{
    ZrRouteSplit::Options options;
    options.maxMetres = metres;
    options.cutLegs = cutLegs;
    return options;
}

} // namespace

class tst_ZrRouteParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void propertiesAreKept();
    void newPoints();
    void speedGoesOn();
    void refusals_data();
    void refusals();
    void tooShortEndurance();
    void tooManyRoutes();
};

void tst_ZrRouteParts::propertiesAreKept()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}, {100, 200}}, 5.0);
    route.prefix = QStringLiteral("P");
    route.speed = 0.7;
    route.closed = false;
    ZrWpt& wpt = *WptAt(route, 1);
    wpt.name = QStringLiteral("Named");
    wpt.gridId = QUuid::createUuid();
    wpt.lookAt = QUuid::createUuid();
    wpt.z = -12.5;
    wpt.atWpt = true;
    wpt.time = 123.0;
    wpt.flags = 77;
    wpt.colour = QColor(1, 2, 3);
    wpt.head = 45.0;
    wpt.burial = 0.5F;
    const auto result = ZrRouteSplit::Split(route, Limit(100.0, false));
    QVERIFY2(result.IsOk(), qPrintable(result.error));
    QCOMPARE(result.routes.size(), std::size_t{3});
    for (const auto& part : result.routes) {
        QCOMPARE(part->prefix, QStringLiteral("P"));
        QCOMPARE(part->speed, 0.7);
        QVERIFY(part->linked && !part->closed);
    }
    for (const ZrWpt* copy : {result.routes[0]->GetTail(), result.routes[1]->GetHead()}) {
        QCOMPARE(copy->uuid, wpt.uuid);
        QCOMPARE(copy->Name(), QStringLiteral("Named"));
        QCOMPARE(copy->gridId, wpt.gridId);
        QCOMPARE(copy->lookAt, wpt.lookAt);
        QCOMPARE(copy->z, -12.5);
        QVERIFY(copy->atWpt);
        QCOMPARE(copy->time, 123.0);
        QCOMPARE(copy->flags, 77U);
        QCOMPARE(copy->colour, QColor(1, 2, 3));
        QCOMPARE(copy->head, 45.0);
        QCOMPARE(copy->burial, 0.5F);
        QCOMPARE(copy->lat, wpt.lat);
        QCOMPARE(copy->lng, wpt.lng);
    }
    // The route itself stays.
    QCOMPARE(route.GetCount(), 4);
    QCOMPARE(wpt.r, 5.0);
}

void tst_ZrRouteParts::newPoints()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}}, 5.0);
    ZrWpt& wpt = *WptAt(route, 1);
    wpt.name = QStringLiteral("Named");
    wpt.gridId = QUuid::createUuid();
    wpt.z = -12.5;
    wpt.atWpt = true;
    wpt.time = 123.0;
    wpt.spdType = 3;
    wpt.colour = QColor(1, 2, 3);
    const auto result = ZrRouteSplit::Split(route, Limit(150.0));
    QCOMPARE(result.routes.size(), std::size_t{2});
    const ZrWpt& cut = *result.routes[0]->GetTail();
    QVERIFY(cut.uuid != wpt.uuid && !cut.uuid.isNull());
    QVERIFY(cut.name.isEmpty());
    QCOMPARE(cut.pseudo, QStringLiteral("Finish Mission"));
    QCOMPARE(cut.gridId, wpt.gridId);
    QCOMPARE(cut.z, -12.5);
    QCOMPARE(cut.colour, QColor(1, 2, 3));
    QVERIFY(!cut.atWpt);
    QCOMPARE(cut.time, -1.0);
    QCOMPARE(cut.r, 0.0);
    QCOMPARE(cut.spdType, 0);
    // Another split makes another one.
    QVERIFY(ZrRouteSplit::Split(route, Limit(150.0)).routes[0]->GetTail()->uuid != cut.uuid);
}

void tst_ZrRouteParts::speedGoesOn()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}, {0, 300}, {0, 400}});
    route.speed = 0.6;
    WptAt(route, 1)->spdType = 3;
    WptAt(route, 3)->spdType = 7;
    WptAt(route, 3)->speed = 1.7;
    const double duration = ZrRoutePath(route).Duration();
    for (const bool cutLegs : {false, true}) {
        const auto result = ZrRouteSplit::Split(route, Limit(cutLegs ? 90.0 : 100.0, cutLegs));
        QVERIFY2(result.IsOk(), qPrintable(result.error));
        double sum = 0.0;
        for (const auto& part : result.routes)
            sum += ZrRoutePath(*part).Duration();
        QVERIFY2(Near(sum, duration, 1e-3), qPrintable(QString::number(sum - duration)));
        // What the waypoints say is not changed.
        QCOMPARE(result.routes[2]->GetHead()->spdType, 0);
        QCOMPARE(result.routes[2]->speedType, 3);
        QCOMPARE(result.routes[2]->speed, 1.0);
    }
    const auto last = ZrRouteSplit::Resume(route, 3, Offset(0, 350));
    QCOMPARE(last.routes[0]->speedType, 0);
    QCOMPARE(last.routes[0]->speed, 1.7);
    QVERIFY(Near(ZrRoutePath(*last.routes[0]).Duration(), 50.0 / 1.7, 1e-3));
}

void tst_ZrRouteParts::refusals_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<double>("metres");
    QTest::addColumn<double>("reserve");
    QTest::addColumn<QString>("error");
    const QString endurance = QStringLiteral("An endurance of %1 s and %2 m is not possible.");
    QTest::newRow("none") << Infinity << Infinity << 0.0
                          << QStringLiteral(
                                 "There is no endurance to split by: neither seconds nor metres are given.");
    QTest::newRow("zero") << 0.0 << Infinity << 0.0 << endurance.arg(0).arg(Infinity);
    QTest::newRow("negative") << Infinity << -5.0 << 0.0 << endurance.arg(Infinity).arg(-5);
    QTest::newRow("NaN") << NaN << 100.0 << 0.0 << endurance.arg(NaN).arg(100);
    const QString reserve
        = QStringLiteral("A reserve of %1 is not possible: it is a share from 0 to below 1.");
    QTest::newRow("all in reserve") << 100.0 << 100.0 << 1.0 << reserve.arg(1);
    QTest::newRow("negative reserve") << 100.0 << 100.0 << -0.1 << reserve.arg(-0.1);
    QTest::newRow("NaN reserve") << 100.0 << 100.0 << NaN << reserve.arg(NaN);
}

void tst_ZrRouteParts::refusals()
{
    QFETCH(double, seconds);
    QFETCH(double, metres);
    QFETCH(double, reserve);
    QFETCH(QString, error);
    ZrRouteSplit::Options options;
    options.maxSeconds = seconds;
    options.maxMetres = metres;
    options.reserve = reserve;
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}});
    const auto result = ZrRouteSplit::Split(route, options);
    QVERIFY(!result.IsOk() && result.routes.empty());
    QCOMPARE(result.error, error);
    // Nothing to split, whatever the options.
    ZrWpts none;
    for (int count = 0; count < 2; ++count) {
        QCOMPARE(ZrRouteSplit::Split(none, options).error,
            QStringLiteral("There is nothing to split: the route has no leg."));
        AppendWpt(none, testPlace);
    }
}

void tst_ZrRouteParts::tooShortEndurance()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}}, 10.0);
    ZrWpts bad(route);
    WptAt(bad, 1)->lat = NaN;
    QCOMPARE(ZrRouteSplit::Split(bad, Limit(50.0)).error,
        QStringLiteral("The length of the leg from Start Mission to Wpt: 1 is not known."));
    bad = route;
    WptAt(bad, 1)->spdType = 5;
    WptAt(bad, 1)->speed = 1.0;
    bad.speed = 0.0;
    ZrRouteSplit::Options seconds;
    seconds.maxSeconds = 50.0;
    QCOMPARE(ZrRouteSplit::Split(bad, seconds).error,
        QStringLiteral("The speed of the leg from Start Mission to Wpt: 1 is not known."));
    // By metres alone no speed is needed.
    QCOMPARE(ZrRouteSplit::Split(bad, Limit(50.0)).routes.size(), std::size_t{4});
    bad.RemoveAll();
    AppendWpt(bad, {0, 0});
    AppendWpt(bad, {0, 120});
    QCOMPARE(ZrRouteSplit::Split(bad, Limit(50.0)).error,
        QStringLiteral("The route is too wide for its lengths to be known."));
    // An arc that is longer than the endurance.
    ZrWpts round;
    Lay(round, {{0, 0}, {0, 500}, {500, 500}}, 400.0);
    const auto result = ZrRouteSplit::Split(round, Limit(200.0));
    QVERIFY(result.routes.empty());
    QCOMPARE(result.error,
        QStringLiteral(
            "The endurance does not suffice for the leg from Start Mission to Wpt: 1, 100.0 m after the "
            "start."));
}

void tst_ZrRouteParts::tooManyRoutes()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 10000}});
    QCOMPARE(ZrRouteSplit::Split(route, Limit(10.01)).routes.size(), std::size_t{1000});
    const auto result = ZrRouteSplit::Split(route, Limit(9.9));
    QVERIFY(result.routes.empty());
    QCOMPARE(result.error, QStringLiteral("The route is so long that it needs more than 1000 routes."));
    for (const double limit : {1e-9, 0.5, std::numeric_limits<double>::denorm_min()})
        QVERIFY(!ZrRouteSplit::Split(route, Limit(limit)).IsOk());
}

QTEST_GUILESS_MAIN(tst_ZrRouteParts)
#include "tst_ZrRouteParts.moc"
