#include "ZrKit/planning/ZrSurveyPreview.h"

#include "ZrKit/planning/ZrPlanDocument.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/planning/ZrSurveyPlan.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

/// Nothing is computed along the route: that is for the thread of routes.
void Insert(ZrWpts& route, int index, const std::vector<ZrWpt>& waypoints)
{
    ZrListPos* behind = route.FindIndex(index);
    for (const ZrWpt& waypoint : waypoints) {
        auto copy = std::make_unique<ZrWpt>(waypoint);
        if (behind)
            route.InsertBefore(behind, copy.get());
        else
            route.AddTail(copy.get());
        static_cast<void>(copy.release());
    }
}

bool IsOfLine(const ZrSurveyWaypoint& from)
{
    return from.role == ZrSurveyWaypoint::LineStart || from.role == ZrSurveyWaypoint::LineBend;
}

} // namespace

ZrSurveyPreview ZrSurveyPreview::Of(
    const Base& base, const ZrSurveyPlan& lines, const std::vector<ZrWpt>& waypoints)
{
    ZrWpts route = base.route;
    const int first = std::clamp(base.index, 0, route.GetCount());
    const int end = first + static_cast<int>(waypoints.size());
    Insert(route, first, waypoints);
    const auto isCancelled = [&base] { return base.check.cancel && *base.check.cancel; };
    if (isCancelled())
        return {};

    ZrSurveyPreview preview;
    const ZrRoutePath path(route, base.check.speeds ? *base.check.speeds : ZrRouteSpeeds());
    auto ways = path.LegLines();
    const auto isNew = [first, end](int waypoint) { return waypoint >= first && waypoint < end; };
    for (std::size_t i = 0; i < path.Legs().size(); ++i) {
        const ZrRouteLeg& leg = path.Legs()[i];
        const bool isWithin = isNew(leg.from) && leg.to == leg.from + 1 && isNew(leg.to);
        if (isWithin)
            preview.length += leg.length;
        if (!isNew(leg.from) && !isNew(leg.to))
            continue;
        const bool isLine = isWithin && IsOfLine(lines.waypoints[static_cast<std::size_t>(leg.from - first)]);
        preview.legs.push_back({std::move(ways[i]), isLine});
    }

    ZrPlanTotals& whole = preview.whole;
    whole.waypoints = route.GetCount();
    whole.lines = ZrPlanDocument::LinesOf(route);
    whole.length = path.Length();
    whole.duration = path.Duration();
    whole.isChecked = whole.waypoints <= MostChecked;
    if (isCancelled())
        return {};
    if (!whole.isChecked)
        return preview;
    for (const ZrRouteFinding& finding : ZrRouteCheck::Run(route, base.check)) {
        whole.errors += finding.severity == ZrRouteFinding::eError ? 1 : 0;
        whole.warnings += finding.severity == ZrRouteFinding::eWarning ? 1 : 0;
    }
    if (isCancelled())
        return {};
    return preview;
}
