#include "ZrKit/scene/ZrSceneSurface.h"

#include "ZrKit/scene/ZrDepthColours.h"
#include "ZrUtil/ZrTheme.h"

#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>
#include <QOpenGLFramebufferObject>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int floatsPerVertex = 8;
constexpr int stride = floatsPerVertex * static_cast<int>(sizeof(float));

// Of trail and plan, design pixels.
constexpr float lineWidth = 2.5F;
constexpr float lineEdge = 1.0F;

/// Lines of the grid of the water's surface to each side of its middle.
constexpr int gridLines = 20;

void Append(std::vector<float>& vertices, const QVector3D& at, const QVector3D& normal, const QVector2D& tex)
{
    for (const float value : {at.x(), at.y(), at.z(), normal.x(), normal.y(), normal.z(), tex.x(), tex.y()})
        vertices.push_back(value);
}

bool IsFinite(const QVector3D& v)
{
    return std::isfinite(v.x()) && std::isfinite(v.y()) && std::isfinite(v.z());
}

/// The spacing of the surface's grid that suits a distance: 1, 2 or 5 times a power of ten metres.
float GridStep(float distance)
{
    const float wanted = std::max(distance / 8.0F, 0.1F);
    const float power = std::pow(10.0F, std::floor(std::log10(wanted)));
    const float part = wanted / power;
    return power * (part < 2.0F ? 1.0F : part < 5.0F ? 2.0F : 5.0F);
}

} // namespace

ZrSceneSurface::ZrSceneSurface(QObject* parent)
    : ZrGlSurface(parent)
    , m_program(QStringLiteral(":/scene.vsh"), QStringLiteral(":/scene.fsh"))
{
}

ZrSceneSurface::~ZrSceneSurface() = default;

void ZrSceneSurface::OnCreate()
{
    ZrGlSurface::OnCreate();
    Forget();
    m_context = QOpenGLContext::currentContext();
}

void ZrSceneSurface::Forget()
{
    m_program.Forget();
    m_meshBuffer = m_floorBuffer = m_trailBuffer = m_planBuffer = m_gridBuffer = Buffer();
    m_smooth.reset();
    m_noSamples = 0;
    m_floorIndices = 0;
    m_meshTexture = 0;
    m_isFloorDue = true;
    m_isPlanDue = true;
}

void ZrSceneSurface::Release()
{
    if (IsReady()) {
        for (const Buffer* buffer :
            {&m_meshBuffer, &m_floorBuffer, &m_trailBuffer, &m_planBuffer, &m_gridBuffer})
            m_gl.glDeleteBuffers(1, &buffer->id);
        m_gl.glDeleteBuffers(1, &m_floorIndices);
        m_gl.glDeleteTextures(1, &m_meshTexture);
        m_program.Release(*this);
    }
    Forget();
}

void ZrSceneSurface::OnResize(int width, int height)
{
    m_width = width;
    m_height = height;
    m_noSamples = 0;
}

void ZrSceneSurface::SetFloor(ZrSceneFloor floor)
{
    m_floor = std::move(floor);
    m_isFloorDue = true;
}

void ZrSceneSurface::SetPlan(std::vector<QVector3D> plan)
{
    m_plan = std::move(plan);
    m_isPlanDue = true;
}

void ZrSceneSurface::SetTrail(std::vector<QVector3D> trail)
{
    m_trail.clear();
    for (const QVector3D& position : trail) {
        if (IsFinite(position))
            m_trail.push_back(position);
    }
    if (m_trail.size() > MostTrail)
        m_trail.erase(m_trail.begin(), m_trail.end() - MostTrail);
    m_trailBuffer.count = 0;
}

void ZrSceneSurface::AddToTrail(const QVector3D& position)
{
    if (!IsFinite(position))
        return;
    if (m_trail.size() >= MostTrail) {
        // A tenth at once: all that remains is uploaded anew.
        m_trail.erase(m_trail.begin(), m_trail.begin() + MostTrail / 10);
        m_trailBuffer.count = 0;
    }
    m_trail.push_back(position);
}

