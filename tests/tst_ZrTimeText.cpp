// Times as people type them; times, sizes and rates in words.

#include "ZrKit/review/ZrTimeText.h"

#include <QTranslator>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double begin = 1614780309.0; // 2021-03-03T14:05:09Z
constexpr double day0 = 1614729600.0; // the begin of that day

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

/// A recording of an hour whose cursor stands ten minutes behind its begin.
ZrTimeText::Range Hour()
{
    return {begin, begin + 3600.0, begin + 600.0};
}

/// One of three days.
ZrTimeText::Range Days()
{
    return {begin, begin + 2.5 * 86400.0, begin + 1.5 * 86400.0};
}

/// Translates by marking.
class Marked : public QTranslator
{
public:
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        return qstrcmp(context, "ZrTimeText") == 0 ? QLatin1Char('<') + S(source) + QLatin1Char('>')
                                                   : QString();
    }

    bool isEmpty() const override { return false; }
};

} // namespace

class tst_ZrTimeText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void understood_data();
    void understood();
    void refused_data();
    void refused();
    void dayOfATimeOfDay();
    void withoutRecording();
    void clock_data();
    void clock();
    void offset_data();
    void offset();
    void elapsed_data();
    void elapsed();
    void size_data();
    void size();
    void rate_data();
    void rate();
    void remaining_data();
    void remaining();
    void numbersNeverFallBack();
    void wordsAreTranslated();
    void typedIsWhatIsShown();
};

void tst_ZrTimeText::understood_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("expected");

    QTest::newRow("minutes") << S("14:30") << day0 + 52200.0;
    QTest::newRow("seconds") << S("14:30:15") << day0 + 52215.0;
    QTest::newRow("milliseconds") << S("14:30:15.789") << day0 + 52215.789;
    QTest::newRow("comma") << S("14:30:15,789") << day0 + 52215.789;
    QTest::newRow("spaces") << S("  14:30 \t") << day0 + 52200.0;
    QTest::newRow("one digit") << S("2021-3-3 14:30") << day0 + 52200.0;
    QTest::newRow("minute of the begin") << S("14:05") << begin;
    QTest::newRow("day of the begin") << S("2021-03-03") << begin;
    QTest::newRow("date") << S("2021-03-03 14:30") << day0 + 52200.0;
    QTest::newRow("T") << S("2021-03-03T14:30:15.5") << day0 + 52215.5;
    QTest::newRow("t") << S("2021-03-03t14:30:15") << day0 + 52215.0;
    QTest::newRow("Z") << S("2021-03-03T14:30:15Z") << day0 + 52215.0;
    QTest::newRow("UTC") << S("2021-03-03 14:30:15 UTC") << day0 + 52215.0;
    QTest::newRow("east") << S("2021-03-03T16:30:15+02:00") << day0 + 52215.0;
    QTest::newRow("west") << S("2021-03-03 11:00:15-0330") << day0 + 52215.0;
    QTest::newRow("hours of offset") << S("2021-03-03 16:30+02") << day0 + 52200.0;
    QTest::newRow("forwards") << S("+90") << begin + 690.0;
    QTest::newRow("backwards") << S("-90") << begin + 510.0;
    QTest::newRow("space behind the sign") << S("+ 90") << begin + 690.0;
    QTest::newRow("fraction") << S("+0.25") << begin + 600.25;
    QTest::newRow("begins with the point") << S("+.25") << begin + 600.25;
    QTest::newRow("minus") << S("\u2212"
                                "1:30")
                           << begin + 510.0;
    QTest::newRow("dash") << S("\u2013"
                               "1:30")
                          << begin + 510.0;
    QTest::newRow("minutes and seconds") << S("-1:30") << begin + 510.0;
    QTest::newRow("many minutes") << S("+45:00") << begin + 3300.0;
    QTest::newRow("hours") << S("+0:02:03.5") << begin + 723.5;
    QTest::newRow("unit s") << S("+5 s") << begin + 605.0;
    QTest::newRow("unit min") << S("+5 min") << begin + 900.0;
    QTest::newRow("unit m") << S("-5m") << begin + 300.0;
    QTest::newRow("unit h") << S("+0.5h") << begin + 2400.0;
    QTest::newRow("unit ms") << S("+250 ms") << begin + 600.25;
    QTest::newRow("units") << S("+1 min 30 s") << begin + 690.0;
    QTest::newRow("capitals") << S("+1 MIN") << begin + 660.0;
    QTest::newRow("epoch") << S("1614780400") << 1614780400.0;
    QTest::newRow("epoch with fraction") << S("1614780400.5") << 1614780400.5;
    QTest::newRow("epoch marked") << S("@1614780400") << 1614780400.0;
    QTest::newRow("the end") << S("15:05:09") << begin + 3600.0;
}

