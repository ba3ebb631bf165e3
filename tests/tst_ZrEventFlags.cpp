// Events as flags of a time line, and which of them is at a cursor.

#include "ZrKit/review/ZrEventFlags.h"

#include <QtTest/QtTest>

#include <limits>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

} // namespace

class tst_ZrEventFlags : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void inAnotherOrder();
    void oneTime();
    void none();
    void atTheCursor_data();
    void atTheCursor();
    void isAt();
};

/// The clock was set back in between, and one event has no time.
void tst_ZrEventFlags::inAnotherOrder()
{
    const ZrEventFlags flags({30.0, 40.0, unknown, 10.0, 20.0});
    QCOMPARE(flags.Times(), std::vector<double>({10.0, 20.0, 30.0, 40.0}));
    const int events[] = {3, 4, 0, 1};
    for (int flag = 0; flag < 4; ++flag) {
        QCOMPARE(flags.EventOf(flag), events[flag]);
        QCOMPARE(flags.FlagOf(events[flag]), flag);
    }
    QCOMPARE(flags.FlagOf(2), -1);
    for (const int outside : {-1, 5, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        QCOMPARE(flags.EventOf(outside), -1);
        QCOMPARE(flags.FlagOf(outside), -1);
    }
    QCOMPARE(flags.EventOf(4), -1);
}

void tst_ZrEventFlags::oneTime()
{
    const ZrEventFlags flags({5.0, 5.0, 5.0});
    for (int event = 0; event < 3; ++event)
        QCOMPARE(flags.FlagOf(event), event);
    QCOMPARE(flags.At(5.0, 0.0), 0);
}

void tst_ZrEventFlags::none()
{
    for (const ZrEventFlags& flags : {ZrEventFlags(), ZrEventFlags(std::vector<double>{unknown})}) {
        QVERIFY(flags.Times().empty());
        QCOMPARE(flags.At(0.0, inf), -1);
        QCOMPARE(flags.EventOf(0), -1);
        QCOMPARE(flags.FlagOf(0), -1);
        QVERIFY(!flags.IsAt(0, 0.0, inf));
    }
}

void tst_ZrEventFlags::atTheCursor_data()
{
    QTest::addColumn<double>("time");
    QTest::addColumn<double>("within");
    QTest::addColumn<int>("event");
    QTest::newRow("exactly") << 10.0 << 0.5 << 2;
    QTest::newRow("exactly, nothing else") << 10.0 << 0.0 << 2;
    QTest::newRow("a little before") << 9.5 << 0.5 << 2;
    QTest::newRow("a little behind") << 10.5 << 0.5 << 2;
    QTest::newRow("too far before") << 9.49 << 0.5 << -1;
    QTest::newRow("between two") << 20.15 << 0.5 << 1;
    QTest::newRow("nearer to the other") << 20.25 << 0.5 << 0;
    QTest::newRow("in the middle, the earlier one") << 15.0 << 5.0 << 2;
    QTest::newRow("nowhere") << unknown << 0.5 << -1;
    QTest::newRow("everywhere") << 0.0 << inf << 2;
    QTest::newRow("no width") << 10.0 << unknown << -1;
    QTest::newRow("negative width") << 10.0 << -1.0 << -1;
}

void tst_ZrEventFlags::atTheCursor()
{
    QFETCH(double, time);
    QFETCH(double, within);
    QFETCH(int, event);
    const ZrEventFlags flags({20.4, 20.0, 10.0, unknown});
    QCOMPARE(flags.At(time, within), event);
    QVERIFY(event < 0 || flags.IsAt(event, time, within));
}

void tst_ZrEventFlags::isAt()
{
    const ZrEventFlags flags({10.0, unknown});
    QVERIFY(flags.IsAt(0, 10.5, 0.5));
    QVERIFY(!flags.IsAt(0, 10.6, 0.5));
    QVERIFY(!flags.IsAt(0, unknown, 0.5));
    QVERIFY(!flags.IsAt(1, 10.0, 0.5));
    QVERIFY(!flags.IsAt(-1, 10.0, 0.5));
    QVERIFY(!flags.IsAt(2, 10.0, 0.5));
}

QTEST_APPLESS_MAIN(tst_ZrEventFlags)
#include "tst_ZrEventFlags.moc"
