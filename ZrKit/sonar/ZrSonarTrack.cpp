#include "ZrKit/sonar/ZrSonarTrack.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <list>
#include <mutex>
#include <utility>

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
constexpr std::size_t stretchPings = 2048; ///< that are made at a time
constexpr std::size_t mostStretches = 16; ///< that are kept
/// Pings that a stretch may have to look at, itself among them: beyond that the whole track is one.
constexpr std::size_t mostLookedAt = 8 * stretchPings;
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

/// The middle of what \p valueOf tells of the pings with a position, in one pass; NaN without any.
template <class ValueOf> double MiddleOf(const ZrSonarPings& pings, const ValueOf& valueOf)
{
    std::vector<double> values;
    values.reserve(pings.size());
    for (const ZrSonarPing& ping : pings) {
        if (ping.pose.position.IsValid())
            values.push_back(valueOf(ping.pose.position));
    }
    return values.empty() ? unknown : Middle(values);
}

ZrLocalFrame FrameOf(const ZrSonarPings& pings)
{
    double first = unknown; // longitudes are relative to it
    const double lat = MiddleOf(pings, [&first](const ZrGeoPoint& at) {
        first = std::isnan(first) ? at.lng : first;
        return at.lat;
    });
    if (std::isnan(lat))
        return ZrLocalFrame({0.0, 0.0});
    const double lng
        = MiddleOf(pings, [first](const ZrGeoPoint& at) { return std::remainder(at.lng - first, 360.0); });
    return ZrLocalFrame({lat, std::remainder(first + lng, 360.0)});
}

/// Seconds that never fall, so that windows in time can be searched: small steps back are held, and where the
/// clock was set back or leapt months ahead they go on `apart` later.
class Clock
{
public:
    /// That of the next ping.
    double Next(double time)
    {
        const double step = time - m_latest;
        if (step < -disorder || step > apart)
            m_now += apart;
        else if (step > 0.0)
            m_now += step;
        if (std::isfinite(time) && !(step <= 0.0 && step >= -disorder))
            m_latest = time;
        return m_now;
    }

private:
    double m_latest = unknown;
    double m_now = 0.0;
};

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

/// Metres from the last known place, \p before, to \p point, which is that from then on.
double StepTo(const ZrLocalPoint& point, ZrLocalPoint& before)
{
    if (!IsKnown(point))
        return 0.0;
    const double step = IsKnown(before) ? std::hypot(point.x - before.x, point.y - before.y) : 0.0;
    before = point;
    return step;
}

} // namespace

/// What is known at the begin of a stretch.
struct ZrSonarTrack::Start
{
    Clock clock; ///< behind the ping before it
    double way = 0.0; ///< metres up to that
    ZrLocalPoint before{unknown, unknown}; ///< the last known place before it
};

/// Some pings and, for what hangs on their neighbours, those around them. All vectors are of these.
struct ZrSonarTrack::Stretch
{
    std::size_t index = 0;
    std::size_t begin = 0; ///< pings of its own
    std::size_t end = 0;
    std::size_t first = 0; ///< the first ping of the vectors
    std::vector<double> clock;
    std::vector<u32> known; ///< entries with a known position
    std::vector<ZrLocalPoint> points;
    std::vector<double> convergences; ///< from true north to the north of the frame, degrees
    std::vector<double> headings;
    std::vector<double> distances;

    std::size_t Own() const { return begin - first; } ///< the entry of its first ping

    /// The first and the last known entry within \p seconds / 2 of entry \p i, which is known.
    void Around(std::size_t i, double seconds, std::size_t& from, std::size_t& to) const
    {
        const double half = seconds / 2.0 + timeStep;
        const auto after = std::lower_bound(known.begin(), known.end(), clock[i] - half,
            [this](u32 entry, double time) { return clock[entry] < time; });
        const auto behind = std::upper_bound(known.begin(), known.end(), clock[i] + half,
            [this](double time, u32 entry) { return time < clock[entry]; });
        from = *after;
        to = *std::prev(behind);
    }

    double Course(std::size_t i) const
    {
        if (!IsKnown(points[i]))
            return unknown;
        std::size_t from = i;
        std::size_t to = i;
        Around(i, courseTime, from, to);
        const double east = points[to].x - points[from].x;
        const double north = points[to].y - points[from].y;
        return std::hypot(east, north) >= courseWay
            ? Wrapped(std::atan2(east, north) / radPerDeg + convergences[i])
            : unknown;
    }
};

