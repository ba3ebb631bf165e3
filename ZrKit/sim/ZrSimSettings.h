#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sim/ZrSimSeaFloorSettings.h"
#include "ZrKit/sim/ZrSimSensorSettings.h"
#include "ZrKit/sim/ZrSimSonarSettings.h"
#include "ZrKit/sim/ZrSimTarget.h"
#include "ZrKit/sim/ZrSimVehicleSettings.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>

#include <vector>

/// Everything that a simulated survey depends on besides the plan. A plain value.
struct ZR_KIT_EXPORT ZrSimSettings
{
    static constexpr double MaxRate = 100.0; ///< records a second
    static constexpr int MaxTargets = 10000;

    double start = 1614780309.0; ///< time of the first record, seconds since the epoch, UTC
    double maxDuration = 7.0 * 86400.0; ///< seconds; what takes longer is ended, with a message
    u64 seed = 1; ///< of sensors, speckle and scattered targets; that of the sea floor is its own
    u16 source = 1; ///< source identifier of every record
    bool recordsPlan = true; ///< the plan is the first record
    bool pings = true; ///< false: a vehicle without sonar
    double navRate = 10.0; ///< navigation records a second
    double fixRate = 1.0; ///< position fixes a second; 0 for none, as for the others below
    double depthRate = 2.0; ///< depth soundings
    double motionRate = 2.0; ///< heading, course, speed
    double vehicleRate = 1.0; ///< inner state
    double environmentRate = 0.1; ///< water temperature
    int scattered = 8; ///< targets laid beside the straights of the plan, besides `targets`
    std::vector<ZrSimTarget> targets; ///< in the frame of the plan, see `ZrRoutePath::Frame`
    ZrSimVehicleSettings vehicle;
    ZrSimSeaFloorSettings floor;
    ZrSimSensorSettings sensors;
    ZrSimSonarSettings sonar;

    /// What cannot be simulated so, a sentence; empty when all is well.
    QString Fault() const;
};
