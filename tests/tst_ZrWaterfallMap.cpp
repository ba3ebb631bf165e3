// ZrWaterfallMap: the size of a side-scan image, and which echo lies where in it.

#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrKit/sonar/ZrWaterfallMap.h"
#include "ZrSonarLine.h"

#include <QtTest/QtTest>

#include <random>

class tst_ZrWaterfallMap : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void sizes_data();
    void sizes();
    void knownPlaces_data();
    void knownPlaces();
    void thereAndBack_data();
    void thereAndBack();
    void outsideIsNothing();
    void beyondTheRecordedRange();
    void sideNotShown();
    void waterColumnHasNoGround();
    void uncertainAltitudes();
    void noAltitudeAtAll();
    void gapInTheTrack();
    void standingStill();
    void noPositions();
    void onePing();
    void everyPingHasItsRow_data();
    void everyPingHasItsRow();
    void partOfALine();
    void longLinesAreCoarser();
    void wideSwathsAreCoarser();
    void errors_data();
    void errors();
};

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double endless = std::numeric_limits<double>::infinity();

ZrWaterfallMap MapOf(const SonarLine& line, const ZrWaterfallSettings& settings, std::size_t first = 0,
    std::size_t last = static_cast<std::size_t>(-1))
{
    const std::vector<ZrSonarPing> table = line.Table();
    return {table, ZrSonarTrack(table, {}), line.Bottom(), settings, first, std::min(last, table.size() - 1)};
}

bool IsNear(double a, double b, double within = 1e-6)
{
    return std::fabs(a - b) <= within;
}

} // namespace

void tst_ZrWaterfallMap::sizes_data()
{
    QTest::addColumn<int>("sides");
    QTest::addColumn<bool>("slant");
    QTest::addColumn<bool>("speed");
    QTest::addColumn<double>("range");
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("resolution");
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("right");
    QTest::addColumn<int>("height");
    QTest::addColumn<double>("metres");
    const int both = ZrWaterfallSettings::bothSides;
    // 100 pings half a metre apart, 30 m in 600 samples, 10 m above the seabed: 28.284 m on the ground.
    QTest::newRow("as the samples") << both << false << true << 0.0 << 0 << 0.0 << 600 << 600 << 1000 << 0.05;
    QTest::newRow("even width") << both << false << true << 0.0 << 200 << 0.0 << 100 << 100 << 167 << 0.3;
    QTest::newRow("odd width") << both << false << true << 0.0 << 201 << 0.0 << 100 << 101 << 168
                               << 30.0 / 101.0;
    QTest::newRow("resolution") << both << false << true << 0.0 << 0 << 0.5 << 60 << 60 << 100 << 0.5;
    QTest::newRow("coarse") << both << false << true << 0.0 << 0 << 500.0 << 1 << 1 << 1 << 500.0;
    QTest::newRow("finer than the samples")
        << both << false << true << 0.0 << 0 << 0.01 << 3000 << 3000 << 5000 << 0.01;
    QTest::newRow("port") << int(ZrWaterfallSettings::portOnly) << false << true << 0.0 << 0 << 0.5 << 60 << 0
                          << 100 << 0.5;
    QTest::newRow("starboard") << int(ZrWaterfallSettings::starboardOnly) << false << true << 0.0 << 150
                               << 0.0 << 0 << 150 << 250 << 0.2;
    QTest::newRow("rows are pings") << both << false << false << 0.0 << 0 << 0.5 << 60 << 60 << 100 << 0.5;
    QTest::newRow("near part") << both << false << true << 10.0 << 0 << 0.5 << 20 << 20 << 100 << 0.5;
    QTest::newRow("more than there is")
        << both << false << true << 60.0 << 240 << 0.0 << 120 << 120 << 100 << 0.5;
    QTest::newRow("ground") << both << true << true << 0.0 << 0 << 0.1 << 283 << 283 << 500 << 0.1;
    QTest::newRow("ground, rows are pings")
        << both << true << false << 0.0 << 566 << 0.0 << 283 << 283 << 100 << 0.0999445;
}

