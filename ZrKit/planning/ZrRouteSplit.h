#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrGeoPoint.h"

#include <QString>

#include <limits>
#include <memory>
#include <vector>

class ZrWpts;

/// Makes several routes of one that is too long for a single dive, and routes that go on where a dive was
/// broken off.
///
/// \code
/// ZrRouteSplit::Options options;
/// options.maxSeconds = 6 * 3600.0;
/// options.reserve = 0.2;
/// const ZrRouteSplit::Result dives = ZrRouteSplit::Split(route, options);
/// if (!dives.IsOk())
///     show(dives.error);
/// \endcode
///
/// Lengths and durations are those of `ZrRoutePath`, over the turn arcs. The routes made are open and
/// together run the path of the whole one, the leg that closes a closed route included: it ends at a copy of
/// the first waypoint. (A turn that has no room on the whole may fit its part.) Each has the settings of the
/// route, but begins with the speed that holds at its first point.
///
/// Waypoints are copied with all their properties and their UUID, so a waypoint at which one route ends and
/// the next one begins is in both; only radii are 0 at such ends. A point made on a leg has the properties of
/// the waypoint where the leg begins (depth, colour, pattern), no name, radius, action or time, inherits its
/// speed, and has a new UUID, the same one in both routes. Labels are made anew; `x`, `y`, `q` and turns are
/// not: call `Recalc(true)` before use.
///
/// Nothing is thrown for bad input: there are no routes then, and `error` is a sentence. Any thread, as long
/// as no other one changes the route or the speed presets meanwhile.
class ZR_KIT_EXPORT ZrRouteSplit
{
public:
    static constexpr double MinRun = 1.0; ///< metres that a cut keeps from the ends of its straight
    static constexpr int MaxRoutes = 1000;

    struct Options
    {
        double maxSeconds = std::numeric_limits<double>::infinity();
        double maxMetres = std::numeric_limits<double>::infinity();
        double reserve = 0.0; ///< share of both that stays unused, 0 ... below 1

        /// Each route begins and ends at the first waypoint of the whole: it goes straight from there (a copy
        /// with a new UUID) to where it takes up the run, and straight back. Both ways count, at the speed
        /// that holds there. Where the run itself ends at that place, nothing is added.
        bool returnToStart = false;

        /// Routes may end between waypoints, on a straight; an arc is never cut. Otherwise they end at
        /// waypoints.
        bool cutLegs = true;
    };

    struct Result
    {
        std::vector<std::unique_ptr<ZrWpts>> routes; ///< in the order of running
        QString error; ///< empty after success

        bool IsOk() const { return error.isEmpty(); }
    };

    /// Splits by endurance; at least one of the limits must be finite. Every route is as long as the limits
    /// allow, so the last one may be short.
    static Result Split(const ZrWpts& route, const Options& options);

    /// The rest of the route from a waypoint on, by its index from 0.
    static Result Resume(const ZrWpts& route, int index);

    /// The rest of a route that was interrupted at \p place, on the leg that begins at waypoint \p index: it
    /// begins with a point there, which need not lie on the leg, and goes on with the waypoint after \p
    /// index.
    static Result Resume(const ZrWpts& route, int index, ZrGeoPoint place);
};
