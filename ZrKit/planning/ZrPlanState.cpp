#include "ZrKit/planning/ZrPlanState.h"

#include "ZrKit/files/ZrReplaceFile.h"
#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrKit/planning/ZrRouteSettings.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>
#include <utility>

namespace {

const auto areasKey = QLatin1String("areas");
const auto noGoKey = QLatin1String("no-go");
const auto marginKey = QLatin1String("margin");

QJsonArray ToJson(const std::vector<ZrArea>& areas)
{
    QJsonArray array;
    for (const ZrArea& area : areas) {
        QJsonArray ring;
        for (const ZrGeoPoint& point : area.ring)
            ring.append(QJsonArray({point.lng, point.lat}));
        array.append(QJsonObject({{QStringLiteral("name"), area.name}, {QStringLiteral("ring"), ring}}));
    }
    return array;
}

/// Areas without a valid corner are left out, corners that are none as well.
std::vector<ZrArea> FromJson(const QJsonValue& value)
{
    std::vector<ZrArea> areas;
    const QJsonArray array = value.toArray();
    for (const QJsonValue& item : array) {
        ZrArea area;
        area.name = item[QLatin1String("name")].toString();
        const QJsonArray ring = item[QLatin1String("ring")].toArray();
        for (const QJsonValue& corner : ring) {
            const ZrGeoPoint point{corner[1].toDouble(std::nan("")), corner[0].toDouble(std::nan(""))};
            if (point.IsValid())
                area.ring.push_back(point);
        }
        if (!area.ring.empty())
            areas.push_back(std::move(area));
    }
    return areas;
}

} // namespace

QByteArray ZrPlanState::ToDraft() const
{
    QJsonObject root({{QStringLiteral("format"), QStringLiteral("zr-plan-draft")},
        {QStringLiteral("path"), path}, {QStringLiteral("route"), ZrRouteSettings::Whole(head, route)}});
    AreasToJson(root);
    return QJsonDocument(root).toJson(QJsonDocument::Compact);
}

bool ZrPlanState::Save(const QString& file, QString& error, QStringList& warnings) const
{
    if (ZrRouteFile::FormatOf(file) != ZrRouteFile::Settings)
        return Export(file, error, warnings);
    QJsonObject root = ZrRouteSettings::Whole(head, route);
    AreasToJson(root);
    const QByteArray bytes = QJsonDocument(root).toJson();
    if (bytes.size() > ZrRouteFile::MaxSize) {
        error = QCoreApplication::translate(
            "ZrPlanState", "%1: the plan would take more than 64 MiB, which could not be read again")
                    .arg(file);
        return false;
    }
    return zr::replace_file(file, bytes, &error);
}

bool ZrPlanState::Export(const QString& file, QString& error, QStringList& warnings) const
{
    ZrRouteFile out;
    const bool isWritten = out.Write(file, ZrRouteFile::FormatOf(file), route);
    error = out.Error();
    warnings = out.Warnings();
    return isWritten;
}

void ZrPlanState::AreasToJson(QJsonObject& root) const
{
    root[areasKey] = ToJson(areas);
    root[noGoKey] = ToJson(noGo);
    root[marginKey] = margin;
}

void ZrPlanState::AreasFromJson(const QJsonObject& root)
{
    areas = FromJson(root[areasKey]);
    noGo = FromJson(root[noGoKey]);
    margin = root[marginKey].toDouble();
}
