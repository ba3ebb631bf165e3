#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/IZrWaterfallSource.h"
#include "ZrKit/map/ZrWaterfallRing.h"
#include "ZrKit/map/ZrWaterfallView.h"

#include <vector>

/// Keeps in a ring what a waterfall shows of a log of any length.
///
/// \code
/// m_window.Update(m_layer.m_view); // before each Paint, and when lines were loaded
/// for (const ZrWaterfallRing::Lines& lines : m_window.Missing())
///     worker.Load(lines.first, lines.end);
/// \endcode
///
/// Only lines in view are fetched, each once while it stays in the ring; the ring's window moves when the
/// view leaves it, and keeps the lines that it has in common with the one before. A view over more lines than
/// the ring has room for shows the newest of them. One thread at a time.
class ZR_KIT_EXPORT ZrWaterfallWindow
{
public:
    /// Both must stay.
    ZrWaterfallWindow(ZrWaterfallRing& ring, IZrWaterfallSource& source)
        : m_ring(ring)
        , m_source(source)
    {
    }

    /// Fetches the lines that \p view shows and the ring does not have. An `end` of NaN is that of the log.
    /// True when any was fetched.
    bool Update(const ZrWaterfallView& view);

    /// Fetches lines \p first to before \p end anew where the ring has them: they have changed.
    void Renew(i64 first, i64 end);

    /// The lines in view that the source does not have at hand, in ascending order.
    const std::vector<ZrWaterfallRing::Lines>& Missing() const { return m_missing; }

private:
    void MoveRing(const ZrWaterfallView& view);
    bool FetchMissing(const std::vector<ZrWaterfallRing::Lines>& missing);

    ZrWaterfallRing& m_ring;
    IZrWaterfallSource& m_source;
    ZrWaterfallLine m_line;
    std::vector<ZrWaterfallRing::Lines> m_missing;
};
