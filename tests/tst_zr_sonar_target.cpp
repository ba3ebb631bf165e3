// `zr sonar target`: numbers against GeographicLib and by hand, the rule of columns, what is refused.

#include "SonarLine.h"
#include "ZrToolRun.h"

using namespace sonarline;

namespace {

ToolResult RunSonar(const QStringList& arguments)
{
    return RunTool(QStringList(QStringLiteral("sonar")) + arguments);
}

bool IsNear(double value, double expected, double within)
{
    if (std::fabs(value - expected) <= within)
        return true;
    qWarning("%.12g instead of %.12g", value, expected);
    return false;
}

} // namespace

class tst_zr_sonar_target : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void showsWhatItFound();
    void jsonKeys();
    void columnsGoFromPortToStarboard_data();
    void columnsGoFromPortToStarboard();
    void positionIsAGeodesic();
    void extent();
    void height();
    void headingOptions();
    void usageErrors_data();
    void usageErrors();
    void refusals_data();
    void refusals();
    void withoutAltitude();
    void logsThatCannotBeRead();
    void damagedLog();
    void helpTellsTheRule();

private:
    /// The target at a column of line 20.
    ToolResult At(const QStringList& rest) const
    {
        return RunSonar(QStringList{S("target"), m_log, S("--line"), S("20"), S("--json")} + rest);
    }

    ToolFolder m_folder;
    Plan m_plan;
    QString m_log;
};

void tst_zr_sonar_target::init()
{
    m_folder.Renew();
    m_plan = Plan();
    m_plan.start = {48.4455, -68.828};
    m_plan.heading = 328.0;
    m_plan.pings = 40;
    m_plan.step = 0.5;
    m_plan.samples = 400; // 0.1 m each
    m_plan.slantRange = 40.0;
    m_plan.altitude = 10.0;
    std::vector<Ping> pings = Straight(m_plan);
    pings[39].sides[sidePort].clear();
    m_log = m_folder.Path("linie ö.log");
    QVERIFY(Write(m_log, pings));
}

void tst_zr_sonar_target::showsWhatItFound()
{
    const ToolResult result = RunSonar({S("target"), m_log, S("--line"), S("20"), S("--column"), S("600"),
        S("--to-line"), S("30"), S("--shadow-column"), S("649")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    const QStringList lines = result.Lines();
    QCOMPARE(lines.size(), 12);
    QCOMPARE(lines[0], S("Target      line 20, starboard, sample 200"));
    QCOMPARE(lines[1], S("Time        2013-09-10T21:13:13.000Z"));
    QVERIFY(lines[2].startsWith(S("Position    48.44")));
    QCOMPARE(lines[3], S("Slant       20.05 m"));
    QCOMPARE(lines[4], S("Ground      17.38 m")); // root of 302.0025
    QCOMPARE(lines[5], S("Altitude    10.00 m"));
    QVERIFY(lines[6].startsWith(S("To          line 30, starboard, sample 200, at 48.44")));
    QCOMPARE(lines[7], S("Distance    5.00 m, bearing 328.0 degrees"));
    QCOMPARE(lines[8], S("Length      5.00 m along the track"));
    QCOMPARE(lines[9], S("Width       0.00 m across the track"));
    // 10 x 4.9 / 24.95; root of 522.5025 is 22.858
    QCOMPARE(lines[10], S("Height      1.96 m, +/- 0.04 m for a sample; by ground ranges 2.40 m"));
    QCOMPARE(lines[11], S("Shadow      5.48 m over the seabed"));
}

void tst_zr_sonar_target::jsonKeys()
{
    const ToolResult bare = At({S("--column"), S("600")});
    QVERIFY2(bare.code == 0, bare.Text());
    QCOMPARE(bare.Json().keys().join(QLatin1Char(' ')),
        S("altitude ground_range height in latitude length line longitude sample side slant_range time "
          "width"));
    QVERIFY(bare.Json().value(S("height")).isNull());
    QVERIFY(bare.Json().value(S("length")).isNull());
    const ToolResult all
        = At({S("--column"), S("600"), S("--to-column"), S("620"), S("--shadow-column"), S("649")});
    QVERIFY2(all.code == 0, all.Text());
    QCOMPARE(all.Json().keys().join(QLatin1Char(' ')),
        S("altitude bearing distance ground_range height height_flat height_step in latitude length line "
          "longitude sample shadow_length side slant_range time to width"));
    QCOMPARE(all.Json().value(S("in")).toString(), m_log);
}

void tst_zr_sonar_target::columnsGoFromPortToStarboard_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("sideOption");
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("side");
    QTest::addColumn<int>("sample");
    QTest::newRow("farthest port") << 20 << QString() << 0 << S("port") << 399;
    QTest::newRow("port") << 20 << QString() << 150 << S("port") << 249;
    QTest::newRow("starboard") << 20 << QString() << 600 << S("starboard") << 200;
    QTest::newRow("farthest starboard") << 20 << QString() << 799 << S("starboard") << 399;
    QTest::newRow("no port side") << 39 << QString() << 150 << S("starboard") << 150;
    QTest::newRow("port by itself") << 20 << S("port") << 250 << S("port") << 250;
    QTest::newRow("starboard by itself") << 20 << S("starboard") << 250 << S("starboard") << 250;
}

void tst_zr_sonar_target::columnsGoFromPortToStarboard()
{
    QFETCH(int, line);
    QFETCH(QString, sideOption);
    QFETCH(int, column);
    QFETCH(QString, side);
    QFETCH(int, sample);
    QStringList arguments{S("target"), m_log, S("--line"), QString::number(line), S("--column"),
        QString::number(column), S("--json")};
    if (!sideOption.isEmpty())
        arguments << S("--side") << sideOption;
    const ToolResult result = RunSonar(arguments);
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.Json().value(S("side")).toString(), side);
    QCOMPARE(result.Json().value(S("sample")).toInt(), sample);
    QCOMPARE(result.Json().value(S("line")).toInt(), line);
}

