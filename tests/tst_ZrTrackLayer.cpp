// The track on a map: pixels, and what each frame costs, in both kinds of context.

#include "GlRecorder.h"
#include "LogLines.h"
#include "MapSurface.h"
#include "TrackShapes.h"
#include "WithoutResource.h"
#include "ZrKit/map/ZrMapSplit.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrUtil/ZrTheme.h"

#include <QtWidgets>

#include <limits>

namespace {

using gl::Api;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
const QPointF origin(512345.0, 4812345.0);
const QColor red(255, 0, 0);
const QColor green(0, 255, 0);
const QColor blue(0, 0, 255);

/// Says that lines are one pixel wide at most, until it is destroyed.
class NarrowLines : private QOpenGLFunctions
{
public:
    NarrowLines()
        : QOpenGLFunctions(QOpenGLContext::currentContext())
        , m_saved(d_ptr->f)
    {
        s_active = this;
        d_ptr->f.GetFloatv = [](GLenum name, GLfloat* values) {
            s_active->m_saved.GetFloatv(name, values);
            if (name == GL_ALIASED_LINE_WIDTH_RANGE)
                values[1] = 1.0F;
        };
        d_ptr->f.LineWidth = [](GLfloat width) { s_active->m_saved.LineWidth(std::min(width, 1.0F)); };
    }

    ~NarrowLines()
    {
        d_ptr->f = m_saved;
        s_active = nullptr;
    }

    NarrowLines(const NarrowLines&) = delete;
    NarrowLines& operator=(const NarrowLines&) = delete;

private:
    decltype(QOpenGLFunctionsPrivate::f) m_saved;
    static inline NarrowLines* s_active = nullptr;
};

} // namespace

class tst_ZrTrackLayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void line();
    void wideLine_data();
    void wideLine();
    void breaksAreNotJoined();
    void lonePosition();
    void casing();
    void sizeFollowsTheScreen();
    void cursor_data();
    void cursor();
    void themeColours();
    void transparent();
    void growsBeyondTheLimit();
    void narrowLines();
    void narrowLinesKeepTheLimit();
    void nothingToDraw();
    void failedProgram();
    void noMemory_data();
    void noMemory();
    void withoutContext();
    void released();

private:
    QImage Painted(ZrMapLayer& layer, const ZrMapView& view) { return m_stage->Painted(layer, view); }

    void Create(const QSize& size = {320, 200});

    gl::Api m_api = Api::desktop;
    QSize m_size;
    std::unique_ptr<map::Stage> m_stage;
};

void tst_ZrTrackLayer::initTestCase_data()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL") << Api::desktop;
    QTest::newRow("ES") << Api::es;
}

void tst_ZrTrackLayer::init()
{
    QFETCH_GLOBAL(gl::Api, api);
    m_api = api;
    ZrTheme::dp = 1.0F;
    Create();
}

void tst_ZrTrackLayer::Create(const QSize& size)
{
    m_stage.reset();
    m_size = size;
    m_stage = std::make_unique<map::Stage>(m_api, size);
    QVERIFY2(m_stage->Context().Error().isEmpty(), qPrintable(m_stage->Context().Error()));
}

void tst_ZrTrackLayer::cleanup()
{
    QCOMPARE(m_stage->Context().TakeErrors(), GLenum(GL_NO_ERROR));
    m_stage.reset();
}

void tst_ZrTrackLayer::line()
{
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_width = 1;
    layer.m_track.Append(origin.x() - 50, origin.y() + 10.25);
    layer.m_track.Append(origin.x() + 50, origin.y() + 10.25);
    const ZrMapView view = map::ViewOf(m_size, origin, 0.5);
    const QImage image = Painted(layer, view);
    const int y = static_cast<int>(view.ToPixel(origin + QPointF(0, 10.25)).y());
    QCOMPARE(map::Count(image, red), 200);
    QCOMPARE(image.pixelColor(61, y), red);
    QCOMPARE(image.pixelColor(258, y), red);
    // Turned by 90 degrees, east is up.
    const QImage turned = Painted(layer, map::ViewOf(m_size, origin, 1, 90));
    QCOMPARE(map::Count(turned, red), 100);
    QCOMPARE(map::Count(turned.copy(145, 50, 10, 100), red), 100);
}

