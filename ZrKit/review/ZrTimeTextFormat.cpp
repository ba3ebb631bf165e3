// Times, spans, sizes and rates in words.

#include "ZrKit/review/ZrTimeText.h"
#include "ZrUtil/ZrTypes.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace {

constexpr i64 minute = 60;
constexpr i64 hour = 60 * minute;
constexpr i64 day = 24 * hour;
constexpr double earliest = -62135596800.0; ///< 0001-01-01
constexpr double latest = 253402300799.9; ///< the end of 9999
constexpr double mostSeconds = 1e15; ///< what is longer is shown as this

QString Two(i64 value)
{
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

QDateTime Utc(double time, int decimals)
{
    const double parts = std::pow(10.0, decimals);
    const double rounded = std::round(time * parts) / parts;
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::llround(rounded * 1000.0)), Qt::UTC);
}

/// Of units a thousand apart the one in which \p value is shown with \p digits digits; value is divided.
int Unit(double& value, int digits, int units)
{
    const double half = 0.5 * std::pow(10.0, std::max(0, 3 - digits));
    int unit = 0;
    while (value >= 1000.0 - half && unit + 1 < units) {
        value /= 1000.0;
        ++unit;
    }
    return unit;
}

/// \p value below 1000 with at least \p digits digits; whole numbers as they are in the \p first unit.
QString Digits(double value, int digits, bool first)
{
    int decimals = 0;
    if (!first) {
        // What is rounded to the next power of ten has one digit more.
        for (double bound = 10.0; decimals < digits - 1; bound *= 10.0, ++decimals) {
            const double step = std::pow(10.0, -(digits - 1 - decimals));
            if (value < bound - step / 2.0)
                break;
        }
        decimals = digits - 1 - decimals;
    }
    return QString::number(value, 'f', decimals);
}

} // namespace

QString ZrTimeText::Clock(double time, int decimals)
{
    if (!(time >= earliest && time <= latest))
        return QString();
    const int digits = std::min(std::max(decimals, 0), 3);
    const QString text = Utc(time, digits).toString(QStringLiteral("HH:mm:ss.zzz"));
    return text.left(digits == 0 ? 8 : 9 + digits);
}

QString ZrTimeText::Date(double time)
{
    if (!(time >= earliest && time <= latest))
        return QString();
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::floor(time * 1000.0)), Qt::UTC)
        .toString(QStringLiteral("yyyy-MM-dd"));
}

QString ZrTimeText::DateClock(double time, int decimals)
{
    if (!(time >= earliest && time <= latest))
        return QString();
    const double rounded
        = static_cast<double>(Utc(time, std::min(std::max(decimals, 0), 3)).toMSecsSinceEpoch()) / 1000.0;
    return Date(rounded) + QLatin1Char(' ') + Clock(rounded, decimals);
}

QString ZrTimeText::Offset(double seconds)
{
    if (!std::isfinite(seconds))
        return tr("unknown");
    const auto ms = static_cast<i64>(std::llround(std::min(std::fabs(seconds), mostSeconds) * 1000.0));
    const i64 whole = ms / 1000;
    return QString(QLatin1Char(seconds < 0.0 && ms > 0 ? '-' : '+')) + QString::number(whole / hour)
        + QLatin1Char(':') + Two(whole % hour / minute) + QLatin1Char(':') + Two(whole % minute)
        + QStringLiteral(".%1").arg(ms % 1000, 3, 10, QLatin1Char('0'));
}

QString ZrTimeText::Elapsed(double seconds)
{
    if (!std::isfinite(seconds))
        return tr("unknown");
    if (seconds < 0.0)
        return QLatin1Char('-') + Elapsed(-seconds);
    const double shown = std::min(seconds, mostSeconds);
    if (shown < 0.0005)
        return tr("0 s");
    if (shown < 0.9995)
        return tr("%1 ms").arg(std::lround(shown * 1000.0));
    if (shown < 9.95)
        return tr("%1 s").arg(shown, 0, 'f', 1);
    const auto whole = static_cast<i64>(std::llround(shown));
    if (whole < minute)
        return tr("%1 s").arg(whole);
    if (whole < hour)
        return tr("%1 min %2 s").arg(whole / minute).arg(Two(whole % minute));
    const i64 minutes = (whole + minute / 2) / minute;
    if (minutes * minute < day)
        return tr("%1 h %2 min").arg(minutes / 60).arg(Two(minutes % 60));
    const i64 hours = (whole + hour / 2) / hour;
    return tr("%1 d %2 h").arg(hours / 24).arg(Two(hours % 24));
}

QString ZrTimeText::Size(double bytes)
{
    if (!std::isfinite(bytes) || bytes < 0.0)
        return tr("unknown");
    const QString units[] = {tr("%1 B"), tr("%1 kB"), tr("%1 MB"), tr("%1 GB"), tr("%1 TB"), tr("%1 PB")};
    double value = bytes;
    const int unit = Unit(value, 3, static_cast<int>(std::size(units)));
    return units[unit].arg(Digits(value, 3, unit == 0));
}

QString ZrTimeText::Rate(double bytesPerSecond)
{
    if (!std::isfinite(bytesPerSecond) || bytesPerSecond < 0.0)
        return tr("unknown");
    const QString units[]
        = {tr("%1 B/s"), tr("%1 kB/s"), tr("%1 MB/s"), tr("%1 GB/s"), tr("%1 TB/s"), tr("%1 PB/s")};
    double value = bytesPerSecond;
    const int unit = Unit(value, 3, static_cast<int>(std::size(units)));
    return units[unit].arg(Digits(value, 2, unit == 0));
}

QString ZrTimeText::Remaining(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0.0)
        return QString();
    if (seconds < 3.0)
        return tr("a moment left");
    // Steps of about a tenth, so that the text stays for a while.
    const auto whole = static_cast<i64>(std::llround(std::min(seconds, mostSeconds)));
    if (whole < 10)
        return tr("about %1 s left").arg(whole);
    if ((whole + 2) / 5 * 5 < minute)
        return tr("about %1 s left").arg((whole + 2) / 5 * 5);
    const i64 minutes = (whole + minute / 2) / minute;
    if (minutes < 60)
        return tr("about %1 min left").arg(minutes);
    const i64 fives = (minutes + 2) / 5 * 5;
    if (fives * minute < day)
        return tr("about %1 h %2 min left").arg(fives / 60).arg(Two(fives % 60));
    const i64 hours = (minutes + 30) / 60;
    return tr("about %1 d %2 h left").arg(hours / 24).arg(Two(hours % 24));
}
