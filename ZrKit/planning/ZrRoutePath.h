#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/planning/ZrPathPiece.h"
#include "ZrKit/planning/ZrRouteLeg.h"
#include "ZrKit/planning/ZrRouteSpeeds.h"
#include "ZrKit/planning/ZrRouteTurn.h"

#include <array>
#include <vector>

class ZrWpts;

/// A place on a path.
struct ZrPathSample
{
    ZrGeoPoint position; ///< not valid in a gap
    ZrLocalPoint local;
    double q = 0.0; ///< length of the path up to it, metres
    int leg = 0;
};

/// The way that a vehicle makes along a route: straights and turn arcs in order, with true lengths and
/// durations.
///
/// \code
/// const ZrRoutePath path(route);
/// const double metres = path.Length();
/// const double slowly = path.Total(eRouteSpeedSlow).duration;
/// \endcode
///
/// Calculated from the positions, radii and speeds of the waypoints alone, in a local frame on WGS 84; what
/// the route computed before (`x`, `y`, `q`, the turn) is not looked at, and the projection of the process
/// stays untouched. Lengths are metres on the earth, free of the scale of the projection: true to 1e-6 up to
/// 300 km east or west of the middle, to 1e-3 within 20 degrees of longitude, to 3e-3 at `MaxSpan`.
///
/// Differences to the functions of `ZrWpts`, which measure otherwise:
/// - `CalcRange` and `CalcDuration` sum the legs from waypoint to waypoint on a sphere and leave out the leg
///   that closes a closed route; the path runs along the arcs and includes that leg.
/// - An arc counts |r| · |`rit`| metres, to whichever side it turns; `ZrWpt::q` takes the sign of `rit`
/// along.
/// - A turn that does not fit its legs is no arc: the path goes through the waypoint (`ZrRouteTurn`). Turns
/// may
///   overlap by `Tolerance`, so that two of them can share a leg of the length that both need.
/// - Speeds are those of `CalcDuration` (an own speed of 0 or below is taken as inherited); the preset of
///   the route counts, and legs with a speed of their own need none of the route.
///
/// The first and the last waypoint never turn, also on a closed route. Legs to waypoints without valid
/// position have lengths of NaN and no pieces; totals are NaN then. So it is for all legs when `IsTooWide`.
///
/// A value that does not refer to the route. Any thread, as long as no other one changes the route meanwhile.
/// The speed presets are those of the process, unless given; in a thread of its own they are to be given.
class ZR_KIT_EXPORT ZrRoutePath
{
public:
    static constexpr double Tolerance = 0.05; ///< metres by which turns may overlap
    static constexpr double MaxSpan = 30.0; ///< degrees of longitude on either side of the middle
    static constexpr double MaxLatitude = 89.0; ///< degrees
    static constexpr int MaxSamples = 1000000; ///< besides the ends of the pieces

    struct Totals
    {
        double length = 0.0; ///< metres
        double duration = 0.0; ///< seconds
    };

    explicit ZrRoutePath(const ZrWpts& route, const ZrRouteSpeeds& speeds = {});

    const ZrLocalFrame& Frame() const { return m_frame; }

    const std::vector<ZrLocalPoint>& Points() const { return m_points; } ///< waypoints; NaN without position

    const std::vector<ZrRouteLeg>& Legs() const { return m_legs; }

    const std::vector<ZrRouteTurn>& Turns() const { return m_turns; } ///< one for each waypoint

    const std::vector<ZrPathPiece>& Pieces() const { return m_pieces; } ///< none of length 0

    /// Whether a valid position is farther away than `MaxSpan` or `MaxLatitude`.
    bool IsTooWide() const { return m_tooWide; }

    double Length() const { return m_total.length; } ///< metres

    double Duration() const { return m_total.duration; } ///< seconds; NaN if a leg has no speed

    /// Length and duration of the legs whose first waypoint has that type of speed.
    Totals Total(eRouteSpeed type) const { return m_totals.at(static_cast<std::size_t>(type)); }

    /// Metres on the earth from one point of the frame straight to another.
    double Distance(ZrLocalPoint a, ZrLocalPoint b) const;

    /// The place \p q metres along the pieces; below 0 the first place, beyond the end the last one. Not
    /// valid when \p q is NaN or there is no piece.
    ZrGeoPoint At(double q) const;

    /// Places along the pieces: both ends of each, and between them as many as make distances of at most
    /// \p step metres. A step that is not positive gives the ends only; one that would make more than
    /// `MaxSamples` is enlarged. A sample that is not valid stands for legs that are not known.
    std::vector<ZrPathSample> Sample(double step) const;

    /// The path of each leg as a line to be drawn: from the end of one turn to that of the next, with a place
    /// every \p arcStep radians of an arc at most. Empty for a leg without length; 5 degrees for a step that
    /// is not above 0.
    std::vector<std::vector<ZrGeoPoint>> LegLines(double arcStep = 0.0) const;

private:
    void Project(const std::vector<ZrGeoPoint>& positions);
    void CalcTurns(const std::vector<double>& radii);
    void AddLeg(ZrRouteLeg leg);
    double ScaleAt(double x) const;

    ZrLocalFrame m_frame;
    double m_radius; ///< of the earth at the origin, metres
    bool m_tooWide = false;
    std::vector<ZrLocalPoint> m_points;
    std::vector<ZrRouteLeg> m_legs;
    std::vector<ZrRouteTurn> m_turns;
    std::vector<ZrPathPiece> m_pieces;
    double m_q = 0.0; ///< length of the pieces
    Totals m_total;
    std::array<Totals, 5> m_totals;
};
