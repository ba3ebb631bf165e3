// Round steps for grids and scales, the texts of angles, and scale bars.

#include "ZrKit/map/ZrGridSteps.h"
#include "ZrKit/map/ZrScaleBar.h"
#include "ZrUtil/ZrUnits.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

bool IsEqual(double a, double b)
{
    return std::fabs(a - b) <= 1e-12 * std::fabs(b);
}

} // namespace

class tst_ZrGridSteps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void length_data();
    void length();
    void lengthWithin_data();
    void lengthWithin();
    void lengthsAreRound();
    void decimals_data();
    void decimals();
    void multiples_data();
    void multiples();
    void angle_data();
    void angle();
    void angleIsEnough_data();
    void angleIsEnough();
    void texts_data();
    void texts();
    void textsParse_data();
    void textsParse();
    void scaleBar_data();
    void scaleBar();
    void scaleBarFits();
    void scaleBarOfOddUnits();
};

void tst_ZrGridSteps::init()
{
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoDMSFrac);
}

void tst_ZrGridSteps::length_data()
{
    QTest::addColumn<double>("least");
    QTest::addColumn<double>("expected");
    QTest::newRow("1") << 1.0 << 1.0;
    QTest::newRow("above 1") << 1.01 << 2.0;
    QTest::newRow("2") << 2.0 << 2.0;
    QTest::newRow("2.1") << 2.1 << 2.5;
    QTest::newRow("3") << 3.0 << 5.0;
    QTest::newRow("5") << 5.0 << 5.0;
    // 7.5 does not divide its decade.
    QTest::newRow("5.1") << 5.1 << 10.0;
    QTest::newRow("7.5") << 7.5 << 10.0;
    QTest::newRow("9") << 9.0 << 10.0;
    QTest::newRow("120") << 120.0 << 200.0;
    QTest::newRow("0.12") << 0.12 << 0.2;
    QTest::newRow("0.003") << 0.003 << 0.005;
    QTest::newRow("1e-9") << 1e-9 << 1e-9;
    QTest::newRow("6e6") << 6e6 << 1e7;
    QTest::newRow("rounding") << 0.1 + 0.2 << 0.5;
    QTest::newRow("almost 2") << 2.0000000001 << 2.0;
    QTest::newRow("0") << 0.0 << 0.0;
    QTest::newRow("negative") << -3.0 << 0.0;
    QTest::newRow("no number") << notANumber << 0.0;
    QTest::newRow("infinite") << infinite << 0.0;
    QTest::newRow("huge") << 1e300 << 0.0;
}

void tst_ZrGridSteps::length()
{
    QFETCH(double, least);
    QFETCH(double, expected);
    QVERIFY2(IsEqual(ZrGridSteps::Length(least), expected),
        qPrintable(QString::number(ZrGridSteps::Length(least), 'g', 17)));
}

void tst_ZrGridSteps::lengthWithin_data()
{
    QTest::addColumn<double>("most");
    QTest::addColumn<double>("expected");
    QTest::newRow("1") << 1.0 << 1.0;
    QTest::newRow("below 1") << 0.99 << 0.5;
    QTest::newRow("2.4") << 2.4 << 2.0;
    QTest::newRow("2.5") << 2.5 << 2.5;
    QTest::newRow("4.9") << 4.9 << 2.5;
    QTest::newRow("9.9") << 9.9 << 5.0;
    QTest::newRow("220") << 220.0 << 200.0;
    QTest::newRow("0.22") << 0.22 << 0.2;
    QTest::newRow("1e7") << 1e7 << 1e7;
    QTest::newRow("0") << 0.0 << 0.0;
    QTest::newRow("negative") << -1.0 << 0.0;
    QTest::newRow("no number") << notANumber << 0.0;
    QTest::newRow("infinite") << infinite << 0.0;
}

void tst_ZrGridSteps::lengthWithin()
{
    QFETCH(double, most);
    QFETCH(double, expected);
    QVERIFY2(IsEqual(ZrGridSteps::LengthWithin(most), expected),
        qPrintable(QString::number(ZrGridSteps::LengthWithin(most), 'g', 17)));
}

