#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrGeoPoint.h"

#include <QString>

#include <vector>

/// A survey line, in the direction in which it is run, with its overshoot.
struct ZR_KIT_EXPORT ZrSurveyLine
{
    int number = 0; ///< from 1 at the entry corner across; pieces of one line share it
    int piece = 0; ///< from 1 along the pattern's heading; 0 where the line is in one piece
    bool cross = false; ///< of the second set of a crosshatch, which has numbers of its own
    std::vector<ZrGeoPoint> points; ///< start and end; the bends of a corridor between them

    ZrGeoPoint Start() const { return points.front(); }

    ZrGeoPoint End() const { return points.back(); }

    /// "L3", "L3.2" for a piece, "X3" for a line across.
    QString Name() const;
};
