// The triangles that a waterfall is drawn with.

#include "ZrKit/map/ZrWaterfallLayout.h"
#include "ZrKit/map/ZrWaterfallMesh.h"

#include <QtTest/QtTest>

#include <cmath>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

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

bool IsNear(double a, double b, double within = 1e-6)
{
    return std::fabs(a - b) <= within;
}

} // namespace

class tst_ZrWaterfallMesh : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stepsAreRight_data();
    void stepsAreRight();
    void bandsOfLines_data();
    void bandsOfLines();
    void bandsAreCut();
    void meshOfNothing();
};

void tst_ZrWaterfallMesh::stepsAreRight_data()
{
    QTest::addColumn<double>("altitude"); // pixels
    QTest::addColumn<double>("end");
    for (const double altitude : {0.01, 0.7, 5.0, 40.0, 333.0, 1000.0, 4000.0}) {
        for (const double end : {1.0, 3.0, 100.0, 1000.0, 4096.0})
            QTest::addRow("%g up, %g out", altitude, end) << altitude << end;
    }
}

/// Between the steps every sample lies within half a pixel of the square root, and there are few of them.
void tst_ZrWaterfallMesh::stepsAreRight()
{
    QFETCH(double, altitude);
    QFETCH(double, end);
    const std::vector<double> steps = ZrWaterfallMesh::Steps(altitude, end);
    QCOMPARE(steps.front(), 0.0);
    QCOMPARE(steps.back(), end);
    QVERIFY(static_cast<int>(steps.size()) - 1 <= ZrWaterfallMesh::MostSteps(static_cast<int>(end)));
    for (std::size_t i = 1; i < steps.size(); ++i) {
        QVERIFY(steps[i] > steps[i - 1]);
        const double from = std::hypot(steps[i - 1], altitude);
        const double to = std::hypot(steps[i], altitude);
        for (double part = 0.02; part < 1.0; part += 0.02) {
            // The sample drawn at this part of the step, and where it belongs.
            const double drawn = steps[i - 1] + (steps[i] - steps[i - 1]) * part;
            const double slant = from + (to - from) * part;
            const double right = std::sqrt(std::max(slant * slant - altitude * altitude, 0.0));
            QVERIFY2(std::fabs(drawn - right) <= 0.5001,
                qPrintable(QStringLiteral("%1 instead of %2").arg(drawn).arg(right)));
        }
    }
    QCOMPARE(ZrWaterfallMesh::Steps(0.0, end).size(), std::size_t(2));
}

void tst_ZrWaterfallMesh::bandsOfLines_data()
{
    QTest::addColumn<QVector<double>>("altitudes");
    QTest::addColumn<QVector<double>>("ranges");
    QTest::addColumn<bool>("slant");
    QTest::addColumn<int>("bands"); // of each side
    QTest::addColumn<int>("draws");
    const QVector<double> flat(6, 10.0);
    const QVector<double> rising{10.0, 11.0, 12.0, 13.0, 14.0, 15.0};
    const QVector<double> even(6, 50.0);
    const QVector<double> changed{50.0, 50.0, 50.0, 25.0, 25.0, 25.0};
    const QVector<double> inTurn{50.0, 25.0, 50.0, 25.0, 50.0, 25.0};
    // Half a metre a pixel: at 10 m, 0.7 mm move what is nearest by a quarter of one.
    const QVector<double> nearly{10.0, 10.0003, 10.0006, 10.0004, 10.0002, 10.0};
    const QVector<double> hardly{10.0, 10.0, 10.0, 10.001, 10.001, 10.001};
    QTest::newRow("slant range") << rising << even << false << 1 << 2;
    QTest::newRow("one altitude") << flat << even << true << 1 << 2;
    QTest::newRow("rising") << rising << even << true << 6 << 2;
    QTest::newRow("nearly one altitude") << nearly << even << true << 1 << 2;
    QTest::newRow("hardly another") << hardly << even << true << 2 << 2;
    QTest::newRow("range changed") << flat << changed << false << 2 << 4;
    QTest::newRow("two ranges in turn") << flat << inTurn << false << 6 << 4;
}

