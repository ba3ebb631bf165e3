#include "ZrKit/chart/ZrPinGroups.h"

#include <algorithm>
#include <cmath>

namespace {

/// Cells beyond this are not told apart.
constexpr double farthest = 1e15;
constexpr int none = -1;

double Distance(const QPointF& a, const QPointF& b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

} // namespace

ZrPinGroups::Cell ZrPinGroups::CellOf(const QPointF& place) const
{
    const auto index = [this](double v) {
        const double cell = std::floor(v / m_side);
        return std::isnan(cell) ? 0 : static_cast<qint64>(std::clamp(cell, -farthest, farthest));
    };
    return {index(place.x()), index(place.y())};
}

std::vector<int> ZrPinGroups::Near(const QPointF& place, double reach) const
{
    std::vector<int> near;
    const auto add = [&](const std::vector<int>& some) {
        for (const int index : some) {
            const QPointF d = m_groups[static_cast<std::size_t>(index)].at - place;
            if (std::fabs(d.x()) <= reach && std::fabs(d.y()) <= reach)
                near.push_back(index);
        }
    };
    const double cells = 2.0 * reach / m_side + 2.0;
    // Where there would be more cells than there are groups these are looked through.
    if (!(cells * cells <= static_cast<double>(m_cells.size()))) {
        for (const auto& some : m_cells)
            add(some);
    } else {
        const Cell low = CellOf(place - QPointF(reach, reach));
        const Cell high = CellOf(place + QPointF(reach, reach));
        for (qint64 y = low.second; y <= high.second; ++y) {
            for (qint64 x = low.first; x <= high.first; ++x) {
                const auto at = m_cells.constFind(Cell(x, y));
                if (at != m_cells.constEnd())
                    add(*at);
            }
        }
    }
    std::sort(near.begin(), near.end());
    return near;
}

/// Few are in the cells around it: none is nearer to another one than the distance.
int ZrPinGroups::NearestWithin(const QPointF& place, double distance) const
{
    int nearest = none;
    const Cell cell = CellOf(place);
    for (qint64 y = cell.second - 1; y <= cell.second + 1; ++y) {
        for (qint64 x = cell.first - 1; x <= cell.first + 1; ++x) {
            const auto at = m_cells.constFind(Cell(x, y));
            if (at == m_cells.constEnd())
                continue;
            for (const int index : *at) {
                const double away = Distance(m_groups[static_cast<std::size_t>(index)].at, place);
                if (!(away < distance))
                    continue;
                distance = away;
                nearest = index;
            }
        }
    }
    return nearest;
}

void ZrPinGroups::Make(const std::vector<QPointF>& places, double distance)
{
    m_groups.clear();
    m_cells.clear();
    const bool isMerging = std::isfinite(distance) && distance > 0.0;
    m_side = isMerging ? distance : 1.0;
    // Where they stand is settled first: a place may be nearer to a group that comes later.
    std::vector<int> own(places.size(), none);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const QPointF& place = places[i];
        const bool isPlace = std::isfinite(place.x()) && std::isfinite(place.y());
        if (!isPlace || (isMerging && NearestWithin(place, distance) != none))
            continue;
        own[i] = static_cast<int>(m_groups.size());
        m_cells[CellOf(place)].push_back(own[i]);
        m_groups.push_back({place, {}});
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        const int index = own[i] != none || !isMerging ? own[i] : NearestWithin(places[i], distance);
        if (index != none)
            m_groups[static_cast<std::size_t>(index)].members.push_back(static_cast<int>(i));
    }
}
