#include "ZrUtil/ZrGlSurface.h"

#include "ZrUtil/ZrLogEmit.h"
#include "ZrUtil/ZrTheme.h"

#include <algorithm>
#include <cmath>

ZrCursor ZrGlSurface::s_cursor;

namespace {

constexpr int quadCorners = 4;
constexpr int texturedFloats = 4; ///< x, y, s, t

bool IsBlended(ZrGlSurface::eProgram program)
{
    return program == ZrGlSurface::texture || program == ZrGlSurface::alpha
        || program == ZrGlSurface::luminance || program == ZrGlSurface::colourkey;
}

} // namespace

ZrGlSurface::ZrGlSurface(QObject* parent)
    : QObject(parent)
{
}

ZrGlSurface::~ZrGlSurface() = default;

void ZrGlSurface::OnCreate()
{
    if (!QOpenGLContext::currentContext()) {
        ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrUtil-ZrGlSurface",
            "No OpenGL context is current, nothing will be drawn");
        m_isWarned = true;
        return;
    }
    m_gl.initializeOpenGLFunctions();
    m_group = QOpenGLContextGroup::currentContextGroup();
    m_isWarned = false;
    // What an earlier context had is gone with it.
    m_program = 0;
    m_current = -1;
    m_bgTex = 0;
    ZrglInitShaders();
    ZrglInitPalette();
    m_gl.glGenTextures(1, &m_fontTex);
    ZrglSetFont(m_font);
    ZrglInitMarkers();
    ZrglSetBackground(m_background);
}

bool ZrGlSurface::IsReady() const
{
    // The functions are those of a group too: behind its end they must not be called.
    return m_group && QOpenGLContextGroup::currentContextGroup() == m_group;
}

/// `IsReady`; the debug log has a line when it is not so for the first time.
bool ZrGlSurface::IsReadyOrWarn()
{
    if (IsReady())
        return true;
    if (!m_isWarned) {
        ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrUtil-ZrGlSurface",
            "The OpenGL context of the surface is not current, nothing is drawn");
        m_isWarned = true;
    }
    return false;
}

void ZrGlSurface::OnMouseMove(QMouseEvent* /*event*/) { }

void ZrGlSurface::OnMousePress(QMouseEvent* /*event*/) { }

void ZrGlSurface::OnMouseRelease(QMouseEvent* /*event*/) { }

void ZrGlSurface::OnMouseDblClick(QMouseEvent* /*event*/) { }

void ZrGlSurface::OnWheel(QWheelEvent* /*event*/) { }

void ZrGlSurface::OnInput(QEvent* /*event*/) { }

void ZrGlSurface::ZrglSetColour(float r, float g, float b, float a)
{
    // Beyond 0 to 1 `QColor` refuses an alpha and keeps a colour that not all of it can convert.
    const auto limited = [](float v) { return v > 0.0F ? static_cast<double>(std::min(v, 1.0F)) : 0.0; };
    m_colour = QColor::fromRgbF(limited(r), limited(g), limited(b), limited(a));
}

void ZrGlSurface::ZrglSetColour(QColor colour)
{
    m_colour = colour;
}

void ZrGlSurface::ZrglSetViewport(const QRect& viewport)
{
    m_viewport = viewport;
}

void ZrGlSurface::ZrglSetViewport(int x, int y, int w, int h)
{
    m_viewport = QRect(x, y, w, h);
}

void ZrGlSurface::ZrGlClipToViewport()
{
    // A negative size is an error of GL's; an empty viewport is not.
    if (IsReadyOrWarn() && m_viewport.width() >= 0 && m_viewport.height() >= 0)
        m_gl.glViewport(m_viewport.left(), m_viewport.top(), m_viewport.width(), m_viewport.height());
}

/// Draws \p count vertices of \p floats floats with the current program: x and y first, then s and t.
void ZrGlSurface::Draw(unsigned mode, const float* vertices, int floats, bool hasTexCoords, int count)
{
    if (CurrentProgram() == 0 || !vertices || count < 1)
        return;
    const Locations& at = LocationsOf(m_current);
    if (at.position < 0)
        return;
    const int stride = floats * static_cast<int>(sizeof(float));
    const auto position = static_cast<GLuint>(at.position);
    const auto texCoords = static_cast<GLuint>(at.texCoords);
    const bool isTextured = hasTexCoords && at.texCoords >= 0;
    m_gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    m_gl.glEnableVertexAttribArray(position);
    m_gl.glVertexAttribPointer(position, 2, GL_FLOAT, GL_FALSE, stride, vertices);
    if (isTextured) {
        m_gl.glEnableVertexAttribArray(texCoords);
        m_gl.glVertexAttribPointer(texCoords, 2, GL_FLOAT, GL_FALSE, stride, vertices + 2);
    }
    m_gl.glDrawArrays(mode, 0, count);
    m_gl.glDisableVertexAttribArray(position);
    if (isTextured)
        m_gl.glDisableVertexAttribArray(texCoords);
}

void ZrGlSurface::ZrglRenderLine(float x1, float y1, float x2, float y2, QColor colour)
{
    float line[] = {x1, y1, x2, y2};
    ZrglRenderPolyline(line, 2, colour);
}

