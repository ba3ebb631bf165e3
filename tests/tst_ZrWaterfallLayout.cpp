// Which line and range of a waterfall lies at which pixel.

#include "ZrKit/map/ZrWaterfallLayout.h"
#include "ZrKit/map/ZrWaterfallMesh.h"
#include "ZrKit/sonar/ZrSlantRange.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrKit/sonar/ZrWaterfallMap.h"
#include "ZrSonarLine.h"

#include <QtTest/QtTest>

#include <cmath>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

ZrWaterfallLine LineOf(double range, double altitude = notANumber, double along = notANumber)
{
    ZrWaterfallLine line;
    line.range = {range, range};
    line.altitude = altitude;
    line.along = along;
    line.samples = {std::vector<u8>(8, 1), std::vector<u8>(8, 2)};
    return line;
}

ZrWaterfallView ViewOf(const QRect& rect)
{
    ZrWaterfallView view;
    view.rect = rect;
    return view;
}

bool IsNear(const QPointF& a, const QPointF& b, double within = 1e-6)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= within;
}

bool IsNear(double a, double b, double within = 1e-6)
{
    return std::fabs(a - b) <= within;
}

} // namespace

class tst_ZrWaterfallLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void columns_data();
    void columns();
    void knownPlaces_data();
    void knownPlaces();
    void slantRange();
    void thereAndBack_data();
    void thereAndBack();
    void asTheImage_data();
    void asTheImage();
    void outsideIsNothing();
    void missingLines();
    void endIsClamped_data();
    void endIsClamped();
    void pansWithTheFinger_data();
    void pansWithTheFinger();
    void panStopsAtTheEnds();
    void speedCorrected();
    void gapInTheTrack();
    void waysUnknown();
    void standingStill();
    void nothingToLay_data();
    void nothingToLay();
};

void tst_ZrWaterfallLayout::columns_data()
{
    QTest::addColumn<int>("sides");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("starboard");
    const int both = ZrWaterfallSettings::bothSides;
    QTest::newRow("even") << both << 100 << 50 << 50;
    QTest::newRow("odd") << both << 101 << 50 << 51;
    QTest::newRow("one pixel") << both << 1 << 0 << 1;
    QTest::newRow("port") << int(ZrWaterfallSettings::portOnly) << 100 << 100 << 0;
    QTest::newRow("starboard") << int(ZrWaterfallSettings::starboardOnly) << 101 << 0 << 101;
}

void tst_ZrWaterfallLayout::columns()
{
    QFETCH(int, sides);
    QFETCH(int, width);
    ZrWaterfallRing ring(4, 8);
    ring.Append(LineOf(60.0));
    ZrWaterfallView view = ViewOf(QRect(7, 0, width, 10));
    view.sides = static_cast<ZrWaterfallSettings::eSides>(sides);
    const ZrWaterfallLayout layout(ring, view);
    QTEST(layout.Columns(sidePort), "port");
    QTEST(layout.Columns(sideStarboard), "starboard");
    const int wider = std::max(layout.Columns(sidePort), layout.Columns(sideStarboard));
    QCOMPARE(layout.WiderColumns(), wider);
    QCOMPARE(layout.MetresPerPixel(), 60.0 / wider);
}

void tst_ZrWaterfallLayout::knownPlaces_data()
{
    QTest::addColumn<int>("newest");
    QTest::addColumn<double>("pixelsPerLine");
    QTest::addColumn<double>("end");
    QTest::addColumn<QPointF>("pixel"); // of a rectangle at 10, 20 with 100 by 50 pixels, 25 m to a side
    QTest::addColumn<double>("ping"); // of 30
    QTest::addColumn<int>("side");
    QTest::addColumn<double>("range");
    const int top = ZrWaterfallSettings::newestTop;
    const int bottom = ZrWaterfallSettings::newestBottom;
    const int port = sidePort;
    const int starboard = sideStarboard;
    QTest::newRow("newest") << top << 1.0 << notANumber << QPointF(60.0, 20.5) << 29.0 << starboard << 0.0;
    QTest::newRow("edge") << top << 1.0 << notANumber << QPointF(60.0, 20.0) << 29.5 << starboard << 0.0;
    QTest::newRow("starboard") << top << 1.0 << notANumber << QPointF(80.0, 25.5) << 24.0 << starboard
                               << 10.0;
    QTest::newRow("port") << top << 1.0 << notANumber << QPointF(30.0, 25.5) << 24.0 << port << 15.0;
    QTest::newRow("below") << bottom << 1.0 << notANumber << QPointF(30.0, 69.5) << 29.0 << port << 15.0;
    QTest::newRow("large") << top << 10.0 << notANumber << QPointF(80.0, 32.5) << 28.25 << starboard << 10.0;
    QTest::newRow("scrubbed") << top << 10.0 << 12.0 << QPointF(80.0, 25.0) << 11.0 << starboard << 10.0;
    QTest::newRow("between") << bottom << 10.0 << 12.5 << QPointF(80.0, 60.0) << 11.0 << starboard << 10.0;
}

