#include "apps/ZrSurvey/PlanPointPanel.h"

#include "ZrKit/geo/ZrGridBatch.h"
#include "ZrKit/planning/ZrRouteLeg.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>

namespace {

/// Values of `ZrWpt::zType`.
enum eDepthType : int
{
    typeDepth = 0,
    typeAltitude = 1
};

constexpr double largestRadius = 10000.0; ///< metres
constexpr double fastest = 20.0; ///< m/s
constexpr double deepest = 11000.0; ///< metres

double PresetSpeed(int type, double own)
{
    switch (type) {
    case eRouteSpeedSlow:
        return static_cast<double>(ZrWpts::s_msSlow);
    case eRouteSpeedMedium:
        return static_cast<double>(ZrWpts::s_msMedium);
    case eRouteSpeedFast:
        return static_cast<double>(ZrWpts::s_msFast);
    default:
        return own;
    }
}

} // namespace

PlanPointPanel::PlanPointPanel(SurveyView& view, QWidget* parent)
    : PlanPanel(view, parent)
    , m_name(AddField(tr("Name"), ZrInput::kindText,
          [this](double) { Change(tr("name"), [this](ZrWpt& wpt) { wpt.name = m_name->text; }); }))
    , m_first(AddField(tr("Latitude"), ZrInput::kindLat,
          [this](double value) {
              if (m_isGrid)
                  MoveToGrid(value, m_north);
              else if (m_wpt)
                  MoveTo(value, m_wpt->lng);
          }))
    , m_second(AddField(tr("Longitude"), ZrInput::kindLng,
          [this](double value) {
              if (m_isGrid)
                  MoveToGrid(m_east, value);
              else if (m_wpt)
                  MoveTo(m_wpt->lat, value);
          }))
    , m_radius(AddField(tr("Turn radius"), ZrInput::kindShortLength,
          [this](double value) { Change(tr("turn radius"), [value](ZrWpt& wpt) { wpt.r = value; }); }))
    , m_speed(AddField(tr("Speed"), ZrInput::kindSpeed,
          [this](double value) {
              Change(tr("speed"), [value](ZrWpt& wpt) {
                  wpt.speed = value;
                  wpt.spdType = eRouteSpeedOwn;
              });
          }))
    , m_z(AddField(tr("Depth"), ZrInput::kindShortLength,
          [this](double value) { Change(tr("depth"), [value](ZrWpt& wpt) { wpt.z = value; }); }))
    , m_speedType(AddChoice(tr("Speed: as before, slow, medium, fast, or its own"),
          [this] {
              Change(tr("speed"), [](ZrWpt& wpt) {
                  if (wpt.spdType < 0 || wpt.spdType >= eRouteSpeedOwn)
                      wpt.spdType = eRouteSpeedInherited;
                  else
                      ++wpt.spdType;
                  if (wpt.spdType == eRouteSpeedOwn && !(wpt.speed > 0.0))
                      wpt.speed = static_cast<double>(ZrWpts::s_msMedium);
              });
          }))
    , m_zType(AddChoice(tr("Keeps a depth, or an altitude above the sea floor"), [this] {
        Change(tr("depth"),
            [](ZrWpt& wpt) { wpt.zType = wpt.zType == typeAltitude ? typeDepth : typeAltitude; });
    }))
{
    m_radius->SetRange(0.0, largestRadius);
    m_speed->SetRange(0.01, fastest);
    m_z->SetRange(0.0, deepest);
}

ZrBtn* PlanPointPanel::AddChoice(const QString& hint, const std::function<void()>& run)
{
    return AddButton(QString(), QString(), hint, run);
}

void PlanPointPanel::Change(const QString& what, const std::function<void(ZrWpt&)>& edit)
{
    if (!m_wpt)
        return;
    View().Model().plan.History().Change(m_wpt, what, edit);
    View().Model().plan.Edited();
}

void PlanPointPanel::MoveTo(double lat, double lng)
{
    if (!m_wpt)
        return;
    ZrRouteHistory& history = View().Model().plan.History();
    history.Move(m_wpt, lat, lng);
    history.CloseMove();
    View().Model().plan.Edited();
}

void PlanPointPanel::MoveToGrid(double east, double north)
{
    double lat = 0.0;
    double lng = 0.0;
    m_grid->ToLatLng({&east, 1}, {&north, 1}, {&lat, 1}, {&lng, 1});
    MoveTo(lat, lng);
}

void PlanPointPanel::Show(ZrWpt* wpt, const ZrGridBatch& grid)
{
    m_wpt = wpt;
    m_grid = &grid;
    m_isGrid = ZrUnits::GetGeoStyle() == eGeoUTM;
    const auto children = findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* child : children)
        child->setVisible(wpt);
    update();
    if (!wpt)
        return;
    m_first->kind = m_isGrid ? ZrInput::kindEasting : ZrInput::kindLat;
    m_first->caption = m_isGrid ? tr("Easting") : tr("Latitude");
    m_second->kind = m_isGrid ? ZrInput::kindNorthing : ZrInput::kindLng;
    m_second->caption = m_isGrid ? tr("Northing") : tr("Longitude");
    if (m_isGrid) {
        m_first->hasRange = m_second->hasRange = false;
        grid.ToGrid({&wpt->lat, 1}, {&wpt->lng, 1}, {&m_east, 1}, {&m_north, 1});
    } else {
        m_first->SetRange(-90.0, 90.0);
        m_second->SetRange(-180.0, 180.0);
    }
    m_name->SetText(wpt->name);
    m_name->setPlaceholderText(wpt->pseudo);
    m_first->SetValue(m_isGrid ? m_east : wpt->lat);
    m_second->SetValue(m_isGrid ? m_north : wpt->lng);
    m_radius->SetValue(std::fabs(wpt->r));
    const bool isOwn = wpt->spdType < 0 || wpt->spdType >= eRouteSpeedOwn;
    const bool isInherited = wpt->spdType == eRouteSpeedInherited;
    m_speed->SetValue(
        isInherited ? View().Model().plan.Route().speed : PresetSpeed(wpt->spdType, wpt->speed));
    const QStringList speeds{tr("As before"), tr("Slow"), tr("Medium"), tr("Fast"), tr("Own")};
    m_speedType->text = speeds[isOwn ? 4 : wpt->spdType];
    m_speedType->Changed();
    const bool isAltitude = wpt->zType == typeAltitude;
    m_z->caption = isAltitude ? tr("Altitude") : tr("Depth");
    m_z->SetValue(wpt->z);
    m_zType->text = m_z->caption;
    m_zType->Changed();
}

void PlanPointPanel::Place()
{
    int y = Gap();
    y = PlaceFields({m_name, m_first, m_second}, y, true);
    y = PlaceFields({m_speed, m_speedType, m_z, m_zType}, y);
    PlaceFields({m_radius}, y);
}

void PlanPointPanel::paintEvent(QPaintEvent* event)
{
    PlanPanel::paintEvent(event);
    if (m_wpt)
        return;
    QPainter painter(this);
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(rect().adjusted(Margin(), Margin(), -Margin(), -Margin()),
        Qt::AlignCenter | Qt::TextWordWrap, tr("Tap a waypoint on the map or in the list."));
}
