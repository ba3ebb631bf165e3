// Log times made to never fall, and gaps.

#include "ZrKit/review/ZrGaps.h"
#include "ZrKit/review/ZrSteadyTime.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double start = 1614780309.0;

using Times = std::vector<double>;

ZrSteadyTime Steady(const Times& times)
{
    return ZrSteadyTime(times);
}

} // namespace

Q_DECLARE_METATYPE(std::vector<double>)

class tst_ZrSteadyTime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void times_data();
    void times();
    void nothingKnown_data();
    void nothingKnown();
    void clockSetBack();
    void timeOfSeveralMoments();
    void timesOutside();
    void recordAt();
    void anyTimesAscend();
    void prepend_data();
    void prepend();
    void gaps();
    void gapsOfAbsurdThresholds();
    void cutAndWhole();
    void gapOfAMoment();
};

void tst_ZrSteadyTime::times_data()
{
    QTest::addColumn<Times>("log");
    QTest::addColumn<Times>("steady");
    QTest::addColumn<int>("runs");

    QTest::newRow("even") << Times{0, 1, 2} << Times{0, 1, 2} << 1;
    QTest::newRow("one") << Times{7} << Times{7} << 1;
    QTest::newRow("equal") << Times{7, 7, 7} << Times{7, 7, 7} << 1;
    QTest::newRow("disorder is held") << Times{10, 9.5, 9, 10.5} << Times{10, 10, 10, 10.5} << 1;
    QTest::newRow("set back") << Times{10, 8.9, 9.9} << Times{10, 10, 11} << 2;
    QTest::newRow("set back twice") << Times{10, 5, 6, 0, 1} << Times{10, 10, 11, 11, 12} << 3;
    QTest::newRow("set on again") << Times{10, 5, 6, 11} << Times{10, 10, 11, 16} << 2;
    QTest::newRow("unknown between") << Times{1, unknown, 2, inf, -inf, 3} << Times{1, 1, 2, 2, 2, 3} << 1;
    QTest::newRow("unknown in front") << Times{unknown, unknown, 5, 6} << Times{5, 5, 5, 6} << 1;
    QTest::newRow("beyond all years") << Times{1, 1e300, -1e300, 2} << Times{1, 1, 1, 2} << 1;
    QTest::newRow("before the epoch") << Times{-10, -5, 0} << Times{-10, -5, 0} << 1;
}

void tst_ZrSteadyTime::times()
{
    QFETCH(Times, log);
    QFETCH(Times, steady);
    QFETCH(int, runs);
    const ZrSteadyTime got = Steady(log);
    QCOMPARE(got.Times(), steady);
    QCOMPARE(int(got.Runs().size()), runs);
    QCOMPARE(got.Begin(), steady.front());
    QCOMPARE(got.End(), steady.back());
    QVERIFY(!got.IsEmpty());
}

void tst_ZrSteadyTime::nothingKnown_data()
{
    QTest::addColumn<Times>("log");

    QTest::newRow("empty") << Times();
    QTest::newRow("no numbers") << Times{unknown, inf, -inf};
}

void tst_ZrSteadyTime::nothingKnown()
{
    QFETCH(Times, log);
    const ZrSteadyTime steady = Steady(log);
    QVERIFY(steady.IsEmpty());
    QCOMPARE(steady.Count(), log.size());
    QVERIFY(std::isnan(steady.Begin()));
    QVERIFY(std::isnan(steady.End()));
    QVERIFY(std::isnan(steady.LogTime(5.0)));
    QVERIFY(std::isnan(steady.FromLog(5.0)));
    QCOMPARE(steady.RecordAt(5.0), log.size());
    QVERIFY(ZrGaps(steady.Times()).All().empty());
}

void tst_ZrSteadyTime::clockSetBack()
{
    // Ten seconds, then an hour back and ten more.
    Times log;
    for (int i = 0; i < 20; ++i)
        log.push_back(start + i - (i < 10 ? 0 : 3600));
    const ZrSteadyTime steady = Steady(log);
    QCOMPARE(steady.End() - steady.Begin(), 18.0); // the step at the setting has no length
    QCOMPARE(steady.LogTime(start + 8.5), start + 8.5);
    QCOMPARE(steady.LogTime(start + 9.0), start + 10 - 3600.0);
    QCOMPARE(steady.LogTime(start + 12.5), start + 13.5 - 3600);
    QCOMPARE(steady.FromLog(start + 3), start + 3);
    QCOMPARE(steady.FromLog(start + 13 - 3600), start + 12);
}

