#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrEnvRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/records/ZrRecordText.h"
#include "ZrKit/records/ZrVehicleRecord.h"
#include "ZrLogFixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>

namespace {

using Fields = std::vector<ZrRecordField>;

/// An event: code -2, time 1614780309.25, source 7, text "Möwe", detail "", a uid.
const char* const eventHex = R"(
    ff fe                                             # code
    41 d8 0f e5 e5 50 00 00                           # time
    00 00 00 07                                       # source
    00 00 00 08   00 4d 00 f6 00 77 00 65             # text
    00 00 00 00                                       # detail
    00 11 22 33 44 55 66 77 88 99 aa bb cc dd ee ff   # uid
)";

ZrLogItemInf Inf(int type, int sub = 0, int format = 1)
{
    ZrLogItemInf inf;
    inf.type = static_cast<u16>(type);
    inf.sub = static_cast<u16>(sub);
    inf.format = static_cast<u16>(format);
    return inf;
}

/// One line for all fields: name=text unit (value).
QStringList Lines(const Fields& fields)
{
    QStringList lines;
    for (const ZrRecordField& field : fields) {
        const QByteArray value = QJsonDocument(QJsonArray{field.value}).toJson(QJsonDocument::Compact);
        lines << QStringLiteral("%1=%2 %3 %4")
                     .arg(field.name, field.text, field.unit, QString::fromUtf8(value));
    }
    return lines;
}

QStringList Lines(int type, const QByteArray& payload)
{
    QString error;
    const QStringList lines = Lines(zr::record_fields(Inf(type), Span(payload), &error));
    return error.isEmpty() ? lines : QStringList{QStringLiteral("error: ") + error};
}

} // namespace

class tst_ZrRecordText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void navigation();
    void ping();
    void fix();
    void depth();
    void motion();
    void environment();
    void vehicle();
    void serialText_data();
    void serialText();
    void missionPlan();
    void event();
    void eventTimes_data();
    void eventTimes();

    void unknownIsDashAndNull_data();
    void unknownIsDashAndNull();
    void infiniteIsNotKnownEither();
    void codedValues_data();
    void codedValues();
    void textRoundsHalfUp();
    void singlePrecisionIsShortest_data();
    void singlePrecisionIsShortest();
    void absurdNumbersStayShort();
    void textDoesNotFollowTheLocale();
    void everyValueIsValidJson();

    void unknownTypes_data();
    void unknownTypes();
    void unknownFormats_data();
    void unknownFormats();
    void shortPayloads_data();
    void shortPayloads();
    void damagedEvents_data();
    void damagedEvents();
    void absurdSizeIsRefused();
    void errorMayBeNull();
    void bytesBehindAreIgnored();
};

void tst_ZrRecordText::navigation()
{
    ZrNavRecord record;
    record.latitude = 53.180191666666667;
    record.longitude = -5.428375;
    record.altitude = 12.345F;
    record.depth = 100.0F;
    record.heading = 181.75F;
    record.pitch = -2.24F;
    record.roll = 0.0F;
    record.flags = 1;
    QCOMPARE(Lines(16, record.Encode()),
        (QStringList{QStringLiteral("latitude=53.1801917 ° [53.180191666666666]"),
            QStringLiteral("longitude=-5.4283750 ° [-5.428375]"), QStringLiteral("altitude=12.35 m [12.345]"),
            QStringLiteral("depth=100.00 m [100]"), QStringLiteral("heading=181.8 ° [181.75]"),
            QStringLiteral("pitch=-2.2 ° [-2.24]"), QStringLiteral("roll=0.0 ° [0]"),
            QStringLiteral("flags=0x00000001  [1]")}));
}

