// Markers and handles: where their corners are, and that their images stand upright.

#include "GlRecorder.h"
#include "GlSurfaceTest.h"

namespace {

constexpr int imageSide = 96; ///< of every marker image

struct Point
{
    double x;
    double y;
};

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

constexpr const char* names[] = {"marker_alpha", "marker_arrow", "marker_square", "marker_circle",
    "marker_crosshair", "marker_waypoint", "marker_vector", "marker_pin", "handle_rotate", "handle_stretch",
    "handle_tick", "handle_trash", "handle_pan", "handle_a", "handle_b"};

/// Edges of what is rendered upside down are smoothed a little differently.
constexpr int edgeTolerance = 20;

constexpr std::size_t arrow = 1;
constexpr std::size_t vector = 6;
constexpr std::size_t pin = 7;

} // namespace

class tst_ZrGlSurfaceMarkers : public GlSurfaceTest
{
    Q_OBJECT

public:
    tst_ZrGlSurfaceMarkers()
        : GlSurfaceTest(true, QSize(imageSide, imageSide))
    {
    }

private Q_SLOTS:
    void corners_data();
    void corners();
    void marker_data();
    void marker();
    void imageBeginsBelow();
    void sizeOfTheTheme();
    void otherPrograms();
    void standsUpright_data();
    void standsUpright();
    void arrowsPointUp();
    void pinStandsOnItsPoint();

private:
    void FillView();
    int InkIn(const QImage& image, int row) const;
};

/// One unit is one pixel, y up, over the whole framebuffer.
void tst_ZrGlSurfaceMarkers::FillView()
{
    m_view->ZrglSetViewport(0, 0, imageSide, imageSide);
    m_view->ZrGlClipToViewport();
    m_view->zrgl2dViewport(imageSide, imageSide);
    m_view->zrgl2dProjection(0, imageSide, 0, imageSide, aspectStretch);
}

/// The width of what is drawn in a row, from its first pixel to its last.
int tst_ZrGlSurfaceMarkers::InkIn(const QImage& image, int row) const
{
    int first = -1;
    int last = -2;
    for (int x = 0; x < image.width(); ++x) {
        if (image.pixelColor(x, row).red() > 127) {
            first = first < 0 ? x : first;
            last = x;
        }
    }
    return last - first + 1;
}

void tst_ZrGlSurfaceMarkers::corners_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<double>("angle");
    QTest::addColumn<std::vector<double>>("corners");
    using C = std::vector<double>;
    // Around (10, 20), half a side of 3 by 2: lower left, upper left, lower right, upper right.
    QTest::newRow("none") << 0 << 0.0 << C{7, 18, 7, 22, 13, 18, 13, 22};
    QTest::newRow("right") << 1 << 0.0 << C{10, 18, 10, 22, 16, 18, 16, 22};
    QTest::newRow("left") << 4 << 0.0 << C{4, 18, 4, 22, 10, 18, 10, 22};
    QTest::newRow("right before left") << 5 << 0.0 << C{10, 18, 10, 22, 16, 18, 16, 22};
    // The pair of corners on the left collapses, the one on the right is twice as high, or the other way.
    QTest::newRow("up") << 8 << 0.0 << C{7, 20, 7, 20, 13, 16, 13, 24};
    QTest::newRow("down") << 32 << 0.0 << C{7, 16, 7, 24, 13, 20, 13, 20};
    QTest::newRow("up before down") << 40 << 0.0 << C{7, 20, 7, 20, 13, 16, 13, 24};
    QTest::newRow("right, up") << 9 << 0.0 << C{10, 20, 10, 20, 16, 16, 16, 24};
    QTest::newRow("left, down") << 36 << 0.0 << C{4, 16, 4, 24, 10, 20, 10, 20};
    QTest::newRow("others mean nothing") << (2 | 16 | 64 | 128) << 0.0 << C{7, 18, 7, 22, 13, 18, 13, 22};
    // Extents stay with their axes when it turns.
    QTest::newRow("quarter turn") << 0 << 90.0 << C{13, 18, 7, 18, 13, 22, 7, 22};
    QTest::newRow("half turn") << 0 << 180.0 << C{13, 22, 13, 18, 7, 22, 7, 18};
    QTest::newRow("quarter back") << 0 << -90.0 << C{7, 22, 13, 22, 7, 18, 13, 18};
    QTest::newRow("right, quarter turn") << 1 << 90.0 << C{10, 18, 10, 18, 16, 22, 4, 22};
}

