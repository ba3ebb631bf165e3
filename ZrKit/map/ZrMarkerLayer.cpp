#include "ZrKit/map/ZrMarkerLayer.h"

#include "ZrKit/map/ZrMapErrors.h"
#include "ZrKit/map/ZrMapSplit.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrMarkerAtlas.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrLogEmit.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrTypes.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

/// One corner, as the shader takes it.
struct Vertex
{
    float position[4];
    float corner[2];
    float texture[2];
    u8 colour[4];
    float style[2];
};

constexpr int corners = 4;
constexpr int indicesOfMarker = 6;
constexpr int batch = 16384; ///< markers whose corners a 16-bit index reaches
constexpr double widest = 10000.0; ///< design pixels

bool IsDrawn(const ZrMapMarker& m)
{
    return std::isfinite(m.position.x()) && std::isfinite(m.position.y()) && std::abs(m.position.x()) < 1e12
        && std::abs(m.position.y()) < 1e12 && std::isfinite(m.offset.x()) && std::isfinite(m.offset.y())
        && std::isfinite(m.angle) && m.size > 0.0 && m.size <= widest
        && !ZrMarkerAtlas::CellOf(m.image).isNull();
}

/// The corners in the order of the texture's (0, 0), (0, 1), (1, 0), (1, 1): lower left, upper left, lower
/// right, upper right. Of a marker that is not drawn they are all in one place.
void WriteMarker(const ZrMapMarker& m, Vertex* vertices)
{
    const bool isDrawn = IsDrawn(m);
    const double half = isDrawn ? m.size * ZrMarkerAtlas::Cell / ZrMarkerAtlas::ImageSide : 0.0;
    const double angle = isDrawn ? qDegreesToRadians(m.angle) : 0.0;
    const double c = std::cos(angle) * half;
    const double s = std::sin(angle) * half;
    const QPointF middle = isDrawn ? m.offset : QPointF();
    const QRectF cell = ZrMarkerAtlas::CellOf(m.image);
    Vertex vertex{};
    if (isDrawn)
        ZrMapSplit::Split(m.position.x(), m.position.y(), vertex.position);
    vertex.colour[0] = static_cast<u8>(m.colour.red());
    vertex.colour[1] = static_cast<u8>(m.colour.green());
    vertex.colour[2] = static_cast<u8>(m.colour.blue());
    vertex.colour[3] = static_cast<u8>(m.colour.alpha());
    vertex.style[0] = isDrawn
        ? static_cast<float>(ZrMarkerAtlas::ImageSide / (2.0 * m.size * ZrMarkerAtlas::Side))
        : 0.0F;
    vertex.style[1] = m.isTurning ? 1.0F : 0.0F;
    for (int i = 0; i < corners; ++i) {
        const double x = i < 2 ? -1.0 : 1.0;
        const double y = i % 2 ? 1.0 : -1.0;
        vertex.corner[0] = static_cast<float>(middle.x() + x * c - y * s);
        vertex.corner[1] = static_cast<float>(middle.y() + x * s + y * c);
        vertex.texture[0] = static_cast<float>(i < 2 ? cell.left() : cell.right());
        vertex.texture[1] = static_cast<float>(i % 2 ? cell.bottom() : cell.top());
        vertices[i] = vertex;
    }
}

/// An attribute of `Vertex` at \p offset bytes of the buffer that is bound.
void SetAttribute(QOpenGLFunctions& gl, int location, int floats, GLenum type, std::size_t offset)
{
    if (location < 0)
        return;
    gl.glEnableVertexAttribArray(static_cast<GLuint>(location));
    gl.glVertexAttribPointer(static_cast<GLuint>(location), floats, type,
        type == GL_UNSIGNED_BYTE ? GL_TRUE : GL_FALSE, sizeof(Vertex), reinterpret_cast<const void*>(offset));
}

} // namespace

ZrMarkerLayer::ZrMarkerLayer()
    : m_program(QStringLiteral(":/map_marker.vsh"), QStringLiteral(":/map_marker.fsh"))
{
}

void ZrMarkerLayer::SetMarkers(std::vector<ZrMapMarker> markers)
{
    m_markers = std::move(markers);
    m_changedFirst = 0;
    m_changedEnd = static_cast<int>(m_markers.size());
}

