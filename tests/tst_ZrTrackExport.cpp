// Exported tracks, byte by byte where they are small, and as other programs read them: gpsbabel, the JSON and
// CSV modules of python3 and Qt's XML reader.

#include "ProgramOutput.h"
#include "ZrKit/export/ZrTrackExport.h"
#include "ZrKit/export/ZrTrackText.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest/QtTest>

#include <cmath>
#include <vector>

#ifdef Q_OS_UNIX
#include <csignal>
#include <ctime>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

constexpr double nan_ = std::numeric_limits<double>::quiet_NaN();
constexpr double start = 1614780309.25; ///< 2021-03-03T14:05:09.250Z

ZrTrackPoint At(double time, double latitude, double longitude, double depth = nan_)
{
    ZrTrackPoint point;
    point.time = time;
    point.latitude = latitude;
    point.longitude = longitude;
    point.depth = depth;
    return point;
}

ZrTrackEvent Event(double time, double latitude, double longitude, const char* text, const char* detail)
{
    ZrTrackEvent event;
    event.time = time;
    event.latitude = latitude;
    event.longitude = longitude;
    event.text = QString::fromUtf8(text);
    event.detail = QString::fromUtf8(detail);
    return event;
}

/// Two segments, the second one a single point; an event with everything and one with nothing but a text.
struct Small
{
    std::vector<ZrTrackPoint> points{At(start, 43.5, -8.25, 0.0), At(start + 1, 43.501, -8.25, 2.5),
        At(start + 2, nan_, -8.25, 3.0), At(start + 3, 43.502, -8.2512345678, -0.004)};
    std::vector<ZrTrackEvent> events{
        Event(start + 0.5, -43.5, 181.0, "Wreck \xC3\xA4 <&>\x01", "\"two\"\nlines, \xF0\x9F\x90\x9F"),
        Event(nan_, nan_, nan_, "No place", "")};

    Small()
    {
        points[1].altitude = 12.345;
        points[1].heading = 359.999;
        points[1].pitch = -1.0;
        points[1].roll = 0.5;
    }

    ZrTrackData Data() const
    {
        ZrTrackData data;
        data.name = QStringLiteral("Survey 7 & more");
        data.points = points;
        data.events = events;
        return data;
    }
};

const char* const smallGpx = R"(<?xml version="1.0" encoding="UTF-8"?>
<gpx xmlns="http://www.topografix.com/GPX/1/1" version="1.1" creator="ZrKit">
 <wpt lat="-43.50000000" lon="-179.00000000">
  <time>2021-03-03T14:05:09.750Z</time>
  <name>Wreck ä &lt;&amp;&gt;</name>
  <desc>&quot;two&quot;
lines, 🐟</desc>
 </wpt>
 <trk>
  <name>Survey 7 &amp; more</name>
  <trkseg>
   <trkpt lat="43.50000000" lon="-8.25000000">
    <ele>0.00</ele>
    <time>2021-03-03T14:05:09.250Z</time>
   </trkpt>
   <trkpt lat="43.50100000" lon="-8.25000000">
    <ele>-2.50</ele>
    <time>2021-03-03T14:05:10.250Z</time>
   </trkpt>
  </trkseg>
  <trkseg>
   <trkpt lat="43.50200000" lon="-8.25123457">
    <ele>0.00</ele>
    <time>2021-03-03T14:05:12.250Z</time>
   </trkpt>
  </trkseg>
 </trk>
</gpx>
)";

const char* const smallKml = R"(<?xml version="1.0" encoding="UTF-8"?>
<kml xmlns="http://www.opengis.net/kml/2.2" xmlns:gx="http://www.google.com/kml/ext/2.2">
 <Document>
  <name>Survey 7 &amp; more</name>
  <Folder>
   <name>Events</name>
   <Placemark>
    <name>Wreck ä &lt;&amp;&gt;</name>
    <description>&quot;two&quot;
