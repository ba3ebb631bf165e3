// `zr log census`, `cut` and `filter`: byte for byte what the player exports, and what is said about it.

#include "ZrToolRun.h"

namespace {

/// A log without its header, whose creation time is that of the export.
QByteArray Body(const QString& path)
{
    const QByteArray bytes = ReadWhole(path);
    return bytes.left(40) == FileHeader().left(40) ? bytes.mid(48) : QByteArray("not a log");
}

/// Thirty items of types 2, 16 and 17 in turn, of different sizes.
LogBytes ThirtyItems()
{
    LogBytes log;
    for (int i = 0; i < 30; ++i) {
        Item item = MakeItem(i % 3 == 0 ? 2 : 15 + i % 3, QByteArray(10 + i * 7, static_cast<char>('a' + i)));
        item.time = 1000.0 + i;
        item.sub = static_cast<quint16>(i % 2);
        log.Add(item);
    }
    return log;
}

} // namespace

class tst_zr_log_exports : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init();

    void censusCountsTypes();
    void censusIsThePlayers();
    void censusOfADamagedLog();
    void censusOfADamagedFileHeader();

    void cutIsThePlayers_data();
    void cutIsThePlayers();
    void cutSaysWhatItWrote();
    void thirdsFitTogether();
    void cutOfNothingIsAnEmptyLog_data();
    void cutOfNothingIsAnEmptyLog();
    void cutNeedsTheStartOfAnItem_data();
    void cutNeedsTheStartOfAnItem();
    void cutStopsAtDamage();
    void cutBeforeDamageWorks();

    void filterIsThePlayers_data();
    void filterIsThePlayers();
    void filterSaysWhatItWrote();
    void filterOfNothing();
    void filterStopsAtDamage();
    void lastItemWithoutPayloadIsNotExported();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    QString At(int item) const { return QString::number(m_log.Start(item)); }

    ToolFolder m_folder;
    LogBytes m_log;
    QString m_in;
    QString m_out;
    QString m_expected; ///< what the player itself writes
};

void tst_zr_log_exports::init()
{
    m_folder.Renew();
    m_log = ThirtyItems();
    m_in = Path("in ö.log");
    m_out = Path("out ö.log");
    m_expected = Path("expected.log");
    QVERIFY(WriteWhole(m_in, m_log.Bytes()));
}

// ---- census

void tst_zr_log_exports::censusCountsTypes()
{
    LogBytes log;
    for (const quint16 type : {4, 4, 65535, 4, 0, 65534})
        log.Add(MakeItem(type, "x"));
    QVERIFY(WriteWhole(m_in, log.Bytes()));
    const ToolResult result = RunLog({S("census"), m_in, m_out});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(QString::fromUtf8(result.out), S("%1: 6 items of 4 types, 46 bytes\n").arg(m_out));
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(ReadWhole(m_out), QByteArray("Index, Count\r\nTotal, 6\r\n0, 1\r\n4, 3\r\n65534, 1\r\n"));
}

void tst_zr_log_exports::censusIsThePlayers()
{
    const ToolResult result = RunLog({S("census"), m_in, m_out, S("--json")});
    QCOMPARE(result.code, 0);
    const MessageCatcher quiet;
    ZrPlayer::ExportIndexInf(m_in, m_expected);
    QCOMPARE(ReadWhole(m_out), ReadWhole(m_expected));
    const QJsonObject json = result.Json();
    QCOMPARE(json.keys().join(QLatin1Char(' ')), S("bytes complete error error_pos in items out types"));
    QCOMPARE(json.value(S("in")).toString(), m_in);
    QCOMPARE(json.value(S("out")).toString(), m_out);
    QCOMPARE(json.value(S("items")).toInt(), 30);
    QCOMPARE(json.value(S("types")).toInt(), 3);
    QCOMPARE(json.value(S("bytes")).toInt(), ReadWhole(m_out).size());
    QCOMPARE(json.value(S("complete")), QJsonValue(true));
    QVERIFY(json.value(S("error")).isNull());
    QVERIFY(json.value(S("error_pos")).isNull());
}

