#pragma once

#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrKit/map/ZrVehicleMap.h"

#include <utility>
#include <vector>

class ZrWpts;

/// The map of a vehicle that is on its way: plan, trail, the vehicle itself.
class LiveMap : public ZrMapSurface
{
    Q_OBJECT

public:
    LiveMap();

    ZrVehicleMap m_way;
    ZrGridLayer m_grid;

    void SetPlan(const ZrWpts& route);
    void FitAll(); ///< shows plan and trail
    void OnColours();

    i64 TrailCount() const { return m_way.m_trail.m_track.Count(); }

    const ZrLabelLayer& Names() const { return m_names; } ///< of the waypoints

    void OnResize(int width, int height) override;
    void Render() override;

private:
    void ShowPlan();
    void SetGridShown(bool isShown);

    ZrTrackLayer m_planLine;
    ZrMarkerLayer m_waypoints;
    ZrLabelLayer m_names;
    std::vector<QPointF> m_planPlaces; ///< longitude, latitude; NaN for gaps
    std::vector<std::pair<QPointF, QString>> m_planPoints;
    bool m_isFitted = false;
};
