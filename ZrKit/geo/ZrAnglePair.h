#pragma once

#include <QString>

/// Reads a latitude and a longitude out of one text; the part of `ZrPositionText` for geographic positions.
///
/// Each of the two is degrees, degrees and minutes, or degrees, minutes and seconds, with the signs ° ' " or
/// colons or blanks between, and a sign or one of the letters N, E, S, W in front or behind. They are parted
/// by a comma, a semicolon, a slash, or by blanks, letters and signs alone.
///
/// Every way to part the text and to read its commas is tried; it is a pair when exactly one of them makes
/// sense.
class ZrAnglePair
{
public:
    double lat = 0.0; ///< degrees, within ±90
    double lng = 0.0; ///< degrees, within ±180

    /// Reads \p text, which is in upper case with plain signs and single blanks. False, with a sentence in
    /// \p error, when it is no pair.
    static bool Parse(const QString& text, ZrAnglePair& pair, QString& error);
};