void tst_zr_log_exports::censusOfADamagedLog()
{
    QVERIFY(WriteWhole(m_in, Flipped(m_log.Bytes(), static_cast<int>(m_log.Start(7)) + 4, 1)));
    const ToolResult result = RunLog({S("census"), m_in, m_out});
    QCOMPARE(result.code, 2);
    QCOMPARE(ReadWhole(m_out), QByteArray("Index, Count\r\nTotal, 7\r\n2, 3\r\n16, 2\r\n17, 2\r\n"));
    QCOMPARE(QString::fromUtf8(result.err),
        S("zr: %1: Item header version mismatch (at position %2)\n").arg(m_in, At(7)));
    const ToolResult json = RunLog({S("census"), m_in, m_out, S("--json"), S("--force")});
    QCOMPARE(json.code, 2);
    QCOMPARE(json.Json().value(S("items")).toInt(), 7);
    QCOMPARE(json.Json().value(S("complete")), QJsonValue(false));
    QCOMPARE(json.Json().value(S("error")).toString(), S("Item header version mismatch"));
    QCOMPARE(json.Json().value(S("error_pos")).toDouble(), double(m_log.Start(7)));
}

void tst_zr_log_exports::censusOfADamagedFileHeader()
{
    QVERIFY(WriteWhole(m_in, QByteArray(100, 'x')));
    const ToolResult result = RunLog({S("census"), m_in, m_out});
    QCOMPARE(result.code, 2);
    QCOMPARE(ReadWhole(m_out), QByteArray("Index, Count\r\nTotal, 0\r\n"));
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: Not a valid header (at position 0)\n").arg(m_in));
}

// ---- cut

void tst_zr_log_exports::cutIsThePlayers_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<int>("lead");
    QTest::addColumn<QVector<int>>("types");
    const QVector<int> all;
    QTest::newRow("everything") << 0 << S("AT30") << -1 << all;
    QTest::newRow("middle") << 10 << S("AT20") << -1 << all;
    QTest::newRow("one item") << 10 << S("AT11") << -1 << all;
    QTest::newRow("ends inside an item") << 10 << S("AT20+1") << -1 << all;
    QTest::newRow("beyond the end") << 25 << S("1000000000000") << -1 << all;
    QTest::newRow("types") << 3 << S("AT29") << -1 << QVector<int>{2, 17};
    QTest::newRow("types not there") << 3 << S("AT29") << -1 << QVector<int>{1000};
    QTest::newRow("lead before") << 10 << S("AT20") << 2 << all;
    QTest::newRow("lead inside") << 10 << S("AT20") << 12 << all;
    QTest::newRow("lead longer than the rest") << 10 << S("AT11") << 29 << all;
}

void tst_zr_log_exports::cutIsThePlayers()
{
    QFETCH(int, from);
    QFETCH(QString, to);
    QFETCH(int, lead);
    QFETCH(QVector<int>, types);
    const bool inside = to.endsWith(S("+1"));
    u64 end = to.toULongLong();
    if (to.startsWith(S("AT"))) {
        const int item = to.mid(2, 2).toInt();
        end = (item == 30 ? m_log.Size() : m_log.Start(item)) + (inside ? 1 : 0);
    }
    QStringList arguments{S("cut"), m_in, m_out, S("--from"), At(from), S("--to"), QString::number(end)};
    QByteArray filter(2000, '\0');
    QStringList numbers;
    for (const int type : types) {
        filter[type] = 1;
        numbers << QString::number(type);
    }
    bool ok = false;
    {
        const MessageCatcher quiet;
        const u64 start = m_log.Start(from);
        u8* table = reinterpret_cast<u8*>(filter.data());
        if (lead >= 0) {
            arguments << S("--lead") << At(lead);
            ok = ZrPlayer::ExportFileSegmentWithVideo(
                m_in, m_expected, start, end, m_log.Start(lead), nullptr);
        } else if (!types.isEmpty()) {
            arguments << S("--types") << numbers.join(QLatin1Char(','));
            ok = ZrPlayer::ExportFileSegment(m_in, m_expected, table, 2000, start, end, nullptr);
        } else {
            ok = ZrPlayer::ExportFileSegment(m_in, m_expected, start, end, nullptr);
        }
    }
    QVERIFY(ok);
    const ToolResult result = RunLog(arguments);
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(Body(m_out), Body(m_expected));
    QCOMPARE(Names(m_folder.Path()).size(), 3);
}

