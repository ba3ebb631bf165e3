// ZrSonarGain: the law, and what it learns from a line.

#include "ZrKit/sonar/ZrSonarGain.h"

#include <QtTest/QtTest>

#include <cmath>
#include <functional>
#include <random>
#include <thread>

class tst_ZrSonarGain : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void noneLeavesAll();
    void law_data();
    void law();
    void lawSaturates();
    void strength_data();
    void strength();
    void applyIsTheFactor_data();
    void applyIsTheFactor();
    void oneBeforeAnythingIsLearnt();
    void otherModesLearnNothing();
    void evensOutTheRange();
    void evensOutTheAngle();
    void waterColumnIsLeftOut();
    void altitudeTooLow();
    void shadowsDoNotBrighten();
    void rangesSeldomSeen();
    void limits();
    void sidesApart();
    void preparingAgainTakesAllIn();
    void oddPings_data();
    void oddPings();
    void manyRangesInTurn();
    void twoThreads();
};

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double endless = std::numeric_limits<double>::infinity();
constexpr double reach = 30.0; ///< metres
constexpr std::size_t count = 600;

ZrSonarGainSettings Mode(ZrSonarGainSettings::eMode mode)
{
    ZrSonarGainSettings settings;
    settings.mode = mode;
    return settings;
}

double RangeOf(std::size_t sample)
{
    return (static_cast<double>(sample) + 0.5) * reach / count;
}

using Scene = std::function<double(double range)>;

/// A ping whose amplitude at a range is that of \p scene times a speckle of mean 1.
std::vector<u16> Ping(const Scene& scene, std::mt19937& random)
{
    std::exponential_distribution<double> power(1.0);
    std::vector<u16> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double speckle = std::sqrt(power(random)) / 0.886227;
        samples[i] = static_cast<u16>(std::min(65535.0, scene(RangeOf(i)) * speckle));
    }
    return samples;
}

/// Mean of the samples from \p from to \p to metres.
double MeanOf(const std::vector<u16>& samples, double from, double to)
{
    double sum = 0.0;
    double n = 0.0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (RangeOf(i) < from || RangeOf(i) >= to)
            continue;
        sum += samples[i];
        n += 1.0;
    }
    return sum / n;
}

} // namespace

void tst_ZrSonarGain::noneLeavesAll()
{
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainNone));
    std::vector<u16> samples{0, 1, 32767, 65535};
    const std::vector<u16> before = samples;
    gain.Learn(samples, sidePort, reach, 0.0);
    gain.Prepare();
    gain.Apply(samples, sidePort, reach, 5.0);
    QVERIFY(samples == before);
    QCOMPARE(gain.Factor(sidePort, 3.0, reach, 2.0), 1.0);
}

void tst_ZrSonarGain::law_data()
{
    QTest::addColumn<double>("spreading");
    QTest::addColumn<double>("absorption");
    QTest::addColumn<double>("range");
    QTest::addColumn<double>("slantRange");
    QTest::addColumn<double>("decibels");
    QTest::newRow("far end") << 30.0 << 0.05 << 100.0 << 100.0 << 0.0;
    QTest::newRow("a tenth") << 30.0 << 0.0 << 10.0 << 100.0 << -30.0;
    QTest::newRow("a tenth, one way") << 20.0 << 0.0 << 5.0 << 50.0 << -20.0;
    QTest::newRow("absorption counts twice") << 0.0 << 0.05 << 20.0 << 100.0 << -8.0;
    QTest::newRow("both") << 40.0 << 0.1 << 10.0 << 100.0 << -58.0;
    QTest::newRow("nothing") << 0.0 << 0.0 << 10.0 << 100.0 << 0.0;
    QTest::newRow("half a metre") << 20.0 << 0.0 << 0.5 << 50.0 << -40.0;
    QTest::newRow("nearer") << 20.0 << 0.0 << 0.01 << 50.0 << -40.0;
    QTest::newRow("at the sonar") << 20.0 << 0.0 << 0.0 << 50.0 << -40.0;
    QTest::newRow("spreading no number") << unknown << 0.05 << 20.0 << 100.0 << -8.0;
    QTest::newRow("spreading infinite") << endless << 0.05 << 20.0 << 100.0 << -8.0;
    QTest::newRow("absorption no number") << 20.0 << unknown << 10.0 << 100.0 << -20.0;
    QTest::newRow("range no number") << 30.0 << 0.05 << unknown << 100.0 << 0.0;
    QTest::newRow("slant range no number") << 30.0 << 0.05 << 5.0 << unknown << 0.0;
    QTest::newRow("slant range 0") << 30.0 << 0.05 << 5.0 << 0.0 << 0.0;
}

