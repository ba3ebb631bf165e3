// The panel with the settings forms under the hand: tabs pressed, dragging, closing, keys.

#include "ZrFormPanel.h"

#include <QHelpEvent>
#include <QPushButton>
#include <QToolTip>
#include <QtTest>

class tst_ZrFormMgrInput : public ZrFormPanelTest
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Make(); }

    void cleanup() { Drop(); }

    void pressOnTab();
    void tabsTellTheirNames();
    void pressBelowTabs();
    void pressesStayInThePanel();
    void doubleClickStaysInThePanel();
    void dragByTheBand();
    void noDragByTheTabs();
    void closeButton();
    void tapBesideTheCloseButton_data();
    void tapBesideTheCloseButton();
    void dragFromBesideTheCloseButton();
    void escape();
    void otherKeysGoOn();
    void focusComesBack();
};

void tst_ZrFormMgrInput::pressOnTab()
{
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    Shown();
    QTest::mouseClick(m_mgr, Qt::LeftButton, Qt::NoModifier, QPoint(40, 170));
    QCOMPARE(m_mgr->m_form, b);
    QCOMPARE(b->m_displayed, 1);
    QVERIFY(!a->isVisible());
    QTest::mouseClick(m_mgr, Qt::LeftButton, Qt::NoModifier, QPoint(0, 50));
    QCOMPARE(m_mgr->m_form, a);
    QTest::mouseClick(m_mgr, Qt::LeftButton, Qt::NoModifier, QPoint(79, 209));
    QCOMPARE(m_mgr->m_form, b);
}

void tst_ZrFormMgrInput::tabsTellTheirNames()
{
    const ZrForm* a = Add(QStringLiteral("A"));
    const ZrForm* b = Add(QStringLiteral("B"));
    Add(QStringLiteral("C"), true);
    Shown();
    const auto ask = [this](const QPoint& pos) {
        QHelpEvent event(QEvent::ToolTip, pos, m_mgr->mapToGlobal(pos));
        QCoreApplication::sendEvent(m_mgr, &event);
        return QToolTip::text();
    };
    QCOMPARE(ask(a->m_tab.center()), QStringLiteral("A"));
    QCOMPARE(ask(b->m_tab.center()), QStringLiteral("B"));
    ask(QPoint(40, b->m_tab.bottom() + 20));
    QTRY_VERIFY(!QToolTip::isVisible());
}

void tst_ZrFormMgrInput::pressBelowTabs()
{
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    Shown();
    for (const QPoint& pos : {QPoint(40, 210), QPoint(80, 170), QPoint(40, 49)}) {
        SendPress(*m_mgr, pos);
        SendRelease(*m_mgr, pos);
    }
    QCOMPARE(m_mgr->m_form, a);
    QCOMPARE(b->m_displayed, 0);
}

void tst_ZrFormMgrInput::pressesStayInThePanel()
{
    Add(QStringLiteral("A"));
    Shown();
    for (const QPoint& pos : {QPoint(40, 90), QPoint(40, 300), QPoint(300, 20), QPoint(300, 300)})
        QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, m_mgr->pos() + pos);
    QCOMPARE(m_window->m_presses, 0);
    QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    QCOMPARE(m_window->m_presses, 1);
}

void tst_ZrFormMgrInput::doubleClickStaysInThePanel()
{
    Shown();
    QTest::mouseDClick(m_mgr, Qt::LeftButton, Qt::NoModifier, QPoint(40, 300));
    QCOMPARE(m_window->m_presses, 0);
}

void tst_ZrFormMgrInput::dragByTheBand()
{
    Add(QStringLiteral("A"));
    Shown();
    SendPress(*m_mgr, QPoint(300, 25));
    QVERIFY(m_mgr->dragging);
    SendMove(*m_mgr, QPoint(340, 55));
    QCOMPARE(m_mgr->pos(), QPoint(60, 60));
    // The position within the panel stays, the global one moves on.
    SendMove(*m_mgr, QPoint(310, 25));
    QCOMPARE(m_mgr->pos(), QPoint(70, 60));
    SendRelease(*m_mgr, QPoint(310, 25));
    QVERIFY(!m_mgr->dragging);
    QCOMPARE(m_mgr->size(), QSize(600, 460));
}

void tst_ZrFormMgrInput::noDragByTheTabs()
{
    Add(QStringLiteral("A"));
    Shown();
    for (const QPoint& pos : {QPoint(40, 25), QPoint(40, 90), QPoint(300, 50)}) {
        SendPress(*m_mgr, pos);
        QVERIFY(!m_mgr->dragging);
        SendMove(*m_mgr, pos + QPoint(30, 30));
        QCOMPARE(m_mgr->pos(), QPoint(20, 30));
        SendRelease(*m_mgr, pos);
    }
}

