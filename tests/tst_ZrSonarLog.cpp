#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrLogFixture.h"
#include "ZrSonarTestLog.h"

#include <random>

using sonar_test::SonarLine;
using sonar_test::startTime;

namespace {

constexpr int timeAt = 16; ///< of the time in an item header
constexpr int formatAt = 10;
constexpr int countAt = 20; ///< of the number of samples in a ping

QByteArray Le(double value)
{
    QByteArray bytes;
    AppendLe(bytes, value);
    return bytes;
}

QByteArray Le(float value)
{
    quint32 bits;
    std::memcpy(&bits, &value, sizeof bits);
    QByteArray bytes;
    AppendLe<quint32>(bytes, bits);
    return bytes;
}

QByteArray Le(u32 value)
{
    QByteArray bytes;
    AppendLe<quint32>(bytes, value);
    return bytes;
}

/// A ping item of the fixture's own making.
Item PingItem(const ZrPingRecord& record, double time, bool compressed = false)
{
    Item item = MakeItem(17, record.Encode(), 1);
    item.sub = record.side;
    item.format = 1;
    item.time = time;
    if (compressed) {
        item.dataSize = static_cast<quint32>(item.payload.size());
        item.payload = qCompress(item.payload, 1);
        item.compressed = true;
    }
    return item;
}

Item NavItem(double time)
{
    Item item = MakeItem(16, SonarLine().NavOf(0).Encode(), 1);
    item.format = 1;
    item.time = time;
    return item;
}

/// "12 both, 13 port": the pings by number, and their sides.
QString Table(const ZrSonarLog& log)
{
    QStringList lines;
    for (const ZrSonarPing& ping : log.Pings()) {
        const bool port = ping.sides[sidePort].IsThere();
        const bool starboard = ping.sides[sideStarboard].IsThere();
        lines << QString::number(ping.number)
                + (port && starboard ? QStringLiteral(" both")
                        : port       ? QStringLiteral(" port")
                        : starboard  ? QStringLiteral(" starboard")
                                     : QStringLiteral(" nothing"));
    }
    return lines.join(QStringLiteral(", "));
}

ZrPingRecord SmallPing(u32 number, eSonarSide side)
{
    SonarLine line;
    line.samples = 4;
    ZrPingRecord record = line.PingOf(0, side);
    record.pingNumber = number;
    return record;
}

/// Sets `cancel` when a percentage is reached.
class CancelAt final : public IZrProgress
{
public:
    CancelAt(ZrSonarLog& log, int percent)
        : m_log(log)
        , m_at(percent)
    {
    }

    void UpdateProgress(int percent) override
    {
        m_percent = percent;
        if (percent >= m_at)
            m_log.cancel = true;
    }

    int GetProgress() override { return m_percent; }

private:
    ZrSonarLog& m_log;
    int m_at;
    int m_percent = 0;
};

} // namespace

class tst_ZrSonarLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init();

    void lineComesBack_data();
    void lineComesBack();
    void valuesThatAreNotKnown();
    void pingWithoutSamples();
    void largePings();
    void sidesMakeOnePing_data();
    void sidesMakeOnePing();
    void timeIsThatOfTheFirstItem();
    void sonarsAreKeptApart();
    void oneSideOnly();
    void otherItemsDoNotCount();
    void unusableItemsAreSkipped_data();
    void unusableItemsAreSkipped();
    void shortestAndLongestRange();
    void damagedSamplesShowWhenRead();
    void navigationOfTheWholeLog();
    void noNavigation();
    void heldAndZeroPositions();
    void emptyLog();
    void cannotBeOpened_data();
    void cannotBeOpened();
    void damageInTheMiddle();
    void everyCut();
    void randomDamage();
    void progressIsTold();
    void cancelBefore();
    void cancelDuring();
    void openingAnotherLogForgetsTheFirst();
    void samplesOfNoPing();
    void logTruncatedAfterOpening();
    void logChangedAfterOpening_data();
    void logChangedAfterOpening();
    void logRemovedAfterOpening();
    void tableIsCompact();
    void realLine_data();
    void realLine();

private:
    QString Path() const { return m_folder->filePath(QStringLiteral("line äß.log")); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_ZrSonarLog::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_ZrSonarLog::lineComesBack_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("compress");
    for (const int width : {1, 2, 4}) {
        QTest::addRow("%d bytes", width) << width << false;
        QTest::addRow("%d bytes, compressed", width) << width << true;
    }
}

