// GeoJSON as GIS programs write it, what ours looks like, and what the JSON module of python3 reads in it.

#include "RouteFileChecks.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteGeoJson.h"

#include <QJsonDocument>
#include <QTemporaryDir>

namespace {

bool Read(const QByteArray& bytes, ZrGeoShapes& shapes, QString& error)
{
    return ZrRouteGeoJson::Read(QJsonDocument::fromJson(bytes).object(), bytes, shapes, error);
}

QByteArray Collection(const QByteArray& features)
{
    return "{\"type\": \"FeatureCollection\",\n\"features\": [\n" + features + "\n]}\n";
}

QByteArray Feature(
    const QByteArray& type, const QByteArray& coordinates, const QByteArray& properties = "null")
{
    return "{\"type\": \"Feature\", \"properties\": " + properties + ", \"geometry\": {\"type\": \"" + type
        + "\", \"coordinates\": " + coordinates + "}}";
}

QStringList Text(const ZrGeoShapes& shapes)
{
    QStringList all;
    const auto at
        = [](const ZrGeoPoint& point) { return QStringLiteral(" %1 %2").arg(point.lat).arg(point.lng); };
    for (const ZrShapePoint& point : shapes.points)
        all << QStringLiteral("point ") + point.name + at(point.position);
    for (const ZrShapeLine& line : shapes.lines) {
        all << QStringLiteral("line ") + line.name;
        for (const ZrShapePoint& point : line.points)
            all.last() += at(point.position);
    }
    for (const ZrArea& area : shapes.areas) {
        all << QStringLiteral("area ") + area.name;
        for (const ZrGeoPoint& point : area.ring)
            all.last() += at(point);
    }
    return all;
}

} // namespace

class tst_ZrRouteGeoJson : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pythonReads();
    void line_data();
    void line();
    void geometries_data();
    void geometries();
    void names_data();
    void names();
    void properties();
    void foreignRouteMember();
    void lineOfAnotherMaker();
    void errors_data();
    void errors();
};

void tst_ZrRouteGeoJson::pythonReads()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("route.geojson"));
    ZrWpts route;
    route.linked = true;
    route.closed = true;
    route.prefix = QStringLiteral("Survey \u00E4");
    Append(route, At(50.123456789012, -4.765432109876, QStringLiteral("Wreck \"\u00E4\" <&>\t\U0001F41F")));
    ZrWpt second = At(-50.5, 180.0);
    second.r = 12.5;
    second.spdType = 2;
    second.atWpt = true;
    second.alt = std::numeric_limits<double>::quiet_NaN();
    Append(route, second);
    route.UpdatePseudo();
    ZrRouteFile file;
    QVERIFY(file.Write(path, ZrRouteFile::GeoJson, route));
    const QString script = QStringLiteral(R"(
import json, sys
data = json.load(open(sys.argv[1], encoding="utf-8"))
assert sorted(data) == ["features", "route", "type"] and data["type"] == "FeatureCollection"
assert data["route"] == {"prefix": "Survey \u00e4", "linked": True, "closed": True, "speed": 0.5}
line, first, second = data["features"]
assert all(sorted(f) == ["geometry", "properties", "type"] and f["type"] == "Feature" for f in data["features"])
a, b = [-4.765432109876, 50.123456789012], [180, -50.5]
assert line["geometry"] == {"type": "LineString", "coordinates": [a, b, a]}
assert line["properties"] == {"name": "Survey \u00e4"}
assert first["geometry"] == {"type": "Point", "coordinates": a}
assert second["geometry"] == {"type": "Point", "coordinates": b}
name = "Wreck \"\u00e4\" <&>\t\U0001F41F"
assert len(first["properties"].pop("UUID")) == 38
assert first["properties"] == {"name": name, "label": name}
assert second["properties"].pop("UUID")
assert second["properties"] == {"label": "Wpt: 1", "r": 12.5, "speedtype": "2", "at wpt": True, "alt": None}
print("read")
)");
    QCOMPARE(OutputOf(QStringLiteral("python3"), {QStringLiteral("-c"), script, path}), QByteArray("read\n"));
}

void tst_ZrRouteGeoJson::line_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("linked");
    QTest::addColumn<int>("lines");
    QTest::newRow("markers") << 3 << false << 0;
    QTest::newRow("route") << 3 << true << 1;
    QTest::newRow("one point") << 1 << true << 0; // a line needs two
    QTest::newRow("empty") << 0 << true << 0;
}

