// The scan is held against the player, which it must agree with on every log, sound or damaged.

#include "ZrKit/review/ZrLogScan.h"
#include "ZrLogFixture.h"
#include "ZrUtil/ZrPlayer.h"

namespace {

/// One item as both readers see it.
QString ItemLine(u64 pos, const CRecType& key, u16 source, u16 format, double time, u64 stored)
{
    return QStringLiteral("%1: %2:%3 source %4 format %5 time %6 stored %7")
        .arg(pos)
        .arg(key.type)
        .arg(key.sub)
        .arg(source)
        .arg(format)
        .arg(time, 0, 'g', 17)
        .arg(stored);
}

/// What a reader has made of a log: its items, and how it ended.
struct Reading
{
    QStringList items;
    QString message; ///< empty at a clean end
    u64 endPos = 0; ///< where the item that could not be read starts, or the end of the log
};

Reading ByPlayer(const QString& path)
{
    Reading reading;
    MessageCatcher messages;
    ZrPlayer player;
    QObject::connect(&player, &ZrPlayer::NewPayloadPos, &player,
        [&reading](const ZrLogItemInf& inf, zr::span<u8> payload, u64 pos) {
            reading.items << ItemLine(pos, inf, inf.source, inf.format, inf.time, payload.size());
            reading.endPos = pos + 40 + payload.size();
        });
    if (player.OpenFile(path)) {
        reading.endPos = 48;
        while (player.ReadNextItem(true)) { }
    }
    reading.message = messages.Take().join(QLatin1Char('|'));
    return reading;
}

Reading ByScan(const QString& path)
{
    Reading reading;
    ZrLogScan scan;
    ZrLogItem item;
    u64 pos = 0;
    scan.Open(path);
    while (scan.Next(item, pos))
        reading.items << ItemLine(pos, item.RecType(), item.source, item.format, item.time, item.storedSize);
    const bool clean = scan.State() == ZrLogScan::AtEnd;
    reading.message = scan.Error();
    reading.endPos = clean ? scan.Pos() : scan.ErrorPos();
    if (!clean && scan.State() != ZrLogScan::Damaged)
        reading.message = QStringLiteral("unexpected state %1").arg(scan.State());
    return reading;
}

/// Empty when both readers agree on the log; else the first difference.
QString Difference(const QString& path)
{
    const Reading expected = ByPlayer(path);
    const Reading found = ByScan(path);
    for (int i = 0; i < qMax(expected.items.size(), found.items.size()); ++i) {
        if (expected.items.value(i) != found.items.value(i))
            return QStringLiteral("item %1: player \"%2\", scan \"%3\"")
                .arg(i)
                .arg(expected.items.value(i), found.items.value(i));
    }
    if (expected.message != found.message)
        return QStringLiteral("player \"%1\", scan \"%2\"").arg(expected.message, found.message);
    if (expected.endPos != found.endPos)
        return QStringLiteral("ends: player %1, scan %2").arg(expected.endPos).arg(found.endPos);
    return QString();
}

/// A log of a few items of all kinds: empty, plain, compressed, the last one \p lastSize bytes.
LogBytes SmallLog(int lastSize = 5)
{
    Item empty = MakeItem(7, QByteArray());
    empty.sub = 3;
    empty.time = 1000.5;
    Item plain = MakeItem(2, "$GPGLL,1*00", 9);
    plain.time = 1001.25;
    plain.format = 4;
    Item packed = MakeItem(17, qCompress(QByteArray(500, 'x'), 1), 65535);
    packed.compressed = true;
    packed.dataSize = 500;
    LogBytes log;
    log.Add(empty).Add(plain).Add(packed).Add(MakeItem(65535, QByteArray(lastSize, 'z')));
    return log;
}

/// Makes a file of \p size bytes without storing them, and writes \p bytes at \p at.
bool WriteSparse(const QString& path, qint64 size, qint64 at, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && file.resize(size) && file.seek(at)
        && file.write(bytes) == bytes.size();
}

/// Remembers percentages and cancels at one of them.
class CancelAt final : public IZrProgress
{
public:
    CancelAt(ZrLogScan& scan, int percent)
        : m_scan(scan)
        , m_percent(percent)
    {
    }

    void UpdateProgress(int percent) override
    {
        if (percent >= m_percent)
            m_scan.cancel = true;
    }

