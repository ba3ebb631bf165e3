// What each primitive asks of OpenGL, counted.

#include "GlPrimitives.h"
#include "GlRecorder.h"
#include "GlSurfaceTest.h"

class tst_ZrGlSurfaceCounts : public GlSurfaceTest
{
    Q_OBJECT

private Q_SLOTS:
    void primitive_data();
    void primitive();
    void fourProgramsAreBlended();
    void buffersOfOthersDoNotMatter();
    void locationsAreLookedUpOnce();
    void uploads();
    void manyTextsAreOneDraw();
    void longPolylineIsOneDraw();
    void nothingToDrawIsNoDraw();
    void kthTextureOnUnitK();
};

void tst_ZrGlSurfaceCounts::primitive_data()
{
    QTest::addColumn<std::size_t>("index");
    const std::vector<gl::Primitive> all = gl::Primitives();
    for (std::size_t i = 0; i < all.size(); ++i)
        QTest::newRow(all[i].name) << i;
}

void tst_ZrGlSurfaceCounts::primitive()
{
    QFETCH(std::size_t, index);
    const gl::Primitive expected = gl::Primitives()[index];
    QOpenGLFunctions* f = m_context->Functions();
    const QMatrix4x4 before = m_view->m_proj;
    for (const bool wasBlended : {false, true}) {
        if (wasBlended)
            f->glEnable(GL_BLEND);
        gl::Recorder recorder;
        expected.draw(*m_view, m_white);
        QCOMPARE(recorder.draws.size(), std::size_t(1));
        const gl::Recorder::DrawCall& call = recorder.draws[0];
        QCOMPARE(call.mode, expected.mode);
        QCOMPARE(call.count, expected.vertices);
        QCOMPARE(static_cast<GLuint>(call.program),
            m_view->m_programs[static_cast<std::size_t>(expected.program)]);
        // With the solid program blending is as it was found.
        QCOMPARE(
            call.isBlended, expected.isBlended || (wasBlended && expected.program == ZrGlSurface::solid));
        QCOMPARE(recorder.clientBytes, qint64(expected.bytes));
        QCOMPARE(recorder.uploadedBytes, qint64(0));

        QCOMPARE(f->glGetError(), GLenum(expected.isRefused ? GL_INVALID_OPERATION : GL_NO_ERROR));
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
        QVERIFY(!f->glIsEnabled(GL_BLEND));
        GLint value = 0;
        f->glGetIntegerv(GL_ACTIVE_TEXTURE, &value);
        QCOMPARE(value, GL_TEXTURE0);
        for (GLuint i = 0; i < 8; ++i) {
            f->glGetVertexAttribiv(i, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &value);
            QCOMPARE(value, 0);
        }
        QCOMPARE(m_view->m_proj, before);
    }
    if (expected.isBlended) {
        GLint value = 0;
        f->glGetIntegerv(GL_BLEND_SRC_RGB, &value);
        QCOMPARE(value, GL_SRC_ALPHA);
        f->glGetIntegerv(GL_BLEND_DST_RGB, &value);
        QCOMPARE(value, GL_ONE_MINUS_SRC_ALPHA);
    }
}

void tst_ZrGlSurfaceCounts::fourProgramsAreBlended()
{
    QOpenGLFunctions* f = m_context->Functions();
    auto quad = WholeView();
    const QSet<int> blended{
        ZrGlSurface::texture, ZrGlSurface::alpha, ZrGlSurface::luminance, ZrGlSurface::colourkey};
    for (int i = 0; i <= ZrGlSurface::ProgramCount; ++i) {
        for (const bool wasBlended : {false, true}) {
            if (wasBlended)
                f->glEnable(GL_BLEND);
            f->glBlendFunc(GL_ONE, GL_ONE);
            const gl::Recorder recorder;
            m_view->ZrglRenderVbo(quad.data(), {m_white}, static_cast<ZrGlSurface::eProgram>(i));
            QCOMPARE(recorder.draws.size(), std::size_t(1));
            QVERIFY2(recorder.draws[0].isBlended == blended.contains(i), qPrintable(QString::number(i)));
            QVERIFY(!f->glIsEnabled(GL_BLEND));
            // The function is set where it counts, and left alone elsewhere.
            GLint value = 0;
            f->glGetIntegerv(GL_BLEND_SRC_RGB, &value);
            QCOMPARE(value, blended.contains(i) ? GL_SRC_ALPHA : GL_ONE);
        }
    }
    m_context->TakeErrors();
}

void tst_ZrGlSurfaceCounts::buffersOfOthersDoNotMatter()
{
    // An application's own buffer is bound: what the primitives pass are arrays all the same.
    QOpenGLFunctions* f = m_context->Functions();
    GLuint buffer = 0;
    f->glGenBuffers(1, &buffer);
    f->glBindBuffer(GL_ARRAY_BUFFER, buffer);
    gl::Recorder recorder;
    m_view->ZrglRenderPixelRect(0, 0, 64, 64, Qt::green);
    QCOMPARE(recorder.clientBytes, qint64(32));
    QVERIFY(Unlike(Filled(Qt::green)).isEmpty());
}

