// The application's window without OpenGL: pages and their stack, timers, mouse, settings, positions,
// closing.

#include "ZrFormPage.h"
#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrPage.h"
#include "ZrUtil/ZrProgress.h"
#include "ZrUtil/ZrSetApp.h"
#include "ZrUtil/ZrUnits.h"

#include <QGeoPositionInfoSource>
#include <QNmeaPositionInfoSource>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>

using std::chrono::milliseconds;

static_assert(std::is_base_of_v<QOpenGLWidget, ZrAppView>);
static_assert(std::is_base_of_v<QOpenGLFunctions, ZrAppView>);
static_assert(std::is_base_of_v<zr::IPersistable, ZrAppView>);

namespace {

/// Notes what it is told, and whether it was shown then.
class Page : public ZrPage
{
public:
    int m_number = 0;

    Page(QWidget* parent, QString name, QStringList& log)
        : ZrPage(parent)
        , m_name(std::move(name))
        , m_log(log)
    {
    }

    void OnPageOpen() override { Note(QStringLiteral("open")); }

    void OnPageClose() override { Note(QStringLiteral("close")); }

    void settings(zr::ZrSetModule& module) override { module.item(QStringLiteral("number"), m_number); }

private:
    void Note(const QString& what)
    {
        m_log.append(m_name + QLatin1Char(' ') + what
            + (isHidden() ? QStringLiteral(" hidden") : QStringLiteral(" shown")));
    }

    QString m_name;
    QStringList& m_log;
};

struct Position
{
    QString source;
    double latitude;
    double longitude;
    double third;
};

class View : public ZrAppView
{
public:
    int m_exits = 0;
    QVector<Position> m_positions;

    explicit View(milliseconds period = milliseconds(10000), eUpdateMode mode = updateTimer,
        milliseconds second = milliseconds(0))
        : ZrAppView(nullptr, period, mode, second)
    {
        // A frame of the window system would lie between the window and its position.
        setWindowFlag(Qt::FramelessWindowHint);
    }

    void StartPosition(QString source, double latitude, double longitude, double third) override
    {
        m_positions.append({source, latitude, longitude, third});
        ZrAppView::StartPosition(source, latitude, longitude, third);
    }

protected:
    void OnExit() override { ++m_exits; }
};

QStringList s_messages;

void Keep(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    s_messages.append(text);
}

/// Collects the debug output while it lives.
class Messages
{
public:
    Messages()
        : m_before(qInstallMessageHandler(Keep))
    {
        s_messages.clear();
    }

    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    ~Messages() { qInstallMessageHandler(m_before); }

private:
    QtMessageHandler m_before;
};

const auto fixes
    = QByteArrayLiteral("$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76\r\n"
                        "$GPRMC,092751.000,A,5321.6802,N,00630.3371,W,0.06,31.66,280511,,,A*45\r\n");

} // namespace

Q_DECLARE_METATYPE(ZrAppView::eUpdateMode)

class tst_ZrAppView : public QObject
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
    void timersUpdateThePage();
    void vsync();

    void firstPageIsCurrent_data();
    void firstPageIsCurrent();
    void addPage();
    void addNoPage();
    void getPage();
    void setPageOrder();
    void setPageWithoutPush();
    void setUnknownPage();
    void setPageToItself();
    void stackAfterHomeAAndB();
    void back();
    void backWithEmptyStack();
    void backWithoutHome();
    void backToAPageThatWent();
    void goHome();
    void goHomeWithoutHome();
    void pageThatGoesByItself();
    void pagesFillTheView();

    void toggleSettings();
    void screenMode();
    void doubleClick_data();
    void doubleClick();
    void dragInTheBand();
    void noDragBelowTheBand();
    void noDragByTheRightButton();
    void noDragWhileMaximised();
    void dragFollowsTheGlobalPosition();
    void releaseEndsTheDrag();
    void dragFromAPage();

    void lastPath();
    void contextWithoutWindow();
    void settingsTree();
    void settingsRoundTrip_data();
    void settingsRoundTrip();
    void settingsOfAnotherProgram();

    void position();
    void captureGps();
    void positionsOfAFile();

    void closeButton();
    void closeWindow();
    void closeQuitsTheLoop();
    void gone();

