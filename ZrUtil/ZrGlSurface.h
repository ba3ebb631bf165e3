#pragma once

#include "ZrUtil/ZrCursor.h"
#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrGl2dOrtho.h"
#include "ZrUtil/ZrGlTextBuffer.h"
#include "ZrUtil/ZrTypes.h"

#include <QColor>
#include <QCursor>
#include <QFont>
#include <QObject>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPointer>
#include <QRect>
#include <QString>

#include <array>
#include <initializer_list>

class QMouseEvent;
class QWheelEvent;

/// How YCbCr frames are turned into RGB.
enum eColSpace : int
{
    colSpaceBt601 = 1,
    colSpaceBt709 = 2
};

/// The drawing engine of every OpenGL view: shader programs, palettes, markers, glyphs, and primitives that
/// draw at once, in the view transform of `ZrGl2dOrtho`.
///
/// \code
/// class DepthView : public ZrGlSurface
/// {
///     void Render() override { ZrglRenderLine(0, 0, 10, 5, Qt::white); }
///     void OnResize(int width, int height) override { zrgl2dViewport(width, height); }
/// };
/// \endcode
///
/// It works in any OpenGL 2.0 or OpenGL ES 2.0 context. `OnCreate` is called once with the context current;
/// every primitive needs it current too, or one that shares its objects. Without a context or in another one,
/// with a program that did not build, or an image that is missing, nothing is drawn and the debug log has a
/// line from when it failed first.
///
/// Positions are world units of the view transform unless a function says pixels; colours are not
/// premultiplied. Blending is off after every primitive, and texture unit 0 is the active one after those
/// with a texture. Errors of GL's are neither fetched nor cleared. GL objects live as long as the context.
/// GUI thread only.
///
/// Positions on a map do not fit into floats. A view that draws them sets the uniform "uMap" to 1 after
/// `ZrglSetPgm`, and back to 0 before other primitives, and gives each position as 4 floats: x and y ordinal,
/// x and y decimal, which add up. The scale, pixels for a metre, and the scaled origin are in two parts
/// likewise; uOffX takes back what this sum is off at the centre of the map. y is computed as x is:
///
/// \code
/// x * uScale - uOriginX - uOriginXd + x * uScaleD + dx * uScale + dx * uScaleD + uOffX // in this order
/// \endcode
///
/// The product of an ordinal and uScale must fit into the 24 bits of a float. At 100 pixels for a metre
/// ordinals in multiples of 8 m are exact to the pixel, whole metres are not; at any scale multiples of 256 m
/// are, with a uScale rounded to 9 bits.
class ZR_UTIL_EXPORT ZrGlSurface : public QObject, public ZrGl2dOrtho
{
    Q_OBJECT

public:
    using eColSpace = ::eColSpace;

    /// The shader programs.
    enum eProgram : int
    {
        solid = 0, ///< `m_colour`
        texture = 1, ///< the texture
        palette = 2, ///< the texture's alpha through row `m_palIndex` of the palettes
        alpha = 3, ///< `m_colour`, its alpha that of the texture
        luminance = 4, ///< the texture, the brighter the more opaque
        colourkey = 5, ///< the texture, without what equals `m_colKey`
        yuvplanar = 6 ///< three textures Y, Cb, Cr by `m_colourSpace`
    };

    static constexpr int ProgramCount = 7;
    static constexpr int GlyphFirst = 32; ///< first character of the glyph table
    static constexpr int GlyphCount = 94;
    static constexpr int MarkerCount = 15;

    /// Flags of `ZrglRenderMarker`.
    enum eMarkerFlags : int
    {
        markerRight = 1, ///< extends to the right of its position
        markerLeft = 4, ///< to the left; means nothing beside `markerRight`
        markerUp = 8, ///< moves one pair of corners up
        markerDown = 32 ///< moves one pair of corners down; means nothing beside `markerUp`
    };

    /// Flags of `ZrglAddText`.
    enum eTextFlags : unsigned
    {
        textCentre = 2, ///< the position is in the middle of the width; without: at the left end
        textRight = 4, ///< at the right end; means nothing beside `textCentre`
        textTop = 8, ///< at the upper edge; without: at the lower one; means nothing beside `textMiddle`
        textMiddle = 16, ///< in the middle of the height
        textMirrorX = 64, ///< each glyph mirrored left to right, for mirrored views
        textMirrorY = 128 ///< each glyph upside down, for views with y down
    };

