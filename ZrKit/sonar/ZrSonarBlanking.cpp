#include "ZrKit/sonar/ZrSonarBlanking.h"

#include <algorithm>
#include <cmath>

namespace {

/// Without an altitude the pulse is looked for in this share of the range.
constexpr double pulseShare = 0.05;

} // namespace

std::size_t ZrSonarBlanking::Count(int kind, zr::span<const u16> samples, double slantRange, double altitude)
{
    if (kind <= none || kind >= kindCount || samples.empty() || !(slantRange > 0.0)
        || !std::isfinite(slantRange))
        return 0;
    const bool isKnown = std::isfinite(altitude) && altitude > 0.0;
    const double share = isKnown ? std::min(altitude / slantRange, 1.0) : pulseShare;
    const auto end = static_cast<std::size_t>(share * static_cast<double>(samples.size()));
    if (kind == water && isKnown)
        return end;
    const u16 loudest = *std::max_element(samples.begin(), samples.end());
    // Silence is no pulse.
    if (loudest == 0)
        return 0;
    std::size_t count = 0;
    while (count < end && 2 * static_cast<u32>(samples[count]) >= loudest)
        ++count;
    return count;
}

std::size_t ZrSonarBlanking::Apply(int kind, zr::span<u16> samples, double slantRange, double altitude)
{
    const std::size_t count
        = Count(kind, zr::span<const u16>(samples.data(), samples.size()), slantRange, altitude);
    std::fill_n(samples.begin(), count, u16(0));
    return count;
}
