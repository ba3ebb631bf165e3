// zr route convert, split and resume: routes in other forms and in parts.

#include "ZrRouteRun.h"

namespace {

/// The forms, their usual endings, and what a file of that form begins with or holds.
struct Form
{
    const char* name;
    const char* ending;
    QByteArray mark;
};

const QVector<Form> forms{
    {"settings", ".json", "\"waypoints\""},
    {"store", ".xml", "Waypoint"},
    {"gpx", ".gpx", "<gpx"},
    {"kml", ".kml", "<kml"},
    {"geojson", ".geojson", "FeatureCollection"},
    {"list", ".txt", "lat\tlong\tname"},
    {"list", ".tsv", "lat\tlong\tname"},
    {"list", ".tab", "lat\tlong\tname"},
    {"gpx", ".GPX", "<gpx"},
};

} // namespace

class tst_zr_route_files : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_folder.Renew();
        QVERIFY(WriteWhole(In(), angle));
    }

    void convertKnowsEveryForm();
    void convertThereAndBack();
    void convertToOverridesTheEnding();
    void convertTellsWhatIsLost();
    void convertTellsWhatIsLeftOut();
    void dashAtTheBeginning();

    void splitByKilometres();
    void splitByHours();
    void splitWithReserve();
    void splitAtWaypoints();
    void splitReturns();
    void splitNumbersSortAlike();
    void splitWritesNothingWhereOneExists();
    void splitRefusesWhatCannotBeRun();

    void resumeAtAWaypoint();
    void resumeOnALeg();
    void resumeAtTheEndIsRefused();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    QString In() const { return Path("plan äß 1.txt"); }

    ToolFolder m_folder;
};

void tst_zr_route_files::convertKnowsEveryForm()
{
    for (const Form& form : forms) {
        const QString out = Path("ü") + S(form.ending);
        const ToolResult text = RunRoute({S("convert"), In(), out});
        QVERIFY2(text.code == 0, text.Text());
        QCOMPARE(text.err, QByteArray());
        const QByteArray bytes = ReadWhole(out);
        QVERIFY2(bytes.contains(form.mark), form.ending);
        QVERIFY2(QString::fromUtf8(text.out).startsWith(S("%1: 3 waypoints, %2, ").arg(out, S(form.name))),
            text.Text());
        const QJsonObject json = RunRoute({S("convert"), In(), out, S("--force"), S("--json")}).Json();
        QCOMPARE(json[S("in")].toString(), In());
        QCOMPARE(json[S("out")].toString(), out);
        QCOMPARE(json[S("form")].toString(), S(form.name));
        QCOMPARE(json[S("waypoints")].toInt(), 3);
        QCOMPARE(json[S("bytes")].toInt(), bytes.size());
        QCOMPARE(json[S("warnings")].toArray().size(), 0);
        const ZrWpts route = ReadRoute(out);
        QVERIFY(route.linked);
        QCOMPARE(route.prefix, S("Plan"));
        QCOMPARE(WptNames(route), (QStringList{S("A"), S("Ecke ä"), S("C")}));
        QVERIFY(Near(Items(route)[2]->lng, 3.01, 1e-7));
        QCOMPARE(Items(route)[1]->r, 100.0);
        QCOMPARE(Items(route)[1]->spdType, 4);
        QCOMPARE(Items(route)[1]->speed, 2.0);
        QVERIFY(QFile::remove(out));
    }
}

void tst_zr_route_files::convertThereAndBack()
{
    // Through all forms one after the other; the last one can hold all that the first could.
    QByteArray north = angle;
    north.replace("0.01\t3.01", "-12.3456789\t-179.9999999");
    QVERIFY(WriteWhole(Path("0.txt"), north));
    QString last = Path("0.txt");
    int step = 0;
    for (const Form& form : forms) {
        const QString next = Path("") + QString::number(++step) + S(form.ending);
        const ToolResult result = RunRoute({S("convert"), last, next});
        QVERIFY2(result.code == 0, result.Text());
        last = next;
    }
    const ZrWpts route = ReadRoute(last);
    QVERIFY(Near(Items(route)[2]->lat, -12.3456789, 1e-7));
    QVERIFY(Near(Items(route)[2]->lng, -179.9999999, 1e-7));
    QCOMPARE(Items(route)[1]->r, 100.0);
    QCOMPARE(Items(route)[0]->spdType, 3);
}

