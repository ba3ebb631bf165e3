// The clock of playback: rates, gaps, loops, steps, stalls and drift.

#include "ZrKit/review/ZrPlayClock.h"

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

/// A clock that plays from \p start on, whose first reading was 0.
ZrPlayClock Playing(double length, double rate = 1.0)
{
    ZrPlayClock clock;
    clock.SetRange(start, start + length);
    clock.SetRate(rate);
    clock.Play();
    clock.Advance(0.0);
    return clock;
}

/// Sixty readings a second up to \p end.
ZrPlayClock::eMove Run(ZrPlayClock& clock, double begin, double end)
{
    ZrPlayClock::eMove move = ZrPlayClock::Still;
    for (int i = 1; begin + i / 60.0 <= end + 1e-9; ++i)
        move = clock.Advance(begin + i / 60.0);
    return move;
}

bool Near(double a, double b, double most = 1e-6)
{
    return std::fabs(a - b) <= most;
}

} // namespace

class tst_ZrPlayClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutRange_data();
    void withoutRange();
    void playsAtEachRate_data();
    void playsAtEachRate();
    void listOfRates();
    void fasterAndSlower();
    void ratesAreBounded();
    void noDrift();
    void rateChangedWhilePlaying();
    void endsStop();
    void playFromTheEnd();
    void gapsAreSkipped();
    void gapsAreSkippedBackwards();
    void gapsArePlayed();
    void gapSwitchedWhilePlaying();
    void fromInsideAGap();
    void loop();
    void loopBackwards();
    void loopAcrossAGap();
    void loopInsideAGap();
    void loopsThatAreNone();
    void positionOutsideTheLoop();
    void rangeChanges();
    void stallDoesNotBurst();
    void pauseDoesNotBurst();
    void absurdReadings();
    void rateReached();
    void rateReachedOverGaps();
    void setTime();
    void stepByRecord();
    void stepStaysInTheRange();
    void stepBySeconds();
    void anything();
};

void tst_ZrPlayClock::withoutRange_data()
{
    QTest::addColumn<double>("begin");
    QTest::addColumn<double>("end");
    QTest::newRow("not a number") << unknown << unknown;
    QTest::newRow("half") << start << unknown;
    QTest::newRow("endless") << -inf << inf;
}

void tst_ZrPlayClock::withoutRange()
{
    QFETCH(double, begin);
    QFETCH(double, end);
    ZrPlayClock never;
    ZrPlayClock clock = Playing(10.0);
    clock.SetRange(begin, end);
    for (ZrPlayClock* none : {&never, &clock}) {
        none->Play();
        QVERIFY(!none->IsPlaying());
        QCOMPARE(none->Advance(1.0), ZrPlayClock::Still);
        QVERIFY(std::isnan(none->Time()));
        QVERIFY(!none->SetTime(5.0));
        QVERIFY(!none->SetLoop(1.0, 2.0));
        QVERIFY(!none->Step(Times{1, 2, 3}, 1));
        QVERIFY(!none->StepSeconds(1.0));
        QCOMPARE(none->RateReached(), 0.0);
    }
}

void tst_ZrPlayClock::playsAtEachRate_data()
{
    QTest::addColumn<double>("rate");
    for (const double rate : ZrPlayClock::Rates()) {
        QTest::newRow(qPrintable(QString::number(rate))) << rate;
        QTest::newRow(qPrintable(QString::number(-rate))) << -rate;
    }
}

void tst_ZrPlayClock::playsAtEachRate()
{
    QFETCH(double, rate);
    ZrPlayClock clock = Playing(10000.0, rate);
    clock.SetTime(start + 5000.0);
    QCOMPARE(Run(clock, 0.0, 10.0), ZrPlayClock::Moved);
    QVERIFY(Near(clock.Time(), start + 5000.0 + 10.0 * rate));
    QVERIFY(Near(clock.RateReached(), rate, 1e-4));
}

void tst_ZrPlayClock::listOfRates()
{
    const zr::span<const double> rates = ZrPlayClock::Rates();
    QCOMPARE(rates[0], 0.1);
    QCOMPARE(rates[rates.size() - 1], 50.0);
    QVERIFY(std::is_sorted(rates.begin(), rates.end()));
    QVERIFY(std::find(rates.begin(), rates.end(), 1.0) != rates.end());
}

