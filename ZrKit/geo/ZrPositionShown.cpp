#include "ZrKit/geo/ZrPositionShown.h"

#include "ZrUtil/ZrUnits.h"

#include <QRegularExpression>

#include <cmath>

namespace {

/// The library writes decimal degrees with eight places, to a millimetre; the last is left out.
QString ToCentimetres(const QString& text, double degrees)
{
    const eGeoStyle style = ZrUnits::GetGeoStyle();
    if (style != eGeoSignedDeg && style != eGeoDeg)
        return text;
    const double size = std::fabs(degrees);
    QString shown = text;
    return shown.replace(QString::number(size, 'f', 8), QString::number(size, 'f', ZrPositionShown::Places));
}

} // namespace

QStringList ZrPositionShown::Parts(double lat, double lng)
{
    if (!std::isfinite(lat) || !std::isfinite(lng))
        return {};
    if (ZrUnits::GetGeoStyle() != eGeoUTM)
        return {
            ToCentimetres(ZrUnits::GetLatString(lat), lat), ToCentimetres(ZrUnits::GetLngString(lng), lng)};
    // From -180 on and below 180: the zones begin anew there.
    const double turned = std::remainder(lng, 360.0);
    const double near = turned == 180.0 ? -180.0 : turned;
    ZrProj projection = ZrUnits::utm;
    projection.SetupUTM(lat, near);
    double east = 0.0;
    double north = 0.0;
    ZrUnits::LLToEN(ZrUnits::wgs84, projection, lat, near, east, north);
    const int zone = static_cast<int>(std::floor((near + 180.0) / 6.0)) + 1;
    return {QStringLiteral("%1 %2").arg(zone).arg(lat < 0.0 ? QLatin1Char('S') : QLatin1Char('N')),
        ZrUnits::GetEString(east, 2, true), ZrUnits::GetNString(north, 2, true)};
}

QString ZrPositionShown::Text(double lat, double lng)
{
    return Parts(lat, lng).join(QStringLiteral("  "));
}

QString ZrPositionShown::OfDetail(const QString& detail)
{
    static const QRegularExpression noted(
        QStringLiteral("^(-?[0-9]{1,2}\\.[0-9]{7}), (-?[0-9]{1,3}\\.[0-9]{7})$"));
    const QRegularExpressionMatch match = noted.match(detail.trimmed());
    const double lat = match.captured(1).toDouble();
    const double lng = match.captured(2).toDouble();
    if (!match.hasMatch() || std::fabs(lat) > 90.0 || std::fabs(lng) > 180.0)
        return detail;
    return Text(lat, lng);
}