lines, 🐟</description>
    <TimeStamp>
     <when>2021-03-03T14:05:09.750Z</when>
    </TimeStamp>
    <Point>
     <coordinates>-179.00000000,-43.50000000</coordinates>
    </Point>
   </Placemark>
   <Placemark>
    <name>No place</name>
   </Placemark>
  </Folder>
  <Folder>
   <name>Track</name>
   <Placemark>
    <name>Segment 1</name>
    <gx:Track>
     <altitudeMode>absolute</altitudeMode>
     <when>2021-03-03T14:05:09.250Z</when>
     <when>2021-03-03T14:05:10.250Z</when>
     <gx:coord>-8.25000000 43.50000000 0.00</gx:coord>
     <gx:coord>-8.25000000 43.50100000 -2.50</gx:coord>
    </gx:Track>
   </Placemark>
   <Placemark>
    <name>Segment 2</name>
    <TimeStamp>
     <when>2021-03-03T14:05:12.250Z</when>
    </TimeStamp>
    <Point>
     <altitudeMode>absolute</altitudeMode>
     <coordinates>-8.25123457,43.50200000,0.00</coordinates>
    </Point>
   </Placemark>
  </Folder>
 </Document>
</kml>
)";

const char* const smallGeoJson
    = R"({"type":"FeatureCollection","features":[
{"type":"Feature","geometry":{"type":"Point","coordinates":[-179.00000000,-43.50000000]},)"
      R"("properties":{"kind":"event","time":"2021-03-03T14:05:09.750Z",)"
      R"("text":"Wreck ä <&>","detail":"\"two\"\nlines, 🐟"}},
{"type":"Feature","geometry":null,)"
      R"("properties":{"kind":"event","time":null,"text":"No place","detail":null}},
{"type":"Feature","geometry":{"type":"LineString",)"
      R"("coordinates":[[-8.25000000,43.50000000,0.00],[-8.25000000,43.50100000,-2.50]]},)"
      R"("properties":{"kind":"track","name":"Survey 7 & more",)"
      R"("times":["2021-03-03T14:05:09.250Z","2021-03-03T14:05:10.250Z"]}},
{"type":"Feature","geometry":{"type":"Point","coordinates":[-8.25123457,43.50200000,0.00]},)"
      R"("properties":{"kind":"track","name":"Survey 7 & more",)"
      R"("times":"2021-03-03T14:05:12.250Z"}}
]}
)";

const char* const smallCsv
    = "kind,segment,time,latitude,longitude,depth,altitude,heading,pitch,roll,text,detail\r\n"
      "event,,2021-03-03T14:05:09.750Z,-43.50000000,-179.00000000,,,,,,Wreck ä <&>,\"\"\"two\"\"\nlines, "
      "🐟\"\r\n"
      "event,,,,,,,,,,No place,\r\n"
      "track,1,2021-03-03T14:05:09.250Z,43.50000000,-8.25000000,0.00,,,,,,\r\n"
      "track,1,2021-03-03T14:05:10.250Z,43.50100000,-8.25000000,2.50,12.35,360.00,-1.00,0.50,,\r\n"
      "track,2,2021-03-03T14:05:12.250Z,43.50200000,-8.25123457,0.00,,,,,,\r\n";

QByteArray ReadWhole(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// One line per waypoint or track point of a GPX file, with whatever it says; "segment" where one begins.
QStringList GpxLines(const QByteArray& gpx, QString* error)
{
    QStringList lines;
    QXmlStreamReader xml(gpx);
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        const QString name = xml.name().toString();
        if (name == QStringLiteral("trkseg"))
            lines << QStringLiteral("segment");
        else if (name == QStringLiteral("trkpt") || name == QStringLiteral("wpt"))
            lines << name
                    + QStringLiteral(" %1 %2")
                          .arg(xml.attributes().value(QStringLiteral("lat")).toDouble(), 0, 'f', 7)
                          .arg(xml.attributes().value(QStringLiteral("lon")).toDouble(), 0, 'f', 7);
        else if (name == QStringLiteral("ele"))
            lines.last() += QStringLiteral(" ele %1").arg(xml.readElementText().toDouble(), 0, 'f', 2);
        else if (!lines.isEmpty()
            && (name == QStringLiteral("time") || name == QStringLiteral("name")
                || name == QStringLiteral("desc")))
            lines.last() += QLatin1Char(' ') + name + QLatin1Char(' ') + xml.readElementText();
    }
    *error = xml.hasError() ? xml.errorString() : QString();
    return lines;
}

const QStringList formats{
    QStringLiteral("gpx"), QStringLiteral("kml"), QStringLiteral("geojson"), QStringLiteral("csv")};

} // namespace

