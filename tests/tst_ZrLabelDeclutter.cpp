// Boxes of labels, and which of them are drawn.

#include "ZrKit/map/ZrLabelDeclutter.h"
#include "ZrKit/map/ZrMapView.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>

using Item = ZrLabelDeclutter::Item;
using Shown = std::vector<bool>;

class tst_ZrLabelDeclutter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boxIsAligned_data();
    void boxIsAligned();
    void boxTurns();
    void boxOfAWorldPosition();
    void higherPriorityWins();
    void firstOfEqualsWins();
    void touchingIsNoOverlap();
    void takenIsLeftFree();
    void alwaysShown();
    void hiddenTakesNoRoom();
    void nonsenseIsLeftOut();
    void hugeBoxes();
    void sameAsPairwise_data();
    void sameAsPairwise();
};

void tst_ZrLabelDeclutter::boxIsAligned_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<QRectF>("box");
    const double lefts[] = {100, 80, 60};
    const double tops[] = {50, 45, 40};
    for (int x = 0; x < 3; ++x) {
        for (int y = 0; y < 3; ++y)
            QTest::addRow("%d %d", x, y) << x << y << QRectF(lefts[x] + 6, tops[y] - 4, 40, 10);
    }
}

void tst_ZrLabelDeclutter::boxIsAligned()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(QRectF, box);
    ZrMapLabel label;
    label.isOnScreen = true;
    label.position = {100, 50};
    label.offset = {3, -2};
    label.alignX = static_cast<ZrMapLabel::eAlignX>(x);
    label.alignY = static_cast<ZrMapLabel::eAlignY>(y);
    QCOMPARE(ZrLabelDeclutter::Box(label, {40, 10}, ZrMapView(), 2.0), box);
}

void tst_ZrLabelDeclutter::boxTurns()
{
    ZrMapView view;
    view.SetSize(200, 100);
    view.SetRotation(90);
    ZrMapLabel label;
    label.alignY = ZrMapLabel::alignBottom;
    const auto box = [&] { return ZrLabelDeclutter::Box(label, {40, 10}, view, 1.0); };
    QCOMPARE(box(), QRectF(100, 40, 40, 10));
    // Up from its position; what was above the base line is now on the left.
    label.angle = 90;
    QVERIFY(std::fabs(box().left() - 90) < 1e-9 && std::fabs(box().top() - 10) < 1e-9);
    QVERIFY(std::fabs(box().width() - 10) < 1e-9 && std::fabs(box().height() - 40) < 1e-9);
    label.angle = 0;
    label.isTurning = true;
    QVERIFY(std::fabs(box().left() - 90) < 1e-9 && std::fabs(box().top() - 10) < 1e-9);
    // The offset turns with it: to the right becomes up.
    label.offset = {5, 0};
    QVERIFY(std::fabs(box().top() - 5) < 1e-9);
    // Not on the screen.
    label.isOnScreen = true;
    QCOMPARE(box(), QRectF(5, -10, 40, 10));
    label.offset = {};
    label.angle = 45;
    const double side = 50 / std::sqrt(2.0);
    QVERIFY(std::fabs(box().width() - side) < 1e-9 && std::fabs(box().height() - side) < 1e-9);
}

void tst_ZrLabelDeclutter::boxOfAWorldPosition()
{
    ZrMapView view;
    view.SetSize(200, 100);
    view.SetCentre({400000, 5000000});
    view.SetScale(2);
    ZrMapLabel label;
    label.position = {400020, 5000040};
    label.alignY = ZrMapLabel::alignTop;
    QCOMPARE(ZrLabelDeclutter::Box(label, {40, 10}, view, 1.0), QRectF(110, 30, 40, 10));
}

void tst_ZrLabelDeclutter::higherPriorityWins()
{
    const std::vector<Item> items
        = {{{0, 0, 10, 10}, 1}, {{5, 5, 10, 10}, 2}, {{12, 0, 10, 10}, -7}, {{40, 0, 5, 5}, -9}};
    QCOMPARE(ZrLabelDeclutter::Shown(items), Shown({false, true, false, true}));
}

