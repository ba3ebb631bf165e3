#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapBatch.h"
#include "ZrKit/map/ZrMapLayer.h"
#include "ZrKit/map/ZrScaleBar.h"
#include "ZrUtil/ZrProj.h"
#include "ZrUtil/ZrSphd.h"

#include <QMarginsF>
#include <QRectF>

#include <vector>

class ZrMapShapes;

/// The frame of reference of a map: grid lines with their values at the edge, a scale bar, a north arrow.
///
/// \code
/// m_grid.SetProjection(ZrUnits::wgs84, projection); // that of the world positions of the map
/// m_grid.SetMargins({0, 0, 0, toolBarHeight});
/// m_grid.Paint(*this, m_view); // under or over the other layers
/// \endcode
///
/// Grid and texts are in the style of positions in force: meridians and parallels, or eastings and northings
/// with `eGeoUTM` and while there is no projection. Lengths are in the user's units, colours and fonts those
/// of `ZrTheme`. A paint is `DrawCalls` draw calls at most. Nothing is uploaded while view, units and theme
/// stay as they are. GUI thread only.
class ZR_KIT_EXPORT ZrGridLayer : public ZrMapLayer
{
public:
    enum eNorth : int
    {
        northTrue = 0, ///< by the convergence in the middle of the view; without a projection grid north
        northGrid = 1
    };

    static constexpr int DrawCalls = 2; ///< lines and shapes, texts
    static constexpr double LeastSpacing = 40.0; ///< design pixels

    bool m_hasGrid = true;
    bool m_hasTexts = true; ///< of the grid
    bool m_hasScaleBar = true;
    bool m_hasNorthArrow = true;
    eNorth m_north = northTrue;

    ZrGridLayer();

    void SetProjection(const ZrSphd& spheroid, const ZrProj& projection);
    void ClearProjection(); ///< positions are a grid of metres and nothing else

    /// Pixels of the view that something else covers at each side: texts, bar and arrow stay clear of them.
    void SetMargins(const QMarginsF& margins);

    /// Between grid lines at least, design pixels; `LeastSpacing` and more.
    void SetSpacing(double spacing);

    /// Degrees counter-clockwise on screen from up to the north that the arrow shows.
    double NorthAngle(const ZrMapView& view) const;

    /// Where the arrow takes a tap, pixels of the view, at least 44 design pixels wide and high; empty when
    /// it is not shown. \p factor is the surface's pixels for each widget pixel.
    QRectF NorthArrowRect(const ZrMapView& view, int factor = 1) const;

    /// What the scale bar covers, text included; likewise.
    QRectF ScaleBarRect(const ZrMapView& view, int factor = 1) const;

protected:
    void OnPaint(ZrGlSurface& surface, const ZrMapView& view) override;
    void OnRelease(ZrGlSurface& surface) override;
    void OnForget() override;

private:
    QRectF Area(const ZrMapView& view) const;
    QByteArray Key(const ZrMapView& view, double pixel) const;
    void Build(ZrGlSurface& surface, const ZrMapView& view, double pixel);
    void AddGrid(ZrMapShapes& shapes, std::vector<ZrMapLabel>& labels, const ZrMapView& view, double pixel);
    ZrScaleBar BarOf(const ZrMapView& view, double pixel) const;
    void AddScaleBar(ZrMapShapes& shapes, std::vector<ZrMapLabel>& labels, const ZrScaleBar& bar,
        const QRectF& rect, double pixel);
    void AddNorthArrow(ZrMapShapes& shapes, std::vector<ZrMapLabel>& labels, const ZrMapView& view,
        const QRectF& rect, double pixel);

    ZrSphd m_spheroid;
    ZrProj m_projection;
    bool m_hasProjection = false;
    QMarginsF m_margins;
    double m_spacing = 120.0;
    QByteArray m_key; ///< what the vertices depend on
    ZrMapBatch m_batch;
    ZrLabelLayer m_labels;
};
