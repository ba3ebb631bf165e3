#include "ZrKit/planning/ZrSurveyRouter.h"

#include "ZrKit/planning/ZrSurveyOrder.h"
#include "ZrKit/planning/ZrSurveyTurn.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Polyline = std::vector<ZrLocalPoint>;
using Settings = ZrSurveySettings;

double Distance(ZrLocalPoint a, ZrLocalPoint b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

ZrLocalPoint Direction(ZrLocalPoint from, ZrLocalPoint to)
{
    const double length = Distance(from, to);
    return {(to.x - from.x) / length, (to.y - from.y) / length};
}

bool IsRight(Settings::eEntry entry)
{
    return entry == Settings::NearRight || entry == Settings::FarRight;
}

bool IsFar(Settings::eEntry entry)
{
    return entry == Settings::FarLeft || entry == Settings::FarRight;
}

std::vector<std::size_t> OrderOf(
    const std::vector<ZrSurveyLane>& lanes, Settings::eEntry entry, const Settings& settings)
{
    std::vector<double> across;
    across.reserve(lanes.size());
    for (const ZrSurveyLane& lane : lanes)
        across.push_back(lane.across);
    if (IsRight(entry))
        std::reverse(across.begin(), across.end());
    return ZrSurveyOrder::Of(settings.order, across, settings.turnRadius);
}

/// The point that is moved \p metres from \p from towards, or beyond, \p to.
ZrLocalPoint Moved(ZrLocalPoint from, ZrLocalPoint to, double metres)
{
    const ZrLocalPoint direction = Direction(from, to);
    return {from.x + direction.x * metres, from.y + direction.y * metres};
}

} // namespace

ZrSurveyRouter::ZrSurveyRouter(const ZrLocalFrame& frame, const ZrSurveySettings& settings)
    : m_frame(frame)
{
    m_plan.settings = settings;
}

void ZrSurveyRouter::Run(std::vector<ZrSurveyLane> lanes, ZrSurveySettings::eEntry entry, bool cross)
{
    const std::vector<std::size_t> order = OrderOf(lanes, entry, m_plan.settings);
    if (IsRight(entry))
        std::reverse(lanes.begin(), lanes.end());
    bool backward = IsFar(entry);
    for (const std::size_t index : order) {
        std::vector<Polyline>& pieces = lanes[index].pieces;
        const int count = static_cast<int>(pieces.size());
        for (int i = 0; i < count; ++i) {
            const int piece = backward ? count - 1 - i : i;
            Polyline& points = pieces[static_cast<std::size_t>(piece)];
            if (backward)
                std::reverse(points.begin(), points.end());
            ZrSurveyLine line;
            line.number = static_cast<int>(index) + 1;
            line.piece = count > 1 ? piece + 1 : 0;
            line.cross = cross;
            RunPiece(points, std::move(line));
        }
        backward = !backward;
    }
}

void ZrSurveyRouter::RunFromNearest(const std::vector<ZrSurveyLane>& lanes, bool cross)
{
    Settings::eEntry nearest = m_plan.settings.entry;
    double shortest = std::numeric_limits<double>::infinity();
    for (const Settings::eEntry entry :
        {Settings::NearLeft, Settings::NearRight, Settings::FarLeft, Settings::FarRight}) {
        if (!m_last || lanes.empty())
            break;
        std::size_t first = OrderOf(lanes, entry, m_plan.settings).front();
        if (IsRight(entry))
            first = lanes.size() - 1 - first;
        const ZrSurveyLane& lane = lanes[first];
        const ZrLocalPoint start = IsFar(entry) ? lane.pieces.back().back() : lane.pieces.front().front();
        const double distance = Distance(m_last->at, start);
        if (distance < shortest) {
            shortest = distance;
            nearest = entry;
        }
    }
    Run(lanes, nearest, cross);
}

