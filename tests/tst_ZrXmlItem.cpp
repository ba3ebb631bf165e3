#include "XmlChecks.h"
#include "ZrUtil/ZrXmlItem.h"

#include <QColor>
#include <QMatrix4x4>
#include <QVector3D>

#include <atomic>
#include <climits>
#include <cmath>
#include <limits>
#include <thread>

namespace {

const QString key = QStringLiteral("K");

/// The text that `Item` stores for \p value; a text of its own where it stores nothing.
template <class T, class... Args> QString Stored(T value, Args... args)
{
    ZrXmlObj obj;
    obj.Item(key, value, args...);
    if (obj.IsEmpty())
        return QStringLiteral("(nothing stored)");
    if (obj.GetCount() != 1 || obj.GetHead()->name != key)
        return QStringLiteral("(not one item of that name)");
    return obj.GetHead()->value;
}

/// The variable after `Item` loads \p text into it, between two neighbours that must stay as they are.
template <class T, class... Args> T Loaded(const QString& text, T value, Args... args)
{
    LoadingObj loading;
    loading.obj->Add(key, text);

    struct Block
    {
        unsigned char before[16];
        T value;
        unsigned char after[16];
    };

    Block block = {};
    block.value = value;
    std::memset(block.before, 0xA5, sizeof block.before);
    std::memset(block.after, 0x5A, sizeof block.after);
    loading.obj->Item(key, block.value, args...);
    for (const unsigned char byte : block.before)
        if (byte != 0xA5)
            qFatal("The byte in front of the variable changed");
    for (const unsigned char byte : block.after)
        if (byte != 0x5A)
            qFatal("The byte behind the variable changed");
    if (Items(*loading.obj) != QStringList(key + QLatin1Char('=') + text))
        qFatal("Loading changed the items");
    return block.value;
}

/// The variable after `Item` asks for a name that the object does not hold.
template <class T, class... Args> T Missing(T value, Args... args)
{
    LoadingObj loading;
    loading.obj->Add(QStringLiteral("Other"), QStringLiteral("1"));
    loading.obj->Item(key, value, args...);
    return value;
}

int convertedCalls = 0;
QString convertedText;
int convertedObject = 0;

void* Convert(const QString& text)
{
    ++convertedCalls;
    convertedText = text;
    return &convertedObject;
}

} // namespace

class tst_ZrXmlItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void construction();
    void character_data();
    void character();
    void characterLoads_data();
    void characterLoads();
    void integersStored_data();
    void integersStored();
    void unsignedCharLoads_data();
    void unsignedCharLoads();
    void unsignedCharHexLoads_data();
    void unsignedCharHexLoads();
    void shortLoads_data();
    void shortLoads();
    void unsignedShortLoads();
    void intLoads_data();
    void intLoads();
    void unsignedIntLoads_data();
    void unsignedIntLoads();
    void realsStored_data();
    void realsStored();
    void decimalsBeyondTheBufferAreCut();
    void floatLoads_data();
    void floatLoads();
    void doubleLoads_data();
    void doubleLoads();
    void vectorStored_data();
    void vectorStored();
    void vectorLoads_data();
    void vectorLoads();
    void boolBothWays();
    void stringBothWays_data();
    void stringBothWays();
    void qcharBothWays();
    void colourStored();
    void colourLoads_data();
    void colourLoads();
    void matrixStoresAndLoadsNothing();
    void matrixLookupMovesTheCursor();
    void pointerBothWays();
    void missingItemLeavesTheVariable();
    void unreadableItemsAreSilent();
    void missingFloatIsReported();
    void processLocaleIsIgnored();
    void processLocaleIsIgnoredByEveryThread();
};

void tst_ZrXmlItem::construction()
{
    const ZrXmlItem empty;
    QVERIFY(empty.name.isEmpty());
    QVERIFY(empty.value.isEmpty());
    const ZrXmlItem item(QStringLiteral("Depth"), QStringLiteral("12.5"));
    QCOMPARE(item.name, QStringLiteral("Depth"));
    QCOMPARE(item.value, QStringLiteral("12.5"));
}