void tst_ZrRecordText::ping()
{
    ZrPingRecord record;
    record.pingNumber = 4294967295U;
    record.side = 1;
    record.sampleWidth = 2;
    record.slantRange = 75.0F;
    record.frequency = 410.5F;
    record.soundSpeed = 1483.2F;
    record.samples = QByteArray(2000, '\x7f');
    QString error;
    const QByteArray payload = record.Encode();
    QCOMPARE(Lines(zr::record_fields(Inf(17, 1), Span(payload), &error)),
        (QStringList{QStringLiteral("pingNumber=4294967295  [4294967295]"),
            QStringLiteral("side=starboard  [1]"), QStringLiteral("sampleWidth=2  [2]"),
            QStringLiteral("slantRange=75.00 m [75]"), QStringLiteral("frequency=410.5 kHz [410.5]"),
            QStringLiteral("soundSpeed=1483.20 m/s [1483.2]"), QStringLiteral("sampleCount=1000  [1000]")}));
    QCOMPARE(error, QString());
}

void tst_ZrRecordText::fix()
{
    ZrFixRecord record;
    record.latitude = -90.0;
    record.longitude = 180.0;
    record.height = -2.0F;
    record.hdop = 1.1F;
    record.quality = 4;
    record.satellites = 12;
    QCOMPARE(Lines(18, record.Encode()),
        (QStringList{QStringLiteral("latitude=-90.0000000 ° [-90]"),
            QStringLiteral("longitude=180.0000000 ° [180]"), QStringLiteral("height=-2.00 m [-2]"),
            QStringLiteral("hdop=1.10  [1.1]"), QStringLiteral("quality=RTK fixed  [4]"),
            QStringLiteral("satellites=12  [12]")}));
}

void tst_ZrRecordText::depth()
{
    ZrDepthRecord record;
    record.depth = 10.44F;
    record.offset = -0.5F;
    QCOMPARE(Lines(19, record.Encode()),
        (QStringList{QStringLiteral("depth=10.44 m [10.44]"), QStringLiteral("offset=-0.50 m [-0.5]")}));
}

void tst_ZrRecordText::motion()
{
    ZrMotionRecord record;
    record.headingTrue = 182.3F;
    record.headingMagnetic = 181.7F;
    record.courseTrue = 360.0F;
    record.speedGround = 2.98892F;
    QCOMPARE(Lines(20, record.Encode()),
        (QStringList{QStringLiteral("headingTrue=182.3 ° [182.3]"),
            QStringLiteral("headingMagnetic=181.7 ° [181.7]"), QStringLiteral("courseTrue=360.0 ° [360]"),
            QStringLiteral("speedGround=2.99 m/s [2.98892]"), QStringLiteral("speedWater=- m/s [null]")}));
}

void tst_ZrRecordText::environment()
{
    ZrEnvRecord record;
    record.waterTemperature = 12.6F;
    record.windSpeed = 6.8987F;
    record.windAngle = 338.0F;
    record.windReference = 1;
    QCOMPARE(Lines(21, record.Encode()),
        (QStringList{QStringLiteral("waterTemperature=12.6 °C [12.6]"),
            QStringLiteral("windSpeed=6.90 m/s [6.8987]"), QStringLiteral("windAngle=338.0 ° [338]"),
            QStringLiteral("windReference=relative  [1]")}));
}

void tst_ZrRecordText::vehicle()
{
    ZrVehicleRecord record;
    record.navState = 118;
    record.securityLevel = 0xDEADBEEF;
    record.temperature = 21.54F;
    record.pressure = 80123.0F;
    record.voltage = 28.75F;
    record.declination = -0.5F;
    record.desiredHeading = 270.0F;
    record.ballastCommand = 500.0F;
    record.ballastPosition = 499.5F;
    record.linearCommand = -12.5F;
    record.linearPosition = -12.0F;
    record.angularCommand = 10.0F;
    QCOMPARE(Lines(22, record.Encode()),
        (QStringList{QStringLiteral("navState=118  [118]"),
            QStringLiteral("securityLevel=0xDEADBEEF  [3735928559]"),
            QStringLiteral("temperature=21.5 °C [21.54]"), QStringLiteral("pressure=80123 Pa [80123]"),
            QStringLiteral("voltage=28.75 V [28.75]"), QStringLiteral("declination=-0.5 ° [-0.5]"),
            QStringLiteral("desiredHeading=270.0 ° [270]"), QStringLiteral("ballastCommand=500.0 ml [500]"),
            QStringLiteral("ballastPosition=499.5 ml [499.5]"),
            QStringLiteral("linearCommand=-12.5 mm [-12.5]"), QStringLiteral("linearPosition=-12.0 mm [-12]"),
            QStringLiteral("angularCommand=10.0 ° [10]"), QStringLiteral("angularPosition=- ° [null]")}));
}