void ZrMarkerLayer::SetMarker(int index, const ZrMapMarker& marker)
{
    if (index < 0 || index >= static_cast<int>(m_markers.size()))
        return;
    m_markers[static_cast<std::size_t>(index)] = marker;
    const bool isFirst = m_changedEnd <= m_changedFirst;
    m_changedFirst = isFirst ? index : std::min(m_changedFirst, index);
    m_changedEnd = isFirst ? index + 1 : std::max(m_changedEnd, index + 1);
}

int ZrMarkerLayer::Nearest(
    const std::vector<ZrMapMarker>& markers, const ZrMapView& view, const QPointF& pixel, double radius)
{
    int nearest = -1;
    double least = radius;
    for (std::size_t i = 0; i < markers.size(); ++i) {
        const QPointF off = view.ToPixel(markers[i].position) - pixel;
        const double distance = std::hypot(off.x(), off.y());
        // Comparisons with what is not a number are false.
        if (IsDrawn(markers[i]) && distance <= least) {
            least = distance;
            nearest = static_cast<int>(i);
        }
    }
    return nearest;
}

void ZrMarkerLayer::OnPaint(ZrGlSurface& surface, const ZrMapView& view)
{
    if (m_markers.empty() || !m_program.Use(surface))
        return;
    auto& gl = surface.m_gl;
    gl.glActiveTexture(GL_TEXTURE0);
    if (m_texture == 0)
        m_hasTexture = MakeTexture(surface) && MakeIndices(surface);
    if (!m_hasTexture || !UploadMarkers(surface))
        return;
    m_program.SetSplit(surface, ZrMapSplit(view));
    gl.glUniform1i(m_program.Uniform(surface, "uTexUnit"), 0);
    gl.glUniform2f(m_program.Uniform(surface, "uHalf"), static_cast<float>(view.Width()) / 2.0F,
        static_cast<float>(view.Height()) / 2.0F);
    gl.glUniform1f(m_program.Uniform(surface, "uDesign"),
        ZrTheme::DpF(1.0F) * static_cast<float>(surface.m_pixelFactor));
    gl.glUniform2f(m_program.Uniform(surface, "uHaloWidth"),
        std::isfinite(m_haloWidth) ? std::max(m_haloWidth, 0.0F) : 0.0F,
        static_cast<float>(ZrMarkerAtlas::Border) / static_cast<float>(ZrMarkerAtlas::Side));
    const QColor halo = m_halo.isValid() ? m_halo : QColor(0, 0, 0, 0);
    gl.glUniform4f(m_program.Uniform(surface, "uHaloColour"), static_cast<float>(halo.redF()),
        static_cast<float>(halo.greenF()), static_cast<float>(halo.blueF()),
        static_cast<float>(halo.alphaF()));
    gl.glBindTexture(GL_TEXTURE_2D, m_texture);
    gl.glEnable(GL_BLEND);
    gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    DrawMarkers(surface);
    gl.glDisable(GL_BLEND);
}

void ZrMarkerLayer::LogFailure(const char* what, unsigned error)
{
    if (!m_isFailureLogged)
        ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrKit-ZrMarkerLayer", "No {} for {} markers, none is drawn: error {}",
            what, static_cast<int>(m_markers.size()), error);
    m_isFailureLogged = true;
}

bool ZrMarkerLayer::MakeTexture(ZrGlSurface& surface)
{
    auto& gl = surface.m_gl;
    const ZrMarkerAtlas atlas;
    gl.glGenTextures(1, &m_texture);
    gl.glBindTexture(GL_TEXTURE_2D, m_texture);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 4); // as the rows of an image are
    const GLenum error = ZrMapErrors::Of(gl, [&] {
        int level = 0;
        for (const QImage& image : atlas.Levels()) {
            gl.glTexImage2D(GL_TEXTURE_2D, level++, GL_ALPHA, image.width(), image.height(), 0, GL_ALPHA,
                GL_UNSIGNED_BYTE, image.constBits());
        }
    });
    if (error != GL_NO_ERROR)
        LogFailure("texture", error);
    return error == GL_NO_ERROR;
}

