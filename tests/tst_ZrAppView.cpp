// The application's window without OpenGL: how it is made, its timers, settings, and its end.

#include "ZrFormPage.h"
#include "ZrPlainView.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrProgress.h"
#include "ZrUtil/ZrSetApp.h"
#include "ZrUtil/ZrUnits.h"

#include <QTemporaryDir>

using std::chrono::milliseconds;

static_assert(std::is_base_of_v<QOpenGLWidget, ZrAppView>);
static_assert(std::is_base_of_v<QOpenGLFunctions, ZrAppView>);
static_assert(std::is_base_of_v<zr::IPersistable, ZrAppView>);

Q_DECLARE_METATYPE(ZrAppView::eUpdateMode)

class tst_ZrAppView : public ZrPlainViewTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void theOneObject();
    void asMade();
    void styleSheet();
    void modes();
    void timers_data();
    void timers();
    void timerConnections();
    void vsync();
    void lastPath();
    void contextWithoutWindow();
    void goesOnWithoutContext();
    void fontOfPlainWidgets();
    void fontBeforeTheStyle();
    void settingsTree();
    void settingsRoundTrip_data();
    void settingsRoundTrip();
    void settingsOfAnotherProgram();
    void closeButton();
    void closeWindow();
    void closeQuitsTheLoop();
    void gone();

private:
    static QList<QTimer*> Timers(const ZrAppView& view);

    std::unique_ptr<ZrUnitsState> m_units;
};

void tst_ZrAppView::init()
{
    m_units = std::make_unique<ZrUnitsState>();
    Make();
}

void tst_ZrAppView::cleanup()
{
    Drop();
    m_units.reset();
}

QList<QTimer*> tst_ZrAppView::Timers(const ZrAppView& view)
{
    return view.findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
}

void tst_ZrAppView::theOneObject()
{
    QCOMPARE(ZrAppView::s_pApp, m_view.get());
    QCOMPARE(&ZrAppView::get(), m_view.get());
    m_view.reset();
    QVERIFY(!ZrAppView::s_pApp);
}

void tst_ZrAppView::asMade()
{
    QVERIFY(!m_view->m_current);
    QVERIFY(m_view->m_pages.isEmpty());
    QVERIFY(m_view->m_stack.isEmpty());
    QVERIFY(!m_view->m_continuous);
    QCOMPARE(m_view->minimumSize(), QSize(900, 600));
    QVERIFY(m_view->forms().isHidden());
    QVERIFY(m_view->progress().isHidden());
    QVERIFY(!Close().img.isNull());
    QCOMPARE(Close().img, ZrTheme::ColourImg(QImage(QStringLiteral(":/btn_close.png")), ZrTheme::ctrlCol));
    QVERIFY(m_view->last_path().isEmpty());
    QVERIFY(!m_view->last_position().isValid());
    QCOMPARE(m_view->forms().m_view, m_view.get());
    // Neither panel appears with the window.
    m_view->show();
    QVERIFY(m_view->forms().isHidden());
    QVERIFY(m_view->progress().isHidden());
}

