#include "apps/ZrSurvey/ReviewMap.h"

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/SurveyPage.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float fitMargin = 48.0F; ///< design pixels
constexpr float tapReach = 32.0F; ///< likewise, from which a place of the track is hit
constexpr float pinReach = 24.0F; ///< and an event
constexpr double leastReach = 22.0; ///< pixels of the widget: half of what a finger needs

} // namespace

ReviewMap::ReviewMap(SurveyPage& page)
    : m_page(page)
    , m_panel(new ZrMapPanel(&page, m_map))
{
    m_panel->setAccessibleName(tr("Map"));
    m_map.m_layers = QVector<ZrMapLayer*>{&m_grid} + m_chart.Layers();
    m_map.m_layers.append(&m_grid.Marks());
    m_grid.KeepClearOf(m_chart.Marks(), m_chart.Lines());
    connect(m_panel, &ZrMapPanel::Changed, &page, &SurveyPage::Changed);
    connect(m_panel, &ZrMapPanel::Tapped, this, &ReviewMap::OnTapped);
    connect(m_panel, &ZrMapPanel::CameraMoved, this, [this] {
        if (m_follows)
            SetFollows(false);
    });
    connect(&m_chart, &ZrRecordingChart::Changed, &page, &SurveyPage::Changed);
    connect(&m_chart, &ZrRecordingChart::Built, this, &ReviewMap::OnBuilt);
}

ReviewMap::~ReviewMap()
{
    // It refers to the surface.
    delete m_panel;
}

void ReviewMap::Create()
{
    m_map.OnCreate();
}

void ReviewMap::Render(bool isWhole)
{
    const QVector<ZrMapLayer*> layers = m_map.m_layers;
    if (!isWhole)
        m_map.m_layers.clear();
    if (!m_isFitted && m_chart.HasOrigin() && !m_map.m_camera.IsEmpty())
        FitAll();
    m_map.m_pixelFactor = qRound(m_panel->devicePixelRatioF());
    m_map.Render();
    m_map.m_layers = layers;
}

void ReviewMap::Restyle()
{
    m_chart.Restyle();
}

QPointF ReviewMap::PixelOf(const ZrGeoPoint& at) const
{
    return m_map.m_camera.ToPixel(WorldOf(at)) / m_panel->devicePixelRatioF();
}

void ReviewMap::Show(const std::shared_ptr<ZrSurveyRecording>& recording)
{
    m_isFitted = false;
    m_grid.ClearProjection();
    m_chart.SetRecording(recording);
}

void ReviewMap::OnBuilt()
{
    if (m_chart.HasOrigin())
        m_grid.SetProjection(ZrUnits::wgs84, m_chart.Grid().Projection());
    Follow();
    Q_EMIT Built();
}

void ReviewMap::SetCursor(double steady)
{
    m_chart.SetCursor(steady);
    Follow();
}

void ReviewMap::FitAll()
{
    m_isFitted = true;
    const QRectF bounds = m_chart.Bounds();
    if (!bounds.isNull())
        m_map.m_camera.Fit(
            bounds, static_cast<double>(ZrTheme::DpF(fitMargin)) * m_panel->devicePixelRatioF());
    m_page.Changed();
}

void ReviewMap::Follow()
{
    const QPointF world = Vehicle();
    if (!m_follows || !std::isfinite(world.x()))
        return;
    m_map.m_camera.SetCentre(world);
    m_page.Changed();
}

void ReviewMap::SetFollows(bool follows)
{
    m_follows = follows;
    Follow();
    Q_EMIT FollowsChanged();
}

void ReviewMap::OnTapped(const QPointF& /*world*/, const QPointF& pixel)
{
    const double ratio = m_panel->devicePixelRatioF();
    const auto reach = [ratio](float design) {
        return std::max(static_cast<double>(ZrTheme::DpF(design)), leastReach) * ratio;
    };
    const double time = m_chart.TimeAt(m_map.m_camera, pixel, reach(tapReach), reach(pinReach));
    if (!std::isnan(time))
        Q_EMIT Scrubbed(time);
}