void tst_ZrTrackLayer::wideLine_data()
{
    QTest::addColumn<float>("width");
    QTest::addColumn<float>("dp");
    QTest::addColumn<int>("pixels");
    QTest::newRow("3") << 3.0F << 1.0F << 3;
    QTest::newRow("3 at 2 pixels") << 3.0F << 2.0F << 6;
    QTest::newRow("below a pixel") << 0.2F << 1.0F << 1;
    QTest::newRow("negative") << -4.0F << 1.0F << 1;
    QTest::newRow("not a number") << std::numeric_limits<float>::quiet_NaN() << 1.0F << 1;
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << 1.0F << 1;
    QTest::newRow("enormous") << 1e9F << 1.0F << 64;
}

void tst_ZrTrackLayer::wideLine()
{
    QFETCH(float, width);
    QFETCH(float, dp);
    QFETCH(int, pixels);
    ZrTheme::dp = dp;
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_width = width;
    layer.m_track.Append(origin.x() - 500, origin.y() + 0.5);
    layer.m_track.Append(origin.x() + 500, origin.y() + 0.5);
    const QImage image = Painted(layer, map::ViewOf(m_size, origin, 1));
    QCOMPARE(map::Count(image.copy(160, 0, 1, m_size.height()), red), pixels);
}

void tst_ZrTrackLayer::breaksAreNotJoined()
{
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_track.Append(origin.x() - 100, origin.y());
    layer.m_track.Append(origin.x() - 50, origin.y());
    layer.m_track.Append(notANumber, origin.y());
    layer.m_track.Append(origin.x() + 50, origin.y());
    layer.m_track.Append(origin.x() + 100, origin.y());
    const QImage image = Painted(layer, map::ViewOf(m_size, origin, 1));
    QCOMPARE(map::Count(image, red), 300);
    QCOMPARE(map::Count(image.copy(112, 0, 96, m_size.height()), red), 0);
}

void tst_ZrTrackLayer::lonePosition()
{
    ZrTrackLayer layer;
    layer.m_colour = red;
    for (int i = 0; i < 2000; ++i)
        layer.m_track.Append(origin.x(), origin.y());
    for (const double scale : {0.001, 1.0, 50000.0}) {
        const int dot = map::Count(Painted(layer, map::ViewOf(m_size, origin, scale, 20)), red);
        QVERIFY2(dot >= 2 && dot <= 16, qPrintable(QString::number(dot)));
    }
    layer.m_track.Clear();
    layer.m_track.Append(origin.x(), origin.y());
    QVERIFY(map::Count(Painted(layer, map::ViewOf(m_size, origin, 1)), red) >= 2);
}

void tst_ZrTrackLayer::casing()
{
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_casing = blue;
    layer.m_track.Append(origin.x() - 500, origin.y() + 0.5);
    layer.m_track.Append(origin.x() + 500, origin.y() + 0.5);
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    const QImage column = Painted(layer, view).copy(160, 0, 1, m_size.height());
    QCOMPARE(map::Count(column, red), 3);
    QCOMPARE(map::Count(column, blue), 2);
    gl::Recorder recorder;
    Painted(layer, view);
    QCOMPARE(recorder.draws.size(), std::size_t(2));
}

