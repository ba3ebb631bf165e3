#include "ZrKit/planning/ZrPlaneArea.h"

#include "ZrUtil/ZrUtil.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr std::size_t maxBands = 256;
constexpr double infinity = std::numeric_limits<double>::infinity();

ZrLocalPoint operator-(ZrLocalPoint a, ZrLocalPoint b)
{
    return {a.x - b.x, a.y - b.y};
}

double Dot(ZrLocalPoint a, ZrLocalPoint b)
{
    return a.x * b.x + a.y * b.y;
}

double Cross(ZrLocalPoint a, ZrLocalPoint b)
{
    return a.x * b.y - a.y * b.x;
}

double Length(ZrLocalPoint v)
{
    return std::hypot(v.x, v.y);
}

/// Where the foot of \p p on the line through \p a and \p b lies, as a fraction of a → b; 0 when they
/// coincide.
double Foot(ZrLocalPoint p, ZrLocalPoint a, ZrLocalPoint b)
{
    const double square = Dot(b - a, b - a);
    return square > 0.0 ? Dot(p - a, b - a) / square : 0.0;
}

ZrLocalPoint Between(ZrLocalPoint a, ZrLocalPoint b, double fraction)
{
    return {a.x + fraction * (b.x - a.x), a.y + fraction * (b.y - a.y)};
}

double PointToSegment(ZrLocalPoint p, ZrLocalPoint a, ZrLocalPoint b)
{
    return Length(p - Between(a, b, std::clamp(Foot(p, a, b), 0.0, 1.0)));
}

/// Whether the segments have a point in common, apart from rounding.
bool Meet(ZrLocalPoint a, ZrLocalPoint b, ZrLocalPoint c, ZrLocalPoint d)
{
    const double sideA = Cross(d - c, a - c);
    const double sideB = Cross(d - c, b - c);
    const double sideC = Cross(b - a, c - a);
    const double sideD = Cross(b - a, d - a);
    return ((sideA > 0.0) != (sideB > 0.0)) && ((sideC > 0.0) != (sideD > 0.0));
}

/// Fraction of the arc at which its direction from the centre is that of \p p; outside 0 ... 1 when it has
/// none.
double FractionOnArc(const ZrPathPiece& arc, ZrLocalPoint p)
{
    const ZrLocalPoint v = p - arc.centre;
    double angle = std::remainder(std::atan2(v.y, v.x) - arc.start - arc.sweep / 2.0, ZrUtil::pi2);
    return arc.sweep == 0.0 ? infinity : 0.5 + angle / arc.sweep;
}

bool IsFraction(double f)
{
    return f >= 0.0 && f <= 1.0;
}

double PointToArc(ZrLocalPoint p, const ZrPathPiece& arc)
{
    const double ends = std::min(Length(p - arc.from), Length(p - arc.to));
    if (!IsFraction(FractionOnArc(arc, p)))
        return ends;
    return std::min(ends, std::fabs(Length(p - arc.centre) - arc.radius));
}

/// The points, as fractions of a → b, in which the line through \p a and \p b meets the circle of the arc.
/// Two, or none.
std::vector<double> CircleCuts(const ZrPathPiece& arc, ZrLocalPoint a, ZrLocalPoint b)
{
    const double length = Length(b - a);
    if (!(length > 0.0))
        return {};
    const double foot = Foot(arc.centre, a, b);
    const double away = Length(arc.centre - Between(a, b, foot));
    if (!(away < arc.radius))
        return {};
    const double half = std::sqrt((arc.radius - away) * (arc.radius + away)) / length;
    return {foot - half, foot + half};
}

/// The local minima of the distance lie where the arc crosses the segment, at an end of either, or where the
/// normal of the segment goes through the centre.
double ArcToSegment(const ZrPathPiece& arc, ZrLocalPoint a, ZrLocalPoint b)
{
    for (const double cut : CircleCuts(arc, a, b)) {
        if (IsFraction(cut) && IsFraction(FractionOnArc(arc, Between(a, b, cut))))
            return 0.0;
    }
    const double foot = std::clamp(Foot(arc.centre, a, b), 0.0, 1.0);
    return std::min({PointToSegment(arc.from, a, b), PointToSegment(arc.to, a, b), PointToArc(a, arc),
        PointToArc(b, arc), PointToArc(Between(a, b, foot), arc)});
}

double SegmentToSegment(ZrLocalPoint a, ZrLocalPoint b, ZrLocalPoint c, ZrLocalPoint d)
{
    if (Meet(a, b, c, d))
        return 0.0;
    return std::min(
        {PointToSegment(a, c, d), PointToSegment(b, c, d), PointToSegment(c, a, b), PointToSegment(d, a, b)});
}

