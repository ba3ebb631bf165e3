// Grid values as text, and text as grid values.

#include "ZrUnitsState.h"

#include <QtTest>

#include <GeographicLib/TransverseMercatorExact.hpp>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

ZrProj Zone(double lat, double lng)
{
    ZrProj p;
    p.SetupUTM(lat, lng);
    return p;
}

} // namespace

class tst_ZrUnitsGridText : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_state = std::make_unique<ZrUnitsState>(); }

    void cleanup() { m_state.reset(); }

    void gridText_data();
    void gridText();
    void feetAreThoseOfTheShortLength_data();
    void feetAreThoseOfTheShortLength();
    void bothStrings_data();
    void bothStrings();
    void bothStringsMoveTheZone();
    void typed_data();
    void typed();
    void refused_data();
    void refused();
    void textAndBack();

private:
    std::unique_ptr<ZrUnitsState> m_state;
};

void tst_ZrUnitsGridText::gridText_data()
{
    QTest::addColumn<bool>("feet");
    QTest::addColumn<double>("metres");
    QTest::addColumn<int>("precision");
    QTest::addColumn<QString>("text");

    QTest::newRow("metres") << false << 651409.903 << 2 << "651409.90";
    QTest::newRow("whole metres") << false << 651409.903 << 0 << "651410";
    QTest::newRow("negative") << false << -12.345 << 1 << "-12.3";
    QTest::newRow("feet") << true << 500000.0 << 2 << "1640416.67";
    QTest::newRow("one survey foot") << true << 1200.0 / 3937.0 << 6 << "1.000000";
    // The international foot would give 3280839.895.
    QTest::newRow("a million metres in feet") << true << 1000000.0 << 3 << "3280833.333";
    QTest::newRow("nothing") << true << 0.0 << 2 << "0.00";
    QTest::newRow("NaN") << true << notANumber << 2 << "nan";
    QTest::newRow("infinity") << false << infinity << 2 << "inf";
}

void tst_ZrUnitsGridText::gridText()
{
    QFETCH(bool, feet);
    QFETCH(double, metres);
    QFETCH(int, precision);
    QFETCH(QString, text);
    if (feet)
        ZrUnits::SetShortLengthToFt();
    QCOMPARE(ZrUnits::GetEString(metres, precision, false), text);
    QCOMPARE(ZrUnits::GetNString(metres, precision, false), text);
    QCOMPARE(ZrUnits::GetEString(metres, precision, true), text + (feet ? S(" ftE") : S(" mE")));
    QCOMPARE(ZrUnits::GetNString(metres, precision, true), text + (feet ? S(" ftN") : S(" mN")));
    QCOMPARE(ZrUnits::GetEUnits(), feet ? S("ftE") : S("mE"));
    QCOMPARE(ZrUnits::GetNUnits(), feet ? S("ftN") : S("mN"));
}

void tst_ZrUnitsGridText::feetAreThoseOfTheShortLength_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<bool>("feet");

    QTest::newRow("ft") << "ft" << true;
    QTest::newRow("m") << "m" << false;
    QTest::newRow("upper case") << "FT" << false;
    QTest::newRow("blank behind") << "ft " << false;
    QTest::newRow("feet") << "feet" << false;
    QTest::newRow("fathom") << "fathom" << false;
    QTest::newRow("empty") << "" << false;
}

void tst_ZrUnitsGridText::feetAreThoseOfTheShortLength()
{
    QFETCH(QString, unit);
    QFETCH(bool, feet);
    // The label decides, not the scale, and no other unit.
    ZrUnits::SetToImperial();
    ZrUnits::SetShortLengthToCustom(unit, 17.0);
    QCOMPARE(ZrUnits::GetEString(1200.0, 1, true), feet ? S("3937.0 ftE") : S("1200.0 mE"));
    QCOMPARE(ZrUnits::GetNString(1200.0, 1, true), feet ? S("3937.0 ftN") : S("1200.0 mN"));
    bool ok = false;
    QVERIFY(std::fabs(ZrUnits::GetGridValue(S("3937"), ok) - (feet ? 1200.0 : 3937.0)) < 1e-9);
    QVERIFY(ok);
    QString east, north;
    ZrUnits::GetENStrings(0.0, 3.0, east, north);
    QCOMPARE(east, feet ? S("1640416.67 ftE") : S("500000.00 mE"));
    QCOMPARE(north, feet ? S("0.00 ftN") : S("0.00 mN"));
}

void tst_ZrUnitsGridText::bothStrings_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<QString>("east");
    QTest::addColumn<QString>("north");
    QTest::addColumn<QString>("eastFeet");
    QTest::addColumn<QString>("northFeet");

    QTest::newRow("meridian") << 0.0 << -3.0 << "500000.00 mE"
                              << "0.00 mN"
                              << "1640416.67 ftE"
                              << "0.00 ftN";
    QTest::newRow("180") << 0.0 << 177.0 << "500000.00 mE"
                         << "0.00 mN"
                         << "1640416.67 ftE"
                         << "0.00 ftN";
    QTest::newRow("NaN") << notANumber << 0.0 << "nan mE"
                         << "nan mN"
                         << "nan ftE"
                         << "nan ftN";
}

