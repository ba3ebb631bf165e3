#include "ZrKit/sim/ZrSimRandom.h"

#include <QtTest>

#include <cmath>
#include <random>

class tst_ZrSimRandom : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void bitsOfTheStandard()
    {
        // The standard demands this of the 10,000th number of the default seed.
        ZrSimRandom random(5489);
        double last = 0.0;
        for (int i = 0; i < 10000; ++i)
            last = random.Uniform();
        QCOMPARE(last, (static_cast<double>(9981545732273789042U >> 11) + 0.5) / 9007199254740992.0);
    }

    void mixesLikeSplitmix()
    {
        QCOMPARE(ZrSimRandom::Mix(0), u64(0xE220A8397B1DCDAFU));
        QVERIFY(ZrSimRandom::Mix(1) != ZrSimRandom::Mix(2));
    }

    void distributions_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<double>("mean");
        QTest::addColumn<double>("variance");
        QTest::newRow("uniform") << 0 << 0.5 << 1.0 / 12.0;
        QTest::newRow("normal") << 1 << 0.0 << 1.0;
        QTest::newRow("exponential") << 2 << 1.0 << 1.0;
    }

    void distributions()
    {
        QFETCH(int, kind);
        QFETCH(double, mean);
        QFETCH(double, variance);
        ZrSimRandom random(7);
        constexpr int count = 200000;
        double sum = 0.0;
        double squares = 0.0;
        for (int i = 0; i < count; ++i) {
            const double value = kind == 0 ? random.Uniform()
                : kind == 1                ? random.Normal()
                                           : random.Exponential();
            QVERIFY(std::isfinite(value));
            sum += value;
            squares += value * value;
        }
        QVERIFY(std::fabs(sum / count - mean) < 0.01);
        QVERIFY(std::fabs(squares / count - mean * mean - variance) < 0.02);
    }

    void sameSeedSameNumbers()
    {
        ZrSimRandom a(3);
        ZrSimRandom b(3);
        ZrSimRandom c(4);
        bool differs = false;
        for (int i = 0; i < 100; ++i) {
            const double value = a.Normal();
            QCOMPARE(value, b.Normal());
            differs = differs || value != c.Normal();
        }
        QVERIFY(differs);
    }

    void lattice()
    {
        double sum = 0.0;
        for (int column = -50; column < 50; ++column) {
            for (int row = -50; row < 50; ++row) {
                const double value = ZrSimRandom::At(9, column, row);
                QVERIFY(value >= 0.0 && value < 1.0);
                sum += value;
            }
        }
        QVERIFY(std::fabs(sum / 10000.0 - 0.5) < 0.02);
        QCOMPARE(ZrSimRandom::At(9, -3, 4), ZrSimRandom::At(9, -3, 4));
        QVERIFY(ZrSimRandom::At(9, -3, 4) != ZrSimRandom::At(9, 4, -3));
        QVERIFY(ZrSimRandom::At(9, -3, 4) != ZrSimRandom::At(10, -3, 4));
        QVERIFY(ZrSimRandom::At(9, INT64_MIN, INT64_MAX) < 1.0);
    }
};

QTEST_APPLESS_MAIN(tst_ZrSimRandom)
#include "tst_ZrSimRandom.moc"
