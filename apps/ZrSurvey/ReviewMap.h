#pragma once

#include "ZrKit/chart/ZrRecordingChart.h"
#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrMapSurface.h"

#include <QObject>

class SurveyPage;
class ZrMapPanel;

/// The map of the page "Review".
class ReviewMap : public QObject
{
    Q_OBJECT

public:
    explicit ReviewMap(SurveyPage& page);
    ~ReviewMap() override;

    ZrMapPanel& Panel() { return *m_panel; }

    const ZrRecordingChart& Chart() const { return m_chart; }

    void Create(); ///< context current
    void Render(bool isWhole); ///< likewise; else the water alone

    void Show(const std::shared_ptr<ZrSurveyRecording>& recording); ///< null for nothing

    void ShowEvents() { m_chart.ShowEvents(); }

    void SetCursor(double steady);
    void FitAll();
    void SetFollows(bool follows); ///< the vehicle stays in view

    bool Follows() const { return m_follows; }

    QPointF Vehicle() const { return m_chart.Vehicle(); } ///< where it is drawn, metres of the grid

    QPointF WorldOf(const ZrGeoPoint& at) const { return m_chart.ToWorld(at); }

    QPointF PixelOf(const ZrGeoPoint& at) const; ///< of the panel

    void Restyle();

Q_SIGNALS:
    void Scrubbed(double steady); ///< a place of the track was tapped
    void FollowsChanged();
    void Built(); ///< the way is there

private:
    void OnBuilt();
    void Follow();
    void OnTapped(const QPointF& world, const QPointF& pixel);

    SurveyPage& m_page;
    ZrMapSurface m_map;
    ZrMapPanel* m_panel;
    ZrGridLayer m_grid;
    ZrRecordingChart m_chart;
    bool m_isFitted = false;
    bool m_follows = false;
};
