// Receivers that act on the player from within its signals.

#include "ZrLogFixture.h"

#include <QtTest/QtTest>

namespace {

/// Large enough that a buffer pulled from under a receiver would not go unnoticed.
QByteArray Large(char letter, int size = 50000)
{
    return QByteArray(size, letter);
}

} // namespace

class tst_ZrPlayerReceivers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void readingInsideASignal_data();
    void readingInsideASignal();
    void seekingInsideSeekLogKeepsTheItem();
    void seekingInsideASignalMovesTheNextRead();
    void closingInsideASignal_data();
    void closingInsideASignal();
    void closingEndsPlayUntilType();
    void openingAnotherFileInsideASignal();
    void reopeningInsideEndOfFile();
    void playingOnInsideASignalOfPlayUntilType();
    void severalReceiversSeeTheSameBytes();

private:
    QString Path(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
    QScopedPointer<ZrPlayer> m_player;
    LogBytes m_log;
    QVector<Item> m_items;
};

void tst_ZrPlayerReceivers::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
    m_items = {MakeItem(1, Large('a')), MakeItem(2, Large('b', 90000)), MakeItem(3, Large('c', 10))};
    m_log = LogBytes();
    for (const Item& item : m_items)
        m_log.Add(item);
    QVERIFY(WriteWhole(Path("a.log"), m_log.Bytes()));
    m_player.reset(new ZrPlayer);
    QVERIFY(m_player->OpenFile(Path("a.log")));
}

void tst_ZrPlayerReceivers::cleanup()
{
    m_player.reset();
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrPlayerReceivers::readingInsideASignal_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SeekLog") << 0;
    QTest::newRow("NewPayload") << 1;
    QTest::newRow("NewPayloadPos") << 2;
}

void tst_ZrPlayerReceivers::readingInsideASignal()
{
    QFETCH(int, signal);
    bool done = false;
    const auto readOn = [&] {
        if (!done) {
            done = true;
            QVERIFY(m_player->ReadNextItem(true));
        }
    };
    // Connected before the log of signals, so that the nested item's lines come first.
    if (signal == 0)
        connect(m_player.data(), &ZrPlayer::SeekLog, this, readOn);
    else if (signal == 1)
        connect(m_player.data(), &ZrPlayer::NewPayload, this, readOn);
    else
        connect(m_player.data(), &ZrPlayer::NewPayloadPos, this, readOn);
    SignalLog signalLog(*m_player, m_messages.data());
    QVERIFY(m_player->ReadNextItem(false));

    QStringList expected = DeliveryLines(m_items[0], 48, true);
    const QStringList nested = DeliveryLines(m_items[1], m_log.Start(1), false);
    expected.insert(signal, nested[0]);
    expected.insert(signal + 1, nested[1]);
    QCOMPARE(signalLog.Take(), expected);
    QVERIFY(m_player->ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(m_items[2], m_log.Start(2), false));
}

void tst_ZrPlayerReceivers::seekingInsideSeekLogKeepsTheItem()
{
    connect(m_player.data(), &ZrPlayer::SeekLog, this, [this] { QVERIFY(m_player->SeekTo(m_log.Start(2))); });
    SignalLog signalLog(*m_player, m_messages.data());
    QVERIFY(m_player->ReadNextItem(false));
    QCOMPARE(signalLog.Take(), DeliveryLines(m_items[0], 48, true));
    QVERIFY(m_player->ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(m_items[2], m_log.Start(2), false));
}

void tst_ZrPlayerReceivers::seekingInsideASignalMovesTheNextRead()
{
    int times = 0;
    connect(m_player.data(), &ZrPlayer::NewPayload, this, [&] {
        if (++times == 1)
            QVERIFY(m_player->SeekTo(48));
    });
    SignalLog signalLog(*m_player, m_messages.data());
    QVERIFY(m_player->ReadNextItemOfType(CRecType(0, 1), 0, true));
    QVERIFY(m_player->ReadNextItemOfType({CRecType(0, 1), CRecType(0, 2)}, 0, true)); // the first one again
    QVERIFY(m_player->ReadNextItemOfType({CRecType(0, 1), CRecType(0, 2)}, 0, true));
    QCOMPARE(signalLog.Take(),
        DeliveryLines(m_items[0], 48, false) + DeliveryLines(m_items[0], 48, false)
            + DeliveryLines(m_items[1], m_log.Start(1), false));
}

void tst_ZrPlayerReceivers::closingInsideASignal_data()
{
    readingInsideASignal_data();
}

