#include "ListChecks.h"
#include "ZrUtil/ZrLstMgd.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>

// Every member compiles, also those that no test of this file calls.
template class ZrLstMgd<QString>;

namespace {

/// Whether `list.GetIndex(nullptr)` compiles.
template <class L, class = void> struct NullIndexCompiles : std::false_type
{
};

template <class L>
struct NullIndexCompiles<L, std::void_t<decltype(std::declval<L&>().GetIndex(nullptr))>> : std::true_type
{
};

static_assert(sizeof(List) == 3 * sizeof(void*), "a vtable pointer, head and tail: no cached count");
static_assert(sizeof(ZrListPos) == 3 * sizeof(void*));
static_assert(offsetof(ZrListPos, prev) == 0);
static_assert(offsetof(ZrListPos, next) == sizeof(void*));
static_assert(offsetof(ZrListPos, data) == 2 * sizeof(void*));
static_assert(std::is_same_v<decltype(ZrListPos::data), void*>);
static_assert(std::is_same_v<List::ZrListPos, ::ZrListPos>, "both spellings name the same node");
static_assert(std::has_virtual_destructor_v<List>);
static_assert(!std::is_copy_constructible_v<List> && !std::is_copy_assignable_v<List>);
static_assert(!std::is_move_constructible_v<List> && !std::is_move_assignable_v<List>);
static_assert(!NullIndexCompiles<List>::value, "a bare nullptr names neither a position nor an item");

/// A list with a member of its own, as a route is.
struct NamedList : List
{
    static int destroyed;

    ~NamedList() override { ++destroyed; }

    QString name = QStringLiteral("a name that is too long for any small-string buffer");
};

int NamedList::destroyed = 0;

} // namespace

class tst_ZrLstMgd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void emptyListHasNoEnds();
    void emptyListFindsNothing();
    void emptyListIgnoresRemovals();
    void addHead();
    void addTail();
    void itemsAreStoredByPointer();
    void insertAfter_data();
    void insertAfter();
    void insertBefore_data();
    void insertBefore();
    void insertIntoEmptyList();
    void findIsByIdentityNotEquality();
    void findStartsInclusively();
    void findIndex_data();
    void findIndex();
    void getAt();
    void setAtLeavesTheFormerItem();
    void setAtNullPositionDoesNothing();
    void nullItemsAreAllowed();
    void getNextWalksToTheTail();
    void getPrevWalksToTheHead();
    void getIndexOfPosition();
    void getIndexOfItem();
    void countFollowsTheNodes();
    void removeAt_data();
    void removeAt();
    void removeAtNullDoesNothing();
    void removeByItem();
    void removeHeadAndTail();
    void removeAfter_data();
    void removeAfter();
    void removeBefore_data();
    void removeBefore();
    void removeAllDeletesFromHeadToTail();
    void isUsableAfterRemoveAll();
    void destructorSeesTheListWithoutTheItem();
    void grow_data();
    void grow();
    void setSize_data();
    void setSize();
    void grownItemsAreValueInitialised();
    void throwingConstructorLeavesEarlierItems_data();
    void throwingConstructorLeavesEarlierItems();
    void derivedListIsDestroyedThroughBase();
    void worksWithOtherItemTypes();
};

void tst_ZrLstMgd::init()
{
    Item::Reset();
    NamedList::destroyed = 0;
}

void tst_ZrLstMgd::cleanup()
{
    Item::Reset();
    QVERIFY2(Item::alive.empty(), "a test left items behind");
}

void tst_ZrLstMgd::emptyListHasNoEnds()
{
    List list;
    QVERIFY(!list.head);
    QVERIFY(!list.tail);
    QVERIFY(!list.GetHead());
    QVERIFY(!list.GetTail());
    QVERIFY(!list.GetHeadPos());
    QVERIFY(!list.GetTailPos());
    QCOMPARE(list.GetCount(), 0);
    QVERIFY(list.IsEmpty());
}

