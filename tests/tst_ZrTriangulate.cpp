// Triangles of polygons: they cover the ring, once.

#include "ZrKit/map/ZrTriangulate.h"

#include <QtTest>

#include <cmath>
#include <limits>

using Ring = std::vector<QPointF>;

Q_DECLARE_METATYPE(Ring)

namespace {

double Area(const Ring& ring)
{
    double area = 0.0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const QPointF a = ring[i] - ring[0];
        const QPointF b = ring[(i + 1) % ring.size()] - ring[0];
        area += a.x() * b.y() - b.x() * a.y();
    }
    return area / 2.0;
}

} // namespace

class tst_ZrTriangulate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void covers_data();
    void covers();
    void refused_data();
    void refused();
};

void tst_ZrTriangulate::covers_data()
{
    QTest::addColumn<Ring>("ring");
    QTest::addColumn<int>("triangles");
    QTest::newRow("triangle") << Ring{{0, 0}, {4, 0}, {0, 3}} << 1;
    QTest::newRow("clockwise") << Ring{{0, 0}, {0, 3}, {4, 0}} << 1;
    QTest::newRow("square") << Ring{{0, 0}, {2, 0}, {2, 2}, {0, 2}} << 2;
    QTest::newRow("concave") << Ring{{0, 0}, {4, 0}, {4, 4}, {2, 1}, {0, 4}} << 3;
    QTest::newRow("corner within an edge") << Ring{{0, 0}, {1, 0}, {2, 0}, {2, 2}, {0, 2}} << 3;
    QTest::newRow("repeated corner") << Ring{{0, 0}, {2, 0}, {2, 0}, {2, 2}, {0, 2}} << 2;
    Ring comb;
    for (int i = 0; i < 20; ++i) {
        comb.push_back({i * 2.0, 10.0});
        comb.push_back({i * 2.0 + 1.0, 1.0});
    }
    comb.push_back({40.0, 0.0});
    comb.push_back({0.0, 0.0});
    QTest::newRow("comb") << comb << 40;
    Ring far;
    for (const QPointF& p : Ring{{0, 0}, {4, 0}, {4, 4}, {2, 1}, {0, 4}})
        far.push_back(p + QPointF(4.2e5, 5.6e6));
    QTest::newRow("on a grid") << far << 3;
}

void tst_ZrTriangulate::covers()
{
    QFETCH(Ring, ring);
    QFETCH(int, triangles);
    const auto indices = ZrTriangulate::Ring(ring);
    QCOMPARE(static_cast<int>(indices.size()), 3 * triangles);
    double area = 0.0;
    for (std::size_t i = 0; i < indices.size(); i += 3) {
        const double part = Area({ring.at(indices[i]), ring.at(indices[i + 1]), ring.at(indices[i + 2])});
        QVERIFY(part > 0.0);
        area += part;
    }
    // None overlaps another, or the sum would be larger than what they cover together.
    QVERIFY(std::fabs(area - std::fabs(Area(ring))) < 1e-6);
    for (std::size_t i = 0; i < indices.size(); i += 3) {
        const QPointF middle
            = (ring[indices[i]] - ring[0] + ring[indices[i + 1]] - ring[0] + ring[indices[i + 2]] - ring[0])
            / 3.0;
        bool isInside = false;
        for (std::size_t k = 0; k < ring.size(); ++k) {
            const QPointF a = ring[k] - ring[0];
            const QPointF b = ring[(k + 1) % ring.size()] - ring[0];
            if ((a.y() > middle.y()) != (b.y() > middle.y())
                && middle.x() < a.x() + (b.x() - a.x()) * (middle.y() - a.y()) / (b.y() - a.y()))
                isInside = !isInside;
        }
        QVERIFY(isInside);
    }
}

void tst_ZrTriangulate::refused_data()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    QTest::addColumn<Ring>("ring");
    QTest::newRow("empty") << Ring();
    QTest::newRow("two corners") << Ring{{0, 0}, {1, 1}};
    QTest::newRow("on a line") << Ring{{0, 0}, {1, 1}, {2, 2}};
    QTest::newRow("bow tie") << Ring{{0, 0}, {4, 3}, {4, 0}, {0, 2}};
    QTest::newRow("NaN") << Ring{{0, 0}, {nan, 0}, {1, 1}};
    QTest::newRow("infinite") << Ring{{0, 0}, {inf, 0}, {1, 1}};
    Ring many;
    for (std::size_t i = 0; i <= ZrTriangulate::MostCorners; ++i) {
        const double angle = static_cast<double>(i) * 1e-3;
        many.push_back({std::cos(angle), std::sin(angle)});
    }
    QTest::newRow("too many") << many;
}

void tst_ZrTriangulate::refused()
{
    QFETCH(Ring, ring);
    QVERIFY(ZrTriangulate::Ring(ring).empty());
}

QTEST_APPLESS_MAIN(tst_ZrTriangulate)
#include "tst_ZrTriangulate.moc"
