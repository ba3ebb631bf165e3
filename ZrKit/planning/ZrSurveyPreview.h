#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/planning/ZrPlanTotals.h"
#include "ZrKit/planning/ZrRouteCheck.h"
#include "ZrUtil/ZrWpts.h"

#include <vector>

class ZrSurveyPlan;
class ZrWpt;

/// A plan as it will be with survey lines in it: the way with its true turns, and what the whole comes to. It
/// is what `ZrRoutePath` and `ZrRouteCheck` say of the plan once the lines are inserted, to the last digit.
///
/// A plain value; made in any thread.
struct ZR_KIT_EXPORT ZrSurveyPreview
{
    /// Waypoints of a plan that is checked while it is only looked at: more would take seconds.
    static constexpr int MostChecked = 20000;

    /// The plan that the lines go into.
    struct Base
    {
        ZrWpts route;
        int index = 0; ///< of the waypoint before which they go; the number of waypoints for the end
        ZrRouteCheck::Options check; ///< what the plan is checked against; its `cancel` ends the whole work
    };

    struct Leg
    {
        std::vector<ZrGeoPoint> points;
        bool isLine = false; ///< else a turn, or a way to the lines or from them
    };

    std::vector<Leg> legs; ///< those that the plan has not yet; empty where they are not known
    double length
        = 0.0; ///< metres from the first waypoint of the lines to the last; NaN when it is not known
    ZrPlanTotals whole; ///< the plan with the lines

    /// Empty when it was cancelled.
    /// \param waypoints those of \p lines, as the route gets them
    static ZrSurveyPreview Of(
        const Base& base, const ZrSurveyPlan& lines, const std::vector<ZrWpt>& waypoints);
};
