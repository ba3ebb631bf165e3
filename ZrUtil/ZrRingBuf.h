#pragma once

#include <utility>

namespace zr {

/// History of fixed capacity \p N that overwrites its oldest entry when full.
///
/// Entry `i`, with 0 the oldest and `count - 1` the newest, lies at `items[(head + i) % N]`. All N elements
/// exist from the start; those that hold no entry are value-initialised. Adding is O(1) and allocates
/// nothing of its own. There is no lock inside: an owner that shares the buffer between threads guards it.
///
/// \code
/// zr::ZrRingBuf<double, 3> depths;
/// depths.push(12.5);
/// for (int i = 0; i < depths.count; ++i)
///     use(depths.items[(depths.head + i) % 3]);
/// \endcode
template <class T, int N> class ZrRingBuf
{
    static_assert(N > 0 && N <= (1 << 30), "head + count has to fit an int");

public:
    /// An empty history.
    constexpr ZrRingBuf()
        : items()
    {
    }

    /// Appends \p value as the newest entry.
    void push(const T& value) { items[advance()] = value; }

    /// Appends \p value by moving it. A type whose move assignment swaps, as that of QString does, hands the
    /// overwritten entry back in \p value.
    void push(T&& value) { items[advance()] = std::move(value); }

    /// Entry \p i, 0 the oldest; \p i must lie in 0 to `count` - 1.
    const T& at(int i) const { return items[(head + i) % N]; }

    int head = 0; ///< index of the oldest entry
    int count = 0; ///< number of valid entries, 0 to N
    T items[N]; ///< the storage, in ring order

private:
    /// Makes room for one entry and returns its index.
    int advance()
    {
        if (count >= N)
            head = (head + 1) % N;
        else
            count += 1;
        return (head + count - 1) % N;
    }
};

} // namespace zr
