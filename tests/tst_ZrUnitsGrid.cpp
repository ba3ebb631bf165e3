// The projection, in both directions, and the convergence. Grid values as text: tst_ZrUnitsGridText.cpp

#include "ZrGridReference.h"
#include "ZrUnitsState.h"

#include <QElapsedTimer>
#include <QtTest>

#include <GeographicLib/TransverseMercatorExact.hpp>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

QByteArray Number(double value)
{
    return QByteArray::number(value, 'g', 17);
}

struct Grid
{
    double east = notANumber;
    double north = notANumber;
};

struct Position
{
    double lat = notANumber;
    double lng = notANumber;
};

Grid ToGrid(const ZrSphd& s, const ZrProj& p, double lat, double lng)
{
    Grid grid;
    ZrUnits::LLToEN(s, p, lat, lng, grid.east, grid.north);
    return grid;
}

Position ToPosition(const ZrSphd& s, const ZrProj& p, double east, double north)
{
    Position position;
    ZrUnits::EN2LL(s, p, east, north, position.lat, position.lng);
    return position;
}

ZrProj Zone(double lat, double lng)
{
    ZrProj p;
    p.SetupUTM(lat, lng);
    return p;
}

/// The National Grid and its spheroid, as in the worked example of "A guide to coordinate systems in Great
/// Britain" (Ordnance Survey), annexe C.
ZrSphd Airy1830()
{
    ZrSphd s;
    s.semiMajor = 6377563.396;
    s.semiMinor = 6356256.910;
    s.eccentricitySqr = 6.6705397616e-3; // 1 - b²/a²
    return s;
}

ZrProj NationalGrid()
{
    ZrProj p;
    p.latOrigin = 49.0 * reference::radians;
    p.lngOrigin = -2.0 * reference::radians;
    p.falseEast = 400000.0;
    p.falseNorth = -100000.0;
    p.scaleFactor = 0.9996012717;
    return p;
}

constexpr double caisterLat = 52.0 + 39.0 / 60.0 + 27.2531 / 3600.0;
constexpr double caisterLng = 1.0 + 43.0 / 60.0 + 4.5177 / 3600.0;

/// WGS 84 to the last digit, for the comparison with other libraries: the default figures are rounded.
ZrSphd ExactWgs84()
{
    ZrSphd s;
    s.semiMajor = 6378137.0;
    s.semiMinor = 6356752.3142451793;
    s.eccentricitySqr = 0.0066943799901413165;
    return s;
}

} // namespace

class tst_ZrUnitsGrid : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_state = std::make_unique<ZrUnitsState>(); }

    void cleanup() { m_state.reset(); }

    void stateOfTheProcess();
    void publishedExample();
    void publishedCoefficients();
    void forwardIsTheSeries();
    void inverseIsTheSeries();
    void inverseKeepsItsOwnCoefficient();
    void flatteningIsNotRead();
    void accuracyOfTheSeries_data();
    void accuracyOfTheSeries();
    void accuracyOfTheInverse();
    void thereAndBack();
    void originAndAxes();
    void poles();
    void farFromTheMeridian();
    void notNumbers_data();
    void notNumbers();
    void hugeNorthingsEnd_data();
    void hugeNorthingsEnd();
    void brokenParameters();

    void convergence();
    void convergenceAgainstTheGrid();
    void convergenceAtThePole();

private:
    std::unique_ptr<ZrUnitsState> m_state;
};

void tst_ZrUnitsGrid::stateOfTheProcess()
{
    QVERIFY(ZrUnits::wgs84.semiMajor == 6378137.0);
    QVERIFY(ZrUnits::wgs84.semiMinor == 6356752.314);
    QVERIFY(ZrUnits::utm.lngOrigin == -0.0523598775598);
    // The short forms work on it, and leave it alone.
    Grid grid;
    ZrUnits::LLToEN(51.5, -2.25, grid.east, grid.north);
    const Grid same = ToGrid(ZrSphd(), ZrProj(), 51.5, -2.25);
    QVERIFY(grid.east == same.east && grid.north == same.north);
    Position position;
    ZrUnits::EN2LL(grid.east, grid.north, position.lat, position.lng);
    const Position back = ToPosition(ZrSphd(), ZrProj(), grid.east, grid.north);
    QVERIFY(position.lat == back.lat && position.lng == back.lng);
    // They do not choose the zone.
    ZrUnits::LLToEN(-33.0, 18.0, grid.east, grid.north);
    QVERIFY(ZrUnits::utm.lngOrigin == -0.0523598775598);
    QVERIFY(ZrUnits::utm.falseNorth == 0.0);
    QVERIFY(grid.north < 0.0);
    // They follow what is set.
    ZrUnits::wgs84 = Airy1830();
    ZrUnits::utm = NationalGrid();
    ZrUnits::LLToEN(caisterLat, caisterLng, grid.east, grid.north);
    QVERIFY(std::fabs(grid.east - 651409.903) < 0.001);
    ZrUnits::EN2LL(651409.903, 313177.270, position.lat, position.lng);
    QVERIFY(std::fabs(position.lat - caisterLat) < 1e-7);
}

