// The pages of the application's window and the way from one to the other, without OpenGL.

#include "ZrPlainView.h"
#include "ZrUtil/ZrSetApp.h"

class tst_ZrAppViewPages : public ZrPlainViewTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void firstPageIsCurrent_data();
    void firstPageIsCurrent();
    void addPage();
    void addNoPage();
    void getPage();
    void setPageOrder();
    void setPageWithoutPush();
    void setUnknownPage();
    void setPageToItself();
    void stackAfterHomeAAndB();
    void back();
    void backWithEmptyStack();
    void backWithoutHome();
    void backToAPageThatWent();
    void goHome();
    void goHomeWithoutHome();
    void pageThatGoesByItself();
    void pagesFillTheView();
};

void tst_ZrAppViewPages::init()
{
    Make();
}

void tst_ZrAppViewPages::cleanup()
{
    Drop();
}

void tst_ZrAppViewPages::firstPageIsCurrent_data()
{
    QTest::addColumn<bool>("show");
    QTest::newRow("shown") << true;
    QTest::newRow("not shown") << false;
}

void tst_ZrAppViewPages::firstPageIsCurrent()
{
    QFETCH(bool, show);
    ZrNotedPage* page = Add(QStringLiteral("A"), show);
    QCOMPARE(m_view->m_current, page);
    QVERIFY(!page->isHidden());
    QVERIFY(m_log.isEmpty());
    QVERIFY(m_view->m_stack.isEmpty());
}

void tst_ZrAppViewPages::addPage()
{
    ZrNotedPage* a = Add(QStringLiteral("A"));
    ZrNotedPage* b = Add(QStringLiteral("B"));
    QCOMPARE(m_view->m_current, a);
    QVERIFY(b->isHidden());
    ZrNotedPage* c = Add(QStringLiteral("C"), true);
    QCOMPARE(m_view->m_current, c);
    // The page before is not hidden, and nobody is told.
    QVERIFY(!a->isHidden());
    QVERIFY(!c->isHidden());
    QVERIFY(m_log.isEmpty());
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(
        m_view->m_pages.keys(), (QStringList{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
}

void tst_ZrAppViewPages::addNoPage()
{
    m_view->AddPage(QStringLiteral("A"), nullptr, true);
    QVERIFY(!m_view->m_current);
    QVERIFY(m_view->m_pages.contains(QStringLiteral("A")));
    QVERIFY(!m_view->GetPage(QStringLiteral("A")));
    QVERIFY(!m_view->SetPageTo(QStringLiteral("A"), true));
    QVERIFY(m_view->m_stack.isEmpty());
    m_view->resize(1000, 700);
    m_view->show();
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(*m_view);
    QVERIFY(stored.root[QStringLiteral("pages")].toObject().isEmpty());
}

void tst_ZrAppViewPages::getPage()
{
    ZrNotedPage* a = Add(QStringLiteral("A"));
    QCOMPARE(m_view->GetPage(QStringLiteral("A")), a);
    QVERIFY(!m_view->GetPage(QStringLiteral("a")));
    QVERIFY(!m_view->GetPage(QString()));
    // A question adds nothing.
    QCOMPARE(m_view->m_pages.size(), 1);
}

void tst_ZrAppViewPages::setPageOrder()
{
    ZrNotedPage* a = Add(QStringLiteral("A"));
    ZrNotedPage* b = Add(QStringLiteral("B"));
    QCOMPARE(m_view->SetPageTo(QStringLiteral("B"), true), b);
    // The old page is hidden before it is told, the new one is told before it is shown.
    QCOMPARE(m_log, (QStringList{QStringLiteral("A close hidden"), QStringLiteral("B open hidden")}));
    QCOMPARE(m_view->m_current, b);
    QVERIFY(a->isHidden());
    QVERIFY(!b->isHidden());
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("B")});
}

void tst_ZrAppViewPages::setPageWithoutPush()
{
    Add(QStringLiteral("A"));
    ZrNotedPage* b = Add(QStringLiteral("B"));
    QCOMPARE(m_view->SetPageTo(QStringLiteral("B"), false), b);
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(m_log.size(), 2);
}

void tst_ZrAppViewPages::setUnknownPage()
{
    ZrNotedPage* a = Add(QStringLiteral("A"));
    Add(QStringLiteral("B"));
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_log.clear();
    const QStringList stack = m_view->m_stack;
    for (const QString& name : {QStringLiteral("C"), QString(), QStringLiteral("b")})
        QVERIFY(!m_view->SetPageTo(name, true));
    QCOMPARE(m_view->m_current, a);
    QCOMPARE(m_view->m_stack, stack);
    QVERIFY(!a->isHidden());
    QVERIFY(m_log.isEmpty());
}

void tst_ZrAppViewPages::setPageToItself()
{
    ZrNotedPage* a = Add(QStringLiteral("A"));
    QCOMPARE(m_view->SetPageTo(QStringLiteral("A"), true), a);
    QCOMPARE(m_log, (QStringList{QStringLiteral("A close hidden"), QStringLiteral("A open hidden")}));
    QVERIFY(!a->isHidden());
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("A")});
}