void tst_ZrLabelDeclutter::firstOfEqualsWins()
{
    const std::vector<Item> items = {{{0, 0, 10, 10}, 3}, {{5, 5, 10, 10}, 3}, {{13, 5, 10, 10}, 3}};
    QCOMPARE(ZrLabelDeclutter::Shown(items), Shown({true, false, true}));
    QCOMPARE(ZrLabelDeclutter::Shown({}), Shown());
}

void tst_ZrLabelDeclutter::touchingIsNoOverlap()
{
    QCOMPARE(ZrLabelDeclutter::Shown({{{0, 0, 10, 10}, 0}, {{10, 0, 10, 10}, 0}, {{0, 10, 10, 10}, 0}}),
        Shown({true, true, true}));
}

void tst_ZrLabelDeclutter::takenIsLeftFree()
{
    QCOMPARE(
        ZrLabelDeclutter::Shown({{{0, 0, 10, 10}, 5}, {{20, 0, 10, 10}, 0}}, {QRectF(9, 9, 3, 3), QRectF()}),
        Shown({false, true}));
}

void tst_ZrLabelDeclutter::alwaysShown()
{
    const int always = ZrMapLabel::AlwaysShown;
    QCOMPARE(ZrLabelDeclutter::Shown({{{0, 0, 10, 10}, 5}, {{5, 0, 10, 10}, always}, {{8, 0, 9, 9}, always}},
                 {QRectF(0, 0, 50, 50)}),
        Shown({false, true, true}));
}

void tst_ZrLabelDeclutter::hiddenTakesNoRoom()
{
    // The second gives way to the first; the third overlaps the second alone.
    QCOMPARE(ZrLabelDeclutter::Shown({{{0, 0, 10, 10}, 3}, {{8, 0, 10, 10}, 2}, {{16, 0, 10, 10}, 1}}),
        Shown({true, false, true}));
}

void tst_ZrLabelDeclutter::nonsenseIsLeftOut()
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double inf = std::numeric_limits<double>::infinity();
    const std::vector<Item> items
        = {{{nan, 0, 10, 10}, 9}, {{0, 0, inf, 10}, 9}, {{0, 0, 0, 10}, 9}, {{0, 0, -5, 10}, 9},
            {{1e300, 0, 10, 10}, 9}, {{0, 0, 10, nan}, 9}, {{-inf, 0, 10, 10}, 9}, {{0, 0, 10, 10}, 0}};
    QCOMPARE(ZrLabelDeclutter::Shown(items, {QRectF(nan, nan, nan, nan), QRectF(0, 0, inf, inf)}),
        Shown({false, false, false, false, false, false, false, true}));
}

void tst_ZrLabelDeclutter::hugeBoxes()
{
    const QRectF huge(-1e8, -1e8, 2e8, 2e8);
    QCOMPARE(ZrLabelDeclutter::Shown({{huge, 1}, {{5, 5, 5, 5}, 0}}), Shown({true, false}));
    QCOMPARE(ZrLabelDeclutter::Shown({{huge, 0}, {{5, 5, 5, 5}, 1}}), Shown({false, true}));
}

void tst_ZrLabelDeclutter::sameAsPairwise_data()
{
    QTest::addColumn<unsigned>("seed");
    QTest::addColumn<double>("spread");
    for (unsigned seed = 1; seed <= 4; ++seed) {
        QTest::addRow("dense %u", seed) << seed << 400.0;
        QTest::addRow("sparse %u", seed) << seed << 8000.0;
    }
}

void tst_ZrLabelDeclutter::sameAsPairwise()
{
    QFETCH(unsigned, seed);
    QFETCH(double, spread);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> at(-spread, spread);
    std::uniform_real_distribution<double> size(1.0, 300.0);
    std::vector<Item> items;
    for (int i = 0; i < 400; ++i)
        items.push_back(
            {{at(random), at(random), size(random), size(random) / 8.0}, static_cast<int>(random() % 5)});
    Shown expected(items.size(), false);
    for (int priority = 4; priority >= 0; --priority) {
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (items[i].priority != priority)
                continue;
            bool isFree = true;
            for (std::size_t j = 0; j < items.size(); ++j)
                isFree = isFree && !(expected[j] && items[j].box.intersects(items[i].box));
            expected[i] = isFree;
        }
    }
    QCOMPARE(ZrLabelDeclutter::Shown(items), expected);
}

QTEST_GUILESS_MAIN(tst_ZrLabelDeclutter)
#include "tst_ZrLabelDeclutter.moc"
