// zr geo: positions as text and in the grid, from arguments and from lines.

#include "ZrToolRun.h"

#include <GeographicLib/UTMUPS.hpp>
#include <cmath>
#include <csignal>
#include <random>

namespace {

ToolResult RunGeo(const QStringList& arguments)
{
    return RunTool(QStringList(S("geo")) + arguments);
}

/// `zr geo` with \p input on its standard input.
ToolResult FeedGeo(const QStringList& arguments, const QByteArray& input)
{
    QProcess process;
    process.start(ToolPath(), QStringList(S("geo")) + arguments);
    process.waitForStarted(toolPatience);
    process.write(input);
    process.closeWriteChannel();
    return Finish(process);
}

/// `zr geo` by the shell: for redirections.
ToolResult ShellGeo(const QString& rest)
{
    QProcess process;
    process.start(S("/bin/sh"), {S("-c"), S("exec \"$0\" geo ") + rest, ToolPath()});
    return Finish(process);
}

QVector<QJsonObject> Objects(const ToolResult& result)
{
    QVector<QJsonObject> objects;
    for (const QString& line : result.Lines())
        objects << QJsonDocument::fromJson(line.toUtf8()).object();
    return objects;
}

const QStringList verbs{S("to-grid"), S("from-grid"), S("range"), S("format"), S("parse")};

} // namespace

class tst_zr_geo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void help();
    void noVerb();
    void wrongUsage_data();
    void wrongUsage();

    void toGrid_data();
    void toGrid();
    void toGridJson();
    void toGridIsTheGridOfOthers();
    void fromGrid_data();
    void fromGrid();
    void fromGridJson();
    void thereAndBack();
    void range_data();
    void range();
    void rangeJson();
    void format_data();
    void format();
    void formatJson();
    void parse_data();
    void parse();
    void parseJson();

    void wrongArgumentsAreNamed();
    void wrongLinesAreNumbered();
    void linesOfAllKinds();
    void answersAtOnce();
    void manyLines();
    void inputThatCannotBeRead();
    void outputThatCannotBeWritten();
    void readerThatHasSeenEnough();
    void interrupt();
};

void tst_zr_geo::help()
{
    const ToolResult geo = RunGeo({S("--help")});
    QCOMPARE(geo.code, 0);
    QVERIFY(RunTool({S("--help")}).out.contains("\n  geo "));
    for (const QString& verb : verbs) {
        QVERIFY2(geo.out.contains("\n  " + verb.toUtf8() + ' '), geo.out);
        const ToolResult result = RunGeo({verb, S("--help")});
        QCOMPARE(result.code, 0);
        QCOMPARE(result.err, QByteArray());
        QVERIFY2(
            result.out.contains("Usage: zr geo " + verb.toUtf8() + " [OPTIONS] [POSITION]..."), result.out);
        QVERIFY2(result.out.contains("--json"), result.out);
        QVERIFY2(result.out.contains("Examples:\n  zr geo " + verb.toUtf8()), result.out);
    }
}

void tst_zr_geo::noVerb()
{
    const ToolResult result = RunGeo({});
    QCOMPARE(result.code, 1);
    QCOMPARE(result.err, QByteArray("zr: No verb is given; zr geo --help lists them\n"));
}

