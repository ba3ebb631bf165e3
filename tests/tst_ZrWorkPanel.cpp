#include "ZrKit/review/ZrWorker.h"
#include "ZrKit/ui/ZrWorkPanel.h"
#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QtTest>

#include <atomic>

namespace {

constexpr int patience = 60000; ///< milliseconds

/// Counts what reaches the window below.
class Window : public QWidget
{
public:
    int m_presses = 0;

protected:
    void mousePressEvent(QMouseEvent* /*event*/) override { ++m_presses; }
};

} // namespace

class tst_ZrWorkPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void comesAndGoes();
    void shortWorkShowsNothing();
    void progress();
    void cancelByButton();
    void cancelByKey();
    void takesAllInput();
    void coversItsParent();
    void secondWork();
    void everySize();

private:
    /// Work that goes on until `m_go` is given, or it is cancelled.
    void Begin(const QString& text = QStringLiteral("Exporting äß"))
    {
        m_isStopped = false;
        m_panel->Begin(*m_worker, text);
        QVERIFY(m_worker->Start(
            [this](IZrProgress& progress) {
                m_progress = &progress;
                m_started.release();
                while (!m_isStopped && !m_go.tryAcquire(1, 5)) { }
            },
            [this] { m_isStopped = true; }));
        m_started.acquire();
    }

    void End()
    {
        m_go.release();
        QTRY_VERIFY_WITH_TIMEOUT(!m_worker->IsWorking(), patience);
    }

    /// The button with a text: there is nothing to accept.
    ZrBtn& Cancel() const
    {
        const auto buttons = m_panel->findChildren<ZrBtn*>();
        return **std::find_if(
            buttons.begin(), buttons.end(), [](const ZrBtn* button) { return !button->text.isEmpty(); });
    }

    std::unique_ptr<Window> m_window;
    std::unique_ptr<ZrWorker> m_worker;
    ZrWorkPanel* m_panel = nullptr;
    IZrProgress* m_progress = nullptr;
    QSemaphore m_started;
    QSemaphore m_go;
    std::atomic<bool> m_isStopped{false};
};

void tst_ZrWorkPanel::init()
{
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<Window>();
    m_window->resize(1280, 800);
    m_panel = new ZrWorkPanel(m_window.get());
    m_worker = std::make_unique<ZrWorker>();
    m_window->show();
    QApplication::setActiveWindow(m_window.get());
}

void tst_ZrWorkPanel::cleanup()
{
    m_isStopped = true;
    m_worker.reset();
    m_window.reset();
    m_go.tryAcquire(m_go.available());
}

void tst_ZrWorkPanel::comesAndGoes()
{
    QVERIFY(!m_panel->isVisible());
    Begin();
    QVERIFY(m_panel->isVisible());
    QCOMPARE(m_panel->accessibleName(), QStringLiteral("Exporting äß"));
    QCOMPARE(m_panel->Percent(), 0);
    // At first it only covers.
    QVERIFY(!Cancel().isVisible());
    QTRY_VERIFY(Cancel().isVisible());
    QVERIFY(!m_panel->grab().isNull());
    End();
    QTRY_VERIFY(!m_panel->isVisible());
}

void tst_ZrWorkPanel::shortWorkShowsNothing()
{
    m_panel->Begin(*m_worker, QStringLiteral("Opening"));
    QVERIFY(m_worker->Start([](IZrProgress&) {}, {}));
    QTRY_VERIFY_WITH_TIMEOUT(!m_worker->IsWorking(), patience);
    QVERIFY(!m_panel->isVisible());
    QTest::qWait(2 * ZrWorkPanel::DelayMilliseconds);
    QVERIFY(!m_panel->isVisible());
    QVERIFY(!Cancel().isVisible());
}

void tst_ZrWorkPanel::progress()
{
    Begin();
    QTRY_VERIFY(Cancel().isVisible());
    const QImage before = m_panel->grab().toImage();
    m_progress->UpdateProgress(40);
    QTRY_COMPARE(m_panel->Percent(), 40);
    QVERIFY(m_panel->grab().toImage() != before);
    // What is no percentage is drawn as the next one that is.
    for (const int percent : {-5, 300}) {
        m_progress->UpdateProgress(percent);
        QTRY_COMPARE(m_panel->Percent(), percent);
        QVERIFY(!m_panel->grab().isNull());
    }
    End();
}

