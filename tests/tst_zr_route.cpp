// What all verbs of `zr route` have in common: help, usage, the document, inputs and outputs.

#include "ZrRouteRun.h"

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char* const verbs[] = {"info", "convert", "survey", "check", "recalc", "split", "resume"};

/// The verbs that write a file, with IN and OUT for the paths. `split` writes OUT-1.
const QVector<QPair<const char*, QStringList>> writers{
    {"convert", {S("convert"), S("IN"), S("OUT")}},
    {"survey", {S("survey"), S("IN"), S("OUT")}},
    {"survey box", {S("survey"), S("IN"), S("OUT"), S("--box"), S("10")}},
    {"survey corridor", {S("survey"), S("--corridor"), S("IN"), S("OUT")}},
    {"recalc", {S("recalc"), S("IN"), S("OUT")}},
    {"split", {S("split"), S("IN"), S("OUT"), S("--km"), S("50")}},
    {"resume", {S("resume"), S("IN"), S("OUT"), S("--from"), S("1")}},
};

QStringList Filled(QStringList arguments, const QString& in, const QString& out)
{
    for (QString& argument : arguments) {
        if (argument == S("IN"))
            argument = in;
        else if (argument == S("OUT"))
            argument = out;
    }
    return arguments;
}

void AddWriters()
{
    QTest::addColumn<QStringList>("arguments");
    for (const auto& [name, arguments] : writers)
        QTest::newRow(name) << arguments;
}

/// Words of \p text that begin with "--".
QStringList LongOptions(const QString& text)
{
    QStringList found;
    const QRegularExpression pattern(S("--[a-z][a-z-]*"));
    QRegularExpressionMatchIterator it = pattern.globalMatch(text);
    while (it.hasNext())
        found << it.next().captured(0);
    found.removeDuplicates();
    return found;
}

/// The tool without the rights of the superuser.
class UnprivilegedProcess : public QProcess
{
protected:
    void setupChildProcess() override
    {
        constexpr unsigned nobody = 65534;
        if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0))
            ::_exit(99);
    }
};

} // namespace

class tst_zr_route : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_folder.Renew();
        QVERIFY(WriteWhole(In(), angle));
    }

    void helpListsTheVerbs();
    void missingVerbIsWrongUsage();
    void helpFitsATerminalAndHasAnExample_data();
    void helpFitsATerminalAndHasAnExample();
    void documentNamesEveryOption();

    void wrongUsage_data();
    void wrongUsage();
    void badInput_data();
    void badInput();
    void badAreas();

    void sameFileIsRefused_data() { AddWriters(); }

    void sameFileIsRefused();

    void existingOutputNeedsForce_data() { AddWriters(); }

    void existingOutputNeedsForce();

    void placesThatCannotBeWritten_data() { AddWriters(); }

    void placesThatCannotBeWritten();

    void folderWithoutTheRightToWrite_data() { AddWriters(); }

    void folderWithoutTheRightToWrite();

    void fullDisk_data() { AddWriters(); }

    void fullDisk();
    void interruptLeavesNothing();
    void replacedFileKeepsItsRights();
    void newFileHasOrdinaryRights();
    void linkIsFollowed();
    void fullStandardOutputIsAFailure();
    void localeDoesNotMatter();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    QString In() const { return Path("plan äß 1.txt"); }

    /// Where \p arguments write to when OUT is "out ü.json".
    QString Out(const QStringList& arguments) const
    {
        return Path(arguments.first() == S("split") ? "out ü-1.json" : "out ü.json");
    }

    ToolFolder m_folder;
};

void tst_zr_route::helpListsTheVerbs()
{
    const ToolResult help = RunTool({S("route"), S("--help")});
    QCOMPARE(help.code, 0);
    QCOMPARE(help.err, QByteArray());
    for (const char* verb : verbs)
        QVERIFY2(help.out.contains("\n  " + QByteArray(verb) + ' '), verb);
    QVERIFY(RunTool({S("--help")}).out.contains("\n  route "));
}

void tst_zr_route::missingVerbIsWrongUsage()
{
    const ToolResult none = RunTool({S("route")});
    QCOMPARE(none.code, 1);
    QCOMPARE(none.out, QByteArray());
    QCOMPARE(none.err, QByteArray("zr: No verb is given; zr route --help lists them\n"));
    const ToolResult unknown = RunTool({S("route"), S("sing")});
    QCOMPARE(unknown.code, 1);
    QVERIFY(unknown.err.startsWith("zr: The following argument was not expected: sing\n"));
}

