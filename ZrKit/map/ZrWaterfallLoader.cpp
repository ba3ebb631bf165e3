#include "ZrKit/map/ZrWaterfallLoader.h"

#include "ZrKit/map/ZrWaterfallPings.h"

#include <algorithm>
#include <atomic>

ZrWaterfallLoader::ZrWaterfallLoader(std::shared_ptr<ZrWaterfallPings> pings, QObject* parent)
    : QObject(parent)
    , m_pings(std::move(pings))
    , m_tiles(static_cast<i64>(m_pings->Count()), MostBytes)
{
    connect(&m_worker, &ZrWorker::Finished, this, &ZrWaterfallLoader::Take);
}

void ZrWaterfallLoader::Want(const std::vector<ZrWaterfallRing::Lines>& missing)
{
    m_wanted = m_tiles.Wanted(missing);
    Next();
}

void ZrWaterfallLoader::Renew(i64 first, i64 end)
{
    for (const i64 tile : m_tiles.Held(first, end))
        m_stale.insert(tile);
    // Some of its lines may have been made before.
    if (m_worker.IsWorking() && first < end)
        m_stale.insert(m_tile);
    Next();
}

void ZrWaterfallLoader::Next()
{
    if (m_worker.IsWorking() || (m_wanted.empty() && m_stale.empty()))
        return;
    if (m_wanted.empty()) {
        m_tile = *m_stale.begin();
    } else {
        m_tile = m_wanted.front();
        m_wanted.erase(m_wanted.begin());
    }
    m_isRenewing = m_stale.erase(m_tile) > 0;
    m_lines = std::make_shared<std::vector<ZrWaterfallLine>>();
    const i64 first = m_tile * ZrWaterfallTiles::TileLines;
    const i64 end = std::min(first + ZrWaterfallTiles::TileLines, static_cast<i64>(m_pings->Count()));
    const auto stop = std::make_shared<std::atomic<bool>>(false);
    m_worker.Start(
        [pings = m_pings, lines = m_lines, first, end, stop](IZrProgress& /*progress*/) {
            for (i64 line = first; line < end && !*stop; ++line) {
                lines->emplace_back();
                pings->Make(static_cast<std::size_t>(line), lines->back());
            }
        },
        [stop] { *stop = true; });
}

void ZrWaterfallLoader::Take()
{
    m_linesRead += static_cast<i64>(m_lines->size());
    m_tiles.Put(m_tile, std::move(*m_lines));
    m_lines.reset();
    if (m_isRenewing)
        Q_EMIT Renewed(m_tile * ZrWaterfallTiles::TileLines, (m_tile + 1) * ZrWaterfallTiles::TileLines);
    Q_EMIT Loaded();
    // Whoever listens has wanted anew; otherwise the rest of the last wish is due.
    Next();
}
