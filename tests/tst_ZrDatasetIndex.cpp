// The index file of ZrDataset: its bytes, every check and message, hostile files.

#include "ZrDatasetFixture.h"
#include "ZrUtil/ZrConsole.h"

#include <atomic>
#include <thread>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

/// An item of any record type.
Item SubItem(CRecType type, double time)
{
    Item item = TimedItem(type.type, time);
    item.sub = type.sub;
    return item;
}

constexpr CRecType navType(0x0201, 0x0403);

CrdTypes SampleTypes()
{
    return {CRecType(0, 18), CRecType(), CRecType(0xfffe, 0xffff), CRecType(), CRecType(), CRecType(),
        CRecType(), CRecType(1, 2)};
}

/// The 46 bytes before the records.
QByteArray IndexHeader(quint32 count)
{
    return FromHex("dd cc bb aa              # magic\n"
                   "02 00                    # version\n")
        +
        [count] {
            QByteArray bytes;
            AppendLe<quint32>(bytes, count);
            return bytes;
        }()
        + FromHex("01 02 03 04              # idx sub, type\n"
                  "00 00 12 00              # crd 0\n"
                  "00 00 00 00              # crd 1\n"
                  "fe ff ff ff              # crd 2\n"
                  "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 # crd 3 to 6\n"
                  "01 00 02 00              # crd 7\n");
}

/// A record with another value in every member.
ZrLogRec SampleRecord()
{
    ZrLogRec rec;
    rec.time = 1.5;
    rec.latitude = -2.0;
    rec.longitude = 3.0;
    rec.spare24 = 4.0;
    rec.spare32 = 5.0;
    rec.spare40 = 0x01020304;
    rec.spare44 = 0xfffefdfc;
    rec.spare48 = -0.0;
    rec.altitude = 1.0f;
    rec.depth = 2.0f;
    rec.heading = -3.0f;
    rec.pitch = 4.0f;
    rec.roll = 5.0f;
    rec.spare76 = 6.0f;
    rec.spare80 = 7.0f;
    rec.pos = 0x0102030405060708;
    const CrdPositions positions{0x30, 0, 0xffffffffffffffff, 0, 0, 0, 0, 0x8000000000000001};
    std::memcpy(reinterpret_cast<char*>(&rec) + 92, &positions, sizeof positions);
    rec.spare156 = 0xdeadbeef;
    return rec;
}

QByteArray SampleRecordBytes()
{
    return FromHex("00 00 00 00 00 00 f8 3f  # 0 time\n"
                   "00 00 00 00 00 00 00 c0  # 8 latitude\n"
                   "00 00 00 00 00 00 08 40  # 16 longitude\n"
                   "00 00 00 00 00 00 10 40  # 24\n"
                   "00 00 00 00 00 00 14 40  # 32\n"
                   "04 03 02 01              # 40\n"
                   "fc fd fe ff              # 44\n"
                   "00 00 00 00 00 00 00 80  # 48\n"
                   "00 00 80 3f              # 56 altitude\n"
                   "00 00 00 40              # 60 depth\n"
                   "00 00 40 c0              # 64 heading\n"
                   "00 00 80 40              # 68 pitch\n"
                   "00 00 a0 40              # 72 roll\n"
                   "00 00 c0 40              # 76\n"
                   "00 00 e0 40              # 80\n"
                   "08 07 06 05 04 03 02 01  # 84 pos\n"
                   "30 00 00 00 00 00 00 00  # 92 crd 0\n"
                   "00 00 00 00 00 00 00 00  # 100\n"
                   "ff ff ff ff ff ff ff ff  # 108\n"
                   "00 00 00 00 00 00 00 00  # 116\n"
                   "00 00 00 00 00 00 00 00  # 124\n"
                   "00 00 00 00 00 00 00 00  # 132\n"
                   "00 00 00 00 00 00 00 00  # 140\n"
                   "01 00 00 00 00 00 00 80  # 148 crd 7\n"
                   "ef be ad de              # 156\n");
}

