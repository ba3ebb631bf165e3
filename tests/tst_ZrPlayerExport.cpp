// The exports of ZrPlayer that copy items, held byte for byte against files assembled here.

#include "ZrLogFixture.h"

#include <QDir>
#include <QtTest/QtTest>

#include <climits>
#include <thread>
#include <vector>

namespace {

Item Full(quint16 type, const QByteArray& payload)
{
    Item item = MakeItem(type, payload, static_cast<quint16>(type + 1));
    item.sub = 11;
    item.format = 22;
    item.time = 1602049684.5 + type;
    return item;
}

/// Items of 45, 56, 40, 45, 45 and 41 bytes; they start at 48, 93, 149, 189, 234 and 279, the end is 320.
QVector<Item> SampleItems()
{
    QVector<Item> items = {Full(4, "alpha"), Full(300, "compressed bytes"), Full(4, ""), Full(9, "gamma"),
        Full(65535, "delta"), Full(4, "z")};
    items[1].compressed = true;
    items[1].dataSize = 99;
    return items;
}

LogBytes SampleLog()
{
    LogBytes log;
    for (const Item& item : SampleItems())
        log.Add(item);
    return log;
}

/// What an exported log must hold behind its header: the items of these numbers.
QByteArray ItemBytes(const QVector<int>& numbers)
{
    QByteArray bytes;
    for (int number : numbers)
        bytes += SampleItems().at(number).Bytes();
    return bytes;
}

/// A table that lets through \p types.
QVector<quint8> Filter(int length, const QVector<int>& types)
{
    QVector<quint8> table(length, 0);
    for (int type : types)
        table[type] = static_cast<quint8>(1 + type % 255); // anything but 0
    return table;
}

/// Writes \p bytes into a file, at \p offset, when the first item is reported.
class WriterMeanwhile final : public IZrProgress
{
public:
    WriterMeanwhile(const QString& path, qint64 offset, const QByteArray& bytes)
        : m_file(path)
        , m_offset(offset)
        , m_bytes(bytes)
    {
    }

    void UpdateProgress(int percent) override
    {
        if (percent == 0 || m_file.isOpen())
            return;
        const bool ok = m_file.open(QIODevice::ReadWrite) && m_file.seek(m_offset);
        written = ok && m_file.write(m_bytes) == m_bytes.size() && m_file.flush();
    }

    int GetProgress() override { return 0; }

    bool written = false;

private:
    QFile m_file;
    qint64 m_offset;
    QByteArray m_bytes;
};

constexpr quint64 outOfRange = quint64(1) << 63;

} // namespace

class tst_ZrPlayerExport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void segment_data();
    void segment();
    void segmentKeepsEveryByteOfTheItems();
    void segmentReportsProgress_data();
    void segmentReportsProgress();
    void segmentProgressIsLimitedToInt();
    void segmentWithFilter_data();
    void segmentWithFilter();
    void segmentWithFilterReportsPassingItemsOnly();
    void segmentWithVideo_data();
    void segmentWithVideo();
    void segmentWithVideoThatCannotSeekOrRead_data();
    void segmentWithVideoThatCannotSeekOrRead();
    void filteredFileAsLog_data();
    void filteredFileAsLog();
    void filteredFileAsPayloads();
    void filteredFileReportsEveryItem();
    void messagesOfASuccess();
    void emptyLogs_data();
    void emptyLogs();
    void largeItemsKeepTheirPlace();
    void itemCompletedMeanwhileIsCopiedWhole();
    void concurrentExportsOfDifferentFiles();