    /// One glyph of the atlas.
    struct Glyph
    {
        u8 code = 0;
        int width = 0; ///< advance, pixels
        int height = 0; ///< pixels
        float s0 = 0.0F; ///< in the atlas
        float s1 = 0.0F;
        float t0 = 0.0F;
        float t1 = 0.0F;
    };

    QOpenGLFunctions m_gl; ///< the functions of the context, from `OnCreate` on
    QColor m_clearColour{0, 0, 0, 255};
    QColor m_colour; ///< of the programs `solid` and `alpha`
    QColor m_colKey; ///< of the program `colourkey`
    QFont m_font; ///< of the glyphs
    QString m_background; ///< path of the background image
    int m_palIndex = 1; ///< row of the palettes
    GLuint m_palTex = 0; ///< the palettes
    GLuint m_bgTex = 0; ///< the background
    GLuint m_overlayTex = 0; ///< overlay of the application; 0 for none
    int m_colourSpace = 0; ///< an `eColSpace`; grey with any other
    int m_palCount = 1; ///< number of palettes
    GLuint m_program = 0; ///< made current by `ZrglSetPgm` last
    QRect m_viewport; ///< device pixels, y up
    int m_pixelFactor = 1; ///< device pixels for each widget pixel; set by the owner
    GLuint m_fontTex = 0; ///< the glyph atlas
    std::array<Glyph, GlyphCount> m_glyphs;
    std::array<GLuint, MarkerCount> m_markers{}; ///< textures in the order of `ZrglInitMarkers`; 0 missing
    std::array<GLuint, ProgramCount> m_programs{}; ///< by `eProgram`; 0 did not build

    static ZrCursor s_cursor; ///< playback position, shared by all surfaces

    explicit ZrGlSurface(QObject* parent = nullptr);
    ~ZrGlSurface() override;

    /// Whether primitives can draw: `OnCreate` has run in the context that is current, or one that shares its
    /// objects.
    bool IsReady() const;

    virtual void Render() = 0; ///< draws the view; the context is current
    virtual void OnResize(int width, int height) = 0; ///< the size changed, device pixels

    /// Builds programs, palettes, glyphs, markers and background. Once, with the context current; without one
    /// the debug log has a line and nothing will be drawn.
    virtual void OnCreate();

    virtual void OnMouseMove(QMouseEvent* event);
    virtual void OnMousePress(QMouseEvent* event);
    virtual void OnMouseRelease(QMouseEvent* event);
    virtual void OnMouseDblClick(QMouseEvent* event);
    virtual void OnWheel(QWheelEvent* event);
    virtual void OnInput(QEvent* event); ///< for touch and gestures; `ZrSfHolder` does not pass these on

    /// Compiles the text of \p resource as a shader of \p type. 0 on failure, the reason in the debug log.
    int ZrglCompileShader(int type, QString resource);

    /// Links a program. 0 on failure, the reason in the debug log. The shaders are left to the caller.
    int ZrglLinkProgram(int vertexShader, int fragmentShader);

    /// A program from two resources; 0 on failure.
    int ZrglBuildProgram(QString vertex, QString fragment);

    void ZrglInitShaders(); ///< builds the programs of `eProgram`

    /// Loads ":/palettes.png": a palette in every 10 rows of pixels. Without it a grey ramp is used.
    void ZrglInitPalette();

    void ZrglInitMarkers(); ///< loads the marker and handle images

    /// Makes a program current and sets its uniforms; of a value that is no program only the matrix, for the
    /// program that was current before.
    ///
    /// The colour key is passed as one integer to a vector, which GL refuses with GL_INVALID_OPERATION: the
    /// key stays transparent black.
    void ZrglSetPgm(eProgram program);

    /// Sets `m_colour`, each component 0 to 1; beyond that the nearer end is taken, for NaN 0.
    void ZrglSetColour(float r, float g, float b, float a);
    void ZrglSetColour(QColor colour); ///< sets `m_colour`

    void ZrglSetViewport(const QRect& viewport); ///< device pixels, y up
    void ZrglSetViewport(int x, int y, int w, int h); ///< likewise
    void ZrGlClipToViewport(); ///< `glViewport` of `m_viewport`