void tst_ZrPlayClock::fasterAndSlower()
{
    ZrPlayClock clock;
    Times up;
    for (int i = 0; i < 8; ++i) {
        clock.Faster();
        up.push_back(clock.Rate());
    }
    QCOMPARE(up, (Times{2, 5, 10, 20, 50, 50, 50, 50}));
    for (int i = 0; i < 20; ++i)
        clock.Slower();
    QCOMPARE(clock.Rate(), 0.1);
    clock.SetRate(-3.0);
    clock.Faster();
    QCOMPARE(clock.Rate(), -5.0);
    clock.SetRate(-3.0);
    clock.Slower();
    QCOMPARE(clock.Rate(), -2.0);
    clock.Reverse();
    QCOMPARE(clock.Rate(), 2.0);
}

void tst_ZrPlayClock::ratesAreBounded()
{
    ZrPlayClock clock;
    clock.SetRate(1e9);
    QCOMPARE(clock.Rate(), 50.0);
    clock.SetRate(-1e9);
    QCOMPARE(clock.Rate(), -50.0);
    clock.SetRate(1e-9);
    QCOMPARE(clock.Rate(), 0.1);
    for (const double absurd : {0.0, -0.0, unknown, inf, -inf})
        clock.SetRate(absurd);
    QCOMPARE(clock.Rate(), 0.1);
}

void tst_ZrPlayClock::noDrift()
{
    // Ten hours of 60 frames whose readings are rounded to nanoseconds, over gaps.
    ZrPlayClock clock = Playing(1e6, 10.0);
    Times times;
    for (int i = 0; i <= 2000; ++i)
        times.push_back(start + i * 500.0 + (i % 2) * 100.0);
    clock.SetGaps(ZrGaps(times, 550.0));
    double now = 0.0;
    for (int i = 1; i <= 600 * 60; ++i) {
        now = std::floor(i / 60.0 * 1e9) / 1e9;
        clock.Advance(now);
    }
    const ZrGaps gaps(times, 550.0);
    QVERIFY(Near(gaps.Cut(clock.Time()), start + 10.0 * now, 1e-5));
}

void tst_ZrPlayClock::rateChangedWhilePlaying()
{
    ZrPlayClock clock = Playing(1000.0);
    Run(clock, 0.0, 10.0);
    clock.SetRate(5.0);
    Run(clock, 10.0, 20.0);
    QVERIFY(Near(clock.Time(), start + 60.0));
    clock.Reverse();
    Run(clock, 20.0, 22.0);
    QVERIFY(Near(clock.Time(), start + 50.0));
}

void tst_ZrPlayClock::endsStop()
{
    ZrPlayClock clock = Playing(1.0);
    QCOMPARE(clock.Advance(0.9), ZrPlayClock::Moved);
    QCOMPARE(clock.Advance(1.5), ZrPlayClock::Ended);
    QCOMPARE(clock.Time(), start + 1.0);
    QVERIFY(!clock.IsPlaying());
    QCOMPARE(clock.Advance(2.0), ZrPlayClock::Still);
    clock.Reverse();
    clock.Play();
    clock.Advance(3.0);
    clock.Advance(3.5);
    QCOMPARE(clock.Advance(4.25), ZrPlayClock::Ended);
    QCOMPARE(clock.Time(), start);
}

void tst_ZrPlayClock::playFromTheEnd()
{
    ZrPlayClock clock = Playing(100.0);
    clock.Pause();
    clock.SetTime(start + 100.0);
    clock.Play();
    QCOMPARE(clock.Time(), start);
    clock.Pause();
    clock.SetRate(-1.0);
    clock.Play();
    QCOMPARE(clock.Time(), start + 100.0);
    ZrPlayClock single = Playing(0.0);
    QCOMPARE(single.Advance(0.1), ZrPlayClock::Ended);
    QCOMPARE(single.Time(), start);
}

