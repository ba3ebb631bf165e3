// The panel with the settings forms: which form is shown, its tabs, sizes, settings.

#include "ZrFormPanel.h"
#include "ZrUtil/ZrSetApp.h"

#include <QPointer>
#include <QtTest>

static_assert(std::is_base_of_v<ZrDragWidget, ZrFormMgr>);
static_assert(std::is_base_of_v<zr::IPersistable, ZrFormMgr>);
static_assert(std::is_same_v<decltype(ZrFormMgr::m_forms), QList<ZrForm*>>);

class tst_ZrFormMgr : public ZrFormPanelTest
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Make(); }

    void cleanup() { Drop(); }

    void asMade();
    void firstFormIsCurrent();
    void tieredFormIsNotCurrent();
    void formsAddedTwiceOrNone();
    void formAddedToAShownPanel();
    void setToForm();
    void setToUnknownForm();
    void formsOfOneName();
    void positions();
    void positionOfTieredForm();
    void positionOfTieredFormWithoutParent();
    void sizes_data();
    void sizes();
    void formAreas_data();
    void formAreas();
    void tabsOfOtherLayoutsAreNotHit();
    void changedLayoutForgetsTabs();
    void tabs();
    void tabsAreDrawn();
    void currentTabIsHighlighted();
    void parentsTabIsHighlighted();
    void tabsWithNames();
    void namesAreDrawn();
    void tellsOfTheFormShown();
    void imageWithoutSize();
    void formsAreDeleted();
    void formThatGoesByItself();
    void settingsStored();
    void settingsLoaded();
    void settingsDamaged_data();
    void settingsDamaged();
    void manySwitches();
};

void tst_ZrFormMgr::asMade()
{
    QVERIFY(!m_mgr->m_form);
    QVERIFY(m_mgr->m_forms.isEmpty());
    QCOMPARE(m_mgr->m_layout, 0);
    QVERIFY(!m_mgr->m_view);
    QCOMPARE(m_mgr->CurrentPosition(), -1);
    QCOMPARE(m_mgr->NonTieredCount(), 0);
    QCOMPARE(int(ZrFormMgr::tabsLeft), 0);
    QCOMPARE(int(ZrFormMgr::tabsTop), 1);
    QCOMPARE(int(ZrFormMgr::tabsRight), 2);
    QCOMPARE(int(ZrFormMgr::tabsBottom), 3);
}

void tst_ZrFormMgr::firstFormIsCurrent()
{
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    QCOMPARE(m_mgr->m_forms, (QList<ZrForm*>{a, b}));
    QCOMPARE(m_mgr->m_form, a);
    QCOMPARE(a->m_mgr, m_mgr);
    QCOMPARE(b->m_mgr, m_mgr);
    QVERIFY(!a->isHidden());
    QVERIFY(b->isHidden());
    QCOMPARE(a->m_displayed, 0);
}

void tst_ZrFormMgr::tieredFormIsNotCurrent()
{
    ZrFormPage* tiered = Add(QStringLiteral("T"), true);
    QVERIFY(!m_mgr->m_form);
    QVERIFY(tiered->isHidden());
    ZrFormPage* a = Add(QStringLiteral("A"));
    QCOMPARE(m_mgr->m_form, a);
    QCOMPARE(m_mgr->NonTieredCount(), 1);
}

void tst_ZrFormMgr::formsAddedTwiceOrNone()
{
    m_mgr->AddNewForm(nullptr);
    QVERIFY(m_mgr->m_forms.isEmpty());
    ZrFormPage* a = Add(QStringLiteral("A"));
    m_mgr->AddNewForm(a);
    QCOMPARE(m_mgr->m_forms.size(), 1);
    QVERIFY(!a->isHidden());
}

void tst_ZrFormMgr::formAddedToAShownPanel()
{
    m_window->show();
    Settle();
    QVERIFY(Add(QStringLiteral("A"))->isVisible());
    QVERIFY(!Add(QStringLiteral("B"))->isVisible());
}

