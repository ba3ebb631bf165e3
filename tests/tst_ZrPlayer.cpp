// ZrPlayer on sound files: opening, the three ways of reading, seeking, positions.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrLogger.h"

#include <QtTest/QtTest>

#include <cmath>

namespace {

/// Three sources, a compressed item, an empty one, a sub-type.
QVector<Item> SampleItems()
{
    QVector<Item> items;
    items << MakeItem(4, "alpha", 3);
    items << MakeItem(300, qCompress(QByteArray("beta beta beta"), 1), 5);
    items.last().compressed = true;
    items.last().dataSize = 14;
    items.last().format = 77;
    items << MakeItem(4, "", 5);
    items << MakeItem(4, "gamma", 5);
    items.last().sub = 9;
    items.last().time = 1602049684.592;
    items << MakeItem(65535, "delta", 3);
    return items;
}

LogBytes SampleLog()
{
    LogBytes log;
    for (const Item& item : SampleItems())
        log.Add(item);
    return log;
}

const QString incomplete = QStringLiteral("message Incomplete item header found");
const QString endOpen = QStringLiteral("EndOfFile, open");
const QString endClosed = QStringLiteral("EndOfFile, closed");

} // namespace

class tst_ZrPlayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void startsClosed();
    void openingChecksTheHeader_data();
    void openingChecksTheHeader();
    void fileThatCannotBeOpenedGivesNoMessage();
    void openingAnotherFileClosesTheFirst();
    void headerOnlyIsAtItsEnd();

    void readNextItemDeliversAll();
    void readNextItemAnnouncesWhenNotPlaying();
    void endOfFileMayBeMetAgain();
    void everythingOnAClosedPlayerIsFalse();

    void readOfTypeSkipsOthersSilently();
    void readOfTypeFiltersBySource();
    void readOfTypeMatchesBothHalves();
    void readOfTypeTakesAnyOfAList();
    void readOfNoTypeReadsToTheEnd();
    void playUntilTypeDeliversEverythingOnTheWay();
    void playUntilTypeWithoutSuchAnItem();

    void seekMovesToAnItem();
    void seekReopensAClosedFile();
    void seekOnAPlayerThatNeverOpened();
    void impossiblePathsAreRefusedSilently();
    void fileCutWhileItIsOpen_data();
    void fileCutWhileItIsOpen();
    void fileShorterThanItsSizeSays();
    void seekIntoAnItemFailsThere();
    void seekBeyondTheEnd_data();
    void seekBeyondTheEnd();
    void seekBackAndForthGivesTheSameItems();
    void posPercentFollowsThePosition();
    void readFailedClosesAndTells();

private:
    QString Path(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    /// The sample log as a file.
    QString Sample()
    {
        WriteWhole(Path("sample.log"), SampleLog().Bytes());
        return Path("sample.log");
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrPlayer::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
}

void tst_ZrPlayer::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrPlayer::startsClosed()
{
    const ZrPlayer player;
    QVERIFY(!player.file.isOpen());
    QCOMPARE(player.fileName, QString());
    QCOMPARE(player.fileSize, u64(0));
    QCOMPARE(player.pos, u64(0));
    QVERIFY(std::isnan(player.PosPercent()));
}

void tst_ZrPlayer::openingChecksTheHeader_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message"); // none: opens
    QTest::addColumn<quint64>("pos");
    const QByteArray good = FileHeader(1.0);
    const auto patched
        = [&good](int offset, const char* hex) { return Patched(good, offset, QByteArray::fromHex(hex)); };
    const QString small = QStringLiteral("File is not big enough to contain a header");
    const QString invalid = QStringLiteral("Not a valid header");
    const QString version = QStringLiteral("File header version mismatch");
    QTest::newRow("empty file") << QByteArray("") << small << quint64(0);
    QTest::newRow("47 bytes") << good.left(47) << small << quint64(0);
    QTest::newRow("47 wrong bytes") << QByteArray(47, 'x') << small << quint64(0);
    QTest::newRow("48 bytes") << good << QString() << quint64(48);
    QTest::newRow("wrong magic") << patched(0, "45332211") << invalid << quint64(48);
    QTest::newRow("magic big-endian") << patched(0, "11223344") << invalid << quint64(48);
    QTest::newRow("an item's magic") << patched(0, "ddccbbaa") << invalid << quint64(48);
    QTest::newRow("header size 49") << patched(4, "31000000") << version << quint64(48);
    QTest::newRow("header size 0x130") << patched(4, "30010000") << version << quint64(48);
    QTest::newRow("both wrong") << patched(0, "0000000000000000") << invalid << quint64(48);
    QTest::newRow("version 7") << patched(24, "07000000") << QString() << quint64(48);
    QTest::newRow("other tag") << patched(8, "616263") << QString() << quint64(48);
    QTest::newRow("gap and reserved set")
        << patched(28, "ffffffffffffffffffffffff") << QString() << quint64(48);
}