void tst_ZrUnitsGridText::bothStrings()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(QString, east);
    QFETCH(QString, north);
    QFETCH(QString, eastFeet);
    QFETCH(QString, northFeet);
    QString e, n;
    ZrUnits::GetENStrings(lat, lng, e, n);
    QCOMPARE(e, east);
    QCOMPARE(n, north);
    ZrUnits::SetShortLengthToFt();
    ZrUnits::GetENStrings(lat, lng, e, n);
    QCOMPARE(e, eastFeet);
    QCOMPARE(n, northFeet);
}

void tst_ZrUnitsGridText::bothStringsMoveTheZone()
{
    const GeographicLib::TransverseMercatorExact exact(6378137.0, 1.0 / 298.257223563, 0.9996);
    std::mt19937 random(20240610);
    std::uniform_real_distribution<double> lats(-80.0, 84.0);
    std::uniform_real_distribution<double> lngs(-180.0, 180.0);
    for (int i = 0; i < 500; ++i) {
        const double lat = lats(random);
        const double lng = lngs(random);
        QString east, north;
        ZrUnits::GetENStrings(lat, lng, east, north);
        const ZrProj expected = Zone(lat, lng);
        QVERIFY(
            ZrUnits::utm.lngOrigin == expected.lngOrigin && ZrUnits::utm.falseNorth == expected.falseNorth);
        double x = 0.0;
        double y = 0.0;
        exact.Forward(6.0 * std::floor((lng + 180.0) / 6.0) - 177.0, lat, lng, x, y);
        QVERIFY2(
            std::fabs(east.split(QLatin1Char(' '))[0].toDouble() - 500000.0 - x) < 0.0061, qPrintable(east));
        QVERIFY2(
            std::fabs(north.split(QLatin1Char(' '))[0].toDouble() - (lat < 0.0 ? 1e7 : 0.0) - y) < 0.0061,
            qPrintable(north));
        QVERIFY(east.endsWith(S(" mE")) && north.endsWith(S(" mN")));
    }
}

void tst_ZrUnitsGridText::typed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("metres");
    QTest::addColumn<double>("feet"); ///< in metres, when the text is in feet

    const auto row = [](const char* text, double value) {
        QTest::newRow(text) << S(text) << value << value * 0.3048006096012192;
    };
    row("500000", 500000.0);
    row("500000.25", 500000.25);
    row("1640416.67 ftE", 1640416.67);
    row("500000 mE", 500000.0);
    row("-17.5 mN", -17.5);
    row("  42", 42.0);
    row("42  ", 42.0);
    row("1 2 3", 1.0);
    row("1 000", 1.0);
    row("7 anything goes here", 7.0);
    row("5e5", 500000.0);
    row("+3", 3.0);
}

void tst_ZrUnitsGridText::typed()
{
    QFETCH(QString, text);
    QFETCH(double, metres);
    QFETCH(double, feet);
    bool ok = false;
    QVERIFY(ZrUnits::GetGridValue(text, ok) == metres);
    QVERIFY(ok);
    ZrUnits::SetShortLengthToFt();
    ok = false;
    QVERIFY(ZrUnits::GetGridValue(text, ok) == feet);
    QVERIFY(ok);
}

void tst_ZrUnitsGridText::refused_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("null") << QString();
    for (const char* text :
        {"", " ", "    ", "x", "mE", "mE 500000", "500000mE", "500,000", "1e400", "-1e400", "--5", "0x10"})
        QTest::newRow(text) << S(text);
}

void tst_ZrUnitsGridText::refused()
{
    QFETCH(QString, text);
    for (const bool feet : {false, true}) {
        if (feet)
            ZrUnits::SetShortLengthToFt();
        bool ok = true;
        QVERIFY(ZrUnits::GetGridValue(text, ok) == 0.0);
        QVERIFY(!ok);
    }
}

void tst_ZrUnitsGridText::textAndBack()
{
    std::mt19937 random(20240611);
    std::uniform_real_distribution<double> values(-1e7, 1e7);
    for (const bool feet : {false, true}) {
        if (feet)
            ZrUnits::SetShortLengthToFt();
        for (int i = 0; i < 2000; ++i) {
            const double value = i == 0 ? 500000.0 : values(random);
            for (const QString& text :
                {ZrUnits::GetEString(value, 2, true), ZrUnits::GetNString(value, 2, true)}) {
                bool ok = false;
                QVERIFY2(std::fabs(ZrUnits::GetGridValue(text, ok) - value) < 0.00501, qPrintable(text));
                QVERIFY(ok);
            }
        }
    }
}

QTEST_GUILESS_MAIN(tst_ZrUnitsGridText)
#include "tst_ZrUnitsGridText.moc"
