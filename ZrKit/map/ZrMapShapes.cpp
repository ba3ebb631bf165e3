#include "ZrKit/map/ZrMapShapes.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

using Vertex = ZrMapBatch::Vertex;

/// Beyond the edge of a line, pixels, for the shader to fade it out.
constexpr double fringe = 1.0;
/// Positions beyond it do not fit the floats of the shader, metres.
constexpr double farthest = 1e9;

bool IsUsable(const QPointF& p)
{
    return std::fabs(p.x()) <= farthest && std::fabs(p.y()) <= farthest;
}

void SetCorner(Vertex& vertex, const QPointF& corner)
{
    vertex.corner[0] = static_cast<float>(corner.x());
    vertex.corner[1] = static_cast<float>(corner.y());
}

void SetTexture(Vertex& vertex, double fromMiddle, double halfWidth)
{
    vertex.texture[0] = static_cast<float>(fromMiddle);
    vertex.texture[1] = static_cast<float>(halfWidth);
}

} // namespace

void ZrMapShapes::AddTriangle(const Vertex& a, const Vertex& b, const Vertex& c)
{
    m_vertices.push_back(a);
    m_vertices.push_back(b);
    m_vertices.push_back(c);
}

void ZrMapShapes::AddWorldLine(const std::vector<QPointF>& world, double width, const QColor& colour)
{
    if (!(width > 0.0) || !std::isfinite(width))
        return;
    const double half = width / 2.0;
    const double reach = half + fringe;
    for (std::size_t i = 1; i < world.size(); ++i) {
        const QPointF& a = world[i - 1];
        const QPointF& b = world[i];
        const QPointF d = b - a;
        const double length = std::hypot(d.x(), d.y());
        if (!IsUsable(a) || !IsUsable(b) || !(length > 0.0))
            continue;
        const QPointF across(-d.y() / length * reach, d.x() / length * reach);
        Vertex v[4];
        for (int k = 0; k < 4; ++k) {
            const double side = k % 2 == 0 ? 1.0 : -1.0;
            v[k].SetWorld(k < 2 ? a : b);
            v[k].isTurning = 1.0F;
            v[k].SetColour(colour);
            SetCorner(v[k], across * side);
            SetTexture(v[k], reach * side, half);
        }
        AddTriangle(v[0], v[1], v[2]);
        AddTriangle(v[2], v[1], v[3]);
    }
}

void ZrMapShapes::AddPolygon(const QPointF& origin, const std::vector<QPointF>& corners, const QColor& colour)
{
    const std::size_t count = corners.size();
    if (count < 3 || !IsUsable(origin) || !std::all_of(corners.begin(), corners.end(), IsUsable))
        return;
    double area = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const QPointF& a = corners[i];
        const QPointF& b = corners[(i + 1) % count];
        area += a.x() * b.y() - a.y() * b.x();
    }
    const double outward = area > 0.0 ? 1.0 : -1.0;
    // Each corner half a pixel in, where ink is full, and half a pixel out, where it ends.
    std::vector<Vertex> in(count);
    std::vector<Vertex> out(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto normal = [&](const QPointF& a, const QPointF& b) {
            const QPointF d = b - a;
            const double length = std::hypot(d.x(), d.y());
            return length > 0.0 ? QPointF(d.y(), -d.x()) * (outward / length) : QPointF();
        };
        const QPointF before = normal(corners[(i + count - 1) % count], corners[i]);
        const QPointF after = normal(corners[i], corners[(i + 1) % count]);
        // Acute corners would reach out far.
        const double both = 1.0 + QPointF::dotProduct(before, after);
        const QPointF bisector = (before + after) / std::max(both, 0.25) * 0.5;
        for (Vertex* v : {&in[i], &out[i]}) {
            v->SetPixel(origin);
            v->SetColour(colour);
        }
        SetCorner(in[i], corners[i] - bisector);
        SetTexture(in[i], 0.0, 0.5);
        SetCorner(out[i], corners[i] + bisector);
        SetTexture(out[i], 1.0, 0.5);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t next = (i + 1) % count;
        if (i > 0 && next > 0)
            AddTriangle(in[0], in[i], in[next]);
        AddTriangle(in[i], out[i], in[next]);
        AddTriangle(in[next], out[i], out[next]);
    }
}

void ZrMapShapes::AddRect(const QRectF& rect, const QColor& colour)
{
    if (!IsUsable(rect.topLeft()) || !IsUsable(rect.bottomRight()) || rect.isEmpty())
        return;
    Vertex v[4];
    for (int k = 0; k < 4; ++k) {
        v[k].SetPixel(rect.topLeft());
        v[k].SetColour(colour);
        SetCorner(v[k], {k < 2 ? 0.0 : rect.width(), k % 2 == 0 ? 0.0 : -rect.height()});
        SetTexture(v[k], 0.0, 1.0);
    }
    AddTriangle(v[0], v[1], v[2]);
    AddTriangle(v[2], v[1], v[3]);
}

void ZrMapShapes::AddDisc(const QPointF& centre, double radius, const QColor& colour)
{
    constexpr int count = 48;
    if (!(radius > 0.0) || !std::isfinite(radius))
        return;
    std::vector<QPointF> corners;
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * M_PI * i / count;
        corners.push_back(QPointF(std::cos(angle), std::sin(angle)) * radius);
    }
    AddPolygon(centre, corners, colour);
}
