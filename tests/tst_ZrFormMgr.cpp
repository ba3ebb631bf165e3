// The panel with the settings forms: which form is shown, its tabs, dragging, closing, settings.

#include "ZrFormPage.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrSetApp.h"

#include <QHelpEvent>
#include <QPointer>
#include <QPushButton>
#include <QToolTip>
#include <QtTest>

#include <memory>

static_assert(std::is_base_of_v<ZrDragWidget, ZrFormMgr>);
static_assert(std::is_base_of_v<zr::IPersistable, ZrFormMgr>);
static_assert(std::is_same_v<decltype(ZrFormMgr::m_forms), QList<ZrForm*>>);

namespace {

/// Where the application would be told of presses that the panel lets through.
class Window : public QWidget
{
public:
    int m_presses = 0;

protected:
    void mousePressEvent(QMouseEvent* /*event*/) override { ++m_presses; }
};

} // namespace

class tst_ZrFormMgr : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

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
    void imageWithoutSize();
    void formsAreDeleted();
    void formThatGoesByItself();
    void settingsStored();
    void settingsLoaded();
    void settingsDamaged_data();
    void settingsDamaged();
    void manySwitches();

private:
    ZrFormPage* Add(const QString& name, bool isTiered = false, ZrForm* parent = nullptr);

    ZrBtn& Close() { return *m_mgr->findChild<ZrBtn*>(); }

    QImage Shown();

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<Window> m_window;
    ZrFormMgr* m_mgr = nullptr;
};

void tst_ZrFormMgr::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_window = std::make_unique<Window>();
    m_window->resize(780, 560);
    m_mgr = new ZrFormMgr(m_window.get());
    m_mgr->setGeometry(20, 30, 600, 460);
}

void tst_ZrFormMgr::cleanup()
{
    m_window.reset();
    m_theme.reset();
}

ZrFormPage* tst_ZrFormMgr::Add(const QString& name, bool isTiered, ZrForm* parent)
{
    auto* form = new ZrFormPage(m_mgr, name);
    form->m_isTiered = isTiered;
    form->m_parentForm = parent;
    m_mgr->AddNewForm(form);
    return form;
}

QImage tst_ZrFormMgr::Shown()
{
    m_window->show();
    Settle();
    return Painted(*m_mgr);
}

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

void tst_ZrFormMgr::pressOnTab()
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

void tst_ZrFormMgr::tabsTellTheirNames()
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

void tst_ZrFormMgr::pressBelowTabs()
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

void tst_ZrFormMgr::pressesStayInThePanel()
{
    Add(QStringLiteral("A"));
    Shown();
    for (const QPoint& pos : {QPoint(40, 90), QPoint(40, 300), QPoint(300, 20), QPoint(300, 300)})
        QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, m_mgr->pos() + pos);
    QCOMPARE(m_window->m_presses, 0);
    QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    QCOMPARE(m_window->m_presses, 1);
}

void tst_ZrFormMgr::doubleClickStaysInThePanel()
{
    Shown();
    QTest::mouseDClick(m_mgr, Qt::LeftButton, Qt::NoModifier, QPoint(40, 300));
    QCOMPARE(m_window->m_presses, 0);
}

void tst_ZrFormMgr::dragByTheBand()
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

void tst_ZrFormMgr::noDragByTheTabs()
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

void tst_ZrFormMgr::closeButton()
{
    Add(QStringLiteral("A"));
    Shown();
    QVERIFY(m_mgr->isVisible());
    QVERIFY(!Close().img.isNull());
    QCOMPARE(Close().accessibleName(), QStringLiteral("Close the settings"));
    QTest::mouseClick(&Close(), Qt::LeftButton);
    QVERIFY(m_mgr->isHidden());
    m_mgr->OnClose();
    QVERIFY(m_mgr->isHidden());
}

void tst_ZrFormMgr::tapBesideTheCloseButton_data()
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

void tst_ZrFormMgr::tapBesideTheCloseButton()
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

void tst_ZrFormMgr::dragFromBesideTheCloseButton()
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

void tst_ZrFormMgr::escape()
{
    Add(QStringLiteral("A"));
    Shown();
    QTest::keyClick(m_mgr, Qt::Key_Escape);
    QVERIFY(m_mgr->isHidden());
}

void tst_ZrFormMgr::otherKeysGoOn()
{
    Add(QStringLiteral("A"));
    Shown();
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QCoreApplication::sendEvent(m_mgr, &event);
    QVERIFY(!event.isAccepted());
    QVERIFY(m_mgr->isVisible());
}

void tst_ZrFormMgr::focusComesBack()
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
