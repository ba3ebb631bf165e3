#include "ZrKit/sonar/ZrSonarTrack.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double radPerDeg = 3.14159265358979323846 / 180.0;
/// Course and speed are taken over this time, seconds, and over at least this way, metres.
constexpr double courseTime = 4.0;
constexpr double courseWay = 0.5;
/// Times that fall by no more than this are out of order, not set back, seconds.
constexpr double disorder = 1.0;
/// What pings before and behind a clock that was set are apart, seconds; averages never reach half as far.
constexpr double apart = 1e7;
constexpr double longestWindow = 4e6;
/// Times since the epoch are rounded to about a quarter of this, seconds.
constexpr double timeStep = 1e-6;
/// Metres beyond which a projected place is none: a quarter of the way round the earth.
constexpr double farthest = 1e7;
/// Degrees of latitude up to which a local frame is of use: nearer to a pole the projection leads astray.
constexpr double nearestPole = 89.0;
/// The share of the positions at either end that may be wild.
constexpr double wildShare = 0.05;

bool IsKnown(const ZrLocalPoint& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

/// \p degrees within 0 to 360, 360 excluded; NaN stays.
double Wrapped(double degrees)
{
    const double rest = std::fmod(degrees, 360.0);
    const double positive = rest < 0.0 ? rest + 360.0 : rest;
    return positive >= 360.0 ? 0.0 : positive;
}

/// The middle of the values without the wild ones at either end.
double Middle(std::vector<double>& values)
{
    const auto at = [&values](std::size_t index) {
        const auto nth = values.begin() + static_cast<std::ptrdiff_t>(index);
        std::nth_element(values.begin(), nth, values.end());
        return *nth;
    };
    const auto wild = static_cast<std::size_t>(static_cast<double>(values.size()) * wildShare);
    return (at(wild) + at(values.size() - 1 - wild)) / 2.0;
}

ZrLocalFrame FrameOf(const std::vector<ZrSonarPing>& pings)
{
    std::vector<double> lats;
    std::vector<double> lngs; // relative to the first one
    double first = unknown;
    lats.reserve(pings.size());
    lngs.reserve(pings.size());
    for (const ZrSonarPing& ping : pings) {
        const ZrGeoPoint at = ping.pose.position;
        if (!at.IsValid())
            continue;
        if (lats.empty())
            first = at.lng;
        lats.push_back(at.lat);
        lngs.push_back(std::remainder(at.lng - first, 360.0));
    }
    if (lats.empty())
        return ZrLocalFrame({0.0, 0.0});
    return ZrLocalFrame({Middle(lats), std::remainder(first + Middle(lngs), 360.0)});
}

/// Seconds from the first ping that never fall, so that windows in time can be searched: small steps back
/// are held, and where the clock was set back or leapt months ahead they go on `apart` later.
std::vector<double> ClockOf(const std::vector<ZrSonarPing>& pings)
{
    std::vector<double> clock;
    clock.reserve(pings.size());
    double latest = unknown;
    double now = 0.0;
    for (const ZrSonarPing& ping : pings) {
        const double step = ping.time - latest;
        if (step < -disorder || step > apart)
            now += apart;
        else if (step > 0.0)
            now += step;
        if (std::isfinite(ping.time) && !(step <= 0.0 && step >= -disorder))
            latest = ping.time;
        clock.push_back(now);
    }
    return clock;
}

/// Means of points over any stretch, each in constant time.
class Means
{
public:
    explicit Means(const std::vector<ZrLocalPoint>& points)
    {
        m_sums.reserve(points.size() + 1);
        m_sums.push_back({});
        for (const ZrLocalPoint& point : points)
            m_sums.push_back({m_sums.back().x + point.x, m_sums.back().y + point.y});
    }

    /// From \p first to \p last, both included.
    ZrLocalPoint Of(std::size_t first, std::size_t last) const
    {
        const auto count = static_cast<double>(last - first + 1);
        return {
            (m_sums[last + 1].x - m_sums[first].x) / count, (m_sums[last + 1].y - m_sums[first].y) / count};
    }

private:
    std::vector<ZrLocalPoint> m_sums; ///< of all points before each one
};

/// Replaces each known point by the mean over \p seconds around it: over as many known ones before as behind
/// it, so that the ends of a line are not dragged inwards.
void Smooth(std::vector<ZrLocalPoint>& points, const std::vector<double>& clock, double seconds)
{
    std::vector<std::size_t> known;
    std::vector<ZrLocalPoint> values;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (IsKnown(points[i])) {
            known.push_back(i);
            values.push_back(points[i]);
        }
    }
    const Means means(values);
    const double half = std::min(seconds, longestWindow) / 2.0 + timeStep;
    std::size_t first = 0; // the first one within half
    std::size_t end = 0; // behind the last one within half
    for (std::size_t k = 0; k < known.size(); ++k) {
        const double now = clock[known[k]];
        while (clock[known[first]] < now - half)
            ++first;
        while (end < known.size() && clock[known[end]] <= now + half)
            ++end;
        const std::size_t reach = std::min(k - first, end - 1 - k);
        points[known[k]] = means.Of(k - reach, k + reach);
    }
}

/// The same for directions in degrees, by their unit vectors.
void SmoothAngles(std::vector<double>& degrees, const std::vector<double>& clock, double seconds)
{
    std::vector<ZrLocalPoint> directions;
    directions.reserve(degrees.size());
    for (const double angle : degrees)
        directions.push_back({std::sin(angle * radPerDeg), std::cos(angle * radPerDeg)});
    Smooth(directions, clock, seconds);
    for (std::size_t i = 0; i < degrees.size(); ++i)
        degrees[i] = Wrapped(std::atan2(directions[i].x, directions[i].y) / radPerDeg);
}

