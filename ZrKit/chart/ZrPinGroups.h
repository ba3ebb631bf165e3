#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QHash>
#include <QPair>
#include <QPointF>

#include <vector>

/// Merges places that are too near to one another to be marked each.
///
/// \code
/// groups.Make(places, 64.0 * metresPerPixel);
/// for (const ZrPinGroups::Group& group : groups.Groups())
///     mark(group.at, group.members.size());
/// \endcode
///
/// Earlier places are the weightier ones: a group stands at each that is near to no group before it, so that
/// no two groups stand nearer to one another than the distance. Each place is in the group that is nearest to
/// it. Places that are not finite are in none. The time that it takes is nearly linear in their number.
///
/// A plain value; one thread at a time.
class ZR_KIT_EXPORT ZrPinGroups
{
public:
    struct Group
    {
        QPointF at; ///< where one of its members is
        std::vector<int> members; ///< indices of places, ascending; never empty
    };

    /// \param distance above 0; otherwise every place is a group
    void Make(const std::vector<QPointF>& places, double distance);

    const std::vector<Group>& Groups() const
    {
        return m_groups;
    } ///< in the order of the places that they stand at

    /// The groups that stand in a square of twice \p reach around a place, indices.
    std::vector<int> Near(const QPointF& place, double reach) const;

private:
    using Cell = QPair<qint64, qint64>;

    Cell CellOf(const QPointF& place) const;
    int NearestWithin(const QPointF& place, double distance) const;

    std::vector<Group> m_groups;
    QHash<Cell, std::vector<int>> m_cells; ///< groups by where they stand
    double m_side = 1.0; ///< of a cell
};
