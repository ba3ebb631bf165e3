// Random areas, straights and arcs, held against a second way of calculating: by many points.

#include "ZrKit/planning/ZrPlaneArea.h"

#include <QtTest/QtTest>

#include <cmath>
#include <random>

namespace {

ZrPathPiece Line(ZrLocalPoint from, ZrLocalPoint to)
{
    ZrPathPiece piece;
    piece.from = from;
    piece.to = to;
    piece.length = std::hypot(to.x - from.x, to.y - from.y);
    return piece;
}

ZrPathPiece Arc(ZrLocalPoint centre, double radius, double start, double sweep)
{
    ZrPathPiece piece;
    piece.isArc = true;
    piece.centre = centre;
    piece.radius = radius;
    piece.start = start;
    piece.sweep = sweep;
    piece.from = {centre.x + radius * std::cos(start), centre.y + radius * std::sin(start)};
    piece.to = {centre.x + radius * std::cos(start + sweep), centre.y + radius * std::sin(start + sweep)};
    piece.length = radius * std::fabs(sweep);
    return piece;
}

double PointToEdge(ZrLocalPoint p, ZrLocalPoint a, ZrLocalPoint b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double share
        = std::min(1.0, std::max(0.0, ((p.x - a.x) * dx + (p.y - a.y) * dy) / (dx * dx + dy * dy)));
    return std::hypot(p.x - a.x - share * dx, p.y - a.y - share * dy);
}

/// Whether the ring goes round the point, by the sum of the angles: odd times.
bool IsInside(ZrLocalPoint p, const std::vector<ZrLocalPoint>& ring)
{
    double around = 0.0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const ZrLocalPoint a = ring[i];
        const ZrLocalPoint b = ring[(i + 1) % ring.size()];
        around += std::remainder(
            std::atan2(b.y - p.y, b.x - p.x) - std::atan2(a.y - p.y, a.x - p.x), 2.0 * 3.141592653589793);
    }
    return std::lround(around / (2.0 * 3.141592653589793)) % 2 != 0;
}

} // namespace

class tst_ZrPlaneArea : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leavesTheBorderSlowly();
    void randomAreas();
    void randomDistances();
};

/// A line beside an edge, 5 mm from it, that goes on where the border turns off by 10 degrees.
void tst_ZrPlaneArea::leavesTheBorderSlowly()
{
    const double away = 90.0 / std::tan(10.0 / 180.0 * 3.141592653589793);
    const ZrPlaneArea area({{0.005, -50.0}, {0.005, 97.0}, {90.005, 97.0 + away}, {90.005, -50.0}});
    const auto stretches = area.Stretches(Line({0.0, 0.0}, {0.0, 100.0}), false);
    QCOMPARE(stretches.size(), std::size_t{1});
    QVERIFY(std::fabs(stretches[0].first - 0.97) < 0.001);
    QCOMPARE(stretches[0].last, 1.0);
    QVERIFY(area.Stretches(Line({0.0, 0.0}, {0.0, 97.0}), false).empty());
}

void tst_ZrPlaneArea::randomAreas()
{
    std::mt19937 random(11);
    const auto unit = [&] { return static_cast<double>(random()) / 4294967295.0; };
    int differing = 0;
    for (int round = 0; round < 400; ++round) {
        std::vector<ZrLocalPoint> ring;
        const int corners = 3 + static_cast<int>(unit() * 12.0);
        for (int i = 0; i < corners; ++i)
            ring.push_back({unit() * 100.0, unit() * 100.0});
        const ZrPlaneArea area(ring);
        const ZrPathPiece piece = round % 2 == 0
            ? Line({unit() * 160.0 - 30.0, unit() * 160.0 - 30.0},
                {unit() * 160.0 - 30.0, unit() * 160.0 - 30.0})
            : Arc({unit() * 100.0, unit() * 100.0}, 5.0 + 60.0 * unit(), unit() * 6.0, (unit() - 0.5) * 6.0);
        std::vector<bool> in;
        std::vector<bool> out;
        for (const bool inside : {true, false}) {
            double last = 0.0;
            for (const ZrPlaneArea::Stretch& stretch : area.Stretches(piece, inside)) {
                QVERIFY(stretch.first >= last && stretch.last > stretch.first && stretch.last <= 1.0);
                last = stretch.last;
            }
        }
        for (int k = 0; k <= 500; ++k) {
            const double fraction = k / 500.0;
            const ZrLocalPoint point = piece.At(fraction);
            double border = 1e9;
            for (std::size_t i = 0; i < ring.size(); ++i)
                border = std::min(border, PointToEdge(point, ring[i], ring[(i + 1) % ring.size()]));
            if (border < 0.05)
                continue;
            const auto covers = [&](bool inside) {
                const auto stretches = area.Stretches(piece, inside);
                return std::any_of(stretches.begin(), stretches.end(),
                    [&](const auto& s) { return s.first <= fraction && fraction <= s.last; });
            };
            const bool inside = IsInside(point, ring);
            if (k % 10 == 0) {
                QCOMPARE(covers(true), inside);
                QCOMPARE(covers(false), !inside);
            }
            QCOMPARE(area.Contains(point), inside);
            differing += inside ? 1 : 0;
        }
    }
    QVERIFY(differing > 20000 && differing < 180000);
}

void tst_ZrPlaneArea::randomDistances()
{
    std::mt19937 random(12);
    const auto unit = [&] { return static_cast<double>(random()) / 4294967295.0; };
    int apart = 0;
    for (int round = 0; round < 400; ++round) {
        std::vector<ZrLocalPoint> ring;
        for (int i = 0; i < 5; ++i)
            ring.push_back({unit() * 40.0, unit() * 40.0});
        const ZrPlaneArea area(ring);
        const ZrPathPiece piece = round % 2 == 0 ? Line({unit() * 160.0 - 60.0, unit() * 160.0 - 60.0},
                                      {unit() * 160.0 - 60.0, unit() * 160.0 - 60.0})
                                                 : Arc({unit() * 100.0 - 30.0, unit() * 100.0 - 30.0},
                                                     5.0 + 60.0 * unit(), unit() * 6.0, (unit() - 0.5) * 6.0);
        double least = 1e9;
        for (int k = 0; k <= 4000; ++k) {
            for (std::size_t i = 0; i < ring.size(); ++i)
                least = std::min(
                    least, PointToEdge(piece.At(k / 4000.0), ring[i], ring[(i + 1) % ring.size()]));
        }
        const double step = piece.length / 4000.0;
        const double found = area.Distance(piece, 1000.0);
        QVERIFY2(found <= least + 1e-9 && found >= least - step, qPrintable(QString::number(found - least)));
        apart += found > 1.0 ? 1 : 0;
        // The limit: farther away nothing is said.
        if (found > 0.1) {
            QVERIFY(std::isinf(area.Distance(piece, found - 0.01)));
            QCOMPARE(area.Distance(piece, found + 0.01), found);
        }
    }
    QVERIFY(apart > 50);
}

QTEST_GUILESS_MAIN(tst_ZrPlaneArea)
#include "tst_ZrPlaneArea.moc"
