#include "ZrKit/planning/ZrSurveyTurn.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double slack = 1e-6; ///< metres, for what rounding makes of equal lengths

/// Legs are laid out for a radius this much larger: a route rounds its corners in the grid of a UTM zone,
/// where lengths differ by up to 1 in 1000 from those on the ground.
constexpr double gridReserve = 1.002;

/// The pose \p to as seen from a line end that lies at 0, 0 and looks along y.
class View
{
public:
    View(const ZrSurveyPose& from, const ZrSurveyPose& to)
        : m_from(from)
        , at(Seen({to.at.x - from.at.x, to.at.y - from.at.y}))
        , ahead(Seen(to.ahead))
    {
    }

    ZrLocalPoint Back(ZrLocalPoint p) const
    {
        return {m_from.at.x + p.x * m_from.ahead.y + p.y * m_from.ahead.x,
            m_from.at.y - p.x * m_from.ahead.x + p.y * m_from.ahead.y};
    }

private:
    ZrLocalPoint Seen(ZrLocalPoint p) const
    {
        return {p.x * m_from.ahead.y - p.y * m_from.ahead.x, p.x * m_from.ahead.x + p.y * m_from.ahead.y};
    }

    ZrSurveyPose m_from;

public:
    ZrLocalPoint at;
    ZrLocalPoint ahead;
};

double Distance(ZrLocalPoint a, ZrLocalPoint b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

/// Between opposite directions: straight across, or a loop.
ZrSurveyTurn TurnBack(const View& view, double radius)
{
    ZrSurveyTurn turn;
    const double side = view.at.x < 0.0 ? -1.0 : 1.0;
    const double apart = std::fabs(view.at.x);
    const double room = radius * gridReserve;
    if (apart + slack >= 2.0 * radius) {
        const double out = std::max(0.0, view.at.y) + room;
        turn.kind = ZrSurveyTurn::Direct;
        turn.corners = {view.Back({0.0, out}), view.Back({view.at.x, out})};
        return turn;
    }
    // Over the next line and beyond, up, back across it, and down: every leg has room for two arcs.
    const double out = room;
    const double top = std::max(out + 2.0 * room, view.at.y + room);
    const double wide = side * (apart + 2.0 * room);
    turn.kind = ZrSurveyTurn::Loop;
    turn.corners = {
        view.Back({0.0, out}), view.Back({wide, out}), view.Back({wide, top}), view.Back({view.at.x, top})};
    return turn;
}

ZrSurveyTurn TurnAcross(const View& view, double radius)
{
    constexpr int farthest = 16; ///< radii
    radius *= gridReserve;
    ZrSurveyTurn best;
    best.kind = ZrSurveyTurn::TooTight;
    double shortest = std::numeric_limits<double>::infinity();
    for (int i = 1; i <= farthest; ++i) {
        for (int j = 1; j <= farthest; ++j) {
            const double out = i * radius;
            const double in = j * radius;
            const ZrLocalPoint first{0.0, out};
            const ZrLocalPoint second{view.at.x - view.ahead.x * in, view.at.y - view.ahead.y * in};
            const double between = Distance(first, second);
            const double length = out + between + in;
            if (!(length < shortest) || between <= slack)
                continue;
            const ZrLocalPoint before{0.0, out - 1.0};
            const ZrLocalPoint behind{second.x + view.ahead.x, second.y + view.ahead.y};
            const double t1 = ZrSurveyTurn::TangentLength(before, first, second, radius);
            const double t2 = ZrSurveyTurn::TangentLength(first, second, behind, radius);
            if (t1 > out + slack || t2 > in + slack || t1 + t2 > between + slack)
                continue;
            shortest = length;
            best.kind = ZrSurveyTurn::Direct;
            best.corners = {view.Back(first), view.Back(second)};
        }
    }
    return best;
}

} // namespace

double ZrSurveyTurn::TangentLength(
    ZrLocalPoint before, ZrLocalPoint corner, ZrLocalPoint behind, double radius)
{
    const double ux = corner.x - before.x;
    const double uy = corner.y - before.y;
    const double vx = behind.x - corner.x;
    const double vy = behind.y - corner.y;
    const double product = std::hypot(ux, uy) * std::hypot(vx, vy);
    // tan(θ/2) = sin θ / (1 + cos θ)
    const double sine = std::fabs(ux * vy - uy * vx);
    const double cosine = ux * vx + uy * vy;
    if (product + cosine <= product * 1e-12)
        return std::numeric_limits<double>::infinity();
    return radius * sine / (product + cosine);
}

ZrSurveyTurn ZrSurveyTurn::Between(const ZrSurveyPose& from, const ZrSurveyPose& to, double radius)
{
    constexpr double parallel = 1e-6; ///< radians
    if (!(radius > 0.0))
        return {};
    const View view(from, to);
    const bool sameLine = std::fabs(view.at.x) <= 0.001 && view.at.y >= 0.0;
    if (sameLine && view.ahead.y > 0.0 && std::fabs(view.ahead.x) <= parallel)
        return {};
    if (view.ahead.y < 0.0 && std::fabs(view.ahead.x) <= parallel)
        return TurnBack(view, radius);
    return TurnAcross(view, radius);
}