void ZrGlSurface::ZrglRenderPolyline(float* xy, int count, QColor colour)
{
    if (!IsReadyOrWarn())
        return;
    ZrglSetColour(colour);
    ZrglSetPgm(solid);
    Draw(GL_LINES, xy, 2, false, count);
    m_gl.glDisable(GL_BLEND);
}

void ZrGlSurface::ZrglRenderVboLine(float* v, unsigned count)
{
    if (!IsReadyOrWarn())
        return;
    Draw(GL_LINE_LOOP, v, texturedFloats, false, static_cast<int>(count));
    m_gl.glDisable(GL_BLEND);
}

void ZrGlSurface::ZrglRenderPixelRect(int x, int y, int w, int h, QColor colour)
{
    if (!IsReadyOrWarn() || m_viewport.isEmpty())
        return;
    const QMatrix4x4 saved = m_proj;
    m_proj.setToIdentity();
    m_proj.ortho(0, m_viewport.width(), m_viewport.height(), 0, -1, 1);
    const auto left = static_cast<float>(x);
    const auto top = static_cast<float>(y);
    const float right = left + static_cast<float>(w);
    const float bottom = top + static_cast<float>(h);
    const float corners[] = {left, top, left, bottom, right, top, right, bottom};
    ZrglSetColour(colour);
    ZrglSetPgm(solid);
    Draw(GL_TRIANGLE_STRIP, corners, 2, false, quadCorners);
    m_gl.glDisable(GL_BLEND);
    m_proj = saved;
}

void ZrGlSurface::ZrglRenderVbo(float* quad, std::initializer_list<unsigned> textures, eProgram program)
{
    if (!IsReadyOrWarn())
        return;
    unsigned unit = 0;
    for (const unsigned tex : textures) {
        m_gl.glActiveTexture(GL_TEXTURE0 + unit++);
        m_gl.glBindTexture(GL_TEXTURE_2D, tex);
    }
    m_gl.glActiveTexture(GL_TEXTURE0);
    ZrglSetPgm(program);
    if (IsBlended(program)) {
        m_gl.glEnable(GL_BLEND);
        m_gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    } else {
        m_gl.glDisable(GL_BLEND);
    }
    Draw(GL_TRIANGLE_STRIP, quad, texturedFloats, true, quadCorners);
    m_gl.glDisable(GL_BLEND);
}

void ZrGlSurface::ZrglRenderVbo(float* quad, unsigned tex, eProgram program)
{
    ZrglRenderVbo(quad, {tex}, program);
}

/// A texture over the whole viewport, its first row at the top, in front of everything.
void ZrGlSurface::RenderViewportQuad(unsigned tex)
{
    if (tex == 0 || !IsReadyOrWarn() || m_viewport.isEmpty())
        return;
    const QMatrix4x4 saved = m_proj;
    m_gl.glDisable(GL_DEPTH_TEST);
    m_proj.setToIdentity();
    m_proj.ortho(0, m_viewport.width(), m_viewport.height(), 0, -1, 1);
    const auto w = static_cast<float>(m_viewport.width());
    const auto h = static_cast<float>(m_viewport.height());
    float quad[] = {0, 0, 0, 0, 0, h, 0, 1, w, 0, 1, 0, w, h, 1, 1};
    ZrglRenderVbo(quad, {tex}, texture);
    m_proj = saved;
}

void ZrGlSurface::ZrglRenderOverlay()
{
    RenderViewportQuad(m_overlayTex);
}

void ZrGlSurface::ZrglRenderBackground()
{
    RenderViewportQuad(m_bgTex);
}

void ZrGlSurface::ZrglRenderMarker(
    float x, float y, float angleDeg, float size, unsigned tex, QColor colour, int flags, unsigned program)
{
    if (tex == 0)
        return;
    const float hx = ZrTheme::DpF(size) * m_scaleX;
    const float hy = ZrTheme::DpF(size) * m_scaleY;
    float xL = hx;
    float xR = hx;
    if (flags & markerRight) {
        xL = 0;
        xR = 2 * hx;
    } else if (flags & markerLeft) {
        xL = 2 * hx;
        xR = 0;
    }
    // The vertical flags move one pair of corners each.
    float yA = hy;
    float yB = hy;
    if (flags & markerUp) {
        yA = 0;
        yB = 2 * hy;
    } else if (flags & markerDown) {
        yA = 2 * hy;
        yB = 0;
    }
    constexpr double pi = 3.14159265358979323846;
    const double a = static_cast<double>(angleDeg) * pi / 180.0;
    const double k = std::sqrt(2.0);
    const auto cornerX = [&](double turn, float extent) {
        return static_cast<float>(
            static_cast<double>(x) + k * std::cos(a + turn) * static_cast<double>(extent));
    };
    const auto cornerY = [&](double turn, float extent) {
        return static_cast<float>(
            static_cast<double>(y) + k * std::sin(a + turn) * static_cast<double>(extent));
    };
    float quad[] = {
        cornerX(-3 * pi / 4, xL), cornerY(-3 * pi / 4, yA), 0, 0, //
        cornerX(3 * pi / 4, xL), cornerY(3 * pi / 4, yA), 0, 1, //
        cornerX(-pi / 4, xR), cornerY(-pi / 4, yB), 1, 0, //
        cornerX(pi / 4, xR), cornerY(pi / 4, yB), 1, 1, //
    };
    m_colour = colour;
    ZrglRenderVbo(quad, {tex}, static_cast<eProgram>(program));
}