void tst_ZrWaterfallMap::sizes()
{
    QFETCH(int, sides);
    QFETCH(bool, slant);
    QFETCH(bool, speed);
    QFETCH(double, range);
    QFETCH(int, width);
    QFETCH(double, resolution);
    QFETCH(int, left);
    QFETCH(int, right);
    QFETCH(int, height);
    QFETCH(double, metres);
    ZrWaterfallSettings settings;
    settings.sides = static_cast<ZrWaterfallSettings::eSides>(sides);
    settings.slantCorrected = slant;
    settings.speedCorrected = speed;
    settings.range = range;
    settings.width = width;
    settings.resolution = resolution;
    const ZrWaterfallMap map = MapOf(SonarLine::Steady(100, 0.5), settings);
    QCOMPARE(map.Error(), QString());
    QCOMPARE(map.Columns(sidePort), left);
    QCOMPARE(map.Columns(sideStarboard), right);
    QCOMPARE(map.Width(), left + right);
    QCOMPARE(map.Height(), height);
    QVERIFY2(IsNear(map.MetresPerPixel(), metres), qPrintable(QString::number(map.MetresPerPixel(), 'g', 9)));
    QVERIFY(IsNear(map.MetresPerRow(), speed ? metres : 0.5, 1e-4));
    QCOMPARE(map.IsSpeedCorrected(), speed);
    QCOMPARE(map.IsSlantCorrected(), slant);
}

void tst_ZrWaterfallMap::knownPlaces_data()
{
    QTest::addColumn<bool>("slant");
    QTest::addColumn<bool>("speed");
    QTest::addColumn<bool>("newestTop");
    QTest::addColumn<double>("ping");
    QTest::addColumn<int>("side");
    QTest::addColumn<double>("slantRange");
    QTest::addColumn<QPointF>("pixel");
    // Half a metre for a pixel: pings are one row apart with speed correction too.
    const int port = sidePort;
    const int starboard = sideStarboard;
    QTest::newRow("oldest, middle") << false << true << true << 0.0 << starboard << 0.0 << QPointF(60, 99.5);
    QTest::newRow("newest, middle") << false << true << true << 99.0 << starboard << 0.0 << QPointF(60, 0.5);
    QTest::newRow("newest below") << false << true << false << 99.0 << port << 0.0 << QPointF(60, 99.5);
    QTest::newRow("port") << false << true << true << 10.0 << port << 20.0 << QPointF(20, 89.5);
    QTest::newRow("starboard") << false << true << true << 10.0 << starboard << 20.0 << QPointF(100, 89.5);
    QTest::newRow("between pings") << false << true << false << 10.25 << starboard << 5.0
                                   << QPointF(70, 10.75);
    QTest::newRow("rows are pings") << false << false << true << 10.25 << starboard << 5.0
                                    << QPointF(70, 89.25);
    // 10 m up: a slant range of 26 m is a ground range of 24 m.
    QTest::newRow("ground, port") << true << true << true << 10.0 << port << 26.0 << QPointF(57 - 48, 89.5);
    QTest::newRow("ground, starboard")
        << true << false << false << 10.0 << starboard << 26.0 << QPointF(57 + 48, 10.5);
    QTest::newRow("water column") << true << true << true << 10.0 << starboard << 6.0 << QPointF(57, 89.5);
}

void tst_ZrWaterfallMap::knownPlaces()
{
    QFETCH(bool, slant);
    QFETCH(bool, speed);
    QFETCH(bool, newestTop);
    QFETCH(double, ping);
    QFETCH(int, side);
    QFETCH(double, slantRange);
    QFETCH(QPointF, pixel);
    ZrWaterfallSettings settings;
    settings.slantCorrected = slant;
    settings.speedCorrected = speed;
    settings.newest = newestTop ? ZrWaterfallSettings::newestTop : ZrWaterfallSettings::newestBottom;
    settings.resolution = 0.5;
    const ZrWaterfallMap map = MapOf(SonarLine::Steady(100, 0.5), settings);
    const QPointF at = map.ToPixel(ping, static_cast<eSonarSide>(side), slantRange);
    QVERIFY2(IsNear(at.x(), pixel.x(), 1e-3) && IsNear(at.y(), pixel.y(), 2e-3),
        qPrintable(QStringLiteral("%1, %2").arg(at.x()).arg(at.y())));
}

