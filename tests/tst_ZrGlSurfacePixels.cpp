// What the primitives of the drawing surface leave in the framebuffer, in both kinds of context.

#include "GlView.h"
#include "ZrUtil/ZrTheme.h"

#include <QtWidgets>

#include <array>

namespace {

using gl::Api;

constexpr int side = GlView::side;

struct Point
{
    double x;
    double y;
};

QImage Filled(const QColor& colour)
{
    QImage image(side, side, QImage::Format_RGBA8888);
    image.fill(colour);
    return image;
}

/// \p over with \p alpha of 255 on \p under, as GL blends it.
QColor Blended(const QColor& under, const QColor& over, int alpha)
{
    const double a = alpha / 255.0;
    const auto mix = [a](int u, int o) { return qRound(u * (1 - a) + o * a); };
    return {mix(under.red(), over.red()), mix(under.green(), over.green()), mix(under.blue(), over.blue()),
        mix(under.alpha(), alpha)};
}

/// How far \p p is on the left of the line from \p a to \p b.
double LeftOf(const Point& p, const Point& a, const Point& b)
{
    const double length = std::hypot(b.x - a.x, b.y - a.y);
    return length < 1e-9 ? 0 : ((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)) / length;
}

/// 1 inside the triangle, -1 outside, 0 too near an edge to tell.
int InTriangle(const Point& p, const Point& a, const Point& b, const Point& c)
{
    const double d[] = {LeftOf(p, a, b), LeftOf(p, b, c), LeftOf(p, c, a)};
    const double area = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    if (std::fabs(area) < 1e-6)
        return -1;
    const double sign = area > 0 ? 1 : -1;
    const double least = std::min({d[0] * sign, d[1] * sign, d[2] * sign});
    return least > 0.05 ? 1 : least < -0.05 ? -1 : 0;
}

/// The quad over the whole view, its first texture row at the top.
std::array<float, 16> WholeView()
{
    return {0, side, 0, 0, 0, 0, 0, 1, side, side, 1, 0, side, 0, 1, 1};
}

} // namespace

class tst_ZrGlSurfacePixels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void line();
    void lineColour();
    void polylineDrawsPairs();
    void vboLineIsClosed();
    void pixelRect_data();
    void pixelRect();
    void pixelRectInAViewport();
    void textureProgram();
    void alphaProgram();
    void luminanceProgram();
    void colourKeyProgram();
    void paletteProgram_data();
    void paletteProgram();
    void yuvProgram_data();
    void yuvProgram();
    void quadIsStretched();
    void overlay();
    void noOverlay();
    void background();
    void marker_data();
    void marker();
    void markerImageBeginsBelow();
    void markerOfTheTheme();
    void splitDoubles_data();
    void splitDoubles();
    void text();
    void textMirrored_data();
    void textMirrored();
    void textRotated();
    void textOutsideTheTable();
    void fontChanges();

private:
    QImage TextImage(const QString& text, unsigned flags);

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<GlView> m_view;
    bool m_isEs = false;
};

void tst_ZrGlSurfacePixels::initTestCase_data()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL") << Api::desktop;
    QTest::newRow("ES") << Api::es;
}

void tst_ZrGlSurfacePixels::init()
{
    QFETCH_GLOBAL(gl::Api, api);
    ZrTheme::dp = 1.0F;
    m_isEs = api == Api::es;
    m_context = std::make_unique<gl::Context>(api, QSize(side, side));
    QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
    m_view = std::make_unique<GlView>();
    m_view->m_font = QFont(QStringLiteral("Liberation Sans"));
    m_view->m_font.setPixelSize(16);
    m_view->m_background = QStringLiteral(":/back_light.png");
    m_view->OnCreate();
    m_context->Clear(Qt::black);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGlSurfacePixels::cleanup()
{
    if (m_context)
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    m_view.reset();
    m_context.reset();
}

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
    m_view->ZrglSetColour(0.0F, 1.0F, 0.2F, 0.4F);
    QCOMPARE(m_view->m_colour, QColor(0, 255, 51, 102));
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

void tst_ZrGlSurfacePixels::textureProgram()
{
    // Texels are pixels, with all alphas.
    QImage image(side, side, QImage::Format_RGBA8888);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            image.setPixelColor(x, y, QColor(4 * x, 4 * y, 128, (x * 5 + y * 3) % 256));
    }
    const QColor under(200, 100, 50);
    m_context->Clear(under);
    auto quad = WholeView();
    m_view->ZrglRenderVbo(quad.data(), m_context->Texture(image), ZrGlSurface::texture);
    const QImage seen = m_context->Read();
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const QColor texel = image.pixelColor(x, y);
            QColor expected = Blended(under, texel, texel.alpha());
            // Alpha is blended by itself too.
            expected.setAlpha(seen.pixelColor(x, y).alpha());
            QVERIFY2(gl::Distance(seen.pixelColor(x, y), expected) <= 1,
                qPrintable(QStringLiteral("%1, %2: %3").arg(x).arg(y).arg(seen.pixelColor(x, y).name())));
        }
    }
}