    /// Loads an image into a new texture. False, and \p tex stays, when it cannot be read.
    bool ZrglLoadImageToTexture(QString path, GLuint& tex);

    /// Loads the background image; the debug log has a line when it cannot be read.
    void ZrglSetBackground(QString path);
    void ZrglRenderBackground(); ///< over the whole viewport

    void ZrglRenderLine(float x1, float y1, float x2, float y2, QColor colour);

    /// Lines between pairs: \p count points of x and y, two for each line.
    void ZrglRenderPolyline(float* xy, int count, QColor colour);

    /// A closed line through the x and y of \p count vertices of 4 floats, with the program that is current.
    void ZrglRenderVboLine(float* v, unsigned count);

    /// A filled rectangle in pixels of the viewport, y down.
    void ZrglRenderPixelRect(int x, int y, int w, int h, QColor colour);

    /// A quad as a triangle strip, four vertices of x, y, s, t, with the k-th texture on unit k. Blended with
    /// the programs `texture`, `alpha`, `luminance` and `colourkey`.
    void ZrglRenderVbo(float* quad, std::initializer_list<unsigned> textures, eProgram program);
    void ZrglRenderVbo(float* quad, unsigned tex, eProgram program); ///< with one texture

    void ZrglRenderOverlay(); ///< the overlay over the whole viewport; nothing without one

    /// A marker at x, y, turned by \p angleDeg counter-clockwise.
    ///
    /// The first row of the image is at the lower edge where y points up. The images of the library are
    /// stored upside down (render_images.py mirrors marker_* and handle_*), so that at 0 degrees they stand
    /// upright on maps: the arrow and the vector point up, so that a heading is drawn at its negative. Where
    /// y points down they are upside down.
    ///
    /// \param size   half its side, design pixels
    /// \param tex    one of `m_markers`; nothing is drawn with 0
    /// \param flags  `eMarkerFlags`, 0 for centred
    /// \param program usually `alpha`: the shape of the image in \p colour
    void ZrglRenderMarker(float x, float y, float angleDeg, float size, unsigned tex, QColor colour,
        int flags, unsigned program);

    void ZrglSetFont(QFont font); ///< makes the glyph atlas anew
    void ZrglInitFont(); ///< makes it from `m_font`

    /// Lays a text out into \p buffer: at x, y, turned by \p angleDeg counter-clockwise; \p flags are
    /// `eTextFlags`. Characters outside 32 to 125 take no room. The size is right for the scale at the time.
    void ZrglAddText(ZrGlTextBuffer& buffer, float x, float y, float angleDeg, QString text, unsigned flags);

    void ZrglRenderText(ZrGlTextBuffer& buffer); ///< draws it, in white; `m_program` stays

Q_SIGNALS:
    void Update(); ///< the surface wants to be drawn again
    void SetCursor(const QCursor& cursor); ///< it wants another mouse cursor

private:
    /// Where a program keeps its variables, looked up once.
    struct Locations
    {
        bool isKnown = false;
        int matrix = -1;
        int colour = -1;
        int texUnit = -1;
        int palIndex = -1;
        int palUnit = -1;
        int colKey = -1;
        int texY = -1;
        int texCb = -1;
        int texCr = -1;
        int colourSpace = -1;
        int position = -1;
        int texCoords = -1;
    };

    const Locations& LocationsOf(int program);
    unsigned CurrentProgram() const;
    void UseProgram(int program);
    void SetUniforms(int program, const Locations& at);
    void SetMatrix(const Locations& at);
    void Draw(unsigned mode, const float* vertices, int floats, bool hasTexCoords, int count);
    void RenderViewportQuad(unsigned tex);
    bool IsTextureSize(const QSize& size);
    void Upload(GLuint tex, const QImage& image, int minFilter);
    bool IsReadyOrWarn();
    void LogFailure(const char* what, const QByteArray& text) const;

    QPointer<QOpenGLContextGroup> m_group; ///< of the context that `OnCreate` was called in
    bool m_isWarned = false; ///< the debug log knows that nothing is drawn
    int m_current = -1; ///< index of the program that is current; -1 for none
    std::array<Locations, ProgramCount> m_locations;
};
