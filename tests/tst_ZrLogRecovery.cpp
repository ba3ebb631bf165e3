// A small log with one item of every kind is damaged in every way at every place. What must be left of it
// follows from which of its bytes were touched, and is compared item by item.

#include "PlayerDamages.h"
#include "ZrKit/review/ZrLogRecovery.h"

#include <QDir>

#include <algorithm>
#include <random>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

constexpr int fileHeaderSize = 48;
constexpr int itemHeaderSize = 40;
constexpr int sector = 512;
const char* const startHex = "dd cc bb aa 28 00 00 00"; ///< of every item

/// Bytes that do not repeat and hold no magic number.
QByteArray Noise(int size)
{
    QByteArray bytes(size, '\0');
    quint32 state = static_cast<quint32>(size) * 2654435761U + 1U;
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    return bytes.replace('\xDD', "\x11").left(size);
}

Item At(double time, quint16 type, const QByteArray& payload)
{
    Item item = MakeItem(type, payload, static_cast<quint16>(type + 1000));
    item.time = time;
    item.format = 3;
    item.sub = 2;
    return item;
}

/// At \p level 0 the data stand in clear in their zlib stream.
Item Packed(double time, quint16 type, const QByteArray& data, int level = 1)
{
    Item item = At(time, type, qCompress(data, level));
    item.compressed = true;
    item.dataSize = static_cast<quint32>(data.size());
    return item;
}

/// A whole item as it may lie in a payload; such a one is older than what contains it.
QByteArray Fake()
{
    return At(40.0, 77, "inner").Bytes();
}

/// Plain, compressed, empty, one with a whole item inside, a compressed one with a whole item in clear,
/// larger than a sector, empty again, the last one plain.
QVector<Item> SmallLog(int firstPayload = 21)
{
    return {
        At(100.0, 4, Noise(firstPayload)),
        Packed(101.0, 5, QByteArray("abcabcabcabcabcabcabcabcabcabcabcabc")),
        At(102.0, 6, ""),
        At(103.0, 7, "xx" + Fake() + "yyy"),
        Packed(104.0, 8, Noise(90) + Fake() + Noise(30), 0),
        At(105.0, 9, Noise(700)),
        At(106.0, 10, ""),
        At(107.0, 11, "A"),
        At(108.0, 12, Noise(150)),
    };
}

QByteArray Join(const QVector<Item>& items, double created = 1234.5)
{
    QByteArray bytes = FileHeader(created);
    for (const Item& item : items)
        bytes += item.Bytes();
    return bytes;
}

QVector<Item> Without(QVector<Item> items, int index)
{
    items.removeAt(index);
    return items;
}

/// Where the items begin, and behind them where the log ends.
QVector<int> Starts(const QVector<Item>& items)
{
    QVector<int> starts{fileHeaderSize};
    for (const Item& item : items)
        starts << starts.last() + itemHeaderSize + item.payload.size();
    return starts;
}

/// The items of a log as byte strings; empty, with `sound` false, when it is not one from end to end.
QVector<QByteArray> Split(const QByteArray& log, bool& sound)
{
    QVector<QByteArray> items;
    sound = log.size() >= fileHeaderSize && log.startsWith(FileHeader().left(24));
    int at = fileHeaderSize;
    while (sound && at < log.size()) {
        const QByteArray header = log.mid(at, itemHeaderSize);
        sound = header.size() == itemHeaderSize && header.startsWith(FromHex(startHex));
        const qint64 stored = sound ? LeAt<quint32>(header, 32) : 0;
        sound = sound && stored <= log.size() - at - itemHeaderSize
            && (LeAt<quint16>(header, 24) == 1 || LeAt<quint32>(header, 28) == stored);
        if (sound)
            items << log.mid(at, itemHeaderSize + static_cast<int>(stored));
        at += itemHeaderSize + static_cast<int>(stored);
    }
    return sound ? items : QVector<QByteArray>();
}

/// Memory instead of a disk where there is some: thousands of files are written.
QString FastFolder()
{
    const QString memory = QStringLiteral("/dev/shm");
    return QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
}

QString At(const char* what, int offset)
{
    return QStringLiteral("%1 at %2").arg(QLatin1String(what)).arg(offset);
}

} // namespace

Q_DECLARE_METATYPE(Damages)

class tst_ZrLogRecovery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void soundLogStaysAsItIs();
    void cutAtEveryOffset();
    void everyHeaderByteChanged();
    void everyPayloadByteChanged();
    void fileHeaderBytesChanged();
    void missingFileHeader();
    void zeroedSectors_data();
    void zeroedSectors();
    void insertedGarbage_data();
    void insertedGarbage();
    void removedBytes_data();
    void removedBytes();

    void placeholderAtTheEnd_data();
    void placeholderAtTheEnd();
    void placeholderBetweenItems();
    void doubtfulItems();
    void wrongSizeThatMeetsAnotherItem();
    void manyItemsWhereBytesAreMissing();
    void broughtTogether();
    void manyDamages_data();
    void manyDamages();

    void itemBetweenTwoDamages();
    void damagesOfThePlayer_data();
    void damagesOfThePlayer();

    void reportTellsRanges();
    void listenersAreTold();
    void rangesAreBounded();
    void reasonsHaveWords();

    void fourGigabyteSizes_data();
    void fourGigabyteSizes();
    void largeSparseFile();
    void itemsAcrossBlocks();
    void nothingToFind_data();
    void nothingToFind();
    void logWithoutItems();
    void progressIsTold();
    void cancelEndsTheRun();
    void cancelDuringTheRun();
    void sameFileIsRefused();
    void impossiblePaths();
    void fullDiskLeavesTheTarget();

private:
    bool Recover(const QByteArray& damaged, bool keepDoubtful = true);
    bool Plays();
    bool HoldsExactly(const QByteArray& expected, const QString& what);
    bool HoldsUntouched(const QByteArray& damaged, const QVector<bool>& touched, const QVector<Item>& items,
        const QString& what);

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_in;
    QString m_out;
    std::unique_ptr<ZrLogRecovery> m_recovery;
    QByteArray m_result; ///< of the last recovery
};

void tst_ZrLogRecovery::initTestCase()
{
    QVERIFY(!Noise(1000).contains('\xDD'));
    // The inner item lies there in clear, or the test of it would be none.
    QVERIFY(SmallLog().at(4).payload.contains(Fake()));
    bool sound = false;
    QCOMPARE(Split(Join(SmallLog()), sound).size(), SmallLog().size());
    QVERIFY(sound);
}