void tst_ZrPlayer::openingChecksTheHeader()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    QFETCH(quint64, pos);
    QVERIFY(WriteWhole(Path("a.log"), bytes));
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    const bool opens = message.isEmpty();
    QCOMPARE(player.OpenFile(Path("a.log")), opens);
    QCOMPARE(player.file.isOpen(), opens);
    QCOMPARE(player.pos, quint64(pos));
    QCOMPARE(player.fileSize, static_cast<u64>(bytes.size()));
    QCOMPARE(player.fileName, Path("a.log"));
    const QStringList failure = {QStringLiteral("message ") + message, endClosed};
    QCOMPARE(signalLog.Take(), opens ? QStringList() : failure);
}

void tst_ZrPlayer::fileThatCannotBeOpenedGivesNoMessage()
{
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(!player.OpenFile(Path("missing.log")));
    QCOMPARE(player.fileName, Path("missing.log"));
    QVERIFY(!player.OpenFile(m_dir->path())); // a directory
    QVERIFY(!player.file.isOpen());
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrPlayer::openingAnotherFileClosesTheFirst()
{
    QVERIFY(WriteWhole(Path("a.log"), LogBytes().Add(MakeItem(1, "first")).Bytes()));
    QVERIFY(WriteWhole(Path("b.log"), LogBytes().Add(MakeItem(2, "second")).Bytes()));
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Path("a.log")));
    QVERIFY(player.OpenFile(Path("b.log")));
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(MakeItem(2, "second"), 48, false));
    QVERIFY(!player.OpenFile(Path("missing.log")));
    QVERIFY(!player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrPlayer::headerOnlyIsAtItsEnd()
{
    QVERIFY(WriteWhole(Path("a.log"), FileHeader()));
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Path("a.log")));
    QVERIFY(!player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), QStringList(endOpen));
    QVERIFY(!player.ReadNextItemOfType(CRecType(0, 1), 0, true));
    QVERIFY(!player.PlayUntilType(CRecType(0, 1)));
    QCOMPARE(signalLog.Take(), QStringList());
    QVERIFY(player.file.isOpen());
}

void tst_ZrPlayer::readNextItemDeliversAll()
{
    const LogBytes log = SampleLog();
    const QVector<Item> items = SampleItems();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QCOMPARE(player.pos, u64(48));
    for (int i = 0; i < items.size(); ++i) {
        QVERIFY(player.ReadNextItem(true));
        QCOMPARE(signalLog.Take(), DeliveryLines(items[i], log.Start(i), false));
        QCOMPARE(player.pos, i + 1 < items.size() ? log.Start(i + 1) : log.Size());
    }
    QVERIFY(!player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), QStringList(endOpen));
}

void tst_ZrPlayer::readNextItemAnnouncesWhenNotPlaying()
{
    const LogBytes log = SampleLog();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QVERIFY(player.ReadNextItem(false));
    QCOMPARE(signalLog.Take(), DeliveryLines(SampleItems().at(0), 48, true));
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(SampleItems().at(1), log.Start(1), false));
    QVERIFY(player.ReadNextItem(false));
    QCOMPARE(signalLog.Take(), DeliveryLines(SampleItems().at(2), log.Start(2), true));
}

void tst_ZrPlayer::endOfFileMayBeMetAgain()
{
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    while (player.ReadNextItem(true)) { }
    signalLog.Take();
    QVERIFY(!player.ReadNextItem(true));
    QVERIFY(!player.ReadNextItem(false));
    QCOMPARE(signalLog.Take(), (QStringList{endOpen, endOpen}));
    QVERIFY(player.file.isOpen());
    QCOMPARE(player.pos, player.fileSize);
    QVERIFY(player.SeekTo(48));
    QVERIFY(player.ReadNextItem(true));
}

