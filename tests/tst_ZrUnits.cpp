#include "ZrUnitsShown.h"
#include "ZrUnitsState.h"

#include <QtTest>

#include <clocale>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
const QString degree = QString(QChar(0x00B0));

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

using Getter = QString (*)(double, int, bool);
using Parser = double (*)(QString, bool&);
using Label = QString (*)();

/// One kind of value with everything that belongs to it.
struct Kind
{
    const char* name;
    QString* unit;
    double* scale;
    Getter text;
    Parser value;
    Label label;
};

const Kind kinds[] = {
    {"short", &ZrUnits::shortLengthUnit, &ZrUnits::shortLengthScale, ZrUnits::GetShortLengthString,
        ZrUnits::GetShortLengthValue, ZrUnits::GetShortLengthUnits},
    {"tiny", &ZrUnits::tinyLengthUnit, &ZrUnits::tinyLengthScale, ZrUnits::GetTinyLengthString,
        ZrUnits::GetTinyLengthValue, ZrUnits::GetTinyLengthUnits},
    {"long", &ZrUnits::longLengthUnit, &ZrUnits::longLengthScale, ZrUnits::GetLongLengthString,
        ZrUnits::GetLongLengthValue, ZrUnits::GetLongLengthUnits},
    {"speed", &ZrUnits::speedUnit, &ZrUnits::speedScale, ZrUnits::GetSpeedString, ZrUnits::GetSpeedValue,
        ZrUnits::GetSpeedUnits},
    {"temperature", &ZrUnits::temperatureUnit, &ZrUnits::temperatureScale, ZrUnits::GetTemperatureString,
        ZrUnits::GetTemperatureValue, ZrUnits::GetTemperatureUnits},
};

} // namespace

/// The units are those of the process: every function starts from the metric ones and puts them back.
class tst_ZrUnits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void startsMetric();
    void presets_data();
    void presets();
    void customUnits();
    void wholeSystems();
    void labels();

    void valueText_data();
    void valueText();
    void lengthText_data();
    void lengthText();
    void lengthTextFollowsTheLongScale();
    void lengthScale();
    void angleText_data();
    void angleText();

    void typedValue_data();
    void typedValue();
    void typedTextThatFails_data();
    void typedTextThatFails();
    void temperatureOffsets();
    void textAndBack();
    void localeIsIgnored();

private:
    std::unique_ptr<ZrUnitsState> m_state;
};

void tst_ZrUnits::initTestCase()
{
    QVERIFY(Units::Now() == metric);
    QCOMPARE(ZrUnits::degrees, QChar(0x00B0));
}

void tst_ZrUnits::init()
{
    m_state = std::make_unique<ZrUnitsState>();
}

void tst_ZrUnits::cleanup()
{
    m_state.reset();
    QVERIFY(Units::Now() == metric);
}

void tst_ZrUnits::startsMetric()
{
    QCOMPARE(ZrUnits::tinyLengthUnit, S("mm"));
    QCOMPARE(ZrUnits::shortLengthUnit, S("m"));
    QCOMPARE(ZrUnits::longLengthUnit, S("km"));
    QCOMPARE(ZrUnits::temperatureUnit, S("°C"));
    QCOMPARE(ZrUnits::speedUnit, S("m/s"));
    QCOMPARE(ZrUnits::GetGeoStyle(), eGeoDMSFrac);
    QCOMPARE(int(ZrUnits::geoStyle), 7);
    const int values[] = {eGeoSignedDeg, eGeoSignedDegMin, eGeoSignedDMS, eGeoSignedDMSFrac, eGeoDeg,
        eGeoDegMin, eGeoDMS, eGeoDMSFrac, eGeoUTM};
    for (int i = 0; i <= 8; ++i)
        QCOMPARE(values[i], i);
}

