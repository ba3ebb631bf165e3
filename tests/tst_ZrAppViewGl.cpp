// The application's window with its OpenGL context: who is called when, what a frame holds, pages that come
// later.

#include "GlTest.h"
#include "ZrGlPages.h"

#include <QLabel>

using std::chrono::milliseconds;

namespace {

/// Part of the window while it is painted, its bottom row first.
QImage Painted(const QRect& part)
{
    QImage image(part.size(), QImage::Format_RGBA8888);
    QOpenGLContext::currentContext()->functions()->glReadPixels(
        part.x(), part.y(), part.width(), part.height(), GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
    return image;
}

/// Whether nothing is to be seen.
bool IsBlack(const QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if ((image.pixel(x, y) & 0xFFFFFFU) != 0)
                return false;
        }
    }
    return true;
}

} // namespace

class tst_ZrAppViewGl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void orderOfTheStart();
    void resizeReachesEveryPage();
    void pagesAfterTheStart();
    void pageAddedWhileInitialising();
    void pageAddedWithinAContext();
    void pageOfNoneIsLeftOut();

    void currentPageIsPaintedAlone();
    void backgroundLiesBelow();
    void noBackgroundWithoutTheFlag();
    void noPageIsBlack();
    void frameStartsClear();
    void viewportIsRestored();
    void pageThatLeavesAViewport();

    void navigation();
    void backAndHome();
    void pageHiddenIsNotPainted();

    void closeButtonEnds();
    void windowCloses();
    void styleFollowsTheWindow();

private:
    /// Paints one frame now.
    void Frame();

    std::unique_ptr<ZrAppState> m_state;
    std::unique_ptr<ZrGlView> m_view;
};

void tst_ZrAppViewGl::init()
{
    m_state = std::make_unique<ZrAppState>();
    m_view = std::make_unique<ZrGlView>();
}

void tst_ZrAppViewGl::cleanup()
{
    m_view.reset();
    m_state.reset();
}

void tst_ZrAppViewGl::Frame()
{
    const int before = m_view->m_paints;
    m_view->update();
    QTRY_VERIFY(m_view->m_paints > before);
}

void tst_ZrAppViewGl::orderOfTheStart()
{
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    ZrGlPage* b = m_view->Add(QStringLiteral("B"));
    QVector<bool> hadBackground;
    QVector<bool> hadContext;
    for (ZrGlPage* page : {a, b}) {
        page->m_onInitialize = [&] {
            hadBackground.append(m_view->Background().m_hexTex != 0);
            hadContext.append(QOpenGLContext::currentContext() == m_view->context());
        };
    }
    QSize sizeAtFirstPaint;
    a->m_onPaint = [&] {
        if (a->m_frames == 1)
            sizeAtFirstPaint = a->m_pixels;
    };
    QVERIFY(m_view->TakeLog().isEmpty());
    QVERIFY(m_view->Open());
    // The page that is shown appears between the two or before them, as the window system has it.
    m_view->m_log.removeAll(QStringLiteral("A shown"));
    QStringList log = m_view->m_log;
    log.removeDuplicates();
    QCOMPARE(
        log.join(QStringLiteral(", ")), QStringLiteral("A initialize, B initialize, A resize, B resize"));
    QCOMPARE(m_view->m_log.count(QStringLiteral("A initialize")), 1);
    QCOMPARE(m_view->m_log.count(QStringLiteral("B initialize")), 1);
    // The background's textures were there before the pages built theirs.
    QCOMPARE(hadBackground, (QVector<bool>{true, true}));
    QCOMPARE(hadContext, (QVector<bool>{true, true}));
    QCOMPARE(sizeAtFirstPaint, m_view->size() * m_view->devicePixelRatioF());
    QCOMPARE(m_view->Background().m_viewport, QRect(QPoint(0, 0), a->m_pixels));
}

void tst_ZrAppViewGl::resizeReachesEveryPage()
{
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    ZrGlPage* b = m_view->Add(QStringLiteral("B"));
    QVERIFY(m_view->Open());
    m_view->m_log.clear();
    m_view->resize(1100, 760);
    const QSize pixels = QSize(1100, 760) * m_view->devicePixelRatioF();
    QTRY_COMPARE(b->m_pixels, pixels);
    QCOMPARE(a->m_pixels, pixels);
    QCOMPARE(a->geometry(), QRect(0, 0, 1100, 760));
    QCOMPARE(b->geometry(), QRect(0, 0, 1100, 760));
    QCOMPARE(m_view->Background().m_viewport.size(), pixels);
    QVERIFY(!m_view->m_log.join(QString()).contains(QStringLiteral("initialize")));
}

