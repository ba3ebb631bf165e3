#include "ZrUtil/SonarDataPkt.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

/// Samples mapped to grey and to colours.
class tst_SonarDataPktMappings : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_pkt = std::make_unique<SonarDataPkt>(); }

    void greyEqualsTheFormula_data();
    void greyEqualsTheFormula();
    void colourEqualsTheFormula_data();
    void colourEqualsTheFormula();
    void knownValues();
    void paletteMayChange();
    void anyNumberOfSamples();
    void emptyPaletteGivesZeros();
    void mappingsInTwoThreads();

private:
    std::unique_ptr<SonarDataPkt> m_pkt;
};

namespace {

std::vector<u16> AllSamples()
{
    std::vector<u16> samples(65536);
    std::iota(samples.begin(), samples.end(), u16{0});
    return samples;
}

/// ((v − lo) / (hi − lo))^gamma × steps within 0 ... last, sample by sample.
int Formula(u16 v, float lo, float hi, double gamma, int steps, int last)
{
    const auto sample = static_cast<float>(v);
    if (sample <= lo)
        return 0;
    if (sample >= hi)
        return last;
    const double index
        = std::pow(static_cast<double>(sample - lo) / static_cast<double>(hi - lo), gamma) * steps;
    if (std::isnan(index))
        return 0;
    return static_cast<int>(std::min(std::max(index, 0.0), static_cast<double>(last)));
}

void AddRanges()
{
    QTest::addColumn<float>("lo");
    QTest::addColumn<float>("hi");
    QTest::newRow("whole") << 0.0F << 65535.0F;
    QTest::newRow("fractions") << 100.6F << 4000.4F;
    QTest::newRow("two values") << 10.0F << 12.0F;
    QTest::newRow("no range") << 0.0F << 0.0F;
    QTest::newRow("upper below lower") << 5000.0F << 1000.0F;
    QTest::newRow("beyond all samples") << -5.0F << 70000.0F;
    QTest::newRow("narrow") << 1000.1F << 1000.9F;
    QTest::newRow("wide") << -3e38F << 3e38F;
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("infinite above") << 5.0F << inf;
    QTest::newRow("infinite below") << -inf << 5.0F;
    QTest::newRow("infinite") << -inf << inf;
    QTest::newRow("no number below") << nan << 500.0F;
    QTest::newRow("no number above") << 500.0F << nan;
    QTest::newRow("no numbers") << nan << nan;
}

} // namespace

void tst_SonarDataPktMappings::greyEqualsTheFormula_data()
{
    AddRanges();
}

void tst_SonarDataPktMappings::greyEqualsTheFormula()
{
    QFETCH(float, lo);
    QFETCH(float, hi);
    m_pkt->lo = lo;
    m_pkt->hi = hi;
    std::vector<u16> in = AllSamples();
    std::vector<u8> out(in.size() + 1, 77);
    m_pkt->ProcessDataImage(in.data(), out.data(), static_cast<int>(in.size()));
    for (const u16 v : in)
        QCOMPARE(int(out[v]), Formula(v, lo, hi, 0.6, 256, 255));
    QCOMPARE(int(out.back()), 77);
}

void tst_SonarDataPktMappings::colourEqualsTheFormula_data()
{
    AddRanges();
}

void tst_SonarDataPktMappings::colourEqualsTheFormula()
{
    QFETCH(float, lo);
    QFETCH(float, hi);
    m_pkt->lo = lo;
    m_pkt->hi = hi;
    for (const int n : {1, 2, 256, 300, 70000}) {
        LqColourMap& copper = m_pkt->palettes[1];
        copper.SetSize(n);
        for (int i = 0; i < 3 * n; ++i)
            copper.m_rgb[i] = static_cast<unsigned char>(i * 7 + i / 256);
        std::vector<u16> in = AllSamples();
        std::vector<u8> out(3 * in.size());
        m_pkt->ProcessRgbImage(in.data(), out.data(), static_cast<int>(in.size()));
        for (const u16 v : in) {
            const int entry = 3 * Formula(v, lo, hi, 0.8, n, n - 1);
            for (int i = 0; i < 3; ++i)
                QCOMPARE(int(out[static_cast<std::size_t>(3 * v + i)]), int(copper.m_rgb[entry + 2 - i]));
        }
    }
}

