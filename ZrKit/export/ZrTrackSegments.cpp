#include "ZrKit/export/ZrTrackSegments.h"

#include "ZrKit/export/ZrTrackData.h"

#include <cmath>

ZrTrackSegments::ZrTrackSegments(zr::span<const ZrTrackPoint> points, double maxGap)
    : m_points(points)
    , m_reader(points)
    , m_maxGap(maxGap)
{
}

ZrTrackSegments::ZrTrackSegments(const ZrTrackData& data)
    : m_points(data.points)
    , m_reader(data)
    , m_maxGap(data.maxGap)
{
}

bool ZrTrackSegments::Next()
{
    m_first = m_end;
    ZrTrackPoint last;
    for (; m_first < m_reader.Count(); ++m_first) {
        last = m_reader.At(m_first);
        if (last.HasPosition())
            break;
    }
    m_end = m_first;
    if (m_first >= m_reader.Count())
        return false;
    for (++m_end; m_end < m_reader.Count(); ++m_end) {
        const ZrTrackPoint next = m_reader.At(m_end);
        // A step from or to an unknown time is NaN and thus no gap.
        if (!next.HasPosition() || std::fabs(next.time - last.time) > m_maxGap)
            break;
        last = next;
    }
    return !m_reader.IsFailed();
}
