#include "ZrInputWindow.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QShortcut>

#include <memory>

using input::Click;
using input::Press;
using input::Type;
using input::U;

/// The text that the keyboard on the screen edits: cursor, keys, keyboards of hardware, input methods.
class tst_ZrInputDlgText : public ZrInputWindow
{
    Q_OBJECT

private Q_SLOTS:

    void init() { OpenWindow(); }

    void cleanup() { CloseWindow(); }

    void asksNobody();
    void limitsTheLength();

    void replacesTheTextOnce();
    void entersAtTheCursor();
    void movesTheCursor();
    void deletesAtTheCursor();
    void keepsCharactersWhole_data();
    void keepsCharactersWhole();
    void writesCapitals();

    void takesHardwareKeys();
    void translatesHardwareSigns_data();
    void translatesHardwareSigns();
    void keepsShortcutsAway();
    void pastes();
    void composes();
    void asksAfterAnInputMethodRemoves();
};

/// Without anybody connected nothing is valid.
void tst_ZrInputDlgText::asksNobody()
{
    ZrInputDlg dlg(m_top.get());
    dlg.BuildFloat();
    dlg.Open(QRect(0, 0, dlg.dlgWidth, dlg.dlgHeight));
    QCOMPARE(dlg.IsValid(), 0);
    QCOMPARE(dlg.state, 1);
    Type(dlg, QStringLiteral("5"));
    QCOMPARE(dlg.state, 0);
    QCOMPARE(dlg.Refusal(), QStringLiteral("Error"));
    dlg.OnNeg();
    QCOMPARE(dlg.text, QStringLiteral("5"));
    dlg.OnOk();
    QVERIFY(dlg.isVisible());
    dlg.OnCancel();
    QVERIFY(!dlg.isVisible());
    // Whoever answers.
    QStringList asked;
    connect(&dlg, &ZrInputDlg::Validate, this, [&](const QString& s) {
        asked += s;
        return s == QStringLiteral("56") ? 1 : -1;
    });
    dlg.OnKey(QLatin1Char('6'));
    QCOMPARE(dlg.state, 1);
    QCOMPARE(dlg.IsValid(), 1);
    dlg.OnKey(QLatin1Char('7'));
    QCOMPARE(dlg.state, -1);
    QCOMPARE(asked, (QStringList{QStringLiteral("56"), QStringLiteral("56"), QStringLiteral("567")}));
}

void tst_ZrInputDlgText::limitsTheLength()
{
    ZrInput* in = MakeText(QStringLiteral("abcd"));
    in->setMaxLength(5);
    ZrInputDlg* dlg = Press(*in);
    Click(*dlg, zriEnd);
    Type(*dlg, QStringLiteral("efg"));
    QCOMPARE(dlg->text, QStringLiteral("abcde"));
    QCOMPARE(dlg->cursor, 5);
    Click(*dlg, zriOk);
    QCOMPARE(in->text, QStringLiteral("abcde"));
    QCOMPARE(in->QLineEdit::text(), QStringLiteral("abcde"));
}

void tst_ZrInputDlgText::replacesTheTextOnce()
{
    ZrInput* in = Make(ZrInput::kindDouble, 3.5);
    ZrInputDlg* dlg = Press(*in);
    dlg->OnKey(QLatin1Char('7'));
    QCOMPARE(dlg->text, QStringLiteral("7"));
    QCOMPARE(dlg->cursor, 1);
    dlg->OnKey(QLatin1Char('8'));
    QCOMPARE(dlg->text, QStringLiteral("78"));
    // Who moves the cursor or deletes first keeps the text.
    using Slot = void (ZrInputDlg::*)();
    const QPair<Slot, QString> slots_[] = {{&ZrInputDlg::OnStart, QStringLiteral("73.50")},
        {&ZrInputDlg::OnEnd, QStringLiteral("3.507")}, {&ZrInputDlg::OnLeft, QStringLiteral("3.570")},
        {&ZrInputDlg::OnRight, QStringLiteral("3.507")}, {&ZrInputDlg::OnDelete, QStringLiteral("3.57")}};
    for (const auto& slot : slots_) {
        dlg = Press(*in);
        (dlg->*slot.first)();
        dlg->OnKey(QLatin1Char('7'));
        QCOMPARE(dlg->text, slot.second);
    }
}