void tst_ZrTimeText::understood()
{
    QFETCH(QString, text);
    QFETCH(double, expected);
    double time = unknown;
    QString error;
    QVERIFY2(ZrTimeText::Parse(text, Hour(), time, error), qPrintable(error));
    QVERIFY2(std::fabs(time - expected) < 1e-6, qPrintable(QString::number(time - begin, 'f', 6)));
    QCOMPARE(error, QString());
}

void tst_ZrTimeText::refused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    const QString other
        = S("\"%1\" is no time: write 12:34:56, 2021-05-03 12:34, or +90 for seconds from here");
    const QString span = S("\"%1\" is no span of time: write seconds as in +90, minutes and seconds as in "
                           "-1:30, or units as in +5 min");
    QTest::newRow("empty") << S("") << S("Type a time, as in 12:34:56 or +90");
    QTest::newRow("spaces") << S(" \t\n") << S("Type a time, as in 12:34:56 or +90");
    for (const char* text : {"noon", "14:30:15 h", "14", "14:3", "14:30:5", "2021-03", "2021-03-03 14",
             "14.30.15", "14:30 2021-03-03", "nan", "inf", "1e9", "@", "\u0661\u0664:\u0663\u0660"})
        if (qstrcmp(text, "14") != 0)
            QTest::newRow(text) << S(text) << other.arg(S(text));
    QTest::newRow("bare number") << S("90")
                                 << S("\"90\" is no time: write +90 for seconds from here, 12:34 for "
                                      "a time of day, @90 for seconds since 1970");
    QTest::newRow("hour") << S("24:00") << S("There is no hour 24; hours go from 0 to 23");
    QTest::newRow("minute") << S("14:60") << S("There is no minute 60; minutes go from 0 to 59");
    QTest::newRow("second") << S("14:30:60") << S("There is no second 60; seconds go from 0 to 59");
    QTest::newRow("day") << S("2021-02-29 12:00") << S("There is no day 2021-02-29");
    QTest::newRow("month") << S("2021-13-01") << S("There is no day 2021-13-01");
    QTest::newRow("hour of a date") << S("2021-03-03 25:00")
                                    << S("There is no hour 25; hours go from 0 to 23");
    QTest::newRow("offset") << S("2021-03-03 14:30+24:00")
                            << S("\"+24:00\" is no offset from UTC, as in +02:00");
    for (const char* text : {"+", "-", "+abc", "+1:60", "+1:60:00", "--5", "+5 x", "+1.2.3 s", "+1e5",
             "+5 s 3 min", "+99999999999999999999"})
        QTest::newRow(text) << S(text) << span.arg(S(text));
    QTest::newRow("before") << S(
        "14:04") << S("14:04:00 is outside of the recording, which goes from 14:05:09 to 15:05:09 (UTC)");
    QTest::newRow("behind") << S(
        "15:05:10") << S("15:05:10 is outside of the recording, which goes from 14:05:09 to 15:05:09 (UTC)");
    QTest::newRow("another day") << S("2021-03-04 14:30")
                                 << S("2021-03-04 14:30:00 is outside of the recording, which goes from "
                                      "2021-03-03 14:05:09 to 2021-03-03 15:05:09 (UTC)");
    QTest::newRow("too far back")
        << S("-601")
        << S("14:05:08 is outside of the recording, which goes from 14:05:09 to 15:05:09 "
             "(UTC)");
    QTest::newRow("1970") << S("@-5")
                          << S("1969-12-31 23:59:55 is outside of the recording, which goes from 2021-03-03 "
                               "14:05:09 to 2021-03-03 15:05:09 (UTC)");
    QTest::newRow("no such year") << S("@9999999999999") << S("\"@9999999999999\" is too far away");
    QTest::newRow("many digits") << S("@") + QString(400, QLatin1Char('9'))
                                 << S("\"@") + QString(400, QLatin1Char('9')) + S("\" is too far away");
}

