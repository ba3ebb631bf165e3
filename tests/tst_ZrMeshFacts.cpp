#include "ZrKit/mesh/ZrMeshFacts.h"
#include "ZrUtil/ZglObject.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

class tst_ZrMeshFacts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyMesh();
    void box();
    void sharedCornersAreCountedOnce();
    void zerosAndNoNumbersAreEqual();
    void area();
    void degenerate_data();
    void degenerate();
    void unitNormals_data();
    void unitNormals();
    void notFinite();
    void largestFloats();
    void realMeshes_data();
    void realMeshes();
};

namespace {

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan32 = std::numeric_limits<float>::quiet_NaN();

/// A mesh of these corners; all texture coordinates 0, all normals up.
ZglObject Mesh(const std::vector<QVector3D>& corners)
{
    ZglObject mesh;
    mesh.m_vertices = corners;
    mesh.m_texCoords.assign(corners.size(), QVector2D());
    mesh.m_normals.assign(corners.size(), QVector3D(0.0F, 0.0F, 1.0F));
    return mesh;
}

} // namespace

void tst_ZrMeshFacts::emptyMesh()
{
    for (const ZrMeshFacts& facts : {ZrMeshFacts(), ZrMeshFacts(ZglObject())}) {
        QCOMPARE(facts.triangles, u64(0));
        QCOMPARE(facts.positions, u64(0));
        QCOMPARE(facts.texCoords, u64(0));
        QCOMPARE(facts.normals, u64(0));
        QCOMPARE(facts.notFinite, u64(0));
        QCOMPARE(facts.area, 0.0);
        QCOMPARE(facts.degenerate, u64(0));
        QCOMPARE(facts.notUnit, u64(0));
        QVERIFY(std::isnan(facts.shortestNormal) && std::isnan(facts.longestNormal));
        for (int i = 0; i < 3; ++i)
            QVERIFY(std::isnan(facts.low[i]) && std::isnan(facts.high[i]));
    }
}

void tst_ZrMeshFacts::box()
{
    const ZrMeshFacts facts(Mesh({{1.0F, -2.0F, 3.0F}, {-4.0F, 5.0F, 3.5F}, {0.0F, 0.0F, 10.0F}}));
    QCOMPARE(facts.triangles, u64(1));
    QCOMPARE(facts.low[0], -4.0);
    QCOMPARE(facts.low[1], -2.0);
    QCOMPARE(facts.low[2], 3.0);
    QCOMPARE(facts.high[0], 1.0);
    QCOMPARE(facts.high[1], 5.0);
    QCOMPARE(facts.high[2], 10.0);
}

void tst_ZrMeshFacts::sharedCornersAreCountedOnce()
{
    const QVector3D a(0.0F, 0.0F, 0.0F);
    const QVector3D b(1.0F, 0.0F, 0.0F);
    const QVector3D c(0.0F, 1.0F, 0.0F);
    const QVector3D d(1.0F, 1.0F, 0.0F);
    ZglObject mesh = Mesh({a, b, c, b, d, c});
    mesh.m_texCoords[0] = QVector2D(0.5F, 0.0F);
    mesh.m_texCoords[3] = QVector2D(0.0F, 0.5F);
    mesh.m_normals[5] = QVector3D(0.0F, 1.0F, 0.0F);
    const ZrMeshFacts facts(mesh);
    QCOMPARE(facts.triangles, u64(2));
    QCOMPARE(facts.positions, u64(4));
    QCOMPARE(facts.texCoords, u64(3));
    QCOMPARE(facts.normals, u64(2));
}

void tst_ZrMeshFacts::zerosAndNoNumbersAreEqual()
{
    const ZrMeshFacts facts(Mesh({{0.0F, 1.0F, nan32}, {-0.0F, 1.0F, -nan32}, {0.0F, 1.0F, inf},
        {nan32, 0.0F, 0.0F}, {0.0F, nan32, 0.0F}, {nan32, -0.0F, 0.0F}}));
    QCOMPARE(facts.positions, u64(4));
}

