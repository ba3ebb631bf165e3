#pragma once

#include "ZrKit/geo/ZrGridBatch.h"
#include "ZrKit/scene/ZrSceneSurface.h"
#include "apps/ZrSurvey/SurveyPage.h"

#include <QVector>

#include <memory>

class ScenePanel;
class SurveyVehicle;
class ZrBtn;
class ZrValueTile;

/// The vehicle in 3D: as it lies, over its trail and the sea floor that it has measured.
class ScenePage : public SurveyPage
{
    Q_OBJECT

public:
    explicit ScenePage(SurveyView& view);

    ZrSceneSurface& Scene() { return m_scene; }

    void OnPageOpen() override;
    void zr_initializeGL() override;
    void zr_paintGL() override;
    bool OnKey(int key, Qt::KeyboardModifiers modifiers) override;
    void OnColours() override;
    int FreeBelow() const override;

protected:
    void Place() override;
    void paintEvent(QPaintEvent* event) override;

private:
    ZrBtn* AddButton(const QString& icon, const QString& hint, void (ScenePage::*action)());
    const SurveyVehicle& Vehicle() const; ///< that of "Record" or "Review", whichever was looked at last
    void OnVehicle();
    void ShowVehicle();
    void ToggleFollow();
    void Exaggerate();
    void ResetView();
    void Follow();
    void LoadMesh();
    void UpdateWay();
    void UpdatePlan();
    void UpdateTiles();
    QVector3D ToScene(double lat, double lng, double depth) const;

    ZrSceneSurface m_scene;
    ScenePanel* m_panel;
    QVector<ZrBtn*> m_buttons; ///< before those that are among them
    ZrBtn* m_follow;
    ZrBtn* m_exaggerate;
    ZrValueTile* m_heading;
    ZrValueTile* m_pitch;
    ZrValueTile* m_roll;
    ZrValueTile* m_depth;
    ZrValueTile* m_altitude;
    QVector<ZrValueTile*> m_tiles;
    std::unique_ptr<ZrGridBatch> m_grid; ///< null until there was a position
    QPointF m_origin; ///< of the scene on the grid
    std::vector<QVector3D> m_soundings;
    std::size_t m_wayCount = 0; ///< places that the scene has
    std::size_t m_floorCount = 0; ///< soundings that the floor was made of
    int m_revision = -1;
    const SurveyVehicle* m_vehicle = nullptr; ///< that the way is of
    bool m_isMeshLoaded = false;
};