void tst_ZrXmlItem::character_data()
{
    QTest::addColumn<char>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("letter") << 'A' << QStringLiteral("A");
    QTest::newRow("blank") << ' ' << QStringLiteral(" ");
    QTest::newRow("percent") << '%' << QStringLiteral("%");
    QTest::newRow("quote") << '"' << QStringLiteral("\"");
    QTest::newRow("beyond ASCII") << char(0xE9) << QString(QChar(0xE9));
    QTest::newRow("zero") << '\0' << QString();
}

void tst_ZrXmlItem::character()
{
    QFETCH(char, value);
    QFETCH(QString, text);
    QCOMPARE(Stored(value), text);
    if (value)
        QCOMPARE(Loaded(text, 'x'), value);
}

void tst_ZrXmlItem::characterLoads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<char>("value");
    QTest::newRow("one") << QStringLiteral("B") << 'B';
    QTest::newRow("the first of several") << QStringLiteral("BCD") << 'B';
    QTest::newRow("leading blank counts") << QStringLiteral(" B") << ' ';
    QTest::newRow("empty") << QString() << 'x';
    QTest::newRow("zero character") << QString(QChar(0)) << 'x';
    QTest::newRow("beyond Latin-1, as a file would hold it") << QString(QChar(0x20AC)) << '?';
}

void tst_ZrXmlItem::characterLoads()
{
    QFETCH(QString, text);
    QFETCH(char, value);
    QCOMPARE(Loaded(text, 'x'), value);
}

void tst_ZrXmlItem::integersStored_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* title, const QString& stored, const char* expected) {
        QTest::newRow(title) << stored << Latin1(expected);
    };
    using uchar_t = unsigned char;
    using ushort_t = unsigned short;
    row("u8 0", Stored(uchar_t(0)), "0");
    row("u8 255", Stored(uchar_t(255)), "255");
    row("u8 decimal asked for", Stored(uchar_t(65), false), "65");
    row("u8 hex 0", Stored(uchar_t(0), true), "0x00");
    row("u8 hex 10", Stored(uchar_t(10), true), "0x0a");
    row("u8 hex 255", Stored(uchar_t(255), true), "0xff");
    row("short", Stored(short(-32768)), "-32768");
    row("short max", Stored(short(32767)), "32767");
    row("u16", Stored(ushort_t(65535)), "65535");
    row("u16 hex", Stored(ushort_t(0xBEE), true), "0x0bee");
    row("u16 hex max", Stored(ushort_t(65535), true), "0xffff");
    row("int min", Stored(INT_MIN), "-2147483648");
    row("int max", Stored(INT_MAX), "2147483647");
    row("u32", Stored(2147483647U), "2147483647");
    row("u32 beyond int is stored signed", Stored(2147483648U), "-2147483648");
    row("u32 max is stored as -1", Stored(4294967295U), "-1");
    row("u32 hex", Stored(0xABCU, true), "0x00000abc");
    row("u32 hex max", Stored(4294967295U, true), "0xffffffff");
}

void tst_ZrXmlItem::integersStored()
{
    QFETCH(QString, stored);
    QFETCH(QString, expected);
    QCOMPARE(stored, expected);
}

void tst_ZrXmlItem::unsignedCharLoads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    QTest::newRow("0") << QStringLiteral("0") << 0;
    QTest::newRow("255") << QStringLiteral("255") << 255;
    QTest::newRow("256 wraps") << QStringLiteral("256") << 0;
    QTest::newRow("300 wraps") << QStringLiteral("300") << 44;
    QTest::newRow("-1 wraps") << QStringLiteral("-1") << 255;
    QTest::newRow("2^32 + 5 wraps") << QStringLiteral("4294967301") << 5;
    QTest::newRow("beyond 64 bits has all bits") << QStringLiteral("99999999999999999999999") << 255;
    QTest::newRow("blank before") << QStringLiteral(" \t7") << 7;
    QTest::newRow("plus") << QStringLiteral("+7") << 7;
    QTest::newRow("more behind") << QStringLiteral("7 and more") << 7;
    QTest::newRow("fraction") << QStringLiteral("7.9") << 7;
    QTest::newRow("hex reads as 0") << QStringLiteral("0x1f") << 0;
    QTest::newRow("word") << QStringLiteral("seven") << 99;
    QTest::newRow("empty") << QString() << 99;
    QTest::newRow("blanks") << QStringLiteral("   ") << 99;
    QTest::newRow("sign alone") << QStringLiteral("-") << 99;
    QTest::newRow("other digits") << QString(QChar(0x0667)) << 99;
    QTest::newRow("zero character") << QString(QChar(0)) + QLatin1Char('7') << 99;
}

