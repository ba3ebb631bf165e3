#pragma once

#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/sonar/ZrSonarSpot.h"

#include <QString>

#include <limits>

/// Something seen in a side-scan line, with what was measured of it. A plain value; what was not measured is
/// NaN.
struct ZrSonarTarget
{
    QString name;
    QString remark;
    ZrSonarSpot spot; ///< where in the image
    double time = std::numeric_limits<double>::quiet_NaN(); ///< of the ping, seconds since the epoch
    ZrGeoPoint position;
    double slantRange = std::numeric_limits<double>::quiet_NaN(); ///< metres
    double groundRange = std::numeric_limits<double>::quiet_NaN(); ///< metres
    double altitude = std::numeric_limits<double>::quiet_NaN(); ///< of the sonar, metres
    double length = std::numeric_limits<double>::quiet_NaN(); ///< along the track, metres
    double width = std::numeric_limits<double>::quiet_NaN(); ///< across the track, metres
    double height = std::numeric_limits<double>::quiet_NaN(); ///< above the seabed, metres
};
