// The pings of long logs, kept in few bytes: each comes out as it went in.

#include "ZrKit/review/ZrSurveySeries.h"
#include "ZrKit/sonar/ZrSonarPings.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <random>
#include <thread>

namespace {

constexpr double start = 1614780309.0; ///< 2021-03-03T14:05:09Z
constexpr std::size_t block = 256; ///< pings that have things in common

ZrSonarChannel Channel(u64 pos, u32 samples = 1000, float soundSpeed = 1500.0F)
{
    ZrSonarChannel channel;
    channel.pos = pos;
    channel.slantRange = 50.5;
    channel.sampleCount = samples;
    channel.frequency = 455.0F;
    channel.soundSpeed = soundSpeed;
    return channel;
}

ZrSonarPing Ping(std::size_t i)
{
    ZrSonarPing ping;
    ping.time = start + 0.1 * static_cast<double>(i);
    ping.number = static_cast<u32>(i);
    ping.source = 3;
    ping.sides[sidePort] = Channel(48 + 4000 * i);
    ping.sides[sideStarboard] = Channel(2048 + 4000 * i);
    return ping;
}

/// NaN is NaN, to the last bit.
template <class Number> bool IsSame(Number a, Number b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool IsSame(const ZrSonarChannel& a, const ZrSonarChannel& b)
{
    return a.pos == b.pos && a.sampleCount == b.sampleCount && IsSame(a.slantRange, b.slantRange)
        && IsSame(a.frequency, b.frequency) && IsSame(a.soundSpeed, b.soundSpeed);
}

bool IsSame(const ZrSonarPing& a, const ZrSonarPing& b)
{
    return IsSame(a.time, b.time) && a.number == b.number && a.source == b.source
        && IsSame(a.sides[0], b.sides[0]) && IsSame(a.sides[1], b.sides[1]);
}

bool IsSame(const ZrSonarPose& a, const ZrSonarPose& b)
{
    const auto same = [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); };
    return same(a.position.lat, b.position.lat) && same(a.position.lng, b.position.lng)
        && same(a.heading, b.heading) && same(a.pitch, b.pitch) && same(a.roll, b.roll)
        && same(a.depth, b.depth) && same(a.altitude, b.altitude) && same(a.gap, b.gap);
}

/// Records as a vehicle makes them: most know everything, some positions are repeated, some altitudes
/// missing.
ZrNavRecord Record(std::size_t i)
{
    const auto at = static_cast<double>(i);
    ZrNavRecord nav;
    nav.latitude = 44.0 + 1e-5 * at;
    nav.longitude = -63.0 + 2e-5 * at;
    nav.depth = static_cast<float>(10.0 + std::sin(at));
    nav.altitude = i % 7 == 3 ? 0.0F : static_cast<float>(5.0 + std::cos(at));
    nav.heading = static_cast<float>(std::fmod(at * 3.0, 360.0));
    nav.pitch = static_cast<float>(std::sin(at * 0.5));
    nav.roll = static_cast<float>(std::cos(at * 0.5));
    nav.flags = i % 5 == 4 ? 1 : 0;
    return nav;
}

} // namespace

class tst_ZrSonarPings : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void none();
    void tableKeepsAll_data();
    void tableKeepsAll();
    void sidesThatComeLater();
    void sideIsReplaced();
    void bytes_data();
    void bytes();
    void lists();
    void movedFrom();
    void iterates();
    void iteratorsCompare();
    void posesAreThoseOfTheNavigation();
    void sharesWithTheSeries();
    void sharesNothingThatDiffers();
    void sharesNoCurveThatIsShorter();
    void severalThreads();
};

void tst_ZrSonarPings::none()
{
    const ZrSonarPings pings;
    QVERIFY(pings.empty());
    QCOMPARE(pings.size(), std::size_t(0));
    QVERIFY(pings.begin() == pings.end());
    QCOMPARE(pings.Bytes(), u64(0));
    QVERIFY(ZrSonarPings(std::vector<ZrSonarPing>()).empty());
    ZrSonarPingTable table;
    table.Squeeze();
    QCOMPARE(table.Count(), std::size_t(0));
}