void tst_ZrWaterfallMap::thereAndBack_data()
{
    QTest::addColumn<int>("sides");
    QTest::addColumn<bool>("newestTop");
    QTest::addColumn<bool>("slant");
    QTest::addColumn<bool>("speed");
    for (int bits = 0; bits < 24; ++bits) {
        QTest::addRow("%d", bits) << bits / 8 << bool(bits & 1) << bool(bits & 2) << bool(bits & 4);
    }
}

/// Over a line of uneven speed and altitude, with a gap.
void tst_ZrWaterfallMap::thereAndBack()
{
    QFETCH(int, sides);
    QFETCH(bool, newestTop);
    QFETCH(bool, slant);
    QFETCH(bool, speed);
    SonarLine line = SonarLine::Steady(120, 0.0);
    double north = 0.0;
    for (std::size_t i = 0; i < line.pings.size(); ++i) {
        north += i == 70 ? 50.0 : 0.2 + 0.3 * static_cast<double>(i % 30) / 30.0;
        line.pings[i].north = north;
        line.pings[i].altitude = 6.0 + 0.05 * static_cast<double>(i);
    }
    ZrWaterfallSettings settings;
    settings.sides = static_cast<ZrWaterfallSettings::eSides>(sides);
    settings.newest = newestTop ? ZrWaterfallSettings::newestTop : ZrWaterfallSettings::newestBottom;
    settings.slantCorrected = slant;
    settings.speedCorrected = speed;
    settings.width = 301;
    const ZrWaterfallMap map = MapOf(line, settings);
    QCOMPARE(map.Error(), QString());
    std::mt19937 random(11);
    std::uniform_real_distribution<double> x(0.0, map.Width());
    std::uniform_real_distribution<double> y(0.0, map.Height());
    int valid = 0;
    for (int i = 0; i < 2000; ++i) {
        const QPointF pixel(x(random), y(random));
        const ZrWaterfallPoint point = map.ToSonar(pixel);
        if (!point.IsValid())
            continue;
        ++valid;
        QVERIFY(point.ping >= -0.5 && point.ping <= 119.5);
        QVERIFY(point.slantRange >= 0.0 && point.groundRange >= 0.0);
        const QPointF back = map.ToPixel(point.ping, point.side, point.slantRange);
        // The last row may reach beyond the last ping by half of itself.
        const bool isEnd = point.ping <= -0.5 || point.ping >= 119.5;
        QVERIFY2(IsNear(back.x(), pixel.x()) && IsNear(back.y(), pixel.y(), isEnd ? 0.5 : 1e-6),
            qPrintable(
                QStringLiteral("%1, %2: %3, %4").arg(pixel.x()).arg(pixel.y()).arg(back.x()).arg(back.y())));
    }
    QVERIFY2(valid > 1500, qPrintable(QString::number(valid)));
}

void tst_ZrWaterfallMap::outsideIsNothing()
{
    ZrWaterfallSettings settings;
    settings.resolution = 0.5;
    const ZrWaterfallMap map = MapOf(SonarLine::Steady(100, 0.5), settings);
    QVERIFY(map.ToSonar({0.0, 0.0}).IsValid());
    QVERIFY(map.ToSonar({120.0, 100.0}).IsValid());
    for (const QPointF& pixel : {QPointF(-0.01, 5), QPointF(120.01, 5), QPointF(5, -0.01), QPointF(5, 100.01),
             QPointF(unknown, 5), QPointF(5, unknown), QPointF(endless, 5)})
        QVERIFY(!map.ToSonar(pixel).IsValid());
    for (const double ping : {-0.51, 99.51, unknown, endless, -endless})
        QVERIFY(std::isnan(map.ToPixel(ping, sidePort, 5.0).x()));
    QVERIFY(std::isnan(map.ToPixel(5.0, sidePort, unknown).x()));
}