void tst_ZrInputDlgText::entersAtTheCursor()
{
    ZrInputDlg dlg;
    dlg.text = QStringLiteral("ac");
    dlg.cursor = 1;
    dlg.OnKey(QLatin1Char('b'));
    QCOMPARE(dlg.text, QStringLiteral("abc"));
    QCOMPARE(dlg.cursor, 2);
    // Positions that are none.
    dlg.cursor = 99;
    dlg.OnKey(QLatin1Char('d'));
    QCOMPARE(dlg.text, QStringLiteral("abcd"));
    QCOMPARE(dlg.cursor, 4);
    dlg.cursor = -7;
    dlg.OnKey(QLatin1Char('_'));
    QCOMPARE(dlg.text, QStringLiteral("_abcd"));
    QCOMPARE(dlg.cursor, 1);
}

void tst_ZrInputDlgText::movesTheCursor()
{
    ZrInputDlg dlg;
    dlg.text = QStringLiteral("abc");
    dlg.OnEnd();
    QCOMPARE(dlg.cursor, 3);
    dlg.OnRight();
    QCOMPARE(dlg.cursor, 3);
    dlg.OnLeft();
    QCOMPARE(dlg.cursor, 2);
    dlg.OnRight();
    QCOMPARE(dlg.cursor, 3);
    dlg.OnStart();
    QCOMPARE(dlg.cursor, 0);
    dlg.OnLeft();
    QCOMPARE(dlg.cursor, 0);
    dlg.cursor = -5;
    dlg.OnLeft();
    QCOMPARE(dlg.cursor, 0);
    dlg.cursor = -5;
    dlg.OnRight();
    QCOMPARE(dlg.cursor, 0);
    dlg.cursor = 10;
    dlg.OnLeft();
    QCOMPARE(dlg.cursor, 9);
    dlg.OnRight();
    QCOMPARE(dlg.cursor, 3);
    dlg.text.clear();
    dlg.OnRight();
    QCOMPARE(dlg.cursor, 0);
    dlg.OnEnd();
    QCOMPARE(dlg.cursor, 0);
}

void tst_ZrInputDlgText::deletesAtTheCursor()
{
    ZrInputDlg dlg;
    dlg.text = QStringLiteral("abcd");
    dlg.cursor = 1;
    dlg.OnDelete();
    QCOMPARE(dlg.text, QStringLiteral("acd"));
    QCOMPARE(dlg.cursor, 1);
    dlg.OnEnd();
    dlg.OnDelete();
    QCOMPARE(dlg.text, QStringLiteral("ac"));
    QCOMPARE(dlg.cursor, 2);
    dlg.cursor = 50;
    dlg.OnDelete();
    QCOMPARE(dlg.text, QStringLiteral("a"));
    QCOMPARE(dlg.cursor, 1);
    dlg.cursor = -3;
    dlg.OnDelete();
    QCOMPARE(dlg.text, QString());
    QCOMPARE(dlg.cursor, 0);
    dlg.OnDelete();
    QCOMPARE(dlg.text, QString());
}

void tst_ZrInputDlgText::keepsCharactersWhole_data()
{
    QTest::addColumn<QString>("one");
    QTest::newRow("letter") << "x";
    QTest::newRow("surrogate pair") << U("\xF0\x9F\x90\xA0");
    QTest::newRow("combining mark") << U("e\xCC\x81");
    QTest::newRow("several marks") << U("a\xCC\x81\xCC\xA3");
}

