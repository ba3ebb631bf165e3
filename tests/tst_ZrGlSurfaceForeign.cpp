// What others have left in the context, their errors above all: it neither stops the surface nor is it lost.

#include "GlPrimitives.h"
#include "GlRecorder.h"
#include "GlSurfaceTest.h"

class tst_ZrGlSurfaceForeign : public GlSurfaceTest
{
    Q_OBJECT

private Q_SLOTS:
    void errorBeforeAPrimitive_data();
    void errorBeforeAPrimitive();
    void errorBeforeOnCreate();
    void errorBeforeOtherFunctions();
    void stateBeforeAPrimitive_data();
    void stateBeforeAPrimitive();
    void unitBeforeUploads();
    void namesOfALostContext();

private:
    void RaiseError();
    void AddPrimitives();
    QImage Drawn(const gl::Primitive& primitive);
};

/// GL_INVALID_ENUM, by a switch that is none.
void tst_ZrGlSurfaceForeign::RaiseError()
{
    m_context->Functions()->glEnable(GL_TEXTURE_BINDING_2D);
}

void tst_ZrGlSurfaceForeign::AddPrimitives()
{
    QTest::addColumn<std::size_t>("index");
    const std::vector<gl::Primitive> all = gl::Primitives();
    for (std::size_t i = 0; i < all.size(); ++i)
        QTest::newRow(all[i].name) << i;
}

/// What it looks like where nobody has left anything.
QImage tst_ZrGlSurfaceForeign::Drawn(const gl::Primitive& primitive)
{
    m_context->Clear(QColor(10, 20, 30));
    primitive.draw(*m_view, m_white);
    m_context->TakeErrors();
    const QImage drawn = m_context->Read();
    m_context->Clear(QColor(10, 20, 30));
    return drawn;
}

void tst_ZrGlSurfaceForeign::errorBeforeAPrimitive_data()
{
    AddPrimitives();
}

void tst_ZrGlSurfaceForeign::errorBeforeAPrimitive()
{
    QFETCH(std::size_t, index);
    const gl::Primitive primitive = gl::Primitives()[index];
    const QImage expected = Drawn(primitive);
    QVERIFY(gl::CountNot(expected, QColor(10, 20, 30)) > 0);
    gl::Recorder recorder;
    RaiseError();
    primitive.draw(*m_view, m_white);
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    // It is still there for whoever asks for it, and nobody was blamed.
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_INVALID_ENUM));
    QVERIFY2(gl::s_lines.empty(), qPrintable(gl::Lines()));
    QVERIFY(Unlike(expected).isEmpty());
}

void tst_ZrGlSurfaceForeign::errorBeforeOnCreate()
{
    m_view = std::make_unique<GlView>();
    m_view->m_background = QStringLiteral(":/back_light.png");
    m_view->m_font.setPixelSize(16);
    RaiseError();
    m_view->OnCreate();
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_INVALID_ENUM));
    QVERIFY2(gl::s_lines.empty(), qPrintable(gl::Lines()));
    for (const GLuint program : m_view->m_programs)
        QVERIFY(program != 0);
    for (const GLuint tex : m_view->m_markers)
        QVERIFY(tex != 0);
    for (const GLuint tex : {m_view->m_palTex, m_view->m_fontTex, m_view->m_bgTex})
        QVERIFY(m_context->Functions()->glIsTexture(tex));
    QVERIFY(m_view->m_palCount >= 12);
}

void tst_ZrGlSurfaceForeign::errorBeforeOtherFunctions()
{
    const auto step = [this](const char* name, const std::function<bool()>& call) {
        RaiseError();
        const bool isDone = call();
        QVERIFY2(m_context->TakeErrors() == GL_INVALID_ENUM, name);
        QVERIFY2(isDone, name);
        QVERIFY2(gl::s_lines.empty(), qPrintable(gl::Lines()));
    };
    GLuint tex = 0;
    step("image", [&] { return m_view->ZrglLoadImageToTexture(QStringLiteral(":/back_fade.png"), tex); });
    QVERIFY(m_context->Functions()->glIsTexture(tex));
    int shaders[2] = {};
    step("vertex shader", [&] {
        shaders[0] = m_view->ZrglCompileShader(GL_VERTEX_SHADER, QStringLiteral(":/map.vsh"));
        return shaders[0] != 0;
    });
    step("fragment shader", [&] {
        shaders[1] = m_view->ZrglCompileShader(GL_FRAGMENT_SHADER, QStringLiteral(":/solid.fsh"));
        return shaders[1] != 0;
    });
    step("program", [&] { return m_view->ZrglLinkProgram(shaders[0], shaders[1]) != 0; });
    step("background", [&] {
        m_view->ZrglSetBackground(QStringLiteral(":/back_fade.png"));
        const QImage image
            = QImage(QStringLiteral(":/back_fade.png")).convertToFormat(QImage::Format_RGBA8888);
        return m_context->ReadTexture(m_view->m_bgTex, image.size()) == image;
    });
    step("palettes", [&] {
        m_view->m_palCount = 0;
        m_view->ZrglInitPalette();
        return m_view->m_palCount >= 12;
    });
    step("markers", [&] {
        m_view->m_markers.fill(0);
        m_view->ZrglInitMarkers();
        return m_view->m_markers[14] != 0;
    });
    step("font", [&] {
        QFont font = m_view->m_font;
        font.setPixelSize(31);
        m_view->ZrglSetFont(font);
        return m_view->m_glyphs[0].height == QFontMetrics(font).height();
    });
    step("viewport", [&] {
        m_view->ZrglSetViewport(1, 2, 3, 4);
        m_view->ZrGlClipToViewport();
        GLint seen[4] = {};
        m_context->Functions()->glGetIntegerv(GL_VIEWPORT, seen);
        return seen[0] == 1 && seen[1] == 2 && seen[2] == 3 && seen[3] == 4;
    });
    for (int i = 0; i <= ZrGlSurface::ProgramCount; ++i) {
        step("set program", [&] {
            m_view->ZrglSetPgm(static_cast<ZrGlSurface::eProgram>(i));
            const int last = std::min(i, ZrGlSurface::ProgramCount - 1);
            return m_view->m_program == m_view->m_programs[static_cast<std::size_t>(last)];
        });
    }
}

