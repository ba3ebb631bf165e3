#include "ZrKit/review/ZrEventFlags.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

int At(const std::vector<int>& list, int index)
{
    return index >= 0 && static_cast<std::size_t>(index) < list.size() ? list[static_cast<std::size_t>(index)]
                                                                       : -1;
}

} // namespace

ZrEventFlags::ZrEventFlags(const std::vector<double>& steady)
    : m_flags(steady.size(), -1)
{
    for (std::size_t event = 0; event < steady.size(); ++event) {
        if (!std::isnan(steady[event]))
            m_events.push_back(static_cast<int>(event));
    }
    const auto time = [&steady](int event) { return steady[static_cast<std::size_t>(event)]; };
    std::stable_sort(m_events.begin(), m_events.end(), [&time](int a, int b) { return time(a) < time(b); });
    m_times.reserve(m_events.size());
    for (const int event : m_events) {
        m_flags[static_cast<std::size_t>(event)] = static_cast<int>(m_times.size());
        m_times.push_back(time(event));
    }
}

int ZrEventFlags::EventOf(int flag) const
{
    return ::At(m_events, flag);
}

int ZrEventFlags::FlagOf(int event) const
{
    return ::At(m_flags, event);
}

int ZrEventFlags::At(double time, double within) const
{
    int nearest = -1;
    double distance = 0.0;
    const auto first = std::lower_bound(m_times.begin(), m_times.end(), time - within);
    for (auto at = first; at != m_times.end() && *at <= time + within; ++at) {
        const double away = std::fabs(*at - time);
        if (nearest >= 0 && away >= distance)
            continue;
        distance = away;
        nearest = EventOf(static_cast<int>(at - m_times.begin()));
    }
    return nearest;
}

bool ZrEventFlags::IsAt(int event, double time, double within) const
{
    const int flag = FlagOf(event);
    return flag >= 0 && std::fabs(m_times[static_cast<std::size_t>(flag)] - time) <= within;
}
