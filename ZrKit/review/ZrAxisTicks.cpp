#include "ZrKit/review/ZrAxisTicks.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double largest = 1e300; ///< leaves room for sums and for the next multiple
constexpr int mostDecimals = 9; ///< more are shown as a power of ten
constexpr double mostPlain = 1e9; ///< likewise for digits in front of the point
constexpr double slack = 1e-9; ///< what rounding may add to a share
constexpr double turn = 360.0; ///< degrees
constexpr double largestDecimal = 10.0 * (1.0 + slack); ///< step of angles, degrees

double Finite(double value)
{
    return std::isnan(value) ? 0.0 : std::min(std::max(value, -largest), largest);
}

} // namespace

ZrAxisTicks::ZrAxisTicks(double low, double high, int most, eSteps steps)
{
    double first = std::min(Finite(low), Finite(high));
    double last = std::max(Finite(low), Finite(high));
    const double size = std::max(std::fabs(first), std::fabs(last));
    // Numbers of this size are no closer than that; a few of them make the smallest step.
    const double resolution = std::max(size * 8.0 * std::numeric_limits<double>::epsilon(), 1e-300);
    if (last - first < resolution) {
        const double half = std::max(size * 0.1, size > 0.0 ? resolution : 0.5);
        first -= half;
        last += half;
    }
    const double count = std::min(std::max(most, 2), MostTicks) - 1;
    const double least = std::max(last / count - first / count, resolution);
    if (steps == angular && least > largestDecimal)
        SetAngle(first, last, count);
    else
        SetStep(least);
    m_step = Multiple(1.0);
    m_decimals = std::max(0, -m_power);
    m_low = Multiple(std::floor(first / m_step + 1e-9));
    m_high = Multiple(std::ceil(last / m_step - 1e-9));
    const double begin = std::ceil(first / m_step - 1e-9);
    const double end = std::floor(last / m_step + 1e-9);
    for (double k = begin; k <= end && m_values.size() < MostTicks; k += 1.0)
        m_values.push_back(Multiple(k));
}

/// The next step from \p least on, but for rounding.
void ZrAxisTicks::SetStep(double least)
{
    m_power = static_cast<int>(std::floor(std::log10(least)));
    const double share = least / std::pow(10.0, m_power);
    m_digit = share <= 1.0 + slack ? 1.0 : share <= 2.0 + slack ? 2.0 : share <= 5.0 + slack ? 5.0 : 10.0;
    if (m_digit > 5.0) {
        m_digit = 1.0;
        ++m_power;
    }
}

/// The first step above the decimal ones with no more than \p count spans between its ticks.
void ZrAxisTicks::SetAngle(double first, double last, double count)
{
    for (const double step : {15.0, 30.0, 45.0, 90.0, 180.0, turn}) {
        if (std::floor(last / step + slack) - std::ceil(first / step - slack) <= count) {
            m_digit = step;
            m_power = 0;
            return;
        }
    }
    SetStep((last / count - first / count) / turn);
    m_digit *= turn;
}

/// \p count times the step, rounded once where it can be: three tenths are 0.3.
double ZrAxisTicks::Multiple(double count) const
{
    const double digits = count * m_digit;
    constexpr int exactPowers = 22;
    const double value = m_power < 0 && m_power >= -exactPowers ? digits / std::pow(10.0, -m_power)
                                                                : digits * std::pow(10.0, m_power);
    return value + 0.0; // no negative zero
}

QString ZrAxisTicks::Label(double value) const
{
    if (!std::isfinite(value))
        return QString();
    const double shown = std::fabs(value) < m_step * 1e-6 ? 0.0 : value;
    const double size = std::max(std::fabs(m_low), std::fabs(m_high));
    if (m_decimals <= mostDecimals && size < mostPlain)
        return QString::number(shown, 'f', m_decimals);
    constexpr int mostDigits = 16;
    const double digits = std::ceil(std::log10(size / m_step)) + 1.0;
    return QString::number(shown, 'g', static_cast<int>(std::min(std::max(digits, 1.0), double(mostDigits))));
}