void tst_ZrGlSurfaceMarkers::corners()
{
    QFETCH(int, flags);
    QFETCH(double, angle);
    QFETCH(std::vector<double>, corners);
    m_view->zrgl2dViewport(100, 100);
    m_view->zrgl2dProjection(0, 150, 0, 100, aspectStretch);
    gl::Recorder recorder;
    m_view->ZrglRenderMarker(
        10, 20, static_cast<float>(angle), 2, m_white, QColor(1, 2, 3), flags, ZrGlSurface::alpha);
    QCOMPARE(m_view->m_colour, QColor(1, 2, 3));
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    QCOMPARE(recorder.draws[0].texCoords, std::vector<float>({0, 0, 0, 1, 1, 0, 1, 1}));
    QCOMPARE(recorder.draws[0].positions.size(), corners.size());
    for (std::size_t i = 0; i < corners.size(); ++i)
        QVERIFY2(std::fabs(static_cast<double>(recorder.draws[0].positions[i]) - corners[i]) < 1e-4,
            qPrintable(
                QStringLiteral("%1: %2").arg(i).arg(static_cast<double>(recorder.draws[0].positions[i]))));
}

void tst_ZrGlSurfaceMarkers::marker_data()
{
    QTest::addColumn<int>("flags");
    QList<int> all{2, 16, 64};
    for (int bits = 0; bits < 16; ++bits)
        all << ((bits & 1 ? 1 : 0) | (bits & 2 ? 4 : 0) | (bits & 4 ? 8 : 0) | (bits & 8 ? 32 : 0));
    for (const int flags : all)
        QTest::addRow("%d", flags) << flags;
}

void tst_ZrGlSurfaceMarkers::marker()
{
    QFETCH(int, flags);
    // Scales of 1 and a half: the marker is measured in pixels.
    FillView();
    m_view->zrgl2dProjection(0, imageSide, 0, imageSide / 2, aspectStretch);
    const double hx = 12;
    const double hy = 6;
    const double xL = flags & 1 ? 0 : flags & 4 ? 2 * hx : hx;
    const double xR = flags & 1 ? 2 * hx : flags & 4 ? 0 : hx;
    const double yA = flags & 8 ? 0 : flags & 32 ? 2 * hy : hy;
    const double yB = flags & 8 ? 2 * hy : flags & 32 ? 0 : hy;
    for (const double angle : {0.0, 30.0, 90.0, 180.0, -45.0, 400.0}) {
        const double a = qDegreesToRadians(angle);
        const double k = std::sqrt(2.0);
        // In pixels of the framebuffer, y up.
        const auto corner = [&](double turn, double ex, double ey) {
            return Point{46 + k * std::cos(a + turn) * ex, 2 * (24 + k * std::sin(a + turn) * ey)};
        };
        const Point c[] = {corner(-3 * M_PI / 4, xL, yA), corner(3 * M_PI / 4, xL, yA),
            corner(-M_PI / 4, xR, yB), corner(M_PI / 4, xR, yB)};
        m_context->Clear(Qt::black);
        m_view->ZrglRenderMarker(
            46, 24, static_cast<float>(angle), 12, m_white, QColor(255, 128, 0), flags, ZrGlSurface::alpha);
        const QImage seen = m_context->Read();
        int inside = 0;
        for (int y = 0; y < imageSide; ++y) {
            for (int x = 0; x < imageSide; ++x) {
                const Point p{x + 0.5, imageSide - y - 0.5};
                const int first = InTriangle(p, c[0], c[1], c[2]);
                const int second = InTriangle(p, c[1], c[2], c[3]);
                if (first != 1 && second != 1 && (first == 0 || second == 0))
                    continue;
                const bool isIn = first == 1 || second == 1;
                inside += isIn ? 1 : 0;
                QVERIFY2(seen.pixelColor(x, y) == (isIn ? QColor(255, 128, 0) : QColor(Qt::black)),
                    qPrintable(QStringLiteral("%1: %2, %3").arg(angle).arg(x).arg(y)));
            }
        }
        QVERIFY(inside > 100);
    }
}

void tst_ZrGlSurfaceMarkers::imageBeginsBelow()
{
    // The first row of the image is at the lower edge: texture coordinates (0, 0) are the lower left corner.
    FillView();
    QImage image = Filled(QSize(2, 2), Qt::transparent);
    image.setPixelColor(0, 0, Qt::white);
    m_view->ZrglRenderMarker(32, 32, 0, 10, m_context->Texture(image), Qt::red, 0, ZrGlSurface::alpha);
    QImage expected = Filled(Qt::black);
    for (int y = 22; y < 32; ++y) {
        for (int x = 22; x < 32; ++x)
            expected.setPixelColor(x, imageSide - 1 - y, Qt::red);
    }
    const QString difference = Unlike(expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceMarkers::sizeOfTheTheme()
{
    FillView();
    ZrTheme::dp = 2.0F;
    m_view->ZrglRenderMarker(32, 32, 0, 5, m_white, Qt::red, 0, ZrGlSurface::alpha);
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::black), 20 * 20);
    m_context->Clear(Qt::black);
    m_view->m_colour = Qt::blue;
    m_view->ZrglRenderMarker(32, 32, 0, 5, 0, Qt::red, 0, ZrGlSurface::alpha);
    QVERIFY(IsBlack());
    // Nothing is drawn, nothing is set.
    QCOMPARE(m_view->m_colour, QColor(Qt::blue));
}