void tst_ZrWaterfallMap::beyondTheRecordedRange()
{
    SonarLine line = SonarLine::Steady(100, 0.5);
    for (std::size_t i = 50; i < 100; ++i)
        line.pings[i].range = 20.0;
    line.pings[20].sides[sidePort] = false;
    ZrWaterfallSettings settings;
    settings.resolution = 0.5;
    settings.newest = ZrWaterfallSettings::newestBottom;
    const ZrWaterfallMap map = MapOf(line, settings);
    QVERIFY(map.ToSonar({100.0 - 60.0 + 0.0, 80.5}).IsValid());
    QVERIFY(map.ToSonar({60.0 + 39.9, 80.5}).IsValid());
    QVERIFY(!map.ToSonar({60.0 + 40.1, 80.5}).IsValid());
    QVERIFY(map.ToSonar({60.0 + 40.1, 30.5}).IsValid());
    QVERIFY(!map.ToSonar({50.0, 20.5}).IsValid());
    QVERIFY(map.ToSonar({70.0, 20.5}).IsValid());
    QCOMPARE(map.EndRange(20, sidePort), 0.0);
    QCOMPARE(map.EndRange(20, sideStarboard), 30.0);
    QCOMPARE(map.EndRange(60, sidePort), 20.0);
}

void tst_ZrWaterfallMap::sideNotShown()
{
    ZrWaterfallSettings settings;
    settings.sides = ZrWaterfallSettings::portOnly;
    settings.resolution = 0.5;
    const ZrWaterfallMap map = MapOf(SonarLine::Steady(100, 0.5), settings);
    QVERIFY(std::isnan(map.ToPixel(5.0, sideStarboard, 5.0).x()));
    QCOMPARE(map.ToPixel(5.0, sidePort, 5.0).x(), 50.0);
    QCOMPARE(map.ToSonar({60.0, 5.0}).side, sidePort);
    QCOMPARE(map.EndRange(5, sideStarboard), 0.0);
}

void tst_ZrWaterfallMap::waterColumnHasNoGround()
{
    ZrWaterfallSettings settings;
    settings.resolution = 0.5;
    const ZrWaterfallMap map = MapOf(SonarLine::Steady(100, 0.5), settings);
    QCOMPARE(map.ToSonar({60.0 + 10.0, 50.0}).slantRange, 5.0);
    QCOMPARE(map.ToSonar({60.0 + 10.0, 50.0}).groundRange, 0.0);
    QVERIFY(IsNear(map.ToSonar({60.0 + 52.0, 50.0}).groundRange, 24.0));
    QCOMPARE(map.BottomRange(7), 10.05);
    settings.slantCorrected = true;
    QCOMPARE(MapOf(SonarLine::Steady(100, 0.5), settings).BottomRange(7), std::sqrt(10.05 * 10.05 - 100.0));
}

void tst_ZrWaterfallMap::uncertainAltitudes()
{
    SonarLine line = SonarLine::Steady(10, 0.5);
    const double given[] = {unknown, unknown, 4.0, 5.0, unknown, unknown, 8.0, unknown, unknown, unknown};
    const double expected[] = {4.0, 4.0, 4.0, 5.0, 6.0, 7.0, 8.0, 8.0, 8.0, 8.0};
    for (std::size_t i = 0; i < 10; ++i)
        line.pings[i].altitude = given[i];
    ZrWaterfallSettings settings;
    settings.slantCorrected = true;
    const ZrWaterfallMap map = MapOf(line, settings);
    QVERIFY(map.IsSlantCorrected());
    for (std::size_t i = 0; i < 10; ++i)
        QCOMPARE(map.Altitude(static_cast<double>(i)), expected[i]);
    QCOMPARE(map.Altitude(2.5), 4.5);
    QCOMPARE(map.Altitude(-0.5), 4.0);
    QCOMPARE(map.Altitude(9.5), 8.0);
    QVERIFY(std::isnan(map.Altitude(unknown)));
}

