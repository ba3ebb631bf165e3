// The shader programs of `ZrGlSurface`.

#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrLogEmit.h"

#include <QFile>

namespace {

struct ProgramSource
{
    ZrGlSurface::eProgram program;
    const char* vertex;
    const char* fragment;
};

/// In the order in which they are built.
constexpr ProgramSource sources[] = {
    {ZrGlSurface::solid, ":/map.vsh", ":/solid.fsh"},
    {ZrGlSurface::texture, ":/texture.vsh", ":/texture.fsh"},
    {ZrGlSurface::alpha, ":/texture.vsh", ":/alpha.fsh"},
    {ZrGlSurface::palette, ":/texture.vsh", ":/palette.fsh"},
    {ZrGlSurface::luminance, ":/texture.vsh", ":/luminance.fsh"},
    {ZrGlSurface::colourkey, ":/texture.vsh", ":/colourkey.fsh"},
    {ZrGlSurface::yuvplanar, ":/texture.vsh", ":/yuvplanar.fsh"},
};

} // namespace

void ZrGlSurface::LogFailure(const char* what, const QByteArray& text) const
{
    ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrUtil-ZrGlSurface", "{}{}", what, text);
}

int ZrGlSurface::ZrglCompileShader(int type, QString resource)
{
    if (!IsReadyOrWarn())
        return 0;
    QFile file(resource);
    if (!file.open(QIODevice::ReadOnly)) {
        LogFailure("Cannot read shader ", resource.toUtf8());
        return 0;
    }
    const QByteArray text = file.readAll();
    const GLuint shader = m_gl.glCreateShader(static_cast<GLenum>(type));
    if (shader == 0) {
        LogFailure("Cannot create a shader for ", resource.toUtf8());
        return 0;
    }
    const char* source = text.constData();
    m_gl.glShaderSource(shader, 1, &source, nullptr);
    m_gl.glCompileShader(shader);
    GLint isCompiled = 0;
    GLint length = 0;
    m_gl.glGetShaderiv(shader, GL_COMPILE_STATUS, &isCompiled);
    m_gl.glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    if (isCompiled)
        return static_cast<int>(shader);
    QByteArray log(std::max(length, 1), '\0');
    m_gl.glGetShaderInfoLog(shader, log.size(), nullptr, log.data());
    LogFailure("Shader does not compile: ", resource.toUtf8() + ": " + log.constData());
    m_gl.glDeleteShader(shader);
    return 0;
}

int ZrGlSurface::ZrglLinkProgram(int vertexShader, int fragmentShader)
{
    if (!IsReadyOrWarn())
        return 0;
    const GLuint program = m_gl.glCreateProgram();
    if (program == 0) {
        LogFailure("Cannot create a program", QByteArray());
        return 0;
    }
    GLint isLinked = 0;
    GLint length = 0;
    const auto vertex = static_cast<GLuint>(vertexShader);
    const auto fragment = static_cast<GLuint>(fragmentShader);
    // Attaching what is no shader is an error of GL's that nobody would fetch.
    if (m_gl.glIsShader(vertex) && m_gl.glIsShader(fragment)) {
        m_gl.glAttachShader(program, vertex);
        m_gl.glAttachShader(program, fragment);
        m_gl.glLinkProgram(program);
        m_gl.glGetProgramiv(program, GL_LINK_STATUS, &isLinked);
        m_gl.glGetProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    }
    if (isLinked)
        return static_cast<int>(program);
    QByteArray log(std::max(length, 1), '\0');
    if (length > 0)
        m_gl.glGetProgramInfoLog(program, log.size(), nullptr, log.data());
    LogFailure("Program does not link: ", QByteArray(log.constData()));
    m_gl.glDeleteProgram(program);
    return 0;
}

int ZrGlSurface::ZrglBuildProgram(QString vertex, QString fragment)
{
    const int vertexShader = ZrglCompileShader(GL_VERTEX_SHADER, vertex);
    const int fragmentShader = ZrglCompileShader(GL_FRAGMENT_SHADER, fragment);
    const int program = vertexShader && fragmentShader ? ZrglLinkProgram(vertexShader, fragmentShader) : 0;
    // A program keeps what it is linked from alive.
    if (vertexShader)
        m_gl.glDeleteShader(static_cast<GLuint>(vertexShader));
    if (fragmentShader)
        m_gl.glDeleteShader(static_cast<GLuint>(fragmentShader));
    return program;
}

