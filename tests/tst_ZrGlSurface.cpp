// The surface as a class, its programs and their uniforms, in both kinds of context.

#include "GlRecorder.h"
#include "GlSurfaceTest.h"

#include <type_traits>

namespace {

constexpr const char* uniformNames[] = {"uMatrix", "uColour", "uTexUnit", "uPalIndex", "uPalUnit", "uColKey",
    "uTexY", "uTexCb", "uTexCr", "uColourSpace"};

static_assert(std::is_base_of_v<QObject, ZrGlSurface> && std::is_base_of_v<ZrGl2dOrtho, ZrGlSurface>);
static_assert(std::is_abstract_v<ZrGlSurface>);
static_assert(ZrGlSurface::solid == 0 && ZrGlSurface::texture == 1 && ZrGlSurface::palette == 2
    && ZrGlSurface::alpha == 3 && ZrGlSurface::luminance == 4 && ZrGlSurface::colourkey == 5
    && ZrGlSurface::yuvplanar == 6);
static_assert(colSpaceBt601 == 1 && colSpaceBt709 == 2);

} // namespace

class tst_ZrGlSurface : public GlSurfaceTest
{
    Q_OBJECT

private Q_SLOTS:
    void constructed();
    void signalsInOrder();
    void cursorIsShared();
    void viewport();
    void colours();
    void programsBuild();
    void programsHaveTheirUniforms();
    void unitsAreSetAnew();
    void programMadeCurrentByText();
    void shaderResourceCompiles_data();
    void shaderResourceCompiles();
    void applicationProgramsBuild_data();
    void applicationProgramsBuild();
    void setPgmBeyondTheLast();
    void colourKeyErrorStays();
};

void tst_ZrGlSurface::constructed()
{
    const GlView view;
    QCOMPARE(view.m_clearColour, QColor(0, 0, 0, 255));
    QVERIFY(!view.m_colour.isValid());
    QVERIFY(!view.m_colKey.isValid());
    QVERIFY(view.m_background.isEmpty());
    QCOMPARE(view.m_palIndex, 1);
    QCOMPARE(view.m_palCount, 1);
    QCOMPARE(view.m_colourSpace, 0);
    QCOMPARE(view.m_pixelFactor, 1);
    for (const GLuint none : {view.m_overlayTex, view.m_palTex, view.m_bgTex, view.m_fontTex, view.m_program})
        QCOMPARE(none, 0U);
    for (const GLuint none : view.m_markers)
        QCOMPARE(none, 0U);
    for (const GLuint none : view.m_programs)
        QCOMPARE(none, 0U);
    QCOMPARE(view.m_glyphs.size(), std::size_t(94));
}

void tst_ZrGlSurface::signalsInOrder()
{
    const QMetaObject& meta = ZrGlSurface::staticMetaObject;
    const int first = meta.methodOffset();
    QCOMPARE(meta.method(first).methodSignature(), QByteArrayLiteral("Update()"));
    QCOMPARE(meta.method(first + 1).methodSignature(), QByteArrayLiteral("SetCursor(QCursor)"));
    for (int i = first; i < meta.methodCount(); ++i)
        QCOMPARE(meta.method(i).methodType() == QMetaMethod::Signal, i < first + 2);
}

void tst_ZrGlSurface::cursorIsShared()
{
    GlView other;
    QCOMPARE(&m_view->s_cursor, &other.s_cursor);
    ZrGlSurface::s_cursor.SetOwner(&other);
    QCOMPARE(ZrGlSurface::s_cursor.GetOwner(), static_cast<ZrGlSurface*>(&other));
    ZrGlSurface::s_cursor.SetOwner(nullptr);
    QVERIFY(!ZrGlSurface::s_cursor.GetOwner());
}

void tst_ZrGlSurface::viewport()
{
    m_view->ZrglSetViewport(QRect(3, 4, 50, 20));
    QCOMPARE(m_view->m_viewport, QRect(3, 4, 50, 20));
    m_view->ZrglSetViewport(5, 6, 7, 8);
    QCOMPARE(m_view->m_viewport, QRect(5, 6, 7, 8));
    GLint seen[4] = {};
    m_context->Functions()->glGetIntegerv(GL_VIEWPORT, seen);
    QCOMPARE(seen[2], 64);
    m_view->ZrGlClipToViewport();
    m_context->Functions()->glGetIntegerv(GL_VIEWPORT, seen);
    QVERIFY(seen[0] == 5 && seen[1] == 6 && seen[2] == 7 && seen[3] == 8);
}

void tst_ZrGlSurface::colours()
{
    m_view->ZrglSetColour(0.0F, 1.0F, 0.2F, 0.4F);
    QCOMPARE(m_view->m_colour, QColor(0, 255, 51, 102));
    m_view->ZrglSetColour(QColor(1, 2, 3, 4));
    QCOMPARE(m_view->m_colour, QColor(1, 2, 3, 4));
}

