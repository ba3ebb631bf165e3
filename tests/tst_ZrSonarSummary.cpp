#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/sonar/ZrSonarSummary.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <QtTest/QtTest>

#include <cmath>

namespace {

using Pings = std::vector<ZrSonarPing>;

constexpr double start = 1614780309.0; ///< 2021-03-03T14:05:09Z

ZrSonarChannel Channel(double slantRange, u32 samples)
{
    ZrSonarChannel channel;
    channel.pos = 48;
    channel.slantRange = slantRange;
    channel.sampleCount = samples;
    return channel;
}

/// A ping \p way metres to the north of a place, of both sides, 30 m each, 18 m above the seabed.
ZrSonarPing Ping(double time, double way)
{
    ZrSonarPing ping;
    ping.time = start + time;
    ping.pose.position = ZrLocalFrame({44.0, -63.0}).ToGeo({0.0, way});
    ping.pose.altitude = 18.0;
    ping.pose.depth = 5.0;
    ping.pose.gap = 0.0;
    ping.sides[sidePort] = Channel(30.0, 100);
    ping.sides[sideStarboard] = Channel(30.0, 100);
    return ping;
}

/// 1.5 m/s, 10 pings a second.
Pings Line(int count)
{
    Pings pings;
    for (int i = 0; i < count; ++i)
        pings.push_back(Ping(i * 0.1, i * 0.15));
    return pings;
}

ZrSonarSummary Of(const Pings& pings)
{
    return ZrSonarSummary(pings, ZrSonarTrack(pings, {}));
}

bool Near(double a, double b, double within)
{
    return std::fabs(a - b) <= within;
}

} // namespace

class tst_ZrSonarSummary : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void nothing();
    void onePing();
    void straightLine();
    void sidesDiffer();
    void swathOfOneSideAndWithoutAltitude();
    void altitudeAboveTheRange();
    void pausesPartTheLine();
    void longestStepIsNoPause();
    void clockSetBack();
    void allAtOneTime();
    void pingsWithoutPosition();
    void farFromAFix();
    void rangesIgnoreWhatIsNotKnown();
};

void tst_ZrSonarSummary::nothing()
{
    const ZrSonarSummary summary = Of({});
    QCOMPARE(summary.pings, std::size_t(0));
    QVERIFY(summary.sources.empty());
    QVERIFY(std::isnan(summary.time.least) && std::isnan(summary.time.most));
    QVERIFY(std::isnan(summary.rate) && std::isnan(summary.speed) && std::isnan(summary.spacing));
    QVERIFY(std::isnan(summary.area));
    QCOMPARE(summary.length, 0.0);
}

void tst_ZrSonarSummary::onePing()
{
    const ZrSonarSummary summary = Of(Line(1));
    QCOMPARE(summary.pings, std::size_t(1));
    QCOMPARE(summary.pairs, std::size_t(1));
    QCOMPARE(summary.time.least, start);
    QCOMPARE(summary.time.most, start);
    QVERIFY(std::isnan(summary.rate) && std::isnan(summary.speed) && std::isnan(summary.spacing));
    QVERIFY(std::isnan(summary.area));
}

void tst_ZrSonarSummary::straightLine()
{
    const ZrSonarSummary summary = Of(Line(101));
    QCOMPARE(summary.pings, std::size_t(101));
    QCOMPARE(summary.pairs, std::size_t(101));
    QCOMPARE(summary.sources, std::set<u16>{0});
    QVERIFY(Near(summary.time.most - summary.time.least, 10.0, 1e-6));
    QCOMPARE(summary.pauses, std::size_t(0));
    QCOMPARE(summary.pauseTime, 0.0);
    QVERIFY(Near(summary.rate, 10.0, 1e-5));
    QVERIFY(Near(summary.length, 15.0, 1e-4));
    QVERIFY(Near(summary.speed, 1.5, 1e-5));
    QVERIFY(Near(summary.spacing, 0.15, 1e-6));
    // 18, 24, 30: the ground range of each side is 24 m.
    QVERIFY(Near(summary.area, 15.0 * 48.0, 0.01));
    QCOMPARE(summary.altitude.least, 18.0);
    QCOMPARE(summary.depth.most, 5.0);
    QCOMPARE(summary.withoutPosition + summary.farFromFix + summary.withoutAltitude, std::size_t(0));
}

