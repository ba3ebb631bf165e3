#pragma once

#include "CountedItem.h"
#include "ZrUtil/ZrLstMgd.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <algorithm>

using Item = CountedItem;
using List = ZrLstMgd<Item>;
using Ints = QVector<int>;

/// The defect of the links that is found first; null when head, tail and all neighbours agree.
template <class T> const char* LinkDefect(const ZrLstMgd<T>& list)
{
    if (!list.head || !list.tail)
        return list.head == list.tail ? nullptr : "only one of head and tail is null";
    if (list.head->prev)
        return "the head has a predecessor";
    if (list.tail->next)
        return "the tail has a successor";
    const ZrListPos* pos = list.head;
    for (; pos->next; pos = pos->next)
        if (pos->next->prev != pos)
            return "two neighbours disagree";
    return pos == list.tail ? nullptr : "the walk does not end at the tail";
}

inline Ints Values(const List& list)
{
    Ints values;
    ZrListPos* pos = list.GetHeadPos();
    while (pos)
        values << list.GetNext(pos)->value;
    return values;
}

inline Ints ValuesBackwards(const List& list)
{
    Ints values;
    ZrListPos* pos = list.GetTailPos();
    while (pos)
        values << list.GetPrev(pos)->value;
    return values;
}

inline QVector<ZrListPos*> Nodes(const List& list)
{
    QVector<ZrListPos*> nodes;
    for (ZrListPos* pos = list.head; pos; pos = pos->next)
        nodes << pos;
    return nodes;
}

/// Fills an empty list with the items 1 ... count.
inline void Fill(List& list, int count)
{
    for (int value = 1; value <= count; ++value)
        list.AddTail(new Item(value));
}

inline Ints Destroyed()
{
    return Ints(Item::destroyed.begin(), Item::destroyed.end());
}

inline QString Text(const Ints& values)
{
    QStringList texts;
    for (int value : values)
        texts << QString::number(value);
    return texts.join(QLatin1Char(' '));
}

/// What is wrong with the list, whose items should be \p expected from head to tail; empty if nothing is.
inline QString Mismatch(const List& list, const Ints& expected)
{
    if (const char* defect = LinkDefect(list))
        return QLatin1String(defect);
    if (Values(list) != expected)
        return QStringLiteral("[%1] instead of [%2]").arg(Text(Values(list)), Text(expected));
    Ints backwards = ValuesBackwards(list);
    std::reverse(backwards.begin(), backwards.end());
    return backwards == expected ? QString() : QStringLiteral("another order from the tail");
}

// Compares the values of a list in both directions and checks its links.
#define VERIFY_LIST(list, ...) QCOMPARE(Mismatch(list, __VA_ARGS__), QString())
