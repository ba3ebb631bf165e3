#pragma once

#include "ZrUtil/ZrListPos.h"
#include "ZrUtil/ZrLstPtr.h"

#include <memory>
#include <utility>

/// Doubly linked list that owns its heap-allocated items.
///
/// An item handed to `AddHead`, `AddTail`, `InsertAfter`, `InsertBefore` or `SetAt` is stored by pointer, not
/// copied, and from then on belongs to the list, which deletes it when its node is removed and when the list
/// is cleared or destroyed. The items must therefore come from `new`; they are declared `const T*` because
/// adding does not change them, and the list hands them out as `T*`.
///
/// Positions are nodes (`ZrListPos*`). They stay valid until their node is removed and are never checked: a
/// position of another list, a removed one, or a null one where null is not mentioned is a caller error.
/// No count is stored: `GetCount`, `FindIndex` and `GetIndex` walk the list. The object is a vtable pointer
/// and two pointers; the destructor is its only virtual function, so that derived lists may be deleted
/// through it.
///
/// No operation reports failure. When adding an item throws `std::bad_alloc`, the list is as before and the
/// item still the caller's. Copying is deleted. Not synchronised: one thread at a time.
///
/// \code
/// ZrLstMgd<ZrWpt> list;
/// list.AddTail(new ZrWpt);
/// for (ZrListPos* pos = list.GetHeadPos(); pos;) {
///     ZrWpt* wpt = list.GetNext(pos); // pos is one ahead, so wpt may be removed here
///     ...
/// }
/// \endcode
template <class T> class ZrLstMgd
{
public:
    using ZrListPos = ::ZrListPos;

    ZrListPos* head = nullptr; ///< first node, null while empty
    ZrListPos* tail = nullptr; ///< last node, null while empty

    ZrLstMgd() = default;

    virtual ~ZrLstMgd() { RemoveAll(); }

    ZrLstMgd(const ZrLstMgd&) = delete;
    ZrLstMgd& operator=(const ZrLstMgd&) = delete;

    /// First node from \p start on (from the head when null) that holds this very pointer; null if none.
    ZrListPos* Find(const T* item, ZrListPos* start = nullptr) const;

    /// Node number \p i, counted from 0 at the head; null outside 0 ... count - 1.
    ZrListPos* FindIndex(int i) const;

    /// The item at \p pos; null when \p pos is null.
    T* GetAt(ZrListPos* pos) const { return pos ? ItemOf(pos) : nullptr; }

    /// The item at \p pos, which moves towards the tail (null after it). A null \p pos gives null and stays
    /// null.
    T* GetNext(ZrListPos*& pos) const;

    /// The item at \p pos, which moves towards the head (null before it). A null \p pos gives null and stays
    /// null.
    T* GetPrev(ZrListPos*& pos) const;

    /// The first item, null while empty.
    T* GetHead() const { return GetAt(head); }

    /// The last item, null while empty.
    T* GetTail() const { return GetAt(tail); }

    ZrListPos* GetHeadPos() const { return head; }

    ZrListPos* GetTailPos() const { return tail; }

    int GetCount() const;

    bool IsEmpty() const { return !head; }

    /// Index of the node \p pos, -1 if it is not in the list. A bare `nullptr` does not choose between the
    /// two.
    int GetIndex(ZrListPos* pos) const;

    /// Index of the first node that holds this very pointer, -1 if none.
    int GetIndex(const T* item) const;

    /// Adds \p item in front of all others; returns its node.
    ZrListPos* AddHead(const T* item) { return Link(nullptr, item, head); }

    /// Adds \p item behind all others; returns its node.
    ZrListPos* AddTail(const T* item) { return Link(tail, item, nullptr); }

    /// Adds \p item behind \p pos; at the tail when \p pos is null.
    ZrListPos* InsertAfter(ZrListPos* pos, const T* item);

    /// Adds \p item in front of \p pos; at the head when \p pos is null.
    ZrListPos* InsertBefore(ZrListPos* pos, const T* item);

    /// Makes \p item the item of \p pos (nothing when null). The former item is not deleted: it goes back to
    /// the caller, who fetches it before with `GetAt`.
    void SetAt(ZrListPos* pos, const T* item);

    /// Removes the node \p pos and deletes its item; nothing when null.
    void RemoveAt(ZrListPos* pos);

    /// Removes the first node that holds this very pointer, and deletes the item; nothing if none does.
    void Remove(T* item) { RemoveAt(Find(item)); }

    void RemoveHead() { RemoveAt(head); }

    void RemoveTail() { RemoveAt(tail); }

    /// Removes the successor of \p pos. Behind the tail, or behind a null \p pos, comes the head: it is
    /// removed.
    void RemoveAfter(ZrListPos* pos);

    /// Removes the predecessor of \p pos. Before the head, or before a null \p pos, comes the tail: it is
    /// removed.
    void RemoveBefore(ZrListPos* pos);

    /// Deletes every item and node, from the head to the tail.
    void RemoveAll();

    /// Appends \p n items made by `new T()`; a negative \p n removes that many from the tail, at most all.
    /// When a constructor of \a T throws, the items appended before it stay.
    void Grow(int n);

    /// Brings the list to \p n items, by appending items made by `new T()` or by removing from the tail.
    /// When a constructor of \a T throws, the items appended before it stay.
    void SetSize(unsigned int n);

    /// Reverses the order of the items. The nodes stay, so a kept position holds another item afterwards.
    void Invert();

    /// Exchanges the items of \p pos and its successor, so that the item moves one place towards the tail.
    /// Nothing at the tail.
    void ShiftUp(ZrListPos* pos);

    /// Exchanges the items of \p pos and its predecessor, so that the item moves one place towards the head.
    /// Nothing at the head.
    void ShiftDn(ZrListPos* pos);

    /// Exchanges the items of \p pos and the head: the former head item lands at \p pos. Nothing while empty.
    void ShiftToHead(ZrListPos* pos);

    /// Moves the node \p pos, with its item, behind the tail; all others keep their order. Nothing when it is
    /// null or the tail.
    void ShiftToTail(ZrListPos* pos);

    /// Exchanges the items of the two nodes.
    void Swap(ZrListPos* a, ZrListPos* b) { std::swap(a->data, b->data); }

    /// Empties \p out, then appends the pointer of every item in order. The items stay this list's.
    void FillPtrList(ZrLstPtr<T*>& out) const;

private:
    static T* ItemOf(const ZrListPos* pos) { return static_cast<T*>(pos->data); }

    static void* DataOf(const T* item) { return const_cast<T*>(item); }

    ZrListPos* Link(ZrListPos* before, const T* item, ZrListPos* after);
    void Unlink(const ZrListPos* pos);
    void AppendNew();
};