void tst_ZrPlayClock::gapsAreSkipped()
{
    ZrPlayClock clock = Playing(100.0);
    clock.SetGaps(ZrGaps(Times{start, start + 2, start + 50, start + 52, start + 98, start + 100}));
    QCOMPARE(clock.Advance(1.0), ZrPlayClock::Moved);
    QVERIFY(Near(clock.Time(), start + 1));
    QCOMPARE(clock.Advance(2.0), ZrPlayClock::Moved);
    QVERIFY(Near(clock.Time(), start + 2));
    clock.Advance(2.5);
    QVERIFY(Near(clock.Time(), start + 50.5));
    clock.Advance(3.5);
    clock.Advance(4.5);
    QVERIFY(Near(clock.Time(), start + 98.5));
    clock.Advance(5.5);
    QCOMPARE(clock.Advance(6.5), ZrPlayClock::Ended);
}

void tst_ZrPlayClock::gapsAreSkippedBackwards()
{
    ZrPlayClock clock = Playing(100.0, -1.0);
    clock.SetGaps(ZrGaps(Times{start, start + 2, start + 98, start + 100}));
    clock.Advance(1.0);
    QVERIFY(Near(clock.Time(), start + 99));
    clock.Advance(2.0);
    clock.Advance(3.0);
    QVERIFY(Near(clock.Time(), start + 1));
    QCOMPARE(clock.Advance(4.0), ZrPlayClock::Ended);
}

void tst_ZrPlayClock::gapsArePlayed()
{
    ZrPlayClock clock = Playing(100.0);
    clock.SetGaps(ZrGaps(Times{start, start + 2, start + 98, start + 100}));
    clock.SetSkipGaps(false);
    QVERIFY(!clock.SkipsGaps());
    Run(clock, 0.0, 50.0);
    QVERIFY(Near(clock.Time(), start + 50));
}

void tst_ZrPlayClock::gapSwitchedWhilePlaying()
{
    ZrPlayClock clock = Playing(100.0);
    clock.SetSkipGaps(false);
    clock.SetGaps(ZrGaps(Times{start, start + 2, start + 90, start + 100}, 50.0));
    Run(clock, 0.0, 10.0);
    QVERIFY(Near(clock.Time(), start + 10));
    clock.SetSkipGaps(true);
    QVERIFY(Near(clock.Time(), start + 10));
    Run(clock, 10.0, 11.0);
    QVERIFY(Near(clock.Time(), start + 91));
}

void tst_ZrPlayClock::fromInsideAGap()
{
    for (const double rate : {1.0, -1.0}) {
        ZrPlayClock clock = Playing(100.0, rate);
        clock.SetGaps(ZrGaps(Times{start, start + 10, start + 90, start + 100}, 50.0));
        QVERIFY(clock.SetTime(start + 50));
        QCOMPARE(clock.Time(), start + 50);
        clock.Advance(1.0);
        QVERIFY(Near(clock.Time(), rate > 0 ? start + 91 : start + 9));
    }
}

void tst_ZrPlayClock::loop()
{
    ZrPlayClock clock = Playing(100.0);
    QVERIFY(clock.SetLoop(start + 4, start)); // any order
    QCOMPARE(clock.LoopBegin(), start);
    QCOMPARE(clock.LoopEnd(), start + 4);
    Run(clock, 0.0, 3.5);
    QCOMPARE(clock.Advance(4.25), ZrPlayClock::Jumped);
    QVERIFY(Near(clock.Time(), start + 0.25)); // not a moment is lost
    QCOMPARE(clock.Advance(4.5), ZrPlayClock::Moved);
    QVERIFY(Near(clock.Time(), start + 0.5));
    Run(clock, 4.5, 4.5 + 4000.0);
    QVERIFY(Near(clock.Time(), start + 0.5, 1e-3));
    clock.ClearLoop();
    QVERIFY(!clock.HasLoop());
    Run(clock, 4004.5, 4014.5);
    QVERIFY(Near(clock.Time(), start + 10.5, 1e-5));
}

void tst_ZrPlayClock::loopBackwards()
{
    ZrPlayClock clock = Playing(100.0, -50.0);
    clock.SetLoop(start + 10, start + 14);
    QCOMPARE(clock.Advance(0.1), ZrPlayClock::Jumped); // from the end of the log
    QCOMPARE(clock.Time(), start + 14);
    QCOMPARE(clock.Advance(0.12), ZrPlayClock::Moved);
    QVERIFY(Near(clock.Time(), start + 13));
    QCOMPARE(clock.Advance(0.32), ZrPlayClock::Jumped); // ten seconds, two and a half rounds
    QVERIFY(Near(clock.Time(), start + 11));
}