void tst_zr_log_exports::cutSaysWhatItWrote()
{
    const u64 bytes = 48 + m_log.Start(20) - m_log.Start(10);
    const QStringList arguments{S("cut"), m_in, m_out, S("--from"), At(10), S("--to"), At(20)};
    const ToolResult text = RunLog(arguments);
    QCOMPARE(QString::fromUtf8(text.out), S("%1: 10 items, 1.5 KiB (%2 bytes)\n").arg(m_out).arg(bytes));
    QCOMPARE(static_cast<u64>(ReadWhole(m_out).size()), bytes);
    const QJsonObject json
        = RunLog(arguments + QStringList{S("--force"), S("--json"), S("--lead"), At(1)}).Json();
    QCOMPARE(json.keys().join(QLatin1Char(' ')), S("bytes from in items lead out to"));
    QCOMPARE(json.value(S("from")).toDouble(), double(m_log.Start(10)));
    QCOMPARE(json.value(S("to")).toDouble(), double(m_log.Start(20)));
    QCOMPARE(json.value(S("lead")).toDouble(), double(m_log.Start(1)));
    QCOMPARE(json.value(S("items")).toInt(), 11);
    QCOMPARE(json.value(S("bytes")).toInt(), ReadWhole(m_out).size());
}

void tst_zr_log_exports::thirdsFitTogether()
{
    QByteArray together;
    int items = 0;
    const QStringList shares{S("0%"), S("33.3%"), S("66.7%"), S("100%")};
    for (int i = 0; i < 3; ++i) {
        const ToolResult result = RunLog({S("cut"), m_in, m_out, S("--from"), shares[i], S("--to"),
            shares[i + 1], S("--force"), S("--json")});
        QVERIFY2(result.code == 0, result.Text());
        const QJsonObject json = result.Json();
        items += json.value(S("items")).toInt();
        together += Body(m_out);
        if (i == 1) {
            // The first item that starts at or after a third of the file.
            u64 third = 48;
            for (int k = 29; k >= 0; --k) {
                if (double(m_log.Start(k)) >= 0.333 * double(m_log.Size()))
                    third = m_log.Start(k);
            }
            QCOMPARE(json.value(S("from")).toDouble(), double(third));
        }
    }
    QCOMPARE(items, 30);
    QCOMPARE(together, m_log.Bytes().mid(48));
}

void tst_zr_log_exports::cutOfNothingIsAnEmptyLog_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::newRow("same position") << S("AT5") << S("AT5");
    QTest::newRow("same share") << S("50%") << S("50%");
    QTest::newRow("at the end") << S("100%") << S("100%");
    QTest::newRow("behind the end") << S("END") << S("99999999");
}

void tst_zr_log_exports::cutOfNothingIsAnEmptyLog()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    for (QString* position : {&from, &to}) {
        position->replace(S("AT5"), At(5));
        position->replace(S("END"), QString::number(m_log.Size()));
    }
    const ToolResult result = RunLog({S("cut"), m_in, m_out, S("--from"), from, S("--to"), to});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(QString::fromUtf8(result.out), S("%1: 0 items, 48 bytes\n").arg(m_out));
    QCOMPARE(ReadWhole(m_out).size(), 48);
}

void tst_zr_log_exports::cutNeedsTheStartOfAnItem_data()
{
    QTest::addColumn<QStringList>("positions");
    QTest::addColumn<QString>("message");
    QTest::newRow("from 0") << QStringList{S("--from"), S("0"), S("--to"), S("100%")}
                            << S("Not a valid item header:11223344 (at position 0)");
    QTest::newRow("from inside") << QStringList{S("--from"), S("49"), S("--to"), S("100%")}
                                 << S("Not a valid item header:28aabbcc (at position 49)");
    QTest::newRow("from beyond") << QStringList{S("--from"), S("90000"), S("--to"), S("90001")}
                                 << S("Incomplete item header found. FS:SIZE BR:90000 (at position 90000)");
    QTest::newRow("lead inside") << QStringList{S("--from"), S("48"), S("--to"), S("100%"), S("--lead"),
        S("49")} << S("Not a valid item header:28aabbcc (at position 49)");
    QTest::newRow("lead at the end") << QStringList{S("--from"), S("48"), S("--to"), S("100%"), S("--lead"),
        S("100%")} << S("Position SIZE is the end of the log");
}

