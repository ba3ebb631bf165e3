#pragma once

// What every survey plan must keep, whatever made it. Positions are measured on a plane of their own.

#include "GeoPlane.h"
#include "ZrKit/planning/ZrSurveyPlan.h"
#include "ZrUtil/ZrUtil.h"
#include "ZrUtil/ZrWpts.h"

#include <QSet>
#include <QString>

#include <cmath>
#include <vector>

namespace survey {

/// Metres from a point to the nearest line; of one set only, if wanted.
inline double ToLines(ZrLocalPoint p, const ZrSurveyPlan& plan, const GeoPlane& plane, bool cross = false)
{
    double nearest = std::numeric_limits<double>::infinity();
    for (const ZrSurveyLine& line : plan.lines) {
        if (line.cross == cross)
            nearest = std::min(nearest, ToPolyline(p, plane.To(line.points)));
    }
    return nearest;
}

/// Lines, waypoints, names and lengths agree with each other. Empty when they do.
inline QString Inconsistency(const ZrSurveyPlan& plan, const GeoPlane& plane)
{
    double lines = 0.0;
    QSet<QString> names;
    for (const ZrSurveyLine& line : plan.lines) {
        if (line.points.size() < 2)
            return QStringLiteral("%1 has fewer than two points").arg(line.Name());
        if (names.contains(line.Name()))
            return QStringLiteral("there are two lines %1").arg(line.Name());
        names.insert(line.Name());
        const Plane points = plane.To(line.points);
        for (std::size_t i = 1; i < points.size(); ++i)
            lines += Apart(points[i - 1], points[i]);
    }
    double path = 0.0;
    std::size_t line = 0;
    std::size_t point = 0; // of the line, the next one expected
    int turn = 1;
    for (std::size_t i = 0; i < plan.waypoints.size(); ++i) {
        const ZrSurveyWaypoint& wpt = plan.waypoints[i];
        if (!wpt.position.IsValid())
            return QStringLiteral("%1 has no position").arg(wpt.name);
        if (i > 0)
            path += Apart(plane.To(plan.waypoints[i - 1].position), plane.To(wpt.position));
        if (wpt.line >= plan.lines.size())
            return QStringLiteral("%1 has no line").arg(wpt.name);
        const QString prefix = plan.lines[wpt.line].Name() + QLatin1Char(' ');
        const std::size_t count = plan.lines[wpt.line].points.size();
        QString name;
        if (wpt.role == ZrSurveyWaypoint::Turn) {
            name = prefix + QStringLiteral("T%1").arg(turn++);
            if (point != 0 || wpt.line + 1 != line)
                return QStringLiteral("%1 is not behind its line").arg(wpt.name);
            if (wpt.radius != plan.settings.turnRadius)
                return QStringLiteral("%1 has radius %2").arg(wpt.name).arg(wpt.radius);
        } else {
            turn = 1;
            if (wpt.line != line || wpt.position != plan.lines[line].points[point])
                return QStringLiteral("%1 is not on its line").arg(wpt.name);
            const bool start = point == 0;
            const bool end = point + 1 == count;
            const auto role = start ? ZrSurveyWaypoint::LineStart
                : end               ? ZrSurveyWaypoint::LineEnd
                                    : ZrSurveyWaypoint::LineBend;
            if (wpt.role != role)
                return QStringLiteral("%1 has role %2").arg(wpt.name).arg(wpt.role);
            name = prefix
                + (start      ? QStringLiteral("S")
                        : end ? QStringLiteral("E")
                              : QStringLiteral("B%1").arg(point));
            if ((start || end) && wpt.radius != 0.0)
                return QStringLiteral("%1 turns").arg(wpt.name);
            ++point;
            if (end) {
                point = 0;
                ++line;
            }
        }
        if (wpt.name != name)
            return QStringLiteral("%1 should be %2").arg(wpt.name, name);
    }
    if (line != plan.lines.size())
        return QStringLiteral("%1 of %2 lines have waypoints").arg(line).arg(plan.lines.size());
    if (std::fabs(lines - plan.lineLength) > 1e-3 + 1e-5 * lines)
        return QStringLiteral("length of lines %1, not %2").arg(plan.lineLength).arg(lines);
    if (std::fabs(path - plan.pathLength) > 1e-3 + 1e-5 * path)
        return QStringLiteral("length of path %1, not %2").arg(plan.pathLength).arg(path);
    return {};
}

/// Whether a route can run all turns of the plan: in the grid of the route, each leg has room for the arcs at
/// both of its ends. Two lines exactly two radii apart may lack what the scale of the grid takes. Empty when
/// it can.
inline QString TurnFlaw(const ZrSurveyPlan& plan)
{
    ZrWpts route;
    route.linked = true;
    plan.AppendTo(route);
    const ZrWpt* last = nullptr;
    double taken = 0.0;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt* wpt = route.GetNext(pos);
        if (last) {
            const double leg = std::hypot(wpt->x - last->x, wpt->y - last->y);
            const double tangent = wpt->r != 0.0 ? std::hypot(wpt->tp1X - wpt->x, wpt->tp1Y - wpt->y) : 0.0;
            if (taken + tangent > leg * 1.001 + 1e-3)
                return QStringLiteral("the leg to %1 is %2 m long, its turns need %3")
                    .arg(wpt->name)
                    .arg(leg)
                    .arg(taken + tangent);
        }
        taken = wpt->r != 0.0 ? std::hypot(wpt->tp2X - wpt->x, wpt->tp2Y - wpt->y) : 0.0;
        last = wpt;
    }
    return {};
}

} // namespace survey