void tst_ZrUnitsGrid::publishedExample()
{
    const Grid grid = ToGrid(Airy1830(), NationalGrid(), caisterLat, caisterLng);
    QVERIFY2(std::fabs(grid.east - 651409.903) < 0.0011, Number(grid.east));
    QVERIFY2(std::fabs(grid.north - 313177.270) < 0.0011, Number(grid.north));

    const Position position = ToPosition(Airy1830(), NationalGrid(), 651409.903, 313177.270);
    QVERIFY2(std::fabs(position.lat - caisterLat) * 3600.0 < 0.00006, Number(position.lat));
    QVERIFY2(std::fabs(position.lng - caisterLng) * 3600.0 < 0.00006, Number(position.lng));
}

/// The coefficients printed in the example: that the formulas which the library is compared with are those.
void tst_ZrUnitsGrid::publishedCoefficients()
{
    const reference::Radii r
        = reference::RadiiAt(Airy1830(), NationalGrid(), caisterLat * reference::radians);
    const reference::Coefficients c
        = reference::CoefficientsAt(Airy1830(), NationalGrid(), caisterLat * reference::radians);
    const auto close = [](double actual, double printed) {
        return std::fabs(actual - printed) <= 2e-9 * std::fabs(printed);
    };
    QVERIFY2(close(r.nu, 6.3885023333E+06), Number(r.nu));
    QVERIFY2(close(r.rho, 6.3727564399E+06), Number(r.rho));
    QVERIFY2(std::fabs(r.eta2 - 2.4708136169E-03) < 1e-10, Number(r.eta2));
    QVERIFY2(close(c.m, 4.0668829596E+05), Number(c.m));
    QVERIFY2(close(c.one, 3.0668829596E+05), Number(c.one));
    QVERIFY2(close(c.two, 1.5404079094E+06), Number(c.two));
    QVERIFY2(close(c.three, 1.5606875424E+05), Number(c.three));
    QVERIFY2(close(c.threeA, -2.0671123011E+04), Number(c.threeA));
    QVERIFY2(close(c.four, 3.8751205749E+06), Number(c.four));
    QVERIFY2(close(c.five, -1.7000078208E+05), Number(c.five));
    QVERIFY2(close(c.six, -1.0134470432E+05), Number(c.six));
}

void tst_ZrUnitsGrid::forwardIsTheSeries()
{
    std::mt19937 random(20240604);
    std::uniform_real_distribution<double> lats(-90.0, 90.0);
    std::uniform_real_distribution<double> offsets(-6.0, 6.0);
    const ZrSphd spheroids[] = {ZrSphd(), Airy1830()};
    for (int i = 0; i < 100000; ++i) {
        const bool national = i % 2 == 1;
        const double lat = lats(random);
        ZrProj p = NationalGrid();
        if (!national)
            p.SetupUTM(lat, offsets(random) * 30.0);
        const double lng = p.lngOrigin * reference::degrees + offsets(random);
        const Grid grid = ToGrid(spheroids[i % 2], p, lat, lng);
        Grid expected;
        reference::LLToEN(spheroids[i % 2], p, lat, lng, expected.east, expected.north);
        QVERIFY2(std::fabs(grid.east - expected.east) < 1e-8, Number(grid.east - expected.east));
        QVERIFY2(std::fabs(grid.north - expected.north) < 2e-8, Number(grid.north - expected.north));
    }
}

