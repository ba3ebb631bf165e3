#include "ZrKit/import/ZrImporter.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrUtil/ZrEndian.h"
#include "import_fixture.h"

#include <QtTest/QtTest>

#include <cmath>
#include <random>

using fixture::Imported;

namespace {

constexpr int Header = 1024; // bytes of the real file's header
constexpr int Ping = 4480; // bytes of each of its packets
constexpr int Pings = 300;

QString realPath()
{
    return fixture::data("sidescan-xtf/iver2-scotsman-pings0-299.xtf");
}

/// The real file, or its header and first pings.
QByteArray realFile(int pings = Pings)
{
    return fixture::contentOf(realPath()).left(Header + pings * Ping);
}

template <class T> void put(QByteArray& bytes, int at, T value)
{
    u8 field[sizeof(T)];
    zr::store_le<T>(field, value);
    bytes.replace(at, int(sizeof field), reinterpret_cast<const char*>(field), int(sizeof field));
}

struct MadeChannel
{
    u8 type = 1;
    u16 width = 2;
    u16 unipolar = 1;
    u8 format = 0;
    float frequency = 455.0f;
};

/// A file header that describes \p channels.
QByteArray madeHeader(const QVector<MadeChannel>& channels, u16 unit = 3)
{
    const int beyond = std::max(0, channels.size() - 6);
    QByteArray header(1024 * (1 + (beyond + 7) / 8), '\0');
    header[0] = '\x7B';
    put<u16>(header, 164, unit);
    put<u16>(header, 166, static_cast<u16>(channels.size()));
    for (int i = 0; i < channels.size(); ++i) {
        const int at = 256 + 128 * i;
        put<u8>(header, at, channels.at(i).type);
        put<u16>(header, at + 4, channels.at(i).unipolar);
        put<u16>(header, at + 6, channels.at(i).width);
        put<float>(header, at + 32, channels.at(i).frequency);
        put<u8>(header, at + 74, channels.at(i).format);
    }
    return header;
}

struct MadeSamples
{
    u16 channel;
    QByteArray samples;
    u32 count;
};

/// A ping packet of 2020-02-29 12:34:56.78 at 60 N, 20 E.
QByteArray madePing(const QVector<MadeSamples>& channels, u32 number = 1)
{
    QByteArray ping(256, '\0');
    put<u16>(ping, 14, 2020);
    const u8 date[] = {2, 29, 12, 34, 56, 78};
    for (int i = 0; i < 6; ++i)
        put<u8>(ping, 16 + i, date[i]);
    put<u32>(ping, 28, number);
    put<float>(ping, 32, 1480.0f);
    put<double>(ping, 160, 60.0);
    put<double>(ping, 168, 20.0);
    for (const MadeSamples& channel : channels) {
        QByteArray header(64, '\0');
        put<u16>(header, 0, channel.channel);
        put<float>(header, 4, 50.0f);
        put<u32>(header, 42, channel.count);
        ping += header + channel.samples;
    }
    put<u16>(ping, 0, 0xFACE);
    put<u16>(ping, 4, static_cast<u16>(channels.size()));
    put<u32>(ping, 10, static_cast<u32>(ping.size()));
    return ping;
}

/// A packet of another type.
QByteArray otherPacket(u8 type, int size)
{
    QByteArray packet(size, '\x11');
    put<u16>(packet, 0, 0xFACE);
    put<u8>(packet, 2, type);
    put<u32>(packet, 10, static_cast<u32>(size));
    return packet;
}

Imported importBytes(const QByteArray& bytes)
{
    QTemporaryDir folder;
    return fixture::import(fixture::write(folder, QStringLiteral("file"), bytes), QStringLiteral("xtf"));
}

/// Positions among the pings handed out of the ping numbers that the real file counts 0, 1, 2 …
QVector<u32> pingNumbers(const Imported& got)
{
    QVector<u32> numbers;
    for (const ZrImportItem& item : got.Of(krtPing)) {
        if (item.type.sub == 0)
            numbers.append(fixture::decoded<ZrPingRecord>(item).pingNumber);
    }
    return numbers;
}

QVector<u32> countedExcept(int pings, int missing)
{
    QVector<u32> numbers;
    for (int i = 0; i < pings; ++i) {
        if (i != missing)
            numbers.append(static_cast<u32>(i));
    }
    return numbers;
}

u16 sample16(const ZrPingRecord& ping, int i)
{
    return zr::load_le<u16>(reinterpret_cast<const u8*>(ping.samples.constData()) + 2 * i);
}

/// Peak of the memory that the program ever held, in KiB.
qint64 peakKiB()
{
    for (const QByteArray& line : fixture::contentOf(QStringLiteral("/proc/self/status")).split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

} // namespace

class tst_ZrImportXtf : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void realLineIsReadWhole();
    void realPingHasTheValuesOfTheFile();
    void realPingWithoutPositionKeepsTheRest();
    void samplesBeginAtTheNadirOnBothSides();
    void samplesOfTheWholeLineAddUp();
    void widthsAndSigns_data();
    void widthsAndSigns();
    void moreThanSixChannels();
    void headerLengthIsTakenFromTheFirstPacket();
    void channelsThatAreNoSideScanAreCounted();
    void frequencyOfThePingComesFirst();
    void soundSpeed_data();
    void soundSpeed();
    void positions_data();
    void positions();
    void headingIsWrapped();
    void valuesThatAreNoNumbersAreNotKnown();
    void impossibleDates_data();
    void impossibleDates();
    void otherPacketsAreCounted();
    void paddingInsideAPacketIsPassedOver();
    void channelWithoutSamplesGivesNoRecord();
    void headerAloneHoldsNothing();
    void cutAnywhere();
    void cutInsideTheFileHeader();
    void flippedPacketHeader_data();
    void flippedPacketHeader();
    void everyByteOfPingAndChannelHeaderFlipped();
    void everyByteOfTheFileHeaderFlipped();
    void garbageBetweenPackets_data();
    void garbageBetweenPackets();
    void markOnTheBorderOfABlockIsFound();
    void soundPingBetweenDamageIsFound();
    void markInsideSamplesIsNoPacket();
    void oversizedPacketSwallowsNothing();
    void oversizedUnknownPacketSwallowsNothing();
    void hugeSampleCount();
    void hugePacketInBoundedMemory();
    void marksOnlyAreSearchedQuickly();
    void randomBytesEnd();
};

void tst_ZrImportXtf::realLineIsReadWhole()
{
    const Imported got = fixture::import(realPath());
    QVERIFY2(got.opened, qPrintable(got.error));
    QCOMPARE(got.items.size(), 900);
    QCOMPARE(got.Count(krtNavigation), 300);
    QCOMPARE(got.Count(krtPing), 600);
    QCOMPARE(got.report.format, QStringLiteral("xtf"));
    QVERIFY(!got.report.byLine);
    QCOMPARE(got.report.bytes, u64(1345024));
    QCOMPARE(got.report.records, u64(300));
    QCOMPARE(got.report.items, u64(900));
    QCOMPARE(got.report.issueCount, u64(0));
    QVERIFY(got.report.ignored.isEmpty());
    QCOMPARE(got.Note("the position is 0,0: taken as not known"), u64(1));
    QCOMPARE(got.Note("the speed of sound is given for one way: doubled"), u64(300));
    QCOMPARE(got.report.notes.size(), 2);
    QCOMPARE(got.report.firstTime, 1378847588.0);
    QCOMPARE(got.report.lastTime, 1378847623.56);
    QCOMPARE(got.report.backwards, u64(0));
    for (int i = 0; i < got.items.size(); ++i) {
        const CRecType expected = i % 3 == 0 ? CRecType(0, krtNavigation) : CRecType(u16(i % 3 - 1), krtPing);
        QVERIFY(got.items.at(i).type == expected);
        QCOMPARE(got.items.at(i).time, got.items.at(i - i % 3).time);
    }
    QCOMPARE(pingNumbers(got), countedExcept(300, -1));
}

void tst_ZrImportXtf::realPingHasTheValuesOfTheFile()
{
    const Imported got = fixture::import(realPath());
    QCOMPARE(got.items.size(), 900);
    const ZrNavRecord nav = fixture::decoded<ZrNavRecord>(got.items.at(450));
    QCOMPARE(got.items.at(450).time, 1378847606.66);
    QCOMPARE(nav.latitude, 48.44559);
    QCOMPARE(nav.longitude, -68.82805666666667);
    QCOMPARE(nav.depth, 18.94f);
    QCOMPARE(nav.altitude, 6.78f);
    QCOMPARE(nav.pitch, -22.5f);
    QCOMPARE(nav.roll, 0.3f);
    QCOMPARE(nav.heading, 346.38f);
    QCOMPARE(nav.flags, 0u);
    for (int side = 0; side < 2; ++side) {
        const ZrPingRecord ping = fixture::decoded<ZrPingRecord>(got.items.at(451 + side));
        QCOMPARE(ping.pingNumber, 150u);
        QCOMPARE(int(ping.side), side);
        QCOMPARE(int(got.items.at(451 + side).type.sub), side);
        QCOMPARE(int(ping.sampleWidth), 2);
        QCOMPARE(ping.slantRange, 29.983501f);
        QCOMPARE(ping.frequency, 600.0f);
        QCOMPARE(ping.soundSpeed, 1500.0f);
        QCOMPARE(ping.sampleCount, 1024u);
    }
}

void tst_ZrImportXtf::realPingWithoutPositionKeepsTheRest()
{
    const Imported got = importBytes(realFile(2));
    QCOMPARE(got.items.size(), 6);
    const ZrNavRecord first = fixture::decoded<ZrNavRecord>(got.items.at(0));
    QVERIFY(std::isnan(first.latitude) && std::isnan(first.longitude));
    QCOMPARE(first.depth, 0.0f);
    QCOMPARE(first.heading, 0.0f);
    const ZrNavRecord second = fixture::decoded<ZrNavRecord>(got.items.at(3));
    QCOMPARE(second.latitude, 48.44545);
    QCOMPARE(second.longitude, -68.827935);
    QCOMPARE(got.items.at(3).time, 1378847588.13);
}

void tst_ZrImportXtf::samplesBeginAtTheNadirOnBothSides()
{
    const Imported got = importBytes(realFile(2));
    QCOMPARE(got.items.size(), 6);
    // The first eight samples hold the transmit pulse.
    const QVector<QVector<u16>> near
        = {{32767, 32767, 32767, 32767, 32767, 32767, 32767, 32767, 411, 230, 177, 118},
            {32767, 32767, 32767, 32767, 32767, 32767, 32767, 32767, 496, 903, 656, 204}};
    const QVector<QVector<u16>> far = {{15136, 17774, 92}, {8119, 5671, 110}};
    for (int side = 0; side < 2; ++side) {
        const ZrPingRecord ping = fixture::decoded<ZrPingRecord>(got.items.at(4 + side));
        for (int i = 0; i < 12; ++i)
            QCOMPARE(sample16(ping, i), near.at(side).at(i));
        for (int i = 0; i < 3; ++i)
            QCOMPARE(sample16(ping, 1021 + i), far.at(side).at(i));
        // Altitude 11.45 m of 29.98 m range: the seabed is first heard about sample 391.
        double column = 0.0;
        double seabed = 0.0;
        for (int i = 0; i < 320; ++i) {
            column += sample16(ping, 40 + i) / 320.0;
            seabed += sample16(ping, 420 + i) / 320.0;
        }
        QVERIFY2(seabed > 10.0 * column, qPrintable(QStringLiteral("%1 %2").arg(column).arg(seabed)));
    }
}

void tst_ZrImportXtf::samplesOfTheWholeLineAddUp()
{
    const Imported got = fixture::import(realPath());
    quint64 sums[2] = {0, 0};
    quint64 weighted[2] = {0, 0};
    for (const ZrImportItem& item : got.Of(krtPing)) {
        const ZrPingRecord ping = fixture::decoded<ZrPingRecord>(item);
        QCOMPARE(ping.samples.size(), 2048);
        for (int i = 0; i < 1024; ++i) {
            sums[ping.side] += sample16(ping, i);
            weighted[ping.side] += quint64(i) * sample16(ping, i);
        }
    }
    QCOMPARE(sums[0], quint64(2567419092u));
    QCOMPARE(sums[1], quint64(2395502872u));
    QCOMPARE(weighted[0], quint64(1497496703892));
    QCOMPARE(weighted[1], quint64(1449100936704));
}

void tst_ZrImportXtf::widthsAndSigns_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("unipolar");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("record");
    const auto hex = [](const char* text) { return QByteArray::fromHex(text); };
    QTest::newRow("8 bits port") << 1 << 1 << 1 << hex("01 80 ff") << hex("ff 80 01");
    QTest::newRow("8 bits starboard") << 1 << 2 << 1 << hex("01 80 ff") << hex("01 80 ff");
    QTest::newRow("8 bits signed") << 1 << 2 << 0 << hex("01 80 ff 7f") << hex("01 80 01 7f");
    QTest::newRow("16 bits port") << 2 << 1 << 1 << hex("0102 0304 0506") << hex("0506 0304 0102");
    QTest::newRow("16 bits signed port") << 2 << 1 << 0 << hex("ffff 0080 0100") << hex("0100 0080 0100");
    QTest::newRow("32 bits port") << 4 << 1 << 1 << hex("01020304 fffefdfc") << hex("fffefdfc 01020304");
    QTest::newRow("32 bits signed starboard")
        << 4 << 2 << 0 << hex("feffffff 01020304") << hex("02000000 01020304");
}

