#include "ZrUtil/ZrSpan.h"

#include <QByteArray>
#include <QVector>
#include <QtTest/QtTest>

#include <array>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

using ByteSpan = zr::span<u8>;

static_assert(std::is_same_v<ByteSpan::element_type, u8>);
static_assert(std::is_same_v<zr::span<const u8>::element_type, const u8>);
static_assert(std::is_same_v<zr::span<const u8>::value_type, u8>);
static_assert(sizeof(ByteSpan) == sizeof(void*) + sizeof(std::size_t), "a pointer and a length");
static_assert(std::is_trivially_copyable_v<ByteSpan>, "copying a span copies the view");
static_assert(std::is_nothrow_default_constructible_v<ByteSpan>);

static_assert(std::is_convertible_v<std::vector<u8>&, ByteSpan>);
static_assert(std::is_convertible_v<std::array<u8, 3>&, ByteSpan>);
static_assert(std::is_convertible_v<u8 (&)[3], ByteSpan>);
static_assert(std::is_convertible_v<const std::vector<u8>&, zr::span<const u8>>);
static_assert(std::is_convertible_v<ByteSpan, zr::span<const u8>>, "a writable view may be read");
static_assert(!std::is_constructible_v<ByteSpan, const std::vector<u8>&>, "no view may cast const away");
static_assert(!std::is_constructible_v<ByteSpan, zr::span<const u8>>);
static_assert(!std::is_constructible_v<ByteSpan, std::vector<u16>&>, "elements are of one type");
static_assert(!std::is_constructible_v<ByteSpan, std::string&>);

struct Base
{
    int value = 0;
};

struct Derived : Base
{
    int more = 0;
};

static_assert(!std::is_constructible_v<zr::span<Base>, std::vector<Derived>&>, "the elements would not fit");
static_assert(!std::is_constructible_v<ByteSpan, int>);

class tst_ZrSpan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmptyByDefault();
    void viewsPointerAndLength();
    void viewsAnArray();
    void viewsContainers();
    void writesThroughToTheElements();
    void copiesTheViewOnly();
    void walksAllElements();
    void cutsOutAPart();
    void lengthMayExceed32Bits();
    void bytesOfMemory();
    void bytesOfByteArray();
    void toByteArrayCopiesDeeply();
    void toByteArrayOfTooMuchIsEmpty();
};

void tst_ZrSpan::isEmptyByDefault()
{
    constexpr ByteSpan span;
    QVERIFY(!span.data());
    QCOMPARE(span.size(), std::size_t(0));
    QVERIFY(span.empty());
    QVERIFY(span.begin() == span.end());
    int passes = 0;
    for (u8 byte : span) {
        Q_UNUSED(byte)
        ++passes;
    }
    QCOMPARE(passes, 0);
}

void tst_ZrSpan::viewsPointerAndLength()
{
    u8 bytes[] = {7, 8, 9};
    const ByteSpan span(bytes, 2);
    QVERIFY(span.data() == bytes);
    QCOMPARE(span.size(), std::size_t(2));
    QVERIFY(!span.empty());
    QCOMPARE(span[1], u8(8));

    const ByteSpan nothing(bytes, 0);
    QVERIFY(nothing.data() == bytes);
    QVERIFY(nothing.empty());
}

void tst_ZrSpan::viewsAnArray()
{
    u16 numbers[] = {100, 200, 300, 400};
    const zr::span<u16> span = numbers;
    QVERIFY(span.data() == numbers);
    QCOMPARE(span.size(), std::size_t(4)); // elements, not bytes
    QCOMPARE(span[3], u16(400));
}