void tst_ZrXmlItem::unsignedCharLoads()
{
    QFETCH(QString, text);
    QFETCH(int, value);
    QCOMPARE(int(Loaded<unsigned char>(text, 99)), value);
    QCOMPARE(int(Loaded<unsigned char>(text, 99, false)), value);
}

void tst_ZrXmlItem::unsignedCharHexLoads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    QTest::newRow("two digits") << QStringLiteral("0x0a") << 10;
    QTest::newRow("capitals") << QStringLiteral("0xFE") << 254;
    QTest::newRow("one digit") << QStringLiteral("0x7") << 7;
    QTest::newRow("three digits wrap") << QStringLiteral("0x123") << 0x23;
    QTest::newRow("more behind") << QStringLiteral("0x12zz") << 0x12;
    QTest::newRow("no prefix") << QStringLiteral("12") << 99;
    QTest::newRow("capital prefix") << QStringLiteral("0X12") << 99;
    QTest::newRow("blank before") << QStringLiteral(" 0x12") << 99;
    QTest::newRow("prefix alone") << QStringLiteral("0x") << 99;
    QTest::newRow("no digit") << QStringLiteral("0xg") << 99;
    QTest::newRow("empty") << QString() << 99;
}

void tst_ZrXmlItem::unsignedCharHexLoads()
{
    QFETCH(QString, text);
    QFETCH(int, value);
    QCOMPARE(int(Loaded<unsigned char>(text, 99, true)), value);
}

void tst_ZrXmlItem::shortLoads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    QTest::newRow("min") << QStringLiteral("-32768") << -32768;
    QTest::newRow("max") << QStringLiteral("32767") << 32767;
    QTest::newRow("32768 wraps") << QStringLiteral("32768") << -32768;
    QTest::newRow("65537 wraps") << QStringLiteral("65537") << 1;
    QTest::newRow("octal is decimal") << QStringLiteral("010") << 10;
    QTest::newRow("word") << QStringLiteral("x1") << 99;
    QTest::newRow("empty") << QString() << 99;
}

void tst_ZrXmlItem::shortLoads()
{
    QFETCH(QString, text);
    QFETCH(int, value);
    QCOMPARE(int(Loaded<short>(text, 99)), value);
}

void tst_ZrXmlItem::unsignedShortLoads()
{
    using ushort_t = unsigned short;
    QCOMPARE(int(Loaded<ushort_t>(QStringLiteral("65535"), 9)), 65535);
    QCOMPARE(int(Loaded<ushort_t>(QStringLiteral("65536"), 9)), 0);
    QCOMPARE(int(Loaded<ushort_t>(QStringLiteral("-1"), 9)), 65535);
    QCOMPARE(int(Loaded<ushort_t>(QStringLiteral("none"), 9)), 9);
    QCOMPARE(int(Loaded<ushort_t>(QStringLiteral("0x0bee"), 9, true)), 0xBEE);
    QCOMPARE(int(Loaded<ushort_t>(QStringLiteral("0x1ffff"), 9, true)), 0xFFFF);
    QCOMPARE(int(Loaded<ushort_t>(QStringLiteral("bee"), 9, true)), 9);
}

void tst_ZrXmlItem::intLoads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    QTest::newRow("min") << QStringLiteral("-2147483648") << INT_MIN;
    QTest::newRow("max") << QStringLiteral("2147483647") << INT_MAX;
    QTest::newRow("2^31 wraps") << QStringLiteral("2147483648") << INT_MIN;
    QTest::newRow("2^32 wraps") << QStringLiteral("4294967296") << 0;
    QTest::newRow("beyond 64 bits: the low bits of the largest")
        << QStringLiteral("9999999999999999999") << -1;
    QTest::newRow("below 64 bits: the low bits of the least") << QStringLiteral("-9999999999999999999") << 0;
    QTest::newRow("one behind") << QStringLiteral("12;") << 12;
    QTest::newRow("comma") << QStringLiteral("1,234") << 1;
    QTest::newRow("word") << QStringLiteral("true") << 99;
    QTest::newRow("empty") << QString() << 99;
}