void tst_ZrSonarPings::tableKeepsAll_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("even") << 0;
    QTest::newRow("numbers that leap and fall") << 1;
    QTest::newRow("two sonars by turns") << 2;
    QTest::newRow("another speed of sound in each ping") << 3;
    QTest::newRow("sides missing") << 4;
    QTest::newRow("gigabytes apart") << 5;
    QTest::newRow("times unknown or set back") << 6;
    QTest::newRow("all at random") << 7;
    QTest::newRow("values unknown") << 8;
}

void tst_ZrSonarPings::tableKeepsAll()
{
    QFETCH(int, kind);
    constexpr std::size_t count = 3 * block + 17;
    std::minstd_rand random(3);
    std::vector<ZrSonarPing> pings;
    for (std::size_t i = 0; i < count; ++i) {
        ZrSonarPing ping = Ping(i);
        const bool isOdd = i % 2 == 1;
        if (kind == 1)
            ping.number = i % 100 == 99 ? 0xFFFFFFFFU - static_cast<u32>(i) : static_cast<u32>(i / 2);
        if (kind == 2) {
            ping.source = isOdd ? 9 : 4;
            for (ZrSonarChannel& side : ping.sides)
                side.sampleCount = isOdd ? 500 : 2000;
        }
        if (kind == 3 || kind == 7) {
            for (ZrSonarChannel& side : ping.sides)
                side.soundSpeed = 1480.0F + static_cast<float>(i) * 0.01F;
        }
        if (kind == 4 || kind == 7)
            ping.sides[isOdd] = i % 3 == 0 ? ZrSonarChannel() : ping.sides[isOdd];
        if (kind == 5 || kind == 7) {
            ping.sides[sidePort].pos += u64(i) << 34;
            ping.sides[sideStarboard].pos += u64(i) << (isOdd ? 34 : 35);
        }
        if (kind == 6)
            ping.time = isOdd ? std::nan("") : start - static_cast<double>(i);
        if (kind == 7) {
            ping.number = random();
            ping.source = static_cast<u16>(random());
            ping.sides[1].slantRange = static_cast<double>(static_cast<float>(random()));
        }
        if (kind == 8) {
            ping.sides[0].frequency = std::nanf("");
            ping.sides[1].soundSpeed = isOdd ? std::nanf("") : 0.0F;
        }
        pings.push_back(ping);
    }
    ZrSonarPingTable table;
    for (const ZrSonarPing& ping : pings)
        table.Append(ping);
    for (const bool isSqueezed : {false, true}) {
        if (isSqueezed)
            table.Squeeze();
        QCOMPARE(table.Count(), count);
        for (std::size_t i = 0; i < count; ++i) {
            ZrSonarPing want = pings[i];
            for (ZrSonarChannel& side : want.sides)
                side = side.IsThere() ? side : ZrSonarChannel();
            QVERIFY2(IsSame(table.At(i), want), qPrintable(QString::number(i)));
            QVERIFY(IsSame(table.Time(i), want.time));
            QCOMPARE(table.Number(i), want.number);
            QVERIFY(IsSame(table.Side(i, sideStarboard), want.sides[sideStarboard]));
        }
    }
}

/// As a log gives them: one side of each ping first, the other one up to many pings later.
void tst_ZrSonarPings::sidesThatComeLater()
{
    constexpr std::size_t count = 2 * block + 40;
    for (const std::size_t later : {std::size_t(0), std::size_t(1), std::size_t(63), block + 10}) {
        ZrSonarPingTable table;
        const auto complete
            = [&](std::size_t i) { table.SetSide(i, sideStarboard, Channel(5000 + 4000 * i, 900)); };
        for (std::size_t i = 0; i < count; ++i) {
            ZrSonarPing ping = Ping(i);
            ping.sides[sideStarboard] = ZrSonarChannel();
            table.Append(ping);
            if (i >= later)
                complete(i - later);
        }
        table.Squeeze();
        for (std::size_t i = 0; i < count; ++i) {
            ZrSonarPing want = Ping(i);
            want.sides[sideStarboard] = i + later < count ? Channel(5000 + 4000 * i, 900) : ZrSonarChannel();
            QVERIFY2(IsSame(table.At(i), want), qPrintable(QString::number(i)));
        }
        QVERIFY2(table.Bytes() < 20 * count, qPrintable(QString::number(table.Bytes())));
    }
}

