// Grid, scale bar and north arrow of a map: pixels, draw calls, uploads and failures, in both kinds of
// context.

#include "GlRecorder.h"
#include "GlView.h"
#include "WithoutResource.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QtWidgets>

#include <cmath>
#include <limits>

namespace {

using gl::Api;

constexpr int width = 640;
constexpr int height = 400;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

int s_lines = 0;

ZrProj ProjectionOf(double lat, double lng)
{
    ZrProj projection;
    projection.SetupUTM(lat, lng);
    return projection;
}

QPointF WorldOf(const ZrProj& projection, double lat, double lng)
{
    double east = 0.0;
    double north = 0.0;
    ZrUnits::LLToEN(ZrUnits::wgs84, projection, lat, lng, east, north);
    return {east, north};
}

int Count(const QImage& image, const QRectF& area, const QColor& colour, int tolerance)
{
    int count = 0;
    const QRect rect = area.toRect() & image.rect();
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x)
            count += gl::Distance(image.pixelColor(x, y), colour) <= tolerance ? 1 : 0;
    }
    return count;
}

/// Pixels outside of \p area that are not \p ground.
int CountOutside(const QImage& image, const QRectF& area, const QColor& ground)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += !area.contains(x + 0.5, y + 0.5) && image.pixelColor(x, y) != ground ? 1 : 0;
    }
    return count;
}

} // namespace

// Takes the place of the library's function.
void zr_debug_log_modern(int /*level*/, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* /*category*/, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* /*message*/)
{
    ++s_lines;
}

class tst_ZrGridLayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void fewDrawCalls_data();
    void fewDrawCalls();
    void uploadsOnlyOnChange();
    void linesAreWhereTheyShouldBe_data();
    void linesAreWhereTheyShouldBe();
    void linesAreSeenOnEveryGround_data();
    void linesAreSeenOnEveryGround();
    void linesHaveTheWidthOfTheTheme();
    void scaleBarIsExact_data();
    void scaleBarIsExact();
    void scaleBarIsSeenOnEveryGround_data();
    void scaleBarIsSeenOnEveryGround();
    void unitsShowAtOnce();
    void arrowPointsNorth_data();
    void arrowPointsNorth();
    void northAngle_data();
    void northAngle();
    void northWithoutProjection();
    void tapArea();
    void marginsAreKeptClear();
    void rectsFitOrAreEmpty_data();
    void rectsFitOrAreEmpty();
    void textsLeaveBarAndArrow();
    void styleOfPositionsShows();
    void partsCanBeLeftOut();
    void everywhere_data();
    void everywhere();
    void nonsense();
    void zeroSize();
    void withoutContext();
    void failedProgram();
    void contextLost();

private:
    void Paint();
    QImage Painted(const QColor& background = Qt::black);
    void MakeContext();

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<GlView> m_surface;
    std::unique_ptr<ZrGridLayer> m_layer;
    ZrMapView m_view;
    ZrProj m_projection;
};

void tst_ZrGridLayer::initTestCase_data()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL") << Api::desktop;
    QTest::newRow("ES") << Api::es;
}

void tst_ZrGridLayer::MakeContext()
{
    QFETCH_GLOBAL(gl::Api, api);
    m_context = std::make_unique<gl::Context>(api, QSize(width, height));
    QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
    m_surface = std::make_unique<GlView>();
    m_surface->m_background = QStringLiteral(":/back_light.png");
    m_surface->ZrglSetViewport(0, 0, width, height);
    m_surface->OnCreate();
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGridLayer::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoDMSFrac);
    MakeContext();
    m_layer = std::make_unique<ZrGridLayer>();
    m_projection = ProjectionOf(50.3, -4.1);
    m_layer->SetProjection(ZrUnits::wgs84, m_projection);
    m_view = ZrMapView();
    m_view.SetSize(width, height);
    m_view.SetCentre(WorldOf(m_projection, 50.3, -4.1));
    m_view.SetScale(2.0);
    s_lines = 0;
    zr_debug_log_level = 2;
    zr_debug_log_to_dbg = 1;
}