void tst_ZrImportXtf::widthsAndSigns()
{
    QFETCH(int, width);
    QFETCH(int, type);
    QFETCH(int, unipolar);
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, record);
    MadeChannel channel;
    channel.type = static_cast<u8>(type);
    channel.width = static_cast<u16>(width);
    channel.unipolar = static_cast<u16>(unipolar);
    const u32 count = static_cast<u32>(file.size() / width);
    const Imported got = importBytes(madeHeader({channel}) + madePing({{0, file, count}}));
    QCOMPARE(got.report.issueCount, u64(0));
    QCOMPARE(got.Count(krtPing), 1);
    const ZrPingRecord ping = fixture::decoded<ZrPingRecord>(got.items.at(1));
    QCOMPARE(int(ping.sampleWidth), width);
    QCOMPARE(ping.sampleCount, count);
    QCOMPARE(ping.samples.toHex(), record.toHex());
    QCOMPARE(ping.frequency, 455.0f);
    QCOMPARE(ping.slantRange, 50.0f);
    QCOMPARE(got.Note("the samples of a channel are signed: their magnitude is taken"), u64(1 - unipolar));
}

void tst_ZrImportXtf::moreThanSixChannels()
{
    for (const int channels : {6, 7, 14, 15}) {
        QVector<MadeChannel> described;
        QVector<MadeSamples> samples;
        for (int i = 0; i < channels; ++i) {
            MadeChannel channel;
            channel.type = static_cast<u8>(1 + i % 2);
            channel.frequency = 100.0f + static_cast<float>(i);
            described.append(channel);
            samples.append({static_cast<u16>(i), QByteArray("ab"), 1});
        }
        const QByteArray header = madeHeader(described);
        QCOMPARE(header.size(), channels <= 6 ? 1024 : channels <= 14 ? 2048 : 3072);
        const Imported got = importBytes(header + madePing(samples) + madePing(samples));
        QCOMPARE(got.report.issueCount, u64(0));
        QCOMPARE(got.Count(krtNavigation), 2);
        QCOMPARE(got.Count(krtPing), 2 * channels);
        for (int i = 0; i < channels; ++i) {
            const ZrPingRecord ping = fixture::decoded<ZrPingRecord>(got.items.at(1 + i));
            QCOMPARE(int(ping.side), i % 2);
            QCOMPARE(ping.frequency, 100.0f + static_cast<float>(i));
        }
    }
}