void tst_ZrGlSurfacePixels::alphaProgram()
{
    m_context->Clear(QColor(0, 0, 200));
    QImage image(2, 1, QImage::Format_RGBA8888);
    image.setPixelColor(0, 0, QColor(1, 2, 3, 64));
    image.setPixelColor(1, 0, QColor(255, 255, 255, 255));
    auto quad = WholeView();
    // The colour's own alpha does not count.
    m_view->m_colour = QColor(250, 100, 40, 7);
    m_view->ZrglRenderVbo(quad.data(), m_context->Texture(image), ZrGlSurface::alpha);
    const QImage seen = m_context->Read();
    const QColor left = Blended(QColor(0, 0, 200), QColor(250, 100, 40), 64);
    QVERIFY(gl::Distance(QColor(seen.pixelColor(5, 5).rgb()), QColor(left.rgb())) <= 1);
    QVERIFY(gl::Distance(seen.pixelColor(60, 60), QColor(250, 100, 40)) <= 1);
}

void tst_ZrGlSurfacePixels::luminanceProgram()
{
    const QColor under(0, 60, 200);
    for (const QColor& texel : {QColor(255, 0, 0), QColor(0, 255, 0), QColor(0, 0, 255),
             QColor(200, 100, 50, 0), QColor(Qt::white), QColor(Qt::black)}) {
        m_context->Clear(under);
        QImage image(1, 1, QImage::Format_RGBA8888);
        image.fill(texel);
        auto quad = WholeView();
        m_view->ZrglRenderVbo(quad.data(), m_context->Texture(image), ZrGlSurface::luminance);
        const double a = 0.2126 * texel.red() + 0.7152 * texel.green() + 0.0722 * texel.blue();
        const QColor expected = Blended(under, texel, qRound(a));
        const QColor seen = m_context->Read().pixelColor(20, 20);
        QVERIFY2(gl::Distance(QColor(seen.rgb()), QColor(expected.rgb())) <= 2, qPrintable(seen.name()));
    }
}

void tst_ZrGlSurfacePixels::colourKeyProgram()
{
    QImage image(2, 2, QImage::Format_RGBA8888);
    image.setPixelColor(0, 0, QColor(255, 0, 255, 255));
    image.setPixelColor(1, 0, QColor(0, 0, 0, 0));
    image.setPixelColor(0, 1, QColor(0, 0, 0, 255));
    image.setPixelColor(1, 1, QColor(10, 20, 30, 255));
    m_context->Clear(Qt::white);
    auto quad = WholeView();
    m_view->m_colKey = QColor(255, 0, 255, 255);
    m_view->ZrglRenderVbo(quad.data(), m_context->Texture(image), ZrGlSurface::colourkey);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_INVALID_OPERATION));
    // Only transparent black is keyed, whatever the key.
    const QImage seen = m_context->Read();
    QCOMPARE(seen.pixelColor(10, 10), QColor(255, 0, 255));
    QCOMPARE(seen.pixelColor(50, 10), QColor(Qt::white));
    QCOMPARE(seen.pixelColor(10, 50), QColor(Qt::black));
    QCOMPARE(seen.pixelColor(50, 50), QColor(10, 20, 30));
}

