#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QJsonObject>
#include <QString>

class ZrWpt;
class ZrWpts;

/// What a waypoint and a route hold beyond their positions, as values by their settings keys: the extra data
/// of route files in formats of other makers.
///
/// What the route computes (labels, grid positions, turns, distances) takes no part: it is computed anew
/// after reading. Any thread.
class ZR_KIT_EXPORT ZrRouteFields
{
public:
    /// The UUID, and every field that differs from that of a new waypoint; not the name and the position.
    static QJsonObject Of(const ZrWpt& wpt);

    /// Sets the fields of \p wpt that \p fields, made by `Of` or `Add`, names; others stay.
    static void Apply(const QJsonObject& fields, ZrWpt& wpt);

    /// "prefix", "linked", "closed" and "speed".
    static QJsonObject Of(const ZrWpts& route);

    static void Apply(const QJsonObject& fields, ZrWpts& route);

    /// Whether a waypoint has a field \p key besides its name and position.
    static bool IsField(const QString& key);

    /// Adds the field \p key of a waypoint with a value as the settings have it, as text, or as a number
    /// where the settings have text. False, and \p fields as they were, when there is no such field or the
    /// value is none of its kind or outside the range of its type.
    static bool Add(QJsonObject& fields, const QString& key, const QJsonValue& value);

    /// The same for a field of a route.
    static bool AddRoute(QJsonObject& fields, const QString& key, const QJsonValue& value);

    /// The text of a value, which `Add` takes back without loss.
    static QString Text(const QJsonValue& value);
};
