// Places along a path.

#include "PathChecks.h"
#include "ZrKit/planning/ZrRoutePath.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double pi = 3.141592653589793;
const double NaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

class tst_ZrRouteSamples : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void samples_data();
    void samples();
    void samplesOfAnArc();
    void samplesWithGap();
    void absurdSteps();
    void placeAtLength();
};

void tst_ZrRouteSamples::samples_data()
{
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("count");
    // 90 m, an arc of 15.7 m and 90 m: as many equal parts as are needed, and the first place.
    QTest::newRow("10 m") << 10.0 << 9 + 2 + 9 + 1;
    QTest::newRow("40 m") << 40.0 << 3 + 1 + 3 + 1;
    QTest::newRow("1 m") << 1.0 << 90 + 16 + 90 + 1;
    QTest::newRow("longer than all") << 1e9 << 4;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 4;
    QTest::newRow("zero") << 0.0 << 4;
    QTest::newRow("negative") << -5.0 << 4;
    QTest::newRow("not a number") << NaN << 4;
}

void tst_ZrRouteSamples::samples()
{
    QFETCH(double, step);
    QFETCH(int, count);
    ZrWpts route;
    // A little less than 90 m between turn and ends, so that rounding does not add a part.
    Lay(route, {{0, 0.001}, {0, 100}, {99.999, 100}}, 10.0);
    const ZrRoutePath path(route);
    const std::vector<ZrPathSample> samples = path.Sample(step);
    QCOMPARE(static_cast<int>(samples.size()), count);
    QVERIFY(Near(samples.front().position.lat, route.GetHead()->lat, 1e-9));
    QVERIFY(Near(samples.back().position.lng, route.GetTail()->lng, 1e-9));
    QCOMPARE(samples.front().q, 0.0);
    QVERIFY(Near(samples.back().q, path.Length(), 1e-9));
}

void tst_ZrRouteSamples::samplesOfAnArc()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}}, 30.0);
    const ZrRoutePath path(route);
    const ZrRouteTurn& turn = path.Turns()[1];
    int onArc = 0;
    for (const ZrPathSample& sample : path.Sample(1.0)) {
        if (sample.q < 70.0 || sample.q > 70.0 + 15.0 * pi)
            continue;
        ++onArc;
        QVERIFY(Near(Apart(sample.local, turn.centre), 30.0, 1e-5));
        QCOMPARE(sample.leg, 0);
        const ZrLocalPoint there = path.Frame().ToLocal(sample.position);
        QVERIFY(Apart(there, sample.local) < 1e-5);
    }
    QVERIFY(onArc >= 47);
}

void tst_ZrRouteSamples::samplesWithGap()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}, {0, 300}, {0, 400}});
    WptAt(route, 2)->lng = NaN;
    const auto samples = ZrRoutePath(route).Sample(60.0);
    QCOMPARE(samples.size(), std::size_t{7});
    for (std::size_t i = 0; i < 7; ++i)
        QCOMPARE(samples[i].position.IsValid(), i != 3);
    QCOMPARE(samples[3].leg, 1);
    QVERIFY(Near(samples[4].position.lat, WptAt(route, 3)->lat, 1e-9));
    // None before and behind.
    WptAt(route, 2)->lng = WptAt(route, 1)->lng;
    WptAt(route, 0)->lng = WptAt(route, 4)->lng = NaN;
    QCOMPARE(ZrRoutePath(route).Sample(1e6).size(), std::size_t{3});
}

void tst_ZrRouteSamples::absurdSteps()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}}, 10.0);
    for (const double step : {1e-12, std::numeric_limits<double>::denorm_min()}) {
        const std::size_t size = ZrRoutePath(route).Sample(step).size();
        QVERIFY(size > 900000 && size <= ZrRoutePath::MaxSamples + 10);
    }
}

void tst_ZrRouteSamples::placeAtLength()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}}, 10.0);
    const ZrRoutePath path(route);
    const auto isAt = [&](double q, double east, double north) {
        const ZrLocalPoint place = ZrLocalFrame(testPlace).ToLocal(path.At(q));
        return Apart(place, {east, north}) < 1e-4;
    };
    QVERIFY(isAt(0.0, 0, 0));
    QVERIFY(isAt(45.0, 0, 45));
    QVERIFY(isAt(90.0, 0, 90));
    const double half = 10.0 - 10.0 * std::sqrt(0.5);
    QVERIFY(isAt(90.0 + 2.5 * pi, half, 100 - half));
    QVERIFY(isAt(90.0 + 5.0 * pi + 30.0, 40, 100));
    QVERIFY(isAt(path.Length(), 100, 100));
    QVERIFY(isAt(-3.0, 0, 0));
    QVERIFY(isAt(1e9, 100, 100));
    QVERIFY(isAt(std::numeric_limits<double>::infinity(), 100, 100));
    QVERIFY(!path.At(NaN).IsValid());
}

QTEST_GUILESS_MAIN(tst_ZrRouteSamples)
#include "tst_ZrRouteSamples.moc"
