#include "ZrUtil/ZrUtil.h"

#include <QMatrix4x4>
#include <QVector3D>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr double degToRad = 0.017453292519943295;
constexpr double radToDeg = 57.29577951308232;

} // namespace

// The order is intentional: the marker functions scan by index, and 0.2 is to be met before 0.15.
double ZrUtil::markers[6] = {0.1, 0.2, 0.15, 0.25, 0.5, 0.75};

bool ZrUtil::EqualT(double a, double b)
{
    return std::fabs(b - a) < threshold;
}

bool ZrUtil::EqualT(double a, double b, double tol)
{
    return std::fabs(b - a) < tol;
}

bool ZrUtil::LessThanT(double a, double b)
{
    return (b - a) > threshold;
}

bool ZrUtil::MoreThanT(double a, double b)
{
    return (a - b) > threshold;
}

double ZrUtil::FModT(double a, double b)
{
    const double r = std::fmod(a, b);
    return std::fabs(b - r) < threshold ? 0.0 : r;
}

double ZrUtil::HypotT(double x, double y)
{
    if (std::fabs(x) < threshold && std::fabs(y) < threshold)
        return 0.0;
    return Hypot(x, y);
}

double ZrUtil::Sqr(double x)
{
    return x * x;
}

double ZrUtil::Cube(double x)
{
    return x * (x * x);
}

double ZrUtil::Mid(double a, double b)
{
    return (a + b) * 0.5;
}

double ZrUtil::Hypot(double x, double y)
{
    return std::sqrt(x * x + y * y);
}

double ZrUtil::Hypot3(double x, double y, double z)
{
    return std::sqrt(x * x + y * y + z * z);
}

double ZrUtil::Bias(double a, double b, double w)
{
    return a * w + b * (1.0 - w);
}

double ZrUtil::Interpolate(double x0, double x1, double x, double y0, double y1)
{
    const double width = x1 - x0;
    if (width == 0.0)
        return y0;
    return (x - x0) / width * (y1 - y0) + y0;
}

double ZrUtil::ACosh(double x)
{
    return std::log(std::sqrt(x * x - 1.0) + x);
}

double ZrUtil::ATan2(double y, double x)
{
    if (x == 0.0)
        return y > 0.0 ? pi_2 : -pi_2;
    return std::atan2(y, x);
}

double ZrUtil::D2R(double x)
{
    return x * degToRad;
}

double ZrUtil::R2D(double x)
{
    return x * radToDeg;
}

double ZrUtil::Rnd(double x)
{
    return std::floor(x + 0.5);
}

double ZrUtil::ClipDn(double v, double step)
{
    return std::floor(v / step) * step;
}

double ZrUtil::ClipUp(double v, double step)
{
    return std::ceil(v / step) * step;
}

double ZrUtil::ClipRnd(double v, double step)
{
    return std::floor(v / step + 0.5) * step;
}

double ZrUtil::ClipRng(double v, double lo, double hi)
{
    return std::max(lo, std::min(v, hi));
}

unsigned int ZrUtil::Pow2Up(unsigned int n)
{
    // Every bit below the highest one of n - 1 is set. The arithmetic wraps, so 0 gives 0.
    unsigned int m = n - 1u;
    m |= m >> 1;
    m |= m >> 2;
    m |= m >> 4;
    m |= m >> 8;
    m |= m >> 16;
    return m + 1u;
}

bool ZrUtil::Even(double x)
{
    const double half = x / 2.0;
    return (half - std::floor(half)) == 0.0;
}

bool ZrUtil::Odd(double x)
{
    return !Even(x);
}

bool ZrUtil::ExactDivisible(double a, double b)
{
    const double q = a / b;
    return (q - std::floor(q)) == 0.0;
}

unsigned short ZrUtil::SwapWord(unsigned short w)
{
    return static_cast<unsigned short>((w & 0xFFu) * 256u + (w >> 8));
}

unsigned int ZrUtil::SwapDWord(unsigned int w)
{
    return (w << 24) | ((w & 0xFF00u) << 8) | ((w >> 8) & 0xFF00u) | (w >> 24);
}

float ZrUtil::SwapFloat(float f)
{
    static_assert(sizeof(float) == sizeof(unsigned int));
    unsigned int bits;
    std::memcpy(&bits, &f, sizeof bits);
    bits = SwapDWord(bits);
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

double ZrUtil::AngleHeadD(double a)
{
    return std::fmod(720.0 - a + 90.0, 360.0);
}

double ZrUtil::HeadAngleD(double h)
{
    return AngleHeadD(h);
}

double ZrUtil::AngleHeadR(double a)
{
    return std::fmod(pi4 - a + pi_2, pi2);
}

double ZrUtil::HeadAngleR(double h)
{
    return AngleHeadR(h);
}

double ZrUtil::BrgOffsetDegrees(double from, double to)
{
    const double d = std::fmod(to - from, 360.0);
    return std::fmod(d + 540.0, 360.0) - 180.0;
}

float ZrUtil::DeltaHdgD(float rx, float ry, float x, float y, float z)
{
    // Each rotation is multiplied from the right, so the vector is turned about y first.
    QMatrix4x4 level;
    level.rotate(rx, 1.0f, 0.0f, 0.0f);
    level.rotate(ry, 0.0f, 1.0f, 0.0f);
    const QVector3D v = level.mapVector(QVector3D(x, y, z));
    return v.z() * -57.29578f;
}

std::tuple<float, float> ZrUtil::ImuCalcPRV(float ax, float ay, float az)
{
    // In double precision, so that the squares of small accelerations do not vanish.
    const double p0 = R2D(ATan2(ay, az));
    const double p1 = R2D(ATan2(-ax, Hypot(ay, az)));
    return {static_cast<float>(p0), static_cast<float>(p1)};
}

std::tuple<float, float, float> ZrUtil::ImuUpdateHPR(
    const ZrImuDelta& d, float alpha, float /*ignored*/, float ofs1, float ofs0, bool invert)
{
    const double weight = alpha;
    const auto [p0, p1] = ImuCalcPRV(d[0], d[1], d[2]);
    const double tilt = invert ? -p1 : p1;
    const float a = static_cast<float>((R2D(d[3]) + ofs0) * weight + tilt * (1.0 - weight));
    const float b = static_cast<float>((R2D(d[4]) + ofs1) * weight + p0 * (1.0 - weight));

    // Rounding to single precision may carry an angle just below a full turn up to 360, which is 0.
    const float wrapped = static_cast<float>(std::fmod(a + 360.0, 360.0));
    return {wrapped == 360.0f ? 0.0f : wrapped, b, a};
}
