// Markers on a map: which pixels they take, hits, and what a frame costs, in both kinds of context.

#include "GlRecorder.h"
#include "LogLines.h"
#include "MapSurface.h"
#include "WithoutResource.h"
#include "ZrKit/map/ZrMarkerAtlas.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrUtil/ZrTheme.h"

#include <QtWidgets>

#include <limits>

namespace {

using gl::Api;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();
const QSize size(256, 192);
const QPointF origin(512345.0, 4812345.0);
const QColor red(255, 0, 0);

ZrMapMarker Marker(const QPointF& position, int image = 2, double half = 20.0)
{
    ZrMapMarker marker;
    marker.position = position;
    marker.image = image;
    marker.size = half;
    marker.colour = red;
    return marker;
}

/// The box of all pixels that are at least half as bright as they can be.
QRect BoxOf(const QImage& image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (std::max({c.red(), c.green(), c.blue()}) > 127)
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

int NotBlack(const QImage& image)
{
    return image.width() * image.height() - map::Count(image, Qt::black);
}

/// The share of two images that is different by more than a third of the range.
double Share(const QImage& a, const QImage& b)
{
    int different = 0;
    int drawn = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            different += std::abs(a.pixelColor(x, y).red() - b.pixelColor(x, y).red()) > 85 ? 1 : 0;
            drawn += a.pixelColor(x, y).red() > 127 ? 1 : 0;
        }
    }
    return drawn == 0 ? 1.0 : static_cast<double>(different) / drawn;
}

} // namespace

class tst_ZrMarkerLayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void atlas();
    void atlasWithoutImages();
    void sameAsTheSurface_data();
    void sameAsTheSurface();
    void sizeFollowsTheTheme();
    void sizeFollowsTheScreen();
    void turnsWithTheMap();
    void standsBesideItsPlace();
    void largeCoordinates();
    void laterCoversEarlier();
    void halo();
    void oneDraw();
    void uploadsWhatChanged();
    void moreThanIndicesReach();
    void notDrawn();
    void nearest();
    void nearestOfNonsense();
    void failedProgram();
    void noMemory_data();
    void noMemory();
    void withoutContext();
    void contextLost();
    void released();

private:
    QImage Painted(ZrMapLayer& layer, const ZrMapView& view) { return m_stage->Painted(layer, view); }

    void Create();

    gl::Api m_api = Api::desktop;
    std::unique_ptr<map::Stage> m_stage;
};

void tst_ZrMarkerLayer::initTestCase_data()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL") << Api::desktop;
    QTest::newRow("ES") << Api::es;
}

void tst_ZrMarkerLayer::init()
{
    QFETCH_GLOBAL(gl::Api, api);
    m_api = api;
    ZrTheme::dp = 1.0F;
    Create();
}

void tst_ZrMarkerLayer::Create()
{
    m_stage.reset();
    m_stage = std::make_unique<map::Stage>(m_api, size);
    QVERIFY2(m_stage->Context().Error().isEmpty(), qPrintable(m_stage->Context().Error()));
}

void tst_ZrMarkerLayer::cleanup()
{
    QCOMPARE(m_stage->Context().TakeErrors(), GLenum(GL_NO_ERROR));
    m_stage.reset();
}

void tst_ZrMarkerLayer::atlas()
{
    const ZrMarkerAtlas atlas;
    QCOMPARE(atlas.Levels().size(), std::size_t(10));
    QCOMPARE(atlas.Levels().back().size(), QSize(1, 1));
    QCOMPARE(atlas.Levels().front().size(), QSize(ZrMarkerAtlas::Side, ZrMarkerAtlas::Side));
    for (int i = 0; i < ZrGlSurface::MarkerCount; ++i)
        QVERIFY(atlas.HasImage(i));
    for (const int i : {-1, 15, 16, 1000})
        QVERIFY(!atlas.HasImage(i));
    QVERIFY(ZrMarkerAtlas::CellOf(-1).isNull());
    QVERIFY(ZrMarkerAtlas::CellOf(16).isNull());
    QCOMPARE(ZrMarkerAtlas::CellOf(6), QRectF(0.5, 0.25, 0.25, 0.25));
    // The shape of the arrow, where it belongs.
    const QImage arrow = QImage(QStringLiteral(":/marker_arrow.png")).convertToFormat(QImage::Format_Alpha8);
    const QImage cell = atlas.Levels().front().copy(128 + 16, 16, 96, 96);
    for (int y = 0; y < 96; ++y) {
        for (int x = 0; x < 96; ++x)
            QCOMPARE(qAlpha(cell.pixel(x, y)), qAlpha(arrow.pixel(x, y)));
    }
}

