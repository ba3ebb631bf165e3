#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapProgram.h"

#include <QColor>
#include <QPointF>
#include <QSize>

#include <vector>

class ZrGlSurface;
class ZrMapView;

/// Triangles that are drawn in one call: each vertex at a world position or a pixel of the view, moved by
/// pixels that turn with the map or stay upright.
///
/// One buffer and one program. Upright corners are counted from a whole pixel. The context is current; GUI
/// thread only.
class ZR_KIT_EXPORT ZrMapBatch
{
public:
    /// One corner of a triangle, as the shaders take it.
    struct Vertex
    {
        float position[4] = {}; ///< `ZrMapSplit::Split`, or pixels right and down in the first two
        float corner[2] = {}; ///< pixels right and up
        float texture[2] = {}; ///< texels; for lines: pixels from the middle and half the width
        unsigned char colour[4] = {}; ///< red, green, blue, alpha
        unsigned char halo[4] = {}; ///< likewise, of what is around the ink
        float edge = 0.0F; ///< distance where ink ends, 0 to 1
        float sharpness = 0.0F; ///< pixels for the whole range of distances
        float isOnScreen = 0.0F; ///< 1: the position is in pixels
        float isTurning = 0.0F; ///< 1: the corner turns with the map

        void SetWorld(const QPointF& world);
        void SetPixel(const QPointF& pixel); ///< also upright
        void SetColour(const QColor& value);
        void SetHalo(const QColor& value);
    };

    using Vertices = std::vector<Vertex>;

    /// \p fragment is the resource of the fragment shader, \p plain that of a cheaper one for triangles whose
    /// halo, edge and sharpness are of no account.
    explicit ZrMapBatch(const QString& fragment, const QString& plain = QString());

    /// Whether the next `Use` takes the plain shader, where there is one and it builds.
    void SetPlain(bool isPlain) { m_isPlain = isPlain; }

    /// Makes the program current; false when it did not build.
    bool Use(ZrGlSurface& surface);

    /// Takes the triangles to be drawn. After `Use`. Where there is no memory for them nothing is drawn, and
    /// the debug log has a line, one for each context.
    void Upload(ZrGlSurface& surface, const Vertices& vertices);

    bool IsUploaded() const { return m_isUploaded; } ///< in the context there is

    /// Draws them, blended as colours that are multiplied by their alpha, with the texture that is bound. \p
    /// texture is its size; without one 1 × 1. After `Use`; nothing without triangles.
    void Draw(ZrGlSurface& surface, const ZrMapView& view, const QSize& texture = QSize(1, 1));

    void Release(ZrGlSurface& surface); ///< deletes buffer and program
    void Forget(); ///< the context is gone with them

private:
    ZrMapProgram m_program;
    ZrMapProgram m_plain;
    bool m_hasPlain;
    bool m_isPlain = false;
    bool m_usesPlain = false; ///< it is the current one
    unsigned m_buffer = 0;
    int m_count = 0;
    bool m_isUploaded = false;
    bool m_isFailureLogged = false;
};