/// The stretches that were asked for last.
struct ZrSonarTrack::Cache
{
    std::mutex mutex; ///< guards the next
    std::list<std::shared_ptr<const Stretch>> latest; ///< used last first
};

ZrSonarTrack::ZrSonarTrack(ZrSonarPings pings, const ZrSonarTrackSettings& settings)
    : m_pings(std::move(pings))
    , m_settings(settings)
    , m_frame(FrameOf(m_pings))
    , m_starts(std::make_shared<std::vector<Start>>())
    , m_cache(std::make_shared<Cache>())
{
    m_stretch = stretchPings;
    if (MakeStarts(mostLookedAt))
        return;
    m_stretch = m_pings.size();
    MakeStarts(std::numeric_limits<std::size_t>::max());
}

/// Goes through all stretches once. False when one of them looks at more than \p most pings.
bool ZrSonarTrack::MakeStarts(std::size_t most)
{
    m_starts->assign(1, Start());
    m_length = 0.0;
    for (std::size_t index = 0; index * m_stretch < m_pings.size(); ++index) {
        Stretch stretch;
        stretch.index = index;
        if (!Reach(stretch, most))
            return false;
        Place(stretch);
        Start next = (*m_starts)[index];
        for (std::size_t i = stretch.begin; i < stretch.end; ++i) {
            next.clock.Next(m_pings.Time(i));
            const ZrLocalPoint& point = stretch.points[i - stretch.first];
            next.before = IsKnown(point) ? point : next.before;
        }
        next.way = stretch.distances[stretch.end - 1 - stretch.first];
        m_length = next.way;
        m_starts->push_back(next);
    }
    return true;
}

/// Makes the clock of stretch `index`, and finds how far it has to look. False when that is more than \p
/// most pings.
bool ZrSonarTrack::Reach(Stretch& stretch, std::size_t most) const
{
    stretch.begin = stretch.index * m_stretch;
    stretch.end = std::min(stretch.begin + m_stretch, m_pings.size());
    // Headings are averaged from courses, which are taken from averaged places.
    const double smoothing = m_settings.smoothing > 0.0 ? std::min(m_settings.smoothing, longestWindow) : 0.0;
    const double reach = smoothing + courseTime / 2.0 + 4.0 * timeStep;
    // The clock is known at the begin of a stretch: back to the one from which on it is near enough.
    std::size_t from = stretch.index;
    std::vector<double> clock;
    for (;; --from) {
        if (stretch.end - from * m_stretch > most)
            return false;
        Clock running = (*m_starts)[from].clock;
        clock.clear();
        for (std::size_t i = from * m_stretch; i < stretch.end; ++i)
            clock.push_back(running.Next(m_pings.Time(i)));
        const double begin = clock[stretch.begin - from * m_stretch];
        if (from > 0 && !(clock.front() < begin - reach))
            continue;
        for (std::size_t i = stretch.end; i < m_pings.size(); ++i) {
            const double now = running.Next(m_pings.Time(i));
            if (now > clock[stretch.end - 1 - from * m_stretch] + reach)
                break;
            if (i - from * m_stretch >= most)
                return false;
            clock.push_back(now);
        }
        const auto first = std::lower_bound(clock.begin(), clock.end(), begin - reach);
        stretch.first = from * m_stretch + static_cast<std::size_t>(first - clock.begin());
        stretch.clock.assign(first, clock.end());
        return true;
    }
}

/// Places and the way to them.
void ZrSonarTrack::Place(Stretch& stretch) const
{
    const std::size_t count = stretch.clock.size();
    stretch.points.reserve(count);
    stretch.convergences.reserve(count);
    stretch.known.reserve(count);
    ZrSonarNav::Place place;
    for (std::size_t i = 0; i < count; ++i) {
        const ZrSonarPose pose = m_pings.At(stretch.first + i, place).pose;
        const ZrGeoPoint at = pose.position;
        const bool isOnFrame = at.IsValid() && std::fabs(at.lat) <= nearestPole;
        const ZrLocalPoint point = isOnFrame ? m_frame.ToLocal(at) : ZrLocalPoint{unknown, unknown};
        // Far from the frame the projection gives numbers without meaning, which would spoil sums.
        const bool isMeant = std::hypot(point.x, point.y) <= farthest;
        stretch.points.push_back(isMeant ? point : ZrLocalPoint{unknown, unknown});
        stretch.convergences.push_back(Convergence(m_frame.Origin(), at));
        stretch.headings.push_back(pose.heading);
        if (IsKnown(stretch.points.back()))
            stretch.known.push_back(static_cast<u32>(i));
    }
    if (m_settings.smoothing > 0.0)
        Smooth(stretch.points, stretch.clock, m_settings.smoothing);
    const Start& start = (*m_starts)[stretch.index];
    const std::size_t own = stretch.Own();
    stretch.distances.assign(count, start.way);
    ZrLocalPoint before = start.before;
    double way = start.way;
    for (std::size_t i = own; i < count; ++i) {
        way += StepTo(stretch.points[i], before);
        stretch.distances[i] = way;
    }
    // Backwards from the last known one in front of it.
    before = start.before;
    way = start.way;
    for (std::size_t i = own; i-- > 0;) {
        way -= StepTo(stretch.points[i], before);
        stretch.distances[i] = way;
    }
}