    int GetProgress() override { return 0; }

private:
    ZrLogScan& m_scan;
    int m_percent;
};

/// What all reads of this process have returned so far, as the kernel counts it.
qint64 BytesReadByProcess()
{
    QFile counters(QStringLiteral("/proc/self/io"));
    if (!counters.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : counters.readAll().split('\n'))
        if (line.startsWith("rchar:"))
            return line.mid(6).trimmed().toLongLong();
    return 0;
}

} // namespace

class tst_ZrLogScan : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_path = m_folder->filePath(QStringLiteral("a.log"));
    }

    void readsHeaderAndItems();
    void agreesOnEveryCut();
    void agreesOnEveryFlippedHeaderByte();
    void agreesOnSizeFields_data();
    void agreesOnSizeFields();
    void agreesOnHeadersAtBlockEdges();
    void agreesOnPayloadsAroundTheSkipLimit();
    void agreesOnManySmallItems();
    void agreesOnRandomDamage();
    void saysWhyAFileCannotBeOpened();
    void hugePayloadsAreSkippedNotRead();
    void payloadThatIsNotThereIsDamage();
    void readsWhatTheLogHasGrownBy();
    void seeksToItems();
    void seekToAWrongPlaceShowsInNext_data();
    void seekToAWrongPlaceShowsInNext();
    void seekNeedsASoundLog();
    void nextNeedsAnOpenLog();
    void cancelEndsTheScan();
    void progressRisesToAHundred();
    void oneScanReadsSeveralFiles();
    void startsOfPayloads();
    void startsOfLargePayloads();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

void tst_ZrLogScan::readsHeaderAndItems()
{
    const LogBytes log = SmallLog();
    QVERIFY(WriteWhole(m_path, log.Bytes()));
    ZrLogScan scan;
    QCOMPARE(scan.State(), ZrLogScan::Closed);
    QVERIFY(scan.Open(m_path));
    QCOMPARE(scan.State(), ZrLogScan::Scanning);
    QCOMPARE(scan.Header().created, 1234.5);
    QCOMPARE(scan.Header().version, 1u);
    QCOMPARE(scan.FileSize(), log.Size());
    QCOMPARE(scan.Pos(), u64(48));

    ZrLogItem item;
    u64 pos = 0;
    QVERIFY(scan.Next(item, pos));
    QCOMPARE(pos, u64(48));
    QCOMPARE(item.type, u16(7));
    QCOMPARE(item.sub, u16(3));
    QCOMPARE(item.time, 1000.5);
    QCOMPARE(item.storedSize, 0u);
    QVERIFY(scan.Next(item, pos));
    QCOMPARE(pos, u64(88));
    QCOMPARE(item.source, u16(9));
    QCOMPARE(item.format, u16(4));
    QCOMPARE(item.storedSize, 11u);
    QVERIFY(scan.Next(item, pos));
    QCOMPARE(pos, u64(139));
    QCOMPARE(item.compressed, u16(1));
    QCOMPARE(item.dataSize, 500u);
    QVERIFY(scan.Next(item, pos));
    QCOMPARE(pos, log.Start(3));
    QVERIFY(!scan.Next(item, pos));
    QCOMPARE(scan.State(), ZrLogScan::AtEnd);
    QCOMPARE(scan.Pos(), log.Size());
    QCOMPARE(scan.Error(), QString());
    QCOMPARE(pos, log.Start(3)); // untouched by the call that found nothing
    QVERIFY(!scan.Next(item, pos));
    QCOMPARE(scan.State(), ZrLogScan::AtEnd);
}

void tst_ZrLogScan::agreesOnEveryCut()
{
    const QByteArray whole = SmallLog().Bytes();
    QVERIFY(WriteWhole(m_path, whole));
    QCOMPARE(ByScan(m_path).items.size(), 4);
    for (int size = 0; size <= whole.size(); ++size) {
        QVERIFY(WriteWhole(m_path, whole.left(size)));
        const QString difference = Difference(m_path);
        QVERIFY2(difference.isEmpty(), qPrintable(QStringLiteral("%1 bytes: %2").arg(size).arg(difference)));
    }
}

void tst_ZrLogScan::agreesOnEveryFlippedHeaderByte()
{
    const LogBytes log = SmallLog();
    QVector<int> offsets;
    for (int i = 0; i < 48; ++i)
        offsets << i;
    for (int item = 0; item < 4; ++item) {
        for (int i = 0; i < 40; ++i)
            offsets << static_cast<int>(log.Start(item)) + i;
    }
    for (const int offset : offsets) {
        for (const int mask : {0x01, 0x02, 0x10, 0x40, 0x80, 0xFF}) {
            QVERIFY(WriteWhole(m_path, Flipped(log.Bytes(), offset, mask)));
            const QString difference = Difference(m_path);
            QVERIFY2(difference.isEmpty(),
                qPrintable(QStringLiteral("byte %1 ^ %2: %3").arg(offset).arg(mask).arg(difference)));
        }
    }
}