void tst_ZrTimeText::refused()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    double time = -7.0;
    QString error;
    QVERIFY(!ZrTimeText::Parse(text, Hour(), time, error));
    QCOMPARE(error, expected);
    QCOMPARE(time, -7.0);
}

void tst_ZrTimeText::dayOfATimeOfDay()
{
    double time = 0.0;
    QString error;
    // The cursor stands on the fifth, at 02:05:09.
    QVERIFY(ZrTimeText::Parse(S("03:00"), Days(), time, error));
    QCOMPARE(time, day0 + 2 * 86400.0 + 10800.0);
    // The recording ends on the sixth at 02:05:09; the fifth has it, and the fourth before it.
    ZrTimeText::Range range = Days();
    range.now = begin;
    QVERIFY(ZrTimeText::Parse(S("15:00"), range, time, error));
    QCOMPARE(time, day0 + 54000.0);
    QVERIFY(ZrTimeText::Parse(S("03:00"), range, time, error)); // not on the third
    QCOMPARE(time, day0 + 86400.0 + 10800.0);
    range.now = range.end;
    QVERIFY(ZrTimeText::Parse(S("15:00"), range, time, error)); // not on the sixth any more
    QCOMPARE(time, day0 + 54000.0);
    range.now = unknown;
    QVERIFY(ZrTimeText::Parse(S("03:00"), range, time, error));
    QCOMPARE(time, day0 + 86400.0 + 10800.0);
}

void tst_ZrTimeText::withoutRecording()
{
    double time = 0.0;
    QString error;
    QVERIFY(ZrTimeText::Parse(S("2021-03-03 14:30"), {}, time, error));
    QCOMPARE(time, day0 + 52200.0);
    QVERIFY(ZrTimeText::Parse(S("@-5"), {}, time, error));
    QCOMPARE(time, -5.0);
    QVERIFY(!ZrTimeText::Parse(S("14:30"), {}, time, error));
    QCOMPARE(error, S("There is no recording to whose day 14:30 could belong"));
    QVERIFY(!ZrTimeText::Parse(S("+90"), {}, time, error));
    QCOMPARE(error, S("There is no position from which +90 could be counted"));
}

void tst_ZrTimeText::clock_data()
{
    QTest::addColumn<double>("time");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("expected");

    QTest::newRow("whole") << begin << 0 << S("2021-03-03 14:05:09");
    QTest::newRow("rounded") << begin + 0.5 << 0 << S("2021-03-03 14:05:10");
    QTest::newRow("one") << begin + 0.25 << 1 << S("2021-03-03 14:05:09.3");
    QTest::newRow("three") << begin + 0.25 << 3 << S("2021-03-03 14:05:09.250");
    QTest::newRow("too many") << begin + 0.25 << 9 << S("2021-03-03 14:05:09.250");
    QTest::newRow("too few") << begin << -4 << S("2021-03-03 14:05:09");
    QTest::newRow("next day") << day0 + 86399.9996 << 3 << S("2021-03-04 00:00:00.000");
    QTest::newRow("before the epoch") << -0.25 << 2 << S("1969-12-31 23:59:59.75");
    for (const double absurd : {unknown, inf, -inf, 1e300, -1e300})
        QTest::newRow(qPrintable(QString::number(absurd))) << absurd << 0 << QString();
}

void tst_ZrTimeText::clock()
{
    QFETCH(double, time);
    QFETCH(int, decimals);
    QFETCH(QString, expected);
    QCOMPARE(ZrTimeText::DateClock(time, decimals), expected);
    QCOMPARE(ZrTimeText::Clock(time, decimals), expected.mid(11));
    if (expected.isEmpty())
        QCOMPARE(ZrTimeText::Date(time), QString());
}

void tst_ZrTimeText::offset_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("expected");

    QTest::newRow("none") << 0.0 << S("+0:00:00.000");
    QTest::newRow("none, negative") << -0.0001 << S("+0:00:00.000");
    QTest::newRow("later") << 90.5 << S("+0:01:30.500");
    QTest::newRow("earlier") << -3723.0 << S("-1:02:03.000");
    QTest::newRow("rounded up") << 59.9996 << S("+0:01:00.000");
    QTest::newRow("days") << 360000.0 << S("+100:00:00.000");
    QTest::newRow("not a number") << unknown << S("unknown");
    QTest::newRow("infinite") << -inf << S("unknown");
}