void tst_zr_log_exports::cutNeedsTheStartOfAnItem()
{
    QFETCH(QStringList, positions);
    QFETCH(QString, message);
    message.replace(S("SIZE"), QString::number(m_log.Size()));
    const ToolResult result = RunLog(QStringList{S("cut"), m_in, m_out} + positions);
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(m_in, message));
    QCOMPARE(Names(m_folder.Path()).size(), 1);
}

void tst_zr_log_exports::cutStopsAtDamage()
{
    QVERIFY(WriteWhole(m_in, Flipped(m_log.Bytes(), static_cast<int>(m_log.Start(7)), 1)));
    QVERIFY(WriteWhole(m_out, "before"));
    const ToolResult result
        = RunLog({S("cut"), m_in, m_out, S("--from"), At(3), S("--to"), At(20), S("--force")});
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(QString::fromUtf8(result.err),
        S("zr: %1: Not a valid item header:aabbccdc (at position %2)\n"
          "zr: Up to there the log is sound: zr log cut … --to %2 saves that part\n")
            .arg(m_in, At(7)));
    QCOMPARE(ReadWhole(m_out), QByteArray("before"));
    QCOMPARE(Names(m_folder.Path()).size(), 2);
    // The advice holds.
    const ToolResult saved
        = RunLog({S("cut"), m_in, m_out, S("--from"), At(3), S("--to"), At(7), S("--force"), S("--json")});
    QCOMPARE(saved.code, 0);
    QCOMPARE(saved.Json().value(S("items")).toInt(), 4);
    // From the damage on nothing is sound, and nothing is advised.
    const ToolResult after
        = RunLog({S("cut"), m_in, m_out, S("--from"), At(7), S("--to"), At(20), S("--force")});
    QCOMPARE(after.code, 2);
    QCOMPARE(after.err.count('\n'), 1);
}

void tst_zr_log_exports::cutBeforeDamageWorks()
{
    QVERIFY(WriteWhole(m_in, Flipped(m_log.Bytes(), static_cast<int>(m_log.Start(25)), 1)));
    const ToolResult first = RunLog({S("cut"), m_in, m_out, S("--from"), S("0%"), S("--to"), S("30%")});
    QVERIFY2(first.code == 0, first.Text());
    QVERIFY(m_log.Bytes().mid(48).startsWith(Body(m_out)));
    // Positions behind the damage are found by number, not by share.
    const QByteArray before = ReadWhole(m_out);
    const ToolResult share
        = RunLog({S("cut"), m_in, m_out, S("--from"), At(26), S("--to"), S("99%"), S("--force")});
    QCOMPARE(share.code, 2);
    QCOMPARE(ReadWhole(m_out), before);
    const ToolResult number = RunLog(
        {S("cut"), m_in, m_out, S("--from"), At(26), S("--to"), QString::number(m_log.Size()), S("--force")});
    QCOMPARE(number.code, 0);
    QCOMPARE(Body(m_out), m_log.Bytes().mid(static_cast<int>(m_log.Start(26))));
}

// ---- filter

void tst_zr_log_exports::filterIsThePlayers_data()
{
    QTest::addColumn<QVector<int>>("types");
    QTest::addColumn<bool>("payloadOnly");
    QTest::newRow("one type") << QVector<int>{16} << false;
    QTest::newRow("two types") << QVector<int>{2, 17} << false;
    QTest::newRow("types that are not there too") << QVector<int>{0, 17, 65534} << false;
    QTest::newRow("payloads") << QVector<int>{2} << true;
    QTest::newRow("payloads of two types") << QVector<int>{2, 16} << true;
}

