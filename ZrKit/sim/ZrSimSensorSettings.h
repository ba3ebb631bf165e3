#pragma once

/// How wrong simulated sensors are. A plain value; standard deviations, 0 for a sensor without error.
struct ZrSimSensorSettings
{
    double position = 0.15; ///< metres north and east; wanders within about half a minute
    double heading = 0.3; ///< degrees
    double attitude = 0.1; ///< degrees of pitch and roll
    double depth = 0.03; ///< metres
    double altitude = 0.05; ///< metres
    double speed = 0.02; ///< m/s
    double dropout = 0.0; ///< share of the readings in which one sensor has nothing to say, 0 to 1
};
