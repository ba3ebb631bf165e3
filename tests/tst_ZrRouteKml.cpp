// KML as chart plotters and GIS programs write it, what ours looks like byte by byte, and what gpsbabel reads
// in it.

#include "RouteFileChecks.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteKml.h"

#include <QTemporaryDir>

namespace {

QByteArray Kml(const char* body)
{
    return QByteArray("<?xml version=\"1.0\"?>\n<kml xmlns=\"http://www.opengis.net/kml/2.2\">\n") + body
        + "\n</kml>\n";
}

QString Ring(const std::vector<ZrGeoPoint>& ring)
{
    QStringList all;
    for (const ZrGeoPoint& point : ring)
        all << QStringLiteral("%1 %2").arg(point.lat).arg(point.lng);
    return all.join(QStringLiteral(", "));
}

} // namespace

class tst_ZrRouteKml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layout();
    void line_data();
    void line();
    void plotterRoute();
    void gisPolygons();
    void geometries();
    void otherData();
    void ownWithOthers();
    void errors_data();
    void errors();
    void gpsbabelReads();
    void gpsbabelWrites();
};

void tst_ZrRouteKml::layout()
{
    ZrWpts route;
    route.prefix = QStringLiteral("A & B");
    route.linked = true;
    route.closed = true;
    for (const double lng : {-4.25, 180.0}) {
        ZrWpt wpt = At(50.5, lng, lng < 0 ? QStringLiteral("<1>") : QString());
        wpt.uuid = QUuid();
        wpt.pseudo = QStringLiteral("Wpt: 1");
        Append(route, wpt);
    }
    QCOMPARE(
        QString::fromUtf8(ZrRouteKml::Write(route)), QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<kml xmlns="http://www.opengis.net/kml/2.2">
 <Document>
  <name>A &amp; B</name>
  <ExtendedData>
   <Data name="closed">
    <value>true</value>
   </Data>
   <Data name="linked">
    <value>true</value>
   </Data>
   <Data name="prefix">
    <value>A &amp; B</value>
   </Data>
   <Data name="speed">
    <value>0.5</value>
   </Data>
  </ExtendedData>
  <Placemark>
   <name>A &amp; B</name>
   <LineString>
    <tessellate>1</tessellate>
    <coordinates>-4.25000000,50.50000000 180.00000000,50.50000000 -4.25000000,50.50000000</coordinates>
   </LineString>
  </Placemark>
  <Placemark>
   <name>&lt;1&gt;</name>
   <ExtendedData>
    <Data name="UUID">
     <value>{00000000-0000-0000-0000-000000000000}</value>
    </Data>
   </ExtendedData>
   <Point>
    <coordinates>-4.25000000,50.50000000</coordinates>
   </Point>
  </Placemark>
  <Placemark>
   <name>Wpt: 1</name>
   <ExtendedData>
    <Data name="UUID">
     <value>{00000000-0000-0000-0000-000000000000}</value>
    </Data>
    <Data name="unnamed">
     <value>true</value>
    </Data>
   </ExtendedData>
   <Point>
    <coordinates>180.00000000,50.50000000</coordinates>
   </Point>
  </Placemark>
 </Document>
</kml>
)"));
}

void tst_ZrRouteKml::line_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("linked");
    QTest::addColumn<int>("lines");
    QTest::newRow("markers") << 3 << false << 0;
    QTest::newRow("route") << 3 << true << 1;
    QTest::newRow("one point") << 1 << true << 0; // a line needs two
    QTest::newRow("empty") << 0 << true << 0;
}

void tst_ZrRouteKml::line()
{
    QFETCH(int, count);
    QFETCH(bool, linked);
    QFETCH(int, lines);
    const QByteArray kml = ZrRouteKml::Write(RandomRoute(count, 1, linked, true));
    QCOMPARE(kml.count("<LineString>"), lines);
    QCOMPARE(kml.count("<Point>"), count);
}

