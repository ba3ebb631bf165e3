#include "TouchOn.h"
#include "ZrInputWindow.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QScreen>

#include <memory>

using input::Click;
using input::Press;
using input::Shown;
using input::Type;
using input::U;

/// The keyboard on the screen: opening, and the round trip with the control. What is done to the text:
/// tst_ZrInputDlgText; layouts, touches and painting: tst_ZrInputDlgKeys.
class tst_ZrInputDlg : public ZrInputWindow
{
    Q_OBJECT

private Q_SLOTS:

    void init() { OpenWindow(); }

    void cleanup() { CloseWindow(); }

    void opensAtThePress();
    void opensTheLayoutOfTheKind_data();
    void opensTheLayoutOfTheKind();
    void standsInTheMiddleOfTheScreen();
    void staysInsideWhenAsked();
    void fitsIntoSmallWindows_data();
    void fitsIntoSmallWindows();
    void followsTheWindow();
    void belongsToTheTopWidget();
    void doesNotPileUp();
    void leavesOneKeyboardInAWindow();
    void goesWithItsControl();
    void goesWithItsPage();
    void keepsTheRestOfThePressFromTheLine();

    void commitsWhatIsTyped_data();
    void commitsWhatIsTyped();
    void emitsInOrder();
    void refusesWhileInvalid();
    void cancelsWithoutAChange();
    void tellsRangeErrorsFromErrors();
    void negates();

    void survivesDeletionInSlots_data();
    void survivesDeletionInSlots();
    void isAccessible();
};

void tst_ZrInputDlg::opensAtThePress()
{
    ZrInput* in = Make(ZrInput::kindDouble, 3.5);
    in->caption = QStringLiteral("Gain");
    ZrInputDlg* dlg = Press(*in);
    QVERIFY(dlg);
    QCOMPARE(dlg->caption, QStringLiteral("Gain"));
    QCOMPARE(dlg->text, QStringLiteral("3.50"));
    QCOMPARE(dlg->state, 1);
    QCOMPARE(dlg->cursor, 4);
    QCOMPARE(dlg->size(), QSize(dlg->dlgWidth, dlg->dlgHeight));
    QVERIFY(dlg->hasFocus());
    QCOMPARE(in->QLineEdit::text(), QStringLiteral("3.50"));
    // The accepted text is edited, not one in red.
    dlg->OnCancel();
    in->setText(QStringLiteral("3.50x"));
    dlg = Press(*in);
    QCOMPARE(dlg->text, QStringLiteral("3.50"));
    QCOMPARE(dlg->state, 1);
}

void tst_ZrInputDlg::opensTheLayoutOfTheKind_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("has");
    QTest::addColumn<QString>("lacks");
    QTest::newRow("integer") << 0 << "0123456789-"
                             << ".e NqD";
    for (int kind : {1, 2})
        QTest::newRow(qPrintable(QStringLiteral("number %1").arg(kind))) << kind << "0123456789-.e"
                                                                         << " NqD";
    QTest::newRow("text") << 3 << "0123456789-., qwertyuiopasdfghjklzxcvbnm" << U("°");
    for (int kind : {4, 5})
        QTest::newRow(qPrintable(QStringLiteral("position %1").arg(kind)))
            << kind << U("0123456789-. °'\"NSEW") << "qe";
    for (int kind : {6, 7, 8, 9, 10, 11, 12})
        QTest::newRow(qPrintable(QStringLiteral("unit %1").arg(kind))) << kind << "0123456789-."
                                                                       << "e Nq";
    QTest::newRow("none") << 13 << ""
                          << "0.q";
    QTest::newRow("none below") << -1 << ""
                                << "0.q";
}

