#include "ZrKit/map/ZrMapProgram.h"

#include "ZrKit/map/ZrMapSplit.h"
#include "ZrUtil/ZrGlSurface.h"

#include <utility>

ZrMapProgram::ZrMapProgram(QString vertex, QString fragment)
    : m_vertex(std::move(vertex))
    , m_fragment(std::move(fragment))
{
}

bool ZrMapProgram::Use(ZrGlSurface& surface)
{
    if (!m_isTried) {
        // A surface that is not ready says so in the debug log and builds nothing; later it may.
        m_isTried = surface.IsReady();
        m_program = static_cast<unsigned>(surface.ZrglBuildProgram(m_vertex, m_fragment));
    }
    if (m_program == 0 || !surface.IsReady())
        return false;
    surface.m_gl.glUseProgram(m_program);
    surface.m_gl.glUniformMatrix4fv(Uniform(surface, "uMatrix"), 1, GL_FALSE, surface.m_proj.constData());
    return true;
}

int ZrMapProgram::Uniform(ZrGlSurface& surface, const char* name)
{
    const auto key = QByteArray::fromRawData(name, static_cast<int>(qstrlen(name)));
    const auto at = m_uniforms.constFind(key);
    if (at != m_uniforms.constEnd())
        return *at;
    return *m_uniforms.insert(QByteArray(name), surface.m_gl.glGetUniformLocation(m_program, name));
}

int ZrMapProgram::Attribute(ZrGlSurface& surface, const char* name)
{
    const auto key = QByteArray::fromRawData(name, static_cast<int>(qstrlen(name)));
    const auto at = m_attributes.constFind(key);
    if (at != m_attributes.constEnd())
        return *at;
    return *m_attributes.insert(QByteArray(name), surface.m_gl.glGetAttribLocation(m_program, name));
}

void ZrMapProgram::SetSplit(ZrGlSurface& surface, const ZrMapSplit& split)
{
    auto& gl = surface.m_gl;
    gl.glUniform1i(Uniform(surface, "uMap"), 1);
    gl.glUniform1f(Uniform(surface, "uScale"), split.scale);
    gl.glUniform1f(Uniform(surface, "uScaleD"), split.scaleD);
    gl.glUniform1f(Uniform(surface, "uOriginX"), split.originX);
    gl.glUniform1f(Uniform(surface, "uOriginXd"), split.originXd);
    gl.glUniform1f(Uniform(surface, "uOriginY"), split.originY);
    gl.glUniform1f(Uniform(surface, "uOriginYd"), split.originYd);
    gl.glUniform1f(Uniform(surface, "uOffX"), split.offX);
    gl.glUniform1f(Uniform(surface, "uOffY"), split.offY);
}

void ZrMapProgram::Release(ZrGlSurface& surface)
{
    if (m_program != 0)
        surface.m_gl.glDeleteProgram(m_program);
    Forget();
}

void ZrMapProgram::Forget()
{
    m_program = 0;
    m_isTried = false;
    m_uniforms.clear();
    m_attributes.clear();
}
