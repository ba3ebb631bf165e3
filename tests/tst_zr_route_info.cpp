// zr route info, check and recalc: what is told about a route.

#include "ZrRouteRun.h"
#include "ZrUtil/ZrSetModule.h"

namespace {

constexpr double millimetre = 1e-3;

/// The codes of the findings of `--json`, with their severities: "error outside-fence 0".
QStringList Findings(const QJsonObject& result)
{
    QStringList found;
    for (const QJsonValue& value : result[S("findings")].toArray()) {
        const QJsonObject finding = value.toObject();
        const QJsonValue index = finding[S("index")];
        found << finding[S("severity")].toString() + QLatin1Char(' ') + finding[S("code")].toString()
                + (index.isNull() ? QString() : QLatin1Char(' ') + QString::number(index.toInt()));
    }
    return found;
}

} // namespace

class tst_zr_route_info : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_folder.Renew();
        QVERIFY(WriteWhole(In(), angle));
    }

    void infoNumbers();
    void infoText();
    void infoHasEveryFieldOfTheWaypoints();
    void infoNamesItsUnits();
    void infoOfMarkers();
    void infoOfOnePoint();
    void infoOfAClosedRoute();
    void infoAcrossTheAntimeridian();
    void infoOfARouteWithoutSpeed();
    void infoOfABadTurn();
    void infoOfWaypointsWithoutPosition();

    void checkOfASoundRoute();
    void checkAgainstAreas_data();
    void checkAgainstAreas();
    void checkOfSeveralAreas();
    void checkText();
    void checkWarningsAreNoErrors();
    void fenceDoesNotChangeTheSpeeds();

    void recalcCountsWhatWasOutOfDate();
    void recalcOfOtherForms();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    QString In() const { return Path("plan äß 1.txt"); }

    QJsonObject Info(const QString& file) const
    {
        const ToolResult result = RunRoute({S("info"), file, S("--json")});
        if (result.code != 0 || !result.err.isEmpty() || result.out.count('\n') != 1)
            qWarning("%s", result.Text().constData());
        return result.Json();
    }

    ToolFolder m_folder;
};