void tst_zr_route::helpFitsATerminalAndHasAnExample_data()
{
    QTest::addColumn<QString>("verb");
    for (const char* verb : verbs)
        QTest::newRow(verb) << S(verb);
}

void tst_zr_route::helpFitsATerminalAndHasAnExample()
{
    QFETCH(QString, verb);
    const ToolResult help = RunRoute({verb, S("--help")});
    QCOMPARE(help.code, 0);
    QCOMPARE(help.err, QByteArray());
    QVERIFY(help.out.contains("\nUsage: zr route " + verb.toUtf8() + " [OPTIONS]"));
    QVERIFY(help.out.contains("\nExample"));
    QVERIFY(help.out.contains("Units: "));
    QVERIFY(help.out.contains("\n  zr route " + verb.toUtf8() + " "));
    for (const QString& line : help.Lines())
        QVERIFY2(line.size() <= 80, qPrintable(line));
}

void tst_zr_route::documentNamesEveryOption()
{
    const QString document = QString::fromUtf8(ReadWhole(S(ZR_SOURCE_DIR "/docs/zr-route.md")));
    const QStringList sections = document.split(S("\n## "));
    for (const char* verb : verbs) {
        QString section;
        for (const QString& candidate : sections) {
            if (candidate.startsWith(S("zr route ") + S(verb) + QLatin1Char('\n')))
                section = candidate;
        }
        QVERIFY2(!section.isEmpty(), verb);
        const QString help = QString::fromUtf8(RunRoute({S(verb), S("--help")}).out);
        const QString known = section + sections.at(0);
        for (const QString& option : LongOptions(help))
            QVERIFY2(known.contains(option), qPrintable(S(verb) + QLatin1Char(' ') + option));
        for (const QString& option : LongOptions(section))
            QVERIFY2(help.contains(option), qPrintable(S(verb) + S(" has no ") + option));
    }
}