void tst_ZrGridLayer::cleanup()
{
    zr_debug_log_level = -1;
    zr_debug_log_to_dbg = 0;
    if (m_context && m_surface) {
        m_layer->Release(*m_surface);
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    }
    m_layer.reset();
    m_surface.reset();
    m_context.reset();
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoDMSFrac);
}

void tst_ZrGridLayer::Paint()
{
    m_view.Apply(*m_surface);
    m_layer->Paint(*m_surface, m_view);
}

QImage tst_ZrGridLayer::Painted(const QColor& background)
{
    m_context->Clear(background);
    Paint();
    return m_context->Read().convertToFormat(QImage::Format_RGB32);
}

void tst_ZrGridLayer::fewDrawCalls_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("rotation");
    for (const int style : {0, 1, 3, 7, 8}) {
        for (const double scale : {0.001, 2.0, 300.0, 50000.0})
            QTest::addRow("%d, %g", style, scale) << style << scale << scale * 10;
    }
}

void tst_ZrGridLayer::fewDrawCalls()
{
    QFETCH(int, style);
    QFETCH(double, scale);
    QFETCH(double, rotation);
    ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
    m_view.SetScale(scale);
    m_view.SetRotation(rotation);
    gl::Recorder recorder;
    Paint();
    QCOMPARE(ZrGridLayer::DrawCalls, 2);
    QVERIFY(static_cast<int>(recorder.draws.size()) <= ZrGridLayer::DrawCalls);
    QVERIFY(!recorder.draws.empty());
    QVERIFY(recorder.vertices < 20000);
}

void tst_ZrGridLayer::uploadsOnlyOnChange()
{
    gl::Recorder recorder;
    Paint();
    QVERIFY(recorder.uploadedBytes > 0);
    recorder.Reset();
    Paint();
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    QCOMPARE(recorder.LookUpCount(), 0);
    const auto isUploaded = [&](const auto& change) {
        recorder.Reset();
        change();
        Paint();
        return recorder.uploadedBytes > 0;
    };
    QVERIFY(isUploaded([&] { m_view.Pan({3, 4}); }));
    QVERIFY(isUploaded([&] { m_view.SetScale(2.1); }));
    QVERIFY(isUploaded([&] { m_view.SetRotation(5); }));
    QVERIFY(isUploaded([&] { m_view.SetSize(600, 400); }));
    QVERIFY(isUploaded([&] { m_layer->SetMargins({0, 0, 0, 40}); }));
    QVERIFY(isUploaded([&] { m_layer->SetSpacing(200); }));
    QVERIFY(isUploaded([&] { m_layer->m_hasNorthArrow = false; }));
    QVERIFY(isUploaded([&] { m_layer->ClearProjection(); }));
    QVERIFY(isUploaded([&] { ZrUnits::SetToImperial(); }));
    QVERIFY(isUploaded([&] { m_layer->SetProjection(ZrUnits::wgs84, m_projection); }));
    QVERIFY(isUploaded([&] { ZrUnits::SetGeoStyle(eGeoDegMin); }));
    QVERIFY(isUploaded([&] { ZrTheme::gridCol = Qt::red; }));
    QVERIFY(isUploaded([&] { ZrTheme::dp = 1.25F; }));
    QVERIFY(!isUploaded([] {}));
}

void tst_ZrGridLayer::linesAreWhereTheyShouldBe_data()
{
    QTest::addColumn<double>("rotation");
    QTest::addColumn<double>("scale");
    QTest::newRow("level") << 0.0 << 2.0;
    QTest::newRow("turned") << 27.0 << 2.0;
    QTest::newRow("near") << 300.0 << 0.01;
}

