#include "ListChecks.h"
#include "ZrUtil/ZrLstMgd.h"

#include <QtTest/QtTest>

#include <cstdlib>
#include <memory>
#include <new>

namespace {

/// Allocations that still succeed on this thread before one fails; negative: all succeed.
thread_local int s_allocationsLeft = -1;

void* Allocate(std::size_t size)
{
    if (s_allocationsLeft == 0)
        throw std::bad_alloc();
    if (s_allocationsLeft > 0)
        --s_allocationsLeft;
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size)
{
    return Allocate(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

/// An item whose number alive is counted without allocating.
struct Tally
{
    static inline int alive = 0;

    Tally() { ++alive; }

    ~Tally() { --alive; }

    Tally(const Tally&) = delete;
    Tally& operator=(const Tally&) = delete;
};

using Tallies = ZrLstMgd<Tally>;

/// Runs \p work with \p count allocations granted; whether the next one was wanted, and its refusal came out.
template <class Work> bool RefusedAfter(int count, Work work)
{
    bool refused = false;
    s_allocationsLeft = count;
    try {
        work();
    } catch (const std::bad_alloc&) {
        refused = true;
    }
    s_allocationsLeft = -1;
    return refused;
}

} // namespace

// The list when the memory is exhausted. Growing by one takes two allocations: the item, then its node.
class tst_ZrLstMgdMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addingLeavesTheItemWithTheCaller_data();
    void addingLeavesTheItemWithTheCaller();
    void growing_data();
    void growing();
};

void tst_ZrLstMgdMemory::addingLeavesTheItemWithTheCaller_data()
{
    QTest::addColumn<int>("operation");
    QTest::newRow("AddHead") << 0;
    QTest::newRow("AddTail") << 1;
    QTest::newRow("InsertAfter") << 2;
    QTest::newRow("InsertBefore") << 3;
}

void tst_ZrLstMgdMemory::addingLeavesTheItemWithTheCaller()
{
    QFETCH(int, operation);
    Tallies list;
    list.Grow(2);
    ZrListPos* const head = list.head;
    ZrListPos* const tail = list.tail;
    const auto item = std::make_unique<Tally>();
    const bool refused = RefusedAfter(0, [&] {
        switch (operation) {
        case 0:
            list.AddHead(item.get());
            break;
        case 1:
            list.AddTail(item.get());
            break;
        case 2:
            list.InsertAfter(head, item.get());
            break;
        default:
            list.InsertBefore(tail, item.get());
            break;
        }
    });
    QVERIFY(refused);
    QVERIFY(!LinkDefect(list));
    QCOMPARE(list.GetCount(), 2);
    QCOMPARE(list.head, head);
    QCOMPARE(list.tail, tail);
    QCOMPARE(list.GetIndex(item.get()), -1);
    QCOMPARE(Tally::alive, 3);
}

void tst_ZrLstMgdMemory::growing_data()
{
    QTest::addColumn<bool>("bySize");
    QTest::addColumn<int>("granted");
    QTest::addColumn<int>("grown");
    QTest::newRow("Grow, first item refused") << false << 0 << 0;
    QTest::newRow("Grow, first node refused") << false << 1 << 0;
    QTest::newRow("Grow, second item refused") << false << 2 << 1;
    QTest::newRow("Grow, second node refused") << false << 3 << 1;
    QTest::newRow("SetSize, first node refused") << true << 1 << 0;
    QTest::newRow("SetSize, third item refused") << true << 4 << 2;
    QTest::newRow("SetSize, third node refused") << true << 5 << 2;
}

void tst_ZrLstMgdMemory::growing()
{
    QFETCH(bool, bySize);
    QFETCH(int, granted);
    QFETCH(int, grown);
    {
        Tallies list;
        list.Grow(1);
        const bool refused = RefusedAfter(granted, [&] { bySize ? list.SetSize(6) : list.Grow(5); });
        QVERIFY(refused);
        QVERIFY(!LinkDefect(list));
        QCOMPARE(list.GetCount(), 1 + grown);
        QCOMPARE(Tally::alive, 1 + grown);
    }
    QCOMPARE(Tally::alive, 0);
}

QTEST_GUILESS_MAIN(tst_ZrLstMgdMemory)
#include "tst_ZrLstMgdMemory.moc"
