// The time line as fingers, mouse and wheel use it: what it tells, what it shows, when it repaints.

#include "TouchOn.h"
#include "ZrKit/review/ZrSteadyTime.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrUiChecks.h"

#include <QSignalSpy>
#include <QTouchEvent>
#include <QWheelEvent>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double start = 1614780300.0;
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

/// 100 records a second apart, an hour's gap, 100 more.
std::shared_ptr<const ZrSteadyTime> Log()
{
    auto log = std::make_shared<ZrSteadyTime>();
    for (int i = 0; i < 200; ++i)
        log->Append(start + i + (i >= 100 ? 3600.0 : 0.0));
    return log;
}

void SendWheel(
    QWidget& widget, const QPoint& pos, int notches, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QWheelEvent event(pos, widget.mapToGlobal(pos), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
        modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

class tst_ZrTimeBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void dragScrubs();
    void eventsAttract();
    void flagIsTapped();
    void flagDraggedScrubs();
    void handlesAreDragged();
    void wheelZoomsAboutTheMouse();
    void shiftAndWheelMoveAlong();
    void twoFingersZoom();
    void secondFingerEndsTheScrub();
    void gapIsOnePlace();
    void gapIsRealTime();
    void revealMovesAsLittleAsNeeded();
    void paintsOnlyChanges();
    void withoutLog();
    void hostileValues();
    void everyPartIsPainted();

private:
    QPoint At(double steady, bool isUpper = false) const
    {
        return {qRound(m_bar->XOf(steady)), isUpper ? 8 : m_bar->height() / 2 + 10};
    }

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrTimeBar> m_bar;
};

void tst_ZrTimeBar::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_bar = std::make_unique<ZrTimeBar>(nullptr);
    m_bar->resize(1000, 96);
    m_bar->SetLog(Log());
    m_bar->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_bar.get()));
    Settle();
}

void tst_ZrTimeBar::cleanup()
{
    m_bar.reset();
    m_theme.reset();
}

void tst_ZrTimeBar::dragScrubs()
{
    const QSignalSpy began(m_bar.get(), &ZrTimeBar::ScrubBegan);
    const QSignalSpy scrubbed(m_bar.get(), &ZrTimeBar::Scrubbed);
    const QSignalSpy ended(m_bar.get(), &ZrTimeBar::ScrubEnded);
    SendPress(*m_bar, At(start + 10.0));
    QCOMPARE(began.size(), 1);
    QCOMPARE(scrubbed.size(), 1);
    SendMove(*m_bar, At(start + 50.0));
    SendMove(*m_bar, At(start + 80.0));
    SendRelease(*m_bar, At(start + 80.0));
    QCOMPARE(scrubbed.size(), 3);
    QCOMPARE(ended.size(), 1);
    for (const auto& [index, expected] : {std::pair(0, 10.0), std::pair(1, 50.0), std::pair(2, 80.0)}) {
        const double at = scrubbed[index][0].toDouble() - start;
        QVERIFY2(std::fabs(at - expected) < 0.3, qPrintable(QString::number(at)));
    }
    // Beyond the edges it is the begin and the end.
    SendPress(*m_bar, QPoint(-50, 60));
    QCOMPARE(scrubbed.last()[0].toDouble(), start);
    SendMove(*m_bar, QPoint(5000, 60));
    QVERIFY(std::fabs(scrubbed.last()[0].toDouble() - (start + 3799.0)) < 1e-6);
    // The bar moves no cursor itself.
    QVERIFY(std::isnan(m_bar->Cursor()));
}

void tst_ZrTimeBar::eventsAttract()
{
    m_bar->SetEvents({start + 33.3});
    const QSignalSpy scrubbed(m_bar.get(), &ZrTimeBar::Scrubbed);
    SendPress(*m_bar, At(start + 33.3) + QPoint(4, 0));
    QCOMPARE(scrubbed[0][0].toDouble(), start + 33.3);
    SendMove(*m_bar, At(start + 33.3) + QPoint(12, 0));
    QVERIFY(scrubbed[1][0].toDouble() > start + 34.0);
}

void tst_ZrTimeBar::flagIsTapped()
{
    m_bar->SetEvents({start + 20.0, start + 60.0});
    const QSignalSpy tapped(m_bar.get(), &ZrTimeBar::EventTapped);
    const QSignalSpy scrubbed(m_bar.get(), &ZrTimeBar::Scrubbed);
    SendPress(*m_bar, At(start + 60.0, true) + QPoint(10, 0));
    SendRelease(*m_bar, At(start + 60.0, true) + QPoint(10, 0));
    QCOMPARE(tapped.size(), 1);
    QCOMPARE(tapped[0][0].toInt(), 1);
    QCOMPARE(scrubbed.size(), 0);
}