void tst_ZrInputDlgText::keepsCharactersWhole()
{
    QFETCH(QString, one);
    ZrInputDlg dlg;
    dlg.BuildQwerty();
    dlg.text = QStringLiteral("1") + one + one + QStringLiteral("2");
    dlg.cursor = 1;
    dlg.OnRight();
    QCOMPARE(dlg.cursor, 1 + one.size());
    dlg.OnRight();
    QCOMPARE(dlg.cursor, 1 + 2 * one.size());
    dlg.OnLeft();
    QCOMPARE(dlg.cursor, 1 + one.size());
    dlg.OnDelete();
    QCOMPARE(dlg.text, QStringLiteral("1") + one + QStringLiteral("2"));
    QTest::keyClick(&dlg, Qt::Key_Backspace);
    QCOMPARE(dlg.text, QStringLiteral("12"));
    QCOMPARE(dlg.cursor, 1);
    // Typed by hardware it comes as a whole.
    QStringList asked;
    connect(&dlg, &ZrInputDlg::Validate, this, [&](const QString& s) {
        asked += s;
        return 1;
    });
    QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, one);
    QApplication::sendEvent(&dlg, &key);
    QCOMPARE(dlg.text, QStringLiteral("1") + one + QStringLiteral("2"));
    QCOMPARE(asked, QStringList{QStringLiteral("1") + one + QStringLiteral("2")});
    QCOMPARE(dlg.cursor, 1 + one.size());
    dlg.OnEnd();
    dlg.OnDelete();
    dlg.OnDelete();
    QCOMPARE(dlg.text, QStringLiteral("1"));
}

void tst_ZrInputDlgText::writesCapitals()
{
    ZrInputDlg* dlg = Press(*MakeText(QString()));
    Type(*dlg, QStringLiteral("a"));
    Click(*dlg, zriCaps);
    Type(*dlg, QStringLiteral("b1,"));
    for (const ZrInputItem& item : dlg->Items()) {
        if (item.action == zriCaps)
            QCOMPARE(dlg->Label(item), QStringLiteral("caps"));
        if (item.action == zriKey && item.ch == QLatin1Char('q'))
            QCOMPARE(dlg->Label(item), QStringLiteral("Q"));
    }
    dlg->OnKey(QChar(0x00E9)); // é
    Click(*dlg, zriCaps);
    Type(*dlg, QStringLiteral("c"));
    QCOMPARE(dlg->text, U("aB1,Éc"));
    // A keyboard of hardware has a shift key of its own.
    Click(*dlg, zriCaps);
    QTest::keyClick(dlg, Qt::Key_D, Qt::NoModifier);
    QCOMPARE(dlg->text, U("aB1,Écd"));
    // Symbols and back.
    Click(*dlg, zriSymbols);
    QVERIFY(input::KeyAt(*dlg, zriKey, QLatin1Char('q')).isNull());
    Type(*dlg, QStringLiteral("@"));
    Click(*dlg, zriSymbols);
    Type(*dlg, QStringLiteral("e"));
    QCOMPARE(dlg->text, U("aB1,Écd@E"));
}

