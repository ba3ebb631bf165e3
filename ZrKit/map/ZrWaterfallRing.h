#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrWaterfallLine.h"
#include "ZrKit/sonar/ZrSonarSide.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <array>
#include <limits>
#include <vector>

/// The lines that a waterfall can show, in rows of bytes as textures have them.
///
/// \code
/// ZrWaterfallRing ring(2048, 1024);
/// ring.Append(line); // live: the oldest line makes room
///
/// ring.SetWindow(first); // review: lines first to first + 2048 of a log
/// ring.Put(first + 17, line);
/// \endcode
///
/// Lines are counted from 0 as they are appended, or as the log counts them. Line n lies in row n modulo the
/// capacity of each side, so that lines which follow one another lie in one or two stretches of rows, and a
/// new line changes one row. A row holds `Width` bytes; a line with more samples is reduced to them, one with
/// fewer leaves the rest of the row at the value of its last sample.
///
/// What changed is told by revisions: each line written gets the next one. One thread at a time.
class ZR_KIT_EXPORT ZrWaterfallRing
{
public:
    static constexpr int MostLines = 65536;
    static constexpr int MostWidth = 65536;
    static constexpr i64 MostBytes = i64(1) << 30; ///< of both sides together

    /// How a line with more samples than a row has bytes is reduced.
    enum eReduce : int
    {
        reduceMean, ///< the mean of what a byte covers
        reduceMax ///< the strongest of it: small echoes stay as bright as they are
    };

    /// What is known of a line besides its samples.
    struct Entry
    {
        i64 line = -1;
        u64 revision = 0; ///< 0 never written
        double time = 0.0;
        double altitude = 0.0; ///< above 0; NaN not known
        double along = 0.0; ///< NaN not known
        std::array<double, 2> range{}; ///< above 0; 0 when that side shows nothing
        std::array<int, 2> count{}; ///< bytes of the row that are samples
    };

    /// Lines that follow one another in the rows too.
    struct Run
    {
        i64 line; ///< the first
        int row;
        int count;
    };

    /// Lines \p first to before \p end.
    struct Lines
    {
        i64 first = 0;
        i64 end = 0;
    };

    /// Room for \p lines of \p width samples for each side; both are limited to the constants above, and to
    /// 0 below. A ring without room takes nothing.
    ZrWaterfallRing(int lines, int width, eReduce reduce = reduceMean);

    ZrWaterfallRing(const ZrWaterfallRing&) = delete;
    ZrWaterfallRing& operator=(const ZrWaterfallRing&) = delete;

    int Capacity() const { return m_capacity; }

    int Width() const { return m_width; }

    eReduce Reduction() const { return m_reduce; }

    u64 Id() const { return m_id; } ///< no two rings of a process have the same

    i64 First() const { return m_first; } ///< the oldest line there may be

    i64 End() const { return m_end; } ///< one beyond the newest

    u64 Revision() const { return m_revision; } ///< of the line written last; also grows when lines go

    /// Takes the line after the newest one; when there is no room the oldest goes. Its number; -1 without
    /// room at all.
    i64 Append(const ZrWaterfallLine& line);

    /// Makes room for lines from \p first to before \p end, at most as many as the capacity; below 0 is 0.
    /// What is there of them already stays.
    void SetWindow(i64 first, i64 end = std::numeric_limits<i64>::max());

    /// Takes a line of the window, in any order. False, and nothing changes, when it lies outside.
    bool Put(i64 line, const ZrWaterfallLine& content);

    void Clear(); ///< forgets all lines; counting starts at 0

    bool Has(i64 line) const; ///< whether the line is there

    /// A line that is there.
    const Entry& At(i64 line) const { return m_entries[static_cast<std::size_t>(Row(line))]; }

    int Row(i64 line) const { return static_cast<int>(line % m_capacity); }

    /// The altitude that a line is drawn with: its own, else that of the nearest line before, else of the
    /// nearest one after, of those that are there; NaN when none is known. 0 is never given.
    double Altitude(i64 line) const;

    /// The way from one line to the next, metres: the median of those that are there and not 0; 0 when none
    /// is known.
    double UsualStep() const;

    /// The largest range of a side in the ring, metres, over the seabed when \p isGround; 0 without any.
    double LongestRange(bool isGround) const;

    bool HasSide(eSonarSide side) const { return m_hasSide[side]; } ///< any line had samples there

    /// The bytes of all rows of a side, row by row.
    const u8* Bytes(eSonarSide side) const { return m_bytes[side].data(); }

    /// The samples of a line that is there.
    zr::span<const u8> Samples(i64 line, eSonarSide side) const;

    /// The rows written after \p revision, as few stretches as there are, in ascending order.
    std::vector<Run> RowsSince(u64 revision) const;

    /// Where lines \p first to before \p end lie: what is there of them, in ascending order.
    std::vector<Run> Runs(i64 first, i64 end) const;

    /// What of lines \p first to before \p end is not there, in ascending order.
    std::vector<Lines> Missing(i64 first, i64 end) const;

    /// Reduces \p in to the size of \p out, or copies it and repeats the last sample.
    static void Reduce(zr::span<const u8> in, zr::span<u8> out, eReduce reduce);

private:
    void Write(i64 line, const ZrWaterfallLine& content);
    void Refresh() const;

    int m_capacity = 0;
    int m_width = 0;
    eReduce m_reduce;
    u64 m_id;
    u64 m_revision = 0;
    i64 m_first = 0;
    i64 m_end = 0;
    std::vector<Entry> m_entries;
    std::array<std::vector<u8>, 2> m_bytes;
    std::array<bool, 2> m_hasSide{};

    mutable u64 m_refreshed = 0; ///< revision of what follows
    mutable std::vector<double> m_altitudes; ///< by row
    mutable double m_usualStep = 0.0;
};
