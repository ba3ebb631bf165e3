#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

class ZrWpts;
struct ZrGeoShapes;

/// Routes as GeoJSON (RFC 7946): a feature for each waypoint and, when they are linked, one for the line
/// through them.
///
/// Positions have all their digits. The fields of a waypoint are the properties of its feature, by settings
/// key; those of the route are the member "route" of the collection. Any thread.
class ZR_KIT_EXPORT ZrRouteGeoJson
{
public:
    /// All waypoints must have valid positions.
    static QByteArray Write(const ZrWpts& route);

    /// Adds the points, lines and outer rings of polygons to \p shapes; holes give a warning. Properties of
    /// other kinds than ours are passed over.
    ///
    /// \p object is what \p bytes hold; they serve the line numbers. False when the object is no GeoJSON or
    /// holds a position that is none: with "line N: feature M: reason", M from 1, or the reason alone where
    /// there are no features.
    static bool Read(const QJsonObject& object, const QByteArray& bytes, ZrGeoShapes& shapes, QString& error);
};