private:
    QString Path(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    /// The items of the output log, after a look at its fresh header.
    QByteArray OutputItems()
    {
        const QByteArray bytes = ReadWhole(m_out);
        if (bytes.size() < 48)
            return QByteArrayLiteral("no header");
        const double created = DoubleAt(bytes, 40);
        const double now = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
        if (bytes.left(48) != FileHeader(created) || created < now - 60 || created > now)
            return QByteArrayLiteral("a header that is not fresh");
        return bytes.mid(48);
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
    QString m_in;
    QString m_out;
};

void tst_ZrPlayerExport::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
    m_in = Path("in.log");
    m_out = Path("out.log");
    QVERIFY(WriteWhole(m_in, SampleLog().Bytes()));
    QCOMPARE(SampleLog().Size(), u64(320));
}

void tst_ZrPlayerExport::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrPlayerExport::segment_data()
{
    QTest::addColumn<quint64>("from");
    QTest::addColumn<quint64>("to");
    QTest::addColumn<QVector<int>>("items"); // a single -1: refused
    const auto row = [](const char* name, quint64 from, quint64 to, const QVector<int>& items) {
        QTest::newRow(name) << from << to << items;
    };
    row("everything", 48, 320, {0, 1, 2, 3, 4, 5});
    row("to beyond the end", 48, 1000, {0, 1, 2, 3, 4, 5});
    row("to the greatest position", 48, ~quint64(0), {0, 1, 2, 3, 4, 5});
    row("one item", 93, 149, {1});
    row("to within an item", 93, 150, {1, 2});
    row("to on the last byte of an item", 93, 188, {1, 2});
    row("to on the next item", 93, 189, {1, 2});
    row("one byte", 93, 94, {1});
    row("the end", 234, 320, {4, 5});
    row("the last item", 279, 320, {5});
    row("to = from", 93, 93, {});
    row("to < from", 149, 93, {});
    row("to = 0", 48, 0, {});
    row("40 bytes remain", 280, 320, {});
    row("39 bytes remain", 281, 320, {});
    row("from = size", 320, 400, {});
    row("from beyond the end", 500, 600, {});
    row("from far beyond the end", quint64(1) << 40, ~quint64(0), {});
    row("from = 2^63", outOfRange, ~quint64(0), {-1});
    row("from the greatest position", ~quint64(0), ~quint64(0), {-1});
    row("from within an item", 94, 320, {-1});
    row("from the file header", 0, 320, {-1});
}

void tst_ZrPlayerExport::segment()
{
    QFETCH(quint64, from);
    QFETCH(quint64, to);
    QFETCH(QVector<int>, items);
    const bool refused = items == QVector<int>{-1};
    QCOMPARE(ZrPlayer::ExportFileSegment(m_in, m_out, from, to, nullptr), !refused);
    if (!refused)
        QCOMPARE(OutputItems().toHex(), ItemBytes(items).toHex());
    else if (QFile::exists(m_out))
        QCOMPARE(OutputItems(), QByteArray());
    QCOMPARE(ReadWhole(m_in), SampleLog().Bytes());
}

void tst_ZrPlayerExport::segmentKeepsEveryByteOfTheItems()
{
    // Reserved fields, sizes that contradict each other and odd flags travel as they are.
    QByteArray item = QByteArray::fromHex("ddccbbaa28000000") + QByteArray(24, '\xA7')
        + QByteArray::fromHex("05000000a7a7a7a7") + "bytes";
    QVERIFY(WriteWhole(m_in, FileHeader() + item + item));
    QVERIFY(ZrPlayer::ExportFileSegment(m_in, m_out, 48, 138, nullptr));
    QCOMPARE(OutputItems().toHex(), (item + item).toHex());
}

void tst_ZrPlayerExport::segmentReportsProgress_data()
{
    QTest::addColumn<quint64>("from");
    QTest::addColumn<quint64>("to");
    QTest::addColumn<QVector<int>>("percents");
    // 45, 101, 141, 186, 231 and 272 of 272 bytes.
    QTest::newRow("everything") << quint64(48) << quint64(320) << QVector<int>{0, 16, 37, 51, 68, 84, 100};
    // 56, 96 of 60 bytes: what is copied whole beyond the end counts.
    QTest::newRow("above 100") << quint64(93) << quint64(153) << QVector<int>{0, 93, 160};
    QTest::newRow("one byte") << quint64(93) << quint64(94) << QVector<int>{0, 5600};
    QTest::newRow("nothing") << quint64(93) << quint64(93) << QVector<int>{0};
    QTest::newRow("refused") << outOfRange << quint64(320) << QVector<int>{0};
}

