// Latitudes and longitudes as text, and text as latitudes and longitudes.

#include "ZrUnitsState.h"

#include <QRegularExpression>
#include <QtTest>

#include <cmath>
#include <limits>
#include <memory>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

/// What a position text shows, read by its figures alone. `sixty` when it shows 60 seconds, which parsing
/// refuses.
struct Shown
{
    bool matched = false;
    bool sixty = false;
    double value = 0.0;
};

Shown Read(const QString& text)
{
    static const QRegularExpression form(S("^([+-]?)(\\d+(?:\\.\\d{8})?)°(?: (\\d+(?:\\.\\d{5})?)'(?: "
                                           "(\\d+(?:\\.\\d{3})?)\")?)?(?: ([NESW]))?$"));
    const QRegularExpressionMatch match = form.match(text);
    Shown shown;
    shown.matched = match.hasMatch() && match.captured(1).isEmpty() != match.captured(5).isEmpty();
    if (!shown.matched)
        return shown;
    const bool negative
        = match.captured(1) == S("-") || match.captured(5) == S("S") || match.captured(5) == S("W");
    const double seconds = match.captured(4).toDouble();
    shown.sixty = seconds >= 60.0;
    const double size = match.captured(2).toDouble() + match.captured(3).toDouble() / 60.0 + seconds / 3600.0;
    shown.value = negative ? -size : size;
    return shown;
}

/// Half of the last figure of a style, in degrees.
double HalfFigure(int style)
{
    switch (style % 4) {
    case 0:
        return 0.5e-8;
    case 1:
        return 0.5e-5 / 60.0;
    case 2:
        return 0.5 / 3600.0;
    default:
        return 0.5e-3 / 3600.0;
    }
}

} // namespace

class tst_ZrUnitsGeo : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_state = std::make_unique<ZrUnitsState>(); }

    void cleanup() { m_state.reset(); }

    void styles_data();
    void styles();
    void grid();
    void noStyle_data();
    void noStyle();
    void degreeSignOfTheProcess();

    void typed_data();
    void typed();
    void refused_data();
    void refused();
    void okIsAlwaysSet();

    void roundTrip_data();
    void roundTrip();
    void secondsOfSixty();
    void minutesOfSixty();

private:
    std::unique_ptr<ZrUnitsState> m_state;
};

