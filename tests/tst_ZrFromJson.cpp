// The forms of the values: what storing makes of each type, what loading makes of any JSON.

#include "XmlChecks.h"
#include "ZrUtil/ZrFromJson.h"
#include "ZrUtil/ZrScoped.h"

#include <QColor>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

Q_DECLARE_METATYPE(std::string)

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

template <class Bits, class Number> Bits BitsOf(Number number)
{
    static_assert(sizeof(Bits) == sizeof(Number));
    Bits bits;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

/// \p value as a file gives it back.
QJsonValue ThroughText(const QJsonValue& value)
{
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson();
    return QJsonDocument::fromJson(text).array().at(0);
}

/// The JSON text of \p value.
QByteArray Text(const QJsonValue& value)
{
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return text.mid(1, text.size() - 2);
}

/// What the integer types make of one text.
struct Parsed
{
    int i8, u8, i16, u16, i32;
    uint u32;
    qlonglong i64;
    qulonglong u64;
};

/// Whether \p value comes back from a file, as the string \p text.
template <class Int> bool Survives(Int value, const char* text)
{
    const QJsonValue stored = zr::to_json(value);
    return stored.isString() && stored.toString() == QLatin1String(text)
        && zr::from_json<Int>(ThroughText(stored)) == value;
}

} // namespace

Q_DECLARE_METATYPE(Parsed)

class tst_ZrFromJson : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wrongKinds_data();
    void wrongKinds();
    void integerTexts_data();
    void integerTexts();
    void integersTravelAsStrings();
    void boolean();
    void nullIsNan();
    void numbers_data();
    void numbers();
    void doubleToFloat_data();
    void doubleToFloat();
    void notFinite();
    void strings_data();
    void strings();
    void latin1_data();
    void latin1();
    void nativePath();
    void colourTexts_data();
    void colourTexts();
    void colours_data();
    void colours();
    void arrays();
    void localeDoesNotMatter();
};

void tst_ZrFromJson::wrongKinds_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("null") << QJsonValue(QJsonValue::Null);
    QTest::newRow("undefined") << QJsonValue(QJsonValue::Undefined);
    QTest::newRow("true") << QJsonValue(true);
    QTest::newRow("number") << QJsonValue(12);
    QTest::newRow("fraction") << QJsonValue(12.5);
    QTest::newRow("text") << QJsonValue(S("12"));
    QTest::newRow("empty text") << QJsonValue(QString());
    QTest::newRow("array") << QJsonValue(QJsonArray{S("12")});
    QTest::newRow("object") << QJsonValue(QJsonObject{{S("12"), 12}});
}

void tst_ZrFromJson::wrongKinds()
{
    QFETCH(QJsonValue, value);
    const int parsed = value.toString() == S("12") ? 12 : 0;
    QCOMPARE(int(zr::from_json<signed char>(value)), parsed);
    QCOMPARE(int(zr::from_json<unsigned char>(value)), parsed);
    QCOMPARE(int(zr::from_json<short>(value)), parsed);
    QCOMPARE(int(zr::from_json<unsigned short>(value)), parsed);
    QCOMPARE(zr::from_json<int>(value), parsed);
    QCOMPARE(zr::from_json<unsigned int>(value), uint(parsed));
    QCOMPARE(zr::from_json<long long>(value), qlonglong(parsed));
    QCOMPARE(zr::from_json<unsigned long long>(value), qulonglong(parsed));

    QCOMPARE(zr::from_json<bool>(value), value.isBool());
    const double number = value.isDouble() ? value.toDouble() : 0.0;
    QCOMPARE(std::isnan(zr::from_json<double>(value)), value.isNull());
    QCOMPARE(std::isnan(zr::from_json<float>(value)), value.isNull());
    if (!value.isNull()) {
        QCOMPARE(zr::from_json<double>(value), number);
        QCOMPARE(zr::from_json<float>(value), static_cast<float>(number));
    }
    const QString text = parsed == 12 ? S("12") : QString();
    QCOMPARE(zr::from_json<QString>(value), text);
    QCOMPARE(zr::from_json<std::string>(value), text.toStdString());
    QCOMPARE(zr::from_json<std::filesystem::path>(value).string(), text.toStdString());
    QCOMPARE(zr::from_json<QColor>(value), QColor::fromRgba(parsed == 12 ? 0x12U : 0U));
    QCOMPARE(zr::from_json<QJsonArray>(value), value.isArray() ? QJsonArray{S("12")} : QJsonArray());
}

