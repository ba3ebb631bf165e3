#include "ZrUtil/ZrUtil.h"

#include <QtTest>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// Equal to the last bit but for the sign of zero; NaN is the same as NaN.
bool Same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

QByteArray Pair(double actual, double expected)
{
    return "actual " + QByteArray::number(actual, 'g', 17) + ", expected "
        + QByteArray::number(expected, 'g', 17);
}

quint32 Bits(float f)
{
    quint32 bits;
    std::memcpy(&bits, &f, sizeof bits);
    return bits;
}

float FromBits(quint32 bits)
{
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

} // namespace

// QCOMPARE takes doubles within 1e-12 as equal, which is too coarse for what is exact here.
#define COMPARE_EXACT(actual, expected)                                                                      \
    QVERIFY2(Same((actual), (expected)), Pair((actual), (expected)).constData())

class tst_ZrUtil : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void constantsAreTheNearestDoubles();
    void assignmentDoesNothing();
    void equalTIsStrict();
    void equalTTakesATolerance();
    void lessAndMoreNeedMoreThanTheTolerance();
    void toleranceTestsAreFalseForNaN();
    void fModT_data();
    void fModT();
    void fModTKeepsARemainderJustAboveAMultiple();
    void hypotTVanishesForTwoSmallSides();
    void plainArithmetic();
    void interpolateExtrapolates();
    void aCosh();
    void aTan2OnTheYAxis();
    void aTan2ElsewhereIsTheLibrarys();
    void degreesAndRadians();
    void rnd_data();
    void rnd();
    void clipping_data();
    void clipping();
    void clippingByZeroIsNotGuarded();
    void clipRngLetsTheLowerLimitWin();
    void pow2Up_data();
    void pow2Up();
    void parity_data();
    void parity();
    void exactDivisible();
    void swapIntegers();
    void swapFloatReversesTheBytes();
    void headings_data();
    void headings();
    void headingConversionIsItsOwnInverse();
    void headingsInRadians();
    void bearingOffset_data();
    void bearingOffset();
    void markerTableIsAsListed();
    void markers_data();
    void markers();
    void markersOfEveryDecade();
    void markerNeighboursHold();
    void markersEndForAnyValue_data();
    void markersEndForAnyValue();
    void markersAtTheEndsOfTheRange();
    void markersEndForAnyTable();
    void markersFollowTheTable();
};

void tst_ZrUtil::constantsAreTheNearestDoubles()
{
    // 25 and more digits, so that the compiler rounds once.
    static_assert(ZrUtil::threshold == 0.000001);
    static_assert(ZrUtil::pi == 3.14159265358979323846264338328);
    static_assert(ZrUtil::pi_2 == 1.57079632679489661923132169164);
    static_assert(ZrUtil::pi3_2 == 4.71238898038468985769396507492);
    static_assert(ZrUtil::pi_4 == 0.78539816339744830961566084582);
    static_assert(ZrUtil::pi2 == 6.28318530717958647692528676656);
    static_assert(ZrUtil::pi4 == 12.5663706143591729538505735331);
    static_assert(ZrUtil::root2 == 1.41421356237309504880168872421);
    static_assert(ZrUtil::root2_2 == 0.70710678118654752440084436210);
    static_assert(ZrUtil::e == 2.71828182845904523536028747135);

    // They have an address: an application may take one by reference.
    const double& byReference = ZrUtil::e;
    COMPARE_EXACT(byReference, std::exp(1.0));
}

void tst_ZrUtil::assignmentDoesNothing()
{
    static_assert(std::is_copy_assignable_v<ZrUtil>);
    static_assert(std::is_move_assignable_v<ZrUtil>);
    static_assert(std::is_empty_v<ZrUtil>);

    ZrUtil a;
    ZrUtil b;
    QCOMPARE(&(a = b), &a);
    QCOMPARE(&(a = std::move(b)), &a);
    COMPARE_EXACT(ZrUtil::markers[2], 0.15);
}

void tst_ZrUtil::equalTIsStrict()
{
    QVERIFY(ZrUtil::EqualT(1.0, 1.0000009));
    QVERIFY(ZrUtil::EqualT(1.0000009, 1.0));
    QVERIFY(!ZrUtil::EqualT(1.0, 1.0000011));
    QVERIFY(ZrUtil::EqualT(0.0, std::nextafter(1e-6, 0.0)));
    QVERIFY(!ZrUtil::EqualT(0.0, 1e-6));
    QVERIFY(!ZrUtil::EqualT(0.0, -1e-6));
    // In binary64 the difference of these two is 9.99999999917733e-7.
    QVERIFY(ZrUtil::EqualT(1.0, 1.000001));
}