void tst_ZrGridLayer::linesAreWhereTheyShouldBe()
{
    QFETCH(double, rotation);
    QFETCH(double, scale);
    ZrUnits::SetGeoStyle(eGeoUTM);
    ZrTheme::gridCol = Qt::red;
    m_layer->m_hasTexts = false;
    m_layer->m_hasScaleBar = false;
    m_layer->m_hasNorthArrow = false;
    m_view.SetScale(scale);
    m_view.SetRotation(rotation);
    const QImage image = Painted();
    // 120 pixels at least are 240 m: 250; or 1.2 m: 2.
    const double step = scale == 2.0 ? 250.0 : 2.0;
    int on = 0;
    int off = 0;
    for (int y = 2; y < height - 2; y += 3) {
        for (int x = 2; x < width - 2; x += 3) {
            const QPointF world = m_view.ToWorld({x + 0.5, y + 0.5});
            const auto distance
                = [&](double v) { return std::fabs(v - std::round(v / step) * step) / scale; };
            const double nearest = std::min(distance(world.x()), distance(world.y()));
            const int red = image.pixelColor(x, y).red();
            if (nearest < 0.2) {
                QVERIFY2(red > 200, qPrintable(QStringLiteral("%1 %2 %3").arg(x).arg(y).arg(red)));
                ++on;
            } else if (nearest > 2.0) {
                QVERIFY2(red == 0, qPrintable(QStringLiteral("%1 %2 %3").arg(x).arg(y).arg(red)));
                ++off;
            }
        }
    }
    QVERIFY(on > 20);
    QVERIFY(off > 10000);
}

void tst_ZrGridLayer::linesAreSeenOnEveryGround_data()
{
    QTest::addColumn<QColor>("ground");
    QTest::newRow("sea") << QColor(35, 55, 75);
    QTest::newRow("seabed") << QColor(90, 160, 180);
    QTest::newRow("white") << QColor(Qt::white);
    QTest::newRow("black") << QColor(Qt::black);
    // The colour of the lines themselves.
    QTest::newRow("grey") << QColor(128, 128, 128);
}

void tst_ZrGridLayer::linesAreSeenOnEveryGround()
{
    QFETCH(QColor, ground);
    m_layer->m_hasTexts = false;
    m_layer->m_hasScaleBar = false;
    m_layer->m_hasNorthArrow = false;
    const QImage image = Painted(ground);
    int different = 0;
    for (int x = 0; x < width; ++x)
        different += gl::Distance(image.pixelColor(x, 111), ground) > 15 ? 1 : 0;
    QVERIFY(different >= 4);
}

void tst_ZrGridLayer::linesHaveTheWidthOfTheTheme()
{
    ZrUnits::SetGeoStyle(eGeoUTM);
    ZrTheme::gridCol = Qt::red;
    ZrTheme::darken = QColor(0, 0, 0, 0);
    m_layer->m_hasTexts = false;
    m_layer->m_hasScaleBar = false;
    m_layer->m_hasNorthArrow = false;
    m_view.SetCentre({400000, 5000000});
    for (const float dp : {1.0F, 2.0F, 3.5F}) {
        ZrTheme::dp = dp;
        const QImage image = Painted();
        // Across the line in the middle.
        double ink = 0.0;
        for (int x = width / 2 - 12; x < width / 2 + 12; ++x)
            ink += image.pixelColor(x, height / 2 + 30).redF();
        QVERIFY2(std::fabs(ink - 1.2 * static_cast<double>(dp)) < 0.1, qPrintable(QString::number(ink)));
    }
}

void tst_ZrGridLayer::scaleBarIsExact_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("pixels");
    QTest::addColumn<bool>("isImperial");
    QTest::newRow("1") << 1.0 << 200.0 << false;
    QTest::newRow("2") << 2.0 << 125.0 << false;
    QTest::newRow("7") << 7.0 << 1000 / 7.0 << false;
    QTest::newRow("feet") << 1.0 << 500 / 3.28084 << true;
}