/// Headings.
void ZrSonarTrack::Turn(Stretch& stretch) const
{
    for (std::size_t i = 0; i < stretch.headings.size(); ++i) {
        const double recorded = stretch.headings[i] + m_settings.headingOffset;
        const bool takesCourse
            = m_settings.heading == ZrSonarTrackSettings::headingCourse || !std::isfinite(recorded);
        stretch.headings[i] = takesCourse ? stretch.Course(i) : Wrapped(recorded);
    }
    if (m_settings.smoothing > 0.0)
        SmoothAngles(stretch.headings, stretch.clock, m_settings.smoothing);
}

std::shared_ptr<const ZrSonarTrack::Stretch> ZrSonarTrack::StretchOf(std::size_t ping) const
{
    const std::size_t index = ping / m_stretch;
    {
        const std::lock_guard lock(m_cache->mutex);
        auto& latest = m_cache->latest;
        const auto found = std::find_if(
            latest.begin(), latest.end(), [index](const auto& stretch) { return stretch->index == index; });
        if (found != latest.end()) {
            latest.splice(latest.begin(), latest, found);
            return latest.front();
        }
    }
    // Two threads may make the same at the same time, which does no harm.
    auto made = std::make_shared<Stretch>();
    made->index = index;
    Reach(*made, std::numeric_limits<std::size_t>::max());
    Place(*made);
    Turn(*made);
    const std::lock_guard lock(m_cache->mutex);
    m_cache->latest.push_front(made);
    if (m_cache->latest.size() > mostStretches)
        m_cache->latest.pop_back();
    return made;
}

ZrLocalPoint ZrSonarTrack::Point(std::size_t ping) const
{
    const auto stretch = StretchOf(ping);
    return stretch->points[ping - stretch->first];
}

double ZrSonarTrack::Heading(std::size_t ping) const
{
    const auto stretch = StretchOf(ping);
    return stretch->headings[ping - stretch->first];
}

double ZrSonarTrack::Distance(std::size_t ping) const
{
    const auto stretch = StretchOf(ping);
    return stretch->distances[ping - stretch->first];
}

double ZrSonarTrack::Speed(std::size_t ping) const
{
    const auto stretch = StretchOf(ping);
    const std::size_t i = ping - stretch->first;
    if (!IsKnown(stretch->points[i]))
        return unknown;
    std::size_t first = i;
    std::size_t last = i;
    stretch->Around(i, courseTime, first, last);
    const double time = stretch->clock[last] - stretch->clock[first];
    return time > 0.0 ? (stretch->distances[last] - stretch->distances[first]) / time : unknown;
}

ZrGeoPoint ZrSonarTrack::Position(std::size_t ping) const
{
    const ZrLocalPoint point = Point(ping);
    return IsKnown(point) ? m_frame.ToGeo(point) : ZrGeoPoint{};
}

ZrLocalPoint ZrSonarTrack::LocateLocal(std::size_t ping, eSonarSide side, double groundRange) const
{
    const auto stretch = StretchOf(ping);
    const std::size_t i = ping - stretch->first;
    const double turn = side == sidePort ? -90.0 : 90.0;
    const double abeam = (stretch->headings[i] - stretch->convergences[i] + turn) * radPerDeg;
    return {stretch->points[i].x + groundRange * std::sin(abeam),
        stretch->points[i].y + groundRange * std::cos(abeam)};
}

ZrGeoPoint ZrSonarTrack::Locate(std::size_t ping, eSonarSide side, double groundRange) const
{
    const ZrLocalPoint at = LocateLocal(ping, side, groundRange);
    return IsKnown(at) ? m_frame.ToGeo(at) : ZrGeoPoint{};
}
