#include "ZrKit/review/ZrRecordTimes.h"

#include <algorithm>
#include <cmath>

ZrRecordTimes::ZrRecordTimes(const std::vector<ZrLogRec>& recs)
    : m_count(recs.size())
{
    m_times.reserve(recs.size());
    for (std::size_t i = 0; i < recs.size(); ++i) {
        const double time = recs[i].time; // by value: records are packed
        if (std::isfinite(time))
            m_times.emplace_back(time, i);
    }
    // Most logs are in order already.
    if (!std::is_sorted(m_times.begin(), m_times.end()))
        std::sort(m_times.begin(), m_times.end());
}

std::size_t ZrRecordTimes::Nearest(double time) const
{
    if (m_times.empty() || std::isnan(time))
        return m_count;
    const auto firstOf = [this](double t) {
        return std::lower_bound(m_times.begin(), m_times.end(), std::make_pair(t, std::size_t{0}));
    };
    const auto behind = firstOf(time);
    if (behind == m_times.begin())
        return behind->second;
    const auto before = firstOf(std::prev(behind)->first);
    if (behind == m_times.end())
        return before->second;
    const double toBefore = time - before->first;
    const double toBehind = behind->first - time;
    if (toBefore == toBehind)
        return std::min(before->second, behind->second);
    return toBefore < toBehind ? before->second : behind->second;
}
