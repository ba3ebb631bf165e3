// The value types of a log, held byte by byte against texts of hexadecimal digits written by hand.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrLogItemInf.h"
#include "ZrUtil/ZrLogRec.h"

#include <QtTest/QtTest>

#include <cstddef>
#include <cstring>
#include <type_traits>

static_assert(std::is_trivially_copyable_v<ZrLogItem>);
static_assert(std::is_base_of_v<CRecType, ZrLogItemInf>);
static_assert(std::is_trivially_copyable_v<ZrLogItemInf>, "copied and moved by value");
static_assert(sizeof(ZrLogItemInf) == 16);
static_assert(std::is_trivially_copyable_v<ZrLogRec>, "stored byte for byte");
static_assert(alignof(ZrLogRec) == 4);
static_assert(offsetof(ZrLogRec, time) == 0 && offsetof(ZrLogRec, latitude) == 8
    && offsetof(ZrLogRec, longitude) == 16 && offsetof(ZrLogRec, spare24) == 24
    && offsetof(ZrLogRec, spare32) == 32 && offsetof(ZrLogRec, spare40) == 40
    && offsetof(ZrLogRec, spare44) == 44 && offsetof(ZrLogRec, depth) == 60
    && offsetof(ZrLogRec, heading) == 64 && offsetof(ZrLogRec, pitch) == 68 && offsetof(ZrLogRec, roll) == 72
    && offsetof(ZrLogRec, spare76) == 76);
static_assert(std::is_same_v<decltype(ZrLogRec::crdPos), std::array<u64, 8>>);

namespace {

const char* const fileHeaderHex = R"(
    44 33 22 11                                       # magic
    30 00 00 00                                       # headerSize
    5a 72 4c 6f 67 48 65 61 64 65 72 78 78 78 78 00   # tag
    01 00 00 00                                       # version
    00 00 00 00                                       # gap
    00 00 00 00 00 00 00 00                           # reserved
    54 e3 25 a5 55 df d7 41                           # created: 1602049684.592
)";

const char* const itemHeaderHex = R"(
    dd cc bb aa               # magic
    28 00 00 00               # headerSize
    02 01                     # type
    04 03                     # format
    06 05                     # sub
    00 00                     # reserved
    00 00 00 00 00 00 f8 3f   # time: 1.5
    01 00                     # compressed
    08 07                     # source
    0c 0b 0a 09               # dataSize
    10 0f 0e 0d               # storedSize
    00 00 00 00               # reserved
)";

template <std::size_t N> QByteArray ToArray(const std::array<u8, N>& bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(N));
}

const u8* Raw(const QByteArray& bytes)
{
    return reinterpret_cast<const u8*>(bytes.constData());
}

QByteArray Memory(const ZrLogRec& rec)
{
    return QByteArray(reinterpret_cast<const char*>(&rec), sizeof rec);
}

ZrLogItem FullItem()
{
    ZrLogItem item;
    item.type = 0x0102;
    item.format = 0x0304;
    item.sub = 0x0506;
    item.time = 1.5;
    item.compressed = 1;
    item.source = 0x0708;
    item.dataSize = 0x090A0B0C;
    item.storedSize = 0x0D0E0F10;
    return item;
}

} // namespace

class tst_ZrLogItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fileHeaderIsEncodedByteForByte();
    void fileHeaderIsDecodedByteForByte();
    void fileHeaderDecodesWhateverStandsThere();
    void fileHeaderGapIsIgnored();
    void itemHeaderIsEncodedByteForByte();
    void itemHeaderIsDecodedByteForByte();
    void itemHeaderDecodesWhateverStandsThere();
    void newItemHeaderIsEmpty();
    void headerWithoutStoredBytesMayBeAPlaceholder();
    void itemKnowsItsRecordType();
    void infIsZeroByDefault();
    void infTakesFiveFieldsOfTheItem();
    void infMayTravelInAVariant();
    void recIsZeroByDefault();
    void recTakesTimeAndPositions();
    void recStandsInMemoryAsInTheIndexFile();
    void fixtureWritesTheSameBytes();
};

void tst_ZrLogItem::fileHeaderIsEncodedByteForByte()
{
    ZrLogHeader header;
    header.created = 1602049684.592;
    QCOMPARE(ToArray(header.Encode()).toHex(), FromHex(fileHeaderHex).toHex());
    QCOMPARE(u32(ZrLogHeader::Size), 48u);
    QCOMPARE(u32(ZrLogHeader::Magic), 0x11223344u);
}

