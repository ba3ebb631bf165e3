#include "ZrUtil/ZrUnits.h"

#include <QStringList>

#include <cmath>

namespace {

constexpr double RadiansPerDegree = 0.017453292519943295;
constexpr double DegreesPerRadian = 57.29577951308232;
constexpr double SurveyFootMetres = 0.3048006096012192; // 1200/3937

struct SinCos
{
    double sin;
    double cos;
};

SinCos SinCosOf(double angle)
{
    return {std::sin(angle), std::cos(angle)}; // one call of sincos where the compiler knows it
}

/// Sine and cosine of an angle that is \p small radians, at most 0.01, larger than that of \p at.
SinCos Turned(const SinCos& at, double small)
{
    const double square = small * small;
    const double sin = small * (1.0 - square / 6.0 * (1.0 - square / 20.0));
    const double cos = 1.0 - square / 2.0 * (1.0 - square / 12.0 * (1.0 - square / 30.0));
    return {at.sin * cos + at.cos * sin, at.cos * cos - at.sin * sin};
}

/// The meridional arc M from the latitude origin, whose constants one conversion computes once.
///
/// sin k(φ − φ0) cos k(φ + φ0) is half of sin 2kφ − sin 2kφ0; what belongs to the origin is one constant.
class MeridionalArc
{
public:
    MeridionalArc(const ZrSphd& spheroid, const ZrProj& proj)
        : m_origin(proj.latOrigin)
        , m_axis(spheroid.semiMinor * proj.scaleFactor)
    {
        const double n
            = (spheroid.semiMajor - spheroid.semiMinor) / (spheroid.semiMajor + spheroid.semiMinor);
        const double n2 = n * n;
        const double n3 = n2 * n;
        m_c0 = 1.0 + n + 1.25 * n2 + 1.25 * n3;
        m_c2 = 0.5 * (3.0 * n + 3.0 * n2 + 2.625 * n3);
        m_c4 = 0.5 * (1.875 * n2 + 1.875 * n3);
        m_c6 = 0.5 * 1.4583333333333333 * n3; // 35/24
        m_atOrigin = m_origin == 0.0 ? 0.0 : Waves(Doubled(SinCosOf(m_origin)));
    }

    /// Metres, for \p phi in radians, whose sine and cosine are \p at.
    double operator()(double phi, const SinCos& at) const
    {
        return m_axis * (m_c0 * (phi - m_origin) + (Waves(Doubled(at)) - m_atOrigin));
    }

    /// How the arc goes on from a latitude: by `slope` × d + `bend` × d² metres.
    struct Expansion
    {
        double slope;
        double bend;
    };

    Expansion ExpansionAt(const SinCos& at) const
    {
        const SinCos two = Doubled(at);
        const double cos4 = (two.cos - two.sin) * (two.cos + two.sin);
        const double cos6 = two.cos * (4.0 * two.cos * two.cos - 3.0);
        return {m_axis * (m_c0 - 2.0 * m_c2 * two.cos + 4.0 * m_c4 * cos4 - 6.0 * m_c6 * cos6),
            m_axis * two.sin * (2.0 * m_c2 - 16.0 * m_c4 * two.cos)};
    }

private:
    static SinCos Doubled(const SinCos& at)
    {
        return {2.0 * at.sin * at.cos, (at.cos - at.sin) * (at.cos + at.sin)};
    }

    /// What the arc has beside its linear part, from sine and cosine of twice the latitude.
    double Waves(const SinCos& two) const
    {
        return two.sin * (2.0 * m_c4 * two.cos - m_c2 - m_c6 * (3.0 - 4.0 * two.sin * two.sin));
    }