void tst_ZrAppView::styleSheet()
{
    QCOMPARE(qApp->styleSheet(), ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css")));
    QVERIFY(!qApp->styleSheet().isEmpty());
}

void tst_ZrAppView::modes()
{
    QCOMPARE(int(ZrAppView::updateTimer), 0);
    QCOMPARE(int(ZrAppView::updateAdjusted), 1);
    QCOMPARE(int(ZrAppView::updateContinuous), 2);
    QVERIFY(!ZrPlainView(milliseconds(50), ZrAppView::updateAdjusted, milliseconds(50)).m_continuous);
    QVERIFY(ZrPlainView(milliseconds(50), ZrAppView::updateContinuous, milliseconds(50)).m_continuous);
}

void tst_ZrAppView::timers_data()
{
    QTest::addColumn<ZrAppView::eUpdateMode>("mode");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("isPrecise");
    QTest::newRow("0") << ZrAppView::updateTimer << 70 << 1 << 50 << false;
    QTest::newRow("0, equal") << ZrAppView::updateTimer << 50 << 1 << 50 << false;
    QTest::newRow("1, equal") << ZrAppView::updateAdjusted << 50 << 1 << 50 << true;
    QTest::newRow("1, longer") << ZrAppView::updateAdjusted << 70 << 2 << 70 << false;
    QTest::newRow("1, shorter") << ZrAppView::updateAdjusted << 10 << 2 << 10 << false;
    QTest::newRow("1, zero") << ZrAppView::updateAdjusted << 0 << 2 << 0 << false;
    QTest::newRow("2") << ZrAppView::updateContinuous << 70 << 1 << 50 << false;
    QTest::newRow("2, equal") << ZrAppView::updateContinuous << 50 << 1 << 50 << false;
}

void tst_ZrAppView::timers()
{
    QFETCH(ZrAppView::eUpdateMode, mode);
    QFETCH(int, second);
    QFETCH(int, count);
    QFETCH(int, interval);
    QFETCH(bool, isPrecise);
    const ZrPlainView view(milliseconds(50), mode, milliseconds(second));
    const QList<QTimer*> timers = Timers(view);
    QCOMPARE(timers.size(), count);
    QVERIFY(timers[0]->isActive());
    QCOMPARE(timers[0]->interval(), interval);
    QCOMPARE(timers[0]->timerType(), isPrecise ? Qt::PreciseTimer : Qt::CoarseTimer);
    if (count == 2) {
        QVERIFY(!timers[1]->isActive());
        QCOMPARE(timers[1]->timerType(), Qt::PreciseTimer);
    }
}

void tst_ZrAppView::timerConnections()
{
    // One connection, two with a second duration.
    const auto receivers = [](const QTimer& of) {
        class Open : public QTimer
        {
        public:
            using QTimer::receivers;
        };
        return (of.*&Open::receivers)(SIGNAL(timeout()));
    };
    QCOMPARE(receivers(*Timers(*m_view).first()), 1);
    const ZrPlainView adjusted(milliseconds(50), ZrAppView::updateAdjusted, milliseconds(60));
    QCOMPARE(receivers(*Timers(adjusted).first()), 2);
    QCOMPARE(receivers(*Timers(adjusted).last()), 0);
}

void tst_ZrAppView::vsync()
{
    const QSurfaceFormat before = QSurfaceFormat::defaultFormat();
    QSurfaceFormat changed = before;
    changed.setDepthBufferSize(17);
    QSurfaceFormat::setDefaultFormat(changed);
    for (const int n : {2, 0, 1}) {
        ZrAppView::set_vsync_multiplier(n);
        QCOMPARE(QSurfaceFormat::defaultFormat().swapInterval(), n);
        QCOMPARE(QSurfaceFormat::defaultFormat().depthBufferSize(), 17);
    }
    QSurfaceFormat::setDefaultFormat(before);
}

void tst_ZrAppView::lastPath()
{
    for (const QString& path : {QStringLiteral("/a/b"), QString::fromUtf8("/Übung/𝄞"), QString()}) {
        m_view->set_last_path(path);
        QCOMPARE(m_view->last_path(), path);
    }
}

void tst_ZrAppView::contextWithoutWindow()
{
    int calls = 0;
    const std::function<void()> plain = [&] { ++calls; };
    const std::function<void(QOpenGLFunctions&)> withFunctions = [&](QOpenGLFunctions&) { ++calls; };
    ZrAppView::with_gl_context(plain);
    ZrAppView::with_gl_context(withFunctions);
    ZrAppView::with_gl_context(std::function<void()>());
    ZrAppView::with_gl_context(std::function<void(QOpenGLFunctions&)>());
    m_view.reset();
    ZrAppView::with_gl_context(plain);
    ZrAppView::with_gl_context(withFunctions);
    QCOMPARE(calls, 0);
}

/// No display, no OpenGL: the window stays empty, everything else works.
void tst_ZrAppView::goesOnWithoutContext()
{
    ZrNotedPage* home = Add(QStringLiteral("Home"));
    Add(QStringLiteral("A"));
    m_view->show();
    m_view->resize(1100, 800);
    Settle();
    QVERIFY(m_view->isVisible());
    QVERIFY(!m_view->isValid());
    int calls = 0;
    const std::function<void()> count = [&] { ++calls; };
    ZrAppView::with_gl_context(count);
    QCOMPARE(calls, 0);
    m_view->Update();
    QVERIFY(m_view->grabFramebuffer().isNull());
    // Pages come, are shown and go.
    ZrNotedPage* late = Add(QStringLiteral("Late"), true);
    QVERIFY(late->isVisible());
    QVERIFY(m_view->SetPageTo(QStringLiteral("A"), true));
    m_view->Back();
    QCOMPARE(m_view->m_current, home);
    QVERIFY(home->isVisible());
    m_view->ToggleSettings();
    QVERIFY(m_view->forms().isVisible());
    Settle();
    m_view->OnClose();
    QCOMPARE(m_view->m_exits, 1);
}

void tst_ZrAppView::fontOfPlainWidgets()
{
    QCOMPARE(QApplication::font(), ZrTheme::bodyFont);
    const QWidget plain;
    QCOMPARE(plain.font().pixelSize(), ZrTheme::DpI(18));
}

/// Until the theme has a style its fonts have no size; that of the application stays.
void tst_ZrAppView::fontBeforeTheStyle()
{
    Drop();
    const QFont before = QApplication::font();
    const QFont body = ZrTheme::bodyFont;
    ZrTheme::bodyFont = QFont();
    {
        const ZrPlainView view;
        QCOMPARE(QApplication::font(), before);
    }
    ZrTheme::bodyFont = body;
    Make();
}

void tst_ZrAppView::settingsTree()
{
    Add(QStringLiteral("Home"))->m_number = 4;
    Add(QStringLiteral("Map"))->m_number = 5;
    auto* form = new ZrFormPage(&m_view->forms(), QStringLiteral("Form"));
    form->m_number = 6;
    m_view->forms().AddNewForm(form);
    m_view->set_last_path(QStringLiteral("/data"));
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(*m_view);
    QCOMPARE(stored.root.keys(),
        (QStringList{QStringLiteral("forms"), QStringLiteral("globals"), QStringLiteral("last path"),
            QStringLiteral("pages")}));
    const QJsonObject globals = stored.root[QStringLiteral("globals")].toObject();
    QCOMPARE(globals.keys(), (QStringList{QStringLiteral("theme"), QStringLiteral("units")}));
    QVERIFY(globals[QStringLiteral("units")].toObject().contains(QStringLiteral("geo style")));
    QVERIFY(globals[QStringLiteral("theme")].toObject().contains(QStringLiteral("tablet mode")));
    QCOMPARE(stored.root[QStringLiteral("forms")].toObject(),
        (QJsonObject{
            {QStringLiteral("Form"), QJsonObject{{QStringLiteral("number"), QStringLiteral("6")}}}}));
    QCOMPARE(stored.root[QStringLiteral("pages")].toObject(),
        (QJsonObject{{QStringLiteral("Home"), QJsonObject{{QStringLiteral("number"), QStringLiteral("4")}}},
            {QStringLiteral("Map"), QJsonObject{{QStringLiteral("number"), QStringLiteral("5")}}}}));
    QCOMPARE(stored.root[QStringLiteral("last path")].toString(), QStringLiteral("/data"));
}

void tst_ZrAppView::settingsRoundTrip_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("indented") << int(zr::ZrSetApp::eFmtIndented);
    QTest::newRow("compact") << int(zr::ZrSetApp::eFmtCompact);
}

