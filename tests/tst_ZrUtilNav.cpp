#include "ZrUtil/ZrUtil.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double earth = 6371000.0;
constexpr double halfTurn = 20015086.79602057; // metres from pole to pole

QByteArray Pair(double actual, double expected)
{
    return "actual " + QByteArray::number(actual, 'g', 17) + ", expected "
        + QByteArray::number(expected, 'g', 17);
}

bool Near(double a, double b, double tolerance)
{
    return (std::isnan(a) && std::isnan(b)) || std::fabs(a - b) <= tolerance;
}

struct Vec
{
    long double x, y, z;
};

long double Rad(double degrees)
{
    return degrees * (3.14159265358979323846264338328L / 180.0L);
}

Vec UnitVector(double lat, double lon)
{
    const long double p = Rad(lat), l = Rad(lon);
    return {std::cos(p) * std::cos(l), std::cos(p) * std::sin(l), std::sin(p)};
}

long double Dot(const Vec& a, const Vec& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

/// The angle between the vectors to both points, by cross and dot product: another formula than the
/// haversine.
double VectorRange(double lat1, double lon1, double lat2, double lon2)
{
    const Vec a = UnitVector(lat1, lon1);
    const Vec b = UnitVector(lat2, lon2);
    const Vec c{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    return static_cast<double>(std::atan2(std::sqrt(Dot(c, c)), Dot(a, b)) * earth);
}

/// The direction to point 2 in the tangent plane of point 1, by its east and north vectors.
double VectorBearing(double lat1, double lon1, double lat2, double lon2)
{
    const long double p = Rad(lat1), l = Rad(lon1);
    const Vec east{-std::sin(l), std::cos(l), 0.0L};
    const Vec north{-std::sin(p) * std::cos(l), -std::sin(p) * std::sin(l), std::cos(p)};
    const Vec to = UnitVector(lat2, lon2);
    return static_cast<double>(std::atan2(Dot(to, east), Dot(to, north)) / Rad(1.0));
}

double TurnBetween(double a, double b)
{
    return std::fabs(std::remainder(a - b, 360.0));
}

} // namespace

#define COMPARE_NEAR(actual, expected, tolerance)                                                            \
    QVERIFY2(Near((actual), (expected), (tolerance)), Pair((actual), (expected)).constData())

class tst_ZrUtilNav : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rangeAndBearing_data();
    void rangeAndBearing();
    void rangeAndBearingOfRandomPoints();
    void bearingStaysInTheCircle();
    void identicalPointsHaveRangeAndBearingZero();
    void antipodesAreHalfATurnAwayOrNotANumber();
    void rangeOfNoNumberIsNoNumber();
    void crossAndAlongTrackFollowTheSteps_data();
    void crossAndAlongTrackFollowTheSteps();
    void crossAndAlongTrack_data();
    void crossAndAlongTrack();
    void trackDegenerates();
    void deltaHeading_data();
    void deltaHeading();
    void deltaHeadingTurnsAboutYFirst();
    void tilt_data();
    void tilt();
    void tiltOfTinyAccelerations();
    void filterBlends();
    void filterInverts();
    void filterIgnoresTheThirdArgument();
    void filterWraps_data();
    void filterWraps();
    void imuDeltaIsFiveFloats();
};

void tst_ZrUtilNav::rangeAndBearing_data()
{
    QTest::addColumn<double>("lat1");
    QTest::addColumn<double>("lon1");
    QTest::addColumn<double>("lat2");
    QTest::addColumn<double>("lon2");
    QTest::addColumn<double>("range");
    QTest::addColumn<double>("bearing");

    // Computed to 60 digits from the vectors to the points.
    QTest::newRow("a degree east") << 0.0 << 0.0 << 0.0 << 1.0 << 111194.92664455874 << 90.0;
    QTest::newRow("a degree north") << 0.0 << 0.0 << 1.0 << 0.0 << 111194.92664455874 << 0.0;
    QTest::newRow("a degree south") << 0.0 << 0.0 << -1.0 << 0.0 << 111194.92664455874 << 180.0;
    QTest::newRow("a degree west") << 0.0 << 0.0 << 0.0 << -1.0 << 111194.92664455874 << 270.0;
    QTest::newRow("an ocean") << 51.5 << -0.12 << 40.7 << -74.0 << 5571490.7719630436 << 288.3236838862255;
    QTest::newRow("a harbour") << 60.39 << 5.32 << 60.40 << 5.30 << 1563.1547259681785 << 315.35351094515891;
    QTest::newRow("over the date line, far")
        << -33.86 << 151.21 << 37.77 << -122.42 << 11946741.042245008 << 55.781572878238331;
    QTest::newRow("a few metres") << 43.2965 << 5.3698 << 43.2966 << 5.3699 << 13.752764086129111
                                  << 36.047619772060022;
    QTest::newRow("date line, longitudes of both signs")
        << 10.0 << 179.5 << 10.0 << -179.5 << 109505.58394368891 << 89.913173773552597;
    QTest::newRow("over the pole") << 89.9 << 0.0 << 89.9 << 180.0 << 22238.985328910483 << 0.0;
    QTest::newRow("pole to pole") << -90.0 << 0.0 << 90.0 << 0.0 << 20015086.796020573 << 0.0;
}