void tst_zr_route::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QString in = S("IN");
    const QString out = S("OUT");
    QTest::newRow("info without file") << QStringList{S("info")};
    QTest::newRow("info of two") << QStringList{S("info"), in, in};
    QTest::newRow("unknown option") << QStringList{S("info"), in, S("--colour")};
    QTest::newRow("convert without out") << QStringList{S("convert"), in};
    QTest::newRow("convert to unknown form") << QStringList{S("convert"), in, out, S("--to"), S("telegram")};
    QTest::newRow("convert to empty form") << QStringList{S("convert"), in, out, S("--to"), QString()};
    QTest::newRow("convert to unknown ending") << QStringList{S("convert"), in, S("plan.gpxx")};
    QTest::newRow("convert without ending") << QStringList{S("convert"), in, S("plan")};
    QTest::newRow("recalc without out") << QStringList{S("recalc"), in};
    QTest::newRow("split without endurance") << QStringList{S("split"), in, out};
    QTest::newRow("resume without from") << QStringList{S("resume"), in, out};
    QTest::newRow("resume beyond the end") << QStringList{S("resume"), in, out, S("--from"), S("3")};
    QTest::newRow("resume at half a place")
        << QStringList{S("resume"), in, out, S("--from"), S("1"), S("--at"), S("0.01")};
    QTest::newRow("resume beyond the pole")
        << QStringList{S("resume"), in, out, S("--from"), S("1"), S("--at"), S("90.1,3")};
    QTest::newRow("resume at nan") << QStringList{
        S("resume"), in, out, S("--from"), S("1"), S("--at"), S("nan,3")};
    QTest::newRow("survey without out") << QStringList{S("survey"), in};

    // Options and values that they refuse; each with the neighbours of what they take.
    const QVector<QPair<const char*, QStringList>> survey{
        {"--spacing", {S("0"), S("0.009"), S("-5"), S("nan"), S("inf"), S("five"), S("5 "), S("1e7")}},
        {"--overshoot", {S("-0.1"), S("10000.1"), S("nan")}},
        {"--turn-radius", {S("-1"), S("10001"), S("0x10")}},
        {"--heading", {S("north"), S("361"), S("-361"), S("nan")}},
        {"--corner", {S("left"), S("1"), S("NEAR-LEFT")}},
        {"--order", {S("random"), QString()}},
        {"--cross", {S("0"), S("nan")}},
        {"--alternate", {S("0"), S("-1")}},
        {"--ends", {S("far"), S("2")}},
        {"--margin", {S("-1"), S("10001")}},
        {"--min-length", {S("-1"), S("nan")}},
        {"--speed", {S("0"), S("-1"), S("nan"), S("quick"), S("1001")}},
        {"--z", {S("deep"), S("inf")}},
        {"--z-type", {S("-1"), S("1.5"), S("99999999999")}},
        {"--box", {S("-1"), S("wide")}},
    };
    for (const auto& [option, values] : survey) {
        for (const QString& value : values)
            QTest::newRow(qPrintable(S("survey %1=%2").arg(S(option), value)))
                << QStringList{S("survey"), in, out, S(option) + QLatin1Char('=') + value};
    }
    for (const char* value : {"-1", "1001", "two", "1.5"}) {
        for (const char* side : {"--left", "--right"})
            QTest::newRow(qPrintable(S("survey %1=%2").arg(S(side), S(value))))
                << QStringList{S("survey"), S("--corridor"), in, out, S(side) + QLatin1Char('=') + S(value)};
    }
    for (const char* option : {"--area=x", "--box=1", "--heading=90", "--cross=9", "--alternate=9",
             "--ends=edge", "--margin=1", "--min-length=1"})
        QTest::newRow(qPrintable(S("corridor with ") + S(option)))
            << QStringList{S("survey"), S("--corridor"), in, out, S(option)};
    for (const char* option : {"--left=1", "--right=1", "--no-centre"})
        QTest::newRow(qPrintable(S("no corridor with ") + S(option)))
            << QStringList{S("survey"), in, out, S(option)};
    QTest::newRow("corridor without lines") << QStringList{
        S("survey"), S("--corridor"), in, out, S("--left=0"), S("--right=0"), S("--no-centre")};
    QTest::newRow("survey of no such area") << QStringList{S("survey"), in, out, S("--area"), S("Sea")};

    for (const char* value : {"0", "-1", "nan", "many"}) {
        for (const char* limit : {"--hours", "--km"})
            QTest::newRow(qPrintable(S("split %1=%2").arg(S(limit), S(value))))
                << QStringList{S("split"), in, out, S(limit) + QLatin1Char('=') + S(value)};
    }
    for (const char* value : {"100", "-1", "nan"})
        QTest::newRow(qPrintable(S("split reserve ") + S(value)))
            << QStringList{S("split"), in, out, S("--km=1"), S("--reserve=") + S(value)};
    for (const char* value : {"-1", "nan", "10001"})
        QTest::newRow(qPrintable(S("check margin ") + S(value)))
            << QStringList{S("check"), in, S("--margin=") + S(value)};
    QTest::newRow("fence without file") << QStringList{S("check"), in, S("--fence")};
}

void tst_zr_route::wrongUsage()
{
    QFETCH(QStringList, arguments);
    const QStringList before = Names(m_folder.Path());
    const ToolResult result = RunRoute(Filled(arguments, In(), Path("out.json")));
    QVERIFY2(result.code == 1, result.Text());
    QCOMPARE(result.out, QByteArray());
    QVERIFY2(result.err.startsWith("zr: "), result.Text());
    QCOMPARE(Names(m_folder.Path()), before);
}

void tst_zr_route::badInput_data()
{
    AddWriters();
    QTest::newRow("info") << QStringList{S("info"), S("IN")};
    QTest::newRow("info json") << QStringList{S("info"), S("IN"), S("--json")};
    QTest::newRow("check") << QStringList{S("check"), S("IN")};
    QTest::newRow("check json") << QStringList{S("check"), S("IN"), S("--json")};
}

