// What all layers of a map have in common: when they draw, contexts that come and go, and what they leave to
// others, in both kinds of context.

#include "GlRecorder.h"
#include "GlView.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrShapeLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrKit/map/ZrWaterfallLayer.h"
#include "ZrUtil/ZrTheme.h"

#include <QtWidgets>

#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace {

using gl::Api;

constexpr int side = GlView::side;
const QColor background(10, 20, 250);

QStringList g_lines; ///< of the debug log

/// Something that can be seen around the origin of the world.
struct Kind
{
    const char* name;
    std::function<std::unique_ptr<ZrMapLayer>()> make;
};

std::unique_ptr<ZrMapLayer> MakeTrack()
{
    auto layer = std::make_unique<ZrTrackLayer>();
    for (int i = -20; i <= 20; ++i)
        layer->m_track.Append(i, i % 3 * 5.0);
    layer->m_colour = Qt::white;
    return layer;
}

/// Too dense for lines: seen is what is covered up to the cursor.
std::unique_ptr<ZrMapLayer> MakeCover()
{
    auto layer = std::make_unique<ZrTrackLayer>();
    std::mt19937 random(4711);
    for (int i = 0; i < 5000; ++i)
        layer->m_track.Append(static_cast<int>(random() % 41) - 20, static_cast<int>(random() % 41) - 20);
    layer->m_vertexLimit = 600;
    layer->m_colour = Qt::white;
    layer->m_futureColour = background;
    layer->m_cursor = 2500;
    return layer;
}

std::unique_ptr<ZrMapLayer> MakeMarkers()
{
    auto layer = std::make_unique<ZrMarkerLayer>();
    layer->SetMarkers({ZrMapMarker()});
    return layer;
}

std::unique_ptr<ZrMapLayer> MakeLabels()
{
    auto layer = std::make_unique<ZrLabelLayer>();
    ZrMapLabel label;
    label.text = QStringLiteral("Wreck");
    label.colour = Qt::white;
    label.alignX = ZrMapLabel::alignCentre;
    layer->SetLabels({label});
    return layer;
}

std::unique_ptr<ZrMapLayer> MakeShapes()
{
    auto layer = std::make_unique<ZrShapeLayer>();
    layer->AddLine({{-20, -10}, {20, 10}}, 3.0, Qt::white);
    return layer;
}

std::unique_ptr<ZrMapLayer> MakeGrid()
{
    return std::make_unique<ZrGridLayer>();
}

/// With a ring that lives as long.
class Waterfall : public ZrWaterfallLayer
{
public:
    Waterfall()
        : m_lines(side, 32)
    {
        ZrWaterfallLine line;
        for (const std::size_t s : {std::size_t(sidePort), std::size_t(sideStarboard)}) {
            line.range[s] = 32.0;
            line.samples[s].assign(32, 255);
        }
        for (int i = 0; i < side; ++i)
            m_lines.Append(line);
        m_view.rect = QRect(0, 0, side, side);
        SetRing(&m_lines);
    }

private:
    ZrWaterfallRing m_lines;
};

std::unique_ptr<ZrMapLayer> MakeWaterfall()
{
    return std::make_unique<Waterfall>();
}

const std::vector<Kind>& Kinds()
{
    static const std::vector<Kind> kinds{{"track", MakeTrack}, {"covering track", MakeCover},
        {"markers", MakeMarkers}, {"labels", MakeLabels}, {"shapes", MakeShapes}, {"grid", MakeGrid},
        {"waterfall", MakeWaterfall}};
    return kinds;
}

/// Tells what is asked of it.
class Noted : public ZrMapLayer
{
public:
    QStringList calls;

protected:
    void OnPaint(ZrGlSurface& /*surface*/, const ZrMapView& /*view*/) override
    {
        calls << QStringLiteral("paint");
    }

    void OnRelease(ZrGlSurface& /*surface*/) override { calls << QStringLiteral("release"); }

    void OnForget() override { calls << QStringLiteral("forget"); }
};

} // namespace

// Takes the place of the library's function.
void zr_debug_log_modern(int /*level*/, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* /*category*/, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* message)
{
    g_lines << QString::fromUtf8(message);
}

class tst_ZrMapLayerKinds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void calls();
    void callsInAnotherContext();
    void releaseOfNothing();

    void beforeOnCreate_data() { AddKinds(); }

    void beforeOnCreate();

    void newContextBeforeOnCreate_data() { AddKinds(); }

    void newContextBeforeOnCreate();

    void releaseBySurfaceThatIsNotReady_data() { AddKinds(); }

    void releaseBySurfaceThatIsNotReady();

    void nothingToDrawOn_data() { AddKinds(); }

    void nothingToDrawOn();

    void errorsOfOthers_data() { AddKinds(); }

    void errorsOfOthers();

    void leavesTheContextClean_data() { AddKinds(); }

    void leavesTheContextClean();

private:
    static void AddKinds();
    void MakeContext();
    void MakeSurface(bool isCreated);
    int Painted(ZrMapLayer& layer);

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<GlView> m_surface;
    ZrMapView m_view;
};

