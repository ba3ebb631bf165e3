#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrWptType.h"

#include <QString>

/// What all survey patterns have in common: the order in which their lines are run, the turns between them,
/// and what their waypoints carry.
///
/// "Left", "right", "near" and "far" are seen along the heading of the pattern, from its near end.
struct ZR_KIT_EXPORT ZrSurveySettings
{
    /// The order of the lines. Lines are numbered from the side of the entry corner; directions alternate
    /// from one line to the next that is run.
    enum eOrder : int
    {
        Next, ///< 1, 2, 3, 4 …: adjacent lines (boustrophedon)
        EveryOther, ///< 1, 3, 5 … and back 6, 4, 2: skip-line, the skipped ones on the way back
        EvenThenOdd, ///< 2, 4, 6 … and then 1, 3, 5 …: interlaced, in two passes across the area
        Racetrack ///< 1, n, 2, n + 1 …: ovals just wide enough for two turn radii, where there are lines
                  ///< enough
    };

    /// The corner at which the first line begins. `EvenThenOdd` begins at the second line from there.
    enum eEntry : int
    {
        NearLeft,
        NearRight,
        FarLeft,
        FarRight
    };

    eOrder order = Next;
    eEntry entry = NearLeft;
    double overshoot = 0.0; ///< metres that each line is run beyond both of its ends, 0 to 10,000
    double turnRadius
        = 0.0; ///< metres, 0 to 10,000; 0 for a vehicle that turns on the spot: no turn waypoints

    /// Whether a loop leads to the next line where that lies closer than two turn radii. Without it such a
    /// turn is left to the vehicle; a finding tells of it in both cases.
    bool loopTurns = true;

    eZrWptType type = eZrWptBlue; ///< kind of the waypoints, which gives them their colour
    int spdType = 0; ///< of the waypoints: 0 inherit, 1 slow, 2 medium, 3 fast, any other `speed`
    double speed = 0.0; ///< of the waypoints, m/s, 0 or more
    int zType = 0; ///< of the waypoints: kind of `z`, as the application has it
    double z = 0.0; ///< of the waypoints: depth or altitude, by `zType`
    double alt = 0.0; ///< of the waypoints: altitude, metres

    /// What is wrong with these settings, a sentence; empty when nothing is.
    QString Problem() const;

    /// A sentence when \p value is not within 0 and \p most, both included; else empty. \p what begins it.
    static QString RangeProblem(const QString& what, double value, double most);

    /// A sentence when \p spacing is no usable distance between lines: 0.01 m or more; else empty. \p what
    /// begins it.
    static QString SpacingProblem(const QString& what, double spacing);
};
