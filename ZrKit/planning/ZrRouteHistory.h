#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"
#include "ZrUtil/ZrWptType.h"

#include <QString>

#include <functional>
#include <memory>
#include <vector>

class ZrWpt;
class ZrWpts;
struct ZrPlanAreas;

/// Undo and redo for a route, and for the areas of its plan.
///
/// \code
/// ZrRouteHistory history(route);
/// history.Move(wpt, 50.1, -4.2); // on every step of a drag
/// history.CloseMove();           // at its end
/// undoAction->setText("Undo " + history.UndoName()); // "Move waypoint Wpt: 3"
/// history.Undo();
/// \endcode
///
/// Edits go through this class, or are made on the route itself and then recorded with `Record`; what was
/// edited without is recorded as "Change route" before the next edit, undo or redo, so that nothing gets
/// lost. Edits made here recompute route and labels, which moves the zone of the process as `ZrWpts::Recalc`
/// does.
///
/// After every step the history keeps the whole route, member by member, computed ones included; waypoints
/// that a step left alone are shared with the step before. Undo and redo recompute nothing. A waypoint that
/// is on the route before and after (by its UUID) stays the same object, so that pointers to it remain good;
/// the others are deleted and made anew. Members of classes derived from `ZrWpts` and the speed presets take
/// no part.
///
/// Areas, where the history is given some, are part of every step: what is said of the route holds for both.
///
/// The route and the areas are borrowed and must outlive the history. One thread at a time, that of the
/// route.
class ZR_KIT_EXPORT ZrRouteHistory
{
public:
    /// When one of them is exceeded the oldest steps are forgotten; the last one always remains.
    struct Limits
    {
        int steps = 200;
        i64 bytes
            = i64{128} * 1024 * 1024; ///< for what steps changed, besides one copy of the route; estimated
    };

    explicit ZrRouteHistory(ZrWpts& route);
    ZrRouteHistory(ZrWpts& route, Limits limits);
    ZrRouteHistory(ZrWpts& route, ZrPlanAreas& areas);
    ZrRouteHistory(ZrWpts& route, ZrPlanAreas& areas, Limits limits);
    ~ZrRouteHistory();
    ZrRouteHistory(const ZrRouteHistory&) = delete;
    ZrRouteHistory& operator=(const ZrRouteHistory&) = delete;

    /// \name State
    /// @{
    bool CanUndo() const; ///< what was edited without `Record` is not looked at
    bool CanRedo() const;
    QString UndoName() const; ///< of the step that `Undo` takes back; empty if there is none
    QString RedoName() const;
    int Steps() const; ///< that can be undone and redone together
    i64 Bytes() const; ///< as counted for the limit

    /// Whether the route is in the state of the last `SetClean`, or of the beginning. False for ever when
    /// that state was forgotten or can no longer be reached.
    bool IsClean() const;
    /// @}

    /// \name Edits
    /// Those that return false changed nothing and made no step, nor does one that leaves all as it was.
    /// @{

    /// As `ZrWpts::Add`. One that stays out of the list is no step.
    ZrWpt* Add(double lat, double lng, eZrWptType type, int where);

    /// False when it is not on the route.
    bool Delete(ZrWpt* wpt);

    /// Several moves of one waypoint in a row are one step until `CloseMove`, another edit, undo, redo or
    /// `SetClean`; none is left when it is back where it came from.
    bool Move(ZrWpt* wpt, double lat, double lng);
    void CloseMove();

    /// Puts the waypoint at \p index, from 0. False when either is not on the route.
    bool Reorder(ZrWpt* wpt, int index);

    void Reverse();

    /// Calls \p edit for the waypoint. \p what is what the menu calls it: "speed" makes "Change speed of Wpt:
    /// 3".
    bool Change(ZrWpt* wpt, const QString& what, const std::function<void(ZrWpt&)>& edit);

    /// Calls \p edit for the route, for its settings or any other change: "Change speed of the route".
    void ChangeRoute(const QString& what, const std::function<void(ZrWpts&)>& edit);

    /// Calls \p edit for the areas; \p name is that of the step. False when they are the same afterwards, or
    /// when the history has none.
    bool ChangeAreas(const QString& name, const std::function<void(ZrPlanAreas&)>& edit);

    /// Inserts copies before the waypoint at \p index; at the end for the number of waypoints. The name of
    /// the step is "Insert pattern", or that with \p name.
    bool InsertPattern(const std::vector<ZrWpt>& points, int index, const QString& name = QString());

    /// Makes a step of what was done to the route outside. False when nothing was.
    bool Record(const QString& name);
    /// @}

    /// \name Operations
    /// @{
    bool Undo(); ///< false when there is nothing to undo
    bool Redo();
    void SetClean(); ///< the route was saved
    void Reset(); ///< another route was loaded: forgets all steps; the state is clean
    /// @}

private:
    struct State;

    ZrRouteHistory(ZrWpts& route, ZrPlanAreas* areas, Limits limits);
    bool RecordOutside();
    bool Push(const QString& name);
    bool PushMove(const QString& name, const ZrWpt& wpt);
    State Capture(const State* before) const;
    bool IsSame(const State& state) const;
    void Restore(const State& state);
    void Forget();
    void Recompute();
    bool IsOnRoute(const ZrWpt* wpt) const;

    ZrWpts& m_route;
    ZrPlanAreas* m_areas; ///< null for none
    Limits m_limits;
    std::vector<State> m_states; ///< never empty; each is what its step made of the one before
    std::size_t m_now = 0; ///< index of the state that the route has
    int m_clean = 0; ///< index of the clean state, −1 for none
    const ZrWpt* m_moving = nullptr; ///< whose next move is still part of the last step; null for none
};
