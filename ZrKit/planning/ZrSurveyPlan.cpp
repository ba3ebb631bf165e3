#include "ZrKit/planning/ZrSurveyPlan.h"

#include "ZrUtil/ZrWpts.h"

#include <memory>

namespace {

/// The colour that a route gives to a kind of waypoint.
QColor ColourOf(eZrWptType type)
{
    ZrWpts route;
    return route.Add(0.0, 0.0, type, ZrWpts::eAddTail)->colour;
}

} // namespace

QUuid ZrSurveyPlan::AppendTo(ZrWpts& route) const
{
    if (waypoints.empty())
        return {};
    const QUuid gridId = QUuid::createUuid();
    const QColor colour = ColourOf(settings.type);
    // ZrWpts::Add would recompute the whole route for each of them.
    for (const ZrSurveyWaypoint& waypoint : waypoints) {
        auto wpt = std::make_unique<ZrWpt>();
        wpt->name = waypoint.name;
        wpt->gridId = gridId;
        wpt->colour = colour;
        wpt->type = static_cast<u8>(settings.type);
        wpt->lat = waypoint.position.lat;
        wpt->lng = waypoint.position.lng;
        wpt->r = waypoint.radius;
        wpt->spdType = settings.spdType;
        wpt->speed = settings.speed;
        wpt->zType = settings.zType;
        wpt->z = settings.z;
        wpt->alt = settings.alt;
        route.AddTail(wpt.get());
        wpt.release();
    }
    route.UpdatePseudo();
    route.Recalc(true);
    return gridId;
}
