// 1,000 labels of a map: `ZrLabelLayer`, which draws them in one call, against one text buffer and one draw
// for each, laid out in every frame as a page without the layer has to while its map moves.
//
// Both draw the same texts of ten characters at the same places in fonts of `size` pixels, on a moving map of
// 1280 × 800 pixels, and take turns within one run. `ratio` is that of the median times of a frame,
// `ratio_min` that of the fastest ones, `ratio_cpu` that of the processor time of all threads, which other
// programs disturb least. Where the processor draws the pixels, these are nearly all of it: with `seen` 0 the
// labels are beyond the edge of the view, and what is left is what drawing costs the application and the
// driver. Single texts have no halo: with `halo` 1 the layer alone draws one. Needs a display.

#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrTheme.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr int width = 1280;
constexpr int height = 800;
constexpr int labelCount = 1000;

class Surface : public ZrGlSurface
{
public:
    void Render() override { }

    void OnResize(int /*width*/, int /*height*/) override { }
};

/// A context with a framebuffer; without a display `IsValid` is false.
class Scene
{
public:
    Scene()
    {
        if (qEnvironmentVariableIsEmpty("DISPLAY"))
            return;
        static int argc = 1;
        static char name[] = "bench_MapLabels";
        static char* argv[] = {name, nullptr};
        QSurfaceFormat format;
        format.setVersion(2, 0);
        format.setProfile(QSurfaceFormat::NoProfile);
        format.setSwapInterval(0);
        QSurfaceFormat::setDefaultFormat(format);
        m_app = std::make_unique<QGuiApplication>(argc, argv);
        ZrTheme::SetStdStyle();
        ZrTheme::dp = 1.0F;
        m_offscreen = std::make_unique<QOffscreenSurface>();
        m_offscreen->create();
        m_context = std::make_unique<QOpenGLContext>();
        if (!m_context->create() || !m_context->makeCurrent(m_offscreen.get()))
            return;
        m_buffer = std::make_unique<QOpenGLFramebufferObject>(width, height);
        m_buffer->bind();
        surface = std::make_unique<Surface>();
        surface->ZrglSetViewport(0, 0, width, height);
        surface->OnCreate();
        surface->ZrGlClipToViewport();
        view.SetSize(width, height);
        view.SetScale(1.0);
        std::mt19937 random(7);
        std::uniform_real_distribution<double> x(-600.0, 560.0);
        std::uniform_real_distribution<double> y(-380.0, 380.0);
        for (int i = 0; i < labelCount; ++i) {
            ZrMapLabel label;
            label.text = QStringLiteral("Buoy %1").arg(10000 + i);
            label.position = QPointF(x(random), y(random));
            labels.push_back(label);
        }
        m_isValid = m_buffer->isValid();
    }

    bool IsValid() const { return m_isValid; }

    /// Of both sides, pixels on screen.
    void SetFontSize(int pixels)
    {
        QFont font = ZrTheme::font;
        font.setPixelSize(pixels);
        surface->ZrglSetFont(font);
        for (ZrMapLabel& label : labels)
            label.size = static_cast<float>(pixels);
    }

    void Begin()
    {
        m_step = (m_step + 1) % 60;
        view.SetCentre({isSeen ? 0.7 * m_step : 1e5 + m_step, 0.3 * m_step});
        view.Apply(*surface);
        surface->m_gl.glClear(GL_COLOR_BUFFER_BIT);
    }

    void End() { surface->m_gl.glFinish(); }

    std::unique_ptr<Surface> surface;
    ZrMapView view;
    std::vector<ZrMapLabel> labels;
    bool isSeen = true; ///< the map looks at them

private:
    std::unique_ptr<QGuiApplication> m_app;
    std::unique_ptr<QOffscreenSurface> m_offscreen;
    std::unique_ptr<QOpenGLContext> m_context;
    std::unique_ptr<QOpenGLFramebufferObject> m_buffer;
    int m_step = 0;
    bool m_isValid = false;
};

Scene& TheScene()
{
    // For the life of the program: its context is gone before static objects are.
    static auto* scene = new Scene;
    return *scene;
}

void DrawOneByOne(Scene& scene)
{
    Surface& surface = *scene.surface;
    for (const ZrMapLabel& label : scene.labels) {
        const QPointF at = scene.view.ToMapPixel(label.position);
        ZrGlTextBuffer buffer;
        surface.ZrglAddText(
            buffer, static_cast<float>(at.x()), static_cast<float>(at.y()), 0.0F, label.text, 0);
        surface.ZrglRenderText(buffer);
    }
}

struct Times
{
    std::vector<double> wall; ///< seconds
    std::vector<double> cpu; ///< of all threads
};

double Cpu()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

template <class Function> void Measure(Scene& scene, Times& times, Function draw)
{
    scene.Begin();
    scene.End();
    const double cpu = Cpu();
    const auto start = std::chrono::steady_clock::now();
    draw();
    scene.End();
    times.wall.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    times.cpu.push_back(Cpu() - cpu);
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[values.size() / 2];
}

void LabelsBatched(benchmark::State& state)
{
    Scene& scene = TheScene();
    if (!scene.IsValid()) {
        state.SkipWithError("no display");
        return;
    }
    scene.SetFontSize(static_cast<int>(state.range(2)));
    std::vector<ZrMapLabel> labels = scene.labels;
    for (ZrMapLabel& label : labels)
        label.halo = state.range(0) != 0 ? QColor(0, 0, 0, 240) : QColor(Qt::transparent);
    scene.isSeen = state.range(1) != 0;
    ZrLabelLayer layer;
    layer.SetLabels(labels);
    Times batched;
    Times single;
    const auto batch = [&] { layer.Paint(*scene.surface, scene.view); };
    const auto each = [&] { DrawOneByOne(scene); };
    Times warm;
    Measure(scene, warm, batch);
    Measure(scene, warm, each);
    for (auto _ : state) {
        Measure(scene, batched, batch);
        Measure(scene, single, each);
        state.SetIterationTime(batched.wall.back());
    }
    const auto least = [](const std::vector<double>& v) { return *std::min_element(v.begin(), v.end()); };
    state.counters["batched_ms"] = Median(batched.wall) * 1e3;
    state.counters["single_ms"] = Median(single.wall) * 1e3;
    state.counters["ratio"] = Median(batched.wall) / Median(single.wall);
    state.counters["ratio_min"] = least(batched.wall) / least(single.wall);
    state.counters["ratio_cpu"] = Median(batched.cpu) / Median(single.cpu);
    layer.Release(*scene.surface);
}

} // namespace

BENCHMARK(LabelsBatched)
    ->ArgNames({"halo", "seen", "size"})
    ->Args({0, 0, 13})
    ->Args({0, 1, 13})
    ->Args({0, 1, 18})
    ->Args({1, 1, 13})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0);