void tst_ZrPlayClock::loopAcrossAGap()
{
    ZrPlayClock clock = Playing(100.0);
    clock.SetGaps(ZrGaps(Times{start, start + 10, start + 90, start + 100}, 50.0));
    clock.SetLoop(start + 9, start + 91);
    clock.SetTime(start + 9);
    clock.Advance(0.5);
    clock.Advance(1.5);
    QVERIFY(Near(clock.Time(), start + 90.5));
    QCOMPARE(clock.Advance(2.25), ZrPlayClock::Jumped);
    QVERIFY(Near(clock.Time(), start + 9.25));
}

void tst_ZrPlayClock::loopInsideAGap()
{
    ZrPlayClock clock = Playing(100.0);
    clock.SetGaps(ZrGaps(Times{start, start + 10, start + 90, start + 100}, 50.0));
    QVERIFY(clock.SetLoop(start + 40, start + 42));
    clock.SetTime(start + 40);
    QCOMPARE(clock.Advance(1.0), ZrPlayClock::Moved);
    QVERIFY(Near(clock.Time(), start + 41));
    QCOMPARE(clock.Advance(2.0), ZrPlayClock::Jumped);
    clock.ClearLoop(); // now gaps are skipped again
    clock.Advance(3.0);
    QVERIFY(Near(clock.Time(), start + 91));
}

void tst_ZrPlayClock::loopsThatAreNone()
{
    ZrPlayClock clock = Playing(100.0);
    QVERIFY(clock.SetLoop(start + 1, start + 2));
    QVERIFY(!clock.SetLoop(start + 5, start + 5));
    QVERIFY(!clock.SetLoop(start + 5, start + 5.0009));
    QVERIFY(!clock.SetLoop(unknown, start + 5));
    QVERIFY(!clock.SetLoop(start + 5, unknown));
    QVERIFY(!clock.SetLoop(start + 5, inf));
    QVERIFY(!clock.SetLoop(start - 1, start + 5));
    QVERIFY(!clock.SetLoop(start + 5, start + 101));
    QCOMPARE(clock.LoopBegin(), start + 1);
    QCOMPARE(clock.LoopEnd(), start + 2);
}

void tst_ZrPlayClock::positionOutsideTheLoop()
{
    ZrPlayClock clock = Playing(100.0);
    clock.SetLoop(start + 50, start + 60);
    QCOMPARE(clock.Advance(0.5), ZrPlayClock::Jumped);
    QCOMPARE(clock.Time(), start + 50);
    clock.Advance(1.0);
    QVERIFY(Near(clock.Time(), start + 50.5));
    clock.SetTime(start + 80);
    QCOMPARE(clock.Time(), start + 80); // looking elsewhere is allowed
    QCOMPARE(clock.Advance(1.5), ZrPlayClock::Jumped);
    QCOMPARE(clock.Time(), start + 50);
}

void tst_ZrPlayClock::rangeChanges()
{
    ZrPlayClock clock = Playing(100.0);
    clock.SetTime(start + 90);
    clock.SetLoop(start + 80, start + 95);
    clock.SetRange(start, start + 200); // the log has grown
    QCOMPARE(clock.Time(), start + 90);
    QVERIFY(clock.HasLoop());
    clock.SetRange(start + 50, start + 20); // in any order
    QCOMPARE(clock.Begin(), start + 20);
    QCOMPARE(clock.End(), start + 50);
    QCOMPARE(clock.Time(), start + 50);
    QVERIFY(!clock.HasLoop());
}

void tst_ZrPlayClock::stallDoesNotBurst()
{
    ZrPlayClock clock = Playing(10000.0, 2.0);
    clock.Advance(0.5);
    clock.Advance(3600.0); // the computer slept
    QVERIFY(Near(clock.Time(), start + 1.0 + 2.0));
    clock.Advance(3600.5);
    QVERIFY(Near(clock.Time(), start + 1.0 + 2.0 + 1.0));
    clock.mostStep = 0.25;
    clock.Advance(3601.5);
    QVERIFY(Near(clock.Time(), start + 4.5));
}