void tst_ZrLogScan::agreesOnSizeFields_data()
{
    QTest::addColumn<quint32>("size");
    QTest::newRow("0") << 0u;
    QTest::newRow("one less") << 4u;
    QTest::newRow("right") << 5u;
    QTest::newRow("one more") << 6u;
    QTest::newRow("40 more") << 45u;
    QTest::newRow("2 GiB - 1") << 0x7FFFFFFFu;
    QTest::newRow("2 GiB") << 0x80000000u;
    QTest::newRow("4 GiB - 1") << 0xFFFFFFFFu;
}

void tst_ZrLogScan::agreesOnSizeFields()
{
    QFETCH(quint32, size);
    const LogBytes log = SmallLog();
    QByteArray field;
    AppendLe<quint32>(field, size);
    QByteArray bytes = log.Bytes();
    bytes.replace(static_cast<int>(log.Start(3)) + 32, 4, field);
    QVERIFY(WriteWhole(m_path, bytes));
    QCOMPARE(Difference(m_path), QString());
}

void tst_ZrLogScan::agreesOnHeadersAtBlockEdges()
{
    // The first block has 64 KiB: the second item's header is moved across its end byte by byte.
    for (int shift = -42; shift <= 42; ++shift) {
        LogBytes log;
        log.Add(MakeItem(1, QByteArray(65536 - 48 - 40 + shift, 'a'))).Add(MakeItem(2, "b"));
        log.Add(MakeItem(3, "c"));
        QVERIFY(WriteWhole(m_path, log.Bytes()));
        const QString difference = Difference(m_path);
        QVERIFY2(difference.isEmpty(), qPrintable(QStringLiteral("%1: %2").arg(shift).arg(difference)));
        QCOMPARE(ByScan(m_path).items.size(), 3);
    }
}

void tst_ZrLogScan::agreesOnPayloadsAroundTheSkipLimit()
{
    LogBytes log;
    for (const int size :
        {300000, 10, 262144, 262143, 262145, 0, 1048576, 1048575, 4096, 65536, 2000000, 1}) {
        log.Add(MakeItem(5, QByteArray(size, 'p')));
        log.Add(MakeItem(6, "small"));
    }
    QVERIFY(WriteWhole(m_path, log.Bytes()));
    QCOMPARE(Difference(m_path), QString());
    QCOMPARE(ByScan(m_path).items.size(), 24);
    // The same with the end cut off in the last large payload.
    QVERIFY(WriteWhole(m_path, log.Bytes().left(log.Bytes().size() - 1000)));
    QCOMPARE(Difference(m_path), QString());
}

void tst_ZrLogScan::agreesOnManySmallItems()
{
    LogBytes log;
    for (int i = 0; i < 60000; ++i)
        log.Add(MakeItem(static_cast<quint16>(i % 70), QByteArray(i % 97, 'q'), static_cast<quint16>(i)));
    QVERIFY(log.Size() > 4 * 1024 * 1024); // several of the largest blocks
    QVERIFY(WriteWhole(m_path, log.Bytes()));
    QCOMPARE(Difference(m_path), QString());
    QCOMPARE(ByScan(m_path).items.size(), 60000);
}

void tst_ZrLogScan::agreesOnRandomDamage()
{
    quint32 seed = 12345;
    const auto random = [&seed](int below) {
        seed = seed * 1664525u + 1013904223u;
        return static_cast<int>((seed >> 8) % static_cast<quint32>(below));
    };
    LogBytes log;
    for (int i = 0; i < 20; ++i)
        log.Add(MakeItem(static_cast<quint16>(i), QByteArray(i * 3, static_cast<char>(i))));
    for (int trial = 0; trial < 1500; ++trial) {
        QByteArray bytes = log.Bytes();
        for (int i = 0; i < 3; ++i)
            bytes[random(bytes.size())] = static_cast<char>(random(256));
        QVERIFY(WriteWhole(m_path, bytes));
        const QString difference = Difference(m_path);
        QVERIFY2(difference.isEmpty(), qPrintable(QStringLiteral("trial %1: %2").arg(trial).arg(difference)));
    }
}

