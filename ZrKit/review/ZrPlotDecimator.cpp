#include "ZrKit/review/ZrPlotDecimator.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t fewRecords = 2; ///< each of which may need an interruption in front

} // namespace

const std::vector<ZrPlotDecimator::Point>& ZrPlotDecimator::Decimate(
    const ZrPlotSeries& series, zr::span<const double> edges)
{
    m_points.clear();
    m_looks = 0;
    if (edges.size() < 2 || std::isnan(edges[0]) || series.Count() == 0)
        return m_points;
    m_series = &series;
    const std::size_t columns = edges.size() - 1;
    std::size_t first = FirstFrom(edges[0], 0, false);
    Edge(first, edges[0], 0.0);
    for (std::size_t column = 0; column < columns; ++column) {
        const bool last = column + 1 == columns;
        const std::size_t end = FirstFrom(edges[column + 1], first, last);
        const auto x = static_cast<double>(column);
        if (end - first > fewRecords)
            Many(first, end, x);
        else
            Few(first, end, x, edges[column], edges[column + 1]);
        first = end;
    }
    Edge(first, edges[columns], static_cast<double>(columns));
    m_series = nullptr;
    return m_points;
}

/// The first record from \p begin on at or behind \p time, with \p after behind it; near ones are found
/// first.
std::size_t ZrPlotDecimator::FirstFrom(double time, std::size_t begin, bool after)
{
    const std::vector<double>& times = m_series->Times();
    const std::size_t count = m_series->Count();
    const auto isBefore = [&](std::size_t i) {
        ++m_looks;
        return after ? times[i] <= time : times[i] < time;
    };
    std::size_t low = begin; // all in front are before
    std::size_t step = 1;
    while (low < count && isBefore(std::min(low + step, count) - 1)) {
        low = std::min(low + step, count);
        step *= 2;
    }
    std::size_t high = std::min(low + step, count);
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (isBefore(middle))
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

/// Whether nothing is drawn from the record in front of \p i to it.
bool ZrPlotDecimator::IsApart(std::size_t i) const
{
    return i > 0 && m_series->Times()[i] - m_series->Times()[i - 1] > mostStep;
}

void ZrPlotDecimator::Break(double x)
{
    if (!m_points.empty() && !std::isnan(m_points.back().y))
        m_points.push_back({static_cast<float>(x), std::numeric_limits<float>::quiet_NaN()});
}

void ZrPlotDecimator::Add(double x, float y)
{
    m_points.push_back({static_cast<float>(x), y});
}

/// The line at \p time, between the record \p behind and the one before it.
void ZrPlotDecimator::Edge(std::size_t behind, double time, double x)
{
    if (behind == 0 || behind >= m_series->Count() || IsApart(behind))
        return;
    m_looks += 4;
    const double from = m_series->Times()[behind - 1];
    const double to = m_series->Times()[behind];
    if (!(time > from && time < to))
        return; // a record itself lies at the edge
    const double share = (time - from) / (to - from);
    const double a = static_cast<double>(m_series->Value(behind - 1));
    const double b = static_cast<double>(m_series->Value(behind));
    const double y = a + (b - a) * share;
    if (!std::isnan(y))
        Add(x, static_cast<float>(y));
}

/// Records where they are, between the times at the edges of their column.
void ZrPlotDecimator::Few(std::size_t first, std::size_t end, double x, double left, double right)
{
    for (std::size_t i = first; i < end; ++i) {
        m_looks += 2;
        const double share = right > left ? (m_series->Times()[i] - left) / (right - left) : 0.5;
        const double at = x + std::min(std::max(share, 0.0), 1.0);
        const float y = m_series->Value(i);
        if (std::isnan(y) || IsApart(i))
            Break(at);
        if (!std::isnan(y))
            Add(at, y);
    }
}

/// A column that shows but the extent of its records. Gaps within it are too narrow to be seen.
void ZrPlotDecimator::Many(std::size_t first, std::size_t end, double x)
{
    const double middle = x + 0.5;
    const ZrPlotSeries::Extent extent = m_series->ExtentOf(first, end, &m_looks);
    const float begin = m_series->Value(first);
    const float last = m_series->Value(end - 1);
    m_looks += 2;
    const bool breakBefore = std::isnan(begin) || IsApart(first);
    const bool breakBehind = std::isnan(last);
    if (breakBefore || !extent.IsKnown())
        Break(middle);
    if (!extent.IsKnown())
        return;
    const bool whole = !breakBefore && !breakBehind;
    const bool minFirst = std::isnan(begin) || begin - extent.min <= extent.max - begin;
    float values[] = {begin, minFirst ? extent.min : extent.max, minFirst ? extent.max : extent.min, last};
    const float* const from = values + (whole ? 0 : 1);
    const float* const to = values + (whole ? 4 : 3);
    for (const float* value = from; value < to; ++value) {
        if (value == from || *value < value[-1] || *value > value[-1])
            Add(middle, *value);
    }
    if (breakBehind)
        Break(middle);
}
