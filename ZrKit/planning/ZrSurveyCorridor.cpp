#include "ZrKit/planning/ZrSurveyCorridor.h"

#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/planning/ZrSurveyRing.h"
#include "ZrKit/planning/ZrSurveyRouter.h"
#include "ZrUtil/ZrUtil.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

using Polyline = std::vector<ZrLocalPoint>;
using Settings = ZrSurveyCorridorSettings;

constexpr double shortest = 0.001; ///< metres; what is shorter has no direction
constexpr double sharpest = 150.0; ///< degrees, of a bend

/// A leg of the guide: where it begins, its direction and length.
struct Leg
{
    ZrLocalPoint at;
    ZrLocalPoint ahead;
    double length;
};

std::vector<Leg> LegsOf(const Polyline& guide)
{
    std::vector<Leg> legs;
    for (std::size_t i = 1; i < guide.size(); ++i) {
        const ZrLocalPoint a = guide[i - 1];
        const ZrLocalPoint b = guide[i];
        const double length = std::hypot(b.x - a.x, b.y - a.y);
        legs.push_back({a, {(b.x - a.x) / length, (b.y - a.y) / length}, length});
    }
    return legs;
}

double Bend(const Leg& a, const Leg& b)
{
    const double sine = a.ahead.x * b.ahead.y - a.ahead.y * b.ahead.x;
    const double cosine = a.ahead.x * b.ahead.x + a.ahead.y * b.ahead.y;
    return std::fabs(ZrUtil::R2D(std::atan2(sine, cosine)));
}

/// One line beside the guide: its legs lie on straight lines beside those of the guide, each from where it
/// meets the one before to where it meets the next.
class Beside
{
public:
    /// \p off: metres to the right of the guide.
    Beside(std::vector<Leg> legs, double off)
        : m_legs(std::move(legs))
        , m_start(m_legs.front().at)
        , m_end(Moved(m_legs.back().at, m_legs.back().ahead, m_legs.back().length))
    {
        for (Leg& leg : m_legs)
            leg.at = Moved(leg.at, {leg.ahead.y, -leg.ahead.x}, off);
    }

    /// False when the bends leave no way for this line.
    bool Make(Polyline* line)
    {
        // Of neighbours without room the one that lacks most goes; the legs around it then meet each other.
        for (;;) {
            if (!Join())
                return false;
            if (*std::min_element(m_room.begin(), m_room.end()) > shortest)
                break;
            if (m_legs.size() == 1)
                return false;
            std::vector<Leg> kept;
            for (std::size_t i = 0; i < m_legs.size(); ++i) {
                const bool before = i > 0 && m_room[i] > m_room[i - 1];
                const bool behind = i + 1 < m_legs.size() && m_room[i] >= m_room[i + 1];
                if (m_room[i] > shortest || before || behind)
                    kept.push_back(m_legs[i]);
            }
            m_legs = std::move(kept);
        }
        *line = m_points;
        return true;
    }

private:
    static ZrLocalPoint Moved(ZrLocalPoint p, ZrLocalPoint direction, double metres)
    {
        return {p.x + direction.x * metres, p.y + direction.y * metres};
    }

    /// The point of the straight line of \p leg that is nearest to \p p.
    static ZrLocalPoint Abeam(ZrLocalPoint p, const Leg& leg)
    {
        return Moved(leg.at, leg.ahead, (p.x - leg.at.x) * leg.ahead.x + (p.y - leg.at.y) * leg.ahead.y);
    }

    /// The points where the legs meet, and what room each leg has between them: below 0 where they follow
    /// each other the wrong way round. False where legs do not meet.
    bool Join()
    {
        m_points.assign(1, Abeam(m_start, m_legs.front()));
        for (std::size_t i = 1; i < m_legs.size(); ++i) {
            const Leg& a = m_legs[i - 1];
            const Leg& b = m_legs[i];
            const double sine = a.ahead.x * b.ahead.y - a.ahead.y * b.ahead.x;
            const double dx = b.at.x - a.at.x;
            const double dy = b.at.y - a.at.y;
            if (Bend(a, b) > sharpest)
                return false;
            if (std::fabs(sine) < 1e-9) {
                // Straight on: where the next one begins, unless it runs beside this one.
                if (std::fabs(dx * a.ahead.y - dy * a.ahead.x) > shortest)
                    return false;
                m_points.push_back(b.at);
                continue;
            }
            const double along = (dx * b.ahead.y - dy * b.ahead.x) / sine;
            m_points.push_back(Moved(a.at, a.ahead, along));
        }
        m_points.push_back(Abeam(m_end, m_legs.back()));
        m_room.clear();
        for (std::size_t i = 0; i < m_legs.size(); ++i) {
            const ZrLocalPoint from = m_points[i];
            const ZrLocalPoint to = m_points[i + 1];
            m_room.push_back((to.x - from.x) * m_legs[i].ahead.x + (to.y - from.y) * m_legs[i].ahead.y);
        }
        return true;
    }

    std::vector<Leg> m_legs;
    ZrLocalPoint m_start; ///< of the guide
    ZrLocalPoint m_end;
    Polyline m_points;
    std::vector<double> m_room;
};