void tst_ZrInputDlgText::takesHardwareKeys()
{
    ZrInput* in = Make(ZrInput::kindDouble, 5.0);
    ZrInputDlg* dlg = Press(*in);
    QTest::keyClicks(dlg, QStringLiteral("12.50"));
    QCOMPARE(dlg->text, QStringLiteral("12.50"));
    QTest::keyClick(dlg, Qt::Key_Backspace);
    QTest::keyClick(dlg, Qt::Key_Home);
    QTest::keyClick(dlg, Qt::Key_Delete);
    QCOMPARE(dlg->text, QStringLiteral("2.5"));
    QTest::keyClick(dlg, Qt::Key_Right);
    QTest::keyClick(dlg, Qt::Key_Right);
    QTest::keyClick(dlg, Qt::Key_Left);
    QCOMPARE(dlg->cursor, 1);
    QTest::keyClick(dlg, Qt::Key_Backspace);
    QTest::keyClick(dlg, Qt::Key_Backspace);
    QCOMPARE(dlg->text, QStringLiteral(".5"));
    QTest::keyClick(dlg, Qt::Key_End);
    QTest::keyClick(dlg, Qt::Key_Delete);
    QCOMPARE(dlg->text, QStringLiteral(".5"));
    QTest::keyClick(dlg, Qt::Key_Tab);
    QVERIFY(dlg->hasFocus());
    QCOMPARE(dlg->text, QStringLiteral(".5"));
    QTest::keyClick(dlg, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(dlg, Qt::Key_F5);
    QCOMPARE(dlg->text, QStringLiteral(".5"));
    // A key that was down before repeats here.
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(dlg, &held);
    QVERIFY(dlg->isVisible());
    QTest::keyClick(dlg, Qt::Key_Enter, Qt::KeypadModifier);
    QVERIFY(!dlg->isVisible());
    QCOMPARE(in->value, 0.5);

    dlg = Press(*in);
    int cancelled = 0;
    connect(dlg, &ZrInputDlg::Cancelled, this, [&cancelled] { ++cancelled; });
    QTest::keyClicks(dlg, QStringLiteral("9"));
    QTest::keyClick(dlg, Qt::Key_Escape);
    QVERIFY(!dlg->isVisible());
    QCOMPARE(cancelled, 1);
    QCOMPARE(in->value, 0.5);
}

void tst_ZrInputDlgText::translatesHardwareSigns_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QString>("text");
    QTest::newRow("decimal comma") << 1 << ","
                                   << ".";
    QTest::newRow("minus sign") << 0 << U("−") << "-";
    QTest::newRow("dash") << 7 << U("–") << "-";
    QTest::newRow("ordinal") << 4 << U("º") << U("°");
    QTest::newRow("ring") << 4 << U("˚") << U("°");
    QTest::newRow("prime") << 4 << U("′") << "'";
    QTest::newRow("apostrophe") << 5 << U("’") << "'";
    QTest::newRow("accent") << 5 << U("´") << "'";
    QTest::newRow("double prime") << 4 << U("″") << "\"";
    QTest::newRow("quotation mark") << 4 << U("”") << "\"";
    QTest::newRow("hemisphere") << 4 << "s"
                                << "S";
    QTest::newRow("exponent") << 1 << "e"
                              << "e";
    QTest::newRow("anything") << 1 << "x"
                              << "x";
    QTest::newRow("text, comma") << 3 << ","
                                 << ",";
    QTest::newRow("text, dash") << 3 << U("–") << U("–");
    QTest::newRow("text, letter") << 3 << "s"
                                  << "s";
}

void tst_ZrInputDlgText::translatesHardwareSigns()
{
    QFETCH(int, kind);
    QFETCH(QString, sent);
    QFETCH(QString, text);
    ZrInputDlg* dlg = Press(*Make(kind, 1.0));
    QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, sent);
    QApplication::sendEvent(dlg, &key);
    QCOMPARE(dlg->text, text);
    // AltGr of some systems.
    QKeyEvent altGr(QEvent::KeyPress, Qt::Key_unknown, Qt::ControlModifier | Qt::AltModifier, sent);
    QApplication::sendEvent(dlg, &altGr);
    QCOMPARE(dlg->text, text + text);
    QKeyEvent command(QEvent::KeyPress, Qt::Key_unknown, Qt::ControlModifier, sent);
    QApplication::sendEvent(dlg, &command);
    QCOMPARE(dlg->text, text + text);
}

