// The camera of a map and the split doubles that it gives the shaders.

#include "ZrKit/map/ZrMapSplit.h"
#include "ZrKit/map/ZrMapView.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

ZrMapView ViewOf(double x, double y, double scale, double rotation = 0.0)
{
    ZrMapView view;
    view.SetSize(800, 600);
    view.SetCentre({x, y});
    view.SetScale(scale);
    view.SetRotation(rotation);
    return view;
}

bool IsNear(const QPointF& a, const QPointF& b, double tolerance)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= tolerance;
}

} // namespace

class tst_ZrMapView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty();
    void centreIsInTheMiddle();
    void pixelsAndWorldAreInverse_data();
    void pixelsAndWorldAreInverse();
    void headingPointsUp();
    void panFollowsTheFinger_data();
    void panFollowsTheFinger();
    void zoomHoldsThePoint();
    void rotationHoldsThePoint();
    void fitShowsAll_data();
    void fitShowsAll();
    void boundsHoldTheCorners();
    void ignoresNonsense();
    void scaleIsClamped();
    void splitIsRightToATenth_data();
    void splitIsRightToATenth();
};

void tst_ZrMapView::startsEmpty()
{
    ZrMapView view;
    QVERIFY(view.IsEmpty());
    QVERIFY(view.Bounds().isEmpty());
    view.SetSize(-3, 10);
    QCOMPARE(view.Width(), 0);
    QVERIFY(view.IsEmpty());
    view.Fit({0, 0, 100, 100}, 10);
    QVERIFY(std::isfinite(view.Scale()));
}

void tst_ZrMapView::centreIsInTheMiddle()
{
    const ZrMapView view = ViewOf(1000, 2000, 0.5);
    QCOMPARE(view.ToPixel({1000, 2000}), QPointF(400, 300));
    QCOMPARE(view.ToPixel({1001, 2000}), QPointF(402, 300));
    QCOMPARE(view.ToPixel({1000, 2001}), QPointF(400, 298));
    QCOMPARE(view.ToMapPixel({1001, 2001}), QPointF(2, 2));
}

void tst_ZrMapView::pixelsAndWorldAreInverse_data()
{
    QTest::addColumn<double>("rotation");
    for (const double rotation : {0.0, 30.0, 90.0, 181.5, 359.0})
        QTest::addRow("%g", rotation) << rotation;
}

void tst_ZrMapView::pixelsAndWorldAreInverse()
{
    QFETCH(double, rotation);
    const ZrMapView view = ViewOf(512345.25, 4812345.5, 0.01, rotation);
    for (const QPointF pixel : {QPointF(0, 0), QPointF(799, 10), QPointF(400, 300), QPointF(-50, 900)})
        QVERIFY(IsNear(view.ToPixel(view.ToWorld(pixel)), pixel, 1e-5));
}

void tst_ZrMapView::headingPointsUp()
{
    const ZrMapView view = ViewOf(0, 0, 1, 90);
    QVERIFY(IsNear(view.ToPixel({100, 0}), {400, 200}, 1e-9));
}

void tst_ZrMapView::panFollowsTheFinger_data()
{
    pixelsAndWorldAreInverse_data();
}

void tst_ZrMapView::panFollowsTheFinger()
{
    QFETCH(double, rotation);
    ZrMapView view = ViewOf(512345, 4812345, 0.25, rotation);
    const QPointF held = view.ToWorld({100, 100});
    view.Pan({35, -20});
    QVERIFY(IsNear(view.ToPixel(held), {135, 80}, 1e-6));
}

void tst_ZrMapView::zoomHoldsThePoint()
{
    ZrMapView view = ViewOf(512345, 4812345, 0.25, 33);
    const QPointF held = view.ToWorld({700, 50});
    view.ZoomAbout({700, 50}, 2.0);
    QCOMPARE(view.Scale(), 0.125);
    QVERIFY(IsNear(view.ToPixel(held), {700, 50}, 1e-5));
    // At the end of the range the point stays as well.
    view.ZoomAbout({700, 50}, 1e12);
    QCOMPARE(view.Scale(), ZrMapView::NearestScale);
    QVERIFY(IsNear(view.ToPixel(held), {700, 50}, 1e-3));
}

void tst_ZrMapView::rotationHoldsThePoint()
{
    ZrMapView view = ViewOf(512345, 4812345, 0.25, 350);
    const QPointF held = view.ToWorld({700, 50});
    view.RotateAbout({700, 50}, 20);
    QCOMPARE(view.Rotation(), 10.0);
    QVERIFY(IsNear(view.ToPixel(held), {700, 50}, 1e-5));
    view.SetRotation(-1e-20);
    QCOMPARE(view.Rotation(), 0.0);
    view.SetRotation(-90);
    QCOMPARE(view.Rotation(), 270.0);
}