void tst_ZrUtilNav::rangeAndBearing()
{
    QFETCH(double, lat1);
    QFETCH(double, lon1);
    QFETCH(double, lat2);
    QFETCH(double, lon2);
    QFETCH(double, range);
    QFETCH(double, bearing);
    // A degree has 15 digits; that of a position a few metres away leaves 9 of the bearing.
    COMPARE_NEAR(ZrUtil::LL2LLRng(lat1, lon1, lat2, lon2), range, 1e-7 + range * 1e-14);
    const double actual = ZrUtil::LL2LLBrg(lat1, lon1, lat2, lon2);
    QVERIFY2(TurnBetween(actual, bearing) < 1e-8, Pair(actual, bearing).constData());
    QVERIFY(actual >= 0.0 && actual < 360.0);
}

void tst_ZrUtilNav::rangeAndBearingOfRandomPoints()
{
    std::mt19937 random(1969);
    std::uniform_real_distribution<double> lat(-89.0, 89.0), lon(-180.0, 180.0);
    for (int i = 0; i < 20000; ++i) {
        const double a = lat(random), b = lon(random), c = lat(random), d = lon(random);
        const double range = VectorRange(a, b, c, d);
        if (range > 0.95 * halfTurn)
            continue; // the haversine loses digits towards the antipode
        COMPARE_NEAR(ZrUtil::LL2LLRng(a, b, c, d), range, 1e-6);
        const double brg = ZrUtil::LL2LLBrg(a, b, c, d);
        QVERIFY2(TurnBetween(brg, VectorBearing(a, b, c, d)) < 1e-9,
            Pair(brg, VectorBearing(a, b, c, d)).constData());
    }
}

void tst_ZrUtilNav::bearingStaysInTheCircle()
{
    // A hair west of north: the sum with 360 rounds to 360, which is 0.
    QCOMPARE(ZrUtil::LL2LLBrg(0.0, 0.0, 1.0, -1e-18), 0.0);
    QVERIFY(ZrUtil::LL2LLBrg(0.0, 0.0, 1.0, -1e-10) > 359.9);
    // Longitudes need not be reduced.
    QVERIFY(std::fabs(ZrUtil::LL2LLBrg(0.0, 720.0, 0.0, 1.0) - 90.0) < 1e-9);
    QVERIFY(std::fabs(ZrUtil::LL2LLRng(0.0, 720.0, 0.0, 1.0) - 111194.93) < 0.005);
}

void tst_ZrUtilNav::identicalPointsHaveRangeAndBearingZero()
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> lat(-90.0, 90.0), lon(-180.0, 180.0);
    for (int i = 0; i < 5000; ++i) {
        const double a = lat(random), b = lon(random);
        const double brg = ZrUtil::LL2LLBrg(a, b, a, b);
        QVERIFY2(brg == 0.0, Pair(brg, a).constData());
        QVERIFY(ZrUtil::LL2LLRng(a, b, a, b) == 0.0);
    }
}

void tst_ZrUtilNav::antipodesAreHalfATurnAwayOrNotANumber()
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> lat(-90.0, 90.0), lon(-180.0, 0.0);
    int numbers = 0, none = 0;
    for (int i = 0; i < 5000; ++i) {
        const double a = lat(random), b = lon(random);
        const double range = ZrUtil::LL2LLRng(a, b, -a, b + 180.0);
        if (std::isnan(range)) {
            ++none;
            continue;
        }
        ++numbers;
        COMPARE_NEAR(range, halfTurn, 0.25);
    }
    // The root of one minus a haversine that rounding carried above 1 is not repaired.
    QVERIFY2(none > 0 && none < numbers / 10, qPrintable(QString::number(none)));
}