void tst_ZrTimeText::offset()
{
    QFETCH(double, seconds);
    QFETCH(QString, expected);
    QCOMPARE(ZrTimeText::Offset(seconds), expected);
}

void tst_ZrTimeText::elapsed_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("expected");

    QTest::newRow("0") << 0.0 << S("0 s");
    QTest::newRow("1 us") << 1e-6 << S("0 s");
    QTest::newRow("1 ms") << 0.0005 << S("1 ms");
    QTest::newRow("250 ms") << 0.25 << S("250 ms");
    QTest::newRow("999.4 ms") << 0.9994 << S("999 ms");
    QTest::newRow("999.6 ms") << 0.9996 << S("1.0 s");
    QTest::newRow("4.5 s") << 4.5 << S("4.5 s");
    QTest::newRow("9.96 s") << 9.96 << S("10 s");
    QTest::newRow("12 s") << 12.3 << S("12 s");
    QTest::newRow("59.6 s") << 59.6 << S("1 min 00 s");
    QTest::newRow("245 s") << 245.0 << S("4 min 05 s");
    QTest::newRow("3599.6 s") << 3599.6 << S("1 h 00 min");
    QTest::newRow("3720 s") << 3720.0 << S("1 h 02 min");
    QTest::newRow("86399 s") << 86399.0 << S("1 d 00 h");
    QTest::newRow("76 h") << 273600.0 << S("3 d 04 h");
    QTest::newRow("negative") << -3720.0 << S("-1 h 02 min");
    QTest::newRow("not a number") << unknown << S("unknown");
    QTest::newRow("infinite") << inf << S("unknown");
    QTest::newRow("absurd") << 1e300 << S("11574074074 d 02 h");
}

void tst_ZrTimeText::elapsed()
{
    QFETCH(double, seconds);
    QFETCH(QString, expected);
    QCOMPARE(ZrTimeText::Elapsed(seconds), expected);
}

void tst_ZrTimeText::size_data()
{
    QTest::addColumn<double>("bytes");
    QTest::addColumn<QString>("expected");

    QTest::newRow("0") << 0.0 << S("0 B");
    QTest::newRow("999") << 999.0 << S("999 B");
    QTest::newRow("1000") << 1000.0 << S("1.00 kB");
    QTest::newRow("1234") << 1234.0 << S("1.23 kB");
    QTest::newRow("9994") << 9994.0 << S("9.99 kB");
    QTest::newRow("9996") << 9996.0 << S("10.0 kB");
    QTest::newRow("99960") << 99960.0 << S("100 kB");
    QTest::newRow("999499") << 999499.0 << S("999 kB");
    QTest::newRow("999500") << 999500.0 << S("1.00 MB");
    QTest::newRow("1.23 GB") << 1.23e9 << S("1.23 GB");
    QTest::newRow("5 TB") << 5e12 << S("5.00 TB");
    QTest::newRow("64 bits") << 18446744073709551615.0 << S("18447 PB");
    QTest::newRow("negative") << -1.0 << S("unknown");
    QTest::newRow("not a number") << unknown << S("unknown");
    QTest::newRow("infinite") << inf << S("unknown");
}

void tst_ZrTimeText::size()
{
    QFETCH(double, bytes);
    QFETCH(QString, expected);
    QCOMPARE(ZrTimeText::Size(bytes), expected);
}

void tst_ZrTimeText::rate_data()
{
    QTest::addColumn<double>("bytes");
    QTest::addColumn<QString>("expected");

    QTest::newRow("0") << 0.0 << S("0 B/s");
    QTest::newRow("640") << 640.0 << S("640 B/s");
    QTest::newRow("3.4 MB/s") << 3.44e6 << S("3.4 MB/s");
    QTest::newRow("9.96 MB/s") << 9.96e6 << S("10 MB/s");
    QTest::newRow("120 MB/s") << 1.2e8 << S("120 MB/s");
    QTest::newRow("999.6 kB/s") << 999600.0 << S("1.0 MB/s");
    QTest::newRow("negative") << -1.0 << S("unknown");
    QTest::newRow("not a number") << unknown << S("unknown");
}

