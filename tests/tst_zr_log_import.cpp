// `zr log import`: what is read, what is written, what is said about it.

#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrToolRun.h"

namespace {

/// A table of depths, one a second from 20:00:00 UTC on; rows of \p bad carry a word instead of a number.
QByteArray Soundings(int rows, const QVector<int>& bad = QVector<int>(), int minute = 0)
{
    QByteArray table("Timestamp;Depth\n");
    for (int i = 0; i < rows; ++i) {
        table += QStringLiteral("2022-05-30 20:%1:%2;%3\n")
                     .arg(minute, 2, 10, QLatin1Char('0'))
                     .arg(i, 2, 10, QLatin1Char('0'))
                     .arg(bad.contains(i) ? S("deep") : QString::number(i + 1))
                     .toLatin1();
    }
    return table;
}

QByteArray WithChecksum(const QByteArray& body)
{
    int sum = 0;
    for (const char c : body)
        sum ^= static_cast<unsigned char>(c);
    return '$' + body + '*' + QByteArray::number(sum, 16).toUpper().rightJustified(2, '0') + "\r\n";
}

QVector<ZrLogItem> ItemsOf(const QString& path)
{
    QVector<ZrLogItem> items;
    ZrLogScan scan;
    ZrLogItem item;
    u64 pos = 0;
    scan.Open(path);
    while (scan.Next(item, pos))
        items << item;
    if (scan.State() != ZrLogScan::AtEnd)
        items.clear();
    return items;
}

constexpr double eightInTheEvening = 1653940800.0; ///< 2022-05-30T20:00:00Z

} // namespace

class tst_zr_log_import : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init();

    void makesALog();
    void mergesSeveralFiles();
    void saysWhatItDid();
    void jsonOfTheResult();
    void issuesAreShownUpToALimit_data();
    void issuesAreShownUpToALimit();
    void reportHoldsEverything();
    void reportIsProtectedToo();
    void dateIsTakenFromTheOption();
    void formatIsTakenFromTheOption();
    void compressPacksPings();
    void unknownFormatIsBadInput();
    void nothingToImportIsBadInput();
    void missingFileIsBadInput();
    void forceReplaces();
    void optionsMayStandAnywhere();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    ToolFolder m_folder;
    QString m_in;
    QString m_out;
};

void tst_zr_log_import::init()
{
    m_folder.Renew();
    m_in = Path("soundings ü.txt");
    m_out = Path("out ü.log");
    QVERIFY(WriteWhole(m_in, Soundings(10)));
}

void tst_zr_log_import::makesALog()
{
    const ToolResult result = RunLog({S("import"), m_in, m_out});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    const QVector<ZrLogItem> items = ItemsOf(m_out);
    QCOMPARE(items.size(), 10);
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(items[i].type, u16(krtDepth));
        QCOMPARE(items[i].source, u16(1));
        QCOMPARE(items[i].time, eightInTheEvening + i);
    }
    QCOMPARE(DoubleAt(ReadWhole(m_out), 40), eightInTheEvening);
    const QByteArray decoded = RunLog({S("dump"), m_out, S("--at"), S("48"), S("--decoded")}).out;
    QVERIFY2(decoded.contains("depth: 1.00 m\n"), decoded);
}