void tst_ZrLstMgd::emptyListFindsNothing()
{
    List list;
    Item other(1);
    ZrListPos foreign;
    QCOMPARE(list.GetIndex(&foreign), -1);
    QCOMPARE(list.GetIndex(&other), -1);
    QCOMPARE(list.GetIndex(static_cast<ZrListPos*>(nullptr)), -1);
    QCOMPARE(list.GetIndex(static_cast<const Item*>(nullptr)), -1);
    QVERIFY(!list.Find(&other, nullptr));
    QVERIFY(!list.FindIndex(0));
}

void tst_ZrLstMgd::emptyListIgnoresRemovals()
{
    List list;
    Item other(1);
    list.RemoveHead();
    list.RemoveTail();
    list.RemoveAll();
    list.RemoveAt(nullptr);
    list.RemoveAfter(nullptr);
    list.RemoveBefore(nullptr);
    list.Remove(&other);
    list.Grow(-1);
    list.SetSize(0);
    QVERIFY(list.IsEmpty());
    QVERIFY(!list.tail);
    QVERIFY(Item::destroyed.empty());
}

void tst_ZrLstMgd::addHead()
{
    List list;
    ZrListPos* second = list.AddHead(new Item(2));
    QCOMPARE(list.head, second);
    QCOMPARE(list.tail, second);
    ZrListPos* first = list.AddHead(new Item(1));
    QCOMPARE(list.GetHeadPos(), first);
    QCOMPARE(list.GetTailPos(), second);
    QCOMPARE(list.GetHead()->value, 1);
    QCOMPARE(list.GetTail()->value, 2);
    VERIFY_LIST(list, {1, 2});
}

void tst_ZrLstMgd::addTail()
{
    List list;
    ZrListPos* first = list.AddTail(new Item(1));
    QCOMPARE(list.head, first);
    QCOMPARE(list.tail, first);
    ZrListPos* second = list.AddTail(new Item(2));
    QCOMPARE(list.GetHeadPos(), first);
    QCOMPARE(list.GetTailPos(), second);
    VERIFY_LIST(list, {1, 2});
    QVERIFY(!list.IsEmpty());
}

void tst_ZrLstMgd::itemsAreStoredByPointer()
{
    List list;
    const Item* item = new Item(1);
    ZrListPos* pos = list.AddTail(item);
    QCOMPARE(static_cast<const Item*>(list.GetHead()), item);
    QCOMPARE(static_cast<const void*>(pos->data), static_cast<const void*>(item));
    QCOMPARE(Item::alive.size(), std::size_t(1));
}

void tst_ZrLstMgd::insertAfter_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("null appends at the tail") << -1 << Ints{1, 2, 3, 9};
    QTest::newRow("head") << 0 << Ints{1, 9, 2, 3};
    QTest::newRow("middle") << 1 << Ints{1, 2, 9, 3};
    QTest::newRow("tail") << 2 << Ints{1, 2, 3, 9};
}

void tst_ZrLstMgd::insertAfter()
{
    QFETCH(int, index);
    QFETCH(Ints, expected);
    List list;
    Fill(list, 3);
    ZrListPos* pos = list.InsertAfter(list.FindIndex(index), new Item(9));
    VERIFY_LIST(list, expected);
    QCOMPARE(list.GetAt(pos)->value, 9);
}

void tst_ZrLstMgd::insertBefore_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("null adds at the head") << -1 << Ints{9, 1, 2, 3};
    QTest::newRow("head") << 0 << Ints{9, 1, 2, 3};
    QTest::newRow("middle") << 1 << Ints{1, 9, 2, 3};
    QTest::newRow("tail") << 2 << Ints{1, 2, 9, 3};
}

void tst_ZrLstMgd::insertBefore()
{
    QFETCH(int, index);
    QFETCH(Ints, expected);
    List list;
    Fill(list, 3);
    ZrListPos* pos = list.InsertBefore(list.FindIndex(index), new Item(9));
    VERIFY_LIST(list, expected);
    QCOMPARE(list.GetAt(pos)->value, 9);
}