void tst_ZrUtil::equalTTakesATolerance()
{
    QVERIFY(ZrUtil::EqualT(10.0, 10.25, 0.5));
    QVERIFY(!ZrUtil::EqualT(10.0, 10.5, 0.5));
    QVERIFY(!ZrUtil::EqualT(10.5, 10.0, 0.5));
    QVERIFY(ZrUtil::EqualT(-10.0, 10.0, 20.5));
    QVERIFY(!ZrUtil::EqualT(1.0, 1.0, 0.0));
    QVERIFY(!ZrUtil::EqualT(1.0, 1.0, -1.0));
    QVERIFY(ZrUtil::EqualT(1.0, 2.0, infinity));
}

void tst_ZrUtil::lessAndMoreNeedMoreThanTheTolerance()
{
    QVERIFY(ZrUtil::LessThanT(0.0, 1.1e-6));
    QVERIFY(!ZrUtil::LessThanT(0.0, 1e-6));
    QVERIFY(!ZrUtil::LessThanT(0.0, 0.0));
    QVERIFY(!ZrUtil::LessThanT(1.0, 0.0));
    QVERIFY(ZrUtil::LessThanT(-infinity, infinity));

    QVERIFY(ZrUtil::MoreThanT(1.1e-6, 0.0));
    QVERIFY(!ZrUtil::MoreThanT(1e-6, 0.0));
    QVERIFY(!ZrUtil::MoreThanT(0.0, 0.0));
    QVERIFY(!ZrUtil::MoreThanT(0.0, 1.0));
    QVERIFY(ZrUtil::MoreThanT(infinity, -infinity));
}

void tst_ZrUtil::toleranceTestsAreFalseForNaN()
{
    QVERIFY(!ZrUtil::EqualT(notANumber, notANumber));
    QVERIFY(!ZrUtil::EqualT(notANumber, 0.0, infinity));
    QVERIFY(!ZrUtil::EqualT(0.0, 0.0, notANumber));
    QVERIFY(!ZrUtil::EqualT(infinity, infinity));
    QVERIFY(!ZrUtil::LessThanT(notANumber, 1.0));
    QVERIFY(!ZrUtil::LessThanT(1.0, notANumber));
    QVERIFY(!ZrUtil::MoreThanT(notANumber, 1.0));
    QVERIFY(!ZrUtil::MoreThanT(1.0, notANumber));
}

void tst_ZrUtil::fModT_data()
{
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<double>("expected");

    QTest::newRow("multiple") << 3.0 << 1.0 << 0.0;
    QTest::newRow("just below the divisor") << 0.9999995 << 1.0 << 0.0;
    QTest::newRow("just below a multiple") << 4.9999995 << 1.0 << 0.0;
    QTest::newRow("well below the divisor") << 0.75 << 1.0 << 0.75;
    QTest::newRow("exactly the tolerance below") << 1e-6 << 2e-6 << 1e-6;
    QTest::newRow("sign of the first argument") << -3.5 << 2.0 << -1.5;
    QTest::newRow("negative, just above a multiple") << -0.9999995 << 1.0 << -0.9999995;
    QTest::newRow("negative divisor") << 7.5 << -2.0 << 1.5;
    QTest::newRow("both negative, close") << -1.9999995 << -2.0 << 0.0;
    QTest::newRow("tiny divisor") << 5e-7 << 9e-7 << 0.0;
    QTest::newRow("zero divisor") << 1.0 << 0.0 << notANumber;
    QTest::newRow("infinite value") << infinity << 1.0 << notANumber;
    QTest::newRow("infinite divisor") << 3.0 << infinity << 3.0;
    QTest::newRow("not a number") << notANumber << 1.0 << notANumber;
}

void tst_ZrUtil::fModT()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(double, expected);
    COMPARE_EXACT(ZrUtil::FModT(a, b), expected);
}

void tst_ZrUtil::fModTKeepsARemainderJustAboveAMultiple()
{
    COMPARE_EXACT(ZrUtil::FModT(0x1p-30, 1.0), 0x1p-30);
    QVERIFY(std::fabs(ZrUtil::FModT(1.0000005, 1.0) - 5e-7) < 1e-15);
}

void tst_ZrUtil::hypotTVanishesForTwoSmallSides()
{
    COMPARE_EXACT(ZrUtil::HypotT(3.0, -4.0), 5.0);
    COMPARE_EXACT(ZrUtil::HypotT(9e-7, -9e-7), 0.0);
    COMPARE_EXACT(ZrUtil::HypotT(1e-6, 0.0), 1e-6);
    COMPARE_EXACT(ZrUtil::HypotT(0.0, -1e-6), 1e-6);
    COMPARE_EXACT(ZrUtil::HypotT(0.0, 0.0), 0.0);
    COMPARE_EXACT(ZrUtil::HypotT(notANumber, 0.0), notANumber);
    COMPARE_EXACT(ZrUtil::HypotT(0.0, -infinity), infinity);
}

