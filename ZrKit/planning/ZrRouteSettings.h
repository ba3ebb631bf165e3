#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

class ZrWpts;

/// Routes as the JSON settings of `ZrWpts`, with every field and the speed presets of all routes.
class ZR_KIT_EXPORT ZrRouteSettings
{
public:
    static QByteArray Write(const ZrWpts& route);

    /// The same in two steps: all but the waypoints, with the speed presets of the process, on the thread of
    /// routes; then both together, in any thread.
    static QJsonObject Head(const ZrWpts& route);
    static QJsonObject Whole(const QJsonObject& head, const ZrWpts& route);

    /// Whether \p object is a route in this form.
    static bool Is(const QJsonObject& object);

    /// Replaces \p route, and with it the speed presets of the process. False with "line N: reason", and
    /// nothing changed, when a waypoint has no position: a missing key would put it at latitude and longitude
    /// 0. A position of null, which is how NaN is stored, is taken.
    ///
    /// \p object is what \p bytes hold; they serve the line numbers.
    static bool Read(const QJsonObject& object, const QByteArray& bytes, ZrWpts& route, QString& error);

    /// The same in two steps: the route, in any thread; then the speed presets, on the thread of routes.
    static bool ReadRoute(const QJsonObject& object, const QByteArray& bytes, ZrWpts& route, QString& error);
    static void ReadPresets(const QJsonObject& object);

    /// The speed presets in \p object alone.
    static QJsonObject PresetsOf(const QJsonObject& object);
};
