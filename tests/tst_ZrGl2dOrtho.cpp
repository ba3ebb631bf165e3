#include "ZrUtil/ZrGl2dOrtho.h"
#include "ZrUtil/ZrSetModule.h"

#include <QtTest>

#include <cmath>

class tst_ZrGl2dOrtho : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmptyAtFirst();
    void aspects_data();
    void aspects();
    void cornersOfTheRectangleInForceFillTheView();
    void mirroringIsKept_data();
    void mirroringIsKept();
    void resizingRepeatsTheRequest();
    void rotationTurnsTheProjection();
    void screenToWorldUsesTheRectangleInForce();
    void worldToScreenUsesTheRequestedRectangle();
    void conversionsAreInverseWhenStretched();
    void conversionsLeaveOutputsAloneWhenRotated();
    void noPixels();
    void noExtent();
    void settingsRoundTrip();
    void copiesCarryEverything();
};

void tst_ZrGl2dOrtho::isEmptyAtFirst()
{
    const ZrGl2dOrtho view;
    QVERIFY(view.m_proj.isIdentity());
    QCOMPARE(view.m_width, 100);
    QCOMPARE(view.m_height, 100);
    QCOMPARE(view.m_scaleX, 1.0F);
    QCOMPARE(view.m_scaleY, 1.0F);
    QCOMPARE(view.m_rotation, 0.0F);
    QCOMPARE(view.m_originX, 0.0F);
    QCOMPARE(view.m_originY, 0.0F);
}

void tst_ZrGl2dOrtho::aspects_data()
{
    QTest::addColumn<int>("aspect");
    QTest::addColumn<QRectF>("rect"); // left, bottom, width, height
    QTest::addColumn<QPointF>("scale");
    // 200 × 100 pixels, requested 0 ... 1 both ways: 0.005 and 0.01 world units per pixel.
    QTest::newRow("stretch") << 0 << QRectF(0, 0, 1, 1) << QPointF(0.005, 0.01);
    QTest::newRow("y follows x") << 1 << QRectF(0, 0.25, 1, 0.5) << QPointF(0.005, 0.005);
    QTest::newRow("x follows y") << 2 << QRectF(-0.5, 0, 2, 1) << QPointF(0.01, 0.01);
    QTest::newRow("automatic") << 3 << QRectF(-0.5, 0, 2, 1) << QPointF(0.01, 0.01);
}

void tst_ZrGl2dOrtho::aspects()
{
    QFETCH(int, aspect);
    QFETCH(QRectF, rect);
    QFETCH(QPointF, scale);
    ZrGl2dOrtho view;
    view.zrgl2dViewport(200, 100);
    view.zrgl2dProjection(0.0F, 1.0F, 0.0F, 1.0F, static_cast<eAspect>(aspect));
    QCOMPARE(view.m_left, float(rect.left()));
    QCOMPARE(view.m_right, float(rect.right()));
    QCOMPARE(view.m_bottom, float(rect.top()));
    QCOMPARE(view.m_top, float(rect.bottom()));
    QCOMPARE(view.m_scaleX, float(scale.x()));
    QCOMPARE(view.m_scaleY, float(scale.y()));
}

void tst_ZrGl2dOrtho::cornersOfTheRectangleInForceFillTheView()
{
    ZrGl2dOrtho view;
    view.zrgl2dViewport(300, 200);
    view.zrgl2dProjection(10.0F, 20.0F, -5.0F, 5.0F, aspectAuto);
    const QVector3D low = view.m_proj.map(QVector3D(view.m_left, view.m_bottom, 0));
    const QVector3D high = view.m_proj.map(QVector3D(view.m_right, view.m_top, 0));
    QVERIFY(std::fabs(low.x() + 1) < 1e-6F && std::fabs(low.y() + 1) < 1e-6F);
    QVERIFY(std::fabs(high.x() - 1) < 1e-6F && std::fabs(high.y() - 1) < 1e-6F);
    // Near and far are 100 before and behind the plane.
    QVERIFY(std::fabs(view.m_proj.map(QVector3D(0, 0, 100)).z() + 1) < 1e-6F);
    QVERIFY(std::fabs(view.m_proj.map(QVector3D(0, 0, -100)).z() - 1) < 1e-6F);
}

