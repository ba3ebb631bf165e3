// Positions in a local frame against geocentric coordinates, which share no formula with the projection.

#include "GeoPlane.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrUtil/ZrUnits.h"

#include <QtTest/QtTest>

#include <limits>
#include <random>

namespace {

constexpr double nan_ = std::numeric_limits<double>::quiet_NaN();

} // namespace

class tst_ZrLocalFrame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void originIsZero_data();
    void originIsZero();

    void roundTrip_data() { originIsZero_data(); }

    void roundTrip();
    void lengths_data();
    void lengths();

    void axesAreEastAndNorth_data() { originIsZero_data(); }

    void axesAreEastAndNorth();
    void longitudesStayInRange();
    void around_data();
    void around();
    void aroundIgnoresInvalidPoints();
    void invalidPoints();
    void leavesTheZoneOfTheProcess();

private:
    std::mt19937 m_random{20250814};

    double Within(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(m_random);
    }
};

void tst_ZrLocalFrame::originIsZero_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::newRow("0, 0") << 0.0 << 0.0;
    QTest::newRow("north-west") << 48.4789 << -68.5147;
    QTest::newRow("south-east") << -33.9 << 151.2;
    QTest::newRow("high north") << 85.0 << 10.0;
    QTest::newRow("89 degrees south") << -89.0 << -120.0;
    QTest::newRow("east of the antimeridian") << -17.5 << -179.9999;
    QTest::newRow("on the antimeridian") << 52.0 << 180.0;
}

void tst_ZrLocalFrame::originIsZero()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    const ZrLocalFrame frame({lat, lng});
    QVERIFY((frame.Origin() == ZrGeoPoint{lat, lng}));
    const ZrLocalPoint zero = frame.ToLocal({lat, lng});
    QVERIFY2(std::hypot(zero.x, zero.y) < 1e-8, qPrintable(QString::number(std::hypot(zero.x, zero.y))));
    const ZrGeoPoint back = frame.ToGeo({0.0, 0.0});
    QVERIFY(std::fabs(back.lat - lat) < 1e-10);
    QVERIFY(std::fabs(std::remainder(back.lng - lng, 360.0)) < 1e-10);
}

void tst_ZrLocalFrame::roundTrip()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    const ZrLocalFrame frame({lat, lng});
    for (int i = 0; i < 2000; ++i) {
        const ZrLocalPoint local{Within(-9000.0, 9000.0), Within(-9000.0, 9000.0)};
        const ZrLocalPoint back = frame.ToLocal(frame.ToGeo(local));
        const double off = Apart(local, back);
        QVERIFY2(off < 1e-4, qPrintable(QStringLiteral("%1, %2: %3 m").arg(local.x).arg(local.y).arg(off)));
    }
}

void tst_ZrLocalFrame::lengths_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("widest"); // metres east or west
    QTest::addColumn<double>("accuracy");
    QTest::addColumn<bool>("reached"); // whether the rim comes near to it
    for (const double lat : {0.0, 30.0, -52.0, 70.0, -85.0}) {
        QTest::addRow("%g degrees, 9 km", lat) << lat << 9000.0 << 1.005e-6 << true;
        QTest::addRow("%g degrees, 90 km", lat) << lat << 90000.0 << 1.005e-4 << true;
    }
    QTest::newRow("89 degrees, 9 km") << 89.0 << 9000.0 << 1.005e-6 << true;
    QTest::newRow("-89 degrees, 9 km") << -89.0 << 9000.0 << 1.005e-6 << true;
    QTest::newRow("88 degrees, 10 of longitude") << 88.0 << 38900.0 << 1.005e-4 << false;
    QTest::newRow("-89 degrees, 10 of longitude") << -89.0 << 19400.0 << 1.005e-4 << false;
}

void tst_ZrLocalFrame::lengths()
{
    QFETCH(double, lat);
    QFETCH(double, widest);
    QFETCH(double, accuracy);
    QFETCH(bool, reached);
    const ZrLocalFrame frame({lat, 25.0});
    double worst = 0.0;
    for (int i = 0; i < 5000; ++i) {
        const ZrLocalPoint a{Within(-widest, widest), Within(-20000.0, 20000.0)};
        const double direction = Within(0.0, 2.0 * geoPi);
        ZrLocalPoint b{a.x + 500.0 * std::sin(direction), a.y + 500.0 * std::cos(direction)};
        b.x = std::fmin(std::fmax(b.x, -widest), widest);
        const double ground = GroundDistance(frame.ToGeo(a), frame.ToGeo(b));
        // Rounding to 7 µm in the inverse is all that counts besides the scale.
        worst = std::max(worst, (std::fabs(Apart(a, b) - ground) - 5e-5) / ground);
    }
    QVERIFY2(worst < accuracy, qPrintable(QString::number(worst)));
    if (!reached)
        return;
    // The bound is no mere cover: at the rim of the frame half of it is reached.
    const double rim = GroundDistance(frame.ToGeo({widest, 0.0}), frame.ToGeo({widest, 5000.0}));
    QVERIFY2(std::fabs(5000.0 - rim) / rim > accuracy / 2.0, qPrintable(QString::number(rim, 'f', 6)));
}

