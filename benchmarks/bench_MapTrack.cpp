// A track of 1,000,000 positions on a map of 1280 by 800 pixels: chosen vertices against all of them, what
// one more position costs against all of them, and a million positions taken in.
//
// Run it with a display: xvfb-run -a -s "-screen 0 1920x1080x24" bench_MapTrack. Both sides of a comparison
// are measured in turn in one benchmark; the counters are milliseconds and their ratio, of the fastest frames
// and of the medians. "Chosen" fails when its ratio is above 0.15.

#include "ZrKit/map/ZrMapProgram.h"
#include "ZrKit/map/ZrMapSplit.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrTheme.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr int width = 1280;
constexpr int height = 800;
constexpr std::size_t positions = 1000000;
constexpr double mostRatio = 0.15;
constexpr double pi = 3.14159265358979323846;

class Surface : public ZrGlSurface
{
public:
    void Render() override { }

    void OnResize(int /*width*/, int /*height*/) override { }
};

/// A surface with a current context and a framebuffer, which live as long as the program.
Surface* MakeSurface()
{
    static int argc = 1;
    static char name[] = "bench_MapTrack";
    static char* argv[] = {name, nullptr};
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return nullptr;
    new QGuiApplication(argc, argv);
    QSurfaceFormat format;
    format.setVersion(2, 0);
    format.setProfile(QSurfaceFormat::NoProfile);
    format.setDepthBufferSize(24);
    auto* const target = new QOffscreenSurface;
    target->setFormat(format);
    target->create();
    auto* const context = new QOpenGLContext;
    context->setFormat(format);
    if (!context->create() || !context->makeCurrent(target))
        return nullptr;
    auto* const buffer
        = new QOpenGLFramebufferObject(width, height, QOpenGLFramebufferObject::CombinedDepthStencil);
    buffer->bind();
    ZrTheme::dp = 1.0F;
    auto* const surface = new Surface;
    surface->m_background = QStringLiteral(":/back_light.png");
    surface->OnCreate();
    return surface;
}

Surface* SharedSurface()
{
    static Surface* const surface = MakeSurface();
    return surface;
}

/// Steps of one metre in any direction, or lanes 0.6 m apart.
const std::vector<QPointF>& Positions(bool isWalk)
{
    static const auto make = [](bool walk) {
        std::mt19937 random(1);
        std::vector<QPointF> points;
        QPointF p(512345.0, 4812345.0);
        for (std::size_t i = 0; i < positions; ++i) {
            points.push_back(p);
            const double any = random() / 4294967296.0;
            if (walk)
                p += QPointF(std::cos(2 * pi * any), std::sin(2 * pi * any));
            else
                p = QPointF(512345.0 + static_cast<double>(i / 1000 % 2 ? 999 - i % 1000 : i % 1000),
                    4812345.0 + 0.6 * static_cast<double>(i / 1000) + 0.5 * any);
        }
        return points;
    };
    static const std::vector<QPointF> walk = make(true);
    static const std::vector<QPointF> lanes = make(false);
    return isWalk ? walk : lanes;
}

ZrMapView ViewOf(const ZrTrackLod& track)
{
    ZrMapView view;
    view.SetSize(width, height);
    view.Fit(track.Bounds(), 10.0);
    return view;
}

/// All positions as one strip in a buffer.
class AllOfIt
{
public:
    explicit AllOfIt(Surface& surface, const std::vector<QPointF>& points)
        : m_surface(surface)
        , m_count(static_cast<int>(points.size()))
    {
        std::vector<float> vertices(points.size() * 4);
        for (std::size_t i = 0; i < points.size(); ++i)
            ZrMapSplit::Split(points[i].x(), points[i].y(), &vertices[i * 4]);
        auto& gl = surface.m_gl;
        gl.glGenBuffers(1, &m_buffer);
        gl.glBindBuffer(GL_ARRAY_BUFFER, m_buffer);
        gl.glBufferData(GL_ARRAY_BUFFER, static_cast<qopengl_GLsizeiptr>(vertices.size() * sizeof(float)),
            vertices.data(), GL_STATIC_DRAW);
    }

    ~AllOfIt()
    {
        m_surface.m_gl.glDeleteBuffers(1, &m_buffer);
        m_program.Release(m_surface);
    }

    AllOfIt(const AllOfIt&) = delete;
    AllOfIt& operator=(const AllOfIt&) = delete;

    void Draw(const ZrMapView& view, float lineWidth)
    {
        auto& gl = m_surface.m_gl;
        m_program.Use(m_surface);
        m_program.SetSplit(m_surface, ZrMapSplit(view));
        const auto position = static_cast<GLuint>(m_program.Attribute(m_surface, "aPosition"));
        gl.glUniform4f(m_program.Uniform(m_surface, "uColour"), 1.0F, 0.0F, 0.0F, 1.0F);
        gl.glBindBuffer(GL_ARRAY_BUFFER, m_buffer);
        gl.glEnableVertexAttribArray(position);
        gl.glVertexAttribPointer(position, 4, GL_FLOAT, GL_FALSE, 0, nullptr);
        gl.glLineWidth(lineWidth);
        gl.glDrawArrays(GL_LINE_STRIP, 0, m_count);
        gl.glDisableVertexAttribArray(position);
        gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    }

private:
    Surface& m_surface;
    int m_count;
    GLuint m_buffer = 0;
    ZrMapProgram m_program{QStringLiteral(":/map.vsh"), QStringLiteral(":/solid.fsh")};
};

