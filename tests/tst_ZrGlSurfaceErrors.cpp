// Shaders and programs that fail, contexts that are absent, lost or without pixels, and absurd arguments.

#include "GlPrimitives.h"
#include "GlRecorder.h"
#include "GlSurfaceTest.h"
#include "WithoutResource.h"

namespace {

constexpr const char* notCurrent = "The OpenGL context of the surface is not current, nothing is drawn";

} // namespace

class tst_ZrGlSurfaceErrors : public GlSurfaceTest
{
    Q_OBJECT

public:
    tst_ZrGlSurfaceErrors()
        : GlSurfaceTest(false)
    {
    }

private Q_SLOTS:
    void absurdArguments();
    void brokenShader();
    void whatFailsIsDeleted();
    void shaderOfNoKind();
    void missingShader();
    void linkWithoutShaders();
    void linkOfWhatIsNoShader();
    void linkThatFails();
    void failedProgramDrawsNothing_data();
    void failedProgramDrawsNothing();
    void withoutShaders();
    void withoutContext();
    void neverCreated();
    void contextLost();
    void sharedContext();
    void createdAgain();
    void everyLossIsLogged();
    void zeroViewport_data();
    void zeroViewport();
    void emptyViewportOfTheSurface();
    void tooLargeFont();
};

