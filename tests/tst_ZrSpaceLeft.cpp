// For how long the disk has room, by the best rate that is known.

#include "ZrKit/recording/ZrSpaceLeft.h"

#include <QtTest>

#include <cmath>
#include <limits>

class tst_ZrSpaceLeft : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void left_data();
    void left();
};

void tst_ZrSpaceLeft::left_data()
{
    constexpr double never = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    QTest::addColumn<qint64>("free");
    QTest::addColumn<double>("recording");
    QTest::addColumn<double>("source");
    QTest::addColumn<double>("last");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<int>("by");
    QTest::newRow("recording") << qint64(7000) << 10.0 << 20.0 << 30.0 << 600.0
                               << int(ZrSpaceLeft::byRecording);
    QTest::newRow("source") << qint64(7000) << -1.0 << 20.0 << 30.0 << 300.0 << int(ZrSpaceLeft::bySource);
    QTest::newRow("last") << qint64(7000) << -1.0 << -1.0 << 30.0 << 200.0 << int(ZrSpaceLeft::byLast);
    QTest::newRow("nothing") << qint64(7000) << -1.0 << -1.0 << -1.0 << -1.0 << int(ZrSpaceLeft::byNothing);
    QTest::newRow("no rates") << qint64(7000) << 0.0 << never << infinite << -1.0
                              << int(ZrSpaceLeft::byNothing);
    QTest::newRow("one that is none")
        << qint64(7000) << never << 0.0 << 30.0 << 200.0 << int(ZrSpaceLeft::byLast);
    QTest::newRow("space not known") << qint64(-1) << -1.0 << 20.0 << -1.0 << -1.0
                                     << int(ZrSpaceLeft::bySource);
    QTest::newRow("full") << qint64(1000) << 10.0 << -1.0 << -1.0 << 0.0 << int(ZrSpaceLeft::byRecording);
    QTest::newRow("too full") << qint64(999) << 10.0 << -1.0 << -1.0 << 0.0 << int(ZrSpaceLeft::byRecording);
    QTest::newRow("endless") << most << 1.0 << -1.0 << -1.0 << static_cast<double>(most) - 1000.0
                             << int(ZrSpaceLeft::byRecording);
}

void tst_ZrSpaceLeft::left()
{
    QFETCH(qint64, free);
    QFETCH(double, recording);
    QFETCH(double, source);
    QFETCH(double, last);
    ZrSpaceLeft::Rates rates;
    rates.recording = recording;
    rates.source = source;
    rates.last = last;
    const ZrSpaceLeft left = ZrSpaceLeft::Of(free, 1000, rates);
    QTEST(left.seconds, "seconds");
    QTEST(int(left.by), "by");
    QCOMPARE(left.IsKnown(), left.seconds >= 0.0);
}

QTEST_APPLESS_MAIN(tst_ZrSpaceLeft)
#include "tst_ZrSpaceLeft.moc"
