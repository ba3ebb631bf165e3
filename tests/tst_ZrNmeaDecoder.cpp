// Expected values are reckoned by hand: degrees + minutes / 60, knots x 1852 / 3600, km/h / 3.6, feet x
// 0.3048, fathoms x 1.8288; times with date(1).

#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrEnvRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNmeaDecoder.h"
#include "ZrLogFixture.h"

#include <QRegularExpression>
#include <QSet>

#include <cmath>

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

/// The sentence of \p body, which stands without start character and checksum.
ZrNmeaSentence Sentence(const QByteArray& body)
{
    ZrNmeaSentence sentence;
    QString error;
    if (!ZrNmeaSentence::Parse("$" + body, sentence, &error))
        qFatal("%s: %s", body.constData(), qPrintable(error));
    return sentence;
}

/// A number that is equal within a part in 10^6 (binary32), or not known in both.
bool Same(double actual, double expected)
{
    if (std::isnan(expected) || std::isnan(actual))
        return std::isnan(expected) && std::isnan(actual);
    return std::abs(actual - expected) <= 1e-6 * std::max(1.0, std::abs(expected));
}

QString Text(double actual, double expected)
{
    return QStringLiteral("%1 instead of %2").arg(actual, 0, 'g', 12).arg(expected, 0, 'g', 12);
}

/// The record of type `Record` in \p records, which must hold at most one. False when there is none.
template <class Record> bool Find(const std::vector<ZrDecodedRecord>& records, Record& out)
{
    int found = 0;
    for (const ZrDecodedRecord& record : records) {
        if (record.type == zr::rec_type(Record::RecType)) {
            if (record.format != Record::Format || record.payload.size() != Record::Size
                || !Record::Decode(Span(record.payload), out))
                return false;
            ++found;
        }
    }
    return found == 1;
}

const char* const allFormatters[] = {
    "GGA", "GLL", "RMC", "DBT", "DPT", "DBS", "HDT", "HDG", "HDM", "VTG", "VHW", "MTW", "MWV", "MWD", "ZDA"};

} // namespace

#define COMPARE_NUMBERS(actual, expected)                                                                    \
    QVERIFY2(Same((actual), (expected)), qPrintable(Text((actual), (expected))))

class tst_ZrNmeaDecoder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsExactlyWhatTheHeaderLists();
    void knowsNothingElse_data();
    void knowsNothingElse();
    void unknownGivesNothing_data();
    void unknownGivesNothing();

    void position_data();
    void position();
    void positionOutOfRangeGivesNoFix_data();
    void positionOutOfRangeGivesNoFix();
    void fix_data();
    void fix();
    void notValidGivesNoRecord_data();
    void notValidGivesNoRecord();
    void rmcGivesFixAndMotion();
    void rmcParts_data();
    void rmcParts();
    void depth_data();
    void depth();
    void motion_data();
    void motion();
    void environment_data();
    void environment();
    void emptySentencesGiveNoRecord_data();
    void emptySentencesGiveNoRecord();

    void noTimeWithoutDate();
    void constructorDateServesUntilOneIsTold();
    void timeOfDay_data();
    void timeOfDay();
    void badTimeOfDayKeepsTheClock_data();
    void badTimeOfDayKeepsTheClock();
    void timeStaysForSentencesWithoutOne();
    void dates_data();
    void dates();
    void badDatesAreNotTaken_data();
    void badDatesAreNotTaken();
    void dateOfInvalidPositionIsNotTaken();
    void timeOfInvalidPositionIsTaken();
    void dateWithoutTimeOnlyCountsWhenNoneIsKnown();
    void midnight();
    void midnightOverMonthAndLeapDay();
    void lateSentenceAtMidnight();
    void smallStepsBackAreNoMidnight();
    void halfADayIsTheBound();
    void leapSecond();
    void realPassage();
    void damagedLinesNeverGiveDamagedRecords();
};

void tst_ZrNmeaDecoder::knowsExactlyWhatTheHeaderLists()
{
    QFile header(QStringLiteral(ZR_SOURCE_DIR "/ZrKit/records/ZrNmeaDecoder.h"));
    QVERIFY(header.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(header.readAll());
    const int from = text.indexOf(QStringLiteral("/// Decoded:"));
    const int to = text.indexOf(QStringLiteral("Others"), from);
    QVERIFY(from >= 0 && to > from);
    QSet<QByteArray> listed;
    static const QRegularExpression word(QStringLiteral("\\b[A-Z]{3}\\b"));
    for (auto found = word.globalMatch(text.mid(from, to - from)); found.hasNext();)
        listed << found.next().captured().toLatin1();

    QSet<QByteArray> known;
    for (char a = 'A'; a <= 'Z'; ++a)
        for (char b = 'A'; b <= 'Z'; ++b)
            for (char c = 'A'; c <= 'Z'; ++c) {
                const QByteArray formatter = {QByteArray(1, a) + b + c};
                if (ZrNmeaDecoder::Knows(formatter))
                    known << formatter;
            }
    QSet<QByteArray> expected;
    for (const char* formatter : allFormatters)
        expected << formatter;
    QCOMPARE(known, expected);
    QCOMPARE(listed, expected);
}

void tst_ZrNmeaDecoder::knowsNothingElse_data()
{
    QTest::addColumn<QByteArray>("formatter");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("lower case") << QByteArray("gga");
    QTest::newRow("with talker") << QByteArray("GPGGA");
    QTest::newRow("longer") << QByteArray("GGAX");
    QTest::newRow("shorter") << QByteArray("GG");
    QTest::newRow("zero byte behind") << QByteArray("GGA\0", 4);
    QTest::newRow("blank behind") << QByteArray("GGA ");
}

void tst_ZrNmeaDecoder::knowsNothingElse()
{
    QFETCH(QByteArray, formatter);
    QVERIFY(!ZrNmeaDecoder::Knows(formatter));
}

void tst_ZrNmeaDecoder::unknownGivesNothing_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("not decoded") << QByteArray("$GPXTE,A,A,0.001,L,N,A*32");
    QTest::newRow("satellites in view") << QByteArray("$GPGSV,3,3,10,29,69,069,,31,54,240,*76");
    QTest::newRow("AIS") << QByteArray("!AIVDM,1,1,1,,13aI8e?P00PGpU:NR6s00?vT2000,0,0*1C");
    QTest::newRow("proprietary of a formatter's letters")
        << QByteArray("$PGGA,195719,5310.8115,N,00525.7025,E,1,00,1.10,-2,M,,M,,");
    QTest::newRow("proprietary depth") << QByteArray("$PDBT,1.8,f,0.5,M,0.3,F");
    QTest::newRow("encapsulated of a formatter's letters")
        << QByteArray("!GPGGA,195719,5310.8115,N,00525.7025,E,1,00,1.10,-2,M,,M,,");
    QTest::newRow("query") << QByteArray("$CCGPQ,GGA");
}

