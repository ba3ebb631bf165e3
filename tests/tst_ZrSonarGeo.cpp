// Where samples lie, against geodesics of GeographicLib, and back.

#include "SonarLine.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace sonarline;

class tst_ZrSonarGeo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void positionsAreGeodesics_data();
    void positionsAreGeodesics();

    void findIsTheInverse_data() { positionsAreGeodesics_data(); }

    void findIsTheInverse();
    void findBeyondTheLine();
    void findNothing();
    void waterColumnLiesBelowTheSonar();
    void altitudesAreBridged();
    void withoutAltitudesGroundIsSlant();
    void spotsThatAreNotThere();
    void pingsWithoutAPlace();
    void headingOffsetTurnsTheRays();

private:
    /// Reads a log made of \p pings.
    void Load(const std::vector<Ping>& pings);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ZrSonarLog> m_log;
};

void tst_ZrSonarGeo::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_log = std::make_unique<ZrSonarLog>();
}

void tst_ZrSonarGeo::Load(const std::vector<Ping>& pings)
{
    const QString path = m_folder->filePath(QStringLiteral("line ö.log"));
    QVERIFY(Write(path, pings));
    QVERIFY2(m_log->Open(path), qPrintable(m_log->Error()));
    QCOMPARE(m_log->Pings().size(), pings.size());
}

void tst_ZrSonarGeo::positionsAreGeodesics_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<double>("heading");
    for (const double heading : {0.0, 47.5, 180.0, 301.0}) {
        QTest::addRow("north %g", heading) << 48.4455 << -68.828 << heading;
        QTest::addRow("south %g", heading) << -43.5 << 172.7 << heading;
        QTest::addRow("zone edge %g", heading) << 61.0 << 5.99999 << heading;
        QTest::addRow("antimeridian %g", heading) << -17.0 << 179.99999 << heading;
        QTest::addRow("equator %g", heading) << 0.00002 << 30.0 << heading;
        QTest::addRow("arctic %g", heading) << 84.0 << 12.0 << heading;
    }
}

void tst_ZrSonarGeo::positionsAreGeodesics()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(double, heading);
    Plan plan;
    plan.start = {lat, lng};
    plan.heading = heading;
    Load(Straight(plan));
    const ZrSonarTrack track(m_log->Pings(), {});
    const ZrBottomLine bottom = RecordedBottom(*m_log);
    const ZrSonarGeo geo(m_log->Pings(), track, bottom);
    for (const std::size_t ping : {0U, 30U, 59U}) {
        const ZrGeoPoint sonar = Away(plan.start, heading, static_cast<double>(ping) * plan.step);
        for (const int sample : {50, 120, 199}) {
            for (const eSonarSide side : {sidePort, sideStarboard}) {
                const double slant = (sample + 0.5) * 0.1;
                const double ground = std::sqrt(slant * slant - 25.0);
                const ZrSonarSpot spot{ping, side, static_cast<double>(sample)};
                QVERIFY(std::fabs(geo.SlantRange(spot) - slant) < 1e-9);
                QVERIFY(std::fabs(geo.GroundRange(spot) - ground) < 1e-9);
                const ZrGeoPoint expected = Away(sonar, heading + (side == sidePort ? -90.0 : 90.0), ground);
                const double off = Apart(geo.Position(spot), expected);
                QVERIFY2(off < 0.002, qPrintable(QString::number(off)));
            }
        }
    }
}

void tst_ZrSonarGeo::findIsTheInverse()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(double, heading);
    Plan plan;
    plan.start = {lat, lng};
    plan.heading = heading;
    Load(Straight(plan));
    const ZrSonarTrack track(m_log->Pings(), {});
    const ZrBottomLine bottom = RecordedBottom(*m_log);
    const ZrSonarGeo geo(m_log->Pings(), track, bottom);
    for (const std::size_t ping : {0U, 17U, 59U}) {
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            for (const double sample : {52.0, 120.25, 199.0}) {
                ZrSonarSpot found;
                double away = -1.0;
                QVERIFY(geo.Find(geo.Position({ping, side, sample}), found, &away));
                QCOMPARE(found.ping, ping);
                QCOMPARE(found.side, side);
                QVERIFY2(std::fabs(found.sample - sample) < 0.01, qPrintable(QString::number(found.sample)));
                QVERIFY(away >= 0.0 && away < 0.001);
            }
        }
    }
}