void tst_ZrSonarPings::sideIsReplaced()
{
    ZrSonarPingTable table;
    for (std::size_t i = 0; i < block + 1; ++i)
        table.Append(Ping(i));
    const u64 far = u64(1) << 40;
    for (const u64 pos : {far, far + 8, u64(7), u64(0), u64(60)}) { // one in front of the others, none, again
        table.SetSide(5, sidePort, Channel(pos, 12, 1400.0F));
        QVERIFY(IsSame(table.Side(5, sidePort), pos == 0 ? ZrSonarChannel() : Channel(pos, 12, 1400.0F)));
        QVERIFY(IsSame(table.At(4), Ping(4)));
        QVERIFY(IsSame(table.Side(5, sideStarboard), Ping(5).sides[sideStarboard]));
    }
}

void tst_ZrSonarPings::bytes_data()
{
    QTest::addColumn<bool>("isSpeedAnother");
    QTest::addColumn<u64>("most");
    QTest::newRow("alike") << false << u64(18);
    QTest::newRow("another speed of sound in each ping") << true << u64(48);
}

void tst_ZrSonarPings::bytes()
{
    QFETCH(bool, isSpeedAnother);
    QFETCH(u64, most);
    constexpr std::size_t count = 100000;
    ZrSonarPingTable table;
    for (std::size_t i = 0; i < count; ++i) {
        ZrSonarPing ping = Ping(i);
        if (isSpeedAnother)
            ping.sides[0].soundSpeed = ping.sides[1].soundSpeed = 1400.0F + static_cast<float>(i) * 0.001F;
        table.Append(ping);
    }
    table.Squeeze();
    QVERIFY2(table.Bytes() < most * count, qPrintable(QString::number(table.Bytes())));
}

void tst_ZrSonarPings::lists()
{
    std::vector<ZrSonarPing> list;
    for (std::size_t i = 0; i < 5; ++i) {
        list.push_back(Ping(i));
        list.back().pose.heading = 0.1 * static_cast<double>(i); // which no float is
        list.back().sides[0].slantRange = 0.1;
    }
    const ZrSonarPings pings = list;
    QCOMPARE(pings.size(), list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        QVERIFY(IsSame(pings[i], list[i]) && IsSame(pings[i].pose, list[i].pose));
        QVERIFY(IsSame(pings.Side(i, sidePort), list[i].sides[sidePort]));
        QVERIFY(IsSame(pings.Time(i), list[i].time));
        QCOMPARE(pings.Number(i), list[i].number);
    }
    QVERIFY(IsSame(pings.front(), list.front()));
    QVERIFY(IsSame(pings.back(), list.back()));
}

/// None are left behind, of a list as of a table.
void tst_ZrSonarPings::movedFrom()
{
    auto table = std::make_shared<ZrSonarPingTable>();
    for (std::size_t i = 0; i < 3; ++i)
        table->Append(Ping(i));
    const ZrSonarPings ofTable(table, std::make_shared<ZrSonarNav>());
    const ZrSonarPings ofList = std::vector<ZrSonarPing>{Ping(0), Ping(1), Ping(2)};
    const auto isEmpty = [](const ZrSonarPings& pings) {
        return pings.empty() && pings.size() == 0 && pings.begin() == pings.end()
            && pings.rbegin() == pings.rend() && pings.Bytes() == 0;
    };
    for (const ZrSonarPings& pings : {ofTable, ofList}) {
        ZrSonarPings from = pings;
        ZrSonarPings made = std::move(from);
        QCOMPARE(made.size(), std::size_t(3));
        QVERIFY(IsSame(made.back(), Ping(2)));
        QVERIFY(isEmpty(from)); // NOLINT: this is what is checked
        from = std::move(made);
        QVERIFY(IsSame(from.back(), Ping(2)));
        QVERIFY(isEmpty(made)); // NOLINT
        made = ofList;
        QCOMPARE(made.size(), std::size_t(3));
    }
}