void tst_ZrSpan::viewsContainers()
{
    std::vector<u8> vector = {1, 2, 3};
    const ByteSpan ofVector = vector;
    QVERIFY(ofVector.data() == vector.data());
    QCOMPARE(ofVector.size(), std::size_t(3));

    std::array<double, 2> array = {0.5, 1.5};
    const zr::span<double> ofArray = array;
    QVERIFY(ofArray.data() == array.data());
    QCOMPARE(ofArray.size(), std::size_t(2));

    QVector<u8> qtVector = {4, 5};
    const ByteSpan ofQtVector = qtVector;
    QVERIFY(ofQtVector.data() == qtVector.data());
    QCOMPARE(ofQtVector.size(), std::size_t(2));

    const std::vector<u8> readOnly = {6};
    const zr::span<const u8> ofReadOnly = readOnly;
    QCOMPARE(ofReadOnly[0], u8(6));

    std::vector<u8> none;
    QVERIFY(ByteSpan(none).empty());
}

void tst_ZrSpan::writesThroughToTheElements()
{
    std::vector<u8> vector = {1, 2, 3};
    const ByteSpan span = vector;
    span[1] = 20;
    *span.begin() = 10;
    QCOMPARE(vector, (std::vector<u8>{10, 20, 3}));
}

void tst_ZrSpan::copiesTheViewOnly()
{
    u8 bytes[] = {1, 2};
    const ByteSpan span(bytes);
    ByteSpan copy = span;
    QVERIFY(copy.data() == bytes);
    copy = ByteSpan();
    QCOMPARE(span.size(), std::size_t(2));
}

void tst_ZrSpan::walksAllElements()
{
    u8 bytes[] = {1, 2, 4, 8};
    unsigned sum = 0;
    for (u8 byte : ByteSpan(bytes))
        sum += byte;
    QCOMPARE(sum, 15u);
    QVERIFY(ByteSpan(bytes).end() == bytes + 4);
}

void tst_ZrSpan::cutsOutAPart()
{
    u8 bytes[] = {1, 2, 4, 8};
    const ByteSpan span(bytes);
    const ByteSpan middle = span.subspan(1, 2);
    QVERIFY(middle.data() == bytes + 1);
    QCOMPARE(middle.size(), std::size_t(2));
    QVERIFY(span.subspan(4, 0).empty());
    QCOMPARE(span.subspan(0, 4).size(), std::size_t(4));
}

void tst_ZrSpan::lengthMayExceed32Bits()
{
    u8 byte = 0;
    const std::size_t length = std::size_t(5) << 30;
    const ByteSpan span(&byte, length); // never looked into
    QCOMPARE(span.size(), length);
    QVERIFY(!span.empty());
}

void tst_ZrSpan::bytesOfMemory()
{
    const u32 number = 0x01020304;
    const ByteSpan span = zr::bytes_of(&number, sizeof number);
    QVERIFY(static_cast<const void*>(span.data()) == &number);
    QCOMPARE(span.size(), std::size_t(4));
    QVERIFY(zr::bytes_of(nullptr, 0).empty());
}

void tst_ZrSpan::bytesOfByteArray()
{
    const QByteArray array("a\0b", 3);
    const ByteSpan span = zr::bytes_of(array);
    QVERIFY(static_cast<const void*>(span.data()) == array.constData());
    QCOMPARE(span.size(), std::size_t(3)); // the zero byte behind the array is not part of it
    QCOMPARE(span[1], u8(0));
    QVERIFY(zr::bytes_of(QByteArray()).empty());
}

void tst_ZrSpan::toByteArrayCopiesDeeply()
{
    u8 bytes[] = {'x', 0, 0xFF};
    const QByteArray copy = zr::to_byte_array(bytes);
    bytes[0] = 'y';
    QCOMPARE(copy, QByteArray("x\0\xFF", 3));
    QCOMPARE(zr::to_byte_array(ByteSpan()), QByteArray());
}

void tst_ZrSpan::toByteArrayOfTooMuchIsEmpty()
{
    u8 byte = 'x';
    QVERIFY(zr::to_byte_array(ByteSpan(&byte, 0x80000000u)).isEmpty());
    QVERIFY(zr::to_byte_array(ByteSpan(&byte, std::size_t(1) << 32)).isEmpty());
    QVERIFY(zr::to_byte_array(ByteSpan(&byte, SIZE_MAX)).isEmpty());
}

QTEST_GUILESS_MAIN(tst_ZrSpan)
#include "tst_ZrSpan.moc"
