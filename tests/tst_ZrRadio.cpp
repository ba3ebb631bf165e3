// The list of choices: which one lies where, selecting by pointer and keys, painting.

#include "TouchOn.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrRadio.h"

#include <QFontMetrics>
#include <QPointer>
#include <QtTest>

#include <limits>
#include <memory>

static_assert(std::is_base_of_v<QWidget, ZrRadio>);
static_assert(std::is_same_v<decltype(ZrRadio::sel), i32>);
static_assert(std::is_same_v<decltype(ZrRadio::itemHeight), i32>);

class tst_ZrRadio : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void asMade();
    void itemHeightIsFixed_data();
    void itemHeightIsFixed();
    void itemUnderAPoint_data();
    void itemUnderAPoint();
    void itemHeightOfTheOwner();
    void rectangles();
    void noItems();

    void pressing();
    void pressingBelow();
    void pressingBelowWithoutSelection();
    void settingIsSilent();
    void selectingTells();
    void byTouch();
    void hovering();
    void keys_data();
    void keys();
    void keysOnAnEmptyList();
    void disabled();
    void deletedInSlot();

    void repaints();
    void touchHeight();
    void selectionIsSeen();
    void mirrored();
    void strangeSelections();

private:
    std::unique_ptr<QWidget> m_window;
    QPointer<ZrRadio> m_radio;
    QList<int> m_log;
};

void tst_ZrRadio::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<QWidget>();
    m_window->resize(300, 300);
    m_radio = new ZrRadio(m_window.get());
    m_radio->items
        = QStringList({QStringLiteral("Metric"), QStringLiteral("Imperial"), QStringLiteral("Nautical")});
    m_radio->itemHeight = 30;
    m_radio->setGeometry(0, 0, 200, 150);
    m_log.clear();
    connect(m_radio, &ZrRadio::SelChanged, this, [this](int sel) { m_log += sel; });
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void tst_ZrRadio::cleanup()
{
    m_window.reset();
}

void tst_ZrRadio::asMade()
{
    const ZrRadio radio(m_window.get());
    QVERIFY(radio.items.isEmpty());
    QCOMPARE(radio.sel, -1);
    QCOMPARE(radio.hot, -1);
    QVERIFY(radio.hasMouseTracking());
    QVERIFY(ZrRadio::staticMetaObject.indexOfSignal("SelChanged(int)") >= 0);
    QCOMPARE(ZrRadio::staticMetaObject.className(), "ZrRadio");
}

void tst_ZrRadio::itemHeightIsFixed_data()
{
    QTest::addColumn<double>("dp");
    for (const double dp : {0.5, 0.703, 1.0, 1.35, 2.0})
        QTest::newRow(qPrintable(QString::number(dp))) << dp;
}

void tst_ZrRadio::itemHeightIsFixed()
{
    QFETCH(double, dp);
    const ZrThemeState theme(dp);
    const int height = QFontMetrics(ZrTheme::font).height() * 3 / 2;
    const ZrRadio radio;
    QCOMPARE(radio.itemHeight, height);
    ZrTheme::dp = 4.0F;
    ZrTheme::SetStdStyle();
    QCOMPARE(radio.itemHeight, height);
}

void tst_ZrRadio::itemUnderAPoint_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("item");
    QTest::newRow("first quarter") << QPoint(5, 7) << 0;
    QTest::newRow("above the first") << QPoint(5, 6) << 0; // toward zero
    QTest::newRow("top") << QPoint(5, 0) << 0;
    QTest::newRow("end of the first") << QPoint(5, 36) << 0;
    QTest::newRow("second") << QPoint(5, 37) << 1;
    QTest::newRow("third") << QPoint(5, 67) << 2;
    QTest::newRow("end of the third") << QPoint(5, 96) << 2;
    QTest::newRow("below the last") << QPoint(5, 97) << -1;
    QTest::newRow("bottom") << QPoint(5, 149) << -1;
    QTest::newRow("right edge") << QPoint(199, 40) << 1;
    QTest::newRow("right of it") << QPoint(200, 40) << -1;
    QTest::newRow("left of it") << QPoint(-1, 40) << -1;
    QTest::newRow("above it") << QPoint(5, -1) << -1;
    QTest::newRow("below it") << QPoint(5, 150) << -1;
}

void tst_ZrRadio::itemUnderAPoint()
{
    QFETCH(QPoint, point);
    QTEST(m_radio->GetSel(point), "item");
}