/// Brings \p vertices into the buffer behind those that are in it, \p total with them.
void ZrSceneSurface::Upload(Buffer& buffer, const std::vector<float>& vertices, int total)
{
    if (buffer.id == 0)
        m_gl.glGenBuffers(1, &buffer.id);
    m_gl.glBindBuffer(GL_ARRAY_BUFFER, buffer.id);
    if (buffer.count == 0 && total > buffer.capacity) {
        buffer.capacity = total + total / 2;
        m_gl.glBufferData(GL_ARRAY_BUFFER, static_cast<qopengl_GLsizeiptr>(buffer.capacity) * stride, nullptr,
            GL_STATIC_DRAW);
    }
    m_gl.glBufferSubData(GL_ARRAY_BUFFER, static_cast<qopengl_GLintptr>(buffer.count) * stride,
        static_cast<qopengl_GLsizeiptr>(vertices.size() * sizeof(float)), vertices.data());
    buffer.count = total;
}

void ZrSceneSurface::UploadMesh()
{
    if (m_meshBuffer.count > 0 || m_mesh.m_vertices.empty())
        return;
    std::vector<float> vertices;
    vertices.reserve(m_mesh.m_vertices.size() * floatsPerVertex);
    for (std::size_t i = 0; i < m_mesh.m_vertices.size(); ++i)
        Append(vertices, m_mesh.m_vertices[i], m_mesh.m_normals[i], m_mesh.m_texCoords[i]);
    Upload(m_meshBuffer, vertices, static_cast<int>(m_mesh.m_vertices.size()));
    if (m_meshImage.isNull())
        return;
    const QImage image = m_meshImage.convertToFormat(QImage::Format_RGBA8888).mirrored();
    m_gl.glGenTextures(1, &m_meshTexture);
    m_gl.glBindTexture(GL_TEXTURE_2D, m_meshTexture);
    m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    // From afar a texel for each pixel would only be noise.
    m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    m_gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    m_gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, image.width(), image.height(), 0, GL_RGBA, GL_UNSIGNED_BYTE,
        image.constBits());
    m_gl.glGenerateMipmap(GL_TEXTURE_2D);
}

void ZrSceneSurface::UploadFloor()
{
    if (!m_isFloorDue)
        return;
    m_isFloorDue = false;
    if (m_floor.IsEmpty())
        return;
    std::vector<float> vertices;
    const auto& positions = m_floor.Positions();
    vertices.reserve(positions.size() * floatsPerVertex);
    for (std::size_t i = 0; i < positions.size(); ++i)
        Append(vertices, positions[i], m_floor.Normals()[i], QVector2D(m_floor.Coverage()[i], 0.0F));
    m_floorBuffer.count = 0;
    Upload(m_floorBuffer, vertices, static_cast<int>(positions.size()));
    if (m_floorIndices == 0)
        m_gl.glGenBuffers(1, &m_floorIndices);
    m_gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_floorIndices);
    m_gl.glBufferData(GL_ELEMENT_ARRAY_BUFFER,
        static_cast<qopengl_GLsizeiptr>(m_floor.Indices().size() * sizeof(unsigned short)),
        m_floor.Indices().data(), GL_STATIC_DRAW);
    m_gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void ZrSceneSurface::UploadLine(Buffer& buffer, const std::vector<QVector3D>& line)
{
    const int total = static_cast<int>(line.size());
    if (buffer.count >= total)
        return;
    if (total > buffer.capacity)
        buffer.count = 0;
    std::vector<float> vertices;
    for (auto i = static_cast<std::size_t>(buffer.count); i < line.size(); ++i)
        Append(vertices, line[i], QVector3D(0.0F, 0.0F, 1.0F), QVector2D());
    Upload(buffer, vertices, total);
}

