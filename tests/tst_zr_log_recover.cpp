// `zr log check` and `zr log recover` as a person runs them, and the class behind the check.

#include "ZrKit/review/ZrLogCheck.h"
#include "ZrToolRun.h"

#include <csignal>
#include <limits>

namespace {

QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

void WriteAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
}

/// Counts and, when told so, cancels.
class Steps final : public IZrProgress
{
public:
    void UpdateProgress(int percent) override
    {
        last = percent;
        if (cancel)
            *cancel = true;
    }

    int GetProgress() override { return last; }

    std::atomic<bool>* cancel = nullptr;
    int last = -1;
};

} // namespace

class tst_zr_log_recover : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_folder.Renew(); }

    void soundLogHasNoProblem();
    void checkGoesOnBehindDamage();
    void checkLooksIntoPayloads();
    void checkTellsTheOrderOfTheFile();
    void checkOfVeryManyProblems();
    void checkWithoutAFileHeader();
    void checkCountsJumpsAcrossUnknownTimes();
    void checkOfNoLog();
    void checkOfAMissingFile();
    void checkCanBeCancelled();
    void examiningWritesNothing();
    void nothingLost();
    void somethingLost();
    void nothingToRecover();
    void interruptedItemIsCompleted();
    void refusesItsOwnInput();
    void replacesOnlyWithForce();
    void fullDisk();
    void strictLeavesOutTheDoubtful();
    void veryManyRanges();
    void recoverInterrupted();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    ToolFolder m_folder;
};

