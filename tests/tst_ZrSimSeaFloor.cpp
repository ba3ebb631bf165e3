#include "SimPlan.h"
#include "ZrKit/sim/ZrSimSeaFloor.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

} // namespace

class tst_ZrSimSeaFloor : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void belongsToSeedAndPlace()
    {
        ZrSimSeaFloorSettings settings;
        const ZrSimSeaFloor a(settings);
        const ZrSimSeaFloor b(settings);
        settings.seed = 2;
        const ZrSimSeaFloor c(settings);
        int others = 0;
        for (int i = 0; i < 200; ++i) {
            const double x = 13.7 * i - 900.0;
            const double y = 31.1 * i;
            QCOMPARE(a.Depth(x, y), b.Depth(x, y));
            QCOMPARE(a.Reflectivity(x, y), b.Reflectivity(x, y));
            others += a.Depth(x, y) != c.Depth(x, y) ? 1 : 0;
        }
        QVERIFY(others > 190);
    }

    void alongIsAt()
    {
        const ZrSimSeaFloor floor(
            {}, {ZrSimTarget{ZrSimTarget::Wreck, {-5.0, 30.0}, 20.0, 20.0, 6.0, 3.0, 4.0}});
        const std::vector<const ZrSimTarget*> targets = floor.TargetsNear(0.0, 0.0, 100.0);
        QCOMPARE(targets.size(), std::size_t(1));
        std::vector<ZrSimSeaFloor::Spot> spots;
        floor.Along({-40.0, -3.0}, 0.13, 0.11, 0.1, targets, 1500, spots);
        QCOMPARE(spots.size(), std::size_t(1500));
        bool meetsTarget = false;
        for (std::size_t i = 0; i < spots.size(); ++i) {
            const double x = -40.0 + static_cast<double>(i) * 0.13;
            const double y = -3.0 + static_cast<double>(i) * 0.11;
            const ZrSimSeaFloor::Spot spot = floor.At(x, y, 0.1, targets);
            QCOMPARE(spots[i].depth, spot.depth);
            QCOMPARE(spots[i].reflectivity, spot.reflectivity);
            meetsTarget = meetsTarget || spot.reflectivity == 4.0;
        }
        QVERIFY(meetsTarget);
    }

    void staysNearTheMean()
    {
        ZrSimSeaFloorSettings settings = LevelFloor();
        settings.relief = 2.0;
        const ZrSimSeaFloor floor(settings);
        double least = inf;
        double most = -inf;
        for (int i = 0; i < 20000; ++i) {
            const double depth = floor.Depth(7.0 * i, 3.0 * i);
            least = std::min(least, depth);
            most = std::max(most, depth);
        }
        // Octaves of half the height each: less than twice the first.
        QVERIFY(least > 20.0 - 4.0 && least < 19.0);
        QVERIFY(most < 20.0 + 4.0 && most > 21.0);
    }

    void isContinuous()
    {
        const ZrSimSeaFloor floor{ZrSimSeaFloorSettings()};
        double before = floor.Depth(-60.0, 10.0);
        for (int i = 1; i < 12000; ++i) {
            const double depth = floor.Depth(-60.0 + 0.01 * i, 10.0);
            QVERIFY(std::fabs(depth - before) < 0.05);
            before = depth;
        }
    }

    void detail()
    {
        ZrSimSeaFloorSettings settings = LevelFloor();
        settings.rippleHeight = 0.2;
        const ZrSimSeaFloor floor(settings);
        double ripple = 0.0;
        for (int i = 0; i < 4000; ++i) {
            ripple = std::max(ripple, std::fabs(floor.Depth(0.3 * i, 0.0) - 20.0));
            QCOMPARE(floor.Depth(0.3 * i, 0.0, 4.0), 20.0);
        }
        QVERIFY(ripple > 0.09 && ripple <= 0.1);
    }

    void grounds()
    {
        const ZrSimSeaFloor floor{ZrSimSeaFloorSettings()};
        int mud = 0;
        int rock = 0;
        constexpr int count = 10000;
        for (int i = 0; i < count; ++i) {
            const double value = floor.Reflectivity(11.3 * (i % 100), 11.3 * (i / 100.0));
            QVERIFY(value > 0.0 && value < 4.0);
            mud += value < 0.45 ? 1 : 0;
            rock += value > 2.0 ? 1 : 0;
        }
        // Some of each, and sand between.
        QVERIFY(mud > count / 50 && mud < count * 6 / 10);
        QVERIFY(rock > count / 100 && rock < count * 4 / 10);
        ZrSimSeaFloorSettings sand;
        sand.patches = false;
        const ZrSimSeaFloor plain(sand);
        for (int i = 0; i < 1000; ++i)
            QVERIFY(std::fabs(plain.Reflectivity(9.1 * i, 2.0) - 1.0) <= 0.25);
    }

    void targets()
    {
        const ZrSimTarget block{ZrSimTarget::Block, {50.0, 0.0}, 0.0, 2.0, 2.0, 1.0, 3.0};
        ZrSimTarget bad = block;
        bad.height = noNumber;
        const ZrSimSeaFloor floor(LevelFloor(), {bad, block});
        QCOMPARE(floor.Targets().size(), std::size_t(1));
        QVERIFY(floor.TargetsNear(0.0, 0.0, 40.0).empty());
        const std::vector<const ZrSimTarget*> near = floor.TargetsNear(0.0, 0.0, 49.0);
        QCOMPARE(near.size(), std::size_t(1));
        QCOMPARE(floor.At(50.0, 0.0, 0.0, near).depth, 19.0);
        QCOMPARE(floor.At(50.0, 0.0, 0.0, near).reflectivity, 3.0);
        QCOMPARE(floor.At(52.0, 0.0, 0.0, near).depth, 20.0);
        QCOMPARE(floor.Depth(50.0, 0.0), 20.0);
    }

    void nowhere_data()
    {
        QTest::addColumn<double>("x");
        QTest::newRow("NaN") << noNumber;
        QTest::newRow("infinite") << inf;
        QTest::newRow("minus infinite") << -inf;
        QTest::newRow("beyond") << 1e9;
        QTest::newRow("absurd") << 1e300;
    }

    void nowhere()
    {
        QFETCH(double, x);
        const ZrSimSeaFloor floor{ZrSimSeaFloorSettings()};
        QCOMPARE(floor.Depth(x, 0.0), 25.0);
        QCOMPARE(floor.Depth(0.0, x), 25.0);
        QCOMPARE(floor.Reflectivity(x, x), 1.0);
        QCOMPARE(floor.At(x, 1.0, 0.0, {}).depth, 25.0);
    }

    void settingsArePutInOrder()
    {
        ZrSimSeaFloorSettings settings;
        settings.depth = noNumber;
        settings.relief = -1.0;
        settings.reliefLength = 0.0;
        settings.rippleHeight = inf;
        settings.rippleLength = -inf;
        settings.rockHeight = noNumber;
        const ZrSimSeaFloorSettings used = ZrSimSeaFloor(settings).Settings();
        QCOMPARE(used.depth, 25.0);
        QCOMPARE(used.relief, 0.0);
        QCOMPARE(used.reliefLength, 1.0);
        QCOMPARE(used.rippleHeight, 10.0);
        QCOMPARE(used.rippleLength, 0.05);
        QCOMPARE(used.rockHeight, 0.7);
    }

    void neverAboveWater()
    {
        ZrSimSeaFloorSettings settings;
        settings.depth = 0.5;
        settings.relief = 5.0;
        const ZrSimSeaFloor floor(settings);
        for (int i = 0; i < 2000; ++i)
            QVERIFY(floor.Depth(5.0 * i, 0.0) >= 0.0);
    }
};

QTEST_APPLESS_MAIN(tst_ZrSimSeaFloor)
#include "tst_ZrSimSeaFloor.moc"