void tst_ZrImportXtf::headerLengthIsTakenFromTheFirstPacket()
{
    // Seven channels are announced, yet the first packet follows the first block.
    QByteArray file = realFile(2);
    put<u16>(file, 168, 5);
    const Imported got = importBytes(file);
    QCOMPARE(got.items.size(), 6);
    QCOMPARE(got.report.issueCount, u64(0));
}

void tst_ZrImportXtf::channelsThatAreNoSideScanAreCounted()
{
    MadeChannel subBottom;
    subBottom.type = 0;
    MadeChannel real;
    real.type = 2;
    real.width = 4;
    real.format = 5;
    const QByteArray file = madeHeader({subBottom, MadeChannel(), real})
        + madePing({{0, "abcd", 2}, {1, "abcd", 2}, {2, "abcd", 1}});
    const Imported got = importBytes(file);
    QCOMPARE(got.report.issueCount, u64(0));
    QCOMPARE(got.Count(krtNavigation), 1);
    QCOMPARE(got.Count(krtPing), 1);
    QCOMPARE(got.report.ignored.value(QStringLiteral("XTF channel type 0")), u64(1));
    QCOMPARE(got.report.ignored.value(QStringLiteral("XTF channel of floating-point samples")), u64(1));
}

void tst_ZrImportXtf::frequencyOfThePingComesFirst()
{
    QByteArray ping = madePing({{0, "ab", 1}});
    put<u16>(ping, 256 + 26, 900);
    Imported got = importBytes(madeHeader({MadeChannel()}) + ping);
    QCOMPARE(fixture::decoded<ZrPingRecord>(got.items.value(1)).frequency, 900.0f);
    MadeChannel silent;
    silent.frequency = 0.0f;
    got = importBytes(madeHeader({silent}) + madePing({{0, "ab", 1}}));
    QVERIFY(std::isnan(fixture::decoded<ZrPingRecord>(got.items.value(1)).frequency));
}