void tst_ZrUtilNav::rangeOfNoNumberIsNoNumber()
{
    QVERIFY(std::isnan(ZrUtil::LL2LLRng(notANumber, 0.0, 1.0, 1.0)));
    QVERIFY(std::isnan(ZrUtil::LL2LLRng(0.0, 0.0, 1.0, notANumber)));
    QVERIFY(std::isnan(ZrUtil::LL2LLRng(0.0, infinity, 1.0, 1.0)));
    QVERIFY(std::isnan(ZrUtil::LL2LLBrg(0.0, notANumber, 1.0, 1.0)));
    QVERIFY(std::isnan(ZrUtil::LL2LLBrg(0.0, 0.0, infinity, 1.0)));
    QVERIFY(std::isnan(ZrUtil::CrossTrack(0.0, 0.0, 1.0, 1.0, notANumber, 0.5)));
    QVERIFY(std::isnan(ZrUtil::AlongTrack(0.0, 0.0, notANumber, 1.0, 0.5, 0.5)));
}

void tst_ZrUtilNav::crossAndAlongTrackFollowTheSteps_data()
{
    QTest::addColumn<int>("seed");
    QTest::addColumn<double>("spread");

    QTest::newRow("a few hundred metres") << 1 << 0.002;
    QTest::newRow("a survey area") << 2 << 0.1;
    QTest::newRow("a sea") << 3 << 5.0;
}

void tst_ZrUtilNav::crossAndAlongTrackFollowTheSteps()
{
    QFETCH(int, seed);
    QFETCH(double, spread);
    std::mt19937 random(static_cast<unsigned int>(seed));
    std::uniform_real_distribution<double> lat(-70.0, 70.0), lon(-175.0, 175.0), off(-spread, spread);
    const double k = 0.017453292519943295;
    int numbers = 0;
    for (int i = 0; i < 3000; ++i) {
        const double lat1 = lat(random), lon1 = lon(random);
        const double lat2 = lat1 + off(random), lon2 = lon1 + off(random);
        const double lat3 = lat1 + off(random), lon3 = lon1 + off(random);

        const double u = std::sin((lon3 - lon1) * k * 0.5);
        const double w = std::sin((lat3 - lat1) * k * 0.5);
        const double a = std::cos(lat1 * k) * std::cos(lat3 * k) * (u * u) + w * w;
        const double delta = 2.0 * std::atan2(std::sqrt(a), std::sqrt(1.0 - a));
        const double s = std::sin(delta * 6.371e6);
        const double theta13 = ZrUtil::LL2LLBrg(lat1, lon1, lat3, lon3);
        const double theta12 = ZrUtil::LL2LLBrg(lat1, lon1, lat2, lon2);
        const double cross = std::asin(std::sin(theta13 - theta12) * s) * 6.371e6;
        const double along = std::acos(std::cos(delta * 6.371e6) / std::cos(cross)) * 6.371e6;

        // The same operations in the same order: the same bits.
        COMPARE_NEAR(ZrUtil::CrossTrack(lat1, lon1, lat2, lon2, lat3, lon3), cross, 0.0);
        COMPARE_NEAR(ZrUtil::AlongTrack(lat1, lon1, lat2, lon2, lat3, lon3), along, 0.0);
        numbers += std::isnan(along) ? 0 : 1;
    }
    QVERIFY2(numbers > 1000 && numbers < 2000, qPrintable(QString::number(numbers)));
}

