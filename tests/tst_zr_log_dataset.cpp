// The verbs of `zr log` that work with the dataset of a log: index, events, track, seek, plan.

#include "ZrSurveyLog.h"
#include "ZrToolRun.h"
#include "ZrUtil/ZrXmlStore.h"

#include <csignal>

namespace {

using survey::Event;
using survey::EventFile;
using survey::EventItem;
using survey::EventTexts;
using survey::NavItem;
using survey::PlanText;
using survey::startTime;
using survey::SurveyLog;
using survey::TimedItem;
using survey::Uid;

QString UidText(int number)
{
    return Uid(number).toString(QUuid::WithoutBraces);
}

/// Five navigation items, fixes before the first and the fourth, two events, a text at the end.
LogBytes DiveLog()
{
    LogBytes log = SurveyLog(5);
    log.Add(EventItem({startTime + 3, S("late"), Uid(1), S("with detail"), 3, 7}));
    log.Add(EventItem({startTime + 1, S("early\nin two lines"), QUuid(), QString(), 1}));
    log.Add(TimedItem(2, 0, startTime + 6, QByteArray("$GPGLL", 7)));
    return log;
}

QStringList Columns(const QString& line)
{
    return line.split(QRegularExpression(S("\\s{2,}")), Qt::SkipEmptyParts);
}

} // namespace

class tst_zr_log_dataset : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_folder.Renew();
        m_log = Path("dive äß.log");
    }

    void indexBuildsThenReads();
    void indexJson();
    void indexOfChosenTypes();
    void indexTypesThatAreWrong_data();
    void indexTypesThatAreWrong();
    void indexRebuild();
    void indexNoticesAChangedLog();
    void indexWithoutRecordsIsNotWritten();
    void indexWithoutPositions();
    void indexThatCannotBeWritten();
    void indexInterrupted();

    void eventsAreListed();
    void eventsAreAddedAndRemoved();
    void eventTimes_data();
    void eventTimes();
    void eventsOfTheUserSurviveARebuild();
    void eventToRemoveIsNotThere();
    void eventThatCannotBeAdded();
    void eventsWrongUsage_data();
    void eventsWrongUsage();

    void trackIsWritten();
    void trackInOtherFormats_data();
    void trackInOtherFormats();
    void tolerancesThatAreNone();
    void eventsStandWhereTheVehicleWas();
    void trackInterrupted_data();
    void trackInterrupted();
    void trackOnAFullDisk_data();
    void trackOnAFullDisk();
    void csvIsNeverSimplified();
    void trackOfSomeRecords();
    void trackOfRecordsThatAreNotThere_data();
    void trackOfRecordsThatAreNotThere();
    void trackNeedsAKnownEnding();
    void trackFollowsTheIndex();
    void trackOfALogWithoutRecords();
    void trackKeepsWhatIsThere();

    void seekListsWhatIsReplayed();
    void seekByTimeTakesTheNearest_data();
    void seekByTimeTakesTheNearest();
    void seekByTimeWithoutTimes();
    void seekJson();
    void seekWrongUsage_data();
    void seekWrongUsage();

    void planIsRestored();
    void planOfALogWithoutOne();
    void planThatIsDamaged();
    void planInFrontOfDamage();
    void planKeepsWhatIsThere();

    void damagedLogsAreUsedUpToTheDamage();
    void unreadableLogs_data();
    void unreadableLogs();
    void readOnlyFolderIsNoObstacle();
    void plansAreNotRestoredByTheWay();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    QStringList NamesHere() const { return Names(m_folder.Path()); }

    bool WriteLog(const LogBytes& log) const { return WriteWhole(m_log, log.Bytes()); }

    ToolFolder m_folder;
    QString m_log;
};

void tst_zr_log_dataset::indexBuildsThenReads()
{
    QVERIFY(WriteLog(DiveLog()));
    const QString text = S("Log           %1\n"
                           "Index         %2\n"
                           "Index type    16:0 (navigation)\n"
                           "Coordinates   18:0 (fix), 19:0 (depth), 20:0 (motion), 21:0 (environment), 22:0 "
                           "(vehicle), 17:0 (ping), 17:1 (ping), 2:0 (serial text)\n"
                           "Records       5\n"
                           "First         2021-03-03T14:05:09.000Z\n"
                           "Last          2021-03-03T14:05:13.000Z\n"
                           "Duration      4.000 s\n"
                           "Latitude      44.00000000° to 44.00400000°, mean 44.00200000°\n"
                           "Longitude     -63.00400000° to -63.00000000°, mean -63.00200000°\n"
                           "Max. depth    14.00 m\n"
                           "Max. seabed   19.00 m\n"
                           "Events        2\n"
                           "End           clean\n")
                             .arg(m_log);
    for (const char* index : {"built: there is no index yet", "read", "read"}) {
        const ToolResult result = RunLog({S("index"), m_log});
        QCOMPARE(result.code, 0);
        QCOMPARE(result.err, QByteArray());
        QCOMPARE(QString::fromUtf8(result.out), text.arg(S(index)));
    }
    QCOMPARE(NamesHere(),
        (QStringList{S("dive äß.log"), S("dive äß.log.evt"), S("dive äß.log.evt.json"), S("dive äß.log.zri"),
            S("dive äß.log.zri.json")}));
}