private:
    Page* Add(const QString& name, bool show = false);
    static QList<QTimer*> Timers(const ZrAppView& view);
    ZrBtn& Close();

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrUnitsState> m_units;
    std::unique_ptr<View> m_view;
    QStringList m_log;
};

void tst_ZrAppView::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_units = std::make_unique<ZrUnitsState>();
    ZrTheme::designWidth = 1440;
    ZrTheme::designHeight = 900;
    m_log.clear();
    m_view = std::make_unique<View>();
}

void tst_ZrAppView::cleanup()
{
    m_view.reset();
    qApp->setStyleSheet(QString());
    m_units.reset();
    m_theme.reset();
}

Page* tst_ZrAppView::Add(const QString& name, bool show)
{
    auto* page = new Page(m_view.get(), name, m_log);
    m_view->AddPage(name, page, show);
    return page;
}

QList<QTimer*> tst_ZrAppView::Timers(const ZrAppView& view)
{
    return view.findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
}

ZrBtn& tst_ZrAppView::Close()
{
    return *m_view->findChild<ZrBtn*>(QString(), Qt::FindDirectChildrenOnly);
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
    QVERIFY(!View(milliseconds(50), ZrAppView::updateAdjusted, milliseconds(50)).m_continuous);
    QVERIFY(View(milliseconds(50), ZrAppView::updateContinuous, milliseconds(50)).m_continuous);
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
    const View view(milliseconds(50), mode, milliseconds(second));
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

void tst_ZrAppView::timersUpdateThePage()
{
    Page* page = Add(QStringLiteral("Home"));
    page->setAttribute(Qt::WA_DontShowOnScreen);
    QTimer* timer = Timers(*m_view).first();
    QCOMPARE(timer->interval(), 10000);
    // One connection, two with a second duration.
    const auto receivers = [](const QTimer& of) {
        class Open : public QTimer
        {
        public:
            using QTimer::receivers;
        };
        return (of.*&Open::receivers)(SIGNAL(timeout()));
    };
    QCOMPARE(receivers(*timer), 1);
    const View adjusted(milliseconds(50), ZrAppView::updateAdjusted, milliseconds(60));
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

void tst_ZrAppView::firstPageIsCurrent_data()
{
    QTest::addColumn<bool>("show");
    QTest::newRow("shown") << true;
    QTest::newRow("not shown") << false;
}

void tst_ZrAppView::firstPageIsCurrent()
{
    QFETCH(bool, show);
    Page* page = Add(QStringLiteral("A"), show);
    QCOMPARE(m_view->m_current, page);
    QVERIFY(!page->isHidden());
    QVERIFY(m_log.isEmpty());
    QVERIFY(m_view->m_stack.isEmpty());
}

void tst_ZrAppView::addPage()
{
    Page* a = Add(QStringLiteral("A"));
    Page* b = Add(QStringLiteral("B"));
    QCOMPARE(m_view->m_current, a);
    QVERIFY(b->isHidden());
    Page* c = Add(QStringLiteral("C"), true);
    QCOMPARE(m_view->m_current, c);
    // The page before is not hidden, and nobody is told.
    QVERIFY(!a->isHidden());
    QVERIFY(!c->isHidden());
    QVERIFY(m_log.isEmpty());
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(
        m_view->m_pages.keys(), (QStringList{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
}

void tst_ZrAppView::addNoPage()
{
    m_view->AddPage(QStringLiteral("A"), nullptr, true);
    QVERIFY(!m_view->m_current);
    QVERIFY(m_view->m_pages.contains(QStringLiteral("A")));
    QVERIFY(!m_view->GetPage(QStringLiteral("A")));
    QVERIFY(!m_view->SetPageTo(QStringLiteral("A"), true));
    QVERIFY(m_view->m_stack.isEmpty());
    m_view->resize(1000, 700);
    m_view->show();
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(*m_view);
    QVERIFY(stored.root[QStringLiteral("pages")].toObject().isEmpty());
}

void tst_ZrAppView::getPage()
{
    Page* a = Add(QStringLiteral("A"));
    QCOMPARE(m_view->GetPage(QStringLiteral("A")), a);
    QVERIFY(!m_view->GetPage(QStringLiteral("a")));
    QVERIFY(!m_view->GetPage(QString()));
    // A question adds nothing.
    QCOMPARE(m_view->m_pages.size(), 1);
}

void tst_ZrAppView::setPageOrder()
{
    Page* a = Add(QStringLiteral("A"));
    Page* b = Add(QStringLiteral("B"));
    QCOMPARE(m_view->SetPageTo(QStringLiteral("B"), true), b);
    // The old page is hidden before it is told, the new one is told before it is shown.
    QCOMPARE(m_log, (QStringList{QStringLiteral("A close hidden"), QStringLiteral("B open hidden")}));
    QCOMPARE(m_view->m_current, b);
    QVERIFY(a->isHidden());
    QVERIFY(!b->isHidden());
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("B")});
}

void tst_ZrAppView::setPageWithoutPush()
{
    Add(QStringLiteral("A"));
    Page* b = Add(QStringLiteral("B"));
    QCOMPARE(m_view->SetPageTo(QStringLiteral("B"), false), b);
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(m_log.size(), 2);
}

void tst_ZrAppView::setUnknownPage()
{
    Page* a = Add(QStringLiteral("A"));
    Add(QStringLiteral("B"));
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_log.clear();
    const QStringList stack = m_view->m_stack;
    for (const QString& name : {QStringLiteral("C"), QString(), QStringLiteral("b")})
        QVERIFY(!m_view->SetPageTo(name, true));
    QCOMPARE(m_view->m_current, a);
    QCOMPARE(m_view->m_stack, stack);
    QVERIFY(!a->isHidden());
    QVERIFY(m_log.isEmpty());
}

void tst_ZrAppView::setPageToItself()
{
    Page* a = Add(QStringLiteral("A"));
    QCOMPARE(m_view->SetPageTo(QStringLiteral("A"), true), a);
    QCOMPARE(m_log, (QStringList{QStringLiteral("A close hidden"), QStringLiteral("A open hidden")}));
    QVERIFY(!a->isHidden());
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("A")});
}

void tst_ZrAppView::stackAfterHomeAAndB()
{
    auto* home = new Page(m_view.get(), QStringLiteral("Home"), m_log);
    auto* a = new Page(m_view.get(), QStringLiteral("A"), m_log);
    auto* b = new Page(m_view.get(), QStringLiteral("B"), m_log);
    m_view->m_pages = {{QStringLiteral("Home"), home}, {QStringLiteral("A"), a}, {QStringLiteral("B"), b}};
    // With no page before, nothing is remembered.
    m_view->SetPageTo(QStringLiteral("Home"), true);
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(m_log, QStringList{QStringLiteral("Home open shown")});
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->SetPageTo(QStringLiteral("B"), true);
    QCOMPARE(m_view->m_stack, (QStringList{QStringLiteral("A"), QStringLiteral("B")}));
}

void tst_ZrAppView::back()
{
    Page* home = Add(QStringLiteral("Home"));
    Page* a = Add(QStringLiteral("A"));
    Add(QStringLiteral("B"));
    Add(QStringLiteral("C"));
    for (const char* name : {"A", "B", "C"})
        m_view->SetPageTo(QLatin1String(name), true);
    m_view->Back();
    QCOMPARE(m_view->m_current, m_view->GetPage(QStringLiteral("B")));
    QCOMPARE(m_view->m_stack, (QStringList{QStringLiteral("A"), QStringLiteral("B")}));
    m_view->Back();
    QCOMPARE(m_view->m_current, a);
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("A")});
    m_log.clear();
    m_view->Back();
    QCOMPARE(m_view->m_current, home);
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(m_log, (QStringList{QStringLiteral("A close hidden"), QStringLiteral("Home open hidden")}));
}