void tst_ZrSonarGain::law()
{
    QFETCH(double, spreading);
    QFETCH(double, absorption);
    QFETCH(double, range);
    QFETCH(double, slantRange);
    QFETCH(double, decibels);
    ZrSonarGainSettings settings = Mode(ZrSonarGainSettings::gainLaw);
    settings.spreading = spreading;
    settings.absorption = absorption;
    const ZrSonarGain gain(settings);
    const double factor = gain.Factor(sideStarboard, range, slantRange);
    QVERIFY2(std::fabs(20.0 * std::log10(factor) - decibels) < 1e-9, qPrintable(QString::number(factor)));
}

void tst_ZrSonarGain::lawSaturates()
{
    ZrSonarGainSettings settings = Mode(ZrSonarGainSettings::gainLaw);
    for (const double spreading : {-40.0, -1e6}) {
        settings.spreading = spreading;
        std::vector<u16> samples(100, 60000);
        samples[0] = 0;
        ZrSonarGain(settings).Apply(samples, sidePort, 50.0);
        QCOMPARE(int(samples[0]), 0);
        QCOMPARE(int(samples[1]), 65535);
        QCOMPARE(int(samples[90]), 65535);
    }
}

void tst_ZrSonarGain::strength_data()
{
    QTest::addColumn<double>("strength");
    QTest::addColumn<double>("decibels");
    QTest::newRow("whole") << 1.0 << -30.0;
    QTest::newRow("half") << 0.5 << -15.0;
    QTest::newRow("none") << 0.0 << 0.0;
    QTest::newRow("negative") << -2.0 << 0.0;
    QTest::newRow("more than whole") << 3.0 << -30.0;
    QTest::newRow("no number") << unknown << -30.0;
    QTest::newRow("infinite") << endless << -30.0;
}

void tst_ZrSonarGain::strength()
{
    QFETCH(double, strength);
    QFETCH(double, decibels);
    ZrSonarGainSettings settings = Mode(ZrSonarGainSettings::gainLaw);
    settings.spreading = 30.0;
    settings.absorption = 0.0;
    settings.strength = strength;
    const double factor = ZrSonarGain(settings).Factor(sidePort, 10.0, 100.0);
    QVERIFY(std::fabs(20.0 * std::log10(factor) - decibels) < 1e-9);
}

void tst_ZrSonarGain::applyIsTheFactor_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<double>("strength");
    QTest::addColumn<double>("altitude");
    QTest::newRow("law") << int(ZrSonarGainSettings::gainLaw) << 1.0 << unknown;
    QTest::newRow("law, altitude without meaning") << int(ZrSonarGainSettings::gainLaw) << 1.0 << 5.0;
    QTest::newRow("auto") << int(ZrSonarGainSettings::gainAuto) << 1.0 << unknown;
    QTest::newRow("auto, angle") << int(ZrSonarGainSettings::gainAuto) << 1.0 << 5.0;
    QTest::newRow("auto, half") << int(ZrSonarGainSettings::gainAuto) << 0.5 << 5.0;
}

void tst_ZrSonarGain::applyIsTheFactor()
{
    QFETCH(int, mode);
    QFETCH(double, strength);
    QFETCH(double, altitude);
    ZrSonarGainSettings settings = Mode(static_cast<ZrSonarGainSettings::eMode>(mode));
    settings.strength = strength;
    ZrSonarGain gain(settings);
    std::mt19937 random(1);
    for (int i = 0; i < 40; ++i) {
        const double height = 4.0 + 0.1 * i;
        gain.Learn(
            Ping([&](double r) { return 9000.0 * std::pow(0.9, r / 3.0) * (1.2 - height / r); }, random),
            sidePort, reach, height);
    }
    gain.Prepare();
    for (const std::size_t samples : {std::size_t(1), std::size_t(100), count, std::size_t(777)}) {
        std::vector<u16> line(samples, 2000);
        gain.Apply(line, sidePort, reach, altitude);
        for (std::size_t i = 0; i < samples; ++i) {
            const double range = (static_cast<double>(i) + 0.5) * reach / static_cast<double>(samples);
            const double expected = 2000.0 * gain.Factor(sidePort, range, reach, altitude);
            QVERIFY2(std::fabs(line[i] - expected) <= 0.6, qPrintable(QString::number(range)));
        }
    }
}