QString SettingsProblem(const Settings& settings)
{
    QString problem = settings.Problem();
    if (problem.isEmpty())
        problem = Settings::SpacingProblem(
            QCoreApplication::translate("ZrSurveyCorridor", "The line spacing"), settings.lineSpacing);
    if (!problem.isEmpty())
        return problem;
    for (const int lines : {settings.linesLeft, settings.linesRight}) {
        if (lines < 0 || lines > ZrSurveyCorridor::maxLines)
            return QCoreApplication::translate(
                "ZrSurveyCorridor", "The number of lines beside the guide must be from 0 to %1; it is %2.")
                .arg(ZrSurveyCorridor::maxLines)
                .arg(lines);
    }
    if (!settings.centreLine && settings.linesLeft == 0 && settings.linesRight == 0)
        return QCoreApplication::translate("ZrSurveyCorridor", "A corridor needs at least one line.");
    if (settings.lineSpacing * std::max(settings.linesLeft, settings.linesRight) > 10000.0)
        return QCoreApplication::translate(
            "ZrSurveyCorridor", "The lines would lie more than 10000 m from the guide.");
    return {};
}

QString GuideProblem(const std::vector<ZrGeoPoint>& guide, const ZrLocalFrame& frame)
{
    constexpr double northmost = 89.0;
    if (guide.size() > static_cast<std::size_t>(ZrSurveyCorridor::maxPoints))
        return QCoreApplication::translate("ZrSurveyCorridor", "The guide has %1 points, more than %2.")
            .arg(guide.size())
            .arg(ZrSurveyCorridor::maxPoints);
    for (std::size_t i = 0; i < guide.size(); ++i) {
        if (!guide[i].IsValid())
            return QCoreApplication::translate(
                "ZrSurveyCorridor", "Point %1 of the guide is no position on the earth.")
                .arg(i + 1);
        if (std::fabs(guide[i].lat) > northmost)
            return QCoreApplication::translate(
                "ZrSurveyCorridor", "Point %1 of the guide lies beyond %2 degrees of latitude.")
                .arg(i + 1)
                .arg(northmost);
    }
    for (std::size_t i = 0; i < guide.size(); ++i) {
        if (!ZrSurveyRing::IsWithin(frame, guide[i]))
            return QCoreApplication::translate("ZrSurveyCorridor",
                "The guide is too long: point %1 lies more than 100 km, or 15 degrees of "
                "longitude, from its middle.")
                .arg(i + 1);
    }
    return {};
}

Polyline PointsOf(const std::vector<ZrGeoPoint>& guide, const ZrLocalFrame& frame)
{
    Polyline points;
    for (const ZrGeoPoint& point : guide) {
        const ZrLocalPoint local = frame.ToLocal(point);
        if (points.empty() || std::hypot(local.x - points.back().x, local.y - points.back().y) > shortest)
            points.push_back(local);
    }
    return points;
}

} // namespace

bool ZrSurveyCorridor::Make(const std::vector<ZrGeoPoint>& guide, const ZrSurveyCorridorSettings& settings)
{
    m_plan = {};
    m_error = Planned(guide, settings);
    return m_error.isEmpty();
}

QString ZrSurveyCorridor::Planned(
    const std::vector<ZrGeoPoint>& guide, const ZrSurveyCorridorSettings& settings)
{
    const ZrLocalFrame frame = ZrLocalFrame::Around(guide);
    QString problem = SettingsProblem(settings);
    if (problem.isEmpty())
        problem = GuideProblem(guide, frame);
    if (!problem.isEmpty())
        return problem;
    const Polyline points = PointsOf(guide, frame);
    if (points.size() < 2)
        return QCoreApplication::translate(
            "ZrSurveyCorridor", "The guide has fewer than two different points.");
    const int count = settings.linesLeft + settings.linesRight + (settings.centreLine ? 1 : 0);
    if (static_cast<double>(points.size()) * count > maxWaypoints)
        return QCoreApplication::translate(
            "ZrSurveyCorridor", "%1 lines along a guide of %2 points are more than %3 waypoints.")
            .arg(count)
            .arg(points.size())
            .arg(maxWaypoints);
    const std::vector<Leg> legs = LegsOf(points);
    for (std::size_t i = 1; i < legs.size(); ++i) {
        if (Bend(legs[i - 1], legs[i]) > sharpest) {
            const ZrGeoPoint at = frame.ToGeo(legs[i].at);
            return QCoreApplication::translate(
                "ZrSurveyCorridor", "The guide bends by more than %1 degrees at %2, %3.")
                .arg(sharpest)
                .arg(at.lat, 0, 'f', 6)
                .arg(at.lng, 0, 'f', 6);
        }
    }

    std::vector<ZrSurveyLane> lanes;
    for (int i = -settings.linesLeft; i <= settings.linesRight; ++i) {
        if (i == 0 && !settings.centreLine)
            continue;
        ZrSurveyLane lane;
        lane.across = i * settings.lineSpacing;
        Polyline line;
        if (!Beside(legs, lane.across).Make(&line))
            return QCoreApplication::translate(
                "ZrSurveyCorridor", "The bends of the guide leave no room for the line %1 m to the %2 of it.")
                .arg(std::fabs(lane.across))
                .arg(i < 0 ? QStringLiteral("left") : QStringLiteral("right"));
        lane.pieces.push_back(std::move(line));
        lanes.push_back(std::move(lane));
    }
    ZrSurveyRouter router(frame, settings);
    router.Run(std::move(lanes), settings.entry, false);
    m_plan = router.Plan();
    const double heading = ZrUtil::R2D(std::atan2(legs.front().ahead.x, legs.front().ahead.y));
    m_plan.heading = heading < 0.0 ? heading + 360.0 : heading;
    return {};
}