void tst_ZrMarkerLayer::atlasWithoutImages()
{
    ZrMarkerLayer layer;
    layer.SetMarkers({Marker(origin)});
    const resource::Without without(QStringLiteral(":/marker_square.png"));
    QVERIFY(without.IsDone());
    QVERIFY(!ZrMarkerAtlas().HasImage(2));
    const log_lines::Capture log;
    QCOMPARE(NotBlack(Painted(layer, map::ViewOf(size, origin, 1))), 0);
    QCOMPARE(NotBlack(Painted(layer, map::ViewOf(size, origin, 1))), 0);
    // Each image of the same resource, once.
    QCOMPARE(log.Count(QStringLiteral("Marker image load failed: :/marker_square.png")), 1);
    QCOMPARE(log.Count(QStringLiteral("Marker image load failed: ")), log.All().size());
}

void tst_ZrMarkerLayer::sameAsTheSurface_data()
{
    QTest::addColumn<int>("image");
    QTest::addColumn<double>("angle");
    for (int image = 0; image < ZrGlSurface::MarkerCount; ++image)
        QTest::addRow("image %d", image) << image << 0.0;
    QTest::newRow("arrow turned") << 1 << 30.0;
    QTest::newRow("arrow turned back") << 1 << -120.0;
    QTest::newRow("pin upside down") << 7 << 180.0;
}

/// Images, place, angle and size are those of the surface's own markers; only the smoothing is better.
void tst_ZrMarkerLayer::sameAsTheSurface()
{
    QFETCH(int, image);
    QFETCH(double, angle);
    ZrMapMarker marker = Marker(origin + QPointF(30, 20), image, 44);
    marker.angle = angle;
    ZrMarkerLayer layer;
    layer.SetMarkers({marker});
    const ZrMapView view = map::ViewOf(size, origin, 1);
    const QImage actual = Painted(layer, view);
    m_stage->Context().Clear(Qt::black);
    m_stage->Surface().ZrglRenderMarker(30, 20, static_cast<float>(angle), 44,
        m_stage->Surface().m_markers[static_cast<std::size_t>(image)], red, 0, ZrGlSurface::alpha);
    const QImage expected = m_stage->Context().Read();
    const double share = Share(expected, actual);
    // Thin lines of an image that is not smoothed change most.
    QVERIFY2(share < 0.12, qPrintable(QString::number(share)));
    const QRect a = BoxOf(actual);
    const QRect b = BoxOf(expected);
    for (const int off :
        {a.left() - b.left(), a.right() - b.right(), a.top() - b.top(), a.bottom() - b.bottom()})
        QVERIFY(std::abs(off) <= 1);
}

void tst_ZrMarkerLayer::sizeFollowsTheTheme()
{
    ZrMarkerLayer layer;
    layer.SetMarkers({Marker(origin)});
    const ZrMapView view = map::ViewOf(size, origin, 1);
    const QRect box = BoxOf(Painted(layer, view));
    ZrTheme::dp = 2.0F;
    gl::Recorder recorder;
    const QRect large = BoxOf(Painted(layer, view));
    QVERIFY(std::abs(large.width() - 2 * box.width()) <= 2);
    QVERIFY(std::abs(large.height() - 2 * box.height()) <= 2);
    QVERIFY(box.width() > 20 && box.width() <= 40);
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    // Zooming changes the place alone.
    const QRect zoomed = BoxOf(Painted(layer, map::ViewOf(size, origin + QPointF(1, 0), 0.02)));
    QCOMPARE(zoomed.size(), large.size());
    QCOMPARE(zoomed.left(), large.left() - 50);
}

