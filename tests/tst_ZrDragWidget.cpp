// Dragging a panel by its grip within its parent.

#include "TouchOn.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrDragWidget.h"

#include <QDialog>
#include <QtTest>

#include <memory>

static_assert(std::is_base_of_v<QWidget, ZrDragWidget>);
static_assert(std::is_same_v<decltype(ZrDragWidget::grip), QRect>);
static_assert(std::is_same_v<decltype(ZrDragWidget::startGeom), QRect>);
static_assert(std::is_same_v<decltype(ZrDragWidget::pressPos), QPoint>);

class tst_ZrDragWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void asMade();
    void pressOnTheGrip();
    void pressBesideTheGrip();
    void edgesOfTheGrip();
    void raised();
    void places_data();
    void places();
    void largerThanTheParent_data();
    void largerThanTheParent();
    void manyMovesAddUpToOne();
    void movesFollowTheGlobalPosition();
    void release();
    void movesWithoutDrag();
    void eventsBesideTheGripGoOn();
    void realMouse();
    void byTouch();
    void disabled();
    void hiddenWhileDragged();
    void dialogWhileDragged();
    void windowOfItsOwn();

    void gripIsPainted();

private:
    void Drag(const QPoint& way);

    std::unique_ptr<QWidget> m_window;
    ZrDragWidget* m_panel = nullptr;
};

void tst_ZrDragWidget::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<QWidget>();
    m_window->resize(400, 300);
    m_panel = new ZrDragWidget(m_window.get());
    m_panel->setGeometry(100, 100, 120, 80);
    m_panel->grip = QRect(0, 0, 120, 20);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void tst_ZrDragWidget::cleanup()
{
    m_window.reset();
}

void tst_ZrDragWidget::Drag(const QPoint& way)
{
    const QPoint grip(10, 10);
    const QPoint start = m_panel->mapToGlobal(grip);
    SendPress(*m_panel, grip);
    SendMove(*m_panel, m_panel->mapFromGlobal(start + way));
    SendRelease(*m_panel, m_panel->mapFromGlobal(start + way));
}

void tst_ZrDragWidget::asMade()
{
    const ZrDragWidget panel(m_window.get());
    QVERIFY(panel.grip.isNull());
    QVERIFY(!panel.dragging);
    QVERIFY(panel.hasMouseTracking());
    QCOMPARE(ZrDragWidget::staticMetaObject.className(), "ZrDragWidget");
}

void tst_ZrDragWidget::pressOnTheGrip()
{
    SendPress(*m_panel, QPoint(30, 5));
    QVERIFY(m_panel->dragging);
    QCOMPARE(m_panel->startGeom, QRect(100, 100, 120, 80));
    QCOMPARE(m_panel->pressPos, m_panel->mapToGlobal(QPoint(30, 5)));
    QCOMPARE(m_panel->geometry(), QRect(100, 100, 120, 80));
}

void tst_ZrDragWidget::pressBesideTheGrip()
{
    SendPress(*m_panel, QPoint(30, 40));
    QVERIFY(!m_panel->dragging);
    SendMove(*m_panel, QPoint(60, 60));
    QCOMPARE(m_panel->geometry(), QRect(100, 100, 120, 80));
    m_panel->grip = QRect();
    SendPress(*m_panel, QPoint(0, 0));
    QVERIFY(!m_panel->dragging);
}

void tst_ZrDragWidget::edgesOfTheGrip()
{
    m_panel->grip = QRect(10, 10, 20, 20);
    const auto grips = [this](const QPoint& p) {
        SendPress(*m_panel, p);
        const bool isGripped = m_panel->dragging;
        SendRelease(*m_panel, p);
        return isGripped;
    };
    QVERIFY(grips(QPoint(10, 10)) && grips(QPoint(29, 29)));
    QVERIFY(!grips(QPoint(9, 10)) && !grips(QPoint(10, 30)) && !grips(QPoint(30, 29)));
}

void tst_ZrDragWidget::raised()
{
    QWidget sibling(m_window.get());
    sibling.setGeometry(0, 0, 400, 300);
    sibling.show();
    QCOMPARE(m_window->childAt(110, 150), &sibling);
    SendPress(*m_panel, QPoint(30, 40));
    QCOMPARE(m_window->childAt(110, 150), &sibling);
    SendPress(*m_panel, QPoint(30, 5));
    QCOMPARE(m_window->childAt(110, 150), static_cast<QWidget*>(m_panel));
}

