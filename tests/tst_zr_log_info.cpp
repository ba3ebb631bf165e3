// `zr log info` as a person and a program run it.

#include "ZrToolRun.h"

#include <cmath>

namespace {

QJsonObject TypeOf(const QJsonObject& info, int type, int sub)
{
    for (const QJsonValue& value : info.value(S("types")).toArray()) {
        const QJsonObject object = value.toObject();
        if (object.value(S("type")).toInt() == type && object.value(S("sub")).toInt() == sub)
            return object;
    }
    return QJsonObject();
}

} // namespace

class tst_zr_log_info : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_folder.Renew(); }

    void infoText();
    void infoJson();
    void infoOfAnEmptyLog();
    void infoOfADamagedLog();
    void infoOfADamagedFileHeader_data();
    void infoOfADamagedFileHeader();
    void infoOfOddTimes();
    void infoListsTheFirstOfManySources();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    ToolFolder m_folder;
};

void tst_zr_log_info::infoText()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    const ToolResult result = RunLog({S("info"), path});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.err, QByteArray());
    const u64 packed = static_cast<u64>(qCompress(QByteArray(1000, 'c'), 1).size());
    const QString expected = S("Log         %1\n"
                               "Size        %2 bytes\n"
                               "Version     1\n"
                               "Created     2021-03-03T14:05:09.000Z\n"
                               "Items       6\n"
                               "First       2021-03-03T14:05:09.000Z\n"
                               "Last        2021-03-03T15:05:12.000Z\n"
                               "Duration    1 h 00 min 03.000 s\n"
                               "Clock       set back 1 time\n"
                               "End         clean\n"
                               "\n")
                                 .arg(path)
                                 .arg(sample.size);
    QVERIFY2(QString::fromUtf8(result.out).startsWith(expected), result.Text());
    const QStringList rows = result.Lines().mid(11);
    QCOMPARE(rows.size(), 6);
    QCOMPARE(
        rows[0].simplified(), S("Type Sub Name Items Items/s Stored bytes Data bytes Compressed Sources"));
    QCOMPARE(rows[1].simplified(), S("2 0 serial text 2 1.00 14 14 bytes 14 14 bytes - 0, 7"));
    QCOMPARE(rows[2].simplified(), S("16 0 navigation 1 - 40 40 bytes 40 40 bytes - 1"));
    QCOMPARE(rows[3].simplified(), S("200 1 - 1 - %1 %1 bytes 1000 1000 bytes 100 % 3").arg(packed));
    QCOMPARE(rows[4].simplified(), S("200 2 - 1 - 8 8 bytes 8 8 bytes - 4"));
    QCOMPARE(rows[5].simplified(), S("65535 0 - 1 - 0 0 bytes 0 0 bytes - 0"));
    // Columns are aligned: the titles of numbers end where the numbers end.
    for (const QString& title : {S(" Items "), S("Stored bytes"), S("Data bytes")}) {
        const int end
            = rows[0].indexOf(title) + title.trimmed().size() + (title.startsWith(QLatin1Char(' ')) ? 1 : 0);
        for (const QString& row : rows.mid(1)) {
            QVERIFY2(row.at(end - 1).isDigit(), qPrintable(title + row));
            QCOMPARE(row.at(end), QLatin1Char(' '));
        }
    }
}