void tst_ZrLogRecovery::init()
{
    m_dir = std::make_unique<QTemporaryDir>(FastFolder() + QStringLiteral("/tst_ZrLogRecovery-XXXXXX"));
    QVERIFY(m_dir->isValid());
    m_in = m_dir->filePath(QStringLiteral("damaged.log"));
    m_out = m_dir->filePath(QStringLiteral("recovered.log"));
}

/// Runs a recovery of these bytes. The source must be as it was.
bool tst_ZrLogRecovery::Recover(const QByteArray& damaged, bool keepDoubtful)
{
    // Qt says a word about every payload that does not decompress.
    const MessageCatcher messages;
    QFile::remove(m_out);
    m_recovery = std::make_unique<ZrLogRecovery>();
    m_recovery->keepDoubtful = keepDoubtful;
    if (!WriteWhole(m_in, damaged))
        return false;
    const bool done = m_recovery->Run(m_in, m_out);
    m_result = ReadWhole(m_out);
    return done == QFile::exists(m_out) && ReadWhole(m_in) == damaged && done == m_recovery->Error().isEmpty()
        && done;
}

/// Whether a player delivers every item of the result and comes to its end without a complaint.
bool tst_ZrLogRecovery::Plays()
{
    MessageCatcher messages;
    ZrPlayer player;
    SignalLog signals_(player, &messages);
    u64 items = 0;
    if (!player.OpenFile(m_out))
        return false;
    while (player.ReadNextItem(true))
        ++items;
    return items == m_recovery->Report().kept && signals_.lines.last() == QStringLiteral("EndOfFile, open");
}

bool tst_ZrLogRecovery::HoldsExactly(const QByteArray& expected, const QString& what)
{
    if (m_result == expected && Plays())
        return true;
    qWarning("%s: %d bytes instead of %d", qPrintable(what), m_result.size(), expected.size());
    return false;
}

/// Whether every untouched item is there, in order, and beside them at most the touched ones, each with its
/// own beginning.
bool tst_ZrLogRecovery::HoldsUntouched(
    const QByteArray& damaged, const QVector<bool>& touched, const QVector<Item>& items, const QString& what)
{
    bool sound = false;
    const QVector<QByteArray> found = Split(m_result, sound);
    const auto fail = [&](const char* why, int index) {
        qWarning("%s: %s %d, found %d items", qPrintable(what), why, index, found.size());
        return false;
    };
    if (!sound || !Plays())
        return fail("the result does not play", 0);
    QVector<QByteArray> originals;
    for (const Item& item : items)
        originals << item.Bytes();
    int at = 0;
    for (int i = 0; i < items.size(); ++i) {
        const QByteArray& own = originals.at(i);
        const bool here = at < found.size() && found.at(at) == own;
        if (!touched.at(i) && !here)
            return fail("missing item", i);
        // A touched one may be there with what stands behind the beginning of its header.
        const bool altered = !here && touched.at(i) && at < found.size() && !originals.contains(found.at(at))
            && found.at(at).startsWith(own.left(8)) && damaged.contains(found.at(at).mid(itemHeaderSize));
        if (here || altered)
            ++at;
    }
    return at == found.size() || fail("something false behind item", at);
}

void tst_ZrLogRecovery::soundLogStaysAsItIs()
{
    const QByteArray log = Join(SmallLog());
    for (const bool keepDoubtful : {true, false}) {
        QVERIFY(Recover(log, keepDoubtful));
        QVERIFY(HoldsExactly(log, QStringLiteral("sound")));
        const ZrLogRecovery::Result& report = m_recovery->Report();
        QCOMPARE(m_recovery->State(), ZrLogRecovery::Done);
        QCOMPARE(report.kept, u64(9));
        QCOMPARE(report.repaired, u64(0));
        QCOMPARE(report.doubtful, u64(0));
        QCOMPARE(report.sourceBytes, u64(log.size()));
        QCOMPARE(report.bytesLost, u64(0));
        QCOMPARE(report.rangeCount, u64(0));
        QVERIFY(report.fileHeaderSound);
    }
}

void tst_ZrLogRecovery::cutAtEveryOffset()
{
    const QVector<Item> items = SmallLog();
    const QVector<int> starts = Starts(items);
    const QByteArray log = Join(items);
    for (int cut = fileHeaderSize; cut < log.size(); ++cut) {
        const int whole
            = static_cast<int>(std::upper_bound(starts.begin(), starts.end(), cut) - starts.begin()) - 1;
        for (const bool keepDoubtful : {true, false}) {
            QVERIFY2(Recover(log.left(cut), keepDoubtful), qPrintable(At("cut", cut)));
            QVERIFY(HoldsExactly(log.left(starts.at(whole)), At("cut", cut)));
            QCOMPARE(m_recovery->Report().bytesLost, u64(cut - starts.at(whole)));
            QCOMPARE(m_recovery->Report().doubtful, u64(0));
        }
    }
}

void tst_ZrLogRecovery::everyHeaderByteChanged()
{
    const QVector<Item> items = SmallLog();
    const QVector<int> starts = Starts(items);
    const QByteArray log = Join(items);
    // Type, format, sub-type, time and source may be anything: such a change cannot be seen.
    const auto isFree = [](int offset) {
        return (offset >= 8 && offset < 14) || (offset >= 16 && offset < 24) || offset == 26 || offset == 27;
    };
    for (int index = 0; index < items.size(); ++index) {
        for (int offset = 0; offset < itemHeaderSize; ++offset) {
            for (const int mask : {0x01, 0x02, 0x10, 0x80, 0x7E, 0xFF}) {
                const QByteArray damaged = Flipped(log, starts.at(index) + offset, mask);
                const QString what
                    = QStringLiteral("item %1 byte %2 mask %3").arg(index).arg(offset).arg(mask);
                QVERIFY2(Recover(damaged, false), qPrintable(what));
                const QByteArray expected = isFree(offset) ? damaged : Join(Without(items, index));
                QVERIFY(HoldsExactly(expected, what));
                QCOMPARE(m_recovery->Report().bytesLost, u64(log.size() - expected.size()));
                QCOMPARE(m_recovery->Report().rangeCount, u64(isFree(offset) ? 0 : 1));
            }
        }
    }
}

void tst_ZrLogRecovery::everyPayloadByteChanged()
{
    const QVector<Item> items = SmallLog();
    const QVector<int> starts = Starts(items);
    const QByteArray log = Join(items);
    int lost = 0;
    const MessageCatcher messages;
    for (int index = 0; index < items.size(); ++index) {
        const Item& item = items.at(index);
        for (int offset = 0; offset < item.payload.size(); ++offset) {
            const QByteArray payload = Flipped(item.payload, offset, 0x55);
            const QByteArray damaged = Flipped(log, starts.at(index) + itemHeaderSize + offset, 0x55);
            // What a plain payload was cannot be known. A compressed one is worth what it decompresses to.
            const bool kept = !item.compressed
                || (payload.left(4) == item.payload.left(4)
                    && qUncompress(payload) == qUncompress(item.payload));
            lost += kept ? 0 : 1;
            QVERIFY(Recover(damaged, false));
            QVERIFY(HoldsExactly(kept ? damaged : Join(Without(items, index)),
                QStringLiteral("item %1 payload byte %2").arg(index).arg(offset)));
        }
    }
    QVERIFY(lost > 150);
}