void tst_ZrUnits::presets_data()
{
    QTest::addColumn<int>("preset");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("offset");

    QTest::newRow("short m") << 0 << "m" << 1.0 << 0.0;
    QTest::newRow("short ft") << 1 << "ft" << 3.28084 << 0.0;
    QTest::newRow("long km") << 2 << "km" << 0.001 << 0.0;
    QTest::newRow("long mi") << 3 << "mi" << 0.000621371 << 0.0;
    QTest::newRow("speed m/s") << 4 << "m/s" << 1.0 << 0.0;
    QTest::newRow("speed kts") << 5 << "kts" << 1.94384 << 0.0;
    QTest::newRow("speed km/h, labelled mph") << 6 << "mph" << 3.6 << 0.0;
    QTest::newRow("speed mph") << 7 << "mph" << 2.23694 << 0.0;
    QTest::newRow("speed fps") << 8 << "fps" << 3.28084 << 0.0;
    QTest::newRow("temperature C") << 9 << S("°C") << 1.0 << 0.0;
    QTest::newRow("temperature F") << 10 << S("°F") << 1.8 << 32.0;
}

void tst_ZrUnits::presets()
{
    QFETCH(int, preset);
    QFETCH(QString, unit);
    QFETCH(double, scale);
    QFETCH(double, offset);
    static void (*const functions[])() = {ZrUnits::SetShortLengthToM, ZrUnits::SetShortLengthToFt,
        ZrUnits::SetLongLengthToKm, ZrUnits::SetLongLengthToMiles, ZrUnits::SetSpeedToMPS,
        ZrUnits::SetSpeedToKts, ZrUnits::SetSpeedToKPH, ZrUnits::SetSpeedToMPH, ZrUnits::SetSpeedToFPS,
        ZrUnits::SetTempToDegreesC, ZrUnits::SetTempToDegreesF};

    // From values that no preset has, so that what is not touched shows.
    const Units before{S("a"), S("b"), S("c"), S("d"), S("e"), 11.0, 12.0, 13.0, 14.0, 15.0, 16.0, 3};
    ZrUnits::tinyLengthUnit = before.tiny;
    ZrUnits::shortLengthUnit = before.shortLength;
    ZrUnits::longLengthUnit = before.longLength;
    ZrUnits::temperatureUnit = before.temperature;
    ZrUnits::speedUnit = before.speed;
    ZrUnits::tinyLengthScale = before.tinyScale;
    ZrUnits::shortLengthScale = before.shortScale;
    ZrUnits::longLengthScale = before.longScale;
    ZrUnits::temperatureScale = before.temperatureScale;
    ZrUnits::temperatureOffset = before.temperatureOffset;
    ZrUnits::speedScale = before.speedScale;
    ZrUnits::SetGeoStyle(eGeoSignedDMSFrac);
    QVERIFY(Units::Now() == before);

    Units expected = before;
    if (preset < 2) {
        expected.shortLength = unit;
        expected.shortScale = scale;
    } else if (preset < 4) {
        expected.longLength = unit;
        expected.longScale = scale;
    } else if (preset < 9) {
        expected.speed = unit;
        expected.speedScale = scale;
    } else {
        expected.temperature = unit;
        expected.temperatureScale = scale;
        expected.temperatureOffset = offset;
    }
    functions[preset]();
    QVERIFY(Units::Now() == expected);
}

void tst_ZrUnits::customUnits()
{
    Units expected = metric;
    ZrUnits::SetShortLengthToCustom(S("fathom"), 0.546807);
    expected.shortLength = S("fathom");
    expected.shortScale = 0.546807;
    QVERIFY(Units::Now() == expected);
    ZrUnits::SetLongLengthToCustom(S("NM"), 1.0 / 1852.0);
    expected.longLength = S("NM");
    expected.longScale = 1.0 / 1852.0;
    QVERIFY(Units::Now() == expected);
    ZrUnits::SetSpeedToCustom(S("км/ч"), 3.6);
    expected.speed = S("км/ч");
    expected.speedScale = 3.6;
    QVERIFY(Units::Now() == expected);
    ZrUnits::SetTempToCustom(S("K"), 1.0, 273.15);
    expected.temperature = S("K");
    expected.temperatureScale = 1.0;
    expected.temperatureOffset = 273.15;
    QVERIFY(Units::Now() == expected);

    QCOMPARE(ZrUnits::GetTemperatureString(20.0, 2, true), S("293.15K"));
    QCOMPARE(ZrUnits::GetSpeedString(10.0, 0, true), S("36км/ч"));
    ZrUnits::SetShortLengthToCustom(QString(), 1.0);
    QCOMPARE(ZrUnits::GetShortLengthString(2.0, 0, true), S("2"));
}

