#include "ZrKit/map/ZrShapeLayer.h"

#include "ZrKit/map/ZrMapShapes.h"
#include "ZrKit/map/ZrTriangulate.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrTheme.h"

#include <utility>

ZrShapeLayer::ZrShapeLayer()
    : m_batch(QStringLiteral(":/map_shape.fsh"))
{
}

void ZrShapeLayer::Clear()
{
    m_shapes.clear();
    m_isChanged = true;
}

void ZrShapeLayer::AddLine(std::vector<QPointF> world, double width, const QColor& colour, bool isClosed)
{
    if (world.size() < 2 || !(width > 0.0))
        return;
    if (isClosed)
        world.push_back(world.front());
    m_shapes.push_back({std::move(world), width, colour});
    m_isChanged = true;
}

void ZrShapeLayer::AddArea(const std::vector<QPointF>& ring, const QColor& colour, int opacity)
{
    std::vector<QPointF> points;
    for (const std::size_t index : ZrTriangulate::Ring(ring))
        points.push_back(ring[index]);
    if (points.empty())
        return;
    QColor fill = colour;
    fill.setAlpha(opacity);
    m_shapes.push_back({std::move(points), 0.0, fill});
    m_isChanged = true;
}

ZrMapBatch::Vertices ZrShapeLayer::Build(double pixel) const
{
    ZrMapBatch::Vertices vertices;
    for (const Shape& shape : m_shapes) {
        if (shape.width > 0.0) {
            ZrMapShapes lines;
            lines.AddWorldLine(shape.points, shape.width * pixel, shape.colour);
            vertices.insert(vertices.end(), lines.Triangles().begin(), lines.Triangles().end());
            continue;
        }
        for (const QPointF& point : shape.points) {
            ZrMapBatch::Vertex vertex;
            vertex.SetWorld(point);
            vertex.SetColour(shape.colour);
            vertex.texture[1] = 1.0F; // full ink
            vertex.isTurning = 1.0F; // not moved to a whole pixel
            vertices.push_back(vertex);
        }
    }
    return vertices;
}

void ZrShapeLayer::OnPaint(ZrGlSurface& surface, const ZrMapView& view)
{
    const double pixel = static_cast<double>(ZrTheme::dp) * surface.m_pixelFactor;
    if (!(pixel > 0.0) || !m_batch.Use(surface))
        return;
    if (m_isChanged || pixel != m_pixel || !m_batch.IsUploaded()) {
        m_batch.Upload(surface, Build(pixel));
        m_isChanged = false;
        m_pixel = pixel;
    }
    m_batch.Draw(surface, view);
}

void ZrShapeLayer::OnRelease(ZrGlSurface& surface)
{
    m_batch.Release(surface);
}

void ZrShapeLayer::OnForget()
{
    m_batch.Forget();
}
