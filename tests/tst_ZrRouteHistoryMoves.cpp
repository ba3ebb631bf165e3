// Drags as one step of undo, and the state that was saved.

#include "RouteSnapshot.h"
#include "ZrKit/planning/ZrRouteHistory.h"

#include <QtTest/QtTest>

#include <cmath>

class tst_ZrRouteHistoryMoves : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dragIsOneStep();
    void dragEnds_data();
    void dragEnds();
    void dragBackToWhereItWas();
    void dragOfTwins();
    void clean();
    void cleanThatIsLost();
    void cleanAndDrag();
};

void tst_ZrRouteHistoryMoves::dragIsOneStep()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    const Snapshot before(route);
    for (int i = 1; i <= 50; ++i)
        QVERIFY(history.Move(WptAt(route, 2), 50.1 + i * 1e-5, -4.2));
    history.CloseMove();
    QCOMPARE(history.Steps(), 1);
    QVERIFY(GoesRound(history, route, {before, Snapshot(route)}));
    // The next drag is another step.
    const Snapshot middle(route);
    history.Move(WptAt(route, 2), 50.2, -4.2);
    history.Move(WptAt(route, 2), 50.3, -4.2);
    QCOMPARE(history.Steps(), 2);
    QVERIFY(GoesRound(history, route, {before, middle, Snapshot(route)}));
}

void tst_ZrRouteHistoryMoves::dragEnds_data()
{
    QTest::addColumn<QString>("by");
    QTest::addColumn<int>("steps");
    QTest::newRow("nothing") << QString() << 1;
    QTest::newRow("close") << QStringLiteral("close") << 2;
    QTest::newRow("other waypoint") << QStringLiteral("other") << 3;
    QTest::newRow("change") << QStringLiteral("change") << 3;
    QTest::newRow("undo and redo") << QStringLiteral("redo") << 2;
    QTest::newRow("clean") << QStringLiteral("clean") << 2;
    QTest::newRow("edit outside") << QStringLiteral("outside") << 3;
    QTest::newRow("refused edit") << QStringLiteral("refused") << 1;
}

void tst_ZrRouteHistoryMoves::dragEnds()
{
    QFETCH(QString, by);
    QFETCH(int, steps);
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    QVERIFY(history.Move(WptAt(route, 2), 50.2, -4.2));
    if (by == QStringLiteral("close"))
        history.CloseMove();
    else if (by == QStringLiteral("other"))
        QVERIFY(history.Move(WptAt(route, 3), 50.2, -4.3));
    else if (by == QStringLiteral("change"))
        QVERIFY(history.Change(WptAt(route, 2), QStringLiteral("depth"), [](ZrWpt& wpt) { wpt.z = 1.0; }));
    else if (by == QStringLiteral("redo"))
        QVERIFY(history.Undo() && history.Redo());
    else if (by == QStringLiteral("clean"))
        history.SetClean();
    else if (by == QStringLiteral("outside"))
        WptAt(route, 1)->z = 7.0;
    else if (by == QStringLiteral("refused"))
        QVERIFY(!history.Delete(nullptr));
    QVERIFY(history.Move(WptAt(route, 2), 50.3, -4.2));
    QCOMPARE(history.Steps(), steps);
    while (history.Undo()) { }
    QVERIFY(std::fabs(WptAt(route, 2)->lat - Offset(100, 100).lat) < 1e-12);
}

void tst_ZrRouteHistoryMoves::dragBackToWhereItWas()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    const Snapshot before(route);
    ZrWpt* wpt = WptAt(route, 2);
    const double lat = wpt->lat;
    const double lng = wpt->lng;
    QVERIFY(history.Move(wpt, lat + 0.1, lng));
    QVERIFY(!history.IsClean());
    QVERIFY(history.Move(wpt, lat, lng));
    QCOMPARE(history.Steps(), 0);
    QVERIFY(history.IsClean() && Snapshot(route) == before);
    // And on again.
    QVERIFY(history.Move(wpt, lat + 0.2, lng));
    QCOMPARE(history.Steps(), 1);
    QVERIFY(GoesRound(history, route, {before, Snapshot(route)}));
}

void tst_ZrRouteHistoryMoves::dragOfTwins()
{
    ZrWpts route;
    LayRoute(route);
    WptAt(route, 2)->uuid = WptAt(route, 1)->uuid;
    ZrRouteHistory history(route);
    QVERIFY(history.Move(WptAt(route, 1), 50.2, -4.2));
    QVERIFY(history.Move(WptAt(route, 2), 50.3, -4.2));
    QCOMPARE(history.Steps(), 2);
}

void tst_ZrRouteHistoryMoves::clean()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    history.Reverse();
    QVERIFY(!history.IsClean());
    history.SetClean();
    QVERIFY(history.IsClean());
    QVERIFY(history.Undo());
    QVERIFY(!history.IsClean());
    QVERIFY(history.Redo());
    QVERIFY(history.IsClean());
    WptAt(route, 0)->z = 1.0;
    QVERIFY(!history.IsClean());
    history.SetClean(); // saved with what was done outside
    QVERIFY(history.IsClean());
    QCOMPARE(history.Steps(), 2);
}

void tst_ZrRouteHistoryMoves::cleanThatIsLost()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route, {3, 1 << 30});
    history.Reverse();
    history.SetClean();
    QVERIFY(history.Undo());
    QVERIFY(history.Delete(WptAt(route, 0))); // the saved state can no longer be reached
    QVERIFY(!history.IsClean());
    while (history.Undo()) { }
    QVERIFY(!history.IsClean());
    while (history.Redo()) { }
    QVERIFY(!history.IsClean());

    history.SetClean();
    for (int i = 1; i < 4; ++i)
        QVERIFY(history.Change(WptAt(route, 0), QStringLiteral("depth"), [i](ZrWpt& wpt) { wpt.z = i; }));
    while (history.Undo()) { }
    QVERIFY(history.IsClean()); // the oldest step that is kept
    while (history.Redo()) { }
    QVERIFY(history.Change(WptAt(route, 0), QStringLiteral("depth"), [](ZrWpt& wpt) { wpt.z = 9.0; }));
    while (history.Undo()) {
        QVERIFY(!history.IsClean());
    }
    QVERIFY(!history.IsClean());
}

void tst_ZrRouteHistoryMoves::cleanAndDrag()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    ZrWpt* wpt = WptAt(route, 1);
    QVERIFY(history.Move(wpt, 50.2, -4.2));
    history.SetClean();
    QVERIFY(history.Move(wpt, 50.3, -4.2));
    QVERIFY(!history.IsClean());
    QVERIFY(history.Undo());
    QVERIFY(history.IsClean());
    QCOMPARE(wpt->lat, 50.2);
}

QTEST_GUILESS_MAIN(tst_ZrRouteHistoryMoves)
#include "tst_ZrRouteHistoryMoves.moc"