    double m_origin; // radians
    double m_axis; // metres
    double m_c0;
    double m_c2;
    double m_c4;
    double m_c6;
    double m_atOrigin;
};

struct Footpoint
{
    double phi; // radians
    SinCos at;
};

/// The iteration of `FindFootpoint` where it is not the usual one: spheroids unlike the earth, northings
/// beyond it.
Footpoint FindUnusualFootpoint(const MeridionalArc& arc, double aF, double dN, double phi)
{
    constexpr int mostPasses = 100000001;
    double mark = phi;
    int markPass = 0;
    for (int pass = 1;; ++pass) {
        const double r = dN - arc(phi, SinCosOf(phi));
        phi = r / aF + phi;
        // A residual that is not finite never becomes small: further passes would change nothing.
        if (std::fabs(r) < 0.001 || !std::isfinite(r) || pass >= mostPasses)
            return {phi, SinCosOf(phi)};
        // For huge northings rounding keeps the residual large, and the passes run in a circle that they
        // never leave. Whole rounds of it are left out.
        if (phi == mark)
            pass += (mostPasses - pass) / (pass - markPass) * (pass - markPass);
        if ((pass & (pass - 1)) == 0) {
            mark = phi;
            markPass = pass;
        }
    }
}

/// The latitude whose arc is \p dN, iterated from \p phi until the residual is below 1 mm or for 100,000,001
/// passes; \p aF scales residuals to angles. The last correction is applied.
///
/// The first correction is within 0.005 radians on the earth, the second within 3e-5. Sine and cosine are
/// therefore taken once and turned by the first; from the second on the arc is expanded, which is exact to
/// 2e-8 m.
Footpoint FindFootpoint(const MeridionalArc& arc, double aF, double dN, double phi)
{
    const double perRadius = 1.0 / aF;
    const SinCos at = SinCosOf(phi);
    const double first = dN - arc(phi, at);
    const double correction = first * perRadius;
    if (!(std::fabs(correction) <= 0.01 && std::fabs(phi) <= 8.0))
        return FindUnusualFootpoint(arc, aF, dN, phi);
    const double base = correction + phi;
    const SinCos baseAt = Turned(at, correction);
    if (std::fabs(first) < 0.001)
        return {base, baseAt};

    const double second = dN - arc(base, baseAt);
    const MeridionalArc::Expansion expansion = arc.ExpansionAt(baseAt);
    double r = second;
    double beyond = 0.0; // the latitude less that of the base
    for (int pass = 2; pass < 10; ++pass) {
        beyond = r * perRadius + beyond;
        if (!(std::fabs(beyond) <= 1e-4))
            break;
        if (std::fabs(r) < 0.001)
            return {base + beyond, Turned(baseAt, beyond)};
        r = second - beyond * (expansion.slope + beyond * expansion.bend);
    }
    return FindUnusualFootpoint(arc, aF, dN, phi);
}

bool InFeet()
{
    return ZrUnits::shortLengthUnit == QLatin1String("ft");
}

QString GridText(double metres, int precision, bool withUnits, const QString& unit)
{
    const QString number = QString::number(InFeet() ? metres * 3937.0 / 1200.0 : metres, 'f', precision);
    return withUnits ? number + QLatin1Char(' ') + unit : number;
}

} // namespace

void ZrUnits::CalcUTM(double lat, double lng)
{
    utm.SetupUTM(lat, lng);
}

void ZrUnits::LLToEN(
    const ZrSphd& spheroid, const ZrProj& proj, double lat, double lng, double& east, double& north)
{
    const double e2 = spheroid.eccentricitySqr;
    const double phi = lat * RadiansPerDegree;
    const double lambda = lng * RadiansPerDegree;
    const SinCos at = SinCosOf(phi);
    const double arc = MeridionalArc(spheroid, proj)(phi, at);
    const double s = at.sin;
    const double c = at.cos;
    const double t = c == 0.0 ? 100000.0 : s / c;
    const double t2 = t * t;
    const double t4 = t2 * t2;
    const double c3 = c * c * c;
    const double c5 = c3 * c * c;

    const double w = 1.0 - e2 * s * s;
    const double nu = spheroid.semiMajor * proj.scaleFactor / std::sqrt(w);
    const double rho = (1.0 - e2) * nu / w;
    const double ratio = nu / rho;
    const double eta2 = ratio - 1.0;
    const double p = lambda - proj.lngOrigin;
    const double p2 = p * p;
    const double p3 = p2 * p;

    north = (proj.falseNorth + arc) + (nu / 2.0) * s * c * p2
        + (nu / 24.0) * s * c3 * (5.0 - t2 + 9.0 * eta2) * (p2 * p2)
        + (nu / 720.0) * s * c5 * (61.0 - 58.0 * t2 + t4) * (p3 * p3);
    east = proj.falseEast + nu * c * p + (nu / 6.0) * c3 * (ratio - t2) * p3
        + (nu / 120.0) * c5 * (5.0 - 18.0 * t2 + t4 + 14.0 * eta2 - 58.0 * t2 * eta2) * (p3 * p2);
}

void ZrUnits::LLToEN(double lat, double lng, double& east, double& north)
{
    LLToEN(wgs84, utm, lat, lng, east, north);
}