void ZrGlSurface::ZrglInitShaders()
{
    for (const ProgramSource& source : sources) {
        const int program
            = ZrglBuildProgram(QString::fromLatin1(source.vertex), QString::fromLatin1(source.fragment));
        m_programs[source.program] = static_cast<GLuint>(program);
        m_locations[source.program] = Locations();
    }
}

const ZrGlSurface::Locations& ZrGlSurface::LocationsOf(int program)
{
    Locations& at = m_locations[static_cast<std::size_t>(program)];
    if (at.isKnown)
        return at;
    const GLuint handle = m_programs[static_cast<std::size_t>(program)];
    at.isKnown = true;
    at.matrix = m_gl.glGetUniformLocation(handle, "uMatrix");
    at.colour = m_gl.glGetUniformLocation(handle, "uColour");
    at.texUnit = m_gl.glGetUniformLocation(handle, "uTexUnit");
    at.palIndex = m_gl.glGetUniformLocation(handle, "uPalIndex");
    at.palUnit = m_gl.glGetUniformLocation(handle, "uPalUnit");
    at.colKey = m_gl.glGetUniformLocation(handle, "uColKey");
    at.texY = m_gl.glGetUniformLocation(handle, "uTexY");
    at.texCb = m_gl.glGetUniformLocation(handle, "uTexCb");
    at.texCr = m_gl.glGetUniformLocation(handle, "uTexCr");
    at.colourSpace = m_gl.glGetUniformLocation(handle, "uColourSpace");
    at.position = m_gl.glGetAttribLocation(handle, "aPosition");
    at.texCoords = m_gl.glGetAttribLocation(handle, "aTexCoords");
    return at;
}

void ZrGlSurface::ZrglSetPgm(eProgram program)
{
    if (!IsReadyOrWarn())
        return;
    const int index = program;
    if (index >= 0 && index < ProgramCount) {
        m_program = m_programs[static_cast<std::size_t>(index)];
        UseProgram(index);
    } else if (CurrentProgram() != 0) {
        SetMatrix(LocationsOf(m_current));
    }
}

/// The program that is current; 0 for none.
unsigned ZrGlSurface::CurrentProgram() const
{
    return m_current < 0 ? 0 : m_programs[static_cast<std::size_t>(m_current)];
}

/// Makes a program current and sets its uniforms; `m_program` stays.
void ZrGlSurface::UseProgram(int program)
{
    m_current = program;
    m_gl.glUseProgram(CurrentProgram());
    if (CurrentProgram() == 0)
        return;
    const Locations& at = LocationsOf(program);
    SetUniforms(program, at);
    SetMatrix(at);
}

void ZrGlSurface::SetUniforms(int program, const Locations& at)
{
    const auto setColour = [&] {
        m_gl.glUniform4f(at.colour, static_cast<float>(m_colour.redF()),
            static_cast<float>(m_colour.greenF()), static_cast<float>(m_colour.blueF()),
            static_cast<float>(m_colour.alphaF()));
    };
    if (program != solid && program != yuvplanar)
        m_gl.glUniform1i(at.texUnit, 0);
    switch (program) {
    case solid:
    case alpha:
        setColour();
        break;
    case palette:
        m_gl.glUniform1f(
            at.palIndex, (static_cast<float>(m_palIndex) + 0.5F) / static_cast<float>(m_palCount));
        m_gl.glUniform1i(at.palUnit, 1);
        m_gl.glActiveTexture(GL_TEXTURE1);
        m_gl.glBindTexture(GL_TEXTURE_2D, m_palTex);
        m_gl.glActiveTexture(GL_TEXTURE0);
        break;
    case colourkey:
        // One packed integer for a vector: GL refuses it, and the key stays transparent black.
        m_gl.glUniform1i(at.colKey, static_cast<GLint>(m_colKey.rgba()));
        break;
    case yuvplanar:
        m_gl.glUniform1i(at.texY, 0);
        m_gl.glUniform1i(at.texCb, 1);
        m_gl.glUniform1i(at.texCr, 2);
        m_gl.glUniform1i(at.colourSpace, m_colourSpace);
        break;
    default:
        break;
    }
}

void ZrGlSurface::SetMatrix(const Locations& at)
{
    m_gl.glUniformMatrix4fv(at.matrix, 1, GL_FALSE, m_proj.constData());
}
