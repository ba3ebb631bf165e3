// Panels over the window: choices and messages.

#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

namespace {

/// A panel that can refuse.
class Question : public ZrOverlay
{
public:
    bool m_isRight = true;

    using ZrOverlay::Body;
    using ZrOverlay::m_accept;
    using ZrOverlay::m_cancel;
    using ZrOverlay::Panel;
    using ZrOverlay::ZrOverlay;

protected:
    bool OnAccept() override { return m_isRight; }
};

ZrBtn* ButtonOf(QWidget& widget, const QString& text)
{
    const auto buttons = widget.findChildren<ZrBtn*>();
    for (ZrBtn* button : buttons) {
        if (button->text == text)
            return button;
    }
    return nullptr;
}

} // namespace

class tst_ZrOverlay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void startsHidden();
    void acceptsAndCancels();
    void tapBesideCancels();
    void refusalKeepsItOpen();
    void disabledButtonRefuses();
    void focusComesBack();
    void followsTheWindow();
    void fitsSmallWindows_data();
    void fitsSmallWindows();
    void nothingReachesWhatIsBelow();
    void problemIsShown();
    void choiceByTap();
    void choiceByKeys();
    void choiceBeginsAtItsTop();
    void toastShowsAndGoes();
    void toastActs();
    void toastReplaces();
    void toastOfAnyLength();
    void toastKeepsFree();

private:
    std::unique_ptr<QWidget> m_window;
};

void tst_ZrOverlay::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<QWidget>();
    m_window->resize(1000, 750);
    m_window->show();
}

void tst_ZrOverlay::startsHidden()
{
    Question question(m_window.get(), QStringLiteral("Really?"));
    QVERIFY(!question.isVisible());
    question.Accept();
    question.Cancel();
    question.Open();
    QVERIFY(question.isVisible());
    QCOMPARE(question.geometry(), m_window->rect());
}

void tst_ZrOverlay::acceptsAndCancels()
{
    Question question(m_window.get(), QStringLiteral("Really?"));
    QSignalSpy accepted(&question, &ZrOverlay::Accepted);
    QSignalSpy cancelled(&question, &ZrOverlay::Cancelled);
    question.Open();
    QTest::mouseClick(question.m_accept, Qt::LeftButton);
    QCOMPARE(accepted.count(), 1);
    QVERIFY(!question.isVisible());
    question.Open();
    QTest::mouseClick(question.m_cancel, Qt::LeftButton);
    QCOMPARE(cancelled.count(), 1);
    question.Open();
    QTest::keyClick(&question, Qt::Key_Escape);
    QCOMPARE(cancelled.count(), 2);
    question.Open();
    QTest::keyClick(&question, Qt::Key_Return);
    QCOMPARE(accepted.count(), 2);
}

void tst_ZrOverlay::tapBesideCancels()
{
    Question question(m_window.get(), QString());
    QSignalSpy cancelled(&question, &ZrOverlay::Cancelled);
    question.Open();
    QTest::mouseClick(&question, Qt::LeftButton, {}, question.Panel().center());
    QVERIFY(question.isVisible());
    // A drag out of the panel is no tap beside it.
    QTest::mousePress(&question, Qt::LeftButton, {}, question.Panel().center());
    QTest::mouseRelease(&question, Qt::LeftButton, {}, QPoint(3, 3));
    QVERIFY(question.isVisible());
    QTest::mouseClick(&question, Qt::LeftButton, {}, QPoint(3, 3));
    QCOMPARE(cancelled.count(), 1);
}

void tst_ZrOverlay::refusalKeepsItOpen()
{
    Question question(m_window.get(), QString());
    QSignalSpy accepted(&question, &ZrOverlay::Accepted);
    question.m_isRight = false;
    question.Open();
    question.Accept();
    QVERIFY(question.isVisible());
    QCOMPARE(accepted.count(), 0);
}

void tst_ZrOverlay::disabledButtonRefuses()
{
    Question question(m_window.get(), QString());
    question.SetAcceptEnabled(false);
    question.Open();
    QTest::keyClick(&question, Qt::Key_Return);
    QVERIFY(question.isVisible());
}

