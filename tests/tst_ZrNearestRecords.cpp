// The records nearest to some times, and which records to read to find them, against the table of all times.

#include "ZrKit/review/ZrNearestRecords.h"
#include "ZrKit/review/ZrRecordTimes.h"
#include "ZrKit/review/ZrRecordsAround.h"
#include "ZrKit/review/ZrSteadyTime.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>

namespace {

const double unknown = std::numeric_limits<double>::quiet_NaN();
const double infinite = std::numeric_limits<double>::infinity();
constexpr double start = 1614780309.0;

std::vector<ZrLogRec> Records(const std::vector<double>& times)
{
    std::vector<ZrLogRec> recs(times.size());
    for (std::size_t i = 0; i < times.size(); ++i)
        recs[i].time = times[i];
    return recs;
}

/// Times of a log: mostly a second apart, now and then a step back within a second, the clock set, or no
/// time.
std::vector<double> LogTimes(std::mt19937& random, int count)
{
    std::vector<double> times;
    double now = start;
    for (int i = 0; i < count; ++i) {
        now += static_cast<double>(random() % 30) / 10.0;
        switch (random() % 100) {
        case 0:
            now -= static_cast<double>(random() % 3000);
            break;
        case 1:
            now += static_cast<double>(random() % 3000);
            break;
        case 2:
            times.push_back(i % 2 ? unknown : -infinite);
            continue;
        case 3:
            times.push_back(i % 2 ? 1e300 : -1e12); // numbers, but no times
            continue;
        case 4:
            times.push_back(now - 0.9);
            continue;
        default:
            break;
        }
        times.push_back(now);
    }
    return times;
}

} // namespace

class tst_ZrNearestRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothing();
    void fewOfThem_data();
    void fewOfThem();
    void asTheTableOfAll();
    void aroundIsEnough();
    void aroundIsLittle();
    void aroundIsAll();
};

void tst_ZrNearestRecords::nothing()
{
    ZrNearestRecords nearest({start, unknown, infinite});
    for (std::size_t i = 0; i < 3; ++i)
        QCOMPARE(nearest.Of(i), ZrNearestRecords::None);
    nearest.Add(0, unknown);
    nearest.Add(1, infinite);
    QCOMPARE(nearest.Of(0), ZrNearestRecords::None);
    nearest.Add(2, start + 1e9);
    QCOMPARE(nearest.Of(0), std::size_t(2));
    QCOMPARE(nearest.Of(1), ZrNearestRecords::None);
    QCOMPARE(nearest.Of(2), std::size_t(2));
    ZrNearestRecords none({});
    none.Add(0, start);
}

void tst_ZrNearestRecords::fewOfThem_data()
{
    QTest::addColumn<QVector<double>>("times");
    QTest::addColumn<double>("time");
    QTest::addColumn<int>("record");
    const QVector<double> even{10, 11, 12, 13};
    QTest::newRow("before all") << even << 5.0 << 0;
    QTest::newRow("behind all") << even << 99.0 << 3;
    QTest::newRow("at one") << even << 12.0 << 2;
    QTest::newRow("nearer to the one before") << even << 11.4 << 1;
    QTest::newRow("nearer to the one behind") << even << 11.6 << 2;
    QTest::newRow("half-way, the first one") << even << 11.5 << 1;
    QTest::newRow("half-way, the first one in the log") << QVector<double>{12, 11} << 11.5 << 0;
    QTest::newRow("of equal ones the first") << QVector<double>{9, 7, 7, 7} << 7.0 << 1;
    QTest::newRow("of equal ones before it") << QVector<double>{7, 7, 7, 99} << 8.0 << 0;
    QTest::newRow("of equal ones behind it") << QVector<double>{-99, 9, 9} << 8.0 << 1;
    QTest::newRow("without a time") << QVector<double>{unknown, infinite, 50} << 8.0 << 2;
    QTest::newRow("for ever") << even << infinite << 3;
    QTest::newRow("since ever") << even << -infinite << 0;
}

void tst_ZrNearestRecords::fewOfThem()
{
    QFETCH(QVector<double>, times);
    QFETCH(double, time);
    QFETCH(int, record);
    ZrNearestRecords nearest({time, 3.0, time, unknown});
    for (int i = times.size() - 1; i >= 0; --i) // in any order
        nearest.Add(static_cast<std::size_t>(i), times[i]);
    QCOMPARE(nearest.Of(0), static_cast<std::size_t>(record));
    QCOMPARE(nearest.Of(2), static_cast<std::size_t>(record));
    QCOMPARE(nearest.Of(3), ZrNearestRecords::None);
    QCOMPARE(
        ZrRecordTimes(Records({times.begin(), times.end()})).Nearest(time), static_cast<std::size_t>(record));
}