void tst_zr_log_dataset::indexJson()
{
    QVERIFY(WriteLog(DiveLog()));
    const ToolResult result = RunLog({S("index"), m_log, S("--json")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.out.count('\n'), 1);
    const QJsonObject info = result.Json();
    QCOMPARE(info.value(S("path")).toString(), m_log);
    QCOMPARE(info.value(S("index")).toString(), S("built"));
    QCOMPARE(info.value(S("reason")).toString(), S("there is no index yet"));
    QCOMPARE(info.value(S("written")), QJsonValue(true));
    QCOMPARE(info.value(S("index_type")).toString(), S("16:0"));
    QCOMPARE(info.value(S("coord_types")).toArray(),
        QJsonArray::fromStringList(
            {S("18:0"), S("19:0"), S("20:0"), S("21:0"), S("22:0"), S("17:0"), S("17:1"), S("2:0")}));
    QCOMPARE(info.value(S("records")).toInt(), 5);
    QCOMPARE(info.value(S("first_time")).toDouble(), startTime);
    QCOMPARE(info.value(S("last_time")).toDouble(), startTime + 4);
    QCOMPARE(info.value(S("duration")).toDouble(), 4.0);
    QCOMPARE(info.value(S("min_latitude")).toDouble(), 44.0);
    QCOMPARE(info.value(S("max_latitude")).toDouble(), 44.004);
    QCOMPARE(info.value(S("mean_latitude")).toDouble(), 44.002);
    QCOMPARE(info.value(S("min_longitude")).toDouble(), -63.004);
    QCOMPARE(info.value(S("max_longitude")).toDouble(), -63.0);
    QCOMPARE(info.value(S("mean_longitude")).toDouble(), -63.002);
    QCOMPARE(info.value(S("max_depth")).toDouble(), 14.0);
    QCOMPARE(info.value(S("max_seabed_depth")).toDouble(), 19.0);
    QCOMPARE(info.value(S("events")).toInt(), 2);
    QCOMPARE(info.value(S("complete")), QJsonValue(true));
    QVERIFY(info.contains(S("error")) && info.value(S("error")).isNull());
    QVERIFY(info.contains(S("error_pos")) && info.value(S("error_pos")).isNull());
    QCOMPARE(info.size(), 22);
    const QJsonObject again = RunLog({S("index"), m_log, S("--json")}).Json();
    QCOMPARE(again.value(S("index")).toString(), S("read"));
    QVERIFY(again.contains(S("reason")) && again.value(S("reason")).isNull());
}

void tst_zr_log_dataset::indexOfChosenTypes()
{
    LogBytes log = DiveLog();
    log.Add(TimedItem(200, 3, startTime + 9, "x"));
    QVERIFY(WriteLog(log));
    const QJsonObject fixes = RunLog({S("index"), m_log, S("--json"), S("--index-type"), S("18"),
                                         S("--coord-types"), S("16,17:1"), S("--coord-types"), S("0")})
                                  .Json();
    QCOMPARE(fixes.value(S("index_type")).toString(), S("18:0"));
    QCOMPARE(fixes.value(S("coord_types")).toArray(), QJsonArray::fromStringList({S("16:0"), S("17:1")}));
    QCOMPARE(fixes.value(S("records")).toInt(), 2);
    const QByteArray header = ReadWhole(m_log + S(".zri")).mid(10, 36);
    QByteArray expected;
    for (const int half : {0, 18, 0, 16, 1, 17})
        AppendLe<quint16>(expected, static_cast<quint16>(half));
    QCOMPARE(header, expected + QByteArray(24, '\0'));
    const QJsonObject subs = RunLog({S("index"), m_log, S("--json"), S("--index-type"), S("200:3")}).Json();
    QCOMPARE(subs.value(S("records")).toInt(), 1);
    QCOMPARE(subs.value(S("reason")).toString(), S("the index is damaged or of other record types"));
    QCOMPARE(RunLog({S("index"), m_log, S("--json"), S("--index-type"), S("200")})
                 .Json()
                 .value(S("records"))
                 .toInt(),
        0);
}

void tst_zr_log_dataset::indexTypesThatAreWrong_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("nine") << QStringList{S("--coord-types"), S("1,2,3,4,5,6,7,8,9")};
    QTest::newRow("a name") << QStringList{S("--coord-types"), S("fix")};
    QTest::newRow("too high") << QStringList{S("--index-type"), S("65536")};
    QTest::newRow("empty") << QStringList{S("--index-type"), QString()};
    QTest::newRow("two index types") << QStringList{S("--index-type"), S("16,18")};
}

void tst_zr_log_dataset::indexTypesThatAreWrong()
{
    QFETCH(QStringList, arguments);
    QVERIFY(WriteLog(DiveLog()));
    const ToolResult result = RunLog(QStringList{S("index"), m_log} + arguments);
    QVERIFY2(result.code == 1, result.Text());
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(NamesHere(), QStringList{S("dive äß.log")});
}

void tst_zr_log_dataset::indexRebuild()
{
    QVERIFY(WriteLog(DiveLog()));
    QCOMPARE(RunLog({S("index"), m_log}).code, 0);
    const QJsonObject info = RunLog({S("index"), m_log, S("--rebuild"), S("--json")}).Json();
    QCOMPARE(info.value(S("index")).toString(), S("built"));
    QCOMPARE(info.value(S("reason")).toString(), S("it was asked for"));
    QCOMPARE(info.value(S("events")).toInt(), 2);
}

void tst_zr_log_dataset::indexNoticesAChangedLog()
{
    QVERIFY(WriteLog(DiveLog()));
    QCOMPARE(RunLog({S("index"), m_log}).code, 0);
    LogBytes longer = DiveLog();
    QVERIFY(WriteLog(longer.Add(NavItem(9))));
    const QJsonObject info = RunLog({S("index"), m_log, S("--json")}).Json();
    QCOMPARE(info.value(S("reason")).toString(), S("the log has changed since the index was made"));
    QCOMPARE(info.value(S("records")).toInt(), 6);
}

void tst_zr_log_dataset::indexWithoutRecordsIsNotWritten()
{
    LogBytes log;
    log.Add(MakeItem(200, "x"));
    QVERIFY(WriteLog(log));
    const ToolResult text = RunLog({S("index"), m_log});
    QCOMPARE(text.code, 0);
    QVERIFY2(QString::fromUtf8(text.out).contains(
                 S("\nIndex         built: there is no index yet; not written, there are no records\n")),
        text.Text());
    QVERIFY(!text.out.contains("Latitude"));
    QCOMPARE(NamesHere(), QStringList{S("dive äß.log")});
    const QJsonObject info = RunLog({S("index"), m_log, S("--json")}).Json();
    QCOMPARE(info.value(S("written")), QJsonValue(false));
    QCOMPARE(info.value(S("records")).toDouble(-1), 0.0);
    for (const char* key : {"first_time", "duration", "min_latitude", "mean_longitude", "max_depth"})
        QVERIFY2(info.contains(S(key)) && info.value(S(key)).isNull(), key);
}

void tst_zr_log_dataset::indexWithoutPositions()
{
    LogBytes log;
    survey::Nav nav;
    nav.depth = 3.5F;
    log.Add(NavItem(startTime, nav)).Add(NavItem(startTime + 1, survey::Nav()));
    QVERIFY(WriteLog(log));
    const ToolResult text = RunLog({S("index"), m_log});
    QVERIFY2(text.out.contains("\nLatitude      -\nLongitude     -\nMax. depth    3.50 m\nMax. seabed   -\n"),
        text.Text());
    const QJsonObject info = RunLog({S("index"), m_log, S("--json")}).Json();
    QVERIFY(info.value(S("min_latitude")).isNull());
    QVERIFY(info.value(S("max_seabed_depth")).isNull());
    QCOMPARE(info.value(S("max_depth")).toDouble(), 3.5);
}

void tst_zr_log_dataset::indexThatCannotBeWritten()
{
    QVERIFY(WriteLog(SurveyLog(100)));
    const ToolResult result = RunLogLimited({S("index"), m_log}, 4096);
    QCOMPARE(result.code, 3);
    QVERIFY2(result.out.contains("\nRecords       100\n"), result.Text());
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1.zri: The index could not be written\n").arg(m_log));
    QCOMPARE(NamesHere(), QStringList{S("dive äß.log")});
}

void tst_zr_log_dataset::indexInterrupted()
{
    // 3.2 GiB of zeros, all of which are looked at.
    QVERIFY(WriteSparseLog(m_log, 400, 8 * 1024 * 1024));
    const QByteArray events = EventFile({{startTime, S("of the user"), Uid(1)}});
    QVERIFY(WriteWhole(m_log + S(".evt"), events));
    const QStringList names = NamesHere();
    QProcess process;
    process.start(ToolPath(), {S("log"), S("index"), m_log, S("--index-type"), S("70")});
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
    QCOMPARE(NamesHere(), names);
    QCOMPARE(ReadWhole(m_log + S(".evt")), events);
}

