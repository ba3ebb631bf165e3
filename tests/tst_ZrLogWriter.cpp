#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrLogFixture.h"
#include "ZrUtil/ZrLogger.h"

#include <QDir>
#include <QTemporaryDir>

#include <limits>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

const char* const headerHex = R"(
    44 33 22 11                                       # magic
    30 00 00 00                                       # headerSize
    5a 72 4c 6f 67 48 65 61 64 65 72 78 78 78 78 00   # tag
    01 00 00 00                                       # version
    00 00 00 00                                       # gap
    00 00 00 00 00 00 00 00                           # reserved
    00 00 00 00 00 4a 93 40                           # created: 1234.5
)";

const char* const plainHex = R"(
    dd cc bb aa               # magic
    28 00 00 00               # headerSize
    02 01                     # type
    04 03                     # format
    06 05                     # sub
    00 00                     # reserved
    00 00 00 00 00 00 f8 3f   # time: 1.5
    00 00                     # compressed
    08 07                     # source
    05 00 00 00               # dataSize
    05 00 00 00               # storedSize
    00 00 00 00               # reserved
    61 62 00 ff 63            # payload
)";

const char* const emptyHex = R"(
    dd cc bb aa               # magic
    28 00 00 00               # headerSize
    10 00                     # type
    01 00                     # format
    00 00                     # sub
    00 00                     # reserved
    00 00 00 00 00 00 10 c0   # time: -4
    00 00                     # compressed
    00 00                     # source
    00 00 00 00               # dataSize
    00 00 00 00               # storedSize
    00 00 00 00               # reserved
)";

const char* const emptyCompressedHex = R"(
    dd cc bb aa               # magic
    28 00 00 00               # headerSize
    10 00                     # type
    01 00                     # format
    00 00                     # sub
    00 00                     # reserved
    00 00 00 00 00 00 10 c0   # time: -4
    01 00                     # compressed
    00 00                     # source
    00 00 00 00               # dataSize
    04 00 00 00               # storedSize
    00 00 00 00               # reserved
    00 00 00 00               # length of nothing
)";

const char* const compressedHex = R"(
    dd cc bb aa               # magic
    28 00 00 00               # headerSize
    11 00                     # type
    01 00                     # format
    01 00                     # sub
    00 00                     # reserved
    00 00 00 00 00 00 f8 3f   # time: 1.5
    01 00                     # compressed
    09 00                     # source
    03 00 00 00               # dataSize
    0f 00 00 00               # storedSize
    00 00 00 00               # reserved
    00 00 00 03               # length of the text ABC, highest byte first
    78 01                     # zlib at its fastest level
    73 74 72 06 00            # last block, fixed codes: A, B, C, end
    01 8d 00 c7               # checksum
)";

constexpr int mebibyte = 1024 * 1024;

/// Bytes that do not repeat, so that a shifted or lost block shows.
QByteArray Pattern(int size)
{
    QByteArray bytes(size, '\0');
    quint32 state = static_cast<quint32>(size) | 1U;
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

bool WriteItem(ZrLogWriter& log, const Item& item)
{
    return log.Write(
        CRecType(item.sub, item.type), item.source, item.format, item.time, false, Span(item.payload));
}

QStringList FilesIn(const QTemporaryDir& dir)
{
    return QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

} // namespace

class tst_ZrLogWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void headerBytes();
    void itemBytes();
    void compressedItem();
    void sameBytesAsTheLogger();
    void itemTimes_data();
    void itemTimes();
    void payloadsAroundTheBlock_data();
    void payloadsAroundTheBlock();
    void manySmallItems();
    void payloadIsReadDuringTheCallOnly();

    void rawItemsAreCopied();
    void rawItemThatIsNoneIsRefused_data();
    void rawItemThatIsNoneIsRefused();
    void tooLargePayloadIsRefused_data();
    void tooLargePayloadIsRefused();

    void targetIsUntouchedUntilCommit();
    void droppedWriterLeavesNothing_data();
    void droppedWriterLeavesNothing();
    void openAgainDropsTheFirst();
    void writerServesAgainAfterCommit();
    void closedWriterRefuses();
    void permissionsOfTheTargetStay();

    void impossibleTargets_data();
    void impossibleTargets();
    void symbolicLinkIsRefused_data();
    void symbolicLinkIsRefused();
    void nameTooLongFailsInTheEnd();
    void folderThatVanishesFailsCommit();
    void fullDiskFailsWrite();
    void fullDiskFailsCommit();
};

