#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrGeoPoint.h"

#include <QString>
#include <QUuid>

/// Something that `ZrRouteCheck` noticed about a route.
struct ZR_KIT_EXPORT ZrRouteFinding
{
    enum eSeverity : int
    {
        eInfo, ///< worth knowing
        eWarning, ///< the route can be run; is it meant so?
        eError, ///< the route cannot be run as it is, breaks a limit, or could not be checked
    };

    enum eCode : int
    {
        eEmpty, ///< no waypoint
        eSinglePoint, ///< no leg
        eNotLinked, ///< a set of markers
        eTooWide, ///< too wide for the plane of the check, see `ZrRoutePath::IsTooWide`
        eNoPosition, ///< NaN or infinite
        ePositionOutOfRange, ///< beyond ±90 or ±180 degrees
        eBeyondGrid, ///< north of 84 or south of 80 degrees, where there is no UTM zone
        eCoincident, ///< at the place of the waypoint before
        eBadRadius, ///< NaN or infinite
        eRadiusAtEnd, ///< the first or last waypoint never turns
        eTurnBeyondLeg, ///< the turn needs more than one of its legs
        eTurnsOverlap, ///< two turns need more than the leg between them
        eDoublesBack, ///< a turn where the way goes back
        eBadSpeed, ///< zero, negative or not a number
        eZoneCrossed, ///< the border of a UTM zone, or the equator
        eAntimeridianCrossed,
        eBadMargin, ///< the safety margin is negative or not a number
        eBadArea, ///< an area that cannot be checked
        eAreaCrossesItself,
        eOutsideFence,
        eNearFence, ///< inside, but nearer to the border than the margin
        eInNoGo,
        eNearNoGo, ///< outside, but nearer to the border than the margin
    };

    eSeverity severity = eInfo;
    eCode code = eEmpty;
    int index = -1; ///< of the waypoint, from 0; of a leg the one where it begins; −1 for the whole route
    QUuid uuid; ///< of that waypoint
    QString text; ///< sentences with names, numbers and units
    ZrGeoPoint place; ///< where to look; of a stretch where it begins; not valid if there is none

    /// What it is in three or four words, for a line of a list: "Turn longer than its leg".
    QString Title() const;

    /// The code in words for files and scripts: "turn-beyond-leg".
    QString CodeName() const;

    /// "info", "warning" or "error".
    QString SeverityName() const;
};
