#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

class ZrWpts;
class ZrXmlStore;

/// Routes as a tag-structured store: the set "Route" with the fields of the route, and the set "Waypoints".
///
/// The store keeps ten decimals of positions and times and six digits of most other numbers, Latin-1 without
/// quotes and line ends, and no transparency of colours.
class ZR_KIT_EXPORT ZrRouteStore
{
public:
    /// Texts that the store cannot hold are changed, with a warning for each waypoint.
    static QByteArray Write(const ZrWpts& route, QStringList& warnings);

    /// Replaces \p route, which must be empty, by that of the set "Waypoints", else by the first set whose
    /// objects have positions: applications name it as they like. False with the reason, and the number of
    /// the line where there is one, when there is no such set, a waypoint has no position, or the end is
    /// missing.
    ///
    /// Recomputes the route, which moves the projection of the process: the user-interface thread.
    static bool Read(const QByteArray& bytes, ZrWpts& route, QString& error);

    /// The same in two steps: the store, which must be one for loading, in any thread; then, when that was
    /// true, the route.
    static bool Load(const QByteArray& bytes, ZrXmlStore& store, QString& error);
    static void Finish(ZrXmlStore& store, ZrWpts& route);

    /// As `Finish`, with nothing computed: in any thread.
    static void FinishBare(ZrXmlStore& store, ZrWpts& route);
};
