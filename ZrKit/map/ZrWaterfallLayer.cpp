#include "ZrKit/map/ZrWaterfallLayer.h"

#include "ZrKit/map/ZrMapErrors.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrLogEmit.h"

#include <QMatrix4x4>

#include <algorithm>
#include <cmath>

namespace {

/// \p value between \p least and \p most; 0 when it is no number.
float Limited(float value, float least, float most)
{
    return std::isnan(value) ? 0.0F : std::clamp(value, least, most);
}

} // namespace

ZrWaterfallLayer::ZrWaterfallLayer()
    : m_program(QStringLiteral(":/waterfall.vsh"), QStringLiteral(":/sidescan.fsh"))
{
}

void ZrWaterfallLayer::OnPaint(ZrGlSurface& surface, const ZrMapView& view)
{
    m_layout = m_ring ? ZrWaterfallLayout(*m_ring, m_view) : ZrWaterfallLayout();
    if (m_layout.Rows().empty() || !m_program.Use(surface) || !PrepareTextures(surface))
        return;
    for (const eSonarSide side : {sidePort, sideStarboard}) {
        if (!m_ring->HasSide(side) || m_layout.Columns(side) == 0)
            continue;
        if (m_sides[side].textures.empty() && !MakeTextures(surface, m_sides[side])) {
            m_hasFailed = true;
            return;
        }
        UploadRows(surface, side);
    }
    ZrWaterfallMesh::Settings settings;
    settings.width = m_ring->Width();
    settings.pageRows = m_pageRows;
    settings.isSmooth = m_isSmooth;
    settings.isByRange = m_slope != 0.0F;
    m_mesh = ZrWaterfallMesh(m_layout, settings);
    if (m_mesh.Draws().empty())
        return;
    SetUniforms(surface, view);
    Draw(surface);
}

/// Throws textures away that hold another ring. False when there can be none.
bool ZrWaterfallLayer::PrepareTextures(ZrGlSurface& surface)
{
    if (m_ringId == m_ring->Id() && m_limit == m_mostTexels)
        return !m_hasFailed;
    DeleteTextures(surface);
    GLint most = 0;
    surface.m_gl.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    if (m_mostTexels > 0)
        most = std::min(most, m_mostTexels);
    m_ringId = m_ring->Id();
    m_limit = m_mostTexels;
    m_width = std::min(m_ring->Width(), most);
    m_pageRows = std::min(m_ring->Capacity(), most);
    return m_width > 0;
}

bool ZrWaterfallLayer::MakeTextures(ZrGlSurface& surface, Side& side) const
{
    auto& gl = surface.m_gl;
    ZrMapErrors::Take(gl);
    side.textures.resize(static_cast<std::size_t>((m_ring->Capacity() + m_pageRows - 1) / m_pageRows));
    side.uploaded = 0;
    gl.glGenTextures(static_cast<GLsizei>(side.textures.size()), side.textures.data());
    for (const unsigned texture : side.textures) {
        gl.glBindTexture(GL_TEXTURE_2D, texture);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        gl.glTexImage2D(
            GL_TEXTURE_2D, 0, GL_ALPHA, m_width, m_pageRows, 0, GL_ALPHA, GL_UNSIGNED_BYTE, nullptr);
    }
    const GLenum error = ZrMapErrors::Take(gl);
    if (error == GL_NO_ERROR)
        return true;
    ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrKit-ZrWaterfallLayer",
        "No textures of {} by {} for a waterfall: error {}", m_width, m_pageRows, error);
    return false;
}

void ZrWaterfallLayer::UploadRows(ZrGlSurface& surface, eSonarSide side)
{
    Side& at = m_sides[side];
    if (at.uploaded == m_ring->Revision())
        return;
    surface.m_gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    for (const ZrWaterfallRing::Run& run : m_ring->RowsSince(at.uploaded)) {
        for (int row = run.row, end = run.row + run.count; row < end;) {
            const int next = std::min(end, (row / m_pageRows + 1) * m_pageRows);
            UploadRun(surface, side, row, next - row);
            row = next;
        }
    }
    at.uploaded = m_ring->Revision();
}

/// Rows of one texture.
void ZrWaterfallLayer::UploadRun(ZrGlSurface& surface, eSonarSide side, int row, int count)
{
    const auto wide = static_cast<std::size_t>(m_ring->Width());
    const auto width = static_cast<std::size_t>(m_width);
    const u8* bytes = m_ring->Bytes(side) + static_cast<std::size_t>(row) * wide;
    if (width != wide) {
        m_rows.resize(static_cast<std::size_t>(count) * width);
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
            ZrWaterfallRing::Reduce(
                {bytes + i * wide, wide}, {m_rows.data() + i * width, width}, m_ring->Reduction());
        }
        bytes = m_rows.data();
    }
    surface.m_gl.glBindTexture(
        GL_TEXTURE_2D, m_sides[side].textures[static_cast<std::size_t>(row / m_pageRows)]);
    surface.m_gl.glTexSubImage2D(
        GL_TEXTURE_2D, 0, 0, row % m_pageRows, m_width, count, GL_ALPHA, GL_UNSIGNED_BYTE, bytes);
}