void tst_ZrFromJson::integerTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Parsed>("parsed");
    const auto row = [](const char* text, const Parsed& parsed) { QTest::newRow(text) << S(text) << parsed; };
    const auto none = [&row](const char* text) { row(text, {0, 0, 0, 0, 0, 0, 0, 0}); };
    row("7", {7, 7, 7, 7, 7, 7, 7, 7});
    row("-5", {-5, 0, -5, 0, -5, 0, -5, 0});
    row("127", {127, 127, 127, 127, 127, 127, 127, 127});
    row("128", {-128, 128, 128, 128, 128, 128, 128, 128});
    row("-129", {127, 0, -129, 0, -129, 0, -129, 0});
    row("300", {44, 44, 300, 300, 300, 300, 300, 300});
    row("32767", {-1, 255, 32767, 32767, 32767, 32767, 32767, 32767});
    row("40000", {0, 64, 0, 40000, 40000, 40000, 40000, 40000});
    row("65536", {0, 0, 0, 0, 65536, 65536, 65536, 65536});
    row("-2147483648", {0, 0, 0, 0, std::numeric_limits<int>::min(), 0, -2147483648LL, 0});
    row("2147483648", {0, 0, 0, 0, 0, 2147483648U, 2147483648LL, 2147483648ULL});
    row("4294967295", {0, 0, 0, 0, 0, 4294967295U, 4294967295LL, 4294967295ULL});
    row("4294967296", {0, 0, 0, 0, 0, 0, 4294967296LL, 4294967296ULL});
    row("9007199254740993", {0, 0, 0, 0, 0, 0, 9007199254740993LL, 9007199254740993ULL});
    row("-9223372036854775808", {0, 0, 0, 0, 0, 0, std::numeric_limits<qlonglong>::min(), 0});
    row("9223372036854775807", {0, 0, 0, 0, 0, 0, 9223372036854775807LL, 9223372036854775807ULL});
    row("18446744073709551615", {0, 0, 0, 0, 0, 0, 0, 18446744073709551615ULL});
    none("18446744073709551616");
    row(" 8\t", {8, 8, 8, 8, 8, 8, 8, 8});
    row("+9", {9, 9, 9, 9, 9, 9, 9, 9});
    row("0010", {10, 10, 10, 10, 10, 10, 10, 10});
    none("");
    none("-");
    none("1,000");
    none("12.0");
    none("1e3");
    none("0x10");
    none("7 8");
    none("seven");
    none("\xEF\xBC\x97");
    none("nan");
}

void tst_ZrFromJson::integerTexts()
{
    QFETCH(QString, text);
    QFETCH(Parsed, parsed);
    const QJsonValue value(text);
    QCOMPARE(int(zr::from_json<signed char>(value)), parsed.i8);
    QCOMPARE(int(zr::from_json<unsigned char>(value)), parsed.u8);
    QCOMPARE(int(zr::from_json<short>(value)), parsed.i16);
    QCOMPARE(int(zr::from_json<unsigned short>(value)), parsed.u16);
    QCOMPARE(zr::from_json<int>(value), parsed.i32);
    QCOMPARE(zr::from_json<unsigned int>(value), parsed.u32);
    QCOMPARE(zr::from_json<long long>(value), parsed.i64);
    QCOMPARE(zr::from_json<unsigned long long>(value), parsed.u64);
}

void tst_ZrFromJson::integersTravelAsStrings()
{
    QVERIFY(Survives<signed char>(-128, "-128"));
    QVERIFY(Survives<signed char>(127, "127"));
    QVERIFY(Survives<unsigned char>(0, "0"));
    QVERIFY(Survives<unsigned char>(255, "255"));
    QVERIFY(Survives<short>(-32768, "-32768"));
    QVERIFY(Survives<short>(32767, "32767"));
    QVERIFY(Survives<unsigned short>(65535, "65535"));
    QVERIFY(Survives<int>(12, "12"));
    QVERIFY(Survives<int>(std::numeric_limits<int>::min(), "-2147483648"));
    QVERIFY(Survives<int>(std::numeric_limits<int>::max(), "2147483647"));
    QVERIFY(Survives<unsigned int>(4294967295U, "4294967295"));
    QVERIFY(Survives<long long>(std::numeric_limits<long long>::min(), "-9223372036854775808"));
    QVERIFY(Survives<long long>(9007199254740993LL, "9007199254740993"));
    QVERIFY(Survives<unsigned long long>(18446744073709551615ULL, "18446744073709551615"));
}

void tst_ZrFromJson::boolean()
{
    for (const bool value : {false, true}) {
        QCOMPARE(zr::to_json(value), QJsonValue(value));
        QVERIFY(zr::to_json(value).isBool());
        QCOMPARE(zr::from_json<bool>(zr::to_json(value)), value);
    }
    QCOMPARE(zr::from_json<bool>(QJsonValue(1)), false);
    QCOMPARE(zr::from_json<bool>(QJsonValue(S("true"))), false);
}