void tst_ZrPlayerExport::segmentReportsProgress()
{
    QFETCH(quint64, from);
    QFETCH(quint64, to);
    QFETCH(QVector<int>, percents);
    ProgressList progress;
    ZrPlayer::ExportFileSegment(m_in, m_out, from, to, &progress);
    QCOMPARE(progress.values, percents);
}

void tst_ZrPlayerExport::segmentProgressIsLimitedToInt()
{
    constexpr int payload = 22000000; // 100 times as much is more than an int holds
    Item item = MakeItem(1, QByteArray());
    QByteArray header = item.Header();
    header.replace(32, 4, QByteArray::fromHex("80b14f01"));
    QCOMPARE(LeAt<quint32>(header, 32), quint32(payload));
    QVERIFY(WriteWhole(m_in, FileHeader() + header));
    QVERIFY(QFile::resize(m_in, 48 + 40 + payload));
    ProgressList progress;
    QVERIFY(ZrPlayer::ExportFileSegment(m_in, m_out, 48, 49, &progress));
    QCOMPARE(progress.values, (QVector<int>{0, INT_MAX}));
    QCOMPARE(QFileInfo(m_out).size(), qint64(48 + 40 + payload));
}

void tst_ZrPlayerExport::segmentWithFilter_data()
{
    filteredFileAsLog_data();
    QTest::newRow("within a range") << Filter(10, {4}) << quint64(93) << quint64(279) << QVector<int>{2};
    QTest::newRow("nothing in the range")
        << Filter(10, {4}) << quint64(189) << quint64(279) << QVector<int>{};
}

void tst_ZrPlayerExport::segmentWithFilter()
{
    QFETCH(QVector<quint8>, filter);
    QFETCH(quint64, from);
    QFETCH(quint64, to);
    QFETCH(QVector<int>, items);
    QVERIFY(ZrPlayer::ExportFileSegment(
        m_in, m_out, filter.data(), static_cast<u16>(filter.size()), from, to, nullptr));
    QCOMPARE(OutputItems().toHex(), ItemBytes(items).toHex());
    QCOMPARE(m_messages->Take().last(), QStringLiteral("Exported %1 Items").arg(items.size()));
}

void tst_ZrPlayerExport::segmentWithFilterReportsPassingItemsOnly()
{
    QVector<quint8> filter = Filter(10, {4});
    ProgressList progress;
    QVERIFY(ZrPlayer::ExportFileSegment(m_in, m_out, filter.data(), 10, 48, 320, &progress));
    QCOMPARE(progress.values, (QVector<int>{0, 16, 51, 100}));
}

