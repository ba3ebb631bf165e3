#pragma once

#include "apps/ZrSurvey/PlanPanel.h"

class ZrGridBatch;
class ZrWpt;

/// What the selected waypoint is.
class PlanPointPanel : public PlanPanel
{
    Q_OBJECT

public:
    PlanPointPanel(SurveyView& view, QWidget* parent);

    /// \param wpt null for none
    /// \param grid in which eastings and northings are shown
    void Show(ZrWpt* wpt, const ZrGridBatch& grid);

protected:
    void Place() override;
    void paintEvent(QPaintEvent* event) override;

private:
    void Change(const QString& what, const std::function<void(ZrWpt&)>& edit);
    void MoveTo(double lat, double lng);
    void MoveToGrid(double east, double north);
    ZrBtn* AddChoice(const QString& hint, const std::function<void()>& run);

    ZrWpt* m_wpt = nullptr;
    const ZrGridBatch* m_grid = nullptr;
    bool m_isGrid = false; ///< positions are grid values
    double m_east = 0.0;
    double m_north = 0.0;
    ZrInput* m_name;
    ZrInput* m_first; ///< latitude or easting
    ZrInput* m_second;
    ZrInput* m_radius;
    ZrInput* m_speed;
    ZrInput* m_z;
    ZrBtn* m_speedType;
    ZrBtn* m_zType;
};
