#pragma once

#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrKit/map/ZrVehicleMap.h"
#include "ZrUtil/ZrPage.h"
#include "examples/gl_map/Tracks.h"

#include <QElapsedTimer>

class QTimer;
class ZrBtn;

/// A map with two tracks: that of a recording, which a vehicle may run along, and a long one beside it.
class MapPage : public ZrPage
{
    Q_OBJECT

public:
    /// \param wanderCount positions of the long track
    MapPage(ZrAppView* view, const Track& track, int wanderCount);

    void ShowRecording(); ///< all of the recording's track
    void ShowAll();
    void SetStatistics(bool isOn);
    QString Statistics() const; ///< of the frames so far

    ZrMapPanel& Panel() { return *m_panel; }

    void zr_initializeGL() override;
    void zr_paintGL() override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    ZrBtn* AddButton(const QString& icon, const QString& hint, void (MapPage::*action)());
    void Fit(const QRectF& world, float margin, int fitted);
    void ZoomIn();
    void ZoomOut();
    void TurnNorthUp();
    void ToggleStatistics();
    void ToggleRun();
    void Step();

    ZrMapSurface m_map;
    ZrGridLayer m_grid;
    ZrTrackLayer m_wander;
    ZrTrackLayer m_track;
    ZrMarkerLayer m_markers;
    ZrLabelLayer m_labels;
    Track m_recorded;
    ZrVehicleMap m_vehicle; ///< that runs along it once more
    QTimer* m_run;
    std::size_t m_next = 0; ///< of its positions
    ZrMapPanel* m_panel;
    QVector<ZrBtn*> m_buttons;
    QRectF m_trackBounds;
    int m_fitted = 1; ///< what a new size shows all of: 1 the recording, 2 both tracks; 0: the map was moved
    bool m_hasStatistics = false;
    int m_frames = 0;
    double m_seconds = 0.0; ///< in all frames
    double m_longest = 0.0;
};