void tst_ZrNmeaDecoder::unknownGivesNothing()
{
    QFETCH(QByteArray, line);
    ZrNmeaSentence sentence;
    QVERIFY(ZrNmeaSentence::Parse(line, sentence, nullptr));
    ZrNmeaDecoder decoder(QDate(2014, 4, 16));
    QVERIFY(decoder.Decode(sentence).empty());
    QVERIFY(std::isnan(decoder.Time()));
    QVERIFY(!decoder.HasDate());
}

void tst_ZrNmeaDecoder::position_data()
{
    QTest::addColumn<QByteArray>("fields");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::newRow("north east") << QByteArray("5310.8115,N,00525.7025,E") << 53.180191666666667 << 5.428375;
    QTest::newRow("south west") << QByteArray("5310.8115,S,00525.7025,W") << -53.180191666666667 << -5.428375;
    QTest::newRow("three digits of minutes")
        << QByteArray("6005.071,N,02332.346,E") << 60.084516666666667 << 23.539100;
    QTest::newRow("seven digits") << QByteArray("4530.0000006,N,12345.6000000,W") << 45.50000001 << -123.76;
    QTest::newRow("no fraction") << QByteArray("5310,N,00525,E") << 53.166666666666667 << 5.4166666666666667;
    QTest::newRow("no leading zeros") << QByteArray("510.5,N,525.5,E") << 5.175 << 5.425;
    QTest::newRow("pole and date line") << QByteArray("9000.0000,N,18000.0000,W") << 90.0 << -180.0;
    QTest::newRow("south pole") << QByteArray("9000.00,S,18000.00,E") << -90.0 << 180.0;
    QTest::newRow("zero") << QByteArray("0000.0000,N,00000.0000,E") << 0.0 << 0.0;
    QTest::newRow("last minute") << QByteArray("8959.9999,N,17959.9999,E") << 89.999998333333333
                                 << 179.999998333333333;
}

void tst_ZrNmeaDecoder::position()
{
    QFETCH(QByteArray, fields);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    const QByteArray bodies[] = {"GPGGA,120000," + fields + ",1,08,1.0,5.0,M,,M,,",
        "GPGLL," + fields + ",120000,A,A", "GPRMC,120000,A," + fields + ",,,010120,,,A"};
    for (const QByteArray& body : bodies) {
        ZrNmeaDecoder decoder;
        ZrFixRecord record;
        QVERIFY2(Find(decoder.Decode(Sentence(body)), record), body.constData());
        // A tenth of a millimetre.
        QVERIFY2(std::abs(record.latitude - latitude) < 1e-9, qPrintable(Text(record.latitude, latitude)));
        QVERIFY2(
            std::abs(record.longitude - longitude) < 1e-9, qPrintable(Text(record.longitude, longitude)));
    }
}

void tst_ZrNmeaDecoder::positionOutOfRangeGivesNoFix_data()
{
    QTest::addColumn<QByteArray>("fields");
    const auto row = [](const char* name, const char* fields) { QTest::newRow(name) << QByteArray(fields); };
    row("latitude minutes of 60", "5360.0000,N,00525.7025,E");
    row("longitude minutes of 60", "5310.8115,N,00560.0000,E");
    row("minutes of 99", "5399.9,N,00525.7025,E");
    row("just north of the pole", "9000.0001,N,00525.7025,E");
    row("just south of the pole", "9000.0001,S,00525.7025,E");
    row("91 degrees", "9100.0,N,00525.7025,E");
    row("just beyond the date line", "5310.8115,N,18000.0001,E");
    row("just beyond the date line, west", "5310.8115,N,18000.0001,W");
    row("999 degrees", "5310.8115,N,99959.0,E");
    row("no latitude", ",N,00525.7025,E");
    row("no longitude", "5310.8115,N,,E");
    row("nothing", ",,,");
    row("no hemisphere of latitude", "5310.8115,,00525.7025,E");
    row("no hemisphere of longitude", "5310.8115,N,00525.7025,");
    row("hemispheres exchanged", "5310.8115,E,00525.7025,N");
    row("lower-case hemisphere", "5310.8115,n,00525.7025,E");
    row("hemisphere of two letters", "5310.8115,NN,00525.7025,E");
    row("negative", "-5310.8115,N,00525.7025,E");
    row("plus", "+5310.8115,N,00525.7025,E");
    row("exponent", "5310.8e0,N,00525.7025,E");
    row("too few digits", "53.8115,N,00525.7025,E");
    row("two digits of minutes only", "10.5,N,00525.7025,E");
    row("six digits", "005310.8,N,00525.7025,E");
    row("point first", ".5,N,00525.7025,E");
    row("point last", "5310.,N,00525.7025,E");
    row("two points", "5310.8.1,N,00525.7025,E");
    row("blank", "53 0.8,N,00525.7025,E");
    row("nan", "nan,N,00525.7025,E");
    row("letters", "ABCD.E,N,00525.7025,E");
}

void tst_ZrNmeaDecoder::positionOutOfRangeGivesNoFix()
{
    QFETCH(QByteArray, fields);
    const QByteArray bodies[] = {"GPGGA,120000," + fields + ",1,08,1.0,5.0,M,,M,,",
        "GPGLL," + fields + ",120000,A,A", "GPRMC,120000,A," + fields + ",,,010120,,,A"};
    for (const QByteArray& body : bodies) {
        ZrNmeaDecoder decoder;
        QVERIFY2(decoder.Decode(Sentence(body)).empty(), body.constData());
    }
}