void tst_ZrGridLayer::scaleBarIsExact()
{
    QFETCH(double, scale);
    QFETCH(double, pixels);
    QFETCH(bool, isImperial);
    if (isImperial)
        ZrUnits::SetToImperial();
    m_layer->m_hasGrid = false;
    m_layer->m_hasNorthArrow = false;
    m_view.SetScale(scale);
    m_view.SetRotation(66);
    const QImage image = Painted(Qt::blue);
    const QRect rect = m_layer->ScaleBarRect(m_view).toRect();
    // The upper edge of the bar is light from one end to the other, within the casing.
    const int row = rect.bottom() - 2 - 8;
    int light = 0;
    for (int x = 0; x < width; ++x)
        light += image.pixelColor(x, row) == QColor(Qt::white) ? 1 : 0;
    QCOMPARE(light, qRound(pixels));
    QCOMPARE(rect.width(), qRound(pixels) + 4);
    QCOMPARE(image.pixelColor(rect.left(), row), QColor(Qt::black));
    QCOMPARE(image.pixelColor(rect.right(), row), QColor(Qt::black));
    // Nothing beside it.
    QCOMPARE(CountOutside(image, QRectF(rect).adjusted(-2, -2, 2, 0), Qt::blue), 0);
}

void tst_ZrGridLayer::scaleBarIsSeenOnEveryGround_data()
{
    linesAreSeenOnEveryGround_data();
}

void tst_ZrGridLayer::scaleBarIsSeenOnEveryGround()
{
    QFETCH(QColor, ground);
    m_layer->m_hasGrid = false;
    const QImage image = Painted(ground);
    const QRectF rect = m_layer->ScaleBarRect(m_view);
    QVERIFY(Count(image, rect, Qt::white, 10) > 300);
    QVERIFY(Count(image, rect, Qt::black, 10) > 300);
    // The text too: light ink, dark halo.
    const QRectF text(rect.left(), rect.top(), rect.width(), 20);
    QVERIFY(Count(image, text, Qt::white, 60) > 20);
    QVERIFY(Count(image, text, Qt::black, 60) > 40);
}

void tst_ZrGridLayer::unitsShowAtOnce()
{
    m_layer->m_hasGrid = false;
    const QImage metric = Painted();
    ZrUnits::SetToImperial();
    QVERIFY(!gl::Difference(Painted(), metric).isEmpty());
    ZrUnits::SetToMetric();
    const QString difference = gl::Difference(Painted(), metric);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGridLayer::arrowPointsNorth_data()
{
    QTest::addColumn<double>("rotation");
    for (const double rotation : {0.0, 45.0, 90.0, 180.0, 250.0, 359.0})
        QTest::addRow("%g", rotation) << rotation;
}

void tst_ZrGridLayer::arrowPointsNorth()
{
    QFETCH(double, rotation);
    m_layer->m_hasGrid = false;
    m_layer->m_hasScaleBar = false;
    m_view.SetRotation(rotation);
    const QImage image = Painted();
    const QRectF rect = m_layer->NorthArrowRect(m_view);
    QPointF sum;
    int count = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.red() > 200 && c.green() < 60) {
                sum += QPointF(x + 0.5, y + 0.5) - rect.center();
                ++count;
            }
        }
    }
    QVERIFY(count > 100);
    // The middle of the red half is on the line from the middle to the north.
    const double angle = m_layer->NorthAngle(m_view) / 57.29577951308232;
    const QPointF towards = sum / count;
    const double across = -towards.x() * std::cos(angle) + towards.y() * std::sin(angle);
    QVERIFY2(std::fabs(across) < 0.5, qPrintable(QString::number(across)));
    // Its tip points up in the map: north of the middle.
    const auto at = [&](double share) {
        const double r = share * rect.width() / 2.0;
        const QPointF p = rect.center() + QPointF(-std::sin(angle) * r, -std::cos(angle) * r);
        return image.pixelColor(int(std::floor(p.x())), int(std::floor(p.y())));
    };
    QVERIFY(at(0.1).red() > 200 && at(0.1).green() < 60);
    QVERIFY(at(-0.4).green() > 200);
}

