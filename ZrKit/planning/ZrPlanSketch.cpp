#include "ZrKit/planning/ZrPlanSketch.h"

#include <QJsonArray>

#include <algorithm>

namespace {

const auto ringKey = QLatin1String("ring");
const auto noGoKey = QLatin1String("no-go");
const auto editedKey = QLatin1String("edited");
const auto editedNoGoKey = QLatin1String("edited no-go");

} // namespace

QJsonObject ZrPlanSketch::ToJson() const
{
    QJsonArray corners;
    for (const ZrGeoPoint& point : ring)
        corners.append(QJsonArray({point.lng, point.lat}));
    return {{ringKey, corners}, {noGoKey, isNoGo}, {editedKey, edited}, {editedNoGoKey, isEditedNoGo}};
}

ZrPlanSketch ZrPlanSketch::FromJson(const QJsonObject& object)
{
    ZrPlanSketch sketch;
    const QJsonArray corners = object[ringKey].toArray();
    for (const QJsonValue& corner : corners) {
        const ZrGeoPoint point{corner[1].toDouble(std::nan("")), corner[0].toDouble(std::nan(""))};
        if (point.IsValid())
            sketch.ring.push_back(point);
    }
    sketch.isNoGo = object[noGoKey].toBool();
    sketch.edited = std::max(object[editedKey].toInt(-1), -1);
    sketch.isEditedNoGo = object[editedNoGoKey].toBool();
    return sketch;
}

bool operator==(const ZrPlanSketch& a, const ZrPlanSketch& b)
{
    return a.ring == b.ring && a.isNoGo == b.isNoGo && a.edited == b.edited
        && a.isEditedNoGo == b.isEditedNoGo;
}
