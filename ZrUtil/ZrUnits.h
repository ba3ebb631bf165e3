#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrGeoStyle.h"
#include "ZrUtil/ZrProj.h"
#include "ZrUtil/ZrSphd.h"

#include <QChar>
#include <QString>

namespace zr {
class ZrSetModule;
}

/// Display units, the text of values and positions, and the grid of the process.
///
/// Values inside the system are SI: metres, metres per second, degrees Celsius, decimal degrees (north and
/// east positive). What a person sees is value × scale (+ offset for temperatures) with the label of the
/// unit; what a person types goes the other way.
///
/// All members are static. The units, the spheroid and the projection are process-wide and unguarded: they
/// belong to the user-interface thread. The conversions that take a `ZrSphd` and a `ZrProj`, `Convergence`,
/// `CalcGAnm`, `Bar2M` and `GetValue` touch none of them and may be called from any thread.
///
/// Nothing is thrown or reported. NaN goes through as NaN; a text that does not parse gives 0.0 with `ok`
/// false. Numbers are written and read with a decimal point in every locale. "Fixed-point" rounds exact
/// halves away from zero and keeps the sign of a negative zero result ("-0.00").
class ZR_UTIL_EXPORT ZrUnits
{
public:
    using eGeoStyle = ::eGeoStyle;

    /// \name State of the process
    /// @{
    static ZrSphd wgs84; ///< the spheroid of all conversions that name none
    static ZrProj utm; ///< the projection of all conversions that name none; `CalcUTM` moves its zone
    static QChar degrees; ///< the degree sign, U+00B0

    static QString tinyLengthUnit; ///< label of small lengths, "mm"
    static double tinyLengthScale; ///< display units per metre, 1000
    static QString shortLengthUnit; ///< label of depths and distances on screen, "m"
    static double shortLengthScale; ///< display units per metre, 1
    static QString longLengthUnit; ///< label of long distances, "km"
    static double longLengthScale; ///< display units per metre, 0.001
    static QString temperatureUnit; ///< "°C"
    static double temperatureScale; ///< display = °C × scale + offset, 1
    static double temperatureOffset; ///< 0
    static QString speedUnit; ///< "m/s"
    static double speedScale; ///< display units per m/s, 1
    static eGeoStyle geoStyle; ///< how positions are written, `eGeoDMSFrac`
    /// @}

    /// \name Units
    /// Each sets a label and a scale, nothing else.
    /// @{
    static void SetShortLengthToM(); ///< "m", 1
    static void SetShortLengthToFt(); ///< "ft", 3.28084
    static void SetShortLengthToCustom(QString unit, double scale);
    static void SetLongLengthToKm(); ///< "km", 0.001
    static void SetLongLengthToMiles(); ///< "mi", 0.000621371
    static void SetLongLengthToCustom(QString unit, double scale);
    static void SetSpeedToMPS(); ///< "m/s", 1
    static void SetSpeedToKts(); ///< "kts", 1.94384
    static void SetSpeedToKPH(); ///< "mph", 3.6: the number is km/h
    static void SetSpeedToMPH(); ///< "mph", 2.23694
    static void SetSpeedToFPS(); ///< "fps", 3.28084
    static void SetSpeedToCustom(QString unit, double scale);
    static void SetTempToDegreesC(); ///< "°C", 1, offset 0
    static void SetTempToDegreesF(); ///< "°F", 1.8, offset 32
    static void SetTempToCustom(QString unit, double scale, double offset);

    static void SetToMetric(); ///< m, mm, km, °C, m/s; the style of positions stays
    static void SetToImperial(); ///< ft, in, mi, °F, kts; the style of positions stays
    /// @}

    /// \name Labels
    /// @{
    static QString GetShortLengthUnits();
    static QString GetTinyLengthUnits();
    static QString GetLongLengthUnits();
    static QString GetSpeedUnits();
    static QString GetTemperatureUnits();

    /// The label that `GetLengthString` would use for this length in metres.
    static QString GetLengthUnits(double metres);

    static double GetLengthScale(); ///< `shortLengthScale`
    /// @}

    /// \name Values as text
    /// Fixed-point text of a value in SI units with \p precision decimals; with units the label follows the
    /// number directly ("12.50m").
    /// @{
    static QString GetShortLengthString(double metres, int precision, bool withUnits);
    static QString GetTinyLengthString(double metres, int precision, bool withUnits);
    static QString GetLongLengthString(double metres, int precision, bool withUnits);
    static QString GetSpeedString(double metresPerSecond, int precision, bool withUnits);
    static QString GetTemperatureString(double celsius, int precision, bool withUnits);

    /// The long form when the length is more than 1 long unit, else the short form.
    static QString GetLengthString(double metres, int precision, bool withUnits);

    /// An angle in degrees, as it is; with units the degree sign follows.
    static QString GetAngleString(double angle, int precision, bool withUnits);
    /// @}