void tst_ZrSteadyTime::timeOfSeveralMoments()
{
    const ZrSteadyTime steady = Steady({100, 110, 105, 115}); // steady 100, 110, 110, 120
    QCOMPARE(steady.FromLog(107), 107.0);
    QCOMPARE(steady.FromLog(107, 100.0), 107.0);
    QCOMPARE(steady.FromLog(107, 118.0), 112.0);
    QCOMPARE(steady.FromLog(107, unknown), 107.0);
    QCOMPARE(steady.FromLog(107, inf), 107.0);
}

void tst_ZrSteadyTime::timesOutside()
{
    const ZrSteadyTime steady = Steady({100, 110, 50, 60}); // 100 110 110 120
    QCOMPARE(steady.FromLog(0), 110.0); // nearest is 50
    QCOMPARE(steady.FromLog(90), 100.0);
    QCOMPARE(steady.FromLog(70), 120.0);
    QCOMPARE(steady.FromLog(1e9), 110.0);
    QCOMPARE(steady.FromLog(inf), 110.0); // infinitely far from all, so the first
    QVERIFY(std::isnan(steady.FromLog(unknown)));
    QVERIFY(std::isnan(steady.LogTime(unknown)));
    QCOMPARE(steady.LogTime(90.0), 90.0);
    QCOMPARE(steady.LogTime(130.0), 70.0);
}

void tst_ZrSteadyTime::recordAt()
{
    const ZrSteadyTime steady = Steady({1, 2, 2, 2, 4});
    QCOMPARE(steady.RecordAt(0.0), std::size_t(0));
    QCOMPARE(steady.RecordAt(-inf), std::size_t(0));
    QCOMPARE(steady.RecordAt(1.0), std::size_t(0));
    QCOMPARE(steady.RecordAt(1.999), std::size_t(0));
    QCOMPARE(steady.RecordAt(2.0), std::size_t(3));
    QCOMPARE(steady.RecordAt(4.0), std::size_t(4));
    QCOMPARE(steady.RecordAt(inf), std::size_t(4));
    QCOMPARE(steady.RecordAt(unknown), std::size_t(5));
}

void tst_ZrSteadyTime::anyTimesAscend()
{
    std::mt19937 random(3);
    for (int round = 0; round < 200; ++round) {
        Times log;
        for (int i = 0; i < 50; ++i) {
            const unsigned kind = random() % 20;
            log.push_back(kind == 0 ? unknown
                    : kind == 1     ? inf
                                    : start + static_cast<double>(random() % 1000) / 7);
        }
        const ZrSteadyTime steady = Steady(log);
        QCOMPARE(steady.Count(), log.size());
        for (std::size_t i = 0; i < log.size(); ++i) {
            if (i > 0)
                QVERIFY(steady.Times()[i] >= steady.Times()[i - 1]);
            if (!std::isfinite(log[i]))
                continue;
            // Near its own record a time leads back to it, but for what is held.
            const double back = steady.FromLog(log[i], steady.Times()[i]);
            QVERIFY(std::fabs(back - steady.Times()[i]) <= ZrSteadyTime::Disorder);
        }
    }
}

void tst_ZrSteadyTime::prepend_data()
{
    QTest::addColumn<Times>("before");
    QTest::addColumn<Times>("steady");
    QTest::newRow("none") << Times{} << Times{};
    QTest::newRow("even") << Times{7, 8, 9} << Times{7, 8, 9};
    QTest::newRow("equal") << Times{10, 10} << Times{10, 10};
    QTest::newRow("disorder") << Times{7, 9, 8} << Times{7, 8, 8};
    QTest::newRow("clock set back between") << Times{500, 501, 8, 9} << Times{8, 8, 8, 9};
    QTest::newRow("all later") << Times{500, 501} << Times{10, 10};
    QTest::newRow("unknown") << Times{unknown, 8, inf, -inf, 1e15} << Times{8, 8, 10, 10, 10};
}