/// The line is the route; the marks beside it are left out.
void tst_ZrRouteKml::plotterRoute()
{
    ZrWpts route;
    QStringList warnings;
    QCOMPARE(FromBytes(Kml("<Document><name>Export</name><Style "
                           "id=\"s\"><LineStyle><width>2</width></LineStyle></Style>\n"
                           "<Folder><name>Marks</name><Placemark><name>Buoy</name><styleUrl>#s</"
                           "styleUrl><LookAt><longitude>1</longitude>"
                           "</LookAt><Point><altitudeMode>clampToGround</altitudeMode><coordinates>\n "
                           "5,51,0\n</coordinates></Point></Placemark></Folder>\n"
                           "<Folder><Folder><Placemark><name><![CDATA[North "
                           "<channel>]]></name><description>x</description><LineString>"
                           "<tessellate>1</tessellate><coordinates>\n\t-4.5,50.25,0.0\n\t-4.25,50.5,-3 \t "
                           "-4,51\r\n</coordinates></LineString></Placemark></Folder></Folder></Document>"),
                 route, &warnings),
        QString());
    QCOMPARE(Summary(route),
        (QStringList{QStringLiteral("50.25 -4.5"), QStringLiteral("50.5 -4.25"), QStringLiteral("51 -4")}));
    QCOMPARE(route.prefix, QStringLiteral("North <channel>"));
    QVERIFY(route.linked && !route.closed);
    QCOMPARE(warnings, QStringList{QStringLiteral("points beside the line were left out: 1")});
}

void tst_ZrRouteKml::gisPolygons()
{
    ZrGeoShapes shapes;
    QString error;
    QVERIFY2(ZrRouteKml::Read(Kml("<Document><Schema id=\"a\"><SimpleField name=\"r\" "
                                  "type=\"int\"/></Schema><Folder><Placemark><name>Field</name>"
                                  "<ExtendedData><SchemaData schemaUrl=\"#a\"><SimpleData "
                                  "name=\"r\">5</SimpleData></SchemaData></ExtendedData>\n"
                                  "<MultiGeometry><Polygon><altitudeMode>clampToGround</"
                                  "altitudeMode><outerBoundaryIs><LinearRing><coordinates>1,50 2,50 2,51 "
                                  "1,50</coordinates></LinearRing></outerBoundaryIs>\n"
                                  "<innerBoundaryIs><LinearRing><coordinates>1.4,50.2 1.5,50.2 1.5,50.3 "
                                  "1.4,50.2</coordinates></LinearRing></innerBoundaryIs></Polygon>\n"
                                  "<Polygon><outerBoundaryIs><LinearRing><coordinates>3,50 4,50 "
                                  "4,51</coordinates></LinearRing></outerBoundaryIs></Polygon>"
                                  "</MultiGeometry></Placemark></Folder></Document>"),
                 shapes, error),
        qPrintable(error));
    QCOMPARE(shapes.areas.size(), std::size_t(2));
    QCOMPARE(shapes.areas[0].name, QStringLiteral("Field"));
    QCOMPARE(Ring(shapes.areas[0].ring), QStringLiteral("50 1, 50 2, 51 2"));
    QCOMPARE(Ring(shapes.areas[1].ring), QStringLiteral("50 3, 50 4, 51 4"));
    QCOMPARE(shapes.warnings, QStringList{QStringLiteral("line 5: a hole of a polygon was left out")});
}