void tst_ZrAppView::backWithEmptyStack()
{
    Page* home = Add(QStringLiteral("Home"));
    Add(QStringLiteral("A"), true);
    const Messages messages;
    m_view->Back();
    QCOMPARE(m_view->m_current, home);
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(s_messages, QStringList{QStringLiteral("Empty Stack")});
}

void tst_ZrAppView::backWithoutHome()
{
    Page* a = Add(QStringLiteral("A"));
    const Messages messages;
    m_view->Back();
    QCOMPARE(m_view->m_current, a);
    QVERIFY(!a->isHidden());
    QCOMPARE(s_messages, QStringList{QStringLiteral("Empty Stack")});
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->Back();
    QCOMPARE(m_view->m_current, a);
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(s_messages.size(), 1);
}

void tst_ZrAppView::backToAPageThatWent()
{
    Add(QStringLiteral("Home"));
    Page* a = Add(QStringLiteral("A"));
    Page* b = Add(QStringLiteral("B"));
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->SetPageTo(QStringLiteral("B"), true);
    delete a;
    m_view->Back();
    QCOMPARE(m_view->m_current, b);
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("A")});
    m_view->Back();
    QCOMPARE(m_view->m_current, m_view->GetPage(QStringLiteral("Home")));
}

void tst_ZrAppView::goHome()
{
    Page* home = Add(QStringLiteral("Home"));
    Add(QStringLiteral("A"));
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->GoHome();
    QCOMPARE(m_view->m_current, home);
    QVERIFY(m_view->m_stack.isEmpty());
    m_view->GoHome();
    QVERIFY(m_view->m_stack.isEmpty());
}

