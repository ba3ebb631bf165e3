// Errors of OpenGL around an upload, in both kinds of context.

#include "GlRecorder.h"
#include "GlTest.h"
#include "ZrKit/map/ZrMapErrors.h"

#include <QtTest>

class tst_ZrMapErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void takesAll();
    void ofAnUpload();
    void lostContext();

private:
    std::unique_ptr<gl::Context> m_context;
};

void tst_ZrMapErrors::initTestCase_data()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL") << gl::Api::desktop;
    QTest::newRow("ES") << gl::Api::es;
}

void tst_ZrMapErrors::init()
{
    QFETCH_GLOBAL(gl::Api, api);
    m_context.reset();
    m_context = std::make_unique<gl::Context>(api, QSize(8, 8));
    QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
    m_context->TakeErrors();
}

void tst_ZrMapErrors::takesAll()
{
    QOpenGLFunctions& gl = *m_context->Functions();
    QCOMPARE(ZrMapErrors::Take(gl), GLenum(GL_NO_ERROR));
    gl.glEnable(GL_TEXTURE_BINDING_2D); // is none of the switches
    QCOMPARE(ZrMapErrors::Take(gl), GLenum(GL_INVALID_ENUM));
    QCOMPARE(gl.glGetError(), GLenum(GL_NO_ERROR));
}

void tst_ZrMapErrors::ofAnUpload()
{
    QOpenGLFunctions& gl = *m_context->Functions();
    const auto good = [&] { gl.glBindTexture(GL_TEXTURE_2D, 0); };
    const auto bad = [&] {
        gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, -1, -1, 0, GL_ALPHA, GL_UNSIGNED_BYTE, nullptr);
    };
    gl.glEnable(GL_TEXTURE_BINDING_2D);
    QCOMPARE(ZrMapErrors::Of(gl, good), GLenum(GL_NO_ERROR));
    gl.glEnable(GL_TEXTURE_BINDING_2D);
    QCOMPARE(ZrMapErrors::Of(gl, bad), GLenum(GL_INVALID_VALUE));
    QCOMPARE(gl.glGetError(), GLenum(GL_NO_ERROR));
    gl::Recorder recorder;
    recorder.isBufferMemoryOut = true;
    QCOMPARE(ZrMapErrors::Of(gl, [&] { gl.glBufferData(GL_ARRAY_BUFFER, 8, nullptr, GL_STATIC_DRAW); }),
        GLenum(GL_OUT_OF_MEMORY));
    QCOMPARE(recorder.error, GLenum(GL_NO_ERROR));
}

/// A lost context has an error for ever: asking ends all the same.
void tst_ZrMapErrors::lostContext()
{
    class Lost : private QOpenGLFunctions
    {
    public:
        Lost()
            : QOpenGLFunctions(QOpenGLContext::currentContext())
            , m_saved(d_ptr->f.GetError)
        {
            d_ptr->f.GetError = []() -> GLenum { return GL_INVALID_OPERATION; };
        }

        ~Lost() { d_ptr->f.GetError = m_saved; }

        Lost(const Lost&) = delete;
        Lost& operator=(const Lost&) = delete;

    private:
        decltype(QOpenGLFunctionsPrivate::f.GetError) m_saved;
    };

    const Lost lost;
    QCOMPARE(ZrMapErrors::Take(*m_context->Functions()), GLenum(GL_INVALID_OPERATION));
}

GL_TEST_MAIN(tst_ZrMapErrors)
#include "tst_ZrMapErrors.moc"