bool SameRecords(const std::vector<ZrLogRec>& a, const std::vector<ZrLogRec>& b)
{
    return a.size() == b.size()
        && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0);
}

} // namespace

class tst_ZrDatasetIndex : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void goldenBytes();
    void goldenBytesAreRead();
    void noRecordsWriteNothing();
    void indexReplacesALongerOne();
    void manyRecordsRoundTrip_data();
    void manyRecordsRoundTrip();
    void indexThatCannotBeWritten();
    void indexCutByAFullDiskIsRejected_data();
    void indexCutByAFullDiskIsRejected();
    void eachCheckHasItsMessage_data();
    void eachCheckHasItsMessage();
    void checksComeInOrder();
    void everyTypeHalfIsCompared();
    void truncatedAtEveryOffset();
    void everyHeaderByteCounts();
    void countThatWrapsIn32Bits_data();
    void countThatWrapsIn32Bits();
    void countOfNoneIsAnIndex();
    void shortHeaderCountsAsZeros();
    void directoryIsNoIndex();
    void fileWithoutPermission();
    void moreRecordsThanAnyIndexCounts();
    void tableThatFindsNoMemory();
    void fileThatShrinksWhileItIsRead();
    void rejectedIndexIsWrittenAnew_data();
    void rejectedIndexIsWrittenAnew();
    void silentConsoleSaysNothing();

private:
    QString Log() const { return m_dir->filePath(QStringLiteral("a.log")); }

    QString Index() const { return Log() + QStringLiteral(".zri"); }

    /// The line on the debug stream that names the index file.
    QString Message(const char* format) const
    {
        return ConsoleLine(QString::fromLatin1(format).replace(QStringLiteral("%s"), Index()));
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrDatasetIndex::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
}

void tst_ZrDatasetIndex::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrDatasetIndex::goldenBytes()
{
    ZrDataset dataset(navType, SampleTypes());
    dataset.recs = {SampleRecord(), ZrLogRec()};
    dataset.WriteIndex(Log());
    QCOMPARE(ReadWhole(Index()).toHex(' '),
        (IndexHeader(2) + SampleRecordBytes() + QByteArray(160, '\0')).toHex(' '));
    QCOMPARE(m_messages->Take(), QStringList());
}

void tst_ZrDatasetIndex::goldenBytesAreRead()
{
    QVERIFY(WriteWhole(Index(), IndexHeader(2) + QByteArray(160, '\0') + SampleRecordBytes()));
    ZrDataset dataset(navType, SampleTypes());
    SetTimes(dataset, {9.0, 9.0, 9.0});
    dataset.curRec = 2;
    QVERIFY(dataset.ReadIndex(Log()));
    QVERIFY(SameRecords(dataset.recs, {ZrLogRec(), SampleRecord()}));
    QCOMPARE(dataset.GetRecFp(1), u64(0x0102030405060708));
    QCOMPARE(dataset.curRec, 2);
    QVERIFY(!dataset.GetRec());
    QCOMPARE(m_messages->Take(), QStringList(QStringLiteral("Read 2 from index file: \"%1\"").arg(Index())));
}

void tst_ZrDatasetIndex::noRecordsWriteNothing()
{
    const ZrDataset dataset(navType, SampleTypes());
    dataset.WriteIndex(Log());
    QVERIFY(!QFile::exists(Index()));
    QVERIFY(WriteWhole(Index(), "as it was"));
    dataset.WriteIndex(Log());
    QCOMPARE(ReadWhole(Index()), QByteArray("as it was"));
}

void tst_ZrDatasetIndex::indexReplacesALongerOne()
{
    ZrDataset dataset(navType, SampleTypes());
    SetTimes(dataset, {1.0, 2.0, 3.0});
    dataset.WriteIndex(Log());
    QCOMPARE(QFileInfo(Index()).size(), qint64(46 + 3 * 160));
    SetTimes(dataset, {1.0});
    dataset.WriteIndex(Log());
    QCOMPARE(QFileInfo(Index()).size(), qint64(46 + 160));
}