void tst_ZrWorkPanel::cancelByButton()
{
    QSignalSpy finished(m_worker.get(), &ZrWorker::Finished);
    Begin();
    QTRY_VERIFY(Cancel().isVisible());
    QVERIFY(Cancel().isEnabled());
    const QString text = Cancel().text;
    QTest::mouseClick(&Cancel(), Qt::LeftButton);
    QVERIFY(Cancel().text != text);
    QVERIFY(!Cancel().isEnabled());
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, patience);
    QVERIFY(m_worker->IsCancelled());
    QVERIFY(!m_panel->isVisible());
    // The next work can be cancelled anew.
    Begin();
    QCOMPARE(Cancel().text, text);
    QVERIFY(Cancel().isEnabled());
    m_panel->Cancel();
    m_panel->Cancel();
    QTRY_VERIFY_WITH_TIMEOUT(!m_worker->IsWorking(), patience);
    m_panel->Cancel(); // nothing is under way
    QCOMPARE(finished.size(), 2);
}

void tst_ZrWorkPanel::cancelByKey()
{
    Begin();
    QTest::keyClick(m_panel, Qt::Key_A);
    QVERIFY(!m_worker->IsCancelled());
    QTest::keyClick(m_panel, Qt::Key_Escape);
    QVERIFY(m_worker->IsCancelled());
    QTRY_VERIFY_WITH_TIMEOUT(!m_worker->IsWorking(), patience);
}

void tst_ZrWorkPanel::takesAllInput()
{
    const QPoint at(50, 50);
    QTest::mouseClick(m_window.get(), Qt::LeftButton, Qt::NoModifier, at);
    QCOMPARE(m_window->m_presses, 1);
    Begin();
    QCOMPARE(m_window->childAt(at), static_cast<QWidget*>(m_panel));
    QTest::mouseClick(m_window->childAt(at), Qt::LeftButton, Qt::NoModifier, at);
    QCOMPARE(m_window->m_presses, 1);
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(m_panel));
    End();
    QVERIFY(m_window->childAt(at) != m_panel);
    QVERIFY(QApplication::focusWidget() != m_panel);
}

void tst_ZrWorkPanel::coversItsParent()
{
    Begin();
    QCOMPARE(m_panel->geometry(), m_window->rect());
    m_window->resize(900, 600);
    QCOMPARE(m_panel->geometry(), m_window->rect());
    QVERIFY(m_panel->rect().contains(Cancel().geometry()));
    End();
}

/// Begun while another is shown: the first one's end does not end it.
void tst_ZrWorkPanel::secondWork()
{
    Begin();
    ZrWorker other;
    m_panel->Begin(other, QStringLiteral("Other"));
    QSemaphore go;
    QVERIFY(other.Start([&go](IZrProgress&) { go.acquire(); }, {}));
    End();
    QVERIFY(m_panel->isVisible());
    QCOMPARE(m_panel->accessibleName(), QStringLiteral("Other"));
    go.release();
    QTRY_VERIFY_WITH_TIMEOUT(!other.IsWorking(), patience);
    QVERIFY(!m_panel->isVisible());
}

void tst_ZrWorkPanel::everySize()
{
    Begin(QStringLiteral("Exporting a name that is far too long ").repeated(10));
    QTRY_VERIFY(Cancel().isVisible());
    for (const QSize& size : {QSize(300, 200), QSize(900, 600), QSize(2560, 1440)}) {
        m_window->resize(size);
        QVERIFY(m_panel->rect().contains(Cancel().geometry()));
        QVERIFY(Cancel().height() >= 44);
        QVERIFY(!m_panel->grab().isNull());
    }
    End();
}

QTEST_MAIN(tst_ZrWorkPanel)
#include "tst_ZrWorkPanel.moc"
