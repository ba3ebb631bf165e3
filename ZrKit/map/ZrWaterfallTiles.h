#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/IZrWaterfallSource.h"
#include "ZrKit/map/ZrWaterfallRing.h"

#include <list>
#include <mutex>
#include <unordered_map>
#include <vector>

/// Lines of a long log in memory, by tiles of 256, so many as a limit of bytes allows.
///
/// \code
/// for (const i64 tile : tiles.Wanted(window.Missing()))
///     worker.Load(tile); // puts lines tile × 256 and on with Put
/// \endcode
///
/// The tile that was not asked for the longest goes first; the one put last stays whatever its size. Any
/// thread.
class ZR_KIT_EXPORT ZrWaterfallTiles : public IZrWaterfallSource
{
public:
    static constexpr int TileLines = 256;

    ZrWaterfallTiles(i64 lineCount, i64 mostBytes);

    i64 LineCount() const override;
    void SetLineCount(i64 lines); ///< of a log that grows; tiles whose lines become more must be put again

    bool Fetch(i64 line, ZrWaterfallLine& content) override;

    /// Takes the lines of a tile, the first \p lines of it. A tile that is there is replaced. False when no
    /// line of the log is in it.
    bool Put(i64 tile, std::vector<ZrWaterfallLine> lines);

    /// The tiles that \p missing lie in and that lack one of these lines, each once.
    std::vector<i64> Wanted(const std::vector<ZrWaterfallRing::Lines>& missing) const;

    /// The tiles that are held, whole or in part, and have one of the lines \p first to before \p end.
    std::vector<i64> Held(i64 first, i64 end) const;

    i64 Bytes() const; ///< of the lines that are held

private:
    struct Tile
    {
        i64 number;
        i64 bytes;
        std::vector<ZrWaterfallLine> lines;
    };

    using Place = std::list<Tile>::iterator;

    void Remove(Place tile);

    mutable std::mutex m_mutex; ///< guards all that follows
    i64 m_lineCount;
    i64 m_mostBytes;
    i64 m_bytes = 0;
    std::list<Tile> m_tiles; ///< asked for last first
    std::unordered_map<i64, Place> m_places;
};
