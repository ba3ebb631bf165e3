// A map of layers: where it draws, in which order, and what is left of it in the context.

#include "GlTest.h"
#include "ZrKit/map/ZrMapLayer.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrUtil/ZrTheme.h"

#include <QtWidgets>

namespace {

using gl::Api;

constexpr int side = 64;
const QRect viewport(8, 16, 40, 32); // y up

/// A layer that paints a rectangle of the viewport, y down, and notes what it was told.
class Box : public ZrMapLayer
{
public:
    Box(const QRect& area, const QColor& fill)
        : rect(area)
        , colour(fill)
    {
    }

    QRect rect;
    QColor colour;
    int painted = 0;
    int released = 0;
    int forgotten = 0;
    bool isRude = false; ///< leaves scissor, colour mask and clear colour as it likes
    QSize seen;

protected:
    void OnPaint(ZrGlSurface& surface, const ZrMapView& view) override
    {
        ++painted;
        seen = QSize(view.Width(), view.Height());
        surface.ZrglRenderPixelRect(rect.x(), rect.y(), rect.width(), rect.height(), colour);
        if (!isRude)
            return;
        surface.m_gl.glScissor(0, 0, 1, 1);
        surface.m_gl.glDisable(GL_SCISSOR_TEST);
        surface.m_gl.glClearColor(1.0F, 1.0F, 1.0F, 0.25F);
    }

    void OnRelease(ZrGlSurface& /*surface*/) override { ++released; }

    void OnForget() override { ++forgotten; }
};

/// A quad whose alpha replaces what is there.
class Hole : public ZrMapLayer
{
protected:
    void OnPaint(ZrGlSurface& surface, const ZrMapView& /*view*/) override
    {
        surface.m_gl.glScissor(20, 20, 10, 10);
        surface.m_gl.glClearColor(0.0F, 0.0F, 1.0F, 0.25F);
        surface.m_gl.glClear(GL_COLOR_BUFFER_BIT);
    }

    void OnRelease(ZrGlSurface& /*surface*/) override { }

    void OnForget() override { }
};

void Prepare(ZrMapSurface& map)
{
    map.m_background = QStringLiteral(":/back_light.png");
    map.OnCreate();
    map.ZrglSetViewport(viewport);
    map.OnResize(viewport.width(), viewport.height());
}

} // namespace

class tst_ZrMapSurface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void drawsInsideItsViewport();
    void orderOfLayers();
    void invisibleLayer();
    void background();
    void isOpaque();
    void layersLeaveTheirMarks();
    void depthIsNotLookedAt();
    void wholeColourIsWritten();
    void zeroSize_data();
    void zeroSize();
    void notCreated();
    void noContext();
    void noLayers();
    void newContext();
    void release();
    void releaseInAnotherContext();
    void releaseWithoutPaint();
};

void tst_ZrMapSurface::initTestCase_data()
{
    QTest::addColumn<Api>("api");
    QTest::newRow("desktop") << Api::desktop;
    QTest::newRow("es") << Api::es;
}

#define CONTEXT(name)                                                                                        \
    QFETCH_GLOBAL(Api, api);                                                                                 \
    gl::Context name(api, QSize(side, side));                                                                \
    QVERIFY2(name.Error().isEmpty(), qPrintable(name.Error()))

void tst_ZrMapSurface::drawsInsideItsViewport()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    map.m_water = QColor(0, 0, 255);
    Box box(QRect(-500, -500, 1000, 1000), Qt::red);
    map.m_layers = {&box};
    context.Clear(Qt::green);
    context.TakeErrors();
    map.Render();
    const QImage image = context.Read();
    const QRect inside(
        viewport.x(), side - viewport.y() - viewport.height(), viewport.width(), viewport.height());
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            QCOMPARE(image.pixelColor(x, y), QColor(inside.contains(x, y) ? Qt::red : Qt::green));
    }
    QCOMPARE(box.seen, viewport.size());
    QVERIFY(!context.Functions()->glIsEnabled(GL_SCISSOR_TEST));
    QCOMPARE(context.TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrMapSurface::orderOfLayers()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    map.m_water = Qt::blue;
    Box first(QRect(0, 0, 20, 20), Qt::red);
    Box second(QRect(10, 10, 20, 20), Qt::green);
    map.m_layers = {&first, &second};
    map.Render();
    // The upper left corner of the viewport is at 8, 16.
    QImage image = context.Read();
    QCOMPARE(image.pixelColor(8 + 5, 16 + 5), QColor(Qt::red));
    QCOMPARE(image.pixelColor(8 + 15, 16 + 15), QColor(Qt::green));
    QCOMPARE(image.pixelColor(8 + 25, 16 + 25), QColor(Qt::green));
    map.m_layers = {&second, &first};
    map.Render();
    image = context.Read();
    QCOMPARE(image.pixelColor(8 + 15, 16 + 15), QColor(Qt::red));
    QCOMPARE(image.pixelColor(8 + 25, 16 + 25), QColor(Qt::green));
    QCOMPARE(first.painted, 2);
}

