// What is dark in front of the seabed.

#include "ZrKit/sonar/ZrSonarBlanking.h"

#include <QtTest/QtTest>

#include <limits>
#include <vector>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

/// Of 100 samples over 50 m: a pulse of four, quiet water, seabed from sample 40 on.
std::vector<u16> Ping()
{
    std::vector<u16> samples(100, 50);
    std::fill_n(samples.begin(), 4, u16(32767));
    samples[3] = 20000;
    std::fill(samples.begin() + 40, samples.end(), u16(9000));
    return samples;
}

} // namespace

class tst_ZrSonarBlanking : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void counts_data();
    void counts();
    void quietBegin();
    void loudToTheSeabed();
    void hostileValues();
    void appliesWhatItCounts();
};

void tst_ZrSonarBlanking::counts_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("altitude");
    QTest::addColumn<int>("count");
    QTest::newRow("none") << int(ZrSonarBlanking::none) << 20.0 << 0;
    QTest::newRow("pulse") << int(ZrSonarBlanking::pulse) << 20.0 << 4;
    QTest::newRow("pulse without altitude") << int(ZrSonarBlanking::pulse) << unknown << 4;
    QTest::newRow("pulse ends at the seabed") << int(ZrSonarBlanking::pulse) << 1.0 << 2;
    QTest::newRow("water") << int(ZrSonarBlanking::water) << 20.0 << 40;
    QTest::newRow("water without altitude") << int(ZrSonarBlanking::water) << unknown << 4;
    QTest::newRow("water beyond the range") << int(ZrSonarBlanking::water) << 80.0 << 100;
    QTest::newRow("altitude 0 is none") << int(ZrSonarBlanking::water) << 0.0 << 4;
    QTest::newRow("negative altitude") << int(ZrSonarBlanking::water) << -3.0 << 4;
    QTest::newRow("below the kinds") << -1 << 20.0 << 0;
    QTest::newRow("above the kinds") << int(ZrSonarBlanking::kindCount) << 20.0 << 0;
}

void tst_ZrSonarBlanking::counts()
{
    QFETCH(int, kind);
    QFETCH(double, altitude);
    QFETCH(int, count);
    QCOMPARE(ZrSonarBlanking::Count(kind, Ping(), 50.0, altitude), std::size_t(count));
}

void tst_ZrSonarBlanking::quietBegin()
{
    std::vector<u16> samples = Ping();
    samples[0] = 10;
    QCOMPARE(ZrSonarBlanking::Count(ZrSonarBlanking::pulse, samples, 50.0, 20.0), std::size_t(0));
    QCOMPARE(
        ZrSonarBlanking::Count(ZrSonarBlanking::pulse, std::vector<u16>(100, 0), 50.0, 20.0), std::size_t(0));
}

/// A picture that is bright from the beginning on loses no more than a twentieth of it.
void tst_ZrSonarBlanking::loudToTheSeabed()
{
    const std::vector<u16> samples(200, 30000);
    QCOMPARE(ZrSonarBlanking::Count(ZrSonarBlanking::pulse, samples, 50.0), std::size_t(10));
    QCOMPARE(ZrSonarBlanking::Count(ZrSonarBlanking::pulse, samples, 50.0, 5.0), std::size_t(20));
}

void tst_ZrSonarBlanking::hostileValues()
{
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double range : {0.0, -1.0, unknown, infinite})
        QCOMPARE(ZrSonarBlanking::Count(ZrSonarBlanking::water, Ping(), range, 20.0), std::size_t(0));
    QCOMPARE(ZrSonarBlanking::Count(ZrSonarBlanking::water, Ping(), 50.0, infinite), std::size_t(4));
    QCOMPARE(ZrSonarBlanking::Count(ZrSonarBlanking::water, std::vector<u16>(), 50.0, 20.0), std::size_t(0));
}

void tst_ZrSonarBlanking::appliesWhatItCounts()
{
    std::vector<u16> samples = Ping();
    QCOMPARE(ZrSonarBlanking::Apply(ZrSonarBlanking::water, samples, 50.0, 20.0), std::size_t(40));
    for (std::size_t i = 0; i < samples.size(); ++i)
        QCOMPARE(samples[i], u16(i < 40 ? 0 : 9000));
    samples = Ping();
    QCOMPARE(ZrSonarBlanking::Apply(ZrSonarBlanking::none, samples, 50.0, 20.0), std::size_t(0));
    QCOMPARE(samples, Ping());
}

QTEST_GUILESS_MAIN(tst_ZrSonarBlanking)
#include "tst_ZrSonarBlanking.moc"
