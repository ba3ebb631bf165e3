#include "ZrGridReference.h"
#include "ZrKit/geo/ZrGridBatch.h"
#include "ZrUnitsState.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>
#include <thread>
#include <vector>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

QByteArray Number(double value)
{
    return QByteArray::number(value, 'g', 17);
}

ZrProj Zone(double lat, double lng)
{
    ZrProj p;
    p.SetupUTM(lat, lng);
    return p;
}

ZrSphd Airy1830()
{
    ZrSphd s;
    s.semiMajor = 6377563.396;
    s.semiMinor = 6356256.909;
    s.eccentricitySqr = 0.00667054007;
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

struct Columns
{
    std::vector<double> lats, lngs, easts, norths;

    explicit Columns(std::size_t count)
        : lats(count)
        , lngs(count)
        , easts(count)
        , norths(count)
    {
    }
};

/// Positions within 6 degrees of the meridian of \p p.
Columns RandomPositions(const ZrProj& p, std::size_t count, double mostLat, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> lats(-mostLat, mostLat);
    std::uniform_real_distribution<double> offsets(-6.0, 6.0);
    Columns columns(count);
    for (std::size_t i = 0; i < count; ++i) {
        columns.lats[i] = lats(random);
        columns.lngs[i] = p.lngOrigin * reference::degrees + offsets(random);
    }
    return columns;
}

} // namespace

class tst_ZrGridBatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isTheSeries_data();
    void isTheSeries();
    void knownGrids();
    void lengths();
    void overTheInputs();
    void notNumbers();
    void poles();
    void unusualParameters();
    void stateOfTheProcessIsNotRead();
    void twoThreads();
};

void tst_ZrGridBatch::isTheSeries_data()
{
    QTest::addColumn<bool>("national");
    QTest::addColumn<double>("mostLat");
    QTest::newRow("UTM") << false << 85.0;
    QTest::newRow("National Grid") << true << 85.0;
    QTest::newRow("UTM near the equator") << false << 0.01;
}

void tst_ZrGridBatch::isTheSeries()
{
    QFETCH(bool, national);
    QFETCH(double, mostLat);
    const ZrSphd s = national ? Airy1830() : ZrSphd();
    const ZrProj p = national ? NationalGrid() : Zone(-1.0, 123.0);
    const ZrGridBatch grid(s, p);
    constexpr std::size_t count = 100000;
    Columns columns = RandomPositions(p, count, mostLat, 20240612);
    QCOMPARE(grid.ToGrid(columns.lats, columns.lngs, columns.easts, columns.norths), count);
    std::vector<double> lats(count), lngs(count);
    QCOMPARE(grid.ToLatLng(columns.easts, columns.norths, lats, lngs), count);
    for (std::size_t i = 0; i < count; ++i) {
        double east = 0.0;
        double north = 0.0;
        ZrUnits::LLToEN(s, p, columns.lats[i], columns.lngs[i], east, north);
        if (!(std::fabs(columns.easts[i] - east) < 1e-7 && std::fabs(columns.norths[i] - north) < 1e-7))
            QFAIL(Number(columns.easts[i] - east) + ' ' + Number(columns.norths[i] - north));
        double lat = 0.0;
        double lng = 0.0;
        ZrUnits::EN2LL(s, p, columns.easts[i], columns.norths[i], lat, lng);
        if (!(std::fabs(lats[i] - lat) < 1e-10 && std::fabs(lngs[i] - lng) < 1e-10))
            QFAIL(Number(columns.lats[i]) + ": " + Number(lats[i] - lat) + ' ' + Number(lngs[i] - lng));
        // The series as printed, with as many passes as it takes to find the latitude to the last digit.
        reference::LLToEN(s, p, columns.lats[i], columns.lngs[i], east, north);
        if (!(std::fabs(columns.easts[i] - east) < 1e-7 && std::fabs(columns.norths[i] - north) < 1e-7))
            QFAIL("not the printed series at " + Number(columns.lats[i]));
    }
}

