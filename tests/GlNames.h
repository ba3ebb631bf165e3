#pragma once

// Counts the names of OpenGL objects that exist.

#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace gl {

/// Follows what is generated and deleted in the current context, from its construction to its end. One at a
/// time.
class Names : private QOpenGLFunctions
{
public:
    qint64 generated = 0;
    qint64 deleted = 0;

    Names()
        : QOpenGLFunctions(QOpenGLContext::currentContext())
        , m_saved(d_ptr->f)
    {
        s_active = this;
        auto& f = d_ptr->f;
        f.GenBuffers = &Gen<&Table::GenBuffers>;
        f.GenTextures = &Gen<&Table::GenTextures>;
        f.GenFramebuffers = &Gen<&Table::GenFramebuffers>;
        f.GenRenderbuffers = &Gen<&Table::GenRenderbuffers>;
        f.DeleteBuffers = &Delete<&Table::DeleteBuffers>;
        f.DeleteTextures = &Delete<&Table::DeleteTextures>;
        f.DeleteFramebuffers = &Delete<&Table::DeleteFramebuffers>;
        f.DeleteRenderbuffers = &Delete<&Table::DeleteRenderbuffers>;
        f.CreateProgram = [] {
            ++s_active->generated;
            return s_active->m_saved.CreateProgram();
        };
        f.CreateShader = [](GLenum type) {
            ++s_active->generated;
            return s_active->m_saved.CreateShader(type);
        };
        f.DeleteProgram = [](GLuint name) {
            ++s_active->deleted;
            s_active->m_saved.DeleteProgram(name);
        };
        f.DeleteShader = [](GLuint name) {
            ++s_active->deleted;
            s_active->m_saved.DeleteShader(name);
        };
    }

    ~Names()
    {
        d_ptr->f = m_saved;
        s_active = nullptr;
    }

    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;

    qint64 Growth() const { return generated - deleted; }

private:
    using Table = decltype(QOpenGLFunctionsPrivate::f);

    template <auto Function> static void QOPENGLF_APIENTRY Gen(GLsizei n, GLuint* names)
    {
        s_active->generated += n;
        (s_active->m_saved.*Function)(n, names);
    }

    template <auto Function> static void QOPENGLF_APIENTRY Delete(GLsizei n, const GLuint* names)
    {
        s_active->deleted += n;
        (s_active->m_saved.*Function)(n, names);
    }

    Table m_saved;
    static inline Names* s_active = nullptr;
};

} // namespace gl
