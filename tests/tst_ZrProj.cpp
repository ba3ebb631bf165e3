#include "ZrUnitsState.h"
#include "ZrUtil/ZrSetModule.h"

#include <QtTest>

#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <proj.h>
#include <random>
#include <type_traits>

static_assert(std::is_trivially_copyable_v<ZrProj> && sizeof(ZrProj) == 5 * sizeof(double));
static_assert(offsetof(ZrProj, latOrigin) < offsetof(ZrProj, lngOrigin)
    && offsetof(ZrProj, lngOrigin) < offsetof(ZrProj, falseEast)
    && offsetof(ZrProj, falseEast) < offsetof(ZrProj, falseNorth)
    && offsetof(ZrProj, falseNorth) < offsetof(ZrProj, scaleFactor));

namespace {

constexpr double radians = 0.017453292519943295;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace

class tst_ZrProj : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsInZone30North();
    void centralMeridian_data();
    void centralMeridian();
    void everyZone();
    void falseNorthing_data();
    void falseNorthing();
    void nothingElseIsTouched();
    void zoneOfTheProcess();
    void zonesAreThoseOfProj();
    void isStoredUnderItsKeys();
    void isLoaded();
    void missingKeysLeaveTheValues();
};

void tst_ZrProj::startsInZone30North()
{
    const ZrProj p;
    QVERIFY(p.latOrigin == 0.0);
    QVERIFY(p.lngOrigin == -0.0523598775598);
    QVERIFY(p.falseEast == 500000.0);
    QVERIFY(p.falseNorth == 0.0);
    QVERIFY(p.scaleFactor == 0.9996);
}

void tst_ZrProj::centralMeridian_data()
{
    QTest::addColumn<double>("lng");
    QTest::addColumn<double>("meridian");

    QTest::newRow("0") << 0.0 << 3.0;
    QTest::newRow("-0") << -0.0 << 3.0;
    QTest::newRow("just west of 0") << -1e-9 << -3.0;
    // 180 minus this is 180 in a double.
    QTest::newRow("too little west of 0") << -1e-15 << 3.0;
    QTest::newRow("zone 30") << -1.5 << -3.0;
    QTest::newRow("6") << 6.0 << 9.0;
    QTest::newRow("below 6") << 5.9999999 << 3.0;
    QTest::newRow("-180") << -180.0 << -177.0;
    QTest::newRow("180 is zone 1") << 180.0 << -177.0;
    QTest::newRow("below 180") << 179.9999999 << 177.0;
    QTest::newRow("Norway, no exception") << 4.0 << 3.0;
    QTest::newRow("Svalbard, no exception") << 10.0 << 9.0;
    // Beyond the circle: from 180 on it wraps, however often; below -180 it runs on.
    QTest::newRow("181") << 181.0 << -177.0;
    QTest::newRow("359") << 359.0 << -3.0;
    QTest::newRow("540") << 540.0 << -177.0;
    QTest::newRow("905") << 905.0 << -177.0;
    QTest::newRow("-181") << -181.0 << -183.0;
    QTest::newRow("-540") << -540.0 << -177.0;
    QTest::newRow("-541") << -541.0 << -183.0;
    QTest::newRow("NaN") << notANumber << notANumber;
    QTest::newRow("infinity") << infinity << notANumber;
    QTest::newRow("-infinity") << -infinity << notANumber;
}

void tst_ZrProj::centralMeridian()
{
    QFETCH(double, lng);
    QFETCH(double, meridian);
    ZrProj p;
    p.SetupUTM(50.0, lng);
    if (std::isnan(meridian))
        QVERIFY(std::isnan(p.lngOrigin));
    else
        QVERIFY2(p.lngOrigin == meridian * radians, QByteArray::number(p.lngOrigin / radians, 'g', 17));
    QCOMPARE(p.falseNorth, 0.0);
}

void tst_ZrProj::everyZone()
{
    for (int zone = 1; zone <= 60; ++zone) {
        const double meridian = 6.0 * zone - 183.0;
        for (const double offset : {-3.0, -2.9999999, 0.0, 2.9999999}) {
            ZrProj p;
            p.SetupUTM(-1.0, meridian + offset);
            QVERIFY2(p.lngOrigin == meridian * radians, QByteArray::number(zone));
        }
    }
    // Huge longitudes are nonsense, but land in a zone.
    ZrProj p;
    p.SetupUTM(0.0, 1e300);
    QVERIFY(std::fabs(p.lngOrigin) <= 180.0 * radians);
}

void tst_ZrProj::falseNorthing_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("north");

    QTest::newRow("north") << 0.1 << 0.0;
    QTest::newRow("0 is northern") << 0.0 << 0.0;
    QTest::newRow("-0 is northern") << -0.0 << 0.0;
    QTest::newRow("smallest south") << -std::numeric_limits<double>::denorm_min() << 10000000.0;
    QTest::newRow("south") << -33.0 << 10000000.0;
    QTest::newRow("-90") << -90.0 << 10000000.0;
    QTest::newRow("NaN") << notANumber << 0.0;
    QTest::newRow("-infinity") << -infinity << 10000000.0;
}

