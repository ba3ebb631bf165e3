#pragma once

// What the tests of a plan on a map share.

#include "ZrKit/chart/ZrPlanChart.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrUtil/ZrWpts.h"

#include <QPointF>

#include <vector>

namespace plan_chart {

/// A right angle of 100 m on each side: from the south up to the corner, then east.
inline void Show(ZrPlanChart& chart, ZrMapView& view, double radius = 0.0)
{
    const ZrGeoPoint origin{50.3, -4.1};
    chart.SetOrigin(origin);
    const QPointF corner = chart.ToWorld(origin);
    ZrWpts route;
    route.linked = true;
    for (const QPointF& offset : {QPointF(0, -100), QPointF(0, 0), QPointF(100, 0)}) {
        const ZrGeoPoint place = chart.ToGeo(corner + offset);
        route.Add(place.lat, place.lng, eZrWptBlue, ZrWpts::eAddTail);
    }
    route.GetAt(route.FindIndex(1))->r = radius;
    route.Recalc(true);
    chart.SetRoute(route, ZrRoutePath(route));
    view.SetSize(400, 400);
    view.SetCentre(corner);
    view.SetScale(1.0);
}

/// Warnings at metres from the corner; \p error is the index of one that is an error.
inline std::vector<ZrRouteFinding> Findings(
    const ZrPlanChart& chart, const std::vector<QPointF>& offsets, int error = -1)
{
    const QPointF corner = chart.ToWorld({50.3, -4.1});
    std::vector<ZrRouteFinding> findings;
    for (const QPointF& offset : offsets) {
        ZrRouteFinding finding;
        finding.severity
            = static_cast<int>(findings.size()) == error ? ZrRouteFinding::eError : ZrRouteFinding::eWarning;
        finding.place = chart.ToGeo(corner + offset);
        findings.push_back(finding);
    }
    return findings;
}

} // namespace plan_chart
