#pragma once

#include "ZrKit/planning/ZrGeoPoint.h"

#include <QString>

#include <cstddef>

/// A waypoint of a survey.
struct ZrSurveyWaypoint
{
    enum eRole : int
    {
        LineStart,
        LineBend, ///< within a line of a corridor
        LineEnd,
        Turn ///< on the way to the next line
    };

    ZrGeoPoint position;
    eRole role = LineStart;
    std::size_t line = 0; ///< its index among the lines; for a turn that of the line before it
    double radius = 0.0; ///< turn radius, metres; 0 for none
    QString name; ///< "L1 S", "L1 B1", "L1 E" (start, bend, end); "L1 T1", "L1 T2" … in the turn behind it
};
