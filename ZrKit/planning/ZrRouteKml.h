#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QString>

class ZrWpts;
struct ZrGeoShapes;

/// Routes as KML 2.2: a placemark for each waypoint and, when they are linked, one for the line through them.
///
/// Positions have 8 decimals, longitudes are within [−180, 180). The fields of waypoints and of the route
/// that KML has no place for stand in `ExtendedData`, by settings key. Any thread.
class ZR_KIT_EXPORT ZrRouteKml
{
public:
    /// All waypoints must have valid positions.
    static QByteArray Write(const ZrWpts& route);

    /// Adds the points, lines and outer rings of polygons to \p shapes. False with "line N: reason" when \p bytes
    /// are no KML or hold a position that is none.
    static bool Read(const QByteArray& bytes, ZrGeoShapes& shapes, QString& error);
};