/// Appends the fractions of the piece at which it meets the edge. One that is not there does no harm, so ends
/// are taken generously.
void AppendCuts(const ZrPathPiece& piece, ZrLocalPoint a, ZrLocalPoint b, std::vector<double>& cuts)
{
    const double slack = ZrPlaneArea::Tolerance / std::max(Length(b - a), ZrPlaneArea::Tolerance);
    const auto onEdge = [slack](double fraction) { return fraction >= -slack && fraction <= 1.0 + slack; };
    if (piece.isArc) {
        for (const double cut : CircleCuts(piece, a, b)) {
            if (onEdge(cut))
                cuts.push_back(FractionOnArc(piece, Between(a, b, cut)));
        }
        return;
    }
    const ZrLocalPoint u = piece.to - piece.from;
    const double across = Cross(u, b - a);
    if (across != 0.0 && onEdge(Cross(piece.from - a, u) / -across))
        cuts.push_back(Cross(a - piece.from, b - a) / across);
    // Edges along the piece: it may leave the border where they end.
    for (const ZrLocalPoint end : {a, b}) {
        const double foot = Foot(end, piece.from, piece.to);
        if (Length(end - Between(piece.from, piece.to, foot)) < ZrPlaneArea::Tolerance)
            cuts.push_back(foot);
    }
}

} // namespace

ZrPlaneArea::ZrPlaneArea(const std::vector<ZrLocalPoint>& ring)
{
    const auto repeats = [](ZrLocalPoint a, ZrLocalPoint b) { return Length(b - a) < 1e-6; };
    for (const ZrLocalPoint corner : ring) {
        if (m_ring.empty() || !repeats(m_ring.back(), corner))
            m_ring.push_back(corner);
    }
    while (m_ring.size() > 1 && repeats(m_ring.back(), m_ring.front()))
        m_ring.pop_back();
    if (m_ring.empty())
        return;

    const auto [lowest, highest] = std::minmax_element(
        m_ring.begin(), m_ring.end(), [](ZrLocalPoint a, ZrLocalPoint b) { return a.y < b.y; });
    m_low = lowest->y;
    m_high = highest->y;
    m_bands.resize(std::min(m_ring.size(), maxBands));
    for (std::size_t i = 0; i < m_ring.size(); ++i) {
        const Edge edge{m_ring[i], m_ring[(i + 1) % m_ring.size()]};
        const std::size_t last = BandOf(std::max(edge.a.y, edge.b.y));
        for (std::size_t band = BandOf(std::min(edge.a.y, edge.b.y)); band <= last; ++band)
            m_bands[band].push_back(i);
        m_edges.push_back(edge);
    }
}

/// The band of \p y; that beside it for what is beyond the area.
std::size_t ZrPlaneArea::BandOf(double y) const
{
    const double share = m_high > m_low ? (y - m_low) / (m_high - m_low) : 0.0;
    const auto bands = static_cast<double>(m_bands.size());
    return static_cast<std::size_t>(std::clamp(std::floor(share * bands), 0.0, bands - 1.0));
}

/// Calls \p visit once with every edge that may lie between the two y, until it returns false.
template <class F> void ZrPlaneArea::ForEdges(double low, double high, F&& visit) const
{
    if (m_edges.empty() || high < m_low || low > m_high)
        return;
    const std::size_t first = BandOf(low);
    const std::size_t last = BandOf(high);
    for (std::size_t band = first; band <= last; ++band) {
        for (const std::size_t index : m_bands[band]) {
            const Edge& edge = m_edges[index];
            // An edge through several bands is visited in the first of them.
            if (std::max(first, BandOf(std::min(edge.a.y, edge.b.y))) != band)
                continue;
            if (!visit(index))
                return;
        }
    }
}

bool ZrPlaneArea::CrossesItself() const
{
    const std::size_t count = m_edges.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Edge& edge = m_edges[i];
        bool crosses = false;
        const auto visit = [&](std::size_t j) {
            const bool neighbour = j == i || (j + 1) % count == i || (i + 1) % count == j;
            crosses = j > i && !neighbour && Meet(edge.a, edge.b, m_edges[j].a, m_edges[j].b);
            return !crosses;
        };
        ForEdges(std::min(edge.a.y, edge.b.y), std::max(edge.a.y, edge.b.y), visit);
        if (crosses)
            return true;
    }
    return false;
}

double ZrPlaneArea::SignedArea() const
{
    double area = 0.0;
    for (const Edge& edge : m_edges)
        area += Cross(edge.a - m_ring.front(), edge.b - m_ring.front()) / 2.0;
    return area;
}

