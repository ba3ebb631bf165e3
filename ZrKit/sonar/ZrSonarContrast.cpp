#include "ZrKit/sonar/ZrSonarContrast.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t values = 65536;
constexpr double usualClip = 0.0001;
constexpr double usualGamma = 0.6;

/// The number of samples of \p count that are cut away at either end.
u64 Outside(u64 count, double clip)
{
    if (clip == usualClip)
        return count / 10000; // in integers, as `SonarDataPkt` counts
    return clip > 0.0 ? static_cast<u64>(static_cast<double>(count) * std::min(clip, 0.5)) : 0;
}

} // namespace

ZrSonarContrast::ZrSonarContrast()
    : m_counts(values, 0)
    , m_table(values, 0)
{
    FillTable();
}

void ZrSonarContrast::Add(zr::span<const u16> samples)
{
    for (const u16 value : samples)
        ++m_counts[value];
}

void ZrSonarContrast::Measure()
{
    u64 count = 0;
    for (const u64 n : m_counts)
        count += n;
    const u64 outside = Outside(count, clip);
    std::size_t lo = 0;
    u64 sum = 0;
    for (std::size_t v = 1; v < values && lo == 0; ++v) {
        sum += m_counts[v];
        if (sum > outside)
            lo = v;
    }
    std::size_t hi = 0;
    sum = 0;
    for (std::size_t v = values; v-- > 0 && hi == 0;) {
        sum += m_counts[v];
        if (sum > outside)
            hi = v;
    }
    if (lo != 0 || hi != 0)
        SetRange(static_cast<float>(lo), static_cast<float>(hi));
}

void ZrSonarContrast::SetRange(float lo, float hi)
{
    if (!std::isfinite(lo) || !std::isfinite(hi))
        return;
    m_lo = lo;
    m_hi = hi;
    FillTable();
}

/// Below the range 0, above it 255, as in `SonarDataPkt::ProcessDataImage`.
void ZrSonarContrast::FillTable()
{
    const double power = std::isfinite(gamma) && gamma > 0.0 ? gamma : usualGamma;
    for (std::size_t v = 0; v < values; ++v) {
        const float value = static_cast<float>(v);
        if (value <= m_lo) {
            m_table[v] = 0;
        } else if (value >= m_hi) {
            m_table[v] = 255;
        } else {
            const double share = static_cast<double>(value - m_lo) / static_cast<double>(m_hi - m_lo);
            m_table[v] = static_cast<u8>(std::clamp(std::pow(share, power) * 256.0, 0.0, 255.0));
        }
    }
}

void ZrSonarContrast::Map(zr::span<const u16> in, zr::span<u8> out) const
{
    const std::size_t count = std::min(in.size(), out.size());
    for (std::size_t i = 0; i < count; ++i)
        out[i] = m_table[in[i]];
}