void tst_ZrPlayerExport::segmentWithVideo_data()
{
    QTest::addColumn<quint64>("from");
    QTest::addColumn<quint64>("to");
    QTest::addColumn<quint64>("lead");
    QTest::addColumn<QVector<int>>("items");
    QTest::addColumn<QVector<int>>("percents");
    const auto row = [](const char* name, quint64 from, quint64 to, quint64 lead, const QVector<int>& items,
                         const QVector<int>& percents) {
        QTest::newRow(name) << from << to << lead << items << percents;
    };
    // The position starts at from + the length of the lead item.
    // Lead of 45 bytes: 138, 194 (of 149 wanted).
    row("short of the end by the lead", 93, 149, 48, {0, 1}, {0, 180});
    // 138, 194, 234, 279: the item at 234 is left out although it starts before 279.
    row("several items", 93, 279, 48, {0, 1, 2, 3}, {0, 54, 75, 100});
    // Lead of 56 bytes: 149 is the end already.
    row("lead as long as the segment", 93, 149, 93, {1}, {0});
    // 104, 149, 205, 245, 290: 30 bytes remain by its account, the last two items stay out.
    row("the whole file", 48, 320, 93, {1, 0, 1, 2, 3}, {0, 37, 57, 72, 88});
    row("to beyond the end", 48, 100000, 93, {1, 0, 1, 2, 3}, {0, 0, 0, 0, 0});
    row("to = from", 93, 93, 48, {0}, {0});
    row("to < from", 149, 93, 48, {0}, {0});
    row("from at the last item", 279, 320, 48, {0}, {0});
    row("from beyond the end", 5000, 6000, 48, {0}, {0});
    row("lead behind the segment", 48, 149, 279, {5, 0, 1}, {0, 85, 140});
    row("lead is empty", 48, 100, 149, {2, 0}, {0, 163});
}

void tst_ZrPlayerExport::segmentWithVideo()
{
    QFETCH(quint64, from);
    QFETCH(quint64, to);
    QFETCH(quint64, lead);
    QFETCH(QVector<int>, items);
    QFETCH(QVector<int>, percents);
    ProgressList progress;
    QVERIFY(ZrPlayer::ExportFileSegmentWithVideo(m_in, m_out, from, to, lead, &progress));
    QCOMPARE(OutputItems().toHex(), ItemBytes(items).toHex());
    QCOMPARE(progress.values, percents);
    QCOMPARE(m_messages->Take().last(), QStringLiteral("Exported %1 Items").arg(items.size()));
}

void tst_ZrPlayerExport::segmentWithVideoThatCannotSeekOrRead_data()
{
    QTest::addColumn<quint64>("from");
    QTest::addColumn<quint64>("lead");
    QTest::addColumn<bool>("leadIsCopied");
    QTest::newRow("lead at 2^63") << quint64(48) << outOfRange << false;
    QTest::newRow("lead at the end") << quint64(48) << quint64(320) << false;
    QTest::newRow("lead beyond the end") << quint64(48) << quint64(5000) << false;
    QTest::newRow("lead within an item") << quint64(48) << quint64(50) << false;
    QTest::newRow("from at 2^63") << outOfRange << quint64(93) << true;
    QTest::newRow("from within an item") << quint64(50) << quint64(93) << true;
}

void tst_ZrPlayerExport::segmentWithVideoThatCannotSeekOrRead()
{
    QFETCH(quint64, from);
    QFETCH(quint64, lead);
    QFETCH(bool, leadIsCopied);
    ProgressList progress;
    QVERIFY(!ZrPlayer::ExportFileSegmentWithVideo(m_in, m_out, from, from + 200, lead, &progress));
    QCOMPARE(progress.values, QVector<int>{0});
    if (leadIsCopied)
        QCOMPARE(OutputItems().toHex(), ItemBytes({1}).toHex());
    else if (QFile::exists(m_out))
        QCOMPARE(OutputItems(), QByteArray());
}

void tst_ZrPlayerExport::filteredFileAsLog_data()
{
    QTest::addColumn<QVector<quint8>>("filter");
    QTest::addColumn<quint64>("from");
    QTest::addColumn<quint64>("to");
    QTest::addColumn<QVector<int>>("items");
    const auto row = [](const char* name, const QVector<quint8>& filter, const QVector<int>& items) {
        QTest::newRow(name) << filter << quint64(48) << quint64(320) << items;
    };
    row("type 4", Filter(10, {4}), {0, 2, 5});
    row("types 4 and 9", Filter(10, {4, 9}), {0, 2, 3, 5});
    row("just too short for 9", Filter(9, {4}), {0, 2, 5});
    row("just too short for 4", Filter(4, {0, 1, 2, 3}), {});
    row("one type: 0", Filter(1, {0}), {});
    row("no entry set", Filter(400, {}), {});
    row("type 300", Filter(301, {300}), {1});
    row("300 entries do not reach 300", Filter(300, {4, 299}), {0, 2, 5});
    row("no entries", QVector<quint8>(), {});
    // 65,535 entries reach up to type 65,534.
    row("all that can be asked for", QVector<quint8>(65535, 1), {0, 1, 2, 3, 5});
}

