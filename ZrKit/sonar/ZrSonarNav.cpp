#include "ZrKit/sonar/ZrSonarNav.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

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

/// The first of \p count elements behind \p time, its predecessor being the last one at or before it; sought
/// from \p behind on, which is set to it.
template <class TimeOf>
void FindBehind(std::size_t count, double time, const TimeOf& timeOf, std::size_t& behind)
{
    behind = std::min(behind, count);
    if (behind == 0 || timeOf(behind - 1) <= time) {
        const std::size_t end = std::min(behind + nearby, count);
        while (behind < end && timeOf(behind) <= time)
            ++behind;
        if (behind < end || behind == count)
            return;
    }
    std::size_t low = 0;
    std::size_t high = count;
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (time < timeOf(middle))
            high = middle;
        else
            low = middle + 1;
    }
    behind = low;
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
double ShareOf(double time, double from, double to)
{
    return (time / 2.0 - from / 2.0) / (to / 2.0 - from / 2.0);
}

bool IsWithin(float value, double least, double most)
{
    const double wide = static_cast<double>(value);
    return wide >= least && wide <= most;
}

bool IsHeading(float value)
{
    return IsWithin(value, -headingLimit, headingLimit);
}

bool IsPitch(float value)
{
    return IsWithin(value, -pitchLimit, pitchLimit);
}

bool IsRoll(float value)
{
    return IsWithin(value, -rollLimit, rollLimit);
}

bool IsDepth(float value)
{
    return IsWithin(value, leastDepth, deepest);
}

bool IsAltitude(float value)
{
    return value > 0.0F && IsWithin(value, 0.0, deepest);
}

/// Values of \p from in another order: of each of \p groups, the end of a stretch of \p order, the last one
/// that is known.
template <class Value>
ZrSonarNavColumn<Value> Reordered(const ZrSonarNavColumn<Value>& from, const std::vector<std::size_t>& order,
    const std::vector<std::size_t>& groups)
{
    constexpr auto none = std::numeric_limits<std::size_t>::max();
    std::vector<std::size_t> index(order.size(), none); // of the value of a record
    for (std::size_t i = 0; i < from.Count(); ++i)
        index[from.Record(i)] = i;
    ZrSonarNavColumn<Value> to;
    std::size_t first = 0;
    for (std::size_t group = 0; group < groups.size(); ++group) {
        std::size_t last = none;
        for (std::size_t k = first; k < groups[group]; ++k)
            last = index[order[k]] == none ? last : index[order[k]];
        if (last != none)
            to.Add(group, from.At(last));
        first = groups[group];
    }
    return to;
}

} // namespace

void ZrSonarNav::Add(double time, const ZrNavRecord& record)
{
    if (!std::isfinite(time))
        return;
    const ZrGeoPoint at{record.latitude, record.longitude};
    const bool isNowhere = at.lat == 0.0 && at.lng == 0.0;
    if (at.IsValid() && !isNowhere && (record.flags & repeatedPosition) == 0)
        m_fixes.Add(m_count, {at.lat, at.lng});
    if (IsHeading(record.heading))
        m_heading.Add(m_count, record.heading);
    if (IsPitch(record.pitch))
        m_pitch.Add(m_count, record.pitch);
    if (IsRoll(record.roll))
        m_roll.Add(m_count, record.roll);
    if (IsDepth(record.depth))
        m_depth.Add(m_count, record.depth);
    if (IsAltitude(record.altitude))
        m_altitude.Add(m_count, record.altitude);
    m_times.push_back(time);
    ++m_count;
}

void ZrSonarNav::Prepare()
{
    // Most logs are in order already, and no time is there twice.
    const auto isBehind = [](double a, double b) { return !(a < b); };
    if (std::adjacent_find(m_times.begin(), m_times.end(), isBehind) != m_times.end())
        Sort();
    m_times.shrink_to_fit();
    m_fixes.Squeeze();
    for (Row* row : {&m_heading, &m_pitch, &m_roll, &m_depth, &m_altitude})
        row->Squeeze();
}