/// The records that were there keep their times.
void tst_ZrSteadyTime::prepend()
{
    QFETCH(Times, before);
    QFETCH(Times, steady);
    ZrSteadyTime times = Steady({10, 11, 5, 6});
    times.Prepend(before);
    Times all = steady;
    for (const double time : {10.0, 11.0, 11.0, 12.0})
        all.push_back(time);
    QCOMPARE(times.Times(), all);
    QCOMPARE(times.Begin(), all.front());
    QCOMPARE(times.Runs().size(), std::size_t(2));
    QCOMPARE(times.LogTime(12.0), 6.0);
    QCOMPARE(times.LogTime(all.front()), all.front());
    QCOMPARE(times.Append(7.0), 13.0);
    ZrSteadyTime none;
    none.Prepend(before);
    QVERIFY(none.IsEmpty());
    QCOMPARE(none.Count(), std::size_t(0));
}

void tst_ZrSteadyTime::gaps()
{
    const Times times{0, 1, 6, 7, 12.5, 12.5, 100};
    const ZrGaps gaps(times);
    QCOMPARE(int(gaps.All().size()), 2); // five seconds are none
    QCOMPARE(gaps.All()[0].begin, 7.0);
    QCOMPARE(gaps.All()[0].end, 12.5);
    QCOMPARE(gaps.All()[1].begin, 12.5);
    QCOMPARE(gaps.All()[1].end, 100.0);
    QCOMPARE(gaps.Sum(), 93.0);
    QCOMPARE(gaps.Sum(0, 1), 5.5);
    QCOMPARE(gaps.Sum(1, 2), 87.5);
    QCOMPARE(gaps.Sum(1, 1), 0.0);
    QCOMPARE(ZrGaps(times, 50.0).All().size(), std::size_t(1));
    QCOMPARE(ZrGaps(times, 0.0).All().size(), std::size_t(5));
}

void tst_ZrSteadyTime::gapsOfAbsurdThresholds()
{
    const Times times{0, 1, 100};
    QVERIFY(ZrGaps(times, inf).All().empty());
    QVERIFY(ZrGaps(times, unknown).All().empty());
    QVERIFY(ZrGaps(times, -1.0).All().empty());
    QVERIFY(ZrGaps(Times()).All().empty());
    QVERIFY(ZrGaps(Times{unknown, unknown}).All().empty());
}

void tst_ZrSteadyTime::cutAndWhole()
{
    const ZrGaps gaps(Times{0, 1, 11, 12, 32, 33});
    const Times whole{-5, 0, 0.5, 1, 11, 11.5, 12, 32, 33, 40};
    const Times cut{-5, 0, 0.5, 1, 1, 1.5, 2, 2, 3, 10};
    for (std::size_t i = 0; i < whole.size(); ++i)
        QCOMPARE(gaps.Cut(whole[i]), cut[i]);
    QCOMPARE(gaps.Cut(5.0), 1.0);
    QCOMPARE(gaps.Cut(31.9), 2.0);
    QCOMPARE(gaps.Whole(1.0), 1.0); // a gap is its begin
    QCOMPARE(gaps.Whole(1.5), 11.5);
    QCOMPARE(gaps.Whole(2.0), 12.0);
    QCOMPARE(gaps.Whole(2.5), 32.5);
    QCOMPARE(gaps.Whole(-5.0), -5.0);
    QCOMPARE(gaps.Whole(10.0), 40.0);
    QVERIFY(std::isnan(gaps.Cut(unknown)));
    QVERIFY(std::isnan(gaps.Whole(unknown)));
    QCOMPARE(gaps.Cut(inf), inf);
    QCOMPARE(gaps.Whole(-inf), -inf);
    QCOMPARE(ZrGaps().Cut(7.0), 7.0);
    QCOMPARE(ZrGaps().Whole(7.0), 7.0);
}

void tst_ZrSteadyTime::gapOfAMoment()
{
    const ZrGaps gaps(Times{0, 10, 20});
    QCOMPARE(gaps.GapAt(-1.0), std::size_t(2));
    QCOMPARE(gaps.GapAt(0.0), std::size_t(2));
    QCOMPARE(gaps.GapAt(5.0), std::size_t(0));
    QCOMPARE(gaps.GapAt(10.0), std::size_t(2)); // a record, between two gaps
    QCOMPARE(gaps.GapAt(19.9), std::size_t(1));
    QCOMPARE(gaps.GapAt(20.0), std::size_t(2));
    QCOMPARE(gaps.GapAt(unknown), std::size_t(2));
    QCOMPARE(gaps.From(0.0), std::size_t(0));
    QCOMPARE(gaps.From(0.1), std::size_t(1));
    QCOMPARE(gaps.From(11.0), std::size_t(2));
}

QTEST_APPLESS_MAIN(tst_ZrSteadyTime)
#include "tst_ZrSteadyTime.moc"
