#include "ZrKit/map/ZrTrackLayer.h"

#include "ZrKit/map/ZrMapErrors.h"
#include "ZrKit/map/ZrMapSplit.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrLogEmit.h"
#include "ZrUtil/ZrTheme.h"

#include <QPointF>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

float CasingWidth(float width, float pixel)
{
    return width + 2.0F * pixel;
}

/// Where lines of the width \p widest are drawn to look like one of \p width: side by side, their middles in
/// a circle; pixels.
std::vector<QPointF> Shifts(float width, float widest)
{
    const int side = std::max(static_cast<int>(std::ceil(width / widest - 0.01F)), 1);
    if (side == 1)
        return {QPointF()};
    const float radius = 0.5F * (width - widest);
    const float step = 2.0F * radius / static_cast<float>(side - 1);
    std::vector<QPointF> shifts;
    for (int iy = 0; iy < side; ++iy) {
        for (int ix = 0; ix < side; ++ix) {
            const float dx = static_cast<float>(ix) * step - radius;
            const float dy = static_cast<float>(iy) * step - radius;
            if (std::hypot(dx, dy) <= std::max(radius, 0.75F * step) + 0.01F)
                shifts.emplace_back(dx, dy);
        }
    }
    return shifts;
}

constexpr int vertexBytes = ZrTrackPicture::FloatsPerVertex * static_cast<int>(sizeof(float));
constexpr int leastVertices = 100;
constexpr int jointVertices = 4;
constexpr int smallestBuffer = 4096; ///< vertices
constexpr float widestLine = 64.0F; ///< pixels; wider ones are not drawn wider
constexpr float futureWidth = 0.7F; ///< of the width of the past
constexpr int futureDarker = 220; ///< percent

} // namespace

ZrTrackLayer::ZrTrackLayer()
    : m_program(QStringLiteral(":/map.vsh"), QStringLiteral(":/solid.fsh"))
{
}

void ZrTrackLayer::OnPaint(ZrGlSurface& surface, const ZrMapView& view)
{
    if (m_track.Count() == 0 || !m_program.Use(surface))
        return;
    const int position = m_program.Attribute(surface, "aPosition");
    if (position < 0)
        return;
    auto& gl = surface.m_gl;
    if (m_widest <= 0.0F) {
        float range[2] = {1.0F, 1.0F};
        gl.glGetFloatv(GL_ALIASED_LINE_WIDTH_RANGE, range);
        m_widest = std::isfinite(range[1]) ? std::max(range[1], 1.0F) : 1.0F;
    }
    m_pixel = ZrTheme::DpF(1.0F) * static_cast<float>(surface.m_pixelFactor);
    UpdatePictures(view);
    m_program.SetSplit(surface, ZrMapSplit(view));
    gl.glEnableVertexAttribArray(static_cast<GLuint>(position));
    DrawAll(surface, view);
    gl.glDisableVertexAttribArray(static_cast<GLuint>(position));
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    gl.glLineWidth(1.0F);
    gl.glDisable(GL_BLEND);
}

/// Device pixels.
float ZrTrackLayer::Width() const
{
    return std::isfinite(m_width) ? std::clamp(m_pixel * m_width, 1.0F, widestLine) : 1.0F;
}

void ZrTrackLayer::UpdatePictures(const ZrMapView& view)
{
    const int vertices = std::max(m_vertexLimit, leastVertices) - jointVertices;
    // Each vertex counts as often as it is drawn.
    const int lines = static_cast<int>(Shifts(Width(), m_widest).size());
    const int casings
        = m_casing.isValid() ? static_cast<int>(Shifts(CasingWidth(Width(), m_pixel), m_widest).size()) : 0;
    const ZrTrackPicture::Request request{std::max(vertices / (lines + casings), leastVertices),
        std::max(vertices / (lines + casings + (HasCursor() ? lines : 0)), leastVertices),
        static_cast<double>(Width())};
    const auto update = [&](ZrTrackPicture& picture, i64 end) {
        if (!picture.Suits(m_track, view, request) || !picture.Extend(m_track, end))
            picture.Build(m_track, view, end, request);
    };
    update(m_picture, m_track.Count());
    if (m_picture.IsCover() && HasCursor())
        update(m_pastPicture, std::min(m_cursor, m_track.Count() - 1) + 1);
}