void tst_ZrAppView::settingsRoundTrip()
{
    QFETCH(int, format);
    const QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("settings.json"));
    ZrNotedPage* page = Add(QStringLiteral("Home"));
    page->m_number = 4;
    m_view->set_last_path(QString::fromUtf8("/Übung/𝄞 \\ \"日本\""));
    ZrUnits::SetToImperial();
    ZrUnits::SetGeoStyle(eGeoUTM);
    ZrTheme::tabletMode = true;
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(*m_view);
    QVERIFY(stored.save_to_file(file, zr::ZrSetApp::eFmt(format)));

    page->m_number = 0;
    m_view->set_last_path(QString());
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoDeg);
    ZrTheme::tabletMode = false;
    zr::ZrSetApp loaded(zr::ePersistLoading);
    QVERIFY(loaded.load_from_file(file, zr::ZrSetApp::eFmt(format)));
    loaded.synchronise(*m_view);
    QCOMPARE(page->m_number, 4);
    QCOMPARE(m_view->last_path(), QString::fromUtf8("/Übung/𝄞 \\ \"日本\""));
    QCOMPARE(ZrUnits::GetShortLengthUnits(), QStringLiteral("ft"));
    QCOMPARE(ZrUnits::GetGeoStyle(), eGeoUTM);
    QVERIFY(ZrTheme::tabletMode);
}