void tst_ZrUtil::plainArithmetic()
{
    COMPARE_EXACT(ZrUtil::Sqr(-1.5), 2.25);
    COMPARE_EXACT(ZrUtil::Cube(-1.5), -3.375);
    COMPARE_EXACT(ZrUtil::Cube(-infinity), -infinity);
    COMPARE_EXACT(ZrUtil::Mid(-3.0, 8.0), 2.5);
    COMPARE_EXACT(ZrUtil::Mid(DBL_MAX, DBL_MAX), infinity);
    COMPARE_EXACT(ZrUtil::Hypot(5.0, -12.0), 13.0);
    COMPARE_EXACT(ZrUtil::Hypot(1e-9, 0.0), 1e-9);
    COMPARE_EXACT(ZrUtil::Hypot(1e200, 1.0), infinity);
    COMPARE_EXACT(ZrUtil::Hypot3(2.0, -3.0, 6.0), 7.0);
    COMPARE_EXACT(ZrUtil::Hypot3(0.0, notANumber, 0.0), notANumber);
    COMPARE_EXACT(ZrUtil::Bias(10.0, 20.0, 1.0), 10.0);
    COMPARE_EXACT(ZrUtil::Bias(10.0, 20.0, 0.0), 20.0);
    COMPARE_EXACT(ZrUtil::Bias(10.0, 20.0, 0.25), 17.5);
    COMPARE_EXACT(ZrUtil::Bias(10.0, 20.0, 2.0), 0.0);
    COMPARE_EXACT(ZrUtil::Bias(infinity, 20.0, 0.0), notANumber);
}

void tst_ZrUtil::interpolateExtrapolates()
{
    COMPARE_EXACT(ZrUtil::Interpolate(0.0, 10.0, 2.5, 100.0, 200.0), 125.0);
    COMPARE_EXACT(ZrUtil::Interpolate(0.0, 10.0, 20.0, 100.0, 200.0), 300.0);
    COMPARE_EXACT(ZrUtil::Interpolate(0.0, 10.0, -10.0, 100.0, 200.0), 0.0);
    COMPARE_EXACT(ZrUtil::Interpolate(10.0, 0.0, 2.5, 200.0, 100.0), 125.0);
    COMPARE_EXACT(ZrUtil::Interpolate(4.0, 4.0, 9.0, 100.0, 200.0), 100.0);
    COMPARE_EXACT(ZrUtil::Interpolate(0.0, -0.0, 9.0, 100.0, 200.0), 100.0);
    // Only an exactly empty interval is caught.
    COMPARE_EXACT(ZrUtil::Interpolate(0.0, 0x1p-1060, 0x1p-1059, 0.0, 1.0), 2.0);
    COMPARE_EXACT(ZrUtil::Interpolate(infinity, infinity, 0.0, 1.0, 2.0), notANumber);
    COMPARE_EXACT(ZrUtil::Interpolate(0.0, 1.0, notANumber, 1.0, 2.0), notANumber);
}

void tst_ZrUtil::aCosh()
{
    COMPARE_EXACT(ZrUtil::ACosh(1.0), 0.0);
    // cosh(ln 2) is 1.25, cosh(ln 4) is 2.125.
    QVERIFY(std::fabs(ZrUtil::ACosh(1.25) - 0.6931471805599453) < 1e-15);
    QVERIFY(std::fabs(ZrUtil::ACosh(2.125) - 1.3862943611198906) < 1e-15);
    COMPARE_EXACT(ZrUtil::ACosh(0.5), notANumber);
    COMPARE_EXACT(ZrUtil::ACosh(-2.0), std::log(std::sqrt(3.0) - 2.0));
    COMPARE_EXACT(ZrUtil::ACosh(infinity), infinity);
    COMPARE_EXACT(ZrUtil::ACosh(1e200), infinity);
    COMPARE_EXACT(ZrUtil::ACosh(notANumber), notANumber);
    // Far below the domain the root rounds to -x, and the logarithm of 0 is taken; then the square overflows.
    COMPARE_EXACT(ZrUtil::ACosh(-1e9), -infinity);
    COMPARE_EXACT(ZrUtil::ACosh(-1e200), infinity);
}

void tst_ZrUtil::aTan2OnTheYAxis()
{
    constexpr double quarter = 1.5707963267948966;
    COMPARE_EXACT(ZrUtil::ATan2(3.0, 0.0), quarter);
    COMPARE_EXACT(ZrUtil::ATan2(3.0, -0.0), quarter);
    COMPARE_EXACT(ZrUtil::ATan2(-3.0, 0.0), -quarter);
    COMPARE_EXACT(ZrUtil::ATan2(0.0, 0.0), -quarter);
    COMPARE_EXACT(ZrUtil::ATan2(0.0, -0.0), -quarter);
    COMPARE_EXACT(ZrUtil::ATan2(notANumber, 0.0), -quarter);
    COMPARE_EXACT(ZrUtil::ATan2(infinity, 0.0), quarter);
}

