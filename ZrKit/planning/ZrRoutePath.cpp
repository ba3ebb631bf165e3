#include "ZrKit/planning/ZrRoutePath.h"

#include "ZrUtil/ZrSphd.h"
#include "ZrUtil/ZrUtil.h"
#include "ZrUtil/ZrWpts.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double usualArcStep = ZrUtil::pi / 36.0; // radians
constexpr double leastArcStep = 1e-4;
constexpr double doublingBack = 179.9 / 180.0 * ZrUtil::pi; // change of direction, radians

double PlaneDistance(ZrLocalPoint a, ZrLocalPoint b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

/// The point \p distance from \p a on the way to \p b.
ZrLocalPoint Towards(ZrLocalPoint a, ZrLocalPoint b, double distance)
{
    const double share = distance / PlaneDistance(a, b);
    return {a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)};
}

/// Change of direction at \p w, radians, positive to the left.
double Deflection(ZrLocalPoint before, ZrLocalPoint w, ZrLocalPoint after)
{
    const double ux = w.x - before.x;
    const double uy = w.y - before.y;
    const double vx = after.x - w.x;
    const double vy = after.y - w.y;
    return std::atan2(ux * vy - uy * vx, ux * vx + uy * vy);
}

/// The speed that holds along the route, from leg to leg.
class RunningSpeed
{
public:
    RunningSpeed(const ZrWpts& route, const ZrRouteSpeeds& speeds)
        : m_speeds(speeds)
        , m_speed(Preset(route.speedType, route.speed))
    {
    }

    void Enter(const ZrWpt& from, ZrRouteLeg& leg)
    {
        leg.type = TypeOf(from);
        if (leg.type != eRouteSpeedInherited) {
            m_source = leg.type;
            m_speed = Preset(leg.type, from.speed);
        }
        leg.source = m_source;
        leg.speed = std::isfinite(m_speed) && m_speed > 0.0 ? m_speed : NaN;
    }

private:
    double Preset(int type, double own) const
    {
        switch (type) {
        case eRouteSpeedSlow:
            return static_cast<double>(m_speeds.slow);
        case eRouteSpeedMedium:
            return static_cast<double>(m_speeds.medium);
        case eRouteSpeedFast:
            return static_cast<double>(m_speeds.fast);
        default:
            return own;
        }
    }

    static eRouteSpeed TypeOf(const ZrWpt& wpt)
    {
        if (wpt.spdType > eRouteSpeedFast)
            return wpt.speed > 0.0 ? eRouteSpeedOwn : eRouteSpeedInherited;
        return wpt.spdType > 0 ? static_cast<eRouteSpeed>(wpt.spdType) : eRouteSpeedInherited;
    }

    ZrRouteSpeeds m_speeds;
    double m_speed;
    eRouteSpeed m_source = eRouteSpeedInherited;
};

std::vector<ZrGeoPoint> Positions(const ZrWpts& route)
{
    std::vector<ZrGeoPoint> positions;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt* wpt = route.GetNext(pos);
        positions.push_back({wpt->lat, wpt->lng});
    }
    return positions;
}

/// Gaussian radius of curvature, √(ρν), which governs the scale of the projection.
double EarthRadius(double lat)
{
    const ZrSphd wgs84;
    const double s = std::sin(ZrUtil::D2R(lat));
    return wgs84.semiMajor * std::sqrt(1.0 - wgs84.eccentricitySqr) / (1.0 - wgs84.eccentricitySqr * s * s);
}

} // namespace

ZrRoutePath::ZrRoutePath(const ZrWpts& route, const ZrRouteSpeeds& speeds)
    : m_frame({0.0, 0.0})
    , m_radius(0.0)
{
    const std::vector<ZrGeoPoint> positions = Positions(route);
    m_frame = ZrLocalFrame::Around(positions);
    m_radius = EarthRadius(m_frame.Origin().lat);
    Project(positions);

    std::vector<double> radii;
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        radii.push_back(std::fabs(route.GetNext(pos)->r));
    CalcTurns(radii);

    const int count = static_cast<int>(m_points.size());
    const int legs = route.closed && count > 1 ? count : count - 1;
    RunningSpeed speed(route, speeds);
    ZrListPos* pos = route.GetHeadPos();
    for (int i = 0; i < legs; ++i) {
        ZrRouteLeg leg;
        leg.from = i;
        leg.to = (i + 1) % count;
        speed.Enter(*route.GetNext(pos), leg);
        AddLeg(leg);
    }
}

