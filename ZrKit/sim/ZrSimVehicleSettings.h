#pragma once

/// What a simulated vehicle can do, and the water that it moves in. A plain value.
struct ZrSimVehicleSettings
{
    double cruiseSpeed = 1.5; ///< m/s through the water on legs for which the plan has no speed; 0.05 to 50
    bool usesPlanSpeeds = true; ///< false: the cruise speed on every leg
    double maxSpeed = 3.0; ///< m/s through the water, whatever the plan says; 0.05 to 50
    double acceleration = 0.3; ///< m/s²
    double turnRate = 12.0; ///< degrees a second at most; 0.5 to 360
    double climbAngle = 25.0; ///< degrees of pitch at most, up or down; 1 to 80
    double altitude = 8.0; ///< metres above the floor that are kept where the plan says nothing; 0 or more
    double minAltitude = 2.0; ///< metres above the floor that the vehicle always keeps, water permitting
    double maxDepth = 6000.0; ///< metres that it never goes below
    double currentSet = 0.0; ///< degrees from north that the water moves to
    double currentDrift = 0.0; ///< m/s of it
    bool holdsLine = true; ///< heads into the current; false: it is carried off until it steers against it
    double swing = 0.6; ///< degrees of roll by the waves, half of it of pitch; 0 for still water
};