void tst_ZrRouteKml::geometries()
{
    ZrGeoShapes shapes;
    QString error;
    QVERIFY2(ZrRouteKml::Read(
                 Kml("<Placemark><name>P</name><MultiGeometry><Point><coordinates>1,2</coordinates></"
                     "Point><MultiGeometry>"
                     "<Point><coordinates>3,4</coordinates></Point></"
                     "MultiGeometry><LinearRing><coordinates>1,2 3,4 5,6 1,2</coordinates></LinearRing>"
                     "<LineString><coordinates/></LineString><Model/></MultiGeometry></Placemark>"
                     "<Placemark><Point/></Placemark><Placemark/>"),
                 shapes, error),
        qPrintable(error));
    QCOMPARE(shapes.points.size(), std::size_t(2));
    QCOMPARE(shapes.points[1].name, QStringLiteral("P"));
    QVERIFY((shapes.points[1].position == ZrGeoPoint{4.0, 3.0}));
    QCOMPARE(shapes.areas.size(), std::size_t(1));
    QCOMPARE(Ring(shapes.areas[0].ring), QStringLiteral("2 1, 4 3, 6 5"));
    QVERIFY(shapes.lines.empty());
}

/// Data of other makers under keys of ours counts when it is of their kind, and is passed over when it is
/// not.
void tst_ZrRouteKml::otherData()
{
    ZrWpts route;
    QCOMPARE(
        FromBytes(
            Kml("<Placemark><ExtendedData><Data name=\"speed\"><displayName>Speed</displayName><value>5 "
                "kn</value></Data>"
                "<Data name=\"type\"><value>buoy</value></Data><Data name=\"r\"><value>12.5</value></Data>"
                "<Data "
                "name=\"lat\"><value>9</value></Data></ExtendedData><Point><coordinates>1,2</coordinates></"
                "Point></Placemark>"),
            route),
        QString());
    QCOMPARE(Summary(route), QStringList{QStringLiteral("2 1")});
    QCOMPARE(NthOf(route, 0).type, u8(0));
    QCOMPARE(NthOf(route, 0).r, 0.0); // the only waypoint does not turn
    ZrGeoShapes shapes;
    QString error;
    QVERIFY(ZrRouteKml::Read(
        Kml("<Placemark><ExtendedData><Data name=\"r\"><value>12.5</value></Data></ExtendedData>"
            "<Point><coordinates>1,2</coordinates></Point></Placemark>"),
        shapes, error));
    QCOMPARE(shapes.points[0].fields, (QJsonObject{{QStringLiteral("r"), 12.5}}));
}

/// Into a file of ours somebody has drawn another line and an area.
void tst_ZrRouteKml::ownWithOthers()
{
    ZrWpts route;
    route.linked = true;
    Append(route, At(1.0, 2.0, QStringLiteral("a")));
    Append(route, At(3.0, 4.0, QStringLiteral("b")));
    QByteArray kml = ZrRouteKml::Write(route);
    kml.replace("</Document>",
        "<Placemark><LineString><coordinates>1,1 "
        "2,2</coordinates></LineString></Placemark><Placemark><LinearRing>"
        "<coordinates>1,1 2,2 3,1</coordinates></LinearRing></Placemark></Document>");
    QStringList warnings;
    ZrWpts read;
    QCOMPARE(FromBytes(kml, read, &warnings), QString());
    QCOMPARE(Summary(read), (QStringList{QStringLiteral("1 2 a"), QStringLiteral("3 4 b")}));
    QCOMPARE(warnings,
        (QStringList{QStringLiteral("of 2 routes and lines the first was taken"),
            QStringLiteral("areas were left out: 1")}));
}