void tst_zr_log_dataset::eventsAreListed()
{
    QVERIFY(WriteLog(DiveLog()));
    const ToolResult text = RunLog({S("events"), m_log});
    QCOMPARE(text.code, 0);
    QCOMPARE(text.err, QByteArray());
    const QStringList lines = text.Lines();
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines[0].simplified(), S("Time Record Source Code Uid Text Detail"));
    QCOMPARE(Columns(lines[1]),
        (QStringList{S("2021-03-03T14:05:10.000Z"), S("1"), S("system"), S("0"), S("-"),
            S("early in two lines"), S("-")}));
    QCOMPARE(Columns(lines[2]),
        (QStringList{S("2021-03-03T14:05:12.000Z"), S("3"), S("vehicle"), S("7"), UidText(1), S("late"),
            S("with detail")}));

    const ToolResult json = RunLog({S("events"), m_log, S("--json")});
    QCOMPARE(json.code, 0);
    const QList<QByteArray> objects = json.out.trimmed().split('\n');
    QCOMPARE(objects.size(), 2);
    const QJsonObject early = QJsonDocument::fromJson(objects[0]).object();
    QCOMPARE(early.keys(),
        (QStringList{S("code"), S("detail"), S("rec"), S("src"), S("text"), S("time"), S("uid")}));
    QVERIFY(early.value(S("uid")).isNull());
    QCOMPARE(early.value(S("text")).toString(), S("early\nin two lines"));
    const QJsonObject late = QJsonDocument::fromJson(objects[1]).object();
    QCOMPARE(late.value(S("uid")).toString(), UidText(1));
    QCOMPARE(late.value(S("code")).toInt(), 7);
    QCOMPARE(late.value(S("time")).toDouble(), startTime + 3);
    QCOMPARE(late.value(S("src")).toInt(), 3);
    QCOMPARE(late.value(S("detail")).toString(), S("with detail"));
    QCOMPARE(late.value(S("rec")).toInt(), 3);
}

void tst_zr_log_dataset::eventsAreAddedAndRemoved()
{
    QVERIFY(WriteLog(DiveLog()));
    const ToolResult added = RunLog({S("events"), m_log, S("--add"), S("Wräck"), S("--time"),
        S("2021-03-03T14:05:11Z"), S("--detail"), S("upright")});
    QCOMPARE(added.code, 0);
    QCOMPARE(added.err, QByteArray());
    QCOMPARE(added.out.size(), 37);
    const QUuid uid = QUuid::fromString(QString::fromLatin1(added.out.trimmed()));
    QVERIFY(!uid.isNull());
    QCOMPARE(ReadWhole(m_log + S(".evt")),
        EventFile({{startTime + 1, S("early\nin two lines"), QUuid(), QString(), 1},
            {startTime + 2, S("Wräck"), uid, S("upright"), 2},
            {startTime + 3, S("late"), Uid(1), S("with detail"), 3, 7}}));

    const QJsonObject json = RunLog(
        {S("events"), m_log, S("--add"), S("no detail"), S("--time"), S("1614780313.5"), S("--json")})
                                 .Json();
    QCOMPARE(json.value(S("time")).toDouble(), 1614780313.5);
    QCOMPARE(json.value(S("src")).toInt(), 2);
    QCOMPARE(json.value(S("rec")).toInt(), 4);
    QVERIFY(json.value(S("uid")).toString() != uid.toString(QUuid::WithoutBraces));
    QCOMPARE(EventTexts(m_log).last(), S("no detail"));

    // With and without braces, and one that the log itself holds.
    for (const QString& text : {uid.toString(), json.value(S("uid")).toString(), UidText(1)}) {
        const ToolResult removed = RunLog({S("events"), m_log, S("--remove"), text});
        QVERIFY2(removed.code == 0, removed.Text());
        QCOMPARE(removed.out, QByteArray());
    }
    QCOMPARE(EventTexts(m_log), QStringList{S("early\nin two lines")});
    QCOMPARE(RunLog({S("events"), m_log}).Lines().size(), 2);
    QCOMPARE(NamesHere().size(), 5);
    // What the log holds does not come back when it is scanned again.
    QCOMPARE(RunLog({S("index"), m_log, S("--rebuild")}).code, 0);
    QVERIFY(QFile::remove(m_log + S(".zri")));
    QCOMPARE(RunLog({S("events"), m_log}).Lines().size(), 2);
    QCOMPARE(EventTexts(m_log), QStringList{S("early\nin two lines")});
}

void tst_zr_log_dataset::eventTimes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("time");
    QTest::newRow("UTC") << S("2021-03-03T14:05:09Z") << startTime;
    QTest::newRow("milliseconds") << S("2021-03-03T14:05:09.125Z") << startTime + 0.125;
    QTest::newRow("without offset") << S("2021-03-03T14:05:09") << startTime;
    QTest::newRow("with blank") << S("2021-03-03 14:05:09") << startTime;
    QTest::newRow("without seconds") << S("2021-03-03T14:05") << startTime - 9;
    QTest::newRow("offset") << S("2021-03-03T15:35:09+01:30") << startTime;
    QTest::newRow("date alone") << S("2021-03-03") << 1614729600.0;
    // There was no such local time where the test lets the tool run.
    QTest::newRow("while clocks change") << S("2021-03-28T02:30:00") << 1616898600.0;
    QTest::newRow("seconds") << S("1614780309") << startTime;
    QTest::newRow("fraction") << S("1614780309.0625") << startTime + 0.0625;
    QTest::newRow("exponent") << S("1e9") << 1e9;
    QTest::newRow("negative") << S("-1.5") << -1.5;
}

void tst_zr_log_dataset::eventTimes()
{
    QFETCH(QString, text);
    QFETCH(double, time);
    QVERIFY(WriteLog(SurveyLog(3)));
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(S("TZ"), S("Europe/Berlin"));
    process.setProcessEnvironment(environment);
    process.start(
        ToolPath(), {S("log"), S("events"), m_log, S("--add"), S("x"), S("--time=") + text, S("--json")});
    const ToolResult result = Finish(process);
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.Json().value(S("time")).toDouble(), time);
}

void tst_zr_log_dataset::eventsOfTheUserSurviveARebuild()
{
    QVERIFY(WriteLog(DiveLog()));
    QCOMPARE(RunLog({S("events"), m_log, S("--add"), S("mine"), S("--time"), S("1614780309")}).code, 0);
    const QStringList all{S("mine"), S("early\nin two lines"), S("late")};
    QCOMPARE(EventTexts(m_log), all);
    QCOMPARE(RunLog({S("index"), m_log, S("--rebuild")}).code, 0);
    QCOMPARE(EventTexts(m_log), all);
    QCOMPARE(RunLog({S("index"), m_log, S("--index-type"), S("18")}).code, 0);
    QCOMPARE(EventTexts(m_log), all);
}

void tst_zr_log_dataset::eventToRemoveIsNotThere()
{
    QVERIFY(WriteLog(DiveLog()));
    QCOMPARE(RunLog({S("index"), m_log}).code, 0);
    const QByteArray before = ReadWhole(m_log + S(".evt"));
    const ToolResult result = RunLog({S("events"), m_log, S("--remove"), UidText(9)});
    QCOMPARE(result.code, 2);
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: There is no event %2\n").arg(m_log, UidText(9)));
    QCOMPARE(ReadWhole(m_log + S(".evt")), before);
}

