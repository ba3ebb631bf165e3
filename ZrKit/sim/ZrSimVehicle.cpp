#include "ZrKit/sim/ZrSimVehicle.h"

#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/sim/ZrSimSeaFloor.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double radPerDeg = pi / 180.0;

constexpr double longestStep = 0.1; // seconds of the integration
constexpr double leadTime = 4.0; // seconds of way that the steering looks ahead
constexpr double leastLead = 3.0; // metres
constexpr double headingGain = 0.8; // 1/s
constexpr double depthTime = 3.0; // seconds to be rid of a wrong depth
constexpr double sinkTime = 1.0; // seconds
constexpr double bankTime = 1.5; // seconds
constexpr double bankPerRate = 0.6; // degrees of roll for a degree a second
constexpr double floorDetail = 4.0; // metres: the vehicle does not follow every stone
constexpr double leastClearance = 0.1; // metres that are left above the floor, whatever happens
constexpr double rollPeriod = 4.1; // seconds
constexpr double pitchPeriod = 5.3;
constexpr double patience = 120.0; // seconds without coming closer
constexpr double leastProgress = 1.0; // metres that count as coming closer

/// \p value within its limits; \p otherwise when it is no number.
double Within(double value, double least, double most, double otherwise)
{
    return std::isnan(value) ? otherwise : std::clamp(value, least, most);
}

double Wrapped(double radians)
{
    return std::remainder(radians, 2.0 * pi);
}

/// Degrees within 0 to 360, 360 excluded.
double Compass(double degrees)
{
    const double rest = std::fmod(degrees, 360.0);
    const double positive = rest < 0.0 ? rest + 360.0 : rest;
    return positive >= 360.0 ? 0.0 : positive;
}

/// From true north to the north of the frame at a place, degrees.
double Convergence(const ZrLocalFrame& frame, ZrGeoPoint at)
{
    const double east = std::remainder(at.lng - frame.Origin().lng, 360.0) * radPerDeg;
    return std::atan(std::tan(east) * std::sin(at.lat * radPerDeg)) / radPerDeg;
}

/// Towards \p goal by at most \p step.
double Approach(double value, double goal, double step)
{
    return value + std::clamp(goal - value, -step, step);
}

ZrSimVehicleSettings Usable(const ZrSimVehicleSettings& given)
{
    const ZrSimVehicleSettings usual;
    ZrSimVehicleSettings used = given;
    used.maxSpeed = Within(given.maxSpeed, 0.05, 50.0, usual.maxSpeed);
    used.cruiseSpeed = Within(given.cruiseSpeed, 0.05, used.maxSpeed, usual.cruiseSpeed);
    used.acceleration = Within(given.acceleration, 0.01, 100.0, usual.acceleration);
    used.turnRate = Within(given.turnRate, 0.5, 360.0, usual.turnRate);
    used.climbAngle = Within(given.climbAngle, 1.0, 80.0, usual.climbAngle);
    used.altitude = Within(given.altitude, 0.0, 11000.0, usual.altitude);
    used.minAltitude = Within(given.minAltitude, 0.0, 11000.0, usual.minAltitude);
    used.maxDepth = Within(given.maxDepth, 0.0, 11000.0, usual.maxDepth);
    used.currentSet = std::isfinite(given.currentSet) ? given.currentSet : 0.0;
    used.currentDrift = Within(given.currentDrift, 0.0, 100.0, 0.0);
    used.swing = Within(given.swing, 0.0, 45.0, usual.swing);
    return used;
}

} // namespace

