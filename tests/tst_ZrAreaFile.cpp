// Areas out of every kind of file, their names, and why there are none.

#include "RouteFileChecks.h"
#include "ZrKit/planning/ZrAreaFile.h"

#include <QTemporaryDir>

namespace {

QStringList Text(const std::vector<ZrArea>& areas)
{
    QStringList all;
    for (const ZrArea& area : areas) {
        all << area.name + QLatin1Char(':');
        for (const ZrGeoPoint& point : area.ring)
            all.last() += QStringLiteral(" %1 %2").arg(point.lat).arg(point.lng);
    }
    return all;
}

QByteArray Kml(const char* body)
{
    return QByteArray("<kml>") + body + "</kml>";
}

QByteArray Gpx(const char* body)
{
    return QByteArray("<gpx>") + body + "</gpx>";
}

const char* const closedRing = "[[2, 1], [4, 3], [6, 5], [2, 1]]";

} // namespace

class tst_ZrAreaFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void areas_data();
    void areas();
    void everyRouteForm_data();
    void everyRouteForm();
    void presetsStay();
    void realTracks();
    void failures_data();
    void failures();
    void unreadable();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrAreaFile::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_ZrAreaFile::areas_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("areas");
    QTest::addColumn<QStringList>("warnings");
    const auto row = [](const char* tag, const QByteArray& bytes, const QStringList& areas,
                         const QStringList& warnings = QStringList()) {
        QTest::newRow(tag) << bytes << areas << warnings;
    };
    const auto one = [](const char* text) { return QStringList{QString::fromUtf8(text)}; };
    const QByteArray ring(closedRing);
    row("polygon", "{\"type\": \"Polygon\", \"coordinates\": [" + ring + "]}", one("site.v2: 1 2 3 4 5 6"));
    row("named polygon",
        "{\"type\": \"Feature\", \"properties\": {\"name\": \"\u00C5\"}, \"geometry\": {\"type\": "
        "\"Polygon\", \"coordinates\": ["
            + ring + "]}}",
        one("\u00C5: 1 2 3 4 5 6"));
    row("polygons and the rest",
        "{\"type\": \"FeatureCollection\", \"features\": [{\"type\": \"Feature\", \"geometry\": {\"type\": "
        "\"Point\", \"coordinates\": [1, 2]}},"
        "{\"type\": \"Feature\", \"geometry\": {\"type\": \"LineString\", \"coordinates\": [[1, 2], [3, "
        "4]]}},"
        "{\"type\": \"Feature\", \"geometry\": {\"type\": \"MultiPolygon\", \"coordinates\": [["
            + ring + "], [" + ring + ", " + ring + ", " + ring + "]]}}]}",
        {QStringLiteral("site.v2 1: 1 2 3 4 5 6"), QStringLiteral("site.v2 2: 1 2 3 4 5 6")},
        one("line 1: feature 3: the holes of a polygon were left out"));
    row("several with holes",
        "{\"type\": \"MultiPolygon\", \"coordinates\": [[" + ring + "," + ring + "], [" + ring + "," + ring
            + "], [" + ring + "," + ring + "," + ring + "]]}",
        {QStringLiteral("site.v2 1: 1 2 3 4 5 6"), QStringLiteral("site.v2 2: 1 2 3 4 5 6"),
            QStringLiteral("site.v2 3: 1 2 3 4 5 6")},
        {QStringLiteral("the holes of a polygon were left out"), QStringLiteral("holes left out in all: 4")});
    row("kml",
        Kml("<Placemark><name>A</name><Polygon><outerBoundaryIs><LinearRing><coordinates>2,1 4,3 6,5 "
            "2,1</coordinates></LinearRing></outerBoundaryIs>"
            "<innerBoundaryIs/><innerBoundaryIs/></Polygon></"
            "Placemark><Placemark><LinearRing><coordinates>2,1 4,3 "
            "6,5</coordinates></LinearRing></Placemark>"),
        {QStringLiteral("A: 1 2 3 4 5 6"), QStringLiteral("site.v2 2: 1 2 3 4 5 6")},
        {QStringLiteral("line 1: a hole of a polygon was left out"),
            QStringLiteral("holes left out in all: 2")});
    row("line",
        Kml("<Placemark><LineString><coordinates>2,1 4,3 6,5 2,1</coordinates></LineString></Placemark>"),
        one("site.v2: 1 2 3 4 5 6"));
    row("open line",
        Kml("<Placemark><LineString><coordinates>2,1 4,3 6,5</coordinates></LineString></Placemark>"),
        one("site.v2: 1 2 3 4 5 6"));
    row("route beside points",
        Gpx("<wpt lat=\"9\" lon=\"9\"/><rte><name>R</name><rtept lat=\"1\" lon=\"2\"/><rtept lat=\"3\" "
            "lon=\"4\"/><rtept lat=\"5\" lon=\"6\"/></rte>"),
        one("R: 1 2 3 4 5 6"));
    row("track",
        Gpx("<trk><name>T</name><trkseg/><trkseg><trkpt lat=\"1\" lon=\"2\"/><trkpt lat=\"3\" "
            "lon=\"4\"/><trkpt lat=\"5\" lon=\"6\"/></trkseg></trk>"),
        one("T: 1 2 3 4 5 6"));
    row("waypoints", Gpx("<wpt lat=\"1\" lon=\"2\"/><wpt lat=\"3\" lon=\"4\"/><wpt lat=\"5\" lon=\"6\"/>"),
        one("site.v2: 1 2 3 4 5 6"));
    row("list", "1\t2\n3\t4\n5\t6\n1\t2\n", one("site.v2: 1 2 3 4 5 6"));
}

