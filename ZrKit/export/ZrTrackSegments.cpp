#include "ZrKit/export/ZrTrackSegments.h"

#include <cmath>

ZrTrackSegments::ZrTrackSegments(zr::span<const ZrTrackPoint> points, double maxGap)
    : m_points(points)
    , m_maxGap(maxGap)
{
}

bool ZrTrackSegments::Next()
{
    m_first = m_end;
    while (m_first < m_points.size() && !m_points[m_first].HasPosition())
        ++m_first;
    m_end = m_first;
    if (m_first == m_points.size())
        return false;
    // A step from or to an unknown time is NaN and thus no gap.
    do {
        ++m_end;
    } while (m_end < m_points.size() && m_points[m_end].HasPosition()
        && !(std::fabs(m_points[m_end].time - m_points[m_end - 1].time) > m_maxGap));
    return true;
}