void tst_ZrRouteGeoJson::line()
{
    QFETCH(int, count);
    QFETCH(bool, linked);
    QFETCH(int, lines);
    const QByteArray json = ZrRouteGeoJson::Write(RandomRoute(count, 1, linked, true));
    QCOMPARE(json.count("LineString"), lines);
    QCOMPARE(json.count("\"Point\""), count);
}

void tst_ZrRouteGeoJson::geometries_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("shapes");
    QTest::addColumn<QStringList>("warnings");
    const auto row = [](const char* tag, const QByteArray& bytes, const QStringList& shapes,
                         const QStringList& warnings = QStringList()) {
        QTest::newRow(tag) << bytes << shapes << warnings;
    };
    const auto one = [](const char* text) { return QStringList{QString::fromUtf8(text)}; };
    row("point with depth", Collection(Feature("Point", "[1, 2, -30]")), one("point  2 1"));
    row("points", Collection(Feature("MultiPoint", "[[1, 2], [3, 4]]", "{\"name\": \"m\"}")),
        {QStringLiteral("point m 2 1"), QStringLiteral("point m 4 3")});
    row("line", Collection(Feature("LineString", "[[1, 2], [3, 4]]", "{\"name\": \"l\"}")),
        one("line l 2 1 4 3"));
    row("lines", Collection(Feature("MultiLineString", "[[[1, 2], [3, 4]], [], [[5, 6], [7, 8]]]")),
        {QStringLiteral("line  2 1 4 3"), QStringLiteral("line  6 5 8 7")});
    row("polygon with holes",
        Collection(Feature("Point", "[1, 2]") + ",\n"
            + Feature("Polygon", "[[[0, 0], [9, 0], [9, 9], [0, 0]], [[1, 1], [2, 1], [2, 2], [1, 1]]]",
                "{\"name\": \"p\"}")),
        {QStringLiteral("point  2 1"), QStringLiteral("area p 0 0 0 9 9 9")},
        one("line 4: feature 2: the holes of a polygon were left out"));
    row("polygons",
        Collection(
            Feature("MultiPolygon", "[[[[0, 0], [9, 0], [9, 9], [0, 0]]], [], [[[1, 1], [2, 1], [2, 2]]]]")),
        {QStringLiteral("area  0 0 0 9 9 9"), QStringLiteral("area  1 1 1 2 2 2")});
    row("collection",
        "{\"type\": \"GeometryCollection\", \"geometries\": [{\"type\": \"Point\", \"coordinates\": [1, 2]}, "
        "{\"type\": \"GeometryCollection\", \"geometries\": [{\"type\": \"LineString\", \"coordinates\": "
        "[[1, 2], [3, 4]]}]}]}",
        {QStringLiteral("point  2 1"), QStringLiteral("line  2 1 4 3")});
    row("feature alone", Feature("Point", "[1, 2]", "{\"name\": \"f\"}"), one("point f 2 1"));
    row("geometry alone", "{\"type\": \"Point\", \"coordinates\": [1, 2]}", one("point  2 1"));
    row("feature without a place",
        Collection("{\"type\": \"Feature\", \"geometry\": null, \"properties\": {}}"), QStringList());
    row("no features", Collection(""), QStringList());
    row("other members",
        "{\"type\": \"FeatureCollection\", \"crs\": {\"type\": \"name\"}, \"bbox\": [0, 0, 1, 1], "
        "\"waypoints\": [], \"features\": ["
            + Feature("Point", "[1, 2]") + "]}",
        one("point  2 1"));
}

void tst_ZrRouteGeoJson::geometries()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, shapes);
    QFETCH(QStringList, warnings);
    ZrGeoShapes found;
    QString error;
    QVERIFY2(Read(bytes, found, error), qPrintable(error));
    QCOMPARE(Text(found), shapes);
    QCOMPARE(found.warnings, warnings);
    // Through the file: what is GeoJSON is not taken for settings.
    ZrWpts route;
    const QString reason = FromBytes(bytes, route);
    QVERIFY2(reason.isEmpty() || (found.points.empty() && found.lines.empty()), qPrintable(reason));
}

