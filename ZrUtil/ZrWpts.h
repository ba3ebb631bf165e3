#pragma once

#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrLstMgd.h"
#include "ZrUtil/ZrWpt.h"
#include "ZrUtil/ZrWptType.h"

#include <QString>

class ZrXmlSet;

extern template class ZR_UTIL_EXPORT ZrLstMgd<ZrWpt>;

/// A mission route, or a set of markers: waypoints in order, with the settings that concern all of them.
///
/// The list owns the waypoints. `Add`, `Delete`, `Reverse` and loading by `SyncXml` recompute what depends on
/// the order and the positions; who edits waypoints in place calls `Recalc(true)` and `UpdatePseudo`.
///
/// Grid positions are all in the UTM zone of the first waypoint. `CalcXY` and `LL2Segment` move the zone of
/// the process (`ZrUnits::utm`), and so does all that calls them: routes belong to the user-interface thread.
///
/// Nothing is reported; degenerate geometry (no leg, legs of no length, a path that doubles back) is handled
/// as each function says, and NaN positions give NaN results.
///
/// \code
/// ZrWpts route;
/// route.linked = true;
/// route.Add(50.10, -4.20, eZrWptBlue, ZrWpts::eAddTail);
/// route.Add(50.11, -4.20, eZrWptBlue, ZrWpts::eAddTail);
/// const double metres = route.CalcRange();
/// \endcode
class ZR_UTIL_EXPORT ZrWpts : public ZrLstMgd<ZrWpt>, public zr::IPersistable
{
public:
    using eZrWptType = ::eZrWptType;

    /// Where `Add` puts a waypoint.
    enum eAdd : int
    {
        eAddHead = 0, ///< before all others
        eAddTail = 1, ///< behind all others
        eAddLeg = 2, ///< into the leg nearest to it
    };

    QString prefix; ///< prefix of the names on this route
    bool linked = false; ///< the points form a path to be run; false for a set of markers
    bool closed = false; ///< the path returns to its start
    int speedType = 0; ///< speed of the route: 1 slow, 2 medium, 3 fast, any other `speed`; not stored
    double speed = 0.5; ///< speed of the route, m/s

    static float s_msSlow; ///< the slow speed of all routes, m/s, 0.25
    static float s_msMedium; ///< the medium speed of all routes, m/s, 0.5
    static float s_msFast; ///< the fast speed of all routes, m/s, 1.0

    ZrWpts() = default;

    /// Copies the waypoints, which keep their UUIDs, and the fields. The virtual functions of derived classes
    /// take no part.
    ZrWpts(const ZrWpts& other);
    ZrWpts& operator=(const ZrWpts& other);

    /// Adds a waypoint at a position in degrees, with a `z` of 0, in the colour of its kind.
    ///
    /// \p where is an `eAdd`. An empty list takes it at the tail, whatever \p where says; `eAddLeg` adds it
    /// at the tail, too, when there is no leg. With any other value the waypoint stays out of the list and
    /// belongs to the caller. Labels and route are recomputed in every case. Returns the new waypoint.
    ZrWpt* Add(double lat, double lng, eZrWptType type, int where);

    /// Removes the waypoint, if it is in the list; labels and route are recomputed in both cases.
    void Delete(ZrWpt* wpt);

    /// Recomputes grid positions, turns, speeds and distances along the route.
    ///
    /// With \p force false a distance `q` that is not 0 is kept, and those behind it count from it.
    ///
    /// `q` of a waypoint that turns is at its second tangent point: the length of the arc is added to it as
    /// |r| · `rit`, with the sign of `rit`.
    void Recalc(bool force);

    /// Chooses the zone of the first waypoint and sets `x`, `y` of all.
    void CalcXY();

    /// Computes the rounded turns from the grid positions. The radius of the first and of the last waypoint
    /// becomes 0. A turn of radius 0 is cleared; next to a leg of no length, and where the path doubles back
    /// on itself, the former turn stays.
    void CalcTangentPoints();

    /// Total length of the legs in metres on the sphere of `ZrUtil::LL2LLRng`; 0.0 below two points.
    double CalcRange() const;

    /// Total time in seconds: −1.0 when the speed of the route is 0 or below, 0.0 for an empty list.
    double CalcDuration() const;

    /// Widens the box to hold all positions, in degrees; with \p init it starts from the first waypoint.
    /// Returns the number of waypoints.
    int GetArea(double& minLat, double& minLng, double& maxLat, double& maxLng, bool init) const;

    /// Means of latitude and longitude, in degrees. Returns the number of waypoints; 0 leaves both as they
    /// are.
    int GetCentre(double& lat, double& lng) const;

    /// Position in the list of the waypoint with the smallest (Δlat)² + (Δlng)², the earlier one of equals;
    /// null while empty. Waypoints without a position (NaN) come last.
    ZrListPos* NearestTo(double lat, double lng) const;

    /// The first waypoint behind \p pos at another latitude or longitude; null if there is none.
    ZrListPos* FollowingUnique(ZrListPos* pos) const;

    /// The first waypoint before \p pos, going backward, at another latitude or longitude; null if there is
    /// none.
    ZrListPos* PrecedingUnique(ZrListPos* pos) const;

    /// The leg nearest to a position in degrees.
    ///
    /// \return −1 before the first waypoint, 0 on the leg from \p from to \p to, 1 beyond the last one. Where
    /// there is no leg, \p from is null and \p to the waypoint that there is, if any.
    int LL2Segment(double lat, double lng, ZrWpt*& from, ZrWpt*& to) const;

    /// Reverses the order of the waypoints and recomputes the route; the labels stay with their waypoints.
    void Reverse();

    /// Makes the labels anew: "Start Mission", "Wpt: " 1 … and "Finish Mission" on an open route, "Wpt: " 0 …
    /// on a closed one, "Mkr: " 1 … where the points are not linked.
    virtual void UpdatePseudo();

    /// Binds "prefix", "linked", "closed", "speed", the three speeds of all routes ("SlowSpeed",
    /// "MediumSpeed", "FastSpeed") and the array "waypoints". On loading the waypoints are those of the
    /// array, with the grid positions and turns that they were stored with; without the key they stay.
    void settings(zr::ZrSetModule& module) override;

    /// Stores the waypoints as the objects "Wpt 0", "Wpt 1", … of type "Waypoint", or loads those that the
    /// set holds, in their order, and recomputes the route. An object "No Data" is ignored. Waypoints beyond
    /// their number are removed; those within it are loaded over.
    void SyncXml(ZrXmlSet& set);

private:
    void CopyFrom(const ZrWpts& other);
};
