#pragma once

#include "ZrKit/scene/ZrSceneSurface.h"
#include "ZrKit/scene/ZrSceneWay.h"
#include "apps/ZrSurvey/SurveyPage.h"

#include <QVector>

class SurveyVehicle;
class ZrBtn;
class ZrDepthLegend;
class ZrScenePanel;
class ZrValueTile;

/// The vehicle in 3D: as it lies, over its trail and the sea floor that it has measured.
class ScenePage : public SurveyPage
{
    Q_OBJECT

public:
    explicit ScenePage(SurveyView& view);

    ZrSceneSurface& Scene() { return m_scene; }

    const ZrSceneWay& Way() const { return m_way; }

    void OnPageOpen() override;
    void zr_initializeGL() override;
    void zr_paintGL() override;
    bool OnKey(int key, Qt::KeyboardModifiers modifiers) override;
    void OnColours() override;
    int FreeBelow() const override;

protected:
    void Place() override;
    bool OnFrame(double seconds) override;
    bool ShowsReview() const override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    ZrBtn* AddButton(const QString& icon, const QString& hint, void (ScenePage::*action)());
    const SurveyVehicle& Vehicle() const; ///< that of "Record" or "Review", whichever was looked at last
    void OnVehicle();
    void ShowVehicle();
    void ShowPlayer();
    void PlayOrPause();
    void ToggleFollow();
    void Exaggerate();
    void ResetView();
    void LoadMesh();
    void UpdateWay();
    void UpdatePlan();
    void UpdateTiles();
    void UpdateLegend();
    void PlaceLegend();
    QString Hint() const; ///< over the scene while there is nothing to be seen; else empty

    ZrSceneSurface m_scene;
    ZrSceneWay m_way{m_scene};
    ZrScenePanel* m_panel;
    ZrDepthLegend* m_legend; ///< while there is a sea floor
    QVector<ZrBtn*> m_buttons; ///< before those that are among them
    ZrBtn* m_follow;
    ZrBtn* m_exaggerate;
    ZrBtn* m_play; ///< while a recording is shown
    ZrValueTile* m_heading;
    ZrValueTile* m_pitch;
    ZrValueTile* m_roll;
    ZrValueTile* m_depth;
    ZrValueTile* m_altitude;
    QVector<ZrValueTile*> m_tiles;
    int m_revision = -1;
    const SurveyVehicle* m_vehicle = nullptr; ///< that the way is of
    bool m_isMeshLoaded = false;
};