void tst_ZrInputDlg::opensTheLayoutOfTheKind()
{
    QFETCH(int, kind);
    QFETCH(QString, has);
    QFETCH(QString, lacks);
    ZrInput* in = Make(kind, 1.0);
    ZrInputDlg* dlg = Press(*in);
    QVERIFY(dlg);
    for (const QChar c : has)
        QVERIFY2(!input::KeyAt(*dlg, zriKey, c).isNull(), qPrintable(QString(c)));
    for (const QChar c : lacks)
        QVERIFY2(input::KeyAt(*dlg, zriKey, c).isNull(), qPrintable(QString(c)));
    for (eZriAction action : {zriDelete, zriLeft, zriRight, zriStart, zriEnd, zriNegate, zriOk, zriCancel})
        QVERIFY2(!input::KeyAt(*dlg, action).isNull(), qPrintable(QString::number(action)));
}

void tst_ZrInputDlg::standsInTheMiddleOfTheScreen()
{
    m_top->move(37, 21);
    ZrInput* in = Make(ZrInput::kindInt, 5);
    const QSize screen = QGuiApplication::primaryScreen()->geometry().size();
    ZrDebugLines lines;
    ZrInputDlg* dlg = Press(*in);
    QVERIFY(dlg);
    QCOMPARE(dlg->geometry(),
        QRect((screen.width() - dlg->dlgWidth) / 2, (screen.height() - dlg->dlgHeight) / 2, dlg->dlgWidth,
            dlg->dlgHeight));
    QCOMPARE(ZrDebugLines::Lines(),
        QStringList{QStringLiteral("Show dialog %1 %2 %3 %4")
                        .arg(screen.height())
                        .arg(screen.width())
                        .arg(dlg->dlgWidth)
                        .arg(dlg->dlgHeight)});
}

void tst_ZrInputDlg::staysInsideWhenAsked()
{
    m_top->resize(500, 800);
    ZrInput* in = Make(ZrInput::kindInt, 5);
    // 800 pixels of screen: the keyboard would end beyond 500.
    ZrInputDlg* dlg = Press(*in);
    QVERIFY(dlg->geometry().right() >= 500);
    ZrInputDlg::s_keepInside = true;
    dlg = Press(*in);
    QVERIFY2(m_top->rect().contains(dlg->geometry()), qPrintable(QString::number(dlg->x())));
    QCOMPARE(dlg->x(), 500 - dlg->dlgWidth);
    QCOMPARE(dlg->dlgWidth, 424);
}

void tst_ZrInputDlg::fitsIntoSmallWindows_data()
{
    QTest::addColumn<QSize>("window");
    QTest::newRow("wide") << QSize(700, 300);
    QTest::newRow("high") << QSize(320, 900);
    QTest::newRow("small") << QSize(240, 180);
    QTest::newRow("smaller than a phone") << QSize(130, 100);
}

/// The whole keyboard stays usable: OK is in the last row.
void tst_ZrInputDlg::fitsIntoSmallWindows()
{
    QFETCH(QSize, window);
    ZrInputDlg::s_keepInside = true;
    m_top->setMinimumSize(1, 1);
    m_top->resize(window);
    QCOMPARE(m_top->size(), window);
    ZrInput* in = MakeText(QStringLiteral("a"));
    ZrInputDlg* dlg = Press(*in);
    QVERIFY(dlg);
    QVERIFY(m_top->rect().contains(dlg->geometry()));
    QVERIFY(dlg->dlgWidth > window.width() * 8 / 10 || dlg->dlgHeight > window.height() * 8 / 10);
    QVERIFY(!dlg->grab().isNull());
    Type(*dlg, QStringLiteral("xy"));
    Click(*dlg, zriOk);
    QCOMPARE(in->text, QStringLiteral("xy"));
    // A window of nothing must not hang.
    m_top->resize(1, 1);
    dlg = Press(*in);
    QVERIFY(dlg);
    QVERIFY(dlg->dlgWidth > 0);
}