void tst_ZrLstMgd::insertIntoEmptyList()
{
    List after;
    ZrListPos* pos = after.InsertAfter(nullptr, new Item(1));
    QCOMPARE(pos, after.head);
    VERIFY_LIST(after, {1});
    List before;
    pos = before.InsertBefore(nullptr, new Item(2));
    QCOMPARE(pos, before.head);
    VERIFY_LIST(before, {2});
}

void tst_ZrLstMgd::findIsByIdentityNotEquality()
{
    ZrLstMgd<int> list;
    list.AddTail(new int(5));
    int* second = new int(5);
    ZrListPos* pos = list.AddTail(second);
    const int equal = 5;
    QCOMPARE(list.Find(second, nullptr), pos);
    QVERIFY(!list.Find(&equal, nullptr));
    QCOMPARE(list.GetIndex(second), 1);
    QCOMPARE(list.GetIndex(&equal), -1);
}

void tst_ZrLstMgd::findStartsInclusively()
{
    List list;
    Fill(list, 3);
    ZrListPos* middle = list.FindIndex(1);
    Item* item = list.GetAt(middle);
    QCOMPARE(list.Find(item, nullptr), middle);
    QCOMPARE(list.Find(item, list.head), middle);
    QCOMPARE(list.Find(item, middle), middle);
    QVERIFY(!list.Find(item, list.tail));
}

void tst_ZrLstMgd::findIndex_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("value");
    QTest::newRow("first") << 0 << 1;
    QTest::newRow("second") << 1 << 2;
    QTest::newRow("last") << 2 << 3;
    QTest::newRow("count") << 3 << 0;
    QTest::newRow("far beyond") << INT_MAX << 0;
    QTest::newRow("minus one") << -1 << 0;
    QTest::newRow("smallest") << INT_MIN << 0;
}

void tst_ZrLstMgd::findIndex()
{
    QFETCH(int, index);
    QFETCH(int, value);
    List list;
    Fill(list, 3);
    ZrListPos* pos = list.FindIndex(index);
    QCOMPARE(pos != nullptr, value != 0);
    if (pos)
        QCOMPARE(list.GetAt(pos)->value, value);
}

void tst_ZrLstMgd::getAt()
{
    List list;
    Fill(list, 2);
    QCOMPARE(list.GetAt(list.tail)->value, 2);
    QVERIFY(!list.GetAt(nullptr));
}

void tst_ZrLstMgd::setAtLeavesTheFormerItem()
{
    List list;
    Fill(list, 3);
    ZrListPos* pos = list.FindIndex(1);
    std::unique_ptr<Item> former(list.GetAt(pos));
    list.SetAt(pos, new Item(9));
    VERIFY_LIST(list, {1, 9, 3});
    QVERIFY(Item::destroyed.empty());
    QCOMPARE(former->value, 2);
    list.RemoveAt(pos);
    QCOMPARE(Destroyed(), (Ints{9}));
}

void tst_ZrLstMgd::setAtNullPositionDoesNothing()
{
    List list;
    Fill(list, 2);
    const Item item(9);
    list.SetAt(nullptr, &item);
    VERIFY_LIST(list, {1, 2});
}

void tst_ZrLstMgd::nullItemsAreAllowed()
{
    List list;
    Fill(list, 1);
    ZrListPos* pos = list.AddTail(nullptr);
    QCOMPARE(list.GetCount(), 2);
    QVERIFY(!list.GetTail());
    QCOMPARE(list.GetIndex(static_cast<const Item*>(nullptr)), 1);
    QCOMPARE(list.Find(nullptr), pos);
    list.Remove(nullptr);
    VERIFY_LIST(list, {1});
    list.AddHead(nullptr);
    list.RemoveAll();
    QCOMPARE(Destroyed(), (Ints{1}));
}