void tst_ZrImportXtf::soundSpeed_data()
{
    QTest::addColumn<float>("file");
    QTest::addColumn<float>("record");
    const float nan = std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("both ways") << 1480.0f << 1480.0f;
    QTest::newRow("one way") << 735.5f << 1471.0f;
    QTest::newRow("not given") << 0.0f << nan;
    QTest::newRow("negative") << -1500.0f << nan;
    QTest::newRow("not a number") << nan << nan;
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << nan;
}

void tst_ZrImportXtf::soundSpeed()
{
    QFETCH(float, file);
    QFETCH(float, record);
    QByteArray ping = madePing({{0, "ab", 1}});
    put<float>(ping, 32, file);
    const Imported got = importBytes(madeHeader({MadeChannel()}) + ping);
    const float speed = fixture::decoded<ZrPingRecord>(got.items.value(1)).soundSpeed;
    QCOMPARE(std::isnan(speed), std::isnan(record));
    if (!std::isnan(record))
        QCOMPARE(speed, record);
}

void tst_ZrImportXtf::positions_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QString>("note");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const QString off = QStringLiteral("the position lies off the globe: taken as not known");
    QTest::newRow("degrees") << 3 << -90.0 << 180.0 << QString();
    QTest::newRow("on the equator") << 3 << 0.0 << 1e-9 << QString();
    QTest::newRow("metres") << 0 << 60.0 << 20.0 << "the positions are not in degrees: taken as not known";
    QTest::newRow("none") << 3 << 0.0 << -0.0 << "the position is 0,0: taken as not known";
    QTest::newRow("beyond the pole") << 3 << 90.5 << 20.0 << off;
    QTest::newRow("beyond the date line") << 3 << 60.0 << -180.5 << off;
    QTest::newRow("not a number") << 3 << nan << 20.0 << off;
}

