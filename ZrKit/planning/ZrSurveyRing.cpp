#include "ZrKit/planning/ZrSurveyRing.h"

#include "ZrUtil/ZrUtil.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

using Corners = std::vector<ZrLocalPoint>;

constexpr double flat = 0.001; ///< metres
constexpr double flatDegrees = 1e-9;

double Cross(ZrLocalPoint o, ZrLocalPoint a, ZrLocalPoint b)
{
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double Distance(ZrLocalPoint a, ZrLocalPoint b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

bool OnOneLine(const Corners& corners, double tolerance)
{
    const ZrLocalPoint first = corners.front();
    const ZrLocalPoint far = *std::max_element(corners.begin(), corners.end(),
        [&](ZrLocalPoint a, ZrLocalPoint b) { return Distance(first, a) < Distance(first, b); });
    const double length = Distance(first, far);
    return std::all_of(corners.begin(), corners.end(),
        [&](ZrLocalPoint p) { return std::fabs(Cross(first, far, p)) <= tolerance * length; });
}

double ToSegment(ZrLocalPoint p, ZrLocalPoint a, ZrLocalPoint b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double squared = dx * dx + dy * dy;
    const double along = squared > 0.0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / squared : 0.0;
    const double share = std::min(std::max(along, 0.0), 1.0);
    return std::hypot(p.x - a.x - share * dx, p.y - a.y - share * dy);
}

bool Cross(ZrLocalPoint a, ZrLocalPoint b, ZrLocalPoint c, ZrLocalPoint d)
{
    return (Cross(a, b, c) < 0.0) != (Cross(a, b, d) < 0.0)
        && (Cross(c, d, a) < 0.0) != (Cross(c, d, b) < 0.0);
}

bool Meet(ZrLocalPoint a, ZrLocalPoint b, ZrLocalPoint c, ZrLocalPoint d)
{
    return Cross(a, b, c, d) || ToSegment(c, a, b) <= flat || ToSegment(d, a, b) <= flat
        || ToSegment(a, c, d) <= flat || ToSegment(b, c, d) <= flat;
}

/// Two edges that meet where they should not: their first corners; the number of corners twice when none do.
/// Edges are compared with those only that lie beside them in x.
std::pair<std::size_t, std::size_t> MeetingEdges(const Corners& corners)
{
    const std::size_t count = corners.size();
    const auto behind = [&](std::size_t i) { return i + 1 < count ? i + 1 : 0; };
    const auto low = [&](std::size_t i) { return std::min(corners[i].x, corners[behind(i)].x); };
    const auto high = [&](std::size_t i) { return std::max(corners[i].x, corners[behind(i)].x); };
    std::vector<std::size_t> edges(count);
    std::iota(edges.begin(), edges.end(), std::size_t{0});
    std::sort(edges.begin(), edges.end(), [&](std::size_t i, std::size_t j) { return low(i) < low(j); });
    for (std::size_t n = 0; n < count; ++n) {
        for (std::size_t m = n + 1; m < count && low(edges[m]) <= high(edges[n]) + flat; ++m) {
            const std::size_t i = std::min(edges[n], edges[m]);
            const std::size_t j = std::max(edges[n], edges[m]);
            bool meet = false;
            if (j == behind(i) || i == behind(j)) {
                // Neighbours share a corner; they must not fold back.
                const std::size_t shared = j == behind(i) ? j : i;
                const ZrLocalPoint a = corners[shared == j ? i : j];
                const ZrLocalPoint o = corners[shared];
                const ZrLocalPoint b = corners[behind(shared)];
                meet = ToSegment(b, a, o) <= flat || ToSegment(a, o, b) <= flat;
            } else {
                meet = Meet(corners[i], corners[behind(i)], corners[j], corners[behind(j)]);
            }
            if (meet)
                return {i, j};
        }
    }
    return {count, count};
}

} // namespace

bool ZrSurveyRing::IsWithin(const ZrLocalFrame& frame, ZrGeoPoint point)
{
    constexpr double farthest = 100000.0; ///< metres
    constexpr double widest = 15.0; ///< degrees
    if (std::fabs(std::remainder(point.lng - frame.Origin().lng, 360.0)) > widest)
        return false;
    const ZrLocalPoint local = frame.ToLocal(point);
    return std::hypot(local.x, local.y) <= farthest;
}

QString ZrSurveyRing::Problem(const ZrArea& area, const ZrLocalFrame& frame)
{
    constexpr double northmost = 89.0;
    if (area.ring.size() > maxCorners)
        return QCoreApplication::translate("ZrSurveyRing", "The area has %1 corners, more than %2.")
            .arg(area.ring.size())
            .arg(maxCorners);
    for (std::size_t i = 0; i < area.ring.size(); ++i) {
        const ZrGeoPoint corner = area.ring[i];
        if (!corner.IsValid())
            return QCoreApplication::translate(
                "ZrSurveyRing", "Corner %1 of the area is no position on the earth.")
                .arg(i + 1);
        if (std::fabs(corner.lat) > northmost)
            return QCoreApplication::translate(
                "ZrSurveyRing", "Corner %1 of the area lies beyond %2 degrees of latitude.")
                .arg(i + 1)
                .arg(northmost);
    }
    for (std::size_t i = 0; i < area.ring.size(); ++i) {
        if (!IsWithin(frame, area.ring[i]))
            return QCoreApplication::translate("ZrSurveyRing",
                "The area is too large: corner %1 lies more than 100 km, or 15 degrees of "
                "longitude, from its middle.")
                .arg(i + 1);
    }
    const std::vector<ZrLocalPoint> corners = Corners(area, frame);
    if (corners.size() < 3)
        return QCoreApplication::translate("ZrSurveyRing", "The area has fewer than three corners.");
    // A parallel is no straight line, but what lies on it is no area either.
    std::vector<ZrLocalPoint> degrees;
    for (const ZrGeoPoint& corner : area.ring)
        degrees.push_back({std::remainder(corner.lng - frame.Origin().lng, 360.0), corner.lat});
    if (OnOneLine(corners, flat) || OnOneLine(degrees, flatDegrees))
        return QCoreApplication::translate("ZrSurveyRing", "The corners of the area lie on one line.");
    const auto [first, second] = MeetingEdges(corners);
    if (first != second) {
        const auto place = [&](std::size_t i) {
            const ZrGeoPoint at = frame.ToGeo(corners[i]);
            return QStringLiteral("%1, %2").arg(at.lat, 0, 'f', 6).arg(at.lng, 0, 'f', 6);
        };
        return QCoreApplication::translate(
            "ZrSurveyRing", "The edges of the area that begin at %1 and at %2 cross or touch each other.")
            .arg(place(first), place(second));
    }
    return {};
}

std::vector<ZrLocalPoint> ZrSurveyRing::Corners(const ZrArea& area, const ZrLocalFrame& frame)
{
    std::vector<ZrLocalPoint> corners;
    corners.reserve(area.ring.size());
    for (const ZrGeoPoint& corner : area.ring) {
        const ZrLocalPoint local = frame.ToLocal(corner);
        if (corners.empty() || Distance(corners.back(), local) > flat)
            corners.push_back(local);
    }
    while (corners.size() > 1 && Distance(corners.front(), corners.back()) <= flat)
        corners.pop_back();
    return corners;
}

double ZrSurveyRing::LongestSide(const std::vector<ZrLocalPoint>& corners)
{
    double longest = -1.0;
    double heading = 0.0;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const ZrLocalPoint a = corners[i];
        const ZrLocalPoint b = corners[(i + 1) % corners.size()];
        const double length = Distance(a, b);
        if (length > longest) {
            longest = length;
            heading = ZrUtil::R2D(std::atan2(b.x - a.x, b.y - a.y));
        }
    }
    if (heading < 0.0)
        heading += 180.0;
    return heading < 180.0 ? heading : 0.0;
}

