#pragma once

// What the tests of the label layer share. For programs of one source file: it defines the debug log.

#include "MapLayerTest.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrUtil/ZrTheme.h"

#include <cmath>
#include <limits>

namespace label_test {

using gl::Api;

constexpr int width = 320;
constexpr int height = 240;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

inline int s_lines = 0;
inline QStringList s_messages; ///< the same lines

/// What is not \p background, by more than a trace.
inline QRect InkBox(const QImage& image, const QColor& background)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (gl::Distance(image.pixelColor(x, y), background) > 40)
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

/// The sum of the red of all pixels, 1 for a full one.
inline double RedSum(const QImage& image)
{
    double sum = 0.0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += image.pixelColor(x, y).redF();
    }
    return sum;
}

inline ZrMapLabel LabelOf(const QString& text, const QPointF& position = QPointF())
{
    ZrMapLabel label;
    label.text = text;
    label.position = position;
    label.colour = Qt::white;
    label.halo = Qt::transparent;
    return label;
}

} // namespace label_test

// Takes the place of the library's function.
void zr_debug_log_modern(int /*level*/, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* /*category*/, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* message)
{
    ++label_test::s_lines;
    label_test::s_messages << QString::fromUtf8(message);
}

using namespace label_test;

/// What each test function begins and ends with.
class LabelLayerTest : public MapLayerTest<ZrLabelLayer>
{
protected:
    void Begin();
    void End();

    void MakeContext() { MapLayerTest::MakeContext(QSize(width, height)); }
};

inline void LabelLayerTest::Begin()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    MakeContext();
    m_layer = std::make_unique<ZrLabelLayer>();
    QFont font(QStringLiteral("Liberation Sans"));
    m_layer->SetFont(font);
    m_view = ZrMapView();
    m_view.SetSize(width, height);
    s_lines = 0;
    s_messages.clear();
    zr_debug_log_level = 2;
    zr_debug_log_to_dbg = 1;
}

inline void LabelLayerTest::End()
{
    zr_debug_log_level = -1;
    zr_debug_log_to_dbg = 0;
    EndContext();
}
