#include "SimPlan.h"
#include "ZrKit/sim/ZrSimSeaFloor.h"
#include "ZrKit/sim/ZrSimSonar.h"
#include "ZrUtil/ZrEndian.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

std::shared_ptr<const ZrSimSeaFloor> Floor(std::vector<ZrSimTarget> targets = {})
{
    return std::make_shared<const ZrSimSeaFloor>(LevelFloor(), std::move(targets));
}

/// 8 m above the level floor, heading north.
ZrSimVehicleState Above(double altitude = 8.0)
{
    ZrSimVehicleState state;
    state.depth = 20.0 - altitude;
    state.altitude = altitude;
    return state;
}

/// 40 m in samples of 5 cm.
ZrSimSonarSettings Range40()
{
    ZrSimSonarSettings settings;
    settings.range = 40.0;
    settings.samples = 800;
    return settings;
}

std::vector<u16> Samples(const ZrPingRecord& record)
{
    std::vector<u16> samples;
    const u8* const bytes = reinterpret_cast<const u8*>(record.samples.constData());
    for (int i = 0; i + 1 < record.samples.size(); i += 2)
        samples.push_back(zr::load_le<u16>(bytes + i));
    return samples;
}

double Mean(const std::vector<double>& values, double from, double to)
{
    const auto first = values.begin() + static_cast<int>(from / 0.05);
    const auto last = values.begin() + static_cast<int>(to / 0.05);
    return std::accumulate(first, last, 0.0) / static_cast<double>(last - first);
}

} // namespace

