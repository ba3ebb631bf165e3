// The button's pointer logic by mouse, touch and keys: states, signals and their order.

#include "TouchOn.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrBtn.h"

#include <QDialog>
#include <QMetaMethod>
#include <QPointer>
#include <QTouchEvent>
#include <QtTest>

#include <memory>

static_assert(std::is_base_of_v<QWidget, ZrBtn>);
static_assert(std::is_same_v<decltype(ZrBtn::hover), u32>);
static_assert(std::is_same_v<decltype(ZrBtn::id), i32>);
static_assert(std::is_same_v<decltype(ZrBtn::link), bool*>);
static_assert(std::is_constructible_v<ZrBtn, QWidget*, ZrBtn::eType>);

namespace {

const QPoint inside(20, 30);
const QPoint corner(99, 59);
const QPoint outside(100, 30);

enum class Slot
{
    toggled,
    selected,
    pressed,
    released,
    clicked
};

} // namespace

Q_DECLARE_METATYPE(Slot)

class tst_ZrBtn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void asMade();
    void signalsInOrder();

    void pressAndRelease();
    void orderOfAPress_data();
    void orderOfAPress();
    void togglesAtEveryPress();
    void toggledComesBeforeTheLink();
    void linkIsWrittenBeforeSelected();
    void linkFollowsWhatSlotsSet();
    void identityZeroIsOne();
    void pressOutside();
    void pressOutsideWhileHovered();
    void edgesAreInside();

    void releaseOutside();
    void outAndBackIn();
    void movesWithoutAPress();
    void leaving();
    void leavingWhileDown();
    void secondReleaseDoesNothing();
    void doubleClickIsTwoPresses();
    void pointerUpWithoutDown();

    void systemCopiesOfTouchesAreIgnored();
    void releaseOfAnySourceCounts();
    void copiesByQtCount();
    void realMouse();

    void tap();
    void touchDraggedOutStillClicks();
    void touchDraggedOutAndBack();
    void touchBeginningOutside();
    void secondFinger();
    void touchCancel();
    void touchWithoutPoints();
    void touchSendsNoMouseEvents();
    void touchOnDisabled();

    void keys_data();
    void keys();
    void keyRepeatPressesOnce();
    void otherKeysGoOn();
    void focusLostWhileAKeyIsDown();
    void focusLostWhileTheMouseIsDown();
    void tapsDoNotTakeTheFocus();

    void disabledByMouse();
    void disabledWhileDown();
    void hiddenWhileDown();
    void dialogOpenedBySlot();
    void reentrantPress();

    void deletedInSlot_data();
    void deletedInSlot();
    void deletedInSlotByMouse_data();
    void deletedInSlotByMouse();
    void deletedInSlotByKey_data();
    void deletedInSlotByKey();

    void repaintsOnlyOnChange();

private:
    void DeleteIn(Slot slot);

    std::unique_ptr<QWidget> m_window;
    QPointer<ZrBtn> m_button;
    QStringList m_log;
    QTouchDevice* m_device = nullptr;
};

void tst_ZrBtn::initTestCase()
{
    ZrTheme::SetStdStyle();
    m_device = QTest::createTouchDevice();
}

void tst_ZrBtn::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->resize(300, 200);
    m_button = new ZrBtn(m_window.get(), ZrBtn::typeStd);
    m_button->setGeometry(0, 0, 100, 60);
    m_log.clear();
    connect(m_button, &ZrBtn::Clicked, this, [this] { m_log += QStringLiteral("Clicked"); });
    connect(m_button, &ZrBtn::Pressed, this, [this] { m_log += QStringLiteral("Pressed"); });
    connect(
        m_button, &ZrBtn::Released, this, [this](int id) { m_log += QStringLiteral("Released %1").arg(id); });
    connect(
        m_button, &ZrBtn::Selected, this, [this](int id) { m_log += QStringLiteral("Selected %1").arg(id); });
    connect(m_button, &ZrBtn::Toggled, this,
        [this](bool on) { m_log += on ? QStringLiteral("Toggled on") : QStringLiteral("Toggled off"); });
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void tst_ZrBtn::cleanup()
{
    m_window.reset();
}