void tst_ZrPlayerExport::filteredFileAsLog()
{
    QFETCH(QVector<quint8>, filter);
    QFETCH(QVector<int>, items);
    QVERIFY(ZrPlayer::ExportFilteredFile(
        m_in, m_out, filter.data(), static_cast<u16>(filter.size()), true, nullptr));
    QCOMPARE(OutputItems().toHex(), ItemBytes(items).toHex());
    QCOMPARE(m_messages->Take().last(), QStringLiteral("Exported %1 Items").arg(items.size()));
}

void tst_ZrPlayerExport::filteredFileAsPayloads()
{
    QVERIFY(WriteWhole(m_out, "what was there before and is longer than the output"));
    QVector<quint8> filter = Filter(301, {4, 300});
    QVERIFY(ZrPlayer::ExportFilteredFile(m_in, m_out, filter.data(), 301, false, nullptr));
    QCOMPARE(ReadWhole(m_out), QByteArray("alphacompressed bytesz"));
    QCOMPARE(m_messages->Take(), QStringList(QStringLiteral("Exported 4 Items")));

    QVERIFY(ZrPlayer::ExportFilteredFile(m_in, m_out, filter.data(), 1, false, nullptr));
    QCOMPARE(QFileInfo(m_out).size(), qint64(0));
}

void tst_ZrPlayerExport::filteredFileReportsEveryItem()
{
    QVector<quint8> filter = Filter(10, {9});
    // 93, 149, 189, 234, 279, 320 of 320.
    const QVector<int> percents = {0, 29, 46, 59, 73, 87, 100};
    for (bool asLog : {true, false}) {
        ProgressList progress;
        QVERIFY(ZrPlayer::ExportFilteredFile(m_in, m_out, filter.data(), 10, asLog, &progress));
        QCOMPARE(progress.values, percents);
    }
}

void tst_ZrPlayerExport::messagesOfASuccess()
{
    const QStringList expected
        = {Line("Opened: ", m_out), QStringLiteral("Closed Log File"), QStringLiteral("Exported 6 Items")};
    QVERIFY(ZrPlayer::ExportFileSegment(m_in, m_out, 48, 320, nullptr));
    QCOMPARE(m_messages->Take(), expected);
    QVector<quint8> filter = Filter(301, {4, 300, 9});
    QVERIFY(ZrPlayer::ExportFilteredFile(m_in, m_out, filter.data(), 301, true, nullptr));
    QCOMPARE(m_messages->Take(), QStringList(expected.mid(0, 2) << QStringLiteral("Exported 5 Items")));
}

void tst_ZrPlayerExport::emptyLogs_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("header only") << FileHeader() << QByteArray();
    QTest::newRow("a single empty item") << LogBytes().Add(Full(4, "")).Bytes() << QByteArray();
    QTest::newRow("39 bytes of an item") << LogBytes().Add(Full(4, "")).Bytes().left(87) << QByteArray();
    QTest::newRow("an empty item at the end")
        << LogBytes().Add(Full(4, "x")).Add(Full(4, "")).Bytes() << Full(4, "x").Bytes();
    QTest::newRow("rest of an item at the end")
        << LogBytes().Add(Full(4, "x")).Add(Full(4, "")).Bytes().left(48 + 41 + 40) << Full(4, "x").Bytes();
}