void tst_ZrPlayer::everythingOnAClosedPlayerIsFalse()
{
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    for (int round = 0; round < 2; ++round) {
        QVERIFY(!player.ReadNextItem(false));
        QVERIFY(!player.ReadNextItemOfType(CRecType(0, 4), 0, false));
        QVERIFY(!player.ReadNextItemOfType({CRecType(0, 4)}, 0, false));
        QVERIFY(!player.PlayUntilType(CRecType(0, 4)));
        QVERIFY(player.OpenFile(Sample()));
        player.CloseFile();
        QVERIFY(!player.file.isOpen());
    }
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrPlayer::readOfTypeSkipsOthersSilently()
{
    const LogBytes log = SampleLog();
    const QVector<Item> items = SampleItems();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QVERIFY(player.ReadNextItemOfType(CRecType(0, 65535), 0, false));
    QCOMPARE(signalLog.Take(), DeliveryLines(items[4], log.Start(4), true));
    QCOMPARE(player.pos, log.Size());
    QVERIFY(!player.ReadNextItemOfType(CRecType(0, 4), 0, false));
    QCOMPARE(signalLog.Take(), QStringList()); // the end is not signalled here
    QVERIFY(player.file.isOpen());
}

void tst_ZrPlayer::readOfTypeFiltersBySource()
{
    const LogBytes log = SampleLog();
    const QVector<Item> items = SampleItems();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QVERIFY(player.ReadNextItemOfType(CRecType(0, 4), 5, true)); // passes over source 3
    QCOMPARE(signalLog.Take(), DeliveryLines(items[2], log.Start(2), false));
    QVERIFY(player.SeekTo(48));
    QVERIFY(player.ReadNextItemOfType(CRecType(0, 4), 0, true)); // 0: any source
    QCOMPARE(signalLog.Take(), DeliveryLines(items[0], log.Start(0), false));
    QVERIFY(player.SeekTo(48));
    QVERIFY(!player.ReadNextItemOfType(CRecType(0, 4), 6, true));
    QCOMPARE(signalLog.Take(), QStringList());
    QCOMPARE(player.pos, log.Size());
}

void tst_ZrPlayer::readOfTypeMatchesBothHalves()
{
    const LogBytes log = SampleLog();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QVERIFY(player.ReadNextItemOfType(CRecType(9, 4), 0, true));
    QCOMPARE(signalLog.Take(), DeliveryLines(SampleItems().at(3), log.Start(3), false));
    QVERIFY(player.SeekTo(48));
    QVERIFY(!player.ReadNextItemOfType(CRecType(4, 9), 0, true));
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrPlayer::readOfTypeTakesAnyOfAList()
{
    const LogBytes log = SampleLog();
    const QVector<Item> items = SampleItems();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    for (int i : {1, 3, 4}) {
        QVERIFY(player.ReadNextItemOfType({CRecType(0, 65535), CRecType(9, 4), CRecType(0, 300)}, 0, true));
        QCOMPARE(signalLog.Take(), DeliveryLines(items[i], log.Start(i), false));
    }
    QVERIFY(!player.ReadNextItemOfType({CRecType(0, 65535), CRecType(9, 4), CRecType(0, 300)}, 0, true));
    QVERIFY(player.SeekTo(48));
    // Type and source must both fit.
    QVERIFY(player.ReadNextItemOfType({CRecType(0, 4), CRecType(0, 65535), CRecType(0, 300)}, 5, true));
    QCOMPARE(signalLog.Take(), DeliveryLines(items[1], log.Start(1), false));
}

void tst_ZrPlayer::readOfNoTypeReadsToTheEnd()
{
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QVERIFY(!player.ReadNextItemOfType({}, 0, false));
    QCOMPARE(player.pos, player.fileSize);
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrPlayer::playUntilTypeDeliversEverythingOnTheWay()
{
    const LogBytes log = SampleLog();
    const QVector<Item> items = SampleItems();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QVERIFY(player.PlayUntilType(CRecType(9, 4)));
    QStringList expected;
    for (int i = 0; i <= 3; ++i)
        expected += DeliveryLines(items[i], log.Start(i), false);
    QCOMPARE(signalLog.Take(), expected);
    QCOMPARE(player.pos, log.Start(4));
    QVERIFY(player.PlayUntilType(CRecType(0, 65535))); // the last item of the file
    QCOMPARE(signalLog.Take(), DeliveryLines(items[4], log.Start(4), false));
    QVERIFY(!player.PlayUntilType(CRecType(0, 65535)));
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrPlayer::playUntilTypeWithoutSuchAnItem()
{
    const LogBytes log = SampleLog();
    const QVector<Item> items = SampleItems();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QVERIFY(!player.PlayUntilType(CRecType(1, 300)));
    QStringList expected;
    for (int i = 0; i < items.size(); ++i)
        expected += DeliveryLines(items[i], log.Start(i), false);
    QCOMPARE(signalLog.Take(), expected); // and no end is signalled
    QVERIFY(player.file.isOpen());
}

void tst_ZrPlayer::seekMovesToAnItem()
{
    const LogBytes log = SampleLog();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QVERIFY(player.SeekTo(log.Start(3)));
    QCOMPARE(player.pos, log.Start(3));
    QVERIFY(player.ReadNextItem(false));
    QCOMPARE(signalLog.Take(), DeliveryLines(SampleItems().at(3), log.Start(3), true));
    QVERIFY(player.SeekTo(log.Size()));
    QVERIFY(!player.ReadNextItem(false));
    QCOMPARE(signalLog.Take(), QStringList(endOpen));
}

void tst_ZrPlayer::seekReopensAClosedFile()
{
    const LogBytes log = SampleLog();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    player.CloseFile();
    QVERIFY(player.SeekTo(log.Start(1)));
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(SampleItems().at(1), log.Start(1), false));

    // What has become unreadable stays closed.
    player.CloseFile();
    QVERIFY(WriteWhole(Sample(), "short"));
    QVERIFY(!player.SeekTo(48));
    QVERIFY(!player.file.isOpen());
    QCOMPARE(signalLog.Take(),
        (QStringList{QStringLiteral("message File is not big enough to contain a header"), endClosed}));
    QVERIFY(QFile::remove(Path("sample.log")));
    QVERIFY(!player.SeekTo(48));
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrPlayer::seekOnAPlayerThatNeverOpened()
{
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(!player.SeekTo(48));
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrPlayer::impossiblePathsAreRefusedSilently()
{
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(!player.OpenFile(QString()));
    QVERIFY(!player.OpenFile(QString(QChar(0))));
    QVERIFY(!player.OpenFile(m_dir->path()));
    QCOMPARE(signalLog.Take(), QStringList());
}

/// The file shrinks behind the player's back: sizes said that the bytes are there, reading finds that they
/// are not.
void tst_ZrPlayer::fileCutWhileItIsOpen_data()
{
    QTest::addColumn<int>("leftOfTheItem");
    QTest::addColumn<QString>("message");
    QTest::newRow("nothing left") << 0 << QStringLiteral("message Cannot read the item header");
    QTest::newRow("within the header") << 39 << QStringLiteral("message Cannot read the item header");
    QTest::newRow("behind the header") << 40 << QStringLiteral("message Unable to read item payload");
    QTest::newRow("within the payload") << 1000 << QStringLiteral("message Unable to read item payload");
}

void tst_ZrPlayer::fileCutWhileItIsOpen()
{
    QFETCH(int, leftOfTheItem);
    QFETCH(QString, message);
    // Two items far larger than what the player reads ahead.
    const QByteArray payload(300000, 'x');
    ZrLogger log(nullptr);
    log.OpenFile(Path("cut.log"));
    log.LogData(rtSerialText, 0, {zr::bytes_of(payload)});
    log.LogData(rtSerialText, 0, {zr::bytes_of(payload)});
    log.CloseLog();
    m_messages->Take();

    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Path("cut.log")));
    const u64 second = 48 + 40 + 300000;
    QVERIFY(player.SeekTo(second));
    QVERIFY(QFile::resize(Path("cut.log"), qint64(second) + leftOfTheItem));
    QVERIFY(!player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), (QStringList{message, endClosed}));
    QCOMPARE(player.pos, second + (leftOfTheItem < 40 ? 0 : 40));
}

void tst_ZrPlayer::fileShorterThanItsSizeSays()
{
    // The kernel's own files claim a page and hold a few bytes.
    const QString path = QStringLiteral("/sys/devices/system/cpu/online");
    if (QFileInfo(path).size() < 48)
        QSKIP("no such file on this system");
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(!player.OpenFile(path));
    QCOMPARE(
        signalLog.Take(), (QStringList{QStringLiteral("message Cannot read the file header"), endClosed}));
    QCOMPARE(player.pos, u64(0));
}

void tst_ZrPlayer::seekIntoAnItemFailsThere()
{
    const LogBytes log = SampleLog();
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QVERIFY(player.SeekTo(log.Start(1) + 4)); // 28 00 00 00 where the magic is expected
    QVERIFY(!player.ReadNextItem(false));
    const u32 found = LeAt<quint32>(log.Bytes(), static_cast<int>(log.Start(1)) + 4);
    QCOMPARE(signalLog.Take(),
        (QStringList{
            QStringLiteral("message Not a valid item header:") + QString::number(found, 16), endClosed}));
    QCOMPARE(found, 0x28u);
    QVERIFY(player.SeekTo(log.Start(1))); // a later position that is known
    QVERIFY(player.ReadNextItem(true));
}

void tst_ZrPlayer::seekBeyondTheEnd_data()
{
    QTest::addColumn<quint64>("pos");
    QTest::addColumn<bool>("sought");
    const quint64 size = SampleLog().Size();
    QTest::newRow("one beyond") << size + 1 << true;
    QTest::newRow("far beyond") << size + 1000000 << true;
    QTest::newRow("2^63") << (quint64(1) << 63) << false;
    QTest::newRow("2^64 - 40") << ~quint64(0) - 39 << false;
    QTest::newRow("2^64 - 1") << ~quint64(0) << false;
}

void tst_ZrPlayer::seekBeyondTheEnd()
{
    QFETCH(quint64, pos);
    QFETCH(bool, sought);
    const QString size = QString::number(SampleLog().Size());
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QCOMPARE(player.SeekTo(pos), sought);
    QCOMPARE(player.pos, quint64(pos)); // set all the same
    QVERIFY(!player.ReadNextItemOfType(CRecType(0, 4), 0, false));
    QVERIFY(!player.PlayUntilType(CRecType(0, 4)));
    QCOMPARE(signalLog.Take(), QStringList()); // at or behind the end: nothing to tell
    QVERIFY(!player.ReadNextItem(false));
    QCOMPARE(signalLog.Take(),
        (QStringList{incomplete + QStringLiteral(". FS:%1 BR:%2").arg(size).arg(pos), endClosed}));
    QVERIFY(player.SeekTo(48));
    QVERIFY(player.ReadNextItem(true));
}

void tst_ZrPlayer::seekBackAndForthGivesTheSameItems()
{
    LogBytes log;
    QVector<Item> items;
    for (int i = 0; i < 400; ++i) {
        items << MakeItem(static_cast<quint16>(i), QByteArray((i * 7919) % 5000, static_cast<char>(i)));
        log.Add(items.last());
    }
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    ZrPlayer player;
    SignalLog signalLog(player);
    QVERIFY(player.OpenFile(Path("a.log")));
    quint32 state = 12345;
    for (int step = 0; step < 500; ++step) {
        state = state * 1664525u + 1013904223u;
        const int i = static_cast<int>((state >> 8) % 399);
        QVERIFY(player.SeekTo(log.Start(i)));
        QVERIFY(player.ReadNextItem(true));
        QVERIFY(player.ReadNextItem(true)); // and plays on from there
        QCOMPARE(signalLog.Take(),
            DeliveryLines(items[i], log.Start(i), false)
                + DeliveryLines(items[i + 1], log.Start(i + 1), false));
    }
}

void tst_ZrPlayer::posPercentFollowsThePosition()
{
    QVERIFY(WriteWhole(Path("a.log"), LogBytes().Add(MakeItem(1, QByteArray(960, 'x'))).Bytes()));
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    QCOMPARE(player.fileSize, u64(1048));
    QCOMPARE(player.PosPercent(), 48 * 100.0 / 1048);
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(player.PosPercent(), 100.0);
    QVERIFY(player.SeekTo(2096));
    QCOMPARE(player.PosPercent(), 200.0);
}

void tst_ZrPlayer::readFailedClosesAndTells()
{
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Sample()));
    QVERIFY(!player.ReadFailed(QStringLiteral("just so")));
    QVERIFY(!player.file.isOpen());
    QCOMPARE(signalLog.Take(), (QStringList{QStringLiteral("message just so"), endClosed}));

    QVERIFY(player.SeekTo(48));
    bool openAtTheMessage = false;
    m_messages->onMessage = [&](const QString&) { openAtTheMessage = player.file.isOpen(); };
    QVERIFY(!player.ReadFailed(QStringLiteral("again")));
    QVERIFY(openAtTheMessage); // first the message, then the closing, then the signal
}

QTEST_GUILESS_MAIN(tst_ZrPlayer)
#include "tst_ZrPlayer.moc"
