// `zr log check` and `zr log recover` as a person runs them, and the class behind the check.

#include "ZrKit/review/ZrLogCheck.h"
#include "ZrToolRun.h"

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

void tst_zr_log_recover::checkOfNoLog()
{
    WriteAll(Path("zeros"), QByteArray(1000, '\0'));
    const ToolResult zeros = RunLog({S("check"), Path("zeros")});
    QVERIFY2(zeros.code == 2 && zeros.out.contains("neither a log header nor an item"), zeros.Text());
    WriteAll(Path("empty"), QByteArray());
    const ToolResult empty = RunLog({S("check"), Path("empty")});
    QVERIFY2(empty.code == 2, empty.Text());
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
    QVERIFY2(check.code == 2 && check.out.contains("can be completed: 1"), check.Text());
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

QTEST_GUILESS_MAIN(tst_zr_log_recover)
#include "tst_zr_log_recover.moc"
