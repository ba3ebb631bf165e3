#pragma once

#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrUtil/ZrProj.h"

#include <QObject>

class SurveyPage;
class ZrMapPanel;
class ZrSurveyRecording;

/// The map of the page "Review": the whole way of the vehicle, what lies behind the cursor set off from what
/// is to come, the plan, the events, and the vehicle.
class ReviewMap : public QObject
{
    Q_OBJECT

public:
    explicit ReviewMap(SurveyPage& page);
    ~ReviewMap() override;

    ZrMapPanel& Panel() { return *m_panel; }

    void Create(); ///< context current
    void Render(); ///< likewise

    void Show(ZrSurveyRecording* recording); ///< null for nothing
    void ShowEvents();
    void SetCursor(double steady);
    void FitAll();
    void SetFollows(bool follows); ///< the vehicle stays in view

    bool Follows() const { return m_follows; }

    QPointF Vehicle() const; ///< where it is drawn, metres of the grid

    QPointF WorldOf(const ZrGeoPoint& at) const { return ToWorld(at.lat, at.lng); }

    QPointF PixelOf(const ZrGeoPoint& at) const; ///< of the panel

    void Restyle();

Q_SIGNALS:
    void Scrubbed(double steady); ///< a place of the track was tapped
    void FollowsChanged();

private:
    QPointF ToWorld(double lat, double lng) const;
    void ShowVehicle();
    void OnTapped(const QPointF& world, const QPointF& pixel);

    SurveyPage& m_page;
    ZrSurveyRecording* m_recording = nullptr;
    ZrMapSurface m_map;
    ZrMapPanel* m_panel;
    ZrGridLayer m_grid;
    ZrTrackLayer m_plan;
    ZrTrackLayer m_track;
    ZrMarkerLayer m_waypoints;
    ZrMarkerLayer m_events;
    ZrMarkerLayer m_vehicle;
    ZrProj m_projection;
    bool m_hasPlace = false;
    bool m_isFitted = false;
    bool m_follows = false;
    double m_cursor = 0.0;
};