void tst_ZrGl2dOrtho::mirroringIsKept_data()
{
    QTest::addColumn<int>("aspect");
    QTest::newRow("y follows x") << 1;
    QTest::newRow("x follows y") << 2;
}

void tst_ZrGl2dOrtho::mirroringIsKept()
{
    QFETCH(int, aspect);
    ZrGl2dOrtho view;
    view.zrgl2dViewport(200, 100);
    view.zrgl2dProjection(1.0F, 0.0F, 1.0F, 0.0F, static_cast<eAspect>(aspect));
    QVERIFY(view.m_left > view.m_right);
    QVERIFY(view.m_bottom > view.m_top);
    QVERIFY(view.m_scaleX > 0.0F);
    QCOMPARE(view.m_scaleX, view.m_scaleY);
}

void tst_ZrGl2dOrtho::resizingRepeatsTheRequest()
{
    ZrGl2dOrtho view;
    view.zrgl2dProjection(0.0F, 1.0F, 0.0F, 1.0F, aspectAuto);
    view.zrgl2dViewport(200, 100);
    view.zrgl2dViewport(100, 200);
    QCOMPARE(view.m_left, 0.0F);
    QCOMPARE(view.m_right, 1.0F);
    QCOMPARE(view.m_bottom, -0.5F);
    QCOMPARE(view.m_top, 1.5F);
}

void tst_ZrGl2dOrtho::rotationTurnsTheProjection()
{
    ZrGl2dOrtho view;
    view.m_rotation = 90.0F;
    view.zrgl2dProjection(-1.0F, 1.0F, -1.0F, 1.0F, aspectStretch);
    const QVector3D east = view.m_proj.map(QVector3D(1, 0, 0));
    QVERIFY(std::fabs(east.x()) < 1e-6F);
    QVERIFY(std::fabs(east.y() - 1.0F) < 1e-6F);
}

void tst_ZrGl2dOrtho::screenToWorldUsesTheRectangleInForce()
{
    ZrGl2dOrtho view;
    view.zrgl2dViewport(200, 100);
    view.zrgl2dProjection(0.0F, 1.0F, 0.0F, 1.0F, aspectAuto);
    float x = 0.0F;
    float y = 0.0F;
    view.ScreenToXy(0.0F, 0.0F, x, y);
    QCOMPARE(x, -0.5F);
    QCOMPARE(y, 1.0F);
    view.ScreenToXy(200.0F, 100.0F, x, y);
    QCOMPARE(x, 1.5F);
    QCOMPARE(y, 0.0F);
}

void tst_ZrGl2dOrtho::worldToScreenUsesTheRequestedRectangle()
{
    ZrGl2dOrtho view;
    view.zrgl2dViewport(200, 100);
    view.zrgl2dProjection(0.0F, 1.0F, 0.0F, 1.0F, aspectAuto);
    float sx = -1.0F;
    float sy = -1.0F;
    view.XyToScreen(1.0F, 1.0F, sx, sy);
    QCOMPARE(sx, 200.0F);
    QCOMPARE(sy, 100.0F);
    view.XyToScreen(0.5F, 0.25F, sx, sy);
    QCOMPARE(sx, 100.0F);
    QCOMPARE(sy, 25.0F);
}

void tst_ZrGl2dOrtho::conversionsAreInverseWhenStretched()
{
    ZrGl2dOrtho view;
    view.zrgl2dViewport(640, 480);
    view.zrgl2dProjection(-3.0F, 9.0F, 2.0F, 5.0F, aspectStretch);
    float x = 0.0F;
    float y = 0.0F;
    view.ScreenToXy(160.0F, 120.0F, x, y);
    float sx = 0.0F;
    float sy = 0.0F;
    view.XyToScreen(x, y, sx, sy);
    QCOMPARE(sx, 160.0F);
    QCOMPARE(sy, 480.0F - 120.0F); // y points up
}