void tst_ZrTimeBar::flagDraggedScrubs()
{
    m_bar->SetEvents({start + 20.0});
    const QSignalSpy tapped(m_bar.get(), &ZrTimeBar::EventTapped);
    const QSignalSpy scrubbed(m_bar.get(), &ZrTimeBar::Scrubbed);
    SendPress(*m_bar, At(start + 20.0, true));
    SendMove(*m_bar, At(start + 40.0, true));
    SendRelease(*m_bar, At(start + 40.0, true));
    QCOMPARE(tapped.size(), 0);
    QCOMPARE(scrubbed.size(), 1);
}

void tst_ZrTimeBar::handlesAreDragged()
{
    m_bar->SetRange(start + 20.0, start + 60.0);
    const QSignalSpy changed(m_bar.get(), &ZrTimeBar::RangeChanged);
    const QSignalSpy scrubbed(m_bar.get(), &ZrTimeBar::Scrubbed);
    SendPress(*m_bar, At(start + 60.0, true) + QPoint(8, 0));
    SendMove(*m_bar, At(start + 80.0, true));
    SendRelease(*m_bar, At(start + 80.0, true));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].toDouble(), start + 20.0);
    QVERIFY(std::fabs(m_bar->RangeB() - (start + 80.0)) < 0.3);
    QCOMPARE(scrubbed.size(), 0);
}

void tst_ZrTimeBar::wheelZoomsAboutTheMouse()
{
    const QSignalSpy viewed(m_bar.get(), &ZrTimeBar::ViewChanged);
    const QPoint pos = At(start + 30.0);
    const double before = m_bar->Line().VisibleLength();
    SendWheel(*m_bar, pos, 3);
    QCOMPARE(viewed.size(), 1);
    QVERIFY(std::fabs(m_bar->Line().VisibleLength() - before / std::pow(1.25, 3)) < 1e-6);
    QVERIFY(std::fabs(m_bar->XOf(start + 30.0) - pos.x()) <= 1.0);
    SendWheel(*m_bar, pos, -10);
    QVERIFY(m_bar->Line().IsAllVisible());
}

void tst_ZrTimeBar::shiftAndWheelMoveAlong()
{
    SendWheel(*m_bar, At(start + 10.0), 8);
    const double begin = m_bar->Line().VisibleBegin();
    const double length = m_bar->Line().VisibleLength();
    SendWheel(*m_bar, At(start + 10.0), -2, Qt::ShiftModifier);
    QVERIFY(std::fabs(m_bar->Line().VisibleBegin() - begin - 0.2 * length) < 1e-6);
    QCOMPARE(m_bar->Line().VisibleLength(), length);
}

void tst_ZrTimeBar::twoFingersZoom()
{
    QTouchDevice* device = QTest::createTouchDevice();
    const QSignalSpy scrubbed(m_bar.get(), &ZrTimeBar::Scrubbed);
    const double before = m_bar->Line().VisibleLength();
    TouchOn(m_bar.get(), device)
        .press(1, QPoint(400, 60), m_bar.get())
        .press(2, QPoint(600, 60), m_bar.get());
    TouchOn(m_bar.get(), device).move(1, QPoint(300, 60), m_bar.get()).move(2, QPoint(700, 60), m_bar.get());
    TouchOn(m_bar.get(), device)
        .release(1, QPoint(300, 60), m_bar.get())
        .release(2, QPoint(700, 60), m_bar.get());
    QVERIFY(std::fabs(m_bar->Line().VisibleLength() - before / 2.0) < 1.0);
    QCOMPARE(scrubbed.size(), 0);
}

void tst_ZrTimeBar::secondFingerEndsTheScrub()
{
    QTouchDevice* device = QTest::createTouchDevice();
    const QSignalSpy scrubbed(m_bar.get(), &ZrTimeBar::Scrubbed);
    const QSignalSpy ended(m_bar.get(), &ZrTimeBar::ScrubEnded);
    TouchOn(m_bar.get(), device).press(1, QPoint(400, 60), m_bar.get());
    QCOMPARE(scrubbed.size(), 1);
    TouchOn(m_bar.get(), device).stationary(1).press(2, QPoint(600, 60), m_bar.get());
    QCOMPARE(ended.size(), 1);
    TouchOn(m_bar.get(), device).move(1, QPoint(380, 60), m_bar.get()).stationary(2);
    TouchOn(m_bar.get(), device).stationary(1).release(2, QPoint(600, 60), m_bar.get());
    TouchOn(m_bar.get(), device).move(1, QPoint(300, 60), m_bar.get());
    TouchOn(m_bar.get(), device).release(1, QPoint(300, 60), m_bar.get());
    QCOMPARE(scrubbed.size(), 1);
    QCOMPARE(ended.size(), 1);
}

void tst_ZrTimeBar::gapIsOnePlace()
{
    QCOMPARE(qRound(m_bar->XOf(start + 99.0)), qRound(m_bar->XOf(start + 3600.0 + 99.5)));
    QVERIFY(m_bar->XOf(start + 3600.0 + 110.0) - m_bar->XOf(start + 90.0) < 120.0);
}