void tst_ZrLogScan::saysWhyAFileCannotBeOpened()
{
    ZrLogScan scan;
    QVERIFY(!scan.Open(m_path));
    QCOMPARE(scan.State(), ZrLogScan::Unreadable);
    QCOMPARE(scan.Error(), QStringLiteral("No such file or directory"));
    QVERIFY(!scan.Open(m_folder->path()));
    QCOMPARE(scan.State(), ZrLogScan::Unreadable);
    QVERIFY(!scan.Error().isEmpty());
    ZrLogItem item;
    u64 pos = 7;
    QVERIFY(!scan.Next(item, pos));
    QCOMPARE(pos, u64(7));
}

void tst_ZrLogScan::hugePayloadsAreSkippedNotRead()
{
    // Three payloads of nearly 4 GiB that take no room on the disk.
    const qint64 large = 0xFFFFFFF0;
    Item item = MakeItem(70, QByteArray());
    QByteArray header = item.Header();
    QByteArray sizes;
    AppendLe<quint32>(sizes, static_cast<quint32>(large));
    header.replace(28, 4, sizes);
    header.replace(32, 4, sizes);
    QVERIFY(WriteWhole(m_path, FileHeader()));
    qint64 at = 48;
    for (int i = 0; i < 3; ++i) {
        QVERIFY(WriteSparse(m_path, at + 40 + large, at, header));
        at += 40 + large;
    }
    QVERIFY(AppendTo(m_path, MakeItem(3, "last").Bytes()));
    const qint64 before = BytesReadByProcess();
    const Reading found = ByScan(m_path);
    QCOMPARE(found.items.size(), 4);
    QCOMPARE(found.items.last(), ItemLine(static_cast<u64>(at), CRecType(0, 3), 0, 0, 0.0, 4));
    QCOMPARE(found.message, QString());
    QVERIFY(before > 0);
    QVERIFY(BytesReadByProcess() - before < 1024 * 1024);
}

void tst_ZrLogScan::payloadThatIsNotThereIsDamage()
{
    const LogBytes log = SmallLog();
    QVERIFY(WriteWhole(m_path, log.Bytes().left(static_cast<int>(log.Size()) - 1)));
    ZrLogScan scan;
    ZrLogItem item;
    u64 pos = 0;
    QVERIFY(scan.Open(m_path));
    while (scan.Next(item, pos)) { }
    QCOMPARE(scan.State(), ZrLogScan::Damaged);
    QCOMPARE(scan.Error(), QStringLiteral("Unable to read item payload"));
    QCOMPARE(scan.ErrorPos(), log.Start(3));
    QCOMPARE(pos, log.Start(2));
}

void tst_ZrLogScan::readsWhatTheLogHasGrownBy()
{
    // The end of the last payload arrives after the file was opened; the player takes it too, and then finds
    // itself behind the size it knows.
    const LogBytes log = SmallLog(1000);
    const QByteArray early = log.Bytes().left(static_cast<int>(log.Size()) - 500);
    const QByteArray late = log.Bytes().right(500);
    QVERIFY(WriteWhole(m_path, early));
    ZrLogScan scan;
    QVERIFY(scan.Open(m_path));
    ZrPlayer player;
    QVERIFY(player.OpenFile(m_path));
    QVERIFY(AppendTo(m_path, late));

    ZrLogItem item;
    u64 pos = 0;
    for (int i = 0; i < 4; ++i) {
        QVERIFY(scan.Next(item, pos));
        QVERIFY(player.ReadNextItem(true));
    }
    QCOMPARE(pos, log.Start(3));
    QVERIFY(!scan.Next(item, pos));
    MessageCatcher messages;
    QVERIFY(!player.ReadNextItem(true));
    QCOMPARE(QStringList(scan.Error()), messages.Take());
    QCOMPARE(scan.ErrorPos(), log.Size());
}

void tst_ZrLogScan::seeksToItems()
{
    const LogBytes log = SmallLog();
    QVERIFY(WriteWhole(m_path, log.Bytes()));
    ZrLogScan scan;
    QVERIFY(scan.Open(m_path));
    ZrLogItem item;
    u64 pos = 0;
    for (const int i : {3, 0, 2, 1, 2}) {
        QVERIFY(scan.SeekTo(log.Start(i)));
        QCOMPARE(scan.Pos(), log.Start(i));
        QVERIFY(scan.Next(item, pos));
        QCOMPARE(pos, log.Start(i));
    }
    while (scan.Next(item, pos)) { }
    QCOMPARE(scan.State(), ZrLogScan::AtEnd);
    QVERIFY(scan.SeekTo(log.Start(1))); // also after the end
    QVERIFY(scan.Next(item, pos));
    QCOMPARE(item.type, u16(2));
    QVERIFY(scan.SeekTo(log.Start(1) + 1)); // and after damage
    QVERIFY(!scan.Next(item, pos));
    QCOMPARE(scan.State(), ZrLogScan::Damaged);
    QVERIFY(scan.SeekTo(log.Start(0)));
    QCOMPARE(scan.Error(), QString());
    QVERIFY(scan.Next(item, pos));
    QCOMPARE(item.type, u16(7));
}