void ZrTrackLayer::DrawAll(ZrGlSurface& surface, const ZrMapView& view)
{
    m_widthPixels = view.Width();
    m_height = view.Height();
    float width = Width();
    // Rows of a cover must not leave stripes between them.
    if (m_picture.IsCover())
        width = std::max(width, static_cast<float>(m_picture.RowHeight() / view.Scale()));
    const QColor past = m_colour.isValid() ? m_colour : ZrTheme::track;
    const QColor future = m_futureColour.isValid() ? m_futureColour : past.darker(futureDarker);
    const bool hasPast = HasCursor() && m_picture.IsCover();
    if (!Upload(surface, m_picture, m_buffer) || (hasPast && !Upload(surface, m_pastPicture, m_pastBuffer)))
        return;
    if (m_casing.isValid())
        Draw(surface, m_buffer, 0, m_buffer.count, m_casing, CasingWidth(width, m_pixel));
    if (!HasCursor()) {
        Draw(surface, m_buffer, 0, m_buffer.count, past, width);
    } else if (hasPast) {
        Draw(surface, m_buffer, 0, m_buffer.count, future, width);
        if (m_pastPicture.IsCover())
            width = std::max(width, static_cast<float>(m_pastPicture.RowHeight() / view.Scale()));
        Draw(surface, m_pastBuffer, 0, m_pastBuffer.count, past, width);
    } else {
        DrawAtCursor(surface, past, future, width);
    }
}

/// The line that goes over the cursor is drawn in two pieces.
void ZrTrackLayer::DrawAtCursor(ZrGlSurface& surface, const QColor& past, const QColor& future, float width)
{
    const float thin = std::max(futureWidth * width, 1.0F);
    const int line = m_picture.LineBehind(m_cursor);
    const auto& lines = m_picture.Lines();
    const int count = static_cast<int>(lines.size());
    const bool isOver = line < count && lines[static_cast<std::size_t>(line)].from < m_cursor;
    const int behind = isOver ? line + 1 : line;
    const bool isCut = isOver && UploadJoint(surface, line);
    Draw(surface, m_buffer, 2 * behind, 2 * (count - behind), future, thin);
    if (isCut)
        Draw(surface, m_jointBuffer, 2, 2, future, thin);
    Draw(surface, m_buffer, 0, 2 * line, past, width);
    if (isCut)
        Draw(surface, m_jointBuffer, 0, 2, past, width);
}

/// Storage anew for the buffer that is bound, so that the driver need not wait for what is being drawn.
bool ZrTrackLayer::Allocate(ZrGlSurface& surface, Buffer& buffer, int vertices, const float* data)
{
    auto& gl = surface.m_gl;
    const GLenum error = ZrMapErrors::Of(gl, [&] {
        gl.glBufferData(GL_ARRAY_BUFFER, qopengl_GLsizeiptr(vertices) * vertexBytes, data, GL_DYNAMIC_DRAW);
    });
    buffer.capacity = error == GL_NO_ERROR ? vertices : 0;
    if (error == GL_NO_ERROR)
        return true;
    buffer.count = 0;
    buffer.buildCount = -1;
    if (!m_isFailureLogged)
        ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrKit-ZrTrackLayer",
            "No buffer of {} vertices for a track, it is not drawn: error {}", vertices, error);
    m_isFailureLogged = true;
    return false;
}

/// What is new of a picture; all of it when it was built again or the buffer must grow.
bool ZrTrackLayer::Upload(ZrGlSurface& surface, const ZrTrackPicture& picture, Buffer& buffer)
{
    auto& gl = surface.m_gl;
    const int count = picture.VertexCount();
    if (buffer.id == 0)
        gl.glGenBuffers(1, &buffer.id);
    const bool isOther = buffer.buildCount != picture.BuildCount();
    if (!isOther && buffer.count == count)
        return true;
    gl.glBindBuffer(GL_ARRAY_BUFFER, buffer.id);
    if (isOther || count > buffer.capacity) {
        const int vertices = std::max({buffer.capacity, count + count / 2, smallestBuffer});
        if (!Allocate(surface, buffer, vertices, nullptr))
            return false;
        buffer.count = 0;
        buffer.buildCount = picture.BuildCount();
    }
    if (count > buffer.count) {
        gl.glBufferSubData(GL_ARRAY_BUFFER, qopengl_GLintptr(buffer.count) * vertexBytes,
            qopengl_GLsizeiptr(count - buffer.count) * vertexBytes,
            picture.Vertices().data()
                + static_cast<std::size_t>(buffer.count) * ZrTrackPicture::FloatsPerVertex);
    }
    buffer.count = count;
    return true;
}

