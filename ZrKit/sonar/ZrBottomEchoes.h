#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrBottomEcho.h"
#include "ZrKit/sonar/ZrBottomTrackerSettings.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <vector>

/// Finds the edges in a single ping behind which it gets brighter and stays so: the seabed, most of the time.
///
/// For each edge the medians of the logarithms of the amplitudes in a window in front of it and behind it are
/// compared; in front, the mean of everything from the pulse on counts if it is higher. An edge with another
/// one in front of it, and mostly brightness between the two, counts less: the far end of an acoustic shadow
/// is no match for the first return, but seabed behind a fish is. Logarithms, since speckle is
/// multiplicative: a single bright sample weighs little.
///
/// Keeps its buffers from ping to ping. One thread at a time; a result depends on nothing found before.
class ZR_KIT_EXPORT ZrBottomEchoes
{
public:
    /// The samples of one side, nearest first; empty, or a range that is not finite and above 0, when that
    /// side is not there.
    struct Side
    {
        zr::span<const u16> samples;
        double slantRange = 0.0; ///< metres from the sonar to the end of the last sample
    };

    static constexpr std::size_t Most = 6; ///< echoes of a ping

    /// \p settings must be in their ranges, as `ZrBottomTracker::Settings` has them.
    explicit ZrBottomEchoes(const ZrBottomTrackerSettings& settings)
        : m_settings(settings)
    {
    }

    /// The echoes of a ping, the strongest first, at most `Most`. \p recorded is the altitude that another
    /// sensor told, metres; not known when it is NaN, infinite or not above 0.
    const std::vector<ZrBottomEcho>& Find(const Side& port, const Side& starboard, double recorded);

private:
    /// An echo of one side.
    struct Half
    {
        double altitude; ///< metres
        double strength;
        double doubt; ///< how much speaks for seabed in front of it, 0 to 1
    };

    struct Edges
    {
        std::vector<Half> echoes;
        bool alive = false; ///< something was recorded behind the pulse
        double cell = 0.0; ///< metres to which the edges are known
    };

    /// Where it gets brighter on one side; brightnesses are logarithms.
    struct Edge
    {
        std::size_t cell;
        double before;
        double after;
        double strength;
    };

    void FindEdges(const Side& side, Edges& edges);
    double SeabedInFrontOf(const Edge& edge) const;
    bool FillCells(const Side& side);
    void Scan();
    std::size_t Place(std::size_t edge, double before, double after) const;
    double Median(std::size_t from, std::size_t to);
    double MeanOf(std::size_t from, std::size_t to) const;
    void Merge();

    ZrBottomTrackerSettings m_settings;
    Edges m_edges[2];
    std::vector<ZrBottomEcho> m_echoes;

    /// \name The side at hand
    /// Cells are one sample long, or several where samples are much shorter than the window.
    /// @{
    std::vector<float> m_cells; ///< logarithms of the amplitudes
    std::vector<double> m_sums; ///< of the cells before each
    std::vector<float> m_scores; ///< how much brighter it is behind each cell's beginning
    std::vector<float> m_sorted;
    std::vector<Edge> m_found;
    double m_cell = 0.0; ///< metres
    double m_origin = 0.0; ///< slant range of the first cell's beginning, metres
    std::size_t m_reach = 0; ///< cells of the window
    /// @}
};
