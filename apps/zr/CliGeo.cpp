#include "CliGeo.h"

#include "CliText.h"
#include "ZrUtil/ZrUnits.h"

#include <cmath>

namespace {

struct StyleName
{
    const char* name;
    eGeoStyle style;
};

constexpr StyleName styles[] = {
    {"signed-deg", eGeoSignedDeg},
    {"signed-degmin", eGeoSignedDegMin},
    {"signed-dms", eGeoSignedDMS},
    {"signed-dmsfrac", eGeoSignedDMSFrac},
    {"deg", eGeoDeg},
    {"degmin", eGeoDegMin},
    {"dms", eGeoDMS},
    {"dmsfrac", eGeoDMSFrac},
    {"utm", eGeoUTM},
};

/// Where `ZrPositionText` reads positions in the grid.
constexpr double farthest = 9.0; // degrees from the central meridian
constexpr double smallestEast = 100000.0; // metres
constexpr double largestEast = 900000.0;

double CentralMeridian(int zone)
{
    return 6.0 * zone - 183.0;
}

} // namespace

const char* const cli::styleNames
    = "deg, degmin, dms, dmsfrac (with letters), signed-deg, signed-degmin,\nsigned-dms, signed-dmsfrac, utm";

QString cli::degrees_text(double lat, double lng)
{
    return QStringLiteral("%1, %2").arg(lat, 0, 'f', 9).arg(lng, 0, 'f', 9);
}

QString cli::styled_text(double lat, double lng, eGeoStyle style)
{
    ZrUnits::SetGeoStyle(style);
    return ZrUnits::GetLatString(lat) + QStringLiteral(", ") + ZrUnits::GetLngString(lng);
}

bool cli::to_grid(double lat, double lng, int zone, GridPosition& grid, QString& error)
{
    if (lat < -80.0 || lat > 84.0) {
        error = QStringLiteral(
            "The latitude %1 is beyond the grid, which goes from 80 degrees south to 84 north")
                    .arg(lat, 0, 'g', 10);
        return false;
    }
    // 180 east is 180 west, in zone 1.
    grid.zone = zone != 0 ? zone : static_cast<int>(std::fmod(std::floor((lng + 180.0) / 6.0), 60.0)) + 1;
    grid.south = lat < 0.0;
    const double offset = std::remainder(lng - CentralMeridian(grid.zone), 360.0);
    const double near = CentralMeridian(grid.zone) + offset;
    ZrProj proj;
    proj.SetupUTM(lat, CentralMeridian(grid.zone));
    ZrUnits::LLToEN(ZrSphd(), proj, lat, near, grid.east, grid.north);
    if (std::fabs(offset) > farthest || grid.east < smallestEast || grid.east > largestEast) {
        error = QStringLiteral(
            "The position is %1 degrees from the middle of zone %2, which does not reach so far")
                    .arg(std::fabs(offset), 0, 'f', 1)
                    .arg(grid.zone);
        return false;
    }
    grid.convergence = ZrUnits::Convergence(ZrSphd(), proj, lat, near);
    return true;
}

QString cli::grid_text(const GridPosition& grid, int precision)
{
    return QStringLiteral("%1 %2 %3")
        .arg(zone_text(grid.zone, grid.south), ZrUnits::GetEString(grid.east, precision, true),
            ZrUnits::GetNString(grid.north, precision, true));
}

QString cli::zone_text(int zone, bool south)
{
    return QStringLiteral("%1 %2").arg(zone).arg(south ? QLatin1String("south") : QLatin1String("north"));
}

void cli::add_position(QJsonObject& object, double lat, double lng)
{
    object.insert(QStringLiteral("latitude"), json_number(lat));
    object.insert(QStringLiteral("longitude"), json_number(lng));
}

void cli::add_grid(QJsonObject& object, int zone, bool south, double east, double north)
{
    object.insert(QStringLiteral("zone"), zone);
    object.insert(QStringLiteral("hemisphere"), south ? QStringLiteral("south") : QStringLiteral("north"));
    object.insert(QStringLiteral("east"), json_number(east));
    object.insert(QStringLiteral("north"), json_number(north));
}

std::optional<eGeoStyle> cli::parse_style(const std::string& name)
{
    for (const StyleName& style : styles) {
        if (name == style.name)
            return style.style;
    }
    return {};
}

std::string cli::check_style(const std::string& name)
{
    if (parse_style(name))
        return {};
    std::string known;
    for (const StyleName& style : styles)
        known += (known.empty() ? "" : ", ") + std::string(style.name);
    return "\"" + name + "\" is no style: " + known;
}
