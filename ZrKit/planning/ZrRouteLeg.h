#pragma once

/// What decides the speed on a leg: the speed type of the waypoint where it begins.
enum eRouteSpeed : int
{
    eRouteSpeedInherited = 0, ///< the speed goes on; at the beginning it is that of the route
    eRouteSpeedSlow = 1, ///< `ZrWpts::s_msSlow`
    eRouteSpeedMedium = 2, ///< `ZrWpts::s_msMedium`
    eRouteSpeedFast = 3, ///< `ZrWpts::s_msFast`
    eRouteSpeedOwn = 4, ///< `ZrWpt::speed`
};

/// A leg of a `ZrRoutePath`: from where the turn at one waypoint ends to where that at the next one ends,
/// just as `ZrWpt::q` counts. Metres on the earth, seconds, m/s; NaN where an end has no valid position.
struct ZrRouteLeg
{
    int from = 0; ///< index of the waypoint where it begins
    int to = 0; ///< index of the waypoint where it ends
    double direct = 0.0; ///< from waypoint to waypoint
    double straight = 0.0; ///< between the turns
    double arc = 0.0; ///< of the turn at its end
    double length = 0.0; ///< of straight and arc
    double q = 0.0; ///< length of the path before it
    double speed = 0.0; ///< NaN when it is not a positive number
    double duration = 0.0; ///< NaN without speed
    eRouteSpeed type = eRouteSpeedInherited; ///< what its first waypoint says
    eRouteSpeed source = eRouteSpeedInherited; ///< what the speed comes from; inherited: from the route
};