void tst_ZrGridLayer::northAngle_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<double>("rotation");
    QTest::newRow("west") << 50.3 << -5.9 << 0.0;
    QTest::newRow("east") << 50.3 << -0.1 << 20.0;
    QTest::newRow("middle") << 50.3 << -3.0 << 200.0;
    QTest::newRow("south, west") << -50.0 << -5.5 << 0.0;
    QTest::newRow("south, east") << -50.0 << -0.5 << 90.0;
}

void tst_ZrGridLayer::northAngle()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(double, rotation);
    const ZrProj projection = ProjectionOf(lat, lng);
    m_layer->SetProjection(ZrUnits::wgs84, projection);
    m_view.SetCentre(WorldOf(projection, lat, lng));
    m_view.SetRotation(rotation);
    // Where a step to the north leads on the screen.
    const QPointF d = m_view.ToPixel(WorldOf(projection, lat + 0.001, lng))
        - m_view.ToPixel(WorldOf(projection, lat, lng));
    const double expected = std::atan2(-d.x(), -d.y()) * 57.29577951308232;
    const double error = std::remainder(m_layer->NorthAngle(m_view) - expected, 360.0);
    QVERIFY2(std::fabs(error) < 0.01, qPrintable(QString::number(error)));
    m_layer->m_north = ZrGridLayer::northGrid;
    QCOMPARE(m_layer->NorthAngle(m_view), rotation);
}

void tst_ZrGridLayer::northWithoutProjection()
{
    m_view.SetRotation(12);
    QVERIFY(m_layer->NorthAngle(m_view) != 12.0);
    const QImage withName = Painted();
    m_layer->ClearProjection();
    QCOMPARE(m_layer->NorthAngle(m_view), 12.0);
    m_layer->SetProjection(ZrUnits::wgs84, m_projection);
    m_view.SetCentre({1e9, 1e300});
    QCOMPARE(m_layer->NorthAngle(m_view), 12.0);
    ZrProj broken;
    broken.lngOrigin = notANumber;
    m_layer->SetProjection(ZrUnits::wgs84, broken);
    m_view.SetCentre({500000, 5e6});
    QCOMPARE(m_layer->NorthAngle(m_view), 12.0);
}

void tst_ZrGridLayer::tapArea()
{
    const QRectF rect = m_layer->NorthArrowRect(m_view);
    QVERIFY(rect.width() >= 44 && rect.height() >= 44);
    QVERIFY(QRectF(0, 0, width, height).contains(rect));
    // The disc is what it covers.
    m_layer->m_hasGrid = false;
    m_layer->m_hasScaleBar = false;
    const QImage image = Painted(Qt::blue);
    QCOMPARE(
        image.pixelColor(rect.center().toPoint() + QPoint(0, int(rect.height() / 2) - 2)), QColor(Qt::white));
    QCOMPARE(CountOutside(image, rect.adjusted(-1, -1, 1, 1), Qt::blue), 0);
    ZrTheme::dp = 1.5F;
    QCOMPARE(m_layer->NorthArrowRect(m_view).width(), 90.0);
    QCOMPARE(m_layer->NorthArrowRect(m_view, 2).width(), 180.0);
    m_layer->m_hasNorthArrow = false;
    QVERIFY(m_layer->NorthArrowRect(m_view).isEmpty());
    m_layer->m_hasScaleBar = false;
    QVERIFY(m_layer->ScaleBarRect(m_view).isEmpty());
}

void tst_ZrGridLayer::marginsAreKeptClear()
{
    m_layer->m_hasGrid = true;
    m_layer->SetMargins({30, 50, 70, 90});
    const QRectF area(30, 50, width - 100, height - 140);
    QVERIFY(area.contains(m_layer->NorthArrowRect(m_view)));
    QVERIFY(area.contains(m_layer->ScaleBarRect(m_view)));
    for (const double rotation : {0.0, 33.0}) {
        m_view.SetRotation(rotation);
        ZrTheme::gridCol = QColor(128, 128, 128, 0);
        ZrTheme::darken = QColor(0, 0, 0, 0);
        const QImage image = Painted(Qt::blue);
        // Without lines nothing is outside; the halo of a text may be.
        QCOMPARE(CountOutside(image, area.adjusted(-2, -2, 2, 2), Qt::blue), 0);
        QVERIFY(gl::CountNot(image, Qt::blue) > 3000);
    }
    // Margins that are none.
    m_layer->SetMargins({-5, notANumber, 0, std::numeric_limits<double>::infinity()});
    QVERIFY(QRectF(0, 0, width, height).contains(m_layer->NorthArrowRect(m_view)));
}

