#include "RouteChecks.h"

#include <QTranslator>

#include <algorithm>
#include <cmath>
#include <memory>
#include <type_traits>

namespace {

QStringList Texts(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* text : texts)
        list.append(QString::fromUtf8(text));
    return list;
}

/// A route that says how often its labels were made.
class CountingRoute : public ZrWpts
{
public:
    void UpdatePseudo() override
    {
        ++updates;
        ZrWpts::UpdatePseudo();
    }

    int updates = 0;
};

class Upper : public QTranslator
{
public:
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        return qstrcmp(context, "ZrWpts") == 0 ? QString::fromUtf8(text).toUpper() : QString();
    }

    bool isEmpty() const override { return false; }
};

/// Latitudes in order, as numbers of hundredths of a degree.
QVector<int> Order(const ZrWpts& route)
{
    QVector<int> order;
    for (const ZrWpt* wpt : Items(route))
        order.append(qRound(wpt->lat * 100.0));
    return order;
}

/// A route along the equator from 0° to 0.03° E in three legs.
void FillEquator(ZrWpts& route)
{
    for (int i = 0; i < 4; ++i)
        AppendLL(route, 0.0, 0.01 * i);
}

} // namespace

class tst_ZrWpts : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { ResetRouteState(); }

    void cleanup() { ResetRouteState(); }

    void defaults();
    void presets();
    void addSetsTheRecord();
    void addColours_data();
    void addColours();
    void addAtHeadAndTail();
    void addToEmpty_data();
    void addToEmpty();
    void addOutside_data();
    void addOutside();
    void addIntoLeg_data();
    void addIntoLeg();
    void addIntoLegOfOne();
    void addIntoLegOfCoincident();
    void addIntoLegBehindTheFirstOfCoincident();
    void addNowhere();
    void deleteOne();
    void deleteWhatIsNotThere();
    void labels_data();
    void labels();
    void labelsAreTranslated();
    void labelsOfDerivedRoutes();
    void area();
    void areaWidens();
    void areaOfNothing();
    void centre();
    void nearest();
    void nearestTakesTheEarlierOfEquals();
    void nearestByDegrees();
    void nearestWithoutPositions();
    void uniqueNeighbours();
    void uniqueNeighboursOfNothing();
    void copies();
    void copiesAreTheirOwn();
    void assignment();
    void assignmentToItself();
};

void tst_ZrWpts::defaults()
{
    const ZrWpts route;
    QCOMPARE(route.prefix, QString());
    QCOMPARE(route.linked, false);
    QCOMPARE(route.closed, false);
    QCOMPARE(route.speedType, 0);
    QCOMPARE(route.speed, 0.5);
    QVERIFY(route.IsEmpty());
    static_assert(std::is_base_of_v<ZrLstMgd<ZrWpt>, ZrWpts> && std::is_base_of_v<zr::IPersistable, ZrWpts>);
    static_assert(std::is_same_v<ZrWpts::eZrWptType, ::eZrWptType>);
}

void tst_ZrWpts::presets()
{
    QCOMPARE(ZrWpts::s_msSlow, 0.25F);
    QCOMPARE(ZrWpts::s_msMedium, 0.5F);
    QCOMPARE(ZrWpts::s_msFast, 1.0F);
}

void tst_ZrWpts::addSetsTheRecord()
{
    ZrWpts route;
    const ZrWpt* wpt = route.Add(50.5, -4.25, eZrWptRed, ZrWpts::eAddTail);
    QVERIFY(wpt);
    QCOMPARE(route.GetHead(), wpt);
    QCOMPARE(wpt->lat, 50.5);
    QCOMPARE(wpt->lng, -4.25);
    QCOMPARE(wpt->z, 0.0);
    QCOMPARE(wpt->type, u8(1));
    QVERIFY(!wpt->uuid.isNull());
    // Recomputed: the position in zone 30, the label, the speed of the route.
    QVERIFY(wpt->x > 400000.0 && wpt->x < 500000.0);
    QVERIFY(wpt->y > 5590000.0 && wpt->y < 5600000.0);
    QCOMPARE(wpt->pseudo, QStringLiteral("Mkr: 1"));
    QCOMPARE(wpt->speed, 0.5);
}

