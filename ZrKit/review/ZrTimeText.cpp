// Times as people type them.

#include "ZrKit/review/ZrTimeText.h"

#include "ZrUtil/ZrTypes.h"

#include <QDate>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace {

constexpr double minute = 60.0;
constexpr double hour = 3600.0;
constexpr double day = 86400.0;
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
/// The smallest bare number that is taken for seconds since 1970.
constexpr double leastEpoch = 1e8;
constexpr double mostSeconds = 1e12; ///< more is no time of this system

/// Matches all of a text.
QRegularExpression Pattern(const char* pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(QLatin1String(pattern)),
        QRegularExpression::CaseInsensitiveOption);
}

/// What was typed with the signs that keyboards and documents use instead of - and the decimal point.
QString Plain(const QString& text)
{
    QString plain = text.simplified();
    for (const ushort dash : {0x2010, 0x2011, 0x2012, 0x2013, 0x2014, 0x2212})
        plain.replace(QChar(dash), QLatin1Char('-'));
    static const QRegularExpression comma(QStringLiteral("(?<=[0-9]),(?=[0-9])"));
    return plain.replace(comma, QStringLiteral("."));
}

double Seconds(const QRegularExpressionMatch& match, int hours, int minutes, int seconds)
{
    return match.captured(hours).toDouble() * hour + match.captured(minutes).toDouble() * minute
        + match.captured(seconds).toDouble();
}

/// How much time the typed text leaves open, from its groups of minutes and seconds.
double Precision(const QString& seconds)
{
    if (seconds.isEmpty())
        return minute;
    const int point = seconds.indexOf(QLatin1Char('.'));
    return point < 0 ? 1.0 : std::pow(10.0, point + 1 - seconds.size());
}

/// The seconds of a span without sign, NaN when it is none.
double Span(const QString& text)
{
    static const QRegularExpression number = Pattern("[0-9]+(\\.[0-9]*)?|\\.[0-9]+");
    static const QRegularExpression colons
        = Pattern("(?:([0-9]{1,6}):)?([0-9]{1,6}):([0-9]{1,2}(?:\\.[0-9]*)?)");
    static const QRegularExpression units = Pattern("(?:([0-9.]+) ?d ?)?(?:([0-9.]+) ?h ?)?(?:([0-9.]+) "
                                                    "?m(?:in)? ?)?(?:([0-9.]+) ?s ?)?(?:([0-9.]+) ?ms)?");
    if (number.match(text).hasMatch())
        return text.toDouble();
    QRegularExpressionMatch match = colons.match(text);
    if (match.hasMatch()) {
        const bool inPlace = match.captured(3).toDouble() < minute
            && (match.captured(1).isEmpty() || match.captured(2).toDouble() < minute);
        return inPlace ? Seconds(match, 1, 2, 3) : unknown;
    }
    match = units.match(text);
    if (text.isEmpty() || !match.hasMatch())
        return unknown;
    constexpr double sizes[] = {day, hour, minute, 1.0, 0.001};
    double sum = 0.0;
    for (int i = 0; i < 5; ++i) {
        const QString part = match.captured(i + 1);
        if (part.isEmpty())
            continue;
        bool isNumber = false;
        sum += part.toDouble(&isNumber) * sizes[i];
        if (!isNumber)
            return unknown;
    }
    return sum;
}

/// A moment as it was typed.
struct Typed
{
    double time = unknown; ///< or the seconds of the day
    double precision = 0.0; ///< seconds that the text leaves open
};

bool Contains(const ZrTimeText::Range& range, const Typed& typed)
{
    return typed.time + typed.precision > range.begin - 1e-6 && typed.time <= range.end + 1e-6;
}

/// The moment of a day of the recording that has it, else of its first day.
double OnADay(const ZrTimeText::Range& range, const Typed& typed)
{
    const auto on = [&typed](double time) { return std::floor(time / day) * day + typed.time; };
    if (std::isfinite(range.now) && Contains(range, {on(range.now), typed.precision}))
        return on(range.now);
    // Of a recording longer than a day the first or the second one has it.
    const double first = on(range.begin);
    return Contains(range, {first, typed.precision}) || !Contains(range, {first + day, typed.precision})
        ? first
        : first + day;
}

} // namespace