ZrSimVehicle::ZrSimVehicle(
    const ZrWpts& route, std::shared_ptr<const ZrSimSeaFloor> floor, const ZrSimVehicleSettings& settings)
    : m_frame({0.0, 0.0})
    , m_floor(std::move(floor))
    , m_settings(Usable(settings))
{
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *route.GetNext(pos);
        Level level{true, m_settings.altitude};
        if (std::isfinite(wpt.z) && wpt.zType == 1)
            level.metres = std::max(0.0, wpt.z);
        else if (std::isfinite(wpt.z) && wpt.z > 0.0)
            level = {false, wpt.z};
        m_levels.push_back(level);
    }
    const ZrRoutePath path(route);
    m_frame = path.Frame();
    m_message = Prepare(path);
    m_running = m_message.isEmpty();
    if (m_running)
        Begin();
}

/// Takes over the pieces of \p path; why there are none, or they cannot be gone along.
QString ZrSimVehicle::Prepare(const ZrRoutePath& path)
{
    if (m_levels.empty())
        return QCoreApplication::translate("ZrSimVehicle", "The plan has no waypoints");
    if (m_levels.size() == 1)
        return QCoreApplication::translate(
            "ZrSimVehicle", "The plan has only one waypoint: there is no way to go");
    if (path.IsTooWide())
        return QCoreApplication::translate("ZrSimVehicle", "The waypoints of the plan lie too far apart");
    const std::vector<ZrLocalPoint>& points = path.Points();
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!std::isfinite(points[i].x) || !std::isfinite(points[i].y))
            return QCoreApplication::translate("ZrSimVehicle", "Waypoint %1 has no valid position")
                .arg(i + 1);
    }
    for (const ZrPathPiece& piece : path.Pieces()) {
        const ZrRouteLeg& leg = path.Legs()[static_cast<std::size_t>(piece.leg)];
        Piece own;
        own.path = piece;
        own.length = piece.isArc ? std::fabs(piece.sweep) * piece.radius
                                 : std::hypot(piece.to.x - piece.from.x, piece.to.y - piece.from.y);
        if (!(own.length > 0.0))
            continue;
        own.legFrom = leg.length > 0.0 ? (piece.q - leg.q) / leg.length : 0.0;
        own.legTo = leg.length > 0.0 ? (piece.q + piece.length - leg.q) / leg.length : 1.0;
        const double planned = m_settings.usesPlanSpeeds ? leg.speed : m_settings.cruiseSpeed;
        own.speed = Within(planned, 0.05, m_settings.maxSpeed, m_settings.cruiseSpeed);
        own.from = leg.from;
        own.to = leg.to;
        m_pieces.push_back(own);
        m_length += own.length;
    }
    if (m_pieces.empty())
        return QCoreApplication::translate("ZrSimVehicle", "All waypoints of the plan lie in one place");
    double behind = 0.0;
    for (auto piece = m_pieces.rbegin(); piece != m_pieces.rend(); ++piece) {
        piece->behind = behind;
        behind += piece->length;
    }
    return {};
}

void ZrSimVehicle::Begin()
{
    m_state.at = m_pieces.front().path.from;
    const Place place = PlaceOn(m_pieces.front());
    m_heading = m_wanted = place.course;
    m_state.speed = m_pieces.front().speed;
    m_best = m_length;
    const double floorDepth = m_floor->Depth(m_state.at.x, m_state.at.y, floorDetail);
    m_state.depth = WantedDepth(m_levels[static_cast<std::size_t>(m_pieces.front().from)], floorDepth);
    m_state.groundSpeed = m_state.speed;
    m_state.toGo = m_length;
    m_state.waypoint = m_pieces.front().to;
    m_course = m_heading;
    FillDerived();
}

void ZrSimVehicle::Step(double seconds)
{
    if (!(seconds > 0.0))
        return;
    const double whole = std::min(seconds, MaxStep);
    const int steps = static_cast<int>(std::ceil(whole / longestStep));
    for (int i = 0; i < steps && m_running; ++i)
        Advance(whole / steps);
}