void tst_ZrWpts::addColours_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("0") << 0 << QColor(0, 0, 255);
    QTest::newRow("1") << 1 << QColor(255, 0, 0);
    QTest::newRow("2") << 2 << QColor(255, 255, 0);
    QTest::newRow("3") << 3 << ZrWpt().colour;
    QTest::newRow("255") << 255 << ZrWpt().colour;
}

void tst_ZrWpts::addColours()
{
    QFETCH(int, type);
    ZrWpts route;
    const ZrWpt* wpt = route.Add(0.0, 0.0, static_cast<eZrWptType>(type), ZrWpts::eAddTail);
    QTEST(wpt->colour, "colour");
    QCOMPARE(int(wpt->type), type);
}

void tst_ZrWpts::addAtHeadAndTail()
{
    ZrWpts route;
    route.Add(0.02, 0.0, eZrWptBlue, 1);
    route.Add(0.01, 0.0, eZrWptBlue, 0);
    route.Add(0.03, 0.0, eZrWptBlue, 1);
    route.Add(0.0, 0.0, eZrWptBlue, 0);
    QCOMPARE(Order(route), QVector<int>({0, 1, 2, 3}));
    QCOMPARE(Labels(route), Texts({"Mkr: 1", "Mkr: 2", "Mkr: 3", "Mkr: 4"}));
}

void tst_ZrWpts::addToEmpty_data()
{
    QTest::addColumn<int>("where");
    for (const int where : {0, 1, 2, 3, -1})
        QTest::addRow("%d", where) << where;
}

void tst_ZrWpts::addToEmpty()
{
    QFETCH(int, where);
    ZrWpts route;
    const ZrWpt* wpt = route.Add(0.5, 0.0, eZrWptBlue, where);
    QCOMPARE(route.GetCount(), 1);
    QCOMPARE(route.GetHead(), wpt);
}

void tst_ZrWpts::addOutside_data()
{
    QTest::addColumn<int>("where");
    for (const int where : {3, -1, 2147483647, -2147483647 - 1})
        QTest::addRow("%d", where) << where;
}

/// The waypoint belongs to the caller; the route is recomputed all the same.
void tst_ZrWpts::addOutside()
{
    QFETCH(int, where);
    CountingRoute route;
    route.Add(0.0, 0.0, eZrWptBlue, 1);
    route.linked = true;
    route.GetHead()->r = 5.0;
    route.updates = 0;
    const std::unique_ptr<ZrWpt> wpt(route.Add(0.5, 0.25, eZrWptRed, where));
    QVERIFY(wpt);
    QCOMPARE(wpt->lat, 0.5);
    QCOMPARE(wpt->lng, 0.25);
    QCOMPARE(wpt->type, u8(1));
    QCOMPARE(wpt->colour, QColor(255, 0, 0));
    QCOMPARE(wpt->pseudo, QString());
    QCOMPARE(wpt->x, 0.0);
    QCOMPARE(route.GetCount(), 1);
    QVERIFY(!route.Find(wpt.get()));
    QCOMPARE(route.updates, 1);
    QCOMPARE(Labels(route), Texts({"Start Mission"}));
    QCOMPARE(route.GetHead()->r, 0.0);
}

void tst_ZrWpts::addIntoLeg_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<int>("index");
    QTest::newRow("before the first") << 0.0005 << -0.004 << 0;
    QTest::newRow("first leg") << 0.0005 << 0.004 << 1;
    QTest::newRow("second leg") << -0.0005 << 0.0145 << 2;
    QTest::newRow("third leg, its begin") << 0.0 << 0.021 << 3;
    QTest::newRow("third leg, its end") << 0.0 << 0.0299 << 3;
    QTest::newRow("beyond the last") << 0.0005 << 0.031 << 4;
}