void tst_ZrUnitsGrid::inverseIsTheSeries()
{
    std::mt19937 random(20240605);
    std::uniform_real_distribution<double> lats(-84.0, 84.0);
    std::uniform_real_distribution<double> offsets(-6.0, 6.0);
    const ZrSphd spheroids[] = {ZrSphd(), Airy1830()};
    const ZrProj projections[] = {Zone(-1.0, 9.0), NationalGrid()};
    for (int i = 0; i < 100000; ++i) {
        const ZrSphd& s = spheroids[i % 2];
        const ZrProj& p = projections[i % 2];
        const double phi = lats(random) * reference::radians;
        const double east = p.falseEast + offsets(random) * 111000.0 * std::cos(phi);
        const double north = p.falseNorth + reference::Arc(s, p, phi);
        Position expected;
        QVERIFY(reference::EN2LL(s, p, east, north, expected.lat, expected.lng) < 10);
        const Position position = ToPosition(s, p, east, north);
        if (!(std::fabs(position.lat - expected.lat) < 1e-12
                && std::fabs(position.lng - expected.lng) < 1e-12))
            QFAIL(Number(position.lat - expected.lat) + ' ' + Number(position.lng - expected.lng));
    }
}

void tst_ZrUnitsGrid::inverseKeepsItsOwnCoefficient()
{
    // 300 km off the meridian at 60 degrees: 622 and 662 differ by 40 t² / 5040 sec φ (dE/ν)^7.
    const ZrProj p = Zone(60.0, 0.0);
    Grid grid;
    reference::LLToEN(ZrSphd(), p, 60.0, p.lngOrigin * reference::degrees + 6.0, grid.east, grid.north);
    Position expected;
    reference::EN2LL(ZrSphd(), p, grid.east, grid.north, expected.lat, expected.lng);
    const double dE = grid.east - p.falseEast;
    const double t = std::tan(expected.lat * reference::radians);
    const double nu = reference::RadiiAt(ZrSphd(), p, expected.lat * reference::radians).nu;
    const double other = 40.0 * t * t / 5040.0 * std::pow(dE / nu, 7)
        / std::cos(expected.lat * reference::radians) * reference::degrees;
    const Position position = ToPosition(ZrSphd(), p, grid.east, grid.north);
    QVERIFY2(other > 1e-9, Number(other));
    QVERIFY2(std::fabs(position.lng - expected.lng) < other / 1000.0, Number(position.lng - expected.lng));
}

void tst_ZrUnitsGrid::flatteningIsNotRead()
{
    ZrSphd s;
    s.flattening = notANumber;
    const Grid grid = ToGrid(s, ZrProj(), 40.0, -1.0);
    const Grid same = ToGrid(ZrSphd(), ZrProj(), 40.0, -1.0);
    QVERIFY(grid.east == same.east && grid.north == same.north);
    const Position position = ToPosition(s, ZrProj(), grid.east, grid.north);
    const Position back = ToPosition(ZrSphd(), ZrProj(), grid.east, grid.north);
    QVERIFY(position.lat == back.lat && position.lng == back.lng);
    QVERIFY(ZrUnits::Convergence(s, ZrProj(), 40.0, -1.0)
        == ZrUnits::Convergence(ZrSphd(), ZrProj(), 40.0, -1.0));
}

void tst_ZrUnitsGrid::accuracyOfTheSeries_data()
{
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("metres");
    QTest::addColumn<bool>("rounded");

    QTest::newRow("within 3 degrees") << 3.0 << 0.0004 << false;
    QTest::newRow("within 6 degrees") << 6.0 << 0.012 << false;
    // The default figures: the shorter polar radius takes up to 0.2 mm off northings.
    QTest::newRow("within 3 degrees, rounded spheroid") << 3.0 << 0.0004 << true;
    QTest::newRow("within 6 degrees, rounded spheroid") << 6.0 << 0.012 << true;
}

void tst_ZrUnitsGrid::accuracyOfTheSeries()
{
    QFETCH(double, offset);
    QFETCH(double, metres);
    QFETCH(bool, rounded);
    const GeographicLib::TransverseMercatorExact exact(6378137.0, 1.0 / 298.257223563, 0.9996);
    const ZrSphd s = rounded ? ZrSphd() : ExactWgs84();
    std::mt19937 random(20240606);
    std::uniform_real_distribution<double> lats(-90.0, 90.0);
    std::uniform_real_distribution<double> offsets(-offset, offset);
    double worst = 0.0;
    for (int i = 0; i < 20000; ++i) {
        // The corners too.
        const double lat = i < 181 ? i - 90.0 : lats(random);
        const double difference = i < 181 ? (i % 2 == 0 ? offset : -offset) : offsets(random);
        ZrProj p = Zone(lat, 0.0);
        p.lngOrigin = 3.0 * reference::radians;
        const Grid grid = ToGrid(s, p, lat, 3.0 + difference);
        double x = 0.0;
        double y = 0.0;
        exact.Forward(3.0, lat, 3.0 + difference, x, y);
        const double off = std::hypot(grid.east - 500000.0 - x, grid.north - p.falseNorth - y);
        worst = std::max(worst, off);
        if (!(off < metres))
            QFAIL(Number(lat) + ' ' + Number(difference) + ": " + Number(off));
    }
    // The bound says something: the series is not exact.
    QVERIFY2(worst > metres / 20.0, Number(worst));
}