void tst_ZrLstMgd::getNextWalksToTheTail()
{
    List list;
    Fill(list, 2);
    ZrListPos* pos = list.head;
    QCOMPARE(list.GetNext(pos)->value, 1);
    QCOMPARE(pos, list.tail);
    QCOMPARE(list.GetNext(pos)->value, 2);
    QVERIFY(!pos);
    QVERIFY(!list.GetNext(pos));
    QVERIFY(!pos);
}

void tst_ZrLstMgd::getPrevWalksToTheHead()
{
    List list;
    Fill(list, 2);
    ZrListPos* pos = list.tail;
    QCOMPARE(list.GetPrev(pos)->value, 2);
    QCOMPARE(pos, list.head);
    QCOMPARE(list.GetPrev(pos)->value, 1);
    QVERIFY(!pos);
    QVERIFY(!list.GetPrev(pos));
    QVERIFY(!pos);
}

void tst_ZrLstMgd::getIndexOfPosition()
{
    List list;
    List other;
    Fill(list, 3);
    Fill(other, 1);
    QCOMPARE(list.GetIndex(list.head), 0);
    QCOMPARE(list.GetIndex(list.head->next), 1);
    QCOMPARE(list.GetIndex(list.tail), 2);
    QCOMPARE(list.GetIndex(other.head), -1);
    QCOMPARE(list.GetIndex(static_cast<ZrListPos*>(nullptr)), -1);
}

void tst_ZrLstMgd::getIndexOfItem()
{
    List list;
    Fill(list, 3);
    const Item stranger(2);
    QCOMPARE(list.GetIndex(list.GetHead()), 0);
    QCOMPARE(list.GetIndex(list.GetAt(list.head->next)), 1);
    QCOMPARE(list.GetIndex(list.GetTail()), 2);
    QCOMPARE(list.GetIndex(&stranger), -1);
    QCOMPARE(list.GetIndex(static_cast<const Item*>(nullptr)), -1);
}

void tst_ZrLstMgd::countFollowsTheNodes()
{
    List list;
    Fill(list, 3);
    QCOMPARE(list.GetCount(), 3);
    // A node that is unlinked by hand is not counted: nothing is cached.
    ZrListPos* tail = list.tail;
    list.tail = tail->prev;
    list.tail->next = nullptr;
    QCOMPARE(list.GetCount(), 2);
    delete list.GetAt(tail);
    delete tail;
}

void tst_ZrLstMgd::removeAt_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("index");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("only node") << 1 << 0 << Ints{};
    QTest::newRow("head of two") << 2 << 0 << Ints{2};
    QTest::newRow("tail of two") << 2 << 1 << Ints{1};
    QTest::newRow("head of three") << 3 << 0 << Ints{2, 3};
    QTest::newRow("middle of three") << 3 << 1 << Ints{1, 3};
    QTest::newRow("tail of three") << 3 << 2 << Ints{1, 2};
}

void tst_ZrLstMgd::removeAt()
{
    QFETCH(int, count);
    QFETCH(int, index);
    QFETCH(Ints, expected);
    List list;
    Fill(list, count);
    list.RemoveAt(list.FindIndex(index));
    VERIFY_LIST(list, expected);
    QCOMPARE(list.IsEmpty(), expected.isEmpty());
    QCOMPARE(Destroyed(), (Ints{index + 1}));
}

void tst_ZrLstMgd::removeAtNullDoesNothing()
{
    List list;
    Fill(list, 2);
    list.RemoveAt(nullptr);
    VERIFY_LIST(list, {1, 2});
}

void tst_ZrLstMgd::removeByItem()
{
    List list;
    Fill(list, 3);
    Item stranger(2);
    list.Remove(&stranger);
    VERIFY_LIST(list, {1, 2, 3});
    list.Remove(list.GetAt(list.FindIndex(1)));
    VERIFY_LIST(list, {1, 3});
    QCOMPARE(Destroyed(), (Ints{2}));
}

