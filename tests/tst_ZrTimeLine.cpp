// The time axis: places, gaps, zoom, ticks and what lies below the mouse.

#include "ZrKit/review/ZrTimeLine.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double start = 1614780309.0; // 2021-03-03T14:05:09Z

using Times = std::vector<double>;

/// Seven pixels for each character.
int Width(const QString& text)
{
    return 7 * text.size();
}

std::shared_ptr<const ZrSteadyTime> Log(const Times& times)
{
    return std::make_shared<const ZrSteadyTime>(times);
}

/// One record a second.
Times Seconds(double from, int count)
{
    Times times;
    for (int i = 0; i < count; ++i)
        times.push_back(from + i);
    return times;
}

ZrTimeLine Line(const Times& times)
{
    ZrTimeLine line;
    line.SetLog(Log(times));
    return line;
}

bool Near(double a, double b, double most = 1e-6)
{
    return std::fabs(a - b) <= most;
}

QStringList Labels(const ZrTimeLine& line, int width)
{
    QStringList labels;
    for (const ZrTimeLine::Tick& tick : line.Ticks(width, Width))
        if (!tick.label.isEmpty())
            labels << tick.label;
    return labels;
}

/// What must hold of all ticks; empty when it does.
QString Faults(const ZrTimeLine& line, int width)
{
    int free = 0;
    double lastFraction = -1.0;
    for (const ZrTimeLine::Tick& tick : line.Ticks(width, Width)) {
        if (!(tick.fraction >= -1e-9 && tick.fraction <= 1.0 + 1e-9))
            return QStringLiteral("tick at %1").arg(tick.fraction);
        if (!(tick.fraction > lastFraction))
            return QStringLiteral("tick at %1 again").arg(tick.fraction);
        lastFraction = tick.fraction;
        if (tick.label.isEmpty())
            continue;
        if (tick.labelLeft < free || tick.labelLeft + Width(tick.label) > width)
            return QStringLiteral("label %1 at %2").arg(tick.label).arg(tick.labelLeft);
        free = tick.labelLeft + Width(tick.label) + 1;
    }
    return QString();
}

} // namespace

class tst_ZrTimeLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutLog_data();
    void withoutLog();
    void wholeLog();
    void oneRecord();
    void gapsAreCutOut();
    void gapsSwitched();
    void longestStep();
    void clockSetBack();
    void zoomKeepsThePlace();
    void zoomHasLimits();
    void pan();
    void show();
    void reveal();
    void absurdMovesChangeNothing();
    void growingLog();
    void columns();
    void labels_data();
    void labels();
    void dayChanges();
    void labelsAcrossCuts();
    void ticksAtAClockSetBack();
    void ticksOfAnything();
    void ticksOfAMillionGaps();
    void cutsAreMerged();
    void hitTest();
    void gapHitTest();
    void snap();
};

void tst_ZrTimeLine::withoutLog_data()
{
    QTest::addColumn<bool>("set");
    QTest::newRow("never set") << false;
    QTest::newRow("no times known") << true;
}

void tst_ZrTimeLine::withoutLog()
{
    QFETCH(bool, set);
    ZrTimeLine line;
    if (set)
        line.SetLog(Log({unknown, unknown}));
    line.Zoom(2.0, 0.5);
    line.Pan(1.0);
    line.Show(1.0, 2.0);
    line.Reveal(1.0, 0.1);
    line.SetGapsCut(false);
    QVERIFY(std::isnan(line.Fraction(1.0)));
    QVERIFY(std::isnan(line.At(0.5)));
    QVERIFY(std::isnan(line.VisibleBegin()));
    QCOMPARE(line.Length(), 0.0);
    QVERIFY(line.Ticks(500, Width).empty());
    QVERIFY(line.Cuts(500).empty());
    QVERIFY(line.Columns(10).empty());
    QCOMPARE(line.HitTest(10, 500, Times{1, 2}, 5.0), std::size_t(2));
    QCOMPARE(line.GapHitTest(10, 500, 5.0), std::size_t(0));
    QVERIFY(std::isnan(line.Snap(10, 500, Times{1, 2}, 5.0)));
}

