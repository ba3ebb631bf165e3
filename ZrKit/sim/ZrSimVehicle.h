#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/planning/ZrPathPiece.h"
#include "ZrKit/sim/ZrSimVehicleSettings.h"
#include "ZrKit/sim/ZrSimVehicleState.h"

#include <QString>

#include <memory>
#include <vector>

class ZrRoutePath;
class ZrSimSeaFloor;
class ZrWpts;

/// A vehicle that goes along a planned route, straights and turn arcs, over a sea floor.
///
/// \code
/// ZrSimVehicle vehicle(route, floor, {});
/// while (vehicle.IsRunning())
///     vehicle.Step(0.1);
/// if (!vehicle.Message().isEmpty()) … // it could not go to the end
/// \endcode
///
/// Steering: the wanted course is that of the path, less atan(off / lead), off being metres to starboard of
/// it and lead four seconds of way; the heading follows, by the current turned into it, at a limited rate.
/// Where the path has a corner that no arc rounds, the vehicle runs past it and comes back to the line.
///
/// Depth: a waypoint with `zType` 1 asks for `z` metres above the floor, one with another `zType` and `z`
/// above 0 for `z` metres of depth; all others keep the altitude of the settings. Between two waypoints the
/// wanted depth is blended. The least altitude goes before all.
///
/// Speed: that of the leg in the plan, through the water, at most `maxSpeed`.
///
/// It always ends: at the last waypoint, or with a message when for minutes it comes no closer to it, or is
/// carried off its line by more than `MaxOff`. Settings that are not finite or out of range are put into it.
///
/// A pure function of its arguments; one thread at a time. The route is read in the constructor only, as
/// `ZrRoutePath` does.
class ZR_KIT_EXPORT ZrSimVehicle
{
public:
    static constexpr double MaxStep = 60.0; ///< seconds; longer ones are cut to it
    static constexpr double MaxOff = 100.0; ///< metres, or four turn circles where they are larger

    /// \p floor is not null.
    ZrSimVehicle(const ZrWpts& route, std::shared_ptr<const ZrSimSeaFloor> floor,
        const ZrSimVehicleSettings& settings);

    /// Goes on for \p seconds; nothing happens when they are not above 0, or behind the end.
    void Step(double seconds);

    const ZrSimVehicleState& State() const { return m_state; }

    bool IsRunning() const { return m_running; }

    /// Why the vehicle could not begin, or could not go to the end: a sentence; empty otherwise.
    const QString& Message() const { return m_message; }

    const ZrLocalFrame& Frame() const { return m_frame; }

    double Length() const { return m_length; } ///< of the plan, metres

    const ZrSimVehicleSettings& Settings() const { return m_settings; } ///< as they are used

private:
    struct Piece
    {
        ZrPathPiece path;
        double length = 0.0; ///< metres of the plane
        double behind = 0.0; ///< metres of the plane that follow it
        double legFrom = 0.0; ///< share of the leg at its beginning
        double legTo = 1.0;
        double speed = 0.0; ///< m/s
        int from = 0; ///< waypoint where its leg begins
        int to = 0;
    };

    /// Where the vehicle is with respect to a piece.
    struct Place
    {
        double along = 0.0; ///< metres from its beginning
        double off = 0.0; ///< metres to the right of it
        double course = 0.0; ///< of the piece there, radians clockwise from grid north
        double curvature = 0.0; ///< 1/m, positive to the right
    };

    /// What a waypoint asks for.
    struct Level
    {
        bool isAltitude = true;
        double metres = 0.0;
    };

    QString Prepare(const ZrRoutePath& path);
    void Begin();
    void Advance(double dt);
    void Steer(const Place& place, double dt);
    void Dive(const Place& place, double dt);
    void Watch(const Place& place, double dt);
    Place PlaceOn(const Piece& piece) const;
    double WantedDepth(const Level& level, double floorDepth) const;
    void FillDerived();
    void End(const QString& message);

    ZrLocalFrame m_frame;
    std::shared_ptr<const ZrSimSeaFloor> m_floor;
    ZrSimVehicleSettings m_settings;
    std::vector<Piece> m_pieces;
    std::vector<Level> m_levels; ///< by waypoint
    double m_length = 0.0;
    std::size_t m_piece = 0;
    bool m_running = false;
    QString m_message;
    ZrSimVehicleState m_state;
    double m_heading = 0.0; ///< radians clockwise from grid north
    double m_wanted = 0.0; ///< likewise
    double m_course = 0.0; ///< over ground, likewise
    double m_rate = 0.0; ///< radians a second
    double m_bank = 0.0; ///< degrees of roll by turning
    double m_sink = 0.0; ///< m/s downwards
    double m_best = 0.0; ///< least distance to go so far, metres
    double m_since = 0.0; ///< seconds since it became smaller
};