void ZrUnits::EN2LL(
    const ZrSphd& spheroid, const ZrProj& proj, double east, double north, double& lat, double& lng)
{
    const double e2 = spheroid.eccentricitySqr;
    const double aF = spheroid.semiMajor * proj.scaleFactor;
    const double dN = north - proj.falseNorth;
    const double dE = east - proj.falseEast;

    const Footpoint foot = FindFootpoint(MeridionalArc(spheroid, proj), aF, dN, dN / aF + proj.latOrigin);
    const double phi = foot.phi;
    const double s = foot.at.sin;
    const double c = foot.at.cos;
    const double w = 1.0 - e2 * s * s;
    const double nu = aF / std::sqrt(w);
    const double rho = (1.0 - e2) * nu / w;
    const double ratio = nu / rho;
    const double eta2 = ratio - 1.0;
    const double sec = c == 0.0 ? 1e11 : 1.0 / c;
    const double t = c == 0.0 ? 100000.0 : s / c;
    const double t2 = t * t;
    const double t4 = t2 * t2;
    const double t6 = t4 * t2;
    const double nu2 = nu * nu;
    const double nu3 = nu2 * nu;
    const double nu5 = nu3 * nu2;
    const double nu7 = nu5 * nu2;

    const double vii = t / (2.0 * rho * nu);
    const double viii = t / (24.0 * rho * nu3) * (5.0 + 3.0 * t2 + eta2 - 9.0 * t2 * eta2);
    const double ix = t / (720.0 * rho * nu5) * (61.0 + 90.0 * t2 + 45.0 * t4);
    const double x = sec / nu;
    const double xi = sec / (6.0 * nu3) * (ratio + 2.0 * t2);
    const double xii = sec / (120.0 * nu5) * (5.0 + 28.0 * t2 + 24.0 * t4);
    // 622 by design: grid values already recorded must convert back to the same positions.
    const double xiia = sec / (5040.0 * nu7) * (61.0 + 622.0 * t2 + 1320.0 * t4 + 720.0 * t6);

    const double dE2 = dE * dE;
    const double dE3 = dE2 * dE;
    const double dE4 = dE2 * dE2;
    lat = (phi - vii * dE2 + viii * dE4 - ix * (dE4 * dE2)) * DegreesPerRadian;
    lng = (proj.lngOrigin + x * dE - xi * dE3 + xii * (dE3 * dE2) - xiia * (dE4 * dE3)) * DegreesPerRadian;
}

void ZrUnits::EN2LL(double east, double north, double& lat, double& lng)
{
    EN2LL(wgs84, utm, east, north, lat, lng);
}

double ZrUnits::Convergence(const ZrSphd& spheroid, const ZrProj& proj, double lat, double lng)
{
    const double e2 = spheroid.eccentricitySqr;
    const double phi = lat * RadiansPerDegree;
    const double c = std::cos(phi);
    const double l = (lng * RadiansPerDegree - proj.lngOrigin) * c;
    const double t = std::sin(phi) / c;
    return t * (l + (l * l * l / 3.0) * (1.0 + 3.0 * e2 * c * c / (1.0 - e2))) * DegreesPerRadian;
}

void ZrUnits::GetENStrings(double lat, double lng, QString& east, QString& north)
{
    CalcUTM(lat, lng);
    double e = 0.0;
    double n = 0.0;
    LLToEN(wgs84, utm, lat, lng, e, n);
    east = GetEString(e, 2, true);
    north = GetNString(n, 2, true);
}

QString ZrUnits::GetEString(double east, int precision, bool withUnits)
{
    return GridText(east, precision, withUnits, GetEUnits());
}

QString ZrUnits::GetNString(double north, int precision, bool withUnits)
{
    return GridText(north, precision, withUnits, GetNUnits());
}

QString ZrUnits::GetEUnits()
{
    return InFeet() ? QStringLiteral("ftE") : QStringLiteral("mE");
}

QString ZrUnits::GetNUnits()
{
    return InFeet() ? QStringLiteral("ftN") : QStringLiteral("mN");
}

double ZrUnits::GetGridValue(QString text, bool& ok)
{
    ok = false;
    const QStringList pieces = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (pieces.isEmpty())
        return 0.0;
    const double value = pieces.front().toDouble(&ok);
    if (!ok)
        return 0.0;
    return InFeet() ? value * SurveyFootMetres : value;
}