void tst_ZrGlSurfaceErrors::absurdArguments()
{
    Create();
    float nan[] = {NAN, 0, INFINITY, 1e38F};
    ZrGlTextBuffer empty;
    m_view->ZrglRenderPolyline(nan, 2, QColor());
    m_view->ZrglRenderPolyline(nan, 0, Qt::red);
    m_view->ZrglRenderPolyline(nan, -1, Qt::red);
    m_view->ZrglRenderPolyline(nullptr, 2, Qt::red);
    m_view->ZrglRenderVboLine(nullptr, 4);
    m_view->ZrglRenderVboLine(nan, 0);
    m_view->ZrglRenderVboLine(nan, 0xffffffffU);
    m_view->ZrglRenderVbo(nullptr, m_white, ZrGlSurface::texture);
    m_view->ZrglRenderVbo(nan, {}, static_cast<ZrGlSurface::eProgram>(-1));
    m_view->ZrglRenderPixelRect(-100, -100, -5, 2000000000, Qt::red);
    m_view->ZrglRenderMarker(NAN, INFINITY, NAN, -1, m_white, QColor(), -1, 99);
    m_view->ZrglRenderText(empty);
    m_view->ZrglSetViewport(0, 0, -5, -5);
    m_view->ZrGlClipToViewport();
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceErrors::brokenShader()
{
    Create();
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("broken.fsh")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("void main() { gl_FragColor = nothing; }\n");
    file.close();
    QCOMPARE(m_view->ZrglCompileShader(GL_FRAGMENT_SHADER, file.fileName()), 0);
    QCOMPARE(gl::s_lines.size(), std::size_t(1));
    QCOMPARE(gl::s_lines[0].level, 2);
    QCOMPARE(gl::s_lines[0].category, QStringLiteral("ZrUtil-ZrGlSurface"));
    QVERIFY2(gl::s_lines[0].text.contains(QLatin1String("nothing")), qPrintable(gl::s_lines[0].text));
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/map.vsh"), file.fileName()), 0);
    QVERIFY(file.resize(0));
    gl::s_lines.clear();
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/map.vsh"), file.fileName()), 0);
    QVERIFY(!gl::s_lines.empty());
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceErrors::whatFailsIsDeleted()
{
    Create();
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("broken.fsh")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("void main() { gl_FragColor = nothing; }\n");
    file.close();
    gl::Recorder recorder;
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/map.vsh"), file.fileName()), 0);
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/solid.vsh"), QStringLiteral(":/texture.fsh")), 0);
    QCOMPARE(m_view->ZrglLinkProgram(0, 0), 0);
    QVERIFY(recorder.shaders.isEmpty());
    QVERIFY(recorder.programs.isEmpty());
    // A program that was built is the caller's, and works without the shaders that it was linked from.
    const auto program = static_cast<GLuint>(
        m_view->ZrglBuildProgram(QStringLiteral(":/solid.vsh"), QStringLiteral(":/solid.fsh")));
    QVERIFY(recorder.shaders.isEmpty());
    QCOMPARE(recorder.programs, QSet<GLuint>({program}));
    m_context->Functions()->glUseProgram(program);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceErrors::shaderOfNoKind()
{
    Create();
    QCOMPARE(m_view->ZrglCompileShader(4711, QStringLiteral(":/map.vsh")), 0);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_INVALID_ENUM));
    QCOMPARE(gl::s_lines.size(), std::size_t(1));
    QCOMPARE(gl::s_lines[0].text, QStringLiteral("Cannot create a shader for :/map.vsh"));
}

void tst_ZrGlSurfaceErrors::missingShader()
{
    Create();
    QCOMPARE(m_view->ZrglCompileShader(GL_VERTEX_SHADER, QStringLiteral(":/none.vsh")), 0);
    QCOMPARE(gl::s_lines.size(), std::size_t(1));
    QCOMPARE(gl::s_lines[0].text, QStringLiteral("Cannot read shader :/none.vsh"));
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/none.vsh"), QStringLiteral(":/solid.fsh")), 0);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceErrors::linkWithoutShaders()
{
    Create();
    const int vertex = m_view->ZrglCompileShader(GL_VERTEX_SHADER, QStringLiteral(":/map.vsh"));
    QCOMPARE(m_view->ZrglLinkProgram(0, 0), 0);
    QCOMPARE(m_view->ZrglLinkProgram(vertex, 0), 0);
    QCOMPARE(gl::s_lines.size(), std::size_t(2));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceErrors::linkOfWhatIsNoShader()
{
    Create();
    const int vertex = m_view->ZrglCompileShader(GL_VERTEX_SHADER, QStringLiteral(":/map.vsh"));
    QVERIFY(vertex != 0);
    for (const int none : {987654, -1, static_cast<int>(m_view->m_programs[0])}) {
        QCOMPARE(m_view->ZrglLinkProgram(vertex, none), 0);
        QCOMPARE(m_view->ZrglLinkProgram(none, vertex), 0);
    }
    QCOMPARE(gl::s_lines.size(), std::size_t(6));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceErrors::linkThatFails()
{
    Create();
    // The texture shader wants coordinates that this one does not give.
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/solid.vsh"), QStringLiteral(":/texture.fsh")), 0);
    QCOMPARE(gl::s_lines.size(), std::size_t(1));
    QVERIFY2(gl::s_lines[0].text.contains(QLatin1String("vTexCoords")), qPrintable(gl::s_lines[0].text));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceErrors::failedProgramDrawsNothing_data()
{
    QTest::addColumn<std::size_t>("index");
    const std::vector<gl::Primitive> all = gl::Primitives();
    for (std::size_t i = 0; i < all.size(); ++i)
        QTest::newRow(all[i].name) << i;
}

void tst_ZrGlSurfaceErrors::failedProgramDrawsNothing()
{
    QFETCH(std::size_t, index);
    Create();
    const gl::Primitive primitive = gl::Primitives()[index];
    m_view->m_programs[static_cast<std::size_t>(primitive.program)] = 0;
    // Not even with the program that was current before.
    m_view->ZrglSetPgm(primitive.program == ZrGlSurface::solid ? ZrGlSurface::texture : ZrGlSurface::solid);
    gl::Recorder recorder;
    primitive.draw(*m_view, m_white);
    QVERIFY(recorder.draws.empty());
    QVERIFY(IsBlack());
    GLint current = -1;
    m_context->Functions()->glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    QCOMPARE(current, 0);
    QVERIFY(!m_context->Functions()->glIsEnabled(GL_BLEND));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    // Nothing else is stopped.
    QVERIFY(gl::s_lines.empty());
    m_view->ZrglInitShaders();
    m_view->ZrglRenderPixelRect(0, 0, 64, 64, Qt::green);
    QVERIFY(Unlike(Filled(Qt::green)).isEmpty());
}

void tst_ZrGlSurfaceErrors::withoutShaders()
{
    const resource::Without without(QStringLiteral(":/map.vsh"));
    QVERIFY(without.IsDone());
    m_view->m_background = QStringLiteral(":/back_light.png");
    m_view->OnCreate();
    for (const GLuint program : m_view->m_programs)
        QCOMPARE(program, 0U);
    // In the order in which they are built, the vertex shader first.
    QStringList expected;
    for (const char* name : {"solid", "texture", "alpha", "palette", "luminance", "colourkey", "yuvplanar"}) {
        const QString fragment = QString::fromLatin1(name);
        expected << QStringLiteral("Cannot read shader :/%1.vsh")
                        .arg(fragment == QLatin1String("solid") ? QStringLiteral("map")
                                                                : QStringLiteral("texture"))
                 << QStringLiteral("Cannot read shader :/%1.fsh").arg(fragment);
    }
    QCOMPARE(gl::Lines().split(QLatin1Char('\n')), expected);
    gl::DrawAll(*m_view, m_white);
    QVERIFY(IsBlack());
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceErrors::withoutContext()
{
    m_context->DoneCurrent();
    m_view->OnCreate();
    QCOMPARE(gl::s_lines.size(), std::size_t(1));
    QCOMPARE(gl::s_lines[0].category, QStringLiteral("ZrUtil-ZrGlSurface"));
    QCOMPARE(gl::s_lines[0].text, QStringLiteral("No OpenGL context is current, nothing will be drawn"));
    for (const GLuint program : m_view->m_programs)
        QCOMPARE(program, 0U);
    gl::DrawAll(*m_view, m_white);
    GLuint tex = 0;
    QVERIFY(!m_view->ZrglLoadImageToTexture(QStringLiteral(":/back_light.png"), tex));
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/map.vsh"), QStringLiteral(":/solid.fsh")), 0);
    QCOMPARE(m_view->ZrglLinkProgram(1, 2), 0);
    m_view->ZrglInitShaders();
    m_view->ZrglInitPalette();
    m_view->ZrglInitMarkers();
    m_view->ZrglSetFont(QFont());
    m_view->ZrglSetBackground(QStringLiteral(":/back_light.png"));
    QCOMPARE(m_view->m_background, QStringLiteral(":/back_light.png"));
    m_view->ZrGlClipToViewport();
    // It has been said.
    QCOMPARE(gl::s_lines.size(), std::size_t(1));
    QVERIFY(m_context->MakeCurrent());
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    QVERIFY(IsBlack());
}

void tst_ZrGlSurfaceErrors::neverCreated()
{
    // A context is there, but nobody has called `OnCreate`.
    gl::Recorder recorder;
    gl::DrawAll(*m_view, m_white);
    m_view->ZrGlClipToViewport();
    for (int i = -1; i <= ZrGlSurface::ProgramCount; ++i)
        m_view->ZrglSetPgm(static_cast<ZrGlSurface::eProgram>(i));
    m_view->ZrglInitShaders();
    m_view->ZrglInitPalette();
    m_view->ZrglInitMarkers();
    m_view->ZrglInitFont();
    m_view->ZrglSetBackground(QStringLiteral(":/back_light.png"));
    GLuint tex = 4711;
    QVERIFY(!m_view->ZrglLoadImageToTexture(QStringLiteral(":/back_light.png"), tex));
    QCOMPARE(tex, 4711U);
    QCOMPARE(m_view->ZrglCompileShader(GL_VERTEX_SHADER, QStringLiteral(":/map.vsh")), 0);
    QCOMPARE(m_view->ZrglLinkProgram(1, 2), 0);
    QVERIFY(!m_view->IsReady());
    QVERIFY(recorder.draws.empty());
    QVERIFY(recorder.programs.isEmpty() && recorder.shaders.isEmpty());
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    QCOMPARE(gl::Lines(), QString::fromLatin1(notCurrent));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    QVERIFY(IsBlack());
    // What was set before takes effect with `OnCreate`.
    gl::s_lines.clear();
    m_view->OnCreate();
    QVERIFY2(gl::s_lines.empty(), qPrintable(gl::Lines()));
    QVERIFY(m_view->IsReady() && m_view->m_bgTex != 0);
    QVERIFY(gl::DrawAll(*m_view, m_white) == recorder.draws.size());
}

void tst_ZrGlSurfaceErrors::contextLost()
{
    Create();
    m_context->DoneCurrent();
    // A font may be chosen all the same.
    m_view->ZrglSetFont(QFont());
    QVERIFY(gl::s_lines.empty());
    gl::DrawAll(*m_view, m_white);
    gl::DrawAll(*m_view, m_white);
    QCOMPARE(gl::Lines(), QString::fromLatin1(notCurrent));
    QVERIFY(m_context->MakeCurrent());
    QVERIFY(IsBlack());
    // In another context its objects and functions are not there.
    QFETCH_GLOBAL(gl::Api, api);
    const auto other = std::make_unique<gl::Context>(api);
    other->Clear(Qt::black);
    const auto drawAll = [&] {
        gl::DrawAll(*m_view, m_white);
        m_view->ZrGlClipToViewport();
        GLuint tex = 0;
        QVERIFY(!m_view->ZrglLoadImageToTexture(QStringLiteral(":/back_light.png"), tex));
        QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/map.vsh"), QStringLiteral(":/solid.fsh")), 0);
        QCOMPARE(gl::CountNot(other->Read(), Qt::black), 0);
        QCOMPARE(other->TakeErrors(), GLenum(GL_NO_ERROR));
    };
    drawAll();
    QVERIFY(m_context->MakeCurrent());
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    m_context.reset();
    QVERIFY(other->MakeCurrent());
    drawAll();
    QCOMPARE(gl::Lines(), QString::fromLatin1(notCurrent));
}

void tst_ZrGlSurfaceErrors::sharedContext()
{
    // What was made in a context is drawn in one that shares its objects.
    Create();
    QOffscreenSurface surface;
    surface.setFormat(m_context->Get()->format());
    surface.create();
    QOpenGLContext other;
    other.setFormat(m_context->Get()->format());
    other.setShareContext(m_context->Get());
    QVERIFY(other.create() && other.makeCurrent(&surface));
    {
        QOpenGLFramebufferObject buffer(m_size);
        QVERIFY(buffer.bind());
        m_view->ZrGlClipToViewport();
        m_view->ZrglRenderPixelRect(0, 0, 64, 64, Qt::green);
        QCOMPARE(gl::CountNot(buffer.toImage(), Qt::green), 0);
        QCOMPARE(other.functions()->glGetError(), GLenum(GL_NO_ERROR));
    }
    other.doneCurrent();
    QVERIFY(m_context->MakeCurrent());
    QVERIFY(gl::s_lines.empty());
}

void tst_ZrGlSurfaceErrors::createdAgain()
{
    Create();
    gl::DrawAll(*m_view, m_white);
    QFETCH_GLOBAL(gl::Api, api);
    m_context.reset();
    m_context = std::make_unique<gl::Context>(api);
    m_context->Clear(Qt::black);
    Create();
    QCOMPARE(m_view->m_program, 0U);
    {
        // The program that was current is gone: there is none to load a matrix into or to draw with.
        float corners[] = {0, 8.5F, 0, 0, 64, 8.5F, 0, 0};
        const gl::Recorder recorder;
        m_view->ZrglSetPgm(static_cast<ZrGlSurface::eProgram>(7));
        m_view->ZrglRenderVboLine(corners, 2);
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
        QVERIFY(recorder.draws.empty());
    }
    m_view->ZrglRenderPixelRect(0, 0, 64, 64, Qt::green);
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::green), 0);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfaceErrors::everyLossIsLogged()
{
    for (int i = 1; i <= 3; ++i) {
        m_view->OnCreate();
        gl::s_lines.clear();
        m_context->DoneCurrent();
        gl::DrawAll(*m_view, m_white);
        QCOMPARE(gl::Lines(), QString::fromLatin1(notCurrent));
        QVERIFY(m_context->MakeCurrent());
    }
}

void tst_ZrGlSurfaceErrors::zeroViewport_data()
{
    QTest::addColumn<std::size_t>("index");
    QTest::addColumn<QSize>("size");
    const std::vector<gl::Primitive> all = gl::Primitives();
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (const QSize& size : {QSize(0, 0), QSize(0, 64), QSize(64, 0)})
            QTest::addRow("%s, %d x %d", all[i].name, size.width(), size.height()) << i << size;
    }
}

void tst_ZrGlSurfaceErrors::zeroViewport()
{
    QFETCH(std::size_t, index);
    QFETCH(QSize, size);
    Create();
    m_view->ZrglSetViewport(QRect(QPoint(0, 0), size));
    for (const eAspect aspect : {aspectStretch, aspectFollowX, aspectFollowY, aspectAuto}) {
        m_view->zrgl2dProjection(0, 64, 0, 64, aspect);
        m_view->zrgl2dViewport(size.width(), size.height());
        m_view->ZrGlClipToViewport();
        const gl::Primitive primitive = gl::Primitives()[index];
        primitive.draw(*m_view, m_white);
        QCOMPARE(m_context->TakeErrors(), GLenum(primitive.isRefused ? GL_INVALID_OPERATION : GL_NO_ERROR));
    }
    QVERIFY(IsBlack());
    // Pixels again: all is well.
    m_view->ZrglSetViewport(0, 0, 64, 64);
    m_view->ZrGlClipToViewport();
    m_view->zrgl2dViewport(64, 64);
    m_view->zrgl2dProjection(0, 64, 0, 64, aspectStretch);
    auto quad = WholeView();
    m_view->ZrglRenderVbo(quad.data(), m_white, ZrGlSurface::texture);
    QVERIFY(Unlike(Filled(Qt::white)).isEmpty());
}

void tst_ZrGlSurfaceErrors::emptyViewportOfTheSurface()
{
    // GL has another one still: what is placed in pixels of the surface's has no place.
    Create();
    m_view->m_overlayTex = m_white;
    const QMatrix4x4 before = m_view->m_proj;
    for (const QSize& size : {QSize(0, 0), QSize(0, 64), QSize(64, 0), QSize(-3, -3)}) {
        m_view->ZrglSetViewport(QRect(QPoint(0, 0), size));
        const gl::Recorder recorder;
        m_view->ZrglRenderPixelRect(0, 0, 64, 64, Qt::red);
        m_view->ZrglRenderOverlay();
        m_view->ZrglRenderBackground();
        QVERIFY(recorder.draws.empty());
        QCOMPARE(m_view->m_proj, before);
    }
    QVERIFY(IsBlack());
}

void tst_ZrGlSurfaceErrors::tooLargeFont()
{
    Create();
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(4000);
    m_view->ZrglSetFont(font);
    QCOMPARE(gl::s_lines.size(), std::size_t(1));
    QVERIFY2(gl::s_lines[0].text.contains(QLatin1String("is larger than a texture may be: ")),
        qPrintable(gl::s_lines[0].text));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

GL_TEST_MAIN(tst_ZrGlSurfaceErrors)
#include "tst_ZrGlSurfaceErrors.moc"
