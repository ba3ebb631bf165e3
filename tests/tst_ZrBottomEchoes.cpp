// The seabed in single pings over a known one: ranges, scales, sides, limits and nonsense.

#include "BottomPings.h"
#include "ZrKit/sonar/ZrBottomTracker.h"

#include <thread>

using bottom::Pings;
using bottom::Scene;

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// One scene for both sides.
ZrBottomEcho FindIn(const Scene& scene, unsigned seed, double expected = unknown,
    const ZrBottomTrackerSettings& settings = ZrBottomTrackerSettings())
{
    Pings pings(seed);
    const std::vector<u16> port = pings.Side(scene);
    const std::vector<u16> starboard = pings.Side(scene);
    return ZrBottomTracker::Find({port, scene.range}, {starboard, scene.range}, expected, settings);
}

} // namespace

class tst_ZrBottomEchoes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void singlePing_data();
    void singlePing();
    void sidesOfDifferentKind();
    void ripples();
    void expectedAltitude();
    void shadow_data();
    void shadow();
    void badRanges_data();
    void badRanges();
    void limits();
    void badSettings();
    void twoThreads();
};

void tst_ZrBottomEchoes::singlePing_data()
{
    QTest::addColumn<double>("altitude");
    QTest::addColumn<double>("range");
    QTest::addColumn<int>("samples");
    QTest::addColumn<double>("noise");
    QTest::addColumn<double>("seabed");
    QTest::addColumn<double>("tolerance"); ///< metres
    QTest::newRow("ordinary") << 10.0 << 30.0 << 1024 << 120.0 << 3000.0 << 0.12;
    QTest::newRow("low") << 0.9 << 30.0 << 1024 << 120.0 << 3000.0 << 0.12;
    QTest::newRow("far out") << 29.5 << 30.0 << 1024 << 120.0 << 3000.0 << 0.12;
    QTest::newRow("thrice as bright") << 12.0 << 30.0 << 1024 << 1000.0 << 3000.0 << 0.3;
    QTest::newRow("faint") << 12.0 << 30.0 << 1024 << 4.0 << 25.0 << 0.12;
    QTest::newRow("silent water") << 12.0 << 30.0 << 1024 << 0.0 << 300.0 << 0.12;
    QTest::newRow("saturated seabed") << 12.0 << 30.0 << 1024 << 120.0 << 1.0e6 << 0.12;
    QTest::newRow("few samples") << 40.0 << 150.0 << 200 << 120.0 << 3000.0 << 1.2;
    QTest::newRow("very few samples") << 60.0 << 150.0 << 20 << 120.0 << 3000.0 << 12.0;
    QTest::newRow("many samples") << 12.0 << 30.0 << 20000 << 120.0 << 3000.0 << 0.12;
    QTest::newRow("long range") << 90.0 << 400.0 << 8192 << 120.0 << 3000.0 << 0.15;
}

void tst_ZrBottomEchoes::singlePing()
{
    QFETCH(double, altitude);
    QFETCH(double, range);
    QFETCH(int, samples);
    QFETCH(double, noise);
    QFETCH(double, seabed);
    QFETCH(double, tolerance);
    Scene scene;
    scene.altitude = altitude;
    scene.range = range;
    scene.samples = static_cast<std::size_t>(samples);
    scene.noise = noise;
    scene.seabed = seabed;
    for (unsigned seed = 1; seed <= 50; ++seed) {
        const ZrBottomEcho echo = FindIn(scene, seed);
        QVERIFY2(std::fabs(echo.altitude - altitude) < tolerance,
            qPrintable(QStringLiteral("seed %1: %2").arg(seed).arg(echo.altitude)));
        QVERIFY(echo.strength > 0.3 && echo.strength <= 1.0);
    }
}

/// Another range and number of samples on each side.
void tst_ZrBottomEchoes::sidesOfDifferentKind()
{
    Scene near;
    near.range = 20.0;
    near.samples = 500;
    Scene far;
    far.range = 75.0;
    far.samples = 3000;
    far.pulse = 0.5;
    Pings pings;
    const std::vector<u16> port = pings.Side(near);
    const std::vector<u16> starboard = pings.Side(far);
    const ZrBottomEcho echo = ZrBottomTracker::Find({port, 20.0}, {starboard, 75.0}, unknown);
    QVERIFY(std::fabs(echo.altitude - 10.0) < 0.12);
    QVERIFY(echo.strength > 0.95); // both sides agree
}

void tst_ZrBottomEchoes::shadow_data()
{
    QTest::addColumn<double>("seabed");
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::newRow("bright seabed") << 3000.0 << 15.0 << 18.0;
    QTest::newRow("dim seabed") << 600.0 << 15.0 << 18.0;
    QTest::newRow("long shadow") << 1200.0 << 14.0 << 20.0;
    QTest::newRow("far out") << 500.0 << 25.0 << 27.0;
}