void tst_ZrSonarLog::lineComesBack()
{
    QFETCH(int, width);
    QFETCH(bool, compress);
    SonarLine line;
    line.sampleWidth = static_cast<u8>(width);
    line.compress = compress;
    line.firstNumber = 0xFFFFFFF0; // runs over within the line
    line.source = 7;
    line.amplitude = [](int ping, eSonarSide side, u32 sample) {
        return std::fmod((ping * 1000 + side * 500 + static_cast<int>(sample)) * 0.618033988749895, 1.0);
    };
    QVERIFY(sonar_test::WriteLine(Path(), line));

    ZrSonarLog log;
    QVERIFY2(log.Open(Path()), qPrintable(log.Error()));
    QCOMPARE(log.Path(), Path());
    QCOMPARE(log.Error(), QString());
    QCOMPARE(log.Damage(), QString());
    QCOMPARE(log.DamageReason(), QString());
    QCOMPARE(log.Skipped(), std::size_t(0));
    QCOMPARE(log.FileSize(), u64(QFileInfo(Path()).size()));
    QCOMPARE(log.Pings().size(), std::size_t(line.pings));
    std::vector<u16> samples;
    for (int i = 0; i < line.pings; ++i) {
        const ZrSonarPing& ping = log.Pings()[static_cast<std::size_t>(i)];
        QCOMPARE(ping.time, line.TimeOf(i));
        QCOMPARE(ping.number, line.firstNumber + static_cast<u32>(i));
        QCOMPARE(ping.source, u16(7));
        QCOMPARE(ping.pose.position, line.PositionOf(i));
        QCOMPARE(ping.pose.heading, 90.0);
        QCOMPARE(ping.pose.altitude, 5.0);
        QCOMPARE(ping.pose.depth, 10.0);
        QCOMPARE(ping.pose.gap, 0.0);
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            const ZrSonarChannel& channel = ping.sides[side];
            QCOMPARE(channel.slantRange, 30.0);
            QCOMPARE(channel.sampleCount, 300U);
            QCOMPARE(channel.SampleLength(), 0.1);
            QCOMPARE(channel.frequency, 455.0F);
            QCOMPARE(channel.soundSpeed, 1500.0F);
            QVERIFY(log.ReadSamples(static_cast<std::size_t>(i), side, samples));
            QCOMPARE(samples.size(), std::size_t(300));
            for (u32 s = 0; s < 300; ++s)
                QCOMPARE(samples[s], line.Expected(i, side, s));
        }
    }
}

void tst_ZrSonarLog::valuesThatAreNotKnown()
{
    const float inf = std::numeric_limits<float>::infinity();
    ZrPingRecord record = SmallPing(1, sidePort);
    sonar_test::Log out(Path());
    for (const float value : {0.0F, -1.0F, inf, std::nanf("")}) {
        record.frequency = record.soundSpeed = value;
        ++record.pingNumber;
        out.AddPing(startTime, record);
    }
    QVERIFY(out.Commit());
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Pings().size(), std::size_t(4));
    for (const ZrSonarPing& ping : log.Pings()) {
        QVERIFY(std::isnan(ping.sides[sidePort].frequency));
        QVERIFY(std::isnan(ping.sides[sidePort].soundSpeed));
    }
}

void tst_ZrSonarLog::pingWithoutSamples()
{
    SonarLine line;
    line.samples = 0;
    line.pings = 1;
    QVERIFY(sonar_test::WriteLine(Path(), line));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(Table(log), QStringLiteral("0 both"));
    QVERIFY(std::isnan(log.Pings()[0].sides[sidePort].SampleLength()));
    std::vector<u16> samples(3);
    QVERIFY(log.ReadSamples(0, sidePort, samples));
    QVERIFY(samples.empty());
}

/// Payloads that are larger than what is read ahead.
void tst_ZrSonarLog::largePings()
{
    SonarLine line;
    line.samples = 400000;
    line.sampleWidth = 4;
    line.pings = 3;
    QVERIFY(sonar_test::WriteLine(Path(), line));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Skipped(), std::size_t(0));
    QCOMPARE(Table(log), QStringLiteral("0 both, 1 both, 2 both"));
    std::vector<u16> samples;
    QVERIFY(log.ReadSamples(2, sideStarboard, samples));
    QCOMPARE(samples.size(), std::size_t(400000));
    QCOMPARE(samples[399999], line.Expected(2, sideStarboard, 399999));
}