void tst_ZrLogRecovery::fileHeaderBytesChanged()
{
    const QVector<Item> items = SmallLog();
    const QByteArray log = Join(items);
    for (int offset = 0; offset < fileHeaderSize; ++offset) {
        const QByteArray damaged = Flipped(log, offset, 0x41);
        const bool sound = offset >= 8;
        QVERIFY(Recover(damaged));
        // A damaged header is written anew; the log then begins with its first item.
        const double created = sound ? DoubleAt(damaged, 40) : items.first().time;
        QVERIFY(HoldsExactly(Join(items, created), At("file header", offset)));
        QCOMPARE(m_recovery->Report().fileHeaderSound, sound);
        QCOMPARE(m_recovery->Report().bytesLost, u64(sound ? 0 : fileHeaderSize));
    }
}

void tst_ZrLogRecovery::missingFileHeader()
{
    const QVector<Item> items = SmallLog();
    const QByteArray body = Join(items).mid(fileHeaderSize);
    const double created = items.first().time;
    for (int left = 0; left <= fileHeaderSize; ++left) {
        const QByteArray damaged = FileHeader(5.0).right(left) + body;
        QVERIFY(Recover(damaged));
        const bool whole = left == fileHeaderSize;
        QVERIFY(HoldsExactly(Join(items, whole ? 5.0 : created), At("file header of bytes", left)));
        QCOMPARE(m_recovery->Report().bytesLost, u64(whole ? 0 : left));
    }
    // Not a byte of it is right.
    QVERIFY(Recover(QByteArray(fileHeaderSize, '\xAB') + body));
    QVERIFY(HoldsExactly(Join(items, created), QStringLiteral("overwritten")));
    QVERIFY(Recover(QByteArray(3000, '\0') + body));
    QVERIFY(HoldsExactly(Join(items, created), QStringLiteral("far behind")));
    // The only item there is.
    QVERIFY(Recover(items.last().Bytes()));
    QVERIFY(HoldsExactly(Join({items.last()}, items.last().time), QStringLiteral("one item")));
}

void tst_ZrLogRecovery::zeroedSectors_data()
{
    QTest::addColumn<int>("from");
    for (int from = 0; from < sector; from += 64)
        QTest::newRow(qPrintable(QStringLiteral("shifted by %1 and more").arg(from))) << from;
}

/// The log is shifted against the sectors by the size of its first payload.
void tst_ZrLogRecovery::zeroedSectors()
{
    QFETCH(int, from);
    for (int shift = from; shift < from + 64; ++shift) {
        const QVector<Item> items = SmallLog(shift);
        const QVector<int> starts = Starts(items);
        const QByteArray log = Join(items);
        for (int at = 0; at < log.size(); at += sector) {
            const int end = std::min(at + sector, log.size());
            const QByteArray damaged = Patched(log, at, QByteArray(end - at, '\0'));
            QVector<bool> touched;
            for (int i = 0; i < items.size(); ++i) {
                const int start = starts.at(i);
                const bool changed = damaged.mid(start, starts.at(i + 1) - start) != items.at(i).Bytes();
                // An empty header whose last, zero bytes are in the hole may have had sizes.
                const bool unknowable = items.at(i).payload.isEmpty() && at > start && at < starts.at(i + 1);
                touched << (changed || unknowable);
            }
            const QString what = QStringLiteral("shift %1 sector %2").arg(shift).arg(at / sector);
            QVERIFY2(Recover(damaged), qPrintable(what));
            QVERIFY(HoldsUntouched(damaged, touched, items, what));
            QCOMPARE(m_recovery->Report().repaired, u64(0));
        }
    }
}

void tst_ZrLogRecovery::insertedGarbage_data()
{
    QTest::addColumn<QByteArray>("garbage");
    QTest::newRow("one byte") << QByteArray("\x07");
    QTest::newRow("three zeros") << QByteArray(3, '\0');
    QTest::newRow("first bytes of the magic") << QByteArray(5, '\xDD');
    QTest::newRow("magic alone") << QByteArray::fromHex("ddccbbaa");
    QTest::newRow("as long as a header") << Noise(40);
    QTest::newRow("longer than an item") << Noise(130);
    QTest::newRow("magic in the middle") << Noise(20) + FromHex(startHex) + Noise(50);
    QTest::newRow("header of gigabytes")
        << At(0.0, 1, "").Header().replace(28, 8, QByteArray::fromHex("ffffff7fffffff7f")) + Noise(9);
    QTest::newRow("sector") << Noise(sector);
}

void tst_ZrLogRecovery::insertedGarbage()
{
    QFETCH(QByteArray, garbage);
    const QVector<Item> items = SmallLog();
    const QVector<int> starts = Starts(items);
    const QByteArray log = Join(items);
    for (int at = fileHeaderSize; at <= log.size(); ++at) {
        const QByteArray damaged = QByteArray(log).insert(at, garbage);
        QVector<bool> touched;
        for (int i = 0; i < items.size(); ++i) {
            const int start = starts.at(i);
            const int end = starts.at(i + 1);
            // An empty item with unknown bytes behind it is what an interrupted writer leaves.
            const bool placeholder = items.at(i).payload.isEmpty() && at >= end && at < end + 8;
            touched << ((at > start && at < end) || placeholder);
        }
        QVERIFY2(Recover(damaged), qPrintable(At("inserted", at)));
        QVERIFY(HoldsUntouched(damaged, touched, items, At("inserted", at)));
        // Whoever wants no doubtful items loses at most the one before the damage, and gets nothing wrong
        // but placeholders.
        QVERIFY(Recover(damaged, false));
        for (int i = 0; i < items.size(); ++i) {
            const int end = starts.at(i + 1);
            if (at >= end && at < end + 8)
                touched[i] = true;
        }
        QVERIFY(HoldsUntouched(damaged, touched, items, At("inserted, strict", at)));
        bool sound = false;
        u64 foreign = 0;
        for (const QByteArray& item : Split(m_result, sound))
            foreign += log.contains(item) ? 0 : 1;
        // What looks like the beginning of a header just where the item says it ends, confirms it.
        const bool misled = garbage.mid(20, 8) == FromHex(startHex) && starts.contains(at + 20);
        QVERIFY(foreign == m_recovery->Report().repaired || misled);
    }
}

