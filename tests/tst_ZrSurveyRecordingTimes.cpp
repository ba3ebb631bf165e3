// Where and when: positions, pings and the time axis of a recording.

#include "SurveyRecordingLog.h"

#include <QtTest>

#include <algorithm>
#include <utility>
#include <vector>

using sonar_test::Log;
using sonar_test::SonarLine;
using survey_recording::IsNear;
using survey_recording::Nav;
using survey_recording::unknown;

class tst_ZrSurveyRecordingTimes : public QObject, private survey_recording::Folder
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void positionsBetweenRows();
    void firstPosition();
    void pingsWithoutNavigation();
    void pingAt();
    void pingsIn_data();
    void pingsIn();
    void sonarOutsideTheRecords();
    void clockSetOutsideTheRecords();
    void recordsAndSonarTogether();
    void recordsAndSonarApart_data();
    void recordsAndSonarApart();
    void sonarLate();
    void sonarInFrontOfItsRecords();
    void clockSetBehindTheRecords();
};

/// On the way to the next row where that comes within ten seconds; else where the last one was.
void tst_ZrSurveyRecordingTimes::positionsBetweenRows()
{
    const QString path = File("nav.log");
    const double t = sonar_test::startTime;
    QVERIFY(Log(path)
                .AddNav(t, Nav(44.0, -63.0))
                .AddNav(t + 10.0, Nav(44.1, -63.2))
                .AddNav(t + 21.0, Nav(44.2, -63.2))
                .AddNav(t + 22.0, Nav(unknown, unknown))
                .AddNav(t + 23.0, Nav(44.3, 179.9))
                .AddNav(t + 24.0, Nav(44.3, -179.9))
                .Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const double begin = recording.Times()->Begin();
    const auto isAt = [&](double seconds, double lat, double lng) {
        const ZrGeoPoint at = recording.PositionAt(begin + seconds);
        return IsNear(at.lat, lat, 1e-9) && IsNear(at.lng, lng, 1e-9);
    };
    QVERIFY(isAt(0.0, 44.0, -63.0));
    QVERIFY(isAt(5.0, 44.05, -63.1));
    QVERIFY(isAt(10.0, 44.1, -63.2));
    QVERIFY(isAt(15.0, 44.1, -63.2));
    QVERIFY(isAt(21.0, 44.2, -63.2));
    // Not through the whole world at the date line.
    QVERIFY(isAt(23.5, 44.3, 179.9));
    QVERIFY(isAt(24.0, 44.3, -179.9));
    // Beside the rows not for longer.
    QVERIFY(isAt(34.0, 44.3, -179.9));
    QVERIFY(isAt(-10.0, 44.0, -63.0));
    for (const double outside : {34.1, 1e6, -10.1, -1e6})
        QVERIFY(!recording.PositionAt(begin + outside).IsValid());
    QVERIFY(!recording.PositionAt(begin + 22.5).IsValid());
    QVERIFY(!recording.PositionAt(unknown).IsValid());
}

void tst_ZrSurveyRecordingTimes::firstPosition()
{
    const QString path = File("late.log");
    const double t = sonar_test::startTime;
    QVERIFY(Log(path)
                .AddNav(t, Nav(unknown, unknown))
                .AddNav(t + 1.0, Nav(44.0, unknown))
                .AddNav(t + 2.0, Nav(44.1, -63.2))
                .AddNav(t + 3.0, Nav(44.2, -63.2))
                .Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const double begin = recording.Times()->Begin();
    QCOMPARE(recording.FirstPosition(begin + 100.0), begin + 2.0);
    QCOMPARE(recording.FirstPosition(begin + 2.0), begin + 2.0);
    QVERIFY(std::isnan(recording.FirstPosition(begin + 1.9)));
    QVERIFY(std::isnan(recording.FirstPosition(begin - 1.0)));
    QVERIFY(std::isnan(ZrSurveyRecording().FirstPosition(begin)));
}

/// The pings make the time axis then.
void tst_ZrSurveyRecordingTimes::pingsWithoutNavigation()
{
    const QString path = File("line.log");
    SonarLine line;
    line.hasNav = [](int) { return false; };
    QVERIFY(WriteLine(path, line));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QVERIFY(recording.HasSonar());
    QCOMPARE(recording.Series().Count(), std::size_t(0));
    QVERIFY(IsNear(recording.Times()->End() - recording.Times()->Begin(), 9.9, 1e-6));
    QVERIFY(IsNear(recording.PingAt(recording.Times()->End()), 99.0, 1e-6));
    QVERIFY(!recording.PositionAt(recording.Times()->Begin()).IsValid());
}

void tst_ZrSurveyRecordingTimes::pingAt()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const double begin = recording.Times()->Begin();
    QCOMPARE(recording.PingAt(begin), 0.0);
    QVERIFY(IsNear(recording.PingAt(begin + 1.05), 10.5, 1e-6));
    QCOMPARE(recording.PingAt(begin - 5.0), 0.0);
    QCOMPARE(recording.PingAt(begin + 500.0), 99.0);
    QVERIFY(std::isnan(recording.PingAt(unknown)));
    for (const double ping : {0.0, 0.5, 17.25, 98.9, 99.0})
        QVERIFY(IsNear(recording.PingAt(recording.TimeOfPing(ping)), ping, 1e-4));
    QCOMPARE(recording.TimeOfPing(-3.0), recording.TimeOfPing(0.0));
    QCOMPARE(recording.TimeOfPing(1e9), recording.TimeOfPing(99.0));
    QVERIFY(std::isnan(recording.TimeOfPing(unknown)));
}

void tst_ZrSurveyRecordingTimes::pingsIn_data()
{
    QTest::addColumn<int>("sonars");
    QTest::addColumn<int>("firstNav");
    QTest::addColumn<int>("endNav");
    QTest::newRow("each with its record") << 1 << 0 << 40;
    QTest::newRow("before the first record") << 1 << 15 << 40;
    QTest::newRow("behind the last record") << 1 << 0 << 25;
    QTest::newRow("two sonars at once") << 2 << 0 << 40;
    QTest::newRow("two sonars around the records") << 2 << 15 << 25;
    QTest::newRow("no records") << 2 << 0 << 0;
}

/// Several pings may have one time: all of them belong to it.
void tst_ZrSurveyRecordingTimes::pingsIn()
{
    QFETCH(int, sonars);
    QFETCH(int, firstNav);
    QFETCH(int, endNav);
    const QString path = File("line.log");
    SonarLine line;
    line.samples = 4;
    Log log(path);
    for (int i = 0; i < 40; ++i) {
        if (i >= firstNav && i < endNav)
            log.AddNav(line.TimeOf(i), line.NavOf(i));
        for (int source = 1; source <= sonars; ++source) {
            for (const eSonarSide side : {sidePort, sideStarboard})
                log.AddPing(line.TimeOf(i), line.PingOf(i, side), false, static_cast<u16>(source));
        }
    }
    QVERIFY(log.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const std::size_t count = recording.Pings().size();
    QCOMPARE(count, static_cast<std::size_t>(40 * sonars));
    std::vector<double> times;
    for (std::size_t i = 0; i < count; ++i)
        times.push_back(recording.TimeOfPing(static_cast<double>(i)));
    QVERIFY(std::is_sorted(times.begin(), times.end()));
    std::vector<double> ends = times;
    for (const double time : times)
        ends.push_back(time + 0.05);
    ends.push_back(times.front() - 1.0);
    for (const double from : ends) {
        for (const double to : ends) {
            const auto found = recording.PingsIn(from, to);
            QVERIFY(found.first <= found.second && found.second <= count);
            for (std::size_t i = 0; i < count; ++i) {
                const bool isIn = times[i] >= from && times[i] <= to;
                QCOMPARE(i >= found.first && i < found.second, isIn);
            }
        }
    }
    constexpr double inf = std::numeric_limits<double>::infinity();
    const auto isNone = [&](double from, double to) {
        const auto found = recording.PingsIn(from, to);
        return found.first == found.second;
    };
    QCOMPARE(recording.PingsIn(-inf, inf), std::make_pair(std::size_t(0), count));
    QVERIFY(isNone(unknown, inf) && isNone(-inf, unknown) && isNone(inf, -inf));
    QVERIFY(ZrSurveyRecording().PingsIn(-inf, inf) == std::make_pair(std::size_t(0), std::size_t(0)));
}

/// It has its own times, and a place on the axis; nothing is known there of the vehicle.
void tst_ZrSurveyRecordingTimes::sonarOutsideTheRecords()
{
    const QString path = File("line.log");
    SonarLine line;
    line.samples = 4;
    line.pings = 1000;
    line.hasNav = [](int ping) { return ping >= 200 && ping < 600; };
    QVERIFY(WriteLine(path, line));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const ZrSteadyTime& times = *recording.Times();
    QCOMPARE(times.Begin(), line.TimeOf(0));
    QCOMPARE(times.End(), line.TimeOf(999));
    QCOMPARE(times.Count(), std::size_t(1000));
    QCOMPARE(recording.Series().Count(), std::size_t(400));
    QCOMPARE(recording.Series().times->Begin(), line.TimeOf(200));
    for (const int ping : {0, 1, 199, 200, 201, 599, 600, 601, 998, 999}) {
        const double at = recording.TimeOfPing(ping);
        QCOMPARE(at, line.TimeOf(ping));
        QCOMPARE(recording.PingAt(at), double(ping));
        QCOMPARE(times.LogTime(at), at);
        const bool isNear = ping >= 100 && ping < 700; // 10 s
        QCOMPARE(recording.PositionAt(at).IsValid(), isNear);
    }
    QCOMPARE(recording.PingsIn(line.TimeOf(700), times.End()),
        std::make_pair(std::size_t(700), std::size_t(1000)));
    QCOMPARE(
        recording.PingsIn(times.Begin(), line.TimeOf(100)), std::make_pair(std::size_t(0), std::size_t(101)));
    QCOMPARE(recording.FirstPosition(times.End()), line.TimeOf(200));
    ZrLogEvt evt(line.TimeOf(900), esUser, QStringLiteral("behind"));
    QCOMPARE(recording.TimeOf(evt), line.TimeOf(900));
}

/// Set back after the last record and before the first one: times go on.
void tst_ZrSurveyRecordingTimes::clockSetOutsideTheRecords()
{
    const QString path = File("line.log");
    SonarLine line;
    line.samples = 4;
    Log log(path);
    const auto timeOf = [&](int ping) {
        const double set = ping < 20 ? 7200.0 : ping >= 80 ? -3600.0 : 0.0;
        return line.TimeOf(ping) + set;
    };
    for (int i = 0; i < 100; ++i) {
        if (i >= 40 && i < 60)
            log.AddNav(timeOf(i), line.NavOf(i));
        for (const eSonarSide side : {sidePort, sideStarboard})
            log.AddPing(timeOf(i), line.PingOf(i, side));
    }
    QVERIFY(log.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const ZrSteadyTime& times = *recording.Times();
    QVERIFY(std::is_sorted(times.Times().begin(), times.Times().end()));
    // Those before the clock was set back have no place of their own.
    QCOMPARE(times.Begin(), timeOf(20));
    QCOMPARE(recording.TimeOfPing(0.0), timeOf(20));
    QCOMPARE(recording.TimeOfPing(30.0), timeOf(30));
    QCOMPARE(recording.TimeOfPing(50.0), timeOf(50));
    QVERIFY(IsNear(recording.TimeOfPing(79.0), timeOf(79), 1e-6));
    QVERIFY(IsNear(recording.TimeOfPing(99.0), timeOf(79) + 1.9, 1e-6));
    QVERIFY(IsNear(times.LogTime(recording.TimeOfPing(99.0)), timeOf(99), 1e-6));
    QVERIFY(IsNear(recording.PingAt(recording.TimeOfPing(95.0)), 95.0, 1e-4));
}

/// The last ping comes behind the last record, at the same time: there is nothing to add.
void tst_ZrSurveyRecordingTimes::recordsAndSonarTogether()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QCOMPARE(recording.Times().get(), static_cast<const ZrSteadyTime*>(recording.Series().times.get()));
}

void tst_ZrSurveyRecordingTimes::recordsAndSonarApart_data()
{
    QTest::addColumn<bool>("isSonarFirst");
    QTest::addColumn<int>("firstNav");
    QTest::addColumn<int>("endNav");
    for (const bool isSonarFirst : {false, true}) {
        const char* order = isSonarFirst ? "sonar first" : "records first";
        QTest::addRow("%s", order) << isSonarFirst << 0 << 400;
        QTest::addRow("%s, earlier and later than the records", order) << isSonarFirst << 100 << 300;
        QTest::addRow("%s, within the records", order) << isSonarFirst << -50 << 450;
    }
}

/// All of the one stored in front of all of the other: times tell what belongs together.
void tst_ZrSurveyRecordingTimes::recordsAndSonarApart()
{
    QFETCH(bool, isSonarFirst);
    QFETCH(int, firstNav);
    QFETCH(int, endNav);
    const QString path = File("line.log");
    SonarLine records;
    SonarLine sonar;
    sonar.pings = 400;
    sonar.samples = 4;
    sonar.hasNav = [](int) { return false; };
    Log log(path);
    if (isSonarFirst)
        log.Add(sonar);
    for (int i = firstNav; i < endNav; ++i)
        log.AddNav(records.TimeOf(i), records.NavOf(i));
    if (!isSonarFirst)
        log.Add(sonar);
    QVERIFY(log.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QCOMPARE(recording.Pings().size(), std::size_t(400));
    QCOMPARE(recording.Times()->Begin(), sonar.TimeOf(std::min(firstNav, 0)));
    QCOMPARE(recording.Times()->End(), sonar.TimeOf(std::max(endNav, 400) - 1));
    for (const int ping : {0, 1, 99, 100, 101, 200, 299, 300, 301, 398, 399}) {
        QCOMPARE(recording.TimeOfPing(ping), sonar.TimeOf(ping));
        QCOMPARE(recording.PingAt(sonar.TimeOf(ping)), double(ping));
        QVERIFY(recording.PositionAt(recording.TimeOfPing(ping)).IsValid());
    }
    QCOMPARE(recording.PingsIn(sonar.TimeOf(150), sonar.TimeOf(160)),
        std::make_pair(std::size_t(150), std::size_t(161)));
}

/// It comes 3 s after its time, behind the last record too; the clock was not set for that.
void tst_ZrSurveyRecordingTimes::sonarLate()
{
    const QString path = File("line.log");
    SonarLine line;
    line.samples = 4;
    Log log(path);
    for (int i = 0; i < 130; ++i) {
        if (i < 100)
            log.AddNav(line.TimeOf(i), line.NavOf(i));
        if (i >= 30) {
            for (const eSonarSide side : {sidePort, sideStarboard})
                log.AddPing(line.TimeOf(i - 30), line.PingOf(i - 30, side));
        }
    }
    QVERIFY(log.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QCOMPARE(recording.Times()->Runs().size(), std::size_t(1));
    QCOMPARE(recording.Times()->End(), line.TimeOf(99));
    for (const int ping : {0, 40, 69, 70, 85, 99})
        QCOMPARE(recording.TimeOfPing(ping), line.TimeOf(ping));
}

/// Stored before the first record, but later than it.
void tst_ZrSurveyRecordingTimes::sonarInFrontOfItsRecords()
{
    const QString path = File("line.log");
    SonarLine line;
    line.samples = 4;
    Log log(path);
    for (int i = 0; i < 105; ++i) {
        if (i < 100) {
            for (const eSonarSide side : {sidePort, sideStarboard})
                log.AddPing(line.TimeOf(i), line.PingOf(i, side));
        }
        if (i >= 5)
            log.AddNav(line.TimeOf(i - 5), line.NavOf(i - 5));
    }
    QVERIFY(log.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    for (const int ping : {0, 1, 3, 4, 5, 6, 50, 99})
        QCOMPARE(recording.TimeOfPing(ping), line.TimeOf(ping));
}

/// Into times that records have: among pings that lay between the records these come behind them.
void tst_ZrSurveyRecordingTimes::clockSetBehindTheRecords()
{
    const QString path = File("line.log");
    SonarLine line;
    line.samples = 4;
    Log log(path);
    const auto timeOf = [&](int ping) { return line.TimeOf(ping) - (ping < 120 ? 0.0 : 10.0); };
    for (int i = 0; i < 150; ++i) {
        if (i < 100)
            log.AddNav(timeOf(i), line.NavOf(i));
        for (const eSonarSide side : {sidePort, sideStarboard})
            log.AddPing(timeOf(i), line.PingOf(i, side));
    }
    QVERIFY(log.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QCOMPARE(recording.TimeOfPing(119.0), timeOf(119));
    QVERIFY(IsNear(recording.TimeOfPing(120.0), timeOf(119), 1e-6));
    QVERIFY(IsNear(recording.TimeOfPing(149.0), timeOf(119) + 2.9, 1e-6));
    QVERIFY(IsNear(recording.Times()->LogTime(recording.TimeOfPing(140.0)), timeOf(140), 1e-6));
}

QTEST_GUILESS_MAIN(tst_ZrSurveyRecordingTimes)
#include "tst_ZrSurveyRecordingTimes.moc"
