// The application's window under a window manager: full screen and back with real sizes, and dragging it by
// its upper band.

#include "GlTest.h"
#include "ZrGlPages.h"
#include "ZrWindowManager.h"

#include <QScreen>

namespace {

QByteArray s_managerError;

} // namespace

class tst_ZrAppViewScreen : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void screenMode();
    void maximisedBecomesNormal();
    void doubleClickFillsTheScreen();
    void doubleClickOnAMaximisedWindow();
    void doubleClickBelowTheBand();
    void rightDoubleClick();
    void themeFollows();

    void drag_data();
    void drag();
    void dragOfAFramedWindow();
    void noDragOfAMaximisedWindow();
    void dragAfterFullScreen();
    void minimumSize();

private:
    static QSize Screen() { return QGuiApplication::primaryScreen()->geometry().size(); }

    bool IsNormal() const { return !m_view->isFullScreen() && !m_view->isMaximized(); }

    void DoubleClick(int y, Qt::MouseButton button = Qt::LeftButton);
    void MoveTo(const QPoint& pos);

    std::unique_ptr<ZrAppState> m_state;
    std::unique_ptr<ZrGlView> m_view;
    ZrGlPage* m_page = nullptr;
};

void tst_ZrAppViewScreen::initTestCase()
{
    QVERIFY2(s_managerError.isEmpty(), s_managerError.constData());
}

void tst_ZrAppViewScreen::init()
{
    m_state = std::make_unique<ZrAppState>();
    m_view = std::make_unique<ZrGlView>();
    m_page = m_view->Add(QStringLiteral("Home"));
    QVERIFY(m_view->Open());
    QTRY_COMPARE(m_page->m_pixels, QSize(1000, 700));
}

void tst_ZrAppViewScreen::cleanup()
{
    m_view.reset();
    m_state.reset();
}

/// A double click as the window system reports it, at the middle of the window's width.
void tst_ZrAppViewScreen::DoubleClick(int y, Qt::MouseButton button)
{
    const QPoint pos(m_view->width() / 2, y);
    const QPoint global = m_view->mapToGlobal(pos);
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
             QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        const bool isRelease = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, pos, pos, global, button,
            isRelease ? Qt::MouseButtons(Qt::NoButton) : Qt::MouseButtons(button), Qt::NoModifier);
        QCoreApplication::sendEvent(m_view.get(), &event);
    }
}

void tst_ZrAppViewScreen::MoveTo(const QPoint& pos)
{
    m_view->move(pos);
    QTRY_COMPARE(m_view->pos(), pos);
    Settle();
}

void tst_ZrAppViewScreen::screenMode()
{
    m_view->ScreenMode();
    QTRY_VERIFY(m_view->isFullScreen());
    QTRY_COMPARE(m_view->size(), Screen());
    QTRY_COMPARE(m_page->m_pixels, Screen());
    QCOMPARE(m_page->size(), Screen());
    m_view->ScreenMode();
    QTRY_VERIFY(IsNormal());
    QTRY_COMPARE(m_page->m_pixels, QSize(1000, 700));
}

void tst_ZrAppViewScreen::maximisedBecomesNormal()
{
    m_view->showMaximized();
    QTRY_VERIFY(m_view->isMaximized());
    QTRY_VERIFY(m_page->m_pixels.width() > 1000);
    m_view->ScreenMode();
    QTRY_VERIFY(IsNormal());
    QTRY_COMPARE(m_page->m_pixels, QSize(1000, 700));
}

void tst_ZrAppViewScreen::doubleClickFillsTheScreen()
{
    DoubleClick(10);
    QTRY_COMPARE(m_page->m_pixels, Screen());
    QVERIFY(m_view->isFullScreen());
    DoubleClick(10);
    QTRY_COMPARE(m_page->m_pixels, QSize(1000, 700));
    QVERIFY(IsNormal());
    // And once more: nothing of the first time is left.
    DoubleClick(10);
    QTRY_COMPARE(m_page->m_pixels, Screen());
}

void tst_ZrAppViewScreen::doubleClickOnAMaximisedWindow()
{
    m_view->showMaximized();
    QTRY_VERIFY(m_page->m_pixels.width() > 1000);
    DoubleClick(10);
    QTRY_COMPARE(m_page->m_pixels, QSize(1000, 700));
    QVERIFY(IsNormal());
}

void tst_ZrAppViewScreen::doubleClickBelowTheBand()
{
    const int band = ZrTheme::DpI(100);
    // The first resize came before the theme had the scale of the window, the second has it.
    m_view->resize(1001, 701);
    QTRY_COMPARE(m_page->m_pixels, QSize(1001, 701));
    DoubleClick(band);
    Settle();
    QVERIFY(IsNormal());
    DoubleClick(band - 1);
    QTRY_COMPARE(m_page->m_pixels, Screen());
}