void tst_ZrLogScan::seekToAWrongPlaceShowsInNext_data()
{
    const u64 size = SmallLog().Size();
    QTest::addColumn<u64>("at");
    QTest::newRow("file header") << u64(0);
    QTest::newRow("inside a header") << u64(50);
    QTest::newRow("inside a payload") << u64(130);
    QTest::newRow("last 39 bytes") << size - 39;
    QTest::newRow("end") << size;
    QTest::newRow("beyond the end") << size + 1;
    QTest::newRow("far beyond") << (u64(1) << 62);
    QTest::newRow("2^63") << (u64(1) << 63);
    QTest::newRow("2^64 - 1") << ~u64(0);
}

void tst_ZrLogScan::seekToAWrongPlaceShowsInNext()
{
    QFETCH(u64, at);
    QVERIFY(WriteWhole(m_path, SmallLog().Bytes()));
    ZrLogScan scan;
    QVERIFY(scan.Open(m_path));
    QVERIFY(scan.SeekTo(at));
    ZrLogItem item;
    u64 pos = 0;
    QVERIFY(!scan.Next(item, pos));

    MessageCatcher messages;
    ZrPlayer player;
    QVERIFY(player.OpenFile(m_path));
    player.SeekTo(at);
    QVERIFY(!player.ReadNextItem(true));
    // Qt may have something to say about the seek before.
    const QStringList said = messages.Take();
    QCOMPARE(scan.Error(), said.isEmpty() ? QString() : said.last());
    QCOMPARE(scan.State(), at == SmallLog().Size() ? ZrLogScan::AtEnd : ZrLogScan::Damaged);
    if (scan.State() == ZrLogScan::Damaged)
        QCOMPARE(scan.ErrorPos(), at);
}

void tst_ZrLogScan::seekNeedsASoundLog()
{
    ZrLogScan scan;
    QVERIFY(!scan.SeekTo(48));
    QVERIFY(WriteWhole(m_path, QByteArray(100, 'x')));
    QVERIFY(!scan.Open(m_path));
    QVERIFY(!scan.SeekTo(48));
    QCOMPARE(scan.State(), ZrLogScan::Damaged);
    QVERIFY(WriteWhole(m_path, FileHeader().left(47)));
    QVERIFY(!scan.Open(m_path));
    QVERIFY(!scan.SeekTo(0));
}

void tst_ZrLogScan::nextNeedsAnOpenLog()
{
    ZrLogScan scan;
    ZrLogItem item;
    u64 pos = 0;
    QVERIFY(!scan.Next(item, pos));
    QCOMPARE(scan.State(), ZrLogScan::Closed);
}

void tst_ZrLogScan::cancelEndsTheScan()
{
    LogBytes log;
    for (int i = 0; i < 1000; ++i)
        log.Add(MakeItem(1, QByteArray(60, 'c')));
    QVERIFY(WriteWhole(m_path, log.Bytes()));
    ZrLogScan scan;
    CancelAt canceller(scan, 50);
    scan.progress = &canceller;
    QVERIFY(scan.Open(m_path));
    ZrLogItem item;
    u64 pos = 0;
    int items = 0;
    while (scan.Next(item, pos))
        ++items;
    QCOMPARE(scan.State(), ZrLogScan::Cancelled);
    QVERIFY2(items >= 499 && items <= 502, qPrintable(QString::number(items)));
    QCOMPARE(scan.Error(), QString());
}

void tst_ZrLogScan::progressRisesToAHundred()
{
    LogBytes log;
    for (int i = 0; i < 1000; ++i)
        log.Add(MakeItem(1, QByteArray(60, 'c')));
    QVERIFY(WriteWhole(m_path, log.Bytes()));
    ProgressList progress;
    ZrLogScan scan;
    scan.progress = &progress;
    QVERIFY(scan.Open(m_path));
    ZrLogItem item;
    u64 pos = 0;
    while (scan.Next(item, pos)) { }
    QCOMPARE(progress.values.size(), 101);
    for (int i = 0; i <= 100; ++i)
        QCOMPARE(progress.values.at(i), i);
}

