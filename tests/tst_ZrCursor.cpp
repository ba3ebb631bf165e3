// ZrCursor: its values, the setters, and its use from several threads.

#include "ZrUtil/ZrCursor.h"

#include <QtTest/QtTest>

#include <atomic>
#include <cmath>
#include <future>
#include <thread>
#include <type_traits>
#include <vector>

static_assert(std::
                  is_same_v<decltype(ZrCursor::x), std::atomic<double>> && std::is_same_v<decltype(ZrCursor::y), std::atomic<double>> && std::is_same_v<decltype(ZrCursor::size), std::atomic<float>> && std::is_same_v<decltype(ZrCursor::timeSpan), std::atomic<float>> && std::is_same_v<decltype(ZrCursor::time), std::atomic<double>> && std::is_same_v<decltype(ZrCursor::rec), std::atomic<i32>> && std::is_same_v<decltype(ZrCursor::mutex), std::mutex> && std::is_same_v<decltype(ZrCursor::owner), ZrGlSurface*>,
    "types of the members");
static_assert(std::is_same_v<decltype(&ZrCursor::SetOwner), void (ZrCursor::*)(ZrGlSurface*)>);
static_assert(std::is_same_v<decltype(&ZrCursor::GetOwner), ZrGlSurface* (ZrCursor::*)()>);
static_assert(!std::is_copy_constructible_v<ZrCursor>, "there is one cursor, which everybody shares");

namespace {

/// Only its address is used.
ZrGlSurface* Surface(int& somewhere)
{
    return reinterpret_cast<ZrGlSurface*>(&somewhere);
}

/// All values as one line.
QString Text(const ZrCursor& cursor)
{
    return QStringLiteral("%1 %2 size %3 span %4 time %5 rec %6")
        .arg(cursor.x)
        .arg(cursor.y)
        .arg(double(cursor.size))
        .arg(double(cursor.timeSpan))
        .arg(cursor.time)
        .arg(cursor.rec);
}

} // namespace

class tst_ZrCursor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsNowhere();
    void membersStandInOrder();
    void eachSetterSetsItsOwn();
    void valuesNeedNoLock();
    void specialValuesAreKept();
    void ownerIsUnderTheMutex();
    void valuesAreSetWhileTheOwnerIsLocked();
    void threadsShareOneCursor();
};

void tst_ZrCursor::startsNowhere()
{
    ZrCursor cursor;
    QCOMPARE(Text(cursor), QStringLiteral("0 0 size 0 span 0 time -1 rec 0"));
    QVERIFY(!cursor.GetOwner());
}

void tst_ZrCursor::membersStandInOrder()
{
    const ZrCursor cursor;
    const std::vector<const void*> members{&cursor.x, &cursor.y, &cursor.size, &cursor.timeSpan, &cursor.time,
        &cursor.rec, &cursor.mutex, &cursor.owner};
    QVERIFY(std::is_sorted(members.begin(), members.end()));
}

void tst_ZrCursor::eachSetterSetsItsOwn()
{
    ZrCursor cursor;
    cursor.SetPosition(1.5, -2.5);
    QCOMPARE(Text(cursor), QStringLiteral("1.5 -2.5 size 0 span 0 time -1 rec 0"));
    cursor.SetPosition(3.0, 4.0, 5.0f);
    QCOMPARE(Text(cursor), QStringLiteral("3 4 size 5 span 0 time -1 rec 0"));
    cursor.SetPosition(6.0, 7.0);
    QCOMPARE(Text(cursor), QStringLiteral("6 7 size 5 span 0 time -1 rec 0"));
    cursor.SetRecord(8);
    QCOMPARE(Text(cursor), QStringLiteral("6 7 size 5 span 0 time -1 rec 8"));
    cursor.SetRecord(-1, 9.0f);
    QCOMPARE(Text(cursor), QStringLiteral("6 7 size 9 span 0 time -1 rec -1"));
    cursor.SetTime(10.0);
    QCOMPARE(Text(cursor), QStringLiteral("6 7 size 9 span 0 time 10 rec -1"));
    cursor.SetTime(11.0, 12.0f);
    QCOMPARE(Text(cursor), QStringLiteral("6 7 size 9 span 12 time 11 rec -1"));
    cursor.SetTime(13.0);
    QCOMPARE(Text(cursor), QStringLiteral("6 7 size 9 span 12 time 13 rec -1"));
}