void tst_ZrMapLayerKinds::initTestCase_data()
{
    QTest::addColumn<Api>("api");
    QTest::newRow("desktop") << Api::desktop;
    QTest::newRow("es") << Api::es;
}

void tst_ZrMapLayerKinds::AddKinds()
{
    QTest::addColumn<std::size_t>("kind");
    for (std::size_t i = 0; i < Kinds().size(); ++i)
        QTest::newRow(Kinds()[i].name) << i;
}

void tst_ZrMapLayerKinds::init()
{
    zr_debug_log_level = 2;
    zr_debug_log_to_dbg = 1;
    ZrTheme::dp = 1.0F;
    m_view = ZrMapView();
    m_view.SetSize(side, side);
    m_view.SetScale(1.0);
    MakeContext();
    MakeSurface(true);
}

void tst_ZrMapLayerKinds::cleanup()
{
    const GLenum error = m_context ? m_context->TakeErrors() : GLenum(GL_NO_ERROR);
    zr_debug_log_level = -1;
    zr_debug_log_to_dbg = 0;
    m_surface.reset();
    m_context.reset();
    QCOMPARE(error, GLenum(GL_NO_ERROR));
}

void tst_ZrMapLayerKinds::MakeContext()
{
    QFETCH_GLOBAL(Api, api);
    m_context.reset();
    m_context = std::make_unique<gl::Context>(api, QSize(side, side));
    QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
}

void tst_ZrMapLayerKinds::MakeSurface(bool isCreated)
{
    m_surface = std::make_unique<GlView>();
    m_surface->m_background = QStringLiteral(":/back_light.png");
    if (isCreated)
        m_surface->OnCreate();
    m_context->TakeErrors();
    g_lines.clear();
}

/// Paints on a clear ground; the pixels that something was drawn in.
int tst_ZrMapLayerKinds::Painted(ZrMapLayer& layer)
{
    m_context->Clear(background);
    m_view.Apply(*m_surface);
    layer.Paint(*m_surface, m_view);
    return gl::CountNot(m_context->Read(), background);
}

void tst_ZrMapLayerKinds::calls()
{
    const QString paint = QStringLiteral("paint");
    Noted layer;
    layer.Paint(*m_surface, m_view);
    layer.Paint(*m_surface, m_view);
    QCOMPARE(layer.calls, QStringList({paint, paint}));
    layer.m_isVisible = false;
    layer.Paint(*m_surface, m_view);
    layer.m_isVisible = true;
    layer.Paint(*m_surface, ZrMapView());
    m_context->DoneCurrent();
    layer.Paint(*m_surface, m_view);
    QCOMPARE(layer.calls.size(), 2);
    QVERIFY(m_context->MakeCurrent());
    layer.calls.clear();
    layer.Release(*m_surface);
    layer.Release(*m_surface);
    QCOMPARE(layer.calls, QStringList({QStringLiteral("release")}));
    layer.Paint(*m_surface, m_view);
    QCOMPARE(layer.calls.last(), paint);
}

void tst_ZrMapLayerKinds::callsInAnotherContext()
{
    QFETCH_GLOBAL(Api, api);
    const QString paint = QStringLiteral("paint");
    const QString forget = QStringLiteral("forget");
    Noted layer;
    layer.Paint(*m_surface, m_view);
    {
        gl::Context other(api);
        QVERIFY(other.Error().isEmpty());
        layer.Paint(*m_surface, m_view);
        layer.Paint(*m_surface, m_view);
        QCOMPARE(layer.calls, QStringList({paint, forget, paint, paint}));
    }
    // The context is gone: there is nothing to delete.
    QVERIFY(m_context->MakeCurrent());
    layer.calls.clear();
    layer.Release(*m_surface);
    QCOMPARE(layer.calls, QStringList({forget}));
    // Another one is current.
    layer.Paint(*m_surface, m_view);
    layer.calls.clear();
    {
        gl::Context other(api);
        QVERIFY(other.Error().isEmpty());
        layer.Release(*m_surface);
    }
    QVERIFY(m_context->MakeCurrent());
    QCOMPARE(layer.calls, QStringList({forget}));
}

void tst_ZrMapLayerKinds::releaseOfNothing()
{
    Noted layer;
    layer.Release(*m_surface);
    QVERIFY(layer.calls.isEmpty());
    for (const Kind& kind : Kinds()) {
        const auto other = kind.make();
        other->Release(*m_surface);
    }
}

/// Nothing is drawn and the debug log says so; as soon as the surface is ready the layer is seen.
void tst_ZrMapLayerKinds::beforeOnCreate()
{
    QFETCH(std::size_t, kind);
    const auto layer = Kinds()[kind].make();
    MakeSurface(false);
    {
        const gl::Recorder recorder;
        QCOMPARE(Painted(*layer), 0);
        QCOMPARE(Painted(*layer), 0);
        QVERIFY(recorder.draws.empty());
        QVERIFY(recorder.shaders.isEmpty() && recorder.programs.isEmpty());
        QCOMPARE(recorder.uploadedBytes, qint64(0));
    }
    QCOMPARE(g_lines,
        QStringList(QStringLiteral("The OpenGL context of the surface is not current, nothing is drawn")));
    m_surface->OnCreate();
    QVERIFY(Painted(*layer) > 10);
    layer->Release(*m_surface);
}