void tst_ZrFromJson::nullIsNan()
{
    const QJsonValue null(QJsonValue::Null);
    QCOMPARE(BitsOf<quint64>(zr::from_json<double>(null)), quint64(0xFFF8000000000000));
    QCOMPARE(BitsOf<quint32>(zr::from_json<float>(null)), quint32(0xFFC00000));
}

void tst_ZrFromJson::numbers_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("0") << 0.0 << QByteArray("0");
    QTest::newRow("-0") << -0.0 << QByteArray("0");
    QTest::newRow("2.5") << 2.5 << QByteArray("2.5");
    QTest::newRow("-0.1") << -0.1 << QByteArray("-0.1");
    QTest::newRow("one third") << 1.0 / 3.0 << QByteArray("0.3333333333333333");
    QTest::newRow("whole") << 1234567890123.0 << QByteArray("1234567890123");
    QTest::newRow("1e20") << 1e20 << QByteArray("1e+20");
    QTest::newRow("smallest") << std::numeric_limits<double>::denorm_min() << QByteArray("5e-324");
    QTest::newRow("largest") << std::numeric_limits<double>::max() << QByteArray("1.7976931348623157e+308");
}

void tst_ZrFromJson::numbers()
{
    QFETCH(double, value);
    QFETCH(QByteArray, text);
    const QJsonValue stored = zr::to_json(value);
    QVERIFY(stored.isDouble());
    QCOMPARE(Text(stored), text);
    // Exact: QCOMPARE of doubles is not.
    QVERIFY(zr::from_json<double>(ThroughText(stored)) == value);
}

void tst_ZrFromJson::doubleToFloat_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<float>("expected");
    const float largest = std::numeric_limits<float>::max();
    const float inf = std::numeric_limits<float>::infinity();
    QTest::newRow("0.1") << 0.1 << 0.1F;
    QTest::newRow("largest") << double(largest) << largest;
    QTest::newRow("largest, as it is written") << 3.4028235e38 << largest;
    QTest::newRow("smallest, as it is written") << -3.4028235e38 << -largest;
    QTest::newRow("under half a step above") << std::nextafter(0x1.ffffffp127, 0.0) << largest;
    QTest::newRow("half a step above") << 0x1.ffffffp127 << inf;
    QTest::newRow("1e39") << 1e39 << inf;
    QTest::newRow("-1e300") << -1e300 << -inf;
    QTest::newRow("1e-300") << 1e-300 << 0.0F;
    QTest::newRow("denormal") << 1e-45 << std::numeric_limits<float>::denorm_min();
}

void tst_ZrFromJson::doubleToFloat()
{
    QFETCH(double, number);
    QFETCH(float, expected);
    const float value = zr::from_json<float>(QJsonValue(number));
    QVERIFY2(value == expected, qPrintable(QString::number(double(value), 'g', 17)));
    QVERIFY(zr::to_json(expected).isDouble());
    if (std::isfinite(expected))
        QVERIFY(zr::from_json<float>(ThroughText(zr::to_json(expected))) == expected);
}

void tst_ZrFromJson::notFinite()
{
    const double inf = std::numeric_limits<double>::infinity();
    for (const double value : {inf, -inf, std::nan("")}) {
        QCOMPARE(Text(zr::to_json(value)), QByteArray("null"));
        QCOMPARE(Text(zr::to_json(static_cast<float>(value))), QByteArray("null"));
        QVERIFY(std::isnan(zr::from_json<double>(ThroughText(zr::to_json(value)))));
    }
    // Within memory they stay what they are.
    QVERIFY(zr::from_json<double>(zr::to_json(-inf)) == -inf);
    QVERIFY(zr::from_json<float>(zr::to_json(-inf)) == -std::numeric_limits<float>::infinity());
    QVERIFY(std::isnan(zr::from_json<float>(zr::to_json(std::nan("")))));
}

void tst_ZrFromJson::strings_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("null") << QString();
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("12") << S("12");
    QTest::newRow("controls") << QString::fromLatin1("\n\t\r\x01\"\\/", 7);
    QTest::newRow("zero byte") << QString::fromLatin1("a\0b", 3);
    QTest::newRow("unicode") << S("Tiefe ≥ 40 m, 深度, 🌊");
    QTest::newRow("long") << QString(100000, QChar(0xE4));
}

void tst_ZrFromJson::strings()
{
    QFETCH(QString, text);
    const QJsonValue stored = zr::to_json(text);
    QVERIFY(stored.isString());
    QCOMPARE(stored.toString(), text);
    QCOMPARE(zr::from_json<QString>(ThroughText(stored)), text);
}

