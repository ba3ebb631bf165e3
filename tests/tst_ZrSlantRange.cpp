// From slant range to ground range, held against the geometry by hand.

#include "ZrKit/sonar/ZrSlantRange.h"

#include <QtTest/QtTest>

#include <cmath>
#include <numeric>
#include <random>
#include <vector>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

std::vector<u16> Correct(
    const std::vector<u16>& in, double slantRange, double altitude, std::size_t count, double groundRange)
{
    std::vector<u16> out(count, 4711); // all of it must be written
    ZrSlantRange::Correct(in, slantRange, altitude, out, groundRange);
    return out;
}

std::vector<u16> Random(std::size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<u16> samples(count);
    for (u16& sample : samples)
        sample = static_cast<u16>(random());
    return samples;
}

double Sum(const std::vector<u16>& samples)
{
    return std::accumulate(samples.begin(), samples.end(), 0.0);
}

/// The mean of \p in, each sample as wide as it is, between two places counted in samples; to be slow and
/// clear.
double MeanBetween(const std::vector<u16>& in, double from, double to)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < in.size(); ++i) {
        const double begin = std::max(from, static_cast<double>(i));
        const double end = std::min(to, static_cast<double>(i + 1));
        sum += end > begin ? in[i] * (end - begin) : 0.0;
    }
    return sum / (to - from);
}

} // namespace

class tst_ZrSlantRange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void geometry_data();
    void geometry();
    void thereAndBack();
    void sameScale();
    void brightSample_data();
    void brightSample();
    void constantStays_data();
    void constantStays();
    void halving();
    void doubling();
    void energyOnTheGround();
    void everyStretch_data();
    void everyStretch();
    void beyondTheInput();
    void partlyBeyond();
    void waterColumnGoes();
    void nothing_data();
    void nothing();
    void altitudeNotKnown_data();
    void altitudeNotKnown();
    void emptyOutput();
    void oneSample();
};

void tst_ZrSlantRange::geometry_data()
{
    QTest::addColumn<double>("slant");
    QTest::addColumn<double>("altitude");
    QTest::addColumn<double>("ground");
    QTest::newRow("3, 4, 5") << 5.0 << 4.0 << 3.0;
    QTest::newRow("5, 12, 13") << 13.0 << 5.0 << 12.0;
    QTest::newRow("on the ground") << 7.0 << 0.0 << 7.0;
    QTest::newRow("right below") << 4.0 << 4.0 << 0.0;
    QTest::newRow("in the water column") << 3.0 << 4.0 << 0.0;
    QTest::newRow("at the sonar") << 0.0 << 4.0 << 0.0;
    QTest::newRow("slant not known") << unknown << 4.0 << unknown;
    QTest::newRow("altitude not known") << 5.0 << unknown << unknown;
}

void tst_ZrSlantRange::geometry()
{
    QFETCH(double, slant);
    QFETCH(double, altitude);
    QFETCH(double, ground);
    const double found = ZrSlantRange::Ground(slant, altitude);
    QCOMPARE(std::isnan(found), std::isnan(ground));
    if (!std::isnan(ground))
        QCOMPARE(found, ground);
    if (ground > 0.0)
        QCOMPARE(ZrSlantRange::Slant(ground, altitude), slant);
}

void tst_ZrSlantRange::thereAndBack()
{
    QCOMPARE(ZrSlantRange::Slant(0.0, 4.0), 4.0);
    QVERIFY(std::isnan(ZrSlantRange::Slant(unknown, 4.0)));
    for (const double ground : {0.1, 1.0, 30.0, 5000.0}) {
        for (const double altitude : {0.0, 0.5, 12.0, 300.0}) {
            const double back = ZrSlantRange::Ground(ZrSlantRange::Slant(ground, altitude), altitude);
            QVERIFY(std::fabs(back - ground) < 1.0e-6);
        }
    }
}

