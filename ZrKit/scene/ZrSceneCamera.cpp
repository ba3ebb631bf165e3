#include "ZrKit/scene/ZrSceneCamera.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

bool IsFinite(const QVector3D& v)
{
    return std::isfinite(v.x()) && std::isfinite(v.y()) && std::isfinite(v.z());
}

} // namespace

QVector3D ZrSceneCamera::Eye() const
{
    const float azimuth = qDegreesToRadians(m_azimuth);
    const float elevation = qDegreesToRadians(m_elevation);
    const float level = std::cos(elevation);
    return m_target
        + m_distance * QVector3D(level * std::sin(azimuth), level * std::cos(azimuth), std::sin(elevation));
}

void ZrSceneCamera::SetTarget(const QVector3D& target)
{
    if (IsFinite(target))
        m_target = target;
}

void ZrSceneCamera::SetDistance(float metres)
{
    if (std::isfinite(metres))
        m_distance = std::clamp(metres, NearestDistance, FarthestDistance);
}

void ZrSceneCamera::SetAngles(float azimuth, float elevation)
{
    if (!std::isfinite(azimuth) || !std::isfinite(elevation))
        return;
    m_azimuth = std::fmod(azimuth, 360.0F);
    if (m_azimuth < 0.0F)
        m_azimuth += 360.0F;
    // A tiny negative angle rounds to a whole turn.
    if (m_azimuth >= 360.0F)
        m_azimuth = 0.0F;
    m_elevation = std::clamp(elevation, LeastElevation, LargestElevation);
}

void ZrSceneCamera::Orbit(float azimuth, float elevation)
{
    SetAngles(m_azimuth + azimuth, m_elevation + elevation);
}

void ZrSceneCamera::Zoom(float factor)
{
    if (factor > 0.0F)
        SetDistance(m_distance / factor);
}

void ZrSceneCamera::Pan(float x, float y)
{
    const float azimuth = qDegreesToRadians(m_azimuth);
    const QVector3D ahead(-std::sin(azimuth), -std::cos(azimuth), 0.0F);
    const QVector3D right(ahead.y(), -ahead.x(), 0.0F);
    const float height = 2.0F * m_distance * std::tan(qDegreesToRadians(FieldOfView / 2.0F));
    SetTarget(m_target - right * (x * height) + ahead * (y * height));
}

QMatrix4x4 ZrSceneCamera::Matrix(int width, int height) const
{
    QMatrix4x4 matrix;
    const float aspect = static_cast<float>(std::max(width, 1)) / static_cast<float>(std::max(height, 1));
    matrix.perspective(FieldOfView, aspect, m_distance * 0.02F, m_distance * 40.0F + 1000.0F);
    matrix.lookAt(Eye(), m_target, QVector3D(0.0F, 0.0F, 1.0F));
    return matrix;
}