void tst_ZrImportXtf::positions()
{
    QFETCH(int, unit);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(QString, note);
    QByteArray ping = madePing({{0, "ab", 1}});
    put<double>(ping, 160, latitude);
    put<double>(ping, 168, longitude);
    const Imported got = importBytes(madeHeader({MadeChannel()}, static_cast<u16>(unit)) + ping);
    QCOMPARE(got.items.size(), 2);
    const ZrNavRecord nav = fixture::decoded<ZrNavRecord>(got.items.at(0));
    if (note.isEmpty()) {
        QCOMPARE(nav.latitude, latitude);
        QCOMPARE(nav.longitude, longitude);
        QVERIFY(got.report.notes.isEmpty());
    } else {
        QVERIFY(std::isnan(nav.latitude) && std::isnan(nav.longitude));
        QCOMPARE(got.report.notes.value(note), u64(1));
        QCOMPARE(got.report.notes.size(), 1);
    }
}

void tst_ZrImportXtf::headingIsWrapped()
{
    for (const auto& [file, record] : {std::pair(-10.0f, 350.0f), std::pair(360.0f, 0.0f),
             std::pair(359.5f, 359.5f), std::pair(725.0f, 5.0f)}) {
        QByteArray ping = madePing({});
        put<float>(ping, 212, file);
        const Imported got = importBytes(madeHeader({MadeChannel()}) + ping);
        QCOMPARE(fixture::decoded<ZrNavRecord>(got.items.value(0)).heading, record);
    }
}

void tst_ZrImportXtf::valuesThatAreNoNumbersAreNotKnown()
{
    QByteArray ping = madePing({});
    for (const int at : {192, 196, 204, 208, 212})
        put<float>(ping, at, at % 8 ? std::numeric_limits<float>::infinity() : std::nanf(""));
    const Imported got = importBytes(madeHeader({MadeChannel()}) + ping);
    const ZrNavRecord nav = fixture::decoded<ZrNavRecord>(got.items.value(0));
    for (const float value : {nav.depth, nav.altitude, nav.pitch, nav.roll, nav.heading})
        QVERIFY(std::isnan(value));
}

void tst_ZrImportXtf::impossibleDates_data()
{
    QTest::addColumn<int>("at");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("date");
    QTest::newRow("month 13") << 16 << 13 << "2020-13-29 12:34:56.78";
    QTest::newRow("month 0") << 16 << 0 << "2020-0-29 12:34:56.78";
    QTest::newRow("30th of February") << 17 << 30 << "2020-2-30 12:34:56.78";
    QTest::newRow("hour 24") << 18 << 24 << "2020-2-29 24:34:56.78";
    QTest::newRow("minute 60") << 19 << 60 << "2020-2-29 12:60:56.78";
    QTest::newRow("second 60") << 20 << 60 << "2020-2-29 12:34:60.78";
    QTest::newRow("hundredth 100") << 21 << 100 << "2020-2-29 12:34:56.100";
    QTest::newRow("year 1764") << 15 << 6 << "1764-2-29 12:34:56.78"; // 0xE4 + 0x600
}

void tst_ZrImportXtf::impossibleDates()
{
    QFETCH(int, at);
    QFETCH(int, value);
    QFETCH(QString, date);
    const QByteArray sound = madePing({{0, "ab", 1}}, 7);
    QByteArray ping = sound;
    ping[at] = static_cast<char>(value);
    const Imported got = importBytes(madeHeader({MadeChannel()}) + ping + sound);
    QCOMPARE(got.report.issueCount, u64(1));
    QCOMPARE(got.Issues(),
        QStringLiteral("offset 1024: a ping has the impossible date and time %1; %2 bytes are skipped")
            .arg(date)
            .arg(ping.size()));
    QCOMPARE(got.items.size(), 2);
    QCOMPARE(got.items.at(0).time, 1582979696.78);
}

void tst_ZrImportXtf::otherPacketsAreCounted()
{
    const QByteArray ping = madePing({{0, "ab", 1}});
    const Imported got = importBytes(madeHeader({MadeChannel()}) + otherPacket(42, 64) + ping
        + otherPacket(3, 256) + otherPacket(42, 14) + ping + otherPacket(255, 64));
    QCOMPARE(got.report.issueCount, u64(0));
    QCOMPARE(got.items.size(), 4);
    QCOMPARE(got.report.records, u64(6));
    QCOMPARE(got.report.ignored.size(), 3);
    QCOMPARE(got.report.ignored.value(QStringLiteral("XTF packet 42")), u64(2));
    QCOMPARE(got.report.ignored.value(QStringLiteral("XTF packet 3")), u64(1));
    QCOMPARE(got.report.ignored.value(QStringLiteral("XTF packet 255")), u64(1));
}

void tst_ZrImportXtf::paddingInsideAPacketIsPassedOver()
{
    QByteArray ping = madePing({{0, "ab", 1}});
    ping.append(62, '\0');
    put<u32>(ping, 10, static_cast<u32>(ping.size()));
    const Imported got = importBytes(madeHeader({MadeChannel()}) + ping + ping);
    QCOMPARE(got.report.issueCount, u64(0));
    QCOMPARE(got.items.size(), 4);
}