void tst_ZrUnitsGeo::styles_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("lat");
    QTest::addColumn<QString>("lng");

    const auto row = [](const char* name, double value, int style, const char* lat, const char* lng) {
        QTest::newRow(qPrintable(S("%1, style %2").arg(S(name)).arg(style)))
            << value << style << S(lat) << S(lng);
    };
    const double v = 51.123456789;
    row("example", v, 0, "+51.12345679°", "+51.12345679°");
    row("example", v, 1, "+51° 7.40741'", "+51° 7.40741'");
    row("example", v, 2, "+51° 7' 24\"", "+51° 7' 24\"");
    row("example", v, 3, "+51° 7' 24.444\"", "+51° 7' 24.444\"");
    row("example", v, 4, "51.12345679° N", "51.12345679° E");
    row("example", v, 5, "51° 7.40741' N", "51° 7.40741' E");
    row("example", v, 6, "51° 7' 24\" N", "51° 7' 24\" E");
    row("example", v, 7, "51° 7' 24.444\" N", "51° 7' 24.444\" E");
    row("negative", -v, 0, "-51.12345679°", "-51.12345679°");
    row("negative", -v, 1, "-51° 7.40741'", "-51° 7.40741'");
    row("negative", -v, 2, "-51° 7' 24\"", "-51° 7' 24\"");
    row("negative", -v, 3, "-51° 7' 24.444\"", "-51° 7' 24.444\"");
    row("negative", -v, 4, "51.12345679° S", "51.12345679° W");
    row("negative", -v, 5, "51° 7.40741' S", "51° 7.40741' W");
    row("negative", -v, 6, "51° 7' 24\" S", "51° 7' 24\" W");
    row("negative", -v, 7, "51° 7' 24.444\" S", "51° 7' 24.444\" W");
    row("zero", 0.0, 0, "+0.00000000°", "+0.00000000°");
    row("zero", 0.0, 7, "0° 0' 0.000\" N", "0° 0' 0.000\" E");
    row("minus zero", -0.0, 0, "+0.00000000°", "+0.00000000°");
    row("minus zero", -0.0, 5, "0° 0.00000' N", "0° 0.00000' E");
    row("half a degree south", -0.5, 5, "0° 30.00000' S", "0° 30.00000' W");
    row("rounds to zero", -1e-10, 0, "-0.00000000°", "-0.00000000°");
    row("rounds to zero", -1e-10, 7, "0° 0' 0.000\" S", "0° 0' 0.000\" W");
    row("whole", 180.0, 6, "180° 0' 0\" N", "180° 0' 0\" E");
    row("no range", 1234.5, 6, "1234° 30' 0\" N", "1234° 30' 0\" E");
    row("no leading zeros", 5.0 + 4.0 / 60.0 + 3.0 / 3600.0, 6, "5° 4' 3\" N", "5° 4' 3\" E");
    // Rounding does not carry.
    row("59.9996 seconds", 10.0 + 59.9996 / 3600.0, 3, "+10° 0' 60.000\"", "+10° 0' 60.000\"");
    row("59.9996 seconds", 10.0 + 59.9996 / 3600.0, 7, "10° 0' 60.000\" N", "10° 0' 60.000\" E");
    row("59.9996 seconds", 10.0 + 59.9996 / 3600.0, 6, "10° 0' 60\" N", "10° 0' 60\" E");
    row("59.9996 seconds", 10.0 + 59.9996 / 3600.0, 2, "+10° 0' 60\"", "+10° 0' 60\"");
    row("59.6 seconds", 10.5 + 59.6 / 3600.0, 6, "10° 30' 60\" N", "10° 30' 60\" E");
    row("59.4 seconds", 10.5 + 59.4 / 3600.0, 2, "+10° 30' 59\"", "+10° 30' 59\"");
    row("59.999999 minutes", 10.0 + 59.999999 / 60.0, 5, "10° 60.00000' N", "10° 60.00000' E");
    row("59.999999 minutes", 10.0 + 59.999999 / 60.0, 1, "+10° 60.00000'", "+10° 60.00000'");
    row("almost 11", 10.999999999, 4, "11.00000000° N", "11.00000000° E");
    row("almost 11", 10.999999999, 7, "10° 59' 60.000\" N", "10° 59' 60.000\" E");
    // More than any integer holds.
    row("huge", 1e20, 0, "+100000000000000000000.00000000°", "+100000000000000000000.00000000°");
    row("huge", 1e20, 6, "100000000000000000000° 0' 0\" N", "100000000000000000000° 0' 0\" E");
}

void tst_ZrUnitsGeo::styles()
{
    QFETCH(double, value);
    QFETCH(int, style);
    QFETCH(QString, lat);
    QFETCH(QString, lng);
    ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
    QCOMPARE(int(ZrUnits::GetGeoStyle()), style);
    QCOMPARE(ZrUnits::GetLatString(value), lat);
    QCOMPARE(ZrUnits::GetLngString(value), lng);
}

void tst_ZrUnitsGeo::grid()
{
    ZrUnits::SetGeoStyle(eGeoUTM);
    QVERIFY(ZrUnits::GetLatString(51.0).isEmpty());
    QCOMPARE(ZrUnits::GetLngString(51.0), S("Error"));
}

void tst_ZrUnitsGeo::noStyle_data()
{
    QTest::addColumn<int>("style");
    for (const int style :
        {9, 10, 1000, std::numeric_limits<int>::max(), -1, std::numeric_limits<int>::min()})
        QTest::newRow(QByteArray::number(style)) << style;
}

