// What texts of a map keep clear of: marks, names, lines.

#include "ZrKit/map/ZrMapObstacles.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double never = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

/// 400 by 300 pixels, a metre each, about 1000, 2000.
ZrMapView View()
{
    ZrMapView view;
    view.SetSize(400, 300);
    view.SetCentre({1000.0, 2000.0});
    view.SetScale(1.0);
    return view;
}

ZrMapMarker MarkerAt(const QPointF& pixel, double size)
{
    ZrMapMarker marker;
    marker.position = View().ToWorld(pixel);
    marker.size = size;
    return marker;
}

/// A mark at the left and a position, both in the way.
struct MarkAndTrack
{
    MarkAndTrack()
    {
        markers.SetMarkers({MarkerAt({100, 50}, 10.0)});
        track.m_track.Append(1000.0, 2000.0);
        obstacles.m_markers = {&markers};
        obstacles.m_tracks = {&track};
    }

    ZrMarkerLayer markers;
    ZrTrackLayer track;
    ZrMapObstacles obstacles;
};

} // namespace

class tst_ZrMapObstacles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boxes();
    void offsets();
    void nonsense();
    void marks();
    void lines_data();
    void lines();
    void widths();
    void turned();
    void longTrack();
    void lookTellsChanges();
    void hidden();
};

void tst_ZrMapObstacles::boxes()
{
    ZrMarkerLayer layer;
    layer.SetMarkers({MarkerAt({100, 50}, 10.0), MarkerAt({-5, 50}, 10.0), MarkerAt({-50, 50}, 10.0)});
    const std::vector<QRectF> found = ZrMapObstacles::Boxes(layer, View(), 2.0);
    // Of the third nothing is in view.
    QCOMPARE(found.size(), std::size_t(2));
    QCOMPARE(found[0], QRectF(80, 30, 40, 40));
    QCOMPARE(found[1], QRectF(-25, 30, 40, 40));
}

/// To the right and up; with the map for a marker that turns with it.
void tst_ZrMapObstacles::offsets()
{
    ZrMapView view = View();
    view.SetRotation(90.0);
    ZrMapMarker marker;
    marker.position = view.Centre();
    marker.size = 5.0;
    marker.offset = {20.0, 0.0};
    ZrMarkerLayer layer;
    layer.SetMarkers({marker});
    QCOMPARE(ZrMapObstacles::Boxes(layer, view, 1.0).front().center(), QPointF(220, 150));
    marker.isTurning = true;
    layer.SetMarkers({marker});
    const QPointF middle = ZrMapObstacles::Boxes(layer, view, 1.0).front().center();
    QVERIFY(std::hypot(middle.x() - 200.0, middle.y() - 130.0) < 1e-6);
}

void tst_ZrMapObstacles::nonsense()
{
    ZrMarkerLayer layer;
    for (const double bad : {never, infinite, -infinite, 1e300}) {
        std::vector<ZrMapMarker> markers(4, MarkerAt({100, 50}, 10.0));
        markers[0].position.setX(bad);
        markers[1].position.setY(bad);
        markers[2].offset.setX(bad);
        markers[3].offset.setY(bad);
        layer.SetMarkers(markers);
        QVERIFY(ZrMapObstacles::Boxes(layer, View(), 1.0).empty());
    }
    layer.SetMarkers({MarkerAt({100, 50}, never), MarkerAt({100, 50}, infinite)});
    QVERIFY(ZrMapObstacles::Boxes(layer, View(), 1.0).empty());
    ZrTrackLayer track;
    ZrMapObstacles obstacles;
    obstacles.m_tracks = {&track};
    obstacles.m_markers = {&layer};
    obstacles.Look(ZrMapView(), 1.0);
    QVERIFY(!obstacles.HasLine(QRectF(0, 0, 100, 100)));
    QVERIFY(!obstacles.HasMark(QRectF(0, 0, 100, 100)));
    track.m_track.Append(never, 0.0);
    track.m_track.Append(infinite, infinite);
    obstacles.Look(View(), 1.0);
    QVERIFY(!obstacles.HasLine(QRectF(0, 0, 400, 300)));
}

void tst_ZrMapObstacles::marks()
{
    ZrMarkerLayer layer;
    layer.SetMarkers({MarkerAt({100, 50}, 10.0)});
    ZrMapObstacles obstacles;
    obstacles.m_markers = {&layer};
    QVERIFY(!obstacles.HasMark(QRectF(90, 40, 20, 20))); // nobody has looked
    obstacles.Look(View(), 1.0);
    QVERIFY(obstacles.HasMark(QRectF(90, 40, 20, 20)));
    QVERIFY(obstacles.HasMark(QRectF(109, 59, 50, 10)));
    QVERIFY(!obstacles.HasMark(QRectF(110, 40, 50, 20)));
    QVERIFY(!obstacles.HasLine(QRectF(90, 40, 20, 20)));
}

void tst_ZrMapObstacles::lines_data()
{
    QTest::addColumn<QRectF>("box");
    QTest::addColumn<bool>("isHit");
    // The line: from 50, 250 up to 250, 50; then a gap; then a position alone at 350, 150.
    QTest::newRow("across the box") << QRectF(130, 130, 40, 40) << true;
    QTest::newRow("over the corner") << QRectF(160, 160, 40, 40) << false;
    QTest::newRow("beside it") << QRectF(152, 152, 20, 20) << true; // within half its width
    QTest::newRow("its end") << QRectF(40, 240, 12, 12) << true;
    QTest::newRow("beyond its end") << QRectF(255, 20, 20, 20) << false;
    QTest::newRow("in the gap") << QRectF(290, 90, 20, 20) << false;
    QTest::newRow("alone") << QRectF(345, 145, 10, 10) << true;
    QTest::newRow("not alone there") << QRectF(360, 145, 10, 10) << false;
    QTest::newRow("out of the view") << QRectF(-50, -50, 20, 20) << false;
}

