// How often the application's window is painted in each of its modes. Frames are counted against what asks
// for them, never against the clock.

#include "GlTest.h"
#include "ZrGlPages.h"

using std::chrono::milliseconds;

Q_DECLARE_METATYPE(ZrAppView::eUpdateMode)

class tst_ZrAppViewFrames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void oneFrameForEachTick_data();
    void oneFrameForEachTick();
    void ticksCoalesce();
    void idleIsIdle_data();
    void idleIsIdle();
    void timerPaces_data();
    void timerPaces();
    void updateCoalesces();
    void pageUpdateIsNoFrame();
    void updateReachesThePage();
    void continuousGoesOnByItself();
    void continuousWithoutPage();
    void continuousEndsWhenHidden();
    void continuousIsSwitchedOff();

private:
    /// Makes the view with one page and shows it.
    bool Open(milliseconds period, ZrAppView::eUpdateMode mode, milliseconds second);

    /// Fires the timer of the view.
    void Tick();

    /// Lets the event loop run until a timer of 100 ms has passed.
    static void Idle();

    std::unique_ptr<ZrAppState> m_state;
    std::unique_ptr<ZrGlView> m_view;
    ZrGlPage* m_page = nullptr;
};

void tst_ZrAppViewFrames::init()
{
    m_state = std::make_unique<ZrAppState>();
}

void tst_ZrAppViewFrames::cleanup()
{
    m_view.reset();
    m_state.reset();
}

bool tst_ZrAppViewFrames::Open(milliseconds period, ZrAppView::eUpdateMode mode, milliseconds second)
{
    m_view.reset();
    m_view = std::make_unique<ZrGlView>(period, mode, second);
    m_page = m_view->Add(QStringLiteral("Home"));
    // Frames are counted here, not looked at.
    m_page->m_hasBackground = false;
    return m_view->Open();
}

void tst_ZrAppViewFrames::Tick()
{
    QVERIFY(QMetaObject::invokeMethod(&m_view->Timer(), "timeout", Qt::DirectConnection));
}

void tst_ZrAppViewFrames::Idle()
{
    QTest::qWait(100);
    Settle();
}

void tst_ZrAppViewFrames::oneFrameForEachTick_data()
{
    QTest::addColumn<ZrAppView::eUpdateMode>("mode");
    QTest::addColumn<bool>("isEqual");
    QTest::newRow("0") << ZrAppView::updateTimer << false;
    QTest::newRow("1, equal") << ZrAppView::updateAdjusted << true;
    // Two connections to the timer, and still one frame.
    QTest::newRow("1, different") << ZrAppView::updateAdjusted << false;
}

void tst_ZrAppViewFrames::oneFrameForEachTick()
{
    QFETCH(ZrAppView::eUpdateMode, mode);
    QFETCH(bool, isEqual);
    const milliseconds second = isEqual ? ZrGlView::never : ZrGlView::never / 2;
    QVERIFY(Open(ZrGlView::never, mode, second));
    Idle();
    for (int i = 0; i < 4; ++i) {
        const int before = m_page->m_frames;
        Tick();
        QTRY_COMPARE(m_page->m_frames, before + 1);
        Settle();
        QCOMPARE(m_page->m_frames, before + 1);
    }
}

void tst_ZrAppViewFrames::ticksCoalesce()
{
    QVERIFY(Open(ZrGlView::never, ZrAppView::updateAdjusted, milliseconds(3600 * 100)));
    Idle();
    const int before = m_page->m_frames;
    for (int i = 0; i < 20; ++i)
        Tick();
    QTRY_COMPARE(m_page->m_frames, before + 1);
    Idle();
    QCOMPARE(m_page->m_frames, before + 1);
}

void tst_ZrAppViewFrames::idleIsIdle_data()
{
    oneFrameForEachTick_data();
}

void tst_ZrAppViewFrames::idleIsIdle()
{
    QFETCH(ZrAppView::eUpdateMode, mode);
    QFETCH(bool, isEqual);
    QVERIFY(Open(ZrGlView::never, mode, isEqual ? ZrGlView::never : ZrGlView::never / 2));
    Idle();
    const int before = m_page->m_frames;
    for (int i = 0; i < 3; ++i)
        Idle();
    QCOMPARE(m_page->m_frames, before);
}

void tst_ZrAppViewFrames::timerPaces_data()
{
    QTest::addColumn<ZrAppView::eUpdateMode>("mode");
    QTest::addColumn<int>("period");
    QTest::addColumn<int>("second");
    const int never = static_cast<int>(ZrGlView::never.count());
    QTest::newRow("0") << ZrAppView::updateTimer << 10 << never;
    QTest::newRow("1, equal") << ZrAppView::updateAdjusted << 10 << 10;
    QTest::newRow("1, different") << ZrAppView::updateAdjusted << never << 10;
}