/// Lines of unit distance about the origin; the model matrix gives them their place and size.
void ZrSceneSurface::UploadGrid()
{
    if (m_gridBuffer.count > 0)
        return;
    std::vector<float> vertices;
    const QVector3D up(0.0F, 0.0F, 1.0F);
    constexpr float end = gridLines;
    int count = 0;
    for (int i = -gridLines; i <= gridLines; ++i) {
        const auto at = static_cast<float>(i);
        for (const QVector3D& p :
            {QVector3D(at, -end, 0), QVector3D(at, end, 0), QVector3D(-end, at, 0), QVector3D(end, at, 0)}) {
            Append(vertices, p, up, QVector2D());
            ++count;
        }
    }
    Upload(m_gridBuffer, vertices, count);
}

void ZrSceneSurface::SetModel(const QMatrix4x4& model)
{
    QMatrix4x4 matrix;
    matrix.scale(1.0F, 1.0F, m_exaggeration);
    // The vehicle keeps its shape; only where it is follows the heights.
    m_gl.glUniformMatrix4fv(m_program.Uniform(*this, "uModel"), 1, GL_FALSE, (matrix * model).constData());
}

void ZrSceneSurface::SetColour(const QColor& colour, bool isLit)
{
    m_gl.glUniform4f(m_program.Uniform(*this, "uColour"), static_cast<float>(colour.redF()),
        static_cast<float>(colour.greenF()), static_cast<float>(colour.blueF()),
        static_cast<float>(colour.alphaF()));
    for (const char* off : {"uTexture", "uRamped", "uGloss", "uLow", "uStep"})
        m_gl.glUniform1f(m_program.Uniform(*this, off), 0.0F);
    m_gl.glUniform1f(m_program.Uniform(*this, "uHigh"), 1.0F);
    m_gl.glUniform1f(m_program.Uniform(*this, "uLight"), isLit ? 1.0F : 0.0F);
}

/// After `SetColour`: that of depths instead.
void ZrSceneSurface::SetRamp()
{
    float ramp[3 * ZrDepthColours::Count];
    float* at = ramp;
    for (const QColor& colour : ZrDepthColours::Stops()) {
        *at++ = static_cast<float>(colour.redF());
        *at++ = static_cast<float>(colour.greenF());
        *at++ = static_cast<float>(colour.blueF());
    }
    m_gl.glUniform3fv(m_program.Uniform(*this, "uRamp"), ZrDepthColours::Count, ramp);
    m_gl.glUniform1f(m_program.Uniform(*this, "uRamped"), 1.0F);
    m_gl.glUniform1f(m_program.Uniform(*this, "uLow"), -Deepest());
    m_gl.glUniform1f(m_program.Uniform(*this, "uHigh"), -Shallowest());
    m_gl.glUniform1f(m_program.Uniform(*this, "uStep"), std::isfinite(m_contourStep) ? m_contourStep : 0.0F);
}

float ZrSceneSurface::Shallowest() const
{
    const float middle = (m_floor.Highest() + m_floor.Lowest()) / 2.0F;
    return -std::max(m_floor.Highest(), middle + LeastDepths / 2.0F);
}

float ZrSceneSurface::Deepest() const
{
    const float middle = (m_floor.Highest() + m_floor.Lowest()) / 2.0F;
    return -std::min(m_floor.Lowest(), middle - LeastDepths / 2.0F);
}

void ZrSceneSurface::Bind(const Buffer& buffer)
{
    m_gl.glBindBuffer(GL_ARRAY_BUFFER, buffer.id);
    const auto point = [&](const char* name, int size, int offset) {
        const int at = m_program.Attribute(*this, name);
        if (at < 0)
            return;
        m_gl.glEnableVertexAttribArray(static_cast<GLuint>(at));
        m_gl.glVertexAttribPointer(static_cast<GLuint>(at), size, GL_FLOAT, GL_FALSE, stride,
            reinterpret_cast<const void*>(static_cast<std::intptr_t>(offset) * 4));
    };
    point("aPosition", 3, 0);
    point("aNormal", 3, 3);
    point("aTexCoords", 2, 6);
}