ZrSimVehicle::Place ZrSimVehicle::PlaceOn(const Piece& piece) const
{
    const ZrPathPiece& path = piece.path;
    Place place;
    if (!path.isArc) {
        const double east = (path.to.x - path.from.x) / piece.length;
        const double north = (path.to.y - path.from.y) / piece.length;
        const double dx = m_state.at.x - path.from.x;
        const double dy = m_state.at.y - path.from.y;
        place.along = dx * east + dy * north;
        place.off = dx * north - dy * east;
        place.course = std::atan2(east, north);
        return place;
    }
    const double dx = m_state.at.x - path.centre.x;
    const double dy = m_state.at.y - path.centre.y;
    const double angle = std::atan2(dy, dx);
    const double turn = path.sweep > 0.0 ? 1.0 : -1.0; // 1 to the left
    // Counted from the middle of the arc, so that places before it and behind it are told apart.
    const double swept = turn * Wrapped(angle - path.start - path.sweep / 2.0) + std::fabs(path.sweep) / 2.0;
    place.along = swept * path.radius;
    place.off = turn * (std::hypot(dx, dy) - path.radius);
    place.course = turn > 0.0 ? -angle : pi - angle;
    place.curvature = -turn / path.radius;
    return place;
}

void ZrSimVehicle::Advance(double dt)
{
    m_state.time += dt;
    Place place = PlaceOn(m_pieces[m_piece]);
    while (place.along >= m_pieces[m_piece].length) {
        if (m_piece + 1 == m_pieces.size()) {
            m_state.toGo = 0.0;
            m_state.crossTrack = place.off;
            FillDerived();
            End(QString());
            return;
        }
        ++m_piece;
        place = PlaceOn(m_pieces[m_piece]);
    }
    Steer(place, dt);
    Dive(place, dt);
    Watch(place, dt);
    FillDerived();
}

void ZrSimVehicle::Steer(const Place& place, double dt)
{
    const double speed = Approach(m_state.speed, m_pieces[m_piece].speed, m_settings.acceleration * dt);
    const double set = m_settings.currentSet * radPerDeg;
    const double currentEast = m_settings.currentDrift * std::sin(set);
    const double currentNorth = m_settings.currentDrift * std::cos(set);
    const double lead = std::max(leastLead, leadTime * speed);
    const double course = place.course - std::atan(place.off / lead);
    m_wanted = course;
    if (m_settings.holdsLine) {
        const double across = currentEast * std::cos(course) - currentNorth * std::sin(course);
        m_wanted -= std::asin(std::clamp(across / speed, -1.0, 1.0));
    }
    const double most = m_settings.turnRate * radPerDeg;
    const double turned = place.curvature * m_state.groundSpeed + headingGain * Wrapped(m_wanted - m_heading);
    m_rate = std::clamp(turned, -most, most);
    m_heading = Wrapped(m_heading + m_rate * dt);

    const double level = std::sqrt(std::max(0.0, speed * speed - m_sink * m_sink));
    const double east = level * std::sin(m_heading) + currentEast;
    const double north = level * std::cos(m_heading) + currentNorth;
    m_state.at.x += east * dt;
    m_state.at.y += north * dt;
    m_state.speed = speed;
    m_state.groundSpeed = std::hypot(east, north);
    if (m_state.groundSpeed > 0.0)
        m_course = std::atan2(east, north);
}

double ZrSimVehicle::WantedDepth(const Level& level, double floorDepth) const
{
    const double wanted = level.isAltitude ? floorDepth - level.metres : level.metres;
    return std::max(0.0, std::min({wanted, floorDepth - m_settings.minAltitude, m_settings.maxDepth}));
}