class tst_ZrTrackExport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void smallTrack_data();
    void smallTrack();
    void nothingElseMatters_data();
    void nothingElseMatters();
    void emptyTrack_data();
    void emptyTrack();
    void gpsbabelReads_data();
    void gpsbabelReads();
    void pythonReadsJson();
    void pythonReadsCsv();
    void unsafeTexts();
    void timeGapsSplit();
    void tracksWithoutTimes();
    void antimeridian();
    void manyPoints_data();
    void manyPoints();

    void times_data();
    void times();
    void numbers();
    void longitudes_data();
    void longitudes();
    void cleanTexts_data();
    void cleanTexts();

    void formatBySuffix_data();
    void formatBySuffix();
    void existingFileIsReplaced();
    void unwritablePaths_data();
    void unwritablePaths();
    void fullDiskLeavesTheTarget_data();
    void fullDiskLeavesTheTarget();

private:
    QByteArray Export(const QString& format, const ZrTrackData& data);

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path; ///< of the last export
};

void tst_ZrTrackExport::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

QByteArray tst_ZrTrackExport::Export(const QString& format, const ZrTrackData& data)
{
    m_path = m_dir->filePath(QStringLiteral("track.") + format);
    ZrTrackExport out;
    if (!out.Write(m_path, ZrTrackExport::FormatOf(m_path), data) || !out.Error().isEmpty())
        return QByteArray();
    return ReadWhole(m_path);
}

void tst_ZrTrackExport::smallTrack_data()
{
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("gpx") << QByteArray(smallGpx);
    QTest::newRow("kml") << QByteArray(smallKml);
    QTest::newRow("geojson") << QByteArray(smallGeoJson);
    QTest::newRow("csv") << QByteArray(smallCsv);
}

void tst_ZrTrackExport::smallTrack()
{
    QFETCH(QByteArray, expected);
    const Small small;
    const QByteArray found = Export(QString::fromLatin1(QTest::currentDataTag()), small.Data());
    QCOMPARE(QString::fromUtf8(found), QString::fromUtf8(expected));
    QCOMPARE(found, expected);
}

void tst_ZrTrackExport::nothingElseMatters_data()
{
    smallTrack_data();
}

/// Neither the locale nor the time zone changes a byte.
void tst_ZrTrackExport::nothingElseMatters()
{
    QFETCH(QByteArray, expected);
    const QLocale before;
    const QByteArray zone = qgetenv("TZ");
    QLocale::setDefault(QLocale(QLocale::German));
    setlocale(LC_ALL, "de_DE.UTF-8");
    qputenv("TZ", "Asia/Kolkata");
#ifdef Q_OS_UNIX
    tzset();
#endif
    const Small small;
    const QByteArray found = Export(QString::fromLatin1(QTest::currentDataTag()), small.Data());
    QLocale::setDefault(before);
    setlocale(LC_ALL, "C.UTF-8");
    qputenv("TZ", zone);
#ifdef Q_OS_UNIX
    tzset();
#endif
    QCOMPARE(found, expected);
}

void tst_ZrTrackExport::emptyTrack_data()
{
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("gpx") << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                       "<gpx xmlns=\"http://www.topografix.com/GPX/1/1\" version=\"1.1\" "
                                       "creator=\"ZrKit\">\n <trk/>\n</gpx>\n");
    QTest::newRow("kml") << QByteArray(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<kml xmlns=\"http://www.opengis.net/kml/2.2\" xmlns:gx=\"http://www.google.com/kml/ext/2.2\">\n"
        " <Document>\n  <Folder>\n   <name>Events</name>\n  </Folder>\n  <Folder>\n   <name>Track</name>\n"
        "  </Folder>\n </Document>\n</kml>\n");
    QTest::newRow("geojson") << QByteArray("{\"type\":\"FeatureCollection\",\"features\":[\n]}\n");
    QTest::newRow("csv") << QByteArray(
        "kind,segment,time,latitude,longitude,depth,altitude,heading,pitch,roll,text,detail\r\n");
}