void tst_ZrDatasetIndex::manyRecordsRoundTrip_data()
{
    QTest::addColumn<int>("count");
    for (int count : {1, 1023, 1024, 1025, 2048, 30001})
        QTest::newRow(QByteArray::number(count).constData()) << count;
}

void tst_ZrDatasetIndex::manyRecordsRoundTrip()
{
    QFETCH(int, count);
    ZrDataset dataset(navType, SampleTypes());
    for (int i = 0; i < count; ++i) {
        ZrLogRec rec = SampleRecord();
        rec.time = i;
        rec.pos = u64(i) * 1000003;
        dataset.recs.push_back(rec);
    }
    dataset.WriteIndex(Log());
    QCOMPARE(QFileInfo(Index()).size(), 46 + 160 * qint64(count));
    ZrDataset read(navType, SampleTypes());
    SetTimes(read, std::vector<double>(5000, 1.0)); // whatever it held before
    QVERIFY(read.ReadIndex(Log()));
    QVERIFY(SameRecords(read.recs, dataset.recs));
}

void tst_ZrDatasetIndex::indexThatCannotBeWritten()
{
    ZrDataset dataset(navType, SampleTypes());
    SetTimes(dataset, {1.0});
    dataset.WriteIndex(m_dir->filePath(QStringLiteral("missing/a.log")));
    QVERIFY(QDir().mkdir(Index()));
    dataset.WriteIndex(Log());
    QCOMPARE(m_messages->Take(), QStringList());
    QVERIFY(QFileInfo(Index()).isDir());
}

void tst_ZrDatasetIndex::indexCutByAFullDiskIsRejected_data()
{
    QTest::addColumn<int>("room");
    QTest::addColumn<QByteArray>("message");
    const QByteArray magic("Index file \"%s\" magic number corrupted");
    const QByteArray size("Index file \"%s\" has wrong size");
    QTest::newRow("nothing") << 0 << magic;
    QTest::newRow("the header") << 46 << size;
    QTest::newRow("whole records") << 46 + 2 * 160 << size;
    QTest::newRow("all but a byte") << 46 + 3 * 160 - 1 << size;
}

void tst_ZrDatasetIndex::indexCutByAFullDiskIsRejected()
{
#ifdef Q_OS_UNIX
    QFETCH(int, room);
    QFETCH(QByteArray, message);
    LogBytes log;
    for (int i = 0; i < 3; ++i)
        log.Add(SubItem(navType, i));
    QVERIFY(WriteWhole(Log(), log.Bytes()));
    // In a process of its own, which may write so many bytes to a file and no more.
    const int result = RunInChild([&] {
        const rlimit limit{rlim_t(room), rlim_t(room)};
        if (std::signal(SIGXFSZ, SIG_IGN) == SIG_ERR || setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 2;
        ZrDataset dataset(navType, SampleTypes());
        dataset.ReadFile(Log());
        return dataset.recs.size() == 3 && dataset.lastRec == 2 ? 0 : 3;
    });
    QCOMPARE(result, 0);
    QCOMPARE(QFileInfo(Index()).size(), qint64(room));
    ZrDataset dataset(navType, SampleTypes());
    dataset.ReadFile(Log());
    QCOMPARE(m_messages->Take().first(), Message(message.constData()));
    QCOMPARE(dataset.recs.size(), std::size_t(3));
    QCOMPARE(QFileInfo(Index()).size(), qint64(46 + 3 * 160));
#endif
}

void tst_ZrDatasetIndex::eachCheckHasItsMessage_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("message");
    const QByteArray good = IndexHeader(1) + SampleRecordBytes();
    const QByteArray magic("Index file \"%s\" magic number corrupted");
    const QByteArray old("Index file \"%s\" is an old format");
    const QByteArray types("Index file \"%s\" is out of date (changed idx/crd types)");
    const QByteArray size("Index file \"%s\" has wrong size");
    QTest::newRow("empty file") << QByteArray("") << magic;
    QTest::newRow("text") << QByteArray("not an index") << magic;
    QTest::newRow("magic of the log") << Patched(good, 0, QByteArray::fromHex("44332211")) << magic;
    QTest::newRow("magic big-endian") << Patched(good, 0, QByteArray::fromHex("aabbccdd")) << magic;
    QTest::newRow("version 1") << Patched(good, 4, QByteArray::fromHex("0100")) << old;
    QTest::newRow("version 3") << Patched(good, 4, QByteArray::fromHex("0300")) << old;
    QTest::newRow("version 0x0200") << Patched(good, 4, QByteArray::fromHex("0002")) << old;
    QTest::newRow("index type") << Patched(good, 12, QByteArray::fromHex("0000")) << types;
    QTest::newRow("index sub-type") << Patched(good, 10, QByteArray::fromHex("0000")) << types;
    QTest::newRow("one crd type") << Patched(good, 44, QByteArray::fromHex("0300")) << types;
    QTest::newRow("one byte more") << good + 'x' << size;
    QTest::newRow("one byte less") << good.left(good.size() - 1) << size;
    QTest::newRow("a record more") << good + SampleRecordBytes() << size;
    QTest::newRow("header alone") << good.left(46) << size;
    QTest::newRow("count 0 with a record") << Patched(good, 6, QByteArray::fromHex("00000000")) << size;
    QTest::newRow("count 2") << Patched(good, 6, QByteArray::fromHex("02000000")) << size;
    QTest::newRow("greatest count") << Patched(good, 6, QByteArray::fromHex("ffffffff")) << size;
}

