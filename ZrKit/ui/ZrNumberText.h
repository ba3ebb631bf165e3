#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>

/// Numbers for people, as they are after rounding: nothing is "-0.0", and no heading "360.0". Values that are
/// not finite are empty texts. Any thread.
struct ZR_KIT_EXPORT ZrNumberText
{
    /// "-3.2"; "0.0" for what rounds to nothing from below, too.
    static QString Of(double value, int decimals);

    /// Degrees of a turn, from 0 to below 360: "359.9", and "0.0" for 359.97.
    static QString Heading(double degrees, int decimals);

    /// With its sign, "+4.5", "−2", "0": one decimal where the number is not whole. The minus is the sign
    /// U+2212.
    static QString Signed(double value);

    /// \p number, which may be a number that something else has written, without the minus of a zero.
    static QString WithoutMinusZero(const QString& number);
};