void tst_ZrGlSurfacePixels::paletteProgram_data()
{
    QTest::addColumn<int>("row");
    for (int i = 0; i < QImage(QStringLiteral(":/palettes.png")).height() / 10; ++i)
        QTest::addRow("%d", i) << i;
}

void tst_ZrGlSurfacePixels::paletteProgram()
{
    QFETCH(int, row);
    const QImage palettes(QStringLiteral(":/palettes.png"));
    QCOMPARE(m_view->m_palCount, palettes.height() / 10);
    m_view->m_palIndex = row;
    auto quad = WholeView();
    for (int alpha = 0; alpha < 256; alpha += 15) {
        m_context->Clear(Qt::blue);
        m_view->ZrglRenderVbo(quad.data(), m_context->AlphaTexture(alpha), ZrGlSurface::palette);
        // Linear between the two nearest entries.
        const double at = std::clamp(alpha / 255.0 * 256.0 - 0.5, 0.0, 255.0);
        const int low = static_cast<int>(at);
        const QColor a = palettes.pixelColor(low, row * 10 + 5);
        const QColor b = palettes.pixelColor(std::min(low + 1, 255), row * 10 + 5);
        const auto mix = [&](int u, int v) { return qRound(u + (v - u) * (at - low)); };
        const QColor expected(mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue()),
            qRound(127.5 + alpha / 2.0));
        const QColor seen = m_context->Read().pixelColor(31, 31);
        QVERIFY2(gl::Distance(seen, expected) <= (m_isEs ? 4 : 2),
            qPrintable(QStringLiteral("%1: %2 instead of %3")
                           .arg(alpha)
                           .arg(seen.name(QColor::HexArgb), expected.name(QColor::HexArgb))));
    }
}

void tst_ZrGlSurfacePixels::yuvProgram_data()
{
    QTest::addColumn<int>("space");
    QTest::newRow("none") << 0;
    QTest::newRow("BT.601") << 1;
    QTest::newRow("BT.709") << 2;
    QTest::newRow("unknown") << 3;
}

void tst_ZrGlSurfacePixels::yuvProgram()
{
    QFETCH(int, space);
    m_view->m_colourSpace = space;
    auto quad = WholeView();
    const int triples[][3] = {{16, 128, 128}, {235, 128, 128}, {81, 90, 240}, {145, 54, 34}, {41, 240, 110},
        {126, 128, 128}, {0, 0, 0}, {255, 255, 255}, {180, 100, 150}};
    for (const auto& t : triples) {
        m_context->Clear(Qt::transparent);
        const unsigned y = m_context->AlphaTexture(t[0]);
        const unsigned cb = m_context->AlphaTexture(t[1]);
        const unsigned cr = m_context->AlphaTexture(t[2]);
        m_view->ZrglRenderVbo(quad.data(), {y, cb, cr}, ZrGlSurface::yuvplanar);
        const double yy = (t[0] / 255.0 - 0.06275) * 1.16428;
        const double b = (t[1] / 255.0 - 0.5) * 2.27679;
        const double r = (t[2] / 255.0 - 0.5) * 2.27679;
        double rgb[3] = {0.5, 0.5, 0.5};
        if (space == 1) {
            rgb[0] = yy + 0.70100 * r;
            rgb[1] = yy - 0.17207 * b - 0.35707 * r;
            rgb[2] = yy + 0.88600 * b;
        } else if (space == 2) {
            rgb[0] = yy + 0.78740 * r;
            rgb[1] = yy - 0.09366 * b - 0.23406 * r;
            rgb[2] = yy + 0.92780 * b;
        }
        const auto byte = [](double v) { return qRound(std::clamp(v, 0.0, 1.0) * 255.0); };
        const QColor expected(byte(rgb[0]), byte(rgb[1]), byte(rgb[2]), 255);
        const QColor seen = m_context->Read().pixelColor(31, 31);
        QVERIFY2(gl::Distance(seen, expected) <= 2,
            qPrintable(QStringLiteral("%1 %2 %3: %4 instead of %5")
                           .arg(t[0])
                           .arg(t[1])
                           .arg(t[2])
                           .arg(seen.name(QColor::HexArgb), expected.name(QColor::HexArgb))));
    }
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
    QCOMPARE(m_view->m_background, path);
    m_view->ZrglRenderBackground();
    const QString difference
        = gl::Difference(m_context->Read(), image.convertToFormat(QImage::Format_RGBA8888), 1);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::marker_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<double>("angle");
    for (const int flags : {0, 1, 4, 5, 8, 32, 40, 9, 33, 12, 36, 2, 16, 64}) {
        for (const double angle : {0.0, 30.0, 90.0, 180.0, -45.0, 400.0})
            QTest::addRow("%d at %g", flags, angle) << flags << angle;
    }
}