void tst_zr_log_recover::soundLogHasNoProblem()
{
    TimedLog log(Path("good.log"));
    log.Add(2, 0, 0, 0, 20.0, QByteArray("$GPGLL", 7));
    log.Add(16, 0, 1, 1, 10.0, Sample::Navigation());
    log.Add(300, 5, 1, 1, 30.0, QByteArray(5000, 'x'), true);
    QVERIFY(log.Commit());
    ZrLogCheck check;
    QVERIFY2(check.Run(Path("good.log")), qPrintable(check.Error()));
    QCOMPARE(check.ProblemCount(), u64(0));
    QCOMPARE(check.Items(), u64(3));
    QCOMPARE(check.BackwardJumps(), u64(1));

    const ToolResult result = RunLog({S("check"), Path("good.log")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(
        result.Lines(), QStringList{Path("good.log") + S(": 3 items, 0 problems, clock set back 1 time")});
}

void tst_zr_log_recover::checkGoesOnBehindDamage()
{
    const Sample sample(Path("a.log"));
    QByteArray bytes = ReadAll(sample.path);
    // The magic of the second item, and a byte in the compressed payload of the third.
    bytes[int(sample.starts[1])] = 'X';
    bytes[int(sample.starts[2]) + 40 + 8] = static_cast<char>(bytes[int(sample.starts[2]) + 40 + 8] ^ 0x55);
    WriteAll(sample.path, bytes);
    const ToolResult result = RunLog({S("check"), sample.path, S("--json")});
    QVERIFY2(result.code == 2, result.Text());
    const QJsonObject json = result.Json();
    QCOMPARE(json.value(S("path")).toString(), sample.path);
    const QJsonArray problems = json.value(S("problems")).toArray();
    QVERIFY2(problems.size() >= 2, result.out);
    QCOMPARE(json.value(S("problem_count")).toInt(), problems.size());
    QCOMPARE(problems[0].toObject().value(S("pos")).toInt(), int(sample.starts[1]));
    bool foundSecond = false;
    for (const QJsonValue& problem : problems)
        foundSecond = foundSecond || problem.toObject().value(S("pos")).toInt() == int(sample.starts[2]);
    QVERIFY2(foundSecond, result.out);
    // The items behind the damage were looked at as well.
    QVERIFY2(json.value(S("items")).toInt() >= 4, result.out);
    QVERIFY(json.contains(S("backward_jumps")));
}

void tst_zr_log_recover::checkLooksIntoPayloads()
{
    TimedLog log(Path("b.log"));
    log.Add(16, 0, 1, 1, 10.0, QByteArray("too short"));
    log.Add(300, 0, 1, 1, std::numeric_limits<double>::quiet_NaN(), QByteArray("x"));
    log.Add(300, 0, 1, 1, 12.0, QByteArray("any bytes are fine here"));
    QVERIFY(log.Commit());
    ZrLogCheck check;
    QVERIFY(check.Run(Path("b.log")));
    QCOMPARE(check.ProblemCount(), u64(2));
    QCOMPARE(check.Problems()[0].pos, log.Start(0));
    QCOMPARE(check.Problems()[0].length, u64(40 + 9));
    QVERIFY(!check.Problems()[0].text.isEmpty());
    QCOMPARE(check.Problems()[1].pos, log.Start(1));
    QCOMPARE(check.Problems()[1].text, S("the time of the item is no number"));
    const ToolResult result = RunLog({S("check"), Path("b.log")});
    QVERIFY2(result.code == 2, result.Text());
    QCOMPARE(result.Lines().size(), 3);
    QVERIFY2(result.Lines().last().contains(S("2 problems")), result.Text());
}

void tst_zr_log_recover::checkTellsTheOrderOfTheFile()
{
    TimedLog log(Path("a.log"));
    log.Add(16, 0, 1, 1, 10.0, QByteArray("too short"));
    log.Add(300, 0, 1, 1, 11.0, QByteArray(60, 'a'));
    log.Add(300, 0, 1, 1, 12.0, QByteArray(70, 'b'));
    log.Add(16, 0, 1, 1, 13.0, QByteArray("too short"));
    log.Add(300, 0, 1, 1, 14.0, QByteArray(80, 'c'));
    QVERIFY(log.Commit());
    QByteArray bytes = ReadAll(Path("a.log"));
    bytes.replace(int(log.Start(2)) + 28, 8, QByteArray(8, '\0'));
    bytes[int(log.Start(1))] = 'X';
    bytes.chop(5);
    WriteAll(Path("a.log"), bytes);
    ZrLogCheck check;
    QVERIFY(check.Run(Path("a.log")));
    QVector<u64> found;
    for (const ZrLogCheck::Problem& problem : check.Problems())
        found << problem.pos;
    QCOMPARE(found, (QVector<u64>{log.Start(0), log.Start(1), log.Start(2), log.Start(3), log.Start(4)}));
    QCOMPARE(check.ProblemCount(), u64(5));
    QCOMPARE(check.Items(), u64(3));
    // The same object serves again.
    QVERIFY(check.Run(Path("a.log")));
    QCOMPARE(check.ProblemCount(), u64(5));
}

/// All are counted, the first thousand told, and the last items still looked at.
void tst_zr_log_recover::checkOfVeryManyProblems()
{
    constexpr int pairs = 1500;
    TimedLog log(Path("a.log"));
    for (int i = 0; i < pairs; ++i) {
        log.Add(300, 0, 1, 1, i, QByteArray(20, 'x'));
        log.Add(16, 0, 1, 1, i, QByteArray("too short"));
    }
    QVERIFY(log.Commit());
    QByteArray bytes = ReadAll(Path("a.log"));
    for (int i = 0; i < pairs; ++i)
        bytes[int(log.Start(2 * i))] = 'X';
    WriteAll(Path("a.log"), bytes);
    const ToolResult result = RunLog({S("check"), Path("a.log"), S("--json")});
    QVERIFY2(result.code == 2, result.Text());
    const QJsonObject json = result.Json();
    QCOMPARE(json.value(S("problem_count")).toInt(), 2 * pairs);
    QCOMPARE(json.value(S("items")).toInt(), pairs);
    const QJsonArray problems = json.value(S("problems")).toArray();
    QCOMPARE(problems.size(), 1000);
    QCOMPARE(problems.last().toObject().value(S("pos")).toDouble(), double(log.Start(999)));
    const QStringList lines = RunLog({S("check"), Path("a.log")}).Lines();
    QCOMPARE(lines.size(), 1002);
    QCOMPARE(lines[1000], S("… and 2000 more"));
}

void tst_zr_log_recover::checkWithoutAFileHeader()
{
    TimedLog log(Path("a.log"));
    log.Add(300, 0, 1, 1, 11.0, QByteArray(60, 'a'));
    log.Add(16, 0, 1, 1, 13.0, QByteArray("too short"));
    QVERIFY(log.Commit());
    WriteAll(Path("a.log"), QByteArray(48, 'x') + ReadAll(Path("a.log")).mid(48));
    ZrLogCheck check;
    QVERIFY2(check.Run(Path("a.log")), qPrintable(check.Error()));
    QCOMPARE(check.ProblemCount(), u64(2));
    QCOMPARE(check.Problems()[0].pos, u64(0));
    QCOMPARE(check.Problems()[0].length, u64(48));
    QCOMPARE(check.Problems()[1].pos, log.Start(1));
    QCOMPARE(check.Items(), u64(2));

    // Not a byte of it is there: nothing is lost, but it is no log that a player opens.
    WriteAll(Path("a.log"), ReadAll(Path("a.log")).mid(48));
    const ToolResult result = RunLog({S("check"), Path("a.log")});
    QVERIFY2(result.code == 2, result.Text());
    QCOMPARE(result.Lines().first(), S("position 0, 0 bytes: no file header"));
    QCOMPARE(result.Lines().size(), 3);
    QCOMPARE(RunLog({S("recover"), Path("a.log"), Path("out.log")}).code, 0);
}

void tst_zr_log_recover::checkCountsJumpsAcrossUnknownTimes()
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    TimedLog log(Path("a.log"));
    for (const double time : {nan, 10.0, nan, 9.0, 9.0, std::numeric_limits<double>::infinity(), 8.0})
        log.Add(300, 0, 1, 1, time, QByteArray("x"));
    QVERIFY(log.Commit());
    ZrLogCheck check;
    QVERIFY(check.Run(Path("a.log")));
    QCOMPARE(check.BackwardJumps(), u64(2));
    QCOMPARE(check.ProblemCount(), u64(3));
}

void tst_zr_log_recover::checkOfNoLog()
{
    WriteAll(Path("zeros"), QByteArray(1000, '\0'));
    const ToolResult zeros = RunLog({S("check"), Path("zeros")});
    QVERIFY2(zeros.code == 2 && zeros.out.contains("neither a log header nor an item"), zeros.Text());
    WriteAll(Path("empty"), QByteArray());
    const ToolResult empty = RunLog({S("check"), Path("empty")});
    QVERIFY2(empty.code == 2, empty.Text());
    QCOMPARE(zeros.Lines().size(), 2);
    QCOMPARE(empty.Lines().size(), 2);
}

void tst_zr_log_recover::checkOfAMissingFile()
{
    for (const char* verb : {"check", "recover"}) {
        QStringList arguments{S(verb), Path("none.log")};
        if (S(verb) == S("recover"))
            arguments << Path("out.log");
        const ToolResult result = RunLog(arguments);
        QVERIFY2(result.code == 2 && result.err.contains("none.log"), result.Text());
    }
    ZrLogCheck check;
    QVERIFY(!check.Run(Path("none.log")));
    QVERIFY(!check.Error().isEmpty());
}

void tst_zr_log_recover::checkCanBeCancelled()
{
    const Sample sample(Path("a.log"));
    ZrLogCheck check;
    Steps steps;
    steps.cancel = &check.cancel;
    check.progress = &steps;
    QVERIFY(!check.Run(sample.path));
    QVERIFY(check.Error().contains(S("cancelled")));
}

void tst_zr_log_recover::examiningWritesNothing()
{
    const Sample sample(Path("a.log"));
    const QByteArray before = ReadAll(sample.path);
    const QStringList names = Names(m_folder.Path());
    ZrLogCheck check;
    QVERIFY(check.Run(sample.path));
    QCOMPARE(Names(m_folder.Path()), names);
    QVERIFY(ReadAll(sample.path) == before);
}

void tst_zr_log_recover::nothingLost()
{
    const Sample sample(Path("a.log"));
    const ToolResult result = RunLog({S("recover"), sample.path, Path("out.log"), S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    const QJsonObject json = result.Json();
    QCOMPARE(json.value(S("kept")).toInt(), 6);
    QCOMPARE(json.value(S("bytes_lost")).toInt(), 0);
    QCOMPARE(json.value(S("source_bytes")).toInt(), int(sample.size));
    QCOMPARE(json.value(S("ranges")).toArray().size(), 0);
    QCOMPARE(json.value(S("header_sound")).toBool(), true);
    QVERIFY(ReadAll(Path("out.log")) == ReadAll(sample.path));
}

void tst_zr_log_recover::somethingLost()
{
    const Sample sample(Path("a.log"));
    QByteArray bytes = ReadAll(sample.path);
    bytes[int(sample.starts[1])] = 'X';
    WriteAll(sample.path, bytes);
    const ToolResult result = RunLog({S("recover"), sample.path, Path("out.log")});
    QVERIFY2(result.code == 4, result.Text());
    const int lost = int(sample.starts[2] - sample.starts[1]);
    QVERIFY2(result.Lines().first().contains(S("5 items kept, %1 bytes lost").arg(lost)), result.Text());
    QVERIFY2(result.out.contains("position " + QByteArray::number(sample.starts[1])), result.Text());
    const QByteArray expected = bytes.left(int(sample.starts[1])) + bytes.mid(int(sample.starts[2]));
    QVERIFY(ReadAll(Path("out.log")) == expected);
    QCOMPARE(RunLog({S("check"), Path("out.log")}).code, 0);
}

void tst_zr_log_recover::nothingToRecover()
{
    WriteAll(Path("zeros"), QByteArray(1000, '\0'));
    const ToolResult result = RunLog({S("recover"), Path("zeros"), Path("out.log")});
    QVERIFY2(result.code == 2, result.Text());
    QVERIFY(!QFile::exists(Path("out.log")));
}

void tst_zr_log_recover::interruptedItemIsCompleted()
{
    TimedLog log(Path("a.log"));
    log.Add(300, 0, 1, 1, 10.0, QByteArray(50, 'a'));
    log.Add(300, 0, 1, 1, 11.0, QByteArray(70, 'b'));
    QVERIFY(log.Commit());
    QByteArray bytes = ReadAll(Path("a.log"));
    const QByteArray whole = bytes;
    // What a writer leaves that died between the payload and the second writing of the header.
    bytes.replace(int(log.Start(1)) + 28, 8, QByteArray(8, '\0'));
    WriteAll(Path("a.log"), bytes);
    const ToolResult result = RunLog({S("recover"), Path("a.log"), Path("out.log"), S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.Json().value(S("repaired")).toInt(), 1);
    QVERIFY(ReadAll(Path("out.log")) == whole);
    const ToolResult check = RunLog({S("check"), Path("a.log")});
    QVERIFY2(check.code == 2, check.Text());
    QCOMPARE(check.Lines(),
        (QStringList{S("position %1, 110 bytes: its writer was interrupted; the item can be completed")
                         .arg(log.Start(1)),
            Path("a.log") + S(": 2 items, 1 problem, clock set back 0 times")}));
}

void tst_zr_log_recover::refusesItsOwnInput()
{
    const Sample sample(Path("a.log"));
    const QByteArray before = ReadAll(sample.path);
    QVERIFY(QFile::link(sample.path, Path("link.log")));
    for (const QString& out : {sample.path, Path("link.log")}) {
        const ToolResult result = RunLog({S("recover"), sample.path, out, S("--force")});
        QVERIFY2(result.code == 1, result.Text());
        QVERIFY(ReadAll(sample.path) == before);
    }
}

void tst_zr_log_recover::replacesOnlyWithForce()
{
    const Sample sample(Path("a.log"));
    WriteAll(Path("out.log"), "precious");
    const ToolResult refused = RunLog({S("recover"), sample.path, Path("out.log")});
    QVERIFY2(refused.code == 3, refused.Text());
    QCOMPARE(ReadAll(Path("out.log")), QByteArray("precious"));
    QCOMPARE(RunLog({S("recover"), sample.path, Path("out.log"), S("--force")}).code, 0);
    QVERIFY(ReadAll(Path("out.log")) == ReadAll(sample.path));
}

void tst_zr_log_recover::fullDisk()
{
    TimedLog log(Path("a.log"));
    for (int i = 0; i < 40; ++i)
        log.Add(300, 0, 1, 1, i, QByteArray(1000, 'x'));
    QVERIFY(log.Commit());
    const QStringList names = Names(m_folder.Path());
    const ToolResult result = RunLogLimited({S("recover"), Path("a.log"), Path("out.log")}, 8192);
    QVERIFY2(result.code == 3, result.Text());
    QCOMPARE(Names(m_folder.Path()), names);
}

void tst_zr_log_recover::strictLeavesOutTheDoubtful()
{
    const Sample sample(Path("a.log"));
    const QByteArray whole = ReadAll(sample.path);
    const int second = int(sample.starts[1]);
    WriteAll(sample.path, QByteArray(whole).insert(second, "garbage"));
    const ToolResult kept = RunLog({S("recover"), sample.path, Path("out.log")});
    QVERIFY2(kept.code == 4, kept.Text());
    QVERIFY(ReadAll(Path("out.log")) == whole);
    QCOMPARE(kept.Lines()[0],
        S("%1: 6 items kept, 7 bytes lost of %2").arg(Path("out.log"), SizeText(whole.size() + 7)));
    QCOMPARE(kept.Lines().mid(1),
        (QStringList{S("  doubtful  1 item"),
            S("  doubtful  position 48, 47 bytes: something unknown follows the item"),
            S("  lost      position %1, 7 bytes: no item header").arg(second)}));
    const ToolResult strict
        = RunLog({S("recover"), sample.path, Path("out.log"), S("--strict"), S("--force"), S("--json")});
    QVERIFY2(strict.code == 4, strict.Text());
    QVERIFY(ReadAll(Path("out.log")) == QByteArray(whole).remove(48, second - 48));
    const QJsonObject json = strict.Json();
    QCOMPARE(json.value(S("doubtful")).toInt(), 1);
    QCOMPARE(json.value(S("kept")).toInt(), 5);
    QCOMPARE(json.value(S("bytes_lost")).toInt(), second - 48 + 7);
    QCOMPARE(json.value(S("range_count")).toInt(), 2);
    const QJsonObject range = json.value(S("ranges")).toArray()[0].toObject();
    QCOMPARE(range.keys(), (QStringList{S("length"), S("lost"), S("offset"), S("reason")}));
    QCOMPARE(range.value(S("offset")).toInt(), 48);
    QCOMPARE(range.value(S("length")).toInt(), second - 48);
    QCOMPARE(range.value(S("lost")), QJsonValue(true));
    QCOMPARE(range.value(S("reason")).toString(), S("something unknown follows the item"));
}

void tst_zr_log_recover::veryManyRanges()
{
    TimedLog log(Path("a.log"));
    for (int i = 0; i < 100; ++i)
        log.Add(300, 0, 1, 1, i, QByteArray(20, 'x'));
    QVERIFY(log.Commit());
    QByteArray bytes = ReadAll(Path("a.log"));
    for (int i = 0; i < 100; i += 2)
        bytes[int(log.Start(i))] = 'X';
    WriteAll(Path("a.log"), bytes);
    const QStringList lines = RunLog({S("recover"), Path("a.log"), Path("out.log")}).Lines();
    QCOMPARE(lines.size(), 22);
    QCOMPARE(lines.last(), S("  … and 30 more; --json lists them"));
}

void tst_zr_log_recover::recoverInterrupted()
{
    // 3.2 GiB of zeros, all of which are copied.
    QVERIFY(WriteSparseLog(Path("a.log"), 400, 8 * 1024 * 1024));
    WriteAll(Path("out.log"), "precious");
    const QStringList names = Names(m_folder.Path());
    QProcess process;
    const auto hasOpen = [&] {
        const QDir files(S("/proc/%1/fd").arg(process.processId()));
        for (const QString& name : files.entryList(QDir::Files | QDir::System))
            if (QFileInfo(files.filePath(name)).symLinkTarget() == Path("a.log"))
                return true;
        return false;
    };
    for (const char* verb : {"check", "recover"}) {
        QStringList arguments{S("log"), S(verb), Path("a.log")};
        if (S(verb) == S("recover"))
            arguments << Path("out.log") << S("--force");
        process.start(ToolPath(), arguments);
        QVERIFY(process.waitForStarted(toolPatience));
        QTRY_VERIFY_WITH_TIMEOUT(hasOpen(), toolPatience);
        QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
        const ToolResult result = Finish(process);
        QVERIFY2(result.code == 130, result.Text());
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(Names(m_folder.Path()), names);
        QCOMPARE(ReadAll(Path("out.log")), QByteArray("precious"));
    }
}

QTEST_GUILESS_MAIN(tst_zr_log_recover)
#include "tst_zr_log_recover.moc"