void tst_ZrGridLayer::rectsFitOrAreEmpty_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("a pixel") << QSize(1, 1);
    QTest::newRow("narrow") << QSize(30, 400);
    QTest::newRow("flat") << QSize(400, 30);
    QTest::newRow("small") << QSize(100, 90);
    QTest::newRow("usual") << QSize(640, 400);
}

void tst_ZrGridLayer::rectsFitOrAreEmpty()
{
    QFETCH(QSize, size);
    m_view.SetSize(size.width(), size.height());
    const QRectF all(0, 0, size.width(), size.height());
    for (double scale = 0.001; scale < 50000; scale *= 1.7) {
        m_view.SetScale(scale);
        for (const QRectF& rect : {m_layer->NorthArrowRect(m_view), m_layer->ScaleBarRect(m_view)})
            QVERIFY(rect.isEmpty() || all.contains(rect));
    }
    QCOMPARE(m_layer->NorthArrowRect(m_view).isEmpty(), size.height() < 84 || size.width() < 84);
    Paint();
    // Margins that leave nothing.
    m_layer->SetMargins({500, 500, 500, 500});
    QVERIFY(m_layer->NorthArrowRect(m_view).isEmpty());
    QVERIFY(m_layer->ScaleBarRect(m_view).isEmpty());
    Paint();
}

void tst_ZrGridLayer::textsLeaveBarAndArrow()
{
    // Whatever moves under them, bar and arrow look the same.
    ZrTheme::gridCol = QColor(128, 128, 128, 0);
    ZrTheme::darken = QColor(0, 0, 0, 0);
    const QRect bar = m_layer->ScaleBarRect(m_view).toRect();
    const QRect arrow = m_layer->NorthArrowRect(m_view).toRect();
    const QImage first = Painted(Qt::blue);
    m_layer->m_hasTexts = false;
    const QImage plain = Painted(Qt::blue);
    QVERIFY(!gl::Difference(first, plain).isEmpty());
    m_layer->m_hasTexts = true;
    for (int i = 0; i < 25; ++i) {
        m_view.Pan({0, 9});
        const QImage image = Painted(Qt::blue);
        QVERIFY(gl::Difference(image.copy(bar), plain.copy(bar)).isEmpty());
        // The convergence turns the needle a little.
        QVERIFY(gl::Difference(image.copy(arrow), plain.copy(arrow), 30).isEmpty());
    }
}

void tst_ZrGridLayer::styleOfPositionsShows()
{
    const QImage geographic = Painted();
    ZrUnits::SetGeoStyle(eGeoUTM);
    const QImage grid = Painted();
    QVERIFY(!gl::Difference(grid, geographic, 60).isEmpty());
    // Without a projection there is nothing else, whatever the style.
    m_layer->m_hasNorthArrow = false;
    const QImage gridAlone = Painted();
    ZrUnits::SetGeoStyle(eGeoDMS);
    m_layer->ClearProjection();
    const QString difference = gl::Difference(Painted(), gridAlone);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGridLayer::partsCanBeLeftOut()
{
    m_layer->m_hasGrid = false;
    m_layer->m_hasScaleBar = false;
    m_layer->m_hasNorthArrow = false;
    gl::Recorder recorder;
    QCOMPARE(gl::CountNot(Painted(), Qt::black), 0);
    QVERIFY(recorder.draws.empty());
    m_layer->m_hasGrid = true;
    m_layer->m_hasTexts = false;
    Painted();
    QCOMPARE(recorder.draws.size(), std::size_t(1));
}

void tst_ZrGridLayer::everywhere_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::newRow("equator") << 0.0 << 0.0;
    QTest::newRow("antimeridian") << -17.0 << 179.999;
    QTest::newRow("antimeridian, west") << 52.0 << -179.999;
    QTest::newRow("south") << -54.8 << -68.3;
    QTest::newRow("near the pole") << 83.9 << 10.0;
    QTest::newRow("beyond the grid") << 89.5 << 10.0;
    QTest::newRow("south pole") << -89.999 << 0.0;
}