void tst_ZrAreaFile::areas()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, areas);
    QFETCH(QStringList, warnings);
    const QString path = m_dir->filePath(QStringLiteral("site.v2.any"));
    QVERIFY(WriteWhole(path, bytes));
    std::vector<ZrArea> found{{QStringLiteral("former"), {}}};
    ZrAreaFile file;
    QVERIFY2(file.Read(path, found), qPrintable(file.Error()));
    QCOMPARE(Text(found), areas);
    QCOMPARE(file.Warnings(), warnings);
    QCOMPARE(file.Error(), QString());
}

void tst_ZrAreaFile::everyRouteForm_data()
{
    EveryFormat();
}

/// The waypoints of a route are corners, whether it is linked, closed or neither.
void tst_ZrAreaFile::everyRouteForm()
{
    QFETCH(int, format);
    const QString path = m_dir->filePath(QStringLiteral("route"));
    for (const bool linked : {false, true})
        for (const bool closed : {false, true}) {
            ZrWpts route;
            route.linked = linked;
            route.closed = closed;
            route.prefix = QStringLiteral("P");
            for (const double at : {1.0, 3.0, 5.0})
                Append(route, At(at, at + 1.0));
            ZrRouteFile out;
            QVERIFY(out.Write(path, ZrRouteFile::eFormat(format), route));
            std::vector<ZrArea> areas;
            ZrAreaFile file;
            QVERIFY2(file.Read(path, areas), qPrintable(file.Error()));
            QCOMPARE(areas.size(), std::size_t(1));
            QCOMPARE(Text(areas)[0].section(QLatin1Char(':'), 1), QStringLiteral(" 1 2 3 4 5 6"));
        }
}