void tst_ZrTimeLine::wholeLog()
{
    const ZrTimeLine line = Line(Seconds(start, 101));
    QCOMPARE(line.Length(), 100.0);
    QVERIFY(line.IsAllVisible());
    QCOMPARE(line.Fraction(start), 0.0);
    QCOMPARE(line.Fraction(start + 25), 0.25);
    QCOMPARE(line.Fraction(start + 100), 1.0);
    QCOMPARE(line.Fraction(start + 200), 2.0);
    QCOMPARE(line.Fraction(start - 100), -1.0);
    QCOMPARE(line.At(0.5), start + 50);
    QCOMPARE(line.At(-3.0), start);
    QCOMPARE(line.At(inf), start + 100);
    QVERIFY(std::isnan(line.At(unknown)));
    QVERIFY(std::isnan(line.Fraction(unknown)));
}

void tst_ZrTimeLine::oneRecord()
{
    ZrTimeLine line = Line({start});
    QCOMPARE(line.Length(), 0.0);
    QCOMPARE(line.Fraction(start), 0.0);
    QCOMPARE(line.At(0.7), start);
    line.Zoom(100.0, 0.5);
    line.Pan(5.0);
    QCOMPARE(line.Fraction(start), 0.0);
    QCOMPARE(Faults(line, 400), QString());
    QCOMPARE(Labels(line, 400).value(0), QStringLiteral("2021-03-03 14:05:09.000"));
}

void tst_ZrTimeLine::gapsAreCutOut()
{
    // 10 s, a gap of 90 s, 10 s.
    Times times = Seconds(start, 11);
    for (const double time : Seconds(start + 100, 11))
        times.push_back(time);
    const ZrTimeLine line = Line(times);
    QVERIFY(line.AreGapsCut());
    QCOMPARE(line.Gaps().All().size(), std::size_t(1));
    QCOMPARE(line.Length(), 20.0);
    QCOMPARE(line.Fraction(start + 5), 0.25);
    QCOMPARE(line.Fraction(start + 10), 0.5);
    QCOMPARE(line.Fraction(start + 60), 0.5);
    QCOMPARE(line.Fraction(start + 100), 0.5);
    QCOMPARE(line.Fraction(start + 105), 0.75);
    QCOMPARE(line.At(0.5), start + 10);
    QCOMPARE(line.At(0.75), start + 105);
    const std::vector<ZrTimeLine::Cut> cuts = line.Cuts(1000);
    QCOMPARE(cuts.size(), std::size_t(1));
    QCOMPARE(cuts[0].fraction, 0.5);
    QCOMPARE(cuts[0].seconds, 90.0);
    QCOMPARE(cuts[0].gap, std::size_t(0));
}

void tst_ZrTimeLine::gapsSwitched()
{
    ZrTimeLine line = Line({start, start + 1, start + 99, start + 100});
    line.SetGapsCut(false);
    QVERIFY(line.IsAllVisible());
    QCOMPARE(line.Length(), 100.0);
    QCOMPARE(line.Fraction(start + 50), 0.5);
    QVERIFY(line.Cuts(1000).empty());
    line.Show(start + 99.2, start + 99.8);
    line.SetGapsCut(true);
    QVERIFY(Near(line.VisibleBegin(), start + 99.2));
    QVERIFY(Near(line.VisibleEnd(), start + 99.8));
    line.SetGapsCut(false);
    QVERIFY(Near(line.VisibleBegin(), start + 99.2));
    QVERIFY(Near(line.VisibleEnd(), start + 99.8));
}

