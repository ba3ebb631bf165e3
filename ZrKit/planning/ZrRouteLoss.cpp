#include "ZrKit/planning/ZrRouteLoss.h"

#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrUtil/ZrWpts.h"

#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

constexpr double relative = 1e-5;
constexpr double degrees = 1e-6;

bool IsNear(double a, double b)
{
    return std::fabs(a - b) <= relative * std::max({std::fabs(a), std::fabs(b), 1e-9});
}

bool IsSame(const QJsonValue& a, const QJsonValue& b)
{
    return a.isDouble() && b.isDouble() ? IsNear(a.toDouble(), b.toDouble()) : a == b;
}

void Add(QStringList& lost, const QString& what)
{
    if (!lost.contains(what))
        lost << what;
}

} // namespace

void ZrRouteLoss::Compare(const ZrWpt& wpt, const ZrWpt& read, QStringList& lost)
{
    if (!(std::fabs(wpt.lat - read.lat) <= degrees) || !(std::fabs(wpt.lng - read.lng) <= degrees))
        Add(lost, tr("exact positions"));
    if (wpt.name != read.name)
        Add(lost, tr("names as they are"));
    const QJsonObject of = ZrRouteFields::Of(wpt);
    const QJsonObject after = ZrRouteFields::Of(read);
    const QStringList keysAfter = after.keys();
    QSet<QString> keys(keysAfter.begin(), keysAfter.end());
    const QStringList keysOf = of.keys();
    for (const QString& key : keysOf)
        keys.insert(key);
    keys.remove(QStringLiteral("UUID"));
    keys.remove(QStringLiteral("colour"));
    for (const QString& key : qAsConst(keys)) {
        if (IsSame(of[key], after[key]))
            continue;
        if (key == QLatin1String("z") || key == QLatin1String("z type"))
            Add(lost, tr("depths and altitudes"));
        else if (key == QLatin1String("r"))
            Add(lost, tr("turn radii"));
        else if (key == QLatin1String("speed") || key == QLatin1String("speedtype"))
            Add(lost, tr("speeds"));
        else
            Add(lost, tr("further properties of waypoints"));
    }
}

QStringList ZrRouteLoss::Of(ZrRouteFile::eFormat format, const ZrWpts& route)
{
    QStringList lost;
    ZrRouteFile file;
    QByteArray bytes;
    QJsonObject presets;
    ZrWpts read;
    if (format == ZrRouteFile::Settings || route.IsEmpty())
        return lost;
    if (!file.ToBytes(format, route, bytes) || !file.LoadBytes(bytes) || !file.FinishBare(read, presets)) {
        lost << tr("the route");
        return lost;
    }
    if (read.GetCount() != route.GetCount())
        Add(lost, tr("all waypoints"));
    const QJsonObject fields = ZrRouteFields::Of(route);
    const QJsonObject after = ZrRouteFields::Of(read);
    for (auto field = fields.begin(); field != fields.end(); ++field) {
        if (!IsSame(field.value(), after[field.key()]))
            Add(lost, tr("properties of the route"));
    }
    ZrListPos* pos = route.GetHeadPos();
    ZrListPos* posRead = read.GetHeadPos();
    while (pos && posRead)
        Compare(*route.GetNext(pos), *read.GetNext(posRead), lost);
    return lost;
}
