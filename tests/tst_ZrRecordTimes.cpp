// The record nearest to a time, held against looking at every record.

#include "ZrKit/review/ZrRecordTimes.h"
#include "ZrLogFixture.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

std::vector<ZrLogRec> Records(const std::vector<double>& times)
{
    std::vector<ZrLogRec> recs;
    for (const double time : times) {
        recs.emplace_back();
        recs.back().time = time;
    }
    return recs;
}

/// The first record that no other is nearer than.
std::size_t BySearch(const std::vector<ZrLogRec>& recs, double time)
{
    std::size_t nearest = recs.size();
    double smallest = inf;
    for (std::size_t i = 0; i < recs.size(); ++i) {
        if (!std::isfinite(double(recs[i].time)))
            continue;
        const double distance = std::fabs(recs[i].time - time);
        if (nearest == recs.size() || distance < smallest) {
            nearest = i;
            smallest = distance;
        }
    }
    return nearest;
}

} // namespace

Q_DECLARE_METATYPE(std::vector<double>)

class tst_ZrRecordTimes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void small_data();
    void small();
    void anyOrder_data();
    void anyOrder();
    void nothingToFind();
};

void tst_ZrRecordTimes::small_data()
{
    QTest::addColumn<std::vector<double>>("times");
    QTest::addColumn<double>("time");
    QTest::addColumn<int>("nearest");
    const std::vector<double> even{10.0, 11.0, 12.0, 13.0};
    QTest::newRow("before the first") << even << 3.0 << 0;
    QTest::newRow("at the first") << even << 10.0 << 0;
    QTest::newRow("nearer to the first") << even << 10.49 << 0;
    QTest::newRow("in the middle") << even << 10.5 << 0;
    QTest::newRow("nearer to the second") << even << 10.51 << 1;
    QTest::newRow("at the last") << even << 13.0 << 3;
    QTest::newRow("behind the last") << even << 99.0 << 3;
    QTest::newRow("infinitely late") << even << inf << 3;
    QTest::newRow("infinitely early") << even << -inf << 0;
    QTest::newRow("first of equals") << std::vector<double>{1.0, 5.0, 5.0, 5.0, 9.0} << 5.0 << 1;
    QTest::newRow("first of equals before") << std::vector<double>{1.0, 5.0, 5.0, 9.0} << 6.0 << 1;
    QTest::newRow("first of equals at the end") << std::vector<double>{1.0, 5.0, 5.0} << 9.0 << 1;
    QTest::newRow("clock set back") << std::vector<double>{10.0, 20.0, 12.0, 14.0} << 12.5 << 2;
    QTest::newRow("as near on both sides") << std::vector<double>{14.0, 10.0} << 12.0 << 0;
    QTest::newRow("unknown times") << std::vector<double>{std::nan(""), inf, 3.0, -inf} << 1e9 << 2;
    QTest::newRow("one") << std::vector<double>{7.0} << -7.0 << 0;
}

void tst_ZrRecordTimes::small()
{
    QFETCH(std::vector<double>, times);
    QFETCH(double, time);
    QFETCH(int, nearest);
    QCOMPARE(ZrRecordTimes(Records(times)).Nearest(time), std::size_t(nearest));
}

void tst_ZrRecordTimes::anyOrder_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 20; ++seed)
        QTest::newRow(qPrintable(QString::number(seed))) << seed;
}

/// Few different times, so that equal ones and equal distances are common.
void tst_ZrRecordTimes::anyOrder()
{
    QFETCH(int, seed);
    std::mt19937 random(static_cast<unsigned>(seed));
    std::vector<double> times;
    for (int i = 0; i < 200; ++i)
        times.push_back(random() % 20 == 0 ? std::nan("") : static_cast<double>(random() % 100));
    if (seed % 2 == 0)
        std::sort(times.begin(), times.end());
    const std::vector<ZrLogRec> recs = Records(times);
    const ZrRecordTimes index(recs);
    for (double time = -3.0; time < 103.0; time += 0.25)
        QCOMPARE(index.Nearest(time), BySearch(recs, time));
}

void tst_ZrRecordTimes::nothingToFind()
{
    QCOMPARE(ZrRecordTimes({}).Nearest(1.0), std::size_t(0));
    const std::vector<ZrLogRec> unknown = Records({std::nan(""), inf});
    QCOMPARE(ZrRecordTimes(unknown).Nearest(1.0), std::size_t(2));
    QCOMPARE(ZrRecordTimes(Records({1.0, 2.0, 3.0})).Nearest(std::nan("")), std::size_t(3));
}

QTEST_GUILESS_MAIN(tst_ZrRecordTimes)
#include "tst_ZrRecordTimes.moc"