void tst_ZrNmeaDecoder::fix_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<double>("height");
    QTest::addColumn<double>("hdop");
    QTest::addColumn<int>("quality");
    QTest::addColumn<int>("satellites");
    const QByteArray at = "5310.8115,N,00525.7025,E";
    const auto row
        = [](const char* name, const QByteArray& body, double height, double hdop, int quality,
              int satellites) { QTest::newRow(name) << body << height << hdop << quality << satellites; };
    const auto gga = [&at](const char* rest) { return "GPGGA,195719," + at + rest; };
    row("GGA, real line", gga(",1,00,1.10,-2,M,,M,,*57"), -2.0, 1.1, 1, 0);
    row("GGA, all there", gga(",4,12,0.8,15.62,M,46.9,M,1.0,0031"), 15.62, 0.8, 4, 12);
    row("GGA, quality 2", gga(",2,08,1.0,5,M,,,,"), 5.0, 1.0, 2, 8);
    row("GGA, quality 9", gga(",9,08,1.0,5,M,,,,"), 5.0, 1.0, 9, 8);
    row("GGA, quality empty", gga(",,08,1.0,5,M,,,,"), 5.0, 1.0, 255, 8);
    row("GGA, quality a letter", gga(",A,08,1.0,5,M,,,,"), 5.0, 1.0, 255, 8);
    row("GGA, quality too large", gga(",256,08,1.0,5,M,,,,"), 5.0, 1.0, 255, 8);
    row("GGA, quality of a point", gga(",1.0,08,1.0,5,M,,,,"), 5.0, 1.0, 255, 8);
    row("GGA, rest empty", gga(",1,,,,,,,,"), none, none, 1, 255);
    row("GGA, rest missing", gga(",1"), none, none, 1, 255);
    row("GGA, rest of quality missing too", gga(""), none, none, 255, 255);
    row("GGA, satellites negative", gga(",1,-3,1.0,5,M,,,,"), 5.0, 1.0, 1, 255);
    row("GGA, satellites 254", gga(",1,254,1.0,5,M,,,,"), 5.0, 1.0, 1, 254);
    row("GGA, satellites 300", gga(",1,300,1.0,5,M,,,,"), 5.0, 1.0, 1, 255);
    row("GGA, satellites of many digits", gga(",1,4294967297,1.0,5,M,,,,"), 5.0, 1.0, 1, 255);
    row("GGA, height without unit", gga(",1,08,1.0,5,,,,,"), 5.0, 1.0, 1, 8);
    row("GGA, height in feet", gga(",1,08,1.0,5,F,,,,"), none, 1.0, 1, 8);
    row("GGA, height nan", gga(",1,08,nan,nan,M,,,,"), none, none, 1, 8);
    row("GGA, height beyond binary32", gga(",1,08,1e39,-1e39,M,,,,"), none, none, 1, 8);
    row("GLL, real line", "GPGLL,6005.071,N,02332.346,E,095559,A,D*43", none, none, 2, 255);
    row("GLL, autonomous", "GPGLL," + at + ",195719,A,A", none, none, 1, 255);
    row("GLL, estimated", "GPGLL," + at + ",195719,A,E", none, none, 6, 255);
    row("GLL, manual", "GPGLL," + at + ",195719,A,M", none, none, 7, 255);
    row("GLL, simulator", "GPGLL," + at + ",195719,A,S", none, none, 8, 255);
    row("GLL, precise", "GPGLL," + at + ",195719,A,P", none, none, 3, 255);
    row("GLL, RTK", "GPGLL," + at + ",195719,A,R", none, none, 4, 255);
    row("GLL, float RTK", "GPGLL," + at + ",195719,A,F", none, none, 5, 255);
    row("GLL, unknown mode", "GPGLL," + at + ",195719,A,X", none, none, 255, 255);
    row("GLL, mode of two letters", "GPGLL," + at + ",195719,A,AA", none, none, 255, 255);
    row("GLL, without mode", "GPGLL," + at + ",195719,A", none, none, 255, 255);
    row("GLL, without status", "GPGLL," + at + ",195719", none, none, 255, 255);
    row("GLL, without time", "GPGLL," + at, none, none, 255, 255);
    row("RMC, with mode", "GPRMC,195719,A," + at + ",,,160414,,,D", none, none, 2, 255);
    row("RMC, without mode", "GPRMC,195719,A," + at + ",,,160414,,", none, none, 255, 255);
    row("RMC, navigational status V", "GPRMC,195719,A," + at + ",,,160414,,,A,V", none, none, 1, 255);
}

void tst_ZrNmeaDecoder::fix()
{
    QFETCH(QByteArray, body);
    QFETCH(double, height);
    QFETCH(double, hdop);
    QFETCH(int, quality);
    QFETCH(int, satellites);
    ZrNmeaDecoder decoder;
    const auto records = decoder.Decode(Sentence(body));
    QCOMPARE(int(records.size()), 1);
    ZrFixRecord record;
    QVERIFY(Find(records, record));
    COMPARE_NUMBERS(record.height, height);
    COMPARE_NUMBERS(record.hdop, hdop);
    QCOMPARE(int(record.quality), quality);
    QCOMPARE(int(record.satellites), satellites);
    QVERIFY(record.latitude > 53.0 && record.latitude < 61.0);
}

void tst_ZrNmeaDecoder::notValidGivesNoRecord_data()
{
    QTest::addColumn<QByteArray>("body");
    const QByteArray at = "5310.8115,N,00525.7025,E";
    QTest::newRow("GGA quality 0") << "GPGGA,195719," + at + ",0,00,1.10,-2,M,,M,,";
    QTest::newRow("GGA quality 00") << "GPGGA,195719," + at + ",00,00,1.10,-2,M,,M,,";
    QTest::newRow("GLL status V") << "GPGLL," + at + ",195719,V,A";
    QTest::newRow("GLL mode N") << "GPGLL," + at + ",195719,A,N";
    QTest::newRow("RMC status V") << "GPRMC,195719,V," + at + ",1.0,2.0,160414,,,A";
    QTest::newRow("RMC mode N") << "GPRMC,195719,A," + at + ",1.0,2.0,160414,,,N";
    QTest::newRow("VTG mode N") << QByteArray("GPVTG,1.0,T,2.0,M,3.0,N,4.0,K,N");
    QTest::newRow("MWV status V") << QByteArray("WIMWV,297.6,R,5.6,N,V");
}

void tst_ZrNmeaDecoder::notValidGivesNoRecord()
{
    QFETCH(QByteArray, body);
    ZrNmeaDecoder decoder;
    QVERIFY(decoder.Decode(Sentence(body)).empty());
}

void tst_ZrNmeaDecoder::rmcGivesFixAndMotion()
{
    ZrNmeaDecoder decoder;
    const auto records
        = decoder.Decode(Sentence("GPRMC,195719,A,5310.8115,N,00525.7025,E,10.0,213.9,160414,0.7,E,A"));
    QCOMPARE(int(records.size()), 2);
    ZrFixRecord fixRecord;
    ZrMotionRecord motionRecord;
    QVERIFY(Find(records, fixRecord));
    QVERIFY(Find(records, motionRecord));
    COMPARE_NUMBERS(motionRecord.speedGround, 5.1444444);
    COMPARE_NUMBERS(motionRecord.courseTrue, 213.9);
    QVERIFY(std::isnan(motionRecord.headingTrue));
    QVERIFY(std::isnan(motionRecord.headingMagnetic));
    QVERIFY(std::isnan(motionRecord.speedWater));
    QVERIFY(std::isnan(fixRecord.height));
}