void tst_zr_log_info::infoJson()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    const ToolResult result = RunLog({S("info"), path, S("--json")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.out.count('\n'), 1);
    const QJsonObject info = result.Json();
    QCOMPARE(info.value(S("path")).toString(), path);
    QCOMPARE(info.value(S("size")).toDouble(), double(sample.size));
    QCOMPARE(info.value(S("version")).toInt(), 1);
    QCOMPARE(info.value(S("created")).toDouble(), 1614780309.0);
    QCOMPARE(info.value(S("items")).toInt(), 6);
    QCOMPARE(info.value(S("first_time")).toDouble(), 1614780309.0);
    QCOMPARE(info.value(S("last_time")).toDouble(), 1614783912.0);
    QCOMPARE(info.value(S("duration")).toDouble(), 3603.0);
    QCOMPARE(info.value(S("backward_jumps")).toInt(), 1);
    QCOMPARE(info.value(S("complete")), QJsonValue(true));
    QVERIFY(info.contains(S("error")) && info.value(S("error")).isNull());
    QVERIFY(info.contains(S("error_pos")) && info.value(S("error_pos")).isNull());
    QCOMPARE(info.value(S("types")).toArray().size(), 5);

    const QJsonObject packed = TypeOf(info, 200, 1);
    QCOMPARE(packed.value(S("count")).toInt(), 1);
    QCOMPARE(packed.value(S("data_bytes")).toInt(), 1000);
    QCOMPARE(packed.value(S("stored_bytes")).toInt(), qCompress(QByteArray(1000, 'c'), 1).size());
    QCOMPARE(packed.value(S("compressed")).toInt(), 1);
    QVERIFY(packed.value(S("rate")).isNull());
    QCOMPARE(packed.value(S("sources")).toArray(), QJsonArray({3}));
    const QJsonObject text = TypeOf(info, 2, 0);
    QCOMPARE(text.value(S("name")).toString(), S("serial text"));
    QCOMPARE(text.value(S("count")).toInt(), 2);
    QCOMPARE(text.value(S("compressed")).toInt(), 0);
    QCOMPARE(text.value(S("rate")).toDouble(), 1.0);
    QCOMPARE(text.value(S("first_time")).toDouble(), 1614780309.0);
    QCOMPARE(text.value(S("last_time")).toDouble(), 1614780310.0);
    QCOMPARE(text.value(S("sources")).toArray(), QJsonArray({0, 7}));
}

void tst_zr_log_info::infoOfAnEmptyLog()
{
    QVERIFY(WriteWhole(Path("a.log"), FileHeader(1000.5)));
    const ToolResult text = RunLog({S("info"), Path("a.log")});
    QCOMPARE(text.code, 0);
    QCOMPARE(QString::fromUtf8(text.out),
        S("Log         %1\n"
          "Size        48 bytes\n"
          "Version     1\n"
          "Created     1970-01-01T00:16:40.500Z\n"
          "Items       0\n"
          "End         clean\n")
            .arg(Path("a.log")));
    const QJsonObject info = RunLog({S("info"), Path("a.log"), S("--json")}).Json();
    QCOMPARE(info.value(S("items")).toDouble(-1), 0.0);
    QVERIFY(info.value(S("first_time")).isNull());
    QVERIFY(info.value(S("last_time")).isNull());
    QVERIFY(info.value(S("duration")).isNull());
    QCOMPARE(info.value(S("types")).toArray().size(), 0);
    QCOMPARE(info.value(S("complete")), QJsonValue(true));
}

void tst_zr_log_info::infoOfADamagedLog()
{
    const Sample sample(Path("dive äß 1.log"));
    const QByteArray whole = ReadWhole(sample.path);
    QVERIFY(WriteWhole(Path("a.log"), Flipped(whole, static_cast<int>(sample.starts[2]), 0xFF)));
    const ToolResult text = RunLog({S("info"), Path("a.log")});
    QCOMPARE(text.code, 2);
    QVERIFY2(text.out.contains("\nItems       2\n"), text.Text());
    const QString reason = S("Not a valid item header:aabbcc22");
    QVERIFY2(QString::fromUtf8(text.out).contains(
                 S("\nEnd         damaged at position %1: %2\n").arg(sample.starts[2]).arg(reason)),
        text.Text());
    QCOMPARE(QString::fromUtf8(text.err),
        S("zr: %1: %2 (at position %3)\n").arg(Path("a.log"), reason).arg(sample.starts[2]));

    const ToolResult result = RunLog({S("info"), Path("a.log"), S("--json")});
    QCOMPARE(result.code, 2);
    const QJsonObject info = result.Json();
    QCOMPARE(info.value(S("items")).toInt(), 2);
    QCOMPARE(info.value(S("complete")), QJsonValue(false));
    QCOMPARE(info.value(S("error")).toString(), reason);
    QCOMPARE(info.value(S("error_pos")).toDouble(), double(sample.starts[2]));
    QCOMPARE(info.value(S("types")).toArray().size(), 2);

    QVERIFY(WriteWhole(Path("b.log"), whole.left(whole.size() - 10)));
    QCOMPARE(RunLog({S("info"), Path("b.log"), S("--json")}).Json().value(S("error")).toString(),
        S("Incomplete item header found. FS:%1 BR:%2").arg(whole.size() - 10).arg(sample.starts[5]));
}

