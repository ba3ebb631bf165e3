#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

class ZrWpts;
struct ZrGeoShapes;

/// Routes as GeoJSON (RFC 7946): a feature for each waypoint and, when they are linked, one for the line through
/// them.
///
/// Positions have all their digits. The fields of a waypoint are the properties of its feature, by settings
/// key; those of the route are the member "route" of the collection. Any thread.
class ZR_KIT_EXPORT ZrRouteGeoJson
{
public:
    /// All waypoints must have valid positions.
    static QByteArray Write(const ZrWpts& route);

    /// Adds the points, lines and outer rings of polygons to \p shapes. False, with the reason, when the object
    /// is no GeoJSON or holds a position that is none; features are counted from 1.
    static bool Read(const QJsonObject& object, ZrGeoShapes& shapes, QString& error);
};
