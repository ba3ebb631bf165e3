#include "ZrKit/recording/ZrArrivalRate.h"

#include <QtTest>

#include <cmath>

class tst_ZrArrivalRate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void notKnownAtFirst();
    void meanOverTheWindow();
    void ceases();
    void counterBeginsAnew();
    void clockThatGoesBack();
};

void tst_ZrArrivalRate::notKnownAtFirst()
{
    ZrArrivalRate rate;
    QVERIFY(std::isnan(rate.PerSecond(0.0)));
    rate.Look(10.0, 5);
    QVERIFY(std::isnan(rate.PerSecond(10.4)));
    rate.Look(10.5, 10);
    QCOMPARE(rate.PerSecond(10.5), 10.0);
}

void tst_ZrArrivalRate::meanOverTheWindow()
{
    ZrArrivalRate rate;
    for (int i = 0; i <= 100; ++i) // a burst, and then ten a second
        rate.Look(0.1 * i, i < 50 ? 1000 : 1000 + static_cast<u64>(i - 50));
    QVERIFY2(std::fabs(rate.PerSecond(10.0) - 10.0) < 0.5, qPrintable(QString::number(rate.PerSecond(10.0))));
}

void tst_ZrArrivalRate::ceases()
{
    ZrArrivalRate rate;
    rate.Look(0.0, 0);
    rate.Look(1.0, 30);
    QCOMPARE(rate.PerSecond(1.0), 30.0);
    rate.Look(5.0, 30);
    QCOMPARE(rate.PerSecond(5.0), 0.0);
}

void tst_ZrArrivalRate::counterBeginsAnew()
{
    ZrArrivalRate rate;
    rate.Look(0.0, 1000);
    rate.Look(1.0, 2);
    QVERIFY(std::isnan(rate.PerSecond(1.0)));
    rate.Look(2.0, 6);
    QCOMPARE(rate.PerSecond(2.0), 4.0);
    rate.Clear();
    QVERIFY(std::isnan(rate.PerSecond(3.0)));
}

void tst_ZrArrivalRate::clockThatGoesBack()
{
    ZrArrivalRate rate;
    rate.Look(100.0, 0);
    rate.Look(1.0, 10);
    QVERIFY(std::isnan(rate.PerSecond(1.0)));
    rate.Look(2.0, 20);
    QCOMPARE(rate.PerSecond(2.0), 10.0);
}

QTEST_GUILESS_MAIN(tst_ZrArrivalRate)
#include "tst_ZrArrivalRate.moc"