/// With 40 bytes or fewer left copying ends: an empty item at the very end is not exported.
void tst_ZrPlayerExport::emptyLogs()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, expected);
    QVERIFY(WriteWhole(m_in, bytes));
    QVector<quint8> filter = Filter(5, {4});
    QVERIFY(ZrPlayer::ExportFileSegment(m_in, m_out, 48, 10000, nullptr));
    QCOMPARE(OutputItems(), expected);
    QVERIFY(ZrPlayer::ExportFileSegment(m_in, m_out, filter.data(), 5, 48, 10000, nullptr));
    QCOMPARE(OutputItems(), expected);
    QVERIFY(ZrPlayer::ExportFilteredFile(m_in, m_out, filter.data(), 5, true, nullptr));
    QCOMPARE(OutputItems(), expected);
    QVERIFY(ZrPlayer::ExportFilteredFile(m_in, m_out, filter.data(), 5, false, nullptr));
    QCOMPARE(ReadWhole(m_out), expected.mid(40));
}

void tst_ZrPlayerExport::largeItemsKeepTheirPlace()
{
    LogBytes log;
    for (int size : {10, 2000000, 20, 30, 1048576, 1048575, 5000000, 3000000, 40})
        log.Add(MakeItem(1, QByteArray(size, static_cast<char>('a' + size % 23))));
    QVERIFY(WriteWhole(m_in, log.Bytes()));
    QVERIFY(ZrPlayer::ExportFileSegment(m_in, m_out, 48, log.Size(), nullptr));
    QVERIFY(OutputItems() == log.Bytes().mid(48));
}

/// The last item's header is the writer's placeholder when the export begins and complete when it gets there.
void tst_ZrPlayerExport::itemCompletedMeanwhileIsCopiedWhole()
{
    const QByteArray complete = SampleLog().Bytes();
    QVERIFY(WriteWhole(m_in, Patched(complete, 279 + 28, QByteArray(8, '\0'))));
    WriterMeanwhile writer(m_in, 279, complete.mid(279));
    QVERIFY(ZrPlayer::ExportFileSegment(m_in, m_out, 48, 320, &writer));
    QVERIFY(writer.written);
    QCOMPARE(OutputItems().toHex(), ItemBytes({0, 1, 2, 3, 4, 5}).toHex());
}

void tst_ZrPlayerExport::concurrentExportsOfDifferentFiles()
{
    constexpr int threadCount = 4;
    const auto logOf = [](int thread) {
        LogBytes log;
        for (int i = 0; i < 300; ++i)
            log.Add(MakeItem(
                static_cast<quint16>(i % 7), QByteArray((i * 13 + thread) % 900, char('a' + thread))));
        return log;
    };
    for (int thread = 0; thread < threadCount; ++thread)
        QVERIFY(WriteWhole(Path("in%1").arg(thread), logOf(thread).Bytes()));
    std::vector<int> failures(threadCount, 0);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            const QString in = Path("in%1").arg(thread);
            const QString out = Path("out%1").arg(thread);
            const QByteArray items = logOf(thread).Bytes().mid(48);
            u8 all[7] = {1, 1, 1, 1, 1, 1, 1};
            for (int round = 0; round < 20; ++round) {
                ProgressList progress;
                bool ok = ZrPlayer::ExportFileSegment(in, out, 48, ~u64(0), &progress)
                    && ReadWhole(out).mid(48) == items;
                ok = ok && ZrPlayer::ExportFilteredFile(in, out, all, 7, true, &progress)
                    && ReadWhole(out).mid(48) == items;
                ZrPlayer::ExportIndexInf(in, out);
                ok = ok && ReadWhole(out).startsWith("Index, Count\r\nTotal, 300\r\n0, 43\r\n");
                failures[static_cast<std::size_t>(thread)] += ok ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(failures, std::vector<int>(threadCount, 0));
}

QTEST_GUILESS_MAIN(tst_ZrPlayerExport)
#include "tst_ZrPlayerExport.moc"
