#include "ZrKit/sonar/ZrBottomTracker.h"

#include "ZrKit/sonar/ZrBottomPath.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrUtil/IZrProgress.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int mostPings = 1000; ///< for settings in pings

void Keep(double& value, double least, double most, double ordinary)
{
    if (!(value >= least && value <= most))
        value = ordinary;
}

void Keep(int& value, int least, int ordinary)
{
    if (value < least || value > mostPings)
        value = ordinary;
}

/// \p settings with the default for each number that is out of its range.
ZrBottomTrackerSettings Sound(ZrBottomTrackerSettings settings)
{
    const ZrBottomTrackerSettings ordinary;
    constexpr double most = 1.0e5; // metres; farther than any sonar looks
    constexpr double tiny = 1.0e-3;
    Keep(settings.blanking, 0.0, most, ordinary.blanking);
    if (!(settings.farthest > 0.0))
        settings.farthest = ordinary.farthest;
    Keep(settings.window, 0.05, 50.0, ordinary.window);
    Keep(settings.contrast, 1.0 + tiny, 1.0e4, ordinary.contrast);
    Keep(settings.sidesWithin, tiny, most, ordinary.sidesWithin);
    Keep(settings.strength, 0.0, 0.99, ordinary.strength);
    Keep(settings.step, tiny, most, ordinary.step);
    Keep(settings.falseEcho, 1, ordinary.falseEcho);
    Keep(settings.recordedWithin, 0.0, most, ordinary.recordedWithin);
    Keep(settings.recordedShare, 0.0, most, ordinary.recordedShare);
    Keep(settings.bridge, 0, ordinary.bridge);
    Keep(settings.medianReach, 0, ordinary.medianReach);
    Keep(settings.meanReach, 0, ordinary.meanReach);
    return settings;
}

double RangeOf(const ZrSonarChannel& channel)
{
    return channel.IsThere() ? channel.slantRange : 0.0;
}

/// How far a window of \p reach around \p at goes to either side: shorter near the ends, so that it never
/// leans to one of them.
std::size_t ReachAt(std::size_t at, std::size_t count, int reach)
{
    return std::min({static_cast<std::size_t>(reach), at, count - 1 - at});
}

} // namespace

ZrBottomTracker::ZrBottomTracker(const ZrBottomTrackerSettings& settings)
    : m_settings(Sound(settings))
{
}

ZrBottomEcho ZrBottomTracker::Find(const ZrBottomEchoes::Side& port, const ZrBottomEchoes::Side& starboard,
    double expected, const ZrBottomTrackerSettings& settings)
{
    const ZrBottomTrackerSettings sound = Sound(settings);
    ZrBottomEchoes echoes(sound);
    const std::vector<ZrBottomEcho>& found = echoes.Find(port, starboard, expected);
    return found.empty() || found.front().strength < sound.strength ? ZrBottomEcho() : found.front();
}

std::vector<double> ZrBottomTracker::Track(ZrSonarLog& log)
{
    return Track(log, Part());
}

std::vector<double> ZrBottomTracker::Track(ZrSonarLog& log, const Part& part)
{
    m_confidences.clear();
    std::vector<ZrBottomEcho> chosen;
    if (!Choose(log, part, chosen))
        return {};
    std::vector<double> line(chosen.size());
    std::transform(
        chosen.begin(), chosen.end(), line.begin(), [](const ZrBottomEcho& echo) { return echo.altitude; });
    Bridge(line);
    line = Smooth(line);
    m_confidences.resize(chosen.size());
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        const double off = std::fabs(chosen[i].altitude - line[i]) / m_settings.sidesWithin;
        // Not for NaN either.
        if (off < 1.0)
            m_confidences[i] = chosen[i].strength * (1.0 - off);
    }
    return line;
}

/// The echo that is the seabed, ping by ping; false when cancelled.
bool ZrBottomTracker::Choose(ZrSonarLog& log, const Part& part, std::vector<ZrBottomEcho>& chosen)
{
    const std::size_t end = std::min(part.end, log.Pings().size());
    const std::size_t first = std::min(part.first, end);
    const std::size_t count = end - first;
    chosen.reserve(count);
    ZrBottomEchoes echoes(m_settings);
    ZrBottomPath path(m_settings);
    const auto take = [&] {
        const std::vector<ZrBottomEcho> decided = path.Take();
        chosen.insert(chosen.end(), decided.begin(), decided.end());
    };
    std::vector<u16> samples[2];
    int told = -1;
    for (std::size_t i = 0; i < count; ++i) {
        if (cancel)
            return false;
        const int percent = static_cast<int>(i * 100 / count);
        if (progress && percent != told)
            progress->UpdateProgress(percent);
        told = percent;
        const ZrSonarPing ping = log.Pings()[first + i];
        ZrBottomEchoes::Side sides[2];
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            if (part.sides[side] && log.ReadSamples(first + i, side, samples[side]))
                sides[side] = {samples[side], RangeOf(ping.sides[side])};
        }
        const bool isExpected = i < part.expected.size() && !std::isnan(part.expected[i]);
        const double expected = isExpected ? part.expected[i] : ping.pose.altitude;
        path.Add(echoes.Find(sides[sidePort], sides[sideStarboard], expected));
        take();
    }
    path.Finish();
    take();
    if (progress && count > 0)
        progress->UpdateProgress(100);
    return true;
}

/// Fills short gaps between pings that can be joined in ordinary steps.
void ZrBottomTracker::Bridge(std::vector<double>& line) const
{
    const auto longest = static_cast<std::size_t>(m_settings.bridge);
    std::size_t from = line.size(); // the last ping with an altitude
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (std::isnan(line[i]))
            continue;
        const std::size_t steps = from < i ? i - from : 0;
        const double rise = steps > 0 ? (line[i] - line[from]) / static_cast<double>(steps) : 0.0;
        if (steps > 1 && steps - 1 <= longest && std::fabs(rise) <= m_settings.step) {
            for (std::size_t k = 1; k < steps; ++k)
                line[from + k] = line[from] + rise * static_cast<double>(k);
        }
        from = i;
    }
}

std::vector<double> ZrBottomTracker::Smooth(const std::vector<double>& line) const
{
    std::vector<double> medians = line;
    std::vector<double> window;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (std::isnan(line[i]))
            continue;
        const std::size_t reach = ReachAt(i, line.size(), m_settings.medianReach);
        window.clear();
        for (std::size_t k = i - reach; k <= i + reach; ++k) {
            if (!std::isnan(line[k]))
                window.push_back(line[k]);
        }
        const auto middle = window.begin() + static_cast<std::ptrdiff_t>(window.size() / 2);
        std::nth_element(window.begin(), middle, window.end());
        medians[i] = *middle;
    }
    std::vector<double> means = medians;
    for (std::size_t i = 0; i < medians.size(); ++i) {
        const std::size_t reach = ReachAt(i, medians.size(), m_settings.meanReach);
        double sum = 0.0;
        int count = 0;
        for (std::size_t k = i - reach; k <= i + reach; ++k) {
            // Not across a jump: what differs more than that belongs to another seabed.
            if (std::fabs(medians[k] - medians[i]) <= m_settings.step * (m_settings.meanReach + 1)) {
                sum += medians[k];
                ++count;
            }
        }
        if (count > 0)
            means[i] = sum / count;
    }
    return means;
}
