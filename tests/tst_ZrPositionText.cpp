#include "ZrKit/geo/ZrPositionText.h"
#include "ZrUnitsState.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

QByteArray Words(const ZrPositionText& p)
{
    return QByteArray::number(p.lat, 'g', 12) + ' ' + QByteArray::number(p.lng, 'g', 12) + ' '
        + QByteArray::number(p.zone) + (p.south ? " south " : " north ") + QByteArray::number(p.east, 'f', 3)
        + ' ' + QByteArray::number(p.north, 'f', 3);
}

/// What a style of positions shows is within this of what it was made of, degrees.
double Figure(int style)
{
    switch (style % 4) {
    case 0:
        return 0.51e-8;
    case 1:
        return 0.51e-5 / 60.0;
    case 2:
        return 0.51 / 3600.0;
    default:
        return 0.51e-3 / 3600.0;
    }
}

} // namespace

class tst_ZrPositionText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void geographic_data();
    void geographic();
    void grid_data();
    void grid();
    void refused_data();
    void refused();
    void failureLeavesThePosition();
    void everyStyleComesBack_data();
    void everyStyleComesBack();
    void gridTextComesBack_data();
    void gridTextComesBack();
    void stateOfTheProcessIsNotTouched();
};

void tst_ZrPositionText::geographic_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");

    const auto row
        = [](const char* text, double lat, double lng) { QTest::newRow(text) << S(text) << lat << lng; };
    const double lat = 51.0 + 7.0 / 60.0 + 24.444 / 3600.0;
    const double lng = -(1.0 + 30.0 / 60.0 + 15.0 / 3600.0);
    // Separators.
    row("51.5, -1.25", 51.5, -1.25);
    row("51.5,-1.25", 51.5, -1.25);
    row("51.5 -1.25", 51.5, -1.25);
    row("51.5 , -1.25", 51.5, -1.25);
    row("51.5;-1.25", 51.5, -1.25);
    row("51.5; -1.25", 51.5, -1.25);
    row("51.5\t-1.25", 51.5, -1.25);
    row("51.5\n-1.25", 51.5, -1.25);
    row("51.5\r\n-1.25\r\n", 51.5, -1.25);
    row("51.5/-1.25", 51.5, -1.25);
    row("51.5 | -1.25", 51.5, -1.25);
    row("  51.5    -1.25  ", 51.5, -1.25);
    row("(51.5, -1.25)", 51.5, -1.25);
    row("[51.5, -1.25]", 51.5, -1.25);
    row("+51.5-001.25", 51.5, -1.25);
    row("51, 1", 51.0, 1.0);
    row("51,123", 51.0, 123.0);
    row("51 1", 51.0, 1.0);
    row(".5 .25", 0.5, 0.25);
    row("51. 1.", 51.0, 1.0);
    row("0 0", 0.0, 0.0);
    row("90 180", 90.0, 180.0);
    row("-90 -180", -90.0, -180.0);
    // Letters.
    row("51.5N 1.25W", 51.5, -1.25);
    row("51.5 N 1.25 W", 51.5, -1.25);
    row("51.5N, 1.25W", 51.5, -1.25);
    row("51.5N1.25W", 51.5, -1.25);
    row("N51.5W1.25", 51.5, -1.25);
    row("N51.5 W1.25", 51.5, -1.25);
    row("N 51.5, W 1.25", 51.5, -1.25);
    row("S51.5 E1.25", -51.5, 1.25);
    row("51.5s 1.25e", -51.5, 1.25);
    row("1.25W 51.5N", 51.5, -1.25);
    row("W1.25, N51.5", 51.5, -1.25);
    row("51.5N, -1.25", 51.5, -1.25);
    row("51.5, 1.25W", 51.5, -1.25);
    row("1.25W, 51.5", 51.5, -1.25);
    row("51.5 N / 1.25 W", 51.5, -1.25);
    row("+51.5 N, 1.25 W", 51.5, -1.25);
    row("51.5 north 1.25 west", 51.5, -1.25);
    // Degrees and minutes.
    row("51 30 -1 15", 51.5, -1.25);
    row("51 30, -1 15", 51.5, -1.25);
    row("51 30,1 20", 51.5, 1.0 + 20.0 / 60.0);
    row("51 30.0,1 20", 51.5, 1.0 + 20.0 / 60.0);
    row("51°30' -1°15'", 51.5, -1.25);
    row("51° 30' N 1° 15' W", 51.5, -1.25);
    row("51°30.0'N 1°15.0'W", 51.5, -1.25);
    row("51°30N 1°15W", 51.5, -1.25);
    row("N51 30 W1 15", 51.5, -1.25);
    row("N 51 30 W 1 15", 51.5, -1.25);
    row("51 30 N 1 15 W", 51.5, -1.25);
    row("51 30 N, 1 15", 51.5, 1.25);
    row("51.5N 1 15W", 51.5, -1.25);
    row("51.5; 1 15", 51.5, 1.25);
    row("51:30 -1:15", 51.5, -1.25);
    row("51.5° 1°15'", 51.5, 1.25);
    row("51 deg 30 min N, 1 deg 15 min W", 51.5, -1.25);
    // Degrees, minutes and seconds.
    row("51 7 24.444 N 1 30 15 W", lat, lng);
    row("51 7 24.444 -1 30 15", lat, lng);
    row("51°7'24.444\"N 1°30'15\"W", lat, lng);
    row("51° 7' 24.444\" N, 1° 30' 15\" W", lat, lng);
    row("N51° 7' 24.444\" W1° 30' 15\"", lat, lng);
    row("51°7'24.444''N 1°30'15''W", lat, lng);
    row("51:07:24.444N 1:30:15W", lat, lng);
    row("51:07:24.444, -1:30:15", lat, lng);
    row("+51° 7' 24.444\"\t-1° 30' 15\"", lat, lng);
    row("51\t7\t24.444\tN\t1\t30\t15\tW", lat, lng);
    row("51 degrees 7 minutes 24.444 seconds north 1 degree 30 minutes 15 seconds west", lat, lng);
    // 60 seconds, as rounding may show them.
    row("51° 7' 60.000\" N 1° 59' 60\" W", 51.0 + 8.0 / 60.0, -2.0);
    row("51° 60.00000' N 1° 0' W", 52.0, -1.0);
    // Typographic signs.
    row("51°7′24.444″N 1°30′15″W", lat, lng);
    row("51º 7’ 24.444” N 1º 30’ 15” W", lat, lng);
    row("51˚ 7ʹ 24.444ʺ N 1˚ 30ʹ 15ʺ W", lat, lng);
    row("51°7′24.444′′N 1°30′15′′W", lat, lng);
    row("51.5, −1.25", 51.5, -1.25);
    row("51.5 −1.25", 51.5, -1.25);
    row("−51.5; –1.25", -51.5, -1.25);
    row("51.5\u00A0N\u00A01.25\u202FW", 51.5, -1.25);
    row("\uFEFF51.5, \u200B-1.25\u200E", 51.5, -1.25);
    // Decimal commas.
    row("51,5 -1,25", 51.5, -1.25);
    row("51,5; -1,25", 51.5, -1.25);
    row("51,5;1,25", 51.5, 1.25);
    row("51,5\t1,25", 51.5, 1.25);
    row("51,5, -1,25", 51.5, -1.25);
    row("51,5 1,25", 51.5, 1.25);
    row("51,5° N 1,25° W", 51.5, -1.25);
    row("51,5N1,25W", 51.5, -1.25);
    row("51° 7,4074' N 1° 30,25' W", 51.0 + 7.4074 / 60.0, lng);
    row("51 7,4074 1 30,25", 51.0 + 7.4074 / 60.0, -lng);
    row("51,5 100", 51.5, 100.0); // 5° 100' is none
    // Words.
    row("Lat: 51.5 Lon: -1.25", 51.5, -1.25);
    row("lat 51.5, lng -1.25", 51.5, -1.25);
    row("lat=51.5 long=-1.25", 51.5, -1.25);
    row("Latitude 51° 30' N Longitude 1° 15' W", 51.5, -1.25);
    row("Longitude: -1.25, Latitude: 51.5", 51.5, -1.25);
    row("LON -1.25 LAT 51.5", 51.5, -1.25);
    row("Lat. 51,5 Long. 1,25", 51.5, 1.25);
    row("lat51.5lon1.25", 51.5, 1.25);
}

