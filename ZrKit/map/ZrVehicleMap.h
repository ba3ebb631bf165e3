#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/geo/ZrGridBatch.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"

#include <QPointF>

#include <functional>
#include <memory>
#include <vector>

class ZrMapView;

/// A vehicle on its way, on a map: its trail, an arrow where it is and heads for, and a camera that follows.
///
/// \code
/// ZrVehicleMap way(map.m_camera); // a ZrMapSurface
/// map.m_layers = {&grid, &way.m_trail, &way.m_vehicle};
/// way.m_zoneChanged = [&] { grid.SetProjection(ZrUnits::wgs84, way.Grid()->Projection()); };
/// way.Append({{lng, lat}});
/// way.SetVehicle(lat, lng, heading, true);
/// \endcode
///
/// World positions are metres of one UTM zone: of the first place that was told, by `Locate` for instance
/// that of a plan. While there is no trail another zone may follow it; where the trail begins decides, and
/// then the zone stays, beyond its borders too, up to the next `Clear`.
///
/// The arrow stands at the heading against the north of the grid: that against true north, less the
/// convergence where the vehicle is. Places are degrees, WGS 84. GUI thread only.
class ZR_KIT_EXPORT ZrVehicleMap
{
public:
    static constexpr double FirstScale = 0.5; ///< metres per pixel, of the camera in a new zone
    static constexpr double Size = 18.0; ///< half the arrow's side, design pixels

    ZrTrackLayer m_trail;
    ZrMarkerLayer m_vehicle;
    bool m_isFollowing = true; ///< the camera's centre is the vehicle, from the next `SetVehicle` on

    /// Positions of before belong to another grid; what else is on the map is to be set anew.
    std::function<void()> m_zoneChanged;

    /// \p camera is moved in a new zone and when it follows; must outlive this.
    explicit ZrVehicleMap(ZrMapView& camera);

    /// Chooses the zone, as above. False while there is none, which a place that is not known does not
    /// change.
    bool Locate(double lat, double lng);

    const ZrGridBatch* Grid() const { return m_grid.get(); } ///< null until there is a place

    /// NaN for a place that is not known, and while there is no grid.
    QPointF ToWorld(double lat, double lng) const;

    /// Makes the trail longer. Longitudes as x, latitudes as y; places that are not known are left out.
    void Append(const std::vector<QPointF>& places);

    /// Puts the vehicle there. Without a heading, degrees from true north, it is a dot; where it is not \p
    /// isFresh, it is pale. A place that is not known leaves it where it is.
    void SetVehicle(double lat, double lng, double heading, bool isFresh);

    void Clear(); ///< trail and vehicle; another one begins

    /// Whether the vehicle is in the middle of the view, to a pixel: after a movement by hand that did not
    /// move it away, such as zooming about the middle, one may go on following.
    bool IsCentred() const;

    void OnColours(); ///< takes those of the theme

private:
    ZrMapView& m_camera;
    std::unique_ptr<ZrGridBatch> m_grid;
};
