#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>

class ZrWpts;

/// A route as the mission plan of a log: the payload of items of `rtMissionPlan`.
///
/// \code
/// const auto plan = std::make_shared<const ZrWpts>(route); // of now, whatever becomes of it later
/// session.Start(options, [plan] { return ZrPlanRecord::Encode(*plan); });
/// \endcode
///
/// A long route takes seconds: a recording session asks for it on its own thread.
class ZR_KIT_EXPORT ZrPlanRecord
{
public:
    /// The set "Waypoints" in the line form of a settings store, which a dataset restores to its plan file.
    /// Empty for a route without waypoints. Any thread, as long as nobody changes the route.
    static QByteArray Encode(const ZrWpts& route);
};