void tst_ZrDatasetIndex::eachCheckHasItsMessage()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, message);
    QVERIFY(WriteWhole(Index(), content));
    ZrDataset dataset(navType, SampleTypes());
    SetTimes(dataset, {7.0});
    QVERIFY(!dataset.ReadIndex(Log()));
    QCOMPARE(m_messages->Take(), QStringList(Message(message.constData())));
    QCOMPARE(dataset.recs.size(), std::size_t(1)); // untouched
    QCOMPARE(double(dataset.recs[0].time), 7.0);
}

void tst_ZrDatasetIndex::checksComeInOrder()
{
    // Everything is wrong; what is put right bit by bit uncovers the next check.
    QByteArray bytes(47, 'x');
    ZrDataset dataset(navType, SampleTypes());
    const auto messageFor = [&](const QByteArray& content) {
        WriteWhole(Index(), content);
        const bool taken = dataset.ReadIndex(Log());
        const QStringList messages = m_messages->Take();
        return taken || messages.size() != 1 ? QStringLiteral("taken") : messages.first();
    };
    QVERIFY(!dataset.ReadIndex(Log()));
    QCOMPARE(m_messages->Take(), QStringList(Message("Cannot open index file: %s")));
    QCOMPARE(messageFor(bytes), Message("Index file \"%s\" magic number corrupted"));
    bytes = Patched(bytes, 0, QByteArray::fromHex("ddccbbaa"));
    QCOMPARE(messageFor(bytes), Message("Index file \"%s\" is an old format"));
    bytes = Patched(bytes, 4, QByteArray::fromHex("0200"));
    QCOMPARE(messageFor(bytes), Message("Index file \"%s\" is out of date (changed idx/crd types)"));
    bytes = Patched(bytes, 10, IndexHeader(0).mid(10));
    QCOMPARE(messageFor(bytes), Message("Index file \"%s\" has wrong size"));
    bytes = Patched(bytes, 6, QByteArray::fromHex("00000000")).left(46);
    QCOMPARE(messageFor(bytes), QStringLiteral("taken"));
}