void tst_ZrAppViewScreen::rightDoubleClick()
{
    DoubleClick(10, Qt::RightButton);
    Settle();
    QVERIFY(IsNormal());
}

void tst_ZrAppViewScreen::themeFollows()
{
    const QSize screen = Screen();
    ZrTheme::designWidth = screen.width();
    ZrTheme::designHeight = screen.height();
    DoubleClick(10);
    QTRY_COMPARE(m_page->m_pixels, screen);
    QCOMPARE(ZrTheme::dp, 1.0F);
    QCOMPARE(m_view->CloseButton().size(), QSize(48, 48));
    QVERIFY(m_view->CloseButton().geometry().right() > screen.width() - 100);
    DoubleClick(10);
    QTRY_COMPARE(m_page->m_pixels, QSize(1000, 700));
    QVERIFY(ZrTheme::dp < 1.0F);
    QVERIFY(m_view->rect().contains(m_view->CloseButton().geometry()));
}

void tst_ZrAppViewScreen::drag_data()
{
    QTest::addColumn<QPoint>("by");
    QTest::newRow("right and down") << QPoint(35, 20);
    QTest::newRow("left and up") << QPoint(-40, -31);
    QTest::newRow("one pixel") << QPoint(1, 0);
}

void tst_ZrAppViewScreen::drag()
{
    QFETCH(QPoint, by);
    MoveTo(QPoint(120, 90));
    const QPoint grip(300, 40);
    QPoint cursor = m_view->pos() + grip;
    const auto send = [&](QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QMouseEvent event(type, cursor - m_view->pos(), cursor, button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view.get(), &event);
    };
    send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
    for (int i = 1; i <= 3; ++i) {
        cursor += by;
        send(QEvent::MouseMove, Qt::NoButton, Qt::LeftButton);
        QTRY_COMPARE(m_view->pos(), QPoint(120, 90) + by * i);
    }
    // Without the button nothing moves, nor after its release.
    const QPoint end = QPoint(120, 90) + by * 3;
    cursor += by;
    send(QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
    send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
    send(QEvent::MouseMove, Qt::NoButton, Qt::LeftButton);
    Settle();
    // What the window manager tells of the step before may come as late as this, its last word after it.
    QTRY_COMPARE(m_view->pos(), end);
}

/// The frame that the window manager draws goes where the cursor says.
void tst_ZrAppViewScreen::dragOfAFramedWindow()
{
    m_view->hide();
    m_view->setWindowFlag(Qt::FramelessWindowHint, false);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get(), 20000));
    QTRY_VERIFY(m_view->frameGeometry().height() > m_view->height());
    MoveTo(QPoint(120, 90));
    const QPoint grip(300, 40);
    SendPress(*m_view, grip);
    const QPoint cursor = m_view->mapToGlobal(grip) + QPoint(50, 30);
    QMouseEvent event(QEvent::MouseMove, grip, cursor, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view.get(), &event);
    QTRY_COMPARE(m_view->pos(), cursor - grip);
}

void tst_ZrAppViewScreen::noDragOfAMaximisedWindow()
{
    m_view->showMaximized();
    QTRY_VERIFY(m_page->m_pixels.width() > 1000);
    Settle();
    const QPoint before = m_view->pos();
    SendPress(*m_view, QPoint(300, 20));
    SendMove(*m_view, QPoint(350, 40));
    Settle();
    QCOMPARE(m_view->pos(), before);
    QVERIFY(m_view->isMaximized());
}

void tst_ZrAppViewScreen::dragAfterFullScreen()
{
    DoubleClick(10);
    QTRY_COMPARE(m_page->m_pixels, Screen());
    DoubleClick(10);
    QTRY_COMPARE(m_page->m_pixels, QSize(1000, 700));
    QTRY_VERIFY(IsNormal());
    MoveTo(QPoint(120, 90));
    SendPress(*m_view, QPoint(300, 20));
    SendMove(*m_view, QPoint(340, 45));
    QTRY_COMPARE(m_view->pos(), QPoint(160, 115));
}

void tst_ZrAppViewScreen::minimumSize()
{
    m_view->resize(200, 100);
    QTRY_COMPARE(m_page->m_pixels, QSize(900, 600));
    QCOMPARE(m_view->size(), QSize(900, 600));
}

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return gl::Main<QApplication, tst_ZrAppViewScreen>(argc, argv);
    const ZrWindowManager manager;
    s_managerError = manager.Error();
    return gl::Main<QApplication, tst_ZrAppViewScreen>(argc, argv);
}

#include "tst_ZrAppViewScreen.moc"
