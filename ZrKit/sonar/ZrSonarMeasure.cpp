#include "ZrKit/sonar/ZrSonarMeasure.h"

#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <cmath>

namespace {

constexpr double radPerDeg = 3.14159265358979323846 / 180.0;

} // namespace

bool ZrSonarMeasure::Fail(const QString& error)
{
    m_error = error;
    return false;
}

bool ZrSonarMeasure::Check(const ZrSonarSpot& spot)
{
    m_error.clear();
    const std::size_t count = m_geo.Pings().size();
    if (count == 0)
        return Fail(tr("There are no side-scan lines"));
    if (spot.ping >= count)
        return Fail(tr("There is no line %1; the last one is %2").arg(Line(spot.ping)).arg(Line(count - 1)));
    if (!std::isfinite(spot.sample))
        return Fail(tr("The sample is not a number"));
    if (!std::isfinite(m_geo.SlantRange(spot))) {
        return Fail(spot.side == sidePort ? tr("Line %1 has no port side").arg(Line(spot.ping))
                                          : tr("Line %1 has no starboard side").arg(Line(spot.ping)));
    }
    if (!m_geo.Holds(spot)) {
        return Fail(tr("Line %1 has no sample %2; the last one is %3")
                        .arg(Line(spot.ping))
                        .arg(spot.sample)
                        .arg(m_geo.Pings().Side(spot.ping, spot.side).sampleCount - 1));
    }
    if (m_geo.IsInWater(spot)) {
        return Fail(tr("Sample %1 of line %2 lies in the water column: at %3 m, the seabed begins at %4 m")
                        .arg(spot.sample)
                        .arg(Line(spot.ping))
                        .arg(m_geo.SlantRange(spot), 0, 'f', 2)
                        .arg(m_geo.Altitude(spot.ping), 0, 'f', 2));
    }
    return true;
}

bool ZrSonarMeasure::Place(const ZrSonarSpot& spot, ZrSonarTarget& target)
{
    if (!Check(spot))
        return false;
    const ZrGeoPoint position = m_geo.Position(spot);
    if (!position.IsValid())
        return Fail(tr("The position or the heading at line %1 is not known").arg(Line(spot.ping)));
    target.spot = spot;
    target.time = m_geo.Pings().Time(spot.ping);
    target.position = position;
    target.slantRange = m_geo.SlantRange(spot);
    target.groundRange = m_geo.GroundRange(spot);
    target.altitude
        = m_geo.KnowsAltitudes() ? m_geo.Altitude(spot.ping) : std::numeric_limits<double>::quiet_NaN();
    return true;
}

bool ZrSonarMeasure::Between(const ZrSonarSpot& from, const ZrSonarSpot& to, Extent& extent)
{
    ZrSonarTarget first;
    ZrSonarTarget second;
    if (!Place(from, first) || !Place(to, second))
        return false;
    const ZrSonarTrack& track = m_geo.Track();
    const ZrLocalPoint start = track.LocateLocal(from.ping, from.side, first.groundRange);
    const ZrLocalPoint end = track.LocateLocal(to.ping, to.side, second.groundRange);
    const ZrLocalPoint sonar = track.Point(from.ping);
    const ZrLocalPoint right = track.LocateLocal(from.ping, sideStarboard, 1.0);
    const double east = end.x - start.x;
    const double north = end.y - start.y;
    const double rightEast = right.x - sonar.x;
    const double rightNorth = right.y - sonar.y;
    extent.distance = std::hypot(east, north);
    extent.width = std::fabs(east * rightEast + north * rightNorth);
    extent.length = std::fabs(north * rightEast - east * rightNorth);
    // Turned back from the frame to true north by what the heading shows.
    const double ahead = std::atan2(-rightNorth, rightEast) / radPerDeg;
    const double turned = std::atan2(east, north) / radPerDeg - ahead + track.Heading(from.ping);
    const double rest = std::fmod(turned, 360.0);
    extent.bearing = rest < 0.0 ? rest + 360.0 : rest;
    return true;
}

bool ZrSonarMeasure::Height(const ZrSonarSpot& top, double shadowEnd, Shadow& shadow)
{
    const ZrSonarSpot end{top.ping, top.side, shadowEnd};
    if (!Check(top) || !Check(end))
        return false;
    if (!m_geo.KnowsAltitudes())
        return Fail(tr("The altitude of the sonar is not known, and without it no height"));
    const double altitude = m_geo.Altitude(top.ping);
    if (!(altitude > 0.0))
        return Fail(tr("The altitude of the sonar at line %1 is 0").arg(Line(top.ping)));
    if (shadowEnd <= top.sample) {
        return Fail(tr("The shadow ends at sample %1, which does not lie behind its beginning at sample %2")
                        .arg(shadowEnd)
                        .arg(top.sample));
    }
    const double near = m_geo.SlantRange(top);
    const double far = m_geo.SlantRange(end);
    const double groundFar = m_geo.GroundRange(end);
    shadow.height = altitude * (far - near) / far;
    shadow.length = groundFar - m_geo.GroundRange(top);
    shadow.flatHeight = altitude * shadow.length / groundFar;
    shadow.step = altitude * m_geo.Pings().Side(top.ping, top.side).SampleLength() / far;
    return true;
}