void tst_ZrDatasetIndex::everyTypeHalfIsCompared()
{
    QVERIFY(WriteWhole(Index(), IndexHeader(1) + SampleRecordBytes()));
    for (int half = 0; half < 18; ++half) {
        ZrDataset dataset(navType, SampleTypes());
        CRecType& type = half < 2 ? dataset.idxType : dataset.crdTypes[std::size_t(half / 2 - 1)];
        (half % 2 ? type.type : type.sub) ^= 0x8000;
        QVERIFY2(!dataset.ReadIndex(Log()), QByteArray::number(half).constData());
        QCOMPARE(m_messages->Take(),
            QStringList(Message("Index file \"%s\" is out of date (changed idx/crd types)")));
    }
    // The same types in other slots are other types.
    ZrDataset dataset(navType, SampleTypes());
    std::swap(dataset.crdTypes[0], dataset.crdTypes[1]);
    QVERIFY(!dataset.ReadIndex(Log()));
}

void tst_ZrDatasetIndex::truncatedAtEveryOffset()
{
    const QByteArray good = IndexHeader(2) + SampleRecordBytes() + SampleRecordBytes();
    ZrDataset dataset(navType, SampleTypes());
    for (int cut = 0; cut < good.size(); ++cut) {
        QVERIFY(WriteWhole(Index(), good.left(cut)));
        QVERIFY2(!dataset.ReadIndex(Log()), QByteArray::number(cut).constData());
        QCOMPARE(m_messages->Take().size(), 1);
        QVERIFY(dataset.recs.empty());
    }
}

void tst_ZrDatasetIndex::everyHeaderByteCounts()
{
    const QByteArray good = IndexHeader(2) + SampleRecordBytes() + SampleRecordBytes();
    ZrDataset dataset(navType, SampleTypes());
    for (int offset = 0; offset < 46; ++offset)
        for (int bit = 0; bit < 8; ++bit) {
            QVERIFY(WriteWhole(Index(), Flipped(good, offset, 1 << bit)));
            QVERIFY2(!dataset.ReadIndex(Log()), QByteArray::number(offset).constData());
        }
    QVERIFY(WriteWhole(Index(), good));
    QVERIFY(dataset.ReadIndex(Log()));
}

void tst_ZrDatasetIndex::countThatWrapsIn32Bits_data()
{
    QTest::addColumn<uint>("count");
    // 160 x 0x08000000 is 5 x 2^32, so these counts look like 0, 1 and 2 to 32-bit arithmetic.
    QTest::newRow("as none") << 0x08000000u;
    QTest::newRow("as one") << 0x08000001u;
    QTest::newRow("as two") << 0x08000002u;
    QTest::newRow("as one, larger") << 0xf8000001u;
}

void tst_ZrDatasetIndex::countThatWrapsIn32Bits()
{
    QFETCH(uint, count);
    const int records = int(count & 0x3);
    QByteArray bytes = IndexHeader(count);
    for (int i = 0; i < records; ++i)
        bytes += SampleRecordBytes();
    QVERIFY(WriteWhole(Index(), bytes));
    ZrDataset dataset(navType, SampleTypes());
    QVERIFY(!dataset.ReadIndex(Log()));
    QCOMPARE(m_messages->Take(), QStringList(Message("Index file \"%s\" has wrong size")));
    QCOMPARE(dataset.recs.capacity(), std::size_t(0));
}

void tst_ZrDatasetIndex::countOfNoneIsAnIndex()
{
    QVERIFY(WriteWhole(Index(), IndexHeader(0)));
    QVERIFY(WriteWhole(Log(), LogBytes().Add(TimedItem(0x0403, 1.0)).Bytes()));
    ZrDataset dataset(navType, SampleTypes());
    SetTimes(dataset, {7.0});
    QVERIFY(dataset.ReadIndex(Log()));
    QVERIFY(dataset.recs.empty());
    QCOMPARE(m_messages->Take(), QStringList(QStringLiteral("Read 0 from index file: \"%1\"").arg(Index())));
    // The log is not looked at.
    DatasetSignals heard(dataset);
    dataset.ReadFile(Log());
    QCOMPARE(heard.Take(),
        (QStringList{QStringLiteral("PercentLoad 0"), QStringLiteral("NewDataset, 0 records, current -1"),
            QStringLiteral("PercentLoad 100")}));
}