void tst_ZrWaterfallMesh::bandsOfLines()
{
    QFETCH(QVector<double>, altitudes);
    QFETCH(QVector<double>, ranges);
    QFETCH(bool, slant);
    QFETCH(int, bands);
    QFETCH(int, draws);
    ZrWaterfallRing ring(10, 8);
    for (int i = 0; i < altitudes.size(); ++i)
        ring.Append(LineOf(ranges[i], altitudes[i]));
    ZrWaterfallView view = ViewOf(QRect(0, 0, 200, 100));
    view.range = 50.0;
    view.slantCorrected = slant;
    const ZrWaterfallMesh mesh(ZrWaterfallLayout(ring, view), {8, 10, false, true});
    QCOMPARE(int(mesh.Draws().size()), draws);
    // Each band begins at the sonar, with both its ends along; joints repeat a corner.
    int corners = 0;
    for (const ZrWaterfallMesh::Vertex& vertex : mesh.Vertices())
        corners += vertex.slant == vertex.altitude || vertex.slant == 0.0F ? 1 : 0;
    QCOMPARE(corners, 2 * (bands * 2 + bands) - draws);
}

/// At the edges of the view, and where the ring ends: coordinates by hand.
void tst_ZrWaterfallMesh::bandsAreCut()
{
    ZrWaterfallRing ring(8, 16); // lines of 8 samples fill half of a row
    for (int i = 0; i < 11; ++i)
        ring.Append(LineOf(40.0)); // 9 and 10 lie in rows 1 and 2
    ZrWaterfallView view = ViewOf(QRect(0, 0, 60, 40));
    view.sides = ZrWaterfallSettings::starboardOnly;
    view.range = 30.0;
    view.pixelsPerLine = 10.0;
    view.end = 10.5;
    const ZrWaterfallMesh mesh(ZrWaterfallLayout(ring, view), {16, 8, false, false});
    QCOMPARE(mesh.Draws().size(), std::size_t(1));

    struct Corner
    {
        float slant, along, s, t;
    };

    // 30 of 40 m: s to 3/4 of the half row. From the middle of row 2 to row 0, then row 7, cut in the middle.
    const Corner first[]
        = {{0, 0, 0, 2.5F / 8}, {0, 25, 0, 0}, {30, 0, 0.375F, 2.5F / 8}, {30, 25, 0.375F, 0}};
    const Corner second[]
        = {{0, 25, 0, 1}, {0, 40, 0, 6.5F / 8}, {30, 25, 0.375F, 1}, {30, 40, 0.375F, 6.5F / 8}};
    QCOMPARE(mesh.Vertices().size(), std::size_t(10));
    for (std::size_t i = 0; i < 4; ++i) {
        for (const bool isSecond : {false, true}) {
            const ZrWaterfallMesh::Vertex& v = mesh.Vertices()[i + (isSecond ? 6 : 0)];
            const Corner& c = isSecond ? second[i] : first[i];
            QCOMPARE(v.slant, c.slant);
            QCOMPARE(v.along, c.along);
            QVERIFY(IsNear(static_cast<double>(v.s), static_cast<double>(c.s)));
            QVERIFY(IsNear(static_cast<double>(v.t), static_cast<double>(c.t)));
            QCOMPARE(v.altitude, 0.0F);
        }
    }
}

void tst_ZrWaterfallMesh::meshOfNothing()
{
    QVERIFY(ZrWaterfallMesh(ZrWaterfallLayout(), {8, 10, false, false}).Vertices().empty());
    ZrWaterfallRing ring(8, 8);
    ring.Append(LineOf(40.0));
    const ZrWaterfallLayout layout(ring, ViewOf(QRect(0, 0, 60, 40)));
    QVERIFY(ZrWaterfallMesh(layout, {0, 10, false, false}).Draws().empty());
    QVERIFY(ZrWaterfallMesh(layout, {8, 0, false, false}).Draws().empty());
    QCOMPARE(ZrWaterfallMesh(layout, {8, 8, false, false}).Draws().size(), std::size_t(2));
}

QTEST_GUILESS_MAIN(tst_ZrWaterfallMesh)
#include "tst_ZrWaterfallMesh.moc"