/// Behind a shadow it gets brighter than anywhere, but the seabed was in front of it.
void tst_ZrBottomEchoes::shadow()
{
    QFETCH(double, seabed);
    QFETCH(double, from);
    QFETCH(double, to);
    Scene scene;
    scene.seabed = seabed;
    scene.shadowFrom = from;
    scene.shadowTo = to;
    scene.behind = 12000.0;
    for (unsigned seed = 1; seed <= 50; ++seed) {
        const double found = FindIn(scene, seed).altitude;
        QVERIFY2(std::fabs(found - 10.0) < 0.15, qPrintable(QString::number(found)));
    }
}

/// Behind the seabed a hundred times as much contrast as in front of it, over and over.
void tst_ZrBottomEchoes::ripples()
{
    Pings pings;
    Scene scene;
    scene.seabed = 1200.0;
    std::vector<u16> sides[2];
    for (std::vector<u16>& side : sides) {
        side = pings.Side(scene);
        Scene bright = scene;
        bright.altitude = 0.0;
        bright.seabed = 12000.0;
        Scene dark = scene;
        dark.altitude = unknown;
        const std::vector<u16> echoes = pings.Side(bright);
        const std::vector<u16> shadows = pings.Side(dark);
        for (std::size_t i = 480; i < side.size(); ++i) // from 14 m on
            side[i] = i / 34 % 2 == 0 ? echoes[i] : shadows[i];
    }
    const ZrBottomEcho echo = ZrBottomTracker::Find({sides[0], 30.0}, {sides[1], 30.0}, unknown);
    QVERIFY(std::fabs(echo.altitude - 10.0) < 0.15);
}

/// Of two echoes the expected altitude decides; a wrong one does not hide the seabed.
void tst_ZrBottomEchoes::expectedAltitude()
{
    Scene scene;
    scene.altitude = 20.0;
    scene.fishFrom = 6.0;
    scene.fishTo = 7.0;
    QVERIFY(std::fabs(FindIn(scene, 1, 6.5).altitude - 6.0) < 0.1);
    scene.fish = scene.seabed;
    QVERIFY(std::fabs(FindIn(scene, 1, 20.5).altitude - 20.0) < 0.1);
    scene.fishTo = scene.fishFrom;
    for (const double expected : {unknown, infinity, -infinity, 0.0, -5.0, 1.0, 500.0})
        QVERIFY(std::fabs(FindIn(scene, 1, expected).altitude - 20.0) < 0.1);
    QVERIFY(FindIn(scene, 1, 1.0).strength < 0.6);
    QVERIFY(FindIn(scene, 1, 0.0).strength > 0.9); // not known, as some write it
    ZrBottomTrackerSettings exact;
    exact.recordedWithin = 0.0;
    exact.recordedShare = 0.0;
    const ZrBottomEcho off = FindIn(scene, 1, 19.0, exact);
    QVERIFY(std::fabs(off.altitude - 20.0) < 0.1);
    QVERIFY(off.strength < 0.6);
}

void tst_ZrBottomEchoes::badRanges_data()
{
    QTest::addColumn<double>("range");
    QTest::newRow("zero") << 0.0;
    QTest::newRow("negative") << -30.0;
    QTest::newRow("NaN") << unknown;
    QTest::newRow("infinite") << infinity;
    QTest::newRow("tiny") << 1.0e-300;
    QTest::newRow("within the blanking") << 0.4;
    QTest::newRow("huge") << 1.0e300;
}

void tst_ZrBottomEchoes::badRanges()
{
    QFETCH(double, range);
    Pings pings;
    const std::vector<u16> side = pings.Side(Scene());
    const ZrBottomEcho echo = ZrBottomTracker::Find({side, range}, {side, range}, unknown);
    if (range == 1.0e300)
        QVERIFY(std::isfinite(echo.altitude));
    else
        QVERIFY(std::isnan(echo.altitude));
}

