#include "ZrKit/map/ZrMapSplit.h"

#include "ZrKit/map/ZrMapView.h"

#include <cmath>

namespace {

/// Bits of the first part of the scale: with the ordinal's they fit a float, so that their product is exact.
constexpr int scaleBits = 10;

double Ordinal(double value)
{
    return std::round(value / ZrMapSplit::Step) * ZrMapSplit::Step;
}

/// \p value to so many bits.
double Rounded(double value, int bits)
{
    int exponent = 0;
    const double mantissa = std::frexp(value, &exponent);
    return std::ldexp(std::round(std::ldexp(mantissa, bits)), exponent - bits);
}

} // namespace

ZrMapSplit::ZrMapSplit(const ZrMapView& view)
{
    const double perMetre = 1.0 / view.Scale();
    const double high = Rounded(perMetre, scaleBits);
    scale = static_cast<float>(high);
    scaleD = static_cast<float>(perMetre - high);
    const QPointF centre = view.Centre();
    const double highX = Ordinal(centre.x()) * high;
    const double highY = Ordinal(centre.y()) * high;
    originX = static_cast<float>(highX);
    originY = static_cast<float>(highY);
    originXd = static_cast<float>(centre.x() * perMetre - static_cast<double>(originX));
    originYd = static_cast<float>(centre.y() * perMetre - static_cast<double>(originY));
    // The middle of the view is at 0: what comes out instead is the error there.
    float middle[4];
    Split(centre.x(), centre.y(), middle);
    float x = 0.0F;
    float y = 0.0F;
    Project(middle, x, y);
    offX = -x;
    offY = -y;
}

void ZrMapSplit::Split(double x, double y, float* vertex)
{
    const double wholeX = Ordinal(x);
    const double wholeY = Ordinal(y);
    vertex[0] = static_cast<float>(wholeX);
    vertex[1] = static_cast<float>(wholeY);
    vertex[2] = static_cast<float>(x - wholeX);
    vertex[3] = static_cast<float>(y - wholeY);
}

void ZrMapSplit::Project(const float* v, float& x, float& y) const
{
    x = v[0] * scale - originX - originXd + v[0] * scaleD + v[2] * scale + v[2] * scaleD;
    y = v[1] * scale - originY - originYd + v[1] * scaleD + v[3] * scale + v[3] * scaleD;
    x = x + offX;
    y = y + offY;
}
