#include "ZrKit/sim/ZrSimTarget.h"

#include <QtTest>

#include <cmath>
#include <limits>

class tst_ZrSimTarget : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void block()
    {
        // Its length of 4 m lies east-west around 10, 20.
        const ZrSimTarget block{ZrSimTarget::Block, {10.0, 20.0}, 90.0, 4.0, 2.0, 1.5, 3.0};
        QCOMPARE(block.HeightAt(10.0, 20.0), 1.5);
        QCOMPARE(block.HeightAt(11.9, 20.9), 1.5);
        QCOMPARE(block.HeightAt(12.1, 20.0), 0.0);
        QCOMPARE(block.HeightAt(10.0, 21.1), 0.0);
        QCOMPARE(block.Reach(), std::hypot(2.0, 1.0));
        QCOMPARE(block.KindName(), QStringLiteral("block"));
    }

    void turned()
    {
        // North-east: the far corner of the length lies in both directions alike.
        const ZrSimTarget block{ZrSimTarget::Block, {0.0, 0.0}, 45.0, 10.0, 1.0, 1.0, 3.0};
        QCOMPARE(block.HeightAt(3.0, 3.0), 1.0);
        QCOMPARE(block.HeightAt(3.0, -3.0), 0.0);
    }

    void cylinder()
    {
        const ZrSimTarget cylinder{ZrSimTarget::Cylinder, {0.0, 0.0}, 0.0, 4.0, 1.0, 1.0, 3.0};
        QCOMPARE(cylinder.HeightAt(0.0, 1.0), 1.0);
        QCOMPARE(cylinder.HeightAt(0.5, 1.0), 0.5);
        QVERIFY(std::fabs(cylinder.HeightAt(0.3, 0.0) - 0.9) < 1e-12);
        QCOMPARE(cylinder.HeightAt(0.51, 0.0), 0.0);
    }

    void wreck()
    {
        const ZrSimTarget wreck{ZrSimTarget::Wreck, {0.0, 0.0}, 0.0, 20.0, 5.0, 2.0, 3.0};
        QCOMPARE(wreck.HeightAt(0.0, -6.0), 2.0); // deckhouse, abaft
        QVERIFY(wreck.HeightAt(0.0, 0.0) < 0.5); // hold
        QVERIFY(wreck.HeightAt(2.4, 0.0) > 1.0); // gunwale
        QCOMPARE(wreck.HeightAt(2.0, 9.5), 0.0); // beside the pointed bow
        QCOMPARE(wreck.HeightAt(0.0, 10.1), 0.0);
    }

    void validity_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("length");
        QTest::addColumn<double>("strength");
        QTest::addColumn<bool>("valid");
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("usual") << 0.0 << 2.0 << 1.0 << true;
        QTest::newRow("NaN place") << nan << 2.0 << 1.0 << false;
        QTest::newRow("nowhere") << inf << 2.0 << 1.0 << false;
        QTest::newRow("no length") << 0.0 << 0.0 << 1.0 << false;
        QTest::newRow("NaN length") << 0.0 << nan << 1.0 << false;
        QTest::newRow("endless") << 0.0 << 1001.0 << 1.0 << false;
        QTest::newRow("swallows sound") << 0.0 << 2.0 << -1.0 << false;
    }

    void validity()
    {
        QFETCH(double, x);
        QFETCH(double, length);
        QFETCH(double, strength);
        QFETCH(bool, valid);
        ZrSimTarget target;
        target.at.x = x;
        target.length = length;
        target.strength = strength;
        QCOMPARE(target.IsValid(), valid);
        QVERIFY(!(target.HeightAt(std::numeric_limits<double>::quiet_NaN(), 0.0) > 0.0));
    }
};

QTEST_APPLESS_MAIN(tst_ZrSimTarget)
#include "tst_ZrSimTarget.moc"
