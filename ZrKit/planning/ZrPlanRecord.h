#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>

class ZrWpts;

/// A route as the mission plan of a log: the payload of items of `rtMissionPlan`.
class ZR_KIT_EXPORT ZrPlanRecord
{
public:
    /// The set "Waypoints" in the line form of a settings store, which a dataset restores to its plan file.
    /// Empty for a route without waypoints. The user-interface thread, as routes do.
    static QByteArray Encode(const ZrWpts& route);
};
