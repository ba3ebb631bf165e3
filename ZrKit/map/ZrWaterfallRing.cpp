#include "ZrKit/map/ZrWaterfallRing.h"

#include "ZrKit/sonar/ZrSlantRange.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

std::atomic<u64> ids{0};

bool IsLength(double metres)
{
    return std::isfinite(metres) && metres > 0.0;
}

u8 Mean(zr::span<const u8> in, double from, double to)
{
    const auto first = static_cast<std::size_t>(from);
    const auto last = std::min(static_cast<std::size_t>(to), in.size());
    u64 whole = 0;
    for (std::size_t i = first; i < last; ++i)
        whole += in[i];
    double sum = static_cast<double>(whole) - in[first] * (from - static_cast<double>(first));
    if (last < in.size())
        sum += in[last] * (to - static_cast<double>(last));
    return static_cast<u8>(std::clamp(sum / (to - from) + 0.5, 0.0, 255.0));
}

u8 Strongest(zr::span<const u8> in, std::size_t i, std::size_t count)
{
    const std::size_t first = i * in.size() / count;
    const std::size_t end = ((i + 1) * in.size() + count - 1) / count;
    return *std::max_element(in.begin() + first, in.begin() + end);
}

} // namespace

ZrWaterfallRing::ZrWaterfallRing(int lines, int width, eReduce reduce)
    : m_width(std::clamp(width, 0, MostWidth))
    , m_reduce(reduce)
    , m_id(++ids)
{
    const i64 room = m_width > 0 ? MostBytes / 2 / m_width : 0;
    m_capacity = static_cast<int>(std::min<i64>(std::clamp(lines, 0, MostLines), room));
    if (m_capacity == 0)
        m_width = 0;
    const auto rows = static_cast<std::size_t>(m_capacity);
    m_entries.resize(rows);
    for (std::vector<u8>& bytes : m_bytes)
        bytes.resize(rows * static_cast<std::size_t>(m_width));
}

i64 ZrWaterfallRing::Append(const ZrWaterfallLine& line)
{
    if (m_capacity == 0)
        return -1;
    const i64 number = m_end++;
    m_first = std::max(m_first, m_end - m_capacity);
    Write(number, line);
    return number;
}

void ZrWaterfallRing::SetWindow(i64 first, i64 end)
{
    const i64 from = std::clamp(first, i64(0), std::numeric_limits<i64>::max() - m_capacity);
    const i64 to = std::clamp(end, from, from + m_capacity);
    if (from == m_first && to == m_end)
        return;
    m_first = from;
    m_end = to;
    ++m_revision;
}

bool ZrWaterfallRing::Put(i64 line, const ZrWaterfallLine& content)
{
    if (line < m_first || line >= m_end)
        return false;
    Write(line, content);
    return true;
}

void ZrWaterfallRing::Clear()
{
    m_first = m_end = 0;
    m_hasSide = {};
    m_entries.assign(m_entries.size(), Entry());
    ++m_revision;
}

void ZrWaterfallRing::Write(i64 line, const ZrWaterfallLine& content)
{
    const auto row = static_cast<std::size_t>(Row(line));
    Entry& entry = m_entries[row];
    entry = Entry();
    entry.line = line;
    entry.revision = ++m_revision;
    entry.time = content.time;
    entry.altitude = IsLength(content.altitude) ? content.altitude : unknown;
    entry.along = std::isfinite(content.along) ? content.along : unknown;
    const auto width = static_cast<std::size_t>(m_width);
    for (const std::size_t side : {std::size_t(sidePort), std::size_t(sideStarboard)}) {
        const zr::span<const u8> samples(content.samples[side]);
        const zr::span<u8> bytes(m_bytes[side].data() + row * width, width);
        Reduce(samples, bytes, m_reduce);
        if (samples.empty() || !IsLength(content.range[side]))
            continue;
        entry.range[side] = content.range[side];
        entry.count[side] = static_cast<int>(std::min(samples.size(), width));
        m_hasSide[side] = true;
    }
}

bool ZrWaterfallRing::Has(i64 line) const
{
    return line >= m_first && line < m_end && At(line).line == line;
}

zr::span<const u8> ZrWaterfallRing::Samples(i64 line, eSonarSide side) const
{
    const auto at = static_cast<std::size_t>(Row(line)) * static_cast<std::size_t>(m_width);
    return {m_bytes[side].data() + at, static_cast<std::size_t>(At(line).count[side])};
}