void tst_ZrGridSteps::lengthsAreRound()
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> exponent(-9.0, 9.0);
    for (int i = 0; i < 2000; ++i) {
        const double v = std::pow(10.0, exponent(random));
        const double up = ZrGridSteps::Length(v);
        const double down = ZrGridSteps::LengthWithin(v);
        QVERIFY(up >= v * (1 - 1e-8) && up <= v * 2.01);
        QVERIFY(down <= v * (1 + 1e-8) && down >= v / 2.01);
        for (const double length : {up, down}) {
            const double lead = length / std::pow(10.0, std::floor(std::log10(length) + 1e-9));
            QVERIFY(std::fabs(lead - 1) < 1e-9 || std::fabs(lead - 2) < 1e-9 || std::fabs(lead - 2.5) < 1e-9
                || std::fabs(lead - 5) < 1e-9);
        }
    }
}

void tst_ZrGridSteps::decimals_data()
{
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("expected");
    QTest::newRow("5") << 5.0 << 0;
    QTest::newRow("2.5") << 2.5 << 1;
    QTest::newRow("0.1") << 0.1 << 1;
    QTest::newRow("0.25") << 0.25 << 2;
    QTest::newRow("0.005") << 0.005 << 3;
    QTest::newRow("1e7") << 1e7 << 0;
    QTest::newRow("1e-9") << 1e-9 << 6;
    QTest::newRow("0") << 0.0 << 0;
    QTest::newRow("no number") << notANumber << 0;
}

void tst_ZrGridSteps::decimals()
{
    QFETCH(double, step);
    QFETCH(int, expected);
    QCOMPARE(ZrGridSteps::Decimals(step), expected);
}

void tst_ZrGridSteps::multiples_data()
{
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("last");
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("begin");
    QTest::newRow("ends included") << 10.0 << 30.0 << 10.0 << 3 << 1;
    QTest::newRow("inside") << 10.1 << 29.9 << 10.0 << 1 << 2;
    QTest::newRow("negative") << -25.0 << 5.0 << 10.0 << 3 << -2;
    QTest::newRow("rounded ends") << 0.1 * 3 << 0.7 << 0.1 << 5 << 3;
    QTest::newRow("none") << 1.0 << 2.0 << 10.0 << 0 << 0;
    QTest::newRow("reversed") << 30.0 << 10.0 << 10.0 << 0 << 0;
    QTest::newRow("most") << 0.0 << 199.0 << 1.0 << 200 << 0;
    QTest::newRow("too many") << 0.0 << 200.0 << 1.0 << 0 << 0;
    QTest::newRow("no step") << 0.0 << 10.0 << 0.0 << 0 << 0;
    QTest::newRow("negative step") << 0.0 << 10.0 << -1.0 << 0 << 0;
    QTest::newRow("no number") << notANumber << 10.0 << 1.0 << 0 << 0;
    QTest::newRow("step no number") << 0.0 << 10.0 << notANumber << 0 << 0;
    QTest::newRow("infinite") << -infinite << infinite << 1.0 << 0 << 0;
    QTest::newRow("far away") << 1e300 << 1e300 << 1.0 << 0 << 0;
    QTest::newRow("infinite step") << -1.0 << 1.0 << infinite << 1 << 0;
}

void tst_ZrGridSteps::multiples()
{
    QFETCH(double, first);
    QFETCH(double, last);
    QFETCH(double, step);
    QFETCH(int, count);
    QFETCH(int, begin);
    const std::vector<i64> factors = ZrGridSteps::Multiples(first, last, step);
    QCOMPARE(static_cast<int>(factors.size()), count);
    for (int i = 0; i < count; ++i)
        QCOMPARE(factors[static_cast<std::size_t>(i)], i64(begin + i));
}