void tst_ZrLogRecovery::removedBytes_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {1, 2, 7, 39, 40, 41, 64, 100, 149})
        QTest::newRow(qPrintable(QStringLiteral("%1 bytes").arg(count))) << count;
}

void tst_ZrLogRecovery::removedBytes()
{
    QFETCH(int, count);
    const QVector<Item> items = SmallLog();
    const QVector<int> starts = Starts(items);
    const QByteArray log = Join(items);
    int sounds = 0;
    for (int at = fileHeaderSize; at + count <= log.size(); ++at) {
        const QByteArray damaged = QByteArray(log).remove(at, count);
        const QString what = At("removed", at);
        QVERIFY2(Recover(damaged), qPrintable(what));
        bool sound = false;
        Split(damaged, sound);
        if (sound && m_result == damaged) {
            // So many bytes are missing that sizes meet: nothing shows.
            ++sounds;
            QVERIFY(Plays());
            continue;
        }
        QVector<bool> touched;
        for (int i = 0; i < items.size(); ++i) {
            const bool overlaps = at < starts.at(i + 1) && at + count > starts.at(i);
            const bool placeholder
                = items.at(i).payload.isEmpty() && at >= starts.at(i + 1) && at < starts.at(i + 1) + 8;
            // As many bytes of one item are missing as those behind it have: its sizes lead right behind
            // them.
            const int first
                = static_cast<int>(std::upper_bound(starts.begin(), starts.end(), at) - starts.begin());
            const bool swallowed = at + count <= starts.at(first) && starts.at(i) >= starts.at(first)
                && starts.at(i + 1) <= starts.at(first) + count && starts.contains(starts.at(first) + count);
            touched << (overlaps || placeholder || swallowed);
        }
        QVERIFY(HoldsUntouched(damaged, touched, items, what));
    }
    // Payloads that lose as much as the empty item behind them has; two halves of headers that make a whole
    // one.
    QVERIFY2(sounds <= (count == itemHeaderSize ? 800 : itemHeaderSize), qPrintable(QString::number(sounds)));
}

void tst_ZrLogRecovery::placeholderAtTheEnd_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < SmallLog().size(); ++i)
        QTest::newRow(qPrintable(QStringLiteral("item %1").arg(i))) << i;
}

/// The writer was killed behind any byte of the payload.
void tst_ZrLogRecovery::placeholderAtTheEnd()
{
    QFETCH(int, index);
    const QVector<Item> before = SmallLog().mid(0, index);
    const Item item = SmallLog().at(index);
    const QByteArray header = item.Header().replace(28, 8, QByteArray(8, '\0'));
    for (int size = 0; size <= item.payload.size(); ++size) {
        QVector<Item> expected = before;
        if (!item.compressed) {
            Item part = item;
            part.payload.truncate(size);
            expected << part;
        } else if (size == item.payload.size()) {
            expected << item;
        }
        const QByteArray damaged = Join(before) + header + item.payload.left(size);
        QVERIFY(Recover(damaged, false));
        QVERIFY(HoldsExactly(Join(expected), At("payload of bytes", size)));
        const bool repaired = expected.size() > before.size() && size > 0;
        QCOMPARE(m_recovery->Report().repaired, u64(repaired ? 1 : 0));
        QCOMPARE(
            m_recovery->Report().bytesLost, u64(expected.size() > before.size() ? 0 : itemHeaderSize + size));
    }
}

void tst_ZrLogRecovery::placeholderBetweenItems()
{
    const QVector<Item> items = SmallLog();
    for (int index = 0; index + 1 < items.size(); ++index) {
        QByteArray damaged = FileHeader(1234.5);
        for (int i = 0; i < items.size(); ++i) {
            const QByteArray header = items.at(i).Header();
            damaged += i == index ? Patched(header, 28, QByteArray(8, '\0')) : header;
            damaged += items.at(i).payload;
        }
        QVERIFY(Recover(damaged, false));
        QVERIFY(HoldsExactly(Join(items), At("placeholder", index)));
        QCOMPARE(m_recovery->Report().repaired, u64(items.at(index).payload.isEmpty() ? 0 : 1));
    }
    // Between two logs that were joined: the file header is no payload.
    const QByteArray header = Patched(items.first().Header(), 28, QByteArray(8, '\0'));
    QVERIFY(Recover(FileHeader(1234.5) + header + items.first().payload + Join(items.mid(5))));
    QVERIFY(HoldsExactly(Join(items.mid(0, 1) + items.mid(5)), QStringLiteral("joined")));
    // Compressed, with more behind it than its stream.
    const Item packed = items.at(1);
    const QByteArray hollow = Patched(packed.Header(), 28, QByteArray(8, '\0'));
    QVERIFY(
        Recover(FileHeader(1234.5) + hollow + packed.payload + "x" + Join(items.mid(5)).mid(fileHeaderSize)));
    QVERIFY(HoldsExactly(Join(items.mid(5)), QStringLiteral("more than the stream")));
}

void tst_ZrLogRecovery::doubtfulItems()
{
    const QVector<Item> items = SmallLog();
    const QByteArray log = Join(items);
    const int end = Starts(items).at(1);
    // Between two items, and inside the payload of the first: nobody can tell.
    const QByteArray between = QByteArray(log).insert(end, "garbage");
    const QByteArray inside = QByteArray(log).insert(end - 1, "garbage");
    QVERIFY(Recover(between));
    QVERIFY(HoldsExactly(log, QStringLiteral("between")));
    QCOMPARE(m_recovery->Report().doubtful, u64(1));
    QCOMPARE(m_recovery->Report().bytesLost, u64(7));
    QCOMPARE(m_recovery->Report().rangeCount, u64(2));
    const ZrLogRecovery::Range& range = m_recovery->Report().ranges.at(0);
    QCOMPARE(range.offset, u64(fileHeaderSize));
    QCOMPARE(range.length, u64(end - fileHeaderSize));
    QCOMPARE(range.reason, ZrLogRecovery::DoubtfulEnd);
    QVERIFY(!range.lost);

    QVERIFY(Recover(inside));
    QCOMPARE(m_result.size(), log.size());
    QCOMPARE(m_recovery->Report().doubtful, u64(1));
    for (const QByteArray& damaged : {between, inside}) {
        QVERIFY(Recover(damaged, false));
        QVERIFY(HoldsExactly(Join(items.mid(1)), QStringLiteral("strict")));
        QCOMPARE(m_recovery->Report().doubtful, u64(1));
        QVERIFY(m_recovery->Report().ranges.at(0).lost);
        QCOMPARE(m_recovery->Report().bytesLost, u64(damaged.size() - m_result.size()));
    }
}