/// The term of the fifth order leaves out what depends on the eccentricity, so the way back is less exact.
void tst_ZrUnitsGrid::accuracyOfTheInverse()
{
    const GeographicLib::TransverseMercatorExact exact(6378137.0, 1.0 / 298.257223563, 0.9996);
    std::mt19937 random(20240607);
    std::uniform_real_distribution<double> lats(-84.0, 84.0);
    for (const double offset : {3.0, 6.0}) {
        std::uniform_real_distribution<double> offsets(-offset, offset);
        double worst = 0.0;
        for (int i = 0; i < 20000; ++i) {
            const double lat = i < 169 ? i - 84.0 : lats(random);
            const double lng = i < 169 ? offset : offsets(random);
            double x = 0.0;
            double y = 0.0;
            exact.Forward(0.0, lat, lng, x, y);
            ZrProj p;
            p.lngOrigin = 0.0;
            const Position position = ToPosition(ExactWgs84(), p, 500000.0 + x, y);
            const double north = (position.lat - lat) * 111000.0;
            const double east = (position.lng - lng) * 111000.0 * std::cos(lat * reference::radians);
            worst = std::max(worst, std::hypot(north, east));
        }
        QVERIFY2(worst < (offset > 3.0 ? 0.030 : 0.0009), Number(worst));
        QVERIFY2(worst > (offset > 3.0 ? 0.003 : 0.0001), Number(worst));
    }
}

void tst_ZrUnitsGrid::thereAndBack()
{
    std::mt19937 random(20240608);
    std::uniform_real_distribution<double> lats(-84.0, 84.0);
    std::uniform_real_distribution<double> lngs(-180.0, 180.0);
    for (int i = 0; i < 20000; ++i) {
        const double lat = lats(random);
        const double lng = lngs(random);
        const ZrProj p = Zone(lat, lng);
        const Grid grid = ToGrid(ZrSphd(), p, lat, lng);
        const Position back = ToPosition(ZrSphd(), p, grid.east, grid.north);
        const double north = (back.lat - lat) * 111000.0;
        const double east = (back.lng - lng) * 111000.0 * std::cos(lat * reference::radians);
        QVERIFY2(std::hypot(north, east) < 0.001, Number(lat) + ' ' + Number(lng));
    }
}

void tst_ZrUnitsGrid::originAndAxes()
{
    const ZrProj p = Zone(0.0, 3.0);
    const double meridian = p.lngOrigin * reference::degrees;
    const Grid origin = ToGrid(ZrSphd(), p, 0.0, meridian);
    QVERIFY2(std::fabs(origin.east - 500000.0) < 1e-8, Number(origin.east));
    QVERIFY(origin.north == 0.0);
    QVERIFY(ToGrid(ZrSphd(), p, 0.0, meridian + 1.0).north == 0.0);
    QVERIFY(ToGrid(ZrSphd(), p, 0.0, meridian + 1.0).east > 600000.0);
    QVERIFY(ToGrid(ZrSphd(), p, 0.0, meridian - 1.0).east < 400000.0);
    QVERIFY(std::fabs(ToGrid(ZrSphd(), p, 40.0, meridian).east - 500000.0) < 1e-8);
    const Position position = ToPosition(ZrSphd(), p, 500000.0, 0.0);
    QVERIFY(position.lat == 0.0);
    QVERIFY(std::fabs(position.lng - meridian) < 1e-14);
    // South of the equator the false northing keeps values positive.
    const Grid south = ToGrid(ZrSphd(), Zone(-33.0, 3.0), -33.0, 3.0);
    QVERIFY(south.north > 6000000.0 && south.north < 10000000.0);
    QVERIFY(std::fabs(south.north - (10000000.0 - ToGrid(ZrSphd(), p, 33.0, 3.0).north)) < 1e-8);
}

