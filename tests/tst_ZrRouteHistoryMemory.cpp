// What undo keeps, and how much of it.

#include "RouteSnapshot.h"
#include "ZrKit/planning/ZrRouteHistory.h"
#include "ZrUtil/ZrSetModule.h"

#include <QElapsedTimer>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <random>

namespace {

const double NaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

class tst_ZrRouteHistoryMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyMemberIsKept_data();
    void everyMemberIsKept();
    void everyRouteMemberIsKept();
    void bitsAreKept();
    void limitOfSteps_data();
    void limitOfSteps();
    void limitOfBytes();
    void lastStepRemains();
    void sharedWaypoints();
    void objectsStay();
    void twinsByUuid();
    void randomEdits_data();
    void randomEdits();
    void largeRoute();
};

void tst_ZrRouteHistoryMemory::everyMemberIsKept_data()
{
    QTest::addColumn<QString>("key");
    const QJsonObject object = Stored(ZrWpt());
    QVERIFY(object.size() > 50);
    for (const QString& key : object.keys())
        QTest::newRow(qPrintable(key)) << key;
}

void tst_ZrRouteHistoryMemory::everyMemberIsKept()
{
    QFETCH(QString, key);
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    ZrWpt& wpt = *WptAt(route, 2);
    QJsonObject object = Stored(wpt);
    const QJsonValue value = object[key];
    QJsonValue other;
    if (value.isBool())
        other = !value.toBool();
    else if (value.isDouble())
        other = value.toDouble() + 0.25;
    else if (key == QStringLiteral("bottomA"))
        other = QStringLiteral("F");
    else if (key == QStringLiteral("colour"))
        other = QStringLiteral("ff102030");
    else if (value.toString().startsWith(QLatin1Char('{')))
        other = QUuid::createUuid().toString();
    else
        other = QStringLiteral("77");
    object[key] = other;
    const Snapshot before(route);
    zr::ZrSetModule module(zr::ePersistLoading, object);
    ZrWpt::serialise(wpt, module);
    QVERIFY2(Stored(wpt)[key] == other, qPrintable(key));
    const Snapshot after(route);
    QVERIFY(history.Record(QStringLiteral("Edit")));
    QVERIFY(history.Undo());
    QVERIFY(Snapshot(route) == before);
    QVERIFY(history.Redo());
    QVERIFY(Snapshot(route) == after);
}

void tst_ZrRouteHistoryMemory::everyRouteMemberIsKept()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    std::vector<Snapshot> snapshots{Snapshot(route)};
    const std::vector<std::function<void()>> edits{[&] { route.prefix = QStringLiteral("New"); },
        [&] { route.linked = false; }, [&] { route.closed = true; }, [&] { route.speedType = 2; },
        [&] { route.speed = 0.75; }, [&] { route.speed = NaN; }};
    for (const auto& edit : edits) {
        edit();
        QVERIFY(history.Record(QStringLiteral("Edit")));
        QVERIFY(!history.Record(QStringLiteral("Edit")));
    }
    QCOMPARE(history.Steps(), 6);
    QVERIFY(history.Undo());
    QCOMPARE(route.speed, 0.75);
    QVERIFY(history.Undo());
    QCOMPARE(route.speed, 0.5);
    for (int i = 0; i < 4; ++i)
        QVERIFY(history.Undo());
    QVERIFY(Snapshot(route) == snapshots[0]);
}

void tst_ZrRouteHistoryMemory::bitsAreKept()
{
    ZrWpts route;
    LayRoute(route);
    ZrWpt& wpt = *WptAt(route, 2);
    wpt.z = 0.0;
    wpt.head = NaN;
    wpt.colour = QColor(1, 2, 3, 4);
    ZrRouteHistory history(route);
    // NaN is no change.
    QVERIFY(!history.Record(QStringLiteral("Edit")));
    wpt.z = -0.0;
    QVERIFY(history.Record(QStringLiteral("Edit")));
    wpt.colour.setAlpha(5);
    QVERIFY(history.Record(QStringLiteral("Edit")));
    QVERIFY(history.Undo());
    QCOMPARE(wpt.colour.alpha(), 4);
    QVERIFY(std::signbit(wpt.z) && std::isnan(wpt.head));
    QVERIFY(history.Undo());
    QVERIFY(!std::signbit(wpt.z) && std::isnan(wpt.head));
}

void tst_ZrRouteHistoryMemory::limitOfSteps_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("kept");
    QTest::newRow("1") << 1 << 1;
    QTest::newRow("7") << 7 << 7;
    QTest::newRow("50") << 50 << 20;
    QTest::newRow("0") << 0 << 1;
    QTest::newRow("negative") << -5 << 1;
}