void tst_ZrGlSurface::programsBuild()
{
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
    // That of the colour key.
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_INVALID_OPERATION));
}

void tst_ZrGlSurface::unitsAreSetAnew()
{
    // Whoever else uses the programs may leave other units.
    QOpenGLFunctions* f = m_context->Functions();
    for (int i = ZrGlSurface::texture; i < ZrGlSurface::ProgramCount; ++i) {
        const GLuint program = m_view->m_programs[static_cast<std::size_t>(i)];
        f->glUseProgram(program);
        for (const char* name : {"uTexUnit", "uPalUnit", "uTexY", "uTexCb", "uTexCr"})
            f->glUniform1i(f->glGetUniformLocation(program, name), 5);
        m_view->ZrglSetPgm(static_cast<ZrGlSurface::eProgram>(i));
        m_context->TakeErrors();
        const QMap<QByteArray, int> expected{
            {"uTexUnit", 0}, {"uPalUnit", 1}, {"uTexY", 0}, {"uTexCb", 1}, {"uTexCr", 2}};
        for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
            const GLint at = f->glGetUniformLocation(program, it.key().constData());
            GLint unit = it.value();
            if (at >= 0)
                f->glGetUniformiv(program, at, &unit);
            QVERIFY2(unit == it.value(), it.key().constData());
        }
    }
}

void tst_ZrGlSurface::programMadeCurrentByText()
{
    m_view->ZrglSetPgm(ZrGlSurface::palette);
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 4, 4, 0, QStringLiteral("1"), 0);
    m_view->ZrglRenderText(buffer);
    GLint current = 0;
    m_context->Functions()->glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    QCOMPARE(static_cast<GLuint>(current), m_view->m_programs[ZrGlSurface::texture]);
    // It is not that of the last `ZrglSetPgm`, but the matrix goes to it.
    QCOMPARE(m_view->m_program, m_view->m_programs[ZrGlSurface::palette]);
    m_view->zrgl2dProjection(0, 40, 0, 20, aspectStretch);
    m_view->ZrglSetPgm(static_cast<ZrGlSurface::eProgram>(7));
    float matrix[16] = {};
    const auto program = static_cast<GLuint>(current);
    m_context->Functions()->glGetUniformfv(
        program, m_context->Functions()->glGetUniformLocation(program, "uMatrix"), matrix);
    QCOMPARE(matrix[0], 0.05F);
    QCOMPARE(matrix[5], 0.1F);
    QCOMPARE(m_view->m_program, m_view->m_programs[ZrGlSurface::palette]);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
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
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const int shader = m_view->ZrglCompileShader(type, name);
    QVERIFY2(shader != 0, qPrintable(gl::Lines()));
    QVERIFY(m_context->Functions()->glIsShader(static_cast<GLuint>(shader)));
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    QVERIFY(
        text.startsWith(QLatin1String("#ifdef GL_ES\nprecision mediump int;\nprecision mediump float;\n")));
    if (type == GL_VERTEX_SHADER) {
        // Positions do not fit into the default of the guard.
        const QRegularExpression declared(QStringLiteral("\\b(uniform|attribute) (?!highp )(?!int )"));
        QVERIFY(text.contains(QLatin1String("uniform highp mat4 uMatrix;")));
        QVERIFY2(!declared.match(text).hasMatch(), qPrintable(declared.match(text).captured()));
    }
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
    const int program = m_view->ZrglBuildProgram(QString::fromLatin1(QTest::currentDataTag()), fragment);
    QVERIFY2(program != 0, qPrintable(gl::Lines()));
    QVERIFY(m_context->Functions()->glIsProgram(static_cast<GLuint>(program)));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurface::setPgmBeyondTheLast()
{
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
    QOpenGLFunctions* f = m_context->Functions();
    m_view->m_colKey = QColor(255, 0, 254, 128);
    gl::Recorder recorder;
    m_view->ZrglSetPgm(ZrGlSurface::colourkey);
    QCOMPARE(f->glGetError(), GLenum(GL_INVALID_OPERATION));
    QCOMPARE(f->glGetError(), GLenum(GL_NO_ERROR));
    float key[4] = {9, 9, 9, 9};
    const GLuint program = m_view->m_program;
    const GLint at = f->glGetUniformLocation(program, "uColKey");
    f->glGetUniformfv(program, at, key);
    for (const float channel : key)
        QCOMPARE(channel, 0.0F);
    // The packed colour was asked for all the same.
    int count = 0;
    for (const gl::Recorder::IntUniform& uniform : recorder.ints) {
        if (uniform.location == at) {
            ++count;
            QCOMPARE(static_cast<uint>(uniform.value), 0x80ff00feU);
        }
    }
    QCOMPARE(count, 1);
}

GL_TEST_MAIN(tst_ZrGlSurface)
#include "tst_ZrGlSurface.moc"
