#pragma once

#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrShapeLayer.h"
#include "ZrKit/planning/ZrArea.h"

#include <vector>

class ZrMapLayer;
class ZrMapView;
class ZrPlanChart;
struct ZrSurveyPreview;

/// What is drawn on the map of the page "Plan" and not part of the plan yet: the corners of an area, or the
/// lines of a pattern.
class PlanDrawing
{
public:
    explicit PlanDrawing(const ZrPlanChart& chart)
        : m_chart(chart)
    {
    }

    QVector<ZrMapLayer*> Layers() { return {&m_lines, &m_marks}; }

    void Clear();
    void SetRing(const std::vector<ZrGeoPoint>& corners); ///< begins with these, without anything to undo
    void SetPattern(
        const ZrSurveyPreview& preview); ///< shows it; to be set anew where the chart has another origin

    const std::vector<ZrGeoPoint>& Ring() const { return m_ring; }

    void Add(const QPointF& world); ///< a corner behind the last one
    void Move(int corner, ZrGeoPoint to); ///< no step before `CloseMove`
    void CloseMove();
    void RemoveLast();

    bool CanUndo() const { return m_step > 0; } ///< of the ring

    bool CanRedo() const { return m_step + 1 < m_steps.size(); }

    void Undo();
    void Redo();
    int CornerAt(const ZrMapView& view, const QPointF& pixel, double radius) const; ///< -1 for none

    void Build(bool isNoGo); ///< after a change, and of the colours

private:
    /// A leg of the pattern.
    struct Way
    {
        std::vector<QPointF> points; ///< world
        bool isLine = false;
    };

    void Record();

    const ZrPlanChart& m_chart;
    std::vector<ZrGeoPoint> m_ring;
    std::vector<std::vector<ZrGeoPoint>> m_steps{{}}; ///< the ring as each step left it; never empty
    std::size_t m_step = 0; ///< the one that the ring is of
    std::vector<Way> m_pattern; ///< main ones last: they are drawn over the others
    ZrShapeLayer m_lines;
    ZrMarkerLayer m_marks;
};
