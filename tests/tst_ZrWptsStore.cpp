#include "RouteChecks.h"
#include "WptChecks.h"
#include "XmlChecks.h"
#include "ZrUtil/ZrSetApp.h"
#include "ZrUtil/ZrSetModule.h"

#include <QJsonDocument>

#include <algorithm>
#include <cmath>
#include <ctime>

namespace {

const QString setName = QStringLiteral("Route");

QJsonObject Stored(ZrWpts& route)
{
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistStoring, object);
    route.settings(module);
    return object;
}

void Load(ZrWpts& route, QJsonObject object)
{
    zr::ZrSetModule module(zr::ePersistLoading, object);
    route.settings(module);
}

QByteArray Compact(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray FullJson()
{
    return "{" + FullMembers().join(',') + "}";
}

/// The waypoint of every test, with a name of its own.
ZrWpt* AppendFull(ZrWpts& route, const char* name)
{
    auto* wpt = new ZrWpt(FullWpt());
    wpt->name = QString::fromUtf8(name);
    route.AddTail(wpt);
    return wpt;
}

/// The line form of a store with \p route as its only set.
QByteArray Lines(ZrWpts& route)
{
    ZrXmlStore store(true);
    route.SyncXml(*store.Set(setName));
    QByteArray bytes;
    store.Save(bytes);
    return bytes;
}

void LoadLines(ZrWpts& route, QByteArray bytes)
{
    const DebugLines silence;
    ZrXmlStore store(false);
    store.Load(bytes);
    if (ZrXmlSet* set = store.Set(setName))
        route.SyncXml(*set);
}

QStringList Names(const ZrWpts& route)
{
    QStringList names;
    for (const ZrWpt* wpt : Items(route))
        names.append(wpt->name);
    return names;
}

/// Milliseconds of the processor that \p work takes, the shortest of two runs.
template <class Work> double Milliseconds(Work work)
{
    double shortest = HUGE_VAL;
    for (int i = 0; i < 2; ++i) {
        const std::clock_t start = std::clock();
        work();
        shortest = std::min(shortest, 1e3 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    return shortest;
}

/// A route of \p count points a degree around 50° N, 3° W.
void FillMany(ZrWpts& route, int count)
{
    for (int i = 0; i < count; ++i)
        AppendLL(route, 50.0 + 1e-5 * (i % 1000), -3.0 + 1e-5 * i)->r = 10.0;
}

} // namespace

class tst_ZrWptsStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { ResetRouteState(); }

    void cleanup() { ResetRouteState(); }

    void jsonOfAnEmptyRoute();
    void jsonOfWaypoints();
    void jsonLoads();
    void jsonLoadsNoWaypoints_data();
    void jsonLoadsNoWaypoints();
    void jsonMissingKeysLeaveTheFields();
    void jsonElementsThatAreNoObjects();
    void jsonAbsurdValues();
    void jsonWrongKinds();
    void jsonDoesNotRecompute();
    void jsonDoesNotHoldTheSpeedType();
    void jsonNeitherLoadingNorStoring();
    void jsonThroughAFile();
    void jsonAsPartOfMore();
    void jsonDamagedFile();

    void xmlOfAnEmptyRoute();
    void xmlOfOneWaypoint();
    void xmlObjects();
    void xmlLoads();
    void xmlResizes_data();
    void xmlResizes();
    void xmlKeepsWhatTheStoreDoesNotHold();
    void xmlIgnoresNoData();
    void xmlDetachedSetStores();
    void xmlSetWithOtherObjects();
    void xmlThroughAFile();
    void xmlBrokenObjects();

    void manyWaypoints();
};

void tst_ZrWptsStore::jsonOfAnEmptyRoute()
{
    ZrWpts route;
    QCOMPARE(Compact(Stored(route)),
        QByteArray(R"({"FastSpeed":1,"MediumSpeed":0.5,"SlowSpeed":0.25,"closed":false,"linked":false,)"
                   R"("prefix":"","speed":0.5,"waypoints":[]})"));
}

void tst_ZrWptsStore::jsonOfWaypoints()
{
    ZrWpts::s_msSlow = 0.125F;
    ZrWpts::s_msMedium = 0.75F;
    ZrWpts::s_msFast = 2.5F;
    ZrWpts route;
    route.prefix = QString::fromUtf8("Été ");
    route.linked = true;
    route.closed = true;
    route.speedType = 3;
    route.speed = 1.25;
    AppendFull(route, "North end");
    AppendFull(route, "South end");
    QByteArray second = FullJson();
    second.replace("North", "South");
    QCOMPARE(Compact(Stored(route)),
        QByteArray(R"({"FastSpeed":2.5,"MediumSpeed":0.75,"SlowSpeed":0.125,"closed":true,"linked":true,)"
                   "\"prefix\":\"\xC3\x89t\xC3\xA9 \",\"speed\":1.25,\"waypoints\":[")
            + FullJson() + "," + second + "]}");
}

void tst_ZrWptsStore::jsonLoads()
{
    const QByteArray text
        = R"({"FastSpeed":2.5,"MediumSpeed":0.75,"SlowSpeed":0.125,"closed":true,"linked":true,)"
          R"("prefix":"Dive","speed":1.25,"waypoints":[)"
        + FullJson() + "," + R"({"name":"bare"})" + "]}";
    ZrWpts route;
    route.speedType = 2;
    AppendFull(route, "former");
    AppendFull(route, "former");
    AppendFull(route, "former");
    Load(route, QJsonDocument::fromJson(text).object());
    QCOMPARE(route.prefix, QStringLiteral("Dive"));
    QCOMPARE(route.linked, true);
    QCOMPARE(route.closed, true);
    QCOMPARE(route.speed, 1.25);
    QCOMPARE(route.speedType, 2);
    QCOMPARE(ZrWpts::s_msSlow, 0.125F);
    QCOMPARE(ZrWpts::s_msMedium, 0.75F);
    QCOMPARE(ZrWpts::s_msFast, 2.5F);
    QCOMPARE(Names(route), QStringList({QStringLiteral("North end"), QStringLiteral("bare")}));
    QCOMPARE(
        Compact(Stored(route).value(QLatin1String("waypoints")).toArray().first().toObject()), FullJson());
    // What the second does not say is as in a new waypoint, not as in a former one.
    QCOMPARE(At(route, 1)->time, -1.0);
    QCOMPARE(At(route, 1)->flags, 0U);
    QVERIFY(!At(route, 1)->uuid.isNull());
}

void tst_ZrWptsStore::jsonLoadsNoWaypoints_data()
{
    QTest::addColumn<QJsonValue>("waypoints");
    QTest::newRow("empty array") << QJsonValue(QJsonArray());
    QTest::newRow("object") << QJsonValue(QJsonObject{{QStringLiteral("name"), 1}});
    QTest::newRow("text") << QJsonValue(QStringLiteral("[]"));
    QTest::newRow("number") << QJsonValue(2);
    QTest::newRow("true") << QJsonValue(true);
    QTest::newRow("null") << QJsonValue();
}

/// A value of another kind reads as an empty array.
void tst_ZrWptsStore::jsonLoadsNoWaypoints()
{
    QFETCH(QJsonValue, waypoints);
    ZrWpts route;
    AppendFull(route, "former");
    Load(route, {{QStringLiteral("waypoints"), waypoints}});
    QVERIFY(route.IsEmpty());
}

void tst_ZrWptsStore::jsonMissingKeysLeaveTheFields()
{
    ZrWpts route;
    route.prefix = QStringLiteral("Dive");
    route.linked = true;
    route.speed = 3.0;
    ZrWpts::s_msFast = 9.0F;
    const ZrWpt* wpt = AppendFull(route, "kept");
    const QJsonObject before = Stored(route);
    Load(route, {{QStringLiteral("Prefix"), QStringLiteral("x")}});
    QCOMPARE(Stored(route), before);
    QCOMPARE(route.GetHead(), wpt);
}

void tst_ZrWptsStore::jsonElementsThatAreNoObjects()
{
    ZrWpts route;
    Load(route,
        {{QStringLiteral("waypoints"),
            QJsonArray{1, QStringLiteral("x"), QJsonValue(), QJsonArray{1},
                QJsonObject{{QStringLiteral("name"), QStringLiteral("good")}}}}});
    QCOMPARE(route.GetCount(), 5);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(At(route, i)->name, QString());
        QCOMPARE(At(route, i)->time, -1.0);
        QVERIFY(!At(route, i)->uuid.isNull());
    }
    QCOMPARE(At(route, 4)->name, QStringLiteral("good"));
}