void tst_ZrAppViewPages::stackAfterHomeAAndB()
{
    auto* home = new ZrNotedPage(m_view.get(), QStringLiteral("Home"), m_log);
    auto* a = new ZrNotedPage(m_view.get(), QStringLiteral("A"), m_log);
    auto* b = new ZrNotedPage(m_view.get(), QStringLiteral("B"), m_log);
    m_view->m_pages = {{QStringLiteral("Home"), home}, {QStringLiteral("A"), a}, {QStringLiteral("B"), b}};
    // With no page before, nothing is remembered.
    m_view->SetPageTo(QStringLiteral("Home"), true);
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(m_log, QStringList{QStringLiteral("Home open shown")});
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->SetPageTo(QStringLiteral("B"), true);
    QCOMPARE(m_view->m_stack, (QStringList{QStringLiteral("A"), QStringLiteral("B")}));
}

void tst_ZrAppViewPages::back()
{
    ZrNotedPage* home = Add(QStringLiteral("Home"));
    ZrNotedPage* a = Add(QStringLiteral("A"));
    Add(QStringLiteral("B"));
    Add(QStringLiteral("C"));
    for (const char* name : {"A", "B", "C"})
        m_view->SetPageTo(QLatin1String(name), true);
    m_view->Back();
    QCOMPARE(m_view->m_current, m_view->GetPage(QStringLiteral("B")));
    QCOMPARE(m_view->m_stack, (QStringList{QStringLiteral("A"), QStringLiteral("B")}));
    m_view->Back();
    QCOMPARE(m_view->m_current, a);
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("A")});
    m_log.clear();
    m_view->Back();
    QCOMPARE(m_view->m_current, home);
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(m_log, (QStringList{QStringLiteral("A close hidden"), QStringLiteral("Home open hidden")}));
}

void tst_ZrAppViewPages::backWithEmptyStack()
{
    ZrNotedPage* home = Add(QStringLiteral("Home"));
    Add(QStringLiteral("A"), true);
    const ZrMessages messages;
    m_view->Back();
    QCOMPARE(m_view->m_current, home);
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(zrMessages, QStringList{QStringLiteral("Empty Stack")});
}

void tst_ZrAppViewPages::backWithoutHome()
{
    ZrNotedPage* a = Add(QStringLiteral("A"));
    const ZrMessages messages;
    m_view->Back();
    QCOMPARE(m_view->m_current, a);
    QVERIFY(!a->isHidden());
    QCOMPARE(zrMessages, QStringList{QStringLiteral("Empty Stack")});
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->Back();
    QCOMPARE(m_view->m_current, a);
    QVERIFY(m_view->m_stack.isEmpty());
    QCOMPARE(zrMessages.size(), 1);
}

void tst_ZrAppViewPages::backToAPageThatWent()
{
    Add(QStringLiteral("Home"));
    ZrNotedPage* a = Add(QStringLiteral("A"));
    ZrNotedPage* b = Add(QStringLiteral("B"));
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->SetPageTo(QStringLiteral("B"), true);
    delete a;
    m_view->Back();
    QCOMPARE(m_view->m_current, b);
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("A")});
    m_view->Back();
    QCOMPARE(m_view->m_current, m_view->GetPage(QStringLiteral("Home")));
}

void tst_ZrAppViewPages::goHome()
{
    ZrNotedPage* home = Add(QStringLiteral("Home"));
    Add(QStringLiteral("A"));
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->GoHome();
    QCOMPARE(m_view->m_current, home);
    QVERIFY(m_view->m_stack.isEmpty());
    m_view->GoHome();
    QVERIFY(m_view->m_stack.isEmpty());
}

void tst_ZrAppViewPages::goHomeWithoutHome()
{
    ZrNotedPage* a = Add(QStringLiteral("A"));
    m_view->SetPageTo(QStringLiteral("A"), true);
    m_view->GoHome();
    QCOMPARE(m_view->m_current, a);
    QCOMPARE(m_view->m_stack, QStringList{QStringLiteral("A")});
}

void tst_ZrAppViewPages::pageThatGoesByItself()
{
    delete Add(QStringLiteral("A"));
    QVERIFY(!m_view->m_current);
    QVERIFY(!m_view->GetPage(QStringLiteral("A")));
    m_view->Update();
    ZrNotedPage* b = Add(QStringLiteral("B"));
    QCOMPARE(m_view->m_current, b);
}

void tst_ZrAppViewPages::pagesFillTheView()
{
    m_view->resize(1111, 777);
    QCOMPARE(Add(QStringLiteral("A"))->geometry(), QRect(0, 0, 1111, 777));
}

QTEST_MAIN(tst_ZrAppViewPages)
#include "tst_ZrAppViewPages.moc"
