// ZrDataset: finding records by their time, held against a second statement of the same rule.

#include "ZrDatasetFixture.h"

#include <cmath>

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double inf = std::numeric_limits<double>::infinity();

/// The rule, written as a choice among candidates instead of a walk.
int ModelPos(const std::vector<double>& times, double t)
{
    if (times.empty() || t < times.front())
        return 0;
    const int n = int(times.size());
    if (t > times.back())
        return n - 1;
    const double step = (times.back() - times.front()) / n;
    const double estimate = std::floor((t - times.front()) / step + 0.5);
    if (std::isnan(estimate) || estimate >= n)
        return 0;
    // The records from the estimate towards t, up to and including the first one beyond it.
    const int start = int(estimate);
    std::vector<int> candidates;
    bool passed = false;
    if (times[std::size_t(start)] >= t) {
        for (int i = start; i >= 0 && !passed; --i) {
            candidates.push_back(i);
            passed = times[std::size_t(i)] < t;
        }
    } else {
        for (int i = start; i < n && !passed; ++i) {
            candidates.push_back(i);
            passed = times[std::size_t(i)] > t;
        }
    }
    if (!passed)
        return 0;
    const auto distance = [&](int i) {
        const double d = std::fabs(times[std::size_t(i)] - t);
        return std::isnan(d) ? inf : d;
    };
    return *std::min_element(
        candidates.begin(), candidates.end(), [&](int a, int b) { return distance(a) < distance(b); });
}

/// Random numbers that are the same on every system.
class Random
{
public:
    explicit Random(quint32 seed)
        : m_state(seed)
    {
    }

    /// From 0 to \p below - 1.
    quint32 Number(quint32 below)
    {
        m_state = m_state * 6364136223846793005ull + 1442695040888963407ull;
        return quint32(m_state >> 33) % below;
    }

    /// From 0 up to 1, in 2^20 steps.
    double Fraction() { return Number(1u << 20) / double(1u << 20); }

private:
    quint64 m_state;
};

/// A table of one of several kinds.
std::vector<double> RandomTimes(Random& random, int kind)
{
    const int count = 1 + int(random.Number(60));
    std::vector<double> times;
    double time = kind % 2 ? 1602049684.592 : -3.0;
    for (int i = 0; i < count; ++i) {
        times.push_back(time);
        switch (kind) {
        case 0:
            time += 1.0;
            break; // uniform
        case 1:
            time += 0.1;
            break;
        case 2:
            time += random.Fraction();
            break; // jitter
        case 3:
            time += random.Number(8) ? 0.04 : 600.0;
            break; // gaps
        case 4:
            time += random.Number(3) ? 0.0 : 1.0;
            break; // equal times
        case 5:
            break; // all equal
        case 6:
            time += random.Fraction() - 0.4;
            break; // not sorted
        case 7:
            time = random.Number(6) ? 1602049684.0 + i : notANumber;
            break;
        case 8:
            time += std::ldexp(1.0, int(random.Number(40)) - 20);
            break; // all sizes
        default:
            time = random.Number(9) ? time + 1.0 : (random.Number(2) ? inf : -inf);
            break;
        }
    }
    return times;
}

/// Times worth asking for: those of the records, halfway between, beside, beyond.
std::vector<double> Questions(Random& random, const std::vector<double>& times)
{
    std::vector<double> questions{notANumber, inf, -inf, 0.0, -0.0, 1e300, -1e300, times.front() - 1.0,
        times.back() + 1.0, std::nextafter(times.back(), -inf), std::nextafter(times.front(), inf)};
    for (std::size_t i = 0; i < times.size(); ++i) {
        questions.push_back(times[i]);
        questions.push_back(std::nextafter(times[i], inf));
        questions.push_back(std::nextafter(times[i], -inf));
        if (i > 0)
            questions.push_back((times[i] + times[i - 1]) / 2.0);
        questions.push_back(times.front() + (times.back() - times.front()) * random.Fraction());
    }
    return questions;
}

} // namespace

class tst_ZrDatasetTime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void handWorked_data();
    void handWorked();
    void agreesWithTheModel_data();
    void agreesWithTheModel();
    void longTable();
    void findsTheNearestInAUniformTable();
    void seekToTimeTakesExactMatchesOnly();
    void seekToTimeLooksOnwardsOnly();
    void seekToTimeStopsAtALaterTime();
    void seekToTimeOfEqualTimes();
    void seekToTimeNeedsACurrentRecord();
    void seekToTimeOfNoNumber();
};

