#pragma once

#include "ZrKit/sonar/ZrMosaicFrame.h"
#include "ZrKit/sonar/ZrMosaicPing.h"
#include "ZrKit/sonar/ZrMosaicRows.h"
#include "ZrKit/sonar/ZrMosaicSettings.h"
#include "ZrKit/sonar/ZrMosaicStrip.h"

#include <cstddef>
#include <vector>

class ZrMosaicRaster;
class ZrSonarTrack;

/// Fills the stretches between the pings of one side of a line into the raster of a mosaic.
///
/// One thread; everything given must outlive the object.
class ZrMosaicPainter
{
public:
    ZrMosaicPainter(ZrMosaicRows rows, const ZrSonarTrack& track, const std::vector<ZrMosaicPing>& pings,
        const ZrMosaicSettings& settings, const ZrMosaicFrame& frame, ZrMosaicRaster& raster);

    /// Fills from ping \p k of the list to the next one.
    void Fill(std::size_t k);

private:
    void FindCovered(std::size_t k);
    double At(std::size_t k, double share, double range);
    double Mean(std::size_t k, double share, double range);
    double Distance(std::size_t k) const;

    double Covered(std::size_t k) const { return m_distances[k - m_firstCovered]; } ///< its distance

    ZrMosaicRows m_rows;
    const ZrSonarTrack& m_track;
    const std::vector<ZrMosaicPing>& m_pings;
    const ZrMosaicSettings& m_settings;
    const ZrMosaicFrame& m_frame;
    ZrMosaicRaster& m_raster;
    std::size_t m_firstCovered = 0; ///< of the pings that a pixel of this stretch covers
    std::size_t m_lastCovered = 0;
    std::vector<double> m_distances; ///< metres along the track to each of them
};