void tst_ZrTimeLine::longestStep()
{
    ZrTimeLine line = Line({0, 3, 6, 20, 21});
    QCOMPARE(line.LongestStep(), 5.0);
    QCOMPARE(line.Length(), 7.0);
    line.SetLongestStep(2.5);
    QCOMPARE(line.Gaps().All().size(), std::size_t(3));
    QCOMPARE(line.Length(), 1.0);
    line.SetLongestStep(14.0);
    QCOMPARE(line.Length(), 21.0);
    for (const double absurd : {unknown, inf, -1.0})
        line.SetLongestStep(absurd);
    QCOMPARE(line.LongestStep(), 14.0);
}

void tst_ZrTimeLine::clockSetBack()
{
    Times times = Seconds(start, 11);
    for (const double time : Seconds(start - 3600, 11))
        times.push_back(time);
    const ZrTimeLine line = Line(times);
    QCOMPARE(line.Length(), 20.0);
    QCOMPARE(line.Fraction(line.Log()->FromLog(start - 3595)), 0.75);
    QCOMPARE(line.Log()->LogTime(line.At(0.75)), start - 3595);
}

void tst_ZrTimeLine::zoomKeepsThePlace()
{
    ZrTimeLine line = Line(Seconds(start, 1001));
    for (const double fraction : {0.3, 0.9, 0.5, 0.1}) {
        const double before = line.At(fraction);
        line.Zoom(1.7, fraction);
        QVERIFY(Near(line.At(fraction), before));
    }
    QVERIFY(Near(line.VisibleLength(), 1000.0 / std::pow(1.7, 4)));
    line.Zoom(1e9, 0.25);
    QVERIFY(Near(line.VisibleLength(), ZrTimeLine::Shortest, 1e-12));
}

void tst_ZrTimeLine::zoomHasLimits()
{
    ZrTimeLine line = Line(Seconds(start, 1001));
    line.Zoom(4.0, 0.0);
    QCOMPARE(line.VisibleBegin(), start);
    line.Zoom(0.5, 1.0); // the begin stops it: what is shown moves to the right
    QCOMPARE(line.VisibleBegin(), start);
    QCOMPARE(line.VisibleEnd(), start + 500);
    line.Zoom(1e-9, 0.5);
    QVERIFY(line.IsAllVisible());
}

void tst_ZrTimeLine::pan()
{
    ZrTimeLine line = Line(Seconds(start, 1001));
    line.Zoom(10.0, 0.5);
    QCOMPARE(line.VisibleBegin(), start + 450);
    line.Pan(0.5);
    QCOMPARE(line.VisibleBegin(), start + 500);
    line.Pan(-1.0);
    QCOMPARE(line.VisibleBegin(), start + 400);
    line.Pan(1e6);
    QCOMPARE(line.VisibleEnd(), start + 1000);
    QCOMPARE(line.VisibleLength(), 100.0);
    line.Pan(-1e6);
    QCOMPARE(line.VisibleBegin(), start);
    QCOMPARE(line.VisibleLength(), 100.0);
}

void tst_ZrTimeLine::show()
{
    ZrTimeLine line = Line(Seconds(start, 1001));
    line.Show(start + 300, start + 200);
    QCOMPARE(line.VisibleBegin(), start + 200);
    QCOMPARE(line.VisibleEnd(), start + 300);
    line.Show(start - 1e6, start + 1e6);
    QVERIFY(line.IsAllVisible());
    line.Show(start + 500, start + 500);
    QVERIFY(Near(line.VisibleLength(), ZrTimeLine::Shortest, 1e-12));
    QVERIFY(Near(line.At(0.5), start + 500));
    line.Show(start + 2000, start + 3000);
    QCOMPARE(line.VisibleEnd(), start + 1000);
    line.ShowAll();
    QVERIFY(line.IsAllVisible());
}

void tst_ZrTimeLine::reveal()
{
    ZrTimeLine line = Line(Seconds(start, 1001));
    line.Show(start + 400, start + 500);
    line.Reveal(start + 450, 0.1);
    QCOMPARE(line.VisibleBegin(), start + 400);
    line.Reveal(start + 495, 0.1);
    QCOMPARE(line.VisibleEnd(), start + 505);
    line.Reveal(start + 100, 0.1);
    QCOMPARE(line.VisibleBegin(), start + 90);
    line.Reveal(start, 0.1);
    QCOMPARE(line.VisibleBegin(), start);
    line.Reveal(unknown, 0.1);
    line.Reveal(start + 900, 0.7);
    QCOMPARE(line.VisibleBegin(), start);
}

