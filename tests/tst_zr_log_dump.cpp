// `zr log dump` as a person and a program run it.

#include "ZrToolRun.h"

class tst_zr_log_dump : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_folder.Renew(); }

    void dumpPlainAndCompressed();
    void dumpHex();
    void dumpDecoded();
    void dumpOfWhatCannotBeDecoded();
    void dumpRefusesDamagedCompression();
    void dumpOfMoreThanTheMemoryHolds();
    void dumpAtAWrongPlace_data();
    void dumpAtAWrongPlace();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    ToolFolder m_folder;
};

void tst_zr_log_dump::dumpPlainAndCompressed()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    const auto dump = [&](int item, const QStringList& options = QStringList()) {
        return RunLog(
            QStringList{S("dump"), path, S("--at"), QString::number(sample.starts[item])} + options);
    };
    QCOMPARE(dump(0).out, QByteArray("$GPGLL", 7));
    QCOMPARE(dump(3).out, QByteArray("\x01\x7F~ \0end", 8));
    QCOMPARE(dump(2).out, QByteArray(1000, 'c'));
    QCOMPARE(dump(2, {S("--raw")}).out, qCompress(QByteArray(1000, 'c'), 1));
    QCOMPARE(dump(0, {S("--raw")}).out, QByteArray("$GPGLL", 7));
    QCOMPARE(dump(5).out, QByteArray());
    QCOMPARE(dump(5).code, 0);
    QCOMPARE(dump(5).err, QByteArray());
    // 0 % is the first item.
    QCOMPARE(RunLog({S("dump"), path, S("--at"), S("0%")}).out, QByteArray("$GPGLL", 7));
}

void tst_zr_log_dump::dumpHex()
{
    LogBytes log;
    QByteArray bytes;
    for (int i = 0; i < 37; ++i)
        bytes += static_cast<char>(i * 7);
    log.Add(MakeItem(9, bytes)).Add(MakeItem(9, QByteArray()));
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    const ToolResult result = RunLog({S("dump"), Path("a.log"), S("--at"), S("48"), S("--hex")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.out,
        QByteArray("00000000  00 07 0e 15 1c 23 2a 31  38 3f 46 4d 54 5b 62 69  |.....#*18?FMT[bi|\n"
                   "00000010  70 77 7e 85 8c 93 9a a1  a8 af b6 bd c4 cb d2 d9  |pw~.............|\n"
                   "00000020  e0 e7 ee f5 fc                                    |.....|\n"
                   "00000025\n"));
    const ToolResult empty
        = RunLog({S("dump"), Path("a.log"), S("--at"), QString::number(log.Start(1)), S("--hex")});
    QCOMPARE(empty.out, QByteArray("00000000\n"));
}

void tst_zr_log_dump::dumpDecoded()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    const QString at = QString::number(sample.starts[1]);
    const ToolResult text = RunLog({S("dump"), path, S("--at"), at, S("--decoded")});
    QVERIFY2(text.code == 0, text.Text());
    const QStringList lines = text.Lines();
    QVERIFY2(lines.contains(S("latitude: 44.5000000 °")), text.Text());
    QVERIFY2(lines.contains(S("longitude: -63.2500000 °")), text.Text());
    QVERIFY2(lines.contains(S("depth: 12.50 m")), text.Text());
    QVERIFY2(lines.contains(S("heading: - °")) || lines.contains(S("heading: -")), text.Text());

    const ToolResult json = RunLog({S("dump"), path, S("--at"), at, S("--decoded"), S("--json")});
    QCOMPARE(json.code, 0);
    QCOMPARE(json.out.count('\n'), 1);
    const QJsonObject object = json.Json();
    QCOMPARE(object.value(S("pos")).toDouble(), double(sample.starts[1]));
    QCOMPARE(object.value(S("type")).toInt(), 16);
    QCOMPARE(object.value(S("sub")).toInt(-1), 0);
    QCOMPARE(object.value(S("source")).toInt(), 1);
    QCOMPARE(object.value(S("format")).toInt(), 1);
    QCOMPARE(object.value(S("time")).toDouble(), 1614780309.5);
    QCOMPARE(object.value(S("name")).toString(), S("navigation"));
    const QJsonObject fields = object.value(S("fields")).toObject();
    QCOMPARE(fields.value(S("latitude")).toDouble(), 44.5);
    QCOMPARE(fields.value(S("depth")).toDouble(), 12.5);
    QVERIFY(fields.contains(S("heading")) && fields.value(S("heading")).isNull());
    QCOMPARE(object.value(S("units")).toObject().value(S("latitude")).toString(), S("°"));
    // No field hides another one in the object.
    QCOMPARE(fields.size(), lines.size());

    QCOMPARE(RunLog({S("dump"), path, S("--at"), S("48"), S("--decoded")}).out, QByteArray("text: $GPGLL\n"));
}

