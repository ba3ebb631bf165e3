#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrPathPiece.h"

#include <cstddef>
#include <vector>

/// An area of the plane, and how straights and arcs lie to it.
///
/// What is inside follows the even-odd rule, so that a ring may be concave, turn either way and cross itself.
/// The border itself, `Tolerance` wide on either side, counts neither as inside nor as outside: a path along
/// it violates nothing. Straights and arcs are calculated exactly, not by points on them.
///
/// Edges are found by the band of y that they touch: an area of many corners costs little for short pieces.
/// Any thread.
class ZR_KIT_EXPORT ZrPlaneArea
{
public:
    static constexpr double Tolerance = 0.01; ///< metres

    /// Part of a piece, by fractions of its length.
    struct Stretch
    {
        double first = 0.0;
        double last = 0.0;
    };

    /// Corners in order, finite; those that repeat the one before are left out.
    explicit ZrPlaneArea(const std::vector<ZrLocalPoint>& ring);

    std::size_t Corners() const { return m_ring.size(); } ///< without repeated ones

    /// Whether two edges cross that are not neighbours.
    bool CrossesItself() const;

    /// Whether there is nothing inside: below three corners, or narrower than `Tolerance`.
    bool IsDegenerate() const;

    bool Contains(ZrLocalPoint point) const;

    /// The stretches of the piece that are inside, or outside, in order. Those shorter than `Tolerance` are
    /// left out, unless the piece itself is so short.
    std::vector<Stretch> Stretches(const ZrPathPiece& piece, bool inside) const;

    /// Metres from the piece to the border, 0 where it crosses; infinity if they are not below \p limit.
    double Distance(const ZrPathPiece& piece, double limit) const;

private:
    struct Edge
    {
        ZrLocalPoint a;
        ZrLocalPoint b;
    };

    std::size_t BandOf(double y) const;
    bool IsOnBorder(ZrLocalPoint point) const;
    bool IsStretch(const ZrPathPiece& piece, Stretch stretch, bool inside) const;
    std::vector<double> Cuts(const ZrPathPiece& piece) const;
    double SignedArea() const;
    template <class F> void ForEdges(double low, double high, F&& visit) const;

    std::vector<ZrLocalPoint> m_ring;
    std::vector<Edge> m_edges;
    std::vector<std::vector<std::size_t>> m_bands; ///< indices of the edges that touch it
    double m_low = 0.0; ///< least y
    double m_high = 0.0; ///< largest y
};
