#include "ZrUtil/SonarDataPkt.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
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
    void buffersAreReused();
    void emptyImage();
    void largestSizesDoNotWrap();
    void firstRange();
    void samplesOutsideAtEachEnd();
    void zeroIsNotCountedBelow();
    void rangeIsSmoothed();
    void nothingToCount();
    void statsEqualTheDefinition_data();
    void statsEqualTheDefinition();
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

} // namespace

void tst_SonarDataPkt::headerLayout()
{
    static_assert(!std::is_copy_constructible_v<SonarDataPkt>);
    static_assert(!std::is_copy_assignable_v<SonarDataPkt>);
    static_assert(std::is_same_v<decltype(&SonarDataPkt::HasNewData), bool (SonarDataPkt::*)()>);
    static_assert(std::is_same_v<decltype(&SonarDataPkt::UseRgb), bool (SonarDataPkt::*)()>);
    QCOMPARE(std::size(m_pkt->palettes), std::size_t(5));
    QCOMPARE(std::size(m_pkt->hist), std::size_t(65536));
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
    // 65535 × 65535 is -131071 in 32 bits with a sign, 1 in 16 bits; 256 × 256 is 0 in 16 bits.
    u8 byte = 1;
    const zr::span<u8> wrapped(&byte, static_cast<std::size_t>(-131071LL));
    m_pkt->ProcessPayload(2, Header(65535, 65535), wrapped);
    m_pkt->ProcessPayload(2, Header(65535, 65535), zr::span<u8>(&byte, 1));
    m_pkt->ProcessPayload(2, Header(256, 256), zr::span<u8>());
    QCOMPARE(float(m_pkt->hdr.scale), 10.0F);
    QCOMPARE(m_pkt->image.size(), std::size_t(65536));
    // More columns than the header has positions for.
    std::vector<u8> wide(2 * 5000, 7);
    m_pkt->ProcessPayload(2, Header(2, 5000), wide);
    QVERIFY(m_pkt->image == wide);
}

void tst_SonarDataPkt::buffersAreReused()
{
    const u8* const pixels = m_pkt->image.data();
    for (const u16 side : {u16(200), u16(1), u16(256)}) {
        std::vector<u8> payload(std::size_t(side) * side, 3);
        m_pkt->ProcessPayload(2, Header(side, side), payload);
        QCOMPARE(m_pkt->image.size(), payload.size());
        QCOMPARE(static_cast<const u8*>(m_pkt->image.data()), pixels);
    }
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

void tst_SonarDataPkt::statsEqualTheDefinition_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("spread");
    for (const int count : {1, 2, 3, 5, 9999, 10000, 10001, 249999, 250000, 250003, 1000001})
        for (const int spread : {1, 100, 9000, 65536})
            QTest::addRow("%d samples of %d values", count, spread) << count << spread;
}

/// Few samples and many, close together and spread, are counted in different ways.
void tst_SonarDataPkt::statsEqualTheDefinition()
{
    QFETCH(int, count);
    QFETCH(int, spread);
    std::mt19937 random(static_cast<unsigned>(count + spread));
    std::uniform_int_distribution<int> value(0, spread - 1);
    std::vector<u16> samples(static_cast<std::size_t>(count));
    for (u16& sample : samples)
        sample = static_cast<u16>(value(random));
    // A value that is there often enough for any counter of a byte, and one at the end.
    for (std::size_t i = 0; i < samples.size() / 3; ++i)
        samples[3 * i] = 77;
    samples.back() = 65535;

    std::vector<u32> counts(65536);
    for (const u16 sample : samples)
        ++counts[sample];
    const u64 outside = static_cast<u64>(count) / 10000;
    int low = 0;
    u64 sum = 0;
    for (int v = 1; v < 65536; ++v) {
        sum += counts[static_cast<std::size_t>(v)];
        if (sum > outside) {
            low = v;
            break;
        }
    }
    int high = 0;
    sum = 0;
    for (int v = 65535; v >= 0; --v) {
        sum += counts[static_cast<std::size_t>(v)];
        if (sum > outside) {
            high = v;
            break;
        }
    }
    for (int again = 0; again < 2; ++again) {
        m_pkt->lo = m_pkt->hi = 0.0F;
        m_pkt->CalcStats(samples.data(), count);
        QVERIFY(std::equal(counts.begin(), counts.end(), std::begin(m_pkt->hist)));
        QCOMPARE(m_pkt->lo, static_cast<float>(low));
        QCOMPARE(m_pkt->hi, static_cast<float>(high));
    }
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