void tst_ZrNmeaDecoder::rmcParts_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("hasFix");
    QTest::addColumn<bool>("hasMotion");
    const QByteArray at = "5310.8115,N,00525.7025,E";
    QTest::newRow("all") << "GPRMC,195719,A," + at + ",1.0,2.0,160414,,,A" << true << true;
    QTest::newRow("speed only") << "GPRMC,195719,A," + at + ",1.0,,160414,,,A" << true << true;
    QTest::newRow("course only") << "GPRMC,195719,A," + at + ",,2.0,160414,,,A" << true << true;
    QTest::newRow("neither") << "GPRMC,195719,A," + at + ",,,160414,,,A" << true << false;
    QTest::newRow("course out of range") << "GPRMC,195719,A," + at + ",,361,160414,,,A" << true << false;
    QTest::newRow("no position") << QByteArray("GPRMC,195719,A,,,,,1.0,2.0,160414,,,A") << false << true;
    QTest::newRow("nothing") << QByteArray("GPRMC,,,,,,,,,,,,") << false << false;
}

void tst_ZrNmeaDecoder::rmcParts()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, hasFix);
    QFETCH(bool, hasMotion);
    ZrNmeaDecoder decoder;
    const auto records = decoder.Decode(Sentence(body));
    ZrFixRecord fixRecord;
    ZrMotionRecord motionRecord;
    QCOMPARE(Find(records, fixRecord), hasFix);
    QCOMPARE(Find(records, motionRecord), hasMotion);
    QCOMPARE(int(records.size()), int(hasFix) + int(hasMotion));
}

void tst_ZrNmeaDecoder::depth_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<double>("depth");
    QTest::addColumn<double>("offset");
    const auto row = [](const char* name, const char* body, double depth, double offset) {
        QTest::newRow(name) << QByteArray(body) << depth << offset;
    };
    row("DBT, real line", "IIDBT,034.25,f,010.44,M,005.64,F*27", 10.44, none);
    row("DBT, second boat", "SDDBT,1.8,f,0.5,M,0.3,F*09", 0.5, none);
    row("DBT, feet only", "IIDBT,10.0,f,,M,,F", 3.048, none);
    row("DBT, fathoms only", "IIDBT,,f,,M,10.0,F", 18.288, none);
    row("DBT, feet before fathoms", "IIDBT,10.0,f,,M,99.0,F", 3.048, none);
    row("DBT, metres are letters", "IIDBT,10.0,f,---,M,,F", 3.048, none);
    row("DBT, metres in another unit", "IIDBT,10.0,f,7.0,x,,F", 3.048, none);
    row("DBT, no unit letters", "IIDBT,,,7.0,,,", 7.0, none);
    row("DBT, zero", "IIDBT,,f,0.0,M,,F", 0.0, none);
    row("DBT, cut behind the feet", "IIDBT,10.0,f", 3.048, none);
    row("DBS, from the surface", "SDDBS,,f,12.5,M,,F", 12.5, 0.0);
    row("DBS, fathoms only", "SDDBS,,f,,M,1.0,F", 1.8288, 0.0);
    row("DPT, real line", "SDDPT,0.5,0.5,*7B", 0.5, 0.5);
    row("DPT, keel offset", "SDDPT,12.3,-1.2,100.0", 12.3, -1.2);
    row("DPT, no offset", "SDDPT,12.3,,", 12.3, none);
    row("DPT, one field", "SDDPT,12.3", 12.3, none);
    row("DPT, offset beyond binary32", "SDDPT,12.3,1e39,", 12.3, none);
}

void tst_ZrNmeaDecoder::depth()
{
    QFETCH(QByteArray, body);
    QFETCH(double, depth);
    QFETCH(double, offset);
    ZrNmeaDecoder decoder;
    const auto records = decoder.Decode(Sentence(body));
    QCOMPARE(int(records.size()), 1);
    ZrDepthRecord record;
    QVERIFY(Find(records, record));
    COMPARE_NUMBERS(record.depth, depth);
    COMPARE_NUMBERS(record.offset, offset);
}

void tst_ZrNmeaDecoder::motion_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<double>("headingTrue");
    QTest::addColumn<double>("headingMagnetic");
    QTest::addColumn<double>("courseTrue");
    QTest::addColumn<double>("speedGround");
    QTest::addColumn<double>("speedWater");
    const auto row = [](const char* name, const char* body, double headingTrue, double headingMagnetic,
                         double courseTrue, double speedGround, double speedWater) {
        QTest::newRow(name) << QByteArray(body) << headingTrue << headingMagnetic << courseTrue << speedGround
                            << speedWater;
    };
    row("HDT", "HEHDT,123.4,T", 123.4, none, none, none, none);
    row("HDT, 0", "HEHDT,0.0,T", 0.0, none, none, none, none);
    row("HDT, 360", "HEHDT,360.0,T", 360.0, none, none, none, none);
    row("HDT, no letter", "HEHDT,123.4", 123.4, none, none, none, none);
    row("HDM", "IIHDM,123.4,M", none, 123.4, none, none, none);
    row("HDG, real line", "SDHDG,181.7,,,0.6,E*3C", 182.3, 181.7, none, none, none);
    row("HDG, variation west", "SDHDG,181.7,,,0.6,W", 181.1, 181.7, none, none, none);
    row("HDG, deviation east", "SDHDG,100.0,2.5,E,,", none, 102.5, none, none, none);
    row("HDG, deviation west, variation east", "SDHDG,100.0,2.5,W,10.0,E", 107.5, 97.5, none, none, none);
    row("HDG, over north", "SDHDG,359.0,2.0,E,3.0,E", 4.0, 1.0, none, none, none);
    row("HDG, under north", "SDHDG,1.0,2.0,W,3.0,W", 356.0, 359.0, none, none, none);
    row("HDG, sensor only", "SDHDG,181.7,,,,", none, 181.7, none, none, none);
    row("HDG, one field", "SDHDG,181.7", none, 181.7, none, none, none);
    row("HDG, variation without letter", "SDHDG,181.7,,,0.6,", none, 181.7, none, none, none);
    row("HDG, letter without variation", "SDHDG,181.7,,,,E", none, 181.7, none, none, none);
    row("HDG, deviation without letter", "SDHDG,181.7,5.0,,0.6,E", 182.3, 181.7, none, none, none);
    row("VTG, real line", "IIVTG,224.44,T,224.44,M,5.81,N,,,D*68", none, none, 224.44, 2.9889222, none);
    row("VTG, knots and km/h", "GPVTG,10.0,T,9.3,M,10.0,N,99.0,K,A", none, none, 10.0, 5.1444444, none);
    row("VTG, km/h only", "GPVTG,10.0,T,,M,,N,18.0,K,A", none, none, 10.0, 5.0, none);
    row("VTG, speed only", "GPVTG,,T,,M,2.0,N,,K", none, none, none, 1.0288889, none);
    row("VTG, magnetic course is no true one", "GPVTG,,T,9.3,M,2.0,N,,K", none, none, none, 1.0288889, none);
    row("VHW, real line", "IIVHW,,T,,M,06.11,N,11.31,K*51", none, none, none, none, 3.1432556);
    row("VHW, second boat", "SDVHW,182.4,T,181.7,M,0.0,N,0.0,K*42", 182.4, 181.7, none, none, 0.0);
    row("VHW, km/h only", "SDVHW,,T,,M,,N,36.0,K", none, none, none, none, 10.0);
    row("VHW, heading only", "SDVHW,182.4,T,,M,,N,,K", 182.4, none, none, none, none);
    row("VHW, one heading out of range", "SDVHW,400.0,T,181.7,M,,N,,K", none, 181.7, none, none, none);
}

