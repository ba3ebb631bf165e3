#include "ZrUtil/ZrTypes.h"
#include "ZrUtil/ZrUtil.h"

#include <QtTest>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<u8>;

constexpr std::size_t guardSize = 64;

/// An encoded frame with its terminator; -1 is the byte that is left alone.
using Frame = std::vector<int>;

/// The encoding, byte by byte.
Frame ReferenceStuff(const Bytes& data)
{
    Frame out(data.size() + data.size() / 254 + 3, -1);
    std::size_t codePos = 0, pos = 1;
    int code = 1;
    const auto close = [&] {
        out[codePos] = code;
        codePos = pos++;
        code = 1;
    };
    for (const u8 byte : data) {
        if (byte == 0) {
            close();
        } else {
            out[pos++] = byte;
            if (++code == 255)
                close();
        }
    }
    out[codePos] = code;
    out[pos + 1] = 0;
    out.resize(pos + 2);
    return out;
}

/// The decoding, byte by byte.
Bytes ReferenceUnStuff(const Bytes& frame)
{
    Bytes out;
    std::size_t i = 0;
    while (i < frame.size()) {
        const int code = frame[i++];
        if (code == 0)
            return out;
        for (int k = 1; k < code; ++k) {
            if (i == frame.size())
                return out;
            out.push_back(frame[i++]);
        }
        if (code < 255)
            out.push_back(0);
    }
    return out;
}

/// The bytes of \p frame that belong to blocks: without the byte left alone and the terminator.
Bytes Blocks(const Frame& frame)
{
    return Bytes(frame.begin(), frame.end() - 2);
}

QByteArray Where(const char* what, std::size_t at, std::size_t length)
{
    return QByteArray(what) + " at " + QByteArray::number(static_cast<qulonglong>(at)) + " of input length "
        + QByteArray::number(static_cast<qulonglong>(length));
}

/// Encodes into buffers of two different fillings, so that each byte shows whether it was written. Empty when
/// all is as in the reference, else what is not.
QByteArray CheckStuff(const Bytes& data)
{
    const Frame expected = ReferenceStuff(data);
    for (const u8 fill : {u8(0xA5), u8(0x5A)}) {
        Bytes buffer(data.size() + data.size() / 254 + 3 + guardSize, fill);
        ZrUtil::StuffData(data.data(), static_cast<unsigned int>(data.size()), buffer.data());
        for (std::size_t i = 0; i < buffer.size(); ++i) {
            const bool written = i < expected.size() && expected[i] >= 0;
            if (buffer[i] != (written ? static_cast<u8>(expected[i]) : fill))
                return Where(written ? "wrong byte" : "byte touched", i, data.size());
        }
    }
    return QByteArray();
}

QByteArray CheckUnStuff(const Bytes& frame)
{
    const Bytes expected = ReferenceUnStuff(frame);
    for (const u8 fill : {u8(0xA5), u8(0x5A)}) {
        Bytes buffer(expected.size() + guardSize, fill);
        ZrUtil::UnStuffData(frame.data(), static_cast<unsigned int>(frame.size()), buffer.data());
        for (std::size_t i = 0; i < buffer.size(); ++i) {
            if (buffer[i] != (i < expected.size() ? expected[i] : fill))
                return Where(i < expected.size() ? "wrong byte" : "byte touched", i, frame.size());
        }
    }
    return QByteArray();
}

/// \p data encoded and decoded again must be \p data and one zero.
QByteArray CheckRoundTrip(const Bytes& data)
{
    const Bytes frame = Blocks(ReferenceStuff(data));
    Bytes decoded(data.size() + 1, 0x77);
    ZrUtil::UnStuffData(frame.data(), static_cast<unsigned int>(frame.size()), decoded.data());
    Bytes expected = data;
    expected.push_back(0);
    return decoded == expected ? QByteArray() : Where("round trip differs", 0, data.size());
}

QByteArray CheckAll(const Bytes& data)
{
    QByteArray fault = CheckStuff(data);
    if (fault.isEmpty())
        fault = CheckUnStuff(Blocks(ReferenceStuff(data)));
    if (fault.isEmpty())
        fault = CheckRoundTrip(data);
    return fault;
}

/// Random bytes of which about \p zeros in a thousand are zero.
Bytes RandomBytes(std::mt19937& random, std::size_t length, unsigned int zeros)
{
    Bytes data(length);
    for (u8& byte : data)
        byte = random() % 1000 < zeros ? u8(0) : static_cast<u8>(1 + random() % 255);
    return data;
}

Bytes FromHex(const char* hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    return Bytes(bytes.begin(), bytes.end());
}

} // namespace

#define VERIFY_NO_FAULT(check)                                                                               \
    do {                                                                                                     \
        const QByteArray fault = (check);                                                                    \
        QVERIFY2(fault.isEmpty(), fault.constData());                                                        \
    } while (false)

