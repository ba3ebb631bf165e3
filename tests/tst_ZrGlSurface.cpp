// Programs, resources, errors and failures of the drawing surface, in both kinds of context.

#include "GlRecorder.h"
#include "GlView.h"
#include "WithoutResource.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrUtil/ZrTheme.h"

#include <QtWidgets>

namespace {

using gl::Api;

struct Line
{
    int level;
    QString category;
    QString text;
};

std::vector<Line> s_lines;
QStringList s_messages;

void Collect(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    s_messages << text;
}

QString Lines()
{
    QStringList texts;
    for (const Line& line : s_lines)
        texts << line.text;
    return texts.join(QLatin1Char('\n'));
}

constexpr const char* uniformNames[] = {"uMatrix", "uColour", "uTexUnit", "uPalIndex", "uPalUnit", "uColKey",
    "uTexY", "uTexCb", "uTexCr", "uColourSpace"};

} // namespace

// Takes the place of the library's function.
void zr_debug_log_modern(int level, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* category, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* message)
{
    s_lines.push_back({level, QString::fromUtf8(category), QString::fromUtf8(message)});
}

class tst_ZrGlSurface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void constructed();
    void programsBuild();
    void programsHaveTheirUniforms();
    void shaderResourceCompiles_data();
    void shaderResourceCompiles();
    void applicationProgramsBuild_data();
    void applicationProgramsBuild();
    void locationsAreLookedUpOnce();
    void oneDrawEach();
    void setPgmBeyondTheLast();
    void colourKeyErrorStays();
    void noOtherErrorIsPending();
    void brokenShader();
    void missingShader();
    void linkWithoutShaders();
    void linkThatFails();
    void failedProgramDrawsNothing();
    void withoutShaders();
    void withoutImages();
    void paletteFallback();
    void paletteCount_data();
    void paletteCount();
    void missingBackground();
    void imageToTexture();
    void damagedImage();
    void tooLargeImage();
    void tooLargeFont();
    void withoutContext();
    void contextLost();
    void createdAgain();
    void zeroViewport();

private:
    void Create();
    void DrawAll(GlView& view);

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<GlView> m_view;
    GLuint m_tex = 0;
};

void tst_ZrGlSurface::initTestCase_data()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL") << Api::desktop;
    QTest::newRow("ES") << Api::es;
}

void tst_ZrGlSurface::init()
{
    QFETCH_GLOBAL(gl::Api, api);
    ZrTheme::dp = 1.0F;
    zr_debug_log_level = 2;
    zr_debug_log_to_dbg = 1;
    s_lines.clear();
    s_messages.clear();
    m_context = std::make_unique<gl::Context>(api);
    QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
    m_context->Clear(Qt::black);
    m_view = std::make_unique<GlView>();
    QImage white(1, 1, QImage::Format_RGBA8888);
    white.fill(Qt::white);
    m_tex = m_context->Texture(white);
}

void tst_ZrGlSurface::cleanup()
{
    qInstallMessageHandler(nullptr);
    zr_debug_log_level = -1;
    zr_debug_log_to_dbg = 0;
    m_view.reset();
    m_context.reset();
}