void tst_ZrInputDlg::followsTheWindow()
{
    ZrInputDlg::s_keepInside = true;
    ZrInput* in = MakeText(QStringLiteral("a"));
    ZrInputDlg* dlg = Press(*in);
    const QSize full = dlg->size();
    Type(*dlg, QStringLiteral("x"));
    m_top->resize(600, 400);
    QTRY_VERIFY(m_top->rect().contains(dlg->geometry()));
    QCOMPARE(dlg->size(), QSize(dlg->dlgWidth, dlg->dlgHeight));
    QVERIFY(dlg->width() < full.width());
    Type(*dlg, QStringLiteral("y"));
    QCOMPARE(dlg->text, QStringLiteral("xy"));
    m_top->resize(1280, 800);
    QTRY_COMPARE(dlg->size(), full);
}

void tst_ZrInputDlg::belongsToTheTopWidget()
{
    auto* inner = new QWidget(m_page);
    ZrInput in(inner);
    in.show();
    inner->show();
    ZrInputDlg* dlg = Press(in);
    QVERIFY(dlg);
    QCOMPARE(dlg->parentWidget(), m_top.get());
    // A control that is a window of its own.
    ZrInput alone(nullptr);
    alone.show();
    ZrInputDlg* own = Press(alone);
    QVERIFY(own);
    QCOMPARE(own->parentWidget(), &alone);
}

void tst_ZrInputDlg::doesNotPileUp()
{
    ZrInput* in = Make(ZrInput::kindInt, 5);
    for (int i = 0; i < 20; ++i) {
        ZrInputDlg* dlg = Press(*in);
        QVERIFY(dlg);
        QCOMPARE(m_top->findChildren<ZrInputDlg*>().size(), 1);
        if (i % 3 == 0)
            dlg->OnOk();
    }
    // A second click of a double one neither opens another nor drops what is typed.
    ZrInputDlg* dlg = Press(*in);
    Type(*dlg, QStringLiteral("7"));
    in->setFocus();
    input::Mouse(*in, QEvent::MouseButtonDblClick, QPoint(3, 3));
    QCOMPARE(Shown(*m_top), dlg);
    QCOMPARE(dlg->text, QStringLiteral("7"));
    QVERIFY(dlg->hasFocus());
    dlg->OnCancel();
    input::Mouse(*in, QEvent::MouseButtonDblClick, QPoint(3, 3));
    QVERIFY(Shown(*m_top));
}

void tst_ZrInputDlg::leavesOneKeyboardInAWindow()
{
    ZrInput* a = Make(ZrInput::kindInt, 1);
    ZrInput* b = Make(ZrInput::kindInt, 2);
    ZrInputDlg* first = Press(*a);
    int cancelled = 0;
    connect(first, &ZrInputDlg::Cancelled, this, [&cancelled] { ++cancelled; });
    Type(*first, QStringLiteral("9"));
    ZrInputDlg* second = Press(*b);
    QVERIFY(second != first);
    QVERIFY(!first->isVisible());
    QVERIFY(second->isVisible());
    QCOMPARE(cancelled, 1);
    QCOMPARE(a->value, 1.0);
    Type(*second, QStringLiteral("8"));
    Click(*second, zriOk);
    QCOMPARE(a->value, 1.0);
    QCOMPARE(b->value, 8.0);
}

void tst_ZrInputDlg::goesWithItsControl()
{
    ZrInput* in = Make(ZrInput::kindInt, 5);
    const QPointer<ZrInputDlg> dlg = Press(*in);
    QVERIFY(dlg);
    delete in;
    QVERIFY(!dlg);
    // And the window goes with both.
    Press(*Make(ZrInput::kindInt, 5));
    m_top.reset();
    QVERIFY(ZrInput::s_inputs.empty());
}

void tst_ZrInputDlg::goesWithItsPage()
{
    ZrInput* in = Make(ZrInput::kindInt, 5);
    ZrInputDlg* dlg = Press(*in);
    Type(*dlg, QStringLiteral("7"));
    m_page->hide();
    QVERIFY(!dlg->isVisible());
    QCOMPARE(in->value, 5.0);
    m_page->show();
    QVERIFY(!dlg->isVisible());
}

