// The units in the settings, and the formulas of physics.

#include "ZrUnitsShown.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrSetModule.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <memory>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

class tst_ZrUnitsSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_state = std::make_unique<ZrUnitsState>(); }

    void cleanup() { m_state.reset(); }

    void isStoredUnderItsKeys();
    void isLoaded();
    void missingKeysLeaveTheValues();
    void styleOutsideTheTable();
    void gravity_data();
    void gravity();
    void depth_data();
    void depth();
    void depthTakesTheSineOfWhatIsPassed();

private:
    std::unique_ptr<ZrUnitsState> m_state;
};

void tst_ZrUnitsSettings::isStoredUnderItsKeys()
{
    ZrUnits::SetToImperial();
    ZrUnits::SetGeoStyle(eGeoDegMin);
    ZrUnits::wgs84.semiMajor = 6377563.396;
    ZrUnits::utm.falseEast = 400000.0;
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistStoring, object);
    ZrUnits::serialise(module);
    const QJsonObject spheroid{
        {S("semi-major"), 6377563.396},
        {S("semi-minor"), 6356752.314},
        {S("flattening"), 298.2572},
        {S("eccentricity sqr"), 0.006694380023},
    };
    const QJsonObject projection{
        {S("latitude origin"), 0.0},
        {S("longitude origin"), -0.0523598775598},
        {S("false easting"), 400000.0},
        {S("false northing"), 0.0},
        {S("scale factor"), 0.9996},
    };
    QCOMPARE(object,
        (QJsonObject{
            {S("length unit (short)"), S("ft")},
            {S("length unit (tiny)"), S("in")},
            {S("length unit (long)"), S("mi")},
            {S("temperature unit"), S("°F")},
            {S("speed unit"), S("kts")},
            {S("length scale (tiny)"), 39.37008},
            {S("length scale (short)"), 3.28084},
            {S("length scale (long)"), 0.000621371},
            {S("temperature scale"), 1.8},
            {S("temperature offset"), 32.0},
            {S("speed scale"), 1.94384},
            {S("geo style"), S("5")}, // integers travel as texts
            {S("spheroid"), spheroid},
            {S("projection"), projection},
        }));
}

void tst_ZrUnitsSettings::isLoaded()
{
    const Units before{S("a"), S("b"), S("c"), S("d"), S("e"), 11.0, 12.0, 13.0, 14.0, 15.0, 16.0, 3};
    QJsonObject object{
        {S("length unit (tiny)"), before.tiny},
        {S("length unit (short)"), before.shortLength},
        {S("length unit (long)"), before.longLength},
        {S("temperature unit"), before.temperature},
        {S("speed unit"), before.speed},
        {S("length scale (tiny)"), 11.0},
        {S("length scale (short)"), 12.0},
        {S("length scale (long)"), 13.0},
        {S("temperature scale"), 14.0},
        {S("temperature offset"), 15.0},
        {S("speed scale"), 16.0},
        {S("geo style"), S("3")},
        {S("spheroid"), QJsonObject{{S("flattening"), 299.0}}},
        {S("projection"), QJsonObject{{S("false northing"), -100000.0}}},
    };
    zr::ZrSetModule module(zr::ePersistLoading, object);
    ZrUnits::serialise(module);
    QVERIFY(Units::Now() == before);
    QCOMPARE(ZrUnits::wgs84.flattening, 299.0);
    QCOMPARE(ZrUnits::wgs84.semiMajor, 6378137.0);
    QCOMPARE(ZrUnits::utm.falseNorth, -100000.0);
    QCOMPARE(ZrUnits::utm.falseEast, 500000.0);
}

void tst_ZrUnitsSettings::missingKeysLeaveTheValues()
{
    ZrUnits::SetToImperial();
    ZrUnits::utm.falseEast = 1.0;
    ZrUnits::wgs84.semiMajor = 2.0;
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistLoading, object);
    ZrUnits::serialise(module);
    QVERIFY(Units::Now() == imperial);
    QCOMPARE(ZrUnits::utm.falseEast, 1.0);
    QCOMPARE(ZrUnits::wgs84.semiMajor, 2.0);
}