class tst_ZrSimSonar : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void firstEchoAtTheAltitude_data()
    {
        QTest::addColumn<double>("altitude");
        QTest::newRow("low") << 2.0;
        QTest::newRow("usual") << 8.03;
        QTest::newRow("high") << 19.0;
    }

    void firstEchoAtTheAltitude()
    {
        QFETCH(double, altitude);
        const ZrSimSonar sonar(1, Floor(), Range40());
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            const std::vector<double> echoes = sonar.Echoes(Above(altitude), side);
            QCOMPARE(echoes.size(), std::size_t(800));
            const auto first = static_cast<std::size_t>(altitude / 0.05);
            for (std::size_t i = 0; i < first; ++i)
                QCOMPARE(echoes[i], 0.0);
            QVERIFY(echoes[first] > 1000.0);
            QVERIFY(echoes.back() > 10.0);
        }
    }

    void grazingAngles()
    {
        // Without the beam's own shape: amplitude is proportional to the sine of the grazing angle, and to
        // the root of the length of floor in a sample, r / √(r² − a²).
        ZrSimSonarSettings settings = Range40();
        settings.beam = 180.0;
        settings.absorption = 0.0;
        const ZrSimSonar sonar(1, Floor(), settings);
        const std::vector<double> echoes = sonar.Echoes(Above(), sideStarboard);
        const auto expected = [&settings](double range) {
            const double sine = 8.0 / range;
            const double lobe = (-std::asin(sine) + settings.tilt * 3.14159265 / 180.0) / 3.14159265;
            const double beam = 0.08 + 0.92 * std::exp(-lobe * lobe);
            return sine * std::sqrt(beam * range / std::sqrt(range * range - 64.0));
        };
        // The grain of the sand is ±25 % of power and 2.5 m long.
        const double near = Mean(echoes, 15.0, 20.0) / expected(17.5);
        const double far = Mean(echoes, 34.0, 39.5) / expected(36.75);
        QVERIFY2(std::fabs(near / settings.gain - 1.0) < 0.08, qPrintable(QString::number(near)));
        QVERIFY2(std::fabs(far / settings.gain - 1.0) < 0.08, qPrintable(QString::number(far)));
    }

    void targetAndShadow_data()
    {
        QTest::addColumn<double>("heading");
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<int>("side");
        QTest::newRow("north, to starboard") << 0.0 << 20.0 << 0.0 << 1;
        QTest::newRow("north, to port") << 0.0 << -20.0 << 0.0 << 0;
        QTest::newRow("south, to port") << 180.0 << 20.0 << 0.0 << 0;
        QTest::newRow("east, to starboard") << 90.0 << 0.0 << -20.0 << 1;
        QTest::newRow("west, to port") << 270.0 << 0.0 << -20.0 << 0;
    }

    void targetAndShadow()
    {
        QFETCH(double, heading);
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(int, side);
        const ZrSimTarget block{ZrSimTarget::Block, {x, y}, heading, 3.0, 1.0, 1.0, 3.0};
        const ZrSimSonar sonar(1, Floor({block}), Range40());
        ZrSimVehicleState state = Above();
        state.gridHeading = heading;
        const auto own = static_cast<eSonarSide>(side);
        const auto other = static_cast<eSonarSide>(1 - side);
        const std::vector<double> bare = ZrSimSonar(1, Floor(), Range40()).Echoes(state, own);
        const std::vector<double> echoes = sonar.Echoes(state, own);
        // The wall is met from its foot, 19.5 m out, to its top, the shadow ends where the ray over the far
        // edge, 20.5 m out and 7 m below the sonar, meets the floor: at 8 / 7 of both.
        const double foot = std::hypot(19.5, 8.0);
        const double top = std::hypot(19.5, 7.0);
        const double farTop = std::hypot(20.5, 7.0);
        const double end = farTop * 8.0 / 7.0;
        QVERIFY(Mean(echoes, top + 0.05, foot) > 2.0 * Mean(bare, top + 0.05, foot));
        for (double range = farTop + 0.1; range < end - 0.1; range += 0.05)
            QCOMPARE(echoes[static_cast<std::size_t>(range / 0.05)], 0.0);
        QVERIFY(std::fabs(Mean(echoes, end + 0.1, 39.0) / Mean(bare, end + 0.1, 39.0) - 1.0) < 0.001);
        QVERIFY(std::fabs(Mean(echoes, 8.0, top - 0.5) / Mean(bare, 8.0, top - 0.5) - 1.0) < 0.001);
        // Nothing on the other side, and nothing behind or ahead of it.
        QCOMPARE(sonar.Echoes(state, other), ZrSimSonar(1, Floor(), Range40()).Echoes(state, other));
        const double radians = heading * 3.14159265358979 / 180.0;
        state.at = {2.0 * std::sin(radians), 2.0 * std::cos(radians)};
        QCOMPARE(sonar.Echoes(state, own), ZrSimSonar(1, Floor(), Range40()).Echoes(state, own));
    }

    void rollTiltsTheBeams()
    {
        const ZrSimSonar sonar(1, Floor(), Range40());
        ZrSimVehicleState state = Above();
        const double level = Mean(sonar.Echoes(state, sideStarboard), 30.0, 39.0);
        const double levelPort = Mean(sonar.Echoes(state, sidePort), 30.0, 39.0);
        state.roll = 15.0; // starboard down
        QVERIFY(Mean(sonar.Echoes(state, sideStarboard), 30.0, 39.0) < 0.9 * level);
        QVERIFY(Mean(sonar.Echoes(state, sidePort), 30.0, 39.0) > 1.02 * levelPort);
    }

    void records()
    {
        ZrSimSonarSettings settings = Range40();
        settings.frequency = 900.0;
        const ZrSimSonar sonar(1, Floor(), settings);
        const ZrPingRecord port = sonar.Ping(Above(), 17, sidePort);
        QCOMPARE(port.pingNumber, 17U);
        QCOMPARE(int(port.side), 0);
        QCOMPARE(int(port.sampleWidth), 2);
        QCOMPARE(port.slantRange, 40.0F);
        QCOMPARE(port.frequency, 900.0F);
        QCOMPARE(port.soundSpeed, 1500.0F);
        QCOMPARE(port.sampleCount, 800U);
        QCOMPARE(port.samples.size(), 1600);
        QCOMPARE(int(sonar.Ping(Above(), 17, sideStarboard).side), 1);
        ZrPingRecord decoded;
        QVERIFY(ZrPingRecord::Decode(zr::bytes_of(port.Encode()), decoded));
        QCOMPARE(decoded.samples, port.samples);
        // The end of the pulse, the quiet water, the seabed.
        const std::vector<u16> samples = Samples(port);
        QVERIFY(samples[0] > 10000);
        QVERIFY(*std::max_element(samples.begin() + 40, samples.begin() + 155) < 400);
        QVERIFY(*std::max_element(samples.begin() + 160, samples.begin() + 180) > 3000);
    }

    void speckle()
    {
        // Echoes of n looks: the power has the deviation 1 / √n of its mean.
        for (const int looks : {1, 4}) {
            ZrSimSonarSettings settings = Range40();
            settings.looks = looks;
            settings.noise = 0.0;
            const ZrSimSonar sonar(1, Floor(), settings);
            const std::vector<double> echoes = sonar.Echoes(Above(), sidePort);
            double sum = 0.0;
            double squares = 0.0;
            int count = 0;
            for (u32 number = 0; number < 40; ++number) {
                const std::vector<u16> samples = Samples(sonar.Ping(Above(), number, sidePort));
                for (std::size_t i = 200; i < 790; ++i) {
                    const double power = std::pow(samples[i] / echoes[i], 2.0);
                    sum += power;
                    squares += power * power;
                    ++count;
                }
            }
            const double mean = sum / count;
            QVERIFY(std::fabs(mean - 1.0) < 0.03);
            QVERIFY(std::fabs(std::sqrt(squares / count - mean * mean) - 1.0 / std::sqrt(looks)) < 0.04);
        }
    }

    void withoutSpeckle()
    {
        ZrSimSonarSettings settings = Range40();
        settings.looks = 0;
        settings.noise = 0.0;
        const ZrSimSonar sonar(1, Floor(), settings);
        const std::vector<double> echoes = sonar.Echoes(Above(), sidePort);
        const std::vector<u16> samples = Samples(sonar.Ping(Above(), 3, sidePort));
        for (std::size_t i = 60; i < samples.size(); ++i)
            QVERIFY(std::fabs(samples[i] - echoes[i]) <= 1.0);
    }

    void randomnessBelongsToThePing()
    {
        const ZrSimSonar sonar(1, Floor(), Range40());
        const ZrSimSonar again(1, Floor(), Range40());
        const ZrSimSonar other(2, Floor(), Range40());
        const QByteArray samples = sonar.Ping(Above(), 5, sidePort).samples;
        QCOMPARE(again.Ping(Above(), 5, sidePort).samples, samples);
        QVERIFY(sonar.Ping(Above(), 6, sidePort).samples != samples);
        QVERIFY(sonar.Ping(Above(), 5, sideStarboard).samples != samples);
        QVERIFY(other.Ping(Above(), 5, sidePort).samples != samples);
    }

    void onTheFloor()
    {
        const ZrSimSonar sonar(1, Floor(), Range40());
        for (const double echo : sonar.Echoes(Above(0.0), sidePort))
            QCOMPARE(echo, 0.0);
        QCOMPARE(sonar.Ping(Above(0.0), 1, sidePort).samples.size(), 1600);
        // Below it, which no vehicle is.
        for (const double echo : sonar.Echoes(Above(-5.0), sidePort))
            QVERIFY(std::isfinite(echo));
    }

    void floorOutOfRange()
    {
        ZrSimSonarSettings settings = Range40();
        settings.range = 5.0;
        const ZrSimSonar sonar(1, Floor(), settings);
        for (const double echo : sonar.Echoes(Above(8.0), sidePort))
            QCOMPARE(echo, 0.0);
    }

    void nowhere()
    {
        const ZrSimSonar sonar(1, Floor(), Range40());
        ZrSimVehicleState state = Above();
        state.depth = noNumber;
        for (const double echo : sonar.Echoes(state, sidePort))
            QCOMPARE(echo, 0.0);
        state = Above();
        state.at = {noNumber, infinite};
        state.gridHeading = noNumber;
        state.roll = 0.0;
        for (const double echo : sonar.Echoes(state, sidePort))
            QVERIFY(std::isfinite(echo));
        QCOMPARE(sonar.Ping(state, 0, sidePort).samples.size(), 1600);
    }

    void settingsArePutInOrder()
    {
        ZrSimSonarSettings settings;
        settings.range = 1e12;
        settings.samples = 1000000000;
        settings.soundSpeed = noNumber;
        settings.gain = infinite;
        settings.looks = -4;
        const ZrSimSonar large(1, Floor(), settings);
        QCOMPARE(large.Settings().range, 1000.0);
        QCOMPARE(large.Settings().samples, 16384);
        QCOMPARE(large.Settings().soundSpeed, 1500.0);
        QCOMPARE(large.Settings().gain, 65535.0);
        QCOMPARE(large.Settings().looks, 0);
        QCOMPARE(large.Ping(Above(), 0, sidePort).samples.size(), 32768);
        settings.range = -3.0;
        settings.samples = 0;
        const ZrSimSonar small(1, Floor(), settings);
        QCOMPARE(small.Settings().range, 1.0);
        QCOMPARE(small.Settings().samples, 16);
        QCOMPARE(small.Ping(Above(), 0, sidePort).samples.size(), 32);
    }

    void rates()
    {
        ZrSimSonarSettings settings;
        settings.range = 75.0;
        QCOMPARE(ZrSimSonar(1, Floor(), settings).Rate(), 10.0);
        settings.rate = 4.0;
        QCOMPARE(ZrSimSonar(1, Floor(), settings).Rate(), 4.0);
        settings.rate = 50.0;
        QCOMPARE(ZrSimSonar(1, Floor(), settings).Rate(), 10.0);
        settings.rate = noNumber;
        QCOMPARE(ZrSimSonar(1, Floor(), settings).Rate(), 10.0);
    }
};

QTEST_APPLESS_MAIN(tst_ZrSimSonar)
#include "tst_ZrSimSonar.moc"
