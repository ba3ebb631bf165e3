#pragma once

#include "ZrKit/geo/ZrGridBatch.h"
#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"

#include <memory>
#include <vector>

class ZrWpts;

/// The map of a vehicle that is on its way: plan, trail, the vehicle itself.
class LiveMap : public ZrMapSurface
{
    Q_OBJECT

public:
    LiveMap();

    bool m_isFollowing = true; ///< the vehicle stays in the middle

    void SetPlan(const ZrWpts& route);
    void Append(const std::vector<QPointF>& places); ///< longitude as x, latitude as y
    void ClearTrail();
    void SetVehicle(double lat, double lng, double heading, bool isFresh);
    void FitAll(); ///< shows plan and trail
    void OnColours();

    i64 TrailCount() const { return m_trail.m_track.Count(); }

    void OnResize(int width, int height) override;

private:
    bool Locate(double lat, double lng);
    QPointF ToWorld(double lat, double lng) const;
    void ShowPlan();

    ZrGridLayer m_grid;
    ZrTrackLayer m_planLine;
    ZrMarkerLayer m_waypoints;
    ZrLabelLayer m_names;
    ZrTrackLayer m_trail;
    ZrMarkerLayer m_vehicle;
    std::unique_ptr<ZrGridBatch> m_projection; ///< null until there is a place
    std::vector<QPointF> m_planPlaces; ///< longitude, latitude; NaN for gaps
    std::vector<std::pair<QPointF, QString>> m_planPoints;
    bool m_isFitted = false;
};