void tst_ZrLogItem::fileHeaderIsDecodedByteForByte()
{
    const QByteArray bytes = FromHex(fileHeaderHex);
    QCOMPARE(bytes.size(), 48);
    const ZrLogHeader header = ZrLogHeader::Decode(Raw(bytes));
    QCOMPARE(header.magic, 0x11223344u);
    QCOMPARE(header.headerSize, 48u);
    QCOMPARE(QByteArray(header.tag.data(), 16), QByteArray("ZrLogHeaderxxxx", 16));
    QCOMPARE(header.version, 1u);
    QCOMPARE(header.reserved, u64(0));
    QCOMPARE(header.created, 1602049684.592);
}

void tst_ZrLogItem::fileHeaderDecodesWhateverStandsThere()
{
    const ZrLogHeader header = ZrLogHeader::Decode(Raw(QByteArray(48, '\xFE')));
    QCOMPARE(header.magic, 0xFEFEFEFEu);
    QCOMPARE(header.headerSize, 0xFEFEFEFEu);
    QCOMPARE(header.tag[15], '\xFE');
    QCOMPARE(header.version, 0xFEFEFEFEu);
    QCOMPARE(header.reserved, u64(0xFEFEFEFEFEFEFEFEu));
}

void tst_ZrLogItem::fileHeaderGapIsIgnored()
{
    QByteArray bytes = FromHex(fileHeaderHex);
    bytes.replace(28, 4, "\xFF\xFF\xFF\xFF");
    const ZrLogHeader header = ZrLogHeader::Decode(Raw(bytes));
    QCOMPARE(header.version, 1u);
    QCOMPARE(header.reserved, u64(0));
    QCOMPARE(ToArray(header.Encode()).toHex(), FromHex(fileHeaderHex).toHex());
}

void tst_ZrLogItem::itemHeaderIsEncodedByteForByte()
{
    QCOMPARE(ToArray(FullItem().Encode()).toHex(), FromHex(itemHeaderHex).toHex());
    QCOMPARE(u32(ZrLogItem::Size), 40u);
    QCOMPARE(u32(ZrLogItem::Magic), 0xAABBCCDDu);
}

void tst_ZrLogItem::itemHeaderIsDecodedByteForByte()
{
    const QByteArray bytes = FromHex(itemHeaderHex);
    QCOMPARE(bytes.size(), 40);
    const ZrLogItem item = ZrLogItem::Decode(Raw(bytes));
    QCOMPARE(item.magic, 0xAABBCCDDu);
    QCOMPARE(item.headerSize, 40u);
    QCOMPARE(item.type, u16(0x0102));
    QCOMPARE(item.format, u16(0x0304));
    QCOMPARE(item.sub, u16(0x0506));
    QCOMPARE(item.reserved0, u16(0));
    QCOMPARE(item.time, 1.5);
    QCOMPARE(item.compressed, u16(1));
    QCOMPARE(item.source, u16(0x0708));
    QCOMPARE(item.dataSize, 0x090A0B0Cu);
    QCOMPARE(item.storedSize, 0x0D0E0F10u);
    QCOMPARE(item.reserved1, 0u);
}

void tst_ZrLogItem::itemHeaderDecodesWhateverStandsThere()
{
    const ZrLogItem item = ZrLogItem::Decode(Raw(QByteArray(40, '\xFE')));
    QCOMPARE(item.magic, 0xFEFEFEFEu);
    QCOMPARE(item.headerSize, 0xFEFEFEFEu);
    QCOMPARE(item.reserved0, u16(0xFEFE));
    QCOMPARE(item.storedSize, 0xFEFEFEFEu);
    QCOMPARE(item.reserved1, 0xFEFEFEFEu);
    // Reserved fields of a foreign file survive a copy of its header.
    QCOMPARE(ToArray(item.Encode()), QByteArray(40, '\xFE'));
}

void tst_ZrLogItem::newItemHeaderIsEmpty()
{
    QByteArray expected = QByteArray::fromHex("ddccbbaa28000000");
    expected += QByteArray(32, '\0');
    QCOMPARE(ToArray(ZrLogItem().Encode()).toHex(), expected.toHex());
}

void tst_ZrLogItem::headerWithoutStoredBytesMayBeAPlaceholder()
{
    const QByteArray bytes = FromHex(itemHeaderHex);
    QVERIFY(!ZrLogItem::IsPlaceholder(Raw(bytes)));
    QVERIFY(ZrLogItem::IsPlaceholder(Raw(Patched(bytes, 32, QByteArray(4, '\0')))));
    for (int byte = 32; byte < 36; ++byte)
        QVERIFY(!ZrLogItem::IsPlaceholder(Raw(Patched(QByteArray(40, '\0'), byte, "\x01"))));
}