void tst_ZrRecordText::serialText_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("text");
    QTest::newRow("with its zero byte") << QByteArray("AB\0", 3) << QStringLiteral("AB");
    QTest::newRow("without zero byte") << QByteArray("AB") << QStringLiteral("AB");
    QTest::newRow("Latin-1") << QByteArray("12 \xb0\x43\0", 6) << QStringLiteral("12 °C");
    QTest::newRow("every high byte") << QByteArray("\x80\xff") << QStringLiteral("\u0080ÿ");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("zero byte only") << QByteArray("\0", 1) << QString();
    QTest::newRow("two zero bytes") << QByteArray("A\0\0", 3) << QStringLiteral("A") + QChar(0);
    QTest::newRow("zero byte inside")
        << QByteArray("A\0B\0", 4) << QStringLiteral("A") + QChar(0) + QLatin1Char('B');
    QTest::newRow("line ends stay") << QByteArray("$GPGLL\r\n\0", 9) << QStringLiteral("$GPGLL\r\n");
}

void tst_ZrRecordText::serialText()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, text);
    for (const int format : {0, 1, 65535}) {
        QString error;
        const Fields fields = zr::record_fields(Inf(2, 0, format), Span(payload), &error);
        QCOMPARE(error, QString());
        QCOMPARE(int(fields.size()), 1);
        QCOMPARE(fields[0].name, QStringLiteral("text"));
        QCOMPARE(fields[0].text, text);
        QCOMPARE(fields[0].unit, QString());
        QVERIFY(fields[0].value.isString());
        QCOMPARE(fields[0].value.toString(), text);
    }
}

void tst_ZrRecordText::missionPlan()
{
    QCOMPARE(
        Lines(70, "<SET>=Möwe\n"), QStringList{QStringLiteral("text=<SET>=Möwe\n  [\"<SET>=Möwe\\n\"]")});
    const QByteArray zeroInside("A\0B", 3);
    const Fields fields = zr::record_fields(Inf(70), Span(zeroInside), nullptr);
    QCOMPARE(int(fields.size()), 1);
    QCOMPARE(fields[0].text, QStringLiteral("A") + QChar(0) + QLatin1Char('B'));
}

void tst_ZrRecordText::event()
{
    QCOMPARE(Lines(3, FromHex(eventHex)),
        (QStringList{QStringLiteral("code=-2  [-2]"),
            QStringLiteral("time=2021-03-03T14:05:09.250Z  [1614780309.25]"), QStringLiteral("src=7  [7]"),
            QStringLiteral("text=Möwe  [\"Möwe\"]"), QStringLiteral("detail=  [\"\"]"),
            QStringLiteral("uid=00112233-4455-6677-8899-aabbccddeeff  "
                           "[\"00112233-4455-6677-8899-aabbccddeeff\"]")}));
    // A null text and a null uid.
    QByteArray payload = FromHex(eventHex);
    payload.replace(26, 4, QByteArray(4, '\xff'));
    payload.replace(30, 16, QByteArray(16, '\0'));
    const QStringList lines = Lines(3, payload);
    QCOMPARE(lines.size(), 6);
    QCOMPARE(lines[4], QStringLiteral("detail=  [\"\"]"));
    QCOMPARE(lines[5], QStringLiteral("uid=-  [null]"));
}