void tst_ZrSonarLog::sidesMakeOnePing_data()
{
    QTest::addColumn<QString>("items"); // "P1@0.1": side, number, seconds
    QTest::addColumn<QString>("table");
    const auto row = [](const char* name, const char* items, const char* table) {
        QTest::newRow(name) << QString::fromLatin1(items) << QString::fromLatin1(table);
    };
    row("in turn", "P1@0 S1@0 P2@0.1 S2@0.1", "1 both, 2 both");
    row("starboard first", "S1@0 P1@0 S2@0.1 P2@0.1", "1 both, 2 both");
    row("crossed", "P1@0 P2@0.1 S2@0.1 S1@0", "1 both, 2 both");
    row("side after side", "P1@0 P2@0.1 P3@0.2 P4@0.3 P5@0.4 P6@0.5 S1@0 S2@0.1 S3@0.2 S4@0.3 S5@0.4 S6@0.5",
        "1 both, 2 both, 3 both, 4 both, 5 both, 6 both");
    row("just in time", "P1@0 S1@0.499", "1 both");
    row("just before", "P1@0.499 S1@0", "1 both");
    row("too late", "P1@0 S1@0.5", "1 port, 1 starboard");
    row("too early", "P1@0.5 S1@0", "1 port, 1 starboard");
    row("the same number an hour later", "P1@0 P2@0.1 S2@0.1 S1@3600", "1 port, 2 both, 1 starboard");
    row("counted from 1 again", "P1@0 S1@0 P2@1 S2@1 P1@2 S1@2", "1 both, 2 both, 1 both");
    row("twice the same side", "P1@0 P1@0 S1@0 S1@0", "1 both, 1 both");
    row("gap", "P1@0 S1@0 S2@0.1 P3@0.2 S3@0.2", "1 both, 2 starboard, 3 both");
    row("the latest one", "P1@0 P1@0.3 S1@0.3", "1 port, 1 both");
}

void tst_ZrSonarLog::sidesMakeOnePing()
{
    QFETCH(QString, items);
    QFETCH(QString, table);
    sonar_test::Log out(Path());
    for (const QString& item : items.split(QLatin1Char(' '))) {
        const QStringList parts = item.mid(1).split(QLatin1Char('@'));
        out.AddPing(startTime + parts[1].toDouble(),
            SmallPing(parts[0].toUInt(), item.startsWith(QLatin1Char('P')) ? sidePort : sideStarboard));
    }
    QVERIFY(out.Commit());
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(Table(log), table);
}

void tst_ZrSonarLog::timeIsThatOfTheFirstItem()
{
    sonar_test::Log out(Path());
    out.AddPing(startTime + 0.25, SmallPing(1, sideStarboard)).AddPing(startTime, SmallPing(1, sidePort));
    QVERIFY(out.Commit());
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(Table(log), QStringLiteral("1 both"));
    QCOMPARE(log.Pings()[0].time, startTime + 0.25);
}

void tst_ZrSonarLog::sonarsAreKeptApart()
{
    sonar_test::Log out(Path());
    for (u32 i = 0; i < 3; ++i) {
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            for (const u16 source : {u16(4), u16(9)})
                out.AddPing(startTime + i * 0.1, SmallPing(i, side), false, source);
        }
    }
    QVERIFY(out.Commit());
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(Table(log), QStringLiteral("0 both, 0 both, 1 both, 1 both, 2 both, 2 both"));
    for (std::size_t i = 0; i < 6; ++i)
        QCOMPARE(log.Pings()[i].source, u16(i % 2 == 0 ? 4 : 9));
}

void tst_ZrSonarLog::oneSideOnly()
{
    SonarLine line;
    line.pings = 200; // more than may wait for their other side
    line.isThere = [](int, eSonarSide side) { return side == sideStarboard; };
    QVERIFY(sonar_test::WriteLine(Path(), line));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Pings().size(), std::size_t(200));
    std::vector<u16> samples(5);
    QVERIFY(!log.Pings()[150].sides[sidePort].IsThere());
    QVERIFY(!log.ReadSamples(150, sidePort, samples));
    QVERIFY(samples.empty());
    QVERIFY(log.ReadSamples(150, sideStarboard, samples));
    QCOMPARE(samples[8], line.Expected(150, sideStarboard, 8));
}

void tst_ZrSonarLog::otherItemsDoNotCount()
{
    sonar_test::Log out(Path());
    const QByteArray ping = SmallPing(1, sidePort).Encode();
    out.AddItem(17, 2, 1, startTime, ping); // a third channel
    out.AddItem(16, 1, 1, startTime, "no navigation");
    out.AddItem(2, 0, 1, startTime, "$GPGLL");
    out.AddItem(200, 0, 1, startTime, ping);
    QVERIFY(out.Commit());
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QVERIFY(log.Pings().empty());
    QCOMPARE(log.Skipped(), std::size_t(0));
}

