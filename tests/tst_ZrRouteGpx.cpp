// GPX of other makers, what our GPX looks like byte by byte, and what gpsbabel reads in it.

#include "RouteFileChecks.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteGpx.h"

#include <QTemporaryDir>
#include <QXmlStreamReader>

namespace {

QString DataPath(const char* name)
{
    return QStringLiteral(ZR_SOURCE_DIR "/tests/data/gpx/") + QString::fromLatin1(name);
}

QString Rounded(double value)
{
    return QString::number(value, 'f', 10);
}

/// One line per point of a GPX file, with its position and name; the names of routes as lines of their own.
QStringList GpxLines(const QByteArray& gpx)
{
    QStringList lines;
    QXmlStreamReader xml(gpx);
    while (!xml.atEnd()) {
        xml.readNext();
        const QXmlStreamAttributes attributes = xml.attributes();
        if (xml.isStartElement() && attributes.hasAttribute(QStringLiteral("lat")))
            lines << xml.name().toString() + QLatin1Char(' ') + attributes.value(QStringLiteral("lat"))
                    + QLatin1Char(' ') + attributes.value(QStringLiteral("lon"));
        else if (xml.isStartElement() && xml.name() == QLatin1String("rte"))
            lines << QString();
        else if (xml.isStartElement() && xml.name() == QLatin1String("name"))
            lines.last() = (lines.last() + QLatin1Char(' ') + xml.readElementText()).trimmed();
    }
    return lines;
}

QByteArray Gpx(const char* body)
{
    return QByteArray(
               "<?xml version=\"1.0\"?>\n<gpx version=\"1.1\" xmlns=\"http://www.topografix.com/GPX/1/1\" "
               "xmlns:zr=\"urn:zrkit:route\">\n")
        + body + "\n</gpx>\n";
}

} // namespace

class tst_ZrRouteGpx : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layout();
    void realFiles_data();
    void realFiles();
    void allFields();
    void whatIsTaken_data();
    void whatIsTaken();
    void otherExtensions();
    void antimeridian();
    void errors_data();
    void errors();
    void gpsbabelReads();
    void gpsbabelWrites();
};

void tst_ZrRouteGpx::layout()
{
    ZrWpts route;
    route.prefix = QStringLiteral("A & B");
    route.linked = true;
    ZrWpt wpt = At(50.5, -4.25, QStringLiteral("<1>"));
    wpt.uuid = QUuid();
    wpt.r = 0.1;
    wpt.spdType = 2;
    Append(route, wpt);
    ZrWpt second = At(-1e-12, 180.0);
    second.uuid = QUuid();
    second.pseudo = QStringLiteral("Finish Mission");
    second.atWpt = true;
    Append(route, second);
    QCOMPARE(
        QString::fromUtf8(ZrRouteGpx::Write(route)), QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<gpx xmlns="http://www.topografix.com/GPX/1/1" xmlns:zr="urn:zrkit:route" version="1.1" creator="ZrKit">
 <rte>
  <name>A &amp; B</name>
  <extensions>
   <zr:field key="closed">false</zr:field>
   <zr:field key="linked">true</zr:field>
   <zr:field key="prefix">A &amp; B</zr:field>
   <zr:field key="speed">0.5</zr:field>
  </extensions>
  <rtept lat="50.50000000" lon="-4.25000000">
   <name>&lt;1&gt;</name>
   <extensions>
    <zr:field key="UUID">{00000000-0000-0000-0000-000000000000}</zr:field>
    <zr:field key="r">0.1</zr:field>
    <zr:field key="speedtype">2</zr:field>
   </extensions>
  </rtept>
  <rtept lat="0.00000000" lon="-180.00000000">
   <name>Finish Mission</name>
   <extensions>
    <zr:field key="UUID">{00000000-0000-0000-0000-000000000000}</zr:field>
    <zr:field key="antimeridian">true</zr:field>
    <zr:field key="at wpt">true</zr:field>
    <zr:field key="unnamed">true</zr:field>
   </extensions>
  </rtept>
 </rte>
</gpx>
)"));
}