void tst_ZrUtilNav::crossAndAlongTrack_data()
{
    QTest::addColumn<QVector<double>>("p");
    QTest::addColumn<double>("cross");
    QTest::addColumn<double>("along");

    // Computed to 60 digits by the listed steps, range and bearings from the vectors to the points.
    const auto row = [](const char* name, const QVector<double>& p, double cross, double along) {
        QTest::newRow(name) << p << cross << along;
    };
    row("to starboard", {50.0, 0.0, 50.02, 0.03, 50.01, 0.02}, 7616531.22675522, 11546904.5201274);
    row("to port", {50.0, 0.0, 50.02, 0.03, 50.01, 0.01}, 4933091.65883156, 15817902.9894202);
    row("near the line", {43.3, 5.35, 43.31, 5.37, 43.3052, 5.3595}, -2348853.08069291, 17704502.2894017);
    row("south", {-36.8, 174.7, -36.81, 174.71, -36.803, 174.705}, 1388932.84165722, 988429.667567282);
    row("off the equator", {0.0, 0.0, 0.0, 1.0, 0.001, 0.5}, 527888.62953155, 15925987.945852);
    row("on the equator", {0.0, 0.0, 0.0, 1.0, 0.0, 0.5}, 0.0, 15567289.7302382);
    row("on a meridian", {0.0, 0.0, 1.0, 0.0, 0.25, 0.0}, 0.0, 12231441.9309015);
    row("no distance along", {60.0, 5.0, 60.1, 5.2, 60.02, 5.04}, 93745.997892601, notANumber);
}

void tst_ZrUtilNav::crossAndAlongTrack()
{
    QFETCH(QVector<double>, p);
    QFETCH(double, cross);
    QFETCH(double, along);
    // A rounding error of the range in nanometres becomes millimetres of the result, and metres where the
    // cosine of that is taken again.
    COMPARE_NEAR(ZrUtil::CrossTrack(p[0], p[1], p[2], p[3], p[4], p[5]), cross, 0.01);
    COMPARE_NEAR(ZrUtil::AlongTrack(p[0], p[1], p[2], p[3], p[4], p[5]), along, 500.0);
}

void tst_ZrUtilNav::trackDegenerates()
{
    // Point 3 on point 1: no range, so the sine is 0 and the cosines are 1.
    QCOMPARE(ZrUtil::CrossTrack(50.0, 1.0, 51.0, 2.0, 50.0, 1.0), 0.0);
    QCOMPARE(ZrUtil::AlongTrack(50.0, 1.0, 51.0, 2.0, 50.0, 1.0), 0.0);
    // Point 3 on point 2: no difference of the bearings.
    QCOMPARE(ZrUtil::CrossTrack(50.0, 1.0, 51.0, 2.0, 51.0, 2.0), 0.0);
    // Points 1 and 2 equal: the line runs north.
    QCOMPARE(ZrUtil::CrossTrack(50.0, 1.0, 50.0, 1.0, 50.5, 1.0), 0.0);
}

void tst_ZrUtilNav::deltaHeading_data()
{
    QTest::addColumn<float>("rx");
    QTest::addColumn<float>("ry");
    QTest::addColumn<QVector<float>>("v");
    QTest::addColumn<float>("expected");

    QTest::newRow("level") << 0.0f << 0.0f << QVector<float>{3.0f, 4.0f, 0.5f} << -28.647889f;
    QTest::newRow("level, down") << 0.0f << 0.0f << QVector<float>{3.0f, 4.0f, -1.0f} << 57.29578f;
    // A quarter turn about x takes y to z, one about y takes x to −z.
    QTest::newRow("a quarter about x") << 90.0f << 0.0f << QVector<float>{7.0f, 0.25f, 9.0f} << -14.323945f;
    QTest::newRow("a quarter about y") << 0.0f << 90.0f << QVector<float>{0.25f, 7.0f, 9.0f} << 14.323945f;
    QTest::newRow("half about x") << 180.0f << 0.0f << QVector<float>{7.0f, 8.0f, 0.5f} << 28.647889f;
    // 30° about x: z = y/2 + z·cos 30°.
    QTest::newRow("30 about x") << 30.0f << 0.0f << QVector<float>{1.0f, 0.5f, 1.0f} << -63.943554f;
    QTest::newRow("nothing") << 10.0f << 20.0f << QVector<float>{0.0f, 0.0f, 0.0f} << 0.0f;
}

void tst_ZrUtilNav::deltaHeading()
{
    QFETCH(float, rx);
    QFETCH(float, ry);
    QFETCH(QVector<float>, v);
    QFETCH(float, expected);
    // A single-precision turn of a vector of length 10 leaves about 1e-6 of it.
    COMPARE_NEAR(ZrUtil::DeltaHdgD(rx, ry, v[0], v[1], v[2]), expected, 1e-4);
}