void tst_zr_log_exports::filterIsThePlayers()
{
    QFETCH(QVector<int>, types);
    QFETCH(bool, payloadOnly);
    QByteArray filter(65535, '\0');
    QStringList numbers;
    for (const int type : types) {
        filter[type] = 1;
        numbers << QString::number(type);
    }
    {
        const MessageCatcher quiet;
        QVERIFY(ZrPlayer::ExportFilteredFile(
            m_in, m_expected, reinterpret_cast<u8*>(filter.data()), 65535, !payloadOnly, nullptr));
    }
    QStringList arguments{S("filter"), m_in, m_out, S("--types"), numbers.join(QLatin1Char(','))};
    if (payloadOnly)
        arguments << S("--payload-only");
    const ToolResult result = RunLog(arguments);
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    if (payloadOnly)
        QCOMPARE(ReadWhole(m_out), ReadWhole(m_expected));
    else
        QCOMPARE(Body(m_out), Body(m_expected));
}

void tst_zr_log_exports::filterSaysWhatItWrote()
{
    const ToolResult text = RunLog({S("filter"), m_in, m_out, S("--types"), S("16")});
    QCOMPARE(QString::fromUtf8(text.out),
        S("%1: 10 items, 1.5 KiB (%2 bytes)\n").arg(m_out).arg(ReadWhole(m_out).size()));
    const QJsonObject json = RunLog({S("filter"), m_in, m_out, S("--types"), S("2"), S("--types"), S("16"),
                                        S("--payload-only"), S("--json"), S("--force")})
                                 .Json();
    QCOMPARE(json.keys().join(QLatin1Char(' ')), S("bytes in items out payload_only"));
    QCOMPARE(json.value(S("items")).toInt(), 20);
    QCOMPARE(json.value(S("payload_only")), QJsonValue(true));
    QCOMPARE(json.value(S("bytes")).toInt(), ReadWhole(m_out).size());
}

void tst_zr_log_exports::filterOfNothing()
{
    const ToolResult log = RunLog({S("filter"), m_in, m_out, S("--types"), S("3")});
    QCOMPARE(log.code, 0);
    QCOMPARE(QString::fromUtf8(log.out), S("%1: 0 items, 48 bytes\n").arg(m_out));
    const ToolResult plain
        = RunLog({S("filter"), m_in, m_out, S("--types"), S("3"), S("--payload-only"), S("--force")});
    QCOMPARE(plain.code, 0);
    QCOMPARE(QString::fromUtf8(plain.out), S("%1: 0 items, 0 bytes\n").arg(m_out));
    QCOMPARE(ReadWhole(m_out), QByteArray(""));
    QVERIFY(QFileInfo::exists(m_out));
}

void tst_zr_log_exports::filterStopsAtDamage()
{
    QVERIFY(WriteWhole(m_in, m_log.Bytes().left(static_cast<int>(m_log.Start(20)) + 50)));
    for (const bool payloadOnly : {false, true}) {
        QStringList arguments{S("filter"), m_in, m_out, S("--types"), S("2")};
        if (payloadOnly)
            arguments << S("--payload-only");
        const ToolResult result = RunLog(arguments);
        QCOMPARE(result.code, 2);
        QVERIFY2(
            QString::fromUtf8(result.err)
                .startsWith(S("zr: %1: Unable to read item payload (at position %2)\n").arg(m_in, At(20))),
            result.Text());
        QCOMPARE(Names(m_folder.Path()).size(), 1);
    }
    QVERIFY(WriteWhole(m_in, Flipped(m_log.Bytes(), 0, 1)));
    const ToolResult header = RunLog({S("filter"), m_in, m_out, S("--types"), S("2")});
    QCOMPARE(header.code, 2);
    QCOMPARE(QString::fromUtf8(header.err), S("zr: %1: Not a valid header (at position 0)\n").arg(m_in));
}

void tst_zr_log_exports::lastItemWithoutPayloadIsNotExported()
{
    // The exports end when 40 bytes or fewer remain; the count says what was written.
    LogBytes log;
    log.Add(MakeItem(2, "abc")).Add(MakeItem(2, QByteArray()));
    QVERIFY(WriteWhole(m_in, log.Bytes()));
    const ToolResult result
        = RunLog({S("cut"), m_in, m_out, S("--from"), S("0%"), S("--to"), S("100%"), S("--json")});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.Json().value(S("items")).toInt(), 1);
    QCOMPARE(ReadWhole(m_out).size(), 48 + 43);
}

QTEST_GUILESS_MAIN(tst_zr_log_exports)
#include "tst_zr_log_exports.moc"
