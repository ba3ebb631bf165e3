// `zr sonar info` as a person and a program run it.

#include "ZrSonarTestLog.h"
#include "ZrTerminalRun.h"

#include <csignal>

using sonar_test::SonarLine;

namespace {

ToolResult Info(const QString& path, const QStringList& more = QStringList())
{
    return RunTool(QStringList{S("sonar"), S("info"), path} + more);
}

QJsonObject Json(const QString& path)
{
    return Info(path, {S("--json")}).Json();
}

bool Near(const QJsonValue& value, double expected, double within)
{
    return value.isDouble() && std::fabs(value.toDouble() - expected) <= within;
}

/// The value behind a name in the text.
QString Field(const ToolResult& result, const char* name)
{
    for (const QString& line : result.Lines()) {
        if (line.startsWith(S(name).leftJustified(12)))
            return line.mid(12);
    }
    return S("no such line");
}

/// 10 s at 1.5 m/s, 24 m of seabed to each side.
SonarLine TestLine()
{
    SonarLine line;
    line.pings = 101;
    line.altitude = 18.0;
    line.samples = 50;
    return line;
}

} // namespace

class tst_zr_sonar_info : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_folder.Renew();
        m_log = m_folder.Path("dive äß 1.log");
    }

    void text();
    void json();
    void unitsNameTheirKeys();
    void realLine();
    void rangesAndOneSide();
    void severalSources();
    void pauses();
    void noNavigation();
    void positionsThatAreGuessed();
    void altitudeOfSomePings();
    void skippedItems();
    void damagedLog();
    void noPings_data();
    void noPings();
    void cannotBeRead_data();
    void cannotBeRead();
    void wrongUsage();
    void bar();
    void interrupted();
    void fullDisk();
    void helpAndDocument();

private:
    ToolFolder m_folder;
    QString m_log;
};

void tst_zr_sonar_info::text()
{
    QVERIFY(sonar_test::WriteLine(m_log, TestLine()));
    const ToolResult result = Info(m_log);
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    const QStringList lines = result.Lines();
    const QString size = QString::number(QFileInfo(m_log).size() / 1024.0, 'f', 1);
    const QStringList expected{
        S("Log         ") + m_log,
        S("Size        %1 KiB (%2 bytes)").arg(size).arg(QFileInfo(m_log).size()),
        S("Pings       101, 101 with both sides"),
        S("First       2021-03-03T14:05:09.000Z"),
        S("Last        2021-03-03T14:05:19.000Z"),
        S("Duration    10.000 s"),
        S("Pauses      none"),
        S("Rate        10.00 pings/s"),
        S("Track       15.0 m"),
        S("Speed       1.50 m/s"),
        S("Spacing     0.150 m from line to line"),
        S("Altitude    18.00 m"),
        S("Depth       10.00 m"),
        S("Area        720 m², a swath of 48.0 m on average"),
        S("Positions   all pings"),
        S("Skipped     0 items"),
        S("End         clean"),
        QString(),
    };
    QCOMPARE(lines.mid(0, expected.size()), expected);
    QCOMPARE(lines.size(), expected.size() + 3);
    QCOMPARE(lines[18].simplified(), S("Side Pings Samples Slant range Frequency Sound speed"));
    QCOMPARE(lines[19].simplified(), S("port 101 50 30.00 m 455.0 kHz 1500.0 m/s"));
    QCOMPARE(lines[20].simplified(), S("starboard 101 50 30.00 m 455.0 kHz 1500.0 m/s"));
}

