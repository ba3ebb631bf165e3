// Shader programs of layers: built once, looked up once.

#include "GlRecorder.h"
#include "GlView.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/map/ZrMapProgram.h"
#include "ZrKit/map/ZrMapSplit.h"
#include "ZrKit/map/ZrMapView.h"

#include <QtWidgets>

namespace {

using gl::Api;

const QString vertex = QStringLiteral(":/map_label.vsh");
const QString fragment = QStringLiteral(":/map_label.fsh");

GLuint Current(gl::Context& context)
{
    GLint program = 0;
    context.Functions()->glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    return static_cast<GLuint>(program);
}

int g_warnings = 0;

} // namespace

// Takes the place of the library's function.
void zr_debug_log_modern(int /*level*/, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* /*category*/, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* /*message*/)
{
    ++g_warnings;
}

class tst_ZrMapProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void buildsOnce();
    void setsTheMatrix();
    void looksUpOnce();
    void namesAreComparedByText();
    void unknownNames();
    void split();
    void failedProgramIsTriedOnce_data();
    void failedProgramIsTriedOnce();
    void releaseDeletes();
    void releaseOfNothing();
    void forgetBuildsAnew();

private:
    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<GlView> m_surface;
};

void tst_ZrMapProgram::initTestCase_data()
{
    QTest::addColumn<Api>("api");
    QTest::newRow("desktop") << Api::desktop;
    QTest::newRow("es") << Api::es;
}

void tst_ZrMapProgram::init()
{
    QFETCH_GLOBAL(Api, api);
    m_context = std::make_unique<gl::Context>(api);
    QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
    m_surface = std::make_unique<GlView>();
    m_surface->m_background = QStringLiteral(":/back_light.png");
    m_surface->OnCreate();
    m_context->TakeErrors();
}

void tst_ZrMapProgram::cleanup()
{
    if (m_context)
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    m_surface.reset();
    m_context.reset();
}

void tst_ZrMapProgram::buildsOnce()
{
    ZrMapProgram program(vertex, fragment);
    QVERIFY(program.Use(*m_surface));
    const GLuint name = Current(*m_context);
    QVERIFY(name != 0);
    m_context->Functions()->glUseProgram(0);
    QVERIFY(program.Use(*m_surface));
    QCOMPARE(Current(*m_context), name);
    program.Release(*m_surface);
}

void tst_ZrMapProgram::setsTheMatrix()
{
    ZrMapProgram program(vertex, fragment);
    QVERIFY(program.Use(*m_surface));
    m_surface->zrgl2dProjection(0, 10, 0, 20, aspectStretch);
    QVERIFY(program.Use(*m_surface));
    float matrix[16] = {};
    m_context->Functions()->glGetUniformfv(
        Current(*m_context), program.Uniform(*m_surface, "uMatrix"), matrix);
    for (int i = 0; i < 16; ++i)
        QCOMPARE(matrix[i], m_surface->m_proj.constData()[i]);
    program.Release(*m_surface);
}

void tst_ZrMapProgram::looksUpOnce()
{
    ZrMapProgram program(vertex, fragment);
    gl::Recorder recorder;
    for (int frame = 0; frame < 3; ++frame) {
        QVERIFY(program.Use(*m_surface));
        QVERIFY(program.Uniform(*m_surface, "uTexUnit") >= 0);
        QVERIFY(program.Attribute(*m_surface, "aPosition") >= 0);
        QVERIFY(program.Attribute(*m_surface, "aCorner") != program.Attribute(*m_surface, "aPosition"));
    }
    for (const int count : recorder.lookUps)
        QCOMPARE(count, 1);
    QCOMPARE(recorder.LookUpCount(), 4); // with uMatrix
    program.Release(*m_surface);
}

void tst_ZrMapProgram::namesAreComparedByText()
{
    ZrMapProgram program(vertex, fragment);
    QVERIFY(program.Use(*m_surface));
    QByteArray name("uHalf");
    const int half = program.Uniform(*m_surface, name.constData());
    QVERIFY(half >= 0);
    // The bytes are not the caller's any longer.
    name.fill('x');
    gl::Recorder recorder;
    QCOMPARE(program.Uniform(*m_surface, QByteArray("uHalf").constData()), half);
    QCOMPARE(recorder.LookUpCount(), 0);
    program.Release(*m_surface);
}

