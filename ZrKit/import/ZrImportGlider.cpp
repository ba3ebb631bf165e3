#include "ZrKit/import/ZrImportGlider.h"

#include "ZrKit/import/ZrImportTime.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrVehicleRecord.h"

#include <QCoreApplication>

#include <cmath>
#include <limits>

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr u32 RepeatedPosition = 1; // bit 0 of `ZrNavRecord::flags`

QStringList requiredColumns()
{
    return {QStringLiteral("Timestamp"), QStringLiteral("Lat"), QStringLiteral("Lon")};
}

/// \p degrees brought to 0 up to, but not including, 360; NaN stays NaN.
double wrapped(double degrees)
{
    const double rest = std::fmod(degrees, 360.0);
    return rest < 0.0 ? rest + 360.0 : rest;
}

} // namespace

bool ZrImportGlider::Fits(const QByteArray& head)
{
    const QStringList names = HeaderNames(head);
    for (const QString& name : requiredColumns()) {
        if (!names.contains(name, Qt::CaseInsensitive))
            return false;
    }
    return names.contains(QStringLiteral("NavState"), Qt::CaseInsensitive)
        || names.contains(QStringLiteral("Depth"), Qt::CaseInsensitive);
}

bool ZrImportGlider::Open(const QString& path, const ZrImportOptions& options, QString* error)
{
    m_report.format = QStringLiteral("glider");
    m_source = options.source;
    if (!OpenTable(path, requiredColumns(), error))
        return false;
    FindColumns();
    return true;
}

void ZrImportGlider::FindColumns()
{
    Columns& c = m_columns;
    c.time = Column(QStringLiteral("Timestamp"));
    c.lat = Column(QStringLiteral("Lat"));
    c.lon = Column(QStringLiteral("Lon"));
    c.heading = Column(QStringLiteral("Heading"));
    c.declination = Column(QStringLiteral("Declination"));
    c.pitch = Column(QStringLiteral("Pitch"));
    c.roll = Column(QStringLiteral("Roll"));
    c.depth = Column(QStringLiteral("Depth"));
    c.altitude = Column(QStringLiteral("Altitude"));
    c.navState = Column(QStringLiteral("NavState"));
    c.securityLevel = Column(QStringLiteral("SecurityLevel"));
    c.temperature = Column(QStringLiteral("Temperature"));
    c.pressure = Column(QStringLiteral("Pa"));
    c.voltage = Column(QStringLiteral("Voltage"));
    c.desiredHeading = Column(QStringLiteral("DesiredH"));
    c.ballastCommand = Column(QStringLiteral("BallastCmd"));
    c.ballastPosition = Column(QStringLiteral("BallastPos"));
    c.linearCommand = Column(QStringLiteral("LinCmd"));
    c.linearPosition = Column(QStringLiteral("LinPos"));
    c.angularCommand = Column(QStringLiteral("AngCmd"));
    c.angularPosition = Column(QStringLiteral("AngPos"));
}

bool ZrImportGlider::ReadMore()
{
    if (!NextRow())
        return false;
    const double time = Time();
    ZrNavRecord nav = Navigation();
    const ZrVehicleRecord vehicle = Vehicle();
    if (!RowIsSound())
        return true;
    MarkRepeated(nav);
    Push(nav, time);
    Push(vehicle, time);
    return true;
}

double ZrImportGlider::Time()
{
    const std::string_view text = Text(m_columns.time);
    double time = NaN;
    if (text.empty() || zr::read_day_first_time(text, time) != text.size())
        Spoil(QCoreApplication::translate("ZrImportGlider", "%1 is no date and time")
                  .arg(Quoted(m_columns.time)));
    return time;
}

double ZrImportGlider::Angle(int column, double limit)
{
    const double value = Number(column);
    if (std::isnan(value))
        return NaN;
    const double degrees = std::floor(std::fabs(value) / 100.0);
    const double minutes = std::fabs(value) - 100.0 * degrees;
    const double angle = degrees + minutes / 60.0;
    if (minutes >= 60.0)
        Spoil(QCoreApplication::translate("ZrImportGlider", "%1 has 60 or more minutes").arg(Quoted(column)));
    else if (angle > limit)
        Spoil(QCoreApplication::translate("ZrImportGlider", "%1 lies beyond %2 degrees")
                  .arg(Quoted(column))
                  .arg(limit));
    return std::copysign(angle, value);
}

ZrNavRecord ZrImportGlider::Navigation()
{
    ZrNavRecord nav;
    nav.latitude = Angle(m_columns.lat, 90.0);
    nav.longitude = Angle(m_columns.lon, 180.0);
    if (nav.latitude == 0.0 && nav.longitude == 0.0) {
        Remark(QCoreApplication::translate("ZrImportGlider", "the position is 0,0: taken as not known"));
        nav.latitude = NaN;
        nav.longitude = NaN;
    }
    nav.heading = static_cast<float>(wrapped(Number(m_columns.heading) + Number(m_columns.declination)));
    nav.pitch = static_cast<float>(Number(m_columns.pitch));
    nav.roll = static_cast<float>(Number(m_columns.roll));
    nav.depth = static_cast<float>(Number(m_columns.depth));
    const double altitude = Number(m_columns.altitude);
    if (altitude >= 0.0)
        nav.altitude = static_cast<float>(altitude);
    return nav;
}

ZrVehicleRecord ZrImportGlider::Vehicle()
{
    const auto number = [this](int column) { return static_cast<float>(Number(column)); };
    ZrVehicleRecord vehicle;
    vehicle.navState = Count(m_columns.navState);
    vehicle.securityLevel = Count(m_columns.securityLevel);
    vehicle.temperature = number(m_columns.temperature);
    vehicle.pressure = number(m_columns.pressure);
    vehicle.voltage = number(m_columns.voltage);
    vehicle.declination = number(m_columns.declination);
    vehicle.desiredHeading = number(m_columns.desiredHeading);
    vehicle.ballastCommand = number(m_columns.ballastCommand);
    vehicle.ballastPosition = number(m_columns.ballastPosition);
    vehicle.linearCommand = number(m_columns.linearCommand);
    vehicle.linearPosition = number(m_columns.linearPosition);
    vehicle.angularCommand = number(m_columns.angularCommand);
    vehicle.angularPosition = number(m_columns.angularPosition);
    return vehicle;
}

void ZrImportGlider::MarkRepeated(ZrNavRecord& nav)
{
    // Comparisons with NaN are false: neither the first row nor one without position or depth is marked.
    const bool same = nav.latitude == m_lastLatitude && nav.longitude == m_lastLongitude;
    if (same && static_cast<double>(nav.depth) > SubmergedDepth)
        nav.flags |= RepeatedPosition;
    m_lastLatitude = nav.latitude;
    m_lastLongitude = nav.longitude;
}