void tst_ZrNmeaDecoder::motion()
{
    QFETCH(QByteArray, body);
    QFETCH(double, headingTrue);
    QFETCH(double, headingMagnetic);
    QFETCH(double, courseTrue);
    QFETCH(double, speedGround);
    QFETCH(double, speedWater);
    ZrNmeaDecoder decoder;
    const auto records = decoder.Decode(Sentence(body));
    QCOMPARE(int(records.size()), 1);
    ZrMotionRecord record;
    QVERIFY(Find(records, record));
    COMPARE_NUMBERS(record.headingTrue, headingTrue);
    COMPARE_NUMBERS(record.headingMagnetic, headingMagnetic);
    COMPARE_NUMBERS(record.courseTrue, courseTrue);
    COMPARE_NUMBERS(record.speedGround, speedGround);
    COMPARE_NUMBERS(record.speedWater, speedWater);
}

void tst_ZrNmeaDecoder::environment_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<double>("temperature");
    QTest::addColumn<double>("speed");
    QTest::addColumn<double>("angle");
    QTest::addColumn<int>("reference");
    const auto row = [](const char* name, const char* body, double temperature, double speed, double angle,
                         int reference) {
        QTest::newRow(name) << QByteArray(body) << temperature << speed << angle << reference;
    };
    row("MTW, real line", "SDMTW,12.6,C*01", 12.6, none, none, 0);
    row("MTW, below zero", "SDMTW,-1.8,C", -1.8, none, none, 0);
    row("MTW, no letter", "SDMTW,12.6", 12.6, none, none, 0);
    row("MWV, real line", "IIMWV,338,R,13.41,N,A*2C", none, 6.8987, 338.0, 1);
    row("MWV, true", "IIMWV,332,T,08.53,N,A*29", none, 4.3882111, 332.0, 2);
    row("MWV, km/h", "IIMWV,45.5,R,36.0,K,A", none, 10.0, 45.5, 1);
    row("MWV, m/s", "IIMWV,45.5,R,7.5,M,A", none, 7.5, 45.5, 1);
    row("MWV, unknown unit", "IIMWV,45.5,R,7.5,X,A", none, none, 45.5, 1);
    row("MWV, no unit", "IIMWV,45.5,R,7.5,,A", none, none, 45.5, 1);
    row("MWV, no reference", "IIMWV,45.5,,7.5,M,A", none, 7.5, 45.5, 0);
    row("MWV, unknown reference", "IIMWV,45.5,Q,7.5,M,A", none, 7.5, 45.5, 0);
    row("MWV, speed only", "IIMWV,,R,7.5,M,A", none, 7.5, none, 1);
    row("MWV, angle only", "IIMWV,45.5,R,,M,A", none, none, 45.5, 1);
    row("MWV, angle out of range", "IIMWV,-5,R,7.5,M,A", none, 7.5, none, 1);
    row("MWV, no status", "IIMWV,45.5,R,7.5,M", none, 7.5, 45.5, 1);
    row("MWD, real line", "WIMWD,125.3,T,124.6,M,5.6,N,2.9,M*56", none, 2.9, 125.3, 3);
    row("MWD, speed only", "IIMWD,,,,,08.16,N,04.20,M*54", none, 4.2, none, 3);
    row("MWD, knots only", "IIMWD,10.0,T,,M,10.0,N,,M", none, 5.1444444, 10.0, 3);
    row("MWD, direction only", "IIMWD,10.0,T,,M,,N,,M", none, none, 10.0, 3);
    row("MWD, magnetic direction is no true one", "IIMWD,,T,9.3,M,10.0,N,,M", none, 5.1444444, none, 3);
}

void tst_ZrNmeaDecoder::environment()
{
    QFETCH(QByteArray, body);
    QFETCH(double, temperature);
    QFETCH(double, speed);
    QFETCH(double, angle);
    QFETCH(int, reference);
    ZrNmeaDecoder decoder;
    const auto records = decoder.Decode(Sentence(body));
    QCOMPARE(int(records.size()), 1);
    ZrEnvRecord record;
    QVERIFY(Find(records, record));
    COMPARE_NUMBERS(record.waterTemperature, temperature);
    COMPARE_NUMBERS(record.windSpeed, speed);
    COMPARE_NUMBERS(record.windAngle, angle);
    QCOMPARE(int(record.windReference), reference);
}

void tst_ZrNmeaDecoder::emptySentencesGiveNoRecord_data()
{
    QTest::addColumn<QByteArray>("body");
    for (const char* formatter : allFormatters) {
        QTest::newRow(qPrintable(QStringLiteral("%1, no fields").arg(QLatin1String(formatter))))
            << QByteArray("XX") + formatter;
        QTest::newRow(qPrintable(QStringLiteral("%1, empty fields").arg(QLatin1String(formatter))))
            << QByteArray("XX") + formatter + QByteArray(20, ',');
        QTest::newRow(qPrintable(QStringLiteral("%1, letters").arg(QLatin1String(formatter))))
            << QByteArray("XX") + formatter + QByteArray(",x").repeated(20);
        QTest::newRow(qPrintable(QStringLiteral("%1, nan").arg(QLatin1String(formatter))))
            << QByteArray("XX") + formatter + QByteArray(",nan").repeated(20);
    }
    const auto row = [](const char* body) { QTest::newRow(body) << QByteArray(body); };
    row("IIHDT,,T*0C");
    row("IIHDM,,M*0C");
    row("IIMWD,,,,,,N,,M");
    row("SDMTW,,C");
    row("SDMTW,54.7,F");
    row("HEHDT,361.0,T");
    row("HEHDT,-1.0,T");
    row("HEHDT,123.4,M");
    row("IIHDM,123.4,T");
    row("SDHDG,361.0,,,0.6,E");
    row("SDHDG,,2.5,E,0.6,E");
    row("GPVTG,,T,9.3,M,,N,,K");
    row("SDDPT,,0.5,");
    row("SDDPT,-1.0,0.5,");
    row("SDDPT,1e39,0.5,");
    row("SDDBT,,f,-0.5,M,,F");
}