void tst_ZrAppView::goHomeWithoutHome()
{
    Page* a = Add(QStringLiteral("A"));
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->GoHome();
    QCOMPARE(m_view->m_current, a);
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("A")});
}

void tst_ZrAppView::pageThatGoesByItself()
{
    delete Add(QStringLiteral("A"));
    QVERIFY(!m_view->m_current);
    QVERIFY(!m_view->GetPage(QStringLiteral("A")));
    m_view->Update();
    Page* b = Add(QStringLiteral("B"));
    QCOMPARE(m_view->m_current, b);
}

void tst_ZrAppView::pagesFillTheView()
{
    m_view->resize(1111, 777);
    QCOMPARE(Add(QStringLiteral("A"))->geometry(), QRect(0, 0, 1111, 777));
}

void tst_ZrAppView::toggleSettings()
{
    m_view->ToggleSettings();
    QVERIFY(!m_view->forms().isHidden());
    m_view->ToggleSettings();
    QVERIFY(m_view->forms().isHidden());
    m_view->show();
    Add(QStringLiteral("A"));
    m_view->ToggleSettings();
    QVERIFY(m_view->forms().isVisible());
    // It lies above the page.
    const QObjectList& children = m_view->children();
    QCOMPARE(children.last(), &m_view->forms());
    m_view->forms().OnClose();
    m_view->ToggleSettings();
    QVERIFY(m_view->forms().isVisible());
}

void tst_ZrAppView::screenMode()
{
    m_view->show();
    m_view->ScreenMode();
    QVERIFY(m_view->isFullScreen());
    m_view->ScreenMode();
    QVERIFY(!m_view->isFullScreen() && !m_view->isMaximized());
    m_view->showMaximized();
    m_view->ScreenMode();
    QVERIFY(!m_view->isFullScreen() && !m_view->isMaximized());
}