void tst_ZrLogItem::itemKnowsItsRecordType()
{
    const CRecType type = FullItem().RecType();
    QCOMPARE(type.sub, u16(0x0506));
    QCOMPARE(type.type, u16(0x0102));
}

void tst_ZrLogItem::infIsZeroByDefault()
{
    const ZrLogItemInf inf;
    QVERIFY(inf == CRecType(0, 0));
    QCOMPARE(inf.source, u16(0));
    QCOMPARE(inf.format, u16(0));
    QCOMPARE(inf.time, 0.0);
}

void tst_ZrLogItem::infTakesFiveFieldsOfTheItem()
{
    const ZrLogItemInf inf(FullItem());
    QCOMPARE(inf.sub, u16(0x0506));
    QCOMPARE(inf.type, u16(0x0102));
    QCOMPARE(inf.source, u16(0x0708));
    QCOMPARE(inf.format, u16(0x0304));
    QCOMPARE(inf.time, 1.5);

    // Members in this order: sub, type, source, format, time.
    u16 words[4];
    std::memcpy(words, &inf, sizeof words);
    QCOMPARE(words[0], u16(0x0506));
    QCOMPARE(words[1], u16(0x0102));
    QCOMPARE(words[2], u16(0x0708));
    QCOMPARE(words[3], u16(0x0304));

    ZrLogItemInf copy = inf;
    const ZrLogItemInf moved = std::move(copy);
    QVERIFY(moved == inf);
    QCOMPARE(moved.time, 1.5);
}

void tst_ZrLogItem::infMayTravelInAVariant()
{
    const QVariant variant = QVariant::fromValue(ZrLogItemInf(FullItem()));
    QCOMPARE(variant.value<ZrLogItemInf>().source, u16(0x0708));
}

void tst_ZrLogItem::recIsZeroByDefault()
{
    QCOMPARE(Memory(ZrLogRec()), QByteArray(160, '\0'));
}

void tst_ZrLogItem::recTakesTimeAndPositions()
{
    const std::array<u64, 8> positions = {1, 2, 3, 4, 5, 6, 7, 0xFFFFFFFFFFFFFFFFu};
    const ZrLogRec rec(ZrLogItemInf(FullItem()), 0x0102030405060708u, positions);
    QByteArray expected = QByteArray::fromHex("000000000000f83f");
    expected += QByteArray(84 - 8, '\0');
    expected += QByteArray::fromHex("0807060504030201");
    for (char n = 1; n <= 7; ++n)
        expected += n + QByteArray(7, '\0');
    expected += QByteArray(8, '\xFF');
    expected += QByteArray(4, '\0');
    QCOMPARE(expected.size(), 160);
    QCOMPARE(Memory(rec).toHex(), expected.toHex());
}

void tst_ZrLogItem::recStandsInMemoryAsInTheIndexFile()
{
    ZrLogRec rec;
    rec.latitude = 1.0;
    rec.longitude = -1.0;
    rec.altitude = 1.0f;
    rec.depth = 2.0f;
    rec.heading = 4.0f;
    rec.pitch = -1.0f;
    rec.roll = -2.0f;
    rec.spare156 = 0x01020304;
    QByteArray expected(160, '\0');
    expected.replace(8, 8, QByteArray::fromHex("000000000000f03f"));
    expected.replace(16, 8, QByteArray::fromHex("000000000000f0bf"));
    expected.replace(56, 20, QByteArray::fromHex("0000803f 00000040 00008040 000080bf 000000c0"));
    expected.replace(156, 4, QByteArray::fromHex("04030201"));
    QCOMPARE(Memory(rec).toHex(), expected.toHex());
}

/// The other tests of the log stand on the fixture's assembler: it is held against the same digits.
void tst_ZrLogItem::fixtureWritesTheSameBytes()
{
    QCOMPARE(FileHeader(1602049684.592).toHex(), FromHex(fileHeaderHex).toHex());
    Item item;
    item.type = 0x0102;
    item.format = 0x0304;
    item.sub = 0x0506;
    item.time = 1.5;
    item.source = 0x0708;
    QByteArray expected = FromHex(itemHeaderHex);
    expected.replace(24, 2, QByteArray("\x00\x00", 2));
    expected.replace(28, 8, QByteArray::fromHex("0300000003000000"));
    item.payload = "abc";
    QCOMPARE(item.Bytes().toHex(), expected.toHex() + "616263");
}

QTEST_GUILESS_MAIN(tst_ZrLogItem)
#include "tst_ZrLogItem.moc"