void tst_ZrDatasetTime::handWorked_data()
{
    QTest::addColumn<QVector<double>>("times");
    QTest::addColumn<double>("t");
    QTest::addColumn<int>("record");
    const QVector<double> four{0.0, 10.0, 20.0, 30.0}; // step 30 / 4 = 7.5
    QTest::newRow("no records") << QVector<double>() << 5.0 << 0;
    QTest::newRow("before the first") << four << -0.1 << 0;
    QTest::newRow("at the first") << four << 0.0 << 0;
    QTest::newRow("near the first") << four << 4.0 << 0; // 4 / 7.5 + 0.5 = 1.03: from 1 back
    QTest::newRow("halfway, walking back") << four << 5.0 << 1; // from 1: 5, then 5 again does not replace
    QTest::newRow("halfway, walking on") << QVector<double>{0.0, 10.0, 30.0} << 10.0 << 1;
    QTest::newRow("at the second") << four << 10.0 << 1;
    QTest::newRow("at the third") << four << 20.0 << 2; // 20 / 7.5 + 0.5 = 3.2: from 3 back
    QTest::newRow("nearer to the last") << four << 26.0 << 3; // 26 / 7.5 + 0.5 = 3.97
    // 26.25 / 7.5 + 0.5 = 4: from here on the estimate lies behind the table.
    QTest::newRow("estimate behind the table") << four << 26.25 << 0;
    QTest::newRow("just before the last") << four << 29.9 << 0;
    QTest::newRow("at the last") << four << 30.0 << 0;
    QTest::newRow("after the last") << four << 30.1 << 3;
    QTest::newRow("one record, before") << QVector<double>{5.0} << 4.0 << 0;
    QTest::newRow("one record, at") << QVector<double>{5.0} << 5.0 << 0;
    QTest::newRow("one record, after") << QVector<double>{5.0} << 6.0 << 0;
    QTest::newRow("two records, between") << QVector<double>{0.0, 10.0} << 7.0 << 1; // 7 / 5 + 0.5 = 1.9
    QTest::newRow("two records, estimate behind") << QVector<double>{0.0, 10.0} << 7.5 << 0;
    QTest::newRow("two records, at the last") << QVector<double>{0.0, 10.0} << 10.0 << 0;
    QTest::newRow("equal times, at") << QVector<double>{5.0, 5.0, 5.0} << 5.0 << 0;
    QTest::newRow("equal times, after") << QVector<double>{5.0, 5.0, 5.0} << 5.5 << 2;
    QTest::newRow("not a number") << four << notANumber << 0;
    QTest::newRow("infinitely late") << four << inf << 3;
    QTest::newRow("infinitely early") << four << -inf << 0;
    QTest::newRow("first is no number") << QVector<double>{notANumber, 1.0, 2.0} << 1.0 << 0;
    QTest::newRow("first is no number, after") << QVector<double>{notANumber, 1.0, 2.0} << 3.0 << 2;
    QTest::newRow("last is no number") << QVector<double>{0.0, 1.0, notANumber} << 1.0 << 0;
    QTest::newRow("one between is no number") << QVector<double>{0.0, notANumber, 2.0, 3.0, 4.0} << 1.9 << 2;
    // 20 / (130 / 5) + 0.5 = 1.27: from 1 on over the gap.
    QTest::newRow("gap, walking on") << QVector<double>{0.0, 1.0, 2.0, 100.0, 130.0} << 20.0 << 2;
    // 90 / 26 + 0.5 = 3.96
    QTest::newRow("gap, walking back") << QVector<double>{0.0, 1.0, 2.0, 100.0, 130.0} << 90.0 << 3;
    // Halfway in the gap, 51: 2.46, from 2 on: the first of equal differences.
    QTest::newRow("gap, halfway") << QVector<double>{0.0, 1.0, 2.0, 100.0, 130.0} << 51.0 << 2;
    QTest::newRow("span that underflows") << QVector<double>{0.0, 0.0, 5e-324} << 0.0 << 0;
    QTest::newRow("span that overflows") << QVector<double>{-1.7e308, 0.0, 1.7e308} << 1.0 << 1;
    QTest::newRow("descending") << QVector<double>{30.0, 20.0, 10.0} << 20.0 << 0;
    QTest::newRow("descending, late") << QVector<double>{30.0, 20.0, 10.0} << 40.0 << 2;
}

void tst_ZrDatasetTime::handWorked()
{
    QFETCH(QVector<double>, times);
    QFETCH(double, t);
    QFETCH(int, record);
    ZrDataset dataset;
    SetTimes(dataset, {times.begin(), times.end()});
    QCOMPARE(dataset.PosFromTime(t), record);
    QCOMPARE(ModelPos({times.begin(), times.end()}, t), record); // the model is held to the same
}

void tst_ZrDatasetTime::agreesWithTheModel_data()
{
    QTest::addColumn<int>("kind");
    const char* const names[] = {"uniform", "uniform tenths", "jitter", "gaps", "equal times", "all equal",
        "not sorted", "no numbers among", "all sizes", "infinities among"};
    for (int kind = 0; kind < 10; ++kind)
        QTest::newRow(names[kind]) << kind;
}

void tst_ZrDatasetTime::agreesWithTheModel()
{
    QFETCH(int, kind);
    Random random(quint32(kind) + 7);
    ZrDataset dataset;
    for (int table = 0; table < 400; ++table) {
        const std::vector<double> times = RandomTimes(random, kind);
        SetTimes(dataset, times);
        for (double t : Questions(random, times)) {
            const int found = dataset.PosFromTime(t);
            const int expected = ModelPos(times, t);
            if (found != expected)
                QFAIL(qPrintable(QStringLiteral("table %1 of %2 records, time %3: %4 instead of %5")
                                     .arg(table)
                                     .arg(times.size())
                                     .arg(t, 0, 'g', 17)
                                     .arg(found)
                                     .arg(expected)));
        }
    }
}