void tst_ZrUnitsSettings::styleOutsideTheTable()
{
    for (const char* style : {"9", "-1", "2147483647"}) {
        QJsonObject object{{S("geo style"), S(style)}};
        zr::ZrSetModule module(zr::ePersistLoading, object);
        ZrUnits::serialise(module);
        QCOMPARE(int(ZrUnits::GetGeoStyle()), S(style).toInt());
        QCOMPARE(ZrUnits::GetLatString(1.0), S("Error"));
        QCOMPARE(ZrUnits::GetLngString(1.0), S("Error"));
        // It is stored as it was loaded.
        QJsonObject stored;
        zr::ZrSetModule storing(zr::ePersistStoring, stored);
        ZrUnits::serialise(storing);
        QCOMPARE(stored.value(S("geo style")).toString(), S(style));
    }
}

void tst_ZrUnitsSettings::gravity_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("g");

    QTest::newRow("equator") << 0.0 << 9.780318;
    // sin² is 1: 9.780318 × 1.0053024.
    QTest::newRow("pole, radians") << M_PI_2 << 9.8321771581632;
    // sin² is 0.5: 9.780318 × (1 + 0.0026394 + 0.0000059).
    QTest::newRow("45 degrees, radians") << M_PI_4 << 9.8061898752054;
    QTest::newRow("south is as north") << -M_PI_4 << 9.8061898752054;
    // The sine is taken of the value as passed: sin 45 = 0.85090352453411844.
    QTest::newRow("45 as passed") << 45.0
                                  << 9.780318
            * (1.0 + 0.0052788 * 0.72403680806916 + 2.36e-5 * 0.72403680806916 * 0.72403680806916);
    QTest::newRow("NaN") << notANumber << notANumber;
}

void tst_ZrUnitsSettings::gravity()
{
    QFETCH(double, lat);
    QFETCH(double, g);
    const double actual = ZrUnits::CalcGAnm(lat);
    if (std::isnan(g))
        QVERIFY(std::isnan(actual));
    else
        QVERIFY2(std::fabs(actual - g) < 1e-12, QByteArray::number(actual, 'g', 17));
}

void tst_ZrUnitsSettings::depth_data()
{
    QTest::addColumn<double>("bar");
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("metres");

    QTest::newRow("surface") << 0.0 << 0.7 << 0.0;
    // Worked out by hand from the terms: p = 1000, sin² = 0:
    // (9726.59 - 25.12 + 0.2279 - 0.00182) / (9.780318 + 0.001092).
    QTest::newRow("100 bar at the equator") << 100.0 << 0.0 << 9701.69608 / 9.78141;
    // p = 10000, sin² = 1: (97265.9 - 2512 + 227.9 - 18.2) / (9.8321771581632 + 0.01092).
    QTest::newRow("1000 bar at the pole") << 1000.0 << M_PI_2 << 94963.6 / 9.8430971581632;
    QTest::newRow("10 bar at 30 degrees") << 10.0 << M_PI / 6.0
                                          << (972.659 - 0.2512 + 0.0002279 - 0.000000182)
            / (9.780318 * (1.0 + 0.0052788 * 0.25 + 2.36e-5 * 0.0625) + 0.0001092);
    QTest::newRow("NaN") << notANumber << 0.0 << notANumber;
    QTest::newRow("NaN latitude") << 1.0 << notANumber << notANumber;
}

void tst_ZrUnitsSettings::depth()
{
    QFETCH(double, bar);
    QFETCH(double, lat);
    QFETCH(double, metres);
    const double actual = ZrUnits::Bar2M(bar, lat);
    if (std::isnan(metres))
        QVERIFY(std::isnan(actual));
    else
        QVERIFY2(std::fabs(actual - metres) < 1e-9, QByteArray::number(actual, 'g', 17));
}

void tst_ZrUnitsSettings::depthTakesTheSineOfWhatIsPassed()
{
    QVERIFY(std::fabs(ZrUnits::Bar2M(50.0, 45.0) - ZrUnits::Bar2M(50.0, M_PI_4)) > 0.01);
    QVERIFY(std::fabs(ZrUnits::Bar2M(50.0, 45.0) - ZrUnits::Bar2M(50.0, 45.0 - 14.0 * M_PI)) < 1e-9);
    QVERIFY(std::fabs(ZrUnits::Bar2M(50.0, 0.5) - ZrUnits::Bar2M(50.0, -0.5)) < 1e-12);
}

QTEST_GUILESS_MAIN(tst_ZrUnitsSettings)
#include "tst_ZrUnitsSettings.moc"