void tst_ZrSonarLog::unusableItemsAreSkipped_data()
{
    QTest::addColumn<QByteArray>("item");
    const Item ping = PingItem(SmallPing(2, sidePort), startTime);
    const Item packed = PingItem(SmallPing(2, sidePort), startTime, true);
    const Item nav = NavItem(startTime);
    const double nan = std::nan("");
    const double inf = std::numeric_limits<double>::infinity();
    const auto row = [](const char* name, const QByteArray& item) { QTest::newRow(name) << item; };

    const QByteArray two = QByteArray("\2\0", 2);
    row("ping of another format", Patched(ping.Bytes(), formatAt, two));
    row("navigation of another format", Patched(nav.Bytes(), formatAt, two));
    row("ping at no time", Patched(ping.Bytes(), timeAt, Le(nan)));
    row("ping at infinity", Patched(ping.Bytes(), timeAt, Le(inf)));
    row("ping at minus infinity", Patched(ping.Bytes(), timeAt, Le(-inf)));
    row("navigation at no time", Patched(nav.Bytes(), timeAt, Le(nan)));
    row("navigation at infinity", Patched(nav.Bytes(), timeAt, Le(inf)));
    const auto shortened = [](Item item, int size) {
        item.payload.truncate(size);
        return item.Bytes();
    };
    row("ping of nothing", shortened(ping, 0));
    row("ping without its last field", shortened(ping, 23));
    row("ping without its last sample", shortened(ping, 31));
    row("navigation of nothing", shortened(nav, 0));
    row("navigation without its last byte", shortened(nav, 39));
    const int payload = 40;
    row("more samples than bytes", Patched(ping.Bytes(), payload + countAt, Le(5U)));
    row("samples that wrap", Patched(ping.Bytes(), payload + countAt, Le(0x80000001U)));
    row("most samples", Patched(ping.Bytes(), payload + countAt, Le(0xFFFFFFFFU)));
    row("samples of 3 bytes", Patched(ping.Bytes(), payload + 5, "\3"));
    row("samples of no bytes", Patched(ping.Bytes(), payload + 5, QByteArray(1, '\0')));
    for (const float range :
        {0.0F, -0.0F, -30.0F, 0.09F, 50001.0F, 3e38F, std::nanf(""), std::numeric_limits<float>::infinity()})
        QTest::addRow("slant range %g", double(range)) << Patched(ping.Bytes(), payload + 8, Le(range));
    row("compressed, without its length", shortened(packed, 3));
    row("compressed, cut", shortened(packed, 12));
    row("compressed, of another length", Patched(packed.Bytes(), payload, QByteArray("\0\0\0\1", 4)));
    row("compressed, not at all", Patched(packed.Bytes(), payload + 4, QByteArray(20, '\xFF')));
    // Both lengths agree, and are absurd.
    row("compressed, 1 GiB",
        Patched(Patched(packed.Bytes(), payload, QByteArray::fromHex("40000000")), 28,
            QByteArray::fromHex("00000040")));
    row("compressed, 3 GiB",
        Patched(Patched(packed.Bytes(), payload, QByteArray::fromHex("C0000000")), 28,
            QByteArray::fromHex("000000C0")));
    const QByteArray less = ping.payload.chopped(1);
    Item packedLess = packed;
    packedLess.dataSize = static_cast<quint32>(less.size());
    packedLess.payload = qCompress(less, 1);
    row("compressed, without its last byte", packedLess.Bytes());
}

void tst_ZrSonarLog::shortestAndLongestRange()
{
    sonar_test::Log out(Path());
    SonarLine line;
    line.pings = 1;
    for (const double range : {0.1, 50000.0}) {
        line.slantRange = range;
        line.time += 10.0;
        out.Add(line);
    }
    QVERIFY(out.Commit());
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Skipped(), std::size_t(0));
    QCOMPARE(log.Pings().size(), std::size_t(2));
}

void tst_ZrSonarLog::unusableItemsAreSkipped()
{
    QFETCH(QByteArray, item);
    SonarLine line;
    line.pings = 2;
    line.samples = 4;
    sonar_test::Log out(Path());
    out.Add(line).AddRaw(item);
    line.firstNumber = 10;
    line.time += 10.0;
    out.Add(line);
    QVERIFY(out.Commit());
    const MessageCatcher quiet; // decompressing warns
    ZrSonarLog log;
    QVERIFY2(log.Open(Path()), qPrintable(log.Error()));
    QCOMPARE(log.Skipped(), std::size_t(1));
    QCOMPARE(log.Damage(), QString());
    QCOMPARE(Table(log), QStringLiteral("0 both, 1 both, 10 both, 11 both"));
    for (const ZrSonarPing& ping : log.Pings())
        QVERIFY(ping.pose.position.IsValid());
}

