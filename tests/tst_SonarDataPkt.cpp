#include "ZrUtil/SonarDataPkt.h"

#include <QtTest/QtTest>

#include <cmath>
#include <cstddef>
#include <memory>
#include <numeric>
#include <thread>
#include <type_traits>

class tst_SonarDataPkt : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_pkt = std::make_unique<SonarDataPkt>(); }

    void headerLayout();
    void newPacketShowsTheTestImage();
    void payloadIsTaken();
    void payloadsThatAreDropped_data();
    void payloadsThatAreDropped();
    void emptyImage();
    void largestSizesDoNotWrap();
    void firstRange();
    void samplesOutsideAtEachEnd();
    void zeroIsNotCountedBelow();
    void rangeIsSmoothed();
    void nothingToCount();
    void greyEqualsTheFormula_data();
    void greyEqualsTheFormula();
    void colourEqualsTheFormula_data();
    void colourEqualsTheFormula();
    void emptyPaletteGivesZeros();
    void palettesAreMissing();
    void twoThreads();

private:
    std::unique_ptr<SonarDataPkt> m_pkt;
};

namespace {

SonarDataHdr Header(u16 rows, u16 cols)
{
    SonarDataHdr header = {};
    header.scale = 2.5F;
    header.rows = rows;
    header.cols = cols;
    header.colPos[0] = -7;
    header.colPos[1023] = 8;
    return header;
}

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
}

} // namespace

void tst_SonarDataPkt::headerLayout()
{
    static_assert(!std::is_copy_constructible_v<SonarDataPkt>);
    static_assert(!std::is_copy_assignable_v<SonarDataPkt>);
    QCOMPARE(sizeof(SonarDataHdr), std::size_t(2066));
    QCOMPARE(offsetof(SonarDataHdr, scale), std::size_t(0));
    QCOMPARE(offsetof(SonarDataHdr, rows), std::size_t(12));
    QCOMPARE(offsetof(SonarDataHdr, cols), std::size_t(14));
    QCOMPARE(offsetof(SonarDataHdr, colPos), std::size_t(16));
    QCOMPARE(offsetof(SonarDataHdr, reservedEnd), std::size_t(2064));
}

void tst_SonarDataPkt::newPacketShowsTheTestImage()
{
    QCOMPARE(float(m_pkt->hdr.scale), 10.0F);
    QCOMPARE(m_pkt->lo, 0.0F);
    QCOMPARE(m_pkt->hi, 0.0F);
    QVERIFY(m_pkt->HasNewData());
    QVERIFY(!m_pkt->UseRgb());
    QCOMPARE(u16(m_pkt->hdr.rows), u16(256));
    QCOMPARE(u16(m_pkt->hdr.cols), u16(256));
    QCOMPARE(m_pkt->image.size(), std::size_t(65536));
    QCOMPARE(m_pkt->rgbImage.size(), std::size_t(196608));
    for (std::size_t i = 0; i < 65536; ++i) {
        QCOMPARE(int(m_pkt->image[i]), int(i / 256));
        QCOMPARE(int(m_pkt->rgbImage[3 * i]), int(i / 256));
        QCOMPARE(int(m_pkt->rgbImage[3 * i + 1]), 0);
        QCOMPARE(int(m_pkt->rgbImage[3 * i + 2]), 0);
    }
    for (int c = 0; c < 256; ++c)
        QCOMPARE(int(m_pkt->hdr.colPos[c]), c * 50 - 6400);
    QCOMPARE(int(m_pkt->hdr.colPos[256]), 0);
}

