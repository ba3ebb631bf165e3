// Lines, rectangles, quads, overlay and background: what they leave in the framebuffer, in both kinds of
// context.

#include "GlSurfaceTest.h"

namespace {

constexpr int side = GlView::side;

} // namespace

class tst_ZrGlSurfacePixels : public GlSurfaceTest
{
    Q_OBJECT

private Q_SLOTS:
    void line();
    void lineColour();
    void polylineDrawsPairs();
    void vboLineIsClosed();
    void vboLineKeepsTheProgram();
    void pixelRect_data();
    void pixelRect();
    void pixelRectInAViewport();
    void quadIsStretched();
    void overlay();
    void overlayInAViewport();
    void noOverlay();
    void background();
    void viewTransform_data();
    void viewTransform();
};

void tst_ZrGlSurfacePixels::line()
{
    // Through the centres of pixels, y up.
    m_view->ZrglRenderLine(10, 20.5F, 30, 20.5F, QColor(10, 200, 30));
    m_view->ZrglRenderLine(40.5F, 5, 40.5F, 9, Qt::red);
    QImage expected = Filled(Qt::black);
    for (int x = 10; x < 30; ++x)
        expected.setPixelColor(x, side - 1 - 20, QColor(10, 200, 30));
    for (int y = 5; y < 9; ++y)
        expected.setPixelColor(40, side - 1 - y, Qt::red);
    const QString difference = gl::Difference(m_context->Read(), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::lineColour()
{
    // A colour with alpha is not blended.
    m_context->Clear(Qt::white);
    m_view->ZrglRenderLine(0, 8.5F, 64, 8.5F, QColor(100, 50, 25, 64));
    QVERIFY(gl::Distance(m_context->Read().pixelColor(30, side - 1 - 8), QColor(100, 50, 25, 64)) <= 1);
    QCOMPARE(m_view->m_colour, QColor(100, 50, 25, 64));
}

void tst_ZrGlSurfacePixels::polylineDrawsPairs()
{
    float points[] = {0, 10.5F, 20, 10.5F, 40, 10.5F, 64, 10.5F, 0, 50.5F};
    m_view->ZrglRenderPolyline(points, 5, Qt::yellow);
    QImage expected = Filled(Qt::black);
    for (int x = 0; x < side; ++x) {
        if (x < 20 || x >= 40)
            expected.setPixelColor(x, side - 1 - 10, Qt::yellow);
    }
    const QString difference = gl::Difference(m_context->Read(), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::vboLineIsClosed()
{
    // The second half of each vertex would be far away.
    float corners[]
        = {10.5F, 10.5F, 900, 900, 30.5F, 10.5F, 900, 900, 30.5F, 40.5F, 900, 900, 10.5F, 40.5F, 900, 900};
    m_view->m_colour = Qt::cyan;
    m_view->ZrglSetPgm(ZrGlSurface::solid);
    m_view->ZrglRenderVboLine(corners, 4);
    QImage expected = Filled(Qt::black);
    for (int x = 10; x <= 30; ++x) {
        expected.setPixelColor(x, side - 1 - 10, Qt::cyan);
        expected.setPixelColor(x, side - 1 - 40, Qt::cyan);
    }
    for (int y = 10; y <= 40; ++y) {
        expected.setPixelColor(10, side - 1 - y, Qt::cyan);
        expected.setPixelColor(30, side - 1 - y, Qt::cyan);
    }
    // Which of two lines draws the pixel that they share, if any does, is GL's matter.
    QImage seen = m_context->Read();
    for (const QPoint& corner : {QPoint(10, 10), QPoint(30, 10), QPoint(30, 40), QPoint(10, 40)}) {
        seen.setPixelColor(corner.x(), side - 1 - corner.y(), Qt::black);
        expected.setPixelColor(corner.x(), side - 1 - corner.y(), Qt::black);
    }
    const QString difference = gl::Difference(seen, expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::vboLineKeepsTheProgram()
{
    // With the program made current last: here one that takes a texture.
    float corners[] = {0, 8.5F, 0, 0, 64, 8.5F, 0, 0};
    m_context->Functions()->glBindTexture(GL_TEXTURE_2D, m_context->Texture(Filled(QSize(1, 1), Qt::yellow)));
    m_view->ZrglSetPgm(ZrGlSurface::texture);
    m_view->m_colour = Qt::red;
    m_view->ZrglRenderVboLine(corners, 2);
    QCOMPARE(m_context->Read().pixelColor(30, side - 1 - 8), QColor(Qt::yellow));
    QCOMPARE(m_view->m_program, m_view->m_programs[ZrGlSurface::texture]);
}

void tst_ZrGlSurfacePixels::pixelRect_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::newRow("inside") << QRect(3, 5, 20, 7);
    QTest::newRow("one pixel") << QRect(63, 0, 1, 1);
    QTest::newRow("all") << QRect(0, 0, side, side);
    QTest::newRow("beyond") << QRect(-10, 50, 30, 100);
    QTest::newRow("empty") << QRect(10, 10, 0, 20);
    QTest::newRow("outside") << QRect(64, 64, 5, 5);
}

void tst_ZrGlSurfacePixels::pixelRect()
{
    QFETCH(QRect, rect);
    // Whatever the view shows.
    m_view->m_rotation = 33;
    m_view->zrgl2dProjection(1e6F, 2e6F, -5, -7, aspectAuto);
    const QMatrix4x4 before = m_view->m_proj;
    m_view->ZrglRenderPixelRect(rect.x(), rect.y(), rect.width(), rect.height(), Qt::magenta);
    QCOMPARE(m_view->m_proj, before);
    QImage expected = Filled(Qt::black);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            if (rect.contains(x, y))
                expected.setPixelColor(x, y, Qt::magenta);
        }
    }
    const QString difference = gl::Difference(m_context->Read(), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::pixelRectInAViewport()
{
    m_view->ZrglSetViewport(16, 8, 32, 24);
    m_view->ZrGlClipToViewport();
    m_view->ZrglRenderPixelRect(2, 3, 10, 4, Qt::green);
    QImage expected = Filled(Qt::black);
    // The viewport's upper edge is 8 + 24 pixels above the lower edge of the framebuffer.
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 10; ++x)
            expected.setPixelColor(16 + 2 + x, side - 32 + 3 + y, Qt::green);
    }
    const QString difference = gl::Difference(m_context->Read(), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::quadIsStretched()
{
    QImage image(2, 1, QImage::Format_RGBA8888);
    image.setPixelColor(0, 0, Qt::red);
    image.setPixelColor(1, 0, Qt::green);
    float quad[] = {10, 10, 0, 0, 10, 30, 0, 1, 50, 10, 1, 0, 50, 30, 1, 1};
    m_view->ZrglRenderVbo(quad, m_context->Texture(image), ZrGlSurface::texture);
    QImage expected = Filled(Qt::black);
    for (int y = 10; y < 30; ++y) {
        for (int x = 10; x < 50; ++x)
            expected.setPixelColor(x, side - 1 - y, x < 30 ? Qt::red : Qt::green);
    }
    const QString difference = gl::Difference(m_context->Read(), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::overlay()
{
    QImage image(2, 2, QImage::Format_RGBA8888);
    image.setPixelColor(0, 0, Qt::red);
    image.setPixelColor(1, 0, Qt::green);
    image.setPixelColor(0, 1, Qt::blue);
    image.setPixelColor(1, 1, Qt::transparent);
    m_view->m_overlayTex = m_context->Texture(image);
    m_view->zrgl2dProjection(5, 6, 7, 8, aspectStretch);
    const QMatrix4x4 before = m_view->m_proj;
    m_context->Functions()->glEnable(GL_DEPTH_TEST);
    m_context->Functions()->glDepthFunc(GL_NEVER);
    m_context->Clear(Qt::white);
    m_view->ZrglRenderOverlay();
    QCOMPARE(m_view->m_proj, before);
    QVERIFY(!m_context->Functions()->glIsEnabled(GL_DEPTH_TEST));
    QImage expected = Filled(Qt::white);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            if (x < 32 || y < 32)
                expected.setPixelColor(x, y, y >= 32 ? Qt::blue : x < 32 ? Qt::red : Qt::green);
        }
    }
    QImage seen = m_context->Read();
    const QString difference = gl::Difference(seen, expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::overlayInAViewport()
{
    m_view->m_overlayTex = m_context->Texture(Filled(QSize(3, 3), Qt::cyan));
    m_view->ZrglSetViewport(16, 8, 32, 24);
    m_view->ZrGlClipToViewport();
    m_view->m_rotation = 20;
    m_view->zrgl2dProjection(-1, 1, -1, 1, aspectAuto);
    const QMatrix4x4 before = m_view->m_proj;
    m_view->ZrglRenderOverlay();
    QCOMPARE(m_view->m_proj, before);
    QImage expected = Filled(Qt::black);
    for (int y = 8; y < 32; ++y) {
        for (int x = 16; x < 48; ++x)
            expected.setPixelColor(x, side - 1 - y, Qt::cyan);
    }
    const QString difference = Unlike(expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::noOverlay()
{
    m_context->Functions()->glEnable(GL_DEPTH_TEST);
    m_view->ZrglRenderOverlay();
    QVERIFY(m_context->Functions()->glIsEnabled(GL_DEPTH_TEST));
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::black), 0);
}

void tst_ZrGlSurfacePixels::background()
{
    QImage image(side, side, QImage::Format_RGB32);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            image.setPixelColor(x, y, QColor(3 * x, 4 * y, x + y));
    }
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("back.png"));
    QVERIFY(image.save(path));
    m_view->ZrglSetBackground(path);
    m_view->m_rotation = 20;
    m_view->zrgl2dProjection(-1, 1, -1, 1, aspectAuto);
    const QMatrix4x4 before = m_view->m_proj;
    m_view->ZrglRenderBackground();
    QCOMPARE(m_view->m_proj, before);
    const QString difference = Unlike(image.convertToFormat(QImage::Format_RGBA8888), 1);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::viewTransform_data()
{
    QTest::addColumn<float>("rotation");
    QTest::newRow("as it is") << 0.0F;
    QTest::newRow("turned") << 90.0F;
    QTest::newRow("half around") << 180.0F;
}

void tst_ZrGlSurfacePixels::viewTransform()
{
    // Every primitive in world units goes through the projection; the rotation is counter-clockwise.
    QFETCH(float, rotation);
    m_view->m_rotation = rotation;
    m_view->zrgl2dProjection(-100, 100, -10, 10, aspectStretch);
    auto line = [this] { m_view->ZrglRenderLine(0.4F, 0.4F, 60, 0.4F, Qt::red); };
    line();
    const QImage seen = m_context->Read();
    int count[4] = {};
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            if (seen.pixelColor(x, y) == QColor(Qt::red))
                ++count[(x >= 32 ? 1 : 0) + (y >= 32 ? 2 : 0)];
        }
    }
    // 60 world units are 19 pixels to the right; turned, the line leaves the view, which is 10 units high.
    const int quadrant = rotation == 0.0F ? 1 : rotation == 90.0F ? 0 : 2;
    for (int i = 0; i < 4; ++i)
        QCOMPARE(count[i] > 0, i == quadrant);
    QVERIFY(qAbs(count[quadrant] - (rotation == 90.0F ? 31 : 19)) <= 1);
}

GL_TEST_MAIN(tst_ZrGlSurfacePixels)
#include "tst_ZrGlSurfacePixels.moc"
