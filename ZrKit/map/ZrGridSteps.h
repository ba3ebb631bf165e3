#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrGeoStyle.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>

#include <vector>

/// Round steps and positions for grids and scales, and the texts of angles on them.
///
/// Lengths are round in any unit: 1, 2, 2.5 and 5 times a power of ten, the axis markers of `ZrUtil` that
/// divide their decade. Angles are whole ticks, for sums and texts to be exact: milliseconds of arc, 1e-5
/// minutes or 1e-8 degrees, by the style of positions. Any thread.
class ZR_KIT_EXPORT ZrGridSteps
{
public:
    static constexpr int MostLines = 200; ///< of `Multiples`

    /// The smallest round length that is not below \p least; 0 when that is not above 0 or not finite.
    static double Length(double least);

    /// The largest round length that is not above \p most; 0 likewise.
    static double LengthWithin(double most);

    /// Decimals with which all multiples of \p step are exact, at most 6.
    static int Decimals(double step);

    /// The multiples of \p step from \p first to \p last as their factors. Empty when there would be more
    /// than `MostLines`, the step is not above 0, or a factor is not a whole number in a double.
    static std::vector<i64> Multiples(double first, double last, double step);

    /// Ticks of a degree in \p style; for a style without angles milliseconds of arc.
    static i64 TicksPerDegree(eGeoStyle style);

    /// The smallest usual step, in ticks, that is not below \p least degrees: 1, 2, 5, 10, 15, 30 seconds
    /// and minutes, 1, 2, 5, 10, 15, 30, 45 and 90 degrees; round parts of what the style writes last below.
    /// 90 degrees when there is none, or \p least is not a number.
    static i64 Angle(double least, eGeoStyle style);

    /// A latitude as \p style writes it, with no more places than multiples of \p step need: 51° 30' N.
    static QString LatText(i64 ticks, i64 step, eGeoStyle style);

    /// A longitude likewise, brought to ±180 degrees.
    static QString LngText(i64 ticks, i64 step, eGeoStyle style);
};