void tst_ZrInputDlgText::keepsShortcutsAway()
{
    int acted = 0;
    const auto add = [&](const QKeySequence& keys) {
        auto* shortcut = new QShortcut(keys, m_top.get());
        connect(shortcut, &QShortcut::activated, this, [&acted] { ++acted; });
    };
    for (const QKeySequence& keys : {QKeySequence(Qt::Key_5), QKeySequence(Qt::Key_Escape),
             QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Left), QKeySequence(Qt::Key_Delete)})
        add(keys);
    ZrInputDlg* dlg = Press(*Make(ZrInput::kindInt, 1));
    for (int key : {Qt::Key_5, Qt::Key_Left, Qt::Key_Delete}) {
        QTest::keyClick(m_top->windowHandle(), static_cast<Qt::Key>(key));
        QCOMPARE(acted, 0);
    }
    QCOMPARE(dlg->text, QString());
    QTest::keyClick(m_top->windowHandle(), Qt::Key_Escape);
    QCOMPARE(acted, 0);
    QVERIFY(!dlg->isVisible());
    // Those that type nothing act.
    add(QKeySequence(Qt::Key_F11));
    add(QKeySequence(Qt::CTRL | Qt::Key_S));
    Press(*Make(ZrInput::kindInt, 1));
    QTest::keyClick(m_top->windowHandle(), Qt::Key_F11);
    QTest::keyClick(m_top->windowHandle(), Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(acted, 2);
}

void tst_ZrInputDlgText::pastes()
{
    ZrInputDlg* dlg = Press(*Make(ZrInput::kindDouble, 1.0));
    QGuiApplication::clipboard()->setText(QStringLiteral(" 12,5\nsecond line\n"));
    QTest::keyClick(dlg, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(dlg->text, QStringLiteral("12.5"));
    QCOMPARE(dlg->state, 1);
    QGuiApplication::clipboard()->setText(QString());
    QTest::keyClick(dlg, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(dlg->text, QStringLiteral("12.5"));
    // More than the line holds is not taken in part.
    dlg = Press(*MakeText(QStringLiteral("a")));
    QGuiApplication::clipboard()->setText(QString(40000, QLatin1Char('x')));
    QTest::keyClick(dlg, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(dlg->text, QStringLiteral("a"));
    QGuiApplication::clipboard()->clear();
}

void tst_ZrInputDlgText::composes()
{
    ZrInput* in = MakeText(QStringLiteral("old"));
    ZrInputDlg* dlg = Press(*in);
    QVERIFY(dlg->testAttribute(Qt::WA_InputMethodEnabled));
    QInputMethodEvent begun(QStringLiteral("ni"), {});
    QApplication::sendEvent(dlg, &begun);
    QCOMPARE(dlg->text, QStringLiteral("old"));
    QVERIFY(!dlg->grab().isNull());
    QInputMethodEvent done;
    done.setCommitString(U("你"));
    QApplication::sendEvent(dlg, &done);
    QCOMPARE(dlg->text, U("你"));
    QCOMPARE(dlg->inputMethodQuery(Qt::ImSurroundingText).toString(), U("你"));
    QCOMPARE(dlg->inputMethodQuery(Qt::ImCursorPosition).toInt(), 1);
    QVERIFY(dlg->rect().contains(dlg->inputMethodQuery(Qt::ImCursorRectangle).toRect()));
    QInputMethodEvent replaced;
    replaced.setCommitString(U("好"), -1, 1);
    QApplication::sendEvent(dlg, &replaced);
    QCOMPARE(dlg->text, U("好"));
    QInputMethodEvent absurd;
    absurd.setCommitString(QStringLiteral("z"), -500, 9000);
    QApplication::sendEvent(dlg, &absurd);
    QCOMPARE(dlg->text, QStringLiteral("z"));
}

/// An input method may take characters away without giving others: that is asked about too.
void tst_ZrInputDlgText::asksAfterAnInputMethodRemoves()
{
    auto* in = new ZrInput(m_page);
    in->SetValue(5.0);
    in->show();
    ZrInputDlg* dlg = Press(*in);
    QCOMPARE(dlg->state, 1);
    QInputMethodEvent removed;
    removed.setCommitString(QString(), -1, 1);
    QApplication::sendEvent(dlg, &removed);
    QCOMPARE(dlg->text, QString());
    QCOMPARE(dlg->state, 0);
    QVERIFY(dlg->Refusal().startsWith(QStringLiteral("Error")));
}

QTEST_MAIN(tst_ZrInputDlgText)
#include "tst_ZrInputDlgText.moc"