void tst_ZrXmlItem::intLoads()
{
    QFETCH(QString, text);
    QFETCH(int, value);
    QCOMPARE(Loaded(text, 99), value);
}

void tst_ZrXmlItem::unsignedIntLoads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("hex");
    QTest::addColumn<unsigned int>("value");
    QTest::newRow("-1") << QStringLiteral("-1") << false << 4294967295U;
    QTest::newRow("signed minimum") << QStringLiteral("-2147483648") << false << 2147483648U;
    QTest::newRow("unsigned maximum") << QStringLiteral("4294967295") << false << 4294967295U;
    QTest::newRow("12") << QStringLiteral("12") << false << 12U;
    QTest::newRow("hex text as decimal") << QStringLiteral("0x10") << false << 0U;
    QTest::newRow("word") << QStringLiteral("x") << false << 99U;
    QTest::newRow("hex") << QStringLiteral("0x00000abc") << true << 0xABCU;
    QTest::newRow("hex max") << QStringLiteral("0xffffffff") << true << 4294967295U;
    QTest::newRow("nine hex digits wrap") << QStringLiteral("0x100000002") << true << 2U;
    QTest::newRow("decimal text as hex") << QStringLiteral("16") << true << 99U;
    QTest::newRow("empty hex") << QString() << true << 99U;
}

void tst_ZrXmlItem::unsignedIntLoads()
{
    QFETCH(QString, text);
    QFETCH(bool, hex);
    QFETCH(unsigned int, value);
    QCOMPARE(Loaded(text, 99U, hex), value);
}

void tst_ZrXmlItem::realsStored_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("places");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* title, double value, int places, const char* text) {
        QTest::newRow(title) << value << places << Latin1(text);
    };
    row("%g", 1.5, -1, "1.5");
    row("%g whole", 3.0, -1, "3");
    row("%g zero", 0.0, -1, "0");
    row("%g minus zero", -0.0, -1, "-0");
    row("%g six digits, tie to even", 123456.5, -1, "123456");
    row("%g exponent", 1234567.0, -1, "1.23457e+06");
    row("%g small", 0.0000152587890625, -1, "1.52588e-05");
    row("%g nan", std::nan(""), -1, "nan");
    row("%g infinity", std::numeric_limits<double>::infinity(), -1, "inf");
    row("%g minus infinity", -std::numeric_limits<double>::infinity(), -1, "-inf");
    row("no decimals, tie to even", 2.5, 0, "2");
    row("no decimals, tie to even above", 3.5, 0, "4");
    row("two decimals, tie to even", 0.125, 2, "0.12");
    row("three decimals", -0.5, 3, "-0.500");
    row("ten decimals", 50.25, 10, "50.2500000000");
    row("minus zero with decimals", -0.0, 2, "-0.00");
    row("nan with decimals", std::nan(""), 2, "nan");
    row("below -1 stores nothing", 1.5, -2, "(nothing stored)");
    row("far below -1 stores nothing", 1.5, INT_MIN, "(nothing stored)");
}

void tst_ZrXmlItem::realsStored()
{
    QFETCH(double, value);
    QFETCH(int, places);
    QFETCH(QString, text);
    QCOMPARE(Stored(value, places), text);
    QCOMPARE(Stored(float(value), places), text);
    if (places == -1) {
        QCOMPARE(Stored(value), text);
        QCOMPARE(Stored(float(value)), text);
    }
}