void tst_ZrFormMgr::setToForm()
{
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    m_window->show();
    Settle();
    ZrPaintCounter counter(*m_mgr);
    QCOMPARE(m_mgr->SetToForm(QStringLiteral("B")), b);
    QCOMPARE(m_mgr->m_form, b);
    QVERIFY(!a->isVisible());
    QVERIFY(b->isVisible());
    QCOMPARE(a->m_displayed, 0);
    QCOMPARE(b->m_displayed, 1);
    QVERIFY(counter.Take() > 0);
    QCOMPARE(m_mgr->SetToForm(QStringLiteral("B")), b);
    QCOMPARE(b->m_displayed, 2);
}

void tst_ZrFormMgr::setToUnknownForm()
{
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    for (const QString& name : {QStringLiteral("C"), QString(), QStringLiteral("a"), QStringLiteral("A ")}) {
        QVERIFY(!m_mgr->SetToForm(name));
        QVERIFY(a->isHidden());
        QVERIFY(b->isHidden());
        QCOMPARE(m_mgr->m_form, a);
        QCOMPARE(a->m_displayed + b->m_displayed, 0);
    }
    QCOMPARE(m_mgr->SetToForm(QStringLiteral("A")), a);
    QVERIFY(!a->isHidden());
}

void tst_ZrFormMgr::formsOfOneName()
{
    ZrFormPage* first = Add(QStringLiteral("A"));
    ZrFormPage* second = Add(QStringLiteral("A"));
    m_mgr->SetToForm(QStringLiteral("A"));
    QVERIFY(!first->isHidden());
    QVERIFY(!second->isHidden());
}

void tst_ZrFormMgr::positions()
{
    Add(QStringLiteral("A"));
    Add(QStringLiteral("T"), true);
    Add(QStringLiteral("B"));
    Add(QStringLiteral("C"));
    QCOMPARE(m_mgr->NonTieredCount(), 3);
    QCOMPARE(m_mgr->CurrentPosition(), 0);
    m_mgr->SetToForm(QStringLiteral("B"));
    QCOMPARE(m_mgr->CurrentPosition(), 1);
    m_mgr->SetToForm(QStringLiteral("C"));
    QCOMPARE(m_mgr->CurrentPosition(), 2);
}

void tst_ZrFormMgr::positionOfTieredForm()
{
    Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    ZrFormPage* tiered = Add(QStringLiteral("T"), true, b);
    QCOMPARE(m_mgr->SetToForm(QStringLiteral("T")), tiered);
    QCOMPARE(m_mgr->m_form, tiered);
    QCOMPARE(m_mgr->CurrentPosition(), 1);
}

void tst_ZrFormMgr::positionOfTieredFormWithoutParent()
{
    Add(QStringLiteral("A"));
    ZrFormPage stranger(nullptr, QStringLiteral("X"));
    Add(QStringLiteral("T"), true);
    Add(QStringLiteral("U"), true, &stranger);
    m_mgr->SetToForm(QStringLiteral("T"));
    QCOMPARE(m_mgr->CurrentPosition(), -1);
    m_mgr->SetToForm(QStringLiteral("U"));
    QCOMPARE(m_mgr->CurrentPosition(), -1);
    Shown();
}

void tst_ZrFormMgr::sizes_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<int>("tabWidth");
    QTest::addColumn<int>("tabHeight");
    QTest::addColumn<QRect>("close");
    QTest::newRow("1") << 1.0 << 80 << 50 << QRect(600 - 45, 5, 40, 40);
    QTest::newRow("1.5") << 1.5 << 120 << 75 << QRect(600 - 68, 8, 60, 60);
    QTest::newRow("0.75") << 0.75 << 60 << 38 << QRect(600 - 34, 4, 30, 30);
}