void tst_ZrAppView::doubleClick_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("top") << 0 << int(Qt::LeftButton) << true;
    QTest::newRow("last line") << 199 << int(Qt::LeftButton) << true;
    QTest::newRow("below") << 200 << int(Qt::LeftButton) << false;
    QTest::newRow("right button") << 10 << int(Qt::RightButton) << false;
}

void tst_ZrAppView::doubleClick()
{
    QFETCH(int, y);
    QFETCH(int, button);
    QFETCH(bool, isTaken);
    m_view->show();
    QTest::mouseDClick(m_view.get(), Qt::MouseButton(button), Qt::NoModifier, QPoint(400, y));
    QCOMPARE(m_view->isFullScreen(), isTaken);
    if (!isTaken)
        return;
    QTest::mouseDClick(m_view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(400, 10));
    QVERIFY(!m_view->isFullScreen());
}

void tst_ZrAppView::dragInTheBand()
{
    m_view->show();
    m_view->move(100, 50);
    Settle();
    const QPoint origin = m_view->mapToGlobal(QPoint(0, 0));
    SendPress(*m_view, QPoint(300, 20));
    SendMove(*m_view, QPoint(330, 45));
    QCOMPARE(m_view->mapToGlobal(QPoint(0, 0)), origin + QPoint(30, 25));
}

void tst_ZrAppView::dragFollowsTheGlobalPosition()
{
    m_view->show();
    m_view->move(100, 50);
    Settle();
    SendPress(*m_view, QPoint(300, 20));
    for (int i = 1; i <= 20; ++i)
        SendMove(*m_view, QPoint(301, 21));
    QCOMPARE(m_view->pos(), QPoint(120, 70));
}

void tst_ZrAppView::noDragBelowTheBand()
{
    m_view->show();
    m_view->move(100, 50);
    Settle();
    SendPress(*m_view, QPoint(300, 200));
    SendMove(*m_view, QPoint(330, 150));
    QCOMPARE(m_view->pos(), QPoint(100, 50));
    // During a drag, a position below the band moves nothing.
    SendPress(*m_view, QPoint(300, 150));
    SendMove(*m_view, QPoint(330, 200));
    QCOMPARE(m_view->pos(), QPoint(100, 50));
    SendMove(*m_view, QPoint(330, 199));
    QCOMPARE(m_view->pos(), QPoint(130, 99));
}

void tst_ZrAppView::noDragByTheRightButton()
{
    m_view->show();
    m_view->move(100, 50);
    Settle();
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(300, 20), QPointF(300, 20), QPointF(400, 70),
        Qt::RightButton, Qt::RightButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view.get(), &press);
    SendMove(*m_view, QPoint(330, 45));
    QCOMPARE(m_view->pos(), QPoint(100, 50));
}

void tst_ZrAppView::noDragWhileMaximised()
{
    m_view->showMaximized();
    Settle();
    const QPoint before = m_view->pos();
    SendPress(*m_view, QPoint(300, 20));
    SendMove(*m_view, QPoint(330, 45));
    QCOMPARE(m_view->pos(), before);
}

void tst_ZrAppView::releaseEndsTheDrag()
{
    m_view->show();
    m_view->move(100, 50);
    Settle();
    SendPress(*m_view, QPoint(300, 20));
    SendRelease(*m_view, QPoint(300, 20));
    SendMove(*m_view, QPoint(330, 45));
    QCOMPARE(m_view->pos(), QPoint(100, 50));
}