void tst_ZrGridSteps::angle_data()
{
    QTest::addColumn<double>("least");
    QTest::addColumn<int>("style");
    QTest::addColumn<double>("expected"); // degrees
    constexpr double minute = 1.0 / 60;
    constexpr double second = 1.0 / 3600;
    QTest::newRow("a second") << second << int(eGeoDMSFrac) << second;
    QTest::newRow("3 seconds") << 3 * second << int(eGeoDMS) << 5 * second;
    QTest::newRow("6 seconds") << 6 * second << int(eGeoSignedDMS) << 10 * second;
    QTest::newRow("11 seconds") << 11 * second << int(eGeoDMSFrac) << 15 * second;
    QTest::newRow("16 seconds") << 16 * second << int(eGeoSignedDMSFrac) << 30 * second;
    QTest::newRow("31 seconds") << 31 * second << int(eGeoDMSFrac) << minute;
    QTest::newRow("16 minutes") << 16 * minute << int(eGeoDMSFrac) << 0.5;
    QTest::newRow("31 minutes") << 31 * minute << int(eGeoDMSFrac) << 1.0;
    QTest::newRow("half a second") << 0.4 * second << int(eGeoDMSFrac) << 0.5 * second;
    QTest::newRow("ms") << 0.0031 * second << int(eGeoDMSFrac) << 0.005 * second;
    QTest::newRow("two and a half ticks") << 0.0021 * second << int(eGeoDMSFrac) << 0.005 * second;
    QTest::newRow("less than a tick") << 1e-12 << int(eGeoDMSFrac) << 0.001 * second;
    QTest::newRow("minutes: 0.3") << 0.3 * minute << int(eGeoDegMin) << 0.5 * minute;
    QTest::newRow("minutes: 0.21") << 0.21 * minute << int(eGeoSignedDegMin) << 0.25 * minute;
    QTest::newRow("minutes: 0.7") << 0.7 * minute << int(eGeoDegMin) << minute;
    QTest::newRow("minutes: 11") << 11 * minute << int(eGeoDegMin) << 0.25;
    QTest::newRow("degrees: 0.11") << 0.11 << int(eGeoDeg) << 0.2;
    QTest::newRow("degrees: 0.6") << 0.6 << int(eGeoSignedDeg) << 1.0;
    QTest::newRow("degrees: 3e-8") << 3e-8 << int(eGeoDeg) << 5e-8;
    QTest::newRow("3 degrees") << 3.0 << int(eGeoDeg) << 5.0;
    QTest::newRow("31 degrees") << 31.0 << int(eGeoDMS) << 45.0;
    QTest::newRow("90 degrees") << 90.0 << int(eGeoDMS) << 90.0;
    QTest::newRow("more") << 1e9 << int(eGeoDMS) << 90.0;
    QTest::newRow("infinite") << infinite << int(eGeoDeg) << 90.0;
    QTest::newRow("no number") << notANumber << int(eGeoDegMin) << 90.0;
    QTest::newRow("0") << 0.0 << int(eGeoDeg) << 1e-8;
    QTest::newRow("negative") << -5.0 << int(eGeoDeg) << 1e-8;
    QTest::newRow("grid") << 3 * second << int(eGeoUTM) << 5 * second;
}

void tst_ZrGridSteps::angle()
{
    QFETCH(double, least);
    QFETCH(int, style);
    QFETCH(double, expected);
    const auto geo = static_cast<eGeoStyle>(style);
    QCOMPARE(ZrGridSteps::Angle(least, geo),
        static_cast<i64>(std::llround(expected * static_cast<double>(ZrGridSteps::TicksPerDegree(geo)))));
}

void tst_ZrGridSteps::angleIsEnough_data()
{
    QTest::addColumn<int>("style");
    for (int style = 0; style <= 8; ++style)
        QTest::addRow("%d", style) << style;
}

void tst_ZrGridSteps::angleIsEnough()
{
    QFETCH(int, style);
    const auto geo = static_cast<eGeoStyle>(style);
    const auto degree = static_cast<double>(ZrGridSteps::TicksPerDegree(geo));
    i64 last = 0;
    for (double least = 1e-8; least < 90.0; least *= 1.07) {
        const i64 step = ZrGridSteps::Angle(least, geo);
        QVERIFY(static_cast<double>(step) >= least * degree * (1 - 1e-8));
        QVERIFY(step == 1 || static_cast<double>(step) <= least * degree * 3.01);
        QVERIFY(step >= last);
        last = step;
        // Whole degrees, or a part that divides one: lines that stay when the map is enlarged.
        QVERIFY(step % static_cast<i64>(degree) == 0 || static_cast<i64>(degree) % step == 0);
    }
}

