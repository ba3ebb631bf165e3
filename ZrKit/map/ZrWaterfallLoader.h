#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrWaterfallTiles.h"
#include "ZrKit/review/ZrWorker.h"

#include <QObject>

#include <memory>
#include <vector>

class ZrWaterfallPings;

/// Reads the lines of a waterfall in a thread of its own, tile by tile, as they come into view.
///
/// \code
/// connect(&loader, &ZrWaterfallLoader::Loaded, panel, &Panel::Refresh);
/// loader.Want(window.Missing()); // whenever what is shown has changed
/// \endcode
///
/// Only the tiles wanted last are read: what has gone out of view meanwhile is not, so that scrubbing through
/// a long log reads what is looked at and nothing in between. Lives on the user-interface thread. The pings
/// belong to its worker while it is there.
class ZR_KIT_EXPORT ZrWaterfallLoader : public QObject
{
    Q_OBJECT

public:
    static constexpr i64 MostBytes = i64(96) * 1024 * 1024; ///< of lines in memory

    explicit ZrWaterfallLoader(std::shared_ptr<ZrWaterfallPings> pings, QObject* parent = nullptr);

    ZrWaterfallTiles& Tiles() { return m_tiles; }

    /// What is to be there next, instead of what was wanted before.
    void Want(const std::vector<ZrWaterfallRing::Lines>& missing);

    bool IsLoading() const { return m_worker.IsWorking(); }

    i64 LinesRead() const { return m_linesRead; } ///< since the beginning

Q_SIGNALS:
    void Loaded(); ///< lines have come; more may be missing

private:
    void Next();
    void Take();

    std::shared_ptr<ZrWaterfallPings> m_pings;
    ZrWaterfallTiles m_tiles;
    std::vector<i64> m_wanted;
    i64 m_tile = -1; ///< under way
    std::shared_ptr<std::vector<ZrWaterfallLine>> m_lines;
    i64 m_linesRead = 0;
    ZrWorker m_worker; ///< last: it ends before what it works on goes
};
