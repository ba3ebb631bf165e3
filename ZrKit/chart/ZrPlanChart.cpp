#include "ZrKit/chart/ZrPlanChart.h"

#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrWpts.h"

#include <QPolygonF>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace {

/// Images of `ZrGlSurface::m_markers`.
enum eImage : int
{
    imageArrow = 1,
    imageCircle = 3
};

constexpr double rotationStep = 10.0; ///< degrees, by which names are put beside their waypoints anew
constexpr double infinity = std::numeric_limits<double>::infinity();

bool IsFinite(const QPointF& p)
{
    return std::isfinite(p.x()) && std::isfinite(p.y());
}

double Length(const std::vector<QPointF>& line)
{
    double length = 0.0;
    for (std::size_t i = 1; i < line.size(); ++i)
        length += std::hypot(line[i].x() - line[i - 1].x(), line[i].y() - line[i - 1].y());
    return length;
}

QPointF Foot(const QPointF& p, const QPointF& a, const QPointF& b)
{
    const QPointF d = b - a;
    const double square = QPointF::dotProduct(d, d);
    const double t = square > 0.0 ? QPointF::dotProduct(p - a, d) / square : 0.0;
    return a + d * std::clamp(t, 0.0, 1.0);
}

/// \p foot becomes the place of the line that is nearest; it stays, infinitely far, for a line without any.
double DistanceTo(const std::vector<QPointF>& line, const QPointF& world, QPointF& foot)
{
    double least = infinity;
    for (std::size_t i = 1; i < line.size(); ++i) {
        const QPointF at = Foot(world, line[i - 1], line[i]);
        const double distance = std::hypot(at.x() - world.x(), at.y() - world.y());
        if (!(distance < least))
            continue;
        least = distance;
        foot = at;
    }
    return least;
}

QPointF Middle(const std::vector<QPointF>& ring)
{
    return QPolygonF(QVector<QPointF>(ring.begin(), ring.end())).boundingRect().center();
}

} // namespace

ZrPlanChart::ZrPlanChart()
    : m_grid(ZrGridBatch::UtmAt(0.0, 0.0))
{
    m_labelLayer.SetDeclutter(true);
}

QVector<ZrMapLayer*> ZrPlanChart::Layers()
{
    return {&m_areaLayer, &m_lineLayer, &m_markLayer, &m_numberLayer, &m_labelLayer};
}

void ZrPlanChart::SetOrigin(ZrGeoPoint origin)
{
    if (origin.IsValid())
        m_grid = ZrGridBatch::UtmAt(origin.lat, origin.lng);
}

QPointF ZrPlanChart::ToWorld(ZrGeoPoint point) const
{
    QPointF world;
    m_grid.ToGrid({&point.lat, 1}, {&point.lng, 1}, {&world.rx(), 1}, {&world.ry(), 1});
    return world;
}

ZrGeoPoint ZrPlanChart::ToGeo(const QPointF& world) const
{
    const double east = world.x();
    const double north = world.y();
    ZrGeoPoint point;
    m_grid.ToLatLng({&east, 1}, {&north, 1}, {&point.lat, 1}, {&point.lng, 1});
    return point;
}

void ZrPlanChart::SetRoute(const ZrWpts& route, const ZrRoutePath& path)
{
    SetWaypoints(route);
    SetWay(path);
}

void ZrPlanChart::SetWaypoints(const ZrWpts& route)
{
    m_waypoints.clear();
    m_points.clear();
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *route.GetNext(pos);
        Waypoint waypoint;
        waypoint.name = wpt.Name();
        if (!wpt.gridId.isNull() && wpt.name.endsWith(QLatin1String(" S")))
            waypoint.line = wpt.name.chopped(2);
        waypoint.isLineEnd = !wpt.gridId.isNull() && wpt.name.endsWith(QLatin1String(" E"));
        waypoint.isTurn = !wpt.gridId.isNull() && wpt.name.contains(QLatin1String(" T"));
        m_waypoints.push_back(std::move(waypoint));
        m_points.push_back(ToWorld({wpt.lat, wpt.lng}));
    }
    m_areLinesDue = m_areMarksDue = true;
}

void ZrPlanChart::SetWay(const ZrRoutePath& path)
{
    m_legs.assign(path.Legs().size(), {});
    m_legExtents.assign(m_legs.size(), {{infinity, infinity}, {-infinity, -infinity}});
    m_legFrom.clear();
    const auto lines = path.LegLines();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        m_legs[i].reserve(lines[i].size());
        auto& [least, most] = m_legExtents[i];
        for (const ZrGeoPoint& place : lines[i]) {
            const QPointF world = ToWorld(place);
            least = {std::min(least.x(), world.x()), std::min(least.y(), world.y())};
            most = {std::max(most.x(), world.x()), std::max(most.y(), world.y())};
            m_legs[i].push_back(world);
        }
    }
    for (const ZrRouteLeg& leg : path.Legs())
        m_legFrom.push_back(leg.from);
    m_areLinesDue = m_areMarksDue = true;
}