void tst_SonarDataPkt::payloadIsTaken()
{
    m_pkt->newData = false;
    m_pkt->useRgb = true;
    std::vector<u8> payload{1, 2, 3, 4, 5, 6};
    m_pkt->ProcessPayload(2, Header(2, 3), payload);
    QVERIFY(m_pkt->HasNewData());
    QVERIFY(!m_pkt->UseRgb());
    QVERIFY(m_pkt->image == payload);
    QCOMPARE(float(m_pkt->hdr.scale), 2.5F);
    QCOMPARE(int(m_pkt->hdr.colPos[0]), -7);
    QCOMPARE(int(m_pkt->hdr.colPos[1023]), 8);
}

void tst_SonarDataPkt::payloadsThatAreDropped_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("size");
    QTest::newRow("a byte short") << 2 << 5;
    QTest::newRow("a byte long") << 2 << 7;
    QTest::newRow("empty") << 2 << 0;
    QTest::newRow("type 0") << 0 << 6;
    QTest::newRow("type 1") << 1 << 6;
    QTest::newRow("type 3") << 3 << 6;
    QTest::newRow("type -2") << -2 << 6;
}

void tst_SonarDataPkt::payloadsThatAreDropped()
{
    QFETCH(int, type);
    QFETCH(int, size);
    m_pkt->newData = false;
    m_pkt->useRgb = true;
    std::vector<u8> payload(static_cast<std::size_t>(size), 9);
    m_pkt->ProcessPayload(type, Header(2, 3), payload);
    QVERIFY(!m_pkt->HasNewData());
    QVERIFY(m_pkt->UseRgb());
    QCOMPARE(u16(m_pkt->hdr.rows), u16(256));
    QCOMPARE(m_pkt->image.size(), std::size_t(65536));
}

void tst_SonarDataPkt::emptyImage()
{
    m_pkt->ProcessPayload(2, Header(0, 900), zr::span<u8>());
    QVERIFY(m_pkt->image.empty());
    QCOMPARE(u16(m_pkt->hdr.cols), u16(900));
}

void tst_SonarDataPkt::largestSizesDoNotWrap()
{
    // 65535 × 65535 is 131071 beyond a multiple of 2^32, and negative as an int.
    std::vector<u8> payload(131071 - 65536 * 2 + 65536, 1);
    m_pkt->ProcessPayload(2, Header(65535, 65535), payload);
    QCOMPARE(u16(m_pkt->hdr.rows), u16(256));
}

void tst_SonarDataPkt::firstRange()
{
    std::vector<u16> samples{0, 500, 20, 65535, 0};
    m_pkt->CalcStats(samples.data(), 5);
    QCOMPARE(m_pkt->lo, 20.0F);
    QCOMPARE(m_pkt->hi, 65535.0F);
    QCOMPARE(m_pkt->hist[0], 2U);
    QCOMPARE(m_pkt->hist[500], 1U);
    QCOMPARE(m_pkt->hist[501], 0U);
}

void tst_SonarDataPkt::samplesOutsideAtEachEnd()
{
    std::vector<u16> samples(20000, 1000);
    samples[0] = 1;
    samples[1] = 2;
    samples[2] = 60000;
    samples[3] = 60001;
    m_pkt->CalcStats(samples.data(), 20000);
    QCOMPARE(m_pkt->lo, 1000.0F);
    QCOMPARE(m_pkt->hi, 1000.0F);
    // One more at each end and they count.
    samples[4] = 3;
    samples[5] = 59999;
    m_pkt->lo = m_pkt->hi = 0.0F;
    m_pkt->CalcStats(samples.data(), 20000);
    QCOMPARE(m_pkt->lo, 3.0F);
    QCOMPARE(m_pkt->hi, 59999.0F);
}

void tst_SonarDataPkt::zeroIsNotCountedBelow()
{
    std::vector<u16> samples(1000, 0);
    samples[0] = 7;
    m_pkt->CalcStats(samples.data(), 1000);
    QCOMPARE(m_pkt->lo, 7.0F);
    QCOMPARE(m_pkt->hi, 7.0F);
}

