#include "SimPlan.h"
#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/records/ZrVehicleRecord.h"
#include "ZrKit/sim/ZrSimLog.h"
#include "ZrKit/sim/ZrSimSeaFloor.h"
#include "ZrKit/sim/ZrSimSurvey.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrBottomTracker.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarMeasure.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QMap>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

std::vector<ZrSimRecord> All(ZrSimSurvey& survey)
{
    std::vector<ZrSimRecord> records;
    ZrSimRecord record;
    while (survey.Next(record))
        records.push_back(record);
    return records;
}

/// Small pings, so that the records are what counts.
ZrSimSettings Small()
{
    ZrSimSettings settings = PlainSettings();
    settings.sonar.samples = 64;
    settings.sonar.rate = 5.0;
    return settings;
}

const double start = ZrSimSettings().start;

/// What a person would click on: the shadow of a target in a line.
struct Seen
{
    std::size_t ping = 0;
    double top = 0.0; ///< last bright sample before the shadow
    double shadowEnd = 0.0;
};

/// Looks in the pings around \p middle for the longest run of samples that are nearly as dark as the water,
/// and for what is bright before it.
bool FindTarget(
    ZrSonarLog& log, eSonarSide side, std::size_t from, std::size_t to, double near, double far, Seen& seen)
{
    std::size_t longest = 0;
    std::vector<u16> samples;
    std::size_t first = 0;
    std::size_t last = 0;
    for (std::size_t ping = from; ping < to; ++ping) {
        if (!log.ReadSamples(ping, side, samples))
            return false;
        const double length = log.Pings()[ping].sides[side].SampleLength();
        const auto end = static_cast<std::size_t>(far / length);
        std::size_t run = 0;
        for (std::size_t i = static_cast<std::size_t>(near / length); i < end; ++i) {
            run = samples[i] < 250 ? run + 1 : 0;
            if (run > longest) {
                longest = run;
                first = ping;
                last = i;
            }
        }
    }
    if (longest < 10)
        return false;
    // The middle of the lines that have this shadow.
    std::size_t begin = first;
    std::size_t behind = first;
    const auto isDark = [&](std::size_t ping) {
        log.ReadSamples(ping, side, samples);
        int dark = 0;
        for (std::size_t i = last - longest + 3; i + 3 < last; ++i)
            dark += samples[i] < 250 ? 1 : 0;
        return dark > static_cast<int>(longest) * 6 / 10;
    };
    while (begin > from && isDark(begin - 1))
        --begin;
    while (behind + 1 < to && isDark(behind + 1))
        ++behind;
    seen.ping = (begin + behind) / 2;
    seen.top = static_cast<double>(last - longest);
    seen.shadowEnd = static_cast<double>(last);
    return true;
}

} // namespace

