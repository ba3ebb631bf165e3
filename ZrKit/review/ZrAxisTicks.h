#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>

#include <vector>

/// The ticks of a value axis: multiples of 1, 2 or 5 times a power of ten, with labels that show as many
/// decimals as the step needs. Those of an axis of degrees meet the quarters of a turn instead.
///
/// \code
/// const ZrAxisTicks ticks(extent.min, extent.max, height / 40);
/// for (const double value : ticks.Values())
///     Draw(value, ticks.Label(value) + QStringLiteral(" m"));
/// \endcode
///
/// Works for every pair of numbers: they may stand in any order; one that is not finite counts as 0 when it
/// is NaN, as the largest finite number else; equal ones are moved apart. Never changes once made.
class ZR_KIT_EXPORT ZrAxisTicks
{
public:
    static constexpr int MostTicks = 1000;

    enum eSteps : int
    {
        decimal, ///< 1, 2 or 5 times a power of ten
        /// Of degrees: decimal ones up to 10, then 15, 30, 45, 90, 180, and 360 times a decimal one. Up to 90
        /// the quarters of a turn are among the ticks.
        angular
    };

    /// At most \p most ticks (2 to `MostTicks`) from \p low to \p high.
    ZrAxisTicks(double low, double high, int most, eSteps steps = decimal);

    double Step() const { return m_step; }

    int Decimals() const { return m_decimals; } ///< of the labels

    /// Ascending, within the range that was given.
    const std::vector<double>& Values() const { return m_values; }

    double Low() const { return m_low; } ///< of the axis: the range, widened to the next multiples

    double High() const { return m_high; }

    /// \p value with the decimals of the axis, in powers of ten when it is very large or small. Empty when it
    /// is not finite.
    QString Label(double value) const;

private:
    void SetStep(double least);
    void SetAngle(double first, double last, double count);
    double Multiple(double count) const;

    double m_step = 1.0;
    double m_digit = 1.0; ///< 1, 2 or 5; of degrees also 15 to 1800
    int m_power = 0; ///< of ten
    int m_decimals = 0;
    double m_low = 0.0;
    double m_high = 1.0;
    std::vector<double> m_values;
};