void tst_ZrRouteGeoJson::names_data()
{
    QTest::addColumn<QByteArray>("properties");
    QTest::addColumn<QString>("name");
    QTest::newRow("name") << QByteArray("{\"name\": \"a\", \"Name\": \"b\", \"label\": \"c\"}")
                          << QStringLiteral("a");
    QTest::newRow("Name") << QByteArray("{\"Name\": \"b\", \"title\": \"c\"}") << QStringLiteral("b");
    QTest::newRow("title") << QByteArray("{\"title\": \"c\"}") << QStringLiteral("c");
    QTest::newRow("number") << QByteArray("{\"name\": 12}") << QStringLiteral("12");
    QTest::newRow("null") << QByteArray("{\"name\": null, \"Name\": \"b\"}") << QStringLiteral("b");
    QTest::newRow("object") << QByteArray("{\"name\": {\"en\": \"x\"}}") << QString();
    QTest::newRow("empty") << QByteArray("{\"name\": \"\", \"title\": \"x\"}") << QString();
    QTest::newRow("none") << QByteArray("{}") << QString();
    QTest::newRow("no properties") << QByteArray("null") << QString();
}

void tst_ZrRouteGeoJson::names()
{
    QFETCH(QByteArray, properties);
    QFETCH(QString, name);
    ZrWpts route;
    QCOMPARE(FromBytes(Collection(Feature("Point", "[1, 2]", properties)), route), QString());
    QCOMPARE(NthOf(route, 0).name, name);
}

/// Properties of another kind than our fields are another maker's; integers may be numbers.
void tst_ZrRouteGeoJson::properties()
{
    const auto fields = [](const char* json) {
        ZrGeoShapes shapes;
        QString error;
        return Read(Collection(Feature("Point", "[1, 2]", json)), shapes, error) ? shapes.points[0].fields
                                                                                 : QJsonObject();
    };
    const auto kept = [](const char* key, const QJsonValue& value) {
        return QJsonObject{{QLatin1String(key), value}};
    };
    QCOMPARE(fields("{\"speedtype\": 2}"), kept("speedtype", QStringLiteral("2")));
    QCOMPARE(fields("{\"speedtype\": \" 2\"}"), kept("speedtype", QStringLiteral("2")));
    QCOMPARE(fields("{\"r\": \"12.5\"}"), kept("r", 12.5));
    QCOMPARE(fields("{\"r\": null}"), kept("r", QJsonValue()));
    QCOMPARE(fields("{\"at wpt\": true}"), kept("at wpt", true));
    QCOMPARE(fields("{\"at wpt\": \"true\"}"), kept("at wpt", true));
    QCOMPARE(fields("{\"colour\": \"FF00aa11\"}"), kept("colour", QStringLiteral("ff00aa11")));
    QCOMPARE(fields("{\"flags\": \"4294967295\"}"), kept("flags", QStringLiteral("4294967295")));
    QCOMPARE(fields("{\"bottomN\": -5}"), kept("bottomN", QStringLiteral("-5")));
    QCOMPARE(fields("{\"GridId\": \"{00000000-0000-0000-0000-000000000000}\"}"),
        kept("GridId", QStringLiteral("{00000000-0000-0000-0000-000000000000}")));
    for (const char* other : {"{\"speedtype\": \"slow\"}", "{\"speedtype\": 1.5}", "{\"speedtype\": 1e300}",
             "{\"speedtype\": true}", "{\"type\": 256}", "{\"type\": -1}", "{\"flags\": 4294967296}",
             "{\"r\": \"wide\"}", "{\"r\": [1]}", "{\"at wpt\": 1}", "{\"at wpt\": \"yes\"}",
             "{\"colour\": \"red\"}", "{\"colour\": \"#ff0000\"}", "{\"colour\": \"-f00aa11\"}",
             "{\"UUID\": 7}", "{\"UUID\": \"x\"}", "{\"filename\": null}", "{\"lat\": 5}", "{\"q\": 5}",
             "{\"pseudo\": \"x\"}", "{\"depth\": 5}"})
        QVERIFY2(fields(other).isEmpty(), other);
}