/// Whatever the numbers are, the route computes without end and without harm.
void tst_ZrWptsStore::jsonAbsurdValues()
{
    QJsonArray waypoints;
    for (const double value : {1e308, -1e308, 5e-324, 91.0, -1e20, 540.0})
        for (const char* key : {"lat", "long", "r", "speed", "q"})
            waypoints.append(QJsonObject{{QString::fromLatin1(key), value}});
    for (const char* key : {"lat", "long", "r", "speed", "q"})
        waypoints.append(QJsonObject{{QString::fromLatin1(key), QJsonValue()}});
    for (const char* spdType : {"2147483647", "-2147483648", "99999999999", "three"})
        waypoints.append(QJsonObject{{QStringLiteral("speedtype"), QString::fromLatin1(spdType)}});
    ZrWpts route;
    Load(route,
        {{QStringLiteral("waypoints"), waypoints}, {QStringLiteral("speed"), 1e308},
            {QStringLiteral("SlowSpeed"), -1e308},
            {QStringLiteral("prefix"), QString(100000, QLatin1Char('x'))}});
    QCOMPARE(route.GetCount(), waypoints.size());
    QCOMPARE(ZrWpts::s_msSlow, -HUGE_VALF);
    QCOMPARE(route.prefix.size(), 100000);
    route.Recalc(true);
    route.Recalc(false);
    route.UpdatePseudo();
    route.Reverse();
    double box[4] = {};
    QCOMPARE(route.GetArea(box[0], box[1], box[2], box[3], true), waypoints.size());
    ZrWpt* from = nullptr;
    ZrWpt* to = nullptr;
    for (const double value : {0.0, 91.0, 1e308, double(NAN)}) {
        QVERIFY(route.NearestTo(value, value));
        QVERIFY(std::abs(route.LL2Segment(value, value, from, to)) <= 1);
        QVERIFY(route.Add(value, value, eZrWptBlue, ZrWpts::eAddLeg));
    }
    QVERIFY(!(route.CalcRange() < 0.0));
    QVERIFY(std::isnan(route.CalcDuration()) || std::isfinite(route.CalcDuration()));
    // It goes out as it came in, but for what JSON cannot hold.
    ZrWpts again;
    Load(again, QJsonDocument::fromJson(Compact(Stored(route))).object());
    QCOMPARE(again.GetCount(), route.GetCount());
}

