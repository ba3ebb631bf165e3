// What is between the settings forms and the page.

#include "ZrFormPanel.h"
#include "ZrKit/ui/ZrFormFrame.h"

#include <QLineEdit>
#include <QtTest>

class tst_ZrFormFrame : public ZrFormPanelTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void cleanup() { Drop(); }

    void followsTheForms();
    void formsThatAreOpenAlready();
    void darkensThePage();
    void livePageStaysBright();
    void touchBesideCloses();
    void touchThatGoesToTheForms();
    void liveLetsThrough();
    void staysBelowTheForms();
    void followsTheWindow();
    void keys();

private:
    QColor Seen(const QPoint& at)
    {
        Settle();
        return m_window->grab().toImage().pixelColor(at);
    }

    ZrFormFrame* m_frame = nullptr;
    ZrFormPage* m_plain = nullptr;
    ZrFormPage* m_live = nullptr;
};

void tst_ZrFormFrame::init()
{
    Make();
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(200, 200, 200));
    m_window->setPalette(palette);
    m_plain = Add(QStringLiteral("Plain"));
    m_live = Add(QStringLiteral("Live"));
    m_mgr->hide();
    m_frame = new ZrFormFrame(*m_window, *m_mgr);
    m_frame->m_isLive = [this](const ZrForm& form) { return &form == m_live; };
    m_window->show();
    Settle();
}

void tst_ZrFormFrame::followsTheForms()
{
    QVERIFY(m_frame->isHidden());
    m_mgr->show();
    QVERIFY(m_frame->isVisible());
    QCOMPARE(m_frame->geometry(), m_window->rect());
    m_mgr->OnClose();
    QVERIFY(m_frame->isHidden());
}

void tst_ZrFormFrame::formsThatAreOpenAlready()
{
    m_mgr->show();
    const ZrFormFrame second(*m_window, *m_mgr);
    QVERIFY(second.isVisible());
    QVERIFY(second.IsDark()); // nothing is live without being said to be
    m_mgr->SetToForm(QStringLiteral("Live"));
    QVERIFY(second.IsDark());
}

void tst_ZrFormFrame::darkensThePage()
{
    const QPoint beside(760, 540);
    QCOMPARE(Seen(beside), QColor(200, 200, 200));
    m_mgr->show();
    QVERIFY(m_frame->IsDark());
    QVERIFY(Seen(beside).lightness() < 110);
    QVERIFY(Seen(beside).lightness() > 60); // still to be seen
    m_mgr->hide();
    QCOMPARE(Seen(beside), QColor(200, 200, 200));
}

/// The forms stand out by a shadow, which ends.
void tst_ZrFormFrame::livePageStaysBright()
{
    m_mgr->show();
    m_mgr->SetToForm(QStringLiteral("Live"));
    QVERIFY(!m_frame->IsDark());
    QCOMPARE(Seen(QPoint(760, 540)), QColor(200, 200, 200));
    const QRect forms = m_mgr->geometry();
    const int near = Seen(QPoint(forms.right() + 3, forms.center().y())).lightness();
    const int farther = Seen(QPoint(forms.right() + 10, forms.center().y())).lightness();
    QVERIFY2(near < farther && farther < 200, qPrintable(QString::number(near)));
    m_mgr->SetToForm(QStringLiteral("Plain"));
    QVERIFY(m_frame->IsDark());
    QVERIFY(Seen(QPoint(760, 540)).lightness() < 110);
}

void tst_ZrFormFrame::touchBesideCloses()
{
    m_mgr->show();
    QTest::mouseClick(m_frame, Qt::RightButton, Qt::NoModifier, QPoint(760, 540));
    QVERIFY(m_mgr->isVisible());
    QTest::mouseClick(m_frame, Qt::LeftButton, Qt::NoModifier, QPoint(760, 540));
    QVERIFY(m_mgr->isHidden());
    QCOMPARE(m_window->m_presses, 0);
}

void tst_ZrFormFrame::touchThatGoesToTheForms()
{
    m_mgr->show();
    QTest::mousePress(m_frame, Qt::LeftButton, Qt::NoModifier, QPoint(760, 540));
    QTest::mouseRelease(m_frame, Qt::LeftButton, Qt::NoModifier, m_mgr->geometry().center());
    QVERIFY(m_mgr->isVisible());
    // A release without a press is not meant for it.
    QTest::mouseRelease(m_frame, Qt::LeftButton, Qt::NoModifier, QPoint(760, 540));
    QVERIFY(m_mgr->isVisible());
}

void tst_ZrFormFrame::liveLetsThrough()
{
    m_mgr->show();
    QCOMPARE(m_window->childAt(760, 540), m_frame);
    m_mgr->SetToForm(QStringLiteral("Live"));
    QCOMPARE(m_window->childAt(760, 540), nullptr);
    m_mgr->SetToForm(QStringLiteral("Plain"));
    QCOMPARE(m_window->childAt(760, 540), m_frame);
}

void tst_ZrFormFrame::staysBelowTheForms()
{
    auto* page = new QWidget(m_window.get());
    page->setGeometry(m_window->rect());
    page->show();
    m_mgr->show();
    m_mgr->raise();
    QCOMPARE(m_window->childAt(760, 540), m_frame);
    QVERIFY(m_mgr->isAncestorOf(m_window->childAt(m_mgr->geometry().center()))
        || m_window->childAt(m_mgr->geometry().center()) == m_mgr);
    page->raise();
    m_mgr->raise();
    QCOMPARE(m_window->childAt(760, 540), m_frame);
}

void tst_ZrFormFrame::followsTheWindow()
{
    m_mgr->show();
    m_window->resize(900, 700);
    Settle();
    QCOMPARE(m_frame->size(), QSize(900, 700));
}

/// Wherever in the forms the keys are; not beyond the first and the last.
void tst_ZrFormFrame::keys()
{
    Add(QStringLiteral("Below"), true, m_live);
    auto* line = new QLineEdit(m_plain);
    m_mgr->show();
    line->show();
    const auto press = [this](QWidget* widget, Qt::Key key) {
        QTest::keyClick(widget, key, Qt::ControlModifier);
        return m_mgr->m_form->m_name;
    };
    QCOMPARE(press(line, Qt::Key_PageUp), QStringLiteral("Plain"));
    QCOMPARE(press(line, Qt::Key_PageDown), QStringLiteral("Live"));
    QCOMPARE(press(m_mgr, Qt::Key_PageDown), QStringLiteral("Live"));
    QCOMPARE(press(m_mgr, Qt::Key_PageUp), QStringLiteral("Plain"));
    QTest::keyClick(m_mgr, Qt::Key_PageDown); // scrolls, for who wants it
    QCOMPARE(m_mgr->m_form->m_name, QStringLiteral("Plain"));
    // Of one without a tab the neighbours of its parent.
    m_mgr->SetToForm(QStringLiteral("Below"));
    QCOMPARE(press(m_mgr, Qt::Key_PageUp), QStringLiteral("Plain"));
}

QTEST_MAIN(tst_ZrFormFrame)
#include "tst_ZrFormFrame.moc"
