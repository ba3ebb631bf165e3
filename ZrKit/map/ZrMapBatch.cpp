#include "ZrKit/map/ZrMapBatch.h"

#include "ZrKit/map/ZrMapErrors.h"
#include "ZrKit/map/ZrMapSplit.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrLogEmit.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace {

struct Field
{
    const char* name;
    GLint count;
    GLenum type;
    std::size_t offset;
};

using Vertex = ZrMapBatch::Vertex;

constexpr Field fields[] = {
    {"aPosition", 4, GL_FLOAT, offsetof(Vertex, position)},
    {"aCorner", 4, GL_FLOAT, offsetof(Vertex, corner)},
    {"aColour", 4, GL_UNSIGNED_BYTE, offsetof(Vertex, colour)},
    {"aHalo", 4, GL_UNSIGNED_BYTE, offsetof(Vertex, halo)},
    {"aStyle", 4, GL_FLOAT, offsetof(Vertex, edge)},
};

static_assert(offsetof(Vertex, texture) == offsetof(Vertex, corner) + 8, "one attribute of four");
static_assert(offsetof(Vertex, isTurning) == offsetof(Vertex, edge) + 12, "one attribute of four");

void Write(const QColor& value, unsigned char* bytes)
{
    bytes[0] = static_cast<unsigned char>(value.red());
    bytes[1] = static_cast<unsigned char>(value.green());
    bytes[2] = static_cast<unsigned char>(value.blue());
    bytes[3] = static_cast<unsigned char>(value.alpha());
}

} // namespace

void ZrMapBatch::Vertex::SetWorld(const QPointF& world)
{
    ZrMapSplit::Split(world.x(), world.y(), position);
    isOnScreen = 0.0F;
}

void ZrMapBatch::Vertex::SetPixel(const QPointF& pixel)
{
    position[0] = static_cast<float>(pixel.x());
    position[1] = static_cast<float>(pixel.y());
    position[2] = 0.0F;
    position[3] = 0.0F;
    isOnScreen = 1.0F;
    isTurning = 0.0F;
}

void ZrMapBatch::Vertex::SetColour(const QColor& value)
{
    Write(value, colour);
}

void ZrMapBatch::Vertex::SetHalo(const QColor& value)
{
    Write(value, halo);
}

ZrMapBatch::ZrMapBatch(const QString& fragment, const QString& plain)
    : m_program(QStringLiteral(":/map_label.vsh"), fragment)
    , m_plain(QStringLiteral(":/map_label.vsh"), plain)
    , m_hasPlain(!plain.isEmpty())
{
}

bool ZrMapBatch::Use(ZrGlSurface& surface)
{
    m_usesPlain = m_isPlain && m_hasPlain && m_plain.Use(surface);
    return m_usesPlain || m_program.Use(surface);
}

void ZrMapBatch::Upload(ZrGlSurface& surface, const Vertices& vertices)
{
    auto& gl = surface.m_gl;
    // Whole triangles, as many as GL can count.
    constexpr std::size_t most = static_cast<std::size_t>(std::numeric_limits<int>::max()) / sizeof(Vertex);
    m_count = static_cast<int>(std::min(vertices.size(), most) / 3 * 3);
    m_isUploaded = true;
    if (m_count == 0)
        return;
    if (m_buffer == 0)
        gl.glGenBuffers(1, &m_buffer);
    const auto bytes = static_cast<qopengl_GLsizeiptr>(static_cast<std::size_t>(m_count) * sizeof(Vertex));
    gl.glBindBuffer(GL_ARRAY_BUFFER, m_buffer);
    const GLenum error = ZrMapErrors::Of(
        gl, [&] { gl.glBufferData(GL_ARRAY_BUFFER, bytes, vertices.data(), GL_DYNAMIC_DRAW); });
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    if (error == GL_NO_ERROR)
        return;
    m_count = 0;
    if (!m_isFailureLogged)
        ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrKit-ZrMapBatch", "No buffer of {} bytes, nothing is drawn: error {}",
            static_cast<long long>(bytes), error);
    m_isFailureLogged = true;
}

void ZrMapBatch::Draw(ZrGlSurface& surface, const ZrMapView& view, const QSize& texture)
{
    if (m_count == 0 || m_buffer == 0 || view.IsEmpty() || texture.isEmpty())
        return;
    auto& gl = surface.m_gl;
    ZrMapProgram& program = m_usesPlain ? m_plain : m_program;
    program.SetSplit(surface, ZrMapSplit(view));
    gl.glUniform1i(program.Uniform(surface, "uTexUnit"), 0);
    gl.glUniform2f(program.Uniform(surface, "uHalf"), static_cast<float>(view.Width()) / 2.0F,
        static_cast<float>(view.Height()) / 2.0F);
    gl.glUniform2f(program.Uniform(surface, "uTexel"), 1.0F / static_cast<float>(texture.width()),
        1.0F / static_cast<float>(texture.height()));
    gl.glBindBuffer(GL_ARRAY_BUFFER, m_buffer);
    for (const Field& field : fields) {
        const int at = program.Attribute(surface, field.name);
        if (at < 0)
            continue;
        gl.glEnableVertexAttribArray(static_cast<GLuint>(at));
        gl.glVertexAttribPointer(static_cast<GLuint>(at), field.count, field.type,
            field.type == GL_UNSIGNED_BYTE ? GL_TRUE : GL_FALSE, static_cast<GLsizei>(sizeof(Vertex)),
            reinterpret_cast<const void*>(field.offset));
    }
    gl.glEnable(GL_BLEND);
    gl.glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    gl.glDrawArrays(GL_TRIANGLES, 0, m_count);
    gl.glDisable(GL_BLEND);
    for (const Field& field : fields) {
        const int at = program.Attribute(surface, field.name);
        if (at >= 0)
            gl.glDisableVertexAttribArray(static_cast<GLuint>(at));
    }
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void ZrMapBatch::Release(ZrGlSurface& surface)
{
    if (m_buffer != 0)
        surface.m_gl.glDeleteBuffers(1, &m_buffer);
    m_program.Release(surface);
    m_plain.Release(surface);
    Forget();
}

void ZrMapBatch::Forget()
{
    m_program.Forget();
    m_plain.Forget();
    m_buffer = 0;
    m_count = 0;
    m_isUploaded = false;
    m_isFailureLogged = false;
}
