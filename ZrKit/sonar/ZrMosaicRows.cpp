#include "ZrKit/sonar/ZrMosaicRows.h"

#include "ZrKit/sonar/ZrSonarGain.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarLog.h"

#include <algorithm>
#include <cmath>

namespace {

/// The sum of the samples up to \p at, which may lie within one.
double SumTo(const std::vector<double>& sums, double at)
{
    const auto i = std::min(static_cast<std::size_t>(at), sums.size() - 2);
    return sums[i] + (sums[i + 1] - sums[i]) * (at - static_cast<double>(i));
}

} // namespace

ZrMosaicRows::ZrMosaicRows(ZrSonarLog& log, const ZrSonarGeo& geo, const ZrSonarGain& gain, eSonarSide side)
    : m_log(log)
    , m_geo(geo)
    , m_gain(gain)
    , m_side(side)
    , m_rows(Kept)
{
}

void ZrMosaicRows::Load(std::size_t ping, Row& row)
{
    row.ping = ping;
    row.sums.clear();
    if (!m_log.ReadSamples(ping, m_side, m_samples) || m_samples.empty())
        return;
    const ZrSonarChannel channel = m_log.Pings().Side(ping, m_side);
    row.altitude = m_geo.Altitude(ping);
    m_gain.Apply(m_samples, m_side, channel.slantRange, row.altitude);
    row.perMetre = 1.0 / channel.SampleLength();
    row.sums.reserve(m_samples.size() + 1);
    double sum = 0.0;
    row.sums.push_back(sum);
    for (const u16 sample : m_samples)
        row.sums.push_back(sum += sample);
}

const ZrMosaicRows::Row& ZrMosaicRows::Get(std::size_t ping)
{
    Row& row = m_rows[ping % Kept];
    if (row.ping != ping)
        Load(ping, row);
    return row;
}

double ZrMosaicRows::At(std::size_t ping, double range, double width)
{
    const Row& row = Get(ping);
    const double slant = std::hypot(range, row.altitude);
    const double at = slant * row.perMetre;
    const double end = static_cast<double>(row.sums.size()) - 1.0;
    if (!(at < end))
        return std::numeric_limits<double>::quiet_NaN();
    // A stretch of ground is shorter in slant range, by the cosine of the angle of incidence.
    const double covered = slant > 0.0 ? width * row.perMetre * range / slant : 0.0;
    const double half = covered > 1.0 ? covered / 2.0 : 0.5;
    if (width == 0.0) {
        const auto i = static_cast<std::size_t>(at);
        return row.sums[i + 1] - row.sums[i];
    }
    // Over one sample's length the mean is the linear value between the middles of two samples.
    const double from = std::max(at - half, 0.0);
    const double to = std::min(at + half, end);
    return (SumTo(row.sums, to) - SumTo(row.sums, from)) / (to - from);
}