void tst_ZrXmlItem::decimalsBeyondTheBufferAreCut()
{
    const QString expected = QStringLiteral("1.5") + QString(4092, QLatin1Char('0'));
    for (const int places : {4093, 4094, 4096, 100000, INT_MAX}) {
        QCOMPARE(Stored(1.5, places), expected);
        QCOMPARE(Stored(1.5F, places), expected);
        QCOMPARE(Stored(QVector3D(1.5F, 2, 3), places), expected);
    }
    QCOMPARE(Stored(1.5, 4092), expected.left(4094));
    // The largest number has 309 digits before its point.
    const QString largest = Stored(std::numeric_limits<double>::max(), 3);
    QCOMPARE(largest.size(), 309 + 1 + 3);
    QVERIFY(largest.startsWith(QStringLiteral("17976931348623157")));
}

void tst_ZrXmlItem::floatLoads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("plain") << QStringLiteral("1.5") << 1.5;
    QTest::newRow("whole") << QStringLiteral("-3") << -3.0;
    QTest::newRow("point only behind") << QStringLiteral("7.") << 7.0;
    QTest::newRow("point only before") << QStringLiteral(".5") << 0.5;
    QTest::newRow("exponent") << QStringLiteral("25e-2") << 0.25;
    QTest::newRow("hexadecimal") << QStringLiteral("0x1p3") << 8.0;
    QTest::newRow("blank before") << QStringLiteral("  2.5") << 2.5;
    QTest::newRow("more behind") << QStringLiteral("2.5m") << 2.5;
    QTest::newRow("comma ends it") << QStringLiteral("2,5") << 2.0;
    QTest::newRow("infinity") << QStringLiteral("-inf") << -infinity;
    QTest::newRow("too large") << QStringLiteral("1e999") << infinity;
    QTest::newRow("too small") << QStringLiteral("1e-999") << 0.0;
    QTest::newRow("word") << QStringLiteral("deep") << 99.0;
    QTest::newRow("empty") << QString() << 99.0;
    QTest::newRow("sign") << QStringLiteral("-") << 99.0;
    QTest::newRow("point") << QStringLiteral(".") << 99.0;
}

void tst_ZrXmlItem::floatLoads()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    QVERIFY(Loaded(text, 99.0F) == float(value));
    QVERIFY(Loaded(text, 99.0F, 3) == float(value));
    QVERIFY(Loaded(text, 99.0F, -2) == float(value));
    QVERIFY(std::isnan(Loaded(QStringLiteral("nan"), 99.0F)));
    // The nearest binary32 to the text, which a detour through binary64 misses.
    QVERIFY(Loaded(QStringLiteral("1.00000017881393432617187499"), 99.0F) == 1.00000011920928955078125F);
}

void tst_ZrXmlItem::doubleLoads_data()
{
    floatLoads_data();
    QTest::newRow("beyond float") << QStringLiteral("1e300") << 1e300;
    QTest::newRow("all digits") << QStringLiteral("0.10000000000000001") << 0.1;
}

void tst_ZrXmlItem::doubleLoads()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    QVERIFY(Loaded(text, 99.0) == value);
    QVERIFY(Loaded(text, 99.0, 3) == value);
    QVERIFY(Loaded(text, 99.0, -2) == value);
    QVERIFY(std::isnan(Loaded(QStringLiteral("nan"), 99.0)));
}

void tst_ZrXmlItem::vectorStored_data()
{
    QTest::addColumn<QVector3D>("value");
    QTest::addColumn<int>("places");
    QTest::addColumn<QString>("text");
    QTest::newRow("%g") << QVector3D(1.5F, -2, 1e6F) << -1 << QStringLiteral("1.5, -2, 1e+06");
    QTest::newRow("no decimals") << QVector3D(1.5F, -2, 3) << 0 << QStringLiteral("2, -2, 3");
    QTest::newRow("two") << QVector3D(1.5F, -2, 0.125F) << 2 << QStringLiteral("1.50, -2.00, 0.12");
    QTest::newRow("below -1") << QVector3D(1, 2, 3) << -2 << QStringLiteral("(nothing stored)");
}

void tst_ZrXmlItem::vectorStored()
{
    QFETCH(QVector3D, value);
    QFETCH(int, places);
    QFETCH(QString, text);
    QCOMPARE(Stored(value, places), text);
    if (places == -1)
        QCOMPARE(Stored(value), text);
}

