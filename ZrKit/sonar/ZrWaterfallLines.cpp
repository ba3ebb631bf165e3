#include "ZrKit/sonar/ZrWaterfallLines.h"

#include "ZrKit/sonar/ZrSlantRange.h"
#include "ZrKit/sonar/ZrSonarGain.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrWaterfallMap.h"

#include <algorithm>
#include <cmath>

ZrWaterfallLines::ZrWaterfallLines(ZrSonarLog& log, const ZrWaterfallMap& map, const ZrSonarGain& gain)
    : m_log(log)
    , m_map(map)
    , m_gain(gain)
    , m_sums(static_cast<std::size_t>(map.Width()))
    , m_shares(m_sums.size())
    , m_amplitudes(m_sums.size())
    , m_known(m_sums.size())
{
}

const ZrWaterfallLines::Line& ZrWaterfallLines::At(std::size_t ping)
{
    for (const Line& line : m_lines) {
        if (line.ping == ping)
            return line;
    }
    Line& line = m_lines[m_older];
    m_older = 1 - m_older;
    line.ping = ping;
    line.amplitudes.assign(m_sums.size(), 0);
    const int left = m_map.Columns(sidePort);
    for (const eSonarSide side : {sidePort, sideStarboard}) {
        const int columns = m_map.Columns(side);
        int& known = side == sidePort ? line.knownLeft : line.knownRight;
        known = 0;
        if (columns == 0 || !m_log.ReadSamples(ping, side, m_samples))
            continue;
        const double slantRange = m_log.Pings().Side(ping, side).slantRange;
        const double height = m_map.Altitude(static_cast<double>(ping));
        ZrSonarBlanking::Apply(m_map.Settings().blanking, m_samples, slantRange, height);
        m_gain.Apply(m_samples, side, slantRange, height);
        m_side.resize(static_cast<std::size_t>(columns));
        const double metres = m_map.MetresPerPixel();
        const double altitude = m_map.IsSlantCorrected() ? height : 0.0;
        ZrSlantRange::Correct(m_samples, slantRange, altitude, m_side, columns * metres);
        // Those whose middle has samples.
        const double end = m_map.EndRange(ping, side) / metres;
        known = static_cast<int>(std::clamp(std::floor(end + 0.5), 0.0, static_cast<double>(columns)));
        for (int i = 0; i < known; ++i) {
            const int column = side == sidePort ? left - 1 - i : left + i;
            line.amplitudes[static_cast<std::size_t>(column)] = m_side[static_cast<std::size_t>(i)];
        }
    }
    return line;
}

void ZrWaterfallLines::Add(const Line& line, float share)
{
    const int left = m_map.Columns(sidePort);
    const auto first = static_cast<std::size_t>(left - line.knownLeft);
    const auto end = static_cast<std::size_t>(left + line.knownRight);
    for (std::size_t i = first; i < end; ++i) {
        m_sums[i] += share * static_cast<float>(line.amplitudes[i]);
        m_shares[i] += share;
    }
}

void ZrWaterfallLines::Make(int y)
{
    std::fill(m_sums.begin(), m_sums.end(), 0.0F);
    std::fill(m_shares.begin(), m_shares.end(), 0.0F);
    const ZrWaterfallMap::Row row = m_map.RowAt(y);
    if (row.isMean) {
        const float share = 1.0F / static_cast<float>(row.last - row.first + 1);
        for (std::size_t ping = row.first; ping <= row.last; ++ping)
            Add(At(ping), share);
    } else if (!row.isGap) {
        Add(At(row.first), static_cast<float>(1.0 - row.lastShare));
        if (row.last != row.first)
            Add(At(row.last), static_cast<float>(row.lastShare));
    }
    // A ping without samples leaves its own half of the way to its neighbours empty.
    constexpr float half = 0.4999F;
    for (std::size_t i = 0; i < m_sums.size(); ++i) {
        m_known[i] = m_shares[i] >= half;
        m_amplitudes[i] = m_known[i] != 0 ? static_cast<u16>(std::lround(m_sums[i] / m_shares[i])) : u16(0);
    }
}
