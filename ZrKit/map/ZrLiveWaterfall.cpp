#include "ZrKit/map/ZrLiveWaterfall.h"

#include "ZrUtil/ZrEndian.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace {

/// Speckle has few, very bright samples: the share of them that may be all white. As of a recorded line.
constexpr double clipped = 0.01;

/// Gain and contrast are looked at so often, in lines.
constexpr i64 lookLines = 16;

/// For so many lines without echoes the sea floor is where it was.
constexpr int mostMissed = 10;

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

/// The share of its way that the contrast goes each time.
constexpr float easing = 0.25F;

std::vector<u16> Widened(const ZrPingRecord& ping)
{
    std::vector<u16> samples(static_cast<std::size_t>(ping.samples.size() / ping.sampleWidth));
    const auto* in = reinterpret_cast<const u8*>(ping.samples.constData());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (ping.sampleWidth == 1)
            samples[i] = static_cast<u16>(in[i] * 257);
        else if (ping.sampleWidth == 2)
            samples[i] = zr::load_le<u16>(in + 2 * i);
        else
            samples[i] = static_cast<u16>(zr::load_le<u32>(in + 4 * i) >> 16);
    }
    return samples;
}

/// Where the sea floor begins, as a share of the range.
double FloorShare(double altitude, double range)
{
    // An altitude beyond the range says nothing about what is seen.
    return altitude > 0.0 && altitude < range ? altitude / range : ZrLiveWaterfall::PulseShare;
}

bool IsDoubled(i64 lines)
{
    return (lines & (lines - 1)) == 0;
}

void DimPulse(std::vector<u8>& bytes, double altitude, double range)
{
    double reach = ZrLiveWaterfall::PulseShare * range;
    if (altitude > 0.0)
        reach = std::min(reach, altitude / 2.0);
    const double count = std::ceil(reach / range * static_cast<double>(bytes.size()));
    const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(count);
    std::replace_if(
        bytes.begin(), end, [](u8 value) { return value > ZrLiveWaterfall::PulseMost; },
        ZrLiveWaterfall::PulseMost);
}

} // namespace

ZrLiveWaterfall::ZrLiveWaterfall(int lines, int width)
    : m_ring(lines, width)
    , m_echoes(ZrBottomTrackerSettings())
{
    Clear();
}

void ZrLiveWaterfall::Add(const ZrPingRecord& ping, double time, double altitude)
{
    if (ping.side > 1 || (ping.sampleWidth != 1 && ping.sampleWidth != 2 && ping.sampleWidth != 4)
        || !std::isfinite(ping.slantRange) || ping.slantRange <= 0.0F)
        return;
    const eSonarSide side = ping.side == 0 ? sidePort : sideStarboard;
    std::vector<u16> samples = Widened(ping);
    if (samples.empty())
        return;
    const bool isBegun = !m_begun.samples[sidePort].empty() || !m_begun.samples[sideStarboard].empty();
    if (isBegun && (ping.pingNumber != m_number || !m_begun.samples[side].empty()))
        Finish();
    m_number = ping.pingNumber;
    m_begun.time = time;
    m_begun.altitude = altitude;
    m_begun.range[side] = static_cast<double>(ping.slantRange);
    m_begun.samples[side] = std::move(samples);
    if (!m_begun.samples[sidePort].empty() && !m_begun.samples[sideStarboard].empty())
        Finish();
}

/// Puts the line into the ring and begins another one.
void ZrLiveWaterfall::Finish()
{
    FindBottom(m_begun);
    m_lines.push_back(std::move(m_begun));
    m_begun = Raw();
    if (m_lines.size() > static_cast<std::size_t>(std::max(m_ring.Capacity(), 1)))
        m_lines.pop_front();
    Learn();
    ZrWaterfallLine line;
    Make(m_lines.back(), line);
    m_ring.Append(line);
}

