#include "ZrKit/ui/ZrNumberText.h"

#include <algorithm>
#include <cmath>

QString ZrNumberText::WithoutMinusZero(const QString& number)
{
    const auto isZero = [](QChar c) { return c == QLatin1Char('0') || c == QLatin1Char('.'); };
    return number.size() > 1 && number[0] == QLatin1Char('-')
            && std::all_of(number.begin() + 1, number.end(), isZero)
        ? number.mid(1)
        : number;
}

QString ZrNumberText::Of(double value, int decimals)
{
    return std::isfinite(value) ? WithoutMinusZero(QString::number(value, 'f', decimals)) : QString();
}

QString ZrNumberText::Heading(double degrees, int decimals)
{
    const double turn = std::fmod(degrees, 360.0);
    const QString text = Of(turn < 0.0 ? turn + 360.0 : turn, decimals);
    // The text tells whether it was rounded up to a full turn.
    return text.toDouble() >= 360.0 ? Of(0.0, decimals) : text;
}

QString ZrNumberText::Signed(double value)
{
    if (!std::isfinite(value))
        return {};
    const double tenths = std::round(value * 10.0);
    const QString digits
        = QString::number(std::fabs(tenths) / 10.0, 'f', std::fmod(tenths, 10.0) == 0.0 ? 0 : 1);
    return tenths > 0.0 ? QLatin1Char('+') + digits : tenths < 0.0 ? QChar(0x2212) + digits : digits;
}