void tst_ZrSonarLog::damagedSamplesShowWhenRead()
{
    SonarLine line;
    line.pings = 1;
    line.samples = 2000;
    line.compress = true;
    line.amplitude
        = [](int, eSonarSide, u32 sample) { return std::fabs(std::fmod(std::sin(sample) * 43758.5, 1.0)); };
    sonar_test::Log out(Path());
    out.Add(line);
    QVERIFY(out.Commit());
    const QByteArray whole = ReadWhole(Path());
    // Far behind the first fields of the port side; the items stay where they are.
    const int at = static_cast<int>(out.Start(1)) + 40 + 1500;
    QVERIFY(at < static_cast<int>(out.Start(2)));
    QVERIFY(WriteWhole(Path(), Patched(whole, at, QByteArray(50, '\xFF'))));
    const MessageCatcher quiet; // decompressing warns
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(Table(log), QStringLiteral("0 both"));
    std::vector<u16> samples(9);
    QVERIFY(!log.ReadSamples(0, sidePort, samples));
    QVERIFY(samples.empty());
    QVERIFY(log.ReadSamples(0, sideStarboard, samples));
    QCOMPARE(samples[1999], line.Expected(0, sideStarboard, 1999));
}

void tst_ZrSonarLog::navigationOfTheWholeLog()
{
    // The records come late, and out of order.
    SonarLine line;
    line.pings = 11;
    line.hasNav = [](int) { return false; };
    sonar_test::Log out(Path());
    out.Add(line).AddNav(line.TimeOf(10), line.NavOf(10)).AddNav(line.TimeOf(0), line.NavOf(0));
    QVERIFY(out.Commit());
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    const ZrSonarPose pose = log.Pings()[4].pose;
    QVERIFY(std::fabs(pose.position.lng - line.PositionOf(4).lng) < 1e-10);
    QVERIFY(std::fabs(pose.gap - 1.0) < 1e-6);
    QCOMPARE(pose.heading, 90.0);
}

void tst_ZrSonarLog::noNavigation()
{
    SonarLine line;
    line.hasNav = [](int) { return false; };
    QVERIFY(sonar_test::WriteLine(Path(), line));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Pings().size(), std::size_t(100));
    for (const ZrSonarPing& ping : log.Pings()) {
        QVERIFY(!ping.pose.position.IsValid());
        QVERIFY(std::isnan(ping.pose.heading) && std::isnan(ping.pose.altitude));
        QVERIFY(std::isinf(ping.pose.gap));
    }
}

void tst_ZrSonarLog::heldAndZeroPositions()
{
    SonarLine line;
    line.pings = 41;
    line.change = [&line](int ping, ZrNavRecord& nav) {
        if (ping < 10) { // no fix yet
            nav.latitude = nav.longitude = 0.0;
        } else if (ping % 10 != 0) { // repeated until the next fix
            const ZrGeoPoint held = line.PositionOf(ping / 10 * 10);
            nav.latitude = held.lat;
            nav.longitude = held.lng;
            nav.flags = 1;
        }
    };
    QVERIFY(sonar_test::WriteLine(Path(), line));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Pings()[3].pose.position, line.PositionOf(10));
    QVERIFY(std::fabs(log.Pings()[3].pose.gap - 0.7) < 1e-6);
    QVERIFY(std::fabs(log.Pings()[27].pose.position.lng - line.PositionOf(27).lng) < 1e-10);
    QVERIFY(std::fabs(log.Pings()[27].pose.gap - 1.0) < 1e-6);
}

void tst_ZrSonarLog::emptyLog()
{
    QVERIFY(WriteWhole(Path(), FileHeader()));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QVERIFY(log.Pings().empty());
    QCOMPARE(log.Damage(), QString());
    QCOMPARE(log.Error(), QString());
}

void tst_ZrSonarLog::cannotBeOpened_data()
{
    QTest::addColumn<QByteArray>("bytes"); // null: no file at all
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << QByteArray() << QStringLiteral("No such file or directory");
    QTest::newRow("nothing") << QByteArray("")
                             << QStringLiteral("File is not big enough to contain a header");
    QTest::newRow("text") << QByteArray(100, 'x') << QStringLiteral("Not a valid header");
    QTest::newRow("other version") << Flipped(FileHeader(), 4, 1)
                                   << QStringLiteral("File header version mismatch");
}