void tst_ZrMapObstacles::lines()
{
    QFETCH(QRectF, box);
    ZrTrackLayer layer;
    layer.m_width = 4.0F;
    const auto add = [&layer](double x, double y) {
        const QPointF at = View().ToWorld({x, y});
        layer.m_track.Append(at.x(), at.y());
    };
    add(50, 250);
    add(250, 50);
    add(never, never);
    add(350, 150);
    ZrMapObstacles obstacles;
    obstacles.m_tracks = {&layer};
    obstacles.Look(View(), 1.0);
    QTEST(obstacles.HasLine(box), "isHit");
    QVERIFY(!obstacles.HasMark(box));
}

/// Half of it and the casing are beside the positions, more on a screen of smaller pixels.
void tst_ZrMapObstacles::widths()
{
    ZrTrackLayer layer;
    layer.m_width = 4.0F;
    for (const double x : {0.0, 400.0}) {
        const QPointF at = View().ToWorld({x, 100.0});
        layer.m_track.Append(at.x(), at.y());
    }
    ZrMapObstacles obstacles;
    obstacles.m_tracks = {&layer};
    obstacles.Look(View(), 1.0);
    QVERIFY(obstacles.HasLine(QRectF(50, 102.9, 100, 20)));
    QVERIFY(!obstacles.HasLine(QRectF(50, 103.1, 100, 20)));
    obstacles.Look(View(), 2.0);
    QVERIFY(obstacles.HasLine(QRectF(50, 105.9, 100, 20)));
    QVERIFY(!obstacles.HasLine(QRectF(50, 106.1, 100, 20)));
}

void tst_ZrMapObstacles::turned()
{
    ZrMapView view = View();
    view.SetRotation(30.0);
    ZrTrackLayer layer;
    for (const double x : {20.0, 380.0}) {
        const QPointF at = view.ToWorld({x, 100.0});
        layer.m_track.Append(at.x(), at.y());
    }
    ZrMapObstacles obstacles;
    obstacles.m_tracks = {&layer};
    obstacles.Look(view, 1.0);
    QVERIFY(obstacles.HasLine(QRectF(150, 90, 100, 20)));
    QVERIFY(!obstacles.HasLine(QRectF(150, 110, 100, 20)));
    QVERIFY(!obstacles.HasLine(QRectF(150, 70, 100, 20)));
}

/// A circle of many thousand positions: all of it is met, nothing inside of it.
void tst_ZrMapObstacles::longTrack()
{
    ZrTrackLayer layer;
    constexpr int count = 50000;
    for (int i = 0; i <= count; ++i) {
        const double angle = 2.0 * M_PI * i / count;
        layer.m_track.Append(1000.0 + 100.0 * std::cos(angle), 2000.0 + 100.0 * std::sin(angle));
    }
    ZrMapObstacles obstacles;
    obstacles.m_tracks = {&layer};
    obstacles.Look(View(), 1.0);
    for (int degrees = 0; degrees < 360; degrees += 5) {
        const double angle = degrees * M_PI / 180.0;
        const QPointF at(200.0 + 100.0 * std::cos(angle), 150.0 + 100.0 * std::sin(angle));
        QVERIFY2(obstacles.HasLine(QRectF(at.x() - 2.0, at.y() - 2.0, 4.0, 4.0)),
            qPrintable(QString::number(degrees)));
    }
    QVERIFY(!obstacles.HasLine(QRectF(140, 90, 120, 120)));
}

void tst_ZrMapObstacles::lookTellsChanges()
{
    MarkAndTrack map;
    QVERIFY(map.obstacles.Look(View(), 1.0));
    QVERIFY(!map.obstacles.Look(View(), 1.0));
    QVERIFY(map.obstacles.Look(View(), 2.0));
    ZrMapView other = View();
    other.Pan({5.0, 0.0});
    QVERIFY(map.obstacles.Look(other, 2.0));
    QVERIFY(!map.obstacles.Look(other, 2.0));
    map.markers.SetMarkers({MarkerAt({101, 50}, 10.0)});
    QVERIFY(map.obstacles.Look(other, 2.0));
    map.track.m_track.Append(1001.0, 2000.0);
    QVERIFY(map.obstacles.Look(other, 2.0));
    // As many positions as before, elsewhere.
    map.track.m_track.Clear();
    map.track.m_track.Append(1500.0, 2000.0);
    map.track.m_track.Append(1501.0, 2000.0);
    QVERIFY(map.obstacles.Look(other, 2.0));
    QVERIFY(!map.obstacles.Look(other, 2.0));
}

void tst_ZrMapObstacles::hidden()
{
    MarkAndTrack map;
    map.obstacles.Look(View(), 1.0);
    const QRectF all(0, 0, 400, 300);
    QVERIFY(map.obstacles.HasMark(all) && map.obstacles.HasLine(all));
    map.markers.m_isVisible = map.track.m_isVisible = false;
    QVERIFY(map.obstacles.Look(View(), 1.0));
    QVERIFY(!map.obstacles.HasMark(all) && !map.obstacles.HasLine(all));
}

QTEST_GUILESS_MAIN(tst_ZrMapObstacles)
#include "tst_ZrMapObstacles.moc"
