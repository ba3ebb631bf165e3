#include "ZrUtil/ZrGl2dOrtho.h"
#include "ZrUtil/ZrSetModule.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>
#include <vector>

class tst_ZrGl2dOrtho : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmptyAtFirst();
    void membersInOrder();
    void aspects_data();
    void aspects();
    void cornersOfTheRectangleInForceFillTheView();
    void anyOtherAspectStretches_data();
    void anyOtherAspectStretches();
    void tieFollowsX();
    void requestIsKept();
    void mirroringIsKept_data();
    void mirroringIsKept();
    void noExtentIsMirrored_data();
    void noExtentIsMirrored();
    void resizingRepeatsTheRequest();
    void projectionIsComputedAnew();
    void rotationTurnsTheProjection();
    void rotationIsAboutTheWorldOrigin();
    void settingsRoundTrip();
    void settingsTakeEffectLater();
    void missingSettingsChangeNothing();
    void copiesCarryEverything_data();
    void copiesCarryEverything();
};

void tst_ZrGl2dOrtho::isEmptyAtFirst()
{
    const ZrGl2dOrtho view;
    QVERIFY(view.m_proj.isIdentity());
    QVERIFY(view.m_view.isIdentity());
    QCOMPARE(int(view.m_aspect), 0);
    for (const float zero : {view.m_reqLeft, view.m_reqRight, view.m_reqTop, view.m_reqBottom, view.m_left,
             view.m_right, view.m_top, view.m_bottom})
        QCOMPARE(zero, 0.0F);
    QCOMPARE(view.m_width, 100);
    QCOMPARE(view.m_height, 100);
    QCOMPARE(view.m_scaleX, 1.0F);
    QCOMPARE(view.m_scaleY, 1.0F);
    QCOMPARE(view.m_rotation, 0.0F);
    QCOMPARE(view.m_originX, 0.0F);
    QCOMPARE(view.m_originY, 0.0F);
}