void tst_ZrFromJson::latin1_data()
{
    QTest::addColumn<std::string>("bytes");
    QTest::addColumn<QString>("stored");
    QTest::newRow("empty") << std::string() << S("");
    QTest::newRow("ascii") << std::string("/data/line 1.xtf") << S("/data/line 1.xtf");
    QTest::newRow("latin-1") << std::string("\xE4\xFF") << S("äÿ");
    QTest::newRow("utf-8 bytes") << std::string("\xC3\xA4") << S("Ã¤");
    QTest::newRow("zero byte") << std::string("a\0b", 3) << QString::fromLatin1("a\0b", 3);
}

void tst_ZrFromJson::latin1()
{
    QFETCH(std::string, bytes);
    QFETCH(QString, stored);
    QCOMPARE(zr::to_json(bytes), QJsonValue(stored));
    QVERIFY(zr::to_json(bytes).isString());
    QVERIFY(zr::from_json<std::string>(ThroughText(zr::to_json(bytes))) == bytes);
    const std::filesystem::path path(bytes);
    QCOMPARE(zr::to_json(path), QJsonValue(stored));
    QVERIFY(zr::from_json<std::filesystem::path>(ThroughText(zr::to_json(path))) == path);
}

void tst_ZrFromJson::nativePath()
{
    // Characters that Latin-1 does not have.
    const QJsonValue value(S("a→b/ä"));
    QVERIFY(zr::from_json<std::string>(value) == "a?b/\xE4");
    QVERIFY(zr::from_json<std::filesystem::path>(value) == std::filesystem::path("a?b/\xE4"));
}

void tst_ZrFromJson::colourTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<uint>("argb");
    const auto row = [](const char* text, uint argb) { QTest::newRow(text) << S(text) << argb; };
    row("ff102030", 0xff102030);
    row("FF102030", 0xff102030);
    row("0xff102030", 0xff102030);
    row(" 80abcdef ", 0x80abcdef);
    row("102030", 0x00102030);
    row("0", 0);
    row("", 0);
    row("#ff102030", 0);
    row("red", 0);
    row("1ff102030", 0);
    row("-1", 0);
    row("ff 10 20 30", 0);
}

void tst_ZrFromJson::colourTexts()
{
    QFETCH(QString, text);
    QFETCH(uint, argb);
    const QColor colour = zr::from_json<QColor>(QJsonValue(text));
    QVERIFY(colour.isValid());
    QCOMPARE(colour.rgba(), argb);
    QCOMPARE(colour.alpha(), int(argb >> 24));
}

void tst_ZrFromJson::colours_data()
{
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<QString>("text");
    QTest::newRow("opaque") << QColor(255, 128, 0) << S("ffff8000");
    QTest::newRow("half") << QColor(1, 2, 3, 127) << S("7f010203");
    QTest::newRow("transparent black") << QColor(0, 0, 0, 0) << S("00000000");
    QTest::newRow("transparent blue") << QColor(0, 0, 255, 0) << S("000000ff");
    QTest::newRow("of another model") << QColor::fromHsv(240, 255, 255) << S("ff0000ff");
    QTest::newRow("none") << QColor() << S("ff000000");
}

void tst_ZrFromJson::colours()
{
    QFETCH(QColor, colour);
    QFETCH(QString, text);
    QCOMPARE(zr::to_json(colour), QJsonValue(text));
    QCOMPARE(zr::from_json<QColor>(ThroughText(zr::to_json(colour))).rgba(), colour.rgba());
}

void tst_ZrFromJson::arrays()
{
    const QJsonArray array{1.5, S("a"), QJsonArray{true}, QJsonValue::Null};
    QVERIFY(zr::to_json(array).isArray());
    QCOMPARE(zr::from_json<QJsonArray>(ThroughText(zr::to_json(array))), array);
}

void tst_ZrFromJson::localeDoesNotMatter()
{
    const CommaLocale locale;
    QVERIFY(CommaLocale::HasComma());
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const auto restore = zr::make_scoped([&before] { QLocale::setDefault(before); });

    QCOMPARE(Text(zr::to_json(1234567.5)), QByteArray("1234567.5"));
    QVERIFY(zr::from_json<double>(ThroughText(zr::to_json(1234567.5))) == 1234567.5);
    QVERIFY(zr::from_json<float>(ThroughText(zr::to_json(0.1F))) == 0.1F);
    QCOMPARE(zr::to_json(1234567), QJsonValue(S("1234567")));
    QCOMPARE(zr::from_json<int>(QJsonValue(S("1234567"))), 1234567);
    QCOMPARE(zr::from_json<int>(QJsonValue(S("1.234"))), 0);
}

QTEST_GUILESS_MAIN(tst_ZrFromJson)
#include "tst_ZrFromJson.moc"