void tst_ZrRecordText::eventTimes_data()
{
    QTest::addColumn<double>("time");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("unit");
    const double inf = std::numeric_limits<double>::infinity();
    QTest::newRow("epoch") << 0.0 << QStringLiteral("1970-01-01T00:00:00.000Z") << QString();
    QTest::newRow("before the epoch") << -0.5 << QStringLiteral("1969-12-31T23:59:59.500Z") << QString();
    QTest::newRow("rounded") << 1.0006 << QStringLiteral("1970-01-01T00:00:01.001Z") << QString();
    QTest::newRow("year 1") << -62135596800.0 << QStringLiteral("0001-01-01T00:00:00.000Z") << QString();
    QTest::newRow("year 9999") << 253402300798.0 << QStringLiteral("9999-12-31T23:59:58.000Z") << QString();
    QTest::newRow("year 10000") << 253402300800.0 << QStringLiteral("253402300800.000")
                                << QStringLiteral("s");
    QTest::newRow("before year 1") << -62135596801.0 << QStringLiteral("-62135596801.000")
                                   << QStringLiteral("s");
    QTest::newRow("absurd") << 1e300 << QStringLiteral("1e+300") << QStringLiteral("s");
    QTest::newRow("infinite") << inf << QStringLiteral("-") << QStringLiteral("s");
    QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN() << QStringLiteral("-")
                         << QStringLiteral("s");
}

void tst_ZrRecordText::eventTimes()
{
    QFETCH(double, time);
    QFETCH(QString, text);
    QFETCH(QString, unit);
    QByteArray payload = FromHex(eventHex);
    quint64 bits;
    std::memcpy(&bits, &time, sizeof bits);
    qToBigEndian(bits, payload.data() + 2);
    const Fields fields = zr::record_fields(Inf(3), Span(payload), nullptr);
    QCOMPARE(int(fields.size()), 6);
    QCOMPARE(fields[1].text, text);
    QCOMPARE(fields[1].unit, unit);
    if (std::isfinite(time))
        QCOMPARE(fields[1].value, QJsonValue(time));
    else
        QVERIFY(fields[1].value.isNull());
}

void tst_ZrRecordText::unknownIsDashAndNull_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("known");
    QTest::newRow("navigation") << 16 << ZrNavRecord().Encode() << QStringList{QStringLiteral("flags")};
    QTest::newRow("ping") << 17 << ZrPingRecord().Encode()
                          << QStringList{QStringLiteral("pingNumber"), QStringLiteral("side"),
                                 QStringLiteral("sampleWidth"), QStringLiteral("sampleCount")};
    QTest::newRow("fix") << 18 << ZrFixRecord().Encode() << QStringList();
    QTest::newRow("depth") << 19 << ZrDepthRecord().Encode() << QStringList();
    QTest::newRow("motion") << 20 << ZrMotionRecord().Encode() << QStringList();
    QTest::newRow("environment") << 21 << ZrEnvRecord().Encode() << QStringList();
    QTest::newRow("vehicle") << 22 << ZrVehicleRecord().Encode()
                             << QStringList{QStringLiteral("navState"), QStringLiteral("securityLevel")};
}

void tst_ZrRecordText::unknownIsDashAndNull()
{
    QFETCH(int, type);
    QFETCH(QByteArray, payload);
    QFETCH(QStringList, known);
    const Fields fields = zr::record_fields(Inf(type), Span(payload), nullptr);
    QVERIFY(!fields.empty());
    for (const ZrRecordField& field : fields) {
        const bool isKnown = known.removeOne(field.name);
        QCOMPARE(field.text == QStringLiteral("-"), !isKnown);
        QCOMPARE(field.value.isNull(), !isKnown);
    }
    QVERIFY(known.isEmpty());
}

void tst_ZrRecordText::infiniteIsNotKnownEither()
{
    ZrDepthRecord record;
    record.depth = std::numeric_limits<float>::infinity();
    record.offset = -std::numeric_limits<float>::infinity();
    QCOMPARE(Lines(19, record.Encode()),
        (QStringList{QStringLiteral("depth=- m [null]"), QStringLiteral("offset=- m [null]")}));
}