void tst_ZrImportXtf::channelWithoutSamplesGivesNoRecord()
{
    const Imported got
        = importBytes(madeHeader({MadeChannel(), MadeChannel()}) + madePing({{0, "", 0}, {1, "ab", 1}}));
    QCOMPARE(got.items.size(), 2);
    QCOMPARE(got.Note("a channel of a ping has no samples"), u64(1));
}

void tst_ZrImportXtf::headerAloneHoldsNothing()
{
    const Imported got = importBytes(realFile(0));
    QVERIFY(got.opened);
    QCOMPARE(got.items.size(), 0);
    QCOMPARE(got.report.issueCount, u64(0));
    QCOMPARE(got.report.bytes, u64(1024));
}

void tst_ZrImportXtf::cutAnywhere()
{
    const QByteArray whole = realFile(3);
    QTemporaryDir folder;
    for (int size = Header; size < whole.size(); ++size) {
        // Every length near the borders of packets and headers, and one in 37 between them.
        const int rest = (size - Header) % Ping;
        if (rest > 330 && rest < Ping - 20 && rest % 37 != 0)
            continue;
        const Imported got = fixture::import(
            fixture::write(folder, QStringLiteral("cut"), whole.left(size)), QStringLiteral("xtf"));
        const int pings = (size - Header) / Ping;
        QVERIFY2(got.opened && got.items.size() == 3 * pings
                && got.report.issueCount == u64(rest == 0 ? 0 : 1) && got.report.bytes == u64(size),
            qPrintable(QStringLiteral("cut at %1: %2").arg(size).arg(got.Issues())));
        if (rest != 0)
            QCOMPARE(got.report.issues.first().place, u64(Header + pings * Ping));
    }
}

void tst_ZrImportXtf::cutInsideTheFileHeader()
{
    const QByteArray whole = realFile(1);
    QTemporaryDir folder;
    for (int size = 1; size < Header; size += 31) {
        const QString path = fixture::write(folder, QStringLiteral("cut"), whole.left(size));
        for (const QString& format : {QStringLiteral("xtf"), QStringLiteral("auto")}) {
            const Imported got = fixture::import(path, format);
            QVERIFY(!got.opened);
            QVERIFY(!got.error.isEmpty());
        }
    }
}

void tst_ZrImportXtf::flippedPacketHeader_data()
{
    QTest::addColumn<int>("at");
    QTest::addColumn<int>("pings"); // of eight
    QTest::addColumn<QString>("issue");
    QTest::addColumn<int>("ignored");
    const QString none;
    const QString noPacket = QStringLiteral("no packet begins here; 4480 bytes are skipped");
    QTest::newRow("mark") << 0 << 7 << noPacket << 0;
    QTest::newRow("mark, second byte") << 1 << 7 << noPacket << 0;
    QTest::newRow("type") << 2 << 7 << none << 1;
    QTest::newRow("sub-channel") << 3 << 8 << none << 0;
    QTest::newRow("channels") << 4 << 7 << "a ping announces 253 channels; 4480 bytes are skipped" << 0;
    QTest::newRow("channels, second byte")
        << 5 << 7 << "a ping announces 65282 channels; 4480 bytes are skipped" << 0;
    QTest::newRow("reserved") << 6 << 8 << none << 0;
    QTest::newRow("reserved, last byte") << 9 << 8 << none << 0;
    QTest::newRow("size one too small") // 0x1180 becomes 0x117F
        << 10 << 7
        << "channel 1 of a ping has 1024 samples, more than its packet holds; 4480 bytes are skipped" << 0;
    QTest::newRow("size beyond the file, near") // 0xEE80
        << 11 << 7 << "a packet announces 61056 bytes, the file holds only 22400 more; 4480 bytes are skipped"
        << 0;
    QTest::newRow("size beyond the file") // 0xFF1180
        << 12 << 7
        << "a packet announces 16716160 bytes, the file holds only 22400 more; 4480 bytes are skipped" << 0;
    QTest::newRow("size beyond the file, far") // 0xFF001180
        << 13 << 7
        << "a packet announces 4278194560 bytes, the file holds only 22400 more; 4480 bytes are skipped" << 0;
}

void tst_ZrImportXtf::flippedPacketHeader()
{
    QFETCH(int, at);
    QFETCH(int, pings);
    QFETCH(QString, issue);
    QFETCH(int, ignored);
    constexpr int Damaged = 3;
    QByteArray file = realFile(8);
    const int offset = Header + Damaged * Ping;
    file[offset + at] = static_cast<char>(~file.at(offset + at));
    const Imported got = importBytes(file);
    QCOMPARE(
        got.Issues(), issue.isEmpty() ? QString() : QStringLiteral("offset %1: %2").arg(offset).arg(issue));
    QCOMPARE(got.report.issueCount, u64(issue.isEmpty() ? 0 : 1));
    QCOMPARE(pingNumbers(got), countedExcept(8, pings == 8 ? -1 : Damaged));
    QCOMPARE(got.report.ignored.value(QStringLiteral("XTF packet 255")), u64(ignored));
}