void tst_ZrGridBatch::knownGrids()
{
    const ZrGridBatch at = ZrGridBatch::UtmAt(-33.9, 18.4);
    QVERIFY(at.Projection().lngOrigin == 21.0 * reference::radians);
    QVERIFY(at.Projection().falseNorth == 10000000.0);
    for (int zone = 1; zone <= 60; ++zone) {
        const ZrGridBatch grid = ZrGridBatch::UtmZone(zone, zone % 2 == 0);
        QVERIFY(grid.Projection().lngOrigin == (6.0 * zone - 183.0) * reference::radians);
        QVERIFY(grid.Projection().falseNorth == (zone % 2 == 0 ? 10000000.0 : 0.0));
        QVERIFY(grid.Projection().scaleFactor == 0.9996);
        QVERIFY(grid.Projection().falseEast == 500000.0);
    }
    // The worked example of the National Grid.
    const double lat[] = {52.0 + 39.0 / 60.0 + 27.2531 / 3600.0};
    const double lng[] = {1.0 + 43.0 / 60.0 + 4.5177 / 3600.0};
    double east[1];
    double north[1];
    const ZrGridBatch national(Airy1830(), NationalGrid());
    QCOMPARE(national.ToGrid(lat, lng, east, north), std::size_t(1));
    QVERIFY2(std::fabs(east[0] - 651409.903) < 0.002, Number(east[0]));
    QVERIFY2(std::fabs(north[0] - 313177.270) < 0.002, Number(north[0]));
}

void tst_ZrGridBatch::lengths()
{
    const ZrGridBatch grid = ZrGridBatch::UtmZone(30, false);
    const std::vector<double> three{1.0, 2.0, 3.0};
    const std::vector<double> two{1.0, 2.0};
    for (int shortOne = 0; shortOne < 4; ++shortOne) {
        std::vector<double> outA(shortOne == 2 ? 2 : 3, -1.0);
        std::vector<double> outB(shortOne == 3 ? 2 : 3, -1.0);
        const auto& a = shortOne == 0 ? two : three;
        const auto& b = shortOne == 1 ? two : three;
        QCOMPARE(grid.ToGrid(a, b, outA, outB), std::size_t(2));
        QVERIFY(outA[1] != -1.0 && outB[1] != -1.0);
        QVERIFY((outA.size() == 2 || outA[2] == -1.0) && (outB.size() == 2 || outB[2] == -1.0));
        std::fill(outA.begin(), outA.end(), -1.0);
        std::fill(outB.begin(), outB.end(), -1.0);
        QCOMPARE(grid.ToLatLng(a, b, outA, outB), std::size_t(2));
        QVERIFY(outA[1] != -1.0 && outB[1] != -1.0);
        QVERIFY((outA.size() == 2 || outA[2] == -1.0) && (outB.size() == 2 || outB[2] == -1.0));
    }
    QCOMPARE(grid.ToGrid({}, {}, {}, {}), std::size_t(0));
    QCOMPARE(grid.ToLatLng({}, {}, {}, {}), std::size_t(0));
}

void tst_ZrGridBatch::overTheInputs()
{
    const ZrProj p = Zone(1.0, 3.0);
    const ZrGridBatch grid(ZrSphd(), p);
    Columns columns = RandomPositions(p, 100, 80.0, 5);
    grid.ToGrid(columns.lats, columns.lngs, columns.easts, columns.norths);
    std::vector<double> a = columns.lats;
    std::vector<double> b = columns.lngs;
    grid.ToGrid(a, b, a, b);
    QVERIFY(a == columns.easts && b == columns.norths);
    // Also the other way round.
    a = columns.lats;
    b = columns.lngs;
    grid.ToGrid(a, b, b, a);
    QVERIFY(b == columns.easts && a == columns.norths);
    std::vector<double> lats(100), lngs(100);
    grid.ToLatLng(columns.easts, columns.norths, lats, lngs);
    a = columns.easts;
    b = columns.norths;
    grid.ToLatLng(a, b, a, b);
    QVERIFY(a == lats && b == lngs);
}

void tst_ZrGridBatch::notNumbers()
{
    const ZrGridBatch grid = ZrGridBatch::UtmZone(30, false);
    const std::vector<double> first{notANumber, 1.0, infinity, 1.0, 1e300, 1.0, 52.0};
    const std::vector<double> second{1.0, notANumber, 1.0, -infinity, 1.0, 1e300, -1.0};
    std::vector<double> a(first.size()), b(first.size());
    grid.ToGrid(first, second, a, b);
    for (std::size_t i = 0; i < 4; ++i)
        QVERIFY2(!std::isfinite(a[i]) || !std::isfinite(b[i]), QByteArray::number(int(i)));
    // One bad position does not touch its neighbours.
    QVERIFY(a[6] > 600000.0 && b[6] > 5700000.0);
    grid.ToLatLng(first, second, a, b);
    for (std::size_t i = 0; i < 4; ++i)
        QVERIFY2(!std::isfinite(a[i]) || !std::isfinite(b[i]), QByteArray::number(int(i)));
    QVERIFY(std::isfinite(a[6]) && std::isfinite(b[6]));
}

