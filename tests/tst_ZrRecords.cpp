// The records of the kit, each held byte by byte against a text of hexadecimal digits written by hand.

#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrEnvRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/records/ZrVehicleRecord.h"
#include "ZrLogFixture.h"

namespace {

const char* const navHex = R"(
    00 00 00 00 00 10 4e 40   # latitude: 60.125
    00 00 00 00 00 00 15 c0   # longitude: -5.25
    00 00 c0 3f               # altitude: 1.5
    00 00 c8 42               # depth: 100
    00 c0 35 43               # heading: 181.75
    00 00 10 c0               # pitch: -2.25
    00 00 00 3f               # roll: 0.5
    01 00 00 00               # flags
)";

const char* const pingHex = R"(
    04 03 02 01               # pingNumber
    01                        # side: starboard
    02                        # sampleWidth
    00 00                     # reserved
    00 00 c8 42               # slantRange: 100
    00 00 cd 43               # frequency: 410
    00 80 bb 44               # soundSpeed: 1500
    03 00 00 00               # sampleCount
    00 01 ff 00 ff ff         # samples: 256, 255, 65535
)";

const char* const fixHex = R"(
    00 00 00 00 00 10 4e 40   # latitude: 60.125
    00 00 00 00 00 00 15 c0   # longitude: -5.25
    00 00 10 c0               # height: -2.25
    00 00 c0 3f               # hdop: 1.5
    04                        # quality: RTK fixed
    0c                        # satellites
    00 00                     # reserved
)";

const char* const depthHex = R"(
    00 00 c8 42               # depth: 100
    00 00 00 3f               # offset: 0.5
)";

const char* const motionHex = R"(
    00 c0 35 43               # headingTrue: 181.75
    00 00 35 43               # headingMagnetic: 181
    00 00 20 41               # courseTrue: 10
    00 00 c0 3f               # speedGround: 1.5
    00 00 00 3f               # speedWater: 0.5
    00 00 00 00               # reserved
)";

const char* const envHex = R"(
    00 00 48 c1               # waterTemperature: -12.5
    00 00 20 41               # windSpeed: 10
    00 c0 35 43               # windAngle: 181.75
    03                        # windReference: from true north
    00                        # reserved
    00 00                     # reserved
)";

const char* const vehicleHex = R"(
    76 00 00 00               # navState: 118
    01 00 00 80               # securityLevel
    00 00 ac 41               # temperature: 21.5
    00 40 9c 47               # pressure: 80000
    00 00 e6 41               # voltage: 28.75
    00 00 40 bf               # declination: -0.75
    00 00 87 43               # desiredHeading: 270
    00 00 fa 43               # ballastCommand: 500
    00 c0 f9 43               # ballastPosition: 499.5
    00 00 48 c1               # linearCommand: -12.5
    00 00 40 c1               # linearPosition: -12
    00 00 20 41               # angularCommand: 10
    00 00 18 41               # angularPosition: 9.5
)";

/// A record type without its class: decodes into a record already filled from \p before and encodes that.
using DecodeOver
    = std::function<bool(const QByteArray& payload, const QByteArray& before, QByteArray& after)>;

template <class Record> DecodeOver DecodeOverOf()
{
    return [](const QByteArray& payload, const QByteArray& before, QByteArray& after) {
        Record record;
        if (!Record::Decode(Span(before), record))
            return false;
        const bool decoded = Record::Decode(Span(payload), record);
        after = record.Encode();
        return decoded;
    };
}

/// `QCOMPARE` on floats is fuzzy; records keep every bit.
bool SameBits(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

Q_DECLARE_METATYPE(DecodeOver)

Q_DECLARE_METATYPE(CRecType)

class tst_ZrRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typeNumbersAndNames_data();
    void typeNumbersAndNames();
    void namesOfUnknownTypesAreEmpty_data();
    void namesOfUnknownTypesAreEmpty();
    void recTypeIsTypeAndSubType();
    void classConstants();

    void navigationBytes();
    void pingBytes();
    void fixBytes();
    void depthBytes();
    void motionBytes();
    void environmentBytes();
    void vehicleBytes();
    void defaultsAreNotKnown_data();
    void defaultsAreNotKnown();

    void decodedIsEncodedAgain_data();
    void decodedIsEncodedAgain();
    void shortPayloadLeavesRecordUntouched_data();
    void shortPayloadLeavesRecordUntouched();
    void longerPayloadIsAccepted_data();
    void longerPayloadIsAccepted();
    void everyBitPatternSurvives();

    void pingCountFollowsSamples_data();
    void pingCountFollowsSamples();
    void pingOfImpossibleWidthIsNotEncoded_data();
    void pingOfImpossibleWidthIsNotEncoded();
    void pingHeaderThatLiesIsRefused_data();
    void pingHeaderThatLiesIsRefused();
    void pingWithoutSamples();
    void pingSamplesAreACopy();

private:
    void AddRecordRows();
};