void tst_ZrGlSurfaceCounts::locationsAreLookedUpOnce()
{
    gl::Recorder recorder;
    // Anew, for the recorder to see it from the beginning.
    m_view = std::make_unique<GlView>();
    Create();
    const auto frame = [this] {
        for (const gl::Primitive& primitive : gl::Primitives())
            primitive.draw(*m_view, m_white);
        m_context->TakeErrors();
    };
    frame();
    for (auto it = recorder.lookUps.cbegin(); it != recorder.lookUps.cend(); ++it)
        QVERIFY2(it.value() == 1, it.key().second.constData());
    for (const GLuint program : m_view->m_programs)
        QVERIFY(recorder.lookUps.contains({program, QByteArrayLiteral("uMatrix")}));
    recorder.Reset();
    const std::size_t perFrame = gl::Primitives().size();
    for (std::size_t i = 1; i <= 20; ++i) {
        frame();
        QCOMPARE(recorder.LookUpCount(), 0);
        QCOMPARE(recorder.uploadedBytes, qint64(0));
        QCOMPARE(recorder.draws.size(), i * perFrame);
    }
    // New programs, new locations.
    m_view->ZrglInitShaders();
    frame();
    QVERIFY(recorder.LookUpCount() > 0);
    recorder.Reset();
    frame();
    QCOMPARE(recorder.LookUpCount(), 0);
}

void tst_ZrGlSurfaceCounts::uploads()
{
    gl::Recorder recorder;
    m_view = std::make_unique<GlView>();
    Create();
    const auto bytes = [](const QString& path) {
        const QSize size = QImage(path).size();
        return qint64(4) * size.width() * size.height();
    };
    const ZrGlSurface::Glyph& g = m_view->m_glyphs[0];
    const qint64 atlas = qint64(4) * qRound(static_cast<float>(g.width) / (g.s1 - g.s0))
        * qRound(static_cast<float>(g.height) / (g.t1 - g.t0));
    QCOMPARE(recorder.uploadedBytes,
        bytes(QStringLiteral(":/palettes.png")) + 15 * bytes(QStringLiteral(":/marker_pin.png"))
            + bytes(QStringLiteral(":/back_light.png")) + atlas);
    // Each shader that a program was linked from is given back.
    QVERIFY(recorder.shaders.isEmpty());
    QCOMPARE(recorder.programs.size(), 7);
    recorder.Reset();
    m_view->ZrglSetFont(m_view->m_font);
    QCOMPARE(recorder.uploadedBytes, atlas);
    recorder.Reset();
    m_view->ZrglSetBackground(QStringLiteral(":/back_fade.png"));
    QCOMPARE(recorder.uploadedBytes, bytes(QStringLiteral(":/back_fade.png")));
    // Without a texture for it there is nowhere to put the atlas.
    recorder.Reset();
    m_view->m_fontTex = 0;
    m_view->ZrglSetFont(m_view->m_font);
    QCOMPARE(recorder.uploadedBytes, qint64(0));
}

void tst_ZrGlSurfaceCounts::manyTextsAreOneDraw()
{
    ZrGlTextBuffer buffer;
    for (int i = 0; i < 1000; ++i)
        m_view->ZrglAddText(buffer, static_cast<float>(i % 64), static_cast<float>(i / 16), 0,
            QStringLiteral("%1").arg(i, 4), 0);
    gl::Recorder recorder;
    m_view->ZrglRenderText(buffer);
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    QCOMPARE(recorder.vertices, qint64(24000));
    QCOMPARE(recorder.clientBytes, qint64(24000 * 16));
    QCOMPARE(recorder.uploadedBytes, qint64(0));
}

void tst_ZrGlSurfaceCounts::longPolylineIsOneDraw()
{
    std::vector<float> points(200000);
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = static_cast<float>(i % 64);
    gl::Recorder recorder;
    m_view->ZrglRenderPolyline(points.data(), 100000, Qt::white);
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    QCOMPARE(recorder.vertices, qint64(100000));
    QCOMPARE(recorder.draws[0].positions, points);
}

void tst_ZrGlSurfaceCounts::nothingToDrawIsNoDraw()
{
    gl::Recorder recorder;
    ZrGlTextBuffer empty;
    float quad[16] = {};
    m_view->ZrglRenderText(empty);
    m_view->ZrglRenderOverlay();
    m_view->ZrglRenderMarker(30, 30, 0, 10, 0, Qt::red, 0, ZrGlSurface::alpha);
    m_view->ZrglRenderPolyline(quad, 0, Qt::red);
    m_view->ZrglRenderVboLine(quad, 0);
    m_view->ZrglRenderVbo(nullptr, m_white, ZrGlSurface::texture);
    m_view->m_bgTex = 0;
    m_view->ZrglRenderBackground();
    QVERIFY(recorder.draws.empty());
}

void tst_ZrGlSurfaceCounts::kthTextureOnUnitK()
{
    QOpenGLFunctions* f = m_context->Functions();
    auto quad = WholeView();
    const unsigned tex[]
        = {m_context->AlphaTexture(1), m_context->AlphaTexture(2), m_context->AlphaTexture(3)};
    m_view->ZrglRenderVbo(quad.data(), {tex[0], tex[1], tex[2]}, ZrGlSurface::yuvplanar);
    for (unsigned unit = 0; unit < 3; ++unit) {
        GLint bound = 0;
        f->glActiveTexture(GL_TEXTURE0 + unit);
        f->glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        QCOMPARE(static_cast<unsigned>(bound), tex[unit]);
    }
    // None: what is bound stays.
    f->glActiveTexture(GL_TEXTURE0);
    m_view->ZrglRenderVbo(quad.data(), {}, ZrGlSurface::texture);
    GLint bound = 0;
    f->glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    QCOMPARE(static_cast<unsigned>(bound), tex[0]);
    QCOMPARE(m_view->m_program, m_view->m_programs[ZrGlSurface::texture]);
}

GL_TEST_MAIN(tst_ZrGlSurfaceCounts)
#include "tst_ZrGlSurfaceCounts.moc"
