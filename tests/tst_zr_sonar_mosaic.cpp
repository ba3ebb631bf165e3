// `zr sonar mosaic`: the files it makes and what it says, against GeographicLib; what is refused; interrupts.

#include "SonarLine.h"
#include "ZrToolRun.h"

#include <QImage>

#include <csignal>

using namespace sonarline;

namespace {

ToolResult RunMosaic(const QStringList& arguments)
{
    return RunTool(QStringList{QStringLiteral("sonar"), QStringLiteral("mosaic")} + arguments);
}

/// The numbers of a world file.
std::vector<double> World(const QString& path)
{
    std::vector<double> values;
    for (const QByteArray& line : ReadWhole(path).split('\n')) {
        if (!line.isEmpty())
            values.push_back(line.toDouble());
    }
    return values;
}

} // namespace

class tst_zr_sonar_mosaic : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void writesPictureAndPlace();
    void textTellsWhatItWrote();
    void worldFileIsTrue();
    void geoTiff();
    void options_data();
    void options();
    void lines();
    void usageErrors_data();
    void usageErrors();
    void existingFiles_data();
    void existingFiles();
    void forceReplaces();
    void badOutputs();
    void tooLarge();
    void badInputs();
    void damagedLogGivesWhatIsThere();
    void fullDiskLeavesNothing();
    void interruptLeavesNothing();
    void help();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    ToolFolder m_folder;
    Plan m_plan;
    QString m_log;
    QString m_out;
};

void tst_zr_sonar_mosaic::init()
{
    m_folder.Renew();
    m_plan = Plan();
    m_plan.start = {48.4455, -68.828};
    m_plan.heading = 328.0;
    m_log = Path("linie ö.log");
    m_out = Path("bild ö.png");
    std::vector<Ping> pings = Straight(m_plan);
    pings[30].sides[sideStarboard][150] = 60000;
    pings[30].sides[sideStarboard][149] = 60000;
    pings[30].sides[sideStarboard][151] = 60000;
    QVERIFY(Write(m_log, pings));
}

void tst_zr_sonar_mosaic::writesPictureAndPlace()
{
    const ToolResult result = RunMosaic({m_log, m_out, S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    const QJsonObject json = result.Json();
    QCOMPARE(json.keys().join(QLatin1Char(' ')),
        S("east epsg files gaps height hemisphere in north out pixels_seen resolution width zone"));
    QCOMPARE(json.value(S("in")).toString(), m_log);
    QCOMPARE(json.value(S("out")).toString(), m_out);
    QCOMPARE(json.value(S("epsg")).toInt(), 32619);
    QCOMPARE(json.value(S("resolution")).toDouble(), 0.1);
    QCOMPARE(json.value(S("gaps")).toInt(), 0);
    QCOMPARE(json.value(S("files")).toArray(), QJsonArray({m_out, Path("bild ö.pgw"), Path("bild ö.prj")}));
    const QImage image(m_out);
    QCOMPARE(image.size(), QSize(json.value(S("width")).toInt(), json.value(S("height")).toInt()));
    QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
    const std::vector<double> world = World(Path("bild ö.pgw"));
    QCOMPARE(world.size(), std::size_t(6));
    QVERIFY(std::fabs(world[4] - json.value(S("east")).toDouble() - 0.05) < 1e-5);
    QVERIFY(std::fabs(world[5] - json.value(S("north")).toDouble() + 0.05) < 1e-5);
    QVERIFY(ReadWhole(Path("bild ö.prj")).startsWith("PROJCS[\"WGS_1984_UTM_Zone_19N\""));
    QCOMPARE(Names(m_folder.Path()).size(), 4);
}

void tst_zr_sonar_mosaic::textTellsWhatItWrote()
{
    const ToolResult result = RunMosaic({m_log, m_out, S("--resolution"), S("0.2")});
    QVERIFY2(result.code == 0, result.Text());
    const QStringList lines = result.Lines();
    QCOMPARE(lines.size(), 8);
    const QImage image(m_out);
    QCOMPARE(lines[0], S("Picture     %1 x %2 pixels of 0.2 m").arg(image.width()).arg(image.height()));
    QVERIFY(lines[1].startsWith(S("Seen        5")));
    QCOMPARE(lines[2], S("Grid        WGS 84 / UTM zone 19 north (EPSG:32619)"));
    QVERIFY(lines[3].startsWith(S("Middle      48.4455")));
    QCOMPARE(lines[4], S("Gaps        0"));
    QCOMPARE(
        lines[5], S("Written     %1, %2").arg(m_out, SizeText(static_cast<int>(QFileInfo(m_out).size()))));
    QVERIFY(lines[6].startsWith(S("Written     %1, ").arg(Path("bild ö.pgw"))));
    QVERIFY(lines[7].startsWith(S("Written     %1, ").arg(Path("bild ö.prj"))));
}

/// The bright sample, through picture and world file alone, lies where geodesics put it.
void tst_zr_sonar_mosaic::worldFileIsTrue()
{
    const ToolResult result = RunMosaic({m_log, m_out, S("--resolution"), S("0.02"), S("--gain"), S("none"),
        S("--sampling"), S("nearest"), S("--palette"), S("linear")});
    QVERIFY2(result.code == 0, result.Text());
    const QImage image(m_out);
    double column = 0.0;
    double row = 0.0;
    double count = 0.0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) && qGray(image.pixel(x, y)) > 200) {
                column += x;
                row += y;
                count += 1.0;
            }
        }
    }
    QVERIFY(count > 0.0);
    const std::vector<double> world = World(Path("bild ö.pgw"));
    const double east = world[4] + world[0] * column / count;
    const double north = world[5] + world[3] * row / count;
    const double slant = 150.5 * 0.1;
    const ZrGeoPoint target
        = Away(Away(m_plan.start, 328.0, 30 * 0.25), 58.0, std::sqrt(slant * slant - 25.0));
    const GridPoint expected = ToGrid(target, 19, false);
    const double off = std::hypot(east - expected.east, north - expected.north);
    QVERIFY2(off < 0.03, qPrintable(QString::number(off)));
}