void tst_zr_sonar_info::json()
{
    SonarLine line = TestLine();
    line.compress = true;
    QVERIFY(sonar_test::WriteLine(m_log, line));
    const ToolResult result = Info(m_log, {S("--json")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.out.count('\n'), 1);
    const QJsonObject info = result.Json();
    QCOMPARE(info[S("path")].toString(), m_log);
    QCOMPARE(info[S("size")].toDouble(), double(QFileInfo(m_log).size()));
    QCOMPARE(info[S("pings")].toInt(), 101);
    QCOMPARE(info[S("pairs")].toInt(), 101);
    QCOMPARE(info[S("sources")].toArray(), (QJsonArray{1}));
    QCOMPARE(info[S("first_time")].toDouble(), 1614780309.0);
    QCOMPARE(info[S("last_time")].toDouble(), 1614780319.0);
    QCOMPARE(info[S("duration")].toDouble(), 10.0);
    QCOMPARE(info[S("pauses")].toInt(-1), 0);
    QCOMPARE(info[S("pause_duration")].toDouble(-1), 0.0);
    QVERIFY(Near(info[S("ping_rate")], 10.0, 1e-4));
    QVERIFY(Near(info[S("track_length")], 15.0, 1e-3));
    QVERIFY(Near(info[S("mean_speed")], 1.5, 1e-4));
    QVERIFY(Near(info[S("line_spacing")], 0.15, 1e-5));
    QVERIFY(Near(info[S("area")], 720.0, 0.05));
    QVERIFY(Near(info[S("swath_width")], 48.0, 1e-6));
    QCOMPARE(info[S("altitude_min")].toDouble(), 18.0);
    QCOMPARE(info[S("altitude_max")].toDouble(), 18.0);
    QCOMPARE(info[S("depth_min")].toDouble(), 10.0);
    QCOMPARE(info[S("depth_max")].toDouble(), 10.0);
    QCOMPARE(info[S("without_position")].toInt(-1), 0);
    QCOMPARE(info[S("far_from_fix")].toInt(-1), 0);
    QCOMPARE(info[S("without_altitude")].toInt(-1), 0);
    QCOMPARE(info[S("skipped")].toInt(-1), 0);
    QCOMPARE(info[S("complete")], QJsonValue(true));
    QVERIFY(info.contains(S("error")) && info[S("error")].isNull());
    QVERIFY(info.contains(S("error_pos")) && info[S("error_pos")].isNull());
    const QJsonArray sides = info[S("sides")].toArray();
    QCOMPARE(sides.size(), 2);
    for (int i = 0; i < 2; ++i) {
        const QJsonObject side = sides[i].toObject();
        QCOMPARE(side[S("side")].toString(), i == 0 ? S("port") : S("starboard"));
        QCOMPARE(side[S("pings")].toInt(), 101);
        for (const char* end : {"min", "max"}) {
            QCOMPARE(side[S("samples_") + S(end)].toInt(), 50);
            QCOMPARE(side[S("slant_range_") + S(end)].toDouble(), 30.0);
            QCOMPARE(side[S("frequency_") + S(end)].toDouble(), 455.0);
            QCOMPARE(side[S("sound_speed_") + S(end)].toDouble(), 1500.0);
        }
    }
}

void tst_zr_sonar_info::unitsNameTheirKeys()
{
    QVERIFY(sonar_test::WriteLine(m_log, TestLine()));
    const QJsonObject info = Json(m_log);
    const QJsonObject side = info[S("sides")].toArray()[0].toObject();
    const QJsonObject units = info[S("units")].toObject();
    for (const QString& key : units.keys())
        QVERIFY2(info.contains(key) || side.contains(key), qPrintable(key));
    // Numbers without a unit are counts.
    const QStringList counts{S("pings"), S("pairs"), S("pauses"), S("without_position"), S("far_from_fix"),
        S("without_altitude"), S("skipped"), S("samples_min"), S("samples_max")};
    for (const QJsonObject& object : {info, side}) {
        for (const QString& key : object.keys())
            if (object[key].isDouble())
                QVERIFY2(units.contains(key) != counts.contains(key), qPrintable(key));
    }
}

void tst_zr_sonar_info::realLine()
{
    QVERIFY(sonar_test::ImportRealLine(m_log));
    const QJsonObject info = Json(m_log);
    QCOMPARE(info[S("pings")].toInt(), 300);
    QCOMPARE(info[S("pairs")].toInt(), 300);
    QVERIFY(Near(info[S("duration")], 35.56, 0.001));
    QVERIFY(Near(info[S("ping_rate")], 299 / 35.56, 0.001));
    // About 36 m in 36 s, the first ping without a fix being held at the second one.
    QVERIFY(Near(info[S("track_length")], 36.0, 1.0));
    QVERIFY(Near(info[S("mean_speed")], 1.0, 0.05));
    QCOMPARE(info[S("without_position")].toInt(-1), 0);
    QVERIFY(Near(info[S("area")], 36.1 * 58.1, 30.0));
    const QJsonObject port = info[S("sides")].toArray()[0].toObject();
    QCOMPARE(port[S("samples_max")].toInt(), 1024);
    QVERIFY(Near(port[S("slant_range_max")], 29.98, 0.01));
}

void tst_zr_sonar_info::rangesAndOneSide()
{
    SonarLine line = TestLine();
    line.isThere = [](int, eSonarSide side) { return side == sidePort; };
    SonarLine wider = line;
    wider.time += 15.0;
    wider.firstNumber = 500;
    wider.slantRange = 50.0;
    wider.samples = 80;
    wider.frequency = 0.0; // not known
    wider.soundSpeed = 1480.0;
    wider.altitude = 12.0;
    QVERIFY(sonar_test::Log(m_log).Add(line).Add(wider).Commit());
    const ToolResult result = Info(m_log);
    QCOMPARE(result.code, 0);
    QCOMPARE(Field(result, "Pings"), S("202, 0 with both sides"));
    QCOMPARE(Field(result, "Altitude"), S("12.00 to 18.00 m"));
    const QStringList lines = result.Lines();
    QCOMPARE(lines[lines.size() - 2].simplified(),
        S("port 202 50 to 80 30.00 to 50.00 m 455.0 kHz 1480.0 to 1500.0 m/s"));
    QCOMPARE(lines.last().simplified(), S("starboard 0 - - - -"));
    const QJsonObject starboard = Json(m_log)[S("sides")].toArray()[1].toObject();
    QCOMPARE(starboard[S("pings")].toInt(-1), 0);
    QVERIFY(starboard.contains(S("samples_min")) && starboard[S("samples_min")].isNull());
}

void tst_zr_sonar_info::severalSources()
{
    SonarLine line = TestLine();
    QCOMPARE(sonar_test::WriteLine(m_log, line), true);
    QCOMPARE(Field(Info(m_log), "Sources"), S("no such line"));
    sonar_test::Log out(m_log);
    out.Add(line);
    line.source = 12;
    line.time += 10.0;
    QVERIFY(out.Add(line).Commit());
    QCOMPARE(Field(Info(m_log), "Sources"), S("1, 12"));
    QCOMPARE(Json(m_log)[S("sources")].toArray(), (QJsonArray{1, 12}));
}

void tst_zr_sonar_info::pauses()
{
    SonarLine line = TestLine();
    sonar_test::Log out(m_log);
    out.Add(line);
    line.time += 730.0;
    line.firstNumber = 500;
    line.start = ZrGeoPoint{44.1, -63.0}; // 11 km away
    QVERIFY(out.Add(line).Commit());
    const ToolResult result = Info(m_log);
    QCOMPARE(result.code, 0);
    QCOMPARE(Field(result, "Duration"), S("12 min 20.000 s"));
    QCOMPARE(Field(result, "Pauses"), S("1, 12 min 00.000 s"));
    QCOMPARE(Field(result, "Track"), S("30.0 m"));
    QCOMPARE(Field(result, "Rate"), S("10.00 pings/s"));
    const QJsonObject info = Json(m_log);
    QCOMPARE(info[S("pauses")].toInt(), 1);
    QCOMPARE(info[S("pause_duration")].toDouble(), 720.0);
}

void tst_zr_sonar_info::noNavigation()
{
    SonarLine line = TestLine();
    line.hasNav = [](int) { return false; };
    QVERIFY(sonar_test::WriteLine(m_log, line));
    const ToolResult result = Info(m_log);
    QCOMPARE(result.code, 0);
    for (const char* name : {"Track", "Speed", "Spacing", "Altitude", "Depth", "Area"})
        QCOMPARE(Field(result, name), S("-"));
    QCOMPARE(Field(result, "Positions"), S("101 pings without"));
    QCOMPARE(Field(result, "Rate"), S("10.00 pings/s"));
    const QJsonObject info = Json(m_log);
    QCOMPARE(info[S("without_position")].toInt(), 101);
    for (const char* key :
        {"track_length", "mean_speed", "line_spacing", "area", "swath_width", "altitude_min", "depth_max"})
        QVERIFY2(info.contains(S(key)) && info[S(key)].isNull(), key);
}

void tst_zr_sonar_info::positionsThatAreGuessed()
{
    SonarLine line = TestLine();
    line.pings = 200;
    line.interval = 1.0;
    line.hasNav = [](int ping) { return ping < 100; };
    QVERIFY(sonar_test::WriteLine(m_log, line));
    // The last fix is that of ping 99.
    QCOMPARE(Field(Info(m_log), "Positions"), S("40 pings more than 60 s from a fix"));
    QCOMPARE(Json(m_log)[S("far_from_fix")].toInt(), 40);
}

void tst_zr_sonar_info::altitudeOfSomePings()
{
    // A log of two parts, of which only navigation without altitude is in the first, and none in the second,
    // holds none; where there is any, it is bridged and held.
    SonarLine line = TestLine();
    line.change = [](int ping, ZrNavRecord& nav) {
        if (ping != 50)
            nav.altitude = std::numeric_limits<float>::quiet_NaN();
    };
    QVERIFY(sonar_test::WriteLine(m_log, line));
    QCOMPARE(Field(Info(m_log), "Altitude"), S("18.00 m"));
    line.change = [](int, ZrNavRecord& nav) { nav.altitude = 0.0F; };
    QVERIFY(sonar_test::WriteLine(m_log, line));
    QCOMPARE(Field(Info(m_log), "Altitude"), S("-"));
    QCOMPARE(Field(Info(m_log), "Area"), S("900 m², a swath of 60.0 m on average"));
    QCOMPARE(Json(m_log)[S("without_altitude")].toInt(), 101);
}

void tst_zr_sonar_info::skippedItems()
{
    sonar_test::Log out(m_log);
    out.Add(TestLine()).AddItem(17, 0, 1, 1.0, "damaged").AddItem(16, 0, 9, 1.0, "of another format");
    QVERIFY(out.Commit());
    const ToolResult result = Info(m_log);
    QCOMPARE(result.code, 0);
    QCOMPARE(Field(result, "Skipped"), S("2 items"));
    QCOMPARE(Json(m_log)[S("skipped")].toInt(), 2);
}

void tst_zr_sonar_info::damagedLog()
{
    sonar_test::Log out(m_log);
    out.Add(TestLine());
    QVERIFY(out.Commit());
    const u64 at = out.Start(3 * 60);
    QVERIFY(WriteWhole(m_log, Flipped(ReadWhole(m_log), static_cast<int>(at), 0xFF)));
    const ToolResult result = Info(m_log);
    QCOMPARE(result.code, 2);
    const QString reason = S("Not a valid item header:aabbcc22");
    QCOMPARE(Field(result, "Pings"), S("60, 60 with both sides"));
    QCOMPARE(Field(result, "End"), S("damaged at position %1: %2").arg(at).arg(reason));
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2 (at position %3)\n").arg(m_log, reason).arg(at));

    const ToolResult json = Info(m_log, {S("--json")});
    QCOMPARE(json.code, 2);
    QCOMPARE(json.err, result.err);
    const QJsonObject info = json.Json();
    QCOMPARE(info[S("pings")].toInt(), 60);
    QCOMPARE(info[S("complete")], QJsonValue(false));
    QCOMPARE(info[S("error")].toString(), reason);
    QCOMPARE(info[S("error_pos")].toDouble(), double(at));
}

void tst_zr_sonar_info::noPings_data()
{
    QTest::addColumn<QByteArray>("items");
    QTest::addColumn<QString>("reason");
    const QByteArray text = MakeItem(2, "$GPGLL").Bytes();
    QTest::newRow("empty") << QByteArray("") << S("The log holds no side-scan pings");
    QTest::newRow("text") << text << S("The log holds no side-scan pings");
    QTest::newRow("unusable pings")
        << MakeItem(17, "damaged").Bytes() + MakeItem(17, "").Bytes()
        << S("The log holds no side-scan pings that can be used; skipped: 2 items");
    QTest::newRow("damage") << text + "rest"
                            << S("The log holds no side-scan pings before its damage: Incomplete item header "
                                 "found. FS:98 BR:94 (at position 94)");
}

void tst_zr_sonar_info::noPings()
{
    QFETCH(QByteArray, items);
    QFETCH(QString, reason);
    QVERIFY(WriteWhole(m_log, FileHeader() + items));
    for (const QStringList& more : {QStringList(), QStringList{S("--json")}}) {
        const ToolResult result = Info(m_log, more);
        QCOMPARE(result.code, 2);
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(m_log, reason));
    }
}

