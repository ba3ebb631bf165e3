// What all verbs of `zr log` have in common: help, usage, the document, standard output.

#include "ZrToolRun.h"

namespace {

const char* const verbs[] = {"info", "items", "dump", "census", "cut", "filter", "import", "record", "check",
    "recover", "index", "events", "track", "seek", "plan"};

/// Words of \p text that begin with "--", as they stand in a help text or a document.
QStringList LongOptions(const QString& text)
{
    QStringList found;
    QRegularExpression pattern(S("--[a-z][a-z-]*"));
    QRegularExpressionMatchIterator it = pattern.globalMatch(text);
    while (it.hasNext())
        found << it.next().captured(0);
    found.removeDuplicates();
    return found;
}

} // namespace

class tst_zr_log : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_folder.Renew(); }

    void versionAndHelpGoToStandardOutput();
    void missingVerbIsWrongUsage_data();
    void missingVerbIsWrongUsage();
    void helpFitsATerminalAndHasAnExample_data();
    void helpFitsATerminalAndHasAnExample();
    void helpNamesEveryOption_data();
    void helpNamesEveryOption();
    void documentNamesEveryOption();
    void wrongUsage_data();
    void wrongUsage();
    void badInput_data();
    void badInput();
    void verboseShowsTheDebugOutput();
    void localeDoesNotMatter();
    void closedPipeIsQuiet();
    void fullStandardOutputIsAFailure();
    void closedStandardOutputIsAFailure();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    ToolFolder m_folder;
};

void tst_zr_log::versionAndHelpGoToStandardOutput()
{
    const ToolResult version = RunTool({S("--version")});
    QCOMPARE(version.code, 0);
    QVERIFY2(
        QRegularExpression(S("^zr \\d+\\.\\d+\\.\\d+\n$")).match(QString::fromUtf8(version.out)).hasMatch(),
        version.Text());
    QCOMPARE(version.err, QByteArray());
    for (const QStringList& arguments :
        {QStringList{S("--help")}, QStringList{S("-h")}, QStringList{S("log"), S("--help")}}) {
        const ToolResult help = RunTool(arguments);
        QCOMPARE(help.code, 0);
        QCOMPARE(help.err, QByteArray());
        QVERIFY2(help.out.contains("Usage: zr") && help.out.contains("Example"), help.Text());
    }
    const QString list = QString::fromUtf8(RunTool({S("log"), S("--help")}).out);
    for (const char* verb : verbs)
        QVERIFY2(list.contains(S("\n  ") + S(verb) + S(" ")), verb);
}

void tst_zr_log::missingVerbIsWrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("nothing") << QStringList() << S("zr: No verb is given; zr --help lists them\n");
    QTest::newRow("log") << QStringList{S("log")} << S("zr: No verb is given; zr log --help lists them\n");
    QTest::newRow("unknown") << QStringList{S("sing")}
                             << S("zr: The following argument was not expected: sing\n");
    QTest::newRow("unknown of log") << QStringList{S("log"), S("sing")}
                                    << S("zr: The following argument was not expected: sing\n");
}

void tst_zr_log::missingVerbIsWrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const ToolResult result = RunTool(arguments);
    QCOMPARE(result.code, 1);
    QCOMPARE(result.out, QByteArray());
    QVERIFY2(QString::fromUtf8(result.err).startsWith(message), result.Text());
}

void tst_zr_log::helpFitsATerminalAndHasAnExample_data()
{
    QTest::addColumn<QString>("verb");
    for (const char* verb : verbs)
        QTest::newRow(verb) << S(verb);
}

void tst_zr_log::helpFitsATerminalAndHasAnExample()
{
    QFETCH(QString, verb);
    const ToolResult help = RunLog({verb, S("--help")});
    QCOMPARE(help.code, 0);
    QCOMPARE(help.err, QByteArray());
    QVERIFY(help.out.contains("\nUsage: zr log " + verb.toUtf8() + " [OPTIONS]"));
    QVERIFY(help.out.contains("\nExample"));
    QVERIFY(help.out.contains("Units: "));
    QVERIFY(help.out.contains("\n  zr log " + verb.toUtf8() + " "));
    for (const QString& line : help.Lines())
        QVERIFY2(line.size() <= 80, qPrintable(line));
}