/// Milliseconds of a frame until its pixels are there.
template <class Draw> double FrameTime(Surface& surface, Draw draw)
{
    surface.m_gl.glClear(GL_COLOR_BUFFER_BIT);
    surface.m_gl.glFinish();
    QElapsedTimer timer;
    timer.start();
    draw();
    surface.m_gl.glFinish();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double Median(std::vector<double> times)
{
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

/// The counters of two sides; the ratio is that of the fastest frames.
double Compare(benchmark::State& state, const std::vector<double>& few, const std::vector<double>& all)
{
    const double ratio
        = *std::min_element(few.begin(), few.end()) / *std::min_element(all.begin(), all.end());
    state.counters["few_ms"] = *std::min_element(few.begin(), few.end());
    state.counters["all_ms"] = *std::min_element(all.begin(), all.end());
    state.counters["ratio"] = ratio;
    state.counters["ratio_median"] = Median(few) / Median(all);
    return ratio;
}

/// Chosen vertices against all of them. Arguments: a walk or lanes, width of the lines in pixels.
void Chosen(benchmark::State& state)
{
    Surface* const surface = SharedSurface();
    if (!surface) {
        state.SkipWithError("no OpenGL context");
        return;
    }
    const bool isWalk = state.range(0) != 0;
    ZrTrackLayer layer;
    layer.m_colour = Qt::red;
    layer.m_width = static_cast<float>(state.range(1));
    layer.m_track.Append(Positions(isWalk));
    const ZrMapView view = ViewOf(layer.m_track);
    AllOfIt all(*surface, Positions(isWalk));
    view.Apply(*surface);
    layer.Paint(*surface, view);
    std::vector<double> few;
    std::vector<double> whole;
    for (auto _ : state) {
        few.push_back(FrameTime(*surface, [&] { layer.Paint(*surface, view); }));
        whole.push_back(FrameTime(*surface, [&] { all.Draw(view, layer.m_width); }));
    }
    state.counters["vertices"] = layer.Picture().VertexCount();
    if (Compare(state, few, whole) > mostRatio)
        state.SkipWithError("chosen vertices are too slow");
    layer.Release(*surface);
}

/// A frame after one more position against one with everything uploaded again.
void Append(benchmark::State& state)
{
    Surface* const surface = SharedSurface();
    if (!surface) {
        state.SkipWithError("no OpenGL context");
        return;
    }
    ZrTrackLayer layer;
    layer.m_colour = Qt::red;
    layer.m_track.Append(Positions(true));
    const ZrMapView view = ViewOf(layer.m_track);
    view.Apply(*surface);
    layer.Paint(*surface, view);
    AllOfIt all(*surface, Positions(true));
    const QPointF last = Positions(true).back();
    std::vector<double> few;
    std::vector<double> whole;
    int i = 0;
    for (auto _ : state) {
        layer.m_track.Append(last.x() + ++i, last.y());
        few.push_back(FrameTime(*surface, [&] { layer.Paint(*surface, view); }));
        whole.push_back(FrameTime(*surface, [&] {
            const AllOfIt again(*surface, Positions(true));
            all.Draw(view, layer.m_width);
        }));
    }
    Compare(state, few, whole);
    layer.Release(*surface);
}

/// The vertices of a view chosen anew, as after a jump to another place or scale.
void Choose(benchmark::State& state)
{
    ZrTrackLod track;
    track.Append(Positions(state.range(0) != 0));
    ZrMapView view = ViewOf(track);
    view.SetScale(view.Scale() / static_cast<double>(state.range(1)));
    int vertices = 0;
    for (auto _ : state) {
        ZrTrackPicture picture;
        picture.Build(track, view, track.Count(), {50000, 50000, 3.0});
        vertices = picture.VertexCount();
        benchmark::DoNotOptimize(vertices);
    }
    state.counters["vertices"] = vertices;
}

/// Positions taken in one by one, with their levels.
void TakeIn(benchmark::State& state)
{
    const std::vector<QPointF>& points = Positions(state.range(0) != 0);
    for (auto _ : state) {
        ZrTrackLod track;
        track.Append(points);
        benchmark::DoNotOptimize(track.Count());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(points.size()));
}

BENCHMARK(Chosen)->Args({1, 1})->Args({1, 3})->Args({0, 1})->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(Append)->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(Choose)->ArgsProduct({{1, 0}, {1, 8, 64}})->Unit(benchmark::kMillisecond);
BENCHMARK(TakeIn)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

} // namespace
