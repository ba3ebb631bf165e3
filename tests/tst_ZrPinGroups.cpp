// Places that are too near to one another to be marked each.

#include "ZrKit/chart/ZrPinGroups.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

class tst_ZrPinGroups : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothing();
    void farApart();
    void mergedWithTheFirst();
    void nearestOfTwo();
    void samePlace();
    void odd_data();
    void odd();
    void badDistance_data();
    void badDistance();
    void farAway();
    void near_data();
    void near();
    void manyPlaces();
};

void tst_ZrPinGroups::nothing()
{
    ZrPinGroups groups;
    QVERIFY(groups.Groups().empty());
    QVERIFY(groups.Near({0, 0}, 10).empty());
    groups.Make({{1, 1}}, 5);
    groups.Make({}, 5);
    QVERIFY(groups.Groups().empty());
    QVERIFY(groups.Near({1, 1}, 10).empty());
}

/// At the distance they are not too near.
void tst_ZrPinGroups::farApart()
{
    ZrPinGroups groups;
    groups.Make({{0, 0}, {10, 0}, {10, 10}, {-7, -8}}, 10);
    QCOMPARE(groups.Groups().size(), std::size_t(4));
    for (int i = 0; i < 4; ++i)
        QCOMPARE(groups.Groups()[static_cast<std::size_t>(i)].members, std::vector<int>{i});
}

/// The first one is where they all are, and the chain of those that are near does not go on.
void tst_ZrPinGroups::mergedWithTheFirst()
{
    ZrPinGroups groups;
    groups.Make({{0, 0}, {6, 0}, {12, 0}, {18, 0}, {24, 0}}, 10);
    QCOMPARE(groups.Groups().size(), std::size_t(3));
    QCOMPARE(groups.Groups()[0].at, QPointF(0, 0));
    QCOMPARE(groups.Groups()[1].at, QPointF(12, 0));
    QCOMPARE(groups.Groups()[2].at, QPointF(24, 0));
    QCOMPARE(groups.Groups()[1].members.front(), 2);
}

/// Also where that one comes later.
void tst_ZrPinGroups::nearestOfTwo()
{
    ZrPinGroups groups;
    groups.Make({{0, 0}, {7, 0}, {11, 0}}, 10);
    QCOMPARE(groups.Groups().size(), std::size_t(2));
    QCOMPARE(groups.Groups()[0].members, std::vector<int>{0});
    QCOMPARE(groups.Groups()[1].members, (std::vector<int>{1, 2}));
    QCOMPARE(groups.Groups()[1].at, QPointF(11, 0));
}

void tst_ZrPinGroups::samePlace()
{
    ZrPinGroups groups;
    groups.Make(std::vector<QPointF>(1000, {5, 5}), 1e-9);
    QCOMPARE(groups.Groups().size(), std::size_t(1));
    QCOMPARE(groups.Groups()[0].members.size(), std::size_t(1000));
}

void tst_ZrPinGroups::odd_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity();
}

void tst_ZrPinGroups::odd()
{
    QFETCH(double, value);
    ZrPinGroups groups;
    groups.Make({{value, 0}, {0, value}, {1, 1}, {value, value}}, 5);
    QCOMPARE(groups.Groups().size(), std::size_t(1));
    QCOMPARE(groups.Groups()[0].members, std::vector<int>{2});
    QVERIFY(groups.Near({value, value}, 5).empty());
    QCOMPARE(groups.Near({1, 1}, value).size(), value > 0 ? std::size_t(1) : std::size_t(0));
    groups.Make({{value, 0}, {1, 1}}, 0);
    QCOMPARE(groups.Groups().size(), std::size_t(1));
}

void tst_ZrPinGroups::badDistance_data()
{
    odd_data();
    QTest::newRow("zero") << 0.0;
    QTest::newRow("negative") << -3.0;
}

/// Each is by itself.
void tst_ZrPinGroups::badDistance()
{
    QFETCH(double, value);
    ZrPinGroups groups;
    groups.Make({{1, 1}, {1, 1}, {1, 1}}, value);
    QCOMPARE(groups.Groups().size(), std::size_t(3));
    QCOMPARE(groups.Near({0, 0}, 2).size(), std::size_t(3));
}

void tst_ZrPinGroups::farAway()
{
    ZrPinGroups groups;
    groups.Make({{1e300, 1e300}, {-1e300, 0}, {0, 0}}, 1e-6);
    QCOMPARE(groups.Groups().size(), std::size_t(3));
    QCOMPARE(groups.Near({0, 0}, 1), std::vector<int>{2});
}

void tst_ZrPinGroups::near_data()
{
    QTest::addColumn<double>("reach");
    for (const double reach : {0.5, 3.0, 10.0, 40.0, 1e6})
        QTest::addRow("%g", reach) << reach;
}

/// As one would find who looks at all of them.
void tst_ZrPinGroups::near()
{
    QFETCH(double, reach);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> at(-100.0, 100.0);
    std::vector<QPointF> places;
    for (int i = 0; i < 2000; ++i)
        places.emplace_back(at(random), at(random));
    ZrPinGroups groups;
    groups.Make(places, 4.0);
    const QPointF middle(13.7, -20.1);
    std::vector<int> found;
    for (std::size_t i = 0; i < groups.Groups().size(); ++i) {
        const QPointF d = groups.Groups()[i].at - middle;
        if (std::fabs(d.x()) <= reach && std::fabs(d.y()) <= reach)
            found.push_back(static_cast<int>(i));
    }
    QCOMPARE(groups.Near(middle, reach), found);
}

/// None too near to another, each member near to its own, nobody left out or there twice.
void tst_ZrPinGroups::manyPlaces()
{
    std::mt19937 random(11);
    std::normal_distribution<double> at(0.0, 300.0);
    std::vector<QPointF> places;
    for (int i = 0; i < 20000; ++i)
        places.emplace_back(at(random), at(random));
    const double distance = 40.0;
    ZrPinGroups groups;
    groups.Make(places, distance);
    std::vector<int> count(places.size(), 0);
    for (std::size_t i = 0; i < groups.Groups().size(); ++i) {
        const ZrPinGroups::Group& group = groups.Groups()[i];
        QVERIFY(std::count_if(group.members.begin(), group.members.end(), [&](int member) {
            return places[static_cast<std::size_t>(member)] == group.at;
        }) >= 1);
        QVERIFY(std::is_sorted(group.members.begin(), group.members.end()));
        for (std::size_t k = 0; k < i; ++k) {
            const QPointF d = groups.Groups()[k].at - group.at;
            QVERIFY(std::hypot(d.x(), d.y()) >= distance);
        }
        for (const int member : group.members) {
            const QPointF d = places[static_cast<std::size_t>(member)] - group.at;
            QVERIFY(std::hypot(d.x(), d.y()) < distance);
            ++count[static_cast<std::size_t>(member)];
        }
    }
    for (const int times : count)
        QCOMPARE(times, 1);
}

QTEST_APPLESS_MAIN(tst_ZrPinGroups)
#include "tst_ZrPinGroups.moc"