void tst_ZrRecords::typeNumbersAndNames_data()
{
    QTest::addColumn<CRecType>("type");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("name");
    QTest::newRow("serial text") << CRecType(rtSerialText) << 2 << QStringLiteral("serial text");
    QTest::newRow("event") << CRecType(rtEvent) << 3 << QStringLiteral("event");
    QTest::newRow("navigation") << zr::rec_type(krtNavigation) << 16 << QStringLiteral("navigation");
    QTest::newRow("port ping") << zr::rec_type(krtPing) << 17 << QStringLiteral("ping");
    QTest::newRow("starboard ping") << zr::rec_type(krtPing, 1) << 17 << QStringLiteral("ping");
    QTest::newRow("fix") << zr::rec_type(krtFix) << 18 << QStringLiteral("fix");
    QTest::newRow("depth") << zr::rec_type(krtDepth) << 19 << QStringLiteral("depth");
    QTest::newRow("motion") << zr::rec_type(krtMotion) << 20 << QStringLiteral("motion");
    QTest::newRow("environment") << zr::rec_type(krtEnvironment) << 21 << QStringLiteral("environment");
    QTest::newRow("vehicle") << zr::rec_type(krtVehicle) << 22 << QStringLiteral("vehicle");
    QTest::newRow("mission plan") << CRecType(rtMissionPlan) << 70 << QStringLiteral("mission plan");
}

void tst_ZrRecords::typeNumbersAndNames()
{
    QFETCH(CRecType, type);
    QFETCH(int, number);
    QFETCH(QString, name);
    QCOMPARE(int(type.type), number);
    QCOMPARE(zr::rec_type_name(type), name);
}

void tst_ZrRecords::namesOfUnknownTypesAreEmpty_data()
{
    QTest::addColumn<int>("sub");
    QTest::addColumn<int>("type");
    QTest::newRow("zero") << 0 << 0;
    QTest::newRow("before the first") << 0 << 15;
    QTest::newRow("reserved for the kit") << 0 << 23;
    QTest::newRow("last") << 0 << 65535;
    QTest::newRow("sub-type of serial text") << 1 << 2;
    QTest::newRow("sub-type of navigation") << 1 << 16;
    QTest::newRow("third side") << 2 << 17;
    QTest::newRow("sub-type that looks like a type") << 16 << 0;
}

void tst_ZrRecords::namesOfUnknownTypesAreEmpty()
{
    QFETCH(int, sub);
    QFETCH(int, type);
    QCOMPARE(zr::rec_type_name(CRecType(static_cast<u16>(sub), static_cast<u16>(type))), QString());
}

void tst_ZrRecords::recTypeIsTypeAndSubType()
{
    constexpr CRecType plain = zr::rec_type(krtFix);
    QCOMPARE(int(plain.type), 18);
    QCOMPARE(int(plain.sub), 0);
    constexpr CRecType starboard = zr::rec_type(krtPing, 1);
    QCOMPARE(int(starboard.type), 17);
    QCOMPARE(int(starboard.sub), 1);
}

void tst_ZrRecords::classConstants()
{
    QCOMPARE(int(ZrNavRecord::RecType), 16);
    QCOMPARE(int(ZrPingRecord::RecType), 17);
    QCOMPARE(int(ZrFixRecord::RecType), 18);
    QCOMPARE(int(ZrDepthRecord::RecType), 19);
    QCOMPARE(int(ZrMotionRecord::RecType), 20);
    QCOMPARE(int(ZrEnvRecord::RecType), 21);
    QCOMPARE(int(ZrVehicleRecord::RecType), 22);
    for (const int format : {int(ZrNavRecord::Format), int(ZrPingRecord::Format), int(ZrFixRecord::Format),
             int(ZrDepthRecord::Format), int(ZrMotionRecord::Format), int(ZrEnvRecord::Format),
             int(ZrVehicleRecord::Format)})
        QCOMPARE(format, 1);
}