void tst_ZrUtil::aTan2ElsewhereIsTheLibrarys()
{
    COMPARE_EXACT(ZrUtil::ATan2(0.0, 1.0), 0.0);
    COMPARE_EXACT(ZrUtil::ATan2(0.0, -1.0), 3.141592653589793);
    COMPARE_EXACT(ZrUtil::ATan2(-0.0, -1.0), -3.141592653589793);
    COMPARE_EXACT(ZrUtil::ATan2(1.0, 1.0), 0.7853981633974483);
    COMPARE_EXACT(ZrUtil::ATan2(1.0, -1.0), 2.356194490192345);
    COMPARE_EXACT(ZrUtil::ATan2(notANumber, 1.0), notANumber);
    COMPARE_EXACT(ZrUtil::ATan2(1.0, notANumber), notANumber);
}

void tst_ZrUtil::degreesAndRadians()
{
    COMPARE_EXACT(ZrUtil::D2R(1.0), 0.017453292519943295);
    COMPARE_EXACT(ZrUtil::D2R(180.0), 3.141592653589793);
    COMPARE_EXACT(ZrUtil::D2R(-90.0), -1.5707963267948966);
    COMPARE_EXACT(ZrUtil::R2D(1.0), 57.29577951308232);
    COMPARE_EXACT(ZrUtil::R2D(3.141592653589793), 180.0);
    COMPARE_EXACT(ZrUtil::D2R(infinity), infinity);
    COMPARE_EXACT(ZrUtil::R2D(notANumber), notANumber);
}

void tst_ZrUtil::rnd_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("expected");

    QTest::newRow("half") << 2.5 << 3.0;
    QTest::newRow("negative half goes up") << -2.5 << -2.0;
    QTest::newRow("below a half") << 2.25 << 2.0;
    QTest::newRow("negative, beyond a half") << -2.75 << -3.0;
    QTest::newRow("minus a half") << -0.5 << 0.0;
    QTest::newRow("just below a half: the sum rounds to 1") << 0.49999999999999994 << 1.0;
    QTest::newRow("beyond int") << 1e300 << 1e300;
    QTest::newRow("infinite") << -infinity << -infinity;
    QTest::newRow("not a number") << notANumber << notANumber;
}

void tst_ZrUtil::rnd()
{
    QFETCH(double, x);
    QFETCH(double, expected);
    COMPARE_EXACT(ZrUtil::Rnd(x), expected);
}

void tst_ZrUtil::clipping_data()
{
    QTest::addColumn<double>("v");
    QTest::addColumn<double>("step");
    QTest::addColumn<double>("down");
    QTest::addColumn<double>("up");
    QTest::addColumn<double>("nearest");

    QTest::newRow("between") << 7.0 << 2.5 << 5.0 << 7.5 << 7.5;
    QTest::newRow("on a step") << 7.5 << 2.5 << 7.5 << 7.5 << 7.5;
    QTest::newRow("negative") << -7.0 << 2.5 << -7.5 << -5.0 << -7.5;
    QTest::newRow("negative tie goes up") << -6.25 << 2.5 << -7.5 << -5.0 << -5.0;
    QTest::newRow("tie goes up") << 6.25 << 2.5 << 5.0 << 7.5 << 7.5;
    QTest::newRow("negative step swaps the directions") << 7.0 << -2.5 << 7.5 << 5.0 << 7.5;
    QTest::newRow("zero") << 0.0 << 2.5 << 0.0 << 0.0 << 0.0;
    QTest::newRow("beyond int") << 3e18 << 2.0 << 3e18 << 3e18 << 3e18;
    QTest::newRow("not a number") << notANumber << 2.0 << notANumber << notANumber << notANumber;
    QTest::newRow("infinite") << infinity << 2.0 << infinity << infinity << infinity;
    QTest::newRow("step not a number") << 2.0 << notANumber << notANumber << notANumber << notANumber;
}

void tst_ZrUtil::clipping()
{
    QFETCH(double, v);
    QFETCH(double, step);
    QFETCH(double, down);
    QFETCH(double, up);
    QFETCH(double, nearest);
    COMPARE_EXACT(ZrUtil::ClipDn(v, step), down);
    COMPARE_EXACT(ZrUtil::ClipUp(v, step), up);
    COMPARE_EXACT(ZrUtil::ClipRnd(v, step), nearest);
}

void tst_ZrUtil::clippingByZeroIsNotGuarded()
{
    COMPARE_EXACT(ZrUtil::ClipDn(1.0, 0.0), notANumber);
    COMPARE_EXACT(ZrUtil::ClipUp(-1.0, 0.0), notANumber);
    COMPARE_EXACT(ZrUtil::ClipRnd(0.0, 0.0), notANumber);
}