/// All that a random access iterator is asked for.
void tst_ZrSonarPings::iteratorsCompare()
{
    const ZrSonarPings pings = std::vector<ZrSonarPing>{Ping(0), Ping(1), Ping(2)};
    const auto first = pings.begin();
    const auto next = 1 + first;
    QVERIFY(next == first + 1 && next != first);
    QCOMPARE((*next).number, 1U);
    QVERIFY(next > first && !(first > next) && !(first > first));
    QVERIFY(first < next && !(next < first) && !(first < first));
    QVERIFY(next >= first && first >= first && !(first >= next));
    QVERIFY(first <= next && first <= first && !(next <= first));
}

void tst_ZrSonarPings::iterates()
{
    auto table = std::make_shared<ZrSonarPingTable>();
    for (std::size_t i = 0; i < 600; ++i)
        table->Append(Ping(i));
    auto nav = std::make_shared<ZrSonarNav>();
    for (std::size_t i = 0; i < 600; ++i)
        nav->Add(Ping(i).time, Record(i));
    nav->Prepare();
    const ZrSonarPings pings(table, nav);
    std::size_t i = 0;
    for (const ZrSonarPing& ping : pings) {
        QVERIFY(IsSame(ping, Ping(i)) && IsSame(ping.pose, nav->At(ping.time)));
        ++i;
    }
    QCOMPARE(i, std::size_t(600));
    const auto last = std::find_if(
        pings.rbegin(), pings.rend(), [](const ZrSonarPing& ping) { return ping.number == 555; });
    QCOMPARE(last.base() - pings.begin(), std::ptrdiff_t(556));
    QCOMPARE(pings.end() - pings.begin(), std::ptrdiff_t(600));
    QCOMPARE(pings.begin()[42].number, 42U);
    QCOMPARE((*(pings.end() - 1)).number, 599U);
    const std::vector<ZrSonarPing> copied(pings.begin(), pings.end());
    QVERIFY(IsSame(copied[77], Ping(77)));
}

void tst_ZrSonarPings::posesAreThoseOfTheNavigation()
{
    auto table = std::make_shared<ZrSonarPingTable>();
    for (std::size_t i = 0; i < 100; ++i)
        table->Append(Ping(i));
    auto nav = std::make_shared<ZrSonarNav>();
    for (std::size_t i = 0; i < 10; ++i)
        nav->Add(start + static_cast<double>(i), Record(i));
    nav->Prepare();
    const ZrSonarPings pings(table, nav);
    for (const std::size_t i :
        {std::size_t(0), std::size_t(99), std::size_t(15), std::size_t(14), std::size_t(50)})
        QVERIFY(IsSame(pings[i].pose, nav->At(Ping(i).time)));
    QVERIFY(pings[15].pose.position.lat > 44.000014 && pings[15].pose.position.lat < 44.000016);
}

/// The same poses from less memory: what both tables hold is kept once.
void tst_ZrSonarPings::sharesWithTheSeries()
{
    constexpr std::size_t count = 1000;
    auto series = std::make_shared<ZrSurveySeries>();
    ZrSonarNav nav;
    ZrSonarNav alone;
    for (std::size_t i = 0; i < count; ++i) {
        const double time = start + 0.1 * static_cast<double>(i);
        const ZrNavRecord record = Record(i);
        nav.Add(time, record);
        alone.Add(time, record);
        series->times->Append(time);
        series->track.push_back({record.latitude, record.longitude});
        series->depth.Append(record.depth);
        series->altitude.Append(record.altitude > 0.0F ? record.altitude : std::nanf(""));
        series->heading.Append(static_cast<float>(3 * i)); // without leaps
        series->pitch.Append(record.pitch);
        series->roll.Append(record.roll);
    }
    nav.Prepare();
    alone.Prepare();
    const u64 before = nav.Bytes();
    nav.Share(series);
    // Left are the headings, and which records know position and altitude.
    QVERIFY2(nav.Bytes() <= 12 * count, qPrintable(QString::number(nav.Bytes())));
    QVERIFY2(before >= 40 * count, qPrintable(QString::number(before)));
    series.reset(); // which is kept
    ZrSonarNav::Place place;
    for (int i = -10; i < int(count) * 3; ++i) {
        const double time = start + 0.037 * i;
        QVERIFY2(IsSame(nav.At(time), alone.At(time)), qPrintable(QString::number(i)));
        QVERIFY(IsSame(nav.At(time, place), alone.At(time)));
    }
}