void tst_ZrTimeLine::absurdMovesChangeNothing()
{
    ZrTimeLine line = Line(Seconds(start, 1001));
    line.Show(start + 400, start + 500);
    for (const double absurd : {unknown, inf, -inf}) {
        line.Zoom(absurd, 0.5);
        line.Zoom(2.0, absurd);
        line.Pan(absurd);
        line.Show(absurd, start + 450);
        line.Show(start + 450, absurd);
        line.Reveal(absurd, 0.1);
    }
    line.Zoom(0.0, 0.5);
    line.Zoom(-2.0, 0.5);
    QCOMPARE(line.VisibleBegin(), start + 400);
    QCOMPARE(line.VisibleEnd(), start + 500);
}

void tst_ZrTimeLine::growingLog()
{
    ZrTimeLine line = Line(Seconds(start, 101));
    line.SetLog(Log(Seconds(start, 201)));
    QVERIFY(line.IsAllVisible());
    QCOMPARE(line.Length(), 200.0);
    line.Show(start + 20, start + 40);
    line.SetLog(Log(Seconds(start, 301)));
    QCOMPARE(line.VisibleBegin(), start + 20);
    QCOMPARE(line.VisibleEnd(), start + 40);
    line.SetLog(nullptr);
    QVERIFY(std::isnan(line.At(0.0)));
}

void tst_ZrTimeLine::columns()
{
    Times times = Seconds(start, 11);
    times.push_back(start + 1000);
    times.push_back(start + 1010);
    ZrTimeLine line = Line(times);
    const std::vector<double> edges = line.Columns(7);
    QCOMPARE(edges.size(), std::size_t(8));
    QCOMPARE(edges.front(), start);
    QVERIFY(std::is_sorted(edges.begin(), edges.end()));
    for (std::size_t i = 0; i < edges.size(); ++i)
        QVERIFY(Near(edges[i], line.At(static_cast<double>(i) / 7.0)));
    QVERIFY(line.Columns(0).empty());
    QVERIFY(line.Columns(-5).empty());
}

void tst_ZrTimeLine::labels_data()
{
    QTest::addColumn<double>("begin");
    QTest::addColumn<double>("length");
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("expected");

    const auto S = [](const char* text) { return QString::fromLatin1(text); };
    QTest::newRow("an hour")
        << start << 3600.0 << 800
        << S("2021-03-03 14:10|14:20|14:25|14:30|14:35|14:40|14:45|14:50|14:55|15:00|15:05");
    QTest::newRow("narrow") << start << 3600.0 << 200 << S("2021-03-03 14:15|15:00");
    QTest::newRow("a minute") << start << 60.0 << 800
                              << S("2021-03-03 14:05:10|14:05:30|14:05:40|14:05:50|14:06:00");
    QTest::newRow("a tenth of a second")
        << start << 0.1 << 800 << S("2021-03-03 14:05:09.00|14:05:09.04|14:05:09.06|14:05:09.08|14:05:09.10");
    QTest::newRow("five days") << start << 432000.0 << 600
                               << S("2021-03-04|2021-03-05|2021-03-06|2021-03-07|2021-03-08");
    QTest::newRow("before the epoch") << -7200.0 << 3600.0 << 300 << S("1969-12-31 22:00|22:30|22:40|22:50");
}

void tst_ZrTimeLine::labels()
{
    QFETCH(double, begin);
    QFETCH(double, length);
    QFETCH(int, width);
    QFETCH(QString, expected);
    ZrTimeLine line = Line({begin, begin + length});
    line.SetGapsCut(false);
    QCOMPARE(Faults(line, width), QString());
    QCOMPARE(Labels(line, width).join(QLatin1Char('|')), expected);
}