/// A node for \p item between two neighbours, of which \p before is null at the head and \p after at the
/// tail.
template <class T> ZrListPos* ZrLstMgd<T>::Link(ZrListPos* before, const T* item, ZrListPos* after)
{
    ZrListPos* node = new ZrListPos{before, after, DataOf(item)};
    (before ? before->next : head) = node;
    (after ? after->prev : tail) = node;
    return node;
}

/// Takes the node out of the chain; its own pointers stay as they are.
template <class T> void ZrLstMgd<T>::Unlink(const ZrListPos* pos)
{
    (pos == head ? head : pos->prev->next) = pos->next;
    (pos == tail ? tail : pos->next->prev) = pos->prev;
}

template <class T> ZrListPos* ZrLstMgd<T>::Find(const T* item, ZrListPos* start) const
{
    ZrListPos* pos = start ? start : head;
    while (pos && pos->data != item)
        pos = pos->next;
    return pos;
}

template <class T> ZrListPos* ZrLstMgd<T>::FindIndex(int i) const
{
    if (i < 0)
        return nullptr;
    ZrListPos* pos = head;
    while (pos && i-- > 0)
        pos = pos->next;
    return pos;
}

template <class T> T* ZrLstMgd<T>::GetNext(ZrListPos*& pos) const
{
    if (!pos)
        return nullptr;
    T* item = ItemOf(pos);
    pos = pos->next;
    return item;
}

template <class T> T* ZrLstMgd<T>::GetPrev(ZrListPos*& pos) const
{
    if (!pos)
        return nullptr;
    T* item = ItemOf(pos);
    pos = pos->prev;
    return item;
}

