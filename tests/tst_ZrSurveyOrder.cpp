#include "ZrKit/planning/ZrSurveyOrder.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <cmath>

namespace {

using Settings = ZrSurveySettings;

/// Line numbers, from 1.
QVector<int> Numbers(Settings::eOrder order, const std::vector<double>& across, double radius = 0.0)
{
    QVector<int> numbers;
    for (const std::size_t i : ZrSurveyOrder::Of(order, across, radius))
        numbers.append(static_cast<int>(i) + 1);
    return numbers;
}

std::vector<double> Even(int count, double spacing)
{
    std::vector<double> across;
    for (int i = 0; i < count; ++i)
        across.push_back(i * spacing);
    return across;
}

double Closest(const std::vector<double>& across, const std::vector<std::size_t>& order)
{
    double closest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < order.size(); ++i)
        closest = std::min(closest, std::fabs(across[order[i]] - across[order[i - 1]]));
    return closest;
}

} // namespace

class tst_ZrSurveyOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void order_data();
    void order();
    void everyLineOnce();
    void racetrackKeepsTheDistance_data();
    void racetrackKeepsTheDistance();
    void racetrackOfUnequalSpacings();
    void racetrackWithTooFewLines();
};

void tst_ZrSurveyOrder::order_data()
{
    QTest::addColumn<int>("order");
    QTest::addColumn<int>("count");
    QTest::addColumn<QVector<int>>("numbers");
    const int next = Settings::Next;
    const int other = Settings::EveryOther;
    const int even = Settings::EvenThenOdd;
    QTest::newRow("next") << next << 5 << QVector<int>{1, 2, 3, 4, 5};
    QTest::newRow("next, none") << next << 0 << QVector<int>{};
    QTest::newRow("every other, odd") << other << 5 << QVector<int>{1, 3, 5, 4, 2};
    QTest::newRow("every other, even") << other << 6 << QVector<int>{1, 3, 5, 6, 4, 2};
    QTest::newRow("every other, two") << other << 2 << QVector<int>{1, 2};
    QTest::newRow("every other, one") << other << 1 << QVector<int>{1};
    QTest::newRow("every other, none") << other << 0 << QVector<int>{};
    QTest::newRow("even then odd, odd") << even << 5 << QVector<int>{2, 4, 1, 3, 5};
    QTest::newRow("even then odd, even") << even << 6 << QVector<int>{2, 4, 6, 1, 3, 5};
    QTest::newRow("even then odd, two") << even << 2 << QVector<int>{2, 1};
    QTest::newRow("even then odd, one") << even << 1 << QVector<int>{1};
    QTest::newRow("even then odd, none") << even << 0 << QVector<int>{};
}

void tst_ZrSurveyOrder::order()
{
    QFETCH(int, order);
    QFETCH(int, count);
    QFETCH(QVector<int>, numbers);
    QCOMPARE(Numbers(static_cast<Settings::eOrder>(order), Even(count, 10.0)), numbers);
}

void tst_ZrSurveyOrder::everyLineOnce()
{
    for (const auto order :
        {Settings::Next, Settings::EveryOther, Settings::EvenThenOdd, Settings::Racetrack}) {
        for (int count = 0; count <= 60; ++count) {
            for (const double radius : {0.0, 4.0, 12.0, 31.0, 1000.0}) {
                QVector<int> numbers = Numbers(order, Even(count, 10.0), radius);
                if (count > 0 && order != Settings::EvenThenOdd)
                    QCOMPARE(numbers.front(), 1);
                std::sort(numbers.begin(), numbers.end());
                QCOMPARE(numbers.size(), count);
                for (int i = 0; i < count; ++i)
                    QCOMPARE(numbers[i], i + 1);
            }
        }
    }
}

void tst_ZrSurveyOrder::racetrackKeepsTheDistance_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<double>("radius");
    QTest::addColumn<QVector<int>>("numbers"); // empty: not compared
    // Two radii are two and a half spacings: ovals of three and four.
    QTest::newRow("one block") << 8 << 12.5 << QVector<int>{1, 5, 2, 6, 3, 7, 4, 8};
    QTest::newRow("one odd block") << 9 << 12.5 << QVector<int>{1, 6, 2, 7, 3, 8, 4, 9, 5};
    QTest::newRow("two blocks") << 16 << 12.5
                                << QVector<int>{1, 5, 2, 6, 3, 7, 4, 8, 13, 9, 14, 10, 15, 11, 16, 12};
    QTest::newRow("exactly two spacings") << 6 << 10.0 << QVector<int>{1, 4, 2, 5, 3, 6};
    for (const int count : {40, 41, 47, 48, 63, 200})
        QTest::addRow("%d lines", count) << count << 31.0 << QVector<int>{};
}

void tst_ZrSurveyOrder::racetrackKeepsTheDistance()
{
    QFETCH(int, count);
    QFETCH(double, radius);
    QFETCH(QVector<int>, numbers);
    const std::vector<double> across = Even(count, 10.0);
    if (!numbers.isEmpty())
        QCOMPARE(Numbers(Settings::Racetrack, across, radius), numbers);
    const double closest = Closest(across, ZrSurveyOrder::Of(Settings::Racetrack, across, radius));
    QVERIFY2(closest >= 2.0 * radius, qPrintable(QString::number(closest)));
}

void tst_ZrSurveyOrder::racetrackOfUnequalSpacings()
{
    std::vector<double> across{0.0};
    for (int i = 0; i < 60; ++i)
        across.push_back(across.back() + (i % 2 == 0 ? 10.0 : 25.0));
    for (const double radius : {5.0, 8.0, 17.0, 20.0, 50.0}) {
        const double closest = Closest(across, ZrSurveyOrder::Of(Settings::Racetrack, across, radius));
        QVERIFY2(closest >= 2.0 * radius, qPrintable(QStringLiteral("%1: %2").arg(radius).arg(closest)));
    }
}

void tst_ZrSurveyOrder::racetrackWithTooFewLines()
{
    // Seven lines cannot all be run six spacings apart; they are run as far apart as halves allow.
    const std::vector<double> across = Even(7, 10.0);
    QCOMPARE(Numbers(Settings::Racetrack, across, 30.0), (QVector<int>{1, 5, 2, 6, 3, 7, 4}));
    QCOMPARE(Closest(across, ZrSurveyOrder::Of(Settings::Racetrack, across, 30.0)), 30.0);
}

QTEST_APPLESS_MAIN(tst_ZrSurveyOrder)
#include "tst_ZrSurveyOrder.moc"
