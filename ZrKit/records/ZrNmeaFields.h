#pragma once

#include "ZrKit/records/ZrNmeaSentence.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>
#include <QDate>

#include <initializer_list>
#include <limits>

/// \file
/// Single values out of the fields of a sentence, for the decoder of the kit only. Pure functions; what is
/// empty, malformed or out of range comes back as NaN (numbers), 255 (small numbers) or an invalid date.

namespace zr::nmea {

constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();
constexpr double metresPerSecondPerKnot = 1852.0 / 3600.0;
constexpr double metresPerSecondPerKmh = 1000.0 / 3600.0;
constexpr double metresPerFoot = 0.3048;
constexpr double metresPerFathom = 1.8288;
constexpr double secondsPerDay = 86400.0;

/// The first of the values that is known, NaN when none is.
double first_known(std::initializer_list<double> values);

/// \p value in binary32; NaN where it does not fit.
float single(double value);

/// \p degrees when it lies in 0 to 360, otherwise NaN.
double angle(double degrees);

/// \p degrees turned into 0 (included) to 360 (excluded).
double wrapped(double degrees);

/// The number at \p i when its letter in the field behind is \p letter or empty, otherwise NaN.
double measured(const ZrNmeaSentence& s, int i, char letter);

/// Degrees, east positive, of a correction at \p i and its letter E or W; NaN unless both are there.
double correction(const ZrNmeaSentence& s, int i);

/// Degrees from "DDMM.mmm" or "DDDMM.mmm" at \p i and the hemisphere letter behind it, of which \p negative
/// gives a negative value; NaN for minutes of 60 and more and beyond \p limit degrees.
double coordinate(const ZrNmeaSentence& s, int i, char positive, char negative, double limit);

/// A whole number of 0 to 254 at \p i, 255 for anything else.
u8 small_number(const ZrNmeaSentence& s, int i);

/// The quality of GGA for a mode letter of GLL and RMC; 255 when there is none or an unknown one.
u8 quality_of_mode(const QByteArray& mode);

/// Seconds of the day from "hhmmss" or "hhmmss.sss"; NaN when it is none. A leap second (60) is the first
/// second of the next minute.
double seconds_of_day(const QByteArray& text);

/// A date from digits. Years of two digits are 1980 to 2079 because satellite navigation began in 1980; years
/// before 1970 are those of a clock that was never set and give an invalid date.
QDate date(const QByteArray& day, const QByteArray& month, const QByteArray& year);

} // namespace zr::nmea
