#include "apps/ZrSurvey/PlanDrawing.h"

#include "ZrKit/chart/ZrPlanChart.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/planning/ZrSurveyPreview.h"
#include "ZrUtil/ZrTheme.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int imageCircle = 3; ///< of `ZrGlSurface::m_markers`

} // namespace

void PlanDrawing::Clear()
{
    SetRing({});
    m_pattern.clear();
    Build(false);
}

void PlanDrawing::SetRing(const std::vector<ZrGeoPoint>& corners)
{
    m_ring = corners;
    m_steps = {corners};
    m_step = 0;
}

void PlanDrawing::Record()
{
    if (m_ring == m_steps[m_step])
        return;
    m_steps.resize(++m_step);
    m_steps.push_back(m_ring);
}

void PlanDrawing::Undo()
{
    if (CanUndo())
        m_ring = m_steps[--m_step];
}

void PlanDrawing::Redo()
{
    if (CanRedo())
        m_ring = m_steps[++m_step];
}

void PlanDrawing::SetPattern(const ZrSurveyPreview& preview)
{
    m_pattern.clear();
    m_pattern.reserve(preview.legs.size());
    for (const ZrSurveyPreview::Leg& leg : preview.legs) {
        Way way;
        way.isLine = leg.isLine;
        way.points.reserve(leg.points.size());
        for (const ZrGeoPoint& point : leg.points)
            way.points.push_back(m_chart.ToWorld(point));
        m_pattern.push_back(std::move(way));
    }
    std::stable_partition(m_pattern.begin(), m_pattern.end(), [](const Way& way) { return !way.isLine; });
}

void PlanDrawing::Add(const QPointF& world)
{
    m_ring.push_back(m_chart.ToGeo(world));
    Record();
}

void PlanDrawing::Move(int corner, ZrGeoPoint to)
{
    m_ring[static_cast<std::size_t>(corner)] = to;
}

void PlanDrawing::RemoveLast()
{
    if (!m_ring.empty())
        m_ring.pop_back();
    Record();
}

void PlanDrawing::CloseMove()
{
    Record();
}

int PlanDrawing::CornerAt(const ZrMapView& view, const QPointF& pixel, double radius) const
{
    return ZrMarkerLayer::Nearest(m_marks.Markers(), view, pixel, radius);
}

void PlanDrawing::Build(bool isNoGo)
{
    m_lines.Clear();
    std::vector<QPointF> ring;
    std::vector<ZrMapMarker> markers;
    for (const ZrGeoPoint& corner : m_ring) {
        ring.push_back(m_chart.ToWorld(corner));
        ZrMapMarker marker;
        marker.position = ring.back();
        marker.image = imageCircle;
        marker.size = 10.0;
        marker.colour = ZrTheme::ctrlHighlightCol;
        markers.push_back(marker);
    }
    m_lines.AddArea(ring, isNoGo ? ZrTheme::errorCol : ZrTheme::goodCol, 60);
    m_lines.AddLine(ring, 2.5, ZrTheme::ctrlHighlightCol, ring.size() > 2);
    QColor faint = ZrTheme::ctrlHighlightCol;
    faint.setAlpha(130);
    for (const Way& way : m_pattern)
        m_lines.AddLine(way.points, way.isLine ? 3.0 : 1.5, way.isLine ? ZrTheme::ctrlHighlightCol : faint);
    m_marks.m_halo = ZrTheme::sea;
    m_marks.SetMarkers(std::move(markers));
}
