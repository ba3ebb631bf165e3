#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QCoreApplication>
#include <QString>

#include <limits>

/// Times, spans, sizes and rates in words, and times as people type them.
///
/// \code
/// ZrTimeText::Range range{summary.FirstTime(), summary.LastTime(), steady.LogTime(clock.Time())};
/// double time;
/// QString error;
/// if (ZrTimeText::Parse(edit->text(), range, time, error))
///     clock.SetTime(steady.FromLog(time, clock.Time()));
/// \endcode
///
/// Times are UTC, seconds since 1970-01-01; decimals have a point whatever the locale. Words come translated
/// (context "ZrTimeText"). Any thread that may translate.
class ZR_KIT_EXPORT ZrTimeText
{
    Q_DECLARE_TR_FUNCTIONS(ZrTimeText)

public:
    /// What a typed time refers to, log times.
    struct Range
    {
        double begin = std::numeric_limits<double>::quiet_NaN(); ///< earliest time of the recording
        double end = std::numeric_limits<double>::quiet_NaN(); ///< latest one
        double now = std::numeric_limits<double>::quiet_NaN(); ///< where the cursor is
    };

    /// Understands what a person types as a time:
    ///
    /// - `12:34`, `12:34:56`, `12:34:56.789`: time of day, on the day of the cursor or else the first day of
    ///   the recording that has it
    /// - `2021-05-03`, `2021-05-03 12:34`, `2021-05-03T12:34:56.789`: that moment, in UTC; `Z` or
    ///   an offset as in `+02:00` may follow
    /// - `+90`, `-2.5`: seconds from the cursor
    /// - `-1:30`, `+1:02:03.5`: minutes and seconds from the cursor, or hours, minutes and seconds
    /// - `+5 min`, `-1 h 30 min`, `+250 ms`: from the cursor, in d, h, min (m), s, ms
    /// - `@1614780309`, `1614780309.5`: seconds since 1970-01-01; without `@` from 100,000,000 (1973) on
    ///
    /// A comma serves as the decimal point, a long dash as the minus. What is typed without seconds or time
    /// of day stands for the whole minute or day: of one in which the recording begins, its begin is meant.
    /// False, with a sentence for the user in \p error and \p time untouched, when the text is none of these,
    /// names a moment that does not exist or lies outside the recording.
    static bool Parse(const QString& text, const Range& range, double& time, QString& error);

    /// "14:05:09" with \p decimals (0 to 3) of a second; the time is rounded to them. Empty for times that
    /// are not finite or not within the years 1 to 9999, as for the next two.
    static QString Clock(double time, int decimals = 0);

    static QString Date(double time); ///< "2021-03-03"

    static QString DateClock(double time, int decimals = 0); ///< "2021-03-03 14:05:09"

    /// The distance of two cursors: "+0:01:30.500", hours, minutes, seconds. "unknown" when not finite.
    static QString Offset(double seconds);

    /// "250 ms", "4.5 s", "12 s", "4 min 05 s", "1 h 02 min", "3 d 04 h"; "unknown" when not finite.
    static QString Elapsed(double seconds);

    /// "512 B", "1.23 kB", "45.6 MB", "789 GB"; 1 kB is 1000 bytes. "unknown" when not finite or below 0.
    static QString Size(double bytes);

    /// "640 B/s", "3.4 MB/s", "120 MB/s"; likewise.
    static QString Rate(double bytesPerSecond);

    /// "about 41 min left", rounded so that it does not flicker; "a moment left" below 3 s. Empty when not
    /// finite or below 0: nothing is known then.
    static QString Remaining(double seconds);
};