void tst_ZrTimeText::rate()
{
    QFETCH(double, bytes);
    QFETCH(QString, expected);
    QCOMPARE(ZrTimeText::Rate(bytes), expected);
}

void tst_ZrTimeText::remaining_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("expected");

    QTest::newRow("0") << 0.0 << S("a moment left");
    QTest::newRow("7 s") << 7.2 << S("about 7 s left");
    QTest::newRow("23 s") << 23.0 << S("about 25 s left");
    QTest::newRow("57 s") << 57.4 << S("about 55 s left");
    QTest::newRow("58 s") << 58.0 << S("about 1 min left");
    QTest::newRow("41 min") << 2470.0 << S("about 41 min left");
    QTest::newRow("59.6 min") << 3576.0 << S("about 1 h 00 min left");
    QTest::newRow("2 h 13") << 7980.0 << S("about 2 h 15 min left");
    QTest::newRow("23 h 59") << 86340.0 << S("about 1 d 00 h left");
    QTest::newRow("3 d") << 273600.0 << S("about 3 d 04 h left");
    QTest::newRow("negative") << -1.0 << S("");
    QTest::newRow("not a number") << unknown << S("");
    QTest::newRow("infinite") << inf << S("");
}

void tst_ZrTimeText::remaining()
{
    QFETCH(double, seconds);
    QFETCH(QString, expected);
    QCOMPARE(ZrTimeText::Remaining(seconds), expected);
}

/// Around every change of unit the number that is shown belongs to the unit.
void tst_ZrTimeText::numbersNeverFallBack()
{
    double last = -1.0;
    const QStringList units{S("B"), S("kB"), S("MB"), S("GB"), S("TB"), S("PB")};
    for (double bytes = 1.0; bytes < 9e17; bytes *= 1.0007) {
        const QStringList parts = ZrTimeText::Size(bytes).split(QLatin1Char(' '));
        QVERIFY2(parts[0].toDouble() < 1000.0, qPrintable(parts.join(QLatin1Char(' '))));
        QVERIFY(parts[1] == S("B") || QString(parts[0]).remove(QLatin1Char('.')).size() == 3);
        const double value = ZrTimeText::Size(bytes).split(QLatin1Char(' '))[0].toDouble()
            * std::pow(1000.0, units.indexOf(parts[1]));
        QVERIFY(value >= last * (1.0 - 1e-12));
        last = value;
    }
}

void tst_ZrTimeText::wordsAreTranslated()
{
    Marked translator;
    QCoreApplication::installTranslator(&translator);
    QCOMPARE(ZrTimeText::Elapsed(12.0), S("<12 s>"));
    QCOMPARE(ZrTimeText::Size(1.23e9), S("<1.23 GB>"));
    QCOMPARE(ZrTimeText::Rate(3.4e6), S("<3.4 MB/s>"));
    QCOMPARE(ZrTimeText::Remaining(2460.0), S("<about 41 min left>"));
    QCOMPARE(ZrTimeText::Offset(inf), S("<unknown>"));
    double time = 0.0;
    QString error;
    QVERIFY(!ZrTimeText::Parse(S("24:00"), Hour(), time, error));
    QCOMPARE(error, S("<There is no hour 24; hours go from 0 to 23>"));
    QCoreApplication::removeTranslator(&translator);
}

void tst_ZrTimeText::typedIsWhatIsShown()
{
    ZrTimeText::Range range{-1e9, 3e9, 0.0};
    for (double shown = -9e8; shown < 2.9e9; shown += 12345678.901) {
        double time = unknown;
        QString error;
        const double rounded = std::round(shown * 1000.0) / 1000.0;
        QVERIFY2(ZrTimeText::Parse(ZrTimeText::DateClock(shown, 3), range, time, error), qPrintable(error));
        QVERIFY(std::fabs(time - rounded) < 1e-5);
        QVERIFY2(ZrTimeText::Parse(ZrTimeText::Offset(std::fmod(shown, 1e6)), range, time, error),
            qPrintable(error));
        QVERIFY(std::fabs(time - std::fmod(shown, 1e6)) < 1e-3);
    }
}

QTEST_GUILESS_MAIN(tst_ZrTimeText)
#include "tst_ZrTimeText.moc"
