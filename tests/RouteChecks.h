#pragma once

#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpts.h"

#include <QtTest/QtTest>

#include <cmath>

/// Metres east and north of 500,000 E, 5,550,000 N in the UTM zone 30: about 50° N, on the meridian of 3° W.
struct GridPoint
{
    double east;
    double north;
};

constexpr double baseEast = 500000.0;
constexpr double baseNorth = 5550000.0;

/// Gives the zone and the preset speeds, which the whole process shares, the values of its start.
inline void ResetRouteState()
{
    ZrUnits::utm = ZrProj();
    ZrWpts::s_msSlow = 0.25F;
    ZrWpts::s_msMedium = 0.5F;
    ZrWpts::s_msFast = 1.0F;
}

/// Appends a waypoint at \p point, by latitude and longitude as well as by grid. Nothing is recomputed.
inline ZrWpt* AppendGrid(ZrWpts& route, GridPoint point, double radius = 0.0, double north = baseNorth)
{
    auto* wpt = new ZrWpt;
    wpt->x = baseEast + point.east;
    wpt->y = north + point.north;
    wpt->r = radius;
    ZrUnits::EN2LL(ZrSphd(), ZrProj(), wpt->x, wpt->y, wpt->lat, wpt->lng);
    route.AddTail(wpt);
    return wpt;
}

/// Appends a waypoint at a position in degrees. Nothing is recomputed.
inline ZrWpt* AppendLL(ZrWpts& route, double lat, double lng)
{
    auto* wpt = new ZrWpt;
    wpt->lat = lat;
    wpt->lng = lng;
    route.AddTail(wpt);
    return wpt;
}

inline QVector<ZrWpt*> Items(const ZrWpts& route)
{
    QVector<ZrWpt*> items;
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        items.append(route.GetNext(pos));
    return items;
}

inline ZrWpt* At(const ZrWpts& route, int index)
{
    return route.GetAt(route.FindIndex(index));
}

inline QStringList Labels(const ZrWpts& route)
{
    QStringList labels;
    for (const ZrWpt* wpt : Items(route))
        labels.append(wpt->pseudo);
    return labels;
}

inline bool Near(double value, double expected, double tolerance)
{
    if (std::fabs(value - expected) <= tolerance)
        return true;
    qWarning("%.12g where %.12g was expected, within %g", value, expected, tolerance);
    return false;
}

/// The nine fields of a turn, in the order of the record.
inline QVector<double> Turn(const ZrWpt& wpt)
{
    return {wpt.ricX, wpt.ricY, wpt.rit, wpt.tp1X, wpt.tp1Y, wpt.tp1Q, wpt.tp2X, wpt.tp2Y, wpt.tp2Q};
}

const QVector<double> noTurn(9, 0.0);
const QVector<double> staleTurn{1, 2, 3, 4, 5, 6, 7, 8, 9};

inline void SetTurn(ZrWpt& wpt, const QVector<double>& turn)
{
    double* const fields[]
        = {&wpt.ricX, &wpt.ricY, &wpt.rit, &wpt.tp1X, &wpt.tp1Y, &wpt.tp1Q, &wpt.tp2X, &wpt.tp2Y, &wpt.tp2Q};
    for (int i = 0; i < 9; ++i)
        *fields[i] = turn[i];
}