void tst_ZrLstMgd::removeHeadAndTail()
{
    List list;
    Fill(list, 4);
    list.RemoveHead();
    VERIFY_LIST(list, {2, 3, 4});
    list.RemoveTail();
    VERIFY_LIST(list, {2, 3});
    list.RemoveTail();
    list.RemoveHead();
    VERIFY_LIST(list, {});
    QCOMPARE(Destroyed(), (Ints{1, 4, 3, 2}));
}

void tst_ZrLstMgd::removeAfter_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("head removes the second") << 0 << Ints{1, 3};
    QTest::newRow("middle removes the tail") << 1 << Ints{1, 2};
    QTest::newRow("tail removes the head") << 2 << Ints{2, 3};
    QTest::newRow("null removes the head") << -1 << Ints{2, 3};
}

void tst_ZrLstMgd::removeAfter()
{
    QFETCH(int, index);
    QFETCH(Ints, expected);
    List list;
    Fill(list, 3);
    list.RemoveAfter(list.FindIndex(index));
    VERIFY_LIST(list, expected);
    QCOMPARE(Item::destroyed.size(), std::size_t(1));
}

void tst_ZrLstMgd::removeBefore_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("head removes the tail") << 0 << Ints{1, 2};
    QTest::newRow("middle removes the head") << 1 << Ints{2, 3};
    QTest::newRow("tail removes the middle") << 2 << Ints{1, 3};
    QTest::newRow("null removes the tail") << -1 << Ints{1, 2};
}

void tst_ZrLstMgd::removeBefore()
{
    QFETCH(int, index);
    QFETCH(Ints, expected);
    List list;
    Fill(list, 3);
    list.RemoveBefore(list.FindIndex(index));
    VERIFY_LIST(list, expected);
    QCOMPARE(Item::destroyed.size(), std::size_t(1));
}

void tst_ZrLstMgd::removeAllDeletesFromHeadToTail()
{
    List list;
    Fill(list, 4);
    list.RemoveAll();
    QVERIFY(!list.head);
    QVERIFY(!list.tail);
    QVERIFY(list.IsEmpty());
    QCOMPARE(Destroyed(), (Ints{1, 2, 3, 4}));

    Item::destroyed.clear();
    {
        List scoped;
        Fill(scoped, 3);
    }
    QCOMPARE(Destroyed(), (Ints{1, 2, 3}));
}

void tst_ZrLstMgd::isUsableAfterRemoveAll()
{
    List list;
    Fill(list, 3);
    list.RemoveAll();
    Fill(list, 2);
    VERIFY_LIST(list, {1, 2});
}

void tst_ZrLstMgd::destructorSeesTheListWithoutTheItem()
{
    struct Watcher
    {
        ZrLstMgd<Watcher>* list = nullptr;
        QVector<int>* counts = nullptr;

        ~Watcher() { *counts << list->GetCount() << (list->GetIndex(this) == -1 ? 1 : 0); }
    };

    ZrLstMgd<Watcher> list;
    QVector<int> counts;
    list.Grow(3);
    for (ZrListPos* pos = list.head; pos; pos = pos->next) {
        list.GetAt(pos)->list = &list;
        list.GetAt(pos)->counts = &counts;
    }
    list.RemoveAll();
    QCOMPARE(counts, (QVector<int>{2, 1, 1, 1, 0, 1}));
}

void tst_ZrLstMgd::grow_data()
{
    QTest::addColumn<int>("n");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("plus three") << 3 << Ints{1, 2, 3, 0, 0, 0};
    QTest::newRow("zero") << 0 << Ints{1, 2, 3};
    QTest::newRow("minus one") << -1 << Ints{1, 2};
    QTest::newRow("minus all") << -3 << Ints{};
    QTest::newRow("minus more than there are") << -10 << Ints{};
    QTest::newRow("smallest") << INT_MIN << Ints{};
}

void tst_ZrLstMgd::grow()
{
    QFETCH(int, n);
    QFETCH(Ints, expected);
    List list;
    Fill(list, 3);
    list.Grow(n);
    VERIFY_LIST(list, expected);
    QCOMPARE(Item::alive.size(), std::size_t(expected.size()));
}