void tst_zr_route::badInput()
{
    QFETCH(QStringList, arguments);
    const auto file = [this](const char* name, const QByteArray& bytes) {
        if (!WriteWhole(Path(name), bytes))
            qFatal("a test file cannot be written");
        return Path(name);
    };
    // What the message says about it.
    const QList<QPair<QString, QString>> inputs{
        {Path("missing ü.gpx"), S("No such file or directory")},
        {m_folder.Path(), S("This is a folder, not a file")},
        {S("/dev/null"), S("Not an ordinary file")},
        {file("empty.gpx", ""), S("the file is empty")},
        {file("blank.txt", " \n\n"), S("the file is empty")},
        {file("cut.json", "{\"waypoints\": [\n{\"lat\": 1"), S("line 2: ")},
        {file("none.json", "{\"waypoints\": []}"), QString()},
        {file("other.json", "{\"a\": 1}"), QString()},
        {file("cut.gpx", "<gpx><rte>\n<rtept lat=\"1\" lon=\"2\">"), S("line 2: ")},
        {file("far.gpx", "<gpx>\n<wpt lat=\"95\" lon=\"2\"/></gpx>"), S("line 2: latitude 95")},
        {file("cut.kml", "<kml><Placemark>"), S("line 1: ")},
        {file("cut.xml", "<other/>"), QString()},
        {file("binary.txt", QByteArray("\x00\xff\x01\n\xfe", 5)), QString()},
        {file("words.txt", "0.01\t3\nfar\taway\n"), S("line 2: ")},
        {file("nan.txt", "nan\t3\n"), S("line 1: ")},
    };
    const QStringList before = Names(m_folder.Path());
    for (const auto& [input, reason] : inputs) {
        const ToolResult result = RunRoute(Filled(arguments, input, Path("out.json")));
        QVERIFY2(result.code == 2, result.Text());
        QCOMPARE(result.out, QByteArray());
        QVERIFY2(QString::fromUtf8(result.err).startsWith(S("zr: %1: %2").arg(input, reason)), result.Text());
        QCOMPARE(result.err.count('\n'), 1);
        QCOMPARE(Names(m_folder.Path()), before);
    }
}

void tst_zr_route::badAreas()
{
    QVERIFY(WriteWhole(Path("two.txt"), "0\t3\n0.01\t3\n"));
    QVERIFY(WriteWhole(Path("empty.kml"), ""));
    for (const char* option : {"--fence", "--no-go"}) {
        const ToolResult few = RunRoute({S("check"), In(), S(option), Path("two.txt")});
        QVERIFY2(few.code == 2 && few.err.contains("at least 3 are needed"), few.Text());
        QCOMPARE(few.out, QByteArray());
        const ToolResult empty = RunRoute({S("check"), In(), S(option), Path("empty.kml")});
        QVERIFY2(empty.code == 2 && empty.err.contains("empty.kml: the file is empty"), empty.Text());
        const ToolResult missing = RunRoute({S("check"), In(), S(option), Path("missing")});
        QVERIFY2(missing.code == 2 && missing.err.contains("No such file"), missing.Text());
    }
    const ToolResult few = RunRoute({S("survey"), Path("two.txt"), Path("out.json")});
    QVERIFY2(few.code == 2 && few.err.contains("at least 3 are needed"), few.Text());
    // An area without width.
    QVERIFY(WriteWhole(Path("flat.txt"), "0\t3\n0.01\t3\n0.02\t3\n"));
    const ToolResult flat = RunRoute({S("survey"), Path("flat.txt"), Path("out.json")});
    QVERIFY2(flat.code == 2, flat.Text());
    QVERIFY(QString::fromUtf8(flat.err).startsWith(S("zr: ") + Path("flat.txt") + S(": ")));
    QVERIFY(!QFile::exists(Path("out.json")));
}

void tst_zr_route::sameFileIsRefused()
{
    QFETCH(QStringList, arguments);
    // The part that a split writes is called after OUT.
    const QString in = Path("in.json");
    const QString asOut = arguments.first() == S("split") ? Path("link.json") : in;
    const QString written = arguments.first() == S("split") ? Path("link-1.json") : in;
    QCOMPARE(RunRoute({S("convert"), In(), in}).code, 0);
    if (written != in)
        QVERIFY(QFile::link(in, written));
    const QByteArray before = ReadWhole(in);
    const QStringList names = Names(m_folder.Path());
    for (const QStringList& extra : {QStringList(), QStringList{S("--force")}}) {
        const ToolResult result = RunRoute(Filled(arguments, in, asOut) + extra);
        QVERIFY2(result.code == 1, result.Text());
        QCOMPARE(QString::fromUtf8(result.err),
            S("zr: %1: The output is the same file as the input %2\n").arg(written, in));
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(ReadWhole(in), before);
        QCOMPARE(Names(m_folder.Path()), names);
    }
}