void tst_ZrGlSurfacePixels::marker()
{
    QFETCH(int, flags);
    QFETCH(double, angle);
    // Scales of 1 and a half: the marker is measured in pixels.
    m_view->zrgl2dProjection(0, 64, 0, 32, aspectStretch);
    const double size = 9;
    const double hx = size;
    const double hy = size / 2;
    double xL = hx;
    double xR = hx;
    double yA = hy;
    double yB = hy;
    if (flags & 1) {
        xL = 0;
        xR = 2 * hx;
    } else if (flags & 4) {
        xL = 2 * hx;
        xR = 0;
    }
    if (flags & 8) {
        yA = 0;
        yB = 2 * hy;
    } else if (flags & 32) {
        yA = 2 * hy;
        yB = 0;
    }
    const double a = qDegreesToRadians(angle);
    const double k = std::sqrt(2.0);
    // In pixels of the framebuffer, y up.
    const auto corner = [&](double turn, double ex, double ey) {
        return Point{30 + k * std::cos(a + turn) * ex, 2 * (16 + k * std::sin(a + turn) * ey)};
    };
    const Point c[] = {corner(-3 * M_PI / 4, xL, yA), corner(3 * M_PI / 4, xL, yA), corner(-M_PI / 4, xR, yB),
        corner(M_PI / 4, xR, yB)};
    QImage white(1, 1, QImage::Format_RGBA8888);
    white.fill(Qt::white);
    m_view->ZrglRenderMarker(30, 16, static_cast<float>(angle), static_cast<float>(size),
        m_context->Texture(white), QColor(255, 128, 0), flags, ZrGlSurface::alpha);
    QCOMPARE(m_view->m_colour, QColor(255, 128, 0));
    const QImage seen = m_context->Read();
    int inside = 0;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const Point p{x + 0.5, side - y - 0.5};
            const int first = InTriangle(p, c[0], c[1], c[2]);
            const int second = InTriangle(p, c[1], c[2], c[3]);
            if (first != 1 && second != 1 && (first == 0 || second == 0))
                continue;
            const bool isIn = first == 1 || second == 1;
            inside += isIn ? 1 : 0;
            QVERIFY2(seen.pixelColor(x, y) == (isIn ? QColor(255, 128, 0) : QColor(Qt::black)),
                qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }
    QVERIFY(inside > 100);
}

void tst_ZrGlSurfacePixels::markerImageBeginsBelow()
{
    // The first row of the image is at the lower edge: texture coordinates (0, 0) are the lower left corner.
    QImage image(2, 2, QImage::Format_RGBA8888);
    image.fill(Qt::transparent);
    image.setPixelColor(0, 0, Qt::white);
    m_view->ZrglRenderMarker(32, 32, 0, 10, m_context->Texture(image), Qt::red, 0, ZrGlSurface::alpha);
    QImage expected = Filled(Qt::black);
    for (int y = 22; y < 32; ++y) {
        for (int x = 22; x < 32; ++x)
            expected.setPixelColor(x, side - 1 - y, Qt::red);
    }
    const QString difference = gl::Difference(m_context->Read(), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::markerOfTheTheme()
{
    ZrTheme::dp = 2.0F;
    QImage white(1, 1, QImage::Format_RGBA8888);
    white.fill(Qt::white);
    m_view->ZrglRenderMarker(32, 32, 0, 5, m_context->Texture(white), Qt::red, 0, ZrGlSurface::alpha);
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::black), 20 * 20);
    m_context->Clear(Qt::black);
    m_view->ZrglRenderMarker(32, 32, 0, 5, 0, Qt::red, 0, ZrGlSurface::alpha);
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::black), 0);
    for (const unsigned tex : m_view->m_markers) {
        m_context->Clear(Qt::black);
        m_view->ZrglRenderMarker(32, 32, 0, 12, tex, Qt::red, 0, ZrGlSurface::alpha);
        QVERIFY(gl::CountNot(m_context->Read(), Qt::black) > 30);
    }
}