void tst_zr_sonar_mosaic::geoTiff()
{
    const QString out = Path("bild ö.tif");
    const ToolResult result = RunMosaic({m_log, out, S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.Json().value(S("files")).toArray(), QJsonArray({out}));
    QProcess info;
    info.start(S("gdalinfo"), {S("-json"), out});
    const ToolResult told = Finish(info);
    QVERIFY2(told.code == 0, told.Text());
    QVERIFY(told.out.contains("32619"));
    QCOMPARE(Names(m_folder.Path()).size(), 2);
}

void tst_zr_sonar_mosaic::options_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("sameSize");
    const auto row = [](const QStringList& options, bool sameSize) {
        QTest::newRow(qPrintable(options.join(QLatin1Char(' ')))) << options << sameSize;
    };
    row({S("--palette"), S("gray")}, true);
    row({S("--gain"), S("none")}, true);
    row({S("--gain"), S("law")}, true);
    row({S("--sampling"), S("nearest")}, true);
    row({S("--nadir-gap"), S("3")}, true);
    row({S("--far-gap"), S("3")}, false);
    row({S("--side"), S("port")}, false);
    row({S("--side"), S("starboard")}, false);
    row({S("--heading-offset"), S("-17.5")}, false);
    row({S("--from-line"), S("10"), S("--to-line"), S("40")}, false);
    row({S("--resolution"), S("0.05")}, false);
}

void tst_zr_sonar_mosaic::options()
{
    QFETCH(QStringList, options);
    QFETCH(bool, sameSize);
    const QString plain = Path("plain.png");
    QCOMPARE(RunMosaic({m_log, plain}).code, 0);
    const ToolResult result = RunMosaic(QStringList{m_log, m_out} + options);
    QVERIFY2(result.code == 0, result.Text());
    const QImage before(plain);
    const QImage image(m_out);
    QVERIFY(image != before);
    QCOMPARE(image.size() == before.size(), sameSize);
}

void tst_zr_sonar_mosaic::lines()
{
    for (const QString& blend : {S("newest"), S("brightest"), S("average"), S("nadir")})
        QCOMPARE(RunMosaic({m_log, m_out, S("--force"), S("--blend"), blend}).code, 0);
    QCOMPARE(
        RunMosaic({m_log, m_out, S("--force"), S("--heading"), S("course"), S("--smooth"), S("0")}).code, 0);
    QCOMPARE(RunMosaic({m_log, m_out, S("--force"), S("--from-line"), S("59")}).code,
        2); // one line covers nothing
}