void tst_zr_route::existingOutputNeedsForce()
{
    QFETCH(QStringList, arguments);
    const QString out = Out(arguments);
    QVERIFY(WriteWhole(out, "before"));
    const QStringList names = Names(m_folder.Path());
    const QStringList filled = Filled(arguments, In(), Path("out ü.json"));
    const ToolResult refused = RunRoute(filled);
    QVERIFY2(refused.code == 3, refused.Text());
    QCOMPARE(
        QString::fromUtf8(refused.err), S("zr: %1: The file exists already; --force replaces it\n").arg(out));
    QCOMPARE(refused.out, QByteArray());
    QCOMPARE(ReadWhole(out), QByteArray("before"));
    const ToolResult forced = RunRoute(filled + QStringList{S("--force")});
    QVERIFY2(forced.code == 0, forced.Text());
    QVERIFY(QJsonDocument::fromJson(ReadWhole(out)).object().contains(S("waypoints")));
    QCOMPARE(Names(m_folder.Path()), names);
    QVERIFY(QFile::remove(out));
    QCOMPARE(RunRoute(filled).code, 0);
    QCOMPARE(Names(m_folder.Path()), names);
}

void tst_zr_route::placesThatCannotBeWritten()
{
    QFETCH(QStringList, arguments);
    QVERIFY(QDir(m_folder.Path()).mkdir(S("folder.json")));
    QVERIFY(QDir(m_folder.Path()).mkdir(S("folder-1.json")));
    QVERIFY(QFile::link(Path("nowhere"), Path("dangling.json")));
    QVERIFY(QFile::link(Path("nowhere"), Path("dangling-1.json")));
    const QStringList names = Names(m_folder.Path());
    const QList<QPair<QString, QString>> places{
        {Path("folder.json"), S("This is a folder, not a file")},
        {m_folder.Path() + QLatin1Char('/'), S("This names no file")},
        {Path("missing/out.json"), S("There is no folder %1").arg(Path("missing"))},
        {In() + S("/out.json"), S("%1 is not a folder").arg(In())},
        {Path("dangling.json"), S("This is a link to a file that does not exist")},
    };
    for (const auto& [out, reason] : places) {
        const ToolResult result
            = RunRoute(Filled(arguments, In(), out) + QStringList{S("--force"), S("--to"), S("settings")});
        QVERIFY2(result.code == 3, result.Text());
        QVERIFY2(QString::fromUtf8(result.err).endsWith(S(": %1\n").arg(reason)), result.Text());
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(Names(m_folder.Path()), names);
    }
    // A folder where not even the superuser can make a file.
    const ToolResult result = RunRoute(Filled(arguments, In(), S("/proc/zr-out.json")));
    QVERIFY2(result.code == 3, result.Text());
    QVERIFY(!result.err.isEmpty());
    if (arguments.first() == S("split"))
        return;
    for (const char* device : {"/dev/full", "/dev/null"}) {
        const ToolResult refused = RunRoute(
            Filled(arguments, In(), S(device)) + QStringList{S("--force"), S("--to"), S("settings")});
        QCOMPARE(refused.code, 3);
        QCOMPARE(QString::fromUtf8(refused.err), S("zr: %1: Not an ordinary file\n").arg(S(device)));
    }
}

void tst_zr_route::folderWithoutTheRightToWrite()
{
    QFETCH(QStringList, arguments);
    QVERIFY(QDir(m_folder.Path()).mkdir(S("locked")));
    QCOMPARE(::chmod(QFile::encodeName(m_folder.Path()), 0755), 0);
    QCOMPARE(::chmod(QFile::encodeName(Path("locked")), 0555), 0);
    UnprivilegedProcess process;
    process.start(ToolPath(), QStringList{S("route")} + Filled(arguments, In(), Path("locked/out.json")));
    const ToolResult result = Finish(process);
    QVERIFY2(result.code == 3, result.Text());
    QVERIFY2(
        QString::fromUtf8(result.err).endsWith(S(": The folder %1 cannot be written\n").arg(Path("locked"))),
        result.Text());
    QCOMPARE(Names(Path("locked")), QStringList());
    QCOMPARE(::chmod(QFile::encodeName(Path("locked")), 0755), 0);
}