void tst_ZrPlayClock::pauseDoesNotBurst()
{
    ZrPlayClock clock = Playing(10000.0);
    clock.Advance(0.5);
    clock.Pause();
    QCOMPARE(clock.Advance(0.9), ZrPlayClock::Still);
    clock.Play();
    QCOMPARE(clock.Advance(1.0), ZrPlayClock::Still);
    clock.Advance(1.25);
    QVERIFY(Near(clock.Time(), start + 0.75));
}

void tst_ZrPlayClock::absurdReadings()
{
    ZrPlayClock clock = Playing(10000.0);
    clock.Advance(0.5);
    for (const double absurd : {unknown, inf, -inf})
        QCOMPARE(clock.Advance(absurd), ZrPlayClock::Still);
    QCOMPARE(clock.Advance(0.5), ZrPlayClock::Still);
    QCOMPARE(clock.Advance(-100.0), ZrPlayClock::Still); // goes on from there
    QVERIFY(Near(clock.Time(), start + 0.5));
    clock.Advance(-99.5);
    QVERIFY(Near(clock.Time(), start + 1.0));
}

void tst_ZrPlayClock::rateReached()
{
    ZrPlayClock clock = Playing(100000.0, 20.0);
    QVERIFY(std::isnan(clock.RateReached()));
    Run(clock, 0.0, 2.0);
    QVERIFY(Near(clock.RateReached(), 20.0, 1e-3));
    // Readings that come every two seconds count one second each.
    for (int i = 1; i <= 5; ++i)
        clock.Advance(2.0 + 2.0 * i);
    QVERIFY(Near(clock.RateReached(), 10.0, 1e-3));
    clock.SetRate(-20.0);
    Run(clock, 12.0, 15.0);
    QVERIFY(Near(clock.RateReached(), -20.0, 1e-3));
    clock.Pause();
    QCOMPARE(clock.RateReached(), 0.0);
}

void tst_ZrPlayClock::rateReachedOverGaps()
{
    ZrPlayClock clock = Playing(1000.0, 1.0);
    Times times;
    for (int i = 0; i <= 1000; i += 10) {
        times.push_back(start + i);
        times.push_back(start + i + 1.5);
    }
    clock.SetGaps(ZrGaps(times));
    Run(clock, 0.0, 20.0);
    QVERIFY(Near(clock.RateReached(), 1.0, 1e-3));
}

void tst_ZrPlayClock::setTime()
{
    ZrPlayClock clock = Playing(100.0);
    QVERIFY(clock.SetTime(start + 30));
    QVERIFY(clock.IsPlaying());
    QVERIFY(!clock.SetTime(unknown));
    QVERIFY(!clock.SetTime(inf));
    QCOMPARE(clock.Time(), start + 30);
    QVERIFY(clock.SetTime(start - 1));
    QCOMPARE(clock.Time(), start);
    QVERIFY(clock.SetTime(start + 1000));
    QCOMPARE(clock.Time(), start + 100);
}

void tst_ZrPlayClock::stepByRecord()
{
    ZrPlayClock clock = Playing(100.0);
    const Times records{start, start + 1, start + 1, start + 2, start + 3, start + 100};
    QVERIFY(clock.Step(records, 1));
    QVERIFY(!clock.IsPlaying());
    QCOMPARE(clock.Time(), start + 1);
    QVERIFY(clock.Step(records, 1));
    QCOMPARE(clock.Time(), start + 2); // equal times are one place
    QVERIFY(clock.Step(records, 2));
    QCOMPARE(clock.Time(), start + 100);
    QVERIFY(!clock.Step(records, 1));
    QCOMPARE(clock.Time(), start + 100);
    QVERIFY(clock.Step(records, -1));
    QCOMPARE(clock.Time(), start + 3);
    QVERIFY(clock.Step(records, -1000));
    QCOMPARE(clock.Time(), start);
    QVERIFY(!clock.Step(records, -1));
    clock.SetTime(start + 2.5); // between two
    QVERIFY(clock.Step(records, -1));
    QCOMPARE(clock.Time(), start + 2);
    QVERIFY(!clock.Step(records, 0));
    QVERIFY(clock.Step(records, std::numeric_limits<int>::max()));
    QCOMPARE(clock.Time(), start + 100);
    QVERIFY(clock.Step(records, std::numeric_limits<int>::min()));
    QCOMPARE(clock.Time(), start);
    QVERIFY(!clock.Step(Times(), 1));
    QVERIFY(!clock.Step(Times(), -1));
}