void tst_ZrGlSurfaceForeign::stateBeforeAPrimitive_data()
{
    AddPrimitives();
}

void tst_ZrGlSurfaceForeign::stateBeforeAPrimitive()
{
    QFETCH(std::size_t, index);
    const gl::Primitive primitive = gl::Primitives()[index];
    const QImage expected = Drawn(primitive);
    QOpenGLFunctions* f = m_context->Functions();
    // Another unit, textures, buffer, program and blending.
    const GLuint other = m_context->Texture(Filled(QSize(1, 1), Qt::magenta));
    for (GLenum unit = 0; unit < 4; ++unit) {
        f->glActiveTexture(GL_TEXTURE0 + unit);
        f->glBindTexture(GL_TEXTURE_2D, other);
    }
    GLuint buffer = 0;
    f->glGenBuffers(1, &buffer);
    f->glBindBuffer(GL_ARRAY_BUFFER, buffer);
    f->glUseProgram(m_view->m_programs[ZrGlSurface::luminance]);
    f->glBlendFunc(GL_ZERO, GL_ONE);
    primitive.draw(*m_view, m_white);
    QCOMPARE(m_context->TakeErrors(), GLenum(primitive.isRefused ? GL_INVALID_OPERATION : GL_NO_ERROR));
    const QString difference = Unlike(expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    GLint unit = 0;
    f->glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
    // One that takes no texture leaves the unit alone.
    QCOMPARE(unit, primitive.program == ZrGlSurface::solid ? GL_TEXTURE3 : GL_TEXTURE0);
    // Of other units only those that the program takes its textures from are touched.
    f->glActiveTexture(GL_TEXTURE3);
    GLint bound = 0;
    f->glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    QCOMPARE(static_cast<GLuint>(bound), other);
    f->glActiveTexture(GL_TEXTURE0);
    f->glDeleteBuffers(1, &buffer);
}

void tst_ZrGlSurfaceForeign::unitBeforeUploads()
{
    // Textures are made through whatever unit is active.
    QOpenGLFunctions* f = m_context->Functions();
    f->glActiveTexture(GL_TEXTURE2);
    const QImage image = Filled(QSize(5, 3), QColor(1, 2, 3, 4));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.png"));
    QVERIFY(image.save(path));
    GLuint tex = 0;
    QVERIFY(m_view->ZrglLoadImageToTexture(path, tex));
    QCOMPARE(m_context->ReadTexture(tex, image.size()), image);
    GLint unit = 0;
    f->glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
    QCOMPARE(unit, GL_TEXTURE2);
    f->glActiveTexture(GL_TEXTURE0);
}

void tst_ZrGlSurfaceForeign::namesOfALostContext()
{
    // In the context after it they belong to others.
    QFETCH_GLOBAL(gl::Api, api);
    m_context.reset();
    m_context = std::make_unique<gl::Context>(api);
    std::vector<GLuint> others;
    for (int i = 0; i < 40; ++i)
        others.push_back(m_context->Texture(Filled(QSize(1, 1), QColor(i, 0, 0))));
    Create();
    QSet<GLuint> own{m_view->m_palTex, m_view->m_fontTex, m_view->m_bgTex};
    for (const GLuint tex : m_view->m_markers)
        own.insert(tex);
    QCOMPARE(own.size(), 18);
    for (int i = 0; i < 40; ++i) {
        const GLuint tex = others[static_cast<std::size_t>(i)];
        QVERIFY(!own.contains(tex));
        QCOMPARE(m_context->ReadTexture(tex, QSize(1, 1)), Filled(QSize(1, 1), QColor(i, 0, 0)));
    }
}

GL_TEST_MAIN(tst_ZrGlSurfaceForeign)
#include "tst_ZrGlSurfaceForeign.moc"