void tst_ZrUtil::clipRngLetsTheLowerLimitWin()
{
    COMPARE_EXACT(ZrUtil::ClipRng(5.0, 1.0, 9.0), 5.0);
    COMPARE_EXACT(ZrUtil::ClipRng(0.0, 1.0, 9.0), 1.0);
    COMPARE_EXACT(ZrUtil::ClipRng(10.0, 1.0, 9.0), 9.0);
    COMPARE_EXACT(ZrUtil::ClipRng(5.0, 9.0, 1.0), 9.0);
    COMPARE_EXACT(ZrUtil::ClipRng(20.0, 9.0, 1.0), 9.0);
    COMPARE_EXACT(ZrUtil::ClipRng(0.0, 9.0, 1.0), 9.0);
    COMPARE_EXACT(ZrUtil::ClipRng(-infinity, -1.0, 1.0), -1.0);
    COMPARE_EXACT(ZrUtil::ClipRng(notANumber, -1.0, 1.0), -1.0);
}

void tst_ZrUtil::pow2Up_data()
{
    QTest::addColumn<unsigned int>("n");
    QTest::addColumn<unsigned int>("expected");

    QTest::newRow("0") << 0u << 0u;
    QTest::newRow("1") << 1u << 1u;
    QTest::newRow("2") << 2u << 2u;
    QTest::newRow("3") << 3u << 4u;
    QTest::newRow("5") << 5u << 8u;
    QTest::newRow("1023") << 1023u << 1024u;
    QTest::newRow("1024") << 1024u << 1024u;
    QTest::newRow("1025") << 1025u << 2048u;
    QTest::newRow("2^31 - 1") << 0x7FFFFFFFu << 0x80000000u;
    QTest::newRow("2^31") << 0x80000000u << 0x80000000u;
    QTest::newRow("2^31 + 1") << 0x80000001u << 0u;
    QTest::newRow("2^32 - 1") << 0xFFFFFFFFu << 0u;
}

void tst_ZrUtil::pow2Up()
{
    QFETCH(unsigned int, n);
    QFETCH(unsigned int, expected);
    QCOMPARE(ZrUtil::Pow2Up(n), expected);
}

void tst_ZrUtil::parity_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<bool>("even");

    QTest::newRow("0") << 0.0 << true;
    QTest::newRow("-0") << -0.0 << true;
    QTest::newRow("2") << 2.0 << true;
    QTest::newRow("-4") << -4.0 << true;
    QTest::newRow("1") << 1.0 << false;
    QTest::newRow("-3") << -3.0 << false;
    QTest::newRow("2.5") << 2.5 << false;
    QTest::newRow("-0.5") << -0.5 << false;
    QTest::newRow("2^53 - 1") << 9007199254740991.0 << false;
    QTest::newRow("beyond every odd number") << 1e300 << true;
    QTest::newRow("infinite") << infinity << false;
    QTest::newRow("not a number") << notANumber << false;
}

void tst_ZrUtil::parity()
{
    QFETCH(double, x);
    QFETCH(bool, even);
    QCOMPARE(ZrUtil::Even(x), even);
    QCOMPARE(ZrUtil::Odd(x), !even);
}

void tst_ZrUtil::exactDivisible()
{
    QVERIFY(ZrUtil::ExactDivisible(9.0, 3.0));
    QVERIFY(!ZrUtil::ExactDivisible(9.0, 4.0));
    QVERIFY(ZrUtil::ExactDivisible(-9.0, 4.5));
    QVERIFY(ZrUtil::ExactDivisible(0.0, 4.0));
    QVERIFY(!ZrUtil::ExactDivisible(1.0, 2.0));
    // The quotient of 0.3 and 0.1 is 2.9999999999999996.
    QVERIFY(!ZrUtil::ExactDivisible(0.3, 0.1));
    QVERIFY(ZrUtil::ExactDivisible(0.5, 0.1));
    QVERIFY(!ZrUtil::ExactDivisible(1.0, 0.0));
    QVERIFY(!ZrUtil::ExactDivisible(0.0, 0.0));
    QVERIFY(!ZrUtil::ExactDivisible(notANumber, 1.0));
    QVERIFY(!ZrUtil::ExactDivisible(infinity, 1.0));
    QVERIFY(ZrUtil::ExactDivisible(1.0, infinity));
}

void tst_ZrUtil::swapIntegers()
{
    QCOMPARE(ZrUtil::SwapWord(0x1234), static_cast<unsigned short>(0x3412));
    QCOMPARE(ZrUtil::SwapWord(0x00FF), static_cast<unsigned short>(0xFF00));
    QCOMPARE(ZrUtil::SwapWord(0xFFFE), static_cast<unsigned short>(0xFEFF));
    QCOMPARE(ZrUtil::SwapDWord(0x12345678u), 0x78563412u);
    QCOMPARE(ZrUtil::SwapDWord(0x000000FFu), 0xFF000000u);
    QCOMPARE(ZrUtil::SwapDWord(0xFEDCBA98u), 0x98BADCFEu);
}

