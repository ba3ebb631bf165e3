#include "ZrKit/sonar/ZrMosaicPainter.h"

#include "ZrKit/sonar/ZrMosaicRaster.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <algorithm>
#include <cmath>

namespace {

/// Pings averaged to either side where a pixel covers many.
constexpr std::size_t mostCovered = ZrMosaicRows::Kept / 4;

} // namespace

ZrMosaicPainter::ZrMosaicPainter(ZrMosaicRows rows, const ZrSonarTrack& track,
    const std::vector<ZrMosaicPing>& pings, const ZrMosaicSettings& settings, const ZrMosaicFrame& frame,
    ZrMosaicRaster& raster)
    : m_rows(std::move(rows))
    , m_track(track)
    , m_pings(pings)
    , m_settings(settings)
    , m_frame(frame)
    , m_raster(raster)
{
}

double ZrMosaicPainter::Distance(std::size_t k) const
{
    return m_track.Distance(m_pings[k].index);
}

/// The pings within a pixel before and behind the stretch, and their distances: each pixel asks for all.
void ZrMosaicPainter::FindCovered(std::size_t k)
{
    const double pixel = m_frame.resolution;
    m_firstCovered = k;
    m_lastCovered = k + 1;
    while (m_firstCovered > 0 && k - m_firstCovered < mostCovered && m_pings[m_firstCovered - 1].joined
        && Distance(k) - Distance(m_firstCovered - 1) < pixel)
        --m_firstCovered;
    while (m_lastCovered + 1 < m_pings.size() && m_lastCovered - k < mostCovered
        && m_pings[m_lastCovered].joined && Distance(m_lastCovered + 1) - Distance(k + 1) < pixel)
        ++m_lastCovered;
    m_distances.clear();
    for (std::size_t i = m_firstCovered; i <= m_lastCovered; ++i)
        m_distances.push_back(Distance(i));
}

void ZrMosaicPainter::Fill(std::size_t k)
{
    const ZrMosaicPing& a = m_pings[k];
    const ZrMosaicPing& b = m_pings[k + 1];
    const ZrMosaicStrip strip{a.at, b.at, a.ray, b.ray, std::max(a.reach, b.reach)};
    const double pixel = m_frame.resolution;
    FindCovered(k);
    double south = 0.0;
    double north = 0.0;
    strip.Rows(south, north);
    const int firstRow = std::max(static_cast<int>(std::ceil((m_frame.north - north) / pixel - 0.5)), 0);
    const int lastRow
        = std::min(static_cast<int>(std::floor((m_frame.north - south) / pixel - 0.5)), m_frame.height - 1);
    for (int row = firstRow; row <= lastRow; ++row) {
        const double y = m_frame.North(row + 0.5);
        double west = 0.0;
        double east = 0.0;
        if (!strip.Columns(y, west, east))
            continue;
        // A pixel more at either end: the strip itself decides.
        const int first = std::max(static_cast<int>(std::floor((west - m_frame.west) / pixel - 0.5)), 0);
        const int last
            = std::min(static_cast<int>(std::ceil((east - m_frame.west) / pixel - 0.5)), m_frame.width - 1);
        for (int column = first; column <= last; ++column) {
            double share = 0.0;
            double range = 0.0;
            if (!strip.Find({m_frame.East(column + 0.5), y}, share, range) || range < m_settings.nadirGap)
                continue;
            const double amplitude = At(k, share, range);
            if (!std::isnan(amplitude))
                m_raster.Put(column, row, amplitude, range);
        }
    }
}

double ZrMosaicPainter::At(std::size_t k, double share, double range)
{
    if (m_settings.sampling == ZrMosaicSettings::samplingNearest)
        return m_rows.At(m_pings[share < 0.5 ? k : k + 1].index, range, 0.0);
    if (m_lastCovered - m_firstCovered > 1)
        return Mean(k, share, range);
    const double atA = m_rows.At(m_pings[k].index, range, m_frame.resolution);
    const double atB = m_rows.At(m_pings[k + 1].index, range, m_frame.resolution);
    // Where one of them saw less far, the nearer of both decides.
    if (std::isnan(atA) || std::isnan(atB))
        return share < 0.5 ? atA : atB;
    return atA + (atB - atA) * share;
}

/// The mean over the pings that the pixel covers, by weights that fall to 0 one pixel away.
double ZrMosaicPainter::Mean(std::size_t k, double share, double range)
{
    const double here = Covered(k) * (1.0 - share) + Covered(k + 1) * share;
    const double width = std::max(m_frame.resolution, Covered(k + 1) - Covered(k));
    double sum = 0.0;
    double weights = 0.0;
    for (std::size_t i = m_firstCovered; i <= m_lastCovered; ++i) {
        const double weight = width - std::fabs(Covered(i) - here);
        if (!(weight > 0.0))
            continue;
        const double value = m_rows.At(m_pings[i].index, range, m_frame.resolution);
        if (std::isnan(value))
            continue;
        sum += value * weight;
        weights += weight;
    }
    return weights > 0.0 ? sum / weights : std::numeric_limits<double>::quiet_NaN();
}