void ZrWaterfallLayer::SetUniforms(ZrGlSurface& surface, const ZrMapView& view)
{
    auto& gl = surface.m_gl;
    const bool isTop = m_view.newest == ZrWaterfallSettings::newestTop;
    QMatrix4x4 matrix;
    matrix.ortho(
        0.0F, static_cast<float>(view.Width()), static_cast<float>(view.Height()), 0.0F, -1.0F, 1.0F);
    matrix.translate(static_cast<float>(m_view.rect.x() + m_layout.Columns(sidePort)),
        static_cast<float>(m_view.rect.y()));
    const int columns = m_layout.WiderColumns();
    matrix.scale(static_cast<float>(columns), 1.0F);
    const int palettes = std::max(surface.m_palCount, 1);
    const int palette = std::clamp(m_palette < 0 ? surface.m_palIndex : m_palette, 0, palettes - 1);
    const auto uniform = [&](const char* name) { return m_program.Uniform(surface, name); };
    gl.glUniformMatrix4fv(uniform("uMatrix"), 1, GL_FALSE, matrix.constData());
    gl.glUniform1i(uniform("uSlant"), m_view.slantCorrected ? 1 : 0);
    gl.glUniform1f(uniform("uRange"), static_cast<float>(columns * m_layout.MetresPerPixel()));
    gl.glUniform1f(uniform("uScale"), isTop ? 1.0F : -1.0F);
    gl.glUniform1f(uniform("uOff"), isTop ? 0.0F : static_cast<float>(m_view.rect.height()));
    gl.glUniform1i(uniform("uTexUnit"), 0);
    gl.glUniform1i(uniform("uPalUnit"), 1);
    gl.glUniform1f(uniform("uPalIndex"), (static_cast<float>(palette) + 0.5F) / static_cast<float>(palettes));
    gl.glUniform1f(uniform("uGain"), Limited(m_gain, -1.0F, 1000.0F));
    gl.glUniform1f(uniform("uClamp"), Limited(m_clamp, -10.0F, 0.95F));
    gl.glUniform1f(uniform("uAlpha"), Limited(m_alpha, 0.0F, 1.0F));
    gl.glActiveTexture(GL_TEXTURE1);
    gl.glBindTexture(GL_TEXTURE_2D, surface.m_palTex);
    gl.glActiveTexture(GL_TEXTURE0);
}

void ZrWaterfallLayer::Draw(ZrGlSurface& surface)
{
    auto& gl = surface.m_gl;
    // At r = 1 the shader would divide by nothing.
    const float mostSlope = 0.99F - Limited(m_clamp, -10.0F, 0.95F);
    const int uSide = m_program.Uniform(surface, "uSide");
    const int uSlope = m_program.Uniform(surface, "uSlope");
    const auto position = static_cast<GLuint>(m_program.Attribute(surface, "aPosition"));
    const auto texCoords = static_cast<GLuint>(m_program.Attribute(surface, "aTexCoords"));
    const ZrWaterfallMesh::Vertex* const vertices = m_mesh.Vertices().data();
    constexpr auto stride = static_cast<GLsizei>(sizeof(ZrWaterfallMesh::Vertex));
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    gl.glEnableVertexAttribArray(position);
    gl.glEnableVertexAttribArray(texCoords);
    gl.glVertexAttribPointer(position, 3, GL_FLOAT, GL_FALSE, stride, &vertices->slant);
    gl.glVertexAttribPointer(texCoords, 2, GL_FLOAT, GL_FALSE, stride, &vertices->s);
    if (m_alpha < 1.0F) {
        gl.glEnable(GL_BLEND);
        gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    } else {
        gl.glDisable(GL_BLEND);
    }
    const GLint filter = m_isSmooth ? GL_LINEAR : GL_NEAREST;
    for (const ZrWaterfallMesh::Draw& draw : m_mesh.Draws()) {
        gl.glBindTexture(GL_TEXTURE_2D, m_sides[draw.side].textures[static_cast<std::size_t>(draw.page)]);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
        gl.glUniform1f(uSide, draw.side == sidePort ? -1.0F : 1.0F);
        gl.glUniform1f(uSlope, Limited(m_slope, -1000.0F, mostSlope / draw.reach) * draw.perRange);
        gl.glDrawArrays(GL_TRIANGLE_STRIP, draw.first, draw.count);
    }
    gl.glDisable(GL_BLEND);
    gl.glDisableVertexAttribArray(position);
    gl.glDisableVertexAttribArray(texCoords);
}

void ZrWaterfallLayer::DeleteTextures(ZrGlSurface& surface)
{
    for (Side& side : m_sides) {
        if (!side.textures.empty())
            surface.m_gl.glDeleteTextures(static_cast<GLsizei>(side.textures.size()), side.textures.data());
    }
    m_sides = {};
    m_ringId = 0;
    m_hasFailed = false;
}

void ZrWaterfallLayer::OnRelease(ZrGlSurface& surface)
{
    DeleteTextures(surface);
    m_program.Release(surface);
}

void ZrWaterfallLayer::OnForget()
{
    m_sides = {};
    m_ringId = 0;
    m_hasFailed = false;
    m_program.Forget();
}
