#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"

#include <deque>

/// How many things arrive each second, from a counter that is looked at now and then.
///
/// \code
/// m_rate.Look(now, news.lineCount); // as often as one likes
/// show(m_rate.PerSecond(now));
/// \endcode
///
/// The mean over the last `Window`, or over the time since the first look when that is shorter. A counter
/// that has become smaller begins anew. Times are seconds of any clock that does not go back.
class ZR_KIT_EXPORT ZrArrivalRate
{
public:
    static constexpr double Window = 3.0; ///< seconds
    static constexpr double LeastSpan = 0.5; ///< of shorter times nothing is said

    void Look(double now, u64 total);

    /// NaN while there is less than `LeastSpan` to tell it from.
    double PerSecond(double now) const;

    void Clear() { m_looks.clear(); }

private:
    struct Seen
    {
        double time;
        u64 total;
    };

    std::deque<Seen> m_looks;
};
