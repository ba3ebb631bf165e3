#include "ZrKit/map/ZrGridSteps.h"

#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrUtil.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

/// What a length may miss its bound by: the rounding of a quotient.
constexpr double slack = 1e-9;
constexpr double mostFactor = 9007199254740992.0; // 2^53

enum class Form
{
    degrees,
    minutes,
    seconds
};

Form FormOf(eGeoStyle style)
{
    switch (style) {
    case eGeoSignedDeg:
    case eGeoDeg:
        return Form::degrees;
    case eGeoSignedDegMin:
    case eGeoDegMin:
        return Form::minutes;
    default:
        return Form::seconds;
    }
}

bool IsSigned(eGeoStyle style)
{
    return style == eGeoSignedDeg || style == eGeoSignedDegMin || style == eGeoSignedDMS
        || style == eGeoSignedDMSFrac;
}

bool DividesDecade(double length)
{
    const double decade = std::pow(10.0, std::ceil(std::log10(length) - slack));
    const double parts = decade / length;
    return std::fabs(parts - std::round(parts)) < slack * parts;
}

/// The next axis marker above \p v, of 1 and more, that divides its decade.
double NextRound(double v)
{
    double length = v;
    do {
        length = ZrUtil::NextMkr(length);
    } while (std::isfinite(length) && length < 1e300 && !DividesDecade(length));
    return length;
}

/// The smallest of the round lengths above \p v × (1 ± slack).
double RoundAbove(double v, double tolerance)
{
    // The markers end at a hundredth.
    double factor = 1.0;
    while (v * factor < 1.0)
        factor *= 10.0;
    return NextRound(v * factor * (1.0 + tolerance)) / factor;
}

bool IsLength(double v)
{
    return v >= 1e-12 && v <= 1e15;
}

/// \p ticks of \p perUnit ticks each with the decimals that multiples of \p step need.
QString Number(i64 ticks, i64 perUnit, i64 step)
{
    int decimals = 0;
    i64 place = perUnit;
    while (step % place != 0 && place % 10 == 0) {
        place /= 10;
        ++decimals;
    }
    QString text = QString::number(ticks / perUnit);
    if (decimals > 0)
        text += QLatin1Char('.')
            + QString::number(ticks % perUnit / place).rightJustified(decimals, QLatin1Char('0'));
    return text;
}

QString AngleText(i64 ticks, i64 step, eGeoStyle style, QChar negative, QChar positive)
{
    const i64 degree = ZrGridSteps::TicksPerDegree(style);
    const i64 minute = degree / 60;
    const i64 second = minute / 60;
    const i64 size = std::abs(ticks);
    const i64 grain = std::max(std::abs(step), i64(1));
    QString text = IsSigned(style) ? QString(QLatin1Char(ticks < 0 ? '-' : '+')) : QString();
    const Form form = FormOf(style);
    if (form == Form::degrees || grain % degree == 0) {
        text += Number(size, degree, grain) + ZrUnits::degrees;
    } else {
        text += QString::number(size / degree) + ZrUnits::degrees + QLatin1Char(' ');
        const i64 rest = size % degree;
        if (form == Form::minutes || grain % minute == 0)
            text += Number(rest, minute, grain) + QLatin1Char('\'');
        else
            text += QString::number(rest / minute) + QLatin1String("' ")
                + Number(rest % minute, second, grain) + QLatin1Char('"');
    }
    if (!IsSigned(style))
        text += QLatin1Char(' ') + QString(ticks < 0 ? negative : positive);
    return text;
}

} // namespace

double ZrGridSteps::Length(double least)
{
    return IsLength(least) ? RoundAbove(least, -slack) : 0.0;
}

double ZrGridSteps::LengthWithin(double most)
{
    if (!IsLength(most))
        return 0.0;
    double best = RoundAbove(most / 10.0, -slack);
    for (double next = best; next <= most * (1.0 + slack); next = RoundAbove(next, slack))
        best = next;
    return best;
}

int ZrGridSteps::Decimals(double step)
{
    constexpr int most = 6;
    double scaled = std::fabs(step);
    int decimals = 0;
    while (decimals < most && std::fabs(scaled - std::round(scaled)) > slack * scaled) {
        scaled *= 10.0;
        ++decimals;
    }
    return decimals;
}

std::vector<i64> ZrGridSteps::Multiples(double first, double last, double step)
{
    if (!(step > 0.0))
        return {};
    const double from = std::ceil(first / step - slack);
    const double to = std::floor(last / step + slack);
    if (!(std::fabs(from) < mostFactor && std::fabs(to) < mostFactor && to - from < MostLines))
        return {};
    std::vector<i64> factors;
    for (auto k = static_cast<i64>(from); k <= static_cast<i64>(to); ++k)
        factors.push_back(k);
    return factors;
}

i64 ZrGridSteps::TicksPerDegree(eGeoStyle style)
{
    switch (FormOf(style)) {
    case Form::degrees:
        return 100000000;
    case Form::minutes:
        return 6000000;
    case Form::seconds:
        break;
    }
    return 3600000;
}

i64 ZrGridSteps::Angle(double least, eGeoStyle style)
{
    static constexpr int sixties[] = {1, 2, 5, 10, 15, 30};
    static constexpr int wholes[] = {1, 2, 5, 10, 15, 30, 45, 90};
    const i64 degree = TicksPerDegree(style);
    const i64 largest = 90 * degree;
    const double ticks = least * static_cast<double>(degree) * (1.0 - slack);
    if (!(ticks <= static_cast<double>(largest)))
        return largest;
    if (ticks <= 1.0)
        return 1;
    // Round lengths of the unit that has decimals.
    const Form form = FormOf(style);
    const i64 unit = form == Form::degrees ? degree : form == Form::minutes ? degree / 60 : degree / 3600;
    for (double part = Length(ticks); part < static_cast<double>(unit); part = RoundAbove(part, slack)) {
        // Fewer ticks than 10 cannot be parted in four.
        if (part == std::floor(part))
            return static_cast<i64>(part);
    }
    for (i64 sixty = unit; sixty < degree; sixty *= 60) {
        for (const int count : sixties) {
            if (static_cast<double>(count * sixty) >= ticks)
                return count * sixty;
        }
    }
    for (const int count : wholes) {
        if (static_cast<double>(count * degree) >= ticks)
            return count * degree;
    }
    return largest;
}

QString ZrGridSteps::LatText(i64 ticks, i64 step, eGeoStyle style)
{
    return AngleText(ticks, step, style, QLatin1Char('S'), QLatin1Char('N'));
}

QString ZrGridSteps::LngText(i64 ticks, i64 step, eGeoStyle style)
{
    const i64 turn = 360 * TicksPerDegree(style);
    i64 lng = ticks % turn;
    if (lng > turn / 2)
        lng -= turn;
    else if (lng <= -turn / 2)
        lng += turn;
    return AngleText(lng, step, style, QLatin1Char('W'), QLatin1Char('E'));
}