void tst_ZrMapProgram::unknownNames()
{
    ZrMapProgram program(vertex, fragment);
    QVERIFY(program.Use(*m_surface));
    gl::Recorder recorder;
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(program.Uniform(*m_surface, "uNothing"), -1);
        QCOMPARE(program.Attribute(*m_surface, "aNothing"), -1);
        QCOMPARE(program.Uniform(*m_surface, "aPosition"), -1);
        QCOMPARE(program.Uniform(*m_surface, ""), -1);
    }
    QCOMPARE(recorder.LookUpCount(), 4);
    program.Release(*m_surface);
}

void tst_ZrMapProgram::split()
{
    ZrMapView view;
    view.SetSize(64, 64);
    view.SetCentre({512345.678, 4812345.678});
    view.SetScale(0.01);
    const ZrMapSplit values(view);
    ZrMapProgram program(vertex, fragment);
    QVERIFY(program.Use(*m_surface));
    program.SetSplit(*m_surface, values);
    const auto shown = [&](const char* name) {
        float value = -1.0F;
        m_context->Functions()->glGetUniformfv(
            Current(*m_context), program.Uniform(*m_surface, name), &value);
        return value;
    };
    QCOMPARE(shown("uScale"), values.scale);
    QCOMPARE(shown("uScaleD"), values.scaleD);
    QCOMPARE(shown("uOriginX"), values.originX);
    QCOMPARE(shown("uOriginXd"), values.originXd);
    QCOMPARE(shown("uOriginY"), values.originY);
    QCOMPARE(shown("uOriginYd"), values.originYd);
    QCOMPARE(shown("uOffX"), values.offX);
    QCOMPARE(shown("uOffY"), values.offY);
    program.Release(*m_surface);
}

void tst_ZrMapProgram::failedProgramIsTriedOnce_data()
{
    QTest::addColumn<QString>("vertexName");
    QTest::addColumn<QString>("fragmentName");
    QTest::newRow("no vertex shader") << QStringLiteral(":/none.vsh") << fragment;
    QTest::newRow("no fragment shader") << vertex << QStringLiteral(":/none.fsh");
    QTest::newRow("no names") << QString() << QString();
    QTest::newRow("not a shader") << QStringLiteral(":/palettes.png") << fragment;
}

void tst_ZrMapProgram::failedProgramIsTriedOnce()
{
    QFETCH(QString, vertexName);
    QFETCH(QString, fragmentName);
    g_warnings = 0;
    ZrMapProgram program(vertexName, fragmentName);
    QVERIFY(!program.Use(*m_surface));
    const int told = g_warnings;
    QVERIFY(told >= 1);
    QVERIFY(!program.Use(*m_surface));
    QVERIFY(!program.Use(*m_surface));
    QCOMPARE(g_warnings, told);
    // A new context may do better.
    program.Release(*m_surface);
    QVERIFY(!program.Use(*m_surface));
    QCOMPARE(g_warnings, 2 * told);
}

void tst_ZrMapProgram::releaseDeletes()
{
    ZrMapProgram program(vertex, fragment);
    QVERIFY(program.Use(*m_surface));
    const GLuint name = Current(*m_context);
    m_context->Functions()->glUseProgram(0);
    program.Release(*m_surface);
    QVERIFY(!m_context->Functions()->glIsProgram(name));
    QVERIFY(program.Use(*m_surface));
    QVERIFY(Current(*m_context) != 0);
    program.Release(*m_surface);
}

void tst_ZrMapProgram::releaseOfNothing()
{
    ZrMapProgram program(vertex, fragment);
    program.Release(*m_surface);
    program.Release(*m_surface);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

/// In a new context nothing of the old one is used: neither the name nor the locations.
void tst_ZrMapProgram::forgetBuildsAnew()
{
    QFETCH_GLOBAL(Api, api);
    ZrMapProgram program(vertex, fragment);
    QVERIFY(program.Use(*m_surface));
    program.Uniform(*m_surface, "uHalf");
    m_surface.reset();
    m_context.reset();
    m_context = std::make_unique<gl::Context>(api);
    QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
    m_surface = std::make_unique<GlView>();
    m_surface->m_background = QStringLiteral(":/back_light.png");
    m_surface->OnCreate();
    m_context->TakeErrors();
    program.Forget();
    gl::Recorder recorder;
    QVERIFY(program.Use(*m_surface));
    QVERIFY(m_context->Functions()->glIsProgram(Current(*m_context)));
    QVERIFY(program.Uniform(*m_surface, "uHalf") >= 0);
    QCOMPARE(recorder.LookUpCount(), 2);
    program.Release(*m_surface);
}

GL_TEST_MAIN(tst_ZrMapProgram)
#include "tst_ZrMapProgram.moc"
