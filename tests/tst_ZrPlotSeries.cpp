// Series of values over time, held against looking at every value.

#include "ZrKit/review/ZrPlotSeries.h"

#include <QtTest/QtTest>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr float unknownValue = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

struct Made
{
    std::shared_ptr<ZrSteadyTime> times = std::make_shared<ZrSteadyTime>();
    ZrPlotSeries series{times};

    void Add(double time, float value)
    {
        times->Append(time);
        series.Append(value);
    }
};

ZrPlotSeries::Extent BySearch(const std::vector<float>& values, std::size_t first, std::size_t end)
{
    ZrPlotSeries::Extent extent;
    for (std::size_t i = first; i < std::min(end, values.size()); ++i) {
        if (std::isfinite(values[i]))
            extent.Add({values[i], values[i]});
    }
    return extent;
}

bool Same(const ZrPlotSeries::Extent& a, const ZrPlotSeries::Extent& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

class tst_ZrPlotSeries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void empty();
    void valuesNeedRecords();
    void valueAt();
    void infinitiesAreGaps();
    void extentBetween();
    void everyExtent_data();
    void everyExtent();
    void extentsCostLittle();
    void sharedTimes();
    void memory();
};

void tst_ZrPlotSeries::empty()
{
    ZrPlotSeries series;
    QCOMPARE(series.Count(), std::size_t(0));
    QVERIFY(!series.Append(1.0f));
    QVERIFY(std::isnan(series.ValueAt(0.0)));
    QVERIFY(!series.ExtentOf(0, 100).IsKnown());
    QVERIFY(!series.ExtentBetween(0.0, 100.0).IsKnown());
    series.Squeeze();
}

void tst_ZrPlotSeries::valuesNeedRecords()
{
    Made made;
    QVERIFY(!made.series.Append(1.0f));
    made.times->Append(0.0);
    QVERIFY(made.series.Append(1.0f));
    QVERIFY(!made.series.Append(2.0f));
    QCOMPARE(made.series.Count(), std::size_t(1));
    QCOMPARE(made.series.Value(0), 1.0f);
}

void tst_ZrPlotSeries::valueAt()
{
    Made made;
    made.Add(1, 10);
    made.Add(2, 20);
    made.Add(2, 21);
    made.Add(3, unknownValue);
    made.Add(4, 40);
    made.times->Append(5); // has no value yet
    QVERIFY(std::isnan(made.series.ValueAt(0.999)));
    QCOMPARE(made.series.ValueAt(1.0), 10.0f);
    QCOMPARE(made.series.ValueAt(1.999), 10.0f);
    QCOMPARE(made.series.ValueAt(2.0), 21.0f);
    QVERIFY(std::isnan(made.series.ValueAt(3.5)));
    QCOMPARE(made.series.ValueAt(4.0), 40.0f);
    QCOMPARE(made.series.ValueAt(1e9), 40.0f);
    QVERIFY(std::isnan(made.series.ValueAt(unknown)));
}

void tst_ZrPlotSeries::infinitiesAreGaps()
{
    Made made;
    made.Add(0, infinite);
    made.Add(1, -infinite);
    made.Add(2, 3);
    QVERIFY(std::isnan(made.series.Value(0)));
    QVERIFY(std::isnan(made.series.Value(1)));
    QCOMPARE(made.series.ExtentOf(0, 3).max, 3.0f);
    QCOMPARE(made.series.ExtentOf(0, 3).min, 3.0f);
    QVERIFY(!made.series.ExtentOf(0, 2).IsKnown());
}

void tst_ZrPlotSeries::extentBetween()
{
    Made made;
    for (int i = 0; i < 100; ++i)
        made.Add(i, static_cast<float>(i));
    QCOMPARE(made.series.ExtentBetween(10, 20).min, 10.0f);
    QCOMPARE(made.series.ExtentBetween(10, 20).max, 20.0f);
    QCOMPARE(made.series.ExtentBetween(-1e9, 1e9).max, 99.0f);
    QVERIFY(!made.series.ExtentBetween(10.2, 10.8).IsKnown());
    QVERIFY(!made.series.ExtentBetween(20, 10).IsKnown());
    QVERIFY(!made.series.ExtentBetween(unknown, 10).IsKnown());
    QVERIFY(!made.series.ExtentBetween(200, 300).IsKnown());
}

void tst_ZrPlotSeries::everyExtent_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("unknownOf10");
    for (const int count : {1, 15, 16, 17, 31, 32, 33, 255, 256, 257, 272, 511, 513})
        QTest::newRow(qPrintable(QString::number(count))) << count << 1;
    QTest::newRow("4095") << 4095 << 9;
    QTest::newRow("4097") << 4097 << 1;
    QTest::newRow("70000") << 70000 << 0;
    QTest::newRow("all unknown") << 600 << 10;
}

void tst_ZrPlotSeries::everyExtent()
{
    QFETCH(int, count);
    QFETCH(int, unknownOf10);
    std::mt19937 random(static_cast<unsigned>(count));
    Made made;
    std::vector<float> values;
    for (int i = 0; i < count; ++i) {
        const bool isUnknown = static_cast<int>(random() % 10) < unknownOf10;
        values.push_back(isUnknown ? unknownValue : static_cast<float>(random() % 100000));
        made.Add(i, values.back());
    }
    const auto all = static_cast<std::size_t>(count);
    const auto check = [&](std::size_t first, std::size_t end) {
        return Same(made.series.ExtentOf(first, end), BySearch(values, first, end));
    };
    if (all <= 300) {
        for (std::size_t first = 0; first <= all; ++first)
            for (std::size_t end = first; end <= all + 1; ++end)
                QVERIFY(check(first, end));
        return;
    }
    for (int i = 0; i < 300; ++i) {
        const std::size_t first = random() % all;
        QVERIFY(check(first, first + random() % (all - first + 2)));
    }
    QVERIFY(check(0, all));
}

void tst_ZrPlotSeries::extentsCostLittle()
{
    Made made;
    for (int i = 0; i < 1000000; ++i)
        made.Add(i, static_cast<float>(i % 1000));
    for (const std::size_t first : {std::size_t(0), std::size_t(1), std::size_t(12345)}) {
        std::size_t looks = 0;
        made.series.ExtentOf(first, 999999, &looks);
        QVERIFY2(looks < 160, qPrintable(QString::number(looks)));
    }
    std::size_t looks = 5; // added to
    made.series.ExtentOf(500000, 500010, &looks);
    QVERIFY(looks <= 15);
}

void tst_ZrPlotSeries::sharedTimes()
{
    const auto times = std::make_shared<ZrSteadyTime>();
    ZrPlotSeries a(times);
    ZrPlotSeries b(times);
    times->Append(1.0);
    QVERIFY(a.Append(1.0f));
    times->Append(2.0);
    QVERIFY(a.Append(2.0f));
    QVERIFY(b.Append(5.0f));
    QCOMPARE(b.ValueAt(2.0), 5.0f); // its second value is still to come
    QCOMPARE(&a.Times(), &b.Times());
}

void tst_ZrPlotSeries::memory()
{
    Made made;
    for (int i = 0; i < 100000; ++i)
        made.Add(i, 1.0f);
    made.series.Squeeze();
    QVERIFY(made.series.Bytes() >= 400000);
    QVERIFY2(made.series.Bytes() < 460000, qPrintable(QString::number(made.series.Bytes())));
}

QTEST_APPLESS_MAIN(tst_ZrPlotSeries)
#include "tst_ZrPlotSeries.moc"
