// ZrSonarContrast: by default the range and the bytes of SonarDataPkt, else what its settings say.

#include "ZrKit/sonar/ZrSonarContrast.h"
#include "ZrUtil/SonarDataPkt.h"

#include <QtTest/QtTest>

#include <memory>
#include <numeric>
#include <random>

class tst_ZrSonarContrast : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void statisticsAreThePackets_data();
    void statisticsAreThePackets();
    void mappingIsThePackets_data();
    void mappingIsThePackets();
    void zerosKeepTheRange();
    void nothingKeepsTheRange();
    void blocksAddUp();
    void clips_data();
    void clips();
    void gammas_data();
    void gammas();
    void rangesThatAreNoNumbers();
    void shorterOutput();
};

namespace {

std::vector<u16> AllSamples()
{
    std::vector<u16> samples(65536);
    std::iota(samples.begin(), samples.end(), u16{0});
    return samples;
}

std::vector<u8> BytesOf(const ZrSonarContrast& contrast)
{
    std::vector<u8> bytes(65536);
    contrast.Map(AllSamples(), bytes);
    return bytes;
}

std::vector<u8> PacketBytes(SonarDataPkt& packet)
{
    std::vector<u8> bytes(65536);
    packet.ProcessDataImage(AllSamples().data(), bytes.data(), 65536);
    return bytes;
}

/// Speckle as a seabed gives it, saturated like a real sonar's.
std::vector<u16> Speckle(std::size_t count)
{
    std::mt19937 random(7);
    std::exponential_distribution<double> power(1.0);
    std::vector<u16> samples(count);
    for (u16& sample : samples)
        sample = static_cast<u16>(std::min(32767.0, 9000.0 * std::sqrt(power(random))));
    return samples;
}

/// 1 to 100, a hundred times each.
std::vector<u16> Hundreds()
{
    std::vector<u16> samples;
    for (u16 v = 1; v <= 100; ++v)
        samples.insert(samples.end(), 100, v);
    return samples;
}

} // namespace

Q_DECLARE_METATYPE(std::vector<u16>)

void tst_ZrSonarContrast::statisticsAreThePackets_data()
{
    QTest::addColumn<std::vector<u16>>("samples");
    for (const int count : {1, 9999, 10000, 20000, 30000, 70000, 99999, 1000000})
        QTest::addRow("speckle, %d", count) << Speckle(static_cast<std::size_t>(count));
    std::vector<u16> outliers(19996, 500);
    outliers.insert(outliers.end(), {3, 4, 60000, 60001});
    QTest::newRow("two outliers at each end") << outliers;
    outliers.insert(outliers.end(), {5, 60002});
    QTest::newRow("three") << outliers;
    std::vector<u16> zeros(50000, 0);
    zeros.insert(zeros.end(), {700, 800, 900, 1000, 1100, 1200, 1300});
    QTest::newRow("mostly zeros") << zeros;
    zeros.resize(50001);
    QTest::newRow("zeros and one") << zeros;
    QTest::newRow("constant") << std::vector<u16>(500, 1234);
    QTest::newRow("saturated") << std::vector<u16>(500, 65535);
}

void tst_ZrSonarContrast::statisticsAreThePackets()
{
    QFETCH(std::vector<u16>, samples);
    const auto packet = std::make_unique<SonarDataPkt>();
    packet->CalcStats(samples.data(), static_cast<int>(samples.size()));
    ZrSonarContrast contrast;
    contrast.Add(samples);
    contrast.Measure();
    if (packet->lo != 0.0F || packet->hi != 0.0F) {
        QCOMPARE(contrast.Lo(), packet->lo);
        QCOMPARE(contrast.Hi(), packet->hi);
        QVERIFY(BytesOf(contrast) == PacketBytes(*packet));
    } else {
        QCOMPARE(contrast.Hi(), 65535.0F);
    }
}

void tst_ZrSonarContrast::mappingIsThePackets_data()
{
    QTest::addColumn<float>("lo");
    QTest::addColumn<float>("hi");
    QTest::newRow("whole") << 0.0F << 65535.0F;
    QTest::newRow("seabed") << 402.0F << 26765.0F;
    QTest::newRow("fractions") << 100.6F << 4000.4F;
    QTest::newRow("thirds") << 1.0F / 3.0F << 50000.0F / 3.0F;
    QTest::newRow("a sample near a step of the bytes") << 0.0F << 2073.0F;
    QTest::newRow("two values") << 10.0F << 12.0F;
    QTest::newRow("none") << 0.0F << 0.0F;
    QTest::newRow("one value") << 900.0F << 900.0F;
    QTest::newRow("upper below lower") << 5000.0F << 1000.0F;
    QTest::newRow("beyond all samples") << -5.0F << 70000.0F;
}

void tst_ZrSonarContrast::mappingIsThePackets()
{
    QFETCH(float, lo);
    QFETCH(float, hi);
    const auto packet = std::make_unique<SonarDataPkt>();
    packet->lo = lo;
    packet->hi = hi;
    ZrSonarContrast contrast;
    contrast.SetRange(lo, hi);
    QVERIFY(BytesOf(contrast) == PacketBytes(*packet));
}