void tst_ZrDragWidget::places_data()
{
    QTest::addColumn<QPoint>("way");
    QTest::addColumn<QPoint>("place");
    // The panel is 120 x 80 in 400 x 300. Its right coordinate, 119 beyond the left one, may be 400.
    QTest::newRow("free") << QPoint(13, -21) << QPoint(113, 79);
    QTest::newRow("not at all") << QPoint(0, 0) << QPoint(100, 100);
    QTest::newRow("to the right edge") << QPoint(181, 0) << QPoint(281, 100);
    QTest::newRow("past the right edge") << QPoint(182, 0) << QPoint(281, 100);
    QTest::newRow("far right") << QPoint(5000, 0) << QPoint(281, 100);
    QTest::newRow("past the lower edge") << QPoint(0, 5000) << QPoint(100, 221);
    QTest::newRow("to the left edge") << QPoint(-100, 0) << QPoint(0, 100);
    QTest::newRow("past the left edge") << QPoint(-101, 0) << QPoint(0, 100);
    QTest::newRow("past the upper edge") << QPoint(0, -5000) << QPoint(100, 0);
    QTest::newRow("a corner") << QPoint(5000, -5000) << QPoint(281, 0);
}

void tst_ZrDragWidget::places()
{
    QFETCH(QPoint, way);
    QFETCH(QPoint, place);
    Drag(way);
    QCOMPARE(m_panel->geometry(), QRect(place, QSize(120, 80)));
    if (way.x() > 181)
        QCOMPARE(m_panel->geometry().right(), m_window->width());
}

void tst_ZrDragWidget::largerThanTheParent_data()
{
    QTest::addColumn<QPoint>("way");
    QTest::newRow("right and down") << QPoint(50, 50);
    QTest::newRow("left and up") << QPoint(-50, -50);
    QTest::newRow("far") << QPoint(-9000, 9000);
}

void tst_ZrDragWidget::largerThanTheParent()
{
    QFETCH(QPoint, way);
    m_panel->setGeometry(-20, -30, 600, 500);
    m_panel->grip = m_panel->rect();
    Drag(way);
    QCOMPARE(m_panel->geometry(), QRect(0, 0, 600, 500));
}

void tst_ZrDragWidget::manyMovesAddUpToOne()
{
    const QPoint start = m_panel->mapToGlobal(QPoint(10, 10));
    SendPress(*m_panel, QPoint(10, 10));
    const auto moveTo = [&](const QPoint& way) { SendMove(*m_panel, m_panel->mapFromGlobal(start + way)); };
    moveTo(QPoint(-5000, -5000));
    QCOMPARE(m_panel->pos(), QPoint(0, 0));
    moveTo(QPoint(7, 8));
    QCOMPARE(m_panel->pos(), QPoint(107, 108)); // the edge has swallowed nothing
    moveTo(QPoint(0, 0));
    QCOMPARE(m_panel->pos(), QPoint(100, 100));
}

void tst_ZrDragWidget::movesFollowTheGlobalPosition()
{
    SendPress(*m_panel, QPoint(10, 10));
    // The same position within the panel, which has moved with the pointer.
    const QPoint global = m_panel->pressPos + QPoint(30, 40);
    QMouseEvent move(QEvent::MouseMove, QPoint(10, 10), QPoint(10, 10), global, Qt::NoButton, Qt::LeftButton,
        Qt::NoModifier);
    QCoreApplication::sendEvent(m_panel, &move);
    QCOMPARE(m_panel->pos(), QPoint(130, 140));
}

void tst_ZrDragWidget::release()
{
    SendPress(*m_panel, QPoint(10, 10));
    SendRelease(*m_panel, QPoint(10, 10));
    QVERIFY(!m_panel->dragging);
    SendMove(*m_panel, QPoint(50, 50));
    QCOMPARE(m_panel->pos(), QPoint(100, 100));
}

void tst_ZrDragWidget::movesWithoutDrag()
{
    SendMove(*m_panel, QPoint(10, 10));
    SendRelease(*m_panel, QPoint(10, 10));
    QCOMPARE(m_panel->pos(), QPoint(100, 100));
    QVERIFY(!m_panel->dragging);
}