void tst_ZrSlantRange::sameScale()
{
    const std::vector<u16> in = Random(1000, 1);
    QCOMPARE(Correct(in, 30.0, 0.0, in.size(), 30.0), in);
    QCOMPARE(Correct(in, 0.07, 0.0, in.size(), 0.07), in);
}

void tst_ZrSlantRange::brightSample_data()
{
    QTest::addColumn<double>("altitude");
    QTest::addColumn<double>("slant");
    QTest::addColumn<int>("sample"); ///< of the output, 0.1 m each
    QTest::newRow("3, 4, 5") << 4.0 << 5.005 << 30; // sqrt(5.005² − 4²) = 3.008
    QTest::newRow("5, 12, 13") << 5.0 << 13.025 << 120; // 12.027
    QTest::newRow("far out") << 9.0 << 29.785 << 283; // 28.393
    QTest::newRow("no altitude") << 0.0 << 17.335 << 173;
    QTest::newRow("near the nadir") << 4.0 << 4.015 << 3; // 0.347
}

/// One bright sample of 1 cm at a known slant range.
void tst_ZrSlantRange::brightSample()
{
    QFETCH(double, altitude);
    QFETCH(double, slant);
    QFETCH(int, sample);
    std::vector<u16> in(3000, 0);
    in[static_cast<std::size_t>(slant * 100.0)] = 60000;
    const std::vector<u16> out = Correct(in, 30.0, altitude, 300, 30.0);
    const auto top = std::max_element(out.begin(), out.end());
    QCOMPARE(static_cast<int>(top - out.begin()), sample);
    QVERIFY(*top > 3000);
    // Nowhere else but in the neighbour, when it lies on the border.
    for (int i = 0; i < 300; ++i)
        QVERIFY(std::abs(i - sample) <= 1 || out[static_cast<std::size_t>(i)] == 0);
}

void tst_ZrSlantRange::constantStays_data()
{
    QTest::addColumn<int>("in");
    QTest::addColumn<int>("out");
    QTest::addColumn<double>("altitude");
    for (const int in : {1, 7, 100, 1024, 20000}) {
        for (const int out : {1, 3, 100, 1024, 9000}) {
            for (const double altitude : {0.0, 0.3, 12.0, 17.9})
                QTest::addRow("%d to %d at %g m", in, out, altitude) << in << out << altitude;
        }
    }
}

/// An even brightness stays what it is, at any scale, the largest included.
void tst_ZrSlantRange::constantStays()
{
    QFETCH(int, in);
    QFETCH(int, out);
    QFETCH(double, altitude);
    const auto count = static_cast<std::size_t>(out);
    for (const u16 value : {u16(1), u16(777), u16(65535)}) {
        const std::vector<u16> even(static_cast<std::size_t>(in), value);
        const double range = ZrSlantRange::Ground(18.0, altitude);
        QCOMPARE(Correct(even, 18.0, altitude, count, range), std::vector<u16>(count, value));
    }
}

void tst_ZrSlantRange::halving()
{
    QCOMPARE(Correct({10, 20, 30, 50, 0, 7}, 6.0, 0.0, 3, 6.0), (std::vector<u16>{15, 40, 4}));
    QCOMPARE(Correct({10, 20, 30, 50, 0, 70}, 6.0, 0.0, 4, 6.0), (std::vector<u16>{13, 27, 33, 47}));
}

/// Between the middles of the samples the brightness runs straight, at the ends it stays.
void tst_ZrSlantRange::doubling()
{
    QCOMPARE(Correct({100, 200, 0}, 3.0, 0.0, 6, 3.0), (std::vector<u16>{100, 125, 175, 150, 50, 0}));
}