/// The surface as an application makes it, with a background that is there.
void tst_ZrGlSurface::Create()
{
    m_view->m_background = QStringLiteral(":/back_light.png");
    m_view->OnCreate();
    QVERIFY2(s_lines.empty(), qPrintable(Lines()));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

/// Every primitive once, but for the colour key, which raises an error.
void tst_ZrGlSurface::DrawAll(GlView& view)
{
    float lines[] = {0, 0, 60, 60, 0, 60, 60, 0};
    float quad[] = {10, 10, 0, 0, 10, 50, 0, 1, 50, 10, 1, 0, 50, 50, 1, 1};
    ZrGlTextBuffer text;
    view.ZrglRenderBackground();
    view.ZrglRenderLine(0, 0, 60, 60, Qt::red);
    view.ZrglRenderPolyline(lines, 4, Qt::red);
    view.ZrglRenderVboLine(quad, 4);
    view.ZrglRenderPixelRect(3, 4, 10, 20, Qt::green);
    view.ZrglRenderVbo(quad, m_tex, ZrGlSurface::texture);
    view.ZrglRenderVbo(quad, m_tex, ZrGlSurface::palette);
    view.ZrglRenderVbo(quad, m_tex, ZrGlSurface::alpha);
    view.ZrglRenderVbo(quad, m_tex, ZrGlSurface::luminance);
    view.ZrglRenderVbo(quad, {m_tex, m_tex, m_tex}, ZrGlSurface::yuvplanar);
    view.ZrglRenderMarker(30, 30, 20, 10, m_tex, Qt::blue, 0, ZrGlSurface::alpha);
    view.ZrglAddText(text, 5, 5, 0, QStringLiteral("Depth"), 0);
    view.ZrglRenderText(text);
    view.m_overlayTex = m_tex;
    view.ZrglRenderOverlay();
}

constexpr std::size_t primitiveCount = 13;

void tst_ZrGlSurface::constructed()
{
    const GlView view;
    QCOMPARE(view.m_clearColour, QColor(0, 0, 0, 255));
    QVERIFY(!view.m_colour.isValid());
    QCOMPARE(view.m_palIndex, 1);
    QCOMPARE(view.m_palCount, 1);
    QCOMPARE(view.m_colourSpace, 0);
    QCOMPARE(view.m_overlayTex, 0U);
    QCOMPARE(view.m_pixelFactor, 1);
}

void tst_ZrGlSurface::programsBuild()
{
    Create();
    QSet<GLuint> different;
    for (const GLuint program : m_view->m_programs) {
        QVERIFY(program != 0);
        QVERIFY(m_context->Functions()->glIsProgram(program));
        different.insert(program);
    }
    QCOMPARE(different.size(), 7);
    for (const GLuint tex : m_view->m_markers)
        QVERIFY(tex != 0);
    QVERIFY(m_view->m_palTex != 0);
    QVERIFY(m_view->m_fontTex != 0);
    QVERIFY(m_view->m_bgTex != 0);
    QVERIFY(m_view->m_palCount >= 12);
}

void tst_ZrGlSurface::programsHaveTheirUniforms()
{
    Create();
    const QMap<int, QByteArrayList> expected = {
        {ZrGlSurface::solid, {"uMatrix", "uColour"}},
        {ZrGlSurface::texture, {"uMatrix", "uTexUnit"}},
        {ZrGlSurface::palette, {"uMatrix", "uTexUnit", "uPalIndex", "uPalUnit"}},
        {ZrGlSurface::alpha, {"uMatrix", "uTexUnit", "uColour"}},
        {ZrGlSurface::luminance, {"uMatrix", "uTexUnit"}},
        {ZrGlSurface::colourkey, {"uMatrix", "uTexUnit", "uColKey"}},
        {ZrGlSurface::yuvplanar, {"uMatrix", "uTexY", "uTexCb", "uTexCr", "uColourSpace"}},
    };
    QOpenGLFunctions* f = m_context->Functions();
    m_view->m_colour = QColor(51, 102, 153, 204);
    m_view->m_palIndex = 3;
    m_view->m_colourSpace = 2;
    for (int i = 0; i < ZrGlSurface::ProgramCount; ++i) {
        const GLuint program = m_view->m_programs[static_cast<std::size_t>(i)];
        for (const char* name : uniformNames)
            QVERIFY2((f->glGetUniformLocation(program, name) >= 0) == expected[i].contains(name), name);
        for (const char* name : {"uMap", "uScale", "uScaleD", "uOriginX", "uOriginXd", "uOriginY",
                 "uOriginYd", "uOffX", "uOffY", "aPosition"})
            QVERIFY2(
                f->glGetUniformLocation(program, name) >= 0 || f->glGetAttribLocation(program, name) >= 0,
                name);
        QCOMPARE(f->glGetAttribLocation(program, "aTexCoords") >= 0, i != ZrGlSurface::solid);

        m_view->ZrglSetPgm(static_cast<ZrGlSurface::eProgram>(i));
        QCOMPARE(m_view->m_program, program);
        GLint current = 0;
        f->glGetIntegerv(GL_CURRENT_PROGRAM, &current);
        QCOMPARE(static_cast<GLuint>(current), program);
        float matrix[16] = {};
        f->glGetUniformfv(program, f->glGetUniformLocation(program, "uMatrix"), matrix);
        for (int k = 0; k < 16; ++k)
            QCOMPARE(matrix[k], m_view->m_proj.constData()[k]);
        if (expected[i].contains("uColour")) {
            float colour[4] = {};
            f->glGetUniformfv(program, f->glGetUniformLocation(program, "uColour"), colour);
            for (int k = 0; k < 4; ++k)
                QVERIFY(std::fabs(colour[k] - 0.2F * static_cast<float>(k + 1)) < 1e-3F);
        }
        const auto intOf = [&](const char* name) {
            GLint value = -1;
            f->glGetUniformiv(program, f->glGetUniformLocation(program, name), &value);
            return value;
        };
        if (i == ZrGlSurface::palette) {
            float index = 0;
            f->glGetUniformfv(program, f->glGetUniformLocation(program, "uPalIndex"), &index);
            QVERIFY(std::fabs(index - 3.5F / static_cast<float>(m_view->m_palCount)) < 1e-3F);
            QCOMPARE(intOf("uPalUnit"), 1);
            GLint bound = 0;
            f->glActiveTexture(GL_TEXTURE1);
            f->glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
            f->glActiveTexture(GL_TEXTURE0);
            QCOMPARE(static_cast<GLuint>(bound), m_view->m_palTex);
        }
        if (i == ZrGlSurface::yuvplanar) {
            QCOMPARE(intOf("uTexY"), 0);
            QCOMPARE(intOf("uTexCb"), 1);
            QCOMPARE(intOf("uTexCr"), 2);
            QCOMPARE(intOf("uColourSpace"), 2);
        }
    }
}

void tst_ZrGlSurface::shaderResourceCompiles_data()
{
    QTest::addColumn<int>("type");
    for (const char* name : {":/solid.fsh", ":/texture.fsh", ":/video.fsh", ":/alpha.fsh", ":/palette.fsh",
             ":/luminance.fsh", ":/colourkey.fsh", ":/yuvplanar.fsh", ":/sidescan.fsh"})
        QTest::newRow(name) << GL_FRAGMENT_SHADER;
    for (const char* name : {":/solid.vsh", ":/map.vsh", ":/texture.vsh", ":/waterfall.vsh", ":/mosaic.vsh"})
        QTest::newRow(name) << GL_VERTEX_SHADER;
}

void tst_ZrGlSurface::shaderResourceCompiles()
{
    QFETCH(int, type);
    Create();
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const int shader = m_view->ZrglCompileShader(type, name);
    QVERIFY2(shader != 0, qPrintable(Lines()));
    QVERIFY(m_context->Functions()->glIsShader(static_cast<GLuint>(shader)));
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().startsWith("#ifdef GL_ES\nprecision mediump int;\nprecision mediump float;\n"));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::applicationProgramsBuild_data()
{
    QTest::addColumn<QString>("fragment");
    QTest::newRow(":/waterfall.vsh") << QStringLiteral(":/sidescan.fsh");
    QTest::newRow(":/mosaic.vsh") << QStringLiteral(":/sidescan.fsh");
    QTest::newRow(":/solid.vsh") << QStringLiteral(":/solid.fsh");
    QTest::newRow(":/texture.vsh") << QStringLiteral(":/video.fsh");
}

void tst_ZrGlSurface::applicationProgramsBuild()
{
    QFETCH(QString, fragment);
    Create();
    const int program = m_view->ZrglBuildProgram(QString::fromLatin1(QTest::currentDataTag()), fragment);
    QVERIFY2(program != 0, qPrintable(Lines()));
    QVERIFY(m_context->Functions()->glIsProgram(static_cast<GLuint>(program)));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::locationsAreLookedUpOnce()
{
    gl::Recorder recorder;
    Create();
    for (int i = 0; i < 3; ++i)
        DrawAll(*m_view);
    m_view->ZrglSetPgm(ZrGlSurface::colourkey);
    m_view->ZrglSetPgm(ZrGlSurface::colourkey);
    m_context->TakeErrors();
    for (auto it = recorder.lookUps.cbegin(); it != recorder.lookUps.cend(); ++it)
        QVERIFY2(it.value() == 1, it.key().second.constData());
    for (const GLuint program : m_view->m_programs)
        QVERIFY(recorder.lookUps.contains({program, QByteArrayLiteral("uMatrix")}));
    recorder.Reset();
    DrawAll(*m_view);
    QCOMPARE(recorder.LookUpCount(), 0);
    QCOMPARE(recorder.uploadedBytes, qint64(0));
}

void tst_ZrGlSurface::oneDrawEach()
{
    Create();
    gl::Recorder recorder;
    DrawAll(*m_view);
    QCOMPARE(recorder.draws.size(), primitiveCount);

    struct Expected
    {
        GLenum mode;
        int count;
        bool isBlended;
        ZrGlSurface::eProgram program;
    };

    const Expected expected[primitiveCount] = {
        {GL_TRIANGLE_STRIP, 4, true, ZrGlSurface::texture}, // background
        {GL_LINES, 2, false, ZrGlSurface::solid}, {GL_LINES, 4, false, ZrGlSurface::solid},
        {GL_LINE_LOOP, 4, false, ZrGlSurface::solid},
        {GL_TRIANGLE_STRIP, 4, false, ZrGlSurface::solid}, // pixel rectangle
        {GL_TRIANGLE_STRIP, 4, true, ZrGlSurface::texture},
        {GL_TRIANGLE_STRIP, 4, false, ZrGlSurface::palette}, {GL_TRIANGLE_STRIP, 4, true, ZrGlSurface::alpha},
        {GL_TRIANGLE_STRIP, 4, true, ZrGlSurface::luminance},
        {GL_TRIANGLE_STRIP, 4, false, ZrGlSurface::yuvplanar},
        {GL_TRIANGLE_STRIP, 4, true, ZrGlSurface::alpha}, // marker
        {GL_TRIANGLES, 30, true, ZrGlSurface::texture}, // five characters
        {GL_TRIANGLE_STRIP, 4, true, ZrGlSurface::texture}, // overlay
    };
    for (std::size_t i = 0; i < primitiveCount; ++i) {
        const gl::Recorder::DrawCall& call = recorder.draws[i];
        QVERIFY2(call.mode == expected[i].mode && call.count == expected[i].count
                && call.isBlended == expected[i].isBlended
                && static_cast<GLuint>(call.program)
                    == m_view->m_programs[static_cast<std::size_t>(expected[i].program)],
            qPrintable(QString::number(i)));
    }
    QVERIFY(!m_context->Functions()->glIsEnabled(GL_BLEND));
    GLint unit = 0;
    m_context->Functions()->glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
    QCOMPARE(unit, GL_TEXTURE0);
    // The colour key is blended too, and blending that was on is off where it does not belong.
    recorder.Reset();
    float quad[16] = {0, 0, 0, 0, 0, 9, 0, 1, 9, 0, 1, 0, 9, 9, 1, 1};
    m_view->ZrglRenderVbo(quad, m_tex, ZrGlSurface::colourkey);
    m_context->Functions()->glEnable(GL_BLEND);
    m_view->ZrglRenderVbo(quad, m_tex, ZrGlSurface::palette);
    QCOMPARE(recorder.draws.size(), std::size_t(2));
    QVERIFY(recorder.draws[0].isBlended);
    QVERIFY(!recorder.draws[1].isBlended);
    QVERIFY(!m_context->Functions()->glIsEnabled(GL_BLEND));
}

void tst_ZrGlSurface::setPgmBeyondTheLast()
{
    Create();
    QOpenGLFunctions* f = m_context->Functions();
    for (const int value : {7, 8, 1000}) {
        m_view->zrgl2dProjection(0, 10, 0, 10, aspectStretch);
        m_view->ZrglSetPgm(ZrGlSurface::texture);
        m_view->zrgl2dProjection(0, static_cast<float>(value), 0, 20, aspectStretch);
        m_view->ZrglSetPgm(static_cast<ZrGlSurface::eProgram>(value));
        QCOMPARE(m_view->m_program, m_view->m_programs[ZrGlSurface::texture]);
        GLint current = 0;
        f->glGetIntegerv(GL_CURRENT_PROGRAM, &current);
        QCOMPARE(static_cast<GLuint>(current), m_view->m_program);
        float matrix[16] = {};
        f->glGetUniformfv(m_view->m_program, f->glGetUniformLocation(m_view->m_program, "uMatrix"), matrix);
        QCOMPARE(matrix[0], 2.0F / static_cast<float>(value));
        QCOMPARE(matrix[5], 0.1F);
    }
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    // Before any program there is none to load it into.
    GlView fresh;
    f->glUseProgram(0);
    fresh.OnCreate();
    fresh.ZrglSetPgm(static_cast<ZrGlSurface::eProgram>(7));
    QCOMPARE(fresh.m_program, 0U);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::colourKeyErrorStays()
{
    Create();
    QOpenGLFunctions* f = m_context->Functions();
    m_view->m_colKey = QColor(255, 0, 255, 255);
    m_view->ZrglSetPgm(ZrGlSurface::colourkey);
    QCOMPARE(f->glGetError(), GLenum(GL_INVALID_OPERATION));
    QCOMPARE(f->glGetError(), GLenum(GL_NO_ERROR));
    float key[4] = {9, 9, 9, 9};
    const GLuint program = m_view->m_program;
    f->glGetUniformfv(program, f->glGetUniformLocation(program, "uColKey"), key);
    for (const float channel : key)
        QCOMPARE(channel, 0.0F);
}

void tst_ZrGlSurface::noOtherErrorIsPending()
{
    Create();
    gl::Recorder recorder;
    DrawAll(*m_view);
    QCOMPARE(recorder.draws.size(), primitiveCount);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    // Nothing to draw, or absurd.
    float nan[] = {NAN, 0, INFINITY, 1e38F};
    ZrGlTextBuffer empty;
    m_view->ZrglRenderPolyline(nan, 2, QColor());
    m_view->ZrglRenderPolyline(nan, 0, Qt::red);
    m_view->ZrglRenderPolyline(nan, -1, Qt::red);
    m_view->ZrglRenderPolyline(nullptr, 2, Qt::red);
    m_view->ZrglRenderVboLine(nullptr, 4);
    m_view->ZrglRenderVboLine(nan, 0);
    m_view->ZrglRenderVboLine(nan, 0xffffffffU);
    m_view->ZrglRenderVbo(nullptr, m_tex, ZrGlSurface::texture);
    m_view->ZrglRenderVbo(nan, {}, static_cast<ZrGlSurface::eProgram>(-1));
    m_view->ZrglRenderPixelRect(-100, -100, -5, 2000000000, Qt::red);
    m_view->ZrglRenderMarker(NAN, INFINITY, NAN, -1, m_tex, QColor(), -1, 99);
    m_view->ZrglRenderText(empty);
    m_view->ZrglSetViewport(0, 0, -5, -5);
    m_view->ZrGlClipToViewport();
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::brokenShader()
{
    Create();
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("broken.fsh")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("void main() { gl_FragColor = nothing; }\n");
    file.close();
    QCOMPARE(m_view->ZrglCompileShader(GL_FRAGMENT_SHADER, file.fileName()), 0);
    QCOMPARE(s_lines.size(), std::size_t(1));
    QCOMPARE(s_lines[0].level, 2);
    QCOMPARE(s_lines[0].category, QStringLiteral("ZrUtil-ZrGlSurface"));
    QVERIFY2(s_lines[0].text.contains(QLatin1String("nothing")), qPrintable(s_lines[0].text));
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/map.vsh"), file.fileName()), 0);
    QVERIFY(file.resize(0));
    s_lines.clear();
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/map.vsh"), file.fileName()), 0);
    QVERIFY(!s_lines.empty());
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::missingShader()
{
    Create();
    QCOMPARE(m_view->ZrglCompileShader(GL_VERTEX_SHADER, QStringLiteral(":/none.vsh")), 0);
    QCOMPARE(s_lines.size(), std::size_t(1));
    QVERIFY(s_lines[0].text.contains(QLatin1String(":/none.vsh")));
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/none.vsh"), QStringLiteral(":/solid.fsh")), 0);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::linkWithoutShaders()
{
    Create();
    const int vertex = m_view->ZrglCompileShader(GL_VERTEX_SHADER, QStringLiteral(":/map.vsh"));
    QCOMPARE(m_view->ZrglLinkProgram(0, 0), 0);
    QCOMPARE(m_view->ZrglLinkProgram(vertex, 0), 0);
    QCOMPARE(s_lines.size(), std::size_t(2));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::linkThatFails()
{
    Create();
    // The texture shader wants coordinates that this one does not give.
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/solid.vsh"), QStringLiteral(":/texture.fsh")), 0);
    QCOMPARE(s_lines.size(), std::size_t(1));
    QVERIFY2(s_lines[0].text.contains(QLatin1String("vTexCoords")), qPrintable(s_lines[0].text));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::failedProgramDrawsNothing()
{
    Create();
    m_view->m_programs.fill(0);
    DrawAll(*m_view);
    float quad[16] = {0, 0, 0, 0, 0, 64, 0, 1, 64, 0, 1, 0, 64, 64, 1, 1};
    m_view->ZrglRenderVbo(quad, m_tex, ZrGlSurface::colourkey);
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::black), 0);
    QCOMPARE(m_view->m_program, 0U);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::withoutShaders()
{
    const resource::Without without(QStringLiteral(":/map.vsh"));
    QVERIFY(without.IsDone());
    m_view->m_background = QStringLiteral(":/back_light.png");
    m_view->OnCreate();
    for (const GLuint program : m_view->m_programs)
        QCOMPARE(program, 0U);
    QCOMPARE(s_lines.size(), std::size_t(14));
    DrawAll(*m_view);
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::black), 0);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::withoutImages()
{
    const resource::Without without(QStringLiteral(":/marker_pin.png"));
    QVERIFY(without.IsDone());
    qInstallMessageHandler(Collect);
    m_view->m_background = QStringLiteral(":/back_light.png");
    m_view->OnCreate();
    qInstallMessageHandler(nullptr);
    for (const GLuint tex : m_view->m_markers)
        QCOMPARE(tex, 0U);
    QCOMPARE(m_view->m_bgTex, 0U);
    // Each marker, and the background.
    QCOMPARE(s_lines.size(), std::size_t(16));
    QVERIFY(s_lines[0].text.contains(QLatin1String(":/marker_alpha.png")));
    m_view->ZrglRenderBackground();
    m_view->ZrglRenderMarker(30, 30, 0, 20, m_view->m_markers[0], Qt::red, 0, ZrGlSurface::alpha);
    m_view->ZrglRenderOverlay();
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::black), 0);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::paletteFallback()
{
    const resource::Without without(QStringLiteral(":/palettes.png"));
    QVERIFY(without.IsDone());
    m_view->OnCreate();
    qInstallMessageHandler(Collect);
    m_view->m_palCount = 5;
    m_view->ZrglInitPalette();
    qInstallMessageHandler(nullptr);
    QCOMPARE(s_messages,
        QStringList(QStringLiteral(
            "zrglInitPalette, Cannot load palettes bitmap from resource, using default greyscale")));
    QCOMPARE(m_view->m_palCount, 1);
    const QImage image = m_context->ReadTexture(m_view->m_palTex, QSize(256, 256));
    QVERIFY(!image.isNull());
    // 256 rows of bytes 0 to 255 one behind the other, then three of 255 that the last entry left.
    const uchar* bytes = image.constBits();
    for (int i = 0; i < 256 * 256 * 4; ++i) {
        const int expected = i < 256 * 256 ? i % 256 : i < 256 * 256 + 3 ? 255 : 0;
        if (bytes[i] != expected)
            QVERIFY2(false, qPrintable(QString::number(i)));
    }
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::paletteCount_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("25") << 2;
    QTest::newRow("10") << 1;
    QTest::newRow("9") << 0;
    QTest::newRow("120") << 12;
}

void tst_ZrGlSurface::paletteCount()
{
    QFETCH(int, count);
    const QByteArray tag(QTest::currentDataTag());
    QImage image(256, tag.toInt(), QImage::Format_RGBA8888);
    image.fill(Qt::red);
    QTemporaryDir dir;
    QVERIFY(image.save(dir.filePath(QStringLiteral("palettes.png"))));
    QFile list(dir.filePath(QStringLiteral("p.qrc")));
    QVERIFY(list.open(QIODevice::WriteOnly));
    list.write("<RCC><qresource prefix=\"/\"><file>palettes.png</file></qresource></RCC>");
    list.close();
    const QString compiled = dir.filePath(QStringLiteral("p.rcc"));
    QCOMPARE(QProcess::execute(QStringLiteral(ZR_RCC),
                 {QStringLiteral("--binary"), list.fileName(), QStringLiteral("-o"), compiled}),
        0);
    const resource::Without without(QStringLiteral(":/palettes.png"));
    QVERIFY(without.IsDone());
    QVERIFY(QResource::registerResource(compiled));
    m_view->OnCreate();
    QVERIFY(QResource::unregisterResource(compiled));
    QCOMPARE(m_view->m_palCount, count);
    QCOMPARE(m_context->ReadTexture(m_view->m_palTex, image.size()), image);
    float quad[16] = {0, 0, 0, 0, 0, 64, 0, 1, 64, 0, 1, 0, 64, 64, 1, 1};
    m_view->ZrglRenderVbo(quad, m_tex, ZrGlSurface::palette);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::missingBackground()
{
    Create();
    const GLuint before = m_view->m_bgTex;
    m_view->ZrglSetBackground(QStringLiteral("/no/\u00fcber.png"));
    QCOMPARE(s_lines.size(), std::size_t(1));
    QCOMPARE(s_lines[0].level, 2);
    QCOMPARE(s_lines[0].category, QStringLiteral("ZrUtil-ZrGlSurface"));
    QCOMPARE(s_lines[0].text, QStringLiteral("Background image load failed: /no/\u00fcber.png"));
    QCOMPARE(m_view->m_bgTex, before);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::imageToTexture()
{
    Create();
    GLuint tex = 4711;
    QVERIFY(!m_view->ZrglLoadImageToTexture(QStringLiteral(":/none.png"), tex));
    QCOMPARE(tex, 4711U);
    // Three pixels of three bytes: rows that are not multiples of four.
    QImage image(3, 2, QImage::Format_RGB888);
    for (int i = 0; i < 6; ++i)
        image.setPixelColor(i % 3, i / 3, QColor(40 * i, 255 - 40 * i, i));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.png"));
    QVERIFY(image.save(path));
    QVERIFY(m_view->ZrglLoadImageToTexture(path, tex));
    QCOMPARE(m_context->ReadTexture(tex, image.size()), image.convertToFormat(QImage::Format_RGBA8888));
    QOpenGLFunctions* f = m_context->Functions();
    f->glBindTexture(GL_TEXTURE_2D, tex);
    const auto parameter = [f](GLenum name) {
        GLint value = 0;
        f->glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
        return value;
    };
    QCOMPARE(parameter(GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
    QCOMPARE(parameter(GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
    QCOMPARE(parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    QCOMPARE(parameter(GL_TEXTURE_MIN_FILTER), GL_LINEAR);
    for (const GLuint other : {m_view->m_palTex, m_view->m_bgTex, m_view->m_fontTex, m_view->m_markers[14]}) {
        f->glBindTexture(GL_TEXTURE_2D, other);
        QCOMPARE(parameter(GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
        QCOMPARE(parameter(GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
        QCOMPARE(parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
        QCOMPARE(parameter(GL_TEXTURE_MIN_FILTER), GL_NEAREST);
    }
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::damagedImage()
{
    Create();
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("a.png")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("\x89PNG\r\n\x1a\n and no more");
    file.close();
    GLuint tex = 0;
    QVERIFY(!m_view->ZrglLoadImageToTexture(file.fileName(), tex));
    m_view->ZrglSetBackground(file.fileName());
    QCOMPARE(s_lines.size(), std::size_t(1));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::tooLargeImage()
{
    Create();
    GLint most = 0;
    m_context->Functions()->glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    QImage image(most + 1, 1, QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("wide.png"));
    QVERIFY(image.save(path));
    GLuint tex = 0;
    QVERIFY(!m_view->ZrglLoadImageToTexture(path, tex));
    QCOMPARE(tex, 0U);
    QVERIFY(!s_lines.empty());
    s_lines.clear();
    m_view->ZrglSetBackground(path);
    QVERIFY(Lines().contains(QLatin1String("Background image load failed: ") + path));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::tooLargeFont()
{
    Create();
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(4000);
    m_view->ZrglSetFont(font);
    QVERIFY(!s_lines.empty());
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::withoutContext()
{
    m_context->DoneCurrent();
    m_view->OnCreate();
    QCOMPARE(s_lines.size(), std::size_t(1));
    QCOMPARE(s_lines[0].category, QStringLiteral("ZrUtil-ZrGlSurface"));
    for (const GLuint program : m_view->m_programs)
        QCOMPARE(program, 0U);
    DrawAll(*m_view);
    GLuint tex = 0;
    QVERIFY(!m_view->ZrglLoadImageToTexture(QStringLiteral(":/back_light.png"), tex));
    QCOMPARE(m_view->ZrglBuildProgram(QStringLiteral(":/map.vsh"), QStringLiteral(":/solid.fsh")), 0);
    m_view->ZrglInitShaders();
    m_view->ZrglInitPalette();
    m_view->ZrglInitMarkers();
    m_view->ZrglSetBackground(QStringLiteral(":/back_light.png"));
    m_view->ZrGlClipToViewport();
    QVERIFY(m_context->MakeCurrent());
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::black), 0);
}

void tst_ZrGlSurface::contextLost()
{
    Create();
    m_context->DoneCurrent();
    DrawAll(*m_view);
    m_view->ZrglSetFont(QFont());
    QVERIFY(m_context->MakeCurrent());
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::black), 0);
    QFETCH_GLOBAL(gl::Api, api);
    m_context = std::make_unique<gl::Context>(api);
    m_view.reset();
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::createdAgain()
{
    Create();
    DrawAll(*m_view);
    QFETCH_GLOBAL(gl::Api, api);
    m_context.reset();
    m_context = std::make_unique<gl::Context>(api);
    m_context->Clear(Qt::black);
    Create();
    QCOMPARE(m_view->m_program, 0U);
    m_view->ZrglRenderPixelRect(0, 0, 64, 64, Qt::green);
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::green), 0);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::zeroViewport()
{
    Create();
    m_view->ZrglSetViewport(0, 0, 0, 0);
    m_view->zrgl2dViewport(0, 0);
    m_view->ZrGlClipToViewport();
    DrawAll(*m_view);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::black), 0);
}

GL_TEST_MAIN(tst_ZrGlSurface)
#include "tst_ZrGlSurface.moc"