void tst_ZrRouteGpx::realFiles_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QStringList>("warnings");
    // The whole track stands on one line.
    QTest::newRow("around-visnjan-with-car.gpx") << 104 << QStringLiteral("45.2735188510 13.7142099626")
                                                 << QStringLiteral("45.2733349521 13.7139970623")
                                                 << QStringLiteral("2020-12-18 07:24:29") << QStringList();
    // The first of its four tracks is empty, two waypoints stand beside them.
    QTest::newRow("korita-zbevnica.gpx")
        << 358 << QStringLiteral("45.3806000950 14.1444914420")
        << QStringLiteral("45.3806796390 14.1445222030") << QStringLiteral("03-OCT-10 #2")
        << (QStringList{QStringLiteral("of 3 routes and lines the first was taken"),
               QStringLiteral("points beside the line were left out: 2")});
    QTest::newRow("route.gpx") << 55 << QStringLiteral("45.2787641494 13.7266954780 #001")
                               << QStringLiteral("45.2787783011 13.7266552448 #055") << QString()
                               << QStringList();
    // Two routes, a track of two segments, one of them empty, and two waypoints.
    QTest::newRow("gpx1.1_with_all_fields.gpx")
        << 3 << QStringLiteral("10.0000000000 20.0000000000 example name r")
        << QStringLiteral("12.0000000000 22.0000000000") << QStringLiteral("example name")
        << (QStringList{QStringLiteral("of 3 routes and lines the first was taken"),
               QStringLiteral("points beside the line were left out: 2")});
}

void tst_ZrRouteGpx::realFiles()
{
    QFETCH(int, count);
    QFETCH(QString, first);
    QFETCH(QString, last);
    QFETCH(QString, prefix);
    QFETCH(QStringList, warnings);
    ZrRouteFile file;
    ZrWpts route;
    QVERIFY2(file.Read(DataPath(QTest::currentDataTag()), route), qPrintable(file.Error()));
    const auto text = [](const ZrWpt& wpt) {
        return (Rounded(wpt.lat) + QLatin1Char(' ') + Rounded(wpt.lng) + QLatin1Char(' ') + wpt.name)
            .trimmed();
    };
    QCOMPARE(route.GetCount(), count);
    QCOMPARE(text(*route.GetHead()), first);
    QCOMPARE(text(*route.GetTail()), last);
    QCOMPARE(route.prefix, prefix);
    QCOMPARE(file.Warnings(), warnings);
    QVERIFY(route.linked);
}

/// Every element that GPX has stands in this file.
void tst_ZrRouteGpx::allFields()
{
    ZrGeoShapes shapes;
    QString error;
    QVERIFY2(ZrRouteGpx::Read(ReadWhole(DataPath("gpx1.1_with_all_fields.gpx")), shapes, error),
        qPrintable(error));
    QCOMPARE(shapes.points.size(), std::size_t(2));
    QCOMPARE(shapes.points[0].name, QStringLiteral("example name"));
    QVERIFY((shapes.points[0].position == ZrGeoPoint{12.3, 45.6}));
    QVERIFY(shapes.points[0].fields.isEmpty());
    QVERIFY((shapes.points[1].position == ZrGeoPoint{13.4, 46.7}));
    QStringList lines;
    for (const ZrShapeLine& line : shapes.lines)
        lines << QStringLiteral("%1 %2").arg(line.name).arg(line.points.size());
    QCOMPARE(lines,
        (QStringList{QStringLiteral("example name 3"), QStringLiteral("second route 2"),
            QStringLiteral("example name t 1")}));
}

void tst_ZrRouteGpx::whatIsTaken_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("summary");
    QTest::addColumn<bool>("linked");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QStringList>("warnings");
    const QString taken = QStringLiteral("of 2 routes and lines the first was taken");
    const QString beside = QStringLiteral("points beside the line were left out: 1");
    QTest::newRow("points") << Gpx("<wpt lat=\"1\" lon=\"2\"><name>a</name></wpt><wpt lat=\"3\" lon=\"4\"/>")
                            << QStringList{QStringLiteral("1 2 a"), QStringLiteral("3 4")} << false
                            << QString() << QStringList();
    QTest::newRow("two routes") << Gpx(
        "<rte><name>R</name><rtept lat=\"1\" lon=\"2\"/></rte><rte><rtept lat=\"3\" lon=\"4\"/></rte>")
                                << QStringList{QStringLiteral("1 2")} << true << QStringLiteral("R")
                                << QStringList{taken};
    QTest::newRow("empty route first")
        << Gpx("<rte/><rte><name>S</name><rtept lat=\"3\" lon=\"4\"/></rte>")
        << QStringList{QStringLiteral("3 4")} << true << QStringLiteral("S") << QStringList();
    QTest::newRow("route behind a track") << Gpx(
        "<trk><name>T</name><trkseg><trkpt lat=\"1\" lon=\"2\"/></trkseg></trk><wpt lat=\"5\" lon=\"6\"/>"
        "<rte><name>R</name><rtept lat=\"3\" lon=\"4\"/></rte>")
                                          << QStringList{QStringLiteral("3 4")} << true << QStringLiteral("R")
                                          << QStringList{taken, beside};
    QTest::newRow("track of two segments") << Gpx(
        "<trk><name>T</name><trkseg><trkpt lat=\"1\" lon=\"2\"><ele>3</ele><time>x</time></trkpt></trkseg>"
        "<trkseg><trkpt lat=\"3\" lon=\"4\"/></trkseg></trk>")
                                           << QStringList{QStringLiteral("1 2")} << true
                                           << QStringLiteral("T") << QStringList{taken};
    QTest::newRow("prefixed names") << QByteArray(
        "<g:gpx xmlns:g='http://www.topografix.com/GPX/1/1'><g:wpt lat='1' lon=' +2 '>"
        "<g:name>\u00E4</g:name></g:wpt></g:gpx>")
                                    << QStringList{QStringLiteral("1 2 \u00E4")} << false << QString()
                                    << QStringList();
    QTest::newRow("latin-1") << QByteArray(
        "<?xml version='1.0' encoding='ISO-8859-1'?><gpx><wpt lat='1' lon='2'><name>\xE4</name></wpt></gpx>")
                             << QStringList{QStringLiteral("1 2 \u00E4")} << false << QString()
                             << QStringList();
    QTest::newRow("ours with a mark of another maker") << Gpx(
        "<rte><extensions><zr:field key=\"linked\">true</zr:field><zr:field key=\"closed\">true</zr:field>"
        "<zr:field key=\"prefix\">Ours</zr:field></extensions><rtept lat=\"3\" lon=\"4\"/></rte><wpt "
        "lat=\"1\" lon=\"2\"/>") << QStringList{QStringLiteral("3 4")}
                                                       << true << QStringLiteral("Ours")
                                                       << QStringList{beside};
    QTest::newRow("our marks") << Gpx(
        "<wpt lat=\"1\" lon=\"2\"/><extensions><zr:field key=\"linked\">false</zr:field>"
        "<zr:field key=\"prefix\">M</zr:field></extensions>")
                               << QStringList{QStringLiteral("1 2")} << false << QStringLiteral("M")
                               << QStringList();
}

