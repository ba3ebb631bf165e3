// Undo and redo, held against copies of the route made before and after every edit. Waypoints are compared by
// all that their settings form stores, doubles by their bits.

#include "RouteSnapshot.h"
#include "ZrKit/planning/ZrRouteHistory.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

const double NaN = std::numeric_limits<double>::quiet_NaN();

/// A route that counts how often its labels were made.
class CountingRoute : public ZrWpts
{
public:
    int labelled = 0;

    void UpdatePseudo() override
    {
        ++labelled;
        ZrWpts::UpdatePseudo();
    }
};

} // namespace

class tst_ZrRouteHistory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingAtFirst();
    void names();
    void everyEdit();
    void refusedEdits();
    void editsThatChangeNothing();
    void reorder_data();
    void reorder();
    void insertPattern();
    void editAfterUndo();
    void editsOutside();
    void record();
    void reset();
    void emptyRoute();
    void derivedRoute();
};

void tst_ZrRouteHistory::nothingAtFirst()
{
    ZrWpts route;
    LayRoute(route);
    const Snapshot before(route);
    ZrRouteHistory history(route);
    QVERIFY(!history.CanUndo() && !history.CanRedo() && history.IsClean());
    QVERIFY(history.UndoName().isEmpty() && history.RedoName().isEmpty());
    QVERIFY(!history.Undo() && !history.Redo());
    QCOMPARE(history.Steps(), 0);
    QCOMPARE(history.Bytes(), i64{0});
    QVERIFY(Snapshot(route) == before);
}

void tst_ZrRouteHistory::names()
{
    ZrWpts route;
    LayRoute(route);
    WptAt(route, 1)->name = QStringLiteral("Gate");
    ZrRouteHistory history(route);
    QVERIFY(history.Move(WptAt(route, 3), 50.2, -4.1));
    QCOMPARE(history.UndoName(), QStringLiteral("Move waypoint Wpt: 3"));
    QVERIFY(history.Undo());
    QCOMPARE(history.RedoName(), QStringLiteral("Move waypoint Wpt: 3"));
    QVERIFY(history.UndoName().isEmpty());
    QVERIFY(history.Redo());

    history.Add(50.3, -4.1, eZrWptRed, ZrWpts::eAddTail);
    QCOMPARE(history.UndoName(), QStringLiteral("Add waypoint Finish Mission"));
    history.Add(50.3, -4.1, eZrWptRed, ZrWpts::eAddHead);
    QCOMPARE(history.UndoName(), QStringLiteral("Add waypoint Start Mission"));
    QVERIFY(history.Delete(WptAt(route, 2)));
    QCOMPARE(history.UndoName(), QStringLiteral("Delete waypoint Gate"));
    QVERIFY(history.Reorder(WptAt(route, 2), 4));
    QCOMPARE(history.UndoName(), QStringLiteral("Reorder waypoint Wpt: 2"));
    history.Reverse();
    QCOMPARE(history.UndoName(), QStringLiteral("Reverse route"));
    QVERIFY(history.Change(WptAt(route, 2), QStringLiteral("depth"), [](ZrWpt& wpt) { wpt.z = -5.0; }));
    QCOMPARE(history.UndoName(), QStringLiteral("Change depth of Wpt: 2"));
    history.ChangeRoute(QStringLiteral("speed"), [](ZrWpts& all) { all.speed = 0.7; });
    QCOMPARE(history.UndoName(), QStringLiteral("Change speed of the route"));
    QVERIFY(history.InsertPattern({ZrWpt()}, 0));
    QCOMPARE(history.UndoName(), QStringLiteral("Insert pattern"));
    QVERIFY(history.InsertPattern({ZrWpt()}, 0, QStringLiteral("Lawn %1 \u6d77")));
    QCOMPARE(history.UndoName(), QStringLiteral("Insert pattern Lawn %1 \u6d77"));
    WptAt(route, 0)->name = QStringLiteral("%2 %1");
    QVERIFY(history.Change(WptAt(route, 0), QStringLiteral("%1"), [](ZrWpt& wpt) { wpt.z = 5.0; }));
    QCOMPARE(history.UndoName(), QStringLiteral("Change %1 of %2 %1"));
}