void tst_ZrGridSteps::texts_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<qint64>("ticks");
    QTest::addColumn<qint64>("step");
    QTest::addColumn<QString>("lat");
    QTest::addColumn<QString>("lng");
    const qint64 ms = 1;
    const qint64 second = 1000;
    const qint64 minute = 60 * second;
    const qint64 degree = 60 * minute;
    const auto row
        = [](const char* name, eGeoStyle style, qint64 ticks, qint64 step, const QString& lat,
              const QString& lng) { QTest::newRow(name) << int(style) << ticks << step << lat << lng; };
    row("degree", eGeoDMSFrac, 51 * degree, degree, QStringLiteral("51\u00b0 N"),
        QStringLiteral("51\u00b0 E"));
    row("minute", eGeoDMSFrac, 51 * degree, minute, QStringLiteral("51\u00b0 0' N"),
        QStringLiteral("51\u00b0 0' E"));
    row("seconds", eGeoDMS, -(51 * degree + 7 * minute + 15 * second), 15 * second,
        QStringLiteral("51\u00b0 7' 15\" S"), QStringLiteral("51\u00b0 7' 15\" W"));
    row("half", eGeoDMSFrac, 51 * degree + 500 * ms, 500 * ms, QStringLiteral("51\u00b0 0' 0.5\" N"),
        QStringLiteral("51\u00b0 0' 0.5\" E"));
    row("ms", eGeoDMSFrac, 59 * minute + 59999, 1, QStringLiteral("0\u00b0 59' 59.999\" N"),
        QStringLiteral("0\u00b0 59' 59.999\" E"));
    row("signed", eGeoSignedDMS, -30 * minute, 10 * minute, QStringLiteral("-0\u00b0 30'"),
        QStringLiteral("-0\u00b0 30'"));
    row("zero", eGeoSignedDMSFrac, 0, second, QStringLiteral("+0\u00b0 0' 0\""),
        QStringLiteral("+0\u00b0 0' 0\""));
    row("minutes", eGeoDegMin, 51 * 6000000LL + 740741, 1, QStringLiteral("51\u00b0 7.40741' N"),
        QStringLiteral("51\u00b0 7.40741' E"));
    row("whole minutes", eGeoSignedDegMin, -51 * 6000000LL - 700000, 100000, QStringLiteral("-51\u00b0 7'"),
        QStringLiteral("-51\u00b0 7'"));
    row("quarters", eGeoDegMin, 25000, 25000, QStringLiteral("0\u00b0 0.25' N"),
        QStringLiteral("0\u00b0 0.25' E"));
    row("quarters, one decimal to spare", eGeoDegMin, 50000, 25000, QStringLiteral("0\u00b0 0.50' N"),
        QStringLiteral("0\u00b0 0.50' E"));
    row("degrees", eGeoDeg, -5112345679LL, 1, QStringLiteral("51.12345679\u00b0 S"),
        QStringLiteral("51.12345679\u00b0 W"));
    row("tenths", eGeoSignedDeg, 5120000000LL, 10000000, QStringLiteral("+51.2\u00b0"),
        QStringLiteral("+51.2\u00b0"));
    row("antimeridian", eGeoDMS, 180 * degree, degree, QStringLiteral("180\u00b0 N"),
        QStringLiteral("180\u00b0 E"));
    row("beyond it", eGeoDMS, 181 * degree, degree, QStringLiteral("181\u00b0 N"),
        QStringLiteral("179\u00b0 W"));
    row("beyond it, west", eGeoDMS, -183 * degree, degree, QStringLiteral("183\u00b0 S"),
        QStringLiteral("177\u00b0 E"));
    row("a turn", eGeoDMS, -540 * degree, degree, QStringLiteral("540\u00b0 S"),
        QStringLiteral("180\u00b0 E"));
    row("no step", eGeoDMS, degree, 0, QStringLiteral("1\u00b0 0' 0.000\" N"),
        QStringLiteral("1\u00b0 0' 0.000\" E"));
}

void tst_ZrGridSteps::texts()
{
    QFETCH(int, style);
    QFETCH(qint64, ticks);
    QFETCH(qint64, step);
    QFETCH(QString, lat);
    QFETCH(QString, lng);
    QCOMPARE(ZrGridSteps::LatText(ticks, step, static_cast<eGeoStyle>(style)), lat);
    QCOMPARE(ZrGridSteps::LngText(ticks, step, static_cast<eGeoStyle>(style)), lng);
}

void tst_ZrGridSteps::textsParse_data()
{
    QTest::addColumn<int>("style");
    for (int style = 0; style <= 7; ++style)
        QTest::addRow("%d", style) << style;
}

void tst_ZrGridSteps::textsParse()
{
    QFETCH(int, style);
    const auto geo = static_cast<eGeoStyle>(style);
    const i64 degree = ZrGridSteps::TicksPerDegree(geo);
    std::mt19937_64 random(11);
    for (int i = 0; i < 500; ++i) {
        const i64 step = ZrGridSteps::Angle(std::pow(10.0, -static_cast<double>(random() % 9)), geo);
        const i64 ticks = static_cast<i64>(random() % static_cast<quint64>(160 * degree / step)) * step
            - 80 * degree / step * step;
        const QString text = ZrGridSteps::LatText(ticks, step, geo);
        bool isOk = false;
        const double value = ZrUnits::GetValue(text, isOk);
        QVERIFY2(isOk, qPrintable(text));
        QVERIFY2(std::fabs(value - static_cast<double>(ticks) / static_cast<double>(degree)) < 1e-10,
            qPrintable(text));
    }
}