void tst_ZrLogScan::oneScanReadsSeveralFiles()
{
    const QString other = m_folder->filePath(QStringLiteral("ü ñ.log"));
    QVERIFY(WriteWhole(m_path, SmallLog().Bytes() + "rest"));
    LogBytes second;
    second.Add(MakeItem(11, "1"));
    QVERIFY(WriteWhole(other, second.Bytes()));
    ZrLogScan scan;
    ZrLogItem item;
    u64 pos = 0;
    QVERIFY(scan.Open(m_path));
    while (scan.Next(item, pos)) { }
    QCOMPARE(scan.State(), ZrLogScan::Damaged);
    QVERIFY(scan.Open(other));
    QCOMPARE(scan.Error(), QString());
    QVERIFY(scan.Next(item, pos));
    QCOMPARE(item.type, u16(11));
    QVERIFY(!scan.Next(item, pos));
    QCOMPARE(scan.State(), ZrLogScan::AtEnd);
}

void tst_ZrLogScan::startsOfPayloads()
{
    const LogBytes log = SmallLog();
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.log"));
    QVERIFY(WriteWhole(path, log.Bytes()));
    ZrLogScan scan;
    QVERIFY(scan.PayloadStart(10).empty());
    QVERIFY(scan.Open(path));
    QVERIFY(scan.PayloadStart(10).empty());
    ZrLogItem item;
    u64 pos = 0;
    QVERIFY(scan.Next(item, pos)); // an empty item
    QVERIFY(scan.PayloadStart(10).empty());
    QVERIFY(scan.Next(item, pos));
    QCOMPARE(Bytes(scan.PayloadStart(5)), QByteArray("$GPGL"));
    QCOMPARE(Bytes(scan.PayloadStart(11)), QByteArray("$GPGLL,1*00"));
    QCOMPARE(Bytes(scan.PayloadStart(4000000000U)), QByteArray("$GPGLL,1*00"));
    QVERIFY(scan.PayloadStart(0).empty());
    QVERIFY(scan.Next(item, pos)); // as it is stored
    QCOMPARE(Bytes(scan.PayloadStart(1000)), qCompress(QByteArray(500, 'x'), 1));
    QVERIFY(scan.Next(item, pos));
    QCOMPARE(Bytes(scan.PayloadStart(3)), QByteArray("zzz"));
    QVERIFY(!scan.Next(item, pos));
    QCOMPARE(Bytes(scan.PayloadStart(3)), QByteArray("zzz")); // still the item given last
    QVERIFY(scan.SeekTo(log.Start(1)));
    QVERIFY(scan.PayloadStart(3).empty());
    QVERIFY(scan.Next(item, pos));
    QCOMPARE(Bytes(scan.PayloadStart(3)), QByteArray("$GP"));
    QVERIFY(scan.Open(path));
    QVERIFY(scan.PayloadStart(3).empty());
}

/// Payloads of all sizes around those of the blocks; looking at their starts does not disturb the walk.
void tst_ZrLogScan::startsOfLargePayloads()
{
    LogBytes log;
    std::vector<QByteArray> payloads;
    for (int i = 0; i < 60; ++i) {
        QByteArray payload(i % 3 == 0 ? 700000 : 65400 + i, static_cast<char>('a' + i % 26));
        payload.replace(0, 4, QByteArray::number(1000 + i));
        payloads.push_back(payload);
        log.Add(MakeItem(9, payload));
    }
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.log"));
    QVERIFY(WriteWhole(path, log.Bytes()));
    ZrLogScan scan;
    QVERIFY(scan.Open(path));
    ZrLogItem item;
    u64 pos = 0;
    for (int i = 0; i < 60; ++i) {
        QVERIFY(scan.Next(item, pos));
        QCOMPARE(pos, log.Start(i));
        const u32 count = i % 2 == 0 ? 24 : 100000;
        QCOMPARE(Bytes(scan.PayloadStart(count)),
            payloads[static_cast<std::size_t>(i)].left(static_cast<int>(count)));
    }
    QVERIFY(!scan.Next(item, pos));
    QCOMPARE(scan.State(), ZrLogScan::AtEnd);
}

QTEST_GUILESS_MAIN(tst_ZrLogScan)
#include "tst_ZrLogScan.moc"