void tst_ZrUnitsGeo::noStyle()
{
    QFETCH(int, style);
    ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
    QCOMPARE(ZrUnits::GetLatString(51.0), S("Error"));
    QCOMPARE(ZrUnits::GetLngString(51.0), S("Error"));
}

void tst_ZrUnitsGeo::degreeSignOfTheProcess()
{
    QCOMPARE(ZrUnits::degrees, QChar(0x00B0));
    for (const double value : {notANumber, infinity, -infinity}) {
        for (int style = 0; style < 8; ++style) {
            ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
            const QString text = ZrUnits::GetLatString(value);
            QVERIFY2(text.contains(S("nan")) || text.contains(S("inf")), qPrintable(text));
            QCOMPARE(text.count(ZrUnits::degrees), 1);
        }
    }
}

void tst_ZrUnitsGeo::typed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");

    const auto row = [](const char* text, double value) { QTest::newRow(text) << S(text) << value; };
    const double dms = 51.0 + 7.0 / 60.0 + 24.444 / 3600.0;
    const double dm = 3.0 + 20.5 / 60.0;
    // Signs and letters, on either side.
    row("51", 51.0);
    row("+51", 51.0);
    row("-51", -51.0);
    row("N51", 51.0);
    row("E51", 51.0);
    row("S51", -51.0);
    row("W51", -51.0);
    row("51N", 51.0);
    row("51E", 51.0);
    row("51S", -51.0);
    row("51W", -51.0);
    row("51 W", -51.0);
    row("S 51", -51.0);
    row("  51.5  ", 51.5);
    row("-51 S", -51.0);
    row("-51 N", -51.0);
    row("S51N", -51.0);
    row("S51W", -51.0);
    row("NS51", -51.0);
    row("+-51", -51.0);
    row("51WE", -51.0);
    // The second sign belongs to the number, and the two multiply.
    row("N -51", -51.0);
    row("S -51", 51.0);
    row("--51", 51.0);
    row("5e1", 50.0);
    row("−51", -51.0); // what Qt takes for a number
    row("0", 0.0);
    row("-0", -0.0);
    row(".5", 0.5);
    // No check of the range.
    row("95", 95.0);
    row("200 E", 200.0);
    row("-1e300", -1e300);
    row("inf", infinity);
    // Degrees.
    row("51.5°", 51.5);
    row("51.5° S", -51.5);
    row("-51.5°", -51.5);
    row("51.5 °", 51.5);
    row("-51° -30", -50.5);
    // Degrees and minutes.
    row("51°30", 51.5);
    row("51° 30.5", 51.0 + 30.5 / 60.0);
    row("51°30'", 51.5);
    row("51° 30' S", -51.5);
    row("51.5°30'", 52.0);
    row("51°59.999", 51.0 + 59.999 / 60.0);
    row("51° 60'", 52.0);
    row("51° 600'", 61.0);
    row("51°-30", 50.5);
    // Minutes and seconds packed.
    row("51°3045", 51.0 + 30.0 / 60.0 + 45.0 / 3600.0);
    row("51°3045.5 W", -(51.0 + 30.0 / 60.0 + 45.5 / 3600.0));
    row("51°3075", 51.0);
    row("51°60", 51.0);
    row("51°99", 51.0);
    row("51°100", 51.0 + 1.0 / 60.0);
    row("51°123456", 51.0 + 1234.0 / 60.0 + 56.0 / 3600.0);
    row("51°inf", 51.0);
    row("-51°nan", -51.0);
    // Degrees, minutes and seconds.
    row("51°7'24.444", dms);
    row("51°7'24.444\"", dms);
    row("51° 7' 24.444\" N", dms);
    row("N51° 7' 24.444\"", dms);
    row("-51°7'24.444\"", -dms);
    row("51°7' 24.444 \"", dms);
    row("51° 7 ' 24.444\"", dms);
    row("51°7'24.444\" and more", dms);
    row("51°7'59.999\"", 51.0 + 7.0 / 60.0 + 59.999 / 3600.0);
    row("51°70'10\"", 51.0 + 70.0 / 60.0 + 10.0 / 3600.0);
    row("51°7'-10\"", 51.0 + 7.0 / 60.0 - 10.0 / 3600.0);
    row("51°7.5'30\"", 51.0 + 7.5 / 60.0 + 30.0 / 3600.0);
    // Parted by blanks.
    row("51 7 24.444 N", dms);
    row("51\t7\n24.444", dms);
    row("3 20.5 W", -dm);
    row("3 20.5", dm);
    row("-3 20.5", -dm);
    row("51 75", 51.0 + 75.0 / 60.0);
    row("51 7 70", 51.0 + 7.0 / 60.0 + 70.0 / 3600.0);
    row("51 -30", 50.5);
    row("0 30 S", -0.5);
}

