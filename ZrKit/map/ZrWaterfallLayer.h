#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapLayer.h"
#include "ZrKit/map/ZrMapProgram.h"
#include "ZrKit/map/ZrWaterfallLayout.h"
#include "ZrKit/map/ZrWaterfallMesh.h"

#include <array>
#include <vector>

/// Draws a side-scan waterfall from a ring of lines, live or in review.
///
/// \code
/// m_layer.SetRing(&m_ring);
/// m_layer.m_view.rect = QRect(0, 0, width, height);
/// m_layer.Paint(*this, view);
/// \endcode
///
/// The samples lie in textures, rows as in the ring: a frame uploads the rows of new lines and no others.
/// Colours and slant correction are the shader's work, so gain, palette, range and scrolling upload nothing.
/// Of the map view its size in pixels alone is used.
///
/// Colours: a sample i, 0 to 1, at the share q of the range shown becomes i′ = (i − r) / (1 − r) × (1 + gain)
/// with r = clamp + slope × q, limited to 0 to 1; the palette is asked for i′. q is in slant range. With
/// several ranges in view a slope is right to a hundredth. Pixels without samples stay as they are.
///
/// A ring that is wider than the context's textures is reduced once more, as the ring reduces; a ring with
/// more lines takes several textures for each side. A program that does not build, or a texture for which
/// there is no memory: nothing is drawn until the context changes, and the debug log has a line.
class ZR_KIT_EXPORT ZrWaterfallLayer : public ZrMapLayer
{
public:
    ZrWaterfallView m_view;
    int m_palette = -1; ///< row of the surface's palettes; below 0 the one chosen there
    float m_gain = 0.0F; ///< -1 to 1,000
    float m_clamp = 0.0F; ///< up to 0.95: what is not brighter is black
    float m_slope = 0.0F; ///< over the range shown; as far as r stays below 0.99 in view
    float m_alpha = 1.0F; ///< opacity of black, 0 to 1; the brighter the more opaque
    bool m_isSmooth = false; ///< blends neighbouring samples and lines
    int m_mostTexels = 0; ///< limit of the sides of textures; 0: that of the context

    ZrWaterfallLayer();

    /// Shows \p ring, which must stay; null for nothing.
    void SetRing(const ZrWaterfallRing* ring) { m_ring = ring; }

    /// Which line lies where, as it was painted last: for cursors, and for the lines that are `Missing`.
    const ZrWaterfallLayout& Layout() const { return m_layout; }

protected:
    void OnPaint(ZrGlSurface& surface, const ZrMapView& view) override;
    void OnRelease(ZrGlSurface& surface) override;
    void OnForget() override;

private:
    struct Side
    {
        std::vector<unsigned> textures;
        u64 uploaded = 0; ///< revision of the ring
    };

    bool PrepareTextures(ZrGlSurface& surface);
    bool MakeTextures(ZrGlSurface& surface, Side& side) const;
    void UploadRows(ZrGlSurface& surface, eSonarSide side);
    void UploadRun(ZrGlSurface& surface, eSonarSide side, int row, int count);
    void DeleteTextures(ZrGlSurface& surface);
    void SetUniforms(ZrGlSurface& surface, const ZrMapView& view);
    void Draw(ZrGlSurface& surface);

    const ZrWaterfallRing* m_ring = nullptr;
    ZrWaterfallLayout m_layout;
    ZrMapProgram m_program;
    u64 m_ringId = 0; ///< of what the textures hold
    int m_limit = 0; ///< `m_mostTexels` of the textures
    int m_width = 0; ///< texels
    int m_pageRows = 0;
    bool m_hasFailed = false;
    std::array<Side, 2> m_sides;
    std::vector<u8> m_rows; ///< reduced
    ZrWaterfallMesh m_mesh;
};