void tst_ZrSonarGain::oneBeforeAnythingIsLearnt()
{
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::vector<u16> samples{1, 50, 40000};
    const std::vector<u16> before = samples;
    gain.Apply(samples, sidePort, reach, 4.0);
    QVERIFY(samples == before);
    gain.Prepare();
    gain.Apply(samples, sideStarboard, reach);
    QVERIFY(samples == before);
    QCOMPARE(gain.Factor(sidePort, 12.0, reach, 4.0), 1.0);
}

void tst_ZrSonarGain::otherModesLearnNothing()
{
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainLaw));
    const double before = gain.Factor(sidePort, 12.0, reach);
    std::mt19937 random(1);
    for (int i = 0; i < 20; ++i)
        gain.Learn(Ping([](double r) { return 100.0 * r; }, random), sidePort, reach, 3.0);
    gain.Prepare();
    QCOMPARE(gain.Factor(sidePort, 12.0, reach), before);
    QCOMPARE(gain.Factor(sidePort, 12.0, reach, 5.0), before);
}

void tst_ZrSonarGain::evensOutTheRange()
{
    const Scene fall = [](double r) { return 12000.0 * std::pow(10.0, -r / 40.0); };
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::mt19937 random(2);
    for (int i = 0; i < 300; ++i)
        gain.Learn(Ping(fall, random), sidePort, reach, 4.0);
    gain.Prepare();
    std::vector<u16> flat(count);
    for (std::size_t i = 0; i < count; ++i)
        flat[i] = static_cast<u16>(fall(RangeOf(i)));
    QVERIFY(MeanOf(flat, 5.0, 7.0) > 3.0 * MeanOf(flat, 27.0, 29.0));
    gain.Apply(flat, sidePort, reach, 4.0);
    const double middle = MeanOf(flat, 14.0, 16.0);
    for (double r = 5.0; r < 29.0; r += 1.0) {
        const double here = MeanOf(flat, r, r + 1.0) / middle;
        QVERIFY2(std::fabs(here - 1.0) < 0.05, qPrintable(QStringLiteral("%1 m: %2").arg(r).arg(here)));
    }
}

/// A lobe of the beam lies at one angle; over a seabed that comes nearer it wanders through the ranges.
void tst_ZrSonarGain::evensOutTheAngle()
{
    const auto scene = [](double r, double height) {
        const double degrees = std::asin(std::min(1.0, height / r)) * 57.29578;
        const double lobe = 1.0 + 0.6 * std::exp(-std::pow((degrees - 35.0) / 8.0, 2.0));
        return 6000.0 * lobe * std::pow(10.0, -r / 80.0);
    };
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::mt19937 random(3);
    for (int i = 0; i < 600; ++i) {
        const double height = 3.0 + i * 0.015;
        gain.Learn(Ping([&](double r) { return r < height ? 150.0 : scene(r, height); }, random), sidePort,
            reach, height);
    }
    gain.Prepare();
    for (const double height : {4.0, 7.0, 11.0}) {
        std::vector<u16> line(count);
        for (std::size_t i = 0; i < count; ++i)
            line[i] = static_cast<u16>(scene(RangeOf(i), height));
        const double start = height / 0.8; // 53 degrees
        double least = endless;
        double most = 0.0;
        gain.Apply(line, sidePort, reach, height);
        for (double r = start; r < 29.0; r += 1.0) {
            least = std::min(least, MeanOf(line, r, r + 1.0));
            most = std::max(most, MeanOf(line, r, r + 1.0));
        }
        QVERIFY2(most / least < 1.15, qPrintable(QStringLiteral("%1 m: %2").arg(height).arg(most / least)));
    }
}

void tst_ZrSonarGain::waterColumnIsLeftOut()
{
    // The outgoing pulse and the dark water are a third of all samples.
    const Scene scene = [](double r) { return r < 0.5 ? 32767.0 : r < 10.0 ? 200.0 : 5000.0; };
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::mt19937 random(4);
    for (int i = 0; i < 200; ++i)
        gain.Learn(Ping(scene, random), sidePort, reach, 10.0);
    gain.Prepare();
    for (double r = 11.0; r < 29.5; r += 1.0) {
        const double factor = gain.Factor(sidePort, r, reach, 10.0);
        QVERIFY2(std::fabs(factor - 1.0) < 0.05, qPrintable(QStringLiteral("%1: %2").arg(r).arg(factor)));
    }
    // What lies nearer is not lifted: it has the gain of the nearest seabed.
    QVERIFY(std::fabs(gain.Factor(sidePort, 4.0, reach, 10.0) - 1.0) < 0.05);

    ZrSonarGain all(Mode(ZrSonarGainSettings::gainAuto));
    for (int i = 0; i < 200; ++i)
        all.Learn(Ping(scene, random), sidePort, reach, unknown);
    all.Prepare();
    QVERIFY(all.Factor(sidePort, 4.0, reach) > 10.0);
}