/// As large on a screen of two device pixels for one, also what is beside its place.
void tst_ZrMarkerLayer::sizeFollowsTheScreen()
{
    ZrMarkerLayer layer;
    ZrMapMarker marker = Marker(origin);
    marker.size = 10.0;
    marker.offset = {8.0, 4.0};
    layer.SetMarkers({marker});
    const ZrMapView view = map::ViewOf(size, origin, 1);
    const QRect once = BoxOf(Painted(layer, view));
    m_stage->Surface().m_pixelFactor = 2;
    const QRect twice = BoxOf(Painted(layer, view));
    QVERIFY(std::abs(twice.width() - 2 * once.width()) <= 2);
    const QPointF middle(size.width() / 2.0, size.height() / 2.0);
    const QPointF off = QRectF(twice).center() - middle - (QRectF(once).center() - middle) * 2.0;
    QVERIFY2(off.manhattanLength() <= 3.0, qPrintable(QString::number(off.manhattanLength())));
}

void tst_ZrMarkerLayer::turnsWithTheMap()
{
    ZrMapMarker marker = Marker(origin + QPointF(40, 0), 1);
    ZrMarkerLayer layer;
    layer.SetMarkers({marker});
    const QImage upright = Painted(layer, map::ViewOf(size, origin + QPointF(40, 0), 1));
    QCOMPARE(Share(upright, Painted(layer, map::ViewOf(size, origin + QPointF(40, 0), 1, 90))), 0.0);
    marker.isTurning = true;
    layer.SetMarkers({marker});
    const QImage turned = Painted(layer, map::ViewOf(size, origin + QPointF(40, 0), 1, 90));
    marker.isTurning = false;
    marker.angle = 90;
    layer.SetMarkers({marker});
    QVERIFY(Share(turned, Painted(layer, map::ViewOf(size, origin + QPointF(40, 0), 1))) < 0.02);
    QVERIFY(Share(turned, upright) > 0.1);
}

/// By as many pixels of the screen, whichever way the map is turned; with it where it turns itself.
void tst_ZrMarkerLayer::standsBesideItsPlace()
{
    ZrMarkerLayer layer;
    for (const double rotation : {0.0, 90.0}) {
        const ZrMapView view = map::ViewOf(size, origin, 1, rotation);
        ZrMapMarker marker = Marker(origin);
        marker.offset = {10.0, 30.0};
        layer.SetMarkers({marker});
        const QImage beside = Painted(layer, view);
        layer.SetMarkers({Marker(view.ToWorld(view.ToPixel(origin) + QPointF(10.0, -30.0)))});
        QVERIFY(Share(beside, Painted(layer, view)) < 0.01);
        layer.SetMarkers({Marker(origin)});
        QVERIFY(Share(beside, Painted(layer, view)) > 0.01);
        marker.isTurning = true;
        layer.SetMarkers({marker});
        const QPointF turned = rotation == 0.0 ? QPointF(10.0, -30.0) : QPointF(-30.0, -10.0);
        const QImage turning = Painted(layer, view);
        ZrMapMarker there = Marker(view.ToWorld(view.ToPixel(origin) + turned));
        there.isTurning = true;
        layer.SetMarkers({there});
        QVERIFY(Share(turning, Painted(layer, view)) < 0.01);
    }
}

void tst_ZrMarkerLayer::largeCoordinates()
{
    for (const double scale : {0.01, 1.0, 50000.0}) {
        for (const double rotation : {0.0, 45.0}) {
            const ZrMapView view = map::ViewOf(size, {999999.37, 9999999.81}, scale, rotation);
            ZrMarkerLayer layer;
            layer.SetMarkers({Marker(view.ToWorld({200, 60}), 3, 16)});
            const QRectF box = BoxOf(Painted(layer, view));
            const QPointF off = box.center() - QPointF(200, 60);
            QVERIFY2(std::abs(off.x()) <= 0.6 && std::abs(off.y()) <= 0.6,
                qPrintable(QStringLiteral("%1, %2").arg(off.x()).arg(off.y())));
        }
    }
}

void tst_ZrMarkerLayer::laterCoversEarlier()
{
    const ZrMapMarker first = Marker(origin, 1, 40);
    ZrMapMarker second = first;
    second.colour = Qt::green;
    ZrMarkerLayer layer;
    const ZrMapView view = map::ViewOf(size, origin, 1);
    layer.SetMarkers({first});
    const QImage one = Painted(layer, view);
    layer.SetMarkers({first, second});
    const QImage two = Painted(layer, view);
    const int full = map::Count(one, red);
    QVERIFY(full > 100);
    QCOMPARE(map::Count(two, Qt::green), full);
    QCOMPARE(map::Count(two, red), 0);
}