void tst_ZrWpts::addIntoLeg()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    ZrWpts route;
    FillEquator(route);
    const ZrWpt* wpt = route.Add(lat, lng, eZrWptBlue, ZrWpts::eAddLeg);
    QCOMPARE(route.GetCount(), 5);
    QTEST(route.GetIndex(wpt), "index");
    // Recomputed: distances grow along the route, and the labels run on.
    QCOMPARE(Labels(route), Texts({"Mkr: 1", "Mkr: 2", "Mkr: 3", "Mkr: 4", "Mkr: 5"}));
    for (int i = 1; i < 5; ++i)
        QVERIFY(At(route, i)->q > At(route, i - 1)->q);
}

void tst_ZrWpts::addIntoLegOfOne()
{
    ZrWpts route;
    route.Add(0.0, 0.0, eZrWptBlue, 1);
    route.Add(-0.01, 0.0, eZrWptBlue, 2);
    QCOMPARE(Order(route), QVector<int>({0, -1}));
}

void tst_ZrWpts::addIntoLegOfCoincident()
{
    ZrWpts route;
    for (int i = 0; i < 3; ++i)
        AppendLL(route, 0.0, 0.0);
    route.Add(-0.01, 0.0, eZrWptBlue, 2);
    QCOMPARE(Order(route), QVector<int>({0, 0, 0, -1}));
}

/// Of waypoints at one position the first is the nearest, and a leg that begins there begins at the first.
void tst_ZrWpts::addIntoLegBehindTheFirstOfCoincident()
{
    ZrWpts route;
    AppendLL(route, 0.0, 0.0);
    AppendLL(route, 0.0, 0.0);
    AppendLL(route, 0.1, 0.0);
    route.Add(0.01, 0.0, eZrWptBlue, 2);
    QCOMPARE(Order(route), QVector<int>({0, 1, 0, 10}));
}

void tst_ZrWpts::addNowhere()
{
    for (const double bad : {double(NAN), double(INFINITY), 1e308}) {
        ZrWpts route;
        FillEquator(route);
        for (const int where : {0, 1, 2})
            QVERIFY(route.Find(route.Add(bad, -bad, eZrWptBlue, where)));
        QCOMPARE(route.GetCount(), 7);
    }
}

void tst_ZrWpts::deleteOne()
{
    CountingRoute route;
    route.linked = true;
    for (int i = 0; i < 4; ++i)
        route.Add(0.01 * i, 0.0, eZrWptBlue, 1);
    const double q = At(route, 3)->q;
    route.updates = 0;
    route.Delete(At(route, 0));
    QCOMPARE(route.updates, 1);
    QCOMPARE(Order(route), QVector<int>({1, 2, 3}));
    QCOMPARE(Labels(route), Texts({"Start Mission", "Wpt: 1", "Finish Mission"}));
    QCOMPARE(At(route, 0)->q, 0.0);
    QVERIFY(Near(At(route, 2)->q, q * 2.0 / 3.0, 0.01));
    route.Delete(At(route, 2));
    route.Delete(At(route, 0));
    route.Delete(At(route, 0));
    QVERIFY(route.IsEmpty());
    QCOMPARE(route.updates, 4);
}

void tst_ZrWpts::deleteWhatIsNotThere()
{
    CountingRoute route;
    AppendLL(route, 0.0, 0.0);
    AppendLL(route, 0.01, 0.0);
    ZrWpt other;
    int calls = 0;
    for (ZrWpt* wpt : {&other, static_cast<ZrWpt*>(nullptr)}) {
        route.GetHead()->r = 3.0;
        At(route, 1)->q = 0.0;
        route.Delete(wpt);
        QCOMPARE(route.updates, ++calls);
        QCOMPARE(route.GetCount(), 2);
        QCOMPARE(route.GetHead()->r, 0.0);
        QVERIFY(At(route, 1)->q > 1000.0);
    }
    ZrWpts empty;
    empty.Delete(&other);
    QVERIFY(empty.IsEmpty());
}

