#include "ZrKit/sim/ZrSimSensors.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

const ZrLocalFrame frame({48.0, -68.0});

ZrSimVehicleState StateAt(double time)
{
    ZrSimVehicleState state;
    state.time = time;
    state.at = {10.0, time};
    state.position = frame.ToGeo(state.at);
    state.heading = 359.9;
    state.course = 1.0;
    state.speed = 1.5;
    state.groundSpeed = 1.2;
    state.depth = 12.0;
    state.altitude = 8.0;
    state.pitch = -2.0;
    state.roll = 3.0;
    return state;
}

bool IsSame(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

} // namespace

class tst_ZrSimSensors : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void withoutErrors()
    {
        const double notKnown = std::numeric_limits<double>::quiet_NaN();
        // What is no deviation is none.
        ZrSimSensors sensors(1, frame, {0.0, -1.0, notKnown, 0.0, 0.0, 0.0, notKnown});
        const ZrSimVehicleState state = StateAt(5.0);
        const ZrSimReading reading = sensors.Read(state);
        QCOMPARE(reading.time, 5.0);
        QVERIFY(std::fabs(reading.position.lat - state.position.lat) < 1e-12);
        QVERIFY(std::fabs(reading.position.lng - state.position.lng) < 1e-12);
        QCOMPARE(reading.heading, 359.9);
        QCOMPARE(reading.course, 1.0);
        QCOMPARE(reading.groundSpeed, 1.2);
        QCOMPARE(reading.waterSpeed, 1.5);
        QCOMPARE(reading.depth, 12.0);
        QCOMPARE(reading.altitude, 8.0);
        QCOMPARE(reading.pitch, -2.0);
        QCOMPARE(reading.roll, 3.0);
        QVERIFY(!reading.isPositionHeld);
    }

    void errorsHaveTheirSizes()
    {
        const ZrSimSensorSettings settings{0.4, 0.5, 0.2, 0.1, 0.3, 0.05, 0.0};
        ZrSimSensors sensors(11, frame, settings);
        constexpr int count = 40000;
        double squares[6] = {};
        for (int i = 0; i < count; ++i) {
            // A minute apart the errors of positions have little to do with each other.
            const ZrSimVehicleState state = StateAt(60.0 * i);
            const ZrSimReading reading = sensors.Read(state);
            QVERIFY(reading.heading >= 0.0 && reading.heading < 360.0);
            const double errors[] = {frame.ToLocal(reading.position).x - state.at.x,
                std::remainder(reading.heading - state.heading, 360.0), reading.roll - state.roll,
                reading.depth - state.depth, reading.altitude - state.altitude,
                reading.groundSpeed - state.groundSpeed};
            for (int k = 0; k < 6; ++k)
                squares[k] += errors[k] * errors[k];
            if (i >= 2000 && i % 1000 == 0)
                QVERIFY(std::fabs(reading.position.lat) <= 90.0);
        }
        const double sizes[] = {0.4, 0.5, 0.2, 0.1, 0.3, 0.05};
        for (int k = 0; k < 6; ++k)
            QVERIFY(std::fabs(std::sqrt(squares[k] / count) / sizes[k] - 1.0) < 0.05);
    }

    void positionsWander()
    {
        ZrSimSensors sensors(5, frame, {0.5, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0});
        double before = 0.0;
        double most = 0.0;
        double mostStep = 0.0;
        for (int i = 0; i < 20000; ++i) {
            const ZrSimVehicleState state = StateAt(0.1 * i);
            const double error = frame.ToLocal(sensors.Read(state).position).x - state.at.x;
            if (i > 0)
                mostStep = std::max(mostStep, std::fabs(error - before));
            most = std::max(most, std::fabs(error));
            before = error;
        }
        // σ √(2 · 0.1 / 30) is the deviation of a step, 0.04 m; five of them are a lot.
        QVERIFY(mostStep < 0.21);
        QVERIFY(most > 0.6);
    }

    void sameSeedSameReadings()
    {
        ZrSimSensorSettings settings;
        settings.dropout = 0.3;
        ZrSimSensors a(3, frame, settings);
        ZrSimSensors b(3, frame, settings);
        ZrSimSensors c(4, frame, settings);
        int others = 0;
        for (int i = 0; i < 200; ++i) {
            const ZrSimReading one = a.Read(StateAt(i));
            const ZrSimReading two = b.Read(StateAt(i));
            QVERIFY(IsSame(one.position.lat, two.position.lat));
            QVERIFY(IsSame(one.altitude, two.altitude));
            QVERIFY(IsSame(one.heading, two.heading));
            others += c.Read(StateAt(i)).depth != one.depth ? 1 : 0;
        }
        QVERIFY(others > 190);
    }

    void dropouts()
    {
        ZrSimSensorSettings settings;
        settings.dropout = 7.0; // counts as 1
        ZrSimSensors sensors(3, frame, settings);
        int held = 0;
        int headings = 0;
        int altitudes = 0;
        int speeds = 0;
        ZrGeoPoint last;
        for (int i = 0; i < 400; ++i) {
            const ZrSimReading reading = sensors.Read(StateAt(i));
            held += reading.isPositionHeld ? 1 : 0;
            headings += std::isnan(reading.heading) ? 1 : 0;
            altitudes += std::isnan(reading.altitude) ? 1 : 0;
            speeds += std::isnan(reading.groundSpeed) ? 1 : 0;
            if (reading.isPositionHeld)
                QVERIFY(IsSame(reading.position.lat, last.lat) && IsSame(reading.position.lng, last.lng));
            last = reading.position;
        }
        QCOMPARE(held + headings + altitudes + speeds, 400);
        QVERIFY(held > 60 && headings > 60 && altitudes > 60 && speeds > 60);
    }

    void dropoutsLeaveErrorsAlone()
    {
        ZrSimSensorSettings settings;
        ZrSimSensors whole(3, frame, settings);
        settings.dropout = 0.5;
        ZrSimSensors broken(3, frame, settings);
        for (int i = 0; i < 100; ++i)
            QCOMPARE(broken.Read(StateAt(i)).depth, whole.Read(StateAt(i)).depth);
    }
};

QTEST_APPLESS_MAIN(tst_ZrSimSensors)
#include "tst_ZrSimSensors.moc"