void tst_zr_log_import::mergesSeveralFiles()
{
    QVERIFY(WriteWhole(Path("b.txt"), Soundings(5)));
    QVERIFY(WriteWhole(Path("c.txt"), Soundings(5, {}, 1)));
    const ToolResult result = RunLog({S("import"), Path("c.txt"), m_in, Path("b.txt"), m_out, S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    const QVector<ZrLogItem> items = ItemsOf(m_out);
    QCOMPARE(items.size(), 20);
    QVector<int> sources;
    for (const ZrLogItem& item : items)
        sources << item.source;
    QCOMPARE(sources.mid(0, 10), (QVector<int>{2, 3, 2, 3, 2, 3, 2, 3, 2, 3}));
    QCOMPARE(sources.mid(10), (QVector<int>{2, 2, 2, 2, 2, 1, 1, 1, 1, 1}));
    QCOMPARE(result.Json().value(S("files")).toArray().size(), 3);
}

void tst_zr_log_import::saysWhatItDid()
{
    QVERIFY(WriteWhole(m_in, Soundings(10, {3})));
    const ToolResult result = RunLog({S("import"), m_in, m_out});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    const QStringList lines = result.Lines();
    QCOMPARE(lines[0], m_in + S(": gnss"));
    QCOMPARE(lines[1], S("  Read      10 records, %1 bytes").arg(ReadWhole(m_in).size()));
    QCOMPARE(lines[2], S("  Items     9"));
    QCOMPARE(lines[3], S("  First     2022-05-30T20:00:00.000Z"));
    QCOMPARE(lines[4], S("  Last      2022-05-30T20:00:09.000Z"));
    QCOMPARE(lines[5], S("  Issues    1"));
    QVERIFY2(lines[6].startsWith(S("    line 5: ")), result.Text());
    QCOMPARE(lines.last(), S("%1: 9 items, 480 bytes").arg(m_out));
    QCOMPARE(ReadWhole(m_out).size(), 480);
}

void tst_zr_log_import::jsonOfTheResult()
{
    QVERIFY(WriteWhole(m_in, Soundings(10, {3, 4})));
    const ToolResult result = RunLog({S("import"), m_in, m_out, S("--json")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.out.count('\n'), 1);
    const QJsonObject json = result.Json();
    QCOMPARE(json.keys().join(QLatin1Char(' ')), S("bytes error files items out"));
    QCOMPARE(json.value(S("out")).toString(), m_out);
    QCOMPARE(json.value(S("items")).toInt(), 8);
    QCOMPARE(json.value(S("bytes")).toInt(), 48 + 8 * 48);
    QVERIFY(json.value(S("error")).isNull());
    const QJsonObject file = json.value(S("files")).toArray().at(0).toObject();
    QCOMPARE(file.keys().join(QLatin1Char(' ')),
        S("backwards bytes first_time format ignored issue_count issues items last_time notes path records"));
    QCOMPARE(file.value(S("path")).toString(), m_in);
    QCOMPARE(file.value(S("format")).toString(), S("gnss"));
    QCOMPARE(file.value(S("bytes")).toInt(), ReadWhole(m_in).size());
    QCOMPARE(file.value(S("records")).toInt(), 10);
    QCOMPARE(file.value(S("items")).toInt(), 8);
    QCOMPARE(file.value(S("first_time")).toDouble(), eightInTheEvening);
    QCOMPARE(file.value(S("last_time")).toDouble(), eightInTheEvening + 9);
    QCOMPARE(file.value(S("issue_count")).toInt(), 2);
    const QJsonObject issue = file.value(S("issues")).toArray().at(0).toObject();
    QCOMPARE(issue.value(S("line")).toInt(), 5);
    QVERIFY(!issue.value(S("text")).toString().isEmpty());
}

void tst_zr_log_import::issuesAreShownUpToALimit_data()
{
    QTest::addColumn<QStringList>("option");
    QTest::addColumn<int>("shown");
    QTest::newRow("ten unless given") << QStringList() << 10;
    QTest::newRow("none") << QStringList{S("--issues"), S("0")} << 0;
    QTest::newRow("three") << QStringList{S("--issues"), S("3")} << 3;
    QTest::newRow("more than there are") << QStringList{S("--issues"), S("100")} << 15;
}

void tst_zr_log_import::issuesAreShownUpToALimit()
{
    QFETCH(QStringList, option);
    QFETCH(int, shown);
    QVector<int> bad;
    for (int i = 10; i < 25; ++i)
        bad << i;
    QVERIFY(WriteWhole(m_in, Soundings(40, bad)));
    const ToolResult result = RunLog(QStringList{S("import"), m_in, m_out} + option);
    QCOMPARE(result.code, 0);
    QCOMPARE(result.out.count("\n    line "), shown);
    QVERIFY2(result.out.contains("\n  Issues    15\n"), result.Text());
    QCOMPARE(result.out.contains("… and " + QByteArray::number(15 - shown) + " more\n"), shown < 15);
}

void tst_zr_log_import::reportHoldsEverything()
{
    QVector<int> bad;
    for (int i = 10; i < 25; ++i)
        bad << i;
    QVERIFY(WriteWhole(m_in, Soundings(40, bad)));
    const QString report = Path("report.json");
    const ToolResult result
        = RunLog({S("import"), m_in, m_out, S("--report"), report, S("--issues"), S("1"), S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    const QJsonObject written = QJsonDocument::fromJson(ReadWhole(report)).object();
    QCOMPARE(written, result.Json());
    QCOMPARE(written.value(S("files")).toArray().at(0).toObject().value(S("issues")).toArray().size(), 15);
    QCOMPARE(Names(m_folder.Path()).size(), 3);
}

void tst_zr_log_import::reportIsProtectedToo()
{
    const QString report = Path("report.json");
    const QStringList arguments{S("import"), m_in, m_out, S("--report")};
    QVERIFY(WriteWhole(report, "before"));
    const ToolResult existing = RunLog(arguments + QStringList{report});
    QCOMPARE(existing.code, 3);
    QCOMPARE(QString::fromUtf8(existing.err),
        S("zr: %1: The file exists already; --force replaces it\n").arg(report));
    QCOMPARE(ReadWhole(report), QByteArray("before"));
    QVERIFY(!QFileInfo::exists(m_out));

    const QByteArray input = ReadWhole(m_in);
    for (const QString& same : {m_in, m_out, Path("./out ü.log")}) {
        const ToolResult refused = RunLog(arguments + QStringList{same, S("--force")});
        QVERIFY2(refused.code == 1, refused.Text());
        QVERIFY(!QFileInfo::exists(m_out));
        QCOMPARE(ReadWhole(m_in), input);
    }
    QCOMPARE(RunLog(arguments + QStringList{m_folder.Path()}).code, 3);
    QCOMPARE(RunLog(arguments + QStringList{S("/dev/full")}).code, 3);
    QVERIFY(!QFileInfo::exists(m_out));
    QCOMPARE(RunLog(arguments + QStringList{report, S("--force")}).code, 0);
    QVERIFY(ReadWhole(report).startsWith('{'));
}

void tst_zr_log_import::dateIsTakenFromTheOption()
{
    const QString nmea = Path("boat.nmea");
    QVERIFY(WriteWhole(nmea, WithChecksum("GPGLL,4828.734,N,06830.882,W,201358,A,A")));
    const ToolResult result
        = RunLog({S("import"), nmea, m_out, S("--date"), S("2019-02-28"), S("--format"), S("nmea")});
    QVERIFY2(result.code == 0, result.Text());
    QVERIFY(!ItemsOf(m_out).isEmpty());
    QVERIFY2(result.out.contains("\n  First     2019-02-28T20:13:58.000Z\n"), result.Text());
}

void tst_zr_log_import::formatIsTakenFromTheOption()
{
    const ToolResult right = RunLog({S("import"), m_in, m_out, S("--format"), S("gnss")});
    QCOMPARE(right.code, 0);
    const ToolResult automatic = RunLog({S("import"), m_in, Path("b.log"), S("--format"), S("auto")});
    QCOMPARE(automatic.code, 0);
    QCOMPARE(ReadWhole(Path("b.log")), ReadWhole(m_out));
    const ToolResult wrong = RunLog({S("import"), m_in, Path("c.log"), S("--format"), S("xtf")});
    QCOMPARE(wrong.code, 2);
    QVERIFY(!wrong.err.isEmpty());
    QVERIFY(!QFileInfo::exists(Path("c.log")));
}

void tst_zr_log_import::compressPacksPings()
{
    const QString sonar = S(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf");
    const ToolResult plain = RunLog({S("import"), sonar, m_out});
    QVERIFY2(plain.code == 0, plain.Text());
    const ToolResult packed = RunLog({S("import"), sonar, Path("packed.log"), S("--compress")});
    QVERIFY2(packed.code == 0, packed.Text());
    const QVector<ZrLogItem> before = ItemsOf(m_out);
    const QVector<ZrLogItem> after = ItemsOf(Path("packed.log"));
    QVERIFY(!before.isEmpty());
    QCOMPARE(after.size(), before.size());
    int pings = 0;
    for (int i = 0; i < before.size(); ++i) {
        QCOMPARE(before[i].compressed, u16(0));
        QCOMPARE(after[i].compressed, u16(after[i].type == krtPing ? 1 : 0));
        QCOMPARE(after[i].dataSize, before[i].dataSize);
        pings += after[i].compressed;
    }
    QVERIFY(pings > 0);
    const auto dump = [&](const QString& log) {
        const QJsonObject ping = QJsonDocument::fromJson(
            RunLog({S("items"), log, S("--type"), S("17"), S("--limit"), S("1"), S("--json")}).out)
                                     .object();
        const QString at = QString::number(static_cast<u64>(ping.value(S("pos")).toDouble()));
        return RunLog({S("dump"), log, S("--at"), at}).out;
    };
    QVERIFY(!dump(m_out).isEmpty());
    QCOMPARE(dump(Path("packed.log")), dump(m_out));
}

void tst_zr_log_import::unknownFormatIsBadInput()
{
    QVERIFY(WriteWhole(m_in, "Dear diary, today we went out to sea.\n"));
    const ToolResult result = RunLog({S("import"), m_in, m_out, S("--report"), Path("report.json")});
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.startsWith("zr: ") && result.err.contains(m_in.toUtf8()), result.Text());
    QVERIFY(!QFileInfo::exists(m_out));
    // The report tells programs what the message tells people.
    const QJsonObject report = QJsonDocument::fromJson(ReadWhole(Path("report.json"))).object();
    QVERIFY(!report.value(S("error")).toString().isEmpty());
    QCOMPARE(report.value(S("items")).toDouble(-1), 0.0);
}

void tst_zr_log_import::nothingToImportIsBadInput()
{
    for (const QByteArray& content :
        {QByteArray(""), QByteArray("Timestamp;Depth\n"), Soundings(3, {0, 1, 2})}) {
        QVERIFY(WriteWhole(m_in, content));
        const ToolResult result = RunLog({S("import"), m_in, m_out, S("--json")});
        QVERIFY2(result.code == 2, result.Text());
        QVERIFY(!result.err.isEmpty());
        QCOMPARE(Names(m_folder.Path()).size(), 1);
        QVERIFY(!result.Json().value(S("error")).toString().isEmpty());
    }
}

void tst_zr_log_import::missingFileIsBadInput()
{
    const ToolResult result = RunLog({S("import"), m_in, Path("missing"), m_out});
    QCOMPARE(result.code, 2);
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: No such file or directory\n").arg(Path("missing")));
    QCOMPARE(result.out, QByteArray());
    QVERIFY(!QFileInfo::exists(m_out));
}

void tst_zr_log_import::forceReplaces()
{
    QVERIFY(WriteWhole(m_out, "before"));
    // A failed import leaves what was there.
    QVERIFY(WriteWhole(Path("bad.txt"), "Timestamp;Depth\n"));
    QCOMPARE(RunLog({S("import"), Path("bad.txt"), m_out, S("--force")}).code, 2);
    QCOMPARE(ReadWhole(m_out), QByteArray("before"));
    QCOMPARE(RunLog({S("import"), m_in, m_out, S("--force")}).code, 0);
    QCOMPARE(ItemsOf(m_out).size(), 10);
}

void tst_zr_log_import::optionsMayStandAnywhere()
{
    for (const QStringList& arguments : {QStringList{S("--format"), S("gnss"), m_in, m_out},
             QStringList{m_in, S("--format"), S("gnss"), m_out},
             QStringList{m_in, m_out, S("--format=gnss")}}) {
        const ToolResult result = RunLog(QStringList{S("import"), S("--force")} + arguments);
        QVERIFY2(result.code == 0, result.Text());
    }
}

QTEST_GUILESS_MAIN(tst_zr_log_import)
#include "tst_zr_log_import.moc"
