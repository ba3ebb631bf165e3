#include "ZrKit/sonar/ZrSonarGain.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double binLength = 0.25; ///< metres
constexpr std::size_t mostBins = 16384; ///< 4 km
constexpr double mostGain = 16.0;
constexpr std::size_t smoothOver = 4; ///< bins to either side
/// The law is steep near the sonar; nothing of interest lies there.
constexpr double nearest = 0.5;

} // namespace

ZrSonarGain::ZrSonarGain(const ZrSonarGainSettings& settings)
    : m_settings(settings)
{
}

void ZrSonarGain::Learn(zr::span<const u16> samples, eSonarSide side, double slantRange, double altitude)
{
    if (m_settings.mode != ZrSonarGainSettings::gainAuto || samples.empty() || !(slantRange > 0.0))
        return;
    const double step = slantRange / static_cast<double>(samples.size());
    std::vector<Bin>& bins = m_bins[side];
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double range = (static_cast<double>(i) + 0.5) * step;
        if (range < altitude)
            continue;
        const auto bin = std::min(static_cast<std::size_t>(range / binLength), mostBins - 1);
        if (bin >= bins.size())
            bins.resize(bin + 1);
        bins[bin].sum += samples[i];
        bins[bin].count += 1.0;
    }
}

double ZrSonarGain::LawFactor(double range, double slantRange) const
{
    const double r = std::max(range, nearest);
    const double decibels
        = m_settings.spreading * std::log10(r / slantRange) + 2.0 * m_settings.absorption * (r - slantRange);
    return std::pow(10.0, decibels / 20.0);
}

void ZrSonarGain::Prepare()
{
    for (int side = sidePort; side <= sideStarboard; ++side) {
        const std::vector<Bin>& bins = m_bins[side];
        std::vector<double>& factors = m_factors[side];
        factors.assign(bins.size(), 1.0);
        Bin all;
        for (const Bin& bin : bins) {
            all.sum += bin.sum;
            all.count += bin.count;
        }
        for (std::size_t i = 0; i < bins.size(); ++i) {
            Bin near;
            for (std::size_t k = i - std::min(i, smoothOver); k <= std::min(i + smoothOver, bins.size() - 1);
                 ++k) {
                near.sum += bins[k].sum;
                near.count += bins[k].count;
            }
            if (near.sum > 0.0)
                factors[i]
                    = std::clamp((all.sum / all.count) / (near.sum / near.count), 1.0 / mostGain, mostGain);
        }
    }
}

double ZrSonarGain::AutoFactor(eSonarSide side, double range) const
{
    const std::vector<double>& factors = m_factors[side];
    if (factors.empty())
        return 1.0;
    const double last = static_cast<double>(factors.size() - 1);
    const double at = std::clamp(range / binLength - 0.5, 0.0, last);
    const auto i = static_cast<std::size_t>(at);
    const double next = factors[std::min(i + 1, factors.size() - 1)];
    return factors[i] + (next - factors[i]) * (at - static_cast<double>(i));
}

double ZrSonarGain::Factor(eSonarSide side, double range, double slantRange) const
{
    double factor = 1.0;
    if (m_settings.mode == ZrSonarGainSettings::gainLaw)
        factor = LawFactor(range, slantRange);
    else if (m_settings.mode == ZrSonarGainSettings::gainAuto)
        factor = AutoFactor(side, range);
    return m_settings.strength == 1.0 ? factor : std::pow(factor, m_settings.strength);
}

void ZrSonarGain::Apply(zr::span<u16> samples, eSonarSide side, double slantRange) const
{
    if (m_settings.mode == ZrSonarGainSettings::gainNone || !(slantRange > 0.0))
        return;
    const double step = slantRange / static_cast<double>(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double range = (static_cast<double>(i) + 0.5) * step;
        const double value = samples[i] * Factor(side, range, slantRange);
        samples[i] = static_cast<u16>(std::lround(std::min(value, 65535.0)));
    }
}