void tst_ZrFormMgr::sizes()
{
    QFETCH(double, dp);
    QFETCH(int, tabWidth);
    QFETCH(int, tabHeight);
    QFETCH(QRect, close);
    const ZrThemeState theme(dp);
    ZrFormPage* a = Add(QStringLiteral("A"));
    Shown();
    // Sizes follow the scale at the next resize.
    m_mgr->resize(601, 460);
    m_mgr->resize(600, 460);
    QCOMPARE(m_mgr->m_tabWidth, tabWidth);
    QCOMPARE(m_mgr->m_tabHeight, tabHeight);
    QCOMPARE(m_mgr->grip, QRect(tabWidth, 0, 600 - tabWidth, tabHeight));
    QCOMPARE(Close().geometry(), close);
    const int margin = ZrTheme::DpI(20);
    QCOMPARE(a->geometry(),
        QRect(tabWidth + margin, tabHeight, 600 - 2 * margin - tabWidth, 460 - margin - tabHeight));
}

void tst_ZrFormMgr::formAreas_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<QRect>("area");
    QTest::newRow("left") << 0 << QRect(100, 50, 480, 390);
    QTest::newRow("top") << 1 << QRect(20, 50, 480, 390);
    QTest::newRow("right") << 2 << QRect();
    QTest::newRow("bottom") << 3 << QRect();
    QTest::newRow("none") << 4 << QRect();
    QTest::newRow("negative") << -1 << QRect();
}

void tst_ZrFormMgr::formAreas()
{
    QFETCH(int, layout);
    QFETCH(QRect, area);
    m_mgr->m_layout = layout;
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    Shown();
    m_mgr->resize(601, 460);
    m_mgr->resize(600, 460);
    QCOMPARE(a->geometry(), area);
    QCOMPARE(b->geometry(), area);
}

void tst_ZrFormMgr::tabsOfOtherLayoutsAreNotHit()
{
    for (const int layout : {1, 2, 3, 9}) {
        m_mgr->m_layout = layout;
        ZrFormPage* a = Add(QStringLiteral("A"));
        const QImage image = Shown();
        QVERIFY(a->m_tab.isEmpty());
        QImage nothing(60, 300, image.format());
        nothing.fill(Qt::black);
        QCOMPARE(image.copy(0, 60, 60, 300), nothing);
    }
}

void tst_ZrFormMgr::changedLayoutForgetsTabs()
{
    Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    Shown();
    const QPoint was = b->m_tab.center();
    m_mgr->m_layout = ZrFormMgr::tabsRight;
    m_mgr->BuildImg();
    SendPress(*m_mgr, was);
    QCOMPARE(b->m_displayed, 0);
}

void tst_ZrFormMgr::tabs()
{
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* tiered = Add(QStringLiteral("T"), true, a);
    ZrFormPage* b = Add(QStringLiteral("B"));
    Shown();
    QCOMPARE(a->m_tab, QRect(0, 50, 80, 80));
    QCOMPARE(b->m_tab, QRect(0, 130, 80, 80));
    QVERIFY(tiered->m_tab.isNull());
    // A finger hits each of them.
    QVERIFY(a->m_tab.height() >= 44);
}

void tst_ZrFormMgr::tabsAreDrawn()
{
    QImage icon(32, 32, QImage::Format_ARGB32);
    icon.fill(Qt::white);
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    a->m_icon = icon;
    b->m_icon = icon;
    const QImage image = Shown();
    // Icons are masks, painted in the colours of the theme, 42 design pixels wide.
    QCOMPARE(image.pixelColor(a->m_tab.center()).rgb(), ZrTheme::ctrlCol.rgb());
    QCOMPARE(image.pixelColor(b->m_tab.center()).rgb(), ZrTheme::bodyCol.rgb());
    const QPoint middle = b->m_tab.center();
    QCOMPARE(image.pixelColor(middle + QPoint(19, 0)).rgb(), ZrTheme::bodyCol.rgb());
    QVERIFY(image.pixelColor(middle + QPoint(24, 0)).rgb() != ZrTheme::bodyCol.rgb());
}

void tst_ZrFormMgr::currentTabIsHighlighted()
{
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    QColor bar = ZrTheme::ctrlCheckCol;
    bar.setAlpha(255);
    const QImage first = Shown();
    QVERIFY(HasColour(first.copy(a->m_tab), bar));
    QVERIFY(!HasColour(first.copy(b->m_tab), bar));
    m_mgr->SetToForm(QStringLiteral("B"));
    const QImage second = Painted(*m_mgr);
    QVERIFY(!HasColour(second.copy(a->m_tab), bar));
    QVERIFY(HasColour(second.copy(b->m_tab), bar));
}

