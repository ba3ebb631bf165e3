// zr route survey: every option by what it makes of the lines.

#include "ZrRouteRun.h"

namespace {

constexpr double centimetre = 0.01;
constexpr double north = 100.0 * northLeg; ///< metres of a degree of latitude
constexpr double east = 100.0 * eastLeg; ///< metres of a degree of longitude

/// The area: on the equator, 0.004 degrees of longitude, 445.278 m, by 0.002 degrees of latitude, 221.149 m.
constexpr double width = 0.004 * east;
constexpr double height = 0.002 * north;

struct Place
{
    double x; ///< metres east of the south-west corner
    double y; ///< metres north of it
};

} // namespace

class tst_zr_route_survey : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_folder.Renew();
        QVERIFY(WriteWhole(Area(), Collection({Rectangle("Bucht ä", 0.0, 3.0, 0.002, 3.004)})));
    }

    void defaults();
    void text();
    void headingAndSpacing();
    void overshoot();
    void marginAndMinLength();
    void entryCorners_data();
    void entryCorners();
    void orders_data();
    void orders();
    void crossAndAlternate();
    void ends();
    void turns();
    void waypointProperties();
    void nameOfTheRoute();
    void severalAreas();
    void areaFromARoute();
    void boxAroundATrack();
    void boxAcrossTheAntimeridian();
    void corridor();
    void corridorOneSided();
    void findingsGoToStandardError();
    void tooManyLines();
    void resultPassesTheCheck();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    QString Area() const { return Path("Gebiet ö.geojson"); }

    /// Plans into out.json; the JSON result. The waypoints are in `m_route`.
    QJsonObject Plan(const QStringList& options) { return Plan(Area(), options); }

    QJsonObject Plan(const QString& in, const QStringList& options)
    {
        const ToolResult result
            = RunRoute(QStringList{S("survey"), in, Path("out.json"), S("--json"), S("--force")} + options);
        m_err = result.err;
        if (result.code != 0)
            qWarning("%s", result.Text().constData());
        m_route = ReadRoute(Path("out.json"));
        return result.Json();
    }

    Place At(int index) const
    {
        const ZrWpt& wpt = *Items(m_route)[index];
        return {(wpt.lng - 3.0) * east, wpt.lat * north};
    }

    double LineLength(int index) const
    {
        return std::hypot(At(index + 1).x - At(index).x, At(index + 1).y - At(index).y);
    }

    bool IsAt(int index, double x, double y) const
    {
        return Near(At(index).x, x, centimetre) && Near(At(index).y, y, centimetre);
    }

    ToolFolder m_folder;
    ZrWpts m_route;
    QByteArray m_err;
};

void tst_zr_route_survey::defaults()
{
    const QJsonObject json = Plan({});
    QCOMPARE(m_err, QByteArray());
    QCOMPARE(json[S("in")].toString(), Area());
    QCOMPARE(json[S("out")].toString(), Path("out.json"));
    QCOMPARE(json[S("form")].toString(), S("settings"));
    QCOMPARE(json[S("name")].toString(), S("Bucht ä"));
    // Along the longest side; 221 m take five lines at 50 m.
    QVERIFY(Near(json[S("heading")].toDouble(), 90.0, 1e-3));
    QCOMPARE(json[S("lines")].toInt(), 5);
    QVERIFY(Near(json[S("line_length")].toDouble(), 5 * width, 0.02));
    QCOMPARE(json[S("waypoints")].toInt(), 10);
    // Four ways of 50 m between them, on the spot.
    QVERIFY(Near(json[S("path_length")].toDouble(), 5 * width + 200.0, 0.02));
    QVERIFY(Near(json[S("path_duration")].toDouble(), (5 * width + 200.0) / 0.5, 0.05));
    QCOMPARE(json[S("findings")].toArray().size(), 0);
    QCOMPARE(json[S("warnings")].toArray().size(), 0);
    QCOMPARE(json[S("bytes")].toInt(), ReadWhole(Path("out.json")).size());

    QVERIFY(m_route.linked);
    QVERIFY(!m_route.closed);
    QCOMPARE(WptNames(m_route).mid(0, 4), (QStringList{S("L1 S"), S("L1 E"), S("L2 S"), S("L2 E")}));
    const QUuid grid(json[S("grid_id")].toString());
    QVERIFY(!grid.isNull());
    for (const ZrWpt* wpt : Items(m_route)) {
        QCOMPARE(wpt->gridId, grid);
        QCOMPARE(wpt->r, 0.0);
        QCOMPARE(wpt->spdType, 0);
    }
    // Near and left of the heading east is north-west; equal shares are left at both sides.
    const double first = height - (height - 200.0) / 2.0;
    QVERIFY(IsAt(0, 0.0, first));
    QVERIFY(IsAt(1, width, first));
    QVERIFY(IsAt(2, width, first - 50.0));
    QVERIFY(IsAt(9, width, first - 200.0));
}