void tst_ZrLogRecovery::wrongSizeThatMeetsAnotherItem()
{
    const QVector<Item> items = SmallLog();
    const QVector<int> starts = Starts(items);
    const QByteArray log = Join(items);
    const auto withSize = [&](int index, int field, int size) {
        QByteArray bytes;
        AppendLe<quint32>(bytes, static_cast<quint32>(size));
        return Patched(log, starts.at(index) + field, bytes);
    };
    // A compressed item that claims to end where the item after the next one begins: zlib would not notice.
    const int swallowing = starts.at(3) - starts.at(1) - itemHeaderSize;
    QVERIFY(Recover(withSize(1, 32, swallowing), false));
    QVERIFY(HoldsExactly(Join(Without(items, 1)), QStringLiteral("compressed")));
    // A plain item of which only one size says so.
    const int plain = starts.at(5) - starts.at(3) - itemHeaderSize;
    for (const int field : {28, 32}) {
        QVERIFY(Recover(withSize(3, field, plain), false));
        QVERIFY(HoldsExactly(Join(Without(items, 3)), At("plain", field)));
        // And one that says it ends where the item inside it begins.
        QVERIFY(Recover(withSize(3, field, 2), false));
        QVERIFY(HoldsExactly(Join(Without(items, 3)), At("inside", field)));
    }
}

/// So much of a large item is missing that its size reaches over thousands of those behind it.
void tst_ZrLogRecovery::manyItemsWhereBytesAreMissing()
{
    const Item large = At(1.0, 17, Noise(300000));
    const Item packed = Packed(1.0, 17, Noise(300000), 0);
    QVector<Item> small;
    for (int i = 0; i < 6000; ++i)
        small << At(2.0 + i, 4, Noise(i % 7));
    const QByteArray behind = Join(small).mid(fileHeaderSize);
    for (const Item& item : {large, packed}) {
        QVERIFY(Recover(FileHeader(1234.5) + item.Bytes().left(100000) + behind, false));
        QVERIFY(HoldsExactly(Join(small), QStringLiteral("bytes are missing")));
        QCOMPARE(m_recovery->Report().rangeCount, u64(1));
    }
}

void tst_ZrLogRecovery::broughtTogether()
{
    const QVector<Item> items = SmallLog();
    QVERIFY(Recover(Join(items) + Join(items, 9.0)));
    QVERIFY(HoldsExactly(Join(items + items), QStringLiteral("two logs")));
    QCOMPARE(m_recovery->Report().rangeCount, u64(1));
    QCOMPARE(m_recovery->Report().ranges.at(0).reason, ZrLogRecovery::InnerFileHeader);
    QCOMPARE(m_recovery->Report().bytesLost, u64(fileHeaderSize));
    // The first one was cut.
    const QByteArray cut = Join(items).chopped(10);
    QVERIFY(Recover(cut + Join(items, 9.0)));
    QVERIFY(HoldsExactly(Join(items.mid(0, 8) + items), QStringLiteral("cut and joined")));
}

void tst_ZrLogRecovery::manyDamages_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 300; ++seed)
        QTest::newRow(qPrintable(QStringLiteral("seed %1").arg(seed))) << seed;
}

/// Whatever happened: the result plays, is a result of its own, and the numbers add up.
void tst_ZrLogRecovery::manyDamages()
{
    QFETCH(int, seed);
    std::mt19937 random(static_cast<unsigned>(seed));
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    QByteArray bytes = Join(SmallLog(seed) + SmallLog(seed / 2));
    for (int damages = 1 + below(8); damages > 0; --damages) {
        const int at = below(bytes.size());
        switch (below(5)) {
        case 0:
            bytes = Flipped(bytes, at, 1 + below(255));
            break;
        case 1:
            bytes = Patched(bytes, at, QByteArray(std::min(below(200), bytes.size() - at), '\0'));
            break;
        case 2:
            bytes.insert(at, Noise(below(100)));
            break;
        case 3:
            bytes.insert(at, Fake());
            break;
        default:
            bytes.remove(at, below(100));
        }
    }
    for (const bool keepDoubtful : {true, false}) {
        QVERIFY(Recover(bytes, keepDoubtful));
        QVERIFY(Plays());
        const ZrLogRecovery::Result first = m_recovery->Report();
        u64 lost = 0;
        u64 end = 0;
        for (const ZrLogRecovery::Range& range : first.ranges) {
            QVERIFY(range.offset >= end);
            end = range.offset + range.length;
            lost += range.lost ? range.length : 0;
        }
        QVERIFY(end <= u64(bytes.size()));
        QCOMPARE(first.bytesLost, lost);
        const u64 header = first.fileHeaderSound ? fileHeaderSize : 0;
        QCOMPARE(u64(m_result.size()) - fileHeaderSize, u64(bytes.size()) - header - lost);
        const QByteArray result = m_result;
        QVERIFY(Recover(result, keepDoubtful));
        QCOMPARE(m_result, result);
        QCOMPARE(m_recovery->Report().rangeCount, u64(0));
    }
}

/// A broken header before it and garbage behind it: no run of items leads there or from there.
void tst_ZrLogRecovery::itemBetweenTwoDamages()
{
    const QVector<Item> items = SmallLog();
    const QVector<int> starts = Starts(items);
    int tried = 0;
    for (int i = 0; i + 2 < items.size(); ++i) {
        if (items.at(i).payload.isEmpty() || items.at(i + 1).payload.isEmpty())
            continue;
        ++tried;
        const QByteArray damaged
            = Flipped(Join(items), starts.at(i), 0x01).insert(starts.at(i + 2), "garbage");
        QVERIFY(Recover(damaged));
        QVERIFY(HoldsExactly(Join(Without(items, i)), At("broken item", i)));
        QCOMPARE(m_recovery->Report().bytesLost, u64(starts.at(i + 1) - starts.at(i) + 7));
    }
    QCOMPARE(tried, 3);
}

void tst_ZrLogRecovery::damagesOfThePlayer_data()
{
    QTest::addColumn<Damages>("damages");
    QTest::newRow("cutAtEveryOffset") << CutAtEveryOffset();
    QTest::newRow("everyHeaderByteChanged") << EveryHeaderByteChanged();
    QTest::newRow("everySizeOfTheLastPayload") << EverySizeOfTheLastPayload();
    QTest::newRow("zerosAndNoiseBehindTheItems") << ZerosAndNoiseBehindTheItems();
    QTest::newRow("claimOf4GibibytesAllocatesNothing") << ClaimOf4Gibibytes();
}