/// A settings file holds the speed presets of all routes; its corners do not bring them along.
void tst_ZrAreaFile::presetsStay()
{
    const QString path = m_dir->filePath(QStringLiteral("route.json"));
    QVERIFY(WriteWhole(path,
        "{\"SlowSpeed\": 7, \"MediumSpeed\": 8, \"FastSpeed\": 9, \"waypoints\": [{\"lat\": 1, \"long\": 2}, "
        "{\"lat\": 3, \"long\": 4}, {\"lat\": 5, \"long\": 6}]}"));
    std::vector<ZrArea> areas;
    ZrAreaFile file;
    QVERIFY2(file.Read(path, areas), qPrintable(file.Error()));
    QCOMPARE(ZrWpts::s_msSlow, 0.25F);
    QCOMPARE(ZrWpts::s_msMedium, 0.5F);
    QCOMPARE(ZrWpts::s_msFast, 1.0F);
    ZrRouteFile route;
    ZrWpts read;
    QVERIFY(route.Read(path, read));
    QCOMPARE(ZrWpts::s_msFast, 9.0F); // so it is in the file
    ZrWpts::s_msSlow = 0.25F;
    ZrWpts::s_msMedium = 0.5F;
    ZrWpts::s_msFast = 1.0F;
}

void tst_ZrAreaFile::realTracks()
{
    std::vector<ZrArea> areas;
    ZrAreaFile file;
    QVERIFY2(file.Read(QStringLiteral(ZR_SOURCE_DIR "/tests/data/gpx/korita-zbevnica.gpx"), areas),
        qPrintable(file.Error()));
    QStringList sizes;
    for (const ZrArea& area : areas)
        sizes << QStringLiteral("%1 %2").arg(area.name).arg(area.ring.size());
    QCOMPARE(sizes,
        (QStringList{QStringLiteral("03-OCT-10 #2 358"), QStringLiteral("ACTIVE LOG 176"),
            QStringLiteral("ACTIVE LOG #2 337")}));
}

void tst_ZrAreaFile::failures_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* tag, const QByteArray& bytes, const char* error) {
        QTest::newRow(tag) << bytes << QString::fromUtf8(error);
    };
    row("empty", "", "the file is empty");
    row("damaged", "1\t2\nx\t3\n", "line 2: \"x\" is no latitude");
    row("no shapes", Kml("<Document/>"), "no area and no points in it");
    row("no waypoints", "{\"waypoints\": []}", "no area and no points in it");
    row("two corners", "1\t2\n3\t4\n", "area \"site\" has 2 corners, at least 3 are needed");
    row("there and back",
        Kml("<Placemark><LineString><coordinates>2,1 4,3 2,1</coordinates></LineString></Placemark>"),
        "area \"site\" has 2 corners, at least 3 are needed");
    row("second too small",
        Gpx("<rte><rtept lat=\"1\" lon=\"2\"/><rtept lat=\"3\" lon=\"4\"/><rtept lat=\"5\" "
            "lon=\"6\"/></rte><rte><rtept lat=\"1\" lon=\"2\"/></rte>"),
        "area \"site 2\" has 1 corners, at least 3 are needed");
    row("no position", "{\"waypoints\": [{\"lat\": null, \"long\": 1}]}",
        "waypoint 1: latitude nan is not within 90 degrees of the equator");
}

void tst_ZrAreaFile::failures()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    const QString path = m_dir->filePath(QStringLiteral("site"));
    QVERIFY(WriteWhole(path, bytes));
    std::vector<ZrArea> areas{{QStringLiteral("former"), {}}};
    ZrAreaFile file;
    QVERIFY(!file.Read(path, areas));
    QCOMPARE(file.Error(), path + QStringLiteral(": ") + error);
    QCOMPARE(Text(areas), QStringList{QStringLiteral("former:")});
}

void tst_ZrAreaFile::unreadable()
{
    std::vector<ZrArea> areas;
    ZrAreaFile file;
    for (const QString& path : {m_dir->path(), m_dir->filePath(QStringLiteral("none"))}) {
        QVERIFY(!file.Read(path, areas));
        QVERIFY2(file.Error().startsWith(path + QStringLiteral(": ")), qPrintable(file.Error()));
    }
    QVERIFY(file.Error().endsWith(QStringLiteral("No such file or directory")));
}

QTEST_GUILESS_MAIN(tst_ZrAreaFile)
#include "tst_ZrAreaFile.moc"