void tst_ZrRecords::navigationBytes()
{
    ZrNavRecord record;
    record.latitude = 60.125;
    record.longitude = -5.25;
    record.altitude = 1.5F;
    record.depth = 100.0F;
    record.heading = 181.75F;
    record.pitch = -2.25F;
    record.roll = 0.5F;
    record.flags = 1;
    QCOMPARE(record.Encode().toHex(), FromHex(navHex).toHex());

    ZrNavRecord read;
    QVERIFY(ZrNavRecord::Decode(Span(FromHex(navHex)), read));
    QVERIFY(SameBits(read.latitude, 60.125));
    QVERIFY(SameBits(read.longitude, -5.25));
    QVERIFY(SameBits(read.altitude, 1.5F));
    QVERIFY(SameBits(read.depth, 100.0F));
    QVERIFY(SameBits(read.heading, 181.75F));
    QVERIFY(SameBits(read.pitch, -2.25F));
    QVERIFY(SameBits(read.roll, 0.5F));
    QCOMPARE(read.flags, 1U);
}

void tst_ZrRecords::pingBytes()
{
    ZrPingRecord record;
    record.pingNumber = 0x01020304;
    record.side = 1;
    record.sampleWidth = 2;
    record.slantRange = 100.0F;
    record.frequency = 410.0F;
    record.soundSpeed = 1500.0F;
    record.samples = QByteArray::fromHex("0001ff00ffff");
    QCOMPARE(record.Encode().toHex(), FromHex(pingHex).toHex());

    ZrPingRecord read;
    QVERIFY(ZrPingRecord::Decode(Span(FromHex(pingHex)), read));
    QCOMPARE(read.pingNumber, 0x01020304U);
    QCOMPARE(int(read.side), 1);
    QCOMPARE(int(read.sampleWidth), 2);
    QVERIFY(SameBits(read.slantRange, 100.0F));
    QVERIFY(SameBits(read.frequency, 410.0F));
    QVERIFY(SameBits(read.soundSpeed, 1500.0F));
    QCOMPARE(read.sampleCount, 3U);
    QCOMPARE(read.samples.toHex(), QByteArray("0001ff00ffff"));
}

void tst_ZrRecords::fixBytes()
{
    ZrFixRecord record;
    record.latitude = 60.125;
    record.longitude = -5.25;
    record.height = -2.25F;
    record.hdop = 1.5F;
    record.quality = 4;
    record.satellites = 12;
    QCOMPARE(record.Encode().toHex(), FromHex(fixHex).toHex());

    ZrFixRecord read;
    QVERIFY(ZrFixRecord::Decode(Span(FromHex(fixHex)), read));
    QVERIFY(SameBits(read.latitude, 60.125));
    QVERIFY(SameBits(read.longitude, -5.25));
    QVERIFY(SameBits(read.height, -2.25F));
    QVERIFY(SameBits(read.hdop, 1.5F));
    QCOMPARE(int(read.quality), 4);
    QCOMPARE(int(read.satellites), 12);
}

void tst_ZrRecords::depthBytes()
{
    ZrDepthRecord record;
    record.depth = 100.0F;
    record.offset = 0.5F;
    QCOMPARE(record.Encode().toHex(), FromHex(depthHex).toHex());

    ZrDepthRecord read;
    QVERIFY(ZrDepthRecord::Decode(Span(FromHex(depthHex)), read));
    QVERIFY(SameBits(read.depth, 100.0F));
    QVERIFY(SameBits(read.offset, 0.5F));
}

void tst_ZrRecords::motionBytes()
{
    ZrMotionRecord record;
    record.headingTrue = 181.75F;
    record.headingMagnetic = 181.0F;
    record.courseTrue = 10.0F;
    record.speedGround = 1.5F;
    record.speedWater = 0.5F;
    QCOMPARE(record.Encode().toHex(), FromHex(motionHex).toHex());

    ZrMotionRecord read;
    QVERIFY(ZrMotionRecord::Decode(Span(FromHex(motionHex)), read));
    QVERIFY(SameBits(read.headingTrue, 181.75F));
    QVERIFY(SameBits(read.headingMagnetic, 181.0F));
    QVERIFY(SameBits(read.courseTrue, 10.0F));
    QVERIFY(SameBits(read.speedGround, 1.5F));
    QVERIFY(SameBits(read.speedWater, 0.5F));
}

