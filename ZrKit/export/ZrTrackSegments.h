#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/export/ZrTrackReader.h"
#include "ZrUtil/ZrSpan.h"

#include <cstddef>
#include <limits>

struct ZrTrackData;

/// Goes through a track piece by piece: a point without position ends a segment, and so does a gap in time.
///
/// \code
/// ZrTrackSegments segments(points, 60.0);
/// while (segments.Next())
///     Draw(segments.Points());
/// \endcode
///
/// Of points from a source only `First` and `End` are there; `ZrTrackReader` reads them.
///
/// A gap is a step of more than `maxGap` seconds, forwards or backwards, between points whose times are
/// known. The points are only looked at; they must outlive the object.
class ZR_KIT_EXPORT ZrTrackSegments
{
public:
    explicit ZrTrackSegments(
        zr::span<const ZrTrackPoint> points, double maxGap = std::numeric_limits<double>::infinity());

    explicit ZrTrackSegments(const ZrTrackData& data); ///< with its gap

    /// Goes to the next segment, which has one point at least. False behind the last, and when points
    /// cannot be read.
    bool Next();

    std::size_t First() const { return m_first; } ///< index of the segment's first point

    std::size_t End() const { return m_end; } ///< index behind its last one

    bool IsFailed() const { return m_reader.IsFailed(); } ///< points could not be read

    zr::span<const ZrTrackPoint> Points() const { return m_points.subspan(m_first, m_end - m_first); }

private:
    zr::span<const ZrTrackPoint> m_points;
    ZrTrackReader m_reader;
    double m_maxGap;
    std::size_t m_first = 0;
    std::size_t m_end = 0;
};