void tst_ZrOverlay::focusComesBack()
{
    QLineEdit edit(m_window.get());
    edit.show();
    m_window->activateWindow();
    edit.setFocus();
    QTRY_VERIFY(edit.hasFocus());
    Question question(m_window.get(), QString());
    question.Open();
    QVERIFY(question.hasFocus());
    question.Cancel();
    QVERIFY(edit.hasFocus());
}

void tst_ZrOverlay::followsTheWindow()
{
    Question question(m_window.get(), QString());
    question.Open();
    m_window->resize(1200, 900);
    QTRY_COMPARE(question.size(), QSize(1200, 900));
    QVERIFY(question.rect().contains(question.Panel()));
}

void tst_ZrOverlay::fitsSmallWindows_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<float>("dp");
    for (const QSize& size : {QSize(900, 600), QSize(2560, 1440), QSize(640, 480)}) {
        for (const float dp : {0.5F, 1.0F, 1.5F})
            QTest::addRow("%d at %g", size.width(), double(dp)) << size << dp;
    }
}

void tst_ZrOverlay::fitsSmallWindows()
{
    QFETCH(QSize, size);
    QFETCH(float, dp);
    ZrTheme::dp = dp;
    ZrTheme::SetStdStyle();
    m_window->resize(size);
    Question question(m_window.get(), QStringLiteral("Really?"));
    question.Open();
    QVERIFY(question.rect().contains(question.Panel()));
    for (const ZrBtn* button : {question.m_accept, question.m_cancel}) {
        QVERIFY(question.Panel().contains(button->geometry()));
        QVERIFY(button->height() >= 44);
    }
    QVERIFY(!question.m_accept->geometry().intersects(question.m_cancel->geometry()));
    QVERIFY(question.Body().bottom() < question.m_accept->y());
    QVERIFY(question.Body().height() > 0);
}

void tst_ZrOverlay::nothingReachesWhatIsBelow()
{
    ZrBtn below(m_window.get(), ZrBtn::typeStd);
    below.setGeometry(m_window->rect());
    below.show();
    QSignalSpy clicked(&below, &ZrBtn::Clicked);
    Question question(m_window.get(), QString());
    question.Open();
    QCOMPARE(m_window->childAt(QPoint(3, 3)), static_cast<QWidget*>(&question));
    QTest::keyClick(&question, Qt::Key_Space);
    QCOMPARE(clicked.count(), 0);
}

void tst_ZrOverlay::problemIsShown()
{
    Question question(m_window.get(), QString());
    question.Open();
    const QImage before = question.grab().toImage();
    question.SetProblem(QStringLiteral("0 to 6000 m"));
    QCOMPARE(question.Problem(), QStringLiteral("0 to 6000 m"));
    QVERIFY(question.grab().toImage() != before);
}

void tst_ZrOverlay::choiceByTap()
{
    ZrChoicePanel choice(m_window.get(), QStringLiteral("Palette"));
    QVector<ZrListItem> items(3);
    items[0].title = QStringLiteral("grey");
    items[1].title = QStringLiteral("copper");
    items[2].title = QStringLiteral("hot");
    choice.SetItems(items, 1);
    QSignalSpy chosen(&choice, &ZrChoicePanel::Chosen);
    choice.Open();
    auto* list = choice.findChild<ZrTouchList*>();
    QCOMPARE(list->Current(), 1);
    QTest::mouseClick(
        list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(2, 0)).center());
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toInt(), 2);
    QVERIFY(!choice.isVisible());
}

void tst_ZrOverlay::choiceByKeys()
{
    ZrChoicePanel choice(m_window.get(), QStringLiteral("Palette"));
    choice.SetItems(QVector<ZrListItem>(3), 0);
    QSignalSpy chosen(&choice, &ZrChoicePanel::Chosen);
    choice.Open();
    QTest::keyClick(&choice, Qt::Key_Down);
    QTest::keyClick(&choice, Qt::Key_Return);
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toInt(), 1);
    choice.Open();
    QTest::keyClick(&choice, Qt::Key_Escape);
    QCOMPARE(chosen.count(), 1);
}