void tst_zr_geo::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    const auto row = [](const QStringList& arguments, const char* error) {
        QTest::newRow(qPrintable(arguments.join(QLatin1Char(' ')))) << arguments << S(error);
    };
    row({S("fly")}, "fly");
    row({S("to-grid"), S("--zone"), S("61"), S("1,1")}, "--zone");
    row({S("to-grid"), S("--zone"), S("0"), S("1,1")}, "--zone");
    row({S("to-grid"), S("--precision"), S("7"), S("1,1")}, "--precision");
    row({S("to-grid"), S("--precision"), S("-1"), S("1,1")}, "--precision");
    row({S("to-grid"), S("--style"), S("deg"), S("1,1")}, "--style");
    row({S("from-grid"), S("--zone"), S("30"), S("500000 1")},
        "\"30\" is no zone: a number from 1 to 60 with a band letter, north or south, as in 30U");
    row({S("from-grid"), S("--zone"), S("61N"), S("500000 1")}, "\"61N\" is no zone");
    row({S("from-grid"), S("--zone"), S("30I"), S("500000 1")}, "\"30I\" is no zone");
    row({S("from-grid"), S("--zone"), QString(), S("500000 1")}, "--zone");
    row({S("from-grid"), S("--style"), S("utm"), S("30N 500000 1")},
        "--style: grid values are what is converted");
    row({S("format"), S("--style"), S("9"), S("1,1")},
        "\"9\" is no style: signed-deg, signed-degmin, signed-dms, signed-dmsfrac, deg, degmin, dms, "
        "dmsfrac, utm");
    row({S("range"), S("1,1")}, "The number of arguments must be a multiple of 2, not 1");
    row({S("range"), S("1,1"), S("2,2"), S("3,3")}, "The number of arguments must be a multiple of 2, not 3");
}

void tst_zr_geo::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const ToolResult result = RunGeo(arguments);
    QVERIFY2(result.code == 1, result.Text());
    QCOMPARE(result.out, QByteArray());
    QVERIFY2(QString::fromUtf8(result.err).startsWith(S("zr: ")), result.Text());
    QVERIFY2(QString::fromUtf8(result.err).contains(error), result.Text());
}

void tst_zr_geo::toGrid_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("out");

    const auto row = [](const QStringList& arguments, const char* out) {
        QTest::newRow(qPrintable(arguments.join(QLatin1Char(' ')))) << arguments << S(out);
    };
    // Figures of other software (GeographicLib), see also below.
    row({S("51.5, -1.25")}, "30 north 621468.06 mE 5706881.12 mN\n");
    row({S("0, 3")}, "31 north 500000.00 mE 0.00 mN\n");
    row({S("0, 3"), S("--feet")}, "31 north 1640416.67 ftE 0.00 ftN\n");
    row({S("0, 3"), S("--precision"), S("0")}, "31 north 500000 mE 0 mN\n");
    row({S("0, 3"), S("--precision"), S("6")}, "31 north 500000.000000 mE 0.000000 mN\n");
    row({S("0, 180")}, "1 north 166021.44 mE 0.00 mN\n");
    row({S("0, 180"), S("--zone"), S("60")}, "60 north 833978.56 mE 0.00 mN\n");
    row({S("--"), S("-33.9 18.4")}, "34 south 259583.22 mE 6245888.05 mN\n");
    row({S("0 N 3 E"), S("0 N 9 E")}, "31 north 500000.00 mE 0.00 mN\n32 north 500000.00 mE 0.00 mN\n");
    row({S("30 north 444500 5551200")}, "30 north 444500.00 mE 5551200.00 mN\n");
}

void tst_zr_geo::toGrid()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, out);
    const ToolResult result = RunGeo(QStringList(S("to-grid")) + arguments);
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(QString::fromUtf8(result.out), out);
    QCOMPARE(result.err, QByteArray());
}

void tst_zr_geo::toGridJson()
{
    const ToolResult result = RunGeo({S("to-grid"), S("--json"), S("51.5, -1.25"), S("0, 9"), S("--feet")});
    QVERIFY2(result.code == 0, result.Text());
    const QVector<QJsonObject> objects = Objects(result);
    QCOMPARE(objects.size(), 2);
    const QJsonObject o = objects[0];
    QCOMPARE(o.keys(),
        (QStringList{S("convergence"), S("east"), S("hemisphere"), S("latitude"), S("longitude"), S("north"),
            S("number"), S("zone")}));
    QCOMPARE(o.value(S("zone")).toInt(), 30);
    QCOMPARE(o.value(S("hemisphere")).toString(), S("north"));
    QVERIFY(std::fabs(o.value(S("east")).toDouble() - 621468.063) < 0.001); // metres all the same
    QVERIFY(std::fabs(o.value(S("north")).toDouble() - 5706881.118) < 0.001);
    QVERIFY(std::fabs(o.value(S("convergence")).toDouble() - 1.3697) < 0.0001);
    QCOMPARE(o.value(S("latitude")).toDouble(), 51.5);
    QCOMPARE(o.value(S("longitude")).toDouble(), -1.25);
    QCOMPARE(o.value(S("number")).toInt(), 1);
    QCOMPARE(objects[1].value(S("number")).toInt(), 2);
    QCOMPARE(objects[1].value(S("zone")).toInt(), 32);
}