void tst_ZrMeshFacts::area()
{
    // Half of a unit square, and a right triangle of sides 3 and 4 that stands upright far away.
    const ZrMeshFacts facts(Mesh({{0.0F, 0.0F, 0.0F}, {1.0F, 0.0F, 0.0F}, {0.0F, 1.0F, 0.0F},
        {1000.0F, 1000.0F, 1000.0F}, {1000.0F, 1003.0F, 1000.0F}, {1000.0F, 1000.0F, 1004.0F}}));
    QCOMPARE(facts.area, 6.5);
    QCOMPARE(facts.degenerate, u64(0));
}

void tst_ZrMeshFacts::degenerate_data()
{
    QTest::addColumn<QVector3D>("b");
    QTest::addColumn<QVector3D>("c");
    QTest::addColumn<bool>("isDegenerate");
    const auto row = [](const char* name, QVector3D b, QVector3D c, bool isDegenerate) {
        QTest::newRow(name) << b << c << isDegenerate;
    };
    row("a proper one", {1.0F, 0.0F, 0.0F}, {0.0F, 1.0F, 0.0F}, false);
    row("one point", {0.0F, 0.0F, 0.0F}, {0.0F, 0.0F, 0.0F}, true);
    row("two points", {1.0F, 1.0F, 1.0F}, {1.0F, 1.0F, 1.0F}, true);
    row("first again", {1.0F, 1.0F, 1.0F}, {0.0F, 0.0F, 0.0F}, true);
    row("on a line", {1.0F, 1.0F, 1.0F}, {3.0F, 3.0F, 3.0F}, true);
    row("on a line, rounded", {0.1F, 0.1F, 0.3F}, {0.7F, 0.7F, 2.1F}, true);
    row("a needle", {1.0F, 0.0F, 0.0F}, {0.5F, 2e-6F, 0.0F}, false);
    row("a thinner one", {1.0F, 0.0F, 0.0F}, {0.5F, 0.5e-6F, 0.0F}, true);
    row("a tiny one", {1e-20F, 0.0F, 0.0F}, {0.0F, 1e-20F, 0.0F}, false);
}

void tst_ZrMeshFacts::degenerate()
{
    QFETCH(QVector3D, b);
    QFETCH(QVector3D, c);
    QFETCH(bool, isDegenerate);
    QCOMPARE(ZrMeshFacts(Mesh({{0.0F, 0.0F, 0.0F}, b, c})).degenerate, u64(isDegenerate ? 1 : 0));
}

void tst_ZrMeshFacts::unitNormals_data()
{
    QTest::addColumn<QVector3D>("normal");
    QTest::addColumn<bool>("isUnit");
    QTest::newRow("unit") << QVector3D(0.6F, 0.0F, -0.8F) << true;
    QTest::newRow("of four decimals") << QVector3D(0.5774F, 0.5774F, 0.5774F) << true;
    QTest::newRow("a little short") << QVector3D(0.0F, 0.9985F, 0.0F) << false;
    QTest::newRow("a little long") << QVector3D(0.0F, 1.0015F, 0.0F) << false;
    QTest::newRow("null") << QVector3D() << false;
    QTest::newRow("double") << QVector3D(2.0F, 0.0F, 0.0F) << false;
    QTest::newRow("infinite") << QVector3D(inf, 0.0F, 0.0F) << false;
    QTest::newRow("no number") << QVector3D(0.0F, nan32, 1.0F) << false;
}

void tst_ZrMeshFacts::unitNormals()
{
    QFETCH(QVector3D, normal);
    QFETCH(bool, isUnit);
    ZglObject mesh = Mesh({{0.0F, 0.0F, 0.0F}, {1.0F, 0.0F, 0.0F}, {0.0F, 1.0F, 0.0F}});
    mesh.m_normals[1] = mesh.m_normals[2] = normal;
    const ZrMeshFacts facts(mesh);
    QCOMPARE(facts.normals, u64(2));
    QCOMPARE(facts.notUnit, u64(isUnit ? 0 : 1));
    const double length = static_cast<double>(normal.length());
    if (std::isfinite(length)) {
        QVERIFY(std::fabs(facts.shortestNormal - std::fmin(length, 1.0)) < 1e-6);
        QVERIFY(std::fabs(facts.longestNormal - std::fmax(length, 1.0)) < 1e-6);
    } else {
        QCOMPARE(facts.shortestNormal, 1.0);
        QCOMPARE(facts.longestNormal, 1.0);
    }
}

