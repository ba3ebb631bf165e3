#include "ZrKit/map/ZrWaterfallPings.h"

#include "ZrKit/sonar/ZrSonarBlanking.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrUtil/IZrProgress.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

/// Of the samples at each end of the contrast; speckle has few, very bright ones.
constexpr double clipped = 0.01;
/// Without an altitude so much of the range is left out of the contrast: the outgoing pulse.
constexpr double pulseShare = 0.05;

ZrSonarGainSettings Automatic()
{
    ZrSonarGainSettings settings;
    settings.mode = ZrSonarGainSettings::gainAuto;
    return settings;
}

} // namespace

ZrWaterfallPings::ZrWaterfallPings(ZrSonarLog& log, std::shared_ptr<const ZrSonarGeo> geo)
    : m_log(log)
    , m_geo(std::move(geo))
    , m_gain(Automatic())
{
    m_contrast.clip = clipped;
    m_contrast.gamma = 1.0;
}

void ZrWaterfallPings::SetGeo(std::shared_ptr<const ZrSonarGeo> geo)
{
    const std::lock_guard lock(m_mutex);
    m_geo.swap(geo);
}

std::shared_ptr<const ZrSonarGeo> ZrWaterfallPings::Geo() const
{
    const std::lock_guard lock(m_mutex);
    return m_geo;
}

std::size_t ZrWaterfallPings::Count() const
{
    return m_log.Pings().size();
}

bool ZrWaterfallPings::Report(std::size_t done, std::size_t all)
{
    if (progress && all > 0)
        progress->UpdateProgress(static_cast<int>(100 * done / all));
    return !cancel;
}

bool ZrWaterfallPings::Learn()
{
    const std::size_t count = Count();
    const std::size_t step = std::max<std::size_t>((count + MostLearnt - 1) / MostLearnt, 1);
    const std::shared_ptr<const ZrSonarGeo> geo = Geo();
    const auto altitude = [&geo](std::size_t ping) {
        return geo->KnowsAltitudes() ? geo->Altitude(ping) : std::numeric_limits<double>::quiet_NaN();
    };
    for (int pass = 0; pass < 2; ++pass) {
        for (std::size_t ping = 0; ping < count; ping += step) {
            if (!Report(ping + static_cast<std::size_t>(pass) * count, 2 * count))
                return false;
            for (const eSonarSide side : {sidePort, sideStarboard}) {
                const double range = m_log.Pings().Side(ping, side).slantRange;
                if (!m_log.ReadSamples(ping, side, m_samples))
                    continue;
                const double height = altitude(ping);
                if (pass == 0) {
                    m_gain.Learn(m_samples, side, range, height);
                    continue;
                }
                m_gain.Apply(m_samples, side, range, height);
                const double from = std::isnan(height) ? pulseShare : height / range;
                const double first = std::clamp(from, 0.0, 1.0) * static_cast<double>(m_samples.size());
                const std::size_t skipped
                    = std::min(static_cast<std::size_t>(std::ceil(first)), m_samples.size());
                m_contrast.Add(zr::span<const u16>(m_samples).subspan(skipped, m_samples.size() - skipped));
            }
        }
        if (pass == 0)
            m_gain.Prepare();
    }
    m_contrast.Measure();
    return Report(1, 1);
}

void ZrWaterfallPings::Make(std::size_t ping, ZrWaterfallLine& line)
{
    line = ZrWaterfallLine();
    if (ping >= Count())
        return;
    line.time = m_log.Pings().Time(ping);
    const std::shared_ptr<const ZrSonarGeo> geo = Geo();
    const double altitude = geo->KnowsAltitudes() ? geo->Altitude(ping) : line.altitude;
    if (altitude > 0.0)
        line.altitude = altitude;
    line.along = geo->Track().Distance(ping);
    for (const eSonarSide side : {sidePort, sideStarboard}) {
        const auto at = static_cast<std::size_t>(side);
        const double range = m_log.Pings().Side(ping, side).slantRange;
        if (!m_log.ReadSamples(ping, side, m_samples))
            continue;
        ZrSonarBlanking::Apply(m_blanking, m_samples, range, line.altitude);
        m_gain.Apply(m_samples, side, range, line.altitude);
        line.samples[at].resize(m_samples.size());
        m_contrast.Map(m_samples, line.samples[at]);
        line.range[at] = range;
    }
}