void tst_zr_log::helpNamesEveryOption_data()
{
    QTest::addColumn<QString>("verb");
    QTest::addColumn<QStringList>("options");
    const QStringList all{S("--help"), S("--verbose"), S("--json")};
    QTest::newRow("info") << S("info") << all;
    QTest::newRow("items") << S("items")
                           << all + QStringList{S("--type"), S("--source"), S("--from"), S("--limit")};
    QTest::newRow("dump") << S("dump")
                          << all + QStringList{S("--at"), S("--raw"), S("--hex"), S("--decoded")};
    QTest::newRow("census") << S("census") << all + QStringList{S("--force")};
    QTest::newRow("cut") << S(
        "cut") << all + QStringList{S("--from"), S("--to"), S("--types"), S("--lead"), S("--force")};
    QTest::newRow("filter") << S("filter")
                            << all + QStringList{S("--types"), S("--payload-only"), S("--force")};
    QTest::newRow("import") << S("import")
                            << all
            + QStringList{
                S("--format"), S("--date"), S("--compress"), S("--report"), S("--issues"), S("--force")};
    QTest::newRow("record") << S("record")
                            << QStringList{S("--help"), S("--verbose"), S("--json"), S("--prefix"),
                                   S("--stdin"), S("--udp"), S("--tcp"), S("--nmea-file"), S("--speed"),
                                   S("--source"), S("--min-free")};
    QTest::newRow("check") << S("check") << all;
    QTest::newRow("recover") << S("recover") << all + QStringList{S("--strict"), S("--force")};
    QTest::newRow("index") << S("index")
                           << all + QStringList{S("--index-type"), S("--coord-types"), S("--rebuild")};
    QTest::newRow("events") << S("events")
                            << all + QStringList{S("--add"), S("--time"), S("--detail"), S("--remove")};
    QTest::newRow("track") << S("track")
                           << all + QStringList{S("--first"), S("--last"), S("--force"), S("--simplify")};
    QTest::newRow("seek") << S("seek") << all + QStringList{S("--time"), S("--record")};
    QTest::newRow("plan") << S("plan") << all + QStringList{S("--force")};
}

void tst_zr_log::helpNamesEveryOption()
{
    QFETCH(QString, verb);
    QFETCH(QStringList, options);
    const QString help = QString::fromUtf8(RunLog({verb, S("--help")}).out);
    QStringList listed;
    for (const QString& line : help.split(QLatin1Char('\n'))) {
        if (line.startsWith(S("  --")))
            listed << LongOptions(line).value(0);
        else if (line.startsWith(S("  -h,--help")))
            listed << S("--help");
    }
    listed.sort();
    options.sort();
    QCOMPARE(listed, options);
}

void tst_zr_log::documentNamesEveryOption()
{
    const QString document = QString::fromUtf8(ReadWhole(S(ZR_SOURCE_DIR "/docs/zr-log.md")));
    QVERIFY(!document.isEmpty());
    const QStringList sections = document.split(S("\n## "));
    for (const char* verb : verbs) {
        QString section;
        for (const QString& candidate : sections) {
            if (candidate.startsWith(S("zr log ") + S(verb) + QLatin1Char('\n')))
                section = candidate;
        }
        QVERIFY2(!section.isEmpty(), verb);
        const QString help = QString::fromUtf8(RunLog({S(verb), S("--help")}).out);
        // What every verb has is described once, for all.
        const QString known = section + sections.at(0);
        for (const QString& option : LongOptions(help))
            QVERIFY2(known.contains(option), qPrintable(S(verb) + QLatin1Char(' ') + option));
        for (const QString& option : LongOptions(section))
            QVERIFY2(help.contains(option), qPrintable(S(verb) + S(" has no ") + option));
    }
}