void tst_ZrPlayClock::stepStaysInTheRange()
{
    ZrPlayClock clock = Playing(10.0);
    const Times events{start - 5, start + 5, start + 50};
    QVERIFY(clock.Step(events, 5));
    QCOMPARE(clock.Time(), start + 5);
    QVERIFY(!clock.Step(events, 1));
    QVERIFY(!clock.Step(events, -1));
    QCOMPARE(clock.Time(), start + 5);
}

void tst_ZrPlayClock::stepBySeconds()
{
    ZrPlayClock clock = Playing(100.0);
    clock.SetGaps(ZrGaps(Times{start, start + 10, start + 90, start + 100}, 50.0));
    clock.SetTime(start + 9.5);
    QVERIFY(clock.StepSeconds(1.0));
    QVERIFY(!clock.IsPlaying());
    QVERIFY(Near(clock.Time(), start + 90.5));
    QVERIFY(clock.StepSeconds(-1.0));
    QVERIFY(Near(clock.Time(), start + 9.5));
    clock.SetSkipGaps(false);
    QVERIFY(clock.StepSeconds(1.0));
    QVERIFY(Near(clock.Time(), start + 10.5));
    QVERIFY(clock.StepSeconds(1e6));
    QCOMPARE(clock.Time(), start + 100);
    QVERIFY(!clock.StepSeconds(1.0));
    QVERIFY(!clock.StepSeconds(0.0));
    QVERIFY(!clock.StepSeconds(unknown));
    QVERIFY(!clock.StepSeconds(inf));
    QCOMPARE(clock.Time(), start + 100);
}

void tst_ZrPlayClock::anything()
{
    std::mt19937 random(11);
    const auto number = [&random] { return static_cast<double>(random() % 2000) / 10.0 - 50.0; };
    for (int round = 0; round < 200; ++round) {
        ZrPlayClock clock;
        clock.SetRange(0.0, 100.0);
        Times times{0.0};
        while (times.back() < 100.0)
            times.push_back(std::min(times.back() + static_cast<double>(random() % 120) / 10.0, 100.0));
        clock.SetGaps(ZrGaps(times));
        double now = 0.0;
        for (int i = 0; i < 300; ++i) {
            switch (random() % 12) {
            case 0:
                clock.SetRate(number());
                break;
            case 1:
                clock.SetTime(number());
                break;
            case 2:
                clock.SetLoop(number(), number());
                break;
            case 3:
                clock.ClearLoop();
                break;
            case 4:
                clock.SetSkipGaps(random() % 2 == 0);
                break;
            case 5:
                clock.Step(times, static_cast<int>(random() % 7) - 3);
                break;
            case 6:
                clock.StepSeconds(number());
                break;
            default:
                clock.Play();
            }
            now += static_cast<double>(random() % 100) / 100.0;
            const double before = clock.Time();
            const ZrPlayClock::eMove move = clock.Advance(now);
            QVERIFY(clock.Time() >= 0.0 && clock.Time() <= 100.0);
            if (move == ZrPlayClock::Still)
                QCOMPARE(clock.Time(), before);
            if (move == ZrPlayClock::Moved)
                QVERIFY(clock.Rate() > 0.0 ? clock.Time() >= before : clock.Time() <= before);
            if (move == ZrPlayClock::Moved && clock.SkipsGaps() && !clock.HasLoop())
                QCOMPARE(ZrGaps(times).GapAt(clock.Time()), ZrGaps(times).All().size());
            if (move == ZrPlayClock::Jumped)
                QVERIFY(clock.Time() >= clock.LoopBegin() && clock.Time() <= clock.LoopEnd());
        }
    }
}

QTEST_APPLESS_MAIN(tst_ZrPlayClock)
#include "tst_ZrPlayClock.moc"
