#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QJsonObject>
#include <QString>

class ZrWpt;
class ZrWpts;

/// What a waypoint and a route hold beyond their positions, as values by their settings keys: the extra data of
/// route files in formats of other makers.
///
/// What the route computes (labels, grid positions, turns, distances) takes no part: it is computed anew after
/// reading. Any thread.
class ZR_KIT_EXPORT ZrRouteFields
{
public:
    /// The UUID, and every field that differs from that of a new waypoint; not the name and the position.
    static QJsonObject Of(const ZrWpt& wpt);

    /// Sets the fields of \p wpt that \p fields names; others stay.
    static void Apply(const QJsonObject& fields, ZrWpt& wpt);

    /// "prefix", "linked", "closed" and "speed".
    static QJsonObject Of(const ZrWpts& route);

    static void Apply(const QJsonObject& fields, ZrWpts& route);

    /// Adds the field \p key with a value given as text, in the form that its kind has in the settings. False
    /// when it is none of `Of`, or no text of its kind.
    static bool AddText(QJsonObject& fields, const QString& key, const QString& text);

    static bool AddRouteText(QJsonObject& fields, const QString& key, const QString& text);

    /// The text of a value for `AddText`.
    static QString Text(const QJsonValue& value);
};
