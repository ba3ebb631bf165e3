#pragma once

// An OpenGL context without a window, for tests that look at pixels.

#include <QColor>
#include <QGuiApplication>
#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QSize>
#include <QString>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>
#include <memory>

#ifdef __SANITIZE_ADDRESS__
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#endif

namespace gl {

enum class Api
{
    desktop, ///< OpenGL 2.0
    es ///< OpenGL ES 2.0
};

inline QSurfaceFormat FormatOf(Api api)
{
    QSurfaceFormat format;
    format.setRenderableType(api == Api::es ? QSurfaceFormat::OpenGLES : QSurfaceFormat::OpenGL);
    format.setVersion(2, 0);
    format.setProfile(QSurfaceFormat::NoProfile);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    format.setSwapInterval(0);
    return format;
}

/// A current context with a framebuffer of its own; `Error` says why there is none.
class Context
{
public:
    explicit Context(Api api, const QSize& size = QSize(64, 64))
        : m_size(size)
    {
        m_surface.setFormat(FormatOf(api));
        m_surface.create();
        m_context.setFormat(m_surface.requestedFormat());
        if (!m_context.create()) {
            m_error = QStringLiteral("no OpenGL context can be created");
            return;
        }
        if (m_context.isOpenGLES() != (api == Api::es)) {
            m_error = QStringLiteral("a context of the other kind was created");
            return;
        }
        if (!MakeCurrent()) {
            m_error = QStringLiteral("the context cannot be made current");
            return;
        }
        m_buffer = std::make_unique<QOpenGLFramebufferObject>(
            size, QOpenGLFramebufferObject::CombinedDepthStencil);
        if (!m_buffer->isValid() || !m_buffer->bind())
            m_error = QStringLiteral("the framebuffer is incomplete");
        Functions()->glViewport(0, 0, size.width(), size.height());
        TakeErrors();
    }

    ~Context()
    {
        if (m_buffer && MakeCurrent())
            m_buffer.reset();
        m_context.doneCurrent();
    }

    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    QString Error() const { return m_error; }

    bool MakeCurrent() { return m_context.makeCurrent(&m_surface); }

    void DoneCurrent() { m_context.doneCurrent(); }

    QOpenGLContext* Get() { return &m_context; }

    QOpenGLFunctions* Functions() { return m_context.functions(); }

    void Clear(const QColor& colour)
    {
        Functions()->glClearColor(static_cast<float>(colour.redF()), static_cast<float>(colour.greenF()),
            static_cast<float>(colour.blueF()), static_cast<float>(colour.alphaF()));
        Functions()->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }

    /// The framebuffer, not premultiplied, its top row first.
    QImage Read() { return ReadPixels(m_size).mirrored(); }

    /// The first level of an RGBA texture, its first row first.
    QImage ReadTexture(GLuint tex, const QSize& size)
    {
        QOpenGLFunctions* f = Functions();
        GLuint buffer = 0;
        f->glGenFramebuffers(1, &buffer);
        f->glBindFramebuffer(GL_FRAMEBUFFER, buffer);
        f->glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, tex, 0);
        QImage image;
        if (f->glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE)
            image = ReadPixels(size);
        m_buffer->bind();
        f->glDeleteFramebuffers(1, &buffer);
        return image;
    }

    /// A texture of RGBA8888 pixels, sampled without smoothing.
    GLuint Texture(const QImage& image)
    {
        const QImage pixels = image.convertToFormat(QImage::Format_RGBA8888);
        return Texture(pixels.constBits(), pixels.size(), GL_RGBA);
    }

    /// A texture of one texel with \p alpha alone.
    GLuint AlphaTexture(int alpha)
    {
        const auto value = static_cast<uchar>(alpha);
        return Texture(&value, QSize(1, 1), GL_ALPHA);
    }

    /// Fetches all pending errors; returns the first, `GL_NO_ERROR` for none.
    GLenum TakeErrors()
    {
        const GLenum first = Functions()->glGetError();
        // A lost context reports an error for ever.
        for (int i = 0; i < 100 && Functions()->glGetError() != GL_NO_ERROR; ++i) { }
        return first;
    }

private:
    QImage ReadPixels(const QSize& size)
    {
        QImage image(size, QImage::Format_RGBA8888);
        image.fill(0);
        Functions()->glPixelStorei(GL_PACK_ALIGNMENT, 4);
        Functions()->glReadPixels(0, 0, size.width(), size.height(), GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
        return image;
    }

    GLuint Texture(const uchar* pixels, const QSize& size, GLenum format)
    {
        QOpenGLFunctions* f = Functions();
        GLuint tex = 0;
        f->glGenTextures(1, &tex);
        f->glBindTexture(GL_TEXTURE_2D, tex);
        f->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        f->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        f->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        f->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        f->glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        f->glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), size.width(), size.height(), 0, format,
            GL_UNSIGNED_BYTE, pixels);
        return tex;
    }

    QSize m_size;
    QString m_error;
    QOffscreenSurface m_surface;
    QOpenGLContext m_context;
    std::unique_ptr<QOpenGLFramebufferObject> m_buffer;
};

/// The driver stays loaded to the end of the process: the leak checker says of blocks of libraries that are
/// gone that nobody knows whose they are, and lsan.supp cannot name them.
inline void KeepDriver()
{
#ifdef __SANITIZE_ADDRESS__
    QByteArrayList drivers;
    const auto add = [](dl_phdr_info* library, std::size_t /*size*/, void* list) {
        if (std::strstr(library->dlpi_name, "_dri.so"))
            static_cast<QByteArrayList*>(list)->append(library->dlpi_name);
        return 0;
    };
    dl_iterate_phdr(add, &drivers);
    for (const QByteArray& driver : qAsConst(drivers))
        dlopen(driver.constData(), RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
#endif
}

/// Runs a test class in an application that has OpenGL. Without a display it says so and returns
/// \c skipped, which ctest shows as skipped: the platform plugin would abort.
template <class Application, class Test> int Main(int argc, char* argv[])
{
    constexpr int skipped = 77;
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        std::fputs("SKIP   : no display: DISPLAY is not set and xvfb-run is not installed\n", stderr);
        return skipped;
    }
    // Otherwise every start warns.
    const QTemporaryDir runtime;
    if (runtime.isValid() && qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());
    QSurfaceFormat::setDefaultFormat(FormatOf(Api::desktop));
    Application app(argc, argv);
    Test test;
    const int result = QTest::qExec(&test, argc, argv);
    KeepDriver();
    return result;
}

} // namespace gl

Q_DECLARE_METATYPE(gl::Api)

/// Like QTEST_MAIN, for tests with OpenGL.
#define GL_TEST_MAIN(Test)                                                                                   \
    int main(int argc, char* argv[])                                                                         \
    {                                                                                                        \
        return gl::Main<QApplication, Test>(argc, argv);                                                     \
    }
