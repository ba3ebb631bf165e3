#include "CountedItem.h"
#include "ZrUtil/ZrLstPtr.h"

#include <QtTest/QtTest>

#include <type_traits>

namespace {

using Item = CountedItem;
using List = ZrLstPtr<Item*>;

static_assert(sizeof(List) == 2 * sizeof(void*), "head and tail, nothing else");
static_assert(std::is_same_v<List::ZrListPos, ::ZrListPos>, "both spellings name the same node");
static_assert(!std::is_copy_constructible_v<List> && !std::is_copy_assignable_v<List>);

QVector<int> Values(const List& list)
{
    QVector<int> values;
    ZrListPos* pos = list.GetHeadPos();
    while (pos)
        values << list.GetNext(pos)->value;
    return values;
}

} // namespace

class tst_ZrLstPtr : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Item::Reset(); }

    void startsEmpty();
    void addTailKeepsOrder();
    void addTailLinksBothWays();
    void addTailReturnsTheNode();
    void theSamePointerMayBeHeldTwice();
    void nullPointersAreKept();
    void nextOfNullIsNullAndStaysNull();
    void removeAllFreesNodesOnly();
    void removeAllOnEmptyDoesNothing();
    void isUsableAfterRemoveAll();
    void destructionLeavesItems();
    void pointersToConstantItems();
};

void tst_ZrLstPtr::startsEmpty()
{
    List list;
    QVERIFY(!list.head);
    QVERIFY(!list.tail);
    QVERIFY(!list.GetHeadPos());
    QCOMPARE(list.GetCount(), 0);
}

void tst_ZrLstPtr::addTailKeepsOrder()
{
    Item a(1), b(2), c(3);
    List list;
    list.AddTail(&a);
    QCOMPARE(list.head, list.tail);
    list.AddTail(&b);
    list.AddTail(&c);
    QCOMPARE(Values(list), (QVector<int>{1, 2, 3}));
    QCOMPARE(list.GetCount(), 3);
    QCOMPARE(list.GetHeadPos(), list.head);
}

void tst_ZrLstPtr::addTailLinksBothWays()
{
    Item a(1), b(2), c(3);
    List list;
    ZrListPos* const first = list.AddTail(&a);
    ZrListPos* const second = list.AddTail(&b);
    ZrListPos* const third = list.AddTail(&c);
    QVERIFY(!first->prev);
    QCOMPARE(first->next, second);
    QCOMPARE(second->prev, first);
    QCOMPARE(second->next, third);
    QCOMPARE(third->prev, second);
    QVERIFY(!third->next);
}

void tst_ZrLstPtr::addTailReturnsTheNode()
{
    Item a(1), b(2);
    List list;
    ZrListPos* first = list.AddTail(&a);
    ZrListPos* second = list.AddTail(&b);
    QCOMPARE(first, list.head);
    QCOMPARE(second, list.tail);
    QCOMPARE(first->data, static_cast<void*>(&a));
    QCOMPARE(second->data, static_cast<void*>(&b));
}

void tst_ZrLstPtr::theSamePointerMayBeHeldTwice()
{
    Item a(7);
    List list;
    list.AddTail(&a);
    list.AddTail(&a);
    QCOMPARE(Values(list), (QVector<int>{7, 7}));
}

void tst_ZrLstPtr::nullPointersAreKept()
{
    Item a(1);
    List list;
    list.AddTail(nullptr);
    list.AddTail(&a);
    QCOMPARE(list.GetCount(), 2);
    ZrListPos* pos = list.GetHeadPos();
    QVERIFY(!list.GetNext(pos));
    QCOMPARE(pos, list.tail);
    QCOMPARE(list.GetNext(pos), &a);
    QVERIFY(!pos);
}

void tst_ZrLstPtr::nextOfNullIsNullAndStaysNull()
{
    Item a(1);
    List list;
    list.AddTail(&a);
    ZrListPos* pos = nullptr;
    QVERIFY(!list.GetNext(pos));
    QVERIFY(!pos);
}

void tst_ZrLstPtr::removeAllFreesNodesOnly()
{
    Item a(1), b(2);
    List list;
    list.AddTail(&a);
    list.AddTail(&b);
    list.RemoveAll();
    QVERIFY(!list.head);
    QVERIFY(!list.tail);
    QCOMPARE(list.GetCount(), 0);
    QVERIFY(Item::destroyed.empty());
    QCOMPARE(a.value + b.value, 3);
}

void tst_ZrLstPtr::removeAllOnEmptyDoesNothing()
{
    List list;
    list.RemoveAll();
    QVERIFY(!list.head);
    QVERIFY(!list.tail);
}

void tst_ZrLstPtr::isUsableAfterRemoveAll()
{
    Item a(1), b(2);
    List list;
    list.AddTail(&a);
    list.RemoveAll();
    list.AddTail(&b);
    QCOMPARE(Values(list), (QVector<int>{2}));
    QCOMPARE(list.head, list.tail);
    QVERIFY(!list.head->prev);
}

void tst_ZrLstPtr::destructionLeavesItems()
{
    Item a(1);
    {
        List list;
        list.AddTail(&a);
    }
    QVERIFY(Item::destroyed.empty());
    QCOMPARE(a.value, 1);
}

void tst_ZrLstPtr::pointersToConstantItems()
{
    const Item a(5);
    ZrLstPtr<const Item*> list;
    list.AddTail(&a);
    ZrListPos* pos = list.GetHeadPos();
    const Item* found = list.GetNext(pos);
    QCOMPARE(found, &a);
}

QTEST_GUILESS_MAIN(tst_ZrLstPtr)
#include "tst_ZrLstPtr.moc"
