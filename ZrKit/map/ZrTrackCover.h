#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QPointF>
#include <QRectF>

#include <cstddef>
#include <vector>

/// The area that a dense line covers, as parallel lines: what is drawn where a track crosses itself so often
/// that no choice of its positions is few.
///
/// A box of the world is cut into rows, or with `columns` set into columns; each notes which stretches of it
/// the line touches. `Runs` gives a line along the middle of each stretch. With rows of height h and gaps of
/// at most g left unseen, line and runs are nowhere farther than √(h² + g²) / 2 from each other, but for the
/// ends of the runs: these are a quarter of a row too long at most. What lies within an area that is covered
/// already costs little. One thread at a time.
class ZR_KIT_EXPORT ZrTrackCover
{
public:
    /// A stretch, world positions.
    struct Run
    {
        QPointF from;
        QPointF to;
    };

    /// \param rowHeight metres, above 0; there are at most `MaxRows` rows: those of larger boxes are higher
    ZrTrackCover(const QRectF& box, double rowHeight, bool columns);

    static constexpr int MaxRows = 16384;

    bool IsColumns() const { return m_isColumns; }

    double RowHeight() const { return m_height; } ///< metres

    /// The line from \p a to \p b; what is outside the box is left out. Finite positions.
    void Add(QPointF a, QPointF b);

    /// Appends the runs of \p rows rows taken together within \p clip, where gaps of at most \p gap metres
    /// are closed. False, and there may be some, when there are more than \p limit.
    bool Runs(const QRectF& clip, int rows, double gap, std::size_t limit, std::vector<Run>& out) const;

private:
    /// Cells, both included; empty at first.
    struct Stretch
    {
        int from = 0;
        int to = -1;
    };

    static constexpr int BandRows = 16;

    void Mark(int row, double from, double to);
    bool IsFull(int band, double from, double to);
    QPointF ToWorld(double along, double across) const;

    bool m_isColumns;
    double m_left; ///< along the rows
    double m_bottom; ///< across
    double m_height;
    double m_cell; ///< width of one bit, metres
    int m_rows;
    int m_cells; ///< of a row
    std::size_t m_words; ///< of a row
    std::vector<u64> m_bits;
    std::vector<Stretch> m_full; ///< of each row a stretch without gaps
    std::vector<Stretch> m_bandFull; ///< what those of `BandRows` rows have in common
    std::vector<char> m_isBandOld; ///< is to be found again
};