void tst_ZrTrackExport::emptyTrack()
{
    QFETCH(QByteArray, expected);
    const QString format = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(QString::fromUtf8(Export(format, ZrTrackData())), QString::fromUtf8(expected));
    // Points of which none has a position are no track.
    const std::vector<ZrTrackPoint> nowhere{At(1.0, nan_, 2.0), At(2.0, 91.0, 0.0), At(3.0, 0.0, 1e9),
        At(4.0, std::numeric_limits<double>::infinity(), 0.0), ZrTrackPoint()};
    ZrTrackData data;
    data.points = nowhere;
    QCOMPARE(Export(format, data), expected);
}

void tst_ZrTrackExport::gpsbabelReads_data()
{
    QTest::addColumn<QStringList>("expected");
    // gpsbabel makes a waypoint of a single point and repeats its name as the description; the name of a
    // track comes last.
    QTest::newRow("gpx") << QStringList{
        QStringLiteral(
            "wpt -43.5000000 -179.0000000 time 2021-03-03T14:05:09.750Z name Wreck \u00E4 <&> desc "
            "\"two\"\nlines, \U0001F41F name Survey 7 & more"),
        QStringLiteral("segment"),
        QStringLiteral("trkpt 43.5000000 -8.2500000 ele 0.00 time 2021-03-03T14:05:09.250Z"),
        QStringLiteral("trkpt 43.5010000 -8.2500000 ele -2.50 time 2021-03-03T14:05:10.250Z"),
        QStringLiteral("segment"),
        QStringLiteral("trkpt 43.5020000 -8.2512346 ele 0.00 time 2021-03-03T14:05:12.250Z"),
    };
    QTest::newRow("kml") << QStringList{
        QStringLiteral(
            "wpt -43.5000000 -179.0000000 time 2021-03-03T14:05:09.750Z name Wreck \u00E4 <&> desc "
            "\"two\"\nlines, \U0001F41F"),
        QStringLiteral("wpt 43.5020000 -8.2512346 ele 0.00 time 2021-03-03T14:05:12.250Z name Segment 2 desc "
                       "Segment 2 name Segment 1"),
        QStringLiteral("segment"),
        QStringLiteral("trkpt 43.5000000 -8.2500000 ele 0.00 time 2021-03-03T14:05:09.250Z"),
        QStringLiteral("trkpt 43.5010000 -8.2500000 ele -2.50 time 2021-03-03T14:05:10.250Z"),
    };
}

void tst_ZrTrackExport::gpsbabelReads()
{
    QFETCH(QStringList, expected);
    const QString format = QString::fromLatin1(QTest::currentDataTag());
    const Small small;
    QVERIFY(!Export(format, small.Data()).isEmpty());
    const QByteArray gpx = OutputOf(QStringLiteral("gpsbabel"),
        {QStringLiteral("-w"), QStringLiteral("-t"), QStringLiteral("-i"), format, QStringLiteral("-f"),
            m_path, QStringLiteral("-o"), QStringLiteral("gpx"), QStringLiteral("-F"), QStringLiteral("-")});
    QVERIFY(!gpx.isEmpty());
    QString error;
    QCOMPARE(GpxLines(gpx, &error), expected);
    QCOMPARE(error, QString());
}

void tst_ZrTrackExport::pythonReadsJson()
{
    const Small small;
    QVERIFY(!Export(QStringLiteral("geojson"), small.Data()).isEmpty());
    const QString script = QStringLiteral(R"(
import json, sys
data = json.load(open(sys.argv[1], encoding="utf-8"))
assert data["type"] == "FeatureCollection" and len(data["features"]) == 4
event, nowhere, line, point = data["features"]
assert all(f["type"] == "Feature" for f in data["features"])
assert event["geometry"] == {"type": "Point", "coordinates": [-179.0, -43.5]}
assert event["properties"] == {"kind": "event", "time": "2021-03-03T14:05:09.750Z",
    "text": "Wreck \u00e4 <&>", "detail": "\"two\"\nlines, \U0001F41F"}
assert nowhere["geometry"] is None and nowhere["properties"]["detail"] is None
assert line["geometry"] == {"type": "LineString", "coordinates": [[-8.25, 43.5, 0], [-8.25, 43.501, -2.5]]}
assert line["properties"]["times"] == ["2021-03-03T14:05:09.250Z", "2021-03-03T14:05:10.250Z"]
assert point["geometry"] == {"type": "Point", "coordinates": [-8.25123457, 43.502, 0]}
print("read")
)");
    QCOMPARE(
        OutputOf(QStringLiteral("python3"), {QStringLiteral("-c"), script, m_path}), QByteArray("read\n"));
}