void tst_ZrWptsStore::jsonWrongKinds()
{
    ZrWpts route;
    route.prefix = QStringLiteral("Dive");
    route.linked = true;
    Load(route,
        {{QStringLiteral("prefix"), 1}, {QStringLiteral("linked"), QStringLiteral("true")},
            {QStringLiteral("closed"), 1}, {QStringLiteral("speed"), QStringLiteral("2.5")},
            {QStringLiteral("FastSpeed"), QJsonValue()}});
    QCOMPARE(route.prefix, QString());
    QCOMPARE(route.linked, false);
    QCOMPARE(route.closed, false);
    QCOMPARE(route.speed, 0.0);
    QVERIFY(std::isnan(ZrWpts::s_msFast));
}

/// Labels, grid positions and turns are as stored until the next recalculation.
void tst_ZrWptsStore::jsonDoesNotRecompute()
{
    ZrUnits::CalcUTM(10.0, 100.0);
    const double origin = ZrUnits::utm.lngOrigin;
    ZrWpts route;
    Load(route, QJsonDocument::fromJson(R"({"linked":true,"waypoints":[)" + FullJson() + "]}").object());
    QCOMPARE(ZrUnits::utm.lngOrigin, origin);
    QCOMPARE(route.GetHead()->pseudo, QStringLiteral("Wpt: 3"));
    QCOMPARE(route.GetHead()->x, 421000.125);
    QCOMPARE(route.GetHead()->r, -10.5);
    QCOMPARE(route.GetHead()->tp1Q, 100.25);
}

void tst_ZrWptsStore::jsonDoesNotHoldTheSpeedType()
{
    ZrWpts route;
    route.speedType = 3;
    const QJsonObject stored = Stored(route);
    QCOMPARE(stored.size(), 8);
    ZrWpts loaded;
    Load(loaded, stored);
    QCOMPARE(loaded.speedType, 0);
}

void tst_ZrWptsStore::jsonNeitherLoadingNorStoring()
{
    ZrWpts route;
    AppendFull(route, "kept");
    const QJsonObject before = Stored(route);
    QJsonObject object{
        {QStringLiteral("waypoints"), QJsonArray()}, {QStringLiteral("prefix"), QStringLiteral("x")}};
    const QJsonObject unchanged = object;
    zr::ZrSetModule module(static_cast<zr::ePersistMode>(2), object);
    route.settings(module);
    QCOMPARE(Stored(route), before);
    QCOMPARE(object, unchanged);
}

