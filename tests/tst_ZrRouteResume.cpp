// Routes that go on where another one was broken off.

#include "PathChecks.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/planning/ZrRouteSplit.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

const double NaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

class tst_ZrRouteResume : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resumeFromWaypoint();
    void resumeOnALeg();
    void resumeClosed();
    void resumeRefusals_data();
    void resumeRefusals();
};

void tst_ZrRouteResume::resumeFromWaypoint()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}, {100, 0}}, 10.0);
    route.prefix = QStringLiteral("P");
    WptAt(route, 0)->spdType = 1;
    const auto result = ZrRouteSplit::Resume(route, 1);
    QVERIFY2(result.IsOk(), qPrintable(result.error));
    QCOMPARE(result.routes.size(), std::size_t{1});
    const ZrWpts& rest = *result.routes[0];
    QCOMPARE(rest.GetCount(), 3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(WptAt(rest, i)->uuid, WptAt(route, i + 1)->uuid);
    QCOMPARE(rest.GetHead()->r, 0.0);
    QCOMPARE(WptAt(rest, 1)->r, 10.0);
    QCOMPARE(rest.GetHead()->pseudo, QStringLiteral("Start Mission"));
    QCOMPARE(rest.prefix, QStringLiteral("P"));
    // Slowly still.
    QVERIFY(Near(ZrRoutePath(rest).Legs()[0].speed, 0.25, 1e-9));
    // From the beginning it is the whole.
    QCOMPARE(ZrRouteSplit::Resume(route, 0).routes[0]->GetCount(), 4);
    QVERIFY(Near(ZrRoutePath(*ZrRouteSplit::Resume(route, 0).routes[0]).Duration(),
        ZrRoutePath(route).Duration(), 1e-6));
}

void tst_ZrRouteResume::resumeOnALeg()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}, {100, 0}}, 10.0);
    WptAt(route, 1)->z = -7.0;
    WptAt(route, 1)->spdType = 3;
    const auto result = ZrRouteSplit::Resume(route, 1, Offset(40, 103));
    QVERIFY2(result.IsOk(), qPrintable(result.error));
    const auto wpts = Wpts(*result.routes[0]);
    QCOMPARE(wpts.size(), std::size_t{3});
    QVERIFY(IsAt(*wpts[0], 40, 103));
    QVERIFY(wpts[0]->uuid != WptAt(route, 1)->uuid);
    QCOMPARE(wpts[0]->z, -7.0);
    QCOMPARE(wpts[1]->uuid, WptAt(route, 2)->uuid);
    QCOMPARE(wpts[1]->r, 10.0);
    QCOMPARE(wpts[2]->uuid, WptAt(route, 3)->uuid);
    QCOMPARE(ZrRoutePath(*result.routes[0]).Legs()[0].speed, 1.0);
    // On the last leg two points remain.
    QCOMPARE(ZrRouteSplit::Resume(route, 2, Offset(100, 20)).routes[0]->GetCount(), 2);
}

void tst_ZrRouteResume::resumeClosed()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 300}, {400, 300}});
    route.closed = true;
    const auto result = ZrRouteSplit::Resume(route, 2, Offset(200, 150));
    QVERIFY2(result.IsOk(), qPrintable(result.error));
    const ZrWpts& rest = *result.routes[0];
    QVERIFY(!rest.closed);
    QCOMPARE(rest.GetCount(), 2);
    QCOMPARE(rest.GetTail()->uuid, route.GetHead()->uuid);
    QVERIFY(Near(ZrRoutePath(rest).Length(), 250.0, 1e-3));
    QVERIFY(Near(ZrRoutePath(*ZrRouteSplit::Resume(route, 0).routes[0]).Length(), 1200.0, 1e-3));
}

void tst_ZrRouteResume::resumeRefusals_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("error");
    const QString none = QStringLiteral("There is no waypoint %1 on a route of %2.");
    QTest::newRow("empty") << 0 << 0 << none.arg(0).arg(0);
    QTest::newRow("negative") << 3 << -1 << none.arg(-1).arg(3);
    QTest::newRow("beyond") << 3 << 3 << none.arg(3).arg(3);
    QTest::newRow("huge") << 3 << std::numeric_limits<int>::max()
                          << none.arg(std::numeric_limits<int>::max()).arg(3);
    QTest::newRow("last") << 3 << 2
                          << QStringLiteral(
                                 "There is nothing left to run: Finish Mission is the last waypoint.");
    QTest::newRow("only one") << 1 << 0
                              << QStringLiteral(
                                     "There is nothing left to run: Start Mission is the last waypoint.");
}

void tst_ZrRouteResume::resumeRefusals()
{
    QFETCH(int, count);
    QFETCH(int, index);
    QFETCH(QString, error);
    ZrWpts route;
    std::vector<std::pair<double, double>> metres;
    for (int i = 0; i < count; ++i)
        metres.emplace_back(0.0, i * 100.0);
    Lay(route, metres);
    QCOMPARE(ZrRouteSplit::Resume(route, index).error, error);
    QCOMPARE(ZrRouteSplit::Resume(route, index, testPlace).error, error);
    QVERIFY(ZrRouteSplit::Resume(route, index).routes.empty());
    if (count > 2)
        QVERIFY(ZrRouteSplit::Resume(route, 0, {NaN, 0.0})
                    .error.startsWith(
                        QStringLiteral("The place of the interruption, latitude nan and longitude 0")));
}

QTEST_GUILESS_MAIN(tst_ZrRouteResume)
#include "tst_ZrRouteResume.moc"
