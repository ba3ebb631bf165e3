#pragma once

/// The side of a side-scan sonar; also the sub-type of its items in a log.
enum eSonarSide : int
{
    sidePort = 0, ///< left of the vehicle
    sideStarboard = 1 ///< right of the vehicle
};
