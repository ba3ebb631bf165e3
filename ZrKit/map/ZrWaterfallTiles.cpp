#include "ZrKit/map/ZrWaterfallTiles.h"

#include <algorithm>
#include <utility>

namespace {

i64 BytesOf(const std::vector<ZrWaterfallLine>& lines)
{
    std::size_t bytes = lines.size() * sizeof(ZrWaterfallLine);
    for (const ZrWaterfallLine& line : lines)
        bytes += line.samples[0].size() + line.samples[1].size();
    return static_cast<i64>(bytes);
}

} // namespace

ZrWaterfallTiles::ZrWaterfallTiles(i64 lineCount, i64 mostBytes)
    : m_lineCount(std::max<i64>(lineCount, 0))
    , m_mostBytes(mostBytes)
{
}

i64 ZrWaterfallTiles::LineCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_lineCount;
}

void ZrWaterfallTiles::SetLineCount(i64 lines)
{
    const std::lock_guard lock(m_mutex);
    m_lineCount = std::max<i64>(lines, 0);
}

bool ZrWaterfallTiles::Fetch(i64 line, ZrWaterfallLine& content)
{
    const std::lock_guard lock(m_mutex);
    if (line < 0 || line >= m_lineCount)
        return false;
    const auto found = m_places.find(line / TileLines);
    if (found == m_places.end())
        return false;
    const Place tile = found->second;
    m_tiles.splice(m_tiles.begin(), m_tiles, tile);
    const auto at = static_cast<std::size_t>(line % TileLines);
    if (at >= tile->lines.size())
        return false;
    content = tile->lines[at];
    return true;
}

bool ZrWaterfallTiles::Put(i64 tile, std::vector<ZrWaterfallLine> lines)
{
    if (lines.size() > TileLines)
        lines.resize(TileLines);
    const i64 bytes = BytesOf(lines);
    const std::lock_guard lock(m_mutex);
    if (tile < 0 || tile > (m_lineCount - 1) / TileLines || m_lineCount == 0)
        return false;
    const auto found = m_places.find(tile);
    if (found != m_places.end())
        Remove(found->second);
    m_tiles.push_front({tile, bytes, std::move(lines)});
    m_places[tile] = m_tiles.begin();
    m_bytes += bytes;
    while (m_bytes > m_mostBytes && m_tiles.size() > 1)
        Remove(std::prev(m_tiles.end()));
    return true;
}

void ZrWaterfallTiles::Remove(Place tile)
{
    m_bytes -= tile->bytes;
    m_places.erase(tile->number);
    m_tiles.erase(tile);
}

std::vector<i64> ZrWaterfallTiles::Wanted(const std::vector<ZrWaterfallRing::Lines>& missing) const
{
    const std::lock_guard lock(m_mutex);
    std::vector<i64> wanted;
    for (const ZrWaterfallRing::Lines& lines : missing) {
        const i64 first = std::max<i64>(lines.first, 0);
        const i64 end = std::min(lines.end, m_lineCount);
        for (i64 line = first; line < end; line = (line / TileLines + 1) * TileLines) {
            const i64 tile = line / TileLines;
            const i64 last = std::min(end, (tile + 1) * TileLines) - 1;
            const auto found = m_places.find(tile);
            const i64 held = found == m_places.end() ? 0 : static_cast<i64>(found->second->lines.size());
            if (last - tile * TileLines >= held && (wanted.empty() || wanted.back() != tile))
                wanted.push_back(tile);
        }
    }
    return wanted;
}

std::vector<i64> ZrWaterfallTiles::Held(i64 first, i64 end) const
{
    const std::lock_guard lock(m_mutex);
    std::vector<i64> held;
    for (const Tile& tile : m_tiles) {
        if (first < end && tile.number * TileLines < end && (tile.number + 1) * TileLines > first)
            held.push_back(tile.number);
    }
    return held;
}

i64 ZrWaterfallTiles::Bytes() const
{
    const std::lock_guard lock(m_mutex);
    return m_bytes;
}