void tst_ZrPositionText::geographic()
{
    QFETCH(QString, text);
    QFETCH(double, lat);
    QFETCH(double, lng);
    ZrPositionText p;
    QString error;
    QVERIFY2(ZrPositionText::Parse(text, p, &error), qPrintable(error));
    QVERIFY2(std::fabs(p.lat - lat) < 1e-12 && std::fabs(p.lng - lng) < 1e-12, Words(p));
    QVERIFY(!p.isGrid);
    QCOMPARE(p.zone, 0);
    QVERIFY(std::isnan(p.east) && std::isnan(p.north));
    QVERIFY(error.isEmpty());
    QVERIFY(ZrPositionText::Parse(text, p)); // no error wanted
}

void tst_ZrPositionText::grid_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("zone");
    QTest::addColumn<bool>("south");
    QTest::addColumn<double>("east");
    QTest::addColumn<double>("north");

    const auto row = [](const char* text, int zone, bool south, double east, double north) {
        QTest::newRow(text) << S(text) << zone << south << east << north;
    };
    // Zone and hemisphere.
    row("30U 444500 5551200", 30, false, 444500.0, 5551200.0);
    row("30 U 444500 5551200", 30, false, 444500.0, 5551200.0);
    row("30u 444500 5551200", 30, false, 444500.0, 5551200.0);
    row("30N 444500 5551200", 30, false, 444500.0, 5551200.0);
    row("30 north 444500 5551200", 30, false, 444500.0, 5551200.0);
    row("UTM 30N 444500 5551200", 30, false, 444500.0, 5551200.0);
    row("UTM zone 30 N: 444500, 5551200", 30, false, 444500.0, 5551200.0);
    row("Zone 30U, 444500 mE, 5551200 mN", 30, false, 444500.0, 5551200.0);
    row("444500 mE 5551200 mN zone 30U", 30, false, 444500.0, 5551200.0);
    row("444500 5551200 30U", 30, false, 444500.0, 5551200.0);
    row("444500 5551200 (zone 30U)", 30, false, 444500.0, 5551200.0);
    row("444500 5551200, UTM zone 30 north", 30, false, 444500.0, 5551200.0);
    row("1N 500000 0", 1, false, 500000.0, 0.0);
    row("01N 500000 100", 1, false, 500000.0, 100.0);
    row("60M 500000 9999999", 60, true, 500000.0, 9999999.0);
    row("34H 261878 6243186", 34, true, 261878.0, 6243186.0);
    row("34S 261878 6243186", 34, true, 261878.0, 6243186.0);
    row("34 S 261878 6243186", 34, true, 261878.0, 6243186.0);
    row("34 south 261878 6243186", 34, true, 261878.0, 6243186.0);
    row("10 north 551000 4180000", 10, false, 551000.0, 4180000.0);
    row("10 south 551000 4180000", 10, true, 551000.0, 4180000.0);
    row("33X 500000 9000000", 33, false, 500000.0, 9000000.0);
    row("33C 500000 1200000", 33, true, 500000.0, 1200000.0);
    // A northing at the edge of its band.
    row("30U 500000 5317000", 30, false, 500000.0, 5317000.0);
    // Labels and order.
    row("30U 444500mE 5551200mN", 30, false, 444500.0, 5551200.0);
    row("30U 444500E 5551200N", 30, false, 444500.0, 5551200.0);
    row("30U E444500 N5551200", 30, false, 444500.0, 5551200.0);
    row("30U E 444500 N 5551200", 30, false, 444500.0, 5551200.0);
    row("30U easting: 444500 northing: 5551200", 30, false, 444500.0, 5551200.0);
    row("30U easting=444500, northing=5551200", 30, false, 444500.0, 5551200.0);
    row("30U 5551200 mN 444500 mE", 30, false, 444500.0, 5551200.0);
    row("30U N 5551200 E 444500", 30, false, 444500.0, 5551200.0);
    row("30U E 444500 m N 5551200 m", 30, false, 444500.0, 5551200.0);
    row("30U N 5551200, E 444500", 30, false, 444500.0, 5551200.0);
    row("30U 444500 m 5551200 m", 30, false, 444500.0, 5551200.0);
    row("30U 444500 mE 5551200", 30, false, 444500.0, 5551200.0);
    row("30U 5551200 mN 444500", 30, false, 444500.0, 5551200.0);
    // Figures.
    row("30U 444500.25 5551200.75", 30, false, 444500.25, 5551200.75);
    row("30U 444500.25, 5551200.75", 30, false, 444500.25, 5551200.75);
    row("30U 444500.25,5551200.75", 30, false, 444500.25, 5551200.75);
    row("30U 444500,5551200", 30, false, 444500.0, 5551200.0);
    row("30U 444500;5551200", 30, false, 444500.0, 5551200.0);
    row("30U\t444500\t5551200", 30, false, 444500.0, 5551200.0);
    row("30U 444500,25 5551200,75", 30, false, 444500.25, 5551200.75);
    row("30U 444500,25; 5551200,75", 30, false, 444500.25, 5551200.75);
    row("30U 444500,25, 5551200,75", 30, false, 444500.25, 5551200.75);
    row("30U 444,500 5,551,200", 30, false, 444500.0, 5551200.0);
    row("30U 444,500.25 mE, 5,551,200.75 mN", 30, false, 444500.25, 5551200.75);
    row("30U 444500.25\u00A0mE 5551200.75\u00A0mN", 30, false, 444500.25, 5551200.75);
    // Feet.
    row("30N 1640416.67 ftE 18212520.33 ftN", 30, false, 1640416.67 * 1200.0 / 3937.0,
        18212520.33 * 1200.0 / 3937.0);
    row("30N 1640416.67ft 18212520.33ft", 30, false, 1640416.67 * 1200.0 / 3937.0,
        18212520.33 * 1200.0 / 3937.0);
}

