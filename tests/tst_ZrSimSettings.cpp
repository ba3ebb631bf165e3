#include "ZrKit/sim/ZrSimSettings.h"

#include <QtTest>

#include <functional>
#include <limits>

using Change = std::function<void(ZrSimSettings&)>;
Q_DECLARE_METATYPE(Change)

class tst_ZrSimSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void usual() { QCOMPARE(ZrSimSettings().Fault(), QString()); }

    void faults_data()
    {
        constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
        QTest::addColumn<Change>("change");
        QTest::addColumn<QString>("fault");
        const auto row = [](const char* name, const Change& change, const char* fault) {
            QTest::newRow(name) << change << QString::fromUtf8(fault);
        };
        row(
            "start", [](ZrSimSettings& s) { s.start = -1.0; },
            "The start is -1 s; it must be from 0 to 253402300799");
        row(
            "duration", [](ZrSimSettings& s) { s.maxDuration = 1e18; },
            "The longest duration is 1e+18 s; it must be from 1 to 31536000");
        row(
            "no navigation", [](ZrSimSettings& s) { s.navRate = 0.0; },
            "The rate of navigation is 0 Hz; it must be from 0.1 to 100");
        row(
            "rate", [](ZrSimSettings& s) { s.sonar.rate = 1e9; },
            "The rate of pings is 1e+09 Hz; it must be from 0 to 100");
        row(
            "range", [](ZrSimSettings& s) { s.sonar.range = 1e6; },
            "The range is 1e+06 m; it must be from 1 to 1000");
        row(
            "NaN range", [](ZrSimSettings& s) { s.sonar.range = noNumber; },
            "The range is nan m; it must be from 1 to 1000");
        row(
            "samples", [](ZrSimSettings& s) { s.sonar.samples = 0; },
            "The number of samples is 0; it must be from 16 to 16384");
        row(
            "speed", [](ZrSimSettings& s) { s.vehicle.cruiseSpeed = 0.0; },
            "The speed is 0 m/s; it must be from 0.05 to 50");
        row(
            "current", [](ZrSimSettings& s) { s.vehicle.currentDrift = -0.5; },
            "The drift of the current is -0.5 m/s; it must be from 0 to 100");
        row(
            "set", [](ZrSimSettings& s) { s.vehicle.currentSet = 400.0; },
            "The set of the current is 400 degrees; it must be from -360 to 360");
        row(
            "water", [](ZrSimSettings& s) { s.floor.depth = 12000.0; },
            "The depth of water is 12000 m; it must be from 0 to 11000");
        row(
            "scattered", [](ZrSimSettings& s) { s.scattered = -1; },
            "The number of targets is -1; it must be from 0 to 10000");
        row(
            "target",
            [](ZrSimSettings& s) {
                s.targets = {ZrSimTarget(), ZrSimTarget()};
                s.targets[1].width = -1.0;
            },
            "Target 2 has a size or a place that cannot be");
        row(
            "targets", [](ZrSimSettings& s) { s.targets.resize(10001); },
            "There are 10001 targets; at most 10000 can be laid");
    }

    void faults()
    {
        QFETCH(Change, change);
        QFETCH(QString, fault);
        ZrSimSettings settings;
        change(settings);
        QCOMPARE(settings.Fault(), fault);
    }
};

QTEST_APPLESS_MAIN(tst_ZrSimSettings)
#include "tst_ZrSimSettings.moc"