void tst_zr_route_info::infoNumbers()
{
    const QJsonObject info = Info(In());
    QCOMPARE(info[S("path")].toString(), In());
    QCOMPARE(info[S("prefix")].toString(), S("Plan"));
    QCOMPARE(info[S("linked")], QJsonValue(true));
    QCOMPARE(info[S("closed")], QJsonValue(false));
    QCOMPARE(info[S("speed")].toDouble(), 0.5);
    QCOMPARE(info[S("slow_speed")].toDouble(), 0.25);
    QCOMPARE(info[S("medium_speed")].toDouble(), 0.5);
    QCOMPARE(info[S("fast_speed")].toDouble(), 1.0);
    QCOMPARE(info[S("waypoint_count")].toInt(), 3);

    // On the sphere a degree of the equator is as long as one of the meridian.
    QVERIFY(Near(info[S("leg_length")].toDouble(), 2 * sphereLeg, millimetre));
    QVERIFY(Near(info[S("leg_duration")].toDouble(), sphereLeg / 1.0 + sphereLeg / 2.0, millimetre));
    // The turn of a quarter leaves out its radius on either leg. The arc belongs to the leg before it.
    const double first = northLeg - 100.0 + quarter;
    const double second = eastLeg - 100.0;
    QVERIFY(Near(info[S("path_length")].toDouble(), first + second, 0.002));
    QVERIFY(Near(info[S("path_duration")].toDouble(), first / 1.0 + second / 2.0, 0.002));

    const QJsonArray legs = info[S("legs")].toArray();
    QCOMPARE(legs.size(), 2);
    QCOMPARE(legs[0].toObject()[S("speed_type")].toString(), S("fast"));
    QCOMPARE(legs[0].toObject()[S("speed")].toDouble(), 1.0);
    QVERIFY(Near(legs[0].toObject()[S("arc")].toDouble(), quarter, millimetre));
    QVERIFY(Near(legs[0].toObject()[S("direct")].toDouble(), northLeg, millimetre));
    QVERIFY(Near(legs[0].toObject()[S("straight")].toDouble(), northLeg - 100.0, millimetre));
    QCOMPARE(legs[1].toObject()[S("speed_type")].toString(), S("own"));
    QCOMPARE(legs[1].toObject()[S("speed")].toDouble(), 2.0);
    QCOMPARE(legs[1].toObject()[S("from")].toInt(), 1);
    QCOMPARE(legs[1].toObject()[S("to")].toInt(), 2);
    QVERIFY(Near(legs[1].toObject()[S("path_length")].toDouble(), second, 0.002));

    const QJsonArray types = info[S("speed_types")].toArray();
    const QVector<QPair<QString, double>> expected{
        {S("inherited"), 0.0}, {S("slow"), 0.0}, {S("medium"), 0.0}, {S("fast"), first}, {S("own"), second}};
    QCOMPARE(types.size(), expected.size());
    for (int i = 0; i < types.size(); ++i) {
        const QJsonObject type = types[i].toObject();
        QCOMPARE(type[S("speed_type")].toString(), expected[i].first);
        QCOMPARE(type[S("legs")].toInt(), expected[i].second > 0.0 ? 1 : 0);
        QVERIFY(Near(type[S("path_length")].toDouble(), expected[i].second, 0.002));
    }

    const QJsonObject area = info[S("area")].toObject();
    QCOMPARE(area[S("south")].toDouble(), 0.0);
    QCOMPARE(area[S("north")].toDouble(), 0.01);
    QCOMPARE(area[S("west")].toDouble(), 3.0);
    QCOMPARE(area[S("east")].toDouble(), 3.01);
    QVERIFY(Near(area[S("width")].toDouble(), eastLeg, 0.002));
    QVERIFY(Near(area[S("height")].toDouble(), northLeg, 0.002));

    QCOMPARE(info[S("turn_count")].toInt(), 1);
    QCOMPARE(info[S("bad_turn_count")].toInt(), 0);
    const QJsonObject turn = info[S("turns")].toArray()[0].toObject();
    QCOMPARE(turn[S("index")].toInt(), 1);
    QCOMPARE(turn[S("state")].toString(), S("turns"));
    QVERIFY(Near(turn[S("radius")].toDouble(), 100.0, 1e-9));
    QVERIFY(Near(turn[S("reach")].toDouble(), 100.0, millimetre));
    QVERIFY(Near(turn[S("deflection")].toDouble(), -90.0, 1e-3)); // to the right
    QCOMPARE(info[S("finding_count")].toInt(), 0);
    QCOMPARE(info[S("findings")].toArray().size(), 0);
}

