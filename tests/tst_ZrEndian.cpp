#include "ZrUtil/ZrEndian.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

/// The bytes that `store_le` writes for \p value, as hexadecimal digits.
template <class T> QByteArray Stored(T value)
{
    u8 bytes[sizeof(T)];
    zr::store_le(bytes, value);
    return QByteArray(reinterpret_cast<const char*>(bytes), sizeof bytes).toHex();
}

template <class T> T Loaded(const char* hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    return zr::load_le<T>(reinterpret_cast<const u8*>(bytes.constData()));
}

} // namespace

class tst_ZrEndian : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void storesLowestByteFirst();
    void loadsLowestByteFirst();
    void storesFloatingPointAsItsBits();
    void loadsFloatingPointFromItsBits();
    void keepsTheBitsOfNan();
    void writesExactlyTheWidth();
    void needsNoAlignment();
    void hostsOfAnyByteOrderAgree();
};

void tst_ZrEndian::storesLowestByteFirst()
{
    QCOMPARE(Stored<u8>(0xA5), QByteArray("a5"));
    QCOMPARE(Stored<u16>(0x1234), QByteArray("3412"));
    QCOMPARE(Stored<u32>(0x11223344), QByteArray("44332211"));
    QCOMPARE(Stored<u64>(0x0123456789ABCDEFu), QByteArray("efcdab8967452301"));
    QCOMPARE(Stored<i8>(-1), QByteArray("ff"));
    QCOMPARE(Stored<i16>(-2), QByteArray("feff"));
    QCOMPARE(Stored<i32>(std::numeric_limits<i32>::min()), QByteArray("00000080"));
    QCOMPARE(Stored<i64>(-1), QByteArray("ffffffffffffffff"));
}

void tst_ZrEndian::loadsLowestByteFirst()
{
    QCOMPARE(Loaded<u8>("a5"), u8(0xA5));
    QCOMPARE(Loaded<u16>("3412"), u16(0x1234));
    QCOMPARE(Loaded<u32>("ddccbbaa"), u32(0xAABBCCDD));
    QCOMPARE(Loaded<u64>("efcdab8967452301"), u64(0x0123456789ABCDEFu));
    QCOMPARE(Loaded<i8>("80"), i8(-128));
    QCOMPARE(Loaded<i16>("ff7f"), i16(32767));
    QCOMPARE(Loaded<i32>("feffffff"), i32(-2));
    QCOMPARE(Loaded<i64>("0000000000000080"), std::numeric_limits<i64>::min());
}

void tst_ZrEndian::storesFloatingPointAsItsBits()
{
    QCOMPARE(Stored(1.0), QByteArray("000000000000f03f"));
    QCOMPARE(Stored(-0.0), QByteArray("0000000000000080"));
    QCOMPARE(Stored(std::numeric_limits<double>::infinity()), QByteArray("000000000000f07f"));
    QCOMPARE(Stored(std::numeric_limits<double>::denorm_min()), QByteArray("0100000000000000"));
    QCOMPARE(Stored(1.0f), QByteArray("0000803f"));
    QCOMPARE(Stored(-2.0f), QByteArray("000000c0"));
}

void tst_ZrEndian::loadsFloatingPointFromItsBits()
{
    QCOMPARE(Loaded<double>("182d4454fb210940"), 3.141592653589793);
    QVERIFY(std::signbit(Loaded<double>("0000000000000080")));
    QCOMPARE(Loaded<float>("0000c03f"), 1.5f);
}

void tst_ZrEndian::keepsTheBitsOfNan()
{
    const double nan = Loaded<double>("000000000000f8ff"); // quiet, with the sign set
    QVERIFY(std::isnan(nan));
    QCOMPARE(Stored(nan), QByteArray("000000000000f8ff"));
    QCOMPARE(Stored(Loaded<double>("efbeadde0000f87f")), QByteArray("efbeadde0000f87f"));
}

void tst_ZrEndian::writesExactlyTheWidth()
{
    u8 bytes[6] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
    zr::store_le<u32>(bytes + 1, 0);
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(bytes), 6).toHex(), QByteArray("ee00000000ee"));
}

void tst_ZrEndian::needsNoAlignment()
{
    alignas(8) u8 bytes[24] = {};
    for (int offset = 0; offset < 8; ++offset) {
        zr::store_le<u64>(bytes + offset, 0x8877665544332211u);
        QCOMPARE(bytes[offset], u8(0x11));
        QCOMPARE(bytes[offset + 7], u8(0x88));
        QCOMPARE(zr::load_le<u64>(bytes + offset), u64(0x8877665544332211u));
        zr::store_le<double>(bytes + offset, 0.1);
        QCOMPARE(zr::load_le<double>(bytes + offset), 0.1);
    }
}

/// The way taken on big-endian hosts gives the same bytes as the one taken on this host.
void tst_ZrEndian::hostsOfAnyByteOrderAgree()
{
    for (u64 value : {u64(0), u64(1), u64(0x8877665544332211u), ~u64(0)}) {
        u8 bytes[8];
        zr::detail::store_bytes(bytes, value);
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(bytes), 8).toHex(), Stored(value));
        QCOMPARE(zr::detail::load_bytes<u64>(bytes), value);
        const u16 half = static_cast<u16>(value);
        zr::detail::store_bytes(bytes, half);
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(bytes), 2).toHex(), Stored(half));
        QCOMPARE(zr::detail::load_bytes<u16>(bytes), half);
    }
}

QTEST_GUILESS_MAIN(tst_ZrEndian)
#include "tst_ZrEndian.moc"
