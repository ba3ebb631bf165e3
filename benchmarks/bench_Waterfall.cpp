// A live waterfall with 1,024 lines of 1,024 samples for either side: each frame brings a line. Uploading
// that line alone, as the layer does, against uploading the whole texture, and against colours made by the
// processor and uploaded whole. All draw the same picture.
//
// Needs a display: xvfb-run -a build/release/bin/bench_Waterfall.

#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrWaterfallLayer.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrUtil/ZrGlSurface.h"

#include <QApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr int lines = 1024;
constexpr int width = 1024;
constexpr double altitude = 20.0;

class View : public ZrGlSurface
{
public:
    void Render() override { }

    void OnResize(int /*width*/, int /*height*/) override { }
};

/// A context with a framebuffer of the waterfall's size.
class Stage
{
public:
    std::unique_ptr<View> surface;
    ZrMapView view;

    Stage()
    {
        QSurfaceFormat format;
        format.setVersion(2, 0);
        m_offscreen.setFormat(format);
        m_offscreen.create();
        m_context.setFormat(format);
        m_isReady = m_context.create() && m_context.makeCurrent(&m_offscreen);
        if (!m_isReady)
            return;
        m_buffer = std::make_unique<QOpenGLFramebufferObject>(2 * width, lines);
        m_buffer->bind();
        surface = std::make_unique<View>();
        surface->m_background = QStringLiteral(":/back_light.png");
        surface->OnCreate();
        surface->m_gl.glViewport(0, 0, 2 * width, lines);
        view.SetSize(2 * width, lines);
        view.Apply(*surface);
    }

    bool IsReady() const { return m_isReady; }

private:
    QOffscreenSurface m_offscreen;
    QOpenGLContext m_context;
    std::unique_ptr<QOpenGLFramebufferObject> m_buffer;
    bool m_isReady = false;
};

/// What is uploaded with each line.
enum eUpload : int
{
    uploadLine,
    uploadTexture,
    uploadColours
};

ZrWaterfallLine LineOf(int number)
{
    ZrWaterfallLine line;
    line.altitude = altitude;
    line.range = {100.0, 100.0};
    for (std::vector<u8>& samples : line.samples) {
        samples.resize(width);
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<u8>(number * 7 + static_cast<int>(i) * 3);
    }
    return line;
}

/// Uploads all of both sides besides.
class Whole
{
public:
    Whole(QOpenGLFunctions& gl, bool isColour)
        : m_gl(gl)
        , m_format(isColour ? GL_RGBA : GL_ALPHA)
    {
        m_gl.glGenTextures(2, m_textures);
        for (const GLuint texture : m_textures) {
            m_gl.glBindTexture(GL_TEXTURE_2D, texture);
            m_gl.glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(m_format), width, lines, 0, m_format,
                GL_UNSIGNED_BYTE, nullptr);
        }
        m_colours.resize(std::size_t(width) * lines);
    }

    ~Whole() { m_gl.glDeleteTextures(2, m_textures); }

    Whole(const Whole&) = delete;
    Whole& operator=(const Whole&) = delete;

    void Upload(const ZrWaterfallRing& ring)
    {
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            const void* bytes = ring.Bytes(side);
            if (m_format == GL_RGBA) {
                for (std::size_t i = 0; i < m_colours.size(); ++i)
                    m_colours[i] = m_palette.Colour(ring.Bytes(side)[i]);
                bytes = m_colours.data();
            }
            m_gl.glBindTexture(GL_TEXTURE_2D, m_textures[side]);
            m_gl.glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, lines, m_format, GL_UNSIGNED_BYTE, bytes);
        }
    }

private:
    QOpenGLFunctions& m_gl;
    GLenum m_format;
    GLuint m_textures[2]{};
    ZrSonarPalette m_palette;
    std::vector<QRgb> m_colours;
};

void Frames(benchmark::State& state, bool isDrawn)
{
    Stage stage;
    if (!stage.IsReady()) {
        state.SkipWithError("no OpenGL context can be created");
        return;
    }
    ZrWaterfallRing ring(lines, width);
    int number = 0;
    while (number < lines)
        ring.Append(LineOf(number++));
    ZrWaterfallLayer layer;
    layer.SetRing(&ring);
    // A picture of a few pixels leaves the uploads.
    layer.m_view.rect = isDrawn ? QRect(0, 0, 2 * width, lines) : QRect(0, 0, 2, 1);
    layer.m_view.slantCorrected = true;
    layer.Paint(*stage.surface, stage.view);
    auto& gl = stage.surface->m_gl;
    const auto upload = static_cast<eUpload>(state.range(0));
    Whole whole(gl, upload == uploadColours);
    const ZrWaterfallLine line = LineOf(number);
    for (auto _ : state) {
        ring.Append(line);
        if (upload != uploadLine)
            whole.Upload(ring);
        layer.Paint(*stage.surface, stage.view);
        gl.glFinish();
    }
    layer.Release(*stage.surface);
}

void FrameWithoutPicture(benchmark::State& state)
{
    Frames(state, false);
}

void Frame(benchmark::State& state)
{
    Frames(state, true);
}

} // namespace

BENCHMARK(FrameWithoutPicture)
    ->ArgName("upload")
    ->Arg(uploadLine)
    ->Arg(uploadTexture)
    ->Arg(uploadColours)
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime() // with the threads of a software renderer, and without those of others
    ->UseRealTime();
BENCHMARK(Frame)
    ->ArgName("upload")
    ->Arg(uploadLine)
    ->Arg(uploadTexture)
    ->Arg(uploadColours)
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime() // with the threads of a software renderer, and without those of others
    ->UseRealTime();

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