void tst_ZrPositionText::grid()
{
    QFETCH(QString, text);
    QFETCH(int, zone);
    QFETCH(bool, south);
    QFETCH(double, east);
    QFETCH(double, north);
    ZrPositionText p;
    QString error;
    QVERIFY2(ZrPositionText::Parse(text, p, &error), qPrintable(error));
    QVERIFY(p.isGrid);
    QVERIFY2(p.zone == zone && p.south == south, Words(p));
    QVERIFY2(std::fabs(p.east - east) < 1e-6 && std::fabs(p.north - north) < 1e-6, Words(p));
    ZrProj proj;
    proj.SetupUTM(south ? -1.0 : 1.0, 6.0 * zone - 183.0);
    double lat = 0.0;
    double lng = 0.0;
    ZrUnits::EN2LL(ZrSphd(), proj, east, north, lat, lng);
    QVERIFY2(std::fabs(p.lat - lat) < 1e-10 && std::fabs(p.lng - lng) < 1e-10, Words(p));
    QVERIFY((p.lat < 0.0) == south || p.north == 0.0);
}

void tst_ZrPositionText::refused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");

    const auto row = [](const char* text, const char* error) { QTest::newRow(text) << S(text) << S(error); };
    QTest::newRow("null") << QString() << S("The position is empty");
    row("", "The position is empty");
    row(" \t\n ", "The position is empty");
    row("north west", "There is no number in it");
    row("\u200B", "There is no number in it");
    QTest::newRow("long") << QString(201, QLatin1Char('1')) << S("The text is too long for a position");
    QTest::newRow("megabytes") << QString(5000000, QLatin1Char('x'))
                               << S("The text is too long for a position");
    // One value, or none.
    row("51.5", "It is one value; a position needs a latitude and a longitude");
    row("51° 30' N", "It is one value; a position needs a latitude and a longitude");
    row("51.5,",
        "Latitude and longitude cannot be told apart; write a semicolon between them, and N, S, E or W "
        "behind");
    row("hello 5", "It is not a position in latitude and longitude, nor with zone, easting and northing");
    row("51.5x, 1", "It is not a position in latitude and longitude, nor with zone, easting and northing");
    row("٥١ 1", "It is not a position in latitude and longitude, nor with zone, easting and northing");
    row("1 2 3", "It is one value; a position needs a latitude and a longitude");
    row("1 2 3 4 5",
        "Latitude and longitude cannot be told apart; write a semicolon between them, and N, S, E or W "
        "behind");
    row("1, 2, 3",
        "Latitude and longitude cannot be told apart; write a semicolon between them, and N, S, E or W "
        "behind");
    row("51,5,1,25",
        "Latitude and longitude cannot be told apart; write a semicolon between them, and N, S, E or W "
        "behind");
    row("51-30",
        "Latitude and longitude cannot be told apart; write a semicolon between them, and N, S, E or W "
        "behind");
    row("51.5 - 1.25",
        "Latitude and longitude cannot be told apart; write a semicolon between them, and N, S, E or W "
        "behind");
    row("51.5.5 1",
        "Latitude and longitude cannot be told apart; write a semicolon between them, and N, S, E or W "
        "behind");
    row("N51.5N 1W",
        "Latitude and longitude cannot be told apart; write a semicolon between them, and N, S, E or W "
        "behind");
    row("1e1 2e1",
        "Latitude and longitude cannot be told apart; write a semicolon between them, and N, S, E or W "
        "behind");
    // Two readings.
    row("51,5 1",
        "It can be read as 51.5; 1 and as 51; 5.016666667 degrees; write a semicolon between the two values");
    row("51°30' 1 20",
        "It can be read as 51.5; 1.333333333 and as 51.50027778; 20 degrees; write a semicolon between "
        "the two values");
    row("51 30 N 1 15",
        "It can be read as 1.25; 51.5 and as 51.5; 1.25 degrees; write a semicolon between the two "
        "values");
    // Values.
    row("95, 1", "The latitude 95 is beyond 90 degrees; the latitude comes first");
    row("-133.5 45.25", "The latitude -133.5 is beyond 90 degrees; the latitude comes first");
    row("200, 1", "The latitude 200 is beyond 90 degrees");
    row("95, 100", "The latitude 95 is beyond 90 degrees");
    row("95 N 1 W", "The latitude 95 is beyond 90 degrees");
    row("90.0001, 0", "The latitude 90.0001 is beyond 90 degrees; the latitude comes first");
    row("45, 181", "The longitude 181 is beyond 180 degrees");
    row("45, -180.001", "The longitude -180.001 is beyond 180 degrees");
    row("45 N 200 E", "The longitude 200 is beyond 180 degrees");
    row("51 75 N 1 20 W", "The minutes of 51 75 N are more than 60");
    row("51 7 60.5 N 1 20 W", "The seconds of 51 7 60.5 N are more than 60");
    row("51.5 30 N 1 20 W", "Only the last part of 51.5 30 N may have decimals");
    row("51 30.5 30 N 1 20 W", "Only the last part of 51 30.5 30 N may have decimals");
    row("-51.5 S, 1 W", "-51.5 S has a minus sign and a letter");
    row("51.5 N, W -1", "W -1 has a minus sign and a letter");
    row("51.5 N, 1 S", "Both values are latitudes");
    row("51.5 W, 1 E", "Both values are longitudes");
    row("lat 51.5 lat 1", "Both values are latitudes");
    row("lat 51.5 W, lon 1", "The letter W does not belong to a latitude");
    row("lat 51.5, lon 1 S", "The letter S does not belong to a longitude");
    row("lat 51 75, lon 1", "The minutes of 51 75 are more than 60");
    // The grid.
    row("444500 5551200", "The zone with its letter is missing; write for instance 30U or 30 north in front");
    row("30 444500 5551200",
        "The zone with its letter is missing; write for instance 30U or 30 north in front");
    row("651409.90 mE 313177.27 mN",
        "The zone with its letter is missing; write for instance 30U or 30 north in front");
    row("61U 444500 5551200", "There is no zone 61; they go from 1 to 60");
    row("0U 444500 5551200", "There is no zone 0; they go from 1 to 60");
    row("30I 444500 5551200", "I is no band of a zone; they go from C to X without I and O");
    row("30A 444500 5551200", "A is no band of a zone; they go from C to X without I and O");
    row("30U 444500", "Beside the zone there must be an easting and a northing, as in 30U 444500 5551200");
    row("30U 444500 5551200 7",
        "Beside the zone there must be an easting and a northing, as in 30U 444500 5551200");
    row("30U 444500 555x200",
        "Beside the zone there must be an easting and a northing, as in 30U 444500 5551200");
    row("30U 444,50 5,551,200",
        "Beside the zone there must be an easting and a northing, as in 30U 444500 5551200");
    row("30U E 444500 mN 5551200",
        "Beside the zone there must be an easting and a northing, as in 30U 444500 5551200");
    row("30U VB 44500 51200",
        "Grid squares of two letters are not read; write the whole easting and northing");
    row("30U 444500 mE 5551200 mE", "Both values are eastings");
    row("30U 444500 mN 5551200 mN", "Both values are northings");
    row("30N 1640416.67 ftE 5551200 mN", "One value is in feet, the other is not");
    row("30N 99999 5551200", "The easting 99999 m is not between 100000 and 900000 m");
    row("30N 900001 5551200", "The easting 900001 m is not between 100000 and 900000 m");
    row("30N 5551200 444500", "The easting 5551200 m is not between 100000 and 900000 m");
    row("30N -444500 5551200", "The easting -444500 m is not between 100000 and 900000 m");
    row("30N 444500 -1", "The northing -1 m is not between 0 and 10000000 m");
    row("30N 444500 10000001", "The northing 10000001 m is not between 0 and 10000000 m");
    row("30N 444500 9700000",
        "The northing 9700000 m is beyond the grid, which goes from 80 degrees south to 84 north");
    row("30 south 444500 500000",
        "The northing 500000 m is beyond the grid, which goes from 80 degrees south to 84 north");
    row("30N 800000 9000000", "The easting 800000 m is too far from the middle of the zone at this latitude");
    row("30S 444500 4000000",
        "30S may be the band S, 32 to 40 degrees north, or the southern hemisphere; write 30 north or 30 "
        "south");
    row("30T 444500 5551200", "The band T goes from latitude 40 to 48, the position is at 50.1105");
    row("30X 444500 5551200", "The band X goes from latitude 72 to 84, the position is at 50.1105");
    row("30C 444500 5551200", "The band C goes from latitude -80 to -72, the position is at -40.1878");
}

