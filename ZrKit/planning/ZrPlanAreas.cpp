#include "ZrKit/planning/ZrPlanAreas.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

const auto areasKey = QLatin1String("areas");
const auto noGoKey = QLatin1String("no-go");
const auto marginKey = QLatin1String("margin");

QString Tr(const char* text, std::size_t count)
{
    return QCoreApplication::translate("ZrPlanAreas", text).arg(count);
}

QJsonArray AreasToJson(const std::vector<ZrArea>& areas)
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

std::vector<ZrArea> AreasFromJson(const QJsonValue& value)
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

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof(double)) == 0;
}

bool SameAreas(const std::vector<ZrArea>& a, const std::vector<ZrArea>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const ZrArea& one, const ZrArea& other) {
        return one.name == other.name
            && std::equal(one.ring.begin(), one.ring.end(), other.ring.begin(), other.ring.end(),
                [](ZrGeoPoint p, ZrGeoPoint q) { return SameBits(p.lat, q.lat) && SameBits(p.lng, q.lng); });
    });
}

} // namespace

QString ZrPlanAreas::Text() const
{
    QStringList parts;
    if (!areas.empty())
        parts << (areas.size() == 1 ? QCoreApplication::translate("ZrPlanAreas", "1 area")
                                    : Tr(QT_TRANSLATE_NOOP("ZrPlanAreas", "%1 areas"), areas.size()));
    if (!noGo.empty())
        parts << (noGo.size() == 1 ? QCoreApplication::translate("ZrPlanAreas", "1 no-go area")
                                   : Tr(QT_TRANSLATE_NOOP("ZrPlanAreas", "%1 no-go areas"), noGo.size()));
    if (margin != 0.0)
        parts << QCoreApplication::translate("ZrPlanAreas", "the distance to no-go areas");
    return parts.join(QLatin1String(", "));
}

void ZrPlanAreas::ToJson(QJsonObject& root) const
{
    root[areasKey] = AreasToJson(areas);
    root[noGoKey] = AreasToJson(noGo);
    root[marginKey] = margin;
}

ZrPlanAreas ZrPlanAreas::FromJson(const QJsonObject& root)
{
    return {AreasFromJson(root[areasKey]), AreasFromJson(root[noGoKey]), root[marginKey].toDouble()};
}

bool operator==(const ZrPlanAreas& a, const ZrPlanAreas& b)
{
    return SameBits(a.margin, b.margin) && SameAreas(a.areas, b.areas) && SameAreas(a.noGo, b.noGo);
}
