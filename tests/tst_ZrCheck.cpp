// The check box: its callables, presses, hovering, painting.

#include "TouchOn.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrCheck.h"

#include <QMetaMethod>
#include <QPointer>
#include <QTouchEvent>
#include <QtTest>

#include <memory>

static_assert(std::is_base_of_v<QWidget, ZrCheck>);
static_assert(std::is_same_v<decltype(ZrCheck::hover), u32>);

namespace {

const QPoint inside(20, 20);
const QPoint outside(20, 60);

} // namespace

class tst_ZrCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void asMade();
    void keepsAValueOfItsOwn();
    void ownerCallables();
    void refusingSetter();
    void toggledComesAfterTheSetter();
    void withoutCallables();
    void doubleClickIsTwoPresses();
    void onlyAPressCounts();
    void wholeWidgetIsTheTarget();
    void byTouch();

    void hovering();
    void keys();
    void disabled();
    void disabledKeepsItsValue();

    void deletedInSetter();
    void deletedInSlot();
    void replacedInSetter();

    void repaintsOnlyOnChange();
    void focusLineNeedsKeys();
    void tickIsThere();
    void mirrored();
    void tinySizes();

private:
    std::unique_ptr<QWidget> m_window;
    QPointer<ZrCheck> m_check;
    QStringList m_log;
};

void tst_ZrCheck::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<QWidget>();
    m_window->resize(300, 200);
    m_check = new ZrCheck(m_window.get());
    m_check->text = QStringLiteral("Show the grid");
    m_check->setGeometry(0, 0, 200, 50);
    m_log.clear();
    connect(m_check, &ZrCheck::Toggled, this,
        [this](bool on) { m_log += on ? QStringLiteral("on") : QStringLiteral("off"); });
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void tst_ZrCheck::cleanup()
{
    m_window.reset();
}

void tst_ZrCheck::asMade()
{
    const ZrCheck check(m_window.get());
    QVERIFY(check.text.isEmpty());
    QCOMPARE(check.hover, 0U);
    QVERIFY(check.get && check.set);
    QVERIFY(!check.get());
    QVERIFY(check.hasMouseTracking());
    QCOMPARE(ZrCheck::staticMetaObject.className(), "ZrCheck");
    QVERIFY(ZrCheck::staticMetaObject.indexOfSignal("Toggled(bool)") >= 0);
}

void tst_ZrCheck::keepsAValueOfItsOwn()
{
    SendPress(*m_check, inside);
    QVERIFY(m_check->get());
    SendPress(*m_check, inside);
    QVERIFY(!m_check->get());
    QCOMPARE(m_log.join(u','), QStringLiteral("on,off"));
    m_check->set(true);
    QVERIFY(m_check->IsOn());
    QCOMPARE(m_log.size(), 2);
}

void tst_ZrCheck::ownerCallables()
{
    bool value = true;
    int asked = 0;
    QList<bool> told;
    m_check->get = [&] {
        ++asked;
        return value;
    };
    m_check->set = [&](bool on) {
        told += on;
        value = on;
    };
    SendPress(*m_check, inside);
    QVERIFY(!value);
    SendPress(*m_check, inside);
    QVERIFY(value);
    QCOMPARE(told, QList<bool>({false, true}));
    QVERIFY(asked >= 2);
    // A value that changed elsewhere is not inverted twice.
    value = false;
    SendPress(*m_check, inside);
    QVERIFY(value);
}

void tst_ZrCheck::refusingSetter()
{
    m_check->get = [] { return true; };
    m_check->set = [](bool) {};
    SendPress(*m_check, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("on")); // what the getter says
}

void tst_ZrCheck::toggledComesAfterTheSetter()
{
    bool value = false;
    m_check->get = [&] { return value; };
    m_check->set = [&](bool on) {
        m_log += QStringLiteral("set");
        value = on;
    };
    SendPress(*m_check, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("set,on"));
}

void tst_ZrCheck::withoutCallables()
{
    m_check->get = nullptr;
    m_check->set = nullptr;
    SendPress(*m_check, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("off"));
    QVERIFY(!m_check->IsOn());
}

void tst_ZrCheck::doubleClickIsTwoPresses()
{
    QTest::mouseClick(m_check, Qt::LeftButton, Qt::NoModifier, inside);
    QTest::mouseDClick(m_check, Qt::LeftButton, Qt::NoModifier, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("on,off"));
}

void tst_ZrCheck::onlyAPressCounts()
{
    QTest::mousePress(m_check, Qt::LeftButton, Qt::NoModifier, inside);
    QCOMPARE(m_log.size(), 1);
    QTest::mouseRelease(m_check, Qt::LeftButton, Qt::NoModifier, inside);
    SendMove(*m_check, inside);
    QCOMPARE(m_log.size(), 1);
}

void tst_ZrCheck::wholeWidgetIsTheTarget()
{
    for (const QPoint& p : {QPoint(0, 0), QPoint(199, 0), QPoint(0, 49), QPoint(199, 49)})
        SendPress(*m_check, p);
    QCOMPARE(m_log.size(), 4);
}

// Qt makes mouse events of touches that nobody takes.
void tst_ZrCheck::byTouch()
{
    auto touch = TouchOn(m_window.get(), QTest::createTouchDevice(), false);
    touch.press(0, inside, m_window.get()).commit();
    touch.release(0, inside, m_window.get()).commit();
    QCOMPARE(m_log.join(u','), QStringLiteral("on"));
}

