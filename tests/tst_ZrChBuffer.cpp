#include "ZrUtil/ZrChBuffer.h"
#include "ZrUtil/ZrGeoImg.h"

#include <QtTest/QtTest>

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <thread>
#include <type_traits>

class tst_ZrChBuffer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newBufferIsEmpty();
    void initialised();
    void released_data();
    void released();
    void linesGoRound();
    void partOfALine();
    void linesThatAreRefused();
    void entriesBelongToTheCaller();
    void moreThanMemoryHolds();
    void twoThreads();
    void geoImage();
};

void tst_ZrChBuffer::newBufferIsEmpty()
{
    static_assert(sizeof(ZrChEntry) == 24);
    static_assert(offsetof(ZrChEntry, time) == 8);
    ZrChBuffer buffer;
    QCOMPARE(buffer.width, 0);
    QCOMPARE(buffer.lines, 0);
    QCOMPARE(buffer.next, 0);
    QCOMPARE(buffer.dirty, 0U);
    u8 byte = 1;
    QVERIFY(!buffer.AddData(1.0, 1, &byte));
}

void tst_ZrChBuffer::initialised()
{
    ZrChBuffer buffer;
    buffer.InitBuffer(3, 2);
    QCOMPARE(buffer.width, 3);
    QCOMPARE(buffer.lines, 2);
    QCOMPARE(buffer.dirty, 1U);
    QVERIFY(buffer.data == std::vector<u8>(6, 0x0F));
    QCOMPARE(buffer.entries.size(), std::size_t(2));
    QCOMPARE(buffer.entries[1].time, 0.0F);
    // Anew: everything as at first.
    u8 bytes[3] = {1, 2, 3};
    QVERIFY(buffer.AddData(5.0, 3, bytes));
    buffer.InitBuffer(2, 3);
    QCOMPARE(buffer.next, 0);
    QVERIFY(buffer.data == std::vector<u8>(6, 0x0F));
    QCOMPARE(buffer.entries[0].time, 0.0F);
}

void tst_ZrChBuffer::released_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("lines");
    QTest::newRow("no width") << 0 << 10;
    QTest::newRow("no lines") << 10 << 0;
    QTest::newRow("negative width") << -1 << 10;
    QTest::newRow("negative lines") << 10 << std::numeric_limits<int>::min();
}

void tst_ZrChBuffer::released()
{
    QFETCH(int, width);
    QFETCH(int, lines);
    ZrChBuffer buffer;
    buffer.InitBuffer(4, 4);
    buffer.InitBuffer(width, lines);
    QCOMPARE(buffer.width, 0);
    QCOMPARE(buffer.lines, 0);
    QCOMPARE(buffer.data.capacity(), std::size_t(0));
    QCOMPARE(buffer.entries.capacity(), std::size_t(0));
    u8 byte = 1;
    QVERIFY(!buffer.AddData(1.0, 1, &byte));
}

void tst_ZrChBuffer::linesGoRound()
{
    ZrChBuffer buffer;
    buffer.InitBuffer(2, 3);
    for (u8 i = 1; i <= 5; ++i) {
        buffer.dirty = 0;
        u8 bytes[2] = {i, static_cast<u8>(10 * i)};
        ZrChEntry* entry = buffer.AddData(i + 0.5, 2, bytes);
        QCOMPARE(entry, &buffer.entries[static_cast<std::size_t>((i - 1) % 3)]);
        QCOMPARE(entry->time, static_cast<float>(i) + 0.5F);
        QCOMPARE(buffer.next, i % 3);
        QCOMPARE(buffer.dirty, 1U);
    }
    QVERIFY(buffer.data == (std::vector<u8>{4, 40, 5, 50, 3, 30}));
}