void tst_ZrNmeaDecoder::emptySentencesGiveNoRecord()
{
    QFETCH(QByteArray, body);
    ZrNmeaDecoder decoder;
    QVERIFY(decoder.Decode(Sentence(body)).empty());
    QVERIFY(std::isnan(decoder.Time()));
    QVERIFY(!decoder.HasDate());
}

void tst_ZrNmeaDecoder::noTimeWithoutDate()
{
    ZrNmeaDecoder decoder;
    QVERIFY(std::isnan(decoder.Time()));
    decoder.Decode(Sentence("GPGLL,6005.071,N,02332.346,E,095559,A,D"));
    QVERIFY(std::isnan(decoder.Time()));
    decoder.Decode(Sentence("GPZDA,095559,,,,00,"));
    QVERIFY(std::isnan(decoder.Time()));
    QVERIFY(!decoder.HasDate());
    // A date alone is no time either.
    ZrNmeaDecoder dated(QDate(2014, 4, 16));
    QVERIFY(std::isnan(dated.Time()));
}

void tst_ZrNmeaDecoder::constructorDateServesUntilOneIsTold()
{
    ZrNmeaDecoder decoder(QDate(2011, 9, 3));
    decoder.Decode(Sentence("GPGLL,6005.071,N,02332.346,E,095559,A,D"));
    QCOMPARE(decoder.Time(), 1315043759.0);
    QVERIFY(!decoder.HasDate());
    decoder.Decode(Sentence("GPZDA,195719,16,04,2014,-02,00"));
    QCOMPARE(decoder.Time(), 1397678239.0);
    QVERIFY(decoder.HasDate());
}

void tst_ZrNmeaDecoder::timeOfDay_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("seconds");
    QTest::newRow("midnight") << QByteArray("000000") << 0.0;
    QTest::newRow("whole") << QByteArray("195719") << 71839.0;
    QTest::newRow("fraction") << QByteArray("195719.25") << 71839.25;
    QTest::newRow("zero fraction") << QByteArray("195719.00") << 71839.0;
    QTest::newRow("last second") << QByteArray("235959.5") << 86399.5;
    QTest::newRow("leap second") << QByteArray("235960") << 86400.0;
    QTest::newRow("end of the leap second") << QByteArray("235960.75") << 86400.75;
}

void tst_ZrNmeaDecoder::timeOfDay()
{
    QFETCH(QByteArray, text);
    QFETCH(double, seconds);
    for (const QByteArray& body : {"GPGGA," + text, "GPGLL,,,,," + text, "GPRMC," + text, "GPZDA," + text}) {
        ZrNmeaDecoder decoder(QDate(1970, 1, 2));
        decoder.Decode(Sentence(body));
        QCOMPARE(decoder.Time(), 86400.0 + seconds);
    }
}

void tst_ZrNmeaDecoder::badTimeOfDayKeepsTheClock_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* text :
        {"", "240000", "006000", "000061", "12345", "1234567", "12:34:56", "-12345", "+12345", "12345.6",
            "123456.", ".5", "123456.1.2", "123456.x", "12345a", "nan", "1e5000", "12 456", "120060.999x"})
        QTest::newRow(qPrintable(QStringLiteral("\"%1\"").arg(QLatin1String(text)))) << QByteArray(text);
}

void tst_ZrNmeaDecoder::badTimeOfDayKeepsTheClock()
{
    QFETCH(QByteArray, text);
    ZrNmeaDecoder decoder(QDate(2014, 4, 16));
    decoder.Decode(Sentence("GPZDA,195719"));
    decoder.Decode(Sentence("GPZDA," + text));
    QCOMPARE(decoder.Time(), 1397678239.0);
    decoder.Decode(Sentence("GPGLL,,,,," + text));
    QCOMPARE(decoder.Time(), 1397678239.0);
}

void tst_ZrNmeaDecoder::timeStaysForSentencesWithoutOne()
{
    ZrNmeaDecoder decoder;
    decoder.Decode(Sentence("GPZDA,195719.5,16,04,2014,00,00"));
    for (const char* body : {"SDDBT,1.8,f,0.5,M,0.3,F", "SDHDG,181.7,,,0.6,E", "GPXTE,A,A,0.001,L,N,A",
             "GPVTG,0.0,T,359.3,M,0.0,N,0.0,K,A", "PGRMZ,246,f,3"}) {
        decoder.Decode(Sentence(body));
        QCOMPARE(decoder.Time(), 1397678239.5);
    }
}

void tst_ZrNmeaDecoder::dates_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<double>("time");
    QTest::newRow("ZDA") << QByteArray("GPZDA,195719,16,04,2014,00,00") << 1397678239.0;
    // A real line of a device that shortens the year; its local zone is not part of the time.
    QTest::newRow("ZDA, year of two digits") << QByteArray("GPZDA,195719,16,04,14,-02,00*63") << 1397678239.0;
    QTest::newRow("ZDA, zone east") << QByteArray("GPZDA,195719,16,04,2014,13,45") << 1397678239.0;
    QTest::newRow("ZDA, no zone") << QByteArray("GPZDA,195719,16,04,2014") << 1397678239.0;
    QTest::newRow("ZDA, no leading zeros") << QByteArray("GPZDA,000000,1,1,1970,,") << 0.0;
    QTest::newRow("ZDA, leap day") << QByteArray("GPZDA,000000,29,02,2000,,") << 951782400.0;
    QTest::newRow("ZDA, last of the second century")
        << QByteArray("GPZDA,000000,31,12,2099,,") << 4102358400.0;
    QTest::newRow("RMC") << QByteArray("GPRMC,195719,A,,,,,,,160414,,,A") << 1397678239.0;
    QTest::newRow("RMC, 79 is 2079") << QByteArray("GPRMC,000000,A,,,,,,,010179,,,A") << 3439756800.0;
    QTest::newRow("RMC, 80 is 1980") << QByteArray("GPRMC,000000,A,,,,,,,060180,,,A") << 315964800.0;
    QTest::newRow("RMC, 99 is 1999") << QByteArray("GPRMC,235959,A,,,,,,,311299,,,A") << 946684799.0;
    QTest::newRow("RMC, 00 is 2000") << QByteArray("GPRMC,000000,A,,,,,,,010100,,,A") << 946684800.0;
    QTest::newRow("RMC, no status") << QByteArray("GPRMC,195719,,,,,,,,160414,,,") << 1397678239.0;
}

