#include "ZrKit/review/ZrPlotSeries.h"

#include <algorithm>
#include <cmath>
#include <utility>

ZrPlotSeries::ZrPlotSeries()
    : ZrPlotSeries(std::make_shared<const ZrSteadyTime>())
{
}

ZrPlotSeries::ZrPlotSeries(std::shared_ptr<const ZrSteadyTime> times)
    : m_times(std::move(times))
{
}

bool ZrPlotSeries::Append(float value)
{
    if (m_values.size() >= m_times->Count())
        return false;
    const bool known = std::isfinite(value);
    std::size_t block = m_values.size() / Block;
    m_values.push_back(known ? value : std::numeric_limits<float>::quiet_NaN());
    // Each level up to the first that has a single block.
    for (std::size_t level = 0;; ++level, block /= Block) {
        if (level == m_levels.size()) {
            if (block == 0 && level > 0)
                break;
            m_levels.emplace_back();
            if (level > 0) { // its first block is complete
                m_levels[level].emplace_back();
                for (std::size_t i = 0; i < Block; ++i)
                    m_levels[level][0].Add(m_levels[level - 1][i]);
            }
        }
        std::vector<Extent>& extents = m_levels[level];
        if (block == extents.size())
            extents.emplace_back();
        if (known)
            extents[block].Add({value, value});
    }
    return true;
}

void ZrPlotSeries::Squeeze()
{
    m_values.shrink_to_fit();
    for (std::vector<Extent>& level : m_levels)
        level.shrink_to_fit();
}

float ZrPlotSeries::ValueAt(double steady) const
{
    const std::vector<double>& times = Times();
    const auto end = times.begin() + static_cast<std::ptrdiff_t>(m_values.size());
    const auto behind = std::upper_bound(times.begin(), end, steady);
    if (behind == times.begin() || std::isnan(steady))
        return std::numeric_limits<float>::quiet_NaN();
    return m_values[static_cast<std::size_t>(behind - times.begin()) - 1];
}

ZrPlotSeries::Extent ZrPlotSeries::ExtentOf(std::size_t first, std::size_t end, std::size_t* looks) const
{
    Extent extent;
    std::size_t count = 0;
    std::size_t a = first;
    std::size_t b = std::min(end, m_values.size());
    const auto addValue = [&](std::size_t i) {
        ++count;
        if (!std::isnan(m_values[i]))
            extent.Add({m_values[i], m_values[i]});
    };
    while (a < b && a % Block != 0)
        addValue(a++);
    while (a < b && b % Block != 0)
        addValue(--b);
    // What is left begins and ends with whole blocks; likewise on every level above.
    for (std::size_t level = 0; a < b; ++level) {
        a /= Block;
        b /= Block;
        const bool top = level + 1 >= m_levels.size();
        const auto add = [&](std::size_t i) {
            ++count;
            extent.Add(m_levels[level][i]);
        };
        while (a < b && (top || a % Block != 0))
            add(a++);
        while (a < b && b % Block != 0)
            add(--b);
    }
    if (looks)
        *looks += count;
    return extent;
}

ZrPlotSeries::Extent ZrPlotSeries::ExtentBetween(double begin, double end) const
{
    const std::vector<double>& times = Times();
    const auto last = times.begin() + static_cast<std::ptrdiff_t>(m_values.size());
    if (!(begin <= end))
        return {};
    const auto from = std::lower_bound(times.begin(), last, begin);
    const auto to = std::upper_bound(from, last, end);
    return ExtentOf(
        static_cast<std::size_t>(from - times.begin()), static_cast<std::size_t>(to - times.begin()));
}

u64 ZrPlotSeries::Bytes() const
{
    u64 bytes = m_values.capacity() * sizeof(float);
    for (const std::vector<Extent>& level : m_levels)
        bytes += level.capacity() * sizeof(Extent);
    return bytes;
}
