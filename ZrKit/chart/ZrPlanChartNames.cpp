// Names of plans, where no leg runs through them.

#include "ZrKit/chart/ZrPlanChart.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Design pixels that are kept free around a name: the scale is known by steps only.
constexpr double nameMargin = 2.0;
constexpr QMarginsF margins(nameMargin, nameMargin, nameMargin, nameMargin);
constexpr double hidden = 1e6; ///< counted as so many design pixels of legs
constexpr double infinity = std::numeric_limits<double>::infinity();

/// Of the line from \p a to \p b.
double LengthInside(const QPointF& a, const QPointF& b, const QRectF& box)
{
    const QPointF d = b - a;
    double from = 0.0;
    double to = 1.0;
    const auto clip = [&](double start, double way, double low, double high) {
        if (way == 0.0) {
            if (start < low || start > high)
                to = -1.0;
            return;
        }
        const double t0 = (low - start) / way;
        const double t1 = (high - start) / way;
        from = std::max(from, std::min(t0, t1));
        to = std::min(to, std::max(t0, t1));
    };
    clip(a.x(), d.x(), box.left(), box.right());
    clip(a.y(), d.y(), box.top(), box.bottom());
    return to > from ? (to - from) * std::hypot(d.x(), d.y()) : 0.0;
}

double LengthInside(const std::vector<std::vector<QPointF>>& ways, const QRectF& box)
{
    double length = 0.0;
    for (const auto& way : ways) {
        for (std::size_t i = 1; i < way.size(); ++i)
            length += LengthInside(way[i - 1], way[i], box);
    }
    return length;
}

/// What of a name is not to be seen there, design pixels: a pin hides more than any leg.
double HiddenLength(
    const std::vector<std::vector<QPointF>>& ways, const std::vector<QRectF>& pins, const QRectF& box)
{
    const QRectF room = box.marginsAdded(margins);
    const bool isUnderPin
        = std::any_of(pins.begin(), pins.end(), [&room](const QRectF& pin) { return pin.intersects(room); });
    return LengthInside(ways, room) + (isUnderPin ? hidden : 0.0);
}

} // namespace

/// Legs from \p first to before \p end, design pixels right and down from a place; those that may come within
/// \p reach of it.
ZrPlanChart::Ways ZrPlanChart::WaysFrom(
    const QPointF& origin, double reach, std::size_t first, std::size_t end) const
{
    Ways ways;
    const QPointF metres(reach * m_scale, reach * m_scale);
    const QPointF low = origin - metres;
    const QPointF high = origin + metres;
    for (std::size_t leg = first; m_scale > 0.0 && leg < std::min(end, m_legs.size()); ++leg) {
        const auto& [least, most] = m_legExtents[leg];
        if (least.x() > high.x() || least.y() > high.y() || most.x() < low.x() || most.y() < low.y())
            continue;
        ways.emplace_back();
        for (const QPointF& world : m_legs[leg])
            ways.back().push_back(Turned(world - origin));
    }
    return ways;
}

/// World metres as design pixels right and down.
QPointF ZrPlanChart::Turned(const QPointF& offset) const
{
    const double turn = qDegreesToRadians(m_rotation);
    const QPointF d = offset / m_scale;
    return {
        d.x() * std::cos(turn) - d.y() * std::sin(turn), -d.x() * std::sin(turn) - d.y() * std::cos(turn)};
}

/// The name of an area in the middle of it, or above or below the line that runs or the pin that stands
/// there.
void ZrPlanChart::PutBetween(ZrMapLabel& label)
{
    const QSizeF size = m_labelLayer.TextSize(label.text, label.size);
    constexpr int steps[] = {0, -1, 1, -2, 2, -3, 3, -4, 4}; // of half its height, the farthest last
    // Of a plan with thousands of legs a few come near: this is done for every area.
    const double reach = std::hypot(
        size.width() / 2.0 + nameMargin, (*std::rbegin(steps) + 1) * size.height() / 2.0 + nameMargin);
    const Ways ways = WaysFrom(label.position, reach, 0, m_legs.size());
    const std::vector<QRectF> pins = PinsFrom(label.position, reach);
    double least = infinity;
    for (const int step : steps) {
        const double y = step * size.height() / 2.0;
        const QRectF box(QPointF(-size.width() / 2.0, y - size.height() / 2.0), size);
        const double length = HiddenLength(ways, pins, box);
        if (!(length < least))
            continue;
        least = length;
        label.offset = QPointF(0.0, y);
    }
}

/// To the side of its waypoint where no leg runs through it and no pin stands; to the right before any other.
void ZrPlanChart::PutBeside(ZrMapLabel& label, std::size_t waypoint, double distance)
{
    struct Side
    {
        int x;
        int y; ///< down
    };

    constexpr Side sides[] = {{1, 0}, {1, -1}, {1, 1}, {-1, 0}, {-1, -1}, {-1, 1}, {0, -1}, {0, 1}};
    const QSizeF size = m_labelLayer.TextSize(label.text, label.size);
    const std::size_t first = waypoint > 2 ? waypoint - 2 : 0;
    const Ways ways = WaysFrom(m_points[waypoint], infinity, first, waypoint + 2);
    const std::vector<QRectF> pins
        = PinsFrom(m_points[waypoint], size.width() + size.height() + distance + nameMargin);
    double least = infinity;
    for (const Side& side : sides) {
        // Diagonally it comes as near as beside.
        const double away = side.x != 0 && side.y != 0 ? distance * 0.7 : distance;
        const QPointF offset(side.x * away, side.y * away);
        const auto along = [](double at, int way, double length) {
            return way > 0 ? at : way < 0 ? at - length : at - length / 2.0;
        };
        const QRectF box(
            QPointF(along(offset.x(), side.x, size.width()), along(offset.y(), side.y, size.height())), size);
        const double length = HiddenLength(ways, pins, box);
        if (!(length < least))
            continue;
        least = length;
        label.offset = offset;
        label.alignX = side.x > 0 ? ZrMapLabel::alignLeft
            : side.x < 0          ? ZrMapLabel::alignRight
                                  : ZrMapLabel::alignCentre;
        label.alignY = side.y > 0 ? ZrMapLabel::alignTop
            : side.y < 0          ? ZrMapLabel::alignBottom
                                  : ZrMapLabel::alignMiddle;
        if (length == 0.0)
            return;
    }
}