void tst_zr_log_dataset::eventThatCannotBeAdded()
{
    QVERIFY(WriteLog(SurveyLog(3)));
    QCOMPARE(RunLog({S("index"), m_log}).code, 0);
    const QByteArray before = EventFile({{startTime, S("a"), Uid(1)}});
    QVERIFY(WriteWhole(m_log + S(".evt"), before));
    const QStringList names = NamesHere();
    const ToolResult full = RunLogLimited({S("events"), m_log, S("--add"), S("b"), S("--time"), S("1"),
                                              S("--detail"), QString(8000, QLatin1Char('x'))},
        4096);
    QVERIFY2(full.code == 3, full.Text());
    QCOMPARE(full.out, QByteArray());
    QCOMPARE(QString::fromUtf8(full.err), S("zr: %1.evt: File too large\n").arg(m_log));
    QCOMPARE(ReadWhole(m_log + S(".evt")), before);
    QCOMPARE(NamesHere(), names);
}

void tst_zr_log_dataset::eventsWrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("add without time") << QStringList{S("--add"), S("x")};
    QTest::newRow("add nothing") << QStringList{S("--add"), QString(), S("--time"), S("1")};
    QTest::newRow("time alone") << QStringList{S("--time"), S("1")};
    QTest::newRow("detail alone") << QStringList{S("--detail"), S("x")};
    QTest::newRow("add and remove") << QStringList{
        S("--add"), S("x"), S("--time"), S("1"), S("--remove"), UidText(1)};
    QTest::newRow("remove no uid") << QStringList{S("--remove"), S("late")};
    QTest::newRow("remove the null uid")
        << QStringList{S("--remove"), S("00000000-0000-0000-0000-000000000000")};
    QTest::newRow("remove with json") << QStringList{S("--remove"), UidText(1), S("--json")};
    for (const char* time : {"", "now", "nan", "inf", "1e400", "2021-03-03T14", "2021-13-03", "2021-02-30",
             "2021-03-03T14:05:09 junk", "2021-03-03T25:00:00Z", "2021-03-03T14:05:09Z\n", "0x10", " 1x"})
        QTest::newRow(qPrintable(S("time \"%1\"").arg(S(time)).simplified()))
            << QStringList{S("--add"), S("x"), S("--time"), S(time)};
}

void tst_zr_log_dataset::eventsWrongUsage()
{
    QFETCH(QStringList, arguments);
    QVERIFY(WriteLog(DiveLog()));
    const ToolResult result = RunLog(QStringList{S("events"), m_log} + arguments);
    QVERIFY2(result.code == 1, result.Text());
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(NamesHere(), QStringList{S("dive äß.log")});
}

void tst_zr_log_dataset::trackIsWritten()
{
    LogBytes log;
    survey::Nav nav{44.5, -63.25, 3.5F, 12.25F, 271.5F, -4.5F, 2.25F, 0};
    log.Add(NavItem(startTime, survey::Nav()));
    log.Add(NavItem(startTime + 1800, nav));
    log.Add(NavItem(startTime + 3600, survey::Nav()));
    QVERIFY(WriteLog(log));
    const ToolResult result = RunLog({S("track"), m_log, Path("out.CSV")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    // The tests run in the time zone UTC.
    const QByteArray expected
        = "#Rec, Time (hh:mm:ss), Dive Time (hrs), Latitude (º), Longitude (º), Depth(m), Seabed "
          "Depth(m), Heading (º),  Pitch (º),  Roll (º)\n"
          "0, 03/03/2021 14:05:09, 0, nan, nan, nan, nan, nan, nan, nan\n"
          "1, 03/03/2021 14:35:09, 0.5, 44.50000000, -63.25000000, 12.25, 15.75, 271.5, -4.5, 2.25\n"
          "2, 03/03/2021 15:05:09, 1, 44.50000000, -63.25000000, nan, nan, nan, nan, nan\n";
    QCOMPARE(ReadWhole(Path("out.CSV")), expected);
    QCOMPARE(QString::fromUtf8(result.out),
        S("%1: 3 records, %2 bytes\n").arg(Path("out.CSV")).arg(expected.size()));
}

/// What the formats hold is tested with the exporters; here, that the right one is taken, with track and
/// events.
void tst_zr_log_dataset::trackInOtherFormats_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("mark");
    QTest::newRow("gpx") << S("out.gpx") << QByteArray("<trkpt ");
    QTest::newRow("kml") << S("out.KML") << QByteArray("<kml ");
    QTest::newRow("geojson") << S("out.geojson") << QByteArray("\"FeatureCollection\"");
}

void tst_zr_log_dataset::trackInOtherFormats()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, mark);
    QVERIFY(WriteLog(SurveyLog(10)));
    const QString out = m_folder.Path() + QLatin1Char('/') + name;
    QCOMPARE(RunLog({S("events"), m_log, S("--add"), S("A wreck"), S("--time"), S("1614780310")}).code, 0);
    const ToolResult result = RunLog({S("track"), m_log, out});
    QVERIFY2(result.code == 0, result.Text());
    const QByteArray whole = ReadWhole(out);
    QVERIFY2(whole.contains(mark), whole.left(500));
    QVERIFY2(whole.contains("A wreck"), whole.left(2000));

    QCOMPARE(
        QString::fromUtf8(result.out), S("%1: 10 records, 10 points, %2\n").arg(out, SizeText(whole.size())));

    // A tolerance as large as the world leaves the ends of the track only.
    const ToolResult few = RunLog({S("track"), m_log, out, S("--force"), S("--simplify"), S("1e6")});
    QVERIFY2(few.code == 0, few.Text());
    const QByteArray small = ReadWhole(out);
    QVERIFY(small.size() < whole.size());
    QVERIFY2(small.contains("44.00000000") && small.contains("44.00900000"), small);
    QVERIFY2(!small.contains("44.00500000"), small);
    QCOMPARE(
        QString::fromUtf8(few.out), S("%1: 10 records, 2 points, %2\n").arg(out, SizeText(small.size())));
    const QJsonObject json
        = RunLog({S("track"), m_log, out, S("--force"), S("--simplify"), S("1e6"), S("--json")}).Json();
    QCOMPARE(json.value(S("records")).toInt(), 10);
    QCOMPARE(json.value(S("points")).toInt(), 2);
    QCOMPARE(json.value(S("bytes")).toInt(), small.size());
    QCOMPARE(json.size(), 7);
    QVERIFY(
        RunLog({S("track"), m_log, out, S("--force"), S("--simplify"), S("0")}).out.contains("10 points"));
}

void tst_zr_log_dataset::tolerancesThatAreNone()
{
    QVERIFY(WriteLog(SurveyLog(10)));
    for (const char* metres : {"-1", "-0.001", "1000000.1", "nan", "inf", "", "two", "2m", "1,5", "0x10"}) {
        const ToolResult result = RunLog({S("track"), m_log, Path("out.gpx"), S("--simplify=") + S(metres)});
        QVERIFY2(result.code == 1, metres + result.Text());
        QCOMPARE(NamesHere(), QStringList{S("dive äß.log")});
    }
}

