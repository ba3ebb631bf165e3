// The progress panel: its interface, when it repaints, what it paints.

#include "ZrUiChecks.h"
#include "ZrUtil/ZrProgress.h"

#include <QtTest>

#include <limits>
#include <memory>

static_assert(std::is_base_of_v<QWidget, ZrProgress> && std::is_base_of_v<IZrProgress, ZrProgress>);

namespace {

/// Percentages while they are painted, without the event loop.
class PaintRecorder : public QObject
{
public:
    explicit PaintRecorder(ZrProgress& panel)
        : m_panel(panel)
    {
        panel.installEventFilter(this);
    }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            painted += m_panel.percent;
        return false;
    }

    QList<int> painted;

private:
    ZrProgress& m_panel;
};

} // namespace

class tst_ZrProgress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void asMade();
    void startAndStop();
    void startingAgain();
    void raisedAboveSiblings();
    void repaintsAtOnce();
    void sameValueDoesNotRepaint();
    void hiddenPanelIsNotPainted();
    void throughTheInterface();
    void percentDoneForwards();
    void percentDoneFromAThread();

    void barGrows();
    void strangeValues_data();
    void strangeValues();
    void mirrored();
    void longTextLeavesTheNumber();
    void tinySizes();

private:
    /// Pixels of the bar that are filled.
    int Filled();

    std::unique_ptr<QWidget> m_window;
    ZrProgress* m_panel = nullptr;
};

void tst_ZrProgress::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<QWidget>();
    m_window->resize(500, 300);
    m_panel = new ZrProgress(m_window.get());
    m_panel->setGeometry(0, 0, 420, 120);
    m_panel->hide();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void tst_ZrProgress::cleanup()
{
    m_window.reset();
}

int tst_ZrProgress::Filled()
{
    QColor fill = ZrTheme::ctrlCheckCol;
    fill.setAlpha(255);
    const QImage image = Painted(*m_panel);
    int count = 0;
    for (int x = 0; x < image.width(); ++x)
        count += image.pixelColor(x, 90) == fill ? 1 : 0;
    return count;
}

void tst_ZrProgress::asMade()
{
    ZrProgress panel;
    QCOMPARE(panel.text, QStringLiteral("Progress..."));
    QCOMPARE(panel.percent, 0);
    QCOMPARE(panel.GetProgress(), 0);
    QVERIFY(panel.hasMouseTracking());
    QVERIFY(!panel.isVisible());
    QCOMPARE(ZrProgress::staticMetaObject.className(), "ZrProgress");
    QVERIFY(ZrProgress::staticMetaObject.indexOfSlot("OnPercentDone(int)") >= 0);
}

void tst_ZrProgress::startAndStop()
{
    m_panel->percent = 77;
    m_panel->Start();
    QVERIFY(m_panel->isVisible());
    QCOMPARE(m_panel->percent, 0);
    m_panel->UpdateProgress(40);
    m_panel->Stop();
    QVERIFY(!m_panel->isVisible());
    QCOMPARE(m_panel->percent, 40);
    m_panel->Stop();
    m_panel->Start();
    QCOMPARE(m_panel->percent, 0);
}

void tst_ZrProgress::startingAgain()
{
    m_panel->Start();
    m_panel->UpdateProgress(40);
    PaintRecorder recorder(*m_panel);
    m_panel->Start();
    Settle();
    QCOMPARE(recorder.painted, QList<int>({0}));
}

void tst_ZrProgress::raisedAboveSiblings()
{
    QWidget sibling(m_window.get());
    sibling.setGeometry(0, 0, 500, 300);
    sibling.show();
    m_panel->Start();
    QCOMPARE(m_window->childAt(50, 50), static_cast<QWidget*>(m_panel));
}

// The work keeps the event loop from running.
void tst_ZrProgress::repaintsAtOnce()
{
    m_panel->Start();
    Settle();
    PaintRecorder recorder(*m_panel);
    m_panel->UpdateProgress(5);
    m_panel->UpdateProgress(6);
    m_panel->UpdateProgress(4);
    QCOMPARE(recorder.painted, QList<int>({5, 6, 4}));
}