void tst_ZrUnitsGeo::typed()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    bool ok = false;
    const double result = ZrUnits::GetValue(text, ok);
    QVERIFY(ok);
    QVERIFY2(result == value || std::fabs(result - value) <= 1e-14 * std::fabs(value),
        QByteArray::number(result, 'g', 17));
    QCOMPARE(std::signbit(result), std::signbit(value));
}

void tst_ZrUnitsGeo::refused_data()
{
    QTest::addColumn<QString>("text");

    const auto row = [](const char* text) { QTest::newRow(text) << S(text); };
    QTest::newRow("null") << QString();
    QTest::newRow("empty") << S("");
    QTest::newRow("blank") << S("  \t\n ");
    QTest::newRow("zero byte") << QString(QChar(0));
    row("N");
    row("NS");
    row("-");
    row("N S");
    row("north");
    row("51X");
    row("51n");
    row("51 N E");
    row("1e400");
    row("51,5");
    row("°");
    row("°30");
    row("x°30");
    row("51°x");
    row("51°x'");
    row("51°'");
    row("51°'30\"");
    row("51°7'x");
    row("51°7'60");
    row("51°7'60\"");
    row("51° 7' 60.000\"");
    row("51°7'\"");
    row("51°7'' 3");
    row("51°7'24'");
    row("51°7°24");
    row("51 ° 7 24 3");
    row("1 2 3 4");
    row("51.5 30");
    row("51 7.5 30");
    row("51 x");
    row("x 7");
    row("51 7 x");
    row("99999999999 7");
    row("51° 7′ 24″ N"); // primes are the business of whoever takes pasted text
    QTest::newRow("long") << QString(100000, QLatin1Char('1')) + S("x");
    QTest::newRow("many signs") << QString(100000, ZrUnits::degrees);
}

void tst_ZrUnitsGeo::refused()
{
    QFETCH(QString, text);
    bool ok = true;
    const double result = ZrUnits::GetValue(text, ok);
    QVERIFY2(!ok, QByteArray::number(result, 'g', 17));
    QVERIFY(result == 0.0 && !std::signbit(result));
}

void tst_ZrUnitsGeo::okIsAlwaysSet()
{
    bool ok = false;
    ZrUnits::GetValue(S("51° 7' 24\" N"), ok);
    QVERIFY(ok);
    ZrUnits::GetValue(S("51° 7' 64\" N"), ok);
    QVERIFY(!ok);
    // "51° 7' 64" goes on as blanks-separated parts, where the signs are in the way; without them it is fine.
    QCOMPARE(ZrUnits::GetValue(S("51 7 64 N"), ok), 51.0 + 7.0 / 60.0 + 64.0 / 3600.0);
    QVERIFY(ok);
}

void tst_ZrUnitsGeo::roundTrip_data()
{
    QTest::addColumn<int>("style");
    for (int style = 0; style < 8; ++style)
        QTest::newRow(QByteArray::number(style)) << style;
}