void tst_ZrMarkerLayer::halo()
{
    ZrMarkerLayer layer;
    layer.SetMarkers({Marker(origin, 2)});
    const ZrMapView view = map::ViewOf(size, origin, 1);
    const QImage plain = Painted(layer, view);
    layer.m_halo = Qt::blue;
    layer.m_haloWidth = 2;
    const QImage haloed = Painted(layer, view);
    const QRect before = BoxOf(plain);
    const QRect after = BoxOf(haloed);
    QVERIFY(std::abs(after.width() - before.width() - 4) <= 1);
    QVERIFY(std::abs(after.height() - before.height() - 4) <= 1);
    // Outside the shape it is there, on the shape it is not.
    QVERIFY(haloed.pixelColor(before.left() - 1, before.center().y()).blue() > 127);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            if (plain.pixelColor(x, y) == red)
                QVERIFY(haloed.pixelColor(x, y).red() > 250);
        }
    }
    // However wide it is wanted, it stays within its quad.
    layer.m_haloWidth = 1e9F;
    QVERIFY(BoxOf(Painted(layer, view)).width() <= 54);
    for (const float odd : {-3.0F, std::numeric_limits<float>::quiet_NaN()}) {
        layer.m_haloWidth = odd;
        QCOMPARE(BoxOf(Painted(layer, view)), before);
    }
}

void tst_ZrMarkerLayer::oneDraw()
{
    std::vector<ZrMapMarker> markers;
    for (int i = 0; i < 1000; ++i) {
        markers.push_back(Marker(origin + QPointF(i % 40 - 20, i / 40 - 12) * 6, i % 15, 3));
        markers.back().isTurning = i % 2;
    }
    ZrMarkerLayer layer;
    layer.SetMarkers(markers);
    layer.m_halo = Qt::black;
    gl::Recorder recorder;
    const QImage image = Painted(layer, map::ViewOf(size, origin, 1));
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    QCOMPARE(recorder.vertices, qint64(6000));
    QVERIFY(recorder.draws[0].isBlended);
    QVERIFY(NotBlack(image) > 3000);
    QVERIFY(!m_stage->Context().Functions()->glIsEnabled(GL_BLEND));
    recorder.Reset();
    Painted(layer, map::ViewOf(size, origin, 2, 30));
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    QCOMPARE(recorder.LookUpCount(), 0);
}

void tst_ZrMarkerLayer::uploadsWhatChanged()
{
    ZrMarkerLayer layer;
    const ZrMapView view = map::ViewOf(size, origin, 1);
    layer.SetMarkers({Marker(origin - QPointF(60, 0)), Marker(origin), Marker(origin + QPointF(60, 0))});
    Painted(layer, view);
    gl::Recorder recorder;
    layer.SetMarker(1, Marker(origin + QPointF(0, 50)));
    const QImage moved = Painted(layer, view);
    QCOMPARE(recorder.uploadedBytes, qint64(176));
    QVERIFY(BoxOf(moved).top() < 60);
    recorder.Reset();
    layer.SetMarker(2, Marker(origin));
    layer.SetMarker(1, Marker(origin));
    layer.SetMarker(3, Marker(origin));
    layer.SetMarker(-1, Marker(origin));
    Painted(layer, view);
    QCOMPARE(recorder.uploadedBytes, qint64(2 * 176));
    // Fewer, then more than there were.
    recorder.Reset();
    layer.SetMarkers({Marker(origin)});
    Painted(layer, view);
    QCOMPARE(recorder.uploadedBytes, qint64(176));
    QCOMPARE(recorder.vertices, qint64(6));
    recorder.Reset();
    layer.SetMarkers({});
    QCOMPARE(NotBlack(Painted(layer, view)), 0);
    QCOMPARE(recorder.draws.size(), std::size_t(0));
    layer.SetMarkers(std::vector<ZrMapMarker>(10, Marker(origin)));
    Painted(layer, view);
    QCOMPARE(recorder.uploadedBytes, qint64(10 * 176));
}

void tst_ZrMarkerLayer::moreThanIndicesReach()
{
    std::vector<ZrMapMarker> markers(20000, Marker(origin - QPointF(50, 0), 1, 12));
    markers.back() = Marker(origin + QPointF(50, 0), 1, 12);
    ZrMarkerLayer layer;
    layer.SetMarkers(markers);
    gl::Recorder recorder;
    const QRect box = BoxOf(Painted(layer, map::ViewOf(size, origin, 1)));
    QCOMPARE(recorder.draws.size(), std::size_t(2));
    QVERIFY(box.left() < 90);
    QVERIFY(box.right() > 170);
}