class tst_ZrUtilStuff : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stuffsTheGivenBytes_data();
    void stuffsTheGivenBytes();
    void stuffsBlocksOf254();
    void unStuffsTheGivenBytes_data();
    void unStuffsTheGivenBytes();
    void unStuffsAFullBlockWithoutAZero();
    void unStuffsNothingFromNothing();
    void inputBeyondTheAddressRangeIsEmpty();
    void lengthsAroundMultiplesOf254_data();
    void lengthsAroundMultiplesOf254();
    void oneZeroAtEveryPosition();
    void randomBytesOfEveryDensity_data();
    void randomBytesOfEveryDensity();
    void anyInputDecodesAsByteByByte();
    void frameCutAtEveryByte();
    void buffersOfExactlyTheStatedSize();
    void unalignedBuffers();
    void decodesInPlace();
    void framesHoldNoZeroAndEndAtTheFirstOne();
    void largeBuffers();
};

void tst_ZrUtilStuff::stuffsTheGivenBytes_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("buffer"); // filled with ee before

    QTest::newRow("empty") << QByteArray("") << QByteArray("01ee00eeee");
    QTest::newRow("data and zero") << QByteArray("1100") << QByteArray("021101ee00eeee");
    QTest::newRow("one zero") << QByteArray("00") << QByteArray("0101ee00eeee");
    QTest::newRow("one byte") << QByteArray("11") << QByteArray("0211ee00eeee");
    QTest::newRow("zero inside") << QByteArray("11220033") << QByteArray("0311220233ee00eeee");
    QTest::newRow("zeros at both ends") << QByteArray("00110000") << QByteArray("0102110101ee00eeee");
    QTest::newRow("eight zeros") << QByteArray("0000000000000000")
                                 << QByteArray("010101010101010101ee00eeee");
    QTest::newRow("seven zeros and a byte")
        << QByteArray("0000000000000055") << QByteArray("010101010101010255ee00eeee");
}

void tst_ZrUtilStuff::stuffsTheGivenBytes()
{
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, buffer);
    const Bytes in = FromHex(data);
    QByteArray out(QByteArray::fromHex(buffer).size(), char(0xEE));
    ZrUtil::StuffData(in.data(), static_cast<unsigned int>(in.size()), reinterpret_cast<u8*>(out.data()));
    QCOMPARE(out.toHex(), buffer);
    VERIFY_NO_FAULT(CheckAll(in));
}

void tst_ZrUtilStuff::stuffsBlocksOf254()
{
    // 253 bytes fit a block that a zero follows, 254 fill one; a new block is then open.
    for (const int length : {253, 254, 255}) {
        const Bytes data(static_cast<std::size_t>(length), 0x42);
        Bytes out(300, 0xEE);
        ZrUtil::StuffData(data.data(), static_cast<unsigned int>(length), out.data());

        QByteArray expected(1, length == 253 ? char(0xFE) : char(0xFF));
        expected += QByteArray(qMin(length, 254), 0x42);
        if (length == 254)
            expected += QByteArray::fromHex("01");
        if (length == 255)
            expected += QByteArray::fromHex("0242");
        expected += QByteArray::fromHex("ee00ee");
        QCOMPARE(
            QByteArray(reinterpret_cast<const char*>(out.data()), expected.size()).toHex(), expected.toHex());
    }
}

void tst_ZrUtilStuff::unStuffsTheGivenBytes_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QByteArray>("data");

    QTest::newRow("the last zero included") << QByteArray("02110100") << QByteArray("110000");
    QTest::newRow("code 0 ends it") << QByteArray("021100021133") << QByteArray("1100");
    QTest::newRow("code 0 first") << QByteArray("000211") << QByteArray("");
    QTest::newRow("cut inside a block: no zero") << QByteArray("051122") << QByteArray("1122");
    QTest::newRow("cut behind the code") << QByteArray("05") << QByteArray("");
    QTest::newRow("full code, cut") << QByteArray("ff1122") << QByteArray("1122");
    QTest::newRow("one empty block") << QByteArray("01") << QByteArray("00");
    QTest::newRow("zero among the data is data") << QByteArray("0411003302aa") << QByteArray("11003300aa00");
    QTest::newRow("eight empty blocks") << QByteArray("0101010101010101") << QByteArray("0000000000000000");
    QTest::newRow("seven empty blocks and a cut one")
        << QByteArray("0101010101010103ab") << QByteArray("00000000000000ab");
    QTest::newRow("ones as data") << QByteArray("090101010101010101") << QByteArray("010101010101010100");
}