void tst_ZrInputDlg::keepsTheRestOfThePressFromTheLine()
{
    ZrInput* in = MakeText(QStringLiteral("some long text"));
    in->resize(300, 40);
    in->setCursorPosition(3);
    input::Mouse(*in, QEvent::MouseButtonPress, QPoint(5, 20));
    QMouseEvent move(QEvent::MouseMove, QPointF(200, 20), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(in, &move);
    input::Mouse(*in, QEvent::MouseButtonRelease, QPoint(200, 20));
    QVERIFY(!in->hasSelectedText());
    QCOMPARE(in->cursorPosition(), 3);
    QContextMenuEvent menu(QContextMenuEvent::Mouse, QPoint(5, 20));
    QApplication::sendEvent(in, &menu);
    QVERIFY(!QApplication::activePopupWidget());
}

void tst_ZrInputDlg::commitsWhatIsTyped_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("isImperial");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("value");
    QTest::newRow("integer") << 0 << false << "-120" << -120.0;
    QTest::newRow("double") << 1 << false << "-1.5e-3" << -0.0015;
    QTest::newRow("float") << 2 << false << "0.25" << 0.25;
    QTest::newRow("latitude") << 4 << false << U("51°7'24.444\"N") << 51.0 + 7.0 / 60 + 24.444 / 3600;
    QTest::newRow("latitude, blanks") << 4 << false << "51 30 S" << -51.5;
    QTest::newRow("longitude") << 5 << false << "4 12.5 W" << -(4.0 + 12.5 / 60);
    QTest::newRow("tiny length") << 6 << false << "12.5" << 0.0125;
    QTest::newRow("short length") << 7 << false << "12.5" << 12.5;
    QTest::newRow("short length, feet") << 7 << true << "32.8084" << 10.0;
    QTest::newRow("long length") << 8 << false << "1.5" << 1500.0;
    QTest::newRow("speed, knots") << 9 << true << "1.94384" << 1.0;
    QTest::newRow("temperature") << 10 << false << "-1.8" << -1.8;
    QTest::newRow("easting") << 11 << false << "500000.25" << 500000.25;
    QTest::newRow("northing") << 12 << false << "5612345" << 5612345.0;
}

/// From the press to the value, by clicks on keys.
void tst_ZrInputDlg::commitsWhatIsTyped()
{
    QFETCH(int, kind);
    QFETCH(bool, isImperial);
    QFETCH(QString, typed);
    QFETCH(double, value);
    if (isImperial)
        ZrUnits::SetToImperial();
    ZrInput* in = Make(kind, 3.0);
    ZrInputDlg* dlg = Press(*in);
    QVERIFY(dlg);
    Type(*dlg, typed);
    QCOMPARE(dlg->text, typed);
    QCOMPARE(dlg->cursor, typed.size());
    QCOMPARE(dlg->state, 1);
    int news = 0;
    connect(in, &ZrInput::NewInput, this, [&news] { ++news; });
    Click(*dlg, zriOk);
    QVERIFY(!dlg->isVisible());
    QCOMPARE(in->text, typed);
    QCOMPARE(in->QLineEdit::text(), typed);
    QVERIFY2(std::fabs(in->value - value) < 1e-9 * std::max(1.0, std::fabs(value)),
        qPrintable(QString::number(in->value, 'g', 17)));
    QCOMPARE(news, 2);
}

