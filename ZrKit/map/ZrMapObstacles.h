#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrTypes.h"

#include <QRectF>

#include <utility>
#include <vector>

class ZrLabelLayer;
class ZrMarkerLayer;
class ZrTrackLayer;

/// What texts of a map keep clear of: marks, names and lines of other layers, where these are now.
///
/// \code
/// m_obstacles.m_markers = {&m_targets, &m_vehicle};
/// m_obstacles.m_tracks = {&m_trail};
/// if (m_obstacles.Look(view, pixel)) // before each frame
///     Place(); // asks HasMark and HasLine of each box
/// \endcode
///
/// The layers must stay. Of names there are those that were painted last: they come before. Layers that are
/// not visible are in nobody's way. GUI thread only.
class ZR_KIT_EXPORT ZrMapObstacles
{
public:
    std::vector<const ZrMarkerLayer*> m_markers;
    std::vector<const ZrTrackLayer*> m_tracks;
    std::vector<const ZrLabelLayer*> m_names;

    /// Sees what there is. \param pixel pixels of a design pixel
    /// \returns whether any of it is not as it was the last time, or is seen from elsewhere
    bool Look(const ZrMapView& view, double pixel);

    /// Whether a mark or a name lies in \p box, pixels of the view of the last `Look`.
    bool HasMark(const QRectF& box) const;

    /// Likewise a line; a position beside which there is none is one as well.
    bool HasLine(const QRectF& box) const;

    /// What the markers that \p view shows cover, each a square, pixels of the view.
    static std::vector<QRectF> Boxes(const ZrMarkerLayer& markers, const ZrMapView& view, double pixel);

private:
    /// What of tracks tells that they are others than before.
    using Counts = std::vector<std::pair<i64, int>>;

    ZrMapView m_view;
    double m_pixel = 0.0;
    std::vector<QRectF> m_boxes; ///< of marks and names
    Counts m_counts;
};