void tst_ZrRecords::environmentBytes()
{
    ZrEnvRecord record;
    record.waterTemperature = -12.5F;
    record.windSpeed = 10.0F;
    record.windAngle = 181.75F;
    record.windReference = ZrEnvRecord::windNorth;
    QCOMPARE(record.Encode().toHex(), FromHex(envHex).toHex());

    ZrEnvRecord read;
    QVERIFY(ZrEnvRecord::Decode(Span(FromHex(envHex)), read));
    QVERIFY(SameBits(read.waterTemperature, -12.5F));
    QVERIFY(SameBits(read.windSpeed, 10.0F));
    QVERIFY(SameBits(read.windAngle, 181.75F));
    QCOMPARE(int(read.windReference), 3);
}

void tst_ZrRecords::vehicleBytes()
{
    ZrVehicleRecord record;
    record.navState = 118;
    record.securityLevel = 0x80000001U;
    record.temperature = 21.5F;
    record.pressure = 80000.0F;
    record.voltage = 28.75F;
    record.declination = -0.75F;
    record.desiredHeading = 270.0F;
    record.ballastCommand = 500.0F;
    record.ballastPosition = 499.5F;
    record.linearCommand = -12.5F;
    record.linearPosition = -12.0F;
    record.angularCommand = 10.0F;
    record.angularPosition = 9.5F;
    QCOMPARE(record.Encode().toHex(), FromHex(vehicleHex).toHex());

    ZrVehicleRecord read;
    QVERIFY(ZrVehicleRecord::Decode(Span(FromHex(vehicleHex)), read));
    QCOMPARE(read.navState, 118U);
    QCOMPARE(read.securityLevel, 0x80000001U);
    QVERIFY(SameBits(read.temperature, 21.5F));
    QVERIFY(SameBits(read.pressure, 80000.0F));
    QVERIFY(SameBits(read.voltage, 28.75F));
    QVERIFY(SameBits(read.declination, -0.75F));
    QVERIFY(SameBits(read.desiredHeading, 270.0F));
    QVERIFY(SameBits(read.ballastCommand, 500.0F));
    QVERIFY(SameBits(read.ballastPosition, 499.5F));
    QVERIFY(SameBits(read.linearCommand, -12.5F));
    QVERIFY(SameBits(read.linearPosition, -12.0F));
    QVERIFY(SameBits(read.angularCommand, 10.0F));
    QVERIFY(SameBits(read.angularPosition, 9.5F));
}

void tst_ZrRecords::defaultsAreNotKnown_data()
{
    QTest::addColumn<QByteArray>("encoded");
    QTest::addColumn<QByteArray>("hex");
    const QByteArray nan4 = "0000c07f";
    const QByteArray nan8 = "000000000000f87f";
    const QByteArray zero4 = "00000000";
    QTest::newRow("navigation") << ZrNavRecord().Encode() << nan8 + nan8 + nan4.repeated(5) + zero4;
    QTest::newRow("ping") << ZrPingRecord().Encode()
                          << zero4 + QByteArray("00020000") + nan4.repeated(3) + zero4;
    QTest::newRow("fix") << ZrFixRecord().Encode() << nan8 + nan8 + nan4 + nan4 + QByteArray("ffff0000");
    QTest::newRow("depth") << ZrDepthRecord().Encode() << nan4 + nan4;
    QTest::newRow("motion") << ZrMotionRecord().Encode() << nan4.repeated(5) + zero4;
    QTest::newRow("environment") << ZrEnvRecord().Encode() << nan4.repeated(3) + zero4;
    QTest::newRow("vehicle") << ZrVehicleRecord().Encode() << zero4 + zero4 + nan4.repeated(11);
}

void tst_ZrRecords::defaultsAreNotKnown()
{
    QFETCH(QByteArray, encoded);
    QFETCH(QByteArray, hex);
    QCOMPARE(encoded.toHex(), hex);
}