void tst_ZrLogWriter::headerBytes()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 1234.5));
    QCOMPARE(log.Bytes(), u64(48));
    QCOMPARE(log.Items(), u64(0));
    QVERIFY(log.Commit());
    QCOMPARE(ReadWhole(path).toHex(), FromHex(headerHex).toHex());
    QCOMPARE(log.Error(), QString());
}

void tst_ZrLogWriter::itemBytes()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 1234.5));
    QVERIFY(
        log.Write(CRecType(0x0506, 0x0102), 0x0708, 0x0304, 1.5, false, Span(QByteArray("ab\0\xff\x63", 5))));
    QCOMPARE(log.Bytes(), u64(48 + 45));
    QVERIFY(log.Write(CRecType(0, 16), 0, 1, -4.0, false, zr::span<u8>()));
    QVERIFY(log.Write(CRecType(0, 16), 0, 1, -4.0, true, zr::span<u8>()));
    QCOMPARE(log.Items(), u64(3));
    QCOMPARE(log.Bytes(), u64(48 + 45 + 40 + 44));
    QVERIFY(log.Commit());
    QCOMPARE(ReadWhole(path).toHex(),
        (FromHex(headerHex) + FromHex(plainHex) + FromHex(emptyHex) + FromHex(emptyCompressedHex)).toHex());
}

void tst_ZrLogWriter::compressedItem()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    const QByteArray zeros(100000, '\0');
    ZrLogWriter log;
    QVERIFY(log.Open(path, 1234.5));
    QVERIFY(log.Write(CRecType(1, 17), 9, 1, 1.5, true, Span("ABC")));
    QCOMPARE(log.Bytes(), u64(48 + 40 + 15));
    QVERIFY(log.Write(CRecType(1, 17), 9, 1, 1.5, true, Span(zeros)));
    QVERIFY(log.Commit());

    const QByteArray bytes = ReadWhole(path);
    QCOMPARE(bytes.left(48 + 40 + 15).toHex(), (FromHex(headerHex) + FromHex(compressedHex)).toHex());
    const QByteArray second = bytes.mid(48 + 40 + 15);
    QCOMPARE(LeAt<quint32>(second, 28), 100000U);
    QCOMPARE(LeAt<quint32>(second, 32), quint32(second.size() - 40));
    QVERIFY(second.size() < 1000);
    QVERIFY(qUncompress(second.mid(40)) == zeros);
    QCOMPARE(log.Bytes(), u64(bytes.size()));
}

void tst_ZrLogWriter::sameBytesAsTheLogger()
{
    const MessageCatcher messages;
    const QTemporaryDir dir;
    const QString live = dir.filePath(QStringLiteral("live.log"));
    const QString written = dir.filePath(QStringLiteral("written.log"));

    const struct
    {
        CRecType type;
        u16 source;
        u16 format;
        bool compress;
        QByteArray payload;
    } items[] = {
        {CRecType(0, 16), 0, 1, false, "plain"},
        {CRecType(1, 17), 65535, 2, true, Pattern(3000)},
        {CRecType(65535, 65535), 3, 65535, false, QByteArray()},
        {CRecType(0, 2), 0, 0, true, QByteArray()},
        {CRecType(0, 17), 1, 1, true, QByteArray(2 * mebibyte, 'z')},
        {CRecType(0, 17), 1, 1, false, Pattern(2 * mebibyte)},
        {CRecType(0, 2), 0, 0, false, QByteArray("AB\0", 3)},
    };

    ZrLogger logger(nullptr);
    logger.OpenFile(live);
    QVERIFY(logger.IsActive());
    for (const auto& item : items)
        logger.LogData(item.type, item.source, item.format, item.compress, {Span(item.payload)});
    logger.CloseLog();

    // The same items at the times at which the logger wrote them.
    const QByteArray expected = ReadWhole(live);
    ZrLogWriter log;
    QVERIFY(log.Open(written, DoubleAt(expected, 40)));
    int at = 48;
    for (const auto& item : items) {
        QVERIFY(log.Write(item.type, item.source, item.format, DoubleAt(expected, at + 16), item.compress,
            Span(item.payload)));
        at += 40 + static_cast<int>(LeAt<quint32>(expected, at + 32));
    }
    QCOMPARE(at, expected.size());
    QVERIFY(log.Commit());
    QCOMPARE(log.Items(), u64(7));
    QCOMPARE(log.Bytes(), u64(expected.size()));
    QVERIFY(ReadWhole(written) == expected);
}

