#include "ZrKit/review/ZrSteadyTime.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double earliest = -62135596800.0; ///< 0001-01-01
constexpr double latest = 253402300800.0; ///< 10000-01-01

} // namespace

bool ZrSteadyTime::IsTime(double time)
{
    return time >= earliest && time < latest;
}

ZrSteadyTime::ZrSteadyTime(zr::span<const double> logTimes)
{
    Reserve(logTimes.size());
    for (const double time : logTimes)
        Append(time);
}

double ZrSteadyTime::Append(double time)
{
    if (!IsTime(time)) {
        m_times.push_back(m_runs.empty() ? unknown : m_runs.back().end);
        return m_times.back();
    }
    if (m_runs.empty()) {
        std::fill(m_times.begin(), m_times.end(), time);
        m_runs.push_back({time, time, 0.0});
    }
    Run& run = m_runs.back();
    const double steady = time + run.shift;
    if (steady < run.end - Disorder) {
        const double now = run.end;
        m_runs.push_back({now, now, now - time});
    } else {
        run.end = std::max(run.end, steady);
    }
    m_times.push_back(m_runs.back().end);
    return m_times.back();
}

void ZrSteadyTime::Prepend(zr::span<const double> logTimes)
{
    if (m_runs.empty())
        return;
    std::vector<double> steady(logTimes.begin(), logTimes.end());
    double behind = m_runs.front().begin; // the first stretch has no shift
    for (auto time = steady.rbegin(); time != steady.rend(); ++time) {
        if (IsTime(*time))
            behind = std::min(behind, *time);
        *time = behind;
    }
    m_times.insert(m_times.begin(), steady.begin(), steady.end());
    m_runs.front().begin = behind;
}

double ZrSteadyTime::Begin() const
{
    return m_runs.empty() ? unknown : m_runs.front().begin;
}

double ZrSteadyTime::End() const
{
    return m_runs.empty() ? unknown : m_runs.back().end;
}

double ZrSteadyTime::LogTime(double steady) const
{
    if (m_runs.empty() || std::isnan(steady))
        return unknown;
    // At the moment the clock was set the new time counts: its record is the one that was written.
    const auto behind = std::upper_bound(
        m_runs.begin(), m_runs.end(), steady, [](double t, const Run& run) { return t < run.begin; });
    return steady - (behind == m_runs.begin() ? behind : std::prev(behind))->shift;
}

double ZrSteadyTime::FromLog(double logTime) const
{
    return FromLog(logTime, -std::numeric_limits<double>::infinity());
}

double ZrSteadyTime::FromLog(double logTime, double near) const
{
    if (std::isnan(logTime))
        return unknown;
    double found = unknown;
    double leastMiss = 0.0;
    double leastWay = 0.0;
    for (const Run& run : m_runs) {
        const double steady = logTime + run.shift;
        const double inside = std::min(std::max(steady, run.begin), run.end);
        // What stands as little in front of a stretch as times may fall may have been held at its begin.
        const double miss = std::max(std::fabs(steady - inside) - Disorder, 0.0);
        // Nothing is nearer to infinity than anything else: the first one stays.
        const double way = std::isfinite(near) ? std::fabs(inside - near) : 0.0;
        if (std::isnan(found) || miss < leastMiss || (!(miss > leastMiss) && way < leastWay)) {
            found = inside;
            leastMiss = miss;
            leastWay = way;
        }
    }
    return found;
}

std::size_t ZrSteadyTime::RecordAt(double steady) const
{
    if (m_runs.empty() || std::isnan(steady))
        return m_times.size();
    const auto behind = std::upper_bound(m_times.begin(), m_times.end(), steady);
    return behind == m_times.begin() ? 0 : static_cast<std::size_t>(behind - m_times.begin()) - 1;
}