void tst_ZrXmlItem::vectorLoads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVector3D>("value");
    const QVector3D former(7, 8, 9);
    QTest::newRow("as stored") << QStringLiteral("1.5, -2, 1e+06") << QVector3D(1.5F, -2, 1e6F);
    QTest::newRow("no blanks") << QStringLiteral("1,2,3") << QVector3D(1, 2, 3);
    QTest::newRow("more blanks") << QStringLiteral("  1,  2,\t3") << QVector3D(1, 2, 3);
    QTest::newRow("more behind") << QStringLiteral("1, 2, 3, 4") << QVector3D(1, 2, 3);
    QTest::newRow("two numbers") << QStringLiteral("1, 2") << former;
    QTest::newRow("two and a comma") << QStringLiteral("1, 2, ") << former;
    QTest::newRow("no commas") << QStringLiteral("1 2 3") << former;
    QTest::newRow("blank before a comma") << QStringLiteral("1 , 2, 3") << former;
    QTest::newRow("word last") << QStringLiteral("1, 2, z") << former;
    QTest::newRow("empty") << QString() << former;
}

void tst_ZrXmlItem::vectorLoads()
{
    QFETCH(QString, text);
    QFETCH(QVector3D, value);
    // Component by component: the comparison of vectors is a fuzzy one.
    for (const int places : {-2, -1, 4}) {
        const QVector3D loaded = Loaded(text, QVector3D(7, 8, 9), places);
        QVERIFY(loaded.x() == value.x() && loaded.y() == value.y() && loaded.z() == value.z());
    }
    const QVector3D huge = Loaded(QStringLiteral("1e300, -1e300, 0"), QVector3D());
    QVERIFY(std::isinf(huge.x()) && huge.x() > 0 && std::isinf(huge.y()) && huge.y() < 0);
}

void tst_ZrXmlItem::boolBothWays()
{
    QCOMPARE(Stored(true), QStringLiteral("true"));
    QCOMPARE(Stored(false), QStringLiteral("false"));
    for (const char* text : {"true", "1", "0", "", "False", "FALSE", "false ", " false", "no", "falsehood"})
        QVERIFY2(Loaded(Latin1(text), false), text);
    QVERIFY(!Loaded(QStringLiteral("false"), true));
}

void tst_ZrXmlItem::stringBothWays_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QStringLiteral("Survey 7");
    QTest::newRow("empty") << QString();
    QTest::newRow("conversions") << QStringLiteral("%n %s %d %%");
    QTest::newRow("markup") << QStringLiteral("<a b=\"c\"/>\n=");
    QTest::newRow("beyond the BMP") << QString::fromUtf8("\xF0\x9F\x90\x9F \xE2\x82\xAC");
    QTest::newRow("longer than the buffer") << QString(10000, QLatin1Char('x'));
}

void tst_ZrXmlItem::stringBothWays()
{
    QFETCH(QString, text);
    QCOMPARE(Stored(text), text);
    QCOMPARE(Loaded(text, QStringLiteral("former")), text);
}

void tst_ZrXmlItem::qcharBothWays()
{
    QCOMPARE(Stored(QChar(0x20AC)), QString(QChar(0x20AC)));
    QCOMPARE(Stored(QChar(QLatin1Char('%'))), QStringLiteral("%"));
    const QChar former = QLatin1Char('x');
    QCOMPARE(Loaded(QString(QChar(0x20AC)), former), QChar(0x20AC));
    QCOMPARE(Loaded(QStringLiteral(" ab"), former), QChar(QLatin1Char(' ')));
    QCOMPARE(Loaded(QString(), former), former);
}

void tst_ZrXmlItem::colourStored()
{
    QCOMPARE(Stored(QColor(255, 255, 0)), QStringLiteral("#ffff00"));
    QCOMPARE(Stored(QColor(1, 2, 3, 4)), QStringLiteral("#010203"));
    QCOMPARE(Stored(QColor(0xAB, 0xCD, 0xEF)), QStringLiteral("#abcdef"));
    QCOMPARE(Stored(QColor()), QStringLiteral("#000000"));
}

