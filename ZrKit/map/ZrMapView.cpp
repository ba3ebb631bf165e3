#include "ZrKit/map/ZrMapView.h"

#include "ZrUtil/ZrGlSurface.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

bool IsFinite(const QPointF& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

} // namespace

void ZrMapView::SetSize(int width, int height)
{
    m_width = std::max(width, 0);
    m_height = std::max(height, 0);
}

void ZrMapView::SetCentre(const QPointF& world)
{
    if (IsFinite(world))
        m_centre = world;
}

void ZrMapView::SetScale(double metresPerPixel)
{
    if (std::isfinite(metresPerPixel))
        m_scale = std::clamp(metresPerPixel, NearestScale, FarthestScale);
}

void ZrMapView::SetRotation(double degrees)
{
    if (!std::isfinite(degrees))
        return;
    m_rotation = std::fmod(degrees, 360.0);
    if (m_rotation < 0.0)
        m_rotation += 360.0;
    // A tiny negative angle rounds to a whole turn.
    if (m_rotation >= 360.0)
        m_rotation = 0.0;
}

/// \p offset, y up, turned counter-clockwise.
QPointF ZrMapView::Turned(const QPointF& offset, double degrees) const
{
    if (degrees == 0.0)
        return offset;
    const double angle = qDegreesToRadians(degrees);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {offset.x() * c - offset.y() * s, offset.x() * s + offset.y() * c};
}

QPointF ZrMapView::ToMapPixel(const QPointF& world) const
{
    return (world - m_centre) / m_scale;
}

QPointF ZrMapView::ToPixel(const QPointF& world) const
{
    const QPointF offset = Turned(ToMapPixel(world), m_rotation);
    return {m_width / 2.0 + offset.x(), m_height / 2.0 - offset.y()};
}

QPointF ZrMapView::ToWorld(const QPointF& pixel) const
{
    const QPointF offset(pixel.x() - m_width / 2.0, m_height / 2.0 - pixel.y());
    return m_centre + Turned(offset, -m_rotation) * m_scale;
}

QRectF ZrMapView::Bounds() const
{
    if (IsEmpty())
        return {};
    const double angle = qDegreesToRadians(m_rotation);
    const double c = std::abs(std::cos(angle));
    const double s = std::abs(std::sin(angle));
    const double w = (m_width * c + m_height * s) * m_scale;
    const double h = (m_width * s + m_height * c) * m_scale;
    return {m_centre.x() - w / 2.0, m_centre.y() - h / 2.0, w, h};
}

void ZrMapView::Pan(const QPointF& pixels)
{
    if (IsFinite(pixels))
        SetCentre(m_centre - Turned({pixels.x(), -pixels.y()}, -m_rotation) * m_scale);
}

void ZrMapView::ZoomAbout(const QPointF& pixel, double factor)
{
    if (!IsFinite(pixel) || !std::isfinite(factor) || factor <= 0.0)
        return;
    const QPointF held = ToWorld(pixel);
    SetScale(m_scale / factor);
    SetCentre(m_centre + held - ToWorld(pixel));
}

void ZrMapView::RotateAbout(const QPointF& pixel, double degrees)
{
    if (!IsFinite(pixel) || !std::isfinite(degrees))
        return;
    const QPointF held = ToWorld(pixel);
    SetRotation(m_rotation + degrees);
    SetCentre(m_centre + held - ToWorld(pixel));
}

void ZrMapView::Fit(const QRectF& world, double margin)
{
    SetCentre(world.center());
    const double angle = qDegreesToRadians(m_rotation);
    const double c = std::abs(std::cos(angle));
    const double s = std::abs(std::sin(angle));
    const double w = std::abs(world.width()) * c + std::abs(world.height()) * s;
    const double h = std::abs(world.width()) * s + std::abs(world.height()) * c;
    const double scale
        = std::max(w / std::max(m_width - 2.0 * margin, 1.0), h / std::max(m_height - 2.0 * margin, 1.0));
    if (scale > 0.0)
        SetScale(scale);
}

void ZrMapView::Apply(ZrGlSurface& surface) const
{
    const auto w = static_cast<float>(m_width);
    const auto h = static_cast<float>(m_height);
    surface.m_rotation = static_cast<float>(m_rotation);
    surface.zrgl2dViewport(m_width, m_height);
    surface.zrgl2dProjection(-w / 2.0F, w / 2.0F, -h / 2.0F, h / 2.0F, aspectStretch);
}
