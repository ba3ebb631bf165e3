#pragma once

#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/planning/ZrLocalFrame.h"

/// Where a simulated vehicle is and what it does. A plain value.
struct ZrSimVehicleState
{
    double time = 0.0; ///< seconds since the start
    ZrLocalPoint at; ///< metres in the frame of the plan
    ZrGeoPoint position; ///< the same in degrees
    double heading = 0.0; ///< degrees from true north, 0 to 360
    double course = 0.0; ///< over ground, degrees from true north, 0 to 360
    double gridHeading = 0.0; ///< the heading from the north of the frame
    double speed = 0.0; ///< m/s through the water
    double groundSpeed = 0.0; ///< m/s over ground
    double depth = 0.0; ///< metres below the surface
    double altitude = 0.0; ///< metres above the sea floor, 0 or more
    double pitch = 0.0; ///< degrees, bow up positive
    double roll = 0.0; ///< degrees, starboard down positive
    double wantedHeading = 0.0; ///< degrees that it steers for, from true north
    double crossTrack = 0.0; ///< metres off the planned way, positive to starboard of it
    int waypoint = 0; ///< index of the waypoint that it goes to
    double toGo = 0.0; ///< metres along the plan
};
