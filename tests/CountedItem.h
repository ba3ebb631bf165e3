#pragma once

#include <QtGlobal>

#include <set>
#include <stdexcept>
#include <vector>

/// An item that knows which of its kind are alive, so that leaks and double deletions show.
struct CountedItem
{
    static inline std::set<const CountedItem*> alive;
    static inline std::vector<int> destroyed; ///< values in the order of destruction
    /// Default constructions before one throws; negative: none throws
    static inline int constructionsLeft = -1;

    CountedItem()
    {
        if (constructionsLeft == 0)
            throw std::runtime_error("no more items");
        if (constructionsLeft > 0)
            --constructionsLeft;
        alive.insert(this);
    }

    explicit CountedItem(int number)
        : value(number)
    {
        alive.insert(this);
    }

    ~CountedItem()
    {
        if (alive.erase(this) != 1)
            qFatal("an item was deleted that is not alive");
        destroyed.push_back(value);
    }

    CountedItem(const CountedItem&) = delete;
    CountedItem& operator=(const CountedItem&) = delete;

    static void Reset()
    {
        destroyed.clear();
        constructionsLeft = -1;
    }

    int value = 0;
};