void tst_ZrTrackExport::pythonReadsCsv()
{
    const Small small;
    QVERIFY(!Export(QStringLiteral("csv"), small.Data()).isEmpty());
    const QString script = QStringLiteral(R"(
import csv, sys
rows = list(csv.DictReader(open(sys.argv[1], encoding="utf-8", newline=""), strict=True))
assert [r["kind"] for r in rows] == ["event", "event", "track", "track", "track"]
assert [r["segment"] for r in rows] == ["", "", "1", "1", "2"]
assert all(None not in r and None not in r.values() for r in rows)
assert rows[0]["text"] == "Wreck \u00e4 <&>" and rows[0]["detail"] == "\"two\"\nlines, \U0001F41F"
assert [float(rows[3][k]) for k in ("latitude", "longitude", "depth", "altitude", "heading", "pitch", "roll")] == [
    43.501, -8.25, 2.5, 12.35, 360, -1, 0.5]
print("read")
)");
    QCOMPARE(
        OutputOf(QStringLiteral("python3"), {QStringLiteral("-c"), script, m_path}), QByteArray("read\n"));
}

/// Every character there is: the files stay readable, and what may stay in a text comes back.
void tst_ZrTrackExport::unsafeTexts()
{
    QString all;
    for (int code = 0; code <= 0xFFFF; ++code)
        all += QChar(static_cast<ushort>(code));
    // Line ends are one character to XML.
    QString expected = ZrTrackText::Clean(all);
    const std::vector<ZrTrackEvent> events{Event(0.0, 1.0, 2.0, "", "")};
    std::vector<ZrTrackEvent> unsafe = events;
    unsafe[0].text = unsafe[0].detail = all;
    ZrTrackData data;
    data.name = all;
    data.events = unsafe;
    const std::vector<ZrTrackPoint> points{At(0.0, 1.0, 2.0), At(1.0, 1.0, 2.0)};
    data.points = points;

    const QJsonDocument json = QJsonDocument::fromJson(Export(QStringLiteral("geojson"), data));
    const QJsonObject feature = json.object().value(QLatin1String("features")).toArray().at(0).toObject();
    QCOMPARE(feature.value(QLatin1String("properties")).toObject().value(QLatin1String("text")).toString(),
        expected);
    QVERIFY(Export(QStringLiteral("csv"), data).contains("\"\""));

    expected.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    for (const char* format : {"gpx", "kml"}) {
        QXmlStreamReader xml(Export(QString::fromLatin1(format), data));
        QStringList texts;
        while (!xml.atEnd()) {
            xml.readNext();
            if (xml.isStartElement()
                && (xml.name() == QLatin1String("name") || xml.name() == QLatin1String("desc")))
                texts << xml.readElementText();
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QVERIFY(texts.contains(expected));
    }
    QVERIFY(!OutputOf(QStringLiteral("gpsbabel"),
        {QStringLiteral("-i"), QStringLiteral("kml"), QStringLiteral("-f"), m_path, QStringLiteral("-o"),
            QStringLiteral("gpx"), QStringLiteral("-F"), QStringLiteral("-")})
                 .isEmpty());
}

void tst_ZrTrackExport::timeGapsSplit()
{
    const std::vector<ZrTrackPoint> points{
        At(0.0, 1.0, 2.0), At(10.0, 1.0, 2.0), At(71.0, 1.0, 2.0), At(72.0, 1.0, 2.0)};
    ZrTrackData data;
    data.points = points;
    QCOMPARE(Export(QStringLiteral("gpx"), data).count("<trkseg>"), 1);
    data.maxGap = 60.0;
    QCOMPARE(Export(QStringLiteral("gpx"), data).count("<trkseg>"), 2);
    QCOMPARE(Export(QStringLiteral("kml"), data).count("<gx:Track>"), 2);
    QCOMPARE(Export(QStringLiteral("geojson"), data).count("LineString"), 2);
    QCOMPARE(Export(QStringLiteral("csv"), data).count("\r\ntrack,2,"), 2);
}

void tst_ZrTrackExport::tracksWithoutTimes()
{
    const std::vector<ZrTrackPoint> points{At(0.0, 1.0, 2.0, 5.0), At(nan_, 1.5, 2.0)};
    ZrTrackData data;
    data.points = points;
    const QByteArray gpx = Export(QStringLiteral("gpx"), data);
    QCOMPARE(gpx.count("<time>"), 1);
    QCOMPARE(gpx.count("<ele>"), 1);
    const QByteArray kml = Export(QStringLiteral("kml"), data);
    QVERIFY(!kml.contains("gx:Track"));
    QVERIFY(kml.contains("<coordinates>2.00000000,1.00000000,-5.00 2.00000000,1.50000000,0</coordinates>"));
    QVERIFY(Export(QStringLiteral("geojson"), data)
                .contains("[[2.00000000,1.00000000,-5.00],[2.00000000,1.50000000]]"));
    QVERIFY(ReadWhole(m_path).contains("\"times\":[\"1970-01-01T00:00:00.000Z\",null]"));
    QVERIFY(Export(QStringLiteral("csv"), data).endsWith("track,1,,1.50000000,2.00000000,,,,,,,\r\n"));
}

void tst_ZrTrackExport::antimeridian()
{
    const std::vector<ZrTrackPoint> points{
        At(0.0, 10.0, 179.5, 2.0), At(1.0, 12.0, -178.5, 6.0), At(2.0, 12.0, 180.0)};
    ZrTrackData data;
    data.points = points;
    QCOMPARE(QString::fromUtf8(Export(QStringLiteral("geojson"), data)),
        QStringLiteral(
            "{\"type\":\"FeatureCollection\",\"features\":[\n{\"type\":\"Feature\",\"geometry\":"
            "{\"type\":\"MultiLineString\",\"coordinates\":["
            "[[179.50000000,10.00000000,-2.00],[180,10.50000000,-3.00]],"
            "[[-180,10.50000000,-3.00],[-178.50000000,12.00000000,-6.00],[-180.00000000,12.00000000]]]},"
            "\"properties\":{\"kind\":\"track\",\"name\":null,\"times\":["
            "[\"1970-01-01T00:00:00.000Z\",null],"
            "[null,\"1970-01-01T00:00:01.000Z\",\"1970-01-01T00:00:02.000Z\"]]}}\n]}\n"));
    // And back, from the other way of writing longitudes.
    const std::vector<ZrTrackPoint> back{At(0.0, 0.0, -179.0), At(1.0, 0.0, -181.0)};
    data.points = back;
    QVERIFY(Export(QStringLiteral("geojson"), data)
                .contains("[[-179.00000000,0.00000000],[-180,0.00000000]],[[180,0.00000000],[179.00000000,0."
                          "00000000]]"));
}

void tst_ZrTrackExport::manyPoints_data()
{
    QTest::addColumn<QString>("format");
    for (const QString& format : formats)
        QTest::newRow(qPrintable(format)) << format;
}

void tst_ZrTrackExport::manyPoints()
{
    QFETCH(QString, format);
    std::vector<ZrTrackPoint> points;
    for (int i = 0; i < 100000; ++i)
        points.push_back(At(start + i, 40.0 + i * 1e-5, 10.0, i * 0.01));
    ZrTrackData data;
    data.points = points;
    const QByteArray bytes = Export(format, data);
    QCOMPARE(bytes.count("2021-03-03T14:05:"), 51); // from second 9.25 to the end of the minute
    QCOMPARE(bytes.count("T00:00:00.250Z"), 1);
    if (format == QStringLiteral("geojson"))
        QVERIFY(QJsonDocument::fromJson(bytes).isObject());
    else if (format == QStringLiteral("csv"))
        QCOMPARE(bytes.count('\n'), 100001);
    else
        QCOMPARE(bytes.count(format == QStringLiteral("gpx") ? "<trkpt " : "<gx:coord>"), 100000);
}

void tst_ZrTrackExport::times_data()
{
    QTest::addColumn<double>("time");
    QTest::addColumn<QString>("expected");
    QTest::newRow("epoch") << 0.0 << QStringLiteral("1970-01-01T00:00:00.000Z");
    QTest::newRow("just before") << -0.001 << QStringLiteral("1969-12-31T23:59:59.999Z");
    QTest::newRow("leap day") << 951782400.0 << QStringLiteral("2000-02-29T00:00:00.000Z");
    QTest::newRow("rounded up to the day") << 86399.9996 << QStringLiteral("1970-01-02T00:00:00.000Z");
    QTest::newRow("rounded down") << 1.0004 << QStringLiteral("1970-01-01T00:00:01.000Z");
    QTest::newRow("first") << -62135596800.0 << QStringLiteral("0001-01-01T00:00:00.000Z");
    QTest::newRow("last") << 253402300799.0 << QStringLiteral("9999-12-31T23:59:59.000Z");
    QTest::newRow("too early") << -62135596800.001 << QString();
    QTest::newRow("too late") << 253402300800.0 << QString();
    QTest::newRow("huge") << 1e300 << QString();
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << QString();
    QTest::newRow("not known") << nan_ << QString();
}

void tst_ZrTrackExport::times()
{
    QFETCH(double, time);
    QFETCH(QString, expected);
    ZrTrackText text;
    QCOMPARE(text.Time(time), expected);
    // The date remembered from another time does no harm.
    QCOMPARE(text.Time(start), QStringLiteral("2021-03-03T14:05:09.250Z"));
    QCOMPARE(text.Time(time), expected);
}

void tst_ZrTrackExport::numbers()
{
    QCOMPARE(ZrTrackText::Number(-0.0, 2), QStringLiteral("0.00"));
    QCOMPARE(ZrTrackText::Number(-0.004, 2), QStringLiteral("0.00"));
    QCOMPARE(ZrTrackText::Number(-0.006, 2), QStringLiteral("-0.01"));
    QCOMPARE(ZrTrackText::Number(-1e-9, 8), QStringLiteral("0.00000000"));
    QCOMPARE(ZrTrackText::Number(-100.0, 0), QStringLiteral("-100"));
    QCOMPARE(ZrTrackText::Number(nan_, 2), QString());
    QCOMPARE(ZrTrackText::Number(std::numeric_limits<double>::infinity(), 2), QString());
    QCOMPARE(ZrTrackText::Elevation(12.5), QStringLiteral("-12.50"));
    QCOMPARE(ZrTrackText::Elevation(-3.0), QStringLiteral("3.00"));
    QCOMPARE(ZrTrackText::Elevation(0.0), QStringLiteral("0.00"));
    QCOMPARE(ZrTrackText::Elevation(nan_), QString());
    QCOMPARE(ZrTrackText::Latitude(-90.0), QStringLiteral("-90.00000000"));
}

void tst_ZrTrackExport::longitudes_data()
{
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QString>("expected");
    QTest::newRow("east") << 8.1234567849 << QStringLiteral("8.12345678");
    QTest::newRow("180") << 180.0 << QStringLiteral("-180.00000000");
    QTest::newRow("-180") << -180.0 << QStringLiteral("-180.00000000");
    QTest::newRow("190") << 190.0 << QStringLiteral("-170.00000000");
    QTest::newRow("-190") << -190.0 << QStringLiteral("170.00000000");
    QTest::newRow("360") << 360.0 << QStringLiteral("0.00000000");
    QTest::newRow("-360") << -360.0 << QStringLiteral("0.00000000");
    QTest::newRow("rounded to 180") << 179.999999999 << QStringLiteral("-180.00000000");
}

void tst_ZrTrackExport::longitudes()
{
    QFETCH(double, longitude);
    QFETCH(QString, expected);
    QCOMPARE(ZrTrackText::Longitude(longitude), expected);
}

void tst_ZrTrackExport::cleanTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QString fish = QStringLiteral("\U0001F41F");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("plain") << QStringLiteral("a\tb\r\nc") << QStringLiteral("a\tb\r\nc");
    QTest::newRow("controls") << QStringLiteral("a\u0001\u000Bb\u001Bc") + QChar(0) << QStringLiteral("abc");
    QTest::newRow("pair") << fish << fish;
    QTest::newRow("first half at the end") << fish.left(1) << QString();
    QTest::newRow("second half") << QStringLiteral("a") + fish.right(1) + QStringLiteral("b")
                                 << QStringLiteral("ab");
    QTest::newRow("halves the wrong way round") << fish.right(1) + fish.left(1) << QString();
    QTest::newRow("first half before a pair") << fish.left(1) + fish << fish;
    QTest::newRow("no characters") << QString(QChar(0xFFFE)) + QChar(0xFFFF) + QChar(0xFFFD)
                                   << QString(QChar(0xFFFD));
    QTest::newRow("delete stays") << QStringLiteral("\u007F\u0085") << QStringLiteral("\u007F\u0085");
}

