#include "ZrKit/review/ZrTimeLine.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

} // namespace

void ZrTimeLine::SetLog(std::shared_ptr<const ZrSteadyTime> log)
{
    const bool all = IsAllVisible();
    const double begin = VisibleBegin();
    const double end = VisibleEnd();
    m_log = log && !log->IsEmpty() ? std::move(log) : nullptr;
    FindGaps();
    Remake();
    if (!all)
        Show(begin, end);
}

void ZrTimeLine::SetLongestStep(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0.0)
        return;
    const bool all = IsAllVisible();
    const double begin = VisibleBegin();
    const double end = VisibleEnd();
    m_longest = seconds;
    FindGaps();
    Remake();
    if (!all)
        Show(begin, end);
}

void ZrTimeLine::SetGapsCut(bool cut)
{
    const bool all = IsAllVisible();
    const double begin = VisibleBegin();
    const double end = VisibleEnd();
    m_cut = cut;
    Remake();
    if (!all)
        Show(begin, end);
}

/// Looks at every record.
void ZrTimeLine::FindGaps()
{
    m_gaps = m_log ? ZrGaps(m_log->Times(), m_longest) : ZrGaps();
}

/// Everything that follows from log, gaps and cut; all is visible then.
void ZrTimeLine::Remake()
{
    m_length = 0.0;
    if (m_log)
        m_length = std::max(ToAxis(m_log->End()), 0.0);
    ShowAll();
}

bool ZrTimeLine::IsAllVisible() const
{
    return m_first <= 0.0 && m_last >= m_length;
}

void ZrTimeLine::ShowAll()
{
    m_first = 0.0;
    m_last = std::max(m_length, Shortest);
}

/// Seconds from the begin of the axis.
double ZrTimeLine::ToAxis(double steady) const
{
    return (m_cut ? m_gaps.Cut(steady) : steady) - m_log->Begin();
}

double ZrTimeLine::FromAxis(double seconds) const
{
    const double time = m_log->Begin() + std::min(std::max(seconds, 0.0), m_length);
    return std::min(m_cut ? m_gaps.Whole(time) : time, m_log->End());
}

/// Shows that part of the axis, shifted and lengthened as the limits ask.
void ZrTimeLine::SetVisible(double first, double last)
{
    if (!std::isfinite(first) || !std::isfinite(last))
        return;
    const double whole = std::max(m_length, Shortest);
    const double length = std::min(std::max(last - first, Shortest), whole);
    const double middle = first + (last - first) / 2.0;
    m_first = std::min(std::max(middle - length / 2.0, 0.0), whole - length);
    m_last = m_first + length;
}

void ZrTimeLine::Show(double from, double to)
{
    if (!m_log || !std::isfinite(from) || !std::isfinite(to))
        return;
    const double whole = std::max(m_length, Shortest);
    const double first = std::min(std::max(ToAxis(std::min(from, to)), 0.0), whole);
    const double last = std::min(std::max(ToAxis(std::max(from, to)), 0.0), whole);
    SetVisible(first, last);
}

void ZrTimeLine::Zoom(double factor, double fraction)
{
    if (!std::isfinite(factor) || !(factor > 0.0) || !std::isfinite(fraction))
        return;
    const double whole = std::max(m_length, Shortest);
    const double length = std::min(std::max(VisibleLength() / factor, Shortest), whole);
    const double fixed = m_first + fraction * VisibleLength();
    SetVisible(fixed - fraction * length, fixed + (1.0 - fraction) * length);
}

void ZrTimeLine::Pan(double share)
{
    const double way = share * VisibleLength();
    SetVisible(m_first + way, m_last + way);
}

void ZrTimeLine::Reveal(double steady, double margin)
{
    const double fraction = Fraction(steady);
    if (!std::isfinite(fraction) || !(margin >= 0.0 && margin < 0.5))
        return;
    if (fraction < margin)
        Pan(fraction - margin);
    else if (fraction > 1.0 - margin)
        Pan(fraction - (1.0 - margin));
}

double ZrTimeLine::Fraction(double steady) const
{
    if (!m_log)
        return unknown;
    return (ToAxis(steady) - m_first) / VisibleLength();
}

double ZrTimeLine::At(double fraction) const
{
    if (!m_log || std::isnan(fraction))
        return unknown;
    return FromAxis(m_first + fraction * VisibleLength());
}

std::vector<double> ZrTimeLine::Columns(int columns) const
{
    std::vector<double> edges;
    if (!m_log || columns <= 0)
        return edges;
    edges.reserve(static_cast<std::size_t>(columns) + 1);
    for (int i = 0; i <= columns; ++i)
        edges.push_back(At(static_cast<double>(i) / columns));
    // Rounding must not make one fall behind the one before.
    for (std::size_t i = 1; i < edges.size(); ++i)
        edges[i] = std::max(edges[i], edges[i - 1]);
    return edges;
}

std::vector<ZrTimeLine::Cut> ZrTimeLine::Cuts(int width) const
{
    std::vector<Cut> cuts;
    const std::size_t count = m_gaps.All().size();
    if (!m_log || !m_cut || width <= 0)
        return cuts;
    for (std::size_t i = m_gaps.From(VisibleBegin()); i < count;) {
        const double fraction = Fraction(m_gaps.All()[i].begin);
        if (fraction > 1.0)
            break;
        const double nextPixel = (std::floor(fraction * width) + 1.0) / width;
        std::size_t end = std::max(nextPixel > 1.0 ? i + 1 : m_gaps.From(At(nextPixel)), i + 1);
        end = std::min(end, count);
        cuts.push_back({fraction, m_gaps.Sum(i, end), i});
        i = end;
    }
    return cuts;
}

std::size_t ZrTimeLine::HitTest(double x, int width, zr::span<const double> times, double pixels) const
{
    const double at = width > 0 ? At(x / width) : unknown;
    if (std::isnan(at))
        return times.size();
    const auto behind
        = static_cast<std::size_t>(std::lower_bound(times.begin(), times.end(), at) - times.begin());
    std::size_t found = times.size();
    double least = pixels;
    for (const std::size_t i : {behind - 1, behind}) {
        if (i >= times.size()) // also the one in front of the first
            continue;
        const double way = std::fabs(Fraction(times[i]) * width - x);
        if (way <= least) {
            found = i;
            least = way;
        }
    }
    return found;
}

std::size_t ZrTimeLine::GapHitTest(double x, int width, double pixels) const
{
    const std::size_t count = m_gaps.All().size();
    const double at = width > 0 ? At(x / width) : unknown;
    if (std::isnan(at) || (!m_cut && (x < 0.0 || x > width)))
        return count;
    if (!m_cut)
        return m_gaps.GapAt(at);
    const std::size_t behind = m_gaps.From(at);
    std::size_t found = count;
    double least = pixels;
    for (const std::size_t i : {behind - 1, behind}) {
        if (i >= count)
            continue;
        const double way = std::fabs(Fraction(m_gaps.All()[i].begin) * width - x);
        if (way <= least) {
            found = i;
            least = way;
        }
    }
    return found;
}

double ZrTimeLine::Snap(double x, int width, zr::span<const double> times, double pixels) const
{
    const std::size_t hit = HitTest(x, width, times, pixels);
    if (hit < times.size())
        return times[hit];
    return width > 0 ? At(x / width) : unknown;
}