void tst_ZrSonarPings::sharesNothingThatDiffers()
{
    auto series = std::make_shared<ZrSurveySeries>();
    ZrSonarNav nav;
    ZrSonarNav alone;
    for (std::size_t i = 0; i < 100; ++i) {
        const ZrNavRecord record = Record(i);
        nav.Add(start + static_cast<double>(i), record);
        alone.Add(start + static_cast<double>(i), record);
        series->times->Append(start + static_cast<double>(i) + (i == 99 ? 1e-6 : 0.0));
        series->track.push_back({record.latitude, record.longitude + (i == 98 ? 1e-9 : 0.0)});
        for (ZrPlotSeries* other :
            {&series->depth, &series->altitude, &series->heading, &series->pitch, &series->roll})
            other->Append(-1.0F);
    }
    nav.Prepare();
    alone.Prepare();
    const u64 before = nav.Bytes();
    nav.Share(series);
    QCOMPARE(nav.Bytes(), before);
    for (int i = 0; i < 1000; ++i)
        QVERIFY(IsSame(nav.At(start + 0.1 * i), alone.At(start + 0.1 * i)));
    series->track.pop_back(); // other rows than records
    nav.Share(series);
    QVERIFY(IsSame(nav.At(start + 99.0), alone.At(start + 99.0)));
}

/// Altitudes end with the first half, where the curves end too: they are not those of all rows.
void tst_ZrSonarPings::sharesNoCurveThatIsShorter()
{
    constexpr std::size_t count = 100;
    auto series = std::make_shared<ZrSurveySeries>();
    ZrSonarNav nav;
    ZrSonarNav alone;
    for (std::size_t i = 0; i < count; ++i) {
        const double time = start + static_cast<double>(i);
        ZrNavRecord record = Record(i);
        record.flags = 0;
        record.altitude = i < count / 2 ? 5.0F : 0.0F;
        nav.Add(time, record);
        alone.Add(time, record);
        series->times->Append(time);
        series->track.push_back({record.latitude, record.longitude});
        if (i >= count / 2)
            continue;
        series->depth.Append(record.depth);
        series->altitude.Append(record.altitude);
        series->heading.Append(record.heading);
        series->pitch.Append(record.pitch);
        series->roll.Append(record.roll);
    }
    nav.Prepare();
    alone.Prepare();
    const u64 before = nav.Bytes();
    nav.Share(series);
    // The others are.
    QCOMPARE(nav.Bytes(), before - count * (sizeof(double) + sizeof(ZrSurveySeries::Position)));
    for (int i = 0; i < 1000; ++i)
        QVERIFY(IsSame(nav.At(start + 0.1 * i), alone.At(start + 0.1 * i)));
}

void tst_ZrSonarPings::severalThreads()
{
    auto table = std::make_shared<ZrSonarPingTable>();
    auto nav = std::make_shared<ZrSonarNav>();
    for (std::size_t i = 0; i < 5000; ++i) {
        table->Append(Ping(i));
        nav->Add(Ping(i).time, Record(i));
    }
    table->Squeeze();
    nav->Prepare();
    const ZrSonarPings pings(table, nav);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < 2; ++t) {
        threads.emplace_back([&, t] {
            std::size_t i = 0;
            for (const ZrSonarPing& ping : pings) {
                const std::size_t other = (i * 7 + t) % 5000;
                const ZrSonarPing otherPing = pings[other];
                wrong += IsSame(ping, Ping(i)) && IsSame(ping.pose, nav->At(ping.time)) ? 0 : 1;
                wrong += IsSame(otherPing, Ping(other)) && IsSame(otherPing.pose, nav->At(otherPing.time))
                    ? 0
                    : 1;
                ++i;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_ZrSonarPings)
#include "tst_ZrSonarPings.moc"