/// Recorded altitudes may be a fifth too low; the water that is then taken for seabed must not be lifted to
/// its brightness, nor the seabed suffer.
void tst_ZrSonarGain::altitudeTooLow()
{
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::mt19937 random(5);
    for (int i = 0; i < 400; ++i) {
        const double height = 5.0 + i * 0.02;
        gain.Learn(Ping([&](double r) { return r < height ? 150.0 : 6000.0; }, random), sidePort, reach,
            0.8 * height);
    }
    gain.Prepare();
    const double height = 9.0;
    QVERIFY(gain.Factor(sidePort, 8.0, reach, 0.8 * height) < 2.0);
    const double middle = gain.Factor(sidePort, 20.0, reach, 0.8 * height);
    for (double r = 13.0; r < 29.0; r += 1.0) {
        const double factor = gain.Factor(sidePort, r, reach, 0.8 * height) / middle;
        QVERIFY2(std::fabs(factor - 1.0) < 0.1, qPrintable(QStringLiteral("%1: %2").arg(r).arg(factor)));
    }
}

void tst_ZrSonarGain::shadowsDoNotBrighten()
{
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::mt19937 random(6);
    for (int i = 0; i < 300; ++i) {
        const bool wreck = i < 150;
        gain.Learn(Ping([&](double r) { return wreck && r > 12.0 && r < 16.0 ? 250.0 : 8000.0; }, random),
            sidePort, reach, 5.0);
    }
    gain.Prepare();
    const double shaded = gain.Factor(sidePort, 14.0, reach, 5.0) / gain.Factor(sidePort, 22.0, reach, 5.0);
    QVERIFY2(shaded < 1.1, qPrintable(QString::number(shaded))); // 2 with the shadows in the mean
}

void tst_ZrSonarGain::rangesSeldomSeen()
{
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::mt19937 random(7);
    // One ping in fifty was much lower than the others, over mud.
    for (int i = 0; i < 400; ++i) {
        const bool low = i % 50 == 0;
        gain.Learn(
            Ping([&](double) { return low ? 1000.0 : 8000.0; }, random), sidePort, reach, low ? 2.0 : 10.0);
    }
    gain.Prepare();
    const double near = gain.Factor(sidePort, 5.0, reach);
    const double there = gain.Factor(sidePort, 11.0, reach);
    QVERIFY2(std::fabs(near / there - 1.0) < 0.1, qPrintable(QString::number(near / there)));
}

void tst_ZrSonarGain::limits()
{
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::vector<u16> ping(count);
    for (std::size_t i = 0; i < count; ++i)
        ping[i] = RangeOf(i) < 15.0 ? u16(60000) : u16(10);
    for (int i = 0; i < 100; ++i)
        gain.Learn(ping, sidePort, reach, unknown);
    gain.Prepare();
    QCOMPARE(gain.Factor(sidePort, 25.0, reach), 16.0);
    for (std::size_t i = 0; i < count; ++i)
        ping[i] = RangeOf(i) < 29.0 ? u16(10) : u16(60000);
    ZrSonarGain other(Mode(ZrSonarGainSettings::gainAuto));
    for (int i = 0; i < 100; ++i)
        other.Learn(ping, sidePort, reach, unknown);
    other.Prepare();
    QVERIFY(other.Factor(sidePort, 29.9, reach) >= 1.0 / 16.0);
    QVERIFY(other.Factor(sidePort, 29.9, reach) < 0.2);
}

void tst_ZrSonarGain::sidesApart()
{
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::mt19937 random(8);
    for (int i = 0; i < 100; ++i) {
        gain.Learn(Ping([](double r) { return 300.0 * r; }, random), sidePort, reach, 4.0);
        gain.Learn(Ping([](double) { return 5000.0; }, random), sideStarboard, reach, 4.0);
    }
    gain.Prepare();
    QVERIFY(gain.Factor(sidePort, 6.0, reach) > 2.0 * gain.Factor(sidePort, 28.0, reach));
    const double flat = gain.Factor(sideStarboard, 6.0, reach) / gain.Factor(sideStarboard, 28.0, reach);
    QVERIFY(std::fabs(flat - 1.0) < 0.1);
}

