#include "ZrKit/planning/ZrSurveyPlan.h"

#include "ZrUtil/ZrWpts.h"

#include <memory>

namespace {

/// The colour that `ZrWpts::Add` gives to a kind of waypoint.
QColor ColourOf(eZrWptType type)
{
    switch (type) {
    case eZrWptBlue:
        return QColor(Qt::blue);
    case eZrWptRed:
        return QColor(Qt::red);
    default:
        return ZrWpt().colour;
    }
}

ZrWpt Made(const ZrSurveyWaypoint& waypoint, const ZrSurveySettings& settings, const QUuid& gridId)
{
    ZrWpt wpt;
    wpt.name = waypoint.name;
    wpt.gridId = gridId;
    wpt.colour = ColourOf(settings.type);
    wpt.type = static_cast<u8>(settings.type);
    wpt.lat = waypoint.position.lat;
    wpt.lng = waypoint.position.lng;
    wpt.r = waypoint.radius;
    wpt.spdType = settings.spdType;
    wpt.speed = settings.speed;
    wpt.zType = settings.zType;
    wpt.z = settings.z;
    wpt.alt = settings.alt;
    return wpt;
}

} // namespace

std::vector<ZrWpt> ZrSurveyPlan::Waypoints() const
{
    const QUuid gridId = QUuid::createUuid();
    std::vector<ZrWpt> made;
    made.reserve(waypoints.size());
    for (const ZrSurveyWaypoint& waypoint : waypoints)
        made.push_back(Made(waypoint, settings, gridId));
    return made;
}

QUuid ZrSurveyPlan::AppendTo(ZrWpts& route) const
{
    if (waypoints.empty())
        return {};
    const QUuid gridId = QUuid::createUuid();
    // ZrWpts::Add would recompute the whole route for each of them.
    for (const ZrSurveyWaypoint& waypoint : waypoints) {
        auto wpt = std::make_unique<ZrWpt>(Made(waypoint, settings, gridId));
        route.AddTail(wpt.get());
        static_cast<void>(wpt.release());
    }
    route.UpdatePseudo();
    route.Recalc(true);
    return gridId;
}