void tst_ZrGl2dOrtho::conversionsLeaveOutputsAloneWhenRotated()
{
    ZrGl2dOrtho view;
    view.m_rotation = 0.001F;
    view.zrgl2dProjection(0.0F, 1.0F, 0.0F, 1.0F, aspectStretch);
    float a = 7.0F;
    float b = 8.0F;
    view.ScreenToXy(10.0F, 10.0F, a, b);
    QCOMPARE(a, 7.0F);
    QCOMPARE(b, 8.0F);
    view.XyToScreen(10.0F, 10.0F, a, b);
    QCOMPARE(a, 7.0F);
    QCOMPARE(b, 8.0F);
}

void tst_ZrGl2dOrtho::noPixels()
{
    ZrGl2dOrtho view;
    view.zrgl2dProjection(2.0F, 4.0F, 1.0F, 3.0F, aspectStretch);
    view.zrgl2dViewport(0, 0);
    QVERIFY(std::isinf(view.m_scaleX));
    QVERIFY(std::isinf(view.m_scaleY));
    float x = 0.0F;
    float y = 0.0F;
    view.ScreenToXy(50.0F, 50.0F, x, y);
    QCOMPARE(x, 2.0F);
    QCOMPARE(y, 3.0F);
}

void tst_ZrGl2dOrtho::noExtent()
{
    ZrGl2dOrtho view;
    view.zrgl2dProjection(2.0F, 2.0F, 1.0F, 1.0F, aspectStretch);
    float sx = -1.0F;
    float sy = -1.0F;
    view.XyToScreen(5.0F, 5.0F, sx, sy);
    QCOMPARE(sx, 0.0F);
    QCOMPARE(sy, 0.0F);
    QCOMPARE(view.m_scaleX, 0.0F);
}

void tst_ZrGl2dOrtho::settingsRoundTrip()
{
    ZrGl2dOrtho view;
    view.m_originX = 512345.5F;
    view.m_originY = -2.25F;
    view.m_rotation = 30.0F;
    QJsonObject object;
    zr::ZrSetModule store(zr::ePersistStoring, object);
    view.settings(store);
    QCOMPARE(object.keys(),
        QStringList({QStringLiteral("origin-x"), QStringLiteral("origin-y"), QStringLiteral("rotation")}));
    ZrGl2dOrtho other;
    zr::ZrSetModule load(zr::ePersistLoading, object);
    other.settings(load);
    QCOMPARE(other.m_originX, 512345.5F);
    QCOMPARE(other.m_originY, -2.25F);
    QCOMPARE(other.m_rotation, 30.0F);
}

void tst_ZrGl2dOrtho::copiesCarryEverything()
{
    ZrGl2dOrtho view;
    view.m_view.translate(1.0F, 2.0F);
    view.m_originX = 3.0F;
    view.m_rotation = 4.0F;
    view.zrgl2dViewport(320, 240);
    view.zrgl2dProjection(1.0F, 2.0F, 3.0F, 4.0F, aspectFollowX);
    const ZrGl2dOrtho copy(view);
    ZrGl2dOrtho assigned;
    assigned = view;
    for (const ZrGl2dOrtho* other : {&copy, static_cast<const ZrGl2dOrtho*>(&assigned)}) {
        QCOMPARE(other->m_proj, view.m_proj);
        QCOMPARE(other->m_view, view.m_view);
        QCOMPARE(other->m_originX, view.m_originX);
        QCOMPARE(other->m_rotation, view.m_rotation);
        QCOMPARE(other->m_width, view.m_width);
        QCOMPARE(other->m_aspect, view.m_aspect);
        QCOMPARE(other->m_reqRight, view.m_reqRight);
        QCOMPARE(other->m_top, view.m_top);
        QCOMPARE(other->m_scaleY, view.m_scaleY);
    }
}

QTEST_APPLESS_MAIN(tst_ZrGl2dOrtho)
#include "tst_ZrGl2dOrtho.moc"
