#include "ZrUtil/ZrUtil.h"

#include <cmath>

namespace {

constexpr double earthRadius = 6.371e6; // metres; the sphere of all functions in this file

} // namespace

double ZrUtil::LL2LLRng(double lat1, double lon1, double lat2, double lon2)
{
    const double phi1 = D2R(lat1);
    const double phi2 = D2R(lat2);
    const double sinHalfLon = std::sin(D2R(lon2 - lon1) * 0.5);
    const double sinHalfLat = std::sin(D2R(lat2 - lat1) * 0.5);

    // Haversine: a is the square of half the chord on the unit sphere, 2c the angle it subtends.
    const double a = std::cos(phi1) * std::cos(phi2) * Sqr(sinHalfLon) + Sqr(sinHalfLat);
    const double c = std::atan2(std::sqrt(a), std::sqrt(1.0 - a));
    return (c + c) * earthRadius;
}

double ZrUtil::LL2LLBrg(double lat1, double lon1, double lat2, double lon2)
{
    const double phi1 = D2R(lat1);
    const double phi2 = D2R(lat2);
    const double dLon = D2R(lon2 - lon1);

    // For equal points both products of the difference are the same number, so the bearing is atan2(0, 0), 0.
    const double east = std::sin(dLon) * std::cos(phi2);
    const double north = std::sin(phi2) * std::cos(phi1) - std::sin(phi1) * std::cos(phi2) * std::cos(dLon);
    return std::fmod(R2D(std::atan2(east, north)) + 360.0, 360.0);
}

double ZrUtil::CrossTrack(double lat1, double lon1, double lat2, double lon2, double lat3, double lon3)
{
    // The sine is taken of the range in metres, and of the bearing difference in degrees; applications rely
    // on these values.
    const double s = std::sin(LL2LLRng(lat1, lon1, lat3, lon3));
    const double brg13 = LL2LLBrg(lat1, lon1, lat3, lon3);
    const double brg12 = LL2LLBrg(lat1, lon1, lat2, lon2);
    return std::asin(std::sin(brg13 - brg12) * s) * earthRadius;
}

double ZrUtil::AlongTrack(double lat1, double lon1, double lat2, double lon2, double lat3, double lon3)
{
    // Both cosines are taken of metres, like the sine of CrossTrack.
    const double c = std::cos(LL2LLRng(lat1, lon1, lat3, lon3));
    const double x = CrossTrack(lat1, lon1, lat2, lon2, lat3, lon3);
    return std::acos(c / std::cos(x)) * earthRadius;
}