void tst_ZrDatasetIndex::shortHeaderCountsAsZeros()
{
    // The types that are cut off are {0, 0}, and so are the dataset's: the checks go on to the size.
    ZrDataset dataset;
    for (const char* hex : {"ddccbbaa0200", "ddccbbaa02"}) {
        QVERIFY(WriteWhole(Index(), QByteArray::fromHex(hex)));
        QVERIFY(!dataset.ReadIndex(Log()));
        QCOMPARE(m_messages->Take(), QStringList(Message("Index file \"%s\" has wrong size")));
    }
    QVERIFY(WriteWhole(Index(), QByteArray::fromHex("ddccbb")));
    QVERIFY(!dataset.ReadIndex(Log()));
    QCOMPARE(m_messages->Take(), QStringList(Message("Index file \"%s\" magic number corrupted")));
}

void tst_ZrDatasetIndex::directoryIsNoIndex()
{
    QVERIFY(QDir().mkdir(Index()));
    ZrDataset dataset(navType, SampleTypes());
    QVERIFY(!dataset.ReadIndex(Log()));
    QCOMPARE(m_messages->Take(), QStringList(Message("Cannot open index file: %s")));
}

void tst_ZrDatasetIndex::fileWithoutPermission()
{
#ifdef Q_OS_UNIX
    QVERIFY(WriteWhole(Index(), IndexHeader(1) + SampleRecordBytes()));
    QVERIFY(QFile::setPermissions(Index(), QFile::Permissions()));
    const QFile::Permissions openToAll = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner
        | QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    QVERIFY(QFile::setPermissions(m_dir->path(), openToAll));
    const QString expected = Message("Cannot open index file: %s");
    // In a process of its own: permissions mean nothing to the superuser, who may run the tests.
    const int result = RunInChild([&] {
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0))
            return 2;
        ZrDataset dataset(navType, SampleTypes());
        if (dataset.ReadIndex(Log()))
            return 3;
        return m_messages->Take() == QStringList(expected) ? 0 : 4;
    });
    QCOMPARE(result, 0);
#endif
}

void tst_ZrDatasetIndex::moreRecordsThanAnyIndexCounts()
{
    // 343 GB of which the file has none: its size is right, but records are counted by 32-bit integers.
    const quint32 count = 0x80000000;
    QVERIFY(WriteWhole(Index(), IndexHeader(count)));
    QVERIFY(QFile::resize(Index(), 46 + 160 * qint64(count)));
    ZrDataset dataset(navType, SampleTypes());
    SetTimes(dataset, {7.0});
    QVERIFY(!dataset.ReadIndex(Log()));
    QCOMPARE(m_messages->Take(), QStringList(Message("Failed reading all indexes from \"%s\"")));
    QVERIFY(dataset.recs.empty());
}

void tst_ZrDatasetIndex::tableThatFindsNoMemory()
{
#ifdef Q_OS_UNIX
    if (underSanitizer)
        QSKIP("a sanitizer needs more address space than the limit leaves");
    const quint32 count = 0x10000000; // 43 GB
    QVERIFY(WriteWhole(Index(), IndexHeader(count)));
    QVERIFY(QFile::resize(Index(), 46 + 160 * qint64(count)));
    const QString expected = Message("Failed reading all indexes from \"%s\"");
    const int result = RunInChild([&] {
        const rlimit limit{rlim_t(4) << 30, rlim_t(4) << 30};
        if (setrlimit(RLIMIT_AS, &limit) != 0)
            return 2;
        ZrDataset dataset(navType, SampleTypes());
        SetTimes(dataset, {7.0});
        if (dataset.ReadIndex(Log()) || !dataset.recs.empty())
            return 3;
        return m_messages->Take() == QStringList(expected) ? 0 : 4;
    });
    QCOMPARE(result, 0);
#endif
}