void tst_ZrWaterfallMap::noAltitudeAtAll()
{
    SonarLine line = SonarLine::Steady(10, 0.5);
    for (SonarLine::Ping& ping : line.pings)
        ping.altitude = unknown;
    ZrWaterfallSettings settings;
    settings.slantCorrected = true;
    settings.resolution = 0.5;
    const ZrWaterfallMap map = MapOf(line, settings);
    QCOMPARE(map.Error(), QString());
    QVERIFY(!map.IsSlantCorrected());
    QCOMPARE(map.Width(), 120);
    const ZrWaterfallPoint point = map.ToSonar({70.0, 5.0});
    QCOMPARE(point.slantRange, 5.0);
    QVERIFY(std::isnan(point.groundRange));
    QVERIFY(std::isnan(map.BottomRange(3)));
}

/// Of the 100 m between two parts of a line 2.5 m are shown, empty but for half a step at either end.
void tst_ZrWaterfallMap::gapInTheTrack()
{
    SonarLine line = SonarLine::Steady(40, 0.5);
    for (std::size_t i = 20; i < 40; ++i)
        line.pings[i].north += 100.0;
    ZrWaterfallSettings settings;
    settings.resolution = 0.125;
    settings.newest = ZrWaterfallSettings::newestBottom;
    const ZrWaterfallMap map = MapOf(line, settings);
    QCOMPARE(map.Height(), (20 + 20) * 4 + (5 - 1) * 4);
    const double at = map.ToPixel(19.0, sidePort, 1.0).y();
    QVERIFY(IsNear(at, 19.5 * 4, 0.01));
    QVERIFY(IsNear(map.ToPixel(20.0, sidePort, 1.0).y(), at + 20.0, 0.01));
    const double x = map.Columns(sidePort) - 8.0;
    QVERIFY(IsNear(map.ToSonar({x, at + 1.9}).ping, 19.475, 0.01));
    QVERIFY(!map.ToSonar({x, at + 2.1}).IsValid());
    QVERIFY(!map.ToSonar({x, at + 17.9}).IsValid());
    QVERIFY(IsNear(map.ToSonar({x, at + 18.1}).ping, 19.525, 0.01));
    int gaps = 0;
    for (int y = 0; y < map.Height(); ++y)
        gaps += map.RowAt(y).isGap ? 1 : 0;
    QCOMPARE(gaps, 16);
    // Without speed correction every ping has its row, and there is no gap.
    settings.speedCorrected = false;
    const ZrWaterfallMap rows = MapOf(line, settings);
    QCOMPARE(rows.Height(), 40);
    for (int y = 0; y < rows.Height(); ++y)
        QVERIFY(!rows.RowAt(y).isGap);
}

/// A vehicle that hovers gathers many pings at one place: they share a row.
void tst_ZrWaterfallMap::standingStill()
{
    SonarLine line = SonarLine::Steady(40, 0.5);
    for (std::size_t i = 10; i < 40; ++i)
        line.pings[i].north = i < 30 ? 5.0 : 5.0 + 0.5 * static_cast<double>(i - 29);
    ZrWaterfallSettings settings;
    settings.resolution = 0.5;
    settings.newest = ZrWaterfallSettings::newestBottom;
    const ZrWaterfallMap map = MapOf(line, settings);
    QCOMPARE(map.Height(), 21);
    const auto y = static_cast<int>(map.ToPixel(15.0, sidePort, 1.0).y());
    const ZrWaterfallMap::Row row = map.RowAt(y);
    QVERIFY(row.isMean);
    QCOMPARE(row.first, std::size_t(10));
    QCOMPARE(row.last, std::size_t(29));
    QVERIFY(std::isfinite(map.ToPixel(12.3, sidePort, 1.0).y()));
}

void tst_ZrWaterfallMap::noPositions()
{
    SonarLine line = SonarLine::Steady(40, unknown);
    for (SonarLine::Ping& ping : line.pings)
        ping.north = unknown;
    const ZrWaterfallMap map = MapOf(line, {});
    QCOMPARE(map.Error(), QString());
    QVERIFY(!map.IsSpeedCorrected());
    QCOMPARE(map.Height(), 40);
    QVERIFY(std::isnan(map.MetresPerRow()));
    const ZrWaterfallMap still = MapOf(SonarLine::Steady(40, 0.0), {});
    QVERIFY(!still.IsSpeedCorrected());
    QCOMPARE(still.Height(), 40);
}

