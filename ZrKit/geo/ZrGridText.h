#pragma once

#include <QString>

/// Reads a position in the UTM grid out of a text; the part of `ZrPositionText` for grid values.
///
/// Zone and band letter or hemisphere stand in front or behind ("30U", "zone 30 north"), then easting and
/// northing, or the other way round with labels: E, N, mE, mN, "easting", "northing"; ftE and ftN for US
/// survey feet. Commas are decimal, or stand between groups of three, or part the values.
///
/// N behind the zone is the northern hemisphere, which the band N is part of. S is the southern one where the
/// northing cannot lie in the band S (32 to 40 degrees north), else the text is refused: "south" or another
/// letter says what is meant.
class ZrGridText
{
public:
    double lat = 0.0; ///< degrees
    double lng = 0.0; ///< degrees, within ±180
    int zone = 0; ///< 1 to 60
    bool south = false;
    double east = 0.0; ///< metres
    double north = 0.0; ///< metres

    /// Whether \p text is meant as grid values: it holds a number of five figures or more before the point,
    /// or a word or label of the grid.
    static bool IsGrid(const QString& text);

    /// Reads \p text, which is in upper case with plain signs and single blanks. False, with a sentence in
    /// \p error, when it is no position in the grid.
    static bool Parse(const QString& text, ZrGridText& grid, QString& error);
};