void tst_ZrSonarSummary::sidesDiffer()
{
    Pings pings = Line(4);
    pings[0].sides[sidePort] = Channel(20.0, 50);
    pings[1].sides[sidePort] = ZrSonarChannel();
    pings[2].sides[sidePort].frequency = 455.0F;
    pings[2].sides[sidePort].soundSpeed = 1480.0F;
    pings[3].sides[sidePort].frequency = 900.0F;
    pings[3].source = 7;
    const ZrSonarSummary summary = Of(pings);
    QCOMPARE(summary.pairs, std::size_t(3));
    QCOMPARE(summary.sources, (std::set<u16>{0, 7}));
    const ZrSonarSummary::Side& port = summary.sides[sidePort];
    QCOMPARE(port.pings, std::size_t(3));
    QCOMPARE(port.samples.least, 50.0);
    QCOMPARE(port.samples.most, 100.0);
    QCOMPARE(port.slantRange.least, 20.0);
    QCOMPARE(port.slantRange.most, 30.0);
    QCOMPARE(port.frequency.least, 455.0);
    QCOMPARE(port.frequency.most, 900.0);
    QCOMPARE(port.soundSpeed.least, 1480.0);
    QCOMPARE(port.soundSpeed.most, 1480.0);
    QCOMPARE(summary.sides[sideStarboard].pings, std::size_t(4));
    QVERIFY(std::isnan(summary.sides[sideStarboard].frequency.least));
}

void tst_ZrSonarSummary::swathOfOneSideAndWithoutAltitude()
{
    Pings pings = Line(11);
    for (ZrSonarPing& ping : pings)
        ping.sides[sidePort] = ZrSonarChannel();
    QVERIFY(Near(Of(pings).area, 1.5 * 24.0, 0.01));
    for (ZrSonarPing& ping : pings)
        ping.pose.altitude = std::nan("");
    QVERIFY(Near(Of(pings).area, 1.5 * 30.0, 0.01));
    QCOMPARE(Of(pings).withoutAltitude, std::size_t(11));
    QVERIFY(std::isnan(Of(pings).altitude.most));
    // A swath that widens steadily counts with its mean.
    for (std::size_t i = 0; i < pings.size(); ++i)
        pings[i].sides[sideStarboard].slantRange = 10.0 + 2.0 * static_cast<double>(i);
    QVERIFY(Near(Of(pings).area, 1.5 * 20.0, 0.01));
    // A side that recorded no samples has seen nothing.
    for (ZrSonarPing& ping : pings)
        ping.sides[sidePort] = Channel(30.0, 0);
    QVERIFY(Near(Of(pings).area, 1.5 * 20.0, 0.01));
}

void tst_ZrSonarSummary::altitudeAboveTheRange()
{
    Pings pings = Line(11);
    for (ZrSonarPing& ping : pings)
        ping.pose.altitude = 31.0;
    QCOMPARE(Of(pings).area, 0.0);
}

void tst_ZrSonarSummary::pausesPartTheLine()
{
    // 60 s and 90 m without a ping.
    Pings pings = Line(101);
    for (int i = 0; i < 101; ++i)
        pings.push_back(Ping(70.0 + i * 0.1, 105.0 + i * 0.15));
    const ZrSonarSummary summary = Of(pings);
    QCOMPARE(summary.pauses, std::size_t(1));
    QVERIFY(Near(summary.pauseTime, 60.0, 1e-5));
    QVERIFY(Near(summary.rate, 10.0, 1e-5));
    QVERIFY(Near(summary.length, 30.0, 1e-4));
    QVERIFY(Near(summary.speed, 1.5, 1e-4));
    QVERIFY(Near(summary.spacing, 0.15, 1e-6));
    QVERIFY(Near(summary.area, 30.0 * 48.0, 0.01));
}