void tst_ZrMeshFacts::notFinite()
{
    ZglObject mesh = Mesh({{0.0F, 0.0F, nan32}, {1.0F, 0.0F, 0.0F}, {0.0F, inf, 0.0F}, {0.0F, 0.0F, 0.0F},
        {2.0F, 0.0F, 0.0F}, {0.0F, 2.0F, 0.0F}});
    mesh.m_texCoords[3] = QVector2D(nan32, 0.0F);
    mesh.m_normals[3] = QVector3D(inf, 0.0F, 0.0F);
    mesh.m_normals[4] = QVector3D(0.0F, -inf, 0.0F);
    const ZrMeshFacts facts(mesh);
    QCOMPARE(facts.notFinite, u64(4));
    QCOMPARE(facts.low[0], 0.0);
    QCOMPARE(facts.high[0], 2.0);
    QCOMPARE(facts.high[1], 2.0);
    QCOMPARE(facts.high[2], 0.0);
    QCOMPARE(facts.area, 2.0);
    QCOMPARE(facts.degenerate, u64(0));
    // Nothing finite at all: no box.
    const ZrMeshFacts none(Mesh({{nan32, 0.0F, 0.0F}, {0.0F, inf, 0.0F}, {0.0F, 0.0F, -inf}}));
    QVERIFY(std::isnan(none.low[0]) && std::isnan(none.high[2]));
    QCOMPARE(none.area, 0.0);
}

void tst_ZrMeshFacts::largestFloats()
{
    const float most = std::numeric_limits<float>::max();
    const ZrMeshFacts facts(Mesh({{-most, 0.0F, 0.0F}, {most, 0.0F, 0.0F}, {0.0F, most, 0.0F}}));
    const double size = static_cast<double>(most);
    QCOMPARE(facts.area, size * size);
    QCOMPARE(facts.high[0] - facts.low[0], 2.0 * size);
    QCOMPARE(facts.degenerate, u64(0));
}

void tst_ZrMeshFacts::realMeshes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("positions");
    QTest::addColumn<int>("texCoords");
    QTest::addColumn<int>("normals");
    QTest::addColumn<int>("notUnit");
    QTest::addColumn<int>("degenerate");
    // A capsule repeats the points of its seam, and its poles are triangles of two points.
    QTest::newRow("capsule") << QStringLiteral("capsule") << 5002 << 5252 << 5002 << 0 << 200;
    QTest::newRow("fuze") << QStringLiteral("fuze") << 502 << 664 << 496 << 496 << 0;
    QTest::newRow("vessel") << QStringLiteral("wamv-base") << 2472 << 3931 << 2893 << 0 << 0;
}

void tst_ZrMeshFacts::realMeshes()
{
    QFETCH(QString, name);
    ZglObject mesh;
    QVERIFY(
        ZglObject::LoadObj(QStringLiteral(ZR_SOURCE_DIR "/tests/data/obj-vessel/%1.obj").arg(name), mesh));
    const ZrMeshFacts facts(mesh);
    QTEST(static_cast<int>(facts.positions), "positions");
    QTEST(static_cast<int>(facts.texCoords), "texCoords");
    QTEST(static_cast<int>(facts.normals), "normals");
    QTEST(static_cast<int>(facts.notUnit), "notUnit");
    QTEST(static_cast<int>(facts.degenerate), "degenerate");
    QCOMPARE(facts.notFinite, u64(0));
    if (name == QLatin1String("capsule")) {
        // A cylinder of length 1 and two half spheres, all of radius 1, in flat pieces.
        const double smooth = 6.0 * M_PI;
        QVERIFY(facts.area < smooth && facts.area > 0.999 * smooth);
    }
}

QTEST_GUILESS_MAIN(tst_ZrMeshFacts)
#include "tst_ZrMeshFacts.moc"
