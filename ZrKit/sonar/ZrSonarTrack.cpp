#include "ZrKit/sonar/ZrSonarTrack.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double radPerDeg = 3.14159265358979323846 / 180.0;
/// Course and speed are taken over this time, seconds, and over at least this way, metres.
constexpr double courseTime = 4.0;
constexpr double courseWay = 0.5;

bool IsKnown(const ZrLocalPoint& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

double Wrapped(double degrees)
{
    const double rest = std::fmod(degrees, 360.0);
    const double positive = rest < 0.0 ? rest + 360.0 : rest;
    return positive < 360.0 ? positive : 0.0;
}

ZrLocalFrame FrameOf(const std::vector<ZrSonarPing>& pings)
{
    std::vector<ZrGeoPoint> points;
    points.reserve(pings.size());
    for (const ZrSonarPing& ping : pings)
        points.push_back(ping.pose.position);
    return ZrLocalFrame::Around(points);
}

/// The pings first ... last within \p seconds / 2 of \p ping in time and connected to it, as many before as
/// behind it, so that an average over them does not drag the ends of a line inwards.
void Window(
    const std::vector<double>& times, std::size_t ping, double seconds, std::size_t& first, std::size_t& last)
{
    first = last = ping;
    while (first > 0 && last + 1 < times.size() && std::fabs(times[first - 1] - times[ping]) <= seconds / 2
        && std::fabs(times[last + 1] - times[ping]) <= seconds / 2) {
        --first;
        ++last;
    }
}

std::vector<ZrLocalPoint> Smoothed(
    const std::vector<ZrLocalPoint>& points, const std::vector<double>& times, double seconds)
{
    std::vector<ZrLocalPoint> result(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        std::size_t first = i;
        std::size_t last = i;
        Window(times, i, seconds, first, last);
        ZrLocalPoint sum;
        int count = 0;
        for (std::size_t k = first; k <= last; ++k) {
            if (!IsKnown(points[k]))
                continue;
            sum.x += points[k].x;
            sum.y += points[k].y;
            ++count;
        }
        result[i] = IsKnown(points[i]) ? ZrLocalPoint{sum.x / count, sum.y / count} : points[i];
    }
    return result;
}

/// Averages directions by their unit vectors.
std::vector<double> SmoothedAngles(
    const std::vector<double>& degrees, const std::vector<double>& times, double seconds)
{
    std::vector<double> result(degrees.size());
    for (std::size_t i = 0; i < degrees.size(); ++i) {
        std::size_t first = i;
        std::size_t last = i;
        Window(times, i, seconds, first, last);
        double east = 0.0;
        double north = 0.0;
        for (std::size_t k = first; k <= last; ++k) {
            if (!std::isfinite(degrees[k]))
                continue;
            east += std::sin(degrees[k] * radPerDeg);
            north += std::cos(degrees[k] * radPerDeg);
        }
        result[i] = std::isfinite(degrees[i]) ? Wrapped(std::atan2(east, north) / radPerDeg) : degrees[i];
    }
    return result;
}

} // namespace

ZrSonarTrack::ZrSonarTrack(const std::vector<ZrSonarPing>& pings, const ZrSonarTrackSettings& settings)
    : m_frame(FrameOf(pings))
{
    m_times.reserve(pings.size());
    m_points.reserve(pings.size());
    m_convergences.reserve(pings.size());
    for (const ZrSonarPing& ping : pings) {
        m_times.push_back(ping.time);
        const ZrGeoPoint at = ping.pose.position;
        m_points.push_back(at.IsValid() ? m_frame.ToLocal(at) : ZrLocalPoint{unknown, unknown});
        const double east = std::remainder(at.lng - m_frame.Origin().lng, 360.0);
        m_convergences.push_back(east * std::sin(at.lat * radPerDeg));
    }
    if (settings.smoothing > 0.0)
        m_points = Smoothed(m_points, m_times, settings.smoothing);
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
        m_headings = SmoothedAngles(m_headings, m_times, settings.smoothing);
}

/// The known pings around \p ping that are at most \p seconds apart.
void ZrSonarTrack::Around(std::size_t ping, double seconds, std::size_t& first, std::size_t& last) const
{
    first = last = ping;
    for (std::size_t i = ping; i-- > 0 && std::fabs(m_times[ping] - m_times[i]) <= seconds / 2;) {
        if (IsKnown(m_points[i]))
            first = i;
    }
    for (std::size_t i = ping + 1; i < m_times.size() && std::fabs(m_times[i] - m_times[ping]) <= seconds / 2;
         ++i) {
        if (IsKnown(m_points[i]))
            last = i;
    }
}

double ZrSonarTrack::Course(std::size_t ping) const
{
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
    std::size_t first = ping;
    std::size_t last = ping;
    Around(ping, courseTime, first, last);
    const double time = m_times[last] - m_times[first];
    return time > 0.0 && IsKnown(m_points[first]) && IsKnown(m_points[last])
        ? (m_distances[last] - m_distances[first]) / time
        : unknown;
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