void ZrPlanChart::SetAreas(const std::vector<ZrArea>& areas, const std::vector<ZrArea>& noGo)
{
    const auto take = [this](const std::vector<ZrArea>& from, auto& rings, auto& names) {
        rings.clear();
        names.clear();
        for (const ZrArea& area : from) {
            std::vector<QPointF> ring;
            for (const ZrGeoPoint& corner : area.ring)
                ring.push_back(ToWorld(corner));
            rings.push_back(std::move(ring));
            names.push_back(area.name);
        }
    };
    take(areas, m_areas, m_areaNames);
    take(noGo, m_noGo, m_noGoNames);
    m_areAreasDue = m_areMarksDue = true;
}

void ZrPlanChart::SetSelected(int waypoint, int leg)
{
    if (waypoint == m_waypoint && leg == m_leg)
        return;
    m_waypoint = waypoint;
    m_leg = leg;
    m_areLinesDue = m_areMarksDue = true;
}

void ZrPlanChart::SetFaint(bool isFaint)
{
    if (isFaint == m_isFaint)
        return;
    m_isFaint = isFaint;
    m_areLinesDue = m_areMarksDue = true;
}

void ZrPlanChart::Match(const ZrMapView& view, int pixelFactor)
{
    m_pixel = static_cast<double>(ZrTheme::dp) * pixelFactor;
    const double perPixel = view.Scale() * m_pixel;
    const double scale = std::exp2(std::round(2.0 * std::log2(perPixel)) / 2.0);
    const double rotation = std::round(view.Rotation() / rotationStep) * rotationStep;
    if ((scale != m_scale || rotation != m_rotation) && scale > 0.0) {
        m_scale = scale;
        m_rotation = rotation;
        m_areMarksDue = true;
    }
    if (std::exchange(m_areAreasDue, false))
        BuildAreas();
    if (std::exchange(m_areLinesDue, false))
        BuildLines();
    if (std::exchange(m_areMarksDue, false))
        BuildMarks();
    m_labelLayer.SetDeclutter(true, PinRects(view));
}

void ZrPlanChart::BuildAreas()
{
    m_areaLayer.Clear();
    for (const auto& ring : m_areas) {
        m_areaLayer.AddArea(ring, ZrTheme::goodCol, 36);
        m_areaLayer.AddLine(ring, 2.0, ZrTheme::goodCol, true);
    }
    for (const auto& ring : m_noGo) {
        m_areaLayer.AddArea(ring, ZrTheme::errorCol, 56);
        m_areaLayer.AddLine(ring, 2.0, ZrTheme::errorCol, true);
    }
}

void ZrPlanChart::BuildLines()
{
    m_lineLayer.Clear();
    // The ways between lines recede behind these.
    QColor way = ZrTheme::route;
    way.setAlpha(m_isFaint ? 60 : 150);
    bool hasLines = false;
    for (std::size_t i = 0; i < m_legs.size() && !hasLines; ++i)
        hasLines = IsLine(i);
    // Under all of them, so that crossings and what lies below stay readable.
    for (const auto& leg : m_legs) {
        if (!m_isFaint)
            m_lineLayer.AddLine(leg, 5.5, ZrTheme::formBack);
    }
    for (std::size_t i = 0; i < m_legs.size(); ++i) {
        const bool isMain = !m_isFaint && (!hasLines || IsLine(i));
        m_lineLayer.AddLine(m_legs[i], isMain ? 3.0 : 2.0, isMain ? ZrTheme::route : way);
    }
    if (m_leg >= 0 && m_leg < static_cast<int>(m_legs.size()))
        m_lineLayer.AddLine(m_legs[static_cast<std::size_t>(m_leg)], 6.0, ZrTheme::ctrlHighlightCol);
}

/// Whether the leg is a survey line.
bool ZrPlanChart::IsLine(std::size_t leg) const
{
    const auto from = static_cast<std::size_t>(m_legFrom[leg]);
    return from < m_waypoints.size() && !m_waypoints[from].line.isEmpty();
}

bool ZrPlanChart::IsShown(std::size_t waypoint) const
{
    if (!m_waypoints[waypoint].isTurn || static_cast<int>(waypoint) == m_waypoint)
        return true;
    const auto isLong = [&](std::size_t a, std::size_t b) {
        return std::hypot(m_points[a].x() - m_points[b].x(), m_points[a].y() - m_points[b].y())
            >= LeastLeg * m_scale;
    };
    return waypoint > 0 && isLong(waypoint - 1, waypoint);
}

