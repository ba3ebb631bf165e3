// Distances to the edge of outlines.

#include "ZrKit/map/ZrDistanceField.h"

#include <QtTest>

#include <cmath>
#include <limits>

class tst_ZrDistanceField : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void disc();
    void halfPlane();
    void offsetBox();
    void emptyPath();
    void nonsense_data();
    void nonsense();
    void squaresToInk();
};

namespace {

double DistanceAt(const QImage& field, int x, int y, double spread)
{
    return (field.constScanLine(y)[x] - 127.5) / 127.5 * spread;
}

} // namespace

void tst_ZrDistanceField::disc()
{
    constexpr double spread = 8.0;
    QPainterPath path;
    path.addEllipse(QPointF(20, 20), 11.0, 11.0);
    const QImage field = ZrDistanceField::Make(path, QRect(0, 0, 40, 40), spread);
    QCOMPARE(field.size(), QSize(40, 40));
    QCOMPARE(field.format(), QImage::Format_Alpha8);
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            const double expected
                = std::clamp(11.0 - std::hypot(x + 0.5 - 20.0, y + 0.5 - 20.0), -spread, spread);
            const double actual = DistanceAt(field, x, y, spread);
            QVERIFY2(std::fabs(actual - expected) < 0.2,
                qPrintable(QStringLiteral("%1,%2: %3 %4").arg(x).arg(y).arg(actual).arg(expected)));
        }
    }
}

void tst_ZrDistanceField::halfPlane()
{
    QPainterPath path;
    path.addRect(-100, -100, 110, 300);
    const QImage field = ZrDistanceField::Make(path, QRect(0, 0, 20, 6), 4.0);
    for (int x = 6; x < 14; ++x)
        QVERIFY(std::fabs(DistanceAt(field, x, 3, 4.0) - std::clamp(10.0 - (x + 0.5), -4.0, 4.0)) < 0.06);
    QCOMPARE(int(field.constScanLine(3)[0]), 255);
    QCOMPARE(int(field.constScanLine(3)[19]), 0);
}

void tst_ZrDistanceField::offsetBox()
{
    QPainterPath path;
    path.addEllipse(QPointF(-5, 7), 3.0, 6.0);
    QPainterPath moved = path;
    moved.translate(30, 40);
    QCOMPARE(ZrDistanceField::Make(path, QRect(-12, -3, 15, 20), 3.0),
        ZrDistanceField::Make(moved, QRect(18, 37, 15, 20), 3.0));
}

void tst_ZrDistanceField::emptyPath()
{
    const QImage field = ZrDistanceField::Make(QPainterPath(), QRect(0, 0, 5, 4), 3.0);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x)
            QCOMPARE(int(field.constScanLine(y)[x]), 0);
    }
}

void tst_ZrDistanceField::nonsense_data()
{
    QTest::addColumn<QRect>("box");
    QTest::addColumn<double>("spread");
    QTest::newRow("empty") << QRect() << 3.0;
    QTest::newRow("wide") << QRect(0, 0, 1025, 4) << 3.0;
    QTest::newRow("high") << QRect(0, 0, 4, 1025) << 3.0;
    QTest::newRow("no spread") << QRect(0, 0, 4, 4) << 0.0;
    QTest::newRow("negative") << QRect(0, 0, 4, 4) << -1.0;
    QTest::newRow("no number") << QRect(0, 0, 4, 4) << std::numeric_limits<double>::quiet_NaN();
}

void tst_ZrDistanceField::nonsense()
{
    QFETCH(QRect, box);
    QFETCH(double, spread);
    QVERIFY(ZrDistanceField::Make(QPainterPath(), box, spread).isNull());
}

void tst_ZrDistanceField::squaresToInk()
{
    QImage mask(9, 7, QImage::Format_Alpha8);
    mask.fill(127); // not half covered
    for (const float far : ZrDistanceField::SquaresToInk(mask))
        QVERIFY(far > 1e11F);
    mask.scanLine(2)[3] = 128;
    mask.scanLine(5)[8] = 255;
    const std::vector<float> squares = ZrDistanceField::SquaresToInk(mask);
    QCOMPARE(squares.size(), std::size_t(63));
    for (int y = 0; y < 7; ++y) {
        for (int x = 0; x < 9; ++x) {
            const int expected
                = std::min((x - 3) * (x - 3) + (y - 2) * (y - 2), (x - 8) * (x - 8) + (y - 5) * (y - 5));
            QCOMPARE(squares[static_cast<std::size_t>(y * 9 + x)], static_cast<float>(expected));
        }
    }
    QVERIFY(ZrDistanceField::SquaresToInk(QImage()).empty());
}

QTEST_MAIN(tst_ZrDistanceField)
#include "tst_ZrDistanceField.moc"
