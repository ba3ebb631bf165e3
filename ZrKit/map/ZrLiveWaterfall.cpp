#include "ZrKit/map/ZrLiveWaterfall.h"

#include "ZrUtil/ZrEndian.h"

#include <cmath>

namespace {

/// Sides that the contrast is measured from.
constexpr std::size_t mostRecent = 64;

/// Gain and contrast are made anew after so many sides, each time twice as many, but at most so many.
constexpr u64 longestPause = 1024;

/// Speckle has few, very bright samples: the share of them that may be all white.
constexpr double clipped = 0.01;

constexpr double lift = 0.8; // gamma: shadows stay dark, the sea floor does not

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

bool IsPause(u64 learnt)
{
    return learnt % longestPause == 0 || (learnt < longestPause && (learnt & (learnt - 1)) == 0);
}

} // namespace

ZrLiveWaterfall::ZrLiveWaterfall(int lines, int width)
    : m_ring(lines, width)
    , m_gain(std::make_unique<ZrSonarGain>(ZrSonarGainSettings()))
{
}

void ZrLiveWaterfall::Add(const ZrPingRecord& ping, double time, double altitude)
{
    if (ping.side > 1 || (ping.sampleWidth != 1 && ping.sampleWidth != 2 && ping.sampleWidth != 4)
        || !std::isfinite(ping.slantRange) || ping.slantRange <= 0.0F)
        return;
    Raw raw;
    raw.side = ping.side == 0 ? sidePort : sideStarboard;
    raw.range = static_cast<double>(ping.slantRange);
    raw.altitude = altitude;
    raw.samples = Widened(ping);
    if (raw.samples.empty())
        return;
    const bool isBegun = m_hasSide[sidePort] || m_hasSide[sideStarboard];
    if (isBegun && (ping.pingNumber != m_number || m_hasSide[raw.side]))
        Finish();
    m_number = ping.pingNumber;
    m_line.time = time;
    m_line.altitude = altitude;
    Learn(raw);
    m_gain->Apply(raw.samples, raw.side, raw.range, raw.altitude);
    std::vector<u8>& bytes = m_line.samples[raw.side];
    bytes.resize(raw.samples.size());
    m_contrast.Map(raw.samples, bytes);
    m_line.range[raw.side] = raw.range;
    m_hasSide[raw.side] = true;
    if (m_hasSide[sidePort] && m_hasSide[sideStarboard])
        Finish();
}

/// Puts the line into the ring and begins another one.
void ZrLiveWaterfall::Finish()
{
    m_ring.Append(m_line);
    m_line = ZrWaterfallLine();
    m_hasSide[sidePort] = m_hasSide[sideStarboard] = false;
}

void ZrLiveWaterfall::Learn(const Raw& raw)
{
    m_gain->Learn(raw.samples, raw.side, raw.range, raw.altitude);
    m_recent.push_back(raw);
    if (m_recent.size() > mostRecent)
        m_recent.pop_front();
    if (!IsPause(++m_learnt))
        return;
    m_gain->Prepare();
    ZrSonarContrast contrast;
    contrast.clip = clipped;
    contrast.gamma = lift;
    for (Raw recent : m_recent) {
        m_gain->Apply(recent.samples, recent.side, recent.range, recent.altitude);
        contrast.Add(recent.samples);
    }
    contrast.Measure();
    m_contrast = contrast;
}

void ZrLiveWaterfall::Clear()
{
    m_ring.Clear();
    m_line = ZrWaterfallLine();
    m_hasSide[sidePort] = m_hasSide[sideStarboard] = false;
    m_gain = std::make_unique<ZrSonarGain>(ZrSonarGainSettings());
    m_contrast = ZrSonarContrast();
    m_recent.clear();
    m_learnt = 0;
}