/// Every log that tst_ZrPlayerDamage plays: all items of which no byte was touched are there, byte by byte
/// and in order, and nothing else but the touched one with what the damaged log has in its place.
void tst_ZrLogRecovery::damagesOfThePlayer()
{
    QFETCH(Damages, damages);
    const QVector<int> starts = Starts(damages.items);
    int intactItems = 0;
    for (int number = 0; number < damages.logs.size(); ++number) {
        const QByteArray& damaged = damages.logs.at(number);
        const QString what = QStringLiteral("damage %1").arg(number);
        QVector<QByteArray> intact;
        QVector<QByteArray> all;
        for (int i = 0; i < damages.items.size(); ++i) {
            const QByteArray here = damaged.mid(starts.at(i), starts.at(i + 1) - starts.at(i));
            if (here == damages.items.at(i).Bytes())
                intact << here;
            all << here;
        }
        intactItems += intact.size();
        // A log that ends within its header holds nothing.
        if (damaged.size() < fileHeaderSize) {
            QVERIFY2(!Recover(damaged) && intact.isEmpty(), qPrintable(what));
            continue;
        }
        QVERIFY2(Recover(damaged), qPrintable(what));
        QVERIFY2(Plays(), qPrintable(what));
        bool sound = false;
        QVector<QByteArray> found = Split(m_result, sound);
        QVERIFY2(sound, qPrintable(what));
        if (damaged.size() > starts.last() && found.size() == all.size() && found.last() != all.last()) {
            // An empty item with unknown bytes behind it is what an interrupted writer leaves.
            QCOMPARE(found.last().left(28), all.last().left(28));
            QCOMPARE(found.last().mid(itemHeaderSize), damaged.mid(starts.last()));
            QCOMPARE(m_recovery->Report().repaired, u64(1));
            found.last() = all.last();
        }
        QVERIFY2(found == intact || (found == all && intact.size() + 1 == all.size()), qPrintable(what));
    }
    QVERIFY(intactItems > 0 || damages.items.size() == 1);
}

/// Those who listen learn what the report counts, also the ranges that it does not list.
void tst_ZrLogRecovery::listenersAreTold()
{
    const QVector<Item> items = SmallLog();
    const QVector<int> starts = Starts(items);
    QByteArray damaged = Flipped(Join(items), starts.at(1), 0x01); // lost
    damaged = damaged.insert(starts.at(4), "garbage"); // the item before it is doubtful
    damaged.replace(starts.at(8) + 7 + 28, 8, QByteArray(8, '\0')); // interrupted
    QVERIFY(WriteWhole(m_in, damaged));
    ZrLogRecovery recovery;
    QStringList told;
    QByteArray kept = FileHeader(1234.5);
    recovery.itemKept = [&](const ZrLogRecovery::Kept& item) {
        told << QStringLiteral("item %1%2")
                    .arg(item.pos)
                    .arg(item.repaired ? QStringLiteral(" repaired") : QString());
        const auto header = item.header.Encode();
        kept
            += QByteArray(reinterpret_cast<const char*>(header.data()), itemHeaderSize) + Bytes(item.payload);
    };
    recovery.rangeFound = [&](const ZrLogRecovery::Range& range) {
        told << QStringLiteral("range %1 %2")
                    .arg(range.offset)
                    .arg(range.lost ? QStringLiteral("lost") : QStringLiteral("kept"));
    };
    QVERIFY(recovery.Run(m_in, m_out));
    QCOMPARE(kept, ReadWhole(m_out));
    QCOMPARE(kept, Join(Without(items, 1)));
    QCOMPARE(told,
        (QStringList{QStringLiteral("item %1").arg(starts.at(0)),
            QStringLiteral("range %1 lost").arg(starts.at(1)), QStringLiteral("item %1").arg(starts.at(2)),
            QStringLiteral("range %1 kept").arg(starts.at(3)), QStringLiteral("item %1").arg(starts.at(3)),
            QStringLiteral("range %1 lost").arg(starts.at(4)),
            QStringLiteral("item %1").arg(starts.at(4) + 7), QStringLiteral("item %1").arg(starts.at(5) + 7),
            QStringLiteral("item %1").arg(starts.at(6) + 7), QStringLiteral("item %1").arg(starts.at(7) + 7),
            QStringLiteral("item %1 repaired").arg(starts.at(8) + 7)}));
    // The same without writing.
    const QStringList before = told;
    told.clear();
    QVERIFY(recovery.Examine(m_in));
    QCOMPARE(told, before);
}

void tst_ZrLogRecovery::reportTellsRanges()
{
    const QVector<Item> items = SmallLog();
    const QVector<int> starts = Starts(items);
    QByteArray damaged = Join(items);
    damaged = Flipped(damaged, starts.at(0), 0x01);
    damaged = Flipped(damaged, starts.at(4) + itemHeaderSize + 60, 0x01);
    damaged.chop(3);
    QVERIFY(Recover(damaged));
    QVERIFY(HoldsExactly(Join(items.mid(1, 3) + items.mid(5, 3)), QStringLiteral("three damages")));
    const ZrLogRecovery::Result& report = m_recovery->Report();
    QCOMPARE(report.kept, u64(6));
    QCOMPARE(report.rangeCount, u64(3));

    const struct
    {
        int from;
        int to;
        ZrLogRecovery::eReason reason;
    } expected[] = {
        {starts.at(0), starts.at(1), ZrLogRecovery::BrokenHeader},
        {starts.at(4), starts.at(5), ZrLogRecovery::BrokenPayload},
        {starts.at(8), damaged.size(), ZrLogRecovery::CutOff},
    };

    u64 lost = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        QCOMPARE(report.ranges.at(i).offset, u64(expected[i].from));
        QCOMPARE(report.ranges.at(i).length, u64(expected[i].to - expected[i].from));
        QCOMPARE(report.ranges.at(i).reason, expected[i].reason);
        QVERIFY(report.ranges.at(i).lost);
        lost += report.ranges.at(i).length;
    }
    QCOMPARE(report.bytesLost, lost);
}

void tst_ZrLogRecovery::rangesAreBounded()
{
    QByteArray damaged = FileHeader(1.0);
    QByteArray expected = damaged;
    for (int i = 0; i < 3000; ++i) {
        const QByteArray item = At(i, 4, "payload").Bytes();
        damaged += i % 2 == 0 ? item : Flipped(item, 0, 0x01);
        expected += i % 2 == 0 ? item : QByteArray();
    }
    QVERIFY(Recover(damaged));
    QVERIFY(HoldsExactly(expected, QStringLiteral("every second")));
    int told = 0;
    m_recovery->rangeFound = [&told](const ZrLogRecovery::Range&) { ++told; };
    QVERIFY(m_recovery->Examine(m_in));
    QCOMPARE(told, 1500);
    QCOMPARE(m_recovery->Report().rangeCount, u64(1500));
    QCOMPARE(m_recovery->Report().ranges.size(), ZrLogRecovery::MaxRanges);
    QCOMPARE(m_recovery->Report().bytesLost, u64(1500 * 47));
}