void tst_ZrBtn::asMade()
{
    const ZrBtn button(m_window.get(), ZrBtn::typeRound);
    QCOMPARE(button.parentWidget(), m_window.get());
    QCOMPARE(button.type, ZrBtn::typeRound);
    QVERIFY(button.testAttribute(Qt::WA_AcceptTouchEvents));
    QVERIFY(button.testAttribute(Qt::WA_MouseTracking));
    QVERIFY(button.hasMouseTracking());
    QVERIFY(button.img.isNull() && button.imgOn.isNull());
    QVERIFY(button.text.isEmpty());
    QCOMPARE(button.hover, 0U);
    QVERIFY(!button.down);
    QVERIFY(!button.checkable);
    QVERIFY(!button.on);
    QVERIFY(!button.link);
    QCOMPARE(button.id, -1);
    QCOMPARE(button.lines, 1);
    QCOMPARE(button.badge, 0);
    QCOMPARE(button.font, ZrTheme::ctrlFont);
}

void tst_ZrBtn::signalsInOrder()
{
    QStringList names;
    const QMetaObject& meta = ZrBtn::staticMetaObject;
    QCOMPARE(meta.className(), "ZrBtn");
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            names += QString::fromLatin1(meta.method(i).methodSignature());
    }
    QCOMPARE(names,
        QStringList(
            {QStringLiteral("Clicked()"), QStringLiteral("Pressed()"), QStringLiteral("Released(int)"),
                QStringLiteral("Selected(int)"), QStringLiteral("Toggled(bool)")}));
}