void ZrLiveWaterfall::FindBottom(Raw& raw)
{
    ZrBottomEchoes::Side sides[2];
    for (const eSonarSide side : {sidePort, sideStarboard})
        sides[side] = {raw.samples[side], raw.range[side]};
    const bool isTold = raw.altitude > 0.0;
    const std::vector<ZrBottomEcho>& echoes
        = m_echoes.Find(sides[sidePort], sides[sideStarboard], isTold ? raw.altitude : m_bottom);
    const bool isFound = !echoes.empty() && echoes.front().strength >= ZrBottomTrackerSettings().strength;
    m_found.push_back(isFound ? echoes.front().altitude : unknown);
    if (m_found.size() > BottomLines)
        m_found.pop_front();
    std::vector<double> sorted;
    std::copy_if(m_found.begin(), m_found.end(), std::back_inserter(sorted),
        [](double altitude) { return !std::isnan(altitude); });
    // Noise has an edge now and then.
    if (2 * sorted.size() > BottomLines) {
        const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
        std::nth_element(sorted.begin(), middle, sorted.end());
        m_bottom = *middle;
        m_missed = 0;
    } else if (++m_missed > mostMissed) {
        m_bottom = unknown;
    }
    if (!std::isnan(m_bottom))
        raw.altitude = m_bottom;
}

void ZrLiveWaterfall::Make(const Raw& raw, ZrWaterfallLine& line) const
{
    line = ZrWaterfallLine();
    line.time = raw.time;
    line.altitude = raw.altitude;
    for (const eSonarSide side : {sidePort, sideStarboard}) {
        if (raw.samples[side].empty())
            continue;
        std::vector<u16> samples = raw.samples[side];
        m_gain->Apply(samples, side, raw.range[side], raw.altitude);
        line.samples[side].resize(samples.size());
        m_contrast.Map(samples, line.samples[side]);
        DimPulse(line.samples[side], raw.altitude, raw.range[side]);
        line.range[side] = raw.range[side];
    }
}

void ZrLiveWaterfall::Learn()
{
    const Raw& newest = m_lines.back();
    for (const eSonarSide side : {sidePort, sideStarboard}) {
        if (!newest.samples[side].empty())
            m_gain->Learn(newest.samples[side], side, newest.range[side], newest.altitude);
    }
    ++m_learnt;
    const bool isDoubled = IsDoubled(m_learnt);
    if (!isDoubled && m_learnt % lookLines != 0)
        return;
    m_gain->Prepare();
    MeasureContrast(isDoubled);
    if (isDoubled)
        MakeAll();
}

/// All lines of the ring.
void ZrLiveWaterfall::MakeAll()
{
    // The last one is not in it yet.
    const i64 first = m_ring.End() - static_cast<i64>(m_lines.size()) + 1;
    ZrWaterfallLine line;
    for (i64 number = std::max(first, i64(0)); number < m_ring.End(); ++number) {
        Make(m_lines[static_cast<std::size_t>(number - first)], line);
        m_ring.Put(number, line);
    }
}

/// That of the last lines; unless it is to be so at once, a part of the way there.
void ZrLiveWaterfall::MeasureContrast(bool isAtOnce)
{
    ZrSonarContrast contrast;
    contrast.clip = clipped;
    std::vector<u16> samples;
    const auto end = m_lines.end();
    for (auto raw = end - std::min(ContrastLines, static_cast<i64>(m_lines.size())); raw != end; ++raw) {
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            samples = raw->samples[side];
            m_gain->Apply(samples, side, raw->range[side], raw->altitude);
            const auto size = static_cast<double>(samples.size());
            const auto skipped
                = static_cast<std::size_t>(std::floor(size * FloorShare(raw->altitude, raw->range[side])));
            contrast.Add(zr::span<const u16>(samples).subspan(skipped, samples.size() - skipped));
        }
    }
    contrast.Measure();
    float lo = contrast.Lo();
    float hi = contrast.Hi();
    if (!isAtOnce) {
        lo = m_contrast.Lo() + easing * (lo - m_contrast.Lo());
        hi = m_contrast.Hi() + easing * (hi - m_contrast.Hi());
    }
    m_contrast.SetRange(lo, hi);
}

void ZrLiveWaterfall::Clear()
{
    m_ring.Clear();
    m_begun = Raw();
    ZrSonarGainSettings settings;
    settings.mode = ZrSonarGainSettings::gainAuto;
    m_gain = std::make_unique<ZrSonarGain>(settings);
    m_contrast = ZrSonarContrast();
    m_contrast.gamma = 1.0;
    m_lines.clear();
    m_found.clear();
    m_bottom = unknown;
    m_missed = 0;
    m_learnt = 0;
}
