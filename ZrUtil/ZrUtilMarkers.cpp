#include "ZrUtil/ZrUtil.h"

#include <cmath>

namespace {

/// The decade of \p v: the smallest of 0.1, 1, 10, … that puts \p v below the last marker. Infinite where
/// there is none, which also ends the search for an infinite \p v.
double Decade(double v)
{
    double s = 0.1;
    while (v >= ZrUtil::markers[5] * s && std::isfinite(s))
        s *= 10.0;
    return s;
}

} // namespace

double ZrUtil::NextMkr(double v)
{
    const double s = Decade(v);
    if (!std::isfinite(s))
        return v;
    for (const double marker : markers) {
        if (marker * s > v)
            return marker * s;
    }
    return v;
}

double ZrUtil::PrevMkr(double v)
{
    const double s = Decade(v);
    if (!std::isfinite(s))
        return v;
    for (int i = 5; i >= 1; --i) {
        if (markers[i] * s >= v && v > markers[i - 1] * s)
            return markers[i - 1] * s;
    }
    return v;
}

double ZrUtil::NearestMkr(double v)
{
    const double s = Decade(v);
    if (!std::isfinite(s))
        return v;
    double prev = markers[5] * s / 10.0;
    for (const double marker : markers) {
        const double c = marker * s;
        if (c > v)
            return std::fabs(v - c) <= std::fabs(v - prev) ? c : prev;
        prev = c;
    }
    return v;
}