void tst_ZrUtil::swapFloatReversesTheBytes()
{
    // 1.0f is 3F800000; its bytes reversed, 0000803F, are the denormal 32831·2^-149.
    QCOMPARE(Bits(ZrUtil::SwapFloat(1.0f)), 0x0000803Fu);
    QVERIFY(ZrUtil::SwapFloat(1.0f) == 32831.0f * 0x1p-149f);
    QVERIFY(ZrUtil::SwapFloat(FromBits(0x0000803Fu)) == 1.0f);
    QCOMPARE(Bits(ZrUtil::SwapFloat(FromBits(0x000048C2u))), 0xC2480000u);
    QVERIFY(ZrUtil::SwapFloat(FromBits(0x000048C2u)) == -50.0f);
    QCOMPARE(Bits(ZrUtil::SwapFloat(-0.0f)), 0x00000080u);
}

void tst_ZrUtil::headings_data()
{
    QTest::addColumn<double>("angle");
    QTest::addColumn<double>("heading");

    QTest::newRow("east") << 0.0 << 90.0;
    QTest::newRow("north") << 90.0 << 0.0;
    QTest::newRow("west") << 180.0 << 270.0;
    QTest::newRow("south") << 270.0 << 180.0;
    QTest::newRow("north-east") << 45.0 << 45.0;
    QTest::newRow("negative angle") << -90.0 << 180.0;
    QTest::newRow("two turns") << 720.0 << 90.0;
    QTest::newRow("the added offset") << 810.0 << 0.0;
    QTest::newRow("beyond the offset") << 811.0 << -1.0;
    QTest::newRow("far beyond") << 1900.0 << -10.0;
    QTest::newRow("infinite") << infinity << notANumber;
    QTest::newRow("not a number") << notANumber << notANumber;
}

void tst_ZrUtil::headings()
{
    QFETCH(double, angle);
    QFETCH(double, heading);
    COMPARE_EXACT(ZrUtil::AngleHeadD(angle), heading);
    COMPARE_EXACT(ZrUtil::HeadAngleD(angle), heading);
}

void tst_ZrUtil::headingConversionIsItsOwnInverse()
{
    // Eighths of a degree are exact.
    for (int i = 0; i < 8 * 360; ++i) {
        const double a = i / 8.0;
        COMPARE_EXACT(ZrUtil::AngleHeadD(ZrUtil::AngleHeadD(a)), a);
        COMPARE_EXACT(ZrUtil::HeadAngleD(ZrUtil::AngleHeadD(a)), a);
        const double r = i * (2.0 * M_PI / (8 * 360));
        const double back = ZrUtil::HeadAngleR(ZrUtil::AngleHeadR(r));
        // Rounding may bring 0 back as just below a full turn.
        QVERIFY2(std::fabs(std::remainder(back - r, 2.0 * M_PI)) < 1e-14, Pair(back, r).constData());
    }
}

void tst_ZrUtil::headingsInRadians()
{
    QVERIFY(std::fabs(ZrUtil::AngleHeadR(0.0) - M_PI / 2) < 1e-14);
    QVERIFY(std::fabs(ZrUtil::AngleHeadR(M_PI) - 3 * M_PI / 2) < 1e-14);
    QVERIFY(std::fabs(ZrUtil::HeadAngleR(M_PI / 4) - M_PI / 4) < 1e-14);
    QVERIFY(std::fabs(ZrUtil::AngleHeadR(-1.0) - (M_PI / 2 + 1.0)) < 1e-14);
    QVERIFY(std::fabs(ZrUtil::AngleHeadR(3.0 * M_PI) - 3 * M_PI / 2) < 1e-14);
    QVERIFY(std::fabs(ZrUtil::AngleHeadR(4.25 * M_PI) - M_PI / 4) < 1e-14);
    // Beyond 4.5π the sign of the dividend shows.
    QVERIFY(std::fabs(ZrUtil::AngleHeadR(4.5 * M_PI + 1.0) + 1.0) < 1e-14);
    COMPARE_EXACT(ZrUtil::HeadAngleR(notANumber), notANumber);
}