void tst_zr_route_files::convertToOverridesTheEnding()
{
    QCOMPARE(RunRoute({S("convert"), In(), Path("plan.json"), S("--to"), S("gpx")}).code, 0);
    QVERIFY(ReadWhole(Path("plan.json")).contains("<gpx"));
    QCOMPARE(RunRoute({S("convert"), In(), Path("plan"), S("--to"), S("kml")}).code, 0);
    QVERIFY(ReadWhole(Path("plan")).contains("<kml"));
    // Reading goes by the content.
    QCOMPARE(RunRoute({S("info"), Path("plan.json"), S("--json")}).Json()[S("waypoint_count")].toInt(), 3);
    // The whole of the endings that the message names is taken.
    const ToolResult refused = RunRoute({S("convert"), In(), Path("plan.doc")});
    QCOMPARE(QString::fromUtf8(refused.err),
        S("zr: %1: The ending of the name tells no form: .json, .xml, .gpx, .kml, .geojson, .txt, .tsv or "
          ".tab; "
          "or give one with --to\n")
            .arg(Path("plan.doc")));
}

void tst_zr_route_files::convertTellsWhatIsLost()
{
    QByteArray greek = angle;
    greek.replace("Ecke \xC3\xA4", "\xCE\xB1");
    QVERIFY(WriteWhole(Path("greek.txt"), greek));
    const ToolResult result = RunRoute({S("convert"), Path("greek.txt"), Path("out.xml"), S("--json")});
    QCOMPARE(result.code, 0);
    QCOMPARE(QString::fromUtf8(result.err),
        S("zr: %1: waypoint 2: text that the store cannot hold was changed\n").arg(Path("out.xml")));
    const QJsonArray warnings = result.Json()[S("warnings")].toArray();
    QCOMPARE(warnings.size(), 1);
    QCOMPARE(warnings[0].toString(), S("waypoint 2: text that the store cannot hold was changed"));
}

void tst_zr_route_files::convertTellsWhatIsLeftOut()
{
    QVERIFY(WriteWhole(Path("two.gpx"),
        "<gpx><rte><name>one</name><rtept lat=\"1\" lon=\"2\"/><rtept lat=\"1.1\" lon=\"2\"/></rte>"
        "<rte><rtept lat=\"3\" lon=\"4\"/></rte></gpx>"));
    const ToolResult result = RunRoute({S("convert"), Path("two.gpx"), Path("out.txt")});
    QCOMPARE(result.code, 0);
    QVERIFY2(QString::fromUtf8(result.err).startsWith(S("zr: %1: ").arg(Path("two.gpx"))), result.Text());
    QCOMPARE(Items(ReadRoute(Path("out.txt"))).size(), 2);
}

void tst_zr_route_files::dashAtTheBeginning()
{
    QProcess process;
    process.setWorkingDirectory(m_folder.Path());
    process.start(ToolPath(), {S("route"), S("convert"), S("--"), QFileInfo(In()).fileName(), S("-out.gpx")});
    const ToolResult result = Finish(process);
    QVERIFY2(result.code == 0, result.Text());
    QVERIFY(ReadWhole(Path("-out.gpx")).contains("<gpx"));
}