void tst_ZrInputDlg::emitsInOrder()
{
    ZrInput* in = Make(ZrInput::kindDouble, 3.0);
    ZrInputDlg* dlg = Press(*in);
    QStringList log;
    connect(dlg, &ZrInputDlg::Validate, this, [&](const QString& s) {
        log += QStringLiteral("validate ") + s;
        return in->OnValidate(s);
    });
    connect(dlg, &ZrInputDlg::Negate, this, [&](const QString& s) { log += QStringLiteral("negate ") + s; });
    connect(dlg, &ZrInputDlg::Commit, this, [&](const QString& s) {
        log += QStringLiteral("commit %1 visible %2").arg(s).arg(dlg->isVisible());
    });
    connect(dlg, &ZrInputDlg::Cancelled, this,
        [&] { log += QStringLiteral("cancelled visible %1").arg(dlg->isVisible()); });
    connect(in, &ZrInput::NewInput, this, [&] { log += QStringLiteral("new ") + in->text; });
    Type(*dlg, QStringLiteral("5"));
    Click(*dlg, zriNegate);
    Click(*dlg, zriDelete);
    Click(*dlg, zriLeft);
    Click(*dlg, zriOk);
    // The control is connected first.
    QCOMPARE(log,
        (QStringList{QStringLiteral("validate 5"), QStringLiteral("negate -5.00"),
            QStringLiteral("validate -5.00"), QStringLiteral("validate -5.0"), QStringLiteral("new -5.0"),
            QStringLiteral("new -5.0"), QStringLiteral("commit -5.0 visible 1")}));
    log.clear();
    dlg = Press(*in);
    connect(dlg, &ZrInputDlg::Cancelled, this,
        [&] { log += QStringLiteral("cancelled visible %1").arg(dlg->isVisible()); });
    Click(*dlg, zriCancel);
    QCOMPARE(log, QStringList{QStringLiteral("cancelled visible 1")});
    QVERIFY(!dlg->isVisible());
    // The text of the control again: told once.
    log.clear();
    dlg = Press(*in);
    Click(*dlg, zriOk);
    QCOMPARE(log, QStringList{QStringLiteral("new -5.0")});
}

void tst_ZrInputDlg::refusesWhileInvalid()
{
    ZrInput* in = Make(ZrInput::kindDouble, 5.0);
    in->SetRange(0, 10);
    ZrInputDlg* dlg = Press(*in);
    int commits = 0;
    connect(dlg, &ZrInputDlg::Commit, this, [&commits] { ++commits; });
    Type(*dlg, QStringLiteral("11"));
    QCOMPARE(dlg->state, 0);
    Click(*dlg, zriOk);
    dlg->OnOk();
    QTest::keyClick(dlg, Qt::Key_Return);
    QVERIFY(dlg->isVisible());
    QCOMPARE(commits, 0);
    QCOMPARE(in->value, 5.0);
    Click(*dlg, zriDelete);
    QCOMPARE(dlg->state, 1);
    Click(*dlg, zriOk);
    QCOMPARE(commits, 1);
    QCOMPARE(in->value, 1.0);
    // A value that was typed into the line out of range opens as valid, and is not taken either.
    in->setText(QStringLiteral("12"));
    dlg = Press(*in);
    QCOMPARE(dlg->state, 1);
    int news = 0;
    connect(in, &ZrInput::NewInput, this, [&news] { ++news; });
    Click(*dlg, zriOk);
    QVERIFY(!dlg->isVisible());
    QCOMPARE(news, 0);
    QCOMPARE(in->value, 12.0);
    // The state alone decides.
    dlg = Press(*in);
    dlg->state = 2;
    dlg->OnOk();
    QVERIFY(dlg->isVisible());
}

void tst_ZrInputDlg::cancelsWithoutAChange()
{
    ZrInput* in = Make(ZrInput::kindDouble, 5.0);
    int news = 0;
    connect(in, &ZrInput::NewInput, this, [&news] { ++news; });
    ZrInputDlg* dlg = Press(*in);
    Type(*dlg, QStringLiteral("9"));
    Click(*dlg, zriCancel);
    QVERIFY(!dlg->isVisible());
    QCOMPARE(in->value, 5.0);
    QCOMPARE(in->QLineEdit::text(), QStringLiteral("5.00"));
    QCOMPARE(news, 0);
    // Let go beside the key it does nothing.
    dlg = Press(*in);
    const QPoint cancel = input::KeyAt(*dlg, zriCancel);
    input::Mouse(*dlg, QEvent::MouseButtonPress, cancel);
    input::Mouse(*dlg, QEvent::MouseButtonRelease, QPoint(5, 5));
    QVERIFY(dlg->isVisible());
    input::Mouse(*dlg, QEvent::MouseButtonPress, QPoint(5, 5));
    input::Mouse(*dlg, QEvent::MouseButtonRelease, cancel);
    QVERIFY(dlg->isVisible());
    input::Mouse(*dlg, QEvent::MouseButtonPress, cancel, Qt::RightButton);
    input::Mouse(*dlg, QEvent::MouseButtonRelease, cancel, Qt::RightButton);
    QVERIFY(dlg->isVisible());
}

