#include "CliTime.h"

#include <QDateTime>
#include <QRegularExpression>

#include <cmath>

std::optional<double> cli::parse_time(const QString& text)
{
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (isNumber) {
        if (!std::isfinite(seconds))
            return {};
        return seconds;
    }
    // Qt overlooks what stands behind a time, and takes one without an offset for local time.
    static const QRegularExpression pattern(QStringLiteral(
        "^\\d{4}-\\d\\d-\\d\\d([T ]\\d\\d:\\d\\d(:\\d\\d([.,]\\d+)?)?(Z|[+-]\\d\\d(:?\\d\\d)?)?)?\\z"));
    constexpr int timeGroup = 1;
    constexpr int offsetGroup = 4;
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return {};
    QString whole = text;
    if (match.captured(timeGroup).isEmpty())
        whole += QLatin1String("T00:00");
    if (match.captured(offsetGroup).isEmpty())
        whole += QLatin1Char('Z');
    const QDateTime time = QDateTime::fromString(whole, Qt::ISODateWithMs);
    if (!time.isValid())
        return {};
    return static_cast<double>(time.toMSecsSinceEpoch()) / 1000.0;
}

std::string cli::check_time(const std::string& text)
{
    if (parse_time(QString::fromStdString(text)))
        return {};
    return "\"" + text
        + "\" is no time: seconds since 1970-01-01 UTC, or ISO 8601 as in 2021-03-03T14:05:09.500Z";
}