void tst_ZrDatasetTime::longTable()
{
    std::vector<double> times;
    Random random(3);
    double time = 1602049684.592;
    for (int i = 0; i < 200000; ++i) {
        times.push_back(time);
        time += 0.1 + (random.Number(10000) ? 0.0 : 50.0);
    }
    ZrDataset dataset;
    SetTimes(dataset, times);
    for (int i = 0; i < 300; ++i) {
        const double t = times.front() + (times.back() - times.front()) * random.Fraction();
        QCOMPARE(dataset.PosFromTime(t), ModelPos(times, t));
    }
}

void tst_ZrDatasetTime::findsTheNearestInAUniformTable()
{
    // Up to half a step of the estimate before the end, the result is plainly the nearest record.
    std::vector<double> times;
    for (int i = 0; i < 1000; ++i)
        times.push_back(100.0 + i);
    ZrDataset dataset;
    SetTimes(dataset, times);
    for (int i = 0; i < 998; ++i) {
        QCOMPARE(dataset.PosFromTime(100.0 + i), i);
        QCOMPARE(dataset.PosFromTime(100.25 + i), i);
        QCOMPARE(dataset.PosFromTime(100.75 + i), i + 1);
    }
    QCOMPARE(dataset.PosFromTime(1099.0), 0); // exactly the last
    QCOMPARE(dataset.PosFromTime(std::nextafter(1099.0, inf)), 999);
}

void tst_ZrDatasetTime::seekToTimeTakesExactMatchesOnly()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0, 2.5, 4.0, 1602049684.592});
    dataset.curRec = 0;
    for (double t : {0.5, 2.0, std::nextafter(2.5, inf), std::nextafter(2.5, -inf), 1e10, -1.0}) {
        QVERIFY(!dataset.SeekToTime(t));
        QCOMPARE(dataset.curRec, 0);
    }
    QVERIFY(dataset.SeekToTime(2.5));
    QCOMPARE(dataset.curRec, 1);
    QVERIFY(dataset.SeekToTime(2.5)); // the current record counts
    QCOMPARE(dataset.curRec, 1);
    QVERIFY(dataset.SeekToTime(1602049684.592));
    QCOMPARE(dataset.curRec, 3);
}

void tst_ZrDatasetTime::seekToTimeLooksOnwardsOnly()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0, 2.0, 3.0});
    dataset.curRec = 2;
    QVERIFY(!dataset.SeekToTime(1.0));
    QVERIFY(!dataset.SeekToTime(2.0));
    QCOMPARE(dataset.curRec, 2);
    QVERIFY(dataset.SeekToTime(3.0));
    QVERIFY(!dataset.SeekToTime(4.0)); // the end of the table
    QCOMPARE(dataset.curRec, 2);
}

void tst_ZrDatasetTime::seekToTimeStopsAtALaterTime()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0, 5.0, 3.0, 7.0});
    dataset.curRec = 0;
    QVERIFY(!dataset.SeekToTime(3.0)); // 5 comes first
    QCOMPARE(dataset.curRec, 0);
    dataset.curRec = 2;
    QVERIFY(dataset.SeekToTime(3.0));
    QCOMPARE(dataset.curRec, 2);
}

void tst_ZrDatasetTime::seekToTimeOfEqualTimes()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0, 2.0, 2.0, 2.0, 3.0});
    dataset.curRec = 0;
    QVERIFY(dataset.SeekToTime(2.0));
    QCOMPARE(dataset.curRec, 1);
    dataset.curRec = 3;
    QVERIFY(dataset.SeekToTime(2.0));
    QCOMPARE(dataset.curRec, 3);
}

void tst_ZrDatasetTime::seekToTimeNeedsACurrentRecord()
{
    ZrDataset dataset;
    QVERIFY(!dataset.SeekToTime(0.0));
    SetTimes(dataset, {1.0, 2.0});
    for (int outside : {-1, 2, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        dataset.curRec = outside;
        QVERIFY(!dataset.SeekToTime(1.0));
        QCOMPARE(dataset.curRec, outside);
    }
}

void tst_ZrDatasetTime::seekToTimeOfNoNumber()
{
    ZrDataset dataset;
    SetTimes(dataset, {notANumber, 2.0, notANumber, 4.0});
    dataset.curRec = 0;
    QVERIFY(!dataset.SeekToTime(notANumber));
    QCOMPARE(dataset.curRec, 0);
    QVERIFY(dataset.SeekToTime(2.0)); // a record that has no time is neither equal nor later
    QCOMPARE(dataset.curRec, 1);
    QVERIFY(dataset.SeekToTime(4.0));
    QCOMPARE(dataset.curRec, 3);
}

QTEST_GUILESS_MAIN(tst_ZrDatasetTime)
#include "tst_ZrDatasetTime.moc"