void tst_ZrNmeaDecoder::dates()
{
    QFETCH(QByteArray, body);
    QFETCH(double, time);
    for (const QDate& before : {QDate(), QDate(2020, 2, 29)}) {
        ZrNmeaDecoder decoder(before);
        QVERIFY(!decoder.HasDate());
        decoder.Decode(Sentence(body));
        QCOMPARE(decoder.Time(), time);
        QVERIFY(decoder.HasDate());
    }
}

void tst_ZrNmeaDecoder::badDatesAreNotTaken_data()
{
    QTest::addColumn<QByteArray>("body");
    const auto row = [](const char* body) { QTest::newRow(body) << QByteArray(body); };
    row("GPZDA,095559,,,,00,");
    row("GPZDA,095559,16,,2014,,");
    row("GPZDA,095559,00,04,2014,,");
    row("GPZDA,095559,31,04,2014,,");
    row("GPZDA,095559,29,02,2015,,");
    row("GPZDA,095559,16,13,2014,,");
    row("GPZDA,095559,16,04,0000,,");
    row("GPZDA,095559,16,04,1969,,");
    row("GPZDA,095559,16,04,014,,");
    row("GPZDA,095559,16,04,20145,,");
    row("GPZDA,095559,-1,04,2014,,");
    row("GPZDA,095559,16,04,2e14,,");
    row("GPZDA,095559,99999999999,04,2014,,");
    row("GPRMC,095559,A,,,,,,,,,,A");
    row("GPRMC,095559,A,,,,,,,310414,,,A");
    row("GPRMC,095559,A,,,,,,,000000,,,A");
    row("GPRMC,095559,A,,,,,,,16042014,,,A");
    row("GPRMC,095559,A,,,,,,,1604,,,A");
    row("GPRMC,095559,A,,,,,,,16 414,,,A");
    row("GPRMC,095559,A,,,,,,,-60414,,,A");
}

void tst_ZrNmeaDecoder::badDatesAreNotTaken()
{
    QFETCH(QByteArray, body);
    ZrNmeaDecoder decoder;
    decoder.Decode(Sentence(body));
    QVERIFY(!decoder.HasDate());
    QVERIFY(std::isnan(decoder.Time()));
    ZrNmeaDecoder dated(QDate(1970, 1, 1));
    dated.Decode(Sentence(body));
    QVERIFY(!dated.HasDate());
    QCOMPARE(dated.Time(), 35759.0); // 09:55:59
}

void tst_ZrNmeaDecoder::dateOfInvalidPositionIsNotTaken()
{
    ZrNmeaDecoder decoder;
    decoder.Decode(Sentence("GPRMC,000012,V,,,,,,,060180,,,N"));
    QVERIFY(!decoder.HasDate());
    decoder.Decode(Sentence("GPRMC,000012,A,,,,,,,060180,,,N"));
    QVERIFY(!decoder.HasDate());
    decoder.Decode(Sentence("GPRMC,000012,V,,,,,,,060180,,,A"));
    QVERIFY(!decoder.HasDate());
    QVERIFY(std::isnan(decoder.Time()));
}

void tst_ZrNmeaDecoder::timeOfInvalidPositionIsTaken()
{
    ZrNmeaDecoder decoder;
    decoder.Decode(Sentence("GPZDA,195719,16,04,2014,,"));
    decoder.Decode(Sentence("GPGGA,195729,,,,,0,00,,,M,,M,,"));
    QCOMPARE(decoder.Time(), 1397678249.0);
    decoder.Decode(Sentence("GPRMC,195739,V,,,,,,,160414,,,N"));
    QCOMPARE(decoder.Time(), 1397678259.0);
    decoder.Decode(Sentence("GPGLL,,,,,195749,V,N"));
    QCOMPARE(decoder.Time(), 1397678269.0);
}

void tst_ZrNmeaDecoder::dateWithoutTimeOnlyCountsWhenNoneIsKnown()
{
    ZrNmeaDecoder decoder;
    decoder.Decode(Sentence("GPGLL,,,,,235959,A,A"));
    decoder.Decode(Sentence("GPZDA,,16,04,2014,,"));
    QVERIFY(decoder.HasDate());
    QCOMPARE(decoder.Time(), 1397692799.0);
    // The clock still shows the last second of the 16th: with this date it would jump a day ahead, and
    // another one at the next time of day.
    decoder.Decode(Sentence("GPRMC,,A,,,,,,,170414,,,A"));
    QCOMPARE(decoder.Time(), 1397692799.0);
    decoder.Decode(Sentence("GPGLL,,,,,000001,A,A"));
    QCOMPARE(decoder.Time(), 1397692801.0);
}

void tst_ZrNmeaDecoder::midnight()
{
    ZrNmeaDecoder decoder(QDate(2014, 4, 16));
    decoder.Decode(Sentence("GPGLL,,,,,235959,A,A"));
    QCOMPARE(decoder.Time(), 1397692799.0);
    decoder.Decode(Sentence("GPGLL,,,,,000000,A,A"));
    QCOMPARE(decoder.Time(), 1397692800.0);
    decoder.Decode(Sentence("GPGLL,,,,,000001,A,A"));
    QCOMPARE(decoder.Time(), 1397692801.0);
    QVERIFY(!decoder.HasDate());
    // The date that a sentence tells is not passed again.
    decoder.Decode(Sentence("GPRMC,000002,A,,,,,,,170414,,,A"));
    QCOMPARE(decoder.Time(), 1397692802.0);

    // RMC itself passes midnight: its own date counts, not one more.
    ZrNmeaDecoder told;
    told.Decode(Sentence("GPRMC,235959,A,,,,,,,160414,,,A"));
    told.Decode(Sentence("GPRMC,000000,A,,,,,,,170414,,,A"));
    QCOMPARE(told.Time(), 1397692800.0);
}

void tst_ZrNmeaDecoder::midnightOverMonthAndLeapDay()
{
    ZrNmeaDecoder decoder(QDate(2016, 2, 28));
    for (const char* time : {"120000", "235959", "000001", "120000", "235959", "000001"})
        decoder.Decode(Sentence(QByteArray("GPGLL,,,,,") + time));
    // 28 to 29 February to 1 March.
    QCOMPARE(decoder.Time(), 1456790401.0);
}

