#pragma once

// Routes compared by all that their settings form stores, and by bits where that form tells nothing apart.

#include "PathChecks.h"
#include "ZrKit/planning/ZrRouteHistory.h"
#include "ZrUtil/ZrSetModule.h"

#include <QByteArray>
#include <QJsonObject>

#include <vector>

inline QJsonObject Stored(ZrWpt wpt)
{
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistStoring, object);
    ZrWpt::serialise(wpt, module);
    return object;
}

/// What the settings form of a route does not tell apart: NaN, the sign of zero, the alpha of a colour.
inline QByteArray Bits(const ZrWpt& wpt)
{
    const double values[] = {wpt.lat, wpt.lng, wpt.x, wpt.y, wpt.q, wpt.speed, wpt.rit, wpt.tp1X, wpt.tp2Q};
    QByteArray bits(reinterpret_cast<const char*>(values), sizeof values);
    return bits + QByteArray::number(wpt.colour.rgba());
}

struct Snapshot
{
    QString prefix;
    bool linked;
    bool closed;
    int speedType;
    double speed;
    std::vector<QJsonObject> wpts;
    std::vector<QByteArray> bits;

    explicit Snapshot(const ZrWpts& route)
        : prefix(route.prefix)
        , linked(route.linked)
        , closed(route.closed)
        , speedType(route.speedType)
        , speed(route.speed)
    {
        for (ZrListPos* pos = route.GetHeadPos(); pos;) {
            const ZrWpt* wpt = route.GetNext(pos);
            wpts.push_back(Stored(*wpt));
            bits.push_back(Bits(*wpt));
        }
    }

    friend bool operator==(const Snapshot& a, const Snapshot& b)
    {
        return a.prefix == b.prefix && a.linked == b.linked && a.closed == b.closed
            && a.speedType == b.speedType && a.speed == b.speed && a.wpts == b.wpts && a.bits == b.bits;
    }
};

inline void LayRoute(ZrWpts& route)
{
    Lay(route, {{0, 0}, {0, 100}, {100, 100}, {100, 0}, {200, 0}}, 10.0);
    route.Recalc(true);
}

/// Whether going back to the beginning and forth again gives the route at both ends, and in between as often
/// as there are steps.
inline bool GoesRound(ZrRouteHistory& history, const ZrWpts& route, const std::vector<Snapshot>& snapshots)
{
    std::size_t at = snapshots.size() - 1;
    if (!(Snapshot(route) == snapshots[at]))
        return false;
    while (history.Undo()) {
        if (at == 0 || !(Snapshot(route) == snapshots[--at]))
            return false;
    }
    if (at != 0)
        return false;
    while (history.Redo()) {
        if (++at == snapshots.size() || !(Snapshot(route) == snapshots[at]))
            return false;
    }
    return at + 1 == snapshots.size();
}
