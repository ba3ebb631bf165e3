#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrRouteLeg.h"

#include <QUuid>

#include <vector>

class ZrWpts;

/// A leg by the waypoints that it joins, so that it is found again when others come before it, or the route
/// is reversed. A plain value.
///
/// \code
/// const ZrLegEnds chosen = ZrLegEnds::Of(path.Legs(), ZrLegEnds::Ids(route), leg);
/// route.Reverse();
/// const int index = chosen.PlaceIn(route); // a waypoint inserted before that one is between the two
/// \endcode
struct ZR_KIT_EXPORT ZrLegEnds
{
    QUuid from;
    QUuid to;

    bool IsNull() const { return from.isNull() || to.isNull(); }

    /// Of the waypoints in their order.
    static std::vector<QUuid> Ids(const ZrWpts& route);

    /// The ends of a leg; \p ids are those of the route whose legs they are. Null for a leg of none.
    static ZrLegEnds Of(const std::vector<ZrRouteLeg>& legs, const std::vector<QUuid>& ids, int leg);

    /// The leg between the ends, one that leads from the first to the second before one that leads back; −1
    /// for none.
    int IndexIn(const std::vector<ZrRouteLeg>& legs, const std::vector<QUuid>& ids) const;

    /// Index of the waypoint before which another one has to be inserted to lie between the ends; the number
    /// of waypoints for the leg that closes a closed route. −1 when they are not neighbours.
    int PlaceIn(const ZrWpts& route) const;
};
