#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/planning/ZrSurveyPose.h"

#include <vector>

/// Corners that lead from the end of one survey line to the start of the next, each rounded by an arc of the
/// turn radius that touches both of its legs (as a route rounds its waypoints).
///
/// An arc of radius r that turns by θ begins r · tan(θ/2) before its corner and ends as far behind it. A turn
/// fits when these lengths fit into the legs, and the lines themselves stay straight over their whole length.
///
/// Between lines of opposite directions, two radii or more apart, two corners lead straight across. Closer
/// lines get a loop of four corners, three quarters of a circle to the side of the next line. Between other
/// directions the shortest of the ways with two corners is taken that run out straight, and run in straight,
/// by a multiple of the radius.
class ZR_KIT_EXPORT ZrSurveyTurn
{
public:
    enum eKind : int
    {
        Straight, ///< no corner: the next line continues this one, or the radius is 0
        Direct, ///< two corners
        Loop, ///< four corners
        TooTight ///< no way found: no corner
    };

    eKind kind = Straight;
    std::vector<ZrLocalPoint> corners;

    /// The turn of \p radius metres between two lines.
    static ZrSurveyTurn Between(const ZrSurveyPose& from, const ZrSurveyPose& to, double radius);

    /// Metres from a corner to both ends of its arc; infinite where the path doubles back.
    static double TangentLength(ZrLocalPoint before, ZrLocalPoint corner, ZrLocalPoint behind, double radius);
};