void tst_ZrDragWidget::eventsBesideTheGripGoOn()
{
    const auto isTaken = [this](QEvent::Type type, const QPoint& p) {
        QMouseEvent event(type, p, m_panel->mapToGlobal(p), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_panel, &event);
        return event.isAccepted();
    };
    QVERIFY(!isTaken(QEvent::MouseButtonPress, QPoint(30, 40)));
    QVERIFY(isTaken(QEvent::MouseButtonPress, QPoint(30, 5)));
    QVERIFY(isTaken(QEvent::MouseMove, QPoint(30, 5)));
    QVERIFY(isTaken(QEvent::MouseButtonRelease, QPoint(30, 5)));
    QVERIFY(!isTaken(QEvent::MouseButtonRelease, QPoint(30, 5)));
}

void tst_ZrDragWidget::realMouse()
{
    QWindow* window = m_window->windowHandle();
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, QPoint(110, 105));
    QVERIFY(m_panel->dragging);
    QTest::mouseMove(window, QPoint(160, 125));
    QTRY_COMPARE(m_panel->pos(), QPoint(150, 120));
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, QPoint(160, 125));
    QVERIFY(!m_panel->dragging);
}

// Qt makes mouse events of touches that nobody takes.
void tst_ZrDragWidget::byTouch()
{
    auto touch = TouchOn(m_window.get(), QTest::createTouchDevice(), false);
    touch.press(0, QPoint(110, 105), m_window.get()).commit();
    QVERIFY(m_panel->dragging);
    touch.move(0, QPoint(140, 145), m_window.get()).commit();
    QCOMPARE(m_panel->pos(), QPoint(130, 140));
    touch.release(0, QPoint(140, 145), m_window.get()).commit();
    QVERIFY(!m_panel->dragging);
}

void tst_ZrDragWidget::disabled()
{
    m_panel->setEnabled(false);
    QTest::mousePress(m_panel, Qt::LeftButton, Qt::NoModifier, QPoint(10, 10));
    QVERIFY(!m_panel->dragging);
}

void tst_ZrDragWidget::hiddenWhileDragged()
{
    SendPress(*m_panel, QPoint(10, 10));
    m_panel->hide();
    m_panel->show();
    SendMove(*m_panel, QPoint(50, 50));
    QCOMPARE(m_panel->pos(), QPoint(100, 100));
}

void tst_ZrDragWidget::dialogWhileDragged()
{
    SendPress(*m_panel, QPoint(10, 10));
    QDialog dialog(m_window.get());
    bool wasDragging = true;
    QTimer::singleShot(0, &dialog, [&] {
        wasDragging = m_panel->dragging;
        dialog.reject();
    });
    dialog.exec();
    QVERIFY(!wasDragging);
    SendMove(*m_panel, QPoint(50, 50));
    QCOMPARE(m_panel->pos(), QPoint(100, 100));
}

void tst_ZrDragWidget::windowOfItsOwn()
{
    // A window may go anywhere on the screen, with or without a parent.
    for (QWidget* parent : {static_cast<QWidget*>(nullptr), m_window.get()}) {
        ZrDragWidget panel(parent);
        panel.setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
        panel.setGeometry(100, 100, 100, 50);
        panel.grip = panel.rect();
        panel.show();
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        SendPress(panel, QPoint(10, 10));
        SendMove(panel, QPoint(360, -80));
        QCOMPARE(panel.geometry(), QRect(450, 10, 100, 50));
    }
}

void tst_ZrDragWidget::gripIsPainted()
{
    const auto dots = [this](const QRect& part) {
        const QImage image = Painted(*m_panel).copy(part);
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                count += image.pixelColor(x, y).lightness() > 60 ? 1 : 0;
        }
        return count;
    };
    QVERIFY(dots(QRect(4, 4, 112, 14)) > 20);
    QCOMPARE(dots(QRect(4, 24, 112, 50)), 0);
    m_panel->grip = QRect(0, 0, 20, 80);
    QVERIFY(dots(QRect(4, 20, 14, 40)) > 20);
    m_panel->grip = QRect();
    QCOMPARE(dots(QRect(4, 4, 112, 72)), 0);
}

QTEST_MAIN(tst_ZrDragWidget)
#include "tst_ZrDragWidget.moc"