template <class T> int ZrLstMgd<T>::GetCount() const
{
    int count = 0;
    for (const ZrListPos* pos = head; pos; pos = pos->next)
        ++count;
    return count;
}

template <class T> int ZrLstMgd<T>::GetIndex(ZrListPos* pos) const
{
    int index = 0;
    for (const ZrListPos* node = head; node; node = node->next, ++index)
        if (node == pos)
            return index;
    return -1;
}

template <class T> int ZrLstMgd<T>::GetIndex(const T* item) const
{
    int index = 0;
    for (const ZrListPos* node = head; node; node = node->next, ++index)
        if (node->data == item)
            return index;
    return -1;
}

template <class T> ZrListPos* ZrLstMgd<T>::InsertAfter(ZrListPos* pos, const T* item)
{
    if (!pos || pos == tail)
        return AddTail(item);
    return Link(pos, item, pos->next);
}

template <class T> ZrListPos* ZrLstMgd<T>::InsertBefore(ZrListPos* pos, const T* item)
{
    if (!pos || pos == head)
        return AddHead(item);
    return Link(pos->prev, item, pos);
}

template <class T> void ZrLstMgd<T>::SetAt(ZrListPos* pos, const T* item)
{
    if (pos)
        pos->data = DataOf(item);
}

template <class T> void ZrLstMgd<T>::RemoveAt(ZrListPos* pos)
{
    if (!pos)
        return;
    // Unlinked first: a destructor that looks at the list finds it in order, without the dying item.
    Unlink(pos);
    delete ItemOf(pos);
    delete pos;
}

template <class T> void ZrLstMgd<T>::RemoveAfter(ZrListPos* pos)
{
    if (!pos || !pos->next)
        RemoveHead();
    else
        RemoveAt(pos->next);
}

template <class T> void ZrLstMgd<T>::RemoveBefore(ZrListPos* pos)
{
    if (!pos || !pos->prev)
        RemoveTail();
    else
        RemoveAt(pos->prev);
}

template <class T> void ZrLstMgd<T>::RemoveAll()
{
    while (ZrListPos* node = head) {
        head = node->next;
        (head ? head->prev : tail) = nullptr;
        delete ItemOf(node);
        delete node;
    }
}

template <class T> void ZrLstMgd<T>::AppendNew()
{
    std::unique_ptr<T> item(new T());
    AddTail(item.get());
    static_cast<void>(item.release());
}

template <class T> void ZrLstMgd<T>::Grow(int n)
{
    for (; n > 0; --n)
        AppendNew();
    for (; n < 0 && head; ++n)
        RemoveTail();
}

template <class T> void ZrLstMgd<T>::SetSize(unsigned int n)
{
    unsigned int count = static_cast<unsigned int>(GetCount());
    for (; count < n; ++count)
        AppendNew();
    for (; count > n; --count)
        RemoveTail();
}

template <class T> void ZrLstMgd<T>::Invert()
{
    ZrListPos* left = head;
    ZrListPos* right = tail;
    while (left != right) {
        Swap(left, right);
        left = left->next;
        if (left == right)
            break;
        right = right->prev;
    }
}

template <class T> void ZrLstMgd<T>::ShiftUp(ZrListPos* pos)
{
    if (pos->next)
        Swap(pos, pos->next);
}

template <class T> void ZrLstMgd<T>::ShiftDn(ZrListPos* pos)
{
    if (pos->prev)
        Swap(pos, pos->prev);
}

template <class T> void ZrLstMgd<T>::ShiftToHead(ZrListPos* pos)
{
    if (head)
        Swap(pos, head);
}

template <class T> void ZrLstMgd<T>::ShiftToTail(ZrListPos* pos)
{
    if (!pos || pos == tail)
        return;
    Unlink(pos);
    pos->prev = tail;
    pos->next = nullptr;
    tail->next = pos;
    tail = pos;
}

template <class T> void ZrLstMgd<T>::FillPtrList(ZrLstPtr<T*>& out) const
{
    out.RemoveAll();
    for (const ZrListPos* pos = head; pos; pos = pos->next)
        out.AddTail(ItemOf(pos));
}
