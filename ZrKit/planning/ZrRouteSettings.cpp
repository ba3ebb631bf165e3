#include "ZrKit/planning/ZrRouteSettings.h"

#include "ZrKit/planning/ZrTextLines.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

const QString& Waypoints()
{
    static const QString key = QStringLiteral("waypoints");
    return key;
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
    QJsonObject root;
    zr::ZrSetModule module(zr::ePersistStoring, root);
    ZrWpts(route).settings(module);
    return QJsonDocument(root).toJson();
}

bool ZrRouteSettings::Is(const QJsonObject& object)
{
    return object.contains(Waypoints()) && !object.contains(QLatin1String("type")); // GeoJSON has a type
}

bool ZrRouteSettings::Read(const QJsonObject& object, const QByteArray& bytes, ZrWpts& route, QString& error)
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
    zr::ZrSetModule module(zr::ePersistLoading, root);
    route.settings(module);
    return true;
}