void tst_zr_log_dump::dumpOfWhatCannotBeDecoded()
{
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    const ToolResult unknown
        = RunLog({S("dump"), path, S("--at"), QString::number(sample.starts[3]), S("--decoded")});
    QCOMPARE(unknown.code, 2);
    QCOMPARE(unknown.out, QByteArray());
    QVERIFY2(
        QString::fromUtf8(unknown.err)
            .startsWith(
                S("zr: The item of type 200:2 at position %1 cannot be decoded: ").arg(sample.starts[3])),
        unknown.Text());

    LogBytes log;
    Item item = MakeItem(16, Sample::Navigation().left(20));
    item.format = 1;
    log.Add(item);
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    const ToolResult cut
        = RunLog({S("dump"), Path("a.log"), S("--at"), S("48"), S("--decoded"), S("--json")});
    QCOMPARE(cut.code, 2);
    QCOMPARE(cut.out, QByteArray());
    QVERIFY(!cut.err.isEmpty());
}

void tst_zr_log_dump::dumpRefusesDamagedCompression()
{
    const QByteArray packed = qCompress(QByteArray(1000, 'c'), 1);
    const auto item = [](const QByteArray& stored, quint32 dataSize) {
        Item made = MakeItem(9, stored);
        made.compressed = true;
        made.dataSize = dataSize;
        return made;
    };
    QByteArray absurd = packed;
    absurd.replace(0, 4, QByteArray("\x7F\xFF\xFF\xFF", 4));
    LogBytes log;
    log.Add(item(Flipped(packed, packed.size() / 2, 0xFF), 1000));
    log.Add(item(absurd, 0x7FFFFFFF));
    log.Add(item(packed, 999));
    log.Add(item("ab", 2));
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    const char* const reasons[] = {"The compressed payload is damaged",
        "The compressed payload announces 2147483647 bytes, more than its",
        "The compressed payload announces 1000 bytes, the item header 999",
        "The compressed payload is shorter than its length field"};
    for (int i = 0; i < 4; ++i) {
        const QString at = QString::number(log.Start(i));
        // A size that was believed would need 2 GiB.
        for (const QString& option : {S("--hex"), S("--decoded")}) {
            const ToolResult result = RunLog({S("dump"), Path("a.log"), S("--at"), at, option});
            QCOMPARE(result.code, 2);
            QCOMPARE(result.out, QByteArray());
            QVERIFY2(result.err.contains(reasons[i]), result.Text());
        }
        // As stored it can be had all the same.
        QCOMPARE(RunLog({S("dump"), Path("a.log"), S("--at"), at, S("--raw")}).code, 0);
    }
}

void tst_zr_log_dump::dumpOfMoreThanTheMemoryHolds()
{
    if (underSanitizer)
        QSKIP("a sanitizer needs more address space than the test allows");
    QVERIFY(WriteSparseLog(Path("a.log"), 1, 0xC0000000u));
    QProcess process;
    process.start(S("/bin/sh"),
        {S("-c"), S("ulimit -v 1500000; exec \"$@\""), S("sh"), ToolPath(), S("log"), S("dump"),
            Path("a.log"), S("--at"), S("48"), S("--raw")});
    const ToolResult result = Finish(process);
    QVERIFY2(result.code == 2, result.Text());
    QCOMPARE(result.err, QByteArray("zr: There is not enough memory for this\n"));
    QCOMPARE(result.out, QByteArray());
}

void tst_zr_log_dump::dumpAtAWrongPlace_data()
{
    QTest::addColumn<QString>("at");
    QTest::addColumn<QString>("message");
    QTest::newRow("inside") << S("50") << S("Not a valid item header:28aabb (at position 50)");
    QTest::newRow("end") << S("SIZE") << S("Position SIZE is the end of the log");
    QTest::newRow("100 %") << S("100%") << S("Position SIZE is the end of the log");
    QTest::newRow("beyond") << S("99999")
                            << S("Incomplete item header found. FS:SIZE BR:99999 (at position 99999)");
}

void tst_zr_log_dump::dumpAtAWrongPlace()
{
    QFETCH(QString, at);
    QFETCH(QString, message);
    const Sample sample(Path("dive äß 1.log"));
    const QString path = sample.path;
    at.replace(S("SIZE"), QString::number(sample.size));
    message.replace(S("SIZE"), QString::number(sample.size));
    const ToolResult result = RunLog({S("dump"), path, S("--at"), at});
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(path, message));
}

QTEST_GUILESS_MAIN(tst_zr_log_dump)
#include "tst_zr_log_dump.moc"