void tst_ZrSonarLog::cannotBeOpened()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    if (!bytes.isNull())
        QVERIFY(WriteWhole(Path(), bytes));
    ZrSonarLog log;
    QVERIFY(!log.Open(Path()));
    QCOMPARE(log.Error(), error);
    QVERIFY(log.Pings().empty());
    // A folder, too.
    QVERIFY(!log.Open(m_folder->path()));
    QVERIFY(!log.Error().isEmpty());
}

void tst_ZrSonarLog::damageInTheMiddle()
{
    SonarLine line;
    line.pings = 20;
    sonar_test::Log out(Path());
    out.Add(line);
    QVERIFY(out.Commit());
    const u64 at = out.Start(31); // the port side of ping 10
    QVERIFY(WriteWhole(Path(), Flipped(ReadWhole(Path()), static_cast<int>(at), 0xFF)));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Error(), QString());
    QCOMPARE(log.DamageReason(), QStringLiteral("Not a valid item header:aabbcc22"));
    QCOMPARE(log.DamagePos(), at);
    QCOMPARE(log.Damage(), QStringLiteral("Not a valid item header:aabbcc22 (at position %1)").arg(at));
    QCOMPARE(log.Pings().size(), std::size_t(10));
    QCOMPARE(log.Pings()[9].pose.position, line.PositionOf(9));
    std::vector<u16> samples;
    QVERIFY(log.ReadSamples(9, sideStarboard, samples));
}

void tst_ZrSonarLog::everyCut()
{
    SonarLine line;
    line.pings = 3;
    line.samples = 5;
    sonar_test::Log out(Path());
    out.Add(line);
    QVERIFY(out.Commit());
    const QByteArray whole = ReadWhole(Path());
    std::size_t before = 0;
    for (int size = 48; size < whole.size(); ++size) {
        QVERIFY(WriteWhole(Path(), whole.left(size)));
        ZrSonarLog log;
        QVERIFY(log.Open(Path()));
        bool atItem = false;
        for (int i = 0; i < out.Items(); ++i)
            atItem = atItem || out.Start(i) == static_cast<u64>(size);
        QCOMPARE(log.Damage().isEmpty(), atItem);
        QVERIFY(log.Pings().size() >= before);
        before = log.Pings().size();
    }
    QCOMPARE(before, std::size_t(3));
}

void tst_ZrSonarLog::randomDamage()
{
    SonarLine line;
    line.pings = 6;
    line.samples = 20;
    sonar_test::Log out(Path());
    out.Add(line);
    line.compress = true;
    line.firstNumber = 6;
    out.Add(line);
    QVERIFY(out.Commit());
    const QByteArray whole = ReadWhole(Path());
    std::mt19937 random(17);
    const MessageCatcher quiet; // decompressing warns
    std::vector<u16> samples;
    for (int round = 0; round < 500; ++round) {
        QByteArray bytes = whole;
        for (int i = 0; i < 8; ++i)
            bytes[48 + static_cast<int>(random() % static_cast<unsigned>(whole.size() - 48))]
                = static_cast<char>(random());
        QVERIFY(WriteWhole(Path(), bytes));
        ZrSonarLog log;
        QVERIFY(log.Open(Path()));
        QVERIFY(log.Pings().size() <= 24);
        for (std::size_t i = 0; i < log.Pings().size(); ++i) {
            const ZrSonarPing& ping = log.Pings()[i];
            QVERIFY(std::isfinite(ping.time));
            for (const eSonarSide side : {sidePort, sideStarboard}) {
                if (log.ReadSamples(i, side, samples))
                    QCOMPARE(samples.size(), std::size_t(ping.sides[side].sampleCount));
                else
                    QVERIFY(samples.empty());
            }
        }
    }
}

void tst_ZrSonarLog::progressIsTold()
{
    QVERIFY(sonar_test::WriteLine(Path(), SonarLine()));
    ProgressList progress;
    ZrSonarLog log;
    log.progress = &progress;
    QVERIFY(log.Open(Path()));
    QVERIFY(progress.values.size() > 50);
    QVERIFY(std::is_sorted(progress.values.begin(), progress.values.end()));
    QCOMPARE(progress.values.last(), 100);
}