void tst_ZrImportXtf::everyByteOfPingAndChannelHeaderFlipped()
{
    const QByteArray whole = realFile(4);
    QTemporaryDir folder;
    for (int at = 0; at < 256 + 64; ++at) {
        QByteArray file = whole;
        file[Header + Ping + at] = static_cast<char>(~file.at(Header + Ping + at));
        const Imported got
            = fixture::import(fixture::write(folder, QStringLiteral("flip"), file), QStringLiteral("xtf"));
        // The other pings are there whatever happens to this one.
        const QVector<u32> numbers = pingNumbers(got);
        QVERIFY2(numbers.size() >= 3 && numbers.size() <= 4,
            qPrintable(QStringLiteral("byte %1: %2").arg(at).arg(got.Issues())));
        QVERIFY(got.Count(krtNavigation) >= 3);
        QVERIFY(numbers.contains(0) && numbers.contains(2) && numbers.contains(3));
        QVERIFY(got.report.issueCount <= 1);
        QCOMPARE(got.report.bytes, u64(file.size()));
    }
}

void tst_ZrImportXtf::everyByteOfTheFileHeaderFlipped()
{
    const QByteArray whole = realFile(2);
    QTemporaryDir folder;
    for (int at = 1; at < Header; ++at) {
        QByteArray file = whole;
        file[at] = static_cast<char>(~file.at(at));
        const Imported got
            = fixture::import(fixture::write(folder, QStringLiteral("flip"), file), QStringLiteral("xtf"));
        QVERIFY(got.opened);
        QCOMPARE(got.report.bytes, u64(file.size()));
        // Beside the descriptions of the two channels and the unit, nothing there can spoil a ping.
        const bool described = at >= 256 && at < 512;
        if (!described)
            QVERIFY2(got.items.size() == 6 && got.report.issueCount == 0,
                qPrintable(QStringLiteral("byte %1: %2").arg(at).arg(got.Issues())));
    }
}

void tst_ZrImportXtf::garbageBetweenPackets_data()
{
    QTest::addColumn<QByteArray>("garbage");
    QByteArray random(100000, '\0');
    std::mt19937 generator(7);
    for (char& c : random)
        c = static_cast<char>(generator());
    QTest::newRow("one byte") << QByteArray("x");
    QTest::newRow("zeros longer than a block") << QByteArray(70000, '\0');
    QTest::newRow("random") << random;
    QTest::newRow("half a mark") << QByteArray("\xCE");
    QTest::newRow("marks without packets") << QByteArray(9999, '\xCE').replace("\xCE\xCE", "\xCE\xFA");
    QTest::newRow("half a packet") << realFile(1).mid(Header, 2000);
}

void tst_ZrImportXtf::garbageBetweenPackets()
{
    QFETCH(QByteArray, garbage);
    const QByteArray file = realFile(3);
    const int at = Header + Ping;
    const Imported got = importBytes(file.left(at) + garbage + file.mid(at));
    QCOMPARE(pingNumbers(got), countedExcept(3, -1));
    QCOMPARE(got.report.issueCount, u64(1));
    QCOMPARE(got.report.issues.first().place, u64(at));
    QVERIFY2(got.Issues().contains(QStringLiteral("%1 bytes are skipped").arg(garbage.size())),
        qPrintable(got.Issues()));
}

void tst_ZrImportXtf::markOnTheBorderOfABlockIsFound()
{
    // The search reads blocks of 65536 bytes.
    const QByteArray file = realFile(2);
    const int at = Header + Ping;
    for (int garbage = 65530; garbage <= 65540; ++garbage) {
        const Imported got = importBytes(file.left(at) + QByteArray(garbage, '\0') + file.mid(at));
        QCOMPARE(pingNumbers(got), countedExcept(2, -1));
        QCOMPARE(got.report.issueCount, u64(1));
    }
}

void tst_ZrImportXtf::soundPingBetweenDamageIsFound()
{
    // No packet follows where ping 2 ends, so that only its own content can vouch for it.
    QByteArray file = realFile(5);
    file[Header + Ping] = '\0';
    file[Header + 3 * Ping] = '\0';
    const Imported got = importBytes(file);
    QCOMPARE(pingNumbers(got), QVector<u32>({0, 2, 4}));
    QCOMPARE(got.Issues(),
        QStringLiteral("offset 5504: no packet begins here; 4480 bytes are skipped\n"
                       "offset 14464: no packet begins here; 4480 bytes are skipped"));
}

