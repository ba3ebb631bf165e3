#include "ZrKit/sonar/ZrMosaicRaster.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float unseen = -1.0F;

} // namespace

ZrMosaicRaster::ZrMosaicRaster(int width, int height, ZrMosaicSettings::eBlend blend)
    : m_width(static_cast<std::size_t>(width))
    , m_blend(blend)
    , m_values(m_width * static_cast<std::size_t>(height), unseen)
{
    if (blend == ZrMosaicSettings::blendAverage || blend == ZrMosaicSettings::blendNadir)
        m_weights.assign(m_values.size(), 0.0F);
}

void ZrMosaicRaster::Put(int column, int row, double amplitude, double range)
{
    const std::size_t pixel = static_cast<std::size_t>(row) * m_width + static_cast<std::size_t>(column);
    float& value = m_values[pixel];
    const float seen = static_cast<float>(amplitude);
    const float near = static_cast<float>(range);
    const bool isFirst = value < 0.0F;
    switch (m_blend) {
    case ZrMosaicSettings::blendNewest:
        value = seen;
        break;
    case ZrMosaicSettings::blendBrightest:
        value = std::max(value, seen);
        break;
    case ZrMosaicSettings::blendAverage:
        value = isFirst ? seen : value + (seen - value) / (m_weights[pixel] + 1.0F);
        m_weights[pixel] += 1.0F;
        break;
    case ZrMosaicSettings::blendNadir:
        if (isFirst || near < m_weights[pixel]) {
            value = seen;
            m_weights[pixel] = near;
        }
        break;
    }
}

bool ZrMosaicRaster::IsSeen(std::size_t pixel) const
{
    return m_values[pixel] >= 0.0F;
}

u16 ZrMosaicRaster::Amplitude(std::size_t pixel) const
{
    return static_cast<u16>(std::lround(std::clamp(m_values[pixel], 0.0F, 65535.0F)));
}