/// As wide on a screen of two device pixels for one, the casing too.
void tst_ZrTrackLayer::sizeFollowsTheScreen()
{
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_futureColour = green;
    layer.m_casing = blue;
    layer.m_width = 4;
    for (const int x : {-500, 0, 500})
        layer.m_track.Append(origin.x() + x, origin.y());
    layer.m_cursor = 1;
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    const auto counts = [&] {
        const QImage image = Painted(layer, view);
        const QImage past = image.copy(80, 0, 1, m_size.height());
        const QImage future = image.copy(240, 0, 1, m_size.height());
        return std::vector<int>{map::Count(past, red), map::Count(past, blue), map::Count(future, green)};
    };
    QCOMPARE(counts(), (std::vector<int>{4, 2, 3}));
    m_stage->Surface().m_pixelFactor = 2;
    QCOMPARE(counts(), (std::vector<int>{8, 4, 6}));
    m_stage->Surface().m_pixelFactor = 1;
    QCOMPARE(counts(), (std::vector<int>{4, 2, 3}));
}

void tst_ZrTrackLayer::cursor_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("pastPixels"); ///< of the 200 along the line
    QTest::addColumn<int>("draws");
    // Positions are 10 m apart, 20 of them; a level leaves those between the ends out.
    QTest::newRow("none") << -1 << 200 << 1;
    QTest::newRow("first") << 0 << 0 << 1;
    QTest::newRow("within a line") << 5 << 50 << 2;
    QTest::newRow("last") << 20 << 200 << 1;
    QTest::newRow("beyond") << 1000 << 200 << 1;
}

void tst_ZrTrackLayer::cursor()
{
    QFETCH(int, index);
    QFETCH(int, pastPixels);
    QFETCH(int, draws);
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_futureColour = green;
    layer.m_width = 1;
    layer.m_cursor = index;
    for (int i = 0; i <= 20; ++i)
        layer.m_track.Append(origin.x() - 100 + 10 * i, origin.y() + 0.5);
    layer.m_track.Append(notANumber, notANumber);
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    gl::Recorder recorder;
    const QImage image = Painted(layer, view);
    QCOMPARE(map::Count(image, red) + map::Count(image, green), 200);
    QVERIFY(qAbs(map::Count(image, red) - pastPixels) <= 1);
    QCOMPARE(map::Count(image.copy(0, 0, 60 + pastPixels - 1, m_size.height()), green), 0);
    QCOMPARE(static_cast<int>(recorder.draws.size()), draws);
    // The cursor moves: only the pieces beside it are uploaded.
    recorder.Reset();
    layer.m_cursor = 7;
    Painted(layer, view);
    QCOMPARE(recorder.uploadedBytes, qint64(64));
    recorder.Reset();
    Painted(layer, view);
    QCOMPARE(recorder.uploadedBytes, qint64(0));
}

void tst_ZrTrackLayer::themeColours()
{
    ZrTheme::SetStdStyle();
    ZrTrackLayer layer;
    layer.m_track.Append(origin.x() - 100, origin.y());
    layer.m_track.Append(origin.x(), origin.y());
    layer.m_track.Append(origin.x() + 100, origin.y() + 50);
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    QVERIFY(map::Count(Painted(layer, view), ZrTheme::track) > 400);
    layer.m_cursor = 1;
    const QImage image = Painted(layer, view);
    QVERIFY(map::Count(image, ZrTheme::track) > 200);
    QVERIFY(map::Count(image, ZrTheme::track) < 400);
    // What lies ahead is told from the past by its width too.
    const int ahead = map::Count(image, ZrTheme::track.darker(220));
    QVERIFY(ahead > 80);
    QVERIFY(ahead < 250);
}

void tst_ZrTrackLayer::transparent()
{
    ZrTrackLayer layer;
    layer.m_colour = QColor(255, 0, 0, 128);
    layer.m_track.Append(origin.x() - 100, origin.y() + 0.5);
    layer.m_track.Append(origin.x() + 100, origin.y() + 0.5);
    const QImage image = Painted(layer, map::ViewOf(m_size, origin, 1));
    QVERIFY(qAbs(image.pixelColor(160, 99).red() - 128) <= 2);
    QVERIFY(!m_stage->Context().Functions()->glIsEnabled(GL_BLEND));
}