/// Where samples are made larger, what a stretch of ground holds in all is what the slant range held.
void tst_ZrSlantRange::energyOnTheGround()
{
    const std::vector<u16> in = Random(8192, 3);
    const std::vector<u16> out = Correct(in, 40.0, 0.0, 512, 40.0);
    QVERIFY(std::fabs(Sum(out) * 16.0 - Sum(in)) < 16.0 * 0.5 * 512);
    // Each sample weighted with the slant range that it covers.
    const double altitude = 10.0;
    const double range = ZrSlantRange::Ground(40.0, altitude);
    const std::vector<u16> ground = Correct(in, 40.0, altitude, 300, range);
    double sum = 0.0;
    for (std::size_t i = 0; i < ground.size(); ++i) {
        const double at = static_cast<double>(i);
        const double width = ZrSlantRange::Slant((at + 1.0) * range / 300.0, altitude)
            - ZrSlantRange::Slant(at * range / 300.0, altitude);
        sum += ground[i] * width / 40.0 * 8192.0;
    }
    const double column = std::accumulate(in.begin(), in.begin() + 2048, 0.0);
    QVERIFY(std::fabs(sum / (Sum(in) - column) - 1.0) < 0.001);
}

void tst_ZrSlantRange::everyStretch_data()
{
    QTest::addColumn<double>("altitude");
    QTest::addColumn<double>("groundRange");
    QTest::newRow("on the ground") << 0.0 << 25.0;
    QTest::newRow("low") << 1.3 << 29.9;
    QTest::newRow("high") << 21.0 << 20.0;
    QTest::newRow("a part") << 5.0 << 9.0;
    QTest::newRow("and beyond") << 5.0 << 60.0;
}

/// Each output sample against the slow way, exactly where a stretch covers more than a sample, roughly else.
void tst_ZrSlantRange::everyStretch()
{
    QFETCH(double, altitude);
    QFETCH(double, groundRange);
    const std::vector<u16> in = Random(2000, 4);
    const std::vector<u16> out = Correct(in, 30.0, altitude, 150, groundRange);
    int means = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double step = groundRange / 150.0;
        const auto place
            = [&](double steps) { return ZrSlantRange::Slant(steps * step, altitude) / 30.0 * 2000.0; };
        const double from = place(static_cast<double>(i));
        const double to = place(static_cast<double>(i + 1));
        if (place(static_cast<double>(i) + 0.5) >= 2000.0) {
            QCOMPARE(out[i], u16(0));
        } else if (to - from > 1.0001) {
            QVERIFY(std::fabs(out[i] - MeanBetween(in, from, std::min(to, 2000.0))) <= 0.5001);
            ++means;
        }
    }
    QVERIFY(means > 50);
}

void tst_ZrSlantRange::beyondTheInput()
{
    const std::vector<u16> out = Correct(std::vector<u16>(100, 500), 10.0, 6.0, 100, 10.0);
    for (std::size_t i = 0; i < out.size(); ++i)
        QCOMPARE(out[i], u16(i < 80 ? 500 : 0)); // sqrt(10² − 6²) = 8
    QCOMPARE(Correct({500}, 10.0, 0.0, 4, 40.0), (std::vector<u16>{500, 0, 0, 0}));
}

/// Of a stretch that reaches beyond the input its part inside counts.
void tst_ZrSlantRange::partlyBeyond()
{
    // Stretches of 2.8 samples; the last one begins at 8.4 and has 0.6 of the ninth and the tenth.
    const std::vector<u16> in{0, 0, 0, 0, 0, 0, 0, 0, 1000, 3000};
    const std::vector<u16> out = Correct(in, 10.0, 0.0, 4, 11.2);
    QCOMPARE(out, (std::vector<u16>{0, 0, 143, 2250}));
    // Less than half of it inside is nothing.
    QCOMPARE(Correct(in, 10.0, 0.0, 2, 13.2).back(), u16(1176)); // 6.6 to 10: 4000 / 3.4
    QCOMPARE(Correct(in, 10.0, 0.0, 2, 13.4).back(), u16(0)); // the middle at 10.05
}

/// Samples nearer than the seabed are nowhere in the output.
void tst_ZrSlantRange::waterColumnGoes()
{
    std::vector<u16> in(1000, 9000);
    std::fill(in.begin() + 400, in.end(), u16(200));
    const std::vector<u16> out = Correct(in, 10.0, 4.01, 100, 9.0);
    QCOMPARE(*std::max_element(out.begin(), out.end()), u16(200));
    QCOMPARE(Correct(in, 10.0, 3.0, 100, 9.0).front(), u16(9000));
}

