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

    /// The meridional arc M from the latitude origin, whose constants one conversion computes once.
    class MeridionalArc
    {
    public:
        MeridionalArc(const ZrSphd& spheroid, const ZrProj& proj)
            : m_origin(proj.latOrigin)
            , m_axis(spheroid.semiMinor * proj.scaleFactor)
        {
            const double n = (spheroid.semiMajor - spheroid.semiMinor) / (spheroid.semiMajor + spheroid.semiMinor);
            const double n2 = n * n;
            const double n3 = n2 * n;
            m_c0 = 1.0 + n + 1.25 * n2 + 1.25 * n3;
            m_c2 = 3.0 * n + 3.0 * n2 + 2.625 * n3;
            m_c4 = 1.875 * n2 + 1.875 * n3;
            m_c6 = 1.4583333333333333 * n3; // 35/24
        }

        /// Metres, for \p phi in radians. The multiples of the two angles come from one sine and cosine each.
        double operator()(double phi) const
        {
            const double difference = phi - m_origin;
            const SinCos d = SinCosOf(difference);
            const SinCos s = m_origin == 0.0 ? d : SinCosOf(phi + m_origin);
            const double sin2 = 2.0 * d.sin * d.cos;
            const double cos2 = (s.cos - s.sin) * (s.cos + s.sin);
            const double sin3 = d.sin * (3.0 - 4.0 * d.sin * d.sin);
            const double cos3 = s.cos * (4.0 * s.cos * s.cos - 3.0);
            return m_axis * (m_c0 * difference - m_c2 * d.sin * s.cos + m_c4 * sin2 * cos2 - m_c6 * sin3 * cos3);
        }

    private:
        double m_origin; // radians
        double m_axis; // metres
        double m_c0;
        double m_c2;
        double m_c4;
        double m_c6;
    };

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
    const double arc = MeridionalArc(spheroid, proj)(phi);

    const SinCos at = SinCosOf(phi);
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

    const MeridionalArc arc(spheroid, proj);
    double phi = dN / aF + proj.latOrigin;
    for (int passes = 0; passes <= 100000000;) {
        const double r = dN - arc(phi);
        phi = r / aF + phi;
        ++passes;
        // A residual that is not finite never becomes small: further passes would change nothing.
        if (std::fabs(r) < 0.001 || !std::isfinite(r))
            break;
    }

    const SinCos at = SinCosOf(phi);
    const double s = at.sin;
    const double c = at.cos;
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