void tst_ZrTimeLine::dayChanges()
{
    ZrTimeLine line = Line({1614808800.0, 1614808800.0 + 4 * 3600}); // 2021-03-03 22:00 to 02:00
    line.SetGapsCut(false);
    QCOMPARE(Labels(line, 900).join(QLatin1Char('|')),
        QStringLiteral(
            "2021-03-03 22:00|22:45|23:00|23:15|23:30|2021-03-04 00:00|00:30|00:45|01:00|01:15|01:30|01:45"));
    int days = 0;
    for (const ZrTimeLine::Tick& tick : line.Ticks(900, Width))
        days += tick.newDay ? 1 : 0;
    QCOMPARE(days, 2);
}

void tst_ZrTimeLine::labelsAcrossCuts()
{
    // Ten minutes on each of three days.
    Times times;
    for (int day = 0; day < 3; ++day)
        for (const double time : Seconds(start + day * 86400.0, 601))
            times.push_back(time);
    const ZrTimeLine line = Line(times);
    QCOMPARE(line.Length(), 1800.0);
    QCOMPARE(Faults(line, 1200), QString());
    const QStringList labels = Labels(line, 1200);
    for (const char* day : {"2021-03-03 ", "2021-03-04 ", "2021-03-05 "})
        QCOMPARE(labels.filter(QLatin1String(day)).size(), 1);
    for (const ZrTimeLine::Tick& tick : line.Ticks(1200, Width)) {
        QCOMPARE(line.Gaps().GapAt(tick.steady), line.Gaps().All().size());
        QVERIFY(Near(line.Fraction(tick.steady), tick.fraction));
    }
}

void tst_ZrTimeLine::ticksAtAClockSetBack()
{
    Times times = Seconds(start, 601);
    for (const double time : Seconds(start - 1800, 601))
        times.push_back(time);
    const ZrTimeLine line = Line(times);
    QCOMPARE(Faults(line, 1000), QString());
    QCOMPARE(Labels(line, 1000).join(QLatin1Char('|')),
        QStringLiteral("2021-03-03 "
                       "14:06|14:08|14:09|14:10|14:11|14:12|14:13|14:14|14:15|13:36|13:37|13:38|13:39|13:40|"
                       "13:41|13:42|13:43|13:44"));
}

void tst_ZrTimeLine::ticksOfAnything()
{
    std::mt19937 random(7);
    for (int round = 0; round < 400; ++round) {
        Times times{start};
        for (unsigned i = random() % 40; i > 0; --i) {
            const double step = std::pow(10.0, static_cast<double>(random() % 80) / 10.0 - 2.0);
            times.push_back(times.back() + (random() % 8 == 0 ? -step : step));
        }
        ZrTimeLine line = Line(times);
        line.SetGapsCut(random() % 2 == 0);
        for (int i = 0; i < 4; ++i) {
            const int width = 1 + static_cast<int>(random() % 2000);
            QCOMPARE(Faults(line, width), QString());
            if (width > 200)
                QVERIFY(!Labels(line, width).isEmpty());
            for (const ZrTimeLine::Tick& tick : line.Ticks(width, Width))
                QVERIFY(Near(line.Fraction(tick.steady), tick.fraction, 1e-3));
            line.Zoom(8.0, static_cast<double>(random() % 100) / 100.0);
        }
    }
    QVERIFY(Line({start, start + 1}).Ticks(0, Width).empty());
    QVERIFY(Line({start, start + 1}).Ticks(-1, Width).empty());
}