/// Pixels of the track have one of the layer within a pixel, and the other way round.
void tst_ZrTrackLayer::growsBeyondTheLimit()
{
    ZrTrackLayer layer;
    layer.m_vertexLimit = 1000;
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    gl::Recorder recorder;
    qint64 bytes = 0;
    for (const QPointF& p : track::RandomWalk(5000)) {
        layer.m_track.Append(p.x(), p.y());
        recorder.Reset();
        Painted(layer, view);
        QVERIFY(recorder.vertices <= 1000);
        bytes += recorder.uploadedBytes;
    }
    // Each build makes room for more: on the whole not much more is uploaded than what was drawn.
    QVERIFY2(bytes < 5000 * 32 * 15, qPrintable(QString::number(bytes)));
    layer.m_vertexLimit = -7;
    recorder.Reset();
    Painted(layer, view);
    QVERIFY(recorder.vertices > 0 && recorder.vertices <= 100);
}

void tst_ZrTrackLayer::narrowLines()
{
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_track.Append(origin.x() - 100, origin.y() - 60);
    layer.m_track.Append(origin.x() + 100, origin.y() + 20);
    layer.m_track.Append(origin.x() + 100, origin.y() - 60);
    const ZrMapView view = map::ViewOf(m_size, origin, 1, 10);
    const QImage wide = Painted(layer, view);
    layer.Release(m_stage->Surface());
    const NarrowLines narrow;
    const QImage image = Painted(layer, view);
    const int all = map::Count(wide, red);
    const int pixels = map::Count(image, red);
    QVERIFY2(all > 500 && pixels > all, qPrintable(QStringLiteral("%1 of %2").arg(pixels).arg(all)));
    QCOMPARE(map::CountAlone(image, wide, red), 0);
    QCOMPARE(map::CountAlone(wide, image, red), 0);
    layer.m_width = 2;
    QVERIFY(map::Count(Painted(layer, view), red) > 500);
    layer.m_width = 64;
    layer.m_casing = blue;
    QVERIFY(map::Count(Painted(layer, view), red) > 64 * 150);
}

void tst_ZrTrackLayer::narrowLinesKeepTheLimit()
{
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_casing = blue;
    layer.m_vertexLimit = 12000;
    for (int i = 0; i < 200000; ++i)
        layer.m_track.Append(origin.x() + 140 * std::sin(i * 0.37), origin.y() + 90 * std::sin(i * 0.611));
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    const NarrowLines narrow;
    for (const int factor : {1, 2}) {
        m_stage->Surface().m_pixelFactor = factor;
        const gl::Recorder recorder;
        QVERIFY(map::Count(Painted(layer, view), red) > 1000);
        QVERIFY2(recorder.vertices <= layer.m_vertexLimit, qPrintable(QString::number(recorder.vertices)));
        QVERIFY(recorder.draws.size() > 10);
    }
}

void tst_ZrTrackLayer::nothingToDraw()
{
    ZrTrackLayer layer;
    layer.m_colour = red;
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    gl::Recorder recorder;
    Painted(layer, view);
    layer.m_track.Append(notANumber, notANumber);
    Painted(layer, view);
    QCOMPARE(recorder.draws.size(), std::size_t(0));
    layer.m_track.Append(origin.x(), origin.y());
    layer.m_track.Append(origin.x() + 5, origin.y());
    ZrMapView empty = view;
    empty.SetSize(0, 5);
    empty.Apply(m_stage->Surface());
    layer.Paint(m_stage->Surface(), empty);
    layer.m_isVisible = false;
    Painted(layer, view);
    QCOMPARE(recorder.draws.size(), std::size_t(0));
    layer.m_isVisible = true;
    Painted(layer, view);
    QCOMPARE(recorder.draws.size(), std::size_t(1));
}

