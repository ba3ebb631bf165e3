#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QVector3D>

#include <vector>

/// A sea floor made of soundings: a grid of heights, with holes where nothing is known.
///
/// Positions are metres: x east, y north, z up. A node of the grid takes the soundings within `Reach`
/// spacings, the near ones counting more (inverse square distance); one without any stays a hole. The spacing
/// is chosen so that the grid has at most `MostNodes` nodes. A plain value.
class ZR_KIT_EXPORT ZrSceneFloor
{
public:
    static constexpr int MostNodes = 65536; ///< what indices of 16 bits reach
    static constexpr int Reach = 6; ///< spacings

    /// \param spacing of the grid at least, metres, above 0
    void Build(const std::vector<QVector3D>& soundings, float spacing);
    void Clear();

    bool IsEmpty() const { return m_indices.empty(); }

    float Lowest() const { return m_lowest; } ///< z of the nodes; 0 while empty

    float Highest() const { return m_highest; }

    float Spacing() const { return m_spacing; } ///< as built

    /// Height at a position; NaN where nothing is known.
    float HeightAt(float x, float y) const;

    const std::vector<QVector3D>& Positions() const { return m_positions; } ///< of the nodes; z 0 in holes

    const std::vector<QVector3D>& Normals() const { return m_normals; } ///< likewise, upward

    /// How well the nodes are known: 1 near a sounding, 0 where they end, falling over the spacings between,
    /// so that the floor may fade out before its edge, which has the corners of the grid.
    const std::vector<float>& Coverage() const { return m_coverage; }

    const std::vector<unsigned short>& Indices() const { return m_indices; } ///< of triangles

private:
    struct Sum
    {
        float weight = 0.0F;
        float height = 0.0F;
        float nearest = Reach * Reach; ///< square of the distance of a sounding, spacings
    };

    void Weigh(const std::vector<QVector3D>& soundings);
    void MakeNormals();
    void MakeTriangles();

    std::size_t Node(int column, int row) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns)
            + static_cast<std::size_t>(column);
    }

    int m_columns = 0;
    int m_rows = 0;
    float m_left = 0.0F;
    float m_bottom = 0.0F;
    float m_spacing = 1.0F;
    float m_lowest = 0.0F;
    float m_highest = 0.0F;
    std::vector<bool> m_isKnown;
    std::vector<QVector3D> m_positions;
    std::vector<QVector3D> m_normals;
    std::vector<float> m_coverage;
    std::vector<unsigned short> m_indices;
};
