// The waterfall layer where OpenGL fails, and what it leaves to others, in both kinds of context.

#include "GlRecorder.h"
#include "WaterfallLayerTest.h"
#include "WithoutResource.h"

namespace {

/// Makes every shader fail to compile.
class NoShaders : private QOpenGLFunctions
{
public:
    NoShaders()
        : QOpenGLFunctions(QOpenGLContext::currentContext())
    {
        s_saved = d_ptr->f.GetShaderiv;
        d_ptr->f.GetShaderiv = &GetShaderiv;
    }

    ~NoShaders() { d_ptr->f.GetShaderiv = s_saved; }

    NoShaders(const NoShaders&) = delete;
    NoShaders& operator=(const NoShaders&) = delete;

private:
    static void QOPENGLF_APIENTRY GetShaderiv(GLuint shader, GLenum name, GLint* value)
    {
        s_saved(shader, name, value);
        if (name == GL_COMPILE_STATUS)
            *value = GL_FALSE;
    }

    static inline decltype(QOpenGLFunctionsPrivate::f.GetShaderiv) s_saved = nullptr;
};

/// Makes every texture fail for want of memory.
class NoMemory : private QOpenGLFunctions
{
public:
    NoMemory()
        : QOpenGLFunctions(QOpenGLContext::currentContext())
    {
        s_saved = d_ptr->f.TexImage2D;
        d_ptr->f.TexImage2D = &TexImage2D;
    }

    ~NoMemory() { d_ptr->f.TexImage2D = s_saved; }

    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;

private:
    static void QOPENGLF_APIENTRY TexImage2D(GLenum target, GLint level, GLint inside, GLsizei, GLsizei,
        GLint border, GLenum format, GLenum type, const GLvoid* p)
    {
        s_saved(target, level, inside, -1, -1, border, format, type, p); // an error of GL's
    }

    static inline decltype(QOpenGLFunctionsPrivate::f.TexImage2D) s_saved = nullptr;
};

} // namespace

class tst_ZrWaterfallLayerContext : public WaterfallLayerTest
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data() { AddContexts(); }

    void init() { Begin(); }

    void cleanup() { End(); }

    void lostContext();
    void release();
    void noContext();
    void failedProgram();
    void shadersMissing();
    void palettesMissing();
    void noTextureMemory();
    void errorsOfOthers();
    void stateIsLeftClean();
};

void tst_ZrWaterfallLayerContext::lostContext()
{
    QFETCH_GLOBAL(gl::Api, api);
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const QImage before = Painted();
    m_surface.reset();
    m_context.reset();
    m_context = std::make_unique<gl::Context>(api, QSize(side, side));
    QVERIFY(m_context->Error().isEmpty());
    m_surface = std::make_unique<GlView>();
    m_surface->m_background = QStringLiteral(":/back_light.png");
    m_surface->OnCreate();
    QCOMPARE(gl::Difference(Painted(), before), QString());
    QVERIFY(gl::CountNot(before, background) > 0);
}

void tst_ZrWaterfallLayerContext::release()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const QImage before = Painted();
    GLint texture = 0;
    m_context->Functions()->glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
    QVERIFY(m_context->Functions()->glIsTexture(static_cast<GLuint>(texture)));
    m_layer->Release(*m_surface);
    QVERIFY(!m_context->Functions()->glIsTexture(static_cast<GLuint>(texture)));
    m_layer->Release(*m_surface);
    QCOMPARE(gl::Difference(Painted(), before), QString());
}

void tst_ZrWaterfallLayerContext::noContext()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    m_context->DoneCurrent();
    m_layer->Paint(*m_surface, m_view);
    GlView never; // OnCreate was not called
    QVERIFY(m_context->MakeCurrent());
    ZrWaterfallLayer layer;
    layer.m_view.rect = QRect(0, 0, side, side);
    layer.SetRing(&ring);
    const LogCapture log;
    layer.Paint(never, m_view);
    layer.Paint(never, m_view);
    QCOMPARE(log.Count("The OpenGL context of the surface is not current, nothing is drawn"), 1);
    QCOMPARE(s_lines.size(), 1);
    QCOMPARE(gl::CountNot(m_context->Read(), background), 0);
}

void tst_ZrWaterfallLayerContext::failedProgram()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const LogCapture log;
    {
        const NoShaders broken;
        Paint();
        Paint();
    }
    Paint(); // is not tried again
    QCOMPARE(gl::CountNot(m_context->Read(), background), 0);
    QCOMPARE(log.Count("Shader does not compile"), 2); // either shader once
}

void tst_ZrWaterfallLayerContext::shadersMissing()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const resource::Without without(QStringLiteral(":/waterfall.vsh"));
    QVERIFY(without.IsDone());
    const LogCapture log;
    Paint();
    Paint();
    QCOMPARE(gl::CountNot(m_context->Read(), background), 0);
    QCOMPARE(s_lines,
        QStringList({QStringLiteral("Cannot read shader :/waterfall.vsh"),
            QStringLiteral("Cannot read shader :/sidescan.fsh")}));
}

/// The surface has grey ones for want of them, and says so; the layer draws all the same.
void tst_ZrWaterfallLayerContext::palettesMissing()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    m_layer->m_palette = 7; // beyond the only one
    const resource::Without without(QStringLiteral(":/palettes.png"));
    QVERIFY(without.IsDone());
    QTest::ignoreMessage(
        QtDebugMsg, "zrglInitPalette, Cannot load palettes bitmap from resource, using default greyscale");
    m_surface->ZrglInitPalette();
    QCOMPARE(m_surface->m_palCount, 1);
    const LogCapture log;
    QVERIFY(gl::CountNot(Painted(), background) > 0);
    QCOMPARE(s_lines, QStringList());
}

void tst_ZrWaterfallLayerContext::noTextureMemory()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const LogCapture log;
    {
        const NoMemory full;
        Paint();
        Paint();
    }
    QCOMPARE(gl::CountNot(m_context->Read(), background), 0);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    QCOMPARE(log.Count("No textures of 32 by 64 for a waterfall"), 1);
}

/// An error that somebody left is not taken for a want of memory.
void tst_ZrWaterfallLayerContext::errorsOfOthers()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    m_context->Functions()->glEnable(GL_TEXTURE_BINDING_2D); // is none of the switches
    Paint();
    QVERIFY(gl::CountNot(m_context->Read(), background) > 0);
}

/// What follows finds blending off, no arrays, texture unit 0.
void tst_ZrWaterfallLayerContext::stateIsLeftClean()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    m_layer->m_alpha = 0.5F;
    Paint();
    QOpenGLFunctions* f = m_context->Functions();
    QVERIFY(!f->glIsEnabled(GL_BLEND));
    GLint unit = 0;
    f->glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
    QCOMPARE(unit, GLint(GL_TEXTURE0));
    for (GLuint i = 0; i < 8; ++i) {
        GLint enabled = 0;
        f->glGetVertexAttribiv(i, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
        QCOMPARE(enabled, 0);
    }
    m_surface->zrgl2dProjection(0, side, 0, side, aspectStretch);
    m_surface->m_rotation = 0.0F;
    m_surface->ZrglRenderPixelRect(0, 0, side, side, Qt::red);
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::red), 0);
}

GL_TEST_MAIN(tst_ZrWaterfallLayerContext)
#include "tst_ZrWaterfallLayerContext.moc"