void tst_ZrInputDlg::tellsRangeErrorsFromErrors()
{
    ZrInput* in = Make(ZrInput::kindShortLength, 5.0);
    in->SetRange(0, 10);
    ZrInputDlg* dlg = Press(*in);
    QCOMPARE(dlg->Refusal(), QString());
    Type(*dlg, QStringLiteral("11"));
    QCOMPARE(dlg->Refusal(), U("Range Error — allowed: 0.00 to 10.00 m"));
    Type(*dlg, QStringLiteral(".."));
    QCOMPARE(dlg->Refusal(), U("Error — a number is expected"));
    while (!dlg->text.isEmpty())
        dlg->OnDelete();
    QCOMPARE(dlg->Refusal(), U("Error — nothing is typed"));
    Type(*dlg, QStringLiteral("1"));
    QCOMPARE(dlg->Refusal(), QString());
    // A control that is gone while somebody else keeps the keyboard.
    ZrInputDlg own(m_top.get());
    {
        ZrInput other(m_page);
        other.SetRange(0, 1);
        own.SetControl(&other);
        own.text = QStringLiteral("5");
        own.state = 0;
        QVERIFY(own.Refusal().startsWith(QStringLiteral("Range Error")));
    }
    QCOMPARE(own.Refusal(), QStringLiteral("Error"));
    QVERIFY(!own.grab().isNull());
}

void tst_ZrInputDlg::negates()
{
    ZrInput* in = Make(ZrInput::kindDouble, 5.0);
    in->SetRange(-10, 100);
    ZrInputDlg* dlg = Press(*in);
    Click(*dlg, zriNegate);
    QCOMPARE(dlg->text, QStringLiteral("-5.00"));
    QCOMPARE(dlg->cursor, 5);
    QCOMPARE(dlg->state, 1);
    // The next digit begins anew: nobody wants "-5.007".
    Type(*dlg, QStringLiteral("50"));
    QCOMPARE(dlg->text, QStringLiteral("50"));
    Click(*dlg, zriStart);
    Click(*dlg, zriRight);
    Click(*dlg, zriNegate);
    QCOMPARE(dlg->text, QStringLiteral("-50.00"));
    QCOMPARE(dlg->cursor, 1);
    QCOMPARE(dlg->state, 0);
    // Refused, so it stays.
    Click(*dlg, zriNegate);
    QCOMPARE(dlg->text, QStringLiteral("-50.00"));
    QCOMPARE(dlg->state, 0);
    Click(*dlg, zriEnd);
    Type(*dlg, QStringLiteral(".."));
    Click(*dlg, zriNegate);
    QCOMPARE(dlg->text, QStringLiteral("-50.00.."));
    QCOMPARE(dlg->cursor, 8);
    QCOMPARE(in->value, 5.0);
    // A free text has no opposite: the key gives the accepted one back, and says so.
    dlg = Press(*MakeText(QStringLiteral("wreck")));
    for (const ZrInputItem& item : dlg->Items()) {
        if (item.action == zriNegate)
            QCOMPARE(dlg->Label(item), QStringLiteral("restore"));
    }
    Type(*dlg, QStringLiteral("abcdefg"));
    Click(*dlg, zriLeft);
    Click(*dlg, zriNegate);
    QCOMPARE(dlg->text, QStringLiteral("wreck"));
    QCOMPARE(dlg->cursor, 5);
}

void tst_ZrInputDlg::survivesDeletionInSlots_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("isControl");
    for (const char* signal : {"validate", "negate", "commit", "cancelled"}) {
        for (const char* how : {"slot", "click", "touch", "key"}) {
            if (qstrcmp(signal, "negate") == 0 && qstrcmp(how, "key") == 0)
                continue; // no key of hardware negates
            for (bool isControl : {false, true}) {
                QTest::newRow(qPrintable(QStringLiteral("%1 by %2, %3")
                                             .arg(U(signal), U(how), U(isControl ? "control" : "dialog"))))
                    << U(signal) << U(how) << isControl;
            }
        }
    }
}

