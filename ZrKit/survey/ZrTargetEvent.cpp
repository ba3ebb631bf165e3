#include "ZrKit/survey/ZrTargetEvent.h"

#include <QRegularExpression>
#include <QStringList>

#include <cmath>

namespace {

const QString separator = QStringLiteral("; ");

struct Measure
{
    const char* name;
    double ZrSonarTarget::*value;
};

constexpr Measure measures[] = {{"slant range", &ZrSonarTarget::slantRange},
    {"ground range", &ZrSonarTarget::groundRange}, {"altitude", &ZrSonarTarget::altitude},
    {"length", &ZrSonarTarget::length}, {"width", &ZrSonarTarget::width}, {"height", &ZrSonarTarget::height}};

/// Takes "NAME 12.345 m".
bool Take(const QString& part, ZrSonarTarget& target)
{
    for (const Measure& measure : measures) {
        const QString name = QLatin1String(measure.name) + QLatin1Char(' ');
        if (!part.startsWith(name) || !part.endsWith(QLatin1String(" m")))
            continue;
        bool isNumber = false;
        const double value = part.mid(name.size(), part.size() - name.size() - 2).toDouble(&isNumber);
        if (isNumber && std::isfinite(value))
            target.*measure.value = value;
        return isNumber && std::isfinite(value);
    }
    return false;
}

} // namespace

ZrLogEvt ZrTargetEvent::ToEvent(const ZrSonarTarget& target, const QString& name)
{
    ZrLogEvt evt(target.time, esUser, target.name.isEmpty() ? name : target.name);
    QStringList parts;
    parts << QStringLiteral("Target %1, %2")
                 .arg(target.position.lat, 0, 'f', 8)
                 .arg(target.position.lng, 0, 'f', 8);
    parts << QStringLiteral("%1, ping %2, sample %3")
                 .arg(target.spot.side == sidePort ? QStringLiteral("port") : QStringLiteral("starboard"))
                 .arg(target.spot.ping)
                 .arg(target.spot.sample, 0, 'f', 1);
    for (const Measure& measure : measures) {
        if (std::isfinite(target.*measure.value))
            parts << QStringLiteral("%1 %2 m")
                         .arg(QLatin1String(measure.name))
                         .arg(target.*measure.value, 0, 'f', 3);
    }
    if (!target.remark.isEmpty())
        parts << target.remark.simplified();
    evt.detail = parts.join(separator);
    return evt;
}

bool ZrTargetEvent::ToTarget(const ZrLogEvt& evt, ZrSonarTarget& target)
{
    static const QRegularExpression start(
        QStringLiteral("^Target (-?[0-9.]+|nan), (-?[0-9.]+|nan); (port|starboard), ping ([0-9]+), sample "
                       "([0-9.]+)(?:; |$)"));
    const QRegularExpressionMatch match = start.match(evt.detail);
    if (!match.hasMatch())
        return false;
    ZrSonarTarget found;
    found.name = evt.text;
    found.time = evt.time;
    bool areNumbers[4];
    found.position = {match.captured(1).toDouble(&areNumbers[0]), match.captured(2).toDouble(&areNumbers[1])};
    found.spot.side = match.captured(3) == QLatin1String("port") ? sidePort : sideStarboard;
    found.spot.ping = static_cast<std::size_t>(match.captured(4).toULongLong(&areNumbers[2]));
    found.spot.sample = match.captured(5).toDouble(&areNumbers[3]);
    for (const bool isNumber : areNumbers) {
        if (!isNumber)
            return false;
    }
    QStringList parts = evt.detail.mid(match.capturedLength()).split(separator, Qt::SkipEmptyParts);
    while (!parts.isEmpty() && Take(parts.first(), found))
        parts.removeFirst();
    found.remark = parts.join(separator);
    target = found;
    return true;
}
