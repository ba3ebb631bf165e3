#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrTypes.h"

#include <limits>
#include <map>
#include <set>

/// What a log holds, by record type: filled item by item while a `ZrLogScan` walks it.
///
/// Times are seconds since 1970-01-01 UTC; those that are not finite are left out of all extents. A plain
/// value; adding costs the same however long the log is.
class ZR_KIT_EXPORT ZrLogSummary
{
public:
    static constexpr double NoTime = std::numeric_limits<double>::quiet_NaN();

    /// The items of one type and sub-type.
    struct ZR_KIT_EXPORT Type
    {
        CRecType key;
        u64 count = 0;
        u64 storedBytes = 0; ///< payload bytes in the file, without the item headers
        u64 dataBytes = 0; ///< payload bytes before compression
        u64 compressed = 0; ///< items stored compressed
        double firstTime = NoTime; ///< earliest
        double lastTime = NoTime; ///< latest
        std::set<u16> sources;

        /// Mean rate in items per second: the intervals between the items over the time they span. NaN for a
        /// single item, and when all have the same time.
        double Rate() const;

    private:
        friend class ZrLogSummary;
        int m_lastSource = -1; ///< spares the search in `sources` for runs of one source
    };

    void Add(const ZrLogItem& item);

    /// By type, then sub-type; the key holds the type in its high half.
    const std::map<u32, Type>& Types() const { return m_types; }

    u64 Items() const { return m_items; }

    double FirstTime() const { return m_firstTime; } ///< earliest; NaN when no item has a time

    double LastTime() const { return m_lastTime; } ///< latest; NaN when no item has a time

    /// Items whose time lies before that of the item before them: the clock was set back.
    u64 BackwardJumps() const { return m_backwardJumps; }

private:
    std::map<u32, Type> m_types;
    u64 m_items = 0;
    u64 m_backwardJumps = 0;
    double m_firstTime = NoTime;
    double m_lastTime = NoTime;
    double m_previousTime = NoTime;
};
