// Levels of a track, and what of it is in view.

#include "TrackField.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

using track::TrackOf;
using Segments = std::vector<ZrTrackLod::Segment>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();
const QRectF everywhere(-1e9, -1e9, 2e9, 2e9);

Segments Collected(const ZrTrackLod& track, double tolerance, const QRectF& box = everywhere)
{
    Segments lines;
    track.ForEach(box, ZrTrackLod::LevelOf(tolerance), track.Count(), [&](const ZrTrackLod::Segment& line) {
        lines.push_back(line);
        return true;
    });
    return lines;
}

QString Text(const Segments& lines)
{
    QStringList texts;
    for (const ZrTrackLod::Segment& line : lines)
        texts << QStringLiteral("%1-%2").arg(line.from).arg(line.to);
    return texts.join(QLatin1Char(' '));
}

double Distance(const QPointF& p, const QPointF& a, const QPointF& b)
{
    const QPointF d = b - a;
    const double length2 = QPointF::dotProduct(d, d);
    const double t = length2 > 0 ? std::clamp(QPointF::dotProduct(p - a, d) / length2, 0.0, 1.0) : 0.0;
    const QPointF off = p - a - t * d;
    return std::hypot(off.x(), off.y());
}

} // namespace

class tst_ZrTrackLod : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tolerances();
    void startsEmpty();
    void breaks();
    void partsAreJoined();
    void levelsKeepTheirTolerance_data();
    void levelsKeepTheirTolerance();
    void endStaysAsItIs();
    void restingTakesFewLines();
    void selectsWhatIsInView();
    void endCutsTheLine();
    void cleared();
    void replaced();
    void nearest();
};

void tst_ZrTrackLod::tolerances()
{
    QCOMPARE(ZrTrackLod::Tolerance(0), 0.0);
    QCOMPARE(ZrTrackLod::Tolerance(1), 0.0001);
    QCOMPARE(ZrTrackLod::Tolerance(3), 0.0002);
    QVERIFY(ZrTrackLod::Tolerance(ZrTrackLod::LevelCount - 1) >= ZrMapView::FarthestScale);
    for (int level = 0; level < ZrTrackLod::LevelCount; ++level) {
        const double tolerance = ZrTrackLod::Tolerance(level);
        QCOMPARE(ZrTrackLod::LevelOf(tolerance), level);
        QCOMPARE(ZrTrackLod::LevelOf(tolerance * 1.2), level);
    }
    for (const double small : {0.0, -1.0, 0.00009, notANumber})
        QCOMPARE(ZrTrackLod::LevelOf(small), 0);
    QCOMPARE(ZrTrackLod::LevelOf(infinite), ZrTrackLod::LevelCount - 1);
}

void tst_ZrTrackLod::startsEmpty()
{
    const ZrTrackLod track;
    QCOMPARE(track.Count(), i64(0));
    QVERIFY(track.Bounds().isNull());
    QVERIFY(track.IsBreak(0));
    QVERIFY(track.IsBreak(-1));
    QVERIFY(Collected(track, 0).empty());
    QVERIFY(track.Select(everywhere).empty());
}

void tst_ZrTrackLod::breaks()
{
    const ZrTrackLod track = TrackOf({{notANumber, 0}, {0, 0}, {1, 0}, {2, 1}, {0, infinite}, {5, 5},
        {-infinite, notANumber}, {1e300, 0}, {7, 7}, {8, 9}, {0, 1.1e9}});
    QCOMPARE(track.Count(), i64(11));
    QCOMPARE(Text(Collected(track, 0)), QStringLiteral("1-2 2-3 5-5 8-9"));
    QCOMPARE(track.Bounds(), QRectF(0, 0, 8, 9));
    for (const i64 index : {0, 4, 6, 7, 10, 11})
        QVERIFY(track.IsBreak(index));
    QVERIFY(!track.IsBreak(5));
    QCOMPARE(track[3], QPointF(2, 1));
    // What is left out between breaks is left out in each part alone.
    const ZrTrackLod lines
        = TrackOf({{0, 0}, {1, 0}, {2, 0}, {notANumber, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}, {notANumber, 0}});
    QCOMPARE(Text(Collected(lines, 0)), QStringLiteral("0-2 4-7"));
}

