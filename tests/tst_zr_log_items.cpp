// `zr log items` as a person and a program run it.

#include "ZrToolRun.h"

class tst_zr_log_items : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_folder.Renew(); }

    void itemsText();
    void itemsJson();
    void itemsSelected_data();
    void itemsSelected();
    void itemsFromAWrongPlace_data();
    void itemsFromAWrongPlace();
    void itemsOfADamagedLog();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    ToolFolder m_folder;
};

void tst_zr_log_items::itemsText()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    const ToolResult result = RunLog({S("items"), path});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.err, QByteArray());
    const QStringList lines = result.Lines();
    QCOMPARE(lines.size(), 7);
    QCOMPARE(lines[0].simplified(), S("Pos Type Sub Source Format Time Stored Data Packed Name"));
    QCOMPARE(lines[1].simplified(), S("48 2 0 0 0 2021-03-03T14:05:09.000Z 7 7 - serial text"));
    QCOMPARE(lines[2].simplified(),
        S("%1 16 0 1 1 2021-03-03T14:05:09.500Z 40 40 - navigation").arg(sample.starts[1]));
    const int packed = qCompress(QByteArray(1000, 'c'), 1).size();
    QCOMPARE(lines[3].simplified(),
        S("%1 200 1 3 9 2021-03-03T14:05:10.125Z %2 1000 yes").arg(sample.starts[2]).arg(packed));
    QCOMPARE(lines[6].simplified(), S("%1 65535 0 0 0 2021-03-03T15:05:12.000Z 0 0 -").arg(sample.starts[5]));
    const int time = lines[0].indexOf(S("Time"));
    const int stored = lines[0].indexOf(S("Stored")) + 5;
    for (int i = 1; i < lines.size(); ++i) {
        QCOMPARE(lines[i].indexOf(S("2021-03-03T")), time);
        QVERIFY(lines[i].at(stored).isDigit());
    }
}

void tst_zr_log_items::itemsJson()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    const ToolResult result = RunLog({S("items"), path, S("--json")});
    QCOMPARE(result.code, 0);
    const QStringList lines = result.Lines();
    QCOMPARE(lines.size(), 6);
    const QJsonObject item = QJsonDocument::fromJson(lines[2].toUtf8()).object();
    QStringList keys = item.keys();
    QCOMPARE(
        keys.join(QLatin1Char(' ')), S("compressed data_size format pos source stored_size sub time type"));
    QCOMPARE(item.value(S("pos")).toDouble(), double(sample.starts[2]));
    QCOMPARE(item.value(S("type")).toInt(), 200);
    QCOMPARE(item.value(S("sub")).toInt(), 1);
    QCOMPARE(item.value(S("source")).toInt(), 3);
    QCOMPARE(item.value(S("format")).toInt(), 9);
    QCOMPARE(item.value(S("time")).toDouble(), 1614780310.125);
    QCOMPARE(item.value(S("compressed")), QJsonValue(true));
    QCOMPARE(item.value(S("data_size")).toInt(), 1000);
    QCOMPARE(item.value(S("stored_size")).toInt(), qCompress(QByteArray(1000, 'c'), 1).size());
    QCOMPARE(QJsonDocument::fromJson(lines[0].toUtf8()).object().value(S("compressed")), QJsonValue(false));
}