void tst_ZrLogWriter::itemTimes_data()
{
    QTest::addColumn<double>("time");
    QTest::newRow("zero") << 0.0;
    QTest::newRow("negative zero") << -0.0;
    QTest::newRow("long ago") << -1e12;
    QTest::newRow("microseconds") << 1397678239.123456;
    QTest::newRow("not known") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
}

void tst_ZrLogWriter::itemTimes()
{
    QFETCH(double, time);
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    Item item = MakeItem(16, "x");
    item.time = time;
    ZrLogWriter log;
    QVERIFY(log.Open(path, time));
    QVERIFY(WriteItem(log, item));
    QVERIFY(log.Commit());
    QCOMPARE(ReadWhole(path).toHex(), (FileHeader(time) + item.Bytes()).toHex());
}

void tst_ZrLogWriter::payloadsAroundTheBlock_data()
{
    QTest::addColumn<QVector<int>>("sizes");
    QTest::newRow("one below") << QVector<int>{mebibyte - 1};
    QTest::newRow("one block") << QVector<int>{mebibyte};
    QTest::newRow("one above") << QVector<int>{mebibyte + 1};
    QTest::newRow("block filled exactly with both headers") << QVector<int>{mebibyte - 48 - 40};
    QTest::newRow("one more than that") << QVector<int>{mebibyte - 48 - 40 + 1};
    QTest::newRow("header does not fit any more") << QVector<int>{mebibyte - 48 - 40 - 39, 10};
    QTest::newRow("header fits exactly") << QVector<int>{mebibyte - 48 - 40 - 40, 10};
    QTest::newRow("five blocks") << QVector<int>{5 * mebibyte + 123};
    QTest::newRow("small, large, small") << QVector<int>{5, 3 * mebibyte, 7};
    QTest::newRow("many halves") << QVector<int>{
        mebibyte / 2, mebibyte / 2, 0, mebibyte / 2, 1, mebibyte / 2};
}

void tst_ZrLogWriter::payloadsAroundTheBlock()
{
    QFETCH(QVector<int>, sizes);
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 1234.5));
    LogBytes expected;
    for (const int size : sizes) {
        const Item item = MakeItem(17, Pattern(size), static_cast<quint16>(size));
        expected.Add(item);
        QVERIFY(WriteItem(log, item));
        QCOMPARE(log.Bytes(), expected.Size());
    }
    QVERIFY(log.Commit());
    QVERIFY(ReadWhole(path) == expected.Bytes());
    QCOMPARE(log.Items(), u64(sizes.size()));
}

void tst_ZrLogWriter::manySmallItems()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 1234.5));
    LogBytes expected;
    for (int i = 0; i < 60000; ++i) {
        Item item = MakeItem(static_cast<quint16>(i), Pattern(i % 50));
        item.time = i / 10.0;
        expected.Add(item);
        QVERIFY(WriteItem(log, item));
    }
    QVERIFY(log.Commit());
    QVERIFY(ReadWhole(path) == expected.Bytes());
    QCOMPARE(log.Items(), u64(60000));
}

void tst_ZrLogWriter::payloadIsReadDuringTheCallOnly()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 1234.5));
    QByteArray payload = "first";
    QVERIFY(log.Write(CRecType(0, 16), 0, 0, 0.0, false, Span(payload)));
    payload.fill('x');
    QVERIFY(log.Commit());
    QCOMPARE(ReadWhole(path), FileHeader(1234.5) + MakeItem(16, "first").Bytes());
}