void tst_ZrLstMgd::setSize_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<uint>("n");
    QTest::addColumn<Ints>("expected");
    QTest::addColumn<Ints>("destroyed");
    QTest::newRow("same") << 3 << 3u << Ints{1, 2, 3} << Ints{};
    QTest::newRow("2 of 5") << 5 << 2u << Ints{1, 2} << Ints{5, 4, 3};
    QTest::newRow("5 of 2") << 2 << 5u << Ints{1, 2, 0, 0, 0} << Ints{};
    QTest::newRow("none of 3") << 3 << 0u << Ints{} << Ints{3, 2, 1};
    QTest::newRow("2 of none") << 0 << 2u << Ints{0, 0} << Ints{};
    QTest::newRow("none of none") << 0 << 0u << Ints{} << Ints{};
}

void tst_ZrLstMgd::setSize()
{
    QFETCH(int, count);
    QFETCH(uint, n);
    QFETCH(Ints, expected);
    QFETCH(Ints, destroyed);
    List list;
    Fill(list, count);
    list.SetSize(n);
    VERIFY_LIST(list, expected);
    QCOMPARE(Destroyed(), destroyed);
}

void tst_ZrLstMgd::grownItemsAreValueInitialised()
{
    // Memory that is visibly not zero before the item is made in it.
    struct Plain
    {
        int value;

        static void* operator new(std::size_t size) { return std::memset(::operator new(size), 0xCC, size); }

        static void operator delete(void* memory) { ::operator delete(memory); }
    };

    ZrLstMgd<Plain> list;
    list.Grow(1);
    list.SetSize(2);
    QCOMPARE(list.GetHead()->value, 0);
    QCOMPARE(list.GetTail()->value, 0);
}

void tst_ZrLstMgd::throwingConstructorLeavesEarlierItems_data()
{
    QTest::addColumn<bool>("bySize");
    QTest::addColumn<int>("good");
    QTest::newRow("Grow, at once") << false << 0;
    QTest::newRow("Grow, at the third") << false << 2;
    QTest::newRow("SetSize, at once") << true << 0;
    QTest::newRow("SetSize, at the third") << true << 2;
}

void tst_ZrLstMgd::throwingConstructorLeavesEarlierItems()
{
    QFETCH(bool, bySize);
    QFETCH(int, good);
    List list;
    Fill(list, 2);
    Item::constructionsLeft = good;
    if (bySize)
        QVERIFY_EXCEPTION_THROWN(list.SetSize(7), std::runtime_error);
    else
        QVERIFY_EXCEPTION_THROWN(list.Grow(5), std::runtime_error);
    VERIFY_LIST(list, good ? Ints{1, 2, 0, 0} : Ints{1, 2});
    QCOMPARE(Item::alive.size(), std::size_t(2 + good));
    QVERIFY(Item::destroyed.empty());
}

void tst_ZrLstMgd::derivedListIsDestroyedThroughBase()
{
    std::unique_ptr<List> list(new NamedList);
    Fill(*list, 3);
    list.reset();
    QCOMPARE(NamedList::destroyed, 1);
    QCOMPARE(Destroyed(), (Ints{1, 2, 3}));
}

void tst_ZrLstMgd::worksWithOtherItemTypes()
{
    ZrLstMgd<QString> lines;
    lines.AddTail(new QString(QStringLiteral("Tiefe \u00b1 2 m \u6df1\u3055")));
    lines.Grow(1);
    QCOMPARE(*lines.GetHead(), QStringLiteral("Tiefe \u00b1 2 m \u6df1\u3055"));
    QVERIFY(lines.GetTail()->isNull());
    lines.ShiftToTail(lines.GetHeadPos());
    QVERIFY(lines.GetHead()->isNull());
}

QTEST_GUILESS_MAIN(tst_ZrLstMgd)
#include "tst_ZrLstMgd.moc"
