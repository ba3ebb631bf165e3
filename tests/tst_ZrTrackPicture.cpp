// What a view shows of a track, and how far that is from the track itself.

#include "TrackField.h"
#include "ZrKit/map/ZrTrackCover.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <map>
#include <utility>

namespace {

using track::Field;
using track::TrackOf;
using track::ViewOf;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int vertexLimit = 50000;
constexpr ZrTrackPicture::Request request{vertexLimit, vertexLimit, 1.0};

std::vector<QPointF> Shape(int shape, std::size_t count)
{
    std::vector<QPointF> points;
    switch (shape) {
    case 0:
        return track::RandomWalk(count);
    case 1:
        return track::Lawnmower(count, 0.625, 0);
    case 2:
        return track::Lawnmower(count, 0.625, 0.5);
    case 3:
        return track::Lawnmower(count, 0.625, 0.5, true);
    case 4:
        return track::Resting(count, 0);
    case 5:
        return track::Resting(count, 0.3);
    default:
        // Lines as long as everything, each beside the last.
        for (std::size_t i = 0; i < count; ++i)
            points.emplace_back(
                512345.0 + (i % 2 ? 1000.0 : 0.0), 4812345.0 + 0.001 * static_cast<double>(i));
        return points;
    }
}

/// The track of a shape, made once.
const ZrTrackLod& TrackOfShape(int shape, std::size_t count)
{
    static std::map<std::pair<int, std::size_t>, ZrTrackLod> tracks;
    ZrTrackLod& track = tracks[{shape, count}];
    if (track.Count() == 0)
        track.Append(Shape(shape, count));
    return track;
}

} // namespace

class tst_ZrTrackPicture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void coverIsRightToItsRows_data();
    void coverIsRightToItsRows();
    void coverLimits();
    void nothingOfNothing();
    void pictureIsBounded_data();
    void pictureIsBounded();
    void pictureIsRight_data();
    void pictureIsRight();
    void pictureGrows();
    void pictureSuitsWhatItShows();
    void anotherTrack();
    void linesBehindTheCursor();
    void absurdViews();
};

void tst_ZrTrackPicture::coverIsRightToItsRows_data()
{
    QTest::addColumn<bool>("columns");
    QTest::newRow("rows") << false;
    QTest::newRow("columns") << true;
}

void tst_ZrTrackPicture::coverIsRightToItsRows()
{
    QFETCH(bool, columns);
    const ZrMapView view = ViewOf({0, 0}, 1, 0, {300, 200});
    std::mt19937 random(5);
    const auto any = [&](double size) { return size * (random() / 4294967296.0 - 0.5); };
    Field lines(view);
    ZrTrackCover cover(view.Bounds(), 2, columns);
    QCOMPARE(cover.RowHeight(), 2.0);
    for (int i = 0; i < 200; ++i) {
        // Some are outside, some go through.
        const QPointF a(any(500), any(400));
        const QPointF b = i % 3 ? a + QPointF(any(30), any(30)) : QPointF(any(500), any(400));
        lines.Add(a, b);
        cover.Add(a, b);
    }
    for (const int rows : {1, 2}) {
        for (const double gap : {0.0, 3.0}) {
            std::vector<ZrTrackCover::Run> runs;
            QVERIFY(cover.Runs(view.Bounds(), rows, gap, 1000000, runs));
            Field drawn(view);
            for (const ZrTrackCover::Run& run : runs)
                drawn.Add(run.from, run.to);
            const double limit = std::hypot(rows * 2.0, gap) / 2 + 0.5 + 0.36;
            QVERIFY2(
                lines.FarthestTo(drawn) <= rows + 0.36, qPrintable(QString::number(lines.FarthestTo(drawn))));
            QVERIFY2(drawn.FarthestTo(lines) <= limit, qPrintable(QString::number(drawn.FarthestTo(lines))));
        }
    }
}