void tst_ZrUtil::bearingOffset_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addColumn<double>("turn");

    QTest::newRow("to starboard over north") << 350.0 << 10.0 << 20.0;
    QTest::newRow("to port over north") << 10.0 << 350.0 << -20.0;
    QTest::newRow("half a turn") << 0.0 << 180.0 << -180.0;
    QTest::newRow("half a turn back") << 180.0 << 0.0 << -180.0;
    QTest::newRow("none") << 77.25 << 77.25 << 0.0;
    QTest::newRow("just under half a turn") << 0.0 << 179.5 << 179.5;
    QTest::newRow("just over half a turn") << 0.0 << 180.5 << -179.5;
    QTest::newRow("many turns") << -720.0 << 3690.0 << 90.0;
    QTest::newRow("many turns back") << 3690.0 << -720.0 << -90.0;
    QTest::newRow("infinite") << 0.0 << infinity << notANumber;
    QTest::newRow("not a number") << notANumber << 0.0 << notANumber;
}

void tst_ZrUtil::bearingOffset()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(double, turn);
    COMPARE_EXACT(ZrUtil::BrgOffsetDegrees(from, to), turn);
}

void tst_ZrUtil::markerTableIsAsListed()
{
    static_assert(std::is_same_v<decltype(ZrUtil::markers), double[6]>);
    const double listed[6] = {0.1, 0.2, 0.15, 0.25, 0.5, 0.75};
    for (int i = 0; i < 6; ++i)
        COMPARE_EXACT(ZrUtil::markers[i], listed[i]);
}

void tst_ZrUtil::markers_data()
{
    QTest::addColumn<double>("v");
    QTest::addColumn<double>("next");
    QTest::addColumn<double>("prev");
    QTest::addColumn<double>("nearest");

    QTest::newRow("0.1") << 0.1 << 0.2 << 0.1 << 0.1;
    QTest::newRow("0.12") << 0.12 << 0.2 << 0.1 << 0.1;
    QTest::newRow("0.15, in binary nearer to 0.1") << 0.15 << 0.2 << 0.1 << 0.1;
    QTest::newRow("0.16") << 0.16 << 0.2 << 0.15 << 0.2;
    QTest::newRow("0.2: the scan goes on past 0.15") << 0.2 << 0.25 << 0.15 << 0.25;
    QTest::newRow("0.22") << 0.22 << 0.25 << 0.15 << 0.25;
    QTest::newRow("0.25") << 0.25 << 0.5 << 0.15 << 0.25;
    QTest::newRow("0.3") << 0.3 << 0.5 << 0.25 << 0.25;
    QTest::newRow("0.375: a tie goes up") << 0.375 << 0.5 << 0.25 << 0.5;
    QTest::newRow("0.5") << 0.5 << 0.75 << 0.25 << 0.5;
    QTest::newRow("0.74") << 0.74 << 0.75 << 0.5 << 0.75;
    QTest::newRow("0.75 belongs to the next decade") << 0.75 << 1.0 << 0.75 << 0.75;
    QTest::newRow("0.9") << 0.9 << 1.0 << 0.9 << 1.0;
    QTest::newRow("0.875: a tie of two decades goes up") << 0.875 << 1.0 << 0.875 << 1.0;
    QTest::newRow("1") << 1.0 << 2.0 << 1.0 << 1.0;
    QTest::newRow("3") << 3.0 << 5.0 << 2.5 << 2.5;
    QTest::newRow("7") << 7.0 << 7.5 << 5.0 << 7.5;
    QTest::newRow("8") << 8.0 << 10.0 << 8.0 << 7.5;
    QTest::newRow("2200") << 2200.0 << 2500.0 << 1500.0 << 2500.0;
}

void tst_ZrUtil::markers()
{
    QFETCH(double, v);
    QFETCH(double, next);
    QFETCH(double, prev);
    QFETCH(double, nearest);
    // An entry times a power of ten, rounded once: within one unit in the last place of the decimal number.
    const auto close = [](double a, double b) { return std::fabs(a - b) <= 2.3e-16 * b; };
    QVERIFY2(close(ZrUtil::NextMkr(v), next), Pair(ZrUtil::NextMkr(v), next).constData());
    QVERIFY2(close(ZrUtil::PrevMkr(v), prev), Pair(ZrUtil::PrevMkr(v), prev).constData());
    QVERIFY2(close(ZrUtil::NearestMkr(v), nearest), Pair(ZrUtil::NearestMkr(v), nearest).constData());
}

