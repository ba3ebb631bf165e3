#include "SimPlan.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/sim/ZrSimScatter.h"

#include <QtTest>

#include <cmath>

class tst_ZrSimScatter : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void besideTheStraights()
    {
        // Northwards: the frame lies around the middle of the way.
        const ZrRoutePath path(MakePlan({{0, 0}, {0, 800}}));
        const std::vector<ZrSimTarget> targets = ZrSimScatter::Along(path, 12, 50.0, 3);
        QCOMPARE(targets.size(), std::size_t(12));
        int wrecks = 0;
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const ZrSimTarget& target = targets[i];
            QVERIFY(target.IsValid());
            const double away = i % 2 == 0 ? target.at.x : -target.at.x;
            QVERIFY(away >= 12.5 && away <= 33.5);
            QVERIFY(std::fabs(target.at.y - (-400.0 + 800.0 * (static_cast<double>(i) + 0.5) / 12.0)) < 0.01);
            wrecks += target.kind == ZrSimTarget::Wreck ? 1 : 0;
        }
        QCOMPARE(wrecks, 2);
    }

    void belongsToTheSeed()
    {
        const ZrRoutePath path(MakePlan({{0, 0}, {0, 800}}));
        const auto a = ZrSimScatter::Along(path, 5, 50.0, 3);
        const auto b = ZrSimScatter::Along(path, 5, 50.0, 3);
        const auto c = ZrSimScatter::Along(path, 5, 50.0, 4);
        for (std::size_t i = 0; i < 5; ++i) {
            QCOMPARE(a[i].at.x, b[i].at.x);
            QCOMPARE(a[i].heading, b[i].heading);
            QVERIFY(a[i].at.x != c[i].at.x);
        }
    }

    void severalLegs()
    {
        const ZrRoutePath path(MakePlan({{0, 0}, {0, 300, 30}, {100, 300, 30}, {100, 0}}));
        QCOMPARE(ZrSimScatter::Along(path, 40, 25.0, 1).size(), std::size_t(40));
    }

    void none()
    {
        QVERIFY(ZrSimScatter::Along(ZrRoutePath(MakePlan({})), 5, 50.0, 1).empty());
        QVERIFY(ZrSimScatter::Along(ZrRoutePath(MakePlan({{0, 0}})), 5, 50.0, 1).empty());
        QVERIFY(ZrSimScatter::Along(ZrRoutePath(MakePlan({{0, 0}, {0, 50}})), 0, 50.0, 1).empty());
        QVERIFY(ZrSimScatter::Along(ZrRoutePath(MakePlan({{0, 0}, {0, 50}})), -2, 50.0, 1).empty());
    }
};

QTEST_APPLESS_MAIN(tst_ZrSimScatter)
#include "tst_ZrSimScatter.moc"
