#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QMatrix4x4>
#include <QVector3D>

/// The eye of a scene: looks at a point from a distance, an azimuth and an elevation.
///
/// Positions are metres of the scene: x east, y north, z up. Values that are not finite are ignored. A plain
/// value.
class ZR_KIT_EXPORT ZrSceneCamera
{
public:
    static constexpr float NearestDistance = 2.0F; ///< metres
    static constexpr float FarthestDistance = 20000.0F;
    static constexpr float LeastElevation = -20.0F; ///< degrees above the horizon
    static constexpr float LargestElevation = 89.0F;
    static constexpr float FieldOfView = 40.0F; ///< degrees, of the height

    QVector3D Target() const { return m_target; }

    float Distance() const { return m_distance; } ///< metres

    float Azimuth() const { return m_azimuth; } ///< from the target to the eye, degrees from north, 0 to 360

    float Elevation() const { return m_elevation; } ///< of the eye, degrees

    QVector3D Eye() const;

    void SetTarget(const QVector3D& target);
    void SetDistance(float metres); ///< clamped
    void SetAngles(float azimuth, float elevation); ///< degrees; the elevation is clamped

    void Orbit(float azimuth, float elevation); ///< by degrees
    void Zoom(float factor); ///< nearer with more than 1

    /// Moves the target in its horizontal plane as a finger that moved by so many parts of the view's height
    /// would pull it: x to the right, y down.
    void Pan(float x, float y);

    /// From the scene to clip space of a view of so many pixels.
    QMatrix4x4 Matrix(int width, int height) const;

private:
    QVector3D m_target;
    float m_distance = 60.0F;
    float m_azimuth = 200.0F;
    float m_elevation = 30.0F;
};