void tst_ZrMarkerLayer::notDrawn()
{
    std::vector<ZrMapMarker> markers;
    for (const double bad : {notANumber, infinite, -infinite}) {
        markers.push_back(Marker({bad, origin.y()}));
        markers.push_back(Marker({origin.x(), bad}));
        markers.push_back(Marker(origin, 2, bad));
        markers.push_back(Marker(origin));
        markers.back().angle = bad;
        markers.push_back(Marker(origin));
        markers.back().offset = {bad, 0.0};
        markers.push_back(Marker(origin));
        markers.back().offset = {0.0, bad};
    }
    markers.push_back(Marker({1e300, 0}));
    for (const int image : {-1, 15, 16, 1000000})
        markers.push_back(Marker(origin, image));
    for (const double half : {0.0, -5.0, 1e9})
        markers.push_back(Marker(origin, 2, half));
    ZrMarkerLayer layer;
    layer.SetMarkers(markers);
    const ZrMapView view = map::ViewOf(size, origin, 1);
    QCOMPARE(NotBlack(Painted(layer, view)), 0);
    // The others are drawn all the same.
    markers.push_back(Marker(origin));
    layer.SetMarkers(markers);
    QVERIFY(NotBlack(Painted(layer, view)) > 100);
    QCOMPARE(ZrMarkerLayer::Nearest(markers, view, {128, 96}, 5), static_cast<int>(markers.size()) - 1);
    layer.m_isVisible = false;
    QCOMPARE(NotBlack(Painted(layer, view)), 0);
    layer.m_isVisible = true;
    ZrMapView empty;
    empty.Apply(m_stage->Surface());
    layer.Paint(m_stage->Surface(), empty);
}

void tst_ZrMarkerLayer::nearest()
{
    const ZrMapView view = map::ViewOf(size, origin, 0.5, 25);
    const std::vector<ZrMapMarker> markers{
        Marker(view.ToWorld({50, 50})), Marker(view.ToWorld({60, 50})), Marker(view.ToWorld({200, 100}))};
    QCOMPARE(ZrMarkerLayer::Nearest(markers, view, {54, 50}, 20), 0);
    QCOMPARE(ZrMarkerLayer::Nearest(markers, view, {56, 50}, 20), 1);
    QCOMPARE(ZrMarkerLayer::Nearest(markers, view, {200, 109}, 10), 2);
    QCOMPARE(ZrMarkerLayer::Nearest(markers, view, {200, 111}, 10), -1);
    QCOMPARE(ZrMarkerLayer::Nearest({markers[0], markers[0]}, view, {50, 50}, 10), 1);
    QCOMPARE(ZrMarkerLayer::Nearest({}, view, {50, 50}, 10), -1);
}

void tst_ZrMarkerLayer::nearestOfNonsense()
{
    const ZrMapView view = map::ViewOf(size, origin, 1);
    const std::vector<ZrMapMarker> markers{Marker({notANumber, 0}), Marker(origin), Marker({infinite, 0})};
    QCOMPARE(ZrMarkerLayer::Nearest(markers, view, {128, 96}, infinite), 1);
    QCOMPARE(ZrMarkerLayer::Nearest(markers, view, {notANumber, 96}, 10), -1);
    QCOMPARE(ZrMarkerLayer::Nearest(markers, view, {128, 96}, notANumber), -1);
    QCOMPARE(ZrMarkerLayer::Nearest(markers, view, {128, 96}, -1), -1);
    QCOMPARE(ZrMarkerLayer::Nearest(markers, ZrMapView(), {0, 0}, 10), -1);
}

void tst_ZrMarkerLayer::failedProgram()
{
    ZrMarkerLayer layer;
    layer.SetMarkers({Marker(origin)});
    const ZrMapView view = map::ViewOf(size, origin, 1);
    {
        const resource::Without without(QStringLiteral(":/map_marker.fsh"));
        QVERIFY(without.IsDone());
        const log_lines::Capture log;
        QCOMPARE(NotBlack(Painted(layer, view)), 0);
        QCOMPARE(NotBlack(Painted(layer, view)), 0);
        QCOMPARE(log.All(),
            QStringList({QStringLiteral("Cannot read shader :/map_marker.vsh"),
                QStringLiteral("Cannot read shader :/map_marker.fsh")}));
    }
    QCOMPARE(NotBlack(Painted(layer, view)), 0);
    layer.Release(m_stage->Surface());
    QVERIFY(NotBlack(Painted(layer, view)) > 0);
}

