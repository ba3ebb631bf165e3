#include "ZrKit/map/ZrWaterfallWindow.h"

#include "ZrKit/map/ZrWaterfallLayout.h"

#include <algorithm>
#include <cmath>

bool ZrWaterfallWindow::Update(const ZrWaterfallView& view)
{
    MoveRing(view);
    bool any = false;
    // What is fetched may be lower than was thought, and more lines come into view: a few rounds are enough
    // but for logs whose speed changes all the time, and these go on in the next frame.
    constexpr int mostRounds = 4;
    for (int round = 0; round < mostRounds; ++round) {
        // Without a range, which a ring without lines does not know, nothing would be in view.
        ZrWaterfallView shown = view;
        if (!(shown.range > 0.0) && m_ring.LongestRange(view.slantCorrected) == 0.0)
            shown.range = 1.0;
        m_missing = ZrWaterfallLayout(m_ring, shown).Missing();
        if (!FetchMissing(m_missing))
            break;
        any = true;
    }
    return any;
}

/// Brings the lines of the view, as many as they can be, into the ring's window.
void ZrWaterfallWindow::MoveRing(const ZrWaterfallView& view)
{
    const i64 count = std::max<i64>(m_source.LineCount(), 0);
    const i64 capacity = m_ring.Capacity();
    const double all = static_cast<double>(count);
    const i64 last = static_cast<i64>(std::ceil(std::isnan(view.end) ? all : std::clamp(view.end, 0.0, all)));
    // How many lines a view with speed correction shows, none knows before they are there.
    double lines = static_cast<double>(capacity);
    if (!view.speedCorrected && view.pixelsPerLine > 0.0)
        lines = std::min(lines, std::ceil(view.rect.height() / view.pixelsPerLine) + 1.0);
    const i64 shown = static_cast<i64>(std::max(lines, 0.0));
    const i64 from = std::max<i64>(last - shown, 0);
    const i64 end = std::min(m_ring.First() + capacity, count);
    if (from >= m_ring.First() && last <= end) {
        m_ring.SetWindow(m_ring.First(), end);
        return;
    }
    // As much room before the view as behind it.
    const i64 first = std::clamp<i64>(from - (capacity - shown) / 2, 0, std::max<i64>(count - capacity, 0));
    m_ring.SetWindow(first, count);
}

void ZrWaterfallWindow::Renew(i64 first, i64 end)
{
    const i64 last = std::min(end, m_ring.End());
    for (i64 line = std::max(first, m_ring.First()); line < last; ++line) {
        if (m_ring.Has(line) && m_source.Fetch(line, m_line))
            m_ring.Put(line, m_line);
    }
}

bool ZrWaterfallWindow::FetchMissing(const std::vector<ZrWaterfallRing::Lines>& missing)
{
    bool any = false;
    for (const ZrWaterfallRing::Lines& lines : missing) {
        for (i64 line = lines.first; line < lines.end; ++line)
            any = (m_source.Fetch(line, m_line) && m_ring.Put(line, m_line)) || any;
    }
    return any;
}