void tst_ZrXmlItem::colourLoads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<unsigned int>("argb");
    QTest::newRow("as stored") << QStringLiteral("#010203") << 0xFF010203U;
    QTest::newRow("capitals") << QStringLiteral("#ABCDEF") << 0xFFABCDEFU;
    QTest::newRow("name") << QStringLiteral("yellow") << 0xFFFFFF00U;
    QTest::newRow("alpha is not taken over") << QStringLiteral("#80010203") << 0xFF010203U;
    QTest::newRow("a name without colour is opaque black") << QStringLiteral("transparent") << 0xFF000000U;
    QTest::newRow("unknown name") << QStringLiteral("deep sea") << 0x11223344U;
    QTest::newRow("wrong digits") << QStringLiteral("#01020") << 0x11223344U;
    QTest::newRow("empty") << QString() << 0x11223344U;
}

void tst_ZrXmlItem::colourLoads()
{
    QFETCH(QString, text);
    QFETCH(unsigned int, argb);
    const DebugLines lines;
    QCOMPARE(Loaded(text, QColor::fromRgba(0x11223344U)).rgba(), argb);
    QCOMPARE(lines.Get(), QStringList());
}

void tst_ZrXmlItem::matrixStoresAndLoadsNothing()
{
    QMatrix4x4 matrix;
    matrix.translate(1, 2, 3);
    const QMatrix4x4 former = matrix;
    QCOMPARE(Stored(matrix), QStringLiteral("(nothing stored)"));
    QCOMPARE(Stored(matrix, 3), QStringLiteral("(nothing stored)"));
    QCOMPARE(Loaded(QStringLiteral("1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"), matrix), former);
    QCOMPARE(Missing(matrix), former);
}

void tst_ZrXmlItem::matrixLookupMovesTheCursor()
{
    LoadingObj loading;
    loading.obj->Add(QStringLiteral("A"), QStringLiteral("1"));
    loading.obj->Add(QStringLiteral("M"), QStringLiteral("2"));
    QMatrix4x4 matrix;
    loading.obj->Item(QStringLiteral("M"), matrix);
    QCOMPARE(loading.obj->cursor, loading.obj->tail);
}

void tst_ZrXmlItem::pointerBothWays()
{
    int local = 0;
    void* const former = &local;
    convertedCalls = 0;
    QCOMPARE(Stored(former, &Convert), QStringLiteral("(nothing stored)"));
    QCOMPARE(Loaded(QString(), former, &Convert), static_cast<void*>(nullptr));
    QCOMPARE(Loaded(QStringLiteral("NULL"), former, &Convert), static_cast<void*>(nullptr));
    QCOMPARE(Missing(former, &Convert), former);
    QCOMPARE(convertedCalls, 0);

    QCOMPARE(Loaded(QStringLiteral("null"), former, &Convert), static_cast<void*>(&convertedObject));
    QCOMPARE(convertedCalls, 1);
    QCOMPARE(convertedText, QStringLiteral("null"));
    QCOMPARE(Loaded(QStringLiteral("x"), former, ZrXmlObj::Converter(nullptr)), former);
}

void tst_ZrXmlItem::missingItemLeavesTheVariable()
{
    const DebugLines lines;
    QCOMPARE(Missing('x'), 'x');
    QCOMPARE(Missing<unsigned char>(9), static_cast<unsigned char>(9));
    QCOMPARE(Missing<unsigned char>(9, true), static_cast<unsigned char>(9));
    QCOMPARE(Missing<short>(-9), short(-9));
    QCOMPARE(Missing<unsigned short>(9, true), static_cast<unsigned short>(9));
    QCOMPARE(Missing(-9), -9);
    QCOMPARE(Missing(9U), 9U);
    QCOMPARE(Missing(9.5, 2), 9.5);
    QCOMPARE(Missing(QVector3D(7, 8, 9)), QVector3D(7, 8, 9));
    QCOMPARE(Missing(true), true);
    QCOMPARE(Missing(false), false);
    QCOMPARE(Missing(QStringLiteral("former")), QStringLiteral("former"));
    QCOMPARE(Missing(QChar(QLatin1Char('x'))), QChar(QLatin1Char('x')));
    QCOMPARE(Missing(QColor(1, 2, 3, 4)), QColor(1, 2, 3, 4));
    QCOMPARE(Missing(QMatrix4x4(), 2), QMatrix4x4());
    QCOMPARE(Missing(static_cast<void*>(&convertedObject), &Convert), static_cast<void*>(&convertedObject));
    QCOMPARE(lines.Get(), QStringList());
}