void tst_zr_sonar_target::positionIsAGeodesic()
{
    for (const QString& column : {S("600"), S("100")}) {
        const QJsonObject json = At({S("--column"), column}).Json();
        const double slant = (json.value(S("sample")).toDouble() + 0.5) * 0.1;
        QVERIFY(IsNear(json.value(S("slant_range")).toDouble(), slant, 1e-9));
        const ZrGeoPoint sonar = Away(m_plan.start, 328.0, 10.0);
        const ZrGeoPoint expected
            = Away(sonar, column == S("600") ? 58.0 : 238.0, std::sqrt(slant * slant - 100.0));
        const ZrGeoPoint found{json.value(S("latitude")).toDouble(), json.value(S("longitude")).toDouble()};
        QVERIFY2(Apart(found, expected) < 0.005, qPrintable(QString::number(Apart(found, expected))));
    }
}

void tst_zr_sonar_target::extent()
{
    const QJsonObject json
        = At({S("--column"), S("600"), S("--to-line"), S("10"), S("--to-column"), S("650")}).Json();
    const QJsonObject to = json.value(S("to")).toObject();
    const ZrGeoPoint from{json.value(S("latitude")).toDouble(), json.value(S("longitude")).toDouble()};
    const ZrGeoPoint end{to.value(S("latitude")).toDouble(), to.value(S("longitude")).toDouble()};
    QVERIFY(IsNear(json.value(S("distance")).toDouble(), Apart(from, end), 0.001));
    QVERIFY(IsNear(json.value(S("bearing")).toDouble(), Bearing(from, end), 0.05));
    QVERIFY(IsNear(json.value(S("length")).toDouble(), 5.0, 0.002));
    const double width = std::sqrt(25.05 * 25.05 - 100.0) - std::sqrt(20.05 * 20.05 - 100.0);
    QVERIFY(IsNear(json.value(S("width")).toDouble(), width, 0.002));
    QCOMPARE(to.value(S("line")).toInt(), 10);
    // Only the column: the same line.
    QCOMPARE(At({S("--column"), S("600"), S("--to-column"), S("650")})
                 .Json()
                 .value(S("to"))
                 .toObject()
                 .value(S("line"))
                 .toInt(),
        20);
}