void tst_zr_route_info::infoText()
{
    const ToolResult result = RunRoute({S("info"), In(), S("--points")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.err, QByteArray());
    const double first = northLeg - 100.0 + quarter;
    const auto metres = [](double value) { return QString::number(value, 'f', 3) + S(" m"); };
    QStringList lines = result.Lines();
    const QStringList expected{
        S("Route       ") + In(),
        S("Prefix      Plan"),
        S("Kind        an open route"),
        S("Waypoints   3"),
        S("Legs        %1 from point to point, 27 min 47.924 s").arg(metres(2 * sphereLeg)),
    };
    QCOMPARE(lines.mid(0, 5), expected);
    QVERIFY2(lines[5].startsWith(S("Path        2176.0"))
            && lines[5].contains(S(" m over the turn arcs, 27 min 49.")),
        qPrintable(lines[5]));
    QCOMPARE(lines[6], S("Speed       0.5 m/s"));
    QCOMPARE(lines[7], S("Area        latitude 0.0000000 to 0.0100000, longitude 3.0000000 to 3.0100000"));
    QVERIFY(lines[8].startsWith(S("Size        1113.19")));
    QCOMPARE(lines[9], S("Turns       1"));
    QCOMPARE(lines[10], S("Findings    none"));
    QCOMPARE(lines[11], QString());
    QCOMPARE(lines[12].simplified(), S("Speed Legs Path Duration"));
    QVERIFY(lines[13].startsWith(S("fast ")));
    QVERIFY(lines[14].startsWith(S("own ")));
    QCOMPARE(lines[15], QString());
    QCOMPARE(lines[16].simplified(), S("Index Name Latitude Longitude z Radius Turn Speed Path"));
    QCOMPARE(lines[17].simplified(), S("0 A 0.0000000 3.0000000 0 0 none 0 0.000 m"));
    QVERIFY2(lines[18].simplified().startsWith(S("1 Ecke ä 0.0100000 3.0000000 0 100 turns 2 ")),
        qPrintable(lines[18]));
    QVERIFY(Near(lines[18].simplified().section(QLatin1Char(' '), -2, -2).toDouble(), first, 0.002));
    QCOMPARE(lines.size(), 20);
    // Without the list.
    QCOMPARE(RunRoute({S("info"), In()}).Lines(), lines.mid(0, 15));
}

void tst_zr_route_info::infoHasEveryFieldOfTheWaypoints()
{
    ZrWpts route;
    route.linked = true;
    for (int i = 0; i < 3; ++i)
        route.Add(0.01 * i, 3.0 + 0.001 * i * i, eZrWptRed, ZrWpts::eAddTail);
    ZrWpt& wpt = *Items(route)[1];
    wpt.name = S("Wrack ß");
    wpt.r = 50.0;
    wpt.z = -12.5;
    wpt.alt = 3.25;
    wpt.p = 0.5;
    wpt.flags = 4000000000u;
    wpt.viz = 0.5F;
    wpt.bottomA = QLatin1Char('C');
    wpt.veg = true;
    wpt.classD = 7;
    wpt.gridId = QUuid::createUuid();
    route.Recalc(true);
    ZrRouteFile file;
    QVERIFY(file.Write(Path("in.json"), ZrRouteFile::Settings, route));
    const QJsonArray waypoints = Info(Path("in.json"))[S("waypoints")].toArray();
    QCOMPARE(waypoints.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QJsonObject expected;
        zr::ZrSetModule module(zr::ePersistStoring, expected);
        ZrWpt copy = *Items(route)[i];
        ZrWpt::serialise(copy, module);
        QCOMPARE(waypoints[i].toObject().keys(), expected.keys());
        for (const QString& key : expected.keys()) {
            const QJsonValue value = waypoints[i].toObject()[key];
            if (value.isDouble())
                QVERIFY2(Near(value.toDouble(), expected[key].toDouble(), 1e-6), qPrintable(key));
            else
                QVERIFY2(value == expected[key], qPrintable(key));
        }
    }
    QCOMPARE(waypoints[1].toObject()[S("z")].toDouble(), -12.5);
    QVERIFY(waypoints[1].toObject()[S("RIT")].toDouble() < 0.0);
}

void tst_zr_route_info::infoNamesItsUnits()
{
    const QJsonObject info = Info(In());
    const QJsonObject units = info[S("units")].toObject();
    const QVector<QPair<const char*, const char*>> some{{"lat", "degrees"}, {"long", "degrees"}, {"x", "m"},
        {"r", "m"}, {"q", "m"}, {"RIT", "rad"}, {"TP1Q", "m"}, {"speed", "m/s"}, {"path_length", "m"},
        {"leg_length", "m"}, {"path_duration", "s"}, {"leg_duration", "s"}, {"deflection", "degrees"},
        {"width", "m"}, {"time", "s since 1970-01-01T00:00:00Z"}};
    for (const auto& [key, unit] : some)
        QCOMPARE(units[S(key)].toString(), S(unit));

    // Each name stands somewhere, and each number somewhere has a unit or is one of these.
    const QStringList without{S("z"), S("p"), S("rx"), S("rz"), S("burial"), S("viz"), S("ripples"),
        S("current"), S("index"), S("from"), S("to"), S("legs"), S("waypoint_count"), S("turn_count"),
        S("bad_turn_count"), S("finding_count")};
    QSet<QString> met;
    const std::function<void(const QJsonObject&)> walk = [&](const QJsonObject& object) {
        for (auto it = object.begin(); it != object.end(); ++it) {
            met << it.key();
            if (it.key() == S("units"))
                continue;
            if (it.value().isDouble())
                QVERIFY2(units.contains(it.key()) != without.contains(it.key()), qPrintable(it.key()));
            walk(it.value().toObject());
            for (const QJsonValue& value : it.value().toArray())
                walk(value.toObject());
        }
    };
    walk(info);
    for (const QString& key : units.keys())
        QVERIFY2(met.contains(key), qPrintable(key));
}

void tst_zr_route_info::infoOfMarkers()
{
    QVERIFY(WriteWhole(Path("markers.txt"), "0\t3\n0.01\t3\n"));
    const QJsonObject info = Info(Path("markers.txt"));
    QCOMPARE(info[S("linked")], QJsonValue(false));
    QCOMPARE(Findings(info), QStringList{S("info not-linked")});
    QCOMPARE(info[S("waypoints")].toArray()[0].toObject()[S("pseudo")].toString(), S("Mkr: 1"));
    QVERIFY(RunRoute({S("info"), Path("markers.txt")}).out.contains("\nFindings    1 remark\n"));
}

void tst_zr_route_info::infoOfOnePoint()
{
    QVERIFY(WriteWhole(Path("one.txt"), listHead + "A\t-33.5\t151\t0\t0\t0\n"));
    const QJsonObject info = Info(Path("one.txt"));
    QCOMPARE(info[S("waypoint_count")].toInt(), 1);
    QCOMPARE(info[S("path_length")].toDouble(-1.0), 0.0);
    QCOMPARE(info[S("leg_length")].toDouble(-1.0), 0.0);
    QCOMPARE(info[S("legs")].toArray().size(), 0);
    QCOMPARE(info[S("area")].toObject()[S("south")].toDouble(), -33.5);
    QCOMPARE(info[S("area")].toObject()[S("width")].toDouble(-1.0), 0.0);
    QVERIFY(Findings(info).join(QLatin1Char(' ')).contains(S("single-point")));
    const ToolResult text = RunRoute({S("info"), Path("one.txt"), S("--points")});
    QCOMPARE(text.code, 0);
    QVERIFY2(text.out.contains("\n    0  A     -33.5000000  151.0000000"), text.Text());
}

void tst_zr_route_info::infoOfAClosedRoute()
{
    QByteArray closed = angle;
    closed.replace("\"linked\": true", "\"linked\": true, \"closed\": true");
    QVERIFY(WriteWhole(Path("closed.txt"), closed));
    const QJsonObject info = Info(Path("closed.txt"));
    QCOMPARE(info[S("closed")], QJsonValue(true));
    // The closing leg is on the path, and not among the legs that applications count.
    QCOMPARE(info[S("legs")].toArray().size(), 3);
    QVERIFY(Near(info[S("leg_length")].toDouble(), 2 * sphereLeg, millimetre));
    const double open = northLeg - 100.0 + quarter + eastLeg - 100.0;
    QVERIFY(Near(info[S("path_length")].toDouble(), open + std::hypot(northLeg, eastLeg), 0.005));
}

void tst_zr_route_info::infoAcrossTheAntimeridian()
{
    QVERIFY(WriteWhole(Path("far.txt"), listHead + "A\t0\t179.995\t0\t0\t0\nB\t0\t-179.995\t0\t0\t0\n"));
    const QJsonObject info = Info(Path("far.txt"));
    QVERIFY(Near(info[S("path_length")].toDouble(), eastLeg, 0.002));
    QVERIFY(Near(info[S("area")].toObject()[S("width")].toDouble(), eastLeg, 0.002));
    QCOMPARE(Findings(info), QStringList{S("warning antimeridian-crossed 0")});
}

void tst_zr_route_info::infoOfARouteWithoutSpeed()
{
    QByteArray still = angle;
    still.replace("\"speed\": 0.5", "\"speed\": 0").replace("3\t0\t3\t0\n", "3\t0\t0\t0\n");
    QVERIFY(WriteWhole(Path("still.txt"), still));
    const QJsonObject info = Info(Path("still.txt"));
    QCOMPARE(info[S("speed")].toDouble(-1.0), 0.0);
    QVERIFY(info[S("leg_duration")].isNull());
    QVERIFY(info[S("path_duration")].isNull());
    QVERIFY(info[S("path_length")].toDouble() > 2000.0);
    QVERIFY(info[S("finding_count")].toInt() > 0);
    const ToolResult text = RunRoute({S("info"), Path("still.txt")});
    QCOMPARE(text.code, 0);
    QVERIFY2(text.out.contains(" m over the turn arcs, -\n"), text.Text());
}

void tst_zr_route_info::infoOfABadTurn()
{
    QByteArray tight = angle;
    tight.replace("\t100\t", "\t1110\t");
    QVERIFY(WriteWhole(Path("tight.txt"), tight));
    // A quarter of radius 1,110 m needs 1,110 m of the first leg, which is 1,105.7 m long.
    const QJsonObject info = Info(Path("tight.txt"));
    QCOMPARE(info[S("turn_count")].toInt(), 0);
    QCOMPARE(info[S("bad_turn_count")].toInt(), 1);
    QCOMPARE(info[S("turns")].toArray()[0].toObject()[S("state")].toString(), S("beyond-leg"));
    QCOMPARE(Findings(info), QStringList{S("error turn-beyond-leg 1")});
    const ToolResult text = RunRoute({S("info"), Path("tight.txt")});
    QVERIFY2(text.out.contains("\nTurns       0, and 1 that cannot be run\n"), text.Text());
    QVERIFY2(text.out.contains("\nFindings    1 error\n"), text.Text());
    QCOMPARE(text.code, 0);
}

void tst_zr_route_info::infoOfWaypointsWithoutPosition()
{
    QVERIFY(WriteWhole(Path("nan.json"),
        "{\"linked\": true, \"waypoints\": [{\"name\": \"A\", \"lat\": null, \"long\": 3}, {\"lat\": 0, "
        "\"long\": 3}, {\"lat\": 1e300, \"long\": 3}]}"));
    const QJsonObject info = Info(Path("nan.json"));
    QVERIFY(info[S("path_length")].isNull());
    QVERIFY(info[S("waypoints")].toArray()[0].toObject()[S("lat")].isNull());
    QVERIFY(Findings(info).contains(S("error no-position 0")));
    QVERIFY(Findings(info).contains(S("error position-out-of-range 2")));
    QCOMPARE(RunRoute({S("info"), Path("nan.json"), S("--points")}).code, 0);
    // Only the forms for applications can hold it.
    for (const char* form : {"gpx", "kml", "geojson", "list"}) {
        const ToolResult refused
            = RunRoute({S("convert"), Path("nan.json"), Path("out"), S("--to"), S(form)});
        QVERIFY2(refused.code == 2, refused.Text());
        QVERIFY2(
            QString::fromUtf8(refused.err).startsWith(S("zr: %1: waypoint 1 (A): latitude").arg(Path("out"))),
            refused.Text());
        QVERIFY(!QFile::exists(Path("out")));
    }
    QCOMPARE(RunRoute({S("convert"), Path("nan.json"), Path("out.json")}).code, 0);
    QVERIFY(Info(Path("out.json"))[S("waypoints")].toArray()[0].toObject()[S("lat")].isNull());
}

void tst_zr_route_info::checkOfASoundRoute()
{
    const ToolResult text = RunRoute({S("check"), In()});
    QCOMPARE(text.code, 0);
    QCOMPARE(text.err, QByteArray());
    QCOMPARE(
        text.Lines(), QStringList{S("%1: 3 waypoints, 0 fences, 0 no-go areas, findings: none").arg(In())});
    const QJsonObject json = RunRoute({S("check"), In(), S("--json")}).Json();
    QCOMPARE(json[S("path")].toString(), In());
    QCOMPARE(json[S("waypoints")].toInt(), 3);
    for (const char* key : {"fences", "no_go", "margin", "errors", "warnings", "remarks"})
        QVERIFY2(json[S(key)].isDouble() && json[S(key)].toInt() == 0, key);
    QVERIFY(json[S("findings")].isArray());
}

void tst_zr_route_info::checkAgainstAreas_data()
{
    QTest::addColumn<QByteArray>("area");
    QTest::addColumn<bool>("isFence");
    QTest::addColumn<QString>("margin");
    QTest::addColumn<QStringList>("expected");
    // The route runs on the west and north sides of this square of 0.01 degrees, some 1.1 km.
    const QByteArray wide = Rectangle("wide", -0.001, 2.999, 0.011, 3.011);
    const QByteArray corner = Rectangle("corner", 0.0099, 2.9999, 0.0101, 3.0001);
    const QByteArray north = Rectangle("north", 0.004, 2.999, 0.006, 3.001);
    QTest::newRow("inside the fence") << wide << true << S("0") << QStringList{};
    // The route keeps 0.001 degrees, 110.6 m, from the fence; 111.3 m at its east and west sides.
    QTest::newRow("inside the fence by 110 m") << wide << true << S("110") << QStringList{};
    QTest::newRow("not by 112 m") << wide << true << S("112")
                                  << QStringList{S("error near-fence 0"), S("error near-fence 1")};
    QTest::newRow("leaves the fence")
        << north << true << S("0") << QStringList{S("error outside-fence 0"), S("error outside-fence 1")};
    QTest::newRow("through a no-go area") << north << false << S("0") << QStringList{S("error in-no-go 0")};
    // The arc cuts the corner by 41 m, where the square reaches 11 m: waypoints are not run over.
    QTest::newRow("round the corner") << corner << false << S("0") << QStringList{};
    QTest::newRow("beside a no-go area")
        << Rectangle("near", 0.004, 2.9985, 0.006, 2.9995) << false << S("50") << QStringList{};
    QTest::newRow("too near to it") << Rectangle("near", 0.004, 2.9985, 0.006, 2.9995) << false << S("60")
                                    << QStringList{S("error near-no-go 0")};
}

void tst_zr_route_info::checkAgainstAreas()
{
    QFETCH(QByteArray, area);
    QFETCH(bool, isFence);
    QFETCH(QString, margin);
    QFETCH(QStringList, expected);
    QVERIFY(WriteWhole(Path("Gebiet, ö.geojson"), Collection({area})));
    const ToolResult result = RunRoute({S("check"), In(), isFence ? S("--fence") : S("--no-go"),
        Path("Gebiet, ö.geojson"), S("--margin"), margin, S("--json")});
    const QJsonObject json = result.Json();
    QStringList found = Findings(json);
    found.removeDuplicates();
    QCOMPARE(found, expected);
    QCOMPARE(result.code, expected.isEmpty() ? 0 : 2);
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(json[S("fences")].toInt(), isFence ? 1 : 0);
    QCOMPARE(json[S("no_go")].toInt(), isFence ? 0 : 1);
    QCOMPARE(json[S("margin")].toDouble(), margin.toDouble());
    QCOMPARE(json[S("errors")].toInt(), json[S("findings")].toArray().size());
    for (const QJsonValue& value : json[S("findings")].toArray()) {
        const QJsonObject finding = value.toObject();
        QVERIFY(!finding[S("text")].toString().isEmpty());
        QVERIFY(finding[S("lat")].isDouble() && finding[S("long")].isDouble());
        QVERIFY(!QUuid(finding[S("uuid")].toString()).isNull());
    }
}

void tst_zr_route_info::checkOfSeveralAreas()
{
    QVERIFY(WriteWhole(Path("a.geojson"),
        Collection(
            {Rectangle("one", 0.004, 2.999, 0.006, 3.001), Rectangle("two", 0.009, 3.004, 0.011, 3.006)})));
    QVERIFY(WriteWhole(Path("b.geojson"), Collection({Rectangle("sea", -1, 2, 1, 4)})));
    QVERIFY(WriteWhole(Path("c.geojson"), Collection({Rectangle("bay", -0.1, 2.9, 0.1, 3.1)})));
    const ToolResult result = RunRoute({S("check"), In(), S("--no-go"), Path("a.geojson"), S("--fence"),
        Path("b.geojson"), S("--fence"), Path("c.geojson"), S("--json")});
    QCOMPARE(result.code, 2);
    const QJsonObject json = result.Json();
    QCOMPARE(json[S("fences")].toInt(), 2);
    QCOMPARE(json[S("no_go")].toInt(), 2);
    QCOMPARE(Findings(json), (QStringList{S("error in-no-go 0"), S("error in-no-go 1")}));
    const QJsonArray findings = json[S("findings")].toArray();
    QVERIFY(findings[0].toObject()[S("text")].toString().contains(S("one")));
    QVERIFY(findings[1].toObject()[S("text")].toString().contains(S("two")));
}

void tst_zr_route_info::checkText()
{
    QVERIFY(WriteWhole(Path("a.geojson"), Collection({Rectangle("Riff", 0.009, 3.004, 0.011, 3.006)})));
    const ToolResult result = RunRoute({S("check"), In(), S("--no-go"), Path("a.geojson")});
    QCOMPARE(result.code, 2);
    QCOMPARE(result.err, QByteArray());
    const QStringList lines = result.Lines();
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines[0].simplified(), S("Severity Code Waypoint Finding"));
    QVERIFY2(lines[1].simplified().startsWith(S("error in-no-go 1 Ecke ä ")), qPrintable(lines[1]));
    QVERIFY(lines[1].contains(S("\"Riff\"")));
    QCOMPARE(lines[2], S("%1: 3 waypoints, 0 fences, 1 no-go area, findings: 1 error").arg(In()));
}