void tst_ZrLocalFrame::axesAreEastAndNorth()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    const ZrLocalFrame frame({lat, lng});
    const GeoPlane plane({lat, lng});
    for (const ZrLocalPoint p :
        {ZrLocalPoint{1000.0, 0.0}, {0.0, 1000.0}, {-800.0, 300.0}, {1000.0, -1000.0}}) {
        const ZrLocalPoint seen = plane.To(frame.ToGeo(p));
        QVERIFY2(Apart(p, seen) < 1e-3, qPrintable(QStringLiteral("%1, %2").arg(seen.x).arg(seen.y)));
    }
}

void tst_ZrLocalFrame::longitudesStayInRange()
{
    const ZrLocalFrame frame({10.0, 179.999});
    const ZrLocalPoint west = frame.ToLocal({10.0, 179.99});
    const ZrLocalPoint east = frame.ToLocal({10.0, -179.99});
    QVERIFY(west.x < 0.0 && west.x > -1100.0);
    QVERIFY(east.x > 0.0 && east.x < 1300.0);
    QVERIFY(std::fabs(Apart(west, east) - GroundDistance({10.0, 179.99}, {10.0, -179.99})) < 1e-3);
    QVERIFY(std::fabs(frame.ToGeo(east).lng + 179.99) < 1e-9);
    QVERIFY(std::fabs(frame.ToGeo(west).lng - 179.99) < 1e-9);
    for (double x = -5000.0; x <= 5000.0; x += 10.0)
        QVERIFY(frame.ToGeo({x, 0.0}).IsValid());
}

void tst_ZrLocalFrame::around_data()
{
    QTest::addColumn<QVector<double>>("places"); // latitude, longitude, …
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::newRow("none") << QVector<double>{} << 0.0 << 0.0;
    QTest::newRow("only NaN") << QVector<double>{nan_, nan_} << 0.0 << 0.0;
    QTest::newRow("one") << QVector<double>{12.5, -71.25} << 12.5 << -71.25;
    QTest::newRow("two") << QVector<double>{10, 20, 14, 30} << 12.0 << 25.0;
    QTest::newRow("middle, not mean") << QVector<double>{10, 20, 10, 20, 10, 20, 14, 30} << 12.0 << 25.0;
    QTest::newRow("across the antimeridian") << QVector<double>{1, 179, 1, -177} << 1.0 << -179.0;
    QTest::newRow("back across it") << QVector<double>{1, -177, 1, 179} << 1.0 << -179.0;
    QTest::newRow("across the equator") << QVector<double>{-4, 5, 2, 5} << -1.0 << 5.0;
}

void tst_ZrLocalFrame::around()
{
    QFETCH(QVector<double>, places);
    QFETCH(double, lat);
    QFETCH(double, lng);
    std::vector<ZrGeoPoint> points;
    for (int i = 0; i + 1 < places.size(); i += 2)
        points.push_back({places[i], places[i + 1]});
    const ZrGeoPoint origin = ZrLocalFrame::Around(points).Origin();
    QCOMPARE(origin.lat, lat);
    QCOMPARE(origin.lng, lng);
}

void tst_ZrLocalFrame::aroundIgnoresInvalidPoints()
{
    const std::vector<ZrGeoPoint> points{
        {nan_, 3.0}, {10.0, 20.0}, {91.0, 20.0}, {10.0, 181.0}, {12.0, nan_}, {14.0, 30.0}};
    const ZrGeoPoint origin = ZrLocalFrame::Around(points).Origin();
    QCOMPARE(origin.lat, 12.0);
    QCOMPARE(origin.lng, 25.0);
}

void tst_ZrLocalFrame::invalidPoints()
{
    const ZrLocalFrame frame({10.0, 20.0});
    const double inf = std::numeric_limits<double>::infinity();
    for (const ZrGeoPoint p :
        {ZrGeoPoint{nan_, 20.0}, {10.0, nan_}, {nan_, nan_}, {inf, 20.0}, {10.0, inf}}) {
        const ZrLocalPoint local = frame.ToLocal(p);
        QVERIFY(std::isnan(local.x) && std::isnan(local.y));
    }
    for (const ZrLocalPoint p : {ZrLocalPoint{nan_, 0.0}, {0.0, nan_}, {0.0, inf}})
        QVERIFY(!frame.ToGeo(p).IsValid());
}

void tst_ZrLocalFrame::leavesTheZoneOfTheProcess()
{
    ZrUnits::CalcUTM(50.0, 3.0);
    const ZrProj before = ZrUnits::utm;
    const ZrLocalFrame frame({-20.0, 100.0});
    frame.ToGeo(frame.ToLocal({-20.1, 100.1}));
    QCOMPARE(ZrUnits::utm.lngOrigin, before.lngOrigin);
    QCOMPARE(ZrUnits::utm.falseEast, before.falseEast);
    QCOMPARE(ZrUnits::utm.falseNorth, before.falseNorth);
    QCOMPARE(ZrUnits::utm.scaleFactor, before.scaleFactor);
}

QTEST_APPLESS_MAIN(tst_ZrLocalFrame)
#include "tst_ZrLocalFrame.moc"