void ZrRoutePath::Project(const std::vector<ZrGeoPoint>& positions)
{
    const double middle = m_frame.Origin().lng;
    for (const ZrGeoPoint& position : positions) {
        if (position.IsValid()) {
            m_tooWide = m_tooWide || std::fabs(std::remainder(position.lng - middle, 360.0)) > MaxSpan
                || std::fabs(position.lat) > MaxLatitude;
        }
    }
    for (const ZrGeoPoint& position : positions) {
        const bool known = position.IsValid() && !m_tooWide;
        m_points.push_back(known ? m_frame.ToLocal(position) : ZrLocalPoint{NaN, NaN});
    }
}

/// Scale of the projection: plane metres per metre on the earth.
double ZrRoutePath::ScaleAt(double x) const
{
    return std::cosh(x / m_radius);
}

// The scale is averaged by Simpson's rule.
double ZrRoutePath::Distance(ZrLocalPoint a, ZrLocalPoint b) const
{
    const double middle = 4.0 / ScaleAt((a.x + b.x) / 2.0);
    return PlaneDistance(a, b) * (1.0 / ScaleAt(a.x) + middle + 1.0 / ScaleAt(b.x)) / 6.0;
}

void ZrRoutePath::CalcTurns(const std::vector<double>& radii)
{
    const std::size_t count = m_points.size();
    m_turns.resize(count);
    std::vector<double> reaches(count, 0.0); // metres of the plane
    for (std::size_t i = 1; i + 1 < count; ++i) {
        const double before = PlaneDistance(m_points[i - 1], m_points[i]);
        const double after = PlaneDistance(m_points[i], m_points[i + 1]);
        if (!(radii[i] > 0.0 && std::isfinite(radii[i]) && before > 0.0 && after > 0.0))
            continue;
        ZrRouteTurn& turn = m_turns[i];
        turn.radius = radii[i];
        turn.deflection = Deflection(m_points[i - 1], m_points[i], m_points[i + 1]);
        turn.reach = turn.radius * std::tan(std::fabs(turn.deflection) / 2.0);
        const double reach = turn.reach * ScaleAt(m_points[i].x);
        if (reach <= std::min(before, after) + Tolerance) {
            turn.state = ZrRouteTurn::eTurns;
            reaches[i] = reach;
        } else {
            const bool back = std::fabs(turn.deflection) > doublingBack;
            turn.state = back ? ZrRouteTurn::eDoublesBack : ZrRouteTurn::eBeyondLeg;
        }
    }
    // Neither of two overlapping turns is made, so that the reversed route has the same path.
    for (std::size_t i = 1; i + 2 < count; ++i) {
        if (reaches[i] + reaches[i + 1] > PlaneDistance(m_points[i], m_points[i + 1]) + Tolerance
            && reaches[i] > 0.0 && reaches[i + 1] > 0.0) {
            m_turns[i].state = m_turns[i + 1].state = ZrRouteTurn::eOverlaps;
            m_turns[i].overlapsNext = true;
        }
    }
    for (std::size_t i = 1; i + 1 < count; ++i) {
        ZrRouteTurn& turn = m_turns[i];
        if (turn.state != ZrRouteTurn::eTurns)
            continue;
        const ZrLocalPoint before = m_points[i - 1];
        const ZrLocalPoint w = m_points[i];
        turn.tp1 = Towards(w, before, reaches[i]);
        turn.tp2 = Towards(w, m_points[i + 1], reaches[i]);
        // The centre is square to the first leg, on the side to which the path turns.
        const double side
            = std::copysign(turn.radius * ScaleAt(w.x), turn.deflection) / PlaneDistance(before, w);
        turn.centre = {turn.tp1.x - side * (w.y - before.y), turn.tp1.y + side * (w.x - before.x)};
    }
}

