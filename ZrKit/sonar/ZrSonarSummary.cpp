#include "ZrKit/sonar/ZrSonarSummary.h"

#include "ZrKit/sonar/ZrSlantRange.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <cmath>

namespace {

/// Times that fall by no more than this are out of order, not set back, seconds.
constexpr double disorder = 1.0;

bool IsKnown(const ZrLocalPoint& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

/// Metres of seabed across the track that a ping shows.
double Swath(const ZrSonarPing& ping)
{
    double width = 0.0;
    for (const ZrSonarChannel& side : ping.sides) {
        if (!side.IsThere() || side.sampleCount == 0)
            continue;
        const double altitude = ping.pose.altitude;
        width += std::isfinite(altitude) ? ZrSlantRange::Ground(side.slantRange, altitude) : side.slantRange;
    }
    return width;
}

} // namespace

void ZrSonarSummary::Range::Add(double value)
{
    if (!std::isfinite(value))
        return;
    least = std::fmin(least, value);
    most = std::fmax(most, value);
}

ZrSonarSummary::ZrSonarSummary(const ZrSonarPings& from, const ZrSonarTrack& track)
    : pings(from.size())
{
    for (std::size_t i = 0; i < from.size(); ++i) {
        const ZrSonarPing& ping = from[i];
        for (const eSonarSide s : {sidePort, sideStarboard}) {
            const ZrSonarChannel& channel = ping.sides[s];
            if (!channel.IsThere())
                continue;
            ++sides[s].pings;
            sides[s].samples.Add(channel.sampleCount);
            sides[s].slantRange.Add(channel.slantRange);
            sides[s].frequency.Add(static_cast<double>(channel.frequency));
            sides[s].soundSpeed.Add(static_cast<double>(channel.soundSpeed));
        }
        pairs += ping.sides[sidePort].IsThere() && ping.sides[sideStarboard].IsThere() ? 1 : 0;
        sources.insert(ping.source);
        time.Add(ping.time);
        altitude.Add(ping.pose.altitude);
        depth.Add(ping.pose.depth);
        const bool placed = IsKnown(track.Point(i));
        withoutPosition += placed ? 0 : 1;
        farFromFix += placed && ping.pose.gap > farFrom ? 1 : 0;
        withoutAltitude += std::isfinite(ping.pose.altitude) ? 0 : 1;
    }

    std::size_t steps = 0;
    double stepTime = 0.0;
    std::size_t waySteps = 0;
    double wayTime = 0.0;
    double ground = 0.0;
    for (std::size_t i = 1; i < from.size(); ++i) {
        const double step = from[i].time - from[i - 1].time;
        if (!(step >= -disorder && step <= longestStep)) {
            ++pauses;
            pauseTime += step > 0.0 && std::isfinite(step) ? step : 0.0;
            continue;
        }
        ++steps;
        stepTime += step;
        if (!IsKnown(track.Point(i - 1)) || !IsKnown(track.Point(i)))
            continue;
        const double way = track.Distance(i) - track.Distance(i - 1);
        ++waySteps;
        wayTime += step;
        length += way;
        ground += way * (Swath(from[i - 1]) + Swath(from[i])) / 2.0;
    }
    if (stepTime > 0.0)
        rate = static_cast<double>(steps) / stepTime;
    if (wayTime > 0.0)
        speed = length / wayTime;
    if (waySteps > 0) {
        spacing = length / static_cast<double>(waySteps);
        area = ground;
    }
}
