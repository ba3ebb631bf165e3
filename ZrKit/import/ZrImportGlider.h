#pragma once

#include "ZrKit/import/ZrImportCsv.h"

#include <limits>

struct ZrNavRecord;
struct ZrVehicleRecord;

/// Navigation log of an underwater glider: a table with semicolons, one row every few seconds.
///
/// Each row gives a `ZrNavRecord` and a `ZrVehicleRecord` of the time in its column `Timestamp`
/// (`dd/MM/yyyy hh:mm:ss`, UTC). Columns, of which `Timestamp`, `Lat` and `Lon` must be there:
///
/// | Column | In the file | Field |
/// |---|---|---|
/// | Lat, Lon | DDMM.mmm, DDDMM.mmm, south and west negative | latitude, longitude |
/// | Heading | degrees from magnetic north | heading, see below |
/// | Declination | degrees, east positive | declination |
/// | Pitch, Roll | degrees, bow up and starboard down positive | pitch, roll |
/// | Depth | metres | depth |
/// | Altitude | metres; a negative one stands for none | altitude |
/// | NavState, SecurityLevel | the vehicle's own numbers | navState, securityLevel |
/// | Temperature, Pa, Voltage | °C, pascal, volt | temperature, pressure, voltage |
/// | DesiredH | degrees | desiredHeading |
/// | BallastCmd, BallastPos | ml | ballastCommand, ballastPosition |
/// | LinCmd, LinPos | mm | linearCommand, linearPosition |
/// | AngCmd, AngPos | degrees | angularCommand, angularPosition |
///
/// The heading of the record is true: the compass heading plus the declination of the same row, brought to
/// 0..360. Without a declination it is not known. An empty field is NaN.
///
/// While submerged the vehicle has no fix and repeats the last position. Bit 0 of the navigation flags says
/// so: the position equals that of the row before and the vehicle is deeper than `SubmergedDepth`. The first
/// row of a file never has it.
///
/// A row with an impossible date, minutes of 60 and more, or a field that is no number is left out.
class ZrImportGlider final : public ZrImportCsv
{
public:
    static constexpr double SubmergedDepth
        = 1.0; ///< metres; below it an unchanged position is a repeated one

    /// True when \p head, the first bytes of a file, begins with the header row of such a table.
    static bool Fits(const QByteArray& head);

protected:
    bool Open(const QString& path, const ZrImportOptions& options, QString* error) override;
    bool ReadMore() override;

private:
    struct Columns
    {
        int time, lat, lon, heading, declination, pitch, roll, depth, altitude;
        int navState, securityLevel, temperature, pressure, voltage, desiredHeading;
        int ballastCommand, ballastPosition, linearCommand, linearPosition, angularCommand, angularPosition;
    };

    void FindColumns();
    double Time();
    double Angle(int column, double limit);
    ZrNavRecord Navigation();
    ZrVehicleRecord Vehicle();
    void MarkRepeated(ZrNavRecord& nav);

    Columns m_columns{};
    double m_lastLatitude = std::numeric_limits<double>::quiet_NaN(); ///< of the row taken last
    double m_lastLongitude = std::numeric_limits<double>::quiet_NaN();
};