void tst_ZrTrackLayer::failedProgram()
{
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_track.Append(origin.x(), origin.y());
    layer.m_track.Append(origin.x() + 50, origin.y());
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    {
        const resource::Without without(QStringLiteral(":/map.vsh"));
        QVERIFY(without.IsDone());
        const log_lines::Capture log;
        QCOMPARE(map::Count(Painted(layer, view), red), 0);
        QCOMPARE(map::Count(Painted(layer, view), red), 0);
        QCOMPARE(log.All(),
            QStringList({QStringLiteral("Cannot read shader :/map.vsh"),
                QStringLiteral("Cannot read shader :/solid.fsh")}));
    }
    // It is not tried again in each frame, but after a release.
    QCOMPARE(map::Count(Painted(layer, view), red), 0);
    layer.Release(m_stage->Surface());
    QVERIFY(map::Count(Painted(layer, view), red) > 0);
}

void tst_ZrTrackLayer::noMemory_data()
{
    QTest::addColumn<double>("cursor");
    QTest::addColumn<bool>("isThere");
    QTest::addColumn<int>("draws"); // without memory
    QTest::newRow("track") << -1.0 << false << 0;
    QTest::newRow("at a cursor") << 1.0 << false << 0;
    // The line is there, only its pieces at the cursor are new.
    QTest::newRow("pieces") << 7.0 << true << 2;
}

void tst_ZrTrackLayer::noMemory()
{
    QFETCH(double, cursor);
    QFETCH(bool, isThere);
    QFETCH(int, draws);
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_width = 1.0F;
    // Positions that a level leaves out between its ends.
    for (int i = 0; i <= 20; ++i)
        layer.m_track.Append(origin.x() - 100 + 10 * i, origin.y() + 0.5);
    layer.m_track.Append(notANumber, notANumber);
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    if (isThere)
        Painted(layer, view);
    layer.m_cursor = static_cast<i64>(cursor);
    {
        gl::Recorder recorder;
        recorder.isBufferMemoryOut = true;
        const log_lines::Capture log;
        for (int i = 0; i < 3; ++i) {
            recorder.Reset();
            const QImage image = Painted(layer, view);
            QCOMPARE(recorder.error, GLenum(GL_NO_ERROR));
            QVERIFY(static_cast<int>(recorder.draws.size()) <= draws);
            if (draws == 0)
                QCOMPARE(map::Count(image, Qt::black), image.width() * image.height());
        }
        QVERIFY(recorder.failed > 0);
        QCOMPARE(log.All().size(), 1);
        QCOMPARE(log.Count(QStringLiteral(" vertices for a track, it is not drawn: error 1285")), 1);
    }
    QVERIFY(map::Count(Painted(layer, view), red) > 0);
    ZrTrackLayer other;
    other.m_track = layer.m_track;
    other.m_colour = layer.m_colour;
    other.m_width = layer.m_width;
    other.m_cursor = layer.m_cursor;
    QCOMPARE(Painted(layer, view), Painted(other, view));
}

void tst_ZrTrackLayer::withoutContext()
{
    const log_lines::Capture log;
    ZrTrackLayer layer;
    layer.m_track.Append(origin.x(), origin.y());
    MapSurface surface;
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    layer.Paint(surface, view); // a surface that was not created
    layer.Paint(surface, view);
    QCOMPARE(log.All(),
        QStringList(QStringLiteral("The OpenGL context of the surface is not current, nothing is drawn")));
    m_stage->Context().DoneCurrent();
    layer.Paint(surface, view);
    layer.Release(surface);
    QVERIFY(m_stage->Context().MakeCurrent());
}

void tst_ZrTrackLayer::released()
{
    ZrTrackLayer layer;
    layer.m_colour = red;
    layer.m_cursor = 1;
    for (int i = 0; i < 4; ++i)
        layer.m_track.Append(origin.x() + 10 * i, origin.y());
    const ZrMapView view = map::ViewOf(m_size, origin, 1);
    const QImage before = Painted(layer, view);
    layer.Release(m_stage->Surface());
    layer.Release(m_stage->Surface());
    // The names are free again.
    auto* const f = m_stage->Context().Functions();
    for (GLuint name = 1; name < 50; ++name)
        QVERIFY(!f->glIsBuffer(name));
    QCOMPARE(Painted(layer, view), before);
}

GL_TEST_MAIN(tst_ZrTrackLayer)
#include "tst_ZrTrackLayer.moc"
