#include "ZrKit/map/ZrWaterfallLayout.h"

#include "ZrKit/sonar/ZrSlantRange.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
/// A step along the track that is this many times the usual one, and this many metres, is a gap.
constexpr double gapSteps = 5.0;
constexpr double gapMetres = 1.0;

bool IsAbove0(double value)
{
    return std::isfinite(value) && value > 0.0;
}

} // namespace

ZrWaterfallLayout::ZrWaterfallLayout(const ZrWaterfallRing& ring, const ZrWaterfallView& view)
    : m_view(view)
{
    const auto first = static_cast<double>(ring.First());
    const auto last = static_cast<double>(ring.End());
    m_end = std::isnan(view.end) ? last : std::clamp(view.end, first, last);
    if (view.rect.width() <= 0 || view.rect.height() <= 0 || !LayAcross(ring))
        return;
    LayAlong(ring);
    if (!m_rows.empty())
        m_missing = ring.Missing(m_rows.back().line, m_rows.front().line + 1);
}

bool ZrWaterfallLayout::LayAcross(const ZrWaterfallRing& ring)
{
    const double range = IsAbove0(m_view.range) ? m_view.range : ring.LongestRange(m_view.slantCorrected);
    const int width = m_view.rect.width();
    const bool both = m_view.sides == ZrWaterfallSettings::bothSides;
    const int columns = both ? width - width / 2 : width;
    if (!(range > 0.0))
        return false;
    m_metres = range / columns;
    m_right = m_view.sides == ZrWaterfallSettings::portOnly ? 0 : columns;
    m_left = width - m_right;
    return true;
}

ZrWaterfallLayout::Step ZrWaterfallLayout::StepAbove(
    const ZrWaterfallRing& ring, i64 line, double usual) const
{
    if (!m_speedCorrected)
        return {m_unit / 2.0, 0.0};
    double step = usual;
    if (ring.Has(line) && ring.Has(line + 1)) {
        const double known = std::fabs(ring.At(line + 1).along - ring.At(line).along);
        step = std::isnan(known) ? usual : known;
    }
    const double longest = std::max(gapSteps * usual, gapMetres);
    if (step > longest)
        return {usual / 2.0 * m_unit, (longest - usual) * m_unit};
    return {step / 2.0 * m_unit, 0.0};
}

void ZrWaterfallLayout::LayAlong(const ZrWaterfallRing& ring)
{
    const double usual = ring.UsualStep();
    const double height = m_view.rect.height();
    m_speedCorrected = m_view.speedCorrected && usual > 0.0;
    if (m_speedCorrected)
        m_unit = 1.0 / m_metres;
    else
        m_unit = IsAbove0(m_view.pixelsPerLine) ? m_view.pixelsPerLine : 1.0;
    const auto edge = static_cast<i64>(std::ceil(m_end)) - 1; // the line at the edge
    const auto heightOf
        = [&](i64 line) { return StepAbove(ring, line, usual).half + StepAbove(ring, line - 1, usual).half; };
    double at = edge < ring.First() ? 0.0 : -heightOf(edge) * (static_cast<double>(edge + 1) - m_end);
    const double newer = at;
    for (i64 line = edge; line >= ring.First() && at < height; --line) {
        Row row;
        row.line = line;
        row.from = at;
        row.to = at + heightOf(line);
        row.isThere = ring.Has(line);
        if (row.isThere) {
            const ZrWaterfallRing::Entry& entry = ring.At(line);
            row.row = ring.Row(line);
            row.altitude = ring.Altitude(line);
            row.range = entry.range;
            row.count = entry.count;
        }
        m_rows.push_back(row);
        at = row.to + StepAbove(ring, line - 1, usual).gap;
    }
    at = newer;
    for (i64 line = edge + 1; line < ring.End() && at > -height; ++line) {
        Row row;
        row.line = line;
        row.to = at - StepAbove(ring, line - 1, usual).gap;
        row.from = row.to - heightOf(line);
        at = row.from;
        m_newer.push_back(row);
    }
}

double ZrWaterfallLayout::EndRange(const Row& row, eSonarSide side) const
{
    const double range = row.range[side];
    return m_view.slantCorrected && !std::isnan(row.altitude) ? ZrSlantRange::Ground(range, row.altitude)
                                                              : range;
}

ZrWaterfallPoint ZrWaterfallLayout::ToSonar(const QPointF& pixel) const
{
    ZrWaterfallPoint point;
    const double x = pixel.x() - m_view.rect.x();
    const double y = pixel.y() - m_view.rect.y();
    const double height = m_view.rect.height();
    if (m_rows.empty() || !(x >= 0.0 && x <= m_view.rect.width() && y >= 0.0 && y <= height))
        return point;
    const double at = m_view.newest == ZrWaterfallSettings::newestTop ? y : height - y;
    const auto row = std::lower_bound(
        m_rows.begin(), m_rows.end(), at, [](const Row& r, double value) { return r.to <= value; });
    if (row == m_rows.end() || at < row->from || !row->isThere)
        return point;
    const double across = (x - m_left) * m_metres;
    point.side = across < 0.0 || m_right == 0 ? sidePort : sideStarboard;
    const double range = std::fabs(across);
    if (range > EndRange(*row, point.side) || row->range[point.side] == 0.0)
        return point;
    const double share = (at - row->from) / (row->to - row->from);
    point.ping = static_cast<double>(row->line) + 0.5 - share;
    const bool isGround = m_view.slantCorrected && !std::isnan(row->altitude);
    point.slantRange = isGround ? ZrSlantRange::Slant(range, row->altitude) : range;
    point.groundRange = isGround ? range : ZrSlantRange::Ground(range, row->altitude);
    return point;
}

QPointF ZrWaterfallLayout::ToPixel(double ping, eSonarSide side, double slantRange) const
{
    const double number = std::floor(ping + 0.5);
    if (m_rows.empty() || Columns(side) == 0 || !(number <= static_cast<double>(m_rows.front().line))
        || !(number >= static_cast<double>(m_rows.back().line)))
        return {unknown, unknown};
    const Row& row = m_rows[static_cast<std::size_t>(m_rows.front().line - static_cast<i64>(number))];
    if (!row.isThere)
        return {unknown, unknown};
    const bool isGround = m_view.slantCorrected && !std::isnan(row.altitude);
    const double range = isGround ? ZrSlantRange::Ground(slantRange, row.altitude) : slantRange;
    const double across = range / m_metres;
    const double at = row.from + (number + 0.5 - ping) * (row.to - row.from);
    const double y = m_view.newest == ZrWaterfallSettings::newestTop ? at : m_view.rect.height() - at;
    return {m_view.rect.x() + (side == sidePort ? m_left - across : m_left + across), m_view.rect.y() + y};
}

double ZrWaterfallLayout::EndAfterPan(double pixels) const
{
    if (!std::isfinite(pixels))
        return m_end;
    // What lies there comes to the edge.
    const double at = m_view.newest == ZrWaterfallSettings::newestTop ? -pixels : pixels;
    const auto lineIn = [at](const Row& row) {
        return static_cast<double>(row.line + 1)
            - std::clamp((at - row.from) / (row.to - row.from), 0.0, 1.0);
    };
    for (auto row = m_newer.rbegin(); row != m_newer.rend(); ++row) {
        if (row->to > at)
            return lineIn(*row);
    }
    for (const Row& row : m_rows) {
        if (row.to > at)
            return lineIn(row);
    }
    return m_rows.empty() ? m_end : static_cast<double>(m_rows.back().line);
}
