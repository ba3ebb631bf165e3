#include "ZrKit/scene/ZrScenePose.h"

#include <QtMath>

#include <cmath>

QMatrix4x4 ZrScenePose::Matrix() const
{
    const auto radians
        = [](float degrees) { return std::isfinite(degrees) ? qDegreesToRadians(degrees) : 0.0F; };
    const float h = radians(heading);
    const float p = radians(pitch);
    const float r = radians(roll);
    const QVector3D level(std::sin(h), std::cos(h), 0.0F);
    const QVector3D right(std::cos(h), -std::sin(h), 0.0F);
    const QVector3D up(0.0F, 0.0F, 1.0F);
    const QVector3D ahead = std::cos(p) * level + std::sin(p) * up;
    const QVector3D above = std::cos(p) * up - std::sin(p) * level;
    const QVector3D starboard = std::cos(r) * right - std::sin(r) * above;
    const QVector3D mast = std::cos(r) * above + std::sin(r) * right;
    return {ahead.x(), mast.x(), starboard.x(), position.x(), ahead.y(), mast.y(), starboard.y(),
        position.y(), ahead.z(), mast.z(), starboard.z(), position.z(), 0.0F, 0.0F, 0.0F, 1.0F};
}
