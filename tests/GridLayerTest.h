#pragma once

// What the tests of the grid layer share. For programs of one source file: it defines the debug log.

#include "MapLayerTest.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/map/ZrGridLayer.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <cmath>
#include <limits>

namespace grid_test {

using gl::Api;

constexpr int width = 640;
constexpr int height = 400;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

inline int s_lines = 0;

inline ZrProj ProjectionOf(double lat, double lng)
{
    ZrProj projection;
    projection.SetupUTM(lat, lng);
    return projection;
}

inline QPointF WorldOf(const ZrProj& projection, double lat, double lng)
{
    double east = 0.0;
    double north = 0.0;
    ZrUnits::LLToEN(ZrUnits::wgs84, projection, lat, lng, east, north);
    return {east, north};
}

inline int Count(const QImage& image, const QRectF& area, const QColor& colour, int tolerance)
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
inline int CountOutside(const QImage& image, const QRectF& area, const QColor& ground)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += !area.contains(x + 0.5, y + 0.5) && image.pixelColor(x, y) != ground ? 1 : 0;
    }
    return count;
}

} // namespace grid_test

// Takes the place of the library's function.
void zr_debug_log_modern(int /*level*/, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* /*category*/, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* /*message*/)
{
    ++grid_test::s_lines;
}

using namespace grid_test;

/// What each test function begins and ends with.
class GridLayerTest : public MapLayerTest<ZrGridLayer>
{
protected:
    void Begin();
    void End();

    void MakeContext() { MapLayerTest::MakeContext(QSize(width, height)); }

    ZrProj m_projection;
};

inline void GridLayerTest::Begin()
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

inline void GridLayerTest::End()
{
    zr_debug_log_level = -1;
    zr_debug_log_to_dbg = 0;
    EndContext();
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoDMSFrac);
}
