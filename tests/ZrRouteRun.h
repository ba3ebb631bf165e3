#pragma once

// What the tests of `zr route` share: running it, and files with routes and areas to run it on.

#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrToolRun.h"
#include "ZrUtil/ZrWpts.h"

/// `zr route` with \p arguments.
inline ToolResult RunRoute(const QStringList& arguments)
{
    return RunTool(QStringList(QStringLiteral("route")) + arguments);
}

/// `zr route` with \p arguments while no file may grow beyond \p bytes (a multiple of 512).
inline ToolResult RunRouteLimited(const QStringList& arguments, int bytes)
{
    return RunToolLimited(QStringList(QStringLiteral("route")) + arguments, bytes);
}

/// The head of a list of waypoints: of a route that is linked, at 0.5 m/s.
inline const QByteArray listHead = "# route {\"linked\": true, \"speed\": 0.5, \"prefix\": \"Plan\"}\n"
                                   "name\tlat\tlong\tr\tspeedtype\tspeed\n";

/// On the central meridian of zone 31, at the equator: 0.01 degrees north, where a turn of 100 m leads to the
/// right, then 0.01 degrees east. The first leg is run fast (1 m/s), the second one at 2 m/s.
inline const QByteArray angle = listHead
    + "A\t0\t3\t0\t3\t0\n"
      "Ecke \xC3\xA4\t0.01\t3\t100\t4\t2\n"
      "C\t0.01\t3.01\t0\t0\t0\n";

/// The legs of the angle on the WGS 84 ellipsoid, metres: 0.01 degrees of the meridian at the equator
/// (radius of curvature 6,335,439.327 m) and of the equator (6,378,137 m).
constexpr double northLeg = 6335439.327 * 0.01 * 3.14159265358979323846 / 180.0;
constexpr double eastLeg = 6378137.0 * 0.01 * 3.14159265358979323846 / 180.0;
/// Either leg on the sphere of 6,371,000 m that applications count by.
constexpr double sphereLeg = 6371000.0 * 0.01 * 3.14159265358979323846 / 180.0;
/// A quarter of the turn circle.
constexpr double quarter = 100.0 * 3.14159265358979323846 / 2.0;

/// A GeoJSON polygon from south-west to north-east, degrees.
inline QByteArray Rectangle(const char* name, double south, double west, double north, double east)
{
    const auto corner = [](double lng, double lat) {
        return QStringLiteral("[%1,%2]").arg(lng, 0, 'f', 9).arg(lat, 0, 'f', 9);
    };
    const QStringList ring{corner(west, south), corner(east, south), corner(east, north), corner(west, north),
        corner(west, south)};
    return QStringLiteral("{\"type\":\"Feature\",\"properties\":{\"name\":\"%1\"},\"geometry\":{\"type\":"
                          "\"Polygon\",\"coordinates\":[[%2]]}}")
        .arg(QString::fromUtf8(name), ring.join(QLatin1Char(',')))
        .toUtf8();
}

/// A GeoJSON collection of features.
inline QByteArray Collection(const QList<QByteArray>& features)
{
    return "{\"type\":\"FeatureCollection\",\"features\":[" + features.join(',') + "]}";
}

/// The route of a file.
inline ZrWpts ReadRoute(const QString& path)
{
    ZrRouteFile file;
    ZrWpts route;
    if (!file.Read(path, route))
        qWarning("%s", qPrintable(file.Error()));
    return route;
}

inline QVector<ZrWpt*> Items(const ZrWpts& route)
{
    QVector<ZrWpt*> items;
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        items.append(route.GetNext(pos));
    return items;
}

/// Names of the waypoints.
inline QStringList WptNames(const ZrWpts& route)
{
    QStringList names;
    for (const ZrWpt* wpt : Items(route))
        names << wpt->name;
    return names;
}

inline bool Near(double value, double expected, double tolerance)
{
    if (std::fabs(value - expected) <= tolerance)
        return true;
    qWarning("%.12g where %.12g was expected, within %g", value, expected, tolerance);
    return false;
}