void tst_ZrSonarLog::cancelBefore()
{
    QVERIFY(sonar_test::WriteLine(Path(), SonarLine()));
    ZrSonarLog log;
    log.cancel = true;
    QVERIFY(!log.Open(Path()));
    QCOMPARE(log.Error(), QStringLiteral("Cancelled"));
    QVERIFY(log.Pings().empty());
    QVERIFY(log.cancel);
    log.cancel = false;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Error(), QString());
    QCOMPARE(log.Pings().size(), std::size_t(100));

    // With nothing to read, too.
    QVERIFY(WriteWhole(Path(), FileHeader()));
    log.cancel = true;
    QVERIFY(!log.Open(Path()));
}

void tst_ZrSonarLog::cancelDuring()
{
    QVERIFY(sonar_test::WriteLine(Path(), SonarLine()));
    for (const int percent : {0, 40, 100}) {
        ZrSonarLog log;
        CancelAt progress(log, percent);
        log.progress = &progress;
        QVERIFY(!log.Open(Path()));
        QCOMPARE(log.Error(), QStringLiteral("Cancelled"));
        QVERIFY(log.Pings().empty());
        QVERIFY(progress.GetProgress() <= percent + 1);
        std::vector<u16> samples(1);
        QVERIFY(!log.ReadSamples(0, sidePort, samples));
        QVERIFY(samples.empty());
    }
}

void tst_ZrSonarLog::openingAnotherLogForgetsTheFirst()
{
    SonarLine line;
    line.pings = 2;
    QVERIFY(sonar_test::WriteLine(Path(), line));
    QVERIFY(AppendTo(Path(), PingItem(SmallPing(1, sidePort), std::nan("")).Bytes() + "rest"));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Skipped(), std::size_t(1));
    QVERIFY(!log.Damage().isEmpty());

    const QString other = m_folder->filePath(QStringLiteral("other.log"));
    line.pings = 3;
    QVERIFY(sonar_test::WriteLine(other, line));
    QVERIFY(log.Open(other));
    QCOMPARE(log.Path(), other);
    QCOMPARE(log.Skipped(), std::size_t(0));
    QCOMPARE(log.Damage(), QString());
    QCOMPARE(log.DamagePos(), u64(0));
    QCOMPARE(log.Pings().size(), std::size_t(3));
    QVERIFY(!log.Open(m_folder->filePath(QStringLiteral("missing"))));
    QVERIFY(log.Pings().empty());
    QCOMPARE(log.FileSize(), u64(0));
}

void tst_ZrSonarLog::samplesOfNoPing()
{
    SonarLine line;
    line.pings = 2;
    QVERIFY(sonar_test::WriteLine(Path(), line));
    ZrSonarLog log;
    std::vector<u16> samples(1);
    QVERIFY(!log.ReadSamples(0, sidePort, samples)); // nothing is open
    QVERIFY(samples.empty());
    QVERIFY(log.Open(Path()));
    for (const std::size_t ping : {std::size_t(2), std::numeric_limits<std::size_t>::max()}) {
        samples.assign(1, 1);
        QVERIFY(!log.ReadSamples(ping, sidePort, samples));
        QVERIFY(samples.empty());
    }
    QVERIFY(log.ReadSamples(1, sideStarboard, samples));
}

void tst_ZrSonarLog::logTruncatedAfterOpening()
{
    sonar_test::Log out(Path());
    out.Add(SonarLine());
    QVERIFY(out.Commit());
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    std::vector<u16> samples;
    QVERIFY(log.ReadSamples(50, sidePort, samples));
    // The samples of ping 50 lose their last byte.
    QVERIFY(QFile::resize(Path(), static_cast<qint64>(out.Start(3 * 50 + 2) - 1)));
    QVERIFY(!log.ReadSamples(50, sidePort, samples));
    QVERIFY(samples.empty());
    QVERIFY(!log.ReadSamples(50, sideStarboard, samples));
    QVERIFY(!log.ReadSamples(99, sideStarboard, samples));
    QVERIFY(log.ReadSamples(49, sideStarboard, samples));
    QCOMPARE(samples.size(), std::size_t(300));
    QVERIFY(QFile::resize(Path(), 0));
    QVERIFY(!log.ReadSamples(0, sidePort, samples));
}

