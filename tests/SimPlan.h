#pragma once

// Plans for tests of the simulator: waypoints in metres around a place.

#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/sim/ZrSimSettings.h"
#include "ZrUtil/ZrWpts.h"

#include <vector>

struct SimPoint
{
    double x = 0.0; ///< metres east of the origin
    double y = 0.0; ///< metres north of it
    double r = 0.0; ///< turn radius
    double z = 0.0;
    int zType = 0;
};

constexpr double simLatitude = 48.48;
constexpr double simLongitude = -68.515;

inline void FillPlan(ZrWpts& route, const std::vector<SimPoint>& points, double speed)
{
    const ZrLocalFrame frame({simLatitude, simLongitude});
    route.linked = true;
    route.speed = speed;
    for (const SimPoint& point : points) {
        const ZrGeoPoint at = frame.ToGeo({point.x, point.y});
        ZrWpt* const wpt = route.Add(at.lat, at.lng, eZrWptBlue, ZrWpts::eAddTail);
        wpt->r = point.r;
        wpt->z = point.z;
        wpt->zType = point.zType;
    }
}

inline ZrWpts MakePlan(const std::vector<SimPoint>& points, double speed = 1.5)
{
    ZrWpts route;
    FillPlan(route, points, speed);
    return route;
}

/// A level floor of sand, 20 m deep, without anything on it.
inline ZrSimSeaFloorSettings LevelFloor()
{
    ZrSimSeaFloorSettings floor;
    floor.depth = 20.0;
    floor.relief = 0.0;
    floor.rippleHeight = 0.0;
    floor.rockHeight = 0.0;
    floor.patches = false;
    return floor;
}

/// Sensors without errors over that floor, nothing scattered, still water, no swing.
inline ZrSimSettings PlainSettings()
{
    ZrSimSettings settings;
    settings.floor = LevelFloor();
    settings.scattered = 0;
    settings.sensors = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    settings.vehicle.swing = 0.0;
    return settings;
}