void tst_ZrInputDlg::survivesDeletionInSlots()
{
    QFETCH(QString, signal);
    QFETCH(QString, how);
    QFETCH(bool, isControl);
    static QTouchDevice* const device = QTest::createTouchDevice();
    ZrInput* in = Make(ZrInput::kindInt, 5);
    const QPointer<ZrInputDlg> dlg = Press(*in);
    const auto remove = [&] {
        if (isControl)
            delete in;
        else
            delete dlg.data();
    };
    eZriAction action = zriKey;
    Qt::Key key = Qt::Key_7;
    if (signal == QStringLiteral("validate")) {
        connect(dlg.data(), &ZrInputDlg::Validate, this, [&](const QString&) {
            remove();
            return 1;
        });
    } else if (signal == QStringLiteral("negate")) {
        connect(dlg.data(), &ZrInputDlg::Negate, this, remove);
        action = zriNegate;
    } else if (signal == QStringLiteral("commit")) {
        connect(dlg.data(), &ZrInputDlg::Commit, this, remove);
        action = zriOk;
        key = Qt::Key_Return;
    } else {
        connect(dlg.data(), &ZrInputDlg::Cancelled, this, remove);
        action = zriCancel;
        key = Qt::Key_Escape;
    }
    const QPoint at = input::KeyAt(*dlg, action, QLatin1Char('7'));
    if (how == QStringLiteral("click")) {
        input::Mouse(*dlg, QEvent::MouseButtonPress, at);
        if (dlg)
            input::Mouse(*dlg, QEvent::MouseButtonRelease, at);
    } else if (how == QStringLiteral("touch")) {
        auto touch = TouchOn(m_top.get(), device, false);
        const QPoint there = dlg->mapTo(m_top.get(), at);
        touch.press(0, there, m_top.get()).commit();
        touch.release(0, there, m_top.get()).commit();
    } else if (how == QStringLiteral("key")) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, key == Qt::Key_7 ? U("7") : QString());
        QApplication::sendEvent(dlg.data(), &press);
    } else if (action == zriKey) {
        dlg->OnKey(QLatin1Char('7'));
    } else if (action == zriNegate) {
        dlg->OnNeg();
    } else if (action == zriOk) {
        dlg->OnOk();
    } else {
        dlg->OnCancel();
    }
    QVERIFY(!dlg);
    QCOMPARE(int(ZrInput::s_inputs.size()), isControl ? 0 : 1);
    if (!isControl) {
        QVERIFY(Press(*in));
        delete in;
    }
}

void tst_ZrInputDlg::isAccessible()
{
    ZrInput* in = Make(ZrInput::kindShortLength, 5.0);
    in->caption = QStringLiteral("Depth limit");
    in->SetRange(0, 10);
    ZrInputDlg* dlg = Press(*in);
    QAccessibleInterface* told = QAccessible::queryAccessibleInterface(dlg);
    QVERIFY(told);
    QCOMPARE(told->text(QAccessible::Name), QStringLiteral("Depth limit"));
    QCOMPARE(told->text(QAccessible::Description), QStringLiteral("5.00 m. allowed: 0.00 to 10.00 m"));
    Type(*dlg, QStringLiteral("11"));
    QCOMPARE(told->text(QAccessible::Description), U("11 m. Range Error — allowed: 0.00 to 10.00 m"));
    Type(*dlg, QStringLiteral("."));
    Type(*dlg, QStringLiteral("."));
    QCOMPARE(told->text(QAccessible::Description),
        U("11.. m. Error — a number is expected. allowed: 0.00 to 10.00 m"));
}

QTEST_MAIN(tst_ZrInputDlg)
#include "tst_ZrInputDlg.moc"