void tst_ZrTrackPicture::coverLimits()
{
    ZrTrackCover cover(QRectF(0, 0, 100, 100), 1, false);
    for (int i = 0; i < 50; ++i)
        cover.Add(QPointF(2 * i, 10.5), QPointF(2 * i, 10.6));
    std::vector<ZrTrackCover::Run> runs;
    QVERIFY(!cover.Runs(QRectF(0, 0, 100, 100), 1, 0, 49, runs));
    runs.clear();
    QVERIFY(cover.Runs(QRectF(0, 0, 100, 100), 1, 0, 50, runs));
    runs.clear();
    QVERIFY(cover.Runs(QRectF(0, 0, 100, 100), 1, 2, 1, runs));
    QCOMPARE(runs.size(), std::size_t(1));
    runs.clear();
    QVERIFY(cover.Runs(QRectF(0, 0, 9.9, 100), 1, 0, 100, runs));
    QCOMPARE(runs.size(), std::size_t(5));
    runs.clear();
    QVERIFY(cover.Runs(QRectF(0, 20, 100, 100), 1, 0, 100, runs));
    QVERIFY(runs.empty());
    // A box far too large for its rows has higher ones.
    const ZrTrackCover large(QRectF(0, 0, 1e9, 10), 1, false);
    QVERIFY(large.RowHeight() >= 1e9 / ZrTrackCover::MaxRows);
    ZrTrackCover empty(QRectF(5, 5, 0, 0), 1, false);
    empty.Add(QPointF(5, 5), QPointF(5, 5));
    runs.clear();
    QVERIFY(empty.Runs(QRectF(5, 5, 0, 0), 1, 0, 10, runs));
    QCOMPARE(runs.size(), std::size_t(1));
}

void tst_ZrTrackPicture::nothingOfNothing()
{
    const ZrTrackLod track;
    ZrTrackPicture picture;
    QVERIFY(!picture.Suits(track, ViewOf({0, 0}, 1), request));
    picture.Build(track, ViewOf({0, 0}, 1), 10, request);
    QCOMPARE(picture.VertexCount(), 0);
    QCOMPARE(picture.End(), i64(0));
}

void tst_ZrTrackPicture::pictureIsBounded_data()
{
    QTest::addColumn<int>("shape");
    QTest::newRow("random walk") << 0;
    QTest::newRow("lawnmower") << 1;
    QTest::newRow("uneven lawnmower") << 2;
    QTest::newRow("uneven lawnmower to the north") << 3;
    QTest::newRow("at rest") << 4;
    QTest::newRow("at rest, uneven") << 5;
    QTest::newRow("to and fro") << 6;
}

void tst_ZrTrackPicture::pictureIsBounded()
{
    QFETCH(int, shape);
    const ZrTrackLod& track = TrackOfShape(shape, shape == 3 || shape > 4 ? 250000 : 1000000);
    const QPointF middle = track[track.Count() / 2];
    for (const double scale : {0.001, 0.05, 0.13, 0.25, 0.5, 1.0, 2.0, 8.0, 50.0, 50000.0}) {
        for (const double rotation : {0.0, 30.0}) {
            const int limit = rotation > 0.0 ? vertexLimit : vertexLimit / 3;
            ZrTrackPicture picture;
            picture.Build(track, ViewOf(middle, scale, rotation), track.Count(), {limit, limit, 1.0});
            QVERIFY(picture.VertexCount() > 0);
            QVERIFY2(picture.VertexCount() <= limit,
                qPrintable(QStringLiteral("%1 at %2 m, %3 degrees")
                               .arg(picture.VertexCount())
                               .arg(scale)
                               .arg(rotation)));
        }
    }
}