void tst_ZrPlayerReceivers::closingInsideASignal()
{
    QFETCH(int, signal);
    const auto close = [this] { m_player->CloseFile(); };
    if (signal == 0)
        connect(m_player.data(), &ZrPlayer::SeekLog, this, close);
    else if (signal == 1)
        connect(m_player.data(), &ZrPlayer::NewPayload, this, close);
    else
        connect(m_player.data(), &ZrPlayer::NewPayloadPos, this, close);
    SignalLog signalLog(*m_player, m_messages.data());
    QVERIFY(m_player->ReadNextItem(false)); // what was read is delivered to its end
    QCOMPARE(signalLog.Take(), DeliveryLines(m_items[0], 48, true));
    QVERIFY(!m_player->ReadNextItem(false));
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrPlayerReceivers::closingEndsPlayUntilType()
{
    connect(m_player.data(), &ZrPlayer::NewPayloadPos, this, [this] { m_player->CloseFile(); });
    SignalLog signalLog(*m_player, m_messages.data());
    QVERIFY(!m_player->PlayUntilType(CRecType(0, 3)));
    QCOMPARE(signalLog.Take(), DeliveryLines(m_items[0], 48, false));
    QVERIFY(m_player->SeekTo(48));
    QVERIFY(m_player->PlayUntilType(CRecType(0, 1))); // it was delivered before the file was closed
}

void tst_ZrPlayerReceivers::openingAnotherFileInsideASignal()
{
    QVERIFY(WriteWhole(Path("b.log"), LogBytes().Add(MakeItem(9, "other")).Bytes()));
    bool done = false;
    connect(m_player.data(), &ZrPlayer::NewPayload, this, [&] {
        if (!done) {
            done = true;
            QVERIFY(m_player->OpenFile(Path("b.log")));
        }
    });
    SignalLog signalLog(*m_player, m_messages.data());
    QVERIFY(m_player->ReadNextItem(true));
    QVERIFY(m_player->ReadNextItem(true));
    QCOMPARE(signalLog.Take(),
        DeliveryLines(m_items[0], 48, false) + DeliveryLines(MakeItem(9, "other"), 48, false));
}

void tst_ZrPlayerReceivers::reopeningInsideEndOfFile()
{
    QVERIFY(m_player->SeekTo(m_log.Start(1) + 1));
    const QMetaObject::Connection connection
        = connect(m_player.data(), &ZrPlayer::EndOfFile, this, [this] { QVERIFY(m_player->SeekTo(48)); });
    QVERIFY(!m_player->ReadNextItem(true)); // damaged there; the receiver goes back to the start
    disconnect(connection);
    SignalLog signalLog(*m_player, m_messages.data());
    QVERIFY(m_player->ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(m_items[0], 48, false));
}

void tst_ZrPlayerReceivers::playingOnInsideASignalOfPlayUntilType()
{
    bool done = false;
    connect(m_player.data(), &ZrPlayer::NewPayload, this, [&] {
        if (!done) {
            done = true;
            QVERIFY(m_player->PlayUntilType(CRecType(0, 2)));
        }
    });
    SignalLog signalLog(*m_player, m_messages.data());
    QVERIFY(m_player->PlayUntilType(CRecType(0, 3)));
    QCOMPARE(signalLog.Take(),
        DeliveryLines(m_items[1], m_log.Start(1), false) + DeliveryLines(m_items[0], 48, false)
            + DeliveryLines(m_items[2], m_log.Start(2), false));
}

void tst_ZrPlayerReceivers::severalReceiversSeeTheSameBytes()
{
    connect(m_player.data(), &ZrPlayer::NewPayload, this, [this](const ZrLogItemInf& inf) {
        if (inf.type == 1)
            QVERIFY(m_player->ReadNextItemOfType(CRecType(0, 2), 0, true));
    });
    QVector<QByteArray> seen;
    const auto take = [&seen](const ZrLogItemInf&, zr::span<u8> payload) { seen << Bytes(payload); };
    connect(m_player.data(), &ZrPlayer::NewPayload, this, take);
    connect(m_player.data(), &ZrPlayer::NewPayload, this, take);
    connect(m_player.data(), &ZrPlayer::NewPayloadPos, this, take);
    QVERIFY(m_player->ReadNextItem(true));
    const QByteArray a = m_items[0].payload;
    const QByteArray b = m_items[1].payload;
    QCOMPARE(seen, (QVector<QByteArray>{b, b, b, a, a, a}));
}

QTEST_GUILESS_MAIN(tst_ZrPlayerReceivers)
#include "tst_ZrPlayerReceivers.moc"