void tst_zr_sonar_mosaic::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const QStringList& arguments, const char* error) {
        QTest::newRow(name) << arguments << S(error);
    };
    const QString out = S("OUT.png");
    row("no output", {}, "zr: OUT is required");
    row("ending", {S("OUT.gif")},
        "zr: OUT.gif: The name of the output must end in .png, .jpg, .jpeg, .bmp, .tif, .tiff\n");
    row("resolution", {out, S("--resolution"), S("0")},
        "zr: --resolution: \"0\" is no number of metres from 0.001 to 1000\n");
    row("resolution NaN", {out, S("--resolution"), S("nan")}, "zr: --resolution: \"nan\" is no number");
    row("palette", {out, S("--palette"), S("mauve")},
        "zr: --palette: \"mauve\" is none of copper, linear, gray");
    row("gain", {out, S("--gain"), S("more")}, "zr: --gain: \"more\" is none of none, law, auto\n");
    row("blend", {out, S("--blend"), S("oldest")},
        "zr: --blend: \"oldest\" is none of newest, brightest, average, nadir\n");
    row("sampling", {out, S("--sampling"), S("cubic")},
        "zr: --sampling: \"cubic\" is none of nearest, bilinear\n");
    row("side", {out, S("--side"), S("left")}, "zr: --side: \"left\" is none of port, starboard, both\n");
    row("offset", {out, S("--heading-offset"), S("400")},
        "zr: --heading-offset: \"400\" is no number of degrees");
    row("from beyond", {out, S("--from-line"), S("60")}, "zr: There is no line 60; the last one is 59\n");
    row("to beyond", {out, S("--to-line"), S("99999999999")},
        "zr: There is no line 99999999999; the last one is 59\n");
    row("turned round", {out, S("--from-line"), S("9"), S("--to-line"), S("3")},
        "zr: --to-line (3) lies before --from-line (9)\n");
    row("no count", {out, S("--from-line"), S("x")}, "zr: --from-line: \"x\" is no count\n");
}

void tst_zr_sonar_mosaic::usageErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const QString name = arguments.isEmpty() ? QString() : Path(arguments[0].toUtf8().constData());
    if (!arguments.isEmpty()) {
        error.replace(arguments[0] + QLatin1Char(':'), name + QLatin1Char(':'));
        arguments[0] = name;
    }
    const ToolResult result = RunMosaic(QStringList(m_log) + arguments);
    QVERIFY2(result.code == 1, result.Text());
    QVERIFY2(QString::fromUtf8(result.err).startsWith(error), result.Text());
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(Names(m_folder.Path()).size(), 1);
}

void tst_zr_sonar_mosaic::existingFiles_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"bild ö.png", "bild ö.pgw", "bild ö.prj"})
        QTest::newRow(name) << S(name);
}

/// The files beside the picture are spared as well.
void tst_zr_sonar_mosaic::existingFiles()
{
    QFETCH(QString, name);
    const QString there = Path(name.toUtf8().constData());
    QVERIFY(WriteWhole(there, "old"));
    const ToolResult result = RunMosaic({m_log, m_out});
    QVERIFY2(result.code == 3, result.Text());
    QCOMPARE(QString::fromUtf8(result.err),
        S("zr: %1: The file exists already; --force replaces it\n").arg(there));
    QCOMPARE(ReadWhole(there), QByteArray("old"));
    QCOMPARE(Names(m_folder.Path()).size(), 2);
}

void tst_zr_sonar_mosaic::forceReplaces()
{
    for (const char* name : {"bild ö.png", "bild ö.pgw", "bild ö.prj"})
        QVERIFY(WriteWhole(Path(name), "old"));
    const ToolResult result = RunMosaic({m_log, m_out, S("--force")});
    QVERIFY2(result.code == 0, result.Text());
    QVERIFY(!QImage(m_out).isNull());
    QCOMPARE(World(Path("bild ö.pgw")).size(), std::size_t(6));
    QCOMPARE(Names(m_folder.Path()).size(), 4);
}

void tst_zr_sonar_mosaic::badOutputs()
{
    const ToolResult nowhere = RunMosaic({m_log, Path("missing/a.png")});
    QVERIFY2(nowhere.code == 3, nowhere.Text());
    QVERIFY(nowhere.err.contains("There is no folder"));
    QVERIFY(QDir().mkdir(Path("bild ö.pgw")));
    const ToolResult folder = RunMosaic({m_log, m_out, S("--force")});
    QVERIFY2(folder.code == 3, folder.Text());
    QVERIFY(folder.err.contains("This is a folder, not a file"));
    QVERIFY(QFile::copy(m_log, Path("log.png")));
    const ToolResult same = RunMosaic({Path("log.png"), Path("log.png"), S("--force")});
    QVERIFY2(same.code == 1, same.Text());
    QVERIFY(same.err.contains("The output is the same file as the input"));
    QVERIFY(QFile::copy(m_log, Path("b.prj")));
    const ToolResult beside = RunMosaic({Path("b.prj"), Path("b.png"), S("--force")});
    QVERIFY2(beside.code == 1, beside.Text());
    QCOMPARE(ReadWhole(Path("b.prj")), ReadWhole(m_log));
}

