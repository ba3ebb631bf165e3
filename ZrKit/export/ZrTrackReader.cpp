#include "ZrKit/export/ZrTrackReader.h"

#include "ZrKit/export/ZrTrackData.h"
#include "ZrKit/export/ZrTrackPointSource.h"

#include <algorithm>

ZrTrackReader::ZrTrackReader(zr::span<const ZrTrackPoint> points)
    : m_count(points.size())
    , m_piece(points)
{
}

ZrTrackReader::ZrTrackReader(const ZrTrackData& data)
    : ZrTrackReader(data.source ? zr::span<const ZrTrackPoint>() : data.points)
{
    m_source = data.source;
    if (m_source)
        m_count = m_source->Count();
}

/// Reads the piece that begins with point \p i.
bool ZrTrackReader::Fetch(std::size_t i)
{
    constexpr std::size_t atOnce = 4096;
    const std::size_t end = std::min(i + atOnce, m_count);
    m_isFailed
        = m_isFailed || !m_source || i >= end || !m_source->Read(i, end, m_read) || m_read.size() != end - i;
    if (m_isFailed) {
        m_count = 0;
        m_piece = {};
        return false;
    }
    m_first = i;
    m_piece = m_read;
    return true;
}