bool ZrTimeText::Parse(const QString& text, const Range& range, double& time, QString& error)
{
    static const QRegularExpression relative = Pattern("([+-]) ?(.*)");
    static const QRegularExpression clock = Pattern("([0-9]{1,2}):([0-9]{2})(?::([0-9]{2}(?:\\.[0-9]*)?))?");
    static const QRegularExpression date = Pattern(
        "([0-9]{4})-([0-9]{1,2})-([0-9]{1,2})(?:[T ]([0-9]{1,2}):([0-9]{2})(?::([0-9]{2}(?:\\.[0-9]*)?))?"
        " ?(Z|UTC|[+-][0-9]{2}(?::?[0-9]{2})?)?)?");
    static const QRegularExpression epoch = Pattern("(@ ?-?)?([0-9]+(?:\\.[0-9]*)?)");

    const auto fail = [&error](const QString& sentence) {
        error = sentence;
        return false;
    };
    const QString plain = Plain(text);
    if (plain.isEmpty())
        return fail(tr("Type a time, as in 12:34:56 or +90"));
    const bool hasLog = std::isfinite(range.begin) && std::isfinite(range.end);
    Typed typed;

    QRegularExpressionMatch match = clock.match(plain);
    const bool isClock = match.hasMatch();
    const QRegularExpressionMatch dateMatch = date.match(plain);
    const int group = isClock ? 1 : 4; // of the hours
    if (dateMatch.hasMatch())
        match = dateMatch;
    if (match.hasMatch()) {
        if (match.captured(group).toInt() > 23)
            return fail(tr("There is no hour %1; hours go from 0 to 23").arg(match.captured(group)));
        if (match.captured(group + 1).toInt() > 59)
            return fail(tr("There is no minute %1; minutes go from 0 to 59").arg(match.captured(group + 1)));
        if (match.captured(group + 2).toDouble() >= minute)
            return fail(tr("There is no second %1; seconds go from 0 to 59").arg(match.captured(group + 2)));
        typed.time = Seconds(match, group, group + 1, group + 2);
        typed.precision = Precision(match.captured(group + 2));
    }
    if (isClock) {
        if (!hasLog)
            return fail(tr("There is no recording to whose day %1 could belong").arg(plain));
        typed.time = OnADay(range, typed);
    } else if (dateMatch.hasMatch()) {
        const QDate on(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());
        if (!on.isValid())
            return fail(tr("There is no day %1")
                            .arg(plain.left(plain.indexOf(QRegularExpression(
                                QStringLiteral("[T ]"), QRegularExpression::CaseInsensitiveOption)))));
        if (match.captured(group).isEmpty())
            typed.precision = day;
        typed.time += static_cast<double>(QDate(1970, 1, 1).daysTo(on)) * day;
        const QString zone = match.captured(7);
        if (zone.startsWith(QLatin1Char('+')) || zone.startsWith(QLatin1Char('-'))) {
            const double hours = zone.midRef(1, 2).toDouble();
            const double minutes = zone.size() > 3 ? zone.rightRef(2).toDouble() : 0.0;
            if (hours > 23.0 || minutes > 59.0)
                return fail(tr("\"%1\" is no offset from UTC, as in +02:00").arg(zone));
            typed.time -= (hours * hour + minutes * minute) * (zone[0] == QLatin1Char('+') ? 1.0 : -1.0);
        }
    } else if ((match = relative.match(plain)).hasMatch()) {
        const double span = Span(match.captured(2));
        if (!(span <= mostSeconds))
            return fail(tr("\"%1\" is no span of time: write seconds as in +90, minutes and seconds as in "
                           "-1:30, or units as in +5 min")
                            .arg(plain));
        if (!std::isfinite(range.now))
            return fail(tr("There is no position from which %1 could be counted").arg(plain));
        typed.time = range.now + (match.captured(1) == QLatin1String("+") ? span : -span);
    } else if ((match = epoch.match(plain)).hasMatch()) {
        const QString mark = match.captured(1);
        const double seconds = match.captured(2).toDouble();
        if (mark.isEmpty() && seconds < leastEpoch) {
            return fail(tr("\"%1\" is no time: write +%1 for seconds from here, 12:34 for a time of day, @%1 "
                           "for seconds since 1970")
                            .arg(plain));
        }
        typed.time = mark.endsWith(QLatin1Char('-')) ? -seconds : seconds;
        typed.precision = Precision(match.captured(2));
    } else {
        return fail(tr("\"%1\" is no time: write 12:34:56, 2021-05-03 12:34, or +90 for seconds from here")
                        .arg(plain));
    }

    if (!(std::fabs(typed.time) <= mostSeconds))
        return fail(tr("\"%1\" is too far away").arg(plain));
    if (hasLog && !Contains(range, typed)) {
        const bool sameDay = Date(range.begin) == Date(range.end) && Date(range.begin) == Date(typed.time);
        const auto shown = [sameDay](double t) { return sameDay ? Clock(t) : DateClock(t); };
        return fail(tr("%1 is outside of the recording, which goes from %2 to %3 (UTC)")
                        .arg(shown(typed.time), shown(range.begin), shown(range.end)));
    }
    time = hasLog ? std::min(std::max(typed.time, range.begin), range.end) : typed.time;
    return true;
}