void tst_zr_sonar_target::height()
{
    // Port: sample 249 to 299, slant ranges 24.95 and 29.95.
    const QJsonObject json = At({S("--column"), S("150"), S("--shadow-column"), S("100")}).Json();
    QVERIFY(IsNear(json.value(S("height")).toDouble(), 10.0 * 5.0 / 29.95, 1e-6));
    const double end = std::sqrt(29.95 * 29.95 - 100.0);
    const double length = end - std::sqrt(24.95 * 24.95 - 100.0);
    QVERIFY(IsNear(json.value(S("shadow_length")).toDouble(), length, 1e-6));
    QVERIFY(IsNear(json.value(S("height_flat")).toDouble(), 10.0 * length / end, 1e-6));
    QVERIFY(IsNear(json.value(S("height_step")).toDouble(), 1.0 / 29.95, 1e-6));
}

void tst_zr_sonar_target::headingOptions()
{
    const ZrGeoPoint sonar = Away(m_plan.start, 328.0, 10.0);
    const double ground = std::sqrt(20.05 * 20.05 - 100.0);
    const auto position = [this](const QStringList& options) {
        const QJsonObject json = At(QStringList{S("--column"), S("600")} + options).Json();
        return ZrGeoPoint{json.value(S("latitude")).toDouble(), json.value(S("longitude")).toDouble()};
    };
    QVERIFY(Apart(position({S("--heading-offset"), S("-10")}), Away(sonar, 48.0, ground)) < 0.005);
    QVERIFY(Apart(position({S("--heading"), S("course")}), Away(sonar, 58.0, ground)) < 0.01);
    QVERIFY(Apart(position({S("--heading"), S("recorded"), S("--smooth"), S("0")}), Away(sonar, 58.0, ground))
        < 0.005);
}

void tst_zr_sonar_target::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const QStringList& arguments, const char* error) {
        QTest::newRow(name) << arguments << S(error);
    };
    const QString line = S("--line");
    const QString column = S("--column");
    row("no line", {column, S("5")}, "zr: --line is required");
    row("no column", {line, S("5")}, "zr: --column is required");
    row("line beyond", {line, S("40"), column, S("5")}, "zr: There is no line 40; the last one is 39\n");
    row("column beyond", {line, S("5"), column, S("800")},
        "zr: There is no column 800 in line 5; the last one is 799\n");
    row("column beyond the side", {line, S("5"), column, S("400"), S("--side"), S("port")},
        "zr: There is no column 400 in line 5; the last one is 399\n");
    row("no such side", {line, S("39"), column, S("0"), S("--side"), S("port")},
        "zr: There is no column 0 in line 39, which has none\n");
    row("other end beyond", {line, S("5"), column, S("600"), S("--to-line"), S("99")},
        "zr: There is no line 99; the last one is 39\n");
    row("shadow on the other side", {line, S("5"), column, S("600"), S("--shadow-column"), S("100")},
        "zr: --shadow-column lies on the other side of the track\n");
    row("bad side", {line, S("5"), column, S("600"), S("--side"), S("left")},
        "zr: --side: \"left\" is none of port, starboard\n");
    row("bad line", {line, S("-5"), column, S("600")}, "zr: --line: \"-5\" is no count\n");
    row("bad heading", {line, S("5"), column, S("600"), S("--heading"), S("true")},
        "zr: --heading: \"true\" is none of recorded, course\n");
    row("bad smoothing", {line, S("5"), column, S("600"), S("--smooth"), S("nan")},
        "zr: --smooth: \"nan\" is no number of seconds from 0 to 600\n");
}

void tst_zr_sonar_target::usageErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const ToolResult result = RunSonar(QStringList{S("target"), m_log} + arguments);
    QVERIFY2(result.code == 1, result.Text());
    QVERIFY2(QString::fromUtf8(result.err).startsWith(error), result.Text());
    QCOMPARE(result.out, QByteArray());
}