/// As long as it was, hatched, with its length on it; the next log is shown the same way.
void tst_ZrTimeBar::gapIsRealTime()
{
    const QImage cut = m_bar->grab().toImage();
    QSignalSpy viewed(m_bar.get(), &ZrTimeBar::ViewChanged);
    m_bar->SetGapsCut(false);
    QCOMPARE(viewed.size(), 1);
    QVERIFY(!m_bar->AreGapsCut());
    m_bar->ShowAll();
    const double gap = m_bar->XOf(start + 3600.0 + 99.9) - m_bar->XOf(start + 99.0);
    QVERIFY2(gap > 850.0, qPrintable(QString::number(gap)));
    const QImage real = m_bar->grab().toImage();
    const int y = m_bar->height() / 2;
    int changes = 0;
    for (int x = 150; x < 400; ++x)
        changes += real.pixel(x, y) != real.pixel(x + 1, y) ? 1 : 0;
    QVERIFY2(changes > 30, qPrintable(QString::number(changes)));
    m_bar->SetLog(Log());
    QVERIFY(!m_bar->AreGapsCut());
    viewed.clear();
    m_bar->SetGapsCut(false);
    QCOMPARE(viewed.size(), 0);
    m_bar->SetGapsCut(true);
    m_bar->ShowAll();
    QCOMPARE(m_bar->grab().toImage(), cut);
}

void tst_ZrTimeBar::revealMovesAsLittleAsNeeded()
{
    m_bar->ShowRange(start, start + 20.0);
    QSignalSpy viewed(m_bar.get(), &ZrTimeBar::ViewChanged);
    m_bar->Reveal(start + 10.0);
    QCOMPARE(viewed.size(), 0);
    m_bar->Reveal(start + 30.0);
    QCOMPARE(viewed.size(), 1);
    QVERIFY(std::fabs(m_bar->Line().VisibleEnd() - (start + 32.0)) < 1e-6);
}

void tst_ZrTimeBar::paintsOnlyChanges()
{
    ZrPaintCounter paints(*m_bar);
    paints.Take();
    m_bar->SetCursor(start + 5.0);
    QCOMPARE(paints.Take(), 1);
    m_bar->SetCursor(start + 5.0);
    QCOMPARE(paints.Take(), 0);
    m_bar->SetCursor(unknown);
    QCOMPARE(paints.Take(), 1);
    m_bar->SetCursor(unknown);
    m_bar->SetCurrentEvent(-1);
    m_bar->Reveal(start + 50.0);
    QCOMPARE(paints.Take(), 0);
}

void tst_ZrTimeBar::withoutLog()
{
    m_bar->SetLog(nullptr);
    const QSignalSpy scrubbed(m_bar.get(), &ZrTimeBar::Scrubbed);
    QTest::mouseClick(m_bar.get(), Qt::LeftButton, Qt::NoModifier, QPoint(300, 60));
    SendWheel(*m_bar, QPoint(300, 60), 2);
    m_bar->Reveal(start);
    QCOMPARE(scrubbed.size(), 0);
    QVERIFY(!Painted(*m_bar).isNull());
    // A log without any time is none.
    auto timeless = std::make_shared<ZrSteadyTime>();
    timeless->Append(unknown);
    m_bar->SetLog(timeless);
    QTest::mouseClick(m_bar.get(), Qt::LeftButton, Qt::NoModifier, QPoint(300, 60));
    QCOMPARE(scrubbed.size(), 0);
}

void tst_ZrTimeBar::hostileValues()
{
    const double infinite = std::numeric_limits<double>::infinity();
    m_bar->SetRange(infinite, -infinite);
    m_bar->SetCursor(infinite);
    m_bar->SetEvents({-1e300, start, 1e300});
    m_bar->SetCurrentEvent(99);
    m_bar->Zoom(unknown, unknown);
    m_bar->Pan(infinite);
    QVERIFY(!Painted(*m_bar).isNull());
    m_bar->resize(3, 2);
    QVERIFY(!Painted(*m_bar).isNull());
}

void tst_ZrTimeBar::everyPartIsPainted()
{
    const QImage bare = Painted(*m_bar);
    m_bar->SetCursor(start + 40.0);
    const QImage cursor = Painted(*m_bar);
    QVERIFY(cursor != bare);
    QCOMPARE(cursor.pixelColor(At(start + 40.0)), ZrTheme::ctrlCol);
    m_bar->SetEvents({start + 70.0});
    const QImage event = Painted(*m_bar);
    QVERIFY(event != cursor);
    QVERIFY(HasColour(event, ZrTheme::warnCol));
    m_bar->SetRange(start + 10.0, start + 30.0);
    QVERIFY(HasColour(Painted(*m_bar), ZrTheme::goodCol));
    // Out of view it is not painted.
    m_bar->ShowRange(start, start + 20.0);
    const QImage before = Painted(*m_bar);
    m_bar->SetCursor(unknown);
    QCOMPARE(Painted(*m_bar), before);
}

QTEST_MAIN(tst_ZrTimeBar)
#include "tst_ZrTimeBar.moc"
