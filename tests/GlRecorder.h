#pragma once

// Counts what is asked of OpenGL.

#include <QByteArray>
#include <QMap>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPair>

#include <vector>

namespace gl {

/// Takes the place of functions in the table of the current context, which all users of the context share,
/// until it is destroyed. One at a time.
class Recorder : private QOpenGLFunctions
{
public:
    struct DrawCall
    {
        GLenum mode;
        GLsizei count;
        bool isBlended;
        GLint program;
    };

    std::vector<DrawCall> draws;
    qint64 vertices = 0;
    qint64 uploadedBytes = 0; ///< of buffers and textures
    QMap<QPair<GLuint, QByteArray>, int> lookUps; ///< by program and name

    Recorder()
        : QOpenGLFunctions(QOpenGLContext::currentContext())
        , m_saved(d_ptr->f)
    {
        s_active = this;
        d_ptr->f.DrawArrays = &DrawArrays;
        d_ptr->f.DrawElements = &DrawElements;
        d_ptr->f.GetUniformLocation = &GetUniformLocation;
        d_ptr->f.GetAttribLocation = &GetAttribLocation;
        d_ptr->f.BufferData = &BufferData;
        d_ptr->f.BufferSubData = &BufferSubData;
        d_ptr->f.TexImage2D = &TexImage2D;
        d_ptr->f.TexSubImage2D = &TexSubImage2D;
    }

    ~Recorder()
    {
        d_ptr->f = m_saved;
        s_active = nullptr;
    }

    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    void Reset()
    {
        draws.clear();
        lookUps.clear();
        vertices = 0;
        uploadedBytes = 0;
    }

    int LookUpCount() const
    {
        int sum = 0;
        for (const int n : lookUps)
            sum += n;
        return sum;
    }

private:
    using Table = decltype(QOpenGLFunctionsPrivate::f);

    void AddDraw(GLenum mode, GLsizei count)
    {
        GLint program = 0;
        m_saved.GetIntegerv(GL_CURRENT_PROGRAM, &program);
        draws.push_back({mode, count, m_saved.IsEnabled(GL_BLEND) != GL_FALSE, program});
        vertices += count;
    }

    static qint64 BytesPerPixel(GLenum format)
    {
        return format == GL_RGBA ? 4 : format == GL_RGB ? 3 : format == GL_LUMINANCE_ALPHA ? 2 : 1;
    }

    static void QOPENGLF_APIENTRY DrawArrays(GLenum mode, GLint first, GLsizei count)
    {
        s_active->AddDraw(mode, count);
        s_active->m_saved.DrawArrays(mode, first, count);
    }

    static void QOPENGLF_APIENTRY DrawElements(GLenum mode, GLsizei count, GLenum type, const GLvoid* at)
    {
        s_active->AddDraw(mode, count);
        s_active->m_saved.DrawElements(mode, count, type, at);
    }

    static GLint QOPENGLF_APIENTRY GetUniformLocation(GLuint program, const char* name)
    {
        ++s_active->lookUps[{program, name}];
        return s_active->m_saved.GetUniformLocation(program, name);
    }

    static GLint QOPENGLF_APIENTRY GetAttribLocation(GLuint program, const char* name)
    {
        ++s_active->lookUps[{program, name}];
        return s_active->m_saved.GetAttribLocation(program, name);
    }

    static void QOPENGLF_APIENTRY BufferData(GLenum target, qopengl_GLsizeiptr n, const void* p, GLenum usage)
    {
        s_active->uploadedBytes += p ? n : 0;
        s_active->m_saved.BufferData(target, n, p, usage);
    }

    static void QOPENGLF_APIENTRY BufferSubData(
        GLenum target, qopengl_GLintptr offset, qopengl_GLsizeiptr n, const void* p)
    {
        s_active->uploadedBytes += n;
        s_active->m_saved.BufferSubData(target, offset, n, p);
    }

    static void QOPENGLF_APIENTRY TexImage2D(GLenum target, GLint level, GLint inside, GLsizei w, GLsizei h,
        GLint border, GLenum format, GLenum type, const GLvoid* p)
    {
        s_active->uploadedBytes += p ? BytesPerPixel(format) * w * h : 0;
        s_active->m_saved.TexImage2D(target, level, inside, w, h, border, format, type, p);
    }

    static void QOPENGLF_APIENTRY TexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei w,
        GLsizei h, GLenum format, GLenum type, const GLvoid* p)
    {
        s_active->uploadedBytes += BytesPerPixel(format) * w * h;
        s_active->m_saved.TexSubImage2D(target, level, x, y, w, h, format, type, p);
    }

    Table m_saved;
    static inline Recorder* s_active = nullptr;
};

} // namespace gl