void tst_zr_sonar_info::cannotBeRead_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << S("missing.log") << S("No such file or directory");
    QTest::newRow("folder") << S(".") << S("This is a folder, not a file");
    QTest::newRow("device") << S("/dev/null") << S("Not an ordinary file");
    QTest::newRow("no log") << S("text.txt") << S("Not a valid header");
    QTest::newRow("nothing") << S("nothing.log") << S("File is not big enough to contain a header");
}

void tst_zr_sonar_info::cannotBeRead()
{
    QFETCH(QString, path);
    QFETCH(QString, reason);
    QVERIFY(WriteWhole(m_folder.Path("text.txt"), QByteArray(100, 'x')));
    QVERIFY(WriteWhole(m_folder.Path("nothing.log"), ""));
    if (!path.startsWith(QLatin1Char('/')))
        path = m_folder.Path() + QLatin1Char('/') + path;
    const ToolResult result = Info(path);
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(path, reason));
}

void tst_zr_sonar_info::wrongUsage()
{
    QVERIFY(sonar_test::WriteLine(m_log, TestLine()));
    const QStringList info{S("sonar"), S("info")};
    for (const QStringList& arguments :
        {info, info + QStringList{m_log, m_log}, info + QStringList{m_log, S("--colour")}}) {
        const ToolResult result = RunTool(arguments);
        QVERIFY2(result.code == 1, result.Text());
        QCOMPARE(result.out, QByteArray());
    }
}