void tst_ZrLogWriter::rawItemsAreCopied()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 1234.5));
    QByteArray expected = FromHex(headerHex);
    // Reserved fields of another writer stay as they are.
    const QByteArray large = MakeItem(17, Pattern(2 * mebibyte)).Bytes();
    for (const QByteArray& item : {FromHex(plainHex), FromHex(emptyHex), FromHex(emptyCompressedHex),
             Flipped(FromHex(plainHex), 14, 0xFF), Flipped(FromHex(plainHex), 39, 0xFF), large}) {
        QVERIFY(log.WriteRaw(Span(item)));
        expected += item;
        QCOMPARE(log.Bytes(), u64(expected.size()));
    }
    QCOMPARE(log.Items(), u64(6));
    QVERIFY(log.Commit());
    QVERIFY(ReadWhole(path) == expected);
}

void tst_ZrLogWriter::rawItemThatIsNoneIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    const QString shorter = QStringLiteral("The item for %1 is shorter than its header.");
    const QString none = QStringLiteral("The item for %1 does not begin with a header.");
    const QString length = QStringLiteral("The item for %1 is not as long as its header says.");
    const QByteArray item = FromHex(plainHex);
    for (int size = 0; size < 40; ++size)
        QTest::newRow(qPrintable(QStringLiteral("%1 bytes").arg(size))) << item.left(size) << shorter;
    for (int size = 40; size < item.size(); ++size)
        QTest::newRow(qPrintable(QStringLiteral("%1 bytes").arg(size))) << item.left(size) << length;
    for (int offset = 0; offset < 8; ++offset) {
        QTest::newRow(qPrintable(QStringLiteral("header byte %1").arg(offset)))
            << Flipped(item, offset, 0x01) << none;
    }
    for (int offset = 32; offset < 36; ++offset) {
        QTest::newRow(qPrintable(QStringLiteral("size byte %1").arg(offset)))
            << Flipped(item, offset, 0x80) << length;
    }
    QTest::newRow("one byte more") << item + "x" << length;
    QTest::newRow("two items") << item + item << length;
}

void tst_ZrLogWriter::rawItemThatIsNoneIsRefused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 1234.5));
    const std::vector<char> memory(bytes.begin(), bytes.end());
    QVERIFY(!log.WriteRaw(zr::bytes_of(memory.data(), memory.size())));
    QCOMPARE(log.Error(), reason.arg(path));
    QCOMPARE(log.Items(), u64(0));
    QCOMPARE(log.Bytes(), u64(48));
    // Nothing of it is in the log, which goes on.
    QVERIFY(log.WriteRaw(Span(FromHex(emptyHex))));
    QVERIFY(log.Commit());
    QCOMPARE(ReadWhole(path).toHex(), (FromHex(headerHex) + FromHex(emptyHex)).toHex());
}

void tst_ZrLogWriter::tooLargePayloadIsRefused_data()
{
    QTest::addColumn<quint64>("size");
    QTest::addColumn<bool>("compress");
    QTest::newRow("2^31") << (Q_UINT64_C(1) << 31) << false;
    QTest::newRow("2^32") << (Q_UINT64_C(1) << 32) << false;
    QTest::newRow("2^32 + 5") << (Q_UINT64_C(1) << 32) + 5 << false;
    QTest::newRow("2^64 - 1") << std::numeric_limits<quint64>::max() << false;
    QTest::newRow("2^31 to be compressed") << (Q_UINT64_C(1) << 31) << true;
    QTest::newRow("more than the compressor takes") << Q_UINT64_C(2000000001) << true;
    QTest::newRow("2^64 - 1 to be compressed") << std::numeric_limits<quint64>::max() << true;
}

void tst_ZrLogWriter::tooLargePayloadIsRefused()
{
    QFETCH(quint64, size);
    QFETCH(bool, compress);
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 1234.5));
    // Refused by its size alone: no byte of it is there to be read.
    u8 one = 0;
    QVERIFY(!log.Write(CRecType(0, 16), 0, 0, 0.0, compress, zr::bytes_of(&one, size)));
    QCOMPARE(log.Error(),
        QStringLiteral("A payload of %1 bytes is too large for an item of %2.").arg(size).arg(path));
    QCOMPARE(log.Items(), u64(0));
    QCOMPARE(log.Bytes(), u64(48));
    QVERIFY(log.Commit());
    QCOMPARE(ReadWhole(path).toHex(), FromHex(headerHex).toHex());
}