void tst_ZrTrackExport::cleanTexts()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(ZrTrackText::Clean(text), expected);
}

void tst_ZrTrackExport::formatBySuffix_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("expected");
    QTest::newRow("gpx") << QStringLiteral("/a.b/c.gpx") << int(ZrTrackExport::Gpx);
    QTest::newRow("capitals") << QStringLiteral("C.KML") << int(ZrTrackExport::Kml);
    QTest::newRow("geojson") << QStringLiteral("x.geojson") << int(ZrTrackExport::GeoJson);
    QTest::newRow("json") << QStringLiteral("x.tar.json") << int(ZrTrackExport::GeoJson);
    QTest::newRow("csv") << QStringLiteral("x.csv") << int(ZrTrackExport::Csv);
    QTest::newRow("none") << QStringLiteral("/a.gpx/x") << int(ZrTrackExport::Csv);
}

void tst_ZrTrackExport::formatBySuffix()
{
    QFETCH(QString, path);
    QFETCH(int, expected);
    QCOMPARE(int(ZrTrackExport::FormatOf(path)), expected);
}

void tst_ZrTrackExport::existingFileIsReplaced()
{
    const Small small;
    Export(QStringLiteral("csv"), small.Data());
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::Append));
    file.write(QByteArray(100000, 'x'));
    file.close();
    QCOMPARE(Export(QStringLiteral("csv"), small.Data()), QByteArray(smallCsv));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