void tst_zr_geo::toGridIsTheGridOfOthers()
{
    std::mt19937 random(20240615);
    std::uniform_real_distribution<double> lats(-80.0, 84.0);
    std::uniform_real_distribution<double> lngs(-180.0, 180.0);
    QByteArray input;
    QVector<QPair<double, double>> positions;
    for (int i = 0; i < 500; ++i) {
        const double lat = lats(random);
        const double lng = lngs(random);
        positions << qMakePair(lat, lng);
        input += QByteArray::number(lat, 'f', 12) + ", " + QByteArray::number(lng, 'f', 12) + '\n';
    }
    const ToolResult result = FeedGeo({S("to-grid"), S("--json")}, input);
    QVERIFY2(result.code == 0, result.Text());
    const QVector<QJsonObject> objects = Objects(result);
    QCOMPARE(objects.size(), 500);
    for (int i = 0; i < 500; ++i) {
        int zone = int(std::floor((positions[i].second + 180.0) / 6.0)) + 1;
        bool north = false;
        double x = 0.0;
        double y = 0.0;
        GeographicLib::UTMUPS::Forward(positions[i].first, positions[i].second, zone, north, x, y, zone);
        QCOMPARE(objects[i].value(S("zone")).toInt(), zone);
        QCOMPARE(objects[i].value(S("hemisphere")).toString(), north ? S("north") : S("south"));
        QVERIFY(std::fabs(objects[i].value(S("east")).toDouble() - x) < 0.001);
        QVERIFY(std::fabs(objects[i].value(S("north")).toDouble() - y) < 0.001);
        QCOMPARE(objects[i].value(S("number")).toInt(), i + 1);
    }
}

void tst_zr_geo::fromGrid_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("out");

    const auto row = [](const QStringList& arguments, const char* out) {
        QTest::newRow(qPrintable(arguments.join(QLatin1Char(' ')))) << arguments << S(out);
    };
    row({S("31N 500000 0")}, "0.000000000, 3.000000000\n");
    row({S("1N 500000 0")}, "0.000000000, -177.000000000\n");
    row({S("30U 444500 5551200")}, "50.110453485, -3.776198133\n");
    row({S("--zone"), S("30U"), S("444500 5551200"), S("444500 mE 5551200 mN")},
        "50.110453485, -3.776198133\n50.110453485, -3.776198133\n");
    row({S("--zone"), S("34 south"), S("--style"), S("dms"), S("261878 6243186")},
        "33° 55' 30\" S, 18° 25' 27\" E\n");
    row({S("--style"), S("signed-degmin"), S("30U 444500 5551200")}, "+50° 6.62721', -3° 46.57189'\n");
}

void tst_zr_geo::fromGrid()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, out);
    const ToolResult result = RunGeo(QStringList(S("from-grid")) + arguments);
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(QString::fromUtf8(result.out), out);
    QCOMPARE(result.err, QByteArray());
}