void tst_ZrXmlItem::unreadableItemsAreSilent()
{
    const QString none;
    const QString word = QStringLiteral("unreadable");
    const DebugLines lines;
    QCOMPARE(Loaded(none, 'x'), 'x');
    QCOMPARE(Loaded<unsigned char>(word, 9), static_cast<unsigned char>(9));
    QCOMPARE(Loaded<unsigned char>(word, 9, true), static_cast<unsigned char>(9));
    QCOMPARE(Loaded<short>(word, -9), short(-9));
    QCOMPARE(Loaded<unsigned short>(word, 9), static_cast<unsigned short>(9));
    QCOMPARE(Loaded<unsigned short>(word, 9, true), static_cast<unsigned short>(9));
    QCOMPARE(Loaded(word, -9), -9);
    QCOMPARE(Loaded(word, 9U), 9U);
    QCOMPARE(Loaded(word, 9U, true), 9U);
    QCOMPARE(Loaded(word, 9.5F), 9.5F);
    QCOMPARE(Loaded(word, 9.5), 9.5);
    QCOMPARE(Loaded(word, QVector3D(7, 8, 9)), QVector3D(7, 8, 9));
    QCOMPARE(Loaded(none, QChar(QLatin1Char('x'))), QChar(QLatin1Char('x')));
    QCOMPARE(lines.Get(), QStringList());
}

void tst_ZrXmlItem::missingFloatIsReported()
{
    LoadingObj loading;
    loading.obj->Add(key, QStringLiteral("unreadable"));
    float value = 9.5F;
    const DebugLines lines;
    loading.obj->Item(QStringLiteral("Burial"), value);
    loading.obj->Item(QStringLiteral("%s%n"), value, 2);
    loading.obj->Item(key, value);
    QCOMPARE(value, 9.5F);
    QCOMPARE(lines.Get(),
        QStringList() << DebugLines::Shown(QStringLiteral("Cannot find item Burial"))
                      << DebugLines::Shown(QStringLiteral("Cannot find item %s%n")));
}

void tst_ZrXmlItem::processLocaleIsIgnored()
{
    const CommaLocale locale;
    QVERIFY2(CommaLocale::HasComma(), "no locale with a decimal comma could be set");
    QCOMPARE(Stored(1.5), QStringLiteral("1.5"));
    QCOMPARE(Stored(1.5F, 3), QStringLiteral("1.500"));
    QCOMPARE(Stored(QVector3D(1.5F, 2.5F, 3.5F)), QStringLiteral("1.5, 2.5, 3.5"));
    QVERIFY(Loaded(QStringLiteral("1.5"), 9.0) == 1.5);
    QVERIFY(Loaded(QStringLiteral("1.5"), 9.0F) == 1.5F);
    QVERIFY(Loaded(QStringLiteral("1,5"), 9.0) == 1.0);
    QCOMPARE(Loaded(QStringLiteral("1.5, 2.5, 3.5"), QVector3D()), QVector3D(1.5F, 2.5F, 3.5F));
    ZrXmlObj obj;
    obj.Add(key, "%.2f", 1.5);
    obj.Data("%g", 2.5);
    QCOMPARE(Items(obj), QStringList(QStringLiteral("K=1.50")));
    QCOMPARE(DataLines(obj), QStringList(QStringLiteral("2.5")));
    // The locale of the process is as it was.
    QVERIFY(CommaLocale::HasComma());
}

void tst_ZrXmlItem::processLocaleIsIgnoredByEveryThread()
{
    const CommaLocale locale;
    QVERIFY(CommaLocale::HasComma());
    std::atomic<int> wrong{0};
    const auto work = [&wrong] {
        for (int i = 0; i < 2000; ++i)
            if (Stored(1.5) != QLatin1String("1.5") || Loaded(QStringLiteral("2.5"), 9.0) != 2.5
                || !CommaLocale::HasComma())
                ++wrong;
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_ZrXmlItem)
#include "tst_ZrXmlItem.moc"