void tst_ZrLogRecovery::reasonsHaveWords()
{
    QStringList texts;
    for (int reason = ZrLogRecovery::BrokenFileHeader; reason <= ZrLogRecovery::DoubtfulEnd; ++reason)
        texts << ZrLogRecovery::ReasonText(static_cast<ZrLogRecovery::eReason>(reason));
    QVERIFY(!texts.contains(QString()));
    QCOMPARE(texts.removeDuplicates(), 0);
}

void tst_ZrLogRecovery::fourGigabyteSizes_data()
{
    QTest::addColumn<QByteArray>("sizes"); // dataSize, storedSize
    QTest::addColumn<bool>("compressed");
    for (const bool compressed : {false, true}) {
        for (const char* sizes : {"ffffffffffffffff", "ffffff7fffffff7f", "05000000ffffffff",
                 "ffffffff05000000", "05000000ffffff7f", "0000000000000080"}) {
            QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(QLatin1String(sizes)).arg(compressed)))
                << QByteArray::fromHex(sizes) << compressed;
        }
    }
}

void tst_ZrLogRecovery::fourGigabyteSizes()
{
    QFETCH(QByteArray, sizes);
    QFETCH(bool, compressed);
    QVector<Item> items = SmallLog();
    Item bad = At(99.0, 4, "12345");
    bad.compressed = compressed;
    const QByteArray damaged
        = FileHeader(1234.5) + Patched(bad.Bytes(), 28, sizes) + Join(items).mid(fileHeaderSize);
#ifdef Q_OS_UNIX
    // A sanitizer reserves the address space of its own.
    const int result = RunInChild([&] {
        const rlimit limit{rlim_t{1} << 30, rlim_t{1} << 30};
        if (!underSanitizer && setrlimit(RLIMIT_AS, &limit) != 0)
            return 1;
        return Recover(damaged, false) ? 0 : 2;
    });
    QCOMPARE(result, 0);
#endif
    QVERIFY(Recover(damaged, false));
    QVERIFY(HoldsExactly(Join(items), QStringLiteral("after the sizes")));
}

/// Sizes that the file can hold: nothing of what they claim is loaded, and the search goes on at once.
void tst_ZrLogRecovery::largeSparseFile()
{
    const QVector<Item> items = SmallLog();
    Item false_ = At(99.0, 4, "");
    QByteArray header = false_.Header();
    header.replace(24, 2, QByteArray::fromHex("0100")); // compressed
    header.replace(28, 8, QByteArray::fromHex("0000004000000040")); // 1 GiB, as far as it says
    const QByteArray start = FileHeader(1234.5) + header + "1234" + Join(items).mid(fileHeaderSize);
    QVERIFY(WriteWhole(m_in, start));
    const qint64 size = qint64{3} << 29;
    QVERIFY(QFile::resize(m_in, size));
    ZrLogRecovery recovery;
    QVERIFY2(recovery.Run(m_in, m_out), qPrintable(recovery.Error()));
    QCOMPARE(recovery.Report().bytesLost, u64(size - Join(items).size()));
    QCOMPARE(ReadWhole(m_out), Join(items));
#ifdef Q_OS_UNIX
    rusage usage{};
    QCOMPARE(getrusage(RUSAGE_SELF, &usage), 0);
    QVERIFY2(underSanitizer || usage.ru_maxrss < 300 * 1024, qPrintable(QString::number(usage.ru_maxrss)));
#endif
}

/// Headers and damages around the ends of the blocks in which the file is read.
void tst_ZrLogRecovery::itemsAcrossBlocks()
{
    constexpr int block = 1024 * 1024;
    for (int shift = -45; shift <= 45; ++shift) {
        const QVector<Item> items{At(1.0, 4, Noise(block - fileHeaderSize - itemHeaderSize + shift)),
            At(2.0, 5, Noise(10)), Packed(3.0, 6, Noise(3000)), At(4.0, 7, Noise(block + 5)),
            At(5.0, 8, "end")};
        const QByteArray log = Join(items);
        QVERIFY(Recover(log));
        QVERIFY(m_result == log);
        const int start = Starts(items).at(1);
        QVERIFY(Recover(Flipped(log, start, 0x01)));
        QVERIFY(m_result == Join(Without(items, 1)));
        // Everything before is lost, so that the block begins elsewhere.
        QVERIFY(Recover(Patched(log, 0, QByteArray(fileHeaderSize + 1000, '\0')).remove(0, 3)));
        QVERIFY(m_result == Join(Without(items, 0), 2.0));
    }
}

void tst_ZrLogRecovery::nothingToFind_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("one zero") << QByteArray(1, '\0');
    QTest::newRow("zeros") << QByteArray(100000, '\0');
    QTest::newRow("first magic bytes only") << QByteArray(100000, '\xDD');
    QTest::newRow("noise") << Noise(100000);
    QTest::newRow("magic numbers only") << QByteArray::fromHex("ddccbbaa").repeated(20000);
    QTest::newRow("headers that claim what is not there")
        << Patched(At(1.0, 4, "").Header(), 28, QByteArray::fromHex("ffff0000ffff0000")).repeated(500);
    QTest::newRow("cut file header") << FileHeader(1.0).left(47);
    QTest::newRow("an item among noise") << Noise(1000) + At(1.0, 4, "payload").Bytes() + Noise(1000);
    QTest::newRow("placeholder without a log") << At(1.0, 4, "").Header() + Noise(1000);
}

void tst_ZrLogRecovery::nothingToFind()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!Recover(bytes));
    QCOMPARE(m_recovery->State(), ZrLogRecovery::NothingFound);
    QCOMPARE(m_recovery->Error(), QStringLiteral("%1 holds neither a log header nor an item.").arg(m_in));
    QCOMPARE(m_recovery->Report().kept, u64(0));
    QCOMPARE(m_recovery->Report().bytesLost, u64(bytes.size()));
    QVERIFY(!QFile::exists(m_out));
    // What was there before stays.
    QVERIFY(WriteWhole(m_out, "precious"));
    QVERIFY(!m_recovery->Run(m_in, m_out));
    QCOMPARE(ReadWhole(m_out), QByteArray("precious"));
}

void tst_ZrLogRecovery::logWithoutItems()
{
    QVERIFY(Recover(FileHeader(7.0)));
    QVERIFY(HoldsExactly(FileHeader(7.0), QStringLiteral("no item")));
    QVERIFY(Recover(FileHeader(7.0) + Noise(5000)));
    QVERIFY(HoldsExactly(FileHeader(7.0), QStringLiteral("noise")));
    QCOMPARE(m_recovery->Report().bytesLost, u64(5000));
    QCOMPARE(m_recovery->Report().rangeCount, u64(1));
}