void tst_ZrRecordText::codedValues_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("field");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, int type, int offset, int field, int code, const char* text) {
        QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(code)))
            << type << offset << field << code << QString::fromLatin1(text);
    };
    row("side", 17, 4, 1, 0, "port");
    row("side", 17, 4, 1, 1, "starboard");
    row("side", 17, 4, 1, 2, "2");
    row("quality", 18, 24, 4, 0, "none");
    row("quality", 18, 24, 4, 1, "autonomous");
    row("quality", 18, 24, 4, 2, "differential");
    row("quality", 18, 24, 4, 3, "precise");
    row("quality", 18, 24, 4, 4, "RTK fixed");
    row("quality", 18, 24, 4, 5, "RTK float");
    row("quality", 18, 24, 4, 6, "dead reckoning");
    row("quality", 18, 24, 4, 7, "manual");
    row("quality", 18, 24, 4, 8, "simulated");
    row("quality", 18, 24, 4, 9, "9");
    row("quality", 18, 24, 4, 254, "254");
    row("quality", 18, 24, 4, 255, "-");
    row("satellites", 18, 25, 5, 0, "0");
    row("satellites", 18, 25, 5, 254, "254");
    row("satellites", 18, 25, 5, 255, "-");
    row("windReference", 21, 12, 3, 0, "-");
    row("windReference", 21, 12, 3, 1, "relative");
    row("windReference", 21, 12, 3, 2, "true, from the bow");
    row("windReference", 21, 12, 3, 3, "true, from north");
    row("windReference", 21, 12, 3, 4, "4");
}

void tst_ZrRecordText::codedValues()
{
    QFETCH(int, type);
    QFETCH(int, offset);
    QFETCH(int, field);
    QFETCH(int, code);
    QFETCH(QString, text);
    QByteArray payload = type == 17 ? ZrPingRecord().Encode() : QByteArray(28, '\0');
    payload[offset] = static_cast<char>(code);
    const Fields fields = zr::record_fields(Inf(type), Span(payload), nullptr);
    QVERIFY(int(fields.size()) > field);
    const ZrRecordField& found = fields[static_cast<std::size_t>(field)];
    QCOMPARE(found.text, text);
    QCOMPARE(found.unit, QString());
    QCOMPARE(found.value, text == QStringLiteral("-") ? QJsonValue(QJsonValue::Null) : QJsonValue(code));
}

void tst_ZrRecordText::textRoundsHalfUp()
{
    ZrDepthRecord record;
    record.depth = 0.125F;
    record.offset = -0.125F;
    QCOMPARE(Lines(19, record.Encode()),
        (QStringList{QStringLiteral("depth=0.13 m [0.125]"), QStringLiteral("offset=-0.13 m [-0.125]")}));
}

void tst_ZrRecordText::singlePrecisionIsShortest_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<double>("decimal");
    QTest::newRow("one digit behind the point") << 12.6F << 12.6;
    QTest::newRow("negative") << -0.1F << -0.1;
    QTest::newRow("seven digits") << 1.234567F << 1.234567;
    QTest::newRow("eight digits") << 16777.217F << 16777.217;
    QTest::newRow("nine digits") << 1000.00006F << 1000.00006;
    QTest::newRow("large and whole") << 8589934592.0F << 8589934592.0;
    QTest::newRow("zero") << 0.0F << 0.0;
    QTest::newRow("whole") << 16777215.0F << 16777215.0;
    QTest::newRow("third") << 1.0F / 3.0F << 0.33333334;
}

void tst_ZrRecordText::singlePrecisionIsShortest()
{
    QFETCH(float, value);
    QFETCH(double, decimal);
    ZrDepthRecord record;
    record.depth = value;
    const QByteArray payload = record.Encode();
    const Fields fields = zr::record_fields(Inf(19), Span(payload), nullptr);
    QCOMPARE(int(fields.size()), 2);
    const double shown = fields[0].value.toDouble();
    QCOMPARE(static_cast<float>(shown), value);
    QVERIFY2(shown == decimal, qPrintable(QString::number(shown, 'g', 17)));
}