void tst_ZrRouteGeoJson::foreignRouteMember()
{
    for (const char* member :
        {"\"A7\"", "null", "[1]", "{\"speed\": \"fast\", \"closed\": 1, \"prefix\": null, \"linked\": {}}"}) {
        ZrWpts route;
        QCOMPARE(FromBytes(QByteArray("{\"type\": \"FeatureCollection\", \"route\": ") + member
                         + ", \"features\": [" + Feature("Point", "[1, 2]") + "]}",
                     route),
            QString());
        QCOMPARE(route.speed, 0.5);
        QVERIFY(!route.linked && !route.closed && route.prefix.isEmpty());
    }
}

void tst_ZrRouteGeoJson::lineOfAnotherMaker()
{
    ZrWpts route;
    QStringList warnings;
    QCOMPARE(FromBytes(Collection(Feature("Point", "[1, 2]") + ","
                           + Feature("LineString", "[[5, 6, 1], [7, 8, 2]]", "{\"Name\": \"L\"}") + ","
                           + Feature("LineString", "[[5, 6], [7, 9]]") + ","
                           + Feature("Polygon", "[[[0, 0], [1, 0], [1, 1], [0, 0]]]")),
                 route, &warnings),
        QString());
    QCOMPARE(Summary(route), (QStringList{QStringLiteral("6 5"), QStringLiteral("8 7")}));
    QVERIFY(route.linked);
    QCOMPARE(route.prefix, QStringLiteral("L"));
    QCOMPARE(warnings,
        (QStringList{QStringLiteral("of 2 routes and lines the first was taken"),
            QStringLiteral("points beside the line were left out: 1"),
            QStringLiteral("areas were left out: 1")}));
}

void tst_ZrRouteGeoJson::errors_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* tag, const QByteArray& bytes, const char* error) {
        QTest::newRow(tag) << bytes << QString::fromUtf8(error);
    };
    const QByteArray good = Feature("Point", "[1, 2]", "{\"name\": \"],[{\\\"\"}") + ",\n\n";
    const char* position = "line 5: feature 2: a position must be a list of longitude and latitude";
    row("one number", Collection(good + Feature("Point", "[1]")), position);
    row("text", Collection(good + Feature("Point", "[\"1\", 2]")), position);
    row("null", Collection(good + Feature("LineString", "[[1, 2], null]")), position);
    row("flat polygon", Collection(good + Feature("Polygon", "[[1, 2], [3, 4]]")), position);
    row("latitude", Collection(good + Feature("LineString", "[[1, 2], [1, 95]]")),
        "line 5: feature 2: latitude 95 is not within 90 degrees of the equator");
    row("projected", Collection(Feature("Point", "[432000.5, 5540000]")),
        "line 3: feature 1: latitude 5.54e+06 is not within 90 degrees of the equator");
    row("longitude", Collection(Feature("Point", "[190, 5]")),
        "line 3: feature 1: longitude 190 is not within 180 degrees of Greenwich");
    row("type", Collection(good + Feature("Circle", "[1, 2]")),
        "line 5: feature 2: \"Circle\" is no type of GeoJSON geometry");
    row("no geometry", Collection("{\"type\": \"Feature\"}"), "line 3: feature 1: not GeoJSON: no \"type\"");
    row("no feature", Collection("{\"type\": \"Point\", \"coordinates\": [1, 2]}"),
        "line 3: feature 1: not a GeoJSON feature");
    row("number", Collection(good + "5"), "line 5: feature 2: not a GeoJSON feature");
    row("no list", "{\"type\": \"FeatureCollection\", \"features\": {}}",
        "not GeoJSON: \"features\" is no list");
    row("features inside",
        "{\"type\": \"FeatureCollection\", \"x\": {\"features\": [1]},\n \"y\": [[]], \"features\": [\n7]}",
        "line 3: feature 1: not a GeoJSON feature");
    row("topology", "{\"type\": \"Topology\"}", "\"Topology\" is no type of GeoJSON geometry");
    row("alone", "{\"type\": \"Point\", \"coordinates\": [1, 91]}",
        "latitude 91 is not within 90 degrees of the equator");
    row("syntax", Collection("{\"type\" \"Feature\"}"), "line 3: missing name separator");
    row("nothing", Collection(""), "no route and no waypoints in it");
}

void tst_ZrRouteGeoJson::errors()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    ZrWpts route;
    QCOMPARE(FromBytes(bytes, route), error);
}

QTEST_GUILESS_MAIN(tst_ZrRouteGeoJson)
#include "tst_ZrRouteGeoJson.moc"