void tst_ZrTrackLod::partsAreJoined()
{
    for (const i64 count : {ZrTrackLod::SubTrack, ZrTrackLod::SubTrack + 1, ZrTrackLod::SubTrack + 2,
             3 * ZrTrackLod::SubTrack + 7}) {
        const ZrTrackLod track = TrackOf(track::RandomWalk(static_cast<std::size_t>(count)));
        for (const double tolerance : {0.0, 1.0, 20.0, 1e6}) {
            const Segments lines = Collected(track, tolerance);
            QCOMPARE(lines.front().from, i64(0));
            QCOMPARE(lines.back().to, count - 1);
            for (std::size_t i = 1; i < lines.size(); ++i)
                QCOMPARE(lines[i].from, lines[i - 1].to);
        }
        QCOMPARE(track.Select(everywhere).size(), std::size_t(1));
    }
}

void tst_ZrTrackLod::levelsKeepTheirTolerance_data()
{
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<int>("most");
    QTest::newRow("0.1 m") << 0.1 << 20000;
    QTest::newRow("1 m") << 1.0 << 12000;
    QTest::newRow("10 m") << 10.0 << 600;
    QTest::newRow("1 km") << 1000.0 << 80;
}

void tst_ZrTrackLod::levelsKeepTheirTolerance()
{
    QFETCH(double, tolerance);
    QFETCH(int, most);
    const ZrTrackLod track = TrackOf(track::RandomWalk(20001));
    const Segments lines = Collected(track, tolerance);
    QVERIFY2(static_cast<int>(lines.size()) <= most, qPrintable(QString::number(lines.size())));
    double farthest = 0;
    for (const ZrTrackLod::Segment& line : lines) {
        for (i64 i = line.from + 1; i < line.to; ++i)
            farthest = std::max(farthest, Distance(track[i], track[line.from], track[line.to]));
    }
    QVERIFY2(farthest <= tolerance, qPrintable(QString::number(farthest)));
}

void tst_ZrTrackLod::endStaysAsItIs()
{
    ZrTrackLod track;
    for (int i = 0; i <= ZrTrackLod::SubTrack; ++i)
        track.Append(i, 0.001 * (i % 2));
    QCOMPARE(Collected(track, 1).size(), std::size_t(ZrTrackLod::SubTrack));
    // The next position completes the sub-track.
    track.Append(1000, 0);
    QCOMPARE(Text(Collected(track, 1)), QStringLiteral("0-512 512-513"));
}

void tst_ZrTrackLod::restingTakesFewLines()
{
    const ZrTrackLod track = TrackOf(track::Resting(ZrTrackLod::SubTrack * 100 + 1, 0));
    for (const double tolerance : {0.0, 0.0005, 1.0})
        QCOMPARE(Collected(track, tolerance).size(), std::size_t(99 + ZrTrackLod::SubTrack));
}

void tst_ZrTrackLod::selectsWhatIsInView()
{
    // A square of 4 km with a metre between the positions.
    std::vector<QPointF> points;
    for (int side = 0; side < 4; ++side) {
        const QPointF corners[] = {{0, 0}, {4096, 0}, {4096, 4096}, {0, 4096}, {0, 0}};
        for (int i = 0; i < 4096; ++i)
            points.push_back(corners[side] + (corners[side + 1] - corners[side]) / 4096 * i);
    }
    const ZrTrackLod track = TrackOf(points);
    const auto ranges = track.Select(QRectF(-10, -10, 600, 600));
    QCOMPARE(ranges.size(), std::size_t(2));
    QCOMPARE(ranges[0].first, i64(0));
    QCOMPARE(ranges[0].last, i64(1024));
    QCOMPARE(ranges[1].first, i64(15360));
    QCOMPARE(ranges[1].last, i64(16383));
    QVERIFY(track.Select(QRectF(1000, 1000, 2000, 2000)).empty());
    // The box of a line has no height.
    QCOMPARE(track.Select(QRectF(2000, 0, 1, 0)).size(), std::size_t(1));
    const Segments lines = Collected(track, 0, QRectF(100.5, -1, 2, 2));
    QCOMPARE(Text(lines), QStringLiteral("0-512"));
}