void tst_ZrWpts::labels_data()
{
    QTest::addColumn<bool>("linked");
    QTest::addColumn<bool>("closed");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("labels");
    QTest::newRow("route of 0") << true << false << 0 << QStringList();
    QTest::newRow("route of 1") << true << false << 1 << Texts({"Start Mission"});
    QTest::newRow("route of 2") << true << false << 2 << Texts({"Start Mission", "Finish Mission"});
    QTest::newRow("route of 4") << true << false << 4
                                << Texts({"Start Mission", "Wpt: 1", "Wpt: 2", "Finish Mission"});
    QTest::newRow("closed of 1") << true << true << 1 << Texts({"Wpt: 0"});
    QTest::newRow("closed of 3") << true << true << 3 << Texts({"Wpt: 0", "Wpt: 1", "Wpt: 2"});
    QTest::newRow("markers of 1") << false << false << 1 << Texts({"Mkr: 1"});
    QTest::newRow("markers of 3") << false << false << 3 << Texts({"Mkr: 1", "Mkr: 2", "Mkr: 3"});
    QTest::newRow("closed markers") << false << true << 2 << Texts({"Mkr: 1", "Mkr: 2"});
}

void tst_ZrWpts::labels()
{
    QFETCH(int, count);
    ZrWpts route;
    QFETCH(bool, linked);
    QFETCH(bool, closed);
    route.linked = linked;
    route.closed = closed;
    for (int i = 0; i < count; ++i)
        AppendLL(route, 0.0, 0.0)->pseudo = QStringLiteral("former");
    route.UpdatePseudo();
    QTEST(Labels(route), "labels");
}

void tst_ZrWpts::labelsAreTranslated()
{
    Upper upper;
    QVERIFY(QCoreApplication::installTranslator(&upper));
    ZrWpts route;
    for (int i = 0; i < 3; ++i)
        AppendLL(route, 0.0, 0.0);
    route.UpdatePseudo();
    const QStringList markers = Labels(route);
    route.linked = true;
    route.UpdatePseudo();
    QCoreApplication::removeTranslator(&upper);
    QCOMPARE(markers, Texts({"MKR: 1", "MKR: 2", "MKR: 3"}));
    QCOMPARE(Labels(route), Texts({"START MISSION", "WPT: 1", "FINISH MISSION"}));
}

void tst_ZrWpts::labelsOfDerivedRoutes()
{
    CountingRoute route;
    route.Add(0.0, 0.0, eZrWptBlue, 1);
    QCOMPARE(route.updates, 1);
    route.Reverse();
    QCOMPARE(route.updates, 1);
    route.Delete(route.GetHead());
    QCOMPARE(route.updates, 2);
}

void tst_ZrWpts::area()
{
    ZrWpts route;
    AppendLL(route, 10.0, 20.0);
    AppendLL(route, -5.0, 30.0);
    AppendLL(route, 7.0, -40.0);
    double minLat = -90.0;
    double minLng = -180.0;
    double maxLat = 90.0;
    double maxLng = 180.0;
    QCOMPARE(route.GetArea(minLat, minLng, maxLat, maxLng, true), 3);
    QCOMPARE(minLat, -5.0);
    QCOMPARE(minLng, -40.0);
    QCOMPARE(maxLat, 10.0);
    QCOMPARE(maxLng, 30.0);
}

void tst_ZrWpts::areaWidens()
{
    ZrWpts route;
    AppendLL(route, 10.0, 20.0);
    AppendLL(route, -5.0, 30.0);
    double minLat = 0.0;
    double minLng = 25.0;
    double maxLat = 12.0;
    double maxLng = 26.0;
    QCOMPARE(route.GetArea(minLat, minLng, maxLat, maxLng, false), 2);
    QCOMPARE(minLat, -5.0);
    QCOMPARE(minLng, 20.0);
    QCOMPARE(maxLat, 12.0);
    QCOMPARE(maxLng, 30.0);
}