void tst_ZrWptsStore::jsonThroughAFile()
{
    ZrWpts route;
    route.linked = true;
    for (int i = 0; i < 5; ++i)
        AppendGrid(route, {300.0 * i, 200.0 * (i % 2)}, 15.0)->name = QString::fromUtf8("沈 %1").arg(i);
    route.UpdatePseudo();
    route.Recalc(true);
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("route.json"));
    for (const auto format : {zr::ZrSetApp::eFmtIndented, zr::ZrSetApp::eFmtCompact}) {
        zr::ZrSetApp out(zr::ePersistStoring);
        out.synchronise(route);
        QVERIFY(out.save_to_file(path, format));
        zr::ZrSetApp in(zr::ePersistLoading);
        QVERIFY(in.load_from_file(path, format));
        ZrWpts loaded;
        in.synchronise(loaded);
        QCOMPARE(Stored(loaded), Stored(route));
        // Recomputing finds everything as it is.
        loaded.UpdatePseudo();
        loaded.Recalc(true);
        QCOMPARE(Stored(loaded), Stored(route));
    }
}

void tst_ZrWptsStore::jsonAsPartOfMore()
{
    ZrWpts route;
    AppendFull(route, "one");
    QJsonObject object;
    zr::ZrSetModule storing(zr::ePersistStoring, object);
    storing.sub_item(QStringLiteral("route"), route);
    QCOMPARE(object.value(QLatin1String("route")).toObject(), Stored(route));
    ZrWpts loaded;
    zr::ZrSetModule loading(zr::ePersistLoading, object);
    loading.sub_item(QStringLiteral("route"), loaded);
    QCOMPARE(Names(loaded), QStringList{QStringLiteral("one")});
    loading.sub_item(QStringLiteral("missing"), loaded);
    QCOMPARE(Names(loaded), QStringList{QStringLiteral("one")});
}

void tst_ZrWptsStore::jsonDamagedFile()
{
    ZrWpts route;
    AppendFull(route, "kept");
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("route.json"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{\"waypoints\":[" + FullJson().chopped(5));
    file.close();
    zr::ZrSetApp in(zr::ePersistLoading);
    QVERIFY(!in.load_from_file(path, zr::ZrSetApp::eFmtCompact));
    in.synchronise(route);
    QCOMPARE(Names(route), QStringList{QStringLiteral("kept")});
}

void tst_ZrWptsStore::xmlOfAnEmptyRoute()
{
    ZrWpts route;
    QCOMPARE(Lines(route), QByteArray("<SET>=Route\n"));
    // A set without objects is a route without waypoints.
    AppendFull(route, "former");
    LoadLines(route, "<SET>=Route\n");
    QVERIFY(route.IsEmpty());
}

void tst_ZrWptsStore::xmlOfOneWaypoint()
{
    ZrWpts route;
    route.prefix = QStringLiteral("not stored");
    AppendFull(route, "North end");
    QCOMPARE(Lines(route),
        QByteArray("<SET>=Route\n<OBJ>=Wpt 0=Waypoint\n") + FullItems().join(QLatin1Char('\n')).toUtf8()
            + "\n");
}

void tst_ZrWptsStore::xmlObjects()
{
    ZrWpts route;
    for (int i = 0; i < 12; ++i)
        AppendFull(route, "n");
    ZrXmlStore store(true);
    ZrXmlSet* set = store.Set(setName);
    route.SyncXml(*set);
    QCOMPARE(set->GetCount(), 12);
    int i = 0;
    for (ZrListPos* pos = set->GetHeadPos(); pos; ++i) {
        const ZrXmlObj* obj = set->GetNext(pos);
        QCOMPARE(obj->name, QStringLiteral("Wpt %1").arg(i));
        QCOMPARE(obj->type, QStringLiteral("Waypoint"));
        QCOMPARE(obj->set, set);
        QCOMPARE(Items(*obj).size(), FullItems().size());
    }
}

void tst_ZrWptsStore::xmlLoads()
{
    ZrWpts route;
    route.linked = true;
    for (int i = 0; i < 4; ++i) {
        ZrWpt* wpt = AppendGrid(route, {300.0 * i, 200.0 * (i % 2)}, 20.0);
        wpt->name = QString::fromUtf8("沈 %1").arg(i);
        wpt->spdType = i;
    }
    route.UpdatePseudo();
    route.Recalc(true);
    ZrUnits::CalcUTM(10.0, 100.0);
    ZrWpts loaded;
    LoadLines(loaded, Lines(route));
    QCOMPARE(Names(loaded), Names(route));
    QCOMPARE(Labels(loaded), Labels(route));
    QCOMPARE(loaded.linked, false);
    // Recomputed: with all digits, and in the zone of the route.
    QVERIFY(Near(ZrUnits::utm.lngOrigin, -3.0 * 3.141592653589793 / 180.0, 1e-15));
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(At(loaded, i)->uuid, At(route, i)->uuid);
        QCOMPARE(At(loaded, i)->spdType, i);
        QVERIFY(Near(At(loaded, i)->lat, At(route, i)->lat, 1e-10));
        QVERIFY(Near(At(loaded, i)->x, At(route, i)->x, 1e-4));
        QVERIFY(Near(At(loaded, i)->q, At(route, i)->q, 1e-3));
        QVERIFY(Near(At(loaded, i)->rit, At(route, i)->rit, 1e-6));
    }
    QVERIFY(At(loaded, 3)->q > 1000.0);
}

