#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapBatch.h"

#include <QColor>
#include <QPointF>
#include <QRectF>

#include <vector>

/// Triangles of lines with smooth edges and of filled shapes, for a `ZrMapBatch` with ":/map_shape.fsh".
///
/// What is added later covers what was added before. What is not finite is left out. Any thread.
class ZR_KIT_EXPORT ZrMapShapes
{
public:
    const ZrMapBatch::Vertices& Triangles() const { return m_vertices; }

    /// A line through world positions, \p width pixels wide at every scale.
    void AddWorldLine(const std::vector<QPointF>& world, double width, const QColor& colour);

    /// A filled convex polygon about \p origin, a pixel of the view; \p corners are pixels from it to the
    /// right and up. Its edge is smoothed over a pixel.
    void AddPolygon(const QPointF& origin, const std::vector<QPointF>& corners, const QColor& colour);

    /// A rectangle in pixels of the view.
    void AddRect(const QRectF& rect, const QColor& colour);

    /// A disc in pixels of the view.
    void AddDisc(const QPointF& centre, double radius, const QColor& colour);

private:
    void AddTriangle(const ZrMapBatch::Vertex& a, const ZrMapBatch::Vertex& b, const ZrMapBatch::Vertex& c);

    ZrMapBatch::Vertices m_vertices;
};