void tst_ZrRouteHistory::everyEdit()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    std::vector<Snapshot> snapshots{Snapshot(route)};
    const auto note = [&] { snapshots.emplace_back(route); };
    history.Add(50.101, -4.201, eZrWptRed, ZrWpts::eAddLeg);
    note();
    history.Move(WptAt(route, 2), 50.102, -4.2);
    note();
    history.Reorder(WptAt(route, 1), 3);
    note();
    history.Change(WptAt(route, 1), QStringLiteral("radius"), [](ZrWpt& wpt) { wpt.r = 3.0; });
    note();
    history.Delete(WptAt(route, 0));
    note();
    history.Reverse();
    note();
    history.ChangeRoute(QStringLiteral("course"), [](ZrWpts& all) { all.closed = true; });
    note();
    history.InsertPattern({*WptAt(route, 0), *WptAt(route, 1)}, 2);
    note();
    QCOMPARE(history.Steps(), 8);
    for (std::size_t i = 1; i < snapshots.size(); ++i)
        QVERIFY(!(snapshots[i] == snapshots[i - 1]));
    QVERIFY(GoesRound(history, route, snapshots));
    QVERIFY(GoesRound(history, route, snapshots));
}

void tst_ZrRouteHistory::refusedEdits()
{
    ZrWpts route;
    LayRoute(route);
    const Snapshot before(route);
    ZrRouteHistory history(route);
    ZrWpt stranger;
    for (ZrWpt* wpt : {&stranger, static_cast<ZrWpt*>(nullptr)}) {
        QVERIFY(!history.Delete(wpt));
        QVERIFY(!history.Move(wpt, 1.0, 2.0));
        QVERIFY(!history.Reorder(wpt, 0));
        QVERIFY(!history.Change(wpt, QString(), [](ZrWpt& w) { w.z = 1.0; }));
    }
    QVERIFY(!history.Reorder(WptAt(route, 0), -1));
    QVERIFY(!history.Reorder(WptAt(route, 0), 5));
    QVERIFY(!history.InsertPattern({}, 0));
    QVERIFY(!history.InsertPattern({ZrWpt()}, -1));
    QVERIFY(!history.InsertPattern({ZrWpt()}, 6));
    QVERIFY(!history.Record(QStringLiteral("Nothing")));
    // One that does not enter the list is the caller's.
    const std::unique_ptr<ZrWpt> outside(history.Add(50.0, -4.0, eZrWptBlue, 3));
    QVERIFY(outside);
    QCOMPARE(history.Steps(), 0);
    QVERIFY(Snapshot(route) == before);
}

void tst_ZrRouteHistory::editsThatChangeNothing()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    ZrWpt* wpt = WptAt(route, 1);
    QVERIFY(!history.Move(wpt, wpt->lat, wpt->lng));
    QVERIFY(!history.Reorder(wpt, 1));
    QVERIFY(!history.Change(wpt, QStringLiteral("depth"), [](ZrWpt& w) { w.z = 0.0; }));
    history.ChangeRoute(QStringLiteral("speed"), [](ZrWpts&) {});
    QCOMPARE(history.Steps(), 0);
    QVERIFY(history.IsClean());
}

void tst_ZrRouteHistory::reorder_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QString>("expected");
    QTest::newRow("up") << 1 << 3 << QStringLiteral("ACDBE");
    QTest::newRow("down") << 3 << 1 << QStringLiteral("ADBCE");
    QTest::newRow("to the head") << 4 << 0 << QStringLiteral("EABCD");
    QTest::newRow("to the tail") << 0 << 4 << QStringLiteral("BCDEA");
    QTest::newRow("neighbours") << 2 << 3 << QStringLiteral("ABDCE");
}

void tst_ZrRouteHistory::reorder()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(QString, expected);
    ZrWpts route;
    LayRoute(route);
    for (int i = 0; i < 5; ++i)
        WptAt(route, i)->name = QChar(u'A' + i);
    ZrRouteHistory history(route);
    const auto order = [&] {
        QString names;
        for (int i = 0; i < 5; ++i)
            names += WptAt(route, i)->name;
        return names;
    };
    QVERIFY(history.Reorder(WptAt(route, from), to));
    QCOMPARE(order(), expected);
    QCOMPARE(WptAt(route, 4)->pseudo, QStringLiteral("Finish Mission"));
    QVERIFY(history.Undo());
    QCOMPARE(order(), QStringLiteral("ABCDE"));
}

void tst_ZrRouteHistory::insertPattern()
{
    for (const int index : {0, 2, 5}) {
        ZrWpts route;
        LayRoute(route);
        ZrRouteHistory history(route);
        std::vector<ZrWpt> points(3);
        for (std::size_t i = 0; i < 3; ++i) {
            points[i].lat = 50.2 + 0.001 * static_cast<double>(i);
            points[i].lng = -4.2;
            points[i].gridId = points[0].uuid;
        }
        const std::vector<Snapshot> before{Snapshot(route)};
        QVERIFY(history.InsertPattern(points, index));
        QCOMPARE(route.GetCount(), 8);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(WptAt(route, index + i)->uuid, points[static_cast<std::size_t>(i)].uuid);
            QCOMPARE(WptAt(route, index + i)->gridId, points[0].uuid);
            QVERIFY(WptAt(route, index + i)->y > 5e6); // in the grid of the route
        }
        QCOMPARE(history.Steps(), 1);
        QVERIFY(GoesRound(history, route, {before[0], Snapshot(route)}));
    }
}