void tst_ZrRecords::AddRecordRows()
{
    QTest::addColumn<DecodeOver>("decode");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("navigation") << DecodeOverOf<ZrNavRecord>() << FromHex(navHex);
    QTest::newRow("ping") << DecodeOverOf<ZrPingRecord>() << FromHex(pingHex);
    QTest::newRow("fix") << DecodeOverOf<ZrFixRecord>() << FromHex(fixHex);
    QTest::newRow("depth") << DecodeOverOf<ZrDepthRecord>() << FromHex(depthHex);
    QTest::newRow("motion") << DecodeOverOf<ZrMotionRecord>() << FromHex(motionHex);
    QTest::newRow("environment") << DecodeOverOf<ZrEnvRecord>() << FromHex(envHex);
    QTest::newRow("vehicle") << DecodeOverOf<ZrVehicleRecord>() << FromHex(vehicleHex);
}

void tst_ZrRecords::decodedIsEncodedAgain_data()
{
    AddRecordRows();
}

void tst_ZrRecords::decodedIsEncodedAgain()
{
    QFETCH(DecodeOver, decode);
    QFETCH(QByteArray, payload);
    QByteArray before(payload.size(), '\0');
    before[5] = 1; // the sample width of a ping, which is never 0
    QByteArray after;
    QVERIFY(decode(payload, before, after));
    QCOMPARE(after.toHex(), payload.toHex());
}

void tst_ZrRecords::shortPayloadLeavesRecordUntouched_data()
{
    AddRecordRows();
}

void tst_ZrRecords::shortPayloadLeavesRecordUntouched()
{
    QFETCH(DecodeOver, decode);
    QFETCH(QByteArray, payload);
    QByteArray before(payload.size(), '\0');
    before[5] = 1;
    QByteArray untouched;
    QVERIFY(decode(before, payload, untouched));
    QVERIFY(untouched != payload);
    for (int size = 0; size < payload.size(); ++size) {
        // The shorter payload has memory of its own, so that a sanitizer sees a read behind its end.
        const std::vector<char> memory(payload.begin(), payload.begin() + size);
        QByteArray after;
        QVERIFY2(!decode(QByteArray::fromRawData(memory.data(), size), before, after),
            qPrintable(QString::number(size)));
        QCOMPARE(after.toHex(), untouched.toHex());
    }
}

void tst_ZrRecords::longerPayloadIsAccepted_data()
{
    AddRecordRows();
}

void tst_ZrRecords::longerPayloadIsAccepted()
{
    QFETCH(DecodeOver, decode);
    QFETCH(QByteArray, payload);
    for (const int more : {1, 3, 1000}) {
        QByteArray after;
        QVERIFY(decode(payload + QByteArray(more, '\x55'), payload, after));
        QCOMPARE(after.toHex(), payload.toHex());
    }
}

void tst_ZrRecords::everyBitPatternSurvives()
{
    // Infinities, a signalling NaN and a negative zero travel as their bits.
    const QByteArray payload = FromHex(R"(
        01 00 00 00 00 00 f0 7f   # latitude: signalling NaN
        00 00 00 00 00 00 f0 ff   # longitude: -infinity
        00 00 80 7f               # altitude: infinity
        00 00 00 80               # depth: -0
        01 00 00 00               # heading: smallest denormal
        ff ff 7f 7f               # pitch: largest
        ff ff ff ff               # roll: a NaN with all bits
        ff ff ff ff               # flags
    )");
    ZrNavRecord record;
    QVERIFY(ZrNavRecord::Decode(Span(payload), record));
    QVERIFY(std::isnan(record.latitude));
    QVERIFY(std::isinf(record.longitude) && record.longitude < 0.0);
    QVERIFY(std::isinf(record.altitude));
    QVERIFY(std::signbit(record.depth));
    QCOMPARE(record.flags, 0xFFFFFFFFU);
    QCOMPARE(record.Encode().toHex(), payload.toHex());
}

void tst_ZrRecords::pingCountFollowsSamples_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("count");
    QTest::newRow("none") << 2 << 0 << 0;
    QTest::newRow("bytes") << 1 << 5 << 5;
    QTest::newRow("words") << 2 << 6 << 3;
    QTest::newRow("half a word more") << 2 << 7 << 3;
    QTest::newRow("half a word alone") << 2 << 1 << 0;
    QTest::newRow("double words") << 4 << 8 << 2;
    QTest::newRow("three bytes too many") << 4 << 11 << 2;
}