void tst_ZrSlantRange::nothing_data()
{
    QTest::addColumn<int>("samples");
    QTest::addColumn<double>("slantRange");
    QTest::addColumn<double>("altitude");
    QTest::addColumn<double>("groundRange");
    QTest::newRow("no input") << 0 << 30.0 << 5.0 << 30.0;
    QTest::newRow("slant range 0") << 100 << 0.0 << 0.0 << 30.0;
    QTest::newRow("slant range negative") << 100 << -1.0 << 0.0 << 30.0;
    QTest::newRow("slant range NaN") << 100 << unknown << 0.0 << 30.0;
    QTest::newRow("slant range infinite") << 100 << infinity << 0.0 << 30.0;
    QTest::newRow("slant range tiny") << 100 << 1.0e-310 << 0.0 << 30.0;
    QTest::newRow("ground range 0") << 100 << 30.0 << 0.0 << 0.0;
    QTest::newRow("ground range negative") << 100 << 30.0 << 0.0 << -30.0;
    QTest::newRow("ground range NaN") << 100 << 30.0 << 0.0 << unknown;
    QTest::newRow("ground range infinite") << 100 << 30.0 << 0.0 << infinity;
    QTest::newRow("ground range huge") << 100 << 30.0 << 0.0 << 1.0e308;
    QTest::newRow("altitude beyond") << 100 << 30.0 << 31.0 << 30.0;
    QTest::newRow("altitude at the end") << 100 << 30.0 << 30.0 << 30.0;
    QTest::newRow("altitude huge") << 100 << 30.0 << 1.0e300 << 30.0;
    QTest::newRow("altitude infinite") << 100 << 30.0 << infinity << 30.0;
}

void tst_ZrSlantRange::nothing()
{
    QFETCH(int, samples);
    QFETCH(double, slantRange);
    QFETCH(double, altitude);
    QFETCH(double, groundRange);
    const std::vector<u16> in(static_cast<std::size_t>(samples), 500);
    QCOMPARE(Correct(in, slantRange, altitude, 50, groundRange), std::vector<u16>(50, 0));
}

void tst_ZrSlantRange::altitudeNotKnown_data()
{
    QTest::addColumn<double>("altitude");
    QTest::newRow("NaN") << unknown;
    QTest::newRow("negative") << -3.0;
    QTest::newRow("negative infinity") << -infinity;
    QTest::newRow("negative zero") << -0.0;
}

/// Then only the scale changes.
void tst_ZrSlantRange::altitudeNotKnown()
{
    QFETCH(double, altitude);
    const std::vector<u16> in = Random(300, 5);
    QCOMPARE(Correct(in, 30.0, altitude, 100, 20.0), Correct(in, 30.0, 0.0, 100, 20.0));
    QCOMPARE(Correct(in, 30.0, altitude, 300, 30.0), in);
}

void tst_ZrSlantRange::emptyOutput()
{
    const std::vector<u16> in(10, 500);
    ZrSlantRange::Correct(in, 30.0, 5.0, {}, 30.0);
    ZrSlantRange::Correct({}, 30.0, 5.0, {}, 30.0);
    u16 guard[3] = {1, 2, 3};
    ZrSlantRange::Correct(in, 30.0, 0.0, zr::span<u16>(guard + 1, 1), 30.0);
    QCOMPARE(guard[0], u16(1));
    QCOMPARE(guard[1], u16(500));
    QCOMPARE(guard[2], u16(3));
}

void tst_ZrSlantRange::oneSample()
{
    QCOMPARE(Correct({321}, 30.0, 5.0, 3, 29.0), (std::vector<u16>{321, 321, 321}));
    QCOMPARE(Correct({100, 200, 600}, 3.0, 0.0, 1, 3.0), (std::vector<u16>{300}));
}

QTEST_APPLESS_MAIN(tst_ZrSlantRange)
#include "tst_ZrSlantRange.moc"
