#pragma once

#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrGeoPoint.h"

#include <QCoreApplication>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <vector>

/// A point of a file, with what the file says about it.
struct ZrShapePoint
{
    ZrGeoPoint position;
    QString name;
    QJsonObject fields; ///< fields of a waypoint by their settings keys, see `ZrRouteFields`
};

/// A line of a file.
struct ZrShapeLine
{
    QString name;
    std::vector<ZrShapePoint> points;
    QJsonObject route; ///< fields of a route by their settings keys; empty when the file has none
};

/// What a file of geographic shapes holds, before it is decided what it means: the common ground of the
/// readers of GPX, KML, GeoJSON and lists of positions. In the order of the file; lines have points, areas
/// have corners.
struct ZrGeoShapes
{
    QJsonObject route; ///< fields of the route that the points are, by their settings keys
    std::vector<ZrShapePoint> points;
    std::vector<ZrShapeLine> lines; ///< routes before tracks
    std::vector<ZrArea> areas; ///< outer rings of polygons
    QStringList warnings; ///< what was left out, a sentence each
    int holes = 0; ///< of the areas, left out

    /// Warns of the first holes of polygons, as \p what says, and counts all: a hostile file has millions.
    template <class What> void LeaveOutHoles(int count, const What& what)
    {
        if (holes == 0)
            warnings << what();
        else
            warnings = QStringList{warnings.front(),
                QCoreApplication::translate("ZrGeoShapes", "holes left out in all: %1").arg(holes + count)};
        holes += count;
    }

    /// Whether \p point is a position on the earth; if not, \p error says so.
    static bool Check(const ZrGeoPoint& point, QString& error)
    {
        if (!(std::fabs(point.lat) <= 90.0)) {
            error = QCoreApplication::translate(
                "ZrGeoShapes", "latitude %1 is not within 90 degrees of the equator")
                        .arg(point.lat);
            return false;
        }
        if (!(std::fabs(point.lng) <= 180.0)) {
            error = QCoreApplication::translate(
                "ZrGeoShapes", "longitude %1 is not within 180 degrees of Greenwich")
                        .arg(point.lng);
            return false;
        }
        return true;
    }

    /// \p ring without the repetition of its first corner at its end.
    static std::vector<ZrGeoPoint> Open(std::vector<ZrGeoPoint> ring)
    {
        if (ring.size() > 1 && ring.front() == ring.back())
            ring.pop_back();
        return ring;
    }
};
