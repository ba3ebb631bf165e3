#pragma once

#include <cmath>
#include <limits>

/// A value that comes again and again, and the moment at which it came last. A plain value.
struct ZrLiveValue
{
    static constexpr double StaleAfter = 5.0; ///< seconds

    double value = std::numeric_limits<double>::quiet_NaN(); ///< NaN: never came
    double at = -std::numeric_limits<double>::infinity(); ///< seconds of the clock of whoever took it

    /// Takes \p newValue unless it is no finite number.
    void Set(double newValue, double now)
    {
        if (!std::isfinite(newValue))
            return;
        value = newValue;
        at = now;
    }

    bool IsKnown() const { return std::isfinite(value); }

    double Age(double now) const { return now - at; } ///< seconds; infinite when it never came

    bool IsFresh(double now) const { return Age(now) <= StaleAfter; }
};