void tst_ZrLogRecovery::progressIsTold()
{
    QVector<Item> items;
    for (int i = 0; i < 500; ++i)
        items << At(i, 4, Noise(100));
    QVERIFY(WriteWhole(m_in, Join(items)));
    ProgressList progress;
    ZrLogRecovery recovery;
    recovery.progress = &progress;
    QVERIFY(recovery.Run(m_in, m_out));
    QVERIFY(std::is_sorted(progress.values.begin(), progress.values.end()));
    QCOMPARE(progress.values.first(), 0);
    QCOMPARE(progress.values.last(), 100);
    QVERIFY(progress.values.size() > 50 && progress.values.size() <= 101);
}

void tst_ZrLogRecovery::cancelEndsTheRun()
{
    QVERIFY(WriteWhole(m_in, Join(SmallLog())));
    QVERIFY(WriteWhole(m_out, "precious"));
    ZrLogRecovery recovery;
    recovery.cancel = true;
    QVERIFY(!recovery.Run(m_in, m_out));
    QCOMPARE(recovery.State(), ZrLogRecovery::Cancelled);
    QCOMPARE(recovery.Error(), QStringLiteral("The recovery was cancelled."));
    QCOMPARE(ReadWhole(m_out), QByteArray("precious"));
    // The same object serves again.
    recovery.cancel = false;
    QVERIFY(recovery.Run(m_in, m_out));
    QCOMPARE(recovery.Error(), QString());
    QCOMPARE(ReadWhole(m_out), Join(SmallLog()));
}

void tst_ZrLogRecovery::cancelDuringTheRun()
{
    class Canceller final : public IZrProgress
    {
    public:
        explicit Canceller(ZrLogRecovery& recovery)
            : m_recovery(recovery)
        {
        }

        void UpdateProgress(int percent) override
        {
            m_percent = percent;
            if (percent >= 30)
                m_recovery.cancel = true;
        }

        int GetProgress() override { return m_percent; }

    private:
        ZrLogRecovery& m_recovery;
        int m_percent = 0;
    };

    QVector<Item> items;
    for (int i = 0; i < 500; ++i)
        items << At(i, 4, Noise(100));
    QVERIFY(WriteWhole(m_in, Join(items)));
    ZrLogRecovery recovery;
    Canceller canceller(recovery);
    recovery.progress = &canceller;
    QVERIFY(!recovery.Run(m_in, m_out));
    QCOMPARE(recovery.State(), ZrLogRecovery::Cancelled);
    QCOMPARE(canceller.GetProgress(), 30);
    QVERIFY(recovery.Report().kept > 100 && recovery.Report().kept < 200);
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList{QStringLiteral("damaged.log")});
}

void tst_ZrLogRecovery::sameFileIsRefused()
{
    const QByteArray log = Join(SmallLog());
    QVERIFY(WriteWhole(m_in, log));
    QDir(m_dir->path()).mkdir(QStringLiteral("sub"));
    const QString link = m_dir->filePath(QStringLiteral("link.log"));
    QVERIFY(QFile::link(m_in, link));
    for (const QString& out : {m_in, m_dir->filePath(QStringLiteral("sub/../damaged.log")), link}) {
        ZrLogRecovery recovery;
        QVERIFY(!recovery.Run(m_in, out));
        QCOMPARE(recovery.State(), ZrLogRecovery::Refused);
        QCOMPARE(recovery.Error(), QStringLiteral("%1 and %2 are the same file.").arg(m_in, out));
        QCOMPARE(ReadWhole(m_in), log);
    }
}

void tst_ZrLogRecovery::impossiblePaths()
{
    QVERIFY(WriteWhole(m_in, Join(SmallLog())));
    ZrLogRecovery recovery;
    const QString missing = m_dir->filePath(QStringLiteral("missing.log"));
    QVERIFY(!recovery.Run(missing, m_out));
    QCOMPARE(recovery.State(), ZrLogRecovery::Unreadable);
    QVERIFY(recovery.Error().startsWith(QStringLiteral("Cannot read %1: ").arg(missing)));
    QVERIFY(!recovery.Run(m_dir->path(), m_out));
    QCOMPARE(recovery.State(), ZrLogRecovery::Unreadable);
    QVERIFY(!QFile::exists(m_out));

    const QString nowhere = m_dir->filePath(QStringLiteral("no/such/folder.log"));
    QVERIFY(!recovery.Run(m_in, nowhere));
    QCOMPARE(recovery.State(), ZrLogRecovery::NotWritten);
    QVERIFY(recovery.Error().startsWith(QStringLiteral("Cannot create %1: ").arg(nowhere)));
    // The log begins only with its first item when its header is lost.
    QVERIFY(WriteWhole(m_in, Join(SmallLog()).mid(fileHeaderSize)));
    QVERIFY(!recovery.Run(m_in, nowhere));
    QCOMPARE(recovery.State(), ZrLogRecovery::NotWritten);
    QVERIFY(recovery.Error().startsWith(QStringLiteral("Cannot create %1: ").arg(nowhere)));
}

#ifdef Q_OS_UNIX

void tst_ZrLogRecovery::fullDiskLeavesTheTarget()
{
    const QVector<Item> items{
        At(1.0, 4, Noise(500000)), At(2.0, 4, Noise(900000)), At(3.0, 4, Noise(900000))};
    QVERIFY(WriteWhole(m_in, Join(items)));
    // The disk is full while items are written, and when the last of them are.
    for (const rlim_t size : {rlim_t{1200000}, rlim_t{2300000}}) {
        QVERIFY(WriteWhole(m_out, "precious"));
        const int result = RunInChild([&] {
            const rlimit limit{size, size};
            if (signal(SIGXFSZ, SIG_IGN) == SIG_ERR || setrlimit(RLIMIT_FSIZE, &limit) != 0)
                return 1;
            ZrLogRecovery recovery;
            if (recovery.Run(m_in, m_out) || recovery.State() != ZrLogRecovery::NotWritten)
                return 2;
            return recovery.Error().startsWith(QStringLiteral("Cannot write %1: ").arg(m_out)) ? 0 : 3;
        });
        QCOMPARE(result, 0);
        QCOMPARE(ReadWhole(m_out), QByteArray("precious"));
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            (QStringList{QStringLiteral("damaged.log"), QStringLiteral("recovered.log")}));
    }
}

#else

void tst_ZrLogRecovery::fullDiskLeavesTheTarget()
{
    QSKIP("needs a limit on the size of files");
}

#endif

QTEST_GUILESS_MAIN(tst_ZrLogRecovery)
#include "tst_ZrLogRecovery.moc"
