#pragma once

#include "ZrKit/geo/ZrPositionText.h"
#include "ZrUtil/ZrGeoStyle.h"

#include <QJsonObject>
#include <QString>

#include <optional>
#include <string>

/// What the verbs of `zr geo` have in common.
namespace cli {

/// "51.123456789, -1.250000000": a tenth of a millimetre.
QString degrees_text(double lat, double lng);

/// Both values in a style of latitudes and longitudes, with a comma between.
QString styled_text(double lat, double lng, eGeoStyle style);

/// A position in the grid.
struct GridPosition
{
    int zone = 0; ///< 1 to 60
    bool south = false;
    double east = 0.0; ///< metres
    double north = 0.0; ///< metres
    double convergence = 0.0; ///< degrees
};

/// Projects into \p zone, or into that of the position when it is 0. False with a sentence in \p error where
/// the grid does not reach.
bool to_grid(double lat, double lng, int zone, GridPosition& grid, QString& error);

/// "30 north 621500.31 mE 5707150.02 mN", or in feet; `ZrPositionText` reads it.
QString grid_text(const GridPosition& grid, int precision);

/// "30 north".
QString zone_text(int zone, bool south);

/// Keys of a position: `latitude`, `longitude`.
void add_position(QJsonObject& object, double lat, double lng);

/// Keys of a position in the grid: `zone`, `hemisphere`, `east`, `north`, metres.
void add_grid(QJsonObject& object, int zone, bool south, double east, double north);

/// A style by its name on the command line; nothing for another word.
std::optional<eGeoStyle> parse_style(const std::string& name);

/// Check of an option value: an empty text when it is a style, else what is wrong with it.
std::string check_style(const std::string& name);

/// What `parse_style` knows, for help texts.
extern const char* const styleNames;

} // namespace cli