    /// \name Text as values
    /// The number in \p text in SI units. The text must be the bare number: a label makes it fail.
    /// @{
    static double GetShortLengthValue(QString text, bool& ok);
    static double GetTinyLengthValue(QString text, bool& ok);
    static double GetLongLengthValue(QString text, bool& ok);
    static double GetSpeedValue(QString text, bool& ok);
    static double GetTemperatureValue(QString text, bool& ok);
    /// @}

    /// \name Positions as text
    /// @{
    static eGeoStyle GetGeoStyle();
    static void SetGeoStyle(eGeoStyle style);

    /// A latitude in degrees in the current style: empty for `eGeoUTM`, "Error" for a value that is no style.
    ///
    /// Minutes and seconds are rounded without carrying: 59.9996 seconds are written 60.000.
    static QString GetLatString(double lat);

    /// A longitude in degrees in the current style: "Error" for `eGeoUTM` and for a value that is no style.
    static QString GetLngString(double lng);

    /// Signed degrees of a latitude or longitude in any of the styles, as a person types it: with a sign or a
    /// letter N, E, S, W in front or behind, as degrees, degrees and minutes or degrees, minutes and seconds,
    /// parted by the degree sign, ' and ", or by spaces ("51 7 24.444 N"). Behind a degree sign a number of
    /// 60 and more is read as MMSS ("51°3045").
    ///
    /// A sign and a letter do not cancel: "-51 S" is −51. There is no check of the range; seconds of 60 are
    /// refused behind a degree sign.
    static double GetValue(QString text, bool& ok);
    /// @}

    /// \name Grid
    /// Transverse Mercator by the series of the Ordnance Survey form ("A guide to coordinate systems in Great
    /// Britain", annexe C). Grid values are within 0.4 mm of the exact projection up to 3 degrees from the
    /// central meridian, within 12 mm up to 6; positions from grid values within 0.9 mm and 28 mm.
    ///
    /// Angles are degrees, grid values metres. Grid text is in US survey feet (1200/3937 m) when the short
    /// length unit is "ft", in metres otherwise.
    /// @{

    /// Moves `utm` to the UTM zone that holds the position, see `ZrProj::SetupUTM`.
    static void CalcUTM(double lat, double lng);

    /// Latitude and longitude to grid. At the poles the tangent of the latitude is finite.
    static void LLToEN(
        const ZrSphd& spheroid, const ZrProj& proj, double lat, double lng, double& east, double& north);

    /// The same in `wgs84` and `utm`. Does not choose the zone: who wants that of the position calls
    /// `CalcUTM` before.
    static void LLToEN(double lat, double lng, double& east, double& north);

    /// Grid to latitude and longitude. The latitude is iterated until its arc is within 1 mm of the northing,
    /// which leaves less than 1e-10 degrees. The seventh-order term has the coefficient 622, which recorded
    /// grid values rely on.
    static void EN2LL(
        const ZrSphd& spheroid, const ZrProj& proj, double east, double north, double& lat, double& lng);

    /// The same in `wgs84` and `utm`.
    static void EN2LL(double east, double north, double& lat, double& lng);

    /// Grid convergence in degrees: the angle from grid north to true north, positive east of the central
    /// meridian on the northern hemisphere. Not meant for the poles.
    static double Convergence(const ZrSphd& spheroid, const ZrProj& proj, double lat, double lng);

    /// Moves `utm` to the zone of the position and writes both grid values with two decimals and label
    /// ("651409.90 mE").
    static void GetENStrings(double lat, double lng, QString& east, QString& north);

    static QString GetEString(double east, int precision, bool withUnits); ///< an easting in metres
    static QString GetNString(double north, int precision, bool withUnits); ///< a northing in metres
    static QString GetEUnits(); ///< "ftE" or "mE"
    static QString GetNUnits(); ///< "ftN" or "mN"

    /// A typed grid value in metres: the first word of \p text is the number, what follows it is ignored.
    static double GetGridValue(QString text, bool& ok);
    /// @}

    /// \name Physics
    /// @{

    /// Normal gravity in m/s²: 9.780318 (1 + 0.0052788 sin²φ + 2.36e-5 sin⁴φ). The sine is taken of the
    /// value as passed: pass the latitude in radians.
    static double CalcGAnm(double lat);

    /// Depth in metres of seawater under a pressure in bar. Formula of Saunders and Fofonoff with a second
    /// coefficient of 2.512e-5. The sine is taken of the latitude as passed: pass it in radians.
    static double Bar2M(double bar, double lat);
    /// @}

    /// Binds the labels, the scales, the style of positions, and as sub-items "spheroid" (`wgs84`) and
    /// "projection" (`utm`). Whoever loads them recalculates the value inputs on screen.
    static void serialise(zr::ZrSetModule& module);
};
