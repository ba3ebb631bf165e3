#include "ZrUtil/ZrUnits.h"

#include "ZrUtil/ZrSetModule.h"

#include <cmath>

ZrSphd ZrUnits::wgs84;
ZrProj ZrUnits::utm;
QChar ZrUnits::degrees = QChar(0x00B0);

QString ZrUnits::tinyLengthUnit = QStringLiteral("mm");
double ZrUnits::tinyLengthScale = 1000.0;
QString ZrUnits::shortLengthUnit = QStringLiteral("m");
double ZrUnits::shortLengthScale = 1.0;
QString ZrUnits::longLengthUnit = QStringLiteral("km");
double ZrUnits::longLengthScale = 0.001;
QString ZrUnits::temperatureUnit = QStringLiteral(u"\u00B0C");
double ZrUnits::temperatureScale = 1.0;
double ZrUnits::temperatureOffset = 0.0;
QString ZrUnits::speedUnit = QStringLiteral("m/s");
double ZrUnits::speedScale = 1.0;
eGeoStyle ZrUnits::geoStyle = eGeoDMSFrac;

namespace {

QString Fixed(double value, int precision, bool withUnits, const QString& unit)
{
    const QString number = QString::number(value, 'f', precision);
    return withUnits ? number + unit : number;
}

/// The number of a text, 0.0 when it does not parse (Qt gives an infinity for some such texts).
double Number(const QString& text, bool& ok)
{
    const double number = text.toDouble(&ok);
    return ok ? number : 0.0;
}

double Unscaled(const QString& text, bool& ok, double scale, double offset)
{
    const double number = Number(text, ok);
    return ok ? (number - offset) / scale : 0.0;
}

} // namespace

void ZrUnits::SetShortLengthToM()
{
    SetShortLengthToCustom(QStringLiteral("m"), 1.0);
}

void ZrUnits::SetShortLengthToFt()
{
    SetShortLengthToCustom(QStringLiteral("ft"), 3.28084);
}

void ZrUnits::SetShortLengthToCustom(QString unit, double scale)
{
    shortLengthUnit = unit;
    shortLengthScale = scale;
}

void ZrUnits::SetLongLengthToKm()
{
    SetLongLengthToCustom(QStringLiteral("km"), 0.001);
}

void ZrUnits::SetLongLengthToMiles()
{
    SetLongLengthToCustom(QStringLiteral("mi"), 0.000621371);
}

void ZrUnits::SetLongLengthToCustom(QString unit, double scale)
{
    longLengthUnit = unit;
    longLengthScale = scale;
}

void ZrUnits::SetSpeedToMPS()
{
    SetSpeedToCustom(QStringLiteral("m/s"), 1.0);
}

void ZrUnits::SetSpeedToKts()
{
    SetSpeedToCustom(QStringLiteral("kts"), 1.94384);
}

void ZrUnits::SetSpeedToKPH()
{
    SetSpeedToCustom(QStringLiteral("mph"), 3.6);
}

void ZrUnits::SetSpeedToMPH()
{
    SetSpeedToCustom(QStringLiteral("mph"), 2.23694);
}

void ZrUnits::SetSpeedToFPS()
{
    SetSpeedToCustom(QStringLiteral("fps"), 3.28084);
}

void ZrUnits::SetSpeedToCustom(QString unit, double scale)
{
    speedUnit = unit;
    speedScale = scale;
}

void ZrUnits::SetTempToDegreesC()
{
    SetTempToCustom(QStringLiteral(u"\u00B0C"), 1.0, 0.0);
}

void ZrUnits::SetTempToDegreesF()
{
    SetTempToCustom(QStringLiteral(u"\u00B0F"), 1.8, 32.0);
}

void ZrUnits::SetTempToCustom(QString unit, double scale, double offset)
{
    temperatureUnit = unit;
    temperatureScale = scale;
    temperatureOffset = offset;
}

void ZrUnits::SetToMetric()
{
    SetShortLengthToM();
    tinyLengthUnit = QStringLiteral("mm");
    tinyLengthScale = 1000.0;
    SetLongLengthToKm();
    SetTempToDegreesC();
    SetSpeedToMPS();
}

void ZrUnits::SetToImperial()
{
    SetShortLengthToFt();
    tinyLengthUnit = QStringLiteral("in");
    tinyLengthScale = 39.37008;
    SetLongLengthToMiles();
    SetTempToDegreesF();
    SetSpeedToKts();
}

QString ZrUnits::GetShortLengthUnits()
{
    return shortLengthUnit;
}

QString ZrUnits::GetTinyLengthUnits()
{
    return tinyLengthUnit;
}