void tst_ZrImportXtf::markInsideSamplesIsNoPacket()
{
    // A damaged packet whose samples hold the mark and a size that ends inside the file.
    QByteArray file = realFile(4);
    const int at = Header + Ping;
    file[at] = '\0';
    put<u16>(file, at + 1000, 0xFACE);
    put<u8>(file, at + 1002, 42);
    put<u32>(file, at + 1010, 500);
    put<u16>(file, at + 3000, 0xFACE);
    put<u8>(file, at + 3002, 0);
    put<u16>(file, at + 3004, 1);
    put<u32>(file, at + 3010, 900);
    const Imported got = importBytes(file);
    QCOMPARE(pingNumbers(got), countedExcept(4, 1));
    QCOMPARE(got.Issues(), QStringLiteral("offset 5504: no packet begins here; 4480 bytes are skipped"));
    QVERIFY(got.report.ignored.isEmpty());
}

void tst_ZrImportXtf::oversizedPacketSwallowsNothing()
{
    QByteArray file = realFile(6);
    const int at = Header + Ping;
    put<u32>(file, at + 10, 3 * Ping + 100);
    const Imported got = importBytes(file);
    QCOMPARE(pingNumbers(got), countedExcept(6, -1));
    QCOMPARE(got.Issues(),
        QStringLiteral("offset 5504: a packet announces 13540 bytes, but the next one begins after 4480"));
}

void tst_ZrImportXtf::oversizedUnknownPacketSwallowsNothing()
{
    QByteArray other = otherPacket(42, 64);
    put<u32>(other, 10, 5000);
    const QByteArray file = realFile(3);
    const Imported got = importBytes(file.left(Header + Ping) + other + file.mid(Header + Ping));
    QCOMPARE(pingNumbers(got), countedExcept(3, -1));
    QCOMPARE(got.report.ignored.value(QStringLiteral("XTF packet 42")), u64(1));
    QCOMPARE(got.Issues(),
        QStringLiteral("offset 5504: a packet announces 5000 bytes, but the next one begins after 64"));
}

void tst_ZrImportXtf::hugeSampleCount()
{
    for (const u32 count : {1025u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        QByteArray file = realFile(3);
        put<u32>(file, Header + Ping + 256 + 64 + 2048 + 42, count);
        const Imported got = importBytes(file);
        QCOMPARE(pingNumbers(got), countedExcept(3, 1));
        QCOMPARE(got.Issues(),
            QStringLiteral("offset 5504: channel 1 of a ping has %1 samples, more than its packet holds; "
                           "4480 bytes are skipped")
                .arg(count));
    }
}

void tst_ZrImportXtf::hugePacketInBoundedMemory()
{
    // Two pings announce 250 MB each in a sparse file that really is as long.
    QTemporaryDir folder;
    const QString path = fixture::write(folder, QStringLiteral("huge"), realFile(2));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    constexpr u32 Huge = 250000000;
    u8 bytes[4];
    zr::store_le<u32>(bytes, Huge);
    for (int i = 0; i < 2; ++i) {
        QVERIFY(file.seek(Header + i * Ping + 10));
        QCOMPARE(file.write(reinterpret_cast<const char*>(bytes), 4), qint64(4));
    }
    QVERIFY(file.resize(Header + qint64(Huge) + 20000));
    file.close();
    const qint64 before = peakKiB();
    QVERIFY(before > 0);
    const Imported got = fixture::import(path, QStringLiteral("xtf"));
    QCOMPARE(got.items.size(), 0);
    QCOMPARE(got.report.issueCount, u64(1));
    QVERIFY2(got.Issues().startsWith(QStringLiteral("offset 1024: a ping announces 250000000 bytes")),
        qPrintable(got.Issues()));
    QVERIFY2(peakKiB() - before < 20000, qPrintable(QString::number(peakKiB() - before)));
}

void tst_ZrImportXtf::marksOnlyAreSearchedQuickly()
{
    // Two hundred thousand false beginnings, each of which must be looked at.
    QByteArray marks;
    while (marks.size() < 3000000)
        marks += otherPacket(7, 14).left(10) + QByteArray::fromHex("50100000");
    const QByteArray file = realFile(2);
    const Imported got = importBytes(file.left(Header + Ping) + "x" + marks + file.mid(Header + Ping));
    QVERIFY(got.report.records >= 2);
    QVERIFY(pingNumbers(got).contains(0) && pingNumbers(got).contains(1));
}

void tst_ZrImportXtf::randomBytesEnd()
{
    std::mt19937 generator(11);
    for (int round = 0; round < 60; ++round) {
        QByteArray file = realFile(1);
        // Long runs of bytes that look like marks and small numbers lead deep into the code.
        const char alphabet[] = {'\xCE', '\xFA', '\0', '\0', '\1', '\2', '\x10', '\xFF'};
        for (int i = 0; i < 20000; ++i)
            file += alphabet[generator() % sizeof alphabet];
        for (int i = 0; i < 40; ++i) {
            const int at = Header + static_cast<int>(generator() % u32(file.size() - Header - 4));
            put<u32>(file, at, 0x0000FACE);
        }
        const Imported got = importBytes(file);
        QCOMPARE(got.report.bytes, u64(file.size()));
        QVERIFY(got.report.issueCount >= 1);
    }
}

QTEST_GUILESS_MAIN(tst_ZrImportXtf)
#include "tst_ZrImportXtf.moc"