void tst_ZrUtilNav::deltaHeadingTurnsAboutYFirst()
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> angle(-180.0f, 180.0f), part(-1.0f, 1.0f);
    for (int i = 0; i < 2000; ++i) {
        const float rx = angle(random), ry = angle(random);
        const float x = part(random), y = part(random), z = part(random);
        const double a = rx * M_PI / 180.0, b = ry * M_PI / 180.0;
        const double turnedZ = z * std::cos(b) - x * std::sin(b);
        const double levelZ = y * std::sin(a) + turnedZ * std::cos(a);
        COMPARE_NEAR(ZrUtil::DeltaHdgD(rx, ry, x, y, z), levelZ * -57.29578, 2e-4);
    }
    QVERIFY(std::isnan(ZrUtil::DeltaHdgD(static_cast<float>(notANumber), 0.0f, 1.0f, 1.0f, 1.0f)));
}

void tst_ZrUtilNav::tilt_data()
{
    QTest::addColumn<QVector<float>>("accel");
    QTest::addColumn<float>("p0");
    QTest::addColumn<float>("p1");

    QTest::newRow("level") << QVector<float>{0.0f, 0.0f, 9.81f} << 0.0f << 0.0f;
    QTest::newRow("upside down") << QVector<float>{0.0f, 0.0f, -1.0f} << 180.0f << 0.0f;
    QTest::newRow("y up") << QVector<float>{0.0f, 2.0f, 0.0f} << 90.0f << 0.0f;
    QTest::newRow("y down") << QVector<float>{0.0f, -2.0f, 0.0f} << -90.0f << 0.0f;
    QTest::newRow("y down, z minus zero") << QVector<float>{0.0f, -2.0f, -0.0f} << -90.0f << 0.0f;
    QTest::newRow("x up") << QVector<float>{1.0f, 0.0f, 0.0f} << -90.0f << -90.0f;
    QTest::newRow("x down") << QVector<float>{-1.0f, 0.0f, 0.0f} << -90.0f << 90.0f;
    QTest::newRow("free fall") << QVector<float>{0.0f, 0.0f, 0.0f} << -90.0f << -90.0f;
    QTest::newRow("45 degrees of roll") << QVector<float>{0.0f, 1.0f, 1.0f} << 45.0f << 0.0f;
    // x against the root of 3² + 4².
    QTest::newRow("both") << QVector<float>{-5.0f, 3.0f, 4.0f} << 36.869898f << 45.0f;
    QTest::newRow("both, third quadrant") << QVector<float>{5.0f, -3.0f, -4.0f} << -143.1301f << -45.0f;
}

void tst_ZrUtilNav::tilt()
{
    QFETCH(QVector<float>, accel);
    QFETCH(float, p0);
    QFETCH(float, p1);
    const auto [first, second] = ZrUtil::ImuCalcPRV(accel[0], accel[1], accel[2]);
    COMPARE_NEAR(first, p0, 1e-5);
    COMPARE_NEAR(second, p1, 1e-5);
}

void tst_ZrUtilNav::tiltOfTinyAccelerations()
{
    const auto [first, second] = ZrUtil::ImuCalcPRV(-1e-30f, 0.0f, 1e-30f);
    COMPARE_NEAR(first, 0.0, 0.0);
    COMPARE_NEAR(second, 45.0, 1e-5);

    const float noValue = static_cast<float>(notANumber);
    const auto [none, tilted] = ZrUtil::ImuCalcPRV(-1.0f, noValue, 0.0f);
    COMPARE_NEAR(none, -90.0, 0.0);
    QVERIFY(std::isnan(tilted));
}

void tst_ZrUtilNav::filterBlends()
{
    // Accelerations: 45° of element 0, 45° of element 1 (x against the root of 3² + 3²).
    const float x = -std::sqrt(18.0f);
    const ZrImuDelta d{{x, 3.0f, 3.0f, 0.5f, -0.25f}};
    const auto [wrapped, b, a] = ZrUtil::ImuUpdateHPR(d, 0.75f, 0.0f, 4.0f, 8.0f, false);
    // (0.5·57.29577951 + 8)·0.75 + 45·0.25 and (−0.25·57.29577951 + 4)·0.75 + 45·0.25
    COMPARE_NEAR(a, 38.735917, 1e-5);
    COMPARE_NEAR(b, 3.5070413, 1e-5);
    COMPARE_NEAR(wrapped, a, 0.0);

    // Only the integrated angles, then only the accelerations.
    const auto [wrapped1, b1, a1] = ZrUtil::ImuUpdateHPR(d, 1.0f, 0.0f, 4.0f, 8.0f, false);
    COMPARE_NEAR(a1, 36.64789, 1e-5);
    COMPARE_NEAR(b1, -10.323945, 1e-5);
    COMPARE_NEAR(wrapped1, a1, 0.0);
    const auto [wrapped0, b0, a0] = ZrUtil::ImuUpdateHPR(d, 0.0f, 0.0f, 4.0f, 8.0f, false);
    COMPARE_NEAR(a0, 45.0, 1e-5);
    COMPARE_NEAR(b0, 45.0, 1e-5);
    COMPARE_NEAR(wrapped0, a0, 0.0);
}