void tst_ZrWaterfallLayout::knownPlaces()
{
    QFETCH(int, newest);
    QFETCH(QPointF, pixel);
    QFETCH(double, range);
    QFETCH(int, side);
    QFETCH(double, ping);
    QFETCH(double, pixelsPerLine);
    QFETCH(double, end);
    ZrWaterfallRing ring(40, 8);
    for (int i = 0; i < 30; ++i)
        ring.Append(LineOf(25.0));
    ZrWaterfallView view = ViewOf(QRect(10, 20, 100, 50));
    view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    view.pixelsPerLine = pixelsPerLine;
    view.end = end;
    const ZrWaterfallLayout layout(ring, view);
    const ZrWaterfallPoint point = layout.ToSonar(pixel);
    QVERIFY(point.IsValid());
    QVERIFY2(IsNear(point.ping, ping), qPrintable(QString::number(point.ping)));
    QCOMPARE(int(point.side), side);
    QVERIFY(IsNear(point.slantRange, range));
    QVERIFY(std::isnan(point.groundRange)); // without an altitude
    if (pixel.y() > 20.0) // the very edge belongs to the line that comes next
        QVERIFY(IsNear(layout.ToPixel(ping, point.side, range), pixel));
}

void tst_ZrWaterfallLayout::slantRange()
{
    ZrWaterfallRing ring(4, 8);
    ring.Append(LineOf(50.0, 30.0)); // 40 m over the ground
    ZrWaterfallView view = ViewOf(QRect(0, 0, 200, 10));
    const ZrWaterfallLayout slant(ring, view);
    QCOMPARE(slant.MetresPerPixel(), 0.5);
    ZrWaterfallPoint point = slant.ToSonar(QPointF(180.0, 0.5));
    QVERIFY(IsNear(point.slantRange, 40.0) && IsNear(point.groundRange, std::sqrt(700.0)));
    point = slant.ToSonar(QPointF(120.0, 0.5)); // in the water column
    QVERIFY(IsNear(point.slantRange, 10.0) && point.groundRange == 0.0);
    view.slantCorrected = true;
    const ZrWaterfallLayout ground(ring, view);
    QCOMPARE(ground.MetresPerPixel(), 0.4);
    QVERIFY(ground.IsSlantCorrected());
    point = ground.ToSonar(QPointF(0.0, 0.5));
    QVERIFY(point.side == sidePort && IsNear(point.slantRange, 50.0) && IsNear(point.groundRange, 40.0));
    point = ground.ToSonar(QPointF(100.0, 0.5));
    QVERIFY(point.side == sideStarboard && IsNear(point.slantRange, 30.0) && point.groundRange == 0.0);
    QVERIFY(IsNear(ground.ToPixel(0.0, sidePort, 50.0), QPointF(0.0, 0.5)));
    QVERIFY(IsNear(ground.ToPixel(0.0, sidePort, 3.0), QPointF(100.0, 0.5)));
}

void tst_ZrWaterfallLayout::thereAndBack_data()
{
    QTest::addColumn<bool>("slant");
    QTest::addColumn<bool>("speed");
    QTest::addColumn<int>("newest");
    for (const bool slant : {false, true}) {
        for (const bool speed : {false, true}) {
            for (const int newest : {0, 1})
                QTest::addRow("slant %d, speed %d, newest %d", slant, speed, newest)
                    << slant << speed << newest;
        }
    }
}

