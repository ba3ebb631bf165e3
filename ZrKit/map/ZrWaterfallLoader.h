#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrWaterfallTiles.h"
#include "ZrKit/review/ZrWorker.h"

#include <QObject>

#include <memory>
#include <set>
#include <vector>

class ZrWaterfallPings;

/// Reads the lines of a waterfall in a thread of its own, tile by tile, as they come into view.
///
/// \code
/// connect(&loader, &ZrWaterfallLoader::Loaded, panel, &Panel::Refresh);
/// loader.Want(window.Missing()); // whenever what is shown has changed
/// \endcode
///
/// What the pings make of lines may change, with the bottom line for instance: `Renew` reads those that are
/// in memory once more, behind those that are wanted, and what was there before is shown until they come.
///
/// Only the tiles wanted last are read: what has gone out of view meanwhile is not, so that scrubbing through
/// a long log reads what is looked at and nothing in between. Lives on the user-interface thread. The pings
/// belong to its worker while it is there.
class ZR_KIT_EXPORT ZrWaterfallLoader : public QObject
{
    Q_OBJECT

public:
    static constexpr i64 MostBytes = i64(16) * 1024 * 1024; ///< of lines in memory

    explicit ZrWaterfallLoader(std::shared_ptr<ZrWaterfallPings> pings, QObject* parent = nullptr);

    ZrWaterfallTiles& Tiles() { return m_tiles; }

    /// What is to be there next, instead of what was wanted before.
    void Want(const std::vector<ZrWaterfallRing::Lines>& missing);

    /// Lines \p first to before \p end are no longer what the pings make.
    void Renew(i64 first, i64 end);

    bool IsLoading() const { return m_worker.IsWorking(); }

    i64 LinesRead() const { return m_linesRead; } ///< since the beginning

Q_SIGNALS:
    void Loaded(); ///< lines have come; more may be missing
    void Renewed(qint64 first, qint64 end); ///< before `Loaded`: these have come in place of others

private:
    void Next();
    void Take();

    std::shared_ptr<ZrWaterfallPings> m_pings;
    ZrWaterfallTiles m_tiles;
    std::vector<i64> m_wanted;
    std::set<i64> m_stale; ///< tiles that are in memory and not what they should be
    i64 m_tile = -1; ///< under way
    bool m_isRenewing = false; ///< that one was there already
    std::shared_ptr<std::vector<ZrWaterfallLine>> m_lines;
    i64 m_linesRead = 0;
    ZrWorker m_worker; ///< last: it ends before what it works on goes
};