void tst_ZrGridLayer::everywhere()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    m_projection = ProjectionOf(lat, lng);
    m_layer->SetProjection(ZrUnits::wgs84, m_projection);
    m_view.SetCentre(WorldOf(m_projection, lat, lng));
    for (const double scale : {0.001, 1.0, 100.0, 3000.0, 50000.0}) {
        for (const int style : {1, 4, 7, 8}) {
            ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
            m_view.SetScale(scale);
            m_view.SetRotation(scale + style);
            Paint();
            QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
        }
    }
    m_view.SetScale(1.0);
    const QRectF arrow = m_layer->NorthArrowRect(m_view);
    QVERIFY(Count(Painted(), arrow, Qt::red, 30) > 100);
}

void tst_ZrGridLayer::nonsense()
{
    for (const QPointF& centre : {QPointF(1e300, -1e300), QPointF(0, 1e12), QPointF(-1e9, 0)}) {
        m_view.SetCentre(centre);
        for (const double scale : {0.001, 50000.0}) {
            m_view.SetScale(scale);
            for (const int style : {7, 8}) {
                ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
                Paint();
            }
        }
    }
    m_layer->SetSpacing(notANumber);
    m_layer->SetSpacing(-1e300);
    m_layer->SetSpacing(1e300);
    Paint();
    ZrProj broken;
    broken.lngOrigin = notANumber;
    m_layer->SetProjection(ZrUnits::wgs84, broken);
    Paint();
    ZrUnits::SetShortLengthToCustom(QStringLiteral("x"), notANumber);
    ZrUnits::SetLongLengthToCustom(QStringLiteral("y"), 0.0);
    Paint();
    for (const float dp : {0.0F, -1.0F, std::numeric_limits<float>::infinity(),
             std::numeric_limits<float>::quiet_NaN(), 1e6F}) {
        ZrTheme::dp = dp;
        Paint();
        QVERIFY(m_layer->NorthArrowRect(m_view).isEmpty());
        QVERIFY(m_layer->ScaleBarRect(m_view).isEmpty());
    }
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGridLayer::zeroSize()
{
    gl::Recorder recorder;
    m_view.SetSize(0, 100);
    m_layer->Paint(*m_surface, m_view);
    QVERIFY(recorder.draws.empty());
}

void tst_ZrGridLayer::withoutContext()
{
    m_context->DoneCurrent();
    Paint();
    m_layer->Release(*m_surface);
    QVERIFY(m_context->MakeCurrent());
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 1000);
}

void tst_ZrGridLayer::failedProgram()
{
    {
        const resource::Without without(QStringLiteral(":/map_shape.fsh"));
        QVERIFY(without.IsDone());
        gl::Recorder recorder;
        Paint();
        Paint();
        QVERIFY(recorder.draws.empty());
        QCOMPARE(s_lines, 2);
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    }
    m_layer->Release(*m_surface);
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 1000);
}

void tst_ZrGridLayer::contextLost()
{
    const QImage before = Painted();
    m_surface.reset();
    m_context.reset();
    MakeContext();
    for (int i = 0; i < 2; ++i) {
        const QString difference = gl::Difference(Painted(), before);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }
    m_layer->Release(*m_surface);
    const QString difference = gl::Difference(Painted(), before);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

GL_TEST_MAIN(tst_ZrGridLayer)
#include "tst_ZrGridLayer.moc"
