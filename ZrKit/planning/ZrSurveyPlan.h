#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrSurveyFinding.h"
#include "ZrKit/planning/ZrSurveyLine.h"
#include "ZrKit/planning/ZrSurveySettings.h"
#include "ZrKit/planning/ZrSurveyWaypoint.h"

#include <QUuid>

#include <vector>

class ZrWpt;
class ZrWpts;

/// A survey as planned: lines in the order in which they are run, and the waypoints that lead along them.
class ZR_KIT_EXPORT ZrSurveyPlan
{
public:
    double heading = 0.0; ///< degrees true, 0 to below 360; of the pattern, or of the guide's first leg
    std::vector<ZrSurveyLine> lines;
    std::vector<ZrSurveyWaypoint> waypoints;
    std::vector<ZrSurveyFinding> findings;
    double lineLength = 0.0; ///< metres of all lines, overshoot included
    double pathLength = 0.0; ///< metres from waypoint to waypoint, turns not rounded
    ZrSurveySettings settings; ///< what the waypoints carry

    /// Appends the waypoints to a route, all with one fresh `gridId`, and recomputes the route. Its other
    /// settings (`linked` among them) stay as they are. Returns the id; the null id, with the route
    /// unchanged, without waypoints. On the thread of routes, see `ZrWpts`.
    QUuid AppendTo(ZrWpts& route) const;

    /// The same waypoints by themselves, with nothing computed along them. Any thread.
    std::vector<ZrWpt> Waypoints() const;
};
