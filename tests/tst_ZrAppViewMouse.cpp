// The window moved by its upper band, full screen and back, and the settings forms, without OpenGL.

#include "ZrPlainView.h"
#include "ZrUtil/ZrFormMgr.h"

class tst_ZrAppViewMouse : public ZrPlainViewTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void toggleSettings();
    void screenMode();
    void doubleClick_data();
    void doubleClick();
    void dragInTheBand();
    void noDragBelowTheBand();
    void noDragByTheRightButton();
    void noDragWhileMaximised();
    void noDragWhileMinimised();
    void dragWhileFullScreen();
    void dragFollowsTheGlobalPosition();
    void releaseEndsTheDrag();
    void releaseElsewhereEndsNothing_data();
    void releaseElsewhereEndsNothing();
    void dragFromAPage();
};

void tst_ZrAppViewMouse::init()
{
    Make();
}

void tst_ZrAppViewMouse::cleanup()
{
    Drop();
}

void tst_ZrAppViewMouse::toggleSettings()
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

void tst_ZrAppViewMouse::screenMode()
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

void tst_ZrAppViewMouse::doubleClick_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("top") << 0 << int(Qt::LeftButton) << true;
    QTest::newRow("last line") << 199 << int(Qt::LeftButton) << true;
    QTest::newRow("below") << 200 << int(Qt::LeftButton) << false;
    QTest::newRow("right button") << 10 << int(Qt::RightButton) << false;
}

void tst_ZrAppViewMouse::doubleClick()
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

void tst_ZrAppViewMouse::dragInTheBand()
{
    m_view->show();
    m_view->move(100, 50);
    Settle();
    const QPoint origin = m_view->mapToGlobal(QPoint(0, 0));
    SendPress(*m_view, QPoint(300, 20));
    SendMove(*m_view, QPoint(330, 45));
    QCOMPARE(m_view->mapToGlobal(QPoint(0, 0)), origin + QPoint(30, 25));
}

void tst_ZrAppViewMouse::noDragBelowTheBand()
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

void tst_ZrAppViewMouse::noDragByTheRightButton()
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

void tst_ZrAppViewMouse::noDragWhileMaximised()
{
    m_view->showMaximized();
    Settle();
    const QPoint before = m_view->pos();
    SendPress(*m_view, QPoint(300, 20));
    SendMove(*m_view, QPoint(330, 45));
    QCOMPARE(m_view->pos(), before);
}

void tst_ZrAppViewMouse::noDragWhileMinimised()
{
    m_view->show();
    m_view->move(100, 50);
    Settle();
    m_view->setWindowState(Qt::WindowMinimized);
    QVERIFY(m_view->isMinimized());
    SendPress(*m_view, QPoint(300, 20));
    m_view->setWindowState(Qt::WindowNoState);
    m_view->move(100, 50);
    SendMove(*m_view, QPoint(330, 45));
    QCOMPARE(m_view->pos(), QPoint(100, 50));
}

/// A full screen is neither maximised nor minimised.
void tst_ZrAppViewMouse::dragWhileFullScreen()
{
    m_view->showFullScreen();
    Settle();
    const QPoint before = m_view->pos();
    SendPress(*m_view, QPoint(300, 20));
    SendMove(*m_view, QPoint(330, 45));
    QCOMPARE(m_view->pos(), before + QPoint(30, 25));
}

void tst_ZrAppViewMouse::dragFollowsTheGlobalPosition()
{
    m_view->show();
    m_view->move(100, 50);
    Settle();
    SendPress(*m_view, QPoint(300, 20));
    for (int i = 1; i <= 20; ++i)
        SendMove(*m_view, QPoint(301, 21));
    QCOMPARE(m_view->pos(), QPoint(120, 70));
}

void tst_ZrAppViewMouse::releaseEndsTheDrag()
{
    m_view->show();
    m_view->move(100, 50);
    Settle();
    SendPress(*m_view, QPoint(300, 20));
    SendRelease(*m_view, QPoint(300, 20));
    SendMove(*m_view, QPoint(330, 45));
    QCOMPARE(m_view->pos(), QPoint(100, 50));
}

void tst_ZrAppViewMouse::releaseElsewhereEndsNothing_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("button");
    QTest::newRow("below the band") << 200 << int(Qt::LeftButton);
    QTest::newRow("another button") << 20 << int(Qt::RightButton);
}

void tst_ZrAppViewMouse::releaseElsewhereEndsNothing()
{
    QFETCH(int, y);
    QFETCH(int, button);
    m_view->show();
    m_view->move(100, 50);
    Settle();
    SendPress(*m_view, QPoint(300, 20));
    const QPointF at(300, y);
    QMouseEvent release(
        QEvent::MouseButtonRelease, at, at, at, Qt::MouseButton(button), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view.get(), &release);
    SendMove(*m_view, QPoint(330, 45));
    QCOMPARE(m_view->pos(), QPoint(130, 75));
}

void tst_ZrAppViewMouse::dragFromAPage()
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

QTEST_MAIN(tst_ZrAppViewMouse)
#include "tst_ZrAppViewMouse.moc"
