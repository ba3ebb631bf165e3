#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapBatch.h"
#include "ZrKit/map/ZrMapLayer.h"

#include <QColor>
#include <QPointF>

#include <vector>

/// Lines and filled areas on a map, any number of them in one draw call: areas of a survey, the legs of a
/// route, a line that is being measured.
///
/// \code
/// layer.Clear();
/// layer.AddArea(ring, ZrTheme::goodCol, 40);
/// layer.AddLine(ring, 2.0, ZrTheme::goodCol, true);
/// layer.Paint(surface, view);
/// \endcode
///
/// What was added later covers what was added before. Lines are equally wide at every scale. Uploaded when
/// the shapes or the scale of the theme have changed; not when only the view moved. GUI thread only.
class ZR_KIT_EXPORT ZrShapeLayer : public ZrMapLayer
{
public:
    ZrShapeLayer();

    void Clear();

    /// A line through world positions. Parts at positions that are not finite are left out.
    /// \param width design pixels
    void AddLine(std::vector<QPointF> world, double width, const QColor& colour, bool isClosed = false);

    /// The inside of a ring, which may be concave; nothing for one that `ZrTriangulate` does not take.
    /// \param opacity 0 to 255, in place of that of \p colour
    void AddArea(const std::vector<QPointF>& ring, const QColor& colour, int opacity);

    int ShapeCount() const { return static_cast<int>(m_shapes.size()); }

protected:
    void OnPaint(ZrGlSurface& surface, const ZrMapView& view) override;
    void OnRelease(ZrGlSurface& surface) override;
    void OnForget() override;

private:
    struct Shape
    {
        std::vector<QPointF> points; ///< of a line, or of triangles one behind the other
        double width; ///< design pixels; 0 for triangles
        QColor colour;
    };

    ZrMapBatch::Vertices Build(double pixel) const;

    std::vector<Shape> m_shapes;
    bool m_isChanged = false;
    double m_pixel = 0.0; ///< pixels for a design pixel, of what is uploaded
    ZrMapBatch m_batch;
};