void tst_ZrRadio::itemHeightOfTheOwner()
{
    m_radio->itemHeight = 0;
    QCOMPARE(m_radio->GetSel(QPoint(5, 5)), -1);
    m_radio->itemHeight = -30;
    QCOMPARE(m_radio->GetSel(QPoint(5, 5)), -1);
    m_radio->itemHeight = 1;
    QCOMPARE(m_radio->GetSel(QPoint(5, 2)), 2);
    m_radio->itemHeight = 100;
    QCOMPARE(m_radio->GetSel(QPoint(5, 124)), 0);
    QCOMPARE(m_radio->GetSel(QPoint(5, 125)), 1);
}

void tst_ZrRadio::rectangles()
{
    QCOMPARE(m_radio->ItemRect(0), QRect(0, 7, 200, 30));
    QCOMPARE(m_radio->ItemRect(2), QRect(0, 67, 200, 30));
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(m_radio->GetSel(m_radio->ItemRect(i).topLeft()), i);
        QCOMPARE(m_radio->GetSel(m_radio->ItemRect(i).bottomRight()), i);
    }
}

void tst_ZrRadio::noItems()
{
    m_radio->items.clear();
    QCOMPARE(m_radio->GetSel(QPoint(5, 5)), -1);
    SendPress(*m_radio, QPoint(5, 5));
    QVERIFY(m_log.isEmpty());
    QVERIFY(m_radio->sizeHint().isValid());
}

void tst_ZrRadio::pressing()
{
    SendPress(*m_radio, QPoint(5, 7));
    QCOMPARE(m_radio->sel, 0);
    SendPress(*m_radio, QPoint(5, 37));
    QCOMPARE(m_radio->sel, 1);
    SendPress(*m_radio, QPoint(150, 40));
    QCOMPARE(m_log, QList<int>({0, 1}));
    QTest::mouseClick(m_radio, Qt::LeftButton, Qt::NoModifier, QPoint(5, 70));
    QCOMPARE(m_log, QList<int>({0, 1, 2}));
}

void tst_ZrRadio::pressingBelow()
{
    m_radio->SetSel(1);
    SendPress(*m_radio, QPoint(5, 100));
    QCOMPARE(m_radio->sel, -1);
    QCOMPARE(m_log, QList<int>({-1}));
}