void tst_ZrRouteKml::errors_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* tag, const char* body, const char* error) {
        QTest::newRow(tag) << Kml(body) << QString::fromUtf8(error);
    };
    const auto point = [&](const char* tag, const QByteArray& coordinates, const char* error) {
        row(tag, "<Placemark><Point><coordinates>" + coordinates + "</coordinates></Point></Placemark>",
            error);
    };
    point("one number", "1", "line 3: \"1\" is no longitude and latitude");
    point("blank behind the comma", "1, 2", "line 3: \"1,\" is no longitude and latitude");
    point("text", "\n\nwest,2", "line 5: \"west,2\" is no longitude and latitude");
    point("exchanged", "\n1,\n2,95", "line 4: \"1,\" is no longitude and latitude");
    point("latitude", "2,95", "line 3: latitude 95 is not within 90 degrees of the equator");
    point("nan", "nan,1", "line 3: longitude nan is not within 180 degrees of Greenwich");
    row("third of many",
        "<Placemark><LineString>\n<coordinates>1,2\r\n3,4\r\n\r\n500,6 "
        "7,8</coordinates>\n</LineString></Placemark>",
        "line 7: longitude 500 is not within 180 degrees of Greenwich");
    row("in a ring",
        "<Placemark><Polygon><outerBoundaryIs><LinearRing><coordinates>\n1,2 "
        "3</coordinates></LinearRing></outerBoundaryIs></Polygon></Placemark>",
        "line 4: \"3\" is no longitude and latitude");
    row("first of two", "<Placemark><LineString><coordinates>x\ny</coordinates></LineString></Placemark>",
        "line 3: \"x\" is no longitude and latitude");
    row("not closed", "<Document>\n<Placemark>", "line 5: Opening and ending tag mismatch.");
    row("nothing", "<Document/>", "no route and no waypoints in it");
    row("areas only",
        "<Placemark><LinearRing><coordinates>1,1 2,2 3,1</coordinates></LinearRing></Placemark>",
        "no route and no waypoints in it");
}

void tst_ZrRouteKml::errors()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    ZrWpts route;
    QCOMPARE(FromBytes(bytes, route), error);
    ZrGeoShapes shapes;
    QString reason;
    QCOMPARE(ZrRouteKml::Read("<gpx/>", shapes, reason), false);
    QCOMPARE(reason, QStringLiteral("line 1: not a KML file"));
}

void tst_ZrRouteKml::gpsbabelReads()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("route.kml"));
    ZrWpts route;
    route.linked = true;
    route.prefix = QStringLiteral("Survey 7");
    Append(route, At(50.1234567, -4.7654321, QStringLiteral("Wreck \u00E4 <&>")));
    Append(route, At(50.2, -4.5));
    route.UpdatePseudo();
    ZrRouteFile file;
    QVERIFY(file.Write(path, ZrRouteFile::Kml, route));
    const QByteArray gpx = OutputOf(QStringLiteral("gpsbabel"),
        {QStringLiteral("-w"), QStringLiteral("-t"), QStringLiteral("-i"), QStringLiteral("kml"),
            QStringLiteral("-f"), path, QStringLiteral("-o"), QStringLiteral("gpx"), QStringLiteral("-F"),
            QStringLiteral("-")});
    ZrWpts line;
    QStringList warnings;
    QCOMPARE(FromBytes(gpx, line, &warnings), QString());
    QCOMPARE(
        Summary(line), (QStringList{QStringLiteral("50.1234567 -4.7654321"), QStringLiteral("50.2 -4.5")}));
    QCOMPARE(warnings, QStringList{QStringLiteral("points beside the line were left out: 2")});
    QVERIFY(gpx.contains("<name>Wreck \xC3\xA4 &lt;&amp;&gt;</name>"));
    QVERIFY(gpx.contains("<name>Finish Mission</name>"));
}

void tst_ZrRouteKml::gpsbabelWrites()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("list.csv"));
    QVERIFY(WriteWhole(path, "50.5, -4.25, First\n50.75, -4.125, Second\n"));
    const QByteArray kml = OutputOf(QStringLiteral("gpsbabel"),
        {QStringLiteral("-i"), QStringLiteral("csv"), QStringLiteral("-f"), path, QStringLiteral("-o"),
            QStringLiteral("kml"), QStringLiteral("-F"), QStringLiteral("-")});
    ZrWpts route;
    QCOMPARE(FromBytes(kml, route), QString());
    QCOMPARE(Summary(route),
        (QStringList{QStringLiteral("50.5 -4.25 First"), QStringLiteral("50.75 -4.125 Second")}));
    QVERIFY(!route.linked);
}

QTEST_GUILESS_MAIN(tst_ZrRouteKml)
#include "tst_ZrRouteKml.moc"