void tst_ZrRecordText::absurdNumbersStayShort()
{
    ZrNavRecord record;
    record.latitude = -1.7976931348623157e308;
    record.longitude = 999999999999.0;
    record.altitude = 3.4028235e38F;
    record.depth = 1e-40F;
    const QByteArray payload = record.Encode();
    const Fields fields = zr::record_fields(Inf(16), Span(payload), nullptr);
    QCOMPARE(int(fields.size()), 8);
    QCOMPARE(fields[0].text, QStringLiteral("-1.79769e+308"));
    QCOMPARE(fields[1].text, QStringLiteral("999999999999.0000000"));
    QCOMPARE(fields[2].text, QStringLiteral("3.40282e+38"));
    QCOMPARE(fields[3].text, QStringLiteral("0.00"));
    QVERIFY(fields[3].value.toDouble() > 0.0);
}

void tst_ZrRecordText::textDoesNotFollowTheLocale()
{
    ZrDepthRecord record;
    record.depth = 1234.5F;
    record.offset = 0.5F;
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const QStringList lines = Lines(19, record.Encode());
    QLocale::setDefault(before);
    QCOMPARE(lines,
        (QStringList{QStringLiteral("depth=1234.50 m [1234.5]"), QStringLiteral("offset=0.50 m [0.5]")}));
}

void tst_ZrRecordText::everyValueIsValidJson()
{
    // A lone surrogate, which no UTF-8 can hold, and control characters.
    QByteArray payload = FromHex(eventHex);
    payload.replace(18, 8, QByteArray::fromHex("d83d004100000022"));
    const Fields fields = zr::record_fields(Inf(3), Span(payload), nullptr);
    QCOMPARE(int(fields.size()), 6);
    QVERIFY(fields[3].text.isValidUtf16());
    QVERIFY(fields[3].text.endsWith(QStringLiteral("A") + QChar(0) + QLatin1Char('"')));
    QCOMPARE(fields[3].value.toString(), fields[3].text);

    QJsonArray values;
    for (const ZrRecordField& field : fields)
        values << field.value;
    QJsonParseError error;
    const QJsonDocument read
        = QJsonDocument::fromJson(QJsonDocument(values).toJson(QJsonDocument::Compact), &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    QCOMPARE(read.array(), values);
}

void tst_ZrRecordText::unknownTypes_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("sub");
    QTest::newRow("zero") << 0 << 0;
    QTest::newRow("application's own") << 99 << 3;
    QTest::newRow("reserved for the kit") << 23 << 0;
    QTest::newRow("last") << 65535 << 65535;
    QTest::newRow("sub-type of serial text") << 2 << 1;
    QTest::newRow("sub-type of an event") << 3 << 70;
    QTest::newRow("third side") << 17 << 2;
}

void tst_ZrRecordText::unknownTypes()
{
    QFETCH(int, type);
    QFETCH(int, sub);
    const QByteArray payload(100, '\0');
    QString error;
    QVERIFY(zr::record_fields(Inf(type, sub), Span(payload), &error).empty());
    QCOMPARE(error, QStringLiteral("Record type %1, sub-type %2 is not known.").arg(type).arg(sub));
}

void tst_ZrRecordText::unknownFormats_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("name");
    QTest::newRow("navigation") << 16 << QStringLiteral("navigation");
    QTest::newRow("ping") << 17 << QStringLiteral("ping");
    QTest::newRow("fix") << 18 << QStringLiteral("fix");
    QTest::newRow("depth") << 19 << QStringLiteral("depth");
    QTest::newRow("motion") << 20 << QStringLiteral("motion");
    QTest::newRow("environment") << 21 << QStringLiteral("environment");
    QTest::newRow("vehicle") << 22 << QStringLiteral("vehicle");
}

void tst_ZrRecordText::unknownFormats()
{
    QFETCH(int, type);
    QFETCH(QString, name);
    const QByteArray payload(100, '\1');
    for (const int format : {0, 2, 65535}) {
        QString error;
        QVERIFY(zr::record_fields(Inf(type, 0, format), Span(payload), &error).empty());
        QCOMPARE(error, QStringLiteral("Format %1 of a %2 record is not known.").arg(format).arg(name));
    }
}

