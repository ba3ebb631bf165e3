#pragma once

#include "ZrUtil/ZrProj.h"
#include "ZrUtil/ZrSphd.h"

#include <cmath>

/// The series of the Ordnance Survey form, term by term as they are printed, with nothing shared or
/// rearranged: what the conversions of the library are compared with.
namespace reference {

constexpr double radians = 0.017453292519943295;
constexpr double degrees = 57.29577951308232;

inline double Arc(const ZrSphd& s, const ZrProj& p, double phi)
{
    const double n = (s.semiMajor - s.semiMinor) / (s.semiMajor + s.semiMinor);
    const double n2 = std::pow(n, 2);
    const double n3 = std::pow(n, 3);
    const double phi0 = p.latOrigin;
    return s.semiMinor * p.scaleFactor
        * ((1.0 + n + 5.0 / 4.0 * n2 + 5.0 / 4.0 * n3) * (phi - phi0)
            - (3.0 * n + 3.0 * n2 + 21.0 / 8.0 * n3) * std::sin(phi - phi0) * std::cos(phi + phi0)
            + (15.0 / 8.0 * n2 + 15.0 / 8.0 * n3) * std::sin(2.0 * (phi - phi0))
                * std::cos(2.0 * (phi + phi0))
            - 35.0 / 24.0 * n3 * std::sin(3.0 * (phi - phi0)) * std::cos(3.0 * (phi + phi0)));
}

struct Radii
{
    double nu;
    double rho;
    double eta2;
};

inline Radii RadiiAt(const ZrSphd& s, const ZrProj& p, double phi)
{
    const double w = 1.0 - s.eccentricitySqr * std::pow(std::sin(phi), 2);
    Radii radii;
    radii.nu = s.semiMajor * p.scaleFactor / std::sqrt(w);
    radii.rho = (1.0 - s.eccentricitySqr) * radii.nu / w;
    radii.eta2 = radii.nu / radii.rho - 1.0;
    return radii;
}

/// The coefficients of the grid formulas, in the order and with the names of the published example.
struct Coefficients
{
    double m, one, two, three, threeA, four, five, six;
};

inline Coefficients CoefficientsAt(const ZrSphd& s, const ZrProj& p, double phi)
{
    const Radii r = RadiiAt(s, p, phi);
    const double sine = std::sin(phi);
    const double cosine = std::cos(phi);
    const double t = cosine == 0.0 ? 100000.0 : sine / cosine;
    Coefficients c;
    c.m = Arc(s, p, phi);
    c.one = c.m + p.falseNorth;
    c.two = r.nu / 2.0 * sine * cosine;
    c.three = r.nu / 24.0 * sine * std::pow(cosine, 3) * (5.0 - std::pow(t, 2) + 9.0 * r.eta2);
    c.threeA = r.nu / 720.0 * sine * std::pow(cosine, 5) * (61.0 - 58.0 * std::pow(t, 2) + std::pow(t, 4));
    c.four = r.nu * cosine;
    c.five = r.nu / 6.0 * std::pow(cosine, 3) * (r.nu / r.rho - std::pow(t, 2));
    c.six = r.nu / 120.0 * std::pow(cosine, 5)
        * (5.0 - 18.0 * std::pow(t, 2) + std::pow(t, 4) + 14.0 * r.eta2 - 58.0 * std::pow(t, 2) * r.eta2);
    return c;
}

inline void LLToEN(const ZrSphd& s, const ZrProj& p, double lat, double lng, double& east, double& north)
{
    const Coefficients c = CoefficientsAt(s, p, lat * radians);
    const double l = lng * radians - p.lngOrigin;
    north = c.one + c.two * std::pow(l, 2) + c.three * std::pow(l, 4) + c.threeA * std::pow(l, 6);
    east = p.falseEast + c.four * l + c.five * std::pow(l, 3) + c.six * std::pow(l, 5);
}

/// Returns the number of passes.
inline int EN2LL(const ZrSphd& s, const ZrProj& p, double east, double north, double& lat, double& lng)
{
    const double aF = s.semiMajor * p.scaleFactor;
    const double dN = north - p.falseNorth;
    const double dE = east - p.falseEast;
    double phi = dN / aF + p.latOrigin;
    double residual = 0.0;
    int passes = 0;
    do {
        residual = dN - Arc(s, p, phi);
        phi = residual / aF + phi;
        ++passes;
    } while (!(std::fabs(residual) < 0.001) && passes < 1000);

    const Radii r = RadiiAt(s, p, phi);
    const double cosine = std::cos(phi);
    const double sec = cosine == 0.0 ? 1e11 : 1.0 / cosine;
    const double t = cosine == 0.0 ? 100000.0 : std::sin(phi) / cosine;
    const double t2 = std::pow(t, 2);
    const double t4 = std::pow(t, 4);
    const double t6 = std::pow(t, 6);
    const double vii = t / (2.0 * r.rho * r.nu);
    const double viii
        = t / (24.0 * r.rho * std::pow(r.nu, 3)) * (5.0 + 3.0 * t2 + r.eta2 - 9.0 * t2 * r.eta2);
    const double ix = t / (720.0 * r.rho * std::pow(r.nu, 5)) * (61.0 + 90.0 * t2 + 45.0 * t4);
    const double x = sec / r.nu;
    const double xi = sec / (6.0 * std::pow(r.nu, 3)) * (r.nu / r.rho + 2.0 * t2);
    const double xii = sec / (120.0 * std::pow(r.nu, 5)) * (5.0 + 28.0 * t2 + 24.0 * t4);
    const double xiia = sec / (5040.0 * std::pow(r.nu, 7)) * (61.0 + 622.0 * t2 + 1320.0 * t4 + 720.0 * t6);
    lat = (phi - vii * std::pow(dE, 2) + viii * std::pow(dE, 4) - ix * std::pow(dE, 6)) * degrees;
    lng = (p.lngOrigin + x * dE - xi * std::pow(dE, 3) + xii * std::pow(dE, 5) - xiia * std::pow(dE, 7))
        * degrees;
    return passes;
}

} // namespace reference