void tst_ZrWptsStore::xmlResizes_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("stored");
    for (const int before : {0, 1, 3, 5})
        for (const int stored : {0, 1, 3, 5})
            QTest::addRow("%d to %d", before, stored) << before << stored;
}

void tst_ZrWptsStore::xmlResizes()
{
    QFETCH(int, before);
    QFETCH(int, stored);
    ZrWpts route;
    for (int i = 0; i < stored; ++i)
        AppendFull(route, qPrintable(QStringLiteral("new %1").arg(i)));
    ZrWpts loaded;
    for (int i = 0; i < before; ++i)
        AppendFull(loaded, "former");
    const QVector<ZrWpt*> former = Items(loaded);
    LoadLines(loaded, Lines(route));
    QCOMPARE(Names(loaded), Names(route));
    // The first ones are loaded over.
    for (int i = 0; i < std::min(before, stored); ++i)
        QCOMPARE(At(loaded, i), former[i]);
}

void tst_ZrWptsStore::xmlKeepsWhatTheStoreDoesNotHold()
{
    ZrWpts route;
    AppendFull(route, "former")->q = 0.0;
    LoadLines(route, "<SET>=Route\n<OBJ>=a=b\nLat=1.5\n<OBJ>=c=b\nLng=2.5\n");
    QCOMPARE(route.GetCount(), 2);
    QCOMPARE(At(route, 0)->name, QStringLiteral("former"));
    QCOMPARE(At(route, 0)->lat, 1.5);
    QCOMPARE(At(route, 0)->lng, -4.5);
    QCOMPARE(At(route, 1)->name, QString());
    QCOMPARE(At(route, 1)->lat, 0.0);
    QCOMPARE(At(route, 1)->lng, 2.5);
}

void tst_ZrWptsStore::xmlIgnoresNoData()
{
    ZrWpts route;
    AppendFull(route, "former");
    LoadLines(route, "<SET>=Route\n<OBJ>=No Data=Waypoint\nName=none\n");
    QVERIFY(route.IsEmpty());
    LoadLines(route,
        "<SET>=Route\n<OBJ>=Wpt 0=Waypoint\nName=a\n<OBJ>=No Data=x\nName=none\n<OBJ>=Wpt "
        "1=Waypoint\nName=b\n");
    QCOMPARE(Names(route), QStringList({QStringLiteral("a"), QStringLiteral("b")}));
}

void tst_ZrWptsStore::xmlDetachedSetStores()
{
    ZrWpts route;
    AppendFull(route, "one");
    AppendFull(route, "two");
    ZrXmlSet set;
    route.SyncXml(set);
    QCOMPARE(set.GetCount(), 2);
    QCOMPARE(set.GetTail()->name, QStringLiteral("Wpt 1"));
    QCOMPARE(route.GetCount(), 2);
}

/// What else a set holds stays in front; objects of the same name are used.
void tst_ZrWptsStore::xmlSetWithOtherObjects()
{
    ZrWpts route;
    AppendFull(route, "one");
    AppendFull(route, "two");
    ZrXmlStore store(true);
    ZrXmlSet* set = store.Set(setName);
    set->AddObj(QStringLiteral("Wpt 1"), QStringLiteral("Other"))
        ->Add(QStringLiteral("K"), QStringLiteral("v"));
    route.SyncXml(*set);
    QCOMPARE(set->GetCount(), 2);
    QCOMPARE(set->GetHead()->name, QStringLiteral("Wpt 1"));
    QCOMPARE(set->GetHead()->type, QStringLiteral("Other"));
    QCOMPARE(Items(*set->GetHead()).size(), FullItems().size() + 1);
    QCOMPARE(set->GetTail()->name, QStringLiteral("Wpt 0"));
}

