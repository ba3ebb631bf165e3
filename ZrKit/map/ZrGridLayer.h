#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrGridLines.h"
#include "ZrKit/map/ZrGridTexts.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapBatch.h"
#include "ZrKit/map/ZrMapLayer.h"
#include "ZrKit/map/ZrMapObstacles.h"
#include "ZrKit/map/ZrScaleBar.h"
#include "ZrUtil/ZrProj.h"
#include "ZrUtil/ZrSphd.h"

#include <QMarginsF>
#include <QRectF>

#include <memory>
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
/// Over the other layers are only the marks, where these are a layer of their own:
///
/// \code
/// map.m_layers = {&m_grid, &m_track, &m_grid.Marks()};
/// \endcode
///
/// Grid and texts are in the style of positions in force: meridians and parallels, or eastings and northings
/// with `eGeoUTM` and while there is no projection. Lengths are in the user's units, colours and fonts those
/// of `ZrTheme`. A paint is `DrawCalls` draw calls at most, with marks of their own one more. Nothing is
/// uploaded while view, units and theme stay as they are. GUI thread only.
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
    static constexpr float ScaleRoom = 54.0F; ///< at the lower edge, for the scale bar, design pixels

    bool m_hasGrid = true;
    bool m_hasTexts = true; ///< of the grid
    bool m_hasScaleBar = true;
    bool m_hasNorthArrow = true;
    eNorth m_north = northTrue;

    ZrGridLayer();
    ~ZrGridLayer() override;

    /// Texts, scale bar and arrow as a layer of their own, which lives as long as the grid; from the first
    /// call on the grid itself draws its lines alone.
    ZrMapLayer& Marks();

    void SetProjection(const ZrSphd& spheroid, const ZrProj& projection);
    void ClearProjection(); ///< positions are a grid of metres and nothing else

    /// Pixels of the view that something else covers at each side: texts, bar and arrow stay clear of them.
    void SetMargins(const QMarginsF& margins);

    /// Texts do not lie on the labels of \p names, as these were painted last: before the grid's marks. They
    /// must stay; null for none.
    void KeepClearOf(const ZrLabelLayer* names);

    /// Nor on markers and tracks; see `ZrGridTexts` for where they are then.
    void KeepClearOf(std::vector<const ZrMarkerLayer*> markers, std::vector<const ZrTrackLayer*> tracks);

    /// The texts as they were painted last, those of bar and arrow among them.
    const ZrLabelLayer& Texts() const;

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
    class MarksLayer;

    /// What is drawn at one place among the layers.
    struct Part
    {
        Part();

        QByteArray key; ///< what its vertices depend on
        std::vector<QRectF> taken; ///< by bar and arrow, pixels of the view
        std::vector<ZrMapLabel> marks; ///< texts of bar and arrow
        std::vector<ZrGridTexts::Line> lines; ///< of the grid
        ZrMapBatch batch;
        ZrLabelLayer labels;
    };

    void ForgetKeys();
    QRectF Area(const ZrMapView& view) const;
    QByteArray Key(const ZrMapView& view, double pixel) const;
    void PaintPart(Part& part, bool hasLines, bool hasMarks, ZrGlSurface& surface, const ZrMapView& view);
    void AddLines(ZrMapShapes& shapes, const ZrMapView& view, double pixel) const;
    void AddMarks(ZrMapShapes& shapes, Part& part, const ZrMapView& view, int factor) const;
    void FindPlaces(Part& part, const ZrMapView& view, double pixel) const;
    ZrGridLines::Lines Lines(const ZrMapView& view, double pixel) const;
    ZrScaleBar BarOf(const ZrMapView& view, double pixel) const;
    void AddScaleBar(ZrMapShapes& shapes, std::vector<ZrMapLabel>& labels, const ZrScaleBar& bar,
        const QRectF& rect, double pixel) const;
    void AddNorthArrow(ZrMapShapes& shapes, std::vector<ZrMapLabel>& labels, const ZrMapView& view,
        const QRectF& rect, double pixel) const;

    ZrSphd m_spheroid;
    ZrProj m_projection;
    bool m_hasProjection = false;
    QMarginsF m_margins;
    double m_spacing = 120.0;
    ZrMapObstacles m_obstacles;
    Part m_part;
    std::unique_ptr<MarksLayer> m_marks; ///< null while the grid draws all
};
