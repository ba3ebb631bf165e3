#pragma once

// What the tests of the waterfall layer share. For programs of one source file: it defines the debug log.

#include "MapLayerTest.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/map/ZrWaterfallLayer.h"

#include <cmath>
#include <functional>

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
class WaterfallLayerTest : public MapLayerTest<ZrWaterfallLayer>
{
protected:
    void Begin();

    void End() { EndContext(); }

    QImage Painted();
    bool Is(const QColor& colour, double index, int palette = 1) const;
    QString Mismatch(const QImage& image, const std::function<int(int, int)>& expected) const;

    QImage m_palettes;
    bool m_isEs = false;
};

inline void WaterfallLayerTest::Begin()
{
    MakeContext(QSize(side, side));
    if (QTest::currentTestFailed())
        return;
    m_isEs = m_context->Get()->isOpenGLES();
    m_palettes = QImage(QStringLiteral(":/palettes.png")).convertToFormat(QImage::Format_RGBA8888);
    QCOMPARE(m_palettes.width(), 256);
    m_view = ZrMapView();
    m_view.SetSize(side, side);
    m_layer = std::make_unique<ZrWaterfallLayer>();
    m_layer->m_view.rect = QRect(0, 0, side, side);
    m_context->Clear(background);
}

/// With the alpha that is left of it.
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