void ZrSurveyRouter::RunPiece(const std::vector<ZrLocalPoint>& points, ZrSurveyLine line)
{
    const std::size_t index = m_plan.lines.size();
    const double overshoot = m_plan.settings.overshoot;
    const double radius = m_plan.settings.turnRadius;
    Polyline run = points;
    run.front() = Moved(points[1], points[0], Distance(points[1], points[0]) + overshoot);
    const ZrLocalPoint beforeLast = points[points.size() - 2];
    run.back() = Moved(beforeLast, points.back(), Distance(beforeLast, points.back()) + overshoot);

    if (m_last)
        AddTurn({run.front(), Direction(run[0], run[1])}, index - 1);

    const QString name = line.Name();
    AddWaypoint(run.front(), ZrSurveyWaypoint::LineStart, index, 0.0, name + QLatin1String(" S"));
    double taken = 0.0; // of the leg, by the arc of the bend before
    for (std::size_t i = 1; i + 1 < run.size(); ++i) {
        const QString bend = name + QLatin1String(" B") + QString::number(i);
        const double tangent = ZrSurveyTurn::TangentLength(run[i - 1], run[i], run[i + 1], radius);
        const bool fits
            = taken + tangent <= Distance(run[i - 1], run[i]) && tangent <= Distance(run[i], run[i + 1]);
        if (!fits) {
            AddFinding(ZrSurveyFinding::BendTooTight, index,
                QCoreApplication::translate("ZrSurveyRouter", "Bend %1 has no room for a turn of %2 m.")
                    .arg(bend)
                    .arg(radius));
        }
        taken = fits ? tangent : 0.0;
        AddWaypoint(run[i], ZrSurveyWaypoint::LineBend, index, fits ? radius : 0.0, bend);
    }
    AddWaypoint(run.back(), ZrSurveyWaypoint::LineEnd, index, 0.0, name + QLatin1String(" E"));

    for (std::size_t i = 0; i < run.size(); ++i) {
        line.points.push_back(m_frame.ToGeo(run[i]));
        if (i > 0)
            m_plan.lineLength += Distance(run[i - 1], run[i]);
    }
    m_plan.lines.push_back(std::move(line));
    m_last = ZrSurveyPose{run.back(), Direction(run[run.size() - 2], run.back())};
}

void ZrSurveyRouter::AddTurn(const ZrSurveyPose& to, std::size_t behind)
{
    const double radius = m_plan.settings.turnRadius;
    ZrSurveyTurn turn = ZrSurveyTurn::Between(*m_last, to, radius);
    const QString name = m_plan.lines[behind].Name();
    if (turn.kind == ZrSurveyTurn::Loop) {
        const bool loops = m_plan.settings.loopTurns;
        if (!loops)
            turn.corners.clear();
        AddFinding(ZrSurveyFinding::LoopTurn, behind,
            QCoreApplication::translate(
                "ZrSurveyRouter", "The line behind %1 is closer than two turn radii of %2 m: %3")
                .arg(name)
                .arg(radius)
                .arg(loops ? QCoreApplication::translate("ZrSurveyRouter", "a loop leads to it.")
                           : QCoreApplication::translate("ZrSurveyRouter", "no turn leads to it.")));
    } else if (turn.kind == ZrSurveyTurn::TooTight) {
        AddFinding(ZrSurveyFinding::TurnTooTight, behind,
            QCoreApplication::translate("ZrSurveyRouter", "No turn of %1 m leads from %2 to the next line.")
                .arg(radius)
                .arg(name));
    }
    int number = 1;
    for (const ZrLocalPoint corner : turn.corners) {
        AddWaypoint(corner, ZrSurveyWaypoint::Turn, behind, radius,
            name + QLatin1String(" T") + QString::number(number++));
    }
}

void ZrSurveyRouter::AddWaypoint(
    ZrLocalPoint at, ZrSurveyWaypoint::eRole role, std::size_t line, double radius, const QString& name)
{
    if (!m_plan.waypoints.empty())
        m_plan.pathLength += Distance(m_lastWaypoint, at);
    m_lastWaypoint = at;
    m_plan.waypoints.push_back({m_frame.ToGeo(at), role, line, radius, name});
}

void ZrSurveyRouter::AddFinding(ZrSurveyFinding::eKind kind, std::size_t line, const QString& text)
{
    m_plan.findings.push_back({kind, line, text});
}
