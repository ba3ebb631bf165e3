#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/geo/ZrGridBatch.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrShapeLayer.h"
#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/planning/ZrRouteFinding.h"

#include <QRectF>

#include <vector>

class ZrMapView;
class ZrRoutePath;
class ZrWpts;

/// A plan on a map: its areas, the way with its true turns, arrows along it, waypoints, names and findings;
/// and what of it is under a finger.
///
/// \code
/// chart.SetOrigin({50.3, -4.1});
/// map.m_layers = chart.Layers();
/// chart.SetRoute(plan.Route(), plan.Path());
/// const int index = chart.WaypointAt(map.m_camera, pixel, 24.0);
/// \endcode
///
/// World positions are metres of the UTM zone of the origin, also beyond its borders. Colours are those of
/// the theme when things are set. Indices count waypoints and legs from 0; −1 is none. GUI thread only.
class ZR_KIT_EXPORT ZrPlanChart
{
public:
    /// Arrows and waypoints of turns are shown where legs are so many design pixels long.
    static constexpr double LeastLeg = 48.0;
    /// Findings that lie within a square of so many pixels share a pin.
    static constexpr double LeastPin = 32.0;

    ZrPlanChart();

    QVector<ZrMapLayer*> Layers(); ///< in the order of drawing

    void SetOrigin(ZrGeoPoint origin); ///< everything is to be set anew then; nothing for one not valid

    const ZrGridBatch& Grid() const { return m_grid; }

    QPointF ToWorld(ZrGeoPoint point) const;
    ZrGeoPoint ToGeo(const QPointF& world) const;

    void SetRoute(const ZrWpts& route, const ZrRoutePath& path);
    void SetAreas(const std::vector<ZrArea>& areas, const std::vector<ZrArea>& noGo);
    void SetFindings(const std::vector<ZrRouteFinding>& findings);
    void SetSelected(int waypoint, int leg);
    void SetFaint(bool isFaint); ///< behind something else that is drawn: pale lines, no arrows, no names

    /// Chooses what of the details the scale has room for. Before a frame; costs nothing while that stays.
    void Match(const ZrMapView& view);

    QRectF Bounds() const; ///< of waypoints and areas, world; null without any

    const std::vector<QPointF>& Points() const { return m_points; } ///< waypoints, world

    /// The waypoint nearest to \p pixel within \p radius pixels.
    int WaypointAt(const ZrMapView& view, const QPointF& pixel, double radius) const;

    /// The leg nearest to \p pixel within \p radius pixels; \p foot (may be null) gets the place on it.
    int LegAt(const ZrMapView& view, const QPointF& pixel, double radius, QPointF* foot = nullptr) const;

    /// The survey area that holds a place: the last one drawn. \p isNoGo for areas to keep clear of.
    int AreaAt(const QPointF& world, bool isNoGo) const;

private:
    struct Waypoint
    {
        QString name;
        QString line; ///< name of the survey line that begins here; empty for none
        bool isTurn = false; ///< between lines
        bool isLineEnd = false;
    };

    void BuildLines();
    void BuildMarks();
    void AddFindings(std::vector<ZrMapMarker>& markers) const;
    void BuildAreas();
    bool IsShown(std::size_t waypoint) const;

    ZrGridBatch m_grid;
    ZrShapeLayer m_areaLayer;
    ZrShapeLayer m_lineLayer;
    ZrMarkerLayer m_markLayer;
    ZrLabelLayer m_labelLayer;
    std::vector<Waypoint> m_waypoints;
    std::vector<QPointF> m_points;
    std::vector<std::vector<QPointF>> m_legs; ///< the way along each
    std::vector<bool> m_isLine; ///< the leg is a survey line
    std::vector<std::vector<QPointF>> m_areas;
    std::vector<QString> m_areaNames;
    std::vector<std::vector<QPointF>> m_noGo;
    std::vector<QString> m_noGoNames;
    std::vector<ZrMapMarker> m_findings;
    int m_waypoint = -1; ///< selected
    int m_leg = -1;
    bool m_isFaint = false;
    double m_scale = 0.0; ///< metres per design pixel, a power of the square root of 2
};