void tst_ZrRouteHistoryMemory::limitOfSteps()
{
    QFETCH(int, limit);
    QFETCH(int, kept);
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route, {limit, 1 << 30});
    std::vector<Snapshot> snapshots{Snapshot(route)};
    for (int i = 1; i <= 20; ++i) {
        QVERIFY(history.Change(WptAt(route, 1), QStringLiteral("depth"), [i](ZrWpt& wpt) { wpt.z = i; }));
        snapshots.emplace_back(route);
    }
    QCOMPARE(history.Steps(), kept);
    snapshots.erase(snapshots.begin(), snapshots.end() - kept - 1);
    QVERIFY(GoesRound(history, route, snapshots));
}

void tst_ZrRouteHistoryMemory::limitOfBytes()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route, {1000, 20000});
    for (int i = 1; i <= 200; ++i) {
        QVERIFY(history.Change(WptAt(route, 1), QStringLiteral("depth"), [i](ZrWpt& wpt) { wpt.z = i; }));
        QVERIFY(history.Bytes() <= 20000);
    }
    QVERIFY(history.Steps() >= 10 && history.Steps() < 100);
    const int steps = history.Steps();
    // Long texts count.
    QVERIFY(history.Change(
        WptAt(route, 1), QStringLiteral("name"), [](ZrWpt& wpt) { wpt.name.fill(QLatin1Char('x'), 5000); }));
    QVERIFY(history.Steps() < steps);
    QVERIFY(history.Bytes() >= 10000 && history.Bytes() <= 20000);
}

void tst_ZrRouteHistoryMemory::lastStepRemains()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route, {1000, 0});
    for (int i = 1; i < 5; ++i) {
        const Snapshot before(route);
        QVERIFY(history.Change(WptAt(route, 1), QStringLiteral("depth"), [i](ZrWpt& wpt) { wpt.z = i; }));
        QCOMPARE(history.Steps(), 1);
        QVERIFY(GoesRound(history, route, {before, Snapshot(route)}));
    }
}

void tst_ZrRouteHistoryMemory::sharedWaypoints()
{
    ZrWpts route;
    std::vector<std::pair<double, double>> metres;
    for (int i = 0; i < 1000; ++i)
        metres.emplace_back(i * 10.0, 0.0);
    Lay(route, metres);
    route.Recalc(true);
    ZrRouteHistory history(route);
    QVERIFY(history.Change(WptAt(route, 500), QStringLiteral("depth"), [](ZrWpt& wpt) { wpt.z = 1.0; }));
    const i64 one = history.Bytes();
    QVERIFY(one < 25000);
    history.Reverse();
    QVERIFY(history.Bytes() - one > static_cast<i64>(900 * sizeof(ZrWpt)));
}

void tst_ZrRouteHistoryMemory::objectsStay()
{
    ZrWpts route;
    LayRoute(route);
    ZrRouteHistory history(route);
    std::vector<ZrWpt*> wpts;
    for (int i = 0; i < 5; ++i)
        wpts.push_back(WptAt(route, i));
    const QUuid deleted = wpts[1]->uuid;
    history.Reverse();
    QVERIFY(history.Delete(wpts[1]));
    QVERIFY(history.Reorder(wpts[0], 0));
    QVERIFY(history.Undo());
    QCOMPARE(WptAt(route, 3), wpts[0]);
    QVERIFY(history.Undo());
    QCOMPARE(WptAt(route, 3)->uuid, deleted);
    QCOMPARE(WptAt(route, 0), wpts[4]);
    QVERIFY(history.Undo());
    for (const int i : {0, 2, 3, 4})
        QCOMPARE(WptAt(route, i), wpts[static_cast<std::size_t>(i)]);
    QVERIFY(history.Redo() && history.Redo() && history.Redo());
    QCOMPARE(WptAt(route, 0), wpts[0]);
}

void tst_ZrRouteHistoryMemory::twinsByUuid()
{
    ZrWpts route;
    LayRoute(route);
    for (int i = 1; i < 5; ++i)
        WptAt(route, i)->uuid = WptAt(route, 0)->uuid;
    ZrRouteHistory history(route);
    std::vector<Snapshot> snapshots{Snapshot(route)};
    history.Reverse();
    snapshots.emplace_back(route);
    history.Delete(WptAt(route, 2));
    snapshots.emplace_back(route);
    history.InsertPattern({*WptAt(route, 0), ZrWpt()}, 1);
    snapshots.emplace_back(route);
    QVERIFY(GoesRound(history, route, snapshots));
}

