#include "apps/ZrSurvey/PlanDrawing.h"

#include "ZrKit/chart/ZrPlanChart.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrTheme.h"

#include <utility>

namespace {

constexpr int imageCircle = 3; ///< of `ZrGlSurface::m_markers`

} // namespace

void PlanDrawing::Clear()
{
    SetRing({});
    m_pattern = ZrSurveyPlan();
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

void PlanDrawing::SetPattern(const ZrSurveyPlan& plan)
{
    m_pattern = plan;
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
    std::vector<QPointF> way;
    for (const ZrSurveyWaypoint& waypoint : m_pattern.waypoints)
        way.push_back(m_chart.ToWorld(waypoint.position));
    QColor faint = ZrTheme::ctrlHighlightCol;
    faint.setAlpha(130);
    m_lines.AddLine(way, 1.5, faint);
    for (const ZrSurveyLine& line : m_pattern.lines) {
        std::vector<QPointF> points;
        for (const ZrGeoPoint& point : line.points)
            points.push_back(m_chart.ToWorld(point));
        m_lines.AddLine(std::move(points), 3.0, ZrTheme::ctrlHighlightCol);
    }
    m_marks.m_halo = ZrTheme::sea;
    m_marks.SetMarkers(std::move(markers));
}