void tst_ZrPositionText::refused()
{
    QFETCH(QString, text);
    QFETCH(QString, error);
    ZrPositionText p;
    QString actual;
    QVERIFY2(!ZrPositionText::Parse(text, p, &actual), Words(p));
    QCOMPARE(actual, error);
    QVERIFY(!ZrPositionText::Parse(text, p));
}

void tst_ZrPositionText::failureLeavesThePosition()
{
    ZrPositionText p;
    QVERIFY(ZrPositionText::Parse(S("34H 261878 6243186"), p));
    const QByteArray before = Words(p);
    for (const char* text : {"", "x", "1", "95, 1", "30U 1 2", "30U 444500 99999999"}) {
        QVERIFY(!ZrPositionText::Parse(S(text), p));
        QCOMPARE(Words(p), before);
        QVERIFY(p.isGrid);
    }
    // A position without grid wipes that of the one before.
    QVERIFY(ZrPositionText::Parse(S("1, 2"), p));
    QVERIFY(!p.isGrid && p.zone == 0 && !p.south && std::isnan(p.east));
}

void tst_ZrPositionText::everyStyleComesBack_data()
{
    QTest::addColumn<int>("style");
    for (int style = 0; style < 8; ++style)
        QTest::newRow(QByteArray::number(style)) << style;
}