void tst_ZrRouteHistoryMemory::randomEdits_data()
{
    QTest::addColumn<int>("limit");
    QTest::newRow("all kept") << 100000;
    QTest::newRow("last 25") << 25;
}

void tst_ZrRouteHistoryMemory::randomEdits()
{
    QFETCH(int, limit);
    for (unsigned seed = 0; seed < 3; ++seed) {
        std::mt19937 random(seed);
        const auto pick
            = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
        const auto unit = [&] { return static_cast<double>(random()) / 4294967295.0; };
        ZrWpts route;
        LayRoute(route);
        ZrRouteHistory history(route, {limit, i64{1} << 40});
        std::vector<Snapshot> snapshots{Snapshot(route)};
        std::size_t at = 0;
        for (int edit = 0; edit < 80; ++edit) {
            const int count = route.GetCount();
            ZrWpt* wpt = count > 0 ? WptAt(route, pick(count)) : nullptr;
            bool isStep = true;
            switch (pick(11)) {
            case 0:
            case 1:
                history.Add(50.0 + unit() * 0.01, -4.0 + unit() * 0.01, eZrWptRed, pick(3));
                break;
            case 2:
                isStep = history.Delete(wpt);
                break;
            case 3:
                history.CloseMove();
                isStep = false;
                for (int i = 0; i < 3; ++i)
                    isStep = history.Move(wpt, 50.0 + unit() * 0.01, -4.0 + unit() * 0.01) || isStep;
                history.CloseMove();
                break;
            case 4:
                isStep = count > 0 && history.Reorder(wpt, pick(count));
                break;
            case 5: {
                const Snapshot before(route);
                history.Reverse();
                isStep = !(Snapshot(route) == before);
                break;
            }
            case 6: {
                const double r = unit() * 20.0;
                isStep = history.Change(wpt, QStringLiteral("radius"), [r](ZrWpt& w) { w.r = r; });
                break;
            }
            case 7:
                history.ChangeRoute(QStringLiteral("x"), [](ZrWpts& all) { all.closed = !all.closed; });
                break;
            case 8:
                isStep = history.InsertPattern(std::vector<ZrWpt>(3), pick(count + 1));
                break;
            case 9:
                if (history.Undo())
                    --at;
                isStep = false;
                break;
            default:
                if (history.Redo())
                    ++at;
                isStep = false;
            }
            if (isStep) {
                snapshots.erase(snapshots.begin() + static_cast<std::ptrdiff_t>(at) + 1, snapshots.end());
                snapshots.emplace_back(route);
                ++at;
            }
            QVERIFY2(
                Snapshot(route) == snapshots[at], qPrintable(QStringLiteral("%1 %2").arg(seed).arg(edit)));
        }
        while (history.Redo())
            ++at;
        QCOMPARE(at + 1, snapshots.size());
        const auto kept = static_cast<std::ptrdiff_t>(history.Steps()) + 1;
        QVERIFY(kept == static_cast<std::ptrdiff_t>(snapshots.size()) || kept <= limit + 1);
        snapshots.erase(snapshots.begin(), snapshots.end() - kept);
        QVERIFY(GoesRound(history, route, snapshots));
        QVERIFY(GoesRound(history, route, snapshots));
    }
}

void tst_ZrRouteHistoryMemory::largeRoute()
{
    ZrWpts route;
    std::vector<std::pair<double, double>> metres;
    for (int i = 0; i < 10000; ++i)
        metres.emplace_back((i / 2) * 20.0, (i + i / 2) % 2 == 0 ? 0.0 : 100.0);
    Lay(route, metres, 10.0);
    route.Recalc(true);
    ZrRouteHistory history(route);
    const Snapshot before(route);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 60; ++i) {
        history.CloseMove();
        QVERIFY(history.Move(WptAt(route, 10), 50.1 + i * 1e-6, -4.2));
    }
    for (int i = 0; i < 60; ++i)
        history.Undo();
    while (history.Redo()) { }
    const auto elapsed = timer.elapsed();
    QVERIFY2(elapsed < 20000, qPrintable(QString::number(elapsed)));
    QVERIFY(history.Steps() >= 10 && history.Steps() < 60);
    QVERIFY(history.Bytes() <= 128 * 1024 * 1024);
    qInfo(
        "%lld ms, %d steps, %lld bytes, %zu each", elapsed, history.Steps(), history.Bytes(), sizeof(ZrWpt));
}

QTEST_GUILESS_MAIN(tst_ZrRouteHistoryMemory)
#include "tst_ZrRouteHistoryMemory.moc"