void tst_ZrAppView::settingsOfAnotherProgram()
{
    ZrNotedPage* page = Add(QStringLiteral("Home"));
    page->m_number = 4;
    m_view->set_last_path(QStringLiteral("/data"));
    const QString unit = ZrUnits::GetShortLengthUnits();
    zr::ZrSetApp loaded(zr::ePersistLoading);
    loaded.root = QJsonObject{{QStringLiteral("globals"), QJsonArray{1}},
        {QStringLiteral("pages"), QStringLiteral("x")}, {QStringLiteral("forms"), 3.0},
        {QStringLiteral("other"), true}};
    loaded.synchronise(*m_view);
    QCOMPARE(page->m_number, 4);
    QCOMPARE(m_view->last_path(), QStringLiteral("/data"));
    QCOMPARE(ZrUnits::GetShortLengthUnits(), unit);
}

void tst_ZrAppView::closeButton()
{
    m_view->show();
    Settle();
    QTest::mouseClick(&Close(), Qt::LeftButton);
    QCOMPARE(m_view->m_exits, 1);
    m_view->OnClose();
    m_view->close();
    QCOMPARE(m_view->m_exits, 1);
}

void tst_ZrAppView::closeWindow()
{
    m_view->show();
    QVERIFY(m_view->close());
    QCOMPARE(m_view->m_exits, 1);
    QVERIFY(!m_view->isVisible());
}

void tst_ZrAppView::closeQuitsTheLoop()
{
    m_view->show();
    QEventLoop loop;
    connect(qApp, &QCoreApplication::aboutToQuit, &loop, &QEventLoop::quit);
    QTimer::singleShot(0, m_view.get(), &ZrAppView::OnClose);
    QTimer::singleShot(20000, &loop, [] { qFatal("the loop goes on"); });
    QCOMPARE(qApp->exec(), 0);
    QCOMPARE(m_view->m_exits, 1);
}

void tst_ZrAppView::gone()
{
    Add(QStringLiteral("A"));
    Add(QStringLiteral("B"));
    m_view->forms().AddNewForm(new ZrFormPage(&m_view->forms(), QStringLiteral("F")));
    m_view->show();
    m_view->ToggleSettings();
    m_view.reset();
    QVERIFY(!ZrAppView::s_pApp);
    // The next one takes its place; one that goes later leaves it there.
    auto first = std::make_unique<ZrPlainView>();
    const ZrPlainView second;
    QCOMPARE(ZrAppView::s_pApp, &second);
    first.reset();
    QCOMPARE(ZrAppView::s_pApp, &second);
}

QTEST_MAIN(tst_ZrAppView)
#include "tst_ZrAppView.moc"