void tst_ZrChBuffer::partOfALine()
{
    ZrChBuffer buffer;
    buffer.InitBuffer(3, 1);
    u8 bytes[5] = {1, 2, 3, 4, 5};
    QVERIFY(buffer.AddData(0.0, 2, bytes));
    QVERIFY(buffer.data == (std::vector<u8>{1, 2, 0x0F}));
    QVERIFY(buffer.AddData(0.0, 5, bytes));
    QVERIFY(buffer.data == (std::vector<u8>{1, 2, 3}));
    QCOMPARE(buffer.next, 0);
}

void tst_ZrChBuffer::linesThatAreRefused()
{
    ZrChBuffer buffer;
    buffer.InitBuffer(3, 2);
    buffer.dirty = 0;
    u8 byte = 9;
    QVERIFY(!buffer.AddData(1.0, 0, &byte));
    QVERIFY(!buffer.AddData(1.0, -1, &byte));
    for (const int next : {2, std::numeric_limits<int>::max(), -1, std::numeric_limits<int>::min()}) {
        buffer.next = next;
        QVERIFY(!buffer.AddData(1.0, 1, &byte));
    }
    QCOMPARE(buffer.dirty, 0U);
    QVERIFY(buffer.data == std::vector<u8>(6, 0x0F));
}

void tst_ZrChBuffer::entriesBelongToTheCaller()
{
    ZrChBuffer buffer;
    buffer.InitBuffer(1, 1);
    u8 byte = 9;
    ZrChEntry* entry = buffer.AddData(1.0, 1, &byte);
    entry->user0 = 7;
    entry->user5 = 8;
    QCOMPARE(buffer.AddData(2.0, 1, &byte), entry);
    QCOMPARE(entry->user0, 7U);
    QCOMPARE(entry->user5, 8U);
    QCOMPARE(entry->time, 2.0F);
}

void tst_ZrChBuffer::moreThanMemoryHolds()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    const int huge = 2; // a sanitizer ends the program where memory runs out
#else
    const int huge = std::numeric_limits<int>::max();
#endif
    ZrChBuffer buffer;
    buffer.InitBuffer(4, 4);
    try {
        buffer.InitBuffer(huge, huge);
        QCOMPARE(buffer.data.size(), static_cast<std::size_t>(huge) * static_cast<std::size_t>(huge));
    } catch (const std::bad_alloc&) {
        u8 byte = 1;
        QVERIFY(!buffer.AddData(1.0, 1, &byte));
        QCOMPARE(buffer.width, 0);
    }
}

/// A reader under the lock sees whole lines only.
void tst_ZrChBuffer::twoThreads()
{
    ZrChBuffer buffer;
    buffer.InitBuffer(500, 4);
    std::thread receiver([&buffer] {
        for (int i = 0; i < 5000; ++i) {
            std::vector<u8> line(500, static_cast<u8>(i));
            buffer.AddData(i, 500, line.data());
        }
    });
    bool whole = true;
    for (int i = 0; i < 1000; ++i) {
        const std::lock_guard<std::mutex> guard(buffer.mutex);
        for (std::size_t line = 0; line < 4; ++line)
            whole = whole && buffer.data[line * 500] == buffer.data[line * 500 + 499];
    }
    receiver.join();
    QVERIFY(whole);
    QCOMPARE(buffer.next, 0);
}

void tst_ZrChBuffer::geoImage()
{
    static_assert(!std::is_copy_constructible_v<ZrGeoImg>);
    ZrGeoImg a;
    QCOMPARE(sizeof a.values, std::size_t(78));
    for (const u8 value : a.values)
        QCOMPARE(int(value), 0);
    QVERIFY(!a.buffer);
    a.values[77] = 5;
    a.buffer = static_cast<u8*>(std::malloc(10));
    ZrGeoImg b;
    b = a;
    QCOMPARE(int(b.values[77]), 5);
    QCOMPARE(b.buffer, a.buffer);
    const ZrGeoImg& same = b;
    b = same;
    QCOMPARE(b.buffer, a.buffer);
    b.buffer = nullptr; // the pixels are released once, by a
}

QTEST_GUILESS_MAIN(tst_ZrChBuffer)
#include "tst_ZrChBuffer.moc"