void tst_ZrWpts::areaOfNothing()
{
    const ZrWpts route;
    double minLat = 1.0;
    double minLng = 2.0;
    double maxLat = 3.0;
    double maxLng = 4.0;
    for (const bool init : {true, false})
        QCOMPARE(route.GetArea(minLat, minLng, maxLat, maxLng, init), 0);
    QCOMPARE(minLat, 1.0);
    QCOMPARE(minLng, 2.0);
    QCOMPARE(maxLat, 3.0);
    QCOMPARE(maxLng, 4.0);
}

void tst_ZrWpts::centre()
{
    ZrWpts route;
    double lat = 7.0;
    double lng = 8.0;
    QCOMPARE(route.GetCentre(lat, lng), 0);
    QCOMPARE(lat, 7.0);
    QCOMPARE(lng, 8.0);
    AppendLL(route, 10.0, 179.0);
    QCOMPARE(route.GetCentre(lat, lng), 1);
    QCOMPARE(lat, 10.0);
    QCOMPARE(lng, 179.0);
    // Plain means, across the antimeridian as well.
    AppendLL(route, -4.0, -179.0);
    AppendLL(route, 0.0, 9.0);
    QCOMPARE(route.GetCentre(lat, lng), 3);
    QCOMPARE(lat, 2.0);
    QCOMPARE(lng, 3.0);
}

void tst_ZrWpts::nearest()
{
    ZrWpts route;
    QVERIFY(!route.NearestTo(0.0, 0.0));
    FillEquator(route);
    QCOMPARE(route.NearestTo(0.0, -1.0), route.FindIndex(0));
    QCOMPARE(route.NearestTo(0.5, 0.0149), route.FindIndex(1));
    QCOMPARE(route.NearestTo(-0.5, 0.0151), route.FindIndex(2));
    QCOMPARE(route.NearestTo(90.0, 0.03), route.FindIndex(3));
}

void tst_ZrWpts::nearestTakesTheEarlierOfEquals()
{
    ZrWpts route;
    AppendLL(route, 5.0, 5.0);
    AppendLL(route, 1.0, 0.0);
    AppendLL(route, 1.0, 0.0);
    AppendLL(route, -1.0, 0.0);
    QCOMPARE(route.NearestTo(1.0, 0.0), route.FindIndex(1));
    QCOMPARE(route.NearestTo(0.0, 0.0), route.FindIndex(1));
}

/// Degrees are taken as they are: no shorter degrees of longitude in the north, no antimeridian.
void tst_ZrWpts::nearestByDegrees()
{
    ZrWpts north;
    AppendLL(north, 80.0, 2.0);
    AppendLL(north, 81.0, 0.0);
    QCOMPARE(north.NearestTo(80.0, 0.0), north.FindIndex(1));
    ZrWpts across;
    AppendLL(across, 0.0, 179.9);
    AppendLL(across, 0.0, 0.0);
    QCOMPARE(across.NearestTo(0.0, -179.9), across.FindIndex(1));
}

void tst_ZrWpts::nearestWithoutPositions()
{
    ZrWpts route;
    AppendLL(route, NAN, 0.0);
    AppendLL(route, 0.0, NAN);
    QCOMPARE(route.NearestTo(0.0, 0.0), route.FindIndex(0));
    AppendLL(route, 9.0, 9.0);
    AppendLL(route, NAN, NAN);
    AppendLL(route, 1.0, 1.0);
    QCOMPARE(route.NearestTo(0.0, 0.0), route.FindIndex(4));
    QCOMPARE(route.NearestTo(10.0, 10.0), route.FindIndex(2));
    QCOMPARE(route.NearestTo(NAN, 0.0), route.FindIndex(0));
}

void tst_ZrWpts::uniqueNeighbours()
{
    ZrWpts route;
    for (const double lat : {1.0, 1.0, 2.0, 2.0, 2.0, 1.0})
        AppendLL(route, lat, 5.0);
    AppendLL(route, 1.0, 6.0);
    const auto index = [&route](ZrListPos* pos) { return pos ? route.GetIndex(pos) : -1; };
    const QVector<int> following{2, 2, 5, 5, 5, 6, -1};
    const QVector<int> preceding{-1, -1, 1, 1, 1, 4, 5};
    for (int i = 0; i < following.size(); ++i) {
        QCOMPARE(index(route.FollowingUnique(route.FindIndex(i))), following[i]);
        QCOMPARE(index(route.PrecedingUnique(route.FindIndex(i))), preceding[i]);
    }
}