void tst_ZrUnits::wholeSystems()
{
    ZrUnits::SetToImperial();
    QVERIFY(Units::Now() == imperial);
    ZrUnits::SetGeoStyle(eGeoUTM);
    ZrUnits::SetToMetric();
    Units expected = metric;
    expected.style = 8;
    QVERIFY(Units::Now() == expected);
    ZrUnits::SetToImperial();
    QCOMPARE(ZrUnits::GetGeoStyle(), eGeoUTM);
    ZrUnits::SetGeoStyle(eGeoDMSFrac);
    QVERIFY(Units::Now() == imperial);
}

void tst_ZrUnits::labels()
{
    for (const Kind& kind : kinds) {
        *kind.unit = S("label of ") + S(kind.name);
        for (const Kind& other : kinds)
            QCOMPARE(other.label(), *other.unit);
        QCOMPARE(kind.label(), S("label of ") + S(kind.name));
    }
}

void tst_ZrUnits::valueText_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("feet");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("precision");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("unit");

    QTest::newRow("short") << 0 << false << 12.5 << 2 << "12.50"
                           << "m";
    QTest::newRow("short ft") << 0 << true << 10.0 << 3 << "32.808"
                              << "ft";
    QTest::newRow("tiny") << 1 << false << 0.0125 << 1 << "12.5"
                          << "mm";
    QTest::newRow("tiny in") << 1 << true << 1.0 << 5 << "39.37008"
                             << "in";
    QTest::newRow("long") << 2 << false << 1234.0 << 2 << "1.23"
                          << "km";
    QTest::newRow("long mi") << 2 << true << 1609.344 << 4 << "1.0000"
                             << "mi";
    QTest::newRow("speed") << 3 << false << 3.2 << 1 << "3.2"
                           << "m/s";
    QTest::newRow("speed kts") << 3 << true << 3.2 << 1 << "6.2"
                               << "kts";
    QTest::newRow("temperature") << 4 << false << -1.5 << 1 << "-1.5" << S("°C");
    QTest::newRow("temperature F") << 4 << true << -40.0 << 0 << "-40" << S("°F");
    QTest::newRow("freezing F") << 4 << true << 0.0 << 1 << "32.0" << S("°F");
    // Exact halves go away from zero; the sign of what was rounded off stays.
    QTest::newRow("tie") << 0 << false << 0.125 << 2 << "0.13"
                         << "m";
    QTest::newRow("tie below 0") << 0 << false << -2.5 << 0 << "-3"
                                 << "m";
    QTest::newRow("-0") << 0 << false << -0.0 << 2 << "0.00"
                        << "m";
    QTest::newRow("below -0") << 0 << false << -0.001 << 2 << "-0.00"
                              << "m";
    QTest::newRow("large") << 0 << false << 1e15 << 1 << "1000000000000000.0"
                           << "m";
    QTest::newRow("NaN") << 0 << false << notANumber << 2 << "nan"
                         << "m";
    QTest::newRow("infinity") << 3 << false << infinity << 2 << "inf"
                              << "m/s";
    QTest::newRow("-infinity") << 4 << true << -infinity << 2 << "-inf" << S("°F");
}

void tst_ZrUnits::valueText()
{
    QFETCH(int, kind);
    QFETCH(bool, feet);
    QFETCH(double, value);
    QFETCH(int, precision);
    QFETCH(QString, text);
    QFETCH(QString, unit);
    if (feet)
        ZrUnits::SetToImperial();
    QCOMPARE(kinds[kind].text(value, precision, false), text);
    QCOMPARE(kinds[kind].text(value, precision, true), text + unit);
}

