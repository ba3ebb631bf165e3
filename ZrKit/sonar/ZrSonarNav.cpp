#include "ZrKit/sonar/ZrSonarNav.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr u32 repeatedPosition = 1;
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

/// Sorts by time and keeps the last of those at one time.
template <typename Row, typename Time> void SortByTime(Row& row, const Time& timeOf)
{
    std::stable_sort(
        row.begin(), row.end(), [&](const auto& a, const auto& b) { return timeOf(a) < timeOf(b); });
    auto out = row.begin();
    for (auto it = row.begin(); it != row.end(); ++it) {
        const auto next = std::next(it);
        if (next == row.end() || timeOf(*next) != timeOf(*it))
            *out++ = *it;
    }
    row.erase(out, row.end());
}

/// The first element behind \p time; its predecessor is the last one at or before it.
template <typename Row, typename Time> auto Behind(const Row& row, double time, const Time& timeOf)
{
    return std::upper_bound(
        row.begin(), row.end(), time, [&](double t, const auto& element) { return t < timeOf(element); });
}

double TimeOfPair(const std::pair<double, double>& element)
{
    return element.first;
}

/// \p degrees within 0 to 360, 360 excluded.
double Wrapped(double degrees)
{
    const double rest = std::fmod(degrees, 360.0);
    const double positive = rest < 0.0 ? rest + 360.0 : rest;
    return positive < 360.0 ? positive : 0.0;
}

/// The turn from \p from to \p to the shorter way round, degrees within ±180.
double Turn(double from, double to)
{
    return std::remainder(to - from, 360.0);
}

void AddFinite(std::vector<std::pair<double, double>>& row, double time, float value)
{
    if (std::isfinite(value))
        row.emplace_back(time, static_cast<double>(value));
}

} // namespace

void ZrSonarNav::Add(double time, const ZrNavRecord& record)
{
    if (!std::isfinite(time))
        return;
    const ZrGeoPoint at{record.latitude, record.longitude};
    const bool isNowhere = at.lat == 0.0 && at.lng == 0.0;
    if (at.IsValid() && !isNowhere && (record.flags & repeatedPosition) == 0)
        m_fixes.push_back({time, at});
    AddFinite(m_heading, time, record.heading);
    AddFinite(m_pitch, time, record.pitch);
    AddFinite(m_roll, time, record.roll);
    AddFinite(m_depth, time, record.depth);
    // An echo sounder without an echo says 0 or less.
    if (record.altitude > 0.0F)
        AddFinite(m_altitude, time, record.altitude);
}

void ZrSonarNav::Prepare()
{
    SortByTime(m_fixes, [](const Fix& fix) { return fix.time; });
    for (Row* row : {&m_heading, &m_pitch, &m_roll, &m_depth, &m_altitude})
        SortByTime(*row, TimeOfPair);
}

double ZrSonarNav::Value(const Row& row, double time)
{
    if (row.empty())
        return unknown;
    const auto behind = Behind(row, time, TimeOfPair);
    if (behind == row.begin())
        return behind->second;
    const auto before = std::prev(behind);
    if (behind == row.end())
        return before->second;
    const double share = (time - before->first) / (behind->first - before->first);
    return before->second + (behind->second - before->second) * share;
}

double ZrSonarNav::Angle(const Row& row, double time)
{
    if (row.empty())
        return unknown;
    const auto behind = Behind(row, time, TimeOfPair);
    if (behind == row.begin())
        return Wrapped(behind->second);
    const auto before = std::prev(behind);
    if (behind == row.end())
        return Wrapped(before->second);
    const double share = (time - before->first) / (behind->first - before->first);
    return Wrapped(before->second + Turn(before->second, behind->second) * share);
}

ZrSonarPose ZrSonarNav::At(double time) const
{
    ZrSonarPose pose;
    if (!std::isfinite(time))
        return pose;
    pose.heading = Angle(m_heading, time);
    pose.pitch = Value(m_pitch, time);
    pose.roll = Value(m_roll, time);
    pose.depth = Value(m_depth, time);
    pose.altitude = Value(m_altitude, time);
    if (m_fixes.empty())
        return pose;
    const auto behind = Behind(m_fixes, time, [](const Fix& fix) { return fix.time; });
    if (behind == m_fixes.begin() || behind == m_fixes.end()) {
        const Fix& nearest = behind == m_fixes.begin() ? *behind : *std::prev(behind);
        pose.position = nearest.at;
        pose.gap = std::fabs(time - nearest.time);
        return pose;
    }
    const Fix& before = *std::prev(behind);
    if (before.time == time) {
        pose.position = before.at;
        pose.gap = 0.0;
        return pose;
    }
    const double share = (time - before.time) / (behind->time - before.time);
    pose.position.lat = before.at.lat + (behind->at.lat - before.at.lat) * share;
    pose.position.lng = std::remainder(before.at.lng + Turn(before.at.lng, behind->at.lng) * share, 360.0);
    pose.gap = behind->time - before.time;
    return pose;
}