void tst_ZrWpts::uniqueNeighboursOfNothing()
{
    ZrWpts route;
    QVERIFY(!route.FollowingUnique(nullptr));
    QVERIFY(!route.PrecedingUnique(nullptr));
    AppendLL(route, 1.0, 1.0);
    AppendLL(route, 1.0, 1.0);
    for (ZrListPos* pos : {route.GetHeadPos(), route.GetTailPos()}) {
        QVERIFY(!route.FollowingUnique(pos));
        QVERIFY(!route.PrecedingUnique(pos));
    }
}

void tst_ZrWpts::copies()
{
    ZrWpts route;
    route.prefix = QStringLiteral("Dive");
    route.linked = true;
    route.closed = true;
    route.speedType = 3;
    route.speed = 0.75;
    FillEquator(route);
    At(route, 1)->name = QStringLiteral("Wreck");
    At(route, 1)->q = 123.0;
    const ZrWpts copy(route);
    QCOMPARE(copy.prefix, QStringLiteral("Dive"));
    QCOMPARE(copy.linked, true);
    QCOMPARE(copy.closed, true);
    QCOMPARE(copy.speedType, 3);
    QCOMPARE(copy.speed, 0.75);
    QCOMPARE(copy.GetCount(), 4);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(At(copy, i)->uuid, At(route, i)->uuid);
        QCOMPARE(At(copy, i)->lng, At(route, i)->lng);
        QVERIFY(At(copy, i) != At(route, i));
    }
    // Nothing is recomputed.
    QCOMPARE(At(copy, 1)->name, QStringLiteral("Wreck"));
    QCOMPARE(At(copy, 1)->q, 123.0);
    QCOMPARE(At(copy, 1)->x, 0.0);
}

void tst_ZrWpts::copiesAreTheirOwn()
{
    auto route = std::make_unique<ZrWpts>();
    FillEquator(*route);
    ZrWpts copy(*route);
    copy.GetHead()->lat = 9.0;
    QCOMPARE(route->GetHead()->lat, 0.0);
    route.reset();
    QCOMPARE(copy.GetCount(), 4);
    QCOMPARE(copy.GetHead()->lat, 9.0);
    copy.RemoveAll();
    const ZrWpts ofEmpty(copy);
    QVERIFY(ofEmpty.IsEmpty());
}

void tst_ZrWpts::assignment()
{
    ZrWpts route;
    route.prefix = QStringLiteral("Dive");
    route.speedType = 2;
    FillEquator(route);
    ZrWpts other;
    other.prefix = QStringLiteral("Other");
    other.linked = true;
    AppendLL(other, 3.0, 3.0);
    other = route;
    QCOMPARE(other.prefix, QStringLiteral("Dive"));
    QCOMPARE(other.linked, false);
    QCOMPARE(other.speedType, 2);
    QCOMPARE(other.GetCount(), 4);
    QCOMPARE(At(other, 3)->uuid, At(route, 3)->uuid);
    other = ZrWpts();
    QVERIFY(other.IsEmpty());
    QCOMPARE(other.prefix, QString());
    QCOMPARE(other.speedType, 0);
    QCOMPARE(route.GetCount(), 4);
}

void tst_ZrWpts::assignmentToItself()
{
    ZrWpts route;
    FillEquator(route);
    const QUuid uuid = At(route, 2)->uuid;
    const ZrWpts& same = route;
    route = same;
    QCOMPARE(route.GetCount(), 4);
    QCOMPARE(At(route, 2)->uuid, uuid);
}

QTEST_GUILESS_MAIN(tst_ZrWpts)
#include "tst_ZrWpts.moc"