void tst_zr_sonar_info::bar()
{
    QVERIFY(sonar_test::WriteLine(m_log, TestLine()));
    TerminalRun run(false, true);
    const ToolResult result = run.RunTool({S("sonar"), S("info"), m_log});
    QVERIFY2(result.code == 0, result.Text());
    QVERIFY2(run.seen.contains("\rReading  [####################....................]  50 %"), run.seen);
    QVERIFY2(run.seen.endsWith("\r\033[K"), run.seen);
    QVERIFY(!result.out.contains('\r'));
}

void tst_zr_sonar_info::interrupted()
{
    // 4 GB of items that are just small enough to be read rather than skipped.
    QVERIFY(WriteSparseLog(m_log, 16000, 250 * 1024));
    QProcess process;
    process.start(ToolPath(), {S("sonar"), S("info"), m_log});
    QVERIFY(process.waitForStarted(toolPatience));
    const QDir files(S("/proc/%1/fd").arg(process.processId()));
    const auto hasOpen = [&] {
        for (const QString& name : files.entryList(QDir::Files | QDir::System))
            if (QFileInfo(files.filePath(name)).symLinkTarget() == m_log)
                return true;
        return false;
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasOpen(), toolPatience);
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    const ToolResult result = Finish(process);
    QVERIFY2(result.code == 130, result.Text());
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(result.err, QByteArray());
}