void tst_ZrPositionText::everyStyleComesBack()
{
    QFETCH(int, style);
    const ZrUnitsState state;
    ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
    std::mt19937 random(20240613);
    std::uniform_real_distribution<double> lats(-90.0, 90.0);
    std::uniform_real_distribution<double> lngs(-180.0, 180.0);
    const QString gaps[] = {S(", "), S(" "), S("; "), S(";"), S("\t"), S("\n"), S(",")};
    for (int i = 0; i < 400; ++i) {
        // Whole minutes now and then, which round to 60 seconds.
        const double lat
            = i % 4 == 0 ? std::nextafter(std::round(lats(random) * 60.0) / 60.0, 0.0) : lats(random);
        const double lng
            = i % 4 == 0 ? std::nextafter(std::round(lngs(random) * 60.0) / 60.0, 0.0) : lngs(random);
        const QString text = ZrUnits::GetLatString(lat) + gaps[i % 7] + ZrUnits::GetLngString(lng);
        ZrPositionText p;
        QString error;
        if (!ZrPositionText::Parse(text, p, &error))
            QFAIL(qPrintable(text + S(": ") + error));
        if (!(std::fabs(p.lat - lat) < Figure(style) && std::fabs(p.lng - lng) < Figure(style)))
            QFAIL(qPrintable(text + S(": ") + QString::fromLatin1(Words(p))));
    }
}

