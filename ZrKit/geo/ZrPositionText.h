#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>

#include <limits>

/// A position as people paste it: from a chart plotter, a message, a spreadsheet, a web page.
///
/// Two kinds of text are read:
/// - Latitude and longitude, in this order unless letters or the words "lat" and "lon" say otherwise
///   (`ZrAnglePair`): "51.5, -1.25", "51° 7' 24.444" N 1° 30' W", "N51 7.4 W1 30", "51,5; -1,25". Every style
///   of `ZrUnits` is among them; 60 seconds or minutes, which those may show, are carried.
/// - Zone, easting and northing of the UTM grid (`ZrGridText`): "30U 444500 5551200", "30 north 444500 mE
///   5551200 mN". Feet are US survey feet.
///
/// Typographic signs count as the plain ones: primes and curly quotes, º, the minus sign and dashes, blanks
/// of any kind; upper and lower case are the same. A decimal comma is taken where only one reading is left.
/// What can be read in two ways is refused, with both of them in the message.
///
/// Positions are WGS 84 and within ±90 and ±180 degrees. Any thread; the state of `ZrUnits` is not touched.
class ZR_KIT_EXPORT ZrPositionText
{
public:
    double lat = std::numeric_limits<double>::quiet_NaN(); ///< degrees, north positive
    double lng = std::numeric_limits<double>::quiet_NaN(); ///< degrees, east positive

    bool isGrid = false; ///< it was given as grid values, which are those below

    int zone = 0; ///< 1 to 60
    bool south = false; ///< of the equator
    double east = std::numeric_limits<double>::quiet_NaN(); ///< metres
    double north = std::numeric_limits<double>::quiet_NaN(); ///< metres

    /// Reads \p text. False when it is no position on the earth; then \p position stays as it was and \p
    /// error (may be null) gets a sentence that says what is wrong.
    static bool Parse(const QString& text, ZrPositionText& position, QString* error = nullptr);
};