void tst_ZrGridSteps::scaleBar_data()
{
    QTest::addColumn<bool>("isImperial");
    QTest::addColumn<double>("scale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("metres");
    QTest::addColumn<int>("parts");
    QTest::newRow("1 m") << false << 1.0 << QStringLiteral("200m") << 200.0 << 4;
    QTest::newRow("1.2 m") << false << 1.2 << QStringLiteral("250m") << 250.0 << 5;
    QTest::newRow("4.54 m") << false << 4.54 << QStringLiteral("500m") << 500.0 << 5;
    QTest::newRow("4.55 m") << false << 4.5455 << QStringLiteral("1km") << 1000.0 << 4;
    QTest::newRow("12 m") << false << 12.0 << QStringLiteral("2.5km") << 2500.0 << 5;
    QTest::newRow("50 km") << false << 50000.0 << QStringLiteral("10000km") << 1e7 << 4;
    QTest::newRow("1 cm") << false << 0.01 << QStringLiteral("2m") << 2.0 << 4;
    QTest::newRow("1 mm") << false << 0.001 << QStringLiteral("200mm") << 0.2 << 4;
    QTest::newRow("feet") << true << 1.0 << QStringLiteral("500ft") << 500 / 3.28084 << 5;
    QTest::newRow("miles") << true << 20.0 << QStringLiteral("2.5mi") << 2.5 / 0.000621371 << 5;
    QTest::newRow("inches") << true << 0.001 << QStringLiteral("5in") << 5 / 39.37008 << 5;
    QTest::newRow("0") << false << 0.0 << QString() << 0.0 << 4;
    QTest::newRow("negative") << false << -1.0 << QString() << 0.0 << 4;
    QTest::newRow("no number") << false << notANumber << QString() << 0.0 << 4;
    QTest::newRow("infinite") << false << infinite << QString() << 0.0 << 4;
}

void tst_ZrGridSteps::scaleBar()
{
    QFETCH(bool, isImperial);
    QFETCH(double, scale);
    QFETCH(QString, text);
    QFETCH(double, metres);
    QFETCH(int, parts);
    if (isImperial)
        ZrUnits::SetToImperial();
    const ZrScaleBar bar = ZrScaleBar::Of(scale, 220.0);
    QCOMPARE(bar.text, text);
    QVERIFY(std::fabs(bar.metres - metres) <= 1e-9 * metres);
    QCOMPARE(bar.parts, parts);
    QVERIFY(metres == 0.0 || std::fabs(bar.pixels - metres / scale) < 1e-6);
}

void tst_ZrGridSteps::scaleBarFits()
{
    for (const bool isImperial : {false, true}) {
        isImperial ? ZrUnits::SetToImperial() : ZrUnits::SetToMetric();
        for (double scale = 0.001; scale <= 50000.0; scale *= 1.013) {
            const ZrScaleBar bar = ZrScaleBar::Of(scale, 220.0);
            QVERIFY(bar.pixels <= 220.001);
            QVERIFY(bar.pixels > 220.0 / 2.01);
            QVERIFY(bar.text.size() <= 8);
        }
    }
}

void tst_ZrGridSteps::scaleBarOfOddUnits()
{
    ZrUnits::SetLongLengthToCustom(QStringLiteral("nm"), 1.0 / 1852.0);
    ZrScaleBar bar = ZrScaleBar::Of(20.0, 220.0);
    QCOMPARE(bar.text, QStringLiteral("2nm"));
    QVERIFY(std::fabs(bar.metres - 3704.0) < 1e-6);
    // A scale that is none counts as metres, and says so.
    for (const double scale : {0.0, -1.0, notANumber, infinite}) {
        ZrUnits::SetLongLengthToCustom(QStringLiteral("?"), scale);
        bar = ZrScaleBar::Of(20.0, 220.0);
        QCOMPARE(bar.text, QStringLiteral("2500m"));
        QCOMPARE(bar.metres, 2500.0);
    }
}

QTEST_GUILESS_MAIN(tst_ZrGridSteps)
#include "tst_ZrGridSteps.moc"