void tst_ZrMarkerLayer::noMemory_data()
{
    QTest::addColumn<bool>("isTexture");
    QTest::addColumn<bool>("isThere");
    QTest::addColumn<QString>("line");
    QTest::newRow("texture") << true << false
                             << QStringLiteral("No texture for 1 markers, none is drawn: error 1285");
    QTest::newRow("indices") << false << false
                             << QStringLiteral("No indices for 1 markers, none is drawn: error 1285");
    QTest::newRow("markers") << false << true
                             << QStringLiteral("No buffer for 2 markers, none is drawn: error 1285");
}

void tst_ZrMarkerLayer::noMemory()
{
    QFETCH(bool, isTexture);
    QFETCH(bool, isThere);
    QFETCH(QString, line);
    ZrMarkerLayer layer;
    layer.SetMarkers({Marker(origin)});
    const ZrMapView view = map::ViewOf(size, origin, 1);
    if (isThere) {
        QVERIFY(NotBlack(Painted(layer, view)) > 0);
        layer.SetMarkers({Marker(origin), Marker(origin)});
    }
    {
        gl::Recorder recorder;
        recorder.isTextureMemoryOut = isTexture;
        recorder.isBufferMemoryOut = !isTexture;
        const log_lines::Capture log;
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(NotBlack(Painted(layer, view)), 0);
            QCOMPARE(recorder.error, GLenum(GL_NO_ERROR));
        }
        QVERIFY(recorder.draws.empty());
        QVERIFY(recorder.failed > 0);
        QCOMPARE(log.All(), QStringList(line));
    }
    GLint buffer = -1;
    m_stage->Context().Functions()->glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &buffer);
    QCOMPARE(buffer, 0);
    if (!isThere)
        layer.Release(m_stage->Surface());
    QVERIFY(NotBlack(Painted(layer, view)) > 0);
    layer.Release(m_stage->Surface());
}

void tst_ZrMarkerLayer::withoutContext()
{
    const log_lines::Capture log;
    ZrMarkerLayer layer;
    layer.SetMarkers({Marker(origin)});
    MapSurface surface;
    const ZrMapView view = map::ViewOf(size, origin, 1);
    layer.Paint(surface, view); // a surface that was not created
    layer.Paint(surface, view);
    QCOMPARE(log.All(),
        QStringList(QStringLiteral("The OpenGL context of the surface is not current, nothing is drawn")));
    m_stage->Context().DoneCurrent();
    layer.Paint(surface, view);
    layer.Release(surface);
    QVERIFY(m_stage->Context().MakeCurrent());
}

void tst_ZrMarkerLayer::contextLost()
{
    ZrMarkerLayer layer;
    layer.SetMarkers({Marker(origin), Marker(origin + QPointF(50, 0), 7)});
    const ZrMapView view = map::ViewOf(size, origin, 1);
    const QImage before = Painted(layer, view);
    QVERIFY(NotBlack(before) > 0);
    Create();
    QCOMPARE(Painted(layer, view), before);
}

void tst_ZrMarkerLayer::released()
{
    ZrMarkerLayer layer;
    layer.SetMarkers({Marker(origin)});
    const ZrMapView view = map::ViewOf(size, origin, 1);
    const QImage before = Painted(layer, view);
    auto* const f = m_stage->Context().Functions();
    const auto count = [f] {
        int names = 0;
        for (GLuint name = 1; name < 100; ++name)
            names += (f->glIsBuffer(name) ? 1 : 0) + (f->glIsTexture(name) ? 1 : 0);
        return names;
    };
    const int there = count();
    layer.Release(m_stage->Surface());
    layer.Release(m_stage->Surface());
    QCOMPARE(count(), there - 3);
    QCOMPARE(Painted(layer, view), before);
}

GL_TEST_MAIN(tst_ZrMarkerLayer)
#include "tst_ZrMarkerLayer.moc"