void tst_ZrSonarGeo::findBeyondTheLine()
{
    Plan plan;
    plan.start = {51.0, 1.0};
    plan.heading = 90.0;
    Load(Straight(plan));
    const ZrSonarTrack track(m_log->Pings(), {});
    const ZrBottomLine bottom = RecordedBottom(*m_log);
    const ZrSonarGeo geo(m_log->Pings(), track, bottom);
    // 10 m behind the start and 3 m beyond the reach to the right.
    const double reach = std::sqrt(400.0 - 25.0);
    const ZrGeoPoint at = Away(Away(plan.start, 270.0, 10.0), 180.0, reach + 3.0);
    ZrSonarSpot spot;
    double away = 0.0;
    QVERIFY(geo.Find(at, spot, &away));
    QCOMPARE(spot.ping, std::size_t(0));
    QCOMPARE(spot.side, sideStarboard);
    QCOMPARE(spot.sample, 199.5);
    QVERIFY2(std::fabs(away - std::hypot(10.0, 3.0)) < 0.01, qPrintable(QString::number(away)));
    QVERIFY(geo.Find(at, spot)); // without asking how far
}

void tst_ZrSonarGeo::findNothing()
{
    const std::vector<ZrSonarPing> none;
    const ZrSonarTrack empty(none, {});
    const ZrSonarGeo geo(none, empty, ZrBottomLine());
    ZrSonarSpot spot{7, sideStarboard, 3.0};
    QVERIFY(!geo.Find({51.0, 1.0}, spot));
    QCOMPARE(spot.ping, std::size_t(7));

    Plan plan;
    plan.start = {51.0, 1.0};
    Load(Straight(plan));
    const ZrSonarTrack track(m_log->Pings(), {});
    const ZrSonarGeo line(m_log->Pings(), track, RecordedBottom(*m_log));
    QVERIFY(!line.Find({}, spot));
    QVERIFY(!line.Find({91.0, 0.0}, spot));
    QCOMPARE(spot.ping, std::size_t(7));
}

void tst_ZrSonarGeo::waterColumnLiesBelowTheSonar()
{
    Plan plan;
    plan.start = {51.0, 1.0};
    Load(Straight(plan));
    const ZrSonarTrack track(m_log->Pings(), {});
    const ZrSonarGeo geo(m_log->Pings(), track, RecordedBottom(*m_log));
    const ZrSonarSpot spot{3, sidePort, 20.0};
    QVERIFY(geo.IsInWater(spot));
    QCOMPARE(geo.GroundRange(spot), 0.0);
    QVERIFY(Apart(geo.Position(spot), track.Position(3)) < 1e-6);
    QVERIFY(!geo.IsInWater({3, sidePort, 49.5})); // 5 m exactly
    QVERIFY(geo.IsInWater({3, sidePort, 49.4}));
    QCOMPARE(geo.Sample(3, sidePort, 0.0), 49.5);
}

void tst_ZrSonarGeo::altitudesAreBridged()
{
    Plan plan;
    plan.start = {51.0, 1.0};
    plan.pings = 10;
    Load(Straight(plan));
    const ZrSonarTrack track(m_log->Pings(), {});
    ZrBottomLine bottom;
    bottom.SetFound({unknown, unknown, 4.0, unknown, unknown, unknown, 8.0, unknown, unknown, unknown});
    const ZrSonarGeo geo(m_log->Pings(), track, bottom);
    QVERIFY(geo.KnowsAltitudes());
    const double expected[] = {4.0, 4.0, 4.0, 5.0, 6.0, 7.0, 8.0, 8.0, 8.0, 8.0};
    for (std::size_t i = 0; i < 10; ++i)
        QCOMPARE(geo.Altitude(i), expected[i]);
    // A bottom line that is shorter than the log goes on as it ends.
    ZrBottomLine shorter;
    shorter.SetFound({3.0});
    QCOMPARE(ZrSonarGeo(m_log->Pings(), track, shorter).Altitude(9), 3.0);
}