/// Events stand where the vehicle was then: also at the very time of the last record, before the first and
/// behind the last one, and after the clock was set back.
void tst_zr_log_dataset::eventsStandWhereTheVehicleWas()
{
    LogBytes log;
    for (const int number : {0, 1, 2, 7, 8, 9, 3, 4, 5}) // the clock was set back behind 9
        log.Add(NavItem(number));
    QVERIFY(WriteLog(log));
    QVector<Event> events;
    for (const double time : {-100.0, 0.0, 2.25, 4.0, 5.0, 9.0, 1000.0})
        events << Event{startTime + time, S("at %1").arg(time), Uid(events.size() + 1)};
    events << Event{std::nan(""), S("at no time"), Uid(99)};
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile(events)));
    const auto positions = [this](const QStringList& range) {
        const QString out = Path("out.geojson");
        const ToolResult result = RunLog(QStringList{S("track"), m_log, out, S("--force")} + range);
        QStringList texts;
        if (result.code != 0)
            return QStringList{QString::fromUtf8(result.Text())};
        for (const QJsonValue feature :
            QJsonDocument::fromJson(ReadWhole(out)).object().value(S("features")).toArray()) {
            const QJsonObject properties = feature.toObject().value(S("properties")).toObject();
            if (properties.value(S("kind")).toString() != S("event"))
                continue;
            const QJsonValue geometry = feature.toObject().value(S("geometry"));
            const double latitude = geometry.toObject().value(S("coordinates")).toArray().at(1).toDouble();
            texts << properties.value(S("text")).toString()
                    + (geometry.isNull() ? QString() : S(": %1").arg(latitude, 0, 'f', 3));
        }
        return texts;
    };
    QCOMPARE(positions({}),
        (QStringList{S("at -100: 44.000"), S("at 0: 44.000"), S("at 2.25: 44.002"), S("at 4: 44.004"),
            S("at 5: 44.005"), S("at 9: 44.009"), S("at 1000: 44.009"), S("at no time")}));
    QCOMPARE(positions({S("--first"), S("1"), S("--last"), S("7")}),
        (QStringList{S("at 2.25: 44.002"), S("at 4: 44.004"), S("at 9: 44.009"), S("at 1000: 44.009")}));
}

/// Ctrl-C while the track is being written leaves nothing behind, whatever the format.
void tst_zr_log_dataset::trackInterrupted_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"out.csv", "out.gpx", "out.kml", "out.geojson"})
        QTest::newRow(name) << S(name);
}

void tst_zr_log_dataset::trackInterrupted()
{
    QFETCH(QString, name);
    QVERIFY(WriteLog(SurveyLog(400000)));
    QCOMPARE(RunLog({S("index"), m_log}).code, 0);
    const QStringList names = NamesHere();
    QProcess process;
    process.start(ToolPath(), {S("log"), S("track"), m_log, m_folder.Path() + QLatin1Char('/') + name});
    QVERIFY(process.waitForStarted(toolPatience));
    const auto writes = [this] {
        for (const QFileInfo& info :
            QDir(m_folder.Path()).entryInfoList({S(".zr-*")}, QDir::Files | QDir::Hidden))
            if (info.size() > 0)
                return true;
        return false;
    };
    QElapsedTimer waited;
    waited.start();
    while (!writes() && process.state() == QProcess::Running && waited.elapsed() < toolPatience)
        process.waitForFinished(1);
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    const ToolResult result = Finish(process);
    QVERIFY2(result.code == 130, result.Text());
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(NamesHere(), names);
}

/// What cannot be written completely leaves nothing in any format.
void tst_zr_log_dataset::trackOnAFullDisk_data()
{
    trackInterrupted_data();
}

void tst_zr_log_dataset::trackOnAFullDisk()
{
    QFETCH(QString, name);
    QVERIFY(WriteLog(SurveyLog(100)));
    QCOMPARE(RunLog({S("index"), m_log}).code, 0);
    const QStringList names = NamesHere();
    for (const int size : {512, 4096}) { // while points are written, and when the last of them are
        const ToolResult result
            = RunLogLimited({S("track"), m_log, m_folder.Path() + QLatin1Char('/') + name}, size);
        QVERIFY2(result.code == 3, result.Text());
        QVERIFY2(result.err.contains("File too large"), result.Text());
        QCOMPARE(NamesHere(), names);
    }
}

void tst_zr_log_dataset::csvIsNeverSimplified()
{
    QVERIFY(WriteLog(SurveyLog(10)));
    const ToolResult result = RunLog({S("track"), m_log, Path("out.csv"), S("--simplify"), S("5")});
    QVERIFY2(result.code == 1, result.Text());
    QVERIFY(!QFile::exists(Path("out.csv")));
}

void tst_zr_log_dataset::trackOfSomeRecords()
{
    QVERIFY(WriteLog(SurveyLog(10)));
    const auto lines = [this](const QStringList& range) {
        const ToolResult result
            = RunLog(QStringList{S("track"), m_log, Path("out.csv"), S("--force"), S("--json")} + range);
        if (result.code != 0)
            return QStringList{QString::fromUtf8(result.Text())};
        const QStringList all = QString::fromUtf8(ReadWhole(Path("out.csv"))).split(QLatin1Char('\n'));
        const QJsonObject json = result.Json();
        return QStringList{all[1].section(QLatin1Char(','), 0, 0),
            all[all.size() - 2].section(QLatin1Char(','), 0, 0),
            S("%1 %2 %3")
                .arg(json.value(S("first")).toInt())
                .arg(json.value(S("last")).toInt())
                .arg(json.value(S("records")).toInt())};
    };
    QCOMPARE(lines({}), (QStringList{S("0"), S("9"), S("0 9 10")}));
    QCOMPARE(lines({S("--first"), S("3")}), (QStringList{S("3"), S("9"), S("3 9 7")}));
    QCOMPARE(lines({S("--last"), S("3")}), (QStringList{S("0"), S("3"), S("0 3 4")}));
    QCOMPARE(lines({S("--first"), S("5"), S("--last"), S("5")}), (QStringList{S("5"), S("5"), S("5 5 1")}));
    QCOMPARE(lines({S("--first"), S("0"), S("--last"), S("9")}), (QStringList{S("0"), S("9"), S("0 9 10")}));
}

void tst_zr_log_dataset::trackOfRecordsThatAreNotThere_data()
{
    QTest::addColumn<QStringList>("range");
    QTest::addColumn<QString>("message");
    QTest::newRow("first") << QStringList{S("--first"), S("10")}
                           << S("There is no record 10; the last one is 9");
    QTest::newRow("last") << QStringList{S("--last"), S("18446744073709551615")}
                          << S("There is no record 18446744073709551615; the last one is 9");
    QTest::newRow("backwards") << QStringList{S("--first"), S("5"), S("--last"), S("4")}
                               << S("--last (4) lies before --first (5)");
}

void tst_zr_log_dataset::trackOfRecordsThatAreNotThere()
{
    QFETCH(QStringList, range);
    QFETCH(QString, message);
    QVERIFY(WriteLog(SurveyLog(10)));
    const ToolResult result = RunLog(QStringList{S("track"), m_log, Path("out.csv")} + range);
    QCOMPARE(result.code, 1);
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1\n").arg(message));
    QVERIFY(!QFileInfo::exists(Path("out.csv")));
}

