#include "ZrKit/recording/ZrArrivalRate.h"

#include <limits>

void ZrArrivalRate::Look(double now, u64 total)
{
    if (!m_looks.empty() && (total < m_looks.back().total || now < m_looks.back().time))
        m_looks.clear();
    // One more than is in the window stays: the mean is over all of it.
    while (m_looks.size() > 1 && m_looks[1].time <= now - Window)
        m_looks.pop_front();
    m_looks.push_back({now, total});
}

double ZrArrivalRate::PerSecond(double now) const
{
    if (m_looks.empty() || now - m_looks.front().time < LeastSpan)
        return std::numeric_limits<double>::quiet_NaN();
    const Seen* first = &m_looks.front();
    for (const Seen& seen : m_looks) {
        if (seen.time <= now - Window)
            first = &seen;
    }
    return static_cast<double>(m_looks.back().total - first->total) / (now - first->time);
}