void tst_ZrUnits::lengthText_data()
{
    QTest::addColumn<bool>("feet");
    QTest::addColumn<double>("metres");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("unit");

    QTest::newRow("900 m") << false << 900.0 << "900.0"
                           << "m";
    QTest::newRow("1000 m is not more than 1 km") << false << 1000.0 << "1000.0"
                                                  << "m";
    QTest::newRow("1000.1 m") << false << 1000.1 << "1.0"
                              << "km";
    QTest::newRow("next above 1000 m") << false << 1000.0000000000002 << "1.0"
                                       << "km";
    QTest::newRow("0") << false << 0.0 << "0.0"
                       << "m";
    QTest::newRow("negative stays short") << false << -5000.0 << "-5000.0"
                                          << "m";
    QTest::newRow("1600 m is less than a mile") << true << 1600.0 << "5249.3"
                                                << "ft";
    QTest::newRow("1610 m") << true << 1610.0 << "1.0"
                            << "mi";
    QTest::newRow("NaN") << false << notANumber << "nan"
                         << "m";
    QTest::newRow("infinity") << false << infinity << "inf"
                              << "km";
    QTest::newRow("-infinity") << false << -infinity << "-inf"
                               << "m";
}

void tst_ZrUnits::lengthText()
{
    QFETCH(bool, feet);
    QFETCH(double, metres);
    QFETCH(QString, text);
    QFETCH(QString, unit);
    if (feet)
        ZrUnits::SetToImperial();
    QCOMPARE(ZrUnits::GetLengthString(metres, 1, false), text);
    QCOMPARE(ZrUnits::GetLengthString(metres, 1, true), text + unit);
    QCOMPARE(ZrUnits::GetLengthUnits(metres), unit);
}

void tst_ZrUnits::lengthTextFollowsTheLongScale()
{
    ZrUnits::SetLongLengthToCustom(S("cable"), 1.0 / 185.2);
    QCOMPARE(ZrUnits::GetLengthString(185.0, 0, true), S("185m"));
    QCOMPARE(ZrUnits::GetLengthString(370.4, 2, true), S("2.00cable"));
    QCOMPARE(ZrUnits::GetLengthUnits(370.4), S("cable"));
    QCOMPARE(ZrUnits::GetLengthUnits(185.0), S("m"));
}

void tst_ZrUnits::lengthScale()
{
    QCOMPARE(ZrUnits::GetLengthScale(), 1.0);
    ZrUnits::SetToImperial();
    QCOMPARE(ZrUnits::GetLengthScale(), 3.28084);
    ZrUnits::SetLongLengthToKm();
    QCOMPARE(ZrUnits::GetLengthScale(), 3.28084);
}

void tst_ZrUnits::angleText_data()
{
    QTest::addColumn<double>("angle");
    QTest::addColumn<int>("precision");
    QTest::addColumn<QString>("text");

    QTest::newRow("heading") << 271.25 << 1 << "271.3";
    QTest::newRow("not wrapped") << 725.0 << 0 << "725";
    QTest::newRow("negative") << -0.5 << 2 << "-0.50";
    QTest::newRow("NaN") << notANumber << 1 << "nan";
}

void tst_ZrUnits::angleText()
{
    QFETCH(double, angle);
    QFETCH(int, precision);
    QFETCH(QString, text);
    ZrUnits::SetToImperial();
    QCOMPARE(ZrUnits::GetAngleString(angle, precision, false), text);
    QCOMPARE(ZrUnits::GetAngleString(angle, precision, true), text + degree);
}

void tst_ZrUnits::typedValue_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("feet");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");

    QTest::newRow("short") << 0 << false << "12.5" << 12.5;
    QTest::newRow("short ft") << 0 << true << "3.28084" << 1.0;
    QTest::newRow("tiny") << 1 << false << "250" << 0.25;
    QTest::newRow("tiny in") << 1 << true << "39.37008" << 1.0;
    QTest::newRow("long") << 2 << false << "1.5" << 1500.0;
    QTest::newRow("long mi") << 2 << true << "1" << 1.0 / 0.000621371;
    QTest::newRow("speed") << 3 << false << "-2" << -2.0;
    QTest::newRow("speed kts") << 3 << true << "1.94384" << 1.0;
    QTest::newRow("temperature") << 4 << false << "21.5" << 21.5;
    QTest::newRow("temperature F") << 4 << true << "-40" << -40.0;
    QTest::newRow("exponent") << 0 << false << "1e3" << 1000.0;
    QTest::newRow("spaces around") << 0 << false << "  7 " << 7.0;
    QTest::newRow("plus") << 0 << false << "+7" << 7.0;
    QTest::newRow("point first") << 0 << false << ".5" << 0.5;
    QTest::newRow("infinity") << 0 << false << "inf" << infinity;
}