void tst_ZrTrackPicture::pictureIsRight_data()
{
    QTest::addColumn<int>("shape");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("rotation");
    QTest::addColumn<double>("drawnOff");
    QTest::addColumn<double>("leftOut");
    // Lines are right to half a pixel or one; a cover to its rows and gaps. The field adds a third.
    constexpr double half = 0.5 + 0.36;
    constexpr double one = 1.0 + 0.36;
    QTest::newRow("walk 0.004") << 0 << 0.004 << 0.0 << half << half;
    QTest::newRow("walk 0.02") << 0 << 0.02 << 30.0 << half << half;
    QTest::newRow("walk 0.5") << 0 << 0.5 << 30.0 << one << one;
    QTest::newRow("walk 1") << 0 << 1.0 << 0.0 << one << one;
    QTest::newRow("walk 2.2") << 0 << 2.2 << 77.0 << one << one;
    QTest::newRow("walk 6") << 0 << 6.0 << 0.0 << one << one;
    QTest::newRow("walk 60") << 0 << 60.0 << 0.0 << one << one;
    QTest::newRow("lawnmower 0.1") << 1 << 0.1 << 0.0 << half << half;
    QTest::newRow("lawnmower 1") << 1 << 1.0 << 45.0 << half << half;
    QTest::newRow("uneven 0.05") << 2 << 0.05 << 10.0 << half << half;
    QTest::newRow("uneven 0.5") << 2 << 0.5 << 0.0 << one << one;
    QTest::newRow("uneven 1") << 2 << 1.0 << 45.0 << one << one;
    QTest::newRow("uneven north 1") << 3 << 1.0 << 0.0 << one << one;
    QTest::newRow("rest 0.01") << 4 << 0.01 << 0.0 << one << one;
    QTest::newRow("rest uneven 0.01") << 5 << 0.01 << 0.0 << one << one;
    // The densest walk has gaps of up to 3 pixels closed: lines of 3 pixels fill them as well.
    QTest::newRow("walk 0.13, large") << 10 << 0.13 << 0.0 << 2.2 << one + 0.1;
}

void tst_ZrTrackPicture::pictureIsRight()
{
    QFETCH(int, shape);
    QFETCH(double, scale);
    QFETCH(double, rotation);
    QFETCH(double, drawnOff);
    QFETCH(double, leftOut);
    const ZrTrackLod& track = TrackOfShape(shape % 10, shape == 3 || shape == 5 ? 250000 : 1000000);
    const QSize size = shape < 10 ? QSize(640, 400) : QSize(1280, 800);
    const ZrMapView view = ViewOf(track[track.Count() / 3], scale, rotation, size);
    ZrTrackPicture picture;
    picture.Build(track, view, track.Count(), request);
    Field all(view);
    track::AddTrack(all, track);
    Field drawn(view);
    track::AddPicture(drawn, picture);
    const double off = drawn.FarthestTo(all);
    const double out = all.FarthestTo(drawn);
    const QString text = QStringLiteral("%1 vertices, rows of %2 pixels: %3 and %4")
                             .arg(picture.VertexCount())
                             .arg(picture.RowHeight() / scale)
                             .arg(off)
                             .arg(out);
    QVERIFY2(picture.VertexCount() <= vertexLimit, qPrintable(text));
    // A vehicle at rest is a dot, of which nothing is farther than a pixel from the place.
    QVERIFY2(off <= drawnOff && out <= leftOut, qPrintable(text));
}

void tst_ZrTrackPicture::pictureGrows()
{
    ZrTrackLod track = TrackOf(track::RandomWalk(5000));
    const ZrMapView view = ViewOf(track[4999], 10);
    const ZrTrackPicture::Request limits{2000, 2000, 1.0};
    ZrTrackPicture picture;
    picture.Build(track, view, track.Count(), limits);
    const int builds = picture.BuildCount();
    const int vertices = picture.VertexCount();
    QVERIFY(picture.Extend(track, track.Count()));
    QCOMPARE(picture.VertexCount(), vertices);
    track.Append(track[4999].x() + 3, track[4999].y());
    track.Append(notANumber, 0);
    track.Append(track[4999].x(), track[4999].y() + 5);
    track.Append(0, 0);
    QVERIFY(picture.Suits(track, view, limits));
    QVERIFY(picture.Extend(track, track.Count()));
    // A line, a lone position, and a line that leaves the view.
    QCOMPARE(picture.VertexCount(), vertices + 6);
    QCOMPARE(picture.End(), track.Count());
    QCOMPARE(picture.Lines().back().to, track.Count() - 1);
    // Far away nothing is drawn of it.
    track.Append(1000, 0);
    QVERIFY(picture.Extend(track, track.Count()));
    QCOMPARE(picture.VertexCount(), vertices + 6);
    QVERIFY(!picture.Extend(track, 10));
    track.Append(track::RandomWalk(5000));
    const i64 end = picture.End();
    QVERIFY(!picture.Extend(track, track.Count()));
    QCOMPARE(picture.VertexCount(), vertices + 6);
    QCOMPARE(picture.End(), end);
    QCOMPARE(picture.BuildCount(), builds);
}

