#include "ZrKit/planning/ZrRouteSettings.h"

#include "ZrKit/planning/ZrTextLines.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

namespace {

const QString& Waypoints()
{
    static const QString key = QStringLiteral("waypoints");
    return key;
}

/// The keys of the speed presets, which belong to the process.
const QStringList& Presets()
{
    static const QStringList keys{
        QStringLiteral("SlowSpeed"), QStringLiteral("MediumSpeed"), QStringLiteral("FastSpeed")};
    return keys;
}

QString CheckPosition(const QJsonObject& waypoint)
{
    for (const char* key : {"lat", "long"}) {
        const QJsonValue value = waypoint.value(QLatin1String(key));
        if (!value.isDouble() && !value.isNull())
            return QCoreApplication::translate("ZrRouteSettings", "\"%1\" is no number")
                .arg(QLatin1String(key));
    }
    return {};
}

} // namespace

QByteArray ZrRouteSettings::Write(const ZrWpts& route)
{
    return QJsonDocument(Whole(Head(route), route)).toJson();
}

QJsonObject ZrRouteSettings::Head(const ZrWpts& route)
{
    ZrWpts bare;
    bare.prefix = route.prefix;
    bare.linked = route.linked;
    bare.closed = route.closed;
    bare.speed = route.speed;
    QJsonObject head;
    zr::ZrSetModule module(zr::ePersistStoring, head);
    bare.settings(module);
    return head;
}

QJsonObject ZrRouteSettings::Whole(const QJsonObject& head, const ZrWpts& route)
{
    QJsonArray waypoints;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        ZrWpt copy(*route.GetNext(pos));
        QJsonObject object;
        zr::ZrSetModule part(zr::ePersistStoring, object);
        ZrWpt::serialise(copy, part);
        waypoints.append(object);
    }
    QJsonObject whole = head;
    whole.insert(Waypoints(), waypoints);
    return whole;
}

bool ZrRouteSettings::Is(const QJsonObject& object)
{
    return object.contains(Waypoints()) && !object.contains(QLatin1String("type")); // GeoJSON has a type
}

bool ZrRouteSettings::Read(const QJsonObject& object, const QByteArray& bytes, ZrWpts& route, QString& error)
{
    if (!ReadRoute(object, bytes, route, error))
        return false;
    ReadPresets(object);
    return true;
}

QJsonObject ZrRouteSettings::PresetsOf(const QJsonObject& object)
{
    QJsonObject presets;
    for (const QString& key : Presets()) {
        if (object.contains(key))
            presets.insert(key, object.value(key));
    }
    return presets;
}

void ZrRouteSettings::ReadPresets(const QJsonObject& object)
{
    QJsonObject presets = PresetsOf(object);
    zr::ZrSetModule module(zr::ePersistLoading, presets);
    ZrWpts().settings(module);
}

bool ZrRouteSettings::ReadRoute(
    const QJsonObject& object, const QByteArray& bytes, ZrWpts& route, QString& error)
{
    const QJsonValue list = object.value(Waypoints());
    if (!list.isArray()) {
        error = QCoreApplication::translate("ZrRouteSettings", "\"waypoints\" is no list");
        return false;
    }
    const QJsonArray waypoints = list.toArray();
    for (int i = 0; i < waypoints.size(); ++i) {
        error = CheckPosition(waypoints[i].toObject());
        if (error.isEmpty())
            continue;
        const int line = ZrTextLines::OfElement(bytes, "waypoints", i);
        error = QCoreApplication::translate("ZrRouteSettings", "line %1: waypoint %2: %3")
                    .arg(line)
                    .arg(i + 1)
                    .arg(error);
        return false;
    }
    QJsonObject root = object;
    for (const QString& key : Presets())
        root.remove(key); // which leaves them alone
    zr::ZrSetModule module(zr::ePersistLoading, root);
    route.settings(module);
    return true;
}
