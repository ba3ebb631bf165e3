// ZrPlayer and the file under it: logs of the writer, files that grow or change meanwhile, large items.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrLogger.h"

#include <QtTest/QtTest>

namespace {

const QVector<Item> items = {MakeItem(4, "alpha", 3), MakeItem(5, ""), MakeItem(4, "gamma", 5)};

LogBytes SampleLog()
{
    LogBytes log;
    for (const Item& item : items)
        log.Add(item);
    return log;
}

const QString endOpen = QStringLiteral("EndOfFile, open");
const QString endClosed = QStringLiteral("EndOfFile, closed");

} // namespace

class tst_ZrPlayerFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void writtenByTheLoggerReadByThePlayer();
    void bufferIsReusedAndFitsTheItem();
    void sizeIsThatOfTheOpening();
    void payloadMayLieBeyondTheSizeOfTheOpening();
    void tailGrownSinceTheOpeningIsRead();
    void bytesRewrittenBehindASeekAreSeen();
    void logBeingWrittenIsReadToItsLastItem();
    void twoPlayersOnOneFile();
    void largeItemsAmongSmallOnes();

private:
    QString Path(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrPlayerFiles::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
}

void tst_ZrPlayerFiles::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrPlayerFiles::writtenByTheLoggerReadByThePlayer()
{
    ZrLogger log(nullptr);
    log.OpenFile(Path("a.log"));
    log.LogData(CRecType(1, 2000), 3, 4, false, {Span("plain")});
    log.LogData(CRecType(5, 6), 7, 8, true, {Span("packed")});
    log.LogSerStr(QStringLiteral("serial"));
    log.CloseLog();
    m_messages->Take();
    ZrPlayer player;
    QVector<ZrLogItemInf> infs;
    QVector<QByteArray> payloads;
    connect(&player, &ZrPlayer::NewPayload, this, [&](const ZrLogItemInf& inf, zr::span<u8> payload) {
        infs << inf;
        payloads << Bytes(payload);
    });
    QVERIFY(player.OpenFile(Path("a.log")));
    while (player.ReadNextItem(true)) { }
    QCOMPARE(payloads,
        (QVector<QByteArray>{"plain", qCompress(QByteArray("packed"), 1), QByteArray("serial\0", 7)}));
    QVERIFY(infs[0] == CRecType(1, 2000) && infs[1] == CRecType(5, 6) && infs[2] == CRecType(rtSerialText));
    QCOMPARE(infs[1].source, u16(7));
    QCOMPARE(infs[1].format, u16(8));
    QVERIFY(infs[0].time <= infs[2].time && infs[0].time > 1.6e9);
    QCOMPARE(m_messages->Take(), QStringList());
}

void tst_ZrPlayerFiles::bufferIsReusedAndFitsTheItem()
{
    LogBytes log;
    log.Add(MakeItem(1, QByteArray(10000, 'a'))).Add(MakeItem(1, "b")).Add(MakeItem(1, ""));
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(player.buffer.size(), std::size_t(10000));
    const u8* const memory = player.buffer.data();
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(player.buffer.size(), std::size_t(1));
    QVERIFY(player.buffer.data() == memory);
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(player.buffer.size(), std::size_t(0));
    QVERIFY(player.buffer.capacity() >= 10000);
}

void tst_ZrPlayerFiles::sizeIsThatOfTheOpening()
{
    QVERIFY(WriteWhole(Path("a.log"), SampleLog().Bytes()));
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Path("a.log")));
    QVERIFY(AppendTo(Path("a.log"), MakeItem(4, "later").Bytes()));
    while (player.ReadNextItem(true)) { }
    QCOMPARE(signalLog.Take().last(), endOpen);
    QCOMPARE(player.pos, SampleLog().Size()); // the item behind belongs to the next opening
    player.CloseFile();
    QVERIFY(player.SeekTo(SampleLog().Size()));
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(MakeItem(4, "later"), SampleLog().Size(), false));
}

void tst_ZrPlayerFiles::payloadMayLieBeyondTheSizeOfTheOpening()
{
    const Item item = MakeItem(4, "grown payload");
    const QByteArray whole = LogBytes().Add(item).Bytes();
    QVERIFY(WriteWhole(Path("a.log"), whole.left(48 + 40 + 3)));
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Path("a.log")));
    QVERIFY(AppendTo(Path("a.log"), whole.mid(48 + 40 + 3)));
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(item, 48, false));
    QCOMPARE(player.pos, static_cast<u64>(whole.size()));
    // The position now lies behind the size of the opening.
    QVERIFY(!player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(),
        (QStringList{QStringLiteral("message Incomplete item header found. FS:91 BR:%1").arg(whole.size()),
            endClosed}));
}

void tst_ZrPlayerFiles::tailGrownSinceTheOpeningIsRead()
{
    LogBytes log;
    log.Add(MakeItem(1, "one")).Add(MakeItem(2, QByteArray(3000, 't')));
    const int cut = static_cast<int>(log.Start(1)) + 40 + 1000;
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes().left(cut)));
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Path("a.log")));
    QVERIFY(player.ReadNextItem(true)); // whatever is read ahead here ends with the file
    QVERIFY(AppendTo(Path("a.log"), log.Bytes().mid(cut)));
    signalLog.Take();
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(MakeItem(2, QByteArray(3000, 't')), log.Start(1), false));
}