void tst_ZrMapView::fitShowsAll_data()
{
    pixelsAndWorldAreInverse_data();
}

void tst_ZrMapView::fitShowsAll()
{
    QFETCH(double, rotation);
    ZrMapView view = ViewOf(0, 0, 7, rotation);
    const QRectF world(1000, 2000, 300, 500);
    view.Fit(world, 20);
    double nearest = infinite;
    for (const QPointF& corner :
        {world.topLeft(), world.topRight(), world.bottomLeft(), world.bottomRight()}) {
        const QPointF p = view.ToPixel(corner);
        nearest = std::min({nearest, p.x(), p.y(), 800 - p.x(), 600 - p.y()});
    }
    // Nothing is outside the margin, and one side reaches it.
    QVERIFY(std::abs(nearest - 20) < 1e-6);
    view.Fit({5, 6, 0, 0}, 20);
    QCOMPARE(view.Centre(), QPointF(5, 6));
    view.Fit(world, 5000);
    QVERIFY(std::isfinite(view.Scale()));
}

void tst_ZrMapView::boundsHoldTheCorners()
{
    const ZrMapView view = ViewOf(10, 20, 2, 30);
    const QRectF bounds = view.Bounds().adjusted(-1e-6, -1e-6, 1e-6, 1e-6);
    QRectF corners;
    for (const QPointF pixel : {QPointF(0, 0), QPointF(800, 0), QPointF(0, 600), QPointF(800, 600)}) {
        const QPointF world = view.ToWorld(pixel);
        QVERIFY(bounds.contains(world));
        corners |= QRectF(world - QPointF(1e-6, 1e-6), QSizeF(2e-6, 2e-6));
    }
    QVERIFY(std::abs(corners.width() - bounds.width()) < 1e-4);
    QVERIFY(std::abs(corners.height() - bounds.height()) < 1e-4);
}

void tst_ZrMapView::ignoresNonsense()
{
    ZrMapView view = ViewOf(10, 20, 2, 30);
    const QPointF corner = view.ToWorld({0, 0});
    for (const double bad : {notANumber, infinite, -infinite}) {
        view.SetCentre({bad, 0});
        view.SetScale(bad);
        view.SetRotation(bad);
        view.Pan({0, bad});
        view.ZoomAbout({bad, 0}, 2);
        view.ZoomAbout({0, 0}, bad);
        view.RotateAbout({0, 0}, bad);
        view.RotateAbout({bad, 0}, 3);
        view.Fit({bad, 0, 1, bad}, 1);
    }
    view.ZoomAbout({0, 0}, 0);
    view.ZoomAbout({0, 0}, -2);
    QCOMPARE(view.ToWorld({0, 0}), corner);
}

void tst_ZrMapView::scaleIsClamped()
{
    ZrMapView view;
    view.SetScale(0);
    QCOMPARE(view.Scale(), ZrMapView::NearestScale);
    view.SetScale(1e9);
    QCOMPARE(view.Scale(), ZrMapView::FarthestScale);
}

void tst_ZrMapView::splitIsRightToATenth_data()
{
    QTest::addColumn<double>("scale");
    for (const double scale : {0.01, 0.0137, 0.0199, 0.1, 1.0 / 3.0, 7.0, 1234.5, 50000.0})
        QTest::addRow("%g", scale) << scale;
}

void tst_ZrMapView::splitIsRightToATenth()
{
    QFETCH(double, scale);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> offset(-1000, 1000);
    for (const QPointF& centre : {QPointF(512345.678, 4812345.123), QPointF(167000.5, 9999999.75),
             QPointF(-1e6, 0.001), QPointF(0, 0)}) {
        const ZrMapView view = ViewOf(centre.x(), centre.y(), scale);
        const ZrMapSplit split(view);
        for (int i = 0; i < 2000; ++i) {
            const QPointF pixel(offset(random), offset(random));
            const QPointF world = centre + pixel * scale;
            float vertex[4];
            ZrMapSplit::Split(world.x(), world.y(), vertex);
            float x = 0;
            float y = 0;
            split.Project(vertex, x, y);
            QVERIFY2(IsNear({x, y}, pixel, 0.1),
                qPrintable(
                    QStringLiteral("%1, %2 instead of %3, %4").arg(x).arg(y).arg(pixel.x()).arg(pixel.y())));
        }
    }
}

QTEST_APPLESS_MAIN(tst_ZrMapView)
#include "tst_ZrMapView.moc"