void tst_ZrTrackExport::unwritablePaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no such folder") << QStringLiteral("no/such/track.gpx");
    QTest::newRow("a folder") << QStringLiteral(".");
    QTest::newRow("in a file") << QStringLiteral("file/track.gpx");
}

void tst_ZrTrackExport::unwritablePaths()
{
    QFETCH(QString, path);
    path = m_dir->filePath(path);
    QFile file(m_dir->filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const Small small;
    ZrTrackExport out;
    QVERIFY(!out.Write(path, ZrTrackExport::Gpx, small.Data()));
    QVERIFY2(out.Error().startsWith(QStringLiteral("Cannot create %1: ").arg(path)), qPrintable(out.Error()));
    // The next one forgets the error.
    QVERIFY(out.Write(m_dir->filePath(QStringLiteral("good.gpx")), ZrTrackExport::Gpx, small.Data()));
    QCOMPARE(out.Error(), QString());
}

void tst_ZrTrackExport::fullDiskLeavesTheTarget_data()
{
    manyPoints_data();
}

#ifdef Q_OS_UNIX

void tst_ZrTrackExport::fullDiskLeavesTheTarget()
{
    QFETCH(QString, format);
    const QString path = m_dir->filePath(QStringLiteral("track.") + format);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("precious");
    file.close();
    const Small small;
    std::vector<ZrTrackPoint> points;
    for (int i = 0; i < 5000; ++i)
        points.push_back(At(i, 1.0, 2.0));
    // Full in the middle, and when the last bytes are written at the end.
    for (const rlim_t size : {rlim_t{20000}, rlim_t{100}}) {
        ZrTrackData data = small.Data();
        if (size > 100)
            data.points = points;
        const pid_t child = fork();
        if (child == 0) {
            const rlimit limit{size, size};
            signal(SIGXFSZ, SIG_IGN);
            alarm(30);
            if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
                _exit(1);
            ZrTrackExport out;
            if (out.Write(path, ZrTrackExport::FormatOf(path), data))
                _exit(2);
            _exit(out.Error().startsWith(QStringLiteral("Cannot write %1: ").arg(path)) ? 0 : 3);
        }
        int status = -1;
        QCOMPARE(waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
        QCOMPARE(ReadWhole(path), QByteArray("precious"));
        QCOMPARE(
            QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
    }
}

#else

void tst_ZrTrackExport::fullDiskLeavesTheTarget()
{
    QSKIP("needs a limit on the size of files");
}

#endif

QTEST_GUILESS_MAIN(tst_ZrTrackExport)
#include "tst_ZrTrackExport.moc"
