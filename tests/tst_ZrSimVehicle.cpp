#include "SimPlan.h"
#include "ZrKit/sim/ZrSimSeaFloor.h"
#include "ZrKit/sim/ZrSimVehicle.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

std::shared_ptr<const ZrSimSeaFloor> Floor(const ZrSimSeaFloorSettings& settings = LevelFloor())
{
    return std::make_shared<const ZrSimSeaFloor>(settings);
}

ZrSimVehicleSettings Still()
{
    ZrSimVehicleSettings settings;
    settings.swing = 0.0;
    return settings;
}

/// What happened on the way.
struct Voyage
{
    double mostOff = 0.0;
    double lastOff = 0.0;
    double mostRate = 0.0; ///< degrees a second
    double deepest = 0.0;
    double leastAltitude = inf;
    ZrSimVehicleState end;
    QString message;
    int steps = 0;
};

Voyage Sail(ZrSimVehicle& vehicle, double step = 0.1, int most = 2000000)
{
    Voyage voyage;
    double heading = vehicle.State().heading;
    while (vehicle.IsRunning() && voyage.steps < most) {
        vehicle.Step(step);
        const ZrSimVehicleState& state = vehicle.State();
        voyage.mostOff = std::max(voyage.mostOff, std::fabs(state.crossTrack));
        voyage.mostRate
            = std::max(voyage.mostRate, std::fabs(std::remainder(state.heading - heading, 360.0)) / step);
        voyage.deepest = std::max(voyage.deepest, state.depth);
        voyage.leastAltitude = std::min(voyage.leastAltitude, state.altitude);
        heading = state.heading;
        ++voyage.steps;
    }
    voyage.end = vehicle.State();
    voyage.lastOff = std::fabs(voyage.end.crossTrack);
    voyage.message = vehicle.Message();
    return voyage;
}

} // namespace