void tst_ZrGlSurfacePixels::splitDoubles_data()
{
    QTest::addColumn<int>("program");
    QTest::newRow("map.vsh") << int(ZrGlSurface::solid);
    QTest::newRow("texture.vsh") << int(ZrGlSurface::alpha);
}

void tst_ZrGlSurfacePixels::splitDoubles()
{
    QFETCH(int, program);
    // A centimetre each pixel, far from the origin of the grid.
    const double centreX = 512345.125;
    const double centreY = 4812345.375;
    const double scale = 100.0;
    const auto whole = [](double v) { return std::floor(v / 8) * 8; };
    m_view->zrgl2dProjection(-32, 32, -32, 32, aspectStretch);
    QImage white(1, 1, QImage::Format_RGBA8888);
    white.fill(Qt::white);
    m_context->Functions()->glBindTexture(GL_TEXTURE_2D, m_context->Texture(white));
    m_view->m_colour = Qt::green;
    m_view->ZrglSetPgm(static_cast<ZrGlSurface::eProgram>(program));
    QOpenGLFunctions* f = m_context->Functions();
    const GLuint handle = m_view->m_program;
    const auto at = [&](const char* name) { return f->glGetUniformLocation(handle, name); };
    const auto split = [&](const char* big, const char* small, double value) {
        const auto part = static_cast<float>(value);
        f->glUniform1f(at(big), part);
        f->glUniform1f(at(small), static_cast<float>(value - static_cast<double>(part)));
    };
    f->glUniform1i(at("uMap"), 1);
    split("uScale", "uScaleD", scale);
    split("uOriginX", "uOriginXd", centreX * scale);
    split("uOriginY", "uOriginYd", centreY * scale);
    f->glUniform1f(at("uOffX"), 0);
    f->glUniform1f(at("uOffY"), 0);
    const auto position = static_cast<GLuint>(f->glGetAttribLocation(handle, "aPosition"));
    f->glEnableVertexAttribArray(position);
    QImage expected = Filled(Qt::black);
    // Lines of ten pixels, each through the middle of its own row.
    for (int row = 2; row < side; row += 5) {
        float vertices[8] = {};
        for (int end = 0; end < 2; ++end) {
            const double x = centreX + (end * 10 + row / 2 + 0.5 - 32) / scale;
            const double y = centreY + (row + 0.5 - 32) / scale;
            vertices[end * 4] = static_cast<float>(whole(x));
            vertices[end * 4 + 1] = static_cast<float>(whole(y));
            vertices[end * 4 + 2] = static_cast<float>(x - whole(x));
            vertices[end * 4 + 3] = static_cast<float>(y - whole(y));
        }
        f->glVertexAttribPointer(position, 4, GL_FLOAT, GL_FALSE, 0, vertices);
        f->glDrawArrays(GL_LINES, 0, 2);
        for (int i = 0; i < 10; ++i)
            expected.setPixelColor(row / 2 + i, side - 1 - row, Qt::green);
    }
    f->glDisableVertexAttribArray(position);
    const QString difference = gl::Difference(m_context->Read(), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

/// What a text at 4, 20 must look like: glyph cells of the atlas side by side, white on black.
QImage tst_ZrGlSurfacePixels::TextImage(const QString& text, unsigned flags)
{
    const ZrGlSurface::Glyph& first = m_view->m_glyphs[0];
    const int atlasWidth = qRound(static_cast<float>(first.width) / (first.s1 - first.s0));
    const int atlasHeight = qRound(static_cast<float>(first.height) / (first.t1 - first.t0));
    const QImage atlas = m_context->ReadTexture(m_view->m_fontTex, QSize(atlasWidth, atlasHeight));
    QImage image = Filled(Qt::black);
    int pen = 4;
    for (const QChar c : text) {
        const ZrGlSurface::Glyph& g = m_view->m_glyphs[static_cast<std::size_t>(c.unicode() - 32)];
        const QImage cell = atlas
                                .copy(qRound(g.s0 * static_cast<float>(atlasWidth)),
                                    qRound(g.t0 * static_cast<float>(atlasHeight)), g.width, g.height)
                                .mirrored(flags & ZrGlSurface::textMirrorX, flags & ZrGlSurface::textMirrorY);
        for (int y = 0; y < cell.height(); ++y) {
            for (int x = 0; x < cell.width(); ++x) {
                const int a = cell.pixelColor(x, y).alpha();
                const int row = side - 20 - cell.height() + y;
                if (pen + x < side && row >= 0)
                    image.setPixelColor(pen + x, row, QColor(a, a, a));
            }
        }
        pen += g.width;
    }
    return image;
}

/// Rid of alpha, which blending changes.
static QImage Opaque(const QImage& image)
{
    return image.convertToFormat(QImage::Format_RGB32);
}

void tst_ZrGlSurfacePixels::text()
{
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 4, 20, 0, QStringLiteral("Ag(8}"), 0);
    // The colour in force does not matter.
    m_view->m_colour = Qt::red;
    m_view->ZrglRenderText(buffer);
    const QImage expected = TextImage(QStringLiteral("Ag(8}"), 0);
    QVERIFY(gl::CountNot(expected, Qt::black) > 60);
    const QString difference = gl::Difference(Opaque(m_context->Read()), Opaque(expected), m_isEs ? 16 : 2);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::textMirrored_data()
{
    QTest::addColumn<unsigned>("flags");
    QTest::newRow("x") << 64U;
    QTest::newRow("y") << 128U;
    QTest::newRow("both") << 192U;
}

void tst_ZrGlSurfacePixels::textMirrored()
{
    QFETCH(unsigned, flags);
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 4, 20, 0, QStringLiteral("Fg7"), flags);
    m_view->ZrglRenderText(buffer);
    const QImage expected = TextImage(QStringLiteral("Fg7"), flags);
    QVERIFY(!gl::Difference(expected, TextImage(QStringLiteral("Fg7"), 0), 60).isEmpty());
    const QString difference = gl::Difference(Opaque(m_context->Read()), Opaque(expected), m_isEs ? 16 : 2);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::textRotated()
{
    // Counter-clockwise about its position: from 4, 20 a text up along x = 44.
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 44, 4, 90, QStringLiteral("Fg7"), 0);
    m_view->ZrglRenderText(buffer);
    QTransform turn;
    turn.rotate(-90);
    const QImage expected = TextImage(QStringLiteral("Fg7"), 0).transformed(turn);
    const QString difference = gl::Difference(Opaque(m_context->Read()), Opaque(expected), m_isEs ? 16 : 2);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::textOutsideTheTable()
{
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 4, 20, 0, QStringLiteral("F\u00e9~g\u20ac\n7"), 0);
    m_view->ZrglRenderText(buffer);
    const QString difference = gl::Difference(
        Opaque(m_context->Read()), Opaque(TextImage(QStringLiteral("Fg7"), 0)), m_isEs ? 16 : 2);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfacePixels::fontChanges()
{
    const GLuint tex = m_view->m_fontTex;
    QFont font = m_view->m_font;
    font.setPixelSize(29);
    m_view->ZrglSetFont(font);
    QCOMPARE(m_view->m_fontTex, tex);
    QCOMPARE(m_view->m_glyphs[0].height, QFontMetrics(font).height());
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 4, 20, 0, QStringLiteral("R4"), 0);
    m_view->ZrglRenderText(buffer);
    const QString difference = gl::Difference(
        Opaque(m_context->Read()), Opaque(TextImage(QStringLiteral("R4"), 0)), m_isEs ? 16 : 2);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

GL_TEST_MAIN(tst_ZrGlSurfacePixels)
#include "tst_ZrGlSurfacePixels.moc"