void tst_ZrFormMgr::parentsTabIsHighlighted()
{
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    Add(QStringLiteral("T"), true, b);
    QColor bar = ZrTheme::ctrlCheckCol;
    bar.setAlpha(255);
    m_mgr->SetToForm(QStringLiteral("T"));
    const QImage image = Shown();
    QVERIFY(!HasColour(image.copy(a->m_tab), bar));
    QVERIFY(HasColour(image.copy(b->m_tab), bar));
}

/// Wider, and the forms right of them; all else is as without.
void tst_ZrFormMgr::tabsWithNames()
{
    m_mgr->m_hasTabNames = true;
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    m_mgr->resize(700, 460);
    Shown();
    const int wide = ZrTheme::DpI(216);
    QCOMPARE(m_mgr->m_tabWidth, wide);
    QCOMPARE(m_mgr->m_tabHeight, ZrTheme::DpI(50));
    QCOMPARE(m_mgr->grip, QRect(wide, 0, 700 - wide, ZrTheme::DpI(50)));
    QCOMPARE(a->m_tab, QRect(0, ZrTheme::DpI(50), wide, ZrTheme::DpI(80)));
    QCOMPARE(b->m_tab, a->m_tab.translated(0, ZrTheme::DpI(80)));
    const int margin = ZrTheme::DpI(20);
    QCOMPARE(a->geometry(),
        QRect(wide + margin, ZrTheme::DpI(50), 700 - 2 * margin - wide, 460 - margin - ZrTheme::DpI(50)));
    QTest::mouseClick(m_mgr, Qt::LeftButton, Qt::NoModifier, b->m_tab.center() + QPoint(wide / 3, 0));
    QCOMPARE(m_mgr->m_form, b);
}

void tst_ZrFormMgr::namesAreDrawn()
{
    m_mgr->m_hasTabNames = true;
    ZrFormPage* a = Add(QStringLiteral("IIIII"));
    ZrFormPage* b = Add(QStringLiteral("Long name of two lines"));
    m_mgr->resize(700, 460);
    QColor bar = ZrTheme::ctrlCheckCol;
    bar.setAlpha(255);
    const QImage image = Shown();
    const int left = ZrTheme::DpI(60); // of the names
    const QRect name = a->m_tab.adjusted(left, 0, 0, 0);
    QVERIFY(HasColour(image.copy(name), ZrTheme::ctrlCol));
    const int edge = ZrTheme::DpI(4); // of the panel
    QVERIFY(!HasColour(image.copy(b->m_tab.adjusted(edge, 0, -edge, 0)), ZrTheme::ctrlCol));
    QVERIFY(HasColour(image.copy(b->m_tab.adjusted(left, 0, 0, 0)), ZrTheme::bodyCol));
    QVERIFY(HasColour(image.copy(a->m_tab), bar));
    QVERIFY(!HasColour(image.copy(b->m_tab), bar));
    // On one surface with the forms; the name of another one is another picture.
    QCOMPARE(image.pixelColor(b->m_tab.right() - 4, b->m_tab.bottom() + ZrTheme::DpI(60)).rgb(),
        ZrTheme::formBack.rgb());
    a->m_name = QStringLiteral("WWWWW");
    QVERIFY(Painted(*m_mgr).copy(name) != image.copy(name));
}

void tst_ZrFormMgr::tellsOfTheFormShown()
{
    Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    ZrForm* shown = nullptr;
    int count = 0;
    connect(m_mgr, &ZrFormMgr::FormShown, this, [&] {
        shown = m_mgr->m_form;
        ++count;
    });
    m_mgr->SetToForm(QStringLiteral("B"));
    QCOMPARE(shown, b);
    m_mgr->SetToForm(QStringLiteral("none"));
    QCOMPARE(count, 1);
}