void tst_ZrUnitsGrid::poles()
{
    for (const double lat : {90.0, -90.0}) {
        const ZrProj p = Zone(lat, 0.0);
        for (const double lng : {0.0, 3.0, 5.9, -3.0}) {
            const Grid grid = ToGrid(ZrSphd(), p, lat, lng);
            QVERIFY2(std::fabs(grid.east - 500000.0) < 1e-6, Number(grid.east));
            QVERIFY2(
                std::fabs(std::fabs(grid.north - p.falseNorth) - 9997964.943) < 0.001, Number(grid.north));
            const Position back = ToPosition(ZrSphd(), p, grid.east, grid.north);
            QVERIFY2(std::fabs(back.lat - lat) < 1e-9, Number(back.lat));
            QVERIFY(std::isfinite(back.lng));
        }
    }
    // Beyond the pole: no number runs away.
    const Position beyond = ToPosition(ZrSphd(), ZrProj(), 500000.0, 10500000.0);
    QVERIFY2(beyond.lat > 90.0 && beyond.lat < 95.0, Number(beyond.lat));
}

void tst_ZrUnitsGrid::farFromTheMeridian()
{
    for (const double lng : {-180.0, -93.0, 87.0, 180.0, 1e6}) {
        const Grid grid = ToGrid(ZrSphd(), ZrProj(), 45.0, lng);
        Grid expected;
        reference::LLToEN(ZrSphd(), ZrProj(), 45.0, lng, expected.east, expected.north);
        QVERIFY(std::isfinite(grid.east) && std::isfinite(grid.north));
        QVERIFY(std::fabs(grid.east - expected.east) <= 1e-12 * std::fabs(expected.east));
        QVERIFY(std::fabs(grid.north - expected.north) <= 1e-12 * std::fabs(expected.north));
    }
}

void tst_ZrUnitsGrid::notNumbers_data()
{
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("second");

    QTest::newRow("NaN first") << notANumber << 1.0;
    QTest::newRow("NaN second") << 1.0 << notANumber;
    QTest::newRow("both NaN") << notANumber << notANumber;
    QTest::newRow("infinity first") << infinity << 1.0;
    QTest::newRow("infinity second") << 1.0 << infinity;
    QTest::newRow("-infinity second") << 1.0 << -infinity;
}

void tst_ZrUnitsGrid::notNumbers()
{
    QFETCH(double, first);
    QFETCH(double, second);
    QElapsedTimer timer;
    timer.start();
    const Grid grid = ToGrid(ZrSphd(), ZrProj(), first, second);
    QVERIFY(!std::isfinite(grid.east) || !std::isfinite(grid.north));
    if (std::isnan(first) || std::isinf(first)) // the latitude takes part in both
        QVERIFY(std::isnan(grid.east) && std::isnan(grid.north));
    const Position position = ToPosition(ZrSphd(), ZrProj(), first, second);
    QVERIFY(!std::isfinite(position.lat) || !std::isfinite(position.lng));
    if (!std::isfinite(second))
        QVERIFY(std::isnan(position.lat) && std::isnan(position.lng));
    QVERIFY2(timer.elapsed() < 1000, "the passes must not go on for ever");
}

void tst_ZrUnitsGrid::hugeNorthingsEnd_data()
{
    QTest::addColumn<double>("north");
    for (const double north :
        {1e9, 1e12, 1e13, 1e14, 3.3e14, 1e15, 1e17, 1e20, 1e30, 1e100, 1e300, 1.7e308}) {
        QTest::newRow(QByteArray::number(north)) << north;
        QTest::newRow(QByteArray::number(-north)) << -north;
    }
}

/// A residual that rounding keeps above a millimetre must not cost a hundred million passes (seconds).
void tst_ZrUnitsGrid::hugeNorthingsEnd()
{
    QFETCH(double, north);
    QElapsedTimer timer;
    timer.start();
    const Position position = ToPosition(ZrSphd(), ZrProj(), 500000.0, north);
    QVERIFY2(timer.elapsed() < 500, QByteArray::number(timer.elapsed()));
    // The latitude is that of the arc, as nearly as it can be told.
    const double phi = position.lat * reference::radians;
    if (std::isfinite(phi))
        QVERIFY2(
            std::fabs(reference::Arc(ZrSphd(), ZrProj(), phi) - north) <= 0.001 + 4e-16 * std::fabs(north),
            Number(position.lat));
    else
        QVERIFY(std::fabs(north) > 1e300);
}