void tst_zr_log_dataset::trackNeedsAKnownEnding()
{
    QVERIFY(WriteLog(SurveyLog(3)));
    for (const char* name : {"out", "out.csv.old", "csv"}) {
        const ToolResult result = RunLog({S("track"), m_log, Path(name)});
        QCOMPARE(result.code, 1);
        QVERIFY2(result.err.contains(": The name of the output must end in .csv"), result.Text());
        QCOMPARE(NamesHere(), QStringList{S("dive äß.log")});
    }
}

void tst_zr_log_dataset::trackFollowsTheIndex()
{
    QVERIFY(WriteLog(SurveyLog(10)));
    QCOMPARE(RunLog({S("index"), m_log, S("--index-type"), S("18"), S("--coord-types"), S("16")}).code, 0);
    const QByteArray index = ReadWhole(m_log + S(".zri"));
    QCOMPARE(RunLog({S("track"), m_log, Path("out.csv"), S("--json")}).Json().value(S("records")).toInt(), 4);
    QCOMPARE(ReadWhole(m_log + S(".zri")), index);
    // Also when it has to be made anew, here for want of a stamp.
    QVERIFY(QFile::remove(m_log + S(".zri.json")));
    QCOMPARE(RunLog({S("seek"), m_log, S("--record"), S("3"), S("--json")})
                 .Json()
                 .value(S("item"))
                 .toObject()
                 .value(S("type"))
                 .toInt(),
        18);
    QCOMPARE(ReadWhole(m_log + S(".zri")), index);
}

void tst_zr_log_dataset::trackOfALogWithoutRecords()
{
    LogBytes log;
    log.Add(MakeItem(200, "x"));
    QVERIFY(WriteLog(log));
    const ToolResult result = RunLog({S("track"), m_log, Path("out.csv")});
    QCOMPARE(result.code, 2);
    QCOMPARE(QString::fromUtf8(result.err),
        S("zr: %1: The log holds no items of the index type 16:0 (navigation); zr log index --index-type "
          "chooses another\n")
            .arg(m_log));
    QCOMPARE(NamesHere(), QStringList{S("dive äß.log")});
}

void tst_zr_log_dataset::trackKeepsWhatIsThere()
{
    QVERIFY(WriteLog(SurveyLog(100)));
    QVERIFY(WriteWhole(Path("out.csv"), "before"));
    const ToolResult refused = RunLog({S("track"), m_log, Path("out.csv")});
    QCOMPARE(refused.code, 3);
    QVERIFY2(refused.err.contains("--force replaces it"), refused.Text());
    QVERIFY(!QFileInfo::exists(m_log + S(".zri"))); // refused before anything is done
    QCOMPARE(RunLog({S("index"), m_log}).code, 0);
    const ToolResult full = RunLogLimited({S("track"), m_log, Path("out.csv"), S("--force")}, 4096);
    QCOMPARE(full.code, 3);
    QVERIFY2(full.err.contains("File too large"), full.Text());
    QCOMPARE(ReadWhole(Path("out.csv")), QByteArray("before"));
    QCOMPARE(NamesHere().size(), 4);
    QVERIFY(QFile::link(m_log, Path("link.csv")));
    QCOMPARE(RunLog({S("track"), m_log, Path("link.csv"), S("--force")}).code, 1);
}