void tst_ZrSonarContrast::zerosKeepTheRange()
{
    ZrSonarContrast contrast;
    contrast.SetRange(11.0F, 22.0F);
    contrast.Add(std::vector<u16>(30000, 0));
    contrast.Measure();
    QCOMPARE(contrast.Lo(), 11.0F);
    QCOMPARE(contrast.Hi(), 22.0F);
}

void tst_ZrSonarContrast::nothingKeepsTheRange()
{
    ZrSonarContrast contrast;
    contrast.Add({});
    contrast.Measure();
    QCOMPARE(contrast.Lo(), 0.0F);
    QCOMPARE(contrast.Hi(), 65535.0F);
}

void tst_ZrSonarContrast::blocksAddUp()
{
    const std::vector<u16> samples = Speckle(40000);
    ZrSonarContrast whole;
    whole.Add(samples);
    whole.Measure();
    ZrSonarContrast parts;
    for (std::size_t at = 0; at < samples.size(); at += 1000)
        parts.Add(zr::span<const u16>(samples.data() + at, 1000));
    parts.Measure();
    QCOMPARE(parts.Lo(), whole.Lo());
    QCOMPARE(parts.Hi(), whole.Hi());
}

void tst_ZrSonarContrast::clips_data()
{
    QTest::addColumn<double>("clip");
    QTest::addColumn<float>("lo");
    QTest::addColumn<float>("hi");
    // Of the 10,000 samples a hundred have each value: one in a hundred may lie outside, the next may not.
    QTest::newRow("none") << 0.0 << 1.0F << 100.0F;
    QTest::newRow("one in 10,000") << 0.0001 << 1.0F << 100.0F;
    QTest::newRow("nearly one in 100") << 0.0099 << 1.0F << 100.0F;
    QTest::newRow("one in 100") << 0.01 << 2.0F << 99.0F;
    QTest::newRow("one in ten") << 0.1 << 11.0F << 90.0F;
    QTest::newRow("half") << 0.5 << 51.0F << 50.0F;
    QTest::newRow("more than half") << 7.0 << 51.0F << 50.0F;
    QTest::newRow("infinite") << double(INFINITY) << 51.0F << 50.0F;
    QTest::newRow("negative") << -0.1 << 1.0F << 100.0F;
    QTest::newRow("no number") << double(NAN) << 1.0F << 100.0F;
}

void tst_ZrSonarContrast::clips()
{
    QFETCH(double, clip);
    ZrSonarContrast contrast;
    contrast.clip = clip;
    contrast.Add(Hundreds());
    contrast.Measure();
    QTEST(contrast.Lo(), "lo");
    QTEST(contrast.Hi(), "hi");
}

void tst_ZrSonarContrast::gammas_data()
{
    QTest::addColumn<double>("gamma");
    QTest::addColumn<double>("used");
    QTest::newRow("linear") << 1.0 << 1.0;
    QTest::newRow("dark") << 2.0 << 2.0;
    QTest::newRow("light") << 0.5 << 0.5;
    QTest::newRow("zero") << 0.0 << 0.6;
    QTest::newRow("negative") << -1.0 << 0.6;
    QTest::newRow("no number") << double(NAN) << 0.6;
    QTest::newRow("infinite") << double(INFINITY) << 0.6;
}

void tst_ZrSonarContrast::gammas()
{
    QFETCH(double, gamma);
    QFETCH(double, used);
    ZrSonarContrast contrast;
    contrast.gamma = gamma;
    contrast.SetRange(1000.0F, 9000.0F);
    const std::vector<u8> bytes = BytesOf(contrast);
    for (const int v : {1001, 3000, 5000, 8999})
        QCOMPARE(int(bytes[static_cast<std::size_t>(v)]), int(std::pow((v - 1000) / 8000.0, used) * 256.0));
    QCOMPARE(int(bytes[1000]), 0);
    QCOMPARE(int(bytes[9000]), 255);
}

void tst_ZrSonarContrast::rangesThatAreNoNumbers()
{
    ZrSonarContrast contrast;
    contrast.SetRange(3.0F, 4.0F);
    for (const float bad : {float(NAN), float(INFINITY), -float(INFINITY)}) {
        contrast.SetRange(bad, 10.0F);
        contrast.SetRange(1.0F, bad);
    }
    QCOMPARE(contrast.Lo(), 3.0F);
    QCOMPARE(contrast.Hi(), 4.0F);
}

void tst_ZrSonarContrast::shorterOutput()
{
    ZrSonarContrast contrast;
    contrast.SetRange(0.0F, 1.0F);
    const std::vector<u16> in{9, 9, 9, 9};
    std::vector<u8> out(6, 77);
    contrast.Map(in, zr::span<u8>(out.data(), 2));
    QVERIFY((out == std::vector<u8>{255, 255, 77, 77, 77, 77}));
    contrast.Map(in, out);
    QVERIFY((out == std::vector<u8>{255, 255, 255, 255, 77, 77}));
}

QTEST_GUILESS_MAIN(tst_ZrSonarContrast)
#include "tst_ZrSonarContrast.moc"
