#include "ZrKit/map/ZrTrackCover.h"

#include <QtAlgorithms>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int wordBits = 64;
constexpr double cellsOfHeight = 4.0;

int Index(double value, int count)
{
    // The cast rounds down what is not negative.
    return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(count - 1)));
}

/// The first bit at or after \p at that is \p value; \p count for none.
int Find(const std::vector<u64>& bits, int at, int count, bool value)
{
    while (at < count) {
        u64 word = bits[static_cast<std::size_t>(at / wordBits)];
        if (!value)
            word = ~word;
        word >>= at % wordBits;
        if (word != 0)
            return std::min(at + static_cast<int>(qCountTrailingZeroBits(word)), count);
        at += wordBits - at % wordBits;
    }
    return count;
}

} // namespace

ZrTrackCover::ZrTrackCover(const QRectF& box, double rowHeight, bool columns)
    : m_isColumns(columns)
    , m_left(columns ? box.top() : box.left())
    , m_bottom(columns ? box.left() : box.top())
{
    const double across = columns ? box.width() : box.height();
    const double along = columns ? box.height() : box.width();
    m_height = std::max({rowHeight, across / MaxRows, along / MaxRows});
    m_cell = m_height / cellsOfHeight;
    m_rows = std::max(static_cast<int>(std::ceil(across / m_height)), 1);
    m_cells = std::max(static_cast<int>(std::ceil(along / m_cell)), 1);
    m_words = static_cast<std::size_t>((m_cells + wordBits - 1) / wordBits);
    const auto rows = static_cast<std::size_t>(m_rows);
    m_bits.resize(m_words * rows);
    m_full.resize(rows);
    m_bandFull.resize(rows / BandRows + 1);
    m_isBandOld.resize(rows / BandRows + 1);
}

void ZrTrackCover::Add(QPointF a, QPointF b)
{
    if (m_isColumns) {
        a = a.transposed();
        b = b.transposed();
    }
    if (a.y() > b.y())
        std::swap(a, b);
    const double bottom = (a.y() - m_bottom) / m_height;
    const double top = (b.y() - m_bottom) / m_height;
    if (top < 0.0 || bottom >= m_rows)
        return;
    const double ax = (a.x() - m_left) / m_cell;
    const double bx = (b.x() - m_left) / m_cell;
    const int first = Index(bottom, m_rows);
    const int last = Index(top, m_rows);
    if (first == last && bottom >= 0.0 && top <= m_rows) {
        Mark(first, std::min(ax, bx), std::max(ax, bx));
        return;
    }
    const double left = std::min(ax, bx);
    const double right = std::max(ax, bx);
    const double slope = top > bottom ? (bx - ax) / (top - bottom) : 0.0;
    const auto xAt = [&](double row) { return std::clamp(ax + (row - bottom) * slope, left, right); };
    for (int row = first; row <= last;) {
        const double x0 = xAt(std::max<double>(row, bottom));
        if (row % BandRows == 0 && row + BandRows - 1 <= last) {
            const double x1 = xAt(std::min<double>(row + BandRows, top));
            if (IsFull(row / BandRows, std::min(x0, x1), std::max(x0, x1))) {
                row += BandRows;
                continue;
            }
        }
        const double x1 = xAt(std::min<double>(row + 1, top));
        Mark(row, std::min(x0, x1), std::max(x0, x1));
        ++row;
    }
}

bool ZrTrackCover::IsFull(int band, double from, double to)
{
    const auto at = static_cast<std::size_t>(band);
    Stretch& full = m_bandFull[at];
    if (m_isBandOld[at]) {
        m_isBandOld[at] = 0;
        const int first = band * BandRows;
        full = m_full[static_cast<std::size_t>(first)];
        for (int row = first + 1; row < std::min(first + BandRows, m_rows); ++row) {
            const Stretch& other = m_full[static_cast<std::size_t>(row)];
            full.from = std::max(full.from, other.from);
            full.to = std::min(full.to, other.to);
        }
    }
    return from >= full.from && to < full.to + 1;
}

/// Cells of a row.
void ZrTrackCover::Mark(int row, double from, double to)
{
    if (to < 0.0 || from >= m_cells)
        return;
    const int first = Index(from, m_cells);
    const int last = Index(to, m_cells);
    const auto at = static_cast<std::size_t>(row);
    Stretch& full = m_full[at];
    if (first >= full.from && last <= full.to)
        return;
    if (first <= full.to + 1 && last >= full.from - 1)
        full = {std::min(first, full.from), std::max(last, full.to)};
    else if (last - first > full.to - full.from)
        full = {first, last};
    m_isBandOld[at / BandRows] = 1;
    u64* const words = m_bits.data() + at * m_words;
    const u64 begin = ~u64(0) << (first % wordBits);
    const u64 end = ~u64(0) >> (wordBits - 1 - last % wordBits);
    const int w0 = first / wordBits;
    const int w1 = last / wordBits;
    if (w0 == w1) {
        words[w0] |= begin & end;
        return;
    }
    words[w0] |= begin;
    for (int w = w0 + 1; w < w1; ++w)
        words[w] = ~u64(0);
    words[w1] |= end;
}

QPointF ZrTrackCover::ToWorld(double along, double across) const
{
    return m_isColumns ? QPointF(across, along) : QPointF(along, across);
}

bool ZrTrackCover::Runs(
    const QRectF& clip, int rows, double gap, std::size_t limit, std::vector<Run>& out) const
{
    const int gapCells = static_cast<int>(gap / m_cell);
    const double clipLeft = m_isColumns ? clip.top() : clip.left();
    const double clipRight = m_isColumns ? clip.bottom() : clip.right();
    const double clipBottom = m_isColumns ? clip.left() : clip.top();
    const double clipTop = m_isColumns ? clip.right() : clip.bottom();
    const int firstRow = Index((clipBottom - m_bottom) / m_height, m_rows) / rows * rows;
    const int lastRow = Index((clipTop - m_bottom) / m_height, m_rows);
    const int firstCell = Index((clipLeft - m_left) / m_cell, m_cells);
    const int endCell = Index((clipRight - m_left) / m_cell, m_cells) + 1;
    std::vector<u64> merged(m_words);
    for (int row = firstRow; row <= lastRow; row += rows) {
        std::fill(merged.begin(), merged.end(), 0);
        for (int i = row; i < std::min(row + rows, m_rows); ++i) {
            const u64* const words = m_bits.data() + static_cast<std::size_t>(i) * m_words;
            for (std::size_t w = 0; w < m_words; ++w)
                merged[w] |= words[w];
        }
        const double middle = m_bottom + (row + 0.5 * rows) * m_height;
        int from = Find(merged, firstCell, endCell, true);
        while (from < endCell) {
            int to = Find(merged, from, endCell, false);
            int next = Find(merged, to, endCell, true);
            while (next < endCell && next - to <= gapCells) {
                to = Find(merged, next, endCell, false);
                next = Find(merged, to, endCell, true);
            }
            if (out.size() >= limit)
                return false;
            out.push_back({ToWorld(m_left + from * m_cell, middle), ToWorld(m_left + to * m_cell, middle)});
            from = next;
        }
    }
    return true;
}