void tst_ZrTimeLine::ticksOfAMillionGaps()
{
    Times times;
    for (int i = 0; i < 1000000; ++i)
        times.push_back(start + 10.0 * (i / 2) + i % 2);
    const ZrTimeLine line = Line(times);
    QCOMPARE(line.Gaps().All().size(), std::size_t(499999));
    int measured = 0;
    const std::vector<ZrTimeLine::Tick> ticks = line.Ticks(1000, [&measured](const QString& text) {
        ++measured;
        return Width(text);
    });
    QVERIFY(ticks.size() > 3);
    QVERIFY2(measured < 400, qPrintable(QString::number(measured)));
    QCOMPARE(Faults(line, 1000), QString());
    const std::vector<ZrTimeLine::Cut> cuts = line.Cuts(1000);
    QVERIFY(cuts.size() <= 1001);
    double cut = 0.0;
    for (const ZrTimeLine::Cut& c : cuts)
        cut += c.seconds;
    QVERIFY(Near(cut, line.Gaps().Sum(), 1e-3));
}

void tst_ZrTimeLine::cutsAreMerged()
{
    // Gaps of 100 s after 0, 0.001 and 50 s; then 50 s more.
    ZrTimeLine line = Line({0, 100, 100.001, 200, 203, 206, 300, 302, 305});
    QCOMPARE(line.Gaps().All().size(), std::size_t(3));
    const std::vector<ZrTimeLine::Cut> cuts = line.Cuts(100);
    QCOMPARE(cuts.size(), std::size_t(2));
    QVERIFY(Near(cuts[0].seconds, 199.999));
    QCOMPARE(cuts[0].gap, std::size_t(0));
    QCOMPARE(cuts[1].seconds, 94.0);
    QCOMPARE(cuts[1].gap, std::size_t(2));
    line.Show(200.5, 205.0);
    QVERIFY(line.Cuts(100).empty());
}

void tst_ZrTimeLine::hitTest()
{
    const ZrTimeLine line = Line(Seconds(start, 101));
    const Times events{start + 10, start + 50, start + 50.5};
    QCOMPARE(line.HitTest(100, 1000, events, 4.0), std::size_t(0));
    QCOMPARE(line.HitTest(103.9, 1000, events, 4.0), std::size_t(0));
    QCOMPARE(line.HitTest(104.1, 1000, events, 4.0), std::size_t(3));
    QCOMPARE(line.HitTest(502, 1000, events, 4.0), std::size_t(1));
    QCOMPARE(line.HitTest(503, 1000, events, 4.0), std::size_t(2));
    QCOMPARE(line.HitTest(50, 1000, Times(), 4.0), std::size_t(0));
    QCOMPARE(line.HitTest(unknown, 1000, events, 4.0), std::size_t(3));
    QCOMPARE(line.HitTest(100, 0, events, 4.0), std::size_t(3));
    QCOMPARE(line.HitTest(100, 1000, events, unknown), std::size_t(3));
}

void tst_ZrTimeLine::gapHitTest()
{
    ZrTimeLine line = Line({0, 5, 25, 30, 70, 75});
    QCOMPARE(line.GapHitTest(500, 1500, 5.0), std::size_t(0));
    QCOMPARE(line.GapHitTest(1004, 1500, 5.0), std::size_t(1));
    QCOMPARE(line.GapHitTest(700, 1500, 5.0), std::size_t(2));
    line.SetGapsCut(false);
    QCOMPARE(line.GapHitTest(150, 750, 5.0), std::size_t(0));
    QCOMPARE(line.GapHitTest(270, 750, 5.0), std::size_t(2));
    QCOMPARE(line.GapHitTest(500, 750, 5.0), std::size_t(1));
    QCOMPARE(line.GapHitTest(-5, 750, 5.0), std::size_t(2));
}

void tst_ZrTimeLine::snap()
{
    const ZrTimeLine line = Line(Seconds(start, 101));
    const Times events{start + 10.25};
    QCOMPARE(line.Snap(104, 1000, events, 4.0), start + 10.25);
    QCOMPARE(line.Snap(110, 1000, events, 4.0), start + 11.0);
    QCOMPARE(line.Snap(-50, 1000, events, 4.0), start);
    QVERIFY(std::isnan(line.Snap(unknown, 1000, events, 4.0)));
}

QTEST_APPLESS_MAIN(tst_ZrTimeLine)
#include "tst_ZrTimeLine.moc"