/// Wherever it was scrolled to the last time; the current one is in view where there is one.
void tst_ZrOverlay::choiceBeginsAtItsTop()
{
    ZrChoicePanel choice(m_window.get(), QStringLiteral("Export"));
    QVector<ZrListItem> items(30);
    for (int i = 0; i < items.size(); ++i)
        items[i].title = QString::number(i);
    choice.SetItems(items, -1);
    choice.Open();
    auto* list = choice.findChild<ZrTouchList*>();
    const auto isInView = [list](int row) {
        return list->viewport()->rect().contains(list->visualRect(list->model()->index(row, 0)).center());
    };
    list->scrollToBottom();
    QVERIFY(!isInView(0));
    choice.Cancel();
    choice.SetItems(items, -1);
    choice.Open();
    QVERIFY(isInView(0));
    choice.Cancel();
    choice.SetItems(items, 25);
    choice.Open();
    QVERIFY(isInView(25));
}

void tst_ZrOverlay::toastShowsAndGoes()
{
    ZrToast toast(m_window.get());
    QVERIFY(!toast.isVisible());
    toast.Show(QStringLiteral("Waypoint 7 deleted"));
    QVERIFY(toast.isVisible());
    QCOMPARE(toast.Text(), QStringLiteral("Waypoint 7 deleted"));
    QVERIFY(m_window->rect().contains(toast.geometry()));
    auto* timer = toast.findChild<QTimer*>();
    QCOMPARE(timer->interval(), int(ZrToast::Milliseconds));
    QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection);
    QVERIFY(!toast.isVisible());
    toast.Show(ZrToast::error, QStringLiteral("The disk is full"));
    QCOMPARE(timer->interval(), 2 * int(ZrToast::Milliseconds));
    QTest::mouseClick(&toast, Qt::LeftButton);
    QVERIFY(!toast.isVisible());
}

void tst_ZrOverlay::toastActs()
{
    ZrToast toast(m_window.get());
    int count = 0;
    toast.Show(QStringLiteral("Deleted"), QStringLiteral("Undo"), [&] {
        ++count;
        toast.Show(QStringLiteral("Back again"));
    });
    ZrBtn* undo = ButtonOf(toast, QStringLiteral("Undo"));
    QVERIFY(undo && undo->isVisible() && undo->height() >= 44);
    QTest::mouseClick(undo, Qt::LeftButton);
    QCOMPARE(count, 1);
    QVERIFY(toast.isVisible());
    QCOMPARE(toast.Text(), QStringLiteral("Back again"));
    QVERIFY(!undo->isVisible());
}

/// What lies at the edges stays usable while it is shown, also when that is told meanwhile.
void tst_ZrOverlay::toastKeepsFree()
{
    ZrToast toast(m_window.get());
    toast.Show(QStringLiteral("Waypoint 7 deleted"));
    const QRect before = toast.geometry();
    toast.SetFree(120, 200);
    QVERIFY(toast.geometry().bottom() < m_window->height() - 120);
    QVERIFY(toast.geometry().right() < m_window->width() - 200);
    QVERIFY(m_window->rect().contains(toast.geometry()));
    toast.Show(ZrToast::error, QStringLiteral("The disk is full ").repeated(10));
    QVERIFY(toast.geometry().bottom() < m_window->height() - 120);
    toast.SetFree(-5, -5);
    toast.Show(QStringLiteral("Waypoint 7 deleted"));
    QCOMPARE(toast.geometry(), before);
    // More than there is: it stays in view.
    toast.SetFree(100000);
    QVERIFY(toast.geometry().top() >= 0);
}

void tst_ZrOverlay::toastReplaces()
{
    ZrToast toast(m_window.get());
    int count = 0;
    toast.Show(QStringLiteral("a"), QStringLiteral("Undo"), [&] { ++count; });
    toast.Show(ZrToast::warning, QStringLiteral("b"));
    QCOMPARE(toast.Text(), QStringLiteral("b"));
    for (ZrBtn* button : toast.findChildren<ZrBtn*>())
        QVERIFY(!button->isVisible());
    QCOMPARE(count, 0);
}

void tst_ZrOverlay::toastOfAnyLength()
{
    ZrToast toast(m_window.get());
    toast.Show(QString());
    toast.Show(QString(2000, QLatin1Char('x')) + QStringLiteral(" 港"));
    toast.grab();
    QVERIFY(toast.width() <= m_window->width());
}

QTEST_MAIN(tst_ZrOverlay)
#include "tst_ZrOverlay.moc"