void tst_ZrCheck::hovering()
{
    SendMove(*m_check, inside);
    QCOMPARE(m_check->hover, 1U);
    SendMove(*m_check, outside);
    QCOMPARE(m_check->hover, 0U);
    SendMove(*m_check, inside);
    SendLeave(*m_check);
    QCOMPARE(m_check->hover, 0U);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrCheck::keys()
{
    QTest::keyClick(m_check, Qt::Key_Space);
    QCOMPARE(m_log.join(u','), QStringLiteral("on"));
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
    QCoreApplication::sendEvent(m_check, &repeat);
    QCOMPARE(m_log.size(), 1);
    QKeyEvent select(QEvent::KeyPress, Qt::Key_Select, Qt::NoModifier);
    QCoreApplication::sendEvent(m_check, &select);
    QCOMPARE(m_log.join(u','), QStringLiteral("on,off"));
    // Return belongs to the dialog that the box stands in.
    QKeyEvent other(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QCoreApplication::sendEvent(m_check, &other);
    QVERIFY(!other.isAccepted());
    QCOMPARE(m_check->focusPolicy(), Qt::TabFocus);
}

void tst_ZrCheck::disabled()
{
    m_check->setEnabled(false);
    QTest::mouseClick(m_check, Qt::LeftButton, Qt::NoModifier, inside);
    QTest::keyClick(m_check, Qt::Key_Space);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrCheck::disabledKeepsItsValue()
{
    m_check->setEnabled(false);
    const QImage off = Painted(*m_check);
    m_check->set(true);
    QVERIFY(Painted(*m_check) != off);
}

void tst_ZrCheck::deletedInSetter()
{
    m_check->set = [this](bool) { delete m_check.data(); };
    QTest::mousePress(m_check, Qt::LeftButton, Qt::NoModifier, inside);
    QVERIFY(!m_check);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrCheck::deletedInSlot()
{
    connect(m_check, &ZrCheck::Toggled, this, [this] { delete m_check.data(); });
    QTest::mousePress(m_check, Qt::LeftButton, Qt::NoModifier, inside);
    QVERIFY(!m_check);
    QCOMPARE(m_log.join(u','), QStringLiteral("on"));
}

void tst_ZrCheck::replacedInSetter()
{
    // The callable that runs must outlive its own replacement.
    const auto big = std::make_shared<QString>(QStringLiteral("kept"));
    QString seen;
    m_check->set = [this, big, &seen](bool) {
        m_check->set = nullptr;
        seen = *big;
    };
    SendPress(*m_check, inside);
    QCOMPARE(seen, QStringLiteral("kept"));
    SendPress(*m_check, inside);
    QCOMPARE(m_log.size(), 2);
}

void tst_ZrCheck::repaintsOnlyOnChange()
{
    ZrPaintCounter paints(*m_check);
    paints.Take();
    SendLeave(*m_check);
    SendMove(*m_check, outside);
    QCOMPARE(paints.Take(), 0);
    SendMove(*m_check, inside);
    QCOMPARE(paints.Take(), 1);
    SendMove(*m_check, inside + QPoint(5, 5));
    QCOMPARE(paints.Take(), 0);
    SendPress(*m_check, inside);
    QCOMPARE(paints.Take(), 1);
    SendRelease(*m_check, inside);
    QCOMPARE(paints.Take(), 0);
    SendLeave(*m_check);
    QCOMPARE(paints.Take(), 1);
}

// A window gives its first control the focus when it opens: nothing is seen of that until a key is used.
void tst_ZrCheck::focusLineNeedsKeys()
{
    m_check->text.clear();
    const auto hasLine = [this] { return HasColour(Painted(*m_check), ZrTheme::ctrlCol); };
    const auto focus = [this](QEvent::Type type, Qt::FocusReason reason) {
        if (type == QEvent::FocusIn)
            m_check->setFocus(reason);
        else
            m_check->clearFocus();
    };
    m_window->activateWindow();
    QTRY_VERIFY(m_window->isActiveWindow());
    focus(QEvent::FocusOut, Qt::OtherFocusReason);
    focus(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    QVERIFY(m_check->hasFocus());
    QVERIFY(!hasLine());
    QTest::keyClick(m_check, Qt::Key_A);
    QVERIFY(hasLine());
    focus(QEvent::FocusOut, Qt::OtherFocusReason);
    QVERIFY(!hasLine());
    focus(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    QVERIFY(hasLine());
}

void tst_ZrCheck::tickIsThere()
{
    m_check->text.clear();
    QColor mark = ZrTheme::ctrlCheckCol;
    mark.setAlpha(255);
    const auto middle = [this] { return Painted(*m_check).copy(90, 15, 20, 20); };
    QVERIFY(!HasColour(middle(), mark));
    m_check->set(true);
    QVERIFY(HasColour(middle(), mark));
    QVERIFY(HasColour(middle(), ZrTheme::ctrlActiveCol));
}

void tst_ZrCheck::mirrored()
{
    m_check->set(true);
    const auto boxAt = [this](const QRect& part) {
        return HasColour(Painted(*m_check).copy(part), ZrTheme::ctrlActiveCol);
    };
    QVERIFY(boxAt(QRect(0, 0, 50, 50)) && !boxAt(QRect(150, 0, 50, 50)));
    m_check->setLayoutDirection(Qt::RightToLeft);
    QVERIFY(!boxAt(QRect(0, 0, 50, 50)) && boxAt(QRect(150, 0, 50, 50)));
}

void tst_ZrCheck::tinySizes()
{
    for (const QSize& size : {QSize(0, 0), QSize(1, 1), QSize(1, 100), QSize(100, 1), QSize(30, 30)}) {
        m_check->resize(size);
        QImage image(120, 120, QImage::Format_RGB32);
        image.fill(Qt::black);
        m_check->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        QCOMPARE(image.pixelColor(119, 119), QColor(Qt::black));
    }
}

QTEST_MAIN(tst_ZrCheck)
#include "tst_ZrCheck.moc"
