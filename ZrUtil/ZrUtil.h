#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrImuDelta.h"

#include <tuple>

/// Mathematical constants and small functions that the whole library shares: tolerance tests, rounding to a
/// step, angle conventions, range and bearing on a sphere, attitude from an inertial sensor, axis markers,
/// byte order and the byte stuffing of binary frames.
///
/// All members are static and no function keeps state, so every function may be called from any thread at any
/// time. The one exception is `markers`: who writes it does so before other threads use the marker functions.
///
/// Angles are in degrees where a name ends in `D` and for all positions, in radians where it ends in `R` and
/// for `ATan2`. Latitudes and longitudes are decimal degrees, north and east positive; ranges are metres.
///
/// Nothing is reported and nothing is thrown: a division by zero, an argument outside the domain of a library
/// function and NaN give what the arithmetic of IEEE 754 makes of the formula. The formulas are evaluated in
/// the order in which they stand here and without fused multiply-add, because exact results matter: the
/// bearing between two equal points is exactly 0.
class ZR_UTIL_EXPORT ZrUtil
{
public:
    /// \name Constants
    /// @{
    static constexpr double threshold = 1e-6; ///< tolerance of the functions whose name ends in `T`
    static constexpr double pi = 3.141592653589793; ///< π
    static constexpr double pi_2 = 1.5707963267948966; ///< π/2
    static constexpr double pi3_2 = 4.71238898038469; ///< 3π/2
    static constexpr double pi_4 = 0.7853981633974483; ///< π/4
    static constexpr double pi2 = 6.283185307179586; ///< 2π
    static constexpr double pi4 = 12.566370614359172; ///< 4π
    static constexpr double root2 = 1.4142135623730951; ///< √2
    static constexpr double root2_2 = 0.7071067811865476; ///< √2/2
    static constexpr double e = 2.718281828459045; ///< Euler's number
    /// @}

    /// Steps of the axis markers within one decade: 0.1, 0.2, 0.15, 0.25, 0.5, 0.75.
    ///
    /// The table is not sorted: 0.2 stands before 0.15, and the marker functions scan in index order, which
    /// decides their results around these two steps. Entry 5 also says where a decade ends. An application
    /// may write other steps (not while another thread calls a marker function); no function of the library
    /// does.
    static double markers[6];

    ZrUtil() = default;
    ZrUtil(const ZrUtil&) = default;
    ZrUtil(ZrUtil&&) = default;
    ~ZrUtil() = default;

    /// Does nothing: there is nothing to assign.
    ZrUtil& operator=(const ZrUtil&) { return *this; }

    /// Does nothing: there is nothing to move.
    ZrUtil& operator=(ZrUtil&&) noexcept { return *this; }

    /// \name Tolerance tests
    /// Strict inequalities throughout, and false whenever NaN takes part. The difference is formed first and
    /// is rounded to binary64, so `EqualT(1.0, 1.000001)` is true (9.99999999917733e-7 is left) although
    /// `EqualT(0.0, 1e-6)` is false.
    /// @{

    /// |b − a| < `threshold`. Two infinities of the same sign are not equal (their difference is NaN).
    static bool EqualT(double a, double b);
    /// |b − a| < tol. Never true for a \p tol of 0 or below.
    static bool EqualT(double a, double b, double tol);
    /// (b − a) > 1e-6: \p a is below \p b by more than the tolerance.
    static bool LessThanT(double a, double b);
    /// (a − b) > 1e-6: \p a is above \p b by more than the tolerance.
    static bool MoreThanT(double a, double b);

    /// The remainder r = fmod(a, b), or 0.0 when |b − r| < 1e-6.
    ///
    /// A remainder that comes within the tolerance of the divisor from below counts as zero; one just above
    /// zero is returned as it is: FModT(0.9999995, 1) is 0, FModT(1.0000005, 1) is 5e-7. The remainder has
    /// the sign of \p a. NaN for a divisor of 0.
    static double FModT(double a, double b);

    /// `Hypot`, or 0.0 when both |x| and |y| are below 1e-6.
    static double HypotT(double x, double y);
    /// @}

    /// \name Plain arithmetic
    /// @{
    static double Sqr(double x); ///< x·x
    static double Cube(double x); ///< x·(x·x)
    static double Mid(double a, double b); ///< (a + b)·0.5
    /// √(x² + y²). The squares are formed as they are: infinity for components above about 1e154.
    static double Hypot(double x, double y);
    static double Hypot3(double x, double y, double z); ///< √(x² + y² + z²), see `Hypot`
    /// a·w + b·(1 − w): the weight \p w of 1 gives \p a, 0 gives \p b. Weights outside 0 to 1 extrapolate.
    static double Bias(double a, double b, double w);
    /// The value at \p x of the line through (x0, y0) and (x1, y1), also outside [x0, x1].
    /// \p y0 when x1 − x0 is exactly 0.
    static double Interpolate(double x0, double x1, double x, double y0, double y1);
    /// ln(√(x² − 1) + x), meant for \p x of 1 and above. NaN below 1; from −1.4e8 down, where the root
    /// rounds to −x, the logarithm of 0 (−∞), and ∞ once x² overflows.
    static double ACosh(double x);
    /// The angle of (x, y) in radians, −π to π. For an \p x of 0 (of either sign) π/2 when \p y is above 0
    /// and −π/2 otherwise, so ATan2(0, 0) and ATan2(NaN, 0) are −π/2.
    static double ATan2(double y, double x);
    static double D2R(double x); ///< degrees to radians: x·0.017453292519943295
    static double R2D(double x); ///< radians to degrees: x·57.29577951308232
    /// @}