/// Directs what is drawn into a buffer of several samples for each pixel, as large as the viewport; false
/// where there is none.
bool ZrSceneSurface::BeginSmooth()
{
    // Its pixels are moved to another place, which OpenGL ES does not do.
    const bool isPossible = m_samples > 1 && m_noSamples != m_samples && !m_context->isOpenGLES()
        && QOpenGLFramebufferObject::hasOpenGLFramebufferBlit() && m_viewport.width() == m_width
        && m_viewport.height() == m_height;
    if (!isPossible)
        return false;
    const QSize size(m_width, m_height);
    m_gl.glGetIntegerv(GL_FRAMEBUFFER_BINDING, &m_before);
    if (!m_smooth || m_smooth->size() != size) {
        QOpenGLFramebufferObjectFormat format;
        format.setAttachment(QOpenGLFramebufferObject::Depth);
        format.setSamples(m_samples);
        m_smooth = std::make_unique<QOpenGLFramebufferObject>(size, format);
    }
    if (!m_smooth->isValid() || m_smooth->format().samples() < 2 || !m_smooth->bind()) {
        m_gl.glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(m_before));
        m_noSamples = m_samples;
        m_smooth.reset();
        return false;
    }
    m_gl.glDisable(GL_SCISSOR_TEST);
    m_gl.glViewport(0, 0, m_width, m_height);
    return true;
}

void ZrSceneSurface::EndSmooth()
{
    QOpenGLExtraFunctions& gl = *m_context->extraFunctions();
    const auto before = static_cast<GLuint>(m_before);
    gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, m_smooth->handle());
    gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, before);
    BeginViewport();
    gl.glBlitFramebuffer(0, 0, m_width, m_height, m_viewport.x(), m_viewport.y(), m_viewport.x() + m_width,
        m_viewport.y() + m_height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    gl.glBindFramebuffer(GL_FRAMEBUFFER, before);
}

void ZrSceneSurface::BeginViewport()
{
    ZrGlClipToViewport();
    m_gl.glEnable(GL_SCISSOR_TEST);
    m_gl.glScissor(m_viewport.x(), m_viewport.y(), m_viewport.width(), m_viewport.height());
}

bool ZrSceneSurface::Begin()
{
    const QColor water = ZrTheme::sea;
    m_gl.glClearColor(static_cast<float>(water.redF()), static_cast<float>(water.greenF()),
        static_cast<float>(water.blueF()), 1.0F);
    m_gl.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    m_proj = m_camera.Matrix(m_width, m_height);
    if (!m_program.Use(*this))
        return false;
    const QVector3D eye = m_camera.Eye();
    m_gl.glUniform3f(m_program.Uniform(*this, "uEye"), eye.x(), eye.y(), eye.z());
    m_gl.glUniform3f(m_program.Uniform(*this, "uWater"), static_cast<float>(water.redF()),
        static_cast<float>(water.greenF()), static_cast<float>(water.blueF()));
    m_gl.glUniform1f(m_program.Uniform(*this, "uFogStart"), m_camera.Distance() * 2.0F);
    m_gl.glUniform1f(m_program.Uniform(*this, "uFogEnd"), m_camera.Distance() * 8.0F + 50.0F);
    m_gl.glUniform1i(m_program.Uniform(*this, "uTexUnit"), 0);
    m_gl.glEnable(GL_DEPTH_TEST);
    m_gl.glEnable(GL_BLEND);
    m_gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    return true;
}

void ZrSceneSurface::End()
{
    for (const char* name : {"aPosition", "aNormal", "aTexCoords"}) {
        const int at = m_program.Attribute(*this, name);
        if (at >= 0)
            m_gl.glDisableVertexAttribArray(static_cast<GLuint>(at));
    }
    m_gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    m_gl.glDisable(GL_BLEND);
    m_gl.glDisable(GL_DEPTH_TEST);
}