/// From true north to the north of a frame around \p origin at \p at, degrees: on a sphere, which is right
/// to 0.001 degrees wherever the frame is of use.
double Convergence(ZrGeoPoint origin, ZrGeoPoint at)
{
    const double east = std::remainder(at.lng - origin.lng, 360.0) * radPerDeg;
    return std::atan(std::tan(east) * std::sin(at.lat * radPerDeg)) / radPerDeg;
}

} // namespace

ZrSonarTrack::ZrSonarTrack(const std::vector<ZrSonarPing>& pings, const ZrSonarTrackSettings& settings)
    : m_frame(FrameOf(pings))
    , m_clock(ClockOf(pings))
{
    m_points.reserve(pings.size());
    m_convergences.reserve(pings.size());
    m_known.reserve(pings.size());
    for (std::size_t i = 0; i < pings.size(); ++i) {
        const ZrGeoPoint at = pings[i].pose.position;
        const bool isOnFrame = at.IsValid() && std::fabs(at.lat) <= nearestPole;
        const ZrLocalPoint point = isOnFrame ? m_frame.ToLocal(at) : ZrLocalPoint{unknown, unknown};
        // Far from the frame the projection gives numbers without meaning, which would spoil sums.
        const bool isMeant = std::hypot(point.x, point.y) <= farthest;
        m_points.push_back(isMeant ? point : ZrLocalPoint{unknown, unknown});
        m_convergences.push_back(Convergence(m_frame.Origin(), at));
        if (IsKnown(m_points.back()))
            m_known.push_back(i);
    }
    if (settings.smoothing > 0.0)
        Smooth(m_points, m_clock, settings.smoothing);
    FillDistances();
    FillHeadings(pings, settings);
}

void ZrSonarTrack::FillDistances()
{
    m_distances.assign(m_points.size(), 0.0);
    ZrLocalPoint before{unknown, unknown};
    double way = 0.0;
    for (std::size_t i = 0; i < m_points.size(); ++i) {
        if (IsKnown(m_points[i])) {
            if (IsKnown(before))
                way += std::hypot(m_points[i].x - before.x, m_points[i].y - before.y);
            before = m_points[i];
        }
        m_distances[i] = way;
    }
}

void ZrSonarTrack::FillHeadings(const std::vector<ZrSonarPing>& pings, const ZrSonarTrackSettings& settings)
{
    m_headings.assign(pings.size(), unknown);
    for (std::size_t i = 0; i < pings.size(); ++i) {
        const double recorded = pings[i].pose.heading + settings.headingOffset;
        const bool takesCourse
            = settings.heading == ZrSonarTrackSettings::headingCourse || !std::isfinite(recorded);
        m_headings[i] = takesCourse ? Course(i) : Wrapped(recorded);
    }
    if (settings.smoothing > 0.0)
        SmoothAngles(m_headings, m_clock, settings.smoothing);
}

/// The first and the last known ping within \p seconds / 2 of \p ping, which is known.
void ZrSonarTrack::Around(std::size_t ping, double seconds, std::size_t& first, std::size_t& last) const
{
    const double half = seconds / 2.0 + timeStep;
    const auto begin = std::lower_bound(m_known.begin(), m_known.end(), m_clock[ping] - half,
        [this](std::size_t known, double time) { return m_clock[known] < time; });
    const auto end = std::upper_bound(m_known.begin(), m_known.end(), m_clock[ping] + half,
        [this](double time, std::size_t known) { return time < m_clock[known]; });
    first = *begin;
    last = *std::prev(end);
}

double ZrSonarTrack::Course(std::size_t ping) const
{
    if (!IsKnown(m_points[ping]))
        return unknown;
    std::size_t first = ping;
    std::size_t last = ping;
    Around(ping, courseTime, first, last);
    const double east = m_points[last].x - m_points[first].x;
    const double north = m_points[last].y - m_points[first].y;
    return std::hypot(east, north) >= courseWay
        ? Wrapped(std::atan2(east, north) / radPerDeg + m_convergences[ping])
        : unknown;
}

double ZrSonarTrack::Speed(std::size_t ping) const
{
    if (!IsKnown(m_points[ping]))
        return unknown;
    std::size_t first = ping;
    std::size_t last = ping;
    Around(ping, courseTime, first, last);
    const double time = m_clock[last] - m_clock[first];
    return time > 0.0 ? (m_distances[last] - m_distances[first]) / time : unknown;
}

ZrGeoPoint ZrSonarTrack::Position(std::size_t ping) const
{
    return IsKnown(m_points[ping]) ? m_frame.ToGeo(m_points[ping]) : ZrGeoPoint{};
}

ZrLocalPoint ZrSonarTrack::LocateLocal(std::size_t ping, eSonarSide side, double groundRange) const
{
    const double turn = side == sidePort ? -90.0 : 90.0;
    const double abeam = (m_headings[ping] - m_convergences[ping] + turn) * radPerDeg;
    return {
        m_points[ping].x + groundRange * std::sin(abeam), m_points[ping].y + groundRange * std::cos(abeam)};
}

ZrGeoPoint ZrSonarTrack::Locate(std::size_t ping, eSonarSide side, double groundRange) const
{
    const ZrLocalPoint at = LocateLocal(ping, side, groundRange);
    return IsKnown(at) ? m_frame.ToGeo(at) : ZrGeoPoint{};
}