QString ZrUnits::GetLongLengthUnits()
{
    return longLengthUnit;
}

QString ZrUnits::GetSpeedUnits()
{
    return speedUnit;
}

QString ZrUnits::GetTemperatureUnits()
{
    return temperatureUnit;
}

QString ZrUnits::GetLengthUnits(double metres)
{
    return metres * longLengthScale > 1.0 ? longLengthUnit : shortLengthUnit;
}

double ZrUnits::GetLengthScale()
{
    return shortLengthScale;
}

QString ZrUnits::GetShortLengthString(double metres, int precision, bool withUnits)
{
    return Fixed(metres * shortLengthScale, precision, withUnits, shortLengthUnit);
}

QString ZrUnits::GetTinyLengthString(double metres, int precision, bool withUnits)
{
    return Fixed(metres * tinyLengthScale, precision, withUnits, tinyLengthUnit);
}

QString ZrUnits::GetLongLengthString(double metres, int precision, bool withUnits)
{
    return Fixed(metres * longLengthScale, precision, withUnits, longLengthUnit);
}

QString ZrUnits::GetSpeedString(double metresPerSecond, int precision, bool withUnits)
{
    return Fixed(metresPerSecond * speedScale, precision, withUnits, speedUnit);
}

QString ZrUnits::GetTemperatureString(double celsius, int precision, bool withUnits)
{
    return Fixed(celsius * temperatureScale + temperatureOffset, precision, withUnits, temperatureUnit);
}

QString ZrUnits::GetLengthString(double metres, int precision, bool withUnits)
{
    return metres * longLengthScale > 1.0 ? GetLongLengthString(metres, precision, withUnits)
                                          : GetShortLengthString(metres, precision, withUnits);
}

QString ZrUnits::GetAngleString(double angle, int precision, bool withUnits)
{
    return Fixed(angle, precision, withUnits, degrees);
}

double ZrUnits::GetShortLengthValue(QString text, bool& ok)
{
    return Unscaled(text, ok, shortLengthScale, 0.0);
}

double ZrUnits::GetTinyLengthValue(QString text, bool& ok)
{
    return Unscaled(text, ok, tinyLengthScale, 0.0);
}

double ZrUnits::GetLongLengthValue(QString text, bool& ok)
{
    return Unscaled(text, ok, longLengthScale, 0.0);
}

double ZrUnits::GetSpeedValue(QString text, bool& ok)
{
    return Unscaled(text, ok, speedScale, 0.0);
}

double ZrUnits::GetTemperatureValue(QString text, bool& ok)
{
    return Unscaled(text, ok, temperatureScale, temperatureOffset);
}

double ZrUnits::CalcGAnm(double lat)
{
    const double s2 = std::sin(lat) * std::sin(lat);
    return 9.780318 * (1.0 + 0.0052788 * s2 + 2.36e-5 * s2 * s2);
}

double ZrUnits::Bar2M(double bar, double lat)
{
    const double p = 10.0 * bar; // decibar
    const double x = std::sin(lat);
    const double x2 = x * x;
    const double gravity = 9.780318 * (1.0 + 0.0052788 * x2 + 2.36e-5 * x2 * x2) + 1.092e-5 * bar;
    return (9.72659 * p - 2.512e-5 * p * p + 2.279e-10 * p * p * p - 1.82e-15 * p * p * p * p) / gravity;
}

void ZrUnits::serialise(zr::ZrSetModule& module)
{
    module.item(QStringLiteral("length unit (short)"), shortLengthUnit);
    module.item(QStringLiteral("length unit (tiny)"), tinyLengthUnit);
    module.item(QStringLiteral("length unit (long)"), longLengthUnit);
    module.item(QStringLiteral("temperature unit"), temperatureUnit);
    module.item(QStringLiteral("speed unit"), speedUnit);
    module.item(QStringLiteral("length scale (tiny)"), tinyLengthScale);
    module.item(QStringLiteral("length scale (short)"), shortLengthScale);
    module.item(QStringLiteral("length scale (long)"), longLengthScale);
    module.item(QStringLiteral("temperature scale"), temperatureScale);
    module.item(QStringLiteral("temperature offset"), temperatureOffset);
    module.item(QStringLiteral("speed scale"), speedScale);
    int style = geoStyle;
    module.item(QStringLiteral("geo style"), style);
    geoStyle = static_cast<eGeoStyle>(style);
    module.sub_item(QStringLiteral("spheroid"), [](zr::ZrSetModule& part) { wgs84.serialise(part); });
    module.sub_item(QStringLiteral("projection"), [](zr::ZrSetModule& part) { utm.serialise(part); });
}