void tst_ZrProj::falseNorthing()
{
    QFETCH(double, lat);
    QFETCH(double, north);
    ZrProj p;
    p.falseNorth = 17.0;
    p.SetupUTM(lat, 10.0);
    QVERIFY(p.falseNorth == north);
    QVERIFY(p.lngOrigin == 9.0 * radians);
}

void tst_ZrProj::nothingElseIsTouched()
{
    ZrProj p;
    p.latOrigin = 0.5;
    p.falseEast = -7.0;
    p.scaleFactor = 1.25;
    p.SetupUTM(-5.0, 100.0);
    QCOMPARE(p.latOrigin, 0.5);
    QCOMPARE(p.falseEast, -7.0);
    QCOMPARE(p.scaleFactor, 1.25);
}

void tst_ZrProj::zoneOfTheProcess()
{
    const ZrUnitsState state;
    QVERIFY(ZrUnits::utm.lngOrigin == -0.0523598775598);
    ZrUnits::utm.scaleFactor = 0.5;
    ZrUnits::utm.falseEast = 1.0;
    ZrUnits::utm.latOrigin = 2.0;
    ZrUnits::CalcUTM(-10.0, 179.0);
    QVERIFY(ZrUnits::utm.lngOrigin == 177.0 * radians);
    QVERIFY(ZrUnits::utm.falseNorth == 10000000.0);
    QVERIFY(ZrUnits::utm.scaleFactor == 0.5);
    QVERIFY(ZrUnits::utm.falseEast == 1.0);
    QVERIFY(ZrUnits::utm.latOrigin == 2.0);
    ZrUnits::CalcUTM(10.0, 180.0);
    QVERIFY(ZrUnits::utm.lngOrigin == -177.0 * radians);
    QVERIFY(ZrUnits::utm.falseNorth == 0.0);
}

void tst_ZrProj::zonesAreThoseOfProj()
{
    // PROJ chooses the zone by +lon_0 itself, in radians: at the borders rounding decides there, and at 180
    // it takes zone 60, so positions a little beside the borders are taken.
    const std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)> context(
        proj_context_create(), proj_context_destroy);
    std::mt19937 random(20240601);
    std::uniform_real_distribution<double> lats(-80.0, 84.0);
    std::uniform_real_distribution<double> lngs(-180.0, 180.0);
    for (int i = 0; i < 400; ++i) {
        const double border = 6.0 * (i / 2 % 60) - 180.0 + (i % 2 == 0 ? 1e-9 : 6.0 - 1e-9);
        const double lng = i < 120 ? border : lngs(random);
        const double lat = lats(random);
        const QByteArray definition = "+proj=utm +ellps=WGS84 +lon_0=" + QByteArray::number(lng, 'g', 17)
            + (lat < 0.0 ? " +south" : "");
        const std::unique_ptr<PJ, decltype(&proj_destroy)> transform(
            proj_create(context.get(), definition.constData()), proj_destroy);
        QVERIFY2(transform, definition.constData());
        const PJ_COORD expected
            = proj_trans(transform.get(), PJ_FWD, proj_coord(proj_torad(lng), proj_torad(lat), 0.0, 0.0));

        ZrProj p;
        p.SetupUTM(lat, lng);
        double east = 0.0;
        double north = 0.0;
        ZrUnits::LLToEN(ZrSphd(), p, lat, lng, east, north);
        const double off = std::hypot(east - expected.enu.e, north - expected.enu.n);
        QVERIFY2(off < 0.0008, definition + ' ' + QByteArray::number(lat) + ": " + QByteArray::number(off));
    }
}

void tst_ZrProj::isStoredUnderItsKeys()
{
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistStoring, object);
    ZrProj p;
    p.SetupUTM(-20.0, 57.0);
    p.serialise(module);
    QCOMPARE(object,
        (QJsonObject{
            {QStringLiteral("latitude origin"), 0.0},
            {QStringLiteral("longitude origin"), 57.0 * radians},
            {QStringLiteral("false easting"), 500000.0},
            {QStringLiteral("false northing"), 10000000.0},
            {QStringLiteral("scale factor"), 0.9996},
        }));
}

void tst_ZrProj::isLoaded()
{
    QJsonObject object{
        {QStringLiteral("latitude origin"), 1.0},
        {QStringLiteral("longitude origin"), 2.0},
        {QStringLiteral("false easting"), 3.0},
        {QStringLiteral("false northing"), 4.0},
        {QStringLiteral("scale factor"), 5.0},
    };
    zr::ZrSetModule module(zr::ePersistLoading, object);
    ZrProj p;
    p.serialise(module);
    QCOMPARE(p.latOrigin, 1.0);
    QCOMPARE(p.lngOrigin, 2.0);
    QCOMPARE(p.falseEast, 3.0);
    QCOMPARE(p.falseNorth, 4.0);
    QCOMPARE(p.scaleFactor, 5.0);
}

void tst_ZrProj::missingKeysLeaveTheValues()
{
    QJsonObject object{{QStringLiteral("scale factor"), 1.0}};
    zr::ZrSetModule module(zr::ePersistLoading, object);
    ZrProj p;
    p.serialise(module);
    QCOMPARE(p.scaleFactor, 1.0);
    QCOMPARE(p.lngOrigin, -0.0523598775598);
    QCOMPARE(p.falseEast, 500000.0);
}

QTEST_GUILESS_MAIN(tst_ZrProj)
#include "tst_ZrProj.moc"
