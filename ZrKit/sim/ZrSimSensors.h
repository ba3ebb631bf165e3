#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/sim/ZrSimRandom.h"
#include "ZrKit/sim/ZrSimReading.h"
#include "ZrKit/sim/ZrSimSensorSettings.h"
#include "ZrKit/sim/ZrSimVehicleState.h"

/// The sensors of a simulated vehicle: its state with errors that belong to a seed.
///
/// Errors are normal. That of the position wanders, a Gauss-Markov process of 30 seconds, since those of
/// navigation systems do: one that jumps from reading to reading would make a zigzag of every track. A
/// dropout silences one sensor at a time: the position is held then, other values are NaN.
///
/// Every seed and sequence of states gives the same readings. One thread at a time.
class ZR_KIT_EXPORT ZrSimSensors
{
public:
    /// \p frame is that of the vehicle. Settings that are negative or no numbers count as 0.
    ZrSimSensors(u64 seed, const ZrLocalFrame& frame, const ZrSimSensorSettings& settings);

    ZrSimReading Read(const ZrSimVehicleState& state);

private:
    void Wander(double seconds);
    void Silence(ZrSimReading& reading);

    ZrLocalFrame m_frame;
    ZrSimSensorSettings m_settings;
    ZrSimRandom m_random;
    ZrSimRandom m_dropouts; ///< apart, lest they change the errors
    double m_east = 0.0; ///< error of the position, metres
    double m_north = 0.0;
    double m_time = 0.0;
    bool m_hasWandered = false;
    ZrGeoPoint m_lastPosition;
};