void tst_SonarDataPkt::rangeIsSmoothed()
{
    std::vector<u16> samples{100, 1000};
    m_pkt->CalcStats(samples.data(), 2);
    samples = {203, 2004};
    m_pkt->CalcStats(samples.data(), 2);
    QCOMPARE(m_pkt->lo, (100.0F * 4.0F + 203.0F) / 5.0F);
    QCOMPARE(m_pkt->hi, 2004.0F / 5.0F);
    // A range of which one bound is 0 is smoothed as well.
    m_pkt->lo = 0.0F;
    m_pkt->hi = 3.0F;
    m_pkt->CalcStats(samples.data(), 2);
    QCOMPARE(m_pkt->lo, 203.0F / 5.0F);
    QCOMPARE(m_pkt->hi, 2004.0F / 5.0F);
}

void tst_SonarDataPkt::nothingToCount()
{
    m_pkt->lo = 3.0F;
    m_pkt->hi = 4.0F;
    std::vector<u16> zeros(50, 0);
    m_pkt->CalcStats(zeros.data(), 50);
    m_pkt->CalcStats(zeros.data(), 0);
    m_pkt->CalcStats(nullptr, -3);
    QCOMPARE(m_pkt->lo, 3.0F);
    QCOMPARE(m_pkt->hi, 4.0F);
    QCOMPARE(m_pkt->hist[0], 0U);
}

void tst_SonarDataPkt::greyEqualsTheFormula_data()
{
    AddRanges();
}

void tst_SonarDataPkt::greyEqualsTheFormula()
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

void tst_SonarDataPkt::colourEqualsTheFormula_data()
{
    AddRanges();
}

void tst_SonarDataPkt::colourEqualsTheFormula()
{
    QFETCH(float, lo);
    QFETCH(float, hi);
    m_pkt->lo = lo;
    m_pkt->hi = hi;
    for (const int n : {1, 2, 256, 300}) {
        LqColourMap& copper = m_pkt->palettes[1];
        copper.SetSize(n);
        for (int i = 0; i < 3 * n; ++i)
            copper.m_rgb[i] = static_cast<unsigned char>(i * 7);
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

void tst_SonarDataPkt::emptyPaletteGivesZeros()
{
    std::vector<u16> in{0, 1, 65535};
    std::vector<u8> out(9, 5);
    m_pkt->ProcessRgbImage(in.data(), out.data(), 3);
    QVERIFY(out == std::vector<u8>(9, 0));
    m_pkt->ProcessRgbImage(in.data(), nullptr, 0);
    m_pkt->ProcessDataImage(in.data(), nullptr, -1);
}

void tst_SonarDataPkt::palettesAreMissing()
{
    m_pkt->palettes[3].SetSize(2);
    m_pkt->BuildPalettes();
    for (const LqColourMap& palette : m_pkt->palettes)
        QCOMPARE(palette.m_count, 0);
}

/// A reader under the lock sees whole images only.
void tst_SonarDataPkt::twoThreads()
{
    std::thread receiver([this] {
        for (int i = 0; i < 2000; ++i) {
            const auto side = static_cast<u16>(i % 2 == 0 ? 10 : 30);
            std::vector<u8> payload(std::size_t(side) * side, static_cast<u8>(side));
            m_pkt->ProcessPayload(2, Header(side, side), payload);
        }
    });
    bool whole = true;
    for (int i = 0; i < 2000; ++i) {
        m_pkt->Lock();
        const std::size_t size = std::size_t(m_pkt->hdr.rows) * m_pkt->hdr.cols;
        whole = whole && m_pkt->image.size() == size
            && (size == 65536
                || (m_pkt->image.front() == m_pkt->hdr.rows && m_pkt->image.back() == m_pkt->hdr.rows));
        m_pkt->Unlock();
        m_pkt->HasNewData();
    }
    receiver.join();
    QVERIFY(whole);
}

QTEST_GUILESS_MAIN(tst_SonarDataPkt)
#include "tst_SonarDataPkt.moc"
