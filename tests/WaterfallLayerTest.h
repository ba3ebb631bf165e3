#pragma once

// What the tests of the waterfall layer share. For programs of one source file: it defines the debug log.

#include "GlView.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrWaterfallLayer.h"

#include <QtWidgets>

#include <cmath>
#include <functional>
#include <memory>

namespace waterfall_test {

using gl::Api;

constexpr int side = GlView::side;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

inline const QColor background(10, 20, 250);

/// A line of \p count samples to each side, one metre each, by a function of side and sample.
inline ZrWaterfallLine LineOf(int count, const std::function<int(int, int)>& value)
{
    ZrWaterfallLine line;
    for (int s = 0; s < 2; ++s) {
        const auto at = static_cast<std::size_t>(s);
        line.range[at] = count;
        for (int i = 0; i < count; ++i)
            line.samples[at].push_back(static_cast<u8>(value(s, i)));
    }
    return line;
}

inline ZrWaterfallLine Even(int count, int value)
{
    return LineOf(count, [=](int, int) { return value; });
}

/// What the line \p number of the patterned ring has: no two neighbours are alike.
inline int Pattern(i64 number, int s, int sample)
{
    return static_cast<int>((number * 37 + sample * 11 + s * 101) % 256);
}

inline void AppendPattern(ZrWaterfallRing& ring, int lines, int count)
{
    for (int i = 0; i < lines; ++i) {
        const i64 number = ring.End();
        ring.Append(LineOf(count, [=](int s, int sample) { return Pattern(number, s, sample); }));
    }
}

inline QStringList s_lines; ///< of the debug log

/// Collects the debug log while it lives.
class LogCapture
{
public:
    LogCapture()
    {
        s_lines.clear();
        zr_debug_log_level = 2;
        zr_debug_log_to_dbg = 1;
    }

    ~LogCapture()
    {
        zr_debug_log_level = -1;
        zr_debug_log_to_dbg = 0;
    }

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    int Count(const char* text) const
    {
        return static_cast<int>(s_lines.filter(QString::fromLatin1(text)).size());
    }
};

} // namespace waterfall_test

// Takes the place of the library's.
void zr_debug_log_modern(int /*level*/, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* /*category*/, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* message)
{
    waterfall_test::s_lines << QString::fromUtf8(message);
}

using namespace waterfall_test;

/// What each test function begins with, and what it paints with.
class WaterfallLayerTest : public QObject
{
protected:
    static void AddContexts();
    void Begin();
    void End();
    void Paint();
    QImage Painted();
    bool Is(const QColor& colour, double index, int palette = 1) const;
    QString Mismatch(const QImage& image, const std::function<int(int, int)>& expected) const;

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<GlView> m_surface;
    std::unique_ptr<ZrWaterfallLayer> m_layer;
    ZrMapView m_map;
    QImage m_palettes;
    bool m_isEs = false;
};

inline void WaterfallLayerTest::AddContexts()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL") << Api::desktop;
    QTest::newRow("ES") << Api::es;
}

inline void WaterfallLayerTest::Begin()
{
    QFETCH_GLOBAL(gl::Api, api);
    m_isEs = api == Api::es;
    m_context = std::make_unique<gl::Context>(api, QSize(side, side));
    QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
    m_surface = std::make_unique<GlView>();
    m_surface->m_background = QStringLiteral(":/back_light.png");
    m_surface->OnCreate();
    m_palettes = QImage(QStringLiteral(":/palettes.png")).convertToFormat(QImage::Format_RGBA8888);
    QCOMPARE(m_palettes.width(), 256);
    m_map = ZrMapView();
    m_map.SetSize(side, side);
    m_layer = std::make_unique<ZrWaterfallLayer>();
    m_layer->m_view.rect = QRect(0, 0, side, side);
    m_context->Clear(background);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

inline void WaterfallLayerTest::End()
{
    if (m_context)
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    m_layer.reset();
    m_surface.reset();
    m_context.reset();
}

inline void WaterfallLayerTest::Paint()
{
    m_map.Apply(*m_surface);
    m_layer->Paint(*m_surface, m_map);
}

inline QImage WaterfallLayerTest::Painted()
{
    m_context->Clear(background);
    Paint();
    return m_context->Read();
}

/// Whether a colour is that of an index, 0 to 255, of a palette: between the entries around it, and those one
/// step off (two where the shader computes in 16 bits).
inline bool WaterfallLayerTest::Is(const QColor& colour, double index, int palette) const
{
    const double at = index / 255.0 * 256.0 - 0.5;
    const int off = m_isEs ? 2 : 1;
    const int first = std::clamp(static_cast<int>(std::floor(at)) - off + 1, 0, 255);
    const int last = std::clamp(static_cast<int>(std::floor(at)) + off, 0, 255);
    int least[3] = {255, 255, 255};
    int most[3] = {0, 0, 0};
    for (int i = first; i <= last; ++i) {
        const QColor entry = m_palettes.pixelColor(i, palette * 10 + 5);
        const int channels[] = {entry.red(), entry.green(), entry.blue()};
        for (int c = 0; c < 3; ++c) {
            least[c] = std::min(least[c], channels[c]);
            most[c] = std::max(most[c], channels[c]);
        }
    }
    const int channels[] = {colour.red(), colour.green(), colour.blue()};
    for (int c = 0; c < 3; ++c) {
        if (channels[c] < least[c] - 1 || channels[c] > most[c] + 1)
            return false;
    }
    return true;
}

/// Which pixels are not of the palette index that a function of column and row gives, below 0 for background.
inline QString WaterfallLayerTest::Mismatch(
    const QImage& image, const std::function<int(int, int)>& expected) const
{
    int count = 0;
    QString first;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            const int index = expected(x, y);
            if (index < 0 ? colour == background : Is(colour, index))
                continue;
            if (count++ == 0)
                first = QStringLiteral("%1, %2 is %3 instead of index %4")
                            .arg(x)
                            .arg(y)
                            .arg(colour.name())
                            .arg(index);
        }
    }
    return count == 0 ? QString() : QStringLiteral("%1 pixels, the first at %2").arg(count).arg(first);
}