void tst_ZrTrackLod::endCutsTheLine()
{
    const ZrTrackLod track = TrackOf(track::RandomWalk(2000));
    for (const i64 end : {i64(1), i64(2), i64(513), i64(514), i64(700), i64(2000), i64(5000)}) {
        Segments lines;
        track.ForEach(everywhere, ZrTrackLod::LevelOf(5), end, [&](const ZrTrackLod::Segment& line) {
            lines.push_back(line);
            return true;
        });
        QCOMPARE(lines.back().to, std::min(end, track.Count()) - 1);
        for (std::size_t i = 1; i < lines.size(); ++i)
            QCOMPARE(lines[i].from, lines[i - 1].to);
    }
    QVERIFY(track.ForEach(everywhere, 0, 0, [](const ZrTrackLod::Segment&) { return false; }));
    QVERIFY(!track.ForEach(everywhere, 0, 2, [](const ZrTrackLod::Segment&) { return false; }));
}

void tst_ZrTrackLod::cleared()
{
    ZrTrackLod track = TrackOf(track::RandomWalk(2000));
    track.Clear();
    QCOMPARE(track.Count(), i64(0));
    QCOMPARE(track.ClearCount(), 1);
    QVERIFY(track.Bounds().isNull());
    track.Append(3, 4);
    QCOMPARE(Text(Collected(track, 0)), QStringLiteral("0-0"));
    track.Clear();
    QCOMPARE(track.ClearCount(), 2);
    // One that was made elsewhere counts as cleared and filled anew, whatever it counted itself.
    ZrTrackLod other;
    for (int i = 0; i < 2000; ++i)
        other.Append(i, 0.5 * i);
    track.Replace(other);
    QCOMPARE(track.ClearCount(), 3);
    QCOMPARE(track.Count(), i64(2000));
    QCOMPARE(track.Bounds(), other.Bounds());
    QCOMPARE(track[1999], other[1999]);
    track.Append(2000.0, 0.0);
    QCOMPARE(track.Count(), i64(2001));
}

/// A picture made of the one before is seen to be old by the count alone.
void tst_ZrTrackLod::replaced()
{
    ZrTrackLod track = TrackOf({{0, 0}, {10, 0}});
    track.Clear();
    const int count = track.ClearCount();
    track.Replace(TrackOf({{5, 5}, {6, 6}, {7, 7}}));
    QCOMPARE(track.Count(), i64(3));
    QVERIFY(track.ClearCount() > count);
    track.Append(8, 8);
    QCOMPARE(track.Count(), i64(4));
    QCOMPARE(track.Bounds(), QRectF(5, 5, 3, 3));
}

void tst_ZrTrackLod::nearest()
{
    QCOMPARE(ZrTrackLod().Nearest({0, 0}, 1e9), i64(-1));
    std::vector<QPointF> points;
    for (int i = 0; i < 5000; ++i)
        points.push_back({i * 2.0, 100.0 * std::sin(i * 0.01)});
    points[700] = {std::nan(""), 0.0};
    const ZrTrackLod track = TrackOf(points);
    for (int i = 0; i < 5000; i += 61) {
        const QPointF at = points[static_cast<std::size_t>(i)] + QPointF(0.3, -0.4);
        QCOMPARE(track.Nearest(at, 1.0), i64(i));
        QCOMPARE(track.Nearest(at, 0.49), i64(-1));
    }
    QCOMPARE(track.Nearest({-50.0, 0.0}, 60.0), i64(0));
    QCOMPARE(track.Nearest({std::nan(""), 0.0}, 60.0), i64(-1));
    QCOMPARE(track.Nearest({0.0, 0.0}, std::nan("")), i64(-1));
    QCOMPARE(track.Nearest({0.0, 0.0}, -1.0), i64(-1));
    QCOMPARE(track.Nearest({0.0, 0.0}, std::numeric_limits<double>::infinity()), i64(0));
    QVERIFY(track.Nearest(points[699] + QPointF(1.9, 0.0), 50.0) != 700);
}

QTEST_APPLESS_MAIN(tst_ZrTrackLod)
#include "tst_ZrTrackLod.moc"