void tst_ZrNearestRecords::asTheTableOfAll()
{
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        const std::vector<double> times = LogTimes(random, static_cast<int>(random() % 60));
        std::vector<double> asked;
        for (int i = 0; i < 20; ++i)
            asked.push_back(start - 500.0 + static_cast<double>(random() % 20000) / 10.0);
        ZrNearestRecords nearest(asked);
        for (std::size_t i = 0; i < times.size(); ++i)
            nearest.Add(i, times[i]);
        const ZrRecordTimes table(Records(times));
        for (std::size_t i = 0; i < asked.size(); ++i)
            QCOMPARE(std::min(nearest.Of(i), times.size()), table.Nearest(asked[i]));
    }
}

void tst_ZrNearestRecords::aroundIsEnough()
{
    std::mt19937 random(5);
    std::size_t read = 0;
    std::size_t all = 0;
    for (int round = 0; round < 300; ++round) {
        const std::vector<double> times = LogTimes(random, 1000);
        const ZrSteadyTime steady(times);
        std::vector<double> asked{unknown};
        for (int i = 0; i < 5; ++i)
            asked.push_back(start - 500.0 + static_cast<double>(random() % 30000) / 10.0);
        ZrNearestRecords nearest(asked);
        std::size_t last = 0;
        for (const ZrRecordsAround::Range& range : ZrRecordsAround::Of(&steady, times.size(), asked)) {
            QVERIFY(range.first < range.end && range.end <= times.size());
            QVERIFY(last == 0 || range.first > last); // ascending and apart
            last = range.end;
            for (std::size_t i = range.first; i < range.end; ++i)
                nearest.Add(i, times[i]);
            read += range.end - range.first;
        }
        all += times.size();
        const ZrRecordTimes table(Records(times));
        for (std::size_t i = 0; i < asked.size(); ++i)
            QCOMPARE(std::min(nearest.Of(i), times.size()), table.Nearest(asked[i]));
    }
    QVERIFY2(read < all / 4, qPrintable(QString::number(read)));
}

void tst_ZrNearestRecords::aroundIsLittle()
{
    std::vector<double> times;
    for (int i = 0; i < 100000; ++i)
        times.push_back(start + i * 0.1);
    const ZrSteadyTime steady(times);
    const std::vector<ZrRecordsAround::Range> ranges
        = ZrRecordsAround::Of(&steady, times.size(), {start + 5000.0, start + 5000.2, start + 7.0, unknown});
    QCOMPARE(ranges.size(), std::size_t(2));
    for (const ZrRecordsAround::Range& range : ranges)
        QVERIFY(range.end - range.first < 100);
    QVERIFY(ZrRecordsAround::Of(&steady, times.size(), {}).empty());
    QVERIFY(ZrRecordsAround::Of(&steady, times.size(), {unknown}).empty());
    QVERIFY(ZrRecordsAround::Of(nullptr, 0, {start}).empty());
}

void tst_ZrNearestRecords::aroundIsAll()
{
    const std::vector<double> times{start, start + 1.0, start + 2.0};
    const ZrSteadyTime steady(times);
    const ZrSteadyTime timeless(std::vector<double>{unknown, unknown, unknown});
    const auto isAll = [](const std::vector<ZrRecordsAround::Range>& ranges) {
        return ranges.size() == 1 && ranges[0].first == 0 && ranges[0].end == 3;
    };
    QVERIFY(isAll(ZrRecordsAround::Of(nullptr, 3, {start})));
    QVERIFY(isAll(ZrRecordsAround::Of(&timeless, 3, {start})));
    const ZrSteadyTime other(std::vector<double>{start, start});
    QVERIFY(isAll(ZrRecordsAround::Of(&other, 3, {start})));
    for (const double nowhere : {infinite, -infinite, 1e300, -62135596800.0})
        QVERIFY(isAll(ZrRecordsAround::Of(&steady, 3, {nowhere})));
}

QTEST_GUILESS_MAIN(tst_ZrNearestRecords)
#include "tst_ZrNearestRecords.moc"
