#pragma once

#include "ZrKit/planning/ZrLocalFrame.h"

/// What a `ZrRoutePath` makes of the turn radius of a waypoint. Only in state `eTurns` the path has an arc;
/// otherwise it goes through the waypoint.
struct ZrRouteTurn
{
    enum eState : int
    {
        eNoTurn, ///< no radius, the first or last waypoint, or a leg of no or unknown length beside it
        eTurns, ///< fits its legs
        eBeyondLeg, ///< needs more than one of its legs
        eOverlaps, ///< needs, together with the turn at the other end, more than one of its legs
        eDoublesBack, ///< the way goes back where it came from, so that no circle touches both legs
    };

    eState state = eNoTurn;
    bool overlapsNext = false; ///< state is `eOverlaps`, and it does so on the leg behind it
    double radius = 0.0; ///< |r|, metres on the earth
    double deflection = 0.0; ///< change of direction, radians, positive to the left
    double reach = 0.0; ///< metres on the earth from the waypoint to either tangent point
    ZrLocalPoint tp1; ///< where the arc begins
    ZrLocalPoint tp2; ///< where it ends
    ZrLocalPoint centre;
};
