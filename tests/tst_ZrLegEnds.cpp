// A leg that is found again after the route has changed.

#include "ZrKit/planning/ZrLegEnds.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrUtil/ZrWpt.h"
#include "ZrUtil/ZrWpts.h"

#include <QtTest>

class tst_ZrLegEnds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void none();
    void everyLeg_data();
    void everyLeg();
    void otherBefore();
    void noLongerNeighbours();
    void closingLegReversed();
    void twoWaypointsClosed();
    void olderWay();

private:
    static void Fill(ZrWpts& route, int count, bool isClosed);
    static ZrLegEnds EndsOf(const ZrWpts& route, int leg);
};

void tst_ZrLegEnds::Fill(ZrWpts& route, int count, bool isClosed)
{
    route.linked = true;
    route.closed = isClosed;
    for (int i = 0; i < count; ++i)
        route.Add(50.0 + 0.01 * i, -4.0 + 0.01 * (i % 2), eZrWptBlue, ZrWpts::eAddTail);
}

ZrLegEnds tst_ZrLegEnds::EndsOf(const ZrWpts& route, int leg)
{
    return ZrLegEnds::Of(ZrRoutePath(route).Legs(), ZrLegEnds::Ids(route), leg);
}

void tst_ZrLegEnds::none()
{
    ZrWpts route;
    QVERIFY(ZrLegEnds::Ids(route).empty());
    QVERIFY(ZrLegEnds().IsNull());
    QCOMPARE(ZrLegEnds().PlaceIn(route), -1);
    QCOMPARE(ZrLegEnds().IndexIn({}, {}), -1);
    Fill(route, 3, false);
    for (const int leg : {-1, 2, 1000})
        QVERIFY(EndsOf(route, leg).IsNull());
    QCOMPARE(ZrLegEnds().PlaceIn(route), -1);
    // Waypoints without identity are no ends.
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        route.GetNext(pos)->uuid = QUuid();
    QVERIFY(EndsOf(route, 0).IsNull());
    QCOMPARE(EndsOf(route, 0).PlaceIn(route), -1);
}

void tst_ZrLegEnds::everyLeg_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("isClosed");
    for (const int count : {2, 3, 10}) {
        QTest::addRow("%d open", count) << count << false;
        QTest::addRow("%d closed", count) << count << true;
    }
}

void tst_ZrLegEnds::everyLeg()
{
    QFETCH(int, count);
    QFETCH(bool, isClosed);
    ZrWpts route;
    Fill(route, count, isClosed);
    const ZrRoutePath path(route);
    for (int leg = 0; leg < static_cast<int>(path.Legs().size()); ++leg) {
        const ZrLegEnds ends = EndsOf(route, leg);
        QCOMPARE(ends.IndexIn(path.Legs(), ZrLegEnds::Ids(route)), leg);
        QCOMPARE(ends.PlaceIn(route), leg + 1);
    }
}

void tst_ZrLegEnds::otherBefore()
{
    ZrWpts route;
    Fill(route, 4, false);
    const ZrLegEnds ends = EndsOf(route, 1);
    route.Add(49.0, -4.0, eZrWptBlue, ZrWpts::eAddHead);
    QCOMPARE(ends.PlaceIn(route), 3);
    QCOMPARE(ends.IndexIn(ZrRoutePath(route).Legs(), ZrLegEnds::Ids(route)), 2);
    route.Reverse();
    QCOMPARE(ends.PlaceIn(route), 2);
    QCOMPARE(ends.IndexIn(ZrRoutePath(route).Legs(), ZrLegEnds::Ids(route)), 1);
}

void tst_ZrLegEnds::noLongerNeighbours()
{
    ZrWpts route;
    Fill(route, 4, true);
    const ZrLegEnds ends = EndsOf(route, 1);
    const ZrLegEnds closing = EndsOf(route, 3);
    auto* between = new ZrWpt;
    route.InsertBefore(route.FindIndex(2), between);
    QCOMPARE(ends.PlaceIn(route), -1);
    QCOMPARE(ends.IndexIn(ZrRoutePath(route).Legs(), ZrLegEnds::Ids(route)), -1);
    route.Delete(between);
    QCOMPARE(ends.PlaceIn(route), 2);
    route.closed = false;
    QCOMPARE(closing.PlaceIn(route), -1);
    route.Delete(route.GetAt(route.FindIndex(2)));
    QCOMPARE(ends.PlaceIn(route), -1);
    // The last one of all.
    while (route.GetCount() > 1)
        route.Delete(route.GetTail());
    route.closed = true;
    QCOMPARE(closing.PlaceIn(route), -1);
}

void tst_ZrLegEnds::closingLegReversed()
{
    ZrWpts route;
    Fill(route, 5, true);
    const ZrLegEnds closing = EndsOf(route, 4);
    route.Reverse();
    QCOMPARE(closing.PlaceIn(route), 5);
    QCOMPARE(closing.IndexIn(ZrRoutePath(route).Legs(), ZrLegEnds::Ids(route)), 4);
}

/// There and back are two legs.
void tst_ZrLegEnds::twoWaypointsClosed()
{
    ZrWpts route;
    Fill(route, 2, true);
    QCOMPARE(EndsOf(route, 0).PlaceIn(route), 1);
    const ZrLegEnds back = EndsOf(route, 1);
    QCOMPARE(back.PlaceIn(route), 2);
    route.closed = false;
    QCOMPARE(back.PlaceIn(route), 1);
    QCOMPARE(back.IndexIn(ZrRoutePath(route).Legs(), ZrLegEnds::Ids(route)), 0);
}

/// Of a route that was looked at before it was edited.
void tst_ZrLegEnds::olderWay()
{
    ZrWpts route;
    Fill(route, 4, false);
    const ZrRoutePath path(route);
    const std::vector<QUuid> ids = ZrLegEnds::Ids(route);
    route.Delete(route.GetHead());
    const ZrLegEnds ends = ZrLegEnds::Of(path.Legs(), ids, 1);
    QCOMPARE(ends.PlaceIn(route), 1);
    QCOMPARE(ends.IndexIn(path.Legs(), ids), 1);
    QVERIFY(ZrLegEnds::Of(path.Legs(), {}, 1).IsNull()); // ids of another one
}

QTEST_APPLESS_MAIN(tst_ZrLegEnds)
#include "tst_ZrLegEnds.moc"
