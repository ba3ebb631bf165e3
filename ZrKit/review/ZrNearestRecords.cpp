#include "ZrKit/review/ZrNearestRecords.h"

#include <algorithm>
#include <cmath>
#include <iterator>

ZrNearestRecords::ZrNearestRecords(const std::vector<double>& times)
    : m_times(times)
{
    std::copy_if(times.begin(), times.end(), std::back_inserter(m_sorted),
        [](double time) { return !std::isnan(time); });
    std::sort(m_sorted.begin(), m_sorted.end());
    m_sorted.erase(std::unique(m_sorted.begin(), m_sorted.end()), m_sorted.end());
    m_between.resize(m_sorted.size() + 1);
}

void ZrNearestRecords::Add(std::size_t record, double time)
{
    if (!std::isfinite(time))
        return;
    // A record at one of the times counts as behind it.
    const auto behind = std::upper_bound(m_sorted.begin(), m_sorted.end(), time);
    Between& between = m_between[static_cast<std::size_t>(behind - m_sorted.begin())];
    const auto take = [&](Place& place, bool isFurther) {
        if (place.record == None || isFurther || (place.time == time && record < place.record))
            place = {time, record};
    };
    take(between.first, time < between.first.time);
    take(between.last, time > between.last.time);
}

std::size_t ZrNearestRecords::Of(std::size_t i) const
{
    const double time = m_times[i];
    if (std::isnan(time))
        return None;
    const auto at = static_cast<std::size_t>(
        std::lower_bound(m_sorted.begin(), m_sorted.end(), time) - m_sorted.begin());
    Place before;
    for (std::size_t k = at + 1; k > 0 && before.record == None; --k)
        before = m_between[k - 1].last;
    Place behind;
    for (std::size_t k = at + 1; k < m_between.size() && behind.record == None; ++k)
        behind = m_between[k].first;
    if (before.record == None || behind.record == None)
        return before.record == None ? behind.record : before.record;
    const double toBefore = time - before.time;
    const double toBehind = behind.time - time;
    if (toBefore == toBehind)
        return std::min(before.record, behind.record);
    return toBefore < toBehind ? before.record : behind.record;
}