void tst_ZrWaterfallMap::onePing()
{
    const ZrWaterfallMap map = MapOf(SonarLine::Steady(1, 0.5), {});
    QCOMPARE(map.Error(), QString());
    QCOMPARE(map.Height(), 1);
    QCOMPARE(map.RowAt(0).first, std::size_t(0));
    QCOMPARE(map.RowAt(0).last, std::size_t(0));
    QVERIFY(IsNear(map.ToSonar({map.Width() / 2.0, 0.5}).ping, 0.0));
}

void tst_ZrWaterfallMap::everyPingHasItsRow_data()
{
    QTest::addColumn<double>("resolution");
    for (const double metres : {0.05, 0.3, 0.49, 0.51, 0.7, 0.99, 1.01, 3.0, 200.0})
        QTest::addRow("%g m", metres) << metres;
}

/// At no resolution a ping is lost: each has half a row at least, or is one of several in a mean.
void tst_ZrWaterfallMap::everyPingHasItsRow()
{
    QFETCH(double, resolution);
    ZrWaterfallSettings settings;
    settings.resolution = resolution;
    const SonarLine line = SonarLine::Steady(200, 0.5);
    const ZrWaterfallMap map = MapOf(line, settings);
    std::vector<double> most(200, 0.0);
    const auto take = [&](std::size_t ping, double share) {
        QVERIFY(ping < most.size());
        most[ping] = std::max(most[ping], share);
    };
    for (int y = 0; y < map.Height(); ++y) {
        const ZrWaterfallMap::Row row = map.RowAt(y);
        QVERIFY(!row.isGap);
        if (row.isMean) {
            for (std::size_t ping = row.first; ping <= row.last; ++ping)
                take(ping, 1.0);
            continue;
        }
        QVERIFY(row.lastShare >= 0.0 && row.lastShare < 1.0);
        take(row.first, 1.0 - row.lastShare);
        take(row.last, row.last == row.first ? 1.0 : row.lastShare);
    }
    // The very last ones may fall to a row that is less than half full, and so is not drawn.
    const auto end = static_cast<std::size_t>(200.0 - std::min(100.0, resolution / 0.5 / 2.0 + 1.0));
    for (std::size_t i = 0; i < end; ++i)
        QVERIFY2(most[i] >= 0.499, qPrintable(QStringLiteral("%1: %2").arg(i).arg(most[i])));
}

void tst_ZrWaterfallMap::partOfALine()
{
    ZrWaterfallSettings settings;
    settings.resolution = 0.5;
    const ZrWaterfallMap map = MapOf(SonarLine::Steady(100, 0.5), settings, 30, 49);
    QCOMPARE(map.First(), std::size_t(30));
    QCOMPARE(map.Last(), std::size_t(49));
    QCOMPARE(map.Height(), 20);
    QVERIFY(IsNear(map.ToSonar({60.0, 0.5}).ping, 49.0, 1e-3));
    QVERIFY(IsNear(map.ToSonar({60.0, 19.5}).ping, 30.0, 1e-3));
    QVERIFY(std::isnan(map.ToPixel(29.0, sidePort, 5.0).y()));
    QCOMPARE(map.Altitude(10.0), 10.0);
}

void tst_ZrWaterfallMap::longLinesAreCoarser()
{
    const SonarLine line = SonarLine::Steady(40000, 0.5); // 20 km
    const ZrWaterfallMap map = MapOf(line, {});
    QCOMPARE(map.Error(), QString());
    QVERIFY(map.Height() <= ZrWaterfallMap::MostRows && map.Height() > ZrWaterfallMap::MostRows - 5);
    QVERIFY(map.MetresPerPixel() > 0.6 && map.MetresPerPixel() < 0.62);
    ZrWaterfallSettings settings;
    settings.resolution = 0.5;
    QVERIFY(MapOf(line, settings).Error().contains(QStringLiteral("at most 30000 x 32767")));
    settings.speedCorrected = false;
    QVERIFY(MapOf(line, settings).Error().endsWith(QStringLiteral("choose fewer pings")));
}

