#pragma once

// Every primitive of the drawing surface once, and what it must cost.

#include "GlView.h"

#include <functional>
#include <vector>

namespace gl {

struct Primitive
{
    const char* name;
    std::function<void(GlView& view, GLuint white)> draw;
    GLenum mode;
    int vertices;
    int bytes; ///< of vertices
    bool isBlended;
    ZrGlSurface::eProgram program;
    bool isRefused = false; ///< raises an error by design
};

/// On a view that `OnCreate` was called for, with one white texel as the texture.
inline std::vector<Primitive> Primitives()
{
    static float quad[] = {10, 10, 0, 0, 10, 50, 0, 1, 50, 10, 1, 0, 50, 50, 1, 1};
    using S = ZrGlSurface;
    const auto vbo = [](S::eProgram program) {
        return [program](GlView& v, GLuint white) { v.ZrglRenderVbo(quad, white, program); };
    };
    const auto yuv = [](GlView& v, GLuint white) {
        v.ZrglRenderVbo(quad, {white, white, white}, S::yuvplanar);
    };
    const auto background = [](GlView& v, GLuint) { v.ZrglRenderBackground(); };
    const auto line = [](GlView& v, GLuint) { v.ZrglRenderLine(0, 0, 60, 60, Qt::red); };
    const auto polyline = [](GlView& v, GLuint) {
        float lines[] = {0, 0, 60, 60, 0, 60, 60, 0};
        v.ZrglRenderPolyline(lines, 4, Qt::red);
    };
    const auto vboLine = [](GlView& v, GLuint) {
        v.ZrglSetPgm(S::solid);
        v.ZrglRenderVboLine(quad, 4);
    };
    const auto pixelRect = [](GlView& v, GLuint) { v.ZrglRenderPixelRect(3, 4, 10, 20, Qt::green); };
    const auto marker
        = [](GlView& v, GLuint white) { v.ZrglRenderMarker(30, 30, 20, 10, white, Qt::blue, 0, S::alpha); };
    const auto text = [](GlView& v, GLuint) {
        ZrGlTextBuffer buffer;
        v.ZrglAddText(buffer, 5, 5, 0, QStringLiteral("Depth"), 0);
        v.ZrglRenderText(buffer);
    };
    const auto overlay = [](GlView& v, GLuint white) {
        v.m_overlayTex = white;
        v.ZrglRenderOverlay();
    };
    return {
        {"background", background, GL_TRIANGLE_STRIP, 4, 64, true, S::texture},
        {"line", line, GL_LINES, 2, 16, false, S::solid},
        {"polyline", polyline, GL_LINES, 4, 32, false, S::solid},
        {"vbo line", vboLine, GL_LINE_LOOP, 4, 32, false, S::solid},
        {"pixel rectangle", pixelRect, GL_TRIANGLE_STRIP, 4, 32, false, S::solid},
        {"texture", vbo(S::texture), GL_TRIANGLE_STRIP, 4, 64, true, S::texture},
        {"palette", vbo(S::palette), GL_TRIANGLE_STRIP, 4, 64, false, S::palette},
        {"alpha", vbo(S::alpha), GL_TRIANGLE_STRIP, 4, 64, true, S::alpha},
        {"luminance", vbo(S::luminance), GL_TRIANGLE_STRIP, 4, 64, true, S::luminance},
        {"colour key", vbo(S::colourkey), GL_TRIANGLE_STRIP, 4, 64, true, S::colourkey, true},
        {"YCbCr", yuv, GL_TRIANGLE_STRIP, 4, 64, false, S::yuvplanar},
        {"marker", marker, GL_TRIANGLE_STRIP, 4, 64, true, S::alpha},
        {"text", text, GL_TRIANGLES, 30, 480, true, S::texture},
        {"overlay", overlay, GL_TRIANGLE_STRIP, 4, 64, true, S::texture},
    };
}

/// All of them, but for those that raise an error; returns how many.
inline std::size_t DrawAll(GlView& view, GLuint white)
{
    std::size_t count = 0;
    for (const Primitive& primitive : Primitives()) {
        if (!primitive.isRefused) {
            primitive.draw(view, white);
            ++count;
        }
    }
    return count;
}

} // namespace gl