void tst_zr_log_dataset::seekListsWhatIsReplayed()
{
    // Coordinate types are replayed in the order of the index, not in that of the log.
    LogBytes log;
    log.Add(TimedItem(2, 0, startTime, QByteArray("$A", 3)));
    log.Add(TimedItem(17, 1, startTime + 0.25, "starboard"));
    log.Add(TimedItem(18, 0, startTime + 0.5, "old fix"));
    log.Add(TimedItem(18, 0, startTime + 0.75, "fix"));
    log.Add(NavItem(1));
    log.Add(TimedItem(19, 0, startTime + 1.5, "depth"));
    log.Add(NavItem(2));
    QVERIFY(WriteLog(log));
    const ToolResult result = RunLog({S("seek"), m_log, S("--record"), S("0")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    const QStringList lines = result.Lines();
    QCOMPARE(lines.size(), 6);
    QCOMPARE(lines[0], S("Record 0, 2021-03-03T14:05:10.000Z"));
    QCOMPARE(lines[1].simplified(), S("Role Pos Type Sub Source Format Time Stored Name"));
    QCOMPARE(
        lines[2].simplified(), S("replayed %1 18 0 1 1 2021-03-03T14:05:09.750Z 3 fix").arg(log.Start(3)));
    QCOMPARE(
        lines[3].simplified(), S("replayed %1 17 1 1 1 2021-03-03T14:05:09.250Z 9 ping").arg(log.Start(1)));
    QCOMPARE(lines[4].simplified(),
        S("replayed %1 2 0 1 0 2021-03-03T14:05:09.000Z 3 serial text").arg(log.Start(0)));
    QCOMPARE(lines[5].simplified(),
        S("record %1 16 0 1 1 2021-03-03T14:05:10.000Z 40 navigation").arg(log.Start(4)));
    QCOMPARE(RunLog({S("seek"), m_log, S("--record"), S("1")}).Lines().size(), 7);
}

void tst_zr_log_dataset::seekByTimeTakesTheNearest_data()
{
    QTest::addColumn<QString>("time");
    QTest::addColumn<int>("record");
    QTest::newRow("before") << S("0") << 0;
    QTest::newRow("the first") << S("1614780309") << 0;
    QTest::newRow("between, nearer to the first") << S("2021-03-03T14:05:09.499Z") << 0;
    QTest::newRow("in the middle") << S("1614780309.5") << 0;
    QTest::newRow("between, nearer to the second") << S("2021-03-03T14:05:09.501Z") << 1;
    QTest::newRow("the last") << S("1614780313") << 4;
    QTest::newRow("behind") << S("2038-01-01") << 4;
}

void tst_zr_log_dataset::seekByTimeWithoutTimes()
{
    LogBytes log;
    survey::Nav nav;
    log.Add(NavItem(std::nan(""), nav)).Add(NavItem(std::numeric_limits<double>::infinity(), nav));
    QVERIFY(WriteLog(log));
    const ToolResult result = RunLog({S("seek"), m_log, S("--time"), S("5")});
    QCOMPARE(result.code, 2);
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: No record has a time\n").arg(m_log));
    QCOMPARE(RunLog({S("seek"), m_log, S("--record"), S("1")}).code, 0);
}

void tst_zr_log_dataset::seekByTimeTakesTheNearest()
{
    QFETCH(QString, time);
    QFETCH(int, record);
    QVERIFY(WriteLog(SurveyLog(5)));
    const QJsonObject json = RunLog({S("seek"), m_log, S("--time"), time, S("--json")}).Json();
    QCOMPARE(json.value(S("record")).toInt(-1), record);
}

void tst_zr_log_dataset::seekJson()
{
    QVERIFY(WriteLog(SurveyLog(5)));
    const ToolResult result = RunLog({S("seek"), m_log, S("--record"), S("4"), S("--json")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.out.count('\n'), 1);
    const QJsonObject json = result.Json();
    QCOMPARE(json.size(), 11);
    QCOMPARE(json.value(S("record")).toInt(), 4);
    QCOMPARE(json.value(S("time")).toDouble(), startTime + 4);
    QCOMPARE(json.value(S("latitude")).toDouble(), 44.004);
    QCOMPARE(json.value(S("longitude")).toDouble(), -63.004);
    QCOMPARE(json.value(S("altitude")).toDouble(), 5.0);
    QCOMPARE(json.value(S("depth")).toDouble(), 14.0);
    QCOMPARE(json.value(S("heading")).toDouble(), 4.0);
    QVERIFY(json.contains(S("pitch")) && json.value(S("pitch")).isNull());
    QVERIFY(json.contains(S("roll")) && json.value(S("roll")).isNull());
    const QJsonArray replayed = json.value(S("replayed")).toArray();
    QCOMPARE(replayed.size(), 1);
    const QJsonObject fix = replayed[0].toObject();
    QCOMPARE(fix.keys(),
        (QStringList{S("format"), S("name"), S("pos"), S("source"), S("stored_size"), S("sub"), S("time"),
            S("type")}));
    QCOMPARE(fix.value(S("type")).toInt(), 18);
    QCOMPARE(fix.value(S("pos")).toDouble(), double(SurveyLog(5).Start(4)));
    QCOMPARE(fix.value(S("stored_size")).toInt(), 28);
    QCOMPARE(json.value(S("item")).toObject().value(S("pos")).toDouble(), double(SurveyLog(5).Start(6)));
}

void tst_zr_log_dataset::seekWrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("nowhere") << QStringList();
    QTest::newRow("both") << QStringList{S("--time"), S("1"), S("--record"), S("1")};
    QTest::newRow("record behind the end") << QStringList{S("--record"), S("5")};
    QTest::newRow("record negative") << QStringList{S("--record=-1")};
    QTest::newRow("time no time") << QStringList{S("--time"), S("noon")};
}

void tst_zr_log_dataset::seekWrongUsage()
{
    QFETCH(QStringList, arguments);
    QVERIFY(WriteLog(SurveyLog(5)));
    const ToolResult result = RunLog(QStringList{S("seek"), m_log} + arguments);
    QVERIFY2(result.code == 1, result.Text());
    QCOMPARE(result.out, QByteArray());
    QVERIFY(result.err.startsWith("zr: "));
}

void tst_zr_log_dataset::planIsRestored()
{
    LogBytes log = SurveyLog(2);
    log.Add(TimedItem(70, 0, startTime, PlanText("the bay")));
    QVERIFY(WriteLog(log));
    const ToolResult text = RunLog({S("plan"), m_log, Path("plan.xml")});
    QVERIFY2(text.code == 0, text.Text());
    const QByteArray plan = ReadWhole(Path("plan.xml"));
    QVERIFY2(plan.contains("the bay"), plan);
    QCOMPARE(QString::fromUtf8(text.out),
        S("%1: %2 bytes, the only plan\n").arg(Path("plan.xml")).arg(plan.size()));
    QCOMPARE(NamesHere(), (QStringList{S("dive äß.log"), S("plan.xml")}));
    ZrXmlStore store(false);
    QVERIFY(store.Load(Path("plan.xml")));
    QVERIFY(store.Set(S("Missions")) && store.Set(S("Missions"))->Obj(S("Bay"), S("Mission")));

    // The last one counts, also when it is compressed; other sub-types are none.
    const QByteArray cove = PlanText("the cove");
    Item packed = TimedItem(70, 0, startTime, qCompress(cove));
    packed.compressed = true;
    packed.dataSize = static_cast<quint32>(cove.size());
    log.Add(packed).Add(TimedItem(70, 1, startTime, PlanText("no plan")));
    QVERIFY(WriteLog(log));
    const QJsonObject json = RunLog({S("plan"), m_log, Path("plan.xml"), S("--force"), S("--json")}).Json();
    QCOMPARE(json.value(S("plans")).toInt(), 2);
    QCOMPARE(json.value(S("pos")).toDouble(), double(log.Start(4)));
    QCOMPARE(json.value(S("bytes")).toInt(), ReadWhole(Path("plan.xml")).size());
    QCOMPARE(json.value(S("in")).toString(), m_log);
    QCOMPARE(json.value(S("out")).toString(), Path("plan.xml"));
    QVERIFY(ReadWhole(Path("plan.xml")).contains("the cove"));
}

void tst_zr_log_dataset::planOfALogWithoutOne()
{
    QVERIFY(WriteLog(SurveyLog(2)));
    const ToolResult result = RunLog({S("plan"), m_log, Path("plan.xml")});
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: The log holds no mission plan\n").arg(m_log));
    QCOMPARE(NamesHere(), QStringList{S("dive äß.log")});
}

void tst_zr_log_dataset::planThatIsDamaged()
{
    Item packed = TimedItem(70, 0, startTime, qCompress(PlanText("the bay")));
    packed.compressed = true;
    packed.dataSize = 7;
    for (const Item& item : {TimedItem(70, 0, startTime, QByteArray()),
             TimedItem(70, 0, startTime, QByteArray(100, '\0')), packed}) {
        LogBytes log = SurveyLog(2);
        log.Add(TimedItem(70, 0, startTime, PlanText("an earlier one"))).Add(item);
        QVERIFY(WriteLog(log));
        const ToolResult result = RunLog({S("plan"), m_log, Path("plan.xml")});
        QVERIFY2(result.code == 2, result.Text());
        QVERIFY2(QString::fromUtf8(result.err).endsWith(S(" (at position %1)\n").arg(log.Start(4))),
            result.Text());
        QCOMPARE(NamesHere(), QStringList{S("dive äß.log")});
    }
}

void tst_zr_log_dataset::planInFrontOfDamage()
{
    LogBytes log;
    log.Add(TimedItem(70, 0, startTime, PlanText("the bay"))).Add(NavItem(1));
    const QByteArray damaged = Flipped(log.Bytes(), static_cast<int>(log.Start(1)), 0xFF);
    QVERIFY(WriteWhole(m_log, damaged));
    const ToolResult result = RunLog({S("plan"), m_log, Path("plan.xml")});
    QCOMPARE(result.code, 2);
    QVERIFY(ReadWhole(Path("plan.xml")).contains("the bay"));
    QVERIFY2(result.err.contains("Not a valid item header"), result.Text());
    // With the damage in front of it there is none.
    QVERIFY(WriteWhole(m_log, Flipped(log.Bytes(), static_cast<int>(log.Start(0)), 0xFF)));
    QCOMPARE(RunLog({S("plan"), m_log, Path("other.xml")}).code, 2);
    QVERIFY(!QFileInfo::exists(Path("other.xml")));
}

void tst_zr_log_dataset::planKeepsWhatIsThere()
{
    LogBytes log;
    log.Add(TimedItem(70, 0, startTime, PlanText("the bay")));
    QVERIFY(WriteLog(log));
    QVERIFY(WriteWhole(Path("plan.xml"), "before"));
    const ToolResult refused = RunLog({S("plan"), m_log, Path("plan.xml")});
    QCOMPARE(refused.code, 3);
    QCOMPARE(ReadWhole(Path("plan.xml")), QByteArray("before"));
    QCOMPARE(RunLog({S("plan"), m_log, m_log, S("--force")}).code, 1);
    QCOMPARE(ReadWhole(m_log), log.Bytes());

    for (const int size : {600, 5000, 100000}) {
        LogBytes large;
        large.Add(TimedItem(70, 0, startTime, PlanText(QByteArray(size, 'x').constData())));
        QVERIFY(WriteLog(large));
        const ToolResult full = RunLogLimited({S("plan"), m_log, Path("plan.xml"), S("--force")}, 512);
        QVERIFY2(full.code == 3, full.Text());
        QVERIFY2(full.err.contains("File too large"), full.Text());
        QCOMPARE(ReadWhole(Path("plan.xml")), QByteArray("before"));
        QCOMPARE(NamesHere(), (QStringList{S("dive äß.log"), S("plan.xml")}));
    }
}

void tst_zr_log_dataset::damagedLogsAreUsedUpToTheDamage()
{
    const LogBytes log = DiveLog();
    const u64 at = log.Start(8); // the second event
    QVERIFY(WriteWhole(m_log, Flipped(log.Bytes(), static_cast<int>(at), 0xFF)));
    const QString message
        = S("zr: %1: Not a valid item header:aabbcc22 (at position %2)\n").arg(m_log).arg(at);
    for (int i = 0; i < 2; ++i) { // scanned, then from the index
        const ToolResult index = RunLog({S("index"), m_log, S("--json")});
        QCOMPARE(index.code, 2);
        QCOMPARE(QString::fromUtf8(index.err), message);
        QCOMPARE(index.Json().value(S("complete")), QJsonValue(false));
        QCOMPARE(index.Json().value(S("error_pos")).toDouble(), double(at));
        QCOMPARE(index.Json().value(S("index")).toString(), i == 0 ? S("built") : S("read"));
    }
    QVERIFY(RunLog({S("index"), m_log})
                .out.contains("\nEnd           damaged at position " + QByteArray::number(at) + ": "));
    const ToolResult events = RunLog({S("events"), m_log});
    QCOMPARE(events.code, 2);
    QCOMPARE(events.Lines().size(), 2);
    QCOMPARE(QString::fromUtf8(events.err), message);
    // What was asked for is done; of the damage it is only told.
    const QString warning = S("zr: warning: ") + message.mid(4);
    const ToolResult added = RunLog({S("events"), m_log, S("--add"), S("x"), S("--time"), S("1")});
    QVERIFY2(added.code == 0, added.Text());
    QCOMPARE(added.out.size(), 37);
    QCOMPARE(QString::fromUtf8(added.err), warning);
    QCOMPARE(EventTexts(m_log), (QStringList{S("x"), S("late")}));
    const QString uid = QString::fromLatin1(added.out.trimmed());
    const ToolResult removed = RunLog({S("events"), m_log, S("--remove"), uid});
    QVERIFY2(removed.code == 0, removed.Text());
    QCOMPARE(QString::fromUtf8(removed.err), warning);
    QCOMPARE(EventTexts(m_log), QStringList{S("late")});
    // What could not be done is a failure as ever, and the only thing told.
    const ToolResult again = RunLog({S("events"), m_log, S("--remove"), uid});
    QCOMPARE(again.code, 2);
    QCOMPARE(QString::fromUtf8(again.err), S("zr: %1: There is no event %2\n").arg(m_log, uid));
    const ToolResult track = RunLog({S("track"), m_log, Path("out.csv")});
    QCOMPARE(track.code, 2);
    QCOMPARE(ReadWhole(Path("out.csv")).count('\n'), 6);
    const ToolResult seek = RunLog({S("seek"), m_log, S("--record"), S("4")});
    QCOMPARE(seek.code, 2);
    QCOMPARE(seek.Lines().size(), 4);
}

void tst_zr_log_dataset::unreadableLogs_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("index") << QStringList{S("index"), S("LOG")};
    QTest::newRow("events") << QStringList{S("events"), S("LOG")};
    QTest::newRow("add") << QStringList{S("events"), S("LOG"), S("--add"), S("x"), S("--time"), S("1")};
    QTest::newRow("remove") << QStringList{S("events"), S("LOG"), S("--remove"), UidText(1)};
    QTest::newRow("track") << QStringList{S("track"), S("LOG"), S("OUT.csv")};
    QTest::newRow("seek") << QStringList{S("seek"), S("LOG"), S("--record"), S("0")};
    QTest::newRow("plan") << QStringList{S("plan"), S("LOG"), S("OUT.csv")};
}

void tst_zr_log_dataset::unreadableLogs()
{
    QFETCH(QStringList, arguments);
    arguments.replaceInStrings(S("OUT.csv"), Path("out.csv"));
    QVERIFY(WriteWhole(Path("text.log"), QByteArray(100, 'x')));
    const QList<QPair<QString, QString>> inputs{
        {Path("missing ü.log"), S("No such file or directory")},
        {m_folder.Path(), S("This is a folder, not a file")},
        {S("/dev/null"), S("Not an ordinary file")},
        {Path("text.log"), S("Not a valid header (at position 0)")},
    };
    for (const auto& [input, reason] : inputs) {
        QStringList filled = arguments;
        filled[1] = input;
        const ToolResult result = RunLog(filled);
        QVERIFY2(result.code == 2, result.Text());
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(input, reason));
        QCOMPARE(NamesHere(), QStringList{S("text.log")});
    }
}