void tst_ZrBottomEchoes::badSettings()
{
    const ZrBottomTrackerSettings ordinary;
    for (const double wrong : {unknown, -1.0, -infinity}) {
        ZrBottomTrackerSettings settings;
        for (double ZrBottomTrackerSettings::*member : {&ZrBottomTrackerSettings::blanking,
                 &ZrBottomTrackerSettings::farthest, &ZrBottomTrackerSettings::window,
                 &ZrBottomTrackerSettings::contrast, &ZrBottomTrackerSettings::sidesWithin,
                 &ZrBottomTrackerSettings::strength, &ZrBottomTrackerSettings::step,
                 &ZrBottomTrackerSettings::recordedWithin, &ZrBottomTrackerSettings::recordedShare})
            settings.*member = wrong;
        for (int ZrBottomTrackerSettings::*member :
            {&ZrBottomTrackerSettings::falseEcho, &ZrBottomTrackerSettings::bridge,
                &ZrBottomTrackerSettings::medianReach, &ZrBottomTrackerSettings::meanReach})
            settings.*member = wrong < 0.0 ? -1 : std::numeric_limits<int>::max();
        const ZrBottomTracker tracker(settings);
        QCOMPARE(tracker.Settings().blanking, ordinary.blanking);
        QCOMPARE(tracker.Settings().farthest, ordinary.farthest);
        QCOMPARE(tracker.Settings().window, ordinary.window);
        QCOMPARE(tracker.Settings().contrast, ordinary.contrast);
        QCOMPARE(tracker.Settings().sidesWithin, ordinary.sidesWithin);
        QCOMPARE(tracker.Settings().strength, ordinary.strength);
        QCOMPARE(tracker.Settings().step, ordinary.step);
        QCOMPARE(tracker.Settings().recordedWithin, ordinary.recordedWithin);
        QCOMPARE(tracker.Settings().recordedShare, ordinary.recordedShare);
        QCOMPARE(tracker.Settings().falseEcho, ordinary.falseEcho);
        QCOMPARE(tracker.Settings().bridge, ordinary.bridge);
        QCOMPARE(tracker.Settings().medianReach, ordinary.medianReach);
        QCOMPARE(tracker.Settings().meanReach, ordinary.meanReach);
        QVERIFY(std::fabs(FindIn(Scene(), 1, unknown, settings).altitude - 10.0) < 0.1);
    }
    ZrBottomTrackerSettings good;
    good.blanking = 0.0;
    good.farthest = 12.0;
    good.window = 2.0;
    good.bridge = 0;
    const ZrBottomTracker tracker(good);
    QCOMPARE(tracker.Settings().blanking, 0.0);
    QCOMPARE(tracker.Settings().farthest, 12.0);
    QCOMPARE(tracker.Settings().window, 2.0);
    QCOMPARE(tracker.Settings().bridge, 0);
}

/// What lies in front of the blanking and behind the farthest altitude is not found, what lies between is.
void tst_ZrBottomEchoes::limits()
{
    ZrBottomTrackerSettings settings;
    settings.blanking = 12.0;
    QVERIFY(std::isnan(FindIn(Scene(), 1, unknown, settings).altitude));
    settings.blanking = 9.0;
    QVERIFY(std::fabs(FindIn(Scene(), 1, unknown, settings).altitude - 10.0) < 0.1);
    settings.farthest = 9.8;
    QVERIFY(std::isnan(FindIn(Scene(), 1, unknown, settings).altitude));
    settings.farthest = 10.2;
    QVERIFY(std::fabs(FindIn(Scene(), 1, unknown, settings).altitude - 10.0) < 0.1);
    settings.contrast = 40.0; // the seabed is 25 times as bright
    QVERIFY(std::isnan(FindIn(Scene(), 1, unknown, settings).altitude));
    // Without blanking the pulse is left out all the same.
    settings = ZrBottomTrackerSettings();
    settings.blanking = 0.0;
    QVERIFY(std::fabs(FindIn(Scene(), 1, unknown, settings).altitude - 10.0) < 0.1);
    Scene loud;
    loud.pulse = 4.0;
    QVERIFY(std::fabs(FindIn(loud, 1).altitude - 10.0) < 0.1);
    QVERIFY(FindIn(loud, 1).strength > 0.98);
    Scene all;
    all.pulse = all.range;
    QVERIFY(std::isnan(FindIn(all, 1, unknown, settings).altitude));
}

void tst_ZrBottomEchoes::twoThreads()
{
    Pings pings;
    const std::vector<u16> port = pings.Side(Scene());
    const std::vector<u16> starboard = pings.Side(Scene());
    const ZrBottomEcho expected = ZrBottomTracker::Find({port, 30.0}, {starboard, 30.0}, unknown);
    std::atomic<int> different{0};
    const auto work = [&] {
        for (int i = 0; i < 200; ++i) {
            const ZrBottomEcho echo = ZrBottomTracker::Find({port, 30.0}, {starboard, 30.0}, unknown);
            if (echo.altitude != expected.altitude || echo.strength != expected.strength)
                ++different;
        }
    };
    std::thread other(work);
    work();
    other.join();
    QCOMPARE(different.load(), 0);
}

QTEST_GUILESS_MAIN(tst_ZrBottomEchoes)
#include "tst_ZrBottomEchoes.moc"