void tst_zr_geo::fromGridJson()
{
    const ToolResult result = RunGeo({S("from-grid"), S("--json"), S("34H 261878 6243186")});
    const QJsonObject o = result.Json();
    QCOMPARE(o.keys(),
        (QStringList{
            S("east"), S("hemisphere"), S("latitude"), S("longitude"), S("north"), S("number"), S("zone")}));
    QCOMPARE(o.value(S("zone")).toInt(), 34);
    QCOMPARE(o.value(S("hemisphere")).toString(), S("south"));
    QCOMPARE(o.value(S("east")).toDouble(), 261878.0);
    QCOMPARE(o.value(S("north")).toDouble(), 6243186.0);
    QVERIFY(std::fabs(o.value(S("latitude")).toDouble() + 33.924866343) < 1e-8);
    QVERIFY(std::fabs(o.value(S("longitude")).toDouble() - 18.424062098) < 1e-8);
}

void tst_zr_geo::thereAndBack()
{
    std::mt19937 random(20240616);
    std::uniform_real_distribution<double> lats(-80.0, 84.0);
    std::uniform_real_distribution<double> lngs(-180.0, 180.0);
    QByteArray input;
    for (int i = 0; i < 300; ++i)
        input += QByteArray::number(lats(random), 'f', 9) + ", " + QByteArray::number(lngs(random), 'f', 9)
            + '\n';
    const ToolResult there = FeedGeo({S("to-grid"), S("--precision"), S("6")}, input);
    QVERIFY2(there.code == 0, there.Text());
    const ToolResult back = FeedGeo({S("from-grid")}, there.out);
    QVERIFY2(back.code == 0, back.Text());
    const QStringList lines = back.Lines();
    const QList<QByteArray> before = input.trimmed().split('\n');
    QCOMPARE(lines.size(), 300);
    for (int i = 0; i < 300; ++i) {
        for (int part = 0; part < 2; ++part) {
            const double was = before[i].split(',')[part].toDouble();
            QVERIFY2(std::fabs(lines[i].split(QLatin1Char(','))[part].toDouble() - was) < 6e-8, before[i]);
        }
    }
}

void tst_zr_geo::range_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("out");

    QTest::newRow("degree north") << QStringList{S("0, 0"), S("1, 0")} << S("111194.927 m 0.0000°\n");
    QTest::newRow("degree east") << QStringList{S("0 0"), S("0 1")} << S("111194.927 m 90.0000°\n");
    QTest::newRow("degree west") << QStringList{S("0 0"), S("0 N 1 W")} << S("111194.927 m 270.0000°\n");
    QTest::newRow("nowhere") << QStringList{S("5 5"), S("5 5")} << S("0.000 m 0.0000°\n");
    QTest::newRow("two ranges") << QStringList{S("0 0"), S("1 0"), S("0 0"), S("0 1")}
                                << S("111194.927 m 0.0000°\n111194.927 m 90.0000°\n");
    QTest::newRow("across 180") << QStringList{S("0, 179.5"), S("0, -179.5")} << S("111194.927 m 90.0000°\n");
}

void tst_zr_geo::range()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, out);
    const ToolResult result = RunGeo(QStringList(S("range")) + arguments);
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(QString::fromUtf8(result.out), out);
    if (arguments.size() == 2) {
        for (const char* between : {" to ", " TO ", "|", " | ", "\t"}) {
            const ToolResult line = FeedGeo({S("range")}, arguments.join(S(between)).toUtf8() + '\n');
            QVERIFY2(line.code == 0, line.Text());
            QCOMPARE(QString::fromUtf8(line.out), out);
        }
    }
}

void tst_zr_geo::rangeJson()
{
    const ToolResult result = FeedGeo({S("range"), S("--json")}, "0 0 to 1 0\n");
    const QJsonObject o = result.Json();
    QCOMPARE(o.keys(), (QStringList{S("bearing"), S("from"), S("number"), S("range"), S("to")}));
    QVERIFY(std::fabs(o.value(S("range")).toDouble() - 111194.92664455874) < 1e-6);
    QCOMPARE(o.value(S("bearing")).toDouble(), 0.0);
    QCOMPARE(o.value(S("to")).toObject().value(S("latitude")).toDouble(), 1.0);
    QCOMPARE(o.value(S("from")).toObject().value(S("longitude")).toDouble(), 0.0);
}

