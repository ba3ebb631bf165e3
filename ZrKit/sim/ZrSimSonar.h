#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/sim/ZrSimSonarSettings.h"
#include "ZrKit/sim/ZrSimVehicleState.h"
#include "ZrKit/sonar/ZrSonarSide.h"

#include <memory>
#include <vector>

class ZrSimSeaFloor;

/// A side-scan sonar that looks at a simulated sea floor, to either side, square to the heading.
///
/// The floor is followed outwards in steps of three quarters of a sample. Of each step the part that no
/// nearer one hides gives an echo into the samples that its slant ranges cover:
///
///     power = backscatter · sin²(grazing angle) · length · beam(angle below the horizontal)
///
/// (Lambert's law), so the water column, the strong first echo below, the walls of targets that face the
/// sonar, their overlay, and shadows come by themselves. The roll of the vehicle tilts the beams. Amplitudes
/// are the root of the power, with speckle (the mean power of `looks` exponential echoes), the noise of the
/// water, which the gain of the receiver raises with range, and the end of the outgoing pulse. Sample i
/// covers the slant ranges from i to i + 1 sample lengths, nearest first, 16 bits.
///
/// Random numbers depend on seed, ping number and side alone. Settings out of range are put into it. Any
/// number of threads.
class ZR_KIT_EXPORT ZrSimSonar
{
public:
    /// \p floor is not null.
    ZrSimSonar(u64 seed, std::shared_ptr<const ZrSimSeaFloor> floor, const ZrSimSonarSettings& settings);

    /// One side of a ping.
    ZrPingRecord Ping(const ZrSimVehicleState& state, u32 number, eSonarSide side) const;

    /// Mean amplitudes of that side, without noise and speckle, by sample.
    std::vector<double> Echoes(const ZrSimVehicleState& state, eSonarSide side) const;

    /// Pings a second: as asked for, and as the way of the sound allows.
    double Rate() const;

    const ZrSimSonarSettings& Settings() const { return m_settings; } ///< as they are used

private:
    u64 m_seed;
    std::shared_ptr<const ZrSimSeaFloor> m_floor;
    ZrSimSonarSettings m_settings;
};