bool ZrPlaneArea::IsDegenerate() const
{
    if (m_ring.size() < 3)
        return true;
    double around = 0.0;
    for (const Edge& edge : m_edges)
        around += Length(edge.b - edge.a);
    // A ring that crosses itself may enclose much and have a signed area of 0.
    return std::fabs(SignedArea()) < Tolerance * around / 2.0 && !CrossesItself();
}

bool ZrPlaneArea::Contains(ZrLocalPoint point) const
{
    bool inside = false;
    ForEdges(point.y, point.y, [&](std::size_t index) {
        const Edge& edge = m_edges[index];
        if ((edge.a.y > point.y) != (edge.b.y > point.y)) {
            const double side = Cross(edge.b - edge.a, point - edge.a);
            inside = inside != ((side > 0.0) == (edge.b.y > edge.a.y));
        }
        return true;
    });
    return inside;
}

bool ZrPlaneArea::IsOnBorder(ZrLocalPoint point) const
{
    bool on = false;
    ForEdges(point.y - Tolerance, point.y + Tolerance, [&](std::size_t index) {
        on = PointToSegment(point, m_edges[index].a, m_edges[index].b) < Tolerance;
        return !on;
    });
    return on;
}

/// The fractions at which the piece may change its side, with those of its ends, in order.
std::vector<double> ZrPlaneArea::Cuts(const ZrPathPiece& piece) const
{
    const double reach = piece.isArc ? piece.radius : 0.0;
    const ZrLocalPoint from = piece.isArc ? piece.centre : piece.from;
    const ZrLocalPoint to = piece.isArc ? piece.centre : piece.to;
    const double west = std::min(from.x, to.x) - reach - Tolerance;
    const double east = std::max(from.x, to.x) + reach + Tolerance;
    std::vector<double> cuts{0.0, 1.0};
    ForEdges(std::min(from.y, to.y) - reach - Tolerance, std::max(from.y, to.y) + reach + Tolerance,
        [&](std::size_t index) {
            const Edge& edge = m_edges[index];
            if (std::max(edge.a.x, edge.b.x) >= west && std::min(edge.a.x, edge.b.x) <= east)
                AppendCuts(piece, edge.a, edge.b, cuts);
            return true;
        });
    cuts.erase(std::remove_if(cuts.begin(), cuts.end(), [](double f) { return !IsFraction(f); }), cuts.end());
    std::sort(cuts.begin(), cuts.end());
    return cuts;
}

/// Whether a stretch that does not cross the border is on the side asked for.
bool ZrPlaneArea::IsStretch(const ZrPathPiece& piece, Stretch stretch, bool inside) const
{
    // A corner may touch it in a place; more than one place is looked at only then.
    for (const double share : {0.5, 0.25, 0.75, 0.1, 0.9}) {
        const ZrLocalPoint point = piece.At(stretch.first + share * (stretch.last - stretch.first));
        if (!IsOnBorder(point))
            return Contains(point) == inside;
    }
    return false;
}

std::vector<ZrPlaneArea::Stretch> ZrPlaneArea::Stretches(const ZrPathPiece& piece, bool inside) const
{
    std::vector<Stretch> stretches;
    if (piece.length < Tolerance) {
        if (IsStretch(piece, {0.0, 1.0}, inside))
            stretches.push_back({0.0, 1.0});
        return stretches;
    }
    const std::vector<double> cuts = Cuts(piece);
    double first = 0.0;
    for (const double cut : cuts) {
        if ((cut - first) * piece.length < Tolerance)
            continue;
        if (IsStretch(piece, {first, cut}, inside)) {
            if (!stretches.empty() && stretches.back().last == first)
                stretches.back().last = cut;
            else
                stretches.push_back({first, cut});
        }
        first = cut;
    }
    return stretches;
}

double ZrPlaneArea::Distance(const ZrPathPiece& piece, double limit) const
{
    const double reach = (piece.isArc ? piece.radius : 0.0) + limit;
    const ZrLocalPoint from = piece.isArc ? piece.centre : piece.from;
    const ZrLocalPoint to = piece.isArc ? piece.centre : piece.to;
    double least = infinity;
    ForEdges(std::min(from.y, to.y) - reach, std::max(from.y, to.y) + reach, [&](std::size_t index) {
        const Edge& edge = m_edges[index];
        if (std::max(edge.a.x, edge.b.x) >= std::min(from.x, to.x) - reach
            && std::min(edge.a.x, edge.b.x) <= std::max(from.x, to.x) + reach) {
            const double distance = piece.isArc ? ArcToSegment(piece, edge.a, edge.b)
                                                : SegmentToSegment(piece.from, piece.to, edge.a, edge.b);
            least = std::min(least, distance);
        }
        return least > 0.0;
    });
    return least < limit ? least : infinity;
}