void tst_ZrUnitsGrid::brokenParameters()
{
    QElapsedTimer timer;
    timer.start();
    ZrProj flat;
    flat.scaleFactor = 0.0;
    QVERIFY(!std::isfinite(ToPosition(ZrSphd(), flat, 1.0, 2.0).lat));
    ZrSphd point;
    point.semiMajor = 0.0;
    point.semiMinor = 0.0;
    QVERIFY(!std::isfinite(ToPosition(point, ZrProj(), 1.0, 2.0).lat));
    ZrSphd wheel; // twice as high as wide: the passes swing to and fro
    wheel.semiMinor = 2.0 * wheel.semiMajor;
    ToPosition(wheel, ZrProj(), 1.0, 1000.0);
    ZrProj nowhere;
    nowhere.lngOrigin = notANumber;
    QVERIFY(std::isnan(ToPosition(ZrSphd(), nowhere, 1.0, 2.0).lng));
    QVERIFY(std::isfinite(ToPosition(ZrSphd(), nowhere, 1.0, 2.0).lat));
    QVERIFY(std::isnan(ToGrid(ZrSphd(), nowhere, 1.0, 2.0).east));
    QVERIFY(timer.elapsed() < 2000);
}

void tst_ZrUnitsGrid::convergence()
{
    const ZrProj p; // meridian -3
    QVERIFY(std::fabs(ZrUnits::Convergence(ZrSphd(), p, 50.0, -3.0)) < 1e-10);
    QVERIFY(ZrUnits::Convergence(ZrSphd(), p, 0.0, 0.0) == 0.0);
    QVERIFY(ZrUnits::Convergence(ZrSphd(), p, 50.0, -1.0) > 1.5);
    QVERIFY(ZrUnits::Convergence(ZrSphd(), p, 50.0, -5.0) < -1.5);
    QVERIFY(ZrUnits::Convergence(ZrSphd(), p, -50.0, -1.0) < -1.5);
    // The formula, term by term.
    const double phi = 57.25 * reference::radians;
    const double c = std::cos(phi);
    const double l = (2.5 * reference::radians - p.lngOrigin) * c;
    const double e2 = 0.006694380023;
    const double expected = std::sin(phi) / c
        * (l + std::pow(l, 3) / 3.0 * (1.0 + 3.0 * e2 * c * c / (1.0 - e2))) * 57.29577951308232;
    QVERIFY(std::fabs(ZrUnits::Convergence(ZrSphd(), p, 57.25, 2.5) - expected) < 1e-13);
}

void tst_ZrUnitsGrid::convergenceAgainstTheGrid()
{
    const GeographicLib::TransverseMercatorExact exact(6378137.0, 1.0 / 298.257223563, 0.9996);
    std::mt19937 random(20240609);
    std::uniform_real_distribution<double> lats(-84.0, 84.0);
    std::uniform_real_distribution<double> offsets(-3.0, 3.0);
    for (int i = 0; i < 5000; ++i) {
        const double lat = lats(random);
        const double offset = offsets(random);
        double x = 0.0;
        double y = 0.0;
        double gamma = 0.0;
        double scale = 0.0;
        exact.Forward(-3.0, lat, -3.0 + offset, x, y, gamma, scale);
        const double actual = ZrUnits::Convergence(ExactWgs84(), ZrProj(), lat, -3.0 + offset);
        QVERIFY2(std::fabs(actual - gamma) < 1e-5,
            Number(lat) + ' ' + Number(offset) + ": " + Number(actual - gamma));
    }
}

void tst_ZrUnitsGrid::convergenceAtThePole()
{
    // cos 90° is not exactly 0 in a double; tan times cos leaves the difference in longitude.
    QVERIFY(std::fabs(ZrUnits::Convergence(ZrSphd(), ZrProj(), 90.0, 0.0) - 3.0) < 1e-6);
    QVERIFY(std::isnan(ZrUnits::Convergence(ZrSphd(), ZrProj(), notANumber, 0.0)));
    QVERIFY(std::isnan(ZrUnits::Convergence(ZrSphd(), ZrProj(), 1.0, notANumber)));
}

QTEST_GUILESS_MAIN(tst_ZrUnitsGrid)
#include "tst_ZrUnitsGrid.moc"