void tst_ZrSonarGain::preparingAgainTakesAllIn()
{
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::vector<u16> rising(count);
    for (std::size_t i = 0; i < count; ++i)
        rising[i] = static_cast<u16>(100 + 60 * i);
    gain.Learn(std::vector<u16>(count, 5000), sidePort, reach, unknown);
    gain.Prepare();
    std::vector<u16> line(count, 1000);
    gain.Apply(line, sidePort, reach);
    QCOMPARE(int(line[300]), 1000);
    for (int i = 0; i < 9; ++i)
        gain.Learn(rising, sidePort, reach, unknown);
    QCOMPARE(gain.Factor(sidePort, 5.0, reach), 1.0);
    gain.Prepare();
    line.assign(count, 1000);
    gain.Apply(line, sidePort, reach);
    QVERIFY(line[100] > 2 * line[550]);
}

void tst_ZrSonarGain::oddPings_data()
{
    QTest::addColumn<int>("samples");
    QTest::addColumn<double>("slantRange");
    QTest::addColumn<double>("altitude");
    QTest::newRow("empty") << 0 << 30.0 << 5.0;
    QTest::newRow("range 0") << 10 << 0.0 << 5.0;
    QTest::newRow("range negative") << 10 << -30.0 << 5.0;
    QTest::newRow("range no number") << 10 << unknown << 5.0;
    QTest::newRow("range infinite") << 10 << endless << 5.0;
    QTest::newRow("range absurd") << 10 << 1e300 << 5.0;
    QTest::newRow("range tiny") << 10 << 1e-300 << 0.0;
    QTest::newRow("altitude negative") << 10 << 30.0 << -5.0;
    QTest::newRow("altitude infinite") << 10 << 30.0 << endless;
    QTest::newRow("altitude beyond the range") << 10 << 30.0 << 31.0;
    QTest::newRow("altitude 0") << 10 << 30.0 << 0.0;
    QTest::newRow("one sample") << 1 << 30.0 << 1.0;
    QTest::newRow("zeros") << 10 << 30.0 << 5.0;
}

/// Nothing breaks, and a flat line stays as it is.
void tst_ZrSonarGain::oddPings()
{
    QFETCH(int, samples);
    QFETCH(double, slantRange);
    QFETCH(double, altitude);
    const bool zeros = qstrcmp(QTest::currentDataTag(), "zeros") == 0;
    std::vector<u16> line(static_cast<std::size_t>(samples), zeros ? u16(0) : u16(700));
    const std::vector<u16> before = line;
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    gain.Learn(line, sidePort, slantRange, altitude);
    gain.Prepare();
    gain.Apply(line, sidePort, slantRange, altitude);
    QVERIFY(line == before);
    ZrSonarGain law(Mode(ZrSonarGainSettings::gainLaw));
    law.Apply(line, sidePort, slantRange, altitude);
    QVERIFY(line.size() == before.size());
}

/// More ranges than tables are kept, and the same range with other numbers of samples.
void tst_ZrSonarGain::manyRangesInTurn()
{
    const ZrSonarGain gain(Mode(ZrSonarGainSettings::gainLaw));
    for (int round = 0; round < 2; ++round) {
        for (int i = 1; i <= 20; ++i) {
            const double range = 10.0 * i;
            std::vector<u16> line(static_cast<std::size_t>(50 + i % 3), 50000);
            gain.Apply(line, i % 2 ? sidePort : sideStarboard, range);
            const double at = 10.5 / static_cast<double>(line.size()) * range;
            const double expected = 50000.0 * gain.Factor(sidePort, at, range);
            QVERIFY(std::fabs(line[10] - expected) <= 0.6);
        }
    }
}

void tst_ZrSonarGain::twoThreads()
{
    ZrSonarGain gain(Mode(ZrSonarGainSettings::gainAuto));
    std::mt19937 random(9);
    for (int i = 0; i < 50; ++i)
        gain.Learn(Ping([](double r) { return 200.0 * r; }, random), sidePort, reach, 4.0);
    gain.Prepare();
    const auto work = [&gain](std::vector<u16>& result) {
        for (int i = 0; i < 200; ++i) {
            std::vector<u16> line(static_cast<std::size_t>(100 + i % 13), 1000);
            gain.Apply(line, sidePort, reach + i % 5, 4.0);
            result.insert(result.end(), line.begin(), line.end());
        }
    };
    std::vector<u16> expected;
    std::vector<u16> here;
    std::vector<u16> there;
    work(expected);
    std::thread other([&] { work(there); });
    work(here);
    other.join();
    QVERIFY(here == expected);
    QVERIFY(there == expected);
}

QTEST_GUILESS_MAIN(tst_ZrSonarGain)
#include "tst_ZrSonarGain.moc"
