// Ten thousand changes of page and of the settings forms: nothing grows.

#include "GlNames.h"
#include "GlTest.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFmLogging.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrPage.h"

#include <QtTest>

#include <atomic>
#include <malloc.h>
#include <memory>

// Where Qt tells of objects made and gone, for tools as this one.
extern Q_CORE_EXPORT quintptr qtHookData[];

namespace {

enum : int
{
    hookAdd = 3,
    hookRemove = 4
};

std::atomic<qint64> objects{0};

void Added(QObject* /*object*/)
{
    ++objects;
}

void Removed(QObject* /*object*/)
{
    --objects;
}

/// A page with a surface of its own, drawn in every frame.
class SurfacePage final : public ZrPage
{
public:
    class Surface final : public ZrGlSurface
    {
    public:
        using ZrGlSurface::ZrGlSurface;

        void OnResize(int width, int height) override
        {
            ZrglSetViewport(0, 0, width, height);
            zrgl2dViewport(width, height);
            zrgl2dProjection(0.0F, 1.0F, 0.0F, 1.0F, aspectStretch);
        }

        void Render() override { }
    };

    int m_frames = 0;

    explicit SurfacePage(ZrAppView* view)
        : ZrPage(view)
        , m_surface(this)
    {
    }

    void zr_initializeGL() override { m_surface.OnCreate(); }

    void zr_resizeGL(int width, int height) override { m_surface.OnResize(width, height); }

    void zr_paintGL() override
    {
        m_surface.Render();
        ++m_frames;
    }

private:
    Surface m_surface;
};

struct Sizes
{
    qint64 objects = 0;
    qint64 widgets = 0;
    qint64 glNames = 0;
    qint64 bytes = 0; ///< of the heap in use
};

constexpr int rounds = 10000;
/// Of the heap, over all rounds; caches of fonts and images settle late.
constexpr qint64 byteSlack = 64 * 1024;

} // namespace

class tst_SettingsGrowth : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void nothingGrows();
    void growthIsSeen_data();
    void growthIsSeen();

private:
    void Round(ZrAppView& view, int i);
    Sizes Now(const gl::Names& names) const;
};

void tst_SettingsGrowth::initTestCase()
{
    qtHookData[hookAdd] = reinterpret_cast<quintptr>(&Added);
    qtHookData[hookRemove] = reinterpret_cast<quintptr>(&Removed);
}

void tst_SettingsGrowth::cleanupTestCase()
{
    qtHookData[hookAdd] = 0;
    qtHookData[hookRemove] = 0;
}

/// One change of page and one of the settings, now and then a frame.
void tst_SettingsGrowth::Round(ZrAppView& view, int i)
{
    switch (i % 4) {
    case 0:
        view.SetPageTo(QStringLiteral("A"), true);
        break;
    case 1:
        view.SetPageTo(QStringLiteral("B"), true);
        break;
    case 2:
        view.Back();
        break;
    default:
        view.GoHome();
        break;
    }
    view.ToggleSettings();
    if (i % 7 == 0)
        view.forms().SetToForm(
            i % 2 ? QStringLiteral("Logging Settings") : QStringLiteral("Application Settings"));
    if (i % 50 == 0)
        QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

Sizes tst_SettingsGrowth::Now(const gl::Names& names) const
{
    Settle();
    Sizes sizes;
    sizes.objects = objects;
    sizes.widgets = QApplication::allWidgets().size();
    sizes.glNames = names.Growth();
    sizes.bytes = static_cast<qint64>(mallinfo2().uordblks);
    return sizes;
}

void tst_SettingsGrowth::nothingGrows()
{
    const ZrThemeState theme;
    ZrTheme::designWidth = 1280;
    ZrTheme::designHeight = 800;
    ZrAppView view(
        nullptr, std::chrono::milliseconds(5), ZrAppView::updateTimer, std::chrono::milliseconds(5));
    auto* home = new SurfacePage(&view);
    view.AddPage(QStringLiteral("Home"), home, true);
    view.AddPage(QStringLiteral("A"), new SurfacePage(&view), false);
    view.AddPage(QStringLiteral("B"), new SurfacePage(&view), false);
    view.forms().AddNewForm(new ZrFmApp(&view.forms()));
    view.forms().AddNewForm(new ZrFmLogging(&view.forms()));
    view.resize(900, 600);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    Settle();
    QVERIFY(view.isValid());
    std::unique_ptr<gl::Names> names;
    ZrAppView::with_gl_context([&names] { names = std::make_unique<gl::Names>(); });
    QVERIFY(names);

    // Caches fill.
    for (int i = 0; i < 2000; ++i)
        Round(view, i);
    const Sizes before = Now(*names);
    const int frames = home->m_frames;
    for (int i = 0; i < rounds; ++i)
        Round(view, i);
    const Sizes after = Now(*names);
    QVERIFY(home->m_frames > frames);
    // Those that the start has left, timers above all, may go.
    QVERIFY2(after.objects <= before.objects, qPrintable(QString::number(after.objects - before.objects)));
    QCOMPARE(after.widgets, before.widgets);
    QCOMPARE(after.glNames, before.glNames);
    QVERIFY(view.m_stack.isEmpty());
    QVERIFY(view.forms().isHidden());
    qInfo("the heap has grown by %lld bytes", static_cast<long long>(after.bytes - before.bytes));
#ifndef __SANITIZE_ADDRESS__
    // The address sanitizer has a heap of its own.
    QVERIFY(after.bytes - before.bytes < byteSlack);
#endif
    ZrAppView::with_gl_context([&names] { names.reset(); });
}

void tst_SettingsGrowth::growthIsSeen_data()
{
    QTest::addColumn<int>("what");
    QTest::newRow("an object") << 0;
    QTest::newRow("a texture") << 1;
    QTest::newRow("bytes") << 2;
}

/// The counters count: a leak in every round would not pass.
void tst_SettingsGrowth::growthIsSeen()
{
    QFETCH(int, what);
    const gl::Context context(gl::Api::desktop);
    QCOMPARE(context.Error(), QString());
    gl::Names names;
    const Sizes before = Now(names);
    QObject parent;
    std::vector<std::unique_ptr<char[]>> blocks;
    GLuint texture = 0;
    switch (what) {
    case 0:
        new QObject(&parent);
        break;
    case 1:
        QOpenGLContext::currentContext()->functions()->glGenTextures(1, &texture);
        break;
    default:
        blocks.reserve(rounds);
        for (int i = 0; i < rounds; ++i)
            blocks.push_back(std::make_unique<char[]>(32));
        break;
    }
    const Sizes after = Now(names);
    QCOMPARE(after.objects - before.objects, qint64(what == 0 ? 2 : 1));
    QCOMPARE(after.glNames - before.glNames, qint64(what == 1 ? 1 : 0));
#ifndef __SANITIZE_ADDRESS__
    QCOMPARE(after.bytes - before.bytes > byteSlack, what == 2);
#endif
    if (texture)
        QOpenGLContext::currentContext()->functions()->glDeleteTextures(1, &texture);
}

GL_TEST_MAIN(tst_SettingsGrowth)
#include "tst_SettingsGrowth.moc"