void tst_ZrSonarSummary::longestStepIsNoPause()
{
    QCOMPARE(Of({Ping(0.0, 0.0), Ping(10.0, 5.0)}).pauses, std::size_t(0));
    QVERIFY(Near(Of({Ping(0.0, 0.0), Ping(10.0, 5.0)}).speed, 0.5, 1e-5));
    const ZrSonarSummary summary = Of({Ping(0.0, 0.0), Ping(10.1, 5.0)});
    QCOMPARE(summary.pauses, std::size_t(1));
    QCOMPARE(summary.length, 0.0);
    QVERIFY(std::isnan(summary.speed));
}

void tst_ZrSonarSummary::clockSetBack()
{
    Pings pings = Line(101);
    for (int i = 0; i < 101; ++i)
        pings.push_back(Ping(i * 0.1 - 3600.0, 1000.0 + i * 0.15));
    pings[50].time -= 0.5; // out of order only
    const ZrSonarSummary summary = Of(pings);
    QCOMPARE(summary.pauses, std::size_t(1));
    QCOMPARE(summary.pauseTime, 0.0);
    QVERIFY(Near(summary.rate, 10.0, 1e-5));
    QVERIFY(Near(summary.length, 30.0, 1e-4));
    QCOMPARE(summary.time.least, start - 3600.0);
    QVERIFY(Near(summary.time.most, start + 10.0, 1e-5));
}

void tst_ZrSonarSummary::allAtOneTime()
{
    Pings pings = Line(11);
    for (ZrSonarPing& ping : pings)
        ping.time = start;
    const ZrSonarSummary summary = Of(pings);
    QVERIFY(std::isnan(summary.rate) && std::isnan(summary.speed));
    QVERIFY(Near(summary.spacing, 0.15, 1e-6));
    QVERIFY(Near(summary.area, 1.5 * 48.0, 0.01));
}

void tst_ZrSonarSummary::pingsWithoutPosition()
{
    Pings pings = Line(101);
    for (std::size_t i = 0; i < 21; ++i)
        pings[i].pose.position = ZrGeoPoint();
    const ZrSonarSummary summary = Of(pings);
    QCOMPARE(summary.withoutPosition, std::size_t(21));
    QVERIFY(Near(summary.length, 79 * 0.15, 1e-4));
    QVERIFY(Near(summary.speed, 1.5, 1e-5));
    QVERIFY(Near(summary.spacing, 0.15, 1e-6));
    QVERIFY(Near(summary.rate, 10.0, 1e-5));
    for (ZrSonarPing& ping : pings)
        ping.pose.position = ZrGeoPoint();
    const ZrSonarSummary nowhere = Of(pings);
    QCOMPARE(nowhere.withoutPosition, std::size_t(101));
    QCOMPARE(nowhere.length, 0.0);
    QVERIFY(std::isnan(nowhere.speed) && std::isnan(nowhere.spacing) && std::isnan(nowhere.area));
    QVERIFY(Near(nowhere.rate, 10.0, 1e-5));
}

void tst_ZrSonarSummary::farFromAFix()
{
    Pings pings = Line(4);
    pings[0].pose.gap = 60.0;
    pings[1].pose.gap = 60.1;
    pings[2].pose.gap = 5000.0;
    pings[3].pose.gap = std::numeric_limits<double>::infinity();
    pings[3].pose.position = ZrGeoPoint();
    const ZrSonarSummary summary = Of(pings);
    QCOMPARE(summary.farFromFix, std::size_t(2));
    QCOMPARE(summary.withoutPosition, std::size_t(1));
}

void tst_ZrSonarSummary::rangesIgnoreWhatIsNotKnown()
{
    ZrSonarSummary::Range range;
    for (const double value :
        {std::nan(""), 3.0, std::numeric_limits<double>::infinity(), -2.0, std::nan("")})
        range.Add(value);
    QCOMPARE(range.least, -2.0);
    QCOMPARE(range.most, 3.0);
}

QTEST_GUILESS_MAIN(tst_ZrSonarSummary)
#include "tst_ZrSonarSummary.moc"