class tst_ZrSimVehicle : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void straightAhead()
    {
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {0, 300}}, 1.5), Floor(), Still());
        QVERIFY(vehicle.IsRunning());
        QVERIFY(std::fabs(vehicle.Length() - 300.0) < 0.01);
        QVERIFY(vehicle.State().toGo == vehicle.Length());
        QCOMPARE(vehicle.State().depth, 12.0);
        QCOMPARE(vehicle.State().altitude, 8.0);
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        QVERIFY(std::fabs(voyage.end.time - 200.0) < 0.5);
        QVERIFY(voyage.mostOff < 0.01);
        QVERIFY(std::fabs(std::remainder(voyage.end.heading, 360.0)) < 0.1);
        QVERIFY(std::fabs(std::remainder(voyage.end.course, 360.0)) < 0.1);
        QCOMPARE(voyage.end.toGo, 0.0);
        QCOMPARE(voyage.end.waypoint, 1);
        QVERIFY(std::fabs(voyage.end.groundSpeed - 1.5) < 1e-6);
        const ZrGeoPoint goal = ZrLocalFrame({simLatitude, simLongitude}).ToGeo({0.0, 300.0});
        QVERIFY(std::fabs(voyage.end.position.lat - goal.lat) < 5e-6);
        QVERIFY(std::fabs(voyage.end.position.lng - goal.lng) < 1e-6);
    }

    void arcsAreFollowed()
    {
        ZrSimVehicle vehicle(
            MakePlan({{0, 0}, {0, 200, 30}, {100, 200, 30}, {100, 0}}, 1.5), Floor(), Still());
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        QVERIFY2(voyage.mostOff < 0.25, qPrintable(QString::number(voyage.mostOff)));
        QVERIFY(voyage.mostRate <= 12.0 + 1e-6);
        // Two corners cut by arcs of 30 m each: 500 m less 2 (2 · 30 − 30 π / 2).
        QVERIFY(std::fabs(vehicle.Length() - (500.0 - 2.0 * (60.0 - 30.0 * 3.14159265 / 2.0))) < 0.05);
        QVERIFY(std::fabs(voyage.end.time - vehicle.Length() / 1.5) < 2.0);
    }

    void cornersAreOverrun()
    {
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {0, 100}, {100, 100}}, 2.0), Floor(), Still());
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        QVERIFY(voyage.mostOff > 2.0); // a circle of 2 m/s at 12 degrees a second has 9.5 m
        QVERIFY(voyage.lastOff < 0.1); // and is back on its line
    }

    void turnsBackOnTheSpot()
    {
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {0, 100}, {0, 0}}, 1.0), Floor(), Still());
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        QVERIFY(std::fabs(voyage.end.at.y + 50.0) < 1.0); // the frame lies around the middle
    }

    void closedRouteReturns()
    {
        ZrWpts plan = MakePlan({{0, 0}, {0, 100}, {100, 100}}, 2.0);
        plan.closed = true;
        ZrSimVehicle vehicle(plan, Floor(), Still());
        const ZrLocalPoint start = vehicle.State().at;
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        QVERIFY(std::hypot(voyage.end.at.x - start.x, voyage.end.at.y - start.y) < 1.0);
        QCOMPARE(voyage.end.waypoint, 0);
    }

    void headsIntoTheCurrent()
    {
        ZrSimVehicleSettings settings = Still();
        settings.currentSet = 90.0;
        settings.currentDrift = 0.5;
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {0, 400}}, 1.0), Floor(), settings);
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        QVERIFY(voyage.lastOff < 0.2);
        // 30 degrees into it, and √(1 − 0.5²) m/s over ground.
        QVERIFY(std::fabs(std::remainder(voyage.end.heading - 330.0, 360.0)) < 0.5);
        QVERIFY(std::fabs(std::remainder(voyage.end.course, 360.0)) < 0.5);
        QVERIFY(std::fabs(voyage.end.groundSpeed - std::sqrt(0.75)) < 0.01);
    }

    void isCarriedOffItsLine()
    {
        ZrSimVehicleSettings settings = Still();
        settings.currentSet = 90.0;
        settings.currentDrift = 0.5;
        settings.holdsLine = false;
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {0, 400}}, 1.0), Floor(), settings);
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        // Steady where atan(off / lead of 4 m) is the 30 degrees that the current takes.
        QVERIFY2(std::fabs(voyage.end.crossTrack - 4.0 * std::tan(30.0 * 3.14159265 / 180.0)) < 0.05,
            qPrintable(QString::number(voyage.end.crossTrack)));
    }

    void currentTooStrong_data()
    {
        QTest::addColumn<double>("set");
        QTest::addColumn<double>("drift");
        QTest::newRow("ahead") << 180.0 << 2.0;
        QTest::newRow("just as strong") << 180.0 << 1.0;
        QTest::newRow("abeam") << 90.0 << 3.0;
        QTest::newRow("absurd") << 250.0 << 100.0;
    }

    void currentTooStrong()
    {
        QFETCH(double, set);
        QFETCH(double, drift);
        ZrSimVehicleSettings settings = Still();
        settings.currentSet = set;
        settings.currentDrift = drift;
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {0, 4000}}, 1.0), Floor(), settings);
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message,
            QStringLiteral("The current of %1 m/s is too strong for the vehicle, which makes 1.00 m/s on the "
                           "way to waypoint 2")
                .arg(drift, 0, 'f', 2));
        QVERIFY(voyage.end.time < 600.0);
        QVERIFY(!vehicle.IsRunning());
    }

    void levels_data()
    {
        QTest::addColumn<double>("z");
        QTest::addColumn<int>("zType");
        QTest::addColumn<double>("depth");
        QTest::newRow("nothing planned: altitude of the settings") << 0.0 << 0 << 12.0;
        QTest::newRow("depth") << 5.0 << 0 << 5.0;
        QTest::newRow("altitude") << 6.0 << 1 << 14.0;
        QTest::newRow("altitude below the least") << 0.5 << 1 << 18.0;
        QTest::newRow("altitude 0") << 0.0 << 1 << 18.0;
        QTest::newRow("altitude above the water") << 50.0 << 1 << 0.0;
        QTest::newRow("depth below the floor") << 100.0 << 0 << 18.0;
        QTest::newRow("negative altitude") << -3.0 << 1 << 18.0;
        QTest::newRow("NaN") << noNumber << 1 << 12.0;
        QTest::newRow("infinite depth") << inf << 0 << 12.0;
        QTest::newRow("another kind") << 5.0 << 7 << 5.0;
    }

    void levels()
    {
        QFETCH(double, z);
        QFETCH(int, zType);
        QFETCH(double, depth);
        ZrSimVehicle vehicle(MakePlan({{0, 0, 0, z, zType}, {0, 100, 0, z, zType}}, 1.5), Floor(), Still());
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        QVERIFY(std::fabs(voyage.end.depth - depth) < 0.01);
        QVERIFY(std::fabs(voyage.end.altitude - (20.0 - depth)) < 0.01);
    }

    void divesBetweenWaypoints()
    {
        ZrSimVehicle vehicle(
            MakePlan({{0, 0, 0, 2.0, 0}, {0, 200, 0, 12.0, 0}, {0, 300, 0, 12.0, 0}}, 1.5), Floor(), Still());
        bool seen = false;
        while (vehicle.IsRunning()) {
            vehicle.Step(0.1);
            const ZrSimVehicleState& state = vehicle.State();
            if (!seen && state.toGo < 200.0) { // half of the first leg
                seen = true;
                QVERIFY(std::fabs(state.depth - 7.0) < 0.5);
                QVERIFY(state.pitch < -1.0); // bow down
            }
        }
        QVERIFY(seen);
        QVERIFY(std::fabs(vehicle.State().depth - 12.0) < 0.05);
        QVERIFY(std::fabs(vehicle.State().pitch) < 0.2);
    }

    void climbsNoSteeperThanItCan()
    {
        ZrSimVehicleSettings settings = Still();
        settings.climbAngle = 10.0;
        ZrSimVehicle vehicle(
            MakePlan({{0, 0, 0, 1.0, 0}, {0, 10, 0, 18.0, 0}, {0, 300, 0, 18.0, 0}}, 1.5), Floor(), settings);
        while (vehicle.IsRunning()) {
            vehicle.Step(0.1);
            QVERIFY(std::fabs(vehicle.State().pitch) <= 10.0 + 1e-6);
        }
        QVERIFY(std::fabs(vehicle.State().depth - 18.0) < 0.05);
    }

    void followsTheFloor()
    {
        ZrSimSeaFloorSettings hills = LevelFloor();
        hills.relief = 4.0;
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {0, 2000}}, 1.5), Floor(hills), Still());
        double least = inf;
        double most = 0.0;
        while (vehicle.IsRunning()) {
            vehicle.Step(0.5);
            least = std::min(least, vehicle.State().altitude);
            most = std::max(most, vehicle.State().altitude);
        }
        QVERIFY2(least > 7.0 && most < 9.0, qPrintable(QStringLiteral("%1 %2").arg(least).arg(most)));
    }

    void shallowWater_data()
    {
        QTest::addColumn<double>("depth");
        QTest::newRow("less than the least altitude") << 1.0;
        QTest::newRow("none at all") << 0.0;
    }

    void shallowWater()
    {
        QFETCH(double, depth);
        ZrSimSeaFloorSettings shallow = LevelFloor();
        shallow.depth = depth;
        ZrSimVehicle vehicle(MakePlan({{0, 0, 0, 5.0, 0}, {0, 50, 0, 5.0, 0}}, 1.5), Floor(shallow), Still());
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        QCOMPARE(voyage.deepest, 0.0);
        QCOMPARE(voyage.end.altitude, depth);
    }

    void badPlans_data()
    {
        QTest::addColumn<QVector<double>>("xy");
        QTest::addColumn<int>("spoiled");
        QTest::addColumn<QString>("message");
        QTest::newRow("empty") << QVector<double>() << -1 << QStringLiteral("The plan has no waypoints");
        QTest::newRow("one") << QVector<double>{0, 0} << -1
                             << QStringLiteral("The plan has only one waypoint: there is no way to go");
        QTest::newRow("one place") << QVector<double>{0, 0, 0, 0} << -1
                                   << QStringLiteral("All waypoints of the plan lie in one place");
        QTest::newRow("NaN") << QVector<double>{0, 0, 0, 50, 0, 100} << 1
                             << QStringLiteral("Waypoint 2 has no valid position");
        QTest::newRow("NaN at the start")
            << QVector<double>{0, 0, 0, 50} << 0 << QStringLiteral("Waypoint 1 has no valid position");
    }

    void badPlans()
    {
        QFETCH(QVector<double>, xy);
        QFETCH(int, spoiled);
        QFETCH(QString, message);
        std::vector<SimPoint> points;
        for (int i = 0; i + 1 < xy.size(); i += 2)
            points.push_back({xy[i], xy[i + 1]});
        ZrWpts plan = MakePlan(points);
        ZrListPos* pos = plan.GetHeadPos();
        for (int i = 0; pos; ++i) {
            ZrWpt* const wpt = plan.GetNext(pos);
            if (i == spoiled)
                wpt->lat = noNumber;
        }
        ZrSimVehicle vehicle(plan, Floor(), Still());
        QVERIFY(!vehicle.IsRunning());
        QCOMPARE(vehicle.Message(), message);
        vehicle.Step(1.0);
        QCOMPARE(vehicle.State().time, 0.0);
    }

    void aroundTheWorld()
    {
        ZrWpts plan;
        plan.Add(0.0, 0.0, eZrWptBlue, ZrWpts::eAddTail);
        plan.Add(0.0, 120.0, eZrWptBlue, ZrWpts::eAddTail);
        const ZrSimVehicle vehicle(plan, Floor(), Still());
        QCOMPARE(vehicle.Message(), QStringLiteral("The waypoints of the plan lie too far apart"));
    }

    void absurdSpeeds_data()
    {
        QTest::addColumn<double>("planned");
        QTest::addColumn<double>("expected");
        QTest::newRow("beyond the vehicle") << 1e9 << 3.0;
        QTest::newRow("infinite: none") << inf << 1.5;
        QTest::newRow("NaN: none") << noNumber << 1.5;
        QTest::newRow("0: none") << 0.0 << 1.5;
        QTest::newRow("negative: none") << -4.0 << 1.5;
        QTest::newRow("hardly any") << 1e-9 << 0.05;
    }

    void absurdSpeeds()
    {
        QFETCH(double, planned);
        QFETCH(double, expected);
        ZrWpts plan = MakePlan({{0, 0}, {0, 20}});
        plan.speed = planned;
        ZrSimVehicle vehicle(plan, Floor(), Still());
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        QCOMPARE(voyage.end.speed, expected);
        QVERIFY(std::fabs(voyage.end.time - 20.0 / expected) < 1.0);
    }

    void ownSpeed()
    {
        ZrSimVehicleSettings settings = Still();
        settings.usesPlanSpeeds = false;
        settings.cruiseSpeed = 2.5;
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {0, 100}}, 0.5), Floor(), settings);
        QCOMPARE(Sail(vehicle).end.speed, 2.5);
    }

    void absurdSettings()
    {
        ZrSimVehicleSettings settings;
        for (double* value : {&settings.cruiseSpeed, &settings.maxSpeed, &settings.acceleration,
                 &settings.turnRate, &settings.climbAngle, &settings.altitude, &settings.minAltitude,
                 &settings.maxDepth, &settings.currentSet, &settings.currentDrift, &settings.swing})
            *value = noNumber;
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {50, 50, 10}, {100, 0}}), Floor(), settings);
        const Voyage voyage = Sail(vehicle);
        QCOMPARE(voyage.message, QString());
        QVERIFY(std::isfinite(voyage.end.roll) && std::isfinite(voyage.end.position.lat));
        QCOMPARE(vehicle.Settings().turnRate, 12.0);
        QCOMPARE(vehicle.Settings().currentDrift, 0.0);
    }

    void absurdSteps()
    {
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {0, 300}}), Floor(), Still());
        for (const double step : {noNumber, -1.0, 0.0, -inf})
            vehicle.Step(step);
        QCOMPARE(vehicle.State().time, 0.0);
        vehicle.Step(inf);
        QVERIFY(std::fabs(vehicle.State().time - ZrSimVehicle::MaxStep) < 1e-6);
    }

    void sameEachTime()
    {
        ZrSimVehicleSettings settings;
        settings.currentDrift = 0.3;
        const ZrWpts plan = MakePlan({{0, 0}, {0, 100, 20}, {80, 100}});
        ZrSimVehicle a(plan, Floor({}), settings);
        ZrSimVehicle b(plan, Floor({}), settings);
        while (a.IsRunning()) {
            a.Step(0.25);
            b.Step(0.25);
            QCOMPARE(a.State().at.x, b.State().at.x);
            QCOMPARE(a.State().depth, b.State().depth);
            QCOMPARE(a.State().roll, b.State().roll);
        }
        QVERIFY(!b.IsRunning());
    }

    void swingsAndBanks()
    {
        ZrSimVehicleSettings settings;
        settings.swing = 2.0;
        ZrSimVehicle vehicle(MakePlan({{0, 0}, {0, 200}}), Floor(), settings);
        double most = 0.0;
        while (vehicle.IsRunning()) {
            vehicle.Step(0.1);
            most = std::max(most, std::fabs(vehicle.State().roll));
        }
        QVERIFY(most > 1.9 && most <= 2.01);
        // Turning to starboard puts the starboard side down.
        ZrSimVehicle turning(MakePlan({{0, 0}, {0, 100, 20}, {100, 100}}), Floor(), Still());
        double bank = 0.0;
        while (turning.IsRunning()) {
            turning.Step(0.1);
            QVERIFY(turning.State().roll > -1.0);
            bank = std::max(bank, turning.State().roll);
        }
        QVERIFY(bank > 1.0);
    }

    void atHighLatitudeHeadingsAreTrue()
    {
        // Far east of the middle of the plan the north of its frame is not true north.
        ZrWpts plan;
        plan.linked = true;
        plan.speed = 3.0;
        plan.Add(70.0, 10.0, eZrWptBlue, ZrWpts::eAddTail);
        plan.Add(70.01, 10.0, eZrWptBlue, ZrWpts::eAddTail);
        plan.Add(70.01, 12.0, eZrWptBlue, ZrWpts::eAddTail);
        ZrSimVehicle vehicle(plan, Floor(), Still());
        for (int i = 0; i < 20; ++i)
            vehicle.Step(1.0);
        QVERIFY(std::fabs(std::remainder(vehicle.State().heading, 360.0)) < 0.01);
        QVERIFY(std::fabs(std::remainder(vehicle.State().gridHeading, 360.0)) > 0.5);
    }
};

QTEST_APPLESS_MAIN(tst_ZrSimVehicle)
#include "tst_ZrSimVehicle.moc"