void tst_ZrFormMgr::imageWithoutSize()
{
    Add(QStringLiteral("A"));
    m_mgr->BuildImg();
    m_window->show();
    m_mgr->resize(0, 0);
    m_mgr->BuildImg();
    m_mgr->resize(10, 5);
    m_mgr->BuildImg();
    QVERIFY(!Painted(*m_mgr).isNull());
}

void tst_ZrFormMgr::formsAreDeleted()
{
    const QPointer<ZrForm> child = Add(QStringLiteral("A"));
    const QPointer<ZrForm> loose = new ZrFormPage(nullptr, QStringLiteral("B"));
    m_mgr->AddNewForm(loose);
    delete m_mgr;
    QVERIFY(child.isNull());
    QVERIFY(loose.isNull());
}

void tst_ZrFormMgr::formThatGoesByItself()
{
    delete Add(QStringLiteral("A"));
    QVERIFY(!m_mgr->m_form);
    QVERIFY(m_mgr->m_forms.isEmpty());
    ZrFormPage* b = Add(QStringLiteral("B"));
    QCOMPARE(m_mgr->m_form, b);
    Shown();
}

void tst_ZrFormMgr::settingsStored()
{
    Add(QStringLiteral("A"))->m_number = 3;
    Add(QString::fromUtf8("Größe"))->m_number = -4;
    Add(QStringLiteral("T"), true)->m_number = 5;
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(*m_mgr);
    QCOMPARE(stored.root.keys(),
        (QStringList{QStringLiteral("A"), QString::fromUtf8("Größe"), QStringLiteral("T")}));
    QCOMPARE(stored.root[QStringLiteral("A")].toObject()[QStringLiteral("number")].toString(),
        QStringLiteral("3"));
    QCOMPARE(stored.root[QString::fromUtf8("Größe")].toObject()[QStringLiteral("number")].toString(),
        QStringLiteral("-4"));
    QCOMPARE(stored.root[QStringLiteral("T")].toObject()[QStringLiteral("number")].toString(),
        QStringLiteral("5"));
}

void tst_ZrFormMgr::settingsLoaded()
{
    ZrFormPage* a = Add(QStringLiteral("A"));
    ZrFormPage* b = Add(QStringLiteral("B"));
    a->m_number = 1;
    b->m_number = 2;
    zr::ZrSetApp loaded(zr::ePersistLoading);
    loaded.root
        = QJsonObject{{QStringLiteral("B"), QJsonObject{{QStringLiteral("number"), QStringLiteral("7")}}},
            {QStringLiteral("C"), QJsonObject{{QStringLiteral("number"), QStringLiteral("8")}}}};
    loaded.synchronise(*m_mgr);
    QCOMPARE(a->m_number, 1);
    QCOMPARE(b->m_number, 7);
}

void tst_ZrFormMgr::settingsDamaged_data()
{
    QTest::addColumn<QJsonValue>("form");
    QTest::newRow("null") << QJsonValue();
    QTest::newRow("text") << QJsonValue(QStringLiteral("x"));
    QTest::newRow("array") << QJsonValue(QJsonArray{1, 2});
    QTest::newRow("empty") << QJsonValue(QJsonObject());
}

void tst_ZrFormMgr::settingsDamaged()
{
    QFETCH(QJsonValue, form);
    ZrFormPage* a = Add(QStringLiteral("A"));
    a->m_number = 9;
    zr::ZrSetApp loaded(zr::ePersistLoading);
    loaded.root = QJsonObject{{QStringLiteral("A"), form}};
    loaded.synchronise(*m_mgr);
    QCOMPARE(a->m_number, 9);
}

void tst_ZrFormMgr::manySwitches()
{
    Add(QStringLiteral("A"));
    Add(QStringLiteral("B"));
    Shown();
    const int children = m_mgr->findChildren<QObject*>().size();
    for (int i = 0; i < 1000; ++i) {
        QVERIFY(m_mgr->SetToForm(i % 2 ? QStringLiteral("A") : QStringLiteral("B")));
        m_mgr->setVisible(i % 2 == 0);
    }
    QCOMPARE(m_mgr->findChildren<QObject*>().size(), children);
}

QTEST_MAIN(tst_ZrFormMgr)
#include "tst_ZrFormMgr.moc"
