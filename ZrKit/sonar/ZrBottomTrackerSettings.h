#pragma once

#include <limits>

/// How `ZrBottomTracker` looks for the seabed. A plain value.
///
/// The defaults suit side-scan sonars of 100 to 1000 kHz some metres to some tens of metres above the seabed.
/// Where a number is NaN or out of its range the tracker takes the default instead.
struct ZrBottomTrackerSettings
{
    /// What lies nearer is not looked at, metres; at least 0. The outgoing pulse itself, a run of the loudest
    /// samples at the beginning, is left out in any case.
    double blanking = 0.5;

    double farthest = std::numeric_limits<double>::infinity(); ///< nor what lies farther, metres; above 0

    /// Over how many metres in front of an edge and behind it the brightness is taken, 0.05 to 50. Echoes
    /// shorter than half of it do not count as seabed.
    double window = 0.75;

    double contrast = 1.5; ///< amplitudes behind the edge over those in front of it, at least; above 1

    /// Metres between the edges of both sides that are taken for the same, above 0; two samples in any case.
    double sidesWithin = 0.5;

    double strength = 0.3; ///< that an echo must have to be taken, see `ZrBottomEcho`; 0 to 0.99

    /// By how much the altitude ordinarily differs from ping to ping at most, metres; above 0. What speaks
    /// against an edge grows with the square of the difference.
    double step = 0.3;

    /// For how many pings in a row something else may stand out, and the seabed be hidden, without the line
    /// following it, 1 to 1000; also the pings after which a line that leaps follows at the latest.
    int falseEcho = 10;

    /// How far the recorded altitude may be off before it counts against an edge: metres, or this share of
    /// it, whichever is more; at least 0. At twice that, an edge counts half as much; never less.
    double recordedWithin = 3.0;
    double recordedShare = 0.25; ///< at least 0

    int bridge = 10; ///< pings in a row without an edge that are filled in with a straight line, 0 to 1000
    int medianReach = 3; ///< pings on either side that the median takes in, 0 to 1000
    int meanReach = 3; ///< then the mean, likewise
};