ZrSurveyRing::ZrSurveyRing(const std::vector<ZrLocalPoint>& corners, double heading)
    : m_sin(std::sin(ZrUtil::D2R(heading)))
    , m_cos(std::cos(ZrUtil::D2R(heading)))
    , m_left(std::numeric_limits<double>::infinity())
    , m_right(-m_left)
{
    m_corners.reserve(corners.size());
    for (const ZrLocalPoint& p : corners) {
        m_corners.push_back({p.x * m_sin + p.y * m_cos, p.x * m_cos - p.y * m_sin});
        m_left = std::min(m_left, m_corners.back().y);
        m_right = std::max(m_right, m_corners.back().y);
    }
}

ZrLocalPoint ZrSurveyRing::Back(ZrLocalPoint turned) const
{
    return {turned.x * m_sin + turned.y * m_cos, turned.x * m_cos - turned.y * m_sin};
}

ZrIntervals ZrSurveyRing::Inside(double y) const
{
    std::vector<double> crossings;
    ZrLocalPoint a = m_corners.back();
    for (const ZrLocalPoint& b : m_corners) {
        // An edge holds its lower end but not its upper one, so that a line through a corner counts well.
        if ((a.y <= y) != (b.y <= y))
            crossings.push_back(a.x + (b.x - a.x) * ((y - a.y) / (b.y - a.y)));
        a = b;
    }
    std::sort(crossings.begin(), crossings.end());
    std::vector<ZrInterval> inside;
    for (std::size_t i = 1; i < crossings.size(); i += 2)
        inside.push_back({crossings[i - 1], crossings[i]});
    return ZrIntervals::Union(std::move(inside));
}

