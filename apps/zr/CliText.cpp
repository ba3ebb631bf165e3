#include "CliText.h"

#include <QDateTime>

#include <cmath>

namespace {

constexpr double earliest = -62135596800.0; ///< year 1
constexpr double latest = 253402300799.999; ///< year 9999

} // namespace

QString cli::time_text(double seconds)
{
    if (!std::isfinite(seconds))
        return QStringLiteral("-");
    if (seconds < earliest || seconds > latest)
        return QString::number(seconds, 'g', 17) + QStringLiteral(" s");
    const qint64 ms = std::llround(seconds * 1000.0);
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(Qt::ISODateWithMs);
}

QString cli::duration_text(double seconds)
{
    if (!std::isfinite(seconds))
        return QStringLiteral("-");
    if (seconds < 0.0 || seconds > latest)
        return QString::number(seconds, 'g', 17) + QStringLiteral(" s");
    const qint64 ms = std::llround(seconds * 1000.0);
    const qint64 minutes = ms / 60000;
    const QString rest = QString::number(static_cast<double>(ms % 60000) / 1000.0, 'f', 3);
    const QLatin1Char zero('0');
    if (minutes == 0)
        return rest + QStringLiteral(" s");
    if (minutes < 60)
        return QStringLiteral("%1 min %2 s").arg(minutes).arg(rest.rightJustified(6, zero));
    const QString time = QStringLiteral("%1 h %2 min %3 s")
                             .arg(minutes / 60 % 24)
                             .arg(minutes % 60, 2, 10, zero)
                             .arg(rest.rightJustified(6, zero));
    const qint64 days = minutes / 60 / 24;
    return days == 0 ? time : QStringLiteral("%1 d ").arg(days) + time;
}

QString cli::size_text(u64 bytes)
{
    static const char* const units[] = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    if (bytes < 1024)
        return count_text(bytes, "byte", "bytes");
    double value = static_cast<double>(bytes) / 1024.0;
    std::size_t unit = 0;
    // What would be shown as 1024.0 belongs to the next unit.
    while (value >= 1023.95 && unit + 1 < std::size(units)) {
        value /= 1024.0;
        ++unit;
    }
    return QString::number(value, 'f', 1) + QLatin1Char(' ') + QLatin1String(units[unit]);
}

QString cli::size_text_both(u64 bytes)
{
    if (bytes < 1024)
        return size_text(bytes);
    return QStringLiteral("%1 (%2 bytes)").arg(size_text(bytes)).arg(bytes);
}

QString cli::count_text(u64 count, const char* singular, const char* plural)
{
    return QString::number(count) + QLatin1Char(' ') + QLatin1String(count == 1 ? singular : plural);
}

QJsonValue cli::json_number(double value)
{
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue();
}

QJsonValue cli::json_count(u64 value)
{
    return QJsonValue(static_cast<double>(value));
}