void tst_ZrUtilStuff::unStuffsTheGivenBytes()
{
    QFETCH(QByteArray, frame);
    QFETCH(QByteArray, data);
    const Bytes in = FromHex(frame);
    const int guard = 16;
    QByteArray out(data.size() / 2 + guard, char(0xEE));
    ZrUtil::UnStuffData(in.data(), static_cast<unsigned int>(in.size()), reinterpret_cast<u8*>(out.data()));
    QCOMPARE(out.toHex(), data + QByteArray(guard, char(0xEE)).toHex());
}

void tst_ZrUtilStuff::unStuffsAFullBlockWithoutAZero()
{
    Bytes frame{0xFF};
    for (int i = 1; i <= 254; ++i)
        frame.push_back(static_cast<u8>(i));
    Bytes out(300, 0xEE);
    ZrUtil::UnStuffData(frame.data(), static_cast<unsigned int>(frame.size()), out.data());
    QVERIFY(std::memcmp(out.data(), frame.data() + 1, 254) == 0);
    QCOMPARE(int(out[254]), 0xEE);
    QCOMPARE(int(out[255]), 0xEE);

    // A code of 254 stands for 253 bytes and a zero.
    frame[0] = 0xFE;
    frame.pop_back();
    VERIFY_NO_FAULT(CheckUnStuff(frame));
    QCOMPARE(ReferenceUnStuff(frame).size(), std::size_t(254));
}

void tst_ZrUtilStuff::unStuffsNothingFromNothing()
{
    u8 out = 0xEE;
    ZrUtil::UnStuffData(nullptr, 0, &out);
    QCOMPARE(int(out), 0xEE);
}

void tst_ZrUtilStuff::inputBeyondTheAddressRangeIsEmpty()
{
    const std::uintptr_t top = std::numeric_limits<std::uintptr_t>::max();
    const Bytes expected{0x01, 0xEE, 0x00, 0xEE, 0xEE};
    const auto stuff = [](std::uintptr_t address, unsigned int length) {
        Bytes out(5, 0xEE);
        ZrUtil::StuffData(reinterpret_cast<const u8*>(address), length, out.data());
        return out;
    };
    QVERIFY(stuff(top - 9, 100) == expected);
    QVERIFY(stuff(top - 9, 10) == expected); // the end would be address 0
    QVERIFY(stuff(top - 9, 0xFFFFFFFFu) == expected);
    QVERIFY(stuff(0, 0) == expected);
}

void tst_ZrUtilStuff::lengthsAroundMultiplesOf254_data()
{
    QTest::addColumn<int>("byte");

    QTest::newRow("no zero") << 0x11;
    QTest::newRow("all ones") << 0x01;
    QTest::newRow("all ff") << 0xFF;
    QTest::newRow("high bit only") << 0x80;
    QTest::newRow("all zero") << 0x00;
}

void tst_ZrUtilStuff::lengthsAroundMultiplesOf254()
{
    QFETCH(int, byte);
    for (std::size_t length = 0; length < 1100; ++length)
        VERIFY_NO_FAULT(CheckAll(Bytes(length, static_cast<u8>(byte))));
    for (std::size_t blocks = 5; blocks < 12; ++blocks) {
        for (std::size_t length = blocks * 254 - 10; length <= blocks * 254 + 10; ++length)
            VERIFY_NO_FAULT(CheckAll(Bytes(length, static_cast<u8>(byte))));
    }
}

void tst_ZrUtilStuff::oneZeroAtEveryPosition()
{
    for (const std::size_t length : {std::size_t(40), std::size_t(520)}) {
        for (std::size_t i = 0; i < length; ++i) {
            Bytes data(length, 0x33);
            data[i] = 0;
            VERIFY_NO_FAULT(CheckAll(data));
            // And one byte of data among zeros.
            Bytes sparse(length, 0x00);
            sparse[i] = 0x80;
            VERIFY_NO_FAULT(CheckAll(sparse));
        }
    }
}

void tst_ZrUtilStuff::randomBytesOfEveryDensity_data()
{
    QTest::addColumn<int>("zeros");

    for (const int zeros : {0, 1, 4, 20, 60, 100, 300, 500, 800, 950, 1000})
        QTest::newRow(qPrintable(QStringLiteral("%1 in a thousand").arg(zeros))) << zeros;
}

void tst_ZrUtilStuff::randomBytesOfEveryDensity()
{
    QFETCH(int, zeros);
    std::mt19937 random(static_cast<unsigned int>(zeros) + 1u);
    for (int i = 0; i < 600; ++i) {
        const std::size_t length = random() % 1400;
        VERIFY_NO_FAULT(CheckAll(RandomBytes(random, length, static_cast<unsigned int>(zeros))));
    }
}

