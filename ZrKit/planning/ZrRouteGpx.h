#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QString>

class ZrWpts;
struct ZrGeoShapes;

/// Routes as GPX 1.1, a route (`rte`) when the waypoints are linked and waypoints (`wpt`) when they are not.
///
/// Positions have 8 decimals, longitudes are within [−180, 180). The fields of waypoints and of the route
/// that GPX has no place for stand in `extensions`, as `field` elements of our own name space with the
/// settings key and the value. Control characters are left out, line ends become line feeds. Any thread.
class ZR_KIT_EXPORT ZrRouteGpx
{
public:
    /// All waypoints must have valid positions.
    static QByteArray Write(const ZrWpts& route);

    /// Adds the routes, the segments of tracks and the waypoints to \p shapes. False with "line N: reason"
    /// when \p bytes are no GPX, or hold a position or a field of ours that is none.
    static bool Read(const QByteArray& bytes, ZrGeoShapes& shapes, QString& error);
};