void tst_ZrNmeaDecoder::lateSentenceAtMidnight()
{
    ZrNmeaDecoder decoder(QDate(2014, 4, 16));
    decoder.Decode(Sentence("GPGLL,,,,,235959,A,A"));
    decoder.Decode(Sentence("GNGLL,,,,,000000,A,A"));
    decoder.Decode(Sentence("GPGLL,,,,,235959.8,A,A"));
    QCOMPARE(decoder.Time(), 1397692799.8);
    decoder.Decode(Sentence("GPGLL,,,,,000001,A,A"));
    QCOMPARE(decoder.Time(), 1397692801.0);
    // More than a minute is no late sentence but a later time of the same day.
    decoder.Decode(Sentence("GPGLL,,,,,235901,A,A"));
    QCOMPARE(decoder.Time(), 1397779141.0);
}

void tst_ZrNmeaDecoder::smallStepsBackAreNoMidnight()
{
    ZrNmeaDecoder decoder(QDate(2014, 4, 16));
    decoder.Decode(Sentence("GPGLL,,,,,195729,A,A"));
    decoder.Decode(Sentence("GPGLL,,,,,195719,A,A"));
    QCOMPARE(decoder.Time(), 1397678239.0);
}

void tst_ZrNmeaDecoder::halfADayIsTheBound()
{
    ZrNmeaDecoder decoder(QDate(1970, 1, 1));
    decoder.Decode(Sentence("GPGLL,,,,,180000,A,A"));
    decoder.Decode(Sentence("GPGLL,,,,,060000,A,A"));
    QCOMPARE(decoder.Time(), 21600.0);
    decoder.Decode(Sentence("GPGLL,,,,,180001,A,A"));
    decoder.Decode(Sentence("GPGLL,,,,,060000,A,A"));
    QCOMPARE(decoder.Time(), 86400.0 + 21600.0);
}

void tst_ZrNmeaDecoder::leapSecond()
{
    // 2016-12-31T23:59:60: the leap second has the number of the second that follows.
    ZrNmeaDecoder decoder;
    decoder.Decode(Sentence("GPRMC,235959,A,,,,,,,311216,,,A"));
    QCOMPARE(decoder.Time(), 1483228799.0);
    decoder.Decode(Sentence("GPRMC,235960,A,,,,,,,311216,,,A"));
    QCOMPARE(decoder.Time(), 1483228800.0);
    decoder.Decode(Sentence("GPGLL,,,,,000000,A,A"));
    QCOMPARE(decoder.Time(), 1483228800.0);
    decoder.Decode(Sentence("GPRMC,000001,A,,,,,,,010117,,,A"));
    QCOMPARE(decoder.Time(), 1483228801.0);
}

void tst_ZrNmeaDecoder::realPassage()
{
    // One second of a real boat, in its order.
    const char* const lines[] = {"$GPGGA,195719,5310.8115,N,00525.7025,E,1,00,1.10,-2,M,,M,,*57",
        "$GPGLL,5310.8115,N,00525.7025,E,195719,A,A*4D",
        "$GPRMC,195719,A,5310.8115,N,00525.7025,E,0.0,0.0,160414,0.7,E,A*10",
        "$GPVTG,0.0,T,359.3,M,0.0,N,0.0,K,A*2F", "$GPZDA,195719,16,04,14,-02,00*63",
        "$GPGSA,A,3,,,,,,,,,,,,,2.10,1.10,1.70*07", "$SDDBT,1.8,f,0.5,M,0.3,F*09", "$SDDPT,0.5,0.5,*7B",
        "$SDHDG,181.7,,,0.6,E*3C", "$SDMTW,12.6,C*01", "$SDVHW,182.4,T,181.7,M,0.0,N,0.0,K*42",
        "$WIMWD,125.3,T,124.6,M,5.6,N,2.9,M*56", "$WIMWV,297.6,R,5.6,N,A*2A",
        "!AIVDM,1,1,1,,13aI8e?P00PGpU:NR6s00?vT2000,0,0*1C"};
    QVector<int> types;
    ZrNmeaDecoder decoder;
    for (const char* line : lines) {
        ZrNmeaSentence sentence;
        QVERIFY2(ZrNmeaSentence::Parse(line, sentence, nullptr), line);
        for (const ZrDecodedRecord& record : decoder.Decode(sentence)) {
            types << record.type.type;
            QCOMPARE(int(record.type.sub), 0);
            QCOMPARE(int(record.format), 1);
        }
    }
    QCOMPARE(types, (QVector<int>{18, 18, 18, 20, 20, 19, 19, 20, 21, 20, 21, 21}));
    QCOMPARE(decoder.Time(), 1397678239.0);
}

void tst_ZrNmeaDecoder::damagedLinesNeverGiveDamagedRecords()
{
    const char* const bodies[] = {"GPGGA,195719,5310.8115,N,00525.7025,E,1,00,1.10,-2,M,,M,,",
        "GPRMC,195719,A,5310.8115,N,00525.7025,E,0.0,0.0,160414,0.7,E,A",
        "GPGLL,5310.8115,N,00525.7025,E,195719,A,A", "GPZDA,195719,16,04,14,-02,00",
        "IIDBT,034.25,f,010.44,M,005.64,F", "SDHDG,181.7,,,0.6,E", "WIMWD,125.3,T,124.6,M,5.6,N,2.9,M"};
    ZrNmeaDecoder decoder;
    decoder.Decode(Sentence("GPZDA,195719,16,04,2014,,"));
    int fixes = 0;
    const auto decode = [&](const QByteArray& text) {
        ZrNmeaSentence sentence;
        if (!ZrNmeaSentence::Parse("$" + text, sentence, nullptr))
            return true;
        for (const ZrDecodedRecord& record : decoder.Decode(sentence)) {
            ZrFixRecord fixRecord;
            if (record.type != zr::rec_type(krtFix))
                continue;
            ++fixes;
            if (!ZrFixRecord::Decode(Span(record.payload), fixRecord)
                || !(std::abs(fixRecord.latitude) <= 90.0) || !(std::abs(fixRecord.longitude) <= 180.0))
                return false;
        }
        return decoder.Time() >= 315964800.0 && decoder.Time() < 3471379200.0; // 1980 to 2080
    };
    for (const QByteArray body : bodies) {
        for (int i = 0; i < body.size(); ++i) {
            for (const char c : {',', '9', '0', '-', '.', 'N', ' ', 'e', '*', '$'}) {
                QByteArray damaged = body;
                damaged[i] = c;
                QVERIFY2(decode(damaged), damaged.constData());
                QVERIFY2(decode(damaged.left(i + 1)), damaged.constData());
                QVERIFY2(decode(damaged + body), damaged.constData());
            }
        }
    }
    QVERIFY(fixes > 1000);
}

QTEST_GUILESS_MAIN(tst_ZrNmeaDecoder)
#include "tst_ZrNmeaDecoder.moc"