void tst_ZrMapSurface::invisibleLayer()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    map.m_water = Qt::blue;
    Box box(QRect(0, 0, 20, 20), Qt::red);
    box.m_isVisible = false;
    map.m_layers = {&box};
    map.Render();
    QCOMPARE(context.Read().pixelColor(10, 18), QColor(Qt::blue));
    QCOMPARE(box.painted, 0);
    box.m_isVisible = true;
    map.Render();
    QCOMPARE(context.Read().pixelColor(10, 18), QColor(Qt::red));
}

void tst_ZrMapSurface::background()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    map.Render();
    const QColor sea(ZrTheme::sea.red(), ZrTheme::sea.green(), ZrTheme::sea.blue());
    QCOMPARE(context.Read().pixelColor(20, 20), sea);
    // A translucent one does not make a hole into the window.
    map.m_water = QColor(10, 20, 30, 40);
    map.Render();
    QCOMPARE(context.Read().pixelColor(20, 20), QColor(10, 20, 30));
}

void tst_ZrMapSurface::isOpaque()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    map.m_water = Qt::red;
    Hole hole;
    map.m_layers = {&hole};
    context.Clear(QColor(0, 0, 0, 0));
    map.Render();
    const QImage image = context.Read();
    QCOMPARE(image.pixelColor(25, side - 25), QColor(0, 0, 255));
    QCOMPARE(image.pixelColor(viewport.x() + 1, side - viewport.y() - 2), QColor(Qt::red));
    QCOMPARE(image.pixelColor(1, 1), QColor(0, 0, 0, 0));
    QCOMPARE(context.TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrMapSurface::layersLeaveTheirMarks()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    map.m_water = Qt::red;
    Box rude(QRect(0, 0, 20, 20), QColor(0, 255, 0));
    rude.isRude = true;
    map.m_layers = {&rude};
    context.Clear(QColor(7, 8, 9, 10));
    for (int i = 0; i < 2; ++i) {
        map.Render();
        const QImage image = context.Read();
        QCOMPARE(image.pixelColor(1, 1), QColor(7, 8, 9, 10));
        QCOMPARE(image.pixelColor(10, 18), QColor(0, 255, 0));
        QCOMPARE(image.pixelColor(viewport.right() - 1, 40), QColor(Qt::red));
    }
}

void tst_ZrMapSurface::depthIsNotLookedAt()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    Box box(QRect(0, 0, 20, 20), Qt::red);
    map.m_layers = {&box};
    QOpenGLFunctions* const f = context.Functions();
    f->glEnable(GL_DEPTH_TEST);
    f->glDepthFunc(GL_NEVER);
    map.Render();
    QCOMPARE(context.Read().pixelColor(10, 18), QColor(Qt::red));
}

void tst_ZrMapSurface::wholeColourIsWritten()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    map.m_water = QColor(200, 100, 50);
    QOpenGLFunctions* const f = context.Functions();
    context.Clear(Qt::black);
    f->glColorMask(GL_FALSE, GL_FALSE, GL_TRUE, GL_FALSE);
    map.Render();
    QCOMPARE(context.Read().pixelColor(20, 20), QColor(200, 100, 50));
}

void tst_ZrMapSurface::zeroSize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("no width") << QSize(0, 10);
    QTest::newRow("no height") << QSize(10, 0);
    QTest::newRow("below zero") << QSize(-5, 10);
}

