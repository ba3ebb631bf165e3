#pragma once

#include "ZrUtil/ZrListPos.h"

#include <type_traits>

/// List of pointers to items that somebody else owns: the companion of `ZrLstMgd`, with the same nodes.
///
/// \a P is the pointer type itself, for instance `ZrLstPtr<ZrWpt*>`. The list owns its nodes and never
/// deletes what they point to, so the items must outlive the use of the pointers, not the list. Counting
/// walks the list. Copying is deleted. Not synchronised: one thread at a time.
///
/// \code
/// ZrLstPtr<ZrWpt*> selected;
/// route.FillPtrList(selected);
/// ZrListPos* pos = selected.GetHeadPos();
/// while (pos)
///     paint(*selected.GetNext(pos));
/// \endcode
template <class P> class ZrLstPtr
{
    static_assert(std::is_pointer_v<P>, "ZrLstPtr holds pointers: write ZrLstPtr<T*>");

public:
    using ZrListPos = ::ZrListPos;

    ZrListPos* head = nullptr; ///< first node, null while empty
    ZrListPos* tail = nullptr; ///< last node, null while empty

    ZrLstPtr() = default;

    ~ZrLstPtr() { RemoveAll(); }

    ZrLstPtr(const ZrLstPtr&) = delete;
    ZrLstPtr& operator=(const ZrLstPtr&) = delete;

    /// The first node, null while empty.
    ZrListPos* GetHeadPos() const { return head; }

    /// The pointer at \p pos, which moves to the next node (null after the tail). A null \p pos gives null
    /// and stays null.
    P GetNext(ZrListPos*& pos) const
    {
        if (!pos)
            return nullptr;
        P item = static_cast<P>(pos->data);
        pos = pos->next;
        return item;
    }

    /// Number of nodes; walks the list.
    int GetCount() const
    {
        int count = 0;
        for (const ZrListPos* pos = head; pos; pos = pos->next)
            ++count;
        return count;
    }

    /// Appends \p item, which stays the caller's, and returns its node.
    ZrListPos* AddTail(P item)
    {
        // A node holds void*, also for pointers to constant items; GetNext gives the constness back.
        void* data = const_cast<void*>(static_cast<const void*>(item));
        ZrListPos* node = new ZrListPos{tail, nullptr, data};
        (tail ? tail->next : head) = node;
        tail = node;
        return node;
    }

    /// Frees every node; the items stay.
    void RemoveAll()
    {
        while (head) {
            ZrListPos* node = head;
            head = node->next;
            delete node;
        }
        tail = nullptr;
    }
};