/// Altitudes and steps, from all lines at once: a line may take its altitude from any other.
void ZrWaterfallRing::Refresh() const
{
    if (m_refreshed == m_revision)
        return;
    m_refreshed = m_revision;
    m_altitudes.assign(m_entries.size(), unknown);
    std::vector<double> steps;
    double held = unknown;
    i64 firstKnown = m_end;
    const Entry* before = nullptr;
    for (i64 line = m_first; line < m_end; ++line) {
        if (!Has(line))
            continue;
        const Entry& entry = At(line);
        if (!std::isnan(entry.altitude)) {
            held = entry.altitude;
            firstKnown = std::min(firstKnown, line);
        }
        m_altitudes[static_cast<std::size_t>(Row(line))] = held;
        if (before && before->line + 1 == line && std::fabs(entry.along - before->along) > 0.0)
            steps.push_back(std::fabs(entry.along - before->along));
        before = &entry;
    }
    for (i64 line = m_first; line < firstKnown && firstKnown < m_end; ++line)
        m_altitudes[static_cast<std::size_t>(Row(line))] = At(firstKnown).altitude;
    m_usualStep = 0.0;
    if (!steps.empty()) {
        const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
        std::nth_element(steps.begin(), middle, steps.end());
        m_usualStep = *middle;
    }
}

double ZrWaterfallRing::Altitude(i64 line) const
{
    if (!Has(line))
        return unknown;
    Refresh();
    return m_altitudes[static_cast<std::size_t>(Row(line))];
}

double ZrWaterfallRing::UsualStep() const
{
    Refresh();
    return m_usualStep;
}

double ZrWaterfallRing::LongestRange(bool isGround) const
{
    double longest = 0.0;
    for (i64 line = m_first; line < m_end; ++line) {
        if (!Has(line))
            continue;
        const Entry& entry = At(line);
        const double range = std::max(entry.range[sidePort], entry.range[sideStarboard]);
        const double altitude = isGround ? Altitude(line) : unknown;
        longest = std::max(longest, std::isnan(altitude) ? range : ZrSlantRange::Ground(range, altitude));
    }
    return longest;
}

std::vector<ZrWaterfallRing::Run> ZrWaterfallRing::RowsSince(u64 revision) const
{
    std::vector<Run> runs;
    for (int row = 0; row < m_capacity; ++row) {
        const Entry& entry = m_entries[static_cast<std::size_t>(row)];
        if (entry.revision <= revision)
            continue;
        if (!runs.empty() && runs.back().row + runs.back().count == row)
            ++runs.back().count;
        else
            runs.push_back({entry.line, row, 1});
    }
    return runs;
}

std::vector<ZrWaterfallRing::Run> ZrWaterfallRing::Runs(i64 first, i64 end) const
{
    std::vector<Run> runs;
    const i64 last = std::min(end, m_end);
    for (i64 line = std::max(first, m_first); line < last; ++line) {
        if (!Has(line))
            continue;
        const int row = Row(line);
        const bool follows = !runs.empty() && runs.back().line + runs.back().count == line
            && runs.back().row + runs.back().count == row;
        if (follows)
            ++runs.back().count;
        else
            runs.push_back({line, row, 1});
    }
    return runs;
}

std::vector<ZrWaterfallRing::Lines> ZrWaterfallRing::Missing(i64 first, i64 end) const
{
    std::vector<Lines> missing;
    i64 next = first;
    for (const Run& run : Runs(first, end)) {
        if (run.line > next)
            missing.push_back({next, run.line});
        next = run.line + run.count;
    }
    if (next < end)
        missing.push_back({next, end});
    return missing;
}

void ZrWaterfallRing::Reduce(zr::span<const u8> in, zr::span<u8> out, eReduce reduce)
{
    if (out.empty())
        return;
    if (in.empty()) {
        std::memset(out.data(), 0, out.size());
        return;
    }
    if (in.size() <= out.size()) {
        std::memcpy(out.data(), in.data(), in.size());
        std::memset(out.data() + in.size(), in[in.size() - 1], out.size() - in.size());
        return;
    }
    const double step = static_cast<double>(in.size()) / static_cast<double>(out.size());
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double from = static_cast<double>(i) * step;
        const double to = std::min(static_cast<double>(i + 1) * step, static_cast<double>(in.size()));
        out[i] = reduce == reduceMax ? Strongest(in, i, out.size()) : Mean(in, from, to);
    }
}