/// The functions that the surface has are those of the context that is gone.
void tst_ZrMapLayerKinds::newContextBeforeOnCreate()
{
    QFETCH(std::size_t, kind);
    const auto layer = Kinds()[kind].make();
    const int count = Painted(*layer);
    QVERIFY(count > 10);
    MakeContext();
    g_lines.clear();
    QCOMPARE(Painted(*layer), 0);
    QCOMPARE(Painted(*layer), 0);
    QCOMPARE(g_lines.size(), 1);
    m_surface->OnCreate();
    QCOMPARE(Painted(*layer), count);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    // And the other way: the surface has the new context, the layer is painted in the old one.
    MakeContext();
    MakeSurface(true);
    QCOMPARE(Painted(*layer), count);
    layer->Release(*m_surface);
}

void tst_ZrMapLayerKinds::releaseBySurfaceThatIsNotReady()
{
    QFETCH(std::size_t, kind);
    const auto layer = Kinds()[kind].make();
    const int count = Painted(*layer);
    MakeSurface(false);
    // Painted by a surface that cannot, it keeps what it has.
    QCOMPARE(Painted(*layer), 0);
    layer->Release(*m_surface);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    m_surface->OnCreate();
    QCOMPARE(Painted(*layer), count);
    layer->Release(*m_surface);
}

void tst_ZrMapLayerKinds::nothingToDrawOn()
{
    QFETCH(std::size_t, kind);
    const auto layer = Kinds()[kind].make();
    const gl::Recorder recorder;
    for (const QSize& size : {QSize(0, 0), QSize(0, side), QSize(side, 0), QSize(-4, -4)}) {
        m_view.SetSize(size.width(), size.height());
        QCOMPARE(Painted(*layer), 0);
    }
    m_view.SetSize(side, side);
    layer->m_isVisible = false;
    QCOMPARE(Painted(*layer), 0);
    QVERIFY(recorder.draws.empty());
    layer->m_isVisible = true;
    QVERIFY(Painted(*layer) > 10);
    layer->Release(*m_surface);
}

/// An error that somebody left is not taken for one of the layer's.
void tst_ZrMapLayerKinds::errorsOfOthers()
{
    QFETCH(std::size_t, kind);
    const auto layer = Kinds()[kind].make();
    const int count = Painted(*layer);
    layer->Release(*m_surface);
    g_lines.clear();
    for (int frame = 0; frame < 3; ++frame) {
        m_context->Functions()->glEnable(GL_TEXTURE_BINDING_2D); // is none of the switches
        QCOMPARE(Painted(*layer), count);
        // Only where something is uploaded the error is fetched before, to find one's own.
        const bool isFetched = frame == 0;
        QCOMPARE(m_context->TakeErrors(), GLenum(isFetched ? GL_NO_ERROR : GL_INVALID_ENUM));
    }
    QVERIFY2(g_lines.isEmpty(), qPrintable(g_lines.join(QLatin1Char('\n'))));
    layer->Release(*m_surface);
}

/// Blending off, no arrays, no buffers, lines of one pixel, texture unit 0; and no look-up in a second frame.
void tst_ZrMapLayerKinds::leavesTheContextClean()
{
    QFETCH(std::size_t, kind);
    const auto layer = Kinds()[kind].make();
    QOpenGLFunctions* f = m_context->Functions();
    if (auto* track = dynamic_cast<ZrTrackLayer*>(layer.get()))
        track->m_colour = QColor(255, 255, 255, 100);
    if (auto* waterfall = dynamic_cast<ZrWaterfallLayer*>(layer.get()))
        waterfall->m_alpha = 0.5F;
    gl::Recorder recorder;
    for (int frame = 0; frame < 2; ++frame) {
        recorder.Reset();
        QVERIFY(Painted(*layer) > 10);
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
        QVERIFY(!f->glIsEnabled(GL_BLEND));
        const auto value = [f](GLenum name) {
            GLint v = -1;
            f->glGetIntegerv(name, &v);
            return v;
        };
        QCOMPARE(value(GL_ACTIVE_TEXTURE), GLint(GL_TEXTURE0));
        QCOMPARE(value(GL_ARRAY_BUFFER_BINDING), 0);
        QCOMPARE(value(GL_ELEMENT_ARRAY_BUFFER_BINDING), 0);
        QCOMPARE(value(GL_LINE_WIDTH), 1);
        for (GLuint i = 0; i < 8; ++i) {
            GLint isEnabled = -1;
            f->glGetVertexAttribiv(i, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &isEnabled);
            QCOMPARE(isEnabled, 0);
        }
    }
    QCOMPARE(recorder.LookUpCount(), 0);
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    layer->Release(*m_surface);
}

GL_TEST_MAIN(tst_ZrMapLayerKinds)
#include "tst_ZrMapLayerKinds.moc"