/// Every pixel that shows something is the place of what it shows.
void tst_ZrWaterfallLayout::thereAndBack()
{
    QFETCH(bool, slant);
    QFETCH(bool, speed);
    QFETCH(int, newest);
    std::mt19937 random(7); // NOLINT(cert-msc51-cpp): the same each time
    std::uniform_real_distribution<double> part(0.0, 1.0);
    ZrWaterfallRing ring(64, 8);
    double along = 0.0;
    for (int i = 0; i < 100; ++i) {
        ring.Append(LineOf(i % 3 == 0 ? 40.0 : 60.0, 5.0 + 10.0 * part(random), along));
        along += part(random);
    }
    ZrWaterfallView view = ViewOf(QRect(-5, 3, 211, 77));
    view.slantCorrected = slant;
    view.speedCorrected = speed;
    view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    view.pixelsPerLine = 1.7;
    view.end = 91.3;
    const ZrWaterfallLayout layout(ring, view);
    QCOMPARE(layout.IsSpeedCorrected(), speed);
    int valid = 0;
    for (double y = 3.25; y < 80.0; y += 0.5) {
        for (double x = -4.75; x < 206.0; x += 1.5) {
            const ZrWaterfallPoint point = layout.ToSonar(QPointF(x, y));
            if (!point.IsValid())
                continue;
            ++valid;
            QVERIFY(slant || point.slantRange >= 0.0);
            const QPointF back = layout.ToPixel(point.ping, point.side, point.slantRange);
            QVERIFY2(IsNear(back, QPointF(x, y), 1e-4), qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }
    QVERIFY(valid > 3000);
}

void tst_ZrWaterfallLayout::asTheImage_data()
{
    thereAndBack_data();
}

/// `ZrWaterfallMap` lays images out alike: the same echo at the same pixel.
void tst_ZrWaterfallLayout::asTheImage()
{
    QFETCH(bool, slant);
    QFETCH(bool, speed);
    QFETCH(int, newest);
    const SonarLine line = SonarLine::Steady(100, 0.5); // 30 m, 10 m above the seabed
    const std::vector<ZrSonarPing> table = line.Table();
    const ZrSonarTrack track(table, {});
    ZrWaterfallSettings settings;
    settings.slantCorrected = slant;
    settings.speedCorrected = speed;
    settings.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    settings.width = 201;
    settings.range = 25.25; // 0.25 m a pixel: the image is as high as the line is long
    const ZrWaterfallMap map(table, track, line.Bottom(), settings, 0, table.size() - 1);
    QVERIFY2(map.Error().isEmpty(), qPrintable(map.Error()));
    ZrWaterfallRing ring(200, 8);
    for (std::size_t i = 0; i < table.size(); ++i)
        ring.Append(LineOf(table[i].sides[0].slantRange, line.Bottom().Altitude(i), track.Distance(i)));
    ZrWaterfallView view = ViewOf(QRect(0, 0, map.Width(), map.Height()));
    view.slantCorrected = slant;
    view.speedCorrected = speed;
    view.newest = settings.newest;
    view.range = settings.range;
    const ZrWaterfallLayout layout(ring, view);
    QCOMPARE(layout.Columns(sidePort), map.Columns(sidePort));
    QCOMPARE(layout.Columns(sideStarboard), map.Columns(sideStarboard));
    QVERIFY(IsNear(layout.MetresPerPixel(), map.MetresPerPixel()));
    for (double y = 0.3; y < map.Height(); y += 2.9) {
        for (double x = 0.3; x < map.Width(); x += 3.1) {
            const ZrWaterfallPoint a = layout.ToSonar(QPointF(x, y));
            const ZrWaterfallPoint b = map.ToSonar(QPointF(x, y));
            QCOMPARE(a.IsValid(), b.IsValid());
            if (!a.IsValid())
                continue;
            QVERIFY2(IsNear(a.ping, b.ping, 0.01),
                qPrintable(QStringLiteral("%1 instead of %2").arg(a.ping).arg(b.ping)));
            QCOMPARE(int(a.side), int(b.side));
            QVERIFY(IsNear(a.slantRange, b.slantRange));
            QVERIFY(IsNear(a.groundRange, b.groundRange));
            QVERIFY(IsNear(layout.ToPixel(b.ping, b.side, b.slantRange),
                map.ToPixel(b.ping, b.side, b.slantRange), 0.02));
        }
    }
}

void tst_ZrWaterfallLayout::outsideIsNothing()
{
    ZrWaterfallRing ring(40, 8);
    for (int i = 0; i < 20; ++i)
        ring.Append(LineOf(20.0));
    ZrWaterfallLine deaf = LineOf(20.0);
    deaf.samples[sidePort].clear();
    ring.Append(deaf);
    ZrWaterfallView view = ViewOf(QRect(10, 10, 100, 50));
    view.range = 25.0;
    const ZrWaterfallLayout layout(ring, view);
    for (const QPointF& pixel : {QPointF(9.9, 20), QPointF(110.1, 20), QPointF(60, 9.9), QPointF(60, 60.1),
             QPointF(60, 31.1), QPointF(101, 20), QPointF(19, 20), QPointF(50, 10.5), QPointF(notANumber, 20),
             QPointF(60, notANumber), QPointF(infinite, infinite)})
        QVERIFY2(!layout.ToSonar(pixel).IsValid(),
            qPrintable(QStringLiteral("%1, %2").arg(pixel.x()).arg(pixel.y())));
    QVERIFY(layout.ToSonar(QPointF(60, 30.9)).IsValid());
    QVERIFY(layout.ToSonar(QPointF(99, 20)).IsValid());
    QVERIFY(layout.ToSonar(QPointF(61, 10.5)).IsValid());
    for (const double ping : {-1.0, 21.0, notANumber, infinite, -infinite, 1e300})
        QVERIFY(std::isnan(layout.ToPixel(ping, sidePort, 5.0).x()));
    view.sides = ZrWaterfallSettings::portOnly;
    QVERIFY(std::isnan(ZrWaterfallLayout(ring, view).ToPixel(5.0, sideStarboard, 5.0).x()));
    // A range that is not shown lies beside the view.
    QVERIFY(IsNear(layout.ToPixel(20.0, sideStarboard, 50.0), QPointF(160.0, 10.5)));
}

void tst_ZrWaterfallLayout::missingLines()
{
    ZrWaterfallRing ring(40, 8);
    ring.SetWindow(1000);
    for (const i64 line : {1010, 1011, 1015, 1020})
        ring.Put(line, LineOf(20.0));
    ZrWaterfallView view = ViewOf(QRect(0, 0, 100, 10));
    view.end = 1017.5;
    const ZrWaterfallLayout layout(ring, view);
    QCOMPARE(layout.Rows().size(), std::size_t(11));
    QCOMPARE(layout.Missing().size(), std::size_t(3));
    QCOMPARE(layout.Missing()[0].first, i64(1007));
    QCOMPARE(layout.Missing()[0].end, i64(1010));
    QCOMPARE(layout.Missing()[1].first, i64(1012));
    QCOMPARE(layout.Missing()[1].end, i64(1015));
    QCOMPARE(layout.Missing()[2].first, i64(1016));
    QCOMPARE(layout.Missing()[2].end, i64(1018));
    QVERIFY(!layout.ToSonar(QPointF(60, 1.0)).IsValid());
    QVERIFY(layout.ToSonar(QPointF(60, 2.0)).IsValid());
    QVERIFY(std::isnan(layout.ToPixel(1013.0, sidePort, 1.0).x()));
}

void tst_ZrWaterfallLayout::endIsClamped_data()
{
    QTest::addColumn<double>("end");
    QTest::addColumn<double>("used"); // of lines 10 to 20
    QTest::newRow("follows") << notANumber << 20.0;
    QTest::newRow("beyond") << 30.0 << 20.0;
    QTest::newRow("infinite") << infinite << 20.0;
    QTest::newRow("inside") << 12.25 << 12.25;
    QTest::newRow("gone") << 3.0 << 10.0;
    QTest::newRow("minus infinite") << -infinite << 10.0;
}

void tst_ZrWaterfallLayout::endIsClamped()
{
    QFETCH(double, end);
    ZrWaterfallRing ring(10, 8);
    for (int i = 0; i < 20; ++i)
        ring.Append(LineOf(20.0));
    ZrWaterfallView view = ViewOf(QRect(0, 0, 100, 10));
    view.end = end;
    QTEST(ZrWaterfallLayout(ring, view).End(), "used");
}

void tst_ZrWaterfallLayout::pansWithTheFinger_data()
{
    QTest::addColumn<bool>("speed");
    QTest::addColumn<int>("newest");
    QTest::addColumn<double>("pixels");
    for (const bool speed : {false, true}) {
        for (const int newest : {0, 1}) {
            for (const double pixels : {-17.0, -0.4, 0.0, 1.0, 29.0})
                QTest::addRow("speed %d, newest %d, %g", speed, newest, pixels) << speed << newest << pixels;
        }
    }
}

/// What was under the finger stays there.
void tst_ZrWaterfallLayout::pansWithTheFinger()
{
    QFETCH(bool, speed);
    QFETCH(int, newest);
    QFETCH(double, pixels);
    ZrWaterfallRing ring(400, 8);
    for (int i = 0; i < 400; ++i)
        ring.Append(LineOf(20.0, notANumber, 0.3 * i + 0.1 * (i % 5)));
    ZrWaterfallView view = ViewOf(QRect(0, 0, 100, 60));
    view.speedCorrected = speed;
    view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    view.pixelsPerLine = 0.8;
    view.end = 200.6;
    const ZrWaterfallLayout before(ring, view);
    const ZrWaterfallPoint held = before.ToSonar(QPointF(70.0, 30.0));
    QVERIFY(held.IsValid());
    view.end = before.EndAfterPan(pixels);
    const ZrWaterfallLayout after(ring, view);
    QVERIFY(IsNear(after.ToPixel(held.ping, held.side, held.slantRange), QPointF(70.0, 30.0 + pixels), 1e-4));
}

void tst_ZrWaterfallLayout::panStopsAtTheEnds()
{
    ZrWaterfallRing ring(10, 8);
    for (int i = 0; i < 20; ++i)
        ring.Append(LineOf(20.0));
    ZrWaterfallView view = ViewOf(QRect(0, 0, 100, 60));
    const ZrWaterfallLayout layout(ring, view);
    QCOMPARE(layout.EndAfterPan(500.0), 20.0);
    QCOMPARE(layout.EndAfterPan(-500.0), 10.0);
    QCOMPARE(layout.EndAfterPan(notANumber), 20.0);
    QCOMPARE(layout.EndAfterPan(-infinite), 20.0);
    view.end = 10.0; // nothing is in view, and back again
    QVERIFY(ZrWaterfallLayout(ring, view).Rows().empty());
    QCOMPARE(ZrWaterfallLayout(ring, view).EndAfterPan(4.0), 14.0);
    QCOMPARE(ZrWaterfallLayout(ring, view).EndAfterPan(-4.0), 10.0);
    QCOMPARE(ZrWaterfallLayout().EndAfterPan(3.0), 0.0);
}

/// Lines reach half-way to their neighbours: 20 m in 100 pixels, so five pixels are a metre.
void tst_ZrWaterfallLayout::speedCorrected()
{
    ZrWaterfallRing ring(10, 8);
    for (const double along : {0.0, 1.0, 2.0, 4.0, 5.0})
        ring.Append(LineOf(20.0, notANumber, along));
    ZrWaterfallView view = ViewOf(QRect(0, 0, 200, 100));
    view.speedCorrected = true;
    const ZrWaterfallLayout layout(ring, view);
    QVERIFY(layout.IsSpeedCorrected());
    const std::vector<ZrWaterfallLayout::Row>& rows = layout.Rows();
    QCOMPARE(rows.size(), std::size_t(5));
    const double edges[] = {0.0, 5.0, 12.5, 20.0, 25.0, 30.0}; // the ends have half a usual step
    for (std::size_t i = 0; i < 5; ++i) {
        QVERIFY(IsNear(rows[i].from, edges[i]));
        QVERIFY(IsNear(rows[i].to, edges[i + 1]));
    }
}

/// 100 m without a ping are five metres, empty.
void tst_ZrWaterfallLayout::gapInTheTrack()
{
    ZrWaterfallRing ring(10, 8);
    for (const double along : {0.0, 1.0, 2.0, 102.0, 103.0})
        ring.Append(LineOf(20.0, notANumber, along));
    ZrWaterfallView view = ViewOf(QRect(0, 0, 200, 100));
    view.speedCorrected = true;
    const ZrWaterfallLayout layout(ring, view);
    const std::vector<ZrWaterfallLayout::Row>& rows = layout.Rows();
    QVERIFY(IsNear(rows[1].to, 10.0));
    QVERIFY(IsNear(rows[2].from, 30.0));
    QVERIFY(layout.ToSonar(QPointF(100, 9.9)).IsValid());
    QVERIFY(!layout.ToSonar(QPointF(100, 10.1)).IsValid());
    QVERIFY(!layout.ToSonar(QPointF(100, 29.9)).IsValid());
    QVERIFY(layout.ToSonar(QPointF(100, 30.1)).IsValid());
    // A finger that moves the gap to the edge goes through it.
    QVERIFY(IsNear(layout.EndAfterPan(-20.0), 3.0));
}

void tst_ZrWaterfallLayout::waysUnknown()
{
    ZrWaterfallRing ring(10, 8);
    for (const double along : {0.0, 1.0, notANumber, 3.0, infinite, 5.0, 6.0})
        ring.Append(LineOf(20.0, notANumber, along));
    ZrWaterfallView view = ViewOf(QRect(0, 0, 200, 100));
    view.speedCorrected = true;
    const ZrWaterfallLayout layout(ring, view);
    for (const ZrWaterfallLayout::Row& row : layout.Rows())
        QVERIFY(IsNear(row.to - row.from, 5.0));
    QVERIFY(IsNear(layout.Rows().back().to, 35.0));
}

void tst_ZrWaterfallLayout::standingStill()
{
    ZrWaterfallRing ring(10, 8);
    for (int i = 0; i < 5; ++i)
        ring.Append(LineOf(20.0, notANumber, 7.0));
    ZrWaterfallView view = ViewOf(QRect(0, 0, 200, 100));
    view.speedCorrected = true;
    QVERIFY(!ZrWaterfallLayout(ring, view).IsSpeedCorrected()); // one row for each line
    ring.Append(LineOf(20.0, notANumber, 8.0));
    const ZrWaterfallLayout moved(ring, view);
    QVERIFY(moved.IsSpeedCorrected());
    QCOMPARE(moved.Rows().size(), std::size_t(6));
    QVERIFY(IsNear(moved.Rows()[3].to - moved.Rows()[3].from, 0.0)); // lines on one spot have no height
    QVERIFY(IsNear(moved.ToSonar(QPointF(100, 2.5)).ping, 5.0));
}

void tst_ZrWaterfallLayout::nothingToLay_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<int>("lines");
    QTest::addColumn<double>("range");
    QTest::newRow("no width") << QRect(0, 0, 0, 10) << 5 << 20.0;
    QTest::newRow("no height") << QRect(0, 0, 10, 0) << 5 << 20.0;
    QTest::newRow("negative") << QRect(0, 0, -10, -10) << 5 << 20.0;
    QTest::newRow("no lines") << QRect(0, 0, 10, 10) << 0 << 20.0;
    QTest::newRow("no range") << QRect(0, 0, 10, 10) << 5 << notANumber;
}

void tst_ZrWaterfallLayout::nothingToLay()
{
    QFETCH(QRect, rect);
    QFETCH(int, lines);
    QFETCH(double, range);
    ZrWaterfallRing ring(10, 8);
    for (int i = 0; i < lines; ++i)
        ring.Append(LineOf(range));
    ZrWaterfallView view = ViewOf(rect);
    const ZrWaterfallLayout layout(ring, view);
    QVERIFY(layout.Rows().empty());
    QVERIFY(layout.Missing().empty());
    QVERIFY(!layout.ToSonar(QPointF(0, 0)).IsValid());
    QVERIFY(std::isnan(layout.ToPixel(0, sidePort, 1.0).x()));
    QVERIFY(ZrWaterfallMesh(layout, {8, 10, false, false}).Draws().empty());
}

QTEST_GUILESS_MAIN(tst_ZrWaterfallLayout)
#include "tst_ZrWaterfallLayout.moc"
