#include "ZrKit/scene/ZrSceneFloor.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Spacings from the nearest sounding. A node at the end has none farther than a diagonal beyond it.
constexpr float fadeStart = 2.0F;
constexpr float fadeEnd = static_cast<float>(ZrSceneFloor::Reach) - 1.42F;

bool IsFinite(const QVector3D& v)
{
    return std::isfinite(v.x()) && std::isfinite(v.y()) && std::isfinite(v.z());
}

} // namespace

void ZrSceneFloor::Clear()
{
    *this = ZrSceneFloor();
}

void ZrSceneFloor::Build(const std::vector<QVector3D>& soundings, float spacing)
{
    Clear();
    float right = 0.0F;
    float top = 0.0F;
    bool isFirst = true;
    for (const QVector3D& p : soundings) {
        if (!IsFinite(p))
            continue;
        m_left = isFirst ? p.x() : std::min(m_left, p.x());
        right = isFirst ? p.x() : std::max(right, p.x());
        m_bottom = isFirst ? p.y() : std::min(m_bottom, p.y());
        top = isFirst ? p.y() : std::max(top, p.y());
        isFirst = false;
    }
    if (isFirst || !(spacing > 0.0F) || !std::isfinite(spacing))
        return;
    m_spacing = spacing;
    const auto nodes = [&](float extent) { return std::floor(extent / m_spacing) + 1.0F + 2.0F * Reach; };
    while (nodes(right - m_left) * nodes(top - m_bottom) > static_cast<float>(MostNodes))
        m_spacing *= 1.25F;
    m_columns = static_cast<int>(nodes(right - m_left));
    m_rows = static_cast<int>(nodes(top - m_bottom));
    m_left -= m_spacing * Reach;
    m_bottom -= m_spacing * Reach;
    Weigh(soundings);
    MakeNormals();
    MakeTriangles();
}

void ZrSceneFloor::Weigh(const std::vector<QVector3D>& soundings)
{
    std::vector<Sum> sums(Node(0, m_rows));
    for (const QVector3D& p : soundings) {
        if (!IsFinite(p))
            continue;
        const float column = (p.x() - m_left) / m_spacing;
        const float row = (p.y() - m_bottom) / m_spacing;
        const int firstRow = std::max(static_cast<int>(row) - Reach, 0);
        const int lastRow = std::min(static_cast<int>(row) + Reach, m_rows - 1);
        const int firstColumn = std::max(static_cast<int>(column) - Reach, 0);
        const int lastColumn = std::min(static_cast<int>(column) + Reach, m_columns - 1);
        for (int r = firstRow; r <= lastRow; ++r) {
            for (int c = firstColumn; c <= lastColumn; ++c) {
                const float dx = static_cast<float>(c) - column;
                const float dy = static_cast<float>(r) - row;
                const float square = dx * dx + dy * dy;
                if (square > static_cast<float>(Reach * Reach))
                    continue;
                const float weight = 1.0F / (square + 0.05F);
                Sum& sum = sums[Node(c, r)];
                sum.weight += weight;
                sum.height += weight * p.z();
                sum.nearest = std::min(sum.nearest, square);
            }
        }
    }
    m_isKnown.resize(sums.size());
    m_positions.resize(sums.size());
    m_coverage.resize(sums.size());
    m_lowest = std::numeric_limits<float>::infinity();
    m_highest = -m_lowest;
    for (int r = 0; r < m_rows; ++r) {
        for (int c = 0; c < m_columns; ++c) {
            const std::size_t node = Node(c, r);
            m_isKnown[node] = sums[node].weight > 0.0F;
            const float height = m_isKnown[node] ? sums[node].height / sums[node].weight : 0.0F;
            m_positions[node] = QVector3D(m_left + static_cast<float>(c) * m_spacing,
                m_bottom + static_cast<float>(r) * m_spacing, height);
            const float away = std::sqrt(sums[node].nearest);
            m_coverage[node] = std::clamp((fadeEnd - away) / (fadeEnd - fadeStart), 0.0F, 1.0F);
            if (!m_isKnown[node])
                continue;
            m_lowest = std::min(m_lowest, height);
            m_highest = std::max(m_highest, height);
        }
    }
}

void ZrSceneFloor::MakeNormals()
{
    m_normals.resize(m_positions.size());
    // The slope between the neighbours that are known, on one side at an edge.
    const auto slope = [this](std::size_t node, std::size_t before, std::size_t after) {
        const std::size_t a = m_isKnown[before] ? before : node;
        const std::size_t b = m_isKnown[after] ? after : node;
        const float steps = static_cast<float>((a != node) + (b != node));
        return steps == 0.0F ? 0.0F : (m_positions[b].z() - m_positions[a].z()) / (steps * m_spacing);
    };
    for (int r = 0; r < m_rows; ++r) {
        for (int c = 0; c < m_columns; ++c) {
            const std::size_t node = Node(c, r);
            const float sx
                = slope(node, Node(std::max(c - 1, 0), r), Node(std::min(c + 1, m_columns - 1), r));
            const float sy = slope(node, Node(c, std::max(r - 1, 0)), Node(c, std::min(r + 1, m_rows - 1)));
            m_normals[node] = QVector3D(-sx, -sy, 1.0F).normalized();
        }
    }
}

void ZrSceneFloor::MakeTriangles()
{
    const auto add = [this](std::size_t a, std::size_t b, std::size_t c) {
        if (!m_isKnown[a] || !m_isKnown[b] || !m_isKnown[c])
            return;
        for (const std::size_t node : {a, b, c})
            m_indices.push_back(static_cast<unsigned short>(node));
    };
    for (int r = 0; r + 1 < m_rows; ++r) {
        for (int c = 0; c + 1 < m_columns; ++c) {
            add(Node(c, r), Node(c + 1, r), Node(c, r + 1));
            add(Node(c + 1, r), Node(c + 1, r + 1), Node(c, r + 1));
        }
    }
}

float ZrSceneFloor::HeightAt(float x, float y) const
{
    const float unknown = std::numeric_limits<float>::quiet_NaN();
    const float column = (x - m_left) / m_spacing;
    const float row = (y - m_bottom) / m_spacing;
    if (!(column >= 0.0F && row >= 0.0F && column < static_cast<float>(m_columns - 1)
            && row < static_cast<float>(m_rows - 1)))
        return unknown;
    const int c = static_cast<int>(column);
    const int r = static_cast<int>(row);
    const float fx = column - static_cast<float>(c);
    const float fy = row - static_cast<float>(r);
    const auto height = [&](int dc, int dr) {
        const std::size_t node = Node(c + dc, r + dr);
        return m_isKnown[node] ? m_positions[node].z() : unknown;
    };
    return (height(0, 0) * (1.0F - fx) + height(1, 0) * fx) * (1.0F - fy)
        + (height(0, 1) * (1.0F - fx) + height(1, 1) * fx) * fy;
}