void tst_zr_sonar_mosaic::tooLarge()
{
    const ToolResult result = RunMosaic({m_log, m_out, S("--resolution"), S("0.001")});
    QVERIFY2(result.code == 2, result.Text());
    QVERIFY(result.err.contains("at most 64000000 pixels are allowed"));
    QCOMPARE(Names(m_folder.Path()).size(), 1);
}

void tst_zr_sonar_mosaic::badInputs()
{
    const ToolResult missing = RunMosaic({Path("none.log"), m_out});
    QCOMPARE(missing.code, 2);
    const Sample other(Path("other.log"));
    const ToolResult none = RunMosaic({other.path, m_out});
    QVERIFY2(none.code == 2, none.Text());
    QVERIFY(none.err.contains("The log holds no side-scan pings"));
    QVERIFY(WriteWhole(Path("text.log"), "this is no log, but long enough to hold the header of one ......"));
    QCOMPARE(RunMosaic({Path("text.log"), m_out}).code, 2);
    m_plan.start = {};
    QVERIFY(Write(m_log, Straight(m_plan)));
    const ToolResult nowhere = RunMosaic({m_log, m_out});
    QVERIFY2(nowhere.code == 2, nowhere.Text());
    QCOMPARE(
        QString::fromUtf8(nowhere.err), S("zr: %1: No side-scan line has a known position\n").arg(m_log));
    QVERIFY(!QFileInfo::exists(m_out));
}

void tst_zr_sonar_mosaic::damagedLogGivesWhatIsThere()
{
    QByteArray bytes = ReadWhole(m_log);
    bytes.truncate(bytes.size() / 2 + 3);
    QVERIFY(WriteWhole(m_log, bytes));
    const ToolResult result = RunMosaic({m_log, m_out});
    QVERIFY2(result.code == 2, result.Text());
    QVERIFY(!QImage(m_out).isNull());
    QVERIFY(result.err.startsWith("zr: " + m_log.toUtf8() + ": "));
}

void tst_zr_sonar_mosaic::fullDiskLeavesNothing()
{
    QVERIFY(WriteWhole(m_out, "old"));
    const ToolResult result = RunToolLimited({S("sonar"), S("mosaic"), m_log, m_out, S("--force")}, 4096);
    QVERIFY2(result.code == 3, result.Text());
    QVERIFY(result.err.startsWith("zr: " + m_out.toUtf8() + ": "));
    QCOMPARE(ReadWhole(m_out), QByteArray("old"));
    QCOMPARE(Names(m_folder.Path()).size(), 2);
}

/// Ctrl-C at any moment: the exit code of the signal and nothing left, or all done.
void tst_zr_sonar_mosaic::interruptLeavesNothing()
{
    m_plan.pings = 600;
    QVERIFY(Write(m_log, Straight(m_plan)));
    int interrupted = 0;
    for (int delay = 20; delay < 400; delay += 40) {
        for (const QString& name : Names(m_folder.Path())) {
            if (name.startsWith(S("bild")))
                QFile::remove(m_folder.Path(name.toUtf8().constData()));
        }
        QProcess process;
        process.start(ToolPath(), {S("sonar"), S("mosaic"), m_log, m_out, S("--resolution"), S("0.04")});
        QVERIFY(process.waitForStarted());
        QTest::qSleep(delay);
        ::kill(static_cast<pid_t>(process.processId()), SIGINT);
        const ToolResult result = Finish(process);
        // Before the tool has installed its handlers the signal ends it without an exit code.
        QVERIFY2(result.code == 130 || result.code == 0 || result.code == -1, result.Text());
        QCOMPARE(Names(m_folder.Path()).size(), result.code == 0 ? 4 : 1);
        interrupted += result.code == 130 ? 1 : 0;
    }
    QVERIFY(interrupted > 0);
}

void tst_zr_sonar_mosaic::help()
{
    const ToolResult result = RunMosaic({S("--help")});
    QCOMPARE(result.code, 0);
    for (const char* option : {"--resolution M", "--palette NAME", "--gain HOW", "--blend HOW", "--smooth S",
             "--heading FROM", "--heading-offset DEG", "--from-line N", "--to-line N", "--altitude FROM",
             "--side SIDE", "--force", "--json"})
        QVERIFY2(result.out.contains(option), option);
    QVERIFY(RunTool({S("sonar"), S("--help")}).out.contains("mosaic"));
}

QTEST_GUILESS_MAIN(tst_zr_sonar_mosaic)
#include "tst_zr_sonar_mosaic.moc"