void tst_ZrMapSurface::zeroSize()
{
    QFETCH(QSize, size);
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    Box box(QRect(0, 0, 20, 20), Qt::red);
    map.m_layers = {&box};
    map.ZrglSetViewport(5, 5, size.width(), size.height());
    map.OnResize(size.width(), size.height());
    context.Clear(Qt::green);
    context.TakeErrors();
    map.Render();
    QCOMPARE(context.TakeErrors(), GLenum(GL_NO_ERROR));
    QCOMPARE(box.painted, 0);
    QCOMPARE(context.Read().pixelColor(20, 20), QColor(Qt::green));
}

void tst_ZrMapSurface::notCreated()
{
    CONTEXT(context);
    ZrMapSurface map;
    Box box(QRect(0, 0, 20, 20), Qt::red);
    map.m_layers = {&box};
    map.ZrglSetViewport(viewport);
    map.OnResize(viewport.width(), viewport.height());
    map.Render();
    QCOMPARE(box.painted, 0);
}

void tst_ZrMapSurface::noContext()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    Box box(QRect(0, 0, 20, 20), Qt::red);
    map.m_layers = {&box};
    context.DoneCurrent();
    map.Render();
    QCOMPARE(box.painted, 0);
    QVERIFY(context.MakeCurrent());
    map.Render();
    QCOMPARE(box.painted, 1);
}

void tst_ZrMapSurface::noLayers()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    context.TakeErrors();
    map.m_water = Qt::cyan;
    map.Render();
    map.Release();
    QCOMPARE(context.Read().pixelColor(20, 20), QColor(Qt::cyan));
    QCOMPARE(context.TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrMapSurface::newContext()
{
    QFETCH_GLOBAL(Api, api);
    ZrMapSurface map;
    Box box(QRect(0, 0, 20, 20), Qt::red);
    map.m_layers = {&box};
    {
        gl::Context first(api, QSize(side, side));
        QVERIFY2(first.Error().isEmpty(), qPrintable(first.Error()));
        Prepare(map);
        map.Render();
        map.Render();
        QCOMPARE(box.painted, 2);
        QCOMPARE(box.forgotten, 0);
    }
    gl::Context second(api, QSize(side, side));
    QVERIFY2(second.Error().isEmpty(), qPrintable(second.Error()));
    Prepare(map);
    second.TakeErrors();
    map.Render();
    QCOMPARE(box.forgotten, 1);
    QCOMPARE(box.painted, 3);
    QCOMPARE(second.Read().pixelColor(10, 18), QColor(Qt::red));
    QCOMPARE(second.TakeErrors(), GLenum(GL_NO_ERROR));
    map.Release();
    QCOMPARE(box.released, 1);
}

void tst_ZrMapSurface::release()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    Box box(QRect(0, 0, 20, 20), Qt::red);
    Box other(QRect(0, 0, 20, 20), Qt::red);
    map.m_layers = {&box, &other};
    map.Render();
    map.Release();
    map.Release();
    QCOMPARE(box.released, 1);
    QCOMPARE(other.released, 1);
    QCOMPARE(box.forgotten, 0);
    // They may come back.
    map.Render();
    QCOMPARE(box.painted, 2);
    map.Release();
    QCOMPARE(box.released, 2);
}

/// The objects are not of the context that is current: deleting them would hit others.
void tst_ZrMapSurface::releaseInAnotherContext()
{
    CONTEXT(context);
    ZrMapSurface map;
    Prepare(map);
    Box box(QRect(0, 0, 20, 20), Qt::red);
    map.m_layers = {&box};
    map.Render();
    gl::Context other(api, QSize(side, side));
    QVERIFY2(other.Error().isEmpty(), qPrintable(other.Error()));
    map.Release();
    QCOMPARE(box.released, 0);
    QCOMPARE(box.forgotten, 1);
    QCOMPARE(other.TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrMapSurface::releaseWithoutPaint()
{
    ZrMapSurface map;
    Box box(QRect(0, 0, 20, 20), Qt::red);
    map.m_layers = {&box};
    map.Release();
    QCOMPARE(box.released, 0);
    QCOMPARE(box.forgotten, 0);
}

GL_TEST_MAIN(tst_ZrMapSurface)
#include "tst_ZrMapSurface.moc"