void tst_ZrRouteHistory::editAfterUndo()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    const Snapshot before(route);
    QVERIFY(history.Delete(WptAt(route, 1)));
    QVERIFY(history.Delete(WptAt(route, 1)));
    QVERIFY(history.Undo() && history.Undo());
    QVERIFY(history.CanRedo());
    history.Reverse();
    QVERIFY(!history.CanRedo() && !history.Redo());
    QCOMPARE(history.Steps(), 1);
    QVERIFY(GoesRound(history, route, {before, Snapshot(route)}));
}

void tst_ZrRouteHistory::editsOutside()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    std::vector<Snapshot> snapshots{Snapshot(route)};
    WptAt(route, 1)->z = -3.0;
    snapshots.emplace_back(route);
    QVERIFY(!history.IsClean());
    history.Reverse();
    snapshots.emplace_back(route);
    QCOMPARE(history.Steps(), 2);
    QVERIFY(GoesRound(history, route, snapshots));

    WptAt(route, 1)->z = -4.0;
    snapshots.emplace_back(route);
    QVERIFY(history.Undo());
    QCOMPARE(history.RedoName(), QStringLiteral("Change route"));
    QVERIFY(Snapshot(route) == snapshots[2]);
    QVERIFY(history.Redo());
    QVERIFY(Snapshot(route) == snapshots[3]);
    // On the way back it takes the place of what could be redone.
    QVERIFY(history.Undo() && history.Undo());
    route.prefix = QStringLiteral("X");
    QVERIFY(!history.Redo());
    QCOMPARE(history.Steps(), 2);
    QCOMPARE(history.UndoName(), QStringLiteral("Change route"));
}

void tst_ZrRouteHistory::record()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    const Snapshot before(route);
    for (int i = 0; i < 5; ++i)
        WptAt(route, i)->alt = 12.0;
    QVERIFY(history.Record(QStringLiteral("Set altitude of all")));
    QCOMPARE(history.UndoName(), QStringLiteral("Set altitude of all"));
    QVERIFY(GoesRound(history, route, {before, Snapshot(route)}));
}

void tst_ZrRouteHistory::reset()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    history.Reverse();
    route.RemoveAll();
    AppendWpt(route, testPlace);
    history.Reset();
    QVERIFY(!history.CanUndo() && !history.CanRedo() && history.IsClean() && !history.Undo());
    QCOMPARE(route.GetCount(), 1);
    QCOMPARE(history.Bytes(), i64{0});
}

void tst_ZrRouteHistory::emptyRoute()
{
    ZrWpts route;
    ZrRouteHistory history(route);
    std::vector<Snapshot> snapshots{Snapshot(route)};
    history.Reverse();
    QCOMPARE(history.Steps(), 0);
    ZrWpt* wpt = history.Add(50.0, -4.0, eZrWptBlue, ZrWpts::eAddTail);
    snapshots.emplace_back(route);
    QCOMPARE(history.UndoName(), QStringLiteral("Add waypoint Mkr: 1"));
    QVERIFY(history.Delete(wpt));
    snapshots.emplace_back(route);
    QVERIFY(route.IsEmpty());
    QVERIFY(GoesRound(history, route, snapshots));
    // A waypoint without name, with a position that is none.
    AppendWpt(route, {NaN, NaN});
    QVERIFY(history.Record(QStringLiteral("Edit")));
    QVERIFY(history.Move(route.GetHead(), NaN, 5.0));
    QCOMPARE(history.UndoName(), QStringLiteral("Move waypoint point 1"));
    QVERIFY(history.Undo() && std::isnan(route.GetHead()->lng));
    QVERIFY(!history.Record(QStringLiteral("Edit")));
}

void tst_ZrRouteHistory::derivedRoute()
{
    CountingRoute route;
    LayRoute(route);
    route.labelled = 0;
    ZrRouteHistory history(route);
    QVERIFY(history.Reorder(WptAt(route, 1), 2));
    QCOMPARE(route.labelled, 1);
    QVERIFY(history.Undo() && history.Redo());
    QCOMPARE(route.labelled, 1);
}

QTEST_GUILESS_MAIN(tst_ZrRouteHistory)
#include "tst_ZrRouteHistory.moc"