ZrIntervals ZrSurveyRing::Abeam(double y, double low, double high) const
{
    // From a place of the area between low and high one comes along y either to the line at y, within the
    // area, or to an edge before that.
    // What reaches into the strip by no more than this belongs to the next one.
    const double touch = std::min(0.001, (high - low) / 10000.0);
    low += touch;
    high -= touch;
    std::vector<ZrInterval> seen = Inside(y).All();
    ZrLocalPoint a = m_corners.back();
    for (const ZrLocalPoint& b : m_corners) {
        const ZrLocalPoint& lower = a.y < b.y ? a : b;
        const ZrLocalPoint& upper = a.y < b.y ? b : a;
        if (lower.y < high && upper.y > low) {
            const auto at = [&](double level) {
                return lower.x + (upper.x - lower.x) * ((level - lower.y) / (upper.y - lower.y));
            };
            const double x1 = lower.y < low ? at(low) : lower.x;
            const double x2 = upper.y > high ? at(high) : upper.x;
            seen.push_back({std::min(x1, x2), std::max(x1, x2)});
        }
        a = b;
    }
    return ZrIntervals::Union(std::move(seen));
}

ZrIntervals ZrSurveyRing::NearEdge(double y, double distance) const
{
    // What is closer to an edge than the distance is the edge widened to both sides and a disc around each
    // end; the line cuts this convex shape in one piece.
    std::vector<ZrInterval> nearby;
    ZrLocalPoint a = m_corners.back();
    for (const ZrLocalPoint& b : m_corners) {
        ZrInterval piece{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
        const auto widen = [&](double x) {
            piece.from = std::min(piece.from, x);
            piece.to = std::max(piece.to, x);
        };
        for (const ZrLocalPoint& end : {a, b}) {
            const double off = std::fabs(y - end.y);
            if (off < distance) {
                const double half = std::sqrt(distance * distance - off * off);
                widen(end.x - half);
                widen(end.x + half);
            }
        }
        const double length = Distance(a, b);
        const double nx = -(b.y - a.y) / length * distance;
        const double ny = (b.x - a.x) / length * distance;
        for (const double side : {-1.0, 1.0}) {
            const ZrLocalPoint p{a.x + side * nx, a.y + side * ny};
            const ZrLocalPoint q{b.x + side * nx, b.y + side * ny};
            if ((p.y <= y) != (q.y <= y))
                widen(p.x + (q.x - p.x) * ((y - p.y) / (q.y - p.y)));
        }
        if (piece.from < piece.to)
            nearby.push_back(piece);
        a = b;
    }
    return ZrIntervals::Union(std::move(nearby));
}