void ZrSceneSurface::DrawFloor()
{
    if (m_floor.IsEmpty() || m_floorBuffer.count == 0)
        return;
    SetModel(QMatrix4x4());
    SetColour(Qt::white, true);
    SetRamp();
    Bind(m_floorBuffer);
    m_gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_floorIndices);
    m_gl.glDrawElements(
        GL_TRIANGLES, static_cast<GLsizei>(m_floor.Indices().size()), GL_UNSIGNED_SHORT, nullptr);
    m_gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void ZrSceneSurface::DrawLines()
{
    const auto draw
        = [this](const Buffer& buffer, const QColor& colour, GLenum mode, const QMatrix4x4& model) {
              if (buffer.count < 2)
                  return;
              SetModel(model);
              SetColour(colour, false);
              Bind(buffer);
              m_gl.glDrawArrays(mode, 0, buffer.count);
          };
    // The edge first, for the line to be seen on all colours of the floor; it hides nothing of what it is of.
    const auto drawWay = [&](const Buffer& buffer, const QColor& colour) {
        m_gl.glDepthMask(GL_FALSE);
        m_gl.glLineWidth(ZrTheme::DpF(lineWidth + 2.0F * lineEdge));
        draw(buffer, ZrTheme::formBack, GL_LINE_STRIP, QMatrix4x4());
        m_gl.glDepthMask(GL_TRUE);
        m_gl.glLineWidth(ZrTheme::DpF(lineWidth));
        draw(buffer, colour, GL_LINE_STRIP, QMatrix4x4());
    };
    drawWay(m_planBuffer, ZrTheme::route);
    drawWay(m_trailBuffer, ZrTheme::track);
    m_gl.glLineWidth(1.0F);
    if (!m_hasSurface)
        return;
    const float step = GridStep(m_camera.Distance());
    QMatrix4x4 model;
    model.translate(std::round(m_camera.Target().x() / step) * step,
        std::round(m_camera.Target().y() / step) * step, 0.0F);
    model.scale(step, step, 1.0F);
    QColor colour = ZrTheme::gridCol;
    colour.setAlpha(40);
    draw(m_gridBuffer, colour, GL_LINES, model);
}

void ZrSceneSurface::DrawVehicle()
{
    if (!m_hasVehicle || m_meshBuffer.count == 0 || !IsFinite(m_pose.position))
        return;
    ZrScenePose pose = m_pose;
    pose.position.setZ(pose.position.z() * m_exaggeration);
    QMatrix4x4 model = pose.Matrix();
    model.scale(m_meshScale);
    m_gl.glUniformMatrix4fv(m_program.Uniform(*this, "uModel"), 1, GL_FALSE, model.constData());
    SetColour(m_meshColour, true);
    m_gl.glUniform1f(m_program.Uniform(*this, "uGloss"), 1.0F);
    if (m_meshTexture != 0) {
        m_gl.glUniform1f(m_program.Uniform(*this, "uTexture"), 1.0F);
        m_gl.glBindTexture(GL_TEXTURE_2D, m_meshTexture);
    }
    Bind(m_meshBuffer);
    m_gl.glDrawArrays(GL_TRIANGLES, 0, m_meshBuffer.count);
}

void ZrSceneSurface::Render()
{
    if (!IsReady() || m_width <= 0 || m_height <= 0)
        return;
    if (m_context != QOpenGLContext::currentContext()) {
        Forget();
        m_context = QOpenGLContext::currentContext();
    }
    UploadMesh();
    UploadFloor();
    UploadLine(m_trailBuffer, m_trail);
    if (m_isPlanDue) {
        m_planBuffer.count = 0;
        m_isPlanDue = false;
    }
    UploadLine(m_planBuffer, m_plan);
    UploadGrid();
    const bool isSmooth = BeginSmooth();
    if (!isSmooth)
        BeginViewport();
    if (Begin()) {
        DrawFloor();
        DrawVehicle();
        DrawLines();
        End();
    }
    m_gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    if (isSmooth)
        EndSmooth();
    // What was blended has left its mark on alpha; pictures of the window would be seen through there.
    m_gl.glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
    m_gl.glClear(GL_COLOR_BUFFER_BIT);
    m_gl.glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    m_gl.glDisable(GL_SCISSOR_TEST);
}