void tst_ZrAppView::dragFromAPage()
{
    m_view->resize(1000, 700);
    Add(QStringLiteral("A"));
    m_view->show();
    m_view->move(100, 50);
    Settle();
    // What a page leaves alone drags the window.
    QTest::mousePress(m_view->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(300, 20));
    QTest::mouseMove(m_view->windowHandle(), QPoint(340, 50));
    Settle();
    QCOMPARE(m_view->pos(), QPoint(140, 80));
    QTest::mouseRelease(m_view->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(300, 20));
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
    Page* page = Add(QStringLiteral("Home"));
    page->m_number = 4;
    m_view->set_last_path(QString::fromUtf8("/Übung"));
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
    QCOMPARE(m_view->last_path(), QString::fromUtf8("/Übung"));
    QCOMPARE(ZrUnits::GetShortLengthUnits(), QStringLiteral("ft"));
    QCOMPARE(ZrUnits::GetGeoStyle(), eGeoUTM);
    QVERIFY(ZrTheme::tabletMode);
}

void tst_ZrAppView::settingsOfAnotherProgram()
{
    Page* page = Add(QStringLiteral("Home"));
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

void tst_ZrAppView::position()
{
    QSignalSpy spy(m_view.get(), &ZrAppView::PositionChanged);
    m_view->OnPosUpd(QGeoPositionInfo(QGeoCoordinate(51.5, -3.25, 12.5), QDateTime::fromMSecsSinceEpoch(0)));
    m_view->OnPosUpd(QGeoPositionInfo(QGeoCoordinate(-90, 180), QDateTime::fromMSecsSinceEpoch(0)));
    m_view->OnPosUpd(QGeoPositionInfo());
    QCOMPARE(m_view->m_positions.size(), 3);
    QCOMPARE(m_view->m_positions[0].source, QStringLiteral("Local"));
    QCOMPARE(m_view->m_positions[0].latitude, 51.5);
    QCOMPARE(m_view->m_positions[0].longitude, -3.25);
    QCOMPARE(m_view->m_positions[0].third, 12.5);
    QCOMPARE(m_view->m_positions[1].latitude, -90.0);
    QVERIFY(std::isnan(m_view->m_positions[1].third));
    QVERIFY(std::isnan(m_view->m_positions[2].latitude));
    QCOMPARE(spy.size(), 3);
    QCOMPARE(spy[0][0].toString(), QStringLiteral("Local"));
    QCOMPARE(spy[0][3].toDouble(), 12.5);
    QVERIFY(!m_view->last_position().isValid());
}

void tst_ZrAppView::captureGps()
{
    // Whatever the machine has: one line says which, and a second call replaces the first source.
    for (int i = 0; i < 2; ++i) {
        const Messages messages;
        m_view->CaptureGps();
        const bool isFound = !s_messages.filter(QStringLiteral("Found default positioning source")).isEmpty();
        const bool isMissing = !s_messages.filter(QStringLiteral("No default sources:")).isEmpty();
        QVERIFY(isFound != isMissing);
        QCOMPARE(m_view->findChildren<QGeoPositionInfoSource*>().size(), isFound ? 1 : 0);
    }
    QVERIFY(m_view->m_positions.isEmpty());
}

void tst_ZrAppView::positionsOfAFile()
{
    QBuffer file;
    file.setData(fixes);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QNmeaPositionInfoSource source(QNmeaPositionInfoSource::SimulationMode);
    source.setDevice(&file);
    connect(&source, &QGeoPositionInfoSource::positionUpdated, m_view.get(), &ZrAppView::OnPosUpd);
    source.startUpdates();
    QTRY_VERIFY(!m_view->m_positions.isEmpty());
    QVERIFY(std::abs(m_view->m_positions[0].latitude - (53 + 21.6802 / 60)) < 1e-9);
    QVERIFY(std::abs(m_view->m_positions[0].longitude + (6 + 30.3372 / 60)) < 1e-5);
    QCOMPARE(m_view->last_position().coordinate().latitude(), m_view->m_positions.last().latitude);
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
    auto first = std::make_unique<View>();
    const View second;
    QCOMPARE(ZrAppView::s_pApp, &second);
    first.reset();
    QCOMPARE(ZrAppView::s_pApp, &second);
}

QTEST_MAIN(tst_ZrAppView)
#include "tst_ZrAppView.moc"