void tst_ZrTrackPicture::pictureSuitsWhatItShows()
{
    const ZrTrackLod track = TrackOf(track::RandomWalk(5000));
    ZrMapView view = ViewOf(track[2500], 1);
    ZrTrackPicture picture;
    picture.Build(track, view, track.Count(), request);
    QVERIFY(picture.Suits(track, view, request));
    view.Pan({200, 0});
    QVERIFY(picture.Suits(track, view, request));
    view.Pan({200, 0});
    QVERIFY(!picture.Suits(track, view, request));
    view.Pan({-400, 0});
    view.SetScale(0.2);
    QVERIFY(!picture.Suits(track, view, request));
    view.SetScale(1.2);
    QVERIFY(picture.Suits(track, view, request));
    view.SetSize(0, 0);
    QVERIFY(!picture.Suits(track, view, request));
    picture.Build(track, view, track.Count(), request);
    QCOMPARE(picture.VertexCount(), 0);
    QVERIFY(!picture.Suits(track, ViewOf(track[2500], 1), request));
}

void tst_ZrTrackPicture::anotherTrack()
{
    ZrTrackLod track = TrackOf(track::RandomWalk(2000));
    const ZrMapView view = ViewOf(track[0], 1);
    ZrTrackPicture picture;
    picture.Build(track, view, 2000, request);
    QVERIFY(picture.Suits(track, view, request));
    track.Clear();
    QVERIFY(!picture.Suits(track, view, request));
    track.Append(track::RandomWalk(2000));
    QVERIFY(!picture.Suits(track, view, request));
}

void tst_ZrTrackPicture::linesBehindTheCursor()
{
    const ZrTrackLod track = TrackOf({{0, 0}, {10, 9}, {20, 0}, {30, 30}, {notANumber, 0}, {40, 0}, {50, 0}});
    ZrTrackPicture picture;
    picture.Build(track, ViewOf({20, 0}, 1), track.Count(), request);
    QCOMPARE(picture.Lines().size(), std::size_t(4));
    QCOMPARE(picture.Lines()[3].from, i64(5));
    const int expected[] = {0, 1, 2, 3, 3, 3, 4, 4};
    for (int i = 0; i < 8; ++i)
        QCOMPARE(picture.LineBehind(i), expected[i]);
}

void tst_ZrTrackPicture::absurdViews()
{
    const ZrTrackLod track = TrackOf(track::RandomWalk(100000));
    for (const QSize& size : {QSize(1, 1), QSize(1, 5000), QSize(16000, 3)}) {
        for (const double scale : {0.001, 1.0, 50000.0}) {
            ZrTrackPicture picture;
            picture.Build(track, ViewOf(track[500], scale, 12, size), track.Count(), {100, 100, 1.0});
            QVERIFY(picture.VertexCount() > 0);
            QVERIFY(picture.VertexCount() <= 100);
        }
    }
    ZrTrackPicture picture;
    picture.Build(track, ViewOf({-9e6, 3}, 1), track.Count(), {100, 100, 1.0});
    QCOMPARE(picture.VertexCount(), 0);
    picture.Build(track, ViewOf(track[0], 1), track.Count(), {-5, 0, 1.0});
    QVERIFY(picture.VertexCount() <= 2);
}

QTEST_APPLESS_MAIN(tst_ZrTrackPicture)
#include "tst_ZrTrackPicture.moc"