void tst_zr_sonar_target::refusals_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    QTest::newRow("water column")
        << QStringList{S("--column"), S("450")}
        << S("Sample 50 of line 5 lies in the water column: at 5.05 m, the seabed begins at 10.00 m");
    QTest::newRow("shadow end before its beginning")
        << QStringList{S("--column"), S("600"), S("--shadow-column"), S("590")}
        << S("The shadow ends at sample 190, which does not lie behind its beginning at sample 200");
    QTest::newRow("shadow ends in the water")
        << QStringList{S("--column"), S("600"), S("--shadow-column"), S("420")}
        << S("Sample 20 of line 5 lies in the water column: at 2.05 m, the seabed begins at 10.00 m");
    QTest::newRow("other end in the water")
        << QStringList{S("--column"), S("600"), S("--to-column"), S("420")}
        << S("Sample 20 of line 5 lies in the water column: at 2.05 m, the seabed begins at 10.00 m");
}

void tst_zr_sonar_target::refusals()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const ToolResult result = RunSonar(QStringList{S("target"), m_log, S("--line"), S("5")} + arguments);
    QVERIFY2(result.code == 2, result.Text());
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(m_log, error));
    QCOMPARE(result.out, QByteArray());
}

void tst_zr_sonar_target::withoutAltitude()
{
    m_plan.altitude = unknown;
    QVERIFY(Write(m_log, Straight(m_plan)));
    const ToolResult result = At({S("--column"), S("600")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray("zr: warning: The log knows no altitude; ranges are slant ranges\n"));
    QVERIFY(result.Json().value(S("altitude")).isNull());
    QVERIFY(IsNear(result.Json().value(S("ground_range")).toDouble(), 20.05, 1e-9));
    const ToolResult shadow = At({S("--column"), S("600"), S("--shadow-column"), S("650")});
    QCOMPARE(shadow.code, 2);
    QVERIFY(shadow.err.contains("The altitude of the sonar is not known, and without it no height"));
}

void tst_zr_sonar_target::logsThatCannotBeRead()
{
    const QStringList rest{S("--line"), S("0"), S("--column"), S("0")};
    const ToolResult missing = RunSonar(QStringList{S("target"), m_folder.Path("none.log")} + rest);
    QCOMPARE(missing.code, 2);
    const ToolResult folder = RunSonar(QStringList{S("target"), m_folder.Path()} + rest);
    QCOMPARE(folder.code, 2);
    QVERIFY(folder.err.contains("This is a folder, not a file"));
    const Sample other(m_folder.Path("other.log"));
    const ToolResult none = RunSonar(QStringList{S("target"), other.path} + rest);
    QVERIFY2(none.code == 2, none.Text());
    QCOMPARE(QString::fromUtf8(none.err), S("zr: %1: The log holds no side-scan pings\n").arg(other.path));
}

void tst_zr_sonar_target::damagedLog()
{
    QByteArray bytes = ReadWhole(m_log);
    bytes.chop(500);
    QVERIFY(WriteWhole(m_log, bytes));
    const ToolResult result = At({S("--column"), S("600")});
    QVERIFY2(result.code == 2, result.Text());
    QCOMPARE(result.Json().value(S("line")).toInt(), 20); // what lies before the damage is told
    QVERIFY(result.err.startsWith("zr: " + m_log.toUtf8() + ": "));
}

void tst_zr_sonar_target::helpTellsTheRule()
{
    const ToolResult result = RunSonar({S("target"), S("--help")});
    QCOMPARE(result.code, 0);
    const QString text = QString::fromUtf8(result.out).simplified();
    QVERIFY(
        text.contains(S("with n port samples in the line, columns 0 to n-1 are port from the farthest to the "
                        "nearest, and from n on starboard from the nearest to the farthest")));
    QVERIFY(RunTool({S("sonar"), S("--help")}).out.contains("target"));
}

QTEST_GUILESS_MAIN(tst_zr_sonar_target)
#include "tst_zr_sonar_target.moc"