void tst_ZrProgress::sameValueDoesNotRepaint()
{
    m_panel->Start();
    Settle();
    PaintRecorder recorder(*m_panel);
    m_panel->UpdateProgress(0);
    Settle();
    QVERIFY(recorder.painted.isEmpty());
    m_panel->UpdateProgress(50);
    m_panel->UpdateProgress(50);
    m_panel->OnPercentDone(50);
    Settle();
    QCOMPARE(recorder.painted, QList<int>({50}));
}

void tst_ZrProgress::hiddenPanelIsNotPainted()
{
    PaintRecorder recorder(*m_panel);
    m_panel->UpdateProgress(30);
    QCOMPARE(m_panel->GetProgress(), 30);
    QVERIFY(recorder.painted.isEmpty());
}

void tst_ZrProgress::throughTheInterface()
{
    IZrProgress& progress = *m_panel;
    progress.UpdateProgress(31);
    QCOMPARE(progress.GetProgress(), 31);
    QCOMPARE(m_panel->percent, 31);
}

void tst_ZrProgress::percentDoneForwards()
{
    m_panel->OnPercentDone(62);
    QCOMPARE(m_panel->GetProgress(), 62);
    QVERIFY(QMetaObject::invokeMethod(m_panel, "OnPercentDone", Q_ARG(int, 63)));
    QCOMPARE(m_panel->GetProgress(), 63);
}

void tst_ZrProgress::percentDoneFromAThread()
{
    m_panel->Start();
    const std::unique_ptr<QThread> worker(QThread::create([this] {
        for (int percent = 0; percent <= 100; ++percent)
            QMetaObject::invokeMethod(m_panel, "OnPercentDone", Qt::QueuedConnection, Q_ARG(int, percent));
    }));
    worker->start();
    QTRY_COMPARE(m_panel->GetProgress(), 100);
    QVERIFY(worker->wait());
}

void tst_ZrProgress::barGrows()
{
    QCOMPARE(Filled(), 0);
    int before = 0;
    for (int percent = 10; percent <= 100; percent += 10) {
        m_panel->percent = percent;
        const int filled = Filled();
        QVERIFY(filled > before);
        QVERIFY(qAbs(filled - 3.76 * percent) < 12.0);
        before = filled;
    }
    m_panel->percent = 1;
    QVERIFY(Filled() > 0);
}

void tst_ZrProgress::strangeValues_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<int>("like");
    QTest::newRow("negative") << -5 << 0;
    QTest::newRow("least") << std::numeric_limits<int>::min() << 0;
    QTest::newRow("too much") << 101 << 100;
    QTest::newRow("most") << std::numeric_limits<int>::max() << 100;
}

void tst_ZrProgress::strangeValues()
{
    QFETCH(int, percent);
    QFETCH(int, like);
    m_panel->UpdateProgress(percent);
    QCOMPARE(m_panel->GetProgress(), percent);
    const int filled = Filled();
    m_panel->UpdateProgress(like);
    QCOMPARE(filled, Filled());
}

void tst_ZrProgress::mirrored()
{
    m_panel->percent = 30;
    QColor fill = ZrTheme::ctrlCheckCol;
    fill.setAlpha(255);
    const auto filledAt = [&](int x) { return Painted(*m_panel).pixelColor(x, 90) == fill; };
    QVERIFY(filledAt(60) && !filledAt(360));
    m_panel->setLayoutDirection(Qt::RightToLeft);
    QVERIFY(!filledAt(60) && filledAt(360));
}

void tst_ZrProgress::longTextLeavesTheNumber()
{
    const auto number = [this] { return Painted(*m_panel).copy(350, 20, 60, 50); };
    m_panel->percent = 88;
    m_panel->text.clear();
    const QImage alone = number();
    QVERIFY(HasColour(alone, ZrTheme::titleCol));
    m_panel->text = QString(300, QLatin1Char('m'));
    QCOMPARE(number(), alone);
}

void tst_ZrProgress::tinySizes()
{
    m_panel->percent = 50;
    for (const QSize& size : {QSize(0, 0), QSize(1, 1), QSize(1, 100), QSize(100, 1), QSize(41, 41)}) {
        m_panel->resize(size);
        QImage image(200, 200, QImage::Format_RGB32);
        image.fill(Qt::black);
        m_panel->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        QCOMPARE(image.pixelColor(199, 199), QColor(Qt::black));
    }
}

QTEST_MAIN(tst_ZrProgress)
#include "tst_ZrProgress.moc"