void tst_zr_log::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QString log = S("LOG");
    const QString out = S("OUT");
    QTest::newRow("info without log") << QStringList{S("info")};
    QTest::newRow("info of two") << QStringList{S("info"), log, log};
    QTest::newRow("unknown option") << QStringList{S("info"), log, S("--colour")};
    QTest::newRow("type no number") << QStringList{S("items"), log, S("--type"), S("ping")};
    QTest::newRow("type too high") << QStringList{S("items"), log, S("--type"), S("65536")};
    QTest::newRow("type negative") << QStringList{S("items"), log, S("--type=-1")};
    QTest::newRow("type with blank") << QStringList{S("items"), log, S("--type"), S(" 2")};
    QTest::newRow("type without sub") << QStringList{S("items"), log, S("--type"), S("2:")};
    QTest::newRow("type of three") << QStringList{S("items"), log, S("--type"), S("2:1:3")};
    QTest::newRow("one bad of two types") << QStringList{S("items"), log, S("--type"), S("2,x")};
    QTest::newRow("source too high") << QStringList{S("items"), log, S("--source"), S("65536")};
    QTest::newRow("limit negative") << QStringList{S("items"), log, S("--limit"), S("-1")};
    QTest::newRow("limit beyond 64 bits")
        << QStringList{S("items"), log, S("--limit"), S("99999999999999999999")};
    QTest::newRow("from empty") << QStringList{S("items"), log, S("--from"), QString()};
    QTest::newRow("from above 100 %") << QStringList{S("items"), log, S("--from"), S("100.1%")};
    QTest::newRow("from negative share") << QStringList{S("items"), log, S("--from=-1%")};
    QTest::newRow("from nan share") << QStringList{S("items"), log, S("--from"), S("nan%")};
    QTest::newRow("from share without number") << QStringList{S("items"), log, S("--from"), S("%")};
    QTest::newRow("from beyond 64 bits")
        << QStringList{S("items"), log, S("--from"), S("18446744073709551616")};
    QTest::newRow("from half hex") << QStringList{S("items"), log, S("--from"), S("0x")};
    QTest::newRow("dump without at") << QStringList{S("dump"), log};
    QTest::newRow("dump raw and hex")
        << QStringList{S("dump"), log, S("--at"), S("48"), S("--raw"), S("--hex")};
    QTest::newRow("dump raw and decoded")
        << QStringList{S("dump"), log, S("--at"), S("48"), S("--raw"), S("--decoded")};
    QTest::newRow("dump hex and decoded")
        << QStringList{S("dump"), log, S("--at"), S("48"), S("--hex"), S("--decoded")};
    QTest::newRow("dump json alone") << QStringList{S("dump"), log, S("--at"), S("48"), S("--json")};
    QTest::newRow("census without out") << QStringList{S("census"), log};
    QTest::newRow("cut without range") << QStringList{S("cut"), log, out};
    QTest::newRow("cut without to") << QStringList{S("cut"), log, out, S("--from"), S("48")};
    QTest::newRow("cut backwards") << QStringList{
        S("cut"), log, out, S("--from"), S("95"), S("--to"), S("48")};
    QTest::newRow("cut backwards by shares")
        << QStringList{S("cut"), log, out, S("--from"), S("90%"), S("--to"), S("10%")};
    QTest::newRow("cut with lead and types") << QStringList{S("cut"), log, out, S("--from"), S("48"),
        S("--to"), S("100%"), S("--lead"), S("48"), S("--types"), S("2")};
    QTest::newRow("cut with sub-type") << QStringList{
        S("cut"), log, out, S("--from"), S("48"), S("--to"), S("100%"), S("--types"), S("2:1")};
    QTest::newRow("cut with type 65535") << QStringList{
        S("cut"), log, out, S("--from"), S("48"), S("--to"), S("100%"), S("--types"), S("2,65535")};
    QTest::newRow("filter without types") << QStringList{S("filter"), log, out};
    QTest::newRow("filter with type 65535") << QStringList{S("filter"), log, out, S("--types"), S("65535")};
    QTest::newRow("import without files") << QStringList{S("import")};
    QTest::newRow("import of one") << QStringList{S("import"), out};
    QTest::newRow("import of unknown format")
        << QStringList{S("import"), log, out, S("--format"), S("telegram")};
    QTest::newRow("import with bad date") << QStringList{S("import"), log, out, S("--date"), S("2022-02-30")};
    QTest::newRow("import with other date")
        << QStringList{S("import"), log, out, S("--date"), S("30.05.2022")};
}

void tst_zr_log::wrongUsage()
{
    QFETCH(QStringList, arguments);
    const Sample sample(Path("dive äß 1.log"));
    const QString log = sample.path;
    const QStringList before = Names(m_folder.Path());
    arguments.replaceInStrings(QRegularExpression(S("^LOG$")), log);
    arguments.replaceInStrings(QRegularExpression(S("^OUT$")), Path("out.log"));
    const ToolResult result = RunLog(arguments);
    QVERIFY2(result.code == 1, result.Text());
    QCOMPARE(result.out, QByteArray());
    QVERIFY2(result.err.startsWith("zr: "), result.Text());
    QCOMPARE(Names(m_folder.Path()), before);
}

