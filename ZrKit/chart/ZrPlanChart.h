#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/chart/ZrPinGroups.h"
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
/// chart.Match(map.m_camera); // before each frame
/// const int index = chart.WaypointAt(map.m_camera, pixel, 24.0);
/// \endcode
///
/// World positions are metres of the UTM zone of the origin, also beyond its borders. What is drawn is made
/// by the next `Match`, once for all that was set before it, in the colours that the theme has then; after a
/// change of these something is to be set. Indices count waypoints and legs from 0; −1 is none. GUI thread
/// only.
class ZR_KIT_EXPORT ZrPlanChart
{
public:
    /// Arrows and waypoints of turns are shown where legs are so many design pixels long.
    static constexpr double LeastLeg = 48.0;
    /// Findings nearer to one another than so many design pixels share a pin, with their number in it: the
    /// way stays to be seen between the pins.
    static constexpr double LeastPin = 96.0;

    /// What a pin stands for.
    struct Pin
    {
        std::vector<int> findings; ///< indices of what `SetFindings` got, errors first; empty for no pin
        QRectF bounds; ///< of their places, world
        bool hasParts = false; ///< seen from nearer they have pins of their own
    };

    ZrPlanChart();

    QVector<ZrMapLayer*> Layers(); ///< in the order of drawing

    const ZrLabelLayer& Names() const { return m_labelLayer; } ///< the last of the layers

    const ZrMarkerLayer& Marks() const { return m_markLayer; } ///< waypoints, arrows and findings

    void SetOrigin(ZrGeoPoint origin); ///< everything is to be set anew then; nothing for one not valid

    const ZrGridBatch& Grid() const { return m_grid; }

    QPointF ToWorld(ZrGeoPoint point) const;
    ZrGeoPoint ToGeo(const QPointF& world) const;

    void SetRoute(const ZrWpts& route, const ZrRoutePath& path);

    /// \name The two halves of `SetRoute`
    /// Where the other one stays as it was; the way may be of a route before this one.
    /// @{
    void SetWaypoints(const ZrWpts& route);
    void SetWay(const ZrRoutePath& path);
    /// @}

    void SetAreas(const std::vector<ZrArea>& areas, const std::vector<ZrArea>& noGo);

    /// Infos and those without place have no pin; until the next `Match` none has.
    void SetFindings(const std::vector<ZrRouteFinding>& findings);

    void SetSelected(int waypoint, int leg);
    void SetFaint(bool isFaint); ///< behind something else that is drawn: pale lines, no arrows, no names

    /// Makes what has changed, and chooses what of the details the scale has room for. Before a frame; costs
    /// nothing while all stays. \p pixelFactor is that of the surface.
    void Match(const ZrMapView& view, int pixelFactor = 1);

    QRectF Bounds() const; ///< of waypoints and areas, world; null without any

    const std::vector<QPointF>& Points() const { return m_points; } ///< waypoints, world

    /// The waypoint nearest to \p pixel within \p radius pixels.
    int WaypointAt(const ZrMapView& view, const QPointF& pixel, double radius) const;

    /// The leg nearest to \p pixel within \p radius pixels; \p foot (may be null) gets the place on it.
    int LegAt(const ZrMapView& view, const QPointF& pixel, double radius, QPointF* foot = nullptr) const;

    /// The pin whose head is nearest to \p pixel within \p radius pixels. What is nearer to the place that a
    /// pin points to is there, not at the pin.
    Pin PinAt(const ZrMapView& view, const QPointF& pixel, double radius) const;

    /// The place of a leg that is nearest to \p world; that itself for a leg of none.
    QPointF FootOnLeg(int leg, const QPointF& world) const;

    /// What pins cover, two rectangles each, pixels of \p view: the head, and what is below it.
    std::vector<QRectF> PinRects(const ZrMapView& view) const;

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

    using Ways = std::vector<std::vector<QPointF>>;

    /// What a leg lies within, world; the least is above the most for one without any place.
    struct Extent
    {
        QPointF least;
        QPointF most;
    };

    void BuildLines();
    void BuildMarks();
    Ways WaysFrom(const QPointF& origin, double reach, std::size_t first, std::size_t end) const;
    void PutBetween(ZrMapLabel& label);
    void PutBeside(ZrMapLabel& label, std::size_t waypoint, double distance);
    void AddPins(std::vector<ZrMapMarker>& markers);
    std::vector<QRectF> PinsFrom(const QPointF& origin, double reach) const;
    QPointF Turned(const QPointF& offset) const;
    void BuildAreas();
    bool IsShown(std::size_t waypoint) const;
    bool IsLine(std::size_t leg) const;

    ZrGridBatch m_grid;
    ZrShapeLayer m_areaLayer;
    ZrShapeLayer m_lineLayer;
    ZrMarkerLayer m_markLayer;
    ZrLabelLayer m_numberLayer; ///< in pins
    ZrLabelLayer m_labelLayer;
    std::vector<Waypoint> m_waypoints;
    std::vector<QPointF> m_points;
    std::vector<std::vector<QPointF>> m_legs; ///< the way along each
    std::vector<Extent> m_legExtents;
    std::vector<int> m_legFrom; ///< waypoint that each begins at
    std::vector<std::vector<QPointF>> m_areas;
    std::vector<QString> m_areaNames;
    std::vector<std::vector<QPointF>> m_noGo;
    std::vector<QString> m_noGoNames;
    std::vector<QPointF> m_findings; ///< errors first, then warnings; world
    std::vector<int> m_findingOf; ///< index in `SetFindings` of each
    std::size_t m_errors = 0; ///< of them
    ZrPinGroups m_pins; ///< of them, at the scale
    int m_waypoint = -1; ///< selected
    int m_leg = -1;
    bool m_isFaint = false;
    bool m_areAreasDue = false; ///< to be made anew
    bool m_areLinesDue = false;
    bool m_areMarksDue = false;
    double m_scale = 0.0; ///< metres per design pixel, a power of the square root of 2
    double m_pixel = 1.0; ///< pixels per design pixel
    double m_rotation = 0.0; ///< of the view, degrees counter-clockwise, by steps
};