void tst_zr_route_info::checkWarningsAreNoErrors()
{
    QVERIFY(WriteWhole(Path("zone.txt"), listHead + "A\t50\t5.999\t0\t0\t0\nB\t50\t6.001\t0\t0\t0\n"));
    const ToolResult result = RunRoute({S("check"), Path("zone.txt"), S("--json")});
    QCOMPARE(result.code, 0);
    QCOMPARE(Findings(result.Json()), QStringList{S("warning zone-crossed 0")});
    QCOMPARE(result.Json()[S("warnings")].toInt(), 1);
    QCOMPARE(result.Json()[S("errors")].toInt(), 0);
}

void tst_zr_route_info::fenceDoesNotChangeTheSpeeds()
{
    // A settings file brings the presets of the process along: those of the route count.
    const QByteArray head = "{\"linked\": true, \"FastSpeed\": ";
    const QByteArray points
        = ", \"waypoints\": [{\"lat\": 0, \"long\": 3, \"speedtype\": \"3\"}, {\"lat\": 0.01, "
          "\"long\": 3}, {\"lat\": 0.01, \"long\": 3.01}]}";
    QVERIFY(WriteWhole(Path("good.json"), head + "1.5" + points));
    QVERIFY(WriteWhole(Path("bad.json"), head + "0" + points));
    const ToolResult good
        = RunRoute({S("check"), Path("good.json"), S("--no-go"), Path("bad.json"), S("--json")});
    QVERIFY2(!Findings(good.Json()).contains(S("error bad-speed 0")), good.Text());
    const ToolResult bad
        = RunRoute({S("check"), Path("bad.json"), S("--no-go"), Path("good.json"), S("--json")});
    QVERIFY2(Findings(bad.Json()).contains(S("error bad-speed 0")), bad.Text());
}

