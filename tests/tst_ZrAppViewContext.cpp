// Work with the context of the application's window outside of painting.

#include "GlTest.h"
#include "ZrGlPages.h"

class tst_ZrAppViewContext : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void contextIsMadeAndReleased();
    void contextIsLeftAlone();
    void contextOfAnother();
    void nestedCalls();
    void exceptionReleasesTheContext();
    void emptyFunctions();
    void contextAfterTheWindow();
    void vsyncOfTheNextWindow();
    void contextMadeAnew();

private:
    std::unique_ptr<ZrAppState> m_state;
    std::unique_ptr<ZrGlView> m_view;
};

void tst_ZrAppViewContext::init()
{
    m_state = std::make_unique<ZrAppState>();
    m_view = std::make_unique<ZrGlView>();
}

void tst_ZrAppViewContext::cleanup()
{
    m_view.reset();
    m_state.reset();
}

void tst_ZrAppViewContext::contextIsMadeAndReleased()
{
    QVERIFY(m_view->Open());
    ReleaseContext();
    QOpenGLContext* inside = nullptr;
    QOpenGLFunctions* given = nullptr;
    GLint size = 0;
    ZrAppView::with_gl_context(std::function<void(QOpenGLFunctions&)>([&](QOpenGLFunctions& f) {
        inside = QOpenGLContext::currentContext();
        given = &f;
        f.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &size);
    }));
    QCOMPARE(inside, m_view->context());
    QCOMPARE(given, static_cast<QOpenGLFunctions*>(m_view.get()));
    QVERIFY(size >= 64);
    QVERIFY(!QOpenGLContext::currentContext());
    inside = nullptr;
    ZrAppView::with_gl_context(std::function<void()>([&] { inside = QOpenGLContext::currentContext(); }));
    QCOMPARE(inside, m_view->context());
    QVERIFY(!QOpenGLContext::currentContext());
}

void tst_ZrAppViewContext::contextIsLeftAlone()
{
    QVERIFY(m_view->Open());
    m_view->makeCurrent();
    int calls = 0;
    QOpenGLFunctions* given = nullptr;
    ZrAppView::with_gl_context(std::function<void()>([&] { ++calls; }));
    QCOMPARE(QOpenGLContext::currentContext(), m_view->context());
    ZrAppView::with_gl_context(std::function<void(QOpenGLFunctions&)>([&](QOpenGLFunctions& f) {
        given = &f;
        ++calls;
    }));
    QCOMPARE(QOpenGLContext::currentContext(), m_view->context());
    QCOMPARE(given, static_cast<QOpenGLFunctions*>(m_view.get()));
    QCOMPARE(calls, 2);
    m_view->doneCurrent();
}

void tst_ZrAppViewContext::contextOfAnother()
{
    QVERIFY(m_view->Open());
    const std::function<void(QOpenGLContext*)> check = [](QOpenGLContext* other) {
        QOpenGLContext* inside = nullptr;
        GLint size = 0;
        ZrAppView::with_gl_context(std::function<void(QOpenGLFunctions&)>([&](QOpenGLFunctions& f) {
            inside = QOpenGLContext::currentContext();
            f.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &size);
        }));
        QCOMPARE(inside, other);
        QVERIFY(size >= 64);
        QCOMPARE(QOpenGLContext::currentContext(), other);
    };
    gl::Context other(gl::Api::desktop);
    QVERIFY2(other.Error().isEmpty(), qPrintable(other.Error()));
    check(other.Get());
    // Without a view the functions are those of the context.
    m_view.reset();
    QVERIFY(other.MakeCurrent());
    check(other.Get());
}

void tst_ZrAppViewContext::nestedCalls()
{
    QVERIFY(m_view->Open());
    ReleaseContext();
    QVector<QOpenGLContext*> seen;
    ZrAppView::with_gl_context(std::function<void()>([&] {
        ZrAppView::with_gl_context(
            std::function<void()>([&] { seen.append(QOpenGLContext::currentContext()); }));
        seen.append(QOpenGLContext::currentContext());
    }));
    QCOMPARE(seen, (QVector<QOpenGLContext*>{m_view->context(), m_view->context()}));
    QVERIFY(!QOpenGLContext::currentContext());
}

void tst_ZrAppViewContext::exceptionReleasesTheContext()
{
    QVERIFY(m_view->Open());
    ReleaseContext();
    QVERIFY_EXCEPTION_THROWN(
        ZrAppView::with_gl_context(std::function<void()>([] { throw std::bad_alloc(); })), std::bad_alloc);
    QVERIFY(!QOpenGLContext::currentContext());
}

void tst_ZrAppViewContext::emptyFunctions()
{
    QVERIFY(m_view->Open());
    ReleaseContext();
    ZrAppView::with_gl_context(std::function<void()>());
    ZrAppView::with_gl_context(std::function<void(QOpenGLFunctions&)>());
    QVERIFY(!QOpenGLContext::currentContext());
    m_view->makeCurrent();
    ZrAppView::with_gl_context(std::function<void()>());
    ZrAppView::with_gl_context(std::function<void(QOpenGLFunctions&)>());
    QCOMPARE(QOpenGLContext::currentContext(), m_view->context());
    m_view->doneCurrent();
}

void tst_ZrAppViewContext::contextAfterTheWindow()
{
    QVERIFY(m_view->Open());
    m_view->close();
    ReleaseContext();
    // A hidden window keeps its context.
    int calls = 0;
    const std::function<void()> count = [&] { calls += QOpenGLContext::currentContext() ? 1 : 0; };
    ZrAppView::with_gl_context(count);
    QCOMPARE(calls, 1);
    m_view.reset();
    ReleaseContext();
    ZrAppView::with_gl_context(count);
    QCOMPARE(calls, 1);
}

void tst_ZrAppViewContext::vsyncOfTheNextWindow()
{
    const QSurfaceFormat before = QSurfaceFormat::defaultFormat();
    for (const int n : {2, 0}) {
        ZrAppView::set_vsync_multiplier(n);
        m_view.reset();
        m_view = std::make_unique<ZrGlView>();
        QVERIFY(m_view->Open());
        QCOMPARE(m_view->context()->format().swapInterval(), n);
    }
    QSurfaceFormat::setDefaultFormat(before);
}

/// In another window Qt makes another context: everything is built there again.
void tst_ZrAppViewContext::contextMadeAnew()
{
    ZrGlPage* page = m_view->Add(QStringLiteral("A"));
    QVERIFY(m_view->Open());
    QCOMPARE(m_view->m_log.count(QStringLiteral("A initialize")), 1);
    const QImage before = m_view->grabFramebuffer();
    QWidget window;
    window.resize(1000, 700);
    m_view->setParent(&window);
    ReleaseContext();
    // Between the two there is none.
    int calls = 0;
    ZrAppView::with_gl_context(std::function<void()>([&] { calls += m_view->isValid() ? 0 : 1; }));
    QCOMPARE(calls, 0);
    m_view->show();
    const int frames = page->m_frames;
    window.show();
    QTRY_VERIFY(page->m_frames > frames);
    QCOMPARE(m_view->m_log.count(QStringLiteral("A initialize")), 2);
    QCOMPARE(m_view->grabFramebuffer(), before);
    QOpenGLContext* inside = nullptr;
    ReleaseContext();
    ZrAppView::with_gl_context(std::function<void()>([&] { inside = QOpenGLContext::currentContext(); }));
    QCOMPARE(inside, m_view->context());
    m_view.reset();
}

GL_TEST_MAIN(tst_ZrAppViewContext)
#include "tst_ZrAppViewContext.moc"
