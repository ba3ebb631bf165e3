#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapLabel.h"
#include "ZrUtil/ZrGeoStyle.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <vector>

class ZrMapView;
class ZrProj;
class ZrSphd;

/// The lines of a grid that a view shows, in world positions, each with its text.
///
/// No two neighbours are closer than the spacing that is asked for, whatever scale and rotation, and there
/// are never more than `ZrGridSteps::MostLines` of a kind. Texts and feet are those of `ZrUnits`, whose
/// thread this belongs to.
class ZR_KIT_EXPORT ZrGridLines
{
public:
    static constexpr double FarthestLng = 20.0; ///< degrees from the central meridian
    static constexpr double FarthestLat = 84.0; ///< degrees

    struct Line
    {
        bool isNorthSouth = false; ///< of one easting or longitude
        QString text;
        std::vector<QPointF> points; ///< world, two and more
    };

    using Lines = std::vector<Line>;

    enum ePlace : int
    {
        atEdge = 0, ///< where such texts are
        atOtherEdge = 1,
        alongLine = 2 ///< between the edges
    };

    /// Where the text of a line can be.
    struct Place
    {
        ZrMapLabel label;
        QRectF box; ///< that it covers, pixels of the view
        ePlace kind = atEdge;
    };

    /// Lines of round eastings and northings, in metres, or survey feet when the short unit is "ft".
    /// \param spacing pixels
    static Lines Projected(const ZrMapView& view, double spacing);

    /// Meridians and parallels of a Transverse Mercator projection, as far as `FarthestLng` and
    /// `FarthestLat`.
    static Lines Geographic(const ZrMapView& view, double spacing, eGeoStyle style, const ZrSphd& spheroid,
        const ZrProj& projection);

    /// The texts of the lines where these leave \p area, pixels of the view: those that rather go up and down
    /// at its upper edge, the others at its left one, at another edge where they do not meet that. A text is
    /// on the side of its line where the line does not run through it, if it fits into the area there.
    /// \param inset pixels between edge or line and text
    /// \param sizes of the texts, pixels, in the order of the lines
    static std::vector<ZrMapLabel> Labels(const Lines& lines, const ZrMapView& view, const QRectF& area,
        double inset, const std::vector<QSizeF>& sizes);

    /// All places of the text of \p line, the best one first: those of `Labels`, then at the other side of
    /// the line where that has room, at the line's other end, and along the line.
    /// \param size of the text, pixels
    static std::vector<Place> Places(
        const Line& line, const ZrMapView& view, const QRectF& area, double inset, const QSizeF& size);
};
