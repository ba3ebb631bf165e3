#include "ZrKit/sonar/ZrSonarNav.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr u32 repeatedPosition = 1;
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

/// Ranges of values; what lies outside is no measurement.
constexpr double headingLimit = 360.0;
constexpr double pitchLimit = 90.0;
constexpr double rollLimit = 180.0;
constexpr double leastDepth = -1000.0;
constexpr double deepest = 12000.0;

/// Entries that are looked through one by one before the whole row is searched.
constexpr std::size_t nearby = 16;

template <typename Row, typename Time> void SortByTime(Row& row, const Time& timeOf)
{
    const auto earlier = [&](const auto& a, const auto& b) { return timeOf(a) < timeOf(b); };
    // Most logs are in order already; sorting would take memory for another half of the row.
    if (!std::is_sorted(row.begin(), row.end(), earlier))
        std::stable_sort(row.begin(), row.end(), earlier);
    auto out = row.begin();
    for (auto it = row.begin(); it != row.end(); ++it) {
        const auto next = std::next(it);
        if (next == row.end() || timeOf(*next) != timeOf(*it))
            *out++ = *it;
    }
    row.erase(out, row.end());
}

/// Index of the first element behind \p time, its predecessor being the last one at or before it; sought from
/// \p behind on, which is set to it.
template <typename Row, typename Time>
void FindBehind(const Row& row, double time, const Time& timeOf, std::size_t& behind)
{
    behind = std::min(behind, row.size());
    if (behind == 0 || timeOf(row[behind - 1]) <= time) {
        const std::size_t end = std::min(behind + nearby, row.size());
        while (behind < end && timeOf(row[behind]) <= time)
            ++behind;
        if (behind < end || behind == row.size())
            return;
    }
    const auto found = std::upper_bound(
        row.begin(), row.end(), time, [&](double t, const auto& element) { return t < timeOf(element); });
    behind = static_cast<std::size_t>(found - row.begin());
}

double TimeOfPair(const std::pair<double, double>& element)
{
    return element.first;
}

/// \p degrees within 0 to 360, 360 excluded; NaN stays.
double Wrapped(double degrees)
{
    const double rest = std::fmod(degrees, 360.0);
    const double positive = rest < 0.0 ? rest + 360.0 : rest;
    return positive >= 360.0 ? 0.0 : positive;
}

/// The turn from \p from to \p to the shorter way round, degrees within ±180.
double Turn(double from, double to)
{
    return std::remainder(to - from, 360.0);
}

/// How far \p time is on the way from \p from to \p to, 0 to 1; halved, or the difference of absurd times
/// would not be finite.
double Share(double time, double from, double to)
{
    return (time / 2.0 - from / 2.0) / (to / 2.0 - from / 2.0);
}

void AddWithin(
    std::vector<std::pair<double, double>>& row, double time, float value, double least, double most)
{
    const double wide = static_cast<double>(value);
    if (wide >= least && wide <= most)
        row.emplace_back(time, wide);
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
    AddWithin(m_heading, time, record.heading, -headingLimit, headingLimit);
    AddWithin(m_pitch, time, record.pitch, -pitchLimit, pitchLimit);
    AddWithin(m_roll, time, record.roll, -rollLimit, rollLimit);
    AddWithin(m_depth, time, record.depth, leastDepth, deepest);
    if (record.altitude > 0.0F)
        AddWithin(m_altitude, time, record.altitude, 0.0, deepest);
}

void ZrSonarNav::Prepare()
{
    SortByTime(m_fixes, [](const Fix& fix) { return fix.time; });
    for (Row* row : {&m_heading, &m_pitch, &m_roll, &m_depth, &m_altitude})
        SortByTime(*row, TimeOfPair);
}

/// The value of \p row at \p time; with \p isAngle the way between two of them is the shorter one round.
double ZrSonarNav::Value(const Row& row, double time, bool isAngle, std::size_t& behind)
{
    if (row.empty())
        return unknown;
    FindBehind(row, time, TimeOfPair, behind);
    if (behind == 0)
        return row.front().second;
    const auto& before = row[behind - 1];
    if (behind == row.size())
        return before.second;
    const auto& after = row[behind];
    const double change = isAngle ? Turn(before.second, after.second) : after.second - before.second;
    return before.second + change * Share(time, before.first, after.first);
}

/// Position and gap of \p pose.
void ZrSonarNav::Locate(double time, std::size_t& behind, ZrSonarPose& pose) const
{
    if (m_fixes.empty())
        return;
    FindBehind(
        m_fixes, time, [](const Fix& fix) { return fix.time; }, behind);
    const Fix& before = m_fixes[behind == 0 ? 0 : behind - 1];
    if (behind == 0 || behind == m_fixes.size() || before.time == time) {
        pose.position = before.at;
        pose.gap = std::fabs(time - before.time);
        return;
    }
    const Fix& after = m_fixes[behind];
    const double share = Share(time, before.time, after.time);
    pose.position.lat = before.at.lat + (after.at.lat - before.at.lat) * share;
    pose.position.lng = std::remainder(before.at.lng + Turn(before.at.lng, after.at.lng) * share, 360.0);
    pose.gap = after.time - before.time;
}

ZrSonarPose ZrSonarNav::At(double time) const
{
    Place place;
    return At(time, place);
}

ZrSonarPose ZrSonarNav::At(double time, Place& place) const
{
    ZrSonarPose pose;
    if (!std::isfinite(time))
        return pose;
    Locate(time, place.behind[0], pose);
    pose.heading = Wrapped(Value(m_heading, time, true, place.behind[1]));
    pose.pitch = Value(m_pitch, time, false, place.behind[2]);
    pose.roll = std::remainder(Value(m_roll, time, true, place.behind[3]), 360.0);
    pose.depth = Value(m_depth, time, false, place.behind[4]);
    pose.altitude = Value(m_altitude, time, false, place.behind[5]);
    return pose;
}