void tst_ZrGlSurfaceMarkers::otherPrograms()
{
    // With the texture program it keeps the colours of its image.
    FillView();
    const GLuint tex = m_context->Texture(Filled(QSize(1, 1), QColor(10, 200, 30)));
    m_view->ZrglRenderMarker(48, 48, 0, 48, tex, Qt::red, 0, ZrGlSurface::texture);
    QVERIFY(Unlike(Filled(QColor(10, 200, 30))).isEmpty());
}

void tst_ZrGlSurfaceMarkers::standsUpright_data()
{
    QTest::addColumn<std::size_t>("index");
    for (std::size_t i = 0; i < std::size(names); ++i)
        QTest::newRow(names[i]) << i;
}

void tst_ZrGlSurfaceMarkers::standsUpright()
{
    // Where y points up and nothing is turned, a marker looks like its drawing.
    QFETCH(std::size_t, index);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("upright.png"));
    const QString drawing = QStringLiteral(ZR_SOURCE_DIR "/ZrUtil/resources/images/%1.svg");
    QCOMPARE(QProcess::execute(QStringLiteral("rsvg-convert"),
                 {QStringLiteral("--output"), path, drawing.arg(QString::fromLatin1(names[index]))}),
        0);
    const QImage upright(path);
    QCOMPARE(upright.size(), m_size);
    FillView();
    m_view->ZrglRenderMarker(48, 48, 0, 48, m_view->m_markers[index], Qt::white, 0, ZrGlSurface::alpha);
    const QImage seen = m_context->Read();
    int ink = 0;
    for (int y = 0; y < imageSide; ++y) {
        for (int x = 0; x < imageSide; ++x) {
            const int expected = upright.pixelColor(x, y).alpha();
            const int actual = seen.pixelColor(x, y).red();
            ink += expected > 127 ? 1 : 0;
            QVERIFY2(std::abs(actual - expected) <= edgeTolerance,
                qPrintable(
                    QStringLiteral("%1, %2: %3 instead of %4").arg(x).arg(y).arg(actual).arg(expected)));
        }
    }
    QVERIFY(ink > 100);
}

void tst_ZrGlSurfaceMarkers::arrowsPointUp()
{
    // At 0 degrees; a positive angle turns them to the left, so that a heading is drawn at its negative.
    for (const std::size_t index : {arrow, vector}) {
        for (const int angle : {0, 90, 180, -90}) {
            FillView();
            m_context->Clear(Qt::black);
            m_view->ZrglRenderMarker(48, 48, static_cast<float>(angle), 48, m_view->m_markers[index], Qt::red,
                0, ZrGlSurface::alpha);
            QTransform back;
            back.rotate(angle);
            const QImage seen = m_context->Read().transformed(back);
            int top = 0;
            while (top < imageSide && InkIn(seen, top) == 0)
                ++top;
            // The tip is narrow and in the middle; a third of the way down the head has grown.
            QVERIFY2(top < 16, qPrintable(QString::number(top)));
            QVERIFY(InkIn(seen, top + 2) < 14);
            QVERIFY(seen.pixelColor(48, top + 4).red() > 127);
            QVERIFY(InkIn(seen, top + 20) > InkIn(seen, top + 2) + 10);
            int bottom = imageSide - 1;
            while (bottom > 0 && InkIn(seen, bottom) == 0)
                --bottom;
            QVERIFY(bottom - top > 60);
            // The tail of the arrow is wide, the vector has none.
            if (index == arrow)
                QVERIFY(InkIn(seen, bottom - 6) > 50);
            else
                QVERIFY(InkIn(seen, bottom - 6) < 14);
        }
    }
}

void tst_ZrGlSurfaceMarkers::pinStandsOnItsPoint()
{
    FillView();
    m_view->ZrglRenderMarker(48, 48, 0, 48, m_view->m_markers[pin], Qt::red, 0, ZrGlSurface::alpha);
    const QImage seen = m_context->Read();
    QVERIFY(InkIn(seen, 32) > 50);
    const int low = InkIn(seen, 86);
    QVERIFY2(low > 0 && low < 20, qPrintable(QString::number(low)));
    // The hole is in the head.
    QVERIFY(seen.pixelColor(48, 36).red() < 10);
    QVERIFY(seen.pixelColor(48, 60).red() > 240);
}

GL_TEST_MAIN(tst_ZrGlSurfaceMarkers)
#include "tst_ZrGlSurfaceMarkers.moc"