class tst_ZrSimSurvey : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void recordsAtTheirRates()
    {
        ZrSimSurvey survey(MakePlan({{0, 0}, {0, 60}}, 1.5), Small()); // 40 s
        QVERIFY(survey.IsValid());
        QMap<int, int> counts;
        double before = 0.0;
        for (const ZrSimRecord& record : All(survey)) {
            QVERIFY(record.time >= before);
            before = record.time;
            QCOMPARE(int(record.source), 1);
            ++counts[record.type.type * 10 + record.type.sub];
        }
        QCOMPARE(survey.Message(), QString());
        QCOMPARE(survey.Percent(), 100);
        QCOMPARE(counts[700], 1);
        QVERIFY(std::abs(counts[160] - 400) <= 2);
        QVERIFY(std::abs(counts[170] - 200) <= 1);
        QCOMPARE(counts[171], counts[170]);
        QVERIFY(std::abs(counts[180] - 40) <= 1);
        QVERIFY(std::abs(counts[190] - 80) <= 1);
        QVERIFY(std::abs(counts[200] - 80) <= 1);
        QVERIFY(std::abs(counts[210] - 4) <= 1);
        QVERIFY(std::abs(counts[220] - 40) <= 1);
    }

    void firstRecords()
    {
        ZrSimSettings settings = Small();
        settings.source = 7;
        settings.start = 1000000.25;
        ZrSimSurvey survey(MakePlan({{0, 0}, {0, 60}}, 1.5), settings);
        const std::vector<ZrSimRecord> records = All(survey);
        const int order[] = {70, 16, 18, 20, 19, 22, 21, 17, 17, 16};
        for (std::size_t i = 0; i < 10; ++i) {
            QCOMPARE(int(records[i].type.type), order[i]);
            QCOMPARE(int(records[i].source), 7);
            QCOMPARE(records[i].time, i < 9 ? 1000000.25 : 1000000.35);
        }
        ZrNavRecord nav;
        QVERIFY(ZrNavRecord::Decode(zr::bytes_of(records[1].payload), nav));
        QVERIFY(std::fabs(nav.latitude - simLatitude) < 1e-9);
        QVERIFY(std::fabs(nav.longitude - simLongitude) < 1e-9);
        QCOMPARE(nav.altitude, 8.0F);
        QCOMPARE(nav.depth, 12.0F);
        QCOMPARE(nav.flags, 0U);
        ZrFixRecord fix;
        QVERIFY(ZrFixRecord::Decode(zr::bytes_of(records[2].payload), fix));
        QCOMPARE(fix.latitude, nav.latitude);
        QCOMPARE(int(fix.quality), 8);
        ZrMotionRecord motion;
        QVERIFY(ZrMotionRecord::Decode(zr::bytes_of(records[3].payload), motion));
        QCOMPARE(motion.speedGround, 1.5F);
        QCOMPARE(motion.speedWater, 1.5F);
        ZrDepthRecord depth;
        QVERIFY(ZrDepthRecord::Decode(zr::bytes_of(records[4].payload), depth));
        QCOMPARE(depth.depth, 8.0F);
        QCOMPARE(depth.offset, 12.0F);
        ZrVehicleRecord vehicle;
        QVERIFY(ZrVehicleRecord::Decode(zr::bytes_of(records[5].payload), vehicle));
        QCOMPARE(vehicle.navState, 1U);
        ZrPingRecord ping;
        QVERIFY(ZrPingRecord::Decode(zr::bytes_of(records[8].payload), ping));
        QCOMPARE(int(ping.side), 1);
        QCOMPARE(int(records[8].type.sub), 1);
    }

    void planCanBeRead()
    {
        ZrWpts plan = MakePlan({{0, 0}, {0, 60, 5.0}, {40, 60}}, 1.5);
        plan.GetHead()->name = QStringLiteral("Größe");
        ZrSimSurvey survey(plan, Small());
        ZrSimRecord record;
        QVERIFY(survey.Next(record));
        QCOMPARE(record.type, CRecType(rtMissionPlan));
        ZrXmlStore store(false);
        store.Load(record.payload);
        ZrXmlSet* const set = store.Set(QStringLiteral("Waypoints"));
        QVERIFY(set);
        ZrWpts read;
        read.SyncXml(*set);
        QCOMPARE(read.GetCount(), 3);
        QCOMPARE(read.GetHead()->name, QStringLiteral("Größe"));
        QVERIFY(std::fabs(read.GetHead()->lat - plan.GetHead()->lat) < 1e-9);
    }

    void sameBytesEachTime()
    {
        ZrSimSettings settings;
        settings.sonar.samples = 128;
        settings.sensors.dropout = 0.05;
        const ZrWpts plan = MakePlan({{0, 0}, {0, 30, 5}, {30, 30}}, 1.5);
        ZrSimSurvey a(plan, settings);
        ZrSimSurvey b(plan, settings);
        settings.seed = 2;
        ZrSimSurvey c(plan, settings);
        const auto first = All(a);
        const auto second = All(b);
        const auto other = All(c);
        QCOMPARE(first.size(), second.size());
        int same = 0;
        for (std::size_t i = 0; i < first.size(); ++i) {
            QCOMPARE(first[i].time, second[i].time);
            QCOMPARE(first[i].payload, second[i].payload);
            same += i < other.size() && first[i].payload == other[i].payload ? 1 : 0;
        }
        // The plan, temperatures and vehicle states have no errors.
        QVERIFY(same < static_cast<int>(first.size()) / 10);
    }

    void withoutSonarAndPlan()
    {
        ZrSimSettings settings = Small();
        settings.pings = false;
        settings.recordsPlan = false;
        settings.fixRate = 0.0;
        ZrSimSurvey survey(MakePlan({{0, 0}, {0, 30}}, 1.5), settings);
        for (const ZrSimRecord& record : All(survey))
            QVERIFY(record.type.type != 17 && record.type.type != 18 && record.type.type != 70);
    }

    void dropouts()
    {
        ZrSimSettings settings = Small();
        settings.sensors.dropout = 1.0;
        ZrSimSurvey survey(MakePlan({{0, 0}, {0, 60}}, 1.5), settings);
        int held = 0;
        int fixes = 0;
        int noHeading = 0;
        for (const ZrSimRecord& record : All(survey)) {
            ZrNavRecord nav;
            if (record.type.type == 16 && ZrNavRecord::Decode(zr::bytes_of(record.payload), nav)) {
                held += nav.flags == 1U ? 1 : 0;
                noHeading += std::isnan(nav.heading) ? 1 : 0;
            }
            fixes += record.type.type == 18 ? 1 : 0;
        }
        QVERIFY(held > 50 && noHeading > 50);
        QVERIFY(fixes > 15 && fixes < 40);
    }

    void noSurvey_data()
    {
        QTest::addColumn<int>("points");
        QTest::addColumn<double>("range");
        QTest::addColumn<QString>("message");
        QTest::newRow("empty plan") << 0 << 50.0 << QStringLiteral("The plan has no waypoints");
        QTest::newRow("one waypoint")
            << 1 << 50.0 << QStringLiteral("The plan has only one waypoint: there is no way to go");
        QTest::newRow("bad settings")
            << 2 << 1e9 << QStringLiteral("The range is 1e+09 m; it must be from 1 to 1000");
        QTest::newRow("NaN") << 2 << std::numeric_limits<double>::quiet_NaN()
                             << QStringLiteral("The range is nan m; it must be from 1 to 1000");
    }

    void noSurvey()
    {
        QFETCH(int, points);
        QFETCH(double, range);
        QFETCH(QString, message);
        ZrSimSettings settings = Small();
        settings.sonar.range = range;
        const std::vector<SimPoint> way = {{0, 0}, {0, 50}};
        ZrSimSurvey survey(MakePlan({way.begin(), way.begin() + points}), settings);
        QVERIFY(!survey.IsValid());
        QCOMPARE(survey.Message(), message);
        QVERIFY(All(survey).empty());
        QCOMPARE(survey.Percent(), 0);
    }

    void tooLong()
    {
        ZrSimSettings settings = Small();
        settings.maxDuration = 10.0;
        ZrSimSurvey survey(MakePlan({{0, 0}, {0, 5000}}, 1.5), settings);
        QCOMPARE(All(survey).back().time, start + 10.0);
        QCOMPARE(survey.Message(), QStringLiteral("The survey takes longer than 10 s"));
    }

    void currentTooStrong()
    {
        ZrSimSettings settings = Small();
        settings.pings = false;
        settings.vehicle.currentSet = 180.0;
        settings.vehicle.currentDrift = 2.5;
        ZrSimSurvey survey(MakePlan({{0, 0}, {0, 5000}}, 1.5), settings);
        const std::vector<ZrSimRecord> records = All(survey);
        QVERIFY(records.size() > 10 && records.size() < 10000);
        QVERIFY(survey.Message().startsWith(QStringLiteral("The current of 2.50 m/s is too strong")));
    }

    void targetsAreWhereTheyWereLaid_data()
    {
        QTest::addColumn<double>("away");
        QTest::addColumn<double>("height");
        QTest::addColumn<double>("errors");
        QTest::newRow("starboard") << 20.0 << 1.5 << 0.0;
        QTest::newRow("port") << -18.0 << 1.2 << 0.0;
        QTest::newRow("far out") << 32.0 << 1.0 << 0.0;
        QTest::newRow("with errors of the sensors") << -22.0 << 1.5 << 1.0;
    }

    void targetsAreWhereTheyWereLaid()
    {
        QFETCH(double, away);
        QFETCH(double, height);
        QFETCH(double, errors);
        ZrSimSettings settings; // hills, ripples, patches, swing and all
        settings.scattered = 0;
        settings.floor.rippleHeight = 0.03;
        settings.floor.rockHeight = 0.0;
        if (errors == 0.0)
            settings.sensors = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
        const ZrWpts plan = MakePlan({{0, 0}, {0, 60}}, 1.5);
        // North of the middle of the way by 5 m; the frame of the plan lies there.
        settings.targets = {{ZrSimTarget::Block, {away, 5.0}, 0.0, 3.0, 1.0, height, 3.0}};
        ZrSimSurvey survey(plan, settings);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("line.log"));
        ZrSimLog writer;
        QCOMPARE(writer.Write(survey, path, nullptr), ZrSimLog::Done);

        ZrSonarLog log;
        QVERIFY2(log.Open(path), qPrintable(log.Error()));
        QCOMPARE(log.Damage(), QString());
        QCOMPARE(log.Skipped(), std::size_t(0));
        QCOMPARE(log.Pings().size(), std::size_t(writer.Pings()));
        ZrBottomTracker tracker;
        ZrBottomLine bottom;
        bottom.SetFound(tracker.Track(log));
        // The tracked seabed is the one that the vehicle was above.
        for (std::size_t i = 20; i + 20 < log.Pings().size(); i += 20)
            QVERIFY(std::fabs(bottom.Altitude(i) - log.Pings()[i].pose.altitude) < 0.4);

        const eSonarSide side = away > 0.0 ? sideStarboard : sidePort;
        Seen seen;
        const double slant = std::hypot(away, 8.0);
        QVERIFY(FindTarget(log, side, 0, log.Pings().size(), slant - 4.0, slant + 8.0, seen));
        const ZrSonarTrack track(log.Pings(), {});
        const ZrSonarGeo geo(log.Pings(), track, bottom);
        ZrSonarMeasure measure(geo);
        ZrSonarMeasure::Shadow shadow;
        QVERIFY2(
            measure.Height({seen.ping, side, seen.top}, seen.shadowEnd, shadow), qPrintable(measure.Error()));
        QVERIFY2(std::fabs(shadow.height / height - 1.0) < 0.2,
            qPrintable(QStringLiteral("%1 m high, not %2").arg(shadow.height).arg(height)));
        // The echoes end at the far edge of the top; a metre less of it, seen from above, is the middle.
        ZrSonarTarget target;
        QVERIFY(measure.Place({seen.ping, side, seen.top - 0.5 / (50.0 / 1024.0)}, target));
        const ZrLocalPoint at = survey.Vehicle().Frame().ToLocal(target.position);
        QVERIFY2(std::hypot(at.x - away, at.y - 5.0) < 1.0,
            qPrintable(QStringLiteral("at %1, %2").arg(at.x).arg(at.y)));
        // Nothing like it on the other side.
        Seen other;
        QVERIFY(!FindTarget(log, side == sidePort ? sideStarboard : sidePort, seen.ping - 5, seen.ping + 5,
            slant - 4.0, slant + 8.0, other));
    }
};

QTEST_GUILESS_MAIN(tst_ZrSimSurvey)
#include "tst_ZrSimSurvey.moc"