void tst_ZrCursor::valuesNeedNoLock()
{
    const ZrCursor cursor;
    QVERIFY(cursor.x.is_lock_free() && cursor.y.is_lock_free() && cursor.time.is_lock_free());
    QVERIFY(cursor.size.is_lock_free() && cursor.timeSpan.is_lock_free() && cursor.rec.is_lock_free());
}

void tst_ZrCursor::specialValuesAreKept()
{
    ZrCursor cursor;
    cursor.SetPosition(qQNaN(), qInf(), -0.0f);
    QVERIFY(std::isnan(cursor.x.load()));
    QCOMPARE(cursor.y.load(), qInf());
    QVERIFY(std::signbit(cursor.size.load()));
    cursor.SetRecord(std::numeric_limits<int>::min());
    QCOMPARE(cursor.rec.load(), std::numeric_limits<int>::min());
    cursor.SetTime(1602049684.592);
    QCOMPARE(cursor.time.load(), 1602049684.592);
}

void tst_ZrCursor::ownerIsUnderTheMutex()
{
    ZrCursor cursor;
    int a = 0;
    cursor.SetOwner(Surface(a));
    QCOMPARE(static_cast<void*>(cursor.GetOwner()), static_cast<void*>(&a));

    std::atomic<bool> arrived{false};
    std::unique_lock<std::mutex> lock(cursor.mutex);
    std::future<void> setting = std::async(std::launch::async, [&] {
        arrived = true;
        cursor.SetOwner(nullptr);
    });
    std::future<ZrGlSurface*> getting = std::async(std::launch::async, [&] { return cursor.GetOwner(); });
    while (!arrived)
        std::this_thread::yield();
    QCOMPARE(setting.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    QCOMPARE(getting.wait_for(std::chrono::milliseconds(0)), std::future_status::timeout);
    QCOMPARE(static_cast<void*>(cursor.owner), static_cast<void*>(&a));
    lock.unlock();
    setting.wait();
    getting.wait();
    QVERIFY(!cursor.GetOwner());
}

void tst_ZrCursor::valuesAreSetWhileTheOwnerIsLocked()
{
    ZrCursor cursor;
    std::unique_lock<std::mutex> lock(cursor.mutex);
    std::future<void> setting = std::async(std::launch::async, [&] {
        cursor.SetPosition(1.0, 2.0, 3.0f);
        cursor.SetRecord(4, 5.0f);
        cursor.SetTime(6.0, 7.0f);
    });
    const bool done = setting.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
    lock.unlock();
    setting.wait();
    QVERIFY(done);
    QCOMPARE(Text(cursor), QStringLiteral("1 2 size 5 span 7 time 6 rec 4"));
}

void tst_ZrCursor::threadsShareOneCursor()
{
    // Two writers, each with values of its own pattern, and two readers who must see only such values.
    ZrCursor cursor;
    int surfaces[2] = {};
    cursor.SetPosition(1.0, 1.0, 1.0f);
    cursor.SetTime(1.0, 1.0f);
    cursor.SetRecord(1);
    cursor.SetOwner(Surface(surfaces[0]));
    std::atomic<bool> running{true};
    std::atomic<int> wrong{0};

    const auto written
        = [](double value) { return value >= 1.0 && value <= 20002.0 && value == std::floor(value); };
    const auto read = [&] {
        while (running) {
            if (!written(cursor.x) || !written(cursor.y) || !written(double(cursor.size))
                || !written(cursor.time) || !written(double(cursor.timeSpan)) || !written(cursor.rec))
                ++wrong;
            ZrGlSurface* const owner = cursor.GetOwner();
            if (owner != Surface(surfaces[0]) && owner != Surface(surfaces[1]))
                ++wrong;
        }
    };
    const auto write = [&](int which) {
        for (int i = 1; i <= 10000; ++i) {
            const int value = 2 * i + which;
            cursor.SetPosition(value, value, float(value));
            cursor.SetTime(value, float(value));
            cursor.SetRecord(value);
            cursor.SetOwner(Surface(surfaces[which]));
        }
    };
    std::thread readers[2] = {std::thread(read), std::thread(read)};
    std::thread writers[2] = {std::thread(write, 0), std::thread(write, 1)};
    for (std::thread& writer : writers)
        writer.join();
    running = false;
    for (std::thread& reader : readers)
        reader.join();
    QCOMPARE(wrong.load(), 0);
    QVERIFY(cursor.rec.load() == 20000 || cursor.rec.load() == 20001);
}

QTEST_GUILESS_MAIN(tst_ZrCursor)
#include "tst_ZrCursor.moc"