void tst_ZrWaterfallMap::wideSwathsAreCoarser()
{
    SonarLine line = SonarLine::Steady(10, 0.5);
    line.samples = 4000000;
    ZrWaterfallMap map = MapOf(line, {});
    QCOMPARE(map.Error(), QString());
    QVERIFY(map.Width() <= ZrWaterfallMap::MostColumns && map.Width() > ZrWaterfallMap::MostColumns - 5);
    // 30,000 x 32,767 would be more than an image holds.
    line = SonarLine::Steady(30000, 0.001);
    line.samples = 40000;
    ZrWaterfallSettings settings;
    settings.speedCorrected = false;
    map = MapOf(line, settings);
    QCOMPARE(map.Error(), QString());
    QVERIFY(double(map.Width()) * map.Height() <= 536870911.0);
    QVERIFY(double(map.Width()) * map.Height() > 530000000.0);
    settings.width = 30000;
    QVERIFY(MapOf(line, settings).Error().contains(QStringLiteral("536870911 in all")));
}

void tst_ZrWaterfallMap::errors_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("resolution");
    QTest::addColumn<double>("range");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<QString>("error");
    const QString pings = QStringLiteral("There are no such pings");
    const QString negative = QStringLiteral("Width, resolution and range must not be negative");
    const QString wide
        = QStringLiteral("The image would be wider than 30000 pixels: choose a coarser resolution");
    QTest::newRow("first behind last") << 0 << 0.0 << 0.0 << 5 << 4 << pings;
    QTest::newRow("last beyond the end") << 0 << 0.0 << 0.0 << 0 << 10 << pings;
    QTest::newRow("width") << -1 << 0.0 << 0.0 << 0 << 9 << negative;
    QTest::newRow("resolution") << 0 << -0.1 << 0.0 << 0 << 9 << negative;
    QTest::newRow("resolution no number") << 0 << unknown << 0.0 << 0 << 9 << negative;
    QTest::newRow("resolution endless") << 0 << endless << 0.0 << 0 << 9 << negative;
    QTest::newRow("range") << 0 << 0.0 << -1.0 << 0 << 9 << negative;
    QTest::newRow("range no number") << 0 << 0.0 << unknown << 0 << 9 << negative;
    QTest::newRow("range endless") << 0 << 0.0 << endless << 0 << 9 << negative;
    QTest::newRow("one pixel for two sides")
        << 1 << 0.0 << 0.0 << 0 << 9 << QStringLiteral("Two sides need at least two pixels");
    QTest::newRow("wide") << 30001 << 0.0 << 0.0 << 0 << 9 << wide;
    QTest::newRow("absurdly wide") << 2147483647 << 0.0 << 0.0 << 0 << 9 << wide;
    QTest::newRow("fine") << 0 << 0.0019 << 0.0 << 0 << 9 << wide;
    QTest::newRow("absurdly fine") << 0 << 1e-300 << 0.0 << 0 << 9 << wide;
    QTest::newRow("range absurd") << 0 << 0.1 << 1e300 << 0 << 9 << wide;
}

void tst_ZrWaterfallMap::errors()
{
    QFETCH(int, width);
    QFETCH(double, resolution);
    QFETCH(double, range);
    QFETCH(int, first);
    QFETCH(int, last);
    ZrWaterfallSettings settings;
    settings.width = width;
    settings.resolution = resolution;
    settings.range = range;
    const std::vector<ZrSonarPing> table = SonarLine::Steady(10, 0.5).Table();
    const ZrWaterfallMap map(table, ZrSonarTrack(table, {}), ZrBottomLine(), settings,
        static_cast<std::size_t>(first), static_cast<std::size_t>(last));
    QTEST(map.Error(), "error");
    QCOMPARE(map.IsTooLarge(), map.Error().startsWith(QStringLiteral("The image would be ")));
    QCOMPARE(map.Width(), 0);
    QCOMPARE(map.Height(), 0);
    QVERIFY(!map.ToSonar({0.0, 0.0}).IsValid());
    QVERIFY(std::isnan(map.ToPixel(1.0, sidePort, 1.0).x()));
    QVERIFY(std::isnan(map.Altitude(1.0)));
}

QTEST_GUILESS_MAIN(tst_ZrWaterfallMap)
#include "tst_ZrWaterfallMap.moc"
