#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrWaterfallLayout.h"

#include <vector>

/// The triangles of a waterfall, for the shader that turns slant ranges into ground ranges.
///
/// Lines that follow one another in view and in the texture make one band, a quad; with slant correction as
/// long as their altitudes are so near that nothing moves by more than a quarter of a pixel. The ends of a
/// band are cut at the view's. With slant correction it is divided across, so that samples lie within half a
/// pixel of where the square root puts them: narrow near the middle, where that bends most.
///
/// For C columns and R rows of pixels of a side that is at most R bands, with `MostSteps(C)` steps each and
/// 2 × steps + 4 vertices; one draw for each side, texture and range in use. Without slant correction, and
/// with lines of one range, it is two quads for each side: those before and after the end of the ring. Bands
/// that no pixel has its middle in are left out. Right for altitudes up to 4,000 pixels.
///
/// A plain value.
class ZR_KIT_EXPORT ZrWaterfallMesh
{
public:
    struct Vertex
    {
        float slant; ///< metres
        float along; ///< pixels from the edge of the newest lines
        float altitude; ///< metres; 0 not corrected
        float s; ///< in the texture, 0 at the sonar
        float t;
    };

    /// A triangle strip.
    struct Draw
    {
        eSonarSide side;
        int page; ///< which of the textures
        float perRange; ///< s times this is the slant range as a share of the range shown
        float reach; ///< the largest such share
        int first; ///< vertex
        int count;
    };

    struct Settings
    {
        int width = 0; ///< samples that fill a row of the ring
        int pageRows = 0; ///< rows of each texture
        bool isSmooth = false; ///< lines are blended into their neighbours, and must not be into others
        bool isByRange = false; ///< lines of different range need draws of their own
    };

    ZrWaterfallMesh() = default;
    ZrWaterfallMesh(const ZrWaterfallLayout& layout, const Settings& settings);

    const std::vector<Vertex>& Vertices() const { return m_vertices; }

    const std::vector<Draw>& Draws() const { return m_draws; }

    /// The ground ranges, pixels, at which a band up to \p end is divided: 0, …, \p end. \p altitude in
    /// pixels too; 0 for no correction.
    static std::vector<double> Steps(double altitude, double end);

    /// No band of so many columns has more steps.
    static int MostSteps(int columns);

private:
    std::vector<Vertex> m_vertices;
    std::vector<Draw> m_draws;
};
