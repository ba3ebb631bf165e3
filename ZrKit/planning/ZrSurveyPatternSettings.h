#pragma once

#include "ZrKit/planning/ZrSurveySettings.h"

#include <limits>

/// How an area is to be covered by lines.
struct ZrSurveyPatternSettings : ZrSurveySettings
{
    /// How far lines reach.
    enum eEnds : int
    {
        /// As far as any of the area lies abeam of them, on their side of the middle to the next line: all of
        /// it is within half a spacing (the larger one of two) of a line. Where the edge runs aslant the
        /// lines leave the area.
        Cover,
        Edge ///< to the edge: lines stay within the area, whose slanting edges are seen from farther away
    };

    double lineSpacing = 50.0; ///< metres from line to line, 0.01 or more

    /// Metres; above 0 the spacings are in turn `lineSpacing`, beginning at the entry corner, and this one,
    /// as side-scan surveys need it that see the gap below the sonar from the next line. 0: all are
    /// `lineSpacing`.
    double alternateSpacing = 0.0;

    /// Metres; above 0 a second set of lines with this spacing is run across the first one, its heading 90
    /// degrees to the right of it, beginning at the corner nearest to the end of the first set. 0: no such
    /// set.
    double crossSpacing = 0.0;

    /// Degrees true, any number of turns; NaN for along the longest side of the area, from 0 to below 180.
    /// True at the middle of the area: the lines are parallel on the ground, which meridians are not.
    double heading = std::numeric_limits<double>::quiet_NaN();

    eEnds ends = Cover;

    /// Metres that lines keep from the edge of the area, overshoot and turns excepted, 0 to 10,000. Above 0
    /// the lines end there, whatever `ends` says.
    double margin = 0.0;

    double minLength = 0.0; ///< metres; pieces of lines shorter than this (overshoot excepted) are left out
};