void tst_zr_log_info::infoOfADamagedFileHeader_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message");
    QTest::newRow("nothing") << QByteArray("") << S("File is not big enough to contain a header");
    QTest::newRow("47 bytes") << FileHeader().left(47) << S("File is not big enough to contain a header");
    QTest::newRow("magic") << Flipped(FileHeader(), 0, 1) << S("Not a valid header");
    QTest::newRow("size") << Flipped(FileHeader(), 4, 1) << S("File header version mismatch");
}

void tst_zr_log_info::infoOfADamagedFileHeader()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    QVERIFY(WriteWhole(Path("a.log"), bytes));
    const ToolResult text = RunLog({S("info"), Path("a.log")});
    QCOMPARE(text.code, 2);
    QCOMPARE(QString::fromUtf8(text.out),
        S("Log         %1\n"
          "Size        %2 bytes\n"
          "Items       0\n"
          "End         damaged at position 0: %3\n")
            .arg(Path("a.log"))
            .arg(bytes.size())
            .arg(message));
    const ToolResult result = RunLog({S("info"), Path("a.log"), S("--json")});
    QCOMPARE(result.code, 2);
    const QJsonObject info = result.Json();
    QCOMPARE(info.value(S("error")).toString(), message);
    QCOMPARE(info.value(S("error_pos")).toDouble(-1), 0.0);
    QVERIFY(info.contains(S("version")) && info.value(S("version")).isNull());
    QVERIFY(info.contains(S("created")) && info.value(S("created")).isNull());
    QCOMPARE(info.value(S("items")).toDouble(-1), 0.0);
}

void tst_zr_log_info::infoOfOddTimes()
{
    LogBytes log;
    for (const double time : {std::nan(""), 1e300, -1e300, std::numeric_limits<double>::infinity()}) {
        Item item = MakeItem(4, "x");
        item.time = time;
        log.Add(item);
    }
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    const ToolResult text = RunLog({S("info"), Path("a.log")});
    QCOMPARE(text.code, 0);
    QVERIFY2(text.out.contains("\nFirst       -1.0000000000000001e+300 s\n"), text.Text());
    const QJsonObject info = RunLog({S("info"), Path("a.log"), S("--json")}).Json();
    QCOMPARE(info.value(S("last_time")).toDouble(), 1e300);
    const QStringList items = RunLog({S("items"), Path("a.log"), S("--json")}).Lines();
    QCOMPARE(items.size(), 4);
    QVERIFY(items[0].contains(S("\"time\":null")));
    QVERIFY(items[1].contains(S("\"time\":1e+300")));
    QVERIFY(items[3].contains(S("\"time\":null")));
}

void tst_zr_log_info::infoListsTheFirstOfManySources()
{
    LogBytes log;
    for (int source = 0; source < 100; ++source)
        log.Add(MakeItem(4, "x", static_cast<quint16>(source)));
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    const ToolResult text = RunLog({S("info"), Path("a.log")});
    QVERIFY2(QString::fromUtf8(text.out).contains(S("  0, 1, 2, 3, 4, 5, 6, 7, … (100)\n")), text.Text());
    const QJsonObject info = RunLog({S("info"), Path("a.log"), S("--json")}).Json();
    QCOMPARE(TypeOf(info, 4, 0).value(S("sources")).toArray().size(), 100);
}

QTEST_GUILESS_MAIN(tst_zr_log_info)
#include "tst_zr_log_info.moc"
