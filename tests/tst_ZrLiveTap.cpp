#include "ZrKit/recording/ZrLiveTap.h"
#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrEnvRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNavRecord.h"

#include <QtTest>

class tst_ZrLiveTap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingAtFirst();
    void valuesGetStale();
    void navigation();
    void fixGivesPositionWithoutNavigation();
    void repeatedPositionIsNoNewOne();
    void soundingBehindNavigation();
    void keelOffsetIsNoDepth();
    void motion();
    void badRecords_data();
    void badRecords();
    void trailIsTakenOnce();
    void pingsCarryTheAltitude();
    void surplusPingsAreCounted();

private:
    template <class Record> static void Take(ZrLiveTap& tap, const Record& record, double now, u16 sub = 0)
    {
        const QByteArray payload = record.Encode();
        tap.Take(
            zr::rec_type(Record::RecType, sub), Record::Format, 5000.0 + now, zr::bytes_of(payload), now);
    }

    static ZrNavRecord Nav()
    {
        ZrNavRecord nav;
        nav.latitude = 50.0;
        nav.longitude = -4.0;
        nav.depth = 12.5F;
        nav.altitude = 8.0F;
        nav.heading = 270.0F;
        nav.pitch = -3.0F;
        nav.roll = 2.0F;
        return nav;
    }

    static ZrFixRecord Fix(double latitude)
    {
        ZrFixRecord fix;
        fix.latitude = latitude;
        fix.longitude = -4.0;
        fix.quality = 2;
        fix.satellites = 9;
        return fix;
    }
};

void tst_ZrLiveTap::nothingAtFirst()
{
    ZrLiveTap tap;
    QVERIFY(!tap.State().latitude.IsKnown());
    QVERIFY(!tap.State().fix.IsFresh(0.0));
    QVERIFY(std::isinf(tap.State().fix.Age(10.0)));
    QVERIFY(tap.TakeTrail().empty());
    QVERIFY(!tap.HasNews());
}

void tst_ZrLiveTap::valuesGetStale()
{
    ZrLiveTap tap;
    Take(tap, Nav(), 10.0);
    QVERIFY(tap.State().depth.IsFresh(15.0));
    QVERIFY(!tap.State().depth.IsFresh(15.001));
    QCOMPARE(tap.State().depth.Age(12.0), 2.0);
    QCOMPARE(tap.State().lastData, 10.0);
    QCOMPARE(tap.State().dataTime, 5010.0);
}

void tst_ZrLiveTap::navigation()
{
    ZrLiveTap tap;
    Take(tap, Nav(), 1.0);
    const ZrLiveState& state = tap.State();
    QCOMPARE(state.latitude.value, 50.0);
    QCOMPARE(state.longitude.value, -4.0);
    QCOMPARE(state.depth.value, 12.5);
    QCOMPARE(state.altitude.value, 8.0);
    QCOMPARE(state.heading.value, 270.0);
    QCOMPARE(state.pitch.value, -3.0);
    QCOMPARE(state.roll.value, 2.0);
    QVERIFY(!state.fix.IsKnown());
    // What is not known leaves what was.
    ZrNavRecord empty;
    Take(tap, empty, 2.0);
    QCOMPARE(tap.State().depth.value, 12.5);
    QCOMPARE(tap.State().depth.at, 1.0);
}

void tst_ZrLiveTap::fixGivesPositionWithoutNavigation()
{
    ZrLiveTap tap;
    Take(tap, Fix(51.0), 1.0);
    QCOMPARE(tap.State().latitude.value, 51.0);
    QCOMPARE(tap.State().fix.value, 2.0);
    QCOMPARE(tap.State().satellites.value, 9.0);
    Take(tap, Nav(), 2.0);
    Take(tap, Fix(52.0), 3.0);
    QCOMPARE(tap.State().latitude.value, 50.0);
    QCOMPARE(tap.State().fix.at, 3.0);
    // Navigation fell silent.
    Take(tap, Fix(53.0), 8.0);
    QCOMPARE(tap.State().latitude.value, 53.0);
    QCOMPARE(tap.TakeTrail().size(), std::size_t(3));
}

void tst_ZrLiveTap::repeatedPositionIsNoNewOne()
{
    ZrLiveTap tap;
    ZrNavRecord nav = Nav();
    nav.flags = 1;
    Take(tap, nav, 1.0);
    QCOMPARE(tap.State().latitude.value, 50.0);
    Take(tap, Fix(51.0), 2.0);
    QCOMPARE(tap.State().latitude.value, 51.0);
    nav.depth = 20.0F;
    Take(tap, nav, 3.0);
    QCOMPARE(tap.State().latitude.value, 51.0);
    QCOMPARE(tap.State().latitude.at, 2.0);
    QCOMPARE(tap.State().depth.value, 20.0);
}

void tst_ZrLiveTap::soundingBehindNavigation()
{
    ZrLiveTap tap;
    ZrDepthRecord depth;
    depth.depth = 5.0F;
    depth.offset = 3.0F;
    Take(tap, depth, 1.0);
    QCOMPARE(tap.State().altitude.value, 5.0);
    QCOMPARE(tap.State().depth.value, 3.0);
    Take(tap, Nav(), 2.0);
    Take(tap, depth, 3.0);
    QCOMPARE(tap.State().altitude.value, 8.0);
    QCOMPARE(tap.State().depth.value, 12.5);
    Take(tap, depth, 8.0);
    QCOMPARE(tap.State().altitude.value, 5.0);
}