void tst_ZrPositionText::gridTextComesBack_data()
{
    QTest::addColumn<bool>("feet");
    QTest::newRow("metres") << false;
    QTest::newRow("feet") << true;
}

void tst_ZrPositionText::gridTextComesBack()
{
    QFETCH(bool, feet);
    const ZrUnitsState state;
    if (feet)
        ZrUnits::SetShortLengthToFt();
    std::mt19937 random(20240614);
    std::uniform_real_distribution<double> lats(-79.9, 83.9);
    std::uniform_real_distribution<double> lngs(-180.0, 180.0);
    const QString bands = S("CDEFGHJKLMNPQRSTUVWX");
    for (int i = 0; i < 400; ++i) {
        const double lat = lats(random);
        const double lng = lngs(random);
        QString east, north;
        ZrUnits::GetENStrings(lat, lng, east, north);
        const int zone = int(std::floor((lng + 180.0) / 6.0)) + 1;
        const QChar band = bands[std::min(19, int(std::floor((lat + 80.0) / 8.0)))];
        const QString hemisphere = lat < 0.0 ? S(" south") : S(" north");
        // The letter S alone can mean either half of the world.
        const QString letter = band == QLatin1Char('S') ? hemisphere : QString(band);
        const QString text
            = QString::number(zone) + (i % 2 == 0 ? letter : hemisphere) + S(" ") + east + S(" ") + north;
        ZrPositionText p;
        QString error;
        if (!ZrPositionText::Parse(text, p, &error))
            QFAIL(qPrintable(text + S(": ") + error));
        const double off = std::hypot(p.lat - lat, (p.lng - lng) * std::cos(lat * M_PI / 180.0)) * 111000.0;
        if (!(off < 0.01 && p.zone == zone && p.south == (lat < 0.0)))
            QFAIL(qPrintable(text + S(": ") + QString::fromLatin1(Words(p))));
    }
}

void tst_ZrPositionText::stateOfTheProcessIsNotTouched()
{
    const ZrUnitsState state;
    ZrUnits::wgs84.semiMajor = 1.0;
    ZrUnits::utm.scaleFactor = 7.0;
    ZrUnits::utm.lngOrigin = 0.25;
    ZrUnits::SetShortLengthToFt();
    ZrUnits::SetGeoStyle(eGeoUTM);
    ZrUnits::degrees = QLatin1Char('d');
    ZrPositionText p;
    QVERIFY(ZrPositionText::Parse(S("30U 444500 5551200"), p));
    QVERIFY(std::fabs(p.lat - 50.11) < 0.01 && std::fabs(p.lng + 3.776) < 0.01);
    QCOMPARE(p.east, 444500.0);
    QVERIFY(ZrUnits::utm.lngOrigin == 0.25);
    QVERIFY(ZrPositionText::Parse(S("51° 30' N 1° W"), p));
    QVERIFY(p.lat == 51.5);
}

QTEST_GUILESS_MAIN(tst_ZrPositionText)
#include "tst_ZrPositionText.moc"
