#include "ZrKit/export/ZrTrackText.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 dayLength = 86400000; ///< milliseconds
constexpr double firstTime = -62135596800.0; ///< 0001-01-01T00:00:00Z
constexpr double lastTime = 253402300799.0; ///< 9999-12-31T23:59:59Z

/// \p value with leading zeros, \p width digits of it.
void AppendDigits(QString& text, qint64 value, int width)
{
    QChar digits[4];
    for (int i = width - 1; i >= 0; --i) {
        digits[i] = QLatin1Char(static_cast<char>('0' + value % 10));
        value /= 10;
    }
    text.append(digits, width);
}

bool IsForbidden(QChar c)
{
    const ushort code = c.unicode();
    return (code < 0x20 && code != '\t' && code != '\n' && code != '\r') || code >= 0xFFFE;
}

} // namespace

QString ZrTrackText::Time(double time)
{
    if (!(time >= firstTime && time <= lastTime))
        return QString();
    const qint64 milliseconds = std::llround(time * 1000.0);
    qint64 inDay = milliseconds % dayLength;
    if (inDay < 0)
        inDay += dayLength;
    const qint64 day = (milliseconds - inDay) / dayLength;
    if (m_date.isEmpty() || day != m_day) {
        m_day = day;
        m_date = QDate(1970, 1, 1).addDays(day).toString(Qt::ISODate) + QLatin1Char('T');
    }
    QString text = m_date;
    AppendDigits(text, inDay / 3600000, 2);
    text += QLatin1Char(':');
    AppendDigits(text, inDay / 60000 % 60, 2);
    text += QLatin1Char(':');
    AppendDigits(text, inDay / 1000 % 60, 2);
    text += QLatin1Char('.');
    AppendDigits(text, inDay % 1000, 3);
    return text + QLatin1Char('Z');
}

QString ZrTrackText::Number(double value, int decimals)
{
    if (!std::isfinite(value))
        return QString();
    const QString text = QString::number(value, 'f', decimals);
    const bool isZero
        = std::all_of(text.begin(), text.end(), [](QChar c) { return QStringLiteral("-0.").contains(c); });
    return isZero && text.startsWith(QLatin1Char('-')) ? text.mid(1) : text;
}

QString ZrTrackText::Latitude(double latitude)
{
    return Number(latitude, 8);
}

QString ZrTrackText::Longitude(double longitude)
{
    // Inside the range nothing is calculated, so that the digits stay.
    if (longitude < -180.0 || longitude >= 180.0)
        longitude -= 360.0 * std::floor((longitude + 180.0) / 360.0);
    // Rounding may reach the other end.
    const QString text = Number(longitude, 8);
    return text == QStringLiteral("180.00000000") ? QLatin1Char('-') + text : text;
}

QString ZrTrackText::Elevation(double depth)
{
    return Number(-depth, 2);
}

QString ZrTrackText::Clean(const QString& text)
{
    QString clean;
    clean.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            clean += c;
            clean += text.at(++i);
        } else if (!c.isSurrogate() && !IsForbidden(c)) {
            clean += c;
        }
    }
    return clean;
}