void tst_ZrGridBatch::poles()
{
    for (const bool south : {false, true}) {
        const ZrGridBatch grid = ZrGridBatch::UtmZone(31, south);
        const double lat[] = {south ? -90.0 : 90.0};
        const double lng[] = {4.0};
        double east[1];
        double north[1];
        grid.ToGrid(lat, lng, east, north);
        double e = 0.0;
        double n = 0.0;
        ZrUnits::LLToEN(ZrSphd(), grid.Projection(), lat[0], lng[0], e, n);
        QVERIFY(std::fabs(east[0] - e) < 1e-7 && std::fabs(north[0] - n) < 1e-7);
        double backLat[1];
        double backLng[1];
        grid.ToLatLng(east, north, backLat, backLng);
        QVERIFY2(std::fabs(backLat[0] - lat[0]) < 1e-9, Number(backLat[0]));
        QVERIFY(std::isfinite(backLng[0]));
    }
}

/// Where the start of the inverse is no good, or the northing beyond the earth, results are those of `EN2LL`.
void tst_ZrGridBatch::unusualParameters()
{
    ZrSphd flat;
    flat.semiMinor = 0.7 * flat.semiMajor;
    flat.eccentricitySqr = 1.0 - 0.49;
    ZrSphd tall;
    tall.semiMinor = 1.2 * tall.semiMajor;
    tall.eccentricitySqr = 1.0 - 1.44;
    ZrProj doubled = Zone(1.0, 3.0);
    doubled.scaleFactor = 2.0;
    const std::pair<ZrSphd, ZrProj> grids[]
        = {{flat, Zone(1.0, 3.0)}, {tall, Zone(1.0, 3.0)}, {ZrSphd(), doubled}, {ZrSphd(), Zone(1.0, 3.0)}};
    const std::vector<double> easts(8, 600000.0);
    const std::vector<double> norths{0.0, 1.0, 1e6, -3e6, 5e6, 1.7e7, 1e9, 1e14};
    for (const auto& [s, p] : grids) {
        std::vector<double> lats(8), lngs(8);
        ZrGridBatch(s, p).ToLatLng(easts, norths, lats, lngs);
        for (std::size_t i = 0; i < 8; ++i) {
            double lat = 0.0;
            double lng = 0.0;
            ZrUnits::EN2LL(s, p, easts[i], norths[i], lat, lng);
            const double scale = std::max(1.0, std::fabs(lat) * 1e-3);
            QVERIFY2(
                std::fabs(lats[i] - lat) <= 1e-10 * scale, Number(norths[i]) + ": " + Number(lats[i] - lat));
        }
    }
    ZrProj nothing;
    nothing.scaleFactor = 0.0;
    std::vector<double> lats(8), lngs(8);
    ZrGridBatch(ZrSphd(), nothing).ToLatLng(easts, norths, lats, lngs);
    QVERIFY(!std::isfinite(lats[2]) && !std::isfinite(lngs[2]));
}

void tst_ZrGridBatch::stateOfTheProcessIsNotRead()
{
    const ZrUnitsState state;
    const ZrGridBatch before = ZrGridBatch::UtmAt(50.0, -1.0);
    ZrUnits::wgs84.semiMajor = 1.0;
    ZrUnits::utm.scaleFactor = 2.0;
    const ZrGridBatch after = ZrGridBatch::UtmAt(50.0, -1.0);
    const double lat[] = {50.0};
    const double lng[] = {-1.0};
    double e1[1], n1[1], e2[1], n2[1];
    before.ToGrid(lat, lng, e1, n1);
    after.ToGrid(lat, lng, e2, n2);
    QVERIFY(e1[0] == e2[0] && n1[0] == n2[0]);
    QVERIFY(e1[0] > 600000.0 && e1[0] < 700000.0);
    QVERIFY(ZrUnits::utm.scaleFactor == 2.0);
}

void tst_ZrGridBatch::twoThreads()
{
    const ZrProj p = Zone(1.0, 3.0);
    const ZrGridBatch grid(ZrSphd(), p);
    const Columns columns = RandomPositions(p, 20000, 84.0, 6);
    std::vector<double> easts[2], norths[2];
    std::thread threads[2];
    for (int i = 0; i < 2; ++i) {
        easts[i].resize(20000);
        norths[i].resize(20000);
        threads[i] = std::thread([&, i] { grid.ToGrid(columns.lats, columns.lngs, easts[i], norths[i]); });
    }
    for (std::thread& thread : threads)
        thread.join();
    QVERIFY(easts[0] == easts[1] && norths[0] == norths[1]);
    QVERIFY(easts[0][19999] != 0.0);
}

QTEST_GUILESS_MAIN(tst_ZrGridBatch)
#include "tst_ZrGridBatch.moc"