void tst_ZrUtil::markersOfEveryDecade()
{
    double s = 1.0;
    for (int decade = 0; decade < 300; ++decade, s *= 10.0) {
        COMPARE_EXACT(ZrUtil::NextMkr(0.3 * s), 0.5 * s);
        COMPARE_EXACT(ZrUtil::PrevMkr(0.3 * s), 0.25 * s);
        COMPARE_EXACT(ZrUtil::NearestMkr(0.7 * s), 0.75 * s);
        COMPARE_EXACT(ZrUtil::PrevMkr(0.75 * s), 0.75 * s);
    }
    // The lowest decade is 0.1, however small the value is.
    COMPARE_EXACT(ZrUtil::NextMkr(0.03), 0.5 * 0.1);
    COMPARE_EXACT(ZrUtil::NextMkr(0.074), 0.75 * 0.1);
    COMPARE_EXACT(ZrUtil::NextMkr(1e-9), 0.1 * 0.1);
    COMPARE_EXACT(ZrUtil::NextMkr(0.0), 0.1 * 0.1);
    COMPARE_EXACT(ZrUtil::NextMkr(-5.0), 0.1 * 0.1);
    COMPARE_EXACT(ZrUtil::PrevMkr(0.0), 0.0);
    COMPARE_EXACT(ZrUtil::PrevMkr(-5.0), -5.0);
    // Below the first entry the last one of the decade 0.01 is the neighbour.
    COMPARE_EXACT(ZrUtil::NearestMkr(0.0), 0.75 * 0.1 / 10.0);
    COMPARE_EXACT(ZrUtil::NearestMkr(-5.0), 0.75 * 0.1 / 10.0);
    COMPARE_EXACT(ZrUtil::NearestMkr(0.0099), 0.1 * 0.1);
}

void tst_ZrUtil::markerNeighboursHold()
{
    for (double v = 0.08; v < 1e7; v *= 1.0007) {
        const double next = ZrUtil::NextMkr(v);
        const double prev = ZrUtil::PrevMkr(v);
        const double nearest = ZrUtil::NearestMkr(v);
        QVERIFY2(next > v && next <= 2.0 * v, Pair(next, v).constData());
        QVERIFY2(prev <= v && prev >= 0.5 * v, Pair(prev, v).constData());
        QVERIFY2(std::fabs(nearest - v) <= 0.5 * v, Pair(nearest, v).constData());
        QVERIFY2(nearest == next || nearest <= v, Pair(nearest, next).constData());
    }
}

void tst_ZrUtil::markersEndForAnyValue_data()
{
    QTest::addColumn<double>("v");

    QTest::newRow("infinite") << infinity;
    QTest::newRow("not a number") << notANumber;
    QTest::newRow("largest") << DBL_MAX;
    QTest::newRow("beyond the last decade") << 7.6e307;
}

void tst_ZrUtil::markersEndForAnyValue()
{
    QFETCH(double, v);
    COMPARE_EXACT(ZrUtil::NextMkr(v), v);
    COMPARE_EXACT(ZrUtil::PrevMkr(v), v);
    COMPARE_EXACT(ZrUtil::NearestMkr(v), v);
}

void tst_ZrUtil::markersAtTheEndsOfTheRange()
{
    COMPARE_EXACT(ZrUtil::PrevMkr(-infinity), -infinity);
    COMPARE_EXACT(ZrUtil::NextMkr(-infinity), 0.1 * 0.1);
    QVERIFY(ZrUtil::NextMkr(7.4e307) > 7.4e307 && ZrUtil::NextMkr(7.4e307) < 7.51e307);
}

void tst_ZrUtil::markersEndForAnyTable()
{
    const auto restore = qScopeGuard([kept = ZrUtil::markers[5]] { ZrUtil::markers[5] = kept; });
    for (const double last : {0.0, -1.0, notANumber, infinity, -infinity}) {
        ZrUtil::markers[5] = last;
        for (const double v : {0.0, 3.0, 1e300, infinity, -infinity, notANumber}) {
            // A decade is either found, and a result is an entry of it, or not, and the value comes back.
            const double next = ZrUtil::NextMkr(v);
            const double prev = ZrUtil::PrevMkr(v);
            QVERIFY(Same(next, v) || next > v);
            QVERIFY(Same(prev, v) || prev < v);
            const double nearest = ZrUtil::NearestMkr(v);
            QVERIFY(
                Same(nearest, v) || Same(nearest, next) || Same(nearest, last * 0.1 / 10.0) || nearest < v);
        }
    }
}

void tst_ZrUtil::markersFollowTheTable()
{
    double kept[6];
    std::memcpy(kept, ZrUtil::markers, sizeof kept);
    const double other[6] = {0.125, 0.25, 0.375, 0.5, 0.625, 1.0};
    std::memcpy(ZrUtil::markers, other, sizeof other);
    const double next = ZrUtil::NextMkr(8.0);
    const double prev = ZrUtil::PrevMkr(5.5);
    const double nearest = ZrUtil::NearestMkr(3.0);
    std::memcpy(ZrUtil::markers, kept, sizeof kept);

    // A decade ends at its last entry, so 8 is in the decade 10.
    COMPARE_EXACT(next, 10.0);
    COMPARE_EXACT(prev, 5.0);
    COMPARE_EXACT(nearest, 2.5);
    COMPARE_EXACT(ZrUtil::NextMkr(8.0), 10.0);
    COMPARE_EXACT(ZrUtil::PrevMkr(8.0), 8.0);
}

QTEST_GUILESS_MAIN(tst_ZrUtil)
#include "tst_ZrUtil.moc"