bool ZrMarkerLayer::MakeIndices(ZrGlSurface& surface)
{
    std::vector<u16> indices;
    indices.reserve(static_cast<std::size_t>(batch) * indicesOfMarker);
    for (int i = 0; i < batch; ++i) {
        for (const int corner : {0, 1, 2, 2, 1, 3})
            indices.push_back(static_cast<u16>(corners * i + corner));
    }
    auto& gl = surface.m_gl;
    gl.glGenBuffers(1, &m_indices);
    gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indices);
    const GLenum error = ZrMapErrors::Of(gl, [&] {
        gl.glBufferData(GL_ELEMENT_ARRAY_BUFFER,
            static_cast<qopengl_GLsizeiptr>(indices.size() * sizeof(u16)), indices.data(), GL_STATIC_DRAW);
    });
    gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    if (error != GL_NO_ERROR)
        LogFailure("indices", error);
    return error == GL_NO_ERROR;
}

/// Leaves the buffer bound, unless there is no memory for it.
bool ZrMarkerLayer::UploadMarkers(ZrGlSurface& surface)
{
    auto& gl = surface.m_gl;
    const int count = static_cast<int>(m_markers.size());
    if (m_vertices == 0)
        gl.glGenBuffers(1, &m_vertices);
    gl.glBindBuffer(GL_ARRAY_BUFFER, m_vertices);
    constexpr auto markerBytes = static_cast<qopengl_GLsizeiptr>(corners * sizeof(Vertex));
    if (count > m_capacity) {
        const GLenum error = ZrMapErrors::Of(
            gl, [&] { gl.glBufferData(GL_ARRAY_BUFFER, count * markerBytes, nullptr, GL_DYNAMIC_DRAW); });
        if (error != GL_NO_ERROR) {
            m_capacity = 0;
            gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
            LogFailure("buffer", error);
            return false;
        }
        m_capacity = count;
        m_changedFirst = 0;
        m_changedEnd = count;
    }
    if (m_changedFirst >= m_changedEnd)
        return true;
    std::vector<Vertex> vertices(static_cast<std::size_t>(corners * (m_changedEnd - m_changedFirst)));
    for (int i = m_changedFirst; i < m_changedEnd; ++i)
        WriteMarker(m_markers[static_cast<std::size_t>(i)],
            vertices.data() + static_cast<std::size_t>(corners * (i - m_changedFirst)));
    gl.glBufferSubData(GL_ARRAY_BUFFER, m_changedFirst * markerBytes,
        (m_changedEnd - m_changedFirst) * markerBytes, vertices.data());
    m_changedFirst = 0;
    m_changedEnd = 0;
    return true;
}

void ZrMarkerLayer::DrawMarkers(ZrGlSurface& surface)
{
    auto& gl = surface.m_gl;
    const int position = m_program.Attribute(surface, "aPosition");
    const int corner = m_program.Attribute(surface, "aCorner");
    const int colour = m_program.Attribute(surface, "aColour");
    const int style = m_program.Attribute(surface, "aStyle");
    const int count = static_cast<int>(m_markers.size());
    gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indices);
    for (int first = 0; first < count; first += batch) {
        const std::size_t base = static_cast<std::size_t>(first) * corners * sizeof(Vertex);
        SetAttribute(gl, position, 4, GL_FLOAT, base + offsetof(Vertex, position));
        SetAttribute(gl, corner, 4, GL_FLOAT, base + offsetof(Vertex, corner));
        SetAttribute(gl, colour, 4, GL_UNSIGNED_BYTE, base + offsetof(Vertex, colour));
        SetAttribute(gl, style, 2, GL_FLOAT, base + offsetof(Vertex, style));
        gl.glDrawElements(
            GL_TRIANGLES, indicesOfMarker * std::min(count - first, batch), GL_UNSIGNED_SHORT, nullptr);
    }
    for (const int location : {position, corner, colour, style}) {
        if (location >= 0)
            gl.glDisableVertexAttribArray(static_cast<GLuint>(location));
    }
    gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void ZrMarkerLayer::OnRelease(ZrGlSurface& surface)
{
    m_program.Release(surface);
    auto& gl = surface.m_gl;
    if (m_texture != 0)
        gl.glDeleteTextures(1, &m_texture);
    for (const unsigned buffer : {m_vertices, m_indices}) {
        if (buffer != 0)
            gl.glDeleteBuffers(1, &buffer);
    }
    OnForget();
}

void ZrMarkerLayer::OnForget()
{
    m_program.Forget();
    m_texture = 0;
    m_vertices = 0;
    m_indices = 0;
    m_capacity = 0;
    m_hasTexture = false;
    m_isFailureLogged = false;
}
