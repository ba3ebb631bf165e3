#include "ZrKit/review/ZrGaps.h"

#include <algorithm>
#include <cmath>

ZrGaps::ZrGaps(zr::span<const double> times, double longest)
{
    if (!(longest >= 0.0))
        return;
    for (std::size_t i = 1; i < times.size(); ++i) {
        const double step = times[i] - times[i - 1];
        if (!(step > longest))
            continue;
        m_gaps.push_back({times[i - 1], times[i]});
        m_sums.push_back(Sum() + step);
    }
}

double ZrGaps::Cut(double steady) const
{
    const std::size_t behind = From(steady);
    if (behind == 0 || std::isnan(steady))
        return steady;
    const std::size_t gap = behind - 1; // begins before, and may reach beyond
    if (steady < m_gaps[gap].end)
        return m_gaps[gap].begin - SumBefore(gap);
    return steady - m_sums[gap];
}

double ZrGaps::Whole(double cut) const
{
    // The gaps that lie before, by their own cut times, which ascend.
    std::size_t first = 0;
    std::size_t count = m_gaps.size();
    while (count > 0) {
        const std::size_t half = count / 2;
        const std::size_t middle = first + half;
        if (m_gaps[middle].begin - SumBefore(middle) < cut) {
            first = middle + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return cut + SumBefore(first);
}

std::size_t ZrGaps::GapAt(double steady) const
{
    const std::size_t behind = From(steady);
    return behind > 0 && steady < m_gaps[behind - 1].end ? behind - 1 : m_gaps.size();
}

std::size_t ZrGaps::From(double steady) const
{
    if (std::isnan(steady))
        return m_gaps.size();
    const auto found = std::lower_bound(
        m_gaps.begin(), m_gaps.end(), steady, [](const Gap& gap, double t) { return gap.begin < t; });
    return static_cast<std::size_t>(found - m_gaps.begin());
}
