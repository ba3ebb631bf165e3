#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/recording/ZrLivePing.h"
#include "ZrKit/recording/ZrLiveState.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrSpan.h"

#include <QPointF>

#include <vector>

/// Follows the records of a vehicle: what is known of it now, where it went, and the pings that are new.
///
/// \code
/// tap.Take(type, format, time, zr::bytes_of(payload), now);
/// show(tap.State());
/// track.Append(tap.TakeTrail());
/// \endcode
///
/// Positions of navigation records go before fixes, as long as they are fresh: the vehicle's own solution is
/// smoother. One that a navigation record says to be repeated is taken only while no other is known. Depth
/// and altitude of navigation records go before those of soundings likewise. Positions outside ±90° and
/// ±180°, fixes of quality 0, values that are not finite and payloads that are damaged or of an unknown
/// format are left out.
///
/// Times named `now` are seconds of any clock that does not go back. One thread at a time.
class ZR_KIT_EXPORT ZrLiveTap
{
public:
    static constexpr std::size_t MostPings = 2048; ///< sides that wait; of more the oldest go
    static constexpr std::size_t MostTrail = 100000; ///< positions that wait, likewise

    /// Takes a record of \p time, seconds since the epoch, that came at \p now.
    void Take(CRecType type, u16 format, double time, zr::span<u8> payload, double now);

    /// Takes that a sound sentence came, whether or not a record is decoded from it: `ZrLiveState::lastData`.
    void TakeSentence(double now) { m_state.lastData = now; }

    const ZrLiveState& State() const { return m_state; }

    /// The positions since the last call, longitude as x and latitude as y, in degrees.
    std::vector<QPointF> TakeTrail();

    /// The pings since the last call.
    std::vector<ZrLivePing> TakePings();

    bool HasNews() const { return m_hasNews; } ///< since `TakeTrail`

    u64 LostPings() const { return m_lostPings; } ///< that nobody took in time

private:
    void TakeNavigation(zr::span<u8> payload, double now);
    void TakeFix(zr::span<u8> payload, double now);
    void TakeDepth(zr::span<u8> payload, double now);
    void TakeMotion(zr::span<u8> payload, double now);
    void TakePing(zr::span<u8> payload, double time, double now);
    bool TakePosition(double latitude, double longitude, double now);

    ZrLiveState m_state;
    ZrLiveValue m_navPosition; ///< 1, when navigation told a position
    ZrLiveValue m_navDepth; ///< likewise
    ZrLiveValue m_navAltitude;
    ZrLiveValue m_navHeading;
    std::vector<QPointF> m_trail;
    std::vector<ZrLivePing> m_pings;
    u64 m_lostPings = 0;
    bool m_hasNews = false;
};
