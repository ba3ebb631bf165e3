#include "ZrKit/review/ZrRecordsAround.h"

#include "ZrKit/review/ZrSteadyTime.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Range = ZrRecordsAround::Range;

/// Seconds that the time of a record may lie in front of its steady one, and a little for rounding.
constexpr double held = ZrSteadyTime::Disorder + 0.01;

/// Records whose times are beyond the years 1 to 9999 have steady times of others: they are nearest to
/// nothing within a hundred years of 1970 that has a record as near.
constexpr double farthest = 100.0 * 365.25 * 86400.0;

/// How far from \p moment the nearest record is at most.
double MostAway(const ZrSteadyTime& times, double moment)
{
    const std::vector<double>& all = times.Times();
    double most = std::numeric_limits<double>::infinity();
    for (const ZrSteadyTime::Run& run : times.Runs()) {
        const double steady = moment + run.shift;
        const double inside = std::min(std::max(steady, run.begin), run.end);
        const auto behind = std::lower_bound(all.begin(), all.end(), inside);
        // There is a record at each end of the run, and at each steady time in between.
        const double next = behind == all.end() ? run.end : std::min(*behind, run.end);
        most = std::min(most, std::fabs(steady - next) + held);
        if (behind != all.begin() && *std::prev(behind) > run.begin)
            most = std::min(most, std::fabs(steady - *std::prev(behind)) + held);
    }
    return most;
}

/// Adds the records of each run that lie no farther from \p moment.
void AddAround(const ZrSteadyTime& times, double moment, double most, std::vector<Range>& ranges)
{
    const std::vector<double>& all = times.Times();
    for (const ZrSteadyTime::Run& run : times.Runs()) {
        const double from = std::max(moment + run.shift - most - held, run.begin);
        const double to = std::min(moment + run.shift + most + held, run.end);
        const auto first = std::lower_bound(all.begin(), all.end(), from);
        const auto end = std::upper_bound(first, all.end(), to);
        if (first != end)
            ranges.push_back(
                {static_cast<std::size_t>(first - all.begin()), static_cast<std::size_t>(end - all.begin())});
    }
}

/// Puts ranges in order and joins those that touch.
std::vector<Range> Joined(std::vector<Range> ranges)
{
    std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) { return a.first < b.first; });
    std::vector<Range> joined;
    for (const Range& range : ranges) {
        if (!joined.empty() && range.first <= joined.back().end)
            joined.back().end = std::max(joined.back().end, range.end);
        else
            joined.push_back(range);
    }
    return joined;
}

} // namespace

std::vector<Range> ZrRecordsAround::Of(
    const ZrSteadyTime* times, std::size_t count, const std::vector<double>& moments)
{
    const auto known = static_cast<std::size_t>(
        std::count_if(moments.begin(), moments.end(), [](double moment) { return !std::isnan(moment); }));
    if (known == 0 || count == 0)
        return {};
    const std::vector<Range> all{{0, count}};
    if (!times || times->IsEmpty() || times->Count() != count || times->Runs().size() > count / known)
        return all;
    std::vector<Range> ranges;
    for (const double moment : moments) {
        if (std::isnan(moment))
            continue;
        const double most = MostAway(*times, moment);
        if (!(most < farthest) || std::fabs(moment) > farthest)
            return all;
        AddAround(*times, moment, most, ranges);
    }
    return Joined(std::move(ranges));
}