void ZrPlanChart::BuildMarks()
{
    std::vector<ZrMapMarker> markers;
    std::vector<ZrMapLabel> labels;
    m_pins.Make(m_findings, LeastPin * m_scale);
    for (std::size_t i = 0; i < m_legs.size(); ++i) {
        const auto& line = m_legs[i];
        if (m_isFaint || line.size() < 2 || Length(line) < LeastLeg * m_scale)
            continue;
        const QPointF way = line[1] - line[0];
        ZrMapMarker arrow;
        arrow.position = (line[0] + line[1]) / 2.0;
        arrow.angle = qRadiansToDegrees(std::atan2(way.y(), way.x())) - 90.0;
        arrow.size = 7.0;
        arrow.image = imageArrow;
        arrow.isTurning = true;
        arrow.colour = ZrTheme::route;
        markers.push_back(arrow);
    }
    for (std::size_t i = 0; i < m_points.size(); ++i) {
        if (m_isFaint || !IsShown(i))
            continue;
        const Waypoint& waypoint = m_waypoints[i];
        const bool isSelected = static_cast<int>(i) == m_waypoint;
        const bool isMinor = waypoint.isTurn || waypoint.isLineEnd;
        ZrMapMarker marker;
        marker.position = m_points[i];
        marker.image = imageCircle;
        if (isSelected) {
            marker.size = 15.0;
            marker.colour = ZrTheme::ctrlHighlightCol;
            markers.push_back(marker);
        }
        marker.size = isMinor ? 5.0 : 7.5;
        marker.colour = ZrTheme::waypoint;
        markers.push_back(marker);
        if (isMinor && !isSelected)
            continue;
        ZrMapLabel label;
        label.text = isSelected || waypoint.line.isEmpty() ? waypoint.name : waypoint.line;
        label.position = m_points[i];
        label.size = ZrLegible::Design(isSelected ? 18.0F : 15.0F);
        PutBeside(label, i, isSelected ? 18.0 : 11.0);
        label.priority = isSelected ? ZrMapLabel::AlwaysShown : i == 0 || i + 1 == m_points.size() ? 2 : 1;
        labels.push_back(label);
    }
    AddPins(markers);
    const auto name = [this, &labels](const auto& rings, const auto& names, const QColor& colour) {
        for (std::size_t i = 0; i < rings.size(); ++i) {
            ZrMapLabel label;
            label.text = names[i];
            label.position = Middle(rings[i]);
            label.alignX = ZrMapLabel::alignCentre;
            label.alignY = ZrMapLabel::alignMiddle;
            label.colour = colour;
            label.size = ZrLegible::Design(15.0F);
            if (label.text.isEmpty())
                continue;
            PutBetween(label);
            labels.push_back(label);
        }
    };
    name(m_areas, m_areaNames, ZrTheme::goodCol);
    name(m_noGo, m_noGoNames, ZrTheme::errorCol);
    m_markLayer.m_halo = ZrTheme::sea;
    m_markLayer.SetMarkers(std::move(markers));
    m_labelLayer.SetLabels(std::move(labels));
}

QRectF ZrPlanChart::Bounds() const
{
    QPolygonF all;
    const auto add = [&all](const std::vector<QPointF>& points) {
        for (const QPointF& point : points) {
            if (IsFinite(point))
                all.append(point);
        }
    };
    add(m_points);
    for (const auto& ring : m_areas)
        add(ring);
    for (const auto& ring : m_noGo)
        add(ring);
    return all.boundingRect();
}

int ZrPlanChart::WaypointAt(const ZrMapView& view, const QPointF& pixel, double radius) const
{
    int nearest = -1;
    for (std::size_t i = 0; i < m_points.size(); ++i) {
        const QPointF d = view.ToPixel(m_points[i]) - pixel;
        const double distance = std::hypot(d.x(), d.y());
        if (distance <= radius) {
            radius = distance;
            nearest = static_cast<int>(i);
        }
    }
    return nearest;
}

QPointF ZrPlanChart::FootOnLeg(int leg, const QPointF& world) const
{
    QPointF foot = world;
    if (leg >= 0 && static_cast<std::size_t>(leg) < m_legs.size())
        DistanceTo(m_legs[static_cast<std::size_t>(leg)], world, foot);
    return foot;
}

int ZrPlanChart::LegAt(const ZrMapView& view, const QPointF& pixel, double radius, QPointF* foot) const
{
    const QPointF world = view.ToWorld(pixel);
    double least = radius * view.Scale();
    int nearest = -1;
    for (std::size_t i = 0; i < m_legs.size(); ++i) {
        QPointF at;
        const double distance = DistanceTo(m_legs[i], world, at);
        if (!(distance <= least))
            continue;
        least = distance;
        nearest = static_cast<int>(i);
        if (foot)
            *foot = at;
    }
    return nearest;
}

int ZrPlanChart::AreaAt(const QPointF& world, bool isNoGo) const
{
    const auto& rings = isNoGo ? m_noGo : m_areas;
    for (std::size_t i = rings.size(); i-- > 0;) {
        const QPolygonF ring(QVector<QPointF>(rings[i].begin(), rings[i].end()));
        if (ring.containsPoint(world, Qt::OddEvenFill))
            return static_cast<int>(i);
    }
    return -1;
}
