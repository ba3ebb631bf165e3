#include "apps/ZrSurvey/LiveMap.h"

#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpts.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

namespace {

constexpr int waypointImage = 3; // of the surface's markers

constexpr double shortestStep = 1.0; // metres between samples of the plan's way, so that turns are round
constexpr double mostSamples = 20000.0;

/// Plans of more waypoints are measured in a thread: that may take a second.
constexpr std::size_t mostAtOnce = 2000;

constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();

/// Places of the way along \p route, as `LiveMap::m_planPlaces`.
std::vector<QPointF> PlacesOf(const ZrWpts& route, const ZrRouteSpeeds& speeds)
{
    std::vector<QPointF> places;
    const ZrRoutePath path(route, speeds);
    for (const ZrPathSample& sample : path.Sample(std::max(shortestStep, path.Length() / mostSamples))) {
        const bool isKnown = sample.position.IsValid();
        places.emplace_back(
            isKnown ? sample.position.lng : notKnown, isKnown ? sample.position.lat : notKnown);
    }
    return places;
}

} // namespace

LiveMap::LiveMap()
    : m_way(m_camera)
{
    m_layers
        = {&m_grid, &m_planLine, &m_waypoints, &m_way.m_trail, &m_names, &m_way.m_vehicle, &m_grid.Marks()};
    m_planLine.m_width = 2.0F;
    m_names.SetDeclutter(true);
    m_grid.KeepClearOf(&m_names);
    m_grid.KeepClearOf({&m_waypoints, &m_way.m_vehicle}, {&m_way.m_trail, &m_planLine});
    SetGridShown(false); // of nowhere it would say nothing
    m_way.m_zoneChanged = [this] {
        SetGridShown(true);
        m_grid.SetProjection(ZrUnits::wgs84, m_way.Grid()->Projection());
        ShowPlan();
    };
    OnColours();
}

LiveMap::~LiveMap()
{
    if (m_thread.joinable())
        m_thread.join();
}

/// The vehicle lies over the names: those that it would hide in part are left out as long as it does.
void LiveMap::Render()
{
    const double pixel = static_cast<double>(ZrTheme::dp) * m_pixelFactor;
    m_names.SetDeclutter(true, ZrMapObstacles::Boxes(m_way.m_vehicle, m_camera, pixel));
    ZrMapSurface::Render();
}

void LiveMap::SetGridShown(bool isShown)
{
    m_grid.m_hasGrid = m_grid.m_hasTexts = m_grid.m_hasScaleBar = m_grid.m_hasNorthArrow = isShown;
}

void LiveMap::OnColours()
{
    m_way.OnColours();
    m_planLine.m_colour = ZrTheme::route;
    m_waypoints.m_halo = ZrTheme::formBack;
    ShowPlan();
}

void LiveMap::SetPlan(std::shared_ptr<const ZrWpts> route)
{
    m_plan = std::move(route);
    m_planPlaces.clear();
    m_planPoints.clear();
    for (ZrListPos* pos = m_plan->GetHeadPos(); pos;) {
        const ZrWpt& wpt = *m_plan->GetNext(pos);
        m_planPoints.emplace_back(QPointF(wpt.lng, wpt.lat), wpt.name);
    }
    if (m_planPoints.size() <= mostAtOnce) {
        m_planPlaces = PlacesOf(*m_plan, ZrRouteSpeeds());
    } else {
        for (const auto& point : m_planPoints)
            m_planPlaces.push_back(point.first);
        MeasurePlan();
    }
    ShowPlan();
    LocatePlan();
}

void LiveMap::LocatePlan()
{
    // A new zone shows the plan anew.
    if (!m_planPoints.empty())
        m_way.Locate(m_planPoints.front().first.y(), m_planPoints.front().first.x());
    if (!m_isFitted)
        FitAll();
}

/// Of plans that come while one is measured only the newest is measured after it.
void LiveMap::MeasurePlan()
{
    if (m_isMeasuring)
        return;
    m_isMeasuring = true;
    // Its last act is to ask for its places to be taken.
    m_thread = std::thread([this, plan = m_plan, speeds = ZrRouteSpeeds()] {
        const auto places = std::make_shared<std::vector<QPointF>>(PlacesOf(*plan, speeds));
        const auto take = [this, plan, places] {
            m_thread.join();
            m_isMeasuring = false;
            if (plan == m_plan) {
                m_planPlaces = std::move(*places);
                ShowPlan();
                Q_EMIT PlanMeasured();
            } else if (m_planPoints.size() > mostAtOnce) {
                MeasurePlan();
            }
        };
        m_calls.Give(take);
    });
}

void LiveMap::ShowPlan()
{
    m_planLine.m_track.Clear();
    std::vector<ZrMapMarker> markers;
    std::vector<ZrMapLabel> labels;
    if (m_way.Grid()) {
        for (const QPointF& place : m_planPlaces) {
            const QPointF at = m_way.ToWorld(place.y(), place.x());
            m_planLine.m_track.Append(at.x(), at.y());
        }
        for (const auto& [place, name] : m_planPoints) {
            ZrMapMarker marker;
            marker.position = m_way.ToWorld(place.y(), place.x());
            marker.image = waypointImage;
            marker.size = 6.0;
            marker.colour = ZrTheme::route;
            markers.push_back(marker);
            ZrMapLabel label;
            label.text = name;
            label.position = marker.position;
            label.offset = {8.0, -8.0}; // lines that run on to the side stay clear of it
            label.alignY = ZrMapLabel::alignBottom;
            label.size = ZrLegible::Design(14.0F);
            labels.push_back(label);
        }
    }
    m_waypoints.SetMarkers(std::move(markers));
    m_names.SetLabels(std::move(labels));
}

void LiveMap::OnResize(int width, int height)
{
    ZrMapSurface::OnResize(width, height);
    if (!m_isFitted)
        FitAll();
}

void LiveMap::FitAll()
{
    QRectF all = m_planLine.m_track.Bounds();
    const QRectF trail = m_way.m_trail.m_track.Bounds();
    if (all.isNull())
        all = trail;
    else if (!trail.isNull())
        all |= trail;
    if (all.isNull() || m_camera.IsEmpty())
        return;
    const double margin = 48.0 * static_cast<double>(ZrTheme::dp) * m_pixelFactor;
    // A page that was not shown yet has a few pixels only.
    m_isFitted = std::min(m_camera.Width(), m_camera.Height()) > 4.0 * margin;
    m_camera.Fit(all, margin);
}