void tst_ZrLogWriter::targetIsUntouchedUntilCommit()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    QVERIFY(WriteWhole(path, "precious"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 1234.5));
    QVERIFY(WriteItem(log, MakeItem(17, Pattern(3 * mebibyte))));
    QCOMPARE(ReadWhole(path), QByteArray("precious"));
    QVERIFY(log.Commit());
    QVERIFY(ReadWhole(path) == FileHeader(1234.5) + MakeItem(17, Pattern(3 * mebibyte)).Bytes());
    QCOMPARE(FilesIn(dir), QStringList{QStringLiteral("a.log")});
}

void tst_ZrLogWriter::droppedWriterLeavesNothing_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("still in the block") << 100;
    QTest::newRow("partly on the disk") << 3 * mebibyte;
}

void tst_ZrLogWriter::droppedWriterLeavesNothing()
{
    QFETCH(int, size);
    const QTemporaryDir dir;
    const QString fresh = dir.filePath(QStringLiteral("fresh.log"));
    const QString existing = dir.filePath(QStringLiteral("existing.log"));
    QVERIFY(WriteWhole(existing, "precious"));
    for (const QString& path : {fresh, existing}) {
        ZrLogWriter log;
        QVERIFY(log.Open(path, 1234.5));
        QVERIFY(WriteItem(log, MakeItem(17, Pattern(size))));
    }
    QCOMPARE(FilesIn(dir), QStringList{QStringLiteral("existing.log")});
    QCOMPARE(ReadWhole(existing), QByteArray("precious"));
}

void tst_ZrLogWriter::openAgainDropsTheFirst()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("b.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(dir.filePath(QStringLiteral("a.log")), 1.0));
    QVERIFY(WriteItem(log, MakeItem(17, Pattern(2 * mebibyte))));
    QVERIFY(log.Open(path, 1234.5));
    QCOMPARE(log.Items(), u64(0));
    QCOMPARE(log.Bytes(), u64(48));
    QVERIFY(log.Commit());
    QCOMPARE(FilesIn(dir), QStringList{QStringLiteral("b.log")});
    QCOMPARE(ReadWhole(path).toHex(), FromHex(headerHex).toHex());
}

void tst_ZrLogWriter::writerServesAgainAfterCommit()
{
    const QTemporaryDir dir;
    const QString first = dir.filePath(QStringLiteral("a.log"));
    const QString second = QString::fromUtf8("%1/Größe 深さ.log").arg(dir.path());
    ZrLogWriter log;
    QVERIFY(log.Open(first, 1234.5));
    QVERIFY(WriteItem(log, MakeItem(16, "one")));
    QVERIFY(log.Commit());
    QVERIFY(log.Open(second, 1234.5));
    QVERIFY(WriteItem(log, MakeItem(16, "two")));
    QVERIFY(log.Commit());
    QCOMPARE(ReadWhole(first), FileHeader(1234.5) + MakeItem(16, "one").Bytes());
    QCOMPARE(ReadWhole(second), FileHeader(1234.5) + MakeItem(16, "two").Bytes());
}

void tst_ZrLogWriter::closedWriterRefuses()
{
    const QTemporaryDir dir;
    const QString reason = QStringLiteral("No log is open for writing.");
    const QByteArray raw = FromHex(plainHex);
    ZrLogWriter log;
    for (int round = 0; round < 2; ++round) {
        QVERIFY(!log.Write(CRecType(0, 16), 0, 0, 0.0, false, zr::span<u8>()));
        QCOMPARE(log.Error(), reason);
        QVERIFY(!log.WriteRaw(Span(raw)));
        QCOMPARE(log.Error(), reason);
        QVERIFY(!log.Commit());
        QCOMPARE(log.Error(), reason);
        // Second round: after a commit. The numbers of the finished log can still be read.
        QCOMPARE(log.Items(), u64(round));
        QCOMPARE(log.Bytes(), u64(round * (48 + 40)));
        QVERIFY(log.Open(dir.filePath(QStringLiteral("a.log")), 0.0));
        QVERIFY(log.Error().isEmpty());
        QVERIFY(WriteItem(log, MakeItem(16, "")));
        QVERIFY(log.Commit());
    }
    QCOMPARE(FilesIn(dir), QStringList{QStringLiteral("a.log")});
}

