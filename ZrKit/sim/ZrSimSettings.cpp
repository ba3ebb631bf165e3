#include "ZrKit/sim/ZrSimSettings.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

/// A number and its limits, ends included.
struct Limit
{
    const char* name;
    double value;
    double least;
    double most;
    const char* unit;
};

constexpr double latest = 253402300799.0; // the year 9999

} // namespace

QString ZrSimSettings::Fault() const
{
    const Limit limits[] = {
        {"start", start, 0.0, latest, "s"},
        {"longest duration", maxDuration, 1.0, 365.0 * 86400.0, "s"},
        {"rate of navigation", navRate, 0.1, MaxRate, "Hz"},
        {"rate of fixes", fixRate, 0.0, MaxRate, "Hz"},
        {"rate of depths", depthRate, 0.0, MaxRate, "Hz"},
        {"rate of motions", motionRate, 0.0, MaxRate, "Hz"},
        {"rate of vehicle states", vehicleRate, 0.0, MaxRate, "Hz"},
        {"rate of water temperatures", environmentRate, 0.0, MaxRate, "Hz"},
        {"rate of pings", sonar.rate, 0.0, MaxRate, "Hz"},
        {"range", sonar.range, ZrSimSonarSettings::MinRange, ZrSimSonarSettings::MaxRange, "m"},
        {"number of samples", static_cast<double>(sonar.samples), ZrSimSonarSettings::MinSamples,
            ZrSimSonarSettings::MaxSamples, ""},
        {"speed", vehicle.cruiseSpeed, 0.05, 50.0, "m/s"},
        {"highest speed", vehicle.maxSpeed, 0.05, 50.0, "m/s"},
        {"altitude", vehicle.altitude, 0.0, 11000.0, "m"},
        {"set of the current", vehicle.currentSet, -360.0, 360.0, "degrees"},
        {"drift of the current", vehicle.currentDrift, 0.0, 100.0, "m/s"},
        {"depth of water", floor.depth, 0.0, 11000.0, "m"},
        {"relief", floor.relief, 0.0, 11000.0, "m"},
        {"number of targets", static_cast<double>(scattered), 0.0, static_cast<double>(MaxTargets), ""},
    };
    for (const Limit& limit : limits) {
        if (limit.value >= limit.least && limit.value <= limit.most)
            continue;
        return QCoreApplication::translate("ZrSimSettings", "The %1 is %2 %3; it must be from %4 to %5")
            .arg(QLatin1String(limit.name))
            .arg(limit.value)
            .arg(QLatin1String(limit.unit))
            .arg(limit.least, 0, 'g', 12)
            .arg(limit.most, 0, 'g', 12)
            .replace(QStringLiteral(" ;"), QStringLiteral(";"));
    }
    if (targets.size() > static_cast<std::size_t>(MaxTargets))
        return QCoreApplication::translate("ZrSimSettings", "There are %1 targets; at most %2 can be laid")
            .arg(targets.size())
            .arg(MaxTargets);
    const auto bad = std::find_if(
        targets.begin(), targets.end(), [](const ZrSimTarget& target) { return !target.IsValid(); });
    if (bad != targets.end())
        return QCoreApplication::translate("ZrSimSettings", "Target %1 has a size or a place that cannot be")
            .arg(bad - targets.begin() + 1);
    return {};
}