void tst_ZrRouteGpx::whatIsTaken()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, summary);
    QFETCH(bool, linked);
    QFETCH(QString, prefix);
    QFETCH(QStringList, warnings);
    ZrWpts route;
    QStringList found;
    QCOMPARE(FromBytes(bytes, route, &found), QString());
    QCOMPARE(Summary(route), summary);
    QCOMPARE(route.linked, linked);
    QCOMPARE(route.prefix, prefix);
    QCOMPARE(found, warnings);
}

/// What other makers say in extensions is theirs, even under our keys.
void tst_ZrRouteGpx::otherExtensions()
{
    ZrWpts route;
    QCOMPARE(
        FromBytes(
            Gpx("<wpt lat=\"1\" lon=\"2\"><extensions xmlns:o=\"urn:other\"><o:field key=\"r\">5</o:field>"
                "<field key=\"r\">6</field><o:x><zr:field key=\"r\">7</zr:field></o:x></extensions></wpt>"),
            route),
        QString());
    QCOMPARE(NthOf(route, 0).r, 0.0);
}

void tst_ZrRouteGpx::antimeridian()
{
    ZrWpts route;
    route.linked = true;
    for (const double lng : {179.9, 180.0, -180.0, 179.9999999999})
        Append(route, At(1.0, lng));
    const QByteArray gpx = ZrRouteGpx::Write(route);
    QCOMPARE(gpx.count("lon=\"-180.00000000\""), 3);
    ZrWpts read;
    QCOMPARE(FromBytes(gpx, read), QString());
    QCOMPARE(Summary(read),
        (QStringList{QStringLiteral("1 179.9"), QStringLiteral("1 180"), QStringLiteral("1 -180"),
            QStringLiteral("1 180")}));
}