    /// \name Rounding and clipping to a step
    /// A step of 0 is not guarded: the result is NaN. A negative step turns down into up.
    /// @{

    /// floor(x + 0.5): halves go up, also below zero (−2.5 gives −2). The sum is rounded before the floor is
    /// taken: the number just below 0.5 gives 1.
    static double Rnd(double x);
    static double ClipDn(double v, double step); ///< floor(v/step)·step, the multiple at or below \p v
    static double ClipUp(double v, double step); ///< ceil(v/step)·step, the multiple at or above \p v
    static double ClipRnd(double v, double step); ///< floor(v/step + 0.5)·step, the nearest multiple
    /// max(lo, min(v, hi)): limited above first, then below, so \p lo wins when lo > hi. NaN for \p v gives
    /// \p lo.
    static double ClipRng(double v, double lo, double hi);
    /// The smallest power of two that is \p n or more. 0 for 0 and for values above 2^31.
    static unsigned int Pow2Up(unsigned int n);
    /// Whether \p x is an even whole number. False for fractions, NaN and infinities.
    static bool Even(double x);
    /// Not `Even`: true for odd numbers, and also for fractions, NaN and infinities.
    static bool Odd(double x);
    /// Whether a/b is a whole number once rounded to binary64. False for NaN, for an infinite
    /// \p a and for b = 0.
    static bool ExactDivisible(double a, double b);
    /// @}

    /// \name Byte order
    /// The bytes are reversed whatever the order of the host is.
    /// @{
    static unsigned short SwapWord(unsigned short w); ///< the two bytes exchanged
    static unsigned int SwapDWord(unsigned int w); ///< bytes 3, 2, 1, 0 become 0, 1, 2, 3
    /// The four bytes of \p f reversed and taken as a float again, often as a NaN or a denormal number: store
    /// the result, do not calculate with it.
    static float SwapFloat(float f);
    /// @}

    /// \name Angle conventions
    /// A mathematical angle runs anticlockwise from east, a compass heading clockwise from north. The
    /// conversion is its own inverse, hence two names for each function. Results are [0, 360) or [0, 2π) for
    /// angles in that range; an angle above 810° (or 4.5π) gives a negative result, because fmod keeps the
    /// sign of its first argument.
    /// @{
    static double AngleHeadD(double a); ///< fmod(720 − a + 90, 360): east, 0, is 90; north, 90, is 0
    static double HeadAngleD(double h); ///< the same function as `AngleHeadD`
    static double AngleHeadR(double a); ///< fmod(4π − a + π/2, 2π)
    static double HeadAngleR(double h); ///< the same function as `AngleHeadR`
    /// The turn in degrees from bearing \p from to bearing \p to, in [−180, 180), positive to starboard.
    /// A turn of exactly 180 is −180. The bearings may be any finite degrees.
    static double BrgOffsetDegrees(double from, double to);
    /// @}

    /// \name Great circles
    /// On a sphere with a radius of 6,371,000 m; points are latitude and longitude in decimal degrees.
    /// @{

    /// The length in metres of the great circle between two points (haversine formula), 0 to 20,015,087.
    /// Close to the antipode of point 1 the formula is only accurate to 0.3 m, and it gives NaN where
    /// rounding carries the haversine above 1 (4 % of exact antipodes).
    static double LL2LLRng(double lat1, double lon1, double lat2, double lon2);

    /// The true bearing in degrees, [0, 360), at which the great circle to point 2 leaves point 1.
    /// 0 for identical points.
    static double LL2LLBrg(double lat1, double lon1, double lat2, double lon2);

    /// A signed measure, in metres, of how far point 3 lies off the great circle from point 1 towards
    /// point 2.
    ///
    /// asin(sin(θ13 − θ12)·sin(d13))·6.371e6, with d13 the range from point 1 to point 3 in metres and θ the
    /// bearings in degrees. The sines are taken of metres and of degrees, as if they were radians;
    /// applications rely on these values. They are therefore not the geometric cross-track distance: they lie
    /// within ±10,007,544 m, repeat with every 2π metres of d13, and move by up to 6 km for a millimetre of
    /// it.
    static double CrossTrack(double lat1, double lon1, double lat2, double lon2, double lat3, double lon3);

    /// The companion of `CrossTrack` along the track from point 1, in metres from 0 to 20,015,087:
    /// acos(cos(d13)/cos(`CrossTrack`))·6.371e6. The cosines, too, are taken of metres. NaN where the ratio
    /// lies beyond ±1, as it does for about half of all arguments.
    static double AlongTrack(double lat1, double lon1, double lat2, double lon2, double lat3, double lon3);
    /// @}