void tst_zr_route_survey::text()
{
    const ToolResult result = RunRoute({S("survey"), Area(), Path("plan ü.gpx"), S("--name"), S("Süd")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    const QStringList lines = result.Lines();
    QCOMPARE(lines.size(), 6);
    QCOMPARE(lines[0], S("Survey      Süd"));
    QCOMPARE(lines[1], S("Heading     90.00 degrees"));
    QVERIFY2(lines[2].startsWith(S("Lines       5, together 2226.3")), qPrintable(lines[2]));
    QVERIFY2(lines[3].startsWith(S("Path        2426.3")), qPrintable(lines[3]));
    QVERIFY(lines[3].contains(S(" m over the turn arcs, 1 h 20 min 52.")));
    QCOMPARE(lines[4], S("Findings    0"));
    QVERIFY(lines[5].startsWith(S("Written     %1: 10 waypoints, gpx, ").arg(Path("plan ü.gpx"))));
}

void tst_zr_route_survey::headingAndSpacing()
{
    QJsonObject json = Plan({S("--heading"), S("0")});
    QCOMPARE(json[S("lines")].toInt(), 9); // 445 m at 50 m
    QVERIFY(Near(json[S("line_length")].toDouble(), 9 * height, 0.05));
    QVERIFY(Near(At(1).x, At(0).x, centimetre));
    json = Plan({S("--heading"), S("longest")});
    QVERIFY(Near(json[S("heading")].toDouble(), 90.0, 1e-3));
    // Negative, and the other way round.
    for (const QStringList& heading :
        {QStringList{S("--heading"), S("-90")}, QStringList{S("--heading=270")}}) {
        json = Plan(heading);
        QCOMPARE(json[S("heading")].toDouble(), 270.0);
        QVERIFY(At(1).x < At(0).x);
    }
    json = Plan({S("--spacing"), S("22.5"), S("--heading"), S("90")});
    QCOMPARE(json[S("lines")].toInt(), 10);
    QVERIFY(Near(At(1).y - At(2).y, 22.5, centimetre));
}

void tst_zr_route_survey::overshoot()
{
    Plan({S("--overshoot"), S("12.5"), S("--heading"), S("90")});
    QVERIFY(Near(At(0).x, -12.5, centimetre));
    QVERIFY(Near(At(1).x, width + 12.5, centimetre));
    QVERIFY(Near(LineLength(0), width + 25.0, centimetre));
}

void tst_zr_route_survey::marginAndMinLength()
{
    const QJsonObject json = Plan({S("--margin"), S("10"), S("--heading"), S("90")});
    QVERIFY(Near(LineLength(0), width - 20.0, centimetre));
    QVERIFY(At(0).y <= height - 10.0 + centimetre);
    QCOMPARE(json[S("lines")].toInt(), 5);
    QCOMPARE(Plan({S("--min-length"), S("445"), S("--heading"), S("90")})[S("lines")].toInt(), 5);
    const ToolResult none = RunRoute(
        {S("survey"), Area(), Path("none.json"), S("--min-length"), S("446"), S("--heading"), S("90")});
    QVERIFY2(none.code == 2, none.Text());
    QVERIFY(QString::fromUtf8(none.err).startsWith(S("zr: ") + Area() + S(": ")));
    QVERIFY(!QFile::exists(Path("none.json")));
    QCOMPARE(RunRoute({S("survey"), Area(), Path("none.json"), S("--margin"), S("111")}).code, 2);
}

void tst_zr_route_survey::entryCorners_data()
{
    QTest::addColumn<bool>("fromEast");
    QTest::addColumn<bool>("fromSouth");
    QTest::newRow("near-left") << false << false;
    QTest::newRow("near-right") << false << true;
    QTest::newRow("far-left") << true << false;
    QTest::newRow("far-right") << true << true;
}

void tst_zr_route_survey::entryCorners()
{
    QFETCH(bool, fromEast);
    QFETCH(bool, fromSouth);
    Plan({S("--heading"), S("90"), S("--corner"), S(QTest::currentDataTag())});
    const double edge = (height - 200.0) / 2.0;
    QVERIFY(IsAt(0, fromEast ? width : 0.0, fromSouth ? edge : height - edge));
    QVERIFY(IsAt(1, fromEast ? 0.0 : width, fromSouth ? edge : height - edge));
}

void tst_zr_route_survey::orders_data()
{
    QTest::addColumn<QString>("expected");
    QTest::newRow("next") << S("L1 L2 L3 L4 L5");
    QTest::newRow("every-other") << S("L1 L3 L5 L4 L2");
    QTest::newRow("even-odd") << S("L2 L4 L1 L3 L5");
}

void tst_zr_route_survey::orders()
{
    QFETCH(QString, expected);
    Plan({S("--order"), S(QTest::currentDataTag())});
    QStringList lines;
    for (const QString& name : WptNames(m_route)) {
        if (name.endsWith(S(" S")))
            lines << name.section(QLatin1Char(' '), 0, 0);
    }
    QCOMPARE(lines.join(QLatin1Char(' ')), expected);
}

void tst_zr_route_survey::crossAndAlternate()
{
    QJsonObject json = Plan({S("--heading"), S("90"), S("--cross"), S("100")});
    // 445 m at 100 m take five more lines.
    QCOMPARE(json[S("lines")].toInt(), 10);
    QVERIFY(Near(json[S("line_length")].toDouble(), 5 * width + 5 * height, 0.05));
    QCOMPARE(Items(m_route)[10]->name.left(1), S("X"));
    QVERIFY(Near(At(11).x, At(10).x, centimetre));
    json = Plan({S("--heading"), S("90"), S("--alternate"), S("20")});
    QVERIFY(Near(At(1).y - At(2).y, 50.0, centimetre));
    QVERIFY(Near(At(3).y - At(4).y, 20.0, centimetre));
    QVERIFY(Near(At(5).y - At(6).y, 50.0, centimetre));
}

void tst_zr_route_survey::ends()
{
    // A triangle: its edges run aslant.
    QVERIFY(WriteWhole(Path("triangle.txt"), "0\t3\n0\t3.004\n0.002\t3\n"));
    const QJsonObject cover = Plan(Path("triangle.txt"), {S("--heading"), S("90")});
    const double covering = LineLength(0);
    const QJsonObject edge = Plan(Path("triangle.txt"), {S("--heading"), S("90"), S("--ends"), S("edge")});
    QCOMPARE(edge[S("lines")].toInt(), cover[S("lines")].toInt());
    // At the edge the line is as long as the triangle is wide there.
    QVERIFY(Near(LineLength(0), width * (1.0 - At(0).y / height), 0.02));
    QVERIFY(covering > LineLength(0) + 10.0);
    QCOMPARE(Plan(Path("triangle.txt"), {S("--heading"), S("90"), S("--ends"), S("cover")})[S("line_length")],
        cover[S("line_length")]);
}

void tst_zr_route_survey::turns()
{
    // Two radii are less than the spacing: two corners lead across, each a quarter of the circle.
    QJsonObject json = Plan({S("--heading"), S("90"), S("--turn-radius"), S("20")});
    QCOMPARE(json[S("findings")].toArray().size(), 0);
    QCOMPARE(
        WptNames(m_route).mid(0, 5), (QStringList{S("L1 S"), S("L1 E"), S("L1 T1"), S("L1 T2"), S("L2 S")}));
    QCOMPARE(Items(m_route)[2]->r, 20.0);
    QCOMPARE(json[S("waypoints")].toInt(), 18);
    // Each of four turns: two quarters and 10 m between them.
    const double turn = 3.14159265358979323846 * 20.0 + 10.0;
    QVERIFY(Near(json[S("path_length")].toDouble(), 5 * width + 4 * turn, 0.5));
    // More than the spacing: loops, unless they are not wanted.
    json = Plan({S("--heading"), S("90"), S("--turn-radius"), S("30")});
    QCOMPARE(json[S("waypoints")].toInt(), 10 + 4 * 4);
    QCOMPARE(json[S("findings")].toArray().size(), 4);
    json = Plan({S("--heading"), S("90"), S("--turn-radius"), S("30"), S("--no-loops")});
    QCOMPARE(json[S("waypoints")].toInt(), 10);
    QCOMPARE(json[S("findings")].toArray().size(), 4);
}

void tst_zr_route_survey::waypointProperties()
{
    const QVector<QPair<const char*, int>> presets{{"slow", 1}, {"medium", 2}, {"fast", 3}};
    for (const auto& [name, type] : presets) {
        Plan({S("--speed"), S(name)});
        for (const ZrWpt* wpt : Items(m_route))
            QCOMPARE(wpt->spdType, type);
    }
    const QJsonObject json = Plan({S("--speed"), S("1.25"), S("--z"), S("-12.5"), S("--z-type"), S("2")});
    for (const ZrWpt* wpt : Items(m_route)) {
        QCOMPARE(wpt->spdType, 4);
        QCOMPARE(wpt->speed, 1.25);
        QCOMPARE(wpt->z, -12.5);
        QCOMPARE(wpt->zType, 2);
    }
    QVERIFY(Near(json[S("path_duration")].toDouble(), json[S("path_length")].toDouble() / 1.25, 1e-6));
}

void tst_zr_route_survey::nameOfTheRoute()
{
    QCOMPARE(Plan({S("--name"), S("Nord ö")})[S("name")].toString(), S("Nord ö"));
    QCOMPARE(m_route.prefix, S("Nord ö"));
    Plan({S("--prefix"), S("P")});
    QCOMPARE(m_route.prefix, S("P"));
}

void tst_zr_route_survey::severalAreas()
{
    QVERIFY(WriteWhole(Path("two.geojson"),
        Collection(
            {Rectangle("west", 0.0, 3.0, 0.002, 3.001), Rectangle("ost ß", 0.0, 3.002, 0.002, 3.004)})));
    const ToolResult which = RunRoute({S("survey"), Path("two.geojson"), Path("x.json")});
    QCOMPARE(which.code, 1);
    QCOMPARE(QString::fromUtf8(which.err),
        S("zr: %1: There are several areas; --area chooses one of \"west\", \"ost ß\"\n")
            .arg(Path("two.geojson")));
    const ToolResult none
        = RunRoute({S("survey"), Path("two.geojson"), Path("x.json"), S("--area"), S("süd")});
    QCOMPARE(none.code, 1);
    QCOMPARE(QString::fromUtf8(none.err),
        S("zr: %1: There is no area \"süd\"; there is \"west\", \"ost ß\"\n").arg(Path("two.geojson")));
    QVERIFY(!QFile::exists(Path("x.json")));
    QCOMPARE(Plan(Path("two.geojson"), {S("--area"), S("ost ß")})[S("name")].toString(), S("ost ß"));
    for (int i = 0; i < Items(m_route).size(); ++i)
        QVERIFY(At(i).x > 0.002 * east - centimetre);
    Plan({S("--area"), S("Bucht ä")});
    QCOMPARE(m_route.prefix, S("Bucht ä"));
}

void tst_zr_route_survey::areaFromARoute()
{
    QVERIFY(WriteWhole(Path("corners.txt"), "0\t3\n0\t3.004\n0.002\t3.004\n0.002\t3\n"));
    const QJsonObject json = Plan(Path("corners.txt"), {S("--heading"), S("90")});
    QCOMPARE(json[S("name")].toString(), S("corners"));
    QVERIFY(Near(json[S("line_length")].toDouble(), 5 * width, 0.02));
}

void tst_zr_route_survey::boxAroundATrack()
{
    // A track through the area, and a waypoint beside it.
    QVERIFY(WriteWhole(Path("track.gpx"),
        "<gpx><wpt lat=\"0.002\" lon=\"3.001\"/><trk><trkseg><trkpt lat=\"0.0005\" lon=\"3\"/>"
        "<trkpt lat=\"0\" lon=\"3.002\"/></trkseg><trkseg><trkpt lat=\"0.001\" lon=\"3.004\"/></trkseg></trk>"
        "</gpx>"));
    QJsonObject json = Plan(Path("track.gpx"), {S("--box"), S("0"), S("--heading"), S("90")});
    QVERIFY(Near(json[S("line_length")].toDouble(), 5 * width, 0.02));
    QCOMPARE(json[S("name")].toString(), S("track"));
    const double first = height - (height - 200.0) / 2.0;
    QVERIFY(IsAt(0, 0.0, first));
    // Wider by 20 m on all sides: 261 m take six lines.
    json = Plan(Path("track.gpx"), {S("--box"), S("20"), S("--heading"), S("90")});
    QCOMPARE(json[S("lines")].toInt(), 6);
    QVERIFY(Near(json[S("line_length")].toDouble(), 6 * (width + 40.0), 0.02));
    QVERIFY(IsAt(0, -20.0, height + 20.0 - (height + 40.0 - 250.0) / 2.0));
    // A polygon counts as well.
    QVERIFY(Near(Plan({S("--box"), S("0")})[S("line_length")].toDouble(), 5 * width, 0.02));
    // One point has no area without a margin.
    QVERIFY(WriteWhole(Path("one.txt"), "0\t3\n"));
    QCOMPARE(RunRoute({S("survey"), Path("one.txt"), Path("x.json"), S("--box"), S("0")}).code, 2);
    json = Plan(Path("one.txt"), {S("--box"), S("100"), S("--heading"), S("0")});
    QVERIFY(Near(LineLength(0), 200.0, centimetre));
}

void tst_zr_route_survey::boxAcrossTheAntimeridian()
{
    QVERIFY(WriteWhole(Path("far.txt"), "0\t179.998\n0.002\t-179.998\n"));
    const QJsonObject json = Plan(Path("far.txt"), {S("--box"), S("0"), S("--heading"), S("90")});
    QVERIFY(Near(json[S("line_length")].toDouble(), 5 * width, 0.02));
}

void tst_zr_route_survey::corridor()
{
    QVERIFY(WriteWhole(Path("guide.txt"), listHead + "A\t0\t3\t0\t0\t0\nB\t0\t3.004\t0\t0\t0\n"));
    const QJsonObject json = Plan(Path("guide.txt"), {S("--corridor"), S("--spacing"), S("25")});
    QCOMPARE(json[S("name")].toString(), S("Plan"));
    QVERIFY(Near(json[S("heading")].toDouble(), 90.0, 1e-3));
    QCOMPARE(json[S("lines")].toInt(), 3);
    QVERIFY(Near(json[S("line_length")].toDouble(), 3 * width, 0.02));
    QVERIFY(IsAt(0, 0.0, 25.0)); // to the left of the way east
    QVERIFY(IsAt(2, width, 0.0));
    QVERIFY(IsAt(4, 0.0, -25.0));
    // The flag may stand before the guide.
    const ToolResult before = RunRoute({S("survey"), S("--corridor"), Path("guide.txt"), Path("before.gpx")});
    QVERIFY2(before.code == 0, before.Text());
    // An area is no guide.
    const ToolResult area = RunRoute({S("survey"), S("--corridor"), Area(), Path("area.gpx")});
    QVERIFY2(area.code == 2, area.Text());
}

void tst_zr_route_survey::corridorOneSided()
{
    QVERIFY(WriteWhole(Path("guide.txt"), "0\t3\n0\t3.004\n"));
    QJsonObject json = Plan(
        Path("guide.txt"), {S("--corridor"), S("--left"), S("2"), S("--right"), S("0"), S("--no-centre")});
    QCOMPARE(json[S("lines")].toInt(), 2);
    QVERIFY(Near(At(0).y, 100.0, centimetre));
    QVERIFY(Near(At(2).y, 50.0, centimetre));
    json = Plan(Path("guide.txt"), {S("--corridor"), S("--left"), S("0"), S("--right"), S("3")});
    QCOMPARE(json[S("lines")].toInt(), 4);
    QVERIFY(Near(At(0).y, 0.0, centimetre));
    QVERIFY(Near(At(6).y, -150.0, centimetre));
}

void tst_zr_route_survey::findingsGoToStandardError()
{
    const ToolResult result = RunRoute({S("survey"), Area(), Path("out.gpx"), S("--turn-radius"), S("30")});
    QCOMPARE(result.code, 0);
    const QStringList lines = QString::fromUtf8(result.err).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 4);
    for (const QString& line : lines)
        QVERIFY(line.startsWith(S("zr: ")) && line.contains(S("closer than two turn radii")));
    QVERIFY(result.out.contains("\nFindings    4\n"));
    const QJsonObject json = Plan({S("--turn-radius"), S("30")});
    QCOMPARE(QString::fromUtf8(m_err),
        S("zr: ") + lines[0].mid(4) + S("\nzr: ") + lines[1].mid(4) + S("\nzr: ") + lines[2].mid(4)
            + S("\nzr: ") + lines[3].mid(4) + QLatin1Char('\n'));
    QCOMPARE(json[S("findings")].toArray()[0].toString(), lines[0].mid(4));
}

void tst_zr_route_survey::tooManyLines()
{
    const ToolResult result = RunRoute({S("survey"), Area(), Path("out.gpx"), S("--spacing"), S("0.01")});
    QVERIFY2(result.code == 2, result.Text());
    QCOMPARE(QString::fromUtf8(result.err),
        S("zr: %1: The area would need more than 10000 lines. Choose a larger spacing.\n").arg(Area()));
    QVERIFY(!QFile::exists(Path("out.gpx")));
}

void tst_zr_route_survey::resultPassesTheCheck()
{
    // Turns and overshoot within a fence 60 m around the area.
    const double lat = 60.0 / north;
    const double lng = 60.0 / east;
    QVERIFY(WriteWhole(
        Path("fence.geojson"), Collection({Rectangle("fence", -lat, 3.0 - lng, 0.002 + lat, 3.004 + lng)})));
    for (const char* out : {"plan.json", "plan.gpx", "plan.geojson", "plan.kml", "plan.txt", "plan.xml"}) {
        const ToolResult made = RunRoute(
            {S("survey"), Area(), Path(out), S("--turn-radius"), S("20"), S("--overshoot"), S("10")});
        QVERIFY2(made.code == 0, made.Text());
        const ToolResult check = RunRoute({S("check"), Path(out), S("--fence"), Path("fence.geojson")});
        QVERIFY2(check.code == 0, check.Text());
        QVERIFY2(check.out.endsWith("findings: none\n"), check.Text());
        const ToolResult tight
            = RunRoute({S("check"), Path(out), S("--fence"), Path("fence.geojson"), S("--margin"), S("40")});
        QVERIFY2(tight.code == 2, tight.Text());
    }
}

QTEST_GUILESS_MAIN(tst_zr_route_survey)
#include "tst_zr_route_survey.moc"