void tst_ZrRecords::pingCountFollowsSamples()
{
    QFETCH(int, width);
    QFETCH(int, bytes);
    QFETCH(int, count);
    for (const u32 said : {0U, 3U, 1000U, 0xFFFFFFFFU}) {
        ZrPingRecord record;
        record.sampleWidth = static_cast<u8>(width);
        record.sampleCount = said;
        record.samples = QByteArray(bytes, '\x7e');
        const QByteArray payload = record.Encode();
        QCOMPARE(payload.size(), 24 + count * width);
        QCOMPARE(int(LeAt<quint32>(payload, 20)), count);
        ZrPingRecord read;
        QVERIFY(ZrPingRecord::Decode(Span(payload), read));
        QCOMPARE(int(read.sampleCount), count);
        QCOMPARE(read.samples, QByteArray(count * width, '\x7e'));
    }
}

void tst_ZrRecords::pingOfImpossibleWidthIsNotEncoded_data()
{
    QTest::addColumn<int>("width");
    for (const int width : {0, 3, 5, 8, 255})
        QTest::newRow(qPrintable(QString::number(width))) << width;
}

void tst_ZrRecords::pingOfImpossibleWidthIsNotEncoded()
{
    QFETCH(int, width);
    ZrPingRecord record;
    record.sampleWidth = static_cast<u8>(width);
    record.samples = QByteArray(240, '\1');
    QCOMPARE(record.Encode(), QByteArray());
}

void tst_ZrRecords::pingHeaderThatLiesIsRefused_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<quint32>("count");
    QTest::newRow("one sample too many") << 2 << 4U;
    QTest::newRow("width 0") << 0 << 3U;
    QTest::newRow("width 0, no samples") << 0 << 0U;
    QTest::newRow("width 3") << 3 << 2U;
    QTest::newRow("width 255") << 255 << 0U;
    // In 32 bits these products are small or negative.
    QTest::newRow("product 2^32 of words") << 2 << 0x80000000U;
    QTest::newRow("product 2^32 of double words") << 4 << 0x40000000U;
    QTest::newRow("product 2^32 + 4") << 4 << 0x40000001U;
    QTest::newRow("product 2^32 + 2") << 2 << 0x80000001U;
    QTest::newRow("largest") << 4 << 0xFFFFFFFFU;
    QTest::newRow("largest of bytes") << 1 << 0xFFFFFFFFU;
}

void tst_ZrRecords::pingHeaderThatLiesIsRefused()
{
    QFETCH(int, width);
    QFETCH(quint32, count);
    QByteArray payload = FromHex(pingHex).left(20);
    payload[5] = static_cast<char>(width);
    AppendLe<quint32>(payload, count);
    payload += QByteArray(6, '\1');
    ZrPingRecord record;
    record.pingNumber = 77;
    record.samples = "kept";
    QVERIFY(!ZrPingRecord::Decode(Span(payload), record));
    QCOMPARE(record.pingNumber, 77U);
    QCOMPARE(record.samples, QByteArray("kept"));
    QCOMPARE(record.sampleCount, 0U);
}

void tst_ZrRecords::pingWithoutSamples()
{
    const QByteArray payload = FromHex(pingHex).left(20) + QByteArray(4, '\0');
    ZrPingRecord record;
    record.samples = "replaced";
    QVERIFY(ZrPingRecord::Decode(Span(payload), record));
    QCOMPARE(record.sampleCount, 0U);
    QVERIFY(record.samples.isEmpty());
    QCOMPARE(record.Encode().toHex(), payload.toHex());
}

void tst_ZrRecords::pingSamplesAreACopy()
{
    QByteArray payload = FromHex(pingHex);
    ZrPingRecord record;
    QVERIFY(ZrPingRecord::Decode(Span(payload), record));
    payload.fill('\0');
    QCOMPARE(record.samples.toHex(), QByteArray("0001ff00ffff"));
}

QTEST_GUILESS_MAIN(tst_ZrRecords)
#include "tst_ZrRecords.moc"