void tst_zr_route_info::recalcCountsWhatWasOutOfDate()
{
    const QString first = Path("first.json");
    QCOMPARE(RunRoute({S("recalc"), In(), first}).code, 0);
    const ToolResult same = RunRoute({S("recalc"), first, Path("same.json"), S("--json")});
    QCOMPARE(same.code, 0);
    QCOMPARE(same.Json()[S("stale")].toInt(-1), 0);
    QCOMPARE(ReadWhole(Path("same.json")), ReadWhole(first));
    QVERIFY(Near(same.Json()[S("path_length")].toDouble(), northLeg + eastLeg - 200.0 + quarter, 0.002));
    QCOMPARE(same.Json()[S("waypoints")].toInt(), 3);

    // A waypoint moved by a script: its grid position, turn and distance, and the distance behind it.
    QJsonObject root = QJsonDocument::fromJson(ReadWhole(first)).object();
    QJsonArray waypoints = root[S("waypoints")].toArray();
    QJsonObject corner = waypoints[1].toObject();
    corner[S("lat")] = 0.0101;
    waypoints[1] = corner;
    root[S("waypoints")] = waypoints;
    QVERIFY(WriteWhole(Path("edited.json"), QJsonDocument(root).toJson()));
    const ToolResult edited = RunRoute({S("recalc"), Path("edited.json"), Path("out.json")});
    QCOMPARE(edited.code, 0);
    QCOMPARE(edited.err, QByteArray());
    QVERIFY2(edited.out.endsWith("\nChanged     2 waypoints were out of date\n"), edited.Text());
    QVERIFY2(edited.out.startsWith("Written     " + Path("out.json").toUtf8() + ": 3 waypoints, settings, "),
        edited.Text());
    const ZrWpts route = ReadRoute(Path("out.json"));
    const ZrWpts before = ReadRoute(first);
    // 0.0001 degrees of the meridian, at the scale of the grid.
    QVERIFY(Near(Items(route)[1]->y - Items(before)[1]->y, northLeg / 100.0 * 0.9996, millimetre));
    QVERIFY(RunRoute({S("recalc"), Path("out.json"), Path("again.json")})
                .out.endsWith("\nChanged     nothing was out of date\n"));
}

void tst_zr_route_info::recalcOfOtherForms()
{
    const ToolResult result = RunRoute({S("recalc"), In(), Path("out.gpx"), S("--json")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.Json()[S("form")].toString(), S("gpx"));
    QVERIFY(result.Json().contains(S("stale")) && result.Json()[S("stale")].isNull());
    QVERIFY(RunRoute({S("recalc"), Path("out.gpx"), Path("out.kml")})
                .out.endsWith("\nChanged     the form of IN holds no computed values\n"));
    QCOMPARE(WptNames(ReadRoute(Path("out.kml"))), (QStringList{S("A"), S("Ecke ä"), S("C")}));
}

QTEST_GUILESS_MAIN(tst_zr_route_info)
#include "tst_zr_route_info.moc"
