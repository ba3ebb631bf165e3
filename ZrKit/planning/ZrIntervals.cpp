#include "ZrKit/planning/ZrIntervals.h"

#include <algorithm>

ZrIntervals ZrIntervals::Union(std::vector<ZrInterval> intervals, double gap)
{
    std::sort(intervals.begin(), intervals.end(),
        [](const ZrInterval& a, const ZrInterval& b) { return a.from < b.from; });
    ZrIntervals all;
    for (const ZrInterval& next : intervals) {
        if (!all.m_all.empty() && next.from - all.m_all.back().to <= gap)
            all.m_all.back().to = std::max(all.m_all.back().to, next.to);
        else
            all.m_all.push_back(next);
    }
    return all;
}

ZrIntervals ZrIntervals::Without(const ZrIntervals& others) const
{
    ZrIntervals rest;
    auto other = others.m_all.begin();
    for (const ZrInterval& whole : m_all) {
        double from = whole.from;
        while (other != others.m_all.end() && other->to <= from)
            ++other;
        for (auto cut = other; cut != others.m_all.end() && cut->from < whole.to; ++cut) {
            if (cut->from > from)
                rest.m_all.push_back({from, cut->from});
            from = std::max(from, cut->to);
        }
        if (from < whole.to)
            rest.m_all.push_back({from, whole.to});
    }
    return rest;
}
