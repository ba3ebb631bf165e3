#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/export/ZrTrackPoint.h"
#include "ZrUtil/ZrSpan.h"

#include <cstddef>
#include <vector>

class ZrTrackPointSource;
struct ZrTrackData;

/// The points of a track one by one, whether they are in memory or come piece by piece from a source.
///
/// \code
/// ZrTrackReader points(data);
/// for (std::size_t i = 0; i < points.Count(); ++i)
///     Draw(points.At(i));
/// return !points.IsFailed();
/// \endcode
///
/// One thread at a time; several objects may read one source in turn.
class ZR_KIT_EXPORT ZrTrackReader
{
public:
    explicit ZrTrackReader(zr::span<const ZrTrackPoint> points);
    explicit ZrTrackReader(const ZrTrackData& data);
    ZrTrackReader(const ZrTrackReader&) = delete;
    ZrTrackReader& operator=(const ZrTrackReader&) = delete;

    std::size_t Count() const { return m_count; } ///< 0 from a failure on

    /// Point \p i, which must be below `Count`; one about which nothing is known when it cannot be read.
    ZrTrackPoint At(std::size_t i)
    {
        if (i - m_first >= m_piece.size() && !Fetch(i))
            return ZrTrackPoint();
        return m_piece[i - m_first];
    }

    bool IsFailed() const { return m_isFailed; } ///< a piece could not be read

private:
    bool Fetch(std::size_t i);

    ZrTrackPointSource* m_source = nullptr;
    std::size_t m_count;
    std::size_t m_first = 0; ///< of the piece
    zr::span<const ZrTrackPoint> m_piece;
    std::vector<ZrTrackPoint> m_read; ///< from the source
    bool m_isFailed = false;
};