void tst_ZrWptsStore::xmlThroughAFile()
{
    ZrWpts route;
    AppendFull(route, "North end");
    AppendFull(route, "South \"end\"");
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("route.xml"));
    const DebugLines silence;
    ZrXmlStore out(true);
    route.SyncXml(*out.Set(setName));
    QVERIFY(out.Save(path));
    ZrXmlStore in(false);
    QVERIFY(in.Load(path));
    ZrWpts loaded;
    loaded.SyncXml(*in.Set(setName));
    // A value ends at its first quote.
    QCOMPARE(Names(loaded), QStringList({QStringLiteral("North end"), QStringLiteral("South ")}));
    QCOMPARE(At(loaded, 1)->flags, 4294967295U);
    QVERIFY(!in.Set(QStringLiteral("other")));
}

void tst_ZrWptsStore::xmlBrokenObjects()
{
    ZrWpts route;
    LoadLines(route,
        "<SET>=Route\n<OBJ>=Wpt 0=Waypoint\nLat=\nLng=1e999\nR=-nan\nUUID=\nSpdType=99999999999999999999\n"
        "<OBJ>=Wpt 1=Waypoint\n\n=\nLat=1e308\nX=x\nColour=no colour\n<OBJ>=Wpt "
        "2=Waypoint\nLat=nan\nR=1e300\n"
        "<OBJ>=Wpt 3=Waypoint\nName=last\n");
    QCOMPARE(route.GetCount(), 4);
    QCOMPARE(At(route, 0)->lat, 0.0);
    QVERIFY(At(route, 0)->uuid.isNull());
    QCOMPARE(At(route, 0)->r, 0.0);
    QCOMPARE(At(route, 1)->colour, QColor(255, 255, 0));
    QVERIFY(std::isnan(At(route, 2)->x));
    QCOMPARE(At(route, 3)->name, QStringLiteral("last"));
}

/// Ten times the waypoints cost about ten times as much, not a hundred times: storing, loading, recomputing.
void tst_ZrWptsStore::manyWaypoints()
{
    ZrWpts small;
    FillMany(small, 1000);
    ZrWpts large;
    FillMany(large, 10000);
    large.Recalc(true);
    small.Recalc(true);
    const auto compare = [&small, &large](const char* name, auto work) {
        const double one = Milliseconds([&] { work(small); });
        const double ten = Milliseconds([&] { work(large); });
        qInfo("%s: %.2f ms for 1,000, %.2f ms for 10,000", name, one, ten);
        return ten < 40.0 * one + 5.0;
    };
    QVERIFY(compare("recalculation", [](ZrWpts& route) { route.Recalc(true); }));
    QVERIFY(compare("copy", [](ZrWpts& route) { const ZrWpts copy(route); }));
    QVERIFY(compare("JSON stored", [](ZrWpts& route) { Stored(route); }));
    QVERIFY(compare("store filled", [](ZrWpts& route) {
        ZrXmlStore store(true);
        route.SyncXml(*store.Set(setName));
    }));

    const QJsonObject json[] = {Stored(small), Stored(large)};
    const auto length = [&small](const ZrWpts& route) { return &route == &small ? 0 : 1; };
    QVERIFY(compare("JSON loaded", [&](ZrWpts& route) {
        ZrWpts loaded;
        Load(loaded, json[length(route)]);
    }));
    ZrXmlStore stores[] = {ZrXmlStore(true), ZrXmlStore(true)};
    small.SyncXml(*stores[0].Set(setName));
    large.SyncXml(*stores[1].Set(setName));
    for (ZrXmlStore& store : stores)
        store.storing = false;
    QVERIFY(compare("store read", [&](ZrWpts& route) {
        ZrWpts loaded;
        loaded.SyncXml(*stores[length(route)].Set(setName));
    }));

    ZrWpts loaded;
    Load(loaded, json[1]);
    QCOMPARE(loaded.GetCount(), 10000);
    QCOMPARE(loaded.GetTail()->uuid, large.GetTail()->uuid);
    loaded.SyncXml(*stores[1].Set(setName));
    QCOMPARE(loaded.GetCount(), 10000);
    QCOMPARE(loaded.GetTail()->uuid, large.GetTail()->uuid);
}

QTEST_GUILESS_MAIN(tst_ZrWptsStore)
#include "tst_ZrWptsStore.moc"