void tst_ZrFormMgrInput::closeButton()
{
    Add(QStringLiteral("A"));
    Shown();
    QVERIFY(m_mgr->isVisible());
    QVERIFY(!Close().img.isNull());
    QCOMPARE(Close().img, ZrTheme::ColourImg(QImage(QStringLiteral(":/btn_close.png")), ZrTheme::ctrlCol));
    QCOMPARE(Close().accessibleName(), QStringLiteral("Close the settings"));
    QTest::mouseClick(&Close(), Qt::LeftButton);
    QVERIFY(m_mgr->isHidden());
    m_mgr->OnClose();
    QVERIFY(m_mgr->isHidden());
}

void tst_ZrFormMgrInput::tapBesideTheCloseButton_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<QPoint>("fromCorner");
    QTest::addColumn<bool>("closes");
    // The button covers 40 design pixels, 5 from the edges; a finger wants 44 real ones.
    QTest::newRow("beside") << 1.0 << QPoint(50, 25) << true;
    QTest::newRow("above") << 1.0 << QPoint(25, 2) << true;
    QTest::newRow("in the corner") << 1.0 << QPoint(1, 0) << true;
    QTest::newRow("farther") << 1.0 << QPoint(66, 25) << false;
    QTest::newRow("far below") << 1.0 << QPoint(10, 66) << false;
    QTest::newRow("beside, small") << 0.5 << QPoint(43, 12) << true;
    QTest::newRow("below, small") << 0.5 << QPoint(8, 43) << true;
    QTest::newRow("farther, small") << 0.5 << QPoint(46, 12) << false;
}

void tst_ZrFormMgrInput::tapBesideTheCloseButton()
{
    QFETCH(double, dp);
    QFETCH(QPoint, fromCorner);
    QFETCH(bool, closes);
    const ZrThemeState theme(dp);
    m_mgr->resize(601, 460);
    Add(QStringLiteral("A"));
    Shown();
    const QPoint at(m_mgr->width() - fromCorner.x(), fromCorner.y());
    QVERIFY(!Close().geometry().contains(at));
    SendPress(*m_mgr, at);
    QVERIFY(m_mgr->isVisible());
    SendRelease(*m_mgr, at);
    QCOMPARE(m_mgr->isHidden(), closes);
    // A release alone closes nothing.
    m_mgr->show();
    SendRelease(*m_mgr, at);
    QVERIFY(m_mgr->isVisible());
}

void tst_ZrFormMgrInput::dragFromBesideTheCloseButton()
{
    Add(QStringLiteral("A"));
    Shown();
    const QPoint at(m_mgr->width() - 50, 25);
    SendPress(*m_mgr, at);
    SendMove(*m_mgr, at + QPoint(QApplication::startDragDistance(), 0));
    QCOMPARE(m_mgr->x(), 20 + QApplication::startDragDistance());
    // Back where it began it is still a drag.
    SendMove(*m_mgr, at - QPoint(QApplication::startDragDistance(), 0));
    SendRelease(*m_mgr, at);
    QVERIFY(m_mgr->isVisible());
    // A finger trembles.
    SendPress(*m_mgr, at);
    SendMove(*m_mgr, at + QPoint(2, 1));
    SendRelease(*m_mgr, at);
    QVERIFY(m_mgr->isHidden());
}

void tst_ZrFormMgrInput::escape()
{
    Add(QStringLiteral("A"));
    Shown();
    QTest::keyClick(m_mgr, Qt::Key_Escape);
    QVERIFY(m_mgr->isHidden());
}

void tst_ZrFormMgrInput::otherKeysGoOn()
{
    Add(QStringLiteral("A"));
    Shown();
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QCoreApplication::sendEvent(m_mgr, &event);
    QVERIFY(!event.isAccepted());
    QVERIFY(m_mgr->isVisible());
}

void tst_ZrFormMgrInput::focusComesBack()
{
    Add(QStringLiteral("A"));
    m_mgr->hide();
    auto* button = new QPushButton(m_window.get());
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    button->setFocus();
    QCOMPARE(QApplication::focusWidget(), button);
    m_mgr->show();
    QCOMPARE(QApplication::focusWidget(), m_mgr);
    QTest::keyClick(m_window->windowHandle(), Qt::Key_Escape);
    QVERIFY(m_mgr->isHidden());
    QCOMPARE(QApplication::focusWidget(), button);

    m_mgr->show();
    delete button;
    m_mgr->hide();
    QVERIFY(m_mgr->isHidden());
}

QTEST_MAIN(tst_ZrFormMgrInput)
#include "tst_ZrFormMgrInput.moc"