void tst_ZrAppViewFrames::timerPaces()
{
    QFETCH(ZrAppView::eUpdateMode, mode);
    QFETCH(int, period);
    QFETCH(int, second);
    QVERIFY(Open(milliseconds(period), mode, milliseconds(second)));
    Idle();
    int ticks = 0;
    connect(&m_view->Timer(), &QTimer::timeout, this, [&] { ++ticks; });
    const int before = m_page->m_frames;
    QTRY_VERIFY_WITH_TIMEOUT(ticks >= 20 && m_page->m_frames >= before + 5, 40000);
    // One may have been asked for by the tick before the count began.
    QVERIFY2(m_page->m_frames - before <= ticks + 1,
        qPrintable(QStringLiteral("%1 frames, %2 ticks").arg(m_page->m_frames - before).arg(ticks)));
    const int asked = 3;
    const int ticksBefore = ticks;
    const int framesBefore = m_page->m_frames;
    for (int i = 0; i < asked; ++i) {
        m_view->Update();
        Settle();
    }
    QVERIFY(m_page->m_frames - framesBefore <= ticks - ticksBefore + asked + 1);
    disconnect(&m_view->Timer(), nullptr, this, nullptr);
}

void tst_ZrAppViewFrames::updateCoalesces()
{
    QVERIFY(Open(ZrGlView::never, ZrAppView::updateTimer, ZrGlView::never));
    Idle();
    const int before = m_page->m_frames;
    for (int i = 0; i < 1000; ++i)
        m_view->Update();
    QTRY_COMPARE(m_page->m_frames, before + 1);
    Idle();
    QCOMPARE(m_page->m_frames, before + 1);
}

/// A page that paints its own widgets anew costs no frame.
void tst_ZrAppViewFrames::pageUpdateIsNoFrame()
{
    QVERIFY(Open(ZrGlView::never, ZrAppView::updateTimer, ZrGlView::never));
    Idle();
    ZrPaintCounter paints(*m_page);
    const int before = m_page->m_frames;
    m_page->update();
    QVERIFY(paints.Take() > 0);
    QCOMPARE(m_page->m_frames, before);
}

void tst_ZrAppViewFrames::updateReachesThePage()
{
    QVERIFY(Open(ZrGlView::never, ZrAppView::updateTimer, ZrGlView::never));
    Idle();
    ZrPaintCounter paints(*m_page);
    QCOMPARE(paints.Take(), 0);
    m_view->Update();
    QVERIFY(paints.Take() > 0);
    Tick();
    QVERIFY(paints.Take() > 0);
}

void tst_ZrAppViewFrames::continuousGoesOnByItself()
{
    QVERIFY(Open(ZrGlView::never, ZrAppView::updateContinuous, ZrGlView::never));
    QVERIFY(m_view->m_continuous);
    int ticks = 0;
    connect(&m_view->Timer(), &QTimer::timeout, this, [&] { ++ticks; });
    const int before = m_page->m_frames;
    QTRY_VERIFY_WITH_TIMEOUT(m_page->m_frames >= before + 20, 40000);
    QCOMPARE(ticks, 0);
    // The timer runs all the same.
    QVERIFY(m_view->Timer().isActive());
    QCOMPARE(m_view->Timer().intervalAsDuration(), ZrGlView::never);
}

void tst_ZrAppViewFrames::continuousWithoutPage()
{
    m_view = std::make_unique<ZrGlView>(ZrGlView::never, ZrAppView::updateContinuous, ZrGlView::never);
    QVERIFY(m_view->Open());
    const int before = m_view->m_paints;
    QTRY_VERIFY_WITH_TIMEOUT(m_view->m_paints >= before + 10, 40000);
}

void tst_ZrAppViewFrames::continuousEndsWhenHidden()
{
    QVERIFY(Open(ZrGlView::never, ZrAppView::updateContinuous, ZrGlView::never));
    m_view->hide();
    Settle();
    const int before = m_view->m_paints;
    Idle();
    QCOMPARE(m_view->m_paints, before);
    // And goes on when it is shown again.
    m_view->show();
    QTRY_VERIFY_WITH_TIMEOUT(m_view->m_paints >= before + 10, 40000);
}

void tst_ZrAppViewFrames::continuousIsSwitchedOff()
{
    QVERIFY(Open(ZrGlView::never, ZrAppView::updateContinuous, ZrGlView::never));
    m_view->m_continuous = false;
    Idle();
    const int before = m_page->m_frames;
    Idle();
    QCOMPARE(m_page->m_frames, before);
}

GL_TEST_MAIN(tst_ZrAppViewFrames)
#include "tst_ZrAppViewFrames.moc"
