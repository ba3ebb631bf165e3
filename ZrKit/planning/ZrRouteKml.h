#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QString>

class ZrWpts;
struct ZrGeoShapes;

/// Routes as KML 2.2: a placemark for each waypoint and, when they are linked, one for the line through them.
///
/// Positions have 8 decimals. The fields of waypoints and of the route that KML has no place for stand in
/// `ExtendedData`, by settings key. Control characters are left out, line ends become line feeds. Any thread.
class ZR_KIT_EXPORT ZrRouteKml
{
public:
    /// All waypoints must have valid positions.
    static QByteArray Write(const ZrWpts& route);

    /// Adds the points, lines and outer rings of polygons to \p shapes; holes give a warning. `ExtendedData`
    /// of other kinds than ours are passed over. False with "line N: reason" when \p bytes are no KML or hold
    /// a position that is none.
    static bool Read(const QByteArray& bytes, ZrGeoShapes& shapes, QString& error);
};