void tst_ZrUnits::typedValue()
{
    QFETCH(int, kind);
    QFETCH(bool, feet);
    QFETCH(QString, text);
    QFETCH(double, value);
    if (feet)
        ZrUnits::SetToImperial();
    bool ok = false;
    const double result = kinds[kind].value(text, ok);
    QVERIFY(ok);
    QVERIFY2(result == value || std::fabs(result - value) <= 1e-12 * std::fabs(value),
        QByteArray::number(result, 'g', 17));
}

void tst_ZrUnits::typedTextThatFails_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("null") << QString();
    QTest::newRow("empty") << "";
    QTest::newRow("blank") << "  ";
    QTest::newRow("word") << "deep";
    QTest::newRow("label") << "12.5m";
    QTest::newRow("label apart") << "12.5 m";
    QTest::newRow("decimal comma") << "12,5";
    QTest::newRow("thousands") << "1,000";
    QTest::newRow("two numbers") << "1 2";
    QTest::newRow("hexadecimal") << "0x10";
    QTest::newRow("beyond double") << "1e400";
    QTest::newRow("beyond double below 0") << "-1e400";
    QTest::newRow("sign alone") << "-";
    QTest::newRow("other digits") << S("١٢");
}

void tst_ZrUnits::typedTextThatFails()
{
    QFETCH(QString, text);
    for (const bool feet : {false, true}) {
        if (feet)
            ZrUnits::SetToImperial();
        for (const Kind& kind : kinds) {
            bool ok = true;
            const double result = kind.value(text, ok);
            QVERIFY2(!ok, kind.name);
            QVERIFY2(result == 0.0, kind.name);
        }
    }
}

void tst_ZrUnits::temperatureOffsets()
{
    bool ok = false;
    ZrUnits::SetTempToDegreesF();
    QCOMPARE(ZrUnits::GetTemperatureValue(S("212"), ok), 100.0);
    QVERIFY(ok);
    QCOMPARE(ZrUnits::GetTemperatureValue(S("32"), ok), 0.0);
    QVERIFY(ok);
    ZrUnits::SetTempToCustom(S("K"), 1.0, 273.15);
    QCOMPARE(ZrUnits::GetTemperatureValue(S("0"), ok), -273.15);
    QVERIFY(ok);
}

void tst_ZrUnits::textAndBack()
{
    std::mt19937 random(20240602);
    std::uniform_real_distribution<double> values(-5000.0, 5000.0);
    for (const bool feet : {false, true}) {
        if (feet)
            ZrUnits::SetToImperial();
        for (const Kind& kind : kinds) {
            for (int i = 0; i < 200; ++i) {
                const double value = values(random);
                bool ok = false;
                const double back = kind.value(kind.text(value, 6, false), ok);
                QVERIFY(ok);
                QVERIFY2(std::fabs(back - value) <= 0.51e-6 / *kind.scale, kind.name);
                kind.value(kind.text(value, 6, true), ok);
                QVERIFY2(!ok, "the label must make it fail");
            }
        }
    }
}

void tst_ZrUnits::localeIsIgnored()
{
    const QByteArray before = std::setlocale(LC_ALL, nullptr);
    const QLocale qtBefore;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    std::setlocale(LC_ALL, "de_DE.UTF-8"); // where it is installed
    bool ok = false;
    const QString text = ZrUnits::GetShortLengthString(1234.5, 1, true);
    const double value = ZrUnits::GetShortLengthValue(S("1234.5"), ok);
    QLocale::setDefault(qtBefore);
    std::setlocale(LC_ALL, before.constData());
    QCOMPARE(text, S("1234.5m"));
    QVERIFY(ok);
    QCOMPARE(value, 1234.5);
}

QTEST_GUILESS_MAIN(tst_ZrUnits)
#include "tst_ZrUnits.moc"