void tst_ZrGl2dOrtho::membersInOrder()
{
    const ZrGl2dOrtho v;
    const std::vector<const void*> members{&v.m_proj, &v.m_view, &v.m_originX, &v.m_originY, &v.m_aspect,
        &v.m_reqLeft, &v.m_reqRight, &v.m_reqTop, &v.m_reqBottom, &v.m_rotation, &v.m_left, &v.m_right,
        &v.m_top, &v.m_bottom, &v.m_width, &v.m_height, &v.m_scaleX, &v.m_scaleY};
    QVERIFY(std::is_sorted(members.begin(), members.end(), std::less<const void*>()));
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

void tst_ZrGl2dOrtho::anyOtherAspectStretches_data()
{
    QTest::addColumn<int>("aspect");
    for (const int aspect : {-1, 4, 1000})
        QTest::addRow("%d", aspect) << aspect;
}

void tst_ZrGl2dOrtho::anyOtherAspectStretches()
{
    QFETCH(int, aspect);
    ZrGl2dOrtho view;
    view.zrgl2dViewport(200, 100);
    view.zrgl2dProjection(0.0F, 1.0F, 0.0F, 1.0F, static_cast<eAspect>(aspect));
    QCOMPARE(int(view.m_aspect), aspect);
    QCOMPARE(view.m_left, 0.0F);
    QCOMPARE(view.m_right, 1.0F);
    QCOMPARE(view.m_bottom, 0.0F);
    QCOMPARE(view.m_top, 1.0F);
    QCOMPARE(view.m_scaleX, 0.005F);
    QCOMPARE(view.m_scaleY, 0.01F);
}

void tst_ZrGl2dOrtho::tieFollowsX()
{
    // With equal scales y follows x: x stays to the bit, y may round.
    int differences = 0;
    for (int i = 1; i < 200; ++i) {
        const float low = 0.1F * static_cast<float>(i);
        const float high = low + 0.3F;
        ZrGl2dOrtho view;
        view.zrgl2dViewport(301, 301);
        view.zrgl2dProjection(low, high, low, high, aspectAuto);
        QVERIFY(view.m_left == low && view.m_right == high);
        differences += view.m_bottom == low && view.m_top == high ? 0 : 1;
    }
    QVERIFY(differences > 0);
}

void tst_ZrGl2dOrtho::requestIsKept()
{
    ZrGl2dOrtho view;
    view.zrgl2dViewport(200, 100);
    view.zrgl2dProjection(1.0F, 2.0F, 3.0F, 4.0F, aspectAuto);
    QCOMPARE(view.m_reqLeft, 1.0F);
    QCOMPARE(view.m_reqRight, 2.0F);
    QCOMPARE(view.m_reqBottom, 3.0F);
    QCOMPARE(view.m_reqTop, 4.0F);
    QCOMPARE(int(view.m_aspect), 3);
    QCOMPARE(view.m_width, 200);
    QCOMPARE(view.m_height, 100);
}

void tst_ZrGl2dOrtho::mirroringIsKept_data()
{
    // 200 x 100 pixels for a request of 1 by 1, mirrored in x, in y, or in both.
    QTest::addColumn<int>("aspect");
    QTest::addColumn<QVector<float>>("request"); // left, right, bottom, top
    QTest::addColumn<QVector<float>>("inForce");
    using V = QVector<float>;
    QTest::newRow("y follows x, x") << 1 << V{1, 0, 0, 1} << V{1, 0, 0.25F, 0.75F};
    QTest::newRow("y follows x, y") << 1 << V{0, 1, 1, 0} << V{0, 1, 0.75F, 0.25F};
    QTest::newRow("y follows x, both") << 1 << V{1, 0, 1, 0} << V{1, 0, 0.75F, 0.25F};
    QTest::newRow("x follows y, x") << 2 << V{1, 0, 0, 1} << V{1.5F, -0.5F, 0, 1};
    QTest::newRow("x follows y, y") << 2 << V{0, 1, 1, 0} << V{-0.5F, 1.5F, 1, 0};
    QTest::newRow("x follows y, both") << 2 << V{1, 0, 1, 0} << V{1.5F, -0.5F, 1, 0};
    QTest::newRow("automatic, x") << 3 << V{1, 0, 0, 1} << V{1.5F, -0.5F, 0, 1};
}

void tst_ZrGl2dOrtho::mirroringIsKept()
{
    QFETCH(int, aspect);
    QFETCH(QVector<float>, request);
    QFETCH(QVector<float>, inForce);
    ZrGl2dOrtho view;
    view.zrgl2dViewport(200, 100);
    view.zrgl2dProjection(request[0], request[1], request[2], request[3], static_cast<eAspect>(aspect));
    QCOMPARE(view.m_left, inForce[0]);
    QCOMPARE(view.m_right, inForce[1]);
    QCOMPARE(view.m_bottom, inForce[2]);
    QCOMPARE(view.m_top, inForce[3]);
    QCOMPARE(view.m_scaleX, aspect == 1 ? 0.005F : 0.01F);
    QCOMPARE(view.m_scaleX, view.m_scaleY);
}

void tst_ZrGl2dOrtho::noExtentIsMirrored_data()
{
    QTest::addColumn<int>("aspect");
    QTest::addColumn<QVector<float>>("inForce"); // left, right, bottom, top
    using V = QVector<float>;
    // 200 x 100 pixels. Where both ends are equal the one that is greater comes first.
    QTest::newRow("y follows x") << 1 << V{0, 4, 3, 1};
    QTest::newRow("x follows y") << 2 << V{6, -2, 0, 4};
}

void tst_ZrGl2dOrtho::noExtentIsMirrored()
{
    QFETCH(int, aspect);
    QFETCH(QVector<float>, inForce);
    ZrGl2dOrtho view;
    view.zrgl2dViewport(200, 100);
    if (aspect == 1)
        view.zrgl2dProjection(0.0F, 4.0F, 2.0F, 2.0F, aspectFollowX);
    else
        view.zrgl2dProjection(2.0F, 2.0F, 0.0F, 4.0F, aspectFollowY);
    QCOMPARE(view.m_left, inForce[0]);
    QCOMPARE(view.m_right, inForce[1]);
    QCOMPARE(view.m_bottom, inForce[2]);
    QCOMPARE(view.m_top, inForce[3]);
}

void tst_ZrGl2dOrtho::projectionIsComputedAnew()
{
    // Nothing of the projection before is left in it.
    ZrGl2dOrtho view;
    view.m_rotation = 30.0F;
    view.zrgl2dProjection(1.0F, 5.0F, 2.0F, 9.0F, aspectAuto);
    view.m_rotation = 0.0F;
    view.zrgl2dProjection(10.0F, 20.0F, -5.0F, 5.0F, aspectStretch);
    ZrGl2dOrtho fresh;
    fresh.zrgl2dProjection(10.0F, 20.0F, -5.0F, 5.0F, aspectStretch);
    QCOMPARE(view.m_proj, fresh.m_proj);
    view.zrgl2dViewport(100, 100);
    QCOMPARE(view.m_proj, fresh.m_proj);
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

void tst_ZrGl2dOrtho::rotationIsAboutTheWorldOrigin()
{
    // The world is turned first and projected then: x = 3 comes to be at y = 3.
    ZrGl2dOrtho view;
    view.m_rotation = 90.0F;
    view.zrgl2dProjection(-10.0F, 30.0F, -2.0F, 8.0F, aspectStretch);
    const QVector3D at = view.m_proj.map(QVector3D(3, -5, 7));
    QVERIFY(std::fabs(at.x() - (2.0F * 15 / 40 - 1)) < 1e-6F);
    QVERIFY(std::fabs(at.y() - (2.0F * 5 / 10 - 1)) < 1e-6F);
    QVERIFY(std::fabs(at.z() + 0.07F) < 1e-6F);
}

void tst_ZrGl2dOrtho::settingsTakeEffectLater()
{
    ZrGl2dOrtho view;
    view.zrgl2dProjection(-1.0F, 1.0F, -1.0F, 1.0F, aspectStretch);
    const QMatrix4x4 before = view.m_proj;
    QJsonObject object{{QStringLiteral("rotation"), 90.0}};
    zr::ZrSetModule load(zr::ePersistLoading, object);
    view.settings(load);
    QCOMPARE(view.m_rotation, 90.0F);
    QCOMPARE(view.m_proj, before);
    view.zrgl2dViewport(100, 100);
    QVERIFY(std::fabs(view.m_proj.map(QVector3D(1, 0, 0)).y() - 1.0F) < 1e-6F);
}

void tst_ZrGl2dOrtho::missingSettingsChangeNothing()
{
    ZrGl2dOrtho view;
    view.m_originX = 1.0F;
    view.m_originY = 2.0F;
    view.m_rotation = 3.0F;
    QJsonObject object{{QStringLiteral("origin-y"), 5.0}, {QStringLiteral("aspect"), 2.0}};
    zr::ZrSetModule load(zr::ePersistLoading, object);
    view.settings(load);
    QCOMPARE(view.m_originX, 1.0F);
    QCOMPARE(view.m_originY, 5.0F);
    QCOMPARE(view.m_rotation, 3.0F);
    QCOMPARE(int(view.m_aspect), 0);
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

void tst_ZrGl2dOrtho::copiesCarryEverything_data()
{
    QTest::addColumn<int>("how");
    QTest::newRow("copied") << 0;
    QTest::newRow("moved") << 1;
    QTest::newRow("copy-assigned") << 2;
    QTest::newRow("move-assigned") << 3;
}

void tst_ZrGl2dOrtho::copiesCarryEverything()
{
    QFETCH(int, how);
    const auto make = [] {
        ZrGl2dOrtho view;
        view.m_view.translate(1.0F, 2.0F);
        view.m_originX = 3.0F;
        view.m_originY = 30.0F;
        view.m_rotation = 4.0F;
        view.zrgl2dViewport(320, 240);
        view.zrgl2dProjection(1.0F, 2.0F, 3.0F, 4.0F, aspectFollowX);
        // Each its own value.
        view.m_scaleY = 77.0F;
        return view;
    };
    const ZrGl2dOrtho view = make();
    ZrGl2dOrtho source = make();
    ZrGl2dOrtho other = how == 0 ? ZrGl2dOrtho(source)
        : how == 1               ? ZrGl2dOrtho(std::move(source))
                                 : ZrGl2dOrtho();
    if (how == 2)
        other = source;
    else if (how == 3)
        other = std::move(source);
    QCOMPARE(other.m_proj, view.m_proj);
    QCOMPARE(other.m_view, view.m_view);
    QVERIFY(!view.m_proj.isIdentity() && !view.m_view.isIdentity());
    using Member = float ZrGl2dOrtho::*;
    for (const Member member : {&ZrGl2dOrtho::m_originX, &ZrGl2dOrtho::m_originY, &ZrGl2dOrtho::m_reqLeft,
             &ZrGl2dOrtho::m_reqRight, &ZrGl2dOrtho::m_reqTop, &ZrGl2dOrtho::m_reqBottom,
             &ZrGl2dOrtho::m_rotation, &ZrGl2dOrtho::m_left, &ZrGl2dOrtho::m_right, &ZrGl2dOrtho::m_top,
             &ZrGl2dOrtho::m_bottom, &ZrGl2dOrtho::m_scaleX, &ZrGl2dOrtho::m_scaleY}) {
        QVERIFY(view.*member != 0.0F);
        QCOMPARE(other.*member, view.*member);
    }
    QCOMPARE(int(other.m_aspect), 1);
    QCOMPARE(other.m_width, 320);
    QCOMPARE(other.m_height, 240);
}

QTEST_APPLESS_MAIN(tst_ZrGl2dOrtho)
#include "tst_ZrGl2dOrtho.moc"