void tst_zr_route::fullDisk()
{
    QFETCH(QStringList, arguments);
    const QString out = Out(arguments);
    QVERIFY(WriteWhole(out, "before"));
    const QStringList names = Names(m_folder.Path());
    const ToolResult result
        = RunRouteLimited(Filled(arguments, In(), Path("out ü.json")) + QStringList{S("--force")}, 512);
    QVERIFY2(result.code == 3, result.Text());
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: File too large\n").arg(out));
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(ReadWhole(out), QByteArray("before"));
    QCOMPARE(Names(m_folder.Path()), names);
}

void tst_zr_route::interruptLeavesNothing()
{
    // 9,000 lines: tens of megabytes to write.
    QVERIFY(WriteWhole(Path("large.txt"), "0\t3\n0\t3.1\n0.08\t3.1\n0.08\t3\n"));
    for (const int signal : {SIGINT, SIGTERM}) {
        QVERIFY(WriteWhole(Path("out.json"), "before"));
        const QStringList names = Names(m_folder.Path());
        QProcess process;
        process.start(ToolPath(),
            {S("route"), S("survey"), Path("large.txt"), Path("out.json"), S("--force"), S("--spacing"),
                S("1")});
        QElapsedTimer timer;
        timer.start();
        while (Names(m_folder.Path()) == names && timer.elapsed() < toolPatience)
            QThread::msleep(1);
        QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
        const ToolResult result = Finish(process);
        QVERIFY2(result.code == 128 + signal, result.Text());
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(Names(m_folder.Path()), names);
        QCOMPARE(ReadWhole(Path("out.json")), QByteArray("before"));
    }
}

void tst_zr_route::replacedFileKeepsItsRights()
{
    const QString out = Path("out.gpx");
    QVERIFY(WriteWhole(out, "before"));
    QCOMPARE(::chmod(QFile::encodeName(out), 0640), 0);
    QCOMPARE(RunRoute({S("convert"), In(), out, S("--force")}).code, 0);
    struct stat info = {};
    QCOMPARE(::stat(QFile::encodeName(out), &info), 0);
    QCOMPARE(info.st_mode & 07777u, 0640u);
}

void tst_zr_route::newFileHasOrdinaryRights()
{
    const mode_t before = ::umask(027);
    const ToolResult result = RunRoute({S("convert"), In(), Path("out.gpx")});
    ::umask(before);
    QCOMPARE(result.code, 0);
    struct stat info = {};
    QCOMPARE(::stat(QFile::encodeName(Path("out.gpx")), &info), 0);
    QCOMPARE(info.st_mode & 07777u, 0640u);
}

void tst_zr_route::linkIsFollowed()
{
    QVERIFY(QDir(m_folder.Path()).mkdir(S("sub")));
    QVERIFY(WriteWhole(Path("sub/real"), "before"));
    QVERIFY(QFile::link(Path("sub/real"), Path("link.gpx")));
    const ToolResult result = RunRoute({S("convert"), In(), Path("link.gpx"), S("--force")});
    QVERIFY2(result.code == 0, result.Text());
    QVERIFY(QFileInfo(Path("link.gpx")).isSymLink());
    QVERIFY(ReadWhole(Path("sub/real")).contains("<gpx"));
    QCOMPARE(Names(Path("sub")), QStringList{S("real")});
}

void tst_zr_route::fullStandardOutputIsAFailure()
{
    for (const QStringList& arguments :
        {QStringList{S("info"), In()}, QStringList{S("info"), In(), S("--json")},
            QStringList{S("check"), In()}, QStringList{S("survey"), S("--help")}}) {
        QProcess process;
        process.setStandardOutputFile(S("/dev/full"));
        process.start(ToolPath(), QStringList{S("route")} + arguments);
        const ToolResult result = Finish(process);
        QVERIFY2(result.code == 3, result.Text());
        QCOMPARE(result.err, QByteArray("zr: standard output: No space left on device\n"));
    }
}

void tst_zr_route::localeDoesNotMatter()
{
    const ToolResult expected = RunRoute({S("info"), In(), S("--points")});
    QCOMPARE(expected.code, 0);
    for (const char* locale : {"C", "POSIX", "de_DE.UTF-8", "no_SUCH"}) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(S("LC_ALL"), S(locale));
        process.setProcessEnvironment(environment);
        process.start(ToolPath(), {S("route"), S("info"), In(), S("--points")});
        const ToolResult result = Finish(process);
        QCOMPARE(result.code, 0);
        QCOMPARE(result.out, expected.out);
    }
}

QTEST_GUILESS_MAIN(tst_zr_route)
#include "tst_zr_route.moc"