void tst_zr_log_items::itemsSelected_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QVector<int>>("expected");
    const auto list = [](std::initializer_list<const char*> texts) {
        QStringList out;
        for (const char* text : texts)
            out << S(text);
        return out;
    };
    QTest::newRow("all") << list({}) << QVector<int>{0, 1, 2, 3, 4, 5};
    QTest::newRow("type") << list({"--type", "2"}) << QVector<int>{0, 4};
    QTest::newRow("any sub") << list({"--type", "200"}) << QVector<int>{2, 3};
    QTest::newRow("one sub") << list({"--type", "200:2"}) << QVector<int>{3};
    QTest::newRow("no such sub") << list({"--type", "200:0"}) << QVector<int>{};
    QTest::newRow("two options") << list({"--type", "16", "--type", "200:1"}) << QVector<int>{1, 2};
    QTest::newRow("commas") << list({"--type", "16,200:1,65535"}) << QVector<int>{1, 2, 5};
    QTest::newRow("source") << list({"--source", "3"}) << QVector<int>{2};
    QTest::newRow("source 0 is source 0") << list({"--source", "0"}) << QVector<int>{0, 5};
    QTest::newRow("type and source") << list({"--type", "2", "--source", "7"}) << QVector<int>{4};
    QTest::newRow("limit") << list({"--limit", "2"}) << QVector<int>{0, 1};
    QTest::newRow("limit 0") << list({"--limit", "0"}) << QVector<int>{};
    QTest::newRow("limit counts what is listed")
        << list({"--type", "2", "--limit", "2"}) << QVector<int>{0, 4};
    QTest::newRow("from") << list({"--from", "FROM3"}) << QVector<int>{3, 4, 5};
    QTest::newRow("from hex") << list({"--from", "0x30", "--limit", "1"}) << QVector<int>{0};
    QTest::newRow("from end") << list({"--from", "END"}) << QVector<int>{};
    QTest::newRow("from 0 %") << list({"--from", "0%", "--limit", "1"}) << QVector<int>{0};
    QTest::newRow("from 100 %") << list({"--from", "100%"}) << QVector<int>{};
    QTest::newRow("from 99.5 %") << list({"--from", "99.5%"}) << QVector<int>{};
    // The fifth item starts at 76 %, the sixth at 90 % of the log.
    QTest::newRow("from share between") << list({"--from", "80%"}) << QVector<int>{5};
}

void tst_zr_log_items::itemsSelected()
{
    QFETCH(QStringList, arguments);
    QFETCH(QVector<int>, expected);
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    QVERIFY(sample.starts[4] * 100 < sample.size * 80 && sample.starts[5] * 100 > sample.size * 80);
    arguments.replaceInStrings(S("FROM3"), QString::number(sample.starts[3]));
    arguments.replaceInStrings(S("END"), QString::number(sample.size));
    const ToolResult result = RunLog(QStringList{S("items"), path, S("--json")} + arguments);
    QVERIFY2(result.code == 0, result.Text());
    QVector<int> found;
    for (const QString& line : result.Lines()) {
        const double pos = QJsonDocument::fromJson(line.toUtf8()).object().value(S("pos")).toDouble();
        found << sample.starts.indexOf(static_cast<u64>(pos));
    }
    if (result.out.isEmpty())
        found.clear();
    QCOMPARE(found, expected);
}

void tst_zr_log_items::itemsFromAWrongPlace_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("message");
    QTest::newRow("0") << S("0") << S("Not a valid item header:11223344 (at position 0)");
    QTest::newRow("49") << S("49") << S("Not a valid item header:28aabbcc (at position 49)");
    QTest::newRow("beyond") << S("1000000")
                            << S("Incomplete item header found. FS:SIZE BR:1000000 (at position 1000000)");
    QTest::newRow("2^63") << S("9223372036854775808")
                          << S("Incomplete item header found. FS:SIZE BR:9223372036854775808 (at position "
                               "9223372036854775808)");
}

void tst_zr_log_items::itemsFromAWrongPlace()
{
    QFETCH(QString, from);
    QFETCH(QString, message);
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    message.replace(S("SIZE"), QString::number(sample.size));
    const ToolResult result = RunLog({S("items"), path, S("--from"), from, S("--json")});
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(path, message));
}

void tst_zr_log_items::itemsOfADamagedLog()
{
    const Sample sample(Path("dive äß 1.log"));
    const QByteArray whole = ReadWhole(sample.path);
    const QString path = Path("a.log");
    QVERIFY(WriteWhole(path, whole.left(static_cast<int>(sample.starts[3]) + 44)));
    const ToolResult result = RunLog({S("items"), path, S("--json")});
    QCOMPARE(result.code, 2);
    QCOMPARE(result.Lines().size(), 3);
    QCOMPARE(QString::fromUtf8(result.err),
        S("zr: %1: Unable to read item payload (at position %2)\n").arg(path).arg(sample.starts[3]));
    // What lies before the damage can be listed without meeting it.
    QCOMPARE(RunLog({S("items"), path, S("--limit"), S("3")}).code, 0);
    // A share beyond the damage cannot be found.
    QCOMPARE(RunLog({S("items"), path, S("--from"), S("99%")}).code, 2);
}

QTEST_GUILESS_MAIN(tst_zr_log_items)
#include "tst_zr_log_items.moc"