void tst_ZrRadio::pressingBelowWithoutSelection()
{
    SendPress(*m_radio, QPoint(5, 100));
    QCOMPARE(m_radio->sel, -1);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrRadio::settingIsSilent()
{
    m_radio->SetSel(2);
    QCOMPARE(m_radio->sel, 2);
    m_radio->SetSel(-1);
    QCOMPARE(m_radio->sel, -1);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrRadio::selectingTells()
{
    m_radio->Select(1);
    m_radio->Select(1);
    m_radio->Select(-1);
    QCOMPARE(m_log, QList<int>({1, -1}));
}

// Qt makes mouse events of touches that nobody takes.
void tst_ZrRadio::byTouch()
{
    auto touch = TouchOn(m_window.get(), QTest::createTouchDevice(), false);
    touch.press(0, QPoint(20, 50), m_window.get()).commit();
    touch.release(0, QPoint(20, 50), m_window.get()).commit();
    QCOMPARE(m_log, QList<int>({1}));
}

void tst_ZrRadio::hovering()
{
    SendMove(*m_radio, QPoint(5, 40));
    QCOMPARE(m_radio->hot, 1);
    SendMove(*m_radio, QPoint(5, 70));
    QCOMPARE(m_radio->hot, 2);
    SendMove(*m_radio, QPoint(5, 120));
    QCOMPARE(m_radio->hot, -1);
    SendMove(*m_radio, QPoint(5, 7));
    QCOMPARE(m_radio->hot, 0);
    SendLeave(*m_radio);
    QCOMPARE(m_radio->hot, -1);
    QCOMPARE(m_radio->sel, -1);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrRadio::keys_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("after");
    QTest::newRow("down from none") << -1 << int(Qt::Key_Down) << 0;
    QTest::newRow("up from none") << -1 << int(Qt::Key_Up) << 0;
    QTest::newRow("down") << 0 << int(Qt::Key_Down) << 1;
    QTest::newRow("down at the end") << 2 << int(Qt::Key_Down) << 2;
    QTest::newRow("up") << 2 << int(Qt::Key_Up) << 1;
    QTest::newRow("up at the start") << 0 << int(Qt::Key_Up) << 0;
    QTest::newRow("home") << 2 << int(Qt::Key_Home) << 0;
    QTest::newRow("end") << -1 << int(Qt::Key_End) << 2;
    QTest::newRow("other") << 1 << int(Qt::Key_A) << 1;
}

void tst_ZrRadio::keys()
{
    QFETCH(int, before);
    QFETCH(int, key);
    QFETCH(int, after);
    m_radio->SetSel(before);
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(m_radio, &event);
    QCOMPARE(m_radio->sel, after);
    QCOMPARE(event.isAccepted(), key != Qt::Key_A);
    QCOMPARE(m_log, after == before ? QList<int>() : QList<int>({after}));
}

void tst_ZrRadio::keysOnAnEmptyList()
{
    m_radio->items.clear();
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Home, Qt::Key_End})
        QTest::keyClick(m_radio, key);
    QCOMPARE(m_radio->sel, -1);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrRadio::disabled()
{
    m_radio->setEnabled(false);
    QTest::mouseClick(m_radio, Qt::LeftButton, Qt::NoModifier, QPoint(5, 7));
    QTest::keyClick(m_radio, Qt::Key_Down);
    QCOMPARE(m_radio->sel, -1);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrRadio::deletedInSlot()
{
    connect(m_radio, &ZrRadio::SelChanged, this, [this] { delete m_radio.data(); });
    QTest::mousePress(m_radio, Qt::LeftButton, Qt::NoModifier, QPoint(5, 7));
    QVERIFY(!m_radio);
    QCOMPARE(m_log, QList<int>({0}));
}

void tst_ZrRadio::repaints()
{
    ZrPaintCounter paints(*m_radio);
    paints.Take();
    SendPress(*m_radio, QPoint(5, 100)); // none is selected already
    SendMove(*m_radio, QPoint(5, 100));
    SendLeave(*m_radio);
    QCOMPARE(paints.Take(), 0);
    SendPress(*m_radio, QPoint(5, 7));
    QCOMPARE(paints.Take(), 1);
    SendPress(*m_radio, QPoint(5, 9));
    QCOMPARE(paints.Take(), 0);
    SendMove(*m_radio, QPoint(5, 9));
    QCOMPARE(paints.Take(), 1);
    SendMove(*m_radio, QPoint(5, 10));
    QCOMPARE(paints.Take(), 0);
    SendLeave(*m_radio);
    QCOMPARE(paints.Take(), 1);
    // Setting repaints in any case.
    m_radio->SetSel(0);
    QCOMPARE(paints.Take(), 1);
}

void tst_ZrRadio::touchHeight()
{
    m_radio->UseTouchHeight();
    QCOMPARE(m_radio->itemHeight, 44);
    m_radio->itemHeight = 60;
    m_radio->UseTouchHeight();
    QCOMPARE(m_radio->itemHeight, 60);
}

void tst_ZrRadio::selectionIsSeen()
{
    const auto isOnAt = [this](int i) {
        return HasColour(Painted(*m_radio).copy(m_radio->ItemRect(i)), ZrTheme::ctrlActiveCol);
    };
    for (int i = 0; i < 3; ++i)
        QVERIFY(!isOnAt(i));
    m_radio->SetSel(1);
    QVERIFY(!isOnAt(0) && isOnAt(1) && !isOnAt(2));
    m_radio->setEnabled(false);
    const QImage selected = Painted(*m_radio);
    m_radio->SetSel(-1);
    QVERIFY(Painted(*m_radio) != selected);
}

void tst_ZrRadio::mirrored()
{
    m_radio->SetSel(0);
    const auto isOnAt = [this](const QRect& part) {
        return HasColour(Painted(*m_radio).copy(part), ZrTheme::ctrlActiveCol);
    };
    QVERIFY(isOnAt(QRect(0, 0, 50, 50)) && !isOnAt(QRect(150, 0, 50, 50)));
    m_radio->setLayoutDirection(Qt::RightToLeft);
    QVERIFY(!isOnAt(QRect(0, 0, 50, 50)) && isOnAt(QRect(150, 0, 50, 50)));
}

void tst_ZrRadio::strangeSelections()
{
    for (const int sel : {-7, 3, std::numeric_limits<int>::max() - 1, std::numeric_limits<int>::min() + 1}) {
        m_radio->SetSel(sel);
        QCOMPARE(m_radio->sel, sel);
        QVERIFY(!HasColour(Painted(*m_radio), ZrTheme::ctrlActiveCol));
        QTest::keyClick(m_radio, Qt::Key_Down);
        QVERIFY(m_radio->sel >= 0 && m_radio->sel < 3);
    }
}

QTEST_MAIN(tst_ZrRadio)
#include "tst_ZrRadio.moc"