void tst_ZrBtn::pressAndRelease()
{
    SendPress(*m_button, inside);
    QCOMPARE(m_log, QStringList(QStringLiteral("Pressed")));
    QVERIFY(m_button->down);
    QCOMPARE(m_button->hover, 2U);
    SendRelease(*m_button, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
    QVERIFY(!m_button->down);
    QCOMPARE(m_button->hover, 0U);
}

void tst_ZrBtn::orderOfAPress_data()
{
    QTest::addColumn<bool>("checkable");
    QTest::addColumn<bool>("linked");
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("log");
    QTest::newRow("plain") << false << false << -1 << QStringLiteral("Pressed,Released -1,Clicked");
    QTest::newRow("with an id") << false << false << 7
                                << QStringLiteral("Selected 7,Pressed,Released 7,Clicked");
    QTest::newRow("checkable") << true << false << -1
                               << QStringLiteral("Toggled on,Pressed,Released -1,Clicked");
    QTest::newRow("all") << true << true << 3
                         << QStringLiteral("Toggled on,Selected 3,Pressed,Released 3,Clicked");
    QTest::newRow("a link alone") << false << true << -1 << QStringLiteral("Pressed,Released -1,Clicked");
}

void tst_ZrBtn::orderOfAPress()
{
    QFETCH(bool, checkable);
    QFETCH(bool, linked);
    QFETCH(int, id);
    QFETCH(QString, log);
    bool value = false;
    m_button->checkable = checkable;
    m_button->link = linked ? &value : nullptr;
    m_button->id = id;
    m_button->PtrDown(inside);
    m_button->PtrUp();
    QCOMPARE(m_log.join(u','), log);
    QCOMPARE(m_button->on, checkable);
    QCOMPARE(value, checkable && linked);
}

void tst_ZrBtn::togglesAtEveryPress()
{
    bool value = true;
    m_button->checkable = true;
    m_button->link = &value;
    for (const bool on : {true, false, true}) {
        m_button->PtrDown(inside);
        QCOMPARE(m_button->on, on);
        QCOMPARE(value, on);
        m_button->PtrUp();
        QCOMPARE(m_button->on, on);
    }
    QCOMPARE(m_log.filter(QStringLiteral("Toggled")).join(u','),
        QStringLiteral("Toggled on,Toggled off,Toggled on"));
}

void tst_ZrBtn::toggledComesBeforeTheLink()
{
    bool value = false;
    bool seen = true;
    m_button->checkable = true;
    m_button->link = &value;
    connect(m_button, &ZrBtn::Toggled, this, [&] { seen = value; });
    m_button->PtrDown(inside);
    QVERIFY(!seen);
    QVERIFY(value);
}

void tst_ZrBtn::linkIsWrittenBeforeSelected()
{
    bool value = false;
    int seen = 0;
    m_button->checkable = true;
    m_button->link = &value;
    m_button->id = 0;
    connect(m_button, &ZrBtn::Selected, this, [&] { seen += value ? 1 : 100; });
    connect(m_button, &ZrBtn::Pressed, this, [&] { seen += value ? 10 : 100; });
    m_button->PtrDown(inside);
    QCOMPARE(seen, 11);
}

void tst_ZrBtn::linkFollowsWhatSlotsSet()
{
    bool value = false;
    m_button->checkable = true;
    m_button->link = &value;
    connect(m_button, &ZrBtn::Toggled, this, [this] { m_button->on = false; });
    m_button->PtrDown(inside);
    QVERIFY(!value);
    // A slot may also take the link away.
    connect(m_button, &ZrBtn::Toggled, this, [this] { m_button->link = nullptr; });
    m_button->PtrDown(inside);
    QVERIFY(!value);
}

void tst_ZrBtn::identityZeroIsOne()
{
    m_button->id = 0;
    m_button->PtrDown(inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Selected 0,Pressed"));
    m_log.clear();
    m_button->id = -2;
    m_button->PtrUp();
    m_button->PtrDown(inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Released -2,Clicked,Pressed"));
}

void tst_ZrBtn::pressOutside()
{
    m_button->checkable = true;
    m_button->id = 1;
    m_button->PtrDown(outside);
    QVERIFY(m_log.isEmpty());
    QVERIFY(!m_button->down && !m_button->on);
    m_button->PtrUp();
    QVERIFY(m_log.isEmpty());
}

void tst_ZrBtn::pressOutsideWhileHovered()
{
    m_button->PtrMove(inside);
    QCOMPARE(m_button->hover, 1U);
    m_button->PtrDown(outside);
    QCOMPARE(m_button->hover, 0U);
    m_button->PtrDown(inside);
    m_button->PtrMove(outside);
    QVERIFY(m_button->down);
    QCOMPARE(m_button->hover, 0U);
    m_button->PtrDown(outside);
    QVERIFY(!m_button->down);
    m_button->PtrUp();
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed"));
}

void tst_ZrBtn::edgesAreInside()
{
    for (const QPoint& p : {QPoint(0, 0), corner}) {
        m_button->PtrDown(p);
        QVERIFY(m_button->down);
        m_button->PtrUp();
    }
    for (const QPoint& p : {QPoint(-1, 0), QPoint(0, -1), QPoint(100, 59), QPoint(99, 60)}) {
        m_button->PtrDown(p);
        QVERIFY(!m_button->down);
    }
}

void tst_ZrBtn::releaseOutside()
{
    SendPress(*m_button, inside);
    SendMove(*m_button, outside);
    QCOMPARE(m_button->hover, 0U);
    QVERIFY(m_button->down);
    SendRelease(*m_button, outside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed"));
    QVERIFY(!m_button->down);
}

void tst_ZrBtn::outAndBackIn()
{
    SendPress(*m_button, inside);
    SendMove(*m_button, outside);
    SendMove(*m_button, corner);
    QCOMPARE(m_button->hover, 2U);
    SendRelease(*m_button, corner);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
    QCOMPARE(m_button->hover, 0U);
}

void tst_ZrBtn::movesWithoutAPress()
{
    SendMove(*m_button, inside);
    QCOMPARE(m_button->hover, 1U);
    SendMove(*m_button, outside);
    QCOMPARE(m_button->hover, 0U);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrBtn::leaving()
{
    SendMove(*m_button, inside);
    SendLeave(*m_button);
    QCOMPARE(m_button->hover, 0U);
    QVERIFY(!m_button->down);
}

void tst_ZrBtn::leavingWhileDown()
{
    SendPress(*m_button, inside);
    SendLeave(*m_button);
    QCOMPARE(m_button->hover, 0U);
    QVERIFY(m_button->down);
    SendRelease(*m_button, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
}

void tst_ZrBtn::secondReleaseDoesNothing()
{
    SendPress(*m_button, inside);
    SendRelease(*m_button, inside);
    m_log.clear();
    SendRelease(*m_button, inside);
    m_button->PtrUp();
    QVERIFY(m_log.isEmpty());
}

void tst_ZrBtn::doubleClickIsTwoPresses()
{
    QTest::mouseClick(m_button, Qt::LeftButton, Qt::NoModifier, inside);
    QTest::mouseDClick(m_button, Qt::LeftButton, Qt::NoModifier, inside);
    SendRelease(*m_button, inside);
    QCOMPARE(m_log.count(QStringLiteral("Pressed")), 2);
    QCOMPARE(m_log.count(QStringLiteral("Clicked")), 2);
}

void tst_ZrBtn::pointerUpWithoutDown()
{
    m_button->PtrMove(inside);
    m_button->PtrUp();
    QVERIFY(m_log.isEmpty());
    QCOMPARE(m_button->hover, 0U);
}

void tst_ZrBtn::systemCopiesOfTouchesAreIgnored()
{
    SendPress(*m_button, inside, Qt::MouseEventSynthesizedBySystem);
    QVERIFY(!m_button->down);
    SendMove(*m_button, inside, Qt::MouseEventSynthesizedBySystem);
    QCOMPARE(m_button->hover, 0U);
    SendRelease(*m_button, inside, Qt::MouseEventSynthesizedBySystem);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrBtn::releaseOfAnySourceCounts()
{
    SendPress(*m_button, inside);
    SendMove(*m_button, outside, Qt::MouseEventSynthesizedBySystem);
    QCOMPARE(m_button->hover, 2U);
    SendRelease(*m_button, inside, Qt::MouseEventSynthesizedBySystem);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
}

void tst_ZrBtn::copiesByQtCount()
{
    SendPress(*m_button, inside, Qt::MouseEventSynthesizedByQt);
    SendRelease(*m_button, inside, Qt::MouseEventSynthesizedByQt);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
}

void tst_ZrBtn::realMouse()
{
    QTest::mousePress(m_button, Qt::LeftButton, Qt::NoModifier, inside);
    QTest::mouseRelease(m_button, Qt::LeftButton, Qt::NoModifier, outside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed"));
    m_log.clear();
    QTest::mouseClick(m_button, Qt::LeftButton, Qt::NoModifier, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
}

void tst_ZrBtn::tap()
{
    m_button->checkable = true;
    m_button->id = 4;
    auto touch = TouchOn(m_button, m_device, false);
    touch.press(0, inside, m_button).commit();
    QVERIFY(m_button->down);
    QCOMPARE(m_button->hover, 2U);
    QCOMPARE(m_log.join(u','), QStringLiteral("Toggled on,Selected 4,Pressed"));
    touch.release(0, inside, m_button).commit();
    QCOMPARE(m_log.join(u','), QStringLiteral("Toggled on,Selected 4,Pressed,Released 4,Clicked"));
    QVERIFY(!m_button->down);
    QCOMPARE(m_button->hover, 0U);
}

void tst_ZrBtn::touchDraggedOutStillClicks()
{
    auto touch = TouchOn(m_button, m_device, false);
    touch.press(0, inside, m_button).commit();
    touch.move(0, QPoint(150, 30), m_button).commit();
    QCOMPARE(m_button->hover, 0U);
    QVERIFY(m_button->down);
    touch.release(0, QPoint(150, 30), m_button).commit();
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
}

void tst_ZrBtn::touchDraggedOutAndBack()
{
    auto touch = TouchOn(m_button, m_device, false);
    touch.press(0, inside, m_button).commit();
    touch.move(0, QPoint(150, 30), m_button).commit();
    touch.move(0, corner, m_button).commit();
    QCOMPARE(m_button->hover, 2U);
    touch.release(0, corner, m_button).commit();
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
}

void tst_ZrBtn::touchBeginningOutside()
{
    QTouchEvent::TouchPoint point(1);
    point.setState(Qt::TouchPointPressed);
    point.setPos(QPointF(150, 30));
    QTouchEvent begin(QEvent::TouchBegin, m_device, Qt::NoModifier, Qt::TouchPointPressed,
        QList<QTouchEvent::TouchPoint>({point}));
    begin.ignore();
    QCoreApplication::sendEvent(m_button, &begin);
    QVERIFY(begin.isAccepted());
    QVERIFY(!m_button->down);
    QVERIFY(m_log.isEmpty());
}

// The last point of an event decides, whichever finger has changed.
void tst_ZrBtn::secondFinger()
{
    auto touch = TouchOn(m_button, m_device, false);
    touch.press(0, inside, m_button).commit();
    touch.stationary(0).press(1, QPoint(40, 30), m_button).commit();
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Pressed"));
    touch.move(0, QPoint(150, 30), m_button).stationary(1).commit();
    QCOMPARE(m_button->hover, 2U);
    touch.stationary(0).release(1, QPoint(40, 30), m_button).commit();
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Pressed,Released -1,Clicked"));
    touch.release(0, QPoint(150, 30), m_button).commit();
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Pressed,Released -1,Clicked"));
}

void tst_ZrBtn::touchCancel()
{
    auto touch = TouchOn(m_button, m_device, false);
    touch.press(0, inside, m_button).commit();
    QTouchEvent cancel(QEvent::TouchCancel, m_device);
    cancel.ignore();
    QCoreApplication::sendEvent(m_button, &cancel);
    QVERIFY(cancel.isAccepted());
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
    QVERIFY(!m_button->down);
    touch.release(0, inside, m_button).commit();
    QCOMPARE(m_log.size(), 3);
}

void tst_ZrBtn::touchWithoutPoints()
{
    QTouchEvent begin(QEvent::TouchBegin, m_device);
    begin.ignore();
    QVERIFY(QCoreApplication::sendEvent(m_button, &begin));
    QVERIFY(begin.isAccepted());
    QVERIFY(!m_button->down);
}

void tst_ZrBtn::touchSendsNoMouseEvents()
{
    class Counter : public QObject
    {
    public:
        bool eventFilter(QObject* /*watched*/, QEvent* event) override
        {
            mouse += event->type() == QEvent::MouseButtonPress ? 1 : 0;
            return false;
        }

        int mouse = 0;
    } counter;

    m_button->installEventFilter(&counter);
    auto touch = TouchOn(m_button, m_device, false);
    touch.press(0, inside, m_button).commit();
    touch.release(0, inside, m_button).commit();
    QCOMPARE(counter.mouse, 0);
    QCOMPARE(m_log.count(QStringLiteral("Pressed")), 1);
}

void tst_ZrBtn::touchOnDisabled()
{
    m_button->setEnabled(false);
    auto touch = TouchOn(m_button, m_device, false);
    touch.press(0, inside, m_button).commit();
    touch.release(0, inside, m_button).commit();
    QVERIFY(m_log.isEmpty());
    QVERIFY(!m_button->down);
}

void tst_ZrBtn::keys_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Space") << int(Qt::Key_Space);
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Enter") << int(Qt::Key_Enter);
    QTest::newRow("Select") << int(Qt::Key_Select);
}

void tst_ZrBtn::keys()
{
    QFETCH(int, key);
    m_button->setFocus(Qt::TabFocusReason);
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(m_button, &press);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed"));
    QCOMPARE(m_button->hover, 2U);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(m_button, &release);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
    QCOMPARE(m_button->hover, 0U);
}

void tst_ZrBtn::keyRepeatPressesOnce()
{
    m_button->checkable = true;
    const auto send = [this](QEvent::Type type, bool isRepeat) {
        QKeyEvent event(type, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), isRepeat);
        QCoreApplication::sendEvent(m_button, &event);
    };
    send(QEvent::KeyPress, false);
    send(QEvent::KeyRelease, true);
    send(QEvent::KeyPress, true);
    send(QEvent::KeyPress, true);
    QCOMPARE(m_log.join(u','), QStringLiteral("Toggled on,Pressed"));
    send(QEvent::KeyRelease, false);
    QCOMPARE(m_log.join(u','), QStringLiteral("Toggled on,Pressed,Released -1,Clicked"));
}

void tst_ZrBtn::otherKeysGoOn()
{
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        QCoreApplication::sendEvent(m_button, &event);
        QVERIFY(!event.isAccepted());
    }
    QVERIFY(m_log.isEmpty());
}

void tst_ZrBtn::focusLostWhileAKeyIsDown()
{
    m_button->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(m_button->hasFocus());
    QTest::keyPress(m_button, Qt::Key_Space);
    m_button->clearFocus();
    QVERIFY(!m_button->down);
    QTest::keyRelease(m_button, Qt::Key_Space);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed"));
}

void tst_ZrBtn::focusLostWhileTheMouseIsDown()
{
    m_button->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(m_button->hasFocus());
    SendPress(*m_button, inside);
    m_button->clearFocus();
    SendRelease(*m_button, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed,Released -1,Clicked"));
}

void tst_ZrBtn::tapsDoNotTakeTheFocus()
{
    QWidget field(m_window.get());
    field.setFocusPolicy(Qt::StrongFocus);
    field.setGeometry(0, 100, 50, 20);
    field.show();
    field.setFocus();
    QTRY_VERIFY(field.hasFocus());
    QTest::mouseClick(m_button, Qt::LeftButton, Qt::NoModifier, inside);
    QVERIFY(field.hasFocus());
    QCOMPARE(m_button->focusPolicy(), Qt::TabFocus);
}

void tst_ZrBtn::disabledByMouse()
{
    m_button->setEnabled(false);
    QTest::mouseClick(m_button, Qt::LeftButton, Qt::NoModifier, inside);
    QTest::keyClick(m_button, Qt::Key_Space);
    QVERIFY(m_log.isEmpty());
    QCOMPARE(m_button->hover, 0U);
}

void tst_ZrBtn::disabledWhileDown()
{
    SendPress(*m_button, inside);
    m_button->setEnabled(false);
    QVERIFY(!m_button->down);
    QCOMPARE(m_button->hover, 0U);
    m_button->setEnabled(true);
    SendRelease(*m_button, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed"));
}

void tst_ZrBtn::hiddenWhileDown()
{
    SendPress(*m_button, inside);
    m_button->hide();
    QVERIFY(!m_button->down);
    m_button->show();
    QCOMPARE(m_button->hover, 0U);
    SendRelease(*m_button, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed"));
}

void tst_ZrBtn::dialogOpenedBySlot()
{
    bool wasDown = true;
    connect(m_button, &ZrBtn::Pressed, this, [&] {
        QDialog dialog(m_window.get());
        QTimer::singleShot(0, &dialog, [&] {
            wasDown = m_button->down;
            dialog.reject();
        });
        dialog.exec();
    });
    SendPress(*m_button, inside);
    QVERIFY(!wasDown);
    QVERIFY(!m_button->down);
    SendMove(*m_button, inside);
    QCOMPARE(m_button->hover, 1U);
    SendRelease(*m_button, inside);
    QCOMPARE(m_log.join(u','), QStringLiteral("Pressed"));
}

void tst_ZrBtn::reentrantPress()
{
    int depth = 0;
    connect(m_button, &ZrBtn::Pressed, this, [&] {
        if (++depth < 3)
            m_button->PtrDown(inside);
    });
    m_button->PtrDown(inside);
    m_button->PtrUp();
    QCOMPARE(m_log.count(QStringLiteral("Pressed")), 3);
    QCOMPARE(m_log.count(QStringLiteral("Clicked")), 1);
}

void tst_ZrBtn::deletedInSlot_data()
{
    QTest::addColumn<Slot>("slot");
    QTest::addColumn<QString>("log");
    QTest::newRow("Toggled") << Slot::toggled << QStringLiteral("Toggled on");
    QTest::newRow("Selected") << Slot::selected << QStringLiteral("Toggled on,Selected 1");
    QTest::newRow("Pressed") << Slot::pressed << QStringLiteral("Toggled on,Selected 1,Pressed");
    QTest::newRow("Released") << Slot::released << QStringLiteral("Toggled on,Selected 1,Pressed,Released 1");
    QTest::newRow("Clicked") << Slot::clicked
                             << QStringLiteral("Toggled on,Selected 1,Pressed,Released 1,Clicked");
}

void tst_ZrBtn::DeleteIn(Slot slot)
{
    static bool value;
    m_button->checkable = true;
    m_button->link = &value;
    m_button->id = 1;
    const auto kill = [this] { delete m_button.data(); };
    switch (slot) {
    case Slot::toggled:
        connect(m_button, &ZrBtn::Toggled, this, kill);
        break;
    case Slot::selected:
        connect(m_button, &ZrBtn::Selected, this, kill);
        break;
    case Slot::pressed:
        connect(m_button, &ZrBtn::Pressed, this, kill);
        break;
    case Slot::released:
        connect(m_button, &ZrBtn::Released, this, kill);
        break;
    case Slot::clicked:
        connect(m_button, &ZrBtn::Clicked, this, kill);
        break;
    }
}

void tst_ZrBtn::deletedInSlot()
{
    QFETCH(Slot, slot);
    QFETCH(QString, log);
    DeleteIn(slot);
    auto touch = TouchOn(m_button, m_device, false);
    touch.press(0, inside, m_button).commit();
    if (m_button)
        touch.release(0, inside, m_button).commit();
    QVERIFY(!m_button);
    QCOMPARE(m_log.join(u','), log);
    if (slot == Slot::released || slot == Slot::clicked)
        return;
    // The finger is still down on what is gone.
    TouchOn(m_window.get(), m_device).release(0, QPoint(20, 30), m_window.get());
}

void tst_ZrBtn::deletedInSlotByMouse_data()
{
    deletedInSlot_data();
}

void tst_ZrBtn::deletedInSlotByMouse()
{
    QFETCH(Slot, slot);
    QFETCH(QString, log);
    DeleteIn(slot);
    QTest::mousePress(m_button, Qt::LeftButton, Qt::NoModifier, inside);
    if (m_button)
        QTest::mouseRelease(m_button, Qt::LeftButton, Qt::NoModifier, inside);
    QVERIFY(!m_button);
    QCOMPARE(m_log.join(u','), log);
}

void tst_ZrBtn::deletedInSlotByKey_data()
{
    deletedInSlot_data();
}

void tst_ZrBtn::deletedInSlotByKey()
{
    QFETCH(Slot, slot);
    QFETCH(QString, log);
    DeleteIn(slot);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
    QCoreApplication::sendEvent(m_button, &press);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Space, Qt::NoModifier);
    if (m_button)
        QCoreApplication::sendEvent(m_button, &release);
    QVERIFY(!m_button);
    QCOMPARE(m_log.join(u','), log);
}

void tst_ZrBtn::repaintsOnlyOnChange()
{
    ZrPaintCounter paints(*m_button);
    paints.Take();
    const auto none = [&paints] { return paints.Take() == 0; };
    const auto one = [&paints] { return paints.Take() == 1; };
    m_button->PtrMove(outside);
    QVERIFY(none());
    SendLeave(*m_button);
    QVERIFY(none());
    m_button->PtrDown(outside);
    QVERIFY(none());
    SendRelease(*m_button, outside);
    QVERIFY(none());
    m_button->PtrMove(inside);
    QVERIFY(one());
    m_button->PtrMove(corner);
    QVERIFY(none());
    m_button->PtrDown(inside);
    QVERIFY(one());
    m_button->PtrMove(corner);
    QVERIFY(none());
    m_button->PtrMove(outside);
    QVERIFY(one());
    m_button->PtrMove(outside);
    QVERIFY(none());
    m_button->PtrMove(inside);
    QVERIFY(one());
    m_button->PtrUp();
    QVERIFY(one());
    SendPress(*m_button, inside, Qt::MouseEventSynthesizedBySystem);
    SendMove(*m_button, inside, Qt::MouseEventSynthesizedBySystem);
    QVERIFY(none());
    // These repaint in any case.
    SendRelease(*m_button, inside);
    QVERIFY(one());
    m_button->PtrUp();
    QVERIFY(one());
}

QTEST_MAIN(tst_ZrBtn)
#include "tst_ZrBtn.moc"