void tst_ZrDatasetIndex::fileThatShrinksWhileItIsRead()
{
    // Another thread makes the file longer and shorter all the time. Whatever a read meets, it ends in a
    // whole table or in none.
    const int count = 20000;
    QByteArray bytes = IndexHeader(count);
    for (int i = 0; i < count; ++i)
        bytes += SampleRecordBytes();
    QVERIFY(WriteWhole(Index(), bytes));
    std::atomic<bool> running{true};
    std::thread shrinker([&] {
        while (running) {
            QFile::resize(Index(), bytes.size() / 2);
            QFile::resize(Index(), bytes.size());
        }
    });
    int whole = 0;
    int none = 0;
    int other = 0;
    for (int round = 0; round < 300; ++round) {
        ZrDataset dataset(navType, SampleTypes());
        const bool taken = dataset.ReadIndex(Log());
        whole += taken && dataset.recs.size() == std::size_t(count);
        none += !taken && dataset.recs.empty();
        const QStringList messages = m_messages->Take();
        const bool known = messages.size() == 1
            && (taken || messages[0] == Message("Index file \"%s\" has wrong size")
                || messages[0] == Message("Failed reading all indexes from \"%s\""));
        other += !known;
    }
    running = false;
    shrinker.join();
    QCOMPARE(whole + none, 300);
    QCOMPARE(other, 0);
}

void tst_ZrDatasetIndex::rejectedIndexIsWrittenAnew_data()
{
    QTest::addColumn<QByteArray>("damage");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("one byte more") << QByteArray("size") << QByteArray("Index file \"%s\" has wrong size");
    QTest::newRow("another crd type")
        << QByteArray("types") << QByteArray("Index file \"%s\" is out of date (changed idx/crd types)");
    QTest::newRow("magic") << QByteArray("magic") << QByteArray("Index file \"%s\" magic number corrupted");
    QTest::newRow("version") << QByteArray("version") << QByteArray("Index file \"%s\" is an old format");
    QTest::newRow("missing") << QByteArray("missing") << QByteArray("Cannot open index file: %s");
}

void tst_ZrDatasetIndex::rejectedIndexIsWrittenAnew()
{
    QFETCH(QByteArray, damage);
    QFETCH(QByteArray, message);
    LogBytes log;
    for (int i = 0; i < 3; ++i)
        log.Add(TimedItem(18, 0.0, "c")).Add(SubItem(navType, i));
    QVERIFY(WriteWhole(Log(), log.Bytes()));
    ZrDataset dataset(navType, SampleTypes());
    dataset.ReadFile(Log());
    const QByteArray good = ReadWhole(Index());
    QCOMPARE(good.size(), 46 + 3 * 160);
    const std::vector<ZrLogRec> records = dataset.recs;
    m_messages->Take();

    if (damage == "size")
        QVERIFY(AppendTo(Index(), "x"));
    else if (damage == "types")
        QVERIFY(WriteWhole(Index(), Flipped(good, 14, 1)));
    else if (damage == "magic")
        QVERIFY(WriteWhole(Index(), Flipped(good, 0, 1)));
    else if (damage == "version")
        QVERIFY(WriteWhole(Index(), Flipped(good, 4, 1)));
    else
        QVERIFY(QFile::remove(Index()));
    ZrDataset again(navType, SampleTypes());
    again.ReadFile(Log());
    QCOMPARE(m_messages->Take(),
        (QStringList{Message(message.constData()), QStringLiteral("Number of items read: 6"),
            QStringLiteral("Number of vehicle entries: 3")}));
    QVERIFY(SameRecords(again.recs, records));
    QCOMPARE(ReadWhole(Index()), good);
}

void tst_ZrDatasetIndex::silentConsoleSaysNothing()
{
    ZrConsole::debug = false;
    ZrDataset dataset(navType, SampleTypes());
    const bool taken = dataset.ReadIndex(Log());
    ZrConsole::debug = true;
    QVERIFY(!taken);
    QCOMPARE(m_messages->Take(), QStringList());
}

QTEST_GUILESS_MAIN(tst_ZrDatasetIndex)
#include "tst_ZrDatasetIndex.moc"