void tst_ZrAppViewGl::pagesAfterTheStart()
{
    QVERIFY(m_view->Open());
    ReleaseContext();
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    QCOMPARE(m_view->TakeLog(), QStringLiteral("A shown, A initialize, A resize"));
    QVERIFY(a->isVisible());
    QCOMPARE(a->m_pixels, m_view->size() * m_view->devicePixelRatioF());
    QVERIFY(!QOpenGLContext::currentContext());
    const ZrGlPage* b = m_view->Add(QStringLiteral("B"));
    QCOMPARE(m_view->TakeLog(), QStringLiteral("B initialize, B resize"));
    QVERIFY(!b->isVisible());
    const ZrGlPage* c = m_view->Add(QStringLiteral("C"), true);
    QCOMPARE(m_view->TakeLog(), QStringLiteral("C shown, C initialize, C resize"));
    QCOMPARE(m_view->m_current, c);
    QVERIFY(a->isVisible());
    // No page covers what lies above the pages.
    const QObjectList& children = m_view->children();
    QCOMPARE(children.last(), &m_view->progress());
    QCOMPARE(children[children.size() - 2], &m_view->forms());
    QCOMPARE(children[children.size() - 3], &m_view->CloseButton());
}

void tst_ZrAppViewGl::pageAddedWhileInitialising()
{
    ZrGlPage* a = m_view->Add(QStringLiteral("M"));
    a->m_onInitialize = [this] {
        m_view->Add(QStringLiteral("A"));
        m_view->Add(QStringLiteral("Z"));
    };
    QVERIFY(m_view->Open());
    for (const char* name : {"A", "M", "Z"}) {
        QCOMPARE(m_view->m_log.count(QLatin1String(name) + QStringLiteral(" initialize")), 1);
        QVERIFY(m_view->m_log.contains(QLatin1String(name) + QStringLiteral(" resize")));
    }
}

void tst_ZrAppViewGl::pageAddedWithinAContext()
{
    QVERIFY(m_view->Open());
    m_view->makeCurrent();
    m_view->Add(QStringLiteral("A"));
    // The context belongs to the caller.
    QCOMPARE(QOpenGLContext::currentContext(), m_view->context());
    m_view->doneCurrent();
}

void tst_ZrAppViewGl::pageOfNoneIsLeftOut()
{
    m_view->AddPage(QStringLiteral("None"), nullptr, true);
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    QVERIFY(m_view->Open());
    QVERIFY(a->m_frames > 0);
    m_view->AddPage(QStringLiteral("Late"), nullptr, true);
    QCOMPARE(m_view->m_current, a);
    m_view->resize(1100, 760);
    QTRY_COMPARE(a->m_pixels, QSize(1100, 760) * m_view->devicePixelRatioF());
}

void tst_ZrAppViewGl::currentPageIsPaintedAlone()
{
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    ZrGlPage* b = m_view->Add(QStringLiteral("B"));
    QVERIFY(m_view->Open());
    QVERIFY(a->m_frames > 0);
    QCOMPARE(b->m_frames, 0);
    const int frames = a->m_frames;
    m_view->SetPageTo(QStringLiteral("B"), true);
    QTRY_VERIFY(b->m_frames > 0);
    QCOMPARE(a->m_frames, frames);
}

void tst_ZrAppViewGl::backgroundLiesBelow()
{
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    QImage below;
    a->m_onPaint = [&] { below = Painted(QRect(0, 0, 900, 600)); };
    QVERIFY(m_view->Open());
    Frame();
    // The background is there when the page's turn comes.
    QVERIFY(!below.isNull() && !IsBlack(below));
    // And what the page paints lies above it.
    a->m_onPaint = [this] {
        m_view->glClearColor(1, 0, 0, 1);
        m_view->glClear(GL_COLOR_BUFFER_BIT);
    };
    const QImage image = m_view->grabFramebuffer();
    QCOMPARE(image.pixelColor(500, 350), QColor(255, 0, 0));
    QCOMPARE(image.pixelColor(5, 5), QColor(255, 0, 0));
}