void tst_zr_route_files::splitByKilometres()
{
    const ToolResult result
        = RunRoute({S("split"), In(), Path("dive ü.json"), S("--km"), S("1"), S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    const QJsonArray parts = result.Json()[S("routes")].toArray();
    // 2,176 m make two dives of 1,000 m and the rest.
    const QVector<double> lengths{1000.0, 1000.0, northLeg + eastLeg - 200.0 + quarter - 2000.0};
    QCOMPARE(parts.size(), 3);
    for (int i = 0; i < 3; ++i) {
        const QJsonObject part = parts[i].toObject();
        const QString out = m_folder.Path() + S("/dive ü-%1.json").arg(i + 1);
        QCOMPARE(part[S("out")].toString(), out);
        QVERIFY(Near(part[S("path_length")].toDouble(), lengths[i], 0.02));
        const ZrWpts route = ReadRoute(out);
        QVERIFY(route.linked);
        QCOMPARE(part[S("waypoints")].toInt(), Items(route).size());
    }
    QCOMPARE(Names(m_folder.Path()).size(), 4);
    const ToolResult text = RunRoute({S("split"), In(), Path("text.gpx"), S("--km"), S("1")});
    QCOMPARE(text.Lines().size(), 3);
    QVERIFY2(text.Lines()[0].startsWith(Path("text-1.gpx") + S(": 2 waypoints, gpx, ")), text.Text());
    QVERIFY(text.Lines()[0].endsWith(S(", 1000.000 m, 16 min 40.000 s")));
}

void tst_zr_route_files::splitByHours()
{
    // The first leg with the turn takes 1,162.8 s, the second one, at 2 m/s, 506.6 s.
    const ToolResult result
        = RunRoute({S("split"), In(), Path("dive.json"), S("--hours"), S("0.25"), S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    const QJsonArray parts = result.Json()[S("routes")].toArray();
    QCOMPARE(parts.size(), 2);
    QVERIFY(Near(parts[0].toObject()[S("path_duration")].toDouble(), 900.0, 0.02));
    const double whole = northLeg - 100.0 + quarter + (eastLeg - 100.0) / 2.0;
    QVERIFY(Near(parts[1].toObject()[S("path_duration")].toDouble(), whole - 900.0, 0.02));
}

void tst_zr_route_files::splitWithReserve()
{
    const ToolResult result = RunRoute(
        {S("split"), In(), Path("dive.json"), S("--km"), S("2"), S("--reserve"), S("50"), S("--json")});
    const QJsonArray parts = result.Json()[S("routes")].toArray();
    QCOMPARE(parts.size(), 3);
    QVERIFY(Near(parts[0].toObject()[S("path_length")].toDouble(), 1000.0, 0.02));
}

void tst_zr_route_files::splitAtWaypoints()
{
    const ToolResult result = RunRoute(
        {S("split"), In(), Path("dive.json"), S("--km"), S("1.5"), S("--whole-legs"), S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    const QJsonArray parts = result.Json()[S("routes")].toArray();
    QCOMPARE(parts.size(), 2);
    // The corner is an end of both, and ends never turn.
    QVERIFY(Near(parts[0].toObject()[S("path_length")].toDouble(), northLeg, 0.01));
    QVERIFY(Near(parts[1].toObject()[S("path_length")].toDouble(), eastLeg, 0.01));
    QCOMPARE(WptNames(ReadRoute(Path("dive-2.json"))), (QStringList{S("Ecke ä"), S("C")}));
}

void tst_zr_route_files::splitReturns()
{
    const ToolResult result
        = RunRoute({S("split"), In(), Path("dive.json"), S("--km"), S("4"), S("--return"), S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    const QJsonArray parts = result.Json()[S("routes")].toArray();
    QCOMPARE(parts.size(), 1);
    const double way = northLeg + eastLeg - 200.0 + quarter + std::hypot(northLeg, eastLeg);
    QVERIFY(Near(parts[0].toObject()[S("path_length")].toDouble(), way, 0.01));
    const ZrWpts route = ReadRoute(Path("dive-1.json"));
    QVERIFY(Near(Items(route).last()->lat, 0.0, 1e-9));
    QVERIFY(Near(Items(route).last()->lng, 3.0, 1e-9));
}

void tst_zr_route_files::splitNumbersSortAlike()
{
    const ToolResult result = RunRoute({S("split"), In(), Path("dive.gpx"), S("--km"), S("0.2")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.Lines().size(), 11); // 2,176 m
    QVERIFY(QFile::exists(Path("dive-01.gpx")));
    QVERIFY(QFile::exists(Path("dive-11.gpx")));
    // Without an ending.
    QCOMPARE(RunRoute({S("split"), In(), Path("dive"), S("--km"), S("50"), S("--to"), S("kml")}).code, 0);
    QVERIFY(ReadWhole(Path("dive-1")).contains("<kml"));
}

void tst_zr_route_files::splitWritesNothingWhereOneExists()
{
    QVERIFY(WriteWhole(Path("dive-3.json"), "before"));
    const QStringList names = Names(m_folder.Path());
    const ToolResult refused = RunRoute({S("split"), In(), Path("dive.json"), S("--km"), S("1")});
    QCOMPARE(refused.code, 3);
    QCOMPARE(refused.out, QByteArray());
    QCOMPARE(QString::fromUtf8(refused.err),
        S("zr: %1: The file exists already; --force replaces it\n").arg(Path("dive-3.json")));
    QCOMPARE(Names(m_folder.Path()), names);
}

void tst_zr_route_files::splitRefusesWhatCannotBeRun()
{
    QVERIFY(WriteWhole(Path("one.txt"), listHead + "A\t0\t3\t0\t0\t0\n"));
    const ToolResult one = RunRoute({S("split"), Path("one.txt"), Path("dive.json"), S("--km"), S("1")});
    QVERIFY2(one.code == 2, one.Text());
    QVERIFY(
        QString::fromUtf8(one.err).startsWith(S("zr: %1: There is nothing to split").arg(Path("one.txt"))));
    // The way there and back alone is longer.
    const ToolResult far
        = RunRoute({S("split"), In(), Path("dive.json"), S("--km"), S("0.5"), S("--return")});
    QVERIFY2(far.code == 2, far.Text());
    const ToolResult whole
        = RunRoute({S("split"), In(), Path("dive.json"), S("--km"), S("0.5"), S("--whole-legs")});
    QVERIFY2(whole.code == 2, whole.Text());
    QCOMPARE(Names(m_folder.Path()).size(), 2);
}

void tst_zr_route_files::resumeAtAWaypoint()
{
    const ToolResult text = RunRoute({S("resume"), In(), Path("rest.json"), S("--from"), S("1")});
    QVERIFY2(text.code == 0, text.Text());
    QVERIFY2(text.out.startsWith(Path("rest.json").toUtf8() + ": 2 waypoints, settings, "), text.Text());
    const ZrWpts route = ReadRoute(Path("rest.json"));
    QCOMPARE(WptNames(route), (QStringList{S("Ecke ä"), S("C")}));
    QCOMPARE(Items(route)[0]->pseudo, S("Start Mission"));
    QCOMPARE(Items(route)[0]->r, 0.0);
    QVERIFY(route.linked);
    const QJsonObject json
        = RunRoute({S("resume"), In(), Path("rest.json"), S("--from"), S("0"), S("--force"), S("--json")})
              .Json();
    QCOMPARE(json[S("from")].toInt(-1), 0);
    QCOMPARE(json[S("in")].toString(), In());
    QCOMPARE(json[S("out")].toString(), Path("rest.json"));
    QCOMPARE(json[S("waypoints")].toInt(), 3);
    QVERIFY(Near(json[S("path_length")].toDouble(), northLeg + eastLeg - 200.0 + quarter, 0.002));
}

void tst_zr_route_files::resumeOnALeg()
{
    const ToolResult result = RunRoute(
        {S("resume"), In(), Path("rest.json"), S("--from"), S("0"), S("--at"), S("0.005,3.0"), S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    // Half of the first leg is left.
    QVERIFY(
        Near(result.Json()[S("path_length")].toDouble(), northLeg / 2.0 + eastLeg - 200.0 + quarter, 0.002));
    const ZrWpts route = ReadRoute(Path("rest.json"));
    QCOMPARE(Items(route).size(), 3);
    QCOMPARE(Items(route)[0]->lat, 0.005);
    // South and west.
    const ToolResult south = RunRoute({S("resume"), In(), Path("rest.json"), S("--from"), S("0"), S("--at"),
        S("-0.005,-3.5"), S("--force")});
    QVERIFY2(south.code == 0, south.Text());
    QCOMPARE(Items(ReadRoute(Path("rest.json")))[0]->lng, -3.5);
}

void tst_zr_route_files::resumeAtTheEndIsRefused()
{
    const ToolResult result = RunRoute({S("resume"), In(), Path("rest.json"), S("--from"), S("2")});
    QVERIFY2(result.code == 2, result.Text());
    QVERIFY(QString::fromUtf8(result.err).startsWith(S("zr: ") + In() + S(": ")));
    QVERIFY(!QFile::exists(Path("rest.json")));
    const ToolResult beyond = RunRoute({S("resume"), In(), Path("rest.json"), S("--from"), S("3")});
    QCOMPARE(beyond.code, 1);
    QCOMPARE(beyond.err, QByteArray("zr: There is no waypoint 3; the last one is 2\n"));
}

QTEST_GUILESS_MAIN(tst_zr_route_files)
#include "tst_zr_route_files.moc"