    /// \name Attitude
    /// Single precision, angles in degrees.
    /// @{

    /// The levelled vertical component of the vector (x, y, z) as a small angle, in degrees.
    ///
    /// The vector is turned by \p ry degrees about the y axis, then by \p rx degrees about the x axis; its z
    /// component, taken as radians, is multiplied by −57.29578.
    static float DeltaHdgD(float rx, float ry, float x, float y, float z);

    /// The two tilt angles in degrees that the accelerations \p ax, \p ay, \p az (any one unit) show.
    ///
    /// Element 0 is atan2(ay, az); for an az of 0 it is 90 if ay > 0, else −90. Element 1 is
    /// atan2(−ax, √(ay² + az²)); for a root of 0 it is 90 if −ax > 0, else −90. Without any acceleration both
    /// are −90.
    static std::tuple<float, float> ImuCalcPRV(float ax, float ay, float az);

    /// One step of a complementary filter: the integrated angles of \p d, weighted with \p alpha, and the
    /// angles of its accelerations, weighted with 1 − alpha.
    ///
    /// With (p0, p1) = `ImuCalcPRV`(d[0], d[1], d[2]):
    ///  - A = (d[3]·57.29577951308232 + ofs0)·alpha + (invert ? −p1 : p1)·(1 − alpha),
    ///  - B = (d[4]·57.29577951308232 + ofs1)·alpha + p0·(1 − alpha),
    ///
    /// computed in double precision and kept as float.
    ///
    /// \param ignored has no effect
    /// \param ofs1 offset of B in degrees, usually the B of the step before
    /// \param ofs0 offset of A in degrees, usually the A of the step before
    /// \return (A wrapped into [0, 360), B, A) in degrees. Below −360 the first element keeps the negative
    /// sign of A
    static std::tuple<float, float, float> ImuUpdateHPR(
        const ZrImuDelta& d, float alpha, float ignored, float ofs1, float ofs0, bool invert);
    /// @}

    /// \name Axis markers
    /// Round values for labelled scales and grids: `markers` times a decade s, the smallest of 0.1, 1, 10,
    /// 100, … with v < markers[5]·s. Values below 0.075, zero and negative ones included, are in the decade
    /// 0.1. NaN, infinities other than −∞ and values beyond the last decade (7.5e307) are returned as they
    /// are.
    /// @{

    /// The first marker in table order that is above \p v. From 0.1·s up to 0.2·s that is 0.2·s: the scan
    /// meets 0.2 before 0.15.
    static double NextMkr(double v);
    /// The marker below \p v: scanning down the table, the lower neighbour of the first pair with
    /// upper ≥ v > lower. Above 0.15·s up to 0.25·s that is 0.15·s. A value at or below 0.1·s is returned
    /// unchanged.
    static double PrevMkr(double v);
    /// The nearer of the first marker in table order above \p v and of the entry before it (for the first
    /// entry the last one of the decade below). A tie goes to the upper one.
    static double NearestMkr(double v);
    /// @}

    /// \name Byte stuffing
    /// Frames without zero bytes, by blocks: a code byte, then code − 1 data bytes, none of them zero; a code
    /// below 255 stands for one zero byte after them, 255 for 254 data bytes and no zero. A frame is one byte
    /// longer than the data, and one more for each block of 254. A zero byte can then separate frames on a
    /// line. Neither function returns a length.
    ///
    /// \code
    /// std::vector<unsigned char> line(len + len / 254 + 3, 0);
    /// ZrUtil::StuffData(data, len, line.data());
    /// // In a buffer of zeros the frame ends at the first one.
    /// const unsigned int frame = std::find(line.begin(), line.end(), 0) - line.begin();
    /// std::vector<unsigned char> back(frame);
    /// ZrUtil::UnStuffData(line.data(), frame, back.data());
    /// // The data are followed by one zero.
    /// back.resize(len);
    /// \endcode
    /// @{

    /// Encodes \p len bytes at \p src into \p dst, which must have room for len + len/254 + 3 bytes and must
    /// not overlap \p src.
    ///
    /// Behind the last block one byte is left as it was, then a zero byte is written. The frame ends before
    /// the byte left alone. An empty input, or one whose end would lie beyond the address range, gives 0x01,
    /// a byte left alone, 0x00.
    static void StuffData(const unsigned char* src, unsigned int len, unsigned char* dst);

    /// Decodes the frame of \p len bytes at \p src into \p dst, which needs room for \p len bytes and may be
    /// \p src itself.
    ///
    /// A code of 0 ends the decoding. Where the input ends inside a block, what is there of it is copied and
    /// no zero follows. Every complete block with a code below 255 is followed by a zero byte, the last one
    /// too: the caller drops it to have back what was encoded. Nothing is written beyond the decoded bytes,
    /// and any input is safe.
    static void UnStuffData(const unsigned char* src, unsigned int len, unsigned char* dst);
    /// @}
};
