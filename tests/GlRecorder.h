#pragma once

// Counts what is asked of OpenGL.

#include <QByteArray>
#include <QMap>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPair>
#include <QSet>

#include <cstring>
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
        std::vector<float> positions; ///< of the attribute "aPosition", from arrays of the program's
        std::vector<float> texCoords; ///< of "aTexCoords", likewise
    };

    struct IntUniform
    {
        GLint program;
        GLint location;
        GLint value;
    };

    std::vector<DrawCall> draws;
    qint64 vertices = 0;
    qint64 uploadedBytes = 0; ///< of buffers and textures
    qint64 clientBytes = 0; ///< of vertices that GL fetched from arrays of the program's
    std::vector<IntUniform> ints; ///< single integers, also those that GL refuses
    QSet<GLuint> shaders; ///< made and not deleted
    QSet<GLuint> programs; ///< likewise
    QMap<QPair<GLuint, QByteArray>, int> lookUps; ///< by program and name
    bool isBufferMemoryOut = false; ///< no buffer takes anything from here on
    bool isTextureMemoryOut = false; ///< no texture does
    int failed = 0; ///< uploads for that reason
    GLenum error = GL_NO_ERROR; ///< of it, until it is asked for

    Recorder()
        : QOpenGLFunctions(QOpenGLContext::currentContext())
        , m_saved(d_ptr->f)
    {
        s_active = this;
        d_ptr->f.DrawArrays = &DrawArrays;
        d_ptr->f.DrawElements = &DrawElements;
        d_ptr->f.GetUniformLocation = &GetUniformLocation;
        d_ptr->f.GetAttribLocation = &GetAttribLocation;
        d_ptr->f.GetError = &GetError;
        d_ptr->f.BufferData = &BufferData;
        d_ptr->f.BufferSubData = &BufferSubData;
        d_ptr->f.TexImage2D = &TexImage2D;
        d_ptr->f.TexSubImage2D = &TexSubImage2D;
        d_ptr->f.Uniform1i = &Uniform1i;
        d_ptr->f.VertexAttribPointer = &VertexAttribPointer;
        d_ptr->f.CreateShader = &CreateShader;
        d_ptr->f.DeleteShader = &DeleteShader;
        d_ptr->f.CreateProgram = &CreateProgram;
        d_ptr->f.DeleteProgram = &DeleteProgram;
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
        ints.clear();
        vertices = 0;
        uploadedBytes = 0;
        clientBytes = 0;
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

    struct Array
    {
        GLint size;
        GLsizei stride;
        const char* data;
    };

    void AddDraw(GLenum mode, GLint first, GLsizei count)
    {
        GLint program = 0;
        m_saved.GetIntegerv(GL_CURRENT_PROGRAM, &program);
        draws.push_back({mode, count, m_saved.IsEnabled(GL_BLEND) != GL_FALSE, program,
            Fetched(program, "aPosition", first, count), Fetched(program, "aTexCoords", first, count)});
        vertices += count;
        clientBytes += static_cast<qint64>(
            (draws.back().positions.size() + draws.back().texCoords.size()) * sizeof(float));
    }

    /// What GL fetches for an attribute; nothing when it is off or lies in a buffer.
    std::vector<float> Fetched(GLint program, const char* name, GLint first, GLsizei count) const
    {
        std::vector<float> values;
        const GLint index = m_saved.GetAttribLocation(static_cast<GLuint>(program), name);
        if (index < 0 || !m_arrays.contains(index))
            return values;
        GLint isEnabled = 0;
        m_saved.GetVertexAttribiv(static_cast<GLuint>(index), GL_VERTEX_ATTRIB_ARRAY_ENABLED, &isEnabled);
        const Array& array = m_arrays[index];
        for (GLsizei i = 0; isEnabled && i < count; ++i) {
            const char* at = array.data + static_cast<std::ptrdiff_t>(first + i) * array.stride;
            for (GLint k = 0; k < array.size; ++k) {
                float value = 0;
                std::memcpy(&value, at + static_cast<std::size_t>(k) * sizeof(float), sizeof(float));
                values.push_back(value);
            }
        }
        return values;
    }

    static void QOPENGLF_APIENTRY VertexAttribPointer(
        GLuint index, GLint size, GLenum type, GLboolean isNormalized, GLsizei stride, const GLvoid* p)
    {
        GLint buffer = 0;
        s_active->m_saved.GetIntegerv(GL_ARRAY_BUFFER_BINDING, &buffer);
        const GLsizei step = stride != 0 ? stride : size * static_cast<GLsizei>(sizeof(float));
        if (buffer == 0 && type == GL_FLOAT)
            s_active->m_arrays[static_cast<GLint>(index)] = {size, step, static_cast<const char*>(p)};
        else
            s_active->m_arrays.remove(static_cast<GLint>(index));
        s_active->m_saved.VertexAttribPointer(index, size, type, isNormalized, stride, p);
    }

    static void QOPENGLF_APIENTRY Uniform1i(GLint location, GLint value)
    {
        GLint program = 0;
        s_active->m_saved.GetIntegerv(GL_CURRENT_PROGRAM, &program);
        s_active->ints.push_back({program, location, value});
        s_active->m_saved.Uniform1i(location, value);
    }

    static GLuint QOPENGLF_APIENTRY CreateShader(GLenum type)
    {
        const GLuint shader = s_active->m_saved.CreateShader(type);
        s_active->shaders.insert(shader);
        return shader;
    }

    static void QOPENGLF_APIENTRY DeleteShader(GLuint shader)
    {
        s_active->shaders.remove(shader);
        s_active->m_saved.DeleteShader(shader);
    }

    static GLuint QOPENGLF_APIENTRY CreateProgram()
    {
        const GLuint program = s_active->m_saved.CreateProgram();
        s_active->programs.insert(program);
        return program;
    }

    static void QOPENGLF_APIENTRY DeleteProgram(GLuint program)
    {
        s_active->programs.remove(program);
        s_active->m_saved.DeleteProgram(program);
    }

    static qint64 BytesPerPixel(GLenum format)
    {
        return format == GL_RGBA ? 4 : format == GL_RGB ? 3 : format == GL_LUMINANCE_ALPHA ? 2 : 1;
    }

    static void QOPENGLF_APIENTRY DrawArrays(GLenum mode, GLint first, GLsizei count)
    {
        s_active->AddDraw(mode, first, count);
        s_active->m_saved.DrawArrays(mode, first, count);
    }

    static void QOPENGLF_APIENTRY DrawElements(GLenum mode, GLsizei count, GLenum type, const GLvoid* at)
    {
        // Which vertices the indices choose is not looked at.
        s_active->m_arrays.clear();
        s_active->AddDraw(mode, 0, count);
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

    /// True, and an error, when \p isOut.
    static bool IsRefused(bool isOut)
    {
        if (!isOut)
            return false;
        ++s_active->failed;
        s_active->error = GL_OUT_OF_MEMORY;
        return true;
    }

    static GLenum QOPENGLF_APIENTRY GetError()
    {
        const GLenum own = s_active->error;
        s_active->error = GL_NO_ERROR;
        return own != GL_NO_ERROR ? own : s_active->m_saved.GetError();
    }

    static void QOPENGLF_APIENTRY BufferData(GLenum target, qopengl_GLsizeiptr n, const void* p, GLenum usage)
    {
        if (IsRefused(s_active->isBufferMemoryOut))
            return;
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
        if (IsRefused(s_active->isTextureMemoryOut))
            return;
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
    QMap<GLint, Array> m_arrays;
    static inline Recorder* s_active = nullptr;
};

} // namespace gl
