#pragma once

#include "ZrKit/sonar/ZrMosaicSettings.h"
#include "ZrUtil/ZrTypes.h"

#include <cstddef>
#include <vector>

/// The amplitudes of a mosaic while it grows. One thread.
class ZrMosaicRaster
{
public:
    ZrMosaicRaster(int width, int height, ZrMosaicSettings::eBlend blend);

    /// Adds what was seen at a pixel: an amplitude of 0 to 65535, from \p range metres beside the track.
    void Put(int column, int row, double amplitude, double range);

    bool IsSeen(std::size_t pixel) const;

    /// The blended amplitude; 0 where nothing was seen.
    u16 Amplitude(std::size_t pixel) const;

    std::size_t Size() const { return m_values.size(); }

private:
    std::size_t m_width;
    ZrMosaicSettings::eBlend m_blend;
    std::vector<float> m_values; ///< below 0 where nothing was seen
    std::vector<float> m_weights; ///< number averaged, or ground range; empty for the other blends
};