void tst_zr_geo::format_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<QString>("out");

    QTest::newRow("deg") << "deg" << S("51.12345679° N, 1.25000000° W");
    QTest::newRow("degmin") << "degmin" << S("51° 7.40741' N, 1° 15.00000' W");
    QTest::newRow("dms") << "dms" << S("51° 7' 24\" N, 1° 15' 0\" W");
    QTest::newRow("dmsfrac") << "dmsfrac" << S("51° 7' 24.444\" N, 1° 15' 0.000\" W");
    QTest::newRow("signed-deg") << "signed-deg" << S("+51.12345679°, -1.25000000°");
    QTest::newRow("signed-degmin") << "signed-degmin" << S("+51° 7.40741', -1° 15.00000'");
    QTest::newRow("signed-dms") << "signed-dms" << S("+51° 7' 24\", -1° 15' 0\"");
    QTest::newRow("signed-dmsfrac") << "signed-dmsfrac" << S("+51° 7' 24.444\", -1° 15' 0.000\"");
    QTest::newRow("utm") << "utm" << S("30 north 622466.61 mE 5665010.10 mN");
}

void tst_zr_geo::format()
{
    QFETCH(QString, style);
    QFETCH(QString, out);
    const ToolResult result = RunGeo({S("format"), S("--style"), style, S("51.123456789, -1.25")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(QString::fromUtf8(result.out), out + QLatin1Char('\n'));
    if (style == S("dmsfrac"))
        QCOMPARE(RunGeo({S("format"), S("51.123456789, -1.25")}).out, result.out);
    // What is written can be read.
    const ToolResult back = FeedGeo({S("parse")}, result.out);
    QVERIFY2(back.code == 0, back.Text());
    QVERIFY2(back.out.startsWith(style.contains(S("dms")) ? "51.123" : "51.123456"), back.Text());
}

void tst_zr_geo::formatJson()
{
    const QJsonObject o = RunGeo({S("format"), S("--json"), S("51.5; 1 15")}).Json();
    QCOMPARE(o.keys(), (QStringList{S("latitude"), S("longitude"), S("number"), S("text")}));
    QCOMPARE(o.value(S("text")).toString(), S("51° 30' 0.000\" N, 1° 15' 0.000\" E"));
    QCOMPARE(o.value(S("longitude")).toDouble(), 1.25);
}

void tst_zr_geo::parse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("out");

    QTest::newRow("decimal") << "51.5, -1.25"
                             << "51.500000000, -1.250000000";
    QTest::newRow("dms") << S("N51° 7' 24.444\" W1° 30' 15\"") << "51.123456667, -1.504166667";
    QTest::newRow("primes") << S("51°7′24.444″N 1°30′15″W") << "51.123456667, -1.504166667";
    QTest::newRow("decimal commas") << "51,5; 1,25"
                                    << "51.500000000, 1.250000000";
    QTest::newRow("grid") << "zone 30U, 444500 mE, 5551200 mN"
                          << "50.110453485, -3.776198133 (zone 30 north)";
    QTest::newRow("grid in the south") << "34H 261878 6243186"
                                       << "-33.924866343, 18.424062098 (zone 34 south)";
}

void tst_zr_geo::parse()
{
    QFETCH(QString, text);
    QFETCH(QString, out);
    const ToolResult result = RunGeo({S("parse"), text});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(QString::fromUtf8(result.out), out + QLatin1Char('\n'));
    QCOMPARE(FeedGeo({S("parse")}, text.toUtf8()).out, result.out); // without a line end
}

void tst_zr_geo::parseJson()
{
    const ToolResult result = RunGeo({S("parse"), S("--json"), S("51.5 N 1.25 W"), S("30U 444500 5551200")});
    const QVector<QJsonObject> objects = Objects(result);
    QCOMPARE(objects.size(), 2);
    QCOMPARE(
        objects[0].keys(), (QStringList{S("form"), S("latitude"), S("longitude"), S("number"), S("text")}));
    QCOMPARE(objects[0].value(S("form")).toString(), S("geographic"));
    QCOMPARE(objects[0].value(S("text")).toString(), S("51.5 N 1.25 W"));
    QCOMPARE(objects[1].value(S("form")).toString(), S("grid"));
    QCOMPARE(objects[1].value(S("zone")).toInt(), 30);
    QCOMPARE(objects[1].value(S("hemisphere")).toString(), S("north"));
    QCOMPARE(objects[1].value(S("east")).toDouble(), 444500.0);
}

void tst_zr_geo::wrongArgumentsAreNamed()
{
    const ToolResult result = RunGeo({S("parse"), S("1, 1"), S("95, 1"), S("x"), S("2, 2")});
    QCOMPARE(result.code, 1);
    QCOMPARE(QString::fromUtf8(result.out), S("1.000000000, 1.000000000\n2.000000000, 2.000000000\n"));
    QCOMPARE(QString::fromUtf8(result.err),
        S("zr: \"95, 1\": The latitude 95 is beyond 90 degrees; the latitude comes first\n"
          "zr: \"x\": There is no number in it\n"));
    const ToolResult pair = RunGeo({S("range"), S("1, 1"), S("95, 1")});
    QCOMPARE(pair.code, 1);
    QCOMPARE(QString::fromUtf8(pair.err),
        S("zr: \"1, 1\" \"95, 1\": Second position: The latitude 95 is beyond 90 degrees; the latitude comes "
          "first\n"));
    const ToolResult grid = RunGeo({S("from-grid"), S("1, 1")});
    QCOMPARE(grid.code, 1);
    QCOMPARE(grid.err, QByteArray("zr: \"1, 1\": It is not an easting and a northing with their zone\n"));
    const ToolResult far = RunGeo({S("to-grid"), S("--zone"), S("31"), S("10, 120")});
    QCOMPARE(far.code, 1);
    QCOMPARE(far.err,
        QByteArray(
            "zr: \"10, 120\": The position is 117.0 degrees from the middle of zone 31, which does not reach "
            "so far\n"));
    const ToolResult polar = RunGeo({S("to-grid"), S("85, 0")});
    QCOMPARE(polar.code, 1);
    QCOMPARE(polar.err,
        QByteArray("zr: \"85, 0\": The latitude 85 is beyond the grid, which goes from 80 degrees south to "
                   "84 north\n"));
    QCOMPARE(RunGeo({S("format"), S("--style"), S("utm"), S("85, 0")}).code, 1);
    QCOMPARE(RunGeo({S("parse"), QString()}).err, QByteArray("zr: \"\": The position is empty\n"));
}

void tst_zr_geo::wrongLinesAreNumbered()
{
    for (const QString& verb : {S("to-grid"), S("format"), S("parse")}) {
        const ToolResult result = FeedGeo({verb}, "1, 1\n\n  \n95, 1\r\n2, 2\nhello 1\n");
        QCOMPARE(result.code, 2);
        QCOMPARE(result.Lines().size(), 2);
        QCOMPARE(QString::fromUtf8(result.err),
            S("zr: line 4: The latitude 95 is beyond 90 degrees; the latitude comes first\n"
              "zr: line 6: It is not a position in latitude and longitude, nor with zone, easting and "
              "northing\n"));
    }
    const ToolResult range = FeedGeo({S("range")}, "1, 1\n1,1 to 2,2 to 3,3\nx to 1,1\n1,1 to x\n");
    QCOMPARE(range.code, 2);
    QCOMPARE(QString::fromUtf8(range.err),
        S("zr: line 1: There must be two positions with \"to\" between them\n"
          "zr: line 2: There must be two positions with \"to\" between them\n"
          "zr: line 3: First position: There is no number in it\n"
          "zr: line 4: Second position: There is no number in it\n"));
    // In JSON the numbers tell which lines were good.
    const ToolResult json = FeedGeo({S("parse"), S("--json")}, "1, 1\nx\n2, 2\n");
    QCOMPARE(Objects(json).last().value(S("number")).toInt(), 3);
    QCOMPARE(json.code, 2);
}

void tst_zr_geo::linesOfAllKinds()
{
    const ToolResult empty = FeedGeo({S("parse")}, "");
    QCOMPARE(empty.code, 0);
    QCOMPARE(empty.out + empty.err, QByteArray());
    const ToolResult blank = FeedGeo({S("parse")}, "\n\r\n \t\n");
    QCOMPARE(blank.code, 0);
    QCOMPARE(blank.out + blank.err, QByteArray());
    // Bytes that are no UTF-8, zero bytes, and a line of megabytes.
    const ToolResult bytes = FeedGeo({S("parse")}, QByteArray("51.5\xff, 1\n1\0, 1\n", 15) + "2, 2\n");
    QCOMPARE(bytes.code, 2);
    QCOMPARE(bytes.out, QByteArray("2.000000000, 2.000000000\n"));
    const ToolResult large = FeedGeo({S("parse")}, QByteArray(3000000, '1'));
    QCOMPARE(large.code, 2);
    QVERIFY2(large.err.contains("line 1: The text is too long for a position"), large.Text());
    QCOMPARE(large.out, QByteArray());
}

/// Who types a line sees the answer before the next one.
void tst_zr_geo::answersAtOnce()
{
    QProcess process;
    process.start(ToolPath(), {S("geo"), S("parse")});
    for (int i = 1; i <= 3; ++i) {
        process.write(QByteArray::number(i) + ", 1\n");
        QVERIFY(process.waitForReadyRead(toolPatience));
        QCOMPARE(process.readAllStandardOutput(), QByteArray::number(i) + ".000000000, 1.000000000\n");
    }
    process.closeWriteChannel();
    QCOMPARE(Finish(process).code, 0);
}

void tst_zr_geo::manyLines()
{
    QByteArray input;
    for (int i = 0; i < 20000; ++i)
        input += QByteArray::number(i % 90) + ".25, " + QByteArray::number(i % 180) + ".5\n";
    const ToolResult result = FeedGeo({S("parse")}, input);
    QCOMPARE(result.code, 0);
    const QStringList lines = result.Lines();
    QCOMPARE(lines.size(), 20000);
    QCOMPARE(lines[19999], S("19.250000000, 19.500000000"));
}

void tst_zr_geo::inputThatCannotBeRead()
{
    const ToolResult closed = ShellGeo(S("parse <&-"));
    QCOMPARE(closed.code, 2);
    QCOMPARE(closed.err, QByteArray("zr: standard input: Bad file descriptor\n"));
    const ToolResult folder = ShellGeo(S("parse < /tmp"));
    QCOMPARE(folder.code, 2);
    QCOMPARE(folder.err, QByteArray("zr: standard input: Is a directory\n"));
}

void tst_zr_geo::outputThatCannotBeWritten()
{
    const ToolResult full = ShellGeo(S("parse '1, 1' > /dev/full"));
    QCOMPARE(full.code, 3);
    QCOMPARE(full.err, QByteArray("zr: standard output: No space left on device\n"));
}

void tst_zr_geo::readerThatHasSeenEnough()
{
    QProcess process;
    process.start(
        S("/bin/sh"), {S("-c"), S("(yes '1, 1' | \"$0\" geo parse; echo $? >&2) | head -n 1"), ToolPath()});
    const ToolResult result = Finish(process);
    QCOMPARE(result.out, QByteArray("1.000000000, 1.000000000\n"));
    QCOMPARE(result.err, QByteArray("0\n"));
}

void tst_zr_geo::interrupt()
{
    QProcess process;
    process.start(ToolPath(), {S("geo"), S("parse")});
    process.write("1, 1\n");
    QVERIFY(process.waitForReadyRead(toolPatience));
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    const ToolResult result = Finish(process);
    QCOMPARE(result.code, 130);
    QCOMPARE(result.err, QByteArray());
}

QTEST_GUILESS_MAIN(tst_zr_geo)
#include "tst_zr_geo.moc"
