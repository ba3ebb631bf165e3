// Pixels to world and back, and what has neither pixels nor extent.

#include "ZrUtil/ZrGl2dOrtho.h"

#include <QtTest>

#include <cmath>
#include <limits>

class tst_ZrGl2dOrthoPixels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void screenToWorldUsesTheRectangleInForce();
    void worldToScreenUsesTheRequestedRectangle();
    void conversionsAreInverseWhenStretched();
    void conversionsLeaveOutputsAloneWhenRotated();
    void minusZeroIsNoRotation();
    void noPixels_data();
    void noPixels();
    void noPixelsOneWay();
    void noExtent();
    void noExtentOneWay();
    void notANumber();
};

void tst_ZrGl2dOrthoPixels::screenToWorldUsesTheRectangleInForce()
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

void tst_ZrGl2dOrthoPixels::worldToScreenUsesTheRequestedRectangle()
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

void tst_ZrGl2dOrthoPixels::conversionsAreInverseWhenStretched()
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

void tst_ZrGl2dOrthoPixels::conversionsLeaveOutputsAloneWhenRotated()
{
    // The least rotation is one.
    for (const float rotation : {0.001F, -90.0F, 1e-8F, std::numeric_limits<float>::denorm_min()}) {
        ZrGl2dOrtho view;
        view.m_rotation = rotation;
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
}

void tst_ZrGl2dOrthoPixels::minusZeroIsNoRotation()
{
    ZrGl2dOrtho view;
    view.m_rotation = -0.0F;
    view.zrgl2dProjection(0.0F, 1.0F, 0.0F, 1.0F, aspectStretch);
    float a = 7.0F;
    float b = 8.0F;
    view.ScreenToXy(25.0F, 75.0F, a, b);
    QCOMPARE(a, 0.25F);
    QCOMPARE(b, 0.25F);
    view.XyToScreen(0.5F, 0.75F, a, b);
    QCOMPARE(a, 50.0F);
    QCOMPARE(b, 75.0F);
}

void tst_ZrGl2dOrthoPixels::noPixels_data()
{
    QTest::addColumn<int>("aspect");
    for (int aspect = 0; aspect < 4; ++aspect)
        QTest::addRow("%d", aspect) << aspect;
}

void tst_ZrGl2dOrthoPixels::noPixels()
{
    QFETCH(int, aspect);
    ZrGl2dOrtho view;
    view.zrgl2dProjection(2.0F, 4.0F, 1.0F, 3.0F, static_cast<eAspect>(aspect));
    view.zrgl2dViewport(0, 0);
    QVERIFY(std::isinf(view.m_scaleX));
    QVERIFY(std::isinf(view.m_scaleY));
    float x = 0.0F;
    float y = 0.0F;
    view.ScreenToXy(50.0F, 50.0F, x, y);
    // What a rectangle is in the other direction is not defined where one follows the other.
    if (aspect != aspectFollowY)
        QCOMPARE(x, 2.0F);
    if (aspect == aspectStretch || aspect == aspectFollowY)
        QCOMPARE(y, 3.0F);
    // It comes back with the pixels.
    view.zrgl2dViewport(100, 100);
    QCOMPARE(view.m_left, 2.0F);
    QCOMPARE(view.m_top, 3.0F);
    QCOMPARE(view.m_scaleX, 0.02F);
}

void tst_ZrGl2dOrthoPixels::noPixelsOneWay()
{
    ZrGl2dOrtho view;
    view.zrgl2dProjection(2.0F, 4.0F, 1.0F, 3.0F, aspectStretch);
    float x = 0.0F;
    float y = 0.0F;
    view.zrgl2dViewport(0, 100);
    QVERIFY(std::isinf(view.m_scaleX));
    QCOMPARE(view.m_scaleY, 0.02F);
    view.ScreenToXy(50.0F, 50.0F, x, y);
    QCOMPARE(x, 2.0F);
    QCOMPARE(y, 2.0F);
    view.zrgl2dViewport(100, 0);
    view.ScreenToXy(50.0F, 50.0F, x, y);
    QCOMPARE(x, 3.0F);
    QCOMPARE(y, 3.0F);
    float sx = 1.0F;
    float sy = 1.0F;
    view.XyToScreen(3.0F, 2.0F, sx, sy);
    QCOMPARE(sx, 50.0F);
    QCOMPARE(sy, 0.0F);
}

void tst_ZrGl2dOrthoPixels::noExtent()
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

void tst_ZrGl2dOrthoPixels::noExtentOneWay()
{
    ZrGl2dOrtho view;
    view.zrgl2dProjection(2.0F, 2.0F, 1.0F, 3.0F, aspectStretch);
    float sx = -1.0F;
    float sy = -1.0F;
    view.XyToScreen(5.0F, 2.0F, sx, sy);
    QCOMPARE(sx, 0.0F);
    QCOMPARE(sy, 50.0F);
    view.zrgl2dProjection(1.0F, 3.0F, 2.0F, 2.0F, aspectStretch);
    view.XyToScreen(2.0F, 5.0F, sx, sy);
    QCOMPARE(sx, 50.0F);
    QCOMPARE(sy, 0.0F);
}

void tst_ZrGl2dOrthoPixels::notANumber()
{
    // Nothing to see, and nothing that lasts.
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
             -std::numeric_limits<float>::max()}) {
        for (const eAspect aspect : {aspectStretch, aspectFollowX, aspectFollowY, aspectAuto}) {
            ZrGl2dOrtho view;
            view.zrgl2dProjection(bad, 1.0F, 0.0F, bad, aspect);
            view.zrgl2dViewport(-5, 7);
            float x = 0.0F;
            float y = 0.0F;
            view.ScreenToXy(bad, bad, x, y);
            view.XyToScreen(bad, bad, x, y);
            view.zrgl2dViewport(100, 100);
            view.zrgl2dProjection(0.0F, 1.0F, 0.0F, 1.0F, aspect);
            QCOMPARE(view.m_scaleX, 0.01F);
            QCOMPARE(view.m_left, 0.0F);
            QCOMPARE(view.m_top, 1.0F);
        }
    }
}

QTEST_APPLESS_MAIN(tst_ZrGl2dOrthoPixels)
#include "tst_ZrGl2dOrthoPixels.moc"