void tst_ZrPlayerFiles::bytesRewrittenBehindASeekAreSeen()
{
    LogBytes log;
    log.Add(MakeItem(1, "one")).Add(MakeItem(2, "two"));
    LogBytes changed;
    changed.Add(MakeItem(1, "ONE")).Add(MakeItem(2, "TWO"));
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    QVERIFY(player.OpenFile(Path("a.log")));
    QVERIFY(player.ReadNextItem(true));
    signalLog.Take();
    QFile file(Path("a.log"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.write(changed.Bytes()) == changed.Bytes().size());
    file.close();
    QVERIFY(player.SeekTo(log.Start(1)));
    QVERIFY(player.ReadNextItem(true));
    QVERIFY(player.SeekTo(48));
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(),
        DeliveryLines(MakeItem(2, "TWO"), log.Start(1), false)
            + DeliveryLines(MakeItem(1, "ONE"), 48, false));
}

/// At the opening the last item's header still is the placeholder with sizes of 0 and its payload half
/// written; the writer completes it before the player gets there.
void tst_ZrPlayerFiles::logBeingWrittenIsReadToItsLastItem()
{
    LogBytes log;
    log.Add(MakeItem(1, "one")).Add(MakeItem(7, "")).Add(MakeItem(2, "two")).Add(MakeItem(3, "the last"));
    const int last = static_cast<int>(log.Start(3));
    QByteArray interrupted = log.Bytes();
    interrupted.replace(last + 28, 8, QByteArray(8, '\0'));
    interrupted.replace(last + 40, 8, QByteArray(8, '?'));
    for (int cut : {0, 3, 8}) { // payload bytes missing at the opening
        QVERIFY(WriteWhole(Path("a.log"), interrupted.left(interrupted.size() - cut)));
        ZrPlayer player;
        SignalLog signalLog(player, m_messages.data());
        QVERIFY(player.OpenFile(Path("a.log")));
        QVERIFY(player.ReadNextItem(true));
        QFile file(Path("a.log"));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.seek(last) && file.write(log.Bytes().mid(last)) == log.Bytes().size() - last);
        file.close();
        QVERIFY(player.ReadNextItem(true));
        QVERIFY(player.ReadNextItem(true));
        signalLog.Take();
        QVERIFY(player.ReadNextItem(true));
        QCOMPARE(signalLog.Take(), DeliveryLines(MakeItem(3, "the last"), log.Start(3), false));
    }
}

void tst_ZrPlayerFiles::twoPlayersOnOneFile()
{
    const LogBytes log = SampleLog();
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    ZrPlayer a, b;
    SignalLog ofA(a), ofB(b);
    QVERIFY(a.OpenFile(Path("a.log")));
    QVERIFY(b.OpenFile(Path("a.log")));
    QVERIFY(b.SeekTo(log.Start(2)));
    QVERIFY(a.ReadNextItem(true));
    QVERIFY(b.ReadNextItem(true));
    QVERIFY(a.ReadNextItem(true));
    QCOMPARE(ofA.Take(), DeliveryLines(items[0], 48, false) + DeliveryLines(items[1], log.Start(1), false));
    QCOMPARE(ofB.Take(), DeliveryLines(items[2], log.Start(2), false));
    b.CloseFile();
    QVERIFY(a.ReadNextItem(true));
}

void tst_ZrPlayerFiles::largeItemsAmongSmallOnes()
{
    LogBytes log;
    QVector<Item> many;
    quint32 state = 99;
    for (int i = 0; i < 60; ++i) {
        for (int size : {0, 5, 40, 4000, 16000, 70000, 300000}) {
            state = state * 1664525u + 1013904223u;
            if ((state >> 16) % (size > 100000 ? 20 : 3) != 0)
                continue;
            QByteArray payload(size + static_cast<int>((state >> 20) % 50), '\0');
            for (char& byte : payload) {
                state = state * 1664525u + 1013904223u;
                byte = static_cast<char>(state >> 24);
            }
            many << MakeItem(static_cast<quint16>(many.size()), payload);
            log.Add(many.last());
        }
    }
    QVERIFY(many.size() > 50);
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    ZrPlayer player;
    int index = 0;
    bool allRight = true;
    connect(
        &player, &ZrPlayer::NewPayloadPos, this, [&](const ZrLogItemInf& inf, zr::span<u8> payload, u64 pos) {
            allRight = allRight && inf.type == index && pos == log.Start(index)
                && Bytes(payload) == many.at(index).payload;
            ++index;
        });
    QVERIFY(player.OpenFile(Path("a.log")));
    while (player.ReadNextItem(true)) { }
    QVERIFY(allRight);
    QCOMPARE(index, many.size());
    QCOMPARE(player.pos, log.Size());
}

QTEST_GUILESS_MAIN(tst_ZrPlayerFiles)
#include "tst_ZrPlayerFiles.moc"
