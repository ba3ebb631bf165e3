#pragma once

#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrKit/map/ZrVehicleMap.h"
#include "ZrKit/threads/ZrCallQueue.h"

#include <memory>
#include <thread>
#include <utility>
#include <vector>

class ZrWpts;

/// The map of a vehicle that is on its way: plan, trail, the vehicle itself.
class LiveMap : public ZrMapSurface
{
    Q_OBJECT

public:
    LiveMap();
    ~LiveMap() override; ///< waits for the thread

    ZrVehicleMap m_way;
    ZrGridLayer m_grid;

    /// The way of a long one, of more than 2,000 waypoints, is drawn straight until it is measured, in a
    /// thread of its own, which reads the route meanwhile.
    /// \param route not null; nobody changes it afterwards
    void SetPlan(std::shared_ptr<const ZrWpts> route);
    void LocatePlan(); ///< in its zone while there is no trail, and in view while nothing was
    void FitAll(); ///< shows plan and trail
    void OnColours();

    i64 PlanCount() const { return m_planLine.m_track.Count(); } ///< places of its way

    i64 TrailCount() const { return m_way.m_trail.m_track.Count(); }

    const ZrLabelLayer& Names() const { return m_names; } ///< of the waypoints

    void OnResize(int width, int height) override;
    void Render() override;

Q_SIGNALS:
    void PlanMeasured(); ///< another way is drawn

private:
    void MeasurePlan();
    void ShowPlan();
    void SetGridShown(bool isShown);

    ZrTrackLayer m_planLine;
    ZrMarkerLayer m_waypoints;
    ZrLabelLayer m_names;
    std::shared_ptr<const ZrWpts> m_plan;
    ZrCallQueue m_calls; ///< of the page
    std::thread m_thread; ///< measures a plan; joined before its results are taken
    bool m_isMeasuring = false;
    std::vector<QPointF> m_planPlaces; ///< longitude, latitude; NaN for gaps
    std::vector<std::pair<QPointF, QString>> m_planPoints;
    bool m_isFitted = false;
};