void tst_ZrSonarGeo::withoutAltitudesGroundIsSlant()
{
    Plan plan;
    plan.start = {51.0, 1.0};
    Load(Straight(plan));
    const ZrSonarTrack track(m_log->Pings(), {});
    const ZrSonarGeo geo(m_log->Pings(), track, ZrBottomLine());
    QVERIFY(!geo.KnowsAltitudes());
    QCOMPARE(geo.Altitude(0), 0.0);
    QVERIFY(std::fabs(geo.GroundRange({0, sidePort, 99.5}) - 10.0) < 1e-9);
    QVERIFY(!geo.IsInWater({0, sidePort, 0.0}));
}

void tst_ZrSonarGeo::spotsThatAreNotThere()
{
    Plan plan;
    plan.start = {51.0, 1.0};
    plan.pings = 5;
    std::vector<Ping> pings = Straight(plan);
    pings[2].sides[sidePort].clear();
    Load(pings);
    const ZrSonarTrack track(m_log->Pings(), {});
    const ZrSonarGeo geo(m_log->Pings(), track, RecordedBottom(*m_log));
    for (const ZrSonarSpot& spot : {ZrSonarSpot{5, sidePort, 60.0}, ZrSonarSpot{2, sidePort, 60.0},
             ZrSonarSpot{0, static_cast<eSonarSide>(2), 60.0}, ZrSonarSpot{0, sidePort, unknown}}) {
        QVERIFY(!geo.Holds(spot));
        QVERIFY(std::isnan(geo.SlantRange(spot)));
        QVERIFY(std::isnan(geo.GroundRange(spot)));
        QVERIFY(!geo.IsInWater(spot));
        QVERIFY(!geo.Position(spot).IsValid());
    }
    QVERIFY(std::isnan(geo.Sample(2, sidePort, 5.0)));
    QVERIFY(geo.Holds({0, sidePort, -0.5}));
    QVERIFY(geo.Holds({0, sidePort, 199.5}));
    QVERIFY(!geo.Holds({0, sidePort, -0.6}));
    QVERIFY(!geo.Holds({0, sidePort, 199.6}));
}

void tst_ZrSonarGeo::pingsWithoutAPlace()
{
    Plan plan;
    plan.start = {51.0, 1.0};
    plan.pings = 3;
    std::vector<Ping> pings = Straight(plan);
    for (Ping& ping : pings)
        ping.lat = ping.lng = unknown;
    Load(pings);
    const ZrSonarTrack track(m_log->Pings(), {});
    const ZrSonarGeo geo(m_log->Pings(), track, RecordedBottom(*m_log));
    QVERIFY(!geo.Position({1, sidePort, 100.0}).IsValid());
    ZrSonarSpot spot;
    QVERIFY(!geo.Find({51.0, 1.0}, spot));
}

void tst_ZrSonarGeo::headingOffsetTurnsTheRays()
{
    Plan plan;
    plan.start = {48.4455, -68.828};
    plan.heading = 328.0;
    std::vector<Ping> pings = Straight(plan);
    for (Ping& ping : pings)
        ping.heading = 345.6; // magnetic
    Load(pings);
    const ZrGeoPoint expected = Away(Away(plan.start, 328.0, 7.5), 58.0, std::sqrt(14.95 * 14.95 - 25.0));
    ZrSonarTrackSettings offset;
    offset.headingOffset = -17.6;
    ZrSonarTrackSettings course;
    course.heading = ZrSonarTrackSettings::headingCourse;
    for (const ZrSonarTrackSettings& settings : {offset, course}) {
        const ZrSonarTrack track(m_log->Pings(), settings);
        const ZrSonarGeo geo(m_log->Pings(), track, RecordedBottom(*m_log));
        const double off = Apart(geo.Position({30, sideStarboard, 149.0}), expected);
        QVERIFY2(off < 0.01, qPrintable(QString::number(off)));
    }
    const ZrSonarTrack track(m_log->Pings(), {});
    const ZrSonarGeo geo(m_log->Pings(), track, RecordedBottom(*m_log));
    QVERIFY(Apart(geo.Position({30, sideStarboard, 149.0}), expected) > 4.0);
}

QTEST_GUILESS_MAIN(tst_ZrSonarGeo)
#include "tst_ZrSonarGeo.moc"