void tst_ZrUtilStuff::anyInputDecodesAsByteByByte()
{
    // Not encoded data: codes that reach beyond the end, zeros as codes and among the data.
    std::mt19937 random(254);
    for (int i = 0; i < 20000; ++i) {
        Bytes frame(random() % 80);
        const unsigned int highest = i % 3 == 0 ? 255u : i % 3 == 1 ? 20u : 2u;
        for (u8& byte : frame)
            byte = static_cast<u8>((random() % 50 == 0) ? 0u : 1u + random() % highest);
        VERIFY_NO_FAULT(CheckUnStuff(frame));
    }
}

void tst_ZrUtilStuff::frameCutAtEveryByte()
{
    std::mt19937 random(3);
    Bytes data = RandomBytes(random, 300, 30);
    data.resize(700, 0x5C); // full blocks as well
    Bytes frame = Blocks(ReferenceStuff(data));
    while (!frame.empty()) {
        frame.pop_back();
        VERIFY_NO_FAULT(CheckUnStuff(frame));
    }
}

void tst_ZrUtilStuff::buffersOfExactlyTheStatedSize()
{
    // On the heap without a spare byte: an access outside is a fault under AddressSanitizer.
    std::mt19937 random(17);
    for (int i = 0; i < 400; ++i) {
        const std::size_t length = random() % 600;
        const Bytes data = RandomBytes(random, length, random() % 1001);
        const std::unique_ptr<u8[]> in(new u8[length]);
        std::copy(data.begin(), data.end(), in.get());
        const std::unique_ptr<u8[]> out(new u8[length + length / 254 + 3]);
        ZrUtil::StuffData(in.get(), static_cast<unsigned int>(length), out.get());

        const std::size_t size = ReferenceStuff(data).size() - 2;
        const std::unique_ptr<u8[]> frame(new u8[size]);
        std::copy(out.get(), out.get() + size, frame.get());
        const std::unique_ptr<u8[]> back(new u8[length + 1]);
        ZrUtil::UnStuffData(frame.get(), static_cast<unsigned int>(size), back.get());
        QVERIFY(std::equal(data.begin(), data.end(), back.get()));
        QCOMPARE(int(back[length]), 0);
    }
}

void tst_ZrUtilStuff::unalignedBuffers()
{
    std::mt19937 random(23);
    const Bytes data = RandomBytes(random, 700, 40);
    const Frame expected = ReferenceStuff(data);
    for (std::size_t from = 0; from < 8; ++from) {
        for (std::size_t to = 0; to < 8; ++to) {
            Bytes in(from, 0);
            in.insert(in.end(), data.begin(), data.end());
            Bytes out(to + expected.size(), 0xEE);
            ZrUtil::StuffData(in.data() + from, static_cast<unsigned int>(data.size()), out.data() + to);
            const Bytes blocks = Blocks(expected);
            QVERIFY(std::equal(blocks.begin(), blocks.end(), out.data() + to));

            Bytes back(from + data.size() + 1, 0xEE);
            ZrUtil::UnStuffData(
                out.data() + to, static_cast<unsigned int>(blocks.size()), back.data() + from);
            QVERIFY(std::equal(data.begin(), data.end(), back.data() + from));
        }
    }
}

void tst_ZrUtilStuff::decodesInPlace()
{
    std::mt19937 random(29);
    for (int i = 0; i < 3000; ++i) {
        const Bytes data = RandomBytes(random, random() % 900, random() % 1001);
        Bytes buffer = Blocks(ReferenceStuff(data));
        ZrUtil::UnStuffData(buffer.data(), static_cast<unsigned int>(buffer.size()), buffer.data());
        QVERIFY(std::equal(data.begin(), data.end(), buffer.begin()));
        QCOMPARE(int(buffer[data.size()]), 0);
    }
}

void tst_ZrUtilStuff::framesHoldNoZeroAndEndAtTheFirstOne()
{
    std::mt19937 random(31);
    for (int i = 0; i < 500; ++i) {
        const Bytes data = RandomBytes(random, random() % 1000, random() % 1001);
        Bytes line(data.size() + data.size() / 254 + 3);
        ZrUtil::StuffData(data.data(), static_cast<unsigned int>(data.size()), line.data());
        const std::size_t frame = std::strlen(reinterpret_cast<const char*>(line.data()));
        Bytes back(frame);
        ZrUtil::UnStuffData(line.data(), static_cast<unsigned int>(frame), back.data());
        back.resize(data.size());
        QVERIFY(back == data);
    }
}

void tst_ZrUtilStuff::largeBuffers()
{
    std::mt19937 random(37);
    for (const unsigned int zeros : {0u, 4u, 500u})
        VERIFY_NO_FAULT(CheckAll(RandomBytes(random, 3000000, zeros)));
}

QTEST_GUILESS_MAIN(tst_ZrUtilStuff)
#include "tst_ZrUtilStuff.moc"
