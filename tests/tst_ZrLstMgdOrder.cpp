#include "ListChecks.h"
#include "ZrUtil/ZrLstMgd.h"

#include <QtTest/QtTest>

// The operations that change the order: which node stays where, and which item it holds afterwards.
class tst_ZrLstMgdOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Item::Reset(); }

    void cleanup() { QVERIFY2(Item::alive.empty(), "a test left items behind"); }

    void emptyListIgnoresReordering();
    void invert_data();
    void invert();
    void shiftUp_data();
    void shiftUp();
    void shiftDn_data();
    void shiftDn();
    void shiftToHead_data();
    void shiftToHead();
    void shiftToTail_data();
    void shiftToTail();
    void shiftToTailOfNullDoesNothing();
    void swap_data();
    void swap();
    void fillPtrList();
};

void tst_ZrLstMgdOrder::emptyListIgnoresReordering()
{
    List list;
    ZrListPos foreign;
    list.Invert();
    list.ShiftToHead(&foreign);
    list.ShiftToTail(nullptr);
    QVERIFY(list.IsEmpty());
    QVERIFY(!list.tail);
}

void tst_ZrLstMgdOrder::invert_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("one") << 1 << Ints{1};
    QTest::newRow("two") << 2 << Ints{2, 1};
    QTest::newRow("three") << 3 << Ints{3, 2, 1};
    QTest::newRow("four") << 4 << Ints{4, 3, 2, 1};
    QTest::newRow("five") << 5 << Ints{5, 4, 3, 2, 1};
}

void tst_ZrLstMgdOrder::invert()
{
    QFETCH(int, count);
    QFETCH(Ints, expected);
    List list;
    Fill(list, count);
    const QVector<ZrListPos*> nodes = Nodes(list);
    list.Invert();
    VERIFY_LIST(list, expected);
    QCOMPARE(Nodes(list), nodes);
    // A kept position refers to another item: the former head node holds the former last item.
    QCOMPARE(list.GetAt(nodes.first())->value, count);
}

void tst_ZrLstMgdOrder::shiftUp_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("head") << 0 << Ints{2, 1, 3};
    QTest::newRow("middle") << 1 << Ints{1, 3, 2};
    QTest::newRow("tail stays") << 2 << Ints{1, 2, 3};
}

void tst_ZrLstMgdOrder::shiftUp()
{
    QFETCH(int, index);
    QFETCH(Ints, expected);
    List list;
    Fill(list, 3);
    const QVector<ZrListPos*> nodes = Nodes(list);
    list.ShiftUp(nodes[index]);
    VERIFY_LIST(list, expected);
    QCOMPARE(Nodes(list), nodes);
}

void tst_ZrLstMgdOrder::shiftDn_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("head stays") << 0 << Ints{1, 2, 3};
    QTest::newRow("middle") << 1 << Ints{2, 1, 3};
    QTest::newRow("tail") << 2 << Ints{1, 3, 2};
}

void tst_ZrLstMgdOrder::shiftDn()
{
    QFETCH(int, index);
    QFETCH(Ints, expected);
    List list;
    Fill(list, 3);
    const QVector<ZrListPos*> nodes = Nodes(list);
    list.ShiftDn(nodes[index]);
    VERIFY_LIST(list, expected);
    QCOMPARE(Nodes(list), nodes);
}

void tst_ZrLstMgdOrder::shiftToHead_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("head") << 0 << Ints{1, 2, 3};
    QTest::newRow("middle") << 1 << Ints{2, 1, 3};
    QTest::newRow("tail exchanges with the head") << 2 << Ints{3, 2, 1};
}

void tst_ZrLstMgdOrder::shiftToHead()
{
    QFETCH(int, index);
    QFETCH(Ints, expected);
    List list;
    Fill(list, 3);
    const QVector<ZrListPos*> nodes = Nodes(list);
    list.ShiftToHead(nodes[index]);
    VERIFY_LIST(list, expected);
    QCOMPARE(Nodes(list), nodes);
}

void tst_ZrLstMgdOrder::shiftToTail_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("index");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("only node") << 1 << 0 << Ints{1};
    QTest::newRow("head of two") << 2 << 0 << Ints{2, 1};
    QTest::newRow("head") << 3 << 0 << Ints{2, 3, 1};
    QTest::newRow("middle") << 3 << 1 << Ints{1, 3, 2};
    QTest::newRow("tail") << 3 << 2 << Ints{1, 2, 3};
}

void tst_ZrLstMgdOrder::shiftToTail()
{
    QFETCH(int, count);
    QFETCH(int, index);
    QFETCH(Ints, expected);
    List list;
    Fill(list, count);
    ZrListPos* pos = list.FindIndex(index);
    QVector<ZrListPos*> nodes = Nodes(list);
    nodes.append(nodes.takeAt(index));
    list.ShiftToTail(pos);
    VERIFY_LIST(list, expected);
    // The node itself moves, with its item.
    QCOMPARE(Nodes(list), nodes);
    QCOMPARE(list.tail, pos);
    QCOMPARE(list.GetAt(pos)->value, index + 1);
}

void tst_ZrLstMgdOrder::shiftToTailOfNullDoesNothing()
{
    List list;
    Fill(list, 3);
    list.ShiftToTail(nullptr);
    VERIFY_LIST(list, {1, 2, 3});
}

void tst_ZrLstMgdOrder::swap_data()
{
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<Ints>("expected");
    QTest::newRow("neighbours") << 0 << 1 << Ints{2, 1, 3, 4};
    QTest::newRow("ends") << 0 << 3 << Ints{4, 2, 3, 1};
    QTest::newRow("backwards") << 2 << 1 << Ints{1, 3, 2, 4};
    QTest::newRow("itself") << 2 << 2 << Ints{1, 2, 3, 4};
}

void tst_ZrLstMgdOrder::swap()
{
    QFETCH(int, a);
    QFETCH(int, b);
    QFETCH(Ints, expected);
    List list;
    Fill(list, 4);
    const QVector<ZrListPos*> nodes = Nodes(list);
    list.Swap(nodes[a], nodes[b]);
    VERIFY_LIST(list, expected);
    QCOMPARE(Nodes(list), nodes);
}

void tst_ZrLstMgdOrder::fillPtrList()
{
    List list;
    Fill(list, 3);
    Item former(9);
    ZrLstPtr<Item*> out;
    out.AddTail(&former);

    list.FillPtrList(out);
    QCOMPARE(out.GetCount(), 3);
    ZrListPos* pos = out.GetHeadPos();
    for (int i = 0; i < 3; ++i)
        QCOMPARE(out.GetNext(pos), list.GetAt(list.FindIndex(i)));
    QVERIFY(Item::destroyed.empty());

    List empty;
    empty.FillPtrList(out);
    QCOMPARE(out.GetCount(), 0);
    VERIFY_LIST(list, {1, 2, 3});
}

QTEST_GUILESS_MAIN(tst_ZrLstMgdOrder)
#include "tst_ZrLstMgdOrder.moc"