void tst_ZrAppViewGl::noBackgroundWithoutTheFlag()
{
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    a->m_hasBackground = false;
    QVERIFY(m_view->Open());
    QVERIFY(IsBlack(m_view->grabFramebuffer()));
    QVERIFY(a->m_frames > 0);
    a->m_hasBackground = true;
    QVERIFY(!IsBlack(m_view->grabFramebuffer()));
}

void tst_ZrAppViewGl::noPageIsBlack()
{
    QVERIFY(m_view->Open());
    QVERIFY(!m_view->m_current);
    const QImage image = m_view->grabFramebuffer();
    QCOMPARE(image.size(), m_view->size() * m_view->devicePixelRatioF());
    QVERIFY(IsBlack(image));
}

void tst_ZrAppViewGl::frameStartsClear()
{
    // What a frame leaves stays for the next one, unless the view clears it.
    m_view->setUpdateBehavior(QOpenGLWidget::PartialUpdate);
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    a->m_hasBackground = false;
    GLfloat clear[4] = {};
    QColor found;
    GLfloat depth = -1;
    a->m_onPaint = [&] {
        m_view->glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
        found = Painted(QRect(500, 300, 1, 1)).pixelColor(0, 0);
        m_view->glReadPixels(500, 300, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        m_view->glClearColor(0.5F, 1, 0.25F, 0.5F);
        m_view->glClearDepthf(0.25F);
        m_view->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        m_view->glClearDepthf(1);
    };
    QVERIFY(m_view->Open());
    for (int i = 0; i < 3; ++i) {
        found = QColor();
        depth = -1;
        Frame();
        QCOMPARE(found, QColor(0, 0, 0));
        QCOMPARE(depth, 1.0F);
        QCOMPARE(clear[0], 0.0F);
        QCOMPARE(clear[1], 0.0F);
        QCOMPARE(clear[2], 0.0F);
        QCOMPARE(clear[3], 1.0F);
    }
}

void tst_ZrAppViewGl::viewportIsRestored()
{
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    GLint viewport[4] = {};
    a->m_onPaint = [&] { m_view->glGetIntegerv(GL_VIEWPORT, viewport); };
    QVERIFY(m_view->Open());
    // Left by work outside of painting, and by the page itself.
    for (int i = 0; i < 3; ++i) {
        std::fill(viewport, viewport + 4, -1);
        ReleaseContext();
        ZrAppView::with_gl_context(
            std::function<void(QOpenGLFunctions&)>([](QOpenGLFunctions& f) { f.glViewport(3, 4, 5, 6); }));
        Frame();
        QCOMPARE(viewport[0], 0);
        QCOMPARE(viewport[1], 0);
        QCOMPARE(QSize(viewport[2], viewport[3]), m_view->size() * m_view->devicePixelRatioF());
    }
}

void tst_ZrAppViewGl::pageThatLeavesAViewport()
{
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    a->m_onPaint = [&] { m_view->glViewport(0, 0, 10, 10); };
    QVERIFY(m_view->Open());
    const QImage before = m_view->grabFramebuffer();
    const QImage after = m_view->grabFramebuffer();
    // The background of the next frame still fills the window.
    QCOMPARE(after, before);
    QVERIFY(!IsBlack(after.copy(500, 50, 400, 500)));
}

void tst_ZrAppViewGl::navigation()
{
    m_view->Add(QStringLiteral("Home"));
    m_view->Add(QStringLiteral("A"));
    m_view->Add(QStringLiteral("B"));
    QVERIFY(m_view->Open());
    m_view->m_log.clear();
    m_view->SetPageTo(QStringLiteral("A"), true);
    QCOMPARE(m_view->TakeLog(), QStringLiteral("Home hidden, Home close, A open, A shown"));
    m_view->SetPageTo(QStringLiteral("B"), true);
    QCOMPARE(m_view->TakeLog(), QStringLiteral("A hidden, A close, B open, B shown"));
    QCOMPARE(m_view->m_stack, (QStringList{QStringLiteral("A"), QStringLiteral("B")}));
    QVERIFY(!m_view->SetPageTo(QStringLiteral("C"), true));
    QVERIFY(m_view->TakeLog().isEmpty());
    m_view->SetPageTo(QStringLiteral("B"), false);
    QCOMPARE(m_view->TakeLog(), QStringLiteral("B hidden, B close, B open, B shown"));
    QCOMPARE(m_view->m_stack, (QStringList{QStringLiteral("A"), QStringLiteral("B")}));
}

void tst_ZrAppViewGl::backAndHome()
{
    m_view->Add(QStringLiteral("Home"));
    m_view->Add(QStringLiteral("A"));
    m_view->Add(QStringLiteral("B"));
    QVERIFY(m_view->Open());
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->SetPageTo(QStringLiteral("B"), true);
    m_view->m_log.clear();
    m_view->Back();
    QCOMPARE(m_view->TakeLog(), QStringLiteral("B hidden, B close, A open, A shown"));
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("A")});
    m_view->Back();
    QCOMPARE(m_view->TakeLog(), QStringLiteral("A hidden, A close, Home open, Home shown"));
    QVERIFY(m_view->m_stack.isEmpty());
    QTest::ignoreMessage(QtDebugMsg, "Empty Stack");
    m_view->Back();
    QCOMPARE(m_view->TakeLog(), QStringLiteral("Home hidden, Home close, Home open, Home shown"));
    m_view->SetPageTo(QStringLiteral("B"), true);
    m_view->m_log.clear();
    m_view->GoHome();
    QCOMPARE(m_view->TakeLog(), QStringLiteral("B hidden, B close, Home open, Home shown"));
    QVERIFY(m_view->m_stack.isEmpty());
}