/// By time; records of one time become one.
void ZrSonarNav::Sort()
{
    std::vector<std::size_t> order(m_count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(
        order.begin(), order.end(), [this](std::size_t a, std::size_t b) { return m_times[a] < m_times[b]; });
    std::vector<std::size_t> groups;
    std::vector<double> times;
    for (std::size_t k = 0; k < order.size(); ++k) {
        const double time = m_times[order[k]];
        if (!times.empty() && times.back() == time) {
            groups.back() = k + 1;
            continue;
        }
        times.push_back(time);
        groups.push_back(k + 1);
    }
    m_fixes = Reordered(m_fixes, order, groups);
    for (Row* row : {&m_heading, &m_pitch, &m_roll, &m_depth, &m_altitude})
        *row = Reordered(*row, order, groups);
    m_times = std::move(times);
    m_count = m_times.size();
}

void ZrSonarNav::Share(std::shared_ptr<const ZrSurveySeries> series)
{
    if (series->Count() != m_count || m_count == 0 || m_series)
        return;
    m_series = std::move(series);
    const std::vector<double>& times = m_series->times->Times();
    if (m_times == times) {
        m_seriesTimes = times.data();
        m_times = std::vector<double>();
    }
    m_fixes.Share(m_series->track.data());
    // A curve may have been given fewer values than there are rows.
    const auto share = [this](Row& row, const ZrPlotSeries& curve) {
        if (curve.Count() == m_count)
            row.Share(curve.Values().data());
    };
    share(m_heading, m_series->heading);
    share(m_pitch, m_series->pitch);
    share(m_roll, m_series->roll);
    share(m_depth, m_series->depth);
    share(m_altitude, m_series->altitude);
}

u64 ZrSonarNav::Bytes() const
{
    u64 bytes = m_times.capacity() * sizeof(double) + m_fixes.Bytes();
    for (const Row* row : {&m_heading, &m_pitch, &m_roll, &m_depth, &m_altitude})
        bytes += row->Bytes();
    return bytes;
}

/// Sets \p behind to the first value of \p column behind \p time; \p all is the first such record.
template <class Type>
void ZrSonarNav::Seek(
    const ZrSonarNavColumn<Type>& column, double time, std::size_t all, std::size_t& behind) const
{
    if (column.IsOfAll(m_count))
        behind = all;
    else
        FindBehind(
            column.Count(), time, [&](std::size_t i) { return TimeOf(column.Record(i)); }, behind);
}

/// The value of \p row at \p time; with \p isAngle the way between two of them is the shorter one round.
double ZrSonarNav::Value(
    const Row& row, double time, bool isAngle, std::size_t all, std::size_t& behind) const
{
    if (row.Count() == 0)
        return unknown;
    Seek(row, time, all, behind);
    if (behind == 0)
        return static_cast<double>(row.At(0));
    const double before = static_cast<double>(row.At(behind - 1));
    if (behind == row.Count())
        return before;
    const double after = static_cast<double>(row.At(behind));
    const double change = isAngle ? Turn(before, after) : after - before;
    return before + change * ShareOf(time, TimeOf(row.Record(behind - 1)), TimeOf(row.Record(behind)));
}

/// Position and gap of \p pose.
void ZrSonarNav::Locate(double time, std::size_t all, std::size_t& behind, ZrSonarPose& pose) const
{
    if (m_fixes.Count() == 0)
        return;
    Seek(m_fixes, time, all, behind);
    const std::size_t index = behind == 0 ? 0 : behind - 1;
    const ZrSurveySeries::Position before = m_fixes.At(index);
    const double beforeTime = TimeOf(m_fixes.Record(index));
    if (behind == 0 || behind == m_fixes.Count() || beforeTime == time) {
        pose.position = {before.latitude, before.longitude};
        pose.gap = std::fabs(time - beforeTime);
        return;
    }
    const ZrSurveySeries::Position after = m_fixes.At(behind);
    const double afterTime = TimeOf(m_fixes.Record(behind));
    const double share = ShareOf(time, beforeTime, afterTime);
    pose.position.lat = before.latitude + (after.latitude - before.latitude) * share;
    pose.position.lng
        = std::remainder(before.longitude + Turn(before.longitude, after.longitude) * share, 360.0);
    pose.gap = afterTime - beforeTime;
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
    std::size_t& all = place.behind[0];
    FindBehind(
        m_count, time, [this](std::size_t i) { return TimeOf(i); }, all);
    Locate(time, all, place.behind[1], pose);
    pose.heading = Wrapped(Value(m_heading, time, true, all, place.behind[2]));
    pose.pitch = Value(m_pitch, time, false, all, place.behind[3]);
    pose.roll = std::remainder(Value(m_roll, time, true, all, place.behind[4]), 360.0);
    pose.depth = Value(m_depth, time, false, all, place.behind[5]);
    pose.altitude = Value(m_altitude, time, false, all, place.behind[6]);
    return pose;
}
