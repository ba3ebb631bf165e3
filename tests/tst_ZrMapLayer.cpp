// When a layer is told to draw, and what it is told of its GL objects.

#include "MapSurface.h"

#include <QApplication>
#include <QtTest>

namespace {

using gl::Api;

const QSize size(64, 64);

/// Notes what it is told.
class Noting : public ZrMapLayer
{
public:
    QString told; ///< a letter each: p painted, r released, f forgotten
    ZrGlSurface* surface = nullptr;
    const ZrMapView* view = nullptr;

protected:
    void OnPaint(ZrGlSurface& onto, const ZrMapView& with) override
    {
        told += QLatin1Char('p');
        surface = &onto;
        view = &with;
    }

    void OnRelease(ZrGlSurface& onto) override
    {
        told += QLatin1Char('r');
        surface = &onto;
    }

    void OnForget() override { told += QLatin1Char('f'); }
};

} // namespace

class tst_ZrMapLayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void paints();
    void paintsNothing_data();
    void paintsNothing();
    void newContext();
    void backInTheFirst();
    void contextThatIsGone();
    void releases();
    void releasesOnce();
    void releasesInAnotherContext();
    void releasesWithoutContext();
    void releasesWhatIsGone();

private:
    MapSurface m_surface;
    ZrMapView m_view;
};

void tst_ZrMapLayer::init()
{
    m_view = map::ViewOf(size, QPointF(), 1.0);
    QVERIFY(!QOpenGLContext::currentContext());
}

void tst_ZrMapLayer::paints()
{
    const gl::Context context(Api::desktop, size);
    QVERIFY2(context.Error().isEmpty(), qPrintable(context.Error()));
    Noting layer;
    layer.Paint(m_surface, m_view);
    QCOMPARE(layer.told, QStringLiteral("p"));
    QCOMPARE(layer.surface, static_cast<ZrGlSurface*>(&m_surface));
    QCOMPARE(layer.view, static_cast<const ZrMapView*>(&m_view));
    layer.Paint(m_surface, m_view);
    QCOMPARE(layer.told, QStringLiteral("pp"));
}

void tst_ZrMapLayer::paintsNothing_data()
{
    QTest::addColumn<bool>("isVisible");
    QTest::addColumn<QSize>("view");
    QTest::addColumn<bool>("hasContext");
    QTest::newRow("not visible") << false << size << true;
    QTest::newRow("no width") << true << QSize(0, 64) << true;
    QTest::newRow("no height") << true << QSize(64, 0) << true;
    QTest::newRow("no context") << true << size << false;
}

/// What was not painted has no GL objects, so there is nothing to release.
void tst_ZrMapLayer::paintsNothing()
{
    QFETCH(bool, isVisible);
    QFETCH(QSize, view);
    QFETCH(bool, hasContext);
    gl::Context context(Api::desktop, size);
    QVERIFY2(context.Error().isEmpty(), qPrintable(context.Error()));
    if (!hasContext)
        context.DoneCurrent();
    Noting layer;
    layer.m_isVisible = isVisible;
    layer.Paint(m_surface, map::ViewOf(view, QPointF(), 1.0));
    layer.Release(m_surface);
    QCOMPARE(layer.told, QString());
    layer.m_isVisible = true;
    QVERIFY(context.MakeCurrent());
    layer.Paint(m_surface, m_view);
    QCOMPARE(layer.told, QStringLiteral("p"));
}

void tst_ZrMapLayer::newContext()
{
    Noting layer;
    const gl::Context first(Api::desktop, size);
    layer.Paint(m_surface, m_view);
    const gl::Context second(Api::desktop, size);
    QVERIFY2(second.Error().isEmpty(), qPrintable(second.Error()));
    m_surface.OnCreate();
    layer.Paint(m_surface, m_view);
    QCOMPARE(layer.told, QStringLiteral("pfp"));
    layer.Paint(m_surface, m_view);
    layer.Release(m_surface);
    QCOMPARE(layer.told, QStringLiteral("pfppr"));
}

/// A frame without a context, or while the layer is hidden, makes nobody forget.
void tst_ZrMapLayer::backInTheFirst()
{
    Noting layer;
    gl::Context first(Api::desktop, size);
    layer.Paint(m_surface, m_view);
    {
        gl::Context second(Api::desktop, size);
        QVERIFY2(second.Error().isEmpty(), qPrintable(second.Error()));
        layer.m_isVisible = false;
        layer.Paint(m_surface, m_view);
        layer.m_isVisible = true;
        second.DoneCurrent();
        layer.Paint(m_surface, m_view);
    }
    QVERIFY(first.MakeCurrent());
    layer.Paint(m_surface, m_view);
    QCOMPARE(layer.told, QStringLiteral("pp"));
}

/// Even if the next one lies where it was in memory.
void tst_ZrMapLayer::contextThatIsGone()
{
    Noting layer;
    QString expected;
    for (int i = 0; i < 5; ++i) {
        const auto context = std::make_unique<gl::Context>(Api::desktop, size);
        QVERIFY2(context->Error().isEmpty(), qPrintable(context->Error()));
        layer.Paint(m_surface, m_view);
        expected += i == 0 ? QStringLiteral("p") : QStringLiteral("fp");
        QCOMPARE(layer.told, expected);
    }
}

void tst_ZrMapLayer::releases()
{
    const gl::Context context(Api::desktop, size);
    m_surface.OnCreate();
    Noting layer;
    layer.Paint(m_surface, m_view);
    layer.surface = nullptr;
    layer.Release(m_surface);
    QCOMPARE(layer.told, QStringLiteral("pr"));
    QCOMPARE(layer.surface, static_cast<ZrGlSurface*>(&m_surface));
    layer.Paint(m_surface, m_view);
    QCOMPARE(layer.told, QStringLiteral("prp"));
}

void tst_ZrMapLayer::releasesOnce()
{
    const gl::Context context(Api::desktop, size);
    m_surface.OnCreate();
    Noting layer;
    layer.Release(m_surface);
    QCOMPARE(layer.told, QString());
    layer.Paint(m_surface, m_view);
    layer.Release(m_surface);
    layer.Release(m_surface);
    QCOMPARE(layer.told, QStringLiteral("pr"));
}

/// Deleting by name there would hit somebody else's objects.
void tst_ZrMapLayer::releasesInAnotherContext()
{
    Noting layer;
    gl::Context first(Api::desktop, size);
    layer.Paint(m_surface, m_view);
    const gl::Context second(Api::desktop, size);
    QVERIFY2(second.Error().isEmpty(), qPrintable(second.Error()));
    layer.Release(m_surface);
    QCOMPARE(layer.told, QStringLiteral("pf"));
    // There is nothing any more to forget.
    QVERIFY(first.MakeCurrent());
    layer.Paint(m_surface, m_view);
    QCOMPARE(layer.told, QStringLiteral("pfp"));
}

void tst_ZrMapLayer::releasesWithoutContext()
{
    Noting layer;
    gl::Context context(Api::desktop, size);
    layer.Paint(m_surface, m_view);
    context.DoneCurrent();
    layer.Release(m_surface);
    QCOMPARE(layer.told, QStringLiteral("pf"));
}

void tst_ZrMapLayer::releasesWhatIsGone()
{
    Noting layer;
    {
        const gl::Context context(Api::desktop, size);
        layer.Paint(m_surface, m_view);
    }
    layer.Release(m_surface);
    QCOMPARE(layer.told, QStringLiteral("pf"));
}

GL_TEST_MAIN(tst_ZrMapLayer)
#include "tst_ZrMapLayer.moc"
