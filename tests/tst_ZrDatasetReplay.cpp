// ZrDataset: replaying coordinate items through a player, from the start of a log and before a record.

#include "ZrDatasetFixture.h"

namespace {

constexpr CRecType navType(0, 16);
constexpr CRecType crdA(0, 40);
constexpr CRecType crdB(7, 41);

constexpr CrdTypes crdTypes{crdA, CRecType(), crdB};

Item SubItem(quint16 sub, quint16 type, double time, const QByteArray& payload = QByteArray())
{
    Item item = TimedItem(type, time, payload);
    item.sub = sub;
    return item;
}

} // namespace

class tst_ZrDatasetReplay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void prerollReplaysTheFirstOfEachType();
    void prerollWithoutRecordsDoesNothing();
    void seekReplaysTheLatestOfEachType();
    void replayReopensAClosedPlayer();
    void replayOfAMissingLogIsQuiet();
    void replaySurvivesReceiversThatReload();
    void replayTakesAnyPosition_data();
    void replayTakesAnyPosition();

private:
    QString Path(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    /// Writes the log and reads it into \p dataset.
    void ReadLog(ZrDataset& dataset, const LogBytes& log)
    {
        QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
        dataset.ReadFile(Path("a.log"));
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrDatasetReplay::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
}

void tst_ZrDatasetReplay::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrDatasetReplay::prerollReplaysTheFirstOfEachType()
{
    const QVector<Item> items{TimedItem(16, 0.0), TimedItem(40, 1.0, "first a"), TimedItem(16, 2.0),
        SubItem(7, 41, 3.0, "first b"), TimedItem(40, 4.0, "second a"), TimedItem(16, 5.0)};
    LogBytes log;
    for (const Item& item : items)
        log.Add(item);
    NavDataset dataset(navType, {crdB, CRecType(0, 99), crdA, CRecType()});
    ReadLog(dataset, log);
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    SignalLog signalLog(player);
    dataset.Preroll(player);
    // In the order of the slots.
    QCOMPARE(signalLog.Take(),
        DeliveryLines(items[3], log.Start(3), true) + DeliveryLines(items[1], log.Start(1), true));
    // A slot that the last record does not know is passed over, whatever stands before.
    CrdPositions none{};
    std::memcpy(reinterpret_cast<char*>(&dataset.recs.back()) + 92, &none, sizeof none);
    dataset.Preroll(player);
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrDatasetReplay::prerollWithoutRecordsDoesNothing()
{
    QVERIFY(WriteWhole(Path("a.log"), LogBytes().Add(TimedItem(40, 1.0)).Bytes()));
    ZrDataset dataset(navType, crdTypes);
    ZrPlayer player;
    SignalLog signalLog(player);
    dataset.Preroll(player);
    QVERIFY(player.OpenFile(Path("a.log")));
    dataset.Preroll(player);
    QCOMPARE(signalLog.Take(), QStringList());
    QCOMPARE(player.pos, u64(48));
}

void tst_ZrDatasetReplay::seekReplaysTheLatestOfEachType()
{
    const QVector<Item> items{TimedItem(40, 1.0, "a1"), TimedItem(16, 2.0), SubItem(7, 41, 3.0, "b1"),
        TimedItem(40, 4.0, "a2"), TimedItem(16, 5.0, "nav"), TimedItem(40, 6.0, "a3")};
    LogBytes log;
    for (const Item& item : items)
        log.Add(item);
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    SignalLog signalLog(player);
    dataset.SeekTo(player, dataset.recs.at(1));
    QCOMPARE(signalLog.Take(),
        DeliveryLines(items[3], log.Start(3), true) + DeliveryLines(items[2], log.Start(2), true));
    // Playing goes on from the record itself.
    QVERIFY(player.SeekTo(dataset.recs[1].pos));
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(items[4], log.Start(4), false));
    dataset.SeekTo(player, dataset.recs.at(0));
    QCOMPARE(signalLog.Take(), DeliveryLines(items[0], log.Start(0), true));
    dataset.SeekTo(player, ZrLogRec());
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrDatasetReplay::replayReopensAClosedPlayer()
{
    LogBytes log;
    log.Add(TimedItem(40, 1.0, "a")).Add(SubItem(7, 41, 2.0, "b")).Add(TimedItem(16, 3.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    SignalLog signalLog(player);
    const QStringList expected = DeliveryLines(TimedItem(40, 1.0, "a"), log.Start(0), true)
        + DeliveryLines(SubItem(7, 41, 2.0, "b"), log.Start(1), true);
    player.CloseFile();
    dataset.SeekTo(player, dataset.recs.at(0));
    QCOMPARE(signalLog.Take(), expected);
    player.CloseFile();
    dataset.Preroll(player);
    QCOMPARE(signalLog.Take(), expected);

    // A damaged item closes the file; the next slot opens it again.
    QVERIFY(WriteWhole(Path("a.log"), Flipped(log.Bytes(), int(log.Start(0)), 0xff)));
    QVERIFY(player.OpenFile(Path("a.log")));
    m_messages->Take();
    dataset.SeekTo(player, dataset.recs.at(0));
    QCOMPARE(signalLog.Take(),
        QStringList(QStringLiteral("EndOfFile, closed"))
            + DeliveryLines(SubItem(7, 41, 2.0, "b"), log.Start(1), true));
    QCOMPARE(m_messages->Take(), QStringList(QStringLiteral("Not a valid item header:aabbcc22")));
}

void tst_ZrDatasetReplay::replayOfAMissingLogIsQuiet()
{
    LogBytes log;
    log.Add(TimedItem(40, 1.0, "a")).Add(TimedItem(16, 3.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    ZrPlayer player; // never opened: it has no file name
    SignalLog signalLog(player);
    m_messages->Take();
    dataset.SeekTo(player, dataset.recs.at(0));
    dataset.Preroll(player);
    QCOMPARE(signalLog.Take(), QStringList());
    QVERIFY(!player.file.isOpen());
    QVERIFY(QFile::remove(Path("a.log")));
    QVERIFY(!player.OpenFile(Path("a.log")));
    dataset.SeekTo(player, dataset.recs.at(0));
    dataset.Preroll(player);
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrDatasetReplay::replaySurvivesReceiversThatReload()
{
    LogBytes log;
    log.Add(TimedItem(40, 1.0, "a")).Add(SubItem(7, 41, 2.0, "b")).Add(TimedItem(16, 3.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    int delivered = 0;
    connect(&player, &ZrPlayer::NewPayload, this, [&] {
        ++delivered;
        dataset.ClearData();
        std::vector<ZrLogRec>().swap(dataset.recs); // frees the table that the position came from
    });
    dataset.SeekTo(player, dataset.recs.at(0));
    QCOMPARE(delivered, 2);
    dataset.ReadFile(Path("a.log"));
    dataset.Preroll(player);
    QCOMPARE(delivered, 4);
}

void tst_ZrDatasetReplay::replayTakesAnyPosition_data()
{
    QTest::addColumn<quint64>("pos");
    QTest::addColumn<QString>("message");
    const QString incomplete = QStringLiteral("Incomplete item header found. FS:%1 BR:");
    QTest::newRow("inside the file header")
        << quint64(1) << QStringLiteral("Not a valid item header:30112233");
    QTest::newRow("far behind the end") << (quint64(1) << 40) << incomplete + QStringLiteral("1099511627776");
    QTest::newRow("2^63") << (quint64(1) << 63) << incomplete + QStringLiteral("9223372036854775808");
    QTest::newRow("2^64 - 1") << ~quint64(0) << incomplete + QStringLiteral("18446744073709551615");
}

void tst_ZrDatasetReplay::replayTakesAnyPosition()
{
    QFETCH(quint64, pos);
    QFETCH(QString, message);
    LogBytes log;
    log.Add(TimedItem(40, 1.0, "a"));
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    NavDataset dataset(navType, crdTypes);
    dataset.recs.push_back(ZrLogRec(ZrLogItemInf(), 48, {pos}));
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    SignalLog signalLog(player);
    const QString text = message.contains(QLatin1String("%1")) ? message.arg(log.Size()) : message;
    dataset.SeekTo(player, dataset.recs.at(0));
    dataset.Preroll(player);
    QCOMPARE(m_messages->Take(), (QStringList{text, text}));
    QCOMPARE(signalLog.Take(),
        (QStringList{QStringLiteral("EndOfFile, closed"), QStringLiteral("EndOfFile, closed")}));
}

QTEST_GUILESS_MAIN(tst_ZrDatasetReplay)
#include "tst_ZrDatasetReplay.moc"