bool ZrTrackLayer::UploadJoint(ZrGlSurface& surface, int line)
{
    auto& gl = surface.m_gl;
    if (m_jointBuffer.id == 0)
        gl.glGenBuffers(1, &m_jointBuffer.id);
    if (m_jointBuffer.buildCount == m_picture.BuildCount() && m_jointLine == line
        && m_jointCursor == m_cursor)
        return true;
    const ZrTrackLod::Segment& cut = m_picture.Lines()[static_cast<std::size_t>(line)];
    float vertices[jointVertices * ZrTrackPicture::FloatsPerVertex];
    float* at = vertices;
    for (const i64 index : {cut.from, m_cursor, m_cursor, cut.to}) {
        const QPointF& p = m_track[index];
        ZrMapSplit::Split(p.x(), p.y(), at);
        at += ZrTrackPicture::FloatsPerVertex;
    }
    gl.glBindBuffer(GL_ARRAY_BUFFER, m_jointBuffer.id);
    if (!Allocate(surface, m_jointBuffer, jointVertices, vertices))
        return false;
    m_jointBuffer.buildCount = m_picture.BuildCount();
    m_jointLine = line;
    m_jointCursor = m_cursor;
    return true;
}

void ZrTrackLayer::Draw(
    ZrGlSurface& surface, const Buffer& buffer, int first, int count, const QColor& colour, float width)
{
    if (count < 2)
        return;
    auto& gl = surface.m_gl;
    gl.glBindBuffer(GL_ARRAY_BUFFER, buffer.id);
    gl.glVertexAttribPointer(static_cast<GLuint>(m_program.Attribute(surface, "aPosition")),
        ZrTrackPicture::FloatsPerVertex, GL_FLOAT, GL_FALSE, 0, nullptr);
    gl.glUniform4f(m_program.Uniform(surface, "uColour"), static_cast<float>(colour.redF()),
        static_cast<float>(colour.greenF()), static_cast<float>(colour.blueF()),
        static_cast<float>(colour.alphaF()));
    if (colour.alpha() < 255) {
        gl.glEnable(GL_BLEND);
        gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    } else {
        gl.glDisable(GL_BLEND);
    }
    gl.glLineWidth(std::min(width, m_widest));
    const std::vector<QPointF> shifts = Shifts(width, m_widest);
    if (shifts.size() == 1) {
        gl.glDrawArrays(GL_LINES, first, count);
        return;
    }
    const int matrix = m_program.Uniform(surface, "uMatrix");
    for (const QPointF& shift : shifts) {
        QMatrix4x4 moved;
        moved.translate(2.0F * static_cast<float>(shift.x()) / static_cast<float>(m_widthPixels),
            2.0F * static_cast<float>(shift.y()) / static_cast<float>(m_height));
        moved *= surface.m_proj;
        gl.glUniformMatrix4fv(matrix, 1, GL_FALSE, moved.constData());
        gl.glDrawArrays(GL_LINES, first, count);
    }
    gl.glUniformMatrix4fv(matrix, 1, GL_FALSE, surface.m_proj.constData());
}

void ZrTrackLayer::OnRelease(ZrGlSurface& surface)
{
    m_program.Release(surface);
    for (const Buffer* buffer : {&m_buffer, &m_pastBuffer, &m_jointBuffer}) {
        if (buffer->id != 0)
            surface.m_gl.glDeleteBuffers(1, &buffer->id);
    }
    OnForget();
}

void ZrTrackLayer::OnForget()
{
    m_program.Forget();
    m_buffer = Buffer();
    m_pastBuffer = Buffer();
    m_jointBuffer = Buffer();
    m_jointLine = -1;
    m_isFailureLogged = false;
    m_widest = 0.0F;
}
