#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QMatrix4x4>
#include <QVector3D>

/// Where a vehicle is in a scene and how it lies. A plain value.
struct ZR_KIT_EXPORT ZrScenePose
{
    QVector3D position; ///< metres: x east, y north, z up
    float heading = 0.0F; ///< degrees, clockwise from the scene's north
    float pitch = 0.0F; ///< degrees, bow up
    float roll = 0.0F; ///< degrees, starboard down

    /// From a model with x ahead, y up and z to starboard into the scene. Angles that are not finite are 0.
    QMatrix4x4 Matrix() const;
};