void tst_zr_log_dataset::readOnlyFolderIsNoObstacle()
{
    // Nobody can make a file below /proc, the superuser included: the log is named by a descriptor.
    const LogBytes log = DiveLog();
    QVERIFY(WriteLog(log));
    QFile open(m_log);
    QVERIFY(open.open(QIODevice::ReadOnly));
    const QString path = S("/proc/%1/fd/%2").arg(QCoreApplication::applicationPid()).arg(open.handle());
    QCOMPARE(RunLog({S("events"), path}).Lines().size(), 3);
    const ToolResult seek = RunLog({S("seek"), path, S("--record"), S("2")});
    QVERIFY2(seek.code == 0, seek.Text());
    QCOMPARE(seek.err, QByteArray());
    QCOMPARE(RunLog({S("track"), path, Path("out.csv")}).code, 0);
    QCOMPARE(ReadWhole(Path("out.csv")).count('\n'), 6);
    const ToolResult add = RunLog({S("events"), path, S("--add"), S("x"), S("--time"), S("1")});
    QCOMPARE(add.code, 3);
    QCOMPARE(add.out, QByteArray());
    const ToolResult index = RunLog({S("index"), path});
    QCOMPARE(index.code, 3);
    QVERIFY2(index.out.contains("\nRecords       5\n"), index.Text());
    QCOMPARE(NamesHere(), (QStringList{S("dive äß.log"), S("out.csv")}));
}

void tst_zr_log_dataset::plansAreNotRestoredByTheWay()
{
    LogBytes log = SurveyLog(3);
    log.Add(TimedItem(70, 0, startTime, PlanText("the bay")));
    QVERIFY(WriteLog(log));
    QCOMPARE(RunLog({S("index"), m_log}).code, 0);
    QCOMPARE(RunLog({S("events"), m_log}).code, 0);
    QVERIFY(!QFileInfo::exists(m_log + S(".xml")));
}

QTEST_GUILESS_MAIN(tst_zr_log_dataset)
#include "tst_zr_log_dataset.moc"