void tst_ZrUtilNav::filterInverts()
{
    // Element 1 is 45°, element 0 is −90°: only element 1 changes its sign.
    const ZrImuDelta d{{-2.0f, -2.0f, 0.0f, 0.0f, 0.0f}};
    const auto [wrapped, b, a] = ZrUtil::ImuUpdateHPR(d, 0.5f, 0.0f, 0.0f, 0.0f, true);
    COMPARE_NEAR(a, -22.5, 1e-5);
    COMPARE_NEAR(b, -45.0, 1e-5);
    COMPARE_NEAR(wrapped, 337.5, 1e-4);
    const auto [wrapped2, b2, a2] = ZrUtil::ImuUpdateHPR(d, 0.5f, 0.0f, 0.0f, 0.0f, false);
    COMPARE_NEAR(a2, 22.5, 1e-5);
    COMPARE_NEAR(b2, -45.0, 1e-5);
    COMPARE_NEAR(wrapped2, 22.5, 1e-5);
}

void tst_ZrUtilNav::filterIgnoresTheThirdArgument()
{
    const ZrImuDelta d{{0.1f, 0.2f, 9.7f, 0.3f, -0.4f}};
    const auto expected = ZrUtil::ImuUpdateHPR(d, 0.9f, 0.0f, 1.0f, 2.0f, false);
    QVERIFY(ZrUtil::ImuUpdateHPR(d, 0.9f, 1e30f, 1.0f, 2.0f, false) == expected);
    QVERIFY(ZrUtil::ImuUpdateHPR(d, 0.9f, static_cast<float>(notANumber), 1.0f, 2.0f, false) == expected);
}

void tst_ZrUtilNav::filterWraps_data()
{
    QTest::addColumn<float>("a");
    QTest::addColumn<float>("wrapped");

    QTest::newRow("zero") << 0.0f << 0.0f;
    QTest::newRow("within") << 0.1f << 0.1f;
    QTest::newRow("negative") << -90.0f << 270.0f;
    QTest::newRow("a turn") << 360.0f << 0.0f;
    QTest::newRow("beyond a turn") << 725.0f << 5.0f;
    QTest::newRow("minus a turn") << -360.0f << 0.0f;
    QTest::newRow("below minus a turn keeps its sign") << -450.0f << -90.0f;
    QTest::newRow("just below zero: 360 once rounded, so 0") << -1e-6f << 0.0f;
    QTest::newRow("last number below a turn") << -0x1p-15f << 359.99997f;
}

void tst_ZrUtilNav::filterWraps()
{
    QFETCH(float, a);
    QFETCH(float, wrapped);
    // With a weight of 1 and no integrated angle the offset is A.
    const ZrImuDelta d{{0.0f, 0.0f, 1.0f, 0.0f, 0.0f}};
    const auto result = ZrUtil::ImuUpdateHPR(d, 1.0f, 0.0f, 12.5f, a, false);
    COMPARE_NEAR(std::get<0>(result), wrapped, 1e-6);
    QVERIFY(std::get<0>(result) < 360.0f);
    QVERIFY(std::get<1>(result) == 12.5f);
    QVERIFY(std::get<2>(result) == a);
}

void tst_ZrUtilNav::imuDeltaIsFiveFloats()
{
    static_assert(sizeof(ZrImuDelta) == 5 * sizeof(float));
    ZrImuDelta d;
    for (int i = 0; i < 5; ++i) {
        QVERIFY(d[i] == 0.0f);
        d[i] = static_cast<float>(i) + 0.5f;
    }
    const ZrImuDelta& read = d;
    QVERIFY(read[0] == 0.5f && read[4] == 4.5f);
}

QTEST_GUILESS_MAIN(tst_ZrUtilNav)
#include "tst_ZrUtilNav.moc"
