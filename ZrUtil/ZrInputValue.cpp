// What `ZrInput` reads and shows: values by their kind, units, ranges, refusals.

#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrUnits.h"

#include <cmath>
#include <limits>

namespace {

constexpr double noBound = 1e99; ///< from here on an end of the range is none

} // namespace

double ZrInput::Parse(const QString& s, bool& ok) const
{
    switch (kind) {
    case kindInt:
        return s.toInt(&ok, 10);
    case kindDouble:
        return s.toDouble(&ok);
    case kindFloat:
        return static_cast<double>(s.toFloat(&ok));
    case kindLat:
    case kindLng:
        return ZrUnits::GetValue(s, ok);
    case kindTinyLength:
        return ZrUnits::GetTinyLengthValue(s, ok);
    case kindShortLength:
        return ZrUnits::GetShortLengthValue(s, ok);
    case kindLongLength:
        return ZrUnits::GetLongLengthValue(s, ok);
    case kindSpeed:
        return ZrUnits::GetSpeedValue(s, ok);
    case kindTemperature:
        return ZrUnits::GetTemperatureValue(s, ok);
    default:
        return ZrUnits::GetGridValue(s, ok);
    }
}

int ZrInput::GetStrValue(QString s, double& out)
{
    if (kind == kindText)
        return valid;
    if (kind < kindInt || kind > kindNorthing) {
        out = 0.0;
        return error;
    }
    bool ok = false;
    out = Parse(s, ok);
    if (!ok)
        return error;
    // Not a number is not within either.
    const bool isWithin = out >= min && out <= max;
    return hasRange && !isWithin ? outOfRange : valid;
}

int ZrInput::GetCurValue(double& out)
{
    return GetStrValue(QLineEdit::text(), out);
}

QString ZrInput::GetText(double v)
{
    switch (kind) {
    case kindInt:
        return QString::number(v, 'f', 0);
    case kindDouble:
    case kindFloat:
        return QString::number(v, 'f', places);
    case kindLat:
        return ZrUnits::GetLatString(v);
    case kindLng:
        return ZrUnits::GetLngString(v);
    case kindTinyLength:
        return ZrUnits::GetTinyLengthString(v, places, false);
    case kindShortLength:
        return ZrUnits::GetShortLengthString(v, places, false);
    case kindLongLength:
        return ZrUnits::GetLongLengthString(v, places, false);
    case kindSpeed:
        return ZrUnits::GetSpeedString(v, places, false);
    case kindTemperature:
        return ZrUnits::GetTemperatureString(v, places, false);
    // Two decimals, whatever the places.
    case kindEasting:
        return ZrUnits::GetEString(v, 2, false);
    case kindNorthing:
        return ZrUnits::GetNString(v, 2, false);
    default:
        return text;
    }
}

QString ZrInput::UnitText() const
{
    switch (kind) {
    case kindTinyLength:
        return ZrUnits::GetTinyLengthUnits();
    case kindShortLength:
        return ZrUnits::GetShortLengthUnits();
    case kindLongLength:
        return ZrUnits::GetLongLengthUnits();
    case kindSpeed:
        return ZrUnits::GetSpeedUnits();
    case kindTemperature:
        return ZrUnits::GetTemperatureUnits();
    case kindEasting:
        return ZrUnits::GetEUnits();
    case kindNorthing:
        return ZrUnits::GetNUnits();
    default:
        return QString();
    }
}

/// An end of the range as text that is accepted when typed: shown with few decimals it may lie outside, then
/// it is the next one inside.
QString ZrInput::BoundText(double bound, bool isUpper)
{
    const QString shown = GetText(bound);
    double v = 0.0;
    const bool isPosition = kind == kindLat || kind == kindLng;
    if (isPosition || GetStrValue(shown, v) != outOfRange)
        return shown;
    const int point = shown.indexOf(QLatin1Char('.'));
    const int decimals = point < 0 ? 0 : shown.size() - point - 1;
    const double step = std::pow(10.0, -decimals);
    return QString::number(shown.toDouble() + (isUpper ? -step : step), 'f', decimals);
}

QString ZrInput::RangeText()
{
    if (!hasRange || kind == kindText || kind < kindInt || kind > kindNorthing)
        return QString();
    const bool hasMin = min > -noBound;
    const bool hasMax = max < noBound;
    QString range;
    if (hasMin && hasMax)
        range = tr("%1 to %2").arg(BoundText(min, false), BoundText(max, true));
    else if (hasMin)
        range = tr("at least %1").arg(BoundText(min, false));
    else if (hasMax)
        range = tr("at most %1").arg(BoundText(max, true));
    else
        return QString();
    const QString unit = UnitText();
    return unit.isEmpty() ? range : range + QLatin1Char(' ') + unit;
}

QString ZrInput::RefusalText(const QString& s)
{
    double v = 0.0;
    const int result = GetStrValue(s, v);
    if (result == valid)
        return QString();
    if (result == outOfRange)
        return RangeText();
    if (s.trimmed().isEmpty())
        return tr("nothing is typed");
    switch (kind) {
    case kindInt: {
        bool isNumber = false;
        const double number = s.toDouble(&isNumber);
        const bool isTooLarge = isNumber && std::fabs(number) > std::numeric_limits<int>::max();
        return isTooLarge ? tr("this number is too large") : tr("a whole number is expected");
    }
    case kindLat:
    case kindLng:
        return tr("a position is expected, like %1").arg(kind == kindLat ? tr("51 7.4 N") : tr("4 12.5 W"));
    default:
        return tr("a number is expected");
    }
}