void tst_zr_sonar_info::fullDisk()
{
    QVERIFY(sonar_test::WriteLine(m_log, TestLine()));
    QProcess process;
    process.setStandardOutputFile(S("/dev/full"));
    process.start(ToolPath(), {S("sonar"), S("info"), m_log});
    QCOMPARE(Finish(process).code, 3);
}

void tst_zr_sonar_info::helpAndDocument()
{
    const QString help = QString::fromUtf8(RunTool({S("sonar"), S("info"), S("--help")}).out);
    const QString all = QString::fromUtf8(RunTool({S("sonar"), S("--help")}).out);
    QVERIFY(all.contains(S("\n  info ")));
    const QString document = QString::fromUtf8(ReadWhole(S(ZR_SOURCE_DIR "/docs/zr-sonar.md")));
    const int begin = document.indexOf(S("\n## zr sonar info\n"));
    QVERIFY(begin > 0);
    const QString section = document.mid(begin, document.indexOf(S("\n## "), begin + 1) - begin);
    for (const char* option : {"--json", "--verbose"}) {
        QVERIFY(help.contains(S(option)));
        QVERIFY(section.contains(S(option)));
    }
    // Every key of the result is described.
    QVERIFY(sonar_test::WriteLine(m_log, TestLine()));
    const QJsonObject info = Json(m_log);
    for (const QJsonObject& object : {info, info[S("sides")].toArray()[0].toObject()}) {
        for (const QString& key : object.keys())
            QVERIFY2(section.contains(QLatin1Char('`') + key + QLatin1Char('`')), qPrintable(key));
    }
}

QTEST_GUILESS_MAIN(tst_zr_sonar_info)
#include "tst_zr_sonar_info.moc"