void tst_ZrLogWriter::permissionsOfTheTargetStay()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    QVERIFY(WriteWhole(path, "precious"));
    const QFile::Permissions groupReads
        = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser | QFile::ReadGroup;
    QVERIFY(QFile::setPermissions(path, groupReads));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 0.0));
    QVERIFY(log.Commit());
    QCOMPARE(QFile::permissions(path), groupReads);
}

void tst_ZrLogWriter::impossibleTargets_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing folder") << QStringLiteral("missing/a.log");
    QTest::newRow("file as a folder") << QStringLiteral("file/a.log");
    QTest::newRow("folder as a file") << QStringLiteral("folder");
#ifdef Q_OS_LINUX
    // Not even the administrator can create files there.
    QTest::newRow("folder that takes no files") << QStringLiteral("/proc/zr-test.log");
#endif
}

void tst_ZrLogWriter::impossibleTargets()
{
    QFETCH(QString, name);
    const QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("folder")));
    QVERIFY(WriteWhole(dir.filePath(QStringLiteral("file")), "precious"));
    const QStringList before = FilesIn(dir);
    const QString path = QDir::isAbsolutePath(name) ? name : dir.filePath(name);
    ZrLogWriter log;
    QVERIFY(!log.Open(path, 0.0));
    const QString reason = log.Error();
    QVERIFY2(reason.startsWith(QStringLiteral("Cannot create %1: ").arg(path)), qPrintable(reason));
    QVERIFY(reason.size() > QStringLiteral("Cannot create %1: .").arg(path).size());
    // The reason stays for who only asks at the end.
    QVERIFY(!WriteItem(log, MakeItem(16, "x")));
    QVERIFY(!log.Commit());
    QCOMPARE(log.Error(), reason);
    QCOMPARE(log.Items(), u64(0));
    QCOMPARE(FilesIn(dir), before);
    QCOMPARE(ReadWhole(dir.filePath(QStringLiteral("file"))), QByteArray("precious"));
}

void tst_ZrLogWriter::symbolicLinkIsRefused_data()
{
    QTest::addColumn<bool>("dangling");
    QTest::newRow("to a file") << false;
    QTest::newRow("to nothing") << true;
}

void tst_ZrLogWriter::symbolicLinkIsRefused()
{
    QFETCH(bool, dangling);
    const QTemporaryDir dir;
    const QString target = dir.filePath(QStringLiteral("target.log"));
    const QString link = dir.filePath(QStringLiteral("link.log"));
    if (!dangling)
        QVERIFY(WriteWhole(target, "precious"));
    QVERIFY(QFile::link(target, link));
    const QStringList before = FilesIn(dir);
    ZrLogWriter log;
    QVERIFY(!log.Open(link, 0.0));
    QCOMPARE(log.Error(), QStringLiteral("Cannot create %1: it is a symbolic link.").arg(link));
    QVERIFY(!log.Commit());
    QCOMPARE(FilesIn(dir), before);
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(ReadWhole(target), dangling ? QByteArray() : QByteArray("precious"));
}

void tst_ZrLogWriter::nameTooLongFailsInTheEnd()
{
    // Where the system has files without a name, the name is only tried when the log takes its place.
    const QTemporaryDir dir;
    const QString path = dir.filePath(QString(300, QLatin1Char('x')));
    ZrLogWriter log;
    const bool finished = log.Open(path, 0.0) && WriteItem(log, MakeItem(16, "x")) && log.Commit();
    QVERIFY(!finished);
    QVERIFY2(log.Error().contains(path), qPrintable(log.Error()));
    QVERIFY(FilesIn(dir).isEmpty());
}