/// (v / 100)^0.6 × 256 and (v / 100)^0.8 × 200, worked out by hand.
void tst_SonarDataPktMappings::knownValues()
{
    m_pkt->lo = 0.0F;
    m_pkt->hi = 100.0F;
    LqColourMap& copper = m_pkt->palettes[1];
    copper.SetSize(200);
    for (int i = 0; i < 200; ++i) {
        copper.m_rgb[3 * i] = static_cast<unsigned char>(i);
        copper.m_rgb[3 * i + 1] = 1;
        copper.m_rgb[3 * i + 2] = 2;
    }
    std::vector<u16> in{0, 1, 10, 25, 50, 75, 99, 100, 65535};
    std::vector<u8> grey(9);
    m_pkt->ProcessDataImage(in.data(), grey.data(), 9);
    QCOMPARE(grey, (std::vector<u8>{0, 16, 64, 111, 168, 215, 254, 255, 255}));
    std::vector<u8> colour(27);
    m_pkt->ProcessRgbImage(in.data(), colour.data(), 9);
    const std::vector<u8> red{0, 5, 31, 65, 114, 158, 198, 199, 199};
    for (std::size_t i = 0; i < 9; ++i) {
        QCOMPARE(int(colour[3 * i]), 2);
        QCOMPARE(int(colour[3 * i + 1]), 1);
        QCOMPARE(int(colour[3 * i + 2]), int(red[i]));
    }
}

/// The colours are those of now, whatever was computed for the same range before.
void tst_SonarDataPktMappings::paletteMayChange()
{
    m_pkt->hi = 1000.0F;
    LqColourMap& copper = m_pkt->palettes[1];
    std::vector<u16> in{0, 1000};
    std::vector<u8> out(6);
    copper.SetSize(2);
    for (int round = 1; round < 4; ++round) {
        for (int i = 0; i < 6; ++i)
            copper.m_rgb[i] = static_cast<unsigned char>(10 * round + i);
        m_pkt->ProcessRgbImage(in.data(), out.data(), 2);
        const int first = 10 * round;
        for (int i = 0; i < 6; ++i)
            QCOMPARE(int(out[static_cast<std::size_t>(i)]), first + i / 3 * 3 + 2 - i % 3);
    }
    copper.SetSize(1);
    m_pkt->ProcessRgbImage(in.data(), out.data(), 2);
    QCOMPARE(int(out[3]), 32);
}

/// Exactly so many bytes are written, at any address.
void tst_SonarDataPktMappings::anyNumberOfSamples()
{
    m_pkt->hi = 1000.0F;
    LqColourMap& copper = m_pkt->palettes[1];
    copper.SetSize(1);
    for (unsigned char i = 0; i < 3; ++i)
        copper.m_rgb[i] = static_cast<unsigned char>(i + 1);
    std::vector<u16> in(20, 2000);
    for (std::size_t offset = 0; offset < 3; ++offset) {
        for (std::size_t count = 0; count < 14; ++count) {
            std::vector<u8> grey(20, 9);
            m_pkt->ProcessDataImage(in.data() + offset, grey.data() + offset, static_cast<int>(count));
            std::vector<u8> colour(60, 9);
            m_pkt->ProcessRgbImage(in.data() + offset, colour.data() + offset, static_cast<int>(count));
            for (std::size_t i = 0; i < 20; ++i)
                QCOMPARE(int(grey[i]), i >= offset && i < offset + count ? 255 : 9);
            for (std::size_t i = 0; i < 60; ++i) {
                const bool written = i >= offset && i < offset + 3 * count;
                QCOMPARE(int(colour[i]), written ? 3 - int((i - offset) % 3) : 9);
            }
        }
    }
}

void tst_SonarDataPktMappings::emptyPaletteGivesZeros()
{
    std::vector<u16> in{0, 1, 65535};
    std::vector<u8> out(9, 5);
    m_pkt->ProcessRgbImage(in.data(), out.data(), 3);
    QVERIFY(out == std::vector<u8>(9, 0));
    m_pkt->ProcessRgbImage(in.data(), nullptr, 0);
    m_pkt->ProcessDataImage(in.data(), nullptr, -1);
}

/// Mappings of one packet, and of packets with other ranges, do not disturb each other.
void tst_SonarDataPktMappings::mappingsInTwoThreads()
{
    m_pkt->hi = 1000.0F;
    m_pkt->palettes[1].SetSize(1);
    for (int i = 0; i < 3; ++i)
        m_pkt->palettes[1].m_rgb[i] = 9;
    const auto other = std::make_unique<SonarDataPkt>();
    const auto work = [this, &other](bool& right) {
        std::vector<u16> in(1000, 900);
        std::vector<u8> out(3000);
        for (int i = 0; i < 300; ++i) {
            m_pkt->ProcessDataImage(in.data(), out.data(), 1000);
            right = right && out[999] == Formula(900, 0.0F, 1000.0F, 0.6, 256, 255);
            other->ProcessDataImage(in.data(), out.data(), 1000);
            right = right && out[999] == 255;
            m_pkt->ProcessRgbImage(in.data(), out.data(), 1000);
            right = right && out[2999] == 9;
        }
    };
    bool here = true;
    bool there = true;
    std::thread second([&work, &there] { work(there); });
    work(here);
    second.join();
    QVERIFY(here);
    QVERIFY(there);
}

QTEST_GUILESS_MAIN(tst_SonarDataPktMappings)
#include "tst_SonarDataPktMappings.moc"