void ZrSimVehicle::Dive(const Place& place, double dt)
{
    const Piece& piece = m_pieces[m_piece];
    const double ahead = depthTime * m_state.speed;
    const double floorAhead = m_floor->Depth(
        m_state.at.x + ahead * std::sin(m_heading), m_state.at.y + ahead * std::cos(m_heading), floorDetail);
    const double onPiece = std::clamp(place.along / piece.length, 0.0, 1.0);
    const double share = piece.legFrom + onPiece * (piece.legTo - piece.legFrom);
    const double from = WantedDepth(m_levels[static_cast<std::size_t>(piece.from)], floorAhead);
    const double to = WantedDepth(m_levels[static_cast<std::size_t>(piece.to)], floorAhead);
    const double wanted = from + share * (to - from);

    const double most = m_state.speed * std::sin(m_settings.climbAngle * radPerDeg);
    const double sink = std::clamp((wanted - m_state.depth) / depthTime, -most, most);
    m_sink += (sink - m_sink) * std::min(1.0, dt / sinkTime);
    m_bank += (bankPerRate * m_rate / radPerDeg - m_bank) * std::min(1.0, dt / bankTime);
    const double floorHere = m_floor->Depth(m_state.at.x, m_state.at.y);
    m_state.depth = std::clamp(m_state.depth + m_sink * dt, 0.0, std::max(0.0, floorHere - leastClearance));
}

/// Ends the voyage when it leads nowhere.
void ZrSimVehicle::Watch(const Place& place, double dt)
{
    const Piece& piece = m_pieces[m_piece];
    const double rest = piece.length - std::clamp(place.along, 0.0, piece.length);
    m_state.toGo = piece.behind + rest;
    m_state.crossTrack = place.off;
    m_state.waypoint = piece.to;
    m_since += dt;
    if (m_state.toGo <= m_best - leastProgress) {
        m_best = m_state.toGo;
        m_since = 0.0;
    }
    const double circle = m_state.groundSpeed / (m_settings.turnRate * radPerDeg);
    const bool isCarriedOff = std::fabs(place.off) > std::max(MaxOff, 4.0 * circle);
    // A slow turn of half a circle, twice, is no reason to give up.
    const bool isStuck = m_since > patience + 2.0 * 180.0 / m_settings.turnRate;
    if (!isCarriedOff && !isStuck)
        return;
    const QString goal = QStringLiteral("waypoint %1").arg(piece.to + 1);
    if (m_settings.currentDrift >= piece.speed) {
        End(QCoreApplication::translate("ZrSimVehicle",
            "The current of %1 m/s is too strong for the vehicle, which makes %2 m/s on the way "
            "to %3")
                .arg(m_settings.currentDrift, 0, 'f', 2)
                .arg(piece.speed, 0, 'f', 2)
                .arg(goal));
    } else if (isCarriedOff) {
        End(QCoreApplication::translate("ZrSimVehicle", "The vehicle is %1 m off its line on the way to %2")
                .arg(std::fabs(place.off), 0, 'f', 0)
                .arg(goal));
    } else {
        End(QCoreApplication::translate("ZrSimVehicle", "The vehicle comes no closer to %1").arg(goal));
    }
}

void ZrSimVehicle::FillDerived()
{
    m_state.position = m_frame.ToGeo(m_state.at);
    const double convergence = Convergence(m_frame, m_state.position);
    m_state.gridHeading = Compass(m_heading / radPerDeg);
    m_state.heading = Compass(m_heading / radPerDeg + convergence);
    m_state.wantedHeading = Compass(m_wanted / radPerDeg + convergence);
    m_state.course = Compass(m_course / radPerDeg + convergence);
    m_state.altitude = std::max(0.0, m_floor->Depth(m_state.at.x, m_state.at.y) - m_state.depth);
    const double steep = m_state.speed > 0.0 ? std::clamp(m_sink / m_state.speed, -1.0, 1.0) : 0.0;
    m_state.pitch = -std::asin(steep) / radPerDeg
        + 0.5 * m_settings.swing * std::sin(2.0 * pi * m_state.time / pitchPeriod);
    m_state.roll = m_bank + m_settings.swing * std::sin(2.0 * pi * m_state.time / rollPeriod);
}

void ZrSimVehicle::End(const QString& message)
{
    m_message = message;
    m_running = false;
}
