#include "ZrUtil/ZrUnits.h"

#include <QStringList>

#include <cmath>

namespace {

QString Whole(double value)
{
    return QString::number(value, 'f', 0);
}

/// The text of \p value in the styles 0 to 7, "Error" for any other.
QString PositionText(double value, eGeoStyle style, QChar negative, QChar positive)
{
    const double a = std::fabs(value);
    const double d = std::trunc(a);
    const double mf = (a - d) * 60.0;
    const double m = std::trunc(mf);
    const double s = (mf - m) * 60.0;

    const QString deg = ZrUnits::degrees;
    const QString minutes
        = Whole(d) + deg + QLatin1Char(' ') + QString::number(mf, 'f', 5) + QLatin1Char('\'');
    const auto seconds = [&](int places) -> QString {
        return Whole(d) + deg + QLatin1Char(' ') + Whole(m) + QLatin1String("' ")
            + QString::number(s, 'f', places) + QLatin1Char('"');
    };
    const QLatin1Char sign(value < 0 ? '-' : '+');
    const QString letter = QLatin1Char(' ') + QString(value < 0 ? negative : positive);

    switch (style) {
    case eGeoSignedDeg:
        return sign + QString::number(a, 'f', 8) + deg;
    case eGeoSignedDegMin:
        return sign + minutes;
    case eGeoSignedDMS:
        return sign + seconds(0);
    case eGeoSignedDMSFrac:
        return sign + seconds(3);
    case eGeoDeg:
        return QString::number(a, 'f', 8) + deg + letter;
    case eGeoDegMin:
        return minutes + letter;
    case eGeoDMS:
        return seconds(0) + letter;
    case eGeoDMSFrac:
        return seconds(3) + letter;
    case eGeoUTM:
        break;
    }
    return QStringLiteral("Error");
}

bool IsOneOf(QChar c, const char* letters)
{
    for (; *letters; ++letters)
        if (c == QLatin1Char(*letters))
            return true;
    return false;
}

/// Takes sign and hemisphere off the text: +1 or −1. Each end gives up at most one letter that means
/// positive and then one that means negative.
double TakeSign(QString& s)
{
    double sign = 1.0;
    if (!s.isEmpty() && IsOneOf(s.front(), "NE+"))
        s.remove(0, 1);
    if (!s.isEmpty() && IsOneOf(s.front(), "SW-")) {
        sign = -1.0;
        s.remove(0, 1);
    }
    if (!s.isEmpty() && IsOneOf(s.back(), "NE"))
        s.chop(1);
    if (!s.isEmpty() && IsOneOf(s.back(), "SW")) {
        sign = -1.0;
        s.chop(1);
    }
    s = s.simplified();
    return sign;
}

enum class Parsed
{
    Yes,
    No,
    TrySpaces
};

/// The minutes and seconds behind a degree sign, as degrees.
Parsed ParseMinutes(const QString& rest, double& fraction)
{
    bool ok = false;
    const double packed = rest.toDouble(&ok);
    if (ok && packed < 60.0) {
        fraction = packed / 60.0;
        return Parsed::Yes;
    }
    if (ok) { // MMSS; seconds that cannot be drop the minutes as well
        const double r = std::fmod(packed, 100.0);
        fraction = r < 60.0 ? (packed - r) / 100.0 / 60.0 + r / 3600.0 : 0.0;
        return Parsed::Yes;
    }
    const QStringList parts = rest.split(QLatin1Char('\''));
    if (parts.size() != 2)
        return Parsed::TrySpaces;
    const double minutes = parts[0].simplified().toDouble(&ok);
    if (!ok)
        return Parsed::No;
    fraction = minutes / 60.0;
    if (parts[1].isEmpty())
        return Parsed::Yes;
    const double seconds = parts[1].simplified().split(QLatin1Char('"'))[0].simplified().toDouble(&ok);
    if (!ok || seconds >= 60.0)
        return Parsed::TrySpaces;
    fraction = minutes / 60.0 + seconds / 3600.0;
    return Parsed::Yes;
}

/// "D M.m" and "D M S.s".
bool ParseSpaced(const QString& s, double& value)
{
    const QStringList parts = s.split(QLatin1Char(' '));
    bool ok[3] = {false, false, false};
    if (parts.size() == 2) {
        const int d = parts[0].toInt(&ok[0], 10);
        const double m = parts[1].toDouble(&ok[1]);
        value = d + m / 60.0;
        return ok[0] && ok[1];
    }
    if (parts.size() == 3) {
        const int d = parts[0].toInt(&ok[0], 10);
        const int m = parts[1].toInt(&ok[1], 10);
        const double sec = parts[2].toDouble(&ok[2]);
        value = d + m / 60.0 + sec / 3600.0;
        return ok[0] && ok[1] && ok[2];
    }
    return false;
}

} // namespace

eGeoStyle ZrUnits::GetGeoStyle()
{
    return geoStyle;
}

void ZrUnits::SetGeoStyle(eGeoStyle style)
{
    geoStyle = style;
}

QString ZrUnits::GetLatString(double lat)
{
    return geoStyle == eGeoUTM ? QString() : PositionText(lat, geoStyle, QLatin1Char('S'), QLatin1Char('N'));
}

QString ZrUnits::GetLngString(double lng)
{
    return PositionText(lng, geoStyle, QLatin1Char('W'), QLatin1Char('E'));
}

double ZrUnits::GetValue(QString text, bool& ok)
{
    ok = false;
    QString s = text.simplified();
    if (s.isEmpty())
        return 0.0;
    const double sign = TakeSign(s);

    const double number = s.toDouble(&ok);
    if (ok)
        return number * sign;

    const QStringList parts = s.split(degrees);
    if (parts.size() == 2) {
        const double deg = parts[0].toDouble(&ok);
        if (!ok)
            return 0.0;
        if (parts[1].isEmpty())
            return deg * sign;
        double fraction = 0.0;
        const Parsed parsed = ParseMinutes(parts[1].simplified(), fraction);
        ok = parsed == Parsed::Yes;
        if (ok)
            return (deg + fraction) * sign;
        if (parsed == Parsed::No)
            return 0.0;
    }
    double value = 0.0;
    ok = ParseSpaced(s, value);
    return ok ? value * sign : 0.0;
}
