#include "ZrKit/map/ZrLabelDeclutter.h"

#include "ZrKit/map/ZrMapView.h"

#include <QHash>
#include <QPair>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/// About the size of a label: a box lies in few cells.
constexpr double cellSide = 128.0;
/// Cells of a box beyond which it is kept apart.
constexpr double mostCells = 256.0;
/// Where cells can still be counted.
constexpr double farthest = 1e9;

bool IsUsable(const QRectF& box)
{
    return box.width() > 0.0 && box.height() > 0.0 && std::fabs(box.left()) < farthest
        && std::fabs(box.right()) < farthest && std::fabs(box.top()) < farthest
        && std::fabs(box.bottom()) < farthest;
}

/// Boxes by the cells that they touch.
class Taken
{
public:
    void Add(const QRectF& box)
    {
        const int index = static_cast<int>(m_boxes.size());
        m_boxes.push_back(box);
        if (CellCount(box) > mostCells)
            m_large.push_back(index);
        else
            EachCell(box, [&](const Cell& cell) { m_cells[cell].push_back(index); });
    }

    bool Overlaps(const QRectF& box) const
    {
        const auto isHit = [&](int i) { return m_boxes[static_cast<std::size_t>(i)].intersects(box); };
        if (std::any_of(m_large.begin(), m_large.end(), isHit))
            return true;
        if (CellCount(box) > mostCells)
            return std::any_of(
                m_boxes.begin(), m_boxes.end(), [&](const QRectF& other) { return other.intersects(box); });
        bool isOverlap = false;
        EachCell(box, [&](const Cell& cell) {
            const auto at = m_cells.constFind(cell);
            isOverlap = isOverlap || (at != m_cells.constEnd() && std::any_of(at->begin(), at->end(), isHit));
        });
        return isOverlap;
    }

private:
    using Cell = QPair<int, int>;

    static int Index(double v) { return static_cast<int>(std::floor(v / cellSide)); }

    static double CellCount(const QRectF& box)
    {
        return (box.width() / cellSide + 2.0) * (box.height() / cellSide + 2.0);
    }

    template <class Function> static void EachCell(const QRectF& box, Function function)
    {
        for (int y = Index(box.top()); y <= Index(box.bottom()); ++y) {
            for (int x = Index(box.left()); x <= Index(box.right()); ++x)
                function(Cell(x, y));
        }
    }

    std::vector<QRectF> m_boxes;
    std::vector<int> m_large;
    QHash<Cell, std::vector<int>> m_cells;
};

} // namespace

QRectF ZrLabelDeclutter::Box(const ZrMapLabel& label, const QSizeF& size, const ZrMapView& view, double pixel)
{
    const double left = -size.width() * label.alignX / 2.0;
    const double top = -size.height() * label.alignY / 2.0;
    const bool isTurning = label.isTurning && !label.isOnScreen;
    const double turn = qDegreesToRadians(isTurning ? view.Rotation() : 0.0);
    const double angle = qDegreesToRadians(label.angle) + turn;
    const auto turned = [](double x, double y, double by) { // y down, counter-clockwise
        return QPointF(x * std::cos(by) + y * std::sin(by), y * std::cos(by) - x * std::sin(by));
    };
    const QPointF at = (label.isOnScreen ? label.position : view.ToPixel(label.position))
        + turned(label.offset.x() * pixel, label.offset.y() * pixel, turn);
    QRectF box(at, QSizeF());
    bool isFirst = true;
    for (const double x : {left, left + size.width()}) {
        for (const double y : {top, top + size.height()}) {
            const QPointF corner = at + turned(x, y, angle);
            if (isFirst)
                box = QRectF(corner, corner);
            box.setLeft(std::min(box.left(), corner.x()));
            box.setRight(std::max(box.right(), corner.x()));
            box.setTop(std::min(box.top(), corner.y()));
            box.setBottom(std::max(box.bottom(), corner.y()));
            isFirst = false;
        }
    }
    return box;
}

std::vector<bool> ZrLabelDeclutter::Shown(const std::vector<Item>& items, const std::vector<QRectF>& taken)
{
    std::vector<bool> isShown(items.size(), false);
    std::vector<std::size_t> order(items.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(),
        [&](std::size_t a, std::size_t b) { return items[a].priority > items[b].priority; });
    Taken boxes;
    for (const QRectF& box : taken) {
        if (IsUsable(box))
            boxes.Add(box);
    }
    for (const std::size_t i : order) {
        const Item& item = items[i];
        if (!IsUsable(item.box))
            continue;
        isShown[i] = item.priority == ZrMapLabel::AlwaysShown || !boxes.Overlaps(item.box);
        if (isShown[i])
            boxes.Add(item.box);
    }
    return isShown;
}
