#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrGlSurface.h"

#include <QVector>

class ZrMapLayer;

/// A surface that draws layers, one over the other, as its camera sees them.
///
/// \code
/// m_map.m_layers = {&m_grid, &m_track, &m_markers}; // not owned, in the order of drawing
/// m_map.OnCreate();                                 // context current
/// m_map.Render();                                   // in every frame
/// \endcode
///
/// It draws inside its viewport only and leaves viewport and scissor of the frame as `glViewport` was set for
/// it; the page restores its own where it draws on. GUI thread only.
class ZR_KIT_EXPORT ZrMapSurface : public ZrGlSurface
{
    Q_OBJECT

public:
    ZrMapView m_camera;
    QVector<ZrMapLayer*> m_layers;
    QColor m_water; ///< background; the water of the theme while invalid

    explicit ZrMapSurface(QObject* parent = nullptr);

    void Render() override;
    void OnResize(int width, int height) override;
    void Release(); ///< deletes what the layers have in the context, which is current
};