/// Every text parses to the value it shows, which is within half a figure of the one it was made of. The one
/// exception are texts that show 60 seconds, which are refused; texts that show 60 minutes are read.
void tst_ZrUnitsGeo::roundTrip()
{
    QFETCH(int, style);
    ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
    std::vector<double> values{0.0, 1e-12, 1e-9, 4.9e-9, 5.1e-9, 1.0 / 3600.0, 0.5 / 3600.0, 1.0 / 60.0,
        59.0 / 60.0, 59.9999999 / 60.0, 0.99999999, 0.999999996, 0.9999999999, 1.0, 89.5, 89.9999999999, 90.0,
        179.9999999999, 180.0, 359.9999, 12.0 + 59.0 / 60.0 + 59.4999 / 3600.0,
        12.0 + 59.0 / 60.0 + 59.5001 / 3600.0, 12.0 + 59.0 / 60.0 + 59.99949 / 3600.0,
        12.0 + 59.0 / 60.0 + 59.99951 / 3600.0};
    std::mt19937 random(20240603);
    std::uniform_real_distribution<double> anywhere(0.0, 180.0);
    for (int i = 0; i < 1500; ++i)
        values.push_back(anywhere(random));
    // Whole minutes and seconds, and their neighbours.
    std::uniform_int_distribution<int> seconds(0, 180 * 3600);
    for (int i = 0; i < 1500; ++i) {
        const double value = seconds(random) / 3600.0;
        values.insert(values.end(), {value, std::nextafter(value, -1.0), std::nextafter(value, 200.0)});
    }

    int sixties = 0;
    for (double value : values) {
        for (int i = 0; i < 4; ++i) {
            value = -value;
            const QString text = i < 2 ? ZrUnits::GetLatString(value) : ZrUnits::GetLngString(value);
            const Shown shown = Read(text);
            bool ok = !shown.sixty;
            const double back = ZrUnits::GetValue(text, ok);
            sixties += shown.sixty ? 1 : 0;
            const bool showsIt = shown.matched && std::fabs(shown.value - value) <= HalfFigure(style) + 1e-12;
            const bool isRead = shown.sixty ? !ok && back == 0.0
                                            : ok && std::fabs(back - shown.value) <= 1e-13
                    && (back == 0.0 || std::signbit(back) == std::signbit(value));
            if (!showsIt || !isRead)
                QFAIL(qPrintable(text));
        }
    }
    if (style % 4 < 2)
        QCOMPARE(sixties, 0); // these show no seconds
    else
        QVERIFY(sixties > 0);
}

void tst_ZrUnitsGeo::secondsOfSixty()
{
    const double value = 51.0 + 7.0 / 60.0 + 59.9999 / 3600.0;
    for (const eGeoStyle style : {eGeoSignedDMS, eGeoSignedDMSFrac, eGeoDMS, eGeoDMSFrac}) {
        ZrUnits::SetGeoStyle(style);
        const QString text = ZrUnits::GetLatString(value);
        QVERIFY2(text.contains(S("7' 60")), qPrintable(text));
        bool ok = true;
        QCOMPARE(ZrUnits::GetValue(text, ok), 0.0);
        QVERIFY(!ok);
    }
}

void tst_ZrUnitsGeo::minutesOfSixty()
{
    const double value = 51.0 + 59.999999 / 60.0;
    for (const eGeoStyle style : {eGeoSignedDegMin, eGeoDegMin}) {
        ZrUnits::SetGeoStyle(style);
        const QString text = ZrUnits::GetLatString(-value);
        QVERIFY2(text.contains(S("51° 60.00000'")), qPrintable(text));
        bool ok = false;
        QCOMPARE(ZrUnits::GetValue(text, ok), -52.0);
        QVERIFY(ok);
    }
}

QTEST_GUILESS_MAIN(tst_ZrUnitsGeo)
#include "tst_ZrUnitsGeo.moc"
