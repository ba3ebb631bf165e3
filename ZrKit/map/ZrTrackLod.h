#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QPointF>
#include <QRectF>

#include <algorithm>
#include <cstddef>
#include <vector>

/// A track for maps of any scale: its positions, and which of them a line within a tolerance needs.
///
/// \code
/// ZrTrackLod track;
/// track.Append(512345.2, 4812345.6); // at any time
/// const int level = ZrTrackLod::LevelOf(0.5 * view.Scale());
/// track.ForEach(view.Bounds(), level, track.Count(), [&](const ZrTrackLod::Segment& line) {
///     Draw(track[line.from], track[line.to]);
///     return true;
/// });
/// \endcode
///
/// World positions are metres of a projected grid. A position that is not finite, or farther than `Limit`
/// from the origin, is a break: the line ends before it and begins anew behind it. It has an index all the
/// same.
///
/// The track is kept as sub-tracks of `SubTrack` segments with a bounding box each; neighbours share a
/// position. When one is complete, its positions get their levels: of level k a line through those that
/// remain is nowhere farther than `Tolerance(k)` from any that is left out (method of Douglas and Peucker).
/// The sub-track at the end is drawn as it is until then. 17 bytes for each position. A plain value; one
/// thread at a time.
class ZR_KIT_EXPORT ZrTrackLod
{
public:
    static constexpr i64 SubTrack = 512; ///< segments
    static constexpr double Limit = 1e9; ///< metres
    static constexpr int LevelCount = 60;

    /// A part of the line between two positions, by index; a position without neighbours has both the same.
    struct Segment
    {
        i64 from;
        i64 to;
    };

    /// Positions `first` to `last`, both included, of sub-tracks that follow each other without a break.
    struct Range
    {
        i64 first;
        i64 last;
    };

    /// The tolerance of a level, metres: 0, 0.0001, and from there on √2 times the one before.
    static double Tolerance(int level);

    /// The highest level whose tolerance is at most \p tolerance; 0 for what is not above 0.
    static int LevelOf(double tolerance);

    void Reserve(i64 count); ///< makes room for so many positions

    void Append(double x, double y);
    void Append(zr::span<const QPointF> positions);
    void Clear();
    void Replace(ZrTrackLod track); ///< by another one, as if it had been cleared and appended

    i64 Count() const { return static_cast<i64>(m_points.size()); } ///< with the breaks

    /// A position, not finite for a break; \p index is from 0 to `Count` - 1.
    const QPointF& operator[](i64 index) const { return m_points[static_cast<std::size_t>(index)]; }

    bool IsBreak(i64 index) const; ///< true outside 0 to `Count` - 1

    QRectF Bounds() const; ///< of all positions; null without any

    u64 Bytes() const; ///< memory

    int ClearCount() const { return m_clearCount; } ///< how often it was cleared

    /// The sub-tracks whose box touches \p box, those that follow each other as one.
    std::vector<Range> Select(const QRectF& box) const;

    /// The position nearest to \p world that is closer than \p within metres; -1 for none. Only sub-tracks
    /// whose box is that near are looked through.
    i64 Nearest(const QPointF& world, double within) const;

    /// Calls \p use with each segment, in order, of the line up to position \p end, without it, that touches
    /// \p box, as \p level needs it. False when \p use returned false, and there it ends.
    template <class Use> bool ForEach(const QRectF& box, int level, i64 end, Use use) const
    {
        for (const Part& part : m_parts) {
            if (part.first >= end)
                break;
            if (part.box.Touches(box) && !ForEachOf(part, box, level, end, use))
                return false;
        }
        return true;
    }

private:
    /// Extremes of positions; a sub-track may be a line or a point, which a `QRectF` takes for empty.
    struct Box
    {
        double left;
        double right;
        double bottom;
        double top;

        explicit Box(const QPointF& p)
            : left(p.x())
            , right(p.x())
            , bottom(p.y())
            , top(p.y())
        {
        }

        void Add(const QPointF& p)
        {
            left = std::min(left, p.x());
            right = std::max(right, p.x());
            bottom = std::min(bottom, p.y());
            top = std::max(top, p.y());
        }

        bool Touches(const QRectF& box) const
        {
            return right >= box.left() && left <= box.right() && top >= box.top() && bottom <= box.bottom();
        }
    };

    struct Part
    {
        i64 first;
        i64 last;
        Box box;
    };

    template <class Use>
    bool ForEachOf(const Part& part, const QRectF& box, int level, i64 end, Use& use) const
    {
        const i64 last = std::min(part.last, end - 1);
        i64 from = part.first;
        // A part that begins with the last position of the one before is no lone position, even when cut off.
        const bool isLone = from == last && IsBreak(from - 1);
        for (i64 i = isLone ? from : from + 1; i <= last; ++i) {
            // Where it is cut off, the line goes on to the end.
            if (i != last && m_levels[static_cast<std::size_t>(i)] <= level)
                continue;
            Box extremes((*this)[from]);
            extremes.Add((*this)[i]);
            if (extremes.Touches(box) && !use(Segment{from, i}))
                return false;
            from = i;
        }
        return true;
    }

    void AddToPart(const QPointF& point);
    void CloseLast();
    void SetLevels(i64 first, i64 last);

    std::vector<QPointF> m_points;
    std::vector<u8> m_levels; ///< how many levels have the position
    std::vector<Part> m_parts;
    bool m_isOpen = false; ///< the last part goes on with the next position
    Box m_bounds{QPointF()};
    int m_clearCount = 0;
};