void tst_ZrSonarLog::logChangedAfterOpening_data()
{
    QTest::addColumn<int>("at"); // in the item
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("magic") << 0 << QByteArray(1, '\0');
    QTest::newRow("type") << 8 << QByteArray(1, '\20');
    QTest::newRow("format") << 10 << QByteArray(1, '\2');
    QTest::newRow("side") << 12 << QByteArray(1, '\1');
    QTest::newRow("third channel") << 12 << QByteArray(1, '\2');
    QTest::newRow("compressed") << 24 << QByteArray(1, '\1');
    QTest::newRow("size 0") << 32 << Le(0U);
    QTest::newRow("size of 4 GiB") << 32 << Le(0xFFFFFFFFU);
    QTest::newRow("size of 2 GiB") << 32 << Le(0x7FFFFFFFU);
    QTest::newRow("number of the ping") << 40 << Le(99U);
    QTest::newRow("sample width") << 45 << QByteArray(1, '\3');
    QTest::newRow("fewer samples") << 60 << Le(299U);
    QTest::newRow("more samples") << 60 << Le(301U);
}

void tst_ZrSonarLog::logChangedAfterOpening()
{
    QFETCH(int, at);
    QFETCH(QByteArray, bytes);
    SonarLine line;
    line.pings = 3;
    sonar_test::Log out(Path());
    out.Add(line);
    QVERIFY(out.Commit());
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    std::vector<u16> samples;
    QVERIFY(log.ReadSamples(1, sidePort, samples)); // what was read once is not believed again
    QFile file(Path());
    QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(static_cast<qint64>(out.Start(4)) + at));
    QCOMPARE(file.write(bytes), static_cast<qint64>(bytes.size()));
    file.close();
    const MessageCatcher quiet; // decompressing warns
    QVERIFY(!log.ReadSamples(1, sidePort, samples));
    QVERIFY(samples.empty());
    QVERIFY(log.ReadSamples(1, sideStarboard, samples));
}

void tst_ZrSonarLog::logRemovedAfterOpening()
{
    SonarLine line;
    QVERIFY(sonar_test::WriteLine(Path(), line));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QVERIFY(QFile::remove(Path()));
    std::vector<u16> samples;
    QVERIFY(log.ReadSamples(3, sidePort, samples));
    QCOMPARE(samples[7], line.Expected(3, sidePort, 7));
}

void tst_ZrSonarLog::tableIsCompact()
{
    SonarLine line;
    line.pings = 20000;
    line.samples = 20;
    line.hasNav = [](int) { return false; };
    QVERIFY(sonar_test::WriteLine(Path(), line));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Pings().size(), std::size_t(20000));
    QVERIFY2(log.Pings().Bytes() < 20 * log.Pings().size(), qPrintable(QString::number(log.Pings().Bytes())));
}

void tst_ZrSonarLog::realLine_data()
{
    QTest::addColumn<bool>("compress");
    QTest::newRow("plain") << false;
    QTest::newRow("compressed") << true;
}

void tst_ZrSonarLog::realLine()
{
    QFETCH(bool, compress);
    QVERIFY(sonar_test::ImportRealLine(Path(), compress));
    ZrSonarLog log;
    QVERIFY(log.Open(Path()));
    QCOMPARE(log.Pings().size(), std::size_t(300));
    QCOMPARE(log.Skipped(), std::size_t(0));
    // The samples as they stand in the foreign file: 1024 bytes of header, pings of 4480 bytes, in them 256
    // bytes of header and for each side 64 and the samples.
    const QByteArray file
        = ReadWhole(QStringLiteral(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf"));
    QCOMPARE(file.size(), 1024 + 300 * 4480);
    std::vector<u16> samples;
    for (std::size_t i = 0; i < 300; ++i) {
        const ZrSonarPing& ping = log.Pings()[i];
        QVERIFY(ping.pose.position.IsValid());
        QVERIFY(ping.pose.position.lat > 40.0); // ping 0 says 0, 0
        QVERIFY(ping.pose.heading >= 0.0 && ping.pose.heading < 360.0);
        QVERIFY(ping.pose.altitude > 0.0);
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            const int at = 1024 + static_cast<int>(i) * 4480 + 256 + side * (64 + 2048) + 64;
            quint32 bits = LeAt<quint32>(file, at - 64 + 4);
            float range;
            std::memcpy(&range, &bits, sizeof range);
            QCOMPARE(ping.sides[side].slantRange, double(range));
            QVERIFY(log.ReadSamples(i, side, samples));
            QCOMPARE(samples.size(), std::size_t(1024));
            // To port the farthest sample comes first there.
            for (int s = 0; s < 1024; ++s) {
                const int there = side == sidePort ? 1023 - s : s;
                QCOMPARE(samples[static_cast<std::size_t>(s)], LeAt<quint16>(file, at + 2 * there));
            }
        }
    }
}

QTEST_GUILESS_MAIN(tst_ZrSonarLog)
#include "tst_ZrSonarLog.moc"