void tst_ZrLiveTap::keelOffsetIsNoDepth()
{
    ZrLiveTap tap;
    ZrDepthRecord depth;
    depth.depth = 5.0F;
    depth.offset = -1.0F;
    Take(tap, depth, 1.0);
    QCOMPARE(tap.State().altitude.value, 5.0);
    QVERIFY(!tap.State().depth.IsKnown());
}

void tst_ZrLiveTap::motion()
{
    ZrLiveTap tap;
    ZrMotionRecord motion;
    motion.headingTrue = 90.0F;
    motion.courseTrue = 95.0F;
    motion.speedGround = 1.5F;
    motion.speedWater = 1.25F;
    Take(tap, motion, 1.0);
    QCOMPARE(tap.State().heading.value, 90.0);
    QCOMPARE(tap.State().course.value, 95.0);
    QCOMPARE(tap.State().speed.value, 1.5);
    QCOMPARE(tap.State().waterSpeed.value, 1.25);
    Take(tap, Nav(), 2.0);
    Take(tap, motion, 3.0);
    QCOMPARE(tap.State().heading.value, 270.0);
    ZrEnvRecord env;
    env.waterTemperature = 11.0F;
    Take(tap, env, 4.0);
    QCOMPARE(tap.State().temperature.value, 11.0);
}

void tst_ZrLiveTap::badRecords_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("format");
    QTest::addColumn<QByteArray>("payload");
    ZrNavRecord far = Nav();
    far.latitude = 90.5;
    ZrNavRecord infinite = Nav();
    infinite.longitude = std::numeric_limits<double>::infinity();
    ZrFixRecord none = Fix(50.0);
    none.quality = 0;
    QTest::newRow("short") << 16 << 1 << QByteArray(10, 'x');
    QTest::newRow("empty") << 16 << 1 << QByteArray();
    QTest::newRow("other format") << 16 << 9 << Nav().Encode();
    QTest::newRow("outside the earth") << 16 << 1 << far.Encode();
    QTest::newRow("infinite") << 16 << 1 << infinite.Encode();
    QTest::newRow("no fix") << 18 << 1 << none.Encode();
    QTest::newRow("ping without its samples") << 17 << 1 << QByteArray(24, '\xff');
    QTest::newRow("unknown type") << 999 << 1 << Nav().Encode();
}

void tst_ZrLiveTap::badRecords()
{
    QFETCH(int, type);
    QFETCH(int, format);
    QFETCH(QByteArray, payload);
    ZrLiveTap tap;
    tap.Take(CRecType(0, static_cast<u16>(type)), static_cast<u16>(format),
        std::numeric_limits<double>::quiet_NaN(), zr::bytes_of(payload), 1.0);
    QVERIFY(!tap.State().latitude.IsKnown());
    QVERIFY(!tap.State().fix.IsKnown());
    QVERIFY(tap.TakeTrail().empty());
    QVERIFY(tap.TakePings().empty());
    QCOMPARE(tap.State().dataTime, 0.0);
}

void tst_ZrLiveTap::trailIsTakenOnce()
{
    ZrLiveTap tap;
    Take(tap, Nav(), 1.0);
    Take(tap, Nav(), 2.0);
    QVERIFY(tap.HasNews());
    const std::vector<QPointF> trail = tap.TakeTrail();
    QCOMPARE(trail.size(), std::size_t(1));
    QCOMPARE(trail[0], QPointF(-4.0, 50.0));
    QVERIFY(!tap.HasNews());
    QVERIFY(tap.TakeTrail().empty());
}

void tst_ZrLiveTap::pingsCarryTheAltitude()
{
    ZrLiveTap tap;
    ZrPingRecord ping;
    ping.side = 1;
    ping.pingNumber = 7;
    ping.slantRange = 50.0F;
    ping.samples = QByteArray(8, 'x');
    Take(tap, ping, 1.0, 1);
    Take(tap, Nav(), 2.0);
    Take(tap, ping, 3.0, 1);
    Take(tap, ping, 20.0, 1);
    const std::vector<ZrLivePing> pings = tap.TakePings();
    QCOMPARE(pings.size(), std::size_t(3));
    QVERIFY(std::isnan(pings[0].altitude));
    QCOMPARE(pings[1].altitude, 8.0);
    QVERIFY(std::isnan(pings[2].altitude));
    QCOMPARE(pings[1].ping.pingNumber, u32(7));
    QCOMPARE(pings[1].time, 5003.0);
    QVERIFY(tap.TakePings().empty());
}

void tst_ZrLiveTap::surplusPingsAreCounted()
{
    ZrLiveTap tap;
    ZrPingRecord ping;
    ping.samples = QByteArray(2, 'x');
    for (u32 i = 0; i <= ZrLiveTap::MostPings; ++i) {
        ping.pingNumber = i;
        Take(tap, ping, 1.0);
    }
    QCOMPARE(tap.LostPings(), u64(ZrLiveTap::MostPings / 2));
    const std::vector<ZrLivePing> pings = tap.TakePings();
    QCOMPARE(pings.back().ping.pingNumber, u32(ZrLiveTap::MostPings));
    QCOMPARE(u64(pings.size()) + tap.LostPings(), u64(ZrLiveTap::MostPings + 1));
}

QTEST_GUILESS_MAIN(tst_ZrLiveTap)
#include "tst_ZrLiveTap.moc"