void tst_ZrRecordText::shortPayloads_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("name");
    ZrPingRecord pingRecord;
    pingRecord.samples = QByteArray(6, '\1');
    QTest::newRow("navigation") << 16 << ZrNavRecord().Encode() << QStringLiteral("navigation");
    QTest::newRow("ping") << 17 << pingRecord.Encode() << QStringLiteral("ping");
    QTest::newRow("fix") << 18 << ZrFixRecord().Encode() << QStringLiteral("fix");
    QTest::newRow("depth") << 19 << ZrDepthRecord().Encode() << QStringLiteral("depth");
    QTest::newRow("motion") << 20 << ZrMotionRecord().Encode() << QStringLiteral("motion");
    QTest::newRow("environment") << 21 << ZrEnvRecord().Encode() << QStringLiteral("environment");
    QTest::newRow("vehicle") << 22 << ZrVehicleRecord().Encode() << QStringLiteral("vehicle");
    QTest::newRow("event") << 3 << FromHex(eventHex) << QStringLiteral("event");
}

void tst_ZrRecordText::shortPayloads()
{
    QFETCH(int, type);
    QFETCH(QByteArray, payload);
    QFETCH(QString, name);
    for (int size = 0; size < payload.size(); ++size) {
        // Memory of its own, so that a sanitizer sees a read behind the end.
        const std::vector<char> memory(payload.begin(), payload.begin() + size);
        QString error;
        const Fields fields
            = zr::record_fields(Inf(type), zr::bytes_of(memory.data(), memory.size()), &error);
        QVERIFY2(fields.empty(), qPrintable(QString::number(size)));
        QCOMPARE(error, QStringLiteral("A payload of %1 bytes is no whole %2 record.").arg(size).arg(name));
    }
    QString error;
    QVERIFY(!zr::record_fields(Inf(type), Span(payload), &error).empty());
    QCOMPARE(error, QString());
}

void tst_ZrRecordText::damagedEvents_data()
{
    QTest::addColumn<QByteArray>("length");
    QTest::newRow("odd length") << QByteArray::fromHex("00000007");
    QTest::newRow("a little too long") << QByteArray::fromHex("00000040");
    QTest::newRow("absurdly long") << QByteArray::fromHex("fffffffe");
    QTest::newRow("two gigabytes") << QByteArray::fromHex("80000000");
    QTest::newRow("odd and absurd") << QByteArray::fromHex("fffffffd");
}

void tst_ZrRecordText::damagedEvents()
{
    QFETCH(QByteArray, length);
    const MessageCatcher messages;
    QByteArray payload = FromHex(eventHex);
    payload.replace(14, 4, length);
    QString error;
    QVERIFY(zr::record_fields(Inf(3), Span(payload), &error).empty());
    QCOMPARE(error, QStringLiteral("A payload of 46 bytes is no whole event record."));
}

void tst_ZrRecordText::absurdSizeIsRefused()
{
    // Refused by its size alone: no byte of it is there to be read.
    u8 one = 0;
    const quint64 size = Q_UINT64_C(0x80000000);
    for (const int type : {2, 3, 16, 17, 70}) {
        QString error;
        QVERIFY(zr::record_fields(Inf(type), zr::bytes_of(&one, size), &error).empty());
        QVERIFY2(error.startsWith(QStringLiteral("A payload of 2147483648 bytes is no whole ")),
            qPrintable(error));
    }
}

void tst_ZrRecordText::errorMayBeNull()
{
    QVERIFY(zr::record_fields(Inf(99), zr::span<u8>(), nullptr).empty());
    QVERIFY(zr::record_fields(Inf(16, 0, 2), zr::span<u8>(), nullptr).empty());
    QVERIFY(zr::record_fields(Inf(16), zr::span<u8>(), nullptr).empty());
}

void tst_ZrRecordText::bytesBehindAreIgnored()
{
    QCOMPARE(Lines(3, FromHex(eventHex) + "more"), Lines(3, FromHex(eventHex)));
    QCOMPARE(Lines(19, ZrDepthRecord().Encode() + "more"), Lines(19, ZrDepthRecord().Encode()));
}

QTEST_GUILESS_MAIN(tst_ZrRecordText)
#include "tst_ZrRecordText.moc"