void tst_ZrRouteGpx::errors_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* tag, const char* body, const char* error) {
        QTest::newRow(tag) << Gpx(body) << QString::fromUtf8(error);
    };
    row("no latitude", "<wpt lon=\"1\"/>", "line 3: \"wpt\" has no \"lat\"");
    row("empty longitude", "\n<wpt lat=\"1\" lon=\"\"/>", "line 4: \"\" is no \"lon\"");
    row("text", "<rte>\n<rtept lat=\"1\" lon=\"1\"/>\n<rtept lat=\"north\" lon=\"2\"/></rte>",
        "line 5: \"north\" is no \"lat\"");
    row("decimal comma", "<wpt lat=\"1,5\" lon=\"1\"/>", "line 3: \"1,5\" is no \"lat\"");
    row("latitude", "<wpt\nlat=\"95\"\nlon=\"1\"/>",
        "line 5: latitude 95 is not within 90 degrees of the equator");
    row("longitude", "<trk><trkseg><trkpt lat=\"1\" lon=\"-181\"/></trkseg></trk>",
        "line 3: longitude -181 is not within 180 degrees of Greenwich");
    row("nan", "<wpt lat=\"nan\" lon=\"1\"/>",
        "line 3: latitude nan is not within 90 degrees of the equator");
    row("our field",
        "<wpt lat=\"1\" lon=\"1\"><extensions>\n<zr:field key=\"r\">wide</zr:field></extensions></wpt>",
        "line 4: \"wide\" is no value of \"r\"");
    row("our integer",
        "<wpt lat=\"1\" lon=\"1\"><extensions><zr:field key=\"classA\">256</zr:field></extensions></wpt>",
        "line 3: \"256\" is no value of \"classA\"");
    row("our uuid",
        "<wpt lat=\"1\" lon=\"1\"><extensions><zr:field key=\"UUID\">x</zr:field></extensions></wpt>",
        "line 3: \"x\" is no value of \"UUID\"");
    row("our route field",
        "<rte><extensions>\n\n<zr:field key=\"linked\">maybe</zr:field></extensions></rte>",
        "line 5: \"maybe\" is no value of \"linked\"");
    row("unknown key",
        "<wpt lat=\"1\" lon=\"1\"><extensions><zr:field key=\"q\">1</zr:field></extensions></wpt>",
        "line 3: \"1\" is no value of \"q\"");
    row("element in a name", "<wpt lat=\"1\" lon=\"1\"><name>a<b/></name></wpt>",
        "line 3: Expected character data.");
    row("not closed", "<wpt lat=\"1\" lon=\"1\">", "line 4: Opening and ending tag mismatch.");
    row("nothing", "<metadata/>", "no route and no waypoints in it");
    QTest::newRow("kml in gpx") << QByteArray("<gpxx><wpt lat=\"1\" lon=\"1\"/></gpxx>")
                                << QStringLiteral(
                                       "neither GPX, KML nor a tag-structured store with waypoints");
    QTest::newRow("bytes that are no UTF-8")
        << Gpx("<wpt lat=\"1\" lon=\"1\">\n<name>\xFF</name></wpt>")
        << QStringLiteral("line 4: no UTF-8, and no other encoding is declared");
}

void tst_ZrRouteGpx::errors()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    ZrWpts route;
    QCOMPARE(FromBytes(bytes, route), error);
    ZrGeoShapes shapes;
    QString reason;
    QCOMPARE(ZrRouteGpx::Read("<kml/>", shapes, reason), false);
    QCOMPARE(reason, QStringLiteral("line 1: not a GPX file"));
}

void tst_ZrRouteGpx::gpsbabelReads()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("route.gpx"));
    for (const bool linked : {true, false}) {
        ZrWpts route;
        route.linked = linked;
        route.prefix = QStringLiteral("Survey 7");
        Append(route, At(50.1234567, -4.7654321, QStringLiteral("Wreck \u00E4 <&>")));
        Append(route, At(50.2, -4.5));
        route.UpdatePseudo();
        ZrRouteFile file;
        QVERIFY(file.Write(path, ZrRouteFile::Gpx, route));
        const QByteArray gpx = OutputOf(QStringLiteral("gpsbabel"),
            {linked ? QStringLiteral("-r") : QStringLiteral("-w"), QStringLiteral("-i"),
                QStringLiteral("gpx"), QStringLiteral("-f"), path, QStringLiteral("-o"),
                QStringLiteral("gpx"), QStringLiteral("-F"), QStringLiteral("-")});
        const QString element = linked ? QStringLiteral("rtept") : QStringLiteral("wpt");
        QStringList expected{element + QStringLiteral(" 50.123456700 -4.765432100 Wreck \u00E4 <&>"),
            element + QStringLiteral(" 50.200000000 -4.500000000 ")
                + (linked ? QStringLiteral("Finish Mission") : QStringLiteral("Mkr: 2"))};
        if (linked)
            expected.prepend(QStringLiteral("Survey 7"));
        QCOMPARE(GpxLines(gpx), expected);
    }
}

/// The other way: a list that gpsbabel makes a GPX route of.
void tst_ZrRouteGpx::gpsbabelWrites()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("list.csv"));
    QVERIFY(WriteWhole(path, "50.5, -4.25, First\n50.75, -4.125, Second\n"));
    const QByteArray gpx = OutputOf(QStringLiteral("gpsbabel"),
        {QStringLiteral("-i"), QStringLiteral("csv"), QStringLiteral("-f"), path, QStringLiteral("-x"),
            QStringLiteral("transform,rte=wpt,del"), QStringLiteral("-o"), QStringLiteral("gpx"),
            QStringLiteral("-F"), QStringLiteral("-")});
    ZrWpts route;
    QCOMPARE(FromBytes(gpx, route), QString());
    QCOMPARE(Summary(route),
        (QStringList{QStringLiteral("50.5 -4.25 First"), QStringLiteral("50.75 -4.125 Second")}));
    QVERIFY(route.linked);
}

QTEST_GUILESS_MAIN(tst_ZrRouteGpx)
#include "tst_ZrRouteGpx.moc"