void tst_zr_log::badInput_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("info") << QStringList{S("info"), S("LOG")};
    QTest::newRow("info json") << QStringList{S("info"), S("LOG"), S("--json")};
    QTest::newRow("items") << QStringList{S("items"), S("LOG")};
    QTest::newRow("dump") << QStringList{S("dump"), S("LOG"), S("--at"), S("48")};
    QTest::newRow("census") << QStringList{S("census"), S("LOG"), S("OUT")};
    QTest::newRow("cut") << QStringList{
        S("cut"), S("LOG"), S("OUT"), S("--from"), S("48"), S("--to"), S("99")};
    QTest::newRow("filter") << QStringList{S("filter"), S("LOG"), S("OUT"), S("--types"), S("2")};
    QTest::newRow("import") << QStringList{S("import"), S("LOG"), S("OUT")};
}

void tst_zr_log::badInput()
{
    QFETCH(QStringList, arguments);
    const QString missing = Path("missing ü.log");
    const QList<QPair<QString, QString>> inputs{
        {missing, S("No such file or directory")},
        {m_folder.Path(), S("This is a folder, not a file")},
        {S("/dev/null"), S("Not an ordinary file")},
        {QString(), S("No such file or directory")},
    };
    arguments.replaceInStrings(QRegularExpression(S("^OUT$")), Path("out"));
    for (const auto& [input, reason] : inputs) {
        QStringList filled = arguments;
        filled[1] = input;
        const ToolResult result = RunLog(filled);
        QVERIFY2(result.code == 2, result.Text());
        QCOMPARE(result.out, QByteArray());
        if (!input.isEmpty())
            QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(input, reason));
        QCOMPARE(Names(m_folder.Path()), QStringList());
    }
}

void tst_zr_log::verboseShowsTheDebugOutput()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    const QStringList arguments{S("filter"), path, Path("out.log"), S("--types"), S("2"), S("--force")};
    QCOMPARE(RunLog(arguments).err, QByteArray());
    const ToolResult verbose = RunLog(arguments + QStringList{S("--verbose")});
    QCOMPARE(verbose.code, 0);
    QVERIFY2(verbose.err.contains("debug: Exported 2 Items\n"), verbose.Text());
}

void tst_zr_log::localeDoesNotMatter()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    const ToolResult expected = RunLog({S("info"), path});
    QCOMPARE(expected.code, 0);
    for (const char* locale : {"C", "POSIX", "de_DE.UTF-8", "no_SUCH"}) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(S("LC_ALL"), S(locale));
        environment.insert(S("TZ"), S("Pacific/Auckland"));
        process.setProcessEnvironment(environment);
        process.start(ToolPath(), {S("log"), S("info"), path});
        const ToolResult result = Finish(process);
        QCOMPARE(result.code, 0);
        QCOMPARE(result.out, expected.out);
    }
}

void tst_zr_log::closedPipeIsQuiet()
{
    LogBytes log;
    for (int i = 0; i < 20000; ++i)
        log.Add(MakeItem(1, "x"));
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    QProcess process;
    process.start(ToolPath(), {S("log"), S("items"), Path("a.log")});
    process.closeReadChannel(QProcess::StandardOutput);
    const ToolResult result = Finish(process);
    QCOMPARE(result.code, 0);
    QCOMPARE(result.err, QByteArray());
}

void tst_zr_log::fullStandardOutputIsAFailure()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    for (const QStringList& arguments :
        {QStringList{S("info"), path}, QStringList{S("items"), path, S("--json")},
            QStringList{S("dump"), path, S("--at"), S("48")}, QStringList{S("info"), S("--help")}}) {
        QProcess process;
        process.setStandardOutputFile(S("/dev/full"));
        process.start(ToolPath(), QStringList{S("log")} + arguments);
        const ToolResult result = Finish(process);
        QVERIFY2(result.code == 3, result.Text());
        QCOMPARE(result.err, QByteArray("zr: standard output: No space left on device\n"));
    }
}

void tst_zr_log::closedStandardOutputIsAFailure()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    const QByteArray before = ReadWhole(path);
    QProcess process;
    process.start(S("/bin/sh"), {S("-c"), S("exec \"$0\" log info \"$1\" >&-"), ToolPath(), path});
    const ToolResult result = Finish(process);
    QCOMPARE(result.code, 3);
    QCOMPARE(result.err, QByteArray("zr: standard output: Bad file descriptor\n"));
    QCOMPARE(ReadWhole(path), before);
}

QTEST_GUILESS_MAIN(tst_zr_log)
#include "tst_zr_log.moc"
