#include "ZrKit/map/ZrTrackLod.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double finest = 0.0001; ///< metres
constexpr u8 always = 255;

using Tolerances = std::array<double, ZrTrackLod::LevelCount>;

Tolerances MakeTolerances()
{
    Tolerances values{};
    for (std::size_t i = 1; i < values.size(); ++i)
        values[i] = finest * std::exp2(0.5 * static_cast<double>(i - 1));
    return values;
}

const Tolerances& AllTolerances()
{
    static const Tolerances values = MakeTolerances();
    return values;
}

bool IsPosition(double x, double y)
{
    return std::abs(x) <= ZrTrackLod::Limit && std::abs(y) <= ZrTrackLod::Limit;
}

} // namespace

double ZrTrackLod::Tolerance(int level)
{
    return AllTolerances()[static_cast<std::size_t>(std::clamp(level, 0, LevelCount - 1))];
}

int ZrTrackLod::LevelOf(double tolerance)
{
    if (!(tolerance > 0.0))
        return 0;
    const Tolerances& all = AllTolerances();
    const auto above = std::upper_bound(all.begin() + 1, all.end(), tolerance);
    return static_cast<int>(above - all.begin()) - 1;
}

void ZrTrackLod::Reserve(i64 count)
{
    m_points.reserve(static_cast<std::size_t>(count));
    m_levels.reserve(static_cast<std::size_t>(count));
}

void ZrTrackLod::Append(double x, double y)
{
    if (IsPosition(x, y)) {
        m_points.emplace_back(x, y);
        m_levels.push_back(always);
        AddToPart(m_points.back());
    } else {
        constexpr double none = std::numeric_limits<double>::quiet_NaN();
        m_points.emplace_back(none, none);
        m_levels.push_back(0);
        if (m_isOpen)
            CloseLast();
        m_isOpen = false;
    }
}

void ZrTrackLod::Append(zr::span<const QPointF> positions)
{
    for (const QPointF& p : positions)
        Append(p.x(), p.y());
}

void ZrTrackLod::Clear()
{
    const int count = m_clearCount + 1;
    *this = ZrTrackLod();
    m_clearCount = count;
}

void ZrTrackLod::Replace(ZrTrackLod track)
{
    const int count = m_clearCount + 1;
    *this = std::move(track);
    m_clearCount = count;
}

void ZrTrackLod::AddToPart(const QPointF& point)
{
    const i64 index = Count() - 1;
    const Box box(point);
    if (m_parts.empty())
        m_bounds = box;
    m_bounds.Add(point);
    if (!m_isOpen) {
        m_parts.push_back({index, index, box});
        m_isOpen = true;
        return;
    }
    Part& last = m_parts.back();
    if (last.last - last.first < SubTrack) {
        last.last = index;
        last.box.Add(point);
        return;
    }
    CloseLast();
    Part part{index - 1, index, Box((*this)[index - 1])};
    part.box.Add(point);
    m_parts.push_back(part);
}

void ZrTrackLod::CloseLast()
{
    const Part& part = m_parts.back();
    if (part.last - part.first > 1)
        SetLevels(part.first, part.last);
}

/// A position matters as much as it is off the line, but no more than the one whose choice made that line.
void ZrTrackLod::SetLevels(i64 first, i64 last)
{
    struct Span
    {
        i64 first;
        i64 last;
        double most;
    };

    const Tolerances& all = AllTolerances();
    std::vector<Span> spans{{first, last, std::numeric_limits<double>::infinity()}};
    while (!spans.empty()) {
        const Span span = spans.back();
        spans.pop_back();
        const QPointF& a = (*this)[span.first];
        const QPointF& b = (*this)[span.last];
        const double dx = b.x() - a.x();
        const double dy = b.y() - a.y();
        const double length2 = dx * dx + dy * dy;
        i64 farthest = span.first + 1;
        double most2 = -1.0;
        for (i64 i = span.first + 1; i < span.last; ++i) {
            const QPointF& p = (*this)[i];
            double px = p.x() - a.x();
            double py = p.y() - a.y();
            if (length2 > 0.0) {
                const double t = std::clamp((px * dx + py * dy) / length2, 0.0, 1.0);
                px -= t * dx;
                py -= t * dy;
            }
            const double d2 = px * px + py * py;
            if (d2 > most2) {
                most2 = d2;
                farthest = i;
            }
        }
        const double weight = std::min(std::sqrt(most2), span.most);
        // Below the first tolerance there is nothing to tell apart, and a vehicle at rest has much of it.
        if (weight <= finest) {
            const u8 same = weight > 0.0 ? 1 : 0;
            std::fill(m_levels.begin() + span.first + 1, m_levels.begin() + span.last, same);
            continue;
        }
        const auto level = std::lower_bound(all.begin(), all.end(), weight) - all.begin();
        m_levels[static_cast<std::size_t>(farthest)] = static_cast<u8>(level);
        if (farthest - span.first > 1)
            spans.push_back({span.first, farthest, weight});
        if (span.last - farthest > 1)
            spans.push_back({farthest, span.last, weight});
    }
}

bool ZrTrackLod::IsBreak(i64 index) const
{
    return index < 0 || index >= Count() || std::isnan((*this)[index].x());
}

QRectF ZrTrackLod::Bounds() const
{
    if (m_parts.empty())
        return {};
    return {m_bounds.left, m_bounds.bottom, m_bounds.right - m_bounds.left, m_bounds.top - m_bounds.bottom};
}

u64 ZrTrackLod::Bytes() const
{
    return m_points.capacity() * sizeof(QPointF) + m_levels.capacity() + m_parts.capacity() * sizeof(Part);
}

std::vector<ZrTrackLod::Range> ZrTrackLod::Select(const QRectF& box) const
{
    std::vector<Range> ranges;
    for (const Part& part : m_parts) {
        if (!part.box.Touches(box))
            continue;
        if (!ranges.empty() && ranges.back().last == part.first)
            ranges.back().last = part.last;
        else
            ranges.push_back({part.first, part.last});
    }
    return ranges;
}

i64 ZrTrackLod::Nearest(const QPointF& world, double within) const
{
    i64 nearest = -1;
    double best = within;
    for (const Part& part : m_parts) {
        const double dx = std::max({part.box.left - world.x(), world.x() - part.box.right, 0.0});
        const double dy = std::max({part.box.bottom - world.y(), world.y() - part.box.top, 0.0});
        if (!(std::hypot(dx, dy) < best))
            continue;
        for (i64 i = part.first; i <= part.last; ++i) {
            const QPointF d = (*this)[i] - world;
            const double away = std::hypot(d.x(), d.y());
            if (away < best) {
                best = away;
                nearest = i;
            }
        }
    }
    return nearest;
}