void tst_ZrLogWriter::folderThatVanishesFailsCommit()
{
    const QTemporaryDir dir;
    QDir folder(dir.path());
    QVERIFY(folder.mkdir(QStringLiteral("in")));
    const QString path = dir.filePath(QStringLiteral("in/a.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 0.0));
    QVERIFY(WriteItem(log, MakeItem(16, "x")));
    QVERIFY(folder.rename(QStringLiteral("in"), QStringLiteral("out")));
    QVERIFY(!log.Commit());
    QVERIFY2(
        log.Error().startsWith(QStringLiteral("Cannot replace %1: ").arg(path)), qPrintable(log.Error()));
    const QString reason = log.Error();
    QVERIFY(!log.Commit());
    QVERIFY(!WriteItem(log, MakeItem(16, "x")));
    QCOMPARE(log.Error(), reason);
    QVERIFY(!QFile::exists(path));
    QVERIFY(!folder.exists(QStringLiteral("out/a.log")));
}

#ifdef Q_OS_UNIX

namespace {

/// Files of this process cannot grow beyond \p bytes: the disk is full there, without a signal.
bool LimitFileSize(rlim_t bytes)
{
    const rlimit limit = {bytes, bytes};
    return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

/// What the child process of `fullDiskFailsWrite` does; the number of the first check that fails, 0 for none.
int WriteUntilFull(const QString& path)
{
    if (!LimitFileSize(2 * mebibyte + mebibyte / 2))
        return 1;
    ZrLogWriter log;
    if (!log.Open(path, 0.0))
        return 2;
    int taken = 0;
    const Item item = MakeItem(17, Pattern(100000));
    while (taken < 100 && WriteItem(log, item))
        ++taken;
    // Two blocks of 1 MiB fit, the third one does not.
    if (taken < 20 || taken > 31 || log.Items() != u64(taken))
        return 3;
    const QString reason = log.Error();
    if (!reason.startsWith(QStringLiteral("Cannot write %1: ").arg(path)))
        return 4;
    const u64 bytes = log.Bytes();
    if (WriteItem(log, MakeItem(16, "")) || log.WriteRaw(Span(FromHex(plainHex))) || log.Commit())
        return 5;
    if (log.Error() != reason || log.Items() != u64(taken) || log.Bytes() != bytes)
        return 6;
    // A fresh start is possible, and its log is whole.
    if (!log.Open(path + QStringLiteral(".small"), 1234.5) || !log.Commit())
        return 7;
    return 0;
}

/// As above, for a log that is still in memory when it is committed.
int CommitWhenFull(const QString& path)
{
    if (!LimitFileSize(1000))
        return 1;
    ZrLogWriter log;
    if (!log.Open(path, 0.0) || !WriteItem(log, MakeItem(17, Pattern(1000))))
        return 2;
    if (log.Commit())
        return 3;
    if (!log.Error().startsWith(QStringLiteral("Cannot write %1: ").arg(path)))
        return 4;
    return log.Commit() ? 5 : 0;
}

} // namespace

void tst_ZrLogWriter::fullDiskFailsWrite()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    QVERIFY(WriteWhole(path, "precious"));
    QCOMPARE(RunInChild([&] { return WriteUntilFull(path); }), 0);
    QCOMPARE(ReadWhole(path), QByteArray("precious"));
    QCOMPARE(ReadWhole(path + QStringLiteral(".small")).toHex(), FromHex(headerHex).toHex());
    QCOMPARE(FilesIn(dir), (QStringList{QStringLiteral("a.log"), QStringLiteral("a.log.small")}));
}

void tst_ZrLogWriter::fullDiskFailsCommit()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    QVERIFY(WriteWhole(path, "precious"));
    QCOMPARE(RunInChild([&] { return CommitWhenFull(path); }), 0);
    QCOMPARE(ReadWhole(path), QByteArray("precious"));
    QCOMPARE(FilesIn(dir), QStringList{QStringLiteral("a.log")});
}

#else

void tst_ZrLogWriter::fullDiskFailsWrite()
{
    QSKIP("needs a limit on the size of files");
}

void tst_ZrLogWriter::fullDiskFailsCommit()
{
    QSKIP("needs a limit on the size of files");
}

#endif

QTEST_GUILESS_MAIN(tst_ZrLogWriter)
#include "tst_ZrLogWriter.moc"