void ZrRoutePath::AddLeg(ZrRouteLeg leg)
{
    const auto from = static_cast<std::size_t>(leg.from);
    const auto to = static_cast<std::size_t>(leg.to);
    const ZrRouteTurn& behind = m_turns[from];
    const ZrRouteTurn& turn = m_turns[to];
    const bool turned = behind.state == ZrRouteTurn::eTurns;
    const bool turns = turn.state == ZrRouteTurn::eTurns;

    ZrPathPiece line;
    line.leg = static_cast<int>(m_legs.size());
    line.from = turned ? behind.tp2 : m_points[from];
    line.to = turns ? turn.tp1 : m_points[to];
    line.length = Distance(line.from, line.to);
    leg.direct = Distance(m_points[from], m_points[to]);
    // Turns that overlap within the tolerance leave nothing between them.
    const double rest = PlaneDistance(m_points[from], m_points[to]) - PlaneDistance(m_points[from], line.from)
        - PlaneDistance(line.to, m_points[to]);
    leg.straight = rest <= 0.0 ? 0.0 : line.length;
    leg.arc = turns ? turn.radius * std::fabs(turn.deflection) : 0.0;
    leg.length = leg.straight + leg.arc;
    leg.duration = leg.length / leg.speed;
    leg.q = m_q;

    line.q = m_q;
    if (leg.straight > 0.0) {
        m_pieces.push_back(line);
        m_q += leg.straight;
    }
    if (leg.arc > 0.0) {
        ZrPathPiece arc = line;
        arc.isArc = true;
        arc.from = turn.tp1;
        arc.to = turn.tp2;
        arc.centre = turn.centre;
        arc.radius = PlaneDistance(turn.centre, turn.tp1);
        arc.start = std::atan2(turn.tp1.y - turn.centre.y, turn.tp1.x - turn.centre.x);
        arc.sweep = turn.deflection;
        arc.length = leg.arc;
        arc.q = m_q;
        m_pieces.push_back(arc);
        m_q += leg.arc;
    }
    for (Totals* totals : {&m_total, &m_totals.at(static_cast<std::size_t>(leg.type))}) {
        totals->length += leg.length;
        totals->duration += leg.duration;
    }
    m_legs.push_back(leg);
}

ZrGeoPoint ZrRoutePath::At(double q) const
{
    if (m_pieces.empty() || std::isnan(q))
        return {};
    const auto behind = std::upper_bound(
        m_pieces.begin(), m_pieces.end(), q, [](double a, const ZrPathPiece& piece) { return a < piece.q; });
    const ZrPathPiece& piece = behind == m_pieces.begin() ? *behind : *(behind - 1);
    return m_frame.ToGeo(piece.At(std::clamp((q - piece.q) / piece.length, 0.0, 1.0)));
}

std::vector<ZrPathSample> ZrRoutePath::Sample(double step) const
{
    const double least = m_q / MaxSamples;
    std::vector<ZrPathSample> samples;
    const auto add = [&](const ZrPathPiece& piece, double fraction) {
        const ZrLocalPoint local = piece.At(fraction);
        samples.push_back({m_frame.ToGeo(local), local, piece.q + fraction * piece.length, piece.leg});
    };
    const auto unknown = [this](int leg) { return std::isnan(m_legs[static_cast<std::size_t>(leg)].length); };
    int last = -1; // leg of the sample before
    for (const ZrPathPiece& piece : m_pieces) {
        int gap = last + 1;
        while (gap < piece.leg && !unknown(gap))
            ++gap;
        const bool isGap = last >= 0 && gap < piece.leg;
        if (isGap)
            samples.push_back({{}, {NaN, NaN}, piece.q, gap});
        if (isGap || last < 0)
            add(piece, 0.0);
        last = piece.leg;
        const double parts
            = step > 0.0 ? std::max(1.0, std::ceil(piece.length / std::max(step, least))) : 1.0;
        const int count = static_cast<int>(parts); // at most MaxSamples
        for (int part = 1; part <= count; ++part)
            add(piece, static_cast<double>(part) / parts);
    }
    return samples;
}

std::vector<std::vector<ZrGeoPoint>> ZrRoutePath::LegLines(double arcStep) const
{
    const double step = arcStep > 0.0 ? std::max(arcStep, leastArcStep) : usualArcStep;
    std::vector<std::vector<ZrGeoPoint>> lines(m_legs.size());
    for (const ZrPathPiece& piece : m_pieces) {
        auto& line = lines[static_cast<std::size_t>(piece.leg)];
        const int steps
            = piece.isArc ? std::max(1, static_cast<int>(std::ceil(std::fabs(piece.sweep) / step))) : 1;
        for (int i = line.empty() ? 0 : 1; i <= steps; ++i)
            line.push_back(m_frame.ToGeo(piece.At(static_cast<double>(i) / steps)));
    }
    return lines;
}