void tst_ZrAppViewGl::pageHiddenIsNotPainted()
{
    ZrGlPage* a = m_view->Add(QStringLiteral("A"));
    QVERIFY(m_view->Open());
    // The page that went is no longer asked.
    delete a;
    Frame();
    QVERIFY(!m_view->m_current);
}

void tst_ZrAppViewGl::closeButtonEnds()
{
    QVERIFY(m_view->Open());
    QTimer::singleShot(0, this, [this] {
        ZrBtn& button = m_view->CloseButton();
        QTest::mouseClick(&button, Qt::LeftButton);
    });
    QTimer::singleShot(40000, qApp, [] { qFatal("the loop goes on"); });
    QCOMPARE(qApp->exec(), 0);
    QCOMPARE(m_view->m_exits, 1);
    m_view->close();
    m_view->OnClose();
    QCOMPARE(m_view->m_exits, 1);
}

void tst_ZrAppViewGl::windowCloses()
{
    m_view->Add(QStringLiteral("A"));
    QVERIFY(m_view->Open());
    QVERIFY(m_view->close());
    QCOMPARE(m_view->m_exits, 1);
    QCOMPARE(ZrAppView::s_pApp, m_view.get());
    m_view.reset();
    QVERIFY(!ZrAppView::s_pApp);
}

void tst_ZrAppViewGl::styleFollowsTheWindow()
{
    auto* own = new QLabel(m_view.get());
    QFont large = ZrTheme::font;
    large.setPixelSize(33);
    own->setFont(large);
    auto* plain = new QLabel(m_view.get());
    QVERIFY(m_view->Open());
    for (const QSize& size : {QSize(1000, 700), QSize(1440, 900), QSize(960, 900)}) {
        m_view->resize(size);
        QTRY_COMPARE(m_view->Background().m_viewport.size(), size * m_view->devicePixelRatioF());
        const float dp = size.width() == 1440 ? 1.0F
                                              : std::min(static_cast<float>(size.width()) / 1440.0F,
                                                  static_cast<float>(size.height()) / 900.0F);
        QCOMPARE(ZrTheme::dp, dp);
        QCOMPARE(ZrTheme::rxy, ZrTheme::DpI(6));
        QCOMPARE(qApp->styleSheet(), ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css")));
        // Widgets without a font of their own scale too.
        QCOMPARE(plain->fontInfo().pixelSize(), ZrTheme::DpI(18));
        QCOMPARE(own->fontInfo().pixelSize(), 33);
    }
}

GL_TEST_MAIN(tst_ZrAppViewGl)
#include "tst_ZrAppViewGl.moc"
